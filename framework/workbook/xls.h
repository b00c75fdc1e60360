// Reading of Excel workbooks (BIFF5 to BIFF8 in a compound file).
//
// The functions are those of the libxls library, so that a device which carries that library can
// be built with it: with ZK_SYSTEM_WORKBOOK defined this header hands over to the library's own.
// Otherwise framework/workbook supplies them. Here a workbook is read whole on opening and the
// file is closed again; nothing in the file is trusted, so a damaged one ends in an error.
//
// Calls on different workbooks may run in different threads, calls on the same one may not.
#pragma once

#ifdef ZK_SYSTEM_WORKBOOK
#include <xls.h>
#ifdef __cplusplus
using namespace xls;
#endif
#else

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum xls_error_t {
    LIBXLS_OK,
    LIBXLS_ERROR_OPEN,   // no such file, no permission, or not a regular file
    LIBXLS_ERROR_SEEK,   // the file's sector chains lead outside it
    LIBXLS_ERROR_READ,   // an input error, or a file of more than 64 MiB
    LIBXLS_ERROR_PARSE,  // not a workbook, or a damaged one
    LIBXLS_ERROR_MALLOC,
    LIBXLS_ERROR_UNSUPPORTED_ENCRYPTION,
    LIBXLS_ERROR_NULL_ARGUMENT
} xls_error_t;

// One cell. `str` is owned by the sheet or the workbook.
typedef struct xlsCell {
    uint16_t id;   // the number of the record that the cell came from; 0: there is none
    uint16_t row;  // from 0
    uint16_t col;  // from 0
    double d;      // the value of a number
    char* str;     // the text, for numbers as "%.15g" gives it; NULL when the cell has none
} xlsCell;

typedef struct xlsSheetEntry {
    uint32_t filepos;    // of the sheet's first record in the workbook stream
    uint8_t visibility;  // 0 visible, 1 hidden, 2 hidden from the user
    uint8_t type;        // 0 worksheet, 1 macro sheet, 2 chart, 6 Visual Basic module
    char* name;
} xlsSheetEntry;

typedef struct xlsSheetList {
    uint32_t count;
    xlsSheetEntry* sheet;
} xlsSheetList;

typedef struct xlsRows {
    uint16_t lastcol;  // highest column that holds a cell
    uint16_t lastrow;  // highest row that has a row record or a cell; 0 for an empty sheet
} xlsRows;

typedef struct xlsWorkBook {
    xlsSheetList sheets;  // in the order of the tabs, hidden ones included
    struct xlsBookState* state;
} xlsWorkBook;

typedef struct xlsWorkSheet {
    xlsRows rows;  // zero until xls_parseWorkSheet
    struct xlsSheetState* state;
} xlsWorkSheet;

// Opens the workbook `file` and reads its list of sheets and shared strings.
// `charset` is the encoding of all strings handed out: "UTF-8", which NULL stands for too; another
// one is refused with LIBXLS_ERROR_OPEN.
// Returns the workbook, to be closed by xls_close_WB, or NULL. `outError` may be NULL.
xlsWorkBook* xls_open_file(const char* file, const char* charset, xls_error_t* outError);

// The same for `size` bytes at `data`, which are not needed after the call.
xlsWorkBook* xls_open_buffer(const unsigned char* data, size_t size, const char* charset,
                             xls_error_t* outError);

// An English phrase for an error, never NULL.
const char* xls_getError(xls_error_t code);

// Sheet `index`, from 0, not parsed yet; NULL out of range or without memory.
// To be closed by xls_close_WS before the workbook is.
xlsWorkSheet* xls_getWorkSheet(xlsWorkBook* workbook, int index);

// Reads the cells of a sheet. A sheet that ends in an error holds no rows.
xls_error_t xls_parseWorkSheet(xlsWorkSheet* sheet);

// The cell at `row`, `col`, both from 0; NULL beyond the last row or column. A place within them
// that holds nothing gives a cell without a string, valid until the next call for the sheet.
xlsCell* xls_cell(xlsWorkSheet* sheet, uint16_t row, uint16_t col);

// Free a sheet and a workbook; NULL is allowed.
void xls_close_WS(xlsWorkSheet* sheet);
void xls_close_WB(xlsWorkBook* workbook);

#ifdef __cplusplus
}
#endif
#endif

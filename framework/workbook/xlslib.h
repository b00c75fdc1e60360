// Writing of Excel workbooks (BIFF8 in a compound file).
//
// The functions are those of the xlslib library's plain C layer, so that a device which carries
// that library can be built with it: with ZK_SYSTEM_WORKBOOK defined this header hands over to
// the library's own. Otherwise framework/workbook supplies them, with saves that are atomic and
// whose cost does not grow with the finished rows beyond the bytes written.
//
// One thread at a time may work on a workbook and its sheets.
#pragma once

#ifdef ZK_SYSTEM_WORKBOOK
#include <xlslib.h>
#ifdef __cplusplus
using namespace xlslib_core;
#endif
// The library writes in place always, and says nothing of it.
static inline int xlsWorkbookInPlace(const workbook*) {
    return 0;
}
#else

#ifdef __cplusplus
extern "C" {
#endif

typedef struct workbook workbook;
typedef struct worksheet worksheet;
typedef struct cell_t cell_t;  // says that a cell was written; there is nothing to do with it
typedef struct xf_t xf_t;      // a cell format; cells here all have the default one

// A new workbook without sheets, NULL without memory.
workbook* xlsNewWorkbook(void);

// Frees a workbook with its sheets; NULL is allowed. A save that was made stays.
void xlsDeleteWorkbook(workbook* book);

// Appends a sheet. `name` is UTF-8, of 1 to 31 characters (a longer one is cut) and should be
// the only one of its kind. Returns the sheet, owned by the workbook, or NULL for a missing or
// empty name, after 65535 sheets and without memory.
worksheet* xlsWorkbookSheet(workbook* book, const char* name);

// Put a text or a number in a cell in place of what it held. `row` is 0 to 65535, `col` is 0 to
// 255. `text` is UTF-8 of up to 32767 characters, a longer one is cut, and bytes that are no UTF-8
// show as U+FFFD; an empty text leaves the cell empty. `format` is not looked at. Return the
// cell, valid until the next call for the sheet, or NULL for a bad argument or without memory; the
// cell then keeps what it held.
cell_t* xlsWorksheetLabel(worksheet* sheet, unsigned row, unsigned col, const char* text,
                          xf_t* format);
cell_t* xlsWorksheetNumberInt(worksheet* sheet, unsigned row, unsigned col, int value,
                              xf_t* format);

// Saves the workbook as `file`: whole or not at all, also across a crash or a power cut. It is
// written to `file`.tmp first, synced to the medium and renamed; owner and mode of the old file are
// kept. Where a file cannot be renamed it is written in place. ZK_REPORT_SYNC=0 in the environment
// leaves the syncs out, which keeps the promise for a crash of the program but not for a power cut.
// Returns 0, or -1 with errno on any error, a workbook without sheets and a file that may not be
// written among them; the old file is then still there.
int xlsWorkbookDump(workbook* book, const char* file);

// Not one of the library's: why the last save was written in place, as errno has it, so that a
// crash in it would have damaged the file; 0 when it replaced the file whole.
int xlsWorkbookInPlace(const workbook* book);

#ifdef __cplusplus
}
#endif
#endif

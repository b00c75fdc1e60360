#include "framework/report.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "framework/base/zk_log.h"
#include "framework/workbook/xls.h"
#include "framework/workbook/xlslib.h"

TcXlsData tcXlsData;

static workbook* pWorkBook;
static worksheet* pWorkaSheet;

/** Columns of the two workbooks. */
enum {
    COLUMN_ID = 0,
    COLUMN_NAME = 1,
    CHECKLIST_COLUMN_MARK = 4,
    REPORT_COLUMN_TEST = 2,
    REPORT_COLUMN_RESULT = 3,
};

/** The word of each TcRowStatus. */
static const char* const statusWords[] = {"Pass", "Fail", "N/A", "Block", "NoMatch", "Manual"};

static const char* statusWord(int32_t status) {
    if (status < ROW_PASS || status > ROW_MANUAL)
        status = ROW_NA;
    return statusWords[status];
}

static int32_t statusOfCell(const char* word) {
    if (word == nullptr || strcmp(word, statusWords[ROW_FAIL]) == 0)
        return ROW_FAIL;
    return strcmp(word, statusWords[ROW_PASS]) == 0 ? ROW_PASS : ROW_NA;
}

int32_t zk_xlsGetSheetId(const char* name) {
    if (name == nullptr)
        return -1;
    for (int32_t i = 0; i < tcXlsData.sheetCount; i++) {
        if (strcmp(tcXlsData.sheets[i].name, name) == 0)
            return i;
    }
    return -1;
}

/** A cell's text, null when it has none. */
static const char* cellText(xlsWorkSheet* sheet, int32_t row, int column) {
    xlsCell* cell = xls_cell(sheet, static_cast<uint16_t>(row), static_cast<uint16_t>(column));
    return cell != nullptr ? cell->str : nullptr;
}

static void freeSheets(TcSheet* sheets, int32_t count) {
    for (int32_t i = 0; sheets != nullptr && i < count; i++)
        free(sheets[i].rows);
    free(sheets);
}

/** Names, marks and defaults of the checklist's rows, up to the first row without a name. */
static void readChecklistRows(xlsWorkSheet* source, TcSheet* sheet) {
    for (int32_t r = 0; r < sheet->rowCount; r++) {
        TcRow* row = &sheet->rows[r];
        const char* name = cellText(source, r + 1, COLUMN_NAME);
        row->id = r;
        if (name == nullptr || name[0] == '\0') {
            zk_log("%s: %d blank line in the cheklist, skip cases after the blank line \n",
                   "zk_xlsLoadDataFromChecklist", __LINE__);
            sheet->rowCount = r;
            return;
        }
        const char* mark = cellText(source, r + 1, CHECKLIST_COLUMN_MARK);
        snprintf(row->name, sizeof row->name, "%s", name);
        row->testFlag = mark != nullptr && mark[0] == 'Y';
        row->status = ROW_NA;
    }
}

static void readReportRows(xlsWorkSheet* source, TcSheet* sheet) {
    for (int32_t r = 0; r < sheet->rowCount; r++) {
        TcRow* row = &sheet->rows[r];
        const char* name = cellText(source, r + 1, COLUMN_NAME);
        const char* mark = cellText(source, r + 1, REPORT_COLUMN_TEST);
        row->id = r;
        if (name != nullptr)
            snprintf(row->name, sizeof row->name, "%s", name);
        row->testFlag = mark != nullptr && mark[0] == 'Y';
        row->status = statusOfCell(cellText(source, r + 1, REPORT_COLUMN_RESULT));
    }
}

typedef void (*RowReader)(xlsWorkSheet* source, TcSheet* sheet);

/** Reads one sheet into `sheet`, whose name is set already. False, with a message, on an error. */
static bool readSheet(xlsWorkBook* book, int index, TcSheet* sheet, RowReader readRows,
                      const char* function) {
    xlsWorkSheet* source = xls_getWorkSheet(book, index);
    xls_error_t error = source != nullptr ? xls_parseWorkSheet(source) : LIBXLS_ERROR_MALLOC;
    if (error != LIBXLS_OK) {
        zk_log("Error parsing worksheet: %s\n", xls_getError(error));
        xls_close_WS(source);
        return false;
    }
    // The last row is never read: in a report it is the row that was running, and a checklist ends
    // with one row more than it has cases.
    int32_t lastRow = source->rows.lastrow;
    sheet->rowCount = lastRow > 0 ? lastRow - 1 : 0;
    size_t count = sheet->rowCount > 0 ? static_cast<size_t>(sheet->rowCount) : 1;
    sheet->rows = static_cast<TcRow*>(calloc(count, sizeof(TcRow)));
    if (sheet->rows == nullptr)
        zk_log("%s: %d out of memory.\n", function, __LINE__);
    else
        readRows(source, sheet);
    xls_close_WS(source);
    return sheet->rows != nullptr;
}

/**
 * Reads a workbook's sheets from `firstSheet` on.
 * @param count  receives their count
 * @return an array for freeSheets, null after an error, which has been told
 */
static TcSheet* readBook(const char* path, int firstSheet, int32_t* count, RowReader readRows,
                         const char* function) {
    xls_error_t error = LIBXLS_OK;
    xlsWorkBook* book = xls_open_file(path, "UTF-8", &error);
    if (book == nullptr) {
        zk_log("pWB == NULL. libxls error: %s\n", xls_getError(error));
        return nullptr;
    }
    int32_t sheetCount = static_cast<int32_t>(book->sheets.count) - firstSheet;
    *count = sheetCount > 0 ? sheetCount : 0;
    size_t allocated = *count > 0 ? static_cast<size_t>(*count) : 1;
    TcSheet* sheets = static_cast<TcSheet*>(calloc(allocated, sizeof(TcSheet)));
    if (sheets == nullptr)
        zk_log("%s: %d out of memory.\n", function, __LINE__);
    for (int32_t i = 0; sheets != nullptr && i < *count; i++) {
        const char* name = book->sheets.sheet[firstSheet + i].name;
        snprintf(sheets[i].name, sizeof sheets[i].name, "%s", name != nullptr ? name : "");
        if (!readSheet(book, firstSheet + i, &sheets[i], readRows, function)) {
            freeSheets(sheets, *count);
            sheets = nullptr;
        }
    }
    xls_close_WB(book);
    return sheets;
}

int32_t zk_xlsLoadDataFromChecklist(const char* path) {
    if (path == nullptr) {
        zk_log("checklist is NULL\n");
        return 0;
    }
    int32_t count = 0;
    TcSheet* sheets = readBook(path, 1, &count, readChecklistRows, __func__);
    if (sheets == nullptr)
        return 0;
    tcXlsData.sheets = sheets;
    tcXlsData.sheetCount = count;
    return 1;
}

/** Lays one report sheet over its twin of the checklist, and notes that the run reached it. */
static void restoreSheet(const TcSheet& report, int32_t index) {
    int32_t id = zk_xlsGetSheetId(report.name);
    tcXlsData.curSheetId = id;
    if (id < 0)
        return;
    zk_log("copy data from report sheet(%d) to memory sheet(%d)! \r\n", index, id);
    TcSheet* sheet = &tcXlsData.sheets[id];
    int32_t rows = report.rowCount < sheet->rowCount ? report.rowCount : sheet->rowCount;
    memcpy(sheet->rows, report.rows, static_cast<size_t>(rows) * sizeof(TcRow));
    sheet->rowsDone = report.rowCount;
}

int32_t zk_xlsLoadDataFromTestReport(const char* path) {
    if (path == nullptr) {
        zk_log("checklist is NULL\n");
        return 0;
    }
    int32_t count = 0;
    TcSheet* sheets = readBook(path, 0, &count, readReportRows, __func__);
    if (sheets == nullptr)
        return 0;
    for (int32_t i = 0; i < count; i++)
        restoreSheet(sheets[i], i);
    freeSheets(sheets, count);
    return 1;
}

int32_t zk_xlsCreateBook(void) {
    xlsDeleteWorkbook(pWorkBook);
    pWorkaSheet = nullptr;
    pWorkBook = xlsNewWorkbook();
    return pWorkBook != nullptr ? 0 : -1;
}

/** Says on the console what is new about the saving of the report: a failure, its end, and once
 *  that a crash in the middle of a save would cost the report. */
static void tellSave(const char* path, bool saved, int error) {
    static bool failing;
    static bool toldInPlace;
    if (!saved && !failing)
        zk_log("test report %s could not be saved: %s \r\n", path,
               error != 0 ? strerror(error) : "unknown error");
    if (saved && failing)
        zk_log("test report %s is saved again \r\n", path);
    failing = !saved;
    int reason = saved ? xlsWorkbookInPlace(pWorkBook) : 0;
    if (reason == 0 || toldInPlace)
        return;
    toldInPlace = true;
    zk_log("test report %s is written in place, no new file can take its place: %s \r\n", path,
           strerror(reason));
}

int32_t zk_xlsSaveBook(const char* path) {
    if (path == nullptr || pWorkBook == nullptr)
        return -1;
    // A save that fails leaves the last good report; the next row saves all of it again.
    errno = 0;
    bool saved = xlsWorkbookDump(pWorkBook, path) == 0;
    tellSave(path, saved, errno);
    return 0;
}

int32_t zk_xlsCreateSheet(const char* name) {
    static const char* const headings[] = {"ID", "Case", "Test", "Result"};
    if (pWorkBook == nullptr || name == nullptr)
        return -1;
    pWorkaSheet = xlsWorkbookSheet(pWorkBook, name);
    if (pWorkaSheet == nullptr)
        return -1;
    for (unsigned column = 0; column < 4; column++)
        xlsWorksheetLabel(pWorkaSheet, 0, column, headings[column], nullptr);
    return 0;
}

int32_t zk_xlswriteRowData(const TcRow* row) {
    if (row == nullptr || pWorkaSheet == nullptr || row->id < 0)
        return -1;
    unsigned at = static_cast<unsigned>(row->id) + 1;
    xlsWorksheetNumberInt(pWorkaSheet, at, COLUMN_ID, row->id + 1, nullptr);
    xlsWorksheetLabel(pWorkaSheet, at, COLUMN_NAME, row->name, nullptr);
    xlsWorksheetLabel(pWorkaSheet, at, REPORT_COLUMN_TEST, row->testFlag == 1 ? "Y" : "N", nullptr);
    xlsWorksheetLabel(pWorkaSheet, at, REPORT_COLUMN_RESULT, statusWord(row->status), nullptr);
    return 0;
}

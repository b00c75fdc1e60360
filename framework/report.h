/*
 * The workbooks of an automated run: the checklist that plans it, and the report that tells its
 * verdicts and, after a crash or reboot, where it stood. Loaded before the console thread starts,
 * used by that thread alone afterwards.
 */
#ifndef FRAMEWORK_REPORT_H
#define FRAMEWORK_REPORT_H

#include <stdint.h>

enum TcRowStatus {
    ROW_PASS = 0,
    ROW_FAIL = 1,
    /** The default: not applicable, or not run. */
    ROW_NA = 2,
    /** Started and not ended. */
    ROW_BLOCK = 3,
    /** The row's name is not that of the case at its place. */
    ROW_NO_MATCH = 4,
    ROW_MANUAL = 5,
};

enum {
    SHEET_NAME_SIZE = 20,
    ROW_NAME_SIZE = 200,
};

struct TcRow {
    /** Place in the sheet, from 0. */
    int32_t id;
    char name[ROW_NAME_SIZE];
    /** 1: marked to be run. */
    int32_t testFlag;
    /** TcRowStatus. */
    int32_t status;
};
static_assert(sizeof(TcRow) == 212, "a row has 212 bytes");

struct TcSheet {
    char name[SHEET_NAME_SIZE];
    TcRow* rows;
    /** Rows of the checklist. */
    int32_t rowCount;
    /** Rows restored from a report, 0 for none. */
    int32_t rowsDone;
};

struct TcXlsData {
    TcSheet* sheets;
    int32_t sheetCount;
    /** The checklist sheet that the previous run reached, 0 on a fresh start, -1 when the report's
     *  last sheet is none of the checklist's. */
    int32_t curSheetId;
};

extern TcXlsData tcXlsData;

/** Index of the checklist's sheet of that name, or -1; -1 also for null. */
int32_t zk_xlsGetSheetId(const char* name);

/** Fills tcXlsData from a checklist. 1 loaded, 0 not; then tcXlsData stays as it was. */
int32_t zk_xlsLoadDataFromChecklist(const char* path);

/** Lays an earlier report over the rows in memory. 1 read, 0 not. */
int32_t zk_xlsLoadDataFromTestReport(const char* path);

/** Starts a new report in memory. 0, or -1. */
int32_t zk_xlsCreateBook(void);
/** Writes the report to its file, whole. A save that fails is told on the console, once until one
 *  works again. 0, or -1 for a null path. */
int32_t zk_xlsSaveBook(const char* path);
/** Adds a sheet with its headings to the report, the one that rows go to from now on. 0, or -1. */
int32_t zk_xlsCreateSheet(const char* name);
/** Puts a row into the report's current sheet, in the place of an earlier state of it. 0, or -1. */
int32_t zk_xlswriteRowData(const TcRow* row);

#endif

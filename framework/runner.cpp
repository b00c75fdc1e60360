#include "framework/runner.h"

#include <string.h>

#include "framework/base/zk_log.h"
#include "framework/case/check.h"
#include "framework/console_input.h"
#include "framework/instance.h"
#include "framework/monitor.h"
#include "framework/report.h"

/** "SUCCESS", "UNSUPPORT" or "FAILED". */
static const char* verdictWord(uint32_t result) {
    if (result == TC_SUCCESS)
        return "SUCCESS";
    return result == TC_NOT_APPLICABLE ? "UNSUPPORT" : "FAILED";
}

static int32_t statusOfResult(uint32_t result) {
    if (result == TC_SUCCESS)
        return ROW_PASS;
    return result == TC_NOT_APPLICABLE ? ROW_NA : ROW_FAIL;
}

void printTestcaseVerdict(const char* moduleName, int32_t number, uint32_t result) {
    zk_log("[%s] testcase [%d] %s! \r\n", moduleName, number, verdictWord(result));
}

/** The case with its hooks. The case's own result counts; without a case that of its set-up. */
static uint32_t runCase(const TcModule& module, const TcCase& testCase, bool announce) {
    uint32_t result = TC_SUCCESS;
    zk_currentCaseName = testCase.name;
    if (module.caseSetup != nullptr)
        result = module.caseSetup(nullptr, nullptr);
    if (testCase.function != nullptr) {
        if (announce)
            zk_log("case %d:[%s] Start! \r\n", static_cast<int32_t>(&testCase - module.cases) + 1,
                   testCase.name);
        result = testCase.function();
    }
    if (module.caseTeardown != nullptr)
        module.caseTeardown();
    zk_currentCaseName = nullptr;
    return result;
}

/** Runs the case of a row, prints its verdict and notes it in the row. */
static uint32_t runRow(const TcModule& module, TcRow* row, bool announce) {
    uint32_t result = runCase(module, module.cases[row->id], announce);
    zk_log("case %d:[%s] %s! \r\n", row->id + 1, row->name, verdictWord(result));
    row->status = statusOfResult(result);
    return result;
}

static void writeAndSave(const TcRow& row) {
    zk_xlswriteRowData(&row);
    zk_xlsSaveBook(tcFwInstance.reportFile);
}

/** Whether the previous process reached the end of the last sheet. Its last row was not read back,
 *  hence the one less. */
static bool isRunComplete(void) {
    int32_t current = tcXlsData.curSheetId;
    if (current < 0 || current + 1 != tcXlsData.sheetCount)
        return false;
    const TcSheet& sheet = tcXlsData.sheets[current];
    return sheet.rowsDone + 1 == sheet.rowCount;
}

/** Whether the previous process finished this sheet. */
static bool isModuleDone(int32_t sheetId) {
    const TcSheet& sheet = tcXlsData.sheets[sheetId];
    int32_t current = tcXlsData.curSheetId;
    return current > sheetId || (current == sheetId && sheet.rowsDone >= sheet.rowCount);
}

/**
 * Whether a row goes into the report as it stands in memory. That includes the row behind the
 * restored ones, which was running when the previous process ended and would end this one too.
 */
static bool isReplay(int32_t sheetId, int32_t row) {
    int32_t current = tcXlsData.curSheetId;
    int32_t rowsDone = tcXlsData.sheets[sheetId].rowsDone;
    if (current == 0 && rowsDone == 0)
        return false;
    return current > sheetId || (current == sheetId && rowsDone >= row);
}

/** Why a row is not run, as the status that it gets; false when it is to be run. */
static bool skipRow(const TcCase& testCase, TcRow* row, int32_t manualStatus) {
    int32_t number = row->id + 1;
    if (strcmp(row->name, testCase.name) != 0) {
        zk_log("case %d:[%s] Can't find this case. Skip! \r\n", number, row->name);
        row->status = ROW_NO_MATCH;
    } else if (testCase.autoFlag != AUTO) {
        zk_log("case %d:[%s] Manual case. Skip! \r\n", number, row->name);
        row->status = manualStatus;
    } else if (row->testFlag != 1) {
        zk_log("case %d:[%s] Case hase been marked as 'N' in checklist. Skip! \r\n", number,
               row->name);
        row->status = ROW_NA;
    } else {
        return false;
    }
    return true;
}

static void tellMoreRowsThanCases(const TcModule& module) {
    zk_log(
        "[%s] module: cases in checklist is more than actual cases, update the checklist "
        "please!!!  \r\n",
        module.name);
}

static void runSheetRows(const TcModule& module, int32_t sheetId, uint32_t* result) {
    TcSheet& sheet = tcXlsData.sheets[sheetId];
    for (int32_t r = 0; r < sheet.rowCount; r++) {
        TcRow* row = &sheet.rows[r];
        if (static_cast<uint32_t>(r) >= module.caseCount) {
            tellMoreRowsThanCases(module);
            return;
        }
        monitorAlive();
        if (!isReplay(sheetId, r) && !skipRow(module.cases[r], row, ROW_MANUAL)) {
            // The file says "Block" for as long as the case runs.
            row->status = ROW_BLOCK;
            writeAndSave(*row);
            *result = runRow(module, row, true);
        }
        writeAndSave(*row);
    }
}

static void runModule(const TcModule& module, uint32_t* result) {
    int32_t sheetId = zk_xlsGetSheetId(module.name);
    if (sheetId == -1) {
        zk_log("\r\n There is no module(%s) in checklist! \r\n", module.name);
        return;
    }
    bool done = isModuleDone(sheetId);
    if (done) {
        zk_log("[%s] module has been tested. skip!!!  \r\n", module.name);
    } else {
        *result = TC_SUCCESS;
        if (module.setup != nullptr) {
            *result = module.setup();
            zk_log("[%s] module setup!!!  \r\n", module.name);
        }
        if (*result != 0) {
            zk_log("[%s] module setup failed!!!  \r\n", module.name);
            return;
        }
    }
    zk_xlsCreateSheet(module.name);
    runSheetRows(module, sheetId, result);
    if (done || module.teardown == nullptr)
        return;
    *result = module.teardown();
    if (*result != 0)
        zk_log("[%s] module teardown failed!!! \r\n", module.name);
}

int32_t runAutoCasesInAllModules(void) {
    uint32_t result = 1;
    zk_log("Runing all the cases of all modules\r\n");
    if (!tcFwInstance.checklistLoaded) {
        zk_log("There is no checklist! \r\n");
        return 1;
    }
    if (isRunComplete()) {
        zk_log("all the cases of modules has been tested! \r\n");
        displayPrompt();
        return 0;
    }
    for (int32_t i = 0; i < tcFwInstance.moduleCount; i++)
        runModule(*tcFwInstance.modules[i], &result);
    return static_cast<int32_t>(result);
}

/** The module's rows of the checklist; unlike in an unattended run nothing is resumed, and a row
 *  that does not match is not reported. */
static uint32_t runModuleByChecklist(const TcModule& module) {
    int32_t sheetId = zk_xlsGetSheetId(module.name);
    uint32_t result = TC_SUCCESS;
    if (sheetId == -1) {
        zk_log("\r\n There is no module(%s) in checklist! \r\n", module.name);
        return TC_SUCCESS;
    }
    if (tcFwInstance.reportEnabled)
        zk_xlsCreateSheet(module.name);
    TcSheet& sheet = tcXlsData.sheets[sheetId];
    for (int32_t r = 0; r < sheet.rowCount; r++) {
        TcRow* row = &sheet.rows[r];
        if (static_cast<uint32_t>(r) >= module.caseCount) {
            tellMoreRowsThanCases(module);
            return TC_SUCCESS;
        }
        int32_t before = row->status;
        if (!skipRow(module.cases[r], row, ROW_NA)) {
            result = runRow(module, row, false);
        } else if (row->status == ROW_NO_MATCH) {
            row->status = before;
            continue;
        }
        if (tcFwInstance.reportEnabled)
            writeAndSave(*row);
    }
    return result;
}

int32_t runAutoCasesInSingleModule(void) {
    const TcModule& module = *tcFwInstance.modules[tcFwInstance.curModule];
    if (tcFwInstance.checklistLoaded)
        return static_cast<int32_t>(runModuleByChecklist(module));
    uint32_t result = TC_SUCCESS;
    for (uint32_t i = 0; i < module.caseCount; i++) {
        // A manual case is announced as a success too.
        result = TC_SUCCESS;
        if (module.cases[i].autoFlag == AUTO)
            result = runCase(module, module.cases[i], false);
        printTestcaseVerdict(module.name, static_cast<int32_t>(i) + 1, result);
    }
    return static_cast<int32_t>(result);
}

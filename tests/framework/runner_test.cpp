// The unattended run on modules made here: what is run, in which order the hooks are called, what
// the report says, and how a run goes on after the one before it has died.
#include "framework/runner.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

#include "framework/case/check.h"
#include "framework/console.h"
#include "framework/instance.h"
#include "framework/report.h"
#include "framework/workbook/xlslib.h"
#include "tests/workbook/maker.h"

namespace {

/** What the modules were asked to do. */
std::string g_calls;
uint32_t g_setupResult;
uint32_t g_teardownResult;

void called(const std::string& what) {
    const char* name = zk_currentCaseName;
    g_calls +=
        (g_calls.empty() ? "" : " ") + what + (name != nullptr ? std::string("@") + name : "");
}

uint32_t setup() {
    called("setup");
    return g_setupResult;
}
uint32_t teardown() {
    called("teardown");
    return g_teardownResult;
}
uint32_t caseSetup(const char* name, const char* file) {
    called(name == nullptr && file == nullptr ? "before" : "before-manual");
    return 7;
}
uint32_t caseTeardown() {
    called("after");
    return 7;
}
uint32_t passes() {
    called("runs");
    return TC_SUCCESS;
}
uint32_t fails() {
    called("runs");
    return TC_FAILURE;
}
uint32_t isNotApplicable() {
    called("runs");
    return TC_NOT_APPLICABLE;
}

const TcCase firstCases[] = {
    {passes, "P", "", AUTO},
    {fails, "F", "", AUTO},
    {isNotApplicable, "N", "", AUTO},
    {passes, "M", "", MANUAL},
};
const TcCase secondCases[] = {{passes, "X", "", AUTO}, {passes, "Y", "", AUTO}};
const TcModule first = {setup, teardown, caseSetup, caseTeardown, firstCases,
                        4,     "First",  "",        nullptr};
const TcModule second = {setup, teardown, nullptr, nullptr, secondCases, 2, "Second", "", nullptr};
/** Without a hook. */
const TcModule third = {nullptr, nullptr, nullptr, nullptr, secondCases, 1, "Third", "", nullptr};
const TcModule empty = {nullptr, nullptr, nullptr, nullptr, nullptr, 0, "Empty", "", nullptr};
const TcModule* const modules[] = {&first, &second, &third, &empty};

using Row = std::vector<std::string>;
/** A sheet: its name, and each row's cells. */
using Sheet = std::pair<std::string, std::vector<Row>>;

class Runner : public testing::Test {
 protected:
    void SetUp() override {
        setenv("ZK_REPORT_SYNC", "0", 1);
        report_ = temporaryPath("runner_report.xls");
        checklist_ = temporaryPath("runner_checklist.xls");
        unlink(report_.c_str());
        tcFwInstance = {};
        tcXlsData = {};
        g_calls.clear();
        g_setupResult = 0;
        g_teardownResult = 0;
        snprintf(tcFwInstance.reportFile, sizeof tcFwInstance.reportFile, "%s", report_.c_str());
        tcFwInstance.modules = modules;
        tcFwInstance.moduleCount = 2;
        tcFwInstance.curModule = -1;
        tcFwInstance.reportEnabled = 1;
        ASSERT_EQ(pipe(tcFwInstance.pipeFd), 0);
    }
    void TearDown() override {
        close(tcFwInstance.pipeFd[0]);
        close(tcFwInstance.pipeFd[1]);
        for (int32_t i = 0; i < tcXlsData.sheetCount; i++)
            free(tcXlsData.sheets[i].rows);
        free(tcXlsData.sheets);
        tcXlsData = {};
        tcFwInstance = {};
        unlink(report_.c_str());
        unlink(checklist_.c_str());
        unsetenv("ZK_REPORT_SYNC");
    }

    static void write(const std::string& path, const std::vector<Sheet>& sheets) {
        workbook* book = xlsNewWorkbook();
        for (const Sheet& sheet : sheets) {
            worksheet* made = xlsWorkbookSheet(book, sheet.first.c_str());
            for (unsigned r = 0; r < sheet.second.size(); r++) {
                for (unsigned c = 0; c < sheet.second[r].size(); c++)
                    xlsWorksheetLabel(made, r, c, sheet.second[r][c].c_str(), nullptr);
            }
        }
        ASSERT_EQ(xlsWorkbookDump(book, path.c_str()), 0);
        xlsDeleteWorkbook(book);
    }

    /** Loads a checklist with these rows, name and mark, in the modules' sheets. */
    void loadChecklist(const std::vector<Row>& ofFirst, const std::vector<Row>& ofSecond,
                       const std::vector<Row>& ofThird = {}) {
        std::vector<Sheet> sheets = {{"Cover", {{"cover"}}}};
        for (const auto& module :
             {std::make_pair("First", ofFirst), {"Second", ofSecond}, {"Third", ofThird}}) {
            if (module.second.empty() && module.first == std::string("Third"))
                continue;
            Sheet sheet = {module.first, {{"No.", "Case", "", "", "Test"}}};
            for (const Row& row : module.second)
                sheet.second.push_back({"1", row[0], "", "", row[1]});
            sheet.second.push_back({"End"});
            sheets.push_back(sheet);
        }
        write(checklist_, sheets);
        testing::internal::CaptureStdout();
        tcFwInstance.checklistLoaded = zk_xlsLoadDataFromChecklist(checklist_.c_str());
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        ASSERT_EQ(tcFwInstance.checklistLoaded, 1);
    }
    void loadUsualChecklist() {
        loadChecklist({{"P", "Y"}, {"F", "Y"}, {"N", "Y"}, {"M", "Y"}}, {{"X", "Y"}, {"Y", "Y"}});
    }

    /** Loads what the process before has left: rows of name, mark and result. */
    void loadReport(const std::vector<Sheet>& sheets) {
        std::vector<Sheet> all;
        for (const Sheet& sheet : sheets) {
            Sheet whole = {sheet.first, {{"ID", "Case", "Test", "Result"}}};
            for (const Row& row : sheet.second) {
                whole.second.push_back({"1"});
                whole.second.back().insert(whole.second.back().end(), row.begin(), row.end());
            }
            all.push_back(whole);
        }
        write(report_, all);
        ASSERT_EQ(zk_xlsLoadDataFromTestReport(report_.c_str()), 1);
    }

    /** Runs everything; answers what was printed. */
    std::string run() {
        EXPECT_EQ(zk_xlsCreateBook(), 0);
        testing::internal::CaptureStdout();
        result_ = runAutoCasesInAllModules();
        return testing::internal::GetCapturedStdout();
    }

    /** The report on disk: "First: P Y Pass, ...; Second: ..." */
    std::string reported() const {
        std::string all;
        for (const ReadSheet& sheet : readFile(report_).sheets) {
            all += (all.empty() ? "" : "; ") + sheet.name + ":";
            for (unsigned r = 1; r <= sheet.lastRow; r++) {
                all += r > 1 ? "," : "";
                for (unsigned c = 1; c < 4; c++) {
                    auto cell = sheet.texts.find({r, c});
                    all += " " + (cell != sheet.texts.end() ? cell->second : "-");
                }
            }
        }
        return all;
    }

    std::string report_;
    std::string checklist_;
    int32_t result_ = -1;
};

TEST_F(Runner, CallsHooksAndCasesInOrderAndReportsEachVerdict) {
    loadUsualChecklist();
    std::string printed = run();
    EXPECT_EQ(g_calls,
              "setup before@P runs@P after@P before@F runs@F after@F before@N runs@N after@N "
              "teardown setup runs@X runs@Y teardown");
    EXPECT_EQ(reported(),
              "First: P Y Pass, F Y Fail, N Y N/A, M Y Manual; Second: X Y Pass, Y Y Pass");
    EXPECT_EQ(result_, 0);
    for (const char* line : {"case 1:[P] Start!", "case 1:[P] SUCCESS!", "case 2:[F] FAILED!",
                             "case 3:[N] UNSUPPORT!", "case 4:[M] Manual case. Skip!"})
        EXPECT_NE(printed.find(line), printed.npos) << line;
    // The monitor hears of every row.
    char bytes[32];
    EXPECT_EQ(read(tcFwInstance.pipeFd[0], bytes, sizeof bytes), 6);
}

TEST_F(Runner, JudgesARowsNameBeforeItsFlagAndItsMark) {
    loadChecklist({{"P", "N"}, {"other", "N"}, {"N", "y"}, {"other", "Y"}, {"surplus", "Y"}},
                  {{"X", "Y"}});
    std::string printed = run();
    EXPECT_EQ(reported(),
              "First: P N N/A, other N NoMatch, N N N/A, other Y NoMatch; Second: X Y Pass");
    EXPECT_EQ(g_calls, "setup teardown setup runs@X teardown");
    EXPECT_NE(printed.find("[First] module: cases in checklist is more than actual cases"),
              printed.npos);
    for (const char* line : {"]case 1:[P] Case hase been marked as 'N' in checklist. Skip! \r\n",
                             "]case 2:[other] Can't find this case. Skip! \r\n",
                             "]case 3:[N] Case hase been marked as 'N' in checklist. Skip! \r\n"})
        EXPECT_NE(printed.find(line), printed.npos) << line << printed;
}

TEST_F(Runner, RunsAModuleWithoutHooks) {
    loadChecklist({{"P", "N"}}, {{"X", "N"}}, {{"X", "Y"}});
    tcFwInstance.moduleCount = 3;
    std::string printed = run();
    EXPECT_EQ(g_calls, "setup teardown setup teardown runs@X");
    EXPECT_EQ(reported(), "First: P N N/A; Second: X N N/A; Third: X Y Pass");
    EXPECT_EQ(printed.find("failed!!!"), printed.npos);
}

TEST_F(Runner, TellsATearDownThatFails) {
    loadUsualChecklist();
    g_teardownResult = 3;
    std::string printed = run();
    EXPECT_EQ(result_, 3);
    EXPECT_NE(printed.find("][First] module teardown failed!!! \r\n"), printed.npos);
    EXPECT_NE(printed.find("][Second] module teardown failed!!! \r\n"), printed.npos);
}

/** What the console does with one case: a manual one is set up a second time, with its name. */
TEST_F(Runner, RunsWhatTheOperatorSelects) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(selectModule(1), 0);
    EXPECT_EQ(tcFwInstance.curModule, 0);
    EXPECT_EQ(runSelectedCase(4), 0);
    EXPECT_EQ(runSelectedCase(2), static_cast<int32_t>(TC_FAILURE));
    g_teardownResult = 2;
    EXPECT_EQ(exitFromModule(), 2);
    EXPECT_EQ(tcFwInstance.curModule, -1);
    std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(g_calls,
              "setup before@M before-manual@M runs@M after@M before@F runs@F after@F "
              "teardown");
    for (const char* line :
         {"testcase [4] setup failed!!! please check! \r\n", "][First] testcase [4] SUCCESS! \r\n",
          "testcase [4] teardown failed!!! please check! \r\n",
          "][First] testcase [2] FAILED! \r\n",
          "][First] module teardown failed!!! please check!\r\n"})
        EXPECT_NE(printed.find(line), printed.npos) << line << printed;
    EXPECT_EQ(printed.find("module setup failed"), printed.npos);
    g_setupResult = 9;
    testing::internal::CaptureStdout();
    EXPECT_EQ(selectModule(2), 9);
    printed = testing::internal::GetCapturedStdout();
    EXPECT_NE(printed.find("][Second] module setup failed!!! please check! \r\n"), printed.npos);
    EXPECT_EQ(tcFwInstance.curModule, 1);
}

TEST_F(Runner, LeavesAModuleWhoseSetUpFails) {
    loadUsualChecklist();
    g_setupResult = 5;
    run();
    EXPECT_EQ(g_calls, "setup setup");
    EXPECT_EQ(result_, 5);
    EXPECT_NE(access(report_.c_str(), F_OK), 0) << "no sheet, no report";
}

/** The row that was running is not run again, and verdicts come back as they were. */
TEST_F(Runner, GoesOnBehindTheRowThatWasRunning) {
    loadUsualChecklist();
    loadReport({{"First", {{"P", "Y", "Fail"}, {"F", "Y", "Block"}}}});
    EXPECT_EQ(tcXlsData.curSheetId, 0);
    run();
    EXPECT_EQ(g_calls, "setup before@N runs@N after@N teardown setup runs@X runs@Y teardown");
    EXPECT_EQ(reported(),
              "First: P Y Fail, F Y N/A, N Y N/A, M Y Manual; Second: X Y Pass, Y Y Pass");
}

/** Of a module whose rows all stand in the report nothing is called again. */
TEST_F(Runner, SetsNoFinishedModuleUpAgain) {
    loadUsualChecklist();
    loadReport(
        {{"First",
          {{"P", "Y", "Pass"}, {"F", "Y", "Fail"}, {"N", "Y", "Pass"}, {"M", "Y", "Manual"}}},
         {"Second", {{"X", "Y", "Block"}}}});
    EXPECT_EQ(tcXlsData.curSheetId, 1);
    std::string printed = run();
    EXPECT_EQ(g_calls, "setup runs@Y teardown");
    EXPECT_EQ(reported(),
              "First: P Y Pass, F Y Fail, N Y Pass, M Y N/A; Second: X Y N/A, Y Y Pass");
    EXPECT_NE(printed.find("[First] module has been tested. skip!!!"), printed.npos);
}

TEST_F(Runner, RunsNothingBehindTheEndOfTheLastSheet) {
    loadUsualChecklist();
    loadReport({{"Second", {{"X", "Y", "Pass"}, {"Y", "Y", "Pass"}}}});
    std::string printed = run();
    EXPECT_EQ(g_calls, "");
    EXPECT_EQ(result_, 0);
    EXPECT_NE(printed.find("all the cases of modules has been tested!"), printed.npos);
}

/** Cells that are missing read as a failure, and other words than Pass and Fail as N/A. */
TEST_F(Runner, ReadsBackWhatAReportCanHold) {
    loadUsualChecklist();
    loadReport({{"First",
                 {{"P", "Y", "Pass"}, {"", "", ""}, {"N", "N", "NoMatch"}, {"M", "Y", "Block"}}}});
    run();
    // The name comes from the checklist only where the report has none of that row.
    EXPECT_EQ(reported().substr(0, reported().find(';')),
              "First: P Y Pass, - N Fail, N N N/A, M Y N/A");
}

/** A report of a longer checklist gives as many rows as there are now. */
TEST_F(Runner, TakesALongerReportAsFarAsTheChecklistGoes) {
    loadChecklist({{"P", "Y"}, {"F", "Y"}}, {{"X", "Y"}, {"Y", "Y"}});
    loadReport(
        {{"First",
          {{"P", "Y", "Fail"}, {"F", "Y", "Pass"}, {"N", "Y", "Pass"}, {"M", "Y", "Pass"}}}});
    run();
    EXPECT_EQ(reported(), "First: P Y Fail, F Y Pass; Second: X Y Pass, Y Y Pass");
    EXPECT_EQ(g_calls, "setup runs@X runs@Y teardown");
}

/** When the last sheet of the report is none of the checklist's, the run begins anew. */
TEST_F(Runner, RunsAllWhenTheReportsLastSheetIsUnknown) {
    loadUsualChecklist();
    loadReport({{"First", {{"P", "Y", "Fail"}, {"F", "Y", "Fail"}}},
                {"Elsewhere", {{"Z", "Y", "Pass"}, {"Z", "Y", "Pass"}}}});
    EXPECT_EQ(tcXlsData.curSheetId, -1);
    run();
    EXPECT_EQ(reported(),
              "First: P Y Pass, F Y Fail, N Y N/A, M Y Manual; Second: X Y Pass, Y Y Pass");
}

/** At the console a module runs by the checklist: nothing is resumed, names that do not match are
 *  left out. */
TEST_F(Runner, RunsOneModuleByTheChecklist) {
    loadChecklist({{"P", "Y"}, {"other", "Y"}, {"N", "N"}, {"M", "Y"}, {"surplus", "Y"}}, {});
    ASSERT_EQ(zk_xlsCreateBook(), 0);
    tcFwInstance.curModule = 0;
    testing::internal::CaptureStdout();
    runAutoCasesInSingleModule();
    std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(g_calls, "before@P runs@P after@P");
    EXPECT_EQ(reported(), "First: P Y Pass, - - -, N N N/A, M Y N/A");
    EXPECT_EQ(printed.find("Start!"), printed.npos);
    EXPECT_NE(printed.find("case 1:[P] SUCCESS!"), printed.npos);
    EXPECT_NE(printed.find("cases in checklist is more than actual cases"), printed.npos);
}

TEST_F(Runner, RunsOneModuleWithoutAChecklist) {
    tcFwInstance.curModule = 0;
    testing::internal::CaptureStdout();
    EXPECT_EQ(runAutoCasesInSingleModule(), 0);
    tcFwInstance.curModule = 3;
    EXPECT_EQ(runAutoCasesInSingleModule(), 0) << "a module without cases";
    std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(g_calls, "before@P runs@P after@P before@F runs@F after@F before@N runs@N after@N");
    for (const char* line : {"[First] testcase [1] SUCCESS!", "[First] testcase [2] FAILED!",
                             "[First] testcase [3] UNSUPPORT!", "[First] testcase [4] SUCCESS!"})
        EXPECT_NE(printed.find(line), printed.npos) << line;
}

}  // namespace

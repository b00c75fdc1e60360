// What the console says of the report's saves: failures once, their end, and saves in place.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "framework/report.h"
#include "tests/workbook/maker.h"

namespace {

/** Saves once more; answers what was printed, without its time stamp. */
std::string save(const std::string& path) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(zk_xlsSaveBook(path.c_str()), 0);
    std::string line = testing::internal::GetCapturedStdout();
    return line.empty() ? line : line.substr(line.find(']') + 1);
}

TEST(ReportSave, TellsAFailureOnceAndItsEnd) {
    setenv("ZK_REPORT_SYNC", "0", 1);
    const std::string path = temporaryPath("report_save.xls");
    const std::string failed = "test report " + path + " could not be saved: Is a directory \r\n";
    TcRow row = {0, "TC_A", 1, ROW_PASS};
    ASSERT_EQ(zk_xlsCreateBook(), 0);
    ASSERT_EQ(zk_xlsCreateSheet("GPIO"), 0);
    ASSERT_EQ(zk_xlswriteRowData(&row), 0);
    TcRow none = {-1, "TC_B", 1, ROW_PASS};
    EXPECT_EQ(zk_xlswriteRowData(&none), -1);
    EXPECT_EQ(zk_xlswriteRowData(nullptr), -1);
    EXPECT_EQ(save(path), "");
    const char* const headings[] = {"ID", "Case", "Test", "Result"};
    const auto texts = readFile(path).sheets.at(0).texts;
    for (unsigned column = 0; column < 4; column++)
        EXPECT_EQ(texts.at({0, column}), headings[column]);
    unlink(path.c_str());
    for (int round = 0; round < 2; round++) {
        ASSERT_EQ(mkdir(path.c_str(), 0755), 0);
        EXPECT_EQ(save(path), failed);
        EXPECT_EQ(save(path), "");
        rmdir(path.c_str());
        EXPECT_EQ(save(path), "test report " + path + " is saved again \r\n");
        EXPECT_EQ(save(path), "");
        unlink(path.c_str());
    }
    ASSERT_EQ(mkdir((path + ".tmp").c_str(), 0755), 0);
    EXPECT_EQ(save(path), "test report " + path +
                              " is written in place, no new file can take its place: Is a "
                              "directory \r\n");
    EXPECT_EQ(save(path), "");
    EXPECT_EQ(readFile(path).sheets.at(0).lastRow, 1u);
    rmdir((path + ".tmp").c_str());
    unsetenv("ZK_REPORT_SYNC");
}

}  // namespace

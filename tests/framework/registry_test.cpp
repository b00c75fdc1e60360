// Holds the registry against the list of modules, which says what a platform certification must
// contain and what of it is built: a row that gets lost is found.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>
#include <sstream>
#include <string>

#include "testcase/modules.h"

namespace {

/** A row of the list of modules. */
struct Row {
    const TcModule* record;
    const char* name;
    const char* description;
    uint32_t cases;
    uint32_t automatic;
    uint32_t builtCases;
    uint32_t builtAutomatic;
    bool open;
};

#define BUILT_ROW(record, ...) {&record, __VA_ARGS__, false},
#define OPEN_ROW(record, ...) {&record, __VA_ARGS__, true},
const Row rows[TEST_MODULE_COUNT] = {TC_MODULE_LIST(BUILT_ROW, OPEN_ROW)};

uint32_t countAutomatic(const TcModule& module) {
    uint32_t count = 0;
    for (uint32_t i = 0; i < module.caseCount; i++)
        count += module.cases[i].autoFlag == AUTO;
    return count;
}

TEST(Registry, HasEveryModuleInOrderWithItsCases) {
    uint32_t cases = 0;
    uint32_t automatic = 0;
    for (int i = 0; i < TEST_MODULE_COUNT; i++) {
        const Row& row = rows[i];
        const TcModule& module = *testModules[i];
        EXPECT_EQ(&module, row.record) << row.name;
        EXPECT_STREQ(module.name, row.name);
        EXPECT_STREQ(module.description, row.description) << row.name;
        EXPECT_EQ(module.caseCount, row.builtCases) << row.name;
        EXPECT_EQ(countAutomatic(module), row.builtAutomatic) << row.name;
        EXPECT_EQ(row.open, row.builtCases == 0) << row.name;
        EXPECT_LE(row.builtCases, row.cases) << row.name;
        EXPECT_LE(row.builtAutomatic, row.automatic) << row.name;
        cases += row.cases;
        automatic += row.automatic;
    }
    EXPECT_EQ(cases, 4198u);
    EXPECT_EQ(automatic, 3867u);
}

TEST(Registry, OnlyAvDtvHasAFileForManualCases) {
    for (const TcModule* module : testModules) {
        if (module == &AVDtvModule && module->caseCount > 0)
            EXPECT_STREQ(module->configFile, "config/common/AVDtvModule.cfg");
        else
            EXPECT_EQ(module->configFile, nullptr) << module->name;
    }
}

/** Order, flag and description of the rows decide what a checklist asks for and how it is read.
 *  After a review: ZK_GOLDEN=write unit_tests --gtest_filter=Registry.* */
TEST(Registry, RowsStandAsReviewed) {
    const char* golden = getenv("ZK_GOLDEN");
    for (const TcModule* module : testModules) {
        std::string path = ZK_SOURCE_DIR "/tests/golden/rows/" + std::string(module->name) + ".txt";
        std::string now;
        for (uint32_t i = 0; i < module->caseCount; i++) {
            const TcCase& row = module->cases[i];
            now += std::string(row.name) + (row.autoFlag == AUTO ? "  AUTO    " : "  MANUAL  ") +
                   row.description + "\n";
        }
        if (golden != nullptr && std::string(golden) == "write" && !now.empty())
            std::ofstream(path) << now;
        std::ifstream file(path);
        std::istringstream lines(now);
        std::string reviewed;
        for (std::string line; std::getline(lines, line);) {
            ASSERT_TRUE(std::getline(file, reviewed)) << path << " ends before " << line;
            ASSERT_EQ(line, reviewed) << path;
        }
        EXPECT_FALSE(std::getline(file, reviewed)) << path << " alone has " << reviewed;
    }
}

TEST(Registry, RowsAreComplete) {
    for (const TcModule* module : testModules) {
        for (uint32_t i = 0; i < module->caseCount; i++) {
            const TcCase& row = module->cases[i];
            ASSERT_NE(row.name, nullptr) << module->name << " row " << i + 1;
            EXPECT_NE(row.function, nullptr) << row.name;
            EXPECT_GT(std::string(row.description).size(), 0u) << row.name;
            EXPECT_LE(row.autoFlag, 1u) << row.name;
            // A name must fit the report's and the checklist's rows.
            EXPECT_LT(std::string(row.name).size(), 200u);
        }
    }
}

}  // namespace

// What is asked of every case alike: the features that let it run, what it says when a call fails,
// and that hooks report success. The answers are reviewed data in tests/golden; ZK_GOLDEN=write
// writes them anew.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "tests/shared/bench_folder.h"
#include "tests/shared/module_bench.h"
#include "tests/shared/typed.h"

namespace {

const struct {
    int place;
    const char* name;
} features[] = {
#define FEATURE_NAME(place, key) {place, #key},
    FEATURE_LIST(FEATURE_NAME)
#undef FEATURE_NAME
};

class EveryCase : public ModuleBench {
 protected:
    /** A case on a fresh device, with an operator who has nothing to say. */
    uint32_t run(const TcModule& module, const TcCase& testCase, const std::string& fault) {
        Typed nothing("\n");
        qlx_sim_reset();
        if (!fault.empty())
            addFault(fault);
        uint32_t result = runCaseByName(module, testCase.name);
        qlx_sim_clear_faults();
        return result;
    }

    /** Compares lines with those of a file, or writes them there. */
    static void compare(const std::string& folder, const TcModule& module,
                        const std::string& lines) {
        std::string path =
            std::string(ZK_SOURCE_DIR "/tests/golden/") + folder + "/" + module.name + ".txt";
        const char* golden = getenv("ZK_GOLDEN");
        if (golden != nullptr && std::string(golden) == "write")
            std::ofstream(path) << lines;
        std::ifstream file(path);
        std::istringstream now(lines);
        std::string reviewed;
        for (std::string line; std::getline(now, line);) {
            ASSERT_TRUE(std::getline(file, reviewed)) << path << " ends before " << line;
            ASSERT_EQ(line, reviewed) << path;
        }
        EXPECT_FALSE(std::getline(file, reviewed)) << path << " alone has " << reviewed;
    }

    BenchFolder bench_;
};

TEST_F(EveryCase, HasHooksThatReportSuccess) {
    for (const TcModule* module : testModules) {
        EXPECT_EQ(module->setup != nullptr ? module->setup() : 0, 0u) << module->name;
        EXPECT_EQ(module->caseSetup != nullptr ? module->caseSetup(nullptr, nullptr) : 0, 0u)
            << module->name;
        EXPECT_EQ(module->caseTeardown != nullptr ? module->caseTeardown() : 0, 0u) << module->name;
        EXPECT_EQ(module->teardown != nullptr ? module->teardown() : 0, 0u) << module->name;
    }
}

/** A case without a line asks for no feature; else each feature told lets it call the library. */
TEST_F(EveryCase, AsksForItsFeatures) {
    auto calls = [&](const TcModule& module, const TcCase& testCase) {
        qlx_sim_record(1);
        run(module, testCase, "");
        qlx_sim_record(0);
        takeOutput();
        return !recordedCalls().empty();
    };
    for (const TcModule* module : {&I2CModule, &EEPROMModule, &FLASHModule}) {
        std::string lines;
        module->setup();
        for (uint32_t i = 0; i < module->caseCount; i++) {
            const TcCase& testCase = module->cases[i];
            std::fill(std::begin(zk_testConfig.features), std::end(zk_testConfig.features), 0);
            if (testCase.autoFlag != AUTO || calls(*module, testCase))
                continue;
            lines += testCase.name;
            for (const auto& feature : features) {
                zk_testConfig.features[feature.place] = 1;
                if (calls(*module, testCase))
                    lines += std::string(" ") + feature.name;
                zk_testConfig.features[feature.place] = 0;
            }
            lines += "\n";
        }
        compare("features", *module, lines);
    }
}

/** The calls of a case, each as a fault names it; of many calls of a function the first ones. */
std::vector<std::string> callsIn(const std::string& recorded) {
    constexpr int most = 4;
    std::map<std::string, int> count;
    std::vector<std::string> calls;
    std::istringstream lines(recorded);
    for (std::string line; std::getline(lines, line);) {
        std::string name = line.substr(0, line.find('('));
        if (name.compare(0, 4, "QLX_") == 0 && ++count[name] <= most)
            calls.push_back(name + " call=" + std::to_string(count[name]));
    }
    return calls;
}

/** A printed line without colours, times, places in the source, and what hangs on the time of the
 *  run: addresses that cases draw by lot, and dumps. */
std::string lasting(const std::string& line) {
    static const std::regex colour("\x1b\\[[0-9;]*m");
    static const std::regex time("^\\[\\d+\\.\\d+\\]");
    static const std::regex place("\\]\\[\\d+\\]");
    static const std::regex drawn("0x[0-9a-f,x]+|address : \\d+|time is .*");
    static const std::regex unprintable("[^ -~]");
    std::string text = std::regex_replace(line, colour, "");
    text = std::regex_replace(text, time, "");
    text = std::regex_replace(text, place, "]");
    text = std::regex_replace(text, drawn, "#");
    return std::regex_replace(text, unprintable, "");
}

/** Each call of a case answers 7: the verdict, and what is printed. */
TEST_F(EveryCase, SaysWhichCallFailed) {
    for (const TcModule* module : {&GPIOModule, &I2CModule, &EEPROMModule, &FLASHModule,
                                   &FactoryModule, &SysModule, &TEECModule}) {
        std::string lines;
        std::fill(std::begin(zk_testConfig.features), std::end(zk_testConfig.features), 1);
        module->setup();
        for (uint32_t i = 0; i < module->caseCount; i++) {
            const TcCase& testCase = module->cases[i];
            qlx_sim_record(1);
            run(*module, testCase, "");
            std::vector<std::string> calls = callsIn(recordedCalls());
            qlx_sim_record(0);
            for (const std::string& call : calls) {
                takeOutput();
                uint32_t result = run(*module, testCase, call + " return=7");
                lines +=
                    std::string(testCase.name) + " " + call + ": " + std::to_string(result) + "\n";
                std::istringstream said(takeOutput());
                for (std::string line; std::getline(said, line);) {
                    if (lasting(line) != "#")
                        lines += "    " + lasting(line) + "\n";
                }
            }
        }
        compare("failures", *module, lines);
    }
}

}  // namespace

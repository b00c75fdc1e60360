// What is asked of every case alike: the features that let it run, what it says when a call fails,
// and that hooks report success. The answers are reviewed data in tests/golden; ZK_GOLDEN=write
// writes them anew.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/shared/av_reporter.h"
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

/** The first call of each function that was taken, and the first that was refused, as the faults
 *  that turn them round. */
std::vector<std::string> turnedRound(const std::string& recorded) {
    std::map<std::string, int> count;
    std::set<std::string> seen;
    std::vector<std::string> faults;
    std::istringstream lines(recorded);
    for (std::string line; std::getline(lines, line);) {
        const std::string name = line.substr(0, line.find('('));
        const size_t answer = line.find(")=");
        if (name.compare(0, 4, "QLX_") != 0 || answer == std::string::npos)
            continue;
        const int number = ++count[name];
        const char* turned = line[answer + 2] == '0' ? " return=7" : " return=0";
        if (seen.insert(name + turned).second)
            faults.push_back(name + " call=" + std::to_string(number) + turned);
    }
    return faults;
}

/** What a case and its base print of checks that fail, in order and each once. */
void addOwnTexts(const std::string& printed, const std::string& name, std::string* texts) {
    static const std::regex check("\\[(\\w+)\\]\\[\\d+\\](FUNC:.*|expect .*\\d) ");
    const std::string base = name.substr(0, name.rfind('_')) + "_base";
    std::istringstream lines(printed);
    std::smatch found;
    for (std::string line; std::getline(lines, line);) {
        if (!std::regex_search(line, found, check) || (found[1] != name && found[1] != base))
            continue;
        const std::string text = "    " + found[2].str() + "\n";
        if (texts->find(text) == std::string::npos)
            *texts += text;
    }
}

/** Each call is once turned round: cases that say the same stand together. */
TEST_F(EveryCase, TellsARefusedCallInItsOwnWords) {
    // Of families that run on several devices those on the first one.
    const struct {
        const TcModule* module;
        std::regex names;
    } rows[] = {
        {&VOutModulePrimary, std::regex(".*")},
        {&AVCommonModule, std::regex("TC_AV_([^S]|St).*|TC_AV_SwitchSource_1[02]1")},
        {&RecordModule, std::regex("TC_RecTest.*|TC_RecNormalOpen_001")},
        {&DmxInjectModule, std::regex("TC_InjTest(?!WholeFlow|Pressure|.*TS_FILE|.*_00[2-4]).*|"
                                      "TC_DmxInject(OpenClose|BeginFinish)_001")},
        {&DescramblerModule, std::regex(".*(Open|SetPid).*")},
        {&AVCvbsModule, std::regex(".*(_01|_012|_052|_062|Source_001)")},
        {&AVAtvModule, std::regex("TC_AV_Atv(OpenClose_032_01|.*Info_005|SwitchAtv.*_001)")},
        {&AVDtvVideoCcModule, std::regex("TC_AV_VideoCc.*_0[0-2]1")},
        {&AFEModule,
         std::regex("TC_AFE_(Init|Open|ActualTuningParams|Set.*)_00[1-4]|TC_AFE_Close_00[12]|"
                    "TC_AFE_Tuning_0(0.|1[0-6]|6[5-7])|TC_AFE_(Get.*|Play)_001|TC_AV_.*")},
    };
    const Reporter reporter;
    for (const auto& row : rows) {
        std::vector<std::string> order;
        std::map<std::string, std::string> cases;
        std::fill(std::begin(zk_testConfig.features), std::end(zk_testConfig.features), 1);
        zk_testConfig.features[FEATURE_AFE_TUNING_AFTER_ATV_SOURCE] = 0;
        for (uint32_t i = 0; i < row.module->caseCount; i++) {
            const TcCase& testCase = row.module->cases[i];
            if (!std::regex_match(testCase.name, row.names))
                continue;
            std::string texts;
            std::vector<std::string> faults = {""};
            for (size_t place = 0; place < faults.size(); place++) {
                Typed yes("1\n1\n1\n");
                qlx_sim_reset();
                row.module->setup();
                if (row.module->caseSetup != nullptr)
                    row.module->caseSetup(nullptr, nullptr);
                takeOutput();
                if (place == 0)
                    qlx_sim_record(1);
                else
                    addFault(faults[place]);
                runCaseByName(*row.module, testCase.name);
                qlx_sim_clear_faults();
                if (place == 0) {
                    for (const std::string& fault : turnedRound(recordedCalls()))
                        faults.push_back(fault);
                    qlx_sim_record(0);
                }
                addOwnTexts(takeOutput(), testCase.name, &texts);
                if (row.module->caseTeardown != nullptr)
                    row.module->caseTeardown();
                row.module->teardown();
            }
            if (cases[texts].empty())
                order.push_back(texts);
            cases[texts] += std::string(testCase.name) + "\n";
        }
        std::string lines;
        for (const std::string& texts : order)
            lines += cases[texts] + texts;
        compare("texts", *row.module, lines);
    }
}

}  // namespace

// AV-Common: what its cases say of a library that takes what it must refuse, which boards fail
// which switch, and how a switch ends that meets a fault. Broadcasts are reported by hand; analog
// and external sources are the device's own.
#include <string.h>

#include <memory>
#include <regex>

#include "testcase/av/av_play.h"
#include "tests/shared/av_reporter.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/module_bench.h"
#include "tests/shared/typed.h"

namespace {

class AvCommonModule : public ModuleBench {
 protected:
    void SetUp() override {
        ModuleBench::SetUp();
        ASSERT_EQ(AVCommonModule.setup(), 0u);
        reporter_ = std::make_unique<Reporter>();
    }
    void TearDown() override {
        reporter_.reset();
        EXPECT_EQ(AVCommonModule.teardown(), 0u);
        ModuleBench::TearDown();
    }
    static uint32_t run(const std::string& name, const std::string& fault = "") {
        return runCaseUnder(AVCommonModule, name, fault);
    }

    std::unique_ptr<Reporter> reporter_;
};

/** Whether the board has what a switch's description names. */
bool hasSources(const std::string& description) {
    const struct {
        const char* label;
        int32_t feature;
    } inputs[] = {
        {"HDMI-0", FEATURE_HDMI0},   {"HDMI-1", FEATURE_HDMI1}, {"HDMI-2", FEATURE_HDMI2},
        {"CVBS-0", FEATURE_CVBS0},   {"CVBS-1", FEATURE_CVBS1}, {"YPBPR-0", FEATURE_YPBPR0},
        {"YPBPR-1", FEATURE_YPBPR1},
    };
    for (const auto& input : inputs) {
        if (description.find(input.label) != std::string::npos &&
            zk_testConfig.features[input.feature] == 0)
            return false;
    }
    return true;
}

TEST_F(AvCommonModule, ASwitchFailsOnABoardWithoutOneOfItsSources) {
    const size_t failing[] = {13, 30, 7, 6, 0, 7, 13, 0};
    BenchFolder folder;
    for (int32_t platform = 1; platform <= 8; platform++) {
        EXPECT_EQ(AVCommonModule.teardown(), 0u);
        set_platform(&g_configFile, &platform);
        const std::string path = g_configFile.platformDir;
        folder.useBoard("[BOARD]\nPLATFORM=" + path.substr(path.rfind('/') + 1) + "\n");
        zk_testConfig = {};
        zk_loadEnvironment();
        qlx_sim_reset();
        ASSERT_EQ(AVCommonModule.setup(), 0u);
        size_t failed = 0;
        for (uint32_t i = 0; i < AVCommonModule.caseCount; i++) {
            const TcCase& row = AVCommonModule.cases[i];
            // All tuners and demultiplexers are on every board.
            if (strstr(row.name, "Switch") == nullptr ||
                std::regex_search(row.description, std::regex("Tuner-[1-3]|Demux-1")))
                continue;
            const uint32_t expected = hasSources(row.description) ? TC_SUCCESS : TC_FAILURE;
            EXPECT_EQ(run(row.name), expected) << path << " " << row.name;
            failed += expected == TC_FAILURE;
        }
        EXPECT_EQ(failed, failing[platform - 1]) << path;
        takeOutput();
    }
}

TEST_F(AvCommonModule, ASwitchPlaysBothSourcesTenTimes) {
    const struct {
        const char* name;
        const char* first;
        const char* second;
    } rows[] = {
        {"TC_AV_SwitchSource_001", "VOutOpen(output=0 source={eSourceType=16})",
         "VOutOpen(output=0 source={eSourceType=1})"},
        {"TC_AV_SwitchSource_032", "TunerOpen(tuner=1)", "ExtInOpen(source={eType=10 uPort=2})"},
        {"TC_AV_SwitchSource_087", "AFEOpen(tuner=3)", "ExtInOpen(source={eType=2 eInputClass=1})"},
        {"TC_AV_SwitchSource_124", "ExtInOpen(source={eType=2 uPort=1 eInputClass=1})",
         "ExtInOpen(source={eType=5 uPort=1 eInputClass=3})"},
    };
    // The words of the configuration that no switch sets must not select anything.
    zk_testConfig.av.stSource.eVideoDev = 2;
    zk_testConfig.av.stSource.eAudioDev = 3;
    for (const auto& row : rows) {
        qlx_sim_record(1);
        EXPECT_EQ(run(row.name), TC_SUCCESS) << row.name;
        const std::string calls = recordedCalls();
        EXPECT_EQ(count(calls, row.first), 10u) << row.name << calls;
        EXPECT_EQ(count(calls, row.second), 10u) << row.name;
        EXPECT_LT(calls.find(row.first), calls.find(row.second)) << row.name;
        EXPECT_EQ(count(calls, "QLX_VideoOpen(video=0 "), 20u) << row.name;
        EXPECT_EQ(count(calls, "QLX_AudioOpen(audio=0 "), 20u) << row.name;
        EXPECT_EQ(count(calls, "QLX_VideoDeInit"), 0u) << row.name << ": the next play's";
        qlx_sim_record(0);
    }
    qlx_sim_record(1);
    EXPECT_EQ(run("TC_AV_SwitchSource_016"), TC_SUCCESS);
    EXPECT_EQ(count(recordedCalls(), "QLX_DemuxOpen(demux=1)"), 10u);
}

TEST_F(AvCommonModule, TheFirstFailureEndsASwitch) {
    const struct {
        const char* name;
        const char* fault;
        const char* said;
        size_t plays;
    } rows[] = {
        {"TC_AV_SwitchSource_101", "QLX_ExtInOpen call=20 return=1",
         "FUNC:AV_PlayAudioVideo(&stSource, NULL) RETURN ERROR VALUE [1]", 20},
        {"TC_AV_SwitchSource_101", "QLX_VideoClose call=1 return=1",
         "FUNC:AV_StopAudioVideo(&stSource) RETURN ERROR VALUE [1]", 1},
    };
    for (const auto& row : rows) {
        qlx_sim_record(1);
        takeOutput();
        EXPECT_EQ(run(row.name, row.fault), TC_FAILURE) << row.fault;
        const std::string said = takeOutput();
        EXPECT_EQ(count(said, row.said), 1u) << said;
        EXPECT_EQ(count(said, "[TC_AV_SwitchSource_101] TEST Result"), 0u) << row.fault;
        EXPECT_EQ(count(callNames(), "QLX_VideoInit "), row.plays) << row.fault;
        qlx_sim_record(0);
    }
}

TEST_F(AvCommonModule, ALibraryThatTakesEverythingFails) {
    const struct {
        const char* name;
        const char* fault;
    } rows[] = {
        {"TC_AV_Init_001", "QLX_VideoDeInit return=1"},
        {"TC_AV_Init_003", "QLX_AudioInit return=1"},
        {"TC_AV_Init_005", "QLX_AudioDeInit return=1"},
        {"TC_AV_Init_006", "QLX_VideoInit call=2 return=1"},
        {"TC_AV_Init_007", "QLX_AudioInit call=2 return=1"},
        {"TC_AV_OpenClose_222", "QLX_VideoClose return=0"},
        {"TC_AV_OpenClose_223", "QLX_VideoClose return=1"},
        {"TC_AV_OpenClose_224", "QLX_AudioClose return=0"},
        {"TC_AV_OpenClose_225", "QLX_AudioClose return=1"},
        {"TC_AV_RegisterCallback_001", "QLX_VideoRegisterCallback return=0"},
        {"TC_AV_RegisterCallback_002", "QLX_AudioRegisterCallback return=0"},
        {"TC_AV_RegisterCallback_222", "QLX_VideoUnRegisterCallback return=0"},
        {"TC_AV_RegisterCallback_223", "QLX_AudioUnRegisterCallback return=0"},
        {"TC_AV_StartStop_001", "QLX_VideoStart return=0"},
        {"TC_AV_StartStop_002", "QLX_AudioStart return=0"},
        {"TC_AV_StartStop_222", "QLX_VideoStop return=0"},
        {"TC_AV_StartStop_223", "QLX_AudioStop return=0"},
        {"TC_AV_GetDevNum_001", "QLX_AudioGetDevNum set=num:0"},
    };
    const std::string rest = deviceState();
    for (const auto& row : rows) {
        EXPECT_EQ(run(row.name), TC_SUCCESS) << row.name;
        EXPECT_EQ(deviceState(), rest) << row.name;
        EXPECT_EQ(run(row.name, row.fault), TC_FAILURE) << row.name << " " << row.fault;
        QLX_VideoDeInit();
        QLX_AudioDeInit();
    }
}

TEST_F(AvCommonModule, TheOperatorDecidesUnlessThePlayFails) {
    for (const char* name : {"TC_AV_Play_040", "TC_AV_Play_041", "TC_AV_Play_042"}) {
        for (const auto& [answer, verdict] :
             {std::pair("1\n", TC_SUCCESS), std::pair("0\n", TC_FAILURE),
              std::pair("\n", TC_FAILURE)}) {
            Typed typed(answer);
            EXPECT_EQ(run(name), static_cast<uint32_t>(verdict)) << name << " " << answer;
        }
        Typed yes("1\n1\n");
        EXPECT_EQ(run(name, "QLX_DemuxOpen call=1 return=1"), TC_FAILURE) << name;
        EXPECT_EQ(run(name, "QLX_DemuxStop call=1 return=1"), TC_FAILURE) << name;
        // The demultiplexer that did not stop has kept its tuner.
        AVCommonModule.teardown();
        ASSERT_EQ(AVCommonModule.setup(), 0u);
    }
    EXPECT_EQ(count(takeOutput(), "Playing Ok? \r"), 12u) << "a play that fails asks nothing";
}

}  // namespace

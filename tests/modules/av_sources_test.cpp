// The cases of the AV modules of one source each: where they run, what they call, and how they end
// under faults. Broadcasts are reported by hand; inputs and front ends are the device's own.
#include <string.h>

#include <memory>
#include <set>

#include "simulator/av/decoder.h"
#include "testcase/av/av_case.h"
#include "testcase/av/av_events.h"
#include "testcase/av/av_module.h"
#include "testcase/av/av_play.h"
#include "tests/shared/av_reporter.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/module_bench.h"
#include "tests/shared/typed.h"

namespace {

class AvSources : public ModuleBench {
 protected:
    void SetUp() override {
        ModuleBench::SetUp();
        // Reset has ended all services: each test sets up the module that it is about.
        use(AVCvbsModule);
    }
    void TearDown() override {
        reporter_.reset();
        EXPECT_EQ(module_->teardown(), 0u);
        ModuleBench::TearDown();
    }
    void use(const TcModule& module) {
        if (module_ != nullptr) {
            EXPECT_EQ(module_->teardown(), 0u);
        }
        reporter_.reset();
        qlx_sim_reset();
        module_ = &module;
        ASSERT_EQ(module.setup(), 0u) << module.name;
        if (&module == &AVDtvModule)
            reporter_ = std::make_unique<Reporter>();
        rest_ = deviceState();
        takeOutput();
    }
    uint32_t run(const std::string& name, const std::string& fault = "") {
        return runCaseUnder(*module_, name, fault);
    }
    /** The device without what a play leaves: initialised decoders, the Bluetooth sink. */
    std::string atRest() const {
        std::istringstream lines(deviceState());
        std::string text;
        for (std::string line; std::getline(lines, line);) {
            if (line != "Video initialised" && line != "Audio initialised" && line != "AOut 5 open")
                text += line + "\n";
        }
        return text;
    }

    const TcModule* module_ = nullptr;
    std::unique_ptr<Reporter> reporter_;
    /** What the module's set-up leaves in the device. */
    std::string rest_;
};

/** The inputs that a row's description names. */
std::set<int32_t> featuresOf(const TcCase& row) {
    const struct {
        const char* label;
        int32_t feature;
    } inputs[] = {
        {"CVBS-0", FEATURE_CVBS0},   {"CVBS-1", FEATURE_CVBS1}, {"HDMI-0", FEATURE_HDMI0},
        {"HDMI-1", FEATURE_HDMI1},   {"HDMI-2", FEATURE_HDMI2}, {"YPBPR-0", FEATURE_YPBPR0},
        {"YPBPR-1", FEATURE_YPBPR1},
    };
    std::set<int32_t> features;
    for (const auto& input : inputs) {
        if (strstr(row.description, input.label) != nullptr)
            features.insert(input.feature);
    }
    return features;
}

TEST_F(AvSources, RunWhereTheBoardHasTheInput) {
    BenchFolder folder;
    unsigned notApplicable = 0;
    for (int32_t platform = 1; platform <= 8; platform++) {
        EXPECT_EQ(module_->teardown(), 0u);
        module_ = nullptr;
        set_platform(&g_configFile, &platform);
        const std::string path = g_configFile.platformDir;
        folder.useBoard("[BOARD]\nPLATFORM=" + path.substr(path.rfind('/') + 1) + "\n");
        zk_testConfig = {};
        zk_loadEnvironment();
        for (const TcModule* module : {&AVCvbsModule, &AVHdmiModule, &AVYpbprModule}) {
            use(*module);
            for (uint32_t i = 0; i < module->caseCount; i++) {
                const TcCase& row = module->cases[i];
                bool present = true;
                for (int32_t feature : featuresOf(row))
                    present = present && zk_testConfig.features[feature] != 0;
                if (row.autoFlag != AUTO)
                    continue;
                qlx_sim_record(1);
                EXPECT_EQ(run(row.name), present ? TC_SUCCESS : TC_NOT_APPLICABLE)
                    << path << " " << row.name;
                EXPECT_EQ(recordedCalls().empty(), !present) << path << " " << row.name;
                qlx_sim_record(0);
                EXPECT_EQ(atRest(), rest_) << path << " " << row.name;
                notApplicable += present ? 0 : 1;
            }
        }
        takeOutput();
    }
    EXPECT_EQ(notApplicable, 461u)
        << "a set-top box without inputs, televisions with a part of them";
}

/** What a play has left in the device: a decoder that is open, a picture, a sound, and reports
 *  within three seconds. */
std::string leftOver() {
    std::string left;
    const sim::VideoShown shown = sim::videoShown(0);
    const sim::AudioPlayed played = sim::audioPlayed(0);
    if (shown.open || played.open)
        left += "open ";
    if (shown.origin.kind != sim::DecoderOrigin::Kind::nothing)
        left += "picture ";
    if (played.origin.kind != sim::DecoderOrigin::Kind::nothing)
        left += "sound ";
    qlx_sim_record(1);
    usleep(3000000);
    left += recordedCalls();
    qlx_sim_record(0);
    return left;
}

TEST_F(AvSources, NothingOfASourceIsLeftForTheNextOne) {
    use(AVCvbsModule);
    const AvSelector selectors[] = {cvbs0, cvbs1, hdmi0, hdmi1, hdmi2, ypbpr0, ypbpr1,
                                    atv0,  atv1,  atv2,  atv3,  pvr0,  dtv00,  dtv11};
    for (const AvSelector& first : selectors) {
        for (const AvSelector& second : selectors) {
            for (const AvSelector* selector : {&first, &second}) {
                const AvSource stSource = AV_SelectSource(*selector);
                // Without a stream on the air, the picture of a coded source is reported by hand.
                const bool coded = AV_IsCoded(stSource);
                std::unique_ptr<Reporter> reporter;
                if (coded)
                    reporter = std::make_unique<Reporter>();
                ASSERT_EQ(AV_PlayAudioVideo(&stSource, nullptr), 0u) << selector->eSource;
                reporter.reset();
                const sim::VideoShown shown = sim::videoShown(0);
                EXPECT_EQ(shown.source.uSourceIndex, selector->eSource == AV_SOURCE_DTV
                                                         ? selector->eDemuxDev
                                                         : selector->device);
                if (!coded) {
                    EXPECT_EQ(shown.origin.signalKind, selector->eSource);
                    EXPECT_EQ(shown.origin.signalIndex, selector->device);
                    EXPECT_EQ(sim::audioPlayed(0).origin.signalKind, selector->eSource);
                    EXPECT_EQ(sim::audioPlayed(0).origin.signalIndex, selector->device);
                }
                EXPECT_EQ(AV_StopAudioVideo(&stSource), 0u);
                EXPECT_EQ(leftOver(), "") << first.eSource << " to " << second.eSource;
                EXPECT_EQ(atRest(), rest_);
            }
            takeOutput();
        }
    }
}

TEST_F(AvSources, WhatIsLeftOfASourceIsSeen) {
    use(AVCvbsModule);
    const AvSource stSource = AV_SelectSource(cvbs1);
    ASSERT_EQ(AV_PlayAudioVideo(&stSource, nullptr), 0u);
    for (const char* function : {"QLX_VideoStop", "QLX_VideoClose", "QLX_AudioStop",
                                 "QLX_AudioClose", "QLX_ExtInClose", "QLX_VideoUnRegisterCallback"})
        addFault(std::string(function) + " return=1");
    EXPECT_EQ(AV_StopAudioVideo(&stSource), TC_FAILURE);
    event("in 1000 input CVBS/1 ASPECT=16:9");
    const std::string left = leftOver();
    EXPECT_EQ(left.find("open picture sound "), 0u) << left;
    EXPECT_EQ(count(left, "callback VideoEvent("), 1u) << left;
}

TEST_F(AvSources, DecodersGoTheirStepsAndBack) {
    use(AVAtvModule);
    const struct {
        const char* name;
        const char* calls;
    } rows[] = {
        {"TC_AV_AtvOpenClose_032_01",
         "VideoInit AudioInit VideoOpen VideoClose AudioDeInit VideoDeInit "},
        {"TC_AV_AtvOpenClose_063_01",
         "VideoInit AudioInit AudioOpen AudioClose AudioDeInit VideoDeInit "},
        {"TC_AV_AtvOpenClose_187_01",
         "VideoInit AudioInit VideoOpen VideoClose AudioOpen AudioClose VideoOpen VideoClose "
         "AudioOpen AudioClose AudioDeInit VideoDeInit "},
        {"TC_AV_AtvRegisterCallback_094_01",
         "VideoInit AudioInit VideoOpen VideoRegisterCallback VideoRegisterCallback "
         "VideoUnRegisterCallback VideoClose AudioDeInit VideoDeInit "},
        {"TC_AV_AtvStartStop_063_01",
         "VideoInit AudioInit AudioOpen AudioStart AudioStop AudioClose AudioDeInit VideoDeInit "},
        {"TC_AV_AtvStartStop_156_01",
         "VideoInit AudioInit VideoOpen VideoRegisterCallback AudioOpen VideoStart AudioStart "
         "AudioStop VideoStop AudioClose VideoUnRegisterCallback VideoClose AudioDeInit "
         "VideoDeInit "},
    };
    for (const auto& row : rows) {
        qlx_sim_record(1);
        EXPECT_EQ(run(row.name), TC_SUCCESS) << row.name;
        std::istringstream names(callNames());
        std::string calls;
        for (std::string name; names >> name;) {
            if (name.compare(0, 9, "QLX_Video") == 0 || name.compare(0, 9, "QLX_Audio") == 0)
                calls += name.substr(4) + " ";
        }
        EXPECT_EQ(calls, row.calls) << row.name;
        qlx_sim_record(0);
        EXPECT_EQ(deviceState(), rest_) << row.name;
    }
}

TEST_F(AvSources, ARefusalThatDoesNotComeAndASlowCallFail) {
    const struct {
        const char* name;
        const char* fault;
        uint32_t verdict;
    } rows[] = {
        {"TC_AV_CvbsOpenClose_089_01", "QLX_VideoOpen call=2 return=0", 1},
        {"TC_AV_CvbsOpenClose_120_02", "QLX_AudioOpen call=2 return=0", 1},
        {"TC_AV_CvbsRegisterCallback_089_01", "QLX_VideoRegisterCallback call=2 return=0", 1},
        {"TC_AV_CvbsRegisterCallback_120_01", "QLX_AudioRegisterCallback call=2 return=0", 1},
        {"TC_AV_CvbsStartStop_089_01", "QLX_VideoStart call=2 return=0", 1},
        {"TC_AV_CvbsStartStop_120_01", "QLX_AudioStart call=2 return=0", 1},
        {"TC_AV_CvbsOpenClose_213_01", "QLX_VideoOpen delay=200", 0},
        {"TC_AV_CvbsOpenClose_213_01", "QLX_VideoOpen delay=201", 1},
        {"TC_AV_CvbsOpenClose_213_01", "QLX_AudioClose delay=201", 1},
        {"TC_AV_CvbsRegisterCallback_213_02", "QLX_AudioRegisterCallback delay=200", 0},
        {"TC_AV_CvbsRegisterCallback_213_02", "QLX_VideoUnRegisterCallback delay=201", 1},
        {"TC_AV_CvbsStartStop_213_01", "QLX_VideoStop delay=201", 1},
        {"TC_AV_CvbsOpenClose_151_01", "QLX_VideoOpen delay=201", 0},
    };
    for (const auto& row : rows) {
        takeOutput();
        qlx_sim_record(1);
        EXPECT_EQ(run(row.name, row.fault), row.verdict) << row.name << " " << row.fault;
        EXPECT_EQ(deviceState(), rest_) << row.name << " " << row.fault;
        const std::string calls = callNames();
        EXPECT_LE(count(calls, "QLX_VideoClose "), 1u) << calls;
        qlx_sim_record(0);
        const std::string said = takeOutput();
        const std::string base = std::string(row.name).substr(0, strlen(row.name) - 3) + "_base";
        EXPECT_EQ(count(said, base + "(" + (row.name[strlen(row.name) - 1] == '1' ? "0" : "1") +
                                  ") RETURN ERROR VALUE [1]"),
                  row.verdict)
            << said;
        EXPECT_EQ(count(said, "[" + base + "] TEST Result: "), 1u);
        EXPECT_EQ(count(said, std::string("[") + row.name + "] TEST Result: "), 1u);
    }
    // A slow step begins nothing more.
    qlx_sim_record(1);
    EXPECT_EQ(run("TC_AV_CvbsOpenClose_213_01", "QLX_VideoOpen delay=201"), 1u);
    EXPECT_EQ(count(callNames(), "QLX_AudioOpen "), 0u);
    qlx_sim_record(0);
}

TEST_F(AvSources, TheSecondRecordingIsTheThird) {
    use(AVPvrModule);
    const std::pair<const char*, const char*> rows[] = {{"TC_AV_PvrOpenClose_021_01", "demux=0"},
                                                        {"TC_AV_PvrOpenClose_021_02", "demux=2"},
                                                        {"TC_AV_PvrOpenClose_021_03", "demux=2"},
                                                        {"TC_AV_PvrOpenClose_052_02", "demux=1"}};
    for (const auto& [name, demux] : rows) {
        qlx_sim_record(1);
        EXPECT_EQ(run(name), TC_SUCCESS);
        EXPECT_EQ(count(recordedCalls(), std::string("QLX_DemuxOpen(") + demux), 1u) << name;
        qlx_sim_record(0);
    }
    takeOutput();
    EXPECT_EQ(run("TC_AV_PvrOpenClose_021_02", "QLX_DemuxStart return=1"), TC_FAILURE);
    EXPECT_EQ(count(takeOutput(), "FUNC:TC_AV_PvrOpenClose_021_base(QLX_DEMUX_2) RETURN"), 1u);
    // The channel of a recording is the configured one, whatever the source's is.
    zk_testConfig.pvrPlaybackChannelNum = 2;
    zk_testConfig.pvrPlayback[1].uVideoPid = 77;
    zk_testConfig.pvrPlayback[1].eVideoFormat = 16;
    zk_testConfig.av.uPvrPlaybackChannelId = 1;
    qlx_sim_record(1);
    EXPECT_EQ(run("TC_AV_PvrStartStop_021_04"), TC_SUCCESS);
    EXPECT_EQ(count(recordedCalls(), "QLX_VideoStart(video=0 format=16 pid=77)=0"), 1u);
}

TEST_F(AvSources, WhatIsToldTwiceFails) {
    EXPECT_EQ(run("TC_AV_CvbsVideoEventFlow_052", "VideoEvent call=3 repeat=1"), TC_FAILURE);
    EXPECT_EQ(run("TC_AV_CvbsVideoEventFlow_052", "VideoEvent call=2 repeat=1"), TC_SUCCESS);
    EXPECT_EQ(run("TC_AV_CvbsAudioEventFlow_053", "AudioEvent call=1 repeat=1"), TC_FAILURE);
    EXPECT_EQ(run("TC_AV_CvbsAudioEventFlow_013", "AudioEvent call=1 repeat=1"), TC_SUCCESS);
    EXPECT_EQ(run("TC_AV_CvbsVideoEventInfoChange_012", "VideoEvent call=3 set=eFrameAspect:12"),
              TC_FAILURE);
    EXPECT_EQ(run("TC_AV_CvbsVideoEventInfoChange_012", "VideoEvent call=4 set=eFrameAspect:1"),
              TC_FAILURE);
    EXPECT_EQ(run("TC_AV_CvbsAudioEventInfoChange_012", "AudioEvent call=2 set=eChannelInfo:8"),
              TC_FAILURE);
}

TEST_F(AvSources, AnAnswerThatIsWrongEndsThePlay) {
    const struct {
        const char* name;
        const char* fault;
    } rows[] = {
        {"TC_AV_CvbsGetVideoInfo_012",
         "QLX_VideoGetVideoInfo call=1 set=stVideoDecInfo.uFrameRate:0"},
        {"TC_AV_CvbsGetAudioInfo_013", "QLX_AudioGetAudioInfo call=2 set=eStatus:0"},
        {"TC_AV_CvbsVideoEventFlow_012", "VideoEvent call=4 drop"},
        {"TC_AV_CvbsPlay_062", "QLX_VOutEnable call=10 return=1"},
        {"TC_AV_CvbsSwitchSource_001", "QLX_ExtInOpen call=20 return=1"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(run(row.name, row.fault), TC_FAILURE) << row.name;
        EXPECT_EQ(atRest(), rest_) << row.name;
    }
    takeOutput();
    qlx_sim_record(1);
    EXPECT_EQ(run("TC_AV_CvbsPlay_062", "QLX_VOutEnable call=2 return=1"), TC_FAILURE);
    EXPECT_EQ(count(callNames(), "QLX_VideoInit "), 2u) << "the first failure ends the rounds";
}

TEST_F(AvSources, TheOperatorDecidesWhateverTheBoardHas) {
    zk_testConfig.features[FEATURE_CVBS0] = 0;
    zk_testConfig.features[FEATURE_CVBS1] = 0;
    Typed answers("1\n0\n1\n");
    EXPECT_EQ(run("TC_AV_CvbsPlay_012"), TC_SUCCESS);
    EXPECT_EQ(run("TC_AV_CvbsPlay_013"), TC_FAILURE);
    EXPECT_EQ(run("TC_AV_CvbsPlay_013", "QLX_ExtInClose return=1"), TC_FAILURE);
}

TEST_F(AvSources, BroadcastsOfTheWrongPidAndRepeatedOnes) {
    use(AVDtvModule);
    reporter_.reset();
    for (const char* name : {"TC_AV_DtvVideoEventFlow_016_04", "TC_AV_DtvAudioEventFlow_019"}) {
        qlx_sim_record(1);
        EXPECT_EQ(run(name), TC_SUCCESS) << name;
        const std::string calls = recordedCalls();
        EXPECT_EQ(count(calls, "pid=8888)=0"), 1u) << name;
        EXPECT_EQ(count(calls, "QLX_DemuxOpen(demux=1)=0"), 1u) << name;
        EXPECT_EQ(count(calls, "QLX_TunerOpen(tuner=1)=0"), 1u) << name;
        qlx_sim_record(0);
    }
    EXPECT_EQ(run("TC_AV_DtvVideoEventFlow_016_01", "VideoEvent call=3 drop"), TC_FAILURE);
    EXPECT_EQ(run("TC_AV_DtvVideoEventFlow_016_01", "VideoEvent call=2 drop"), TC_FAILURE);
    EXPECT_EQ(run("TC_AV_DtvAudioEventFlow_016", "AudioEvent call=1 drop"), TC_FAILURE);
    EXPECT_EQ(run("TC_AV_DtvAudioEventFlow_016", "AudioEvent call=2 drop"), TC_FAILURE);
    reporter_ = std::make_unique<Reporter>();
    takeOutput();
    EXPECT_EQ(run("TC_AV_DtvVideoEventFlow_041_01"), TC_FAILURE) << "told every 100 ms";
    EXPECT_EQ(count(takeOutput(), "u32VideoFrameReady= "), 0u);
}

TEST_F(AvSources, DecodersWithoutServiceOrSignalDoNotOpen) {
    use(AVDtvModule);
    const std::pair<const char*, const char*> rows[] = {
        {"TC_AV_DtvOpenClose_001", "QLX_VideoOpen return=0"},
        {"TC_AV_DtvOpenClose_002", "QLX_VideoOpen return=0"},
        {"TC_AV_DtvOpenClose_003", "QLX_AudioOpen return=0"},
        {"TC_AV_DtvOpenClose_004", "QLX_AudioOpen return=0"}};
    for (const auto& [name, fault] : rows) {
        EXPECT_EQ(run(name), TC_SUCCESS) << name;
        EXPECT_EQ(run(name, fault), TC_FAILURE) << name;
        EXPECT_EQ(deviceState(), rest_) << name;
    }
}

}  // namespace

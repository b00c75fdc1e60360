// AV-DTV's formats and controls under faults: each word that is judged, each call that may be
// refused, and the channel that each standard's format takes. No stream is on the air: what the
// decoders know of one is made by faults, and what they report by hand.
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "testcase/av/av_play.h"
#include "tests/shared/av_reporter.h"
#include "tests/shared/module_bench.h"
#include "tests/shared/typed.h"

namespace {

using Faults = std::vector<std::string>;

class AvDtvControls : public ModuleBench {
 protected:
    void SetUp() override {
        ModuleBench::SetUp();
        setUpModule();
    }
    void TearDown() override {
        reporter_.reset();
        AVDtvModule.teardown();
        ModuleBench::TearDown();
    }
    void setUpModule() {
        reporter_.reset();
        AVDtvModule.teardown();
        qlx_sim_reset();
        ASSERT_EQ(AVDtvModule.setup(), 0u);
    }
    /** Lets the decoders report a picture and a sound of these formats. */
    void report(uint32_t ofPicture = QLX_VIDEO_FORMAT_NONE,
                uint32_t ofSound = QLX_AUDIO_FORMAT_NONE) {
        QLX_VideoDecInfo picture = {};
        QLX_AudioDecInfo sound = {};
        picture.eVideoPresent = QLX_VIDEO_PRESENT;
        picture.eVideoFormat = ofPicture;
        sound.audioPresent = QLX_AUDIO_PRESENT;
        sound.eAudioFormat = ofSound;
        reporter_ = std::make_unique<Reporter>(picture, sound);
    }
    /** A case whose operator types, under faults that have to act; its calls are recorded. */
    uint32_t run(const std::string& name, const Faults& faults = {},
                 const std::string& typed = "\n") {
        if (reporter_ == nullptr)
            report();
        Typed answers(typed);
        for (const std::string& fault : faults)
            addFault(fault);
        qlx_sim_record(1);
        const uint32_t result = runCaseByName(AVDtvModule, name);
        qlx_sim_record(0);
        if (!faults.empty()) {
            EXPECT_GE(qlx_sim_faults_acted(), faults.size()) << name << " " << faults.back();
        }
        qlx_sim_clear_faults();
        return result;
    }
    /** The same with one more fault, which is a failure, after which the decoders have been closed.
     */
    void fails(const std::string& name, Faults faults, const std::string& fault,
               const std::string& typed = "\n") {
        faults.push_back(fault);
        EXPECT_EQ(run(name, faults, typed), TC_FAILURE) << name << " " << fault;
        EXPECT_EQ(deviceState().find("Video 0 open"), std::string::npos) << name << " " << fault;
        EXPECT_EQ(deviceState().find("Audio 0 open"), std::string::npos) << name << " " << fault;
        setUpModule();
    }

    std::unique_ptr<Reporter> reporter_;
};

/** "Family_007_02". */
std::string numbered(const std::string& family, int number, const char* variant) {
    const std::string digits = std::to_string(number);
    return family + "_" + std::string(3 - digits.size(), '0') + digits + variant;
}

TEST_F(AvDtvControls, EachFormatTakesTheChannelOfItsStandard) {
    TcAvConfig& av = zk_testConfig.av;
    const AvStandard standards[] = {AV_DVB_T,  AV_DVB_C,  AV_DVB_S, AV_ATSC_T,
                                    AV_ATSC_C, AV_ISDB_T, AV_ISDB_S};
    std::vector<std::pair<std::string, uint32_t*>> rows;
    for (int i = 0; i < 7; i++) {
        rows.push_back({numbered("VideoFormat", 1 + i, "_01"), &av.uMpeg2ChannelIds[standards[i]]});
        rows.push_back({numbered("VideoFormat", 8 + i, "_02"), &av.uH264ChannelIds[standards[i]]});
        rows.push_back(
            {numbered("AudioFormat", 1 + i, "_03"), &av.uMpegAudioChannelIds[standards[i]]});
        rows.push_back({numbered("AudioFormat", 8 + i, "_04"), &av.uAacChannelIds[standards[i]]});
    }
    rows.push_back({"AudioFormat_015_01", &av.uAc3ChannelIds[0]});
    rows.push_back({"AudioFormat_016_01", &av.uAc3ChannelIds[1]});
    rows.push_back({"AudioFormat_017_01", &av.uEac3ChannelId});
    rows.push_back({"AudioFormat_018_01", &av.uHeAacChannelId});
    for (int i = 0; i < 4; i++)
        rows.push_back({numbered("AudioDescription", 1 + i, "_01"),
                        &av.uAudioDescChannelIds[standards[i % 3]]});
    for (int i = 0; i < 3; i++)
        rows.push_back(
            {numbered("AudioDescVolume", 1 + i, "_02"), &av.uAudioDescChannelIds[standards[i]]});
    const AvSource source = av.stSource;
    const std::string tuned = "uFrequency=" + std::to_string(zk_testConfig.dvbT[6].uFrequency);
    for (const auto& row : rows) {
        av = {};
        av.stSource = source;
        *row.second = 6;
        run("TC_AV_Dtv" + row.first);
        EXPECT_EQ(count(recordedCalls(), "QLX_TunerSetTuningParam"), 1u) << row.first;
        EXPECT_NE(recordedCalls().find(tuned), std::string::npos) << row.first;
    }
}

TEST_F(AvDtvControls, AFormatIsJudgedInTheDecoderAndInTheLog) {
    const std::string video = "TC_AV_DtvVideoFormat_001_01";
    const std::string audio = "TC_AV_DtvAudioFormat_008_01";
    const Faults mpeg2 = {"QLX_VideoGetVideoInfo set=stVideoDecInfo.eVideoFormat:2"};
    const Faults aac = {"QLX_AudioGetAudioInfo set=stAudioDecInfo.eAudioFormat:8"};
    report(QLX_VIDEO_FORMAT_MPEG2, QLX_AUDIO_FORMAT_AAC);
    EXPECT_EQ(run(video, mpeg2), TC_SUCCESS);
    EXPECT_EQ(run(audio, aac), TC_SUCCESS);
    for (const char* fault : {"QLX_VideoGetVideoInfo set=stVideoDecInfo.eVideoFormat:16",
                              "QLX_VideoGetVideoInfo set=eParamType:3", "QLX_VideoStop return=1",
                              "QLX_VideoGetVideoInfo return=1"}) {
        report(QLX_VIDEO_FORMAT_MPEG2, 0);
        fails(video, mpeg2, fault);
    }
    for (const char* fault : {"QLX_AudioGetAudioInfo set=stAudioDecInfo.eAudioFormat:2",
                              "QLX_AudioGetAudioInfo set=eParamType:0", "QLX_AudioStop return=1",
                              "QLX_AudioGetAudioInfo return=1"}) {
        report(0, QLX_AUDIO_FORMAT_AAC);
        fails(audio, aac, fault);
    }
    report(QLX_VIDEO_FORMAT_H264, QLX_AUDIO_FORMAT_AC3);
    EXPECT_EQ(run(video, mpeg2), TC_FAILURE) << "the log tells of another format";
    EXPECT_EQ(run(audio, aac), TC_FAILURE);
}

TEST_F(AvDtvControls, ClocksModesAndGains) {
    EXPECT_EQ(run("TC_AV_DtvSetSyncMode_001_01"), TC_SUCCESS);
    const std::string calls = recordedCalls();
    const size_t free = calls.find("QLX_VideoSyncSetMode(video=0 params={})");
    const size_t pcr = calls.find("params={eSyncMode=1 uPid=513 uPcrPid=513}");
    EXPECT_LT(free, pcr) << calls;
    EXPECT_LT(pcr, calls.find("params={eSyncMode=2 uPid=516}"));
    for (int call = 2; call <= 4; call++)
        fails("TC_AV_DtvSetSyncMode_001_01", {},
              "QLX_VideoSyncSetMode call=" + std::to_string(call) + " return=1");

    const Faults clock = {"QLX_VideoSyncGetSTC set=stc:1"};
    EXPECT_EQ(run("TC_AV_DtvGetStc_001_02", clock), TC_SUCCESS);
    fails("TC_AV_DtvGetStc_001_02", clock, "QLX_VideoSyncGetSTC set=stc:0");
    fails("TC_AV_DtvGetStc_001_02", {}, "QLX_VideoSyncGetSTC return=1");

    EXPECT_EQ(run("TC_AV_DtvSetAudioMode_001_03"), TC_SUCCESS);
    EXPECT_EQ(count(callNames(), "QLX_AudioSetDigitalAudioMode "), 5u);
    fails("TC_AV_DtvSetAudioMode_001_03", {}, "QLX_AudioSetDigitalAudioMode call=5 return=1");

    EXPECT_EQ(run("TC_AV_DtvSetAudioPrescaler_001_04"), TC_SUCCESS);
    for (const char* value : {"0", "50", "150", "255"})
        EXPECT_EQ(count(recordedCalls(), std::string("Prescaler(audio=0 value=") + value), 1u);
    fails("TC_AV_DtvSetAudioPrescaler_001_04", {}, "QLX_AudioGetPrescaler call=4 set=value:254");
    fails("TC_AV_DtvSetAudioPrescaler_001_04", {}, "QLX_AudioGetPrescaler call=1 return=1");
    fails("TC_AV_DtvSetAudioPrescaler_001_04", {}, "QLX_AudioSetPrescaler call=2 return=1");
}

TEST_F(AvDtvControls, DescriptionsAndStandardsAreUndone) {
    EXPECT_EQ(run("TC_AV_DtvAudioDescVolume_003_01"), TC_SUCCESS);
    EXPECT_EQ(count(callNames(),
                    "QLX_AudioStartDescription QLX_AOutSetAudioDescription "
                    "QLX_AOutSetAudioDescriptionVolume QLX_AOutSetAudioDescription "
                    "QLX_AOutSetAudioDescriptionVolume QLX_AOutSetAudioDescription "
                    "QLX_AOutSetAudioDescription QLX_AudioStopDescription QLX_VOutSetMute "),
              1u)
        << callNames();
    for (const char* fault :
         {"QLX_AudioStartDescription return=1", "QLX_AudioStopDescription return=1",
          "QLX_AOutSetAudioDescription call=2 return=1",
          "QLX_AOutSetAudioDescriptionVolume call=2 return=1"})
        fails("TC_AV_DtvAudioDescVolume_003_01", {}, fault);
    fails("TC_AV_DtvAudioDescription_004_01", {}, "QLX_AudioStopDescription return=1");
    EXPECT_EQ(run("TC_AV_DtvSwitchDVBTandDVBC_001"), TC_SUCCESS);
    std::istringstream lines(recordedCalls());
    std::string systems;
    for (std::string line; std::getline(lines, line);) {
        if (line.find("QLX_TunerSetTuningParam") == 0)
            systems += line.find("eTransmissionSystem=16}") != std::string::npos ? "C" : "T";
    }
    EXPECT_EQ(systems, "TCTCTCTCTCTCTCTCTCTC");
    fails("TC_AV_DtvSwitchDVBTandDVBC_001", {}, "QLX_DemuxOpen call=20 return=1");
}

TEST_F(AvDtvControls, TheOperatorPausesTypesModesAndPresentations) {
    const std::string pause = "TC_AV_DtvPauseResume_001";
    EXPECT_EQ(run(pause, {}, "0\n0\n0\n1\n"), TC_SUCCESS);
    EXPECT_EQ(run(pause, {}, "1\n1\n1\n0\n"), TC_FAILURE);
    EXPECT_EQ(run(pause, {}, "1\n1\n1\n"), TC_FAILURE) << "end of input";
    for (const char* call : {"VideoPause", "VideoGetState", "VideoResume", "AudioPause",
                             "AudioGetState", "AudioResume"})
        fails(pause, {}, std::string("QLX_") + call + " return=1", "1\n1\n1\n1\n");

    const std::string modes = "TC_AV_DtvSetAudioMode_002";
    EXPECT_EQ(run(modes, {}, "0\n6\n1\n5\n999\n"), TC_SUCCESS);
    EXPECT_EQ(count(callNames(), "QLX_AudioSetDigitalAudioMode "), 2u);
    EXPECT_EQ(count(takeOutput(), "Invalid number, input again"), 2u);
    EXPECT_EQ(run(modes, {}, "1\n"), TC_FAILURE) << "end of input";
    fails(modes, {}, "QLX_AudioSetDigitalAudioMode call=2 return=1", "1\n2\n3\n999\n");

    const std::string ac4 = "TC_AV_DtvAc4AudioPreselectionV1_Manual_001";
    const std::string language = "TC_AV_DtvAc4AudioPreselectionV2_Manual_SwitchLanguage";
    EXPECT_EQ(run(ac4, {}, "3\n9999\n"), TC_SUCCESS);
    EXPECT_EQ(count(recordedCalls(), "QLX_AudioSetAC4Parameters(audio=0 parameter=7 value=3)"), 1u);
    EXPECT_EQ(count(callNames(), "QLX_AudioSetAC4Parameters "), 1u) << "9999 chooses nothing";
    setUpModule();
    EXPECT_EQ(run(ac4, {}, "3\n4\n"), TC_FAILURE) << "end of input";
    setUpModule();
    fails(ac4, {}, "QLX_AudioSetAC4Parameters call=1 return=1", "1\n9999\n");
    fails(ac4, {}, "QLX_AudioSetAC4Parameters call=2 return=1", "1\n2\n9999\n");
    fails(ac4, {}, "QLX_AudioSetMute return=1", "1\n9999\n");
    EXPECT_EQ(run(language, {}, "4\n9999\n"), TC_SUCCESS);
    EXPECT_EQ(count(recordedCalls(), "parameter=7 value=-1)"), 1u);
    EXPECT_EQ(count(recordedCalls(), "parameter=5 value=4)"), 1u);
    setUpModule();
    fails(language, {}, "QLX_AudioSetAC4Parameters call=1 return=1", "4\n9999\n");
}

}  // namespace

// The judges of pictures, sounds and events, at their borders: decoders that answer a little wrong
// (a source that plays, under faults), and logs with records and times to the millisecond.
#include "testcase/av/av_judges.h"

#include <functional>
#include <map>
#include <vector>

#include "testcase/av/av_case.h"
#include "testcase/av/av_events.h"
#include "testcase/av/av_module.h"
#include "testcase/av/av_play.h"
#include "tests/shared/module_bench.h"

namespace {

const uint32_t kinds[] = {AV_SOURCE_ATV,  AV_SOURCE_CVBS, AV_SOURCE_YPBPR,
                          AV_SOURCE_HDMI, AV_SOURCE_PVR,  AV_SOURCE_DTV};

bool isCoded(uint32_t kind) {
    return kind == AV_SOURCE_PVR || kind == AV_SOURCE_DTV;
}

/** The source of a kind, and the formats of its channel, which differ from each other's. */
AvSource sourceOf(uint32_t kind) {
    AvSource source = {};
    source.eSource = kind;
    source.uDTVChannelId = 1;
    return source;
}

uint32_t videoFormatOf(uint32_t kind) {
    return kind == AV_SOURCE_DTV ? 16 : kind == AV_SOURCE_PVR ? 32 : 0;
}

uint32_t audioFormatOf(uint32_t kind) {
    return kind == AV_SOURCE_DTV ? 8 : kind == AV_SOURCE_PVR ? 4 : 0;
}

class AvJudges : public ModuleBench {
 protected:
    void SetUp() override {
        ModuleBench::SetUp();
        ASSERT_EQ(AV_CommonTestSetup(), 0u);
        // Two channels a table, so that the wrong one is noticed; the tuner's system is DVB-C.
        zk_testConfig.dvbCChannelNum = 2;
        zk_testConfig.pvrPlaybackChannelNum = 2;
        zk_testConfig.tunerBlock.eTransmissionSystem[0] = 16;
        setChannel(zk_testConfig.dvbC[1], AV_SOURCE_DTV);
        setChannel(zk_testConfig.pvrPlayback[1], AV_SOURCE_PVR);
        AV_ClearVideoLog();
        AV_ClearAudioLog();
    }
    void TearDown() override {
        EXPECT_EQ(AV_CommonTestTeardown(), 0u);
        ModuleBench::TearDown();
    }
    static void setChannel(TcChannelInfo& channel, uint32_t kind) {
        channel.eVideoFormat = videoFormatOf(kind);
        channel.eAudioFormat[0] = audioFormatOf(kind);
    }

    /** A good picture of a kind, and a good sound. */
    static QLX_VideoDecInfo pictureOf(uint32_t kind) {
        QLX_VideoDecInfo info = {};
        info.eVideoPresent = QLX_VIDEO_PRESENT;
        info.uFrameRate = 25;
        info.uFrameWidth = 720;
        info.uFrameHeight = 576;
        info.eFrameAspect = QLX_VIDEO_ASPECT_16_9;
        info.ePictureAspectRatio = QLX_VIDEO_ASPECT_4_3;
        info.eVideoFormat = videoFormatOf(kind);
        return info;
    }
    static QLX_AudioDecInfo soundOf(uint32_t kind) {
        QLX_AudioDecInfo info = {};
        info.audioPresent = QLX_AUDIO_PRESENT;
        info.eSecondPresent = QLX_AUDIO_PRESENT;
        info.eAudioFormat = audioFormatOf(kind);
        info.eChannelInfo = QLX_AUDIO_CHANNEL_2_0;
        info.eAudioAttrA = 1;
        info.uAudioAttrB = 48000;
        info.eAudioAttrC = 2;
        info.uAudioAttrD = 16;
        return info;
    }

    /** Logs an event that came `ms` after the start of a play. */
    void video(uint32_t event, int64_t ms = 0, uint32_t present = QLX_VIDEO_PRESENT) {
        QLX_VideoDecInfo info = {};
        info.eVideoPresent = present;
        uint32_t word = 1;
        void* data = event == QLX_EVENT_VIDEO_INFO_CHANGE ? static_cast<void*>(&info) : &word;
        AV_VideoEventCallback(0, &g_stVideoRequestData, event, data);
        g_stVideoRequestData.stTime[g_stVideoRequestData.uCount - 1] = timeOf(ms);
    }
    void audio(uint32_t event, int64_t ms = 0, uint32_t present = QLX_AUDIO_PRESENT) {
        QLX_AudioDecInfo info = {};
        info.audioPresent = present;
        uint32_t word = 1;
        void* data = event == QLX_EVENT_AUDIO_INFO_CHANGE ? static_cast<void*>(&info) : &word;
        AV_AudioEventCallback(0, &g_stAudioRequestData, event, data);
        g_stAudioRequestData.stTime[g_stAudioRequestData.uCount - 1] = timeOf(ms);
    }
    /** Behind `start`, whose microseconds a second's last are. */
    timeval timeOf(int64_t ms) const {
        const int64_t us = start.tv_usec + ms * 1000;
        return {start.tv_sec + us / 1000000, static_cast<suseconds_t>(us % 1000000)};
    }

    const timeval start = {1000, 999900};
};

// Records.

TEST_F(AvJudges, PicturesAreJudgedMemberByMember) {
    const std::vector<uint32_t> all(std::begin(kinds), std::end(kinds));
    const std::vector<uint32_t> coded = {AV_SOURCE_PVR, AV_SOURCE_DTV};
    const std::vector<uint32_t> plain = {AV_SOURCE_ATV, AV_SOURCE_CVBS, AV_SOURCE_YPBPR,
                                         AV_SOURCE_HDMI};
    using Info = QLX_VideoDecInfo;
    const struct {
        const char* what;
        std::function<void(Info&)> change;
        /** The kinds that it is wrong for. */
        std::vector<uint32_t> wrong;
    } rows[] = {
        {"nothing", [](Info&) {}, {}},
        {"format", [](Info& info) { info.eVideoFormat++; }, coded},
        {"rate 0", [](Info& info) { info.uFrameRate = 0; }, all},
        {"width 0", [](Info& info) { info.uFrameWidth = 0; }, all},
        {"height 0", [](Info& info) { info.uFrameHeight = 0; }, all},
        {"frame aspect 0", [](Info& info) { info.eFrameAspect = 0; }, all},
        {"frame aspect 1", [](Info& info) { info.eFrameAspect = 1; }, {}},
        {"frame aspect 11", [](Info& info) { info.eFrameAspect = 11; }, {}},
        {"frame aspect 12", [](Info& info) { info.eFrameAspect = 12; }, all},
        {"picture aspect 0", [](Info& info) { info.ePictureAspectRatio = 0; }, all},
        {"picture aspect 11", [](Info& info) { info.ePictureAspectRatio = 11; }, {}},
        {"picture aspect 12", [](Info& info) { info.ePictureAspectRatio = 12; }, all},
        {"attribute A 4", [](Info& info) { info.eVideoAttrA = 4; }, {}},
        {"attribute A 5", [](Info& info) { info.eVideoAttrA = 5; }, all},
        {"attribute B 4", [](Info& info) { info.eVideoAttrB = 4; }, {}},
        {"attribute B 5", [](Info& info) { info.eVideoAttrB = 5; }, all},
        {"attribute C 2", [](Info& info) { info.eVideoAttrC = 2; }, {}},
        {"attribute C 3", [](Info& info) { info.eVideoAttrC = 3; }, {AV_SOURCE_HDMI}},
        {"aux not told, one word", [](Info& info) { info.uAuxInfo[3] = 1; }, all},
        {"aux told, no word", [](Info& info) { info.bAuxInfoValid = 1; }, all},
        {"aux told, three words",
         [](Info& info) {
             info.bAuxInfoValid = 1;
             info.uAuxInfo[0] = info.uAuxInfo[1] = info.uAuxInfo[3] = 7;
         },
         all},
        {"aux told",
         [](Info& info) {
             info.bAuxInfoValid = 1;
             for (uint32_t& word : info.uAuxInfo)
                 word = 7;
         },
         plain},
        {"UHD without a range",
         [](Info& info) {
             info.uFrameWidth = 3840;
             info.uFrameHeight = 2160;
         },
         {}},
    };
    for (uint32_t kind : kinds) {
        const AvSource source = sourceOf(kind);
        for (const auto& row : rows) {
            Info info = pictureOf(kind);
            row.change(info);
            const bool wrong =
                std::find(row.wrong.begin(), row.wrong.end(), kind) != row.wrong.end();
            EXPECT_EQ(AV_CheckVideoInfoEvent(&source, &info), wrong ? TC_FAILURE : TC_SUCCESS)
                << row.what << " of source " << kind;
        }
    }
}

TEST_F(AvJudges, NoPictureIsAnEmptyRecord) {
    using Info = QLX_VideoDecInfo;
    const std::function<void(Info&)> changes[] = {
        [](Info& info) { info.eVideoFormat = 2; },        [](Info& info) { info.uFrameRate = 25; },
        [](Info& info) { info.uFrameWidth = 1; },         [](Info& info) { info.uFrameHeight = 1; },
        [](Info& info) { info.bAuxInfoValid = 1; },       [](Info& info) { info.uAuxInfo[0] = 1; },
        [](Info& info) { info.uAuxInfo[3] = 1; },         [](Info& info) { info.eFrameAspect = 1; },
        [](Info& info) { info.eVideoAttrA = 3; },         [](Info& info) { info.eVideoAttrB = 3; },
        [](Info& info) { info.ePictureAspectRatio = 1; },
    };
    // What is no picture does not depend on the source, even an unknown one.
    for (uint32_t kind : {16u, 10u, 14u}) {
        const AvSource source = sourceOf(kind);
        Info empty = {};
        empty.eVideoAttrA = empty.eVideoAttrB = 4;
        for (uint32_t present : {0u, 2u, 3u}) {
            empty.eVideoPresent = present;
            EXPECT_EQ(AV_CheckVideoInfoEvent(&source, &empty), TC_SUCCESS) << present;
        }
        for (size_t i = 0; i < std::size(changes); i++) {
            Info info = empty;
            changes[i](info);
            EXPECT_EQ(AV_CheckVideoInfoEvent(&source, &info), TC_FAILURE) << i;
        }
    }
}

TEST_F(AvJudges, SoundsAreJudgedMemberByMember) {
    using Info = QLX_AudioDecInfo;
    const struct {
        const char* what;
        std::function<void(Info&)> change;
        bool wrongCoded;
        bool wrongPlain;
    } rows[] = {
        {"nothing", [](Info&) {}, false, false},
        {"format", [](Info& info) { info.eAudioFormat++; }, true, true},
        {"channels 8", [](Info& info) { info.eChannelInfo = 8; }, false, false},
        {"channels 9", [](Info& info) { info.eChannelInfo = 9; }, true, false},
        {"A 0", [](Info& info) { info.eAudioAttrA = 0; }, true, false},
        {"A 5", [](Info& info) { info.eAudioAttrA = 5; }, false, false},
        {"A 6", [](Info& info) { info.eAudioAttrA = 6; }, true, false},
        {"B 0", [](Info& info) { info.uAudioAttrB = 0; }, true, false},
        {"C 0", [](Info& info) { info.eAudioAttrC = 0; }, true, false},
        {"C 9", [](Info& info) { info.eAudioAttrC = 9; }, false, false},
        {"C 10", [](Info& info) { info.eAudioAttrC = 10; }, true, false},
        {"D 0", [](Info& info) { info.uAudioAttrD = 0; }, true, false},
    };
    for (uint32_t kind : kinds) {
        const AvSource source = sourceOf(kind);
        for (const auto& row : rows) {
            Info info = soundOf(kind);
            row.change(info);
            const bool wrong = isCoded(kind) ? row.wrongCoded : row.wrongPlain;
            EXPECT_EQ(AV_CheckAudioInfoEvent(&source, &info), wrong ? TC_FAILURE : TC_SUCCESS)
                << row.what << " of source " << kind;
        }
    }
}

TEST_F(AvJudges, NoSoundIsAnEmptyRecord) {
    using Info = QLX_AudioDecInfo;
    const AvSource source = sourceOf(AV_SOURCE_CVBS);
    Info empty = {};
    empty.audioPresent = empty.eSecondPresent = QLX_AUDIO_NOT_PRESENT;
    empty.eChannelInfo = QLX_AUDIO_CHANNEL_NONE;
    EXPECT_EQ(AV_CheckAudioInfoEvent(&source, &empty), TC_SUCCESS);
    uint32_t Info::*const words[] = {
        &Info::eSecondPresent, &Info::eAudioFormat, &Info::uWord4,      &Info::eChannelInfo,
        &Info::bLfePresent,    &Info::eAudioAttrA,  &Info::uAudioAttrB, &Info::eAudioAttrC,
        &Info::uAudioAttrD,    &Info::uWord12,
    };
    for (size_t i = 0; i < std::size(words); i++) {
        Info info = empty;
        info.*words[i] ^= 1;
        EXPECT_EQ(AV_CheckAudioInfoEvent(&source, &info), TC_FAILURE) << i;
    }
    takeOutput();
    empty.audioPresent = 2;
    EXPECT_EQ(AV_CheckAudioInfoEvent(&source, &empty), TC_FAILURE);
    EXPECT_EQ(count(takeOutput(), "expect 3, but actually 2  \n"), 1u);
}

TEST_F(AvJudges, NothingToJudgeFails) {
    const AvSource unknown = sourceOf(AV_SOURCE_STREAM);
    const AvSource cvbs = sourceOf(AV_SOURCE_CVBS);
    const QLX_VideoDecInfo picture = pictureOf(AV_SOURCE_CVBS);
    const QLX_AudioDecInfo sound = soundOf(AV_SOURCE_CVBS);
    takeOutput();
    EXPECT_EQ(AV_CheckVideoInfo(nullptr), TC_FAILURE);
    EXPECT_EQ(AV_CheckAudioInfo(nullptr), TC_FAILURE);
    EXPECT_EQ(AV_CheckVideoInfoEvent(nullptr, &picture), TC_FAILURE);
    EXPECT_EQ(AV_CheckVideoInfoEvent(&cvbs, nullptr), TC_FAILURE);
    EXPECT_EQ(AV_CheckAudioInfoEvent(nullptr, &sound), TC_FAILURE);
    EXPECT_EQ(AV_CheckAudioInfoEvent(&cvbs, nullptr), TC_FAILURE);
    EXPECT_EQ(AV_CheckVideoEventFlow(nullptr), TC_FAILURE);
    EXPECT_EQ(AV_CheckAudioEventFlow(nullptr), TC_FAILURE);
    EXPECT_EQ(AV_CheckVideoEventConsumption(nullptr, &start), TC_FAILURE);
    EXPECT_EQ(AV_CheckVideoEventConsumption(&cvbs, nullptr), TC_FAILURE);
    EXPECT_EQ(AV_CheckAudioEventConsumption(nullptr, &start), TC_FAILURE);
    EXPECT_EQ(AV_CheckAudioEventConsumption(&cvbs, nullptr), TC_FAILURE);
    EXPECT_EQ(count(takeOutput(), "expect 1, but actually 0  \n"), 12u);
    EXPECT_EQ(AV_CheckVideoInfo(&unknown), TC_FAILURE);
    EXPECT_EQ(AV_CheckAudioInfo(&unknown), TC_FAILURE);
    EXPECT_EQ(AV_CheckVideoInfoEvent(&unknown, &picture), TC_FAILURE);
    EXPECT_EQ(AV_CheckAudioInfoEvent(&unknown, &sound), TC_FAILURE);
    EXPECT_EQ(count(takeOutput(), "Unsupported source \r\n"), 4u);
}

// Answers of decoders that play.

const std::string videoAnswer = "QLX_VideoGetVideoInfo ";
const std::string audioAnswer = "QLX_AudioGetAudioInfo ";

/** Lets the decoders of an input answer as those of a kind of source. */
void answerAs(uint32_t kind) {
    qlx_sim_clear_faults();
    if (!isCoded(kind))
        return;
    for (const std::string& fault :
         {videoAnswer +
              "call=1 set=stVideoDecInfo.eVideoFormat:" + std::to_string(videoFormatOf(kind)),
          videoAnswer + "call=2 set=uPts:1", videoAnswer + "call=4 set=eStatus:1",
          audioAnswer +
              "call=1 set=stAudioDecInfo.eAudioFormat:" + std::to_string(audioFormatOf(kind)),
          audioAnswer + "call=2 set=uPts:1"})
        EXPECT_EQ(qlx_sim_add_fault(fault.c_str()), 0) << fault;
}

TEST_F(AvJudges, DecodersAreAskedWhatTheirSourceKnows) {
    const AvSource stSource = AV_SelectSource(cvbs0);
    ASSERT_EQ(AV_PlayAudioVideo(&stSource, nullptr), 0u);
    const struct {
        uint32_t kind;
        bool isVideo;
        const char* fault;
        uint32_t verdict;
    } rows[] = {
        {AV_SOURCE_CVBS, true, "call=1 set=eParamType:1", 1},
        {AV_SOURCE_CVBS, true, "call=1 return=1", 1},
        {AV_SOURCE_CVBS, true, "call=1 set=stVideoDecInfo.eVideoPresent:3", 1},
        {AV_SOURCE_CVBS, true, "call=1 set=stVideoDecInfo.uFrameRate:0", 1},
        {AV_SOURCE_CVBS, true, "call=1 set=stVideoDecInfo.eFrameAspect:12", 1},
        {AV_SOURCE_CVBS, true, "call=2 set=eStatus:0", 1},
        {AV_SOURCE_CVBS, true, "call=3 set=eStatus:0", 1},
        {AV_SOURCE_CVBS, true, "call=3 set=eStatus:2", 1},
        {AV_SOURCE_CVBS, true, "call=3 set=eParamType:4", 1},
        {AV_SOURCE_HDMI, true, "call=1 set=stVideoDecInfo.eVideoAttrC:3", 1},
        {AV_SOURCE_YPBPR, true, "call=1 set=stVideoDecInfo.eVideoAttrC:3", 0},
        {AV_SOURCE_DTV, true, "call=1 set=stVideoDecInfo.eVideoFormat:2", 1},
        {AV_SOURCE_PVR, true, "call=1 set=stVideoDecInfo.eVideoFormat:2", 1},
        {AV_SOURCE_DTV, true, "call=2 set=uPts:0", 1},
        {AV_SOURCE_PVR, true, "call=2 set=eParamType:2", 1},
        {AV_SOURCE_DTV, true, "call=3 set=eStatus:0", 1},
        {AV_SOURCE_DTV, true, "call=4 set=eStatus:0", 1},
        {AV_SOURCE_DTV, true, "call=5 set=eStatus:0", 1},
        {AV_SOURCE_CVBS, false, "call=1 set=eParamType:1", 1},
        {AV_SOURCE_CVBS, false, "call=1 set=stAudioDecInfo.audioPresent:3", 1},
        {AV_SOURCE_HDMI, false, "call=1 set=stAudioDecInfo.eAudioFormat:1", 1},
        {AV_SOURCE_YPBPR, false, "call=2 set=eStatus:0", 1},
        {AV_SOURCE_CVBS, false, "call=1 set=stAudioDecInfo.eChannelInfo:9", 0},
        {AV_SOURCE_DTV, false, "call=1 set=stAudioDecInfo.eAudioFormat:1", 1},
        {AV_SOURCE_DTV, false, "call=1 set=stAudioDecInfo.eChannelInfo:9", 1},
        {AV_SOURCE_PVR, false, "call=1 set=stAudioDecInfo.eChannelInfo:8", 0},
        {AV_SOURCE_PVR, false, "call=2 set=uPts:0", 1},
        {AV_SOURCE_DTV, false, "call=3 set=eStatus:0", 1},
        {AV_SOURCE_ATV, false, "call=1 set=eParamType:4", 1},
        {AV_SOURCE_ATV, false, "call=1 set=eStatus:0", 0},
        {AV_SOURCE_ATV, false, "call=2 set=eParamType:0", 0},
        {AV_SOURCE_ATV, false, "call=2 set=stAudioDecInfo.audioPresent:3", 1},
        {AV_SOURCE_ATV, false, "call=2 set=stAudioDecInfo.eAudioFormat:1", 1},
    };
    for (uint32_t kind : kinds) {
        const AvSource source = sourceOf(kind);
        answerAs(kind);
        EXPECT_EQ(AV_CheckVideoInfo(&source), TC_SUCCESS) << kind;
        EXPECT_EQ(AV_CheckAudioInfo(&source), TC_SUCCESS) << kind;
    }
    for (const auto& row : rows) {
        const AvSource source = sourceOf(row.kind);
        answerAs(row.kind);
        addFault((row.isVideo ? videoAnswer : audioAnswer) + row.fault);
        EXPECT_EQ(row.isVideo ? AV_CheckVideoInfo(&source) : AV_CheckAudioInfo(&source),
                  row.verdict)
            << row.kind << " " << row.fault;
    }
    qlx_sim_clear_faults();
    EXPECT_EQ(AV_StopAudioVideo(&stSource), 0u);
}

TEST_F(AvJudges, APictureOfUhdTellsItsRange) {
    const AvSource stSource = AV_SelectSource(cvbs0);
    const AvSource dtv = sourceOf(AV_SOURCE_DTV);
    const AvSource hdmi = sourceOf(AV_SOURCE_HDMI);
    ASSERT_EQ(AV_PlayAudioVideo(&stSource, nullptr), 0u);
    const struct {
        int width;
        int height;
        int range;
        uint32_t verdict;
    } rows[] = {
        {3840, 2160, 0, 1}, {3840, 2160, 1, 0}, {3840, 2160, 4, 0}, {3840, 2160, 5, 1},
        {1920, 1080, 0, 0}, {3839, 2160, 0, 0}, {3840, 2159, 0, 0}, {4096, 2304, 0, 1},
    };
    for (const auto& row : rows) {
        for (const AvSource* source : {&hdmi, &dtv}) {
            answerAs(source->eSource);
            const std::string info = videoAnswer + "call=1 set=stVideoDecInfo.";
            addFault(info + "uFrameWidth:" + std::to_string(row.width));
            addFault(info + "uFrameHeight:" + std::to_string(row.height));
            addFault(info + "eHdrType:" + std::to_string(row.range));
            EXPECT_EQ(AV_CheckVideoInfo(source), source == &dtv ? row.verdict : 0u)
                << row.width << "x" << row.height << " " << row.range;
        }
    }
    qlx_sim_clear_faults();
    EXPECT_EQ(AV_StopAudioVideo(&stSource), 0u);
}

// Logs.

TEST_F(AvJudges, VideoEventsComeInOrder) {
    // s started, f first picture, p picture, y in step, n no picture, d stopped.
    const std::map<char, std::function<void()>> events = {
        {'s', [&] { video(QLX_EVENT_VIDEO_START_DONE); }},
        {'f', [&] { video(QLX_EVENT_VIDEO_FRAME_READY); }},
        {'p', [&] { video(QLX_EVENT_VIDEO_INFO_CHANGE); }},
        {'y', [&] { video(QLX_EVENT_VIDEO_SYNC_DONE); }},
        {'n', [&] { video(QLX_EVENT_VIDEO_INFO_CHANGE, 0, QLX_VIDEO_NOT_PRESENT); }},
        {'a', [&] { video(QLX_EVENT_VIDEO_INFO_CHANGE, 0, 2); }},
        {'d', [&] { video(QLX_EVENT_VIDEO_STOP_DONE); }},
    };
    const struct {
        const char* log;
        /** Whether a broadcast, an input, and an analog front end that tunes by itself pass. */
        bool coded, plain, tuning;
    } rows[] = {
        {"sfpynd", true, true, true},    {"spyfdn", true, true, true},
        {"sfpnd", false, true, true},    {"fpynd", false, false, true},
        {"fspynd", false, false, true},  {"sfpyd", false, false, false},
        {"sfpyn", false, false, false},  {"spynd", false, false, false},
        {"sfynd", false, false, false},  {"sfypnd", false, true, true},
        {"sfnpyd", false, false, false}, {"sfdpyn", false, false, false},
        {"pfsynd", false, false, true},  {"sfpyad", false, false, false},
        {"syd", false, false, false},    {"", false, false, false},
    };
    for (const auto& row : rows) {
        AV_ClearVideoLog();
        for (const char* at = row.log; *at != '\0'; at++)
            events.at (*at)();
        for (uint32_t kind : kinds) {
            const AvSource source = sourceOf(kind);
            EXPECT_EQ(AV_CheckVideoEventFlow(&source),
                      (isCoded(kind) ? row.coded : row.plain) ? TC_SUCCESS : TC_FAILURE)
                << row.log << " of " << kind;
        }
        zk_testConfig.features[FEATURE_AFE_TUNING_AFTER_ATV_SOURCE] = 1;
        const AvSource atv = sourceOf(AV_SOURCE_ATV);
        const AvSource cvbs = sourceOf(AV_SOURCE_CVBS);
        EXPECT_EQ(AV_CheckVideoEventFlow(&atv), row.tuning ? TC_SUCCESS : TC_FAILURE) << row.log;
        EXPECT_EQ(AV_CheckVideoEventFlow(&cvbs), row.plain ? TC_SUCCESS : TC_FAILURE) << row.log;
        zk_testConfig.features[FEATURE_AFE_TUNING_AFTER_ATV_SOURCE] = 0;
    }
}

TEST_F(AvJudges, AudioEventsComeInOrder) {
    const AvSource source = sourceOf(AV_SOURCE_DTV);
    audio(QLX_EVENT_AUDIO_STOP_DONE);
    EXPECT_EQ(AV_CheckAudioEventFlow(&source), TC_FAILURE) << "no sound";
    audio(QLX_EVENT_AUDIO_INFO_CHANGE, 0, QLX_AUDIO_NOT_PRESENT);
    EXPECT_EQ(AV_CheckAudioEventFlow(&source), TC_FAILURE) << "none still";
    audio(QLX_EVENT_AUDIO_INFO_CHANGE);
    EXPECT_EQ(AV_CheckAudioEventFlow(&source), TC_FAILURE) << "stopped before";
    audio(QLX_EVENT_AUDIO_STOP_DONE);
    EXPECT_EQ(AV_CheckAudioEventFlow(&source), TC_SUCCESS);
}

TEST_F(AvJudges, EventsComeInTime) {
    const struct {
        int64_t syncMs, soundMs;
        uint32_t syncVerdict, soundVerdict;
    } rows[] = {{2200, 1700, 0, 0}, {2201, 1701, 1, 1}, {-1, -1, 0, 0}, {100000, 0, 1, 0}};
    for (const auto& row : rows) {
        AV_ClearVideoLog();
        AV_ClearAudioLog();
        for (uint32_t event :
             {QLX_EVENT_VIDEO_START_DONE, QLX_EVENT_VIDEO_FRAME_READY, QLX_EVENT_VIDEO_INFO_CHANGE})
            video(event, 50000);
        video(QLX_EVENT_VIDEO_SYNC_DONE, row.syncMs);
        audio(QLX_EVENT_AUDIO_INFO_CHANGE, row.soundMs);
        for (uint32_t kind : kinds) {
            const AvSource source = sourceOf(kind);
            EXPECT_EQ(AV_CheckVideoEventConsumption(&source, &start),
                      isCoded(kind) ? row.syncVerdict : 0u)
                << row.syncMs << " of " << kind;
            EXPECT_EQ(AV_CheckAudioEventConsumption(&source, &start), row.soundVerdict)
                << row.soundMs << " of " << kind;
        }
    }
    takeOutput();
    const AvSource source = sourceOf(AV_SOURCE_DTV);
    AV_CheckVideoEventConsumption(&source, &start);
    const std::string said = takeOutput();
    for (const char* line : {"Event [start done] consumption time is 50000 ms\r\n",
                             "Event [frame ready] consumption time is 50000 ms\r\n",
                             "Event [signal present] consumption time is 50000 ms\r\n",
                             "Event [sync done] consumption time is 100000 ms\r\n"})
        EXPECT_EQ(count(said, line), 1u) << line << said;
}

TEST_F(AvJudges, AnEventThatDoesNotComeHasNoTime) {
    // All that may be missing in turn; an analog front end needs the picture alone.
    const uint32_t events[] = {QLX_EVENT_VIDEO_START_DONE, QLX_EVENT_VIDEO_FRAME_READY,
                               QLX_EVENT_VIDEO_INFO_CHANGE, QLX_EVENT_VIDEO_SYNC_DONE};
    for (uint32_t missing : events) {
        AV_ClearVideoLog();
        for (uint32_t event : events) {
            if (event != missing)
                video(event);
        }
        for (uint32_t kind : kinds) {
            const AvSource source = sourceOf(kind);
            const bool needed =
                missing == QLX_EVENT_VIDEO_INFO_CHANGE ||
                (missing == QLX_EVENT_VIDEO_SYNC_DONE ? isCoded(kind) : kind != AV_SOURCE_ATV);
            EXPECT_EQ(AV_CheckVideoEventConsumption(&source, &start),
                      needed ? TC_FAILURE : TC_SUCCESS)
                << missing << " of " << kind;
        }
    }
    const AvSource source = sourceOf(AV_SOURCE_CVBS);
    EXPECT_EQ(AV_CheckAudioEventConsumption(&source, &start), TC_FAILURE);
}

TEST_F(AvJudges, AFullLogBeginsAnew) {
    const AvSource source = sourceOf(AV_SOURCE_CVBS);
    video(QLX_EVENT_VIDEO_START_DONE);
    video(QLX_EVENT_VIDEO_FRAME_READY);
    video(QLX_EVENT_VIDEO_INFO_CHANGE);
    video(QLX_EVENT_VIDEO_INFO_CHANGE, 0, QLX_VIDEO_NOT_PRESENT);
    while (g_stVideoRequestData.uCount < 50)
        video(QLX_EVENT_VIDEO_STOP_DONE);
    EXPECT_EQ(AV_CheckVideoEventFlow(&source), TC_SUCCESS) << "50 are kept";
    video(QLX_EVENT_VIDEO_STOP_DONE);
    EXPECT_EQ(g_stVideoRequestData.uCount, 1u);
    EXPECT_EQ(AV_CheckVideoEventFlow(&source), TC_FAILURE) << "what lies behind does not count";
    for (int i = 0; i < 51; i++)
        audio(QLX_EVENT_AUDIO_INFO_CHANGE, 0, i == 50 ? QLX_AUDIO_NOT_PRESENT : QLX_AUDIO_PRESENT);
    EXPECT_EQ(g_stAudioRequestData.uCount, 1u);
    EXPECT_EQ(AV_CheckAudioEventConsumption(&source, &start), TC_FAILURE);
}

}  // namespace

#include "testcase/av/av_ladders.h"

#include <stddef.h>

#include <iterator>

#include "framework/case/ladder.h"
#include "framework/case/timed.h"
#include "testcase/av/av_events.h"

enum {
    /** Of the way with rounds. */
    ROUNDS = 2,
    /** The steps that a family is about stand at the end of its ladder: video's, then audio's. */
    TRIED_STEPS = 2,
};

/** The bare decoders of a source. */
struct DecoderBench {
    AvSource stAvSource;
    /** Which decoders take part. */
    bool hasVideo;
    bool hasAudio;
    QLX_VideoAttr stVideoAttr;
    QLX_AudioAttr stAudioSource;
    TcChannelInfo stChannelInfo;
};

static bool hasVideo(const DecoderBench& bench) {
    return bench.hasVideo;
}

static bool hasAudio(const DecoderBench& bench) {
    return bench.hasAudio;
}

/** An analog front end needs both services, whatever is decoded. */
static bool needsVideoService(const DecoderBench& bench) {
    return bench.hasVideo || bench.stAvSource.eSource == AV_SOURCE_ATV;
}

static bool needsAudioService(const DecoderBench& bench) {
    return bench.hasAudio || bench.stAvSource.eSource == AV_SOURCE_ATV;
}

static int64_t fillAttr(DecoderBench& bench) {
    return AV_FillDecoderAttr(bench.stAvSource, &bench.stVideoAttr, &bench.stAudioSource) ? 0 : 1;
}

static int64_t startVideo(const DecoderBench& bench) {
    const TcChannelInfo& stChannelInfo = bench.stChannelInfo;
    return QLX_VideoStart(bench.stAvSource.eVideoDev, stChannelInfo.eVideoFormat,
                          stChannelInfo.uVideoPid);
}

static int64_t startAudio(const DecoderBench& bench) {
    const TcChannelInfo& stChannelInfo = bench.stChannelInfo;
    return QLX_AudioStart(bench.stAvSource.eAudioDev, stChannelInfo.eAudioFormat[0],
                          stChannelInfo.uAudioPids[0]);
}

using Step = LadderStep<DecoderBench>;

// clang-format off
static constexpr Step videoService =    {LADDER_CALL("QLX_VideoInit()", QLX_VideoInit()),                                                               LADDER_CALL("QLX_VideoDeInit()", QLX_VideoDeInit()),                                   UNDO_CHECKED, needsVideoService};
static constexpr Step audioService =    {LADDER_CALL("QLX_AudioInit()", QLX_AudioInit()),                                                               LADDER_CALL("QLX_AudioDeInit()", QLX_AudioDeInit()),                                   UNDO_CHECKED, needsAudioService};
static constexpr Step signalStep =      {LADDER_CALL("TC_AV_START_SOURCE(&stAvSource)", TC_AV_START_SOURCE(&bench.stAvSource)),                         LADDER_CALL("TC_AV_STOP_SOURCE(&stAvSource)", TC_AV_STOP_SOURCE(&bench.stAvSource))};
static constexpr Step attrStep =        {LADDER_CALL("AV_FillDecoderAttr(stAvSource, &stVideoAttr, &stAudioSource)", fillAttr(bench)),  LADDER_NONE};
static constexpr Step videoOpened =     {LADDER_CALL("QLX_VideoOpen(eVideoDev, &stVideoAttr)", QLX_VideoOpen(bench.stAvSource.eVideoDev, &bench.stVideoAttr)),   LADDER_CALL("QLX_VideoClose(eVideoDev)", QLX_VideoClose(bench.stAvSource.eVideoDev)), UNDO_CHECKED, hasVideo};
static constexpr Step audioOpened =     {LADDER_CALL("QLX_AudioOpen(eAudioDev, &stAudioSource)", QLX_AudioOpen(bench.stAvSource.eAudioDev, &bench.stAudioSource)), LADDER_CALL("QLX_AudioClose(eAudioDev)", QLX_AudioClose(bench.stAvSource.eAudioDev)), UNDO_CHECKED, hasAudio};
static constexpr Step videoRegistered = {LADDER_CALL("QLX_VideoRegisterCallback(eVideoDev, &g_stVideoRequestData, AV_VideoEventCallback)", QLX_VideoRegisterCallback(bench.stAvSource.eVideoDev, &g_stVideoRequestData, AV_VideoEventCallback)), LADDER_CALL("QLX_VideoUnRegisterCallback(eVideoDev, AV_VideoEventCallback)", QLX_VideoUnRegisterCallback(bench.stAvSource.eVideoDev, AV_VideoEventCallback)), UNDO_CHECKED, hasVideo};
static constexpr Step audioRegistered = {LADDER_CALL("QLX_AudioRegisterCallback(eAudioDev, &g_stAudioRequestData, AV_AudioEventCallback)", QLX_AudioRegisterCallback(bench.stAvSource.eAudioDev, &g_stAudioRequestData, AV_AudioEventCallback)), LADDER_CALL("QLX_AudioUnRegisterCallback(eAudioDev, AV_AudioEventCallback)", QLX_AudioUnRegisterCallback(bench.stAvSource.eAudioDev, AV_AudioEventCallback)), UNDO_CHECKED, hasAudio};
static constexpr Step codedVideo =      {LADDER_CALL("QLX_VideoStart(eVideoDev, stChannelInfo.eVideoFormat, stChannelInfo.uVideoPid)", startVideo(bench)),         LADDER_CALL("QLX_VideoStop(eVideoDev)", QLX_VideoStop(bench.stAvSource.eVideoDev)), UNDO_CHECKED, hasVideo};
static constexpr Step codedAudio =      {LADDER_CALL("QLX_AudioStart(eAudioDev, stChannelInfo.eAudioFormat[0], stChannelInfo.uAudioPids[0])", startAudio(bench)),  LADDER_CALL("QLX_AudioStop(eAudioDev)", QLX_AudioStop(bench.stAvSource.eAudioDev)), UNDO_CHECKED, hasAudio};
static constexpr Step plainVideo =      {LADDER_CALL("QLX_VideoStart(eVideoDev, QLX_VIDEO_FORMAT_NONE, 0)", QLX_VideoStart(bench.stAvSource.eVideoDev, QLX_VIDEO_FORMAT_NONE, 0)), LADDER_CALL("QLX_VideoStop(eVideoDev)", QLX_VideoStop(bench.stAvSource.eVideoDev)), UNDO_CHECKED, hasVideo};
static constexpr Step plainAudio =      {LADDER_CALL("QLX_AudioStart(eAudioDev, QLX_AUDIO_FORMAT_NONE, 0)", QLX_AudioStart(bench.stAvSource.eAudioDev, QLX_AUDIO_FORMAT_NONE, 0)), LADDER_CALL("QLX_AudioStop(eAudioDev)", QLX_AudioStop(bench.stAvSource.eAudioDev)), UNDO_CHECKED, hasAudio};

static const Step openSteps[] =       {videoService, audioService, signalStep, attrStep, videoOpened, audioOpened};
static const Step registerSteps[] =   {videoService, audioService, signalStep, attrStep, videoOpened, audioOpened, videoRegistered, audioRegistered};
static const Step startCodedSteps[] = {videoService, audioService, signalStep, attrStep, videoOpened, videoRegistered, audioOpened, codedVideo, codedAudio};
static const Step startPlainSteps[] = {videoService, audioService, signalStep, attrStep, videoOpened, videoRegistered, audioOpened, plainVideo, plainAudio};
// clang-format on

/** A family: its steps, and how the console calls the calls of those that it is about. */
struct Family {
    const Step* steps;
    size_t count;
    const char* videoUp;
    const char* audioUp;
    const char* audioDown;
    const char* videoDown;
};

// clang-format off
static const Family openFamily =       {openSteps,       std::size(openSteps),       "opening video",     "opening audio",     "closing audio",       "closing video"};
static const Family registerFamily =   {registerSteps,   std::size(registerSteps),   "registering video", "registering audio", "unregistering audio", "unregistering video"};
static const Family startCodedFamily = {startCodedSteps, std::size(startCodedSteps), "starting video",    "starting audio",    "stoping audio",       "stoping video"};
static const Family startPlainFamily = {startPlainSteps, std::size(startPlainSteps), "starting video",    "starting audio",    "stoping audio",       "stoping video"};
// clang-format on

static const Step& videoStep(const Family& family) {
    return family.steps[family.count - 2];
}

static const Step& audioStep(const Family& family) {
    return family.steps[family.count - 1];
}

/** The channel that the decoders are started on; of a recording, the configured one. */
static TcChannelInfo channelOf(const AvSource& source) {
    TcChannelInfo stChannelInfo = {};
    if (source.eSource == AV_SOURCE_PVR)
        zk_test_get_pvr_playback_channel_info(zk_testConfig.av.uPvrPlaybackChannelId,
                                              &stChannelInfo);
    else if (source.eSource == AV_SOURCE_DTV)
        AV_GetChannel(source, 0, &stChannelInfo);
    return stChannelInfo;
}

static bool upAndDown(CaseContext& tc, DecoderBench& bench, const Step& step) {
    return TC_EXPECT_RET_TEXT(step.upText, step.up(bench)) &&
           TC_EXPECT_RET_TEXT(step.downText, step.down(bench));
}

static void tryRounds(CaseContext& tc, DecoderBench& bench, const Family& family) {
    for (int round = 0; round < ROUNDS; round++) {
        if (!upAndDown(tc, bench, videoStep(family)) || !upAndDown(tc, bench, audioStep(family)))
            return;
    }
}

/** A step that has been too slow is up, and taken down, but nothing is begun behind it. */
static void tryTimed(CaseContext& tc, DecoderBench& bench, const Family& family) {
    const struct {
        const Step& step;
        const char* up;
        const char* down;
    } tried[TRIED_STEPS] = {
        {videoStep(family), family.videoUp, family.videoDown},
        {audioStep(family), family.audioUp, family.audioDown},
    };
    int up = 0;
    for (bool inTime = true; inTime && up < TRIED_STEPS; up++) {
        const Step& step = tried[up].step;
        int64_t answer = 0;
        inTime =
            tc_timedCall(tc, tried[up].up, step.upText, [&] { return answer = step.up(bench); });
        if (answer != 0)
            break;
    }
    while (up-- > 0) {
        const Step& step = tried[up].step;
        tc_timedCall(tc, tried[up].down, step.downText, [&] { return step.down(bench); });
    }
}

/** The body of all ladder cases. */
static uint32_t ladderBase(const char* name, const Family& family, AvLadderWay way,
                           const AvSelector& selector) {
    CaseContext tc = {name};
    DecoderBench bench = {};
    bench.stAvSource = AV_SelectSource(selector);
    bench.hasVideo = way != AV_AUDIO_ALONE && way != AV_AUDIO_TWICE;
    bench.hasAudio = way != AV_VIDEO_ALONE && way != AV_VIDEO_TWICE;
    bench.stChannelInfo = channelOf(bench.stAvSource);
    AV_ClearVideoLog();
    AV_ClearAudioLog();
    Ladder<DecoderBench> ladder(tc, bench, family.steps, family.count);
    if (way == AV_BOTH_TWO_ROUNDS || way == AV_BOTH_TIMED) {
        if (ladder.up(family.count - TRIED_STEPS)) {
            if (way == AV_BOTH_TIMED)
                tryTimed(tc, bench, family);
            else
                tryRounds(tc, bench, family);
        }
    } else if (ladder.up() && (way == AV_VIDEO_TWICE || way == AV_AUDIO_TWICE)) {
        const Step& step = way == AV_VIDEO_TWICE ? videoStep(family) : audioStep(family);
        TC_EXPECT_REFUSED_TEXT(step.upText, step.up(bench));
    }
    ladder.down();
    return TC_RESULT(tc);
}

static uint32_t ladderVariant(const char* name, const Family& family, AvLadderWay way,
                              const AvSelector& selector) {
    CaseContext tc = {name};
    if (!AV_IsOnBoard(selector))
        return tc_notApplicable(tc);
    return AV_RunVariant(name, selector.arguments,
                         [&](const char* base) { return ladderBase(base, family, way, selector); });
}

uint32_t AV_OpenClose(const char* name, AvLadderWay way, const AvSelector& selector) {
    return ladderVariant(name, openFamily, way, selector);
}

uint32_t AV_RegisterCallback(const char* name, AvLadderWay way, const AvSelector& selector) {
    return ladderVariant(name, registerFamily, way, selector);
}

uint32_t AV_StartStop(const char* name, AvLadderWay way, const AvSelector& selector) {
    const bool coded = selector.eSource == AV_SOURCE_DTV || selector.eSource == AV_SOURCE_PVR;
    return ladderVariant(name, coded ? startCodedFamily : startPlainFamily, way, selector);
}

// Too early.

/** What the decoders of a broadcast are opened on. */
struct BroadcastAttr {
    QLX_VideoAttr stVideoAttr;
    QLX_AudioAttr stAudioSource;
    BroadcastAttr() {
        AV_FillDecoderAttr(AV_SelectSource(dtv00), &stVideoAttr, &stAudioSource);
    }
};

uint32_t AV_OpenVideoUninitialised(const char* name) {
    CaseContext tc = {name};
    const BroadcastAttr attr;
    const uint32_t eVideoDev = QLX_VIDEODEV_NUMBER_0;
    const QLX_VideoAttr& stVideoAttr = attr.stVideoAttr;
    TC_EXPECT_RET(QLX_VideoInit());
    TC_EXPECT_RET(QLX_VideoDeInit());
    TC_EXPECT_REFUSED(QLX_VideoOpen(eVideoDev, &stVideoAttr));
    return TC_RESULT(tc);
}

uint32_t AV_OpenVideoWithoutSource(const char* name) {
    CaseContext tc = {name};
    const BroadcastAttr attr;
    const uint32_t eVideoDev = QLX_VIDEODEV_NUMBER_0;
    const QLX_VideoAttr& stVideoAttr = attr.stVideoAttr;
    TC_ASSERT_RET(QLX_VideoInit());
    TC_EXPECT_REFUSED(QLX_VideoOpen(eVideoDev, &stVideoAttr));
    TC_EXPECT_RET(QLX_VideoDeInit());
    return TC_RESULT(tc);
}

uint32_t AV_OpenAudioUninitialised(const char* name) {
    CaseContext tc = {name};
    const BroadcastAttr attr;
    const uint32_t eAudioDev = QLX_AUDIODEV_NUMBER_0;
    const QLX_AudioAttr& stAudioSource = attr.stAudioSource;
    TC_EXPECT_RET(QLX_AudioInit());
    TC_EXPECT_RET(QLX_AudioDeInit());
    TC_EXPECT_REFUSED(QLX_AudioOpen(eAudioDev, &stAudioSource));
    return TC_RESULT(tc);
}

uint32_t AV_OpenAudioWithoutSource(const char* name) {
    CaseContext tc = {name};
    const BroadcastAttr attr;
    const uint32_t eAudioDev = QLX_AUDIODEV_NUMBER_0;
    const QLX_AudioAttr& stAudioSource = attr.stAudioSource;
    TC_ASSERT_RET(QLX_AudioInit());
    TC_EXPECT_REFUSED(QLX_AudioOpen(eAudioDev, &stAudioSource));
    TC_EXPECT_RET(QLX_AudioDeInit());
    return TC_RESULT(tc);
}

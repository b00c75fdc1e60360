#include "testcase/av/av_play.h"

#include <unistd.h>

#include "framework/case/ladder.h"
#include "platform/qlx_ci.h"
#include "platform/qlx_desc.h"
#include "testcase/aout/aout_harness.h"
#include "testcase/av/av_decoder.h"
#include "testcase/av/av_events.h"
#include "testcase/vout/vout_harness.h"

enum { ROUTE_TIME_S = 20 };

const int32_t* tcAVFeature;

/** A play: its source, and what its steps hand on to one another. */
struct PlayBench {
    const AvSource* pstSource;
    const TcChannelInfo* pstChannelInfo;
    QLX_Source stQlxSource;
    QLX_VideoDecInfo stVideoDecInfo;
    // Through the common interface.
    uint32_t eSlot;
    uint32_t eMode;
    uint32_t pbPresent;
    // Through a descrambler, which plays this channel.
    uint32_t u32HDesc;
    TcChannelInfo stChannelInfo;
    // One decoder alone.
    QLX_VideoAttr stVideoAttr;
    QLX_AudioAttr stAudioSource;
    QLX_VideoCapability stVideoCapability;
    QLX_AudioCapability stAudioCapability;
};

using PlayStep = LadderStep<PlayBench>;

static PlayBench playBenchOf(const AvSource* pstSource, const TcChannelInfo* pstChannelInfo) {
    PlayBench bench = {};
    bench.pstSource = AV_SourceOrConfigured(pstSource);
    bench.pstChannelInfo = pstChannelInfo;
    bench.eSlot = QLX_CI_SLOT_0;
    zk_test_get_feature(&tcAVFeature);
    return bench;
}

/** Else the analog front end holds it. */
static bool opensOutput(const PlayBench& bench) {
    return bench.pstSource->eSource != AV_SOURCE_ATV ||
           tcAVFeature[FEATURE_AFE_TUNING_AFTER_ATV_SOURCE] == 0;
}

static int64_t openOutput(PlayBench& bench) {
    AV_AvSource2QlxSource(bench.pstSource, &bench.stQlxSource);
    return TC_VOUT_OPEN(&bench.stQlxSource);
}

/** The path from tuner 0 to demultiplexer 0, whatever the source names: slot 0 has no other. */
static int64_t setRoute(const PlayBench& bench, uint32_t eMode) {
    const QLX_CITsConfig psConfig = {
        eMode, {QLX_SOURCE_TYPE_TUNER, 0, 0}, QLX_SOURCE_TYPE_DEMUX, 0};
    return QLX_CISetTsConfig(bench.eSlot, &psConfig);
}

static int64_t openDescrambler(PlayBench& bench) {
    QLX_DescOpenParam stOpenParam = {};
    stOpenParam.eAlgorithm = QLX_DESC_ALGORITHM_MULTI2;
    return QLX_DescOpen(stOpenParam, &bench.u32HDesc);
}

/** Keys of zeros: what is not scrambled passes, and what is stays as it is until a case sets its
 *  own. */
static int64_t setEmptyKeys(const PlayBench& bench) {
    QLX_DescKeys stKeys = {};
    stKeys.eEvenKeyKind = QLX_DESC_KEY_KIND_CLEAR;
    stKeys.eOddKeyKind = QLX_DESC_KEY_KIND_CLEAR;
    stKeys.eIvKind = QLX_DESC_KEY_KIND_CLEAR;
    stKeys.eSystemKeyKind = QLX_DESC_KEY_KIND_CLEAR;
    stKeys.bUpdate = QLX_TRUE;
    return QLX_SetKeys(bench.u32HDesc, stKeys);
}

// Steps that the plays are made of, and their undoing.

static constexpr PlayStep initStep = {LADDER_CALL("TC_AV_INIT()", TC_AV_INIT()),
                                      LADDER_CALL("TC_AV_DEINIT()", TC_AV_DEINIT())};
static constexpr PlayStep signalStep = {
    LADDER_CALL("TC_AV_START_SOURCE(pstSource)", TC_AV_START_SOURCE(bench.pstSource)),
    LADDER_CALL("TC_AV_STOP_SOURCE(pstSource)", TC_AV_STOP_SOURCE(bench.pstSource))};
static constexpr PlayStep decodersStep = {
    LADDER_CALL("TC_AV_OPEN(pstSource)", TC_AV_OPEN(bench.pstSource)),
    LADDER_CALL("TC_AV_CLOSE(pstSource)", TC_AV_CLOSE(bench.pstSource))};
static constexpr PlayStep sinksStep = {LADDER_CALL("TC_AOUT_OPEN()", TC_AOUT_OPEN()),
                                       LADDER_CALL("TC_AOUT_CLOSE()", TC_AOUT_CLOSE())};
static constexpr PlayStep outputStep = {
    LADDER_CALL("TC_VOUT_OPEN(&stQlxSource)", openOutput(bench)),
    LADDER_CALL("TC_VOUT_CLOSE()", TC_VOUT_CLOSE()), UNDO_CHECKED, opensOutput};
static constexpr PlayStep startStep = {
    LADDER_CALL("TC_AV_START(pstSource, pstChannelInfo, &stVideoDecInfo)",
                TC_AV_START(bench.pstSource, bench.pstChannelInfo, &bench.stVideoDecInfo)),
    LADDER_CALL("TC_AV_STOP(pstSource)", TC_AV_STOP(bench.pstSource))};
static constexpr PlayStep soundStep = {LADDER_CALL("TC_AOUT_START()", TC_AOUT_START()),
                                       LADDER_CALL("TC_AOUT_STOP()", TC_AOUT_STOP())};
static constexpr PlayStep pictureStep = {
    LADDER_CALL("TC_VOUT_START(&stVOutInRect)", VOUT_StartOnPicture(bench.stVideoDecInfo)),
    LADDER_CALL("TC_VOUT_STOP()", TC_VOUT_STOP())};
/** The same of a picture alone, which tells its rectangle by another name. */
static constexpr PlayStep lonePictureStep = {
    LADDER_CALL("TC_VOUT_START(&stInRect)", VOUT_StartOnPicture(bench.stVideoDecInfo)),
    LADDER_CALL("TC_VOUT_STOP()", TC_VOUT_STOP())};

// Picture and sound.

static const PlayStep playSteps[] = {
    initStep, signalStep, decodersStep, sinksStep, outputStep, startStep, soundStep, pictureStep,
};
/** What AV_StopAudioVideo leaves up: the decoders' initialisation. */
enum { PLAY_STEPS_LEFT = 1 };

uint32_t AV_PlayAudioVideo(const AvSource* pstSource, const TcChannelInfo* pstChannelInfo) {
    CaseContext tc = {__func__};
    PlayBench bench = playBenchOf(pstSource, pstChannelInfo);
    ladderUp(tc, bench, playSteps);
    return tc.result;
}

uint32_t AV_StopAudioVideo(const AvSource* pstSource) {
    CaseContext tc = {__func__};
    PlayBench bench = playBenchOf(pstSource, nullptr);
    ladderDown(tc, bench, playSteps, PLAY_STEPS_LEFT);
    return tc.result;
}

uint32_t TC_AV_PLAY_AUDIO_VIDEO(const AvSource* pstSource, const TcChannelInfo* pstChannelInfo) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(AV_PlayAudioVideo(pstSource, pstChannelInfo));
    return TC_RESULT(tc);
}

uint32_t TC_AV_STOP_AUDIO_VIDEO(const AvSource* pstSource) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(AV_StopAudioVideo(pstSource));
    return TC_RESULT(tc);
}

// Through the common interface: the route is set when the decoders run already, and taken back
// before they are stopped.

/** A service of the slots that does not end still owns the stream: what lies below it is left. */
static constexpr PlayStep slotServiceStep = {LADDER_CALL("QLX_CIInit()", QLX_CIInit()),
                                             LADDER_CALL("QLX_CIDeInit()", QLX_CIDeInit()),
                                             UNDO_OR_STAY};
/** A stop takes down whatever it can. */
static constexpr PlayStep slotServiceStopStep = {LADDER_NONE,
                                                 LADDER_CALL("QLX_CIDeInit()", QLX_CIDeInit())};
static constexpr PlayStep slotStep = {LADDER_CALL("QLX_CIOpen(eSlot)", QLX_CIOpen(bench.eSlot)),
                                      LADDER_CALL("QLX_CIClose(eSlot)", QLX_CIClose(bench.eSlot))};
static constexpr PlayStep moduleStep = {
    LADDER_CALL("QLX_CIIsCamPresent(eSlot, &pbPresent)",
                QLX_CIIsCamPresent(bench.eSlot, &bench.pbPresent)),
    LADDER_NONE};
static constexpr PlayStep routeStep = {
    LADDER_CALL("QLX_CISetTsConfig(eSlot, &psConfig)", setRoute(bench, bench.eMode)),
    LADDER_CALL("QLX_CISetTsConfig(eSlot, &psConfig)", setRoute(bench, QLX_CI_TS_MODE_BYPASS))};

// clang-format off
static const PlayStep routedSteps[] = {
    initStep, signalStep, decodersStep, sinksStep, outputStep,
    slotServiceStep, slotStep, moduleStep,
    startStep, routeStep, soundStep, pictureStep,
};
static const PlayStep routedStopSteps[] = {
    initStep, signalStep, decodersStep, sinksStep, outputStep,
    slotServiceStopStep, slotStep,
    startStep, routeStep, soundStep, pictureStep,
};
enum {
    /** Up to the question whether there is a module. */
    ROUTED_MODULE_STEPS = 8,
    /** All but the picture. */
    ROUTED_SOUND_STEPS = 11,
};
// clang-format on

/** Brings the play up to `count` steps, given a module in the slot; an empty one fails silently. */
static bool routedUp(CaseContext& tc, Ladder<PlayBench>& ladder, const PlayBench& bench,
                     size_t count) {
    if (!ladder.up(ROUTED_MODULE_STEPS))
        return false;
    if (bench.pbPresent == QLX_FALSE) {
        tc.result = TC_FAILURE;
        return false;
    }
    return ladder.up(count);
}

uint32_t AV_PlayAudioVideoTsConfig(const AvSource* pstSource, const TcChannelInfo* pstChannelInfo,
                                   uint32_t bPassThrough) {
    CaseContext tc = {__func__};
    PlayBench bench = playBenchOf(pstSource, pstChannelInfo);
    bench.eMode = bPassThrough != 0 ? QLX_CI_TS_MODE_PASS_THROUGH : QLX_CI_TS_MODE_BYPASS;
    Ladder<PlayBench> ladder(tc, bench, routedSteps);
    if (!routedUp(tc, ladder, bench, SIZE_MAX))
        ladder.down();
    return tc.result;
}

uint32_t AV_StopAudioVideoTsConfig(const AvSource* pstSource) {
    CaseContext tc = {__func__};
    PlayBench bench = playBenchOf(pstSource, nullptr);
    ladderDown(tc, bench, routedStopSteps);
    return tc.result;
}

/** Lets the play run for its time, and sets another route then. */
static bool changeRoute(CaseContext& tc, const PlayBench& bench, uint32_t eMode) {
    sleep(ROUTE_TIME_S);
    return TC_EXPECT_RET_TEXT("QLX_CISetTsConfig(eSlot, &psConfig)", setRoute(bench, eMode));
}

uint32_t AV_PlayAudioVideoSwitchTsConfig(const AvSource* pstSource,
                                         const TcChannelInfo* pstChannelInfo) {
    CaseContext tc = {__func__};
    PlayBench bench = playBenchOf(pstSource, pstChannelInfo);
    bench.eMode = QLX_CI_TS_MODE_BYPASS;
    Ladder<PlayBench> ladder(tc, bench, routedSteps);
    // The picture stays on the panel until the output is closed: its step is none of the ladder's.
    if (routedUp(tc, ladder, bench, ROUTED_SOUND_STEPS) &&
        TC_EXPECT_RET_TEXT(pictureStep.upText, pictureStep.up(bench)) &&
        changeRoute(tc, bench, QLX_CI_TS_MODE_PASS_THROUGH) &&
        changeRoute(tc, bench, QLX_CI_TS_MODE_BYPASS))
        sleep(ROUTE_TIME_S);
    ladder.down();
    return tc.result;
}

// Through a descrambler.

static constexpr PlayStep descramblerStep = {
    LADDER_CALL("QLX_DescOpen(stOpenParam, &u32HDesc)", openDescrambler(bench)),
    LADDER_CALL("QLX_DescClose(u32HDesc)", QLX_DescClose(bench.u32HDesc))};
static constexpr PlayStep videoPidStep = {
    LADDER_CALL("QLX_DescSetPid(u32HDesc, stChannelInfo.uVideoPid)",
                QLX_DescSetPid(bench.u32HDesc, bench.stChannelInfo.uVideoPid)),
    LADDER_NONE};
static constexpr PlayStep audioPidStep = {
    LADDER_CALL("QLX_DescSetPid(u32HDesc, stChannelInfo.uAudioPids[0])",
                QLX_DescSetPid(bench.u32HDesc, bench.stChannelInfo.uAudioPids[0])),
    LADDER_NONE};
static constexpr PlayStep keysStep = {
    LADDER_CALL("QLX_SetKeys(u32HDesc, stKeys)", setEmptyKeys(bench)), LADDER_NONE};
static constexpr PlayStep descramblerStopStep = {
    LADDER_NONE, LADDER_CALL("QLX_DescClose(HDesc)", QLX_DescClose(bench.u32HDesc))};

// clang-format off
static const PlayStep descrambledSteps[] = {
    initStep, signalStep, decodersStep, sinksStep, outputStep,
    descramblerStep, videoPidStep, audioPidStep, keysStep,
    startStep, soundStep, pictureStep,
};
static const PlayStep descrambledStopSteps[] = {
    initStep, signalStep, decodersStep, sinksStep, outputStep,
    descramblerStopStep,
    startStep, soundStep, pictureStep,
};
// clang-format on

uint32_t AV_PlayAudioVideoDescramble(const AvSource* pstSource, const TcChannelInfo* pstChannelInfo,
                                     uint32_t* pu32HDesc) {
    CaseContext tc = {__func__};
    PlayBench bench = playBenchOf(pstSource, pstChannelInfo);
    if (pstChannelInfo != nullptr)
        bench.stChannelInfo = *pstChannelInfo;
    else
        AV_GetChannel(*bench.pstSource, bench.pstSource->TransmissionSystem_e,
                      &bench.stChannelInfo);
    ladderUp(tc, bench, descrambledSteps);
    *pu32HDesc = bench.u32HDesc;
    return tc.result;
}

uint32_t AV_StopAudioVideoDescramble(const AvSource* pstSource, uint32_t HDesc) {
    CaseContext tc = {__func__};
    PlayBench bench = playBenchOf(pstSource, nullptr);
    bench.u32HDesc = HDesc;
    ladderDown(tc, bench, descrambledStopSteps);
    return tc.result;
}

// One decoder alone. No clock reference is set, and the sound's volume and mute stay as they are.

static bool isCoded(const PlayBench& bench) {
    return AV_IsCoded(*bench.pstSource);
}

static bool isNotCoded(const PlayBench& bench) {
    return !isCoded(bench);
}

static int64_t startVideo(const PlayBench& bench) {
    const TcChannelInfo& channel = bench.stChannelInfo;
    return QLX_VideoStart(bench.pstSource->eVideoDev, channel.eVideoFormat, channel.uVideoPid);
}

static int64_t startAudio(const PlayBench& bench) {
    const TcChannelInfo& channel = bench.stChannelInfo;
    return QLX_AudioStart(bench.pstSource->eAudioDev, channel.eAudioFormat[0],
                          channel.uAudioPids[0]);
}

// clang-format off
static const PlayStep videoSteps[] = {
    initStep,
    signalStep,
    {LADDER_CALL("QLX_VideoOpen(eVideoDev, &stVideoAttr)", QLX_VideoOpen(bench.pstSource->eVideoDev, &bench.stVideoAttr)),                                                                                   LADDER_CALL("QLX_VideoClose(eVideoDev)", QLX_VideoClose(bench.pstSource->eVideoDev))},
    {LADDER_CALL("QLX_VideoGetCapability(eVideoDev, &stVideoCapability)", QLX_VideoGetCapability(bench.pstSource->eVideoDev, &bench.stVideoCapability)),                                                     LADDER_NONE},
    {LADDER_CALL("QLX_VideoRegisterCallback(eVideoDev, &g_stVideoRequestData, AV_VideoEventCallback)", QLX_VideoRegisterCallback(bench.pstSource->eVideoDev, &g_stVideoRequestData, AV_VideoEventCallback)), LADDER_CALL("QLX_VideoUnRegisterCallback(eVideoDev, AV_VideoEventCallback)", QLX_VideoUnRegisterCallback(bench.pstSource->eVideoDev, AV_VideoEventCallback))},
    outputStep,
    {LADDER_CALL("QLX_VideoStart(eVideoDev, eVideoFormat, uVideoPid)", startVideo(bench)),                                                                                                                   LADDER_CALL("QLX_VideoStop(eVideoDev)", QLX_VideoStop(bench.pstSource->eVideoDev)), UNDO_CHECKED, isCoded},
    {LADDER_CALL("QLX_VideoStart(eVideoDev, QLX_VIDEO_FORMAT_NONE, 0)", QLX_VideoStart(bench.pstSource->eVideoDev, QLX_VIDEO_FORMAT_NONE, 0)),                                                               LADDER_CALL("QLX_VideoStop(eVideoDev)", QLX_VideoStop(bench.pstSource->eVideoDev)), UNDO_CHECKED, isNotCoded},
    lonePictureStep,
};
static const PlayStep audioSteps[] = {
    initStep,
    signalStep,
    {LADDER_CALL("QLX_AudioOpen(eAudioDev, &stAudioSource)", QLX_AudioOpen(bench.pstSource->eAudioDev, &bench.stAudioSource)),                                                                               LADDER_CALL("QLX_AudioClose(eAudioDev)", QLX_AudioClose(bench.pstSource->eAudioDev))},
    {LADDER_CALL("QLX_AudioRegisterCallback(eAudioDev, &g_stAudioRequestData, AV_AudioEventCallback)", QLX_AudioRegisterCallback(bench.pstSource->eAudioDev, &g_stAudioRequestData, AV_AudioEventCallback)), LADDER_CALL("QLX_AudioUnRegisterCallback(eAudioDev, AV_AudioEventCallback)", QLX_AudioUnRegisterCallback(bench.pstSource->eAudioDev, AV_AudioEventCallback))},
    {LADDER_CALL("QLX_AudioGetCapability(eAudioDev, &stAudioCapability)", QLX_AudioGetCapability(bench.pstSource->eAudioDev, &bench.stAudioCapability)),                                                     LADDER_NONE},
    sinksStep,
    {LADDER_CALL("QLX_AudioStart(eAudioDev, eAudioFormat[0], uAudioPids[0])", startAudio(bench)),                                                                                                            LADDER_CALL("QLX_AudioStop(eAudioDev)", QLX_AudioStop(bench.pstSource->eAudioDev)), UNDO_CHECKED, isCoded},
    {LADDER_CALL("QLX_AudioStart(eAudioDev, QLX_AUDIO_FORMAT_NONE, 0)", QLX_AudioStart(bench.pstSource->eAudioDev, QLX_AUDIO_FORMAT_NONE, 0)),                                                               LADDER_CALL("QLX_AudioStop(eAudioDev)", QLX_AudioStop(bench.pstSource->eAudioDev)), UNDO_CHECKED, isNotCoded},
    soundStep,
};
// clang-format on
enum {
    /** Up to a decoder that runs. */
    VIDEO_RUNNING_STEPS = 8,
    AUDIO_RUNNING_STEPS = 8,
};

/** What one decoder alone is opened on and plays; false, with a line on the console, for an unknown
 *  source. */
static bool prepareLoneDecoder(PlayBench& bench) {
    if (!AV_FillLoneDecoderAttr(*bench.pstSource, &bench.stVideoAttr, &bench.stAudioSource))
        return false;
    if (bench.pstChannelInfo != nullptr)
        bench.stChannelInfo = *bench.pstChannelInfo;
    else if (isCoded(bench))
        AV_GetChannel(*bench.pstSource, 0, &bench.stChannelInfo);
    return true;
}

static bool waitForPicture(CaseContext& tc, PlayBench& bench) {
    const AvVideoEvent* picture = AV_WaitFor(AV_FindPicture, AV_POLL_ROUNDS);
    if (!TC_EXPECT_TRUE(picture != nullptr))
        return false;
    bench.stVideoDecInfo = picture->stVideoDecInfo;
    return true;
}

/** Alone, a source without a sound has nothing to play. */
static bool waitForSound(CaseContext& tc) {
    const AvAudioEvent* sound = AV_WaitFor(AV_FindSound, AV_POLL_ROUNDS);
    return TC_EXPECT_TRUE(sound != nullptr);
}

uint32_t AV_StartVideoOnly(const AvSource* pstSource, const TcChannelInfo* pstChannelInfo) {
    CaseContext tc = {__func__};
    PlayBench bench = playBenchOf(pstSource, pstChannelInfo);
    AV_ClearVideoLog();
    if (!prepareLoneDecoder(bench))
        return TC_FAILURE;
    Ladder<PlayBench> ladder(tc, bench, videoSteps);
    if (!ladder.up(VIDEO_RUNNING_STEPS) || !waitForPicture(tc, bench) || !ladder.up())
        ladder.down();
    return tc.result;
}

uint32_t AV_StopVideoOnly(const AvSource* pstSource) {
    CaseContext tc = {__func__};
    PlayBench bench = playBenchOf(pstSource, nullptr);
    ladderDown(tc, bench, videoSteps);
    return tc.result;
}

uint32_t AV_StartAudioOnly(const AvSource* pstSource, const TcChannelInfo* pstChannelInfo) {
    CaseContext tc = {__func__};
    PlayBench bench = playBenchOf(pstSource, pstChannelInfo);
    AV_ClearAudioLog();
    if (!prepareLoneDecoder(bench))
        return TC_FAILURE;
    Ladder<PlayBench> ladder(tc, bench, audioSteps);
    if (!ladder.up(AUDIO_RUNNING_STEPS) || !waitForSound(tc) || !ladder.up())
        ladder.down();
    return tc.result;
}

uint32_t AV_StopAudioOnly(const AvSource* pstSource) {
    CaseContext tc = {__func__};
    PlayBench bench = playBenchOf(pstSource, nullptr);
    ladderDown(tc, bench, audioSteps);
    return tc.result;
}

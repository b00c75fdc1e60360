#include "testcase/av/av_decoder.h"

#include <string.h>

#include "framework/case/ladder.h"
#include "framework/case/prompt.h"
#include "platform/qlx_videosync.h"
#include "testcase/av/av_events.h"

enum {
    /** A recording has first to be fed in: its picture may take a second longer. */
    PVR_POLL_ROUNDS = 600,
    MAIN_VOLUME = 50,
};

/** Nothing of the services but that they exist. */
struct ServiceBench {};

static const LadderStep<ServiceBench> serviceSteps[] = {
    {LADDER_CALL("QLX_VideoInit()", QLX_VideoInit()),
     LADDER_CALL("QLX_VideoDeInit()", QLX_VideoDeInit())},
    {LADDER_CALL("QLX_AudioInit()", QLX_AudioInit()),
     LADDER_CALL("QLX_AudioDeInit()", QLX_AudioDeInit())},
};

uint32_t TC_AV_INIT(void) {
    CaseContext tc = {__func__};
    ServiceBench bench;
    ladderUp(tc, bench, serviceSteps);
    return TC_RESULT(tc);
}

uint32_t TC_AV_DEINIT(void) {
    CaseContext tc = {__func__};
    ServiceBench bench;
    ladderDown(tc, bench, serviceSteps);
    return TC_RESULT(tc);
}

/** Both decoders of a source, and what they are opened on. */
struct DecoderBench {
    uint32_t eVideoDev;
    uint32_t eAudioDev;
    QLX_VideoAttr stVideoAttr;
    QLX_AudioAttr stAudioSource;
    QLX_VideoCapability stVideoCapability;
    QLX_AudioCapability stAudioCapability;
};

// clang-format off
static const LadderStep<DecoderBench> openSteps[] = {
    // up                                                                                                                                                                                        down
    {LADDER_CALL("QLX_VideoOpen(eVideoDev, &stVideoAttr)", QLX_VideoOpen(bench.eVideoDev, &bench.stVideoAttr)),                                                                                  LADDER_CALL("QLX_VideoClose(eVideoDev)", QLX_VideoClose(bench.eVideoDev)), UNDO_SILENT},
    {LADDER_CALL("QLX_AudioOpen(eAudioDev, &stAudioSource)", QLX_AudioOpen(bench.eAudioDev, &bench.stAudioSource)),                                                                              LADDER_CALL("QLX_AudioClose(eAudioDev)", QLX_AudioClose(bench.eAudioDev)), UNDO_SILENT},
    {LADDER_CALL("QLX_VideoGetCapability(eVideoDev, &stVideoCapability)", QLX_VideoGetCapability(bench.eVideoDev, &bench.stVideoCapability)),                                                    LADDER_NONE},
    {LADDER_CALL("QLX_AudioGetCapability(eAudioDev, &stAudioCapability)", QLX_AudioGetCapability(bench.eAudioDev, &bench.stAudioCapability)),                                                    LADDER_NONE},
    {LADDER_CALL("QLX_VideoRegisterCallback(eVideoDev, &g_stVideoRequestData, AV_VideoEventCallback)", QLX_VideoRegisterCallback(bench.eVideoDev, &g_stVideoRequestData, AV_VideoEventCallback)), LADDER_CALL("QLX_VideoUnRegisterCallback(eVideoDev, AV_VideoEventCallback)", QLX_VideoUnRegisterCallback(bench.eVideoDev, AV_VideoEventCallback)), UNDO_SILENT},
    {LADDER_CALL("QLX_AudioRegisterCallback(eAudioDev, &g_stAudioRequestData, AV_AudioEventCallback)", QLX_AudioRegisterCallback(bench.eAudioDev, &g_stAudioRequestData, AV_AudioEventCallback)), LADDER_NONE},
};
// clang-format on

uint32_t TC_AV_OPEN(const AvSource* pstSource) {
    CaseContext tc = {__func__};
    const AvSource& source = *AV_SourceOrConfigured(pstSource);
    DecoderBench bench = {};
    bench.eVideoDev = source.eVideoDev;
    bench.eAudioDev = source.eAudioDev;
    AV_ClearVideoLog();
    AV_ClearAudioLog();
    if (AV_FillDecoderAttr(source, &bench.stVideoAttr, &bench.stAudioSource))
        ladderUp(tc, bench, openSteps);
    else
        tc.result = TC_FAILURE;
    return TC_RESULT(tc);
}

uint32_t TC_AV_CLOSE(const AvSource* pstSource) {
    CaseContext tc = {__func__};
    const uint32_t eVideoDev = AV_SourceOrConfigured(pstSource)->eVideoDev;
    const uint32_t eAudioDev = AV_SourceOrConfigured(pstSource)->eAudioDev;
    TC_EXPECT_RET(QLX_AudioUnRegisterCallback(eAudioDev, AV_AudioEventCallback));
    TC_EXPECT_RET(QLX_VideoUnRegisterCallback(eVideoDev, AV_VideoEventCallback));
    TC_EXPECT_RET(QLX_VideoClose(eVideoDev));
    TC_EXPECT_RET(QLX_AudioClose(eAudioDev));
    return TC_RESULT(tc);
}

void AV_GetChannel(const AvSource& source, uint32_t system, TcChannelInfo* pstChannelInfo) {
    if (source.eSource == AV_SOURCE_PVR) {
        zk_test_get_pvr_playback_channel_info(source.uDTVChannelId, pstChannelInfo);
        return;
    }
    if (system == 0 && source.eDTVTunerDev < QLX_TUNER_MAX)
        system = zk_testConfig.tunerBlock.eTransmissionSystem[source.eDTVTunerDev];
    zk_test_get_dtv_channel_info(system, source.uDTVChannelId, pstChannelInfo);
}

/** Decoders that are started, and the channel that they are started on. */
struct StartBench {
    const AvSource* pstSource;
    TcChannelInfo stChannelInfo;
    QLX_SyncParams stSyncParams;
};

static bool isCoded(const StartBench& bench) {
    return AV_IsCoded(*bench.pstSource);
}

static bool isNotCoded(const StartBench& bench) {
    return !isCoded(bench);
}

static bool hasClockReference(const StartBench& bench) {
    return isCoded(bench) && bench.stChannelInfo.uPcrPid != 0;
}

static int64_t startVideo(const StartBench& bench) {
    const TcChannelInfo& channel = bench.stChannelInfo;
    return QLX_VideoStart(bench.pstSource->eVideoDev, channel.eVideoFormat, channel.uVideoPid);
}

static int64_t startAudio(const StartBench& bench) {
    const TcChannelInfo& channel = bench.stChannelInfo;
    return QLX_AudioStart(bench.pstSource->eAudioDev, channel.eAudioFormat[0],
                          channel.uAudioPids[0]);
}

// clang-format off
static const LadderStep<StartBench> startSteps[] = {
    // up                                                                                                                                                                     down                                                                                     undo          sources that have it
    {LADDER_CALL("QLX_VideoStart(eVideoDev, eVideoFormat, uVideoPid)", startVideo(bench)),                                                                                   LADDER_CALL("QLX_VideoStop(eVideoDev)", QLX_VideoStop(bench.pstSource->eVideoDev)), UNDO_CHECKED, isCoded},
    {LADDER_CALL("QLX_VideoStart(eVideoDev, QLX_VIDEO_FORMAT_NONE, 0)", QLX_VideoStart(bench.pstSource->eVideoDev, QLX_VIDEO_FORMAT_NONE, 0)),                                LADDER_CALL("QLX_VideoStop(eVideoDev)", QLX_VideoStop(bench.pstSource->eVideoDev)), UNDO_CHECKED, isNotCoded},
    {LADDER_CALL("QLX_VideoSyncSetMode(eVideoDev, &stSyncParams)", QLX_VideoSyncSetMode(bench.pstSource->eVideoDev, &bench.stSyncParams)),                                    LADDER_NONE,                                                                         UNDO_CHECKED, hasClockReference},
    {LADDER_CALL("QLX_AudioStart(eAudioDev, eAudioFormat[0], uAudioPids[0])", startAudio(bench)),                                                                            LADDER_CALL("QLX_AudioStop(eAudioDev)", QLX_AudioStop(bench.pstSource->eAudioDev)), UNDO_CHECKED, isCoded},
    {LADDER_CALL("QLX_AudioStart(eAudioDev, QLX_AUDIO_FORMAT_NONE, 0)", QLX_AudioStart(bench.pstSource->eAudioDev, QLX_AUDIO_FORMAT_NONE, 0)),                                LADDER_CALL("QLX_AudioStop(eAudioDev)", QLX_AudioStop(bench.pstSource->eAudioDev)), UNDO_CHECKED, isNotCoded},
};
// clang-format on

static StartBench startBenchOf(const AvSource& source, const TcChannelInfo* pstChannelInfo) {
    StartBench bench = {};
    bench.pstSource = &source;
    if (!AV_IsCoded(source))
        return bench;
    if (pstChannelInfo != nullptr)
        bench.stChannelInfo = *pstChannelInfo;
    else
        AV_GetChannel(source, source.TransmissionSystem_e, &bench.stChannelInfo);
    bench.stSyncParams.eSyncMode = QLX_VIDEOSYNC_MODE_PCR_MASTER;
    bench.stSyncParams.uPcrPid = static_cast<uint16_t>(bench.stChannelInfo.uPcrPid);
    return bench;
}

/** Whatever decoder the source has: what is heard on the bench is decoder 0's. */
static bool unmuteAudio(CaseContext& tc) {
    zk_log("unmute Audio \r\n");
    return TC_EXPECT_RET_TEXT(
               "QLX_AudioSetVolume(QLX_AUDIODEV_NUMBER_0, QLX_AUDIO_SOURCE_MAIN, 50)",
               QLX_AudioSetVolume(QLX_AUDIODEV_NUMBER_0, QLX_AUDIO_SOURCE_MAIN, MAIN_VOLUME)) &&
           TC_EXPECT_RET(QLX_AudioSetMute(QLX_AUDIODEV_NUMBER_0, QLX_AUDIO_SOURCE_MAIN, QLX_FALSE));
}

/** With decoders that run: the picture, then the sound. */
static bool waitAndUnmute(CaseContext& tc, const AvSource& source, QLX_VideoDecInfo* pstDecInfo) {
    int rounds = AV_POLL_ROUNDS;
    if (source.eSource == AV_SOURCE_PVR)
        rounds = PVR_POLL_ROUNDS;
    const AvVideoEvent* picture = AV_WaitFor(AV_FindPicture, rounds);
    if (!TC_EXPECT_TRUE(picture != nullptr))
        return false;
    *pstDecInfo = picture->stVideoDecInfo;
    if (source.eSource == AV_SOURCE_DTV) {
        const AvVideoEvent* sync = AV_WaitFor(AV_FindSyncDone, AV_POLL_ROUNDS);
        return TC_EXPECT_TRUE(sync != nullptr) && unmuteAudio(tc);
    }
    // There are sources without a sound.
    return AV_WaitFor(AV_FindSound, AV_POLL_ROUNDS) == nullptr || unmuteAudio(tc);
}

uint32_t TC_AV_START(const AvSource* pstSource, const TcChannelInfo* pstChannelInfo,
                     QLX_VideoDecInfo* pstDecInfo) {
    CaseContext tc = {__func__};
    if (!TC_EXPECT_TRUE(pstDecInfo != nullptr))
        return TC_RESULT(tc);
    const AvSource& source = *AV_SourceOrConfigured(pstSource);
    StartBench bench = startBenchOf(source, pstChannelInfo);
    Ladder<StartBench> ladder(tc, bench, startSteps);
    if (!ladder.up() || !waitAndUnmute(tc, source, pstDecInfo))
        ladder.down();
    return TC_RESULT(tc);
}

uint32_t TC_AV_STOP(const AvSource* pstSource) {
    CaseContext tc = {__func__};
    const AvSource& source = *AV_SourceOrConfigured(pstSource);
    // A sound that cannot be muted would end in a crack.
    if (TC_EXPECT_RET(QLX_AudioSetMute(QLX_AUDIODEV_NUMBER_0, QLX_AUDIO_SOURCE_MAIN, QLX_TRUE))) {
        QLX_VideoStop(source.eVideoDev);
        QLX_AudioStop(source.eAudioDev);
    }
    return TC_RESULT(tc);
}

uint32_t AV_CheckConfirm(const char* text) {
    CaseContext tc = {__func__};
    int32_t answer = 0;
    if (text != nullptr)
        zk_log("%s \r\n", text);
    zk_log("Yes input 1, otherwise input 0 \r\n");
    TC_ASSERT_EQUAL(PROMPT_NUMBER, tc_askNumber(&answer));
    // The line end behind the answer is not the next question's. Ten is the code of a line end
    // itself: the answer then ends where it is.
    if (answer != '\n')
        tc_waitKey();
    return answer != 0 ? TC_SUCCESS : TC_FAILURE;
}

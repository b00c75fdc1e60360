// DESCRAMBLER: descramblers opened on demultiplexers, given PIDs, and given keys in step with a
// scrambled service while it plays. Whether picture and sound are clean is for the operator to say.
#include <pthread.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <atomic>

#include "environment/test_env.h"
#include "framework/case/ladder.h"
#include "framework/case/prompt.h"
#include "platform/qlx_audio.h"
#include "platform/qlx_demux.h"
#include "platform/qlx_desc.h"
#include "platform/qlx_tuner.h"
#include "platform/qlx_video.h"
#include "testcase/aout/aout_harness.h"
#include "testcase/av/av_decoder.h"
#include "testcase/descrambler/descrambler_keys.h"
#include "testcase/modules.h"
#include "testcase/tuner/tuner_harness.h"
#include "testcase/vout/vout_harness.h"

enum {
    /** The scrambled service is that of ISDB-T under this index, in every line-up. */
    SCRAMBLED_CHANNEL = 8,
    DESC_SLOTS = 4,
    /** The wait for the first picture, and how often the key is set meanwhile. */
    FRAME_POLLS = 30000,
    FRAME_POLL_US = 10000,
    FRAME_KEY_POLLS = 100,
    KEY_START_US = 1000000,
    KEY_PERIOD_US = 2000000,
};

/** Around the line that tells of new keys. */
#define KEY_MARK \
    "#"          \
    "#"          \
    "#"

/** The service that all cases play, and its decoders' numbers. */
static TcChannelInfo stChannelInfo;
static uint32_t g_u32VideoPid;
static uint32_t g_u32AudioPid;

// The module.

struct ModuleBench {};

static const LadderStep<ModuleBench> moduleSteps[] = {
    {LADDER_CALL("TC_TUNER_INIT()", TC_TUNER_INIT()),
     LADDER_CALL("TC_TUNER_DEINIT()", TC_TUNER_DEINIT())},
    {LADDER_CALL("QLX_DemuxInit()", QLX_DemuxInit()),
     LADDER_CALL("QLX_DemuxDeInit()", QLX_DemuxDeInit())},
    {LADDER_CALL("TC_AV_INIT()", TC_AV_INIT()), LADDER_CALL("TC_AV_DEINIT()", TC_AV_DEINIT())},
    {LADDER_CALL("TC_VOUT_INIT()", TC_VOUT_INIT()),
     LADDER_CALL("TC_VOUT_DEINIT()", TC_VOUT_DEINIT())},
    {LADDER_CALL("TC_AOUT_INIT()", TC_AOUT_INIT()),
     LADDER_CALL("TC_AOUT_DEINIT()", TC_AOUT_DEINIT())},
};

static uint32_t DESC_TestSetup(void) {
    CaseContext tc = {__func__};
    ModuleBench bench;
    zk_log("%s ! \r\n", __func__);
    zk_test_get_dtv_channel_info(QLX_TRANSMISSION_SYSTEM_ISDB_T, SCRAMBLED_CHANNEL, &stChannelInfo);
    g_u32VideoPid = stChannelInfo.uVideoPid;
    g_u32AudioPid = stChannelInfo.uAudioPids[0];
    ladderUp(tc, bench, moduleSteps);
    return tc.result;
}

static uint32_t DESC_TestTeardown(void) {
    CaseContext tc = {__func__};
    ModuleBench bench;
    zk_log("%s ! \r\n", __func__);
    ladderDown(tc, bench, moduleSteps);
    return tc.result;
}

// What the cases bring up.

static uint32_t openDemux(const char* name, uint32_t eDemuxId) {
    CaseContext tc = {name};
    const QLX_Source stSource = {QLX_SOURCE_TYPE_TUNER, eDemuxId, QLX_INPUT_CLASS_NONE};
    TC_ASSERT_RET(TC_TUNER_START(eDemuxId, QLX_TRANSMISSION_SYSTEM_ISDB_T, SCRAMBLED_CHANNEL));
    if (TC_EXPECT_RET(QLX_DemuxOpen(eDemuxId))) {
        if (TC_EXPECT_RET(QLX_DemuxConnectSource(eDemuxId, &stSource)) &&
            TC_EXPECT_RET(QLX_DemuxStart(eDemuxId)))
            return TC_SUCCESS;
        TC_EXPECT_RET(QLX_DemuxClose(eDemuxId));
    }
    TC_EXPECT_RET(TC_TUNER_STOP(eDemuxId));
    return TC_FAILURE;
}

static uint32_t closeDemux(const char* name, uint32_t eDemuxId) {
    CaseContext tc = {name};
    TC_EXPECT_RET(QLX_DemuxStop(eDemuxId));
    TC_EXPECT_RET(QLX_DemuxClose(eDemuxId));
    TC_EXPECT_RET(TC_TUNER_STOP(eDemuxId));
    return tc.result;
}

static uint32_t DESC_OpenDemux0(void) {
    return openDemux(__func__, QLX_DEMUX_0);
}
static uint32_t DESC_OpenDemux1(void) {
    return openDemux(__func__, QLX_DEMUX_1);
}
static uint32_t DESC_CloseDemux0(void) {
    return closeDemux(__func__, QLX_DEMUX_0);
}
static uint32_t DESC_CloseDemux1(void) {
    return closeDemux(__func__, QLX_DEMUX_1);
}

static std::atomic<bool> g_bVideoFrameReady;
static std::atomic<bool> g_bAudioPresent;

static void DESC_VideoEventCallback(uint32_t, void*, uint32_t eEvent, void*) {
    if (eEvent == QLX_EVENT_VIDEO_FRAME_READY) {
        zk_log("Video event notify: QLX_EVENT_VIDEO_FRAME_READY. \r\n");
        g_bVideoFrameReady = true;
        return;
    }
    zk_log("unsupport event[%d]\r\n", static_cast<int>(eEvent));
}

static void DESC_AudioEventCallback(uint32_t, void*, uint32_t eEvent, void* pData) {
    const auto* info = static_cast<const QLX_AudioDecInfo*>(pData);
    if (eEvent == QLX_EVENT_AUDIO_INFO_CHANGE && info != nullptr &&
        info->audioPresent == QLX_AUDIO_PRESENT)
        g_bAudioPresent = true;
    else
        zk_log("unsupport event[%d]\r\n", static_cast<int>(eEvent));
}

/** One decoder alone. */
struct DecoderBench {
    uint32_t eDemuxId;
};

static const LadderStep<DecoderBench> videoSteps[] = {
    {LADDER_CALL("QLX_VideoOpen(QLX_VIDEODEV_NUMBER_0, &stVideoAttr)",
                 [&] {
                     const QLX_VideoAttr stVideoAttr = {QLX_SOURCE_TYPE_DEMUX, bench.eDemuxId,
                                                        QLX_INPUT_CLASS_NONE, 1};
                     return QLX_VideoOpen(QLX_VIDEODEV_NUMBER_0, &stVideoAttr);
                 }()),
     LADDER_CALL("QLX_VideoClose(QLX_VIDEODEV_NUMBER_0)", QLX_VideoClose(QLX_VIDEODEV_NUMBER_0))},
    {LADDER_CALL(
         "QLX_VideoRegisterCallback(QLX_VIDEODEV_NUMBER_0, NULL, DESC_VideoEventCallback)",
         QLX_VideoRegisterCallback(QLX_VIDEODEV_NUMBER_0, nullptr, DESC_VideoEventCallback)),
     LADDER_CALL("QLX_VideoUnRegisterCallback(QLX_VIDEODEV_NUMBER_0, DESC_VideoEventCallback)",
                 QLX_VideoUnRegisterCallback(QLX_VIDEODEV_NUMBER_0, DESC_VideoEventCallback))},
    {LADDER_CALL("QLX_VideoStart(QLX_VIDEODEV_NUMBER_0, eVideoFormat, g_u32VideoPid)",
                 QLX_VideoStart(QLX_VIDEODEV_NUMBER_0, stChannelInfo.eVideoFormat, g_u32VideoPid)),
     LADDER_CALL("QLX_VideoStop(QLX_VIDEODEV_NUMBER_0)", QLX_VideoStop(QLX_VIDEODEV_NUMBER_0))},
};
static const LadderStep<DecoderBench> audioSteps[] = {
    {LADDER_CALL("QLX_AudioOpen(QLX_AUDIODEV_NUMBER_0, &stAudioSource)",
                 [&] {
                     const QLX_AudioAttr stAudioSource = {QLX_SOURCE_TYPE_DEMUX, bench.eDemuxId,
                                                          QLX_INPUT_CLASS_NONE};
                     return QLX_AudioOpen(QLX_AUDIODEV_NUMBER_0, &stAudioSource);
                 }()),
     LADDER_CALL("QLX_AudioClose(QLX_AUDIODEV_NUMBER_0)", QLX_AudioClose(QLX_AUDIODEV_NUMBER_0))},
    {LADDER_CALL(
         "QLX_AudioRegisterCallback(QLX_AUDIODEV_NUMBER_0, NULL, DESC_AudioEventCallback)",
         QLX_AudioRegisterCallback(QLX_AUDIODEV_NUMBER_0, nullptr, DESC_AudioEventCallback)),
     LADDER_CALL("QLX_AudioUnRegisterCallback(QLX_AUDIODEV_NUMBER_0, DESC_AudioEventCallback)",
                 QLX_AudioUnRegisterCallback(QLX_AUDIODEV_NUMBER_0, DESC_AudioEventCallback))},
    {LADDER_CALL(
         "QLX_AudioStart(QLX_AUDIODEV_NUMBER_0, eAudioFormat, g_u32AudioPid)",
         QLX_AudioStart(QLX_AUDIODEV_NUMBER_0, stChannelInfo.eAudioFormat[0], g_u32AudioPid)),
     LADDER_CALL("QLX_AudioStop(QLX_AUDIODEV_NUMBER_0)", QLX_AudioStop(QLX_AUDIODEV_NUMBER_0))},
};

static uint32_t DESC_VideoStart(uint32_t eDemuxId) {
    CaseContext tc = {__func__};
    DecoderBench bench = {eDemuxId};
    g_bVideoFrameReady = false;
    ladderUp(tc, bench, videoSteps);
    return tc.result;
}
static uint32_t DESC_VideoStop(uint32_t eDemuxId) {
    CaseContext tc = {__func__};
    DecoderBench bench = {eDemuxId};
    ladderDown(tc, bench, videoSteps);
    return tc.result;
}
static uint32_t DESC_AudioStart(uint32_t eDemuxId) {
    CaseContext tc = {__func__};
    DecoderBench bench = {eDemuxId};
    g_bAudioPresent = false;
    ladderUp(tc, bench, audioSteps);
    return tc.result;
}
static uint32_t DESC_AudioStop(uint32_t eDemuxId) {
    CaseContext tc = {__func__};
    DecoderBench bench = {eDemuxId};
    ladderDown(tc, bench, audioSteps);
    return tc.result;
}

static uint32_t DESC_AVStart(uint32_t eDemuxId) {
    CaseContext tc = {__func__};
    TC_ASSERT_RET(DESC_VideoStart(eDemuxId));
    if (!TC_EXPECT_RET(DESC_AudioStart(eDemuxId)))
        TC_EXPECT_RET(DESC_VideoStop(eDemuxId));
    return tc.result;
}
static uint32_t DESC_AVStop(uint32_t eDemuxId) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(DESC_AudioStop(eDemuxId));
    TC_EXPECT_RET(DESC_VideoStop(eDemuxId));
    return tc.result;
}

/** The picture on the panel, and the sound on the sinks. */
static uint32_t DESC_SetVout(uint32_t eDemuxId) {
    CaseContext tc = {__func__};
    const QLX_Source stQlxSource = {QLX_SOURCE_TYPE_DEMUX, eDemuxId, QLX_INPUT_CLASS_NONE};
    QLX_VideoInfo stVideoInfo = {};
    TC_ASSERT_RET(TC_VOUT_OPEN(&stQlxSource));
    if (TC_EXPECT_RET(QLX_VideoGetVideoInfo(QLX_VIDEODEV_NUMBER_0, QLX_VIDEO_PARAMTYPE_GET_DECINFO,
                                            &stVideoInfo)) &&
        TC_EXPECT_RET_TEXT("TC_VOUT_START(&stVOutInRect)",
                           VOUT_StartOnPicture(stVideoInfo.stVideoDecInfo)))
        return tc.result;
    TC_EXPECT_RET(TC_VOUT_CLOSE());
    return tc.result;
}
static uint32_t DESC_SetAout(void) {
    CaseContext tc = {__func__};
    TC_ASSERT_RET(TC_AOUT_OPEN());
    if (!TC_EXPECT_RET(TC_AOUT_START()))
        TC_EXPECT_RET(TC_AOUT_CLOSE());
    return tc.result;
}

/** Asks the operator; only a number other than 0 is a success. */
static uint32_t DESC_CheckConfirm(const char* question) {
    CaseContext tc = {__func__};
    int32_t s32ManualInputValue = 0;
    zk_log("%s \r\n", question);
    zk_log("Yes input 1, otherwise input 0 \r\n");
    if (!TC_EXPECT_TRUE(tc_askNumber(&s32ManualInputValue) == PROMPT_NUMBER))
        return TC_FAILURE;
    return s32ManualInputValue != 0 ? TC_SUCCESS : TC_FAILURE;
}

// Open and PID.

static QLX_DescOpenParam openParamOf(uint32_t eDemuxId) {
    QLX_DescOpenParam stOpenParam = {};
    stOpenParam.eDemuxId = eDemuxId;
    stOpenParam.eAlgorithm = QLX_DESC_ALGORITHM_MULTI2;
    return stOpenParam;
}

static const struct {
    const char* openText;
    uint32_t (*open)(void);
    const char* closeText;
    uint32_t (*close)(void);
} demuxes[] = {
    {"DESC_OpenDemux0()", DESC_OpenDemux0, "DESC_CloseDemux0()", DESC_CloseDemux0},
    {"DESC_OpenDemux1()", DESC_OpenDemux1, "DESC_CloseDemux1()", DESC_CloseDemux1},
};

/** A case on a demultiplexer that is up. */
template <typename Work>
static void onDemux(CaseContext& tc, uint32_t eDemuxId, Work work) {
    if (!TC_EXPECT_RET_TEXT(demuxes[eDemuxId].openText, demuxes[eDemuxId].open()))
        return;
    work();
    TC_EXPECT_RET_TEXT(demuxes[eDemuxId].closeText, demuxes[eDemuxId].close());
}

/** A case on a descrambler of a demultiplexer that is up. */
template <typename Work>
static void onDescrambler(CaseContext& tc, uint32_t eDemuxId, Work work) {
    const QLX_DescOpenParam stOpenParam = openParamOf(eDemuxId);
    uint32_t u32HDesc = 0;
    if (!TC_EXPECT_RET(QLX_DescOpen(stOpenParam, &u32HDesc)))
        return;
    work(u32HDesc);
    TC_EXPECT_RET(QLX_DescClose(u32HDesc));
}

static uint32_t openBase(const char* name, uint32_t eDemuxId) {
    CaseContext tc = {name};
    onDemux(tc, eDemuxId, [&] { onDescrambler(tc, eDemuxId, [](uint32_t) {}); });
    return TC_RESULT(tc);
}

static uint32_t TC_DESCRAMBLER_Open_001(void) {
    return openBase(__func__, QLX_DEMUX_0);
}

static uint32_t TC_DESCRAMBLER_Open_002(void) {
    return openBase(__func__, QLX_DEMUX_1);
}

static uint32_t TC_DESCRAMBLER_Open_003(void) {
    CaseContext tc = {__func__};
    onDemux(tc, QLX_DEMUX_0, [&] {
        onDemux(tc, QLX_DEMUX_1, [&] {
            onDescrambler(tc, QLX_DEMUX_0,
                          [&](uint32_t) { onDescrambler(tc, QLX_DEMUX_1, [](uint32_t) {}); });
        });
    });
    return TC_RESULT(tc);
}

static void openAll(CaseContext& tc) {
    uint32_t u32HDesc[2][QLX_DESC_PER_DEMUX] = {};
    uint32_t opened = 0;
    const uint32_t all = 2 * QLX_DESC_PER_DEMUX;
    while (opened < all) {
        const uint32_t demux = opened / QLX_DESC_PER_DEMUX;
        const uint32_t i = opened % QLX_DESC_PER_DEMUX;
        const QLX_DescOpenParam stOpenParam = openParamOf(demux);
        if (!TC_EXPECT_RET_TEXT(demux == 0 ? "QLX_DescOpen(stOpenParam, &u32HDesc[0][i])"
                                           : "QLX_DescOpen(stOpenParam, &u32HDesc[1][i])",
                                QLX_DescOpen(stOpenParam, &u32HDesc[demux][i])))
            break;
        opened++;
    }
    while (opened-- > 0) {
        const uint32_t demux = opened / QLX_DESC_PER_DEMUX;
        const uint32_t i = opened % QLX_DESC_PER_DEMUX;
        TC_EXPECT_RET_TEXT(
            demux == 0 ? "QLX_DescClose(u32HDesc[0][i])" : "QLX_DescClose(u32HDesc[1][i])",
            QLX_DescClose(u32HDesc[demux][i]));
    }
}

static uint32_t TC_DESCRAMBLER_Open_004(void) {
    CaseContext tc = {__func__};
    onDemux(tc, QLX_DEMUX_0, [&] { onDemux(tc, QLX_DEMUX_1, [&] { openAll(tc); }); });
    return TC_RESULT(tc);
}

static uint32_t setPidBase(const char* name, uint32_t eDemuxId) {
    CaseContext tc = {name};
    onDemux(tc, eDemuxId, [&] {
        onDescrambler(tc, eDemuxId, [&](uint32_t u32HDesc) {
            TC_EXPECT_RET_TEXT("QLX_DescSetPid(u32HDesc,(QLX_U32)g_u32VideoPid)",
                               QLX_DescSetPid(u32HDesc, g_u32VideoPid));
        });
    });
    return TC_RESULT(tc);
}

static uint32_t TC_DESCRAMBLER_SetPid_001(void) {
    return setPidBase(__func__, QLX_DEMUX_0);
}

static uint32_t TC_DESCRAMBLER_SetPid_002(void) {
    return setPidBase(__func__, QLX_DEMUX_1);
}

// Keys.

/** Of DESC_SekKey: the descramblers of a case, 0 where there is none, and where it starts. */
struct KeyThread {
    uint32_t u32HDesc[DESC_SLOTS];
    uint32_t u32KeyIndex;
};

static pthread_mutex_t g_setKeyNotifyMtx = PTHREAD_MUTEX_INITIALIZER;
static pthread_cond_t g_setKeyNotifyCond = PTHREAD_COND_INITIALIZER;
/** The first key is in place; `giveUp`: there is no picture, and nothing to change. */
static bool firstKeyIsSet;
static bool giveUp;

static QLX_DescKeys keysOf(uint32_t index) {
    QLX_DescKeys stKeys = {};
    for (uint32_t i = 0; i < QLX_DESC_KEY_BYTES; i++) {
        stKeys.u32EvenKey[i] = descramblerKeys[index].even[i];
        stKeys.u32OddKey[i] = descramblerKeys[index].odd[i];
        stKeys.u32EvenIv[i] = descramblerIv[i];
        stKeys.u32OddIv[i] = descramblerIv[i];
    }
    for (uint32_t i = 0; i < QLX_DESC_SYSTEM_KEY_BYTES; i++)
        stKeys.u32SystemKey[i] = descramblerSystemKey[i];
    stKeys.eEvenKeyKind = QLX_DESC_KEY_KIND_CLEAR;
    stKeys.eOddKeyKind = QLX_DESC_KEY_KIND_CLEAR;
    stKeys.eIvKind = QLX_DESC_KEY_KIND_CLEAR;
    stKeys.eSystemKeyKind = QLX_DESC_KEY_KIND_CLEAR;
    stKeys.bUpdate = QLX_TRUE;
    return stKeys;
}

static int32_t setKeys(uint32_t u32HDesc, uint32_t index) {
    QLX_DescKeys stKeys = keysOf(index);
    stKeys.u32HDesc = u32HDesc;
    return QLX_SetKeys(u32HDesc, stKeys);
}

static void* DESC_SekKey(void* argument) {
    const KeyThread& thread = *static_cast<const KeyThread*>(argument);
    pthread_mutex_lock(&g_setKeyNotifyMtx);
    while (!firstKeyIsSet)
        pthread_cond_wait(&g_setKeyNotifyCond, &g_setKeyNotifyMtx);
    if (!giveUp) {
        zk_log("\n\n" KEY_MARK "start to set key(%d,%d)!!!" KEY_MARK "\n\n",
               static_cast<int>(thread.u32HDesc[0]), static_cast<int>(thread.u32KeyIndex));
        usleep(KEY_START_US);
    }
    for (uint32_t index = thread.u32KeyIndex; !giveUp && index < DESCRAMBLER_KEY_COUNT; index++) {
        for (uint32_t slot = 0; slot < DESC_SLOTS; slot++) {
            if (thread.u32HDesc[slot] != 0 && setKeys(thread.u32HDesc[slot], index) != 0)
                zk_log("%s set key%d(%d)failed!\n", __func__, static_cast<int>(slot),
                       static_cast<int>(index));
        }
        usleep(KEY_PERIOD_US);
    }
    pthread_mutex_unlock(&g_setKeyNotifyMtx);
    zk_log("DESC_SekKey exit\r\n");
    return nullptr;
}

static void releaseKeyThread(bool there) {
    pthread_mutex_lock(&g_setKeyNotifyMtx);
    firstKeyIsSet = true;
    giveUp = !there;
    pthread_cond_signal(&g_setKeyNotifyCond);
    pthread_mutex_unlock(&g_setKeyNotifyMtx);
}

/** What a case plays. */
struct KeyPlan {
    uint32_t eDemuxId;
    bool video;
    bool audio;
    const char* question;
};

/** Sets the first key each second until something comes. */
static bool waitForFirst(CaseContext& tc, const KeyThread& thread, const KeyPlan& plan) {
    const std::atomic<bool>& come = plan.video ? g_bVideoFrameReady : g_bAudioPresent;
    for (uint32_t poll = 0; poll < FRAME_POLLS && !come; poll++) {
        for (uint32_t slot = 0; poll % FRAME_KEY_POLLS == 0 && slot < DESC_SLOTS; slot++) {
            if (thread.u32HDesc[slot] != 0 && setKeys(thread.u32HDesc[slot], 0) != 0)
                zk_log("%s set first key failed!\n", tc.name);
        }
        usleep(FRAME_POLL_US);
    }
    return come;
}

/** With the service on the outputs: lets the operator judge. */
static void askOperator(CaseContext& tc, const KeyPlan& plan) {
    const bool picture =
        !plan.video || TC_EXPECT_RET_TEXT("DESC_SetVout()", DESC_SetVout(plan.eDemuxId));
    const bool sound = picture && (!plan.audio || TC_EXPECT_RET(DESC_SetAout()));
    if (sound)
        TC_EXPECT_RET_TEXT("DESC_CheckConfirm()", DESC_CheckConfirm(plan.question));
    if (plan.audio && sound) {
        TC_EXPECT_RET(TC_AOUT_STOP());
        TC_EXPECT_RET(TC_AOUT_CLOSE());
    }
    if (plan.video && picture) {
        TC_EXPECT_RET(TC_VOUT_STOP());
        TC_EXPECT_RET(TC_VOUT_CLOSE());
    }
}

static uint32_t startDecoders(const KeyPlan& plan) {
    if (plan.video && plan.audio)
        return DESC_AVStart(plan.eDemuxId);
    return plan.video ? DESC_VideoStart(plan.eDemuxId) : DESC_AudioStart(plan.eDemuxId);
}

static uint32_t stopDecoders(const KeyPlan& plan) {
    if (plan.video && plan.audio)
        return DESC_AVStop(plan.eDemuxId);
    return plan.video ? DESC_VideoStop(plan.eDemuxId) : DESC_AudioStop(plan.eDemuxId);
}

/** Plays the service on descramblers that have their PIDs, and changes their keys. */
static void playWithKeys(CaseContext& tc, KeyThread& keys, const KeyPlan& plan) {
    pthread_t thread;
    const char* const start = plan.video && plan.audio ? "DESC_AVStart(QLX_DEMUX_0)"
                              : plan.video             ? "DESC_VideoStart(QLX_DEMUX_0)"
                                                       : "DESC_AudioStart(QLX_DEMUX_0)";
    const char* const stop = plan.video && plan.audio ? "DESC_AVStop(QLX_DEMUX_0)"
                             : plan.video             ? "DESC_VideoStop(QLX_DEMUX_0)"
                                                      : "DESC_AudioStop(QLX_DEMUX_0)";
    firstKeyIsSet = false;
    giveUp = false;
    if (!TC_EXPECT_RET_TEXT(start, startDecoders(plan)))
        return;
    for (uint32_t slot = 0; slot < 2; slot++) {
        zk_log(" setkey %d hDesc =%d!\n", static_cast<int>(slot),
               static_cast<int>(keys.u32HDesc[slot]));
    }
    if (TC_EXPECT_RET(pthread_create(&thread, nullptr, DESC_SekKey, &keys))) {
        const bool come = waitForFirst(tc, keys, plan);
        releaseKeyThread(come);
        if (TC_EXPECT_TRUE(come))
            askOperator(tc, plan);
        pthread_join(thread, nullptr);
    }
    TC_EXPECT_RET_TEXT(stop, stopDecoders(plan));
}

static bool setPid(CaseContext& tc, uint32_t u32HDesc, uint32_t u32Pid) {
    return TC_EXPECT_RET_TEXT("QLX_DescSetPid(u32HDesc,u32Pid)", QLX_DescSetPid(u32HDesc, u32Pid));
}

/** Picture or sound, or both on one descrambler. */
static uint32_t setKeyBase(const char* name, const KeyPlan& plan) {
    CaseContext tc = {name};
    onDemux(tc, plan.eDemuxId, [&] {
        onDescrambler(tc, plan.eDemuxId, [&](uint32_t u32HDesc) {
            KeyThread keys = {{u32HDesc}, 0};
            if ((!plan.video || setPid(tc, u32HDesc, g_u32VideoPid)) &&
                (!plan.audio || setPid(tc, u32HDesc, g_u32AudioPid)))
                playWithKeys(tc, keys, plan);
        });
    });
    return TC_RESULT(tc);
}

static uint32_t TC_DESCRAMBLER_SetKey_001(void) {
    return setKeyBase(__func__, {QLX_DEMUX_0, true, false, "Is the video displayed normally?"});
}

static uint32_t TC_DESCRAMBLER_SetKey_002(void) {
    return setKeyBase(__func__, {QLX_DEMUX_0, false, true, "Is the audio played normally?"});
}

static uint32_t TC_DESCRAMBLER_SetKey_003(void) {
    return setKeyBase(__func__,
                      {QLX_DEMUX_0, true, true, "Are the video and audio played normally?"});
}

/** A descrambler for the picture, and one for the sound. */
static uint32_t TC_DESCRAMBLER_SetKey_004(void) {
    CaseContext tc = {__func__};
    const KeyPlan plan = {QLX_DEMUX_0, true, true, "Are the video and audio played normally?"};
    onDemux(tc, QLX_DEMUX_0, [&] {
        onDescrambler(tc, QLX_DEMUX_0, [&](uint32_t hVideo) {
            onDescrambler(tc, QLX_DEMUX_0, [&](uint32_t hAudio) {
                KeyThread keys = {{hVideo, hAudio}, 0};
                if (setPid(tc, hVideo, g_u32VideoPid) && setPid(tc, hAudio, g_u32AudioPid))
                    playWithKeys(tc, keys, plan);
            });
        });
    });
    return TC_RESULT(tc);
}

/** A descrambler on each demultiplexer; the first one's service is played. */
static uint32_t TC_DESCRAMBLER_SetKey_005(void) {
    CaseContext tc = {__func__};
    const KeyPlan plan = {QLX_DEMUX_0, true, false, "Is the video displayed normally?"};
    onDemux(tc, QLX_DEMUX_0, [&] {
        onDemux(tc, QLX_DEMUX_1, [&] {
            onDescrambler(tc, QLX_DEMUX_0, [&](uint32_t hFirst) {
                onDescrambler(tc, QLX_DEMUX_1, [&](uint32_t hSecond) {
                    KeyThread keys = {{hFirst, hSecond}, 0};
                    if (setPid(tc, hFirst, g_u32VideoPid) && setPid(tc, hSecond, g_u32VideoPid))
                        playWithKeys(tc, keys, plan);
                });
            });
        });
    });
    return TC_RESULT(tc);
}

// clang-format off
static constexpr TcCase DiscramblerModuleCases[] = {
    TC_CASE(TC_DESCRAMBLER_Open_001,   AUTO,   "Open and close descrambler on DEMUX_0"),
    TC_CASE(TC_DESCRAMBLER_Open_002,   AUTO,   "Open and close descrambler on DEMUX_1"),
    TC_CASE(TC_DESCRAMBLER_Open_003,   AUTO,   "Open and close descrambler on DEMUX_0 and DEMUX_1"),
    TC_CASE(TC_DESCRAMBLER_Open_004,   AUTO,   "Open and close 8 descramblers on DEMUX_0 and DEMUX_1 each"),
    TC_CASE(TC_DESCRAMBLER_SetPid_001, AUTO,   "Set video pid to descrambler on DEMUX_0"),
    TC_CASE(TC_DESCRAMBLER_SetPid_002, AUTO,   "Set video pid to descrambler on DEMUX_1"),
    TC_CASE(TC_DESCRAMBLER_SetKey_001, MANUAL, "Test setting key to video(need special TS tream - ISDB_545-T41_25_discrambler.ts)"),
    TC_CASE(TC_DESCRAMBLER_SetKey_002, MANUAL, "Test setting key to audio(need special TS tream - ISDB_545-T41_25_discrambler.ts)"),
    TC_CASE(TC_DESCRAMBLER_SetKey_003, MANUAL, "Test setting key to video and audio(need special TS tream - ISDB_545-T41_25_discrambler.ts)"),
    TC_CASE(TC_DESCRAMBLER_SetKey_004, MANUAL, "Test setting key to video and audio with two descramblers(need special TS tream - ISDB_545-T41_25_discrambler.ts)"),
    TC_CASE(TC_DESCRAMBLER_SetKey_005, MANUAL, "Test setting key to two descramblers on DEMUX_0 and DEMUX_1(need special TS tream - ISDB_545-T41_25_discrambler.ts)"),
};
// clang-format on
static_assert(tcCaseCount(DiscramblerModuleCases) == 11 && tcAutoCount(DiscramblerModuleCases) == 6,
              "as in testcase/module_list.h");

const TcModule DescramblerModule = {
    DESC_TestSetup,
    DESC_TestTeardown,
    nullptr,
    nullptr,
    DiscramblerModuleCases,
    tcCaseCount(DiscramblerModuleCases),
    "DESCRAMBLER",
    "Test module for the descrambler",
    nullptr,
};

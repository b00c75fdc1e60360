#include "testcase/afe/afe_harness.h"

#include <errno.h>
#include <pthread.h>
#include <string.h>
#include <sys/time.h>

#include "environment/conf_reader.h"
#include "environment/config_files.h"
#include "environment/test_env.h"
#include "framework/case/ladder.h"
#include "framework/case/wait.h"
#include "platform/qlx_sif.h"
#include "testcase/vout/vout_harness.h"

enum { EVENT_TIMEOUT_S = 2 };

QLX_AnalogTuningParams g_stAnalogTuneParam;
const int32_t* tcAFEFeature;
uint32_t m_afeEventFlags;

/** Between the callback and who waits for an event. */
static pthread_mutex_t g_AFENotifyMtx = PTHREAD_MUTEX_INITIALIZER;
static pthread_cond_t g_AFENotifyCond = PTHREAD_COND_INITIALIZER;
/** As the callback has read it. */
static QLX_AnalogSignalStatus stglobleSignalStatus;

static uint32_t AFE_GetConfValue(const char* section, const char* key, uint32_t* value) {
    int32_t number = 0;
    get_conf_value_self(section, key, &number, g_configFile.tuner);
    *value = static_cast<uint32_t>(number);
    return TC_SUCCESS;
}

uint32_t AFE_LoadConfig(void) {
    zk_test_get_feature(&tcAFEFeature);
    memset(&g_stAnalogTuneParam, 0, sizeof g_stAnalogTuneParam);
    AFE_GetConfValue("ATV", "TUNER_AUDIO_STANDARD", &g_stAnalogTuneParam.AudioStandard);
    AFE_GetConfValue("ATV", "TUNER_COLOR_STANDARD", &g_stAnalogTuneParam.ColorStandard);
    AFE_GetConfValue("ATV", "TUNER_TUNE_TYPE", &g_stAnalogTuneParam.eTuneType);
    return TC_SUCCESS;
}

uint32_t AFE_GetTuningParams(uint32_t eTunerId, uint32_t uChannelId,
                             QLX_AnalogTuningParams* pstParams) {
    static_cast<void>(eTunerId);
    *pstParams = g_stAnalogTuneParam;
    if (uChannelId >= CHANNEL_TABLE_SIZE)
        uChannelId = 0;
    pstParams->Frequency = zk_testConfig.atvFrequency[uChannelId];
    return TC_SUCCESS;
}

uint32_t AFE_PrintAnalogSignalStatus(const QLX_AnalogSignalStatus* pstSignalStatus) {
    if (pstSignalStatus == nullptr)
        return TC_FAILURE;
    const QLX_AnalogSignalStatus& status = *pstSignalStatus;
    zk_log("AnalogSignalStatus  bVideoDecoderLock=%d \n",
           static_cast<int>(status.bVideoDecoderLock));
    zk_log("AnalogSignalStatus  bVifLock=%d \n", static_cast<int>(status.bVifLock));
    zk_log("AnalogSignalStatus  eAFCDistance=%d \n", static_cast<int>(status.eAFCDistance));
    zk_log("AnalogSignalStatus  TunedFrequency=%d \n", static_cast<int>(status.TunedFrequency));
    return TC_SUCCESS;
}

uint32_t AFE_PrintAnlaogTuneParam(const QLX_AnalogTuningParams* pstTuningParams) {
    if (pstTuningParams == nullptr)
        return TC_FAILURE;
    const QLX_AnalogTuningParams& params = *pstTuningParams;
    zk_log("AnlaogTuneParam  Frequency=%d \n", static_cast<int>(params.Frequency));
    zk_log("AnlaogTuneParam  AudioStandard=%d \n", static_cast<int>(params.AudioStandard));
    zk_log("AnlaogTuneParam  ColorStandard=%d \n", static_cast<int>(params.ColorStandard));
    return TC_SUCCESS;
}

static void tellSoundMode(uint32_t eTunerId) {
    uint32_t eMode = 0;
    zk_log("AFE_AFECallback (QLX_EVENT_ANALOG_MTS_CHANGED) \n");
    QLX_SIFGetSndOutMode(eTunerId, &eMode);
    zk_log("get nicam sound mode = %d", static_cast<int>(eMode));
}

static void tellLock(uint32_t bLocked) {
    if (bLocked != 0) {
        // Of tuner 0 whichever has locked, as the status of the bench's picture.
        QLX_AFEGetSignalStatus(QLX_TUNER_0, &stglobleSignalStatus);
        AFE_PrintAnalogSignalStatus(&stglobleSignalStatus);
    }
    zk_log("AFE_AFECallback (QLX_EVENT_ANALOG_SIGNAL_LOCKED) %s\n",
           bLocked == 1 ? "Locked" : "UnLocked");
}

/** Keeps the event and tells it on the console. Called with the mutex held. */
static void takeEvent(uint32_t eTunerId, uint32_t eEvent, const void* pData) {
    m_afeEventFlags = eEvent;
    if (eEvent == QLX_EVENT_ANALOG_MTS_CHANGED)
        tellSoundMode(eTunerId);
    else if (eEvent == QLX_EVENT_ANALOG_SIGNAL_LOCKED)
        tellLock(pData != nullptr ? *static_cast<const uint32_t*>(pData) : 0);
    else
        zk_log("AFE_AFECallback (Unsuppoted Event %d) \n", static_cast<int>(eEvent));
}

void AFE_AFECallback(uint32_t eTunerId, void* pUserData, uint32_t eEvent, void* pData) {
    static_cast<void>(pUserData);
    pthread_mutex_lock(&g_AFENotifyMtx);
    takeEvent(eTunerId, eEvent, pData);
    pthread_cond_signal(&g_AFENotifyCond);
    pthread_mutex_unlock(&g_AFENotifyMtx);
}

void AFE_AFECallbackNotifyMtsChange(uint32_t eTunerId, void* pUserData, uint32_t eEvent,
                                    void* pData) {
    static_cast<void>(pUserData);
    pthread_mutex_lock(&g_AFENotifyMtx);
    takeEvent(eTunerId, eEvent, pData);
    if (eEvent == QLX_EVENT_ANALOG_MTS_CHANGED)
        pthread_cond_signal(&g_AFENotifyCond);
    pthread_mutex_unlock(&g_AFENotifyMtx);
}

void AFE_ForgetEvent(void) {
    pthread_mutex_lock(&g_AFENotifyMtx);
    m_afeEventFlags = 0;
    pthread_mutex_unlock(&g_AFENotifyMtx);
}

uint32_t AFE_LastEvent(void) {
    pthread_mutex_lock(&g_AFENotifyMtx);
    const uint32_t eEvent = m_afeEventFlags;
    pthread_mutex_unlock(&g_AFENotifyMtx);
    return eEvent;
}

/** Waits for an event behind the call that causes it: one that came earlier is lost. False when the
 *  time is up. Called with the mutex held. */
static bool waitForEvent() {
    timeval now;
    gettimeofday(&now, nullptr);
    const timespec deadline = {now.tv_sec + EVENT_TIMEOUT_S, now.tv_usec * 1000};
    if (pthread_cond_timedwait(&g_AFENotifyCond, &g_AFENotifyMtx, &deadline) != ETIMEDOUT)
        return true;
    zk_log("Failed for 2S AFECallback not return, Tuning time out\n");
    return false;
}

/** Whether the front end has the channel, behind its event. `watch` runs since the tuning. */
static bool isTuned(CaseContext& tc, uint32_t eTunerId, const QLX_AnalogTuningParams& params,
                    const Stopwatch& watch) {
    QLX_AnalogSignalStatus stSignalInfo = {};
    if (!TC_EXPECT_RET(QLX_AFEGetSignalStatus(eTunerId, &stSignalInfo)))
        return false;
    if (stSignalInfo.bVifLock == 0) {
        zk_log("vif unlock=%d\n", static_cast<int>(stSignalInfo.bVifLock));
        return false;
    }
    if (stSignalInfo.bVideoDecoderLock == 0) {
        zk_log("vd unlock=%d.\n", static_cast<int>(stSignalInfo.bVideoDecoderLock));
        return false;
    }
    zk_log("Tuning [%dkhz] consume %lld ms\n", static_cast<int>(params.Frequency),
           static_cast<long long>(watch.ms()));
    return true;
}

uint32_t AFE_TuningChanelChange(uint32_t eTunerId, QLX_AnalogTuningParams* pstTuningParams,
                                uint32_t eAFC) {
    CaseContext tc = {__func__};
    static_cast<void>(eAFC);
    pstTuningParams->eTuneType = QLX_AFE_TUNE_TYPE_CHANNEL_CHANGE;
    const Stopwatch watch;
    TC_ASSERT_RET(QLX_AFESetTuningParam(eTunerId, pstTuningParams));
    zk_log("QLX_AFESetTuningParam [%dkhz] consume %lld ms\n",
           static_cast<int>(pstTuningParams->Frequency), static_cast<long long>(watch.ms()));
    pthread_mutex_lock(&g_AFENotifyMtx);
    if (!waitForEvent() || !isTuned(tc, eTunerId, *pstTuningParams, watch))
        tc.result = TC_FAILURE;
    pthread_mutex_unlock(&g_AFENotifyMtx);
    return TC_RESULT(tc);
}

/** A front end and the channel that it is tuned to. */
struct AnalogBench {
    uint32_t eTunerId;
    uint32_t uChannelId;
    QLX_Source stVOutSource;
    QLX_AnalogTuningParams stTuningParams;
    QLX_AnalogSignalStatus stSignalInfo;
};

static AnalogBench analogBenchOf(uint32_t eTunerId, uint32_t uChannelId) {
    AnalogBench bench = {};
    bench.eTunerId = eTunerId;
    bench.uChannelId = uChannelId;
    bench.stVOutSource = {QLX_SOURCE_TYPE_TUNER, eTunerId, 0};
    return bench;
}

static bool opensOutput(const AnalogBench&) {
    return tcAFEFeature[FEATURE_AFE_TUNING_AFTER_ATV_SOURCE] != 0;
}

static int64_t tune(AnalogBench& bench) {
    int32_t result = QLX_AFESetTuningParam(bench.eTunerId, &bench.stTuningParams);
    if (result == QLX_SUCCESS) {
        pthread_mutex_lock(&g_AFENotifyMtx);
        waitForEvent();
        pthread_mutex_unlock(&g_AFENotifyMtx);
    }
    return result;
}

// clang-format off
static const LadderStep<AnalogBench> analogSteps[] = {
    // up                                                                                                                                                          down                                                                                                                                         undo          whether there is such a step
    {LADDER_CALL("QLX_AFEInit(eTunerId)", QLX_AFEInit(bench.eTunerId)),                                                                                            LADDER_CALL("QLX_AFEDeInit(eTunerId)", QLX_AFEDeInit(bench.eTunerId))},
    {LADDER_CALL("QLX_AFEOpen(eTunerId)", QLX_AFEOpen(bench.eTunerId)),                                                                                            LADDER_CALL("QLX_AFEClose(eTunerId)", QLX_AFEClose(bench.eTunerId))},
    {LADDER_CALL("QLX_AFERegisterCallback(eTunerId, NULL, AFE_AFECallback)", QLX_AFERegisterCallback(bench.eTunerId, nullptr, AFE_AFECallback)),                   LADDER_CALL("QLX_AFEUnRegisterCallback(eTunerId, AFE_AFECallback)", QLX_AFEUnRegisterCallback(bench.eTunerId, AFE_AFECallback))},
    {LADDER_CALL("AFE_GetTuningParams(eTunerId, uChannelId, &stTuningParams)", AFE_GetTuningParams(bench.eTunerId, bench.uChannelId, &bench.stTuningParams)),      LADDER_NONE},
    {LADDER_CALL("TC_VOUT_OPEN(&stVOutSource)", TC_VOUT_OPEN(&bench.stVOutSource)),                                                                                LADDER_CALL("TC_VOUT_CLOSE()", TC_VOUT_CLOSE()),                                                                                             UNDO_CHECKED, opensOutput},
    {LADDER_CALL("QLX_AFESetTuningParam(eTunerId, &stTuningParams)", tune(bench)),                                                                                 LADDER_NONE},
    {LADDER_CALL("QLX_AFEGetSignalStatus(eTunerId, &stSignalInfo)", QLX_AFEGetSignalStatus(bench.eTunerId, &bench.stSignalInfo)),                                  LADDER_NONE},
};
// clang-format on

uint32_t TC_ANALOG_START(uint32_t eTunerId, uint32_t uChannelId) {
    CaseContext tc = {__func__};
    AnalogBench bench = analogBenchOf(eTunerId, uChannelId);
    AFE_LoadConfig();
    ladderUp(tc, bench, analogSteps);
    return TC_RESULT(tc);
}

uint32_t TC_ANALOG_END(uint32_t eTunerId) {
    CaseContext tc = {__func__};
    AnalogBench bench = analogBenchOf(eTunerId, 0);
    zk_test_get_feature(&tcAFEFeature);
    ladderDown(tc, bench, analogSteps);
    return TC_RESULT(tc);
}

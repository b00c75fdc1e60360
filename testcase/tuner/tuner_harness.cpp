// The tuner harness: semaphores and last statuses fed by the library's callback, the checks of a
// tuning, and the TC_TUNER_ wrappers that undo what they did when a step fails.
#include "testcase/tuner/tuner_harness.h"

#include <pthread.h>
#include <semaphore.h>
#include <stdio.h>

#include <atomic>

#include "environment/test_env.h"
#include "framework/case/check.h"
#include "framework/case/wait.h"
#include "testcase/tuner/tuner_steps.h"

static sem_t tunersem[QLX_TUNER_MAX];

/** The last status of each tuner. Never reset: it holds an earlier tuning's until the next event.
 *  One writer a place, the callback of that tuner. */
static std::atomic<uint32_t> s_statusRecords[QLX_TUNER_MAX];

/** True between TC_TUNER_INIT and TC_TUNER_DEINIT. */
static bool bTunerInited;

static const int32_t* tcTunerFeature;

uint32_t TUNER_TestSetup(void) {
    zk_log("%s ! \r\n", __func__);
    zk_test_get_feature(&tcTunerFeature);
    return 0;
}

uint32_t TUNER_TestTeardown(void) {
    zk_log("%s ! \r\n", __func__);
    return 0;
}

uint32_t TUNER_TestCaseSetupImp(const char* caseName, const char* configFile) {
    static_cast<void>(caseName);
    static_cast<void>(configFile);
    return tuner_sem_init();
}

uint32_t TUNER_TestCaseTeardownImp(void) {
    return tuner_sem_destroy();
}

uint32_t tuner_sem_init(void) {
    for (int i = 0; i < QLX_TUNER_MAX; i++) {
        if (sem_init(&tunersem[i], 0, 0) != 0) {
            printf("sem_init failed idx=%d \n", i);
            return TC_FAILURE;
        }
    }
    return TC_SUCCESS;
}

uint32_t tuner_sem_post(uint32_t eTunerId) {
    if (eTunerId >= QLX_TUNER_MAX)
        return TC_FAILURE;
    return sem_post(&tunersem[eTunerId]) == 0 ? TC_SUCCESS : TC_FAILURE;
}

uint32_t tuner_sem_timedwait(uint32_t eTunerId, uint32_t timeout) {
    if (eTunerId >= QLX_TUNER_MAX)
        return TC_FAILURE;
    return tc_waitSem(&tunersem[eTunerId], timeout * 1000) ? TC_SUCCESS : TC_FAILURE;
}

uint32_t tuner_sem_destroy(void) {
    for (sem_t& semaphore : tunersem) {
        if (sem_destroy(&semaphore) != 0)
            return TC_FAILURE;
    }
    return TC_SUCCESS;
}

static bool isDecision(uint32_t eSignalStatus) {
    return eSignalStatus == QLX_TUNER_STATUS_LOCKED || eSignalStatus == QLX_TUNER_STATUS_UNLOCKED ||
           eSignalStatus == QLX_TUNER_STATUS_PLP_LOCKED;
}

void tuner_callback(uint32_t eTunerId, void* pUserData, uint32_t eSignalStatus, void* pData) {
    static_cast<void>(pUserData);
    static_cast<void>(pData);
    zk_log("tuner_callback eTunerId=%d eSignalStatus=%d \n", static_cast<int>(eTunerId),
           static_cast<int>(eSignalStatus));
    if (eTunerId >= QLX_TUNER_MAX)
        return;
    if (isDecision(eSignalStatus))
        tuner_sem_post(eTunerId);
    s_statusRecords[eTunerId] = eSignalStatus;
}

/** Seconds that a tuning of the system may take. */
static uint32_t lockTimeout(uint32_t eTransmissionSystem) {
    switch (eTransmissionSystem) {
        case QLX_TRANSMISSION_SYSTEM_ATSC_T3:
            return 3;
        case QLX_TRANSMISSION_SYSTEM_DVB_S:
        case QLX_TRANSMISSION_SYSTEM_DVB_S2:
            return 4;
        default:
            return 2;
    }
}

static bool isLocked(uint32_t eLockStatus) {
    return eLockStatus == QLX_TUNER_STATUS_LOCKED || eLockStatus == QLX_TUNER_STATUS_PLP_LOCKED;
}

/** Demands a status of the information, and of the last event. */
static uint32_t compareStatuses(CaseContext& tc, uint32_t eTunerId, uint32_t eLockStatus,
                                uint32_t eExpectedStatus) {
    TC_EXPECT_EQUAL(eExpectedStatus, eLockStatus);
    TC_EXPECT_EQUAL(eExpectedStatus, s_statusRecords[eTunerId]);
    return tc.result;
}

uint32_t tuner_test_tuning(uint32_t eTunerId, const QLX_TunerTuningParams* pstTuningParams,
                           uint32_t eExpectedStatus) {
    CaseContext tc = {__func__};
    QLX_TunerSignalInfo stSignalInfo = {};
    zk_log("\n\n==>[%s() %d]tuner-%d Will lock:%u, transSys:%d.\n\n", __func__, __LINE__,
           static_cast<int>(eTunerId), pstTuningParams->uFrequency,
           static_cast<int>(pstTuningParams->eTransmissionSystem));
    Stopwatch watch;
    TC_ASSERT_RET(QLX_TunerSetTuningParam(eTunerId, pstTuningParams));
    uint32_t timeout = lockTimeout(pstTuningParams->eTransmissionSystem);
    TC_ASSERT_RET(tuner_sem_timedwait(eTunerId, timeout));
    TC_ASSERT_RET(QLX_TunerGetSignalInfo(eTunerId, &stSignalInfo));
    long long consumed = watch.ms();
    printf("Tuner %s consume %lld ms\n", isLocked(stSignalInfo.eLockStatus) ? "locked" : "unlocked",
           consumed);
    return compareStatuses(tc, eTunerId, stSignalInfo.eLockStatus, eExpectedStatus);
}

uint32_t tuner_check_signalInfo(uint32_t eTunerId, const QLX_TunerSignalInfo* pstSignalInfo) {
    CaseContext tc = {__func__};
    const QLX_TunerSignalInfo& stSignalInfo = *pstSignalInfo;
    QLX_TunerTuningParams stTuningParams = {};
    TC_EXPECT_RET(QLX_TunerGetTuningParam(eTunerId, &stTuningParams));
    TC_EXPECT_TRUE(stSignalInfo.uSignalPresent > 0);
    TC_EXPECT_EQUAL(stTuningParams.eTuningType, stSignalInfo.eTuningType);
    TC_EXPECT_EQUAL(stTuningParams.uFrequency, stSignalInfo.uTunedFrequency);
    TC_EXPECT_TRUE(isLocked(stSignalInfo.eLockStatus));
    zk_log(
        "%s, %d,\n uSignalStrength=%d, sSignalQuality=%d\n uCarrierToNoise=%d, "
        "uBitErrorRate=%d\n\r",
        __func__, __LINE__, static_cast<int>(stSignalInfo.uSignalStrength),
        stSignalInfo.sSignalQuality, static_cast<int>(stSignalInfo.uCarrierToNoise),
        static_cast<int>(stSignalInfo.stDigital.uBitErrorRate));
    return TC_RESULT(tc);
}

uint32_t tuner_check_tuning_status(uint32_t eTunerId, uint32_t eExpectedStatus) {
    CaseContext tc = {__func__};
    QLX_TunerSignalInfo stSignalInfo = {};
    TC_ASSERT_RET(QLX_TunerGetSignalInfo(eTunerId, &stSignalInfo));
    return compareStatuses(tc, eTunerId, stSignalInfo.eLockStatus, eExpectedStatus);
}

static constexpr TunerStep initStep = {LADDER_CALL("QLX_TunerInit()", QLX_TunerInit()),
                                       LADDER_CALL("QLX_TunerDeInit()", QLX_TunerDeInit())};
static constexpr TunerStep openStep = {
    LADDER_CALL("QLX_TunerOpen(eTunerId)", QLX_TunerOpen(bench)),
    LADDER_CALL("QLX_TunerClose(eTunerId)", QLX_TunerClose(bench))};
static constexpr TunerStep registerStep = {
    LADDER_CALL("QLX_TunerRegisterCallback(eTunerId, NULL, tuner_callback)",
                QLX_TunerRegisterCallback(bench, nullptr, tuner_callback)),
    LADDER_CALL("QLX_TunerUnRegisterCallback(eTunerId, tuner_callback)",
                QLX_TunerUnRegisterCallback(bench, tuner_callback))};

const TunerStep tunerSteps[] = {initStep, openStep, registerStep};
/** The library is initialised by whoever uses the wrappers. */
static const TunerStep wrapperSteps[] = {openStep, registerStep};

void* TUNER_RequestTuneThread(void* req) {
    const tuner_request_info& request = *static_cast<const tuner_request_info*>(req);
    const QLX_TunerTuningParams& stTuningParams = request.stTuningParams;
    uint32_t eTunerId = request.tuner_id;
    CaseContext tc = {__func__};
    Ladder<uint32_t> ladder(tc, eTunerId, wrapperSteps);
    if (ladder.up() &&
        TC_EXPECT_RET(tuner_test_tuning(eTunerId, &stTuningParams, QLX_TUNER_STATUS_LOCKED)))
        TC_EXPECT_RET(tuner_check_tuning_params(eTunerId));
    ladder.down();
    tc_endThread(tc.result);
}

uint32_t TC_TUNER_SEM_INIT(void) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(tuner_sem_init());
    return TC_RESULT(tc);
}

uint32_t TC_TUNER_SEM_DESTROY(void) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(tuner_sem_destroy());
    return TC_RESULT(tc);
}

uint32_t TC_TUNER_INIT(void) {
    CaseContext tc = {__func__};
    if (!bTunerInited && TC_EXPECT_RET(tuner_sem_init())) {
        bTunerInited = TC_EXPECT_RET(QLX_TunerInit());
        if (!bTunerInited)
            TC_EXPECT_RET(tuner_sem_destroy());
    }
    return TC_RESULT(tc);
}

uint32_t TC_TUNER_DEINIT(void) {
    CaseContext tc = {__func__};
    if (bTunerInited) {
        TC_EXPECT_RET(QLX_TunerDeInit());
        TC_EXPECT_RET(tuner_sem_destroy());
        bTunerInited = false;
    }
    return TC_RESULT(tc);
}

/** Tunes an open tuner with the record's own system and pipes, and judges the signal. */
static bool tuneAndCheck(CaseContext& tc, uint32_t eTunerId,
                         const QLX_TunerTuningParams& stTuningParams) {
    QLX_TunerSignalInfo stSignalInfo = {};
    bool pipes = stTuningParams.eTransmissionSystem == QLX_TRANSMISSION_SYSTEM_ATSC_T3 &&
                 stTuningParams.stAtscT3.uPlpNum != 0;
    if (pipes)
        TC_EXPECT_RET(tuner_test_tuning(eTunerId, &stTuningParams, QLX_TUNER_STATUS_PLP_LOCKED));
    else
        TC_EXPECT_RET(tuner_test_tuning(eTunerId, &stTuningParams, QLX_TUNER_STATUS_LOCKED));
    return tc.result == TC_SUCCESS &&
           TC_EXPECT_RET(QLX_TunerGetSignalInfo(eTunerId, &stSignalInfo)) &&
           TC_EXPECT_RET(tuner_check_signalInfo(eTunerId, &stSignalInfo));
}

uint32_t TC_TUNER_START(uint32_t eTunerId, uint32_t eTransSys, uint32_t uChannelId) {
    CaseContext tc = {__func__};
    QLX_TunerTuningParams stTuningParams = {};
    TC_ASSERT_RET(tuner_get_params(eTunerId, eTransSys, uChannelId, &stTuningParams));
    Ladder<uint32_t> ladder(tc, eTunerId, wrapperSteps);
    if (!ladder.up() || !tuneAndCheck(tc, eTunerId, stTuningParams))
        ladder.down();
    return TC_RESULT(tc);
}

uint32_t TC_TUNER_START_IGNOR_LOCKED(uint32_t eTunerId) {
    CaseContext tc = {__func__};
    QLX_TunerTuningParams stTuningParams = {};
    TC_ASSERT_RET(tuner_get_params(eTunerId, 0, 0, &stTuningParams));
    Ladder<uint32_t> ladder(tc, eTunerId, wrapperSteps);
    if (!ladder.up() || !TC_EXPECT_RET(QLX_TunerSetTuningParam(eTunerId, &stTuningParams)))
        ladder.down();
    return TC_RESULT(tc);
}

uint32_t TC_TUNER_STOP(uint32_t eTunerId) {
    CaseContext tc = {__func__};
    ladderDown(tc, eTunerId, wrapperSteps);
    return TC_RESULT(tc);
}

uint32_t TC_TUNER_CLOSE(uint32_t eTunerId) {
    CaseContext tc = {__func__};
    ladderDown(tc, eTunerId, wrapperSteps);
    return TC_RESULT(tc);
}

uint32_t TC_TUNER_TUNING(uint32_t eTunerId, const QLX_TunerTuningParams* pstTuningParams) {
    CaseContext tc = {__func__};
    tuneAndCheck(tc, eTunerId, *pstTuningParams);
    return TC_RESULT(tc);
}

uint32_t TC_TUNER_TUNING_CHANNEL_ID(uint32_t eTunerId, uint32_t eTransSys, uint32_t uChannelId) {
    CaseContext tc = {__func__};
    QLX_TunerTuningParams stTuningParams = {};
    TC_ASSERT_RET(tuner_get_params(eTunerId, eTransSys, uChannelId, &stTuningParams));
    tuneAndCheck(tc, eTunerId, stTuningParams);
    return TC_RESULT(tc);
}

uint32_t TC_TUNER_OPEN(uint32_t eTunerId) {
    CaseContext tc = {__func__};
    ladderUp(tc, eTunerId, wrapperSteps);
    return TC_RESULT(tc);
}

// The tuner harness: semaphores and last statuses fed by the library's callback, the checks of a
// tuning, and the TC_TUNER_ wrappers that undo what they did when a step fails.
#include "testcase/tuner/tuner_harness.h"

#include <errno.h>
#include <pthread.h>
#include <semaphore.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/time.h>

#include <atomic>

#include "environment/test_env.h"
#include "framework/case/wait.h"
#include "framework/tc_check.h"

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
    timeval now;
    gettimeofday(&now, nullptr);
    timespec deadline;
    deadline.tv_sec = now.tv_sec + static_cast<time_t>(timeout);
    deadline.tv_nsec = static_cast<long>(now.tv_usec) * 1000;
    int waited;
    do {
        waited = sem_timedwait(&tunersem[eTunerId], &deadline);
    } while (waited != 0 && errno == EINTR);
    return waited == 0 ? TC_SUCCESS : TC_FAILURE;
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

/** True when the values agree; else prints both in the frame of a failed check. */
static bool checkEqual(const char* function, int line, uint32_t expected, uint32_t actual) {
    if (actual == expected)
        return true;
    tc_fail(function, line, "expect %d, but actually %d  \n", static_cast<int>(expected),
            static_cast<int>(actual));
    return false;
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

/** Compares a status of the information, and that of the last event, with the expected one. */
static uint32_t compareStatuses(const char* function, uint32_t eTunerId, uint32_t eLockStatus,
                                uint32_t eExpectedStatus) {
    bool info = checkEqual(function, __LINE__, eExpectedStatus, eLockStatus);
    bool event = checkEqual(function, __LINE__, eExpectedStatus, s_statusRecords[eTunerId]);
    return info && event ? TC_SUCCESS : TC_FAILURE;
}

uint32_t tuner_test_tuning(uint32_t eTunerId, const QLX_TunerTuningParams* pstTuningParams,
                           uint32_t eExpectedStatus) {
    QLX_TunerSignalInfo stSignalInfo = {};
    timeval start;
    timeval end;
    zk_log("\n\n==>[%s() %d]tuner-%d Will lock:%u, transSys:%d.\n\n", __func__, __LINE__,
           static_cast<int>(eTunerId), pstTuningParams->uFrequency,
           static_cast<int>(pstTuningParams->eTransmissionSystem));
    gettimeofday(&start, nullptr);
    TC_ASSERT_RET(QLX_TunerSetTuningParam(eTunerId, pstTuningParams));
    uint32_t timeout = lockTimeout(pstTuningParams->eTransmissionSystem);
    TC_ASSERT_RET(tuner_sem_timedwait(eTunerId, timeout));
    TC_ASSERT_RET(QLX_TunerGetSignalInfo(eTunerId, &stSignalInfo));
    gettimeofday(&end, nullptr);
    printf("Tuner %s consume %lld ms\n", isLocked(stSignalInfo.eLockStatus) ? "locked" : "unlocked",
           static_cast<long long>(zk_test_diff_timeMs(&start, &end)));
    return compareStatuses(__func__, eTunerId, stSignalInfo.eLockStatus, eExpectedStatus);
}

uint32_t tuner_check_signalInfo(uint32_t eTunerId, const QLX_TunerSignalInfo* pstSignalInfo) {
    uint32_t result = TC_SUCCESS;
    const QLX_TunerSignalInfo& stSignalInfo = *pstSignalInfo;
    QLX_TunerTuningParams stTuningParams = {};
    TC_EXPECT_RET(QLX_TunerGetTuningParam(eTunerId, &stTuningParams));
    TC_EXPECT_TRUE(stSignalInfo.uSignalPresent > 0);
    if (!checkEqual(__func__, __LINE__, stTuningParams.eTuningType, stSignalInfo.eTuningType))
        result = TC_FAILURE;
    if (!checkEqual(__func__, __LINE__, stTuningParams.uFrequency, stSignalInfo.uTunedFrequency))
        result = TC_FAILURE;
    TC_EXPECT_TRUE(isLocked(stSignalInfo.eLockStatus));
    zk_log(
        "%s, %d,\n uSignalStrength=%d, sSignalQuality=%d\n uCarrierToNoise=%d, "
        "uBitErrorRate=%d\n\r",
        __func__, __LINE__, static_cast<int>(stSignalInfo.uSignalStrength),
        stSignalInfo.sSignalQuality, static_cast<int>(stSignalInfo.uCarrierToNoise),
        static_cast<int>(stSignalInfo.stDigital.uBitErrorRate));
    return TC_RESULT(result);
}

uint32_t tuner_check_tuning_status(uint32_t eTunerId, uint32_t eExpectedStatus) {
    QLX_TunerSignalInfo stSignalInfo = {};
    TC_ASSERT_RET(QLX_TunerGetSignalInfo(eTunerId, &stSignalInfo));
    return compareStatuses(__func__, eTunerId, stSignalInfo.eLockStatus, eExpectedStatus);
}

/** Opens a tuner and registers the callback. Leaves it closed on failure. */
static uint32_t openAndRegister(const char* function, uint32_t eTunerId) {
    if (!tc_checkRet(function, __LINE__, "QLX_TunerOpen(eTunerId)", QLX_TunerOpen(eTunerId)))
        return TC_FAILURE;
    if (tc_checkRet(function, __LINE__, "QLX_TunerRegisterCallback(eTunerId, NULL, tuner_callback)",
                    QLX_TunerRegisterCallback(eTunerId, nullptr, tuner_callback)))
        return TC_SUCCESS;
    tc_checkRet(function, __LINE__, "QLX_TunerClose(eTunerId)", QLX_TunerClose(eTunerId));
    return TC_FAILURE;
}

/** Undoes openAndRegister; a step that fails does not keep the next from being done. */
static uint32_t unregisterAndClose(const char* function, uint32_t eTunerId) {
    bool unregistered =
        tc_checkRet(function, __LINE__, "QLX_TunerUnRegisterCallback(eTunerId, tuner_callback)",
                    QLX_TunerUnRegisterCallback(eTunerId, tuner_callback));
    bool closed =
        tc_checkRet(function, __LINE__, "QLX_TunerClose(eTunerId)", QLX_TunerClose(eTunerId));
    return unregistered && closed ? TC_SUCCESS : TC_FAILURE;
}

void* TUNER_RequestTuneThread(void* req) {
    const tuner_request_info& request = *static_cast<const tuner_request_info*>(req);
    const QLX_TunerTuningParams& stTuningParams = request.stTuningParams;
    uint32_t eTunerId = request.tuner_id;
    uint32_t* word = static_cast<uint32_t*>(malloc(sizeof *word));
    uint32_t result = openAndRegister(__func__, eTunerId);
    if (result == TC_SUCCESS) {
        TC_EXPECT_RET(tuner_test_tuning(eTunerId, &stTuningParams, QLX_TUNER_STATUS_LOCKED));
        if (result == TC_SUCCESS)
            TC_EXPECT_RET(tuner_check_tuning_params(eTunerId));
        if (unregisterAndClose(__func__, eTunerId) != TC_SUCCESS)
            result = TC_FAILURE;
    }
    if (word != nullptr)
        *word = result;
    pthread_exit(word);
}

uint32_t TC_TUNER_SEM_INIT(void) {
    uint32_t result = TC_SUCCESS;
    TC_EXPECT_RET(tuner_sem_init());
    return TC_RESULT(result);
}

uint32_t TC_TUNER_SEM_DESTROY(void) {
    uint32_t result = TC_SUCCESS;
    TC_EXPECT_RET(tuner_sem_destroy());
    return TC_RESULT(result);
}

uint32_t TC_TUNER_INIT(void) {
    uint32_t result = TC_SUCCESS;
    if (bTunerInited)
        return TC_RESULT(result);
    TC_EXPECT_RET(tuner_sem_init());
    if (result == TC_SUCCESS) {
        TC_EXPECT_RET(QLX_TunerInit());
        if (result == TC_SUCCESS)
            bTunerInited = true;
        else
            TC_EXPECT_RET(tuner_sem_destroy());
    }
    return TC_RESULT(result);
}

uint32_t TC_TUNER_DEINIT(void) {
    uint32_t result = TC_SUCCESS;
    if (bTunerInited) {
        TC_EXPECT_RET(QLX_TunerDeInit());
        TC_EXPECT_RET(tuner_sem_destroy());
        bTunerInited = false;
    }
    return TC_RESULT(result);
}

/** Tunes an open tuner with the record's own system and pipes, and judges the signal. */
static uint32_t tuneAndCheck(const char* function, uint32_t eTunerId,
                             const QLX_TunerTuningParams* pstTuningParams) {
    QLX_TunerSignalInfo stSignalInfo = {};
    bool pipes = pstTuningParams->eTransmissionSystem == QLX_TRANSMISSION_SYSTEM_ATSC_T3 &&
                 pstTuningParams->stAtscT3.uPlpNum != 0;
    uint32_t eExpectedStatus = pipes ? QLX_TUNER_STATUS_PLP_LOCKED : QLX_TUNER_STATUS_LOCKED;
    const char* text =
        pipes ? "tuner_test_tuning(eTunerId, &stTuningParams, QLX_TUNER_STATUS_PLP_LOCKED)"
              : "tuner_test_tuning(eTunerId, &stTuningParams, QLX_TUNER_STATUS_LOCKED)";
    if (!tc_checkRet(function, __LINE__, text,
                     tuner_test_tuning(eTunerId, pstTuningParams, eExpectedStatus)))
        return TC_FAILURE;
    if (!tc_checkRet(function, __LINE__, "QLX_TunerGetSignalInfo(eTunerId, &stSignalInfo)",
                     QLX_TunerGetSignalInfo(eTunerId, &stSignalInfo)))
        return TC_FAILURE;
    return tc_checkRet(function, __LINE__, "tuner_check_signalInfo(eTunerId, &stSignalInfo)",
                       tuner_check_signalInfo(eTunerId, &stSignalInfo))
               ? TC_SUCCESS
               : TC_FAILURE;
}

uint32_t TC_TUNER_START(uint32_t eTunerId, uint32_t eTransSys, uint32_t uChannelId) {
    QLX_TunerTuningParams stTuningParams = {};
    TC_ASSERT_RET(tuner_get_params(eTunerId, eTransSys, uChannelId, &stTuningParams));
    uint32_t result = openAndRegister(__func__, eTunerId);
    if (result == TC_SUCCESS) {
        result = tuneAndCheck(__func__, eTunerId, &stTuningParams);
        if (result != TC_SUCCESS)
            unregisterAndClose(__func__, eTunerId);
    }
    return TC_RESULT(result);
}

uint32_t TC_TUNER_START_IGNOR_LOCKED(uint32_t eTunerId) {
    QLX_TunerTuningParams stTuningParams = {};
    TC_ASSERT_RET(tuner_get_params(eTunerId, 0, 0, &stTuningParams));
    uint32_t result = openAndRegister(__func__, eTunerId);
    if (result == TC_SUCCESS) {
        TC_EXPECT_RET(QLX_TunerSetTuningParam(eTunerId, &stTuningParams));
        if (result != TC_SUCCESS)
            unregisterAndClose(__func__, eTunerId);
    }
    return TC_RESULT(result);
}

uint32_t TC_TUNER_STOP(uint32_t eTunerId) {
    return TC_RESULT(unregisterAndClose(__func__, eTunerId));
}

uint32_t TC_TUNER_CLOSE(uint32_t eTunerId) {
    return TC_RESULT(unregisterAndClose(__func__, eTunerId));
}

uint32_t TC_TUNER_TUNING(uint32_t eTunerId, const QLX_TunerTuningParams* pstTuningParams) {
    return TC_RESULT(tuneAndCheck(__func__, eTunerId, pstTuningParams));
}

uint32_t TC_TUNER_TUNING_CHANNEL_ID(uint32_t eTunerId, uint32_t eTransSys, uint32_t uChannelId) {
    QLX_TunerTuningParams stTuningParams = {};
    TC_ASSERT_RET(tuner_get_params(eTunerId, eTransSys, uChannelId, &stTuningParams));
    return TC_RESULT(tuneAndCheck(__func__, eTunerId, &stTuningParams));
}

uint32_t TC_TUNER_OPEN(uint32_t eTunerId) {
    return TC_RESULT(openAndRegister(__func__, eTunerId));
}

#include "testcase/pm/pm_harness.h"

#include <errno.h>
#include <pthread.h>
#include <stdio.h>
#include <time.h>
#include <unistd.h>

#include <atomic>

#include "framework/case/check.h"
#include "platform/qlx_pm.h"

/** How far a suspend has come. */
enum StrPhase {
    /** Nothing was ever done. */
    STR_PHASE_NONE = 0,
    /** The thread that calls the library has been started. */
    STR_PHASE_ENTERING = 1,
    /** That call has returned. */
    STR_PHASE_CALLED = 2,
    /** The callback saw the device suspend. */
    STR_PHASE_ENTERED = 3,
    /** The callback saw the device resume. */
    STR_PHASE_RESUMED = 4,
};

enum {
    /** No state has been told yet. */
    STATE_NONE = 255,
    WAIT_SECONDS = 10,
    /** Seconds from now to a wake-up by the RTC. */
    WAKEUP_SECONDS = 10,
};

/** Guards gStrCabllBackState and the wait. */
static pthread_mutex_t _strCallbackLock = PTHREAD_MUTEX_INITIALIZER;
/** On the monotonic clock; signalled on resume. */
static pthread_cond_t _strCallbackCond;
/** The last state given to the callback. */
static int32_t gStrCabllBackState = STATE_NONE;
/** Serves for messages alone. */
static std::atomic<int32_t> gStrPhase{STR_PHASE_NONE};
/** Its address is the user data given to the library. */
static int32_t gUserData;

int pmInitWait(void) {
    pthread_condattr_t attribute;
    int error = pthread_condattr_init(&attribute);
    if (error != 0)
        return error;
    pthread_condattr_setclock(&attribute, CLOCK_MONOTONIC);
    error = pthread_cond_init(&_strCallbackCond, &attribute);
    pthread_condattr_destroy(&attribute);
    return error;
}

void pmDestroyWait(void) {
    pthread_cond_destroy(&_strCallbackCond);
}

/** Tells of a state that comes out of turn, and goes on to it. */
static void passPhase(CaseContext& tc, int32_t latest, int32_t next, const char* name) {
    int32_t phase = gStrPhase;
    if (phase > latest)
        tc_fail(tc, __LINE__, "Wrong standby state during %s\n    previous state = %d.\n", name,
                phase);
    gStrPhase = next;
}

static void strStandbyCallback(int32_t state, void* userData) {
    // What is wrong here is told; the case does not hear of it.
    CaseContext tc = {__func__};
    zk_log("call back from pm state:%d, userdata %p\n", state, userData);
    if (userData != &gUserData)
        tc_fail(tc, __LINE__,
                "User data is inconsistent:\n    original addr:%p\n    current addr:%p\n",
                static_cast<void*>(&gUserData), userData);
    if (state == QLX_SYS_STANDBY_ENTER_STR)
        passPhase(tc, STR_PHASE_CALLED, STR_PHASE_ENTERED, "QLX_SYS_STANDBY_ENTER_STR");
    else if (state == QLX_SYS_STANDBY_EXIT_STR)
        passPhase(tc, STR_PHASE_ENTERED, STR_PHASE_RESUMED, "QLX_SYS_STANDBY_EXIT_STR");
    else
        tc_fail(tc, __LINE__, "Invalid standby state: %d \n", state);
    pthread_mutex_lock(&_strCallbackLock);
    gStrCabllBackState = state;
    if (state == QLX_SYS_STANDBY_EXIT_STR)
        pthread_cond_signal(&_strCallbackCond);
    pthread_mutex_unlock(&_strCallbackLock);
}

static void* suspendThread(void*) {
    CaseContext tc = {__func__};
    int32_t result = QLX_SysEnterStandby(QLX_SYS_STANDBY_MODE_STR, strStandbyCallback, &gUserData);
    int32_t entering = STR_PHASE_ENTERING;
    gStrPhase.compare_exchange_strong(entering, STR_PHASE_CALLED);
    TC_EXPECT_EQUAL(result, 0);
    return nullptr;
}

static void* standbyThread(void*) {
    CaseContext tc = {__func__};
    int32_t result = QLX_SysEnterStandby(QLX_SYS_STANDBY_MODE_STANDBY, nullptr, nullptr);
    TC_EXPECT_EQUAL(result, 0);
    pthread_mutex_lock(&_strCallbackLock);
    pthread_cond_signal(&_strCallbackCond);
    pthread_mutex_unlock(&_strCallbackLock);
    return nullptr;
}

/**
 * Starts a detached thread with the lock held, so that a fast callback cannot signal before the
 * wait has begun, and waits. Leaves the lock held.
 * @return what pthread_cond_timedwait answers, or the error of a thread that did not start
 */
static int enterAndWait(const char* name, void* (*body)(void*)) {
    // A message alone: how far an earlier suspend came says nothing of this one.
    CaseContext told = {name};
    pthread_t thread;
    timespec deadline{};
    gStrCabllBackState = STATE_NONE;
    int32_t phase = gStrPhase;
    if (phase != STR_PHASE_NONE && phase != STR_PHASE_RESUMED)
        tc_fail(told, __LINE__, "Wrong standby state: %d \n", phase);
    gStrPhase = STR_PHASE_ENTERING;
    clock_gettime(CLOCK_MONOTONIC, &deadline);
    deadline.tv_sec += WAIT_SECONDS;
    pthread_mutex_lock(&_strCallbackLock);
    int error = pthread_create(&thread, nullptr, body, nullptr);
    if (error != 0)
        return error;
    pthread_detach(thread);
    return pthread_cond_timedwait(&_strCallbackCond, &_strCallbackLock, &deadline);
}

uint32_t PM_EnterSTR(void) {
    CaseContext tc = {__func__};
    int waited = enterAndWait(tc.name, suspendThread);
    if (waited == ETIMEDOUT)
        tc_fail(tc, __LINE__, "Time out to wait standby callback");
    else if (gStrCabllBackState != QLX_SYS_STANDBY_EXIT_STR)
        tc_fail(tc, __LINE__, "Can not get resume from STR.");
    pthread_mutex_unlock(&_strCallbackLock);
    return tc.result;
}

uint32_t PM_EnterStandby(void) {
    CaseContext tc = {__func__};
    int waited = enterAndWait(tc.name, standbyThread);
    if (waited == ETIMEDOUT)
        tc_fail(tc, __LINE__, "Time out to wait standby");
    pthread_mutex_unlock(&_strCallbackLock);
    if (waited != ETIMEDOUT)
        sleep(10);
    // Whoever comes here has seen a device that did not go down.
    return TC_FAILURE;
}

const char* rtcText(uint32_t seconds, char (&text)[32]) {
    time_t when = static_cast<time_t>(seconds);
    struct tm parts {};
    gmtime_r(&when, &parts);
    return asctime_r(&parts, text);
}

bool prepareRtcWakeup(CaseContext& tc, uint32_t wakeup_reason, uint32_t aheadOfLinux) {
    char text[32];
    uint32_t ltime = static_cast<uint32_t>(time(nullptr)) + aheadOfLinux;
    if (!TC_EXPECT_RET(QLX_SysPMRTCSetTime(ltime)))
        return false;
    zk_log("set pm rtc time to %s\n", rtcText(ltime, text));
    ltime += WAKEUP_SECONDS;
    if (!TC_EXPECT_RET(QLX_SysPMRTCSetWakeupTime(ltime)))
        return false;
    zk_log("set wakeup time to %s\n", rtcText(ltime, text));
    if (!TC_EXPECT_RET(QLX_SysPMRTCSetWakeupReason(wakeup_reason)))
        return false;
    zk_log("set wakeup reason: %d\n", static_cast<int>(wakeup_reason));
    return TC_EXPECT_RET(QLX_SysSetWakeupCondition(QLX_SYS_WAKEUP_COND_RTC));
}

bool checkWakeupReason(CaseContext& tc, uint32_t wakeup_reason) {
    uint32_t eReason = 0;
    if (!TC_EXPECT_RET(QLX_SysGetWakeupReason(&eReason)))
        return false;
    zk_log("get wakeup reason: %d\n", static_cast<int>(eReason));
    return TC_EXPECT_EQUAL(wakeup_reason, eReason);
}

uint32_t testStrWakeupRtc(uint32_t wakeup_reason) {
    CaseContext tc = {__func__};
    TC_ASSERT(prepareRtcWakeup(tc, wakeup_reason, 0));
    TC_ASSERT_RET(PM_EnterSTR());
    TC_ASSERT(checkWakeupReason(tc, wakeup_reason));
    return TC_SUCCESS;
}

uint32_t testStandbyWakeupRtc(uint32_t wakeup_reason) {
    CaseContext tc = {__func__};
    TC_ASSERT(prepareRtcWakeup(tc, wakeup_reason, 0));
    TC_ASSERT_RET(PM_EnterStandby());
    return TC_SUCCESS;
}

void ShowMagicPacketHint(const char* interface) {
    char path[64];
    char address[31] = "";
    snprintf(path, sizeof path, "/sys/class/net/%s/address", interface);
    FILE* file = fopen(path, "r");
    if (file == nullptr)
        return;
    if (fscanf(file, "%30s", address) == 1)
        zk_log("Please send Magic Packet for %s:[%s] \n", interface, address);
    else
        printf(TC_COLOR_NOTICE "Failed get mac address" TC_COLOR_RESET);
    zk_logFlush();
    fclose(file);
}

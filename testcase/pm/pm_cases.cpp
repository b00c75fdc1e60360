// PM: suspend to RAM, standby, wake-up conditions and reasons, the standby controller's clock, the
// boot mode after mains power, restart. Cases of suspend go through a real suspend and resume and
// run by themselves; cases of standby end in a shutdown, and the operator judges the outcome.
#include <stdio.h>
#include <time.h>

#include "framework/case/check.h"
#include "platform/qlx_pm.h"
#include "testcase/modules.h"
#include "testcase/pm/pm_harness.h"

static uint32_t testSetup(void) {
    int error = pmInitWait();
    zk_log("setup all resources ! \r\n");
    return error == 0 ? 0 : 1;
}

static uint32_t testTeardown(void) {
    zk_log("release all resources ! \r\n");
    pmDestroyWait();
    return 0;
}

static uint32_t testCaseSetupImp(const char*, const char*) {
    return 0;
}

static uint32_t testCaseTeardownImp(void) {
    return 0;
}

/** What wakes the device in the plain cases: remote control and keypad. */
static const uint32_t plainCondition = QLX_SYS_WAKEUP_COND_IR | QLX_SYS_WAKEUP_COND_KEYPAD;

static uint32_t TC_PM_EnterStr_001(void) {
    CaseContext tc = {__func__};
    TC_ASSERT_RET(QLX_SysSetWakeupCondition(plainCondition));
    TC_ASSERT_RET(PM_EnterSTR());
    return TC_RESULT(tc);
}

static uint32_t TC_PM_EnterStandby_001(void) {
    CaseContext tc = {__func__};
    TC_ASSERT_RET(QLX_SysSetWakeupCondition(plainCondition));
    TC_ASSERT_RET(PM_EnterStandby());
    return TC_RESULT(tc);
}

/** Sets a boot mode, and demands to read the same. */
static uint32_t powerOnModeBase(const char* name, uint32_t mode, const char* announcement) {
    CaseContext tc = {name};
    uint32_t readMode = 0;
    zk_log("%s: %d\n", announcement, static_cast<int>(mode));
    TC_ASSERT_RET(QLX_SysSetColdPowerOnBootMode(mode));
    TC_ASSERT_RET_TEXT("QLX_SysGetColdPowerOnBootMode(&mode)",
                       QLX_SysGetColdPowerOnBootMode(&readMode));
    zk_log("get power on mode: %d\n", static_cast<int>(readMode));
    TC_ASSERT_EQUAL(mode, readMode);
    return TC_RESULT(tc);
}

// clang-format off
#define POWER_ON_MODE_VARIANTS(X) \
    /* case                  flag  description                   body */ \
    X(TC_PM_PowerOnMode_001, AUTO, "set power on mode direct",   powerOnModeBase(__func__, QLX_SYS_COLDPOWERON_BOOTMODE_BOOT,       "set power on mode direct")) \
    X(TC_PM_PowerOnMode_002, AUTO, "set power on mode standby",  powerOnModeBase(__func__, QLX_SYS_COLDPOWERON_BOOTMODE_STANDBY,    "set power on mode standby")) \
    X(TC_PM_PowerOnMode_003, AUTO, "set power on mode remember", powerOnModeBase(__func__, QLX_SYS_COLDPOWERON_BOOTMODE_LASTSTATUS, "set power on mode remember"))
// clang-format on
POWER_ON_MODE_VARIANTS(TC_VARIANT_FUNCTION)

static uint32_t TC_PM_WakeupConditions_001(void) {
    CaseContext tc = {__func__};
    uint32_t condition = 0;
    const uint32_t wanted = plainCondition | QLX_SYS_WAKEUP_COND_RTC;
    TC_ASSERT_RET(QLX_SysGetWakeupCondition(&condition));
    zk_log("pre set wake up condition: 0x%x\n", condition);
    TC_ASSERT_RET(QLX_SysSetWakeupCondition(wanted));
    zk_log("set wake up condition to: 0x%x\n", wanted);
    TC_ASSERT_RET(QLX_SysGetWakeupCondition(&condition));
    zk_log("after set wake up condition: 0x%x\n", condition);
    TC_ASSERT_TRUE(condition == wanted);
    return TC_RESULT(tc);
}

static uint32_t TC_PM_WakeupReason_001(void) {
    CaseContext tc = {__func__};
    uint32_t reason = 0, key = 0;
    TC_ASSERT_RET(QLX_SysGetWakeupReason(&reason));
    zk_log("get wakeup reason: %d\n", static_cast<int>(reason));
    if (reason == QLX_SYS_WAKEUP_REASON_IR) {
        TC_ASSERT_RET(QLX_SysGetWakeupIRKey(&key));
        zk_log("Got wake up key: 0x%4x\n", key);
    }
    zk_log(
        "Please compare with the actual wakeup reason of the TV\n"
        "to make sure the function is OK.\n");
    return TC_RESULT(tc);
}

static uint32_t TC_PM_RtcWakeup_001(void) {
    CaseContext tc = {__func__};
    uint32_t ltime = static_cast<uint32_t>(time(nullptr));
    uint32_t wakeupTime = 0;
    TC_ASSERT_RET(QLX_SysPMRTCSetTime(ltime));
    ltime += 30;
    TC_ASSERT_RET(QLX_SysPMRTCSetWakeupTime(ltime));
    TC_ASSERT_RET(QLX_SysPMRTCGetWakeupTime(&wakeupTime));
    TC_ASSERT_TRUE(wakeupTime == ltime);
    return TC_RESULT(tc);
}

static uint32_t TC_PM_RtcWakeup_002(void) {
    CaseContext tc = {__func__};
    uint32_t wakeupTime = 1;
    TC_ASSERT_RET(QLX_SysPMRTCClearWakeupTime());
    TC_ASSERT_RET(QLX_SysPMRTCGetWakeupTime(&wakeupTime));
    TC_ASSERT_TRUE(wakeupTime == 0);
    return TC_RESULT(tc);
}

static uint32_t TC_PM_RtcWakeup_003(void) {
    CaseContext tc = {__func__};
    TC_ASSERT_RET(QLX_SysPMRTCSetWakeupReason(QLX_SYS_WAKEUP_REASON_RTC_NO_REASON));
    TC_ASSERT_RET(QLX_SysPMRTCSetWakeupReason(QLX_SYS_WAKEUP_REASON_RTC_EPG_UPDATE));
    TC_ASSERT_RET(QLX_SysPMRTCSetWakeupReason(QLX_SYS_WAKEUP_REASON_RTC_EPG_NOTE));
    TC_ASSERT_RET(QLX_SysPMRTCSetWakeupReason(QLX_SYS_WAKEUP_REASON_RTC_ALARM));
    TC_ASSERT_RET(QLX_SysPMRTCSetWakeupReason(QLX_SYS_WAKEUP_REASON_RTC_RECORDING));
    TC_ASSERT_RET(QLX_SysPMRTCSetWakeupReason(QLX_SYS_WAKEUP_REASON_RTC_OTHER));
    return TC_RESULT(tc);
}

static uint32_t TC_PM_setRtcTime_001(void) {
    CaseContext tc = {__func__};
    struct tm parts {};
    uint32_t readTime = 0;
    strptime("2020-12-12 12:12:12", "%Y-%m-%d %H:%M:%S", &parts);
    uint32_t ltime = static_cast<uint32_t>(mktime(&parts));
    TC_ASSERT_RET(QLX_SysPMRTCSetTime(ltime));
    TC_ASSERT_RET(QLX_SysPMRTCGetTime(&readTime));
    // The clock may have gone on in between.
    if (readTime < ltime || readTime - ltime > 1)
        TC_ASSERT_RET(QLX_FAILED);
    return TC_RESULT(tc);
}

static uint32_t TC_PM_getRtcTime_001(void) {
    CaseContext tc = {__func__};
    uint32_t ltime = 0;
    char text[32];
    TC_ASSERT_RET(QLX_SysPMRTCGetTime(&ltime));
    zk_log("Current pm time is %s\n", rtcText(ltime, text));
    return TC_RESULT(tc);
}

static uint32_t TC_PM_RtcTime_STR_001(void) {
    CaseContext tc = {__func__};
    uint32_t rtcTime = 0;
    timespec realBefore{}, realAfter{};
    uint32_t timeBefore = static_cast<uint32_t>(time(nullptr));
    clock_gettime(CLOCK_REALTIME, &realBefore);
    // Only the clocks are judged here, not the resume.
    testStrWakeupRtc(QLX_SYS_WAKEUP_REASON_RTC_ALARM);
    TC_ASSERT_RET(QLX_SysPMRTCGetTime(&rtcTime));
    clock_gettime(CLOCK_REALTIME, &realAfter);
    if (rtcTime < timeBefore)
        tc_fail(tc, __LINE__, "RTC time goes back!");
    if (realAfter.tv_sec < realBefore.tv_sec)
        tc_fail(tc, __LINE__, "Real time goes back!");
    return TC_RESULT(tc);
}

static uint32_t TC_PM_restartTV_001(void) {
    CaseContext tc = {__func__};
    zk_log("Will restart TV, please check if the TV restarts normally...\n");
    zk_logFlush();
    TC_ASSERT_RET(QLX_SysRestartTV());
    return TC_RESULT(tc);
}

static uint32_t TC_PM_WakeupIRKey_001(void) {
    CaseContext tc = {__func__};
    uint32_t reason = 0, key = 0;
    TC_ASSERT_RET(QLX_SysGetWakeupReason(&reason));
    if (reason != QLX_SYS_WAKEUP_REASON_IR) {
        printf("TV was not awakened by IR (reason:%d).\n", static_cast<int>(reason));
    } else {
        TC_ASSERT_RET(QLX_SysGetWakeupIRKey(&key));
        zk_log("Got wake up key: 0x%4x\n", key);
    }
    return TC_RESULT(tc);
}

static uint32_t TC_PM_getCECWakeupAddress_001(void) {
    CaseContext tc = {__func__};
    uint32_t reason = 0, address = 0;
    TC_ASSERT_RET(QLX_SysGetWakeupReason(&reason));
    if (reason != QLX_SYS_WAKEUP_REASON_CEC) {
        printf("TV was not awakened by CEC (reason:%d).\n", static_cast<int>(reason));
    } else {
        TC_ASSERT_RET(QLX_SysGetWakupCECPhysicalAdress(&address));
        zk_log("Got wake up CEC physical address: 0x%4x\n", address);
    }
    return TC_RESULT(tc);
}

/** After these reasons the device works in the dark. */
static void noticeBacklight(uint32_t reason) {
    if (reason != QLX_SYS_WAKEUP_REASON_RTC_EPG_UPDATE &&
        reason != QLX_SYS_WAKEUP_REASON_RTC_RECORDING)
        return;
    printf(TC_COLOR_NOTICE "Notice: Backlight should be off after STR resume!" TC_COLOR_RESET);
    zk_logFlush();
}

/** Suspends, and wakes by the RTC for a reason. */
static uint32_t strRtcWakeUpBase(const char* name, uint32_t reason, const char* reasonName) {
    CaseContext tc = {name};
    zk_log("test wakeup by %s \nTV will enter STR and wake up after 10s\n", reasonName);
    noticeBacklight(reason);
    TC_ASSERT_RET(testStrWakeupRtc(reason));
    return TC_RESULT(tc);
}

/** Shuts down, to be woken by the RTC for a reason. */
static uint32_t standbyRtcWakeUpBase(const char* name, uint32_t reason, const char* reasonName) {
    CaseContext tc = {name};
    zk_log("test wakeup by %s \nTV will shutdown and wake up after 10s\n", reasonName);
    noticeBacklight(reason);
    TC_ASSERT_RET(testStandbyWakeupRtc(reason));
    return TC_RESULT(tc);
}

// clang-format off
#define STR_RTC_WAKE_UP_VARIANTS(X) \
    /* case                    flag  description                        body */ \
    X(TC_PM_STR_RTCWakeUp_001, AUTO, "RTC wakeup from STR, no reason",  strRtcWakeUpBase(__func__, QLX_SYS_WAKEUP_REASON_RTC_NO_REASON,  "RTC_NO_REASON")) \
    X(TC_PM_STR_RTCWakeUp_002, AUTO, "RTC wakeup from STR, EPG update", strRtcWakeUpBase(__func__, QLX_SYS_WAKEUP_REASON_RTC_EPG_UPDATE, "RTC_EPG_UPDATE")) \
    X(TC_PM_STR_RTCWakeUp_003, AUTO, "RTC wakeup from STR, EPG note",   strRtcWakeUpBase(__func__, QLX_SYS_WAKEUP_REASON_RTC_EPG_NOTE,   "RTC_EPG_NOTE")) \
    X(TC_PM_STR_RTCWakeUp_004, AUTO, "RTC wakeup from STR, alarm",      strRtcWakeUpBase(__func__, QLX_SYS_WAKEUP_REASON_RTC_ALARM,      "RTC_ALARM")) \
    X(TC_PM_STR_RTCWakeUp_005, AUTO, "RTC wakeup from STR, recording",  strRtcWakeUpBase(__func__, QLX_SYS_WAKEUP_REASON_RTC_RECORDING,  "RTC_RECORDING")) \
    X(TC_PM_STR_RTCWakeUp_006, AUTO, "RTC wakeup from STR, other",      strRtcWakeUpBase(__func__, QLX_SYS_WAKEUP_REASON_RTC_OTHER,      "RTC_OTHER"))
#define STANDBY_RTC_WAKE_UP_VARIANTS(X) \
    /* case                        flag    description                            body */ \
    X(TC_PM_Standby_RTCWakeUp_001, MANUAL, "RTC wakeup from standby, no reason",  standbyRtcWakeUpBase(__func__, QLX_SYS_WAKEUP_REASON_RTC_NO_REASON,  "RTC_NO_REASON")) \
    X(TC_PM_Standby_RTCWakeUp_002, MANUAL, "RTC wakeup from standby, EPG update", standbyRtcWakeUpBase(__func__, QLX_SYS_WAKEUP_REASON_RTC_EPG_UPDATE, "RTC_EPG_UPDATE")) \
    X(TC_PM_Standby_RTCWakeUp_003, MANUAL, "RTC wakeup from standby, EPG note",   standbyRtcWakeUpBase(__func__, QLX_SYS_WAKEUP_REASON_RTC_EPG_NOTE,   "RTC_EPG_NOTE")) \
    X(TC_PM_Standby_RTCWakeUp_004, MANUAL, "RTC wakeup from standby, alarm",      standbyRtcWakeUpBase(__func__, QLX_SYS_WAKEUP_REASON_RTC_ALARM,      "RTC_ALARM")) \
    X(TC_PM_Standby_RTCWakeUp_005, MANUAL, "RTC wakeup from standby, recording",  standbyRtcWakeUpBase(__func__, QLX_SYS_WAKEUP_REASON_RTC_RECORDING,  "RTC_RECORDING")) \
    X(TC_PM_Standby_RTCWakeUp_006, MANUAL, "RTC wakeup from standby, other",      standbyRtcWakeUpBase(__func__, QLX_SYS_WAKEUP_REASON_RTC_OTHER,      "RTC_OTHER"))
// clang-format on
STR_RTC_WAKE_UP_VARIANTS(TC_VARIANT_FUNCTION)
STANDBY_RTC_WAKE_UP_VARIANTS(TC_VARIANT_FUNCTION)

static uint32_t TC_PM_STR_RTCWakeUp_007(void) {
    CaseContext tc = {__func__};
    zk_log("RTC wakeup from STR when RTC time is different from linux time\n");
    TC_ASSERT(prepareRtcWakeup(tc, QLX_SYS_WAKEUP_REASON_RTC_ALARM, 1));
    TC_ASSERT_RET(PM_EnterSTR());
    TC_ASSERT(checkWakeupReason(tc, QLX_SYS_WAKEUP_REASON_RTC_ALARM));
    return TC_RESULT(tc);
}

static uint32_t TC_PM_Standby_RTCWakeUp_007(void) {
    CaseContext tc = {__func__};
    zk_log("RTC wakeup from standby when RTC time is different from linux time\n");
    TC_ASSERT(prepareRtcWakeup(tc, QLX_SYS_WAKEUP_REASON_RTC_ALARM, 1));
    TC_ASSERT_RET(PM_EnterStandby());
    return TC_RESULT(tc);
}

/** Suspends, and demands to be woken by the network. */
static uint32_t networkWakeUp(const char* name, uint32_t condition, uint32_t wanted,
                              const char* complaint) {
    CaseContext tc = {name};
    uint32_t reason = 0;
    TC_ASSERT_RET(QLX_SysSetWakeupCondition(condition));
    TC_ASSERT_RET(PM_EnterSTR());
    TC_ASSERT_RET(QLX_SysGetWakeupReason(&reason));
    zk_log("get wakeup reason: %d\n", static_cast<int>(reason));
    TC_ASSERT(reason == wanted || tc_fail(tc, __LINE__, "%s", complaint));
    return TC_RESULT(tc);
}

static const uint32_t lanCondition = plainCondition | QLX_SYS_WAKEUP_COND_LAN;
static const uint32_t wlanCondition = plainCondition | QLX_SYS_WAKEUP_COND_WLAN;

static uint32_t TC_PM_STR_WOLWakeUp_001(void) {
    zk_log("test wakeup by WOL, Make sure ethernet is plugged \nTV will enter STR...\n");
    ShowMagicPacketHint("eth0");
    return networkWakeUp(__func__, lanCondition, QLX_SYS_WAKEUP_REASON_WOL, "Not wakeup by WOL");
}

uint32_t TC_PM_STR_WOWWakeUp_001(void) {
    zk_log("test wakeup by WOW, Make sure wlan0 is connected\nTV will enter STR...\n");
    ShowMagicPacketHint("wlan0");
    return networkWakeUp(__func__, wlanCondition, QLX_SYS_WAKEUP_REASON_WOW, "Not wakeup by WOW");
}

static uint32_t TC_PM_Standby_WOLWakeUp_001(void) {
    CaseContext tc = {__func__};
    zk_log("test wakeup by WOL, Make sure ethernet is plugged \nTV will enter standby... \n");
    ShowMagicPacketHint("eth0");
    zk_log("please recheck wakeup reason == QLX_SYS_WAKEUP_REASON_WOL after DC on\n");
    TC_ASSERT_RET(QLX_SysSetWakeupCondition(lanCondition));
    TC_ASSERT_RET(PM_EnterStandby());
    return TC_RESULT(tc);
}

/** The operator looks at the lamp while other cases run. */
static uint32_t TC_PM_LED_DISPLAY_001(void) {
    return TC_SUCCESS;
}

// clang-format off
static constexpr TcCase PMModuleCases[] = {
    //      case                            flag    description
    TC_CASE(TC_PM_EnterStr_001,             MANUAL, "enter STR"),
    TC_CASE(TC_PM_EnterStandby_001,         MANUAL, "enter standby"),
    POWER_ON_MODE_VARIANTS(TC_VARIANT_ROW)
    TC_CASE(TC_PM_WakeupConditions_001,     AUTO,   "set and get the wakeup condition"),
    TC_CASE(TC_PM_WakeupReason_001,         AUTO,   "get the wakeup reason"),
    TC_CASE(TC_PM_RtcWakeup_001,            AUTO,   "set and get the RTC wakeup time"),
    TC_CASE(TC_PM_RtcWakeup_002,            AUTO,   "clear the RTC wakeup time"),
    TC_CASE(TC_PM_RtcWakeup_003,            AUTO,   "set the RTC wakeup reasons"),
    TC_CASE(TC_PM_setRtcTime_001,           AUTO,   "set the RTC time"),
    TC_CASE(TC_PM_getRtcTime_001,           AUTO,   "get the RTC time"),
    TC_CASE(TC_PM_RtcTime_STR_001,          AUTO,   "RTC time goes on during STR"),
    TC_CASE(TC_PM_restartTV_001,            MANUAL, "restart the TV"),
    TC_CASE(TC_PM_WakeupIRKey_001,          MANUAL, "get the key of a wakeup by IR"),
    TC_CASE(TC_PM_getCECWakeupAddress_001,  MANUAL, "get the physical address of a wakeup by CEC"),
    STR_RTC_WAKE_UP_VARIANTS(TC_VARIANT_ROW)
    TC_CASE(TC_PM_STR_RTCWakeUp_007,        AUTO,   "RTC wakeup from STR when RTC time is different from linux time"),
    STANDBY_RTC_WAKE_UP_VARIANTS(TC_VARIANT_ROW)
    TC_CASE(TC_PM_Standby_RTCWakeUp_007,    MANUAL, "RTC wakeup from standby when RTC time is different from linux time"),
    TC_CASE(TC_PM_STR_WOLWakeUp_001,        MANUAL, "wakeup from STR by the network"),
    TC_CASE(TC_PM_Standby_WOLWakeUp_001,    MANUAL, "wakeup from standby by the network"),
    TC_CASE(TC_PM_LED_DISPLAY_001,          MANUAL, "display of the LED"),
};
// clang-format on
static_assert(tcCaseCount(PMModuleCases) == 33 && tcAutoCount(PMModuleCases) == 18,
              "cases of the module, and those that run by themselves");

const TcModule PMModule = {
    testSetup,
    testTeardown,
    testCaseSetupImp,
    testCaseTeardownImp,
    PMModuleCases,
    tcCaseCount(PMModuleCases),
    "PM",
    "Test module for the PM",
    nullptr,
};

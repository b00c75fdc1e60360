// PM: real suspensions in virtual time - which source ends them and when, what the clocks show
// afterwards, and which fault turns which case.
#include <gtest/gtest.h>
#include <time.h>
#include <unistd.h>

#include <regex>
#include <string>
#include <vector>

#include "platform/qlx_pm.h"
#include "platform/qlx_sys.h"
#include "simulator/core/sim.h"
#include "testcase/pm/pm_harness.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/device.h"

namespace {

int64_t calendarMs() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

class PmModuleTest : public testing::Test {
 protected:
    PmModuleTest() {
        PMModule.setup();
    }
    ~PmModuleTest() override {
        PMModule.teardown();
    }

    uint32_t run(const char* name) {
        return measure([&] { return runCaseByName(PMModule, name); });
    }
    template <typename Body>
    uint32_t measure(Body body) {
        testing::internal::CaptureStdout();
        int64_t start = sim::nowMs(), calendar = calendarMs();
        uint32_t result = body();
        // The thread that called the library may still be about to end.
        tookMs_ = sim::nowMs() - start;
        calendarTookMs_ = calendarMs() - calendar;
        usleep(1000);
        text_ = testing::internal::GetCapturedStdout();
        return result;
    }
    bool says(const char* text) {
        return text_.find(text) != std::string::npos;
    }
    uint32_t reason() {
        uint32_t value = 99;
        EXPECT_EQ(QLX_SysGetWakeupReason(&value), 0);
        return value;
    }

    BenchFolder bench_;
    std::string text_;
    int64_t tookMs_ = 0;
    int64_t calendarTookMs_ = 0;
};

TEST_F(PmModuleTest, AutomaticCasesPassTwice) {
    for (int round = 0; round < 2; round++) {
        for (uint32_t i = 0; i < PMModule.caseCount; i++) {
            if (PMModule.cases[i].autoFlag != AUTO)
                continue;
            EXPECT_EQ(run(PMModule.cases[i].name), 0u) << text_;
            EXPECT_FALSE(says("\033[1;31m")) << text_;
            EXPECT_EQ(deviceState(), "");
        }
    }
}

TEST_F(PmModuleTest, SuspensionIsNoMonotonicTime) {
    EXPECT_EQ(run("TC_PM_STR_RTCWakeUp_004"), 0u);
    // The alarm lies ten seconds ahead of the second that the RTC was set to.
    EXPECT_GT(calendarTookMs_, 9000);
    EXPECT_LT(calendarTookMs_, 10500);
    EXPECT_LT(tookMs_, 1000);
    EXPECT_EQ(reason(), 7u);
    uint32_t rtc = 0, alarm = 0;
    EXPECT_EQ(QLX_SysPMRTCGetTime(&rtc), 0);
    EXPECT_EQ(QLX_SysPMRTCGetWakeupTime(&alarm), 0);
    EXPECT_EQ(rtc, alarm);
    sleep(5);
    EXPECT_EQ(QLX_SysPMRTCGetTime(&rtc), 0);
    EXPECT_EQ(rtc, alarm + 5);
}

TEST_F(PmModuleTest, CallbacksComeOnceEachAndInOrder) {
    qlx_sim_record(1);
    EXPECT_EQ(run("TC_PM_STR_RTCWakeUp_001"), 0u);
    qlx_sim_record(0);
    std::string calls = recordedCalls();
    size_t enter = calls.find("callback StandbyState(state=0)\n");
    size_t exit = calls.find("callback StandbyState(state=1)\n");
    ASSERT_NE(enter, std::string::npos);
    ASSERT_NE(exit, std::string::npos);
    EXPECT_LT(enter, exit);
    EXPECT_EQ(calls.find("StandbyState", exit + 20), std::string::npos);
}

TEST_F(PmModuleTest, FaultsTurnTheVerdict) {
    const struct {
        const char* name;
        const char* fault;
        const char* text;
        int64_t leastMs;
    } rows[] = {
        {"TC_PM_STR_RTCWakeUp_001", "StandbyState call=2 drop", "Time out to wait standby callback",
         10000},
        {"TC_PM_STR_RTCWakeUp_002", "StandbyState call=2 delay=9800",
         "Time out to wait standby callback", 10000},
        {"TC_PM_STR_RTCWakeUp_003", "QLX_SysEnterStandby return=5", "expect 5, but actually 0  \n",
         10000},
        {"TC_PM_STR_RTCWakeUp_004", "QLX_SysGetWakeupReason corrupt=0:01",
         "expect 7, but actually 1  \n", 0},
        {"TC_PM_STR_RTCWakeUp_005", "QLX_SysPMRTCSetTime return=1",
         "FUNC:QLX_SysPMRTCSetTime(ltime) RETURN ERROR VALUE [1] \n", 0},
        {"TC_PM_STR_RTCWakeUp_007", "QLX_SysPMRTCSetWakeupReason return=1",
         "FUNC:QLX_SysPMRTCSetWakeupReason(wakeup_reason) RETURN ERROR VALUE [1] \n", 0},
        {"TC_PM_RtcTime_STR_001", "QLX_SysPMRTCGetTime corrupt=3:00", "RTC time goes back!", 0},
        {"TC_PM_setRtcTime_001", "QLX_SysPMRTCGetTime corrupt=0:00",
         "FUNC:QLX_FAILED RETURN ERROR VALUE [1] \n", 0},
        {"TC_PM_WakeupConditions_001", "QLX_SysGetWakeupCondition call=2 corrupt=0:03",
         "expect 1, but actually 0  \n", 0},
        {"TC_PM_setRtcTime_001", "QLX_SysPMRTCGetTime add=time:2",
         "FUNC:QLX_FAILED RETURN ERROR VALUE [1] \n", 0},
        {"TC_PM_RtcWakeup_001", "QLX_SysPMRTCGetWakeupTime corrupt=0:01",
         "expect 1, but actually 0  \n", 0},
        {"TC_PM_RtcWakeup_002", "QLX_SysPMRTCGetWakeupTime corrupt=0:01",
         "expect 1, but actually 0  \n", 0},
        {"TC_PM_PowerOnMode_003", "QLX_SysGetColdPowerOnBootMode corrupt=0:01",
         "expect 2, but actually 1  \n", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.name) + " " + row.fault);
        qlx_sim_reset();
        ASSERT_EQ(qlx_sim_add_fault(row.fault), 0);
        EXPECT_EQ(run(row.name), 1u);
        EXPECT_TRUE(says(row.text)) << text_;
        EXPECT_GE(tookMs_, row.leastMs);
        EXPECT_LT(tookMs_, row.leastMs + 1000);
    }
    // The clock may have gone on by a second.
    qlx_sim_reset();
    qlx_sim_add_fault("QLX_SysPMRTCGetTime add=time:1");
    EXPECT_EQ(run("TC_PM_setRtcTime_001"), 0u) << text_;
    // The resume's own result is nothing to the case on the clocks.
    qlx_sim_reset();
    qlx_sim_add_fault("StandbyState drop");
    EXPECT_EQ(run("TC_PM_RtcTime_STR_001"), 0u) << text_;
}

TEST_F(PmModuleTest, ChecksNameTheFunctionThatTheyBelongTo) {
    const struct {
        const char* name;
        const char* fault;
        const char* frame;
    } rows[] = {
        {"TC_PM_STR_RTCWakeUp_001", "QLX_SysPMRTCSetTime return=1",
         "[testStrWakeupRtc][LINE]FUNC:QLX_SysPMRTCSetTime(ltime) RETURN"},
        {"TC_PM_STR_RTCWakeUp_001", "QLX_SysSetWakeupCondition return=1",
         "[testStrWakeupRtc][LINE]FUNC:QLX_SysSetWakeupCondition(QLX_SYS_WAKEUP_COND_RTC) RETURN"},
        {"TC_PM_STR_RTCWakeUp_001", "QLX_SysGetWakeupReason return=1",
         "[testStrWakeupRtc][LINE]FUNC:QLX_SysGetWakeupReason(&eReason) RETURN"},
        {"TC_PM_STR_RTCWakeUp_001", "QLX_SysGetWakeupReason corrupt=0:01",
         "[testStrWakeupRtc][LINE]expect 4, but actually 1  \n"},
        {"TC_PM_STR_RTCWakeUp_001", "StandbyState drop",
         "[PM_EnterSTR][LINE]Time out to wait standby callback"},
        {"TC_PM_STR_RTCWakeUp_001", "StandbyState drop",
         "[testStrWakeupRtc][LINE]FUNC:PM_EnterSTR() RETURN"},
        {"TC_PM_STR_RTCWakeUp_001", "StandbyState drop",
         "[TC_PM_STR_RTCWakeUp_001][LINE]FUNC:testStrWakeupRtc(reason) RETURN"},
        {"TC_PM_STR_RTCWakeUp_007", "QLX_SysPMRTCSetWakeupTime return=1",
         "[TC_PM_STR_RTCWakeUp_007][LINE]FUNC:QLX_SysPMRTCSetWakeupTime(ltime) RETURN"},
        {"TC_PM_STR_RTCWakeUp_007", "QLX_SysGetWakeupReason corrupt=0:01",
         "[TC_PM_STR_RTCWakeUp_007][LINE]expect 7, but actually 1  \n"},
        {"TC_PM_Standby_RTCWakeUp_001", "QLX_SysPMRTCSetWakeupReason return=1",
         "[testStandbyWakeupRtc][LINE]FUNC:QLX_SysPMRTCSetWakeupReason(wakeup_reason) RETURN"},
        {"TC_PM_Standby_RTCWakeUp_007", "QLX_SysPMRTCSetTime return=1",
         "[TC_PM_Standby_RTCWakeUp_007][LINE]FUNC:QLX_SysPMRTCSetTime(ltime) RETURN"},
    };
    for (const auto& row : rows) {
        qlx_sim_reset();
        ASSERT_EQ(qlx_sim_add_fault(row.fault), 0);
        EXPECT_EQ(run(row.name), 1u);
        text_ = std::regex_replace(text_, std::regex("\\]\\[\\d+\\]"), "][LINE]");
        EXPECT_TRUE(says(row.frame)) << row.frame << "\n" << text_;
        EXPECT_FALSE(says("TEST Result"));
    }
}

TEST_F(PmModuleTest, TheNoticeOnTheBacklightStandsBare) {
    for (const char* name : {"TC_PM_STR_RTCWakeUp_002", "TC_PM_STR_RTCWakeUp_005"}) {
        EXPECT_EQ(run(name), 0u);
        EXPECT_TRUE(says("\033[1;33mNotice: Backlight should be off after STR resume!\033[0m["))
            << text_;
    }
    EXPECT_EQ(run("TC_PM_STR_RTCWakeUp_003"), 0u);
    EXPECT_FALSE(says("Backlight"));
}

TEST_F(PmModuleTest, StatesOutOfTurnAreToldAndNoFailure) {
    qlx_sim_add_fault("StandbyState call=1 repeat=1");
    EXPECT_EQ(run("TC_PM_STR_RTCWakeUp_001"), 0u);
    EXPECT_TRUE(
        says("Wrong standby state during QLX_SYS_STANDBY_ENTER_STR\n"
             "    previous state = 3.\n"));
    qlx_sim_reset();
    qlx_sim_add_fault("StandbyState call=2 repeat=1");
    EXPECT_EQ(run("TC_PM_STR_RTCWakeUp_001"), 0u);
    sleep(1);
    qlx_sim_reset();
    // A state that is none leaves the wait to its end.
    qlx_sim_add_fault("StandbyState call=2 corrupt=0:07");
    EXPECT_EQ(run("TC_PM_STR_RTCWakeUp_001"), 1u);
    EXPECT_TRUE(says("Invalid standby state: 7 \n"));
    EXPECT_TRUE(says("Time out to wait standby callback"));
}

TEST_F(PmModuleTest, ASuspensionThatWasNeverEnteredIsToldByTheNext) {
    qlx_sim_add_fault("QLX_SysEnterStandby hang");
    EXPECT_EQ(run("TC_PM_STR_RTCWakeUp_001"), 1u);
    EXPECT_TRUE(says("Time out to wait standby callback"));
    qlx_sim_clear_faults();
    EXPECT_EQ(run("TC_PM_STR_RTCWakeUp_001"), 0u);
    EXPECT_TRUE(says("]Wrong standby state: 1 \n")) << text_;
    EXPECT_EQ(run("TC_PM_STR_RTCWakeUp_001"), 0u);
    EXPECT_FALSE(says("Wrong standby state"));
}

TEST_F(PmModuleTest, AStandbyThatIsRefusedLateIsNoResume) {
    qlx_sim_add_fault("QLX_SysEnterStandby call=1 delay=12000 return=1");
    EXPECT_EQ(run("TC_PM_EnterStandby_001"), 1u);
    EXPECT_TRUE(says("Time out to wait standby"));
    EXPECT_LT(tookMs_, 10100);
    EXPECT_EQ(run("TC_PM_EnterStr_001"), 1u);
    EXPECT_TRUE(says("]Can not get resume from STR.")) << text_;
    EXPECT_LT(tookMs_, 2100);
}

TEST_F(PmModuleTest, SourcesOfTheOutsideWorld) {
    const struct {
        const char* event;
        const char* name;
        uint32_t result;
        uint32_t reason;
    } rows[] = {
        {"wakeup ir 0x1c after 60000", "TC_PM_EnterStr_001", 0, 1},
        {"wakeup keypad after 60000", "TC_PM_EnterStr_001", 0, 2},
        {"wakeup lan after 60000", "TC_PM_STR_WOLWakeUp_001", 0, 11},
        {"wakeup ir 5 after 1", "TC_PM_STR_WOLWakeUp_001", 1, 1},
        {"wakeup wlan after 60000", "TC_PM_STR_WOLWakeUp_001", 1, 0},
        {"wakeup cec 0x1000 after 60000", "TC_PM_EnterStr_001", 1, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.name) + " " + row.event);
        qlx_sim_reset();
        ASSERT_EQ(qlx_sim_event(row.event), 0);
        EXPECT_EQ(run(row.name), row.result);
        EXPECT_EQ(reason(), row.reason);
        // A source outside the condition does not wake: the device sleeps on.
        EXPECT_EQ(deviceState(), row.reason == 0 ? "PM suspended\n" : "");
        EXPECT_EQ(says("Time out to wait standby callback"), row.reason == 0);
    }
    qlx_sim_reset();
    qlx_sim_event("wakeup wlan after 10");
    EXPECT_EQ(measure(TC_PM_STR_WOWWakeUp_001), 0u);
    qlx_sim_event("wakeup lan after 10");
    qlx_sim_event("wakeup ir after 20");
    EXPECT_EQ(measure(TC_PM_STR_WOWWakeUp_001), 1u);
    EXPECT_TRUE(says("Not wakeup by WOW"));
    for (const char* wrong : {"wakeup", "wakeup tv", "wakeup ir x", "wakeup ir 1 after",
                              "wakeup ir 1 after -5", "wakeup ir 1 later 5", "wakeup ir after 5 6"})
        EXPECT_NE(qlx_sim_event(wrong), 0) << wrong;
}

TEST_F(PmModuleTest, KeyAndAddressAreThoseOfTheSource) {
    uint32_t value = 0;
    EXPECT_EQ(QLX_SysGetWakeupIRKey(&value), QLX_PM_ERR_NOT_FOUND);
    qlx_sim_event("wakeup ir 0x1c after 10");
    EXPECT_EQ(run("TC_PM_EnterStr_001"), 0u);
    EXPECT_EQ(run("TC_PM_WakeupIRKey_001"), 0u);
    EXPECT_TRUE(says("]Got wake up key: 0x  1c\n"));
    EXPECT_EQ(run("TC_PM_WakeupReason_001"), 0u);
    EXPECT_TRUE(says("]Got wake up key: 0x  1c\n"));
    EXPECT_EQ(run("TC_PM_getCECWakeupAddress_001"), 0u);
    // Bare, without a time stamp.
    EXPECT_EQ(text_.rfind("TV was not awakened by CEC (reason:1).\n", 0), 0u) << text_;

    EXPECT_EQ(QLX_SysSetWakeupCondition(QLX_SYS_WAKEUP_COND_CEC), 0);
    qlx_sim_event("wakeup cec 0x2000 after 10");
    EXPECT_EQ(measure(PM_EnterSTR), 0u);
    EXPECT_EQ(QLX_SysGetWakupCECPhysicalAdress(&value), 0);
    EXPECT_EQ(value, 0x2000u);
    EXPECT_EQ(run("TC_PM_getCECWakeupAddress_001"), 0u);
    EXPECT_TRUE(says("]Got wake up CEC physical address: 0x2000\n"));
    EXPECT_EQ(run("TC_PM_WakeupIRKey_001"), 0u);
    EXPECT_EQ(text_.rfind("TV was not awakened by IR (reason:10).\n", 0), 0u) << text_;
}

TEST_F(PmModuleTest, AnEventThatComesNowEndsASuspensionOfOpenLength) {
    static std::vector<int32_t> states;
    states.clear();
    auto callback = [](int32_t state, void*) { states.push_back(state); };
    ASSERT_EQ(QLX_SysSetWakeupCondition(3), 0);
    // A key is nothing to a device that is awake.
    ASSERT_EQ(qlx_sim_event("wakeup ir 1"), 0);
    ASSERT_EQ(QLX_SysEnterStandby(1, callback, nullptr), 0);
    sleep(100);
    EXPECT_EQ(states, (std::vector<int32_t>{0}));
    EXPECT_EQ(QLX_SysEnterStandby(1, callback, nullptr), QLX_FAILED);
    ASSERT_EQ(qlx_sim_event("wakeup lan"), 0);
    sleep(1);
    EXPECT_EQ(states, (std::vector<int32_t>{0}));
    ASSERT_EQ(qlx_sim_event("wakeup ir 2"), 0);
    sleep(1);
    EXPECT_EQ(states, (std::vector<int32_t>{0, 1}));
    EXPECT_EQ(reason(), 1u);
    // An alarm in the past is none; one without its condition bit neither.
    uint32_t rtc = 0;
    QLX_SysPMRTCGetTime(&rtc);
    QLX_SysPMRTCSetWakeupTime(rtc - 1);
    QLX_SysSetWakeupCondition(QLX_SYS_WAKEUP_COND_RTC);
    ASSERT_EQ(QLX_SysEnterStandby(1, callback, nullptr), 0);
    sleep(100);
    EXPECT_EQ(deviceState(), "PM suspended\n");
    qlx_sim_reset();
    QLX_SysPMRTCSetWakeupTime(rtc + 300);
    QLX_SysSetWakeupCondition(QLX_SYS_WAKEUP_COND_IR);
    ASSERT_EQ(QLX_SysEnterStandby(1, nullptr, nullptr), 0);
    sleep(400);
    EXPECT_EQ(deviceState(), "PM suspended\n");
}

TEST_F(PmModuleTest, TheRtcRunsWithoutPowerAndByItself) {
    uint32_t rtc = 0;
    ASSERT_EQ(QLX_SysPMRTCSetTime(1000), 0);
    sleep(7);
    qlx_sim_reset();
    ASSERT_EQ(QLX_SysPMRTCGetTime(&rtc), 0);
    EXPECT_EQ(rtc, 1007u);
    // Setting the operating system's time does not turn it.
    struct timezone zone {};
    ASSERT_EQ(QLX_SysSetLinuxSystemTime({2000000000, 0}, zone), 0);
    EXPECT_EQ(time(nullptr), 2000000000);
    ASSERT_EQ(QLX_SysPMRTCGetTime(&rtc), 0);
    EXPECT_EQ(rtc, 1007u);
    ASSERT_EQ(QLX_SysSetLinuxSystemTime({1000000000, 0}, zone), 0);
    qlx_sim_reset();
    ASSERT_EQ(QLX_SysPMRTCGetTime(&rtc), 0);
    EXPECT_EQ(rtc, 1007u);
}

TEST_F(PmModuleTest, RefusesWhatIsNoSetting) {
    EXPECT_NE(QLX_SysEnterStandby(2, nullptr, nullptr), 0);
    EXPECT_NE(QLX_SysSetWakeupCondition(128), 0);
    EXPECT_NE(QLX_SysPMRTCSetWakeupReason(3), 0);
    EXPECT_NE(QLX_SysPMRTCSetWakeupReason(10), 0);
    EXPECT_NE(QLX_SysSetColdPowerOnBootMode(3), 0);
    EXPECT_NE(QLX_SysGetWakeupReason(nullptr), 0);
    EXPECT_NE(QLX_SysPMRTCGetTime(nullptr), 0);
}

}  // namespace

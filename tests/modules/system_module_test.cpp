// SYSTEM: verdicts on good and faulty answers, the stores, and the device's calendar.
#include <gtest/gtest.h>
#include <semaphore.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include "platform/qlx_env.h"
#include "platform/qlx_hdcp.h"
#include "platform/qlx_sys.h"
#include "simulator/core/device_clock.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/device.h"

namespace {

class SystemModule : public testing::Test {
 protected:
    uint32_t run(const char* name) {
        testing::internal::CaptureStdout();
        uint32_t result = runCaseByName(SysModule, name);
        text_ = testing::internal::GetCapturedStdout();
        return result;
    }
    bool says(const std::string& text) {
        return text_.find(text) != std::string::npos;
    }

    BenchFolder bench_;
    std::string text_;
};

TEST_F(SystemModule, AutomaticCasesPassAndLeaveTheServicesOff) {
    for (uint32_t i = 0; i < SysModule.caseCount; i++) {
        if (SysModule.cases[i].autoFlag == AUTO) {
            EXPECT_EQ(run(SysModule.cases[i].name), 0u) << text_;
        }
    }
    EXPECT_EQ(deviceState(), "");
    EXPECT_EQ(bench_.read("device/env/bootenv.txt"), "dbtable=0\n");
}

TEST_F(SystemModule, SettingTheTimeMovesTheDevicesCalendarAlone) {
    // The host's clock itself, which virtual time does not stand before.
    timespec before{};
    syscall(SYS_clock_gettime, CLOCK_REALTIME, &before);
    int64_t device = sim::calendarUs();
    ASSERT_EQ(run("TC_SYSTEM_SET_LINUXSYSTEM_TIME"), 0u);
    EXPECT_GE(sim::calendarUs() - device, 120 * 1000000);
    EXPECT_LT(sim::calendarUs() - device, 180 * 1000000);
    timespec after{};
    syscall(SYS_clock_gettime, CLOCK_REALTIME, &after);
    EXPECT_LT(after.tv_sec - before.tv_sec, 60);
    struct timezone zone {};
    EXPECT_NE(QLX_SysSetLinuxSystemTime({-1, 0}, zone), 0);
    EXPECT_NE(QLX_SysSetLinuxSystemTime({0, 1000000}, zone), 0);
    EXPECT_NE(QLX_SysSetLinuxSystemTime({INT64_MAX, 0}, zone), 0);
}

TEST_F(SystemModule, EachCapabilityIsDemandedInItsOrder) {
    const char* const demanded[] = {"NumberOfTuners",       "NumberOfHdmiSources",
                                    "NumberOfDemuxes",      "NumberOfVideoPlayers",
                                    "NumberOfAudioPlayers", "NumberOfVideoWindow"};
    for (size_t i = 0; i < 6; i++) {
        // This one and all behind it are missing: it is the one that is told.
        std::string board = "[CAPABILITY]\n";
        for (size_t k = i; k < 6; k++)
            board += std::string(demanded[k]) + "=0\n";
        bench_.useBoard(board);
        EXPECT_EQ(run("TC_SYSTEM_GET_CAPABILITY"), 1u);
        EXPECT_TRUE(says("FUNC:capability." + std::string(demanded[i]) +
                         " > 0? QLX_SUCCESS : QLX_FAILED RETURN ERROR VALUE [1] \n"))
            << text_;
        EXPECT_FALSE(says("TV Capability"));
    }
    std::string least = "[CAPABILITY]\nNumberOfScarts=2\n";
    for (const char* name : demanded)
        least += std::string(name) + "=1\n";
    bench_.useBoard(least);
    EXPECT_EQ(run("TC_SYSTEM_GET_CAPABILITY"), 0u);
    EXPECT_TRUE(says("QLX_U32 NumberOfScarts:              2\n"));
}

TEST_F(SystemModule, RandomNumbersThatAreNoneFail) {
    const char* const faults[][2] = {
        // The first number 0; both numbers alike.
        {"QLX_GetRandomNumber call=1 corrupt=", "00"},
        {"QLX_GetRandomNumber corrupt=", "5a"},
    };
    for (const auto& fault : faults) {
        qlx_sim_reset();
        for (int byte = 0; byte < 4; byte++)
            qlx_sim_add_fault((fault[0] + std::to_string(byte) + ":" + fault[1]).c_str());
        EXPECT_EQ(run("TC_SYSTEM_GET_RANDOM_NUMBER"), 1u);
        EXPECT_TRUE(
            says("FUNC:(number1 != number2 && number1 != 0)? QLX_SUCCESS : QLX_FAILED "
                 "RETURN ERROR VALUE [1] \n"))
            << text_;
    }
}

TEST_F(SystemModule, EnvironmentSurvivesPowerOffAndKeepsOthers) {
    char value[QLX_ENV_TEXT_SIZE] = "old";
    EXPECT_EQ(QLX_GetEnv("country", value), QLX_ENV_ERR_NOT_FOUND);
    EXPECT_STREQ(value, "");
    EXPECT_EQ(QLX_SetEnv("country", "GBR"), 0);
    EXPECT_EQ(QLX_SetEnv("mode", std::string(63, 'x').c_str()), 0);
    EXPECT_EQ(QLX_SetEnv("country", "DEU"), 0);
    qlx_sim_reset();
    EXPECT_EQ(QLX_GetEnv("country", value), 0);
    EXPECT_STREQ(value, "DEU");
    EXPECT_EQ(QLX_GetEnv("mode", value), 0);
    EXPECT_STREQ(value, std::string(63, 'x').c_str());

    const std::string tooLong(64, 'x');
    EXPECT_NE(QLX_SetEnv("", "a"), 0);
    EXPECT_NE(QLX_SetEnv("a=b", "a"), 0);
    EXPECT_NE(QLX_SetEnv("a\nb", "a"), 0);
    EXPECT_NE(QLX_SetEnv("a", "a\nmode=y"), 0);
    EXPECT_NE(QLX_SetEnv(tooLong.c_str(), "a"), 0);
    EXPECT_NE(QLX_SetEnv("a", tooLong.c_str()), 0);
    EXPECT_NE(QLX_SetEnv(nullptr, "a"), 0);
    EXPECT_NE(QLX_GetEnv("mode", nullptr), 0);
    // A store that was edited by hand must not overrun the caller's buffer.
    bench_.write("device/env/env.txt", "long=" + std::string(500, 'y') + "\n=\nx\n");
    EXPECT_EQ(QLX_GetEnv("long", value), 0);
    EXPECT_STREQ(value, std::string(63, 'y').c_str());
}

TEST_F(SystemModule, BootSettingsLastOnlyWhenSaved) {
    EXPECT_EQ(QLX_SetBootEnv(QLX_BOOT_ENV_TAG_DBTABLE, "1"), 0);
    qlx_sim_reset();
    EXPECT_EQ(QLX_SaveBootEnv(), 0);
    EXPECT_EQ(bench_.read("device/env/bootenv.txt"), "");
    EXPECT_EQ(QLX_SetBootEnv(QLX_BOOT_ENV_TAG_DBTABLE, "1"), 0);
    EXPECT_EQ(QLX_SaveBootEnv(), 0);
    EXPECT_EQ(bench_.read("device/env/bootenv.txt"), "dbtable=1\n");
    EXPECT_NE(QLX_SetBootEnv(7, "1"), 0);
    EXPECT_NE(QLX_SetBootEnv(QLX_BOOT_ENV_TAG_DBTABLE, nullptr), 0);
}

TEST_F(SystemModule, ASwitchThatIsLeftOffShows) {
    qlx_sim_add_fault("QLX_SetComEnabled call=2 return=1");
    EXPECT_EQ(run("TC_SYSTEM_SET_COM_ENABLED"), 1u);
    EXPECT_TRUE(says("FUNC:QLX_SetComEnabled(1) RETURN ERROR VALUE [1] \n"));
    EXPECT_EQ(deviceState(), "SYS debug console off\n");
}

TEST_F(SystemModule, AStoppedServiceTellsNothing) {
    bench_.useBoard("[HDCP]\nMIRACAST_RESULT=0\n");
    QLX_HDCPMiracastData data{};
    static sem_t told;
    static int32_t lastState;
    sem_init(&told, 0, 0);
    lastState = 0;
    QLX_HDCPSetMiracastHdcpStatusCallack([](uint32_t, int32_t state) {
        lastState = state;
        sem_post(&told);
    });
    // Nothing listens yet.
    EXPECT_EQ(qlx_sim_event("miracast 1"), 0);
    EXPECT_EQ(QLX_HDCPStartMiracast(&data), 0);
    EXPECT_EQ(deviceState(), "HDCP wireless display service running\n");
    EXPECT_EQ(qlx_sim_event("miracast 2"), 0);
    sem_wait(&told);
    EXPECT_EQ(lastState, 2);
    EXPECT_EQ(QLX_HDCPStopMiracast(&data), 0);
    EXPECT_EQ(qlx_sim_event("miracast 1"), 0);
    EXPECT_EQ(QLX_HDCPStopMiracast(&data), 0);
    EXPECT_EQ(lastState, 2);
    EXPECT_NE(sem_trywait(&told), 0);
    EXPECT_NE(QLX_HDCPStartMiracast(nullptr), 0);
    EXPECT_EQ(deviceState(), "");
    qlx_sim_reset();
    sem_destroy(&told);
}

}  // namespace

// GPIO and I2C: which fault of the library turns which case, that the library is left as it was
// found, and that the time limits lie exactly where they are said to lie.
#include <gtest/gtest.h>
#include <string.h>
#include <unistd.h>

#include <string>
#include <thread>

#include "environment/conf_reader.h"
#include "environment/config_files.h"
#include "environment/test_env.h"
#include "framework/case/check.h"
#include "platform/qlx_gpio.h"
#include "platform/qlx_sys.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/module_bench.h"
#include "tests/shared/typed.h"

namespace {

class DeviceCases : public testing::Test {
 protected:
    void SetUp() override {
        chooseShippedConfiguration();
        testing::internal::CaptureStdout();
        zk_test_load_feature();
        GPIOModule.setup();
        I2CModule.setup();
        qlx_sim_reset();
    }
    void TearDown() override {
        qlx_sim_reset();
        if (captured_.empty())
            testing::internal::GetCapturedStdout();
    }
    std::string captured() {
        captured_ = testing::internal::GetCapturedStdout() + "\n";
        return captured_;
    }
    uint32_t run(const std::string& name, const char* fault = nullptr) {
        qlx_sim_reset();
        return runCaseUnder(name.find("GPIO") != std::string::npos ? GPIOModule : I2CModule, name,
                            fault != nullptr ? fault : "");
    }

 private:
    BenchFolder bench_;
    std::string captured_;
};

TEST_F(DeviceCases, EveryAutomaticCasePassesAndLeavesNothingBehind) {
    for (const TcModule* module : {&GPIOModule, &I2CModule}) {
        for (uint32_t i = 0; i < module->caseCount; i++) {
            const TcCase& testCase = module->cases[i];
            if (testCase.autoFlag != AUTO)
                continue;
            EXPECT_EQ(run(testCase.name), static_cast<uint32_t>(TC_SUCCESS)) << testCase.name;
            EXPECT_EQ(deviceState(), "") << testCase.name;
        }
    }
}

/** The level that is written is the other one, whichever there is. */
TEST_F(DeviceCases, APinThatIsHighIsWrittenLow) {
    int32_t pin = 0;
    get_conf_value_self("GPIO", "GPIO_NUM", &pin, g_configFile.common);
    ASSERT_EQ(QLX_GPIOInit(), 0u);
    ASSERT_EQ(QLX_GPIOSetValue(static_cast<uint32_t>(pin), 1), 0u);
    ASSERT_EQ(QLX_GPIODeInit(), 0u);
    qlx_sim_record(1);
    EXPECT_EQ(runCaseByName(GPIOModule, "TC_GPIO_SetValue_006"), 0u);
    EXPECT_NE(recordedCalls().find(" level=0)=0"), std::string::npos) << recordedCalls();
    qlx_sim_record(0);
}

TEST_F(DeviceCases, AWrongAnswerTurnsTheCaseThatAsksForIt) {
    const struct {
        const char* name;
        const char* fault;
        const char* leaves;
    } rows[] = {
        {"TC_GPIO_GetValue_001", "QLX_GPIOGetValue return=0", ""},
        {"TC_GPIO_GetValue_001", "QLX_GPIOGetValue return=0x100e01", ""},
        {"TC_GPIO_GetValue_003", "QLX_GPIOGetValue return=1", ""},
        {"TC_GPIO_SetValue_005", "QLX_GPIOSetValue call=1 return=0", ""},
        {"TC_GPIO_SetValue_005", "QLX_GPIOSetValue call=2 return=0x100e02", ""},
        {"TC_GPIO_SetValue_006", "QLX_GPIOGetValue call=2 return=1", ""},
        // A level that does not follow ends the case at once, with the library initialised.
        {"TC_GPIO_SetValue_006", "QLX_GPIOGetValue call=2 corrupt=0:0", "GPIO initialised\n"},
        {"TC_GPIO_GetValue_003", "QLX_GPIODeInit return=1", "GPIO initialised\n"},
        {"TC_I2C_Open_001", "QLX_I2COpen return=0", ""},
        {"TC_I2C_Open_007", "QLX_I2COpen return=1", ""},
        {"TC_I2C_Open_007", "QLX_I2CClose return=1", ""},
        {"TC_I2C_Open_019", "QLX_I2COpen return=0", ""},
        {"TC_I2C_Open_019", "QLX_I2CClose return=0", ""},
        {"TC_I2C_Open_023", "QLX_I2COpen call=2 return=0", ""},
        {"TC_I2C_ReadWrite_001", "QLX_I2CRead return=1", ""},
        {"TC_I2C_ReadWrite_001", "QLX_I2CRead zero=length", ""},
        {"TC_I2C_ReadWrite_002", "QLX_I2CWrite zero=length", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(run(row.name, row.fault), static_cast<uint32_t>(TC_FAILURE))
            << row.name << " with " << row.fault;
        EXPECT_EQ(deviceState(), row.leaves) << row.name << " with " << row.fault;
    }
}

TEST_F(DeviceCases, TimeLimitsTurnAtTheMillisecond) {
    const struct {
        const char* name;
        const char* function;
    } rows[] = {
        {"TC_GPIO_GetValue_005", "QLX_GPIOGetValue"},
        {"TC_GPIO_SetValue_007", "QLX_GPIOSetValue"},
        {"TC_I2C_ReadWrite_005", "QLX_I2CRead"},
        {"TC_I2C_ReadWrite_006", "QLX_I2CWrite"},
    };
    for (const auto& row : rows) {
        std::string fault = std::string(row.function) + " delay=";
        EXPECT_EQ(run(row.name, (fault + "99").c_str()), static_cast<uint32_t>(TC_SUCCESS));
        EXPECT_EQ(run(row.name, (fault + "100").c_str()), static_cast<uint32_t>(TC_FAILURE));
    }
    EXPECT_NE(captured().find("[TC_GPIO_GetValue_005]"), std::string::npos);
}

TEST_F(DeviceCases, TimesWithinASecondsChangeCountByEachModulesRule) {
    const struct {
        const char* name;
        const char* fault;
        long startUs;
        uint32_t result;
    } rows[] = {
        // 99.9 ms each. GPIO takes seconds and microseconds apart: across a second these are 100.
        {"TC_GPIO_GetValue_005", "QLX_GPIOGetValue delay=99", 100000, TC_SUCCESS},
        {"TC_GPIO_GetValue_005", "QLX_GPIOGetValue delay=99", 950500, TC_FAILURE},
        {"TC_I2C_ReadWrite_005", "QLX_I2CRead delay=99", 100000, TC_SUCCESS},
        {"TC_I2C_ReadWrite_005", "QLX_I2CRead delay=99", 950500, TC_SUCCESS},
        {"TC_I2C_ReadWrite_006", "QLX_I2CWrite delay=99", 950500, TC_SUCCESS},
    };
    const struct timezone zone = {};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        QLX_SysSetLinuxSystemTime({1900000000, row.startUs}, zone);
        std::thread drift([&] {
            usleep(20000);
            // The calendar is put on by what the delay has no unit for.
            QLX_SysSetLinuxSystemTime({1900000000, row.startUs + 20000 + 900}, zone);
        });
        EXPECT_EQ(run(row.name, row.fault), row.result);
        drift.join();
    }
}

TEST_F(DeviceCases, AFeatureOfBusOrRateLetsACaseRun) {
    int32_t* features = zk_testConfig.features;
    for (int place = FEATURE_I2C_BUS0; place <= FEATURE_I2C_BUS_FAST; place++)
        features[place] = 0;
    qlx_sim_record(1);
    EXPECT_EQ(run("TC_I2C_Open_006"), static_cast<uint32_t>(TC_NOT_APPLICABLE));
    EXPECT_EQ(run("TC_I2C_Open_022"), static_cast<uint32_t>(TC_NOT_APPLICABLE));
    EXPECT_EQ(recordedCalls(), "");
    features[FEATURE_I2C_BUS_SLOW] = 2;
    EXPECT_EQ(run("TC_I2C_Open_006"), static_cast<uint32_t>(TC_SUCCESS));
    EXPECT_EQ(run("TC_I2C_Open_007"), static_cast<uint32_t>(TC_NOT_APPLICABLE));
    features[FEATURE_I2C_BUS1] = 1;
    EXPECT_EQ(run("TC_I2C_Open_007"), static_cast<uint32_t>(TC_SUCCESS));
    // The invalid arguments need no feature.
    features[FEATURE_I2C_BUS_SLOW] = features[FEATURE_I2C_BUS1] = 0;
    EXPECT_EQ(run("TC_I2C_Open_018"), static_cast<uint32_t>(TC_SUCCESS));
    qlx_sim_record(0);
}

TEST_F(DeviceCases, AnI2CCaseUndoesInReverse) {
    qlx_sim_reset();
    qlx_sim_record(1);
    EXPECT_EQ(qlx_sim_add_fault("QLX_I2CRead return=5"), 0);
    runCaseByName(I2CModule, "TC_I2C_ReadWrite_001");
    qlx_sim_record(0);
    EXPECT_EQ(recordedCalls(),
              "QLX_I2CInit()=0\nQLX_I2COpen(bus=1 rate=3)=0\n"
              "QLX_I2CRead(bus=1 config={chipAddress=80 registerAddressLength=2 "
              "registerAddress=f07f0000000000000000} length=4 buffer=set readLength=set)=5 "
              "refused by a fault\n"
              "QLX_I2CClose(bus=1)=0\nQLX_I2CDeInit()=0\n");
}

/** A case's result and what it printed. */
struct Ended {
    uint32_t result;
    std::string text;

    bool says(const char* words) const {
        return text.find(words) != std::string::npos;
    }
};

class I2CRegister : public testing::Test {
 protected:
    I2CRegister() : features_(zk_testConfig), files_(g_configFile) {
        zk_testConfig.features[FEATURE_I2C_BUS0] = 1;
        // The chip of the configuration: bus 2, address 0x48.
        setUp(
            "IIC_DEV_REG_ADDR_LEN=2\nIIC_DEV_REG_ADDR=0x44332211\n"
            "IIC_DEV_DATA_WRITE_LEN=3\nIIC_DEV_DATA_WRITE_BUF=0x08776655\n");
    }

    ~I2CRegister() override {
        zk_testConfig = features_;
        g_configFile = files_;
    }

    void setUp(const std::string& keys) {
        bench_.write("common.cfg", "[IIC]\nIIC_DEV_BUS_ID=2\nIIC_DEV_ADDR=0x48\n" + keys);
        snprintf(g_configFile.common, sizeof g_configFile.common, "%s/common.cfg",
                 bench_.path().c_str());
        bench_.useBoard("[I2C]\nCHIP0=0x248\n");
        testing::internal::CaptureStdout();
        I2CModule.setup();
        testing::internal::GetCapturedStdout();
    }
    Ended run(const char* name, const std::string& typed = "", const char* fault = nullptr) {
        Typed input(typed + "\n");
        qlx_sim_clear_faults();
        if (fault != nullptr) {
            EXPECT_EQ(qlx_sim_add_fault(fault), 0);
        }
        qlx_sim_record(1);
        testing::internal::CaptureStdout();
        uint32_t result = runCaseByName(I2CModule, name);
        Ended ended = {result, testing::internal::GetCapturedStdout()};
        qlx_sim_record(0);
        return ended;
    }

    BenchFolder bench_;

 private:
    const TestEnvConfig features_;
    const ConfigFiles files_;
};

TEST_F(I2CRegister, AsManyBytesAreFilledAsTheirLengthTells) {
    EXPECT_EQ(run("TC_I2C_ReadWrite_002").result, 0u);
    EXPECT_NE(recordedCalls().find("registerAddressLength=2 registerAddress=11220000000000000000} "
                                   "length=3 data=556677 "),
              std::string::npos)
        << recordedCalls();
    EXPECT_EQ(run("TC_I2C_ReadWrite_004", "2 0 48 1 44332211 4").result, 0u);
    EXPECT_NE(recordedCalls().find("registerAddressLength=1 registerAddress=11000000000000000000}"),
              std::string::npos)
        << recordedCalls();
    // No array is left behind its end.
    setUp(
        "IIC_DEV_REG_ADDR_LEN=255\nIIC_DEV_REG_ADDR=-1\n"
        "IIC_DEV_DATA_WRITE_LEN=255\nIIC_DEV_DATA_WRITE_BUF=-1\n");
    EXPECT_EQ(run("TC_I2C_ReadWrite_002").result, 1u);
    EXPECT_NE(recordedCalls().find("registerAddress=ffffffff000000000000} "
                                   "length=7 data=ffffffff000000 "),
              std::string::npos)
        << recordedCalls();
}

TEST_F(I2CRegister, AnInitOrDeInitThatFailsHasTheVerdictLineOfItsFamily) {
    const char* const manual = "2 0 48 1 11 1 77";
    const struct {
        const char* name;
        const char* typed;
        bool verdictOfDeInit;
    } rows[] = {
        {"TC_I2C_Open_001", "", false},          {"TC_I2C_Open_002", "", true},
        {"TC_I2C_Open_018", "", true},           {"TC_I2C_Open_022", "", true},
        {"TC_I2C_ReadWrite_001", "", false},     {"TC_I2C_ReadWrite_003", manual, false},
        {"TC_I2C_ReadWrite_004", manual, false}, {"TC_I2C_ReadWrite_006", "", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Ended ended = run(row.name, row.typed, "QLX_I2CInit return=7");
        EXPECT_EQ(ended.result, 1u);
        EXPECT_TRUE(ended.says("FUNC:QLX_I2CInit() RETURN ERROR VALUE [7]")) << ended.text;
        EXPECT_FALSE(ended.says("TEST Result")) << ended.text;
        ended = run(row.name, row.typed, "QLX_I2CDeInit return=7");
        EXPECT_EQ(ended.result, 1u);
        EXPECT_TRUE(ended.says("FUNC:QLX_I2CDeInit() RETURN ERROR VALUE [7]")) << ended.text;
        EXPECT_EQ(ended.says("TEST Result: FAIL"), row.verdictOfDeInit) << ended.text;
        EXPECT_FALSE(ended.says("TEST Result: SUCCESS")) << ended.text;
        qlx_sim_reset();
    }
}

TEST_F(I2CRegister, AManualTransferThatMovesNothingFails) {
    for (const char* name : {"TC_I2C_ReadWrite_003", "TC_I2C_ReadWrite_004"}) {
        for (const char* fault : {"QLX_I2CWrite zero=length", "QLX_I2CRead zero=length"}) {
            bool ownCall = (strstr(fault, "Write") != nullptr) == (name[19] == '3');
            Ended ended = run(name, "2 0 48 1 11 1 77", fault);
            EXPECT_EQ(ended.result, ownCall ? 1u : 0u) << name << " " << fault;
            EXPECT_EQ(ended.says("expect 1, but actually 0  \n"), ownCall) << ended.text;
            EXPECT_EQ(deviceState(), "");
        }
    }
}

TEST_F(I2CRegister, WordsThatAreNoNumbersAreAskedForAgain) {
    Ended ended = run("TC_I2C_ReadWrite_003",
                      "bus 4 2 rate 4 0 xyz 48 length 0 5 2 xyz 2211 xyz 2 xyz 1 xyz FE");
    EXPECT_EQ(ended.result, 0u) << ended.text;
    EXPECT_NE(recordedCalls().find("QLX_I2COpen(bus=2 rate=0)=0\n"
                                   "QLX_I2CWrite(bus=2 config={chipAddress=72 "
                                   "registerAddressLength=2 registerAddress=11220000000000000000} "
                                   "length=2 data=01fe "),
              std::string::npos)
        << recordedCalls();
    // The input ends at a word that is none.
    ended = run("TC_I2C_ReadWrite_003", "2 0 48 2 2211 2 1 xyz");
    EXPECT_EQ(ended.result, 1u);
    EXPECT_TRUE(ended.says("expect 1, but actually 0  \n"));
    EXPECT_EQ(recordedCalls(), "");
}

TEST_F(I2CRegister, NumbersAreTakenUpToTheirLimits) {
    Ended ended = run("TC_I2C_ReadWrite_004", "-1 4 3 4 3 48 0 5 4 44332211 4");
    EXPECT_NE(recordedCalls().find("QLX_I2COpen(bus=3 rate=3)"), std::string::npos)
        << recordedCalls();
    ended = run("TC_I2C_ReadWrite_004", "0 -1 48 4 44332211 4");
    EXPECT_NE(recordedCalls().find("QLX_I2COpen(bus=0 rate="), std::string::npos);
    ended = run("TC_I2C_ReadWrite_004", "2 0 48 4 44332211 4");
    EXPECT_NE(recordedCalls().find("registerAddressLength=4 registerAddress=11223344"),
              std::string::npos)
        << recordedCalls();
}

TEST_F(I2CRegister, ALengthThatCannotBeAllocatedFails) {
    for (const char* length : {"-1", "2000000000"}) {
        Ended ended = run("TC_I2C_ReadWrite_004", std::string("2 0 48 1 11 ") + length);
        EXPECT_EQ(ended.result, 1u);
        EXPECT_TRUE(ended.says("FUNC:QLX_TRUE RETURN ERROR VALUE [1] \n")) << ended.text;
        EXPECT_EQ(recordedCalls(), "");
    }
}

}  // namespace

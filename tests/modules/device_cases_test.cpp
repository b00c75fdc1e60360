// GPIO and I2C: which fault of the library turns which case, that the library is left as it was
// found, and that the time limits lie exactly where they are said to lie.
#include <gtest/gtest.h>

#include <string>

#include "environment/config_files.h"
#include "environment/test_env.h"
#include "framework/case/check.h"
#include "tests/shared/device.h"

namespace {

class DeviceCases : public testing::Test {
 protected:
    void SetUp() override {
        int32_t platform = 5;
        snprintf(g_configFile.commonDir, sizeof g_configFile.commonDir, "%s", "config/common");
        get_common_config(&g_configFile);
        set_platform(&g_configFile, &platform);
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
        if (fault != nullptr) {
            EXPECT_EQ(qlx_sim_add_fault(fault), 0);
        }
        uint32_t result =
            runCaseByName(name.find("GPIO") != std::string::npos ? GPIOModule : I2CModule, name);
        if (fault != nullptr) {
            EXPECT_GT(qlx_sim_faults_acted(), 0u) << name << " with " << fault;
        }
        return result;
    }

 private:
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

}  // namespace

// GPIO: calls before init and after deinit are refused, a read and a write succeed, a write changes
// the level, bad levels are refused, and each operation takes less than 100 ms.
#include <sys/time.h>

#include "environment/conf_reader.h"
#include "environment/config_files.h"
#include "framework/case/check.h"
#include "framework/case/hooks.h"
#include "framework/case/prompt.h"
#include "platform/qlx_gpio.h"
#include "testcase/modules.h"

/** The pin under test. */
static uint32_t g_uGpioNumber;

static int32_t GPIO_GetConfValue(const char* section, const char* key, int32_t* value) {
    return get_conf_value_self(section, key, value, g_configFile.common);
}

static uint32_t GPIO_TestSetup(void) {
    int32_t pin = 0;
    zk_log("%s ! \r\n", __func__);
    GPIO_GetConfValue("GPIO", "GPIO_NUM", &pin);
    g_uGpioNumber = static_cast<uint32_t>(pin);
    return 0;
}

TC_HOOK(GPIO_TestTeardown, __func__)

/** Milliseconds from `start` to `end` as GPIO counts them, each part of a time for itself. */
static int64_t consumption(const timeval& start, const timeval& end) {
    return static_cast<int64_t>(end.tv_sec - start.tv_sec) * 1000 +
           (end.tv_usec - start.tv_usec) / 1000;
}

static void printLevel(uint32_t pin, int32_t level) {
    zk_log("GPIO[%d] level[%d]\r\n", static_cast<int32_t>(pin), level);
}

/** Asks for a pin number. False when none was entered. */
static bool askForPin(CaseContext& tc, int32_t* pin) {
    zk_log("Please input the GPIO port number to test\r\n");
    bool answered = tc_askNumber(pin) == PROMPT_NUMBER;
    return TC_EXPECT_TRUE(answered);
}

static uint32_t TC_GPIO_GetValue_001(void) {
    CaseContext tc = {__func__};
    int32_t GetValue = 0;
    TC_ASSERT_RET_CODE(QLX_GPIOGetValue(g_uGpioNumber, &GetValue), QLX_GPIO_ERR_NOT_INIT);
    return TC_RESULT(tc);
}

static uint32_t TC_GPIO_GetValue_002(void) {
    CaseContext tc = {__func__};
    int32_t GetValue = 0;
    TC_ASSERT_RET(QLX_GPIOInit());
    TC_ASSERT_RET(QLX_GPIODeInit());
    TC_ASSERT_RET_CODE(QLX_GPIOGetValue(g_uGpioNumber, &GetValue), QLX_GPIO_ERR_NOT_INIT);
    return TC_RESULT(tc);
}

static uint32_t TC_GPIO_GetValue_003(void) {
    CaseContext tc = {__func__};
    int32_t GetValue = 0;
    TC_ASSERT_RET(QLX_GPIOInit());
    TC_EXPECT_RET(QLX_GPIOGetValue(g_uGpioNumber, &GetValue));
    printLevel(g_uGpioNumber, GetValue);
    TC_ASSERT_RET(QLX_GPIODeInit());
    return TC_RESULT(tc);
}

static uint32_t TC_GPIO_GetValue_004(void) {
    CaseContext tc = {__func__};
    int32_t pin = 0;
    int32_t GetValue = 0;
    TC_ASSERT_RET(QLX_GPIOInit());
    if (askForPin(tc, &pin)) {
        const uint32_t uGpioNum = static_cast<uint32_t>(pin);
        TC_EXPECT_RET(QLX_GPIOGetValue(uGpioNum, &GetValue));
        printLevel(uGpioNum, GetValue);
    }
    TC_ASSERT_RET(QLX_GPIODeInit());
    return TC_RESULT(tc);
}

static uint32_t TC_GPIO_GetValue_005(void) {
    CaseContext tc = {__func__};
    int32_t GetValue = 0;
    timeval start;
    timeval end;
    TC_ASSERT_RET(QLX_GPIOInit());
    gettimeofday(&start, nullptr);
    TC_EXPECT_RET(QLX_GPIOGetValue(g_uGpioNumber, &GetValue));
    gettimeofday(&end, nullptr);
    int64_t uConsumeTime = consumption(start, end);
    // Pin and level stand in the other order than the text says; racks parse the line as it is.
    zk_log("The consumption time of getting value[%d] from GPIO[%d] is %lld ms \r\n",
           static_cast<int32_t>(g_uGpioNumber), GetValue, static_cast<long long>(uConsumeTime));
    TC_EXPECT_RET_CODE((uConsumeTime < 100), QLX_TRUE);
    TC_ASSERT_RET(QLX_GPIODeInit());
    return TC_RESULT(tc);
}

static uint32_t TC_GPIO_SetValue_001(void) {
    CaseContext tc = {__func__};
    int32_t SetValue = 0;
    TC_ASSERT_RET_CODE(QLX_GPIOSetValue(g_uGpioNumber, SetValue), QLX_GPIO_ERR_NOT_INIT);
    return TC_RESULT(tc);
}

static uint32_t TC_GPIO_SetValue_002(void) {
    CaseContext tc = {__func__};
    int32_t SetValue = 0;
    TC_ASSERT_RET(QLX_GPIOInit());
    TC_ASSERT_RET(QLX_GPIODeInit());
    TC_ASSERT_RET_CODE(QLX_GPIOSetValue(g_uGpioNumber, SetValue), QLX_GPIO_ERR_NOT_INIT);
    return TC_RESULT(tc);
}

static uint32_t TC_GPIO_SetValue_003(void) {
    CaseContext tc = {__func__};
    int32_t SetValue = 0;
    TC_ASSERT_RET(QLX_GPIOInit());
    TC_EXPECT_RET(QLX_GPIOSetValue(g_uGpioNumber, SetValue));
    TC_ASSERT_RET(QLX_GPIODeInit());
    return TC_RESULT(tc);
}

static uint32_t TC_GPIO_SetValue_004(void) {
    CaseContext tc = {__func__};
    int32_t pin = 0;
    int32_t SetValue = 0;
    TC_ASSERT_RET(QLX_GPIOInit());
    // The pin of the configuration is driven, whatever number was entered.
    if (askForPin(tc, &pin))
        TC_EXPECT_RET(QLX_GPIOSetValue(g_uGpioNumber, SetValue));
    TC_ASSERT_RET(QLX_GPIODeInit());
    return TC_RESULT(tc);
}

static uint32_t TC_GPIO_SetValue_005(void) {
    CaseContext tc = {__func__};
    int32_t SetWrongValue_1 = -1;
    int32_t SetWrongValue_2 = 2;
    TC_ASSERT_RET(QLX_GPIOInit());
    if (TC_EXPECT_RET_CODE_TEXT("QLX_GPIOSetValue(g_uGpioNumber,SetWrongValue_1)",
                                QLX_GPIOSetValue(g_uGpioNumber, SetWrongValue_1),
                                QLX_GPIO_ERR_INVALID_PARA))
        TC_EXPECT_RET_CODE_TEXT("QLX_GPIOSetValue(g_uGpioNumber,SetWrongValue_2)",
                                QLX_GPIOSetValue(g_uGpioNumber, SetWrongValue_2),
                                QLX_GPIO_ERR_INVALID_PARA);
    TC_ASSERT_RET(QLX_GPIODeInit());
    return TC_RESULT(tc);
}

static uint32_t TC_GPIO_SetValue_006(void) {
    CaseContext tc = {__func__};
    int32_t GetValue = 0;
    TC_ASSERT_RET(QLX_GPIOInit());
    bool done = TC_EXPECT_RET(QLX_GPIOGetValue(g_uGpioNumber, &GetValue));
    const int32_t SetValue = GetValue == 0 ? 1 : 0;
    done = done && TC_EXPECT_RET(QLX_GPIOSetValue(g_uGpioNumber, SetValue));
    done = done && TC_EXPECT_RET(QLX_GPIOGetValue(g_uGpioNumber, &GetValue));
    // A pin that cannot be driven ends the case at once, with the library left initialised.
    if (done)
        TC_ASSERT_EQUAL(SetValue, GetValue);
    TC_ASSERT_RET(QLX_GPIODeInit());
    return TC_RESULT(tc);
}

static uint32_t TC_GPIO_SetValue_007(void) {
    CaseContext tc = {__func__};
    int32_t SetValue = 0;
    timeval start;
    timeval end;
    TC_ASSERT_RET(QLX_GPIOInit());
    gettimeofday(&start, nullptr);
    TC_EXPECT_RET(QLX_GPIOSetValue(g_uGpioNumber, SetValue));
    gettimeofday(&end, nullptr);
    int64_t uConsumeTime = consumption(start, end);
    zk_log("The consumption time of setting value to GPIO[%d] is %lld ms \r\n",
           static_cast<int32_t>(g_uGpioNumber), static_cast<long long>(uConsumeTime));
    TC_EXPECT_RET_CODE((uConsumeTime < 100), QLX_TRUE);
    TC_ASSERT_RET(QLX_GPIODeInit());
    return TC_RESULT(tc);
}

// clang-format off
static constexpr TcCase GPIOModuleCases[] = {
    //      case                  flag    description
    TC_CASE(TC_GPIO_GetValue_001, AUTO,   "Get value from GPIO before init"),
    TC_CASE(TC_GPIO_GetValue_002, AUTO,   "Get value from GPIO after deinit"),
    TC_CASE(TC_GPIO_GetValue_003, AUTO,   "Get value from GPIO specified in the configuration file"),
    TC_CASE(TC_GPIO_GetValue_004, MANUAL, "Get value from GPIO manually entered by user"),
    TC_CASE(TC_GPIO_GetValue_005, AUTO,   "Test the consumption time of getting value from GPIO once"),
    TC_CASE(TC_GPIO_SetValue_001, AUTO,   "Set value to GPIO befor init"),
    TC_CASE(TC_GPIO_SetValue_002, AUTO,   "Set value to GPIO after deinit"),
    TC_CASE(TC_GPIO_SetValue_003, AUTO,   "Set value to GPIO specified in the configuration file"),
    TC_CASE(TC_GPIO_SetValue_004, MANUAL, "Set value to GPIO manually entered by user"),
    TC_CASE(TC_GPIO_SetValue_005, AUTO,   "Set invalid value to GPIO"),
    TC_CASE(TC_GPIO_SetValue_006, AUTO,   "Ensure the value has been successfully setted to GPIO"),
    TC_CASE(TC_GPIO_SetValue_007, AUTO,   "Test the consumption time of setting value to GPIO once"),
};
// clang-format on
static_assert(tcCaseCount(GPIOModuleCases) == 12 && tcAutoCount(GPIOModuleCases) == 10,
              "cases of the module, and those that run by themselves");

const TcModule GPIOModule = {
    GPIO_TestSetup,  GPIO_TestTeardown,
    nullptr,         nullptr,
    GPIOModuleCases, tcCaseCount(GPIOModuleCases),
    "GPIO",          "Test module for the gpio",
    nullptr,
};

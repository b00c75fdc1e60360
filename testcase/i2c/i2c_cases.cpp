// I2C: each of four buses opens at each of four rates as far as the board has them, bad arguments
// and a second open are refused, and a chip's register is read and written with parameters of the
// configuration or of the operator.
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <memory>
#include <new>

#include "environment/conf_reader.h"
#include "environment/config_files.h"
#include "environment/test_env.h"
#include "framework/case/check.h"
#include "framework/case/hooks.h"
#include "framework/case/prompt.h"
#include "framework/case/wait.h"
#include "platform/qlx_i2c.h"
#include "testcase/modules.h"

enum {
    WRITE_DATA_SIZE = 7,
    READ_BUFFER_SIZE = 4,
    /** The most that a manual transfer may ask for. */
    MANUAL_DATA_MAX = 0x1000000,
};

/** The chip and register of the configuration. */
struct I2CParams {
    uint32_t eBusId;
    uint32_t eBusRate;
    QLX_I2CConfig stconfig;
    uint8_t uWriteDataLen;
    uint8_t uWriteData[WRITE_DATA_SIZE];
};

static I2CParams stI2CParams;
static const int32_t* tcI2CFeature;

static int32_t I2C_GetConfValue(const char* section, const char* key, int32_t* value) {
    return get_conf_value_self(section, key, value, g_configFile.common);
}

static uint32_t readParam(const char* key) {
    int32_t value = 0;
    I2C_GetConfValue("IIC", key, &value);
    return static_cast<uint32_t>(value);
}

/** Spreads a number over the first `length` bytes of an array, lowest first; those from the fifth
 * on are 0, and what is behind them stays as it is. */
template <size_t Size>
static void splitBytes(uint32_t number, uint8_t (&bytes)[Size], size_t length) {
    for (size_t i = 0; i < length && i < Size; i++)
        bytes[i] = i < 4 ? static_cast<uint8_t>(number >> (8 * i)) : 0;
}

static uint32_t I2C_TestSetup(void) {
    zk_log("%s ! \r\n", __func__);
    zk_test_get_feature(&tcI2CFeature);
    memset(&stI2CParams, 0, sizeof stI2CParams);
    QLX_I2CConfig* config = &stI2CParams.stconfig;
    stI2CParams.eBusId = readParam("IIC_DEV_BUS_ID");
    stI2CParams.eBusRate = readParam("IIC_DEV_BUS_RATE");
    config->chipAddress = static_cast<uint8_t>(readParam("IIC_DEV_ADDR"));
    config->registerAddressLength = static_cast<uint8_t>(readParam("IIC_DEV_REG_ADDR_LEN"));
    splitBytes(readParam("IIC_DEV_REG_ADDR"), config->registerAddress,
               config->registerAddressLength);
    uint8_t length = static_cast<uint8_t>(readParam("IIC_DEV_DATA_WRITE_LEN"));
    // The library reads as many bytes as it is told; there are no more than the record holds.
    stI2CParams.uWriteDataLen = std::min<uint8_t>(length, WRITE_DATA_SIZE);
    splitBytes(readParam("IIC_DEV_DATA_WRITE_BUF"), stI2CParams.uWriteData,
               stI2CParams.uWriteDataLen);
    return 0;
}

TC_HOOK(I2C_TestTeardown, __func__)

/** Either one of the two lets a case run. */
static bool isApplicable(ZkFeature bus, ZkFeature rate) {
    return tcI2CFeature[bus] != 0 || tcI2CFeature[rate] != 0;
}

static uint32_t TC_I2C_Open_001(void) {
    CaseContext tc = {__func__};
    TC_ASSERT_RET(QLX_I2CInit());
    TC_ASSERT_RET(QLX_I2CDeInit());
    TC_EXPECT_REFUSED(QLX_I2COpen(QLX_I2C_0, QLX_I2C_BUSRATE_NORMAL));
    return TC_RESULT(tc);
}

/** One bus at one rate. The texts are those of the calls in the variant's own terms. */
struct BusAndRate {
    uint32_t bus;
    uint32_t rate;
    ZkFeature busFeature;
    ZkFeature rateFeature;
    const char* openText;
    const char* closeText;
};

#define BUS_AND_RATE(bus, rate, busFeature, rateFeature)                       \
    {                                                                          \
        bus, rate, busFeature, rateFeature, "QLX_I2COpen(" #bus "," #rate ")", \
            "QLX_I2CClose(" #bus ")"                                           \
    }

static uint32_t openCloseBase(const char* name, const BusAndRate& variant) {
    CaseContext tc = {name};
    if (!isApplicable(variant.busFeature, variant.rateFeature))
        return tc_notApplicable(tc);
    TC_ASSERT_RET(QLX_I2CInit());
    if (TC_EXPECT_RET_TEXT(variant.openText, QLX_I2COpen(variant.bus, variant.rate)))
        TC_EXPECT_RET_TEXT(variant.closeText, QLX_I2CClose(variant.bus));
    TC_EXPECT_RET(QLX_I2CDeInit());
    return TC_RESULT(tc);
}

// clang-format off
#define OPEN_FAMILY(X) \
    /* case            flag  description                        body */ \
    X(TC_I2C_Open_002, AUTO, "open I2C bus-0 with slow rate",   openCloseBase(__func__, BUS_AND_RATE(QLX_I2C_0,QLX_I2C_BUSRATE_SLOW,  FEATURE_I2C_BUS0,FEATURE_I2C_BUS_SLOW))) \
    X(TC_I2C_Open_003, AUTO, "open I2C bus-0 with normal rate", openCloseBase(__func__, BUS_AND_RATE(QLX_I2C_0,QLX_I2C_BUSRATE_NORMAL,FEATURE_I2C_BUS0,FEATURE_I2C_BUS_NORMAL))) \
    X(TC_I2C_Open_004, AUTO, "open I2C bus-0 with middle rate", openCloseBase(__func__, BUS_AND_RATE(QLX_I2C_0,QLX_I2C_BUSRATE_MIDDLE,FEATURE_I2C_BUS0,FEATURE_I2C_BUS_MIDDLE))) \
    X(TC_I2C_Open_005, AUTO, "open I2C bus-0 with fast rate",   openCloseBase(__func__, BUS_AND_RATE(QLX_I2C_0,QLX_I2C_BUSRATE_FAST,  FEATURE_I2C_BUS0,FEATURE_I2C_BUS_FAST))) \
    X(TC_I2C_Open_006, AUTO, "open I2C bus-1 with slow rate",   openCloseBase(__func__, BUS_AND_RATE(QLX_I2C_1,QLX_I2C_BUSRATE_SLOW,  FEATURE_I2C_BUS1,FEATURE_I2C_BUS_SLOW))) \
    X(TC_I2C_Open_007, AUTO, "open I2C bus-1 with normal rate", openCloseBase(__func__, BUS_AND_RATE(QLX_I2C_1,QLX_I2C_BUSRATE_NORMAL,FEATURE_I2C_BUS1,FEATURE_I2C_BUS_NORMAL))) \
    X(TC_I2C_Open_008, AUTO, "open I2C bus-1 with middle rate", openCloseBase(__func__, BUS_AND_RATE(QLX_I2C_1,QLX_I2C_BUSRATE_MIDDLE,FEATURE_I2C_BUS1,FEATURE_I2C_BUS_MIDDLE))) \
    X(TC_I2C_Open_009, AUTO, "open I2C bus-1 with fast rate",   openCloseBase(__func__, BUS_AND_RATE(QLX_I2C_1,QLX_I2C_BUSRATE_FAST,  FEATURE_I2C_BUS1,FEATURE_I2C_BUS_FAST))) \
    X(TC_I2C_Open_010, AUTO, "open I2C bus-2 with slow rate",   openCloseBase(__func__, BUS_AND_RATE(QLX_I2C_2,QLX_I2C_BUSRATE_SLOW,  FEATURE_I2C_BUS2,FEATURE_I2C_BUS_SLOW))) \
    X(TC_I2C_Open_011, AUTO, "open I2C bus-2 with normal rate", openCloseBase(__func__, BUS_AND_RATE(QLX_I2C_2,QLX_I2C_BUSRATE_NORMAL,FEATURE_I2C_BUS2,FEATURE_I2C_BUS_NORMAL))) \
    X(TC_I2C_Open_012, AUTO, "open I2C bus-2 with middle rate", openCloseBase(__func__, BUS_AND_RATE(QLX_I2C_2,QLX_I2C_BUSRATE_MIDDLE,FEATURE_I2C_BUS2,FEATURE_I2C_BUS_MIDDLE))) \
    X(TC_I2C_Open_013, AUTO, "open I2C bus-2 with fast rate",   openCloseBase(__func__, BUS_AND_RATE(QLX_I2C_2,QLX_I2C_BUSRATE_FAST,  FEATURE_I2C_BUS2,FEATURE_I2C_BUS_FAST))) \
    X(TC_I2C_Open_014, AUTO, "open I2C bus-3 with slow rate",   openCloseBase(__func__, BUS_AND_RATE(QLX_I2C_3,QLX_I2C_BUSRATE_SLOW,  FEATURE_I2C_BUS3,FEATURE_I2C_BUS_SLOW))) \
    X(TC_I2C_Open_015, AUTO, "open I2C bus-3 with normal rate", openCloseBase(__func__, BUS_AND_RATE(QLX_I2C_3,QLX_I2C_BUSRATE_NORMAL,FEATURE_I2C_BUS3,FEATURE_I2C_BUS_NORMAL))) \
    X(TC_I2C_Open_016, AUTO, "open I2C bus-3 with middle rate", openCloseBase(__func__, BUS_AND_RATE(QLX_I2C_3,QLX_I2C_BUSRATE_MIDDLE,FEATURE_I2C_BUS3,FEATURE_I2C_BUS_MIDDLE))) \
    X(TC_I2C_Open_017, AUTO, "open I2C bus-3 with fast rate",   openCloseBase(__func__, BUS_AND_RATE(QLX_I2C_3,QLX_I2C_BUSRATE_FAST,  FEATURE_I2C_BUS3,FEATURE_I2C_BUS_FAST)))
// clang-format on

OPEN_FAMILY(TC_VARIANT_FUNCTION)

/** A bus or rate that does not exist: open and close are refused. */
static uint32_t openInvalidBase(const char* name, uint32_t eBusId, uint32_t eBusRate) {
    CaseContext tc = {name};
    TC_ASSERT_RET(QLX_I2CInit());
    if (TC_EXPECT_REFUSED(QLX_I2COpen(eBusId, eBusRate)))
        TC_EXPECT_REFUSED(QLX_I2CClose(eBusId));
    TC_EXPECT_RET(QLX_I2CDeInit());
    return TC_RESULT(tc);
}

static const uint32_t minusOne = static_cast<uint32_t>(-1);

// clang-format off
#define INVALID_FAMILY(X) \
    /* case            flag  description                                           body */ \
    X(TC_I2C_Open_018, AUTO, "open invalid bus id (QLX_I2C_0 - 1)",                openInvalidBase(__func__, minusOne, 0)) \
    X(TC_I2C_Open_019, AUTO, "open invalid bus id (QLX_I2C_3 + 1)",                openInvalidBase(__func__, 8, 0)) \
    X(TC_I2C_Open_020, AUTO, "open invalid bus rate (QLX_I2C_BUSRATE_SLOW - 1)",   openInvalidBase(__func__, 0, minusOne)) \
    X(TC_I2C_Open_021, AUTO, "open invalid bus rate (QLX_I2C_BUSRATE_COLSE + 1)",  openInvalidBase(__func__, 0, 5))
// clang-format on

INVALID_FAMILY(TC_VARIANT_FUNCTION)

/** A bus that is open already does not open again. */
static uint32_t openTwiceBase(const char* name, uint32_t eBusRate, ZkFeature rateFeature) {
    static const char openText[] = "QLX_I2COpen(eBusId,eBusRate)";
    CaseContext tc = {name};
    const uint32_t eBusId = QLX_I2C_0;
    if (!isApplicable(FEATURE_I2C_BUS0, rateFeature))
        return tc_notApplicable(tc);
    TC_ASSERT_RET(QLX_I2CInit());
    if (TC_EXPECT_RET_TEXT(openText, QLX_I2COpen(eBusId, eBusRate))) {
        TC_EXPECT_REFUSED_TEXT(openText, QLX_I2COpen(eBusId, eBusRate));
        TC_EXPECT_RET(QLX_I2CClose(eBusId));
    }
    TC_EXPECT_RET(QLX_I2CDeInit());
    return TC_RESULT(tc);
}

// clang-format off
#define TWICE_FAMILY(X) \
    /* case            flag  description                              body */ \
    X(TC_I2C_Open_022, AUTO, "open I2C bus-0 twice with slow rate",   openTwiceBase(__func__, QLX_I2C_BUSRATE_SLOW,   FEATURE_I2C_BUS_SLOW)) \
    X(TC_I2C_Open_023, AUTO, "open I2C bus-0 twice with normal rate", openTwiceBase(__func__, QLX_I2C_BUSRATE_NORMAL, FEATURE_I2C_BUS_NORMAL)) \
    X(TC_I2C_Open_024, AUTO, "open I2C bus-0 twice with middle rate", openTwiceBase(__func__, QLX_I2C_BUSRATE_MIDDLE, FEATURE_I2C_BUS_MIDDLE)) \
    X(TC_I2C_Open_025, AUTO, "open I2C bus-0 twice with fast rate",   openTwiceBase(__func__, QLX_I2C_BUSRATE_FAST,   FEATURE_I2C_BUS_FAST))
// clang-format on

TWICE_FAMILY(TC_VARIANT_FUNCTION)

/** A transfer with the configured chip, on an open bus. Returns the milliseconds that it took. */
static int64_t readConfigured(CaseContext& tc) {
    uint8_t uDataBuf[READ_BUFFER_SIZE] = {};
    const uint32_t uDataBufLen = sizeof uDataBuf;
    uint32_t uReadLen = 0;
    const Stopwatch watch;
    bool done = TC_EXPECT_RET(
        QLX_I2CRead(stI2CParams.eBusId, &stI2CParams.stconfig, uDataBufLen, uDataBuf, &uReadLen));
    const int64_t uConsumeTime = watch.ms();
    if (done)
        TC_EXPECT_TRUE(uReadLen != 0);
    return uConsumeTime;
}

static int64_t writeConfigured(CaseContext& tc) {
    uint32_t uWriteLen = 0;
    const Stopwatch watch;
    bool done =
        TC_EXPECT_RET(QLX_I2CWrite(stI2CParams.eBusId, &stI2CParams.stconfig,
                                   stI2CParams.uWriteData, stI2CParams.uWriteDataLen, &uWriteLen));
    const int64_t uConsumeTime = watch.ms();
    if (done)
        TC_EXPECT_TRUE(uWriteLen != 0);
    return uConsumeTime;
}

/**
 * Opens the configured bus for one transfer.
 * @param transfer  reads or writes
 * @param timed     what the line on its time calls the transfer; null: it may take any time
 */
static uint32_t configuredBase(const char* name, int64_t (*transfer)(CaseContext& tc),
                               const char* timed) {
    CaseContext tc = {name};
    TC_ASSERT_RET(QLX_I2CInit());
    if (TC_EXPECT_RET(QLX_I2COpen(stI2CParams.eBusId, stI2CParams.eBusRate))) {
        const int64_t uConsumeTime = transfer(tc);
        if (timed != nullptr) {
            zk_log("The consumption time of %s I2C is %lld ms \r\n", timed,
                   static_cast<long long>(uConsumeTime));
            TC_EXPECT_RET_CODE((uConsumeTime < 100), QLX_TRUE);
        }
        TC_EXPECT_RET(QLX_I2CClose(stI2CParams.eBusId));
    }
    TC_ASSERT_RET(QLX_I2CDeInit());
    return TC_RESULT(tc);
}

// clang-format off
#define CONFIGURED_FAMILY(X) \
    /* case                 flag  description                                                                            body */ \
    X(TC_I2C_ReadWrite_001, AUTO, "read data from specific I2C chip register, params of I2C config is from config file", configuredBase(__func__, readConfigured,  nullptr)) \
    X(TC_I2C_ReadWrite_002, AUTO, "write data to specific I2C chip register, params of I2C config is from config file",  configuredBase(__func__, writeConfigured, nullptr))
#define TIMED_FAMILY(X) \
    /* case                 flag  description                                                                                                        body */ \
    X(TC_I2C_ReadWrite_005, AUTO, "test consumption time of reading data from specific I2C chip register, params of I2C config is from config file", configuredBase(__func__, readConfigured,  "read")) \
    X(TC_I2C_ReadWrite_006, AUTO, "test consumption time of writing data to specific I2C chip register, params of I2C config is from config file",   configuredBase(__func__, writeConfigured, "writing"))
// clang-format on

CONFIGURED_FAMILY(TC_VARIANT_FUNCTION)
TIMED_FAMILY(TC_VARIANT_FUNCTION)

/** What the operator enters for a manual transfer. */
struct ManualTransfer {
    int32_t bus;
    int32_t rate;
    uint32_t chip;
    int32_t registerLength;
    uint32_t registerAddress;
    int32_t dataLength;
};

/** Asks until a number within the limits is entered. False at the end of input. */
static bool askNumber(const char* prompt, int32_t low, int32_t high, int32_t* number) {
    PromptAnswer answer;
    do {
        zk_log("%s\r\n", prompt);
        answer = tc_askNumber(number);
    } while (answer == PROMPT_NO_NUMBER ||
             (answer == PROMPT_NUMBER && (*number < low || *number > high)));
    return answer == PROMPT_NUMBER;
}

/** The same for a hexadecimal number of any size. */
static bool askHex(const char* prompt, uint32_t* number) {
    PromptAnswer answer;
    do {
        zk_log("%s\r\n", prompt);
        answer = tc_askHex(number);
    } while (answer == PROMPT_NO_NUMBER);
    return answer == PROMPT_NUMBER;
}

/** The common questions of both manual cases. False at the end of input. */
static bool askTransfer(const char* lengthPrompt, ManualTransfer* answer) {
    return askNumber("Input Bus id(0~3)", 0, 3, &answer->bus) &&
           askNumber("Input Bus rate: slow(0),normal(1),middle(2),fast(3)", INT32_MIN, 3,
                     &answer->rate) &&
           askHex("Input hex value of chip addr", &answer->chip) &&
           askNumber("Input register addr length, max value is 4", 1, 4, &answer->registerLength) &&
           askHex("Input hex value of register addr", &answer->registerAddress) &&
           askNumber(lengthPrompt, INT32_MIN, INT32_MAX, &answer->dataLength);
}

static bool askData(uint8_t* data, int32_t length) {
    char prompt[40];
    for (int32_t i = 0; i < length; i++) {
        uint32_t byte = 0;
        snprintf(prompt, sizeof prompt, "Input hex data[%d]", i);
        if (!askHex(prompt, &byte))
            return false;
        data[i] = static_cast<uint8_t>(byte);
    }
    return true;
}

static void printData(const ManualTransfer& answer, const uint8_t* data, uint32_t length) {
    zk_log("device address[%#2x], register addr[%#4x], data length[%d] data:\r\n", answer.chip,
           answer.registerAddress, static_cast<int32_t>(length));
    for (uint32_t i = 0; i < length; i++)
        zk_log("%#2x  ", data[i]);
    zk_log("\r\n");
}

/** A transfer with the chip that the operator has told, on an open bus. */
using ManualBody = void (*)(CaseContext& tc, const ManualTransfer& answer,
                            const QLX_I2CConfig& stParam, uint8_t* dataBuffer);

static void writeManual(CaseContext& tc, const ManualTransfer& answer, const QLX_I2CConfig& stParam,
                        uint8_t* dataBuffer) {
    const uint32_t eBusId = static_cast<uint32_t>(answer.bus);
    const uint32_t dataLength = static_cast<uint32_t>(answer.dataLength);
    uint32_t rw_len = 0;
    if (TC_EXPECT_RET_TEXT("QLX_I2CWrite(eBusId,&stParam,dataBuffer,dataLength,&rw_len)",
                           QLX_I2CWrite(eBusId, &stParam, dataBuffer, dataLength, &rw_len)))
        TC_EXPECT_TRUE(rw_len != 0);
}

static void readManual(CaseContext& tc, const ManualTransfer& answer, const QLX_I2CConfig& stParam,
                       uint8_t* dataBuffer) {
    const uint32_t eBusId = static_cast<uint32_t>(answer.bus);
    const uint32_t dataLength = static_cast<uint32_t>(answer.dataLength);
    uint32_t rw_len = 0;
    if (TC_EXPECT_RET_TEXT("QLX_I2CRead(eBusId,&stParam, dataLength, dataBuffer, &rw_len)",
                           QLX_I2CRead(eBusId, &stParam, dataLength, dataBuffer, &rw_len)) &&
        TC_EXPECT_TRUE(rw_len != 0))
        printData(answer, dataBuffer, std::min(rw_len, dataLength));
}

static uint32_t transferManual(CaseContext& tc, ManualBody transfer, const ManualTransfer& answer,
                               uint8_t* dataBuffer) {
    const uint32_t eBusId = static_cast<uint32_t>(answer.bus);
    const uint32_t eBusRate = static_cast<uint32_t>(answer.rate);
    QLX_I2CConfig stParam = {};
    stParam.chipAddress = static_cast<uint8_t>(answer.chip);
    stParam.registerAddressLength = static_cast<uint8_t>(answer.registerLength);
    splitBytes(answer.registerAddress, stParam.registerAddress, stParam.registerAddressLength);
    TC_ASSERT_RET(QLX_I2CInit());
    if (TC_EXPECT_RET_TEXT("QLX_I2COpen(eBusId,eBusRate)", QLX_I2COpen(eBusId, eBusRate))) {
        transfer(tc, answer, stParam, dataBuffer);
        TC_EXPECT_RET(QLX_I2CClose(eBusId));
    }
    TC_ASSERT_RET(QLX_I2CDeInit());
    return TC_RESULT(tc);
}

static uint32_t manualBase(const char* name, ManualBody transfer, const char* lengthPrompt) {
    CaseContext tc = {name};
    ManualTransfer answer = {};
    bool answered = askTransfer(lengthPrompt, &answer);
    if (!TC_EXPECT_TRUE(answered))
        return TC_RESULT(tc);
    // A negative or absurd length cannot be allocated.
    std::unique_ptr<uint8_t[]> dataBuffer;
    if (answer.dataLength >= 0 && answer.dataLength <= MANUAL_DATA_MAX)
        dataBuffer.reset(new (std::nothrow) uint8_t[static_cast<size_t>(answer.dataLength) + 1]());
    if (dataBuffer == nullptr) {
        TC_EXPECT_RET(QLX_TRUE);
        return TC_RESULT(tc);
    }
    if (transfer == writeManual) {
        answered = askData(dataBuffer.get(), answer.dataLength);
        if (!TC_EXPECT_TRUE(answered))
            return TC_RESULT(tc);
        printData(answer, dataBuffer.get(), static_cast<uint32_t>(answer.dataLength));
    }
    return transferManual(tc, transfer, answer, dataBuffer.get());
}

// clang-format off
#define MANUAL_FAMILY(X) \
    /* case                 flag    description                                                                                  body */ \
    X(TC_I2C_ReadWrite_003, MANUAL, "write data to register of specific I2C chip with all the params manually entered by user",  manualBase(__func__, writeManual, "Input data length for writing")) \
    X(TC_I2C_ReadWrite_004, MANUAL, "read data from register of specific I2C chip with all the params manually entered by user", manualBase(__func__, readManual,  "Input data length for reading"))
// clang-format on

MANUAL_FAMILY(TC_VARIANT_FUNCTION)

static constexpr TcCase I2CModuleCases[] = {
    TC_CASE(TC_I2C_Open_001, AUTO, "open I2C bus-0 before init"),
    // clang-format off
    OPEN_FAMILY(TC_VARIANT_ROW)
    INVALID_FAMILY(TC_VARIANT_ROW)
    TWICE_FAMILY(TC_VARIANT_ROW)
    CONFIGURED_FAMILY(TC_VARIANT_ROW)
    MANUAL_FAMILY(TC_VARIANT_ROW)
    TIMED_FAMILY(TC_VARIANT_ROW)
    // clang-format on
};
static_assert(tcCaseCount(I2CModuleCases) == 31 && tcAutoCount(I2CModuleCases) == 29,
              "cases of the module, and those that run by themselves");

const TcModule I2CModule = {
    I2C_TestSetup,  I2C_TestTeardown,
    nullptr,        nullptr,
    I2CModuleCases, tcCaseCount(I2CModuleCases),
    "I2C",          "Test module for the i2c",
    nullptr,
};

// I2C: each of four buses opens at each of four rates as far as the board has them, bad arguments
// and a second open are refused, and a chip's register is read and written with parameters of the
// configuration or of the operator.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/time.h>

#include <algorithm>

#include "environment/conf_reader.h"
#include "environment/test_env.h"
#include "framework/modules.h"
#include "framework/platform_select.h"
#include "framework/tc_check.h"
#include "platform/qlx_i2c.h"

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

/** Spreads a number over bytes, lowest first; bytes from the fifth on are 0. */
static void splitBytes(uint32_t number, uint8_t* bytes, size_t count) {
    for (size_t i = 0; i < count; i++)
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
               sizeof config->registerAddress);
    uint8_t length = static_cast<uint8_t>(readParam("IIC_DEV_DATA_WRITE_LEN"));
    // The library reads as many bytes as it is told; there are no more than the record holds.
    stI2CParams.uWriteDataLen = std::min<uint8_t>(length, WRITE_DATA_SIZE);
    splitBytes(readParam("IIC_DEV_DATA_WRITE_BUF"), stI2CParams.uWriteData, WRITE_DATA_SIZE);
    return 0;
}

static uint32_t I2C_TestTeardown(void) {
    zk_log("%s ! \r\n", __func__);
    return 0;
}

/** Either one of the two lets a case run. */
static bool isApplicable(ZkFeature bus, ZkFeature rate) {
    return tcI2CFeature[bus] != 0 || tcI2CFeature[rate] != 0;
}

static uint32_t TC_I2C_Open_001(void) {
    uint32_t result = TC_SUCCESS;
    TC_ASSERT_RET(QLX_I2CInit());
    TC_ASSERT_RET(QLX_I2CDeInit());
    TC_EXPECT_REFUSED(QLX_I2COpen(QLX_I2C_0, QLX_I2C_BUSRATE_NORMAL));
    return TC_RESULT(result);
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
    uint32_t result = TC_SUCCESS;
    if (!isApplicable(variant.busFeature, variant.rateFeature))
        return tc_result(name, TC_NOT_APPLICABLE);
    if (!tc_checkRet(name, __LINE__, "QLX_I2CInit()", QLX_I2CInit()))
        return TC_FAILURE;
    if (tc_checkRet(name, __LINE__, variant.openText, QLX_I2COpen(variant.bus, variant.rate))) {
        if (!tc_checkRet(name, __LINE__, variant.closeText, QLX_I2CClose(variant.bus)))
            result = TC_FAILURE;
    } else {
        result = TC_FAILURE;
    }
    if (!tc_checkRet(name, __LINE__, "QLX_I2CDeInit()", QLX_I2CDeInit()))
        result = TC_FAILURE;
    return tc_result(name, result);
}

// clang-format off
#define OPEN_FAMILY(X) \
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
    uint32_t result = TC_SUCCESS;
    if (!tc_checkRet(name, __LINE__, "QLX_I2CInit()", QLX_I2CInit()))
        return TC_FAILURE;
    if (!tc_checkRefused(name, __LINE__, "QLX_I2COpen(eBusId, eBusRate)",
                         QLX_I2COpen(eBusId, eBusRate)))
        result = TC_FAILURE;
    else if (!tc_checkRefused(name, __LINE__, "QLX_I2CClose(eBusId)", QLX_I2CClose(eBusId)))
        result = TC_FAILURE;
    if (!tc_checkRet(name, __LINE__, "QLX_I2CDeInit()", QLX_I2CDeInit()))
        result = TC_FAILURE;
    return tc_result(name, result);
}

static const uint32_t minusOne = static_cast<uint32_t>(-1);

// clang-format off
#define INVALID_FAMILY(X) \
    X(TC_I2C_Open_018, AUTO, "open invalid bus id (QLX_I2C_0 - 1)",                openInvalidBase(__func__, minusOne, 0)) \
    X(TC_I2C_Open_019, AUTO, "open invalid bus id (QLX_I2C_3 + 1)",                openInvalidBase(__func__, 8, 0)) \
    X(TC_I2C_Open_020, AUTO, "open invalid bus rate (QLX_I2C_BUSRATE_SLOW - 1)",   openInvalidBase(__func__, 0, minusOne)) \
    X(TC_I2C_Open_021, AUTO, "open invalid bus rate (QLX_I2C_BUSRATE_COLSE + 1)",  openInvalidBase(__func__, 0, 5))
// clang-format on

INVALID_FAMILY(TC_VARIANT_FUNCTION)

/** A bus that is open already does not open again. */
static uint32_t openTwiceBase(const char* name, uint32_t eBusRate, ZkFeature rateFeature) {
    uint32_t result = TC_SUCCESS;
    const uint32_t eBusId = QLX_I2C_0;
    if (!isApplicable(FEATURE_I2C_BUS0, rateFeature))
        return tc_result(name, TC_NOT_APPLICABLE);
    if (!tc_checkRet(name, __LINE__, "QLX_I2CInit()", QLX_I2CInit()))
        return TC_FAILURE;
    const char* openText = "QLX_I2COpen(eBusId,eBusRate)";
    if (tc_checkRet(name, __LINE__, openText, QLX_I2COpen(eBusId, eBusRate))) {
        if (!tc_checkRefused(name, __LINE__, openText, QLX_I2COpen(eBusId, eBusRate)))
            result = TC_FAILURE;
        if (!tc_checkRet(name, __LINE__, "QLX_I2CClose(eBusId)", QLX_I2CClose(eBusId)))
            result = TC_FAILURE;
    } else {
        result = TC_FAILURE;
    }
    if (!tc_checkRet(name, __LINE__, "QLX_I2CDeInit()", QLX_I2CDeInit()))
        result = TC_FAILURE;
    return tc_result(name, result);
}

// clang-format off
#define TWICE_FAMILY(X) \
    X(TC_I2C_Open_022, AUTO, "open I2C bus-0 twice with slow rate",   openTwiceBase(__func__, QLX_I2C_BUSRATE_SLOW,   FEATURE_I2C_BUS_SLOW)) \
    X(TC_I2C_Open_023, AUTO, "open I2C bus-0 twice with normal rate", openTwiceBase(__func__, QLX_I2C_BUSRATE_NORMAL, FEATURE_I2C_BUS_NORMAL)) \
    X(TC_I2C_Open_024, AUTO, "open I2C bus-0 twice with middle rate", openTwiceBase(__func__, QLX_I2C_BUSRATE_MIDDLE, FEATURE_I2C_BUS_MIDDLE)) \
    X(TC_I2C_Open_025, AUTO, "open I2C bus-0 twice with fast rate",   openTwiceBase(__func__, QLX_I2C_BUSRATE_FAST,   FEATURE_I2C_BUS_FAST))
// clang-format on

TWICE_FAMILY(TC_VARIANT_FUNCTION)

enum Direction { READ_REGISTER, WRITE_REGISTER };

static int64_t consumption(const timeval& start, const timeval& end) {
    return static_cast<int64_t>(end.tv_sec - start.tv_sec) * 1000 +
           (end.tv_usec - start.tv_usec) / 1000;
}

/**
 * One transfer with the configured chip, on an open bus.
 * @param elapsedMs  receives the milliseconds that the transfer took
 */
static uint32_t transferConfigured(const char* name, Direction direction, int64_t* elapsedMs) {
    uint8_t uDataBuf[READ_BUFFER_SIZE] = {};
    const uint32_t uDataBufLen = sizeof uDataBuf;
    uint32_t uReadLen = 0;
    uint32_t uWriteLen = 0;
    const char* text;
    int32_t code;
    timeval start;
    timeval end;
    gettimeofday(&start, nullptr);
    if (direction == READ_REGISTER) {
        text =
            "QLX_I2CRead(stI2CParams.eBusId, &stI2CParams.stconfig, uDataBufLen, uDataBuf, "
            "&uReadLen)";
        code = QLX_I2CRead(stI2CParams.eBusId, &stI2CParams.stconfig, uDataBufLen, uDataBuf,
                           &uReadLen);
    } else {
        text =
            "QLX_I2CWrite(stI2CParams.eBusId, &stI2CParams.stconfig, stI2CParams.uWriteData, "
            "stI2CParams.uWriteDataLen, &uWriteLen)";
        code = QLX_I2CWrite(stI2CParams.eBusId, &stI2CParams.stconfig, stI2CParams.uWriteData,
                            stI2CParams.uWriteDataLen, &uWriteLen);
    }
    gettimeofday(&end, nullptr);
    *elapsedMs = consumption(start, end);
    if (!tc_checkRet(name, __LINE__, text, code))
        return TC_FAILURE;
    if ((direction == READ_REGISTER ? uReadLen : uWriteLen) != 0)
        return TC_SUCCESS;
    tc_failTrue(name, __LINE__, 0);
    return TC_FAILURE;
}

static uint32_t configuredBase(const char* name, Direction direction, bool timed) {
    uint32_t result = TC_SUCCESS;
    int64_t uConsumeTime = 0;
    if (!tc_checkRet(name, __LINE__, "QLX_I2CInit()", QLX_I2CInit()))
        return TC_FAILURE;
    if (tc_checkRet(name, __LINE__, "QLX_I2COpen(stI2CParams.eBusId, stI2CParams.eBusRate)",
                    QLX_I2COpen(stI2CParams.eBusId, stI2CParams.eBusRate))) {
        result = transferConfigured(name, direction, &uConsumeTime);
        if (timed) {
            zk_log("The consumption time of %s I2C is %lld ms \r\n",
                   direction == READ_REGISTER ? "read" : "writing",
                   static_cast<long long>(uConsumeTime));
            if (!tc_checkRet(name, __LINE__, "(uConsumeTime < 100)", uConsumeTime < 100, QLX_TRUE))
                result = TC_FAILURE;
        }
        if (!tc_checkRet(name, __LINE__, "QLX_I2CClose(stI2CParams.eBusId)",
                         QLX_I2CClose(stI2CParams.eBusId)))
            result = TC_FAILURE;
    } else {
        result = TC_FAILURE;
    }
    if (!tc_checkRet(name, __LINE__, "QLX_I2CDeInit()", QLX_I2CDeInit()))
        result = TC_FAILURE;
    return tc_result(name, result);
}

// clang-format off
#define CONFIGURED_FAMILY(X) \
    X(TC_I2C_ReadWrite_001, AUTO, "read data from specific I2C chip register, params of I2C config is from config file", configuredBase(__func__, READ_REGISTER, false)) \
    X(TC_I2C_ReadWrite_002, AUTO, "write data to specific I2C chip register, params of I2C config is from config file",  configuredBase(__func__, WRITE_REGISTER, false))
#define TIMED_FAMILY(X) \
    X(TC_I2C_ReadWrite_005, AUTO, "test consumption time of reading data from specific I2C chip register, params of I2C config is from config file", configuredBase(__func__, READ_REGISTER, true)) \
    X(TC_I2C_ReadWrite_006, AUTO, "test consumption time of writing data to specific I2C chip register, params of I2C config is from config file",   configuredBase(__func__, WRITE_REGISTER, true))
// clang-format on

CONFIGURED_FAMILY(TC_VARIANT_FUNCTION)
TIMED_FAMILY(TC_VARIANT_FUNCTION)

/** Reads one number by a scanf format. A word that is no number is dropped and reads as -1; false
 *  at the end of input. */
static bool askNumber(const char* format, int32_t* number) {
    uint32_t value = 0;
    zk_logFlush();
    int got = strcmp(format, "%x") == 0 ? scanf("%x", &value)
                                        : scanf("%d", reinterpret_cast<int32_t*>(&value));
    if (got == EOF)
        return false;
    if (got == 0) {
        value = minusOne;
        if (scanf("%*s") == EOF)
            return false;
    }
    *number = static_cast<int32_t>(value);
    return true;
}

/** What the operator enters for a manual transfer. */
struct ManualTransfer {
    int32_t bus;
    int32_t rate;
    int32_t chip;
    int32_t registerLength;
    int32_t registerAddress;
    int32_t dataLength;
};

/** The common questions of both manual cases. False at the end of input. */
static bool askTransfer(const char* lengthPrompt, ManualTransfer* answer) {
    do {
        zk_log("Input Bus id(0~3)\r\n");
        if (!askNumber("%d", &answer->bus))
            return false;
    } while (answer->bus < 0 || answer->bus > 3);
    do {
        zk_log("Input Bus rate: slow(0),normal(1),middle(2),fast(3)\r\n");
        if (!askNumber("%d", &answer->rate))
            return false;
    } while (answer->rate >= 4);
    zk_log("Input hex value of chip addr\r\n");
    if (!askNumber("%x", &answer->chip))
        return false;
    do {
        zk_log("Input register addr length, max value is 4\r\n");
        if (!askNumber("%d", &answer->registerLength))
            return false;
    } while (answer->registerLength < 1 || answer->registerLength > 4);
    zk_log("Input hex value of register addr\r\n");
    if (!askNumber("%x", &answer->registerAddress))
        return false;
    zk_log("%s", lengthPrompt);
    return askNumber("%d", &answer->dataLength);
}

static bool askData(uint8_t* data, int32_t length) {
    for (int32_t i = 0; i < length; i++) {
        int32_t byte = 0;
        zk_log("Input hex data[%d]\r\n", i);
        if (!askNumber("%x", &byte))
            return false;
        data[i] = static_cast<uint8_t>(byte);
    }
    return true;
}

static void printData(const ManualTransfer& answer, const uint8_t* data, uint32_t length) {
    zk_log("device address[%#2x], register addr[%#4x], data length[%d] data:\r\n",
           static_cast<unsigned>(answer.chip), static_cast<unsigned>(answer.registerAddress),
           static_cast<int32_t>(length));
    for (uint32_t i = 0; i < length; i++)
        zk_log("%#2x  ", data[i]);
    zk_log("\r\n");
}

static uint32_t transferManual(const char* name, Direction direction, const ManualTransfer& answer,
                               uint8_t* dataBuffer) {
    uint32_t result = TC_SUCCESS;
    const uint32_t eBusId = static_cast<uint32_t>(answer.bus);
    const uint32_t eBusRate = static_cast<uint32_t>(answer.rate);
    const uint32_t dataLength = static_cast<uint32_t>(answer.dataLength);
    uint32_t rw_len = 0;
    QLX_I2CConfig stParam = {};
    stParam.chipAddress = static_cast<uint8_t>(answer.chip);
    stParam.registerAddressLength = static_cast<uint8_t>(answer.registerLength);
    splitBytes(static_cast<uint32_t>(answer.registerAddress), stParam.registerAddress,
               sizeof stParam.registerAddress);
    if (!tc_checkRet(name, __LINE__, "QLX_I2CInit()", QLX_I2CInit()))
        return TC_FAILURE;
    if (tc_checkRet(name, __LINE__, "QLX_I2COpen(eBusId,eBusRate)",
                    QLX_I2COpen(eBusId, eBusRate))) {
        bool done;
        if (direction == WRITE_REGISTER) {
            done = tc_checkRet(name, __LINE__,
                               "QLX_I2CWrite(eBusId,&stParam,dataBuffer,dataLength,&rw_len)",
                               QLX_I2CWrite(eBusId, &stParam, dataBuffer, dataLength, &rw_len));
        } else {
            done = tc_checkRet(name, __LINE__,
                               "QLX_I2CRead(eBusId,&stParam, dataLength, dataBuffer, &rw_len)",
                               QLX_I2CRead(eBusId, &stParam, dataLength, dataBuffer, &rw_len));
            if (done)
                printData(answer, dataBuffer, rw_len < dataLength ? rw_len : dataLength);
        }
        bool closed = tc_checkRet(name, __LINE__, "QLX_I2CClose(eBusId)", QLX_I2CClose(eBusId));
        result = done && closed ? TC_SUCCESS : TC_FAILURE;
    } else {
        result = TC_FAILURE;
    }
    if (!tc_checkRet(name, __LINE__, "QLX_I2CDeInit()", QLX_I2CDeInit()))
        result = TC_FAILURE;
    return result;
}

static uint32_t manualBase(const char* name, Direction direction, const char* lengthPrompt) {
    uint32_t result = TC_SUCCESS;
    ManualTransfer answer = {};
    if (!askTransfer(lengthPrompt, &answer)) {
        tc_failTrue(name, __LINE__, 0);
        return tc_result(name, TC_FAILURE);
    }
    // A negative or absurd length cannot be allocated.
    uint8_t* dataBuffer = nullptr;
    if (answer.dataLength >= 0 && answer.dataLength <= MANUAL_DATA_MAX)
        dataBuffer = static_cast<uint8_t*>(calloc(static_cast<size_t>(answer.dataLength) + 1, 1));
    if (dataBuffer == nullptr) {
        tc_checkRet(name, __LINE__, "QLX_TRUE", QLX_TRUE);
        return tc_result(name, TC_FAILURE);
    }
    if (direction == WRITE_REGISTER && !askData(dataBuffer, answer.dataLength)) {
        tc_failTrue(name, __LINE__, 0);
        free(dataBuffer);
        return tc_result(name, TC_FAILURE);
    }
    if (direction == WRITE_REGISTER)
        printData(answer, dataBuffer, static_cast<uint32_t>(answer.dataLength));
    result = transferManual(name, direction, answer, dataBuffer);
    free(dataBuffer);
    return tc_result(name, result);
}

// clang-format off
#define MANUAL_FAMILY(X) \
    X(TC_I2C_ReadWrite_003, MANUAL, "write data to register of specific I2C chip with all the params manually entered by user",  manualBase(__func__, WRITE_REGISTER, "Input data length for writing\r\n")) \
    X(TC_I2C_ReadWrite_004, MANUAL, "read data from register of specific I2C chip with all the params manually entered by user", manualBase(__func__, READ_REGISTER, "Input data length for reading\r\n"))
// clang-format on

MANUAL_FAMILY(TC_VARIANT_FUNCTION)

static const TcCase I2CModuleCases[] = {
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

const TcModule I2CModule = {
    I2C_TestSetup,  I2C_TestTeardown,
    nullptr,        nullptr,
    I2CModuleCases, tcCaseCount(I2CModuleCases),
    "I2C",          "Test module for the i2c",
    nullptr,
};

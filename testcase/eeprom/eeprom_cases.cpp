// EEPROM: presence, size and range, reads and writes within the chip and beyond it. The write case
// leaves the chip as it found it, or says on the console that it could not.
//
// On a board without the feature every case is a success that does nothing.
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

#include "environment/test_env.h"
#include "framework/case/check.h"
#include "framework/case/hooks.h"
#include "platform/qlx_eeprom.h"
#include "testcase/eeprom/eeprom_harness.h"
#include "testcase/modules.h"

/** The feature table. */
static const int32_t* tcEepRomFeature;

static uint32_t testSetup(void) {
    zk_log("%s ! \r\n", __func__);
    zk_test_get_feature(&tcEepRomFeature);
    return 0;
}

TC_HOOK(testTeardown, "release all resources")
TC_CASE_SETUP_HOOK(testCaseSetupImp, "setup case resources")
TC_HOOK(testCaseTeardownImp, "release case resources")

uint32_t get_random_address(uint32_t range) {
    uint32_t address = 4;
    srand(static_cast<unsigned>(time(nullptr)));
    if (range != 0)
        address = static_cast<uint32_t>(rand()) % range;
    else
        printf("get_random_address : wrong param");
    zk_log("get_random_address : %u\r\n", address);
    return address;
}

/** Whether the board has the chip; without it the case is to end as a success. */
static bool supported() {
    if (tcEepRomFeature != nullptr && tcEepRomFeature[FEATURE_EEPROM] != 0)
        return true;
    zk_log("Unsupported case ! \r\n");
    return false;
}

/** Asks for the chip's size and the range of it that the cases may use. False when the chip is not
 *  there or does not tell. */
static bool locate(CaseContext& tc, uint32_t* start, uint32_t* end, uint32_t* size) {
    return TC_EXPECT_RET(QLX_EepromIsExist()) &&
           TC_EXPECT_RET_TEXT("QLX_EepromGetRange(&start, &end)", QLX_EepromGetRange(start, end)) &&
           TC_EXPECT_RET_TEXT("QLX_EepromGetSize(&size)", QLX_EepromGetSize(size));
}

static uint32_t TC_EEPROM_CheckExist_001(void) {
    CaseContext tc = {__func__};
    if (!supported())
        return TC_SUCCESS;
    TC_ASSERT_RET(QLX_EepromIsExist());
    return TC_RESULT(tc);
}

static uint32_t TC_EEPROM_GetSizeRange_001(void) {
    CaseContext tc = {__func__};
    uint32_t size = 0;
    if (!supported())
        return TC_SUCCESS;
    TC_ASSERT_RET(QLX_EepromIsExist());
    TC_ASSERT_RET(QLX_EepromGetSize(&size));
    zk_log("E2 size is %u\r\n", size);
    return TC_RESULT(tc);
}

static uint32_t TC_EEPROM_GetSizeRange_002(void) {
    CaseContext tc = {__func__};
    uint32_t start = 0, end = 0;
    if (!supported())
        return TC_SUCCESS;
    TC_ASSERT_RET(QLX_EepromIsExist());
    TC_ASSERT_RET(QLX_EepromGetRange(&start, &end));
    zk_log("E2 start is %u, end is %u\r\n", start, end);
    return TC_RESULT(tc);
}

static uint32_t TC_EEPROM_GetSizeRange_003(void) {
    CaseContext tc = {__func__};
    uint32_t size = 0, start = 0, end = 0;
    if (!supported())
        return TC_SUCCESS;
    TC_ASSERT(locate(tc, &start, &end, &size));
    if (end < size && end > start)
        zk_log("E2 offset is valid, whole size = %u, start = %u, range = %u\r\n", size, start,
               end - start);
    else
        tc.result = TC_FAILURE;
    return TC_RESULT(tc);
}

static uint32_t TC_EEPROM_Read_001(void) {
    CaseContext tc = {__func__};
    uint32_t size = 0, start = 0, end = 0, sizeRead = 0;
    uint8_t value = 0;
    if (!supported())
        return TC_SUCCESS;
    TC_ASSERT(locate(tc, &start, &end, &size));
    uint32_t testAddr = get_random_address(end - start);
    TC_ASSERT_RET(QLX_EepromRead(start + testAddr, 1, &value, &sizeRead));
    zk_log("value read from 0x%x is %d, size is %u\r\n", start + testAddr, value, sizeRead);
    return TC_RESULT(tc);
}

static uint32_t TC_EEPROM_Read_002(void) {
    CaseContext tc = {__func__};
    uint32_t size = 0, start = 0, end = 0, sizeRead = 0;
    uint8_t value = 0;
    if (!supported())
        return TC_SUCCESS;
    TC_ASSERT(locate(tc, &start, &end, &size));
    uint32_t testAddr = get_random_address(size);
    if (!TC_EXPECT_REFUSED(QLX_EepromRead(size + testAddr, 1, &value, &sizeRead)))
        zk_log("value read from %x is %d, size is %u\r\n", size + testAddr, value, sizeRead);
    return TC_RESULT(tc);
}

/** The two bytes as a number, first byte low. */
static uint16_t shortOf(const uint8_t (&buff)[2]) {
    return static_cast<uint16_t>(buff[0] | buff[1] << 8);
}

static uint32_t TC_EEPROM_Write_001(void) {
    CaseContext tc = {__func__};
    uint32_t size = 0, start = 0, end = 0, sizeRead = 0, sizeWrite = 0;
    uint8_t buff[2] = {0, 0};
    if (!supported())
        return TC_SUCCESS;
    TC_ASSERT(locate(tc, &start, &end, &size));
    uint32_t testAddr = get_random_address(end - start);

    // Nothing is written before it is known what to restore; from then on every step is tried.
    TC_ASSERT_RET(QLX_EepromRead(start + testAddr, sizeof(buff), buff, &sizeRead));
    const uint16_t kept = shortOf(buff);
    buff[0] = 1;
    buff[1] = 2;
    TC_EXPECT_RET(QLX_EepromWrite(start + testAddr, sizeof(buff), buff, &sizeWrite));
    buff[0] = buff[1] = 0;
    TC_EXPECT_RET(QLX_EepromRead(start + testAddr, sizeof(buff), buff, &sizeRead));
    zk_log("after write now value read from 0x%x is %d, size is %u\r\n", start + testAddr,
           shortOf(buff), sizeRead);
    buff[0] = static_cast<uint8_t>(kept & 0xFF);
    buff[1] = static_cast<uint8_t>(kept >> 8);
    TC_EXPECT_RET(QLX_EepromWrite(start + testAddr, sizeof(buff), buff, &sizeWrite));
    buff[0] = buff[1] = 0;
    TC_EXPECT_RET(QLX_EepromRead(start + testAddr, sizeof(buff), buff, &sizeRead));
    zk_log("after restore now value read from 0x%x is %d, size is %u\r\n", start + testAddr,
           shortOf(buff), sizeRead);
    if (shortOf(buff) == kept)
        zk_log("restore success\r\n");
    else
        zk_log("restore failed, pls check\r\n");
    return TC_RESULT(tc);
}

static uint32_t TC_EEPROM_Write_002(void) {
    CaseContext tc = {__func__};
    uint32_t size = 0, start = 0, end = 0, sizeWrite = 0;
    uint8_t value = 255;
    if (!supported())
        return TC_SUCCESS;
    TC_ASSERT(locate(tc, &start, &end, &size));
    uint32_t testAddr = get_random_address(size);
    if (!TC_EXPECT_REFUSED(QLX_EepromWrite(size + testAddr, 1, &value, &sizeWrite)))
        zk_log("value write to 0x%x is %d, size is %u\r\n", size + testAddr, value, sizeWrite);
    return TC_RESULT(tc);
}

// clang-format off
static constexpr TcCase EEPROMModuleCases[] = {
    //      case                         flag  description
    TC_CASE(TC_EEPROM_CheckExist_001,    AUTO, "test wether eeprom exsit"),
    TC_CASE(TC_EEPROM_GetSizeRange_001,  AUTO, "test get eeprom size"),
    TC_CASE(TC_EEPROM_GetSizeRange_002,  AUTO, "test get offset for vantiro data"),
    TC_CASE(TC_EEPROM_GetSizeRange_003,  AUTO, "test valid size/offset"),
    TC_CASE(TC_EEPROM_Read_001,          AUTO, "test read eeprom with valid address"),
    TC_CASE(TC_EEPROM_Read_002,          AUTO, "test read eeprom with invalid address"),
    TC_CASE(TC_EEPROM_Write_001,         AUTO, "test write eeprom with valid address"),
    TC_CASE(TC_EEPROM_Write_002,         AUTO, "test write eeprom with invalid address"),
};
// clang-format on
static_assert(tcCaseCount(EEPROMModuleCases) == 8 && tcAutoCount(EEPROMModuleCases) == 8,
              "cases of the module, and those that run by themselves");

const TcModule EEPROMModule = {
    testSetup,         testTeardown,
    testCaseSetupImp,  testCaseTeardownImp,
    EEPROMModuleCases, tcCaseCount(EEPROMModuleCases),
    "EEPROM",          "Test module for the EEPROM",
    nullptr,
};

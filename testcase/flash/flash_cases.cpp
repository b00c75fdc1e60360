// FLASH: reads and writes of a partition within the window and beyond its end. The write case
// leaves the partition as it found it, or says on the console that it could not.
//
// On a board without the feature every case is a success that does nothing.
#include <string.h>

#include <new>

#include "environment/test_env.h"
#include "framework/case/check.h"
#include "framework/case/hooks.h"
#include "platform/qlx_flash.h"
#include "testcase/modules.h"

/** The feature table. */
static const int32_t* tcFlashFeature;
/** The window under test; made by the module's set-up. */
static QLX_FlashDevice* tcFlashDev;

static uint32_t testSetup(void) {
    zk_log("%s ! \r\n", __func__);
    zk_test_get_feature(&tcFlashFeature);
    // A second visit whose teardown did not come would leave the first record behind.
    delete tcFlashDev;
    tcFlashDev = new (std::nothrow) QLX_FlashDevice{};
    if (tcFlashDev == nullptr)
        return 1;
    strncpy(tcFlashDev->devicePath, "/dev/mmcblk0p2", sizeof tcFlashDev->devicePath - 1);
    tcFlashDev->uDevOffset = 0;
    tcFlashDev->size = 4096;
    tcFlashDev->eraseSize = 4096;
    return 0;
}

static uint32_t testTeardown(void) {
    delete tcFlashDev;
    tcFlashDev = nullptr;
    zk_log("free tcFlashDev ! \r\n");
    zk_log("release all resources ! \r\n");
    return 0;
}

TC_CASE_SETUP_HOOK(testCaseSetupImp, "setup case resources")
TC_HOOK(testCaseTeardownImp, "release case resources")

/** The frame of each case: a board without flash ends it as a success that does nothing. */
static uint32_t onFlash(const char* name, void (*work)(CaseContext& tc)) {
    CaseContext tc = {name};
    if (tcFlashFeature == nullptr || tcFlashFeature[FEATURE_FLASH] == 0 || tcFlashDev == nullptr) {
        zk_log("Unsupported case ! \r\n");
        return TC_SUCCESS;
    }
    TC_ASSERT_RET(QLX_FlashInit(tcFlashDev));
    work(tc);
    TC_ASSERT_RET(QLX_FlashDeInit(tcFlashDev));
    return TC_RESULT(tc);
}

static void nothing(CaseContext&) {}

static void readWhole(CaseContext& tc) {
    uint32_t sizeRead = 0;
    static char puBuffer[4096];
    memset(puBuffer, 0, sizeof puBuffer);
    TC_EXPECT_RET(
        QLX_FlashRead(tcFlashDev, tcFlashDev->uDevOffset, sizeof(puBuffer), puBuffer, &sizeRead));
    // Flash contents need not hold a NUL.
    zk_log("full data is %.*s, size is %u\r\n", static_cast<int>(sizeof puBuffer), puBuffer,
           sizeRead);
}

static void readBeyondEnd(CaseContext& tc) {
    uint32_t sizeRead = 0;
    static char puBuffer[4096];
    const uint32_t addr = tcFlashDev->uDevOffset + tcFlashDev->size;
    TC_EXPECT_REFUSED(QLX_FlashRead(tcFlashDev, addr, sizeof(puBuffer), puBuffer, &sizeRead));
}

static void readFourBytes(CaseContext& tc) {
    uint32_t sizeRead = 0;
    char puBuffer[4] = {0, 0, 0, 0};
    const uint32_t addr = tcFlashDev->uDevOffset + 256;
    TC_EXPECT_RET(QLX_FlashRead(tcFlashDev, addr, sizeof(puBuffer), puBuffer, &sizeRead));
    zk_log("value read from 0x%x is %.*s, size is %u\r\n", addr, static_cast<int>(sizeof puBuffer),
           puBuffer, sizeRead);
}

/** The two bytes as a number, first byte low. */
static uint16_t shortOf(const char (&buff)[2]) {
    return static_cast<uint16_t>(static_cast<uint8_t>(buff[0]) | static_cast<uint8_t>(buff[1])
                                                                     << 8);
}

static void writeAndRestore(CaseContext& tc) {
    uint32_t sizeRead = 0, sizeWrite = 0;
    const uint32_t offset = 4;
    char buff[2] = {0, 0};
    // Nothing is written before it is known what to restore; from then on every step is tried.
    if (!TC_EXPECT_RET(QLX_FlashRead(tcFlashDev, offset, sizeof(buff), buff, &sizeRead)))
        return;
    const uint16_t kept = shortOf(buff);
    buff[0] = 1;
    buff[1] = 2;
    TC_EXPECT_RET(QLX_FlashWrite(tcFlashDev, offset, sizeof(buff), buff, &sizeWrite));
    buff[0] = buff[1] = 0;
    TC_EXPECT_RET(QLX_FlashRead(tcFlashDev, offset, sizeof(buff), buff, &sizeRead));
    zk_log("after write now value read from 0x%x is %.*s, size is %u\r\n", offset,
           static_cast<int>(sizeof buff), buff, sizeRead);
    buff[0] = static_cast<char>(kept & 0xFF);
    buff[1] = static_cast<char>(kept >> 8);
    TC_EXPECT_RET(QLX_FlashWrite(tcFlashDev, offset, sizeof(buff), buff, &sizeWrite));
    buff[0] = buff[1] = 0;
    TC_EXPECT_RET(QLX_FlashRead(tcFlashDev, offset, sizeof(buff), buff, &sizeRead));
    zk_log("after restore now value read from 0x%x is %.*s, size is %u\r\n", offset,
           static_cast<int>(sizeof buff), buff, sizeRead);
    if (shortOf(buff) == kept)
        zk_log("restore success\r\n");
    else
        zk_log("restore failed, pls check\r\n");
}

static void writeBeyondEnd(CaseContext& tc) {
    uint32_t sizeWrite = 0;
    uint8_t value = 255;
    const uint32_t offset = tcFlashDev->size + 16;
    TC_EXPECT_REFUSED(QLX_FlashWrite(tcFlashDev, offset, 1, &value, &sizeWrite));
}

// clang-format off
#define FLASH_VARIANTS(X) \
    /* case                   flag  description                                   body */ \
    X(TC_FLASH_Init_001,      AUTO, "test init / deinit",                         onFlash(__func__, nothing)) \
    X(TC_FLASH_WriteRead_001, AUTO, "test read whole FLASH with valid address",   onFlash(__func__, readWhole)) \
    X(TC_FLASH_WriteRead_002, AUTO, "test read FLASH with invalid address",       onFlash(__func__, readBeyondEnd)) \
    X(TC_FLASH_WriteRead_003, AUTO, "test read FLASH with special valid address", onFlash(__func__, readFourBytes)) \
    X(TC_FLASH_WriteRead_004, AUTO, "test write FLASH with valid address",        onFlash(__func__, writeAndRestore)) \
    X(TC_FLASH_WriteRead_005, AUTO, "test write FLASH with invalid address",      onFlash(__func__, writeBeyondEnd))
FLASH_VARIANTS(TC_VARIANT_FUNCTION)

static constexpr TcCase FLASHModuleCases[] = {
    FLASH_VARIANTS(TC_VARIANT_ROW)
};
// clang-format on
static_assert(tcCaseCount(FLASHModuleCases) == 6 && tcAutoCount(FLASHModuleCases) == 6,
              "cases of the module, and those that run by themselves");

const TcModule FLASHModule = {
    testSetup,        testTeardown,
    testCaseSetupImp, testCaseTeardownImp,
    FLASHModuleCases, tcCaseCount(FLASHModuleCases),
    "FLASH",          "Test module for the FLASH",
    nullptr,
};

// FLASH and EEPROM: verdicts on good and faulty storage, contents that survive, and the rule that
// a case leaves nothing behind.
#include <gtest/gtest.h>

#include <cstring>
#include <regex>

#include "environment/test_env.h"
#include "platform/qlx_eeprom.h"
#include "platform/qlx_flash.h"
#include "testcase/eeprom/eeprom_harness.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/device.h"

namespace {

class StorageModules : public testing::Test {
 protected:
    StorageModules() {
        saved_ = zk_testConfig;
        zk_testConfig.features[FEATURE_FLASH] = 1;
        zk_testConfig.features[FEATURE_EEPROM] = 2;
        FLASHModule.setup();
        EEPROMModule.setup();
    }
    ~StorageModules() override {
        FLASHModule.teardown();
        EEPROMModule.teardown();
        zk_testConfig = saved_;
    }

    /** Runs a case and answers what it printed. */
    std::string output(const TcModule& module, const char* name, uint32_t* result) {
        testing::internal::CaptureStdout();
        *result = runCaseByName(module, name);
        return testing::internal::GetCapturedStdout();
    }

    BenchFolder bench_;

 private:
    TestEnvConfig saved_;
};

using Contents = std::string;

TEST_F(StorageModules, AllCasesPassAndLeaveTheContents) {
    ASSERT_EQ(runCaseByName(FLASHModule, "TC_FLASH_Init_001"), 0u);
    Contents flash = bench_.read("device/dev/mmcblk0p2");
    EXPECT_EQ(flash.size(), 65536u);
    for (uint32_t i = 0; i < FLASHModule.caseCount; i++)
        EXPECT_EQ(runCaseByName(FLASHModule, FLASHModule.cases[i].name), 0u)
            << FLASHModule.cases[i].name;
    for (uint32_t i = 0; i < EEPROMModule.caseCount; i++)
        EXPECT_EQ(runCaseByName(EEPROMModule, EEPROMModule.cases[i].name), 0u)
            << EEPROMModule.cases[i].name;
    EXPECT_EQ(bench_.read("device/dev/mmcblk0p2"), flash);
    EXPECT_EQ(bench_.read("device/dev/eeprom0"), Contents(4096, '\xff'));
    EXPECT_EQ(deviceState(), "");
}

TEST_F(StorageModules, ABoardWithoutTheFeatureSucceedsWithoutTouchingIt) {
    zk_testConfig.features[FEATURE_FLASH] = 0;
    zk_testConfig.features[FEATURE_EEPROM] = 0;
    qlx_sim_record(1);
    for (const TcModule* module : {&FLASHModule, &EEPROMModule}) {
        for (uint32_t i = 0; i < module->caseCount; i++) {
            uint32_t result = 9;
            EXPECT_NE(
                output(*module, module->cases[i].name, &result).find("]Unsupported case ! \r\n"),
                std::string::npos);
            EXPECT_EQ(result, 0u) << module->cases[i].name;
        }
    }
    EXPECT_EQ(recordedCalls(), "");
    qlx_sim_record(0);
}

struct FaultyCase {
    const TcModule* module;
    const char* name;
    /** Faults, one a line. */
    const char* faults;
    uint32_t result;
    /** What the console must tell. */
    const char* text;
};

TEST_F(StorageModules, VerdictsOnAFaultyDevice) {
    const FaultyCase rows[] = {
        // A failed restore is told in words, and is no failure.
        {&FLASHModule, "TC_FLASH_WriteRead_004", "QLX_FlashRead call=3 corrupt=0:55", 0,
         "restore failed, pls check\r\n"},
        {&EEPROMModule, "TC_EEPROM_Write_001", "QLX_EepromRead call=3 corrupt=1:55", 0,
         "restore failed, pls check\r\n"},
        // What cannot be read first is not written.
        {&FLASHModule, "TC_FLASH_WriteRead_004", "QLX_FlashRead call=1 return=7", 1,
         "FUNC:QLX_FlashRead(tcFlashDev, offset, sizeof(buff), buff, &sizeRead) RETURN ERROR VALUE "
         "[7] \n"},
        {&EEPROMModule, "TC_EEPROM_Write_001", "QLX_EepromRead call=1 return=7", 1,
         "FUNC:QLX_EepromRead(start + testAddr, sizeof(buff), buff, &sizeRead) RETURN ERROR"},
        // A failing write is a failure, and the old value is written back all the same.
        {&FLASHModule, "TC_FLASH_WriteRead_004", "QLX_FlashRead call=2 return=7", 1,
         "restore success\r\n"},
        {&EEPROMModule, "TC_EEPROM_Write_001", "QLX_EepromRead call=2 return=7", 1,
         "restore success\r\n"},
        // What was not read is not shown, nor taken for what was.
        {&FLASHModule, "TC_FLASH_WriteRead_004", "QLX_FlashRead call=2 return=7", 1,
         "]after write now value read from 0x4 is , size is 2\r\n"},
        {&FLASHModule, "TC_FLASH_WriteRead_004", "QLX_FlashRead return=0", 0,
         "restore success\r\n"},
        // Beyond the end: an access that succeeds is the failure.
        {&FLASHModule, "TC_FLASH_WriteRead_002", "QLX_FlashRead return=0", 1,
         "FUNC:QLX_FlashRead(tcFlashDev, addr, sizeof(puBuffer), puBuffer, &sizeRead) RETURN"},
        {&FLASHModule, "TC_FLASH_WriteRead_005", "QLX_FlashWrite return=0", 1,
         "FUNC:QLX_FlashWrite(tcFlashDev, offset, 1, &value, &sizeWrite) RETURN ERROR VALUE [0]"},
        {&EEPROMModule, "TC_EEPROM_Read_002", "QLX_EepromRead return=0", 1, "value read from 1"},
        {&EEPROMModule, "TC_EEPROM_Write_002", "QLX_EepromWrite return=0", 1, "value write to 0x1"},
        // Sizes 4096, range 512 to 3584: a range that ends at the size, or where it starts.
        {&EEPROMModule, "TC_EEPROM_GetSizeRange_003", "QLX_EepromGetRange corrupt=5:10", 1,
         "TEST Result: FAIL"},
        {&EEPROMModule, "TC_EEPROM_GetSizeRange_003", "QLX_EepromGetRange corrupt=5:02", 1,
         "TEST Result: FAIL"},
        {&EEPROMModule, "TC_EEPROM_CheckExist_001", "QLX_EepromIsExist return=1", 1,
         "FUNC:QLX_EepromIsExist() RETURN ERROR VALUE [1] \n"},
    };
    for (const FaultyCase& row : rows) {
        SCOPED_TRACE(std::string(row.name) + ": " + row.faults);
        qlx_sim_reset();
        ASSERT_EQ(qlx_sim_add_fault(row.faults), 0);
        Contents chip = bench_.read("device/dev/eeprom0");
        uint32_t result = 9;
        std::string text = output(*row.module, row.name, &result);
        EXPECT_EQ(result, row.result);
        EXPECT_NE(text.find(row.text), std::string::npos) << text;
        EXPECT_EQ(deviceState(), "");
        if (!chip.empty()) {
            EXPECT_EQ(bench_.read("device/dev/eeprom0"), chip);
        }
    }
}

TEST_F(StorageModules, RandomAddressIsTheSameWithinASecond) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(get_random_address(0), 4u);
    const std::string text = testing::internal::GetCapturedStdout();
    // The complaint stands bare, and the result behind it on the same line.
    EXPECT_TRUE(std::regex_match(text, std::regex("get_random_address : wrong param"
                                                  "\\[\\d+\\.\\d+\\]get_random_address : 4\r\n")))
        << text;
    for (uint32_t range : {1u, 2u, 4096u})
        EXPECT_LT(get_random_address(range), range);
    // The seconds may change between two calls, but not twice between three.
    uint32_t first = get_random_address(1u << 30);
    uint32_t second = get_random_address(1u << 30);
    uint32_t third = get_random_address(1u << 30);
    EXPECT_TRUE(first == second || second == third);
}

QLX_FlashDevice window(const char* path, uint32_t offset, uint32_t size) {
    QLX_FlashDevice device{};
    memcpy(device.devicePath, path, strnlen(path, sizeof device.devicePath));
    device.uDevOffset = offset;
    device.size = size;
    return device;
}

TEST_F(StorageModules, FlashRefusesWhatLeavesWindowOrPartition) {
    struct {
        const char* path;
        uint32_t offset, size;
        bool accepted;
    } windows[] = {
        {"/dev/mmcblk0p2", 0, 65536, true},       {"/dev/mmcblk0p2", 65535, 1, true},
        {"/dev/mmcblk0p2", 65535, 2, false},      {"/dev/mmcblk0p2", 0, 0, false},
        {"/dev/mmcblk0p3", 0, 4096, false},       {"0123456789abcdef", 0, 4096, false},
        {"/dev/mmcblk0p2", 0xFFFFFFFF, 2, false}, {"", 0, 4096, false},
    };
    for (const auto& row : windows) {
        QLX_FlashDevice device = window(row.path, row.offset, row.size);
        EXPECT_EQ(QLX_FlashInit(&device) == 0, row.accepted) << row.path << " " << row.offset;
        QLX_FlashDeInit(&device);
    }
    EXPECT_NE(QLX_FlashInit(nullptr), 0);

    QLX_FlashDevice device = window("/dev/mmcblk0p2", 4096, 4096);
    uint8_t data[16] = {1, 2, 3};
    uint32_t done = 99;
    EXPECT_EQ(QLX_FlashRead(&device, 4096, 1, data, &done), QLX_FLASH_ERR_NOT_INIT);
    EXPECT_EQ(done, 0u);
    ASSERT_EQ(QLX_FlashInit(&device), 0);
    EXPECT_EQ(QLX_FlashWrite(&device, 4096, 16, data, &done), 0);
    EXPECT_EQ(QLX_FlashWrite(&device, 8192 - 16, 16, data, &done), 0);
    EXPECT_NE(QLX_FlashWrite(&device, 4095, 2, data, &done), 0);
    EXPECT_NE(QLX_FlashWrite(&device, 8192 - 15, 16, data, &done), 0);
    EXPECT_NE(QLX_FlashWrite(&device, 0xFFFFFFF8, 16, data, &done), 0);
    EXPECT_NE(QLX_FlashRead(&device, 4096, 0, data, &done), 0);
    EXPECT_NE(QLX_FlashRead(&device, 4096, 1, nullptr, &done), 0);
    EXPECT_NE(QLX_FlashRead(&device, 4096, 1, data, nullptr), 0);
}

TEST_F(StorageModules, ContentsSurvivePowerOff) {
    uint8_t value = 0xA5;
    uint32_t done = 0;
    ASSERT_EQ(QLX_EepromWrite(4095, 1, &value, &done), 0);
    EXPECT_NE(QLX_EepromWrite(4095, 2, &value, &done), 0);
    qlx_sim_reset();
    value = 0;
    ASSERT_EQ(QLX_EepromRead(4095, 1, &value, &done), 0);
    EXPECT_EQ(value, 0xA5);
}

TEST_F(StorageModules, BoardDecidesSizesAndPresence) {
    bench_.useBoard("[EEPROM]\nSIZE=256\nRANGE_START=16\nRANGE_END=240\n[FLASH]\nPRESENT=0\n");
    uint32_t size = 0, start = 0, end = 0, done = 0;
    uint8_t value = 0;
    EXPECT_EQ(QLX_EepromGetSize(&size), 0);
    EXPECT_EQ(QLX_EepromGetRange(&start, &end), 0);
    EXPECT_EQ(size, 256u);
    EXPECT_EQ(start, 16u);
    EXPECT_EQ(end, 240u);
    EXPECT_EQ(QLX_EepromRead(255, 1, &value, &done), 0);
    EXPECT_NE(QLX_EepromRead(256, 1, &value, &done), 0);
    EXPECT_EQ(runCaseByName(FLASHModule, "TC_FLASH_Init_001"), 1u);

    bench_.useBoard("[EEPROM]\nPRESENT=0\n");
    EXPECT_EQ(runCaseByName(EEPROMModule, "TC_EEPROM_CheckExist_001"), 1u);
    EXPECT_EQ(QLX_EepromRead(0, 1, &value, &done), QLX_EEPROM_ERR_ABSENT);
    EXPECT_EQ(QLX_EepromGetSize(&size), QLX_EEPROM_ERR_ABSENT);
}

}  // namespace

// Factory: which key files the device takes, that it keeps them, and what a damaged one does.
#include <gtest/gtest.h>

#include <cstring>

#include "platform/qlx_factory.h"
#include "simulator/storage/factory_key.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/device.h"

namespace {

const char keyPath[] = "/mnt/usb/some.key";

class FactoryKeys : public testing::Test {
 protected:
    int32_t write(uint32_t type, const std::string& contents) {
        bench_.write(std::string("device") + keyPath, contents);
        return QLX_FactoryWritekey(type, keyPath);
    }

    BenchFolder bench_;
};

TEST_F(FactoryKeys, EachTypeIsKeptByItself) {
    for (uint32_t type = 0; type < QLX_FACTORYKEY_COUNT; type++) {
        EXPECT_EQ(QLX_FactoryCheckKey(type), QLX_FACTORY_ERR_NOT_FOUND);
        ASSERT_EQ(write(type, sim::makeKeyFile(type, "SERIAL-1\nsecret")), 0);
        EXPECT_EQ(QLX_FactoryCheckKey(type), 0);
        EXPECT_NE(QLX_FactoryCheckKey(type + 1), 0);
        qlx_sim_reset();
        EXPECT_EQ(QLX_FactoryCheckKey(type), 0);
    }
}

TEST_F(FactoryKeys, DamagedFilesAreRefusedAndKeepTheOldKey) {
    const std::string good = sim::makeKeyFile(QLX_FACTORYKEY_HDCP14, "0123456789");
    ASSERT_EQ(write(QLX_FACTORYKEY_HDCP14, good), 0);
    for (size_t i = 0; i < good.size(); i++) {
        std::string bad = good;
        bad[i] = static_cast<char>(bad[i] ^ 0x10);
        EXPECT_EQ(write(QLX_FACTORYKEY_HDCP14, bad), QLX_FACTORY_ERR_FORMAT) << "byte " << i;
        EXPECT_EQ(write(QLX_FACTORYKEY_HDCP14, good.substr(0, i)), QLX_FACTORY_ERR_FORMAT);
    }
    EXPECT_EQ(write(QLX_FACTORYKEY_HDCP14, good + "x"), QLX_FACTORY_ERR_FORMAT);
    EXPECT_EQ(write(QLX_FACTORYKEY_HDCP22, good), QLX_FACTORY_ERR_FORMAT);
    EXPECT_EQ(write(QLX_FACTORYKEY_HDCP14, sim::makeKeyFile(QLX_FACTORYKEY_HDCP14, "")),
              QLX_FACTORY_ERR_FORMAT);
    EXPECT_EQ(write(QLX_FACTORYKEY_HDCP14, std::string(200000, 'Q')), QLX_FACTORY_ERR_FILE);
    EXPECT_EQ(bench_.read("device/factory/key05.bin"), good);
    EXPECT_EQ(QLX_FactoryCheckKey(QLX_FACTORYKEY_HDCP22), QLX_FACTORY_ERR_NOT_FOUND);
    // A store that went bad is no key.
    bench_.write("device/factory/key05.bin", good.substr(1));
    EXPECT_EQ(QLX_FactoryCheckKey(QLX_FACTORYKEY_HDCP14), QLX_FACTORY_ERR_NOT_FOUND);
}

TEST_F(FactoryKeys, PathsAreTheDevicesOrThoseOfTheWorkingFolder) {
    const std::string good = sim::makeKeyFile(QLX_FACTORYKEY_MARLIN, "m");
    bench_.write("outside.key", good);
    EXPECT_EQ(QLX_FactoryWritekey(QLX_FACTORYKEY_MARLIN, "/../outside.key"), QLX_FACTORY_ERR_FILE);
    EXPECT_EQ(QLX_FactoryWritekey(QLX_FACTORYKEY_MARLIN, (bench_.path() + "/outside.key").c_str()),
              QLX_FACTORY_ERR_FILE);
    std::string relative = std::filesystem::relative(bench_.path() + "/outside.key").string();
    EXPECT_EQ(QLX_FactoryWritekey(QLX_FACTORYKEY_MARLIN, relative.c_str()), 0);
    EXPECT_EQ(QLX_FactoryWritekey(QLX_FACTORYKEY_MARLIN, "/mnt"), QLX_FACTORY_ERR_FILE);
    EXPECT_EQ(QLX_FactoryWritekey(QLX_FACTORYKEY_MARLIN, ""), QLX_FACTORY_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_FactoryWritekey(QLX_FACTORYKEY_MARLIN, nullptr), QLX_FACTORY_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_FactoryWritekey(QLX_FACTORYKEY_COUNT, keyPath), QLX_FACTORY_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_FactoryCheckKey(QLX_FACTORYKEY_COUNT), QLX_FACTORY_ERR_INVALID_PARA);
}

TEST_F(FactoryKeys, SerialNumberIsThatOfTheKeyOrOfTheWorks) {
    char esn[128];
    EXPECT_EQ(QLX_FactoryGetNetflixEsnid(esn, sizeof esn), 0);
    EXPECT_STREQ(esn, "QLXSTB-PRV-00A7D3C2");
    EXPECT_EQ(runCaseByName(FactoryModule, "TC_Factory_GetKeys_ESNID"), 0u);

    const std::string longest(127, 'E');
    ASSERT_EQ(write(0, sim::makeKeyFile(0, longest + "\nsecret")), 0);
    EXPECT_EQ(QLX_FactoryGetNetflixEsnid(esn, sizeof esn), 0);
    EXPECT_EQ(std::string(esn), longest);
    EXPECT_EQ(QLX_FactoryGetNetflixEsnid(esn, 127), QLX_FACTORY_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_FactoryGetNetflixEsnid(nullptr, 128), QLX_FACTORY_ERR_INVALID_PARA);
    // A key without a serial number is none of this type.
    for (const std::string& payload : {longest + "E\n", std::string("no newline"),
                                       std::string("\nsecret"), std::string("a b\n")})
        EXPECT_EQ(write(0, sim::makeKeyFile(0, payload)), QLX_FACTORY_ERR_FORMAT);

    bench_.useBoard("[FACTORY]\nESN=\n");
    EXPECT_EQ(QLX_FactoryGetNetflixEsnid(esn, sizeof esn), 0);
    std::filesystem::remove(bench_.path() + "/device/factory/key00.bin");
    EXPECT_EQ(runCaseByName(FactoryModule, "TC_Factory_GetKeys_ESNID"), 1u);

    // A device that says yes and hands nothing out.
    qlx_sim_add_fault("QLX_FactoryGetNetflixEsnid return=0");
    testing::internal::CaptureStdout();
    runCaseByName(FactoryModule, "TC_Factory_GetKeys_ESNID");
    EXPECT_NE(testing::internal::GetCapturedStdout().find("]esnid is [], retTc[0].\r\n"),
              std::string::npos);
}

}  // namespace

// Crypto: the device's ciphers against published vectors, the judges of a round trip, and verdicts
// on a device whose ciphertext or plaintext is wrong.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "testcase/crypto/crypto_harness.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/device.h"

namespace {

using Bytes = std::vector<uint8_t>;

Bytes bytes(const std::string& hex) {
    Bytes out;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        out.push_back(static_cast<uint8_t>(std::stoul(hex.substr(i, 2), nullptr, 16)));
    return out;
}

struct Vector {
    uint32_t mode;
    const char* key;
    /** Empty: none is given. */
    const char* iv;
    const char* plain;
    const char* cipher;
};

// clang-format off
const Vector vectors[] = {
    // SP 800-38A, appendix F
    {CRYPTO_MODE_AES128_ECB, "2b7e151628aed2a6abf7158809cf4f3c", "",
     "6bc1bee22e409f96e93d7e117393172a", "3ad77bb40d7a3660a89ecaf32466ef97"},
    {CRYPTO_MODE_AES128_CBC, "2b7e151628aed2a6abf7158809cf4f3c", "000102030405060708090a0b0c0d0e0f",
     "6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e51",
     "7649abac8119b246cee98e9b12e9197d5086cb9b507219ee95db113a917678b2"},
    {CRYPTO_MODE_AES128_CTR, "2b7e151628aed2a6abf7158809cf4f3c", "f0f1f2f3f4f5f6f7f8f9fafbfcfdfeff",
     "6bc1bee22e409f96e93d7e117393172aae", "874d6191b620e3261bef6864990db6ce98"},
    {CRYPTO_MODE_AES256_ECB, "603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4", "",
     "6bc1bee22e409f96e93d7e117393172a", "f3eed1bdb5d2a03c064b5a7e3db181f8"},
    // A null vector counts as zeros: the first block is that of ECB.
    {CRYPTO_MODE_AES256_CBC, "603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4", "",
     "6bc1bee22e409f96e93d7e117393172a", "f3eed1bdb5d2a03c064b5a7e3db181f8"},
    {CRYPTO_MODE_AES256_CTR, "603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4",
     "f0f1f2f3f4f5f6f7f8f9fafbfcfdfeff",
     "6bc1bee22e409f96e93d7e117393172a", "601ec313775789a5b7a7f504bbf3d228"},
    // FIPS 81; a weak key, which no engine may refuse; and a key whose parts are all alike
    {CRYPTO_MODE_DES_ECB, "0123456789abcdef", "", "4e6f772069732074", "3fa40e8a984d4815"},
    {CRYPTO_MODE_DES_CBC, "0123456789abcdef", "1234567890abcdef", "4e6f772069732074",
     "e5c7cdde872bf27c"},
    {CRYPTO_MODE_DES_ECB, "0101010101010101", "", "0000000000000000", "8ca64de9c1b123a7"},
    {CRYPTO_MODE_TDES2_ECB, "0123456789abcdef0123456789abcdef", "", "4e6f772069732074",
     "3fa40e8a984d4815"},
    {CRYPTO_MODE_TDES2_CBC, "0123456789abcdef0123456789abcdef", "", "4e6f772069732074",
     "3fa40e8a984d4815"},
    // SP 800-67, appendix B
    {CRYPTO_MODE_TDES3_ECB, "0123456789abcdef23456789abcdef01456789abcdef0123", "",
     "5468652071756663", "a826fd8ce53b855f"},
    {CRYPTO_MODE_TDES3_CBC, "0123456789abcdef23456789abcdef01456789abcdef0123", "",
     "5468652071756663", "a826fd8ce53b855f"},
    // The cipher's first public test
    {CRYPTO_MODE_RC4, "4b6579", "", "506c61696e74657874", "bbf316e8d940af0ad3"},
};
// clang-format on

QLX_CryptoCtrl ctrlOf(uint32_t mode, const Bytes& key, const Bytes& iv) {
    return {mode, key.data(), static_cast<uint32_t>(key.size()), iv.empty() ? nullptr : iv.data(),
            static_cast<uint32_t>(iv.size())};
}

TEST(CryptoEngine, AgreesWithPublishedVectors) {
    for (const Vector& v : vectors) {
        SCOPED_TRACE(std::string(GetCryptoModeStr(v.mode)) + " " + v.key);
        Bytes key = bytes(v.key), iv = bytes(v.iv), plain = bytes(v.plain);
        const Bytes sameKey = key, sameIv = iv;
        QLX_CryptoCtrl ctrl = ctrlOf(v.mode, key, iv);
        Bytes out(plain.size() + 8, 0xEE), back(plain.size());
        uint32_t length = static_cast<uint32_t>(out.size());
        uint32_t size = static_cast<uint32_t>(plain.size());
        EXPECT_NE(QLX_CryptoModeSupported(v.mode), 0u);
        ASSERT_EQ(QLX_CryptoEncrypt(plain.data(), out.data(), size, &length, &ctrl), 0);
        EXPECT_EQ(length, size);
        EXPECT_EQ(Bytes(out.begin(), out.begin() + size), bytes(v.cipher));
        EXPECT_EQ(Bytes(out.begin() + size, out.end()), Bytes(8, 0xEE));
        ASSERT_EQ(QLX_CryptoDecrypt(out.data(), back.data(), size, &length, &ctrl), 0);
        EXPECT_EQ(back, plain);
        // In place, and with key and vector as the caller gave them.
        ASSERT_EQ(QLX_CryptoEncrypt(back.data(), back.data(), size, &length, &ctrl), 0);
        EXPECT_EQ(back, bytes(v.cipher));
        EXPECT_EQ(key, sameKey);
        EXPECT_EQ(iv, sameIv);
    }
}

TEST(CryptoEngine, RefusesWhatDoesNotFit) {
    Bytes key(32, 1), iv(16, 2), data(64, 3), out(64);
    struct {
        const char* what;
        uint32_t mode, keyLength, ivLength, size, room;
        int32_t code;
    } rows[] = {
        {"good", 0, 16, 0, 32, 64, 0},
        {"a part of a block", 0, 16, 0, 17, 64, QLX_CRYPTO_ERR_INVALID_PARA},
        {"a stream of any length", 2, 16, 16, 17, 64, 0},
        {"nothing", 0, 16, 0, 0, 64, 0},
        {"a short key", 0, 15, 0, 32, 64, QLX_CRYPTO_ERR_INVALID_PARA},
        {"a long key", 3, 16, 0, 32, 64, QLX_CRYPTO_ERR_INVALID_PARA},
        {"no key for a stream cipher", 9, 0, 0, 32, 64, QLX_CRYPTO_ERR_INVALID_PARA},
        {"a vector of another cipher", 4, 8, 16, 32, 64, QLX_CRYPTO_ERR_INVALID_PARA},
        {"too little room", 0, 16, 0, 32, 31, QLX_CRYPTO_ERR_INVALID_PARA},
        {"a mode that is none", 13, 16, 0, 32, 64, QLX_CRYPTO_ERR_NOT_SUPPORTED},
    };
    for (const auto& row : rows) {
        QLX_CryptoCtrl ctrl{row.mode, key.data(), row.keyLength, iv.data(), row.ivLength};
        uint32_t length = row.room;
        EXPECT_EQ(QLX_CryptoEncrypt(data.data(), out.data(), row.size, &length, &ctrl), row.code)
            << row.what;
        EXPECT_EQ(length, row.code == 0 ? row.size : row.room) << row.what;
    }
    uint32_t length = 32;
    QLX_CryptoCtrl ctrl{0, key.data(), 16, nullptr, 0};
    EXPECT_EQ(QLX_CryptoEncrypt(data.data(), data.data() + 16, 32, &length, &ctrl),
              QLX_CRYPTO_ERR_INVALID_PARA);
    ctrl.key = nullptr;
    EXPECT_EQ(QLX_CryptoEncrypt(data.data(), out.data(), 32, &length, &ctrl),
              QLX_CRYPTO_ERR_INVALID_PARA);
}

/** A ciphertext that differs everywhere but in the given runs of equal bytes. */
Bytes cipherWithRuns(const Bytes& in, const std::vector<std::pair<size_t, size_t>>& runs) {
    Bytes out = in;
    for (uint8_t& byte : out)
        byte = static_cast<uint8_t>(~byte);
    for (auto [at, length] : runs)
        std::copy_n(in.begin() + static_cast<long>(at), length,
                    out.begin() + static_cast<long>(at));
    return out;
}

TEST(CryptoJudges, EqualBytesOfTheFirstRunAreCounted) {
    const Bytes in(256, 0x42);
    struct {
        const char* what;
        std::vector<std::pair<size_t, size_t>> runs;
        uint32_t result;
    } rows[] = {
        {"nothing equal", {}, 0},
        {"nine from the start", {{0, 9}}, 0},
        {"ten from the start", {{0, 10}}, 1},
        {"ten further on", {{100, 10}}, 1},
        {"ten at the end", {{246, 10}}, 1},
        // The place of the last equal byte stays behind at a gap, so that later runs never count.
        {"one, then ten after a gap", {{0, 1}, {20, 10}}, 0},
        {"nine, then nine next to them", {{0, 9}, {10, 9}}, 0},
    };
    for (const auto& row : rows) {
        Bytes out = cipherWithRuns(in, row.runs);
        EXPECT_EQ(CheckEncryptResult(in.data(), 256, out.data(), 256), row.result) << row.what;
    }
    Bytes out = cipherWithRuns(in, {});
    EXPECT_EQ(CheckEncryptResult(in.data(), 256, out.data(), 255), 1u);
    EXPECT_EQ(CheckDecryptResult(in.data(), 256, in.data(), 256), 0u);
    EXPECT_EQ(CheckDecryptResult(in.data(), 256, in.data(), 240), 1u);
    out = in;
    out[255] ^= 1;
    EXPECT_EQ(CheckDecryptResult(in.data(), 256, out.data(), 256), 1u);
}

TEST(CryptoJudges, TimeDifferenceBorrowsASecond) {
    timeval start{10, 900000}, end{12, 100000}, result{};
    CalculateTimeDiff(&start, &end, &result);
    EXPECT_EQ(result.tv_sec, 1);
    EXPECT_EQ(result.tv_usec, 200000);
    EXPECT_EQ(end.tv_sec, 11);
}

TEST(CryptoJudges, NamesAndKeysOfModes) {
    EXPECT_STREQ(GetCryptoModeStr(12), "CRYPTO_MODE_AES256_CTR");
    EXPECT_STREQ(GetCryptoModeStr(13), "UnknownCryptoMode");
    CryptoKey key{};
    key.ctrl.mode = 13;
    EXPECT_EQ(GenerateKey(&key), 1u);
    FreeKey(&key);
}

TEST(CryptoJudges, AKeyIsDumpedSixteenBytesALine) {
    CryptoKey key{};
    key.ctrl.mode = CRYPTO_MODE_AES256_ECB;
    testing::internal::CaptureStderr();
    ASSERT_EQ(GenerateKey(&key), 0u);
    std::string text = testing::internal::GetCapturedStderr();
    char byte[8];
    std::string expected = "begin===========================";
    for (uint32_t i = 0; i < 32; i++) {
        snprintf(byte, sizeof byte, "0x%02X ", key.key[i]);
        expected += (i % 16 == 0 ? "\n" : "") + std::string(byte);
    }
    expected += "\n================Buffer:Key(size = 32(0x20)) end===========================\n\n";
    EXPECT_NE(text.find(expected), std::string::npos) << text;
    FreeKey(&key);
}

class CryptoModuleTest : public testing::Test {
 protected:
    uint32_t run(const char* name) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        uint32_t result = runCaseByName(CryptoModule, name);
        log_ = testing::internal::GetCapturedStderr();
        text_ = testing::internal::GetCapturedStdout();
        return result;
    }
    bool says(const char* text) {
        return text_.find(text) != std::string::npos;
    }

    BenchFolder bench_;
    std::string text_;
    std::string log_;
};

TEST_F(CryptoModuleTest, NullArgumentsAreRefused) {
    for (uint32_t i = 0; i < 8; i++)
        EXPECT_EQ(run(CryptoModule.cases[i].name), 0u) << text_;
    qlx_sim_add_fault("QLX_CryptoDecrypt return=0x101202");
    EXPECT_EQ(run("TC_DecryOnNullCtrlInfo"), 1u);
    EXPECT_TRUE(says("E:Check result failed, ret:1053186, should be:1053185.\n"));
}

TEST_F(CryptoModuleTest, RoundTripThroughAStreamCipherWithoutAVector) {
    srandom(1);
    EXPECT_EQ(run("TC_EnDecryRC4"), 0u) << text_;
    // The unseeded generator gives every run the same data.
    EXPECT_NE(log_.find("Buffer:InputBuffer(size = 16(0x10)) begin"), std::string::npos);
    EXPECT_TRUE(says("I:Hello, I will test crypto mode:CRYPTO_MODE_RC4.\n"));
}

TEST_F(CryptoModuleTest, CiphertextThatBeginsAsTheInputFails) {
    uint8_t input[16];
    srandom(1);
    GenerateInput(input, sizeof input);
    // Ten bytes from the second on: the first one is made to differ.
    qlx_sim_add_fault(
        ("QLX_CryptoEncrypt corrupt=0:" + std::string(input[0] == 0 ? "01" : "00")).c_str());
    for (int i = 1; i <= 10; i++) {
        char fault[64];
        snprintf(fault, sizeof fault, "QLX_CryptoEncrypt corrupt=%d:%02x", i, input[i]);
        ASSERT_EQ(qlx_sim_add_fault(fault), 0);
    }
    srandom(1);
    EXPECT_EQ(run("TC_EnDecryAES128_CTR"), 1u);
    EXPECT_TRUE(says("E:input == output.\n")) << text_;
    EXPECT_TRUE(says("E:The result of encrypt equal to the original buffer.\n"));
}

TEST_F(CryptoModuleTest, AWrongLastByteOfThePlaintextFails) {
    // 255 never occurs in the input.
    qlx_sim_add_fault("QLX_CryptoDecrypt corrupt=17694719:ff");
    EXPECT_EQ(run("TC_EnDecryAES128_ECB"), 1u);
    EXPECT_TRUE(says("E:The result of decrypt not equal to the original buffer.\n")) << text_;
}

TEST_F(CryptoModuleTest, LengthsThatDifferFailThoughTheBytesAgree) {
    const char* const rows[][2] = {
        {"QLX_CryptoEncrypt", "E:The result of encrypt equal to the original buffer.\n"},
        {"QLX_CryptoDecrypt", "E:The result of decrypt not equal to the original buffer.\n"},
    };
    for (const auto& row : rows) {
        qlx_sim_reset();
        ASSERT_EQ(qlx_sim_add_fault((std::string(row[0]) + " set=length:17694719").c_str()), 0);
        EXPECT_EQ(run("TC_EnDecryAES128_ECB"), 1u);
        EXPECT_TRUE(says("E:Length is not equal(in:17694720 != out:17694719).\n")) << text_;
        EXPECT_TRUE(says(row[1])) << text_;
    }
}

TEST_F(CryptoModuleTest, AMissingModeFails) {
    bench_.useBoard("[CRYPTO]\nTDES2_CBC=0\n");
    EXPECT_EQ(run("TC_EnDecryTDES2_CBC"), 1u);
    EXPECT_TRUE(says("I:Not support crypto mode:CRYPTO_MODE_TDES2_CBC.\n"));
    qlx_sim_add_fault("QLX_CryptoEncrypt return=1");
    EXPECT_EQ(run("TC_EnDecryAES128_ECB"), 1u);
    EXPECT_TRUE(says("E:Encrypt failed.\n"));
}

}  // namespace

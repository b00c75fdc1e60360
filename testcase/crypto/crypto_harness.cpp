#include "testcase/crypto/crypto_harness.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static uint8_t g_input[CRYPTO_BUFFER_SIZE];
static uint8_t g_middleput[CRYPTO_BUFFER_SIZE];
static uint8_t g_output[CRYPTO_BUFFER_SIZE];

/** Bytes of a buffer that the log shows. */
static const uint32_t dumpLength = 16;

struct ModeInfo {
    const char* name;
    uint32_t keyLength;
    /** 0: the mode runs with a null vector. */
    uint32_t ivLength;
};

/** By QLX_CryptoMode. */
// clang-format off
static const ModeInfo modeInfos[] = {
    // name                    key  iv
    {"CRYPTO_MODE_AES128_ECB", 16,  0},
    {"CRYPTO_MODE_AES128_CBC", 16,  16},
    {"CRYPTO_MODE_AES128_CTR", 16,  16},
    {"CRYPTO_MODE_DES_ECB",    8,   0},
    {"CRYPTO_MODE_DES_CBC",    8,   8},
    {"CRYPTO_MODE_TDES2_ECB",  16,  0},
    {"CRYPTO_MODE_TDES2_CBC",  16,  0},
    {"CRYPTO_MODE_TDES3_ECB",  24,  0},
    {"CRYPTO_MODE_TDES3_CBC",  24,  0},
    {"CRYPTO_MODE_RC4",        32,  0},
    {"CRYPTO_MODE_AES256_ECB", 32,  0},
    {"CRYPTO_MODE_AES256_CBC", 32,  0},
    {"CRYPTO_MODE_AES256_CTR", 32,  0},
};
// clang-format on

static const ModeInfo* infoOf(uint32_t mode) {
    return mode < sizeof(modeInfos) / sizeof(modeInfos[0]) ? &modeInfos[mode] : nullptr;
}

const char* GetCryptoModeStr(uint32_t mode) {
    const ModeInfo* info = infoOf(mode);
    return info != nullptr ? info->name : "UnknownCryptoMode";
}

static void dump(const char* name, const uint8_t* data, uint32_t size) {
    fprintf(stderr,
            "\n================Buffer:%s(size = %d(0x%X)) begin===========================", name,
            static_cast<int>(size), size);
    for (uint32_t i = 0; i < size; i++) {
        if (i % 16 == 0)
            fputc('\n', stderr);
        fprintf(stderr, "0x%02X ", data[i]);
    }
    fprintf(stderr,
            "\n================Buffer:%s(size = %d(0x%X)) end===========================\n\n", name,
            static_cast<int>(size), size);
}

static void fillRandom(uint8_t* buffer, uint32_t length) {
    for (uint32_t i = 0; i < length; i++)
        buffer[i] = static_cast<uint8_t>(random() % 255);
}

void GenerateInput(uint8_t* buffer, uint32_t length) {
    fillRandom(buffer, length);
    dump("InputBuffer", buffer, length < dumpLength ? length : dumpLength);
}

uint32_t GenerateKey(CryptoKey* key) {
    const ModeInfo* info = infoOf(key->ctrl.mode);
    if (info == nullptr) {
        printf("==>[%s() %d] E:Invalid crypto mode:%d.\n", __func__, __LINE__,
               static_cast<int>(key->ctrl.mode));
        return 1;
    }
    key->key = static_cast<uint8_t*>(malloc(info->keyLength));
    if (key->key == nullptr) {
        printf("==>[%s() %d] E:Fail to allocate memory for key.\n", __func__, __LINE__);
        return 1;
    }
    if (info->ivLength != 0) {
        key->iv = static_cast<uint8_t*>(malloc(info->ivLength));
        if (key->iv == nullptr) {
            printf("==>[%s() %d] E:Fail to allocate memory for iv.\n", __func__, __LINE__);
            return 1;
        }
    }
    fillRandom(key->key, info->keyLength);
    dump("Key", key->key, info->keyLength);
    if (key->iv != nullptr) {
        fillRandom(key->iv, info->ivLength);
        dump("IV", key->iv, info->ivLength);
    }
    key->ctrl.key = key->key;
    key->ctrl.keyLength = info->keyLength;
    key->ctrl.iv = key->iv;
    key->ctrl.ivLength = info->ivLength;
    return 0;
}

void FreeKey(CryptoKey* key) {
    free(key->key);
    free(key->iv);
    key->key = key->iv = nullptr;
    key->ctrl.key = key->ctrl.iv = nullptr;
}

static bool lengthsEqual(const char* function, int line, uint32_t inLength, uint32_t outLength) {
    if (inLength == outLength)
        return true;
    printf("==>[%s() %d] E:Length is not equal(in:%d != out:%d).\n", function, line,
           static_cast<int>(inLength), static_cast<int>(outLength));
    return false;
}

uint32_t CheckEncryptResult(const uint8_t* in, uint32_t inLength, const uint8_t* out,
                            uint32_t outLength) {
    const int64_t none = -1;
    int64_t lastEqual = none;
    int count = 0;
    if (!lengthsEqual(__func__, __LINE__, inLength, outLength))
        return 1;
    for (uint32_t i = 0; i < inLength; i++) {
        if (in[i] != out[i])
            continue;
        if (lastEqual == none) {
            lastEqual = i;
            count = 1;
        } else if (i == lastEqual + 1) {
            lastEqual = i;
            count++;
            printf("==>[%s() %d] I:input[%d]:%d == output[%d]:%d.\n", __func__, __LINE__,
                   static_cast<int>(i), in[i], static_cast<int>(i), out[i]);
        } else {
            count = 0;
        }
        if (count > 9) {
            printf("==>[%s() %d] E:input == output.\n", __func__, __LINE__);
            return 1;
        }
    }
    return 0;
}

uint32_t CheckDecryptResult(const uint8_t* in, uint32_t inLength, const uint8_t* out,
                            uint32_t outLength) {
    if (!lengthsEqual(__func__, __LINE__, inLength, outLength))
        return 1;
    for (uint32_t i = 0; i < inLength; i++) {
        if (in[i] != out[i]) {
            printf("==>[%s() %d] E:input[%d]:%d != output[%d]:%d.\n", __func__, __LINE__,
                   static_cast<int>(i), in[i], static_cast<int>(i), out[i]);
            return 1;
        }
    }
    return 0;
}

void CalculateTimeDiff(const timeval* start, timeval* end, timeval* result) {
    if (end->tv_usec < start->tv_usec) {
        end->tv_sec--;
        end->tv_usec += 1000000;
    }
    result->tv_sec = end->tv_sec - start->tv_sec;
    result->tv_usec = end->tv_usec - start->tv_usec;
}

/** The time since `start`. */
static timeval since(const timeval& start) {
    timeval end{};
    timeval taken{};
    gettimeofday(&end, nullptr);
    CalculateTimeDiff(&start, &end, &taken);
    return taken;
}

// The two halves of EnDecrypt, whose name their messages bear.

/** Seconds that neither direction may take. */
static const long slowestSeconds = 2;

static uint32_t encryptAndJudge(const char* function, const QLX_CryptoCtrl& control,
                                uint32_t* outLength) {
    timeval start{};
    printf("==>[%s() %d] I:Will encrypt.\n", function, __LINE__);
    *outLength = CRYPTO_BUFFER_SIZE;
    gettimeofday(&start, nullptr);
    if (QLX_CryptoEncrypt(g_input, g_middleput, CRYPTO_BUFFER_SIZE, outLength, &control) != 0) {
        printf("==>[%s() %d] E:Encrypt failed.\n", function, __LINE__);
        return 1;
    }
    timeval taken = since(start);
    printf("==>[%s() %d] I:Encrypt takes time:%lds, %ldms, %ldus.\n", function, __LINE__,
           static_cast<long>(taken.tv_sec), static_cast<long>(taken.tv_usec) / 1000,
           static_cast<long>(taken.tv_usec) % 1000);
    if (taken.tv_sec >= slowestSeconds) {
        printf("==>[%s() %d] E:Encrypt takes too long time, failed.\n", function, __LINE__);
        return 1;
    }
    dump("EncryptedBuffer", g_middleput, dumpLength);
    if (CheckEncryptResult(g_input, CRYPTO_BUFFER_SIZE, g_middleput, *outLength) != 0) {
        printf("==>[%s() %d] E:The result of encrypt equal to the original buffer.\n", function,
               __LINE__);
        return 1;
    }
    return 0;
}

static uint32_t decryptAndJudge(const char* function, const QLX_CryptoCtrl& control,
                                uint32_t outLength) {
    timeval start{};
    uint32_t plainLength = CRYPTO_BUFFER_SIZE;
    printf("==>[%s() %d] I:Will decrypt.\n", function, __LINE__);
    gettimeofday(&start, nullptr);
    if (QLX_CryptoDecrypt(g_middleput, g_output, outLength, &plainLength, &control) != 0) {
        printf("==>[%s() %d] E:Decrypt failed.\n", function, __LINE__);
        return 1;
    }
    timeval taken = since(start);
    printf("==>[%s() %d] I:Decrypt takes time:%lds, %ldms, %ldus.\n", function, __LINE__,
           static_cast<long>(taken.tv_sec), static_cast<long>(taken.tv_usec) / 1000,
           static_cast<long>(taken.tv_usec) % 1000);
    if (taken.tv_sec >= slowestSeconds) {
        printf("==>[%s() %d] E:Decrypt takes too long time, failed.\n", function, __LINE__);
        return 1;
    }
    dump("DecryptedBuffer", g_output, dumpLength);
    if (CheckDecryptResult(g_input, CRYPTO_BUFFER_SIZE, g_output, plainLength) != 0) {
        printf("==>[%s() %d] E:The result of decrypt not equal to the original buffer.\n", function,
               __LINE__);
        return 1;
    }
    return 0;
}

uint32_t EnDecrypt(uint32_t mode) {
    CryptoKey key{};
    uint32_t outLength = 0;
    printf("==>[%s() %d] I:Hello, I will test crypto mode:%s.\n", __func__, __LINE__,
           GetCryptoModeStr(mode));
    if (QLX_CryptoModeSupported(mode) == 0) {
        printf("==>[%s() %d] I:Not support crypto mode:%s.\n", __func__, __LINE__,
               GetCryptoModeStr(mode));
        return 1;
    }
    GenerateInput(g_input, CRYPTO_BUFFER_SIZE);
    memcpy(g_middleput, g_input, CRYPTO_BUFFER_SIZE);
    memset(g_output, 0, CRYPTO_BUFFER_SIZE);
    key.ctrl.mode = mode;
    uint32_t result = GenerateKey(&key);
    if (result != 0)
        printf("==>[%s() %d] E:Fail to generate key.\n", __func__, __LINE__);
    else
        result = encryptAndJudge(__func__, key.ctrl, &outLength);
    if (result == 0)
        result = decryptAndJudge(__func__, key.ctrl, outLength);
    FreeKey(&key);
    return result;
}

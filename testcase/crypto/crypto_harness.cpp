#include "testcase/crypto/crypto_harness.h"

#include <stdarg.h>
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

static void ZK_PRINTF(3, 0)
    printLine(const CaseContext& tc, int line, const char* format, va_list arguments) {
    flockfile(stdout);
    printf("==>[%s() %d] ", tc.name, line);
    vprintf(format, arguments);
    funlockfile(stdout);
}

void crp_say(const CaseContext& tc, int line, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    printLine(tc, line, format, arguments);
    va_end(arguments);
}

bool crp_fail(CaseContext& tc, int line, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    printLine(tc, line, format, arguments);
    va_end(arguments);
    tc.result = TC_FAILURE;
    return false;
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

/** Allocates `length` bytes; false with a message when there are none. */
static bool allocate(CaseContext& tc, uint8_t** bytes, uint32_t length, const char* what) {
    *bytes = static_cast<uint8_t*>(malloc(length));
    return *bytes != nullptr || CRP_FAIL("E:Fail to allocate memory for %s.\n", what);
}

uint32_t GenerateKey(CryptoKey* key) {
    CaseContext tc = {__func__};
    const ModeInfo* info = infoOf(key->ctrl.mode);
    if (info == nullptr)
        CRP_FAIL("E:Invalid crypto mode:%d.\n", static_cast<int>(key->ctrl.mode));
    else if (allocate(tc, &key->key, info->keyLength, "key") && info->ivLength != 0)
        allocate(tc, &key->iv, info->ivLength, "iv");
    if (tc.result != TC_SUCCESS)
        return tc.result;
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
    return TC_SUCCESS;
}

void FreeKey(CryptoKey* key) {
    free(key->key);
    free(key->iv);
    key->key = key->iv = nullptr;
    key->ctrl.key = key->ctrl.iv = nullptr;
}

static bool lengthsEqual(CaseContext& tc, uint32_t inLength, uint32_t outLength) {
    return inLength == outLength ||
           CRP_FAIL("E:Length is not equal(in:%d != out:%d).\n", static_cast<int>(inLength),
                    static_cast<int>(outLength));
}

uint32_t CheckEncryptResult(const uint8_t* in, uint32_t inLength, const uint8_t* out,
                            uint32_t outLength) {
    CaseContext tc = {__func__};
    const int64_t none = -1;
    int64_t lastEqual = none;
    int count = 0;
    if (!lengthsEqual(tc, inLength, outLength))
        return tc.result;
    for (uint32_t i = 0; i < inLength; i++) {
        if (in[i] != out[i])
            continue;
        if (lastEqual == none) {
            lastEqual = i;
            count = 1;
        } else if (i == lastEqual + 1) {
            lastEqual = i;
            count++;
            CRP_SAY("I:input[%d]:%d == output[%d]:%d.\n", static_cast<int>(i), in[i],
                    static_cast<int>(i), out[i]);
        } else {
            count = 0;
        }
        if (count > 9) {
            CRP_FAIL("E:input == output.\n");
            break;
        }
    }
    return tc.result;
}

uint32_t CheckDecryptResult(const uint8_t* in, uint32_t inLength, const uint8_t* out,
                            uint32_t outLength) {
    CaseContext tc = {__func__};
    bool equal = lengthsEqual(tc, inLength, outLength);
    for (uint32_t i = 0; equal && i < inLength; i++) {
        if (in[i] != out[i])
            equal = CRP_FAIL("E:input[%d]:%d != output[%d]:%d.\n", static_cast<int>(i), in[i],
                             static_cast<int>(i), out[i]);
    }
    return tc.result;
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

/** One half of the round trip. */
struct Direction {
    /** What its messages call it, and what they complain about. */
    const char* small;
    const char* capital;
    const char* dumped;
    const char* complaint;
    int32_t (*call)(const uint8_t* input, uint8_t* output, uint32_t inputLength,
                    uint32_t* outputLength, const QLX_CryptoCtrl* ctrl);
    const uint8_t* from;
    uint8_t* to;
    uint32_t (*check)(const uint8_t* in, uint32_t inLength, const uint8_t* out, uint32_t outLength);
};

// clang-format off
static const Direction encryption = {
    "encrypt", "Encrypt", "EncryptedBuffer", "E:The result of encrypt equal to the original buffer.\n",
    QLX_CryptoEncrypt, g_input, g_middleput, CheckEncryptResult};
static const Direction decryption = {
    "decrypt", "Decrypt", "DecryptedBuffer", "E:The result of decrypt not equal to the original buffer.\n",
    QLX_CryptoDecrypt, g_middleput, g_output, CheckDecryptResult};
// clang-format on

/** Seconds that neither direction may take. */
static const long slowestSeconds = 2;

/** Passes `length` bytes through one direction and judges time and result. */
static bool pass(CaseContext& tc, const Direction& way, const QLX_CryptoCtrl& control,
                 uint32_t length, uint32_t* outLength) {
    timeval start{};
    CRP_SAY("I:Will %s.\n", way.small);
    *outLength = CRYPTO_BUFFER_SIZE;
    gettimeofday(&start, nullptr);
    if (way.call(way.from, way.to, length, outLength, &control) != 0)
        return CRP_FAIL("E:%s failed.\n", way.capital);
    timeval taken = since(start);
    CRP_SAY("I:%s takes time:%lds, %ldms, %ldus.\n", way.capital, static_cast<long>(taken.tv_sec),
            static_cast<long>(taken.tv_usec) / 1000, static_cast<long>(taken.tv_usec) % 1000);
    if (taken.tv_sec >= slowestSeconds)
        return CRP_FAIL("E:%s takes too long time, failed.\n", way.capital);
    dump(way.dumped, way.to, dumpLength);
    return way.check(g_input, CRYPTO_BUFFER_SIZE, way.to, *outLength) == 0 ||
           CRP_FAIL("%s", way.complaint);
}

uint32_t EnDecrypt(uint32_t mode) {
    CaseContext tc = {__func__};
    CryptoKey key{};
    uint32_t cipherLength = 0, plainLength = 0;
    CRP_SAY("I:Hello, I will test crypto mode:%s.\n", GetCryptoModeStr(mode));
    if (QLX_CryptoModeSupported(mode) == 0) {
        CRP_FAIL("I:Not support crypto mode:%s.\n", GetCryptoModeStr(mode));
        return tc.result;
    }
    GenerateInput(g_input, CRYPTO_BUFFER_SIZE);
    memcpy(g_middleput, g_input, CRYPTO_BUFFER_SIZE);
    memset(g_output, 0, CRYPTO_BUFFER_SIZE);
    key.ctrl.mode = mode;
    if (GenerateKey(&key) != 0)
        CRP_FAIL("E:Fail to generate key.\n");
    else if (pass(tc, encryption, key.ctrl, CRYPTO_BUFFER_SIZE, &cipherLength))
        pass(tc, decryption, key.ctrl, cipherLength, &plainLength);
    FreeKey(&key);
    return tc.result;
}

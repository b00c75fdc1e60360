// Crypto: null arguments are refused, and each of thirteen modes takes a large random buffer there
// and back in time. Keys, vectors and data are made at run time.
#include <string.h>

#include "framework/case/check.h"
#include "framework/case/hooks.h"
#include "testcase/crypto/crypto_harness.h"
#include "testcase/modules.h"

TC_HOOK(testSetup, "setup all resources")
TC_HOOK(testTeardown, "release all resources")
TC_CASE_SETUP_HOOK(testCaseSetupImp, "setup all resources")
TC_HOOK(testCaseTeardownImp, "release all resources")

/** Good arguments of an operation, of which a test takes one away. */
struct NullTest {
    uint8_t key[16];
    uint8_t input[128];
    uint8_t output[128];
    uint32_t outputLength;
    QLX_CryptoCtrl ctrl;
};

static void prepareNullTest(NullTest* test) {
    memset(test, 0, sizeof *test);
    test->outputLength = sizeof test->output;
    test->ctrl.mode = CRYPTO_MODE_AES128_ECB;
    test->ctrl.key = test->key;
    test->ctrl.keyLength = sizeof test->key;
}

/** Judges the answer to a null argument. */
static uint32_t judgeNull(const char* name, int32_t ret) {
    CaseContext tc = {name};
    if (ret != QLX_CRYPTO_ERR_INVALID_PARA)
        CRP_FAIL("E:Check result failed, ret:%d, should be:%d.\n", ret,
                 static_cast<int>(QLX_CRYPTO_ERR_INVALID_PARA));
    return tc.result;
}

// clang-format off
/** X(function, operation, input, output, output length, control) of the null family. */
#define NULL_TESTS(X) \
    X(CRP_TestEncryOnNullInput,     QLX_CryptoEncrypt, nullptr, t.output, &t.outputLength, &t.ctrl) \
    X(CRP_TestEncryOnNullOutput,    QLX_CryptoEncrypt, t.input, nullptr,  &t.outputLength, &t.ctrl) \
    X(CRP_TestEncryOnNullOutputLen, QLX_CryptoEncrypt, t.input, t.output, nullptr,         &t.ctrl) \
    X(CRP_TestEncryOnNullCtrlInfo,  QLX_CryptoEncrypt, t.input, t.output, &t.outputLength, nullptr) \
    X(CRP_TestDecryOnNullInput,     QLX_CryptoDecrypt, nullptr, t.output, &t.outputLength, &t.ctrl) \
    X(CRP_TestDecryOnNullOutput,    QLX_CryptoDecrypt, t.input, nullptr,  &t.outputLength, &t.ctrl) \
    X(CRP_TestDecryOnNullOutputLen, QLX_CryptoDecrypt, t.input, t.output, nullptr,         &t.ctrl) \
    X(CRP_TestDecryOnNullCtrlInfo,  QLX_CryptoDecrypt, t.input, t.output, &t.outputLength, nullptr)
// clang-format on
#define NULL_TEST_FUNCTION(function, operation, input_, output_, length_, ctrl_)                \
    static uint32_t function() {                                                                \
        NullTest t;                                                                             \
        prepareNullTest(&t);                                                                    \
        return judgeNull(__func__, operation(input_, output_, sizeof t.input, length_, ctrl_)); \
    }
NULL_TESTS(NULL_TEST_FUNCTION)

// clang-format off
/** X(function, mode) of the round trips. */
#define ROUND_TRIPS(X) \
    X(CRP_TestEnDecryptWithAES128_ECB, CRYPTO_MODE_AES128_ECB) \
    X(CRP_TestEnDecryptWithAES128_CBC, CRYPTO_MODE_AES128_CBC) \
    X(CRP_TestEnDecryptWithAES128_CTR, CRYPTO_MODE_AES128_CTR) \
    X(CRP_TestEnDecryptWithDES_ECB,    CRYPTO_MODE_DES_ECB) \
    X(CRP_TestEnDecryptWithDES_CBC,    CRYPTO_MODE_DES_CBC) \
    X(CRP_TestEnDecryptWithTDES2_ECB,  CRYPTO_MODE_TDES2_ECB) \
    X(CRP_TestEnDecryptWithTDES2_CBC,  CRYPTO_MODE_TDES2_CBC) \
    X(CRP_TestEnDecryptWithTDES3_ECB,  CRYPTO_MODE_TDES3_ECB) \
    X(CRP_TestEnDecryptWithTDES3_CBC,  CRYPTO_MODE_TDES3_CBC) \
    X(CRP_TestEnDecryptWithRC4,        CRYPTO_MODE_RC4) \
    X(CRP_TestEnDecryptWithAES256_ECB, CRYPTO_MODE_AES256_ECB) \
    X(CRP_TestEnDecryptWithAES256_CBC, CRYPTO_MODE_AES256_CBC) \
    X(CRP_TestEnDecryptWithAES256_CTR, CRYPTO_MODE_AES256_CTR)
// clang-format on
#define ROUND_TRIP_FUNCTION(function, mode) \
    static uint32_t function() {            \
        return EnDecrypt(mode);             \
    }
ROUND_TRIPS(ROUND_TRIP_FUNCTION)

/** A case ends with the verdict of its test. */
static uint32_t wrapped(const char* name, uint32_t (*test)()) {
    CaseContext tc = {name, test()};
    return TC_RESULT(tc);
}

// clang-format off
#define CRYPTO_VARIANTS(X) \
    /* case                      flag  description                                   body */ \
    X(TC_EncryOnNullInput,       AUTO, "encrypt with null input",                    wrapped(__func__, CRP_TestEncryOnNullInput)) \
    X(TC_EncryOnNullOutput,      AUTO, "encrypt with null output",                   wrapped(__func__, CRP_TestEncryOnNullOutput)) \
    X(TC_EncryOnNullOutputLen,   AUTO, "encrypt with null output length",            wrapped(__func__, CRP_TestEncryOnNullOutputLen)) \
    X(TC_EncryOnNullCtrlInfo,    AUTO, "encrypt with null control information",      wrapped(__func__, CRP_TestEncryOnNullCtrlInfo)) \
    X(TC_DecryOnNullInput,       AUTO, "decrypt with null input",                    wrapped(__func__, CRP_TestDecryOnNullInput)) \
    X(TC_DecryOnNullOutput,      AUTO, "decrypt with null output",                   wrapped(__func__, CRP_TestDecryOnNullOutput)) \
    X(TC_DecryOnNullOutputLen,   AUTO, "decrypt with null output length",            wrapped(__func__, CRP_TestDecryOnNullOutputLen)) \
    X(TC_DecryOnNullCtrlInfo,    AUTO, "decrypt with null control information",      wrapped(__func__, CRP_TestDecryOnNullCtrlInfo)) \
    X(TC_EnDecryAES128_ECB,      AUTO, "encrypt and decrypt in mode AES128 ECB",     wrapped(__func__, CRP_TestEnDecryptWithAES128_ECB)) \
    X(TC_EnDecryAES128_CBC,      AUTO, "encrypt and decrypt in mode AES128 CBC",     wrapped(__func__, CRP_TestEnDecryptWithAES128_CBC)) \
    X(TC_EnDecryAES128_CTR,      AUTO, "encrypt and decrypt in mode AES128 CTR",     wrapped(__func__, CRP_TestEnDecryptWithAES128_CTR)) \
    X(TC_EnDecryDES_ECB,         AUTO, "encrypt and decrypt in mode DES ECB",        wrapped(__func__, CRP_TestEnDecryptWithDES_ECB)) \
    X(TC_EnDecryDES_CBC,         AUTO, "encrypt and decrypt in mode DES CBC",        wrapped(__func__, CRP_TestEnDecryptWithDES_CBC)) \
    X(TC_EnDecryTDES2_ECB,       AUTO, "encrypt and decrypt in mode TDES2 ECB",      wrapped(__func__, CRP_TestEnDecryptWithTDES2_ECB)) \
    X(TC_EnDecryTDES2_CBC,       AUTO, "encrypt and decrypt in mode TDES2 CBC",      wrapped(__func__, CRP_TestEnDecryptWithTDES2_CBC)) \
    X(TC_EnDecryTDES3_ECB,       AUTO, "encrypt and decrypt in mode TDES3 ECB",      wrapped(__func__, CRP_TestEnDecryptWithTDES3_ECB)) \
    X(TC_EnDecryTDES3_CBC,       AUTO, "encrypt and decrypt in mode TDES3 CBC",      wrapped(__func__, CRP_TestEnDecryptWithTDES3_CBC)) \
    X(TC_EnDecryRC4,             AUTO, "encrypt and decrypt in mode RC4",            wrapped(__func__, CRP_TestEnDecryptWithRC4)) \
    X(TC_EnDecryAES256_ECB,      AUTO, "encrypt and decrypt in mode AES256 ECB",     wrapped(__func__, CRP_TestEnDecryptWithAES256_ECB)) \
    X(TC_EnDecryAES256_CBC,      AUTO, "encrypt and decrypt in mode AES256 CBC",     wrapped(__func__, CRP_TestEnDecryptWithAES256_CBC)) \
    X(TC_EnDecryAES256_CTR,      AUTO, "encrypt and decrypt in mode AES256 CTR",     wrapped(__func__, CRP_TestEnDecryptWithAES256_CTR))
CRYPTO_VARIANTS(TC_VARIANT_FUNCTION)

static constexpr TcCase CryptoModuleCases[] = {
    CRYPTO_VARIANTS(TC_VARIANT_ROW)
};
// clang-format on
static_assert(tcCaseCount(CryptoModuleCases) == 21 && tcAutoCount(CryptoModuleCases) == 21,
              "cases of the module, and those that run by themselves");

const TcModule CryptoModule = {
    testSetup,         testTeardown,
    testCaseSetupImp,  testCaseTeardownImp,
    CryptoModuleCases, tcCaseCount(CryptoModuleCases),
    "Crypto",          "Test module for the Crpto",
    nullptr,
};

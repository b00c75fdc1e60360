// Factory: writing device keys of content protection and service schemes, checking that a key is
// present, and reading the device's serial number. The program holds no key: the operator types the
// path of a key file, and the library reads it. At the end of input a case fails.
#include <stdio.h>

#include "framework/case/check.h"
#include "framework/case/hooks.h"
#include "framework/case/prompt.h"
#include "platform/qlx_factory.h"
#include "testcase/modules.h"

TC_HOOK(testSetup, "setup all resources")
TC_HOOK(testTeardown, "release all resources")

/** Asks for the path of a key file and writes the key. `text` is what a refusal prints. */
static uint32_t writeKeyBase(const char* name, QLX_FacKeyType_e keyType, const char* text) {
    CaseContext tc = {name};
    char keyPath[91];
    zk_log("Please input the key file path to write, the max path length is 90 Bytes:\r\n");
    bool answered = tc_askWord(keyPath, sizeof keyPath);
    TC_ASSERT_TRUE(answered);
    int32_t retTc = QLX_FactoryWritekey(keyType, keyPath);
    TC_ASSERT_RET_TEXT(text, retTc);
    zk_log("key type[%d], path[%s], retTc[%d].\r\n", keyType, keyPath, retTc);
    return TC_RESULT(tc);
}

/** The body of a variant that writes a key of the type. */
#define WRITE_KEY(keyType) \
    writeKeyBase(__func__, keyType, "QLX_FactoryWritekey(" #keyType ", keyPath)")

// clang-format off
#define WRITE_KEY_VARIANTS(X) \
    /* case                             flag  description                     body */ \
    X(TC_Factory_WriteKeys_Netflix,     AUTO, "test write netflix key",       WRITE_KEY(QLX_FACTORYKEY_NETFLIX)) \
    X(TC_Factory_WriteKeys_HDCP22,      AUTO, "test write hdcp2.2 key",       WRITE_KEY(QLX_FACTORYKEY_HDCP22)) \
    X(TC_Factory_WriteKeys_HDCP14,      AUTO, "test write hdcp1.4 key",       WRITE_KEY(QLX_FACTORYKEY_HDCP14)) \
    X(TC_Factory_WriteKeys_WIDEVINE,    AUTO, "test write widevine key",      WRITE_KEY(QLX_FACTORYKEY_WIDEVINE)) \
    X(TC_Factory_WriteKeys_PLAYREADY40, AUTO, "test write playready40 key",   WRITE_KEY(QLX_FACTORYKEY_PLAYREADY40)) \
    X(TC_Factory_WriteKeys_PLAYREADY25, AUTO, "test write playready25 key",   WRITE_KEY(QLX_FACTORYKEY_PLAYREADY25)) \
    X(TC_Factory_WriteKeys_FREEVIEW,    AUTO, "test write freeview key",      WRITE_KEY(QLX_FACTORYKEY_FREEVIEW)) \
    X(TC_Factory_WriteKeys_CIECP,       AUTO, "test write CI+ ECP key",       WRITE_KEY(QLX_FACTORYKEY_CIPLUS_ECP)) \
    X(TC_Factory_WriteKeys_CINOECP,     AUTO, "test write CI+ no ECP key",    WRITE_KEY(QLX_FACTORYKEY_CIPLUS_NON_ECP)) \
    X(TC_Factory_WriteKeys_Youtube,     AUTO, "test write youtube key",       WRITE_KEY(QLX_FACTORYKEY_YOUTUBE)) \
    X(TC_Factory_WriteKeys_Marlin,      AUTO, "test write marlin key",        WRITE_KEY(QLX_FACTORYKEY_MARLIN))
// clang-format on
WRITE_KEY_VARIANTS(TC_VARIANT_FUNCTION)

static uint32_t TC_Factory_CheckKeys(void) {
    CaseContext tc = {__func__};
    int keytype = 0;
    zk_log("Please input the key enum(0~8) which you want to check:\r\n");
    bool answered = scanf("%1d", &keytype) == 1;
    TC_ASSERT_TRUE(answered);
    int32_t retTc = QLX_FactoryCheckKey(static_cast<QLX_FacKeyType_e>(keytype));
    TC_ASSERT_RET_TEXT("QLX_FactoryCheckKey((QLX_FacKeyType_e)keytype)", retTc);
    zk_log("key type[%d], retTc[%d].\r\n", keytype, retTc);
    return TC_RESULT(tc);
}

static uint32_t TC_Factory_GetKeys_ESNID(void) {
    CaseContext tc = {__func__};
    char esnid[128] = "";
    int32_t retTc = QLX_FactoryGetNetflixEsnid(esnid, 128);
    TC_ASSERT_RET_TEXT("QLX_FactoryGetNetflixEsnid(esnid, 128)", retTc);
    zk_log("esnid is [%.127s], retTc[%d].\r\n", esnid, retTc);
    return TC_RESULT(tc);
}

// clang-format off
static constexpr TcCase FactoryModuleCases[] = {
    WRITE_KEY_VARIANTS(TC_VARIANT_ROW)
    TC_CASE(TC_Factory_CheckKeys,     AUTO, "test check keys"),
    TC_CASE(TC_Factory_GetKeys_ESNID, AUTO, "test get netflix esnid"),
};
// clang-format on
static_assert(tcCaseCount(FactoryModuleCases) == 13 && tcAutoCount(FactoryModuleCases) == 13,
              "cases of the module, and those that run by themselves");

const TcModule FactoryModule = {
    testSetup,
    testTeardown,
    nullptr,
    nullptr,
    FactoryModuleCases,
    tcCaseCount(FactoryModuleCases),
    "Factory",
    "Test module for the Factory",
    nullptr,
};

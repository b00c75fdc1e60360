// Factory: writing device keys of content protection and service schemes, checking that a key is
// present, and reading the device's serial number. The program holds no key: the operator types the
// path of a key file, and the library reads it. At the end of input a case fails.
#include <stdio.h>

#include "framework/modules.h"
#include "framework/tc_check.h"
#include "platform/qlx_factory.h"

static uint32_t testSetup(void) {
    zk_log("setup all resources ! \r\n");
    return 0;
}

static uint32_t testTeardown(void) {
    zk_log("release all resources ! \r\n");
    return 0;
}

/** Asks for the path of a key file and writes the key. `text` is what a refusal prints. */
static uint32_t writeKeyBase(const char* function, QLX_FacKeyType_e keyType, const char* text) {
    char keyPath[100] = "";
    zk_log("Please input the key file path to write, the max path length is 90 Bytes:\r\n");
    zk_logFlush();
    if (scanf("%90s", keyPath) != 1) {
        tc_failTrue(function, __LINE__, 0);
        return TC_FAILURE;
    }
    int32_t retTc = QLX_FactoryWritekey(keyType, keyPath);
    if (!tc_checkRet(function, __LINE__, text, retTc))
        return TC_FAILURE;
    zk_log("key type[%d], path[%s], retTc[%d].\r\n", keyType, keyPath, retTc);
    return tc_result(function, TC_SUCCESS);
}

/** The body of a variant that writes a key of the type. */
#define WRITE_KEY(keyType) \
    writeKeyBase(__func__, keyType, "QLX_FactoryWritekey(" #keyType ", keyPath)")

// clang-format off
#define WRITE_KEY_VARIANTS(X) \
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
    uint32_t result = TC_SUCCESS;
    int keytype = 0;
    zk_log("Please input the key enum(0~8) which you want to check:\r\n");
    zk_logFlush();
    bool answered = scanf("%1d", &keytype) == 1;
    TC_ASSERT_TRUE(answered);
    int32_t retTc = QLX_FactoryCheckKey(static_cast<QLX_FacKeyType_e>(keytype));
    TC_ASSERT_RET_TEXT("QLX_FactoryCheckKey((QLX_FacKeyType_e)keytype)", retTc, 0);
    zk_log("key type[%d], retTc[%d].\r\n", keytype, retTc);
    return TC_RESULT(result);
}

static uint32_t TC_Factory_GetKeys_ESNID(void) {
    uint32_t result = TC_SUCCESS;
    char esnid[128] = "";
    int32_t retTc = QLX_FactoryGetNetflixEsnid(esnid, 128);
    TC_ASSERT_RET_TEXT("QLX_FactoryGetNetflixEsnid(esnid, 128)", retTc, 0);
    zk_log("esnid is [%.127s], retTc[%d].\r\n", esnid, retTc);
    return TC_RESULT(result);
}

// clang-format off
static const TcCase FactoryModuleCases[] = {
    WRITE_KEY_VARIANTS(TC_VARIANT_ROW)
    TC_CASE(TC_Factory_CheckKeys,     AUTO, "test check keys"),
    TC_CASE(TC_Factory_GetKeys_ESNID, AUTO, "test get netflix esnid"),
};
// clang-format on
static_assert(tcCaseCount(FactoryModuleCases) == 13, "cases of the module");

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

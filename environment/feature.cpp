#include "environment/conf_reader.h"
#include "environment/config_files.h"
#include "environment/test_env.h"
#include "framework/base/zk_log.h"

TestEnvConfig zk_testConfig;
TestEnvConfig zk_mannualCaseConfig;

int32_t zk_test_load_feature(void) {
    static const struct {
        int place;
        const char* key;
    } features[] = {
#define FEATURE_ROW(place, key) {key, #key},
        FEATURE_LIST(FEATURE_ROW)
#undef FEATURE_ROW
    };
    int32_t result = 0;
    zk_log("=========Feature config======== \r\n");
    for (const auto& feature : features)
        result = get_conf_value_self("FEATURE", feature.key, &zk_testConfig.features[feature.place],
                                     g_configFile.feature);
    return result;
}

void zk_test_get_feature(void* out) {
    *static_cast<const void**>(out) = &zk_testConfig;
}

#include "framework/startup.h"

#include "environment/test_env.h"
#include "testcase/av/av_config.h"
#include "testcase/tuner/tuner_harness.h"

void zk_loadEnvironment(void) {
    zk_test_load_feature();
    zk_test_load_channel_info();
    TC_TUNER_LOAD_CONFIG();
    TC_AV_LOAD_CONFIG();
}

// The program's entry: picks the platform, brings up the hardware library, loads the environment,
// hands all of it to the framework, and waits for the end of the console thread.
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "environment/conf_reader.h"
#include "framework/base/zk_log.h"
#include "framework/platform_select.h"
#include "framework/tc_framework.h"
#include "platform/qlx_sys.h"
#include "program/startup.h"
#include "testcase/modules.h"

static const char programVersion[] = "0.10.16";

/** A text of the common configuration, cut to the size of its place in the record. */
static void loadText(const char* key, char* text, size_t size) {
    char value[CONF_TEXT_SIZE] = "";
    get_conf_sting_self("COMMON", key, value, g_configFile.common);
    snprintf(text, size, "%s", value);
}

static void fillConfig(TcFwConfig* config) {
    loadText("COMMON_TEST_REPORT_FILE", config->reportFile, sizeof config->reportFile);
    loadText("COMMON_CHECKLIST_FILE", config->checklistFile, sizeof config->checklistFile);
    loadText("COMMON_REBOOT_CMD", config->rebootCmd, sizeof config->rebootCmd);
    config->modules = testModules;
    config->moduleCount = TEST_MODULE_COUNT;
    snprintf(config->version, sizeof config->version, "%s", programVersion);
    snprintf(config->compileTime, sizeof config->compileTime, "%s,%s", __DATE__, __TIME__);
}

int main(int argc, char** argv) {
    TcFwConfig config = {};
    int32_t platform = 0;
    zk_holdStandardFiles();
    zk_logInit();
    snprintf(g_configFile.commonDir, sizeof g_configFile.commonDir, "%s", "config/common");
    get_common_config(&g_configFile);
    if (argc < 2) {
        if (select_platform(&g_configFile, &platform) != 0)
            return 0;
    } else if (strcmp(argv[1], "auto") == 0) {
        config.autoTest = 1;
        zk_log("Test case will automatic running in 10s \r\n");
        sleep(10);
        get_conf_value_self("PLATFORM_INFO", "PLATFORM", &platform, g_configFile.autoTestPlatform);
        set_platform(&g_configFile, &platform);
    }
    if (QLX_SysInit() != 0) {
        zk_log("Sorry , init the hal dirver system failed, exit. \r\n");
        return -1;
    }
    zk_loadEnvironment();
    fillConfig(&config);
    zk_test_config(&config);
    while (!zk_test_finihsed())
        sleep(1);
    return 0;
}

#include "framework/tc_framework.h"

#include <pthread.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "framework/base/zk_log.h"
#include "framework/console.h"
#include "framework/monitor.h"
#include "framework/report.h"

enum { REPORT_PATH_MIN = 4 };

template <size_t N>
static void copyText(char (&to)[N], const char (&from)[N]) {
    memcpy(to, from, N);
    to[N - 1] = '\0';
}

static void copyConfig(const TcFwConfig& config) {
    TcFwInstance& fw = tcFwInstance;
    memset(&fw, 0, sizeof fw);
    copyText(fw.reportFile, config.reportFile);
    copyText(fw.checklistFile, config.checklistFile);
    copyText(fw.rebootCmd, config.rebootCmd);
    copyText(fw.version, config.version);
    copyText(fw.compileTime, config.compileTime);
    fw.autoTest = config.autoTest;
    fw.modules = config.modules;
    fw.moduleCount = config.moduleCount;
    fw_setState(FW_NOT_STARTED);
    fw.curModule = -1;
}

static void openReport(void) {
    TcFwInstance& fw = tcFwInstance;
    fw.reportEnabled = strlen(fw.reportFile) >= REPORT_PATH_MIN;
    if (!fw.reportEnabled)
        return;
    if (access(fw.reportFile, W_OK) == 0) {
        zk_log("test report file: %s \r\n", fw.reportFile);
        zk_xlsLoadDataFromTestReport(fw.reportFile);
        zk_log("sheetid=%d, sheet number=%d \r\n", tcXlsData.curSheetId, tcXlsData.sheetCount);
        fw.reportLoaded = 1;
    }
    zk_xlsCreateBook();
}

static int32_t startConsoleThread(void) {
    static pthread_t testThreadId;
    return pthread_create(&testThreadId, nullptr, zk_test_loop, nullptr);
}

static int32_t startAutomated(void) {
    TcFwInstance& fw = tcFwInstance;
    if (!fw.checklistLoaded) {
        zk_log("Auto test must specify the path of checklist file \r\n");
        return -1;
    }
    if (!fw.reportEnabled) {
        zk_log("Auto test must specify the path of test report file \r\n");
        return -1;
    }
    if (pipe(fw.pipeFd) != 0) {
        zk_log("Create pipe between mornitor proc and main proc failed  \r\n");
        return -1;
    }
    zk_log("Will fork a mornitor proc \r\n");
    // What is still in the buffer would be printed by both processes.
    zk_logFlush();
    fw.monitorPid = fork();
    if (fw.monitorPid < 0) {
        zk_log("Fork mornitor proc failed \r\n");
        return -1;
    }
    if (fw.monitorPid == 0) {
        zk_log("This is the space of mornitor proc \r\n");
        runMornitorProc();
    }
    close(fw.pipeFd[0]);
    int32_t result = startConsoleThread();
    zk_log("The pid of mornitor is %d \r\n", fw.monitorPid);
    return result;
}

int32_t zk_test_config(const TcFwConfig* config) {
    if (config == nullptr) {
        zk_log("Invalid args \r\n");
        return -1;
    }
    memset(&tcXlsData, 0, sizeof tcXlsData);
    copyConfig(*config);
    tcFwInstance.checklistLoaded = zk_xlsLoadDataFromChecklist(tcFwInstance.checklistFile);
    openReport();
    return tcFwInstance.autoTest ? startAutomated() : startConsoleThread();
}

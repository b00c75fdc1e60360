/* The framework's own record: what console, runners, monitor and report know of the run. */
#ifndef FRAMEWORK_INSTANCE_H
#define FRAMEWORK_INSTANCE_H

#include <stdint.h>

#include "framework/case/registry.h"

enum {
    FW_PATH_SIZE = 200,
    FW_TEXT_SIZE = 50,
};

enum TcFwState {
    FW_NOT_STARTED = 0,
    FW_MODULE_LIST = 1,
    FW_CASE_LIST = 2,
    FW_FINISHED = 3,
};

/** The framework's one record. Written before the console thread starts, then by that thread. */
struct TcFwInstance {
    const TcModule* const* modules;
    int32_t moduleCount;
    char reportFile[FW_PATH_SIZE];
    char checklistFile[FW_PATH_SIZE];
    char rebootCmd[FW_TEXT_SIZE];
    char version[FW_TEXT_SIZE];
    char compileTime[FW_TEXT_SIZE];
    int32_t autoTest;
    /** TcFwState; read by the initial thread too, see fw_setState. */
    int32_t state;
    /** Index of the selected module, -1 for none. */
    int32_t curModule;
    int32_t checklistLoaded;
    int32_t reportLoaded;
    int32_t reportEnabled;
    /** The pipe to the monitor: read end, write end. */
    int32_t pipeFd[2];
    int32_t monitorPid;
};

extern TcFwInstance tcFwInstance;

/** Changes the state word so that the initial thread sees it. */
void fw_setState(int32_t state);

/** 1 when the console thread is done. */
int32_t zk_test_finihsed(void);

#endif

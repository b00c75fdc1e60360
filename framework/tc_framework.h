/* The framework's own record, and its start. */
#ifndef FRAMEWORK_TC_FRAMEWORK_H
#define FRAMEWORK_TC_FRAMEWORK_H

#include <stdint.h>
#include <sys/types.h>

#include "framework/case/registry.h"

enum {
    FW_PATH_SIZE = 200,
    FW_TEXT_SIZE = 50,
};

/** What main hands to the framework. */
struct TcFwConfig {
    const TcModule* const* modules;
    int32_t moduleCount;
    /** Paths of the workbooks; a report path below four characters means none. */
    char reportFile[FW_PATH_SIZE];
    char checklistFile[FW_PATH_SIZE];
    /** Shell command that reboots the device. */
    char rebootCmd[FW_TEXT_SIZE];
    char version[FW_TEXT_SIZE];
    char compileTime[FW_TEXT_SIZE];
    /** 1: an automated run. */
    int32_t autoTest;
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

/**
 * Starts the framework: loads the workbooks, in an automated run forks the monitor, and starts the
 * console thread. Without a checklist or report an automated run prints why and starts nothing.
 * Returns 0 when the console thread was started, of no use to the caller.
 */
int32_t zk_test_config(const TcFwConfig* config);

/** 1 when the console thread is done. */
int32_t zk_test_finihsed(void);

#endif

/* The framework's start. */
#ifndef FRAMEWORK_TC_FRAMEWORK_H
#define FRAMEWORK_TC_FRAMEWORK_H

#include "framework/instance.h"

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

/**
 * Starts the framework: loads the workbooks, in an automated run forks the monitor, and starts the
 * console thread. Without a checklist or report an automated run prints why and starts nothing.
 * Returns 0 when the console thread was started, of no use to the caller.
 */
int32_t zk_test_config(const TcFwConfig* config);

#endif

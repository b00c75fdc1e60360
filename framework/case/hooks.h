/*
 * Module hooks whose only work is a line on the console: one line for each. `line` is what the
 * module's log says there, or __func__ where it is to be the hook's own name.
 *
 *     TC_HOOK(GPIO_TestTeardown, __func__)
 *     TC_CASE_SETUP_HOOK(testCaseSetupImp, "setup case resources")
 */
#ifndef FRAMEWORK_CASE_HOOKS_H
#define FRAMEWORK_CASE_HOOKS_H

#include <stdint.h>

#include "framework/base/zk_log.h"

/** A module's set-up or tear-down, or what is called after a case. */
#define TC_HOOK(hook, line)          \
    static uint32_t hook(void) {     \
        zk_log("%s ! \r\n", (line)); \
        return 0;                    \
    }

/** What is called before a case. */
#define TC_CASE_SETUP_HOOK(hook, line)                                           \
    static uint32_t hook(const char* /*caseName*/, const char* /*configFile*/) { \
        zk_log("%s ! \r\n", (line));                                             \
        return 0;                                                                \
    }

#endif

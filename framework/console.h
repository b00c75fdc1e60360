/*
 * The console: the thread on which all cases run, and the two-level menu of an interactive run.
 */
#ifndef FRAMEWORK_CONSOLE_H
#define FRAMEWORK_CONSOLE_H

#include <stdint.h>

/** The console thread's body. */
void* zk_test_loop(void*);

/** Enters a module (from 1): runs its set-up and lists its cases. Returns the set-up's result. */
int32_t selectModule(int32_t oneBasedIndex);
/** Leaves it: runs its tear-down. Returns that result. */
int32_t exitFromModule(void);

/** Runs case `index` (from 1), or for 0 all automatic cases of the module. Returns the result. */
int32_t runSelectedCase(int32_t index);
/** The hooks around it. Return the hook's result, 0 without one. */
int32_t runSelectedCaseSetup(int32_t index);
int32_t runSelectedCaseTeardown(int32_t index);

#endif

/* The two runners that walk case tables without an operator. Both run on the console thread. */
#ifndef FRAMEWORK_RUNNER_H
#define FRAMEWORK_RUNNER_H

#include <stdint.h>

/**
 * The unattended run: all modules in table order, driven by the checklist, the report written row
 * by row; goes on behind the place where an earlier process stopped. Returns the last hook's or
 * case's result.
 */
int32_t runAutoCasesInAllModules(void);

/** All automatic cases of the selected module, by the checklist where one is loaded. Returns the
 *  last result. */
int32_t runAutoCasesInSingleModule(void);

/** Prints the console's verdict line of a case known by its number (from 1). */
void printTestcaseVerdict(const char* moduleName, int32_t number, uint32_t result);

#endif

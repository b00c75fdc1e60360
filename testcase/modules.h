/* The records of all modules; each is defined beside its case table. */
#ifndef TESTCASE_MODULES_H
#define TESTCASE_MODULES_H

#include "framework/case/registry.h"
#include "testcase/module_list.h"

#define TC_MODULE_COUNT_ONE(...) +1
enum { TEST_MODULE_COUNT = TC_MODULE_LIST(TC_MODULE_COUNT_ONE, TC_MODULE_COUNT_ONE) };
#undef TC_MODULE_COUNT_ONE

#define TC_MODULE_DECLARE(record, ...) extern const TcModule record;
TC_MODULE_LIST(TC_MODULE_DECLARE, TC_MODULE_DECLARE)
#undef TC_MODULE_DECLARE

/** All modules, in the order of the list. */
extern const TcModule* const testModules[TEST_MODULE_COUNT];

#endif

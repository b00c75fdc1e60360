#include "testcase/modules.h"

#define NOTHING(...)
#define OPEN_RECORD(record, name, description, ...)                           \
    const TcModule record = {nullptr, nullptr, nullptr,     nullptr, nullptr, \
                             0,       name,    description, nullptr};
TC_MODULE_LIST(NOTHING, OPEN_RECORD)

#define ADDRESS(record, ...) &record,
const TcModule* const testModules[TEST_MODULE_COUNT] = {TC_MODULE_LIST(ADDRESS, ADDRESS)};

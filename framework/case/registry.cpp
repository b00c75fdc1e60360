#include "framework/case/registry.h"

const char* volatile zk_currentCaseName;

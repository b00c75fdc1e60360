#ifndef FRAMEWORK_MODULES_H
#define FRAMEWORK_MODULES_H

#include "testcase/modules.h"

#endif

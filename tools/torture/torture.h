/* The torture run as a program: main.cpp runs it on the modules of the certification. */
#ifndef TOOLS_TORTURE_TORTURE_H
#define TOOLS_TORTURE_TORTURE_H

#include "tools/torture/lists.h"

namespace torture {

/** All of main but the choice of modules. */
int run(const Modules& modules, int argc, char** argv);

}  // namespace torture

#endif

// Finds the C library's functions that the virtual clock replaces.
#include "vclock/real.h"

namespace vclock {

RealFunctions realFunctions;

void findRealFunctions() {
#define VCLOCK_REAL_FIND(name) \
    realFunctions.name = reinterpret_cast<decltype(&::name)>(dlsym(RTLD_NEXT, #name));
    VCLOCK_REAL_FUNCTIONS(VCLOCK_REAL_FIND)
#undef VCLOCK_REAL_FIND
    realFunctions.ready = true;
}

}  // namespace vclock

// The one list of the families, in the order in which they are reset and told of.
#include "simulator/families.h"

#define FAMILIES(FAMILY)    \
    FAMILY(familyGpio)      \
    FAMILY(familyI2C)       \
    FAMILY(familyTuner)     \
    FAMILY(familySys)       \
    FAMILY(familyEnv)       \
    FAMILY(familyHdcp)      \
    FAMILY(familyFlash)     \
    FAMILY(familyTeec)      \
    FAMILY(familyPM)        \
    FAMILY(familyDemux)     \
    FAMILY(familyVideo)     \
    FAMILY(familyAudio)     \
    FAMILY(familyDesc)      \
    FAMILY(familyRecord)    \
    FAMILY(familyDmxInject) \
    FAMILY(familyCI)        \
    FAMILY(familyExtIn)     \
    FAMILY(familyVOut)      \
    FAMILY(familyAOut)      \
    FAMILY(familyAfe)

namespace sim {

#define FAMILY(name) extern const Family name;
FAMILIES(FAMILY)
#undef FAMILY

std::vector<const Family*> families() {
#define FAMILY(name) &name,
    return {FAMILIES(FAMILY)};
#undef FAMILY
}

}  // namespace sim

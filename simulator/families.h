/* All families of the device. */
#ifndef SIMULATOR_FAMILIES_H
#define SIMULATOR_FAMILIES_H

#include <vector>

#include "simulator/core/family.h"

namespace sim {

std::vector<const Family*> families();

}  // namespace sim

#endif

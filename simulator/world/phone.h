/*
 * The phone that sends its picture to the device.
 *
 * Event: "miracast RESULT", another phone comes: 1 it authenticates, 2 it fails to.
 */
#ifndef SIMULATOR_WORLD_PHONE_H
#define SIMULATOR_WORLD_PHONE_H

#include <stdint.h>

#include <vector>

#include "simulator/world/world.h"

namespace sim {

/** Takes the results (QLX_HDCPMiracastState) of the phones that nobody has taken yet. */
std::vector<int32_t> takePhones();

}  // namespace sim

#endif

/*
 * What may wake the device from outside: somebody presses a key, a network sends a magic packet.
 *
 * Events: "wakeup SOURCE [DETAIL] [after MS]", see docs/simulator-events.md.
 */
#ifndef SIMULATOR_WORLD_WAKE_UP_H
#define SIMULATOR_WORLD_WAKE_UP_H

#include <stdint.h>

#include <vector>

#include "simulator/world/world.h"

namespace sim {

struct WakeUpSource {
    const char* name;
    /** Bit of the wake-up condition that lets it wake the device. */
    uint32_t condition;
    /** QLX_SysWakeupReason. */
    uint32_t reason;
};

/** All sources outside the device. */
const std::vector<WakeUpSource>& wakeUpSources();

struct WakeUpEvent {
    const WakeUpSource* source;
    /** What the source tells of itself: key code or physical address. */
    uint32_t detail;
    /** Milliseconds into the next suspension or standby; -1: it comes now. */
    int64_t afterMs;
};

/** Takes the events that nobody has taken yet. */
std::vector<WakeUpEvent> takeWakeUps();

}  // namespace sim

#endif

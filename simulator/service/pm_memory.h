/*
 * What the standby controller remembers as long as there is mains power: settings, the RTC, and
 * how the device went down. A file below the device's root, so that a later start of the program
 * finds it.
 */
#ifndef SIMULATOR_SERVICE_PM_MEMORY_H
#define SIMULATOR_SERVICE_PM_MEMORY_H

#include <stdint.h>

namespace sim {

/** A wake-up: its reason, and what the source tells of itself (key code or physical address). */
struct WakeUp {
    uint32_t reason = 0;
    uint32_t detail = 0;
};

struct PmMemory {
    uint32_t bootMode = 0;
    uint32_t condition = 0;
    /** Alarm of the RTC, 0 for none, and the reason that it stands for. */
    uint32_t alarm = 0;
    uint32_t alarmReason = 0;
    /** The RTC in microseconds at a moment, and the calendar at that moment. */
    int64_t rtcUs = 0;
    int64_t calendarUs = 0;
    /** Whether the device went to standby; then, whether it is known already what wakes it, when
     *  that comes after going down, and what it is. */
    bool standby = false;
    bool wakeKnown = false;
    int64_t wakeAfterUs = 0;
    WakeUp wake;
};

/** Reads the memory; a device that never had power has an RTC that shows the calendar. */
PmMemory loadPmMemory();

/** Writes it; complains when it cannot. */
void savePmMemory(const PmMemory& memory);

/** Sets the device's calendar, and keeps the RTC where it is, also over the next power off. */
void setCalendarBesideRtc(int64_t us);

}  // namespace sim

#endif

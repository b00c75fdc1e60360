/*
 * The device's calendar, and what suspension does to it.
 *
 * The clock of the machine that the device runs on is never touched. In virtual time the calendar
 * is that of the virtual clock, and is really set, so that the program's own time() follows. In
 * real time the device keeps an offset of its own, which only its families see.
 *
 * Any thread may call.
 */
#ifndef SIMULATOR_CORE_DEVICE_CLOCK_H
#define SIMULATOR_CORE_DEVICE_CLOCK_H

#include <stdint.h>

namespace sim {

/** Microseconds since 1970. */
int64_t calendarUs();
void setCalendarUs(int64_t us);

/** Lets `us` microseconds of calendar time pass in which the monotonic clock stands still. */
void sleepSuspended(int64_t us);

/** Microseconds on a clock that cannot be set and that counts through suspension. */
int64_t uptimeUs();

/** Takes back what was set and slept where the device keeps the offset itself. */
void resetDeviceClock();

}  // namespace sim

#endif

// What a program may know of the virtual clock that it runs under.
//
// A program needs none of this to run in virtual time. A simulated device that wants to suspend
// looks the function up with dlsym(RTLD_DEFAULT, "vclock_suspend"): absent means real time.
#ifndef VCLOCK_VCLOCK_H
#define VCLOCK_VCLOCK_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Lets the device sleep for ns nanoseconds (0 or more): the calendar (CLOCK_REALTIME, time(),
// gettimeofday()) and CLOCK_BOOTTIME go on by ns, CLOCK_MONOTONIC stands still. Waits for a moment
// of the calendar that has passed by then end at once; all other waits last as long as before.
// Returns 0, or -1 with errno EINVAL for a negative argument and ENOSYS outside virtual time.
// Any thread may call it.
int vclock_suspend(int64_t ns);

#ifdef __cplusplus
}
#endif

#endif

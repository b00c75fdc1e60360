// Times as the C library's calls take and give them.
#ifndef VCLOCK_TIME_ARGUMENTS_H
#define VCLOCK_TIME_ARGUMENTS_H

#include <sys/time.h>
#include <time.h>

#include "vclock/domain.h"

namespace vclock {

// Beyond any date that a program means, and far from overflow when an offset is added.
constexpr int64_t kLatest = INT64_MAX / 2;

inline bool validTime(const timespec* time) {
    return time != nullptr && time->tv_nsec >= 0 && time->tv_nsec < kSecond;
}

inline int64_t toNs(const timespec& time) {
    int64_t seconds = static_cast<int64_t>(time.tv_sec);
    if (seconds > kLatest / kSecond - 1)
        return kLatest;
    if (seconds < 0)
        return 0;
    return seconds * kSecond + time.tv_nsec;
}

inline timespec toTimespec(int64_t ns) {
    timespec time = {};
    time.tv_sec = static_cast<time_t>(ns / kSecond);
    time.tv_nsec = static_cast<long>(ns % kSecond);
    return time;
}

// A deadline so long from now; negative means none.
inline Deadline deadlineIn(int64_t ns) {
    Deadline until;
    if (ns >= 0 && region != nullptr) {
        int64_t now = clockNow(Clock::Monotonic);
        until.ns = ns > kLatest - now ? kLatest : now + ns;
    }
    return until;
}

// The clock of an absolute time-out: the calendar, or the monotonic clock.
inline Deadline deadlineAt(clockid_t clock, const timespec& time) {
    return {clock == CLOCK_REALTIME ? Clock::Calendar : Clock::Monotonic, toNs(time)};
}

}  // namespace vclock

#endif

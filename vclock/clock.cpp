// Replacements of the calls that read, set and wait for the clock.
#include <errno.h>
#include <link.h>
#include <stdint.h>
#include <string.h>
#include <sys/time.h>
#include <time.h>

#include "vclock/domain.h"
#include "vclock/real.h"
#include "vclock/time_arguments.h"
#include "vclock/timers.h"

using namespace vclock;

// Clocks of processor time are not virtual.
static bool virtualClock(clockid_t id, Clock* clock) {
    switch (id) {
        case CLOCK_REALTIME:
        case CLOCK_REALTIME_COARSE:
        case CLOCK_REALTIME_ALARM:
        case CLOCK_TAI:
            *clock = Clock::Calendar;
            return true;
        case CLOCK_MONOTONIC:
        case CLOCK_MONOTONIC_RAW:
        case CLOCK_MONOTONIC_COARSE:
            *clock = Clock::Monotonic;
            return true;
        case CLOCK_BOOTTIME:
        case CLOCK_BOOTTIME_ALARM:
            *clock = Clock::Boot;
            return true;
        default:
            return false;
    }
}

// Also serves the time after the process has left the domain: its clock stands.
static bool readClock(Clock clock, int64_t* now) {
    if (region == nullptr)
        return false;
    Turn turn;
    if (turn)
        clockRead();
    *now = clockNow(clock);
    return true;
}

VCLOCK_REPLACE(int, clock_gettime, clockid_t id, timespec* out) {
    Clock clock;
    int64_t now;
    if (!virtualClock(id, &clock) || !readClock(clock, &now))
        return real().clock_gettime(id, out);
    *out = toTimespec(now);
    return 0;
}

VCLOCK_REPLACE(int, gettimeofday, timeval* out, void*) {
    timespec now;
    replaced_clock_gettime(CLOCK_REALTIME, &now);
    if (out != nullptr) {
        out->tv_sec = now.tv_sec;
        out->tv_usec = static_cast<suseconds_t>(now.tv_nsec / 1000);
    }
    return 0;
}

VCLOCK_REPLACE(time_t, time, time_t* out) {
    timespec now;
    replaced_clock_gettime(CLOCK_REALTIME, &now);
    if (out != nullptr)
        *out = now.tv_sec;
    return now.tv_sec;
}

VCLOCK_REPLACE(int, timespec_get, timespec* out, int base) {
    if (base != TIME_UTC)
        return 0;
    replaced_clock_gettime(CLOCK_REALTIME, out);
    return base;
}

// The virtual calendar may be set by anyone: the host's stays as it is.
VCLOCK_REPLACE(int, clock_settime, clockid_t id, const timespec* time) {
    if (id != CLOCK_REALTIME || !validTime(time) || time->tv_sec < 0) {
        errno = EINVAL;
        return -1;
    }
    if (region != nullptr) {
        Turn turn;
        setCalendar(toNs(*time));
        wakeTimers();
    }
    return 0;
}

VCLOCK_REPLACE(int, settimeofday, const timeval* time, const struct timezone*) {
    if (time == nullptr)
        return 0;
    timespec fine = {time->tv_sec, time->tv_usec * 1000};
    return replaced_clock_settime(CLOCK_REALTIME, &fine);
}

VCLOCK_REPLACE(int, stime, const time_t* time) {
    timespec fine = {*time, 0};
    return replaced_clock_settime(CLOCK_REALTIME, &fine);
}

// Returns 0 or EINTR.
static int sleepUntil(Deadline until) {
    Turn turn;
    if (!turn)
        return 0;
    WaitFor what;
    what.kind = Wait::Sleep;
    what.until = until;
    what.interruptible = what.cancellable = what.endsIfCancelled = true;
    for (;;) {
        if (until.ns <= clockNow(until.clock)) {
            // Even a wait of nothing lets others run, as it does in real time.
            yield();
            return 0;
        }
        Result result = wait(what);
        if (result == Result::Interrupted)
            return EINTR;
        if (result == Result::TimedOut)
            return 0;
    }
}

// Returns 0 or EINTR and what is left.
static int sleepFor(int64_t ns, int64_t* left) {
    Deadline until = deadlineIn(ns);
    int result = sleepUntil(until);
    if (left != nullptr) {
        int64_t now = region != nullptr ? clockNow(Clock::Monotonic) : until.ns;
        *left = until.ns > now ? until.ns - now : 0;
    }
    return result;
}

VCLOCK_REPLACE(int, clock_nanosleep, clockid_t id, int flags, const timespec* time,
               timespec* rest) {
    Clock clock;
    if (!virtualClock(id, &clock) || !validTime(time))
        return EINVAL;
    if (flags & TIMER_ABSTIME)
        return sleepUntil({clock, toNs(*time)});
    int64_t left = 0;
    int result = sleepFor(toNs(*time), &left);
    if (result != 0 && rest != nullptr)
        *rest = toTimespec(left);
    return result;
}

VCLOCK_REPLACE(int, nanosleep, const timespec* time, timespec* rest) {
    int result = replaced_clock_nanosleep(CLOCK_MONOTONIC, 0, time, rest);
    if (result != 0)
        errno = result;
    return result == 0 ? 0 : -1;
}

VCLOCK_REPLACE(int, usleep, useconds_t us) {
    int result = sleepFor(static_cast<int64_t>(us) * 1000, nullptr);
    if (result != 0)
        errno = result;
    return result == 0 ? 0 : -1;
}

VCLOCK_REPLACE(unsigned, sleep, unsigned seconds) {
    int64_t left = 0;
    sleepFor(seconds * kSecond, &left);
    return static_cast<unsigned>((left + kSecond / 2) / kSecond);
}

// The address sanitizer's leak check yields at the end of the process, while it holds all threads,
// to a helper that the domain does not know.
static uintptr_t sanitizerBegin;
static uintptr_t sanitizerEnd;

__attribute__((constructor)) static void findSanitizer() {
    dl_iterate_phdr(
        [](dl_phdr_info* library, size_t, void*) {
            if (strstr(library->dlpi_name, "libasan.so") == nullptr &&
                strstr(library->dlpi_name, "libclang_rt.asan") == nullptr)
                return 0;
            sanitizerBegin = library->dlpi_addr;
            for (int i = 0; i < library->dlpi_phnum; i++) {
                uintptr_t end = library->dlpi_addr + library->dlpi_phdr[i].p_vaddr +
                                library->dlpi_phdr[i].p_memsz;
                if (library->dlpi_phdr[i].p_type == PT_LOAD && end > sanitizerEnd)
                    sanitizerEnd = end;
            }
            return 1;
        },
        nullptr);
}

VCLOCK_REPLACE(int, sched_yield, void) {
    uintptr_t caller = reinterpret_cast<uintptr_t>(__builtin_return_address(0));
    if (caller >= sanitizerBegin && caller < sanitizerEnd)
        return real().sched_yield();
    Turn turn;
    if (turn) {
        yield();
        failedPoll();
    }
    return 0;
}

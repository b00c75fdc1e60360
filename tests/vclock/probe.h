// What the probes share: claims, clocks, and the table that probe.cpp runs by name.
#ifndef TESTS_VCLOCK_PROBE_H
#define TESTS_VCLOCK_PROBE_H

#include <time.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <functional>

constexpr int64_t kMs = 1000000;

#define CHECK(claim)                                                            \
    do {                                                                        \
        if (!(claim)) {                                                         \
            fprintf(stderr, "%s:%d: failed: %s\n", __FILE__, __LINE__, #claim); \
            _exit(1);                                                           \
        }                                                                       \
    } while (0)

inline int64_t now(clockid_t clock = CLOCK_MONOTONIC) {
    timespec time;
    clock_gettime(clock, &time);
    return static_cast<int64_t>(time.tv_sec) * 1000000000 + time.tv_nsec;
}

inline timespec at(int64_t ns) {
    return {static_cast<time_t>(ns / 1000000000), static_cast<long>(ns % 1000000000)};
}

// What a call takes, to the nanosecond.
inline int64_t cost(const std::function<void()>& call) {
    int64_t before = now();
    call();
    return now() - before;
}

struct Probe {
    const char* name;
    void (*run)();
};

// Signals, timers, and programs outside (probe_signals.cpp). Ends with a null name.
extern const Probe signalProbes[];

#endif

#include "simulator/core/device_clock.h"

#include <dlfcn.h>
#include <time.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "simulator/core/sim.h"

namespace sim {

int64_t nowUs() {
    auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

int64_t nowMs() {
    return nowUs() / 1000;
}

void sleepMs(int64_t milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

/** The device's own offset to the machine's calendar, and the time that it was suspended for. */
static std::atomic<int64_t> calendarOffsetUs{0};
static std::atomic<int64_t> suspendedUs{0};

/** The virtual clock's function to suspend by nanoseconds; null in real time. */
static int (*virtualSuspend())(int64_t) {
    using Suspend = int (*)(int64_t);
    static const Suspend suspend = [] {
        Suspend found = reinterpret_cast<Suspend>(dlsym(RTLD_DEFAULT, "vclock_suspend"));
        // Present, but not in force: then the calendar is the machine's.
        return found != nullptr && found(0) == 0 ? found : nullptr;
    }();
    return suspend;
}

int64_t calendarUs() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000000 + now.tv_nsec / 1000 + calendarOffsetUs;
}

void setCalendarUs(int64_t us) {
    timespec then{};
    then.tv_sec = static_cast<time_t>(us / 1000000);
    then.tv_nsec = static_cast<long>(us % 1000000) * 1000;
    if (virtualSuspend() != nullptr && clock_settime(CLOCK_REALTIME, &then) == 0)
        return;
    calendarOffsetUs += us - calendarUs();
}

void sleepSuspended(int64_t us) {
    if (us <= 0)
        return;
    suspendedUs += us;
    if (virtualSuspend() != nullptr)
        virtualSuspend()(us * 1000);
    else
        calendarOffsetUs += us;
}

int64_t uptimeUs() {
    return nowUs() + suspendedUs;
}

void resetDeviceClock() {
    calendarOffsetUs = 0;
    suspendedUs = 0;
}

}  // namespace sim

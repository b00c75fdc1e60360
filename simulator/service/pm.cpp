// Power management: the standby controller with its RTC, suspend to RAM, standby and restart.
//
// Suspend: the device's thread tells the program that it begins, then stands still until a source
// that the wake-up condition allows comes, and tells that it is over. A source whose time is known
// (the RTC's alarm, an event of the outside world that was announced) ends the suspension at that
// time: the calendar goes on by its length, the monotonic clock does not. Without such a source the
// device waits for an event that somebody sends; time goes on meanwhile, for nobody could stop it.
//
// Standby: the process ends with EXIT_STANDBY. What wakes the device then, and when, is in the
// controller's memory, so that the next start of the program finds the reason. A restart ends the
// process with EXIT_RESTART at once.
//
// State rules: nothing needs initialisation. One suspend or standby at a time. An alarm that passes
// while the device is awake does nothing.
//
// A wake-up of the outside world may be announced: it comes at a time of the next suspension or
// standby. One that comes now ends a suspension, tells a program that was started out of standby
// what has woken the device, and is nothing to a device that is awake.
//
// Board file, section PM: ENTER_MS, from the call to the begin of a suspension; RESUME_MS, from its
// end to the report; SHUTDOWN_MS, from the call to the end in standby.
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "common/exit_codes.h"
#include "platform/qlx_pm.h"
#include "simulator/core/board.h"
#include "simulator/core/device_clock.h"
#include "simulator/core/family.h"
#include "simulator/core/outside.h"
#include "simulator/core/sim.h"
#include "simulator/service/pm_memory.h"
#include "simulator/world/wake_up.h"

namespace {

constexpr int64_t second = 1000000;
/** How often a device that waits for the outside world looks for it. */
constexpr int64_t lookMs = 100;
constexpr uint32_t allConditions = QLX_SYS_WAKEUP_COND_IR | QLX_SYS_WAKEUP_COND_KEYPAD |
                                   QLX_SYS_WAKEUP_COND_CEC | QLX_SYS_WAKEUP_COND_RTC | 16 |
                                   QLX_SYS_WAKEUP_COND_LAN | QLX_SYS_WAKEUP_COND_WLAN;

/** A wake-up that is known to come. */
struct Announced {
    int64_t afterUs;
    uint32_t condition;
    sim::WakeUp wake;
};

enum class Power { Awake, Leaving, Suspended, GoingDown };

struct PmState {
    std::mutex mutex;
    std::condition_variable changed;
    bool loaded = false;
    sim::PmMemory memory;
    /** The RTC's value and the uptime at one moment. */
    int64_t rtcUs = 0;
    int64_t rtcUptimeUs = 0;
    Power power = Power::Awake;
    /** What has woken the device last. */
    sim::WakeUp wake;
    std::vector<Announced> announced;
    /** A wake-up that came while the device waited for one. */
    bool woken = false;
    bool abandoned = false;
    sim::EventThread thread{"pm"};
};

PmState& raw() {
    static PmState* instance = new PmState;
    return *instance;
}

void setRtc(PmState& s, int64_t rtcUs) {
    s.rtcUs = rtcUs;
    s.rtcUptimeUs = sim::uptimeUs();
}

int64_t rtcNowUs(const PmState& s) {
    return s.rtcUs + sim::uptimeUs() - s.rtcUptimeUs;
}

/** Keeps what was changed. */
void save(PmState& s) {
    s.memory.rtcUs = rtcNowUs(s);
    s.memory.calendarUs = sim::calendarUs();
    sim::savePmMemory(s.memory);
}

/** The state with the controller's memory read; its lock is held. On the first use after power on
 *  this tells what has woken the device. */
PmState& state() {
    PmState& s = raw();
    if (s.loaded)
        return s;
    s.loaded = true;
    s.memory = sim::loadPmMemory();
    // The RTC went on while no program ran; a calendar that was set back since does not turn it.
    int64_t passedUs = std::max<int64_t>(0, sim::calendarUs() - s.memory.calendarUs);
    if (s.memory.standby && s.memory.wakeKnown) {
        passedUs = std::max(passedUs, s.memory.wakeAfterUs);
        s.wake = s.memory.wake;
        s.memory.standby = false;
    }
    setRtc(s, s.memory.rtcUs + passedUs);
    if (s.wake.reason != 0)
        save(s);
    return s;
}

/** A standby of which nothing has told what ended it was ended by mains power. */
void settleStandby(PmState& s) {
    if (!s.memory.standby)
        return;
    s.memory.standby = false;
    save(s);
}

/** The first wake-up that is known to come and that the condition allows; false when none is. What
 *  was announced is used up. */
bool nextWakeUp(PmState& s, Announced* next) {
    std::vector<Announced> known;
    known.swap(s.announced);
    // The RTC counts whole seconds: its alarm comes when that second begins, or is there already.
    int64_t alarmUs = static_cast<int64_t>(s.memory.alarm) * second;
    int64_t nowUs = rtcNowUs(s);
    if (s.memory.alarm != 0 && alarmUs / second >= nowUs / second)
        known.push_back({std::max<int64_t>(0, alarmUs - nowUs),
                         QLX_SYS_WAKEUP_COND_RTC,
                         {s.memory.alarmReason, 0}});
    bool found = false;
    for (const Announced& one : known) {
        if ((one.condition & s.memory.condition) == 0 || (found && one.afterUs >= next->afterUs))
            continue;
        *next = one;
        found = true;
    }
    return found;
}

void tell(QLX_SysStandbyCallback callback, void* userData, int32_t standbyState) {
    if (callback == nullptr)
        return;
    sim::deliver("StandbyState", "", {sim::value("state", &standbyState)},
                 [&] { callback(standbyState, userData); });
}

/** On the device's thread: waits until somebody wakes the device; false when it is given up. */
bool waitForOutsideWorld() {
    for (;;) {
        {
            std::unique_lock<std::mutex> lock(raw().mutex);
            if (raw().woken || raw().abandoned)
                return raw().woken;
            raw().changed.wait_for(lock, std::chrono::milliseconds(lookMs));
        }
        sim::takeOutsideEvents();
    }
}

/** On the device's thread: one suspension from its begin to its end. */
void suspend(QLX_SysStandbyCallback callback, void* userData) {
    tell(callback, userData, QLX_SYS_STANDBY_ENTER_STR);
    Announced next{};
    bool known;
    {
        std::lock_guard<std::mutex> lock(raw().mutex);
        PmState& s = state();
        s.power = Power::Suspended;
        known = nextWakeUp(s, &next) && !s.woken;
    }
    if (known)
        sim::sleepSuspended(next.afterUs);
    else if (!waitForOutsideWorld())
        return;
    sim::sleepMs(sim::board().number("PM", "RESUME_MS"));
    {
        std::lock_guard<std::mutex> lock(raw().mutex);
        if (raw().abandoned)
            return;
        if (known)
            raw().wake = next.wake;
        raw().power = Power::Awake;
    }
    tell(callback, userData, QLX_SYS_STANDBY_EXIT_STR);
}

/** Ends the process as the device's power does: nothing of the program runs on. */
[[noreturn]] void goDown(const char* what, int status) {
    sim::complain("%s", what);
    fflush(stderr);
    _exit(status);
}

/** On the device's thread: the device goes to standby. */
void shutDown() {
    {
        std::lock_guard<std::mutex> lock(raw().mutex);
        PmState& s = state();
        Announced next{};
        s.memory.standby = true;
        s.memory.wakeKnown = nextWakeUp(s, &next);
        s.memory.wakeAfterUs = next.afterUs;
        s.memory.wake = next.wake;
        save(s);
    }
    goDown("the device is in standby", EXIT_STANDBY);
}

/** A wake-up that comes now. The lock is held. */
void wakeNow(PmState& s, uint32_t condition, const sim::WakeUp& wake) {
    if ((s.memory.condition & condition) == 0)
        return;
    if (s.power == Power::Leaving || s.power == Power::Suspended) {
        s.wake = wake;
        s.woken = true;
        s.changed.notify_all();
    } else if (s.memory.standby) {
        // The program was started out of a standby of which nothing was known to end it.
        s.wake = wake;
        s.memory.standby = false;
        save(s);
    }
}

/** Somebody outside has done what may wake the device, or will. */
void wakeUpCame() {
    for (const sim::WakeUpEvent& event : sim::takeWakeUps()) {
        std::lock_guard<std::mutex> lock(raw().mutex);
        sim::WakeUp wake{event.source->reason, event.detail};
        if (event.afterMs >= 0)
            state().announced.push_back({event.afterMs * 1000, event.source->condition, wake});
        else
            wakeNow(state(), event.source->condition, wake);
    }
}

const sim::WorldListener onWakeUp{sim::wakeUpPart, wakeUpCame};

/** Sets a register of the controller and keeps it. */
void store(uint32_t sim::PmMemory::*field, uint32_t value) {
    std::lock_guard<std::mutex> lock(raw().mutex);
    PmState& s = state();
    s.memory.*field = value;
    save(s);
}

uint32_t load(uint32_t sim::PmMemory::*field) {
    std::lock_guard<std::mutex> lock(raw().mutex);
    return state().memory.*field;
}

/** What a wake-up by `reason` told of itself; false when the last one was another. */
bool detailOf(uint32_t reason, uint32_t* detail) {
    std::lock_guard<std::mutex> lock(raw().mutex);
    *detail = state().wake.detail;
    return state().wake.reason == reason;
}

}  // namespace

int32_t QLX_SysEnterStandby(uint32_t mode, QLX_SysStandbyCallback callback, void* userData) {
    SIM_ENTRY("mode=%u callback=%s userData=%s", mode, sim::showPointer(callback),
              sim::showPointer(userData));
    if (mode > QLX_SYS_STANDBY_MODE_STR)
        SIM_RETURN(QLX_PM_ERR_INVALID_PARA);
    std::lock_guard<std::mutex> lock(raw().mutex);
    PmState& s = state();
    if (s.power != Power::Awake)
        SIM_RETURN(QLX_FAILED);
    settleStandby(s);
    if (mode == QLX_SYS_STANDBY_MODE_STR) {
        s.power = Power::Leaving;
        s.woken = false;
        s.thread.post(&s, sim::board().number("PM", "ENTER_MS"),
                      [callback, userData] { suspend(callback, userData); });
    } else {
        s.power = Power::GoingDown;
        s.thread.post(&s, sim::board().number("PM", "SHUTDOWN_MS"), shutDown);
    }
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysSetWakeupCondition(uint32_t condition) {
    SIM_ENTRY("condition=0x%x", condition);
    if ((condition & ~allConditions) != 0)
        SIM_RETURN(QLX_PM_ERR_INVALID_PARA);
    store(&sim::PmMemory::condition, condition);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysGetWakeupCondition(uint32_t* condition) {
    SIM_ENTRY("condition=%s", sim::showPointer(condition));
    if (condition == nullptr)
        SIM_RETURN(QLX_PM_ERR_INVALID_PARA);
    *condition = load(&sim::PmMemory::condition);
    simCall.output({sim::value("condition", condition)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysGetWakeupReason(uint32_t* reason) {
    SIM_ENTRY("reason=%s", sim::showPointer(reason));
    if (reason == nullptr)
        SIM_RETURN(QLX_PM_ERR_INVALID_PARA);
    {
        std::lock_guard<std::mutex> lock(raw().mutex);
        settleStandby(state());
        *reason = state().wake.reason;
    }
    simCall.output({sim::value("reason", reason)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysGetWakeupIRKey(uint32_t* key) {
    SIM_ENTRY("key=%s", sim::showPointer(key));
    if (key == nullptr)
        SIM_RETURN(QLX_PM_ERR_INVALID_PARA);
    if (!detailOf(QLX_SYS_WAKEUP_REASON_IR, key))
        SIM_RETURN(QLX_PM_ERR_NOT_FOUND);
    simCall.output({sim::value("key", key)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysGetWakupCECPhysicalAdress(uint32_t* address) {
    SIM_ENTRY("address=%s", sim::showPointer(address));
    if (address == nullptr)
        SIM_RETURN(QLX_PM_ERR_INVALID_PARA);
    if (!detailOf(QLX_SYS_WAKEUP_REASON_CEC, address))
        SIM_RETURN(QLX_PM_ERR_NOT_FOUND);
    simCall.output({sim::value("address", address)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysPMRTCSetTime(uint32_t time) {
    SIM_ENTRY("time=%u", time);
    std::lock_guard<std::mutex> lock(raw().mutex);
    PmState& s = state();
    setRtc(s, static_cast<int64_t>(time) * second);
    save(s);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysPMRTCGetTime(uint32_t* time) {
    SIM_ENTRY("time=%s", sim::showPointer(time));
    if (time == nullptr)
        SIM_RETURN(QLX_PM_ERR_INVALID_PARA);
    {
        std::lock_guard<std::mutex> lock(raw().mutex);
        *time = static_cast<uint32_t>(rtcNowUs(state()) / second);
    }
    simCall.output({sim::value("time", time)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysPMRTCSetWakeupTime(uint32_t time) {
    SIM_ENTRY("time=%u", time);
    store(&sim::PmMemory::alarm, time);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysPMRTCGetWakeupTime(uint32_t* time) {
    SIM_ENTRY("time=%s", sim::showPointer(time));
    if (time == nullptr)
        SIM_RETURN(QLX_PM_ERR_INVALID_PARA);
    *time = load(&sim::PmMemory::alarm);
    simCall.output({sim::value("time", time)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysPMRTCClearWakeupTime(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    store(&sim::PmMemory::alarm, 0);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysPMRTCSetWakeupReason(uint32_t reason) {
    SIM_ENTRY("reason=%u", reason);
    if (reason < QLX_SYS_WAKEUP_REASON_RTC_NO_REASON || reason > QLX_SYS_WAKEUP_REASON_RTC_OTHER)
        SIM_RETURN(QLX_PM_ERR_INVALID_PARA);
    store(&sim::PmMemory::alarmReason, reason);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysSetColdPowerOnBootMode(uint32_t mode) {
    SIM_ENTRY("mode=%u", mode);
    if (mode > QLX_SYS_COLDPOWERON_BOOTMODE_LASTSTATUS)
        SIM_RETURN(QLX_PM_ERR_INVALID_PARA);
    store(&sim::PmMemory::bootMode, mode);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysGetColdPowerOnBootMode(uint32_t* mode) {
    SIM_ENTRY("mode=%s", sim::showPointer(mode));
    if (mode == nullptr)
        SIM_RETURN(QLX_PM_ERR_INVALID_PARA);
    *mode = load(&sim::PmMemory::bootMode);
    simCall.output({sim::value("mode", mode)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysRestartTV(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    {
        std::lock_guard<std::mutex> lock(raw().mutex);
        save(state());
    }
    simCall.result(QLX_SUCCESS);
    goDown("the device restarts", EXIT_RESTART);
}

void sim::setCalendarBesideRtc(int64_t us) {
    std::lock_guard<std::mutex> lock(raw().mutex);
    PmState& s = state();
    sim::setCalendarUs(us);
    save(s);
}

static void reset() {
    {
        std::lock_guard<std::mutex> lock(raw().mutex);
        raw().abandoned = true;
        raw().changed.notify_all();
    }
    raw().thread.cancelAll();
    std::lock_guard<std::mutex> lock(raw().mutex);
    PmState& s = raw();
    s.abandoned = s.woken = s.loaded = false;
    s.power = Power::Awake;
    s.wake = sim::WakeUp();
    s.announced.clear();
}

static void describe(std::string* out) {
    std::lock_guard<std::mutex> lock(raw().mutex);
    if (raw().power == Power::GoingDown)
        *out += "PM going to standby\n";
    else if (raw().power != Power::Awake)
        *out += "PM suspended\n";
}

namespace sim {

extern const Family familyPM = {reset, describe};

}  // namespace sim

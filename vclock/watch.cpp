// What a waiting thread does at times of real time: it looks for processes that were killed, lets
// time go on at the pace of programs outside, and sees whether one thread keeps all others waiting.
// And how all end when nobody can go on.
#include "common/exit_codes.h"
#include "vclock/domain_internal.h"
#include "vclock/real.h"

namespace vclock {

constexpr int64_t kMs = 1000000;
constexpr int64_t kDeathPeriod = 20 * kMs;
constexpr int64_t kProgramPeriod = 2 * kMs;

int64_t realNow() {
    timespec now = {};
    real().clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * kSecond + now.tv_nsec;
}

// ---- The watch ----

bool takeWatch() {
    if (self.nested)
        return true;
    std::atomic<uint32_t>& watcher = region->processes[myProcess - 1].watcher;
    uint32_t nobody = 0;
    return watcher.load(std::memory_order_relaxed) == self.slot ||
           watcher.compare_exchange_strong(nobody, self.slot);
}

void dropWatch() {
    std::atomic<uint32_t>& watcher = region->processes[myProcess - 1].watcher;
    uint32_t me = self.slot;
    if (watcher.load(std::memory_order_relaxed) == me)
        watcher.compare_exchange_strong(me, 0);
}

void passWatch() {
    if (!region->severalProcesses || region->processes[myProcess - 1].watcher.load() != 0)
        return;
    for (uint32_t slot = 1; slot <= region->slotsUsed; slot++) {
        const ThreadSlot& thread = slotAt(slot);
        if (thread.process == myProcess - 1 && slot != self.slot &&
            (thread.state == State::Waiting || thread.state == State::Ready)) {
            kick(slot);
            return;
        }
    }
}

int64_t watchPeriod() {
    if (region->severalProcesses && programsRunning())
        return kProgramPeriod;
    if (region->severalProcesses || region->signalWaits || region->stall.spins)
        return kDeathPeriod;
    return region->patience / 4 < kSecond ? region->patience / 4 + kMs : kSecond;
}

void keepWatch() {
    if (region->severalProcesses)
        findDeaths();
    uint32_t next = 0;
    {
        Locked lock;
        if (region->running == 0 && !region->finished) {
            // What is waited for may have come from outside.
            if (region->signalWaits || programsRunning())
                region->activity++;
            next = dispatch(true);
        }
    }
    kick(next);
    lookForStall();
}

// ---- The end of all ----

// The waiting thread with the lowest number above this one; 0 if there is none.
static uint32_t nextToReport(uint32_t number) {
    uint32_t best = 0;
    for (uint32_t slot = 1; slot <= region->slotsUsed; slot++) {
        const ThreadSlot& thread = slotAt(slot);
        if (thread.state == State::Waiting && thread.kind != Wait::Timer &&
            thread.number > number &&
            region->processes[thread.process].state == ProcessState::Live &&
            (best == 0 || thread.number < slotAt(best).number))
            best = slot;
    }
    return best;
}

uint32_t beginReport() {
    region->reporting = 1;
    reportHeader();
    uint32_t first = nextToReport(0);
    region->running.store(first);
    return first;
}

void endWithAll() {
    for (uint32_t slot = 1; slot <= region->slotsUsed; slot++) {
        if (slotAt(slot).state != State::Free && slotAt(slot).process != myProcess - 1)
            kick(slot);
    }
    flushOutput();
    real()._exit(static_cast<int>(region->finished.load()));
    __builtin_unreachable();
}

void takePartInReport() {
    ThreadSlot& me = slotAt(self.slot);
    reportThread(me);
    uint32_t next = 0;
    {
        Locked lock;
        next = nextToReport(me.number);
        if (next != 0)
            region->running.store(next);
    }
    if (next != 0) {
        kick(next);
        return;
    }
    region->finished = EXIT_DEADLOCK;
    endWithAll();
}

}  // namespace vclock

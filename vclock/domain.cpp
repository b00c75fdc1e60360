// The token: who runs, who waits, and how time jumps when all wait.
#include "vclock/domain.h"

#include <errno.h>
#include <limits.h>
#include <linux/futex.h>
#include <sys/syscall.h>

#include "common/exit_codes.h"
#include "vclock/domain_internal.h"
#include "vclock/real.h"

namespace vclock {

// A waiting thread without a reason to look around sooner does so this often.
constexpr int64_t kIdlePeriod = 2 * kSecond;

// Spinning: so many looks at the clock, or tries in vain, without a wait are taken for a loop that
// waits by polling. From then on each costs time, a small part of what the loop took already.
constexpr uint32_t kClockReads = 10000;
constexpr uint32_t kFailedPolls = 200;
constexpr int64_t kSmallestCreep = 1000;
constexpr int64_t kLargestCreep = 1000000;

Region* region;
__thread Self self;

ThreadSlot& slotAt(uint32_t slot) {
    return region->threads[slot - 1];
}

// A slot that says it runs but has no token belongs to a change that a kill cut short.
static void repair() {
    for (uint32_t i = 0; i < region->slotsUsed; i++) {
        ThreadSlot& slot = region->threads[i];
        if (slot.state == State::Running && region->running != i + 1)
            slot.state = State::Ready;
    }
}

Locked::Locked() {
    self.locked = true;
    if (real().pthread_mutex_lock(&region->lock) == EOWNERDEAD) {
        repair();
        pthread_mutex_consistent(&region->lock);
    }
}

int futexWait(std::atomic<uint32_t>* word, uint32_t seen, int64_t ns) {
    int saved = errno;
    timespec limit = {static_cast<time_t>(ns / kSecond), static_cast<long>(ns % kSecond)};
    long result =
        real().syscall(SYS_futex, word, FUTEX_WAIT, seen, ns > 0 ? &limit : nullptr, nullptr, 0);
    int error = result < 0 ? errno : 0;
    errno = saved;
    return error;
}

void futexBump(std::atomic<uint32_t>* word) {
    word->fetch_add(1);
    real().syscall(SYS_futex, word, FUTEX_WAKE, INT_MAX, nullptr, nullptr, 0);
}

void kick(uint32_t slot) {
    if (slot == 0 || slot == self.slot)
        return;
    int saved = errno;
    futexBump(&slotAt(slot).wake);
    errno = saved;
}

void makeReady(ThreadSlot& slot, Result result) {
    slot.state = State::Ready;
    slot.result = result;
    slot.order = ++region->order;
}

static int64_t offsetOf(Clock clock) {
    switch (clock) {
        case Clock::Calendar:
            return region->calendarOffset.load(std::memory_order_relaxed);
        case Clock::Boot:
            return region->suspended.load(std::memory_order_relaxed);
        default:
            return 0;
    }
}

// When a wait ends, on the monotonic clock; the calendar may have been set since it began.
static int64_t dueTime(const ThreadSlot& slot) {
    return slot.clock == Clock::Monotonic || slot.deadline == kForever
               ? slot.deadline
               : slot.deadline - offsetOf(slot.clock);
}

// xorshift64*
static uint32_t randomBelow(uint32_t limit) {
    uint64_t x = region->random;
    x ^= x >> 12;
    x ^= x << 25;
    x ^= x >> 27;
    region->random = x;
    return static_cast<uint32_t>((x * 2685821657736338717ull) >> 32) % limit;
}

struct Census {
    uint32_t ready = 0;       // how many
    uint32_t firstReady = 0;  // slot with the lowest sequence number
    uint32_t firstLeaving = 0;
    uint32_t firstDue = 0;
    uint32_t waiting = 0;
    int64_t due = kForever;
    bool timeHeld = false;
    bool outside = false;
    bool signals = false;  // somebody waits for a signal, which may come from anywhere
};

static bool earlier(uint32_t slot, uint32_t than) {
    return than == 0 || slotAt(slot).order < slotAt(than).order;
}

static bool mayRun(const ThreadSlot& thread) {
    return thread.state == State::Ready && thread.inHandler == 0 &&
           region->processes[thread.process].state == ProcessState::Live;
}

namespace {
enum class Exiting { None, Some, Awaited };
}

// Processes that have left the domain and that the kernel has still to end. Awaited: the parent
// handles the signal that then comes, for which time must not jump.
static Exiting exiting() {
    Exiting found = Exiting::None;
    for (uint32_t i = 0; region->severalProcesses && i < kMaxProcesses; i++) {
        const ProcessSlot& process = region->processes[i];
        if (process.state != ProcessState::Exiting)
            continue;
        if (isAwaited(process))
            return Exiting::Awaited;
        found = Exiting::Some;
    }
    return found;
}

static Census takeCensus() {
    Census census;
    for (uint32_t slot = 1; slot <= region->slotsUsed; slot++) {
        const ThreadSlot& thread = slotAt(slot);
        if (thread.state == State::Free ||
            region->processes[thread.process].state != ProcessState::Live)
            continue;
        if (mayRun(thread)) {
            census.ready++;
            if (earlier(slot, census.firstReady))
                census.firstReady = slot;
        } else if (thread.state == State::Leaving) {
            if (earlier(slot, census.firstLeaving))
                census.firstLeaving = slot;
        } else if (thread.state == State::Outside) {
            census.outside = true;
            census.timeHeld = census.timeHeld || thread.holdsTime != 0;
        } else if (thread.state == State::Waiting && thread.kind != Wait::Timer) {
            census.waiting++;
            census.signals = census.signals || thread.kind == Wait::Signal;
        }
        if (thread.state == State::Waiting) {
            int64_t due = dueTime(thread);
            if (due < census.due ||
                (due == census.due && due != kForever && earlier(slot, census.firstDue))) {
                census.due = due;
                census.firstDue = slot;
            }
        }
    }
    census.timeHeld = census.timeHeld || exiting() == Exiting::Awaited;
    return census;
}

static uint32_t kthReady(uint32_t k) {
    for (uint32_t slot = 1; slot <= region->slotsUsed; slot++) {
        const ThreadSlot& thread = slotAt(slot);
        if (mayRun(thread) && k-- == 0)
            return slot;
    }
    return 0;
}

// Time jumps to the next deadline; all that are due become ready, the earliest first.
static void advance(int64_t due) {
    int64_t now = region->now.load(std::memory_order_relaxed);
    if (due > now)
        region->now.store(now = due);
    for (;;) {
        uint32_t first = 0;
        int64_t firstTime = kForever;
        for (uint32_t slot = 1; slot <= region->slotsUsed; slot++) {
            const ThreadSlot& thread = slotAt(slot);
            if (thread.state != State::Waiting)
                continue;
            int64_t time = dueTime(thread);
            if (time <= now &&
                (time < firstTime || first == 0 || (time == firstTime && earlier(slot, first)))) {
                first = slot;
                firstTime = time;
            }
        }
        if (first == 0)
            return;
        makeReady(slotAt(first), Result::TimedOut);
        if (traceFile >= 0)
            traceLine("due", slotAt(first));
    }
}

// While programs outside run, time goes on no faster than theirs.
static bool realTimeHasPassed(int64_t due) {
    int64_t now = region->now.load(std::memory_order_relaxed);
    int64_t real = realNow();
    if (region->paceReal == 0 || region->paceFrom != now) {
        region->paceFrom = now;
        region->paceReal = real;
    }
    return real - region->paceReal >= due - now;
}

// Before a deadlock is told, whoever waits for a descriptor looks whether a program outside has the
// other end of it: once, for as long as nobody does anything else.
static uint32_t lookLast() {
    if (region->lastLook == region->activity + uint64_t{1})
        return 0;
    region->lastLook = region->activity + uint64_t{1};
    uint32_t count = 0;
    for (uint32_t slot = 1; slot <= region->slotsUsed; slot++) {
        ThreadSlot& thread = slotAt(slot);
        if (thread.state == State::Waiting && thread.kind == Wait::Descriptor) {
            makeReady(thread, Result::LastLook);
            count++;
        }
    }
    return count;
}

// Whoever waits for a descriptor or a signal looks again before time goes on, if anybody did
// anything since: writes to pipes reach the kernel in many ways, and only it knows what can be
// read.
static uint32_t lookAgain() {
    uint32_t count = 0;
    for (uint32_t slot = 1; slot <= region->slotsUsed; slot++) {
        ThreadSlot& thread = slotAt(slot);
        if (thread.state == State::Waiting && thread.looked != region->activity &&
            (thread.kind == Wait::Descriptor || thread.kind == Wait::Signal)) {
            makeReady(thread, Result::Retry);
            thread.looked = region->activity;
            count++;
        }
    }
    return count;
}

static uint32_t grant(uint32_t slot) {
    ThreadSlot& thread = slotAt(slot);
    thread.state = State::Running;
    region->running.store(slot);
    if (traceFile >= 0)
        traceLine("run", thread);
    return slot;
}

// All processes are to end with this status. Some waiting thread hears of it first, and tells all.
static uint32_t finish(int status) {
    region->finished = static_cast<uint32_t>(status);
    region->running.store(0);
    uint32_t first = 0;
    for (uint32_t slot = region->slotsUsed; slot > 0; slot--) {
        if (slotAt(slot).state == State::Waiting)
            first = slot;
    }
    return first;
}

uint32_t dispatch(bool deathsKnown) {
    for (;;) {
        Census census = takeCensus();
        if (census.ready > 0)
            return grant(region->seeded && census.ready > 1 ? kthReady(randomBelow(census.ready))
                                                            : census.firstReady);
        if (census.firstLeaving != 0)
            return grant(census.firstLeaving);
        if (lookAgain() != 0)
            continue;
        if (census.firstDue != 0 && !census.timeHeld) {
            // A program outside may be what is waited for: it gets as much time.
            if (region->severalProcesses && programsRunning() && !realTimeHasPassed(census.due)) {
                region->running.store(0);
                return 0;
            }
            if (census.due > region->limit) {
                reportLimit();
                return finish(EXIT_LIMIT);
            }
            advance(census.due);
            continue;
        }
        region->running.store(0);
        if (census.outside || census.waiting == 0 || census.signals || programsRunning())
            return 0;
        // A process that was just killed, or is about to end, may be the reason: a waiting thread
        // looks for it first.
        if (region->severalProcesses && (!deathsKnown || exiting() != Exiting::None))
            return 0;
        if (lookLast() != 0)
            continue;
        // Every thread waits, and nothing will ever come: each says in turn where it stands.
        return beginReport();
    }
}

Locked::~Locked() {
    real().pthread_mutex_unlock(&region->lock);
    self.locked = false;
    if (__builtin_expect(self.putOff, 0))
        takePutOff();
}

void awaitTurn() {
    for (;;) {
        // A signal handler may have forked, and be another thread in the child.
        ThreadSlot& me = slotAt(self.slot);
        uint32_t seen = me.wake.load();
        // The number tells whether the slot is still ours: a process that ends has given it up.
        if (region->running.load() == self.slot && me.number == self.number) {
            if (!region->reporting || me.state == State::Running)
                break;
            takePartInReport();
            continue;
        }
        if (region->finished)
            endWithAll();
        bool watching = takeWatch();
        if (futexWait(&me.wake, seen, watching ? watchPeriod() : kIdlePeriod) == ETIMEDOUT)
            keepWatch();
    }
    slotAt(self.slot).returning = 0;
    dropWatch();
}

// Whether a signal handler, which ran before the wait could begin, interrupts it.
static bool isInterrupted(const WaitFor& what) {
    return what.interruptible && (what.restartable ? self.interruptions != what.interruptions
                                                   : self.handled != what.handled);
}

Result wait(const WaitFor& what) {
    if (region == nullptr || self.slot == 0)
        return Result::TimedOut;
    ThreadSlot& me = slotAt(self.slot);
    uint32_t next;
    {
        Locked lock;
        me.kind = what.kind;
        me.object = what.object;
        me.deadline = what.until.ns;
        me.clock = what.until.clock;
        me.address = reinterpret_cast<uintptr_t>(what.address);
        me.owner = what.owner;
        me.interruptible = what.interruptible;
        me.restartable = what.restartable;
        me.cancellable = what.cancellable;
        if (!what.lookedInVain)
            region->activity++;
        me.looked = region->activity;
        if (what.unless != nullptr && *what.unless != 0)
            return Result::Retry;
        if (isInterrupted(what))
            return Result::Interrupted;
        self.handing = true;
        me.spins = 0;
        me.order = ++region->order;
        me.state = State::Waiting;
        if (traceFile >= 0)
            traceLine("wait", me);
        next = dispatch();
    }
    kick(next);
    awaitTurn();
    self.clockReads = self.failedPolls = 0;
    self.creptSince = 0;
    Result result = slotAt(self.slot).result;
    self.handing = false;
    if (result != Result::Cancelled)
        return result;
    if (what.endsIfCancelled)
        real().pthread_testcancel();
    return Result::Retry;
}

void yield() {
    ThreadSlot& me = slotAt(self.slot);
    uint32_t next;
    {
        Locked lock;
        self.handing = true;
        makeReady(me, Result::Woken);
        region->activity++;
        next = dispatch();
    }
    kick(next);
    awaitTurn();
    self.handing = false;
}

// The thread polls instead of waiting: it sleeps for a small part of the time that it polled
// already, so that what it polls for can come about.
static void creep() {
    int64_t now = region->now.load(std::memory_order_relaxed);
    Self before = self;
    if (before.creptSince == 0)
        before.creptSince = now;
    int64_t step = (now - before.creptSince) / 128;
    step = step < kSmallestCreep ? kSmallestCreep : step > kLargestCreep ? kLargestCreep : step;
    WaitFor what;
    what.until.ns = now + step;
    wait(what);
    self.clockReads = before.clockReads;
    self.failedPolls = before.failedPolls;
    self.creptSince = before.creptSince;
}

void failedPoll() {
    if (self.slot != 0 && ++self.failedPolls > kFailedPolls)
        creep();
}

void clockRead() {
    if (self.slot != 0 && ++self.clockReads > kClockReads)
        creep();
}

static ThreadSlot* firstWaiting(Wait kind, uint32_t object) {
    uint32_t first = 0;
    for (uint32_t slot = 1; slot <= region->slotsUsed; slot++) {
        const ThreadSlot& thread = slotAt(slot);
        if (thread.state == State::Waiting && thread.kind == kind &&
            (object == 0 || thread.object == object) && earlier(slot, first))
            first = slot;
    }
    return first == 0 ? nullptr : &slotAt(first);
}

uint32_t wakeOne(Wait kind, uint32_t object) {
    Locked lock;
    ThreadSlot* thread = firstWaiting(kind, object);
    if (thread == nullptr)
        return 0;
    makeReady(*thread, Result::Woken);
    return thread->number;
}

uint32_t wakeAll(Wait kind, uint32_t object) {
    Locked lock;
    uint32_t count = 0;
    while (ThreadSlot* thread = firstWaiting(kind, object)) {
        makeReady(*thread, Result::Woken);
        count++;
    }
    return count;
}

uint32_t wakeFutex(const void* address, uint32_t count, bool shared) {
    Locked lock;
    uint32_t woken = 0;
    while (woken < count) {
        uint32_t first = 0;
        for (uint32_t slot = 1; slot <= region->slotsUsed; slot++) {
            const ThreadSlot& thread = slotAt(slot);
            bool mine = thread.process == myProcess - 1
                            ? thread.address == reinterpret_cast<uintptr_t>(address)
                            : shared && thread.object != 0;
            if (thread.state == State::Waiting && thread.kind == Wait::Futex && mine &&
                earlier(slot, first))
                first = slot;
        }
        if (first == 0)
            break;
        woken += slotAt(first).process == myProcess - 1;
        makeReady(slotAt(first), Result::Woken);
    }
    return woken;
}

void afterWake() {
    if (region->seeded && self.slot != 0 && randomBelow(4) == 0)
        yield();
}

int64_t clockNow(Clock clock) {
    return region->now.load(std::memory_order_relaxed) + offsetOf(clock);
}

void setCalendar(int64_t ns) {
    region->calendarOffset.store(ns - region->now.load());
}

void suspend(int64_t ns) {
    region->calendarOffset.fetch_add(ns);
    region->suspended.fetch_add(ns);
}

RealCall::RealCall(bool holdsTime) {
    if (region == nullptr || self.slot == 0 || self.locked)
        return;
    outside_ = true;
    int saved = errno;
    ThreadSlot& me = slotAt(self.slot);
    uint32_t next;
    {
        Locked lock;
        self.handing = true;
        me.state = State::Leaving;
        region->activity++;
        me.order = ++region->order;
        next = dispatch();
    }
    kick(next);
    awaitTurn();
    {
        Locked lock;
        // A signal handler may have forked: in the child, the slot is another.
        ThreadSlot& mine = slotAt(self.slot);
        mine.holdsTime = holdsTime;
        mine.state = State::Outside;
        if (traceFile >= 0)
            traceLine("out", mine);
        next = dispatch();
    }
    kick(next);
    passWatch();
    self.handing = false;
    errno = saved;
}

RealCall::~RealCall() {
    if (!outside_)
        return;
    int saved = errno;
    if (region->severalProcesses)
        findDeaths();
    ThreadSlot& me = slotAt(self.slot);
    uint32_t next = 0;
    {
        Locked lock;
        self.handing = true;
        makeReady(me, Result::Woken);
        region->activity++;
        if (traceFile >= 0)
            traceLine("back", me);
        if (region->running == 0)
            next = dispatch();
    }
    kick(next);
    awaitTurn();
    self.clockReads = self.failedPolls = 0;
    self.creptSince = 0;
    self.handing = false;
    errno = saved;
}

}  // namespace vclock

// The members of a domain: how threads and processes join it and leave it, also by being killed.
#include <errno.h>
#include <fcntl.h>
#include <sched.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>

#include <initializer_list>

#include "common/exit_codes.h"
#include "vclock/domain_internal.h"
#include "vclock/environment.h"
#include "vclock/real.h"
#include "vclock/timers.h"
#include "vclock/vclock.h"

namespace vclock {

uint32_t myProcess;

constexpr int64_t kPatience = 5 * kSecond;

extern "C" int __cxa_atexit(void (*function)(void*), void* argument, void* library);

uint32_t takeThreadSlot(uint32_t process) {
    for (uint32_t i = 0; i < kMaxThreads; i++) {
        ThreadSlot& thread = region->threads[i];
        if (thread.state != State::Free)
            continue;
        if (i >= region->slotsUsed)
            region->slotsUsed = i + 1;
        thread.process = process;
        thread.number = ++region->nextThread;
        thread.kind = Wait::None;
        thread.interruptible = 0;
        thread.restartable = 0;
        thread.inHandler = thread.returning = 0;
        thread.spins = thread.toldSpinning = 0;
        thread.handle = 0;
        makeReady(thread, Result::Woken);
        return i + 1;
    }
    return 0;
}

void bindSelf(uint32_t slot) {
    self.slot = slot;
    self.number = slotAt(slot).number;
    slotAt(slot).threadId = static_cast<uint32_t>(real().syscall(SYS_gettid));
    slotAt(slot).handle = static_cast<uint64_t>(pthread_self());
}

uint32_t addThread() {
    Locked lock;
    uint32_t slot = takeThreadSlot(myProcess - 1);
    if (slot != 0 && traceFile >= 0)
        traceLine("new", slotAt(slot));
    return slot;
}

void removeThread(uint32_t slot) {
    Locked lock;
    slotAt(slot).state = State::Free;
}

void startThread(uint32_t slot, const sigset_t* mask) {
    bindSelf(slot);
    real().pthread_sigmask(SIG_SETMASK, mask, nullptr);
    awaitTurn();
}

static void wakeLocked(Wait kind, uint32_t object) {
    for (uint32_t i = 0; i < region->slotsUsed; i++) {
        ThreadSlot& thread = region->threads[i];
        if (thread.state == State::Waiting && thread.kind == kind &&
            (object == 0 || thread.object == object))
            makeReady(thread, Result::Woken);
    }
}

// But for the one that keeps timers.
static bool isLastThread() {
    for (uint32_t slot = 1; slot <= region->slotsUsed; slot++) {
        const ThreadSlot& thread = slotAt(slot);
        if (slot != self.slot && thread.state != State::Free && thread.process == myProcess - 1 &&
            thread.kind != Wait::Timer)
            return false;
    }
    return true;
}

void endThread() {
    if (region == nullptr || self.slot == 0)
        return;
    Turn turn;
    if (isLastThread())
        endTimers();
    uint32_t next;
    {
        Locked lock;
        ThreadSlot& me = slotAt(self.slot);
        if (traceFile >= 0)
            traceLine("end", me);
        wakeLocked(Wait::Join, me.number);
        region->activity++;
        me.state = State::Free;
        next = dispatch();
        // Before a signal can come: the slot is another thread's soon.
        self.slot = 0;
        self.ended = true;
    }
    passWatch();
    kick(next);
}

uint32_t findThread(pthread_t handle) {
    for (uint32_t slot = 1; slot <= region->slotsUsed; slot++) {
        const ThreadSlot& thread = slotAt(slot);
        if (thread.state != State::Free && thread.process == myProcess - 1 &&
            thread.handle == static_cast<uint64_t>(handle))
            return slot;
    }
    return 0;
}

uint32_t findThreadById(pid_t pid, pid_t thread) {
    for (uint32_t slot = 1; slot <= region->slotsUsed; slot++) {
        const ThreadSlot& one = slotAt(slot);
        if (one.state != State::Free && one.threadId == static_cast<uint32_t>(thread) &&
            region->processes[one.process].pid == pid)
            return slot;
    }
    return 0;
}

void cancelThread(pthread_t handle) {
    Locked lock;
    uint32_t slot = findThread(handle);
    if (slot != 0 && slotAt(slot).state == State::Waiting && slotAt(slot).cancellable)
        makeReady(slotAt(slot), Result::Cancelled);
}

static Child takeProcess() {
    Child child = {};
    Locked lock;
    for (uint32_t i = 0; i < kMaxProcesses; i++) {
        ProcessSlot& process = region->processes[i];
        if (process.state != ProcessState::Free)
            continue;
        child.thread = takeThreadSlot(i);
        if (child.thread == 0)
            break;
        process.state = ProcessState::Unborn;
        process.pid = 0;
        process.parentPid = getpid();
        process.number = child.number = ++region->nextProcess;
        process.watcher = 0;
        process.awaitsChildren = region->processes[myProcess - 1].awaitsChildren;
        child.process = i + 1;
        region->severalProcesses = 1;
        if (traceFile >= 0)
            traceProcess("fork", process);
        return child;
    }
    return child;
}

Child addProcess() {
    Child child = takeProcess();
    if (child.thread == 0) {
        findDeaths();
        child = takeProcess();
    }
    return child;
}

void removeProcess(const Child& child) {
    Locked lock;
    slotAt(child.thread).state = State::Free;
    region->processes[child.process - 1].state = ProcessState::Free;
}

// Returns whether the child is still known: others may have taken it for dead, with its parent.
static bool bearChild(const Child& child, pid_t pid) {
    Locked lock;
    ProcessSlot& process = region->processes[child.process - 1];
    if (process.number != child.number ||
        (process.state != ProcessState::Unborn && process.state != ProcessState::Live))
        return false;
    process.state = ProcessState::Live;
    process.pid = pid;
    return true;
}

void nameChild(const Child& child, pid_t pid) {
    bearChild(child, pid);
}

// In the new process. If the parent was killed so early that others took the child for dead as
// well, it joins anew.
static void becomeChild(const Child& child) {
    bool known = bearChild(child, getpid());
    Child mine = known ? child : addProcess();
    if (mine.thread == 0) {
        dprintf(STDERR_FILENO, "vclock: no room for another process\n");
        real()._exit(EXIT_FAILED);
    }
    if (!known)
        bearChild(mine, getpid());
    myProcess = mine.process;
    bindSelf(mine.thread);
    awaitTurn();
    // Should a handler in the midst of a wait have forked: the wait ends.
    slotAt(self.slot).result = Result::Interrupted;
}

bool joinAsChild() {
    if (self.forks == nullptr || getpid() == region->processes[myProcess - 1].pid)
        return false;
    Child child = *self.forks;
    self.forks = nullptr;
    self.handing = false;
    self.nested = false;
    self.innermost = nullptr;
    forgetTimers();
    becomeChild(child);
    return true;
}

static void freeThreads(uint32_t process, uint32_t except) {
    for (uint32_t slot = 1; slot <= region->slotsUsed; slot++) {
        if (slotAt(slot).process == process && slot != except)
            slotAt(slot).state = State::Free;
    }
}

void leaveDomain() {
    if (region == nullptr)
        return;
    Turn turn;
    uint32_t next;
    {
        Locked lock;
        ProcessSlot& process = region->processes[myProcess - 1];
        if (traceFile >= 0)
            traceProcess("exit", process);
        freeThreads(myProcess - 1, 0);
        process.state = ProcessState::Exiting;
        wakeLocked(Wait::Child, 0);
        region->activity++;
        next = dispatch();
        self.slot = 0;
        self.ended = true;
    }
    kick(next);
}

void beginExec() {
    uint32_t next;
    {
        Locked lock;
        ProcessSlot& process = region->processes[myProcess - 1];
        if (traceFile >= 0)
            traceProcess("exec", process);
        process.state = ProcessState::Replaced;
        slotAt(self.slot).state = State::Outside;
        wakeLocked(Wait::Child, 0);
        region->activity++;
        next = dispatch();
    }
    kick(next);
}

void failedExec() {
    int saved = errno;
    uint32_t next = 0;
    {
        Locked lock;
        region->processes[myProcess - 1].state = ProcessState::Live;
        makeReady(slotAt(self.slot), Result::Woken);
        if (region->running == 0)
            next = dispatch();
    }
    kick(next);
    awaitTurn();
    errno = saved;
}

void addProgram(pid_t pid) {
    Locked lock;
    for (ProcessSlot& process : region->processes) {
        if (process.state != ProcessState::Free)
            continue;
        process.state = ProcessState::Replaced;
        process.pid = pid;
        process.parentPid = getpid();
        process.number = ++region->nextProcess;
        region->severalProcesses = 1;
        if (traceFile >= 0)
            traceProcess("spawn", process);
        return;
    }
}

bool programsRunning() {
    for (const ProcessSlot& process : region->processes) {
        if (process.state == ProcessState::Replaced)
            return true;
    }
    return false;
}

uint32_t findProcess(pid_t pid) {
    for (uint32_t i = 0; i < kMaxProcesses; i++) {
        if (region->processes[i].state == ProcessState::Live && region->processes[i].pid == pid)
            return i + 1;
    }
    return 0;
}

pid_t findChild(pid_t pid, ProcessState state) {
    int32_t me = getpid();
    for (const ProcessSlot& process : region->processes) {
        if (process.state == state && process.parentPid == me && (pid <= 0 || process.pid == pid))
            return process.pid;
    }
    return 0;
}

void forgetChild(pid_t pid) {
    Locked lock;
    for (ProcessSlot& process : region->processes) {
        if (process.state == ProcessState::Exiting && process.pid == pid)
            process.state = ProcessState::Free;
    }
}

bool isAwaited(const ProcessSlot& process) {
    uint32_t parent = findProcess(process.parentPid);
    return parent != 0 && region->processes[parent - 1].awaitsChildren;
}

void awaitChildren() {
    region->processes[myProcess - 1].awaitsChildren = 1;
    region->signalWaits = 1;
}

static bool isGone(pid_t pid) {
    int saved = errno;
    bool gone;
#ifdef SYS_pidfd_open
    int file = static_cast<int>(real().syscall(SYS_pidfd_open, pid, 0));
    if (file >= 0) {
        pollfd ended = {file, POLLIN, 0};
        gone = real().poll(&ended, 1, 0) > 0;
        real().close(file);
        errno = saved;
        return gone;
    }
#endif
    gone = real().kill(pid, 0) < 0 && errno == ESRCH;
    errno = saved;
    return gone;
}

// Returns the slot to kick: a new owner of the token, or the present one again, for its waker may
// have died between giving the token and saying so.
static uint32_t bury(uint32_t index, uint32_t number) {
    Locked lock;
    ProcessSlot& process = region->processes[index];
    if (process.state == ProcessState::Free || process.number != number)
        return 0;
    // One that ended by itself has said so at its end: when the kernel was done with it is no event
    // of virtual time.
    bool killed = process.state != ProcessState::Exiting;
    if (killed && traceFile >= 0)
        traceProcess("gone", process);
    freeThreads(index, 0);
    process.state = ProcessState::Free;
    if (killed)
        wakeLocked(Wait::Child, 0);
    if (killed || isAwaited(process))
        region->activity++;
    uint32_t running = region->running;
    if (running == 0 || slotAt(running).state == State::Free)
        return dispatch();
    return running;
}

void findDeaths() {
    for (uint32_t i = 0; i < kMaxProcesses; i++) {
        const ProcessSlot& process = region->processes[i];
        if (process.state == ProcessState::Free || i == myProcess - 1)
            continue;
        // A child that has not named itself yet is looked for by its parent.
        int32_t pid = process.pid != 0 ? process.pid : process.parentPid;
        uint32_t number = process.number;
        if (pid != getpid() && isGone(pid))
            kick(bury(i, number));
    }
}

// The last function that a process runs: all destructors are done, only the kernel is left.
static void atProcessEnd(void*) {
    fflush(nullptr);
    leaveDomain();
}

static void initLock(pthread_mutex_t* lock) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    real().pthread_mutex_init(lock, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

// Takes the entries that hold a text out of a list that is separated by colons or spaces.
static void removeEntries(const char* variable, const char* text) {
    const char* list = getenv(variable);
    if (list == nullptr || strstr(list, text) == nullptr)
        return;
    char kept[4096] = "";
    size_t used = 0;
    while (*list != '\0') {
        const char* entry = list + strspn(list, ": ");
        size_t size = strcspn(entry, ": ");
        list = entry + size;
        if (size == 0 || memmem(entry, size, text, strlen(text)) != nullptr ||
            used + size + 2 > sizeof kept)
            continue;
        if (used > 0)
            kept[used++] = ':';
        memcpy(kept + used, entry, size);
        used += size;
        kept[used] = '\0';
    }
    if (used > 0)
        setenv(variable, kept, 1);
    else
        unsetenv(variable);
}

// Programs that this one starts run in real time.
static void cleanEnvironment() {
    removeEntries("LD_PRELOAD", "libvclock.so");
    removeEntries("ASAN_OPTIONS", VCLOCK_ASAN_OPTION);
    for (const char* name :
         {VCLOCK_SEED, VCLOCK_TRACE, VCLOCK_START, VCLOCK_LIMIT, VCLOCK_PATIENCE})
        unsetenv(name);
}

static cpu_set_t allowedProcessors;

// One thread runs at a time, so the domain keeps to one processor: a hand-over there costs a third
// of one between two. Domains spread over the processors: each takes a name in the abstract socket
// space, which is free again when its last process is gone. Also, a program that starts a thread
// for each processor then starts the same number everywhere.
static void chooseProcessor() {
    if (sched_getaffinity(0, sizeof allowedProcessors, &allowedProcessors) < 0)
        return;
    int chosen = -1;
    int allowed = 0;
    int seat = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    int file = seat >= 0 ? real().fcntl(seat, F_DUPFD_CLOEXEC, kOwnDescriptors) : -1;
    if (seat >= 0)
        real().close(seat);
    for (int cpu = 0; cpu < CPU_SETSIZE; cpu++) {
        if (!CPU_ISSET(cpu, &allowedProcessors))
            continue;
        allowed++;
        sockaddr_un name = {};
        name.sun_family = AF_UNIX;
        int size =
            snprintf(name.sun_path + 1, sizeof name.sun_path - 1, "vclock-processor-%d", cpu);
        socklen_t length =
            static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + static_cast<size_t>(size));
        if (file >= 0 && bind(file, reinterpret_cast<sockaddr*>(&name), length) == 0) {
            chosen = cpu;
            break;
        }
        // All taken so far: one of them by the process's number.
        if (getpid() % allowed == 0)
            chosen = cpu;
    }
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(static_cast<size_t>(chosen), &one);
    if (chosen >= 0)
        sched_setaffinity(0, sizeof one, &one);
}

AnyProcessor::AnyProcessor() {
    sched_getaffinity(0, sizeof own_, &own_);
    if (region != nullptr)
        sched_setaffinity(0, sizeof allowedProcessors, &allowedProcessors);
}

AnyProcessor::~AnyProcessor() {
    int saved = errno;
    sched_setaffinity(0, sizeof own_, &own_);
    errno = saved;
}

static int64_t calendarStart() {
    const char* start = getenv(VCLOCK_START);
    if (start != nullptr && *start != '\0')
        return static_cast<int64_t>(strtoll(start, nullptr, 10)) * kSecond;
    timespec now = {};
    real().clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<int64_t>(now.tv_sec) * kSecond + now.tv_nsec;
}

__attribute__((constructor)) static void joinVirtualTime() {
    int file = static_cast<int>(real().syscall(SYS_memfd_create, "vclock", 1u /* CLOEXEC */));
    if (file < 0 || ftruncate(file, sizeof(Region)) < 0)
        return;
    void* memory = mmap(nullptr, sizeof(Region), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    real().close(file);
    if (memory == MAP_FAILED)
        return;
    Region* made = static_cast<Region*>(memory);
    initLock(&made->lock);
    made->now = kStartOfTime;
    made->calendarOffset = calendarStart() - kStartOfTime;
    const char* limit = getenv(VCLOCK_LIMIT);
    made->limit = limit != nullptr && *limit != '\0'
                      ? kStartOfTime + static_cast<int64_t>(strtoll(limit, nullptr, 10)) * kSecond
                      : kForever;
    const char* patience = getenv(VCLOCK_PATIENCE);
    made->patience = patience != nullptr && *patience != '\0'
                         ? static_cast<int64_t>(strtoll(patience, nullptr, 10)) * kSecond
                         : kPatience;
    const char* seed = getenv(VCLOCK_SEED);
    if (seed != nullptr && *seed != '\0') {
        made->seeded = 1;
        made->random = (strtoull(seed, nullptr, 10) + 1) * 0x9e3779b97f4a7c15ull;
        made->random += made->random == 0;
    }
    made->processes[0].state = ProcessState::Live;
    made->processes[0].pid = getpid();
    made->processes[0].parentPid = getppid();
    made->processes[0].number = made->nextProcess = 1;
    openTrace(getenv(VCLOCK_TRACE));
    cleanEnvironment();
    chooseProcessor();
    region = made;
    myProcess = 1;
    {
        Locked lock;
        bindSelf(takeThreadSlot(0));
        dispatch();
    }
    __cxa_atexit(atProcessEnd, nullptr, nullptr);
}

}  // namespace vclock

extern "C" __attribute__((visibility("default"))) int vclock_suspend(int64_t ns) {
    if (vclock::region == nullptr || ns < 0) {
        errno = ns < 0 ? EINVAL : ENOSYS;
        return -1;
    }
    vclock::Turn turn;
    vclock::suspend(ns);
    vclock::wakeTimers();
    return 0;
}

// Signals: handlers that take turns, senders that wait for them, and the calls that wait for a
// signal.
//
// The kernel runs a handler whenever it likes. So in a handler's place stands `receive`, which
// gives it a turn of its own (turn.cpp): it runs as one more thread of the domain does, and ends
// the wait that it interrupted. Who sends a signal within the domain goes on when the handler has
// its place among those that run next; time cannot jump past it.
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

#include "vclock/domain_internal.h"
#include "vclock/real.h"
#include "vclock/signals.h"
#include "vclock/time_arguments.h"

namespace vclock {

constexpr int kSignals = 65;
// How long a handler is waited for: it comes in no time, unless its process is stopped or dies.
constexpr int kLooks = 100;
constexpr int64_t kLookPeriod = 10000000;

// What the program wants to be done, where the kernel has `receive`.
static struct sigaction wanted[kSignals];
static __thread uint64_t maskToRestore __attribute__((tls_model("initial-exec")));

static void receive(int number, siginfo_t* info, void* context);

static bool isValid(int number) {
    return number > 0 && number < kSignals;
}

static bool isReceived(const struct sigaction& action) {
    return (action.sa_flags & SA_SIGINFO) != 0 && action.sa_sigaction == receive;
}

static bool isHandled(const struct sigaction& action) {
    return (action.sa_flags & SA_SIGINFO) != 0 ||
           (action.sa_handler != SIG_DFL && action.sa_handler != SIG_IGN);
}

// Faults of the program's own code, which its handler must meet where they happened.
static bool isFault(int number) {
    return number == SIGSEGV || number == SIGBUS || number == SIGFPE || number == SIGILL ||
           number == SIGTRAP || number == SIGSYS || number == SIGPROF;
}

static void runHandler(int number, siginfo_t* info, void* context) {
    struct sigaction action = wanted[number];
    if (action.sa_flags & SA_RESETHAND) {
        struct sigaction none = {};
        real().sigaction(number, &none, nullptr);
    }
    self.handled++;
    if (!(action.sa_flags & SA_RESTART))
        self.interruptions++;
    if (action.sa_flags & SA_SIGINFO)
        action.sa_sigaction(number, info, context);
    else
        action.sa_handler(number);
}

static uint64_t maskBits(const sigset_t& set) {
    uint64_t bits;
    memcpy(&bits, &set, sizeof bits);
    return bits;
}

// Signals that wait for the end of this handler are handled in the same turn: behind it, time might
// jump before they come.
static void runPending(void* context) {
    uint64_t before = maskBits(static_cast<ucontext_t*>(context)->uc_sigmask);
    sigset_t pending;
    timespec now = {};
    int number = 1;
    while (number < kSignals && sigpending(&pending) == 0) {
        uint64_t due = maskBits(pending) & ~before;
        while (number < kSignals && (due >> (number - 1) & 1) == 0)
            number++;
        struct sigaction action;
        if (number == kSignals || real().sigaction(number, nullptr, &action) != 0)
            return;
        sigset_t one;
        siginfo_t info;
        sigemptyset(&one);
        sigaddset(&one, number);
        if (!isReceived(action) || real().sigtimedwait(&one, &info, &now) != number) {
            number++;
            continue;
        }
        runHandler(number, &info, context);
        number = 1;
    }
}

static void deliver(int number, siginfo_t* info, void* context) {
    if (region == nullptr) {
        runHandler(number, info, context);
        return;
    }
    // The dead are known before their parent hears of them.
    if (number == SIGCHLD && !self.locked)
        findDeaths();
    Turn turn(Turn::kHandler);
    runHandler(number, info, context);
    runPending(context);
    self.returnMask = maskBits(static_cast<ucontext_t*>(context)->uc_sigmask);
}

// The thread holds the region's lock: the signal is sent to it once more, and all signals wait
// until the lock is free. Returns false if the kernel has no room for it.
static bool putOff(int number, const siginfo_t* info, void* context) {
    sigset_t all;
    sigfillset(&all);
    real().pthread_sigmask(SIG_BLOCK, &all, nullptr);
    siginfo_t again = *info;
    long process = getpid();
    if (real().syscall(SYS_rt_tgsigqueueinfo, process, real().syscall(SYS_gettid), number,
                       &again) != 0)
        return false;
    // Of several that come at once, the one whose handler was to run last is the last here. The
    // kernel keeps no more of a mask than these bits.
    ucontext_t* interrupted = static_cast<ucontext_t*>(context);
    uint64_t bits = maskBits(all);
    maskToRestore = maskBits(interrupted->uc_sigmask);
    memcpy(&interrupted->uc_sigmask, &bits, sizeof bits);
    self.putOff = true;
    return true;
}

void takePutOff() {
    sigset_t mask;
    sigemptyset(&mask);
    memcpy(&mask, &maskToRestore, sizeof maskToRestore);
    self.putOff = false;
    real().pthread_sigmask(SIG_SETMASK, &mask, nullptr);
}

static void receive(int number, siginfo_t* info, void* context) {
    int saved = errno;
    if (!self.locked || !putOff(number, info, context))
        deliver(number, info, context);
    errno = saved;
}

// ---- Where a signal that was sent has got to ----

namespace {

struct Masks {
    uint64_t blocked;
    uint64_t caught;
};

}  // namespace

static uint64_t maskIn(const char* status, const char* name) {
    const char* line = strstr(status, name);
    return line != nullptr ? strtoull(line + strlen(name), nullptr, 16) : 0;
}

static bool readMasks(pid_t pid, uint32_t thread, Masks* masks) {
    char path[64];
    char status[4096];
    snprintf(path, sizeof path, "/proc/%d/task/%u/status", static_cast<int>(pid), thread);
    int file = open(path, O_RDONLY | O_CLOEXEC);
    ssize_t size = file >= 0 ? real().read(file, status, sizeof status - 1) : -1;
    if (file >= 0)
        real().close(file);
    if (size <= 0)
        return false;
    status[size] = '\0';
    masks->blocked = maskIn(status, "\nSigBlk:");
    masks->caught = maskIn(status, "\nSigCgt:");
    return true;
}

// Whether the kernel would run a handler for the signal now in the process, or in that thread of it
// if `threadId` is not 0. While the handler runs, the signal counts as blocked.
static bool wouldRun(uint32_t process, uint32_t threadId, int number) {
    const ProcessSlot& target = region->processes[process - 1];
    uint64_t bit = uint64_t{1} << (number - 1);
    for (uint32_t slot = 1; slot <= region->slotsUsed; slot++) {
        const ThreadSlot& thread = slotAt(slot);
        if (thread.state == State::Free || thread.process != process - 1 ||
            target.state != ProcessState::Live || (threadId != 0 && thread.threadId != threadId))
            continue;
        Masks masks;
        if (!readMasks(target.pid, thread.threadId, &masks))
            continue;
        uint64_t blocked = thread.returning ? thread.returnMask : masks.blocked;
        if ((masks.caught & bit) != 0 && (blocked & bit) == 0)
            return true;
    }
    return false;
}

SentSignal::SentSignal(uint32_t process, uint32_t threadSlot, int number)
    : process_(process), threadSlot_(threadSlot), number_(number) {
    uint32_t threadId = threadSlot_ != 0 ? slotAt(threadSlot_).threadId : 0;
    if (process_ == 0 || !isValid(number_) || isFault(number_) ||
        !wouldRun(process_, threadId, number_))
        process_ = 0;
    else
        before_ = arrivals()->load();
}

std::atomic<uint32_t>* SentSignal::arrivals() const {
    return threadSlot_ != 0 ? &slotAt(threadSlot_).arrivals
                            : &region->processes[process_ - 1].arrivals;
}

void SentSignal::awaitArrival() const {
    if (process_ == 0)
        return;
    for (int look = 0; look < kLooks && arrivals()->load() == before_; look++)
        futexWait(arrivals(), before_, kLookPeriod);
}

}  // namespace vclock

using namespace vclock;

// ---- Handlers ----

VCLOCK_REPLACE(int, sigaction, int number, const struct sigaction* action,
               struct sigaction* before) {
    Turn turn;
    struct sigaction old;
    if (real().sigaction(number, nullptr, &old) != 0)
        return -1;
    if (isReceived(old) || number == SIGRTMAX)
        old = wanted[number];
    if (action != nullptr && number == SIGRTMAX) {
        wanted[number] = *action;
    } else if (action != nullptr) {
        struct sigaction kernels = *action;
        bool received = isHandled(*action) && !isFault(number);
        if (received) {
            kernels.sa_sigaction = receive;
            kernels.sa_flags = (action->sa_flags & ~SA_RESETHAND) | SA_SIGINFO;
            sigdelset(&kernels.sa_mask, SIGRTMAX);
        }
        // Where the kernel acts itself, one that is on its way to the old handler still finds it.
        struct sigaction kept = wanted[number];
        if (received)
            wanted[number] = *action;
        if (real().sigaction(number, &kernels, nullptr) != 0) {
            wanted[number] = kept;
            return -1;
        }
        if (number == SIGCHLD && region != nullptr)
            region->processes[myProcess - 1].awaitsChildren = received;
    }
    if (before != nullptr)
        *before = old;
    return 0;
}

static sighandler_t install(int number, sighandler_t handler, int flags) {
    struct sigaction action = {};
    struct sigaction before;
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigemptyset(&action.sa_mask);
    if (!(flags & SA_NODEFER) && isValid(number))
        sigaddset(&action.sa_mask, number);
    return replaced_sigaction(number, &action, &before) == 0 ? before.sa_handler : SIG_ERR;
}

VCLOCK_REPLACE(sighandler_t, signal, int number, sighandler_t handler) {
    return install(number, handler, SA_RESTART);
}

VCLOCK_REPLACE(sighandler_t, bsd_signal, int number, sighandler_t handler) {
    return install(number, handler, SA_RESTART);
}

VCLOCK_REPLACE(sighandler_t, ssignal, int number, sighandler_t handler) {
    return install(number, handler, SA_RESTART);
}

// What signal() is to programs of strict System V manners.
VCLOCK_REPLACE(sighandler_t, sysv_signal, int number, sighandler_t handler) {
    return install(number, handler, SA_RESETHAND | SA_NODEFER);
}

VCLOCK_REPLACE(sighandler_t, __sysv_signal, int number, sighandler_t handler) {
    return install(number, handler, SA_RESETHAND | SA_NODEFER);
}

// The library's own signal is never blocked: a loop that calls nothing is stopped by it.
static int changeMask(int how, const sigset_t* set, sigset_t* before) {
    sigset_t allowed;
    if (set != nullptr) {
        allowed = *set;
        sigdelset(&allowed, SIGRTMAX);
    }
    return real().pthread_sigmask(how, set != nullptr ? &allowed : nullptr, before);
}

VCLOCK_REPLACE(int, pthread_sigmask, int how, const sigset_t* set, sigset_t* before) {
    return changeMask(how, set, before);
}

VCLOCK_REPLACE(int, sigprocmask, int how, const sigset_t* set, sigset_t* before) {
    int error = changeMask(how, set, before);
    if (error != 0)
        errno = error;
    return error == 0 ? 0 : -1;
}

// A handler that jumps out of itself leaves the wait behind that it interrupted.
VCLOCK_REPLACE(void, siglongjmp, sigjmp_buf to, int value) {
    Turn::leaveHandlers();
    real().siglongjmp(to, value);
}

VCLOCK_REPLACE(void, longjmp, jmp_buf to, int value) {
    Turn::leaveHandlers();
    real().siglongjmp(to, value);
}

VCLOCK_REPLACE(void, _longjmp, jmp_buf to, int value) {
    Turn::leaveHandlers();
    real().siglongjmp(to, value);
}

VCLOCK_REPLACE(void, __longjmp_chk, jmp_buf to, int value) {
    Turn::leaveHandlers();
    real().__longjmp_chk(to, value);
}

// ---- Senders ----

VCLOCK_REPLACE(int, pthread_kill, pthread_t thread, int number) {
    Turn turn;
    uint32_t slot = turn ? findThread(thread) : 0;
    SentSignal sent(slot != 0 ? myProcess : 0, slot, number);
    int error = real().pthread_kill(thread, number);
    if (error == 0)
        sent.awaitArrival();
    return error;
}

VCLOCK_REPLACE(int, pthread_sigqueue, pthread_t thread, int number, const union sigval value) {
    Turn turn;
    uint32_t slot = turn ? findThread(thread) : 0;
    SentSignal sent(slot != 0 ? myProcess : 0, slot, number);
    int error = real().pthread_sigqueue(thread, number, value);
    if (error == 0)
        sent.awaitArrival();
    return error;
}

VCLOCK_REPLACE(int, tgkill, pid_t pid, pid_t thread, int number) {
    Turn turn;
    uint32_t slot = turn ? findThreadById(pid, thread) : 0;
    SentSignal sent(slot != 0 ? findProcess(pid) : 0, slot, number);
    int result = real().tgkill(pid, thread, number);
    if (result == 0)
        sent.awaitArrival();
    return result;
}

// Sends to a process, or to a group as kill() names it, and awaits the members of the domain.
template <typename Call>
static int sendTo(pid_t pid, int number, Call call) {
    Turn turn;
    if (!turn)
        return call();
    if (pid > 0) {
        SentSignal sent(findProcess(pid), 0, number);
        int result = call();
        if (result == 0)
            sent.awaitArrival();
        return result;
    }
    SentSignal sent[kMaxProcesses];
    pid_t group = pid == 0 ? getpgrp() : -pid;
    for (uint32_t i = 0; i < kMaxProcesses; i++) {
        const ProcessSlot& process = region->processes[i];
        if (process.state == ProcessState::Live && (pid == -1 || getpgid(process.pid) == group))
            sent[i] = SentSignal(i + 1, 0, number);
    }
    int result = call();
    for (uint32_t i = 0; result == 0 && i < kMaxProcesses; i++)
        sent[i].awaitArrival();
    return result;
}

VCLOCK_REPLACE(int, kill, pid_t pid, int number) {
    return sendTo(pid, number, [&] { return real().kill(pid, number); });
}

VCLOCK_REPLACE(int, killpg, pid_t group, int number) {
    return sendTo(group > 0 ? -group : 0, number, [&] { return real().killpg(group, number); });
}

VCLOCK_REPLACE(int, sigqueue, pid_t pid, int number, const union sigval value) {
    return sendTo(pid, number, [&] { return real().sigqueue(pid, number, value); });
}

// ---- Waits ----

static WaitFor forSignal() {
    region->signalWaits = 1;
    WaitFor what;
    what.kind = Wait::Signal;
    what.interruptible = what.cancellable = what.endsIfCancelled = true;
    return what;
}

// Until a handler has run: always with EINTR.
static int awaitHandler(const WaitFor& what) {
    while (wait(what) != Result::Interrupted) {
    }
    errno = EINTR;
    return -1;
}

VCLOCK_REPLACE(int, pause, void) {
    Turn turn;
    return turn ? awaitHandler(forSignal()) : real().pause();
}

VCLOCK_REPLACE(int, sigsuspend, const sigset_t* mask) {
    Turn turn;
    if (!turn)
        return real().sigsuspend(mask);
    WaitFor what = forSignal();
    sigset_t before;
    pthread_sigmask(SIG_SETMASK, mask, &before);  // What is pending comes here.
    awaitHandler(what);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = EINTR;
    return -1;
}

// Answers as sigtimedwait: the signal, or -1 with EAGAIN or EINTR.
static int awaitSignal(const sigset_t* set, siginfo_t* info, Deadline until) {
    WaitFor what = forSignal();
    what.until = until;
    if (sigismember(set, SIGCHLD) == 1)
        awaitChildren();
    for (;;) {
        timespec now = {};
        int number = real().sigtimedwait(set, info, &now);
        if (number > 0 || errno != EAGAIN)
            return number;
        Result result = wait(what);
        if (result == Result::Interrupted || result == Result::TimedOut) {
            number = real().sigtimedwait(set, info, &now);
            if (number < 0)
                errno = result == Result::TimedOut ? EAGAIN : EINTR;
            return number;
        }
        what.lookedInVain = true;
    }
}

VCLOCK_REPLACE(int, sigtimedwait, const sigset_t* set, siginfo_t* info, const timespec* time) {
    Turn turn;
    if (!turn || (time != nullptr && !validTime(time)))
        return real().sigtimedwait(set, info, time);
    if (time != nullptr && toNs(*time) == 0)
        failedPoll();
    return awaitSignal(set, info, time != nullptr ? deadlineIn(toNs(*time)) : Deadline());
}

VCLOCK_REPLACE(int, sigwaitinfo, const sigset_t* set, siginfo_t* info) {
    return replaced_sigtimedwait(set, info, nullptr);
}

VCLOCK_REPLACE(int, sigwait, const sigset_t* set, int* number) {
    Turn turn;
    if (!turn)
        return real().sigwait(set, number);
    int got;
    while ((got = awaitSignal(set, nullptr, Deadline())) < 0) {
        if (errno != EINTR)
            return errno;
    }
    *number = got;
    return 0;
}

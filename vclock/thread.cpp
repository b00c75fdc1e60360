// Replacements of thread creation, join, end and cancellation, and of the raw futex call by which
// the C++ library waits.
#include <errno.h>
#include <limits.h>
#include <linux/futex.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdlib.h>
#include <sys/syscall.h>

#include "vclock/domain.h"
#include "vclock/real.h"
#include "vclock/time_arguments.h"

using namespace vclock;

// The thread's value of this key counts the rounds of destructors that it has seen: the last round
// is the thread's last moment that we know of.
static pthread_key_t endKey;

static void countRound(void* value) {
    uintptr_t round = reinterpret_cast<uintptr_t>(value);
    if (round < PTHREAD_DESTRUCTOR_ITERATIONS)
        pthread_setspecific(endKey, reinterpret_cast<void*>(round + 1));
    else
        endThread();
}

static void watchEnd() {
    pthread_setspecific(endKey, reinterpret_cast<void*>(1));
}

__attribute__((constructor)) static void makeEndKey() {
    pthread_key_create(&endKey, countRound);
    watchEnd();
}

namespace {
struct Start {
    void* (*function)(void*);
    void* argument;
    uint32_t slot;
    sigset_t mask;
};
}  // namespace

static void* runThread(void* argument) {
    Start start = *static_cast<Start*>(argument);
    free(argument);
    watchEnd();
    startThread(start.slot, &start.mask);
    return start.function(start.argument);
}

VCLOCK_REPLACE(int, pthread_create, pthread_t* thread, const pthread_attr_t* attr,
               void* (*function)(void*), void* argument) {
    Turn turn;
    if (!turn)
        return real().pthread_create(thread, attr, function, argument);
    Start* start = static_cast<Start*>(malloc(sizeof(Start)));
    uint32_t slot = start != nullptr ? addThread() : 0;
    if (slot == 0) {
        free(start);
        return EAGAIN;
    }
    *start = {function, argument, slot, {}};
    // A handler would take the thread for one without a slot: signals wait until it has its own.
    sigset_t all;
    sigset_t mine;
    sigfillset(&all);
    real().pthread_sigmask(SIG_BLOCK, &all, &mine);
    if (attr == nullptr || pthread_attr_getsigmask_np(attr, &start->mask) != 0)
        start->mask = mine;
    int error = real().pthread_create(thread, attr, runThread, start);
    real().pthread_sigmask(SIG_SETMASK, &mine, nullptr);
    if (error != 0) {
        removeThread(slot);
        free(start);
        return error;
    }
    slotAt(slot).handle = static_cast<uint64_t>(*thread);
    afterWake();
    return 0;
}

static int joinUntil(pthread_t thread, void** value, Deadline until) {
    Turn turn;
    if (turn && pthread_equal(thread, pthread_self()))
        return EDEADLK;
    while (turn) {
        uint32_t slot = findThread(thread);
        if (slot == 0)
            break;
        WaitFor what;
        what.kind = Wait::Join;
        what.object = slotAt(slot).number;
        what.until = until;
        what.cancellable = what.endsIfCancelled = true;
        if (wait(what) == Result::TimedOut)
            return ETIMEDOUT;
    }
    // The thread is past its last destructor: what is left of it takes the kernel a moment.
    return real().pthread_join(thread, value);
}

VCLOCK_REPLACE(int, pthread_join, pthread_t thread, void** value) {
    return joinUntil(thread, value, Deadline());
}

VCLOCK_REPLACE(int, pthread_clockjoin_np, pthread_t thread, void** value, clockid_t clock,
               const timespec* time) {
    if (time == nullptr)
        return joinUntil(thread, value, Deadline());
    return validTime(time) ? joinUntil(thread, value, deadlineAt(clock, *time)) : EINVAL;
}

VCLOCK_REPLACE(int, pthread_timedjoin_np, pthread_t thread, void** value, const timespec* time) {
    return replaced_pthread_clockjoin_np(thread, value, CLOCK_REALTIME, time);
}

VCLOCK_REPLACE(int, pthread_tryjoin_np, pthread_t thread, void** value) {
    Turn turn;
    if (turn && findThread(thread) != 0) {
        failedPoll();
        return EBUSY;
    }
    return real().pthread_join(thread, value);
}

VCLOCK_REPLACE(int, pthread_cancel, pthread_t thread) {
    Turn turn;
    int error = real().pthread_cancel(thread);
    if (error == 0 && turn)
        cancelThread(thread);
    return error;
}

// Returns like the system call: 0, or -1 with errno.
static long waitFutex(const uint32_t* word, uint32_t expected, bool shared, Deadline until) {
    if (__atomic_load_n(word, __ATOMIC_SEQ_CST) != expected) {
        errno = EAGAIN;
        return -1;
    }
    WaitFor what;
    what.kind = Wait::Futex;
    what.object = shared;
    what.address = word;
    what.until = until;
    what.interruptible = what.restartable = true;
    Result result = wait(what);
    if (result != Result::TimedOut && result != Result::Interrupted)
        return 0;
    errno = result == Result::TimedOut ? ETIMEDOUT : EINTR;
    return -1;
}

// Returns whether the operation is one that we replace; the result then is in *result.
static bool futexCall(long a, long b, long c, long d, long* result) {
    const uint32_t* word = reinterpret_cast<const uint32_t*>(a);
    int operation = static_cast<int>(b);
    uint32_t value = static_cast<uint32_t>(c);
    bool shared = (operation & FUTEX_PRIVATE_FLAG) == 0;
    const timespec* time = reinterpret_cast<const timespec*>(d);
    switch (operation & FUTEX_CMD_MASK) {
        case FUTEX_WAIT:
            *result = waitFutex(word, value, shared,
                                time != nullptr ? deadlineIn(toNs(*time)) : Deadline());
            return true;
        case FUTEX_WAIT_BITSET: {
            clockid_t clock = operation & FUTEX_CLOCK_REALTIME ? CLOCK_REALTIME : CLOCK_MONOTONIC;
            *result = waitFutex(word, value, shared,
                                time != nullptr ? deadlineAt(clock, *time) : Deadline());
            return true;
        }
        case FUTEX_WAKE:
        case FUTEX_WAKE_BITSET:
            *result = wakeFutex(word, value, shared);
            if (*result > 0)
                afterWake();
            return true;
        default:
            return false;
    }
}

VCLOCK_REPLACE(long, syscall, long number, ...) {
    va_list arguments;
    va_start(arguments, number);
    long a = va_arg(arguments, long);
    long b = va_arg(arguments, long);
    long c = va_arg(arguments, long);
    long d = va_arg(arguments, long);
    long e = va_arg(arguments, long);
    long f = va_arg(arguments, long);
    va_end(arguments);
    long result;
    if (number == SYS_futex) {
        Turn turn;
        if (turn && futexCall(a, b, c, d, &result))
            return result;
    }
    return real().syscall(number, a, b, c, d, e, f);
}

// Replacements of mutexes, conditions, semaphores, read-write locks, barriers and once-controls.
//
// Each lives in the caller's own bytes; all zero is the static initialiser. Since one thread runs
// at a time, a plain read and write is a lock; only who must wait goes to the domain.
#include <errno.h>
#include <limits.h>
#include <pthread.h>
#include <semaphore.h>
#include <stddef.h>
#include <string.h>

#include "vclock/domain.h"
#include "vclock/real.h"
#include "vclock/time_arguments.h"

using namespace vclock;

namespace {

// The type sits behind it, where the C library's static initialisers put it.
struct Mutex {
    uint32_t owner;  // thread number, 0: free
    uint32_t number;
    uint32_t depth : 31;   // recursive mutexes: locks beyond the first
    uint32_t waiting : 1;  // somebody may wait
};

struct Condition {
    uint32_t number;
    uint32_t clock;  // clockid_t
};

// The value sits where the C library has it in a fresh semaphore, a named one's too.
struct Semaphore {
    uint32_t value;
    uint32_t waiting;
    uint32_t unused;
    uint32_t number;
};

struct ReadWriteLock {
    uint32_t readers;
    uint32_t writer;  // thread number, 0: none
    uint32_t number;
    uint32_t waiting;
};

struct Barrier {
    uint32_t threads;
    uint32_t arrived;
    uint32_t number;
    uint32_t round;
};

static_assert(sizeof(Mutex) <= offsetof(pthread_mutex_t, __data.__kind), "fits before the type");
static_assert(sizeof(Condition) <= sizeof(pthread_cond_t), "fits");
static_assert(sizeof(Semaphore) <= sizeof(sem_t), "fits");
static_assert(sizeof(ReadWriteLock) <= sizeof(pthread_rwlock_t), "fits");
static_assert(sizeof(Barrier) <= sizeof(pthread_barrier_t), "fits");

template <typename Overlay, typename Original>
Overlay& overlay(Original* object) {
    return *reinterpret_cast<Overlay*>(object);
}

// Before the domain exists there is one thread, the first one.
uint32_t myNumber() {
    return self.number != 0 ? self.number : 1;
}

int kindOf(const pthread_mutex_t* mutex) {
    return mutex->__data.__kind & 3;
}

WaitFor waitFor(Wait kind, uint32_t& number, const void* address, Deadline until) {
    WaitFor what;
    what.kind = kind;
    what.object = objectNumber(number);
    what.until = until;
    what.address = address;
    return what;
}

constexpr Deadline kNoDeadline = {};
constexpr uint32_t kDeepest = UINT32_MAX / 2;

int lockMutex(pthread_mutex_t* mutex, Deadline until) {
    Turn turn;
    Mutex& m = overlay<Mutex>(mutex);
    uint32_t me = myNumber();
    if (__builtin_expect(m.owner == 0, 1)) {
        m.owner = me;
        return 0;
    }
    if (m.owner == me && kindOf(mutex) == PTHREAD_MUTEX_RECURSIVE) {
        if (m.depth == kDeepest)
            return EAGAIN;
        m.depth++;
        return 0;
    }
    if (m.owner == me && kindOf(mutex) == PTHREAD_MUTEX_ERRORCHECK)
        return EDEADLK;
    if (!turn) {
        // The process is ending and its other threads stand still for good.
        m.owner = me;
        return 0;
    }
    for (;;) {
        m.waiting = 1;
        WaitFor what = waitFor(Wait::Mutex, m.number, mutex, until);
        what.owner = m.owner;
        Result result = wait(what);
        if (result == Result::Woken)
            return 0;  // The unlocking thread has made this one the owner.
        if (result == Result::TimedOut)
            return ETIMEDOUT;
    }
}

// First come, first served: the mutex passes from hand to hand.
void releaseMutex(Mutex& m) {
    m.depth = 0;
    m.owner = 0;
    if (m.waiting == 0 || region == nullptr)
        return;
    m.owner = wakeOne(Wait::Mutex, m.number);
    m.waiting = m.owner != 0;
}

}  // namespace

VCLOCK_REPLACE(int, pthread_mutex_init, pthread_mutex_t* mutex, const pthread_mutexattr_t* attr) {
    int type = PTHREAD_MUTEX_NORMAL;
    if (attr != nullptr)
        pthread_mutexattr_gettype(attr, &type);
    memset(mutex, 0, sizeof *mutex);
    mutex->__data.__kind = type;
    return 0;
}

VCLOCK_REPLACE(int, pthread_mutex_destroy, pthread_mutex_t* mutex) {
    return overlay<Mutex>(mutex).owner != 0 ? EBUSY : 0;
}

VCLOCK_REPLACE(int, pthread_mutex_lock, pthread_mutex_t* mutex) {
    return lockMutex(mutex, kNoDeadline);
}

VCLOCK_REPLACE(int, pthread_mutex_trylock, pthread_mutex_t* mutex) {
    Turn turn;
    Mutex& m = overlay<Mutex>(mutex);
    if (m.owner == 0) {
        m.owner = myNumber();
        return 0;
    }
    if (m.owner == myNumber() && kindOf(mutex) == PTHREAD_MUTEX_RECURSIVE) {
        m.depth++;
        return 0;
    }
    if (turn)
        failedPoll();
    return EBUSY;
}

VCLOCK_REPLACE(int, pthread_mutex_clocklock, pthread_mutex_t* mutex, clockid_t clock,
               const timespec* time) {
    if (!validTime(time))
        return overlay<Mutex>(mutex).owner == 0 ? lockMutex(mutex, kNoDeadline) : EINVAL;
    return lockMutex(mutex, deadlineAt(clock, *time));
}

VCLOCK_REPLACE(int, pthread_mutex_timedlock, pthread_mutex_t* mutex, const timespec* time) {
    return replaced_pthread_mutex_clocklock(mutex, CLOCK_REALTIME, time);
}

VCLOCK_REPLACE(int, pthread_mutex_unlock, pthread_mutex_t* mutex) {
    Turn turn;
    Mutex& m = overlay<Mutex>(mutex);
    int kind = kindOf(mutex);
    if (kind == PTHREAD_MUTEX_RECURSIVE || kind == PTHREAD_MUTEX_ERRORCHECK) {
        if (m.owner != myNumber())
            return EPERM;
        if (m.depth > 0) {
            m.depth--;
            return 0;
        }
    }
    bool passes = m.waiting != 0;
    releaseMutex(m);
    if (passes && turn)
        afterWake();
    return 0;
}

VCLOCK_REPLACE(int, pthread_mutex_consistent, pthread_mutex_t*) {
    return 0;
}

VCLOCK_REPLACE(int, pthread_cond_init, pthread_cond_t* condition, const pthread_condattr_t* attr) {
    clockid_t clock = CLOCK_REALTIME;
    if (attr != nullptr)
        pthread_condattr_getclock(attr, &clock);
    memset(condition, 0, sizeof *condition);
    overlay<Condition>(condition).clock = static_cast<uint32_t>(clock);
    return 0;
}

VCLOCK_REPLACE(int, pthread_cond_destroy, pthread_cond_t*) {
    return 0;
}

static int waitCondition(pthread_cond_t* condition, pthread_mutex_t* mutex, Deadline until) {
    Turn turn;
    if (!turn)
        return 0;
    Mutex& m = overlay<Mutex>(mutex);
    if (kindOf(mutex) != PTHREAD_MUTEX_NORMAL && m.owner != self.number)
        return EPERM;
    uint32_t depth = m.depth;
    releaseMutex(m);
    WaitFor what = waitFor(Wait::Condition, overlay<Condition>(condition).number, condition, until);
    what.cancellable = true;
    Result result = wait(what);
    lockMutex(mutex, kNoDeadline);
    m.depth = depth;
    if (result == Result::Retry)
        real().pthread_testcancel();
    return result == Result::TimedOut ? ETIMEDOUT : 0;
}

VCLOCK_REPLACE(int, pthread_cond_wait, pthread_cond_t* condition, pthread_mutex_t* mutex) {
    return waitCondition(condition, mutex, kNoDeadline);
}

VCLOCK_REPLACE(int, pthread_cond_clockwait, pthread_cond_t* condition, pthread_mutex_t* mutex,
               clockid_t clock, const timespec* time) {
    if (!validTime(time))
        return EINVAL;
    return waitCondition(condition, mutex, deadlineAt(clock, *time));
}

VCLOCK_REPLACE(int, pthread_cond_timedwait, pthread_cond_t* condition, pthread_mutex_t* mutex,
               const timespec* time) {
    clockid_t clock = static_cast<clockid_t>(overlay<Condition>(condition).clock);
    return replaced_pthread_cond_clockwait(condition, mutex, clock, time);
}

VCLOCK_REPLACE(int, pthread_cond_signal, pthread_cond_t* condition) {
    Turn turn;
    uint32_t number = overlay<Condition>(condition).number;
    if (turn && number != 0 && wakeOne(Wait::Condition, number) != 0)
        afterWake();
    return 0;
}

VCLOCK_REPLACE(int, pthread_cond_broadcast, pthread_cond_t* condition) {
    Turn turn;
    uint32_t number = overlay<Condition>(condition).number;
    if (turn && number != 0 && wakeAll(Wait::Condition, number) != 0)
        afterWake();
    return 0;
}

VCLOCK_REPLACE(int, sem_init, sem_t* semaphore, int, unsigned value) {
    if (value > SEM_VALUE_MAX) {
        errno = EINVAL;
        return -1;
    }
    memset(semaphore, 0, sizeof *semaphore);
    overlay<Semaphore>(semaphore).value = value;
    return 0;
}

VCLOCK_REPLACE(int, sem_destroy, sem_t*) {
    return 0;
}

static int waitSemaphore(sem_t* semaphore, Deadline until) {
    Turn turn;
    Semaphore& s = overlay<Semaphore>(semaphore);
    for (;;) {
        if (s.value > 0) {
            s.value--;
            return 0;
        }
        if (!turn)
            return 0;
        s.waiting = 1;
        WaitFor what = waitFor(Wait::Semaphore, s.number, semaphore, until);
        what.unless = &s.value;
        what.restartable = true;
        what.interruptible = what.cancellable = what.endsIfCancelled = true;
        Result result = wait(what);
        if (result == Result::Woken)
            return 0;  // The post went to this thread and not into the value.
        if (result == Result::Retry)
            continue;
        errno = result == Result::TimedOut ? ETIMEDOUT : EINTR;
        return -1;
    }
}

VCLOCK_REPLACE(int, sem_wait, sem_t* semaphore) {
    return waitSemaphore(semaphore, kNoDeadline);
}

VCLOCK_REPLACE(int, sem_trywait, sem_t* semaphore) {
    Turn turn;
    Semaphore& s = overlay<Semaphore>(semaphore);
    if (s.value > 0) {
        s.value--;
        return 0;
    }
    if (turn)
        failedPoll();
    errno = EAGAIN;
    return -1;
}

VCLOCK_REPLACE(int, sem_clockwait, sem_t* semaphore, clockid_t clock, const timespec* time) {
    if (!validTime(time) && overlay<Semaphore>(semaphore).value == 0) {
        errno = EINVAL;
        return -1;
    }
    return waitSemaphore(semaphore, time != nullptr ? deadlineAt(clock, *time) : kNoDeadline);
}

VCLOCK_REPLACE(int, sem_timedwait, sem_t* semaphore, const timespec* time) {
    return replaced_sem_clockwait(semaphore, CLOCK_REALTIME, time);
}

VCLOCK_REPLACE(int, sem_post, sem_t* semaphore) {
    Semaphore& s = overlay<Semaphore>(semaphore);
    Turn turn;
    if (s.value >= SEM_VALUE_MAX) {
        errno = EOVERFLOW;
        return -1;
    }
    if (!turn) {
        s.value++;
        return 0;
    }
    if (s.waiting != 0 && wakeOne(Wait::Semaphore, s.number) != 0) {
        afterWake();
        return 0;
    }
    s.waiting = 0;
    s.value++;
    return 0;
}

VCLOCK_REPLACE(int, sem_getvalue, sem_t* semaphore, int* value) {
    *value = static_cast<int>(overlay<Semaphore>(semaphore).value);
    return 0;
}

VCLOCK_REPLACE(int, pthread_rwlock_init, pthread_rwlock_t* lock, const pthread_rwlockattr_t*) {
    memset(lock, 0, sizeof *lock);
    return 0;
}

VCLOCK_REPLACE(int, pthread_rwlock_destroy, pthread_rwlock_t*) {
    return 0;
}

static bool tryReadWriteLock(ReadWriteLock& l, bool writing) {
    if (l.writer != 0 || (writing && l.readers != 0))
        return false;
    if (writing)
        l.writer = myNumber();
    else
        l.readers++;
    return true;
}

static int lockReadWrite(pthread_rwlock_t* lock, bool writing, Deadline until) {
    Turn turn;
    ReadWriteLock& l = overlay<ReadWriteLock>(lock);
    if (l.writer == myNumber())
        return EDEADLK;
    while (!tryReadWriteLock(l, writing)) {
        if (!turn)
            return 0;
        l.waiting = 1;
        WaitFor what = waitFor(Wait::ReadWriteLock, l.number, lock, until);
        what.owner = l.writer;
        if (wait(what) == Result::TimedOut)
            return ETIMEDOUT;
    }
    return 0;
}

VCLOCK_REPLACE(int, pthread_rwlock_rdlock, pthread_rwlock_t* lock) {
    return lockReadWrite(lock, false, kNoDeadline);
}

VCLOCK_REPLACE(int, pthread_rwlock_wrlock, pthread_rwlock_t* lock) {
    return lockReadWrite(lock, true, kNoDeadline);
}

VCLOCK_REPLACE(int, pthread_rwlock_tryrdlock, pthread_rwlock_t* lock) {
    Turn turn;
    bool got = tryReadWriteLock(overlay<ReadWriteLock>(lock), false);
    if (!got && turn)
        failedPoll();
    return got ? 0 : EBUSY;
}

VCLOCK_REPLACE(int, pthread_rwlock_trywrlock, pthread_rwlock_t* lock) {
    Turn turn;
    bool got = tryReadWriteLock(overlay<ReadWriteLock>(lock), true);
    if (!got && turn)
        failedPoll();
    return got ? 0 : EBUSY;
}

VCLOCK_REPLACE(int, pthread_rwlock_clockrdlock, pthread_rwlock_t* lock, clockid_t clock,
               const timespec* time) {
    return validTime(time) ? lockReadWrite(lock, false, deadlineAt(clock, *time)) : EINVAL;
}

VCLOCK_REPLACE(int, pthread_rwlock_clockwrlock, pthread_rwlock_t* lock, clockid_t clock,
               const timespec* time) {
    return validTime(time) ? lockReadWrite(lock, true, deadlineAt(clock, *time)) : EINVAL;
}

VCLOCK_REPLACE(int, pthread_rwlock_timedrdlock, pthread_rwlock_t* lock, const timespec* time) {
    return replaced_pthread_rwlock_clockrdlock(lock, CLOCK_REALTIME, time);
}

VCLOCK_REPLACE(int, pthread_rwlock_timedwrlock, pthread_rwlock_t* lock, const timespec* time) {
    return replaced_pthread_rwlock_clockwrlock(lock, CLOCK_REALTIME, time);
}

VCLOCK_REPLACE(int, pthread_rwlock_unlock, pthread_rwlock_t* lock) {
    Turn turn;
    ReadWriteLock& l = overlay<ReadWriteLock>(lock);
    if (l.writer != 0)
        l.writer = 0;
    else if (l.readers > 0)
        l.readers--;
    if (l.waiting != 0 && l.readers == 0 && turn) {
        l.waiting = 0;
        if (wakeAll(Wait::ReadWriteLock, l.number) != 0)
            afterWake();
    }
    return 0;
}

VCLOCK_REPLACE(int, pthread_barrier_init, pthread_barrier_t* barrier, const pthread_barrierattr_t*,
               unsigned count) {
    if (count == 0)
        return EINVAL;
    memset(barrier, 0, sizeof *barrier);
    overlay<Barrier>(barrier).threads = count;
    return 0;
}

VCLOCK_REPLACE(int, pthread_barrier_destroy, pthread_barrier_t*) {
    return 0;
}

VCLOCK_REPLACE(int, pthread_barrier_wait, pthread_barrier_t* barrier) {
    Turn turn;
    Barrier& b = overlay<Barrier>(barrier);
    if (++b.arrived >= b.threads) {
        b.arrived = 0;
        b.round++;
        if (turn && b.number != 0 && wakeAll(Wait::Barrier, b.number) != 0)
            afterWake();
        return PTHREAD_BARRIER_SERIAL_THREAD;
    }
    uint32_t round = b.round;
    while (turn && b.round == round)
        wait(waitFor(Wait::Barrier, b.number, barrier, kNoDeadline));
    return 0;
}

VCLOCK_REPLACE(int, pthread_spin_init, pthread_spinlock_t* lock, int) {
    *lock = 0;
    return 0;
}

VCLOCK_REPLACE(int, pthread_spin_lock, pthread_spinlock_t* lock) {
    Turn turn;
    while (*lock == 1 && turn) {
        yield();
        failedPoll();
    }
    *lock = 1;
    return 0;
}

VCLOCK_REPLACE(int, pthread_spin_trylock, pthread_spinlock_t* lock) {
    Turn turn;
    if (*lock == 1) {
        if (turn)
            failedPoll();
        return EBUSY;
    }
    *lock = 1;
    return 0;
}

VCLOCK_REPLACE(int, pthread_spin_unlock, pthread_spinlock_t* lock) {
    Turn turn;
    *lock = 0;
    return 0;
}

// Once-controls: 0 not begun, 1 being done, 2 done, as the C library has them.
static void onceAgain(void* control) {
    *static_cast<pthread_once_t*>(control) = 0;
    if (region != nullptr)
        wakeAll(Wait::Once, 0);
}

VCLOCK_REPLACE(int, pthread_once, pthread_once_t* control, void (*function)(void)) {
    if (__atomic_load_n(control, __ATOMIC_ACQUIRE) == 2)
        return 0;
    Turn turn;
    while (*control == 1 && turn) {
        WaitFor what;
        what.kind = Wait::Once;
        what.address = control;
        wait(what);
    }
    if (*control == 2)
        return 0;
    *control = 1;
    // An exception, or the thread's end, inside the function leaves the control as it was.
    struct Attempt {
        pthread_once_t* control;
        bool done;
        ~Attempt() {
            if (!done)
                onceAgain(control);
        }
    } attempt = {control, false};
    function();
    attempt.done = true;
    __atomic_store_n(control, 2, __ATOMIC_RELEASE);
    if (turn)
        wakeAll(Wait::Once, 0);
    return 0;
}

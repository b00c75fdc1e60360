// Replacements of what makes something happen at a time: alarm and interval timers, POSIX timers,
// timer descriptors.
//
// Each process that arms one has a thread of ours, which waits in virtual time for the next to
// expire: it sends the signal, starts the function's thread, or writes into the counter that stands
// for the descriptor. Only who has the token touches the table.
#include <errno.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/timerfd.h>
#include <time.h>
#include <unistd.h>

#include "vclock/domain.h"
#include "vclock/real.h"
#include "vclock/signals.h"
#include "vclock/time_arguments.h"
#include "vclock/timers.h"

namespace vclock {

namespace {

enum class Action { None, Signal, ThreadSignal, Function, Count };

struct Timer {
    bool used;
    Action action;
    Clock clock;       // that it was made for
    Deadline due;      // kForever: not armed
    int64_t interval;  // 0: once
    int64_t overrun;   // of the last expiry: how many more there were
    int number;        // of the signal
    bool tellsSource;  // the signal carries value and timer
    sigval value;
    pid_t thread;
    void (*function)(sigval);
    int file;     // the counter as the program has it
    int ownFile;  // the same, safe from the program's closing of files
};

constexpr size_t kTimers = 256;
// The first is the process's interval timer of real time, which alarm() sets too.
constexpr size_t kAlarm = 0;

}  // namespace

static Timer timers[kTimers];
static uint32_t keeper;  // the object that the thread waits for, 0: there is no thread
static bool keeperEnds;
static size_t countFiles;

static int64_t monotonic(const Deadline& due) {
    return due.ns == kForever ? kForever
                              : due.ns - (clockNow(due.clock) - clockNow(Clock::Monotonic));
}

static int64_t remaining(const Timer& timer) {
    if (timer.due.ns == kForever)
        return 0;
    int64_t left = timer.due.ns - clockNow(timer.due.clock);
    return left > 0 ? left : 1;
}

// ---- Expiry ----

namespace {
struct Call {
    void (*function)(sigval);
    sigval value;
};
}  // namespace

static void* runFunction(void* argument) {
    Call call = *static_cast<Call*>(argument);
    free(argument);
    // The keeper has all signals blocked.
    sigset_t none;
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
    call.function(call.value);
    return nullptr;
}

static void startFunction(const Timer& timer) {
    Call* call = static_cast<Call*>(malloc(sizeof(Call)));
    if (call == nullptr)
        return;
    *call = {timer.function, timer.value};
    pthread_attr_t attributes;
    pthread_t thread;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    if (pthread_create(&thread, &attributes, runFunction, call) != 0)
        free(call);
    pthread_attr_destroy(&attributes);
}

static void sendSignal(const Timer& timer) {
    siginfo_t info = {};
    info.si_signo = timer.number;
    info.si_code = SI_TIMER;
    info.si_value = timer.value;
    info.si_timerid = static_cast<int>(&timer - timers);
    info.si_overrun = static_cast<int>(timer.overrun);
    uint32_t thread =
        timer.action == Action::ThreadSignal ? findThreadById(getpid(), timer.thread) : 0;
    SentSignal sent(findProcess(getpid()), thread, timer.number);
    long result;
    if (timer.action == Action::ThreadSignal)
        result = real().syscall(SYS_rt_tgsigqueueinfo, getpid(), timer.thread, timer.number, &info);
    else if (timer.tellsSource)
        result = real().syscall(SYS_rt_sigqueueinfo, getpid(), timer.number, &info);
    else
        result = real().kill(getpid(), timer.number);
    if (result == 0)
        sent.awaitArrival();
}

static void expire(Timer* timer) {
    int64_t late = clockNow(timer->due.clock) - timer->due.ns;
    int64_t count = timer->interval > 0 ? 1 + late / timer->interval : 1;
    timer->due.ns = timer->interval > 0 ? timer->due.ns + count * timer->interval : kForever;
    timer->overrun = count - 1;
    uint64_t number = static_cast<uint64_t>(count);
    ssize_t ignored;
    switch (timer->action) {
        case Action::None:
            break;
        case Action::Signal:
        case Action::ThreadSignal:
            sendSignal(*timer);
            break;
        case Action::Function:
            startFunction(*timer);
            break;
        case Action::Count:
            ignored = real().write(timer->ownFile, &number, sizeof number);
            (void)ignored;
            break;
    }
}

static Timer* nextToExpire() {
    Timer* next = nullptr;
    for (Timer& timer : timers) {
        if (timer.used && timer.due.ns != kForever &&
            (next == nullptr || monotonic(timer.due) < monotonic(next->due)))
            next = &timer;
    }
    return next;
}

static void* keepTimers(void*) {
    while (!keeperEnds) {
        Timer* next = nextToExpire();
        if (next != nullptr && next->due.ns <= clockNow(next->due.clock)) {
            expire(next);
            continue;
        }
        WaitFor what;
        what.kind = Wait::Timer;
        what.object = keeper;
        what.until = next != nullptr ? next->due : Deadline();
        wait(what);
    }
    return nullptr;
}

// Starts the thread with the first timer, and tells it of each change.
static void timersChanged() {
    if (keeper != 0) {
        wakeAll(Wait::Timer, keeper);
        return;
    }
    objectNumber(keeper);
    sigset_t all;
    sigset_t before;
    pthread_t thread;
    sigfillset(&all);
    real().pthread_sigmask(SIG_BLOCK, &all, &before);
    if (pthread_create(&thread, nullptr, keepTimers, nullptr) == 0)
        pthread_detach(thread);
    else
        keeper = 0;
    real().pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

static Deadline deadlineOf(Clock clock, int64_t ns, bool absolute) {
    if (ns == 0)
        return Deadline();
    if (absolute)
        return {clock, ns};
    // Setting the calendar moves no relative time; being suspended counts where the clock goes on.
    return clock == Clock::Boot ? Deadline{clock, clockNow(clock) + ns} : deadlineIn(ns);
}

static void arm(Timer* timer, const Deadline& due, int64_t interval) {
    timer->due = due;
    timer->interval = interval;
    timer->overrun = 0;
    if (due.ns != kForever || keeper != 0)
        timersChanged();
}

void wakeTimers() {
    if (keeper != 0)
        wakeAll(Wait::Timer, keeper);
}

void endTimers() {
    keeperEnds = true;
    wakeTimers();
}

void forgetTimers() {
    for (Timer& timer : timers)
        timer = {};
    keeper = 0;
    countFiles = 0;
}

static timeval timevalOf(const timespec& time) {
    // What is left of an armed timer is never nothing.
    suseconds_t us = static_cast<suseconds_t>((time.tv_nsec + 999) / 1000);
    return us < 1000000 ? timeval{time.tv_sec, us} : timeval{time.tv_sec + 1, 0};
}

void carryAlarm(bool away) {
    const Timer& timer = timers[kAlarm];
    if (!timer.used || timer.due.ns == kForever)
        return;
    itimerval value = {};
    if (away)
        value = {timevalOf(toTimespec(timer.interval)), timevalOf(toTimespec(remaining(timer)))};
    real().setitimer(ITIMER_REAL, &value, nullptr);
}

static Timer* newTimer() {
    for (size_t i = kAlarm + 1; i < kTimers; i++) {
        if (!timers[i].used) {
            timers[i] = {};
            timers[i].used = true;
            timers[i].due = Deadline();
            return &timers[i];
        }
    }
    errno = EAGAIN;
    return nullptr;
}

// Null for a timer that is not ours.
static Timer* ours(timer_t id) {
    Timer* timer = static_cast<Timer*>(id);
    return timer > timers && timer < timers + kTimers && timer->used ? timer : nullptr;
}

static Timer* oursByFile(int file) {
    for (Timer& timer : timers) {
        if (timer.used && timer.action == Action::Count && timer.file == file)
            return &timer;
    }
    return nullptr;
}

static void dropFile(int file) {
    Timer* timer = oursByFile(file);
    if (timer == nullptr)
        return;
    timer->used = false;
    countFiles--;
    real().close(timer->ownFile);
    wakeTimers();
}

static itimerspec valueOf(const Timer& timer) {
    return {toTimespec(timer.interval), toTimespec(remaining(timer))};
}

static bool validValue(const itimerspec* value) {
    return value != nullptr && validTime(&value->it_value) && validTime(&value->it_interval);
}

static bool clockOf(clockid_t id, Clock* clock) {
    *clock = id == CLOCK_REALTIME || id == CLOCK_REALTIME_ALARM || id == CLOCK_TAI ? Clock::Calendar
             : id == CLOCK_BOOTTIME || id == CLOCK_BOOTTIME_ALARM                  ? Clock::Boot
                                                                  : Clock::Monotonic;
    return *clock != Clock::Monotonic || id == CLOCK_MONOTONIC;
}

// The interval timer of real time; its old value on request.
static void setAlarm(int64_t ns, int64_t interval, itimerspec* old) {
    Timer& timer = timers[kAlarm];
    if (!timer.used) {
        timer.used = true;
        timer.action = Action::Signal;
        timer.number = SIGALRM;
        timer.due = Deadline();
    }
    if (old != nullptr)
        *old = valueOf(timer);
    arm(&timer, deadlineOf(Clock::Monotonic, ns, false), interval);
}

}  // namespace vclock

using namespace vclock;

static int64_t nsOf(const timeval& time) {
    return toNs({time.tv_sec, static_cast<long>(time.tv_usec * 1000)});
}

VCLOCK_REPLACE(int, setitimer, __itimer_which_t which, const itimerval* value, itimerval* old) {
    Turn turn;
    if (!turn || which != ITIMER_REAL)
        return real().setitimer(which, value, old);
    if (value == nullptr || value->it_value.tv_usec < 0 || value->it_value.tv_usec > 999999 ||
        value->it_interval.tv_usec < 0 || value->it_interval.tv_usec > 999999) {
        errno = EINVAL;
        return -1;
    }
    itimerspec before;
    setAlarm(nsOf(value->it_value), nsOf(value->it_interval), &before);
    if (old != nullptr)
        *old = {timevalOf(before.it_interval), timevalOf(before.it_value)};
    return 0;
}

VCLOCK_REPLACE(int, getitimer, __itimer_which_t which, itimerval* value) {
    Turn turn;
    if (!turn || which != ITIMER_REAL)
        return real().getitimer(which, value);
    itimerspec now = timers[kAlarm].used ? valueOf(timers[kAlarm]) : itimerspec{};
    *value = {timevalOf(now.it_interval), timevalOf(now.it_value)};
    return 0;
}

VCLOCK_REPLACE(unsigned, alarm, unsigned seconds) {
    Turn turn;
    if (!turn)
        return real().alarm(seconds);
    itimerspec before;
    setAlarm(seconds * kSecond, 0, &before);
    // Rounded, and never 0 while one was armed.
    time_t left = before.it_value.tv_sec;
    bool up = before.it_value.tv_nsec >= kSecond / 2 || (left == 0 && before.it_value.tv_nsec > 0);
    return static_cast<unsigned>(left + (up ? 1 : 0));
}

VCLOCK_REPLACE(useconds_t, ualarm, useconds_t us, useconds_t interval) {
    Turn turn;
    if (!turn)
        return real().ualarm(us, interval);
    itimerspec before;
    setAlarm(int64_t{us} * 1000, int64_t{interval} * 1000, &before);
    return static_cast<useconds_t>(toNs(before.it_value) / 1000);
}

VCLOCK_REPLACE(int, timer_create, clockid_t id, struct sigevent* event, timer_t* made) {
    Turn turn;
    Clock clock;
    if (!turn || !clockOf(id, &clock))
        return real().timer_create(id, event, made);
    Timer* timer = newTimer();
    if (timer == nullptr)
        return -1;
    timer->clock = clock;
    timer->tellsSource = true;
    timer->action = Action::Signal;
    timer->number = SIGALRM;
    timer->value.sival_ptr = timer;
    if (event != nullptr) {
        timer->value = event->sigev_value;
        timer->number = event->sigev_signo;
        timer->function = event->sigev_notify_function;
        switch (event->sigev_notify) {
            case SIGEV_NONE:
                timer->action = Action::None;
                break;
            case SIGEV_SIGNAL:
                break;
            case SIGEV_THREAD:
                timer->action = Action::Function;
                break;
            case SIGEV_THREAD_ID:
                timer->action = Action::ThreadSignal;
                timer->thread = event->_sigev_un._tid;
                break;
            default:
                timer->used = false;
                errno = EINVAL;
                return -1;
        }
    }
    *made = timer;
    return 0;
}

VCLOCK_REPLACE(int, timer_settime, timer_t id, int flags, const itimerspec* value,
               itimerspec* old) {
    Turn turn;
    Timer* timer = turn ? ours(id) : nullptr;
    if (timer == nullptr)
        return real().timer_settime(id, flags, value, old);
    if (!validValue(value)) {
        errno = EINVAL;
        return -1;
    }
    if (old != nullptr)
        *old = valueOf(*timer);
    arm(timer, deadlineOf(timer->clock, toNs(value->it_value), (flags & TIMER_ABSTIME) != 0),
        toNs(value->it_interval));
    return 0;
}

VCLOCK_REPLACE(int, timer_gettime, timer_t id, itimerspec* value) {
    Turn turn;
    Timer* timer = turn ? ours(id) : nullptr;
    if (timer == nullptr)
        return real().timer_gettime(id, value);
    *value = valueOf(*timer);
    return 0;
}

VCLOCK_REPLACE(int, timer_getoverrun, timer_t id) {
    Turn turn;
    Timer* timer = turn ? ours(id) : nullptr;
    if (timer == nullptr)
        return real().timer_getoverrun(id);
    return static_cast<int>(timer->overrun);
}

VCLOCK_REPLACE(int, timer_delete, timer_t id) {
    Turn turn;
    Timer* timer = turn ? ours(id) : nullptr;
    if (timer == nullptr)
        return real().timer_delete(id);
    timer->used = false;
    wakeTimers();
    return 0;
}

// A counter stands for a timer's descriptor: both are read as a number of eight bytes, and can be
// polled. A second descriptor of the same counter stays with the timer.
VCLOCK_REPLACE(int, timerfd_create, int id, int flags) {
    Turn turn;
    Clock clock;
    if (!turn || !clockOf(id, &clock))
        return real().timerfd_create(id, flags);
    Timer* timer = newTimer();
    int file = timer != nullptr ? eventfd(0, flags) : -1;
    int own = file >= 0 ? real().fcntl(file, F_DUPFD_CLOEXEC, kOwnDescriptors) : -1;
    if (own < 0) {
        int saved = errno;
        if (timer != nullptr)
            timer->used = false;
        if (file >= 0)
            real().close(file);
        errno = saved;
        return -1;
    }
    dropFile(file);  // It was closed unseen, if another timer had it.
    timer->action = Action::Count;
    timer->clock = clock;
    timer->file = file;
    timer->ownFile = own;
    countFiles++;
    return file;
}

VCLOCK_REPLACE(int, timerfd_settime, int file, int flags, const itimerspec* value,
               itimerspec* old) {
    Turn turn;
    Timer* timer = turn ? oursByFile(file) : nullptr;
    if (timer == nullptr)
        return real().timerfd_settime(file, flags, value, old);
    if (!validValue(value)) {
        errno = EINVAL;
        return -1;
    }
    if (old != nullptr)
        *old = valueOf(*timer);
    uint64_t count;
    pollfd counted = {timer->ownFile, POLLIN, 0};
    if (real().poll(&counted, 1, 0) > 0 && real().read(timer->ownFile, &count, sizeof count) < 0)
        return -1;
    arm(timer, deadlineOf(timer->clock, toNs(value->it_value), (flags & TFD_TIMER_ABSTIME) != 0),
        toNs(value->it_interval));
    return 0;
}

VCLOCK_REPLACE(int, timerfd_gettime, int file, itimerspec* value) {
    Turn turn;
    Timer* timer = turn ? oursByFile(file) : nullptr;
    if (timer == nullptr)
        return real().timerfd_gettime(file, value);
    *value = valueOf(*timer);
    return 0;
}

VCLOCK_REPLACE(int, close, int file) {
    if (__builtin_expect(countFiles > 0, 0)) {
        Turn turn;
        if (turn)
            dropFile(file);
    }
    return real().close(file);
}

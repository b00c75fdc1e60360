// Probes of what comes from nowhere: signals to threads and processes, timers, and programs that
// were started and live in real time.
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <semaphore.h>
#include <setjmp.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <string.h>
#include <sys/epoll.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/select.h>
#include <sys/signalfd.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/timerfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "probe.h"

static sem_t handled;
static std::atomic<int> count{0};
static std::atomic<int64_t> handledAt{0};

static void onSignal(int) {
    int saved = errno;
    count++;
    handledAt = now();
    sem_post(&handled);
    errno = saved;
}

static void install(int number, int flags = 0, void (*handler)(int) = onSignal) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigemptyset(&action.sa_mask);
    CHECK(sigaction(number, &action, nullptr) == 0);
    count = 0;
    sem_init(&handled, 0, 0);
}

static sigset_t only(int number) {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, number);
    return set;
}

static void awaitHandled() {
    while (sem_wait(&handled) != 0) {
    }
}

// A handler in a waiting thread runs, whatever the thread waits for, and before time goes on; only
// waits that signals interrupt end early.
static void signalsToThreads() {
    install(SIGUSR1, SA_RESTART);
    std::mutex mutex;
    std::condition_variable condition;
    bool over = false;
    int ends[2];
    CHECK(pipe(ends) == 0);
    sem_t never;
    sem_init(&never, 0, 0);
    mutex.lock();
    const std::function<void()> waits[] = {
        [&] {
            std::unique_lock<std::mutex> lock(mutex);
            condition.wait(lock, [&] { return over; });
        },
        [&] {
            char byte;
            CHECK(read(ends[0], &byte, 1) == 1);  // restarted
        },
        [&] { CHECK(sem_wait(&never) == 0); },  // the same
        [&] { CHECK(sleep(1000) == 1000); },    // not
        [&] { CHECK(poll(nullptr, 0, -1) < 0 && errno == EINTR); },
    };
    std::vector<std::thread> threads;
    for (const auto& wait : waits)
        threads.emplace_back(wait);
    mutex.unlock();
    usleep(1000);
    int64_t began = now();
    for (int round = 0; round < 20; round++) {
        for (size_t i = 0; i < 3; i++) {
            CHECK(pthread_kill(threads[i].native_handle(), SIGUSR1) == 0);
            awaitHandled();
        }
    }
    for (size_t i = 3; i < 5; i++) {
        CHECK(pthread_kill(threads[i].native_handle(), SIGUSR1) == 0);
        awaitHandled();
    }
    CHECK(now() == began && count == 62);
    over = true;
    condition.notify_all();
    CHECK(write(ends[1], "x", 1) == 1);
    sem_post(&never);
    for (std::thread& thread : threads)
        thread.join();
    CHECK(now() == began);
    // One signal only, after which the old ways are back.
    install(SIGUSR2, SA_RESETHAND);
    struct sigaction after;
    CHECK(raise(SIGUSR2) == 0 && count == 1);
    CHECK(sigaction(SIGUSR2, nullptr, &after) == 0 && after.sa_handler == SIG_DFL);
    // In a thread that runs, at any moment of its work.
    pthread_t main = pthread_self();
    count = 0;
    std::thread shooter([&] {
        for (int i = 0; i < 200; i++) {
            pthread_kill(main, SIGUSR1);
            usleep(100);
        }
    });
    while (count < 200)
        usleep(7);
    shooter.join();
}

// To a process: from a thread, from a child, to a child, to a group; and the many a handler gets
// while another one runs.
static void signalsToProcesses() {
    install(SIGUSR1);
    sem_t never;
    sem_init(&never, 0, 0);
    std::thread sender([] {
        for (int i = 0; i < 20; i++) {
            usleep(1000);
            kill(getpid(), SIGUSR1);
            int64_t sent = now();
            sleep(3600);  // The handler is not to find that an hour has gone.
            CHECK(handledAt == sent);
        }
    });
    for (int i = 0; i < 20; i++)
        CHECK(sem_wait(&never) < 0 && errno == EINTR);
    sender.join();
    install(SIGUSR1);
    pid_t me = getpid();
    pid_t child = fork();
    if (child == 0) {
        for (int i = 0; i < 10; i++) {
            sigval value = {};
            CHECK(sigqueue(me, SIGUSR1, value) == 0);
            pause();
        }
        _exit(0);
    }
    for (int i = 0; i < 10; i++) {
        awaitHandled();
        kill(child, SIGUSR1);
    }
    int status = 1;
    while (waitpid(child, &status, 0) != child) {
    }
    CHECK(status == 0);
    // Both handle it, and time stands still meanwhile.
    install(SIGUSR2);
    CHECK(setpgid(0, 0) == 0);
    if ((child = fork()) == 0) {
        CHECK(cost([] { pause(); }) == 1000 * kMs);
        _exit(count == 1 ? 0 : 1);
    }
    sleep(1);
    CHECK(killpg(0, SIGUSR2) == 0 && count == 1);
    CHECK(waitpid(child, &status, 0) == child && status == 0);
    // Children that end say so, also to who waits for nothing else.
    static std::atomic<int> ended{0};
    install(SIGCHLD, 0, [](int) {
        while (waitpid(-1, nullptr, WNOHANG) > 0)
            ended++;
        sem_post(&handled);
    });
    for (int i = 0; i < 10; i++) {
        if (fork() == 0)
            _exit(0);
        CHECK(cost([] { awaitHandled(); }) == 0 && ended == i + 1);
    }
}

// Waits with a mask of their own, and waits for signals, in virtual time.
static void maskedWaits() {
    install(SIGUSR1);
    sigset_t blocked = only(SIGUSR1);
    sigset_t none;
    sigemptyset(&none);
    pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
    int set = epoll_create1(0);
    epoll_event event;
    timespec day = {86400, 0};
    const std::function<int()> waits[] = {
        [&] { return ppoll(nullptr, 0, nullptr, &none); },
        [&] { return pselect(0, nullptr, nullptr, nullptr, &day, &none); },
        [&] { return epoll_pwait(set, &event, 1, 86400000, &none); },
        [&] { return sigsuspend(&none); },
    };
    for (const auto& wait : waits) {
        raise(SIGUSR1);
        CHECK(cost([&] { CHECK(wait() < 0 && errno == EINTR); }) == 0);
        pthread_t main = pthread_self();
        std::thread later([&] {
            sleep(7);
            pthread_kill(main, SIGUSR1);
        });
        CHECK(cost([&] { CHECK(wait() < 0 && errno == EINTR); }) == 7000 * kMs);
        later.join();
    }
    CHECK(count == 8);
    timespec time = {5, 0};
    siginfo_t info;
    CHECK(cost([&] { CHECK(sigtimedwait(&blocked, &info, &time) < 0 && errno == EAGAIN); }) ==
          5000 * kMs);
    pid_t child = fork();
    if (child == 0) {
        sleep(3);
        kill(getppid(), SIGUSR1);
        _exit(0);
    }
    CHECK(cost([&] { CHECK(sigwaitinfo(&blocked, &info) == SIGUSR1 && info.si_pid == child); }) ==
          3000 * kMs);
    CHECK(count == 8);
    // One thread for all signals, as servers have it.
    std::atomic<int> got{0};
    std::thread handler([&] {
        for (int number = 0; got < 50; got++)
            CHECK(sigwait(&blocked, &number) == 0 && number == SIGUSR1);
    });
    CHECK(cost([&] {
              for (int i = 0; i < 50; i++) {
                  kill(getpid(), SIGUSR1);
                  sleep(10);
                  CHECK(got == i + 1);
              }
          }) == 500000 * kMs);
    handler.join();
}

static pid_t spawn(const char* command, int output) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, 1);
    const char* words[] = {"sh", "-c", command, nullptr};
    pid_t child = 0;
    CHECK(posix_spawnp(&child, "sh", &actions, nullptr, const_cast<char**>(words), environ) == 0);
    posix_spawn_file_actions_destroy(&actions);
    return child;
}

// A parent hears of its children's ends, and of nothing else, before time goes on.
static void endsOfChildren() {
    sigset_t ends = only(SIGCHLD);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);
    int signals = signalfd(-1, &ends, SFD_CLOEXEC);
    pollfd told = {signals, POLLIN, 0};
    timespec limit = {30, 0};
    signalfd_siginfo about;
    const std::function<void(pid_t)> waits[] = {
        [&](pid_t child) {
            CHECK(poll(&told, 1, 30000) == 1);
            CHECK(read(signals, &about, sizeof about) == sizeof about);
            CHECK(about.ssi_pid == static_cast<uint32_t>(child));
        },
        [&](pid_t) { CHECK(read(signals, &about, sizeof about) == sizeof about); },
        [&](pid_t child) {
            pollfd end = {static_cast<int>(syscall(SYS_pidfd_open, child, 0)), POLLIN, 0};
            CHECK(poll(&end, 1, -1) == 1 && close(end.fd) == 0);
            CHECK(read(signals, &about, sizeof about) == sizeof about);
        },
        [&](pid_t) { CHECK(sigtimedwait(&ends, nullptr, &limit) == SIGCHLD); },
    };
    for (const auto& wait : waits) {
        for (int i = 0; i < 5; i++) {
            pid_t child = fork();
            if (child == 0) {
                sleep(10);
                _exit(0);
            }
            CHECK(cost([&] { wait(child); }) == 10000 * kMs);
            CHECK(waitpid(child, nullptr, 0) == child);
        }
    }
    // A program outside.
    pid_t child = spawn("sleep 0.1", 1);
    CHECK(read(signals, &about, sizeof about) == sizeof about);
    CHECK(waitpid(child, nullptr, 0) == child);
}

// Nobody but the world outside can send what it waits for.
static void awaitsSignal() {
    sigset_t user = only(SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &user, nullptr);
    int signals = signalfd(-1, &user, SFD_CLOEXEC);
    signalfd_siginfo about;
    printf("ready\n");
    fflush(stdout);
    CHECK(read(signals, &about, sizeof about) == sizeof about && about.ssi_signo == SIGUSR1);
}

// Counts signals that come from outside in real time, while two threads hand over all the time and
// others begin and end; the signal with the next number ends it.
static void countsSignals() {
    static std::atomic<bool> over{false};
    install(SIGRTMIN + 2, SA_RESTART);
    struct sigaction end = {};
    end.sa_handler = [](int) { over = true; };
    CHECK(sigaction(SIGRTMIN + 3, &end, nullptr) == 0);
    sem_t turns[2];
    sem_init(&turns[0], 0, 1);
    sem_init(&turns[1], 0, 0);
    auto side = [&](int mine) {
        do {
            while (sem_wait(&turns[mine]) != 0) {
            }
            sem_post(&turns[1 - mine]);
            std::thread([] {}).join();
        } while (!over);
    };
    std::thread other([&] { side(1); });
    printf("ready\n");
    fflush(stdout);
    side(0);
    other.join();
    printf("%d\n", count.load());
}

static sigjmp_buf wayOut;

// A handler jumps out of the wait that it interrupted; the thread and the others go on.
static void jumpsOut() {
    install(SIGALRM, 0, [](int) { siglongjmp(wayOut, 1); });
    sem_t never;
    sem_init(&never, 0, 0);
    std::atomic<int> ticks{0};
    std::thread ticker([&] {
        for (; ticks < 100; ticks++)
            usleep(100000);
    });
    for (int i = 0; i < 5; i++) {
        int64_t began = now();
        if (sigsetjmp(wayOut, 1) == 0) {
            alarm(1);
            sem_wait(&never);
            CHECK(false);
        }
        CHECK(now() - began == 1000 * kMs);
    }
    ticker.join();
    CHECK(ticks == 100);
    // One that jumps within itself takes nothing away from the wait.
    install(SIGUSR1, SA_RESTART, [](int) {
        sigjmp_buf here;
        if (sigsetjmp(here, 1) == 0)
            siglongjmp(here, 1);
    });
    std::mutex mutex;
    mutex.lock();
    std::thread waiter([&] {
        mutex.lock();
        mutex.unlock();
    });
    sleep(1);
    pthread_kill(waiter.native_handle(), SIGUSR1);
    mutex.unlock();
    pthread_kill(waiter.native_handle(), SIGUSR1);
    waiter.join();
}

static void alarms() {
    install(SIGALRM);
    sem_t never;
    sem_init(&never, 0, 0);
    CHECK(alarm(10) == 0);
    CHECK(cost([&] { CHECK(sem_wait(&never) < 0 && errno == EINTR); }) == 10000 * kMs);
    alarm(100);
    sleep(40);
    CHECK(alarm(0) == 60);
    CHECK(cost([] { CHECK(sleep(100) == 0); }) == 100000 * kMs && count == 1);
    itimerval every = {{0, 250000}, {2, 0}};
    CHECK(setitimer(ITIMER_REAL, &every, nullptr) == 0);
    CHECK(cost([] {
              for (int i = 0; i < 9; i++)
                  awaitHandled();
          }) == 3750 * kMs);  // The first alarm's post is there still.
    usleep(100000);
    itimerval left;
    CHECK(getitimer(ITIMER_REAL, &left) == 0 && left.it_value.tv_usec == 150000 &&
          left.it_interval.tv_usec == 250000);
    // A child has none; a program in this one's place keeps it.
    pid_t child = fork();
    if (child == 0)
        _exit(sleep(100) == 0 ? 0 : 1);
    itimerval off = {};
    CHECK(setitimer(ITIMER_REAL, &off, &left) == 0);
    int status = 1;
    CHECK(waitpid(child, &status, 0) == child && status == 0);
    if ((child = fork()) == 0) {
        ualarm(100000, 0);
        execlp("sleep", "sleep", "60", nullptr);
        _exit(1);
    }
    CHECK(waitpid(child, &status, 0) == child && WIFSIGNALED(status) &&
          WTERMSIG(status) == SIGALRM);
    // Without a handler it ends the process, when its time has come.
    if ((child = fork()) == 0) {
        signal(SIGALRM, SIG_DFL);
        alarm(30);
        for (;;)
            sleep(1000);
    }
    CHECK(cost([&] {
              CHECK(waitpid(child, &status, 0) == child && WTERMSIG(status) == SIGALRM);
          }) == 30000 * kMs);
}

static std::atomic<int> called{0};

static void timers() {
    struct sigaction action = {};
    static std::atomic<int> value{0};
    action.sa_flags = SA_SIGINFO;
    action.sa_sigaction = [](int, siginfo_t* info, void*) {
        CHECK(info->si_code == SI_TIMER);
        value += info->si_value.sival_int;
        sem_post(&handled);
    };
    CHECK(sigaction(SIGRTMIN + 3, &action, nullptr) == 0);
    sem_init(&handled, 0, 0);
    sigevent event = {};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = SIGRTMIN + 3;
    event.sigev_value.sival_int = 7;
    timer_t timer;
    CHECK(timer_create(CLOCK_MONOTONIC, &event, &timer) == 0);
    itimerspec every = {at(1500 * kMs), at(1000 * kMs)};
    CHECK(timer_settime(timer, 0, &every, nullptr) == 0);
    CHECK(cost([] {
              for (int i = 0; i < 5; i++)
                  awaitHandled();
          }) == 7000 * kMs);
    itimerspec left;
    CHECK(timer_gettime(timer, &left) == 0 && left.it_value.tv_sec == 1 &&
          left.it_interval.tv_nsec == 500 * kMs && value == 35);
    CHECK(timer_delete(timer) == 0);
    CHECK(sleep(10) == 0 && value == 35);
    // A thread each time, at a date.
    event = {};
    event.sigev_notify = SIGEV_THREAD;
    event.sigev_notify_function = [](sigval) {
        sigset_t blocked;
        CHECK(pthread_sigmask(SIG_BLOCK, nullptr, &blocked) == 0 &&
              !sigismember(&blocked, SIGUSR1));
        called++;
    };
    CHECK(timer_create(CLOCK_REALTIME, &event, &timer) == 0);
    itimerspec date = {{}, at(now(CLOCK_REALTIME) + 60000 * kMs)};
    CHECK(timer_settime(timer, TIMER_ABSTIME, &date, nullptr) == 0);
    timespec earlier = at(now(CLOCK_REALTIME) + 50000 * kMs);
    clock_settime(CLOCK_REALTIME, &earlier);
    sleep(9);
    CHECK(called == 0);
    sleep(2);
    CHECK(called == 1);
    // Descriptors are read, polled, set anew and closed.
    int file = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC);
    itimerspec ticks = {at(100 * kMs), at(100 * kMs)};
    CHECK(timerfd_settime(file, 0, &ticks, nullptr) == 0);
    uint64_t expired = 0;
    CHECK(cost([&] { CHECK(read(file, &expired, 8) == 8 && expired == 1); }) == 100 * kMs);
    usleep(950000);
    CHECK(read(file, &expired, 8) == 8 && expired == 9);
    pollfd one = {file, POLLIN, 0};
    CHECK(cost([&] { CHECK(poll(&one, 1, -1) == 1); }) == 50 * kMs);
    itimerspec once = {{}, at(3000 * kMs)};
    CHECK(timerfd_settime(file, 0, &once, &left) == 0 && left.it_interval.tv_nsec == 100 * kMs);
    CHECK(cost([&] { CHECK(poll(&one, 1, 5000) == 1); }) == 3000 * kMs);
    CHECK(close(file) == 0 && sleep(10) == 0);
}

// What a program outside writes is waited for, however it was started and whoever it left behind.
static void programsOutside() {
    int ends[2];
    char text[16] = "";
    CHECK(pipe2(ends, O_CLOEXEC) == 0);
    pid_t child = spawn("sleep 0.1; echo one", ends[1]);
    CHECK(cost([&] { CHECK(read(ends[0], text, sizeof text) == 4); }) == 0);
    CHECK(waitpid(child, nullptr, 0) == child);
    child = spawn("(sleep 0.2; echo two) &", ends[1]);
    CHECK(waitpid(child, nullptr, 0) == child);
    CHECK(cost([&] { CHECK(read(ends[0], text, sizeof text) == 4); }) == 0);
    if ((child = fork()) == 0) {
        dup2(ends[1], 1);
        execlp("sh", "sh", "-c", "(sleep 0.2; echo three) &", nullptr);
        _exit(1);
    }
    CHECK(waitpid(child, nullptr, 0) == child);
    CHECK(read(ends[0], text, sizeof text) == 6 && memcmp(text, "three\n", 6) == 0);
    // With a time-out, which is measured as the program's own time goes.
    pollfd one = {ends[0], POLLIN, 0};
    child = spawn("sleep 0.1; echo four; exec sleep 60", ends[1]);
    CHECK(cost([&] { CHECK(poll(&one, 1, 30000) == 1); }) == 0);
    CHECK(read(ends[0], text, sizeof text) == 5);
    CHECK(cost([&] { CHECK(poll(&one, 1, 300) == 0); }) == 300 * kMs);
    // A loop that looks now and again whether it has ended, and gives it up after a second.
    CHECK(cost([&] {
              for (int i = 0; i < 10; i++) {
                  CHECK(waitpid(child, nullptr, WNOHANG) == 0);
                  usleep(100000);
              }
          }) == 1000 * kMs);
    kill(child, SIGTERM);
    CHECK(waitpid(child, nullptr, 0) == child);
    // And its end.
    install(SIGCHLD);
    child = spawn("sleep 0.1", 1);
    CHECK(cost([] { awaitHandled(); }) == 0);
    CHECK(waitpid(child, nullptr, 0) == child);
}

static std::atomic<int> forkHandlers{0};

// Handlers of fork work in the new process before fork has returned there.
static void forkHandling() {
    static std::mutex mutex;
    pthread_atfork([] { mutex.lock(); }, [] { mutex.unlock(); },
                   [] {
                       int ends[2];
                       mutex.unlock();
                       CHECK(pipe2(ends, O_CLOEXEC) == 0);
                       CHECK(write(ends[1], "x", 1) == 1);
                       usleep(1000);
                       forkHandlers++;
                   });
    std::thread other([] {
        for (int i = 0; i < 100; i++) {
            std::lock_guard<std::mutex> lock(mutex);
            usleep(700);
        }
    });
    for (int i = 0; i < 30; i++) {
        pid_t child = fork();
        if (child == 0)
            _exit(forkHandlers == 1 ? 0 : 1);
        sched_yield();
        int status = 1;
        CHECK(waitpid(child, &status, 0) == child && status == 0);
    }
    other.join();
}

// A loop that calls nothing waits for what another thread does after a while; that the program has
// blocked and set all signals does not matter.
static void spinsWithoutCall() {
    sigset_t all;
    sigfillset(&all);
    CHECK(sigprocmask(SIG_SETMASK, &all, nullptr) == 0 && signal(SIGRTMAX, SIG_IGN) == SIG_DFL);
    CHECK(signal(SIGRTMAX, SIG_DFL) == SIG_IGN);
    static volatile bool flag = false;
    std::thread other([] {
        usleep(200000);
        flag = true;
    });
    int64_t began = now();
    while (!flag) {
    }
    CHECK(now() - began >= 200 * kMs && now() - began < 5000 * kMs);
    other.join();
}

// The same: what passes is the loop's processor time.
static void spinsHalfASecond() {
    static volatile bool flag = false;
    std::thread other([] {
        usleep(500000);
        flag = true;
    });
    while (!flag) {
    }
    // The patience of a second, and what the other has slept.
    timespec ran = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ran);
    CHECK(ran.tv_sec * 1000 * kMs + ran.tv_nsec >= 1400 * kMs);
    other.join();
}

// Two descriptors of one file: the second lock waits in the kernel, with the token.
static void sleepsInUnknownCall() {
    const char* path = "/proc/self/exe";
    int first = open(path, O_RDONLY);
    int second = open(path, O_RDONLY);
    CHECK(flock(first, LOCK_EX) == 0);
    std::thread other([&] {
        sleep(1);
        flock(first, LOCK_UN);
    });
    pthread_setname_np(pthread_self(), "locker");
    flock(second, LOCK_EX);
    other.join();
}

const Probe signalProbes[] = {
    {"signals_to_threads", signalsToThreads},
    {"signals_to_processes", signalsToProcesses},
    {"masked_waits", maskedWaits},
    {"ends_of_children", endsOfChildren},
    {"awaits_signal", awaitsSignal},
    {"counts_signals", countsSignals},
    {"jumps_out", jumpsOut},
    {"alarms", alarms},
    {"timers", timers},
    {"programs_outside", programsOutside},
    {"fork_handlers", forkHandling},
    {"spins_without_call", spinsWithoutCall},
    {"spins_half_a_second", spinsHalfASecond},
    {"sleeps_in_unknown_call", sleepsInUnknownCall},
    {nullptr, nullptr},
};

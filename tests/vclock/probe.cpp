// Small programs that each prove a property of virtual time, run by vclock_test.py.
//
// probe NAME runs one. It checks by itself and ends with 0; a failed check names its line and ends
// with 1. What the driver must judge from outside (order, traces, reports) is printed.
#include "probe.h"

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <semaphore.h>
#include <signal.h>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/msg.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <future>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <thread>
#include <vector>

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::seconds;

static void timedWaits() {
    sem_t semaphore;
    sem_init(&semaphore, 0, 0);
    std::mutex mutex;
    std::condition_variable condition;
    std::timed_mutex timed;
    timed.lock();
    int ends[2];
    CHECK(pipe(ends) == 0);
    const struct {
        int64_t ns;
        std::function<void()> wait;
    } waits[] = {
        {36000 * 1000 * kMs, [] { CHECK(sleep(36000) == 0); }},
        {250,
         [] {
             timespec t = at(250);
             CHECK(nanosleep(&t, nullptr) == 0);
         }},
        {999 * 1000, [] { usleep(999); }},
        {5 * kMs,
         [] {
             timespec t = at(now() + 5 * kMs);
             CHECK(clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &t, nullptr) == 0);
         }},
        {6 * kMs,
         [] {
             timespec t = at(now(CLOCK_REALTIME) + 6 * kMs);
             CHECK(clock_nanosleep(CLOCK_REALTIME, TIMER_ABSTIME, &t, nullptr) == 0);
         }},
        {0,
         [] {
             timespec t = at(1);
             clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &t, nullptr);
         }},
        {7 * kMs, [] { CHECK(poll(nullptr, 0, 7) == 0); }},
        {8 * kMs,
         [&] {
             pollfd p = {ends[0], POLLIN, 0};
             CHECK(poll(&p, 1, 8) == 0);
         }},
        {9 * kMs,
         [&] {
             fd_set in;
             FD_ZERO(&in);
             FD_SET(ends[0], &in);
             timeval t = {0, 9000};
             CHECK(select(ends[0] + 1, &in, nullptr, nullptr, &t) == 0);
             CHECK(!FD_ISSET(ends[0], &in) && t.tv_usec == 0);
         }},
        {10 * kMs,
         [&] {
             timespec t = at(now(CLOCK_REALTIME) + 10 * kMs);
             CHECK(sem_timedwait(&semaphore, &t) < 0 && errno == ETIMEDOUT);
         }},
        {11 * kMs,
         [&] {
             timespec t = at(now() + 11 * kMs);
             CHECK(sem_clockwait(&semaphore, CLOCK_MONOTONIC, &t) < 0);
         }},
        {12 * kMs,
         [&] {
             std::unique_lock<std::mutex> lock(mutex);
             CHECK(condition.wait_for(lock, milliseconds(12)) == std::cv_status::timeout);
         }},
        {13 * kMs,
         [&] {
             std::unique_lock<std::mutex> lock(mutex);
             condition.wait_until(lock, std::chrono::system_clock::now() + milliseconds(13));
         }},
        {14 * kMs,
         [&] { std::thread([&] { CHECK(!timed.try_lock_for(milliseconds(14))); }).join(); }},
        {15 * kMs,
         [] {
             std::promise<int> never;
             CHECK(never.get_future().wait_for(milliseconds(15)) == std::future_status::timeout);
         }},
    };
    for (const auto& one : waits)
        CHECK(cost(one.wait) == one.ns);
}

static void timeStandsStill() {
    int64_t before = now();
    volatile unsigned work = 1;
    for (int i = 0; i < 20000000; i++)
        work = work * 3 + 1;
    CHECK(now() == before);
}

static void oneAtATime() {
    std::atomic<int> inside{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 6; i++) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < 50; round++) {
                CHECK(inside.fetch_add(1) == 0);
                for (volatile int work = 0; work < 2000;)
                    work = work + 1;
                CHECK(inside.fetch_sub(1) == 1);
                std::this_thread::sleep_for(milliseconds(i % 3));
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
}

// Six threads race: the order in which they come is what the driver compares between seeds.
static void race() {
    std::mutex mutex;
    std::vector<std::thread> threads;
    for (int i = 0; i < 6; i++) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < 5; round++) {
                {
                    std::lock_guard<std::mutex> lock(mutex);
                    printf("%d", i);
                }
                usleep(1000);
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    printf("\n");
}

static void firstComeFirstServed() {
    std::string order;
    std::mutex mutex;
    sem_t semaphore;
    sem_init(&semaphore, 0, 0);
    std::vector<std::thread> threads;
    mutex.lock();
    for (char name = 'a'; name < 'e'; name++) {
        threads.emplace_back([&, name] {
            std::lock_guard<std::mutex> lock(mutex);
            order += name;
        });
        threads.emplace_back([&, name] {
            CHECK(sem_wait(&semaphore) == 0);
            order += static_cast<char>(name - 'a' + 'A');
        });
    }
    usleep(1);
    mutex.unlock();
    usleep(1);
    for (int i = 0; i < 4; i++)
        sem_post(&semaphore);
    for (auto& thread : threads)
        thread.join();
    CHECK(order == "abcdABCD");
    int value = -1;
    CHECK(sem_getvalue(&semaphore, &value) == 0 && value == 0);
}

static pthread_mutex_t madeAs(int type) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, type);
    pthread_mutex_t mutex;
    pthread_mutex_init(&mutex, &attributes);
    return mutex;
}

static void inThread(const std::function<void()>& call) {
    std::thread(call).join();
}

static void mutexes() {
    pthread_mutex_t recursives[] = {madeAs(PTHREAD_MUTEX_RECURSIVE),
                                    PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP};
    for (pthread_mutex_t& m : recursives) {
        CHECK(pthread_mutex_lock(&m) == 0 && pthread_mutex_trylock(&m) == 0);
        CHECK(pthread_mutex_unlock(&m) == 0);
        inThread([&] { CHECK(pthread_mutex_trylock(&m) == EBUSY); });
        inThread([&] { CHECK(pthread_mutex_unlock(&m) == EPERM); });
        CHECK(pthread_mutex_unlock(&m) == 0);
        inThread([&] { CHECK(pthread_mutex_trylock(&m) == 0 && pthread_mutex_unlock(&m) == 0); });
        CHECK(pthread_mutex_unlock(&m) == EPERM);
    }
    pthread_mutex_t checking = madeAs(PTHREAD_MUTEX_ERRORCHECK);
    CHECK(pthread_mutex_lock(&checking) == 0 && pthread_mutex_lock(&checking) == EDEADLK);
    CHECK(pthread_mutex_destroy(&checking) == EBUSY);
    CHECK(pthread_mutex_unlock(&checking) == 0 && pthread_mutex_unlock(&checking) == EPERM);
    // A plain mutex may be unlocked by another thread, while a third waits, and be made again.
    pthread_mutex_t plain = PTHREAD_MUTEX_INITIALIZER;
    for (int round = 0; round < 2; round++) {
        CHECK(pthread_mutex_lock(&plain) == 0);
        std::thread waiter([&] {
            CHECK(cost([&] { pthread_mutex_lock(&plain); }) == 3 * kMs);
            CHECK(pthread_mutex_unlock(&plain) == 0);
        });
        inThread([&] {
            usleep(3000);
            CHECK(pthread_mutex_unlock(&plain) == 0);
        });
        waiter.join();
        CHECK(pthread_mutex_destroy(&plain) == 0 && pthread_mutex_init(&plain, nullptr) == 0);
    }
}

static void conditions() {
    std::mutex mutex;
    std::condition_variable condition;
    int tokens = 0;
    int served = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; i++) {
        threads.emplace_back([&] {
            std::unique_lock<std::mutex> lock(mutex);
            condition.wait(lock, [&] { return tokens > 0; });
            tokens--;
            served++;
        });
    }
    usleep(1);
    for (int i = 1; i <= 2; i++) {
        {
            std::lock_guard<std::mutex> lock(mutex);
            tokens++;
        }
        condition.notify_one();
        usleep(1);
        CHECK(served == i);
    }
    {
        std::lock_guard<std::mutex> lock(mutex);
        tokens += 2;
    }
    condition.notify_all();
    for (auto& thread : threads)
        thread.join();
    CHECK(served == 4);
}

static int slowStatic() {
    static int value = [] {
        sleep(5);
        return 7;
    }();
    return value;
}

// What the C++ library builds on: guards of local statics, futures, shared mutexes, call_once.
static void cppLibrary() {
    std::thread first(slowStatic);
    usleep(1);
    CHECK(cost([] { CHECK(slowStatic() == 7); }) == 5000 * kMs - 1000);
    first.join();
    auto future = std::async(std::launch::async, [] {
        sleep(2);
        return 3;
    });
    CHECK(cost([&] { CHECK(future.get() == 3); }) == 2000 * kMs);
    std::shared_timed_mutex shared;
    shared.lock_shared();
    std::thread writer([&] {
        shared.lock();
        sleep(1);
        shared.unlock();
    });
    usleep(1000);
    CHECK(shared.try_lock_shared());
    shared.unlock_shared();
    shared.unlock_shared();
    usleep(1000);
    CHECK(!shared.try_lock_shared_for(milliseconds(100)));
    CHECK(shared.try_lock_shared_for(seconds(2)));
    writer.join();
    std::once_flag once;
    int calls = 0;
    auto call = [&] {
        std::call_once(once, [&] {
            sleep(1);
            calls++;
        });
    };
    std::thread other(call);
    call();
    other.join();
    CHECK(calls == 1);
    pthread_barrier_t barrier;
    pthread_barrier_init(&barrier, nullptr, 2);
    std::thread late([&] {
        sleep(4);
        pthread_barrier_wait(&barrier);
    });
    CHECK(cost([&] { pthread_barrier_wait(&barrier); }) == 4000 * kMs);
    late.join();
}

struct Farewell {
    std::string* to = nullptr;
    ~Farewell() {
        if (to != nullptr) {
            sleep(1);
            *to += "destructor ";
        }
    }
};

static void threadsEnd() {
    std::string log;
    static pthread_key_t key;
    pthread_key_create(&key, [](void* to) {
        sleep(1);
        *static_cast<std::string*>(to) += "key ";
    });
    std::thread thread([&] {
        static thread_local Farewell last;
        last.to = &log;
        pthread_setspecific(key, &log);
        sleep(1);
    });
    CHECK(cost([&] { thread.join(); }) == 3000 * kMs);
    CHECK(log == "destructor key ");
    sem_t done;
    sem_init(&done, 0, 0);
    std::thread([&] {
        sleep(1);
        sem_post(&done);
    }).detach();
    CHECK(cost([&] { sem_wait(&done); }) == 1000 * kMs);
    pthread_t raw;
    pthread_create(
        &raw, nullptr,
        [](void*) -> void* {
            sleep(3);
            pthread_exit(nullptr);
        },
        nullptr);
    timespec limit = at(now(CLOCK_REALTIME) + 1000 * kMs);
    CHECK(pthread_timedjoin_np(raw, nullptr, &limit) == ETIMEDOUT);
    CHECK(pthread_tryjoin_np(raw, nullptr) == EBUSY);
    CHECK(cost([&] { CHECK(pthread_join(raw, nullptr) == 0); }) == 2000 * kMs);
    // Many threads, one after the other, reuse the slots.
    for (int i = 0; i < 1200; i++)
        inThread([] {});
}

static void cancellation() {
    pthread_t thread;
    pthread_create(
        &thread, nullptr,
        [](void*) -> void* {
            sleep(1000000);
            return nullptr;
        },
        nullptr);
    usleep(1);
    void* value = nullptr;
    CHECK(cost([&] {
              pthread_cancel(thread);
              pthread_join(thread, &value);
          }) == 0);
    CHECK(value == PTHREAD_CANCELED);
    static std::mutex mutex;
    static std::condition_variable condition;
    pthread_create(
        &thread, nullptr,
        [](void*) -> void* {
            std::unique_lock<std::mutex> lock(mutex);
            condition.wait(lock, [] { return false; });
            return nullptr;
        },
        nullptr);
    usleep(1);
    pthread_cancel(thread);
    CHECK(pthread_join(thread, &value) == 0 && value == PTHREAD_CANCELED);
    CHECK(mutex.try_lock());
    mutex.unlock();
}

static void pipesAndQueues() {
    int ends[2];
    CHECK(pipe(ends) == 0);
    std::thread writer([&] {
        sleep(5);
        CHECK(write(ends[1], "hello", 5) == 5);
        sleep(5);
        close(ends[1]);
    });
    char text[64] = "";
    CHECK(cost([&] { CHECK(read(ends[0], text, sizeof text) == 5); }) == 5000 * kMs);
    pollfd p = {ends[0], POLLIN, 0};
    CHECK(poll(&p, 1, 4999) == 0);
    CHECK(cost([&] { CHECK(poll(&p, 1, -1) == 1 && (p.revents & POLLHUP)); }) == 1 * kMs);
    CHECK(read(ends[0], text, sizeof text) == 0);
    writer.join();
    // A full pipe holds its writer; stdio on pipes takes its time too.
    CHECK(pipe(ends) == 0);
    std::vector<char> big(200000, 'x');
    size_t got = 0;
    std::thread reader([&] {
        char part[10000];
        for (ssize_t n; (n = read(ends[0], part, sizeof part)) > 0; got += static_cast<size_t>(n))
            sleep(1);
    });
    CHECK(write(ends[1], big.data(), big.size()) == 200000);
    close(ends[1]);
    reader.join();
    CHECK(got == 200000);
    CHECK(pipe(ends) == 0);
    FILE* out = fdopen(ends[1], "w");
    FILE* in = fdopen(ends[0], "r");
    std::thread talker([&] {
        sleep(2);
        fputs("one\ntwo\n", out);
        fclose(out);
    });
    CHECK(cost([&] { CHECK(fgets(text, sizeof text, in) && !strcmp(text, "one\n")); }) ==
          2000 * kMs);
    char word[8] = "";
    CHECK(fscanf(in, "%7s", word) == 1 && !strcmp(word, "two"));
    talker.join();
    fclose(in);
    int pair[2];
    CHECK(socketpair(AF_UNIX, SOCK_STREAM, 0, pair) == 0);
    std::thread caller([&] {
        sleep(3);
        CHECK(write(pair[1], "x", 1) == 1);
    });
    CHECK(cost([&] { CHECK(recv(pair[0], text, 1, 0) == 1); }) == 3000 * kMs);
    caller.join();
    int queue = msgget(IPC_PRIVATE, 0600);
    struct Message {
        long type;
        char text[8];
    } message = {3, "abc"};
    std::thread sender([&] {
        sleep(1);
        CHECK(msgsnd(queue, &message, 8, 0) == 0);
        sleep(1);
        msgctl(queue, IPC_RMID, nullptr);
    });
    Message received = {};
    CHECK(msgrcv(queue, &received, 8, 3, IPC_NOWAIT) < 0 && errno == ENOMSG);
    CHECK(cost([&] { CHECK(msgrcv(queue, &received, 8, 3, 0) == 8); }) == 1000 * kMs);
    CHECK(!strcmp(received.text, "abc"));
    CHECK(msgrcv(queue, &received, 8, 3, 0) < 0 && errno == EIDRM);
    sender.join();
}

// A loop that waits by polling must not stop the world, nor overshoot much.
static void spinning() {
    int64_t began = now();
    while (now() - began < 2000 * kMs) {
    }
    CHECK(now() - began < 2003 * kMs);
    std::atomic<bool> flag{false};
    std::mutex mutex;
    mutex.lock();
    sem_t semaphore;
    sem_init(&semaphore, 0, 0);
    std::thread other([&] {
        sleep(1);
        sem_post(&semaphore);
        sleep(1);
        flag = true;
        sleep(1);
        mutex.unlock();
    });
    while (sem_trywait(&semaphore) != 0) {
    }
    while (!flag)
        std::this_thread::yield();
    while (!mutex.try_lock()) {
    }
    other.join();
    int64_t took = now() - began;
    CHECK(took >= 5000 * kMs && took < 5010 * kMs);
    // At the end of input, in a loop that does not mind.
    std::thread timer([] {
        sleep(10);
        printf("world goes on\n");
        fflush(stdout);
        _exit(0);
    });
    for (char text[8];;)
        (void)!fgets(text, sizeof text, stdin);
}

static int64_t* sharedNumbers() {
    return static_cast<int64_t*>(
        mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
}

static void processes() {
    int64_t* shared = sharedNumbers();
    int64_t began = now();
    // Parent and child sleep in turns of different length; their clocks agree.
    pid_t child = fork();
    if (child == 0) {
        for (int i = 0; i < 100; i++) {
            sleep(1);
            shared[0]++;
        }
        CHECK(now() - began == 100000 * kMs);
        exit(shared[0] == 100 ? 7 : 8);
    }
    for (int i = 0; i < 10; i++) {
        usleep(9350000);
        CHECK(shared[0] == (i + 1) * 935 / 100);
    }
    int status = 0;
    CHECK(waitpid(child, &status, WNOHANG) == 0);
    CHECK(waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 7);
    CHECK(now() - began == 100000 * kMs);
    CHECK(waitpid(child, &status, 0) < 0 && errno == ECHILD);
    // A semaphore, a mutex and a condition in shared memory work between processes.
    sem_t* semaphore = reinterpret_cast<sem_t*>(shared + 8);
    sem_init(semaphore, 1, 0);
    if ((child = fork()) == 0) {
        sleep(3);
        sem_post(semaphore);
        _exit(0);
    }
    CHECK(cost([&] { sem_wait(semaphore); }) == 3000 * kMs);
    CHECK(wait(&status) == child && status == 0);
    // Many children, one after the other, and threads beside a fork.
    std::atomic<bool> end{false};
    std::thread ticker([&] {
        while (!end)
            usleep(100);
    });
    for (int i = 0; i < 100; i++) {
        if ((child = fork()) == 0) {
            usleep(1000);
            _exit(0);
        }
        CHECK(cost([&] { CHECK(waitpid(child, &status, 0) == child); }) == 1 * kMs);
    }
    end = true;
    ticker.join();
}

// Children die by SIGKILL while they wait, while they run, and with threads; time goes on.
static void killedChildren() {
    int64_t* shared = sharedNumbers();
    pthread_mutex_t* mutex = reinterpret_cast<pthread_mutex_t*>(shared + 8);
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    pthread_mutex_init(mutex, &attributes);
    int status;
    pid_t waiting = fork();
    if (waiting == 0) {
        std::thread other([] {
            for (;;)
                usleep(70000);
        });
        for (;;)
            sleep(1);
    }
    sleep(100);
    kill(waiting, SIGKILL);
    CHECK(waitpid(waiting, &status, 0) == waiting && WIFSIGNALED(status));
    sleep(100);
    pid_t running = fork();
    if (running == 0) {
        sleep(5);
        kill(getpid(), SIGKILL);
    }
    CHECK(cost([&] { CHECK(waitpid(running, &status, 0) == running); }) == 5000 * kMs);
    CHECK(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
    // The token's holder is killed from outside the domain, in the middle of its work.
    pid_t busy = fork();
    if (busy == 0) {
        std::string command = "(sleep 0.1; kill -9 " + std::to_string(getpid()) + ") &";
        CHECK(system(command.c_str()) == 0);
        for (volatile int work = 0;;)
            work = work + 1;
    }
    CHECK(cost([&] { sleep(50); }) == 50000 * kMs);
    CHECK(waitpid(busy, &status, 0) == busy && WIFSIGNALED(status));
}

static void otherPrograms() {
    setenv("PROBE_MARK", "kept", 1);
    int64_t before = now();
    CHECK(system("test \"$PROBE_MARK\" = kept && test -z \"$LD_PRELOAD$VCLOCK_START\"") == 0);
    CHECK(WEXITSTATUS(system("sleep 0.01; exit 9")) == 9);
    CHECK(system("") == 0);
    FILE* output = popen("sleep 0.01; echo hello", "r");
    char text[32] = "";
    CHECK(fgets(text, sizeof text, output) != nullptr && !strcmp(text, "hello\n"));
    CHECK(pclose(output) == 0);
    CHECK(now() == before);
    // A child that becomes another program leaves; its output comes through a pipe of the domain.
    int ends[2];
    CHECK(pipe(ends) == 0);
    pid_t child = fork();
    if (child == 0) {
        CHECK(execl("/nonexistent", "x", nullptr) < 0 && errno == ENOENT);
        sleep(1);
        dup2(ends[1], 1);
        close(ends[0]);
        close(ends[1]);
        execlp("sh", "sh", "-c", "sleep 0.01; echo world", nullptr);
        _exit(1);
    }
    close(ends[1]);
    std::thread ticker([] {
        for (int i = 0; i < 20; i++)
            usleep(100000);
    });
    memset(text, 0, sizeof text);
    CHECK(read(ends[0], text, sizeof text) == 6 && !strcmp(text, "world\n"));
    int status;
    CHECK(waitpid(child, &status, 0) == child && status == 0);
    ticker.join();
    CHECK(now() - before == 2000 * kMs);
}

static int suspendDevice(int64_t ns) {
    // As a simulated device does it: by name, so that it runs without virtual time too.
    auto function = reinterpret_cast<int (*)(int64_t)>(dlsym(RTLD_DEFAULT, "vclock_suspend"));
    CHECK(function != nullptr);
    return function(ns);
}

static void calendar() {
    CHECK(time(nullptr) == 1000000000);
    timeval fine;
    CHECK(gettimeofday(&fine, nullptr) == 0 && fine.tv_sec == 1000000000 && fine.tv_usec == 0);
    int64_t monotonic = now();
    timespec set = {1234567890, 5};
    CHECK(clock_settime(CLOCK_REALTIME, &set) == 0 && now(CLOCK_REALTIME) == 1234567890000000005);
    CHECK(now() == monotonic);
    timespec bad = {0, 1000000000};
    CHECK(clock_settime(CLOCK_REALTIME, &bad) < 0 && errno == EINVAL);
    CHECK(clock_settime(CLOCK_MONOTONIC, &set) < 0 && errno == EINVAL);
    fine = {1500000000, 250000};
    CHECK(settimeofday(&fine, nullptr) == 0 && now(CLOCK_REALTIME) == 1500000000250000000);
    sleep(10);
    CHECK(time(nullptr) == 1500000010);
    // Suspended: the calendar and the boot clock go on, the monotonic clock does not.
    int64_t boot = now(CLOCK_BOOTTIME);
    monotonic = now();
    CHECK(suspendDevice(3600 * 1000 * kMs) == 0);
    CHECK(time(nullptr) == 1500003610 && now() == monotonic);
    CHECK(now(CLOCK_BOOTTIME) == boot + 3600 * 1000 * kMs);
    CHECK(suspendDevice(-1) == -1 && errno == EINVAL);
}

// A deadline on the calendar comes when the calendar says so, however it got there.
static void calendarDeadlines() {
    sem_t semaphore;
    sem_init(&semaphore, 0, 0);
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_mutex_t held = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t condition = PTHREAD_COND_INITIALIZER;
    pthread_mutex_lock(&held);
    const std::function<void(timespec*)> waits[] = {
        [&](timespec* t) { CHECK(sem_timedwait(&semaphore, t) < 0 && errno == ETIMEDOUT); },
        [&](timespec* t) {
            pthread_mutex_lock(&mutex);
            CHECK(pthread_cond_timedwait(&condition, &mutex, t) == ETIMEDOUT);
            pthread_mutex_unlock(&mutex);
        },
        [&](timespec* t) {
            std::thread([&] { CHECK(pthread_mutex_timedlock(&held, t) == ETIMEDOUT); }).join();
        },
        [&](timespec* t) { clock_nanosleep(CLOCK_REALTIME, TIMER_ABSTIME, t, nullptr); },
    };
    for (const auto& wait : waits) {
        std::thread forward([] {
            sleep(10);
            suspendDevice(int64_t{7200} * 1000 * kMs);
        });
        timespec limit = at(now(CLOCK_REALTIME) + int64_t{3600} * 1000 * kMs);
        CHECK(cost([&] { wait(&limit); }) == 10000 * kMs);
        forward.join();
        std::thread back([] {
            sleep(10);
            timespec t = at(now(CLOCK_REALTIME) - 5000 * kMs);
            clock_settime(CLOCK_REALTIME, &t);
        });
        limit = at(now(CLOCK_REALTIME) + 60000 * kMs);
        CHECK(cost([&] { wait(&limit); }) == 65000 * kMs);
        back.join();
        // A length, and a moment of the monotonic clock, do not care.
        std::thread jump([] {
            usleep(1);
            suspendDevice(int64_t{7200} * 1000 * kMs);
        });
        CHECK(cost([&] { sleep(5); }) == 5000 * kMs);
        jump.join();
    }
}

static pthread_mutex_t crossed[2] = {PTHREAD_MUTEX_INITIALIZER, PTHREAD_MUTEX_INITIALIZER};

void crossLock(int first);
void crossLock(int first) {
    pthread_mutex_lock(&crossed[first]);
    sleep(1);
    pthread_mutex_lock(&crossed[1 - first]);
}

static void deadlock() {
    printf("before the deadlock\n");
    fflush(stdout);
    pid_t child = fork();
    if (child == 0) {
        sem_t never;
        sem_init(&never, 0, 0);
        sem_wait(&never);
    }
    std::thread one([] {
        pthread_setname_np(pthread_self(), "left");
        crossLock(0);
    });
    std::thread two([] {
        pthread_setname_np(pthread_self(), "right");
        crossLock(1);
    });
    one.join();
}

// Ends while other threads wait, run destructors that wait, and leave a child behind.
struct WaitsAtEnd {
    ~WaitsAtEnd() {
        sleep(5);
        printf("destructor at %lld\n", static_cast<long long>(now() / 1000000000));
    }
};
static void ending() {
    static WaitsAtEnd last;
    std::thread([] {
        for (;;)
            sleep(1);
    }).detach();
    if (fork() == 0) {
        sleep(1000);
        printf("orphan at %lld\n", static_cast<long long>(now() / 1000000000));
        fflush(stdout);
        _exit(0);
    }
    printf("main at %lld\n", static_cast<long long>(now() / 1000000000));
}

static void echoInput() {
    std::thread ticker([] {
        for (;;)
            sleep(1);
    });
    ticker.detach();
    char line[64];
    int64_t began = now();
    while (fgets(line, sizeof line, stdin) != nullptr) {
        line[strcspn(line, "\n")] = '\0';
        printf("%s after %lld\n", line, static_cast<long long>((now() - began) / 1000000000));
        fflush(stdout);
        sleep(2);
    }
}

// A main process and its monitor as the driver kills them: each polls, both share a pipe.
static void pairOfProcesses() {
    int ends[2];
    CHECK(pipe2(ends, O_NONBLOCK) == 0);
    if (fork() == 0) {
        int silent = 0;
        while (silent < 300) {
            char text[100];
            silent = read(ends[0], text, sizeof text) > 0 ? 0 : silent + 1;
            sleep(1);
        }
        printf("monitor: silence\n");
        fflush(stdout);
        _exit(0);
    }
    std::thread worker([&] {
        for (int i = 0; i < 20000; i++) {
            CHECK(write(ends[1], "1", 1) == 1);
            usleep(100000 + i % 7 * 1000);
        }
        printf("main: done\n");
        fflush(stdout);
        _exit(0);
    });
    worker.join();
}

static const Probe probes[] = {
    {"timed_waits", timedWaits},
    {"time_stands_still", timeStandsStill},
    {"one_at_a_time", oneAtATime},
    {"race", race},
    {"first_come_first_served", firstComeFirstServed},
    {"mutexes", mutexes},
    {"conditions", conditions},
    {"cpp_library", cppLibrary},
    {"threads_end", threadsEnd},
    {"cancellation", cancellation},
    {"pipes_and_queues", pipesAndQueues},
    {"spinning", spinning},
    {"processes", processes},
    {"killed_children", killedChildren},
    {"other_programs", otherPrograms},
    {"calendar", calendar},
    {"calendar_deadlines", calendarDeadlines},
    {"deadlock", deadlock},
    {"ending", ending},
    {"echo_input", echoInput},
    {"pair_of_processes", pairOfProcesses},
    {nullptr, nullptr},
};

int main(int argc, char** argv) {
    for (const Probe* table : {probes, signalProbes}) {
        for (const Probe* probe = table; probe->name != nullptr; probe++) {
            if (argc == 2 && strcmp(argv[1], probe->name) == 0) {
                probe->run();
                return 0;
            }
        }
    }
    fprintf(stderr, "probe: no such name\n");
    return 2;
}

// What virtual time costs: hand-overs between threads, ten hours of polling, an uncontended lock.
//
// Started without arguments it runs itself once for each number, in virtual and in real time, and
// measures from outside.
#include <pthread.h>
#include <semaphore.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

static const int kHandOvers = 1000000;
static const int kHours = 10;
static const int kPollers = 4;
static const int kPollMs = 100;
static const int kLocks = 50000000;

// Two threads hand one turn to and fro.
static void handOver() {
    sem_t turns[2];
    sem_init(&turns[0], 0, 1);
    sem_init(&turns[1], 0, 0);
    auto side = [&](int mine) {
        for (int i = 0; i < kHandOvers / 2; i++) {
            sem_wait(&turns[mine]);
            sem_post(&turns[1 - mine]);
        }
    };
    std::thread other([&] { side(1); });
    side(0);
    other.join();
}

static void poll() {
    std::vector<std::thread> pollers;
    for (int i = 0; i < kPollers; i++) {
        pollers.emplace_back([] {
            for (int n = 0; n < kHours * 3600 * 1000 / kPollMs; n++)
                usleep(kPollMs * 1000);
        });
    }
    for (auto& poller : pollers)
        poller.join();
}

static double processorSeconds() {
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Prints what a lock and its unlock cost; processor time is real in both worlds.
static void lock() {
    // The C library saves work for a process that never had a second thread.
    std::thread([] {}).join();
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    double before = processorSeconds();
    for (int i = 0; i < kLocks; i++) {
        pthread_mutex_lock(&mutex);
        pthread_mutex_unlock(&mutex);
    }
    printf("%.3f", (processorSeconds() - before) * 1e9 / kLocks);
}

struct Outcome {
    double seconds;           // of the wall clock: more on a machine that has other work
    double processorSeconds;  // of the command
    double printed;
};

static double childrenSeconds() {
    rusage used = {};
    getrusage(RUSAGE_CHILDREN, &used);
    return static_cast<double>(used.ru_utime.tv_sec + used.ru_stime.tv_sec) +
           static_cast<double>(used.ru_utime.tv_usec + used.ru_stime.tv_usec) * 1e-6;
}

static Outcome measure(const std::string& command) {
    timespec before;
    timespec after;
    double used = childrenSeconds();
    clock_gettime(CLOCK_MONOTONIC, &before);
    FILE* output = popen(command.c_str(), "r");
    char text[64] = "";
    if (output != nullptr && fgets(text, sizeof text, output) == nullptr)
        text[0] = '\0';
    if (output == nullptr || pclose(output) != 0) {
        fprintf(stderr, "vclock_bench: failed: %s\n", command.c_str());
        exit(1);
    }
    clock_gettime(CLOCK_MONOTONIC, &after);
    return {static_cast<double>(after.tv_sec - before.tv_sec) +
                static_cast<double>(after.tv_nsec - before.tv_nsec) * 1e-9,
            childrenSeconds() - used, atof(text)};
}

int main(int argc, char** argv) {
    const struct {
        const char* name;
        void (*run)();
    } works[] = {{"hand-over", handOver}, {"poll", poll}, {"lock", lock}};
    if (argc == 2) {
        for (const auto& work : works) {
            if (strcmp(argv[1], work.name) == 0) {
                work.run();
                return 0;
            }
        }
        fprintf(stderr, "usage: vclock_bench\n");
        return 2;
    }
    char path[4096];
    ssize_t size = readlink("/proc/self/exe", path, sizeof path - 1);
    std::string self(path, size > 0 ? static_cast<size_t>(size) : 0);
    std::string virtually = "'" + self.substr(0, self.rfind('/')) + "/vclock/run' ";
    self = "'" + self + "' ";
    Outcome switches = measure(virtually + self + "hand-over");
    printf("%-58s %10.0f\n", "thread switches per second", kHandOvers / switches.seconds);
    printf("%-58s %10.0f\n", "thread switches per second of processor time",
           kHandOvers / switches.processorSeconds);
    Outcome polls = measure(virtually + self + "poll");
    printf("%-58s %10.2f\n", "10 virtual hours, 4 threads, every 100 ms: real seconds",
           polls.seconds);
    printf("%-58s %10.2f\n", "the same, processor seconds", polls.processorSeconds);
    double ours = measure(virtually + self + "lock").printed;
    double theirs = measure(self + "lock").printed;
    printf("%-58s %10.2f\n", "uncontended lock and unlock, virtual, ns", ours);
    printf("%-58s %10.2f\n", "the same by the C library, ns", theirs);
    printf("%-58s %10.2f\n", "ratio", ours / theirs);
    return 0;
}

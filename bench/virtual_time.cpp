// What virtual time costs: hand-overs between threads, ten hours of polling, an uncontended lock.
#include <pthread.h>
#include <semaphore.h>
#include <unistd.h>

#include <thread>
#include <vector>

#include "bench/world.h"

namespace {

/** Two threads hand one turn to and fro. */
void ThreadHandOver(benchmark::State& state) {
    constexpr int batch = 10000;
    for (auto _ : state) {
        sem_t turns[2];
        sem_init(&turns[0], 0, 1);
        sem_init(&turns[1], 0, 0);
        auto side = [&turns](int mine) {
            for (int i = 0; i < batch / 2; i++) {
                sem_wait(&turns[mine]);
                sem_post(&turns[1 - mine]);
            }
        };
        std::thread other([&side] { side(1); });
        side(0);
        other.join();
    }
    state.SetItemsProcessed(batch * state.iterations());
}

/** Ten hours of four threads that look every 100 ms. */
void TenHoursOfPolling(benchmark::State& state) {
    constexpr int pollMs = 100;
    for (auto _ : state) {
        std::vector<std::thread> pollers;
        for (int i = 0; i < 4; i++) {
            pollers.emplace_back([] {
                for (int n = 0; n < 10 * 3600 * 1000 / pollMs; n++)
                    usleep(pollMs * 1000);
            });
        }
        for (std::thread& poller : pollers)
            poller.join();
    }
}

void UncontendedLock(benchmark::State& state) {
    // The C library saves work for a process that never had a second thread.
    std::thread([] {}).join();
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    for (auto _ : state) {
        pthread_mutex_lock(&mutex);
        pthread_mutex_unlock(&mutex);
    }
}

void byProcessor(Benchmark* benchmark) {
    benchmark->MeasureProcessCPUTime();
}

const bool registered =
    measureIn(VIRTUAL_TIME, "ThreadHandOver", ThreadHandOver, byProcessor) &&
    measureIn(VIRTUAL_TIME, "TenHoursOfPolling", TenHoursOfPolling, onceByProcessor) &&
    measureIn(VIRTUAL_TIME, "UncontendedLock", UncontendedLock, byProcessor) &&
    measureIn(REAL_TIME, "UncontendedLockOfTheCLibrary", UncontendedLock, byProcessor);

}  // namespace

#include "framework/case/wait.h"

#include <errno.h>
#include <stdlib.h>

bool tc_waitSemUntil(sem_t* semaphore, const timespec& deadline) {
    int waited;
    do {
        waited = sem_timedwait(semaphore, &deadline);
    } while (waited != 0 && errno == EINTR);
    return waited == 0;
}

bool tc_waitSem(sem_t* semaphore, uint32_t ms) {
    timeval now;
    gettimeofday(&now, nullptr);
    int64_t us = static_cast<int64_t>(now.tv_usec) + static_cast<int64_t>(ms) * 1000;
    timespec deadline;
    deadline.tv_sec = now.tv_sec + static_cast<time_t>(us / 1000000);
    deadline.tv_nsec = static_cast<long>(us % 1000000 * 1000);
    return tc_waitSemUntil(semaphore, deadline);
}

int64_t zk_test_diff_timeMs(const timeval* start, const timeval* end) {
    int64_t seconds = static_cast<int64_t>(end->tv_sec) - start->tv_sec;
    int64_t microseconds = static_cast<int64_t>(end->tv_usec) - start->tv_usec;
    if (microseconds < 0) {
        seconds -= 1;
        microseconds += 1000000;
    }
    return seconds * 1000 + microseconds / 1000;
}

Stopwatch::Stopwatch() {
    gettimeofday(&start_, nullptr);
}

int64_t Stopwatch::ms() const {
    timeval now;
    gettimeofday(&now, nullptr);
    return zk_test_diff_timeMs(&start_, &now);
}

void tc_endThread(uint32_t result) {
    uint32_t* word = static_cast<uint32_t*>(malloc(sizeof *word));
    if (word != nullptr)
        *word = result;
    pthread_exit(word);
}

uint32_t tc_joinThread(pthread_t thread) {
    void* ended = nullptr;
    if (pthread_join(thread, &ended) != 0 || ended == nullptr)
        return 1;
    uint32_t word = *static_cast<uint32_t*>(ended);
    free(ended);
    return word;
}

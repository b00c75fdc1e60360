/* Waiting for what the device reports, threads of a case, and measured time. */
#ifndef FRAMEWORK_CASE_WAIT_H
#define FRAMEWORK_CASE_WAIT_H

#include <pthread.h>
#include <semaphore.h>
#include <stdint.h>
#include <sys/time.h>
#include <time.h>

/** Waits for a semaphore until a time of the real-time clock; signals do not end the wait. True
 * when it was posted in time. */
bool tc_waitSemUntil(sem_t* semaphore, const timespec& deadline);

/** The same for at most `ms` milliseconds. */
bool tc_waitSem(sem_t* semaphore, uint32_t ms);

/** Whole milliseconds from `start` to `end`: the rule of every limit but those of GPIO. */
int64_t zk_test_diff_timeMs(const timeval* start, const timeval* end);

/** Measures from its making. */
class Stopwatch {
 public:
    Stopwatch();
    /** Milliseconds so far, by the shared rule. */
    int64_t ms() const;

 private:
    timeval start_;
};

/** Ends a thread of a case with a result that tc_joinThread gives. */
[[noreturn]] void tc_endThread(uint32_t result);

/** Waits for a thread that ends with tc_endThread. Gives its result, or 1 without one. */
uint32_t tc_joinThread(pthread_t thread);

#endif

// The floor of the cases in virtual time, where a wait takes exactly what it is told to.
#include <gtest/gtest.h>
#include <time.h>
#include <unistd.h>

#include <string>

#include "framework/base/zk_log.h"
#include "framework/case/wait.h"

namespace {

TEST(CaseWait, ASemaphoreIsWaitedForToTheMicrosecond) {
    sem_t semaphore;
    sem_init(&semaphore, 0, 0);
    // From the middle of a second, and beyond its end.
    usleep(623457);
    for (uint32_t ms : {0u, 7u, 1999u}) {
        timeval before, after;
        gettimeofday(&before, nullptr);
        EXPECT_FALSE(tc_waitSem(&semaphore, ms));
        gettimeofday(&after, nullptr);
        EXPECT_EQ((after.tv_sec - before.tv_sec) * 1000000 + after.tv_usec - before.tv_usec,
                  ms * 1000);
    }
    sem_post(&semaphore);
    EXPECT_TRUE(tc_waitSem(&semaphore, 1));
    sem_destroy(&semaphore);
}

TEST(CaseWait, ALineBearsSecondsAndMicroseconds) {
    usleep(1234);
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    testing::internal::CaptureStdout();
    zk_log("%s %d\n", "line", 5);
    EXPECT_EQ(
        testing::internal::GetCapturedStdout(),
        "[" + std::to_string(now.tv_sec) + "." + std::to_string(now.tv_nsec / 1000) + "]line 5\n");
}

TEST(CaseWait, AThreadHandsItsResultToWhoJoinsIt) {
    pthread_t thread;
    ASSERT_EQ(pthread_create(
                  &thread, nullptr,
                  [](void*) -> void* {
                      tc_endThread(7);
                      return nullptr;
                  },
                  nullptr),
              0);
    EXPECT_EQ(tc_joinThread(thread), 7u);
    ASSERT_EQ(pthread_create(
                  &thread, nullptr, [](void*) -> void* { return nullptr; }, nullptr),
              0);
    EXPECT_EQ(tc_joinThread(thread), 1u) << "one that ended without a word";
}

}  // namespace

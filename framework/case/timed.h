/* Calls that have to come back in time. */
#ifndef FRAMEWORK_CASE_TIMED_H
#define FRAMEWORK_CASE_TIMED_H

#include "framework/case/check.h"
#include "framework/case/wait.h"

/** ms that one call to the library may take; this much is too long. */
enum { TC_CALL_LIMIT_MS = 201 };

/**
 * Makes a call, prints how long it took, and demands that it succeeds within its time.
 * @param what  what the line on it calls it, "opening video"
 * @param text  the call as a failure prints it
 */
template <typename Call>
bool tc_timedCall(CaseContext& tc, const char* what, const char* text, Call call) {
    const Stopwatch watch;
    const int64_t answer = call();
    const long long consumed = watch.ms();
    const bool done = TC_EXPECT_RET_TEXT(text, answer);
    zk_log("consumption time of %s is %lld ms\r\n", what, consumed);
    return TC_EXPECT_TRUE(consumed < TC_CALL_LIMIT_MS) && done;
}

#endif

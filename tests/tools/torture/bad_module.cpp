// A module of cases that are wrong on purpose, one for each word of the torture's report. It is
// linked into a test build of the torture run alone.
#include <pthread.h>
#include <semaphore.h>
#include <stdlib.h>
#include <sys/time.h>
#include <unistd.h>

#include "framework/case/check.h"
#include "framework/case/registry.h"
#include "platform/qlx_gpio.h"
#include "platform/qlx_i2c.h"
#include "tools/torture/torture.h"

namespace {

constexpr uint32_t pin = 12;

/** Nothing is wrong here: the level that is set is read back. */
uint32_t TC_BAD_None() {
    CaseContext tc = {__func__};
    int32_t level = 0;
    TC_ASSERT_RET(QLX_GPIOInit());
    TC_EXPECT_RET(QLX_GPIOSetValue(pin, 1));
    if (TC_EXPECT_RET(QLX_GPIOGetValue(pin, &level)))
        TC_EXPECT_EQUAL(1, level);
    TC_EXPECT_RET(QLX_GPIODeInit());
    return TC_RESULT(tc);
}

uint32_t notJudged(const char* name) {
    CaseContext tc = {name};
    TC_ASSERT_RET(QLX_GPIOInit());
    QLX_GPIOSetValue(pin, 1);
    TC_EXPECT_RET(QLX_GPIODeInit());
    return TC_RESULT(tc);
}

uint32_t TC_BAD_ResultNotJudged() {
    return notJudged(__func__);
}

uint32_t TC_BAD_ExcusedTooWidely() {
    return notJudged(__func__);
}

/** Once it compared the level. */
uint32_t TC_BAD_MemberNotJudged() {
    CaseContext tc = {__func__};
    int32_t level = 0;
    TC_ASSERT_RET(QLX_GPIOInit());
    TC_EXPECT_RET(QLX_GPIOGetValue(pin, &level));
    TC_EXPECT_RET(QLX_GPIODeInit());
    return TC_RESULT(tc);
}

uint32_t TC_BAD_LeftOpen() {
    CaseContext tc = {__func__};
    TC_ASSERT_RET(QLX_GPIOInit());
    TC_ASSERT_RET(QLX_GPIOSetValue(pin, 1));
    TC_EXPECT_RET(QLX_GPIODeInit());
    return TC_RESULT(tc);
}

/** What stays behind it is for another case, and excused; that alone. */
uint32_t TC_BAD_LeftByRule() {
    CaseContext tc = {__func__};
    TC_ASSERT_RET(QLX_GPIOInit());
    if (!TC_EXPECT_RET(QLX_GPIOSetValue(pin, 1)))
        QLX_I2CInit();
    return TC_RESULT(tc);
}

void* waitForNothing(void*) {
    static sem_t never;
    while (sem_wait(&never) != 0)
        continue;
    return nullptr;
}

uint32_t TC_BAD_LeftThread() {
    CaseContext tc = {__func__};
    pthread_t thread;
    if (!TC_EXPECT_RET(QLX_GPIOInit())) {
        pthread_create(&thread, nullptr, waitForNothing, nullptr);
        return TC_FAILURE;
    }
    TC_EXPECT_RET(QLX_GPIODeInit());
    return TC_RESULT(tc);
}

uint32_t TC_BAD_LeftMemory() {
    CaseContext tc = {__func__};
    if (!TC_EXPECT_RET(QLX_GPIOInit())) {
        void* volatile lost = malloc(64);
        return lost != nullptr ? TC_FAILURE : TC_SUCCESS;
    }
    TC_EXPECT_RET(QLX_GPIODeInit());
    return TC_RESULT(tc);
}

uint32_t TC_BAD_HangsWhenRefused() {
    CaseContext tc = {__func__};
    while (!TC_EXPECT_RET(QLX_GPIOInit())) {
        while (tc.result != TC_SUCCESS)
            sleep(1);
    }
    TC_EXPECT_RET(QLX_GPIODeInit());
    return TC_RESULT(tc);
}

uint32_t TC_BAD_CrashesWhenRefused() {
    CaseContext tc = {__func__};
    if (!TC_EXPECT_RET(QLX_GPIOInit()))
        abort();
    TC_EXPECT_RET(QLX_GPIODeInit());
    return TC_RESULT(tc);
}

uint32_t TC_BAD_FailsAlways() {
    CaseContext tc = {__func__};
    TC_ASSERT_RET(QLX_GPIOSetValue(pin, 1));
    return TC_RESULT(tc);
}

uint32_t TC_BAD_CrashesAlways() {
    abort();
}

uint32_t TC_BAD_MakesNoCall() {
    CaseContext tc = {__func__};
    return TC_RESULT(tc);
}

uint32_t TC_BAD_MakesNoCallByRule() {
    CaseContext tc = {__func__};
    return TC_RESULT(tc);
}

/** Lets pass what takes 100 ms, where 99 were the last good ones. */
uint32_t TC_BAD_Limit() {
    CaseContext tc = {__func__};
    timeval start = {};
    timeval end = {};
    TC_ASSERT_RET(QLX_GPIOInit());
    gettimeofday(&start, nullptr);
    TC_EXPECT_RET(QLX_GPIOSetValue(pin, 1));
    gettimeofday(&end, nullptr);
    int64_t ms = (end.tv_sec - start.tv_sec) * 1000 + (end.tv_usec - start.tv_usec) / 1000;
    TC_EXPECT_TRUE(ms < 101);
    TC_EXPECT_RET(QLX_GPIODeInit());
    return TC_RESULT(tc);
}

const TcCase badCases[] = {
    TC_CASE(TC_BAD_None, AUTO, "nothing is wrong"),
    TC_CASE(TC_BAD_ResultNotJudged, AUTO, "a result that is not judged"),
    TC_CASE(TC_BAD_ExcusedTooWidely, AUTO, "the same, with an exception that names too much"),
    TC_CASE(TC_BAD_MemberNotJudged, AUTO, "a value that is not judged any more"),
    TC_CASE(TC_BAD_LeftOpen, AUTO, "a service that stays open"),
    TC_CASE(TC_BAD_LeftByRule, AUTO, "a service that stays open by rule, and one that does not"),
    TC_CASE(TC_BAD_LeftThread, AUTO, "a thread that stays"),
    TC_CASE(TC_BAD_LeftMemory, AUTO, "memory that is lost"),
    TC_CASE(TC_BAD_HangsWhenRefused, AUTO, "waits for ever"),
    TC_CASE(TC_BAD_CrashesWhenRefused, AUTO, "takes the process down"),
    TC_CASE(TC_BAD_FailsAlways, AUTO, "does not pass"),
    TC_CASE(TC_BAD_CrashesAlways, AUTO, "takes the process down without a fault"),
    TC_CASE(TC_BAD_MakesNoCall, AUTO, "offers nothing to torture"),
    TC_CASE(TC_BAD_MakesNoCallByRule, AUTO, "the same, with a reason"),
    TC_CASE(TC_BAD_Limit, AUTO, "a limit that is one millisecond off"),
};

const TcModule badModule = {nullptr,  nullptr,
                            nullptr,  nullptr,
                            badCases, tcCaseCount(badCases),
                            "Bad",    "cases that are wrong",
                            nullptr};

}  // namespace

int main(int argc, char** argv) {
    return torture::run({{&badModule, "badModule"}}, argc, argv);
}

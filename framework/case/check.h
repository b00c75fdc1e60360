/*
 * The case context: the name that a case speaks under, its result so far, and its checks.
 *
 * A body keeps a context, checks what the platform library does, and ends with its verdict:
 *
 *     static uint32_t TC_GPIO_GetValue_003(void) {
 *         CaseContext tc = {__func__};
 *         TC_ASSERT_RET(QLX_GPIOInit());
 *         TC_EXPECT_RET(QLX_GPIOGetValue(g_uGpioNumber, &GetValue));
 *         TC_ASSERT_RET(QLX_GPIODeInit());
 *         return TC_RESULT(tc);
 *     }
 *
 * The body of a family takes the name of the variant, `CaseContext tc = {name};`, and hands `tc` on
 * to the functions that it consists of. All checks need a `tc` in scope. An EXPECT notes a failure
 * in the context, goes on, and yields whether it holds, so that steps can be strung together:
 *
 *     if (TC_EXPECT_RET(QLX_I2COpen(eBusId, eBusRate)))
 *         TC_EXPECT_RET(QLX_I2CClose(eBusId));
 *
 * An ASSERT leaves the function at once with TC_FAILURE and no verdict line: only where nothing is
 * held that must be undone. What is brought up in steps is undone by a Ladder (case/ladder.h).
 *
 * Each check prints the text of the checked expression as it stands in the source. Where the
 * formatter would move blanks of a text that must stay as it is, or a text has other names than the
 * expression, the _TEXT form takes it beside the expression.
 *
 * Checks may be used on any thread; a context belongs to one.
 */
#ifndef FRAMEWORK_CASE_CHECK_H
#define FRAMEWORK_CASE_CHECK_H

#include <stdint.h>

#include "framework/base/zk_log.h"

#define TC_COLOR_FAIL "\033[1;31m"
#define TC_COLOR_PASS "\033[1;32m"
#define TC_COLOR_NOTICE "\033[1;33m"
#define TC_COLOR_NA "\033[1;36m"
#define TC_COLOR_RESET "\033[0m"

/** What a case function answers; any other value counts as a failure too. */
enum TcResultCode {
    TC_SUCCESS = 0,
    TC_FAILURE = 1,
    TC_NOT_APPLICABLE = 2,
};

struct CaseContext {
    /** Of the case, or of the harness function that prints a verdict of its own. */
    const char* name;
    /** TcResultCode. */
    uint32_t result = TC_SUCCESS;
};

/** Prints the verdict line in the colour of the result, and returns the result. */
uint32_t tc_result(const CaseContext& tc);

/** Ends a case that asks for what the board does not have. */
uint32_t tc_notApplicable(CaseContext& tc);

/** Prints the frame of a failed check: red, "[name][line]", the message, colour reset; notes the
 *  failure. Returns false. */
bool tc_fail(CaseContext& tc, int line, const char* format, ...) ZK_PRINTF(3, 4);

/** The same frame in green, for the messages of checks that families announce as passed. Returns
 *  true. */
bool tc_pass(const CaseContext& tc, int line, const char* format, ...) ZK_PRINTF(3, 4);

/** Demands that `value` is `expected`; else prints that `text` returned a wrong value. */
bool tc_ret(CaseContext& tc, int line, const char* text, int64_t value, int64_t expected);

/** Demands that `value` is not 0; else prints that `text` returned 0 where it had to be refused. */
bool tc_refused(CaseContext& tc, int line, const char* text, int64_t value);

/** Demands that the lower 32 bits are equal; else prints both. */
bool tc_equal(CaseContext& tc, int line, int64_t expected, int64_t actual);

/** Demands low < value <= high; else prints all three. */
bool tc_range(CaseContext& tc, int line, int low, int high, int value);

/** Ends a case: prints its verdict and yields the code to return. */
#define TC_RESULT(tc) tc_result(tc)

/** Demands that a call answers 0, or the code `expected`. */
#define TC_EXPECT_RET(expr) TC_EXPECT_RET_TEXT(#expr, expr)
#define TC_EXPECT_RET_TEXT(text, expr) tc_ret(tc, __LINE__, text, static_cast<int64_t>(expr), 0)
#define TC_EXPECT_RET_CODE(expr, expected) TC_EXPECT_RET_CODE_TEXT(#expr, expr, expected)
#define TC_EXPECT_RET_CODE_TEXT(text, expr, expected) \
    tc_ret(tc, __LINE__, text, static_cast<int64_t>(expr), expected)

/** Demands that a call is refused, with whatever code. */
#define TC_EXPECT_REFUSED(expr) TC_EXPECT_REFUSED_TEXT(#expr, expr)
#define TC_EXPECT_REFUSED_TEXT(text, expr) \
    tc_refused(tc, __LINE__, text, static_cast<int64_t>(expr))

/** Demands a condition. One that fails is evaluated a second time for the message. */
#define TC_EXPECT_TRUE(condition) \
    (static_cast<bool>(condition) || tc_equal(tc, __LINE__, 1, (condition) ? 1 : 0))

#define TC_EXPECT_EQUAL(expected, actual) \
    tc_equal(tc, __LINE__, static_cast<int64_t>(expected), static_cast<int64_t>(actual))
#define TC_EXPECT_RANGE(low, high, value) tc_range(tc, __LINE__, low, high, value)

/** The same demands; one that does not hold leaves the function with TC_FAILURE. */
#define TC_ASSERT(check)       \
    do {                       \
        if (!(check))          \
            return TC_FAILURE; \
    } while (0)
#define TC_ASSERT_RET(expr) TC_ASSERT(TC_EXPECT_RET_TEXT(#expr, expr))
#define TC_ASSERT_RET_TEXT(text, expr) TC_ASSERT(TC_EXPECT_RET_TEXT(text, expr))
#define TC_ASSERT_RET_CODE(expr, expected) TC_ASSERT(TC_EXPECT_RET_CODE_TEXT(#expr, expr, expected))
#define TC_ASSERT_REFUSED(expr) TC_ASSERT(TC_EXPECT_REFUSED_TEXT(#expr, expr))
#define TC_ASSERT_TRUE(condition) TC_ASSERT(TC_EXPECT_TRUE(condition))
#define TC_ASSERT_EQUAL(expected, actual) TC_ASSERT(TC_EXPECT_EQUAL(expected, actual))

#endif

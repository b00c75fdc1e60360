/*
 * The vocabulary of a test case: its checks, its verdict, and the texts and colours of both.
 *
 * A case body keeps its verdict in a local `uint32_t result = TC_SUCCESS`, checks what the platform
 * library does, and ends with `return TC_RESULT(result)`:
 *
 *     static uint32_t TC_GPIO_GetValue_003(void) {
 *         uint32_t result = TC_SUCCESS;
 *         TC_ASSERT_RET(QLX_GPIOInit());
 *         TC_EXPECT_RET(QLX_GPIOGetValue(g_uGpioNumber, &GetValue));
 *         TC_ASSERT_RET(QLX_GPIODeInit());
 *         return TC_RESULT(result);
 *     }
 *
 * An ASSERT leaves the case at once with TC_FAILURE and no verdict line; an EXPECT notes the
 * failure in `result` and goes on, usually to release what the case holds. Each prints the text of
 * the checked expression as it stands in the source. Where the formatter would move blanks of a
 * text that must stay as it is, or a family prints a text of each variant's own, the _TEXT form
 * takes the text beside the expression.
 *
 * All of them print on the console and may be used on any thread; the case's own thread alone
 * writes `result`.
 */
#ifndef FRAMEWORK_TC_CHECK_H
#define FRAMEWORK_TC_CHECK_H

#include <stdint.h>

#include "framework/case/check.h"

// Bodies that are not yet written on a case context keep the older forms of the checks.
#undef TC_RESULT
#undef TC_ASSERT_RET
#undef TC_ASSERT_RET_TEXT
#undef TC_ASSERT_RET_CODE
#undef TC_EXPECT_RET
#undef TC_EXPECT_RET_TEXT
#undef TC_EXPECT_RET_CODE
#undef TC_ASSERT_REFUSED
#undef TC_EXPECT_REFUSED
#undef TC_EXPECT_REFUSED_TEXT
#undef TC_ASSERT_TRUE
#undef TC_EXPECT_TRUE

/** Prints the verdict line of the case `function` in the colour of `result`, and returns it. */
uint32_t tc_result(const char* function, uint32_t result);

/** Prints the frame of a failed check: red, "[function][line]", the message, colour reset. */
void tc_fail(const char* function, int line, const char* format, ...) ZK_PRINTF(3, 4);

/** The same frame in green, for the messages of checks that families announce as passed. */
void tc_pass(const char* function, int line, const char* format, ...) ZK_PRINTF(3, 4);

/** True when `value` is `expected`; else prints that `text` returned a wrong value. */
bool tc_checkRet(const char* function, int line, const char* text, int64_t value,
                 int64_t expected = 0);

/** True when `value` is not 0; else prints that `text` returned 0 where it had to be refused. */
bool tc_checkRefused(const char* function, int line, const char* text, int64_t value);

/** Prints that a condition that had to hold has the value `actual`. */
void tc_failTrue(const char* function, int line, int actual);

/** Ends a case: prints its verdict and yields the code to return. */
#define TC_RESULT(result) tc_result(__func__, (result))

/** Demands that a call answers 0, or the code `expected`; else leaves the case. */
#define TC_ASSERT_RET(expr) TC_ASSERT_RET_TEXT(#expr, expr, 0)
#define TC_ASSERT_RET_CODE(expr, expected) TC_ASSERT_RET_TEXT(#expr, expr, expected)
#define TC_ASSERT_RET_TEXT(text, expr, expected)                                            \
    do {                                                                                    \
        if (!tc_checkRet(__func__, __LINE__, text, static_cast<int64_t>(expr), (expected))) \
            return TC_FAILURE;                                                              \
    } while (0)

/** As TC_ASSERT_RET, but the case goes on with result = TC_FAILURE. */
#define TC_EXPECT_RET(expr) TC_EXPECT_RET_TEXT(#expr, expr, 0)
#define TC_EXPECT_RET_CODE(expr, expected) TC_EXPECT_RET_TEXT(#expr, expr, expected)
#define TC_EXPECT_RET_TEXT(text, expr, expected)                                            \
    do {                                                                                    \
        if (!tc_checkRet(__func__, __LINE__, text, static_cast<int64_t>(expr), (expected))) \
            result = TC_FAILURE;                                                            \
    } while (0)

/** Demands that a call is refused, with whatever code: 0 is the failure. */
#define TC_ASSERT_REFUSED(expr)                                                      \
    do {                                                                             \
        if (!tc_checkRefused(__func__, __LINE__, #expr, static_cast<int64_t>(expr))) \
            return TC_FAILURE;                                                       \
    } while (0)
#define TC_EXPECT_REFUSED(expr) TC_EXPECT_REFUSED_TEXT(#expr, expr)
#define TC_EXPECT_REFUSED_TEXT(text, expr)                                          \
    do {                                                                            \
        if (!tc_checkRefused(__func__, __LINE__, text, static_cast<int64_t>(expr))) \
            result = TC_FAILURE;                                                    \
    } while (0)

/** Demands a condition. A condition that fails is evaluated a second time for the message. */
#define TC_ASSERT_TRUE(condition)                                 \
    do {                                                          \
        if (!(condition)) {                                       \
            tc_failTrue(__func__, __LINE__, (condition) ? 1 : 0); \
            return TC_FAILURE;                                    \
        }                                                         \
    } while (0)
#define TC_EXPECT_TRUE(condition)                                 \
    do {                                                          \
        if (!(condition)) {                                       \
            tc_failTrue(__func__, __LINE__, (condition) ? 1 : 0); \
            result = TC_FAILURE;                                  \
        }                                                         \
    } while (0)

#endif

#include "framework/case/check.h"

#include <cstdarg>
#include <cstdio>

static void ZK_PRINTF(4, 0) printFrame(const char* color, const char* name, int line,
                                       const char* format, va_list arguments) {
    flockfile(stdout);
    printf("%s[%s][%d]", color, name, line);
    vprintf(format, arguments);
    fputs(TC_COLOR_RESET, stdout);
    fflush(stdout);
    funlockfile(stdout);
}

uint32_t tc_result(const CaseContext& tc) {
    const char* color = TC_COLOR_NA;
    const char* word = "N/A";
    if (tc.result == TC_SUCCESS) {
        color = TC_COLOR_PASS;
        word = "SUCCESS";
    } else if (tc.result == TC_FAILURE) {
        color = TC_COLOR_FAIL;
        word = "FAIL";
    }
    flockfile(stdout);
    printf("%s[%s] TEST Result: %s\n%s", color, tc.name, word, TC_COLOR_RESET);
    fflush(stdout);
    funlockfile(stdout);
    return tc.result;
}

uint32_t tc_notApplicable(CaseContext& tc) {
    tc.result = TC_NOT_APPLICABLE;
    return tc_result(tc);
}

bool tc_fail(CaseContext& tc, int line, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    printFrame(TC_COLOR_FAIL, tc.name, line, format, arguments);
    va_end(arguments);
    tc.result = TC_FAILURE;
    return false;
}

bool tc_pass(const CaseContext& tc, int line, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    printFrame(TC_COLOR_PASS, tc.name, line, format, arguments);
    va_end(arguments);
    return true;
}

static bool failRet(CaseContext& tc, int line, const char* text, int64_t value) {
    return tc_fail(tc, line, "FUNC:%s RETURN ERROR VALUE [%d] \n", text, static_cast<int>(value));
}

bool tc_ret(CaseContext& tc, int line, const char* text, int64_t value, int64_t expected) {
    // Codes are 32 bits wide on both sides, whatever the signs of their types are.
    return static_cast<uint32_t>(value) == static_cast<uint32_t>(expected) ||
           failRet(tc, line, text, value);
}

bool tc_refused(CaseContext& tc, int line, const char* text, int64_t value) {
    return value != 0 || failRet(tc, line, text, value);
}

bool tc_equal(CaseContext& tc, int line, int64_t expected, int64_t actual) {
    return static_cast<uint32_t>(expected) == static_cast<uint32_t>(actual) ||
           tc_fail(tc, line, "expect %d, but actually %d  \n", static_cast<int>(expected),
                   static_cast<int>(actual));
}

bool tc_range(CaseContext& tc, int line, int low, int high, int value) {
    return (value > low && value <= high) ||
           tc_fail(tc, line, "expect in (%d, %d], but actually %d  \n", low, high, value);
}

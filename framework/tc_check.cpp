#include "framework/tc_check.h"

#include <cstdarg>
#include <cstdio>

static void ZK_PRINTF(4, 0) printFrame(const char* color, const char* function, int line,
                                       const char* format, va_list arguments) {
    flockfile(stdout);
    printf("%s[%s][%d]", color, function, line);
    vprintf(format, arguments);
    fputs(TC_COLOR_RESET, stdout);
    fflush(stdout);
    funlockfile(stdout);
}

uint32_t tc_result(const char* function, uint32_t result) {
    const char* color = TC_COLOR_NA;
    const char* word = "N/A";
    if (result == TC_SUCCESS) {
        color = TC_COLOR_PASS;
        word = "SUCCESS";
    } else if (result == TC_FAILURE) {
        color = TC_COLOR_FAIL;
        word = "FAIL";
    }
    flockfile(stdout);
    printf("%s[%s] TEST Result: %s\n%s", color, function, word, TC_COLOR_RESET);
    fflush(stdout);
    funlockfile(stdout);
    return result;
}

void tc_fail(const char* function, int line, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    printFrame(TC_COLOR_FAIL, function, line, format, arguments);
    va_end(arguments);
}

void tc_pass(const char* function, int line, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    printFrame(TC_COLOR_PASS, function, line, format, arguments);
    va_end(arguments);
}

static void failRet(const char* function, int line, const char* text, int64_t value) {
    tc_fail(function, line, "FUNC:%s RETURN ERROR VALUE [%d] \n", text, static_cast<int>(value));
}

bool tc_checkRet(const char* function, int line, const char* text, int64_t value,
                 int64_t expected) {
    // Codes are 32 bits wide on both sides, whatever the signs of their types are.
    if (static_cast<uint32_t>(value) == static_cast<uint32_t>(expected))
        return true;
    failRet(function, line, text, value);
    return false;
}

bool tc_checkRefused(const char* function, int line, const char* text, int64_t value) {
    if (value != 0)
        return true;
    failRet(function, line, text, value);
    return false;
}

void tc_failTrue(const char* function, int line, int actual) {
    tc_fail(function, line, "expect %d, but actually %d  \n", 1, actual);
}

#include "framework/base/zk_log.h"

#include <cstdarg>
#include <cstdio>
#include <ctime>

void zk_logInit(void) {
    setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

void zk_log(const char* format, ...) {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    flockfile(stdout);
    printf("[%ld.%lu]", static_cast<long>(now.tv_sec),
           static_cast<unsigned long>(now.tv_nsec) / 1000);
    va_list arguments;
    va_start(arguments, format);
    vprintf(format, arguments);
    va_end(arguments);
    funlockfile(stdout);
}

void zk_logFlush(void) {
    fflush(stdout);
}

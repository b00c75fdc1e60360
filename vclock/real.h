// The C library's own functions behind those that the virtual clock replaces.
//
// Every use inside vclock/ goes through the table: a plain call would end in our replacement.
#ifndef VCLOCK_REAL_H
#define VCLOCK_REAL_H

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <setjmp.h>
#include <signal.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/epoll.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/resource.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/timerfd.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

// Names of the C library that no header declares under the C++ standard in use.
extern "C" {
int __isoc99_vfscanf(FILE* stream, const char* format, va_list arguments);
[[noreturn]] void __longjmp_chk(jmp_buf to, int value);
}

// clang-format off
#define VCLOCK_REAL_FUNCTIONS(X) \
    X(__isoc99_vfscanf) X(__longjmp_chk) X(_exit) X(alarm) X(clock_gettime) X(close) X(dup2) \
    X(epoll_wait) X(execve) X(execveat) X(execvpe) X(fcntl) X(fexecve) X(fgetc) X(fgets) \
    X(fork) X(fread) X(getdelim) X(getitimer) X(getline) X(kill) X(killpg) X(msgctl) X(msgrcv) \
    X(msgsnd) X(pause) X(pclose) X(pipe) X(pipe2) X(poll) X(posix_spawn) X(posix_spawnp) \
    X(pthread_cancel) X(pthread_create) X(pthread_join) X(pthread_kill) X(pthread_mutex_init) \
    X(pthread_mutex_lock) X(pthread_mutex_unlock) X(pthread_sigmask) X(pthread_sigqueue) \
    X(pthread_testcancel) X(read) X(readv) X(recv) X(recvfrom) X(recvmsg) X(sched_yield) \
    X(select) X(setitimer) X(sigaction) X(siglongjmp) X(sigqueue) X(sigsuspend) \
    X(sigtimedwait) X(sigwait) X(socketpair) X(syscall) X(system) X(tgkill) \
    X(timer_create) X(timer_delete) X(timer_getoverrun) X(timer_gettime) X(timer_settime) \
    X(timerfd_create) X(timerfd_gettime) X(timerfd_settime) X(ualarm) X(vfscanf) X(wait4) \
    X(waitid) X(write)
// clang-format on

namespace vclock {

struct RealFunctions {
#define VCLOCK_REAL_MEMBER(name) decltype(&::name) name;
    VCLOCK_REAL_FUNCTIONS(VCLOCK_REAL_MEMBER)
#undef VCLOCK_REAL_MEMBER
    bool ready;
};

extern RealFunctions realFunctions;

// Fills the table; safe to call again.
void findRealFunctions();

inline const RealFunctions& real() {
    if (__builtin_expect(!realFunctions.ready, 0))
        findRealFunctions();
    return realFunctions;
}

}  // namespace vclock

// Defines a replacement. It has a name of its own in C++, so that the C library's declarations
// (noexcept, nonnull) do not bind it, and the C library's name in the object file.
#define VCLOCK_REPLACE(type, name, ...)               \
    extern "C" __attribute__((visibility("default"))) \
    type replaced_##name(__VA_ARGS__) __asm__(#name); \
    type replaced_##name(__VA_ARGS__)

#endif

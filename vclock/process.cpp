// Replacements of the calls that make, replace, await and end processes.
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "vclock/domain.h"
#include "vclock/real.h"
#include "vclock/timers.h"

using namespace vclock;

VCLOCK_REPLACE(pid_t, fork, void) {
    Turn turn;
    if (!turn)
        return real().fork();
    Child child = addProcess();
    if (child.thread == 0) {
        errno = EAGAIN;
        return -1;
    }
    // Handlers that the program has registered run inside the call, before the child is a member.
    self.forks = &child;
    self.handing = true;
    pid_t pid = real().fork();
    int saved = errno;
    joinAsChild();
    self.forks = nullptr;
    self.handing = false;
    if (pid < 0)
        removeProcess(child);
    else if (pid > 0)
        nameChild(child, pid);
    errno = saved;
    if (pid > 0)
        afterWake();
    return pid;
}

// A vfork may be a fork: the parent does not stand still until the child's exec, which no correct
// program can tell.
VCLOCK_REPLACE(pid_t, vfork, void) {
    return replaced_fork();
}

VCLOCK_REPLACE(int, daemon, int keepDirectory, int keepFiles) {
    pid_t pid = replaced_fork();
    if (pid < 0)
        return -1;
    if (pid > 0) {
        leaveDomain();
        real()._exit(0);
    }
    setsid();
    if (!keepDirectory && chdir("/") < 0)
        return -1;
    int null = keepFiles ? -1 : open("/dev/null", O_RDWR);
    for (int file = 0; null >= 0 && file <= 2; file++)
        real().dup2(null, file);
    if (null > 2)
        real().close(null);
    return 0;
}

// exec: the process leaves the domain; what it becomes runs in real time. Only a failure returns.
// Others run on in the meantime, so a program that is not there is better refused before.
template <typename Call>
static int replaceProgram(const char* path, Call call) {
    Turn turn;
    if (!turn || (path != nullptr && access(path, X_OK) < 0))
        return turn ? -1 : call();
    carryAlarm(true);
    beginExec();
    AnyProcessor processor;
    int result = call();
    failedExec();
    int saved = errno;
    carryAlarm(false);
    errno = saved;
    return result;
}

VCLOCK_REPLACE(int, execve, const char* path, char* const argv[], char* const envp[]) {
    return replaceProgram(path, [&] { return real().execve(path, argv, envp); });
}

VCLOCK_REPLACE(int, execveat, int folder, const char* path, char* const argv[], char* const envp[],
               int flags) {
    return replaceProgram(nullptr,
                          [&] { return real().execveat(folder, path, argv, envp, flags); });
}

VCLOCK_REPLACE(int, fexecve, int file, char* const argv[], char* const envp[]) {
    return replaceProgram(nullptr, [&] { return real().fexecve(file, argv, envp); });
}

VCLOCK_REPLACE(int, execv, const char* path, char* const argv[]) {
    return replaceProgram(path, [&] { return real().execve(path, argv, environ); });
}

// A program that is started at once, without a fork that we would see.
template <typename Call>
static int startProgram(pid_t* pid, Call call) {
    Turn turn;
    pid_t child = 0;
    AnyProcessor processor;
    int error = call(&child);
    if (error == 0 && turn)
        addProgram(child);
    if (error == 0 && pid != nullptr)
        *pid = child;
    return error;
}

VCLOCK_REPLACE(int, posix_spawn, pid_t* pid, const char* path,
               const posix_spawn_file_actions_t* actions, const posix_spawnattr_t* attributes,
               char* const argv[], char* const envp[]) {
    return startProgram(pid, [&](pid_t* child) {
        return real().posix_spawn(child, path, actions, attributes, argv, envp);
    });
}

VCLOCK_REPLACE(int, posix_spawnp, pid_t* pid, const char* file,
               const posix_spawn_file_actions_t* actions, const posix_spawnattr_t* attributes,
               char* const argv[], char* const envp[]) {
    return startProgram(pid, [&](pid_t* child) {
        return real().posix_spawnp(child, file, actions, attributes, argv, envp);
    });
}

static bool inPath(const char* file) {
    if (strchr(file, '/') != nullptr)
        return access(file, X_OK) == 0;
    const char* path = getenv("PATH");
    if (path == nullptr)
        path = "/bin:/usr/bin";
    while (path != nullptr) {
        const char* end = strchrnul(path, ':');
        char candidate[PATH_MAX];
        int size = snprintf(candidate, sizeof candidate, "%.*s%s%s", static_cast<int>(end - path),
                            path, end > path ? "/" : "", file);
        if (size < PATH_MAX && access(candidate, X_OK) == 0)
            return true;
        path = *end != '\0' ? end + 1 : nullptr;
    }
    return false;
}

VCLOCK_REPLACE(int, execvpe, const char* file, char* const argv[], char* const envp[]) {
    if (!inPath(file)) {
        errno = ENOENT;
        return -1;
    }
    return replaceProgram(nullptr, [&] { return real().execvpe(file, argv, envp); });
}

VCLOCK_REPLACE(int, execvp, const char* file, char* const argv[]) {
    return replaced_execvpe(file, argv, environ);
}

// The argument lists of the execl family: as long as any program's, and one more for the end.
constexpr int kMaxArguments = 1024;

// Returns false if the list is too long.
static bool collect(const char* first, va_list* arguments, char** list) {
    const char* argument = first;
    for (int count = 0; count < kMaxArguments; count++) {
        list[count] = const_cast<char*>(argument);
        if (argument == nullptr)
            return true;
        argument = va_arg(*arguments, const char*);
    }
    errno = E2BIG;
    return false;
}

VCLOCK_REPLACE(int, execl, const char* path, const char* first, ...) {
    char* list[kMaxArguments];
    va_list arguments;
    va_start(arguments, first);
    bool whole = collect(first, &arguments, list);
    va_end(arguments);
    return whole ? replaced_execv(path, list) : -1;
}

VCLOCK_REPLACE(int, execlp, const char* file, const char* first, ...) {
    char* list[kMaxArguments];
    va_list arguments;
    va_start(arguments, first);
    bool whole = collect(first, &arguments, list);
    va_end(arguments);
    return whole ? replaced_execvp(file, list) : -1;
}

VCLOCK_REPLACE(int, execle, const char* path, const char* first, ...) {
    char* list[kMaxArguments];
    va_list arguments;
    va_start(arguments, first);
    bool whole = collect(first, &arguments, list);
    char* const* environment = whole ? va_arg(arguments, char* const*) : nullptr;
    va_end(arguments);
    return whole ? replaced_execve(path, list, environment) : -1;
}

// Programs outside the domain take real time only: the clock stands until they are done.
VCLOCK_REPLACE(int, system, const char* command) {
    Turn turn;
    if (!turn)
        return real().system(command);
    RealCall call;
    AnyProcessor processor;
    return real().system(command);
}

VCLOCK_REPLACE(int, pclose, FILE* stream) {
    Turn turn;
    if (!turn)
        return real().pclose(stream);
    RealCall call;
    return real().pclose(stream);
}

VCLOCK_REPLACE(pid_t, wait4, pid_t pid, int* status, int options, struct rusage* usage) {
    Turn turn;
    if (!turn)
        return real().wait4(pid, status, options, usage);
    for (;;) {
        // A child that has ended in the domain takes the kernel a moment more: waited for, so that
        // the same comes out each time.
        if (pid_t exiting = findChild(pid, ProcessState::Exiting)) {
            pid_t waited = real().wait4(exiting, status, options & ~WNOHANG, usage);
            if (waited < 0 && errno == EINTR)
                return -1;
            forgetChild(exiting);
            if (waited > 0)
                return waited;
            continue;
        }
        pid_t ended = real().wait4(pid, status, options | WNOHANG, usage);
        if (ended != 0)
            return ended;
        if (options & WNOHANG) {
            failedPoll();
            return 0;
        }
        if (!findChild(pid, ProcessState::Live)) {
            RealCall call;
            return real().wait4(pid, status, options, usage);
        }
        WaitFor what;
        what.kind = Wait::Child;
        what.object = pid > 0 ? static_cast<uint32_t>(pid) : 0;
        what.restartable = true;
        what.interruptible = what.cancellable = what.endsIfCancelled = true;
        if (wait(what) == Result::Interrupted) {
            errno = EINTR;
            return -1;
        }
    }
}

VCLOCK_REPLACE(pid_t, waitpid, pid_t pid, int* status, int options) {
    return replaced_wait4(pid, status, options, nullptr);
}

VCLOCK_REPLACE(pid_t, wait, int* status) {
    return replaced_wait4(-1, status, 0, nullptr);
}

VCLOCK_REPLACE(pid_t, wait3, int* status, int options, struct rusage* usage) {
    return replaced_wait4(-1, status, options, usage);
}

VCLOCK_REPLACE(int, waitid, idtype_t type, id_t id, siginfo_t* info, int options) {
    Turn turn;
    if (!turn)
        return real().waitid(type, id, info, options);
    for (;;) {
        pid_t child = type == P_PID ? static_cast<pid_t>(id) : -1;
        if (pid_t exiting = findChild(child, ProcessState::Exiting)) {
            int failed = real().waitid(P_PID, static_cast<id_t>(exiting), info, options & ~WNOHANG);
            if (failed && errno == EINTR)
                return -1;
            if (!(options & WNOWAIT))
                forgetChild(exiting);
            if (!failed)
                return 0;
            forgetChild(exiting);
            continue;
        }
        siginfo_t seen = {};
        int error = real().waitid(type, id, &seen, options | WNOHANG);
        if (error != 0 || seen.si_pid != 0 || (options & WNOHANG)) {
            if (info != nullptr)
                *info = seen;
            if (error == 0 && seen.si_pid == 0)
                failedPoll();
            return error;
        }
        if (!findChild(child, ProcessState::Live)) {
            RealCall call;
            return real().waitid(type, id, info, options);
        }
        WaitFor what;
        what.kind = Wait::Child;
        what.interruptible = what.restartable = true;
        if (wait(what) == Result::Interrupted) {
            errno = EINTR;
            return -1;
        }
    }
}

VCLOCK_REPLACE(void, _exit, int status) {
    leaveDomain();
    real()._exit(status);
}

VCLOCK_REPLACE(void, _Exit, int status) {
    leaveDomain();
    real()._exit(status);
}

// What the domain tells its user: the trace of who ran when, and the report of a deadlock.
#include <cxxabi.h>
#include <dlfcn.h>
#include <errno.h>
#include <execinfo.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include <initializer_list>

#include "vclock/domain_internal.h"
#include "vclock/real.h"

namespace vclock {

int traceFile = -1;

void openTrace(const char* path) {
    if (path == nullptr || *path == '\0')
        return;
    int file = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0666);
    if (file < 0) {
        dprintf(STDERR_FILENO, "vclock: cannot write trace %s: %s\n", path, strerror(errno));
        return;
    }
    traceFile = real().fcntl(file, F_DUPFD_CLOEXEC, kOwnDescriptors);
    if (traceFile < 0)
        traceFile = file;
    else
        real().close(file);
}

static void put(int file, const char* text, size_t size) {
    int saved = errno;
    ssize_t ignored = real().write(file, text, size);
    (void)ignored;
    errno = saved;
}

__attribute__((format(printf, 2, 3))) static void say(int file, const char* format, ...) {
    char line[512];
    va_list arguments;
    va_start(arguments, format);
    int size = vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    if (size > 0)
        put(file, line,
            static_cast<size_t>(size) < sizeof line ? static_cast<size_t>(size) : sizeof line - 1);
}

const char* waitName(Wait kind) {
    switch (kind) {
        case Wait::None:
            return "its first turn";
        case Wait::Sleep:
            return "sleep";
        case Wait::Mutex:
            return "mutex";
        case Wait::Condition:
            return "condition";
        case Wait::Semaphore:
            return "semaphore";
        case Wait::ReadWriteLock:
            return "rwlock";
        case Wait::Barrier:
            return "barrier";
        case Wait::Once:
            return "once";
        case Wait::Futex:
            return "futex";
        case Wait::Join:
            return "end-of-thread";
        case Wait::Child:
            return "end-of-child";
        case Wait::Descriptor:
            return "descriptor";
        case Wait::MessageQueue:
            return "message-queue";
        case Wait::Signal:
            return "signal";
        case Wait::Timer:
            return "timer";
    }
    return "?";
}

struct Time {
    long long seconds;
    long long fraction;
};

static Time sinceStart(int64_t ns) {
    ns -= kStartOfTime;
    return {static_cast<long long>(ns / kSecond), static_cast<long long>(ns % kSecond)};
}

// Objects that are named by the kernel, or by an address, have no number of ours: their names
// differ from run to run and stay out of the trace.
static bool numbered(Wait kind) {
    return kind == Wait::Mutex || kind == Wait::Condition || kind == Wait::Semaphore ||
           kind == Wait::ReadWriteLock || kind == Wait::Barrier || kind == Wait::Join;
}

void traceLine(const char* event, const ThreadSlot& slot) {
    Time now = sinceStart(region->now);
    if (slot.state != State::Waiting) {
        say(traceFile, "%lld.%09lld %u.%u %s\n", now.seconds, now.fraction,
            region->processes[slot.process].number, slot.number, event);
        return;
    }
    char object[16] = "";
    if (numbered(slot.kind))
        snprintf(object, sizeof object, " %u", slot.object);
    char until[48] = "";
    if (slot.deadline != kForever) {
        int64_t length = slot.deadline - clockNow(slot.clock);
        snprintf(until, sizeof until, " for %lld ns", static_cast<long long>(length));
    }
    say(traceFile, "%lld.%09lld %u.%u %s %s%s%s\n", now.seconds, now.fraction,
        region->processes[slot.process].number, slot.number, event, waitName(slot.kind), object,
        until);
}

void traceProcess(const char* event, const ProcessSlot& process) {
    Time now = sinceStart(region->now);
    say(traceFile, "%lld.%09lld %u %s\n", now.seconds, now.fraction, process.number, event);
}

void reportHeader() {
    Time now = sinceStart(region->now);
    if (traceFile >= 0)
        say(traceFile, "%lld.%09lld deadlock\n", now.seconds, now.fraction);
    say(STDERR_FILENO,
        "vclock: deadlock after %lld.%09lld s: every thread waits, none has a deadline\n",
        now.seconds, now.fraction);
}

void reportLimit() {
    Time limit = sinceStart(region->limit);
    if (traceFile >= 0)
        say(traceFile, "%lld.%09lld limit\n", limit.seconds, limit.fraction);
    say(STDERR_FILENO, "vclock: ended after the limit of %lld s\n", limit.seconds);
}

static void readName(char* name, size_t size, const char* path) {
    int file = open(path, O_RDONLY | O_CLOEXEC);
    ssize_t got = file >= 0 ? real().read(file, name, size - 1) : 0;
    if (file >= 0)
        real().close(file);
    name[got > 0 ? got : 0] = '\0';
    name[strcspn(name, "\n")] = '\0';
}

static void reportFrame(int number, void* address) {
    Dl_info info = {};
    if (dladdr(address, &info) == 0 || info.dli_fname == nullptr) {
        say(STDERR_FILENO, "    #%d %p\n", number, address);
        return;
    }
    const char* base = strrchr(info.dli_fname, '/');
    base = base != nullptr ? base + 1 : info.dli_fname;
    unsigned long offset = static_cast<unsigned long>(static_cast<char*>(address) -
                                                      static_cast<char*>(info.dli_fbase));
    int status = -1;
    char* plain = info.dli_sname != nullptr
                      ? abi::__cxa_demangle(info.dli_sname, nullptr, nullptr, &status)
                      : nullptr;
    const char* symbol = plain != nullptr ? plain : info.dli_sname;
    say(STDERR_FILENO, "    #%d %s (%s+0x%lx)\n", number, symbol != nullptr ? symbol : "?", base,
        offset);
    free(plain);
}

void reportThread(const ThreadSlot& slot) {
    char path[64];
    char name[32];
    snprintf(path, sizeof path, "/proc/self/task/%u/comm", slot.threadId);
    readName(name, sizeof name, path);
    char object[48] = "";
    if (slot.address != 0)
        snprintf(object, sizeof object, " at 0x%llx",
                 static_cast<unsigned long long>(slot.address));
    char held[48] = "";
    if (slot.owner != 0)
        snprintf(held, sizeof held, ", held by thread %u", slot.owner);
    say(STDERR_FILENO, "vclock: process %u (pid %d) thread %u \"%s\" waits for %s %u%s%s\n",
        region->processes[slot.process].number, static_cast<int>(getpid()), slot.number, name,
        waitName(slot.kind), slot.object, object, held);
    void* frames[40];
    int count = backtrace(frames, 40);
    int printed = 0;
    for (int i = 0; i < count; i++) {
        Dl_info info = {};
        bool ours = dladdr(frames[i], &info) != 0 && info.dli_fbase != nullptr &&
                    strstr(info.dli_fname, "libvclock.so") != nullptr;
        if (!ours)
            reportFrame(printed++, frames[i]);
    }
}

void flushOutput() {
    // What the program printed so far belongs before its end; a stream that a waiting thread holds
    // is left alone.
    for (FILE* stream : {stdout, stderr}) {
        if (ftrylockfile(stream) == 0)
            fflush_unlocked(stream);
    }
}

}  // namespace vclock

// One thread that keeps all others waiting, in real time: it sleeps in a call that is not replaced,
// which is told; or it runs on without any call, as a loop does that waits for a variable. Then it
// is stopped now and again, and time goes on by the processor time that it has taken: a machine
// that has much else to do lets it wait, and the real time of that is nobody's.
#include <errno.h>
#include <fcntl.h>
#include <link.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <ucontext.h>

#include "vclock/domain_internal.h"
#include "vclock/real.h"

namespace vclock {

// So many times the patience has a thread that calls what is replaced.
constexpr int64_t kBusyFactor = 12;
// The most that one stop lets time go on.
constexpr int64_t kLongestStop = kSecond / 2;

namespace {

struct Holder {
    uint32_t slot;
    uint32_t number;
    uint32_t process;
    int32_t pid;
    uint32_t threadId;
    bool spins;
};

struct Times {
    char state;
    int64_t processor;  // nanoseconds
};

// Code in which a thread may hold a lock of the C library's own, and must not be stopped.
struct Code {
    uintptr_t begin;
    uintptr_t end;
};

}  // namespace

static Code forbidden[8];
static size_t forbiddenCount;
static __thread int64_t resumed __attribute__((tls_model("initial-exec")));

static size_t readText(char* text, size_t size, pid_t pid, uint32_t thread, const char* name) {
    char path[64];
    snprintf(path, sizeof path, "/proc/%d/task/%u/%s", static_cast<int>(pid), thread, name);
    int file = open(path, O_RDONLY | O_CLOEXEC);
    ssize_t got = file >= 0 ? real().read(file, text, size - 1) : 0;
    if (file >= 0)
        real().close(file);
    text[got > 0 ? got : 0] = '\0';
    return got > 0 ? static_cast<size_t>(got) : 0;
}

static bool readTimes(const Holder& holder, Times* times) {
    char text[1024];
    if (readText(text, sizeof text, holder.pid, holder.threadId, "stat") == 0)
        return false;
    // Behind the name: state, ten numbers, user's and system's ticks.
    const char* rest = strrchr(text, ')');
    unsigned long user = 0;
    unsigned long system = 0;
    if (rest == nullptr || sscanf(rest, ") %c %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %lu %lu",
                                  &times->state, &user, &system) != 3)
        return false;
    times->processor = static_cast<int64_t>(user + system) * (kSecond / sysconf(_SC_CLK_TCK));
    return true;
}

static const char* callName(long number) {
    static const struct {
        long number;
        const char* name;
    } names[] = {{SYS_futex, "futex"},     {SYS_flock, "flock"},     {SYS_fcntl, "fcntl"},
                 {SYS_connect, "connect"}, {SYS_writev, "writev"},   {SYS_write, "write"},
                 {SYS_sendto, "sendto"},   {SYS_sendmsg, "sendmsg"},
#ifdef SYS_accept
                 {SYS_accept, "accept"},
#endif
                 {SYS_accept4, "accept4"}, {SYS_openat, "openat"}};
    for (const auto& one : names) {
        if (one.number == number)
            return one.name;
    }
    return "?";
}

static void tellSleep(const Holder& holder, int64_t slept) {
    char name[32];
    char call[128];
    readText(name, sizeof name, holder.pid, holder.threadId, "comm");
    name[strcspn(name, "\n")] = '\0';
    bool known = readText(call, sizeof call, holder.pid, holder.threadId, "syscall") > 0 &&
                 call[0] >= '0' && call[0] <= '9';
    long number = known ? strtol(call, nullptr, 10) : -1;
    dprintf(STDERR_FILENO,
            "vclock: process %u (pid %d) thread %u \"%s\" has kept all others waiting for %lld s, "
            "asleep in a call that virtual time does not replace: system call %ld, %s\n",
            holder.process, static_cast<int>(holder.pid), holder.number, name,
            static_cast<long long>(slept / kSecond), number, callName(number));
}

// Who has the token, if the same thread had it at the last look and nobody did anything since.
static bool stillHeld(Holder* holder) {
    Locked lock;
    Stall& stall = region->stall;
    holder->slot = region->running.load();
    if (holder->slot == 0 || region->reporting || region->finished ||
        region->order != stall.order) {
        stall.order = region->order;
        stall.since = realNow();
        stall.processor = 0;
        return false;
    }
    const ThreadSlot& thread = slotAt(holder->slot);
    const ProcessSlot& process = region->processes[thread.process];
    *holder = {holder->slot, thread.number,   process.number,
               process.pid,  thread.threadId, thread.spins != 0};
    return thread.state == State::Running;
}

void lookForStall() {
    Holder holder;
    Times times;
    if (!stillHeld(&holder) || !readTimes(holder, &times))
        return;
    Stall& stall = region->stall;
    if (stall.processor == 0)
        stall.processor = times.processor + 1;
    int64_t ran = times.processor + 1 - stall.processor;
    int64_t held = realNow() - stall.since;
    if (ran >= region->patience || holder.spins) {
        real().syscall(SYS_tgkill, holder.pid, holder.threadId, SIGRTMAX);
    } else if ((times.state == 'S' || times.state == 'T') && ran < region->patience / 2 &&
               held >= 2 * region->patience && stall.told != holder.number) {
        stall.told = holder.number;
        tellSleep(holder, held);
    }
}

// ---- In the thread that runs on ----

static uintptr_t programCounter(void* context) {
    const mcontext_t& machine = static_cast<ucontext_t*>(context)->uc_mcontext;
#if defined(__x86_64__)
    return static_cast<uintptr_t>(machine.gregs[REG_RIP]);
#elif defined(__i386__)
    return static_cast<uintptr_t>(machine.gregs[REG_EIP]);
#elif defined(__aarch64__)
    return static_cast<uintptr_t>(machine.pc);
#elif defined(__arm__)
    return static_cast<uintptr_t>(machine.arm_pc);
#else
    (void)machine;
    return forbidden[0].begin;
#endif
}

static bool mayStop(void* context) {
    uintptr_t at = programCounter(context);
    for (size_t i = 0; i < forbiddenCount; i++) {
        if (at >= forbidden[i].begin && at < forbidden[i].end)
            return false;
    }
    return true;
}

static void tellSpin(const ThreadSlot& me) {
    char name[32];
    readText(name, sizeof name, getpid(), me.threadId, "comm");
    name[strcspn(name, "\n")] = '\0';
    dprintf(STDERR_FILENO,
            "vclock: process %u (pid %d) thread %u \"%s\" has run for %lld s without a call that "
            "waits: from now on its processor time passes for all\n",
            region->processes[me.process].number, static_cast<int>(getpid()), me.number, name,
            static_cast<long long>(region->patience / kSecond));
}

static int64_t processorTime() {
    timespec time = {};
    real().clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<int64_t>(time.tv_sec) * kSecond + time.tv_nsec;
}

// Whether the thread waits for something by running, for all we know. One that calls what is
// replaced, if nothing that waits, may have much to do: it has far more time. What it has run since
// its last call counts in processor time: on a busy machine long computing has many looks.
static bool spins(ThreadSlot& me) {
    static __thread int64_t stall __attribute__((tls_model("initial-exec")));
    static __thread int64_t began __attribute__((tls_model("initial-exec")));
    static __thread int64_t silent __attribute__((tls_model("initial-exec")));
    static __thread uint32_t calls __attribute__((tls_model("initial-exec")));
    int64_t ran = processorTime();
    bool first = stall != region->stall.since && !me.spins;
    if (first) {
        stall = region->stall.since;
        began = ran;
    }
    if (first || self.calls != calls) {
        calls = self.calls;
        silent = ran;
    }
    if (ran - silent < region->patience / 5 && ran - began < kBusyFactor * region->patience) {
        me.spins = 0;
        return false;
    }
    return true;
}

static void stop(int, siginfo_t*, void* context) {
    int saved = errno;
    if (region != nullptr && self.slot != 0 && !self.locked && !self.handing &&
        region->running.load() == self.slot && mayStop(context) && spins(slotAt(self.slot))) {
        ThreadSlot& me = slotAt(self.slot);
        int64_t passed = me.spins ? processorTime() - resumed : 0;
        if (!me.toldSpinning)
            tellSpin(me);
        WaitFor what;
        what.until.ns =
            clockNow(Clock::Monotonic) + (passed < kLongestStop ? passed : kLongestStop);
        wait(what);
        me.spins = me.toldSpinning = 1;
        region->stall.spins = 1;
        resumed = processorTime();
    }
    errno = saved;
}

static int noteCode(dl_phdr_info* library, size_t, void*) {
    static const char* const names[] = {"libc.so",     "/ld-",       "libvclock", "libasan",
                                        "libclang_rt", "libpthread", "linux-vdso"};
    const char* base = strrchr(library->dlpi_name, '/');
    for (const char* name : names) {
        if (strstr(name[0] == '/' && base != nullptr ? base : library->dlpi_name, name) ==
                nullptr ||
            forbiddenCount == sizeof forbidden / sizeof *forbidden)
            continue;
        Code code = {UINTPTR_MAX, 0};
        for (int i = 0; i < library->dlpi_phnum; i++) {
            const auto& part = library->dlpi_phdr[i];
            uintptr_t begin = library->dlpi_addr + part.p_vaddr;
            if (part.p_type != PT_LOAD)
                continue;
            code.begin = begin < code.begin ? begin : code.begin;
            code.end = begin + part.p_memsz > code.end ? begin + part.p_memsz : code.end;
        }
        forbidden[forbiddenCount++] = code;
        break;
    }
    return 0;
}

__attribute__((constructor)) static void prepareStops() {
    dl_iterate_phdr(noteCode, nullptr);
    struct sigaction action = {};
    action.sa_sigaction = stop;
    action.sa_flags = SA_SIGINFO | SA_RESTART;
    real().sigaction(SIGRTMAX, &action, nullptr);
}

}  // namespace vclock

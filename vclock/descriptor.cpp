// Replacements of reads, writes and polls of descriptors, and of System V message queues.
//
// A pipe made inside the domain is waited for in virtual time. Input from elsewhere (a terminal,
// a pipe or socket of the environment) is a real call: time stands still until it comes.
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "vclock/domain.h"
#include "vclock/outside.h"
#include "vclock/real.h"
#include "vclock/time_arguments.h"

using namespace vclock;

namespace {
enum class Kind {
    Plain,   // never blocks for long, or is asked not to
    Domain,  // its other end is in the domain
    Foreign
};
}  // namespace

constexpr uint32_t kProbes = 8;

// The table forgets old pipes when it is crowded: a forgotten one counts as foreign.
static void rememberPipe(int file) {
    struct stat about;
    if (region == nullptr || fstat(file, &about) < 0)
        return;
    uint32_t home = static_cast<uint32_t>(about.st_ino) % kMaxPipes;
    for (uint32_t i = 0; i < kProbes; i++) {
        uint64_t& entry = region->pipes[(home + i) % kMaxPipes];
        if (entry == 0 || i == kProbes - 1) {
            entry = about.st_ino;
            return;
        }
    }
}

bool vclock::knownPipe(uint64_t inode) {
    uint32_t home = static_cast<uint32_t>(inode) % kMaxPipes;
    for (uint32_t i = 0; i < kProbes; i++) {
        if (region->pipes[(home + i) % kMaxPipes] == inode)
            return true;
    }
    return false;
}

// Whether the kernel shows the descriptor as one of the kind, "eventfd" for instance.
static bool isA(const char* kind, int file) {
    char link[64];
    char target[64];
    char wanted[64];
    snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    snprintf(wanted, sizeof wanted, "anon_inode:[%s]", kind);
    ssize_t size = readlink(link, target, sizeof target - 1);
    target[size > 0 ? size : 0] = '\0';
    return strcmp(target, wanted) == 0;
}

// It tells of signals, or of the end of a process: from the domain or from outside.
static bool tellsOfProcesses(int file) {
    return isA("signalfd", file) || isA("pidfd", file);
}

static Kind kindOf(int file, bool heedsNonBlocking = true) {
    struct stat about;
    if (region == nullptr || fstat(file, &about) < 0)
        return Kind::Plain;
    mode_t type = about.st_mode & S_IFMT;
    if (type == S_IFREG || type == S_IFDIR || type == S_IFBLK || type == S_IFLNK)
        return Kind::Plain;
    if (heedsNonBlocking && (real().fcntl(file, F_GETFL) & O_NONBLOCK))
        return Kind::Plain;
    if (type == S_IFCHR) {
        pollfd now = {file, POLLIN, 0};
        return real().poll(&now, 1, 0) > 0 ? Kind::Plain : Kind::Foreign;
    }
    if (type != 0)
        return knownPipe(about.st_ino) ? Kind::Domain : Kind::Foreign;
    if (tellsOfProcesses(file)) {
        // The kernel may need a moment to tell what somebody did, and time must not jump past it.
        awaitChildren();
        return Kind::Domain;
    }
    return isA("eventfd", file) ? Kind::Domain : Kind::Foreign;
}

template <typename Claim>
static bool anyOf(const pollfd* files, nfds_t count, Claim claim) {
    for (nfds_t i = 0; i < count; i++) {
        if (files[i].fd >= 0 && claim(files[i].fd))
            return true;
    }
    return false;
}

static WaitFor forDescriptor() {
    WaitFor what;
    what.kind = Wait::Descriptor;
    what.interruptible = what.cancellable = what.endsIfCancelled = true;
    return what;
}

// Polls for real, without a time-out.
static int pollOutside(pollfd* files, nfds_t count) {
    RealCall outside;
    return real().poll(files, count, -1);
}

// Waits in virtual time until one of the descriptors is ready. Returns as poll does.
static int pollUntil(pollfd* files, nfds_t count, WaitFor what) {
    what.object = count == 1 ? static_cast<uint32_t>(files[0].fd) : 0;
    for (;;) {
        int ready = real().poll(files, count, 0);
        if (ready != 0)
            return ready;
        // A program outside may hold the other end: only a real call notices it.
        if (what.until.ns == kForever && programsRunning())
            return pollOutside(files, count);
        Result result = wait(what);
        if (result == Result::TimedOut)
            return real().poll(files, count, 0);
        if (result == Result::Interrupted) {
            errno = EINTR;
            return -1;
        }
        if (result == Result::LastLook &&
            (anyOf(files, count, tellsOfProcesses) || heldOutside(files, count)))
            return pollOutside(files, count);
        what.lookedInVain = true;
    }
}

// Waits until the file can be read or written. Returns false with errno EINTR.
static bool awaitFile(int file, short events) {
    pollfd one = {file, events, 0};
    WaitFor what = forDescriptor();
    what.restartable = true;
    return pollUntil(&one, 1, what) >= 0;
}

// Runs a call that reads from a descriptor.
template <typename Call>
static ssize_t input(int file, bool mayWait, Call call) {
    Turn turn;
    Kind kind = turn && mayWait ? kindOf(file) : Kind::Plain;
    ssize_t result;
    if (kind == Kind::Foreign) {
        RealCall outside;
        result = call();
    } else {
        if (kind == Kind::Domain && !awaitFile(file, POLLIN))
            return -1;
        result = call();
    }
    if (turn && (result == 0 || (result < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)))) {
        int saved = errno;
        failedPoll();
        errno = saved;
    }
    return result;
}

VCLOCK_REPLACE(ssize_t, read, int file, void* buffer, size_t size) {
    return input(file, true, [&] { return real().read(file, buffer, size); });
}

VCLOCK_REPLACE(ssize_t, readv, int file, const iovec* parts, int count) {
    return input(file, true, [&] { return real().readv(file, parts, count); });
}

VCLOCK_REPLACE(ssize_t, recv, int file, void* buffer, size_t size, int flags) {
    return input(file, !(flags & MSG_DONTWAIT),
                 [&] { return real().recv(file, buffer, size, flags); });
}

VCLOCK_REPLACE(ssize_t, recvfrom, int file, void* buffer, size_t size, int flags,
               struct sockaddr* from, socklen_t* length) {
    return input(file, !(flags & MSG_DONTWAIT),
                 [&] { return real().recvfrom(file, buffer, size, flags, from, length); });
}

VCLOCK_REPLACE(ssize_t, recvmsg, int file, msghdr* message, int flags) {
    return input(file, !(flags & MSG_DONTWAIT),
                 [&] { return real().recvmsg(file, message, flags); });
}

// A pipe that can be written takes PIPE_BUF bytes at once; more goes in such pieces.
VCLOCK_REPLACE(ssize_t, write, int file, const void* buffer, size_t size) {
    Turn turn;
    struct stat about;
    if (!turn || fstat(file, &about) < 0 || !(S_ISFIFO(about.st_mode) || S_ISSOCK(about.st_mode)) ||
        kindOf(file) != Kind::Domain)
        return real().write(file, buffer, size);
    const char* from = static_cast<const char*>(buffer);
    size_t written = 0;
    do {
        if (!awaitFile(file, POLLOUT))
            return written > 0 ? static_cast<ssize_t>(written) : -1;
        size_t piece = size - written < PIPE_BUF ? size - written : PIPE_BUF;
        ssize_t result = real().write(file, from + written, piece);
        if (result < 0)
            return written > 0 ? static_cast<ssize_t>(written) : -1;
        written += static_cast<size_t>(result);
    } while (written < size);
    return static_cast<ssize_t>(written);
}

VCLOCK_REPLACE(int, pipe, int files[2]) {
    Turn turn;
    int result = real().pipe(files);
    if (result == 0)
        rememberPipe(files[0]);
    return result;
}

VCLOCK_REPLACE(int, pipe2, int files[2], int flags) {
    Turn turn;
    int result = real().pipe2(files, flags);
    if (result == 0)
        rememberPipe(files[0]);
    return result;
}

VCLOCK_REPLACE(int, socketpair, int domain, int type, int protocol, int files[2]) {
    Turn turn;
    int result = real().socketpair(domain, type, protocol, files);
    if (result == 0) {
        rememberPipe(files[0]);
        rememberPipe(files[1]);
    }
    return result;
}

// A time-out is virtual, whatever is polled. Without one, input from elsewhere is a real wait.
static int pollFor(pollfd* files, nfds_t count, int64_t ns, WaitFor what = forDescriptor()) {
    Turn turn;
    if (ns == 0 || !turn) {
        int ready = real().poll(files, count, 0);
        if (ready == 0 && turn)
            failedPoll();
        return ready;
    }
    bool foreign =
        anyOf(files, count, [](int file) { return kindOf(file, false) == Kind::Foreign; });
    if (ns < 0 && foreign)
        return pollOutside(files, count);
    what.until = deadlineIn(ns);
    return pollUntil(files, count, what);
}

namespace {

// Another signal mask for the length of a wait. A handler that runs as soon as the mask lets it has
// interrupted the wait already.
class MaskedWait {
 public:
    explicit MaskedWait(const sigset_t* mask) : masked_(mask != nullptr) {
        if (masked_)
            pthread_sigmask(SIG_SETMASK, mask, &before_);
    }
    ~MaskedWait() {
        int saved = errno;
        if (masked_)
            pthread_sigmask(SIG_SETMASK, &before_, nullptr);
        errno = saved;
    }
    MaskedWait(const MaskedWait&) = delete;
    MaskedWait& operator=(const MaskedWait&) = delete;
    // Begun before the mask changes.
    const WaitFor what = forDescriptor();
    bool interrupted() const {
        if (self.handled == what.handled)
            return false;
        errno = EINTR;
        return true;
    }

 private:
    bool masked_;
    sigset_t before_;
};

}  // namespace

VCLOCK_REPLACE(int, poll, pollfd* files, nfds_t count, int milliseconds) {
    return pollFor(files, count, static_cast<int64_t>(milliseconds) * 1000000);
}

VCLOCK_REPLACE(int, ppoll, pollfd* files, nfds_t count, const timespec* time,
               const sigset_t* mask) {
    MaskedWait wait(mask);
    if (wait.interrupted())
        return -1;
    return pollFor(files, count, time != nullptr ? toNs(*time) : -1, wait.what);
}

static int selectFor(int count, fd_set* in, fd_set* out, fd_set* odd, int64_t ns,
                     const WaitFor& what = forDescriptor()) {
    pollfd files[FD_SETSIZE];
    nfds_t used = 0;
    for (int file = 0; file < count && file < FD_SETSIZE; file++) {
        short events = 0;
        if (in != nullptr && FD_ISSET(file, in))
            events |= POLLIN;
        if (out != nullptr && FD_ISSET(file, out))
            events |= POLLOUT;
        if (odd != nullptr && FD_ISSET(file, odd))
            events |= POLLPRI;
        if (events != 0)
            files[used++] = {file, events, 0};
    }
    int ready = pollFor(files, used, ns, what);
    if (ready < 0)
        return ready;
    int bits = 0;
    for (nfds_t i = 0; i < used; i++) {
        int file = files[i].fd;
        short got = files[i].revents;
        if (got & POLLNVAL) {
            errno = EBADF;
            return -1;
        }
        struct {
            fd_set* set;
            short wanted;
            short given;
        } sets[] = {{in, POLLIN, POLLIN | POLLHUP | POLLERR},
                    {out, POLLOUT, POLLOUT | POLLERR},
                    {odd, POLLPRI, POLLPRI}};
        for (auto& one : sets) {
            if (one.set == nullptr || !(files[i].events & one.wanted))
                continue;
            if (got & one.given)
                bits++;
            else
                FD_CLR(file, one.set);
        }
    }
    return bits;
}

VCLOCK_REPLACE(int, select, int count, fd_set* in, fd_set* out, fd_set* odd, timeval* time) {
    int64_t ns = time != nullptr ? toNs({time->tv_sec, 0}) + time->tv_usec * 1000 : -1;
    int64_t began = region != nullptr ? clockNow(Clock::Monotonic) : 0;
    int bits = selectFor(count, in, out, odd, ns);
    if (time != nullptr && region != nullptr) {
        int64_t left = ns - (clockNow(Clock::Monotonic) - began);
        timespec rest = toTimespec(left > 0 ? left : 0);
        time->tv_sec = rest.tv_sec;
        time->tv_usec = static_cast<suseconds_t>(rest.tv_nsec / 1000);
    }
    return bits;
}

VCLOCK_REPLACE(int, pselect, int count, fd_set* in, fd_set* out, fd_set* odd, const timespec* time,
               const sigset_t* mask) {
    MaskedWait wait(mask);
    if (wait.interrupted())
        return -1;
    return selectFor(count, in, out, odd, time != nullptr ? toNs(*time) : -1, wait.what);
}

static int waitForEvents(int set, epoll_event* events, int most, int64_t ns,
                         WaitFor what = forDescriptor()) {
    Turn turn;
    int ready = real().epoll_wait(set, events, most, 0);
    if (ready != 0 || !turn)
        return ready;
    if (ns == 0) {
        failedPoll();
        return 0;
    }
    if (ns < 0) {
        RealCall outside(false);
        return real().epoll_wait(set, events, most, -1);
    }
    pollfd one = {set, POLLIN, 0};
    what.until = deadlineIn(ns);
    ready = pollUntil(&one, 1, what);
    return ready < 0 ? ready : real().epoll_wait(set, events, most, 0);
}

VCLOCK_REPLACE(int, epoll_wait, int set, epoll_event* events, int most, int milliseconds) {
    return waitForEvents(set, events, most, static_cast<int64_t>(milliseconds) * 1000000);
}

VCLOCK_REPLACE(int, epoll_pwait, int set, epoll_event* events, int most, int milliseconds,
               const sigset_t* mask) {
    MaskedWait wait(mask);
    if (wait.interrupted())
        return -1;
    return waitForEvents(set, events, most, static_cast<int64_t>(milliseconds) * 1000000,
                         wait.what);
}

// stdio reads inside the C library: the wait comes before the call, if the stream's buffer is
// empty. A loop that reads on at the end of input must not stop the world.
template <typename Call, typename Failed>
static auto streamInput(FILE* stream, Call call, Failed failed) -> decltype(call()) {
    Turn turn;
    int file = turn && stream != nullptr ? fileno_unlocked(stream) : -1;
    Kind kind = Kind::Plain;
    if (file >= 0 && stream->_IO_read_ptr >= stream->_IO_read_end)
        kind = kindOf(file);
    if (kind == Kind::Foreign) {
        RealCall outside;
        return call();
    }
    while (kind == Kind::Domain && !awaitFile(file, POLLIN)) {
    }
    auto result = call();
    if (turn && failed(result)) {
        int saved = errno;
        failedPoll();
        errno = saved;
    }
    return result;
}

static bool noCharacter(int result) {
    return result == EOF;
}

VCLOCK_REPLACE(int, fgetc, FILE* stream) {
    return streamInput(
        stream, [&] { return real().fgetc(stream); }, noCharacter);
}

VCLOCK_REPLACE(int, getc, FILE* stream) {
    return replaced_fgetc(stream);
}

VCLOCK_REPLACE(int, _IO_getc, FILE* stream) {
    return replaced_fgetc(stream);
}

VCLOCK_REPLACE(int, getchar, void) {
    return replaced_fgetc(stdin);
}

VCLOCK_REPLACE(char*, fgets, char* text, int size, FILE* stream) {
    return streamInput(
        stream, [&] { return real().fgets(text, size, stream); },
        [](const char* result) { return result == nullptr; });
}

VCLOCK_REPLACE(size_t, fread, void* to, size_t size, size_t count, FILE* stream) {
    return streamInput(
        stream, [&] { return real().fread(to, size, count, stream); },
        [](size_t result) { return result == 0; });
}

VCLOCK_REPLACE(ssize_t, getline, char** line, size_t* size, FILE* stream) {
    return streamInput(
        stream, [&] { return real().getline(line, size, stream); },
        [](ssize_t result) { return result < 0; });
}

VCLOCK_REPLACE(ssize_t, getdelim, char** line, size_t* size, int delimiter, FILE* stream) {
    return streamInput(
        stream, [&] { return real().getdelim(line, size, delimiter, stream); },
        [](ssize_t result) { return result < 0; });
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
static int scanStream(bool iso, FILE* stream, const char* format, va_list arguments) {
    return streamInput(
        stream,
        [&] {
            return iso ? real().__isoc99_vfscanf(stream, format, arguments)
                       : real().vfscanf(stream, format, arguments);
        },
        noCharacter);
}
#pragma GCC diagnostic pop

// The C library has each twice: programs of C99 and later call the second name.
#define VCLOCK_REPLACE_SCAN(prefix, iso)                                                        \
    VCLOCK_REPLACE(int, prefix##vfscanf, FILE* stream, const char* format, va_list arguments) { \
        return scanStream(iso, stream, format, arguments);                                      \
    }                                                                                           \
    VCLOCK_REPLACE(int, prefix##vscanf, const char* format, va_list arguments) {                \
        return scanStream(iso, stdin, format, arguments);                                       \
    }                                                                                           \
    VCLOCK_REPLACE(int, prefix##fscanf, FILE* stream, const char* format, ...) {                \
        va_list arguments;                                                                      \
        va_start(arguments, format);                                                            \
        int result = scanStream(iso, stream, format, arguments);                                \
        va_end(arguments);                                                                      \
        return result;                                                                          \
    }                                                                                           \
    VCLOCK_REPLACE(int, prefix##scanf, const char* format, ...) {                               \
        va_list arguments;                                                                      \
        va_start(arguments, format);                                                            \
        int result = scanStream(iso, stdin, format, arguments);                                 \
        va_end(arguments);                                                                      \
        return result;                                                                          \
    }
VCLOCK_REPLACE_SCAN(, false)
VCLOCK_REPLACE_SCAN(__isoc99_, true)

// System V message queues. The queue's number is its object; senders and receivers wait alike.
template <typename Call>
static ssize_t messageCall(int queue, int flags, int wouldBlock, Call call) {
    Turn turn;
    if (!turn)
        return call(flags);
    WaitFor what;
    what.kind = Wait::MessageQueue;
    what.object = static_cast<uint32_t>(queue) + 1;
    what.interruptible = what.cancellable = what.endsIfCancelled = true;
    for (bool waited = false;; waited = true) {
        ssize_t result = call(flags | IPC_NOWAIT);
        if (result >= 0) {
            if (wakeAll(Wait::MessageQueue, what.object) != 0)
                afterWake();
            return result;
        }
        if (errno == EINVAL && waited)
            errno = EIDRM;  // The queue was there when the wait began.
        if (errno != wouldBlock)
            return result;
        if (flags & IPC_NOWAIT) {
            failedPoll();
            errno = wouldBlock;
            return result;
        }
        if (wait(what) == Result::Interrupted) {
            errno = EINTR;
            return -1;
        }
    }
}

VCLOCK_REPLACE(int, msgsnd, int queue, const void* message, size_t size, int flags) {
    return static_cast<int>(messageCall(queue, flags, EAGAIN, [&](int how) {
        return static_cast<ssize_t>(real().msgsnd(queue, message, size, how));
    }));
}

VCLOCK_REPLACE(ssize_t, msgrcv, int queue, void* message, size_t size, long type, int flags) {
    return messageCall(queue, flags, ENOMSG,
                       [&](int how) { return real().msgrcv(queue, message, size, type, how); });
}

VCLOCK_REPLACE(int, msgctl, int queue, int command, struct msqid_ds* about) {
    Turn turn;
    int result = real().msgctl(queue, command, about);
    if (result >= 0 && turn && command != IPC_STAT)
        wakeAll(Wait::MessageQueue, static_cast<uint32_t>(queue) + 1);
    return result;
}

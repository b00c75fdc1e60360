// The domain: the processes and threads that share one virtual time, and who of them runs.
//
// One region of shared memory, inherited over fork, holds the time, the token and a slot for each
// thread. The thread whose slot has the token runs; all others sleep in a futex of their own slot.
// A thread that must wait writes into its slot what for and until when, and hands the token to the
// next one. Slots hold flags and sequence numbers, no links, so that a process killed in the
// middle of a change leaves nothing that cannot be read. The region holds fixed-width fields only.
#ifndef VCLOCK_DOMAIN_H
#define VCLOCK_DOMAIN_H

#include <pthread.h>
#include <sched.h>
#include <stdint.h>
#include <sys/types.h>

#include <atomic>

namespace vclock {

constexpr uint32_t kMaxThreads = 1024;
constexpr uint32_t kMaxProcesses = 64;
constexpr uint32_t kMaxPipes = 4096;
// The library's own descriptors begin here, out of the way of programs that count on low numbers.
constexpr int kOwnDescriptors = 900;
constexpr int64_t kSecond = 1000000000;
constexpr int64_t kStartOfTime = 1000 * kSecond;  // CLOCK_MONOTONIC at the start of a domain
constexpr int64_t kForever = INT64_MAX;

enum class State : uint32_t {
    Free,
    Ready,    // may run, has no token yet
    Running,  // has the token
    Waiting,  // for an event or a deadline
    Leaving,  // wants into a real call, which starts when no thread is ready
    Outside   // in a real call
};

enum class Wait : uint32_t {
    None,
    Sleep,
    Mutex,
    Condition,
    Semaphore,
    ReadWriteLock,
    Barrier,
    Once,
    Futex,
    Join,
    Child,
    Descriptor,
    MessageQueue
};

enum class Result : uint32_t {
    Woken,
    TimedOut,
    Interrupted,  // by a signal handler; interruptible waits only
    Cancelled,    // inside the domain only
    Retry         // nothing is known: look again, and wait again
};

enum class Clock : uint32_t { Monotonic, Calendar, Boot };

struct Deadline {
    Clock clock = Clock::Monotonic;
    int64_t ns = kForever;
};

struct alignas(64) ThreadSlot {
    std::atomic<uint32_t> wake;  // futex word; counts hand-overs
    State state;
    Wait kind;
    uint32_t object;  // number of what is waited for, unique within its kind
    uint64_t order;   // sequence number of entering the state: first come, first served
    int64_t deadline;
    Clock clock;
    Result result;
    uint32_t process;    // index
    uint32_t number;     // the thread's name in traces and reports, never used twice
    uint64_t address;    // of the object in the waiting process, for the report
    uint64_t handle;     // pthread_t in its own process
    uint32_t owner;      // number of the thread that holds the object, 0 unknown
    uint32_t threadId;   // the kernel's
    uint32_t holdsTime;  // Outside only: time stands still until it is back
    uint32_t interruptible;
    uint32_t cancellable;
    uint32_t inHandler;  // a signal handler of the thread has a slot of its own, and goes first
    uint32_t looked;     // Descriptor only: the region's activity when it last looked
};

enum class ProcessState : uint32_t {
    Free,
    Live,
    Replaced,  // in exec, or already another program, which is outside the domain
    Exiting    // has given up its threads; the kernel has still to end it
};

struct ProcessSlot {
    ProcessState state;
    int32_t pid;  // 0 between the parent's registration and the fork
    int32_t parentPid;
    uint32_t number;                // its name in traces and reports, never used twice
    std::atomic<uint32_t> watcher;  // slot of the waiting thread that looks for dead processes
};

struct Region {
    pthread_mutex_t lock;            // robust; guards everything below but what is atomic
    std::atomic<uint32_t> running;   // slot (index + 1) with the token, 0: nobody can run
    std::atomic<uint32_t> finished;  // exit status of all processes, 0: they go on
    uint32_t reporting;
    uint32_t severalProcesses;  // there has been a fork: deaths must be looked for
    uint32_t slotsUsed;         // no slot from here on was ever taken
    uint32_t nextThread;
    uint32_t nextProcess;
    uint32_t nextObject;
    uint32_t activity;  // counts waits; whoever waits may have changed a descriptor before
    uint32_t seeded;
    int64_t limit;                        // time at which the domain ends by itself
    std::atomic<int64_t> now;             // CLOCK_MONOTONIC
    std::atomic<int64_t> calendarOffset;  // CLOCK_REALTIME - CLOCK_MONOTONIC
    std::atomic<int64_t> suspended;       // CLOCK_BOOTTIME - CLOCK_MONOTONIC
    uint64_t order;
    uint64_t random;
    uint64_t pipes[kMaxPipes];  // inodes of pipes and socket pairs made in the domain
    ProcessSlot processes[kMaxProcesses];
    ThreadSlot threads[kMaxThreads];
};

// What a thread knows of itself.
struct Self {
    uint32_t slot;    // index + 1; 0: not in the domain yet
    uint32_t number;  // as in the slot
    uint32_t clockReads;
    uint32_t failedPolls;
    int64_t creptSince;     // when time began to creep, 0: it does not
    volatile bool posted;   // a signal handler posted a semaphore while the lock was held
    bool ended;             // past its last destructor: waits no more
    volatile bool handing;  // inside a hand-over: a signal handler needs a slot of its own
    volatile bool locked;   // holds the region's lock: a signal handler must not take it
    bool nested;            // in a signal handler that interrupted a wait
};

extern Region* region;  // nullptr: the process is not (or no longer) in virtual time
extern __thread Self self __attribute__((tls_model("initial-exec")));

// Held by every replacement while it works: the thread has the token. False outside virtual time.
// A signal handler that interrupted a wait gets a slot of its own for as long as it lives.
class Turn {
 public:
    Turn() {
        if (__builtin_expect(region != nullptr && self.slot != 0 && !self.handing &&
                                 region->running.load(std::memory_order_relaxed) == self.slot,
                             1))
            live_ = true;
        else
            live_ = begin();
    }
    ~Turn() {
        if (__builtin_expect(outerSlot_ != 0, 0))
            endNested();
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    explicit operator bool() const {
        return live_;
    }

 private:
    bool begin();
    void endNested();
    bool live_ = false;
    bool outerHanding_ = false;
    uint32_t outerSlot_ = 0;
    uint32_t outerNumber_ = 0;
};

// A real call that may block: other threads run meanwhile. Unless it lets time go on, time stands
// still until it ends. The thread must have the token, and has it again afterwards.
class RealCall {
 public:
    explicit RealCall(bool holdsTime = true);
    ~RealCall();
    RealCall(const RealCall&) = delete;
    RealCall& operator=(const RealCall&) = delete;

 private:
    bool outside_ = false;
};

struct WaitFor {
    Wait kind = Wait::Sleep;
    uint32_t object = 0;
    Deadline until;
    const void* address = nullptr;
    uint32_t owner = 0;
    const volatile uint32_t* unless = nullptr;  // a signal handler may have set it meanwhile
    bool lookedInVain = false;                  // nothing was done since the last wait but a look
    bool interruptible = false;
    bool cancellable = false;      // pthread_cancel ends the wait
    bool endsIfCancelled = false;  // and then the thread, inside the wait
};

// Gives the token away until the wait is over. The caller has the token.
Result wait(const WaitFor& what);
// Lets every other ready thread run first.
void yield();
// A try that changed nothing (a busy lock, an empty queue). After many without a wait time creeps.
void failedPoll();
// A look at the clock; the same.
void clockRead();

// Makes waiting threads ready, in the order in which they came. The caller has the token.
uint32_t wakeOne(Wait kind, uint32_t object);  // 0, or the thread's number
uint32_t wakeAll(Wait kind, uint32_t object);  // how many; object 0: all of that kind
// With a seed, sometimes lets another thread run at once: explores other orders.
void afterWake();
// Wakes waiters of a futex: of this process, or of all for one in shared memory.
uint32_t wakeFutex(const void* address, uint32_t count, bool shared);

int64_t clockNow(Clock clock);
void setCalendar(int64_t ns);
void suspend(int64_t ns);

// A number for an object that is waited for: stays in the object's own bytes.
inline uint32_t objectNumber(uint32_t& field) {
    if (field == 0)
        field = ++region->nextObject;
    return field;
}

// Threads. Slots are index + 1; 0 means that there is no free one.
uint32_t addThread();
void removeThread(uint32_t slot);
void startThread(uint32_t slot);  // in the new thread: waits for its first turn
void endThread();                 // in the ending thread: gives the token away for good
uint32_t findThread(pthread_t handle);
void cancelThread(pthread_t handle);
void interruptThread(pthread_t handle);

// Processes.
struct Child {
    uint32_t process;  // index + 1, 0: none free
    uint32_t thread;
    uint32_t number;
};
Child addProcess();
void removeProcess(const Child& child);
void becomeChild(const Child& child);
void nameChild(const Child& child, pid_t pid);
void leaveDomain();      // the process is about to end
void beginExec();        // it is about to become another program
void failedExec();       // it stayed what it was
bool programsRunning();  // other programs, started by processes of the domain, are alive
pid_t findChild(pid_t pid, ProcessState state);  // a child in the domain; pid as for waitpid
void forgetChild(pid_t pid);                     // it has ended and been waited for

// While it lives, programs that the thread starts may use all processors; the domain keeps to one.
class AnyProcessor {
 public:
    AnyProcessor();
    ~AnyProcessor();
    AnyProcessor(const AnyProcessor&) = delete;
    AnyProcessor& operator=(const AnyProcessor&) = delete;

 private:
    cpu_set_t own_;
};

// Trace and report (report.cpp).
extern int traceFile;
void openTrace(const char* path);
void traceLine(const char* event, const ThreadSlot& slot);
void traceProcess(const char* event, const ProcessSlot& process);
void reportHeader();
void reportThread(const ThreadSlot& slot);
const char* waitName(Wait kind);
ThreadSlot& slotAt(uint32_t slot);
void reportLimit();
void flushOutput();

}  // namespace vclock

#endif

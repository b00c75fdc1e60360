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
#include <signal.h>
#include <stddef.h>
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
    MessageQueue,
    Signal,
    Timer  // the thread that makes a process's timers expire
};

enum class Result : uint32_t {
    Woken,
    TimedOut,
    Interrupted,  // by a signal handler; interruptible waits only
    Cancelled,    // inside the domain only
    Retry,        // nothing is known: look again, and wait again
    LastLook      // the same, and look for programs outside: it would be a deadlock
};

enum class Clock : uint32_t { Monotonic, Calendar, Boot };

struct Deadline {
    Clock clock = Clock::Monotonic;
    int64_t ns = kForever;
};

struct alignas(64) ThreadSlot {
    std::atomic<uint32_t> wake;      // futex word; counts hand-overs
    std::atomic<uint32_t> arrivals;  // signals that have reached their handler in this thread
    uint32_t inHandler;     // a signal handler of the thread has a slot of its own, and goes first
    uint32_t returning;     // from such a handler: the kernel's mask is still the handler's
    uint64_t returnMask;    // the mask that it returns to
    uint32_t spins;         // it was stopped because it runs on without a call
    uint32_t toldSpinning;  // which has been told
    State state;            // from here on: what a handler that borrows the turn must leave alone
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
    uint32_t restartable;  // a handler with SA_RESTART does not interrupt it
    uint32_t cancellable;
    uint32_t looked;  // Descriptor and Signal only: the region's activity when it last looked
};

enum class ProcessState : uint32_t {
    Free,
    Unborn,  // inside the fork that makes it
    Live,
    Replaced,  // in exec, or already another program, which is outside the domain
    Exiting    // has given up its threads; the kernel has still to end it
};

struct ProcessSlot {
    ProcessState state;
    int32_t pid;  // 0 between the parent's registration and the fork
    int32_t parentPid;
    uint32_t number;                 // its name in traces and reports, never used twice
    std::atomic<uint32_t> watcher;   // slot of the waiting thread that looks for dead processes
    std::atomic<uint32_t> arrivals;  // signals that have reached their handler in any thread
    uint32_t awaitsChildren;         // hears of their ends by a signal or a descriptor
};

// For how long the same thread has had the token.
struct Stall {
    uint64_t order;     // the region's sequence number then
    int64_t since;      // real time
    int64_t processor;  // processor time of the thread when it was first looked at, 0: not yet
    uint32_t told;      // of a thread that sleeps in a call which is not replaced
    uint32_t spins;     // some thread has run on without a call: looks come often
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
    uint64_t lastLook;  // 1 + the activity at which a deadlock was looked into, 0: never
    uint32_t seeded;
    uint32_t signalWaits;  // somebody has waited for signals, which come at any time
    int64_t patience;      // how long a thread may keep all others waiting, in real time
    int64_t paceFrom;      // the time since when,
    int64_t paceReal;      // in real time, programs outside have kept it from jumping; 0: not yet
    Stall stall;
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

// A process that is being made.
struct Child {
    uint32_t process;  // index + 1, 0: none free
    uint32_t thread;
    uint32_t number;
};

// What a thread knows of itself.
struct Self {
    uint32_t slot;    // index + 1; 0: not in the domain yet
    uint32_t number;  // as in the slot
    uint32_t clockReads;
    uint32_t failedPolls;
    uint32_t calls;             // of what is replaced
    int64_t creptSince;         // when time began to creep, 0: it does not
    const struct Child* forks;  // inside fork(): what the child will be
    bool ended;                 // past its last destructor: waits no more
    volatile bool handing;      // inside a hand-over: a signal handler needs a slot of its own
    volatile bool locked;       // holds the region's lock: a signal handler comes after it
    bool nested;                // in a signal handler that interrupted a wait
    class Turn* innermost;      // of the signal handlers that interrupted a wait
    volatile uint32_t handled;  // signal handlers that have run in this thread
    volatile uint32_t interruptions;  // of these, those that interrupt what could be restarted
    uint64_t returnMask;              // of the signal handler that runs
    volatile bool putOff;             // signals came while the lock was held, and are blocked
};

extern Region* region;  // nullptr: the process is not (or no longer) in virtual time
extern __thread Self self __attribute__((tls_model("initial-exec")));

// Held by every replacement while it works: the thread has the token. False outside virtual time.
// A signal handler that interrupted a wait gets a slot of its own for as long as it lives.
class Turn {
 public:
    Turn() {
        self.calls++;
        if (__builtin_expect(region != nullptr && self.slot != 0 && !self.handing &&
                                 region->running.load(std::memory_order_relaxed) == self.slot,
                             1))
            live_ = true;
        else
            live_ = begin(false);
    }
    // The turn of a signal handler: its arrival is announced to who sent the signal.
    enum Handler { kHandler };
    explicit Turn(Handler);
    ~Turn() {
        if (__builtin_expect(kind_ != Kind::Own, 0))
            end();
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    explicit operator bool() const {
        return live_;
    }
    // Ends the turns of all handlers of this thread and the waits that they interrupted: a handler
    // jumps out of them. The thread has the token, as it would behind the wait.
    static void leaveHandlers();

 private:
    enum class Kind : uint8_t {
        Own,
        Borrowed,  // a hand-over to the thread itself was just under way
        Nested     // has a slot of its own
    };
    bool begin(bool handler);
    void beginBorrowed();
    void end();
    void endNested();
    bool live_ = false;
    Kind kind_ = Kind::Own;
    bool outerHanding_;
    bool outerNested_;
    uint32_t outerSlot_;
    uint32_t outerNumber_;
    uint32_t outerHandled_;
    uint32_t outerInterruptions_;
    Turn* outer_;
    unsigned char outerState_[sizeof(ThreadSlot) - offsetof(ThreadSlot, state)];
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
    bool restartable = false;      // a handler with SA_RESTART does not interrupt it
    bool cancellable = false;      // pthread_cancel ends the wait
    bool endsIfCancelled = false;  // and then the thread, inside the wait
    // A handler that has run since then interrupts the wait, even before it began.
    uint32_t handled = self.handled;
    uint32_t interruptions = self.interruptions;
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
// In the new thread, which has all signals blocked: sets its mask and waits for its first turn.
void startThread(uint32_t slot, const sigset_t* mask);
void endThread();  // in the ending thread: gives the token away for good
uint32_t findThread(pthread_t handle);
uint32_t findThreadById(pid_t pid, pid_t thread);
void cancelThread(pthread_t handle);

// Processes.
Child addProcess();
void removeProcess(const Child& child);
bool joinAsChild();  // inside fork(): true in the new process, which is in the domain from then on
void nameChild(const Child& child, pid_t pid);
void leaveDomain();               // the process is about to end
void beginExec();                 // it is about to become another program
void failedExec();                // it stayed what it was
void addProgram(pid_t pid);       // a child that is another program from its start
bool programsRunning();           // other programs, started by processes of the domain, are alive
uint32_t findProcess(pid_t pid);  // index + 1 of a live one, 0: not in the domain
pid_t findChild(pid_t pid, ProcessState state);  // a child in the domain; pid as for waitpid
void forgetChild(pid_t pid);                     // it has ended and been waited for
void awaitChildren();  // the process hears of ends by signals: time waits for the kernel's

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

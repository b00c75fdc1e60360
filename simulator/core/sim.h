/*
 * The core of the simulated device: what every family is built on.
 *
 * Each entry point opens with SIM_ENTRY and leaves with SIM_RETURN, and so passes the call trace,
 * the faults and the latency model:
 *
 *     int32_t QLX_GPIOSetValue(uint32_t pin, int32_t level) {
 *         SIM_ENTRY("pin=%u level=%d", pin, level);
 *         std::lock_guard<std::mutex> lock(state().mutex);
 *         if (!state().initialised)
 *             SIM_RETURN(QLX_GPIO_ERR_NOT_INIT);
 *         ...
 *     }
 *
 * Callbacks run on the device's own threads (EventThread) and go out through deliver. A family
 * holds no lock of its own while it delivers, for programs call back into the device.
 *
 * State of the device lives in objects that are made on first use and never destroyed: the program
 * ends while device threads run.
 */
#ifndef SIMULATOR_CORE_SIM_H
#define SIMULATOR_CORE_SIM_H

#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>

#include <functional>
#include <string>
#include <vector>

#include "simulator/core/fault.h"
#include "simulator/core/record.h"

#define SIM_PRINTF(text, first) __attribute__((format(printf, text, first)))

namespace sim {

/** One call of the program's into the device. Made by SIM_ENTRY on the caller's thread. */
class Call {
 public:
    /** Traces the arguments, waits the function's latency, and lets the faults act. */
    Call(const char* function, std::string arguments);
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    /** Whether a fault refuses the call; the device then does nothing of it. */
    bool refused() const {
        return effect_.refuse;
    }
    int32_t refusal();

    /** Adds what the call did beside answering to the trace: " odu=...". */
    void note(const char* format, ...) SIM_PRINTF(2, 3);

    /**
     * Tells what the call is about to hand out, all of it at once: lets faults alter the values,
     * and adds them to the trace, " out={uPid=16}" or of a marked one " length=16".
     */
    void output(const std::vector<Value>& values);

    template <typename T>
    T result(T code) {
        traceResult(static_cast<int64_t>(code));
        return code;
    }

 private:
    void traceResult(int64_t code);

    const char* function_;
    std::string text_;
    std::string note_;
    FaultEffect effect_;
    bool traced_ = false;
    bool handedOut_ = false;
};

/** Whether somebody wants to know the arguments of calls: trace, record, or a fault. */
bool callsAreTold();

/** The arguments are printf's, "pin=%u level=%d", all that the function has; they are put into
 *  text only when it is wanted. */
#define SIM_ENTRY(...)                                                                           \
    sim::Call simCall(__func__, sim::callsAreTold() ? sim::format(__VA_ARGS__) : std::string()); \
    if (simCall.refused())                                                                       \
    return simCall.refusal()
#define SIM_ENTRY_NO_ARGUMENTS()                \
    sim::Call simCall(__func__, std::string()); \
    if (simCall.refused())                      \
    return simCall.refusal()
#define SIM_RETURN(code) return simCall.result(code)

/**
 * Hands a callback to the program: traces it as "callback NAME(text values)" and lets faults drop,
 * repeat, delay or corrupt it.
 * @param name    the callback's name for traces and faults, e.g. "TunerEvent"
 * @param text    whose callback it is, "tuner=0"; empty where there is one only
 * @param values  what it brings, shown as "name=value" in the trace; faults may alter it
 * @param call    calls the program's function
 * Called on a device thread, with no family lock held.
 */
void deliver(const char* name, const std::string& text, const std::vector<Value>& values,
             const std::function<void()>& call);

/**
 * One thread of the device with a queue of jobs in time. The thread starts with the first job.
 * Objects of this kind are never destroyed.
 */
class EventThread {
 public:
    explicit EventThread(const char* name);

    /** Runs `job` on this thread `delayMs` milliseconds from now; equal times run in posting order.
     *  `owner` is the handle under which cancel finds it. */
    void post(const void* owner, int64_t delayMs, std::function<void()> job);

    /** Drops the owner's jobs. When it returns, none runs or will run; called by a job on this very
     *  thread, it does not wait for that job. Call it with no lock held that a job needs. */
    void cancel(const void* owner);

    /** Drops all jobs and waits for the running one. */
    void cancelAll();

    /** Whether the caller runs on this thread. */
    bool isCurrent() const;

 private:
    struct Impl;
    Impl* impl_;
};

/** Milliseconds and microseconds of the monotonic clock. */
int64_t nowMs();
int64_t nowUs();

/** Lets the calling thread wait. */
void sleepMs(int64_t milliseconds);

/** printf into a string. */
std::string format(const char* text, ...) SIM_PRINTF(1, 2);
std::string vformat(const char* text, va_list arguments) SIM_PRINTF(1, 0);

/** The next number of the device's seeded generator. Any thread may call. */
uint32_t random32();
/** Lets them begin anew. */
void resetRandom();

/** A complaint about the device's own inputs (board, fault, control files), on standard error. */
void complain(const char* text, ...) SIM_PRINTF(1, 2);

}  // namespace sim

#endif

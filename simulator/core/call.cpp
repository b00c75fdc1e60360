// What every call and callback passes through: trace, latency, faults, events of the outside world.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <random>
#include <sstream>
#include <thread>

#include "simulator/core/board.h"
#include "simulator/core/fault.h"
#include "simulator/core/sim.h"
#include "simulator/core/thread_name.h"
#include "simulator/families.h"
#include "simulator/sim_control.h"

namespace sim {

struct Trace {
    std::mutex mutex;
    int file = -1;
    bool opened = false;
    bool recording = false;
    std::string record;
    int controlFile = -1;
    bool controlOpened = false;
    std::string controlRest;
    std::mutex randomMutex;
    bool seeded = false;
    std::mt19937 generator;
};

static Trace& trace() {
    static Trace* instance = new Trace;
    return *instance;
}

static std::string SIM_PRINTF(1, 0) vformat(const char* text, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    int length = vsnprintf(nullptr, 0, text, arguments);
    std::string out(length > 0 ? static_cast<size_t>(length) : 0, '\0');
    if (length > 0)
        vsnprintf(&out[0], out.size() + 1, text, again);
    va_end(again);
    return out;
}

std::string format(const char* text, ...) {
    va_list arguments;
    va_start(arguments, text);
    std::string out = vformat(text, arguments);
    va_end(arguments);
    return out;
}

void complain(const char* text, ...) {
    va_list arguments;
    va_start(arguments, text);
    std::string out = vformat(text, arguments);
    va_end(arguments);
    fprintf(stderr, "simulated device: %s\n", out.c_str());
}

int64_t nowUs() {
    auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

int64_t nowMs() {
    return nowUs() / 1000;
}

void sleepMs(int64_t milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

uint32_t random32() {
    Trace& t = trace();
    std::lock_guard<std::mutex> lock(t.randomMutex);
    if (!t.seeded) {
        t.seeded = true;
        const char* seed = getenv("QLX_SIM_SEED");
        t.generator.seed(seed != nullptr ? static_cast<uint32_t>(strtoul(seed, nullptr, 0)) : 1);
    }
    return t.generator();
}

static thread_local std::string tlsThreadName;

void setThreadName(const char* name) {
    tlsThreadName = name;
    pthread_setname_np(pthread_self(), tlsThreadName.substr(0, 15).c_str());
}

const std::string& threadName() {
    static std::atomic<int> count{0};
    if (tlsThreadName.empty())
        tlsThreadName = "T" + std::to_string(++count);
    return tlsThreadName;
}

/** Writes one line of the trace with a single write, so that it survives the process. */
static void traceLine(const std::string& text) {
    Trace& t = trace();
    std::lock_guard<std::mutex> lock(t.mutex);
    if (!t.opened) {
        t.opened = true;
        const char* path = getenv("QLX_SIM_TRACE");
        if (path != nullptr) {
            t.file = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
            if (t.file < 0)
                complain("cannot write the trace file %s", path);
        }
    }
    if (t.file < 0 && !t.recording)
        return;
    int64_t us = nowUs();
    std::string line = format("%lld.%06lld %s ", static_cast<long long>(us / 1000000),
                              static_cast<long long>(us % 1000000), threadName().c_str()) +
                       text + "\n";
    if (t.recording)
        t.record += line;
    if (t.file >= 0 && write(t.file, line.data(), line.size()) < 0)
        t.file = -1;
}

static bool tracing() {
    Trace& t = trace();
    std::lock_guard<std::mutex> lock(t.mutex);
    return t.file >= 0 || t.recording || !t.opened;
}

static bool outsideEvent(const std::string& line);

/** Where events that were told beforehand come from. */
static EventThread& operatorThread() {
    static EventThread* instance = new EventThread("operator");
    return *instance;
}

/** "in MS EVENT": the event comes by itself after that time. */
static bool laterEvent(const std::string& line) {
    std::istringstream in(line);
    std::string word;
    int64_t delayMs = -1;
    std::string event;
    if (!(in >> word >> delayMs) || word != "in" || delayMs < 0 ||
        !std::getline(in >> std::ws, event))
        return false;
    operatorThread().post(&trace(), delayMs, [event] {
        if (!outsideEvent(event))
            complain("no family knows the event '%s'", event.c_str());
    });
    return true;
}

static bool outsideEvent(const std::string& line) {
    if (laterEvent(line))
        return true;
    for (int i = 0; i < familyCount; i++) {
        if (families[i].control != nullptr && families[i].control(line))
            return true;
    }
    return false;
}

void takeOutsideEvents() {
    Trace& t = trace();
    std::string lines;
    {
        std::lock_guard<std::mutex> lock(t.mutex);
        if (!t.controlOpened) {
            t.controlOpened = true;
            const char* path = getenv("QLX_SIM_CONTROL");
            if (path != nullptr)
                t.controlFile = open(path, O_RDONLY | O_CREAT | O_CLOEXEC, 0644);
        }
        if (t.controlFile < 0)
            return;
        char buffer[1024];
        ssize_t got;
        while ((got = read(t.controlFile, buffer, sizeof buffer)) > 0)
            t.controlRest.append(buffer, static_cast<size_t>(got));
        size_t end = t.controlRest.rfind('\n');
        if (end == std::string::npos)
            return;
        lines = t.controlRest.substr(0, end + 1);
        t.controlRest.erase(0, end + 1);
    }
    for (size_t at = 0; at < lines.size();) {
        size_t end = lines.find('\n', at);
        std::string line = lines.substr(at, end - at);
        at = end + 1;
        if (!line.empty() && line[0] != '#' && !outsideEvent(line))
            complain("no family knows the event '%s'", line.c_str());
    }
}

/** Lets what comes before the call itself act: hang, death, delay. */
static void sufferFaults(const FaultEffect& effect, const std::string& what) {
    if (effect.kill) {
        traceLine(what + " killed");
        dieAtOnce();
    }
    if (effect.hang) {
        traceLine(what + " hangs");
        hangForever();
    }
    if (effect.delayMs > 0)
        sleepMs(effect.delayMs);
}

bool callsAreTold() {
    loadFaultFile();
    return tracing() || haveFaults();
}

Call::Call(const char* function, std::string arguments)
    : function_(function), text_(std::move(arguments)) {
    loadFaultFile();
    takeOutsideEvents();
    effect_ = faultsOn(function, text_);
    sufferFaults(effect_, format("%s(%s)", function_, text_.c_str()));
    int64_t latency = latencyMs(function);
    if (latency > 0)
        sleepMs(latency);
}

Call::~Call() {
    // An entry point that answers nothing leaves without a result.
    if (!traced_)
        traceLine(format("%s(%s)", function_, text_.c_str()));
}

int32_t Call::refusal() {
    traced_ = true;
    traceLine(format("%s(%s)=%d refused by a fault", function_, text_.c_str(), effect_.code));
    return effect_.code;
}

void Call::note(const char* text, ...) {
    va_list arguments;
    va_start(arguments, text);
    note_ += vformat(text, arguments);
    va_end(arguments);
}

void Call::output(const std::vector<Value>& values) {
    handedOut_ = true;
    corrupt(effect_, function_, values);
    if (!tracing())
        return;
    for (const Value& one : values) {
        if (one.data != nullptr)
            note_ += std::string(" ") + (one.marked ? one.member.name : "out") + "=" + show(one);
    }
}

void Call::traceResult(int64_t code) {
    traced_ = true;
    if (code == 0 && !handedOut_)
        corrupt(effect_, function_, {});
    if (tracing())
        traceLine(format("%s(%s)=%lld%s", function_, text_.c_str(), static_cast<long long>(code),
                         note_.c_str()));
}

/** "tuner=0 status=1". */
static std::string textOf(const std::string& text, const std::vector<Value>& values) {
    std::string all = text;
    for (const Value& one : values) {
        if (one.data != nullptr)
            all += (all.empty() ? "" : " ") + std::string(one.member.name) + "=" + show(one);
    }
    return all;
}

void deliver(const char* name, const std::string& text, const std::vector<Value>& values,
             const std::function<void()>& call) {
    std::string what;
    if (callsAreTold())
        what = textOf(text, values);
    FaultEffect effect = faultsOn(name, what);
    auto line = [&] { return format("callback %s(%s)", name, what.c_str()); };
    sufferFaults(effect, line());
    if (effect.drop) {
        traceLine(line() + " dropped by a fault");
        return;
    }
    corrupt(effect, name, values);
    if (tracing())
        what = textOf(text, values);
    for (int i = 0; i <= effect.repeat; i++) {
        traceLine(line());
        call();
    }
}

void resetCore() {
    clearFaults();
    Trace& t = trace();
    std::lock_guard<std::mutex> lock(t.randomMutex);
    t.seeded = false;
}

}  // namespace sim

static size_t hand(const std::string& text, char* buffer, size_t size) {
    if (size > 0)
        snprintf(buffer, size, "%s", text.c_str());
    return text.size();
}

void qlx_sim_reset(void) {
    sim::operatorThread().cancelAll();
    for (int i = 0; i < sim::familyCount; i++)
        sim::families[i].reset();
    sim::resetCore();
}

size_t qlx_sim_state(char* buffer, size_t size) {
    std::string text;
    for (int i = 0; i < sim::familyCount; i++)
        sim::families[i].describe(&text);
    return hand(text, buffer, size);
}

void qlx_sim_record(int on) {
    sim::Trace& t = sim::trace();
    std::lock_guard<std::mutex> lock(t.mutex);
    if (on)
        t.record.clear();
    t.recording = on != 0;
}

size_t qlx_sim_recorded(char* buffer, size_t size) {
    sim::Trace& t = sim::trace();
    std::lock_guard<std::mutex> lock(t.mutex);
    return hand(t.record, buffer, size);
}

void qlx_sim_remark(const char* line) {
    sim::traceLine(line);
}

int qlx_sim_event(const char* line) {
    return sim::outsideEvent(line) ? 0 : -1;
}

// What every call and callback passes through: trace, latency, faults, events of the outside world.
#include <cstdarg>

#include "simulator/core/board.h"
#include "simulator/core/fault.h"
#include "simulator/core/outside.h"
#include "simulator/core/sim.h"
#include "simulator/core/trace.h"

namespace sim {

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
    return tracing() || faultsReadArguments();
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
    noteHandedOut(function_, values);
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
    if (tracing()) {
        what = textOf(text, values);
        noteHandedOut(name, values);
    }
    for (int i = 0; i <= effect.repeat; i++) {
        traceLine(line());
        call();
    }
}

}  // namespace sim

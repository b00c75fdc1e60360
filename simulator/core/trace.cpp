#include "simulator/core/trace.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <map>
#include <mutex>

#include "simulator/core/sim.h"
#include "simulator/core/thread_name.h"

namespace sim {

struct Trace {
    std::mutex mutex;
    int file = -1;
    bool opened = false;
    bool recording = false;
    std::string record;
    /** What was handed out, in the order of its first appearance, and where it stands there. */
    struct HandedOut {
        std::string text;
        bool zero;
    };
    std::vector<HandedOut> handedOut;
    std::map<std::string, size_t> places;
};

static Trace& trace() {
    static Trace* instance = new Trace;
    return *instance;
}

/** Called with the trace locked. */
static void openOnce(Trace& t) {
    if (t.opened)
        return;
    t.opened = true;
    const char* path = getenv("QLX_SIM_TRACE");
    if (path == nullptr)
        return;
    t.file = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (t.file < 0)
        complain("cannot write the trace file %s", path);
}

bool tracing() {
    Trace& t = trace();
    std::lock_guard<std::mutex> lock(t.mutex);
    openOnce(t);
    return t.file >= 0 || t.recording;
}

void traceLine(const std::string& text) {
    Trace& t = trace();
    std::lock_guard<std::mutex> lock(t.mutex);
    openOnce(t);
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

void recordTrace(bool on) {
    Trace& t = trace();
    std::lock_guard<std::mutex> lock(t.mutex);
    if (on) {
        t.record.clear();
        t.handedOut.clear();
        t.places.clear();
    }
    t.recording = on;
}

std::string recordedTrace() {
    Trace& t = trace();
    std::lock_guard<std::mutex> lock(t.mutex);
    return t.record;
}

void noteHandedOut(const char* name, const std::vector<Value>& values) {
    Trace& t = trace();
    std::lock_guard<std::mutex> lock(t.mutex);
    for (const Value& one : values) {
        if (!t.recording)
            return;
        for (const MemberPath& member : memberPaths(one)) {
            std::string text =
                format("%s %s %s", name, member.path.c_str(), one.marked ? "mark" : "value");
            auto added = t.places.emplace(text, t.handedOut.size());
            if (added.second)
                t.handedOut.push_back({text, true});
            Trace::HandedOut& known = t.handedOut[added.first->second];
            known.zero = known.zero && member.zero;
        }
    }
}

std::string handedOut() {
    Trace& t = trace();
    std::lock_guard<std::mutex> lock(t.mutex);
    std::string lines;
    for (const Trace::HandedOut& one : t.handedOut)
        lines += one.text + (one.zero ? " zero\n" : " set\n");
    return lines;
}

}  // namespace sim

#include "tools/torture/worker.h"

#include <fcntl.h>
#include <malloc.h>
#include <pthread.h>
#include <stdio.h>
#include <stdio_ext.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "common/exit_codes.h"
#include "environment/conf_reader.h"
#include "environment/config_files.h"
#include "framework/case/check.h"
#include "platform/qlx_sys.h"
#include "program/startup.h"
#include "simulator/sim_control.h"
#include "tools/torture/step.h"

namespace fs = std::filesystem;

/** In the place of the C library's, which takes a lock for each number: some cases fill megabytes
 * in each of their runs. */
extern "C" long random() noexcept {
    static uint64_t state = 1;
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<long>(state >> 33);
}

namespace torture {

namespace {

FILE* g_out;
std::atomic<int64_t> g_deadlineMs{0};
/** What the operator does, and how far that is. */
Script g_script;
size_t g_nextAct;

int64_t virtualMs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1000000;
}

/** Ends the worker when a run passes its bound; the driver goes on with the next step. */
void* watch(void*) {
    for (;;) {
        sleep(5);
        int64_t deadline = g_deadlineMs;
        if (deadline != 0 && virtualMs() > deadline) {
            fprintf(g_out, "endless\n");
            fflush(g_out);
            _exit(EXIT_ENDLESS);
        }
    }
}

std::string deviceText(size_t (*read)(char*, size_t)) {
    std::string text(read(nullptr, 0) + 1, '\0');
    read(&text[0], text.size());
    text.pop_back();
    return text;
}

/** Threads of the program, which bear its name; those of the device bear their own. */
unsigned programThreads() {
    unsigned count = 0;
    std::string own;
    std::ifstream("/proc/self/comm") >> own;
    for (const auto& task : fs::directory_iterator("/proc/self/task")) {
        std::string name;
        std::ifstream(task.path() / "comm") >> name;
        count += name == own;
    }
    return count;
}

/** The same, once a thread that has ended has left the kernel's list too: that takes real time, of
 *  which virtual time knows nothing. Threads up to `usual` are not waited for. */
unsigned lastingThreads(unsigned usual) {
    unsigned count = programThreads();
    for (int looks = 0; count > usual && looks < 1000; looks++)
        count = programThreads();
    return count;
}

struct Outcome {
    uint32_t verdict;
    /** What the device tells that it did not tell before, a line each. */
    std::string left;
    unsigned threads;
    int64_t heap;
    int64_t tookMs;
};

/** Waits for the start of a minute: the line-up's streams, which repeat within one, are then at the
 *  same place in each run, and the same table comes first. */
void waitForMinute() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    timespec next = {now.tv_sec - now.tv_sec % 60 + 60, 0};
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &next, nullptr);
}

/** The case asks for input: what the operator does until the next line, and that line. */
ssize_t onAsked(void*, char* buffer, size_t size) {
    while (g_nextAct < g_script.steps.size()) {
        const std::string& act = g_script.steps[g_nextAct++];
        if (act[0] == '!') {
            qlx_sim_event(act.c_str() + 2);
        } else if (act.size() - 1 <= size) {
            size_t length = act.size() - 2;
            memcpy(buffer, act.data() + 2, length);
            buffer[length] = '\n';
            return static_cast<ssize_t>(length + 1);
        }
    }
    return 0;
}

/** Lets the operator begin anew. */
void restartOperator() {
    __fpurge(stdin);
    clearerr(stdin);
    g_nextAct = 0;
    for (const std::string& event : g_script.before)
        qlx_sim_event(event.c_str());
}

uint32_t runCase(const TcModule& module, const TcCase& testCase) {
    zk_currentCaseName = testCase.name;
    if (module.caseSetup != nullptr)
        module.caseSetup(nullptr, nullptr);
    // As the console does it: parameters of manual cases come by a second call.
    if (testCase.autoFlag == MANUAL && module.caseSetup != nullptr)
        module.caseSetup(testCase.name, module.configFile);
    uint32_t verdict = testCase.function();
    if (module.caseTeardown != nullptr)
        module.caseTeardown();
    zk_currentCaseName = nullptr;
    return verdict;
}

/** The lines of `now` that `before` has not. */
std::string newLines(const std::string& before, const std::string& now) {
    std::istringstream known(before);
    std::set<std::string> lines;
    for (std::string line; std::getline(known, line);)
        lines.insert(line);
    std::istringstream all(now);
    std::string text;
    for (std::string line; std::getline(all, line);)
        text += lines.erase(line) == 0 ? line + "\n" : "";
    return lines.empty() ? text : text + "less than before\n";
}

/** One run of the case between its hooks, with the module freshly set up. */
Outcome runOnce(const Work& work, const std::string& fault, int64_t boundMs) {
    const TcModule& module = *work.module;
    Outcome outcome = {};
    qlx_sim_reset();
    waitForMinute();
    // Heap is compared with the device at rest, so that what the device keeps does not count.
    int64_t heap = static_cast<int64_t>(mallinfo2().uordblks);
    if (module.setup != nullptr)
        module.setup();
    std::string before = deviceText(qlx_sim_state);
    unsigned threads = programThreads();
    if (!fault.empty() && qlx_sim_add_fault(fault.c_str()) != 0)
        abort();
    qlx_sim_record(fault.empty());
    int64_t start = virtualMs();
    g_deadlineMs = start + boundMs;
    restartOperator();
    outcome.verdict = runCase(module, *work.testCase);
    outcome.tookMs = virtualMs() - start;
    g_deadlineMs = 0;
    qlx_sim_record(0);
    qlx_sim_clear_faults();
    // A detached thread may need a moment to leave.
    sleep(1);
    unsigned after = lastingThreads(threads);
    outcome.threads = after > threads ? after - threads : 0;
    // The texts of this function must not count.
    static char left[1 << 16];
    snprintf(left, sizeof left, "%s", newLines(before, deviceText(qlx_sim_state)).c_str());
    if (module.teardown != nullptr)
        module.teardown();
    qlx_sim_reset();
    std::string().swap(before);
    outcome.heap = static_cast<int64_t>(mallinfo2().uordblks) - heap;
    outcome.left = left;
    return outcome;
}

/** Whether repetitions of a run let the heap grow each time. Tables of the device that grow with
 * use settle over some runs: only what outlasts those leaks. */
bool leaks(const Work& work, const std::string& fault, int64_t bound) {
    for (int i = 0; i < 24; i++) {
        if (runOnce(work, fault, bound).heap <= 0)
            return false;
    }
    return true;
}

std::string oneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ';');
    return text;
}

const char* wordOf(uint32_t verdict) {
    switch (verdict) {
        case TC_SUCCESS:
            return "SUCCESS";
        case TC_NOT_APPLICABLE:
            return "N/A";
        default:
            return "FAIL";
    }
}

constexpr int64_t firstBoundMs = 4 * 3600 * 1000;

/** Brings the worker up as an unattended run is, with its console silenced. */
void startWork(const Work& work) {
    g_out = fopen(work.out.c_str(), "ae");
    if (g_out == nullptr)
        _exit(EXIT_FAILED);
    g_script = work.script;
    int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    dup2(null, STDIN_FILENO);
    dup2(null, STDOUT_FILENO);
    dup2(null, STDERR_FILENO);
    // Its buffer is not of the heap, which is compared.
    static char buffer[BUFSIZ];
    cookie_io_functions_t input = {onAsked, nullptr, nullptr, nullptr};
    stdin = fopencookie(nullptr, "r", input);
    setvbuf(stdin, buffer, _IOFBF, sizeof buffer);
    int32_t platform = 0;
    snprintf(g_configFile.commonDir, sizeof g_configFile.commonDir, "%s", "config/common");
    get_common_config(&g_configFile);
    get_conf_value_self("PLATFORM_INFO", "PLATFORM", &platform, g_configFile.autoTestPlatform);
    set_platform(&g_configFile, &platform);
    QLX_SysInit();
    zk_loadEnvironment();
    pthread_t watcher;
    pthread_create(&watcher, nullptr, watch, nullptr);
}

/** Takes the steps of one case. What its file says already of a step is not run again: the worker
 *  before this one got so far. */
class Torturer {
 public:
    /** @param left  what the case leaves without a fault */
    Torturer(const Work& work, int64_t boundMs, const std::string& left)
        : work_(work), boundMs_(boundMs), left_(left) {
        std::ifstream file(work.out);
        for (std::string line; std::getline(file, line);) {
            size_t end = line.find('\t', 5);
            if (line.compare(0, 5, "step\t") == 0 && end != std::string::npos)
                known_[line.substr(5, end - 5)] =
                    line.find("\tverdict=SUCCESS\t") == std::string::npos;
        }
    }

    /** Runs a step and writes what came of it, unless it is known. What is garbled is first
     *  inverted, and blank if nobody notices. Returns whether the case noticed. */
    bool take(const Step& step);

    /** Does it to these members of all calls: to several at once, and to those of each half if the
     *  case notices. Returns those that it notices.
     *  @param atOnce  more, and what one of them does could hide what another one does */
    std::vector<std::string> probe(const std::string& name, const char* kind,
                                   const std::vector<std::string>& members, size_t atOnce);

    void takeMembers(const HandedOut& what);

 private:
    const Work& work_;
    int64_t boundMs_;
    std::string left_;
    /** Steps, and whether the case noticed. */
    std::map<std::string, bool> known_;
};

bool Torturer::take(const Step& step) {
    auto known = known_.find(step.text());
    if (known != known_.end())
        return known->second;
    fprintf(g_out, "step\t%s\t", step.text().c_str());
    fflush(g_out);
    Outcome run = {};
    bool leaking = false;
    for (bool blank : {false, true}) {
        std::string fault = step.fault(work_.testCase->name, blank);
        run = runOnce(work_, fault, boundMs_);
        leaking = run.heap > 0 && leaks(work_, fault, boundMs_);
        bool unclean = leaking || run.threads > 0 || run.left != left_;
        if (step.kind != "garble" || run.verdict != TC_SUCCESS || unclean)
            break;
    }
    fprintf(g_out, "verdict=%s\tthreads=%u\theap=%s\tleft=%s\n", wordOf(run.verdict), run.threads,
            leaking ? "grows" : "steady", oneLine(run.left).c_str());
    fflush(g_out);
    return run.verdict != TC_SUCCESS;
}

std::vector<std::string> Torturer::probe(const std::string& name, const char* kind,
                                         const std::vector<std::string>& members, size_t atOnce) {
    bool few = members.size() <= atOnce;
    if (members.empty() || (few && !take({name, "", 0, kind, members})))
        return {};
    if (members.size() == 1)
        return members;
    auto middle = members.begin() + static_cast<ptrdiff_t>(members.size() / 2);
    std::vector<std::string> noticed = probe(name, kind, {members.begin(), middle}, atOnce);
    std::vector<std::string> second = probe(name, kind, {middle, members.end()}, atOnce);
    noticed.insert(noticed.end(), second.begin(), second.end());
    return noticed;
}

void Torturer::takeMembers(const HandedOut& what) {
    const std::vector<std::string> likely = judgedMembers(work_.profile, what.name);
    auto isIn = [](const std::vector<std::string>& list, const std::string& one) {
        return std::find(list.begin(), list.end(), one) != list.end();
    };
    std::vector<std::string> noticed;
    // Those that were judged so far are changed one by one. What the others do hides nothing then.
    auto change = [&](const char* kind, const std::vector<std::string>& members) {
        std::vector<std::string> others;
        for (const std::string& member : members) {
            if (isIn(noticed, member))
                continue;
            if (!isIn(likely, member))
                others.push_back(member);
            else if (take({what.name, "", 0, kind, {member}}))
                noticed.push_back(member);
        }
        std::vector<std::string> more = probe(what.name, kind, others, likely.empty() ? 8 : 32);
        noticed.insert(noticed.end(), more.begin(), more.end());
    };
    change("flip", what.values);
    change("zero", what.notZero);
    for (const std::string& mark : what.marks) {
        take({what.name, "", 0, "none", {mark}});
        take({what.name, "", 0, "less", {mark}});
    }
}

/** The last delay of a step, in milliseconds, with which the case still succeeds; -1 when it never
 *  does, or always. */
template <typename Verdict>
int64_t lastGoodDelay(Verdict verdictAt) {
    int64_t good = 0;
    int64_t bad = 10 * 60 * 1000;
    if (verdictAt(good) != TC_SUCCESS || verdictAt(bad) == TC_SUCCESS)
        return -1;
    while (bad - good > 1) {
        int64_t middle = good + (bad - good) / 2;
        (verdictAt(middle) == TC_SUCCESS ? good : bad) = middle;
    }
    return good;
}

}  // namespace

void workOnSteps(const Work& work) {
    startWork(work);
    // The first run lets the device make its threads; the second is what the plan is made of.
    Outcome base = runOnce(work, "", firstBoundMs);
    base = runOnce(work, "", firstBoundMs);
    std::string record = deviceText(qlx_sim_recorded);
    std::vector<HandedOut> handedOut = handedOutOf(deviceText(qlx_sim_handed_out));
    std::vector<Step> plan = planOf(record);
    Torturer torturer(work, 2 * base.tookMs + 900 * 1000, base.left);
    fprintf(g_out, "base\t%s\t%lld\t%zu\t%u\t%s\n", wordOf(base.verdict),
            static_cast<long long>(base.tookMs), plan.size(), base.threads,
            oneLine(base.left).c_str());
    fflush(g_out);
    if (base.verdict == TC_SUCCESS) {
        for (const Step& step : plan)
            torturer.take(step);
        for (const std::string& callback : callbacksOf(record))
            torturer.take({callback, "", 0, "repeat", {}});
        for (const HandedOut& what : handedOut)
            torturer.takeMembers(what);
    }
    fprintf(g_out, "done\n");
    fclose(g_out);
    _exit(EXIT_DONE);
}

void workOnLimit(const Work& work, const std::string& step, int64_t lastGoodMs) {
    startWork(work);
    size_t hash = step.find('#');
    std::string prefix = step.substr(0, hash) + " case=" + work.testCase->name +
                         " call=" + step.substr(hash + 1) + " delay=";
    auto verdictAt = [&](int64_t delayMs) {
        return runOnce(work, prefix + std::to_string(delayMs), firstBoundMs).verdict;
    };
    runOnce(work, "", firstBoundMs);
    uint32_t good = verdictAt(lastGoodMs);
    uint32_t bad = verdictAt(lastGoodMs + 1);
    bool held = good == TC_SUCCESS && bad == TC_FAILURE;
    fprintf(g_out, "%u %u %lld\n", good, bad,
            static_cast<long long>(held ? lastGoodMs : lastGoodDelay(verdictAt)));
    fclose(g_out);
    _exit(EXIT_DONE);
}

}  // namespace torture

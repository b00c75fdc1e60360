// The torture run: proof that each check of each case can fail, and that each path cleans up.
//
// For each automatic case that passes on the simulated device: run it once and record its library
// calls and callbacks; then run it once for each call with that call answered wrongly (a refusal
// where it succeeded, a success where it was refused), once with what it hands out changed, and
// once for each callback with it dropped, and with its payload changed. Each of these runs must
// turn the verdict to failure, leave the device as it was before the case, and end within a bound
// of virtual time. What the rules of a case ignore on purpose stands in the list of exceptions,
// each with its reason.
//
// One worker process tortures one case, in virtual time, and writes its results as it goes; so a
// crash or a run without an end costs one result and not the others, and a torture that was
// interrupted goes on where it stopped. docs/torture.md explains the report.
#include <fcntl.h>
#include <fnmatch.h>
#include <limits.h>
#include <malloc.h>
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "environment/conf_reader.h"
#include "environment/config_files.h"
#include "framework/case/check.h"
#include "platform/qlx_sys.h"
#include "program/startup.h"
#include "simulator/sim_control.h"
#include "testcase/modules.h"
#include "tools/common/files.h"
#include "tools/common/options.h"
#include "tools/common/process.h"

namespace fs = std::filesystem;

namespace {

// ---- What both sides know -----------------------------------------------------------------------

/** One way to torture a case: one call or callback of its record, and what is done to it. */
struct Step {
    /** Function or callback. */
    std::string name;
    /** Of a callback: whose it is, as "filter=2"; what comes first of two of them is chance. */
    std::string source;
    /** Which of all calls of the function it was, from 1. */
    unsigned position;
    /** Which of those with its source, from 1. */
    unsigned nth;
    /** "refuse", "accept", "drop" or "garble". */
    std::string kind;

    std::string text() const {
        std::string whose = source.empty() ? "" : "(" + source + ")";
        return name + whose + "#" + std::to_string(nth) + " " + kind;
    }
    /** The fault's line. `blank` garbles with zeros: where any value but none will do. */
    std::string fault(const std::string& caseName, bool blank = false) const {
        std::string action = kind;
        if (kind == "refuse")
            action = "return=77";
        else if (kind == "accept")
            action = "return=0";
        else if (kind == "garble")
            action = blank ? "blank" : "scramble";
        std::string whose = source.empty() ? "" : " with=" + source;
        return name + " case=" + caseName + whose + " call=" + std::to_string(nth) + " " + action;
    }
};

/** Calls of a function beyond this many in one case are taken as samples: a case that reads the
 *  signal 12,000 times checks each reading in the same line. */
constexpr unsigned wholeCalls = 8;

bool sampled(unsigned nth, unsigned total) {
    return nth <= wholeCalls || nth == total || (nth & (nth - 1)) == 0;
}

const TcModule* findModule(const std::string& name) {
    for (const TcModule* module : testModules) {
        if (name == module->name)
            return module;
    }
    return nullptr;
}

/** Whether a refusal of this call leaves open what it would have ended: nobody could end it then.
 */
bool isUndo(const std::string& function) {
    for (const char* word :
         {"DeInit", "Close", "Stop", "UnRegister", "Delete", "Free", "Disable"}) {
        if (function.find(word) != std::string::npos)
            return true;
    }
    return false;
}

// ---- The worker ---------------------------------------------------------------------------------

FILE* g_out;
/** What is typed in each run: the file of answers, or an empty input. */
std::string g_input = "/dev/null";
std::atomic<int64_t> g_deadlineMs{0};

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
    std::string left;
    unsigned threads;
    int64_t heap;
    int64_t tookMs;
};

/** Waits for the begin of a minute: the line-up's streams, which repeat within one, are then at the
 *  same place in each run, and the same table comes first. */
void waitForMinute() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    timespec next = {now.tv_sec - now.tv_sec % 60 + 60, 0};
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &next, nullptr);
}

/** Lets standard input begin anew. Its buffer is not of the heap, which is compared. */
void typeAnswers() {
    static char buffer[4096];
    if (freopen(g_input.c_str(), "re", stdin) == nullptr)
        abort();
    setvbuf(stdin, buffer, _IOFBF, sizeof buffer);
}

/** One run of the case between its hooks, with the module freshly set up. */
Outcome runOnce(const TcModule& module, const TcCase& testCase, const std::string& fault,
                int64_t boundMs) {
    Outcome outcome = {};
    qlx_sim_reset();
    waitForMinute();
    typeAnswers();
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
    zk_currentCaseName = testCase.name;
    if (module.caseSetup != nullptr)
        module.caseSetup(nullptr, nullptr);
    outcome.verdict = testCase.function();
    if (module.caseTeardown != nullptr)
        module.caseTeardown();
    zk_currentCaseName = nullptr;
    outcome.tookMs = virtualMs() - start;
    g_deadlineMs = 0;
    qlx_sim_record(0);
    qlx_sim_clear_faults();
    // A detached thread may need a moment to leave.
    sleep(1);
    unsigned after = lastingThreads(threads);
    outcome.threads = after > threads ? after - threads : 0;
    std::string state = deviceText(qlx_sim_state);
    if (state != before)
        outcome.left = state;
    if (module.teardown != nullptr)
        module.teardown();
    qlx_sim_reset();
    // The texts of this function must not count; a run that left something is told for that.
    std::string().swap(before);
    std::string().swap(state);
    bool left = !outcome.left.empty();
    outcome.heap = left ? 0 : static_cast<int64_t>(mallinfo2().uordblks) - heap;
    return outcome;
}

/** The steps that a record of calls offers. Lines read "time thread QLX_Name(...)=code..." and
 *  "time thread callback Name(...)". */
std::vector<Step> planOf(const std::string& record) {
    std::vector<Step> all;
    std::map<std::string, unsigned> totals;
    std::map<std::string, unsigned> ofSource;
    std::istringstream lines(record);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string time, thread, word;
        words >> time >> thread >> word;
        bool callback = word == "callback";
        if (callback)
            words >> word;
        size_t open = word.find('(');
        std::string name = word.substr(0, open);
        Step step = {name, "", ++totals[name], 0, ""};
        size_t result = line.rfind(")=");
        if (callback) {
            // Of several arguments the first tells whose callback it is.
            if (open != std::string::npos && word.back() != ')')
                step.source = word.substr(open + 1);
            step.nth = ++ofSource[name + step.source];
            for (const char* kind : {"drop", "garble"}) {
                step.kind = kind;
                all.push_back(step);
            }
        } else if (result != std::string::npos) {
            bool refused = strtol(line.c_str() + result + 2, nullptr, 10) != 0;
            step.nth = step.position;
            step.kind = refused ? "accept" : "refuse";
            all.push_back(step);
            // What the call hands out is told by its size.
            if (line.find(" out=", result) != std::string::npos) {
                step.kind = "garble";
                all.push_back(step);
            }
        }
    }
    std::vector<Step> plan;
    for (const Step& step : all) {
        if (sampled(step.position, totals[step.name]))
            plan.push_back(step);
    }
    return plan;
}

/** Whether repetitions of a run let the heap grow each time. Tables of the device that grow with
 * use settle over some runs: only what outlasts those leaks. */
bool leaks(const TcModule& module, const TcCase& testCase, const std::string& fault,
           int64_t bound) {
    for (int i = 0; i < 24; i++) {
        if (runOnce(module, testCase, fault, bound).heap <= 0)
            return false;
    }
    return true;
}

std::string oneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ';');
    return text;
}

constexpr int64_t firstBoundMs = 4 * 3600 * 1000;

/** Brings a worker up as an unattended run is, with its console silenced and its results going to
 *  `out`. Null when there is no such case. */
const TcCase* startWork(const TcModule* module, const std::string& caseName, const char* out) {
    const TcCase* testCase = nullptr;
    for (uint32_t i = 0; module != nullptr && i < module->caseCount; i++) {
        if (caseName == module->cases[i].name)
            testCase = &module->cases[i];
    }
    g_out = fopen(out, "ae");
    if (testCase == nullptr || testCase->function == nullptr || g_out == nullptr)
        return nullptr;
    if (fs::exists(std::string(out) + ".answers"))
        g_input = std::string(out) + ".answers";
    int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(null, STDOUT_FILENO);
    dup2(null, STDERR_FILENO);
    int32_t platform = 0;
    snprintf(g_configFile.commonDir, sizeof g_configFile.commonDir, "%s", "config/common");
    get_common_config(&g_configFile);
    get_conf_value_self("PLATFORM_INFO", "PLATFORM", &platform, g_configFile.autoTestPlatform);
    set_platform(&g_configFile, &platform);
    QLX_SysInit();
    zk_loadEnvironment();
    pthread_t watcher;
    pthread_create(&watcher, nullptr, watch, nullptr);
    return testCase;
}

int work(const std::string& moduleName, const std::string& caseName, const char* out,
         unsigned firstStep) {
    const TcModule* module = findModule(moduleName);
    const TcCase* testCase = startWork(module, caseName, out);
    if (testCase == nullptr)
        return 2;
    // The first run lets the device make its threads; the second is what the plan is made of.
    Outcome base = runOnce(*module, *testCase, "", firstBoundMs);
    base = runOnce(*module, *testCase, "", firstBoundMs);
    std::vector<Step> plan = planOf(deviceText(qlx_sim_recorded));
    if (firstStep == 0) {
        fprintf(g_out, "base\t%u\t%lld\t%zu\t%u\t%s\n", base.verdict,
                static_cast<long long>(base.tookMs), plan.size(), base.threads,
                oneLine(base.left).c_str());
        fflush(g_out);
    }
    int64_t bound = 2 * base.tookMs + 900 * 1000;
    for (unsigned i = firstStep; base.verdict == TC_SUCCESS && i < plan.size(); i++) {
        fprintf(g_out, "step\t%u\t%s\t", i, plan[i].text().c_str());
        fflush(g_out);
        Outcome run = {};
        bool leaking = false;
        for (bool blank : {false, true}) {
            std::string fault = plan[i].fault(caseName, blank);
            run = runOnce(*module, *testCase, fault, bound);
            leaking = run.heap > 0 && leaks(*module, *testCase, fault, bound);
            bool unclean = leaking || run.threads > 0 || !run.left.empty();
            if (plan[i].kind != "garble" || run.verdict != TC_SUCCESS || unclean)
                break;
        }
        fprintf(g_out, "verdict=%u\tthreads=%u\theap=%s\tleft=%s\n", run.verdict, run.threads,
                leaking ? "grows" : "steady", oneLine(run.left).c_str());
        fflush(g_out);
    }
    fprintf(g_out, "done\n");
    fclose(g_out);
    _exit(0);
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

/** A case with a limit: its step delayed by the last delay that is good, and by one millisecond
 *  more. Where the verdict turns elsewhere, that place is looked for. */
int workOnLimit(const std::string& moduleName, const std::string& caseName, const char* out,
                const std::string& step, int64_t lastGoodMs) {
    const TcModule* module = findModule(moduleName);
    const TcCase* testCase = startWork(module, caseName, out);
    size_t hash = step.find('#');
    if (testCase == nullptr || hash == std::string::npos)
        return 2;
    std::string prefix =
        step.substr(0, hash) + " case=" + caseName + " call=" + step.substr(hash + 1) + " delay=";
    auto verdictAt = [&](int64_t delayMs) {
        return runOnce(*module, *testCase, prefix + std::to_string(delayMs), firstBoundMs).verdict;
    };
    runOnce(*module, *testCase, "", firstBoundMs);
    uint32_t good = verdictAt(lastGoodMs);
    uint32_t bad = verdictAt(lastGoodMs + 1);
    bool held = good == TC_SUCCESS && bad == TC_FAILURE;
    fprintf(g_out, "%u %u %lld\n", good, bad,
            static_cast<long long>(held ? lastGoodMs : lastGoodDelay(verdictAt)));
    fclose(g_out);
    _exit(0);
}

// ---- The driver ---------------------------------------------------------------------------------

struct Options {
    fs::path dir = fs::current_path();
    fs::path out;
    fs::path exceptions;
    fs::path answers;
    fs::path limits;
    std::vector<std::string> modules;
    std::string pattern = "*";
    unsigned jobs = 2;
    unsigned every = 1;
    bool resume = false;
};

struct Exception {
    /** Whose cases it excuses. */
    std::string module;
    /** "missed", "unclean" or "both". */
    std::string what;
    std::string casePattern;
    std::string stepPattern;
    std::string reason;
    unsigned used = 0;
};

/** The file of a module in a folder of lists, empty when the module needs none. */
std::ifstream openList(const fs::path& folder, const TcModule& module) {
    return std::ifstream(folder / (std::string(module.name) + ".txt"));
}

/** A file a module. Lines: what, pattern of cases, pattern of steps (blank as '_'), reason. */
bool loadExceptions(const fs::path& folder, std::vector<Exception>* list) {
    for (const TcModule* module : testModules) {
        std::ifstream file = openList(folder, *module);
        for (std::string line; std::getline(file, line);) {
            std::istringstream words(line);
            Exception exception;
            if (line.empty() || line[0] == '#')
                continue;
            exception.module = module->name;
            words >> exception.what >> exception.casePattern >> exception.stepPattern;
            std::getline(words, exception.reason);
            bool known = exception.what == "missed" || exception.what == "unclean" ||
                         exception.what == "both";
            if (!known || exception.reason.size() < 10) {
                fprintf(stderr, "torture: %s: no exception: %s\n", module->name, line.c_str());
                return false;
            }
            list->push_back(exception);
        }
    }
    return true;
}

struct Job {
    const TcModule* module;
    const TcCase* testCase;
    fs::path file;
    std::string answer;
    pid_t pid = 0;
    unsigned firstStep = 0;
};

bool excepted(std::vector<Exception>* list, const char* what, const Job& job, std::string step) {
    const std::string caseName = job.testCase->name;
    std::replace(step.begin(), step.end(), ' ', '_');
    for (Exception& exception : *list) {
        if ((exception.what == what || exception.what == "both") &&
            exception.module == job.module->name &&
            fnmatch(exception.casePattern.c_str(), caseName.c_str(), 0) == 0 &&
            fnmatch(exception.stepPattern.c_str(), step.c_str(), 0) == 0) {
            exception.used++;
            return true;
        }
    }
    return false;
}

/** What an operator types at the cases that ask, by their names. Lines: case, answer. */
std::map<std::string, std::string> loadAnswers(const fs::path& path) {
    std::map<std::string, std::string> answers;
    std::ifstream file(path);
    for (std::string name, answer; file >> name >> std::ws && std::getline(file, answer);)
        answers[name] = answer;
    return answers;
}

/** Gives a worker a device of its own with the files of the bench's, and its answers. */
void prepareWorker(const Options& options, const Job& job) {
    std::error_code ignored;
    fs::path root = job.file.string() + ".device";
    fs::remove_all(root, ignored);
    fs::copy(options.dir / "device", root, fs::copy_options::recursive, ignored);
    if (!job.answer.empty())
        std::ofstream(job.file.string() + ".answers") << job.answer << "\n";
}

/** In a child: becomes this program again, as a worker in virtual time. */
[[noreturn]] void becomeWorker(const Words& arguments) {
    Words program = {programFile()};
    program.insert(program.end(), arguments.begin(), arguments.end());
    become(inVirtualTime(programFile().parent_path(), {}, program));
}

void startWorker(const Options& options, Job* job) {
    prepareWorker(options, *job);
    std::string first = std::to_string(job->firstStep);
    fflush(stdout);
    job->pid = fork();
    if (job->pid != 0)
        return;
    if (chdir(options.dir.c_str()) != 0)
        _exit(EXIT_CANNOT_RUN);
    fs::path root = job->file.string() + ".device";
    setenv("QLX_SIM_ROOT", root.c_str(), 1);
    // One heap without caches of threads: what it holds is then the same after equal runs.
    setenv("GLIBC_TUNABLES", "glibc.malloc.tcache_count=0:glibc.malloc.arena_max=1", 1);
    becomeWorker({"--worker", job->module->name, job->testCase->name, job->file, first});
}

bool isDone(const fs::path& path) {
    std::vector<std::string> lines = readLines(path);
    return !lines.empty() && lines.back() == "done";
}

/** When the youngest file was written that a case's results depend on. */
fs::file_time_type youngestInput(const Options& options) {
    fs::path program = programFile();
    std::vector<fs::path> inputs = {program, program.parent_path() / "libQlx.so", options.answers};
    std::error_code missing;
    for (const auto& entry : fs::recursive_directory_iterator(options.dir / "config", missing))
        inputs.push_back(entry.path());
    fs::file_time_type youngest = fs::file_time_type::min();
    for (const fs::path& input : inputs) {
        fs::file_time_type time = fs::last_write_time(input, missing);
        if (!missing)
            youngest = std::max(youngest, time);
    }
    return youngest;
}

/** After a worker's end: true when the case is through; else the step behind the one that ended the
 *  worker is next. */
bool settle(Job* job, int status) {
    if (isDone(job->file))
        return true;
    std::vector<std::string> lines = readLines(job->file);
    std::ofstream file(job->file, std::ios::app);
    if (lines.empty() || lines.back().compare(0, 5, "step\t") != 0) {
        // "endless" stands behind its step; without any step the base run itself came to an end.
        bool afterStep = lines.size() >= 1 && lines.back().find("endless") != std::string::npos;
        if (!afterStep) {
            file << "broken\t" << status << "\ndone\n";
            return true;
        }
    } else if (lines.back().find("endless") == std::string::npos) {
        file << "crash\n";
    }
    unsigned last = 0;
    for (const std::string& line : lines) {
        if (line.compare(0, 5, "step\t") == 0)
            last = static_cast<unsigned>(strtoul(line.c_str() + 5, nullptr, 10));
    }
    job->firstStep = last + 1;
    return false;
}

std::vector<Job> planJobs(const Options& options) {
    std::vector<Job> jobs;
    std::map<std::string, std::string> answers = loadAnswers(options.answers);
    for (const TcModule* module : testModules) {
        // By the row in its module, so that a new row shifts nothing of another module.
        unsigned number = 0;
        if (!options.modules.empty() && std::find(options.modules.begin(), options.modules.end(),
                                                  module->name) == options.modules.end())
            continue;
        for (uint32_t i = 0; i < module->caseCount; i++) {
            const TcCase& testCase = module->cases[i];
            if (testCase.autoFlag != AUTO ||
                fnmatch(options.pattern.c_str(), testCase.name, 0) != 0 ||
                number++ % options.every != 0)
                continue;
            Job job;
            job.module = module;
            job.testCase = &testCase;
            job.file = options.out / module->name / (std::string(testCase.name) + ".txt");
            job.answer = answers[testCase.name];
            jobs.push_back(job);
        }
    }
    return jobs;
}

void runJobs(const Options& options, std::vector<Job>* jobs) {
    std::vector<Job*> waiting;
    std::vector<Job*> running;
    size_t total = jobs->size();
    size_t finished = 0;
    const fs::file_time_type youngest = youngestInput(options);
    for (Job& job : *jobs) {
        fs::create_directories(job.file.parent_path());
        if (options.resume && isDone(job.file) && fs::last_write_time(job.file) > youngest) {
            finished++;
            continue;
        }
        fs::remove(job.file);
        waiting.push_back(&job);
    }
    std::reverse(waiting.begin(), waiting.end());
    while (!waiting.empty() || !running.empty()) {
        while (!waiting.empty() && running.size() < options.jobs) {
            Job* job = waiting.back();
            waiting.pop_back();
            startWorker(options, job);
            running.push_back(job);
        }
        int status = 0;
        pid_t pid = wait(&status);
        auto ended = std::find_if(running.begin(), running.end(),
                                  [pid](const Job* job) { return job->pid == pid; });
        if (ended == running.end())
            continue;
        Job* job = *ended;
        running.erase(ended);
        if (!settle(job, status)) {
            startWorker(options, job);
            running.push_back(job);
            continue;
        }
        std::error_code ignored;
        fs::remove_all(job->file.string() + ".device", ignored);
        fs::remove(job->file.string() + ".answers", ignored);
        finished++;
        bool terminal = isatty(STDOUT_FILENO);
        if (terminal || finished % 50 == 0)
            printf("%s%zu of %zu cases, %s%s", terminal ? "\r\033[K" : "", finished, total,
                   job->testCase->name, terminal ? "" : "\n");
        fflush(stdout);
    }
    printf("\n");
}

struct Count {
    unsigned cases = 0;
    unsigned untortured = 0;
    unsigned steps = 0;
    unsigned caught = 0;
    unsigned exceptedSteps = 0;
    unsigned missed = 0;
    unsigned unclean = 0;
    unsigned broken = 0;
};

std::string field(const std::string& line, const char* key) {
    size_t at = line.find(std::string("\t") + key + "=");
    if (at == std::string::npos)
        return "";
    at += strlen(key) + 2;
    return line.substr(at, line.find('\t', at) - at);
}

/** Judges one step's line; prints what is wrong. */
void judgeStep(const Job& job, const std::string& line, std::vector<Exception>* exceptions,
               Count* count, std::ostream& report) {
    const std::string caseName = job.testCase->name;
    std::istringstream parts(line);
    std::string word, index, step;
    std::getline(parts, word, '\t');
    std::getline(parts, index, '\t');
    std::getline(parts, step, '\t');
    count->steps++;
    std::string verdict = field(line, "verdict");
    if (verdict.empty()) {
        bool endless = line.find("endless") != std::string::npos;
        count->broken++;
        report << (endless ? "ENDLESS " : "CRASH   ") << caseName << " " << step << "\n";
        return;
    }
    bool caught = verdict != "0" && verdict != "2";
    bool forgiven = !caught && excepted(exceptions, "missed", job, step);
    count->caught += caught;
    count->exceptedSteps += forgiven;
    if (!caught && !forgiven) {
        count->missed++;
        report << "MISSED  " << caseName << " " << step << "\n";
    }
    bool refusedUndo =
        isUndo(step.substr(0, step.find('#'))) && step.find("refuse") != std::string::npos;
    std::string left = refusedUndo ? "" : field(line, "left");
    if ((!left.empty() || field(line, "threads") != "0" || field(line, "heap") == "grows") &&
        !excepted(exceptions, "unclean", job, step)) {
        count->unclean++;
        report << "UNCLEAN " << caseName << " " << step << " threads=" << field(line, "threads")
               << " heap=" << field(line, "heap") << " left=" << left << "\n";
    }
}

void judgeCase(const Job& job, std::vector<Exception>* exceptions, Count* count,
               std::ostream& report) {
    std::string name = job.testCase->name;
    count->cases++;
    std::vector<std::string> lines = readLines(job.file);
    for (size_t i = 0; i < lines.size(); i++) {
        const std::string& line = lines[i];
        if (line.compare(0, 5, "base\t") == 0) {
            std::string verdict = line.substr(5, line.find('\t', 5) - 5);
            if (verdict != "0") {
                count->untortured++;
                report << "BASE    " << name << " ends with " << verdict << " without a fault\n";
            }
            std::string left = line.substr(line.rfind('\t') + 1);
            if (!left.empty() && !excepted(exceptions, "unclean", job, "base")) {
                count->unclean++;
                report << "UNCLEAN " << name << " without a fault left=" << left << "\n";
            }
        } else if (line.compare(0, 5, "step\t") == 0) {
            judgeStep(job, line, exceptions, count, report);
        } else if (line.compare(0, 6, "broken") == 0) {
            count->broken++;
            report << "BROKEN  " << name << " without a fault\n";
        }
    }
}

/** Writes the report and prints the table by module. True when nothing is wrong. */
bool judge(const Options& options, const std::vector<Job>& jobs,
           std::vector<Exception>* exceptions) {
    std::ofstream report(options.out / "report.txt");
    std::vector<std::pair<std::string, Count>> modules;
    for (const Job& job : jobs) {
        if (modules.empty() || modules.back().first != job.module->name)
            modules.push_back({job.module->name, Count()});
        judgeCase(job, exceptions, &modules.back().second, report);
    }
    unsigned wrong = 0;
    printf("%-20s %6s %6s %7s %7s %8s %6s %7s %6s\n", "Module", "cases", "no run", "steps",
           "caught", "excepted", "missed", "unclean", "broken");
    for (const auto& entry : modules) {
        const Count& c = entry.second;
        printf("%-20s %6u %6u %7u %7u %8u %6u %7u %6u\n", entry.first.c_str(), c.cases,
               c.untortured, c.steps, c.caught, c.exceptedSteps, c.missed, c.unclean, c.broken);
        wrong += c.missed + c.unclean + c.broken;
    }
    bool whole = options.every == 1 && options.modules.empty() && options.pattern == "*";
    for (const Exception& exception : *exceptions) {
        if (whole && exception.used == 0)
            report << "UNUSED  exception " << exception.casePattern << " " << exception.stepPattern
                   << "\n";
    }
    printf("%s: %s\n", wrong == 0 ? "every fault is caught" : "FAULTS ARE MISSED",
           (options.out / "report.txt").c_str());
    return wrong == 0;
}

/** One case of one line of the limits. */
struct LimitJob {
    const TcModule* module;
    const TcCase* testCase;
    std::string step;
    std::string lastGoodMs;
    fs::path file;
    pid_t pid = 0;
};

/** A file a module. Lines: pattern of cases, step, last good delay in milliseconds, what the limit
 *  is. False when a line cannot be read or names no case. */
bool loadLimits(const Options& options, std::vector<LimitJob>* jobs) {
    bool good = true;
    for (const TcModule* module : testModules) {
        std::ifstream file = openList(options.limits, *module);
        for (std::string line; std::getline(file, line);) {
            std::istringstream words(line);
            std::string pattern, step, lastGoodMs;
            if (line.empty() || line[0] == '#')
                continue;
            words >> pattern >> step >> lastGoodMs;
            size_t before = jobs->size();
            for (uint32_t i = 0; i < module->caseCount; i++) {
                const TcCase* testCase = &module->cases[i];
                if (testCase->autoFlag != AUTO || lastGoodMs.empty() ||
                    fnmatch(pattern.c_str(), testCase->name, 0) != 0)
                    continue;
                fs::path out = options.out / ("limit_" + std::to_string(jobs->size()));
                jobs->push_back({module, testCase, step, lastGoodMs, out});
            }
            if (jobs->size() == before) {
                printf("LIMIT   no such case of %s: %s\n", module->name, line.c_str());
                good = false;
            }
        }
    }
    return good;
}

void startLimit(const Options& options, LimitJob* job) {
    fs::remove(job->file);
    fflush(stdout);
    job->pid = fork();
    if (job->pid != 0)
        return;
    setenv("QLX_SIM_ROOT", (job->file.string() + ".device").c_str(), 1);
    if (chdir(options.dir.c_str()) != 0)
        _exit(EXIT_CANNOT_RUN);
    becomeWorker(
        {"--limit", job->module->name, job->testCase->name, job->file, job->step, job->lastGoodMs});
}

/** Whether the verdict turned exactly at the limit; prints where it did not. */
bool judgeLimit(const LimitJob& job) {
    unsigned good = 99;
    unsigned bad = 99;
    long long turnsAt = -1;
    std::ifstream(job.file) >> good >> bad >> turnsAt;
    bool held = good == TC_SUCCESS && bad == TC_FAILURE;
    if (!held)
        printf("LIMIT   %s %s: %u at %s ms, %u one later; turns behind %lld ms\n",
               job.testCase->name, job.step.c_str(), good, job.lastGoodMs.c_str(), bad, turnsAt);
    return held;
}

/** Runs each limit in a worker of its own. */
bool holdLimits(const Options& options) {
    std::vector<LimitJob> all;
    bool good = loadLimits(options, &all);
    std::vector<LimitJob*> chosen;
    for (LimitJob& job : all) {
        if (fnmatch(options.pattern.c_str(), job.testCase->name, 0) == 0)
            chosen.push_back(&job);
    }
    fs::create_directories(options.out);
    size_t started = 0;
    unsigned running = 0;
    unsigned missed = 0;
    while (started < chosen.size() || running > 0) {
        if (started < chosen.size() && running < options.jobs) {
            startLimit(options, chosen[started++]);
            running++;
            continue;
        }
        pid_t pid = wait(nullptr);
        for (const LimitJob* job : chosen) {
            if (job->pid != pid)
                continue;
            running--;
            missed += !judgeLimit(*job);
        }
    }
    printf("limits: %zu turn at their millisecond, %u do not\n", chosen.size() - missed, missed);
    return good && missed == 0 && !chosen.empty();
}

/** Reads the options; -1 to go on, else what main returns. */
int parse(int argc, char** argv, Options* options) {
    std::string dir = ".", out, exceptions, answers, limits;
    CLI::App app(
        "Tortures the automatic cases: each recorded library call answered wrongly, what it hands\n"
        "out changed, each callback dropped and changed; or, with --limits, delays steps to their\n"
        "limit and one millisecond beyond. The report is OUT/report.txt; the exit code is 0 when\n"
        "nothing was missed and all runs were clean.",
        "torture");
    app.add_option("--out", out, "Folder of the results")->type_name("DIR")->required();
    CLI::Option* excused =
        app.add_option("--exceptions", exceptions, "What the rules of a case ignore on purpose")
            ->type_name("DIR")
            ->check(CLI::ExistingDirectory);
    app.add_option("--limits", limits, "Hold the limits of these lists instead")
        ->type_name("DIR")
        ->check(CLI::ExistingDirectory)
        ->excludes(excused);
    app.add_option("--answers", answers, "What is typed at cases that ask")
        ->type_name("FILE")
        ->check(readable());
    app.add_option("--dir", dir, "Bench folder, as tools/torture_bench.sh lays it out (.)")
        ->type_name("DIR");
    app.add_option("--module", options->modules, "Only cases of this module; may be repeated")
        ->allow_extra_args(false)
        ->type_name("NAME");
    app.add_option("--name", options->pattern, "Only cases whose name matches")
        ->type_name("PATTERN");
    app.add_option("--every", options->every, "Only each N-th of those")
        ->type_name("N")
        ->check(wholeNumber(1, UINT_MAX));
    app.add_option("--jobs", options->jobs, "Workers at a time (2)")
        ->type_name("N")
        ->check(wholeNumber(1, UINT_MAX));
    app.add_flag("--resume", options->resume, "Keep the results that are younger than the build");
    int code = readOptions(&app, argc, argv);
    if (code >= 0)
        return code;
    if (exceptions.empty() && limits.empty()) {
        fputs("torture: --exceptions or --limits is required\n", stderr);
        return EXIT_USAGE;
    }
    auto absolute = [](const std::string& path) {
        return path.empty() ? fs::path() : fs::absolute(path).lexically_normal();
    };
    options->dir = absolute(dir);
    options->out = absolute(out);
    options->exceptions = absolute(exceptions);
    options->answers = absolute(answers);
    options->limits = absolute(limits);
    std::error_code missing;
    if (!fs::is_directory(options->dir / "config", missing)) {
        fprintf(stderr, "torture: %s is no bench folder: it has no config\n", options->dir.c_str());
        return EXIT_USAGE;
    }
    return -1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 6 && strcmp(argv[1], "--worker") == 0)
        return work(argv[2], argv[3], argv[4],
                    static_cast<unsigned>(strtoul(argv[5], nullptr, 10)));
    if (argc == 7 && strcmp(argv[1], "--limit") == 0)
        return workOnLimit(argv[2], argv[3], argv[4], argv[5], strtoll(argv[6], nullptr, 10));
    Options options;
    std::vector<Exception> exceptions;
    int code = parse(argc, argv, &options);
    if (code >= 0)
        return code;
    if (!options.limits.empty())
        return holdLimits(options) ? 0 : 1;
    if (!loadExceptions(options.exceptions, &exceptions))
        return 2;
    std::vector<Job> jobs = planJobs(options);
    if (jobs.empty()) {
        fputs("torture: no automatic case is selected\n", stderr);
        return 2;
    }
    runJobs(options, &jobs);
    return judge(options, jobs, &exceptions) ? 0 : 1;
}

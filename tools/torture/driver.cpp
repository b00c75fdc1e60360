// The torture run: proof that each check of each case can fail, and that each path cleans up.
//
// For each case that passes on the simulated device: run it once and record its library calls and
// callbacks; then run it once for each call with that call answered wrongly (a refusal where it
// succeeded, a success where it was refused), once with what it hands out changed, and once for
// each callback with it dropped, and with its payload changed. Each of these runs must turn the
// verdict to failure, leave the device as it was before the case, and end within a bound of virtual
// time. What the rules of a case ignore on purpose stands in the list of exceptions, each with its
// reason.
//
// One worker process tortures one case, in virtual time (worker.h). Its results stand until what
// they depend on changes (keys.h). docs/torture.md explains the report.
#include <fnmatch.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "framework/case/check.h"
#include "tools/common/files.h"
#include "tools/common/options.h"
#include "tools/common/own_folder.h"
#include "tools/common/process.h"
#include "tools/torture/judge.h"
#include "tools/torture/keys.h"
#include "tools/torture/torture.h"
#include "tools/torture/worker.h"

namespace fs = std::filesystem;

namespace torture {

namespace {

struct Options {
    fs::path dir;
    fs::path out;
    fs::path golden;
    fs::path lists;
    bool limits = false;
    std::vector<std::string> modules;
    std::string pattern = "*";
    unsigned jobs = 0;
    unsigned every = 1;
    bool resume = false;
    bool write = false;
};

struct Job {
    Result result;
    /** Of what its results depend on. */
    std::string key;
    /** When the code of its module was made. */
    fs::file_time_type madeAt;
    pid_t pid = 0;
};

/** In a child: becomes this program again, as a worker in virtual time. Its calendar begins on a
 *  day of its own, as that of the golden calls does. */
[[noreturn]] void becomeWorker(const Options& options, const std::string& file,
                               const Subject& subject, const Words& task) {
    makeOwnFolder(options.dir, file + ".bench");
    if (chdir((file + ".bench").c_str()) != 0)
        _exit(EXIT_CANNOT_RUN);
    setenv("QLX_SIM_ROOT", (file + ".device").c_str(), 1);
    // One heap without caches of threads: what it holds is then the same after equal runs.
    setenv("GLIBC_TUNABLES", "glibc.malloc.tcache_count=0:glibc.malloc.arena_max=1", 1);
    Words program = {programFile(),
                     "--worker",
                     options.golden.string(),
                     options.lists.string(),
                     subject.module->name,
                     subject.testCase->name,
                     std::to_string(subject.script),
                     file};
    program.insert(program.end(), task.begin(), task.end());
    become(inVirtualTime(programFile().parent_path(), {"--start", "1767225600"}, program));
}

/** Starts a worker for a subject, on a device of its own with the files of the bench's. */
pid_t startWorker(const Options& options, const fs::path& file, const Subject& subject,
                  const Words& task) {
    std::error_code ignored;
    fs::path root = file.string() + ".device";
    fs::remove_all(root, ignored);
    fs::copy(options.dir / "device", root, fs::copy_options::recursive, ignored);
    fflush(stdout);
    pid_t pid = fork();
    if (pid == 0)
        becomeWorker(options, file, subject, task);
    return pid;
}

void removeDevice(const fs::path& file) {
    std::error_code ignored;
    fs::remove_all(file.string() + ".device", ignored);
    fs::remove_all(file.string() + ".bench", ignored);
}

/** After a worker's end: true when the case is through; else another one takes the steps behind the
 *  one that ended it. */
bool settle(Job* job, int status) {
    const fs::path& path = job->result.file;
    if (isDone(path))
        return true;
    std::vector<std::string> lines = readLines(path);
    std::ofstream file(path, std::ios::app);
    if (lines.empty() || lines.back().compare(0, 5, "step\t") != 0) {
        // Not in a step: the run without a fault itself came to an end.
        file << "broken\t" << status << "\ndone\n";
        return true;
    }
    if (lines.back().find("endless") == std::string::npos)
        file << "crash\n";
    return false;
}

bool planJobs(const Options& options, const Modules& modules, std::vector<Job>* jobs) {
    Keys keys;
    if (!keys.read(options.dir))
        return false;
    for (const Module& one : modules) {
        const TcModule* module = one.record;
        if (!options.modules.empty() && std::find(options.modules.begin(), options.modules.end(),
                                                  module->name) == options.modules.end())
            continue;
        std::vector<Subject> subjects;
        if (!loadSubjects(options.golden, *module, &subjects))
            return false;
        // By the row in its module, so that a new row shifts nothing of another module.
        unsigned number = 0;
        for (const Subject& subject : subjects) {
            if (fnmatch(options.pattern.c_str(), subject.testCase->name, 0) != 0 ||
                number++ % options.every != 0)
                continue;
            fs::path file = options.out / module->name / (subject.name() + ".txt");
            Script script;
            if (!loadScript(options.golden, subject, &script))
                return false;
            jobs->push_back({{subject, file},
                             keys.keyOf(one.symbol, subject, script),
                             keys.madeAt(one.symbol),
                             0});
        }
    }
    return true;
}

void tellProgress(size_t finished, size_t total, const std::string& name) {
    bool terminal = isatty(STDOUT_FILENO);
    if (terminal || finished % 50 == 0)
        printf("%s%zu of %zu cases, %s%s", terminal ? "\r\033[K" : "", finished, total,
               name.c_str(), terminal ? "" : "\n");
    fflush(stdout);
}

void runJobs(const Options& options, std::vector<Job>* jobs) {
    std::vector<Job*> waiting;
    std::vector<Job*> running;
    size_t total = jobs->size();
    size_t finished = 0;
    for (Job& job : *jobs) {
        const fs::path& file = job.result.file;
        fs::create_directories(file.parent_path());
        const std::string key = "key\t" + job.key;
        if (options.resume && isDone(file) && readLines(file)[0] == key) {
            finished++;
            continue;
        }
        std::ofstream(file) << key << "\n";
        waiting.push_back(&job);
    }
    // What has changed last comes first; the last of the list is taken next.
    std::stable_sort(waiting.begin(), waiting.end(),
                     [](const Job* a, const Job* b) { return a->madeAt > b->madeAt; });
    std::reverse(waiting.begin(), waiting.end());
    if (finished > 0)
        printf("%zu of %zu cases are as they were\n", finished, total);
    auto start = [&](Job* job) {
        job->pid = startWorker(options, job->result.file, job->result.subject, {"steps"});
        running.push_back(job);
    };
    while (!waiting.empty() || !running.empty()) {
        while (!waiting.empty() && running.size() < options.jobs) {
            Job* job = waiting.back();
            waiting.pop_back();
            start(job);
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
            start(job);
            continue;
        }
        removeDevice(job->result.file);
        tellProgress(++finished, total, job->result.subject.name());
    }
    printf("\n");
}

/** One case of one line of the limits. */
struct LimitJob {
    Subject subject;
    const Limit* limit;
    fs::path file;
    pid_t pid = 0;
};

/** The cases that each line of the limits names. False when one names none. */
bool planLimits(const Options& options, const Modules& modules, const Lists& lists,
                std::vector<LimitJob>* jobs) {
    bool good = true;
    size_t number = 0;
    for (const Limit& limit : lists.limits) {
        const TcModule* module = findModule(modules, limit.module);
        unsigned found = 0;
        for (uint32_t i = 0; i < module->caseCount; i++) {
            const TcCase& testCase = module->cases[i];
            if (testCase.autoFlag != AUTO ||
                fnmatch(limit.casePattern.c_str(), testCase.name, 0) != 0)
                continue;
            // Of each line at least the first.
            if (found++ % options.every != 0)
                continue;
            fs::path out = options.out / ("limit_" + std::to_string(number++));
            if (fnmatch(options.pattern.c_str(), testCase.name, 0) == 0)
                jobs->push_back({{module, &testCase, -1, ""}, &limit, out});
        }
        if (found == 0) {
            printf("LIMIT   no such case of %s: %s\n", module->name, limit.text.c_str());
            good = false;
        }
    }
    return good;
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
               job.subject.testCase->name, job.limit->step.c_str(), good,
               job.limit->lastGoodMs.c_str(), bad, turnsAt);
    removeDevice(job.file);
    return held;
}

/** Runs each limit in a worker of its own. */
bool holdLimits(const Options& options, const Modules& modules, const Lists& lists) {
    std::vector<LimitJob> jobs;
    bool good = planLimits(options, modules, lists, &jobs);
    fs::create_directories(options.out);
    size_t started = 0;
    unsigned running = 0;
    unsigned missed = 0;
    while (started < jobs.size() || running > 0) {
        if (started < jobs.size() && running < options.jobs) {
            LimitJob& job = jobs[started++];
            fs::remove(job.file);
            job.pid = startWorker(options, job.file, job.subject,
                                  {"limit", job.limit->step, job.limit->lastGoodMs});
            running++;
            continue;
        }
        pid_t pid = wait(nullptr);
        for (const LimitJob& job : jobs) {
            if (job.pid != pid)
                continue;
            running--;
            missed += !judgeLimit(job);
        }
    }
    printf("limits: %zu turn at their millisecond, %u do not\n", jobs.size() - missed, missed);
    return good && missed == 0 && !jobs.empty();
}

/** Reads the options; -1 to go on, else what main returns. */
int parse(int argc, char** argv, Options* options) {
    std::string dir = ".", out, golden, lists;
    CLI::App app(
        "Tortures the cases: each recorded library call answered wrongly, what it hands out\n"
        "changed, each callback dropped and changed; or, with --limits, delays steps to their\n"
        "limit and one millisecond beyond. The report is OUT/report.txt; the exit code is 0 when\n"
        "nothing was missed, all runs were clean, and each case passed without a fault.",
        "torture");
    app.add_option("--out", out, "Folder of the results")->type_name("DIR")->required();
    app.add_option("--golden", golden, "Reviewed verdicts, and scripts of the operator's")
        ->type_name("DIR")
        ->required()
        ->check(CLI::ExistingDirectory);
    app.add_option("--lists", lists, "Exceptions, limits, and what else has a reason")
        ->type_name("DIR")
        ->required()
        ->check(CLI::ExistingDirectory);
    app.add_flag("--limits", options->limits, "Hold the time limits instead");
    app.add_option("--dir", dir, "Bench folder, as tools/torture_bench.sh lays it out (.)")
        ->type_name("DIR");
    app.add_option("--module", options->modules, "Only cases of this module; may be repeated")
        ->allow_extra_args(false)
        ->type_name("NAME");
    app.add_option("--name", options->pattern, "Only cases whose name matches")
        ->type_name("PATTERN");
    app.add_option("--every", options->every, "Only each N-th of a module, or of a limit's line")
        ->type_name("N")
        ->check(wholeNumber(1, UINT_MAX));
    app.add_option("--jobs", options->jobs, "Workers at a time (as many as processors)")
        ->type_name("N")
        ->check(wholeNumber(1, UINT_MAX));
    app.add_flag("--resume", options->resume,
                 "Keep the results whose code, configuration and scripts are the same");
    app.add_flag("--write", options->write, "Write the profiles of members anew, for a review");
    int code = readOptions(&app, argc, argv);
    if (code >= 0)
        return code;
    if (options->jobs == 0)
        options->jobs = std::max(1U, std::thread::hardware_concurrency());
    auto absolute = [](const std::string& path) { return fs::absolute(path).lexically_normal(); };
    options->dir = absolute(dir);
    options->out = absolute(out);
    options->golden = absolute(golden);
    options->lists = absolute(lists);
    std::error_code missing;
    if (!fs::is_directory(options->dir / "config", missing)) {
        fprintf(stderr, "torture: %s is no bench folder: it has no config\n", options->dir.c_str());
        return EXIT_USAGE;
    }
    return -1;
}

/** --worker GOLDEN LISTS MODULE CASE SCRIPT FILE, then "steps" or "limit STEP MILLISECONDS". */
int work(const Modules& modules, const Words& words) {
    Work work = {};
    work.module = findModule(modules, words[2]);
    for (uint32_t i = 0; work.module != nullptr && i < work.module->caseCount; i++) {
        if (words[3] == work.module->cases[i].name)
            work.testCase = &work.module->cases[i];
    }
    Subject subject = {work.module, work.testCase, atoi(words[4].c_str()), ""};
    Profiles profiles;
    if (work.testCase == nullptr || !loadScript(words[0], subject, &work.script) ||
        !readProfiles(fs::path(words[1]) / "members" / (words[2] + ".txt"), &profiles))
        return EXIT_USAGE;
    for (const auto& one : profiles) {
        if (one.first == subject.name())
            work.profile = one.second;
    }
    work.out = words[5];
    if (words[6] == "steps")
        workOnSteps(work);
    if (words[6] == "limit" && words.size() == 9)
        workOnLimit(work, words[7], strtoll(words[8].c_str(), nullptr, 10));
    return EXIT_USAGE;
}

}  // namespace

int run(const Modules& modules, int argc, char** argv) {
    if (argc >= 9 && strcmp(argv[1], "--worker") == 0)
        return work(modules, Words(argv + 2, argv + argc));
    Options options;
    Lists lists;
    int code = parse(argc, argv, &options);
    if (code >= 0)
        return code;
    if (!loadLists(options.lists, modules, &lists))
        return EXIT_USAGE;
    if (options.limits)
        return holdLimits(options, modules, lists) ? EXIT_DONE : EXIT_FAILED;
    std::vector<Job> jobs;
    if (!planJobs(options, modules, &jobs))
        return EXIT_USAGE;
    if (jobs.empty()) {
        fputs("torture: no case is selected\n", stderr);
        return EXIT_USAGE;
    }
    runJobs(options, &jobs);
    std::vector<Result> results;
    for (const Job& job : jobs)
        results.push_back(job.result);
    Judging judging;
    judging.lists = &lists;
    judging.members = options.lists / "members";
    judging.write = options.write;
    judging.wholeModules = options.every == 1 && options.pattern == "*";
    judging.whole = judging.wholeModules && options.modules.empty();
    judging.report = options.out / "report.txt";
    return judge(results, judging) ? EXIT_DONE : EXIT_FAILED;
}

}  // namespace torture

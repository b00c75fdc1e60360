#include "tools/zkbench/run.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <deque>

#include "common/exit_codes.h"
#include "tools/common/files.h"
#include "tools/common/process.h"
#include "tools/report/console_log.h"
#include "tools/report/durations.h"

namespace fs = std::filesystem;

namespace {

/** Calls of the reboot command in one start, one a second, after which it is taken for useless. */
constexpr unsigned rebootPatience = 60;
/** Last words of the program that are told when something is wrong. */
constexpr size_t lastWordCount = 5;

/** The calendar of a run with a seed begins on the first of January 2026: such a run is to be the
 *  same in every respect. */
const char seededStart[] = "1767225600";

int64_t nowMs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1000000;
}

volatile sig_atomic_t interruptedBy = 0;
void onInterrupt(int signal) {
    interruptedBy = signal;
}

// ---- What the program says ----------------------------------------------------------------------

const char durationsFile[] = ".bench/durations";

report::Durations loadDurations() {
    try {
        return report::readDurations(durationsFile);
    } catch (const std::runtime_error&) {
        // None yet, or damaged: the time left is not told, and the file is made anew.
        return {};
    }
}

/** Keeps what was learnt of how long the cases take, by "MODULE/CASE". */
void saveDurations(const report::Durations& durations) {
    std::string text;
    for (const auto& entry : durations)
        text += std::to_string(entry.second) + " " + entry.first + "\n";
    try {
        writeWhole({durationsFile}, text);
    } catch (const fs::filesystem_error& error) {
        printf("the cases' durations are not kept: %s\n", error.what());
    }
}

/** The console of a run: kept in console.log, and understood line by line. */
class Console {
 public:
    Console(const std::string& path, const report::Checklist& checklist)
        : path_(path), durations_(loadDurations()) {
        file_ = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
        noteError(file_ >= 0);
        for (const report::Module& module : checklist.modules) {
            for (const report::Row& row : module.rows) {
                auto known = durations_.find(module.name + "/" + row.name);
                if (row.marked && known != durations_.end())
                    left_.insert(*known);
            }
        }
        learnt_ = !left_.empty();
    }
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    void beginStart() {
        rest_.clear();
        running_.clear();
        lastWords_.clear();
        rebootCalls = 0;
        refused = false;
        over = false;
        spokeAtMs = nowMs();
    }

    /** Takes all that has come through the pipe. */
    void drain(int pipe) {
        char buffer[65536];
        for (ssize_t got; (got = read(pipe, buffer, sizeof buffer)) > 0;) {
            spokeAtMs = nowMs();
            noteError(write(file_, buffer, static_cast<size_t>(got)) == got);
            rest_.append(buffer, static_cast<size_t>(got));
        }
        size_t at = 0;
        for (size_t end; (end = rest_.find('\n', at)) != std::string::npos; at = end + 1)
            takeLine(rest_.substr(at, end - at));
        rest_.erase(0, at);
    }

    /** Nothing more comes. */
    void finish() {
        noteError(close(file_) == 0);
        saveDurations(durations_);
    }

    /** How far the run is: module, row, counts, and the time left as earlier runs tell it. */
    std::string progress() const {
        char text[200];
        snprintf(text, sizeof text, "%-16s row %-5u pass %u, fail %u, other %u", module_.c_str(),
                 number_, passed_, failed_, other_);
        int64_t leftMs = 0;
        for (const auto& entry : left_)
            leftMs += entry.second;
        return text + (learnt_ ? ", about " + std::to_string(leftMs / 1000) + " s left" : "");
    }

    std::string lastWords() const {
        std::string text = lastWords_.empty() ? "\nit said nothing" : "\nits last words:";
        for (const std::string& line : lastWords_)
            text += "\n    " + line;
        return text;
    }

    /** Why console.log is not whole; empty when it is. */
    const std::string& error() const {
        return error_;
    }

    unsigned rebootCalls = 0;
    /** It said that it will not run at all; it then waits for ever. */
    bool refused = false;
    /** It said that all cases have been tested. */
    bool over = false;
    int64_t spokeAtMs = 0;

 private:
    void noteError(bool good) {
        if (!good && error_.empty())
            error_ = path_ + " could not be written: " + strerror(errno);
    }

    void takeLine(const std::string& line) {
        if (line.find_first_not_of(" \r") != std::string::npos)
            lastWords_.push_back(line.substr(0, line.find_last_not_of(" \r") + 1));
        if (lastWords_.size() > lastWordCount)
            lastWords_.pop_front();
        rebootCalls += line.find("]reboot cmd: ") != std::string::npos;
        for (const char* refusal :
             {"]Auto test must specify the path of", "]Create pipe between mornitor proc",
              "]Fork mornitor proc failed"})
            refused = refused || line.find(refusal) != std::string::npos;
        report::LogEvent event = report::readLogLine(line);
        using Kind = report::LogEvent::Kind;
        over = over || event.kind == Kind::RunOver;
        if (event.kind == Kind::ModuleSetup)
            module_ = event.name;
        if (event.kind >= Kind::CaseStart && event.kind <= Kind::CaseSkipped)
            takeCase(event);
    }

    void takeCase(const report::LogEvent& event) {
        using Kind = report::LogEvent::Kind;
        std::string name = module_ + "/" + std::string(event.name);
        number_ = event.number;
        if (event.kind == Kind::CaseStart) {
            running_ = name;
            startedAtMs_ = nowMs();
            return;
        }
        passed_ += event.kind == Kind::CaseSuccess;
        failed_ += event.kind == Kind::CaseFailed;
        other_ += event.kind != Kind::CaseSuccess && event.kind != Kind::CaseFailed;
        if (running_ == name)
            durations_[name] = nowMs() - startedAtMs_;
        left_.erase(name);
        running_.clear();
    }

    std::string path_;
    /** Real milliseconds by "MODULE/CASE", of all runs in this folder. */
    report::Durations durations_;
    /** Those of the marked rows that are still to run. */
    report::Durations left_;
    bool learnt_ = false;
    int file_ = -1;
    std::string error_;
    std::string rest_;
    std::deque<std::string> lastWords_;
    std::string module_;
    std::string running_;
    unsigned number_ = 0;
    unsigned passed_ = 0;
    unsigned failed_ = 0;
    unsigned other_ = 0;
    int64_t startedAtMs_ = 0;
};

void show(const Console& console, bool always) {
    static int64_t lastMs = 0;
    bool terminal = isatty(STDOUT_FILENO);
    int64_t now = nowMs();
    // On a terminal one line is rewritten; in a log a line comes at most every ten seconds.
    if (!always && now - lastMs < (terminal ? 200 : 10000))
        return;
    lastMs = now;
    printf("%s%s%s", terminal ? "\r\033[K" : "", console.progress().c_str(), terminal ? "" : "\n");
    fflush(stdout);
}

// ---- Starts -------------------------------------------------------------------------------------

[[noreturn]] void startProgram(const RunOptions& options, pid_t runner, int output) {
    setpgid(0, 0);
    endWith(runner, SIGKILL);
    int input = open(options.input.c_str(), O_RDONLY | O_CLOEXEC);
    if (input < 0) {
        dprintf(output, "cannot read %s: %s\n", options.input.c_str(), strerror(errno));
        _exit(EXIT_CANNOT_RUN);
    }
    dup2(input, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    setenv("QLX_SIM_ROOT", fs::absolute("device").c_str(), 1);
    Words program = {options.build / "zktest", "auto"};
    if (options.realTime)
        become(program);
    // A report is not a memory across power cuts here: the runs of a bench are disposable.
    setenv("ZK_REPORT_SYNC", "0", 0);
    Words launcherOptions;
    if (!options.seed.empty())
        launcherOptions = {"--seed", options.seed, "--start", seededStart};
    become(inVirtualTime(options.build, launcherOptions, program));
}

/** Collects children that have ended; keeps the status of `pid`. */
void reap(pid_t pid, int* status) {
    int one = 0;
    for (pid_t ended; (ended = waitpid(-1, &one, WNOHANG)) > 0;) {
        if (ended == pid)
            *status = one;
    }
}

/** Why a start must be ended now; empty when it may go on. */
std::string whyEnd(const RunOptions& options, const Console& console) {
    if (interruptedBy != 0)
        return std::string("interrupted: ") + strsignal(interruptedBy) +
               "; --resume goes on behind the last row";
    if (console.refused)
        return "the program refuses to run" + console.lastWords();
    if (console.rebootCalls >= rebootPatience)
        return "the reboot command was called " + std::to_string(console.rebootCalls) +
               " times and has not ended the program" + console.lastWords();
    int64_t silentMs = nowMs() - console.spokeAtMs;
    if (options.silenceS != 0 && silentMs >= options.silenceS * 1000LL)
        return "the program has said nothing for " + std::to_string(silentMs / 1000) + " s" +
               console.lastWords();
    return "";
}

/** One start of the program, until nothing of it runs any more. Returns why it had to be ended,
 *  empty when it ended itself. */
std::string runOnce(const RunOptions& options, Console* console, int* status) {
    int output[2];
    if (pipe2(output, O_CLOEXEC) != 0)
        return std::string("no pipe: ") + strerror(errno);
    fcntl(output[0], F_SETFL, O_NONBLOCK);
    fflush(stdout);
    pid_t runner = getpid();
    pid_t pid = fork();
    if (pid == 0)
        startProgram(options, runner, output[1]);
    setpgid(pid, pid);
    close(output[1]);
    console->beginStart();
    std::string ended;
    while (pid > 0) {
        // Looked at before the pipe: what the last process said is then read below.
        bool gone = kill(-pid, 0) != 0;
        console->drain(output[0]);
        if (!options.quiet)
            show(*console, false);
        if (gone)
            break;
        if (ended.empty())
            ended = whyEnd(options, *console);
        if (!ended.empty())
            kill(-pid, SIGKILL);
        reap(pid, status);
        pollfd wait = {output[0], POLLIN, 0};
        if (poll(&wait, 1, 100) > 0 && (wait.revents & POLLIN) == 0)
            usleep(10000);  // All ends are closed; what is left is only to be collected.
    }
    close(output[0]);
    return pid > 0 ? ended : std::string("no process: ") + strerror(errno);
}

/** Rows of the report on disk, 0 without one. */
size_t reportedRows(const std::string& path) {
    size_t rows = 0;
    try {
        for (const report::Module& module : report::readReport(path))
            rows += module.rows.size();
    } catch (const report::Error&) {
        return 0;
    }
    return rows;
}

std::string startUntilOver(const RunOptions& options, const RunFiles& files, Console* console) {
    size_t reached = 0;
    for (unsigned start = 0;; start++) {
        if (start > 0)
            printf("\nthe device restarts (%u of %u)\n", start, options.restarts);
        int status = -1;
        std::string ended = runOnce(options, console, &status);
        if (!ended.empty())
            return ended;
        if (console->over && WIFEXITED(status) && WEXITSTATUS(status) == 0)
            return "";
        size_t rows = reportedRows(files.report);
        // A start that meets a crash has at least one row more in its report than the one before.
        if (start > 0 && rows <= reached)
            return "no row was finished since the last start" + console->lastWords();
        if (start == options.restarts)
            return "the device was restarted " + std::to_string(options.restarts) + " times" +
                   console->lastWords();
        reached = rows;
    }
}

}  // namespace

std::string runToTheEnd(const RunOptions& options, const RunFiles& files,
                        const report::Checklist& checklist) {
    // The monitor outlives a crash of the program; this process collects it.
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    for (int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action = {};
        action.sa_handler = onInterrupt;
        sigaction(signal, &action, nullptr);
    }
    Console console(files.console, checklist);
    std::string why = startUntilOver(options, files, &console);
    console.finish();
    if (!options.quiet) {
        show(console, true);
        printf("\n");
    }
    return why.empty() ? console.error() : why;
}

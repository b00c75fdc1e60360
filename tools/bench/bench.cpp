// Runs a whole unattended certification on the simulated device.
//
// It does what the rack around a device does: lays out the working folder, starts the program with
// `auto`, shows how far it is, and starts it again as the device's start scripts would after the
// configured reboot command has run. It gives up when a start brings no row forward, or when its
// budget of restarts is used up. At the end it prints a summary by module from the report.
//
// In the folder: config/ (the shipped tree; files that were edited there stay), checklist.xls,
// report.xls, console.log, reboot.sh, device/ (storage of the simulated device), and .bench/ with
// what the runner itself remembers.
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "common/exit_codes.h"
#include "framework/workbook/xls.h"

namespace fs = std::filesystem;

namespace {

struct Options {
    fs::path dir;
    fs::path build;
    fs::path source;
    fs::path input = "/dev/null";
    std::vector<std::string> checklistOptions;
    std::string seed;
    bool realTime = false;
    bool resume = false;
    bool quiet = false;
    bool layOutOnly = false;
    int restarts = 50;
};

int64_t nowMs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1000000;
}

std::string readText(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

// ---- The folder ---------------------------------------------------------------------------------

/** Brings a file into the folder, unless it was edited there since the runner last wrote it: then
 *  it stays, and is told. */
void bringFile(const Options& options, const fs::path& from, const fs::path& name) {
    fs::path to = options.dir / name;
    fs::path shadow = options.dir / ".bench/shipped" / name;
    std::string shipped = readText(from);
    if (fs::exists(to) && fs::exists(shadow) && readText(to) != readText(shadow) &&
        readText(to) != shipped) {
        printf("%s was edited here and stays as it is\n", to.c_str());
        return;
    }
    for (const fs::path& copy : {to, shadow}) {
        // A file that stays the same keeps its time: results are older or younger than it.
        if (fs::exists(copy) && readText(copy) == shipped)
            continue;
        fs::create_directories(copy.parent_path());
        std::ofstream(copy, std::ios::binary) << shipped;
    }
}

/** The bench's reboot command: everything of the program dies at once, as when power is cut. The
 *  program runs in a process group of its own. */
const char rebootScript[] =
    "#!/bin/sh\n"
    "# Restarts the simulated device: ends all that runs on it. The bench runner starts it again.\n"
    "echo reboot >> .bench/reboots\n"
    "kill -9 0\n";

void layOut(const Options& options) {
    fs::create_directories(options.dir / ".bench");
    fs::create_directories(options.dir / "device");
    for (const auto& entry : fs::recursive_directory_iterator(options.source / "config")) {
        if (entry.is_regular_file())
            bringFile(options, entry.path(), fs::relative(entry.path(), options.source));
    }
    fs::path script = options.dir / "reboot.sh";
    if (!fs::exists(script))
        std::ofstream(script) << rebootScript;
    fs::permissions(script, fs::perms::owner_all | fs::perms::group_read | fs::perms::others_read);
}

int runTool(const std::vector<std::string>& words) {
    std::vector<char*> arguments;
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    fflush(stdout);
    pid_t pid = fork();
    if (pid == 0) {
        execv(arguments[0], arguments.data());
        fprintf(stderr, "zkbench: cannot run %s: %s\n", arguments[0], strerror(errno));
        _exit(EXIT_NOT_FOUND);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128;
}

/** A number that changes with any file of the folder's common configuration. */
std::string lineUpKey(const Options& options) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(options.dir / "config/common"))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    uint64_t hash = 1469598103934665603u;
    for (const fs::path& file : files) {
        for (char byte : readText(file))
            hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211u;
    }
    char text[20];
    snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(hash));
    return text;
}

/** Makes the streams of the folder's line-up. They are kept with the build by line-up, since making
 *  them takes longer than a run; the folder only points there. */
bool makeStreams(const Options& options) {
    fs::path tool = options.build / "mkstreams";
    if (!fs::exists(tool))
        return true;
    fs::path streams = options.source / "build/streams" / lineUpKey(options);
    fs::create_directories(streams);
    // Several benches may start at once; the first makes the streams, the others wait for it.
    int lock = open((streams / ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    flock(lock, LOCK_EX);
    printf("streams of the line-up: %s\n", streams.c_str());
    int code = runTool({tool, "--quiet", "--config", options.dir / "config", "--out", streams});
    close(lock);
    fs::path link = options.dir / "stream/ts";
    fs::create_directories(link.parent_path());
    if (fs::is_symlink(link))
        fs::remove(link);
    if (!fs::exists(link))
        fs::create_directory_symlink(streams, link);
    return code == 0;
}

bool makeChecklist(const Options& options) {
    fs::path fresh = options.dir / ".bench/checklist.xls";
    std::vector<std::string> words = {options.build / "mkchecklist", fresh};
    words.insert(words.end(), options.checklistOptions.begin(), options.checklistOptions.end());
    if (runTool(words) != 0)
        return false;
    bringFile(options, fresh, "checklist.xls");
    return true;
}

// ---- Progress -----------------------------------------------------------------------------------

/** What the console has told so far. */
struct Progress {
    std::string module;
    std::string row;
    unsigned passed = 0;
    unsigned failed = 0;
    unsigned other = 0;
    unsigned finishedRows = 0;
    bool over = false;
    /** Real milliseconds of each finished case, for the estimate of the next run. */
    std::map<std::string, int64_t> took;
    std::string running;
    int64_t startedMs = 0;
};

/** Takes one line of the console. Verdict lines read "case N:[NAME] WORD! ". */
void takeLine(const std::string& line, Progress* progress) {
    if (line.find("mornitor proc receive the message that all the cases") != std::string::npos)
        progress->over = true;
    size_t setup = line.find("] module setup!!!");
    size_t opening = line.find("][");
    if (setup != std::string::npos && opening != std::string::npos)
        progress->module = line.substr(opening + 2, setup - opening - 2);
    size_t at = line.find("]case ");
    size_t bracket = line.find(":[", at);
    size_t end = line.find("] ", bracket);
    if (at == std::string::npos || bracket == std::string::npos || end == std::string::npos)
        return;
    std::string name = line.substr(bracket + 2, end - bracket - 2);
    std::string word = line.substr(end + 2);
    progress->row = line.substr(at + 6, bracket - at - 6);
    if (word.compare(0, 6, "Start!") == 0) {
        progress->running = progress->module + "/" + name;
        progress->startedMs = nowMs();
        return;
    }
    progress->finishedRows++;
    if (!progress->running.empty())
        progress->took[progress->running] = nowMs() - progress->startedMs;
    progress->running.clear();
    if (word.compare(0, 7, "SUCCESS") == 0)
        progress->passed++;
    else if (word.compare(0, 6, "FAILED") == 0)
        progress->failed++;
    else
        progress->other++;
}

/** Reads what has been appended to the console's log. */
class LogReader {
 public:
    explicit LogReader(const fs::path& path) : fd_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        lseek(fd_, 0, SEEK_END);
    }
    ~LogReader() {
        close(fd_);
    }
    LogReader(const LogReader&) = delete;
    LogReader& operator=(const LogReader&) = delete;

    void read(Progress* progress) {
        char buffer[65536];
        ssize_t got;
        while ((got = ::read(fd_, buffer, sizeof buffer)) > 0)
            rest_.append(buffer, static_cast<size_t>(got));
        size_t at = 0;
        for (size_t end; (end = rest_.find('\n', at)) != std::string::npos; at = end + 1)
            takeLine(rest_.substr(at, end - at), progress);
        rest_.erase(0, at);
    }

 private:
    int fd_;
    std::string rest_;
};

using Durations = std::map<std::string, int64_t>;

Durations loadDurations(const Options& options) {
    Durations durations;
    std::ifstream file(options.dir / ".bench/durations");
    std::string name;
    int64_t milliseconds;
    while (file >> milliseconds && file.ignore(1) && std::getline(file, name))
        durations[name] = milliseconds;
    return durations;
}

void saveDurations(const Options& options, const Durations& durations) {
    std::ofstream file(options.dir / ".bench/durations");
    for (const auto& entry : durations)
        file << entry.second << ' ' << entry.first << '\n';
}

/** Time left as an earlier run on this bench tells it, empty when there was none. */
std::string timeLeft(const Durations& learnt, const Progress& progress) {
    if (learnt.empty())
        return "";
    int64_t left = 0;
    for (const auto& entry : learnt) {
        if (progress.took.count(entry.first) == 0)
            left += entry.second;
    }
    char text[64];
    snprintf(text, sizeof text, ", about %lld s left", static_cast<long long>(left / 1000));
    return text;
}

void show(const Durations& learnt, const Progress& progress, bool always) {
    static int64_t lastMs = 0;
    static std::string lastModule;
    bool terminal = isatty(STDOUT_FILENO);
    int64_t now = nowMs();
    // On a terminal one line is rewritten; in a log a line comes at most every ten seconds.
    if (!always && now - lastMs < (terminal ? 200 : 10000))
        return;
    lastMs = now;
    printf("%s%-16s row %-5s pass %u, fail %u, other %u%s%s", terminal ? "\r\033[K" : "",
           progress.module.c_str(), progress.row.c_str(), progress.passed, progress.failed,
           progress.other, timeLeft(learnt, progress).c_str(), terminal ? "" : "\n");
    fflush(stdout);
}

// ---- The run ------------------------------------------------------------------------------------

/** Where the calendar of a run with a seed begins, for it is to be the same in every respect:
 *  the first of January 2026. */
const char seededStart[] = "1767225600";

[[noreturn]] void startProgram(const Options& options) {
    fs::path log = options.dir / "console.log";
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (chdir(options.dir.c_str()) != 0)
        _exit(EXIT_CANNOT_RUN);
    int out = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    int in = open(options.input.c_str(), O_RDONLY);
    if (out < 0 || in < 0)
        _exit(EXIT_CANNOT_RUN);
    dup2(in, STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(out, STDERR_FILENO);
    setenv("QLX_SIM_ROOT", (options.dir / "device").c_str(), 1);
    std::string program = options.build / "zktest";
    std::string launcher = options.build / "vclock/run";
    if (options.realTime) {
        execl(program.c_str(), program.c_str(), "auto", nullptr);
        _exit(EXIT_CANNOT_RUN);
    }
    // A report is not a memory across power cuts here: the runs of a bench are disposable.
    setenv("ZK_REPORT_SYNC", "0", 0);
    if (options.seed.empty())
        execl(launcher.c_str(), launcher.c_str(), program.c_str(), "auto", nullptr);
    else
        execl(launcher.c_str(), launcher.c_str(), "--seed", options.seed.c_str(), "--start",
              seededStart, program.c_str(), "auto", nullptr);
    _exit(EXIT_CANNOT_RUN);
}

/** Collects children that have ended; keeps the status of `pid`. */
void reap(pid_t pid, int* status) {
    int one = 0;
    for (pid_t ended; (ended = waitpid(-1, &one, WNOHANG)) > 0;) {
        if (ended == pid)
            *status = one;
    }
}

volatile sig_atomic_t interrupted = 0;
void onInterrupt(int) {
    interrupted = 1;
}

/** One start of the program, until nothing of it runs any more. True when it said the run is over
 *  and ended well. */
bool runOnce(const Options& options, const Durations& learnt, Progress* progress) {
    int status = -1;
    std::ofstream(options.dir / "console.log", std::ios::app).flush();
    LogReader log(options.dir / "console.log");
    progress->over = false;
    fflush(stdout);
    pid_t pid = fork();
    if (pid == 0)
        startProgram(options);
    setpgid(pid, pid);
    for (;;) {
        reap(pid, &status);
        log.read(progress);
        if (!options.quiet)
            show(learnt, *progress, false);
        if (kill(-pid, 0) != 0)
            break;
        if (interrupted) {
            kill(-pid, SIGKILL);
            reap(pid, &status);
        }
        usleep(20000);
    }
    log.read(progress);
    if (WIFEXITED(status) && WEXITSTATUS(status) == EXIT_CANNOT_RUN)
        fprintf(stderr, "zkbench: cannot start %s\n", (options.build / "zktest").c_str());
    return progress->over && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/** Rows of all sheets of the report on disk, 0 without one. */
unsigned reportRows(const Options& options) {
    xls_error_t error = LIBXLS_OK;
    unsigned rows = 0;
    xlsWorkBook* book = xls_open_file((options.dir / "report.xls").c_str(), "UTF-8", &error);
    for (uint32_t i = 0; book != nullptr && i < book->sheets.count; i++) {
        xlsWorkSheet* sheet = xls_getWorkSheet(book, static_cast<int>(i));
        if (sheet != nullptr && xls_parseWorkSheet(sheet) == LIBXLS_OK)
            rows += sheet->rows.lastrow;
        xls_close_WS(sheet);
    }
    xls_close_WB(book);
    return rows;
}

/** Starts the program until its run is over. */
bool runToTheEnd(const Options& options) {
    Progress progress;
    Durations learnt = loadDurations(options);
    bool complete = false;
    unsigned reached = 0;
    for (int start = 0; start <= options.restarts && !interrupted; start++) {
        if (start > 0)
            printf("\nthe device restarts (%d of %d)\n", start, options.restarts);
        complete = runOnce(options, learnt, &progress);
        unsigned rows = reportRows(options);
        if (complete)
            break;
        // A start that meets a crash has at least one row more in its report than the one before.
        if (start > 0 && rows <= reached) {
            printf("\nno row was finished since the last start: the bench gives up\n");
            break;
        }
        reached = rows;
    }
    if (!options.quiet) {
        show(learnt, progress, true);
        printf("\n");
    }
    for (const auto& entry : progress.took)
        learnt[entry.first] = entry.second;
    saveDurations(options, learnt);
    return complete;
}

// ---- The summary --------------------------------------------------------------------------------

bool summarise(const Options& options) {
    static const char* const words[] = {"Pass", "Fail", "N/A", "Block", "NoMatch", "Manual"};
    xls_error_t error = LIBXLS_OK;
    std::string path = options.dir / "report.xls";
    xlsWorkBook* book = xls_open_file(path.c_str(), "UTF-8", &error);
    if (book == nullptr) {
        printf("no report: %s\n", xls_getError(error));
        return false;
    }
    unsigned totals[6] = {};
    printf("%-20s %7s %7s %7s %7s %7s %7s\n", "Module", words[0], words[1], words[2], words[3],
           words[4], words[5]);
    for (uint32_t i = 0; i < book->sheets.count; i++) {
        unsigned counts[6] = {};
        xlsWorkSheet* sheet = xls_getWorkSheet(book, static_cast<int>(i));
        if (sheet == nullptr || xls_parseWorkSheet(sheet) != LIBXLS_OK)
            continue;
        for (unsigned r = 1; r <= sheet->rows.lastrow; r++) {
            xlsCell* cell = xls_cell(sheet, static_cast<uint16_t>(r), 3);
            for (int w = 0; w < 6; w++)
                counts[w] +=
                    cell != nullptr && cell->str != nullptr && strcmp(cell->str, words[w]) == 0;
        }
        printf("%-20s %7u %7u %7u %7u %7u %7u\n", book->sheets.sheet[i].name, counts[0], counts[1],
               counts[2], counts[3], counts[4], counts[5]);
        for (int w = 0; w < 6; w++)
            totals[w] += counts[w];
        xls_close_WS(sheet);
    }
    xls_close_WB(book);
    printf("%-20s %7u %7u %7u %7u %7u %7u\n", "all", totals[0], totals[1], totals[2], totals[3],
           totals[4], totals[5]);
    return true;
}

/** Puts the last run's files out of the way, under names that say so. */
void keepLastRun(const Options& options) {
    for (const char* name : {"report.xls", "console.log"}) {
        std::error_code ignored;
        fs::path path = options.dir / name;
        fs::rename(path, options.dir / (std::string("last-") + name), ignored);
    }
}

void usage(FILE* out) {
    fputs(
        "usage: zkbench [options] [DIR]\n"
        "Runs the unattended certification on the simulated device in folder DIR (build/bench).\n"
        "  --build DIR        folder of the built programs\n"
        "  --source DIR       folder of the project, for the shipped configuration\n"
        "  --real-time        wait for real instead of in virtual time\n"
        "  --seed N           another order of threads in virtual time, from 2026-01-01 on; two\n"
        "                     runs with one seed are the same to the byte\n"
        "  --restarts N       how often the device may be restarted (50)\n"
        "  --input FILE       what the program reads on its standard input (nothing)\n"
        "  --resume           go on with the folder's report instead of a new one\n"
        "  --quiet            no progress line\n"
        "  --lay-out          only bring the folder into order, and run nothing\n"
        "  --module NAME, --name PATTERN, --failed REPORT, --auto, --long\n"
        "                     what the checklist marks, as mkchecklist takes them\n"
        "The exit code is 0 when the run was completed, whatever its verdicts.\n",
        out);
}

bool parse(int argc, char** argv, Options* options) {
    for (int i = 1; i < argc; i++) {
        std::string word = argv[i];
        bool takesValue = word == "--build" || word == "--source" || word == "--seed" ||
                          word == "--restarts" || word == "--input" || word == "--module" ||
                          word == "--name" || word == "--failed";
        if (takesValue && i + 1 >= argc)
            return false;
        std::string value = takesValue ? argv[++i] : "";
        if (word == "--build")
            options->build = fs::absolute(value);
        else if (word == "--source")
            options->source = fs::absolute(value);
        else if (word == "--seed")
            options->seed = value;
        else if (word == "--restarts")
            options->restarts = atoi(value.c_str());
        else if (word == "--input")
            options->input = fs::absolute(value);
        else if (word == "--failed")
            options->checklistOptions.insert(options->checklistOptions.end(),
                                             {word, fs::absolute(value).string()});
        else if (takesValue)
            options->checklistOptions.insert(options->checklistOptions.end(), {word, value});
        else if (word == "--auto" || word == "--long")
            options->checklistOptions.push_back(word);
        else if (word == "--real-time")
            options->realTime = true;
        else if (word == "--resume")
            options->resume = true;
        else if (word == "--quiet")
            options->quiet = true;
        else if (word == "--lay-out")
            options->layOutOnly = true;
        else if (word[0] != '-' && options->dir.empty())
            options->dir = fs::absolute(word);
        else
            return false;
    }
    fs::path self = fs::canonical("/proc/self/exe").parent_path();
    if (options->build.empty())
        options->build = self;
    if (options->source.empty())
        options->source = fs::current_path();
    if (options->dir.empty())
        options->dir = options->source / "build/bench";
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    if (!parse(argc, argv, &options)) {
        usage(stderr);
        return EXIT_USAGE;
    }
    // The monitor outlives a crash of the program; this process collects it.
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    signal(SIGINT, onInterrupt);
    signal(SIGTERM, onInterrupt);
    try {
        // Before the report is put away: the failures of an earlier one may select the rows.
        layOut(options);
        if (!makeStreams(options))
            return 1;
        if (options.layOutOnly)
            return 0;
        if (!makeChecklist(options))
            return 1;
        if (!options.resume)
            keepLastRun(options);
    } catch (const fs::filesystem_error& error) {
        fprintf(stderr, "zkbench: %s\n", error.what());
        return 1;
    }
    bool complete = runToTheEnd(options);
    bool told = summarise(options);
    printf("%s\nreport %s\nconsole %s\n", complete ? "run completed" : "RUN NOT COMPLETED",
           (options.dir / "report.xls").c_str(), (options.dir / "console.log").c_str());
    return complete && told ? 0 : 1;
}

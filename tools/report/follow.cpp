#include "tools/report/follow.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <numeric>

#include "tools/report/console_log.h"
#include "tools/report/page.h"
#include "tools/report/text.h"

namespace fs = std::filesystem;

namespace report {

namespace {

const size_t failuresKept = 10;
/** A line that is longer is none of the program's own. */
const size_t longestLine = 1 << 20;

int64_t nowMs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1000000;
}

}  // namespace

Follower::Follower(const fs::path& folder, const fs::path& durations)
    : log_(folder / "console.log"), grownAtMs_(nowMs()) {
    if (!fs::is_directory(folder))
        throw Error(folder.string() + ": no folder");
    fs::path recorded = durations.empty() ? folder / ".bench/durations" : durations;
    if (!durations.empty() || fs::exists(recorded))
        learnt_ = readDurations(recorded);
    if (fs::exists(folder / "checklist.xls"))
        checklist_ = readChecklist(folder / "checklist.xls");
    progress_.name = fs::absolute(folder / ".").lexically_normal().parent_path().filename();
    begin();
}

Follower::~Follower() {
    if (fd_ >= 0)
        close(fd_);
}

/** A run's beginning: nothing is finished. */
void Follower::begin() {
    std::string name = progress_.name;
    progress_ = Progress();
    progress_.name = name;
    finished_.clear();
    running_.clear();
    stamped_ = false;
    nowUs_ = 0;
    ahead_.clear();
    for (const Module& module : checklist_.modules) {
        progress_.allRows += static_cast<unsigned>(module.rows.size());
        for (const Row& row : module.rows) {
            auto found = learnt_.find(module.name + "/" + row.name);
            if (row.marked && found != learnt_.end())
                ahead_[found->first] = found->second;
        }
    }
}

/** Opens the log anew where another file has taken its place, or where it is shorter than what has
 *  been read of it. */
void Follower::reopen() {
    struct stat here {};
    struct stat there {};
    bool exists = stat(log_.c_str(), &there) == 0 && S_ISREG(there.st_mode);
    bool same = fd_ >= 0 && exists && fstat(fd_, &here) == 0 && here.st_ino == there.st_ino &&
                here.st_dev == there.st_dev && lseek(fd_, 0, SEEK_CUR) <= here.st_size;
    if (same || !exists)
        return;
    if (fd_ >= 0)
        close(fd_);
    fd_ = open(log_.c_str(), O_RDONLY | O_CLOEXEC);
    rest_.clear();
    begin();
}

void Follower::poll() {
    reopen();
    char buffer[65536];
    ssize_t got = 0;
    while (fd_ >= 0 && (got = ::read(fd_, buffer, sizeof buffer)) > 0) {
        grownAtMs_ = nowMs();
        rest_.append(buffer, static_cast<size_t>(got));
        size_t at = 0;
        for (size_t end; (end = rest_.find('\n', at)) != std::string::npos; at = end + 1)
            takeLine(std::string_view(rest_).substr(at, end - at));
        rest_.erase(0, at);
        if (rest_.size() > longestLine)
            rest_.erase(0, rest_.size() - longestLine / 2);
    }
    progress_.silentMs = nowMs() - grownAtMs_;
    progress_.elapsedMs = nowUs_ / 1000;
    estimate();
}

void Follower::takeLine(std::string_view line) {
    LogEvent event = readLogLine(line);
    if (event.kind == LogEvent::ProgramStart) {
        takeStart(event);
        return;
    }
    if (event.stampUs >= 0) {
        baseUs_ = stamped_ ? baseUs_ : event.stampUs;
        stamped_ = true;
        nowUs_ = event.stampUs - baseUs_;
    }
    const std::string_view red = "\033[1;31m";
    size_t at = line.find(red);
    bool verdict = line.find("] TEST Result: ") != std::string_view::npos;
    if (at != std::string_view::npos && !verdict && failure_.empty() && !running_.empty())
        failure_ = printable(withoutColours(line.substr(at)));
    switch (event.kind) {
        case LogEvent::ModuleSetup:
            progress_.module = printable(event.name);
            break;
        case LogEvent::RunOver:
            progress_.over = true;
            break;
        case LogEvent::CaseStart:
            progress_.started = true;
            running_ = printable(event.name);
            runningNumber_ = event.number;
            failure_.clear();
            progress_.row = running_;
            break;
        case LogEvent::CaseSuccess:
        case LogEvent::CaseUnsupported:
        case LogEvent::CaseFailed:
        case LogEvent::CaseSkipped:
            takeEnd(event);
            break;
        default:
            break;
    }
}

/** The program starts: a new run after one that was over, else the same run goes on. */
void Follower::takeStart(const LogEvent& event) {
    if (progress_.over)
        begin();
    bool first = !stamped_;
    if (!running_.empty()) {
        progress_.lost++;
        finish(progress_.module, runningNumber_, running_);
        progress_.failures.push_back(progress_.module + "/" + running_ +
                                     ": the device went down in this case");
        running_.clear();
    }
    progress_.restarts += !first;
    if (event.stampUs >= 0) {
        if (first || event.stampUs - baseUs_ < nowUs_)
            baseUs_ = event.stampUs - nowUs_;
        nowUs_ = event.stampUs - baseUs_;
        stamped_ = true;
    }
}

void Follower::takeEnd(const LogEvent& event) {
    std::string name = printable(event.name);
    progress_.started = true;
    progress_.row = name;
    finish(progress_.module, event.number, name);
    progress_.passed += event.kind == LogEvent::CaseSuccess;
    progress_.failed += event.kind == LogEvent::CaseFailed;
    progress_.notApplicable += event.kind == LogEvent::CaseUnsupported;
    progress_.skipped += event.kind == LogEvent::CaseSkipped;
    if (event.kind == LogEvent::CaseFailed) {
        progress_.failures.push_back(progress_.module + "/" + name +
                                     (failure_.empty() ? "" : ": " + failure_));
        if (progress_.failures.size() > failuresKept)
            progress_.failures.pop_front();
    }
    running_.clear();
    failure_.clear();
}

void Follower::finish(const std::string& module, unsigned number, const std::string& name) {
    if (!finished_.insert({module, number}).second)
        return;
    progress_.finishedRows++;
    ahead_.erase(module + "/" + name);
}

void Follower::estimate() {
    progress_.leftMs = -1;
    if (progress_.over)
        progress_.leftMs = 0;
    else if (!learnt_.empty() && !checklist_.modules.empty())
        progress_.leftMs =
            std::accumulate(ahead_.begin(), ahead_.end(), int64_t{0},
                            [](int64_t sum, const auto& entry) { return sum + entry.second; });
}

std::string textOf(const Progress& progress) {
    char line[256];
    std::string text = printable(progress.name) + ": ";
    if (progress.over)
        text += "the run is over";
    else if (!progress.started)
        text += "no row yet";
    else
        text += progress.module + " / " + progress.row;
    snprintf(line, sizeof line,
             "\n%u%s%s rows, %u passed, %u failed, %u n/a, %u skipped, %u lost, %u restarts\n",
             progress.finishedRows, progress.allRows > 0 ? " of " : "",
             progress.allRows > 0 ? std::to_string(progress.allRows).c_str() : "", progress.passed,
             progress.failed, progress.notApplicable, progress.skipped, progress.lost,
             progress.restarts);
    text += line;
    text += duration(progress.elapsedMs) + " on the device's clock";
    if (progress.leftMs >= 0 && !progress.over)
        text += ", about " + duration(progress.leftMs) + " left";
    if (progress.silentMs > 10000 && !progress.over)
        text += ", silent for " + duration(progress.silentMs);
    text += "\n";
    for (const std::string& failure : progress.failures)
        text += "  " + failure + "\n";
    return text;
}

std::string jsonOf(const Progress& progress) {
    nlohmann::ordered_json out = {{"name", printable(progress.name)},
                                  {"over", progress.over},
                                  {"module", progress.module},
                                  {"case", progress.row},
                                  {"finishedRows", progress.finishedRows},
                                  {"allRows", progress.allRows},
                                  {"passed", progress.passed},
                                  {"failed", progress.failed},
                                  {"notApplicable", progress.notApplicable},
                                  {"skipped", progress.skipped},
                                  {"lost", progress.lost},
                                  {"restarts", progress.restarts},
                                  {"elapsedMs", progress.elapsedMs},
                                  {"leftMs", progress.leftMs},
                                  {"silentMs", progress.silentMs},
                                  {"failures", progress.failures}};
    return out.dump(1) + "\n";
}

namespace {

std::string tile(const char* verdict, unsigned count, const char* word) {
    return std::string("<li><div class=\"v-") + verdict + "\"><b>" + std::to_string(count) +
           "</b>" + word + "</div></li>\n";
}

}  // namespace

std::string htmlOf(const Progress& progress) {
    bool bad = progress.failed + progress.lost > 0;
    std::string state = progress.over       ? (bad ? "Over, with failures" : "Over, nothing failed")
                        : !progress.started ? "No row yet"
                                            : html(progress.module + " / " + progress.row);
    std::string page =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<noscript><meta http-equiv=\"refresh\" content=\"3\"></noscript>\n"
        "<link rel=\"icon\" href=\"data:,\">\n<title>" +
        html(progress.name) + ": running</title>\n<style>" + page::report_css +
        "</style>\n</head>\n<body>\n<main>\n<h1>" + html(progress.name) +
        "</h1>\n<p class=\"verdict " + (bad ? "bad" : "good") + "\">" + state + "</p>\n";
    std::string rows = std::to_string(progress.finishedRows);
    if (progress.allRows > 0) {
        std::string all = std::to_string(progress.allRows);
        rows += " of " + all;
        page += "<p><progress style=\"width:100%\" aria-label=\"Rows\" max=\"" + all +
                "\" value=\"" + std::to_string(progress.finishedRows) + "\"></progress></p>\n";
    }
    page += "<p class=\"soft\">" + rows + " rows · " + duration(progress.elapsedMs) +
            " on the device’s clock";
    if (progress.leftMs >= 0 && !progress.over)
        page += " · about " + duration(progress.leftMs) + " left";
    if (progress.silentMs > 10000 && !progress.over)
        page += " · silent for " + duration(progress.silentMs);
    page += "</p>\n<ul class=\"tiles\">\n" + tile("Pass", progress.passed, "passed") +
            tile("Fail", progress.failed, "failed") + tile("NA", progress.notApplicable, "n/a") +
            tile("Manual", progress.skipped, "skipped") + tile("Block", progress.lost, "lost") +
            tile("Missing", progress.restarts, "restarts") + "</ul>\n";
    if (!progress.failures.empty())
        page += "<h2>Last failures</h2>\n<ul>\n";
    for (const std::string& failure : progress.failures)
        page += "<li class=\"why\">" + html(failure) + "</li>\n";
    page += progress.failures.empty() ? "" : "</ul>\n";
    return page + "</main>\n<script>" + page::live_js + "</script>\n</body>\n</html>\n";
}

}  // namespace report

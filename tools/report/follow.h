// A run in progress, as its console's log grows.
#pragma once

#include <stdint.h>

#include <deque>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tools/report/durations.h"
#include "tools/report/run_data.h"

namespace report {

struct LogEvent;

/** How far a run is. */
struct Progress {
    std::string name;
    /** Where the run stands; empty before the first row. */
    std::string module;
    std::string row;
    unsigned passed = 0;
    unsigned failed = 0;
    unsigned notApplicable = 0;
    unsigned skipped = 0;
    /** Rows in which the device went down. */
    unsigned lost = 0;
    unsigned restarts = 0;
    unsigned finishedRows = 0;
    /** Rows of the checklist, 0 without one. */
    unsigned allRows = 0;
    /** Milliseconds of the device's clock since the run began, and those that are left by what
     *  earlier runs took; -1 for unknown. */
    int64_t elapsedMs = 0;
    int64_t leftMs = -1;
    /** Milliseconds of this computer's clock since the log last grew. */
    int64_t silentMs = 0;
    bool started = false;
    bool over = false;
    /** The last rows that failed, the newest last: "MODULE/CASE: failed check". */
    std::deque<std::string> failures;
};

/** Reads what is new in a run's log. One thread at a time. */
class Follower {
 public:
    /** `folder` holds the run's console.log, which may come later, and where they are there its
     *  checklist.xls and the durations of earlier runs, or the latter in the file `durations`.
     *  Throws Error. */
    Follower(const std::filesystem::path& folder, const std::filesystem::path& durations);
    ~Follower();
    Follower(const Follower&) = delete;
    Follower& operator=(const Follower&) = delete;

    /** Reads on. A log that was replaced or emptied is read from its beginning. */
    void poll();
    const Progress& progress() const {
        return progress_;
    }

 private:
    void reopen();
    void begin();
    void takeLine(std::string_view line);
    void takeStart(const LogEvent& event);
    void takeEnd(const LogEvent& event);
    void finish(const std::string& module, unsigned number, const std::string& name);
    void estimate();

    std::filesystem::path log_;
    int fd_ = -1;
    std::string rest_;
    int64_t grownAtMs_ = 0;
    Durations learnt_;
    Checklist checklist_;
    /** What is still to run and how long it took earlier, as far as that is known. */
    Durations ahead_;
    std::set<std::pair<std::string, unsigned>> finished_;
    Progress progress_;
    std::string running_;
    unsigned runningNumber_ = 0;
    std::string failure_;
    int64_t baseUs_ = 0;
    int64_t nowUs_ = 0;
    bool stamped_ = false;
};

/** For a terminal: lines of text. */
std::string textOf(const Progress& progress);
/** One JSON object, described in docs/report.md. */
std::string jsonOf(const Progress& progress);
/** A page that brings itself up to date. */
std::string htmlOf(const Progress& progress);

/** Where the page is served. */
struct HttpAddress {
    std::string host = "127.0.0.1";
    /** 0: any that is free. */
    int port = 0;
};
/** Reads "PORT", "ADDRESS:PORT" or "[ADDRESS]:PORT"; false for anything else. */
bool readHttpAddress(const std::string& text, HttpAddress* address);

/** Follows a run on standard output, and at `http` when it is not null, until the run is over, or
 *  with `http` until the process is interrupted. `once`: tells how far it is and returns.
 *  Throws Error. */
void watch(const std::filesystem::path& folder, const std::filesystem::path& durations,
           const HttpAddress* http, bool once);

}  // namespace report

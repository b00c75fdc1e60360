// A run of the program as its files tell it: the report workbook, and where they are there the
// checklist workbook, the console's log and durations recorded earlier.
//
// The report alone decides what a verdict is. The log adds reasons, durations and the restarts of
// the device; the checklist adds the rows that never came into the report.
#pragma once

#include <stdint.h>

#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace report {

/** Input that cannot be used. The message begins with the file's name and says what is wrong. */
struct Error : std::runtime_error {
    using std::runtime_error::runtime_error;
};

enum class Verdict {
    Pass,
    Fail,
    NotApplicable,
    Block,
    NoMatch,
    Manual,
    /** In the checklist and not in the report. */
    Missing,
};
constexpr int verdictCount = 7;

/** The report's own word: "Pass", "Fail", "N/A", "Block", "NoMatch", "Manual"; "Missing". */
const char* verdictWord(Verdict verdict);

/** The last that the log says of a row. */
enum class Told {
    Nothing,
    Skipped,
    /** It has started; of its end there is no word. */
    Started,
    Success,
    Failed,
    Unsupported,
};

/** What the expectations say of a row. */
enum class Expected {
    Nothing,
    /** It fails, and was expected to. */
    KnownFailure,
    /** It was expected to fail and did not. */
    UnexpectedPass,
    /** It fails, and the expectation has run out. */
    Expired,
};

struct Row {
    /** Number in the sheet, from 1. */
    unsigned id = 0;
    std::string name;
    /** Column "Test" is "Y". */
    bool marked = false;
    Verdict verdict = Verdict::Missing;
    /** From the checklist, else empty. */
    std::string description;
    /** Why the row is what it is, as far as the files tell; empty for a row that passed. */
    std::string reason;
    /** The device went down, or its start was missed, while this row ran. */
    bool tookDeviceDown = false;
    Told told = Told::Nothing;
    /** The log has "FAILED" for a row whose verdict the report lost at a restart. */
    bool lostFailure = false;
    /** Milliseconds, -1 when nothing tells them. */
    int64_t durationMs = -1;
    /** Milliseconds of the device's clock since the log's first line, -1 when unknown. */
    int64_t startMs = -1;
    /** The row's lines in Run::log; the same when there are none. */
    size_t logBegin = 0;
    size_t logEnd = 0;
    Expected expected = Expected::Nothing;
    /** The expectation's reason, for every value but Nothing. */
    std::string expectedReason;

    /** Whether somebody has to look at this row: it failed, or was not brought to an end. */
    bool bad() const;
};

struct Module {
    std::string name;
    std::vector<Row> rows;
    /** Why the module has no sheet in the report; empty when it has one. */
    std::string absence;
};

/** The device, or the program alone, was started again in the middle of a run. */
struct Restart {
    /** Milliseconds of the device's clock since the log's first line. */
    int64_t atMs = 0;
    /** The row that was running: indices into Run::modules and its rows; -1 for none. */
    int module = -1;
    int row = -1;
    std::string cause;
};

struct Run {
    /** What it is called in the forms: the folder's or the file's name. */
    std::string name;
    std::vector<Module> modules;
    std::vector<Restart> restarts;
    std::string log;
    bool hasLog = false;
    bool hasChecklist = false;
    /** The log has the monitor's word that the run is over. */
    bool logSaysOver = false;
    /** The whole run on the device's clock, -1 when unknown. */
    int64_t durationMs = -1;
    /** When the report was written last, seconds since 1970. */
    int64_t writtenAt = 0;
    /** Doubts about the files that a reader should know, each a sentence. */
    std::vector<std::string> notes;

    unsigned count(Verdict verdict) const;
    unsigned rowCount() const;
    /** Every row is in the report and none is left running. */
    bool complete() const;
    /** The first 'rows' bytes of a row's log; an empty view without a log. */
    std::string_view logOf(const Row& row) const {
        return std::string_view(log).substr(row.logBegin, row.logEnd - row.logBegin);
    }
};

/** The files of one run. An empty path: there is none. */
struct Inputs {
    std::filesystem::path report;
    std::filesystem::path checklist;
    std::filesystem::path log;
    std::filesystem::path durations;
};

/** The files of `path`: a folder as a run leaves it (report.xls, checklist.xls, console.log,
 *  .bench/durations, each but the first only where it is there), or a report alone.
 *  Throws Error when there is neither. */
Inputs inputsOf(const std::filesystem::path& path);

/** Reads a run. Throws Error. */
Run readRun(const Inputs& inputs);

/** The sheets of a report workbook, in its order. Throws Error. */
std::vector<Module> readReport(const std::filesystem::path& path);

struct Checklist {
    std::vector<Module> modules;
    /** The texts of the cover's first column. */
    std::vector<std::string> cover;
};
/** The rows of a checklist workbook. What the program never reads, a sheet's last row and all below
 * a row without a name, is left out but for rows that are marked; those have their reason. Throws
 *  Error. */
Checklist readChecklist(const std::filesystem::path& path);

/** The whole content of a file. Throws Error. */
std::string readFile(const std::filesystem::path& path);

}  // namespace report

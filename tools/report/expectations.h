// What a board is known to fail: a JSON file with, for each case or pattern, a reason and a day on
// which the excuse ends. docs/report.md describes it.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tools/report/run_data.h"

namespace report {

struct Expectation {
    /** "MODULE/CASE" or "CASE", with '*', '?' and '[...]' as in a shell. */
    std::string pattern;
    std::string reason;
    /** The last day on which it holds, "YYYY-MM-DD". */
    std::string until;
};

struct Expectations {
    std::string board;
    std::vector<Expectation> list;
};

/** Reads a file of expectations. Throws Error. */
Expectations readExpectations(const std::filesystem::path& path);

/** What the expectations say of a run as a whole. Texts are lines for people. */
struct Judgement {
    std::vector<std::string> newFailures;
    std::vector<std::string> knownFailures;
    std::vector<std::string> unexpectedPasses;
    /** Expectations that have run out, whether or not the case still fails. */
    std::vector<std::string> expired;
    /** Expectations that no row of the run matches. */
    std::vector<std::string> unused;

    /** Nothing in it that somebody has to act on now. */
    bool good() const {
        return newFailures.empty() && expired.empty();
    }
};

/** Marks the run's rows (Row::expected) and tells the result. The first expectation that matches a
 *  row counts. `today` is "YYYY-MM-DD". */
Judgement judge(const Expectations& expectations, const std::string& today, Run* run);

/** The day of this computer's clock, in universal time, as "YYYY-MM-DD". */
std::string today();

/** Whether `text` is a day of the calendar as "YYYY-MM-DD". */
bool isDay(const std::string& text);

}  // namespace report

// Two or more runs of the same cases side by side: what has got worse, what better.
#pragma once

#include <string>
#include <vector>

#include "tools/report/run_data.h"

namespace report {

/** A case over all runs. */
struct Change {
    std::string module;
    std::string name;
    /** One for each run; Missing where the run does not have the row. */
    std::vector<Verdict> verdicts;
    /** One for each run, -1 where unknown. */
    std::vector<int64_t> durationsMs;
    /** Of the last run that says one. */
    std::string reason;
};

struct Comparison {
    std::vector<std::string> runs;
    /** Bad in the last run, good in the first, with one change between. */
    std::vector<Change> newFailures;
    /** Good in a run before and neither in the last run's report nor left out by its checklist. */
    std::vector<Change> lost;
    /** The other way round. */
    std::vector<Change> fixed;
    /** Another verdict that is neither. */
    std::vector<Change> changed;
    /** Good and bad by turns. */
    std::vector<Change> flaky;
    std::vector<Change> slower;
    /** Bad in every run. */
    unsigned stillBad = 0;
    unsigned same = 0;

    bool hasNewFailure() const {
        return !newFailures.empty() || !lost.empty();
    }
};

/** What counts as slower: more than `factor` times the median of the runs before, and more than
 *  `atLeastMs` longer. */
struct Slower {
    double factor = 1.5;
    int64_t atLeastMs = 1000;
};

/** Compares at least two runs, the oldest first. Rows are the same when module and case are; the
 *  n-th of a name goes with the n-th. */
Comparison compare(const std::vector<Run>& runs, const Slower& slower);

/** For people. */
std::string textOf(const Comparison& comparison);
/** One JSON object, described in docs/report.md. */
std::string jsonOf(const Comparison& comparison);

}  // namespace report

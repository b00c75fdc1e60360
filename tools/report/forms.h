// The forms in which other programs take a run. docs/report.md describes each of them.
#pragma once

#include <string>
#include <string_view>

#include "tools/report/run_data.h"

namespace report {

/** JUnit XML: a suite a module, a test case a row. */
std::string junitOf(const Run& run);
/** JSON Lines: the run, a line for each restart and each row, and an end line with their count. */
std::string jsonLinesOf(const Run& run);
/** Test Anything Protocol, version 13. */
std::string tapOf(const Run& run);
/** Signals that a LAVA test shell takes from its output. */
std::string lavaOf(const Run& run);
/** Common Test Report Format. */
std::string ctrfOf(const Run& run);

/** Durations learnt from the run, "MILLISECONDS MODULE/CASE" a line. */
std::string durationsOf(const Run& run);

/** The first line of a row's log that tells of a failed check, without colours; empty for none. */
std::string failureLine(const Run& run, const Row& row);

/** The row's log, at most about `limit` bytes of it: whole lines of its beginning and its end, and
 *  between them a line that says how many were left out. */
std::string excerpt(const Run& run, const Row& row, size_t limit);

}  // namespace report

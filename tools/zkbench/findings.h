/* What a run's report leaves untold: marked rows without a verdict, and rows whose N/A means more.
 */
#ifndef TOOLS_ZKBENCH_FINDINGS_H
#define TOOLS_ZKBENCH_FINDINGS_H

#include <string>
#include <vector>

#include "tools/report/run_data.h"

/** Marked rows of one sheet that follow each other and share a reason. */
struct RowRange {
    std::string sheet;
    unsigned first; /**< number of the first row, from 1 */
    unsigned last;
    unsigned rows; /**< marked rows among them */
    std::string firstName;
    std::string reason;
};

struct Findings {
    /** Rows without a verdict: a run that has one is not complete. */
    std::vector<RowRange> missing;
    /** Rows whose case took the device down. */
    std::vector<RowRange> tookDown;
    /** Rows that ended with a verdict, which a restart turned into "N/A". */
    std::vector<RowRange> lost;
};

/** Looks for such rows. `run` has its checklist and its log. */
Findings findUntold(const report::Run& run);

/** Rows of all ranges. */
unsigned countRows(const std::vector<RowRange>& ranges);

/** One line for people: "GPIO 3 TC_GPIO_GetValue_003: reason", or "I2C 1-31 (29 rows): reason". */
std::string describe(const RowRange& range);

#endif

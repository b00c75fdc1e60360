/* What the workers' results say, against the lists. docs/torture.md lists the report's words. */
#ifndef TOOLS_TORTURE_JUDGE_H
#define TOOLS_TORTURE_JUDGE_H

#include <filesystem>
#include <string>
#include <vector>

#include "tools/torture/lists.h"

namespace torture {

/** A subject and the file of its results, which ends with "done". */
struct Result {
    Subject subject;
    std::filesystem::path file;
};

/** Whether a file of results is complete. */
bool isDone(const std::filesystem::path& file);

struct Judging {
    Lists* lists;
    /** The folder of the profiles, a file a module; to be written anew when `write` says so. */
    std::filesystem::path members;
    bool write = false;
    /** Whether all cases took part, so that a line of a list that nothing needs is wrong. */
    bool whole = false;
    /** The same of each module: profiles of cases that there are no more are then wrong. */
    bool wholeModules = false;
    std::filesystem::path report;
};

/** Judges all results, in the order of the modules: writes what is wrong into the report, and
 * prints a table by module. Returns whether nothing is wrong. */
bool judge(const std::vector<Result>& results, const Judging& judging);

}  // namespace torture

#endif

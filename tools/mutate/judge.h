/* What tests a module: programs that answer 0 while no mutant stands. */
#ifndef TOOLS_MUTATE_JUDGE_H
#define TOOLS_MUTATE_JUDGE_H

#include <filesystem>
#include <string>
#include <vector>

#include "tools/common/process.h"

struct Judge {
    /** "golden TC_GPIO_GetValue_001", "modules PmModule". */
    std::string name;
    /** What it tests, to be found in the row of a table: the case's name. */
    std::string subject;
    /** The mutated program that it runs; empty when it may run any. */
    std::string program;
    /** "{bin}" stands for the folder of the programs. */
    Words command;
    /** What it took without a mutant. */
    double seconds;
    /** The points that it passes, by id. */
    std::vector<bool> reached;
};

/** Where a judge runs: the tree is read-only to it but for its own folder. */
struct Room {
    std::filesystem::path source;
    std::filesystem::path bin;
    /** A worker's own, emptied after each run. */
    std::filesystem::path scratch;
};

struct Outcome {
    int status;
    bool late;
    double seconds;
    /** The beginning of what it printed. */
    std::string text;
};

/**
 * Runs a judge. `mutant` 0 for none; `reach` a file for the points that it passes, or empty.
 * A run of more than `limit` seconds is ended with all its children, and is late.
 */
Outcome runJudge(const Judge& judge, const Room& room, unsigned mutant,
                 const std::filesystem::path& reach, double limit);

#endif

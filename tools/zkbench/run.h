/* The run itself: starts the program until its run is over, as a rack around a device does. */
#ifndef TOOLS_ZKBENCH_RUN_H
#define TOOLS_ZKBENCH_RUN_H

#include <filesystem>
#include <string>
#include <vector>

#include "tools/report/run_data.h"
#include "tools/zkbench/bench_folder.h"

struct RunOptions {
    /** Folder of the built programs. */
    std::filesystem::path build;
    /** What the program reads on its standard input. */
    std::filesystem::path input = "/dev/null";
    /** Of the order of threads in virtual time; empty: first come, first served. */
    std::string seed;
    bool realTime = false;
    bool resume = false;
    bool quiet = false;
    /** How often the device may be restarted. */
    unsigned restarts = 50;
    /** Real seconds without a word of the program after which it is ended; 0: never. The monitor
     *  says something after five minutes in any case, where there is one. */
    unsigned silenceS = 420;
};

/**
 * Runs to the end, and keeps the console in console.log. The working directory is the bench folder.
 * @param checklist  what is to run
 * @return empty when the run was completed; else why not, one or more lines for people
 */
std::string runToTheEnd(const RunOptions& options, const RunFiles& files,
                        const report::Checklist& checklist);

#endif

/*
 * The bench folder: what the program finds in its working directory, as a rack's installation would
 * have laid it out. The runner's working directory is the bench folder; all paths are relative to
 * it.
 *
 *     config/         the shipped configuration
 *     checklist.xls, report.xls, console.log
 *     reboot.sh       restarts the simulated device
 *     device/         storage of the simulated device
 *     stream/ts       link to the streams of the line-up
 *     .bench/         what the runner remembers
 *
 * What the runner did not write itself, or what was changed since, is the user's: it is never
 * replaced, and what is replaced is said first.
 */
#ifndef TOOLS_ZKBENCH_BENCH_FOLDER_H
#define TOOLS_ZKBENCH_BENCH_FOLDER_H

#include <filesystem>
#include <string>
#include <vector>

/** The workbooks' names, which the configuration gives, and the console's. */
struct RunFiles {
    std::string checklist;
    std::string report;
    std::string console = "console.log";
};

/** Takes the folder for this process and what it starts. Returns "", or who has it. */
std::string lockFolder();

/** Brings configuration, reboot command and device storage into the folder. `project` holds the
 *  shipped config. Throws std::filesystem::filesystem_error. */
void layOut(const std::filesystem::path& project);

/** What the folder's configuration calls the workbooks; empty where it names none. */
RunFiles configuredFiles();

/** Brings a fresh checklist, written to `fresh`, to its place. False when there is one that is the
 *  user's own, which stays. */
bool bringChecklist(const std::filesystem::path& fresh, const std::string& name);

/** Renames an earlier run's files out of the way, to "last-...", and says so. */
void putAside(const std::vector<std::string>& names);

/** Remembers that these files are the runner's own as they are now. */
void rememberOwn(const std::vector<std::string>& names);

#endif

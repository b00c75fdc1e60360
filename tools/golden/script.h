/*
 * What an operator does while a case runs, read from a file a module:
 *
 *     TC_TUNER_CheckLockStatus_001: pulls the right cable
 *         ! cable 0 out
 *         >
 *         ! cable 0 in
 *         >
 *     TC_TUNER_CheckLockStatus_001: forgets to put it back
 *         ! cable 0 out
 *         >
 *         >
 *
 * A case may have several scripts, and needs none: its input then ends at once. "> TEXT" is a line
 * that is typed when the program asks for one, "! EVENT" an event of the outside world
 * (docs/simulator-events.md) that comes before the next line is typed; "* EVENT" is one that comes
 * before the case begins. Behind the last line the input ends. '#' begins a comment line.
 */
#ifndef TOOLS_GOLDEN_SCRIPT_H
#define TOOLS_GOLDEN_SCRIPT_H

#include <filesystem>
#include <map>
#include <string>
#include <vector>

struct Script {
    std::string title;
    /** Events before the case begins. */
    std::vector<std::string> before;
    /** Lines "> TEXT" and "! EVENT" in their order. */
    std::vector<std::string> steps;
};

/** The scripts of each case of a module's file, empty when there is no such file. False with a
 *  message in `error` when a line cannot be read. */
bool loadScripts(const std::filesystem::path& path,
                 std::map<std::string, std::vector<Script>>* scripts, std::string* error);

#endif

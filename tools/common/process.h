/* Programs that the tools start. */
#ifndef TOOLS_COMMON_PROCESS_H
#define TOOLS_COMMON_PROCESS_H

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

using Words = std::vector<std::string>;

/** The running program's file; the other built programs lie beside it. */
std::filesystem::path programFile();

/** The words that start `program` in virtual time, with the launcher of the folder `build`, and
 *  options of the launcher. */
Words inVirtualTime(const std::filesystem::path& build, const Words& options, const Words& program);

/** Becomes a program, in a child that was made for it. Says so and ends with
 *  EXIT_NOT_FOUND or EXIT_CANNOT_RUN when it cannot. */
[[noreturn]] void become(const Words& program);

/** In a child just made by `parent`: it gets `signal` when that one ends, however it ends. */
void endWith(pid_t parent, int signal);

/** Runs a program to its end; it ends when this one does. Returns its exit status; 128 and the
 * signal's number when one ended it. */
int runProgram(const Words& program);

#endif

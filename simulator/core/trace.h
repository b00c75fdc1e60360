/* Where the lines of the call trace go: the file that QLX_SIM_TRACE names, and a test's record. */
#ifndef SIMULATOR_CORE_TRACE_H
#define SIMULATOR_CORE_TRACE_H

#include <string>

namespace sim {

/** Whether anybody reads the trace. */
bool tracing();

/** Writes one line, with time and thread before it, by a single write, so that it survives the
 *  process. */
void traceLine(const std::string& text);

/** Starts keeping the lines in memory, forgetting the last ones, or stops. */
void recordTrace(bool on);
std::string recordedTrace();

}  // namespace sim

#endif

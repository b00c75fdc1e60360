/* Where the lines of the call trace go: the file that QLX_SIM_TRACE names, and a test's record. */
#ifndef SIMULATOR_CORE_TRACE_H
#define SIMULATOR_CORE_TRACE_H

#include <string>
#include <vector>

#include "simulator/core/record.h"

namespace sim {

/** Whether anybody reads the trace. */
bool tracing();

/** Writes one line, with time and thread before it, by a single write, so that it survives the
 *  process. */
void traceLine(const std::string& text);

/** Starts keeping the lines in memory, forgetting the last ones, or stops. */
void recordTrace(bool on);
std::string recordedTrace();

/** Notes the members of what a call or callback hands out, while lines are kept. */
void noteHandedOut(const char* name, const std::vector<Value>& values);
/** A line for each of them, "NAME MEMBER value|mark zero|set". */
std::string handedOut();

}  // namespace sim

#endif

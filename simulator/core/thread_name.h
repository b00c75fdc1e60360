/* Names of threads in traces: a device thread's own, "T1", "T2", ... for the program's. */
#ifndef SIMULATOR_CORE_THREAD_NAME_H
#define SIMULATOR_CORE_THREAD_NAME_H

#include <string>

namespace sim {

/** Names the calling thread; the name must be a literal. */
void setThreadName(const char* name);

/** The calling thread's name. The program's threads are numbered by their first call. */
const std::string& threadName();

}  // namespace sim

#endif

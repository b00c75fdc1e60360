/* Faults of the device: their lines, and which of them act on a call or callback. */
#ifndef SIMULATOR_CORE_FAULT_H
#define SIMULATOR_CORE_FAULT_H

#include <stdint.h>

#include <string>
#include <vector>

#include "simulator/core/record.h"

namespace sim {

/** What the faults do to one call or callback. */
struct FaultEffect {
    int64_t delayMs = 0;
    bool refuse = false;
    int32_t code = 0;
    bool hang = false;
    bool kill = false;
    bool drop = false;
    int repeat = 0;
    struct Corruption {
        size_t offset;
        uint8_t value;
    };
    std::vector<Corruption> corruptions;
    bool scramble = false;
    bool blank = false;
    /** A member, and what is done to it. */
    struct MemberChange {
        enum { flip, zero, set, add } kind;
        std::string path;
        std::string word;
    };
    std::vector<MemberChange> members;
};

/** Parses a line and adds the fault; false, with the reason in `error`, for a line that is none. */
bool addFault(const std::string& line, std::string* error);
void clearFaults();
unsigned faultsActed();

/** Whether a fault looks at the arguments of calls. */
bool faultsReadArguments();

/** Counts a call or callback of that name, and collects what the faults do to it.
 *  @param arguments  as the trace tells them: words such as "filter=2" */
FaultEffect faultsOn(const char* name, const std::string& arguments);

/** Reads the file that QLX_SIM_FAULTS names, once. */
void loadFaultFile();

/** Does to the values of a call or callback what the faults say, and complains of members that
 *  none of them has. */
void corrupt(const FaultEffect& effect, const char* name, const std::vector<Value>& values);

/** Never returns: a call that hangs, or a process that dies. */
[[noreturn]] void hangForever();
[[noreturn]] void dieAtOnce();

}  // namespace sim

#endif

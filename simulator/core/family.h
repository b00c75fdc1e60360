/* A family of the library, for what is done with all of them: reset, and telling their state. */
#ifndef SIMULATOR_CORE_FAMILY_H
#define SIMULATOR_CORE_FAMILY_H

#include <string>

namespace sim {

struct Family {
    /** Puts the family into its state after power on. No lock of it may be held. */
    void (*reset)();
    /** Appends one line for each thing that is initialised, open, registered or running. */
    void (*describe)(std::string* out);
};

}  // namespace sim

#endif

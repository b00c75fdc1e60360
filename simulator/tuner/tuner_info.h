/* The signal information of a tuner, by what it receives. */
#ifndef SIMULATOR_TUNER_TUNER_INFO_H
#define SIMULATOR_TUNER_TUNER_INFO_H

#include <stdint.h>

#include "platform/qlx_tuner.h"
#include "simulator/tuner/tuner_lock.h"

namespace sim {

/** What is known of a tuner when its signal information is read. */
struct SignalState {
    QLX_TunerTuningParams record;
    Decision decision;
    bool tuned = false;
    /** Of ATSC 3.0: listens to the wake-up bits alone. */
    bool easMode = false;
    /** Milliseconds since the lock. */
    int64_t lockedForMs = 0;
    /** Time of the device's clock in nanoseconds. */
    int64_t timeNs = 0;
    bool highBand = false;
    bool horizontal = false;
};

void fillSignalInfo(const SignalState& state, QLX_TunerSignalInfo* info);

}  // namespace sim

#endif

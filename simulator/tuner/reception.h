/* What each tuner delivers to the demultiplexers. Any thread may call. */
#ifndef SIMULATOR_TUNER_RECEPTION_H
#define SIMULATOR_TUNER_RECEPTION_H

#include <stdint.h>

#include <functional>

#include "simulator/world/air.h"

namespace sim {

/** What a tuner delivers to the demultiplexers. */
struct Reception {
    /** The transport stream flows. */
    bool locked = false;
    /** Where it comes from; null when not locked. */
    TransmitterPtr transmitter;
    /** Another number for each tuning, lock and loss, so that a reader sees what it missed. */
    uint64_t change = 0;
};

Reception receptionOf(uint32_t tuner);

/**
 * Registers a listener for the life of the process. It is called with the tuner's number after its
 * reception has changed, on the thread that changed it, with no lock of the tuners held; it must
 * not call the tuner functions of the library.
 */
void onReceptionChange(std::function<void(uint32_t tuner)> listener);

/**
 * For the tuners: tells what a tuner now receives, null for nothing, and calls the listeners.
 * @param sequence  rises with the tuner's states; one that comes too late is passed over
 */
void setReception(uint32_t tuner, uint64_t sequence, const TransmitterPtr& transmitter);

/** Nothing is received any more; nobody is told. */
void resetReceptions();

}  // namespace sim

#endif

/*
 * Whether a demodulator locks: the tuning record against what comes down the cable.
 */
#ifndef SIMULATOR_TUNER_TUNER_LOCK_H
#define SIMULATOR_TUNER_TUNER_LOCK_H

#include <stdint.h>

#include <vector>

#include "platform/qlx_tuner.h"
#include "simulator/world/air.h"
#include "simulator/world/satellite.h"

namespace sim {

/** What a tuner sees at its connector. */
struct Connector {
    /** Null when the cable is unplugged. */
    const std::vector<TransmitterPtr>* carriers = nullptr;
    const SatelliteAntenna* antenna = nullptr;
    /** Frequency on the cable in kHz; differs from the record's only behind a user band. */
    int64_t cableFrequency = 0;
};

/** What came of a tuning. */
struct Decision {
    uint32_t status = QLX_TUNER_STATUS_UNLOCKED;
    /** The carrier in the tuned channel, locked or not; null when there is none. */
    TransmitterPtr carrier;
    /** Requested frequency less that of the carrier, in kHz. */
    int32_t offset = 0;

    bool locked() const {
        return status != QLX_TUNER_STATUS_UNLOCKED;
    }
};

/** Whether the device knows the system: exactly one bit of the twelve. */
bool knownSystem(uint32_t system);
bool satelliteSystem(uint32_t system);

Decision decideLock(const QLX_TunerTuningParams& record, const Connector& connector);

/** Whether the antenna lets the satellite carrier through: band, polarization and position. */
bool comesFrom(const SatelliteAntenna::Source& source, const Transmitter& transmitter);

/** The pipe of that identifier, null when the multiplex has none. */
const Pipe* findPipe(const Transmitter& transmitter, uint8_t id);

}  // namespace sim

#endif

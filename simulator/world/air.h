/*
 * What is on the air, and which cables are plugged in.
 *
 * The transmitters come from the laboratory's configuration: the frequencies from the channel files
 * (channels of one frequency, and one TS_ID or STREAM_ID, share a transmitter), the parameters from
 * the platform's tuner_config.cfg. The board file gives what a channel file cannot say, for these
 * transmitters and for further ones; docs/board-file.md tells its keys. Events change them while
 * the device runs: "cable N out|in", "air NAME KEY=VALUE ..." (docs/simulator-events.md).
 */
#ifndef SIMULATOR_WORLD_AIR_H
#define SIMULATOR_WORLD_AIR_H

#include <stdint.h>

#include <memory>
#include <string>
#include <vector>

#include "simulator/world/world.h"

namespace sim {

constexpr uint32_t maxTuners = 8;

/** A physical layer pipe of a DVB-T2 or ATSC 3.0 multiplex. */
struct Pipe {
    uint8_t id;
    uint32_t modulation; /**< QLX_Modulation */
};

/** One carrier. Frequencies in kHz, symbol rates in symbols per second. */
struct Transmitter {
    uint32_t id = 0;     /**< Stays the same when the operator changes the transmitter. */
    uint32_t system = 0; /**< QLX_TransmissionSystem; changes with the modulator's setting. */
    /** The system of the channel file that tells it, by which the operator names it. */
    uint32_t listedSystem = 0;
    uint32_t frequency = 0;         /**< As tuned: at the tuner's input. */
    uint32_t tsId = 0;              /**< ISDB-S */
    uint32_t streamId = 0;          /**< ISDB-S3 */
    std::vector<uint32_t> channels; /**< Places in the system's channel file; none: not in it. */
    std::string stream;             /**< Stream file of the board file; empty: that of channels. */

    bool on = true;
    uint32_t modulation = 0;
    uint32_t symbolRate = 0;
    uint32_t spectrum = 0;
    uint32_t bandWidth = 0;
    uint32_t fecType = 0;
    uint32_t fecRate = 0;
    uint32_t guardInterval = 0;
    uint32_t transmissionMode = 0;
    uint32_t hierarchy = 0;
    uint32_t priority = 0;
    uint32_t cellId = 0;
    uint32_t networkId = 0;
    uint32_t systemId = 0; /**< DVB-T2 system, ATSC 3.0 broadcast stream identifier. */
    std::vector<Pipe> pipes;
    uint32_t wakeUpBits = 0; /**< ATSC 3.0 emergency alert wake-up, 0 to 3. */

    bool horizontal = false;
    bool highBand = false;
    uint32_t position = 0; /**< Input of the DiSEqC switch, from 0. */

    double levelDbm = 0; /**< At the tuner's connector. */
    double noiseDb = 0;  /**< Carrier to noise that the generator adds; 0: no noise added. */
    /** Power of the receiver's own noise in this channel; 0: that of its bandwidth. */
    double noiseFloorDbm = 0;
    /** How far the front end's estimate of the level is off in this channel. */
    double strengthOffset = 0;
};

using TransmitterPtr = std::shared_ptr<const Transmitter>;

/** The transmitters that are on at the moment. Any thread may call. */
std::vector<TransmitterPtr> transmittersOnAir();

/** Whether the tuner's cable is plugged in. */
bool cablePlugged(uint32_t tuner);

/** "DVB-T" and the like, and back; 0 and "" for none. */
uint32_t systemOfName(const std::string& name);
const char* nameOfSystem(uint32_t system);

/** The keys of a transmitter, in board files and in events. */
std::vector<std::string> transmitterKeyNames();

}  // namespace sim

#endif

/*
 * Analog television stations on the air.
 *
 * Their picture carriers are those of channel_atv.cfg, their standards those of section ATV of the
 * platform's tuner_config.cfg. Section ATV of the board tells the rest of all, sections like
 * ATV/471250 of one. Events: "station FREQUENCY KEY=VALUE ..." (docs/simulator-events.md).
 */
#ifndef SIMULATOR_WORLD_STATIONS_H
#define SIMULATOR_WORLD_STATIONS_H

#include <stdint.h>

#include <vector>

namespace sim {

struct Station {
    uint32_t frequency = 0; /**< Picture carrier as planned, kHz. */
    bool on = true;
    int32_t offset = 0;  /**< By how much the carrier lies above the planned one, kHz. */
    double levelDbm = 0; /**< Of the picture carrier at the tuner's connector. */
    uint32_t audio = 0;  /**< QLX_AnalogAudioStandard */
    uint32_t color = 0;  /**< QLX_AnalogColorStandard */
    uint32_t sound = 0;  /**< QLX_SndOutMode: what its sound carriers bring. */
    uint32_t toneHz = 0; /**< Of its sound. */
    int32_t carrier() const {
        return static_cast<int32_t>(frequency) + offset;
    }
};

/** The stations that are on, by the channel table. Any thread may call. */
std::vector<Station> stationsOnAir();

}  // namespace sim

#endif

/*
 * What a front end makes of level and carrier to noise: percent of strength and quality.
 */
#ifndef SIMULATOR_TUNER_TUNER_CURVES_H
#define SIMULATOR_TUNER_TUNER_CURVES_H

#include <stdint.h>

#include "simulator/world/air.h"

namespace sim {

/** Carrier to noise in dB at the demodulator: the generator's noise and the receiver's own. */
double carrierToNoise(const Transmitter& transmitter);

/** Percent, 0 to 100. */
uint32_t signalStrength(const Transmitter& transmitter);
int32_t signalQuality(const Transmitter& transmitter);

/** Whether the carrier is strong and clean enough for a demodulator to hold on to it. */
bool carrierHolds(const Transmitter& transmitter);

}  // namespace sim

#endif

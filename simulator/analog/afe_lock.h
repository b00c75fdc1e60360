/* What an analog front end makes of the stations on its cable. */
#ifndef SIMULATOR_ANALOG_AFE_LOCK_H
#define SIMULATOR_ANALOG_AFE_LOCK_H

#include <stdint.h>

#include <vector>

#include "simulator/world/stations.h"

namespace sim {

struct AnalogLock {
    /** The intermediate frequency stage has found a picture carrier. */
    bool vif = false;
    /** The video decoder has found its synchronisation. */
    bool video = false;
    /** QLX_AfcDistance; of no meaning without a carrier. */
    uint32_t afc = 0;
    /** The station; holds with `vif`. */
    Station station;
};

/** Decides at a tuned frequency in kHz: the station whose carrier is nearest counts. */
AnalogLock decideAnalogLock(uint32_t frequency, const std::vector<Station>& stations);

/** The discriminator's answer to a distance from the carrier in kHz, negative when the tuning lies
 *  below it: QLX_AfcDistance. */
uint32_t afcDistance(int32_t distance);

/** The sound system of a station with what its sound carriers bring: QLX_AnalogAudioStandard.
 * Before that is known, only the distance of the carriers from the picture tells, which is `audio`.
 */
uint32_t soundSystemOf(const Station& station);

}  // namespace sim

#endif

/* The audio outputs as the device's other families see them, and what they play. */
#ifndef SIMULATOR_OUTPUT_AOUT_H
#define SIMULATOR_OUTPUT_AOUT_H

#include <stdint.h>

#include "simulator/media/picture.h"

namespace sim {

/** Whether the service of the audio outputs runs, whose clocks sound processing needs. Any thread
 *  may call. */
bool audioOutputsRun();

/** How a sink plays. */
struct SinkView {
    bool open = false;
    bool muted = true;
    uint32_t volume = 0; /**< 0 to 100. */
    bool description = false;
    uint32_t descriptionVolume = 0; /**< 0 to 100. */
};

SinkView sinkView(uint32_t output);

/** What a sink plays from now on when nothing changes: all decoders that play, mixed. Silence when
 *  there is none, or the sink is shut. @param durationUs  at most 60 s */
Sound composeSound(uint32_t output, int64_t durationUs);

}  // namespace sim

#endif

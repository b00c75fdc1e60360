/*
 * What sources without coded data play: colour bars with the source's name and a running time, so
 * that a person sees which one is on the screen, and a tone.
 */
#ifndef SIMULATOR_WORLD_TEST_SIGNAL_H
#define SIMULATOR_WORLD_TEST_SIGNAL_H

#include <stdint.h>

#include "simulator/media/picture.h"
#include "simulator/world/signal_source.h"

namespace sim {

/**
 * The frame of a source at a time of the monotonic clock, in its size; empty when it is not locked.
 * Eight bars of 75 % (white, yellow, cyan, green, magenta, red, blue, black) stand above; in the
 * lowest quarter name and time, hours to frames, white on black.
 */
Picture testPicture(const SignalSource& source, int64_t atUs);

/** What it sounds like from a time on; empty without sound. The tone runs through: two calls one
 *  behind the other join without a step. */
Sound testSound(const SignalSource& source, int64_t fromUs, int64_t durationUs);

}  // namespace sim

#endif

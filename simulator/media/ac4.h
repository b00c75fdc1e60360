/*
 * AC-4 (ETSI TS 103 190): frames, and what their table of contents tells. No decoder is at hand
 * that makes sound of them.
 */
#ifndef SIMULATOR_MEDIA_AC4_H
#define SIMULATOR_MEDIA_AC4_H

#include "simulator/media/es_index.h"
#include "simulator/media/es_reader.h"

namespace sim {

/** Fills `units` and `changes`. A frame whose table of contents cannot be read is damaged. */
void indexAc4(const Es& es, AudioIndex* index);

}  // namespace sim

#endif

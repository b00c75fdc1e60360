/* Indexes of pictures and sound beside a stream, as the simulated device keeps them. */
#ifndef TOOLS_MKSTREAMS_INDEXER_H
#define TOOLS_MKSTREAMS_INDEXER_H

#include <stdint.h>

#include <string>

#include "simulator/media/format.h"
#include "tools/mkstreams/line_up.h"

namespace mkstreams {

/** A format of the channel files as the device calls it. */
sim::VideoCoding codingOf(VideoFormat format);
sim::AudioCoding codingOf(AudioFormat format);

/** Whether that is an index file of this version, and sound. */
bool hasIndex(const std::string& indexPath);

/** Makes the index of a stream file, for all pictures and sound of its channels. False when there
 * is none afterwards, or a component does not decode. */
bool makeIndex(const std::string& path, uint32_t packetTicks, const Multiplex& multiplex);

}  // namespace mkstreams

#endif

/*
 * What decoders find in streams that grow (simulator/stream/live_stream.h): PES packet by PES
 * packet, as they are whole. A picture has to begin with its PES packet.
 *
 * What was found in a PES packet is kept by its content, so that a recording that is played again
 * costs nothing, and in a file beside the streams, for devices without a decoder.
 */
#ifndef SIMULATOR_MEDIA_LIVE_INDEX_H
#define SIMULATOR_MEDIA_LIVE_INDEX_H

#include <stdint.h>

#include <memory>
#include <string>

#include "simulator/media/es_index.h"
#include "simulator/media/es_reader.h"
#include "simulator/stream/live_stream.h"

namespace sim {

/** The index of what a view of a stream brings, and of what came before it. Null without a decoder.
 *  Any thread may call. */
std::shared_ptr<const VideoIndex> liveIndex(const LiveStream& stream, uint16_t pid,
                                            VideoCoding coding);
std::shared_ptr<const AudioIndex> liveIndex(const LiveStream& stream, uint16_t pid,
                                            AudioCoding coding);

/** The file that keeps what was found in PES packets, in a folder of streams, without its suffix
 *  ".index": path of the origin of streams that grow. */
std::string pieceOrigin(const std::string& folder);

/** All that was found by now, as such a file. */
std::string writePieces();

/** Decodes an elementary stream; false when there is no decoder (index_store.cpp). */
bool makeUnits(const Es& es, VideoCoding coding, VideoIndex* index);
bool makeUnits(const Es& es, AudioCoding coding, AudioIndex* index);

}  // namespace sim

#endif

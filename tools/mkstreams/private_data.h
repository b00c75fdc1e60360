/* Subtitles, captions, teletext and private data as PES packets. */
#ifndef TOOLS_MKSTREAMS_PRIVATE_DATA_H
#define TOOLS_MKSTREAMS_PRIVATE_DATA_H

#include <functional>
#include <string>

#include "tools/mkstreams/bytes.h"

namespace mkstreams {

/** Data that repeats in cycles of several pieces, each a PES packet. A loop holds a multiple of 16
 *  cycles, and a piece has the same size in each, so that packets per loop come out right. */
struct PrivateSource {
    std::string name; /**< tells it from other sources */
    size_t cycles;    /**< in a loop */
    size_t piecesPerCycle;
    /** The PES packet of a piece, to be presented at pts, 27 MHz ticks. */
    std::function<Bytes(size_t cycle, size_t piece, int64_t pts)> packet;
};

/** DVB subtitles (EN 300 743): a box is shown, then taken away. `which` tells languages apart. */
PrivateSource subtitleSource(size_t which);

/** Captions of ISDB (ARIB STD-B24): management data, then a statement. */
PrivateSource captionSource(size_t which);

/** EBU teletext (EN 300 472): page 100. */
PrivateSource teletextSource();

/** Data of no standard's meaning, in private_stream_1. */
PrivateSource dataSource();

/** A PES packet with its time stamps, 27 MHz ticks; equal ones are written once. */
Bytes pesPacket(uint8_t streamId, int64_t pts, int64_t dts, const Bytes& data);

}  // namespace mkstreams

#endif

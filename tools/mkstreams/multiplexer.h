/*
 * The multiplexer: sections and elementary streams become transport packets at a constant rate
 * (ISO/IEC 13818-1).
 *
 * The result is one loop, meant to be played again and again. Packet i is on the air at i times
 * packetTicks of the 27 MHz clock, and the PCR counts just that from 0. Everything is arranged so
 * that the next loop continues this one when the loop's duration is added to its time stamps: no
 * section and no PES packet runs over the end, and each PID has a multiple of 16 packets with
 * payload, so that the continuity counters run on by themselves.
 */
#ifndef TOOLS_MKSTREAMS_MULTIPLEXER_H
#define TOOLS_MKSTREAMS_MULTIPLEXER_H

#include <string>
#include <vector>

#include "tools/mkstreams/bytes.h"
#include "tools/mkstreams/section.h"

namespace mkstreams {

static const int64_t ticksPerMs = 27000; /**< of the 27 MHz system clock */
static const int64_t ticksPer90k = 300;
static const size_t packetSize = 188;

/** A PES packet and when it may and must be on its way, in 27 MHz ticks from the loop's start. */
struct Pes {
    Bytes bytes;
    int64_t earliest; /**< not sent before */
    int64_t latest;   /**< the last byte is sent by then */
    bool randomAccess;
};

/** An elementary stream: PES packets in the order of decoding. */
struct PesStream {
    uint16_t pid;
    std::vector<Pes> packets;
};

struct MultiplexInput {
    std::vector<Burst> bursts;
    std::vector<PesStream> streams;
    uint16_t pcrPid;  /**< a stream's PID, or one of its own; 0x1FFF sends no PCR */
    int64_t duration; /**< of the loop, 27 MHz ticks */
};

struct TransportStream {
    Bytes packets; /**< 188 bytes each */
    int64_t packetTicks;
};

/** Times a burst is sent in a loop: a multiple of 16, at least as often as its period says. */
int64_t repetitions(const Burst& burst, int64_t duration);

/** Multiplexes at the given ticks from packet to packet; duration must be a multiple of them.
 *  False when the rate does not carry the input; `error` then says what came too late. */
bool multiplex(const MultiplexInput& input, int64_t packetTicks, TransportStream* stream,
               std::string* error);

/** Multiplexes at the lowest rate of a fixed ladder that carries the input. */
bool multiplexAtFittingRate(const MultiplexInput& input, TransportStream* stream,
                            std::string* error);

}  // namespace mkstreams

#endif

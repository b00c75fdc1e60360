/*
 * The elementary stream of one PID, as a decoder takes it from the demultiplexer: what PES packets
 * carry, in one loop. Nothing is dropped for having been torn, but each place where something is
 * missing is told. What is scrambled or marked as damaged is missing.
 */
#ifndef SIMULATOR_MEDIA_ES_READER_H
#define SIMULATOR_MEDIA_ES_READER_H

#include <stddef.h>
#include <stdint.h>

#include <vector>

#include "simulator/media/es_index.h"
#include "simulator/stream/ts_stream.h"

namespace sim {

struct EsPes {
    /** First byte of its payload in Es::data. */
    size_t offset;
    /** Place in the loop of the packet in which it begins. */
    uint32_t first;
    /** 90 kHz, 33 bits; noStamp: none. */
    uint64_t pts;
};

/** From `offset` on the bytes came in the packet at `place`, at or beyond the packet count when
 * that is in the next loop. */
struct EsMark {
    size_t offset;
    uint32_t place;
};

struct Es {
    std::vector<uint8_t> data;
    /** In the order of their offsets; they begin with the first one of the loop. */
    std::vector<EsPes> pes;
    std::vector<EsMark> marks;
    /** Before these bytes something is missing; ascending. */
    std::vector<size_t> gaps;
};

/** Reads the PID's PES packets that begin in loop 0. */
Es readEs(const TsStream& stream, uint16_t pid);

/** Reads the packets of one PES packet; places are theirs in the list. */
Es readPes(const std::vector<const uint8_t*>& packets);

/** Where a coded picture or a frame of sound lies in the elementary stream, and what is known. */
AccessUnit accessUnitAt(const Es& es, size_t offset, size_t size);

/** Gives the units their presentation time stamps: those that are the first to begin in a PES
 *  packet have its. */
void setStamps(const Es& es, std::vector<AccessUnit>* units);

/** Program clock at the beginning of packet 0, 90 kHz, by the first clock reference of the stream;
 * 0 when it has none. */
uint64_t clockBaseOf(const TsStream& stream);

/** A number that tells the PID's packets and their places from others. */
uint64_t hashOfPid(const TsStream& stream, uint16_t pid);

}  // namespace sim

#endif

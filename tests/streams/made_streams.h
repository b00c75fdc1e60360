// Streams of the shipped configuration tree, as the runner lays them out for all who need them, and
// packets taken from them.
#ifndef TESTS_STREAMS_MADE_STREAMS_H
#define TESTS_STREAMS_MADE_STREAMS_H

#include <string>
#include <vector>

#include "tools/mkstreams/maker.h"

namespace mkstreams {

/** The line-up of config/ in the source tree. */
const LineUp& shippedLineUp();

/** The first multiplex that plays a file; the test ends when there is none. */
const Multiplex& multiplexOf(const std::string& file);

/** The folder of the line-up's streams, with a slash behind it; they are made if need be. */
const std::string& streamFolder();

/** The stream of a file, read on first use. */
const TransportStream& streamOf(const std::string& file);

/** A stream for tests. */
Bytes variantOf(const std::string& name);

/** The tables of a multiplex alone, as a stream: quickly made. */
Bytes tableStreamOf(const Multiplex& multiplex);

/** A view of a packet of a stream. */
struct PacketView {
    const uint8_t* at;
    size_t index;

    unsigned pid() const;
    bool unitStart() const;
    bool hasField() const;
    bool hasPayload() const;
    bool hasPcr() const;
    int64_t pcr() const; /**< 27 MHz ticks */
    unsigned counter() const;
    const uint8_t* payload() const;
    size_t payloadBytes() const;
};

std::vector<PacketView> packetsOf(const Bytes& stream);

/** A section as it came, and the packets in which it began and ended. */
struct ReceivedSection {
    Bytes bytes;
    size_t packet;
    size_t lastPacket;
};

/** Sections of a PID, put together by libucsi. A damaged chain gives what it yields. */
std::vector<ReceivedSection> sectionsOf(const Bytes& stream, unsigned pid);

}  // namespace mkstreams

#endif

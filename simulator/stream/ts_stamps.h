/*
 * Time stamps in the headers of PES packets (ISO/IEC 13818-1, 2.4.3.7), which count 90 kHz in 33
 * bits. A header may be cut anywhere by the ends of transport packets.
 */
#ifndef SIMULATOR_STREAM_TS_STAMPS_H
#define SIMULATOR_STREAM_TS_STAMPS_H

#include <stddef.h>
#include <stdint.h>

#include <functional>
#include <vector>

#include "simulator/stream/ts_packet.h"

namespace sim {

/** Where the stamps of a PES packet end at the latest. */
constexpr size_t maxStampsEnd = 19;

/**
 * Bytes of a PES packet up to the end of its last stamp.
 * @param size  how many of its bytes are known; as long as the result is greater, it is the least
 *              that must be known to tell more
 * @return at most maxStampsEnd; 0 when the packet carries no stamp, or is none
 */
size_t stampsEnd(const uint8_t* pes, size_t size);

/** Moves the stamps of a PES packet of which at least stampsEnd bytes are there. */
void moveStamps(uint8_t* pes, uint64_t stamps);

/** A PES header whose stamps do not end in the packet in which it begins. */
struct TsCutHeader {
    struct Part {
        uint64_t number; /**< of the packet */
        uint8_t at;      /**< first byte of the part in the packet */
        uint8_t from;    /**< and in the header */
        uint8_t size;
    };
    /** Number of the packet with its first byte. */
    uint64_t first;
    std::vector<uint8_t> bytes;
    /** A packet that is sent twice has its part twice. */
    std::vector<Part> parts;
};

/** Cut headers of one PID. What packet loss has torn is dropped. */
class TsCutHeaderAssembler {
 public:
    using Unit = TsCutHeader;

    /** Takes the next packet of the PID, and tells the header that ended before it. */
    void push(const TsPacket& packet, uint64_t number,
              const std::function<void(const TsCutHeader&)>& sink);

    bool isOpen() const {
        return !header_.parts.empty();
    }
    uint64_t openSince() const {
        return header_.first;
    }

 private:
    void take(const TsPacket& packet, uint64_t number);

    TsContinuity continuity_;
    TsCutHeader header_ = {};
    bool whole_ = false;
};

}  // namespace sim

#endif

/*
 * What travels in the payloads of one PID: sections (ISO/IEC 13818-1, 2.4.4) and PES packets
 * (2.4.3.6). Each of the two is put together packet by packet; what packet loss or damage has torn
 * is dropped.
 */
#ifndef SIMULATOR_STREAM_TS_UNITS_H
#define SIMULATOR_STREAM_TS_UNITS_H

#include <stddef.h>
#include <stdint.h>

#include <functional>
#include <vector>

#include "simulator/stream/ts_packet.h"

namespace sim {

/** A whole section or PES packet. */
struct TsUnit {
    const uint8_t* bytes;
    size_t size;
    /** Numbers of the packets that held its first byte, and that completed it. */
    uint64_t first;
    uint64_t last;
    /** Where in its packet the first byte of a section was. */
    size_t place = 0;
};

using TsUnitSink = std::function<void(const TsUnit&)>;

/** Sections of one PID. */
class TsSectionAssembler {
 public:
    using Unit = TsUnit;

    /** Takes the next packet of the PID, and tells the sections that it completes. */
    void push(const TsPacket& packet, uint64_t number, const TsUnitSink& sink);

    /** Whether a section has begun and is not whole, and in which packet it began. */
    bool isOpen() const {
        return open_;
    }
    uint64_t openSince() const {
        return first_;
    }

 private:
    void begin(uint64_t number, size_t place);
    size_t take(const uint8_t* data, size_t size, uint64_t number, const TsUnitSink& sink);

    TsContinuity continuity_;
    std::vector<uint8_t> bytes_;
    bool open_ = false;
    uint64_t first_ = 0;
    size_t place_ = 0;
};

/** PES packets of one PID. One of unknown length is whole when the next begins. */
class TsPesAssembler {
 public:
    using Unit = TsUnit;

    void push(const TsPacket& packet, uint64_t number, const TsUnitSink& sink);

    bool isOpen() const {
        return open_;
    }
    uint64_t openSince() const {
        return first_;
    }

 private:
    void finish(uint64_t number, const TsUnitSink& sink);

    TsContinuity continuity_;
    std::vector<uint8_t> bytes_;
    bool open_ = false;
    uint64_t first_ = 0;
};

/** Whether the section carries a CRC_32: those with the section syntax do, and the time offset
 *  table, but not the stuffing table, whatever its syntax bit is. */
bool sectionHasCrc(const uint8_t* section, size_t size);

/** Makes the CRC_32 of a section right that has one. */
void makeSectionCrc(uint8_t* section, size_t size);

/** Whether the CRC_32 at the end of the section is right. False when it has no room for one. */
bool sectionCrcIsRight(const uint8_t* section, size_t size);

}  // namespace sim

#endif

/*
 * A transport stream file as a modulator plays it: over and over, at its bit rate, on the time base
 * of the monotonic clock.
 *
 * The file is indexed once: its packets by PID when it is loaded, the sections and the PES packets
 * of a PID when somebody first asks for them. Who follows the stream then computes when the next
 * thing of interest is on the air, and waits for it.
 *
 * Packets are numbered from time 0 on, through all loops: packet n is on the air from n * packet
 * time to (n + 1) * packet time. So all who receive a stream agree on what is sent when. From loop
 * to loop continuity counters, program clock references and time stamps run on; with stamps that
 * start at 0 in the file, the clock of the stream is the monotonic clock.
 */
#ifndef SIMULATOR_STREAM_TS_STREAM_H
#define SIMULATOR_STREAM_TS_STREAM_H

#include <stddef.h>
#include <stdint.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "simulator/stream/ts_packet.h"

namespace sim {

/** A section or PES packet of the file; packets are counted from the start of a loop. */
struct TsSpan {
    uint32_t first;
    /** At or beyond the packet count when the span runs over the loop point. */
    uint32_t last;
    /** Where a section's bytes lie in TsSections. Not used for PES packets. */
    uint32_t offset;
    uint32_t size;
    /** Whether the section carries no CRC or a right one. */
    bool crcGood;
};

struct TsUnit;

struct TsSections {
    std::vector<TsSpan> spans;
    std::vector<uint8_t> bytes;
};

/** A byte that is another one in every section of a table. */
struct TsTableChange {
    uint16_t pid;
    uint8_t tableId;
    size_t offset;
    uint8_t value;
};

/** Where a stream comes from. */
struct TsOrigin {
    /** Empty for one that is in no file. */
    std::string path;
    /** Whether it is as the file has it. */
    bool intact = false;
};

/** From a place on, the clock of a stream that is not the one that its packets count. */
struct TsClockPiece {
    uint32_t place;
    /** At that place, 90 kHz. */
    uint64_t clock;
};

class TsStream {
 public:
    /**
     * Takes over the content of a file: packets of 188 or 204 bytes, whatever surrounds them is
     * skipped.
     * @param packetTicks  time of a packet in periods of 27 MHz; 0: as the stream's own clock says
     * @param changes      made to the sections; their CRC is made right again, unless it is itself
     *                     what is changed
     */
    TsStream(std::vector<uint8_t> content, uint32_t packetTicks,
             const std::vector<TsTableChange>& changes = {}, TsOrigin origin = {});
    virtual ~TsStream() = default;

    const TsOrigin& origin() const {
        return origin_;
    }

    /** Packets of one loop; 0 when the file holds none, and nothing else may be asked then. */
    uint32_t packetCount() const {
        return packetCount_;
    }
    uint32_t packetTicks() const {
        return packetTicks_;
    }

    /** Number of the first packet that begins at that time of the monotonic clock or later. */
    virtual uint64_t packetAt(int64_t us) const;
    /** When the packet has come whole, rounded up. */
    int64_t endUs(uint64_t number) const;
    /** Number of the first packet that has not come whole at that time. */
    uint64_t firstEndingAfter(int64_t us) const;
    /** When the packet begins, in periods of 27 MHz of the monotonic clock. */
    virtual uint64_t beginTicks(uint64_t number) const {
        return number * packetTicks_;
    }

    /** Views of a stream that grows and has no loop (live_stream.h) have its number; 0: a file. */
    virtual uint64_t lineage() const {
        return 0;
    }
    /** Of such a stream: its clock, by ascending places. */
    virtual const std::vector<TsClockPiece>& clockPieces() const;

    /** Places in the loop of the packets of a PID, ascending. */
    virtual const std::vector<uint32_t>& packetsOf(uint16_t pid) const;
    /** Sections and PES packets of a PID in the order of their packets. References stay valid. */
    const TsSections& sectionsOf(uint16_t pid) const;
    const std::vector<TsSpan>& pesOf(uint16_t pid) const;

    /** The packet as it is on the air at its turn: `out` has room for 188 bytes. */
    virtual void copyPacket(uint64_t number, uint8_t* out) const;
    /** The PES packet of that span, as sent in that loop. */
    std::vector<uint8_t> pesBytes(uint16_t pid, const TsSpan& span, uint64_t loop) const;

 protected:
    /** Without content of its own. */
    TsStream(uint32_t packetCount, uint32_t packetTicks, TsOrigin origin);

 private:
    void splitPackets(std::vector<uint8_t> content);
    void indexPackets();
    void indexCutHeaders();
    void changeTable(const TsTableChange& change);
    void overwrite(uint16_t pid, const TsUnit& unit, const std::vector<uint8_t>& bytes);
    uint32_t measuredTicks() const;
    const uint8_t* packet(uint32_t place) const {
        return &data_[place * tsPacketBytes];
    }
    template <typename Assembler, typename Take>
    void walk(uint16_t pid, Take take) const;
    bool moveCutStamps(uint32_t place, uint64_t loop, uint8_t* out) const;

    TsOrigin origin_;
    // The packets, without what was between them.
    std::vector<uint8_t> data_;
    uint32_t packetCount_ = 0;
    uint32_t packetTicks_ = 0;
    std::vector<std::vector<uint32_t>> byPid_;
    // How far a loop moves the continuity counter of each PID.
    std::vector<uint8_t> continuityStep_;

    /** What a packet holds of a PES header that it shares with others. */
    struct HeaderPart {
        size_t header; /**< in cutHeaders_ */
        uint8_t at;    /**< as TsCutHeader::Part */
        uint8_t from;
        uint8_t size;
        uint8_t loopsAgo; /**< 1: the header began in the loop before */
    };
    std::vector<std::vector<uint8_t>> cutHeaders_;
    // By the packet's place.
    std::map<uint32_t, HeaderPart> headerParts_;

    mutable std::mutex mutex_;
    mutable std::map<uint16_t, std::unique_ptr<TsSections>> sections_;
    mutable std::map<uint16_t, std::unique_ptr<std::vector<TsSpan>>> pes_;
};

/** The program clock reference that a packet carries, in periods of 27 MHz; false without one. */
bool readTsClock(const uint8_t* packet, uint64_t* ticks);

using TsStreamPtr = std::shared_ptr<const TsStream>;

}  // namespace sim

#endif

// PES packets opened, and what was lost of them.
#include "simulator/media/es_reader.h"

#include <bitstream/mpeg/pes.h>
#include <bitstream/mpeg/ts.h>

#include <algorithm>
#include <cstring>

#include "simulator/stream/ts_packet.h"

namespace sim {

namespace {

constexpr uint64_t ticksPerStamp = 300;
constexpr uint64_t stampRange = UINT64_C(1) << 33;

/** Takes the packets of a PID one by one. */
class EsReader {
 public:
    /** @param place  beyond the packet count in the second loop */
    void push(const uint8_t* bytes, uint32_t place) {
        TsPacket packet = readTsPacket(bytes);
        TsContinuity::Step step = continuity_.follow(packet);
        if (step == TsContinuity::step_nothing)
            return;
        if (step != TsContinuity::step_next)
            lost_ = true;
        if (packet.unitStart && !packet.damaged)
            begin(place);
        if (!open_)
            return;
        if (packet.damaged || packet.scrambled || packet.payload == nullptr) {
            lost_ = true;
            return;
        }
        if (lost_)
            gaps_.push_back(pes_.size());
        lost_ = false;
        marks_.push_back({pes_.size(), place});
        pes_.insert(pes_.end(), packet.payload, packet.payload + packet.payloadBytes);
    }

    Es finish() {
        close();
        std::sort(es_.gaps.begin(), es_.gaps.end());
        return std::move(es_);
    }

 private:
    void begin(uint32_t place) {
        close();
        open_ = true;
        first_ = place;
        // What was missing was the end of the one before.
        lost_ = false;
    }

    /** Bytes of the header of the PES packet; 0 when it is none that carries an elementary stream.
     */
    size_t headerBytes() const {
        if (pes_.size() < PES_HEADER_SIZE_NOPTS || !pes_validate(pes_.data()) ||
            !pes_validate_header(pes_.data()))
            return 0;
        size_t bytes = PES_HEADER_SIZE_NOPTS + pes_get_headerlength(pes_.data());
        return bytes < pes_.size() ? bytes : 0;
    }

    void close() {
        size_t header = open_ ? headerBytes() : 0;
        if (header != 0) {
            size_t told = pes_get_length(pes_.data());
            size_t end = told != 0 ? std::min(pes_.size(), told + PES_HEADER_SIZE) : pes_.size();
            take(header, std::max(header, end));
            // One of unknown length ends where the next one begins, or where packets are missing.
            bool torn = told != 0 ? pes_.size() < told + PES_HEADER_SIZE : lost_;
            if (torn && !es_.data.empty())
                es_.gaps.push_back(es_.data.size() - 1);
        }
        pes_.clear();
        marks_.clear();
        gaps_.clear();
        open_ = false;
    }

    void take(size_t header, size_t end) {
        size_t base = es_.data.size();
        auto moved = [&](size_t at) { return base + (std::max(at, header) - header); };
        bool stamped = header >= PES_HEADER_SIZE_PTS && pes_has_pts(pes_.data());
        es_.pes.push_back({base, first_, stamped ? pes_get_pts(pes_.data()) : noStamp});
        for (const EsMark& mark : marks_)
            es_.marks.push_back({moved(mark.offset), mark.place});
        for (size_t gap : gaps_) {
            // Behind the length that is told there are others' bytes.
            if (gap < end)
                es_.gaps.push_back(moved(gap));
        }
        es_.data.insert(es_.data.end(), pes_.begin() + static_cast<ptrdiff_t>(header),
                        pes_.begin() + static_cast<ptrdiff_t>(end));
    }

    Es es_;
    TsContinuity continuity_;
    // The PES packet that is being put together, with its header.
    bool open_ = false;
    uint32_t first_ = 0;
    std::vector<uint8_t> pes_;
    std::vector<EsMark> marks_;
    std::vector<size_t> gaps_;
    bool lost_ = false;
};

/** Mixes 64 bits into a hash. */
uint64_t mixed(uint64_t hash, uint64_t value) {
    hash = (hash ^ value) * UINT64_C(0x9e3779b97f4a7c15);
    return hash ^ (hash >> 29);
}

}  // namespace

Es readEs(const TsStream& stream, uint16_t pid) {
    EsReader reader;
    uint8_t bytes[tsPacketBytes];
    const std::vector<uint32_t>& places = stream.packetsOf(pid);
    for (uint32_t place : places) {
        stream.copyPacket(place, bytes);
        reader.push(bytes, place);
    }
    if (stream.lineage() != 0)
        return reader.finish();
    // What begins in this loop ends before the next one begins.
    for (uint32_t place : places) {
        uint32_t number = stream.packetCount() + place;
        stream.copyPacket(number, bytes);
        if (readTsPacket(bytes).unitStart)
            break;
        reader.push(bytes, number);
    }
    return reader.finish();
}

Es readPes(const std::vector<const uint8_t*>& packets) {
    EsReader reader;
    for (size_t i = 0; i < packets.size(); i++)
        reader.push(packets[i], static_cast<uint32_t>(i));
    return reader.finish();
}

AccessUnit accessUnitAt(const Es& es, size_t offset, size_t size) {
    AccessUnit unit = {};
    unit.pts = noStamp;
    unit.offset = static_cast<uint32_t>(offset);
    unit.size = static_cast<uint32_t>(size);
    auto pes = std::upper_bound(es.pes.begin(), es.pes.end(), offset,
                                [](size_t at, const EsPes& one) { return at < one.offset; });
    if (pes != es.pes.begin())
        unit.first = std::prev(pes)->first;
    auto mark = std::upper_bound(es.marks.begin(), es.marks.end(), offset + size - 1,
                                 [](size_t at, const EsMark& one) { return at < one.offset; });
    if (mark != es.marks.begin())
        unit.last = std::prev(mark)->place;
    unit.last = std::max(unit.last, unit.first);
    auto gap = std::lower_bound(es.gaps.begin(), es.gaps.end(), offset);
    if (gap != es.gaps.end() && *gap < offset + size)
        unit.flags |= unit_damaged;
    return unit;
}

void setStamps(const Es& es, std::vector<AccessUnit>* units) {
    auto unit = units->begin();
    for (size_t i = 0; i < es.pes.size(); i++) {
        size_t end = i + 1 < es.pes.size() ? es.pes[i + 1].offset : es.data.size();
        while (unit != units->end() && unit->offset < es.pes[i].offset)
            ++unit;
        if (unit != units->end() && unit->offset < end)
            unit->pts = es.pes[i].pts;
    }
}

uint64_t clockBaseOf(const TsStream& stream) {
    uint8_t bytes[tsPacketBytes];
    if (stream.lineage() != 0)
        return 0;
    for (uint32_t place = 0; place < stream.packetCount(); place++) {
        stream.copyPacket(place, bytes);
        if (!ts_has_adaptation(bytes) || ts_get_adaptation(bytes) < 7 || !tsaf_has_pcr(bytes))
            continue;
        uint64_t ticks = tsaf_get_pcr(bytes) * ticksPerStamp + tsaf_get_pcrext(bytes);
        uint64_t since = uint64_t{place} * stream.packetTicks();
        uint64_t range = stampRange * ticksPerStamp;
        return (ticks + range - since % range) % range / ticksPerStamp;
    }
    return 0;
}

uint64_t hashOfPid(const TsStream& stream, uint16_t pid) {
    uint64_t hash = mixed(stream.packetCount(), stream.packetTicks());
    uint8_t bytes[tsPacketBytes + 4] = {};
    for (uint32_t place : stream.packetsOf(pid)) {
        stream.copyPacket(place, bytes);
        hash = mixed(hash, place);
        for (size_t at = 0; at < sizeof bytes; at += 8) {
            uint64_t word = 0;
            memcpy(&word, bytes + at, sizeof word);
            hash = mixed(hash, word);
        }
    }
    return hash;
}

}  // namespace sim

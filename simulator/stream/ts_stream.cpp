// A transport stream file, indexed, and its time.
#include "simulator/stream/ts_stream.h"

#include <bitstream/mpeg/ts.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "simulator/stream/ts_stamps.h"
#include "simulator/stream/ts_units.h"

namespace sim {

namespace {

constexpr uint8_t syncByte = 0x47;
constexpr size_t longPacketBytes = 204;
constexpr uint64_t ticksPerSecond = 27000000;
constexpr uint64_t ticksPerUs = 27;
constexpr uint64_t ticksPerStamp = 300;
constexpr uint64_t clockRange = (UINT64_C(1) << 33) * 300;
/** 8 Mbit/s, for a stream that has no clock of its own. */
constexpr uint32_t defaultTicks = 5076;

bool syncAt(const std::vector<uint8_t>& data, size_t at) {
    return at == data.size() || (at < data.size() && data[at] == syncByte);
}

/** How many packets of that size follow each other from the start of the data, of the first few. */
int packetsInRow(const std::vector<uint8_t>& data, size_t size) {
    int count = 0;
    while (count < 8 && count * size < data.size() && syncAt(data, count * size))
        count++;
    return count;
}

bool carriesClock(const uint8_t* packet) {
    // A PCR takes the flags byte and six bytes more.
    return ts_has_adaptation(packet) && ts_get_adaptation(packet) >= 7 && tsaf_has_pcr(packet);
}

uint64_t clockOf(const uint8_t* packet) {
    return tsaf_get_pcr(packet) * ticksPerStamp + tsaf_get_pcrext(packet);
}

void moveClock(uint8_t* packet, uint64_t ticks) {
    uint64_t clock = (clockOf(packet) + ticks) % clockRange;
    tsaf_set_pcr(packet, clock / ticksPerStamp);
    tsaf_set_pcrext(packet, static_cast<uint16_t>(clock % ticksPerStamp));
}

}  // namespace

bool readTsClock(const uint8_t* packet, uint64_t* ticks) {
    if (!carriesClock(packet))
        return false;
    *ticks = clockOf(packet);
    return true;
}

TsStream::TsStream(std::vector<uint8_t> content, uint32_t packetTicks,
                   const std::vector<TsTableChange>& changes, TsOrigin origin)
    : origin_(std::move(origin)), byPid_(tsPidCount), continuityStep_(tsPidCount) {
    splitPackets(std::move(content));
    indexPackets();
    packetTicks_ = packetTicks != 0 ? packetTicks : measuredTicks();
    indexCutHeaders();
    for (const TsTableChange& change : changes)
        changeTable(change);
}

TsStream::TsStream(uint32_t packetCount, uint32_t packetTicks, TsOrigin origin)
    : origin_(std::move(origin)), packetCount_(packetCount), packetTicks_(packetTicks) {}

const std::vector<TsClockPiece>& TsStream::clockPieces() const {
    static const std::vector<TsClockPiece> none;
    return none;
}

/**
 * Finds the packets in the file. A packet whose sync byte alone is wrong keeps its place in time,
 * as a null packet; where no packet can be found, bytes are skipped.
 */
void TsStream::splitPackets(std::vector<uint8_t> content) {
    bool longer = packetsInRow(content, longPacketBytes) > packetsInRow(content, tsPacketBytes);
    size_t step = longer ? longPacketBytes : tsPacketBytes;
    size_t at = 0;
    size_t kept = 0;
    auto fits = [&](size_t from, size_t size) {
        return from + tsPacketBytes <= content.size() && syncAt(content, from + size);
    };
    while (at + tsPacketBytes <= content.size()) {
        size_t other = step == tsPacketBytes ? longPacketBytes : tsPacketBytes;
        if (content[at] == syncByte) {
            if (!fits(at, step) && fits(at, other))
                step = other;
        } else if (!fits(at, step) || kept == 0) {
            at++;
            while (at < content.size() &&
                   !(syncAt(content, at) && (fits(at, step) || fits(at, other))))
                at++;
            continue;
        } else {
            ts_pad(&content[at]);
        }
        memmove(&content[kept], &content[at], tsPacketBytes);
        kept += tsPacketBytes;
        at += step;
    }
    content.resize(kept);
    content.shrink_to_fit();
    data_ = std::move(content);
    packetCount_ = static_cast<uint32_t>(kept / tsPacketBytes);
}

void TsStream::indexPackets() {
    std::vector<uint8_t> firstCounter(tsPidCount);
    std::vector<uint8_t> lastCounter(tsPidCount);
    std::vector<bool> counted(tsPidCount);
    for (uint32_t place = 0; place < packetCount_; place++) {
        const uint8_t* bytes = packet(place);
        uint16_t pid = ts_get_pid(bytes);
        byPid_[pid].push_back(place);
        if (!ts_has_payload(bytes))
            continue;
        if (!counted[pid])
            firstCounter[pid] = ts_get_cc(bytes);
        counted[pid] = true;
        lastCounter[pid] = ts_get_cc(bytes);
    }
    for (size_t pid = 0; pid < tsPidCount; pid++) {
        if (counted[pid])
            continuityStep_[pid] = (lastCounter[pid] - firstCounter[pid] + 1) & 0xf;
    }
}

void TsStream::indexCutHeaders() {
    for (uint16_t pid = 0; pid < tsNullPid; pid++) {
        if (byPid_[pid].empty())
            continue;
        walk<TsCutHeaderAssembler>(pid, [&](const TsCutHeader& header) {
            for (const TsCutHeader::Part& part : header.parts)
                headerParts_[static_cast<uint32_t>(part.number % packetCount_)] = {
                    cutHeaders_.size(), part.at, part.from, part.size,
                    static_cast<uint8_t>(part.number / packetCount_)};
            cutHeaders_.push_back(header.bytes);
        });
    }
}

void TsStream::changeTable(const TsTableChange& change) {
    if (packetCount_ == 0)
        return;
    std::vector<std::pair<TsUnit, std::vector<uint8_t>>> changed;
    walk<TsSectionAssembler>(change.pid, [&](const TsUnit& unit) {
        if (unit.bytes[0] != change.tableId || change.offset >= unit.size)
            return;
        std::vector<uint8_t> bytes(unit.bytes, unit.bytes + unit.size);
        bool hasCrc = sectionHasCrc(unit.bytes, unit.size);
        bytes[change.offset] = change.value;
        if (hasCrc && change.offset + 4 < unit.size)
            makeSectionCrc(bytes.data(), bytes.size());
        changed.emplace_back(unit, std::move(bytes));
    });
    for (const auto& [unit, bytes] : changed)
        overwrite(change.pid, unit, bytes);
}

/** Puts the bytes where the section came from. */
void TsStream::overwrite(uint16_t pid, const TsUnit& unit, const std::vector<uint8_t>& bytes) {
    const std::vector<uint32_t>& places = packetsOf(pid);
    auto place = std::lower_bound(places.begin(), places.end(), unit.first);
    size_t from = unit.place;
    size_t before = 0;
    size_t written = 0;
    int last = -1;
    int moved = 0;
    while (written < bytes.size()) {
        uint8_t* out = &data_[*place * tsPacketBytes];
        TsPacket view = readTsPacket(out);
        if (view.payload != nullptr) {
            // A packet that is sent twice gets the same bytes twice.
            int counter = (view.continuity + moved) & 0xf;
            if (counter == last)
                written = before;
            else if (last >= 0)
                from = tsPacketBytes - view.payloadBytes + (view.unitStart ? 1 : 0);
            last = counter;
            before = written;
            size_t part = std::min(bytes.size() - written, tsPacketBytes - from);
            memcpy(out + from, &bytes[written], part);
            written += part;
        }
        if (++place == places.end()) {
            place = places.begin();
            moved += continuityStep_[pid];
        }
    }
}

/** The mean time of a packet between the first and the last clock reference of a PID. */
uint32_t TsStream::measuredTicks() const {
    for (const std::vector<uint32_t>& places : byPid_) {
        const uint32_t* first = nullptr;
        const uint32_t* last = nullptr;
        for (const uint32_t& place : places) {
            if (!carriesClock(packet(place)))
                continue;
            first = first != nullptr ? first : &place;
            last = &place;
        }
        if (first == last)
            continue;
        uint64_t from = clockOf(packet(*first));
        uint64_t to = clockOf(packet(*last));
        uint64_t ticks = to > from ? (to - from) / (*last - *first) : 0;
        if (ticks > 0 && ticks < ticksPerSecond)
            return static_cast<uint32_t>(ticks);
    }
    return defaultTicks;
}

uint64_t TsStream::packetAt(int64_t us) const {
    uint64_t ticks = static_cast<uint64_t>(us) * ticksPerUs;
    return (ticks + packetTicks_ - 1) / packetTicks_;
}

int64_t TsStream::endUs(uint64_t number) const {
    return static_cast<int64_t>((beginTicks(number + 1) + ticksPerUs - 1) / ticksPerUs);
}

uint64_t TsStream::firstEndingAfter(int64_t us) const {
    uint64_t ticks = static_cast<uint64_t>(us) * ticksPerUs;
    return ticks <= beginTicks(0) ? 0 : (ticks - beginTicks(0)) / packetTicks_;
}

const std::vector<uint32_t>& TsStream::packetsOf(uint16_t pid) const {
    return byPid_[pid % tsPidCount];
}

/**
 * Puts the units of a PID together. The walk goes on into the next loop until what has begun in
 * this one is whole, or lost.
 */
template <typename Assembler, typename Take>
void TsStream::walk(uint16_t pid, Take take) const {
    Assembler assembler;
    const std::vector<uint32_t>& places = packetsOf(pid);
    uint8_t bytes[tsPacketBytes];
    for (uint64_t loop = 0; loop < 2; loop++) {
        for (uint32_t place : places) {
            uint64_t number = loop * packetCount_ + place;
            if (loop > 0 && (!assembler.isOpen() || assembler.openSince() >= packetCount_))
                return;
            copyPacket(number, bytes);
            assembler.push(readTsPacket(bytes), number, [&](const typename Assembler::Unit& unit) {
                if (unit.first < packetCount_)
                    take(unit);
            });
        }
    }
}

const TsSections& TsStream::sectionsOf(uint16_t pid) const {
    std::lock_guard<std::mutex> lock(mutex_);
    std::unique_ptr<TsSections>& sections = sections_[pid];
    if (sections != nullptr)
        return *sections;
    sections = std::make_unique<TsSections>();
    walk<TsSectionAssembler>(pid, [&](const TsUnit& unit) {
        auto offset = static_cast<uint32_t>(sections->bytes.size());
        bool crcGood =
            !sectionHasCrc(unit.bytes, unit.size) || sectionCrcIsRight(unit.bytes, unit.size);
        sections->spans.push_back({static_cast<uint32_t>(unit.first),
                                   static_cast<uint32_t>(unit.last), offset,
                                   static_cast<uint32_t>(unit.size), crcGood});
        sections->bytes.insert(sections->bytes.end(), unit.bytes, unit.bytes + unit.size);
    });
    return *sections;
}

const std::vector<TsSpan>& TsStream::pesOf(uint16_t pid) const {
    std::lock_guard<std::mutex> lock(mutex_);
    std::unique_ptr<std::vector<TsSpan>>& spans = pes_[pid];
    if (spans != nullptr)
        return *spans;
    spans = std::make_unique<std::vector<TsSpan>>();
    walk<TsPesAssembler>(pid, [&](const TsUnit& unit) {
        spans->push_back({static_cast<uint32_t>(unit.first), static_cast<uint32_t>(unit.last), 0,
                          static_cast<uint32_t>(unit.size), true});
    });
    return *spans;
}

void TsStream::copyPacket(uint64_t number, uint8_t* out) const {
    uint64_t loop = number / packetCount_;
    memcpy(out, packet(static_cast<uint32_t>(number % packetCount_)), tsPacketBytes);
    if (loop == 0)
        return;
    uint64_t ticks = loop * packetCount_ * packetTicks_;
    uint8_t counter = (ts_get_cc(out) + loop * continuityStep_[ts_get_pid(out)]) & 0xf;
    ts_set_cc(out, counter);
    if (carriesClock(out))
        moveClock(out, ticks);
    if (moveCutStamps(static_cast<uint32_t>(number % packetCount_), loop, out))
        return;
    TsPacket view = readTsPacket(out);
    if (!view.unitStart || view.scrambled || view.payload == nullptr)
        return;
    size_t end = stampsEnd(view.payload, view.payloadBytes);
    if (end != 0 && end <= view.payloadBytes)
        moveStamps(out + (view.payload - out), ticks / ticksPerStamp);
}

/** Moves the stamps, or parts of stamps, of a cut header in a packet. Returns whether it has any.
 */
bool TsStream::moveCutStamps(uint32_t place, uint64_t loop, uint8_t* out) const {
    auto found = headerParts_.find(place);
    if (found == headerParts_.end())
        return false;
    const HeaderPart& part = found->second;
    std::vector<uint8_t> header = cutHeaders_[part.header];
    header.resize(maxStampsEnd);
    uint64_t ticks = (loop - part.loopsAgo) * packetCount_ * packetTicks_;
    moveStamps(header.data(), ticks / ticksPerStamp);
    memcpy(out + part.at, &header[part.from], part.size);
    return true;
}

std::vector<uint8_t> TsStream::pesBytes(uint16_t pid, const TsSpan& span, uint64_t loop) const {
    std::vector<uint8_t> out;
    const std::vector<uint32_t>& places = packetsOf(pid);
    TsPesAssembler assembler;
    uint8_t bytes[tsPacketBytes];
    auto place = std::lower_bound(places.begin(), places.end(), span.first);
    uint64_t base = loop * packetCount_;
    while (out.empty() && !places.empty()) {
        if (place == places.end()) {
            place = places.begin();
            base += packetCount_;
        }
        uint64_t number = base + *place++;
        if (number > loop * packetCount_ + span.last)
            break;
        copyPacket(number, bytes);
        assembler.push(readTsPacket(bytes), number, [&](const TsUnit& unit) {
            // The packet that completes it may hold all of the next one too.
            if (out.empty())
                out.assign(unit.bytes, unit.bytes + unit.size);
        });
    }
    return out;
}

}  // namespace sim

// Sections and PES packets from the packets of one PID.
#include "simulator/stream/ts_units.h"

#include <bitstream/mpeg/pes.h>
#include <bitstream/mpeg/psi/psi.h>

#include <algorithm>

namespace sim {

namespace {

constexpr uint8_t tableStuffing = 0x72;
constexpr uint8_t tableTimeOffset = 0x73;
constexpr uint8_t stuffingByte = 0xff;
constexpr size_t maxSectionBytes = 4096;
/** More than any picture needs; a PES packet without end does not fill the memory. */
constexpr size_t maxPesBytes = 16 << 20;

}  // namespace

void TsSectionAssembler::begin(uint64_t number, size_t place) {
    bytes_.clear();
    open_ = true;
    first_ = number;
    place_ = place;
}

/** Gives bytes to the open section; returns how many belonged to it. */
size_t TsSectionAssembler::take(const uint8_t* data, size_t size, uint64_t number,
                                const TsUnitSink& sink) {
    size_t taken = 0;
    while (taken < size) {
        size_t want = PSI_HEADER_SIZE;
        if (bytes_.size() >= PSI_HEADER_SIZE)
            want += psi_get_length(bytes_.data());
        size_t part = std::min(want - bytes_.size(), size - taken);
        bytes_.insert(bytes_.end(), data + taken, data + taken + part);
        taken += part;
        if (bytes_.size() < PSI_HEADER_SIZE)
            break;
        want = PSI_HEADER_SIZE + psi_get_length(bytes_.data());
        if (want > maxSectionBytes) {
            // Nothing behind a length that cannot be is to be trusted.
            open_ = false;
            return size;
        }
        if (bytes_.size() == want) {
            open_ = false;
            sink({bytes_.data(), bytes_.size(), first_, number, place_});
            break;
        }
    }
    return taken;
}

void TsSectionAssembler::push(const TsPacket& packet, uint64_t number, const TsUnitSink& sink) {
    switch (continuity_.follow(packet)) {
        case TsContinuity::step_nothing:
            return;
        case TsContinuity::step_lost:
            open_ = false;
            return;
        case TsContinuity::step_restarted:
            open_ = false;
            break;
        case TsContinuity::step_next:
            break;
    }
    if (packet.scrambled || packet.payloadBytes == 0) {
        open_ = false;
        return;
    }
    const uint8_t* data = packet.payload;
    size_t size = packet.payloadBytes;
    if (!packet.unitStart) {
        if (open_)
            take(data, size, number, sink);
        return;
    }
    size_t pointer = data[0];
    data++;
    size--;
    if (pointer > size) {
        open_ = false;
        return;
    }
    if (open_)
        take(data, pointer, number, sink);
    // Where the pointer points a section begins, whether or not the one before came to its end.
    open_ = false;
    while (pointer < size && data[pointer] != stuffingByte) {
        begin(number, tsPacketBytes - size + pointer);
        pointer += take(data + pointer, size - pointer, number, sink);
    }
}

void TsPesAssembler::finish(uint64_t number, const TsUnitSink& sink) {
    open_ = false;
    if (bytes_.size() >= PES_HEADER_SIZE)
        sink({bytes_.data(), bytes_.size(), first_, number, 0});
}

void TsPesAssembler::push(const TsPacket& packet, uint64_t number, const TsUnitSink& sink) {
    switch (continuity_.follow(packet)) {
        case TsContinuity::step_nothing:
            return;
        case TsContinuity::step_lost:
            open_ = false;
            return;
        case TsContinuity::step_restarted:
            open_ = false;
            break;
        case TsContinuity::step_next:
            break;
    }
    if (packet.scrambled) {
        open_ = false;
        return;
    }
    if (packet.unitStart) {
        bool unbounded =
            open_ && bytes_.size() >= PES_HEADER_SIZE && pes_get_length(bytes_.data()) == 0;
        if (unbounded)
            finish(number, sink);
        bytes_.clear();
        open_ = true;
        first_ = number;
    }
    if (!open_)
        return;
    bytes_.insert(bytes_.end(), packet.payload, packet.payload + packet.payloadBytes);
    if (bytes_.size() < PES_HEADER_SIZE)
        return;
    size_t length = pes_get_length(bytes_.data());
    if (!pes_validate(bytes_.data()) || bytes_.size() > maxPesBytes) {
        open_ = false;
    } else if (length != 0 && bytes_.size() >= PES_HEADER_SIZE + length) {
        bytes_.resize(PES_HEADER_SIZE + length);
        finish(number, sink);
    }
}

bool sectionHasCrc(const uint8_t* section, size_t size) {
    if (size < PSI_HEADER_SIZE || section[0] == tableStuffing)
        return false;
    return psi_get_syntax(section) || section[0] == tableTimeOffset;
}

void makeSectionCrc(uint8_t* section, size_t size) {
    if (sectionHasCrc(section, size) && size >= PSI_HEADER_SIZE + PSI_CRC_SIZE &&
        size == static_cast<size_t>(PSI_HEADER_SIZE) + psi_get_length(section))
        psi_set_crc(section);
}

bool sectionCrcIsRight(const uint8_t* section, size_t size) {
    if (size < PSI_HEADER_SIZE + PSI_CRC_SIZE ||
        size != static_cast<size_t>(PSI_HEADER_SIZE) + psi_get_length(section))
        return false;
    return psi_check_crc(section);
}

}  // namespace sim

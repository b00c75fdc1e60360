// Finds and moves the time stamps of PES headers.
#include "simulator/stream/ts_stamps.h"

#include <bitstream/mpeg/pes.h>

#include <algorithm>

namespace sim {

namespace {

constexpr uint64_t stampRange = UINT64_C(1) << 33;
constexpr uint8_t startCode[] = {0, 0, 1};
/** Bytes behind header_data_length that the stamps take. */
constexpr uint8_t ptsBytes = PES_HEADER_SIZE_PTS - PES_HEADER_SIZE_NOPTS;
constexpr uint8_t ptsDtsBytes = PES_HEADER_SIZE_PTSDTS - PES_HEADER_SIZE_NOPTS;

/** Stream ids whose packets have the optional PES header (ISO/IEC 13818-1, table 2-21). */
bool hasOptionalHeader(uint8_t streamId) {
    return streamId == PES_STREAM_ID_PRIVATE_1 || streamId == 0xfd ||
           (streamId >= PES_STREAM_ID_AUDIO_MPEG && streamId <= 0xef);
}

}  // namespace

size_t stampsEnd(const uint8_t* pes, size_t size) {
    if (!std::equal(pes, pes + std::min(size, sizeof startCode), startCode))
        return 0;
    if (size > sizeof startCode && !hasOptionalHeader(pes_get_streamid(pes)))
        return 0;
    if (size < PES_HEADER_SIZE_NOPTS)
        return PES_HEADER_SIZE_NOPTS;
    if (!pes_validate_header(pes) || !pes_has_pts(pes) || pes_get_headerlength(pes) < ptsBytes)
        return 0;
    bool both = pes_has_dts(pes) && pes_get_headerlength(pes) >= ptsDtsBytes;
    return both ? PES_HEADER_SIZE_PTSDTS : PES_HEADER_SIZE_PTS;
}

void moveStamps(uint8_t* pes, uint64_t stamps) {
    size_t end = stampsEnd(pes, maxStampsEnd);
    if (end != 0)
        pes_set_pts(pes, (pes_get_pts(pes) + stamps) % stampRange);
    if (end == PES_HEADER_SIZE_PTSDTS)
        pes_set_dts(pes, (pes_get_dts(pes) + stamps) % stampRange);
}

void TsCutHeaderAssembler::push(const TsPacket& packet, uint64_t number,
                                const std::function<void(const TsCutHeader&)>& sink) {
    TsContinuity::Step step = continuity_.follow(packet);
    if (step == TsContinuity::step_nothing) {
        if (packet.payload != nullptr && isOpen()) {
            header_.parts.push_back(header_.parts.back());
            header_.parts.back().number = number;
        }
        return;
    }
    bool usable = step != TsContinuity::step_lost && !packet.scrambled;
    bool goesOn = isOpen() && !whole_ && step == TsContinuity::step_next && !packet.unitStart;
    if (!goesOn) {
        if (whole_)
            sink(header_);
        header_ = {number, {}, {}};
        whole_ = false;
    }
    if (!usable)
        header_.parts.clear();
    else if (goesOn || packet.unitStart)
        take(packet, number);
}

void TsCutHeaderAssembler::take(const TsPacket& packet, uint64_t number) {
    size_t from = header_.bytes.size();
    size_t size = std::min(packet.payloadBytes, maxStampsEnd - from);
    header_.bytes.insert(header_.bytes.end(), packet.payload, packet.payload + size);
    header_.parts.push_back({number, static_cast<uint8_t>(tsPacketBytes - packet.payloadBytes),
                             static_cast<uint8_t>(from), static_cast<uint8_t>(size)});
    size_t end = stampsEnd(header_.bytes.data(), header_.bytes.size());
    bool inOnePacket = from == 0 && size >= end;
    if (end == 0 || inOnePacket)
        header_.parts.clear();
    whole_ = isOpen() && header_.bytes.size() >= end;
}

}  // namespace sim

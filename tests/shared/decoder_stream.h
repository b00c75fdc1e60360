/*
 * A stream for decoders whose index is made by hand, and video decoders that find it: their times
 * are known to the millisecond, and nothing need be coded.
 *
 * The stream is a loop of 4.8 s. A picture of 40 ms takes 80 packets of 0.5 ms, of which the first
 * 40 are its own; every twelfth one can be decoded by itself, and each is shown 200 ms after it has
 * begun to come. A clock reference follows each picture's packets.
 */
#ifndef TESTS_SHARED_DECODER_STREAM_H
#define TESTS_SHARED_DECODER_STREAM_H

#include <memory>

#include "simulator/av/decoder_state.h"
#include "tests/shared/demux_streams.h"

namespace decoder_test {

constexpr uint16_t esPid = 0x100;
constexpr uint16_t clockPid = 0x101;
/** Not in the stream, unless a test lets it carry the clock. */
constexpr uint16_t otherPid = 0x102;
constexpr uint32_t packetTicks = 13500;
constexpr uint32_t unitPackets = 80;
constexpr uint32_t unitCount = 120;
constexpr uint32_t groupUnits = 12;
constexpr int64_t unitMs = 40;
constexpr int64_t loopMs = unitCount * unitMs;
constexpr int64_t shownAfterMs = 200;

inline demux_test::Bytes decoderStream(uint16_t clock = clockPid) {
    demux_test::StreamMaker maker;
    while (maker.count < unitCount * unitPackets) {
        uint32_t at = maker.count % unitPackets;
        if (at < unitPackets / 2)
            maker.packet(esPid, at == 0, demux_test::Bytes(180, 0));
        else if (at == unitPackets / 2)
            maker.clock(clock, uint64_t{maker.count} * packetTicks);
        else
            maker.nulls(1);
    }
    return maker.bytes;
}

inline sim::VideoFormat pictureFormat(uint16_t width, uint16_t height) {
    sim::VideoFormat format;
    format.width = width;
    format.height = height;
    format.frameRate = {25, 1};
    format.displayAspect = {16, 9};
    return format;
}

inline sim::VideoIndex decoderIndex() {
    sim::VideoIndex index;
    for (uint32_t i = 0; i < unitCount; i++) {
        sim::AccessUnit unit = {};
        unit.first = i * unitPackets;
        unit.last = unit.first + unitPackets / 2 - 1;
        unit.pts = static_cast<uint64_t>(i * unitMs + shownAfterMs) * 90;
        if (i % groupUnits == 0)
            unit.flags = sim::unit_access | sim::unit_decoded;
        index.units.push_back(unit);
    }
    index.changes.push_back({0, pictureFormat(720, 576)});
    return index;
}

/** What these decoders find; a test changes it before it plays. */
inline sim::VideoIndex& decodersFind() {
    static sim::VideoIndex* index = new sim::VideoIndex(decoderIndex());
    return *index;
}

/** Decoders that differ from those of the library in where their index is from. */
inline sim::DecoderFamily& handMadeFamily() {
    static sim::DecoderFamily* instance = [] {
        static sim::DecoderKind kind = sim::videoFamily().kind;
        kind.index = [](const sim::TsStreamPtr&, uint16_t pid, uint32_t) {
            std::shared_ptr<const sim::EsUnits> index;
            if (pid == esPid)
                index = std::make_shared<const sim::VideoIndex>(decodersFind());
            return index;
        };
        return new sim::DecoderFamily(kind);
    }();
    return *instance;
}

}  // namespace decoder_test

#endif

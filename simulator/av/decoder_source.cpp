// Where the data of a decoder come from: a demultiplexer, an external input, an analog front end.
#include <algorithm>

#include "simulator/av/decoder_state.h"

namespace sim {

namespace {

bool isStreamKind(uint32_t kind) {
    return kind == QLX_SOURCE_TYPE_DEMUX || kind == QLX_SOURCE_TYPE_RECORD;
}

bool isSignalKind(uint32_t kind) {
    return kind == QLX_SOURCE_TYPE_TUNER || kind == QLX_SOURCE_TYPE_AV_CVBS ||
           kind == QLX_SOURCE_TYPE_AV_YPBPR || kind == QLX_SOURCE_TYPE_VGA ||
           kind == QLX_SOURCE_TYPE_HDMI;
}

/** Which input or front end the source stands for: a program may name another analog front end than
 *  the one that it has opened. */
bool findSignal(const DecoderSource& source, uint32_t* index) {
    if (source.kind == QLX_SOURCE_TYPE_TUNER)
        return findOpenSource(source.kind, source.index, index);
    *index = source.index;
    return signalSource(source.kind, source.index).open;
}

/** A decoder is opened before it is known into which demultiplexer a recording is injected: without
 *  one in its own it follows any other. */
DemuxView viewFor(const DecoderSource& source) {
    DemuxView own = demuxView(source.index);
    if (own.stream != nullptr || own.source.eSourceType != QLX_SOURCE_TYPE_RECORD)
        return own;
    for (uint32_t demux = 0; demux < demuxCount; demux++) {
        DemuxView other = demuxView(demux);
        if (other.stream != nullptr && other.source.eSourceType == QLX_SOURCE_TYPE_RECORD)
            return other;
    }
    return own;
}

DecoderFeed lookAtDemux(const DecoderSource& source, const DecoderFeed& before, int64_t now) {
    DemuxView view = viewFor(source);
    DecoderFeed feed;
    feed.sinceUs = now;
    feed.change = view.change;
    feed.connection = view.source;
    if (view.stream == nullptr)
        return feed;
    feed.kind = DecoderFeed::Kind::stream;
    feed.stream = view.stream;
    if (before.stream == view.stream)
        feed.index = before.index;
    if (feedGoesOn(before, feed))
        feed.sinceUs = before.sinceUs;
    return feed;
}

DecoderFeed lookAtSignal(const DecoderSource& source) {
    DecoderFeed feed;
    if (!findSignal(source, &feed.signalIndex))
        return feed;
    feed.signal = signalSource(source.kind, feed.signalIndex);
    if (feed.signal.open && feed.signal.locked)
        feed.kind = DecoderFeed::Kind::signal;
    return feed;
}

/** Number of the first packet of the PID that begins at `fromUs` or later and that `fits`; false
 *  when a whole loop has none. */
template <typename Fits>
bool findPacket(const TsStream& stream, uint32_t pid, int64_t fromUs, Fits fits, uint64_t* number) {
    if (pid >= tsPidCount)
        return false;
    const std::vector<uint32_t>& places = stream.packetsOf(static_cast<uint16_t>(pid));
    uint64_t from = stream.packetAt(std::max<int64_t>(fromUs, 0));
    uint64_t loop = from / stream.packetCount();
    auto place = static_cast<uint32_t>(from % stream.packetCount());
    auto at = std::lower_bound(places.begin(), places.end(), place);
    for (size_t i = 0; i < places.size(); i++, ++at) {
        if (at == places.end()) {
            if (stream.lineage() != 0)
                return false;
            at = places.begin();
            loop++;
        }
        *number = loop * stream.packetCount() + *at;
        if (fits(*number))
            return true;
    }
    return false;
}

}  // namespace

bool isSourceKind(uint32_t kind) {
    return isStreamKind(kind) || isSignalKind(kind) || kind == QLX_SOURCE_TYPE_LOCAL_PLAYER ||
           kind == QLX_SOURCE_TYPE_STREAM_INJECT;
}

bool sourceIsUp(const DecoderSource& source) {
    if (isStreamKind(source.kind))
        return demuxView(source.index).open;
    uint32_t index = 0;
    return isSignalKind(source.kind) ? findSignal(source, &index) : isSourceKind(source.kind);
}

DecoderFeed lookAtSource(const DecoderSource& source, const DecoderFeed& before, int64_t now) {
    if (isStreamKind(source.kind))
        return lookAtDemux(source, before, now);
    if (isSignalKind(source.kind))
        return lookAtSignal(source);
    return before;
}

bool feedGoesOn(const DecoderFeed& before, const DecoderFeed& now) {
    if (before.kind != now.kind)
        return false;
    if (now.kind == DecoderFeed::Kind::signal)
        return before.signalIndex == now.signalIndex;
    if (now.kind == DecoderFeed::Kind::nothing || before.change == now.change)
        return true;
    if (before.stream->lineage() != 0 && before.stream->lineage() == now.stream->lineage())
        return true;
    // One step to another stream of the same tuner is one whose bytes the operator has changed; the
    // same one behind another number was interrupted.
    return before.stream != now.stream && before.change + 1 == now.change &&
           before.connection.eSourceType == now.connection.eSourceType &&
           before.connection.uSourceIndex == now.connection.uSourceIndex &&
           before.stream->packetCount() == now.stream->packetCount() &&
           before.stream->packetTicks() == now.stream->packetTicks();
}

int64_t nextClockUs(const TsStream& stream, uint32_t pid, int64_t fromUs) {
    auto hasClock = [&](uint64_t number) {
        uint8_t packet[tsPacketBytes];
        stream.copyPacket(number, packet);
        // An adaptation field that holds flags, and PCR_flag among them.
        return (packet[3] & 0x20) != 0 && packet[4] != 0 && (packet[5] & 0x10) != 0;
    };
    uint64_t number = 0;
    return findPacket(stream, pid, fromUs, hasClock, &number) ? stream.endUs(number) : INT64_MAX;
}

int64_t nextPacketUs(const TsStream& stream, uint32_t pid, int64_t fromUs) {
    uint64_t number = 0;
    auto any = [](uint64_t) { return true; };
    return findPacket(stream, pid, fromUs, any, &number) ? stream.endUs(number) : INT64_MAX;
}

}  // namespace sim

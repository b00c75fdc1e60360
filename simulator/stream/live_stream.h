/*
 * A stream whose packets come one after the other, from wherever: injected by the program, or out
 * of a descrambler. It has no loop. Who plays it is given a new view of it whenever something has
 * come; all views of a stream have its lineage.
 *
 * Places are slots of a fixed length since the stream began; a packet stands where its time is, and
 * most slots are empty. A view holds the last seconds, and never changes.
 */
#ifndef SIMULATOR_STREAM_LIVE_STREAM_H
#define SIMULATOR_STREAM_LIVE_STREAM_H

#include <stdint.h>

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "simulator/stream/ts_stream.h"

namespace sim {

/** Packets that came together. */
struct LiveChunk {
    /** Ascending. */
    std::vector<uint32_t> places;
    /** 188 bytes for each. */
    std::vector<uint8_t> bytes;

    const uint8_t* packet(size_t i) const {
        return &bytes[i * tsPacketBytes];
    }
};
using LiveChunks = std::deque<std::shared_ptr<const LiveChunk>>;

/** A view. Any thread may call. */
class LiveStream : public TsStream {
 public:
    LiveStream(uint64_t lineage, uint64_t startTicks, LiveChunks chunks,
               std::vector<TsClockPiece> clock, TsOrigin origin);

    uint64_t packetAt(int64_t us) const override;
    uint64_t beginTicks(uint64_t number) const override;
    const std::vector<uint32_t>& packetsOf(uint16_t pid) const override;
    void copyPacket(uint64_t number, uint8_t* out) const override;
    uint64_t lineage() const override {
        return lineage_;
    }
    const std::vector<TsClockPiece>& clockPieces() const override {
        return clock_;
    }

    /** Calls with the packets of a PID from a place on. */
    void visit(uint16_t pid, uint32_t from,
               const std::function<void(uint32_t place, const uint8_t* packet)>& call) const;

 private:
    uint64_t lineage_;
    uint64_t startTicks_;
    LiveChunks chunks_;
    std::vector<TsClockPiece> clock_;
    mutable std::mutex mutex_;
    mutable std::map<uint16_t, std::unique_ptr<std::vector<uint32_t>>> places_;
};

/** The stream itself, of whoever brings it. Not for several threads at once. */
class LiveStreamMaker {
 public:
    /** Begins at a time, in periods of 27 MHz of the monotonic clock. `origin`: TsStream's. */
    LiveStreamMaker(uint64_t startTicks, TsOrigin origin);

    /** Adds a packet that begins at that time, or in the next slot that is free. */
    void add(uint64_t ticks, const uint8_t* packet);
    /** A view of all that has come. */
    TsStreamPtr view();

 private:
    void followClock(uint32_t place, const uint8_t* packet);

    uint64_t lineage_;
    uint64_t startTicks_;
    TsOrigin origin_;
    LiveChunks chunks_;
    std::shared_ptr<LiveChunk> open_;
    std::vector<TsClockPiece> clock_;
    int64_t lastPlace_ = -1;
};

}  // namespace sim

#endif

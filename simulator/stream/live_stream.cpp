// Packets in the order of their coming, and views of the last of them.
#include "simulator/stream/live_stream.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace sim {

namespace {

/** 25 us: 60 Mbit/s. */
constexpr uint32_t slotTicks = 675;
constexpr uint32_t slotCount = UINT32_MAX;
constexpr uint64_t ticksPerUs = 27;
constexpr uint64_t ticksPerStamp = 300;
/** What a view holds: pictures that are shown, and those that they depend on. */
constexpr uint32_t keptSlots = 12 * (27000000 / slotTicks);
/** A clock reference that is further off than this, 90 kHz, begins a clock of its own. */
constexpr int64_t clockTolerance = 900;

}  // namespace

LiveStream::LiveStream(uint64_t lineage, uint64_t startTicks, LiveChunks chunks,
                       std::vector<TsClockPiece> clock, TsOrigin origin)
    : TsStream(slotCount, slotTicks, std::move(origin)),
      lineage_(lineage),
      startTicks_(startTicks),
      chunks_(std::move(chunks)),
      clock_(std::move(clock)) {}

uint64_t LiveStream::packetAt(int64_t us) const {
    uint64_t ticks = static_cast<uint64_t>(us) * ticksPerUs;
    return ticks <= startTicks_ ? 0 : (ticks - startTicks_ + slotTicks - 1) / slotTicks;
}

uint64_t LiveStream::beginTicks(uint64_t number) const {
    return startTicks_ + number * slotTicks;
}

const std::vector<uint32_t>& LiveStream::packetsOf(uint16_t pid) const {
    std::lock_guard<std::mutex> lock(mutex_);
    std::unique_ptr<std::vector<uint32_t>>& places = places_[pid];
    if (places == nullptr) {
        places = std::make_unique<std::vector<uint32_t>>();
        visit(pid, 0, [&](uint32_t place, const uint8_t*) { places->push_back(place); });
    }
    return *places;
}

void LiveStream::copyPacket(uint64_t number, uint8_t* out) const {
    auto chunk = std::upper_bound(
        chunks_.begin(), chunks_.end(), number,
        [](uint64_t place, const auto& one) { return place < one->places.front(); });
    if (chunk != chunks_.begin()) {
        const LiveChunk& one = **std::prev(chunk);
        auto place = std::lower_bound(one.places.begin(), one.places.end(), number);
        if (place != one.places.end() && *place == number) {
            memcpy(out, one.packet(static_cast<size_t>(place - one.places.begin())), tsPacketBytes);
            return;
        }
    }
    // An empty slot.
    memset(out, 0xff, tsPacketBytes);
    out[0] = 0x47;
    out[1] = 0x1f;
    out[3] = 0x10;
}

void LiveStream::visit(
    uint16_t pid, uint32_t from,
    const std::function<void(uint32_t place, const uint8_t* packet)>& call) const {
    for (const auto& chunk : chunks_) {
        if (chunk->places.back() < from)
            continue;
        for (size_t i = 0; i < chunk->places.size(); i++) {
            const uint8_t* packet = chunk->packet(i);
            if (chunk->places[i] >= from && ((packet[1] & 0x1f) << 8 | packet[2]) == pid)
                call(chunk->places[i], packet);
        }
    }
}

LiveStreamMaker::LiveStreamMaker(uint64_t startTicks, TsOrigin origin)
    : startTicks_(startTicks), origin_(std::move(origin)) {
    static std::atomic<uint64_t> last{0};
    lineage_ = ++last;
}

/** Notes from where on the clock of the stream is another one than it was. */
void LiveStreamMaker::followClock(uint32_t place, const uint8_t* packet) {
    uint64_t clock = 0;
    if (!readTsClock(packet, &clock))
        return;
    clock /= ticksPerStamp;
    if (!clock_.empty()) {
        const TsClockPiece& piece = clock_.back();
        uint64_t expected = piece.clock + uint64_t{place - piece.place} * slotTicks / ticksPerStamp;
        if (std::abs(static_cast<int64_t>(clock - expected)) <= clockTolerance)
            return;
    }
    clock_.push_back({place, clock});
}

void LiveStreamMaker::add(uint64_t ticks, const uint8_t* packet) {
    int64_t place =
        ticks <= startTicks_ ? 0 : static_cast<int64_t>((ticks - startTicks_) / slotTicks);
    lastPlace_ = std::max(place, lastPlace_ + 1);
    if (open_ == nullptr)
        open_ = std::make_shared<LiveChunk>();
    open_->places.push_back(static_cast<uint32_t>(lastPlace_));
    open_->bytes.insert(open_->bytes.end(), packet, packet + tsPacketBytes);
    followClock(static_cast<uint32_t>(lastPlace_), packet);
}

TsStreamPtr LiveStreamMaker::view() {
    if (open_ != nullptr)
        chunks_.push_back(std::move(open_));
    open_ = nullptr;
    while (chunks_.size() > 1 && chunks_.front()->places.back() + keptSlots < lastPlace_)
        chunks_.pop_front();
    while (clock_.size() > 1 && !chunks_.empty() &&
           clock_[1].place <= chunks_.front()->places.front())
        clock_.erase(clock_.begin());
    return std::make_shared<LiveStream>(lineage_, startTicks_, chunks_, clock_, origin_);
}

}  // namespace sim

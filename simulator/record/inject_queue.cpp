// Packets out of blocks, and their pace.
#include "simulator/record/inject_queue.h"

#include <algorithm>
#include <cstring>

#include "simulator/stream/ts_stream.h"

namespace sim {

namespace {

constexpr uint8_t syncByte = 0x47;
/** 8 Mbit/s, for a stream that has no clock of its own. */
constexpr uint32_t defaultTicks = 5076;
constexpr uint64_t ticksPerSecond = 27000000;
constexpr uint64_t clockRange = (UINT64_C(1) << 33) * 300;

}  // namespace

void InjectQueue::forgetClock() {
    clockPid_ = tsNullPid;
    sinceClock_ = 0;
    lastTicks_ = defaultTicks;
}

void InjectQueue::clear() {
    rest_.clear();
    packets_.clear();
    inStep_ = false;
    forgetClock();
}

/** Drops what is ahead of the next packet. False when there is none to be seen yet. */
bool InjectQueue::findPacket() {
    size_t at = 0;
    auto fits = [&](size_t from) {
        return rest_[from + head_] == syncByte && rest_[from + head_ + step_] == syncByte;
    };
    while (at + head_ + step_ < rest_.size() && !fits(at))
        at++;
    bool found = at + head_ + step_ < rest_.size();
    rest_.erase(rest_.begin(), rest_.begin() + static_cast<ptrdiff_t>(at));
    inStep_ = found;
    return found;
}

void InjectQueue::write(const uint8_t* data, size_t size) {
    if (packets_.empty() && clockPid_ == tsNullPid)
        forgetClock();
    rest_.insert(rest_.end(), data, data + size);
    size_t at = 0;
    auto drop = [&] {
        rest_.erase(rest_.begin(), rest_.begin() + static_cast<ptrdiff_t>(at));
        at = 0;
    };
    for (;;) {
        if (!inStep_) {
            drop();
            if (!findPacket())
                return;
        }
        while (at + step_ <= rest_.size() && rest_[at + head_] == syncByte) {
            take(&rest_[at + head_]);
            at += step_;
        }
        if (at + step_ > rest_.size())
            break;
        inStep_ = false;
    }
    drop();
}

void InjectQueue::take(const uint8_t* bytes) {
    packets_.emplace_back();
    memcpy(packets_.back().bytes.data(), bytes, tsPacketBytes);
    packets_.back().ticks = 0;
    sinceClock_++;
    uint64_t clock = 0;
    auto pid = static_cast<uint16_t>((bytes[1] & 0x1f) << 8 | bytes[2]);
    if ((clockPid_ != tsNullPid && pid != clockPid_) || !readTsClock(bytes, &clock))
        return;
    uint64_t passed = (clock + clockRange - clock_) % clockRange;
    if (clockPid_ != tsNullPid && passed > 0 && passed < ticksPerSecond) {
        // Those that are still here of the packets from the last reference up to this one.
        lastTicks_ = std::max<uint32_t>(1, static_cast<uint32_t>(passed / sinceClock_));
        size_t from = packets_.size() - std::min(packets_.size(), sinceClock_ + 1);
        for (size_t i = from; i + 1 < packets_.size(); i++)
            packets_[i].ticks = lastTicks_;
    }
    clockPid_ = pid;
    clock_ = clock;
    sinceClock_ = 0;
}

uint64_t InjectQueue::pop() {
    uint32_t ticks = packets_.front().ticks;
    packets_.pop_front();
    return ticks != 0 ? ticks : lastTicks_;
}

}  // namespace sim

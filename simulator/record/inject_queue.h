/*
 * What waits in an injector: blocks taken apart into packets, and when each goes out. Packets go
 * out at the pace of the clock references among them; between two of them evenly, and without any
 * at that of the last ones.
 */
#ifndef SIMULATOR_RECORD_INJECT_QUEUE_H
#define SIMULATOR_RECORD_INJECT_QUEUE_H

#include <stddef.h>
#include <stdint.h>

#include <array>
#include <deque>
#include <vector>

#include "simulator/stream/ts_packet.h"

namespace sim {

/** Not for several threads at once. */
class InjectQueue {
 public:
    /** @param step  bytes from packet to packet: 188, 192 or 204 */
    explicit InjectQueue(size_t step) : step_(step), head_(step == 192 ? 4 : 0) {}

    void write(const uint8_t* data, size_t size);
    void clear();

    /** Bytes that wait. */
    size_t bytes() const {
        return rest_.size() + packets_.size() * step_;
    }
    bool empty() const {
        return packets_.empty();
    }
    const uint8_t* front() const {
        return packets_.front().bytes.data();
    }
    /** Removes the first packet. Gives the periods of 27 MHz until the next one. */
    uint64_t pop();

 private:
    struct Packet {
        std::array<uint8_t, tsPacketBytes> bytes;
        /** Until the packet behind it; 0: as the last ones. */
        uint32_t ticks;
    };
    bool findPacket();
    void take(const uint8_t* packet);

    size_t step_;
    size_t head_;
    /** What is not a whole packet yet; begins with one when in step. */
    std::vector<uint8_t> rest_;
    bool inStep_ = false;
    std::deque<Packet> packets_;
    /** The last clock reference: its PID, value, and how many packets have come since. */
    uint16_t clockPid_ = tsNullPid;
    uint64_t clock_ = 0;
    size_t sinceClock_ = 0;
    uint32_t lastTicks_ = 5076;
    void forgetClock();
};

}  // namespace sim

#endif

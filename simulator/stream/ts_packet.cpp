// The header of a transport packet, and its continuity counter.
#include "simulator/stream/ts_packet.h"

#include <bitstream/mpeg/ts.h>

namespace sim {

TsPacket readTsPacket(const uint8_t* bytes) {
    TsPacket packet;
    packet.pid = ts_get_pid(bytes);
    packet.unitStart = ts_get_unitstart(bytes);
    packet.scrambled = ts_get_scrambling(bytes) != 0;
    packet.damaged = !ts_validate(bytes) || ts_get_transporterror(bytes);
    packet.continuity = ts_get_cc(bytes);
    size_t begin = TS_HEADER_SIZE;
    if (ts_has_adaptation(bytes)) {
        uint8_t length = ts_get_adaptation(bytes);
        packet.discontinuity = length > 0 && tsaf_has_discontinuity(bytes);
        begin += 1 + static_cast<size_t>(length);
    }
    if (!ts_has_payload(bytes))
        return packet;
    if (begin > tsPacketBytes) {
        packet.damaged = true;
        return packet;
    }
    packet.payload = bytes + begin;
    packet.payloadBytes = tsPacketBytes - begin;
    return packet;
}

TsContinuity::Step TsContinuity::follow(const TsPacket& packet) {
    if (packet.damaged) {
        last_ = -1;
        return step_lost;
    }
    if (packet.payload == nullptr) {
        // Without payload the counter stands still, unless the packet announces a jump.
        if (packet.discontinuity)
            last_ = -1;
        return step_nothing;
    }
    int expected = last_ < 0 ? packet.continuity : (last_ + 1) & 0xf;
    bool repeated = last_ == packet.continuity && !packet.discontinuity;
    last_ = packet.continuity;
    if (repeated)
        return step_nothing;
    return expected == packet.continuity ? step_next : step_restarted;
}

}  // namespace sim

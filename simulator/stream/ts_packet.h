/*
 * Transport packets (ISO/IEC 13818-1, 2.4.3) as the demultiplexer looks at them: where the payload
 * lies, and whether it continues what came before. Safe on any 188 bytes.
 */
#ifndef SIMULATOR_STREAM_TS_PACKET_H
#define SIMULATOR_STREAM_TS_PACKET_H

#include <stddef.h>
#include <stdint.h>

namespace sim {

constexpr size_t tsPacketBytes = 188;
constexpr uint16_t tsPidCount = 8192;
constexpr uint16_t tsNullPid = 0x1fff;

struct TsPacket {
    uint16_t pid = tsNullPid;
    bool unitStart = false;
    bool scrambled = false;
    /** transport_error_indicator, or an adaptation field longer than the packet. */
    bool damaged = false;
    /** discontinuity_indicator: the continuity counter may jump here. */
    bool discontinuity = false;
    uint8_t continuity = 0;
    /** Null in a packet without payload. */
    const uint8_t* payload = nullptr;
    size_t payloadBytes = 0;
};

/** Reads the 188 bytes of a packet, into which the payload of the result points. */
TsPacket readTsPacket(const uint8_t* packet);

/** Follows the continuity counter of one PID. */
class TsContinuity {
 public:
    enum Step {
        step_next,      /**< The packet continues the one before, or is the first. */
        step_nothing,   /**< It carries no payload, or repeats the one before. */
        step_lost,      /**< Packets are missing before it, or it is damaged itself. */
        step_restarted, /**< As lost, but the packet says so and is good. */
    };

    Step follow(const TsPacket& packet);
    void reset() {
        last_ = -1;
    }

 private:
    int last_ = -1;
};

}  // namespace sim

#endif

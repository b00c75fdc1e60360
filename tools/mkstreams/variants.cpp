/* Streams for tests, out of a good one: faults that a receiver must cope with, and other forms. */
#include <bitstream/mpeg/ts.h>

#include <algorithm>
#include <map>

#include "tools/mkstreams/maker.h"

namespace mkstreams {

static const uint16_t lastServicePid = 0x1F;

static Bytes damageSections(const TransportStream& good, const std::vector<Burst>&);

/** 16 bytes behind each packet, as demodulators deliver where parity bytes were. */
static Bytes lengthenPackets(const TransportStream& good, const std::vector<Burst>&) {
    Bytes bytes;
    for (size_t at = 0; at < good.packets.size(); at += packetSize) {
        auto packet = good.packets.begin() + static_cast<ptrdiff_t>(at);
        bytes.insert(bytes.end(), packet, packet + packetSize);
        bytes.insert(bytes.end(), 16, 0xFF);
    }
    return bytes;
}

/** Turns a bit in a packet of every section of service information: its CRC is then wrong. */
static Bytes damageSections(const TransportStream& good, const std::vector<Burst>&) {
    Bytes bytes = good.packets;
    for (size_t at = 0; at < bytes.size(); at += packetSize) {
        uint8_t* packet = bytes.data() + at;
        uint16_t pid = ts_get_pid(packet);
        // The eighth byte of a long section belongs to its header; table id and length stay.
        if (pid >= 0x10 && pid <= lastServicePid && ts_get_unitstart(packet)) {
            uint8_t* section = ts_section(packet);
            section[4] ^= 0x01;
        }
    }
    return bytes;
}

/** Loses every tenth packet of each PID, and sends the packet after it twice if there is room. */
static Bytes breakContinuity(const TransportStream& good, const std::vector<Burst>&) {
    Bytes bytes = good.packets;
    std::map<uint16_t, unsigned> counts;
    for (size_t at = 0; at + packetSize < bytes.size(); at += packetSize) {
        uint8_t* packet = bytes.data() + at;
        uint16_t pid = ts_get_pid(packet);
        if (pid == 0x1FFF || !ts_has_payload(packet))
            continue;
        unsigned count = ++counts[pid];
        if (count % 10 == 0)
            ts_pad(packet);
        else if (count % 10 == 1 && ts_get_pid(packet + packetSize) == 0x1FFF)
            std::copy_n(packet, packetSize, packet + packetSize);
    }
    return bytes;
}

/** Gives all sections of the second half of the loop the next version. */
static Bytes changeVersions(const TransportStream& good, const std::vector<Burst>& bursts) {
    Bytes bytes = good.packets;
    std::map<Bytes, Bytes> replaced;
    for (const Burst& burst : bursts) {
        for (const Bytes& section : burst.sections) {
            if ((section[1] & 0x80) == 0)
                continue;
            Bytes next(section.begin(), section.end() - 4);
            unsigned version = (next[5] >> 1 & 0x1F) + 1;
            next[5] = static_cast<uint8_t>((next[5] & 0xC1) | (version & 0x1F) << 1);
            put32(next, sectionCrc(next));
            replaced[section] = next;
        }
    }
    // A section sent alone lies in consecutive packets of its PID: rewrite it there.
    std::map<uint16_t, std::vector<size_t>> places;
    for (size_t at = bytes.size() / 2 / packetSize * packetSize; at < bytes.size();
         at += packetSize)
        if (ts_has_payload(bytes.data() + at))
            places[ts_get_pid(bytes.data() + at)].push_back(at);
    for (const Burst& burst : bursts) {
        if (burst.sections.size() != 1 || burst.adaptation)
            continue;
        auto change = replaced.find(burst.sections[0]);
        if (change == replaced.end())
            continue;
        const std::vector<size_t>& at = places[burst.pid];
        size_t needed = (burst.sections[0].size() + 1 + 183) / 184;
        for (size_t i = 0; i + needed <= at.size(); i++) {
            const uint8_t* start = bytes.data() + at[i];
            size_t head = std::min<size_t>(183, burst.sections[0].size());
            if (!ts_get_unitstart(start) || start[4] != 0 ||
                !std::equal(start + 5, start + 5 + head, burst.sections[0].begin()))
                continue;
            size_t done = 0;
            for (size_t k = 0; k < needed; k++) {
                uint8_t* to = bytes.data() + at[i + k] + (k == 0 ? 5 : 4);
                size_t size = std::min<size_t>(k == 0 ? 183 : 184, change->second.size() - done);
                std::copy_n(change->second.begin() + static_cast<ptrdiff_t>(done), size, to);
                done += size;
            }
        }
    }
    return bytes;
}

const Variant variants[] = {
    {"version_changes", packetSize, changeVersions},
    {"crc_damaged", packetSize, damageSections},
    {"discontinuous", packetSize, breakContinuity},
    {"packets_204", 204, lengthenPackets},
};
const size_t variantCount = sizeof(variants) / sizeof(variants[0]);

}  // namespace mkstreams

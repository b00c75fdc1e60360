/* Streams for tests, out of a good one: faults that a receiver must cope with, and other forms. */
#include <bitstream/mpeg/psi/psi.h>
#include <bitstream/mpeg/ts.h>

#include <algorithm>
#include <map>

#include "tools/mkstreams/content.h"
#include "tools/mkstreams/maker.h"

namespace mkstreams {

static const uint16_t lastServicePid = 0x1F;

/** 16 bytes behind each packet, as demodulators deliver where parity bytes were. */
static Bytes lengthenPackets(const Multiplex&, const TransportStream& good,
                             const std::vector<Burst>&) {
    Bytes bytes;
    for (size_t at = 0; at < good.packets.size(); at += packetSize) {
        auto packet = good.packets.begin() + static_cast<ptrdiff_t>(at);
        bytes.insert(bytes.end(), packet, packet + packetSize);
        bytes.insert(bytes.end(), 16, 0xFF);
    }
    return bytes;
}

/** Turns a bit in a packet of every section of service information: its CRC is then wrong. */
static Bytes damageSections(const Multiplex&, const TransportStream& good,
                            const std::vector<Burst>&) {
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
static Bytes breakContinuity(const Multiplex&, const TransportStream& good,
                             const std::vector<Burst>&) {
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

/** Begins all sections in packets with an adaptation field. Picture and sound are left out. */
static Bytes addFields(const Multiplex& multiplex, const TransportStream& good,
                       const std::vector<Burst>& bursts) {
    MultiplexInput input = {bursts, {}, multiplex.channels.front().pcrPid, loopTicks(multiplex)};
    for (Burst& burst : input.bursts)
        burst.adaptation = true;
    TransportStream stream;
    std::string error;
    mkstreams::multiplex(input, good.packetTicks, &stream, &error);
    return stream.packets;
}

/** The section under the next version, with the CRC that it then has. */
static Bytes nextVersion(const Bytes& section) {
    Bytes next(section.begin(), section.end() - 4);
    unsigned version = (next[5] >> 1 & 0x1F) + 1;
    next[5] = static_cast<uint8_t>((next[5] & 0xC1) | (version & 0x1F) << 1);
    put32(next, sectionCrc(next));
    return next;
}

/** Whether a packet begins with a section, which is alone in it and those that follow. */
static bool beginsWith(const uint8_t* packet, const Bytes& section) {
    size_t size = std::min<size_t>(packetSize - 5, section.size());
    return ts_get_unitstart(packet) && !ts_has_adaptation(packet) && packet[4] == 0 &&
           std::equal(packet + 5, packet + 5 + size, section.begin());
}

/** Writes a section over one of the same size that begins in packet `first` of `places`. */
static void overwrite(Bytes& stream, const std::vector<size_t>& places, size_t first,
                      const Bytes& section) {
    size_t done = 0;
    for (size_t i = first; done < section.size() && i < places.size(); i++) {
        size_t head = i == first ? 5 : 4;
        size_t size = std::min<size_t>(packetSize - head, section.size() - done);
        std::copy_n(section.begin() + static_cast<ptrdiff_t>(done), size,
                    stream.begin() + static_cast<ptrdiff_t>(places[i] + head));
        done += size;
    }
}

/** Gives the sections that are sent alone the next version in the second half of the loop. */
static Bytes changeVersions(const Multiplex&, const TransportStream& good,
                            const std::vector<Burst>& bursts) {
    Bytes bytes = good.packets;
    std::map<uint16_t, std::vector<size_t>> places;
    size_t middle = bytes.size() / packetSize / 2 * packetSize;
    for (size_t at = middle; at < bytes.size(); at += packetSize)
        if (ts_has_payload(bytes.data() + at))
            places[ts_get_pid(bytes.data() + at)].push_back(at);
    for (const Burst& burst : bursts) {
        const Bytes& section = burst.sections.front();
        if (burst.sections.size() != 1 || burst.adaptation || !psi_get_syntax(section.data()))
            continue;
        Bytes next = nextVersion(section);
        const std::vector<size_t>& at = places[burst.pid];
        for (size_t i = 0; i < at.size(); i++)
            if (beginsWith(bytes.data() + at[i], section))
                overwrite(bytes, at, i, next);
    }
    return bytes;
}

/** Loses a packet, but not the clock that it may carry. */
static void losePacket(uint8_t* packet) {
    if (!ts_has_adaptation(packet) || ts_get_adaptation(packet) == 0 || !tsaf_has_pcr(packet)) {
        ts_pad(packet);
        return;
    }
    size_t end = TS_HEADER_SIZE + 1 + static_cast<size_t>(ts_get_adaptation(packet));
    std::fill(packet + end, packet + packetSize, 0xFF);
    packet[TS_HEADER_SIZE] = packetSize - TS_HEADER_SIZE - 1;
    packet[3] = static_cast<uint8_t>(0x20 | (packet[3] & 0x0F));
}

/** The packets of the pictures of the first channel: visited with the number of the picture, the
 *  number of the packet in it, and whether decoding can begin with the picture. */
template <typename Visit>
static Bytes visitPictures(const Multiplex& multiplex, const TransportStream& good, Visit visit) {
    Bytes bytes = good.packets;
    size_t picture = 0;
    size_t number = 0;
    bool access = false;
    for (size_t at = 0; at < bytes.size(); at += packetSize) {
        uint8_t* packet = bytes.data() + at;
        if (ts_get_pid(packet) != multiplex.channels.front().videoPid || !ts_has_payload(packet))
            continue;
        if (ts_get_unitstart(packet)) {
            picture++;
            number = 0;
            access = ts_has_adaptation(packet) && ts_get_adaptation(packet) > 0 &&
                     tsaf_has_randomaccess(packet);
        }
        visit(packet, at, picture, number++, access);
    }
    return bytes;
}

/** Loses all pictures with which decoding can begin, in the first half of the loop. */
static Bytes loseAccess(const Multiplex& multiplex, const TransportStream& good,
                        const std::vector<Burst>&) {
    return visitPictures(multiplex, good,
                         [&](uint8_t* packet, size_t at, size_t, size_t, bool access) {
                             if (access && at < good.packets.size() / 2)
                                 losePacket(packet);
                         });
}

/** Turns a bit in every seventh picture, and cuts every fifth off behind its first packet. */
static Bytes damagePictures(const Multiplex& multiplex, const TransportStream& good,
                            const std::vector<Burst>&) {
    return visitPictures(multiplex, good,
                         [](uint8_t* packet, size_t, size_t picture, size_t number, bool) {
                             if (picture % 7 == 3)
                                 packet[packetSize - 1] ^= 0x10;
                             else if (picture % 5 == 2 && number > 0)
                                 losePacket(packet);
                         });
}

const Variant variants[] = {
    {"version_changes", packetSize, 0, changeVersions},
    {"crc_damaged", packetSize, 0, damageSections},
    {"discontinuous", packetSize, 0, breakContinuity},
    {"adaptation", packetSize, 0, addFields},
    {"packets_204", 204, 0, lengthenPackets},
    {"no_access", packetSize, 1, loseAccess},
    {"pictures_damaged", packetSize, 1, damagePictures},
};
const size_t variantCount = sizeof(variants) / sizeof(variants[0]);

}  // namespace mkstreams

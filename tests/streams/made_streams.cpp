#include "tests/streams/made_streams.h"

#include <gtest/gtest.h>
#include <libucsi/section_buf.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>

#include "tools/mkstreams/cfg_file.h"

namespace mkstreams {

const LineUp& shippedLineUp() {
    static const LineUp* lineUp = [] {
        auto* read = new LineUp;
        std::string error;
        EXPECT_TRUE(readLineUp(ZK_SOURCE_DIR "/config", read, &error)) << error;
        return read;
    }();
    return *lineUp;
}

const Multiplex& multiplexOf(const std::string& file) {
    for (const Multiplex& multiplex : shippedLineUp().multiplexes)
        if (multiplex.file == file)
            return multiplex;
    ADD_FAILURE() << "no multiplex plays " << file;
    std::abort();
}

const std::string& streamFolder() {
    static const std::string* folder = [] {
        const std::string bench = ZK_BUILD_DIR "/streams_bench";
        std::string command =
            ZK_BUILD_DIR "/zkbench --source " ZK_SOURCE_DIR " --quiet --lay-out " + bench;
        EXPECT_EQ(system((command + " > /dev/null").c_str()), 0);
        return new std::string(bench + "/stream/ts/");
    }();
    return *folder;
}

/** Packet time of a file, by the manifest. */
static int64_t packetTicksOf(const std::string& file) {
    static const CfgFile* manifest = [] {
        auto* read = new CfgFile;
        EXPECT_TRUE(read->load(streamFolder() + "streams.cfg"));
        return read;
    }();
    for (unsigned i = 0; i < manifest->number("COMMON", "TRANSMITTER_NUM"); i++) {
        std::string section = "TRANSMITTER" + std::to_string(i);
        if (manifest->text(section, "FILE") == file)
            return manifest->number(section, "PACKET_TICKS");
    }
    ADD_FAILURE() << "no transmitter plays " << file;
    return 0;
}

const TransportStream& streamOf(const std::string& file) {
    static std::map<std::string, TransportStream>* streams =
        new std::map<std::string, TransportStream>;
    TransportStream& stream = (*streams)[file];
    if (stream.packets.empty()) {
        std::ifstream content(streamFolder() + file, std::ios::binary);
        stream.packets.assign(std::istreambuf_iterator<char>(content), {});
        EXPECT_FALSE(stream.packets.empty()) << file;
        stream.packetTicks = packetTicksOf(file);
    }
    return stream;
}

Bytes variantOf(const std::string& name) {
    for (size_t i = 0; i < variantCount; i++) {
        if (name != variants[i].name)
            continue;
        const Multiplex& multiplex = shippedLineUp().multiplexes[variants[i].multiplex];
        return variants[i].make(multiplex, streamOf(multiplex.file),
                                tablesOf(shippedLineUp(), multiplex));
    }
    ADD_FAILURE() << "no variant " << name;
    return Bytes();
}

Bytes tableStreamOf(const Multiplex& multiplex) {
    MultiplexInput input = {tablesOf(shippedLineUp(), multiplex), {}, 0x1FFF, loopTicks(multiplex)};
    TransportStream stream;
    std::string error;
    EXPECT_TRUE(multiplexAtFittingRate(input, &stream, &error)) << multiplex.file << ": " << error;
    return stream.packets;
}

unsigned PacketView::pid() const {
    return (at[1] & 0x1Fu) << 8 | at[2];
}
bool PacketView::unitStart() const {
    return (at[1] & 0x40) != 0;
}
bool PacketView::hasField() const {
    return (at[3] & 0x20) != 0;
}
bool PacketView::hasPayload() const {
    return (at[3] & 0x10) != 0;
}
bool PacketView::hasPcr() const {
    return hasField() && at[4] > 0 && (at[5] & 0x10) != 0;
}
int64_t PacketView::pcr() const {
    int64_t base =
        static_cast<int64_t>(at[6]) << 25 | at[7] << 17 | at[8] << 9 | at[9] << 1 | at[10] >> 7;
    return base * 300 + ((at[10] & 1) << 8 | at[11]);
}
unsigned PacketView::counter() const {
    return at[3] & 15u;
}
const uint8_t* PacketView::payload() const {
    return at + (hasField() ? 5 + at[4] : 4);
}
size_t PacketView::payloadBytes() const {
    return static_cast<size_t>(at + packetSize - payload());
}

std::vector<PacketView> packetsOf(const Bytes& stream) {
    std::vector<PacketView> packets;
    for (size_t at = 0; at + packetSize <= stream.size(); at += packetSize)
        packets.push_back({stream.data() + at, at / packetSize});
    return packets;
}

std::vector<ReceivedSection> sectionsOf(const Bytes& stream, unsigned pid) {
    static const int largest = 4096;
    // The library wants the buffer behind its own record.
    std::vector<section_buf> memory(1 + largest / sizeof(section_buf) + 1);
    section_buf* buffer = memory.data();
    section_buf_init(buffer, largest);
    std::vector<ReceivedSection> sections;
    size_t begun = 0;
    for (const PacketView& packet : packetsOf(stream)) {
        if (packet.pid() != pid || !packet.hasPayload())
            continue;
        auto* from = const_cast<uint8_t*>(packet.payload());
        int left = static_cast<int>(packet.payloadBytes());
        bool start = packet.unitStart();
        while (left > 0) {
            int status = 0;
            if (buffer->count == 0)
                begun = packet.index;
            int used = section_buf_add_transport_payload(buffer, from, left, start, &status);
            if (status < 0) {
                section_buf_reset(buffer);
            } else if (status == 1) {
                const uint8_t* data = section_buf_data(buffer);
                sections.push_back({Bytes(data, data + buffer->len), begun, packet.index});
                section_buf_reset(buffer);
            }
            start = false;
            from += used;
            left -= used;
            if (used == 0)
                break;
        }
    }
    return sections;
}

}  // namespace mkstreams

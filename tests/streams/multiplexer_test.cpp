// The multiplexer on small inputs: cutting into packets, clock references, counters, and rates.
#include "tools/mkstreams/multiplexer.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using namespace mkstreams;

const int64_t second = 27000000;
const int64_t ticks = 13500;

Bytes sectionOf(size_t size, unsigned tableId = 0x80) {
    Bytes section = {static_cast<uint8_t>(tableId), 0x70, 0};
    section.resize(size - 4, 0x55);
    closeSection(&section);
    return section;
}

PesStream streamOf(uint16_t pid, size_t count, size_t size) {
    PesStream stream = {pid, {}};
    for (size_t i = 0; i < count; i++) {
        int64_t time = second * static_cast<int64_t>(i) / static_cast<int64_t>(count);
        stream.packets.push_back({Bytes(size, static_cast<uint8_t>(i)), time,
                                  time + second / static_cast<int64_t>(count), i == 0});
    }
    return stream;
}

struct Packet {
    const uint8_t* at;
    unsigned pid() const {
        return (at[1] & 0x1F) << 8 | at[2];
    }
    bool unitStart() const {
        return (at[1] & 0x40) != 0;
    }
    bool hasField() const {
        return (at[3] & 0x20) != 0;
    }
    bool hasPayload() const {
        return (at[3] & 0x10) != 0;
    }
    bool hasPcr() const {
        return hasField() && at[4] > 0 && (at[5] & 0x10) != 0;
    }
    int64_t pcr() const {
        int64_t base =
            static_cast<int64_t>(at[6]) << 25 | at[7] << 17 | at[8] << 9 | at[9] << 1 | at[10] >> 7;
        return base * 300 + ((at[10] & 1) << 8 | at[11]);
    }
    const uint8_t* payload() const {
        return at + (hasField() ? 5 + at[4] : 4);
    }
};

std::vector<Packet> packetsOf(const TransportStream& stream) {
    std::vector<Packet> packets;
    for (size_t at = 0; at < stream.packets.size(); at += packetSize)
        packets.push_back({stream.packets.data() + at});
    return packets;
}

TransportStream made(const MultiplexInput& input) {
    TransportStream stream;
    std::string error;
    EXPECT_TRUE(multiplex(input, ticks, &stream, &error)) << error;
    return stream;
}

TEST(Multiplexer, ClockReferenceIsExactAndFrequentOnWhateverPid) {
    for (uint16_t pcrPid : {0x100, 0x101, 0x1F0}) {
        MultiplexInput input = {
            {}, {streamOf(0x100, 10, 9000), streamOf(0x101, 2, 50)}, pcrPid, second};
        TransportStream stream = made(input);
        std::vector<Packet> packets = packetsOf(stream);
        ASSERT_EQ(packets.size(), static_cast<size_t>(second / ticks));
        int64_t last = 0;
        size_t found = 0;
        for (size_t i = 0; i < packets.size(); i++) {
            ASSERT_EQ(packets[i].at[0], 0x47);
            if (!packets[i].hasPcr())
                continue;
            EXPECT_EQ(packets[i].pid(), pcrPid);
            EXPECT_EQ(packets[i].pcr(), static_cast<int64_t>(i) * ticks);
            EXPECT_LE(packets[i].pcr() - last, second * 40 / 1000);
            last = packets[i].pcr();
            found++;
        }
        EXPECT_GT(found, 24u);
        EXPECT_GT(last, second - second * 40 / 1000);
    }
}

TEST(Multiplexer, CountersRunOnOverTheLoop) {
    MultiplexInput input = {{{"A", 0x10, {sectionOf(500)}, 300, false}},
                            {streamOf(0x100, 7, 1000), streamOf(0x101, 3, 400)},
                            0x100,
                            second};
    TransportStream stream = made(input);
    std::map<unsigned, unsigned> payloads;
    for (int round = 0; round < 2; round++)
        for (const Packet& packet : packetsOf(stream)) {
            if (packet.pid() == 0x1FFF)
                continue;
            unsigned before = payloads[packet.pid()];
            unsigned expected = packet.hasPayload() ? before : before + 15;
            EXPECT_EQ(packet.at[3] & 15u, expected % 16) << packet.pid();
            payloads[packet.pid()] += packet.hasPayload();
        }
    for (const auto& [pid, count] : payloads)
        EXPECT_EQ(count % 32, 0u) << pid;
}

TEST(Multiplexer, StreamsComeOutAsTheyWentInWithinTheirTimes) {
    MultiplexInput input = {{}, {streamOf(0x100, 12, 3000)}, 0x1FFF, second};
    TransportStream stream = made(input);
    Bytes received;
    size_t starts = 0;
    std::vector<Packet> packets = packetsOf(stream);
    for (size_t i = 0; i < packets.size(); i++) {
        if (packets[i].pid() != 0x100)
            continue;
        if (packets[i].unitStart()) {
            int64_t now = static_cast<int64_t>(i) * ticks;
            EXPECT_GE(now, input.streams[0].packets[starts].earliest);
            EXPECT_EQ(received.size(), starts * 3000);
            starts++;
        }
        received.insert(received.end(), packets[i].payload(), packets[i].at + packetSize);
    }
    Bytes sent;
    for (const Pes& pes : input.streams[0].packets)
        append(sent, pes.bytes);
    EXPECT_EQ(received, sent);
}

/** Takes sections out of packets of a PID by the pointer field, as ISO/IEC 13818-1 tells. */
std::vector<Bytes> sectionsOn(const TransportStream& stream, unsigned pid) {
    std::vector<Bytes> sections;
    Bytes open;
    auto take = [&]() {
        while (open.size() >= 3 && open[0] != 0xFF) {
            size_t size = ((open[1] & 15u) << 8 | open[2]) + 3;
            if (open.size() < size)
                return;
            sections.push_back(Bytes(open.begin(), open.begin() + static_cast<ptrdiff_t>(size)));
            open.erase(open.begin(), open.begin() + static_cast<ptrdiff_t>(size));
        }
    };
    for (const Packet& packet : packetsOf(stream)) {
        if (packet.pid() != pid)
            continue;
        const uint8_t* from = packet.payload();
        if (packet.unitStart()) {
            open.insert(open.end(), from + 1, from + 1 + *from);
            take();
            open.clear();
            from += 1 + *from;
        }
        open.insert(open.end(), from, packet.at + packetSize);
        take();
    }
    return sections;
}

TEST(Multiplexer, PackedSectionsSurviveEveryAlignment) {
    for (size_t first = 160; first < 380; first++) {
        for (bool adaptation : {false, true}) {
            std::vector<Bytes> sections = {sectionOf(first, 1), sectionOf(20, 2),
                                           sectionOf(400, 3)};
            MultiplexInput input = {{{"P", 0x11, sections, 1000, adaptation}}, {}, 0x1FFF, second};
            std::vector<Bytes> received = sectionsOn(made(input), 0x11);
            ASSERT_EQ(received.size(), 16 * sections.size()) << first;
            for (size_t i = 0; i < received.size(); i++)
                ASSERT_EQ(received[i], sections[i % sections.size()]) << first;
        }
    }
}

TEST(Multiplexer, SectionsOfOnePidKeepTheirDistance) {
    // Long sections of one sub-table that come close to each other, and short ones of others.
    MultiplexInput input = {{{"L", 0x12, {sectionOf(4096, 1)}, 240, false},
                             {"M", 0x12, {sectionOf(4096, 1), sectionOf(60, 2)}, 4000, false},
                             {"N", 0x12, {sectionOf(60, 3)}, 4000, false}},
                            {},
                            0x1FFF,
                            4 * second};
    TransportStream stream = made(input);
    std::vector<Packet> packets = packetsOf(stream);
    int64_t last = -second;
    int64_t ended = -second;
    for (size_t i = 0; i < packets.size(); i++) {
        if (packets[i].pid() != 0x12)
            continue;
        int64_t now = static_cast<int64_t>(i) * ticks;
        EXPECT_GE(now - last, second * 1504 / 1000000);
        bool begins = packets[i].unitStart() && packets[i].payload()[1] == 1;
        if (begins) {
            EXPECT_GE(now - ended, second * 25 / 1000) << i;
        }
        // The last packet of a section holds less than a packet, but for the 60 bytes behind it.
        if (!begins)
            ended = now + ticks;
        last = now;
    }
}

TEST(Multiplexer, SectionsSentAnyNumberOfTimesAreFilledUpToWholeCycles) {
    for (size_t size : {40u, 200u, 500u}) {
        Burst burst = {"E", 0x12, {sectionOf(size, 0x50)}, 300, false, true};
        TransportStream stream = made({{burst}, {}, 0x1FFF, second});
        std::vector<Bytes> received = sectionsOn(stream, 0x12);
        size_t stuffing = 0;
        for (const Bytes& section : received)
            stuffing += section[0] == 0x72 ? 1 : 0;
        size_t sent = 0;
        for (const Packet& packet : packetsOf(stream))
            sent += packet.pid() == 0x12 ? 1 : 0;
        EXPECT_EQ(repetitions(burst, second), 4);
        EXPECT_EQ(received.size() - stuffing, 4u);
        EXPECT_EQ(sent % 16, 0u);
        EXPECT_LT(stuffing, 16u);
    }
}

TEST(Multiplexer, HeadersOfPesPacketsStayWhole) {
    // 14 bytes of header and a few of data, spread over 16 packets.
    PesStream small = {0x100, {{{0, 0, 1, 0xBD, 0, 20, 0x80, 0x80, 5}, 0, second, false}}};
    small.packets[0].bytes.resize(29, 0x21);
    TransportStream stream = made({{}, {small}, 0x1FFF, second});
    size_t sent = 0;
    Bytes received;
    for (const Packet& packet : packetsOf(stream)) {
        if (packet.pid() != 0x100)
            continue;
        if (sent++ == 0) {
            EXPECT_EQ(packet.at + packetSize - packet.payload(), 14);
        }
        received.insert(received.end(), packet.payload(), packet.at + packetSize);
    }
    EXPECT_EQ(sent, 16u);
    EXPECT_EQ(received, small.packets[0].bytes);
    // One byte less does not fill the packets that follow the header.
    small.packets[0].bytes.pop_back();
    TransportStream none;
    std::string error;
    EXPECT_FALSE(multiplex({{}, {small}, 0x1FFF, second}, ticks, &none, &error));
    EXPECT_NE(error.find("PID 256"), std::string::npos) << error;
}

TEST(Multiplexer, WhatDoesNotFitIsRefused) {
    TransportStream stream;
    std::string error;
    MultiplexInput tooMuch = {{}, {streamOf(0x100, 10, 60000)}, 0x1FFF, second};
    EXPECT_FALSE(multiplex(tooMuch, ticks, &stream, &error));
    EXPECT_NE(error.find("PID 256"), std::string::npos) << error;
    // The ladder of rates finds one that carries it.
    EXPECT_TRUE(multiplexAtFittingRate(tooMuch, &stream, &error)) << error;
    EXPECT_LT(stream.packetTicks, ticks);
    // The last section of the loop ends 9 ms before the first of the next.
    MultiplexInput tooClose = {{{"C", 0x12, {sectionOf(3600)}, 1000, false}}, {}, 0x1FFF, second};
    EXPECT_FALSE(multiplex(tooClose, ticks, &stream, &error));
    EXPECT_NE(error.find("PID 18 over the loop's end"), std::string::npos) << error;
    // A last PES packet of 5 bytes cannot be spread over the packets that are missing to 16.
    MultiplexInput tooSmall = {{}, {streamOf(0x100, 1, 5)}, 0x1FFF, second};
    EXPECT_FALSE(multiplex(tooSmall, ticks, &stream, &error));
    EXPECT_FALSE(multiplex(tooMuch, 13501, &stream, &error));
}

TEST(Section, CleanEndIsFoundByVersion) {
    auto build = [](unsigned version) {
        Bytes section = {0x42, 0xF0, 0, 0, 1, static_cast<uint8_t>(0xC1 | version << 1), 0, 0};
        section.resize(300, 0x20);
        closeSection(&section);
        return section;
    };
    for (unsigned first = 0; first < 32; first++) {
        Bytes section = buildCleanly(build, first);
        EXPECT_TRUE(isSoundSection(section));
        EXPECT_TRUE(endsCleanly(section));
    }
    Bytes section = build(0);
    section[182] = 0xFF;  // the last byte of the first packet
    EXPECT_FALSE(endsCleanly(section));
    EXPECT_FALSE(isSoundSection(section));
    EXPECT_TRUE(buildCleanly([](unsigned) { return Bytes(200, 0xFF); }).empty());
}

}  // namespace

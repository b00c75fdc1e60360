// Sections and PES packets out of transport packets, what a section filter lets through, and the
// stream file as it is played over and over.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <set>

#include "simulator/demux/demux_state.h"
#include "simulator/stream/ts_stream.h"
#include "simulator/stream/ts_units.h"
#include "tests/shared/demux_streams.h"

namespace {

using namespace demux_test;

struct Found {
    Bytes bytes;
    uint64_t first;
    uint64_t last;
};

template <typename Assembler>
std::vector<Found> assemble(const Bytes& stream, uint16_t pid) {
    Assembler assembler;
    std::vector<Found> found;
    for (size_t i = 0; i * 188 < stream.size(); i++) {
        sim::TsPacket packet = sim::readTsPacket(&stream[i * 188]);
        if (packet.pid != pid)
            continue;
        assembler.push(packet, i, [&](const sim::TsUnit& unit) {
            found.push_back({Bytes(unit.bytes, unit.bytes + unit.size), unit.first, unit.last});
        });
    }
    return found;
}

constexpr uint16_t pid = 0x12;

TEST(SimDemuxSections, AreFoundWhereverTheyLieInThePackets) {
    // Sizes about the edges: a header cut by the end of a packet, a section that ends with it, one
    // of the largest size, several in one packet.
    const std::vector<std::vector<size_t>> rows = {
        {16},
        {183},
        {184},
        {182, 20},
        {181, 20},
        {180, 20},
        {366, 12, 12, 12, 400},
        {20, 20, 20, 20, 20, 20, 20, 20, 20, 20, 20},
        {4096, 4096},
        {12, 4096, 12},
    };
    for (const std::vector<size_t>& sizes : rows) {
        std::vector<Bytes> sections;
        for (size_t i = 0; i < sizes.size(); i++)
            sections.push_back(makeSection(0x4e, static_cast<uint16_t>(i), 3, sizes[i]));
        StreamMaker maker;
        maker.sections(pid, sections);
        maker.sections(pid, {makeSection(0x4e, 0xffff, 3, 16)});
        std::vector<Found> found = assemble<sim::TsSectionAssembler>(maker.bytes, pid);
        ASSERT_EQ(found.size(), sections.size() + 1) << sizes[0] << ", of " << sizes.size();
        for (size_t i = 0; i < sections.size(); i++)
            EXPECT_EQ(found[i].bytes, sections[i]) << sizes[0] << ", number " << i;
    }
}

TEST(SimDemuxSections, TellTheirPackets) {
    StreamMaker maker;
    maker.nulls(2);
    maker.sections(pid, {makeSection(0x50, 1, 0, 300), makeSection(0x50, 2, 0, 40)});
    std::vector<Found> found = assemble<sim::TsSectionAssembler>(maker.bytes, pid);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].first, 2u);
    EXPECT_EQ(found[0].last, 3u);
    EXPECT_EQ(found[1].first, 3u);
    EXPECT_EQ(found[1].last, 3u);
}

struct Damage {
    const char* what;
    size_t packet;
    size_t offset;
    uint8_t value;
    size_t survivors;
};

TEST(SimDemuxSections, TornOnesAreDropped) {
    // Three sections of 400 bytes, each in packets 3n, 3n+1, 3n+2.
    const Damage rows[] = {
        {"nothing", 0, 0, 0x47, 3},
        {"error indicator in the middle", 4, 1, 0x80, 2},
        {"counter of the middle packet", 4, 3, 0x1f, 2},
        {"repeats its predecessor's counter", 4, 3, 0x13, 2},
        {"scrambled", 4, 3, 0x94, 2},
        {"adaptation field past the end", 4, 3, 0x34, 2},
        {"without payload", 4, 3, 0x24, 2},
        {"start indicator with a pointer past the end", 4, 1, 0x40, 2},
        {"section_length of more than 4093", 3, 6, 0xbf, 2},
        {"pointer past the end", 3, 4, 0xff, 2},
        {"unit start lost", 3, 1, 0, 2},
    };
    for (const Damage& row : rows) {
        StreamMaker maker;
        std::vector<Bytes> sections;
        for (uint16_t i = 0; i < 3; i++) {
            sections.push_back(makeSection(0x42, i, 0, 400));
            maker.section(pid, sections.back());
        }
        // What a pointer field of the middle packet would be.
        maker.bytes[4 * 188 + 4] = 0xf0;
        Bytes expected = sections[1];
        expected[183] = 0xf0;
        maker.bytes[row.packet * 188 + row.offset] = row.value;
        std::vector<Found> found = assemble<sim::TsSectionAssembler>(maker.bytes, pid);
        ASSERT_EQ(found.size(), row.survivors) << row.what;
        EXPECT_EQ(found.front().bytes, sections[0]) << row.what;
        EXPECT_EQ(found.back().bytes, sections[2]) << row.what;
        if (row.survivors == 3) {
            EXPECT_EQ(found[1].bytes, expected);
        }
    }
}

TEST(SimDemuxSections, ARepeatedPacketCountsOnce) {
    StreamMaker maker;
    Bytes section = makeSection(0x42, 1, 0, 400);
    maker.section(pid, section);
    Bytes again(maker.bytes.begin() + 188, maker.bytes.begin() + 2 * 188);
    maker.bytes.insert(maker.bytes.begin() + 188, again.begin(), again.end());
    std::vector<Found> found = assemble<sim::TsSectionAssembler>(maker.bytes, pid);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].bytes, section);
}

TEST(SimDemuxSections, KnowWhetherTheyCarryACrc) {
    struct {
        Bytes section;
        bool has;
        bool right;
    } rows[] = {
        {makeSection(0, 1, 0, 16), true, true},
        {makeShortSection(0x70, 8), false, false},
        {makeShortSection(0x7e, 4), false, false},
        {makeShortSection(0x73, 20), true, false},
        {{0x72, 0xf0, 1, 9}, false, false},
        {{0x40, 0xb0, 0}, true, false},
        {{0x40, 0xb0}, false, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(sim::sectionHasCrc(row.section.data(), row.section.size()), row.has)
            << int{row.section[0]};
        EXPECT_EQ(sim::sectionCrcIsRight(row.section.data(), row.section.size()), row.right)
            << int{row.section[0]};
    }
    Bytes section = makeSection(0, 1, 0, 200);
    for (size_t i = 3; i < section.size(); i++) {
        section[i] ^= 0x10;
        EXPECT_FALSE(sim::sectionCrcIsRight(section.data(), section.size())) << i;
        section[i] ^= 0x10;
    }
}

struct Pass {
    const char* what;
    Bytes match;
    Bytes mask;
    Bytes negate;
    uint8_t depth;
    bool passes;
};

TEST(SimDemuxFilter, MatchMaskNegateAndDepth) {
    // Table 0x4e, extension 0x1234, version 5.
    const Pass rows[] = {
        {"depth 0", {0xff}, {0xff}, {}, 0, true},
        {"table", {0x4e}, {0xff}, {}, 1, true},
        {"other table", {0x4f}, {0xff}, {}, 1, false},
        {"other table in a masked bit", {0x4f}, {0xfe}, {}, 1, true},
        {"beyond the depth", {0x4e, 0x99}, {0xff, 0xff}, {}, 1, true},
        {"extension", {0x4e, 0x12, 0x34}, {0xff, 0xff, 0xff}, {}, 3, true},
        {"other extension", {0x4e, 0x12, 0x35}, {0xff, 0xff, 0xff}, {}, 3, false},
        {"version", {0x4e, 0, 0, 5 << 1}, {0xff, 0, 0, 0x3e}, {}, 4, true},
        {"other version", {0x4e, 0, 0, 6 << 1}, {0xff, 0, 0, 0x3e}, {}, 4, false},
        {"not this version", {0x4e, 0, 0, 5 << 1}, {0xff, 0, 0, 0x3e}, {0, 0, 0, 0x3e}, 4, false},
        {"not another version", {0x4e, 0, 0, 4 << 1}, {0xff, 0, 0, 0x3e}, {0, 0, 0, 0x3e}, 4, true},
        {"one negated bit differs", {0x4e, 0x13, 0x34}, {255, 255, 255}, {0, 255, 255}, 3, true},
        {"no negated bit differs", {0x4e, 0x12, 0x34}, {255, 255, 255}, {0, 255, 255}, 3, false},
        {"negated, but another table", {0x4f, 0x13}, {255, 255}, {0, 255}, 2, false},
        {"negate without mask", {0x4e}, {0xff}, {0, 0xff}, 2, true},
        {"a byte behind the end", Bytes(16), Bytes(16, 0xff), {}, 16, false},
        {"no bit of a byte behind the end", {0x4e}, {0xff}, {}, 16, true},
    };
    Bytes section = makeSection(0x4e, 0x1234, 5, 12);
    for (const Pass& row : rows) {
        QLX_SectionFilterParams params = {};
        std::copy(row.match.begin(), row.match.end(), params.au8Match);
        std::copy(row.mask.begin(), row.mask.end(), params.au8Mask);
        std::copy(row.negate.begin(), row.negate.end(), params.au8Negate);
        params.uDepth = row.depth;
        EXPECT_EQ(sim::sectionPasses(params, section.data(), section.size()), row.passes)
            << row.what;
    }
}

TEST(SimDemuxPes, BoundedEndByTheirLengthOthersWithTheNext) {
    StreamMaker maker;
    Bytes bounded = makePes(1000, 400, true);
    Bytes open1 = makePes(2000, 500, false);
    Bytes open2 = makePes(3000, 20, false);
    for (const Bytes& pes : {bounded, open1, open2, bounded})
        maker.pes(pid, pes);
    std::vector<Found> found = assemble<sim::TsPesAssembler>(maker.bytes, pid);
    ASSERT_EQ(found.size(), 4u);
    EXPECT_EQ(found[0].bytes, bounded);
    EXPECT_EQ(found[0].last, 2u);
    EXPECT_EQ(found[1].bytes, open1);
    EXPECT_EQ(found[1].last, 6u);
    EXPECT_EQ(found[2].bytes, open2);
    EXPECT_EQ(found[3].bytes, bounded);

    StreamMaker torn;
    torn.pes(pid, open1);
    torn.bytes.resize(188);
    torn.pes(pid, bounded);
    found = assemble<sim::TsPesAssembler>(torn.bytes, pid);
    ASSERT_EQ(found.size(), 1u) << "a lost packet drops the PES packet that it belonged to";
    EXPECT_EQ(found[0].bytes, bounded);
}

TEST(SimDemuxStream, FindsThePacketsOfAnyFile) {
    StreamMaker maker;
    for (uint16_t i = 0; i < 10; i++)
        maker.section(pid, makeSection(0x42, i, 0, 60));
    Bytes plain = maker.bytes;
    auto packetAt = [&](size_t i) {
        return Bytes(plain.begin() + static_cast<long>(i * 188),
                     plain.begin() + static_cast<long>((i + 1) * 188));
    };
    Bytes longer;
    Bytes misleading;
    for (size_t i = 0; i < 10; i++) {
        Bytes packet = packetAt(i);
        packet.resize(204, 0xaa);
        longer.insert(longer.end(), packet.begin(), packet.end());
        packet[188] = i < 3 ? 0x47 : 0xaa;
        misleading.insert(misleading.end(), packet.begin(), packet.end());
    }
    Bytes garbage = {1, 0x47, 2, 3, 0x47};
    Bytes shifted = garbage;
    shifted.insert(shifted.end(), plain.begin(), plain.end());
    Bytes inserted = plain;
    inserted.insert(inserted.begin() + 5 * 188, garbage.begin(), garbage.end());
    Bytes cut = plain;
    cut.resize(cut.size() - 10);
    Bytes noSync = plain;
    noSync[4 * 188] = 0;
    Bytes changing = plain;
    changing.insert(changing.end(), longer.begin(), longer.end());

    struct {
        const char* what;
        const Bytes* content;
        uint32_t packets;
        size_t sections;
    } rows[] = {
        {"188", &plain, 10, 10},
        {"204", &longer, 10, 10},
        {"204, with parity bytes like a sync byte", &misleading, 10, 10},
        {"garbage in front", &shifted, 10, 10},
        {"garbage between", &inserted, 10, 10},
        {"cut", &cut, 9, 9},
        {"one sync byte wrong", &noSync, 10, 9},
        {"from 188 to 204", &changing, 20, 20},
        {"nothing but garbage", &garbage, 0, 0},
    };
    for (const auto& row : rows) {
        sim::TsStream stream(*row.content, 0);
        EXPECT_EQ(stream.packetCount(), row.packets) << row.what;
        EXPECT_EQ(stream.sectionsOf(pid).spans.size(), row.sections) << row.what;
    }
    EXPECT_EQ(sim::TsStream(Bytes(), 0).packetCount(), 0u);
}

TEST(SimDemuxStream, TimeFollowsThePackets) {
    StreamMaker maker;
    maker.clock(0x100, 27000);
    maker.nulls(8);
    maker.clock(0x100, 27000 + 9 * 13500);
    sim::TsStream measured(maker.bytes, 0);
    EXPECT_EQ(measured.packetTicks(), 13500u);
    sim::TsStream stream(maker.bytes, 2700);
    EXPECT_EQ(stream.packetTicks(), 2700u);
    EXPECT_EQ(stream.packetAt(0), 0u);
    EXPECT_EQ(stream.packetAt(1), 1u);
    EXPECT_EQ(stream.packetAt(100), 1u);
    EXPECT_EQ(stream.packetAt(101), 2u);
    EXPECT_EQ(stream.endUs(0), 100);
    EXPECT_EQ(stream.endUs(123), 12400);
}

TEST(SimDemuxStream, ClocksStampsAndCountersRunOnFromLoopToLoop) {
    // Five packets of the PID, so that the counters of the file do not meet at the loop point.
    StreamMaker maker;
    maker.clock(pid, 0);
    for (uint64_t i = 0; i < 5; i++)
        maker.pes(pid, makePes((UINT64_C(1) << 33) - 3000 + i * 600, 100, true));
    sim::TsStream stream(maker.bytes, 13500);
    ASSERT_EQ(stream.packetCount(), 6u);
    int last = -1;
    for (uint64_t number = 0; number < 60; number++) {
        uint8_t bytes[188];
        stream.copyPacket(number, bytes);
        uint64_t loop = number / 6;
        if (number % 6 == 0) {
            uint64_t base = uint64_t{bytes[6]} << 25 | bytes[7] << 17 | bytes[8] << 9 |
                            bytes[9] << 1 | bytes[10] >> 7;
            EXPECT_EQ(base * 300 + ((bytes[10] & 1) << 8 | bytes[11]), number * 13500);
            continue;
        }
        int counter = bytes[3] & 0xf;
        if (last >= 0) {
            EXPECT_EQ(counter, (last + 1) & 0xf) << number;
        }
        last = counter;
        const uint8_t* pes = sim::readTsPacket(bytes).payload;
        uint64_t pts = uint64_t{pes[9] & 0xeu} << 29 | pes[10] << 22 | (pes[11] & 0xfe) << 14 |
                       pes[12] << 7 | pes[13] >> 1;
        uint64_t expected = (UINT64_C(1) << 33) - 3000 + (number % 6 - 1) * 600 + loop * 270;
        EXPECT_EQ(pts, expected % (UINT64_C(1) << 33)) << number;
    }
}

/** A PES packet with both stamps, and 20 bytes of data. */
Bytes makePesOfPicture(uint64_t pts, uint64_t dts) {
    Bytes pes = makePes(pts, 14, false);
    Bytes later = makePes(dts, 34, false);
    pes[7] = 0xc0;
    pes[8] = 10;
    pes[9] |= 0x10;
    later[9] = static_cast<uint8_t>((later[9] & 0x0f) | 0x10);
    pes.insert(pes.end(), later.begin() + 9, later.end());
    pes[3] = 0xe0;
    return pes;
}

/** Packets of the PID played from number `turn` of them on, each sent `times` times. */
Bytes turned(const Bytes& packets, size_t turn, size_t times) {
    Bytes out;
    size_t count = packets.size() / 188;
    for (size_t i = 0; i < count * times; i++) {
        auto from = packets.begin() + static_cast<long>((i / times + turn) % count * 188);
        out.insert(out.end(), from, from + 188);
        uint8_t& counter = out[out.size() - 188 + 3];
        counter = static_cast<uint8_t>((counter & 0xf0) | (i / times & 0xf));
    }
    return out;
}

/** The PES packets of both stamps and the packets themselves, loop for loop. */
void expectStampsToRunOn(const Bytes& packets, size_t turn, size_t times, uint64_t pts,
                         uint64_t dts) {
    // A packet lasts 90 units of the stamps. Before the turn, the last packet is the second PES
    // packet.
    sim::TsStream stream(turned(packets, turn, times), 300 * 90);
    size_t count = packets.size() / 188;
    ASSERT_EQ(stream.pesOf(pid).size(), 2u);
    for (const sim::TsSpan& span : stream.pesOf(pid)) {
        uint64_t later = span.first == (2 * count - 1 - turn) % count * times ? 3600 : 0;
        for (uint64_t loop : {0, 1, 9}) {
            uint64_t moved = later + loop * stream.packetCount() * 90;
            EXPECT_EQ(stream.pesBytes(pid, span, loop), makePesOfPicture(pts + moved, dts + moved))
                << "loop " << loop;
        }
    }
    for (uint64_t number = 0; times == 2 && number < 4 * stream.packetCount(); number += 2) {
        Bytes first(188);
        Bytes again(188);
        stream.copyPacket(number, first.data());
        stream.copyPacket(number + 1, again.data());
        EXPECT_EQ(first, again) << number;
    }
}

TEST(SimDemuxStream, StampsRunOnWhereverTheirHeaderIsCut) {
    const uint64_t pts = 9000;
    const uint64_t dts = 5400;
    const Bytes pes = makePesOfPicture(pts, dts);
    // Cut in up to two places; at 0 not at all.
    const size_t cuts[] = {0, 1, 3, 4, 6, 8, 9, 11, 13, 14, 17, 18, 19};
    for (size_t one : cuts) {
        for (size_t two : cuts) {
            std::set<size_t> ends = {one, two, pes.size()};
            ends.erase(0);
            StreamMaker maker;
            size_t from = 0;
            for (size_t end : ends) {
                maker.packet(pid, from == 0, Bytes(&pes[from], pes.data() + end));
                from = end;
            }
            maker.pes(pid, makePesOfPicture(pts + 3600, dts + 3600));
            for (size_t turn = 0; turn < maker.count && one <= two; turn++) {
                SCOPED_TRACE(testing::Message() << "cut " << one << ' ' << two << " turn " << turn);
                expectStampsToRunOn(maker.bytes, turn, 1, pts, dts);
                expectStampsToRunOn(maker.bytes, turn, 2, pts, dts);
            }
        }
    }
}

TEST(SimDemuxStream, SectionsMayRunOverTheLoopPoint) {
    // The file begins with the end of a section whose beginning is the end of the file.
    StreamMaker maker;
    Bytes whole = makeSection(0x50, 1, 0, 600);
    Bytes other = makeSection(0x50, 2, 0, 100);
    maker.section(pid, other);
    maker.section(pid, whole);
    Bytes rotated(maker.bytes.end() - 2 * 188, maker.bytes.end());
    rotated.insert(rotated.end(), maker.bytes.begin(), maker.bytes.end() - 2 * 188);
    for (size_t i = 0; i < maker.count; i++)
        rotated[i * 188 + 3] = static_cast<uint8_t>(0x10 | i);
    sim::TsStream changed(rotated, 0, {{pid, 0x50, 590, 0x77}});
    whole[590] = 0x77;
    EXPECT_EQ(memcmp(&changed.sectionsOf(pid).bytes[100], whole.data(), 596), 0);
    EXPECT_TRUE(changed.sectionsOf(pid).spans[1].crcGood);
    whole = makeSection(0x50, 1, 0, 600);
    sim::TsStream stream(rotated, 0);
    const sim::TsSections& found = stream.sectionsOf(pid);
    ASSERT_EQ(found.spans.size(), 2u);
    EXPECT_EQ(found.spans[0].size, other.size());
    EXPECT_EQ(found.spans[1].size, whole.size());
    EXPECT_EQ(found.spans[1].first, 3u);
    EXPECT_EQ(found.spans[1].last, stream.packetCount() + 1);
    EXPECT_TRUE(found.spans[1].crcGood);
    EXPECT_EQ(memcmp(&found.bytes[found.spans[1].offset], whole.data(), whole.size()), 0);
}

TEST(SimDemuxStream, AChangeOfATableReachesAllItsBytes) {
    // The only packet of the PID: its section begins at the end and runs into the next loop.
    Bytes section = makeSection(0x50, 1, 0, 183);
    StreamMaker one;
    Bytes payload = {133};
    payload.insert(payload.end(), section.begin() + 50, section.end());
    payload.insert(payload.end(), section.begin(), section.begin() + 50);
    one.packet(pid, true, payload);
    // A section whose middle packet is sent twice.
    Bytes longer = makeSection(0x50, 1, 0, 500);
    StreamMaker twice;
    twice.section(pid, longer);
    Bytes again(twice.bytes.begin() + 188, twice.bytes.begin() + 2 * 188);
    twice.bytes.insert(twice.bytes.begin() + 188, again.begin(), again.end());

    struct {
        const Bytes* stream;
        Bytes section;
    } rows[] = {{&one.bytes, section}, {&twice.bytes, longer}};
    for (const auto& row : rows) {
        for (size_t offset = 3; offset + 4 < row.section.size(); offset += 7) {
            Bytes expected = row.section;
            expected[offset] ^= 0xff;
            sim::TsStream stream(*row.stream, 0, {{pid, 0x50, offset, expected[offset]}});
            const sim::TsSections& found = stream.sectionsOf(pid);
            ASSERT_EQ(found.spans.size(), 1u) << offset;
            EXPECT_TRUE(found.spans[0].crcGood) << offset;
            EXPECT_TRUE(std::equal(expected.begin(), expected.end() - 4, found.bytes.begin()))
                << offset;
        }
    }
}

TEST(SimDemuxStream, PesPacketsAreMadeAnewInEachLoop) {
    StreamMaker maker;
    Bytes video1 = makePes(0, 500, false);
    Bytes video2 = makePes(9000, 300, false);
    maker.pes(pid, video1);
    maker.nulls(1);
    maker.pes(pid, video2);
    sim::TsStream stream(maker.bytes, 27000);
    const std::vector<sim::TsSpan>& spans = stream.pesOf(pid);
    ASSERT_EQ(spans.size(), 2u);
    // The last one of the loop is known to be whole when the first of the next loop begins.
    EXPECT_EQ(spans[1].last, stream.packetCount());
    EXPECT_EQ(stream.pesBytes(pid, spans[0], 0), video1);
    EXPECT_EQ(stream.pesBytes(pid, spans[1], 0), video2);
    EXPECT_EQ(stream.pesBytes(pid, spans[1], 7), makePes(9000 + 7 * 6 * 90, 300, false));
}

TEST(SimDemuxStream, AnyBytesAreSafe) {
    std::mt19937 random(7);
    StreamMaker maker;
    for (uint16_t i = 0; i < 20; i++) {
        maker.section(pid, makeSection(0x42, i, 0, 12 + i * 97));
        maker.pes(0x100, makePes(i * 3600, 1 + i * 50 + 14, i % 2 == 0));
        maker.clock(0x100, i * 27000);
    }
    for (int round = 0; round < 300; round++) {
        Bytes content = maker.bytes;
        for (int changes = 0; changes < 1 + round; changes++)
            content[random() % content.size()] = static_cast<uint8_t>(random());
        content.resize(content.size() - random() % 400);
        sim::TsStream stream(content, 0, {{pid, 0x42, random() % 100, 0x5a}});
        if (stream.packetCount() == 0)
            continue;
        for (uint16_t each : {pid, uint16_t{0x100}, uint16_t{0x1fff}}) {
            for (const sim::TsSpan& span : stream.sectionsOf(each).spans) {
                ASSERT_LE(span.offset + span.size, stream.sectionsOf(each).bytes.size());
                ASSERT_LE(span.size, 4096u);
            }
            for (const sim::TsSpan& span : stream.pesOf(each))
                EXPECT_EQ(stream.pesBytes(each, span, 1).size(), span.size);
        }
    }
}

}  // namespace

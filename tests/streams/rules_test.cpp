// What every stream on the air must keep to: clock, counters, rates of repetition, and the form in
// which compared sections must stand in a reference file.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "tests/streams/made_streams.h"

namespace {

using namespace mkstreams;

const int64_t ms = 27000;

class OnAir : public testing::TestWithParam<const char*> {
 protected:
    const TransportStream& stream() const {
        return streamOf(GetParam());
    }
    int64_t timeOf(size_t packet) const {
        return static_cast<int64_t>(packet) * stream().packetTicks;
    }
};

TEST_P(OnAir, ClockRunsEvenlyAndFillsTheLoop) {
    std::vector<PacketView> packets = packetsOf(stream().packets);
    const Multiplex& multiplex = multiplexOf(GetParam());
    EXPECT_EQ(timeOf(packets.size()), loopTicks(multiplex));
    int64_t last = 0;
    for (const PacketView& packet : packets) {
        ASSERT_EQ(packet.at[0], 0x47);
        EXPECT_EQ(packet.at[1] & 0x80, 0);
        if (!packet.hasPcr())
            continue;
        EXPECT_EQ(packet.pid(), multiplex.channels.front().pcrPid);
        ASSERT_EQ(packet.pcr(), timeOf(packet.index));
        EXPECT_LE(packet.pcr() - last, 40 * ms);
        last = packet.pcr();
    }
    EXPECT_LE(loopTicks(multiplex) - last, 40 * ms);
}

TEST_P(OnAir, CountersRunOnOverTheLoop) {
    std::map<unsigned, unsigned> counters;
    Bytes twice = stream().packets;
    append(twice, stream().packets);
    for (const PacketView& packet : packetsOf(twice)) {
        if (packet.pid() == 0x1FFF)
            continue;
        auto known = counters.find(packet.pid());
        if (known != counters.end() && packet.hasPayload()) {
            ASSERT_EQ(packet.counter(), (known->second + 1) % 16)
                << packet.pid() << " " << packet.index;
        }
        if (packet.hasPayload() || known == counters.end())
            counters[packet.pid()] = packet.hasPayload() ? packet.counter() : 15;
    }
}

/** A table, the longest time between two of its sections, and whether it is compared. */
struct TableRow {
    unsigned pid;  // 0x10000: the channel's PMT, 0x10001: its EIT, 0x10002: its ETT
    unsigned tableId;
    int longestMs;
};

const unsigned pmt = 0x10000;
const unsigned eit = 0x10001;
const unsigned ett = 0x10002;

// clang-format off
const TableRow dvbTables[] = {
    {0, 0x00, 100}, {1, 0x01, 800}, {pmt, 0x02, 100}, {16, 0x40, 2000}, {17, 0x42, 2000},
    {17, 0x4A, 2000}, {19, 0x71, 1000}, {20, 0x70, 10000}, {20, 0x73, 10000}, {30, 0x7E, 2000},
    {31, 0x7F, 1000}, {eit, 0x4E, 1000},
};
const TableRow atscTables[] = {
    {0, 0x00, 100}, {pmt, 0x02, 400}, {0x1FFB, 0xC7, 150}, {0x1FFB, 0xC8, 400},
    {0x1FFB, 0xC9, 400}, {0x1FFB, 0xCA, 60000}, {0x1FFB, 0xCD, 1000}, {eit, 0xCB, 500},
    {ett, 0xCC, 2000},
};
// clang-format on

/** A compared table: one section in the whole file, alone in packets that begin with it and do not
 *  end in 0xFF, repeated in time, also over the loop's end. */
TEST_P(OnAir, ComparedTablesStandAsTheReferenceNeedsThem) {
    const Multiplex& multiplex = multiplexOf(GetParam());
    const Channel& channel = multiplex.channels.front();
    bool atsc = multiplex.standard->family == Family::Atsc;
    std::vector<TableRow> rows(std::begin(dvbTables), std::end(dvbTables));
    if (atsc)
        rows.assign(std::begin(atscTables), std::end(atscTables));
    else if (multiplex.fileIndex == 1)
        rows.push_back({eit, 0x50, 1000});
    std::vector<PacketView> packets = packetsOf(stream().packets);
    for (const TableRow& row : rows) {
        unsigned pid = row.pid == pmt   ? channel.pmtPid
                       : row.pid == eit ? channel.eitPid
                       : row.pid == ett ? channel.ettPid
                                        : row.pid;
        SCOPED_TRACE("PID " + std::to_string(pid) + " table " + std::to_string(row.tableId));
        std::vector<ReceivedSection> sections;
        for (const ReceivedSection& section : sectionsOf(stream().packets, pid))
            if (section.bytes[0] == row.tableId)
                sections.push_back(section);
        ASSERT_FALSE(sections.empty());
        int64_t last = timeOf(sections.back().packet) - timeOf(packets.size());
        for (const ReceivedSection& section : sections) {
            EXPECT_EQ(section.bytes, sections.front().bytes);
            EXPECT_LE(timeOf(section.packet) - last, row.longestMs * ms);
            last = timeOf(section.packet);
            const PacketView& first = packets[section.packet];
            ASSERT_TRUE(first.unitStart());
            ASSERT_FALSE(first.hasField());
            ASSERT_EQ(first.payload()[0], 0);
            ASSERT_EQ(first.payload()[1], row.tableId);
        }
        EXPECT_TRUE(endsCleanly(sections.front().bytes));
    }
}

TEST_P(OnAir, NothingIsWhereNothingMayBe) {
    const LineUp& lineUp = shippedLineUp();
    std::set<unsigned> pids;
    for (const PacketView& packet : packetsOf(stream().packets))
        pids.insert(packet.pid());
    EXPECT_EQ(pids.count(lineUp.invalidPid), 0u);
    // A case asks for PID 8888, which a demultiplexer that takes 13 bits sees as 696.
    EXPECT_EQ(pids.count(696), 0u);
    for (const Burst& burst : tablesOf(lineUp, multiplexOf(GetParam())))
        for (const Bytes& section : burst.sections)
            EXPECT_NE(section[0], lineUp.invalidTableId);
}

std::set<unsigned> pidsOfTables(const Multiplex& multiplex) {
    std::set<unsigned> pids;
    for (const Burst& burst : tablesOf(shippedLineUp(), multiplex))
        pids.insert(burst.pid);
    return pids;
}

/** From the end of the packet with the last byte of one to the begin of that with the first byte of
 *  the next, over the loop's end too. */
TEST_P(OnAir, SectionsOfASubTableAreApart) {
    int64_t loop = timeOf(stream().packets.size() / packetSize);
    for (unsigned pid : pidsOfTables(multiplexOf(GetParam()))) {
        std::map<uint32_t, int64_t> ends;
        std::vector<ReceivedSection> sections = sectionsOf(stream().packets, pid);
        for (int64_t played : {int64_t{0}, loop}) {
            for (const ReceivedSection& section : sections) {
                // A short section, as the DIT is, has no table id extension.
                uint32_t subTable = section.bytes[0] * 65536u;
                if ((section.bytes[1] & 0x80) != 0)
                    subTable += section.bytes[3] * 256u + section.bytes[4];
                auto last = ends.find(subTable);
                if (last != ends.end()) {
                    EXPECT_GE(played + timeOf(section.packet) - last->second, 25 * ms)
                        << pid << " table " << static_cast<int>(section.bytes[0]);
                }
                ends[subTable] = played + timeOf(section.lastPacket + 1);
            }
        }
    }
}

/** A section's place (PID, table id, extension, number) tells what it is. */
TEST_P(OnAir, SectionsHaveAnIdentity) {
    for (unsigned pid : pidsOfTables(multiplexOf(GetParam()))) {
        std::map<Bytes, Bytes> known;
        std::map<Bytes, std::set<unsigned>> numbers;
        for (const ReceivedSection& section : sectionsOf(stream().packets, pid)) {
            const Bytes& bytes = section.bytes;
            if ((bytes[1] & 0x80) == 0)
                continue;
            Bytes subTable = {bytes[0], bytes[3], bytes[4]};
            Bytes place = subTable;
            place.push_back(bytes[6]);
            const Bytes& first = known.insert({place, bytes}).first->second;
            EXPECT_EQ(bytes, first) << pid << " table " << static_cast<int>(bytes[0]);
            // A schedule may leave numbers out, by rules of its own.
            if (bytes[0] < 0x50 || bytes[0] > 0x6F) {
                numbers[subTable].insert(bytes[6]);
                numbers[subTable].insert(256u + bytes[7]);
            }
        }
        for (const auto& [subTable, found] : numbers) {
            unsigned last = *found.rbegin() - 256;
            EXPECT_EQ(found.size(), last + 2) << pid << " table " << static_cast<int>(subTable[0]);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(LineUp, OnAir,
                         testing::Values("dvbt_main.ts", "dvbt_hd.ts", "dvbs_main.ts", "dvbs_hd.ts",
                                         "dvbc_main.ts", "dvbc_hd.ts", "atsct_main.ts",
                                         "atscc_main.ts", "atsc_caption.ts", "isdbt_main.ts",
                                         "isdbs_main.ts"),
                         [](const auto& row) {
                             std::string name = row.param;
                             return name.substr(0, name.find('.'));
                         });

/* The streams for tests ------------------------------------------------------------------------ */

TEST(Variants, VersionsChangeInTheMiddle) {
    Bytes bytes = variantOf("version_changes");
    const Bytes& good = streamOf("dvbt_main.ts").packets;
    ASSERT_EQ(bytes.size(), good.size());
    size_t middle = bytes.size() / packetSize / 2;
    for (unsigned pid : {0u, 1u, 16u, 17u, 31u, 512u}) {
        std::map<unsigned, std::set<Bytes>> before;
        std::map<unsigned, std::set<Bytes>> after;
        for (const ReceivedSection& section : sectionsOf(bytes, pid)) {
            EXPECT_TRUE(isSoundSection(section.bytes));
            unsigned key = section.bytes[0] * 256u + section.bytes[6];
            (section.packet < middle ? before : after)[key].insert(section.bytes);
        }
        for (unsigned tableId : {0x00u, 0x01u, 0x02u, 0x40u, 0x42u, 0x4Au, 0x7Fu}) {
            if (before.count(tableId * 256) == 0)
                continue;
            ASSERT_EQ(after[tableId * 256].size(), 1u) << tableId;
            unsigned first = before[tableId * 256].begin()->at(5) >> 1 & 31u;
            unsigned second = after[tableId * 256].begin()->at(5) >> 1 & 31u;
            EXPECT_EQ(second, (first + 1) % 32) << tableId;
        }
    }
}

TEST(Variants, DamagedSectionsFailTheirCrcAlone) {
    Bytes bytes = variantOf("crc_damaged");
    for (unsigned pid : {16u, 17u, 18u, 31u}) {
        size_t damaged = 0;
        for (const ReceivedSection& section : sectionsOf(bytes, pid))
            damaged += !isSoundSection(section.bytes);
        EXPECT_GT(damaged, 0u) << pid;
    }
    for (unsigned pid : {0u, 512u})
        for (const ReceivedSection& section : sectionsOf(bytes, pid))
            EXPECT_TRUE(isSoundSection(section.bytes));
}

TEST(Variants, ContinuityIsBroken) {
    Bytes bytes = variantOf("discontinuous");
    std::map<unsigned, unsigned> counters;
    std::map<unsigned, int> gaps;
    int duplicates = 0;
    for (const PacketView& packet : packetsOf(bytes)) {
        if (packet.pid() == 0x1FFF || !packet.hasPayload())
            continue;
        auto known = counters.find(packet.pid());
        if (known != counters.end()) {
            duplicates += packet.counter() == known->second;
            gaps[packet.pid()] += packet.counter() == (known->second + 2) % 16;
        }
        counters[packet.pid()] = packet.counter();
    }
    EXPECT_GT(duplicates, 0);
    for (unsigned pid : {0u, 18u, 513u, 516u})
        EXPECT_GT(gaps[pid], 0) << pid;
}

TEST(Variants, SectionsBeginBehindAdaptationFields) {
    Bytes bytes = variantOf("adaptation");
    const Multiplex& multiplex = multiplexOf("dvbt_main.ts");
    std::vector<PacketView> packets = packetsOf(bytes);
    size_t begun = 0;
    for (const PacketView& packet : packets) {
        if (packet.pid() > 0x1F || !packet.unitStart())
            continue;
        begun += packet.hasField();
    }
    EXPECT_GT(begun, 100u);
    for (const Burst& burst : tablesOf(shippedLineUp(), multiplex)) {
        std::set<Bytes> found;
        for (const ReceivedSection& section : sectionsOf(bytes, burst.pid))
            found.insert(section.bytes);
        for (const Bytes& section : burst.sections)
            EXPECT_EQ(found.count(section), 1u) << burst.name;
    }
}

TEST(Variants, LongPacketsAreTheGoodOnes) {
    Bytes bytes = variantOf("packets_204");
    const Bytes& good = streamOf("dvbt_main.ts").packets;
    ASSERT_EQ(bytes.size() / 204, good.size() / packetSize);
    for (size_t i = 0; i < good.size() / packetSize; i++)
        ASSERT_TRUE(std::equal(good.begin() + static_cast<ptrdiff_t>(i * packetSize),
                               good.begin() + static_cast<ptrdiff_t>((i + 1) * packetSize),
                               bytes.begin() + static_cast<ptrdiff_t>(i * 204)));
}

}  // namespace

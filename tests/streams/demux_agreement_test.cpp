// Three readers of the same streams agree to the byte: the simulated device's demultiplexer,
// libucsi, and the cases' reader of reference sections.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "simulator/stream/ts_stream.h"
#include "testcase/demux/demux_reference.h"
#include "tests/streams/made_streams.h"
#include "tools/mkstreams/section.h"

namespace {

using namespace mkstreams;

/** All sections of a PID in a loop of the stream, as the device delivers them. */
std::vector<Bytes> deliveredBy(const sim::TsStream& device, unsigned pid) {
    const sim::TsSections& sections = device.sectionsOf(static_cast<uint16_t>(pid));
    std::vector<Bytes> all;
    for (const sim::TsSpan& span : sections.spans) {
        auto from = sections.bytes.begin() + static_cast<ptrdiff_t>(span.offset);
        all.emplace_back(from, from + static_cast<ptrdiff_t>(span.size));
        EXPECT_EQ(span.crcGood, isSoundSection(all.back())) << pid;
    }
    return all;
}

std::vector<Bytes> foundByLibrary(const Bytes& stream, unsigned pid) {
    std::vector<Bytes> all;
    for (ReceivedSection& section : sectionsOf(stream, pid))
        all.push_back(std::move(section.bytes));
    return all;
}

/** The reference of a table that a case would compare with. */
Bytes referenceOf(const std::string& path, unsigned pid, uint8_t tableId) {
    RequestInfo_st request = {};
    request.uPid = static_cast<uint16_t>(pid);
    request.tableId = tableId;
    request.uVersion = REQUEST_ANY_VERSION;
    SectionData_st section = {};
    testing::internal::CaptureStdout();
    Demux_ReadTsData(nullptr, &request, &section, path.c_str());
    testing::internal::GetCapturedStdout();
    Bytes bytes(section.pBuffer, section.pBuffer + section.uLength);
    Demux_FreeTsData(&section);
    return bytes;
}

std::set<unsigned> pidsWithTables(const char* file) {
    std::set<unsigned> pids;
    for (const Burst& burst : tablesOf(shippedLineUp(), multiplexOf(file)))
        pids.insert(burst.pid);
    return pids;
}

/**
 * The tables of a PID that have one section. Further ones follow each other behind pointer fields,
 * where the cases' reader drops the end of the one before: it may miss the first.
 */
std::set<uint8_t> tablesOfOneSection(const char* file, unsigned pid) {
    std::map<uint8_t, size_t> counts;
    for (const Burst& burst : tablesOf(shippedLineUp(), multiplexOf(file)))
        for (const Bytes& section : burst.sections)
            counts[section[0]] += burst.pid == pid ? 1 : 0;
    std::set<uint8_t> tables;
    for (const auto& [tableId, count] : counts)
        if (count == 1)
            tables.insert(tableId);
    return tables;
}

class Agreement : public testing::TestWithParam<const char*> {
 protected:
    void SetUp() override {
        char name[] = "/tmp/agreement.XXXXXX";
        int file = mkstemp(name);
        ASSERT_GE(file, 0);
        path_ = name;
        const Bytes& stream = streamOf(GetParam()).packets;
        ASSERT_EQ(write(file, stream.data(), stream.size()), static_cast<ssize_t>(stream.size()));
        close(file);
    }
    void TearDown() override {
        unlink(path_.c_str());
    }
    std::string path_;
};

TEST_P(Agreement, DeviceLibraryAndReferenceGiveTheSameSections) {
    const Bytes& stream = streamOf(GetParam()).packets;
    sim::TsStream device(stream, 0);
    ASSERT_EQ(device.packetCount(), stream.size() / packetSize);
    size_t tables = 0;
    for (unsigned pid : pidsWithTables(GetParam())) {
        std::vector<Bytes> delivered = deliveredBy(device, pid);
        EXPECT_EQ(delivered, foundByLibrary(stream, pid)) << GetParam() << ", PID " << pid;
        std::map<uint8_t, Bytes> first;
        for (const Bytes& section : delivered)
            first.insert({section[0], section});
        std::set<uint8_t> single = tablesOfOneSection(GetParam(), pid);
        std::set<Bytes> known(delivered.begin(), delivered.end());
        for (const auto& [tableId, section] : first) {
            Bytes reference = referenceOf(path_, pid, tableId);
            EXPECT_TRUE(reference == section || (single.count(tableId) == 0 &&
                                                 (reference.empty() || known.count(reference) > 0)))
                << GetParam() << ", PID " << pid << ", table " << int{tableId};
            tables += reference == section;
        }
    }
    EXPECT_GE(tables, 6u);
}

INSTANTIATE_TEST_SUITE_P(OnTheAir, Agreement,
                         testing::Values("dvbt_main.ts", "dvbt_hd.ts", "dvbs_main.ts", "dvbs_hd.ts",
                                         "dvbc_main.ts", "dvbc_hd.ts", "atsct_main.ts",
                                         "atscc_main.ts", "atsc_caption.ts", "isdbt_main.ts",
                                         "isdbs_main.ts"),
                         [](const auto& row) {
                             std::string name = row.param;
                             return name.substr(0, name.find('.'));
                         });

TEST(AgreementOfVariants, ChangedDamagedAndPaddedTablesAreDeliveredAsTheyAre) {
    for (const char* name : {"version_changes", "crc_damaged", "adaptation"}) {
        Bytes stream = variantOf(name);
        sim::TsStream device(stream, 0);
        for (unsigned pid : pidsWithTables("dvbt_main.ts"))
            EXPECT_EQ(deliveredBy(device, pid), foundByLibrary(stream, pid)) << name << ' ' << pid;
    }
}

TEST(AgreementOfVariants, LongPacketsCarryTheSame) {
    sim::TsStream shorter(streamOf("dvbt_main.ts").packets, 0);
    sim::TsStream longer(variantOf("packets_204"), 0);
    EXPECT_EQ(longer.packetCount(), shorter.packetCount());
    EXPECT_EQ(longer.packetTicks(), shorter.packetTicks());
    for (unsigned pid : pidsWithTables("dvbt_main.ts"))
        EXPECT_EQ(deliveredBy(longer, pid), deliveredBy(shorter, pid)) << pid;
}

TEST(AgreementOfVariants, LostPacketsTakeWholeSectionsAway) {
    sim::TsStream good(streamOf("dvbt_main.ts").packets, 0);
    sim::TsStream torn(variantOf("discontinuous"), 0);
    size_t lost = 0;
    for (unsigned pid : pidsWithTables("dvbt_main.ts")) {
        std::vector<Bytes> all = deliveredBy(good, pid);
        std::set<Bytes> known(all.begin(), all.end());
        std::vector<Bytes> left = deliveredBy(torn, pid);
        EXPECT_LE(left.size(), all.size()) << pid;
        EXPECT_FALSE(left.empty()) << pid;
        for (const Bytes& section : left)
            EXPECT_EQ(known.count(section), 1u) << pid << ": a section that was never sent";
        lost += all.size() - left.size();
    }
    EXPECT_GT(lost, 0u);
}

}  // namespace

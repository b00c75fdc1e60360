// The transport stream reader on crafted packets: every row of its payload counts, the filter's
// form, appending with its counters, packet sizes, and files that lie about their lengths.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "testcase/demux/demux_reference.h"
#include "testcase/demux/demux_request.h"
#include "testcase/demux/ts_reader.h"

namespace {

using Bytes = std::vector<uint8_t>;

const uint16_t PID = 0x123;

/** A packet with payload bytes behind the header and an optional adaptation field. */
struct PacketMaker {
    uint16_t pid = PID;
    bool start = false;
    uint8_t counter = 0;
    uint8_t control = 1;  // adaptation_field_control
    Bytes body;           // everything behind the header
    size_t size = TS_PACKET_SIZE;
    uint8_t fill = 0xff;

    Bytes bytes() const {
        Bytes packet = {TS_SYNC_BYTE, static_cast<uint8_t>((start ? 0x40 : 0) | pid >> 8),
                        static_cast<uint8_t>(pid), static_cast<uint8_t>(control << 4 | counter)};
        packet.insert(packet.end(), body.begin(), body.end());
        packet.resize(TS_PACKET_SIZE, fill);
        packet.resize(size, 0xee);
        return packet;
    }

    Packet_st record() const {
        Packet_st packet{};
        Bytes all = bytes();
        memcpy(packet.buffer, all.data(), all.size());
        packet.uSize = static_cast<uint32_t>(all.size());
        return packet;
    }
};

/** A section of the table with `length` bytes in all, none of which is 0xff. */
Bytes makeSection(uint8_t tableId, size_t length, uint8_t seed = 1) {
    Bytes section(length);
    for (size_t i = 0; i < length; i++)
        section[i] = static_cast<uint8_t>((i * 7 + seed) % 251);
    section[0] = tableId;
    section[1] = static_cast<uint8_t>(0xb0 | (length - 3) >> 8);
    section[2] = static_cast<uint8_t>(length - 3);
    return section;
}

/** Cuts sections into packets as a multiplexer does: each starts behind a pointer field of 0. */
void addSection(std::vector<PacketMaker>* packets, const Bytes& section, uint8_t* counter) {
    size_t done = 0;
    while (done < section.size()) {
        PacketMaker packet;
        packet.start = done == 0;
        packet.counter = *counter;
        if (packet.start)
            packet.body.push_back(0);
        size_t room = TS_PACKET_SIZE - 4 - packet.body.size();
        size_t count = std::min(room, section.size() - done);
        packet.body.insert(packet.body.end(), section.begin() + done,
                           section.begin() + done + count);
        done += count;
        *counter = (*counter + 1) & 15;
        packets->push_back(packet);
    }
}

std::vector<PacketMaker> packetsOf(std::initializer_list<Bytes> sections) {
    std::vector<PacketMaker> packets;
    uint8_t counter = 0;
    for (const Bytes& section : sections)
        addSection(&packets, section, &counter);
    PacketMaker other;  // the look-ahead behind the last one of interest
    other.pid = 0x1fff;
    packets.push_back(other);
    packets.push_back(other);
    return packets;
}

Bytes streamOf(const std::vector<PacketMaker>& packets) {
    Bytes stream;
    for (const PacketMaker& packet : packets) {
        Bytes bytes = packet.bytes();
        stream.insert(stream.end(), bytes.begin(), bytes.end());
    }
    return stream;
}

/** A file of bytes that goes when the test ends. */
class StreamFile {
 public:
    explicit StreamFile(const Bytes& bytes) {
        char path[] = "/tmp/ts_reader_test_XXXXXX";
        int fd = mkstemp(path);
        path_ = path;
        FILE* file = fdopen(fd, "wb");
        fwrite(bytes.data(), 1, bytes.size(), file);
        fclose(file);
    }
    ~StreamFile() {
        unlink(path_.c_str());
    }
    StreamFile(const StreamFile&) = delete;
    StreamFile& operator=(const StreamFile&) = delete;

    TsFile_st* open() const {
        return tsFileOpen(path_.c_str());
    }
    const char* path() const {
        return path_.c_str();
    }

 private:
    std::string path_;
};

/** The reference that a request for a table finds in a stream. */
Bytes referenceIn(const Bytes& stream, uint8_t tableId) {
    StreamFile file(stream);
    RequestInfo_st request{};
    request.uPid = PID;
    request.tableId = tableId;
    request.uVersion = REQUEST_ANY_VERSION;
    SectionData_st data;
    Demux_ReadTsData(nullptr, &request, &data, file.path());
    Bytes bytes(data.pBuffer, data.pBuffer + data.uLength);
    Demux_FreeTsData(&data);
    return bytes;
}

struct PayloadRow {
    const char* what;
    uint8_t control;
    bool start;
    size_t size;
    /** Byte 4, and for an adaptation field with a start also the pointer field behind it. */
    int length;
    int pointer;
    int32_t result;
    int begin;
    int count;
};

// clang-format off
const PayloadRow payloadRows[] = {
    // what                                 control start size len  ptr result begin count
    {"payload alone",                             1, false, 188,  9,  -1, 0,   4, 184},
    {"payload alone of 204",                      1, false, 204,  9,  -1, 0,   4, 200},
    {"section at the pointer",                    1, true,  188,  0,  -1, 0,   5, 183},
    {"section behind another's end",              1, true,  188, 20,  -1, 0,  25, 163},
    {"section in a packet of 204",                1, true,  204, 20,  -1, 0,  25, 179},
    {"pointer to the packet's end",               1, true,  188, 183, -1, 0, 188,   0},
    {"pointer past the packet's end",             1, true,  188, 255, -1, 0, 208, -72},
    {"adaptation field alone",                    2, false, 188,  9,  -1, 1,   0,   0},
    {"adaptation field alone with start",         2, true,  188,  9,  -1, 1,   0,   0},
    {"field then payload: four bytes too many",   3, false, 188, 10,  -1, 0,  15, 177},
    {"field then payload of 204",                 3, false, 204, 10,  -1, 0,  15, 193},
    {"empty field then payload",                  3, false, 188,  0,  -1, 0,   5, 187},
    {"field up to the end",                       3, false, 188, 183, -1, 0, 188,   4},
    {"field past the packet's end",               3, false, 188, 255, -1, 0, 208, -68},
    {"field then section: four bytes too many",   3, true,  188, 10,   0, 0,  16, 176},
    {"field then pointer",                        3, true,  188, 10,   7, 0,  23, 169},
    {"field then pointer past the end",           3, true,  188, 10, 255, 0, 208, -79},
    {"field past the record with start",          3, true,  204, 255, -1, 0, 208, -53},
    {"reserved control",                          0, false, 188,  9,  -1, 0,  -1, -777},
    {"reserved control with start",               0, true,  188,  9,  -1, 0,  -1, -777},
};
// clang-format on

TEST(DemuxReader, PayloadBeginsAndCountsAsTheTableSays) {
    for (const PayloadRow& row : payloadRows) {
        PacketMaker maker;
        maker.control = row.control;
        maker.start = row.start;
        maker.size = row.size;
        maker.body = {static_cast<uint8_t>(row.length)};
        if (row.pointer >= 0) {
            maker.body.resize(static_cast<size_t>(row.length) + 1);
            maker.body.push_back(static_cast<uint8_t>(row.pointer));
        }
        Packet_st packet = maker.record();
        const uint8_t* payload = nullptr;
        int size = -777;
        EXPECT_EQ(GetPayloadBuffer(&packet, &payload, &size), row.result) << row.what;
        if (row.result != 0)
            continue;
        EXPECT_EQ(size, row.count) << row.what;
        if (row.begin < 0) {
            EXPECT_EQ(payload, nullptr) << row.what;
            continue;
        }
        EXPECT_EQ(payload - reinterpret_cast<const uint8_t*>(&packet), row.begin) << row.what;
        // Whatever the packet says, a count stays within the record.
        EXPECT_LE(row.begin + size, static_cast<int>(sizeof packet)) << row.what;
    }
}

TEST(DemuxReader, EveryFieldLengthAndPointerStaysWithinTheRecord) {
    for (int control = 0; control < 4; control++) {
        for (int length = 0; length < 256; length++) {
            for (size_t size : {188, 204}) {
                PacketMaker maker;
                maker.control = static_cast<uint8_t>(control);
                maker.start = true;
                maker.size = size;
                maker.fill = static_cast<uint8_t>(length * 37);
                maker.body = {static_cast<uint8_t>(length)};
                Packet_st packet = maker.record();
                const uint8_t* payload = nullptr;
                int count = 0;
                if (GetPayloadBuffer(&packet, &payload, &count) != 0 || payload == nullptr)
                    continue;
                auto begin = payload - reinterpret_cast<const uint8_t*>(&packet);
                ASSERT_GE(begin, 4);
                ASSERT_LE(begin, static_cast<int>(sizeof packet));
                ASSERT_LE(begin + count, static_cast<int>(sizeof packet));
            }
        }
    }
}

TEST(DemuxReader, StuffingIsCutFromTheEndOnly) {
    const struct {
        Bytes payload;
        int left;
    } rows[] = {
        {{1, 2, 3}, 3},
        {{1, 0xff, 3, 0xff, 0xff}, 3},
        {{0xff, 0xff}, 0},
        {{0xff, 1}, 2},
    };
    for (const auto& row : rows) {
        int size = static_cast<int>(row.payload.size());
        DiscardStuffByte(row.payload.data(), &size);
        EXPECT_EQ(size, row.left);
    }
    int negative = -5;
    DiscardStuffByte(rows[0].payload.data(), &negative);
    EXPECT_EQ(negative, -5);
}

TEST(DemuxReader, FilterTakesTheLengthBytesOut) {
    QLX_SectionFilterParams params{};
    params.uPid = 0x11;
    params.uTimeOutMs = 7;
    params.uBufferSize = 4096;
    for (int k = 0; k < QLX_SECTION_FILTER_BYTES; k++) {
        params.au8Match[k] = static_cast<uint8_t>(0x10 + k);
        params.au8Mask[k] = static_cast<uint8_t>(0xf0 + k);
    }
    FilterParams_st filter;
    LoadFilterParams(&params, nullptr, &filter);
    EXPECT_EQ(filter.uPid, 0x11);
    EXPECT_EQ(filter.uTimeOutMs, 7u);
    EXPECT_EQ(filter.au8Match[0], 0x10);
    EXPECT_EQ(filter.au8Mask[0], 0xf0);
    EXPECT_EQ(filter.au8Mask[1], 0);
    EXPECT_EQ(filter.au8Mask[2], 0);
    EXPECT_EQ(filter.au8Match[3], 0x11);
    EXPECT_EQ(filter.au8Match[15], 0x1d);
    EXPECT_EQ(filter.au8Mask[15], 0xfd);
}

TEST(DemuxReader, FilterOfARequestPutsTheTableIdWhereTheVersionBelongs) {
    RequestInfo_st request{};
    request.uPid = 0x1ffb;
    request.tableId = 0xc7;
    request.uVersion = 3;
    request.uTimeOutMs = 2500;
    request.uBufferSize = 4096;
    request.bContinuous = 1;
    request.eCrcMode = QLX_SECTION_CRC_NO_CHECK;
    FilterParams_st filter;
    LoadFilterParams(nullptr, &request, &filter);
    EXPECT_EQ(filter.uTimeOutMs, 2500u);
    EXPECT_EQ(filter.uBufferSize, 4096u);
    EXPECT_EQ(filter.bContinuous, 1u);
    EXPECT_EQ(filter.uPid, 0x1ffb);
    EXPECT_EQ(filter.eCrcMode, static_cast<uint32_t>(QLX_SECTION_CRC_CHECK));
    EXPECT_EQ(filter.au8Match[0], 0xc7);
    EXPECT_EQ(filter.au8Mask[0], 0xff);
    EXPECT_EQ(filter.au8Match[5], 0x8e);
    EXPECT_EQ(filter.au8Mask[5], 0x3e);
    EXPECT_EQ(filter.au8Negate[5], 0x3e);
    request.bVersionMatch = 1;
    LoadFilterParams(nullptr, &request, &filter);
    EXPECT_EQ(filter.au8Negate[5], 0);
    request.uVersion = REQUEST_ANY_VERSION;
    LoadFilterParams(nullptr, &request, &filter);
    EXPECT_EQ(filter.au8Mask[5], 0);
}

TEST(DemuxReader, OnlyWholeMasksSelect) {
    FilterParams_st filter{};
    filter.au8Match[0] = 0x42;
    filter.au8Mask[0] = 0xff;
    filter.au8Match[5] = 0xaa;
    filter.au8Mask[5] = 0x3e;
    const Bytes right = {0x42, 0, 0, 0, 0, 0};
    const Bytes wrong = {0x46, 0, 0, 0, 0, 0};
    EXPECT_EQ(SelectFilter(right.data(), 6, &filter), 0);
    EXPECT_EQ(SelectFilter(wrong.data(), 6, &filter), 1);
    EXPECT_EQ(SelectFilter(wrong.data(), 0, &filter), 0) << "nothing to compare";
    EXPECT_EQ(SelectFilter(nullptr, -3, &filter), 0);
    filter.au8Mask[5] = 0xff;
    EXPECT_EQ(SelectFilter(right.data(), 6, &filter), 1);
    EXPECT_EQ(SelectFilter(right.data(), 5, &filter), 0) << "byte 5 lies behind the payload";
}

TEST(DemuxReader, PacketSizeIsDecidedByTheByteBehind) {
    std::vector<PacketMaker> packets(4);
    packets[1].size = TS_PACKET_SIZE_MAX;
    packets[2].size = TS_PACKET_SIZE_MAX;
    for (size_t i = 0; i < packets.size(); i++)
        packets[i].counter = static_cast<uint8_t>(i);
    Bytes stream = {1, 2, 3, 0x46};  // garbage without a sync byte
    Bytes rest = streamOf(packets);
    stream.insert(stream.end(), rest.begin(), rest.end());
    StreamFile file(stream);
    TsFile_st* handle = file.open();
    for (uint32_t size : {188u, 204u, 204u}) {
        Packet_st packet{};
        ASSERT_EQ(DEMUX_ReadTSPacket(handle, &packet), 0);
        EXPECT_EQ(packet.uSize, size);
        EXPECT_EQ(tsPacketPid(&packet), PID);
    }
    Packet_st packet{};
    EXPECT_EQ(DEMUX_ReadTSPacket(handle, &packet), 1) << "nothing follows the last packet";
    tsFileClose(handle);
}

TEST(DemuxReader, SyncIsSearchedWithoutMovingAhead) {
    StreamFile file({0x00, TS_SYNC_BYTE, 0x11});
    TsFile_st* handle = file.open();
    EXPECT_EQ(NextIsSync(handle), 1);
    EXPECT_EQ(tsFilePlace(handle), 0);
    EXPECT_EQ(GetSync(handle), 1);
    EXPECT_EQ(tsFilePlace(handle), 1);
    EXPECT_EQ(NextIsSync(handle), 0);
    EXPECT_EQ(GetSync(handle), 0);
    EXPECT_EQ(tsFilePlace(handle), 1);
    Packet_st packet{};
    EXPECT_EQ(DEMUX_ReadTSPacket(handle, &packet), 1) << "two bytes are no packet";
    EXPECT_EQ(NextIsSync(handle), 1);
    EXPECT_EQ(GetSync(handle), 1);
    EXPECT_TRUE(tsFileAtEnd(handle));
    for (long place : {2, 1, 0, 0}) {
        GoBackOneByte(handle);  // the last one is before the begin
        EXPECT_EQ(tsFilePlace(handle), place);
    }
    tsFileRewind(handle);
    EXPECT_EQ(NextIsSync(handle), 1);
    EXPECT_EQ(GetSync(nullptr), 1);
    tsFileClose(handle);
}

TEST(DemuxReader, FilesThatBreakOffEnd) {
    PacketMaker whole;
    Bytes packet = whole.bytes();
    for (size_t length :
         {size_t{0}, size_t{1}, size_t{187}, size_t{188}, size_t{189}, size_t{203}}) {
        Bytes stream = packet;
        stream.resize(length, 0x10);
        StreamFile file(stream);
        TsFile_st* handle = file.open();
        Packet_st record{};
        EXPECT_EQ(DEMUX_ReadTSPacket(handle, &record), 1) << length;
        tsFileClose(handle);
        EXPECT_TRUE(referenceIn(stream, 0x42).empty()) << length;
    }
}

/** Appends packets one by one, and answers the results as a text. */
struct Appender {
    FilterParams_st filter{};
    SectionData_st data{};
    uint32_t started = 0;
    uint8_t counter = 0;
    Bytes buffer = Bytes(TS_SECTION_SIZE_MAX);

    explicit Appender(uint8_t tableId) {
        filter.au8Match[0] = tableId;
        filter.au8Mask[0] = 0xff;
        data.pBuffer = buffer.data();
    }
    int32_t add(const PacketMaker& packet) {
        Packet_st record = packet.record();
        return DEMUX_AppendTSPacket(&record, &filter, &data, &started, &counter);
    }
};

TEST(DemuxReader, ContinuityDecidesWhatIsAppended) {
    auto packets = packetsOf({makeSection(0x42, 500)});
    ASSERT_EQ(packets.size(), 5u);
    Appender appender(0x42);
    EXPECT_EQ(appender.add(packets[1]), 1) << "no start yet";
    EXPECT_EQ(appender.add(packets[0]), 0);
    EXPECT_EQ(appender.data.uLength, 183u);
    PacketMaker fieldOnly = packets[1];
    fieldOnly.control = 2;
    EXPECT_EQ(appender.add(fieldOnly), 0) << "no payload, and no start over";
    EXPECT_EQ(appender.data.uLength, 183u);
    EXPECT_EQ(appender.add(packets[1]), 0);
    EXPECT_EQ(appender.data.uLength, 367u);
    EXPECT_EQ(appender.add(packets[1]), 0) << "duplicate";
    EXPECT_EQ(appender.data.uLength, 367u);
    PacketMaker later = packets[2];
    later.counter = 9;
    EXPECT_EQ(appender.add(later), 0) << "lost packets";
    EXPECT_EQ(appender.started, 0u);
    EXPECT_EQ(appender.data.uLength, 0u);
    EXPECT_EQ(appender.add(packets[2]), 1);
    PacketMaker foreign = packets[0];
    foreign.body[1] = 0x46;
    EXPECT_EQ(appender.add(foreign), 1) << "the filter refuses";
    PacketMaker empty;
    empty.start = true;
    empty.control = 2;
    EXPECT_EQ(appender.add(empty), 1) << "a start without payload";
}

TEST(DemuxReader, CountersWrap) {
    std::vector<PacketMaker> packets;
    uint8_t counter = 15;
    const Bytes section = makeSection(0x42, 300);
    addSection(&packets, section, &counter);
    packets.resize(4);
    EXPECT_EQ(referenceIn(streamOf(packets), 0x42), section);
}

TEST(DemuxReader, PayloadThatWouldNotFitIsLost) {
    Appender appender(0x42);
    appender.data.uLength = TS_SECTION_SIZE_MAX - 183;
    PacketMaker packet;
    packet.start = true;
    packet.body = Bytes(184, 0x42);
    packet.body[0] = 0;
    EXPECT_EQ(appender.add(packet), 0);
    EXPECT_EQ(appender.data.uLength, 4096u);
    packet.start = false;
    packet.counter = 1;
    testing::internal::CaptureStdout();
    EXPECT_EQ(appender.add(packet), 0);
    EXPECT_NE(testing::internal::GetCapturedStdout().find("Payload is too long, cannot store it."),
              std::string::npos);
    EXPECT_EQ(appender.data.uLength, 4096u);
}

TEST(DemuxReader, NegativeCountsAppendNothing) {
    Appender appender(0x42);
    PacketMaker liar;
    liar.start = true;
    liar.control = 3;
    liar.body = {255};
    EXPECT_EQ(appender.add(liar), 0);
    EXPECT_EQ(appender.data.uLength, 0u);
    liar.start = false;
    liar.counter = 1;
    EXPECT_EQ(appender.add(liar), 0);
    EXPECT_EQ(appender.data.uLength, 0u);
}

TEST(DemuxReader, SectionsAreFoundAndCutToTheirLength) {
    const Bytes pat = makeSection(0x00, 16);
    const Bytes sdt = makeSection(0x42, 700);
    const Bytes longest = makeSection(0x50, 4096);
    auto packets = packetsOf({pat, sdt, longest, sdt});
    EXPECT_EQ(referenceIn(streamOf(packets), 0x00), pat);
    EXPECT_EQ(referenceIn(streamOf(packets), 0x42), sdt);
    EXPECT_EQ(referenceIn(streamOf(packets), 0x50), longest);
    EXPECT_TRUE(referenceIn(streamOf(packets), 0x43).empty());
    for (PacketMaker& packet : packets)
        packet.size = TS_PACKET_SIZE_MAX;
    // 204-byte packets: the sixteen bytes behind count as payload, so that only sections of a
    // single packet come out whole; and the file's end meets no look-ahead that could fail.
    EXPECT_EQ(referenceIn(streamOf(packets), 0x00), pat);
    EXPECT_NE(referenceIn(streamOf(packets), 0x42), sdt);
    EXPECT_TRUE(referenceIn(streamOf(packets), 0x43).empty());
}

TEST(DemuxReader, SectionBehindAnAdaptationFieldIsFound) {
    const Bytes section = makeSection(0x42, 60);
    PacketMaker packet;
    packet.start = true;
    packet.control = 3;
    packet.body = {20};
    packet.body.resize(21, 0x00);
    packet.body.push_back(5);  // pointer field, and the end of another section
    packet.body.insert(packet.body.end(), 5, 0x77);
    packet.body.insert(packet.body.end(), section.begin(), section.end());
    EXPECT_EQ(referenceIn(streamOf({packet, PacketMaker(), PacketMaker()}), 0x42), section);
}

TEST(DemuxReader, DiscontinuityStartsOverAtTheNextCopy) {
    const Bytes section = makeSection(0x42, 700);
    auto packets = packetsOf({section, section});
    packets.erase(packets.begin() + 1);
    EXPECT_EQ(referenceIn(streamOf(packets), 0x42), section);
}

TEST(DemuxReader, LastByteOfAllOnesIsTakenForStuffing) {
    Bytes section = makeSection(0x42, 100);
    section.back() = 0xff;
    auto packets = packetsOf({section});
    // One byte short of its length, the section never becomes complete.
    Bytes found = referenceIn(streamOf(packets), 0x42);
    EXPECT_EQ(found, Bytes(section.begin(), section.end() - 1));
    // In a section of more packets the byte at a packet's end is missing from the middle.
    section = makeSection(0x42, 300);
    section[182] = 0xff;
    EXPECT_NE(referenceIn(streamOf(packetsOf({section})), 0x42), section);
}

TEST(DemuxReader, AFileOf204ByPacketsIsReadAroundOnce) {
    const Bytes section = makeSection(0x42, 100);
    auto packets = packetsOf({section});
    for (PacketMaker& packet : packets)
        packet.size = TS_PACKET_SIZE_MAX;
    // The section's start stands last and its file ends just behind a packet.
    PacketMaker first;
    first.pid = 0x1fff;
    first.size = TS_PACKET_SIZE_MAX;
    std::vector<PacketMaker> turned = {first, packets[0]};
    EXPECT_EQ(referenceIn(streamOf(turned), 0x42), section);
    EXPECT_TRUE(referenceIn(streamOf(turned), 0x43).empty()) << "and the search ends";
}

TEST(DemuxReader, PacketDataAreTheFirstPacketOfThePid) {
    auto packets = packetsOf({makeSection(0x42, 100)});
    std::vector<PacketMaker> turned = {packets.back(), packets[0], packets.back()};
    StreamFile file(streamOf(turned));
    RequestInfo_st request{};
    request.uPid = PID;
    SectionData_st data;
    Demux_ReadTsPacketData(nullptr, &request, &data, file.path());
    EXPECT_EQ(Bytes(data.pBuffer, data.pBuffer + data.uLength), packets[0].bytes());
    Demux_FreeTsData(&data);
    EXPECT_EQ(data.pBuffer, nullptr);
}

TEST(DemuxReader, AFileThatCannotBeReadIsToldByTheOperation) {
    const struct {
        void (*read)(const QLX_SectionFilterParams*, const RequestInfo_st*, SectionData_st*,
                     const char*);
        const char* told;
    } operations[] = {
        {Demux_ReadTsData, "g_tsFilePath = /nonexistent \n[Demux_ReadTsData "},
        {Demux_ReadTsPacketData, "g_tsFilePath = /nonexistent \n[Demux_ReadTsPacketData "},
    };
    for (const auto& operation : operations) {
        RequestInfo_st request{};
        SectionData_st data;
        testing::internal::CaptureStdout();
        operation.read(nullptr, &request, &data, "/nonexistent");
        const std::string out = testing::internal::GetCapturedStdout();
        EXPECT_EQ(out.find(operation.told), 0u) << out;
        EXPECT_NE(out.find("]:file handle is null.\n"), std::string::npos) << out;
        EXPECT_EQ(data.uLength, 0u);
        Demux_FreeTsData(&data);
    }
}

TEST(DemuxReader, ConfiguredFilterGivesThePid) {
    StreamFile file(streamOf(packetsOf({makeSection(0x42, 100)})));
    QLX_SectionFilterParams params{};
    params.uPid = PID;
    params.au8Match[0] = 0x42;
    params.au8Mask[0] = 0xff;
    RequestInfo_st other{};
    other.uPid = 0x1ff0;
    other.tableId = 0x42;
    other.uVersion = REQUEST_ANY_VERSION;
    SectionData_st data;
    Demux_ReadTsData(&params, &other, &data, file.path());
    EXPECT_EQ(data.uLength, 100u);
    Demux_FreeTsData(&data);
}

TEST(DemuxReader, AnyBytesAreReadSafely) {
    unsigned seed = 12345;
    for (int round = 0; round < 40; round++) {
        Bytes stream;
        for (int packet = 0; packet < 60; packet++) {
            for (int i = 0; i < TS_PACKET_SIZE; i++) {
                seed = seed * 1103515245 + 12345;
                uint8_t byte = static_cast<uint8_t>(seed >> 16);
                // Mostly packets of the PID with lengths of all kinds behind the header.
                if (i == 0)
                    byte = TS_SYNC_BYTE;
                else if (i == 1)
                    byte = static_cast<uint8_t>((byte & 0x40) | PID >> 8);
                else if (i == 2)
                    byte = static_cast<uint8_t>(PID);
                else if (i == 3)
                    byte = static_cast<uint8_t>((byte & 0x30) | (packet & 15));
                stream.push_back(byte);
            }
            if (round % 3 == 1)
                stream.insert(stream.end(), 16, 0x11);
            if (round % 5 == 2)
                stream.insert(stream.end(), 3, 0x22);
        }
        StreamFile file(stream);
        for (int tableId : {0, 0x42, 0xff}) {
            RequestInfo_st request{};
            request.uPid = PID;
            request.tableId = static_cast<uint8_t>(tableId);
            SectionData_st data;
            testing::internal::CaptureStdout();
            Demux_ReadTsData(nullptr, &request, &data, file.path());
            testing::internal::GetCapturedStdout();
            EXPECT_LE(data.uLength, 4096u);
            Demux_FreeTsData(&data);
        }
    }
}

TEST(DemuxCompare, DeliveredBytesDecide) {
    uint8_t reference[TS_SECTION_SIZE_MAX] = {0x42, 1, 2, 3, 4};
    SectionData_st file = {reference, 5, 0};
    const struct {
        Bytes delivered;
        int32_t result;
        const char* what;
    } rows[] = {
        {{0x42, 1, 2, 3, 4}, 0, "equal"},
        {{0x42, 1, 2}, 0, "shorter"},
        {{0x42, 1, 9, 3, 4}, -1, "different"},
        {{0x42, 1, 2, 3, 4, 7}, -1, "longer"},
        {{}, -1, "nothing"},
        {Bytes(5000, 0x42), -1, "longer than any section"},
    };
    for (auto row : rows) {
        SectionData_st delivered = {row.delivered.data(),
                                    static_cast<uint32_t>(row.delivered.size()), 0};
        EXPECT_EQ(Demux_CompareData2(&delivered, &file), row.result) << row.what;
    }
    SectionData_st none = {nullptr, 5, 0};
    EXPECT_EQ(Demux_CompareData2(&none, &file), -1);
    EXPECT_EQ(Demux_CompareData2(&file, &none), -1);
    SectionData_st empty = {reference, 0, 0};
    EXPECT_EQ(Demux_CompareData2(&file, &empty), -1);
}

TEST(DemuxCompare, TableIdsAndPackets) {
    uint8_t bytes[] = {0x47, 0x01, 0x23, 0x15, 9, 8, 7};
    uint8_t other[] = {0x47, 0x01, 0x23, 0x16, 9, 8, 7};
    SectionData_st one = {bytes, sizeof bytes, 0};
    SectionData_st two = {other, sizeof other, 0};
    EXPECT_EQ(Demux_CompareTableId(&one, 0x47), 0);
    EXPECT_EQ(Demux_CompareTableId(&one, 0x46), -1);
    EXPECT_EQ(Demux_ComparePacketData(&one, &two), 0) << "the continuity counter may differ";
    other[6] = 1;
    EXPECT_EQ(Demux_ComparePacketData(&one, &two), -1);
    two.uLength = 6;
    EXPECT_EQ(Demux_ComparePacketData(&one, &two), 0) << "over the reference's length";
    one.uLength = 5;
    EXPECT_EQ(Demux_ComparePacketData(&one, &two), -1);
    one.uLength = 0;
    EXPECT_EQ(Demux_CompareTableId(&one, 0x47), -1);
}

}  // namespace

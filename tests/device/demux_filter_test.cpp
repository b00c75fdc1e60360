// Filters at work on streams in time: when they report what, and when they stay silent.
#include <gtest/gtest.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/qlx_demux.h"
#include "platform/qlx_filter.h"
#include "simulator/core/sim.h"
#include "simulator/demux/demux.h"
#include "simulator/tuner/reception.h"
#include "simulator/world/air.h"
#include "tests/shared/demux_streams.h"
#include "tests/shared/device.h"

namespace {

using namespace demux_test;

constexpr uint32_t data = QLX_FILTER_EVENT_DATA_COME;
constexpr uint32_t timeOut = QLX_FILTER_EVENT_TIMEOUT;
constexpr uint32_t overflow = QLX_FILTER_EVENT_OVERFLOW;
constexpr uint16_t pid = 0x12;
constexpr uint16_t clockPid = 0x100;
/** Ticks of a packet: half a millisecond. */
constexpr uint32_t packetTicks = 13500;

struct Report {
    uint32_t event;
    Bytes bytes;
    int64_t us;
};

/** What a filter reports. The buffers are given back, unless told otherwise. */
struct Receiver {
    std::mutex mutex;
    std::condition_variable came;
    std::vector<Report> reports;
    std::vector<void*> kept;
    bool keep = false;
    int32_t (*freeBuffer)(void*) = QLX_SectionFilterFreeBuffer;

    static void callback(uint32_t event, void* userData, void* eventData) {
        auto* self = static_cast<Receiver*>(userData);
        std::lock_guard<std::mutex> lock(self->mutex);
        Report report = {event, {}, sim::nowUs()};
        if (event == data) {
            auto* record = static_cast<QLX_FilterData*>(eventData);
            report.bytes.assign(record->pBuffer, record->pBuffer + record->uLength);
            if (self->keep) {
                self->kept.push_back(record->pBuffer);
            } else {
                EXPECT_EQ(self->freeBuffer(record->pBuffer), 0);
            }
        }
        self->reports.push_back(std::move(report));
        self->came.notify_all();
    }
    /** Waits until there are so many reports, 60 s at most. */
    void await(size_t count) {
        std::unique_lock<std::mutex> lock(mutex);
        came.wait_for(lock, std::chrono::seconds(60), [&] { return reports.size() >= count; });
        ASSERT_GE(reports.size(), count);
    }
    std::vector<Report> all() {
        std::lock_guard<std::mutex> lock(mutex);
        return reports;
    }
    std::vector<uint32_t> events() {
        std::vector<uint32_t> out;
        for (const Report& report : all())
            out.push_back(report.event);
        return out;
    }
};

class SimDemuxFilters : public testing::Test {
 protected:
    void SetUp() override {
        qlx_sim_reset();
        char name[] = "/tmp/demux_test.XXXXXX";
        folder_ = mkdtemp(name);
        ASSERT_EQ(QLX_DemuxInit(), 0);
        ASSERT_EQ(QLX_DemuxOpen(0), 0);
        QLX_Source source = {QLX_SOURCE_TYPE_TUNER, 0, 0};
        ASSERT_EQ(QLX_DemuxConnectSource(0, &source), 0);
        ASSERT_EQ(QLX_DemuxStart(0), 0);
    }
    void TearDown() override {
        tune("");
        qlx_sim_reset();
        EXPECT_EQ(deviceState(), "");
        for (const std::string& file : files_)
            unlink(file.c_str());
        rmdir(folder_.c_str());
    }

    /** Lets tuner 0 receive a transmitter that plays the file; none with an empty name. */
    void tune(const std::string& file) {
        static uint64_t sequence = UINT64_C(1) << 40;
        auto transmitter = std::make_shared<sim::Transmitter>();
        transmitter->stream = file;
        sim::setReception(0, ++sequence, file.empty() ? nullptr : transmitter);
    }
    std::string write(const std::string& name, const Bytes& content) {
        std::string path = folder_ + "/" + name;
        FILE* file = fopen(path.c_str(), "wb");
        EXPECT_NE(file, nullptr);
        EXPECT_EQ(fwrite(content.data(), 1, content.size(), file), content.size());
        fclose(file);
        files_.push_back(path);
        return path;
    }
    /** Writes a stream, with the clock that its packets need, and tunes to it. */
    std::string play(StreamMaker& maker) {
        maker.clock(clockPid, uint64_t{maker.count} * packetTicks);
        maker.clock(clockPid, uint64_t{maker.count} * packetTicks);
        std::string path = write("air.ts", maker.bytes);
        tune(path);
        return path;
    }

    /** Waits for the middle between two of the sections that come every 50 ms. */
    static void waitForGap() {
        std::this_thread::sleep_for(std::chrono::microseconds(75000 - sim::nowUs() % 50000));
    }

    uint32_t startSection(Receiver* receiver, const QLX_SectionFilterParams& params) {
        uint32_t handle = 0;
        EXPECT_EQ(QLX_DemuxCreateSectionFilter(0, &handle), 0);
        EXPECT_EQ(QLX_SectionFilterConfigure(handle, &params), 0);
        EXPECT_EQ(QLX_SectionFilterRegisterCallback(handle, receiver, Receiver::callback), 0);
        EXPECT_EQ(QLX_SectionFilterStart(handle), 0);
        return handle;
    }

    std::string folder_;
    std::vector<std::string> files_;
};

QLX_SectionFilterParams request(uint8_t table, bool continuous, uint32_t timeOutMs) {
    QLX_SectionFilterParams params = {};
    params.uPid = pid;
    params.au8Match[0] = table;
    params.au8Mask[0] = 0xff;
    params.uDepth = 1;
    params.uTimeOutMs = timeOutMs;
    params.bContinuous = continuous;
    params.uBufferSize = 4096;
    return params;
}

/** A section each 100 packets, which is 50 ms; a loop of five. */
std::vector<Bytes> fill(StreamMaker* maker) {
    std::vector<Bytes> sections;
    for (uint8_t i = 0; i < 5; i++) {
        sections.push_back(makeSection(0x42, 7, i, 600));
        maker->section(pid, sections.back());
        maker->nulls(i < 4 ? 96 : 94);
    }
    return sections;
}

TEST_F(SimDemuxFilters, OneShotReportsTheNextSectionAndNoMore) {
    StreamMaker maker;
    std::vector<Bytes> sections = fill(&maker);
    play(maker);
    Receiver receiver;
    int64_t start = sim::nowUs();
    startSection(&receiver, request(0x42, false, 2000));
    receiver.await(1);
    sim::sleepMs(10000);
    std::vector<Report> reports = receiver.all();
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_EQ(reports[0].event, data);
    // The next section that begins after the start; it is whole four packets later.
    int64_t number = (start + 49999) / 50000;
    EXPECT_EQ(reports[0].bytes, sections[static_cast<size_t>(number % 5)]);
    int64_t whole = number * 50000 + 2000;
    EXPECT_GE(reports[0].us, whole);
    EXPECT_LT(reports[0].us, whole + 1000);
}

TEST_F(SimDemuxFilters, ContinuousReportsEachSectionThroughTheLoops) {
    StreamMaker maker;
    std::vector<Bytes> sections = fill(&maker);
    play(maker);
    waitForGap();
    Receiver receiver;
    uint32_t handle = startSection(&receiver, request(0x42, true, 60));
    sim::sleepMs(5000);
    EXPECT_EQ(QLX_SectionFilterStop(handle), 0);
    std::vector<Report> reports = receiver.all();
    EXPECT_EQ(reports.size(), 100u);
    for (size_t i = 1; i < reports.size(); i++) {
        EXPECT_EQ(reports[i].event, data) << "no time-out while sections come";
        EXPECT_EQ(reports[i].us / 1000 - reports[i - 1].us / 1000, 50) << i;
        uint8_t before = (reports[i - 1].bytes[5] >> 1) & 0x1f;
        EXPECT_EQ(reports[i].bytes, sections[(before + 1) % 5]) << i;
    }
    sim::sleepMs(2000);
    EXPECT_EQ(receiver.all().size(), reports.size()) << "nothing comes after the stop";
}

TEST_F(SimDemuxFilters, TheTimeOutComesOnceAndALittleEarly) {
    StreamMaker maker;
    fill(&maker);
    play(maker);
    for (bool continuous : {false, true}) {
        Receiver receiver;
        int64_t start = sim::nowUs();
        uint32_t handle = startSection(&receiver, request(0x99, continuous, 2000));
        sim::sleepMs(2000);
        EXPECT_EQ(receiver.events(), std::vector<uint32_t>{timeOut});
        EXPECT_EQ((receiver.all()[0].us - start) / 1000, 1998);
        sim::sleepMs(8000);
        EXPECT_EQ(receiver.all().size(), 1u) << continuous;
        EXPECT_EQ(QLX_SectionFilterDelete(handle), 0);
    }
    Receiver receiver;
    startSection(&receiver, request(0x99, false, 0));
    sim::sleepMs(600000);
    EXPECT_TRUE(receiver.all().empty()) << "a time-out of 0 never comes";
}

TEST_F(SimDemuxFilters, CountsTheTimeOutFromTheLastSection) {
    StreamMaker maker;
    Bytes section = makeSection(0x42, 1, 0, 60);
    maker.section(pid, section);
    maker.nulls(9997);
    play(maker);
    Receiver receiver;
    startSection(&receiver, request(0x42, true, 1000));
    sim::sleepMs(30000);
    // Every 5 s a section, and 998 ms after each a time-out.
    std::vector<Report> reports = receiver.all();
    ASSERT_GE(reports.size(), 11u);
    for (size_t i = 1; i < reports.size(); i++) {
        if (reports[i].event == timeOut && i >= 2) {
            EXPECT_EQ(reports[i - 1].event, data);
            EXPECT_EQ((reports[i].us - reports[i - 1].us) / 1000, 998) << i;
        }
    }
}

TEST_F(SimDemuxFilters, TheCrcModeDecidesAboutDamagedSections) {
    StreamMaker maker;
    Bytes good = makeSection(0x42, 1, 0, 60);
    Bytes bad = makeSection(0x42, 2, 0, 60);
    bad[20] ^= 1;
    Bytes clock = makeShortSection(0x70, 8);
    Bytes offset = makeShortSection(0x73, 20);
    for (const Bytes& section : {good, bad, clock, offset})
        maker.section(pid, section);
    maker.nulls(94);
    play(maker);
    waitForGap();
    struct {
        uint32_t mode;
        std::vector<Bytes> comes;
    } rows[] = {
        {QLX_SECTION_CRC_AUTO, {good, clock}},
        {QLX_SECTION_CRC_CHECK, {good, clock}},
        {QLX_SECTION_CRC_NO_CHECK, {good, bad, clock, offset}},
    };
    for (const auto& row : rows) {
        Receiver receiver;
        QLX_SectionFilterParams params = request(0, true, 0);
        params.uDepth = 0;
        params.eCrcMode = row.mode;
        uint32_t handle = startSection(&receiver, params);
        sim::sleepMs(1000);
        EXPECT_EQ(QLX_SectionFilterDelete(handle), 0);
        std::vector<Report> reports = receiver.all();
        ASSERT_EQ(reports.size(), 20 * row.comes.size()) << row.mode;
        size_t shift = 0;
        while (reports[shift].bytes != good)
            shift++;
        for (size_t i = shift; i < reports.size(); i++)
            EXPECT_EQ(reports[i].bytes, row.comes[(i - shift) % row.comes.size()]) << row.mode;
    }
}

TEST_F(SimDemuxFilters, EachFilterGetsItsCopy) {
    StreamMaker maker;
    fill(&maker);
    play(maker);
    waitForGap();
    Receiver receivers[8];
    for (Receiver& receiver : receivers)
        startSection(&receiver, request(0x42, &receiver < receivers + 4, 2000));
    sim::sleepMs(1000);
    for (Receiver& receiver : receivers) {
        std::vector<Report> reports = receiver.all();
        ASSERT_EQ(reports.size(), &receiver < receivers + 4 ? 20u : 1u);
        EXPECT_EQ(reports[0].bytes, receivers[0].all()[0].bytes);
    }
}

TEST_F(SimDemuxFilters, NothingComesWithoutReception) {
    StreamMaker maker;
    fill(&maker);
    std::string path = play(maker);
    QLX_Source tuner = {QLX_SOURCE_TYPE_TUNER, 0, 0};
    QLX_Source other = {QLX_SOURCE_TYPE_TUNER, 1, 0};
    QLX_Source record = {QLX_SOURCE_TYPE_RECORD, 0, 0};
    struct {
        const char* what;
        std::function<void()> away;
        std::function<void()> back;
    } rows[] = {
        {"lock lost", [&] { tune(""); }, [&] { tune(path); }},
        {"stopped", [] { QLX_DemuxStop(0); }, [] { QLX_DemuxStart(0); }},
        {"another tuner", [&] { QLX_DemuxConnectSource(0, &other); },
         [&] { QLX_DemuxConnectSource(0, &tuner); }},
        {"recorded data", [&] { QLX_DemuxConnectSource(0, &record); },
         [&] { QLX_DemuxConnectSource(0, &tuner); }},
        {"no such file", [&] { tune("/nowhere/at/all.ts"); }, [&] { tune(path); }},
    };
    for (const auto& row : rows) {
        Receiver receiver;
        waitForGap();
        uint32_t handle = startSection(&receiver, request(0x42, true, 2000));
        sim::sleepMs(1000);
        size_t before = receiver.all().size();
        EXPECT_EQ(before, 20u) << row.what;
        // Away in the middle of a section, and back in the middle of another.
        sim::sleepMs(50 - (sim::nowUs() / 1000) % 50 + 1);
        before = receiver.all().size();
        row.away();
        sim::sleepMs(1000);
        EXPECT_EQ(receiver.all().size(), before) << row.what;
        row.back();
        EXPECT_EQ(receiver.all().size(), before);
        sim::sleepMs(20);
        EXPECT_EQ(receiver.all().size(), before) << row.what << ": half a section is none";
        sim::sleepMs(40);
        EXPECT_EQ(receiver.all().size(), before + 1) << row.what;
        row.away();
        sim::sleepMs(3000);
        EXPECT_EQ(receiver.events().back(), timeOut) << row.what;
        row.back();
        EXPECT_EQ(QLX_SectionFilterDelete(handle), 0);
    }
}

TEST_F(SimDemuxFilters, ADamagedByteChangesWhatComesUntilItIsIntact) {
    StreamMaker maker;
    Bytes section = makeSection(0x42, 1, 0, 60);
    Bytes other = makeSection(0x46, 1, 0, 60);
    maker.section(pid, section);
    maker.section(pid, other);
    maker.nulls(96);
    std::string path = play(maker);
    waitForGap();
    Receiver checked;
    Receiver unchecked;
    Receiver untouched;
    QLX_SectionFilterParams params = request(0x42, true, 0);
    startSection(&checked, params);
    params.eCrcMode = QLX_SECTION_CRC_NO_CHECK;
    startSection(&unchecked, params);
    startSection(&untouched, request(0x46, true, 0));
    sim::sleepMs(500);
    EXPECT_EQ(checked.all().size(), 10u);
    size_t counts[] = {checked.all().size(), unchecked.all().size(), untouched.all().size()};
    EXPECT_EQ(qlx_sim_event("stream air.ts byte 25 0x77"), 0);
    sim::sleepMs(500);
    EXPECT_EQ(checked.all().size(), counts[0]);
    EXPECT_EQ(unchecked.all().size(), counts[1] + 10);
    EXPECT_EQ(untouched.all().size(), counts[2] + 10) << "what is not damaged misses nothing";
    Bytes damaged = section;
    damaged[20] = 0x77;
    EXPECT_EQ(unchecked.all().back().bytes, damaged);
    EXPECT_EQ(qlx_sim_event("stream air.ts intact"), 0);
    sim::sleepMs(500);
    EXPECT_EQ(checked.all().size(), counts[0] + 10);
    EXPECT_EQ(unchecked.all().back().bytes, section);
    for (const char* wrong :
         {"stream air.ts", "stream air.ts table 18 66 5", "stream air.ts table 8192 66 5 0",
          "stream air.ts table 18 256 5 0", "stream air.ts byte", "stream air.ts byte 5",
          "stream air.ts byte x 5", "stream air.ts byte 5 100", "streams"})
        EXPECT_EQ(qlx_sim_event(wrong), -1) << wrong;
}

TEST_F(SimDemuxFilters, AChangedTableIsAnotherOneWithARightCrc) {
    StreamMaker maker;
    Bytes section = makeSection(0x42, 1, 0, 600);
    Bytes other = makeSection(0x46, 1, 0, 60);
    maker.sections(pid, {other, section, other, section});
    maker.nulls(90);
    play(maker);
    struct {
        size_t offset;
        bool crcRight;
    } rows[] = {{5, true}, {20, true}, {300, true}, {595, true}, {596, false}, {599, false}};
    for (const auto& row : rows) {
        uint8_t value = section[row.offset] ^ 0x3e;
        EXPECT_EQ(qlx_sim_event("stream air.ts intact"), 0);
        EXPECT_EQ(
            qlx_sim_event(
                sim::format("stream air.ts table 0x12 0x42 %zu %x", row.offset, value).c_str()),
            0);
        Receiver checked;
        Receiver untouched;
        uint32_t handles[] = {startSection(&checked, request(0x42, true, 0)),
                              startSection(&untouched, request(0x46, true, 0))};
        sim::sleepMs(500);
        for (uint32_t handle : handles)
            EXPECT_EQ(QLX_SectionFilterDelete(handle), 0);
        EXPECT_GE(untouched.all().size(), 18u);
        for (const Report& report : untouched.all())
            EXPECT_EQ(report.bytes, other) << row.offset;
        EXPECT_EQ(checked.all().empty(), !row.crcRight) << row.offset;
        for (const Report& report : checked.all()) {
            for (size_t i = 0; i < 596; i++)
                ASSERT_EQ(report.bytes[i], i == row.offset ? value : section[i]) << row.offset;
        }
    }
    EXPECT_EQ(qlx_sim_event("stream air.ts table 0x12 0x42 4000 0"), 0) << "no section is so long";
}

TEST_F(SimDemuxFilters, SectionsWithoutRoomInTheBufferAreLost) {
    StreamMaker maker;
    fill(&maker);
    play(maker);
    Receiver receiver;
    receiver.keep = true;
    QLX_SectionFilterParams params = request(0x42, true, 0);
    params.uBufferSize = 1500;
    uint32_t handle = startSection(&receiver, params);
    sim::sleepMs(1000);
    EXPECT_EQ(receiver.events(), (std::vector<uint32_t>{data, data, overflow}));
    EXPECT_EQ(QLX_SectionFilterFreeBuffer(receiver.kept[0]), 0);
    EXPECT_EQ(QLX_SectionFilterFreeBuffer(receiver.kept[0]), QLX_DEMUX_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_PesFilterFreeBuffer(receiver.kept[1]), QLX_DEMUX_ERR_INVALID_PARA);
    sim::sleepMs(1000);
    EXPECT_EQ(receiver.events(), (std::vector<uint32_t>{data, data, overflow, data, overflow}));
    EXPECT_EQ(QLX_SectionFilterDelete(handle), 0);
    EXPECT_EQ(QLX_SectionFilterFreeBuffer(receiver.kept[1]), 0) << "buffers outlive the filter";
}

TEST_F(SimDemuxFilters, FaultsCorruptDropAndRepeatWhatComes) {
    StreamMaker maker;
    Bytes section = makeSection(0x42, 1, 0, 60);
    maker.section(pid, section);
    maker.nulls(97);
    play(maker);
    waitForGap();
    EXPECT_EQ(qlx_sim_add_fault("SectionFilter call=1 corrupt=10:EE"), 0);
    EXPECT_EQ(qlx_sim_add_fault("SectionFilter call=2 drop"), 0);
    EXPECT_EQ(qlx_sim_add_fault("SectionFilter call=3 repeat=2"), 0);
    Receiver receiver;
    startSection(&receiver, request(0x42, true, 0));
    sim::sleepMs(200);
    std::vector<Report> reports = receiver.all();
    ASSERT_EQ(reports.size(), 5u);
    EXPECT_EQ(reports[0].bytes[10], 0xee);
    EXPECT_EQ(reports[1].us, reports[3].us);
    EXPECT_EQ(reports[3].bytes, section);
}

TEST_F(SimDemuxFilters, PesPacketsComeWholeWithTheTimeOfTheirLoop) {
    StreamMaker maker;
    for (uint64_t i = 0; i < 10; i++) {
        maker.pes(pid, makePes(i * 4500, 400, i % 2 == 0));
        maker.nulls(i < 9 ? 97 : 95);
    }
    play(maker);
    Receiver receiver;
    receiver.freeBuffer = QLX_PesFilterFreeBuffer;
    QLX_PesFilterParams params = {pid, 4096};
    uint32_t handle = 0;
    EXPECT_EQ(QLX_DemuxCreatePesFilter(0, &handle), 0);
    EXPECT_EQ(QLX_PesFilterConfigure(handle, &params), 0);
    EXPECT_EQ(QLX_PesFilterRegisterCallback(handle, &receiver, Receiver::callback), 0);
    EXPECT_EQ(QLX_PesFilterStart(handle), 0);
    sim::sleepMs(2000);
    EXPECT_EQ(QLX_PesFilterStop(handle), 0);
    std::vector<Report> reports = receiver.all();
    ASSERT_GE(reports.size(), 38u);
    for (const Report& report : reports) {
        EXPECT_EQ(report.bytes.size(), 400u);
        // The clock of the stream is the monotonic clock: the PTS is the time of the first packet.
        const Bytes& pes = report.bytes;
        uint64_t pts = uint64_t{pes[9] & 0xeu} << 29 | pes[10] << 22 | (pes[11] & 0xfe) << 14 |
                       pes[12] << 7 | pes[13] >> 1;
        int64_t us = static_cast<int64_t>(pts) * 100 / 9;
        // Three packets, or all until the next PES packet begins; a millisecond for the report.
        int64_t whole = us + (pes[5] != 0 ? 1500 : 50500);
        EXPECT_GE(report.us, whole);
        EXPECT_LT(report.us, whole + 1001);
    }
}

TEST_F(SimDemuxFilters, PacketsComeInOrderWithRunningCounters) {
    StreamMaker maker;
    for (int i = 0; i < 37; i++) {
        maker.section(pid, makeSection(0x42, 1, 0, 60));
        maker.nulls(2);
    }
    play(maker);
    Receiver receiver;
    receiver.freeBuffer = QLX_PacketFilterFreeBuffer;
    QLX_PacketFilterParams params = {pid, 4096};
    uint32_t handle = 0;
    EXPECT_EQ(QLX_DemuxCreatePacketFilter(0, &handle), 0);
    EXPECT_EQ(QLX_PacketFilterConfigure(handle, &params), 0);
    EXPECT_EQ(QLX_PacketFilterRegisterCallback(handle, &receiver, Receiver::callback), 0);
    EXPECT_EQ(QLX_PacketFilterStart(handle), 0);
    sim::sleepMs(1000);
    EXPECT_EQ(QLX_PacketFilterStop(handle), 0);
    Bytes all;
    for (const Report& report : receiver.all()) {
        EXPECT_EQ(report.event, data);
        EXPECT_EQ(report.bytes.size() % 188, 0u);
        all.insert(all.end(), report.bytes.begin(), report.bytes.end());
    }
    // 37 packets in 113 of the stream, 2000 of which pass in a second.
    EXPECT_GE(all.size() / 188, 630u);
    EXPECT_LE(all.size() / 188, 660u);
    for (size_t at = 0; at + 188 < all.size(); at += 188) {
        EXPECT_EQ(all[at] << 16 | (all[at + 1] & 0x1f) << 8 | all[at + 2], 0x470000 | pid);
        EXPECT_EQ(all[at + 188 + 3] & 0xf, (all[at + 3] + 1) & 0xf) << at / 188;
    }
}

TEST_F(SimDemuxFilters, RecordedDataComeAsTheyAreFed) {
    QLX_Source record = {QLX_SOURCE_TYPE_RECORD, 0, 0};
    EXPECT_EQ(QLX_DemuxConnectSource(0, &record), 0);
    StreamMaker maker;
    std::vector<Bytes> sections = {makeSection(0x42, 1, 0, 500), makeSection(0x42, 2, 0, 90)};
    maker.sections(pid, sections);
    Bytes pes = makePes(0, 300, true);
    maker.pes(clockPid, pes);
    Receiver receiver;
    startSection(&receiver, request(0x42, true, 1000));
    Receiver pesReceiver;
    pesReceiver.freeBuffer = QLX_PesFilterFreeBuffer;
    QLX_PesFilterParams params = {clockPid, 0};
    uint32_t handle = 0;
    EXPECT_EQ(QLX_DemuxCreatePesFilter(0, &handle), 0);
    EXPECT_EQ(QLX_PesFilterConfigure(handle, &params), 0);
    EXPECT_EQ(QLX_PesFilterRegisterCallback(handle, &pesReceiver, Receiver::callback), 0);
    EXPECT_EQ(QLX_PesFilterStart(handle), 0);
    sim::demuxFeed(0, maker.bytes.data(), 2);
    sim::sleepMs(100);
    EXPECT_TRUE(receiver.all().empty());
    sim::demuxFeed(0, &maker.bytes[2 * 188], maker.count - 2);
    sim::sleepMs(100);
    std::vector<Report> reports = receiver.all();
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_EQ(reports[0].bytes, sections[0]);
    EXPECT_EQ(reports[1].bytes, sections[1]);
    ASSERT_EQ(pesReceiver.all().size(), 1u);
    EXPECT_EQ(pesReceiver.all()[0].bytes, pes);
    sim::sleepMs(1000);
    EXPECT_EQ(receiver.events(), (std::vector<uint32_t>{data, data, timeOut}));
    EXPECT_EQ(QLX_DemuxStop(0), 0);
    sim::demuxFeed(0, maker.bytes.data(), maker.count);
    sim::sleepMs(100);
    EXPECT_EQ(receiver.all().size(), 3u) << "a stopped demultiplexer takes nothing in";
}

struct SlowReceiver {
    uint32_t handle = 0;
    bool inside = false;
    int calls = 0;
    bool stopFromWithin = false;

    static void callback(uint32_t, void* userData, void* eventData) {
        auto* self = static_cast<SlowReceiver*>(userData);
        self->inside = true;
        self->calls++;
        sim::sleepMs(500);
        QLX_SectionFilterFreeBuffer(static_cast<QLX_FilterData*>(eventData)->pBuffer);
        if (self->stopFromWithin) {
            EXPECT_EQ(QLX_SectionFilterStop(self->handle), 0);
            EXPECT_EQ(QLX_SectionFilterUnRegisterCallback(self->handle, callback), 0);
            EXPECT_EQ(QLX_SectionFilterDelete(self->handle), 0);
        }
        self->inside = false;
    }
};

TEST_F(SimDemuxFilters, StopsWaitForTheCallbackThatRuns) {
    StreamMaker maker;
    fill(&maker);
    play(maker);
    std::function<int32_t(uint32_t)> ends[] = {
        [](uint32_t handle) { return QLX_SectionFilterStop(handle); },
        [](uint32_t handle) {
            return QLX_SectionFilterUnRegisterCallback(handle, SlowReceiver::callback);
        },
        [](uint32_t handle) { return QLX_SectionFilterDelete(handle); },
        [](uint32_t) { return QLX_DemuxStop(0); },
        [](uint32_t) { return QLX_DemuxClose(0); },
        [](uint32_t) { return QLX_DemuxDeInit(); },
    };
    for (const auto& end : ends) {
        QLX_DemuxStart(0);
        SlowReceiver slow;
        QLX_SectionFilterParams params = request(0x42, true, 0);
        EXPECT_EQ(QLX_DemuxCreateSectionFilter(0, &slow.handle), 0);
        EXPECT_EQ(QLX_SectionFilterConfigure(slow.handle, &params), 0);
        EXPECT_EQ(QLX_SectionFilterRegisterCallback(slow.handle, &slow, SlowReceiver::callback), 0);
        EXPECT_EQ(QLX_SectionFilterStart(slow.handle), 0);
        sim::sleepMs(200);
        ASSERT_TRUE(slow.inside);
        EXPECT_EQ(end(slow.handle), 0);
        EXPECT_FALSE(slow.inside);
        int calls = slow.calls;
        sim::sleepMs(2000);
        EXPECT_EQ(slow.calls, calls);
        if (deviceState().empty() || QLX_DemuxStop(0) != 0) {
            QLX_Source tuner = {QLX_SOURCE_TYPE_TUNER, 0, 0};
            EXPECT_EQ(QLX_DemuxInit(), 0);
            EXPECT_EQ(QLX_DemuxOpen(0), 0);
            EXPECT_EQ(QLX_DemuxConnectSource(0, &tuner), 0);
        }
    }
}

TEST_F(SimDemuxFilters, ACallbackMayEndItsOwnFilter) {
    StreamMaker maker;
    fill(&maker);
    play(maker);
    SlowReceiver slow;
    slow.stopFromWithin = true;
    QLX_SectionFilterParams params = request(0x42, true, 0);
    EXPECT_EQ(QLX_DemuxCreateSectionFilter(0, &slow.handle), 0);
    EXPECT_EQ(QLX_SectionFilterConfigure(slow.handle, &params), 0);
    EXPECT_EQ(QLX_SectionFilterRegisterCallback(slow.handle, &slow, SlowReceiver::callback), 0);
    EXPECT_EQ(QLX_SectionFilterStart(slow.handle), 0);
    sim::sleepMs(3000);
    EXPECT_EQ(slow.calls, 1);
    EXPECT_EQ(QLX_SectionFilterDelete(slow.handle), QLX_DEMUX_ERR_INVALID_PARA);
}

TEST_F(SimDemuxFilters, ThreadsMayShareADemultiplexer) {
    StreamMaker maker;
    fill(&maker);
    std::string path = play(maker);
    std::vector<std::thread> threads;
    std::vector<int> counts(8);
    for (size_t i = 0; i < counts.size(); i++) {
        threads.emplace_back([this, i, &counts] {
            for (int round = 0; round < 40; round++) {
                Receiver receiver;
                uint32_t handle = startSection(&receiver, request(0x42, i % 2 == 0, 2000));
                receiver.await(1);
                EXPECT_EQ(QLX_SectionFilterStop(handle), 0);
                EXPECT_EQ(QLX_SectionFilterUnRegisterCallback(handle, Receiver::callback), 0);
                EXPECT_EQ(QLX_SectionFilterDelete(handle), 0);
                counts[i] += receiver.events()[0] == data;
            }
        });
    }
    for (int i = 0; i < 20; i++) {
        sim::sleepMs(83);
        tune("");
        sim::sleepMs(7);
        tune(path);
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(counts, std::vector<int>(8, 40));
}

}  // namespace

// Recorders on streams in time: which packets come, under which stamps, what pauses, changes of the
// PIDs, slow receivers and stops do.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/qlx_demux.h"
#include "platform/qlx_record.h"
#include "simulator/core/sim.h"
#include "simulator/demux/demux.h"
#include "simulator/tuner/reception.h"
#include "simulator/world/air.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/demux_streams.h"
#include "tests/shared/device.h"

namespace {

using namespace demux_test;

constexpr uint16_t videoPid = 0x100;
constexpr uint16_t audioPid = 0x101;
constexpr uint16_t otherPid = 0x102;
/** Half a millisecond a packet. */
constexpr uint32_t packetTicks = 13500;
constexpr int64_t packetUs = 500;
constexpr uint32_t bad = QLX_RECORD_ERR_INVALID_PARA;

struct Report {
    uint32_t event;
    Bytes bytes;
    int64_t us;
};

struct Receiver {
    std::mutex mutex;
    std::vector<Report> reports;
    std::vector<std::pair<uint32_t, QLX_RecordIndex>> entries;
    std::atomic<int64_t> slowMs{0};
    std::atomic<bool> stopAtOnce{false};

    static int32_t takeData(uint32_t handle, uint32_t event, uint8_t* data, uint32_t size,
                            void* userData) {
        auto* self = static_cast<Receiver*>(userData);
        {
            std::lock_guard<std::mutex> lock(self->mutex);
            self->reports.push_back({event, Bytes(data, data + size), sim::nowUs()});
        }
        if (self->stopAtOnce) {
            EXPECT_EQ(QLX_RecordStop(handle), 0);
        }
        sim::sleepMs(self->slowMs.exchange(0));
        return 0;
    }
    static int32_t takeIndex(uint32_t, uint32_t event, const QLX_RecordIndex* index, uint32_t size,
                             void* userData) {
        auto* self = static_cast<Receiver*>(userData);
        EXPECT_EQ(size, sizeof *index);
        std::lock_guard<std::mutex> lock(self->mutex);
        self->entries.emplace_back(event, *index);
        return 0;
    }
    Bytes all() {
        std::lock_guard<std::mutex> lock(mutex);
        Bytes bytes;
        for (const Report& report : reports)
            bytes.insert(bytes.end(), report.bytes.begin(), report.bytes.end());
        return bytes;
    }
    size_t count() {
        std::lock_guard<std::mutex> lock(mutex);
        return reports.size();
    }
};

class SimRecord : public testing::Test {
 protected:
    void SetUp() override {
        // A loop of 100 packets, a tenth of each PID.
        StreamMaker maker;
        for (int i = 0; i < 10; i++) {
            maker.clock(videoPid, uint64_t{maker.count} * packetTicks);
            maker.packet(videoPid, i == 0, Bytes(184, static_cast<uint8_t>(i)));
            maker.packet(audioPid, true, Bytes(100, static_cast<uint8_t>(0x40 + i)));
            maker.nulls(6);
            maker.packet(otherPid, true, Bytes(184, static_cast<uint8_t>(0x80 + i)));
        }
        folder_.write("air.ts", std::string(maker.bytes.begin(), maker.bytes.end()));
        stream_ = std::make_unique<sim::TsStream>(maker.bytes, packetTicks);
        tune("air.ts");
        ASSERT_EQ(QLX_DemuxInit(), 0);
        ASSERT_EQ(QLX_DemuxOpen(0), 0);
        QLX_Source source = {QLX_SOURCE_TYPE_TUNER, 0, 0};
        ASSERT_EQ(QLX_DemuxConnectSource(0, &source), 0);
        ASSERT_EQ(QLX_DemuxStart(0), 0);
        ASSERT_EQ(QLX_RecordInit(), 0);
        // The packet that was on its way at the start is not let through.
        sim::sleepMs(10);
    }
    void TearDown() override {
        sim::setReception(0, ++sequence, nullptr);
        qlx_sim_reset();
        EXPECT_EQ(deviceState(), "");
    }
    void tune(const std::string& file) {
        auto transmitter = std::make_shared<sim::Transmitter>();
        transmitter->stream = folder_.path() + "/" + file;
        sim::setReception(0, ++sequence, transmitter);
    }
    uint32_t open(uint32_t packetSize, uint32_t bufferKiB = 64) {
        uint32_t handle = 0;
        QLX_RecordCfg cfg = {packetSize, bufferKiB, {}};
        QLX_RecordCallbacks callbacks = {Receiver::takeData, &receiver_, Receiver::takeIndex,
                                         &receiver_};
        EXPECT_EQ(QLX_RecordOpen(0, &cfg, &handle), 0);
        EXPECT_EQ(QLX_RecordRegisterCb(handle, &callbacks), 0);
        return handle;
    }
    /** What is on the air of the PIDs between two moments, as whole packets that end there. */
    Bytes onAir(std::vector<uint16_t> pids, int64_t fromUs, int64_t toUs) const {
        Bytes bytes;
        uint8_t packet[188];
        for (auto n = static_cast<uint64_t>(fromUs / packetUs); stream_->endUs(n) <= toUs; n++) {
            stream_->copyPacket(n, packet);
            auto pid = static_cast<uint16_t>((packet[1] & 0x1f) << 8 | packet[2]);
            if (stream_->endUs(n) > fromUs && std::count(pids.begin(), pids.end(), pid) != 0)
                bytes.insert(bytes.end(), packet, packet + 188);
        }
        return bytes;
    }

    static uint64_t sequence;
    BenchFolder folder_;
    Receiver receiver_;
    std::unique_ptr<sim::TsStream> stream_;
};
uint64_t SimRecord::sequence = UINT64_C(1) << 41;

TEST_F(SimRecord, DeliversWhatIsOnTheAirPacketByPacket) {
    uint32_t handle = open(188);
    for (uint32_t pid : {otherPid, videoPid})
        ASSERT_EQ(QLX_RecordAddPid(handle, pid), 0);
    int64_t start = sim::nowUs();
    ASSERT_EQ(QLX_RecordStart(handle), 0);
    sim::sleepMs(3000);
    ASSERT_EQ(QLX_RecordStop(handle), 0);
    size_t count = receiver_.count();
    ASSERT_GE(count, 30u) << "at least each 100 ms";
    int64_t last = start;
    for (const Report& report : receiver_.reports) {
        EXPECT_LE(report.us - last, 100000);
        EXPECT_EQ(report.event, uint32_t{QLX_RECORD_EVENT_DATA});
        last = report.us;
    }
    EXPECT_EQ(receiver_.all(), onAir({videoPid, otherPid}, start, last));
    sim::sleepMs(1000);
    EXPECT_EQ(receiver_.count(), count) << "nothing after the stop";
}

TEST_F(SimRecord, StampsCountFromTheStartThroughPausesAndRetuning) {
    uint32_t handle = open(192);
    ASSERT_EQ(QLX_RecordAddPid(handle, audioPid), 0);
    sim::sleepMs(777);
    int64_t start = sim::nowUs();
    ASSERT_EQ(QLX_RecordStart(handle), 0);
    sim::sleepMs(1000);
    int64_t paused = sim::nowUs();
    ASSERT_EQ(QLX_RecordPause(handle), 0);
    sim::sleepMs(2000);
    int64_t resumed = sim::nowUs();
    ASSERT_EQ(QLX_RecordResume(handle), 0);
    sim::sleepMs(1000);
    tune("air.ts");
    sim::sleepMs(1000);
    ASSERT_EQ(QLX_RecordStop(handle), 0);
    Bytes bytes = receiver_.all();
    ASSERT_EQ(bytes.size() % 192, 0u);
    Bytes packets;
    int64_t lastUs = 0;
    for (size_t at = 0; at < bytes.size(); at += 192) {
        int64_t ticks =
            int64_t{bytes[at]} << 24 | bytes[at + 1] << 16 | bytes[at + 2] << 8 | bytes[at + 3];
        int64_t endUs = start + ticks / 27 + packetUs;
        EXPECT_GT(endUs, lastUs);
        EXPECT_TRUE(endUs <= paused + 1 || endUs >= resumed) << at;
        lastUs = endUs;
        packets.insert(packets.end(), bytes.begin() + static_cast<long>(at) + 4,
                       bytes.begin() + static_cast<long>(at) + 192);
    }
    Bytes expected = onAir({audioPid}, start, paused);
    Bytes rest = onAir({audioPid}, resumed, receiver_.reports.back().us);
    expected.insert(expected.end(), rest.begin(), rest.end());
    EXPECT_EQ(packets, expected);
}

TEST_F(SimRecord, PidsComeAndGoInMidRecording) {
    uint32_t handle = open(188);
    ASSERT_EQ(QLX_RecordAddPid(handle, videoPid), 0);
    int64_t start = sim::nowUs();
    ASSERT_EQ(QLX_RecordStart(handle), 0);
    sim::sleepMs(503);
    int64_t added = sim::nowUs();
    ASSERT_EQ(QLX_RecordAddPid(handle, audioPid), 0);
    ASSERT_EQ(QLX_RecordAddPid(handle, audioPid), 0);
    sim::sleepMs(501);
    int64_t removed = sim::nowUs();
    ASSERT_EQ(QLX_RecordRemovePid(handle, videoPid), 0);
    sim::sleepMs(502);
    ASSERT_EQ(QLX_RecordStop(handle), 0);
    Bytes expected = onAir({videoPid}, start, added);
    Bytes both = onAir({videoPid, audioPid}, added, removed);
    Bytes rest = onAir({audioPid}, removed, receiver_.reports.back().us);
    expected.insert(expected.end(), both.begin(), both.end());
    expected.insert(expected.end(), rest.begin(), rest.end());
    EXPECT_EQ(receiver_.all(), expected);
}

TEST_F(SimRecord, WhatASlowReceiverLosesIsToldAndCounted) {
    uint32_t handle = open(192, 16);
    ASSERT_EQ(QLX_RecordAddPid(handle, videoPid), 0);
    receiver_.slowMs = 2000;
    int64_t start = sim::nowUs();
    testing::internal::CaptureStderr();
    ASSERT_EQ(QLX_RecordStart(handle), 0);
    sim::sleepMs(4000);
    ASSERT_EQ(QLX_RecordStop(handle), 0);
    std::string complaint = testing::internal::GetCapturedStderr();
    std::lock_guard<std::mutex> lock(receiver_.mutex);
    size_t overflows = 0;
    size_t bytes = 0;
    for (const Report& report : receiver_.reports) {
        EXPECT_LE(report.bytes.size(), 16u << 10);
        overflows += report.event == QLX_RECORD_EVENT_OVERFLOW ? 1 : 0;
        bytes += report.bytes.size();
    }
    ASSERT_EQ(overflows, 1u);
    uint64_t lost = 0;
    for (const auto& [event, index] : receiver_.entries) {
        if (event == QLX_RECORD_INDEX_OVERFLOW)
            lost += index.uLost;
    }
    EXPECT_GT(lost, 0u);
    size_t sent = onAir({videoPid}, start, receiver_.reports.back().us).size() / 188;
    EXPECT_EQ(bytes / 192 + lost, sent);
    EXPECT_NE(complaint.find(std::to_string(lost) + " packets lost"), std::string::npos);
}

TEST_F(SimRecord, StopsInsideTheCallbackAndAtTheClose) {
    uint32_t handle = open(188);
    ASSERT_EQ(QLX_RecordAddPid(handle, videoPid), 0);
    receiver_.stopAtOnce = true;
    ASSERT_EQ(QLX_RecordStart(handle), 0);
    sim::sleepMs(1000);
    EXPECT_EQ(receiver_.count(), 1u);
    receiver_.stopAtOnce = false;
    ASSERT_EQ(QLX_RecordStart(handle), 0);
    sim::sleepMs(1000);
    // A close waits for the callback that runs.
    receiver_.slowMs = 500;
    sim::sleepMs(100);
    ASSERT_EQ(QLX_RecordClose(handle), 0);
    size_t count = receiver_.count();
    sim::sleepMs(1000);
    EXPECT_EQ(receiver_.count(), count);
    EXPECT_EQ(QLX_RecordStop(handle), static_cast<int32_t>(bad));
}

TEST_F(SimRecord, StatesAndRefusals) {
    uint32_t handle = 0;
    QLX_RecordCfg cfg = {192, 4096, {}};
    QLX_RecordCfg packets = {204, 4096, {}};
    QLX_RecordCfg noBuffer = {192, 0, {}};
    QLX_RecordCallbacks none = {};
    QLX_RecordCallbacks callbacks = {Receiver::takeData, &receiver_, nullptr, nullptr};
    auto is = [](int32_t answer, uint32_t expected) {
        EXPECT_EQ(static_cast<uint32_t>(answer), expected);
    };
    is(QLX_RecordInit(), 0);
    is(QLX_RecordDeInit(), 0);
    is(QLX_RecordOpen(0, &cfg, &handle), QLX_FAILED);
    is(QLX_RecordInit(), 0);
    is(QLX_RecordOpen(4, &cfg, &handle), bad);
    is(QLX_RecordOpen(0, &packets, &handle), bad);
    is(QLX_RecordOpen(0, &noBuffer, &handle), bad);
    is(QLX_RecordOpen(3, &cfg, &handle), 0);
    is(QLX_RecordOpen(3, &cfg, &handle), QLX_FAILED);
    is(QLX_RecordRegisterCb(handle, &none), bad);
    is(QLX_RecordRegisterCb(handle, &callbacks), 0);
    is(QLX_RecordStart(handle), QLX_FAILED);
    is(QLX_RecordAddPid(handle, 8192), bad);
    is(QLX_RecordRemovePid(handle, 5), QLX_FAILED);
    for (uint32_t pid = 0; pid < QLX_RECORD_PID_MAX + 3; pid++)
        is(QLX_RecordAddPid(handle, pid), 0);
    is(QLX_RecordRemovePid(handle, QLX_RECORD_PID_MAX), QLX_FAILED);
    is(QLX_RecordSetVideoFmt(handle, 5000, 1), QLX_FAILED);
    for (uint32_t format = 0; format < 10; format++)
        is(QLX_RecordSetVideoFmt(handle, 5, format),
           format <= 3 || format == 6 || format == 7 ? 0u : uint32_t{QLX_RECORD_ERR_NOT_SUPPORTED});
    is(QLX_RecordPause(handle), QLX_FAILED);
    is(QLX_RecordStart(handle), 0);
    is(QLX_RecordStart(handle), QLX_FAILED);
    is(QLX_RecordRegisterCb(handle, &callbacks), QLX_FAILED);
    is(QLX_RecordResume(handle), QLX_FAILED);
    is(QLX_RecordPause(handle), 0);
    is(QLX_RecordPause(handle), QLX_FAILED);
    is(QLX_RecordStop(handle), 0);
    is(QLX_RecordStop(handle), QLX_FAILED);
    is(QLX_RecordUnRegisterCb(handle, &none), bad);
    callbacks.pTsUserData = nullptr;
    is(QLX_RecordUnRegisterCb(handle, &callbacks), 0);
    is(QLX_RecordUnRegisterCb(handle, &callbacks), bad);
    is(QLX_RecordClose(0), bad);
    is(QLX_RecordDeInit(), 0);
    is(QLX_RecordClose(handle), bad);
}

}  // namespace

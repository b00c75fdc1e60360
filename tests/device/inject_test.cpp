// Injectors: packets out of blocks that begin and end anywhere, the pace of the stream's clock,
// what waits, pauses, is flushed or played at another speed, and what is told.
#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "platform/qlx_demux.h"
#include "platform/qlx_dmxinject.h"
#include "platform/qlx_filter.h"
#include "platform/qlx_record.h"
#include "simulator/core/sim.h"
#include "simulator/demux/demux.h"
#include "simulator/record/inject_queue.h"
#include "simulator/stream/live_stream.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/demux_streams.h"
#include "tests/shared/device.h"

namespace {

using namespace demux_test;

constexpr uint16_t clockPid = 0x100;
constexpr uint16_t dataPid = 0x101;
/** One millisecond a packet. */
constexpr uint32_t packetTicks = 27000;
constexpr uint32_t bad = QLX_DMXINJECT_ERR_INVALID_PARA;

/** So many packets, of which each twentieth carries the clock. */
Bytes clockedStream(uint32_t packets) {
    StreamMaker maker;
    while (maker.count < packets) {
        if (maker.count % 20 == 0)
            maker.clock(clockPid, uint64_t{maker.count} * packetTicks);
        else
            maker.packet(dataPid, true, Bytes(184, static_cast<uint8_t>(maker.count)));
    }
    return maker.bytes;
}

/** The same as a recorder of that packet size writes it. */
Bytes framed(const Bytes& stream, size_t step) {
    Bytes bytes;
    for (size_t at = 0; at < stream.size(); at += 188) {
        bytes.insert(bytes.end(), step == 192 ? 4 : 0, 0x12);
        bytes.insert(bytes.end(), stream.begin() + static_cast<long>(at),
                     stream.begin() + static_cast<long>(at) + 188);
        bytes.insert(bytes.end(), step == 204 ? 16 : 0, 0xff);
    }
    return bytes;
}

TEST(SimInjectQueue, FindsPacketsWhereverBlocksAreCut) {
    const Bytes stream = clockedStream(100);
    for (size_t step : {188, 192, 204}) {
        const Bytes all = framed(stream, step);
        for (size_t skipped : {0, 1, 3, 100, 187, 191}) {
            for (size_t block : {1, 7, 188, 500, 100000}) {
                sim::InjectQueue queue(step);
                for (size_t at = skipped; at < all.size(); at += block)
                    queue.write(&all[at], std::min(block, all.size() - at));
                Bytes out;
                while (!queue.empty()) {
                    out.insert(out.end(), queue.front(), queue.front() + 188);
                    queue.pop();
                }
                size_t first = skipped == 0 ? 0 : (skipped + step - 1) / step;
                EXPECT_EQ(out, Bytes(stream.begin() + static_cast<long>(first * 188), stream.end()))
                    << step << " bytes, " << skipped << " lacking, blocks of " << block;
                EXPECT_LT(queue.bytes(), step + 4);
            }
        }
    }
}

TEST(SimInjectQueue, NoStreamGivesNothingAndDamageOnlyItself) {
    sim::InjectQueue queue(192);
    Bytes noise(100000);
    for (size_t i = 0; i < noise.size(); i++)
        noise[i] = static_cast<uint8_t>(i % 70);
    queue.write(noise.data(), noise.size());
    EXPECT_TRUE(queue.empty());
    EXPECT_LT(queue.bytes(), 1000u) << "what is no packet does not fill the buffer";
    queue.clear();
    const Bytes stream = clockedStream(40);
    Bytes all = framed(stream, 192);
    all[10 * 192 + 4] = 0;
    queue.write(all.data(), all.size());
    size_t count = 0;
    for (; !queue.empty(); count++)
        queue.pop();
    EXPECT_EQ(count, 39u);
}

TEST(SimInjectQueue, KeepsThePaceOfTheClock) {
    const Bytes stream = clockedStream(200);
    sim::InjectQueue queue(188);
    // The second half has lost half of its packets, and so takes as long.
    Bytes thinned(stream.begin(), stream.begin() + 100 * 188);
    for (size_t i = 100; i < 200; i += 2)
        thinned.insert(thinned.end(), stream.begin() + static_cast<long>(i * 188),
                       stream.begin() + static_cast<long>(i * 188) + 188);
    queue.write(thinned.data(), thinned.size());
    uint64_t ticks = 0;
    for (int i = 0; i < 140; i++)
        ticks += queue.pop();
    EXPECT_NEAR(static_cast<double>(ticks), 180.0 * packetTicks, 20.0);
}

/** Demultiplexer 0 on recorded data, a packet filter on it, and its injector. */
class SimInject : public testing::Test {
 protected:
    void SetUp() override {
        ASSERT_EQ(QLX_DemuxInit(), 0);
        ASSERT_EQ(QLX_DemuxOpen(0), 0);
        QLX_Source source = {QLX_SOURCE_TYPE_RECORD, 0, 0};
        ASSERT_EQ(QLX_DemuxConnectSource(0, &source), 0);
        ASSERT_EQ(QLX_DemuxStart(0), 0);
        uint32_t filter = 0;
        QLX_PacketFilterParams params = {dataPid, 1 << 20};
        ASSERT_EQ(QLX_DemuxCreatePacketFilter(0, &filter), 0);
        ASSERT_EQ(QLX_PacketFilterConfigure(filter, &params), 0);
        ASSERT_EQ(QLX_PacketFilterRegisterCallback(filter, this, takePackets), 0);
        ASSERT_EQ(QLX_PacketFilterStart(filter), 0);
        ASSERT_EQ(QLX_DmxInjectInit(), 0);
    }
    void TearDown() override {
        qlx_sim_reset();
        EXPECT_EQ(deviceState(), "");
    }
    uint32_t start() {
        uint32_t handle = 0;
        QLX_DmxInjectOpenParam param = {0, 0, 188};
        EXPECT_EQ(QLX_DmxInjectOpen(&param, &handle), 0);
        EXPECT_EQ(QLX_DmxInjectRegisterCallback(handle, takeEvent, this), 0);
        EXPECT_EQ(QLX_DmxInjectStart(handle), 0);
        return handle;
    }
    static int32_t write(uint32_t handle, const Bytes& bytes) {
        uint32_t written = 0;
        int32_t answer = QLX_DmxInjectWriteData(handle, bytes.data(),
                                                static_cast<uint32_t>(bytes.size()), &written);
        EXPECT_EQ(written, answer == 0 ? bytes.size() : 0u);
        return answer;
    }
    static uint32_t freeSize(uint32_t handle) {
        uint32_t size = 0;
        EXPECT_EQ(QLX_DmxInjectGetFreeSize(handle, &size), 0);
        return size;
    }
    static void takePackets(uint32_t event, void* userData, void* data) {
        auto* self = static_cast<SimInject*>(userData);
        ASSERT_EQ(event, uint32_t{QLX_FILTER_EVENT_DATA_COME});
        auto* record = static_cast<QLX_FilterData*>(data);
        {
            std::lock_guard<std::mutex> lock(self->mutex_);
            self->packets_ += record->uLength / 188;
        }
        QLX_PacketFilterFreeBuffer(record->pBuffer);
    }
    static int32_t takeEvent(uint32_t, uint32_t event, void* userData) {
        auto* self = static_cast<SimInject*>(userData);
        std::lock_guard<std::mutex> lock(self->mutex_);
        self->events_.push_back({event, sim::nowMs()});
        return 0;
    }
    size_t packets() {
        std::lock_guard<std::mutex> lock(mutex_);
        return packets_;
    }
    size_t count(uint32_t event) {
        std::lock_guard<std::mutex> lock(mutex_);
        return static_cast<size_t>(std::count_if(
            events_.begin(), events_.end(), [&](const auto& one) { return one.first == event; }));
    }

    std::mutex mutex_;
    size_t packets_ = 0;
    std::vector<std::pair<uint32_t, int64_t>> events_;
};

TEST_F(SimInject, PlaysAtThePaceOfTheStreamAndTellsWhenAllIsPlayed) {
    uint32_t handle = start();
    const uint32_t total = freeSize(handle);
    EXPECT_GT(total, 98304u) << "a block of the feeder has to find room";
    int64_t begin = sim::nowMs();
    ASSERT_EQ(write(handle, clockedStream(1000)), 0);
    EXPECT_EQ(freeSize(handle), total - 188000);
    for (int64_t ms : {200, 500, 900}) {
        sim::sleepMs(begin + ms - sim::nowMs());
        EXPECT_NEAR(static_cast<double>(packets()), static_cast<double>(ms) * 0.95, 45.0);
        EXPECT_NEAR(freeSize(handle), total - (1000.0 - static_cast<double>(ms)) * 188, 45 * 188);
    }
    EXPECT_EQ(write(handle, Bytes(total)), 1) << "no room";
    sim::sleepMs(5000);
    EXPECT_EQ(packets(), 950u);
    EXPECT_EQ(freeSize(handle), total);
    EXPECT_EQ(count(QLX_DMXINJECT_EVENT_DATA_WRITE_DONE), 1u);
    EXPECT_EQ(count(QLX_DMXINJECT_EVENT_DATA_WRITE_FAILED), 1u);
    ASSERT_EQ(count(QLX_DMXINJECT_EVENT_DATA_PLAYBACK_DONE), 1u) << "once";
    EXPECT_NEAR(static_cast<double>(events_.back().second - begin), 1800, 80);
    ASSERT_EQ(write(handle, clockedStream(20)), 0);
    sim::sleepMs(3000);
    EXPECT_EQ(count(QLX_DMXINJECT_EVENT_DATA_PLAYBACK_DONE), 2u) << "and again after more data";
}

TEST_F(SimInject, PausesFlushesAndChangesItsSpeed) {
    uint32_t handle = start();
    ASSERT_EQ(write(handle, clockedStream(1200)), 0);
    sim::sleepMs(400);
    ASSERT_EQ(QLX_DmxInjectPause(handle), 0);
    size_t before = packets();
    sim::sleepMs(5000);
    EXPECT_EQ(packets(), before);
    EXPECT_EQ(count(QLX_DMXINJECT_EVENT_DATA_PLAYBACK_DONE), 0u);
    ASSERT_EQ(QLX_DmxInjectResume(handle), 0);
    ASSERT_EQ(QLX_DmxInjectSetSpeed(handle, QLX_DMXINJECT_SPEED_FORWARD_4X), 0);
    sim::sleepMs(120);
    EXPECT_NEAR(static_cast<double>(packets() - before), 0.95 * 480, 160);
    ASSERT_EQ(QLX_DmxInjectFlush(handle), 0);
    before = packets();
    sim::sleepMs(1000);
    EXPECT_EQ(packets(), before);
    EXPECT_EQ(count(QLX_DMXINJECT_EVENT_DATA_PLAYBACK_DONE), 0u) << "nothing was played to its end";
    ASSERT_EQ(QLX_DmxInjectStop(handle), 0);
    EXPECT_EQ(sim::demuxView(0).stream, nullptr);
    sim::sleepMs(5000);
    EXPECT_EQ(count(QLX_DMXINJECT_EVENT_DATA_PLAYBACK_DONE), 0u) << "none after the stop";
}

TEST_F(SimInject, ARecorderTakesWhatIsInjected) {
    static Bytes recorded;
    recorded.clear();
    uint32_t recorder = 0;
    QLX_RecordCfg cfg = {188, 64, {}};
    QLX_RecordCallbacks callbacks = {[](uint32_t, uint32_t, uint8_t* data, uint32_t size, void*) {
                                         recorded.insert(recorded.end(), data, data + size);
                                         return 0;
                                     },
                                     nullptr, nullptr, nullptr};
    ASSERT_EQ(QLX_RecordInit(), 0);
    ASSERT_EQ(QLX_RecordOpen(0, &cfg, &recorder), 0);
    ASSERT_EQ(QLX_RecordRegisterCb(recorder, &callbacks), 0);
    ASSERT_EQ(QLX_RecordAddPid(recorder, dataPid), 0);
    ASSERT_EQ(QLX_RecordAddPid(recorder, clockPid), 0);
    ASSERT_EQ(QLX_RecordStart(recorder), 0);
    uint32_t handle = start();
    const Bytes stream = clockedStream(600);
    ASSERT_EQ(write(handle, stream), 0);
    sim::sleepMs(2000);
    ASSERT_EQ(QLX_RecordStop(recorder), 0);
    EXPECT_EQ(recorded, stream);
}

TEST_F(SimInject, StatesAndRefusals) {
    auto is = [](int32_t answer, uint32_t expected) {
        EXPECT_EQ(static_cast<uint32_t>(answer), expected);
    };
    uint32_t handle = 0;
    uint32_t second = 0;
    uint32_t written = 0;
    uint8_t byte = 0;
    QLX_DmxInjectOpenParam param = {2, 0, 192};
    QLX_DmxInjectOpenParam noDemux = {4, 0, 192};
    QLX_DmxInjectOpenParam noPacket = {2, 0, 190};
    is(QLX_DmxInjectOpen(&noDemux, &handle), bad);
    is(QLX_DmxInjectOpen(&noPacket, &handle), bad);
    is(QLX_DmxInjectOpen(&param, &handle), 0);
    is(QLX_DmxInjectOpen(&param, &second), QLX_FAILED);
    is(QLX_DmxInjectStop(handle), QLX_FAILED);
    is(QLX_DmxInjectPause(handle), QLX_FAILED);
    is(QLX_DmxInjectStart(handle), 0);
    is(QLX_DmxInjectStart(handle), QLX_FAILED);
    is(QLX_DmxInjectResume(handle), QLX_FAILED);
    is(QLX_DmxInjectPause(handle), 0);
    is(QLX_DmxInjectPause(handle), QLX_FAILED);
    is(QLX_DmxInjectWriteData(handle, nullptr, 1, &written), bad);
    is(QLX_DmxInjectWriteData(handle, &byte, 0, &written), bad);
    is(QLX_DmxInjectWriteData(handle, &byte, 1, nullptr), bad);
    is(QLX_DmxInjectSetSpeed(handle, 0), bad);
    is(QLX_DmxInjectSetSpeed(handle, 3201), bad);
    is(QLX_DmxInjectSetSpeed(handle, -3200), 0);
    is(QLX_DmxInjectUnRegisterCallback(handle, takeEvent), bad);
    is(QLX_DmxInjectClose(handle), 0);
    is(QLX_DmxInjectClose(handle), QLX_FAILED);
    is(QLX_DmxInjectClose(99), bad);
    is(QLX_DmxInjectDeInit(), 0);
    is(QLX_DmxInjectOpen(&param, &handle), QLX_FAILED);
}

TEST(SimLiveStream, KeepsPlacesTimesAndTheClocksThatFollowEachOther) {
    const Bytes stream = clockedStream(100);
    sim::LiveStreamMaker maker(27000000, {});
    for (uint32_t i = 0; i < 100; i++)
        maker.add(27000000 + uint64_t{i} * packetTicks, &stream[i * 188]);
    sim::TsStreamPtr before = maker.view();
    // The same once more a second later: its clock begins anew.
    for (uint32_t i = 0; i < 100; i++)
        maker.add(54000000 + uint64_t{i} * packetTicks, &stream[i * 188]);
    sim::TsStreamPtr after = maker.view();
    EXPECT_EQ(before->lineage(), after->lineage());
    EXPECT_EQ(before->packetsOf(dataPid).size(), 95u);
    ASSERT_EQ(after->packetsOf(dataPid).size(), 190u);
    EXPECT_EQ(before->clockPieces().size(), 1u);
    EXPECT_EQ(after->clockPieces().size(), 2u);
    uint8_t packet[188];
    for (uint32_t i = 1; i < 20; i++) {
        uint32_t place = after->packetsOf(dataPid)[i - 1];
        EXPECT_EQ(after->beginTicks(place), 27000000 + uint64_t{i} * packetTicks);
        EXPECT_EQ(after->firstEndingAfter(after->endUs(place) - 1), place);
        after->copyPacket(place, packet);
        EXPECT_TRUE(std::equal(packet, packet + 188, &stream[i * 188]));
        after->copyPacket(place + 1, packet);
        EXPECT_EQ((packet[1] & 0x1f) << 8 | packet[2], 0x1fff);
    }
    // Seconds that nobody looks back to are forgotten.
    maker.add(UINT64_C(27000000) * 60, stream.data());
    EXPECT_EQ(maker.view()->packetsOf(dataPid).size(), 0u);
}

}  // namespace

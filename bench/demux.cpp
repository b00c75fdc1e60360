// What the simulated demultiplexer costs: indexing a stream file, and an hour of broadcast with
// filters of different appetite, in virtual time.
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <utility>

#include "bench/world.h"
#include "platform/qlx_demux.h"
#include "platform/qlx_filter.h"
#include "simulator/core/sim.h"
#include "simulator/stream/ts_stream.h"
#include "simulator/tuner/reception.h"
#include "simulator/world/air.h"
#include "tests/shared/demux_streams.h"

namespace {

constexpr uint16_t tablePid = 0x12;
constexpr uint16_t videoPid = 0x100;
constexpr uint16_t absentPid = 0x999;
constexpr uint32_t packetTicks = 5076;

/** Half a second of 8 Mbit/s: five sections of a table, and video for the rest. */
demux_test::StreamMaker makeStream() {
    demux_test::StreamMaker maker;
    for (uint16_t i = 0; i < 5; i++) {
        maker.section(tablePid, demux_test::makeSection(0x42, 1, 0, 600));
        for (uint64_t picture = 0; picture < 5; picture++)
            maker.pes(videoPid, demux_test::makePes(picture * 1800, 19000, false));
        maker.clock(videoPid, uint64_t{maker.count} * packetTicks);
    }
    return maker;
}

demux_test::Bytes bigStream() {
    const demux_test::Bytes loop = makeStream().bytes;
    demux_test::Bytes content;
    while (content.size() < (100u << 20))
        content.insert(content.end(), loop.begin(), loop.end());
    return content;
}

/** The index, without the copy of the stream that it takes over. */
void DemuxIndex(benchmark::State& state) {
    const demux_test::Bytes content = bigStream();
    for (auto _ : state) {
        state.PauseTiming();
        demux_test::Bytes copy = content;
        state.ResumeTiming();
        sim::TsStream stream(std::move(copy), packetTicks);
        benchmark::DoNotOptimize(stream);
    }
    state.SetBytesProcessed(static_cast<int64_t>(content.size()) * state.iterations());
}

void DemuxSectionsOfIndex(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        sim::TsStream stream(bigStream(), packetTicks);
        state.ResumeTiming();
        state.counters["sections"] = static_cast<double>(stream.sectionsOf(tablePid).spans.size());
    }
}

std::atomic<uint64_t> reports;

void sectionReport(uint32_t event, void*, void* data) {
    reports++;
    if (event == QLX_FILTER_EVENT_DATA_COME)
        QLX_SectionFilterFreeBuffer(static_cast<QLX_FilterData*>(data)->pBuffer);
}

void packetReport(uint32_t event, void*, void* data) {
    reports++;
    if (event == QLX_FILTER_EVENT_DATA_COME)
        QLX_PacketFilterFreeBuffer(static_cast<QLX_FilterData*>(data)->pBuffer);
}

void startSections(uint16_t pid) {
    uint32_t handle = 0;
    QLX_SectionFilterParams params = {};
    params.uPid = pid;
    params.bContinuous = QLX_TRUE;
    QLX_DemuxCreateSectionFilter(0, &handle);
    QLX_SectionFilterConfigure(handle, &params);
    QLX_SectionFilterRegisterCallback(handle, nullptr, sectionReport);
    QLX_SectionFilterStart(handle);
}

void startPackets(uint16_t pid) {
    uint32_t handle = 0;
    QLX_PacketFilterParams params = {pid, 1 << 20};
    QLX_DemuxCreatePacketFilter(0, &handle);
    QLX_PacketFilterConfigure(handle, &params);
    QLX_PacketFilterRegisterCallback(handle, nullptr, packetReport);
    QLX_PacketFilterStart(handle);
}

/** Puts the stream on the air, once. */
void broadcast() {
    static bool done = false;
    if (done)
        return;
    done = true;
    demux_test::StreamMaker maker = makeStream();
    static char path[] = "/tmp/demux_benchmark.XXXXXX";
    int file = mkstemp(path);
    if (file < 0 || write(file, maker.bytes.data(), maker.bytes.size()) < 0) {
        perror(path);
        exit(1);
    }
    close(file);
    atexit([] { unlink(path); });
    auto transmitter = std::make_shared<sim::Transmitter>();
    transmitter->stream = path;
    sim::setReception(0, UINT64_C(1) << 40, transmitter);
}

void hour(benchmark::State& state, void (*startFilter)(uint16_t), uint16_t pid) {
    broadcast();
    for (auto _ : state) {
        QLX_DemuxInit();
        QLX_DemuxOpen(0);
        QLX_Source source = {QLX_SOURCE_TYPE_TUNER, 0, 0};
        QLX_DemuxConnectSource(0, &source);
        QLX_DemuxStart(0);
        if (startFilter != nullptr)
            startFilter(pid);
        reports = 0;
        sim::sleepMs(3600 * 1000);
        QLX_DemuxDeInit();
    }
    state.counters["reports"] = static_cast<double>(reports);
}

void DemuxHourWithoutFilter(benchmark::State& state) {
    hour(state, nullptr, 0);
}

void DemuxHourOfAbsentPid(benchmark::State& state) {
    hour(state, startSections, absentPid);
}

/** A section every 100 ms. */
void DemuxHourOfSections(benchmark::State& state) {
    hour(state, startSections, tablePid);
}

/** All packets of 7.9 Mbit/s. */
void DemuxHourOfPackets(benchmark::State& state) {
    hour(state, startPackets, videoPid);
}

const bool registered =
    measureIn(REAL_TIME, "DemuxIndex", DemuxIndex, inMilliseconds) &&
    measureIn(REAL_TIME, "DemuxSectionsOfIndex", DemuxSectionsOfIndex, onceByProcessor) &&
    measureIn(VIRTUAL_TIME, "DemuxHourWithoutFilter", DemuxHourWithoutFilter, onceByProcessor) &&
    measureIn(VIRTUAL_TIME, "DemuxHourOfAbsentPid", DemuxHourOfAbsentPid, onceByProcessor) &&
    measureIn(VIRTUAL_TIME, "DemuxHourOfSections", DemuxHourOfSections, onceByProcessor) &&
    measureIn(VIRTUAL_TIME, "DemuxHourOfPackets", DemuxHourOfPackets, onceByProcessor);

}  // namespace

// What the simulated demultiplexer costs: indexing a stream file, and an hour of broadcast with
// filters of different appetite. Start it under vclock/run, or the hours are real ones.
#include <stdio.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "platform/qlx_demux.h"
#include "platform/qlx_filter.h"
#include "simulator/core/sim.h"
#include "simulator/stream/ts_stream.h"
#include "simulator/world/air.h"
#include "tests/shared/demux_streams.h"

namespace {

constexpr uint16_t tablePid = 0x12;
constexpr uint16_t videoPid = 0x100;
constexpr uint16_t absentPid = 0x999;
constexpr uint32_t packetTicks = 5076;

/** Processor time of the process, which virtual time does not touch. */
double cpuMs() {
    struct rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    auto ms = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

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

void measureIndex(const demux_test::Bytes& loop) {
    demux_test::Bytes content;
    while (content.size() < (100u << 20))
        content.insert(content.end(), loop.begin(), loop.end());
    double start = cpuMs();
    demux_test::Bytes copy = content;
    double copied = cpuMs();
    sim::TsStream stream(std::move(copy), packetTicks);
    double indexed = cpuMs();
    size_t sections = stream.sectionsOf(tablePid).spans.size();
    double found = cpuMs();
    double megabytes = static_cast<double>(content.size()) / (1 << 20);
    printf("index of %.0f MB: %.0f ms (a copy of it: %.0f ms); its %zu sections: %.1f ms\n",
           megabytes, indexed - copied, copied - start, sections, found - indexed);
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

void measureHour(const char* what, void (*startFilter)(uint16_t), uint16_t pid) {
    QLX_DemuxInit();
    QLX_DemuxOpen(0);
    QLX_Source source = {QLX_SOURCE_TYPE_TUNER, 0, 0};
    QLX_DemuxConnectSource(0, &source);
    QLX_DemuxStart(0);
    if (startFilter != nullptr)
        startFilter(pid);
    reports = 0;
    double start = cpuMs();
    sim::sleepMs(3600 * 1000);
    printf("an hour with %-32s %8.1f ms, %llu reports\n", what, cpuMs() - start,
           static_cast<unsigned long long>(reports));
    QLX_DemuxDeInit();
}

}  // namespace

int main() {
    demux_test::StreamMaker maker = makeStream();
    measureIndex(maker.bytes);

    char path[] = "/tmp/demux_bench.XXXXXX";
    int file = mkstemp(path);
    if (file < 0 || write(file, maker.bytes.data(), maker.bytes.size()) < 0)
        return 1;
    close(file);
    auto transmitter = std::make_shared<sim::Transmitter>();
    transmitter->stream = path;
    sim::setReception(0, UINT64_C(1) << 40, transmitter);
    measureHour("no filter", nullptr, 0);
    measureHour("a filter on an absent PID", startSections, absentPid);
    measureHour("a section every 100 ms", startSections, tablePid);
    measureHour("all packets of 7.9 Mbit/s", startPackets, videoPid);
    unlink(path);
    return 0;
}

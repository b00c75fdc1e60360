// What recording and injecting cost, beside a plain copy of the same bytes: ten minutes of a
// stream of 8 Mbit/s, in virtual time.
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "bench/world.h"
#include "platform/qlx_demux.h"
#include "platform/qlx_dmxinject.h"
#include "platform/qlx_record.h"
#include "simulator/core/sim.h"
#include "simulator/tuner/reception.h"
#include "simulator/world/air.h"
#include "tests/shared/demux_streams.h"

namespace {

constexpr uint32_t tuner = 2;
constexpr uint32_t demux = 2;
constexpr uint16_t videoPid = 0x100;
constexpr uint32_t packetTicks = 5076;
constexpr int64_t recordMs = 600 * 1000;
constexpr size_t packetBytes = 192;

demux_test::Bytes makeStream() {
    demux_test::StreamMaker maker;
    for (uint64_t picture = 0; picture < 50; picture++) {
        maker.clock(videoPid, uint64_t{maker.count} * packetTicks);
        maker.pes(videoPid, demux_test::makePes(picture * 3600, 38000, false));
        maker.nulls(5);
    }
    return maker.bytes;
}

/** A file in memory, gone with the process. */
FILE* openFile() {
    FILE* file = tmpfile();
    if (file == nullptr) {
        perror("tmpfile");
        exit(1);
    }
    return file;
}

void broadcast() {
    static bool done = false;
    if (done)
        return;
    done = true;
    const demux_test::Bytes bytes = makeStream();
    static char path[] = "/tmp/record_benchmark.XXXXXX";
    int file = mkstemp(path);
    if (file < 0 || write(file, bytes.data(), bytes.size()) < 0) {
        perror(path);
        exit(1);
    }
    close(file);
    atexit([] { unlink(path); });
    auto transmitter = std::make_shared<sim::Transmitter>();
    transmitter->stream = path;
    sim::setReception(tuner, UINT64_C(1) << 40, transmitter);
}

int64_t recorded;

int32_t writeFile(uint32_t, uint32_t, uint8_t* data, uint32_t size, void* file) {
    recorded += static_cast<int64_t>(fwrite(data, 1, size, static_cast<FILE*>(file)));
    return 0;
}

void openDemux(uint32_t kind) {
    const QLX_Source source = {kind, kind == QLX_SOURCE_TYPE_TUNER ? tuner : 0, 0};
    QLX_DemuxInit();
    QLX_DemuxOpen(demux);
    QLX_DemuxConnectSource(demux, &source);
    QLX_DemuxStart(demux);
}

void RecordToFile(benchmark::State& state) {
    broadcast();
    for (auto _ : state) {
        FILE* file = openFile();
        uint32_t handle = 0;
        const QLX_RecordCfg cfg = {packetBytes, 4096, {0, 0}};
        const QLX_RecordCallbacks callbacks = {writeFile, file, nullptr, nullptr};
        recorded = 0;
        openDemux(QLX_SOURCE_TYPE_TUNER);
        QLX_RecordInit();
        QLX_RecordOpen(demux, &cfg, &handle);
        QLX_RecordRegisterCb(handle, &callbacks);
        QLX_RecordAddPid(handle, videoPid);
        QLX_RecordStart(handle);
        sim::sleepMs(recordMs);
        QLX_RecordDeInit();
        QLX_DemuxDeInit();
        fclose(file);
    }
    state.SetBytesProcessed(recorded * state.iterations());
}

/** The bytes of a recording, blocks of the recorder's size. */
std::vector<uint8_t> recording() {
    const demux_test::Bytes stream = makeStream();
    std::vector<uint8_t> bytes;
    for (size_t at = 0; at < stream.size(); at += 188) {
        bytes.insert(bytes.end(), 4, 0);
        bytes.insert(bytes.end(), stream.begin() + static_cast<long>(at),
                     stream.begin() + static_cast<long>(at) + 188);
    }
    return bytes;
}

void RecordPlainCopy(benchmark::State& state) {
    constexpr size_t block = 50000;
    const std::vector<uint8_t> bytes = recording();
    const size_t total = size_t{600} << 20;
    FILE* from = openFile();
    for (size_t done = 0; done < total; done += bytes.size())
        fwrite(bytes.data(), 1, bytes.size(), from);
    std::vector<uint8_t> buffer(block);
    int64_t copied = 0;
    for (auto _ : state) {
        FILE* to = openFile();
        rewind(from);
        for (size_t size = 0; (size = fread(buffer.data(), 1, block, from)) > 0;)
            copied += static_cast<int64_t>(fwrite(buffer.data(), 1, size, to));
        fclose(to);
    }
    fclose(from);
    state.SetBytesProcessed(copied);
}

void InjectFromMemory(benchmark::State& state) {
    const std::vector<uint8_t> bytes = recording();
    int64_t injected = 0;
    for (auto _ : state) {
        uint32_t handle = 0;
        const QLX_DmxInjectOpenParam param = {demux, 0, packetBytes};
        openDemux(QLX_SOURCE_TYPE_RECORD);
        QLX_DmxInjectInit();
        QLX_DmxInjectOpen(&param, &handle);
        QLX_DmxInjectStart(handle);
        QLX_DmxInjectSetSpeed(handle, QLX_DMXINJECT_SPEED_FORWARD_8X);
        size_t at = 0;
        for (int64_t ms = 0; ms < recordMs / 8; ms += 5) {
            uint32_t room = 0;
            uint32_t written = 0;
            QLX_DmxInjectGetFreeSize(handle, &room);
            const auto part = static_cast<uint32_t>(std::min<size_t>(room, bytes.size() - at));
            if (room > 98304) {
                QLX_DmxInjectWriteData(handle, &bytes[at], part, &written);
                at = (at + written) % bytes.size();
                injected += written;
            }
            sim::sleepMs(5);
        }
        QLX_DmxInjectDeInit();
        QLX_DemuxDeInit();
    }
    state.SetBytesProcessed(injected);
}

const bool registered =
    measureIn(VIRTUAL_TIME, "RecordPlainCopy", RecordPlainCopy, onceByProcessor) &&
    measureIn(VIRTUAL_TIME, "RecordToFile", RecordToFile, onceByProcessor) &&
    measureIn(VIRTUAL_TIME, "InjectFromMemory", InjectFromMemory, onceByProcessor);

}  // namespace

// What a decoder costs in virtual time: an hour of one channel, alone and with a program that asks
// for the time stamp of the picture.
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <memory>

#include "bench/world.h"
#include "platform/qlx_demux.h"
#include "simulator/tuner/reception.h"
#include "simulator/world/air.h"
#include "tests/shared/decoder_stream.h"

namespace {

constexpr uint32_t tuner = 1;
constexpr int64_t hourMs = 3600 * 1000;
constexpr int64_t askEveryMs = 400;

/** Puts the stream on the air, once. */
void broadcast() {
    static bool done = false;
    if (done)
        return;
    done = true;
    const demux_test::Bytes bytes = decoder_test::decoderStream();
    static char path[] = "/tmp/decoder_benchmark.XXXXXX";
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

void hour(benchmark::State& state, bool asked) {
    broadcast();
    sim::DecoderFamily& family = decoder_test::handMadeFamily();
    static int events;
    events = 0;
    auto count = [](uint32_t, void*, uint32_t, void*) { events++; };
    for (auto _ : state) {
        QLX_Source source = {QLX_SOURCE_TYPE_TUNER, tuner, 0};
        QLX_DemuxInit();
        QLX_DemuxOpen(1);
        QLX_DemuxConnectSource(1, &source);
        QLX_DemuxStart(1);
        sim::DecoderSource demux = {QLX_SOURCE_TYPE_DEMUX, 1, 0, QLX_VIDEO_INPUT_MODE_TUNER};
        sim::decodersInit(family);
        sim::decoderOpen(family, 0, &demux);
        sim::decoderRegister(family, 0, nullptr, count);
        sim::decoderStart(family, 0, QLX_VIDEO_FORMAT_MPEG2, decoder_test::esPid);
        for (int64_t ms = 0; ms < hourMs; ms += asked ? askEveryMs : hourMs) {
            sim::sleepMs(asked ? askEveryMs : hourMs);
            std::lock_guard<std::mutex> lock(family.mutex);
            benchmark::DoNotOptimize(sim::shownMoment(*family.decoders[0].run));
        }
        sim::decodersDeInit(family);
        QLX_DemuxDeInit();
    }
    state.counters["events"] = events;
}

void DecoderHour(benchmark::State& state) {
    hour(state, false);
}

/** 9000 questions. */
void DecoderHourWithTimeStamps(benchmark::State& state) {
    hour(state, true);
}

const bool registered = measureIn(VIRTUAL_TIME, "DecoderHour", DecoderHour, onceByProcessor) &&
                        measureIn(VIRTUAL_TIME, "DecoderHourWithTimeStamps",
                                  DecoderHourWithTimeStamps, onceByProcessor);

}  // namespace

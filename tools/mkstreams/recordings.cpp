#include "tools/mkstreams/recordings.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>

#include "simulator/media/live_index.h"
#include "simulator/stream/live_stream.h"
#include "simulator/stream/ts_stream.h"
#include "tools/mkstreams/cfg_file.h"
#include "tools/mkstreams/content.h"
#include "tools/mkstreams/dvb_tables.h"
#include "tools/mkstreams/indexer.h"

extern "C" {
#include <libavutil/log.h>
}

namespace mkstreams {

namespace fs = std::filesystem;

static const uint16_t recordedPmtPid = 0x0400;

// clang-format off
const Recording recordings[] = {
    // file        kind     sounds  s    lacking
    {"sd.ts",      "main",  1,      170, 0},
    {"hd.ts",      "hd",    1,      40,  0},
    {"multi.ts",   "multi", 3,      40,  0},
    {"unalign.ts", "main",  1,      40,  101},
};
// clang-format on
const size_t recordingCount = sizeof(recordings) / sizeof(recordings[0]);

bool recordedService(const std::string& configDir, const LineUp& lineUp, const Recording& recording,
                     Multiplex* service) {
    std::set<fs::path> boards;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(configDir, ignored)) {
        if (fs::exists(entry.path() / "channel_pvr_playback.cfg"))
            boards.insert(entry.path());
    }
    CfgFile channels;
    if (boards.empty() || !channels.load((*boards.begin() / "channel_pvr_playback.cfg").string()))
        return false;
    Channel channel = readChannel(channels, 0);
    channel.pmtPid = recordedPmtPid;
    channel.pesPid = 0;
    channel.audio.resize(std::min<size_t>(channel.audio.size(), recording.audio));
    *service = {};
    service->standard = lineUp.multiplexes.front().standard;
    service->channels = {channel};
    service->file = std::string("pvr_") + recording.kind + ".ts";
    service->referenced = true;
    service->tsId = transportStreamId(*service->standard, channel);
    return channel.videoPid != 0 && !channel.audio.empty();
}

StreamInputs recordingInputs(const Multiplex& service) {
    StreamInputs inputs;
    inputs.duration = loopTicks(service);
    inputs.pcrPid = service.channels.front().pcrPid;
    addProgramTables(service, &inputs.bursts);
    planStreams(service, service.channels.front(), inputs.duration, &inputs.plans);
    return inputs;
}

bool makeLoop(const Multiplex& service, EncodedContent* encoded, TransportStream* stream,
              std::string* error) {
    StreamInputs inputs = recordingInputs(service);
    MultiplexInput input = {inputs.bursts, {}, inputs.pcrPid, inputs.duration};
    for (const StreamPlan& plan : inputs.plans) {
        input.streams.push_back({plan.pid, {}});
        if (!plan.make(encoded, &input.streams.back(), error))
            return false;
    }
    return multiplexAtFittingRate(input, stream, error);
}

Bytes record(const Recording& recording, const TransportStream& loop) {
    const sim::TsStream stream(loop.packets, static_cast<uint32_t>(loop.packetTicks));
    auto last = static_cast<uint64_t>(recording.seconds) * 27000000 / stream.packetTicks();
    Bytes file;
    for (uint64_t number = 0; number < last; number++) {
        uint8_t packet[packetSize];
        stream.copyPacket(number, packet);
        put32(file, static_cast<uint32_t>(stream.beginTicks(number)));
        file.insert(file.end(), packet, packet + packetSize);
    }
    file.erase(file.begin(), file.begin() + static_cast<ptrdiff_t>(recording.skipped));
    return file;
}

void lookAtPieces(const Multiplex& service, const TransportStream& loop) {
    const sim::TsStream stream(loop.packets, static_cast<uint32_t>(loop.packetTicks));
    const Channel& channel = service.channels.front();
    sim::LiveStreamMaker maker(0, {});
    // Of pictures that are looked at alone the parameter sets are missed, and that is told.
    const int told = av_log_get_level();
    av_log_set_level(AV_LOG_QUIET);
    // Into the second loop, where the last PES packet of the first is whole.
    for (uint64_t number = 0; number < stream.packetCount() * UINT64_C(2); number++) {
        uint8_t packet[packetSize];
        stream.copyPacket(number, packet);
        maker.add(stream.beginTicks(number), packet);
        if (number % 500 != 499)
            continue;
        sim::TsStreamPtr view = maker.view();
        const auto& live = static_cast<const sim::LiveStream&>(*view);
        sim::liveIndex(live, channel.videoPid, codingOf(VideoFormat(channel.videoFormat)));
        for (const AudioComponent& audio : channel.audio)
            sim::liveIndex(live, audio.pid, codingOf(AudioFormat(audio.format)));
    }
    av_log_set_level(told);
}

}  // namespace mkstreams

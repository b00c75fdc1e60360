// Records a channel while it plays, and another one plays beside it; then plays the recording while
// the broadcast goes on. Each picture and each frame of sound that was seen in the broadcast is
// compared with that of the same time stamp out of the recording, and the findings told in a line:
//
//     time_shift_player PACKET_SIZE CHANNEL VIDEO_FORMAT AUDIO_FORMAT
//
// of DVB-T; the packet size is that of the recording. The working directory is a bench folder; it
// runs in virtual time.
#include <stdio.h>
#include <stdlib.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "platform/qlx_demux.h"
#include "platform/qlx_dmxinject.h"
#include "platform/qlx_record.h"
#include "platform/qlx_tuner.h"
#include "simulator/av/decoder.h"
#include "simulator/core/board.h"
#include "simulator/core/sim.h"
#include "simulator/media/es_index.h"
#include "simulator/media/picture.h"
#include "simulator/tuner/reception.h"
#include "simulator/world/air.h"

namespace {

constexpr uint32_t playDemux = 0;
constexpr uint32_t besideDemux = 1;
constexpr uint32_t shiftDemux = 2;
constexpr int64_t recordMs = 4000;
constexpr int64_t lookMs = 400;
constexpr int64_t soundUs = 20000;

struct Pids {
    uint32_t video, audio, clock;
};

Pids pidsOf(uint32_t channel) {
    sim::Cfg file;
    file.load(sim::commonFile("channel_dvb_t.cfg"));
    auto value = [&](const char* key) {
        return static_cast<uint32_t>(file.number("CHANNEL" + std::to_string(channel), key));
    };
    return {value("VIDEO_PID"), value("AUDIO_PID0"), value("PCR_PID")};
}

void must(int32_t answer, const char* what) {
    if (answer == 0)
        return;
    fprintf(stderr, "time_shift_player: %s answers %d\n", what, answer);
    exit(1);
}
#define MUST(call) must(call, #call)

void tune(uint32_t tuner, uint32_t channel) {
    for (const sim::TransmitterPtr& transmitter : sim::transmittersOnAir()) {
        const std::vector<uint32_t>& channels = transmitter->channels;
        if (transmitter->listedSystem == QLX_TRANSMISSION_SYSTEM_DVB_T &&
            std::count(channels.begin(), channels.end(), channel) != 0)
            sim::setReception(tuner, (UINT64_C(1) << 43) + tuner, transmitter);
    }
}

void openDemux(uint32_t demux, uint32_t kind, uint32_t index) {
    const QLX_Source source = {kind, index, 0};
    MUST(QLX_DemuxOpen(demux));
    MUST(QLX_DemuxConnectSource(demux, &source));
    MUST(QLX_DemuxStart(demux));
}

void startDecoders(uint32_t device, uint32_t demux, const Pids& pids, uint32_t videoFormat,
                   uint32_t audioFormat) {
    const QLX_VideoAttr video = {QLX_SOURCE_TYPE_DEMUX, demux, 0, 1};
    const QLX_AudioAttr audio = {QLX_SOURCE_TYPE_DEMUX, demux, 0};
    MUST(QLX_VideoOpen(device, &video));
    MUST(QLX_AudioOpen(device, &audio));
    MUST(QLX_VideoStart(device, videoFormat, pids.video));
    MUST(QLX_AudioStart(device, audioFormat, pids.audio));
}

void stopDecoders(uint32_t device) {
    MUST(QLX_VideoClose(device));
    MUST(QLX_AudioClose(device));
}

using Pictures = std::map<uint64_t, std::vector<uint8_t>>;
using Sounds = std::map<uint64_t, std::vector<int16_t>>;

/** What a decoder shows and plays now, by time stamp. */
void look(uint32_t device, Pictures* pictures, Sounds* sounds) {
    const sim::DecoderOrigin video = sim::videoShown(device).origin;
    QLX_VideoInfo info = {};
    MUST(QLX_VideoGetVideoInfo(device, QLX_VIDEO_PARAMTYPE_GET_PTS, &info));
    if (video.stream != nullptr)
        (*pictures)[info.uPts] =
            sim::decodePicture(video.stream, video.pid, sim::videoShown(device).coding,
                               video.sinceUs, video.atUs)
                .rgb;
    const sim::AudioPlayed played = sim::audioPlayed(device);
    const sim::DecoderOrigin& audio = played.origin;
    if (audio.stream == nullptr)
        return;
    auto index = sim::audioIndexAtHand(audio.stream, audio.pid, played.coding);
    if (index == nullptr)
        return;
    // A frame whose neighbours have been received too, so that its samples are final.
    auto unit = sim::unitShown(*audio.stream, *index, audio.sinceUs, audio.atUs - 200000);
    if (unit.has_value())
        (*sounds)[unit->pts] =
            sim::decodeSound(audio.stream, audio.pid, played.coding, unit->shownUs, soundUs)
                .samples;
}

std::mutex recordMutex;
std::vector<uint8_t> recording;

int32_t takeData(uint32_t, uint32_t, uint8_t* data, uint32_t size, void*) {
    std::lock_guard<std::mutex> lock(recordMutex);
    recording.insert(recording.end(), data, data + size);
    return 0;
}

void record(uint32_t packetSize, const Pids& pids, Pictures* pictures, Sounds* sounds) {
    uint32_t handle = 0;
    const QLX_RecordCfg cfg = {packetSize, 4096, {0, 0}};
    const QLX_RecordCallbacks callbacks = {takeData, nullptr, nullptr, nullptr};
    MUST(QLX_RecordInit());
    MUST(QLX_RecordOpen(playDemux, &cfg, &handle));
    MUST(QLX_RecordRegisterCb(handle, &callbacks));
    for (uint32_t pid : {pids.video, pids.audio, pids.clock})
        MUST(QLX_RecordAddPid(handle, pid));
    MUST(QLX_RecordStart(handle));
    for (int64_t at = 0; at < recordMs; at += lookMs) {
        sim::sleepMs(lookMs);
        look(0, pictures, sounds);
    }
    MUST(QLX_RecordStop(handle));
    MUST(QLX_RecordDeInit());
}

/** Plays the recording, looking each 20 ms for what was seen before. */
void playBack(uint32_t packetSize, const Pictures& wanted, const Sounds& wantedSounds,
              Pictures* pictures, Sounds* sounds) {
    uint32_t handle = 0;
    uint32_t written = 0;
    const QLX_DmxInjectOpenParam param = {shiftDemux, 0, packetSize};
    MUST(QLX_DmxInjectInit());
    MUST(QLX_DmxInjectOpen(&param, &handle));
    MUST(QLX_DmxInjectStart(handle));
    size_t at = 0;
    for (int64_t ms = 0; ms < recordMs + 2000; ms += 20) {
        uint32_t room = 0;
        MUST(QLX_DmxInjectGetFreeSize(handle, &room));
        const size_t part = std::min<size_t>({room, 10000, recording.size() - at});
        if (part > 0)
            MUST(QLX_DmxInjectWriteData(handle, &recording[at], static_cast<uint32_t>(part),
                                        &written));
        at += part;
        sim::sleepMs(20);
        QLX_VideoInfo info = {};
        MUST(QLX_VideoGetVideoInfo(1, QLX_VIDEO_PARAMTYPE_GET_PTS, &info));
        if (wanted.count(info.uPts) == 1 && pictures->count(info.uPts) == 0)
            look(1, pictures, sounds);
        const sim::AudioPlayed played = sim::audioPlayed(1);
        if (played.origin.stream == nullptr)
            continue;
        auto index = sim::audioIndexAtHand(played.origin.stream, played.origin.pid, played.coding);
        auto unit = sim::unitShown(*played.origin.stream, *index, played.origin.sinceUs,
                                   played.origin.atUs - 200000);
        if (unit.has_value() && wantedSounds.count(unit->pts) == 1 && sounds->count(unit->pts) == 0)
            look(1, pictures, sounds);
    }
    MUST(QLX_DmxInjectDeInit());
}

template <typename Map>
void compare(const char* what, const Map& seen, const Map& again) {
    int same = 0;
    int differ = 0;
    for (const auto& [pts, content] : again) {
        auto found = seen.find(pts);
        if (found != seen.end())
            (content == found->second && !content.empty() ? same : differ)++;
    }
    printf("%s=%zu %s_same=%d %s_differ=%d ", what, seen.size(), what, same, what, differ);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5)
        return 2;
    auto number = [&](int i) { return static_cast<uint32_t>(strtoul(argv[i], nullptr, 10)); };
    const Pids pids = pidsOf(number(2));
    Pictures seen, again, beside;
    Sounds heard, heardAgain, besideSounds;
    tune(0, number(2));
    tune(1, 0);
    MUST(QLX_DemuxInit());
    MUST(QLX_VideoInit());
    MUST(QLX_AudioInit());
    openDemux(playDemux, QLX_SOURCE_TYPE_TUNER, 0);
    openDemux(besideDemux, QLX_SOURCE_TYPE_TUNER, 1);
    openDemux(shiftDemux, QLX_SOURCE_TYPE_RECORD, 0);
    startDecoders(0, playDemux, pids, number(3), number(4));
    startDecoders(1, besideDemux, pidsOf(0), 2, 1);
    sim::sleepMs(1500);
    record(number(1), pids, &seen, &heard);
    look(1, &beside, &besideSounds);
    stopDecoders(1);
    startDecoders(1, shiftDemux, pids, number(3), number(4));
    playBack(number(1), seen, heard, &again, &heardAgain);
    compare("pictures", seen, again);
    compare("sounds", heard, heardAgain);
    Pictures last;
    Sounds lastSounds;
    look(0, &last, &lastSounds);
    const bool goesOn = !last.empty() && last.begin()->first > seen.rbegin()->first;
    printf("beside=%d broadcast=%d bytes=%zu\n",
           beside.empty() || beside.begin()->second.empty() ? 0 : 1, goesOn ? 1 : 0,
           recording.size());
    return 0;
}

// Plays every channel of the line-up on the simulated device's decoders, from several moments of
// its loop, and tells a line of words for each play:
//
//     line_up_player [SYSTEM CHANNEL VIDEO_FORMAT AUDIO_FORMAT [FOLDER [CONTROL...]]]
//
// With arguments, that channel alone, started in these formats; with a folder, what is then on the
// panel and in the speaker is captured there: panel.png, speaker.wav of a second. What is
// controlled then comes one after the other: "WORD NUMBER" of the table below, "tell" for a line
// with the time stamps, or an event of the outside world, as "capture panel FILE". The working
// directory is a bench folder; it runs in virtual time.
#include <stdio.h>
#include <stdlib.h>

#include <map>
#include <string>
#include <utility>

#include "platform/qlx_aout.h"
#include "platform/qlx_demux.h"
#include "platform/qlx_tuner.h"
#include "platform/qlx_videosync.h"
#include "platform/qlx_vout.h"
#include "simulator/av/decoder.h"
#include "simulator/core/board.h"
#include "simulator/sim_control.h"
#include "simulator/tuner/reception.h"
#include "simulator/world/air.h"
#include "tests/shared/decoder_log.h"

namespace {

using namespace decoder_test;

constexpr int phases = 4;
/** Moments that are no part of any group of pictures. */
constexpr int64_t phaseMs = 337;
constexpr int64_t playMs = 3000;

struct Channel {
    const char* system;
    uint32_t number;
    uint32_t videoFormat;
    uint32_t videoPid;
    uint32_t clockPid;
    uint32_t audioFormat;
    uint32_t audioPid;
    /** 0: the channel has no audio description. */
    uint32_t descriptionFormat;
    uint32_t descriptionPid;
};

const std::map<uint32_t, std::pair<const char*, const char*>> systems = {
    {QLX_TRANSMISSION_SYSTEM_DVB_T, {"DVB-T", "channel_dvb_t.cfg"}},
    {QLX_TRANSMISSION_SYSTEM_DVB_S, {"DVB-S", "channel_dvb_s.cfg"}},
    {QLX_TRANSMISSION_SYSTEM_DVB_C, {"DVB-C", "channel_dvb_c.cfg"}},
    {QLX_TRANSMISSION_SYSTEM_ATSC_T, {"ATSC-T", "channel_atsc_t.cfg"}},
    {QLX_TRANSMISSION_SYSTEM_ATSC_C, {"ATSC-C", "channel_atsc_c.cfg"}},
    {QLX_TRANSMISSION_SYSTEM_ISDB_T, {"ISDB-T", "channel_isdb_t.cfg"}},
    {QLX_TRANSMISSION_SYSTEM_ISDB_S, {"ISDB-S", "channel_isdb_s.cfg"}},
    {QLX_TRANSMISSION_SYSTEM_ISDB_S3, {"ISDB-S3", "channel_isdb_s3.cfg"}},
};

Channel readChannel(uint32_t system, uint32_t number) {
    sim::Cfg file;
    file.load(sim::commonFile(systems.at(system).second));
    auto value = [&](const char* key) {
        return static_cast<uint32_t>(file.number("CHANNEL" + std::to_string(number), key));
    };
    return {systems.at(system).first, number,
            value("VIDEO_FORMAT"),    value("VIDEO_PID"),
            value("PCR_PID"),         value("AUDIO_FORMAT0"),
            value("AUDIO_PID0"),      value("AUDIODESC_FORMAT0"),
            value("AUDIODESC_PID0")};
}

/** Brings up the transmitter's stream on demultiplexer 0 and the decoders on it. */
void bringUp(const sim::TransmitterPtr& transmitter, Log* video, Log* audio) {
    static uint64_t sequence = UINT64_C(1) << 42;
    QLX_Source tuner = {QLX_SOURCE_TYPE_TUNER, 0, 0};
    QLX_VideoAttr videoAttr = {QLX_SOURCE_TYPE_DEMUX, 0, 0, QLX_VIDEO_INPUT_MODE_TUNER};
    QLX_AudioAttr audioAttr = {QLX_SOURCE_TYPE_DEMUX, 0, 0};
    qlx_sim_reset();
    sim::setReception(0, ++sequence, transmitter);
    bool up = QLX_DemuxInit() == 0 && QLX_DemuxOpen(0) == 0 &&
              QLX_DemuxConnectSource(0, &tuner) == 0 && QLX_DemuxStart(0) == 0 &&
              QLX_VideoInit() == 0 && QLX_AudioInit() == 0 && QLX_VideoOpen(0, &videoAttr) == 0 &&
              QLX_AudioOpen(0, &audioAttr) == 0 &&
              QLX_VideoRegisterCallback(0, video, onVideo) == 0 &&
              QLX_AudioRegisterCallback(0, audio, onAudio) == 0;
    if (!up) {
        fprintf(stderr, "line_up_player: the decoders do not come up\n");
        exit(1);
    }
}

/** Looks at what goes out, over the whole panel and at full volume. */
void captureOutputs(const std::string& folder) {
    QLX_Source source = {QLX_SOURCE_TYPE_DEMUX, 0, 0};
    bool shown = QLX_VOutInit() == 0 && QLX_VOutOpen(0, &source) == 0 && QLX_VOutEnable(0) == 0 &&
                 QLX_VOutSetMute(0, QLX_FALSE) == 0 && QLX_AOutInit() == 0 &&
                 QLX_AOutOpen(0, QLX_OUTPUT_SOURCE_SPEAKER) == 0 &&
                 QLX_AOutSetVolume(0, 100) == 0 && QLX_AOutSetMute(0, QLX_FALSE) == 0 &&
                 QLX_AudioSetVolume(0, QLX_AUDIO_SOURCE_MAIN, 100) == 0 &&
                 QLX_AudioSetMute(0, QLX_AUDIO_SOURCE_MAIN, QLX_FALSE) == 0;
    if (!shown || qlx_sim_event(("capture panel " + folder + "/panel.png").c_str()) != 0 ||
        qlx_sim_event(("capture sound " + folder + "/speaker.wav speaker 1000").c_str()) != 0) {
        fprintf(stderr, "line_up_player: the outputs cannot be captured\n");
        exit(1);
    }
}

/** What a program controls of a play. */
struct Control {
    const char* word;
    int32_t (*call)(const Channel& channel, uint32_t number);
};

int32_t setSync(const Channel& channel, uint32_t mode) {
    const uint16_t pid = static_cast<uint16_t>(
        mode == QLX_VIDEOSYNC_MODE_AUDIO_MASTER ? channel.audioPid : channel.videoPid);
    const QLX_SyncParams params = {mode, pid, static_cast<uint16_t>(channel.clockPid)};
    return QLX_VideoSyncSetMode(0, &params);
}

int32_t describe(const Channel& channel, uint32_t on) {
    return on != 0 ? QLX_AudioStartDescription(0, channel.descriptionFormat, channel.descriptionPid)
                   : QLX_AudioStopDescription(0);
}

int32_t waitMs(const Channel&, uint32_t ms) {
    sim::sleepMs(ms);
    return 0;
}

// clang-format off
const Control controls[] = {
    {"wait",              waitMs},
    {"volume",            [](const Channel&, uint32_t n) { return QLX_AudioSetVolume(0, QLX_AUDIO_SOURCE_MAIN, n); }},
    {"mute",              [](const Channel&, uint32_t n) { return QLX_AudioSetMute(0, QLX_AUDIO_SOURCE_MAIN, n); }},
    {"prescaler",         [](const Channel&, uint32_t n) { return QLX_AudioSetPrescaler(0, n); }},
    {"audio-mode",        [](const Channel&, uint32_t n) { return QLX_AudioSetDigitalAudioMode(0, n); }},
    {"describe",          describe},
    {"sink-mute",         [](const Channel&, uint32_t n) { return QLX_AOutSetMute(0, n); }},
    {"sink-volume",       [](const Channel&, uint32_t n) { return QLX_AOutSetVolume(0, n); }},
    {"sink-describe",     [](const Channel&, uint32_t n) { return QLX_AOutSetAudioDescription(0, n); }},
    {"describe-volume",   [](const Channel&, uint32_t n) { return QLX_AOutSetAudioDescriptionVolume(0, n); }},
    {"sync",              setSync},
    {"video-pause",       [](const Channel&, uint32_t n) { return n != 0 ? QLX_VideoPause(0) : QLX_VideoResume(0); }},
    {"audio-pause",       [](const Channel&, uint32_t n) { return n != 0 ? QLX_AudioPause(0) : QLX_AudioResume(0); }},
    {"panel-mute",        [](const Channel&, uint32_t n) { return QLX_VOutSetMute(0, n); }},
};
// clang-format on

void tellStamps() {
    QLX_VideoInfo video = {};
    QLX_AudioInfo audio = {};
    uint64_t stc = 0;
    QLX_VideoGetVideoInfo(0, QLX_VIDEO_PARAMTYPE_GET_PTS, &video);
    QLX_AudioGetAudioInfo(0, QLX_AUDIO_PARAMTYPE_PTS, &audio);
    QLX_VideoSyncGetSTC(0, &stc);
    printf("told video_pts=%llu audio_pts=%llu stc=%llu\n",
           static_cast<unsigned long long>(video.uPts), static_cast<unsigned long long>(audio.uPts),
           static_cast<unsigned long long>(stc));
}

void take(const Channel& channel, const std::string& line) {
    const std::string word = line.substr(0, line.find(' '));
    bool good = word == "tell";
    if (good)
        tellStamps();
    for (const Control& control : controls) {
        if (word == control.word)
            good =
                control.call(channel,
                             static_cast<uint32_t>(strtoul(&line[word.size()], nullptr, 10))) == 0;
    }
    if (!good && qlx_sim_event(line.c_str()) != 0) {
        fprintf(stderr, "line_up_player: cannot do: %s\n", line.c_str());
        exit(1);
    }
}

std::string underscored(std::string words) {
    for (char& c : words)
        c = c == ' ' ? '_' : c;
    return words;
}

/** @param words  the folder of captures and what is controlled then, a null behind; null: nothing
 */
void play(const sim::TransmitterPtr& transmitter, const Channel& channel, int phase,
          char* const* words) {
    Log video;
    Log audio;
    bringUp(transmitter, &video, &audio);
    sim::sleepMs(phase * phaseMs);
    int64_t start = sim::nowMs();
    QLX_SyncParams sync = {QLX_VIDEOSYNC_MODE_PCR_MASTER, 0,
                           static_cast<uint16_t>(channel.clockPid)};
    if (QLX_VideoStart(0, channel.videoFormat, channel.videoPid) != 0 ||
        QLX_VideoSyncSetMode(0, &sync) != 0 ||
        QLX_AudioStart(0, channel.audioFormat, channel.audioPid) != 0)
        exit(1);
    sim::sleepMs(playMs);
    if (words != nullptr && *words != nullptr) {
        captureOutputs(*words);
        while (*++words != nullptr)
            take(channel, *words);
        return;
    }
    if (channel.descriptionPid != 0 &&
        QLX_AudioStartDescription(0, channel.descriptionFormat, channel.descriptionPid) != 0)
        exit(1);
    const sim::DecoderOrigin description = sim::audioPlayed(0).description;
    QLX_VideoInfo stamp;
    QLX_AudioInfo soundStamp;
    QLX_VideoGetVideoInfo(0, QLX_VIDEO_PARAMTYPE_GET_PTS, &stamp);
    QLX_AudioGetAudioInfo(0, QLX_AUDIO_PARAMTYPE_PTS, &soundStamp);
    QLX_VideoStop(0);
    QLX_AudioStop(0);
    const QLX_VideoDecInfo picture = video.first(QLX_EVENT_VIDEO_INFO_CHANGE).video;
    const QLX_AudioDecInfo sound = audio.first(QLX_EVENT_AUDIO_INFO_CHANGE).audio;
    auto after = [&](const Log& log, uint32_t event) {
        int64_t ms = log.first(event).ms;
        return static_cast<long>(ms < 0 ? ms : ms - start);
    };
    printf(
        "%s/%u video=%s present_ms=%ld sync_ms=%ld format=%u size=%ux%u%c%u aspect=%u/%u afd=%u"
        " hdr=%u primaries=%u pts=%d audio=%s sound_ms=%ld audio_format=%u channels=%u lfe=%u"
        " sound_pts=%d described=%d:%u:%ld\n",
        channel.system, channel.number, underscored(namesOf(video.all(), true)).c_str(),
        after(video, QLX_EVENT_VIDEO_INFO_CHANGE), after(video, QLX_EVENT_VIDEO_SYNC_DONE),
        picture.eVideoFormat, picture.uFrameWidth, picture.uFrameHeight,
        picture.bInterlaced != 0 ? 'i' : 'p', picture.uFrameRate, picture.eFrameAspect,
        picture.ePictureAspectRatio, picture.eAFDType, picture.eHdrType,
        picture.eColorPrimariesType, stamp.uPts != 0,
        underscored(namesOf(audio.all(), false)).c_str(), after(audio, QLX_EVENT_AUDIO_INFO_CHANGE),
        sound.eAudioFormat, sound.eChannelInfo, sound.bLfePresent, soundStamp.uPts != 0,
        static_cast<int>(description.kind), description.pid,
        description.sinceUs == 0 ? -1 : static_cast<long>(description.sinceUs / 1000 - start));
}

}  // namespace

int main(int argc, char** argv) {
    for (const sim::TransmitterPtr& transmitter : sim::transmittersOnAir()) {
        if (systems.count(transmitter->listedSystem) == 0)
            continue;
        for (uint32_t number : transmitter->channels) {
            Channel channel = readChannel(transmitter->listedSystem, number);
            if (argc < 5) {
                for (int phase = 0; phase < phases; phase++)
                    play(transmitter, channel, phase, nullptr);
            } else if (argv[1] == std::string(channel.system) &&
                       number == strtoul(argv[2], nullptr, 10)) {
                channel.videoFormat = static_cast<uint32_t>(strtoul(argv[3], nullptr, 10));
                channel.audioFormat = static_cast<uint32_t>(strtoul(argv[4], nullptr, 10));
                play(transmitter, channel, 0, argv + 5);
            }
        }
    }
    return 0;
}

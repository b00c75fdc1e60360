/*
 * Time in a loop: decoding of pictures begins a while after the loop, so that a picture can be on
 * its way before it is due; sound is sent closer to its time, since a receiver's sound buffer is
 * small. The last packets of a loop are thus sent by its end, and presented in the next.
 */
#include "tools/mkstreams/elementary.h"

#include <bitstream/mpeg/pes.h>

#include <algorithm>
#include <initializer_list>

#include "tools/mkstreams/content.h"
#include "tools/mkstreams/private_data.h"
#include "tools/mkstreams/user_data.h"

namespace mkstreams {

static const int64_t pictureDelay = 700 * ticksPerMs;
static const int64_t picturePrefetch = 300 * ticksPerMs;
static const int64_t soundDelay = 120 * ticksPerMs;
static const int64_t soundPrefetch = 100 * ticksPerMs;
static const int64_t lastPrefetch = 40 * ticksPerMs;
static const int64_t margin = 15 * ticksPerMs;

static const uint8_t streamIdVideo = PES_STREAM_ID_VIDEO_MPEG;
static const uint8_t streamIdAudio = PES_STREAM_ID_AUDIO_MPEG;

Bytes pesPacket(uint8_t streamId, int64_t pts, int64_t dts, const Bytes& data) {
    size_t headerSize = dts != pts ? PES_HEADER_SIZE_PTSDTS : PES_HEADER_SIZE_PTS;
    Bytes packet(headerSize);
    pes_init(packet.data());
    pes_set_streamid(packet.data(), streamId);
    pes_set_headerlength(packet.data(), static_cast<uint8_t>(headerSize - PES_HEADER_SIZE_NOPTS));
    pes_set_pts(packet.data(), static_cast<uint64_t>(pts / ticksPer90k));
    if (dts != pts)
        pes_set_dts(packet.data(), static_cast<uint64_t>(dts / ticksPer90k));
    pes_set_dataalignment(packet.data());
    append(packet, data);
    // Only video may leave the length open, and does: pictures may be too big for it.
    size_t length = packet.size() - PES_HEADER_SIZE;
    pes_set_length(packet.data(), static_cast<uint16_t>(streamId == streamIdVideo ? 0 : length));
    return packet;
}

static std::string joined(std::initializer_list<int64_t> values) {
    std::string text;
    for (int64_t value : values)
        text += std::to_string(value) + " ";
    return text;
}

static std::string keyOf(const VideoSpec& s) {
    return joined({s.format, s.width, s.height, s.interlaced, s.rate, s.scale, s.aspectX, s.aspectY,
                   s.gop, s.segment, s.hlg, s.afd, s.captions, s.tint});
}

static bool makeVideo(const VideoSpec& spec, int64_t duration, EncodedContent* encoded,
                      PesStream* stream, std::string* error) {
    std::vector<CodedPicture>& pictures = encoded->pictures[keyOf(spec)];
    CaptionSource captions;
    if (spec.captions)
        captions = captionData;
    if (pictures.empty() && !encodeVideo(spec, captions, &pictures, error))
        return false;
    int64_t frame = frameTicks(spec);
    int64_t segmentTicks = frame * spec.segment;
    for (int64_t segment = 0; segment * segmentTicks < duration; segment++) {
        for (const CodedPicture& picture : pictures) {
            int64_t begin = pictureDelay + segment * segmentTicks;
            int64_t dts = begin + picture.decodeTime * frame;
            int64_t pts = begin + picture.presentationTime * frame;
            int64_t earliest = dts - pictureDelay - picturePrefetch;
            stream->packets.push_back({pesPacket(streamIdVideo, pts, dts, picture.data),
                                       earliest < 0 ? 0 : earliest, dts - margin,
                                       picture.randomAccess});
        }
    }
    return true;
}

/** A sound component of a channel. */
struct Sound {
    AudioSpec spec;
    AacFraming framing;
    unsigned component;
    size_t frames; /**< in the loop */
};

static std::string keyOf(const Sound& sound) {
    return joined({sound.spec.format, sound.spec.channels, sound.spec.tone,
                   static_cast<int>(sound.framing), static_cast<int64_t>(sound.frames)});
}

static bool makeSound(const Sound& sound, EncodedContent* encoded, PesStream* stream,
                      std::string* error) {
    const AudioSpec& spec = sound.spec;
    std::vector<Bytes>& frames = encoded->sound[keyOf(sound)];
    if (frames.empty() && !encodeAudio(spec, sound.framing, sound.frames, &frames, error))
        return false;
    bool isPrivate =
        spec.format == AUDIO_AC3 || spec.format == AUDIO_EAC3 || spec.format == AUDIO_AC4;
    uint8_t streamId =
        isPrivate ? PES_STREAM_ID_PRIVATE_1 : static_cast<uint8_t>(streamIdAudio + sound.component);
    for (size_t k = 0; k < frames.size(); k++) {
        int64_t pts = soundDelay + static_cast<int64_t>(k) * frameTicks(spec);
        // The last ones may come a little sooner: the very last takes up to 16 packets.
        int64_t prefetch = soundPrefetch + (k + 3 < frames.size() ? 0 : lastPrefetch);
        stream->packets.push_back({pesPacket(streamId, pts, pts, frames[k]),
                                   pts - prefetch - margin, pts - margin, false});
    }
    return true;
}

/** Spreads data over the loop: each piece of every cycle in a PES packet of its own. */
static void makePrivate(const PrivateSource& source, int64_t duration, PesStream* stream) {
    size_t total = source.cycles * source.piecesPerCycle;
    int64_t interval = duration / static_cast<int64_t>(total);
    for (size_t k = 0; k < total; k++) {
        int64_t time = static_cast<int64_t>(k) * interval;
        int64_t pts = time + pictureDelay;
        stream->packets.push_back(
            {source.packet(k / source.piecesPerCycle, k % source.piecesPerCycle, pts), time,
             time + interval, false});
    }
}

static void planPrivate(uint16_t pid, int64_t duration, const PrivateSource& source,
                        std::vector<StreamPlan>* plans) {
    plans->push_back({pid, source.name, [=](EncodedContent*, PesStream* stream, std::string*) {
                          makePrivate(source, duration, stream);
                          return true;
                      }});
}

static void planSound(const Multiplex& multiplex, const Channel& channel, unsigned component,
                      int64_t duration, std::vector<StreamPlan>* plans) {
    AudioSpec spec = audioSpec(multiplex, channel, component);
    bool dvb = multiplex.standard->family == Family::Dvb;
    Sound sound = {spec, dvb ? AacFraming::Latm : AacFraming::Adts, component,
                   static_cast<size_t>(duration / frameTicks(spec))};
    plans->push_back({channel.audio[component].pid,
                      "sound " + keyOf(sound) + joined({component, frameTicks(spec)}),
                      [=](EncodedContent* encoded, PesStream* stream, std::string* error) {
                          return makeSound(sound, encoded, stream, error);
                      }});
}

static bool isPlanned(const std::vector<StreamPlan>& plans, uint16_t pid) {
    return std::any_of(plans.begin(), plans.end(),
                       [&](const StreamPlan& plan) { return plan.pid == pid; });
}

void planStreams(const Multiplex& multiplex, const Channel& channel, int64_t duration,
                 std::vector<StreamPlan>* plans) {
    if (channel.videoPid != 0) {
        VideoSpec spec = videoSpec(multiplex, channel);
        plans->push_back({channel.videoPid, "video " + keyOf(spec) + joined({frameTicks(spec)}),
                          [=](EncodedContent* encoded, PesStream* stream, std::string* error) {
                              return makeVideo(spec, duration, encoded, stream, error);
                          }});
    }
    for (unsigned i = 0; i < channel.audio.size(); i++)
        planSound(multiplex, channel, i, duration, plans);
    Family family = multiplex.standard->family;
    for (size_t i = 0; i < channel.subtitlePids.size(); i++)
        planPrivate(channel.subtitlePids[i], duration,
                    family == Family::Isdb ? captionSource(i) : subtitleSource(i), plans);
    for (size_t i = 0; i < channel.otherPids.size(); i++)
        planPrivate(channel.otherPids[i], duration,
                    family == Family::Dvb && i == 0 ? teletextSource() : dataSource(), plans);
    if (channel.pesPid != 0 && !isPlanned(*plans, channel.pesPid))
        planPrivate(channel.pesPid, duration, dataSource(), plans);
}

}  // namespace mkstreams

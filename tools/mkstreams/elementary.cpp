/*
 * Time in a loop: decoding of pictures begins a while after the loop, so that a picture can be on
 * its way before it is due; sound is sent closer to its time, since a receiver's sound buffer is
 * small. The last packets of a loop are thus sent by its end, and presented in the next.
 */
#include "tools/mkstreams/elementary.h"

#include <bitstream/mpeg/pes.h>

#include <algorithm>
#include <initializer_list>

#include "tools/mkstreams/captions.h"
#include "tools/mkstreams/content.h"
#include "tools/mkstreams/private_data.h"

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
                   s.gop, s.segment, static_cast<int>(s.range), s.afd, s.letterbox, s.tint,
                   frameTicks(s)}) +
           s.captions;
}

/** Appends pictures from a time in the loop to another, repeating a coded segment. */
static bool makeVideo(const VideoSpec& spec, int64_t from, int64_t to, EncodedContent* encoded,
                      PesStream* stream, std::string* error) {
    std::vector<CodedPicture>& pictures = encoded->pictures[keyOf(spec)];
    if (pictures.empty()) {
        std::vector<Bytes> captions;
        if (!spec.captions.empty())
            captions = captionLoop(spec.captions, static_cast<size_t>(spec.segment));
        if (!encodeVideo(spec, captions, &pictures, error))
            return false;
    }
    int64_t frame = frameTicks(spec);
    for (int64_t segment = from; segment < to; segment += frame * spec.segment) {
        for (const CodedPicture& picture : pictures) {
            int64_t dts = pictureDelay + segment + picture.decodeTime * frame;
            int64_t pts = pictureDelay + segment + picture.presentationTime * frame;
            int64_t earliest = dts - pictureDelay - picturePrefetch;
            stream->packets.push_back({pesPacket(streamIdVideo, pts, dts, picture.data),
                                       earliest < 0 ? 0 : earliest, dts - margin,
                                       picture.randomAccess});
        }
    }
    return true;
}

/** What a sound component plays for a part of the loop. */
struct Sound {
    AudioSpec spec;
    AacFraming framing;
    unsigned component;
    size_t frames;
};

static std::string keyOf(const Sound& sound) {
    return joined({sound.spec.format, sound.spec.channels, sound.spec.tone,
                   static_cast<int>(sound.framing), static_cast<int64_t>(sound.frames),
                   frameTicks(sound.spec)});
}

/** Appends frames of sound behind those that are there. */
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
    for (const Bytes& frame : frames) {
        int64_t pts = soundDelay + static_cast<int64_t>(stream->packets.size()) * frameTicks(spec);
        stream->packets.push_back({pesPacket(streamId, pts, pts, frame),
                                   pts - soundPrefetch - margin, pts - margin, false});
    }
    return true;
}

/** The last frames may come a little sooner: the very last takes up to 16 packets. */
static void hastenLast(PesStream* stream) {
    size_t count = stream->packets.size();
    for (size_t k = count - std::min<size_t>(count, 3); k < count; k++)
        stream->packets[k].earliest -= lastPrefetch;
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

static void planVideo(const Multiplex& multiplex, const Channel& channel, int64_t duration,
                      std::vector<StreamPlan>* plans) {
    std::vector<VideoSpec> specs = videoSpecs(multiplex, channel);
    std::string content = "video";
    for (const VideoSpec& spec : specs)
        content += " " + keyOf(spec);
    plans->push_back({channel.videoPid, content,
                      [=](EncodedContent* encoded, PesStream* stream, std::string* error) {
                          auto count = static_cast<int64_t>(specs.size());
                          for (int64_t i = 0; i < count; i++)
                              if (!makeVideo(specs[static_cast<size_t>(i)], duration * i / count,
                                             duration * (i + 1) / count, encoded, stream, error))
                                  return false;
                          return true;
                      }});
}

static void planSound(const Multiplex& multiplex, const Channel& channel, unsigned component,
                      int64_t duration, std::vector<StreamPlan>* plans) {
    std::vector<Sound> parts;
    std::string content = "sound " + std::to_string(component);
    std::vector<AudioSpec> specs = audioSpecs(multiplex, channel, component);
    bool dvb = multiplex.standard->family == Family::Dvb;
    for (const AudioSpec& spec : specs) {
        auto frames = static_cast<size_t>(duration / frameTicks(spec)) / specs.size();
        parts.push_back({spec, dvb ? AacFraming::Latm : AacFraming::Adts, component, frames});
        content += " " + keyOf(parts.back());
    }
    plans->push_back({channel.audio[component].pid, content,
                      [=](EncodedContent* encoded, PesStream* stream, std::string* error) {
                          for (const Sound& part : parts)
                              if (!makeSound(part, encoded, stream, error))
                                  return false;
                          hastenLast(stream);
                          return true;
                      }});
}

static bool isPlanned(const std::vector<StreamPlan>& plans, uint16_t pid) {
    return std::any_of(plans.begin(), plans.end(),
                       [&](const StreamPlan& plan) { return plan.pid == pid; });
}

void planStreams(const Multiplex& multiplex, const Channel& channel, int64_t duration,
                 std::vector<StreamPlan>* plans) {
    if (channel.videoPid != 0)
        planVideo(multiplex, channel, duration, plans);
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

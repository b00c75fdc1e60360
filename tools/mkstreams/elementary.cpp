/*
 * Time in a loop: decoding of pictures begins a while after the loop, so that a picture can be on
 * its way before it is due; sound is sent closer to its time, since a receiver's sound buffer is
 * small. The last packets of a loop are thus sent by its end, and presented in the next.
 */
#include "tools/mkstreams/elementary.h"

#include <bitstream/mpeg/pes.h>

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

static std::string keyOf(const VideoSpec& s) {
    std::string key;
    for (int value :
         {static_cast<int>(s.format), s.width, s.height, static_cast<int>(s.interlaced), s.rate,
          s.scale, s.aspectX, s.aspectY, s.gop, s.segment, static_cast<int>(s.hlg),
          static_cast<int>(s.afd), static_cast<int>(s.captions), static_cast<int>(s.tint)})
        key += std::to_string(value) + " ";
    return key;
}

static bool addVideo(const VideoSpec& spec, uint16_t pid, int64_t duration, EncodedContent* encoded,
                     std::vector<PesStream>* streams, std::string* error) {
    std::vector<CodedPicture>& pictures = encoded->pictures[keyOf(spec)];
    CaptionSource captions;
    if (spec.captions)
        captions = captionData;
    if (pictures.empty() && !encodeVideo(spec, captions, &pictures, error))
        return false;
    PesStream stream = {pid, {}};
    int64_t frame = frameTicks(spec);
    int64_t segmentTicks = frame * spec.segment;
    for (int64_t segment = 0; segment * segmentTicks < duration; segment++) {
        for (const CodedPicture& picture : pictures) {
            int64_t begin = pictureDelay + segment * segmentTicks;
            int64_t dts = begin + picture.decodeTime * frame;
            int64_t pts = begin + picture.presentationTime * frame;
            int64_t earliest = dts - pictureDelay - picturePrefetch;
            stream.packets.push_back({pesPacket(streamIdVideo, pts, dts, picture.data),
                                      earliest < 0 ? 0 : earliest, dts - margin,
                                      picture.randomAccess});
        }
    }
    streams->push_back(stream);
    return true;
}

static bool addSound(const Multiplex& multiplex, const Channel& channel, unsigned component,
                     int64_t duration, EncodedContent* encoded, std::vector<PesStream>* streams,
                     std::string* error) {
    const AudioComponent& audio = channel.audio[component];
    AudioSpec spec = audioSpec(multiplex, channel, component);
    int64_t frame = frameTicks(spec);
    size_t count = static_cast<size_t>(duration / frame);
    AacFraming framing =
        multiplex.standard->family == Family::Dvb ? AacFraming::Latm : AacFraming::Adts;
    std::string key = std::to_string(spec.format) + " " + std::to_string(spec.channels) + " " +
                      std::to_string(spec.tone) + " " + std::to_string(count) + " " +
                      std::to_string(static_cast<int>(framing));
    std::vector<Bytes>& frames = encoded->sound[key];
    if (frames.empty() && !encodeAudio(spec, framing, count, &frames, error))
        return false;
    bool isPrivate =
        spec.format == AUDIO_AC3 || spec.format == AUDIO_EAC3 || spec.format == AUDIO_AC4;
    uint8_t streamId =
        isPrivate ? PES_STREAM_ID_PRIVATE_1 : static_cast<uint8_t>(streamIdAudio + component);
    PesStream stream = {audio.pid, {}};
    for (size_t k = 0; k < count; k++) {
        int64_t pts = soundDelay + static_cast<int64_t>(k) * frame;
        // The last ones may come a little sooner: the very last takes up to 16 packets.
        int64_t prefetch = soundPrefetch + (k + 3 < count ? 0 : lastPrefetch);
        stream.packets.push_back({pesPacket(streamId, pts, pts, frames[k]), pts - prefetch - margin,
                                  pts - margin, false});
    }
    streams->push_back(stream);
    return true;
}

/** Spreads data over the loop: each piece of every cycle in a PES packet of its own. */
static void addPrivate(uint16_t pid, int64_t duration, const PrivateSource& source,
                       std::vector<PesStream>* streams) {
    PesStream stream = {pid, {}};
    size_t total = source.cycles * source.piecesPerCycle;
    int64_t interval = duration / static_cast<int64_t>(total);
    for (size_t k = 0; k < total; k++) {
        int64_t time = static_cast<int64_t>(k) * interval;
        int64_t pts = time + pictureDelay;
        stream.packets.push_back(
            {source.packet(k / source.piecesPerCycle, k % source.piecesPerCycle, pts), time,
             time + interval, false});
    }
    streams->push_back(stream);
}

static bool hasStream(const std::vector<PesStream>& streams, uint16_t pid) {
    for (const PesStream& stream : streams)
        if (stream.pid == pid)
            return true;
    return false;
}

bool addStreams(const Multiplex& multiplex, const Channel& channel, int64_t duration,
                EncodedContent* encoded, std::vector<PesStream>* streams, std::string* error) {
    if (channel.videoPid != 0 && !addVideo(videoSpec(multiplex, channel), channel.videoPid,
                                           duration, encoded, streams, error))
        return false;
    for (unsigned i = 0; i < channel.audio.size(); i++)
        if (!addSound(multiplex, channel, i, duration, encoded, streams, error))
            return false;
    Family family = multiplex.standard->family;
    for (size_t i = 0; i < channel.subtitlePids.size(); i++)
        addPrivate(channel.subtitlePids[i], duration,
                   family == Family::Isdb ? captionSource(i) : subtitleSource(i), streams);
    for (size_t i = 0; i < channel.otherPids.size(); i++)
        addPrivate(channel.otherPids[i], duration,
                   family == Family::Dvb && i == 0 ? teletextSource() : dataSource(), streams);
    if (channel.pesPid != 0 && !hasStream(*streams, channel.pesPid))
        addPrivate(channel.pesPid, duration, dataSource(), streams);
    return true;
}

}  // namespace mkstreams

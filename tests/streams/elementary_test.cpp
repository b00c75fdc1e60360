// Picture, sound and the rest as FFmpeg's demultiplexer and decoders see them.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include "tests/streams/made_streams.h"
#include "tools/mkstreams/content.h"

namespace {

using namespace mkstreams;

/** What was decoded of a stream. */
struct Decoded {
    AVCodecID codec;
    int frames;
    int errors;
    int width, height;
    AVRational aspect;
    bool interlaced;
    int transfer;
    int rate, channels;
    int captionFrames;
    int activeFormat;
    std::vector<int64_t> times;  // pts of packets, 90 kHz
    int randomAccess;
    int longestGop;
};

/** Bytes in memory as FFmpeg reads them. */
struct Reader {
    Bytes bytes;
    size_t at;
};

int readMore(void* opaque, uint8_t* to, int size) {
    auto* reader = static_cast<Reader*>(opaque);
    size_t count = std::min(static_cast<size_t>(size), reader->bytes.size() - reader->at);
    if (count == 0)
        return AVERROR_EOF;
    std::copy_n(reader->bytes.begin() + static_cast<ptrdiff_t>(reader->at), count, to);
    reader->at += count;
    return static_cast<int>(count);
}

void noteFrame(const AVFrame* frame, Decoded* decoded) {
    decoded->frames++;
    decoded->width = frame->width;
    decoded->height = frame->height;
    decoded->aspect = frame->sample_aspect_ratio;
    decoded->interlaced = frame->interlaced_frame != 0;
    decoded->transfer = frame->color_trc;
    decoded->rate = frame->sample_rate;
    decoded->channels = frame->ch_layout.nb_channels;
    if (av_frame_get_side_data(frame, AV_FRAME_DATA_A53_CC) != nullptr)
        decoded->captionFrames++;
    AVFrameSideData* format = av_frame_get_side_data(frame, AV_FRAME_DATA_AFD);
    if (format != nullptr)
        decoded->activeFormat = format->data[0];
}

void receive(AVCodecContext* context, Decoded* decoded) {
    AVFrame* frame = av_frame_alloc();
    while (avcodec_receive_frame(context, frame) == 0)
        noteFrame(frame, decoded);
    av_frame_free(&frame);
}

using Streams = std::map<int, Decoded>;  // by PID
using Contexts = std::map<int, AVCodecContext*>;

void openDecoders(AVFormatContext* format, Streams* streams, Contexts* contexts) {
    for (unsigned i = 0; i < format->nb_streams; i++) {
        AVStream* stream = format->streams[i];
        (*streams)[stream->id] = {};
        (*streams)[stream->id].codec = stream->codecpar->codec_id;
        const AVCodec* codec = avcodec_find_decoder(stream->codecpar->codec_id);
        AVMediaType type = stream->codecpar->codec_type;
        if (codec == nullptr || (type != AVMEDIA_TYPE_VIDEO && type != AVMEDIA_TYPE_AUDIO))
            continue;
        AVCodecContext* context = avcodec_alloc_context3(codec);
        avcodec_parameters_to_context(context, stream->codecpar);
        context->err_recognition = AV_EF_CRCCHECK | AV_EF_BITSTREAM | AV_EF_BUFFER | AV_EF_EXPLODE;
        context->thread_count = 1;
        if (avcodec_open2(context, codec, nullptr) == 0)
            (*contexts)[stream->id] = context;
    }
}

void decodePackets(AVFormatContext* format, Streams* streams, Contexts* contexts) {
    AVPacket* packet = av_packet_alloc();
    std::map<int, int> sinceKey;
    while (av_read_frame(format, packet) == 0) {
        int pid = format->streams[packet->stream_index]->id;
        Decoded& decoded = (*streams)[pid];
        decoded.times.push_back(packet->pts);
        sinceKey[pid]++;
        if ((packet->flags & AV_PKT_FLAG_KEY) != 0) {
            decoded.randomAccess++;
            sinceKey[pid] = 0;
        }
        decoded.longestGop = std::max(decoded.longestGop, sinceKey[pid] + 1);
        if (contexts->count(pid) != 0) {
            if (avcodec_send_packet((*contexts)[pid], packet) != 0)
                decoded.errors++;
            receive((*contexts)[pid], &decoded);
        }
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
}

Streams decode(const Bytes& bytes) {
    av_log_set_level(AV_LOG_ERROR);
    Reader reader = {bytes, 0};
    static const int bufferSize = 32768;
    auto* buffer = static_cast<uint8_t*>(av_malloc(bufferSize));
    AVIOContext* io =
        avio_alloc_context(buffer, bufferSize, 0, &reader, readMore, nullptr, nullptr);
    AVFormatContext* format = avformat_alloc_context();
    format->pb = io;
    Streams streams;
    Contexts contexts;
    EXPECT_EQ(avformat_open_input(&format, nullptr, av_find_input_format("mpegts"), nullptr), 0);
    EXPECT_GE(avformat_find_stream_info(format, nullptr), 0);
    openDecoders(format, &streams, &contexts);
    decodePackets(format, &streams, &contexts);
    for (auto& [pid, context] : contexts) {
        avcodec_send_packet(context, nullptr);
        receive(context, &streams[pid]);
        avcodec_free_context(&context);
    }
    avformat_close_input(&format);
    av_freep(&io->buffer);
    avio_context_free(&io);
    return streams;
}

AVCodecID videoCodec(uint32_t format) {
    switch (format) {
        case VIDEO_MPEG1:
            return AV_CODEC_ID_MPEG1VIDEO;
        case VIDEO_MPEG4:
            return AV_CODEC_ID_MPEG4;
        case VIDEO_H264:
            return AV_CODEC_ID_H264;
        case VIDEO_HEVC:
            return AV_CODEC_ID_HEVC;
        default:
            return AV_CODEC_ID_MPEG2VIDEO;
    }
}

/** Time stamps are as far apart as frames last, over a loop's end too. */
void expectEvenTimes(std::vector<int64_t> times, int64_t frame27MHz) {
    std::sort(times.begin(), times.end());
    for (size_t i = 1; i < times.size(); i++)
        ASSERT_LE(std::abs((times[i] - times[i - 1]) * 300 - frame27MHz), 300) << i;
}

class Elementary : public testing::TestWithParam<const char*> {};

TEST_P(Elementary, VideoIsWhatTheLineUpSays) {
    const Multiplex& multiplex = multiplexOf(GetParam());
    const Channel& channel = multiplex.channels.front();
    VideoSpec spec = videoSpec(multiplex, channel);
    Streams streams = decode(streamOf(GetParam()).packets);
    const Decoded& video = streams[channel.videoPid];
    EXPECT_EQ(video.codec, videoCodec(spec.format));
    EXPECT_EQ(video.frames, loopTicks(multiplex) / frameTicks(spec));
    EXPECT_EQ(video.errors, 0);
    EXPECT_EQ(video.width, spec.width);
    EXPECT_EQ(video.height, spec.height);
    EXPECT_EQ(video.aspect.num * spec.width * spec.aspectY,
              video.aspect.den * spec.height * spec.aspectX);
    EXPECT_EQ(video.interlaced, spec.interlaced);
    EXPECT_LE(video.longestGop * frameTicks(spec), 27000000 / 2);
    EXPECT_EQ(video.captionFrames, spec.captions ? video.frames : 0);
    EXPECT_EQ(video.activeFormat, static_cast<int>(spec.afd));
    expectEvenTimes(video.times, frameTicks(spec));
    if (spec.hlg) {
        EXPECT_EQ(video.transfer, AVCOL_TRC_ARIB_STD_B67);
    }
}

TEST_P(Elementary, SoundIsWhatTheLineUpSays) {
    const Multiplex& multiplex = multiplexOf(GetParam());
    const Channel& channel = multiplex.channels.front();
    Streams streams = decode(streamOf(GetParam()).packets);
    for (unsigned i = 0; i < channel.audio.size(); i++) {
        AudioSpec spec = audioSpec(multiplex, channel, i);
        const Decoded& sound = streams[channel.audio[i].pid];
        int64_t wanted = loopTicks(multiplex) / frameTicks(spec);
        EXPECT_EQ(static_cast<int64_t>(sound.times.size()), wanted) << i;
        expectEvenTimes(sound.times, frameTicks(spec));
        if (spec.format == AUDIO_AC4)
            continue;
        EXPECT_EQ(sound.frames, wanted);
        EXPECT_EQ(sound.errors, 0);
        EXPECT_EQ(sound.rate, 48000);
        EXPECT_EQ(sound.channels, spec.channels);
    }
}

/** Receivers that read a header out of the first packet find all of it there. */
TEST_P(Elementary, HeadersLieInOnePacket) {
    std::set<unsigned> pids;
    for (const Channel& channel : multiplexOf(GetParam()).channels) {
        pids.insert(channel.videoPid);
        for (const AudioComponent& audio : channel.audio)
            pids.insert(audio.pid);
        pids.insert(channel.subtitlePids.begin(), channel.subtitlePids.end());
        pids.insert(channel.otherPids.begin(), channel.otherPids.end());
    }
    size_t headers = 0;
    for (const PacketView& packet : packetsOf(streamOf(GetParam()).packets)) {
        if (pids.count(packet.pid()) == 0 || !packet.unitStart())
            continue;
        const uint8_t* pes = packet.payload();
        ASSERT_GE(packet.payloadBytes(), 9u) << packet.pid();
        ASSERT_EQ(pes[0] << 16 | pes[1] << 8 | pes[2], 1);
        EXPECT_GE(packet.payloadBytes(), 9u + pes[8]) << packet.pid();
        headers++;
    }
    EXPECT_GT(headers, 100u);
}

INSTANTIATE_TEST_SUITE_P(LineUp, Elementary,
                         testing::Values("dvbt_main.ts", "dvbt_hd.ts", "dvb_ac3.ts", "dvb_multi.ts",
                                         "dvb_progressive.ts", "dvb_letterbox.ts", "dvb_ac4.ts",
                                         "atsct_main.ts", "atsc_caption.ts", "isdb_multi.ts"),
                         [](const auto& row) {
                             std::string name = row.param;
                             return name.substr(0, name.find('.'));
                         });

TEST(Elementary, SubtitlesTeletextAndCaptionsAreKnown) {
    const Channel& european = multiplexOf("dvb_multi.ts").channels.front();
    Streams dvb = decode(streamOf("dvb_multi.ts").packets);
    for (uint16_t pid : european.subtitlePids) {
        EXPECT_EQ(dvb[pid].codec, AV_CODEC_ID_DVB_SUBTITLE);
        EXPECT_EQ(dvb[pid].times.size(), 32u);
    }
    EXPECT_EQ(dvb[european.otherPids[0]].codec, AV_CODEC_ID_DVB_TELETEXT);
    EXPECT_EQ(dvb[european.otherPids[0]].times.size(), 64u);
    const Channel& japanese = multiplexOf("isdb_multi.ts").channels.front();
    Streams isdb = decode(streamOf("isdb_multi.ts").packets);
    for (uint16_t pid : japanese.subtitlePids)
        EXPECT_EQ(isdb[pid].codec, AV_CODEC_ID_ARIB_CAPTION);
}

/** A file played again with its time stamps carried on decodes without a seam. */
TEST(Elementary, LoopsJoin) {
    const TransportStream& once = streamOf("dvbt_main.ts");
    Bytes twice = once.packets;
    append(twice, once.packets);
    const Multiplex& multiplex = multiplexOf("dvbt_main.ts");
    const Channel& channel = multiplex.channels.front();
    Streams streams = decode(twice);
    int64_t loop = loopTicks(multiplex);
    const Decoded& video = streams[channel.videoPid];
    const Decoded& sound = streams[channel.audio[0].pid];
    EXPECT_EQ(video.frames, 2 * loop / frameTicks(videoSpec(multiplex, channel)));
    EXPECT_EQ(sound.frames, 2 * loop / frameTicks(audioSpec(multiplex, channel, 0)));
    EXPECT_EQ(video.errors + sound.errors, 0);
    for (const Decoded* stream : {&video, &sound}) {
        size_t half = stream->times.size() / 2;
        for (size_t i = 0; i < half; i++)
            ASSERT_EQ(stream->times[i], stream->times[half + i]);
        // The first of the next loop, carried on, follows the last by one frame.
        std::vector<int64_t> carried(stream->times.begin(),
                                     stream->times.begin() + static_cast<ptrdiff_t>(half));
        for (size_t i = 0; i < half; i++)
            carried.push_back(stream->times[i] + loop / 300);
        expectEvenTimes(carried, stream == &video ? frameTicks(videoSpec(multiplex, channel))
                                                  : frameTicks(audioSpec(multiplex, channel, 0)));
    }
}

}  // namespace

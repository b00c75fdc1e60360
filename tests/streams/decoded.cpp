#include "tests/streams/decoded.h"

#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <functional>
#include <tuple>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

namespace mkstreams {

bool operator==(const Shape& a, const Shape& b) {
    return std::tie(a.width, a.height, a.aspect.num, a.aspect.den, a.interlaced, a.transfer,
                    a.primaries, a.depth, a.mastering, a.lightLevel, a.activeFormat, a.captions,
                    a.rate, a.channels) == std::tie(b.width, b.height, b.aspect.num, b.aspect.den,
                                                    b.interlaced, b.transfer, b.primaries, b.depth,
                                                    b.mastering, b.lightLevel, b.activeFormat,
                                                    b.captions, b.rate, b.channels);
}

namespace {

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

bool has(const AVFrame* frame, AVFrameSideDataType type) {
    return av_frame_get_side_data(frame, type) != nullptr;
}

/** Keeps the sound of a frame with floating point samples in planes, as these decoders give it. */
void noteSamples(const AVFrame* frame, Decoded* decoded) {
    auto channels = static_cast<size_t>(frame->ch_layout.nb_channels);
    if (frame->format != AV_SAMPLE_FMT_FLTP)
        return;
    if (decoded->samples.size() != channels)
        decoded->samples.assign(channels, {});
    for (size_t i = 0; i < channels; i++) {
        std::vector<float>& samples = decoded->samples[i];
        size_t before = samples.size();
        samples.resize(before + static_cast<size_t>(frame->nb_samples));
        memcpy(&samples[before], frame->extended_data[i],
               static_cast<size_t>(frame->nb_samples) * sizeof(float));
    }
}

void noteFrame(const AVFrame* frame, Decoded* decoded) {
    decoded->frames++;
    Shape shape = {};
    shape.width = frame->width;
    shape.height = frame->height;
    shape.aspect = frame->sample_aspect_ratio;
    shape.rate = frame->sample_rate;
    shape.channels = frame->ch_layout.nb_channels;
    if (frame->width > 0) {
        shape.interlaced = frame->interlaced_frame != 0;
        shape.transfer = frame->color_trc;
        shape.primaries = frame->color_primaries;
        shape.depth = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame->format))->comp[0].depth;
        shape.mastering = has(frame, AV_FRAME_DATA_MASTERING_DISPLAY_METADATA);
        shape.lightLevel = has(frame, AV_FRAME_DATA_CONTENT_LIGHT_LEVEL);
        shape.captions = has(frame, AV_FRAME_DATA_A53_CC);
    } else {
        noteSamples(frame, decoded);
    }
    AVFrameSideData* captions = av_frame_get_side_data(frame, AV_FRAME_DATA_A53_CC);
    if (captions != nullptr)
        decoded->captions.emplace_back(captions->data, captions->data + captions->size);
    AVFrameSideData* format = av_frame_get_side_data(frame, AV_FRAME_DATA_AFD);
    if (format != nullptr)
        shape.activeFormat = format->data[0];
    if (decoded->shapes.empty() || !(decoded->shapes.back().shape == shape))
        decoded->shapes.push_back({shape, 0});
    decoded->shapes.back().frames++;
}

void receive(AVCodecContext* context, Decoded* decoded) {
    AVFrame* frame = av_frame_alloc();
    while (avcodec_receive_frame(context, frame) == 0)
        noteFrame(frame, decoded);
    av_frame_free(&frame);
}

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
    while (av_read_frame(format, packet) == 0) {
        int pid = format->streams[packet->stream_index]->id;
        Decoded& decoded = (*streams)[pid];
        decoded.times.push_back(packet->pts);
        if ((packet->flags & AV_PKT_FLAG_KEY) != 0) {
            if (decoded.lastAccess != 0)
                decoded.longestGap = std::max(decoded.longestGap, packet->pts - decoded.lastAccess);
            decoded.lastAccess = packet->pts;
        }
        if (contexts->count(pid) != 0) {
            if (avcodec_send_packet((*contexts)[pid], packet) != 0)
                decoded.errors++;
            receive((*contexts)[pid], &decoded);
        }
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
}

}  // namespace

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

namespace {

sim::Picture toRgb(const AVFrame* frame) {
    SwsContext* scaler = sws_getContext(
        frame->width, frame->height, static_cast<AVPixelFormat>(frame->format), frame->width,
        frame->height, AV_PIX_FMT_RGB24, SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT,
        nullptr, nullptr, nullptr);
    bool high = frame->height >= 720;
    sws_setColorspaceDetails(scaler, sws_getCoefficients(high ? SWS_CS_ITU709 : SWS_CS_ITU601), 0,
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, 1 << 16, 1 << 16);
    AVFrame* rgb = av_frame_alloc();
    rgb->format = AV_PIX_FMT_RGB24;
    rgb->width = frame->width;
    rgb->height = frame->height;
    EXPECT_EQ(av_frame_get_buffer(rgb, 0), 0);
    sws_scale(scaler, frame->data, frame->linesize, 0, frame->height, rgb->data, rgb->linesize);
    sim::Picture picture = {
        static_cast<uint32_t>(frame->width), static_cast<uint32_t>(frame->height), {}};
    for (int row = 0; row < rgb->height; row++) {
        const uint8_t* from = rgb->data[0] + row * rgb->linesize[0];
        picture.rgb.insert(picture.rgb.end(), from, from + rgb->width * 3);
    }
    av_frame_free(&rgb);
    sws_freeContext(scaler);
    return picture;
}

/** Decodes one stream of an opened file until `take` has enough. */
void decodeStream(AVFormatContext* format, int index, const std::function<bool(AVFrame*)>& take) {
    AVStream* stream = format->streams[index];
    AVCodecContext* context =
        avcodec_alloc_context3(avcodec_find_decoder(stream->codecpar->codec_id));
    avcodec_parameters_to_context(context, stream->codecpar);
    context->thread_count = 1;
    EXPECT_EQ(avcodec_open2(context, nullptr, nullptr), 0);
    AVPacket* packet = av_packet_alloc();
    AVFrame* frame = av_frame_alloc();
    bool enough = false;
    for (bool more = true; more && !enough;) {
        more = av_read_frame(format, packet) == 0;
        if (!more || packet->stream_index == index)
            avcodec_send_packet(context, more ? packet : nullptr);
        while (!enough && avcodec_receive_frame(context, frame) == 0)
            enough = take(frame);
        av_packet_unref(packet);
    }
    av_frame_free(&frame);
    av_packet_free(&packet);
    avcodec_free_context(&context);
}

void openFile(const std::string& path, AVFormatContext** format) {
    ASSERT_EQ(avformat_open_input(format, path.c_str(), nullptr, nullptr), 0) << path;
    ASSERT_GE(avformat_find_stream_info(*format, nullptr), 0);
}

}  // namespace

std::map<int64_t, sim::Picture> decodedPictures(const std::string& path, int pid,
                                                const std::set<int64_t>& stamps) {
    AVFormatContext* format = nullptr;
    openFile(path, &format);
    std::map<int64_t, sim::Picture> pictures;
    for (unsigned i = 0; i < format->nb_streams; i++) {
        if (format->streams[i]->id != pid)
            continue;
        decodeStream(format, static_cast<int>(i), [&](AVFrame* frame) {
            if (stamps.count(frame->best_effort_timestamp) != 0)
                pictures[frame->best_effort_timestamp] = toRgb(frame);
            return pictures.size() == stamps.size();
        });
    }
    avformat_close_input(&format);
    return pictures;
}

sim::Picture decodedImage(const std::string& path) {
    AVFormatContext* format = nullptr;
    openFile(path, &format);
    sim::Picture picture;
    decodeStream(format, 0, [&](AVFrame* frame) {
        EXPECT_EQ(frame->format, AV_PIX_FMT_RGB24);
        for (int row = 0; row < frame->height; row++) {
            const uint8_t* from = frame->data[0] + row * frame->linesize[0];
            picture.rgb.insert(picture.rgb.end(), from, from + frame->width * 3);
        }
        return true;
    });
    avformat_close_input(&format);
    return picture;
}

std::vector<int16_t> decodedWave(const std::string& path) {
    AVFormatContext* format = nullptr;
    openFile(path, &format);
    EXPECT_EQ(format->streams[0]->codecpar->sample_rate, 48000);
    EXPECT_EQ(format->streams[0]->codecpar->ch_layout.nb_channels, 2);
    std::vector<int16_t> samples;
    decodeStream(format, 0, [&](AVFrame* frame) {
        EXPECT_EQ(frame->format, AV_SAMPLE_FMT_S16);
        size_t before = samples.size();
        samples.resize(before + static_cast<size_t>(frame->nb_samples) * 2);
        memcpy(&samples[before], frame->data[0], (samples.size() - before) * sizeof(int16_t));
        return false;
    });
    avformat_close_input(&format);
    return samples;
}

}  // namespace mkstreams

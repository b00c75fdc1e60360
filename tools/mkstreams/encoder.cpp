#include "tools/mkstreams/encoder.h"

#include <math.h>

#include <algorithm>
#include <memory>
#include <numeric>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

#include "tools/mkstreams/audio_framing.h"
#include "tools/mkstreams/user_data.h"

namespace mkstreams {

struct ContextDeleter {
    void operator()(AVCodecContext* context) const {
        avcodec_free_context(&context);
    }
};
struct FrameDeleter {
    void operator()(AVFrame* frame) const {
        av_frame_free(&frame);
    }
};
struct PacketDeleter {
    void operator()(AVPacket* packet) const {
        av_packet_free(&packet);
    }
};
using Context = std::unique_ptr<AVCodecContext, ContextDeleter>;
using Frame = std::unique_ptr<AVFrame, FrameDeleter>;
using Packet = std::unique_ptr<AVPacket, PacketDeleter>;

static std::string libraryError(const char* what, int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = "";
    av_strerror(code, text, sizeof(text));
    return std::string(what) + ": " + text;
}

/* Pictures ------------------------------------------------------------------------------------- */

/** Luminance and colour differences of the bars, 8 bits (75 % bars of BT.601 rounded). */
static const uint8_t bars[8][3] = {{180, 128, 128}, {162, 44, 142}, {131, 156, 44}, {112, 72, 58},
                                   {84, 184, 198},  {65, 100, 212}, {35, 212, 114}, {16, 128, 128}};

/** Colour of a place in a picture, plane 0 to 2, in the coordinates of the luminance. */
static unsigned sampleAt(const VideoSpec& spec, int64_t frame, int x, int y, int plane) {
    int cell = std::max(16, spec.width / 45 / 16 * 16);
    int bar = spec.letterbox ? (spec.height / 8 + 8) / 16 * 16 : 0;
    if (y < bar || y >= spec.height - bar)
        return plane == 0 ? 16 : 128;
    int column = x / cell;
    int row = (y - bar) / cell;
    int columns = spec.width / cell;
    // The row of squares counts the frames of the segment, the lowest bit at the right.
    if (row == 1 && column >= columns - 12 && column < columns - 2) {
        bool lit = (frame >> (columns - 3 - column) & 1) != 0;
        return plane == 0 ? (lit ? 235 : 16) : 128;
    }
    // The box moves by a cell a frame and is back where it began at the end of the segment.
    if (row >= 4 && row < 6 && column == static_cast<int>(frame % spec.segment % columns))
        return plane == 0 ? 210 : plane == 1 ? 90 + 4 * spec.tint : 166 - 4 * spec.tint;
    unsigned colour = static_cast<unsigned>(x / ((spec.width / 8 + 15) / 16 * 16)) + spec.tint;
    return bars[colour % 8][plane];
}

/** Draws a picture cell by cell: all structure lies on a raster of 16 by 16 samples. */
static void drawPicture(const VideoSpec& spec, int64_t frame, AVFrame* picture) {
    bool deep = spec.range != Range::Standard;
    int bytesPerSample = deep ? 2 : 1;
    for (int plane = 0; plane < 3; plane++) {
        int shift = plane == 0 ? 0 : 1;
        int size = 16 >> shift;
        int width = spec.width >> shift;
        int height = spec.height >> shift;
        for (int y = 0; y < height; y++) {
            uint8_t* line =
                picture->data[plane] + static_cast<ptrdiff_t>(y) * picture->linesize[plane];
            if (y % size != 0) {
                std::copy_n(line - picture->linesize[plane], width * bytesPerSample, line);
                continue;
            }
            for (int x = 0; x < width; x++) {
                unsigned value = sampleAt(spec, frame, x << shift, y << shift, plane);
                if (deep) {
                    // 10 bits, little end first.
                    line[2 * x] = static_cast<uint8_t>(value << 2);
                    line[2 * x + 1] = static_cast<uint8_t>(value >> 6);
                } else {
                    line[x] = static_cast<uint8_t>(value);
                }
            }
        }
    }
}

/** An encoder of a video format, and what it is told beyond the common fields. */
struct VideoCodec {
    uint32_t format;
    const char* encoder;
    int bitRatePerKilopixel;  // bits a second
    int bFrames;
};

// clang-format off
static const VideoCodec videoCodecs[] = {
    {VIDEO_MPEG1, "mpeg1video", 2500, 0},
    {VIDEO_MPEG2, "mpeg2video", 2500, 2},
    {VIDEO_MPEG4, "mpeg4",      2500, 0},
    {VIDEO_H264,  "libx264",    1200, 0},
    {VIDEO_HEVC,  "libx265",    300,  0},
};
// clang-format on

/** A mastering display of 1000 cd/m2 with the primaries of DCI-P3 (units of 0.00002 and 0.0001
 *  cd/m2), and the brightest sample and frame in cd/m2. */
static const char staticMetadata[] =
    ":master-display=G(13250,34500)B(7500,3000)R(34000,16000)WP(15635,16450)L(10000000,50)"
    ":max-cll=1000,400";

static void setPrivateOptions(const VideoSpec& spec, AVCodecContext* context) {
    std::string keyint = std::to_string(spec.gop);
    std::string common = "keyint=" + keyint + ":min-keyint=" + keyint +
                         ":scenecut=0:open-gop=0:bframes=0:repeat-headers=1:aud=1";
    if (spec.format == VIDEO_H264) {
        av_opt_set(context->priv_data, "preset", "veryfast", 0);
        av_opt_set(context->priv_data, "x264-params", (common + ":threads=1").c_str(), 0);
    } else if (spec.format == VIDEO_HEVC) {
        std::string params = common + ":pools=none:frame-threads=1:log-level=none:info=0";
        if (spec.range != Range::Standard)
            params += std::string(":colorprim=bt2020:colormatrix=bt2020nc") + staticMetadata;
        if (spec.range == Range::Hlg)
            params += ":transfer=arib-std-b67:atc-sei=18";
        if (spec.range == Range::Pq)
            params += ":transfer=smpte2084";
        av_opt_set(context->priv_data, "preset", "ultrafast", 0);
        av_opt_set(context->priv_data, "x265-params", params.c_str(), 0);
    } else {
        // Random access points stand where they are asked for and nowhere else.
        av_opt_set_int(context->priv_data, "sc_threshold", 1000000000, 0);
    }
}

/** Colours of 625 lines, 525 lines, high definition, or BT.2100. */
static void setColours(const VideoSpec& spec, AVCodecContext* context) {
    context->color_range = AVCOL_RANGE_MPEG;
    context->color_primaries = AVCOL_PRI_BT709;
    context->color_trc = AVCOL_TRC_BT709;
    context->colorspace = AVCOL_SPC_BT709;
    if (spec.range != Range::Standard) {
        context->color_primaries = AVCOL_PRI_BT2020;
        context->color_trc =
            spec.range == Range::Hlg ? AVCOL_TRC_ARIB_STD_B67 : AVCOL_TRC_SMPTE2084;
        context->colorspace = AVCOL_SPC_BT2020_NCL;
    } else if (spec.height <= 576) {
        context->color_primaries = spec.height == 576 ? AVCOL_PRI_BT470BG : AVCOL_PRI_SMPTE170M;
        context->color_trc = AVCOL_TRC_SMPTE170M;
        context->colorspace = spec.height == 576 ? AVCOL_SPC_BT470BG : AVCOL_SPC_SMPTE170M;
    }
}

static Context openVideo(const VideoSpec& spec, const VideoCodec& codec, std::string* error) {
    const AVCodec* encoder = avcodec_find_encoder_by_name(codec.encoder);
    Context context(encoder == nullptr ? nullptr : avcodec_alloc_context3(encoder));
    if (context == nullptr) {
        *error = std::string("no encoder ") + codec.encoder;
        return nullptr;
    }
    int sarX = spec.aspectX * spec.height;
    int sarY = spec.aspectY * spec.width;
    int divisor = std::gcd(sarX, sarY);
    context->width = spec.width;
    context->height = spec.height;
    context->sample_aspect_ratio = {sarX / divisor, sarY / divisor};
    context->time_base = {spec.scale, spec.rate};
    context->framerate = {spec.rate, spec.scale};
    context->gop_size = spec.gop;
    context->max_b_frames = codec.bFrames;
    context->pix_fmt = spec.range == Range::Standard ? AV_PIX_FMT_YUV420P : AV_PIX_FMT_YUV420P10;
    context->bit_rate =
        static_cast<int64_t>(spec.width) * spec.height / 1000 * codec.bitRatePerKilopixel;
    context->rc_max_rate = context->bit_rate;
    context->rc_buffer_size = static_cast<int>(context->bit_rate);
    context->thread_count = 1;
    context->flags = AV_CODEC_FLAG_BITEXACT | AV_CODEC_FLAG_CLOSED_GOP;
    if (spec.interlaced)
        context->flags |= AV_CODEC_FLAG_INTERLACED_DCT | AV_CODEC_FLAG_INTERLACED_ME;
    setColours(spec, context.get());
    setPrivateOptions(spec, context.get());
    int code = avcodec_open2(context.get(), encoder, nullptr);
    if (code < 0) {
        *error = libraryError(codec.encoder, code);
        return nullptr;
    }
    return context;
}

/** Takes what the encoder has finished. */
static bool drainVideo(AVCodecContext* context, std::vector<CodedPicture>* pictures) {
    Packet packet(av_packet_alloc());
    int code = 0;
    while ((code = avcodec_receive_packet(context, packet.get())) == 0) {
        pictures->push_back({Bytes(packet->data, packet->data + packet->size), packet->dts,
                             packet->pts, (packet->flags & AV_PKT_FLAG_KEY) != 0});
        av_packet_unref(packet.get());
    }
    return code == AVERROR(EAGAIN) || code == AVERROR_EOF;
}

static bool encodePictures(const VideoSpec& spec, const std::vector<Bytes>& captions,
                           AVCodecContext* context, std::vector<CodedPicture>* pictures) {
    for (int frame = 0; frame < spec.segment; frame++) {
        // A frame of its own each time: the encoder may keep it for a while.
        Frame picture(av_frame_alloc());
        picture->format = context->pix_fmt;
        picture->width = spec.width;
        picture->height = spec.height;
        if (av_frame_get_buffer(picture.get(), 0) < 0)
            return false;
        drawPicture(spec, frame, picture.get());
        picture->pts = frame;
        picture->interlaced_frame = spec.interlaced ? 1 : 0;
        picture->top_field_first = spec.interlaced ? 1 : 0;
        picture->pict_type = frame % spec.gop == 0 ? AV_PICTURE_TYPE_I : AV_PICTURE_TYPE_NONE;
        if (!captions.empty()) {
            const Bytes& data = captions[static_cast<size_t>(frame)];
            AVFrameSideData* side =
                av_frame_new_side_data(picture.get(), AV_FRAME_DATA_A53_CC, data.size());
            if (side == nullptr)
                return false;
            std::copy(data.begin(), data.end(), side->data);
        }
        if (avcodec_send_frame(context, picture.get()) < 0 || !drainVideo(context, pictures))
            return false;
    }
    return avcodec_send_frame(context, nullptr) >= 0 && drainVideo(context, pictures);
}

bool encodeVideo(const VideoSpec& spec, const std::vector<Bytes>& captions,
                 std::vector<CodedPicture>* pictures, std::string* error) {
    pictures->clear();
    const VideoCodec* codec =
        std::find_if(std::begin(videoCodecs), std::end(videoCodecs),
                     [&](const VideoCodec& c) { return c.format == spec.format; });
    if (codec == std::end(videoCodecs)) {
        *error = "no encoder for video format " + std::to_string(spec.format);
        return false;
    }
    av_log_set_level(AV_LOG_ERROR);
    Context context = openVideo(spec, *codec, error);
    if (context == nullptr)
        return false;
    if (!encodePictures(spec, captions, context.get(), pictures) ||
        pictures->size() != static_cast<size_t>(spec.segment)) {
        *error = std::string(codec->encoder) + " failed";
        return false;
    }
    int64_t first = pictures->front().decodeTime;
    for (CodedPicture& picture : *pictures) {
        picture.decodeTime -= first;
        picture.presentationTime -= first;
        if (spec.afd != 0 && spec.format == VIDEO_H264)
            insertActiveFormat(spec.afd, &picture.data);
    }
    return true;
}

/* Sound ---------------------------------------------------------------------------------------- */

static const int sampleRate = 48000;

struct AudioCodec {
    uint32_t format;
    const char* encoder;
    int rate;
    int bitsPerChannel;  // bits a second
};

// HE-AAC is coded at half the rate: its upper half is left to the receiver's band replication.
// clang-format off
static const AudioCodec audioCodecs[] = {
    {AUDIO_MPEG,  "mp2",  sampleRate,     96000},
    {AUDIO_AC3,   "ac3",  sampleRate,     96000},
    {AUDIO_EAC3,  "eac3", sampleRate,     64000},
    {AUDIO_AAC,   "aac",  sampleRate,     64000},
    {AUDIO_HEAAC, "aac",  sampleRate / 2, 24000},
};
// clang-format on

static Context openAudio(const AudioSpec& spec, const AudioCodec& codec, std::string* error) {
    const AVCodec* encoder = avcodec_find_encoder_by_name(codec.encoder);
    Context context(encoder == nullptr ? nullptr : avcodec_alloc_context3(encoder));
    if (context == nullptr) {
        *error = std::string("no encoder ") + codec.encoder;
        return nullptr;
    }
    context->sample_rate = codec.rate;
    context->sample_fmt = encoder->sample_fmts[0];
    // AAC's configuration 6 names the rear channels after the back, AC-3 after the sides.
    bool aac = spec.format == AUDIO_AAC || spec.format == AUDIO_HEAAC;
    if (spec.channels == 6 && aac)
        context->ch_layout = AV_CHANNEL_LAYOUT_5POINT1_BACK;
    else if (spec.channels == 6)
        context->ch_layout = AV_CHANNEL_LAYOUT_5POINT1;
    else
        av_channel_layout_default(&context->ch_layout, spec.channels);
    // 5.1 takes 384 kbit/s where two channels take 192: the channels share.
    context->bit_rate = codec.bitsPerChannel * (spec.channels == 6 ? 4 : spec.channels);
    context->time_base = {1, codec.rate};
    context->thread_count = 1;
    context->flags = AV_CODEC_FLAG_BITEXACT;
    // Noise substitution is no tool of MPEG-2 AAC.
    av_opt_set_int(context->priv_data, "aac_pns", 0, 0);
    int code = avcodec_open2(context.get(), encoder, nullptr);
    if (code < 0) {
        *error = libraryError(codec.encoder, code);
        return nullptr;
    }
    return context;
}

/** A tone that fits whole into the frames of every format, at -20 dB: in each channel a multiple of
 *  that of the left one, in the low frequency channel one low enough for it. */
static double toneAt(const AudioSpec& spec, int rate, int64_t sample, int channel) {
    static const double pi = 3.14159265358979323846;
    static const int lowFrequency = 3;  // the fourth of FFmpeg's order of 5.1
    static const int multiples[] = {1, 2, 3, 0, 4, 5};
    // In quarters of a hertz.
    int64_t frequency =
        int64_t{4} * 375 * (1 + static_cast<int>(spec.tone) % 5) * multiples[channel];
    if (channel == lowFrequency)
        frequency = 375;
    int64_t phase = sample * frequency % (int64_t{4} * rate);
    return 0.1 * sin(pi / 2 * static_cast<double>(phase) / rate);
}

static void fillSound(const AudioSpec& spec, const AVCodecContext* context, int64_t first,
                      AVFrame* frame) {
    for (int n = 0; n < frame->nb_samples; n++) {
        for (int channel = 0; channel < spec.channels; channel++) {
            double value = toneAt(spec, context->sample_rate, first + n, channel);
            // Planes come aligned for any sample.
            const bool packed = context->sample_fmt == AV_SAMPLE_FMT_S16;
            void* plane = frame->data[packed ? 0 : channel];
            if (packed)
                static_cast<int16_t*>(plane)[n * spec.channels + channel] =
                    static_cast<int16_t>(lrint(value * 32767));
            else
                static_cast<float*>(plane)[n] = static_cast<float>(value);
        }
    }
}

/** Encodes sound until `wanted` frames are out, the first ones being still without full history. */
static bool encodeSound(const AudioSpec& spec, AVCodecContext* context, size_t wanted,
                        std::vector<Bytes>* coded) {
    Packet packet(av_packet_alloc());
    for (int64_t sample = 0; coded->size() < wanted; sample += context->frame_size) {
        Frame frame(av_frame_alloc());
        frame->format = context->sample_fmt;
        frame->nb_samples = context->frame_size;
        frame->sample_rate = context->sample_rate;
        frame->pts = sample;
        if (av_channel_layout_copy(&frame->ch_layout, &context->ch_layout) < 0 ||
            av_frame_get_buffer(frame.get(), 0) < 0)
            return false;
        fillSound(spec, context, sample, frame.get());
        if (avcodec_send_frame(context, frame.get()) < 0)
            return false;
        while (avcodec_receive_packet(context, packet.get()) == 0) {
            coded->push_back(Bytes(packet->data, packet->data + packet->size));
            av_packet_unref(packet.get());
        }
    }
    return true;
}

bool encodeAudio(const AudioSpec& spec, AacFraming framing, size_t frames,
                 std::vector<Bytes>* coded, std::string* error) {
    static const size_t settling = 4;
    coded->clear();
    if (spec.format == AUDIO_AC4) {
        for (size_t i = 0; i < frames; i++)
            coded->push_back(ac4Frame(i));
        return true;
    }
    const AudioCodec* codec =
        std::find_if(std::begin(audioCodecs), std::end(audioCodecs),
                     [&](const AudioCodec& c) { return c.format == spec.format; });
    if (codec == std::end(audioCodecs)) {
        *error = "no encoder for audio format " + std::to_string(spec.format);
        return false;
    }
    av_log_set_level(AV_LOG_ERROR);
    Context context = openAudio(spec, *codec, error);
    if (context == nullptr)
        return false;
    if (!encodeSound(spec, context.get(), frames + settling, coded)) {
        *error = std::string(codec->encoder) + " failed";
        return false;
    }
    coded->erase(coded->begin(), coded->begin() + settling);
    coded->resize(frames);
    bool highEfficiency = spec.format == AUDIO_HEAAC;
    if (spec.format == AUDIO_AAC || highEfficiency)
        for (Bytes& frame : *coded)
            frame = framing == AacFraming::Adts && !highEfficiency
                        ? adtsFrame(frame, spec.channels)
                        : latmFrame(frame, spec.channels, highEfficiency);
    return true;
}

}  // namespace mkstreams

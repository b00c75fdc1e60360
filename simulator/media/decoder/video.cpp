// Video: where decoding can begin, and what the pictures are that it begins with.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <numeric>
#include <optional>
#include <string_view>
#include <unordered_map>

#include "simulator/media/decoder/av.h"

extern "C" {
#include <libavutil/mastering_display_metadata.h>
#include <libavutil/pixdesc.h>
}

namespace sim {

namespace {

/** Calls `each(code)` for the byte behind each start code. */
template <typename Each>
void eachStartCode(const uint8_t* bytes, size_t size, Each each) {
    for (size_t i = 0; i + 3 < size; i++) {
        if (bytes[i + 2] > 1)
            i += 2;
        else if (bytes[i] == 0 && bytes[i + 1] == 0 && bytes[i + 2] == 1)
            each(bytes[i + 3]);
    }
}

/** Whether the unit brings what a decoder must know of the sequence. */
bool hasSequenceHeader(VideoCoding coding, const uint8_t* bytes, size_t size) {
    bool found = false;
    eachStartCode(bytes, size, [&](uint8_t code) {
        switch (coding) {
            case VideoCoding::mpeg1:
            case VideoCoding::mpeg2:
                found = found || code == 0xb3;
                break;
            case VideoCoding::mpeg4:
                // video_object_layer_start_code
                found = found || (code & 0xf0) == 0x20;
                break;
            case VideoCoding::h264:
                found = found || (code & 0x1f) == 7;
                break;
            case VideoCoding::hevc:
                found = found || (code >> 1 & 0x3f) == 33;
                break;
        }
    });
    return found;
}

bool isAccess(VideoCoding coding, const ParsedUnit& unit, const uint8_t* bytes) {
    bool slices = coding == VideoCoding::h264 || coding == VideoCoding::hevc;
    bool intra = slices ? unit.key : unit.pictureType == AV_PICTURE_TYPE_I;
    return intra && hasSequenceHeader(coding, bytes, unit.size);
}

Ratio ratioOf(AVRational value) {
    if (value.num <= 0 || value.den <= 0)
        return {};
    auto num = static_cast<uint32_t>(value.num);
    auto den = static_cast<uint32_t>(value.den);
    uint32_t common = std::gcd(num, den);
    return {num / common, den / common};
}

/** The aspect of the whole picture. Samples are described for a raster that is a little narrower
 *  than the coded one, so what is near to a screen's aspect is meant to be it. */
Ratio displayAspectOf(Ratio sample, int width, int height) {
    static const Ratio screens[] = {{4, 3}, {16, 9}, {221, 100}};
    constexpr double tolerance = 0.03;
    if (sample.num == 0)
        sample = {1, 1};
    int64_t num = int64_t{width} * sample.num;
    int64_t den = int64_t{height} * sample.den;
    double aspect = static_cast<double>(num) / static_cast<double>(den);
    for (Ratio screen : screens) {
        double wanted = static_cast<double>(screen.num) / screen.den;
        if (std::abs(aspect / wanted - 1) < tolerance)
            return screen;
    }
    int64_t common = std::gcd(num, den);
    return {static_cast<uint32_t>(num / common), static_cast<uint32_t>(den / common)};
}

bool has(const AVFrame& frame, AVFrameSideDataType type) {
    return av_frame_get_side_data(&frame, type) != nullptr;
}

/** Coded data may hold numbers that the enumeration does not have. */
template <typename Enum>
int codePoint(const Enum& value) {
    int number = 0;
    static_assert(sizeof number == sizeof value);
    memcpy(&number, &value, sizeof number);
    return number;
}

VideoFormat formatOf(VideoCoding coding, const AVCodecContext& decoder, const AVFrame& frame) {
    VideoFormat format;
    format.coding = coding;
    if (coding == VideoCoding::mpeg2 && decoder.codec_id == AV_CODEC_ID_MPEG1VIDEO)
        format.coding = VideoCoding::mpeg1;
    format.width = static_cast<uint16_t>(frame.width);
    format.height = static_cast<uint16_t>(frame.height);
    format.frameRate = ratioOf(decoder.framerate);
    format.interlaced = frame.interlaced_frame != 0;
    format.sampleAspect = ratioOf(frame.sample_aspect_ratio);
    format.displayAspect = displayAspectOf(format.sampleAspect, frame.width, frame.height);
    const AVFrameSideData* afd = av_frame_get_side_data(&frame, AV_FRAME_DATA_AFD);
    if (afd != nullptr && afd->size > 0)
        format.activeFormat = afd->data[0] & 0xf;
    format.primaries = static_cast<uint8_t>(codePoint(frame.color_primaries));
    format.transfer = static_cast<uint8_t>(codePoint(frame.color_trc));
    format.matrix = static_cast<uint8_t>(codePoint(frame.colorspace));
    format.fullRange = codePoint(frame.color_range) == AVCOL_RANGE_JPEG;
    const AVPixFmtDescriptor* pixels =
        av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    if (pixels != nullptr)
        format.bitDepth = static_cast<uint8_t>(pixels->comp[0].depth);
    format.masteringDisplay = has(frame, AV_FRAME_DATA_MASTERING_DISPLAY_METADATA);
    format.contentLight = has(frame, AV_FRAME_DATA_CONTENT_LIGHT_LEVEL);
    return format;
}

/** Decodes pictures alone, each as if nothing came before it; those alike are decoded once. */
class PictureProbe {
 public:
    explicit PictureProbe(VideoCoding coding) : coding_(coding) {
        decoder_ = openDecoder(codecOf(coding));
    }

    /** @param bytes  stay where they are as long as the probe lives */
    std::optional<VideoFormat> formatOfUnit(const uint8_t* bytes, size_t size) {
        std::string_view key(reinterpret_cast<const char*>(bytes), size);
        auto found = known_.find(key);
        if (found == known_.end())
            found = known_.emplace(key, decode(bytes, size)).first;
        return found->second;
    }

 private:
    std::optional<VideoFormat> decode(const uint8_t* bytes, size_t size) {
        std::optional<VideoFormat> format;
        if (decoder_ == nullptr)
            return format;
        bool faulty = false;
        auto take = [&](AVFrame* frame) {
            faulty = faulty || isFaulty(*frame);
            format = formatOf(coding_, *decoder_, *frame);
        };
        bool good = decodeUnit(decoder_.get(), bytes, size, 0, take);
        good = decodeUnit(decoder_.get(), nullptr, 0, 0, take) && good;
        avcodec_flush_buffers(decoder_.get());
        // MPEG-2 decoders take MPEG-1 too, and not the other way round.
        bool fits = format.has_value() &&
                    (coding_ != VideoCoding::mpeg1 || decoder_->codec_id == AV_CODEC_ID_MPEG1VIDEO);
        if (!good || faulty || !fits || format->width == 0)
            format.reset();
        return format;
    }

    VideoCoding coding_;
    AvPtr<AVCodecContext> decoder_;
    std::unordered_map<std::string_view, std::optional<VideoFormat>> known_;
};

/** Frames a second by the smallest distance of time stamps, for data that do not tell it. */
Ratio rateByStamps(const std::vector<AccessUnit>& units) {
    std::vector<uint64_t> stamps;
    for (const AccessUnit& unit : units) {
        if (unit.pts != noStamp)
            stamps.push_back(unit.pts);
    }
    std::sort(stamps.begin(), stamps.end());
    uint64_t least = UINT64_MAX;
    for (size_t i = 1; i < stamps.size(); i++) {
        if (stamps[i] > stamps[i - 1])
            least = std::min(least, stamps[i] - stamps[i - 1]);
    }
    if (least > 90000)
        return {};
    // Stamps of 59.94 pictures a second are 1501 and 1502 apart.
    static const Ratio rates[] = {{24000, 1001}, {24, 1}, {25, 1},       {30000, 1001},
                                  {30, 1},       {50, 1}, {60000, 1001}, {60, 1}};
    for (Ratio rate : rates) {
        if (90000 * uint64_t{rate.den} / rate.num == least)
            return rate;
    }
    return ratioOf({90000, static_cast<int>(least)});
}

}  // namespace

void indexVideoUnits(const Es& es, VideoCoding coding, VideoIndex* index) {
    PictureProbe probe(coding);
    std::vector<ParsedUnit> parsed = parseUnits(es, codecOf(coding));
    for (const ParsedUnit& unit : parsed)
        index->units.push_back(accessUnitAt(es, unit.offset, unit.size));
    setStamps(es, &index->units);
    Ratio rate = rateByStamps(index->units);
    for (size_t i = 0; i < parsed.size(); i++) {
        AccessUnit& unit = index->units[i];
        if (!isAccess(coding, parsed[i], &es.data[unit.offset]))
            continue;
        unit.flags |= unit_access;
        if ((unit.flags & unit_damaged) != 0)
            continue;
        // A frame of two fields needs both.
        size_t size = unit.size;
        if (parsed[i].field && i + 1 < parsed.size() && parsed[i + 1].field)
            size += index->units[i + 1].size;
        std::optional<VideoFormat> format =
            probe.formatOfUnit(&es.data[unit.offset], std::min(size, es.data.size() - unit.offset));
        if (!format.has_value()) {
            unit.flags |= unit_damaged;
            continue;
        }
        if (format->frameRate.num == 0)
            format->frameRate = rate;
        unit.flags |= unit_decoded;
        if (index->changes.empty() || index->changes.back().format != *format)
            index->changes.push_back({static_cast<uint32_t>(i), *format});
    }
}

namespace {

Picture toRgb(const AVFrame& frame) {
    Picture picture;
    auto from = static_cast<AVPixelFormat>(frame.format);
    AvPtr<SwsContext> scaler(sws_getContext(
        frame.width, frame.height, from, frame.width, frame.height, AV_PIX_FMT_RGB24,
        SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT, nullptr, nullptr, nullptr));
    if (scaler == nullptr)
        return picture;
    int matrix = codePoint(frame.colorspace);
    if (matrix == AVCOL_SPC_UNSPECIFIED)
        matrix = frame.height >= 720 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    const int* coefficients = sws_getCoefficients(matrix);
    sws_setColorspaceDetails(scaler.get(), coefficients,
                             codePoint(frame.color_range) == AVCOL_RANGE_JPEG, coefficients, 1, 0,
                             1 << 16, 1 << 16);
    picture.width = static_cast<uint32_t>(frame.width);
    picture.height = static_cast<uint32_t>(frame.height);
    // The scaler writes whole vectors, a little beyond a row's end.
    constexpr size_t slack = 64;
    picture.rgb.resize(size_t{picture.width} * picture.height * 3 + slack);
    uint8_t* rows[] = {picture.rgb.data(), nullptr, nullptr, nullptr};
    const int strides[] = {frame.width * 3, 0, 0, 0};
    sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, rows, strides);
    picture.rgb.resize(picture.rgb.size() - slack);
    return picture;
}

}  // namespace

Picture decodeWantedPicture(VideoCoding coding, const std::vector<MediaBytes>& units,
                            size_t wanted) {
    AvPtr<AVCodecContext> decoder = openDecoder(codecOf(coding));
    if (decoder == nullptr)
        return {};
    AvPtr<AVFrame> kept(av_frame_alloc());
    bool exact = false;
    auto take = [&](AVFrame* frame) {
        if (exact)
            return;
        exact = frame->pts == static_cast<int64_t>(wanted);
        av_frame_unref(kept.get());
        av_frame_ref(kept.get(), frame);
    };
    for (size_t i = 0; i < units.size() && !exact; i++)
        decodeUnit(decoder.get(), units[i].bytes, units[i].size, static_cast<int64_t>(i), take);
    if (!exact)
        decodeUnit(decoder.get(), nullptr, 0, 0, take);
    return kept->width > 0 ? toRgb(*kept) : Picture();
}

std::vector<uint8_t> encodePng(const Picture& picture) {
    std::vector<uint8_t> file;
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_PNG);
    AvPtr<AVCodecContext> encoder(codec != nullptr ? avcodec_alloc_context3(codec) : nullptr);
    AvPtr<AVFrame> frame(av_frame_alloc());
    AvPtr<AVPacket> packet(av_packet_alloc());
    if (encoder == nullptr || picture.rgb.size() < size_t{picture.width} * picture.height * 3)
        return file;
    encoder->width = static_cast<int>(picture.width);
    encoder->height = static_cast<int>(picture.height);
    encoder->pix_fmt = AV_PIX_FMT_RGB24;
    encoder->time_base = {1, 25};
    encoder->thread_count = 1;
    if (avcodec_open2(encoder.get(), codec, nullptr) != 0)
        return file;
    frame->width = encoder->width;
    frame->height = encoder->height;
    frame->format = AV_PIX_FMT_RGB24;
    if (av_frame_get_buffer(frame.get(), 0) != 0)
        return file;
    for (int row = 0; row < frame->height; row++)
        std::copy_n(&picture.rgb[static_cast<size_t>(row) * picture.width * 3], picture.width * 3,
                    frame->data[0] + static_cast<ptrdiff_t>(row) * frame->linesize[0]);
    if (avcodec_send_frame(encoder.get(), frame.get()) == 0 &&
        avcodec_receive_packet(encoder.get(), packet.get()) == 0)
        file.assign(packet->data, packet->data + packet->size);
    return file;
}

}  // namespace sim

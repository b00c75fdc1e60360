// Parsers and decoders, one thread each.
#include "simulator/media/decoder/av.h"

#include <algorithm>
#include <cstring>

namespace sim {

AvPtr<AVCodecContext> openDecoder(AVCodecID id) {
    const AVCodec* codec = avcodec_find_decoder(id);
    AvPtr<AVCodecContext> context(codec != nullptr ? avcodec_alloc_context3(codec) : nullptr);
    if (context == nullptr)
        return nullptr;
    context->thread_count = 1;
    context->err_recognition = AV_EF_CRCCHECK | AV_EF_BITSTREAM | AV_EF_BUFFER;
    // Broken headers ask for pictures of any size.
    context->max_pixels = int64_t{8192} * 4320;
    if (avcodec_open2(context.get(), codec, nullptr) != 0)
        return nullptr;
    return context;
}

namespace {

/** Where the parser's bytes are in the stream, at `from` or behind what it has left out. */
size_t placeOf(const std::vector<uint8_t>& data, size_t from, const uint8_t* bytes, int size) {
    auto length = static_cast<size_t>(size);
    if (from + length <= data.size() && memcmp(&data[from], bytes, length) == 0)
        return from;
    auto found = std::search(data.begin() + static_cast<ptrdiff_t>(std::min(from, data.size())),
                             data.end(), bytes, bytes + length);
    return static_cast<size_t>(found - data.begin());
}

}  // namespace

std::vector<ParsedUnit> parseUnits(const Es& es, AVCodecID id) {
    std::vector<ParsedUnit> units;
    AvPtr<AVCodecParserContext> parser(av_parser_init(id));
    AvPtr<AVCodecContext> context(avcodec_alloc_context3(avcodec_find_decoder(id)));
    if (parser == nullptr || context == nullptr || es.data.empty())
        return units;
    // Parsers read a little beyond.
    std::vector<uint8_t> padded = es.data;
    padded.resize(es.data.size() + AV_INPUT_BUFFER_PADDING_SIZE);
    size_t at = 0;
    size_t known = 0;
    bool flushed = false;
    while (!flushed) {
        constexpr size_t step = 1 << 20;
        auto left = static_cast<int>(std::min(es.data.size() - at, step));
        uint8_t* out = nullptr;
        int size = 0;
        flushed = left == 0;
        int used = av_parser_parse2(parser.get(), context.get(), &out, &size, &padded[at], left,
                                    AV_NOPTS_VALUE, AV_NOPTS_VALUE, static_cast<int64_t>(at));
        if (used < 0)
            break;
        at += static_cast<size_t>(used);
        if (size <= 0)
            continue;
        size_t place = placeOf(es.data, known, out, size);
        if (place + static_cast<size_t>(size) > es.data.size())
            continue;
        bool field = parser->picture_structure == AV_PICTURE_STRUCTURE_TOP_FIELD ||
                     parser->picture_structure == AV_PICTURE_STRUCTURE_BOTTOM_FIELD;
        units.push_back(
            {place, static_cast<size_t>(size), parser->key_frame == 1, parser->pict_type, field});
        known = place + static_cast<size_t>(size);
    }
    return units;
}

bool isFaulty(const AVFrame& frame) {
    return frame.decode_error_flags != 0 || (frame.flags & AV_FRAME_FLAG_CORRUPT) != 0;
}

bool decodeUnit(AVCodecContext* decoder, const uint8_t* bytes, size_t size, int64_t tag,
                const std::function<void(AVFrame*)>& take) {
    AvPtr<AVPacket> packet(av_packet_alloc());
    AvPtr<AVFrame> frame(av_frame_alloc());
    bool good = true;
    if (bytes != nullptr) {
        if (av_new_packet(packet.get(), static_cast<int>(size)) != 0)
            return false;
        memcpy(packet->data, bytes, size);
        packet->pts = tag;
        good = avcodec_send_packet(decoder, packet.get()) == 0;
    } else {
        avcodec_send_packet(decoder, nullptr);
    }
    int status = 0;
    while ((status = avcodec_receive_frame(decoder, frame.get())) == 0)
        take(frame.get());
    return good && (status == AVERROR(EAGAIN) || status == AVERROR_EOF);
}

AVCodecID codecOf(VideoCoding coding) {
    switch (coding) {
        case VideoCoding::mpeg1:
        case VideoCoding::mpeg2:
            return AV_CODEC_ID_MPEG2VIDEO;
        case VideoCoding::mpeg4:
            return AV_CODEC_ID_MPEG4;
        case VideoCoding::h264:
            return AV_CODEC_ID_H264;
        case VideoCoding::hevc:
            return AV_CODEC_ID_HEVC;
    }
    return AV_CODEC_ID_NONE;
}

AVCodecID codecOf(AudioCoding coding, const uint8_t* bytes, size_t size) {
    switch (coding) {
        case AudioCoding::mpeg:
            return AV_CODEC_ID_MP2;
        case AudioCoding::ac3:
            return AV_CODEC_ID_AC3;
        case AudioCoding::eac3:
            return AV_CODEC_ID_EAC3;
        case AudioCoding::aac:
        case AudioCoding::heAac:
            // AudioSyncStream of LOAS has the sync word 0x2B7.
            return size >= 2 && bytes[0] == 0x56 && (bytes[1] & 0xe0) == 0xe0 ? AV_CODEC_ID_AAC_LATM
                                                                              : AV_CODEC_ID_AAC;
        case AudioCoding::ac4:
            break;
    }
    return AV_CODEC_ID_NONE;
}

}  // namespace sim

extern "C" {
// Found by its name.
extern const sim::MediaDecoder qlx_sim_media_decoder;
const sim::MediaDecoder qlx_sim_media_decoder = {sim::indexVideoUnits, sim::indexAudioUnits,
                                                 sim::decodeWantedPicture, sim::decodeWholeSound,
                                                 sim::encodePng};
}

namespace {
/** Its messages are of damages that the index tells of. */
[[maybe_unused]] const int quiet = (av_log_set_level(AV_LOG_QUIET), 0);
}  // namespace

/* FFmpeg's objects, freed by themselves, and what both kinds of media share. */
#ifndef SIMULATOR_MEDIA_DECODER_AV_H
#define SIMULATOR_MEDIA_DECODER_AV_H

#include <functional>
#include <memory>
#include <vector>

#include "simulator/media/decoder.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

namespace sim {

struct AvDelete {
    void operator()(AVCodecContext* context) const {
        avcodec_free_context(&context);
    }
    void operator()(AVCodecParserContext* parser) const {
        av_parser_close(parser);
    }
    void operator()(AVFrame* frame) const {
        av_frame_free(&frame);
    }
    void operator()(AVPacket* packet) const {
        av_packet_free(&packet);
    }
    void operator()(SwrContext* context) const {
        swr_free(&context);
    }
    void operator()(SwsContext* context) const {
        sws_freeContext(context);
    }
};

template <typename T>
using AvPtr = std::unique_ptr<T, AvDelete>;

/** A decoder of one thread that tells errors, opened; null when FFmpeg has none. */
AvPtr<AVCodecContext> openDecoder(AVCodecID id);

/** An access unit as a parser finds it. */
struct ParsedUnit {
    size_t offset;
    size_t size;
    bool key;
    /** AVPictureType. */
    int pictureType;
    /** One of two fields of a frame. */
    bool field;
};

/** Splits the elementary stream. */
std::vector<ParsedUnit> parseUnits(const Es& es, AVCodecID id);

/**
 * Sends bytes to a decoder and takes all frames that it has then.
 * @param bytes  null: drains the decoder
 * @param tag    comes back as pts of the frame
 * @return whether there was no error
 */
bool decodeUnit(AVCodecContext* decoder, const uint8_t* bytes, size_t size, int64_t tag,
                const std::function<void(AVFrame*)>& take);

bool isFaulty(const AVFrame& frame);

void indexVideoUnits(const Es& es, VideoCoding coding, VideoIndex* index);
void indexAudioUnits(const Es& es, AudioCoding coding, AudioIndex* index);
Picture decodeWantedPicture(VideoCoding coding, const std::vector<MediaBytes>& units,
                            size_t wanted);
Sound decodeWholeSound(AudioCoding coding, const std::vector<MediaBytes>& units);
std::vector<uint8_t> encodePng(const Picture& picture);

AVCodecID codecOf(VideoCoding coding);
/** @param es  tells ADTS from LOAS */
AVCodecID codecOf(AudioCoding coding, const uint8_t* bytes, size_t size);

}  // namespace sim

#endif

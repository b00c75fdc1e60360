/*
 * The decoders as the outputs see them: what each shows or plays at the moment, and where it comes
 * from. Nothing is decoded here: who wants the picture or the samples has them made from what is
 * told (simulator/media/picture.h), or draws those of the signal (simulator/world/signal_source.h).
 *
 * Any thread may call, also with a lock of the outputs held.
 */
#ifndef SIMULATOR_AV_DECODER_H
#define SIMULATOR_AV_DECODER_H

#include <stdint.h>

#include "platform/qlx_audio.h"
#include "platform/qlx_video.h"
#include "simulator/media/format.h"
#include "simulator/stream/ts_stream.h"

namespace sim {

/** Where picture or sound of a decoder come from at the moment. */
struct DecoderOrigin {
    enum class Kind { nothing, stream, signal };
    /** Nothing: the decoder has no picture or sound. */
    Kind kind = Kind::nothing;

    /** Of a stream: its coded data, since when it is received without a gap, and which moment of it
     *  is shown (now; earlier while the decoder is paused or the data have ceased). Microseconds of
     *  the monotonic clock. */
    TsStreamPtr stream;
    uint16_t pid = 0;
    int64_t sinceUs = 0;
    int64_t atUs = 0;

    /** Of a signal: the external input or analog front end. */
    uint32_t signalKind = 0;
    uint32_t signalIndex = 0;
};

/** What a video decoder shows. */
struct VideoShown {
    bool open = false;
    /** What the decoder is opened on. */
    QLX_VideoAttr source = {};
    DecoderOrigin origin;
    /** Of a stream: what it is decoded as. */
    VideoCoding coding = VideoCoding::mpeg2;
    /** As QLX_VideoGetVideoInfo tells it. */
    QLX_VideoDecInfo info = {};
    bool paused = false;
};
VideoShown videoShown(uint32_t videoDev);

/** Whether any video decoder is open. */
bool anyVideoDecoderOpen();

/** What an audio decoder plays. */
struct AudioPlayed {
    bool open = false;
    QLX_AudioAttr source = {};
    DecoderOrigin origin;
    AudioCoding coding = AudioCoding::mpeg;
    QLX_AudioDecInfo info = {};
    /** Silence while paused. */
    bool paused = false;
    /** Of QLX_AUDIO_SOURCE_MAIN. */
    uint32_t volume = 0;
    bool muted = false;
    /** 128 leaves the samples as they are. */
    uint8_t prescaler = 128;
    /** QLX_AudioDigitalAudioMode_e. */
    uint32_t digitalMode = QLX_AUDIO_DIGITAL_MODE_STEREO;
    /** What is played along; of kind nothing when there is no description. */
    DecoderOrigin description;
    AudioCoding descriptionCoding = AudioCoding::mpeg;
};
AudioPlayed audioPlayed(uint32_t audioDev);

}  // namespace sim

#endif

/*
 * Pictures and sound, decoded when somebody looks or listens. Any thread may call; a call decodes
 * on its own thread from the access point before.
 */
#ifndef SIMULATOR_MEDIA_PICTURE_H
#define SIMULATOR_MEDIA_PICTURE_H

#include <stdint.h>

#include <string>
#include <vector>

#include "simulator/media/format.h"
#include "simulator/stream/ts_stream.h"

namespace sim {

/** A frame in RGB of 8 bits, red first, rows from the top without padding. Empty: no picture. */
struct Picture {
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint8_t> rgb;
};

constexpr uint32_t soundSamplingRate = 48000;

/** Samples of 48 kHz, 16 bits, left and right alternating. Empty: no sound. */
struct Sound {
    std::vector<int16_t> samples;
};

/**
 * The picture that is on the screen at a time of the monotonic clock (unitShown), in its coded
 * size.
 * @param sinceUs  when the decoder began to receive the stream
 * @return empty when there is none, or when this device was built without a decoder, which is
 *         complained of
 */
Picture decodePicture(const TsStreamPtr& stream, uint16_t pid, VideoCoding coding, int64_t sinceUs,
                      int64_t atUs);

/**
 * What sounds from `fromUs` of the monotonic clock on, mixed down to stereo. Where nothing sounds
 * there is silence.
 * @param durationUs  at most 60 s
 */
Sound decodeSound(const TsStreamPtr& stream, uint16_t pid, AudioCoding coding, int64_t fromUs,
                  int64_t durationUs);

/** Write a PNG, or a RIFF WAVE file. On failure false, and the file is not there.
 *  @param message  what has failed, for people */
bool writePng(const std::string& path, const Picture& picture, std::string* message);
bool writeWav(const std::string& path, const Sound& sound, std::string* message);

}  // namespace sim

#endif

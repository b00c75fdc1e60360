/*
 * Pictures and sound of the line-up, encoded by FFmpeg's libraries.
 *
 * Pictures are colour bars with a moving box and a row of squares that counts the frames in binary;
 * sound is a steady tone. Both repeat: a segment of pictures is encoded once and played again and
 * again, so that a loop of any length costs the same.
 */
#ifndef TOOLS_MKSTREAMS_ENCODER_H
#define TOOLS_MKSTREAMS_ENCODER_H

#include <string>
#include <vector>

#include "tools/mkstreams/bytes.h"
#include "tools/mkstreams/content.h"

namespace mkstreams {

/** A coded picture. Times are in frames from the segment's first decoding time. */
struct CodedPicture {
    Bytes data;
    int64_t decodeTime;
    int64_t presentationTime;
    bool randomAccess;
};

/** Encodes a segment of pictures. `captions` has the cc_data of each (ATSC A/53 part 4, 6.2.3), in
 *  the order of presentation, or is empty. On failure false and a message. */
bool encodeVideo(const VideoSpec& spec, const std::vector<Bytes>& captions,
                 std::vector<CodedPicture>* pictures, std::string* error);

/** How frames of AAC are framed in the stream. */
enum class AacFraming { Adts, Latm };

/** Encodes `frames` frames of sound, each whole with its header as it stands in the stream.
 *  AC-4, for which there is no encoder, gives frames of correct syntax without sound. */
bool encodeAudio(const AudioSpec& spec, AacFraming framing, size_t frames,
                 std::vector<Bytes>* coded, std::string* error);

}  // namespace mkstreams

#endif

// Streams as FFmpeg's demultiplexer and decoders see them.
#ifndef TESTS_STREAMS_DECODED_H
#define TESTS_STREAMS_DECODED_H

#include <map>
#include <set>
#include <string>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
}

#include "simulator/media/picture.h"
#include "tools/mkstreams/bytes.h"

namespace mkstreams {

/** What a decoder says of a picture or of a frame of sound. */
struct Shape {
    int width, height;
    AVRational aspect;
    bool interlaced;
    int transfer, primaries, depth;
    bool mastering, lightLevel;
    int activeFormat;
    bool captions;
    int rate, channels;
};

bool operator==(const Shape& a, const Shape& b);

/** Frames of one shape that follow each other. */
struct Shaped {
    Shape shape;
    int frames;
};

/** What was decoded of a stream. */
struct Decoded {
    AVCodecID codec;
    int frames;
    int errors;
    std::vector<Shaped> shapes;
    std::vector<int64_t> times;               // pts of packets, 90 kHz
    int64_t lastAccess;                       // pts of the last random access point
    int64_t longestGap;                       // between two, 90 kHz
    std::vector<std::vector<float>> samples;  // of sound, by channel; the last frame's channels
    std::vector<Bytes> captions;              // cc_data of pictures, in the order of presentation
};

using Streams = std::map<int, Decoded>;  // by PID

/** Decodes all pictures and sound of a stream, and tells the packets of what else there is. */
Streams decode(const Bytes& bytes);

/** The pictures of a stream with those time stamps, as FFmpeg decodes the file from its beginning
 * and converts them; without those that there are not. */
std::map<int64_t, sim::Picture> decodedPictures(const std::string& path, int pid,
                                                const std::set<int64_t>& stamps);

/** The first picture of an image file, and the samples of a sound file. */
sim::Picture decodedImage(const std::string& path);
std::vector<int16_t> decodedWave(const std::string& path);

}  // namespace mkstreams

#endif

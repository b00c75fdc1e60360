/*
 * What needs real decoders: a library of its own beside the device's, which is loaded when it is
 * first needed, for it brings a hundred others along. Where those libraries are not, the device is
 * built without it and lives on what was found before.
 */
#ifndef SIMULATOR_MEDIA_DECODER_H
#define SIMULATOR_MEDIA_DECODER_H

#include <stdint.h>

#include <string>
#include <vector>

#include "simulator/media/es_index.h"
#include "simulator/media/es_reader.h"
#include "simulator/media/picture.h"

namespace sim {

struct MediaBytes {
    const uint8_t* bytes;
    size_t size;
};

/** Functions of the library; each decodes on the calling thread alone. */
struct MediaDecoder {
    /** Fill `units` and `changes`. */
    void (*indexVideo)(const Es& es, VideoCoding coding, VideoIndex* index);
    void (*indexAudio)(const Es& es, AudioCoding coding, AudioIndex* index);
    /** Decodes these access units, and gives the picture of the one at `wanted`; that before it in
     *  presentation when it gives none. */
    Picture (*picture)(VideoCoding coding, const std::vector<MediaBytes>& units, size_t wanted);
    Sound (*sound)(AudioCoding coding, const std::vector<MediaBytes>& units);
    /** The PNG file's bytes; empty when it cannot be made. */
    std::vector<uint8_t> (*png)(const Picture& picture);
};

/** The name under which the library has its MediaDecoder, and its file beside that of the device.
 */
constexpr char mediaDecoderName[] = "qlx_sim_media_decoder";
constexpr char mediaDecoderFile[] = "libQlxMedia.so";

/** Loaded on the first call; null when it is not there. Any thread may call. */
const MediaDecoder* mediaDecoder();

}  // namespace sim

#endif

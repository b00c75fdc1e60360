/*
 * What each channel of the line-up shows and plays. Formats and PIDs come from the channel files;
 * what they have no key for (picture size, frame rate, aspect ratio, captions, number of audio
 * channels) goes with the kind of programme, a row of the table in content.cpp.
 */
#ifndef TOOLS_MKSTREAMS_CONTENT_H
#define TOOLS_MKSTREAMS_CONTENT_H

#include <stdint.h>

#include <string>
#include <vector>

#include "tools/mkstreams/line_up.h"

namespace mkstreams {

/** Light that a picture codes: BT.709 or BT.601 with 8 bits, or BT.2100 with 10 bits and static
 *  metadata, in hybrid log-gamma or in perceptual quantisation (HDR10). */
enum class Range { Standard, Hlg, Pq };

struct VideoSpec {
    uint32_t format; /**< VideoFormat */
    int width;
    int height;
    bool interlaced;
    int rate;    /**< frames in scale seconds */
    int scale;   /**< 1 or 1001 */
    int aspectX; /**< of the display: 16 */
    int aspectY; /**< 9 */
    int gop;     /**< frames from random access point to random access point */
    int segment; /**< frames that are encoded and then repeated; whole GOPs */
    Range range;
    unsigned afd;         /**< active format description, 0 for none */
    bool letterbox;       /**< black above and below a picture of 16:9 in a frame of 4:3 */
    std::string captions; /**< the name that line 21 and DTV captions tell; empty without them */
    unsigned tint;        /**< tells the pictures of channels apart, 0 to 15 */
};

struct AudioSpec {
    uint32_t format; /**< AudioFormat */
    int channels;    /**< 2, or 6 for 5.1 */
    unsigned tone;   /**< tells the sound of components apart, 0 to 15 */
};

struct Kind {
    const char* name;
    bool network;         /**< carries the tables that depend on the network */
    bool scrambled;       /**< video and audio are scrambled */
    int audioChannels;    /**< of the first half of the loop */
    int audioChannelsEnd; /**< and of the second */
};

/** The kind of a multiplex, by the last word of its file's name, else by its first channel. */
const Kind& kindOf(const Multiplex& multiplex);

/** What follows each other in a loop, each for the same time; mostly one. */
std::vector<VideoSpec> videoSpecs(const Multiplex& multiplex, const Channel& channel);
std::vector<AudioSpec> audioSpecs(const Multiplex& multiplex, const Channel& channel,
                                  unsigned component);

/** Ticks of the 27 MHz clock that a frame lasts. */
int64_t frameTicks(const VideoSpec& spec);
int64_t frameTicks(const AudioSpec& spec);

/** Duration of the loop of a multiplex, 27 MHz ticks: the shortest from about 9 s on in which all
 *  frames and segments are whole, so that picture and sound run on over its end. */
int64_t loopTicks(const Multiplex& multiplex);

}  // namespace mkstreams

#endif

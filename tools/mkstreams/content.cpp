#include "tools/mkstreams/content.h"

#include <stddef.h>

#include <numeric>
#include <string>

namespace mkstreams {

// In the order of the channels of the line-up.
// clang-format off
static const Kind kinds[] = {
    // name          network scrambled channels
    {"main",         true,   false,    2},
    {"hd",           true,   false,    2},
    {"ac3",          false,  false,    6},
    {"multi",        false,  false,    2},
    {"uhd",          false,  false,    2},
    {"progressive",  false,  false,    6},
    {"letterbox",    false,  false,    2},
    {"ac4",          false,  false,    2},
    {"scrambled",    false,  true,     2},
    {"caption",      false,  false,    2},
};

/** Pictures of a kind for the families of 50 and of 60 Hz. */
struct PictureRow {
    const char* kind;
    uint32_t family; // bits, 1 << Family
    int width, height;
    bool interlaced;
    int rate, scale, aspectX, aspectY;
    bool hlg;
    unsigned afd;
    bool captions;
};

static const uint32_t DVB = 1u << static_cast<int>(Family::Dvb);
static const uint32_t ATSC = 1u << static_cast<int>(Family::Atsc);
static const uint32_t ISDB = 1u << static_cast<int>(Family::Isdb);
static const uint32_t ALL = DVB | ATSC | ISDB;

static const PictureRow pictures[] = {
    // kind         family        size        interl. rate   scale aspect  HLG    AFD captions
    {"main",        DVB,          720,  576,  true,   25,    1,    16, 9,  false, 0,  false},
    {"main",        ATSC,         1920, 1080, true,   30,    1,    16, 9,  false, 0,  false},
    {"main",        ISDB,         1920, 1080, true,   30000, 1001, 16, 9,  false, 0,  false},
    {"hd",          ALL,          1920, 1080, true,   25,    1,    16, 9,  false, 0,  false},
    {"ac3",         ALL,          1440, 1080, true,   25,    1,    16, 9,  false, 0,  false},
    {"multi",       DVB,          720,  576,  true,   25,    1,    4,  3,  false, 0,  false},
    {"multi",       ATSC,         720,  480,  true,   30,    1,    4,  3,  false, 0,  false},
    {"multi",       ISDB,         720,  480,  true,   30000, 1001, 4,  3,  false, 0,  false},
    {"uhd",         DVB,          3840, 2160, false,  50,    1,    16, 9,  true,  0,  false},
    {"uhd",         ATSC,         3840, 2160, false,  60,    1,    16, 9,  true,  0,  false},
    {"uhd",         ISDB,         3840, 2160, false,  60000, 1001, 16, 9,  true,  0,  false},
    {"progressive", ALL,          1280, 720,  false,  25,    1,    16, 9,  false, 0,  false},
    {"letterbox",   DVB,          720,  576,  true,   25,    1,    4,  3,  false, 12, false},
    {"letterbox",   ATSC | ISDB,  720,  480,  true,   30,    1,    4,  3,  false, 12, false},
    {"ac4",         DVB,          1920, 1080, false,  50,    1,    16, 9,  false, 0,  false},
    {"ac4",         ATSC | ISDB,  1920, 1080, false,  60,    1,    16, 9,  false, 0,  false},
    {"scrambled",   DVB,          1920, 1080, true,   25,    1,    16, 9,  false, 0,  false},
    {"scrambled",   ATSC | ISDB,  1920, 1080, true,   30,    1,    16, 9,  false, 0,  false},
    {"caption",     ALL,          720,  480,  true,   30,    1,    4,  3,  false, 0,  true},
};
// clang-format on

static const int64_t systemClock = 27000000;
static const int64_t shortestLoop = 9 * systemClock;
// 22 pairs of control words, two seconds each, and a rest in the clear.
static const int64_t shortestScrambledLoop = 46 * systemClock;

const Kind& kindOf(const Multiplex& multiplex) {
    size_t dot = multiplex.file.rfind('.');
    size_t word = multiplex.file.rfind('_', dot);
    if (multiplex.referenced && word != std::string::npos) {
        std::string name = multiplex.file.substr(word + 1, dot - word - 1);
        for (const Kind& kind : kinds)
            if (name == kind.name)
                return kind;
    }
    if (multiplex.standard->system == 1024)
        return kinds[4];
    return kinds[multiplex.channels.front().index % (sizeof(kinds) / sizeof(kinds[0]))];
}

VideoSpec videoSpec(const Multiplex& multiplex, const Channel& channel) {
    uint32_t family = 1u << static_cast<int>(multiplex.standard->family);
    const PictureRow* row = pictures;
    while (std::string(row->kind) != kindOf(multiplex).name || (row->family & family) == 0)
        row++;
    VideoSpec spec = {};
    spec.format = channel.videoFormat;
    spec.width = row->width;
    spec.height = row->height;
    // MPEG-1 knows no fields.
    spec.interlaced = row->interlaced && channel.videoFormat != VIDEO_MPEG1;
    spec.rate = row->rate;
    spec.scale = row->scale;
    spec.aspectX = row->aspectX;
    spec.aspectY = row->aspectY;
    spec.hlg = row->hlg && channel.videoFormat == VIDEO_HEVC;
    spec.afd = row->afd;
    spec.captions = row->captions;
    spec.tint = channel.index % 16;
    // A random access point at least every half second, and an even number of them. Big pictures
    // take long to code: they repeat soon. Captions run through the whole loop.
    bool big = row->width > 1920;
    if (row->scale != 1)
        spec.gop = 10;
    else
        spec.gop = row->rate / 5 * (big ? 1 : 2);
    spec.segment = spec.gop;
    if (row->captions)
        spec.segment *= 24;
    else if (!big)
        spec.segment *= row->rate > 30 && row->scale == 1 ? 2 : 4;
    return spec;
}

AudioSpec audioSpec(const Multiplex& multiplex, const Channel& channel, unsigned component) {
    const AudioComponent& audio = channel.audio[component];
    int channels = audio.description ? 2 : kindOf(multiplex).audioChannels;
    // MPEG layers I and II have no more than two.
    if (audio.format == AUDIO_MPEG && channels > 2)
        channels = 2;
    return {audio.format, channels, (channel.index * 4 + component) % 16};
}

int64_t frameTicks(const VideoSpec& spec) {
    return systemClock * spec.scale / spec.rate;
}

int64_t frameTicks(const AudioSpec& spec) {
    int64_t samples = 1024;  // AAC
    if (spec.format == AUDIO_MPEG)
        samples = 1152;
    else if (spec.format == AUDIO_AC3 || spec.format == AUDIO_EAC3)
        samples = 1536;
    else if (spec.format == AUDIO_HEAAC || spec.format == AUDIO_AC4)
        samples = 2048;
    return systemClock / 1000 * samples / 48;
}

int64_t loopTicks(const Multiplex& multiplex) {
    int64_t unit = 1;
    for (const Channel& channel : multiplex.channels) {
        VideoSpec video = videoSpec(multiplex, channel);
        if (channel.videoPid != 0)
            unit = std::lcm(unit, frameTicks(video) * video.segment);
        for (unsigned i = 0; i < channel.audio.size(); i++)
            unit = std::lcm(unit, frameTicks(audioSpec(multiplex, channel, i)));
    }
    int64_t shortest = kindOf(multiplex).scrambled ? shortestScrambledLoop : shortestLoop;
    return (shortest + unit - 1) / unit * unit;
}

}  // namespace mkstreams

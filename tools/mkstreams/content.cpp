#include "tools/mkstreams/content.h"

#include <stddef.h>

#include <numeric>
#include <string>

namespace mkstreams {

// In the order of the channels of the line-up.
// clang-format off
static const Kind kinds[] = {
    // name          network scrambled sound, at first and later
    {"main",         true,   false,    2, 2},
    {"hd",           true,   false,    2, 2},
    {"ac3",          false,  false,    6, 6},
    {"multi",        false,  false,    2, 2},
    {"uhd",          false,  false,    2, 2},
    {"progressive",  false,  false,    6, 6},
    {"letterbox",    false,  false,    2, 2},
    {"ac4",          false,  false,    2, 2},
    {"scrambled",    false,  true,     2, 2},
    {"caption",      false,  false,    2, 2},
    {"hdr10",        false,  false,    2, 2},
    {"changing",     false,  false,    2, 6},
};

/** Pictures of a kind for the families of 50 and of 60 Hz. Several rows of a kind and a family share
 *  the loop. */
struct PictureRow {
    const char* kind;
    uint32_t family; // bits, 1 << Family
    int width, height;
    bool interlaced;
    int rate, scale, aspectX, aspectY;
    Range range;
    unsigned afd;
    bool letterbox;
    bool captions;
};

static const uint32_t DVB = 1u << static_cast<int>(Family::Dvb);
static const uint32_t ATSC = 1u << static_cast<int>(Family::Atsc);
static const uint32_t ISDB = 1u << static_cast<int>(Family::Isdb);
static const uint32_t ALL = DVB | ATSC | ISDB;
static const Range SDR = Range::Standard;
static const Range HLG = Range::Hlg;
static const Range PQ = Range::Pq;

static const PictureRow pictures[] = {
    // kind         family        size        interl. rate   scale aspect  range AFD box    captions
    {"main",        DVB,          720,  576,  true,   25,    1,    16, 9,  SDR,  0,  false, false},
    {"main",        ATSC,         1920, 1080, true,   30,    1,    16, 9,  SDR,  0,  false, false},
    {"main",        ISDB,         1920, 1080, true,   30000, 1001, 16, 9,  SDR,  0,  false, false},
    {"hd",          ALL,          1920, 1080, true,   25,    1,    16, 9,  SDR,  0,  false, false},
    {"ac3",         ALL,          1440, 1080, true,   25,    1,    16, 9,  SDR,  0,  false, false},
    {"multi",       DVB,          720,  576,  true,   25,    1,    4,  3,  SDR,  0,  false, false},
    {"multi",       ATSC,         720,  480,  true,   30,    1,    4,  3,  SDR,  0,  false, false},
    {"multi",       ISDB,         720,  480,  true,   30000, 1001, 4,  3,  SDR,  0,  false, false},
    {"uhd",         DVB,          3840, 2160, false,  50,    1,    16, 9,  HLG,  0,  false, false},
    {"uhd",         ATSC,         3840, 2160, false,  60,    1,    16, 9,  HLG,  0,  false, false},
    {"uhd",         ISDB,         3840, 2160, false,  60000, 1001, 16, 9,  HLG,  0,  false, false},
    {"progressive", ALL,          1280, 720,  false,  25,    1,    16, 9,  SDR,  0,  false, false},
    {"letterbox",   DVB,          720,  576,  true,   25,    1,    4,  3,  SDR,  12, true,  false},
    {"letterbox",   ATSC | ISDB,  720,  480,  true,   30,    1,    4,  3,  SDR,  12, true,  false},
    {"ac4",         DVB,          1920, 1080, false,  50,    1,    16, 9,  SDR,  0,  false, false},
    {"ac4",         ATSC | ISDB,  1920, 1080, false,  60,    1,    16, 9,  SDR,  0,  false, false},
    {"scrambled",   DVB,          1920, 1080, true,   25,    1,    16, 9,  SDR,  0,  false, false},
    {"scrambled",   ATSC | ISDB,  1920, 1080, true,   30,    1,    16, 9,  SDR,  0,  false, false},
    {"caption",     ALL,          720,  480,  true,   30,    1,    4,  3,  SDR,  0,  false, true},
    {"hdr10",       DVB,          3840, 2160, false,  50,    1,    16, 9,  PQ,   0,  false, false},
    {"hdr10",       ATSC,         3840, 2160, false,  60,    1,    16, 9,  PQ,   0,  false, false},
    {"hdr10",       ISDB,         3840, 2160, false,  60000, 1001, 16, 9,  PQ,   0,  false, false},
    {"changing",    DVB,          720,  576,  true,   25,    1,    4,  3,  SDR,  10, true,  false},
    {"changing",    DVB,          1280, 720,  false,  50,    1,    16, 9,  SDR,  8,  false, false},
    {"changing",    ATSC | ISDB,  720,  480,  true,   30,    1,    4,  3,  SDR,  10, true,  false},
    {"changing",    ATSC | ISDB,  1280, 720,  false,  60,    1,    16, 9,  SDR,  8,  false, false},
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
    unsigned index = multiplex.channels.front().index;
    // All of it is ultra high definition.
    if (multiplex.standard->system == 1024)
        return kinds[index % 2 == 0 ? 4 : 10];
    return kinds[index % (sizeof(kinds) / sizeof(kinds[0]))];
}

static VideoSpec videoSpec(const PictureRow& row, const Channel& channel) {
    VideoSpec spec = {};
    spec.format = channel.videoFormat;
    spec.width = row.width;
    spec.height = row.height;
    // MPEG-1 knows no fields.
    spec.interlaced = row.interlaced && channel.videoFormat != VIDEO_MPEG1;
    spec.rate = row.rate;
    spec.scale = row.scale;
    spec.aspectX = row.aspectX;
    spec.aspectY = row.aspectY;
    spec.range = channel.videoFormat == VIDEO_HEVC ? row.range : Range::Standard;
    spec.afd = row.afd;
    spec.letterbox = row.letterbox;
    spec.captions = row.captions ? serviceName(channel) : "";
    spec.tint = channel.index % 16;
    // A random access point at least every half second, and an even number of them. Big pictures
    // take long to code: they repeat soon. Captions run through the whole loop.
    bool big = row.width > 1920;
    if (row.scale != 1)
        spec.gop = 10;
    else
        spec.gop = row.rate / 5 * (big ? 1 : 2);
    spec.segment = spec.gop;
    if (row.captions)
        spec.segment *= 24;
    else if (!big)
        spec.segment *= row.rate > 30 && row.scale == 1 ? 2 : 4;
    return spec;
}

std::vector<VideoSpec> videoSpecs(const Multiplex& multiplex, const Channel& channel) {
    uint32_t family = 1u << static_cast<int>(multiplex.standard->family);
    std::vector<VideoSpec> specs;
    for (const PictureRow& row : pictures)
        if (std::string(row.kind) == kindOf(multiplex).name && (row.family & family) != 0)
            specs.push_back(videoSpec(row, channel));
    return specs;
}

std::vector<AudioSpec> audioSpecs(const Multiplex& multiplex, const Channel& channel,
                                  unsigned component) {
    const AudioComponent& audio = channel.audio[component];
    const Kind& kind = kindOf(multiplex);
    std::vector<AudioSpec> specs;
    for (int channels : {kind.audioChannels, kind.audioChannelsEnd}) {
        // MPEG layers I and II have no more than two.
        if (audio.description || audio.format == AUDIO_MPEG)
            channels = 2;
        if (specs.empty() || specs.back().channels != channels)
            specs.push_back({audio.format, channels, (channel.index * 4 + component) % 16});
    }
    return specs;
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
        if (channel.videoPid != 0) {
            std::vector<VideoSpec> specs = videoSpecs(multiplex, channel);
            for (const VideoSpec& spec : specs)
                unit = std::lcm(
                    unit, frameTicks(spec) * spec.segment * static_cast<int64_t>(specs.size()));
        }
        for (unsigned i = 0; i < channel.audio.size(); i++) {
            std::vector<AudioSpec> specs = audioSpecs(multiplex, channel, i);
            unit = std::lcm(unit, frameTicks(specs.front()) * static_cast<int64_t>(specs.size()));
        }
    }
    int64_t shortest = kindOf(multiplex).scrambled ? shortestScrambledLoop : shortestLoop;
    return (shortest + unit - 1) / unit * unit;
}

}  // namespace mkstreams

/*
 * What coded picture and sound are, as their coded data tell it.
 */
#ifndef SIMULATOR_MEDIA_FORMAT_H
#define SIMULATOR_MEDIA_FORMAT_H

#include <stdint.h>

#include <string>
#include <vector>

namespace sim {

enum class VideoCoding : uint8_t { mpeg1, mpeg2, mpeg4, h264, hevc };
enum class AudioCoding : uint8_t { mpeg, ac3, eac3, aac, heAac, ac4 };

/** A ratio in lowest terms; 0/1 when the coded data do not tell it. */
struct Ratio {
    uint32_t num = 0;
    uint32_t den = 1;

    bool operator==(const Ratio& other) const {
        return num == other.num && den == other.den;
    }
};

struct VideoFormat {
    VideoCoding coding = VideoCoding::mpeg2;
    /** Of the shown picture, in samples: what the coding crops is not counted. */
    uint16_t width = 0;
    uint16_t height = 0;
    /** Frames a second: 25/1 for 50 fields. */
    Ratio frameRate;
    bool interlaced = false;
    Ratio sampleAspect;
    /** Of the whole picture: 16/9, 4/3. */
    Ratio displayAspect;
    /** active_format of the active format description (ETSI TS 101 154, annex B); 0: none sent. */
    uint8_t activeFormat = 0;
    /** Code points of ISO/IEC 23091-2; 2: not told. Primaries 9 are those of BT.2020 and BT.2100;
     *  transfer 16 is PQ, 18 is HLG. */
    uint8_t primaries = 2;
    uint8_t transfer = 2;
    uint8_t matrix = 2;
    bool fullRange = false;
    uint8_t bitDepth = 8;
    /** Static HDR metadata: mastering display (SMPTE ST 2086), content light levels. */
    bool masteringDisplay = false;
    bool contentLight = false;

    bool operator==(const VideoFormat& other) const;
    bool operator!=(const VideoFormat& other) const {
        return !(*this == other);
    }
};

/** A presentation of AC-4 (ETSI TS 103 190-2). */
struct AudioPresentation {
    uint8_t channels = 0;
    bool lfe = false;
    /** ISO 639 as the stream tells it; empty when it does not. */
    std::string language;

    bool operator==(const AudioPresentation& other) const;
};

struct AudioFormat {
    /** As found: heAac is told of an AAC stream that signals spectral band replication. */
    AudioCoding coding = AudioCoding::mpeg;
    /** Full channels and low frequency channel: 6 for 5.1. */
    uint8_t channels = 0;
    bool lfe = false;
    /** Two independent programmes in two channels. */
    bool dualMono = false;
    /** Of what comes out, in Hz. */
    uint32_t samplingRate = 0;
    /** Bits a second; 0 when the coded data do not tell it. */
    uint32_t bitRate = 0;
    /** AC-4 alone; `channels` and `lfe` are then those of the first. */
    std::vector<AudioPresentation> presentations;

    bool operator==(const AudioFormat& other) const;
    bool operator!=(const AudioFormat& other) const {
        return !(*this == other);
    }
};

}  // namespace sim

#endif

// Seeds of media_fuzz: a few small pictures or frames of sound in each coding.
#include <stdio.h>

#include <string>

#include "tools/mkstreams/encoder.h"

using namespace mkstreams;

static bool write(const std::string& path, uint8_t coding, const Bytes& data) {
    FILE* file = fopen(path.c_str(), "wb");
    if (file == nullptr)
        return false;
    const uint8_t head[] = {coding, 0};
    bool whole = fwrite(head, 1, sizeof head, file) == sizeof head &&
                 fwrite(data.data(), 1, data.size(), file) == data.size();
    return fclose(file) == 0 && whole;
}

/** In the order of sim::VideoCoding and sim::AudioCoding. */
static const uint32_t videos[] = {VIDEO_MPEG1, VIDEO_MPEG2, VIDEO_MPEG4, VIDEO_H264, VIDEO_HEVC};
static const uint32_t sounds[] = {AUDIO_MPEG, AUDIO_AC3,   AUDIO_EAC3,
                                  AUDIO_AAC,  AUDIO_HEAAC, AUDIO_AC4};

int main(int argc, char** argv) {
    if (argc != 2)
        return 2;
    bool good = true;
    uint8_t coding = 0;
    std::string error;
    for (uint32_t format : videos) {
        VideoSpec spec = {};
        spec.format = format;
        spec.width = 128;
        spec.height = 96;
        spec.rate = 25;
        spec.scale = 1;
        spec.aspectX = 4;
        spec.aspectY = 3;
        spec.gop = 3;
        spec.segment = 6;
        spec.range = Range::Standard;
        spec.afd = 10;
        std::vector<CodedPicture> pictures;
        good = encodeVideo(spec, {}, &pictures, &error) && good;
        Bytes data;
        for (const CodedPicture& picture : pictures)
            data.insert(data.end(), picture.data.begin(), picture.data.end());
        good = write(argv[1] + ("/" + std::to_string(coding)), coding, data) && good;
        coding++;
    }
    for (uint32_t format : sounds) {
        std::vector<Bytes> frames;
        good = encodeAudio({format, 2, 1}, AacFraming::Latm, 4, &frames, &error) && good;
        Bytes data;
        for (const Bytes& frame : frames)
            data.insert(data.end(), frame.begin(), frame.end());
        good = write(argv[1] + ("/" + std::to_string(coding)), coding, data) && good;
        coding++;
    }
    if (!good)
        fprintf(stderr, "media_seeds: %s\n", error.c_str());
    return good ? 0 : 1;
}

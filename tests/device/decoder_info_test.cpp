// What decoders tell of a format that was found in coded data.
#include <gtest/gtest.h>

#include "simulator/av/decoder_state.h"

namespace {

QLX_VideoDecInfo told(const sim::VideoFormat& format) {
    sim::VideoIndex index;
    index.units.push_back({});
    index.changes.push_back({0, format});
    return sim::videoFamily().kind.ofUnit(sim::Decoder(), index, 0).video;
}

sim::VideoFormat hd() {
    sim::VideoFormat format;
    format.width = 1920;
    format.height = 1080;
    format.frameRate = {25, 1};
    format.displayAspect = {16, 9};
    return format;
}

TEST(SimDecoderInfo, FrameRates) {
    struct {
        uint32_t num;
        uint32_t den;
        uint32_t told;
    } rows[] = {{25, 1, 25}, {24000, 1001, 23}, {30000, 1001, 29}, {60000, 1001, 59}, {50, 1, 50}};
    for (const auto& row : rows) {
        sim::VideoFormat format = hd();
        format.frameRate = {row.num, row.den};
        EXPECT_EQ(told(format).uFrameRate, row.told) << row.num << "/" << row.den;
    }
}

TEST(SimDecoderInfo, ProportionsOfFrameAndPicture) {
    struct {
        uint32_t num;
        uint32_t den;
        uint8_t activeFormat;
        uint32_t frame;
        uint32_t picture;
    } rows[] = {
        {16, 9, 0, QLX_VIDEO_ASPECT_16_9, QLX_VIDEO_ASPECT_16_9},
        {4, 3, 0, QLX_VIDEO_ASPECT_4_3, QLX_VIDEO_ASPECT_4_3},
        {4, 3, 8, QLX_VIDEO_ASPECT_4_3, QLX_VIDEO_ASPECT_4_3},
        {4, 3, 10, QLX_VIDEO_ASPECT_4_3, QLX_VIDEO_ASPECT_16_9},
        {4, 3, 11, QLX_VIDEO_ASPECT_4_3, QLX_VIDEO_ASPECT_14_9},
        {16, 9, 9, QLX_VIDEO_ASPECT_16_9, QLX_VIDEO_ASPECT_4_3},
        {4, 3, 12, QLX_VIDEO_ASPECT_4_3, QLX_VIDEO_ASPECT_4_3},
        {221, 100, 0, QLX_VIDEO_ASPECT_221_100, QLX_VIDEO_ASPECT_221_100},
        {1, 1, 0, QLX_VIDEO_ASPECT_1_1, QLX_VIDEO_ASPECT_1_1},
        {5, 1, 0, QLX_VIDEO_ASPECT_OTHER, QLX_VIDEO_ASPECT_OTHER},
        // Not told in the coded data: that of the samples.
        {0, 1, 0, QLX_VIDEO_ASPECT_16_9, QLX_VIDEO_ASPECT_16_9},
    };
    for (const auto& row : rows) {
        sim::VideoFormat format = hd();
        format.displayAspect = {row.num, row.den};
        format.activeFormat = row.activeFormat;
        QLX_VideoDecInfo info = told(format);
        EXPECT_EQ(info.eFrameAspect, row.frame) << row.num << ":" << row.den;
        EXPECT_EQ(info.ePictureAspectRatio, row.picture) << int{row.activeFormat};
        EXPECT_EQ(info.eAFDType, row.activeFormat);
    }
}

TEST(SimDecoderInfo, ColoursAndDynamicRange) {
    struct {
        uint8_t primaries;
        uint8_t transfer;
        uint32_t toldPrimaries;
        uint32_t toldHdr;
    } rows[] = {
        {1, 1, QLX_VIDEO_COLOR_PRIMARIES_BT709, QLX_VIDEO_HDR_TYPE_SDR},
        {2, 2, QLX_VIDEO_COLOR_PRIMARIES_UNKNOWN, QLX_VIDEO_HDR_TYPE_SDR},
        {5, 6, QLX_VIDEO_COLOR_PRIMARIES_BT601_625, QLX_VIDEO_HDR_TYPE_SDR},
        {6, 6, QLX_VIDEO_COLOR_PRIMARIES_BT601_525, QLX_VIDEO_HDR_TYPE_SDR},
        {9, 14, QLX_VIDEO_COLOR_PRIMARIES_BT2100, QLX_VIDEO_HDR_TYPE_SDR},
        {9, 16, QLX_VIDEO_COLOR_PRIMARIES_BT2100, QLX_VIDEO_HDR_TYPE_HDR10},
        {9, 18, QLX_VIDEO_COLOR_PRIMARIES_BT2100, QLX_VIDEO_HDR_TYPE_HLG},
        {11, 1, QLX_VIDEO_COLOR_PRIMARIES_OTHER, QLX_VIDEO_HDR_TYPE_SDR},
    };
    for (const auto& row : rows) {
        sim::VideoFormat format = hd();
        format.primaries = row.primaries;
        format.transfer = row.transfer;
        EXPECT_EQ(told(format).eColorPrimariesType, row.toldPrimaries) << int{row.primaries};
        EXPECT_EQ(told(format).eHdrType, row.toldHdr) << int{row.transfer};
    }
}

TEST(SimDecoderInfo, CodingIsThatOfTheData) {
    struct {
        sim::VideoCoding coding;
        uint32_t told;
    } rows[] = {
        {sim::VideoCoding::mpeg1, 1}, {sim::VideoCoding::mpeg2, 2}, {sim::VideoCoding::mpeg4, 4},
        {sim::VideoCoding::h264, 16}, {sim::VideoCoding::hevc, 32},
    };
    for (const auto& row : rows) {
        sim::VideoFormat format = hd();
        format.coding = row.coding;
        EXPECT_EQ(told(format).eVideoFormat, row.told);
    }
    sim::VideoFormat format = hd();
    EXPECT_EQ(told(format).bSupportOverscan, 0u);
    format.height = 576;
    format.interlaced = true;
    EXPECT_EQ(told(format).bSupportOverscan, 1u);
    EXPECT_EQ(told(format).bInterlaced, 1u);
}

QLX_AudioDecInfo told(const sim::AudioFormat& format, const sim::AudioChoices& choices = {}) {
    sim::AudioIndex index;
    index.units.push_back({});
    index.changes.push_back({0, format});
    sim::Decoder decoder;
    decoder.audio = choices;
    return sim::audioFamily().kind.ofUnit(decoder, index, 0).audio;
}

TEST(SimDecoderInfo, SoundHasItsChannelsAndItsCoding) {
    struct {
        sim::AudioCoding coding;
        uint8_t channels;
        bool lfe;
        bool dualMono;
        uint32_t toldFormat;
        uint32_t toldChannels;
    } rows[] = {
        {sim::AudioCoding::mpeg, 2, false, false, 1, QLX_AUDIO_CHANNEL_2_0},
        {sim::AudioCoding::mpeg, 2, false, true, 1, QLX_AUDIO_CHANNEL_1_PLUS_1},
        {sim::AudioCoding::ac3, 6, true, false, 2, QLX_AUDIO_CHANNEL_3_2},
        {sim::AudioCoding::ac3, 5, false, false, 2, QLX_AUDIO_CHANNEL_3_2},
        {sim::AudioCoding::eac3, 8, true, false, 4, QLX_AUDIO_CHANNEL_OTHER},
        {sim::AudioCoding::aac, 1, false, false, 8, QLX_AUDIO_CHANNEL_1_0},
        {sim::AudioCoding::heAac, 3, true, false, 262144, QLX_AUDIO_CHANNEL_2_0},
        {sim::AudioCoding::ac4, 4, false, false, 2097152, QLX_AUDIO_CHANNEL_2_2},
    };
    for (const auto& row : rows) {
        sim::AudioFormat format;
        format.coding = row.coding;
        format.channels = row.channels;
        format.lfe = row.lfe;
        format.dualMono = row.dualMono;
        format.samplingRate = 44100;
        QLX_AudioDecInfo info = told(format);
        EXPECT_EQ(info.eAudioFormat, row.toldFormat);
        EXPECT_EQ(info.eChannelInfo, row.toldChannels) << row.toldFormat;
        EXPECT_EQ(info.bLfePresent, row.lfe);
        EXPECT_EQ(info.uAudioAttrB, 44100u);
        EXPECT_EQ(info.eAudioAttrC, row.channels);
    }
}

TEST(SimDecoderInfo, APresentationOfAC4IsChosenByNumberElseByLanguage) {
    sim::AudioFormat format;
    format.coding = sim::AudioCoding::ac4;
    format.channels = 2;
    format.samplingRate = 48000;
    format.presentations = {
        {2, false, "eng"}, {1, false, "spa"}, {6, true, "eng"}, {5, false, "zho"}};
    struct {
        int32_t number;
        int32_t language;
        uint32_t channels;
    } rows[] = {
        {-1, -1, 2}, {2, -1, 6},  {2, 4, 6},  {-1, 4, 1},
        {-1, 1, 2},  {-1, 19, 5}, {-1, 2, 2}, {17, -1, 2},
    };
    for (const auto& row : rows) {
        sim::AudioChoices choices;
        choices.ac4Presentation = row.number;
        choices.ac4Language = row.language;
        EXPECT_EQ(told(format, choices).eAudioAttrC, row.channels)
            << row.number << " " << row.language;
    }
    sim::AudioChoices last;
    last.ac4Presentation = 2;
    EXPECT_EQ(told(format, last).bLfePresent, 1u);
    EXPECT_EQ(told(format, last).eChannelInfo, static_cast<uint32_t>(QLX_AUDIO_CHANNEL_3_2));
}

}  // namespace

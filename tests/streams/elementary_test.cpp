// Picture, sound and the rest as FFmpeg's demultiplexer and decoders see them.
#include <gtest/gtest.h>
#include <math.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <set>

#include "tests/streams/decoded.h"
#include "tests/streams/made_streams.h"
#include "tools/mkstreams/content.h"

namespace {

using namespace mkstreams;

AVCodecID videoCodec(uint32_t format) {
    switch (format) {
        case VIDEO_MPEG1:
            return AV_CODEC_ID_MPEG1VIDEO;
        case VIDEO_MPEG4:
            return AV_CODEC_ID_MPEG4;
        case VIDEO_H264:
            return AV_CODEC_ID_H264;
        case VIDEO_HEVC:
            return AV_CODEC_ID_HEVC;
        default:
            return AV_CODEC_ID_MPEG2VIDEO;
    }
}

/** Time stamps are as far apart as frames last, over a loop's end too. */
void expectEvenTimes(std::vector<int64_t> times, int64_t frame27MHz) {
    std::sort(times.begin(), times.end());
    for (size_t i = 1; i < times.size(); i++)
        ASSERT_LE(std::abs((times[i] - times[i - 1]) * 300 - frame27MHz), 300) << i;
}

/** The part of the time stamps that belongs to part `i` of `count` of a loop. */
std::vector<int64_t> partOf(std::vector<int64_t> times, size_t i, size_t count, int64_t loop) {
    std::sort(times.begin(), times.end());
    std::vector<int64_t> part;
    for (int64_t time : times) {
        auto place =
            static_cast<size_t>((time - times.front()) * 300 * static_cast<int64_t>(count) / loop);
        if (place == i)
            part.push_back(time);
    }
    return part;
}

/** What a decoder should say of pictures like these. */
Shape shapeOf(const VideoSpec& spec) {
    Shape shape = {};
    shape.width = spec.width;
    shape.height = spec.height;
    av_reduce(&shape.aspect.num, &shape.aspect.den, spec.aspectX * spec.height,
              spec.aspectY * spec.width, 1000);
    shape.interlaced = spec.interlaced;
    shape.transfer = AVCOL_TRC_BT709;
    shape.primaries = AVCOL_PRI_BT709;
    if (spec.height <= 576) {
        shape.transfer = AVCOL_TRC_SMPTE170M;
        shape.primaries = spec.height == 576 ? AVCOL_PRI_BT470BG : AVCOL_PRI_SMPTE170M;
    }
    shape.depth = 8;
    if (spec.range != Range::Standard) {
        shape.transfer = spec.range == Range::Pq ? AVCOL_TRC_SMPTE2084 : AVCOL_TRC_ARIB_STD_B67;
        shape.primaries = AVCOL_PRI_BT2020;
        shape.depth = 10;
        shape.mastering = true;
        shape.lightLevel = true;
    }
    shape.activeFormat = static_cast<int>(spec.afd);
    shape.captions = !spec.captions.empty();
    return shape;
}

class Elementary : public testing::TestWithParam<const char*> {};

TEST_P(Elementary, VideoIsWhatTheLineUpSays) {
    const Multiplex& multiplex = multiplexOf(GetParam());
    const Channel& channel = multiplex.channels.front();
    std::vector<VideoSpec> specs = videoSpecs(multiplex, channel);
    Streams streams = decode(streamOf(GetParam()).packets);
    const Decoded& video = streams[channel.videoPid];
    EXPECT_EQ(video.codec, videoCodec(specs[0].format));
    EXPECT_EQ(video.errors, 0);
    EXPECT_GT(video.longestGap, 0);
    EXPECT_LE(video.longestGap, 90000 / 2);
    ASSERT_EQ(video.shapes.size(), specs.size());
    int64_t loop = loopTicks(multiplex);
    auto parts = static_cast<int64_t>(specs.size());
    for (size_t i = 0; i < specs.size(); i++) {
        SCOPED_TRACE(i);
        EXPECT_TRUE(video.shapes[i].shape == shapeOf(specs[i]));
        EXPECT_EQ(video.shapes[i].frames, loop / parts / frameTicks(specs[i]));
        std::vector<int64_t> times = partOf(video.times, i, specs.size(), loop);
        EXPECT_EQ(static_cast<int64_t>(times.size()), loop / parts / frameTicks(specs[i]));
        expectEvenTimes(times, frameTicks(specs[i]));
    }
}

/** How strong a tone is in samples, of 1 for a full one of 1 (Goertzel's algorithm). */
double strengthOf(double frequency, const std::vector<float>& samples) {
    double step = 2 * M_PI * frequency / 48000;
    double last = 0;
    double before = 0;
    for (float sample : samples) {
        double next = sample + 2 * cos(step) * last - before;
        before = last;
        last = next;
    }
    double power = last * last + before * before - 2 * cos(step) * last * before;
    return 2 * sqrt(power) / static_cast<double>(samples.size());
}

/** Each channel sounds with a tone of its own. */
void expectTones(const AudioSpec& spec, const Decoded& sound) {
    double base = 375.0 * (1 + spec.tone % 5);
    const double tones[] = {base, 2 * base, 3 * base, 93.75, 4 * base, 5 * base};
    for (size_t i = 0; i < sound.samples.size(); i++) {
        // The first frames of a decoder, and the encoder's settling, are left out.
        std::vector<float> steady(sound.samples[i].end() - 48000, sound.samples[i].end());
        for (size_t other = 0; other < sound.samples.size(); other++) {
            double strength = strengthOf(tones[other], steady);
            if (other == i) {
                EXPECT_NEAR(strength, 0.1, 0.03) << "channel " << i;
            } else {
                EXPECT_LT(strength, 0.01) << "channel " << i << ", tone of " << other;
            }
        }
    }
}

TEST_P(Elementary, SoundIsWhatTheLineUpSays) {
    const Multiplex& multiplex = multiplexOf(GetParam());
    const Channel& channel = multiplex.channels.front();
    Streams streams = decode(streamOf(GetParam()).packets);
    for (unsigned i = 0; i < channel.audio.size(); i++) {
        SCOPED_TRACE(i);
        std::vector<AudioSpec> specs = audioSpecs(multiplex, channel, i);
        const Decoded& sound = streams[channel.audio[i].pid];
        int64_t wanted = loopTicks(multiplex) / frameTicks(specs[0]);
        EXPECT_EQ(static_cast<int64_t>(sound.times.size()), wanted);
        expectEvenTimes(sound.times, frameTicks(specs[0]));
        if (specs[0].format == AUDIO_AC4)
            continue;
        EXPECT_EQ(sound.errors, 0);
        ASSERT_EQ(sound.shapes.size(), specs.size());
        for (size_t part = 0; part < specs.size(); part++) {
            EXPECT_EQ(sound.shapes[part].frames, wanted / static_cast<int64_t>(specs.size()));
            EXPECT_EQ(sound.shapes[part].shape.rate, 48000);
            EXPECT_EQ(sound.shapes[part].shape.channels, specs[part].channels);
        }
        expectTones(specs.back(), sound);
    }
}

/** Receivers that read a header out of the first packet find all of it there. */
TEST_P(Elementary, HeadersLieInOnePacket) {
    std::set<unsigned> pids;
    for (const Channel& channel : multiplexOf(GetParam()).channels) {
        pids.insert(channel.videoPid);
        for (const AudioComponent& audio : channel.audio)
            pids.insert(audio.pid);
        pids.insert(channel.subtitlePids.begin(), channel.subtitlePids.end());
        pids.insert(channel.otherPids.begin(), channel.otherPids.end());
    }
    size_t headers = 0;
    for (const PacketView& packet : packetsOf(streamOf(GetParam()).packets)) {
        if (pids.count(packet.pid()) == 0 || !packet.unitStart())
            continue;
        const uint8_t* pes = packet.payload();
        ASSERT_GE(packet.payloadBytes(), 9u) << packet.pid();
        ASSERT_EQ(pes[0] << 16 | pes[1] << 8 | pes[2], 1);
        EXPECT_GE(packet.payloadBytes(), 9u + pes[8]) << packet.pid();
        headers++;
    }
    EXPECT_GT(headers, 100u);
}

INSTANTIATE_TEST_SUITE_P(LineUp, Elementary,
                         testing::Values("dvbt_main.ts", "dvbt_hd.ts", "dvb_ac3.ts", "dvb_multi.ts",
                                         "dvb_progressive.ts", "dvb_letterbox.ts", "dvb_ac4.ts",
                                         "dvb_caption.ts", "dvb_changing.ts", "atsct_main.ts",
                                         "atsc_caption.ts", "atsc_changing.ts", "isdb_multi.ts"),
                         [](const auto& row) {
                             std::string name = row.param;
                             return name.substr(0, name.find('.'));
                         });

/** Decoding big pictures takes long: the first ones tell enough. */
TEST(Elementary, UltraHighDefinitionHasItsRangeAndMetadata) {
    for (const char* file : {"dvb_uhd.ts", "dvb_hdr10.ts"}) {
        SCOPED_TRACE(file);
        const Multiplex& multiplex = multiplexOf(file);
        const Channel& channel = multiplex.channels.front();
        Bytes bytes = streamOf(file).packets;
        bytes.resize(bytes.size() / packetSize / 10 * packetSize);
        Streams streams = decode(bytes);
        const Decoded& video = streams[channel.videoPid];
        EXPECT_EQ(video.codec, AV_CODEC_ID_HEVC);
        ASSERT_EQ(video.shapes.size(), 1u);
        EXPECT_TRUE(video.shapes[0].shape == shapeOf(videoSpecs(multiplex, channel).front()));
        EXPECT_GT(video.frames, 10);
    }
}

/** What MediaInfo says of an elementary stream: the lines of "name : value", by name. */
std::map<std::string, std::set<std::string>> mediaInfoOf(const Bytes& bytes) {
    char name[] = "/tmp/elementary.XXXXXX";
    int file = mkstemp(name);
    EXPECT_GE(file, 0);
    EXPECT_EQ(write(file, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    close(file);
    FILE* pipe = popen((std::string("mediainfo --Full ") + name).c_str(), "r");
    EXPECT_NE(pipe, nullptr);
    std::map<std::string, std::set<std::string>> found;
    char line[256];
    while (fgets(line, sizeof(line), pipe) != nullptr) {
        std::string text = line;
        size_t colon = text.find(": ");
        if (colon != std::string::npos)
            found[text.substr(0, text.find_last_not_of(' ', colon - 1) + 1)].insert(
                text.substr(colon + 2, text.size() - colon - 3));
    }
    EXPECT_EQ(pclose(pipe), 0);
    unlink(name);
    return found;
}

/** No decoder of the distribution takes AC-4; its table of contents is told by MediaInfo. */
TEST(Elementary, PresentationsOfAc4) {
    const Channel& channel = multiplexOf("dvb_ac4.ts").channels.front();
    Bytes sound;
    for (const PacketView& packet : packetsOf(streamOf("dvb_ac4.ts").packets)) {
        if (packet.pid() != channel.audio[0].pid)
            continue;
        // Headers of PES packets lie whole at their begin.
        size_t header = packet.unitStart() ? 9u + packet.payload()[8] : 0;
        sound.insert(sound.end(), packet.payload() + header, packet.at + packetSize);
    }
    auto told = mediaInfoOf(sound);
    EXPECT_EQ(told["Format"].count("AC-4"), 1u);
    EXPECT_EQ(told["Samples per frame"].count("2048"), 1u);
    EXPECT_EQ(told["Sampling rate"].count("48000"), 1u);
    EXPECT_EQ(told["Number of presentations"].count("12"), 1u);
    const char* const languages[] = {"English", "Spanish", "Chinese"};
    for (int i = 0; i < 11; i++)
        EXPECT_EQ(told["Presentation #" + std::to_string(i + 1)],
                  (std::set<std::string>{std::string("Stereo Main (") + languages[i % 3] + ")"}));
    EXPECT_EQ(told["Presentation #12"], (std::set<std::string>{"5.1 Main (English)"}));
    EXPECT_EQ(told["Channel layout"].count("L R C LFE Ls Rs"), 1u);
}

TEST(Elementary, SubtitlesTeletextAndCaptionsAreKnown) {
    const Channel& european = multiplexOf("dvb_multi.ts").channels.front();
    Streams dvb = decode(streamOf("dvb_multi.ts").packets);
    for (uint16_t pid : european.subtitlePids) {
        EXPECT_EQ(dvb[pid].codec, AV_CODEC_ID_DVB_SUBTITLE);
        EXPECT_EQ(dvb[pid].times.size(), 32u);
    }
    EXPECT_EQ(dvb[european.otherPids[0]].codec, AV_CODEC_ID_DVB_TELETEXT);
    EXPECT_EQ(dvb[european.otherPids[0]].times.size(), 64u);
    const Channel& japanese = multiplexOf("isdb_multi.ts").channels.front();
    Streams isdb = decode(streamOf("isdb_multi.ts").packets);
    for (uint16_t pid : japanese.subtitlePids)
        EXPECT_EQ(isdb[pid].codec, AV_CODEC_ID_ARIB_CAPTION);
}

/** What a decoder makes of pictures that are lost or torn. */
TEST(Elementary, DamagedPicturesOfVariants) {
    const Multiplex& multiplex = multiplexOf("dvbt_hd.ts");
    const Channel& channel = multiplex.channels.front();
    auto whole =
        static_cast<int>(loopTicks(multiplex) / frameTicks(videoSpecs(multiplex, channel)[0]));
    Streams late = decode(variantOf("no_access"));
    EXPECT_NEAR(late[channel.videoPid].frames, whole / 2, 12);
    EXPECT_EQ(late[channel.videoPid].errors, 0);
    Streams torn = decode(variantOf("pictures_damaged"));
    EXPECT_GT(torn[channel.videoPid].frames, whole / 2);
    EXPECT_GT(torn[channel.videoPid].errors, 0);
    // All else is as it was.
    for (Streams* streams : {&late, &torn}) {
        EXPECT_EQ((*streams)[channel.audio[0].pid].frames, 450);
        EXPECT_EQ((*streams)[channel.audio[0].pid].errors, 0);
    }
}

/** A file played again with its time stamps carried on decodes without a seam. */
TEST(Elementary, LoopsJoin) {
    const TransportStream& once = streamOf("dvbt_main.ts");
    Bytes twice = once.packets;
    append(twice, once.packets);
    const Multiplex& multiplex = multiplexOf("dvbt_main.ts");
    const Channel& channel = multiplex.channels.front();
    Streams streams = decode(twice);
    int64_t loop = loopTicks(multiplex);
    const Decoded& video = streams[channel.videoPid];
    const Decoded& sound = streams[channel.audio[0].pid];
    int64_t picture = frameTicks(videoSpecs(multiplex, channel).front());
    int64_t tone = frameTicks(audioSpecs(multiplex, channel, 0).front());
    EXPECT_EQ(video.frames, 2 * loop / picture);
    EXPECT_EQ(sound.frames, 2 * loop / tone);
    EXPECT_EQ(video.errors + sound.errors, 0);
    for (const Decoded* stream : {&video, &sound}) {
        size_t half = stream->times.size() / 2;
        for (size_t i = 0; i < half; i++)
            ASSERT_EQ(stream->times[i], stream->times[half + i]);
        // The first of the next loop, carried on, follows the last by one frame.
        std::vector<int64_t> carried(stream->times.begin(),
                                     stream->times.begin() + static_cast<ptrdiff_t>(half));
        for (size_t i = 0; i < half; i++)
            carried.push_back(stream->times[i] + loop / 300);
        expectEvenTimes(carried, stream == &video ? picture : tone);
    }
}

}  // namespace

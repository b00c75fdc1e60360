// What the simulated device's decoders find in the made streams: formats against the line-up, time
// stamps, pictures and sound against FFmpeg's own decoding of the whole file; damages; and the
// files in which it is kept.
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <set>

#include "simulator/media/es_index.h"
#include "simulator/media/index_file.h"
#include "simulator/media/picture.h"
#include "tests/streams/decoded.h"
#include "tests/streams/made_streams.h"
#include "tools/mkstreams/content.h"

namespace {

using namespace mkstreams;
namespace fs = std::filesystem;

sim::VideoCoding codingOf(uint32_t format) {
    switch (format) {
        case VIDEO_MPEG1:
            return sim::VideoCoding::mpeg1;
        case VIDEO_MPEG4:
            return sim::VideoCoding::mpeg4;
        case VIDEO_H264:
            return sim::VideoCoding::h264;
        case VIDEO_HEVC:
            return sim::VideoCoding::hevc;
        default:
            return sim::VideoCoding::mpeg2;
    }
}

sim::AudioCoding soundCodingOf(uint32_t format) {
    switch (format) {
        case AUDIO_AC3:
            return sim::AudioCoding::ac3;
        case AUDIO_EAC3:
            return sim::AudioCoding::eac3;
        case AUDIO_AAC:
            return sim::AudioCoding::aac;
        case AUDIO_HEAAC:
            return sim::AudioCoding::heAac;
        case AUDIO_AC4:
            return sim::AudioCoding::ac4;
        default:
            return sim::AudioCoding::mpeg;
    }
}

sim::TsStreamPtr asStream(const Bytes& bytes, int64_t ticks, sim::TsOrigin origin = {}) {
    return std::make_shared<const sim::TsStream>(bytes, static_cast<uint32_t>(ticks),
                                                 std::vector<sim::TsTableChange>(), origin);
}

/** The stream of a file, without an index beside it; a part of it when that is enough. */
sim::TsStreamPtr freshStream(const std::string& file, size_t part = 1) {
    const TransportStream& made = streamOf(file);
    Bytes bytes = made.packets;
    bytes.resize(bytes.size() / packetSize / part * packetSize);
    return asStream(bytes, made.packetTicks);
}

size_t count(const sim::EsUnits& index, uint8_t flags) {
    return static_cast<size_t>(
        std::count_if(index.units.begin(), index.units.end(),
                      [&](const sim::AccessUnit& unit) { return (unit.flags & flags) == flags; }));
}

void expectFormat(const VideoSpec& spec, const sim::VideoFormat& format) {
    EXPECT_EQ(format.coding, codingOf(spec.format));
    EXPECT_EQ(format.width, spec.width);
    EXPECT_EQ(format.height, spec.height);
    EXPECT_EQ(format.interlaced, spec.interlaced);
    EXPECT_EQ(format.frameRate.num, static_cast<uint32_t>(spec.rate));
    EXPECT_EQ(format.frameRate.den, static_cast<uint32_t>(spec.scale));
    EXPECT_EQ(format.displayAspect.num, static_cast<uint32_t>(spec.aspectX));
    EXPECT_EQ(format.displayAspect.den, static_cast<uint32_t>(spec.aspectY));
    EXPECT_EQ(format.activeFormat, spec.afd);
    bool wide = spec.range != Range::Standard;
    EXPECT_EQ(format.bitDepth, wide ? 10 : 8);
    EXPECT_EQ(format.primaries == 9, wide);
    EXPECT_EQ(format.transfer == 18, spec.range == Range::Hlg);
    EXPECT_EQ(format.transfer == 16, spec.range == Range::Pq);
    EXPECT_EQ(format.masteringDisplay, wide);
    EXPECT_EQ(format.contentLight, wide);
}

class Decoders : public testing::TestWithParam<const char*> {};

}  // namespace

TEST_P(Decoders, FindTheFormatsOfTheLineUp) {
    const Multiplex& multiplex = multiplexOf(GetParam());
    const Channel& channel = multiplex.channels.front();
    std::vector<VideoSpec> specs = videoSpecs(multiplex, channel);
    bool big = specs[0].width > 1920;
    sim::TsStreamPtr stream = freshStream(GetParam(), big ? 10 : 1);
    auto video = videoIndex(stream, channel.videoPid, codingOf(channel.videoFormat));
    ASSERT_NE(video, nullptr);
    ASSERT_EQ(video->changes.size(), specs.size());
    for (size_t i = 0; i < specs.size(); i++) {
        expectFormat(specs[i], video->changes[i].format);
        uint32_t at = video->changes[i].unit;
        EXPECT_EQ((video->units[at].pts - video->units[0].pts) * ticksPer90k * specs.size(),
                  static_cast<uint64_t>(loopTicks(multiplex)) * i);
        EXPECT_EQ((video->units[at].flags & sim::unit_newFormat) != 0, specs.size() > 1);
    }
    EXPECT_EQ(count(*video, sim::unit_damaged), 0u);
    EXPECT_EQ(count(*video, sim::unit_access), count(*video, sim::unit_decoded));
    for (unsigned i = 0; i < channel.audio.size() && !big; i++) {
        SCOPED_TRACE(channel.audio[i].pid);
        std::vector<AudioSpec> sounds = audioSpecs(multiplex, channel, i);
        auto sound =
            audioIndex(stream, channel.audio[i].pid, soundCodingOf(channel.audio[i].format));
        ASSERT_NE(sound, nullptr);
        ASSERT_EQ(sound->changes.size(), sounds.size());
        for (size_t k = 0; k < sounds.size(); k++) {
            const sim::AudioFormat& format = sound->changes[k].format;
            EXPECT_EQ(format.coding, soundCodingOf(channel.audio[i].format));
            EXPECT_EQ(format.channels, sounds[k].channels);
            EXPECT_EQ(format.lfe, sounds[k].channels == 6);
            EXPECT_EQ(format.samplingRate, 48000u);
        }
        EXPECT_EQ(count(*sound, sim::unit_decoded), sound->units.size());
    }
}

INSTANTIATE_TEST_SUITE_P(LineUp, Decoders,
                         testing::Values("dvbt_main.ts", "dvbt_hd.ts", "dvb_ac3.ts", "dvb_uhd.ts",
                                         "dvb_hdr10.ts", "dvb_progressive.ts", "dvb_letterbox.ts",
                                         "dvb_ac4.ts", "dvb_changing.ts", "atsct_main.ts",
                                         "isdb_multi.ts"));

TEST(DecoderIndex, TimesAreThoseOfTheFile) {
    for (const char* file : {"dvbt_main.ts", "dvbt_hd.ts"}) {
        SCOPED_TRACE(file);
        const Channel& channel = multiplexOf(file).channels.front();
        Streams decoded = decode(streamOf(file).packets);
        sim::TsStreamPtr stream = freshStream(file);
        auto video = videoIndex(stream, channel.videoPid, codingOf(channel.videoFormat));
        auto sound =
            audioIndex(stream, channel.audio[0].pid, soundCodingOf(channel.audio[0].format));
        auto expectTimes = [](const sim::EsUnits& index, const std::vector<int64_t>& times) {
            std::vector<int64_t> found;
            for (const sim::AccessUnit& unit : index.units)
                found.push_back(static_cast<int64_t>(unit.pts));
            EXPECT_EQ(found, times);
        };
        expectTimes(*video, decoded[channel.videoPid].times);
        expectTimes(*sound, decoded[channel.audio[0].pid].times);
        // What is sent has come before it is shown, and not long before.
        auto moment = nextUnit(*stream, *video, 0, 0);
        for (size_t i = 0; i < 2 * video->units.size(); i++) {
            EXPECT_LT(moment->arrivedUs, moment->shownUs);
            EXPECT_LT(moment->shownUs - moment->arrivedUs, 2000000);
            moment = nextUnit(*stream, *video, moment->beginUs + 1, 0);
        }
    }
}

TEST(DecoderIndex, PresentationsOfAc4) {
    const Channel& channel = multiplexOf("dvb_ac4.ts").channels.front();
    auto index = audioIndex(freshStream("dvb_ac4.ts"), channel.audio[0].pid, sim::AudioCoding::ac4);
    ASSERT_EQ(index->changes.size(), 1u);
    const auto& presentations = index->changes[0].format.presentations;
    ASSERT_EQ(presentations.size(), 12u);
    const char* const languages[] = {"en", "es", "zh"};
    for (size_t i = 0; i < 11; i++) {
        EXPECT_EQ(presentations[i].channels, 2);
        EXPECT_EQ(presentations[i].language, languages[i % 3]) << i;
    }
    EXPECT_EQ(presentations[11].channels, 6);
    EXPECT_TRUE(presentations[11].lfe);
    EXPECT_EQ(presentations[11].language, "en");
    EXPECT_TRUE(std::all_of(index->units.begin(), index->units.end(), [](const auto& unit) {
        return unit.pts != sim::noStamp && unit.flags == (sim::unit_access | sim::unit_decoded);
    }));
}

/** A decoder that is started in another coding has no picture and no sound. */
TEST(DecoderIndex, OtherCodingsDecodeNothing) {
    using sim::AudioCoding;
    using sim::VideoCoding;
    const VideoCoding videos[] = {VideoCoding::mpeg1, VideoCoding::mpeg2, VideoCoding::mpeg4,
                                  VideoCoding::h264, VideoCoding::hevc};
    const AudioCoding sounds[] = {AudioCoding::mpeg, AudioCoding::ac3,   AudioCoding::eac3,
                                  AudioCoding::aac,  AudioCoding::heAac, AudioCoding::ac4};
    for (const char* file : {"dvbt_main.ts", "dvb_ac3.ts", "dvbt_hd.ts", "dvb_ac4.ts"}) {
        SCOPED_TRACE(file);
        const Channel& channel = multiplexOf(file).channels.front();
        sim::TsStreamPtr stream = freshStream(file, 4);
        for (VideoCoding coding : videos) {
            auto index = videoIndex(stream, channel.videoPid, coding);
            EXPECT_EQ(index->changes.empty(), coding != codingOf(channel.videoFormat))
                << static_cast<int>(coding);
            EXPECT_TRUE(videoIndex(stream, channel.audio[0].pid, coding)->changes.empty());
            EXPECT_TRUE(videoIndex(stream, 8188, coding)->units.empty());
        }
        for (AudioCoding coding : sounds) {
            AudioCoding own = soundCodingOf(channel.audio[0].format);
            // E-AC-3 decoders take AC-3 too, and AAC has two words for one coding.
            auto kind = [](AudioCoding one) {
                return one == AudioCoding::heAac  ? AudioCoding::aac
                       : one == AudioCoding::eac3 ? AudioCoding::ac3
                                                  : one;
            };
            EXPECT_EQ(audioIndex(stream, channel.audio[0].pid, coding)->changes.empty(),
                      kind(coding) != kind(own))
                << static_cast<int>(coding);
            EXPECT_TRUE(audioIndex(stream, 8188, coding)->units.empty());
        }
    }
}

TEST(DecoderIndex, LostAccessPointsAndTornPicturesAreTold) {
    const Channel& channel = multiplexOf("dvbt_hd.ts").channels.front();
    int64_t ticks = streamOf("dvbt_hd.ts").packetTicks;
    auto indexOf = [&](const Bytes& bytes) {
        return videoIndex(asStream(bytes, ticks), channel.videoPid, codingOf(channel.videoFormat));
    };
    auto good = indexOf(streamOf("dvbt_hd.ts").packets);
    auto noAccess = indexOf(variantOf("no_access"));
    size_t points = count(*good, sim::unit_decoded);
    EXPECT_NEAR(static_cast<double>(count(*noAccess, sim::unit_decoded)),
                static_cast<double>(points) / 2, 1);
    sim::TsStreamPtr stream = asStream(variantOf("no_access"), ticks);
    int64_t half = stream->endUs(stream->packetCount()) / 2;
    auto first = nextUnit(*stream, *noAccess, 0, sim::unit_access | sim::unit_decoded);
    ASSERT_TRUE(first.has_value());
    EXPECT_NEAR(static_cast<double>(first->beginUs), static_cast<double>(half), 1e6);

    auto damaged = indexOf(variantOf("pictures_damaged"));
    EXPECT_GE(count(*damaged, sim::unit_damaged), points / 10);
    EXPECT_LT(count(*damaged, sim::unit_decoded), points);
    EXPECT_GT(count(*damaged, sim::unit_decoded), points / 2);
    EXPECT_EQ(count(*damaged, sim::unit_decoded | sim::unit_damaged), 0u);
    EXPECT_TRUE(damaged->changes.size() == 1 &&
                damaged->changes[0].format == good->changes[0].format);
}

/** Whatever happens to a stream: no crash, no format that nobody sends. */
TEST(DecoderIndex, BytesChangedAnywhereAndStreamsCutAnywhere) {
    std::mt19937 random(1);
    for (const char* file : {"dvbt_main.ts", "dvbt_hd.ts", "dvb_ac3.ts", "dvb_ac4.ts"}) {
        SCOPED_TRACE(file);
        const Channel& channel = multiplexOf(file).channels.front();
        const TransportStream& made = streamOf(file);
        sim::TsStreamPtr good = freshStream(file, 8);
        auto video = videoIndex(good, channel.videoPid, codingOf(channel.videoFormat));
        for (size_t changes : {1000u, 20000u}) {
            Bytes bytes = made.packets;
            bytes.resize(bytes.size() / packetSize / 8 * packetSize - 77);
            for (size_t i = 0; i < changes; i++)
                bytes[random() % bytes.size()] = static_cast<uint8_t>(random());
            sim::TsStreamPtr stream = asStream(bytes, made.packetTicks);
            auto index = videoIndex(stream, channel.videoPid, codingOf(channel.videoFormat));
            ASSERT_NE(index, nullptr);
            EXPECT_LT(count(*index, sim::unit_decoded), count(*video, sim::unit_decoded));
            audioIndex(stream, channel.audio[0].pid, soundCodingOf(channel.audio[0].format));
            decodePicture(stream, channel.videoPid, codingOf(channel.videoFormat), 0, 900000);
            decodeSound(stream, channel.audio[0].pid, soundCodingOf(channel.audio[0].format),
                        500000, 300000);
        }
    }
}

/* Pictures and sound --------------------------------------------------------------------------- */

namespace {

/** Samples that differ between two pictures. */
size_t different(const sim::Picture& a, const sim::Picture& b) {
    if (a.rgb.size() != b.rgb.size())
        return SIZE_MAX;
    size_t found = 0;
    for (size_t i = 0; i < a.rgb.size(); i++)
        found += a.rgb[i] != b.rgb[i] ? 1 : 0;
    return found;
}

}  // namespace

TEST(DecoderPicture, IsTheOneThatFFmpegDecodesForThatTime) {
    for (const char* file : {"dvbt_main.ts", "dvbt_hd.ts", "dvb_changing.ts"}) {
        SCOPED_TRACE(file);
        const Channel& channel = multiplexOf(file).channels.front();
        sim::VideoCoding coding = codingOf(channel.videoFormat);
        sim::TsStreamPtr stream = freshStream(file);
        auto index = videoIndex(stream, channel.videoPid, coding);
        int64_t loopUs = stream->endUs(stream->packetCount() - 1);
        EXPECT_TRUE(decodePicture(stream, channel.videoPid, coding, 0, 1000).rgb.empty());
        std::map<int64_t, sim::Picture> seen;  // by time stamp
        std::set<int64_t> stamps;
        for (int64_t atUs : {loopUs / 5, loopUs / 2 + 40000, loopUs - 100000, loopUs * 7 / 2}) {
            auto shown = unitShown(*stream, *index, 0, atUs);
            ASSERT_TRUE(shown.has_value());
            auto stamp = static_cast<int64_t>(index->units[shown->unit].pts);
            sim::Picture& picture = seen[stamp];
            picture = decodePicture(stream, channel.videoPid, coding, 0, atUs);
            const sim::VideoFormat* format = index->formatAt(shown->unit);
            EXPECT_EQ(picture.width, format->width);
            EXPECT_EQ(picture.height, format->height);
            stamps.insert(stamp);
            // The neighbour's box and squares are others.
            stamps.insert(stamp + 90000 * format->frameRate.den / format->frameRate.num);
        }
        auto pictures = decodedPictures(streamFolder() + file, channel.videoPid, stamps);
        for (const auto& [stamp, picture] : seen) {
            EXPECT_EQ(different(picture, pictures[stamp]), 0u) << stamp;
            auto next = pictures.upper_bound(stamp);
            EXPECT_TRUE(next == pictures.end() || different(picture, next->second) > 100) << stamp;
        }
    }
}

TEST(DecoderSound, IsWhatFFmpegDecodesForThatTime) {
    for (const char* file : {"atsct_main.ts", "dvbt_hd.ts"}) {
        SCOPED_TRACE(file);
        const Channel& channel = multiplexOf(file).channels.front();
        uint16_t pid = channel.audio[0].pid;
        sim::AudioCoding coding = soundCodingOf(channel.audio[0].format);
        sim::TsStreamPtr stream = freshStream(file);
        Streams decoded = decode(streamOf(file).packets);
        const auto& samples = decoded[pid].samples;
        ASSERT_EQ(samples.size(), 2u);
        int64_t firstUs = decoded[pid].times.front() * 100 / 9;
        for (int64_t fromUs : {int64_t{1500000}, int64_t{4321000}}) {
            sim::Sound sound = decodeSound(stream, pid, coding, fromUs, 200000);
            ASSERT_EQ(sound.samples.size(), 2u * 9600);
            auto from = static_cast<size_t>((fromUs - firstUs) * 48 / 1000);
            // To the sample, but for the rounding of times.
            double least = 1e9;
            for (size_t shift : {0u, 1u, 2u}) {
                double worst = 0;
                for (size_t i = 0; i < 9600; i++) {
                    for (size_t side : {0u, 1u}) {
                        double wanted = samples[side][from + i + shift - 1] * 32768.0;
                        worst = std::max(worst, std::abs(sound.samples[i * 2 + side] - wanted));
                    }
                }
                least = std::min(least, worst);
            }
            EXPECT_LT(least, 3);
            EXPECT_GT(*std::max_element(sound.samples.begin(), sound.samples.end()), 500);
        }
        sim::Sound before = decodeSound(stream, pid, coding, 0, 100000);
        EXPECT_EQ(before.samples, std::vector<int16_t>(2 * 4800)) << "nothing sounds yet";
    }
}

TEST(DecoderFiles, PicturesAndSoundAsFilesThatOthersRead) {
    fs::path folder = fs::temp_directory_path() / ("decoder_files." + std::to_string(getpid()));
    fs::create_directories(folder);
    sim::Picture picture = {3, 2, {}};
    for (uint8_t i = 0; i < 18; i++)
        picture.rgb.push_back(static_cast<uint8_t>(i * 14));
    std::string message;
    std::string png = (folder / "picture.png").string();
    ASSERT_TRUE(writePng(png, picture, &message)) << message;
    EXPECT_EQ(decodedImage(png).rgb, picture.rgb);
    std::string wav = (folder / "sound.wav").string();
    sim::Sound sound = {{1, -2, 300, -400, 32767, -32768}};
    ASSERT_TRUE(writeWav(wav, sound, &message)) << message;
    EXPECT_EQ(decodedWave(wav), sound.samples);
    EXPECT_FALSE(writePng((folder / "none.png").string(), sim::Picture(), &message));
    EXPECT_EQ(message, "there is no picture");
    EXPECT_FALSE(writeWav("/proc/none/sound.wav", sound, &message));
    EXPECT_EQ(message, "/proc/none/sound.wav cannot be written");
    fs::remove_all(folder);
}

/* The files beside the streams ----------------------------------------------------------------- */

namespace {

class IndexStore : public testing::Test {
 protected:
    void SetUp() override {
        folder_ = fs::temp_directory_path() / ("index_store." + std::to_string(getpid()));
        fs::create_directories(folder_);
        const TransportStream& made = streamOf("dvb_multi.ts");
        bytes_ = made.packets;
        bytes_.resize(bytes_.size() / packetSize / 4 * packetSize);
        ticks_ = made.packetTicks;
        pid_ = multiplexOf("dvb_multi.ts").channels.front().videoPid;
        std::ofstream(path(), std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes_.data()),
                   static_cast<std::streamsize>(bytes_.size()));
    }
    void TearDown() override {
        fs::remove_all(folder_);
    }

    std::string path() const {
        return (folder_ / "stream.ts").string();
    }
    std::string indexFile() const {
        std::ifstream file(path() + ".index", std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
    void writeIndex(const std::string& contents) const {
        std::ofstream(path() + ".index", std::ios::binary) << contents;
    }
    /** Asks as a device does that has just begun. */
    std::shared_ptr<const sim::VideoIndex> ask(bool intact = true) {
        return videoIndex(asStream(bytes_, ticks_, {path(), intact}), pid_,
                          sim::VideoCoding::mpeg2);
    }
    /** The index file with a clock base that nobody finds in the stream. */
    std::string marked() const {
        sim::IndexFile file;
        EXPECT_EQ(readIndexFile(indexFile(), &file), sim::IndexFileState::good);
        for (auto& [key, entry] : file.video)
            entry.index.clockBase = 4711;
        return writeIndexFile(file);
    }

    fs::path folder_;
    Bytes bytes_;
    int64_t ticks_ = 0;
    uint16_t pid_ = 0;
};

}  // namespace

TEST_F(IndexStore, IsMadeOnceAndAnewForOtherBytes) {
    auto made = ask();
    EXPECT_EQ(made->clockBase, 0u);
    ASSERT_FALSE(made->changes.empty());
    writeIndex(marked());
    EXPECT_EQ(ask()->clockBase, 4711u) << "read";
    // A stream with damages on the air has an index of its own, and no file.
    Bytes good = bytes_;
    size_t place = asStream(bytes_, ticks_)->packetsOf(pid_)[1];
    bytes_[place * packetSize + 150] ^= 1;
    std::string kept = indexFile();
    EXPECT_EQ(ask(false)->clockBase, 0u);
    EXPECT_EQ(indexFile(), kept);
    EXPECT_EQ(ask()->clockBase, 0u) << "another file";
    EXPECT_NE(indexFile(), kept);
    bytes_ = good;
    EXPECT_EQ(ask()->clockBase, 0u) << "and the first one again";
    // Other PIDs keep theirs.
    writeIndex(marked());
    auto stream = asStream(bytes_, ticks_, {path(), true});
    const Channel& channel = multiplexOf("dvb_multi.ts").channels.front();
    EXPECT_FALSE(audioIndex(stream, channel.audio[0].pid, soundCodingOf(channel.audio[0].format))
                     ->changes.empty());
    EXPECT_EQ(ask()->clockBase, 4711u);
}

TEST_F(IndexStore, DamagedFilesAreMadeAnewAndFoldersMayBeReadOnly) {
    ask();
    std::string good = indexFile();
    for (size_t at : {size_t{0}, good.size() / 2, good.size() - 1}) {
        std::string bad = good;
        bad[at] = static_cast<char>(bad[at] ^ 1);
        writeIndex(bad);
        testing::internal::CaptureStderr();
        EXPECT_FALSE(ask()->changes.empty());
        std::string said = testing::internal::GetCapturedStderr();
        EXPECT_NE(said.find("stream.ts.index is damaged and is made anew"), std::string::npos);
        EXPECT_EQ(indexFile(), good);
    }
    fs::remove_all(folder_);
    EXPECT_FALSE(ask()->changes.empty());
    EXPECT_FALSE(fs::exists(folder_));
}

/** While one process makes an index, others wait for it and then take it. */
TEST_F(IndexStore, OneProcessMakesItWhileOthersWait) {
    ask();
    std::string ready = marked();
    fs::remove(path() + ".index");
    int lock = open(path().c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(flock(lock, LOCK_EX), 0);
    pid_t child = fork();
    if (child == 0) {
        close(lock);
        _exit(ask()->clockBase == 4711 ? 0 : 1);
    }
    usleep(300000);
    writeIndex(ready);
    close(lock);
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

// Captions of a running video decoder: when they come, in which order, of which field, and when
// they do not; on pictures and captions that are made by hand (tests/shared/decoder_stream.h). What
// is found in real pictures is held against FFmpeg in tests/streams.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <mutex>
#include <string>
#include <vector>

#include "platform/qlx_demux.h"
#include "platform/qlx_videocc.h"
#include "simulator/tuner/reception.h"
#include "simulator/world/air.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/decoder_stream.h"
#include "tests/shared/device.h"

namespace {

using namespace decoder_test;
using Bytes = std::vector<uint8_t>;
using Lines = std::vector<std::string>;

/** A picture's triplets: a pair for each field that names the picture, and a packet of four bytes
 *  that the next picture ends. */
Bytes tripletsOf(uint32_t unit) {
    const auto number = static_cast<uint8_t>(unit);
    const uint8_t packet = static_cast<uint8_t>(unit / 2 % 4 << 6 | 2);
    return {0xFC,
            number,
            1,
            0xFD,
            number,
            2,
            0xF9,
            9,
            9,  // not valid
            static_cast<uint8_t>(unit % 2 == 0 ? 0xFF : 0xFE),
            unit % 2 == 0 ? packet : number,
            3};
}

sim::DecoderFamily& captionFamily() {
    static sim::DecoderFamily* instance = [] {
        static sim::DecoderKind kind = handMadeFamily().kind;
        kind.captions = [](const sim::TsStreamPtr&, uint16_t, uint32_t, const sim::EsUnits&) {
            sim::CaptionIndex captions;
            for (uint32_t unit = 0; unit < unitCount; unit++)
                captions.push_back({unit, tripletsOf(unit)});
            return std::make_shared<const sim::CaptionIndex>(captions);
        };
        return new sim::DecoderFamily(kind);
    }();
    return *instance;
}

class SimCaptions : public testing::Test {
 protected:
    void SetUp() override {
        qlx_sim_reset();
        decodersFind() = decoderIndex();
        file_ = bench_.path() + "/air.ts";
        const demux_test::Bytes bytes = decoderStream();
        bench_.write("air.ts", std::string(bytes.begin(), bytes.end()));
        QLX_Source tuner = {QLX_SOURCE_TYPE_TUNER, 0, 0};
        ASSERT_EQ(QLX_DemuxInit(), 0);
        ASSERT_EQ(QLX_DemuxOpen(0), 0);
        ASSERT_EQ(QLX_DemuxConnectSource(0, &tuner), 0);
        ASSERT_EQ(QLX_DemuxStart(0), 0);
        receive(true);
        const sim::DecoderSource source = {QLX_SOURCE_TYPE_DEMUX, 0, 0, 1};
        sim::decodersInit(family());
        ASSERT_EQ(sim::decoderOpen(family(), 0, &source), 0);
    }
    void TearDown() override {
        sim::resetDecoders(family());
        receive(false);
        qlx_sim_reset();
    }
    static sim::DecoderFamily& family() {
        return captionFamily();
    }
    void receive(bool received) {
        static uint64_t sequence = UINT64_C(1) << 42;
        auto transmitter = std::make_shared<sim::Transmitter>();
        transmitter->stream = file_;
        sim::setReception(0, ++sequence, received ? transmitter : nullptr);
    }
    /** Lets captions of these types come, as the entry points do. */
    void choose(bool pairs, bool channel) {
        std::lock_guard<std::mutex> lock(family().mutex);
        sim::Decoder& decoder = family().decoders[0];
        decoder.captions.callback = take;
        decoder.captions.userData = this;
        decoder.captions.started[0] = pairs;
        decoder.captions.started[1] = channel;
        sim::wakeDecoder(family(), decoder);
    }
    /** Waits for that time of a loop. */
    void awaitLoop(int64_t ms) {
        const int64_t now = sim::nowMs();
        int64_t at = now / loopMs * loopMs + ms;
        if (at <= now)
            at += loopMs;
        sim::sleepMs(at - now);
        beganMs_ = at;
    }
    static int32_t start() {
        return sim::decoderStart(family(), 0, QLX_VIDEO_FORMAT_MPEG2, esPid);
    }
    /** What has come in that time: milliseconds since the time of awaitLoop, type, field, raw or
     *  packet, bytes. */
    Lines listen(int64_t ms) {
        sim::sleepMs(ms);
        std::lock_guard<std::mutex> lock(mutex_);
        Lines all;
        all.swap(heard_);
        return all;
    }
    static void take(uint32_t, void* request, uint32_t type, const QLX_VideoCcData* data) {
        auto* test = static_cast<SimCaptions*>(request);
        std::string line = sim::format(
            "+%d %s%d%s", static_cast<int>(sim::nowMs() - test->beganMs_), type == 0 ? "N" : "D",
            data->bEvenField != 0 ? 2 : 1, type == 1 && data->bIsScteIsRaw != 0 ? "r" : "");
        for (uint32_t i = 0; i < data->uDataLen; i++)
            line += sim::format(" %d", data->pu8Data[i]);
        std::lock_guard<std::mutex> lock(test->mutex_);
        test->heard_.push_back(line);
        test->pts_ = data->u64Pts;
    }

    BenchFolder bench_;
    std::string file_;
    std::mutex mutex_;
    Lines heard_;
    uint64_t pts_ = 0;
    int64_t beganMs_ = 0;
};

/** Access units 12, 24 and so on can be decoded alone; each is shown 200 ms after it begins. */
TEST_F(SimCaptions, ComeWithTheirPicturesInThirdsOfTheirTime) {
    choose(true, true);
    awaitLoop(11 * unitMs + 1);
    ASSERT_EQ(start(), 0);
    // Unit 12 begins at 39 ms from here and is shown at 239.
    EXPECT_EQ(listen(238), Lines());
    EXPECT_EQ(listen(80), Lines({"+239 N1 12 1", "+266 N2 12 2", "+279 N1 13 1",
                                 "+293 D1 130 3 13 3", "+306 N2 13 2"}));
    EXPECT_EQ(pts_ % (loopMs * 90), static_cast<uint64_t>(13 * unitMs + shownAfterMs) * 90);
    choose(true, false);
    EXPECT_EQ(listen(40), Lines({"+319 N1 14 1", "+346 N2 14 2"}));
}

TEST_F(SimCaptions, FollowTheVideoWithoutBeingStartedAgain) {
    choose(true, false);
    EXPECT_EQ(listen(6000), Lines()) << "no video";
    awaitLoop(11 * unitMs + 1);
    ASSERT_EQ(start(), 0);
    EXPECT_EQ(listen(310).size(), 4u);
    EXPECT_EQ(sim::decoderStop(family(), 0), 0);
    EXPECT_EQ(listen(6000), Lines());
    awaitLoop(11 * unitMs + 1);
    ASSERT_EQ(start(), 0);
    EXPECT_EQ(listen(280), Lines({"+239 N1 12 1", "+266 N2 12 2", "+279 N1 13 1"}));
    // Across the end of the loop nothing is left out.
    const size_t loop = listen(loopMs).size();
    EXPECT_EQ(loop, 2u * unitCount);
    choose(false, false);
    EXPECT_EQ(listen(loopMs), Lines());
}

TEST_F(SimCaptions, CeaseWithThePicture) {
    choose(true, true);
    awaitLoop(11 * unitMs + 1);
    ASSERT_EQ(start(), 0);
    EXPECT_EQ(listen(300).size(), 4u);
    EXPECT_EQ(sim::decoderPause(family(), 0, true), 0);
    EXPECT_EQ(listen(1000), Lines());
    EXPECT_EQ(sim::decoderPause(family(), 0, false), 0);
    EXPECT_GT(listen(1000).size(), 50u);
    receive(false);
    EXPECT_EQ(listen(1000), Lines());
    receive(true);
    EXPECT_GT(listen(2000).size(), 50u);
    // A packet that the interruption has cut off is dropped: 13 is the end of none.
    EXPECT_EQ(sim::decoderStop(family(), 0), 0);
    listen(0);
    awaitLoop(12 * unitMs + shownAfterMs + 27);
    choose(false, false);
    ASSERT_EQ(start(), 0);
    awaitLoop(25 * unitMs + shownAfterMs - 1);
    choose(false, true);
    EXPECT_EQ(listen(121), Lines({"+95 D1 66 3 27 3"}));
}

TEST_F(SimCaptions, TripletsAsTheyAreOnHardwareThatLeavesThemSo) {
    bench_.useBoard("[VIDEO]\nCC_RAW=1\n");
    choose(false, true);
    awaitLoop(11 * unitMs + 1);
    ASSERT_EQ(start(), 0);
    EXPECT_EQ(listen(300), Lines({"+253 D1r 255 130 3", "+293 D1r 254 13 3"}));
}

TEST_F(SimCaptions, EntryPointsRefuseWhatTheyMust) {
    const QLX_VideoAttr attr = {QLX_SOURCE_TYPE_DEMUX, 0, 0, 1};
    auto registering = [] { return QLX_VideoCcParserRegisterCallback(1, nullptr, take); };
    auto unregistering = [] { return QLX_VideoCcParserUnRegisterCallback(1, take); };
    auto starting = [] { return QLX_VideoCcParserStart(1, QLX_VIDEO_CC_DATA_TYPE_DTV); };
    auto stopping = [] { return QLX_VideoCcParserStop(1); };
    for (bool initialised : {false, true}) {
        EXPECT_EQ(registering(), QLX_FAILED) << initialised;
        EXPECT_EQ(unregistering(), QLX_FAILED) << initialised;
        EXPECT_EQ(starting(), QLX_FAILED) << initialised;
        EXPECT_EQ(stopping(), QLX_FAILED) << initialised;
        EXPECT_EQ(QLX_VideoInit(), 0);
    }
    ASSERT_EQ(QLX_VideoOpen(1, &attr), 0);
    EXPECT_EQ(stopping(), 0) << "not started";
    EXPECT_EQ(unregistering(), QLX_FAILED);
    EXPECT_EQ(registering(), 0);
    EXPECT_EQ(registering(), QLX_FAILED);
    EXPECT_EQ(QLX_VideoCcParserRegisterCallback(1, nullptr, nullptr), QLX_VIDEO_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_VideoCcParserUnRegisterCallback(1, nullptr), QLX_VIDEO_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_VideoCcParserStart(1, 2), QLX_VIDEO_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_VideoCcParserStart(9, 0), QLX_VIDEO_ERR_INVALID_PARA);
    EXPECT_EQ(starting(), 0);
    EXPECT_EQ(starting(), 0);
    EXPECT_NE(deviceState().find("Video 1 captions registered\nVideo 1 captions started\n"),
              std::string::npos);
    EXPECT_EQ(QLX_VideoClose(1), 0);
    EXPECT_EQ(deviceState().find("captions"), std::string::npos);
    ASSERT_EQ(QLX_VideoOpen(1, &attr), 0);
    EXPECT_EQ(registering(), 0) << "the close has ended the registration";
    EXPECT_EQ(unregistering(), 0);
    EXPECT_EQ(stopping(), 0);
    EXPECT_EQ(QLX_VideoDeInit(), 0);
}

/** User data with that many triplets told and the given ones there. */
Bytes userData(uint8_t flags, const Bytes& triplets) {
    Bytes data = {'G', 'A', '9', '4', 3, flags, 0xFF};
    data.insert(data.end(), triplets.begin(), triplets.end());
    data.push_back(0xFF);
    return data;
}

Bytes joined(const std::vector<Bytes>& parts) {
    Bytes all;
    for (const Bytes& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

TEST(CaptionsInPicture, AreThoseOfItsUserData) {
    const Bytes two = {0xFC, 1, 2, 0xFF, 0, 0};
    const Bytes picture = {0, 0, 1, 0x00, 0x10, 0x20};
    const Bytes slice = {0, 0, 1, 0x01, 9, 9, 9};
    const Bytes user = {0, 0, 1, 0xB2};
    // Of type 4, registered by T.35 for ATSC. A byte 3 behind two zeros is none of its own.
    const Bytes message = joined({{4, 17, 0xB5, 0x00, 0x31}, userData(0xC2, two)});
    Bytes escaped = message;
    escaped.insert(escaped.end() - 1, 3);
    const struct {
        const char* what;
        sim::VideoCoding coding;
        Bytes data;
        Bytes found;
    } rows[] = {
        {"MPEG-2", sim::VideoCoding::mpeg2, joined({picture, user, userData(0xC2, two), slice}),
         two},
        {"behind other user data", sim::VideoCoding::mpeg2,
         joined({user, {'D', 'T', 'G', '1'}, picture, user, userData(0xC2, two), slice}), two},
        {"flag for no captions",
         sim::VideoCoding::mpeg2,
         joined({user, userData(0x82, two), slice}),
         {}},
        {"behind the first slice",
         sim::VideoCoding::mpeg2,
         joined({slice, user, userData(0xC2, two)}),
         {}},
        {"more told than there is", sim::VideoCoding::mpeg2, joined({user, userData(0xDF, two)}),
         two},
        {"fewer told",
         sim::VideoCoding::mpeg2,
         joined({user, userData(0xC1, two), slice}),
         {0xFC, 1, 2}},
        {"cut in the head", sim::VideoCoding::mpeg2, joined({user, {'G', 'A', '9', '4', 3}}), {}},
        {"H.264", sim::VideoCoding::h264, joined({{0, 0, 0, 1, 9, 0x10}, {0, 0, 1, 6}, message}),
         two},
        {"H.264 with escapes", sim::VideoCoding::h264, joined({{0, 0, 1, 6}, escaped}), two},
        {"H.264, of another country",
         sim::VideoCoding::h264,
         joined({{0, 0, 1, 6, 4, 17, 0xB4, 0x00, 0x31}, userData(0xC2, two)}),
         {}},
        {"behind another message", sim::VideoCoding::h264,
         joined({{0, 0, 1, 6, 0xFF, 1, 2, 7, 7}, message}), two},
        {"in a slice", sim::VideoCoding::h264, joined({{0, 0, 1, 5}, message}), {}},
        {"HEVC", sim::VideoCoding::hevc, joined({{0, 0, 1, 39 << 1, 1}, message}), two},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(sim::captionsInPicture(row.coding, row.data.data(), row.data.size()), row.found)
            << row.what;
    }
}

TEST(CaptionChannel, GivesWholePacketsAlone) {
    sim::CaptionChannel channel;
    using Packets = std::vector<Bytes>;
    EXPECT_EQ(channel.take({0xFE, 1, 1}), Packets()) << "the end of a packet without its beginning";
    EXPECT_EQ(channel.take({0xFF, 0x02, 1, 0xFE, 2, 3}), Packets({{0x02, 1, 2, 3}}));
    EXPECT_EQ(channel.take({0xFE, 4, 5}), Packets()) << "more than its size";
    EXPECT_EQ(channel.take({0xFF, 0x03, 1, 0xFE, 2, 3, 0xFF, 0x41, 6}), Packets({{0x41, 6}}))
        << "one that is cut off";
    EXPECT_EQ(channel.take({0xFF, 0x02, 1, 0xFA, 2, 3, 0xFC, 2, 3}), Packets()) << "no data of it";
    EXPECT_EQ(channel.take({0xFE, 7, 8, 0xFE, 9}), Packets({{0x02, 1, 7, 8}}));
    // Size code 0 is 128 bytes.
    Bytes large = {0xFF, 0x80, 0};
    for (int i = 0; i < 63; i++)
        large.insert(large.end(), {0xFE, 1, 2});
    const Packets whole = channel.take(large);
    ASSERT_EQ(whole.size(), 1u);
    EXPECT_EQ(whole[0].size(), 128u);
}

}  // namespace

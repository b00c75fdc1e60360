// What goes out, looked at: the test picture of a source in its rectangle on the panel, black where
// it must be, a held picture; the tone that a sink plays.
#include "simulator/output/panel.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>
#include <vector>

#include "platform/qlx_aout.h"
#include "platform/qlx_audio.h"
#include "platform/qlx_extin.h"
#include "platform/qlx_video.h"
#include "platform/qlx_vout.h"
#include "simulator/core/sim.h"
#include "simulator/output/aout.h"
#include "simulator/world/test_signal.h"
#include "tests/shared/device.h"

namespace {

using Color = std::vector<int>;
const Color black = {0, 0, 0};
const Color white = {191, 191, 191};
const Color green = {0, 191, 0};
const Color blue = {0, 0, 191};

Color at(const sim::Picture& picture, uint32_t x, uint32_t y) {
    if (x >= picture.width || y >= picture.height)
        return {-1, -1, -1};
    const uint8_t* pixel = &picture.rgb[(size_t{y} * picture.width + x) * 3];
    return {pixel[0], pixel[1], pixel[2]};
}

/** Whether calls that were made one after the other were all a success. */
bool allGood(std::initializer_list<int32_t> results) {
    return std::all_of(results.begin(), results.end(), [](int32_t result) { return result == 0; });
}

class SimPanel : public testing::Test {
 protected:
    void SetUp() override {
        qlx_sim_reset();
    }
    void TearDown() override {
        qlx_sim_reset();
    }

    /** Plays an input on video output 0 and on the speaker, everything open and unmuted. */
    static void play(uint32_t kind, uint32_t port, uint32_t inputClass) {
        const QLX_ExtInSource input = {kind, port, inputClass};
        const QLX_VideoAttr video = {kind, port, inputClass, QLX_VIDEO_INPUT_MODE_EXTERNAL};
        const QLX_AudioAttr audio = {kind, port, inputClass};
        const QLX_Source source = {kind, port, inputClass};
        const QLX_VOutRect none = {};
        const QLX_VOutRect whole = {0, 0, 1920, 1080, 0};
        EXPECT_TRUE(allGood({QLX_ExtInInit(), QLX_ExtInOpen(&input)}));
        EXPECT_TRUE(allGood({QLX_VideoInit(), QLX_VideoOpen(0, &video), QLX_VideoStart(0, 0, 0)}));
        EXPECT_TRUE(allGood({QLX_AudioInit(), QLX_AudioOpen(0, &audio), QLX_AudioStart(0, 0, 0)}));
        EXPECT_TRUE(allGood({QLX_VOutInit(), QLX_VOutOpen(0, &source), QLX_VOutEnable(0)}));
        EXPECT_TRUE(allGood({QLX_VOutSetRect(0, &none, &whole, 0, 0), QLX_VOutSetMute(0, 0)}));
        EXPECT_TRUE(allGood({QLX_AOutInit(), QLX_AOutOpen(0, QLX_OUTPUT_SOURCE_SPEAKER)}));
        EXPECT_TRUE(allGood({QLX_AOutSetVolume(0, 100), QLX_AOutSetMute(0, 0)}));
        EXPECT_TRUE(allGood({QLX_AudioSetVolume(0, 0, 100), QLX_AudioSetMute(0, 0, 0)}));
        sim::sleepMs(1000);
    }
    static void playHdmi() {
        play(QLX_SOURCE_TYPE_HDMI, 0, QLX_INPUT_CLASS_NONE);
    }
};

TEST(TestSignal, BarsStandInTheirOrderOverNameAndTime) {
    sim::SignalSource source;
    source.locked = true;
    source.name = "HDMI 0";
    source.picture = {800, 600, 60, 1, false, 4, 3};
    sim::Picture picture = sim::testPicture(source, 3723500000);
    ASSERT_EQ(picture.width, 800u);
    ASSERT_EQ(picture.height, 600u);
    const Color bars[] = {white,         {191, 191, 0}, {0, 191, 191}, green,
                          {191, 0, 191}, {191, 0, 0},   blue,          black};
    for (uint32_t bar = 0; bar < 8; bar++) {
        EXPECT_EQ(at(picture, bar * 100, 0), bars[bar]) << bar;
        EXPECT_EQ(at(picture, bar * 100 + 99, 449), bars[bar]) << bar;
        EXPECT_EQ(at(picture, bar * 100, 450), black) << bar;
    }
    // Another frame shows another time, the same frame the same; another source another name.
    EXPECT_EQ(picture.rgb, sim::testPicture(source, 3723500001).rgb);
    EXPECT_NE(picture.rgb, sim::testPicture(source, 3723517000).rgb);
    source.name = "HDMI 1";
    EXPECT_NE(picture.rgb, sim::testPicture(source, 3723500000).rgb);
    source.locked = false;
    EXPECT_EQ(sim::testPicture(source, 0).width, 0u);
}

TEST(TestSignal, APictureOfAnySizeIsDrawnWithinItself) {
    sim::SignalSource source;
    source.locked = true;
    source.name = "a name that is longer than the picture is wide, and has letters of no font";
    for (uint16_t width : {0, 1, 7, 64, 721}) {
        for (uint16_t height : {0, 1, 3, 50, 480}) {
            source.picture = {width, height, 25, 1, true, 4, 3};
            EXPECT_EQ(sim::testPicture(source, 1000000).rgb.size(), size_t{3} * width * height);
        }
    }
}

TEST_F(SimPanel, ThePictureStandsInItsRectangle) {
    playHdmi();
    sim::Picture panel = sim::composePanel();
    ASSERT_EQ(panel.width, 1920u);
    EXPECT_EQ(at(panel, 0, 0), white);
    EXPECT_EQ(at(panel, 239, 100), white);
    EXPECT_EQ(at(panel, 240, 100), Color({191, 191, 0}));
    const QLX_VOutRect none = {};
    const QLX_VOutRect window = {1000, 500, 400, 200, 0};
    EXPECT_EQ(QLX_VOutSetRect(0, &none, &window, 0, 0), 0);
    panel = sim::composePanel();
    EXPECT_EQ(at(panel, 0, 0), black);
    EXPECT_EQ(at(panel, 999, 500), black);
    EXPECT_EQ(at(panel, 1000, 499), black);
    EXPECT_EQ(at(panel, 1000, 500), white);
    EXPECT_EQ(at(panel, 1050, 500), Color({191, 191, 0})) << "scaled: a bar is 50 wide";
    EXPECT_EQ(at(panel, 1349, 500), blue);
    EXPECT_EQ(at(panel, 1400, 500), black);
    // Half of the picture alone; and what lies beyond the panel is cut off.
    const QLX_VOutRect half = {960, 0, 960, 540, 0};
    EXPECT_EQ(QLX_VOutSetRect(0, &half, &window, 0, 0), 0);
    EXPECT_EQ(at(sim::composePanel(), 1000, 500), Color({191, 0, 191}));
    // Beyond the picture is nothing.
    const QLX_VOutRect beyond = {960, 540, 1920, 1080, 0};
    const QLX_VOutRect all = {0, 0, 1920, 1080, 0};
    EXPECT_EQ(QLX_VOutSetRect(0, &beyond, &all, 0, 0), 0);
    panel = sim::composePanel();
    EXPECT_EQ(at(panel, 0, 0), Color({191, 0, 191}));
    EXPECT_EQ(at(panel, 960, 0), black);
    EXPECT_EQ(at(panel, 0, 540), black);
    const QLX_VOutRect large = {960, 540, 10000, 10000, 0};
    EXPECT_EQ(QLX_VOutSetRect(0, &none, &large, 0, 0), 0);
    panel = sim::composePanel();
    EXPECT_EQ(at(panel, 959, 1079), black);
    EXPECT_EQ(at(panel, 1919, 1079), white);
    // One to one, the window shows the left end of the picture.
    EXPECT_EQ(QLX_VOutSetRect(0, &none, &window, 0, 1), 0);
    panel = sim::composePanel();
    EXPECT_EQ(at(panel, 1239, 500), white);
    EXPECT_EQ(at(panel, 1240, 500), Color({191, 191, 0}));
    // Stretched at the sides: the outer bars are wider than the inner ones, on both sides alike.
    const QLX_VOutRect whole = {0, 0, 1920, 1080, 0};
    EXPECT_EQ(QLX_VOutSetRect(0, &none, &whole, 1, 0), 0);
    panel = sim::composePanel();
    EXPECT_EQ(at(panel, 260, 0), white);
    EXPECT_EQ(at(panel, 960, 0), Color({191, 0, 191}));
    EXPECT_EQ(at(panel, 959, 0), green);
    EXPECT_EQ(at(panel, 1659, 0), black);
}

TEST_F(SimPanel, BlackWhenMutedDisabledOrWithoutASignal) {
    playHdmi();
    EXPECT_EQ(at(sim::composePanel(), 0, 0), white);
    EXPECT_EQ(QLX_VOutSetMute(0, 1), 0);
    EXPECT_EQ(at(sim::composePanel(), 0, 0), black);
    EXPECT_EQ(QLX_VOutSetMute(0, 0), 0);
    EXPECT_EQ(QLX_VOutDisable(0), 0);
    EXPECT_EQ(at(sim::composePanel(), 0, 0), black);
    EXPECT_EQ(QLX_VOutEnable(0), 0);
    EXPECT_EQ(at(sim::composePanel(), 0, 0), white);
    EXPECT_EQ(qlx_sim_event("input HDMI/0 CABLE=0"), 0);
    sim::sleepMs(1000);
    EXPECT_EQ(at(sim::composePanel(), 0, 0), black);
    EXPECT_EQ(qlx_sim_event("input HDMI/0 CABLE=1"), 0);
    sim::sleepMs(1000);
    EXPECT_EQ(at(sim::composePanel(), 0, 0), white);
    EXPECT_EQ(QLX_VideoStop(0), 0);
    EXPECT_EQ(at(sim::composePanel(), 0, 0), black);
}

TEST_F(SimPanel, AFrozenOutputHoldsItsPicture) {
    playHdmi();
    EXPECT_EQ(QLX_VOutFreeze(0, 1), 0);
    sim::Picture held = sim::composePanel();
    EXPECT_EQ(at(held, 0, 0), white);
    sim::sleepMs(5000);
    EXPECT_EQ(sim::composePanel().rgb, held.rgb);
    EXPECT_EQ(QLX_VOutFreeze(0, 0), 0);
    EXPECT_NE(sim::composePanel().rgb, held.rgb) << "the time runs on";
}

TEST_F(SimPanel, AnOutputShowsTheDecoderOfItsSource) {
    playHdmi();
    for (uint32_t port : {1u, 2u}) {
        const QLX_ExtInSource input = {QLX_SOURCE_TYPE_HDMI, port, 0};
        EXPECT_EQ(QLX_ExtInOpen(&input), 0);
    }
    const QLX_VideoAttr hdmi1 = {QLX_SOURCE_TYPE_HDMI, 1, 0, QLX_VIDEO_INPUT_MODE_EXTERNAL};
    EXPECT_TRUE(allGood({QLX_VideoOpen(1, &hdmi1), QLX_VideoStart(1, 0, 0)}));
    sim::sleepMs(1000);
    const struct {
        QLX_Source source;
        uint32_t output;
        uint32_t decoder;
        const char* why;
    } rows[] = {
        {{QLX_SOURCE_TYPE_HDMI, 1, 0}, 0, 1, "this very source"},
        {{QLX_SOURCE_TYPE_HDMI, 0, 0}, 1, 0, "this very source"},
        {{QLX_SOURCE_TYPE_HDMI, 2, 0}, 1, 1, "the output's number, of the kind"},
        {{QLX_SOURCE_TYPE_HDMI, 2, 0}, 2, 0, "the first of the kind"},
        {{QLX_SOURCE_TYPE_AV_YPBPR, 0, 0}, 1, 0, "the first that is open"},
    };
    for (const auto& row : rows) {
        for (uint32_t output = 0; output < QLX_VOUTDEV_NUMBER_MAX; output++)
            EXPECT_EQ(QLX_VOutClose(output), 0);
        EXPECT_TRUE(allGood({QLX_VOutOpen(row.output, &row.source), QLX_VOutEnable(row.output)}));
        std::vector<sim::PanelLayer> layers = sim::panelLayers();
        ASSERT_EQ(layers.size(), 1u);
        EXPECT_EQ(layers[0].shown.source.uSourceIndex, row.decoder) << row.why;
    }
    const QLX_ExtInSource cvbs = {QLX_SOURCE_TYPE_AV_CVBS, 1, QLX_INPUT_CLASS_CVBS};
    const QLX_VideoAttr cvbs1 = {QLX_SOURCE_TYPE_AV_CVBS, 1, QLX_INPUT_CLASS_CVBS,
                                 QLX_VIDEO_INPUT_MODE_EXTERNAL};
    const QLX_Source cvbs0 = {QLX_SOURCE_TYPE_AV_CVBS, 0, QLX_INPUT_CLASS_CVBS};
    EXPECT_TRUE(allGood({QLX_ExtInOpen(&cvbs), QLX_VideoStop(1), QLX_VideoClose(1),
                         QLX_VideoOpen(1, &cvbs1), QLX_VOutOpen(0, &cvbs0), QLX_VOutEnable(0)}));
    EXPECT_EQ(sim::panelLayers()[0].shown.source.eSourceType, cvbs1.eSourceType)
        << "the only one of the kind";
}

TEST_F(SimPanel, AMutedOutputAboveHidesTheOneBelow) {
    playHdmi();
    const QLX_Source stream = {QLX_SOURCE_TYPE_STREAM_INJECT, 0, 0};
    const QLX_VOutRect none = {};
    const QLX_VOutRect corner = {0, 0, 100, 100, 0};
    EXPECT_TRUE(allGood({QLX_VOutOpen(1, &stream), QLX_VOutEnable(1)}));
    EXPECT_EQ(QLX_VOutSetRect(1, &none, &corner, 0, 0), 0);
    sim::Picture panel = sim::composePanel();
    EXPECT_EQ(at(panel, 99, 99), black);
    EXPECT_EQ(at(panel, 100, 99), white);
}

/** Loudness of a frequency in the left channel: amplitude of the sine that fits best. */
double amplitudeOf(const std::vector<int16_t>& samples, double frequency) {
    constexpr double pi = 3.14159265358979323846;
    double sine = 0, cosine = 0;
    size_t count = samples.size() / 2;
    for (size_t i = 0; i < count; i++) {
        double phase = 2 * pi * frequency * static_cast<double>(i) / sim::soundSamplingRate;
        sine += samples[2 * i] * std::sin(phase);
        cosine += samples[2 * i] * std::cos(phase);
    }
    return 2 * std::hypot(sine, cosine) / static_cast<double>(count);
}

/** The loudest of these whole frequencies. */
int loudestOf(const std::vector<int16_t>& samples, int least, int most) {
    int best = least;
    for (int frequency = least; frequency <= most; frequency += 10) {
        if (amplitudeOf(samples, frequency) > amplitudeOf(samples, best))
            best = frequency;
    }
    return best;
}

TEST_F(SimPanel, ASinkPlaysTheSourcesToneAtItsVolume) {
    play(QLX_SOURCE_TYPE_AV_CVBS, 1, QLX_INPUT_CLASS_CVBS);
    std::vector<int16_t> samples = sim::composeSound(0, 200000).samples;
    ASSERT_EQ(samples.size(), 9600u * 2);
    EXPECT_EQ(loudestOf(samples, 500, 1500), 650);
    EXPECT_NEAR(amplitudeOf(samples, 650), 8000, 10);
    EXPECT_EQ(QLX_AOutSetVolume(0, 30), 0);
    EXPECT_NEAR(amplitudeOf(sim::composeSound(0, 200000).samples, 650), 2400, 10);
    EXPECT_EQ(QLX_AudioSetVolume(0, 0, 50), 0);
    EXPECT_NEAR(amplitudeOf(sim::composeSound(0, 200000).samples, 650), 1200, 10);
    auto silent = [](uint32_t output) {
        for (int16_t sample : sim::composeSound(output, 200000).samples) {
            if (sample != 0)
                return false;
        }
        return true;
    };
    EXPECT_FALSE(silent(0));
    EXPECT_TRUE(allGood({QLX_AOutSetVolume(1, 100), QLX_AOutSetMute(1, 0)}));
    EXPECT_TRUE(silent(1)) << "a sink that is not open";
    EXPECT_EQ(QLX_AOutSetMute(0, 1), 0);
    EXPECT_TRUE(silent(0));
    EXPECT_TRUE(allGood({QLX_AOutSetMute(0, 0), QLX_AudioSetMute(0, 0, 1)}));
    EXPECT_TRUE(silent(0));
    EXPECT_EQ(QLX_AudioSetMute(0, 0, 0), 0);
    EXPECT_FALSE(silent(0));
    EXPECT_EQ(qlx_sim_event("input CVBS/1 CHANNELS=0"), 0);
    sim::sleepMs(1000);
    EXPECT_TRUE(silent(0)) << "a source without sound";
}

TEST_F(SimPanel, ASoundIsHeardUntilItsVolumeOrMuteIsSet) {
    playHdmi();
    const auto loudness = [] {
        const sim::Sound sound = sim::composeSound(0, 20000);
        return *std::max_element(sound.samples.begin(), sound.samples.end());
    };
    const int16_t full = loudness();
    EXPECT_EQ(QLX_AudioSetMute(0, QLX_AUDIO_SOURCE_MAIN, QLX_TRUE), 0);
    // A service that runs is not begun anew.
    EXPECT_EQ(QLX_AudioInit(), 0);
    EXPECT_EQ(loudness(), 0);
    EXPECT_EQ(QLX_AudioDeInit(), 0);
    const QLX_AudioAttr audio = {QLX_SOURCE_TYPE_HDMI, 0, QLX_INPUT_CLASS_NONE};
    EXPECT_TRUE(allGood({QLX_AudioInit(), QLX_AudioOpen(0, &audio), QLX_AudioStart(0, 0, 0)}));
    sim::sleepMs(1000);
    EXPECT_EQ(loudness(), full);
}

TEST_F(SimPanel, CapturesAreFilesThatOthersRead) {
    playHdmi();
    std::string base = "/tmp/panel_test_" + std::to_string(getpid());
    EXPECT_EQ(qlx_sim_event(("capture panel " + base + ".png").c_str()), 0);
    EXPECT_EQ(qlx_sim_event(("capture sound " + base + ".wav speaker 500").c_str()), 0);
    auto contents = [&](const char* kind) {
        std::ifstream file(base + kind, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    };
    std::string png = contents(".png");
    ASSERT_GT(png.size(), 100u);
    EXPECT_EQ(png.substr(1, 3), "PNG");
    // IHDR: 1920 by 1080.
    EXPECT_EQ(png.substr(16, 8), std::string("\0\0\x07\x80\0\0\x04\x38", 8));
    std::string wav = contents(".wav");
    ASSERT_EQ(wav.size(), 44u + 24000 * 4);
    std::vector<int16_t> samples(48000);
    memcpy(samples.data(), wav.data() + 44, 24000 * 4);
    EXPECT_EQ(loudestOf(samples, 800, 1200), 1000);
    unlink((base + ".png").c_str());
    unlink((base + ".wav").c_str());
    for (const char* wrong :
         {"capture sound /tmp/x.wav", "capture sound /tmp/x.wav drum 500",
          "capture sound /tmp/x.wav speaker 0", "capture sound /tmp/x.wav speaker 60001",
          "capture panel /proc/none/x.png"})
        EXPECT_EQ(qlx_sim_event(wrong), -1) << wrong;
}

}  // namespace

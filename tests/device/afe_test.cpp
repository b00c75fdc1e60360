// Analog front ends: state rules, the windows and the discriminator at their borders, events in
// time, what is forced and what is read back, stations that change.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "platform/qlx_aout.h"
#include "platform/qlx_sif.h"
#include "platform/qlx_source.h"
#include "simulator/analog/afe_lock.h"
#include "simulator/core/sim.h"
#include "simulator/world/signal_source.h"
#include "tests/shared/device.h"

namespace {

constexpr uint32_t channel0 = 471250;
constexpr uint32_t channel1 = 477250;

class SimAfe : public testing::Test {
 protected:
    void SetUp() override {
        qlx_sim_reset();
    }
    void TearDown() override {
        qlx_sim_reset();
    }
};

/** What the program hears: "+MS EVENT DATA", MS since the last listening. */
struct Ear {
    std::mutex mutex;
    int64_t beganUs = sim::nowUs();
    std::vector<std::string> heard;

    static void callback(uint32_t, void* user, uint32_t event, void* data) {
        Ear* ear = static_cast<Ear*>(user);
        std::lock_guard<std::mutex> lock(ear->mutex);
        ear->heard.push_back(sim::format("+%d %u %u",
                                         static_cast<int>((sim::nowUs() - ear->beganUs) / 1000),
                                         event, *static_cast<uint32_t*>(data)));
    }
    std::vector<std::string> listen(int64_t milliseconds) {
        sim::sleepMs(milliseconds);
        std::lock_guard<std::mutex> lock(mutex);
        std::vector<std::string> all;
        all.swap(heard);
        beganUs = sim::nowUs();
        return all;
    }
};

using Lines = std::vector<std::string>;

void openAfe(uint32_t id, Ear* ear) {
    EXPECT_EQ(QLX_AFEInit(id), 0);
    EXPECT_EQ(QLX_AFEOpen(id), 0);
    EXPECT_EQ(QLX_AFERegisterCallback(id, ear, Ear::callback), 0);
}

void tune(uint32_t id, uint32_t frequency, uint32_t audio = 0, uint32_t color = 0) {
    const QLX_AnalogTuningParams params = {frequency, QLX_AFE_TUNE_TYPE_CHANNEL_CHANGE, audio,
                                           color};
    EXPECT_EQ(QLX_AFESetTuningParam(id, &params), 0);
}

QLX_AnalogSignalStatus statusOf(uint32_t id) {
    QLX_AnalogSignalStatus status = {};
    EXPECT_EQ(QLX_AFEGetSignalStatus(id, &status), 0);
    return status;
}

TEST_F(SimAfe, EachStateRefusesWhatItMust) {
    static QLX_AnalogTuningParams params = {channel0, 0, 0, 0};
    static QLX_AnalogSignalStatus status;
    static uint32_t word;
    struct {
        const char* what;
        std::function<int32_t(uint32_t)> call;
        int32_t beforeInit;
        int32_t beforeOpen;
    } calls[] = {
        {"init", QLX_AFEInit, 0, 0},
        {"deinit", QLX_AFEDeInit, 0, 0},
        {"open", QLX_AFEOpen, QLX_FAILED, 0},
        {"close", QLX_AFEClose, QLX_FAILED, QLX_FAILED},
        {"register",
         [](uint32_t id) { return QLX_AFERegisterCallback(id, nullptr, Ear::callback); },
         QLX_FAILED, QLX_FAILED},
        {"unregister", [](uint32_t id) { return QLX_AFEUnRegisterCallback(id, Ear::callback); },
         QLX_FAILED, QLX_FAILED},
        {"tune", [](uint32_t id) { return QLX_AFESetTuningParam(id, &params); }, QLX_FAILED,
         QLX_FAILED},
        {"tuning", [](uint32_t id) { return QLX_AFEGetTuningParam(id, &params); }, QLX_FAILED,
         QLX_FAILED},
        {"status", [](uint32_t id) { return QLX_AFEGetSignalStatus(id, &status); }, QLX_FAILED,
         QLX_FAILED},
        {"color", [](uint32_t id) { return QLX_SIFGetColorStdDetection(id, &word); }, QLX_FAILED,
         QLX_FAILED},
        {"audio", [](uint32_t id) { return QLX_SIFGetAudioStdDetection(id, &word); }, QLX_FAILED,
         QLX_FAILED},
        {"force color", [](uint32_t id) { return QLX_SIFSetColorStdForce(id, 2); }, QLX_FAILED,
         QLX_FAILED},
        {"force audio", [](uint32_t id) { return QLX_SIFSetAudioStdForce(id, 2); }, QLX_FAILED,
         QLX_FAILED},
        {"mode", [](uint32_t id) { return QLX_SIFGetSndOutMode(id, &word); }, QLX_FAILED,
         QLX_FAILED},
        {"set mode", [](uint32_t id) { return QLX_SIFSetSndOutMode(id, 1); }, QLX_FAILED,
         QLX_FAILED},
    };
    for (const auto& row : calls) {
        for (uint32_t id = QLX_TUNER_0; id < QLX_TUNER_MAX; id++) {
            qlx_sim_reset();
            EXPECT_EQ(row.call(id), row.beforeInit) << row.what;
            EXPECT_EQ(QLX_AFEInit(id), 0);
            EXPECT_EQ(QLX_AFEInit(id), 0);
            EXPECT_EQ(QLX_AFEInit((id + 1) % QLX_TUNER_MAX), 0);
            EXPECT_EQ(QLX_AFEOpen((id + 1) % QLX_TUNER_MAX), 0);
            EXPECT_EQ(row.call(id), row.beforeOpen) << row.what << " with another one open";
            EXPECT_EQ(QLX_AFEInit(id), 0);
            EXPECT_EQ(QLX_AFEOpen(id), 0);
            EXPECT_EQ(QLX_AFEOpen(id), 0);
            EXPECT_EQ(row.call(id), 0) << row.what;
            EXPECT_EQ(QLX_AFEDeInit(id), 0);
            EXPECT_EQ(row.call(id), row.beforeInit) << row.what << " after one deinit";
        }
        EXPECT_EQ(row.call(QLX_TUNER_MAX), QLX_AFE_ERR_INVALID_PARA) << row.what;
        EXPECT_EQ(row.call(static_cast<uint32_t>(QLX_TUNER_INVALID)), QLX_AFE_ERR_INVALID_PARA);
    }
    qlx_sim_reset();
    EXPECT_EQ(deviceState(), "");
}

TEST(AfeLock, DiscriminatorAtItsSteps) {
    const struct {
        int32_t distance;
        uint32_t afc;
    } rows[] = {
        {0, QLX_AFC_PLUS_12p5KHz},      {24, QLX_AFC_PLUS_12p5KHz},
        {25, QLX_AFC_PLUS_37p5KHz},     {49, QLX_AFC_PLUS_37p5KHz},
        {50, QLX_AFC_PLUS_62p5KHz},     {100, QLX_AFC_PLUS_112p5KHz},
        {174, QLX_AFC_PLUS_162p5KHz},   {175, QLX_AFC_PLUS_187p5KHz},
        {500, QLX_AFC_PLUS_187p5KHz},   {-1, QLX_AFC_MINUS_12p5KHz},
        {-25, QLX_AFC_MINUS_12p5KHz},   {-26, QLX_AFC_MINUS_37p5KHz},
        {-50, QLX_AFC_MINUS_37p5KHz},   {-51, QLX_AFC_MINUS_62p5KHz},
        {-175, QLX_AFC_MINUS_162p5KHz}, {-176, QLX_AFC_MINUS_187p5KHz},
        {-500, QLX_AFC_MINUS_187p5KHz},
    };
    for (const auto& row : rows)
        EXPECT_EQ(sim::afcDistance(row.distance), row.afc) << row.distance;
}

TEST(AfeLock, WindowsAtTheirBorders) {
    sim::Station station;
    station.frequency = channel0;
    station.levelDbm = -40;
    auto locks = [&](int32_t distance) {
        sim::AnalogLock lock =
            sim::decideAnalogLock(static_cast<uint32_t>(channel0 + distance), {station});
        return (lock.vif ? 1 : 0) + (lock.video ? 10 : 0);
    };
    for (int32_t sign : {-1, 1}) {
        EXPECT_EQ(locks(sign * 400), 11);
        EXPECT_EQ(locks(sign * 401), 1);
        EXPECT_EQ(locks(sign * 500), 1);
        EXPECT_EQ(locks(sign * 501), 0);
    }
    const struct {
        double level;
        int locks;
    } levels[] = {{-80, 11}, {-80.5, 1}, {-90, 1}, {-90.5, 0}};
    for (const auto& row : levels) {
        station.levelDbm = row.level;
        EXPECT_EQ(locks(0), row.locks) << row.level;
    }
    // The carrier counts, not where it was planned; of two stations the nearer one.
    station.levelDbm = -40;
    station.offset = 300;
    EXPECT_EQ(locks(-100), 11);
    EXPECT_EQ(locks(-101), 1);
    sim::Station other = station;
    other.frequency = channel0 + 700;
    sim::AnalogLock lock = sim::decideAnalogLock(channel0 + 660, {station, other});
    EXPECT_EQ(lock.station.frequency, other.frequency);
    lock = sim::decideAnalogLock(channel0 + 640, {other, station});
    EXPECT_EQ(lock.station.frequency, station.frequency);
}

TEST(AfeLock, SoundCarriersTellTheSystem) {
    const struct {
        uint32_t system;
        uint32_t sound;
        uint32_t found;
    } rows[] = {
        {QLX_ANALOG_AUDSTD_BG, QLX_SND_OUT_MODE_MONO, QLX_ANALOG_AUDSTD_BG},
        {QLX_ANALOG_AUDSTD_BG, QLX_SND_OUT_MODE_STEREO, QLX_ANALOG_AUDSTD_BG_A2},
        {QLX_ANALOG_AUDSTD_BG, QLX_SND_OUT_MODE_NICAM_MONO, QLX_ANALOG_AUDSTD_BG_NICAM},
        {QLX_ANALOG_AUDSTD_BG, QLX_SND_OUT_MODE_BTSC_MONO, QLX_ANALOG_AUDSTD_BG},
        {QLX_ANALOG_AUDSTD_BG, QLX_SND_OUT_MODE_BTSC_MONO_SAP, QLX_ANALOG_AUDSTD_BG},
        {QLX_ANALOG_AUDSTD_DK, QLX_SND_OUT_MODE_DUAL_AB, QLX_ANALOG_AUDSTD_DK_A2},
        {QLX_ANALOG_AUDSTD_DK, QLX_SND_OUT_MODE_NICAM_DUAL_AB, QLX_ANALOG_AUDSTD_DK_NICAM},
        {QLX_ANALOG_AUDSTD_M, QLX_SND_OUT_MODE_DUAL_A, QLX_ANALOG_AUDSTD_M_A2},
        {QLX_ANALOG_AUDSTD_M, QLX_SND_OUT_MODE_BTSC_MONO, QLX_ANALOG_AUDSTD_M_BTSC},
        {QLX_ANALOG_AUDSTD_M, QLX_SND_OUT_MODE_BTSC_MONO_SAP, QLX_ANALOG_AUDSTD_M_BTSC},
        {QLX_ANALOG_AUDSTD_M, QLX_SND_OUT_MODE_NICAM_MONO, QLX_ANALOG_AUDSTD_M},
        {QLX_ANALOG_AUDSTD_M_EIAJ, QLX_SND_OUT_MODE_STEREO, QLX_ANALOG_AUDSTD_M_EIAJ},
        {QLX_ANALOG_AUDSTD_I, QLX_SND_OUT_MODE_NICAM_STEREO, QLX_ANALOG_AUDSTD_I},
        {QLX_ANALOG_AUDSTD_L, QLX_SND_OUT_MODE_NICAM_STEREO, QLX_ANALOG_AUDSTD_L},
    };
    for (const auto& row : rows) {
        sim::Station station;
        station.audio = row.system;
        station.sound = row.sound;
        EXPECT_EQ(sim::soundSystemOf(station), row.found) << row.system << " " << row.sound;
    }
}

TEST_F(SimAfe, ATuningIsAnsweredByOneEvent) {
    Ear ear;
    openAfe(2, &ear);
    tune(2, channel0);
    sim::sleepMs(199);
    EXPECT_EQ(statusOf(2).bVifLock, 0u);
    EXPECT_EQ(ear.listen(1801), Lines({"+200 2 1"}));
    QLX_AnalogSignalStatus status = statusOf(2);
    EXPECT_EQ(status.bVifLock, 1u);
    EXPECT_EQ(status.bVideoDecoderLock, 1u);
    EXPECT_EQ(status.TunedFrequency, channel0);
    EXPECT_EQ(status.eAFCDistance, static_cast<uint32_t>(QLX_AFC_PLUS_12p5KHz));
    // The same again: the locks are lost meanwhile.
    tune(2, channel0);
    EXPECT_EQ(statusOf(2).bVideoDecoderLock, 0u);
    EXPECT_EQ(ear.listen(2000), Lines({"+200 2 1"}));
    tune(2, channel0 + 2000);
    EXPECT_EQ(ear.listen(3000), Lines({"+500 2 0"}));
    EXPECT_EQ(statusOf(2).bVifLock, 0u);
    // A tuning that overtakes another is answered alone.
    tune(2, channel0);
    sim::sleepMs(100);
    tune(2, channel1);
    EXPECT_EQ(ear.listen(2000), Lines({"+300 2 1"}));
    const QLX_AnalogTuningParams wrong = {channel0, 2, 0, 0};
    EXPECT_EQ(QLX_AFESetTuningParam(2, &wrong), QLX_AFE_ERR_INVALID_PARA);
    tune(2, channel0);
    EXPECT_EQ(QLX_AFEUnRegisterCallback(2, Ear::callback), 0);
    EXPECT_EQ(ear.listen(2000), Lines());
    EXPECT_EQ(statusOf(2).bVifLock, 1u) << "the front end locks all the same";
}

TEST_F(SimAfe, TheSoundsModeFollowsWhileTheAudioOutputsRun) {
    Ear ear;
    openAfe(0, &ear);
    EXPECT_EQ(QLX_AOutInit(), 0);
    tune(0, channel0);
    EXPECT_EQ(ear.listen(2000), Lines({"+200 2 1", "+700 1 1"}));
    uint32_t mode = 99;
    EXPECT_EQ(QLX_SIFSetSndOutMode(0, QLX_SND_OUT_MODE_MONO), 0);
    EXPECT_EQ(QLX_SIFGetSndOutMode(0, &mode), 0);
    EXPECT_EQ(mode, static_cast<uint32_t>(QLX_SND_OUT_MODE_MONO));
    EXPECT_EQ(qlx_sim_event("station 471250 SOUND=10"), 0);
    EXPECT_EQ(ear.listen(2000), Lines({"+500 1 10"}));
    EXPECT_EQ(QLX_SIFGetSndOutMode(0, &mode), 0);
    EXPECT_EQ(mode, static_cast<uint32_t>(QLX_SND_OUT_MODE_NICAM_STEREO));
    EXPECT_EQ(QLX_AOutDeInit(), 0);
    tune(0, channel0);
    EXPECT_EQ(ear.listen(2000), Lines({"+200 2 1"}));
}

TEST_F(SimAfe, StandardsAreTheForcedThenTheAskedThenTheStations) {
    Ear ear;
    openAfe(1, &ear);
    auto standards = [] {
        QLX_AnalogTuningParams params = {};
        uint32_t audio = 0, color = 0;
        EXPECT_EQ(QLX_SIFGetAudioStdDetection(1, &audio), 0);
        EXPECT_EQ(QLX_SIFGetColorStdDetection(1, &color), 0);
        EXPECT_EQ(QLX_AFEGetTuningParam(1, &params), 0);
        return std::vector<uint32_t>({audio, color, params.AudioStandard, params.ColorStandard});
    };
    using Words = std::vector<uint32_t>;
    EXPECT_EQ(standards(), Words({0, 0, 0, 0}));
    tune(1, channel0, QLX_ANALOG_AUDSTD_DK, QLX_ANALOG_CLRSTD_PAL);
    EXPECT_EQ(standards(), Words({0, 0, 32, 16})) << "nothing is detected before the lock";
    ear.listen(1000);
    EXPECT_EQ(standards(), Words({32, 16, 32, 16}));
    EXPECT_EQ(QLX_SIFSetAudioStdForce(1, QLX_ANALOG_AUDSTD_M), 0);
    EXPECT_EQ(QLX_SIFSetColorStdForce(1, QLX_ANALOG_CLRSTD_NTSC), 0);
    EXPECT_EQ(standards(), Words({512, 2, 512, 2}));
    EXPECT_EQ(QLX_SIFSetAudioStdForce(1, QLX_ANALOG_AUDSTD_AUTO), 0);
    EXPECT_EQ(standards(), Words({32, 2, 32, 2}));
    EXPECT_EQ(qlx_sim_event("station 477250 AUDIO=256 COLOR=256"), 0);
    tune(1, channel1, QLX_ANALOG_AUDSTD_AUTO, 0);
    ear.listen(1000);
    EXPECT_EQ(standards(), Words({256, 256, 256, 256}));
}

TEST_F(SimAfe, TheSoundSystemIsKnownWithTheSound) {
    Ear ear;
    openAfe(0, &ear);
    EXPECT_EQ(QLX_AOutInit(), 0);
    auto detected = [] {
        uint32_t audio = 0;
        EXPECT_EQ(QLX_SIFGetAudioStdDetection(0, &audio), 0);
        return audio;
    };
    EXPECT_EQ(qlx_sim_event("station 471250 SOUND=10"), 0);
    tune(0, channel0, QLX_ANALOG_AUDSTD_AUTO);
    EXPECT_EQ(ear.listen(699), Lines({"+200 2 1"}));
    EXPECT_EQ(detected(), static_cast<uint32_t>(QLX_ANALOG_AUDSTD_BG));
    EXPECT_EQ(ear.listen(101), Lines({"+1 1 10"}));
    EXPECT_EQ(detected(), static_cast<uint32_t>(QLX_ANALOG_AUDSTD_BG_NICAM));
    // Of changes that follow each other, the last one is told.
    EXPECT_EQ(qlx_sim_event("station 471250 SOUND=2"), 0);
    EXPECT_EQ(ear.listen(400), Lines());
    EXPECT_EQ(detected(), static_cast<uint32_t>(QLX_ANALOG_AUDSTD_BG));
    EXPECT_EQ(qlx_sim_event("station 471250 SOUND=1"), 0);
    EXPECT_EQ(ear.listen(1000), Lines({"+500 1 1"}));
    EXPECT_EQ(detected(), static_cast<uint32_t>(QLX_ANALOG_AUDSTD_BG_A2));
    tune(0, channel0, QLX_ANALOG_AUDSTD_BG);
    EXPECT_EQ(ear.listen(2000), Lines({"+200 2 1", "+700 1 1"}));
    EXPECT_EQ(detected(), static_cast<uint32_t>(QLX_ANALOG_AUDSTD_BG)) << "as asked for";
}

TEST_F(SimAfe, AFadeTakesThePictureThenTheCarrier) {
    Ear ear;
    openAfe(0, &ear);
    tune(0, channel0);
    EXPECT_EQ(ear.listen(1000), Lines({"+200 2 1"}));
    for (int step = 1; step <= 6; step++) {
        const std::string fade = sim::format("in %d station 471250 LEVEL=%d", step * 1000,
                                             -40 - 10 * step - (step >= 4 ? 1 : 0));
        EXPECT_EQ(qlx_sim_event(fade.c_str()), 0) << fade;
    }
    EXPECT_EQ(ear.listen(4500), Lines({"+4000 2 0"})) << "-81 dBm: no picture";
    EXPECT_EQ(statusOf(0).bVifLock, 1u);
    EXPECT_EQ(ear.listen(1000), Lines()) << "-91 dBm: no carrier, which is no news";
    EXPECT_EQ(statusOf(0).bVifLock, 0u);
    EXPECT_EQ(qlx_sim_event("station 471250 LEVEL=-80"), 0);
    EXPECT_EQ(ear.listen(400), Lines({"+0 2 1"}));
}

TEST_F(SimAfe, CallbacksMayCallWhatTheyLike) {
    // From each event: what it sees, and the next call of a front end's life.
    static std::vector<std::string> seen;
    seen.clear();
    QLX_AFECallback callback = [](uint32_t id, void*, uint32_t, void* data) {
        QLX_AnalogSignalStatus status = {};
        QLX_AnalogTuningParams params = {};
        uint32_t word = 0;
        EXPECT_EQ(QLX_AFEGetSignalStatus(id, &status), 0);
        EXPECT_EQ(QLX_SIFGetSndOutMode(id, &word), 0);
        EXPECT_EQ(QLX_AFEGetTuningParam(id, &params), 0);
        EXPECT_EQ(QLX_AFEGetSignalStatus(QLX_TUNER_3, &status), QLX_FAILED);
        seen.push_back(std::to_string(*static_cast<uint32_t*>(data)) + " at " +
                       std::to_string(params.Frequency));
        if (params.Frequency == channel0)
            tune(id, channel1);
        else if (params.Frequency == channel1)
            tune(id, channel0 + 3000);
        else
            EXPECT_EQ(QLX_AFEDeInit(id), 0);
    };
    EXPECT_EQ(QLX_AFEInit(1), 0);
    EXPECT_EQ(QLX_AFEOpen(1), 0);
    EXPECT_EQ(QLX_AFERegisterCallback(1, nullptr, callback), 0);
    tune(1, channel0);
    sim::sleepMs(5000);
    EXPECT_EQ(seen, Lines({"1 at 471250", "1 at 477250", "0 at 474250"}));
    EXPECT_EQ(deviceState(), "");
}

TEST_F(SimAfe, TheDiscriminatorLeadsASearchToTheCarrierFromAllOfItsWindow) {
    Ear ear;
    openAfe(0, &ear);
    for (int32_t start = -400; start <= 400; start += 50) {
        int32_t distance = start;
        unsigned steps = 0;
        for (;; steps++) {
            ASSERT_LT(steps, 5u) << "from " << start;
            tune(0, static_cast<uint32_t>(static_cast<int32_t>(channel0) + distance));
            sim::sleepMs(300);
            ASSERT_EQ(statusOf(0).bVideoDecoderLock, 1u) << "from " << start;
            // Tuned below the carrier, it counts up from 0; above it, down from 15.
            int32_t afc = static_cast<int32_t>(statusOf(0).eAFCDistance);
            if (afc <= QLX_AFC_MINUS_37p5KHz || afc >= QLX_AFC_PLUS_37p5KHz)
                break;
            distance += afc <= QLX_AFC_MINUS_187p5KHz ? afc * 25 : (afc - 15) * 25;
        }
        EXPECT_LT(std::abs(distance), 51) << "from " << start;
    }
}

TEST_F(SimAfe, StationsAndCablesChangeWhatIsReceived) {
    Ear ear;
    openAfe(0, &ear);
    tune(0, channel0);
    EXPECT_EQ(ear.listen(1000), Lines({"+200 2 1"}));
    sim::SignalSource source = sim::signalSource(QLX_SOURCE_TYPE_TUNER, 0);
    EXPECT_TRUE(source.open && source.locked);
    EXPECT_EQ(source.name, "ATV 471.25 MHz");
    EXPECT_EQ(source.picture.height, 576);
    EXPECT_EQ(source.sound.channels, 2);
    EXPECT_EQ(source.sound.toneHz, 800u);
    EXPECT_EQ(qlx_sim_event("station 471250 ON=0"), 0);
    EXPECT_EQ(ear.listen(1000), Lines({"+0 2 0"}));
    EXPECT_FALSE(sim::signalSource(QLX_SOURCE_TYPE_TUNER, 0).locked);
    EXPECT_EQ(qlx_sim_event("station all ON=1"), 0);
    EXPECT_EQ(ear.listen(1000), Lines({"+0 2 1"}));
    EXPECT_EQ(qlx_sim_event("station 471250 OFFSET=60"), 0);
    EXPECT_EQ(ear.listen(1000), Lines()) << "a drift within the window";
    EXPECT_EQ(statusOf(0).eAFCDistance, static_cast<uint32_t>(QLX_AFC_MINUS_62p5KHz));
    EXPECT_EQ(qlx_sim_event("station 471250 OFFSET=401"), 0);
    EXPECT_EQ(ear.listen(1000), Lines({"+0 2 0"}));
    EXPECT_EQ(statusOf(0).bVifLock, 1u);
    EXPECT_EQ(qlx_sim_event("station 471250 OFFSET=0"), 0);
    EXPECT_EQ(ear.listen(1000), Lines({"+0 2 1"}));
    EXPECT_EQ(qlx_sim_event("cable 0 out"), 0);
    EXPECT_EQ(ear.listen(1000), Lines({"+0 2 0"}));
    EXPECT_EQ(qlx_sim_event("cable 0 in"), 0);
    EXPECT_EQ(ear.listen(1000), Lines({"+0 2 1"}));
    EXPECT_EQ(QLX_SIFSetSndOutMode(0, QLX_SND_OUT_MODE_MONO), 0);
    EXPECT_EQ(sim::signalSource(QLX_SOURCE_TYPE_TUNER, 0).sound.channels, 1);
    EXPECT_EQ(qlx_sim_event("station 471250 COLOR=2"), 0);
    EXPECT_EQ(sim::signalSource(QLX_SOURCE_TYPE_TUNER, 0).picture.height, 480);
    EXPECT_EQ(QLX_AFEClose(0), 0);
    EXPECT_FALSE(sim::signalSource(QLX_SOURCE_TYPE_TUNER, 0).open);
    for (const char* wrong : {"station", "station 1 ON=0", "station all HUE=1"})
        EXPECT_EQ(qlx_sim_event(wrong), -1) << wrong;
}

}  // namespace

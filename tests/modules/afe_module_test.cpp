// AFE: verdicts on the healthy device, on each board of the configuration, and under faults; the
// search at the borders of its windows.
#include <unistd.h>

#include <string>

#include "platform/qlx_aout.h"
#include "platform/qlx_gpio.h"
#include "platform/qlx_i2c.h"
#include "platform/qlx_sif.h"
#include "testcase/afe/afe_harness.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/module_bench.h"
#include "tests/shared/typed.h"

namespace {

class AfeModule : public ModuleBench {
 protected:
    void SetUp() override {
        ModuleBench::SetUp();
        resetDevice();
        rest_ = deviceState();
        ASSERT_EQ(AFEModule.setup(), 0u);
    }
    /** As the amplifier of an earlier play leaves it. */
    static void resetDevice() {
        qlx_sim_reset();
        EXPECT_EQ(QLX_GPIOInit(), 0);
        EXPECT_EQ(QLX_I2CInit(), 0);
    }
    static uint32_t run(const std::string& name, const std::string& fault = "") {
        return runCaseUnder(AFEModule, name, fault);
    }
    /** A search on front end 0 in the detected standards, and what it leaves in the record. */
    static uint32_t search(uint32_t frequency, QLX_AnalogTuningParams* params) {
        EXPECT_EQ(QLX_AFEInit(0), 0);
        EXPECT_EQ(QLX_AFEOpen(0), 0);
        *params = {frequency, 0, 0, 0};
        return AFE_TuningChannelScan(0, params, QLX_AFC_MINUS_37p5KHz);
    }
    static uint32_t channel(uint32_t number) {
        QLX_AnalogTuningParams params = {};
        EXPECT_EQ(AFE_GetTuningParams(0, number, &params), TC_SUCCESS);
        return params.Frequency;
    }

    std::string rest_;
};

TEST_F(AfeModule, CasesSucceedOnEveryBoard) {
    BenchFolder folder;
    for (int32_t platform = 1; platform <= 8; platform++) {
        set_platform(&g_configFile, &platform);
        const std::string path = g_configFile.platformDir;
        folder.useBoard("[BOARD]\nPLATFORM=" + path.substr(path.rfind('/') + 1) + "\n");
        zk_testConfig = {};
        zk_loadEnvironment();
        resetDevice();
        ASSERT_EQ(AFEModule.setup(), 0u);
        const bool outputFirst = zk_testConfig.features[FEATURE_AFE_TUNING_AFTER_ATV_SOURCE] != 0;
        for (uint32_t i = 0; i < AFEModule.caseCount; i++) {
            const TcCase& row = AFEModule.cases[i];
            Typed value("1\n");
            EXPECT_EQ(run(row.name), TC_SUCCESS) << path << " " << row.name;
            EXPECT_EQ(deviceState(), rest_) << path << " " << row.name;
        }
        qlx_sim_record(1);
        run("TC_AFE_Tuning_002");
        EXPECT_EQ(count(callNames(), "QLX_VOut"), outputFirst ? 4u : 0u) << path;
        qlx_sim_record(0);
        takeOutput();
    }
}

TEST_F(AfeModule, AChangeTellsWhichLockIsMissing) {
    for (const auto& [word, line] : {std::pair("bVifLock", "]vif unlock=0\n"),
                                     std::pair("bVideoDecoderLock", "]vd unlock=0.\n")}) {
        takeOutput();
        EXPECT_EQ(run("TC_AFE_Tuning_002", std::string("QLX_AFEGetSignalStatus zero=") + word),
                  TC_FAILURE);
        EXPECT_EQ(count(takeOutput(), line), 1u) << line;
    }
}

TEST_F(AfeModule, FaultsAreSeenAndUndone) {
    const struct {
        const char* name;
        const char* fault;
    } rows[] = {
        {"TC_AFE_Init_001", "QLX_AFEInit return=1"},
        {"TC_AFE_Init_005", "QLX_AFEDeInit return=1"},
        {"TC_AFE_Init_012", "QLX_AFEInit call=2 return=1"},
        {"TC_AFE_Init_013", "QLX_AFEInit return=0"},
        {"TC_AFE_Open_001", "QLX_AFEOpen return=0"},
        {"TC_AFE_Open_003", "QLX_AFEOpen call=2 return=1"},
        {"TC_AFE_Close_001", "QLX_AFEClose return=0"},
        {"TC_AFE_Close_008", "QLX_AFEClose return=0"},
        // An event that comes before the case waits for it, or never.
        {"TC_AFE_Tuning_002", "AFEEvent drop"},
        {"TC_AFE_Tuning_002", "AFEEvent delay=1801"},
        {"TC_AFE_Tuning_002", "QLX_AFESetTuningParam return=1"},
        {"TC_AFE_Tuning_018", "QLX_AFEGetSignalStatus call=2 zero=bVifLock"},
        {"TC_AFE_Tuning_035", "QLX_AFEGetSignalStatus call=2 zero=bVideoDecoderLock"},
        {"TC_AFE_Tuning_035", "QLX_AFEGetSignalStatus call=3 zero=bVifLock"},
        {"TC_AFE_Tuning_035", "QLX_AFEGetSignalStatus call=3 zero=bVideoDecoderLock"},
        {"TC_AFE_Tuning_050", "QLX_AFEGetSignalStatus call=2 return=1"},
        {"TC_AFE_Tuning_001", "QLX_AFEGetSignalStatus call=1 return=1"},
        {"TC_AFE_Tuning_006", "QLX_SIFGetColorStdDetection return=1"},
        {"TC_AFE_Tuning_008", "QLX_SIFGetAudioStdDetection return=1"},
        {"TC_AFE_Tuning_009", "QLX_AFESetTuningParam call=2 return=1"},
        {"TC_AFE_Tuning_065", "AFEEvent drop"},
        {"TC_AFE_Tuning_066", "AFEEvent set=event:1"},
        {"TC_AFE_Tuning_067", "AFEEvent call=2 drop"},
        {"TC_AFE_Tuning_067", "AFEEvent call=2 delay=1301"},
        {"TC_AFE_ActualTuningParams_001", "QLX_AFEGetTuningParam flip=AudioStandard"},
        {"TC_AFE_ActualTuningParams_012", "QLX_AFEGetTuningParam flip=ColorStandard"},
        {"TC_AFE_SetAudioStdForce_001", "QLX_SIFSetAudioStdForce return=1"},
        {"TC_AFE_SetColorStdForce_011", "QLX_SIFSetColorStdForce return=1"},
        {"TC_AFE_GetAudioStdDetection_003", "QLX_SIFGetAudioStdDetection return=1"},
        {"TC_AFE_GetColorStdDetection_004", "QLX_SIFGetColorStdDetection return=1"},
        {"TC_AFE_GetSoundMode_002", "QLX_SIFGetSndOutMode return=1"},
        {"TC_AFE_Play_001", "QLX_VideoGetVideoInfo set=stVideoDecInfo.eVideoPresent:3"},
        {"TC_AFE_Play_004", "QLX_AudioGetAudioInfo set=stAudioDecInfo.audioPresent:3"},
        {"TC_AFE_Play_003", "QLX_VOutOpen call=2 return=1"},
        {"TC_AV_AtvCheckColorStdAndAudioStd_PAL_DK_001",
         "QLX_SIFGetAudioStdDetection call=2 "
         "set=standard:16"},
        {"TC_AV_AtvCheckColorStdAndAudioStd_PAL_BG_001",
         "QLX_SIFGetColorStdDetection call=2 "
         "set=standard:256"},
        {"TC_AV_AtvCheckColorStdAndAudioStd_NTSC_M_001",
         "QLX_SIFGetColorStdDetection call=2 "
         "set=standard:16"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(run(row.name, row.fault), TC_FAILURE) << row.name << " " << row.fault;
        // A call that was answered wrongly may have left what the case could not know of.
        resetDevice();
    }
    EXPECT_EQ(run("TC_AFE_Tuning_002", "AFEEvent delay=1799"), TC_SUCCESS);
    EXPECT_EQ(run("TC_AFE_Tuning_067", "AFEEvent call=2 delay=1299"), TC_SUCCESS);
    // Whatever goes wrong in the middle, the way out is whole.
    for (const char* fault : {"QLX_AFERegisterCallback return=1", "QLX_AFESetTuningParam return=1",
                              "QLX_VideoOpen return=1", "QLX_AOutOpen call=1 return=1",
                              "QLX_VOutOpen call=2 return=1", "QLX_VideoStart return=1",
                              "QLX_AOutSetMute call=1 return=1", "QLX_VOutSetRect return=1"}) {
        EXPECT_EQ(run("TC_AFE_Play_003", fault), TC_FAILURE) << fault;
        EXPECT_EQ(deviceState(), rest_) << fault;
    }
}

TEST_F(AfeModule, TheOperatorsValueIsSet) {
    const struct {
        const char* name;
        const char* call;
    } rows[] = {{"TC_AFE_SetAudioStdForce_012", "QLX_SIFSetAudioStdForce(tuner=2 standard=9)"},
                {"TC_AFE_SetColorStdForce_012", "QLX_SIFSetColorStdForce(tuner=3 standard=9)"},
                {"TC_AFE_SetSoundMode_002", "QLX_SIFSetSndOutMode(tuner=1 mode=9)"}};
    for (const auto& row : rows) {
        Typed value("9\n");
        qlx_sim_record(1);
        EXPECT_EQ(run(row.name), TC_SUCCESS);
        EXPECT_EQ(count(recordedCalls(), row.call), 1u) << row.name;
        Typed word("PAL\n");
        EXPECT_EQ(run(row.name), TC_FAILURE) << row.name;
        Typed nothing("\n");
        EXPECT_EQ(run(row.name), TC_FAILURE) << row.name;
        EXPECT_EQ(deviceState(), rest_);
    }
}

/** Each row of the windows' table, and what lies beyond. */
TEST_F(AfeModule, DistancesAreSortedIntoWindows) {
    const uint32_t classes[] = {1, 1, 2, 2, 4, 4, 4, 6, 7, 5, 5, 5, 3, 3, 1, 1, 1};
    const int32_t offsets[] = {-1, 0, 62, -62, 125, -125, 250, -250};
    uint32_t distanceClass = 0;
    for (uint32_t distance = 0; distance < 17; distance++) {
        EXPECT_EQ(AFE_CheckAFCWindow(distance, &distanceClass), offsets[classes[distance]]);
        EXPECT_EQ(distanceClass, classes[distance]) << distance;
    }
    EXPECT_EQ(AFE_CheckAFCWindow(0xffffffff, &distanceClass), 0);
    EXPECT_EQ(distanceClass, 1u);
    EXPECT_EQ(AFE_CheckAFCWindow(2, nullptr), -1);
    EXPECT_EQ(AFE_PrintAnlaogTuneParam(nullptr), TC_FAILURE);
    EXPECT_EQ(AFE_PrintAnalogSignalStatus(nullptr), TC_FAILURE);
}

TEST_F(AfeModule, StandardsAreMapped) {
    // By bit, from 1 on; -1 is unknown and becomes 0.
    const int audio[] = {-1, 0, 7, 7, 1, 2, 2, 2, 3, 5, 5, 5, 5, 6, -1, -1};
    const int color[] = {-1, 2, 0, 2, 0, 0, 0, 0, 1, -1, -1, -1};
    auto check = [this](uint32_t (*map)(uint32_t), uint32_t v, int number, const char* unknown,
                        const char* known) {
        EXPECT_EQ(map(v), static_cast<uint32_t>(number < 0 ? 0 : number)) << v;
        const std::string said = takeOutput();
        EXPECT_EQ(count(said, unknown), number < 0 ? 1u : 0u) << v << said;
        EXPECT_EQ(count(said, known + std::to_string(number < 0 ? 0 : number) + " \r\n"), 1u);
    };
    auto checkAudio = [&](uint32_t v, int number) {
        check(AFE_MapAudioStd, v, number, "]broadcast system unknown (", "audio standard = ");
    };
    auto checkColor = [&](uint32_t v, int number) {
        check(AFE_MapColorStd, v, number, "]color system unknown (", "color standard = ");
    };
    for (uint32_t bit = 0; bit < sizeof audio / sizeof audio[0]; bit++)
        checkAudio(1u << bit, audio[bit]);
    for (uint32_t bit = 0; bit < sizeof color / sizeof color[0]; bit++)
        checkColor(1u << bit, color[bit]);
    for (uint32_t v : {0u, 3u, 0x30u, 0xffffffffu}) {
        checkAudio(v, -1);
        checkColor(v, -1);
    }
}

/** The stations that are there for it: whether they are found from their planned carrier, and where
 *  the tuning stands then. */
TEST_F(AfeModule, ASearchComesFromTheBordersOfTheWindows) {
    const struct {
        uint32_t channel;
        bool found;
        int32_t distance;
        const char* said;
    } rows[] = {
        {11, true, 375, "]AFC = 7. offset = 250 \n"},
        {12, true, 438, "]vd lock=0. 750k shift \n"},
        {13, true, -375, "]AFC = 8. offset = -250 \n"},
        // Below the window the way back is closed: the search only goes up.
        {14, false, 0, "]searching failed. \n"},
        {15, false, 0, "]vif unlock=0 ,1M shift\n"},
    };
    for (const auto& row : rows) {
        resetDevice();
        QLX_AnalogTuningParams params = {};
        const uint32_t planned = channel(row.channel);
        EXPECT_EQ(search(planned, &params), row.found ? TC_SUCCESS : TC_FAILURE) << row.channel;
        const int32_t distance = static_cast<int32_t>(params.Frequency - planned);
        EXPECT_EQ(params.eTuneType, static_cast<uint32_t>(QLX_AFE_TUNE_TYPE_CHANNEL_SCAN));
        if (row.found) {
            EXPECT_EQ(distance, row.distance + 4000) << row.channel;
        }
        const std::string said = takeOutput();
        EXPECT_GE(count(said, row.said), 1u) << row.channel << said;
    }
}

TEST_F(AfeModule, ASearchEndsBehindItsSpan) {
    QLX_AnalogTuningParams params = {};
    // The step to 2000 kHz still belongs to it, that to 3000 does not.
    EXPECT_EQ(search(channel(0) - 2000, &params), TC_SUCCESS);
    EXPECT_EQ(params.Frequency, channel(0) + 4000);
    takeOutput();
    const int64_t began = nowMs();
    EXPECT_EQ(search(channel(0) - 2501, &params), TC_FAILURE);
    EXPECT_EQ(nowMs() - began, 3 * 2000) << "20 looks at each of three frequencies";
    const std::string said = takeOutput();
    EXPECT_EQ(count(said, "]currentFreq ="), 4u) << said;
    EXPECT_EQ(count(said, "vif unlock=0 ,1M shift"), 3u);
    EXPECT_EQ(count(said, "]searching failed. \n"), 1u);
    EXPECT_EQ(params.Frequency, channel(0) - 501) << "the last that was tuned to";
    // With a carrier in reach of the last step it is found, and no picture, and no more span.
    EXPECT_EQ(search(channel(0) - 2500, &params), TC_FAILURE);
    EXPECT_EQ(count(takeOutput(), "vd lock=0. 750k shift"), 1u);
}

/** Seven systems, each detected as what it is. */
TEST_F(AfeModule, SystemsAreDetected) {
    const struct {
        uint32_t channel;
        uint32_t audio;
        uint32_t color;
        uint32_t mapped;
        uint32_t mappedColor;
    } rows[] = {
        {4, QLX_ANALOG_AUDSTD_BG_A2, QLX_ANALOG_CLRSTD_PAL, 7, 0},
        {5, QLX_ANALOG_AUDSTD_I, QLX_ANALOG_CLRSTD_PAL, 1, 0},
        {6, QLX_ANALOG_AUDSTD_DK_NICAM, QLX_ANALOG_CLRSTD_PAL, 2, 0},
        {7, QLX_ANALOG_AUDSTD_L, QLX_ANALOG_CLRSTD_SECAM, 3, 1},
        {8, QLX_ANALOG_AUDSTD_M_BTSC, QLX_ANALOG_CLRSTD_NTSC, 5, 2},
        {9, QLX_ANALOG_AUDSTD_M_BTSC, QLX_ANALOG_CLRSTD_PAL_M, 5, 0},
        {10, QLX_ANALOG_AUDSTD_N, QLX_ANALOG_CLRSTD_PAL_N, 6, 0},
    };
    for (const auto& row : rows) {
        resetDevice();
        QLX_AnalogTuningParams params = {};
        uint32_t audio = 0, color = 0;
        EXPECT_EQ(QLX_AOutInit(), 0);
        EXPECT_EQ(search(channel(row.channel), &params), TC_SUCCESS) << row.channel;
        usleep(600000);
        EXPECT_EQ(QLX_SIFGetAudioStdDetection(0, &audio), 0);
        EXPECT_EQ(QLX_SIFGetColorStdDetection(0, &color), 0);
        EXPECT_EQ(audio, row.audio) << row.channel;
        EXPECT_EQ(color, row.color) << row.channel;
        EXPECT_EQ(AFE_MapAudioStd(audio), row.mapped);
        EXPECT_EQ(AFE_MapColorStd(color), row.mappedColor);
    }
}

TEST_F(AfeModule, AnEventThatTheHarnessDoesNotKnowIsToldAndWakes) {
    EXPECT_EQ(run("TC_AFE_Tuning_002", "AFEEvent set=event:7"), TC_SUCCESS);
    EXPECT_EQ(count(takeOutput(), "]AFE_AFECallback (Unsuppoted Event 7) \n"), 1u);
    // An event of sound alone wakes the other one.
    EXPECT_EQ(run("TC_AFE_Tuning_067", "AFEEvent call=2 set=event:7"), TC_FAILURE);
    EXPECT_EQ(count(takeOutput(), "]Failed for 2S AFECallback not return, Tuning time out\n"), 1u);
}

}  // namespace

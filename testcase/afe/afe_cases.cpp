// AFE: analog reception. The four front ends come up and go down, find channels by change and by
// search in each standard, tell what they receive, and play it. No device is held between cases.
#include <unistd.h>

#include "environment/test_env.h"
#include "framework/case/hooks.h"
#include "framework/case/ladder.h"
#include "framework/case/prompt.h"
#include "platform/qlx_audio.h"
#include "platform/qlx_sif.h"
#include "platform/qlx_source.h"
#include "platform/qlx_video.h"
#include "platform/qlx_vout.h"
#include "testcase/afe/afe_harness.h"
#include "testcase/modules.h"

enum {
    /** kHz below channel 0, where no channel plan has a carrier. */
    GAP_BELOW_CHANNEL = 4000,
    NO_SIGNAL_WAIT_S = 3,
    PLAY_TIME_S = 2,
    ROUNDS = 2,
};

static const uint32_t eDevId = QLX_VOUTDEV_NUMBER_0;

static uint32_t AFE_TestSetup(void) {
    zk_log("%s ! \r\n", __func__);
    return AFE_LoadConfig();
}

TC_HOOK(AFE_TestTeardown, __func__)

// Init, open, close.

static uint32_t initBase(const char* name, uint32_t eTunerId) {
    CaseContext tc = {name};
    TC_EXPECT_RET(QLX_AFEInit(eTunerId));
    TC_EXPECT_RET(QLX_AFEDeInit(eTunerId));
    return TC_RESULT(tc);
}

static uint32_t deinitBase(const char* name, uint32_t eTunerId) {
    CaseContext tc = {name};
    TC_EXPECT_RET(QLX_AFEDeInit(eTunerId));
    return TC_RESULT(tc);
}

static uint32_t initTwiceBase(const char* name, uint32_t eTunerId) {
    CaseContext tc = {name};
    TC_EXPECT_RET(QLX_AFEInit(eTunerId));
    TC_EXPECT_RET(QLX_AFEInit(eTunerId));
    TC_EXPECT_RET(QLX_AFEDeInit(eTunerId));
    return TC_RESULT(tc);
}

static uint32_t initRefusedBase(const char* name, uint32_t eTunerId) {
    CaseContext tc = {name};
    TC_EXPECT_REFUSED(QLX_AFEInit(eTunerId));
    return TC_RESULT(tc);
}

static uint32_t openUninitialisedBase(const char* name, uint32_t eTunerId) {
    CaseContext tc = {name};
    TC_EXPECT_RET(QLX_AFEInit(eTunerId));
    TC_EXPECT_RET(QLX_AFEDeInit(eTunerId));
    TC_EXPECT_REFUSED(QLX_AFEOpen(eTunerId));
    return TC_RESULT(tc);
}

/** A front end is opened so often, and closed once. */
static uint32_t openBase(const char* name, uint32_t eTunerId, int opens) {
    CaseContext tc = {name};
    if (TC_EXPECT_RET(QLX_AFEInit(eTunerId))) {
        bool open = true;
        for (int i = 0; i < opens && open; i++)
            open = TC_EXPECT_RET(QLX_AFEOpen(eTunerId));
        if (open)
            TC_EXPECT_RET(QLX_AFEClose(eTunerId));
        TC_EXPECT_RET(QLX_AFEDeInit(eTunerId));
    }
    return TC_RESULT(tc);
}

static uint32_t closeUnopenedBase(const char* name, uint32_t eTunerId) {
    CaseContext tc = {name};
    if (TC_EXPECT_RET(QLX_AFEInit(eTunerId))) {
        TC_EXPECT_REFUSED(QLX_AFEClose(eTunerId));
        TC_EXPECT_RET(QLX_AFEDeInit(eTunerId));
    }
    return TC_RESULT(tc);
}

static uint32_t closeUninitialisedBase(const char* name, uint32_t eTunerId) {
    CaseContext tc = {name};
    TC_EXPECT_REFUSED(QLX_AFEClose(eTunerId));
    return TC_RESULT(tc);
}

// A front end on a channel.

/** What the record asks for in place of the configured standards. */
struct Standard {
    /** QLX_AnalogAudioStandard, QLX_AnalogColorStandard; 0 both: as configured. */
    uint32_t audio;
    uint32_t color;
};

static const Standard configured = {0, 0};
static const Standard palDk = {QLX_ANALOG_AUDSTD_DK, QLX_ANALOG_CLRSTD_PAL};
static const Standard palBg = {QLX_ANALOG_AUDSTD_BG, QLX_ANALOG_CLRSTD_PAL};
static const Standard palI = {QLX_ANALOG_AUDSTD_I, QLX_ANALOG_CLRSTD_PAL};
static const Standard ntscM = {QLX_ANALOG_AUDSTD_M, QLX_ANALOG_CLRSTD_NTSC};

/** Which services a case has beside the front end. */
enum Services {
    /** The video output, where the board tunes after it. */
    FRONT_END_ALONE,
    /** Decoders and outputs. */
    WITH_DECODERS,
};

struct FrontEnd {
    uint32_t eTunerId;
    Standard standard;
    Services services;
    QLX_AFECallback callback;
    QLX_Source stSource;
    QLX_AnalogTuningParams stTuningParams;
};

static FrontEnd frontEndOf(uint32_t eTunerId, const Standard& standard, Services services,
                           QLX_AFECallback callback = AFE_AFECallback) {
    FrontEnd bench = {};
    bench.eTunerId = eTunerId;
    bench.standard = standard;
    bench.services = services;
    bench.callback = callback;
    bench.stSource = {QLX_SOURCE_TYPE_TUNER, eTunerId, QLX_INPUT_CLASS_NONE};
    return bench;
}

/** The record of a channel, in the standard of the case. */
static uint32_t getParams(FrontEnd& bench, uint32_t uChannelId) {
    const uint32_t result = AFE_GetTuningParams(bench.eTunerId, uChannelId, &bench.stTuningParams);
    if (bench.standard.audio != 0) {
        bench.stTuningParams.AudioStandard = bench.standard.audio;
        bench.stTuningParams.ColorStandard = bench.standard.color;
    }
    return result;
}

static bool hasDecoders(const FrontEnd& bench) {
    return bench.services == WITH_DECODERS;
}

static bool hasOutputAlone(const FrontEnd& bench) {
    return !hasDecoders(bench) && tcAFEFeature[FEATURE_AFE_TUNING_AFTER_ATV_SOURCE] != 0;
}

static bool hasOutput(const FrontEnd& bench) {
    return hasDecoders(bench) || hasOutputAlone(bench);
}

// clang-format off
static const LadderStep<FrontEnd> frontEndSteps[] = {
    // up                                                                                                                                                    down                                                                                                                                        undo          whether there is such a step
    {LADDER_CALL("QLX_AFEInit(eTunerId)", QLX_AFEInit(bench.eTunerId)),                                                                                      LADDER_CALL("QLX_AFEDeInit(eTunerId)", QLX_AFEDeInit(bench.eTunerId))},
    {LADDER_CALL("AFE_AVInit()", AFE_AVInit()),                                                                                                              LADDER_CALL("AFE_AVDeInit()", AFE_AVDeInit()),                                                                                              UNDO_CHECKED, hasDecoders},
    {LADDER_CALL("QLX_AFEOpen(eTunerId)", QLX_AFEOpen(bench.eTunerId)),                                                                                      LADDER_CALL("QLX_AFEClose(eTunerId)", QLX_AFEClose(bench.eTunerId))},
    {LADDER_CALL("AFE_GetTuningParams(eTunerId, 0, &stTuningParams)", getParams(bench, 0)),                                                                  LADDER_NONE},
    {LADDER_CALL("QLX_VOutInit()", QLX_VOutInit()),                                                                                                          LADDER_CALL("QLX_VOutDeInit()", QLX_VOutDeInit()),                                                                                          UNDO_CHECKED, hasOutputAlone},
    {LADDER_CALL("QLX_VOutOpen(eDevId, &stSource)", QLX_VOutOpen(eDevId, &bench.stSource)),                                                                  LADDER_CALL("QLX_VOutClose(eDevId)", QLX_VOutClose(eDevId)),                                                                                UNDO_CHECKED, hasOutput},
    {LADDER_CALL("AFE_PrintAnlaogTuneParam(&stTuningParams)", AFE_PrintAnlaogTuneParam(&bench.stTuningParams)),                                              LADDER_NONE},
    {LADDER_CALL("QLX_AFERegisterCallback(eTunerId, NULL, callback)", QLX_AFERegisterCallback(bench.eTunerId, nullptr, bench.callback)),                     LADDER_CALL("QLX_AFEUnRegisterCallback(eTunerId, callback)", QLX_AFEUnRegisterCallback(bench.eTunerId, bench.callback))},
};
// clang-format on

/** A case on an open front end: `work` on it. */
template <typename Work>
static uint32_t onFrontEnd(const char* name, FrontEnd bench, Work work) {
    CaseContext tc = {name};
    Ladder<FrontEnd> ladder(tc, bench, frontEndSteps);
    if (ladder.up())
        work(tc, bench);
    ladder.down();
    return TC_RESULT(tc);
}

// Tuning.

/** How a channel is found. */
struct Tuning {
    uint32_t (*tune)(uint32_t eTunerId, QLX_AnalogTuningParams* pstTuningParams, uint32_t eAFC);
    /** As a failure prints it. */
    const char* text;
};

static const Tuning scan = {
    AFE_TuningChannelScan,
    "AFE_TuningChannelScan(eTunerId, &stTuningParams, QLX_AFC_MINUS_37p5KHz)"};
static const Tuning change = {
    AFE_TuningChanelChange,
    "AFE_TuningChanelChange(eTunerId, &stTuningParams, QLX_AFC_MINUS_37p5KHz)"};

static bool tune(CaseContext& tc, FrontEnd& bench, const Tuning& tuning) {
    return TC_EXPECT_RET_TEXT(
        tuning.text, tuning.tune(bench.eTunerId, &bench.stTuningParams, QLX_AFC_MINUS_37p5KHz));
}

/** Tunes, and demands both locks of what is received then. */
static bool tuneAndLook(CaseContext& tc, FrontEnd& bench, const Tuning& tuning) {
    const uint32_t eTunerId = bench.eTunerId;
    QLX_AnalogSignalStatus stSignalInfo = {};
    if (!tune(tc, bench, tuning) || !TC_EXPECT_RET(QLX_AFEGetSignalStatus(eTunerId, &stSignalInfo)))
        return false;
    AFE_PrintAnalogSignalStatus(&stSignalInfo);
    return TC_EXPECT_TRUE(stSignalInfo.bVifLock == 1) &&
           TC_EXPECT_TRUE(stSignalInfo.bVideoDecoderLock == 1);
}

static uint32_t tuneBase(const char* name, uint32_t eTunerId, const Tuning& tuning,
                         const Standard& standard) {
    return onFrontEnd(name, frontEndOf(eTunerId, standard, FRONT_END_ALONE),
                      [&](CaseContext& tc, FrontEnd& bench) { tuneAndLook(tc, bench, tuning); });
}

/** With the record as the first tuning leaves it: a second search goes on from there. */
static uint32_t tuneTwiceBase(const char* name, uint32_t eTunerId, const Tuning& tuning) {
    return onFrontEnd(name, frontEndOf(eTunerId, configured, FRONT_END_ALONE),
                      [&](CaseContext& tc, FrontEnd& bench) {
                          for (int round = 0; round < ROUNDS; round++) {
                              if (!tuneAndLook(tc, bench, tuning))
                                  return;
                          }
                      });
}

/** On channel 0, then on channel 1. */
static uint32_t tuneTwoChannelsBase(const char* name, uint32_t eTunerId, const Tuning& tuning,
                                    const Standard& standard) {
    return onFrontEnd(name, frontEndOf(eTunerId, standard, FRONT_END_ALONE),
                      [&](CaseContext& tc, FrontEnd& bench) {
                          if (!tuneAndLook(tc, bench, tuning))
                              return;
                          getParams(bench, 1);
                          tuneAndLook(tc, bench, tuning);
                      });
}

/** The decision is told although there is nothing to receive. */
static uint32_t tuneWithoutSignalBase(const char* name, uint32_t eTuneType) {
    return onFrontEnd(
        name, frontEndOf(QLX_TUNER_0, configured, FRONT_END_ALONE),
        [&](CaseContext& tc, FrontEnd& bench) {
            bench.stTuningParams.Frequency -= GAP_BELOW_CHANNEL;
            bench.stTuningParams.eTuneType = eTuneType;
            AFE_ForgetEvent();
            if (!TC_EXPECT_RET_TEXT("QLX_AFESetTuningParam(eTunerId, &stTuningParams)",
                                    QLX_AFESetTuningParam(bench.eTunerId, &bench.stTuningParams)))
                return;
            sleep(NO_SIGNAL_WAIT_S);
            const uint32_t eEvent = AFE_LastEvent();
            TC_EXPECT_EQUAL(QLX_EVENT_ANALOG_SIGNAL_LOCKED, eEvent);
        });
}

static uint32_t soundChangeBase(const char* name) {
    return onFrontEnd(
        name, frontEndOf(QLX_TUNER_0, configured, WITH_DECODERS, AFE_AFECallbackNotifyMtsChange),
        [](CaseContext& tc, FrontEnd& bench) {
            AFE_ForgetEvent();
            if (tune(tc, bench, change)) {
                const uint32_t eEvent = AFE_LastEvent();
                TC_EXPECT_EQUAL(QLX_EVENT_ANALOG_MTS_CHANGED, eEvent);
            }
        });
}

static uint32_t actualParamsBase(const char* name, uint32_t eTunerId, const Standard& standard) {
    return onFrontEnd(
        name, frontEndOf(eTunerId, standard, FRONT_END_ALONE),
        [&](CaseContext& tc, FrontEnd& bench) {
            const QLX_AnalogTuningParams& stTuningParams = bench.stTuningParams;
            QLX_AnalogTuningParams stActuralTuningParams = {};
            if (!tune(tc, bench, change) ||
                !TC_EXPECT_RET(QLX_AFEGetTuningParam(eTunerId, &stActuralTuningParams)))
                return;
            AFE_PrintAnlaogTuneParam(&stActuralTuningParams);
            TC_EXPECT_EQUAL(stTuningParams.AudioStandard, stActuralTuningParams.AudioStandard);
            TC_EXPECT_EQUAL(stTuningParams.ColorStandard, stActuralTuningParams.ColorStandard);
        });
}

// What is received, while it plays.

/** A case on a channel that plays: `work` on it. */
template <typename Work>
static uint32_t onPlay(const char* name, uint32_t eTunerId, Work work) {
    return onFrontEnd(name, frontEndOf(eTunerId, configured, WITH_DECODERS),
                      [&](CaseContext& tc, FrontEnd& bench) {
                          if (!tune(tc, bench, change) || !TC_EXPECT_RET(AFE_AVPlay(eTunerId)))
                              return;
                          work(tc);
                          TC_EXPECT_RET(AFE_AVStop(eTunerId));
                      });
}

using SetValue = int32_t (*)(uint32_t eTunerId, uint32_t value);

/** A word of the sound or colour decoder, and how the operator is asked for it. */
struct Setting {
    SetValue set;
    const char* text;
    const char* question;
};

// clang-format off
static const Setting audioForce = {QLX_SIFSetAudioStdForce, "QLX_SIFSetAudioStdForce(eTunerId, eAudioStandard)",
    "please enter the audio standard \r\nAUTO:1\r\nBG:2\r\nI:4\r\nDK:5\r\nM:9\r\nN:13\r\nL:8\r"};
static const Setting colorForce = {QLX_SIFSetColorStdForce, "QLX_SIFSetColorStdForce(eTunerId, eColorStandard)",
    "please enter the color standard \r\nAUTO:1\r\nNTSC:2\r\nNTSC443:3\r\nPAL:4\r\nPAL_N:5\r\nSECAM:8\r"};
static const Setting soundMode  = {QLX_SIFSetSndOutMode,    "QLX_SIFSetSndOutMode(eTunerId, eSndOutMode)",
    "please enter the sound out mode \r\nMONO:0\r\nSTEREO:1\r\nDUAL_A:2\r\nBTSC_MONO:5\r\nBTSC_STEREO:6\r\nBTSC_SAP:7\r\n"
    "NICAM_MONO:9\r\nNICAM_STEREO:10\r\nNICAM_DUAL_A:11\r\nNICAM_DUAL_B:12\r\nNICAM_DUAL_AB:13\r\n"};
// clang-format on

static uint32_t setBase(const char* name, uint32_t eTunerId, const Setting& setting,
                        uint32_t value) {
    return onPlay(name, eTunerId, [&](CaseContext& tc) {
        TC_EXPECT_RET_TEXT(setting.text, setting.set(eTunerId, value));
    });
}

static uint32_t setTypedBase(const char* name, uint32_t eTunerId, const Setting& setting) {
    return onPlay(name, eTunerId, [&](CaseContext& tc) {
        int32_t value = 0;
        zk_log("%s", setting.question);
        const bool answered = tc_askNumber(&value) == PROMPT_NUMBER;
        if (TC_EXPECT_TRUE(answered))
            TC_EXPECT_RET_TEXT(setting.text, setting.set(eTunerId, static_cast<uint32_t>(value)));
    });
}

static uint32_t audioDetectionBase(const char* name, uint32_t eTunerId) {
    return onFrontEnd(name, frontEndOf(eTunerId, configured, FRONT_END_ALONE),
                      [&](CaseContext& tc, FrontEnd& bench) {
                          uint32_t eAudioStandard = 0;
                          if (tune(tc, bench, change) &&
                              TC_EXPECT_RET(QLX_SIFGetAudioStdDetection(eTunerId, &eAudioStandard)))
                              zk_log("get the audio standard = %d \r\n",
                                     static_cast<int>(eAudioStandard));
                      });
}

static uint32_t colorDetectionBase(const char* name, uint32_t eTunerId) {
    return onFrontEnd(name, frontEndOf(eTunerId, configured, FRONT_END_ALONE),
                      [&](CaseContext& tc, FrontEnd& bench) {
                          uint32_t eColorStandard = 0;
                          if (tune(tc, bench, change) &&
                              TC_EXPECT_RET(QLX_SIFGetColorStdDetection(eTunerId, &eColorStandard)))
                              zk_log("get the color standard = %d \r\n",
                                     static_cast<int>(eColorStandard));
                      });
}

static uint32_t getSoundModeBase(const char* name, uint32_t eTunerId) {
    return onPlay(name, eTunerId, [&](CaseContext& tc) {
        uint32_t eSndOutMode = 0;
        if (TC_EXPECT_RET(QLX_SIFGetSndOutMode(eTunerId, &eSndOutMode)))
            zk_log("get sound mode = %d", static_cast<int>(eSndOutMode));
    });
}

static uint32_t playBase(const char* name, uint32_t eTunerId) {
    return onPlay(name, eTunerId, [&](CaseContext& tc) {
        QLX_VideoInfo videoInfo = {};
        QLX_AudioInfo audioInfo = {};
        if (TC_EXPECT_RET(QLX_VideoGetVideoInfo(QLX_VIDEODEV_NUMBER_0,
                                                QLX_VIDEO_PARAMTYPE_GET_DECINFO, &videoInfo)))
            TC_EXPECT_EQUAL(1, videoInfo.stVideoDecInfo.eVideoPresent);
        if (TC_EXPECT_RET_TEXT(
                "QLX_AudioGetAudioInfo(QLX_AUDIODEV_NUMBER_0, "
                "QLX_AUDIO_PARAMTYPE_DIGITAL_AUDIO_INFO, &audioInfo)",
                QLX_AudioGetAudioInfo(QLX_AUDIODEV_NUMBER_0, QLX_AUDIO_PARAMTYPE_DIGITAL_AUDIO_INFO,
                                      &audioInfo)))
            TC_EXPECT_EQUAL(1, audioInfo.stAudioDecInfo.audioPresent);
        sleep(PLAY_TIME_S);
    });
}

/** The numbers that the standards of a station are mapped to. */
struct MappedStandard {
    uint32_t audio;
    uint32_t color;
};

static uint32_t checkStandardsBase(const char* name, const Standard& standard,
                                   const MappedStandard& expected) {
    return onFrontEnd(
        name, frontEndOf(QLX_TUNER_0, standard, FRONT_END_ALONE),
        [&](CaseContext& tc, FrontEnd& bench) {
            uint32_t eAudioStandard = 0;
            uint32_t eColorStandard = 0;
            if (!tune(tc, bench, scan) ||
                !TC_EXPECT_RET(QLX_SIFGetAudioStdDetection(QLX_TUNER_0, &eAudioStandard)) ||
                !TC_EXPECT_RET(QLX_SIFGetColorStdDetection(QLX_TUNER_0, &eColorStandard)))
                return;
            const uint32_t audio = AFE_MapAudioStd(eAudioStandard);
            const uint32_t color = AFE_MapColorStd(eColorStandard);
            TC_EXPECT_EQUAL(expected.audio, audio);
            TC_EXPECT_EQUAL(expected.color, color);
        });
}

// clang-format off
#define INIT_FAMILY(X) \
    /* case            flag    description                                                  body */ \
    X(TC_AFE_Init_001, AUTO,   "Init and deinit AFE-0",                                     initBase(__func__, QLX_TUNER_0)) \
    X(TC_AFE_Init_002, AUTO,   "Deinit AFE-0 without init",                                 deinitBase(__func__, QLX_TUNER_0)) \
    X(TC_AFE_Init_003, AUTO,   "Init AFE-0 for the second consecutive time without deinit", initTwiceBase(__func__, QLX_TUNER_0)) \
    X(TC_AFE_Init_004, AUTO,   "Init and deinit AFE-1",                                     initBase(__func__, QLX_TUNER_1)) \
    X(TC_AFE_Init_005, AUTO,   "Deinit AFE-1 without init",                                 deinitBase(__func__, QLX_TUNER_1)) \
    X(TC_AFE_Init_006, AUTO,   "Init AFE-1 for the second consecutive time without deinit", initTwiceBase(__func__, QLX_TUNER_1)) \
    X(TC_AFE_Init_007, AUTO,   "Init and deinit AFE-2",                                     initBase(__func__, QLX_TUNER_2)) \
    X(TC_AFE_Init_008, AUTO,   "Deinit AFE-2 without init",                                 deinitBase(__func__, QLX_TUNER_2)) \
    X(TC_AFE_Init_009, AUTO,   "Init AFE-2 for the second consecutive time without deinit", initTwiceBase(__func__, QLX_TUNER_2)) \
    X(TC_AFE_Init_010, AUTO,   "Init and deinit AFE-3",                                     initBase(__func__, QLX_TUNER_3)) \
    X(TC_AFE_Init_011, AUTO,   "Deinit AFE-3 without init",                                 deinitBase(__func__, QLX_TUNER_3)) \
    X(TC_AFE_Init_012, AUTO,   "Init AFE-3 for the second consecutive time without deinit", initTwiceBase(__func__, QLX_TUNER_3)) \
    X(TC_AFE_Init_013, AUTO,   "Init AFE with QLX_TUNER_INVALID",                           initRefusedBase(__func__, static_cast<uint32_t>(QLX_TUNER_INVALID))) \
    X(TC_AFE_Init_014, AUTO,   "Init AFE with QLX_TUNER_MAX",                               initRefusedBase(__func__, QLX_TUNER_MAX))
#define OPEN_FAMILY(X) \
    /* case            flag    description                                                 body */ \
    X(TC_AFE_Open_001, AUTO,   "Open AFE-0 after init and deinit",                         openUninitialisedBase(__func__, QLX_TUNER_0)) \
    X(TC_AFE_Open_002, AUTO,   "Open and close AFE-0",                                     openBase(__func__, QLX_TUNER_0, 1)) \
    X(TC_AFE_Open_003, AUTO,   "Open AFE-0 for the second consecutive time without close", openBase(__func__, QLX_TUNER_0, 2)) \
    X(TC_AFE_Open_004, AUTO,   "Open AFE-1 after init and deinit",                         openUninitialisedBase(__func__, QLX_TUNER_1)) \
    X(TC_AFE_Open_005, AUTO,   "Open and close AFE-1",                                     openBase(__func__, QLX_TUNER_1, 1)) \
    X(TC_AFE_Open_006, AUTO,   "Open AFE-1 for the second consecutive time without close", openBase(__func__, QLX_TUNER_1, 2)) \
    X(TC_AFE_Open_007, AUTO,   "Open AFE-2 after init and deinit",                         openUninitialisedBase(__func__, QLX_TUNER_2)) \
    X(TC_AFE_Open_008, AUTO,   "Open and close AFE-2",                                     openBase(__func__, QLX_TUNER_2, 1)) \
    X(TC_AFE_Open_009, AUTO,   "Open AFE-2 for the second consecutive time without close", openBase(__func__, QLX_TUNER_2, 2)) \
    X(TC_AFE_Open_010, AUTO,   "Open AFE-3 after init and deinit",                         openUninitialisedBase(__func__, QLX_TUNER_3)) \
    X(TC_AFE_Open_011, AUTO,   "Open and close AFE-3",                                     openBase(__func__, QLX_TUNER_3, 1)) \
    X(TC_AFE_Open_012, AUTO,   "Open AFE-3 for the second consecutive time without close", openBase(__func__, QLX_TUNER_3, 2))
#define CLOSE_FAMILY(X) \
    /* case             flag    description                 body */ \
    X(TC_AFE_Close_001, AUTO,   "Close AFE-0 without open", closeUnopenedBase(__func__, QLX_TUNER_0)) \
    X(TC_AFE_Close_002, AUTO,   "Close AFE-0 without init", closeUninitialisedBase(__func__, QLX_TUNER_0)) \
    X(TC_AFE_Close_003, AUTO,   "Close AFE-1 without open", closeUnopenedBase(__func__, QLX_TUNER_1)) \
    X(TC_AFE_Close_004, AUTO,   "Close AFE-1 without init", closeUninitialisedBase(__func__, QLX_TUNER_1)) \
    X(TC_AFE_Close_005, AUTO,   "Close AFE-2 without open", closeUnopenedBase(__func__, QLX_TUNER_2)) \
    X(TC_AFE_Close_006, AUTO,   "Close AFE-2 without init", closeUninitialisedBase(__func__, QLX_TUNER_2)) \
    X(TC_AFE_Close_007, AUTO,   "Close AFE-3 without open", closeUnopenedBase(__func__, QLX_TUNER_3)) \
    X(TC_AFE_Close_008, AUTO,   "Close AFE-3 without init", closeUninitialisedBase(__func__, QLX_TUNER_3))
#define TUNING_FAMILY(X) \
    /* case              flag    description                                                          body */ \
    X(TC_AFE_Tuning_001, AUTO,   "Tune AFE-0 by channel scan",                                        tuneBase(__func__, QLX_TUNER_0, scan, configured)) \
    X(TC_AFE_Tuning_002, AUTO,   "Tune AFE-0 by channel change",                                      tuneBase(__func__, QLX_TUNER_0, change, configured)) \
    X(TC_AFE_Tuning_003, AUTO,   "Tune AFE-0 by channel change in PAL/DK",                            tuneBase(__func__, QLX_TUNER_0, change, palDk)) \
    X(TC_AFE_Tuning_004, AUTO,   "Tune AFE-0 by channel change in PAL/I",                             tuneBase(__func__, QLX_TUNER_0, change, palI)) \
    X(TC_AFE_Tuning_005, AUTO,   "Tune AFE-0 by channel change in NTSC/M",                            tuneBase(__func__, QLX_TUNER_0, change, ntscM)) \
    X(TC_AFE_Tuning_006, AUTO,   "Tune AFE-0 by channel scan in PAL/DK",                              tuneBase(__func__, QLX_TUNER_0, scan, palDk)) \
    X(TC_AFE_Tuning_007, AUTO,   "Tune AFE-0 by channel scan in PAL/I",                               tuneBase(__func__, QLX_TUNER_0, scan, palI)) \
    X(TC_AFE_Tuning_008, AUTO,   "Tune AFE-0 by channel scan in NTSC/M",                              tuneBase(__func__, QLX_TUNER_0, scan, ntscM)) \
    X(TC_AFE_Tuning_009, AUTO,   "Tune AFE-0 by channel scan twice",                                  tuneTwiceBase(__func__, QLX_TUNER_0, scan)) \
    X(TC_AFE_Tuning_010, AUTO,   "Tune AFE-0 by channel change twice",                                tuneTwiceBase(__func__, QLX_TUNER_0, change)) \
    X(TC_AFE_Tuning_011, AUTO,   "Tune AFE-0 by channel change in PAL/DK to channel 0 and channel 1", tuneTwoChannelsBase(__func__, QLX_TUNER_0, change, palDk)) \
    X(TC_AFE_Tuning_012, AUTO,   "Tune AFE-0 by channel change in PAL/I to channel 0 and channel 1",  tuneTwoChannelsBase(__func__, QLX_TUNER_0, change, palI)) \
    X(TC_AFE_Tuning_013, AUTO,   "Tune AFE-0 by channel change in NTSC/M to channel 0 and channel 1", tuneTwoChannelsBase(__func__, QLX_TUNER_0, change, ntscM)) \
    X(TC_AFE_Tuning_014, AUTO,   "Tune AFE-0 by channel scan in PAL/DK to channel 0 and channel 1",   tuneTwoChannelsBase(__func__, QLX_TUNER_0, scan, palDk)) \
    X(TC_AFE_Tuning_015, AUTO,   "Tune AFE-0 by channel scan in PAL/I to channel 0 and channel 1",    tuneTwoChannelsBase(__func__, QLX_TUNER_0, scan, palI)) \
    X(TC_AFE_Tuning_016, AUTO,   "Tune AFE-0 by channel scan in NTSC/M to channel 0 and channel 1",   tuneTwoChannelsBase(__func__, QLX_TUNER_0, scan, ntscM)) \
    X(TC_AFE_Tuning_017, AUTO,   "Tune AFE-1 by channel scan",                                        tuneBase(__func__, QLX_TUNER_1, scan, configured)) \
    X(TC_AFE_Tuning_018, AUTO,   "Tune AFE-1 by channel change",                                      tuneBase(__func__, QLX_TUNER_1, change, configured)) \
    X(TC_AFE_Tuning_019, AUTO,   "Tune AFE-1 by channel change in PAL/DK",                            tuneBase(__func__, QLX_TUNER_1, change, palDk)) \
    X(TC_AFE_Tuning_020, AUTO,   "Tune AFE-1 by channel change in PAL/I",                             tuneBase(__func__, QLX_TUNER_1, change, palI)) \
    X(TC_AFE_Tuning_021, AUTO,   "Tune AFE-1 by channel change in NTSC/M",                            tuneBase(__func__, QLX_TUNER_1, change, ntscM)) \
    X(TC_AFE_Tuning_022, AUTO,   "Tune AFE-1 by channel scan in PAL/DK",                              tuneBase(__func__, QLX_TUNER_1, scan, palDk)) \
    X(TC_AFE_Tuning_023, AUTO,   "Tune AFE-1 by channel scan in PAL/I",                               tuneBase(__func__, QLX_TUNER_1, scan, palI)) \
    X(TC_AFE_Tuning_024, AUTO,   "Tune AFE-1 by channel scan in NTSC/M",                              tuneBase(__func__, QLX_TUNER_1, scan, ntscM)) \
    X(TC_AFE_Tuning_025, AUTO,   "Tune AFE-1 by channel scan twice",                                  tuneTwiceBase(__func__, QLX_TUNER_1, scan)) \
    X(TC_AFE_Tuning_026, AUTO,   "Tune AFE-1 by channel change twice",                                tuneTwiceBase(__func__, QLX_TUNER_1, change)) \
    X(TC_AFE_Tuning_027, AUTO,   "Tune AFE-1 by channel change in PAL/DK to channel 0 and channel 1", tuneTwoChannelsBase(__func__, QLX_TUNER_1, change, palDk)) \
    X(TC_AFE_Tuning_028, AUTO,   "Tune AFE-1 by channel change in PAL/I to channel 0 and channel 1",  tuneTwoChannelsBase(__func__, QLX_TUNER_1, change, palI)) \
    X(TC_AFE_Tuning_029, AUTO,   "Tune AFE-1 by channel change in NTSC/M to channel 0 and channel 1", tuneTwoChannelsBase(__func__, QLX_TUNER_1, change, ntscM)) \
    X(TC_AFE_Tuning_030, AUTO,   "Tune AFE-1 by channel scan in PAL/DK to channel 0 and channel 1",   tuneTwoChannelsBase(__func__, QLX_TUNER_1, scan, palDk)) \
    X(TC_AFE_Tuning_031, AUTO,   "Tune AFE-1 by channel scan in PAL/I to channel 0 and channel 1",    tuneTwoChannelsBase(__func__, QLX_TUNER_1, scan, palI)) \
    X(TC_AFE_Tuning_032, AUTO,   "Tune AFE-1 by channel scan in NTSC/M to channel 0 and channel 1",   tuneTwoChannelsBase(__func__, QLX_TUNER_1, scan, ntscM)) \
    X(TC_AFE_Tuning_033, AUTO,   "Tune AFE-2 by channel scan",                                        tuneBase(__func__, QLX_TUNER_2, scan, configured)) \
    X(TC_AFE_Tuning_034, AUTO,   "Tune AFE-2 by channel change",                                      tuneBase(__func__, QLX_TUNER_2, change, configured)) \
    X(TC_AFE_Tuning_035, AUTO,   "Tune AFE-2 by channel change in PAL/DK",                            tuneBase(__func__, QLX_TUNER_2, change, palDk)) \
    X(TC_AFE_Tuning_036, AUTO,   "Tune AFE-2 by channel change in PAL/I",                             tuneBase(__func__, QLX_TUNER_2, change, palI)) \
    X(TC_AFE_Tuning_037, AUTO,   "Tune AFE-2 by channel change in NTSC/M",                            tuneBase(__func__, QLX_TUNER_2, change, ntscM)) \
    X(TC_AFE_Tuning_038, AUTO,   "Tune AFE-2 by channel scan in PAL/DK",                              tuneBase(__func__, QLX_TUNER_2, scan, palDk)) \
    X(TC_AFE_Tuning_039, AUTO,   "Tune AFE-2 by channel scan in PAL/I",                               tuneBase(__func__, QLX_TUNER_2, scan, palI)) \
    X(TC_AFE_Tuning_040, AUTO,   "Tune AFE-2 by channel scan in NTSC/M",                              tuneBase(__func__, QLX_TUNER_2, scan, ntscM)) \
    X(TC_AFE_Tuning_041, AUTO,   "Tune AFE-2 by channel scan twice",                                  tuneTwiceBase(__func__, QLX_TUNER_2, scan)) \
    X(TC_AFE_Tuning_042, AUTO,   "Tune AFE-2 by channel change twice",                                tuneTwiceBase(__func__, QLX_TUNER_2, change)) \
    X(TC_AFE_Tuning_043, AUTO,   "Tune AFE-2 by channel change in PAL/DK to channel 0 and channel 1", tuneTwoChannelsBase(__func__, QLX_TUNER_2, change, palDk)) \
    X(TC_AFE_Tuning_044, AUTO,   "Tune AFE-2 by channel change in PAL/I to channel 0 and channel 1",  tuneTwoChannelsBase(__func__, QLX_TUNER_2, change, palI)) \
    X(TC_AFE_Tuning_045, AUTO,   "Tune AFE-2 by channel change in NTSC/M to channel 0 and channel 1", tuneTwoChannelsBase(__func__, QLX_TUNER_2, change, ntscM)) \
    X(TC_AFE_Tuning_046, AUTO,   "Tune AFE-2 by channel scan in PAL/DK to channel 0 and channel 1",   tuneTwoChannelsBase(__func__, QLX_TUNER_2, scan, palDk)) \
    X(TC_AFE_Tuning_047, AUTO,   "Tune AFE-2 by channel scan in PAL/I to channel 0 and channel 1",    tuneTwoChannelsBase(__func__, QLX_TUNER_2, scan, palI)) \
    X(TC_AFE_Tuning_048, AUTO,   "Tune AFE-2 by channel scan in NTSC/M to channel 0 and channel 1",   tuneTwoChannelsBase(__func__, QLX_TUNER_2, scan, ntscM)) \
    X(TC_AFE_Tuning_049, AUTO,   "Tune AFE-3 by channel scan",                                        tuneBase(__func__, QLX_TUNER_3, scan, configured)) \
    X(TC_AFE_Tuning_050, AUTO,   "Tune AFE-3 by channel change",                                      tuneBase(__func__, QLX_TUNER_3, change, configured)) \
    X(TC_AFE_Tuning_051, AUTO,   "Tune AFE-3 by channel change in PAL/DK",                            tuneBase(__func__, QLX_TUNER_3, change, palDk)) \
    X(TC_AFE_Tuning_052, AUTO,   "Tune AFE-3 by channel change in PAL/I",                             tuneBase(__func__, QLX_TUNER_3, change, palI)) \
    X(TC_AFE_Tuning_053, AUTO,   "Tune AFE-3 by channel change in NTSC/M",                            tuneBase(__func__, QLX_TUNER_3, change, ntscM)) \
    X(TC_AFE_Tuning_054, AUTO,   "Tune AFE-3 by channel scan in PAL/DK",                              tuneBase(__func__, QLX_TUNER_3, scan, palDk)) \
    X(TC_AFE_Tuning_055, AUTO,   "Tune AFE-3 by channel scan in PAL/I",                               tuneBase(__func__, QLX_TUNER_3, scan, palI)) \
    X(TC_AFE_Tuning_056, AUTO,   "Tune AFE-3 by channel scan in NTSC/M",                              tuneBase(__func__, QLX_TUNER_3, scan, ntscM)) \
    X(TC_AFE_Tuning_057, AUTO,   "Tune AFE-3 by channel scan twice",                                  tuneTwiceBase(__func__, QLX_TUNER_3, scan)) \
    X(TC_AFE_Tuning_058, AUTO,   "Tune AFE-3 by channel change twice",                                tuneTwiceBase(__func__, QLX_TUNER_3, change)) \
    X(TC_AFE_Tuning_059, AUTO,   "Tune AFE-3 by channel change in PAL/DK to channel 0 and channel 1", tuneTwoChannelsBase(__func__, QLX_TUNER_3, change, palDk)) \
    X(TC_AFE_Tuning_060, AUTO,   "Tune AFE-3 by channel change in PAL/I to channel 0 and channel 1",  tuneTwoChannelsBase(__func__, QLX_TUNER_3, change, palI)) \
    X(TC_AFE_Tuning_061, AUTO,   "Tune AFE-3 by channel change in NTSC/M to channel 0 and channel 1", tuneTwoChannelsBase(__func__, QLX_TUNER_3, change, ntscM)) \
    X(TC_AFE_Tuning_062, AUTO,   "Tune AFE-3 by channel scan in PAL/DK to channel 0 and channel 1",   tuneTwoChannelsBase(__func__, QLX_TUNER_3, scan, palDk)) \
    X(TC_AFE_Tuning_063, AUTO,   "Tune AFE-3 by channel scan in PAL/I to channel 0 and channel 1",    tuneTwoChannelsBase(__func__, QLX_TUNER_3, scan, palI)) \
    X(TC_AFE_Tuning_064, AUTO,   "Tune AFE-3 by channel scan in NTSC/M to channel 0 and channel 1",   tuneTwoChannelsBase(__func__, QLX_TUNER_3, scan, ntscM)) \
    X(TC_AFE_Tuning_065, AUTO,   "Check the lock event of AFE-0 by channel scan without signal",      tuneWithoutSignalBase(__func__, QLX_AFE_TUNE_TYPE_CHANNEL_SCAN)) \
    X(TC_AFE_Tuning_066, AUTO,   "Check the lock event of AFE-0 by channel change without signal",    tuneWithoutSignalBase(__func__, QLX_AFE_TUNE_TYPE_CHANNEL_CHANGE)) \
    X(TC_AFE_Tuning_067, AUTO,   "Check the MTS changed event of AFE-0",                              soundChangeBase(__func__))
#define ACTUAL_PARAMS_FAMILY(X) \
    /* case                          flag    description                                                                    body */ \
    X(TC_AFE_ActualTuningParams_001, AUTO,   "Compare the tuning params getted from AFE-0 with the setted before (PAL/DK)", actualParamsBase(__func__, QLX_TUNER_0, palDk)) \
    X(TC_AFE_ActualTuningParams_002, AUTO,   "Compare the tuning params getted from AFE-0 with the setted before (PAL/I)",  actualParamsBase(__func__, QLX_TUNER_0, palI)) \
    X(TC_AFE_ActualTuningParams_003, AUTO,   "Compare the tuning params getted from AFE-0 with the setted before (NTSC/M)", actualParamsBase(__func__, QLX_TUNER_0, ntscM)) \
    X(TC_AFE_ActualTuningParams_004, AUTO,   "Compare the tuning params getted from AFE-1 with the setted before (PAL/DK)", actualParamsBase(__func__, QLX_TUNER_1, palDk)) \
    X(TC_AFE_ActualTuningParams_005, AUTO,   "Compare the tuning params getted from AFE-1 with the setted before (PAL/I)",  actualParamsBase(__func__, QLX_TUNER_1, palI)) \
    X(TC_AFE_ActualTuningParams_006, AUTO,   "Compare the tuning params getted from AFE-1 with the setted before (NTSC/M)", actualParamsBase(__func__, QLX_TUNER_1, ntscM)) \
    X(TC_AFE_ActualTuningParams_007, AUTO,   "Compare the tuning params getted from AFE-2 with the setted before (PAL/DK)", actualParamsBase(__func__, QLX_TUNER_2, palDk)) \
    X(TC_AFE_ActualTuningParams_008, AUTO,   "Compare the tuning params getted from AFE-2 with the setted before (PAL/I)",  actualParamsBase(__func__, QLX_TUNER_2, palI)) \
    X(TC_AFE_ActualTuningParams_009, AUTO,   "Compare the tuning params getted from AFE-2 with the setted before (NTSC/M)", actualParamsBase(__func__, QLX_TUNER_2, ntscM)) \
    X(TC_AFE_ActualTuningParams_010, AUTO,   "Compare the tuning params getted from AFE-3 with the setted before (PAL/DK)", actualParamsBase(__func__, QLX_TUNER_3, palDk)) \
    X(TC_AFE_ActualTuningParams_011, AUTO,   "Compare the tuning params getted from AFE-3 with the setted before (PAL/I)",  actualParamsBase(__func__, QLX_TUNER_3, palI)) \
    X(TC_AFE_ActualTuningParams_012, AUTO,   "Compare the tuning params getted from AFE-3 with the setted before (NTSC/M)", actualParamsBase(__func__, QLX_TUNER_3, ntscM))
#define AUDIO_FORCE_FAMILY(X) \
    /* case                        flag    description                                             body */ \
    X(TC_AFE_SetAudioStdForce_001, AUTO,   "Force the audio standard of AFE-0 to M",               setBase(__func__, QLX_TUNER_0, audioForce, QLX_ANALOG_AUDSTD_M)) \
    X(TC_AFE_SetAudioStdForce_002, AUTO,   "Force the audio standard of AFE-0 to I",               setBase(__func__, QLX_TUNER_0, audioForce, QLX_ANALOG_AUDSTD_I)) \
    X(TC_AFE_SetAudioStdForce_003, AUTO,   "Force the audio standard of AFE-0 to DK",              setBase(__func__, QLX_TUNER_0, audioForce, QLX_ANALOG_AUDSTD_DK)) \
    X(TC_AFE_SetAudioStdForce_004, MANUAL, "Force the audio standard of AFE-0 to the input value", setTypedBase(__func__, QLX_TUNER_0, audioForce)) \
    X(TC_AFE_SetAudioStdForce_005, AUTO,   "Force the audio standard of AFE-1 to M",               setBase(__func__, QLX_TUNER_1, audioForce, QLX_ANALOG_AUDSTD_M)) \
    X(TC_AFE_SetAudioStdForce_006, AUTO,   "Force the audio standard of AFE-1 to I",               setBase(__func__, QLX_TUNER_1, audioForce, QLX_ANALOG_AUDSTD_I)) \
    X(TC_AFE_SetAudioStdForce_007, AUTO,   "Force the audio standard of AFE-1 to DK",              setBase(__func__, QLX_TUNER_1, audioForce, QLX_ANALOG_AUDSTD_DK)) \
    X(TC_AFE_SetAudioStdForce_008, MANUAL, "Force the audio standard of AFE-1 to the input value", setTypedBase(__func__, QLX_TUNER_1, audioForce)) \
    X(TC_AFE_SetAudioStdForce_009, AUTO,   "Force the audio standard of AFE-2 to M",               setBase(__func__, QLX_TUNER_2, audioForce, QLX_ANALOG_AUDSTD_M)) \
    X(TC_AFE_SetAudioStdForce_010, AUTO,   "Force the audio standard of AFE-2 to I",               setBase(__func__, QLX_TUNER_2, audioForce, QLX_ANALOG_AUDSTD_I)) \
    X(TC_AFE_SetAudioStdForce_011, AUTO,   "Force the audio standard of AFE-2 to DK",              setBase(__func__, QLX_TUNER_2, audioForce, QLX_ANALOG_AUDSTD_DK)) \
    X(TC_AFE_SetAudioStdForce_012, MANUAL, "Force the audio standard of AFE-2 to the input value", setTypedBase(__func__, QLX_TUNER_2, audioForce)) \
    X(TC_AFE_SetAudioStdForce_013, AUTO,   "Force the audio standard of AFE-3 to M",               setBase(__func__, QLX_TUNER_3, audioForce, QLX_ANALOG_AUDSTD_M)) \
    X(TC_AFE_SetAudioStdForce_014, AUTO,   "Force the audio standard of AFE-3 to I",               setBase(__func__, QLX_TUNER_3, audioForce, QLX_ANALOG_AUDSTD_I)) \
    X(TC_AFE_SetAudioStdForce_015, AUTO,   "Force the audio standard of AFE-3 to DK",              setBase(__func__, QLX_TUNER_3, audioForce, QLX_ANALOG_AUDSTD_DK)) \
    X(TC_AFE_SetAudioStdForce_016, MANUAL, "Force the audio standard of AFE-3 to the input value", setTypedBase(__func__, QLX_TUNER_3, audioForce))
#define COLOR_FORCE_FAMILY(X) \
    /* case                        flag    description                                             body */ \
    X(TC_AFE_SetColorStdForce_001, AUTO,   "Force the color standard of AFE-0 to NTSC",            setBase(__func__, QLX_TUNER_0, colorForce, QLX_ANALOG_CLRSTD_NTSC)) \
    X(TC_AFE_SetColorStdForce_002, AUTO,   "Force the color standard of AFE-0 to PAL",             setBase(__func__, QLX_TUNER_0, colorForce, QLX_ANALOG_CLRSTD_PAL)) \
    X(TC_AFE_SetColorStdForce_003, MANUAL, "Force the color standard of AFE-0 to the input value", setTypedBase(__func__, QLX_TUNER_0, colorForce)) \
    X(TC_AFE_SetColorStdForce_004, AUTO,   "Force the color standard of AFE-1 to NTSC",            setBase(__func__, QLX_TUNER_1, colorForce, QLX_ANALOG_CLRSTD_NTSC)) \
    X(TC_AFE_SetColorStdForce_005, AUTO,   "Force the color standard of AFE-1 to PAL",             setBase(__func__, QLX_TUNER_1, colorForce, QLX_ANALOG_CLRSTD_PAL)) \
    X(TC_AFE_SetColorStdForce_006, MANUAL, "Force the color standard of AFE-1 to the input value", setTypedBase(__func__, QLX_TUNER_1, colorForce)) \
    X(TC_AFE_SetColorStdForce_007, AUTO,   "Force the color standard of AFE-2 to NTSC",            setBase(__func__, QLX_TUNER_2, colorForce, QLX_ANALOG_CLRSTD_NTSC)) \
    X(TC_AFE_SetColorStdForce_008, AUTO,   "Force the color standard of AFE-2 to PAL",             setBase(__func__, QLX_TUNER_2, colorForce, QLX_ANALOG_CLRSTD_PAL)) \
    X(TC_AFE_SetColorStdForce_009, MANUAL, "Force the color standard of AFE-2 to the input value", setTypedBase(__func__, QLX_TUNER_2, colorForce)) \
    X(TC_AFE_SetColorStdForce_010, AUTO,   "Force the color standard of AFE-3 to NTSC",            setBase(__func__, QLX_TUNER_3, colorForce, QLX_ANALOG_CLRSTD_NTSC)) \
    X(TC_AFE_SetColorStdForce_011, AUTO,   "Force the color standard of AFE-3 to PAL",             setBase(__func__, QLX_TUNER_3, colorForce, QLX_ANALOG_CLRSTD_PAL)) \
    X(TC_AFE_SetColorStdForce_012, MANUAL, "Force the color standard of AFE-3 to the input value", setTypedBase(__func__, QLX_TUNER_3, colorForce))
#define DETECTION_FAMILY(X) \
    /* case                            flag    description                                 body */ \
    X(TC_AFE_GetAudioStdDetection_001, AUTO,   "Get the detected audio standard of AFE-0", audioDetectionBase(__func__, QLX_TUNER_0)) \
    X(TC_AFE_GetAudioStdDetection_002, AUTO,   "Get the detected audio standard of AFE-1", audioDetectionBase(__func__, QLX_TUNER_1)) \
    X(TC_AFE_GetAudioStdDetection_003, AUTO,   "Get the detected audio standard of AFE-2", audioDetectionBase(__func__, QLX_TUNER_2)) \
    X(TC_AFE_GetAudioStdDetection_004, AUTO,   "Get the detected audio standard of AFE-3", audioDetectionBase(__func__, QLX_TUNER_3)) \
    X(TC_AFE_GetColorStdDetection_001, AUTO,   "Get the detected color standard of AFE-0", colorDetectionBase(__func__, QLX_TUNER_0)) \
    X(TC_AFE_GetColorStdDetection_002, AUTO,   "Get the detected color standard of AFE-1", colorDetectionBase(__func__, QLX_TUNER_1)) \
    X(TC_AFE_GetColorStdDetection_003, AUTO,   "Get the detected color standard of AFE-2", colorDetectionBase(__func__, QLX_TUNER_2)) \
    X(TC_AFE_GetColorStdDetection_004, AUTO,   "Get the detected color standard of AFE-3", colorDetectionBase(__func__, QLX_TUNER_3))
#define SOUND_MODE_FAMILY(X) \
    /* case                    flag    description                                       body */ \
    X(TC_AFE_GetSoundMode_001, AUTO,   "Get the sound mode of AFE-0",                    getSoundModeBase(__func__, QLX_TUNER_0)) \
    X(TC_AFE_GetSoundMode_002, AUTO,   "Get the sound mode of AFE-1",                    getSoundModeBase(__func__, QLX_TUNER_1)) \
    X(TC_AFE_GetSoundMode_003, AUTO,   "Get the sound mode of AFE-2",                    getSoundModeBase(__func__, QLX_TUNER_2)) \
    X(TC_AFE_GetSoundMode_004, AUTO,   "Get the sound mode of AFE-3",                    getSoundModeBase(__func__, QLX_TUNER_3)) \
    X(TC_AFE_SetSoundMode_001, MANUAL, "Set the sound mode of AFE-0 to the input value", setTypedBase(__func__, QLX_TUNER_0, soundMode)) \
    X(TC_AFE_SetSoundMode_002, MANUAL, "Set the sound mode of AFE-1 to the input value", setTypedBase(__func__, QLX_TUNER_1, soundMode)) \
    X(TC_AFE_SetSoundMode_003, MANUAL, "Set the sound mode of AFE-2 to the input value", setTypedBase(__func__, QLX_TUNER_2, soundMode)) \
    X(TC_AFE_SetSoundMode_004, MANUAL, "Set the sound mode of AFE-3 to the input value", setTypedBase(__func__, QLX_TUNER_3, soundMode))
#define PLAY_FAMILY(X) \
    /* case            flag    description                  body */ \
    X(TC_AFE_Play_001, AUTO,   "Play the channel of AFE-0", playBase(__func__, QLX_TUNER_0)) \
    X(TC_AFE_Play_002, AUTO,   "Play the channel of AFE-1", playBase(__func__, QLX_TUNER_1)) \
    X(TC_AFE_Play_003, AUTO,   "Play the channel of AFE-2", playBase(__func__, QLX_TUNER_2)) \
    X(TC_AFE_Play_004, AUTO,   "Play the channel of AFE-3", playBase(__func__, QLX_TUNER_3))
#define CHECK_STANDARDS_FAMILY(X) \
    /* case                                         flag    description                                              body */ \
    X(TC_AV_AtvCheckColorStdAndAudioStd_PAL_DK_001, AUTO,   "Check the color standard and audio standard of PAL/DK", checkStandardsBase(__func__, palDk, {2, 0})) \
    X(TC_AV_AtvCheckColorStdAndAudioStd_PAL_BG_001, AUTO,   "Check the color standard and audio standard of PAL/BG", checkStandardsBase(__func__, palBg, {0, 0})) \
    X(TC_AV_AtvCheckColorStdAndAudioStd_PAL_I_001,  AUTO,   "Check the color standard and audio standard of PAL/I",  checkStandardsBase(__func__, palI, {1, 0})) \
    X(TC_AV_AtvCheckColorStdAndAudioStd_NTSC_M_001, AUTO,   "Check the color standard and audio standard of NTSC/M", checkStandardsBase(__func__, ntscM, {5, 2}))
// clang-format on

INIT_FAMILY(TC_VARIANT_FUNCTION)
OPEN_FAMILY(TC_VARIANT_FUNCTION)
CLOSE_FAMILY(TC_VARIANT_FUNCTION)
TUNING_FAMILY(TC_VARIANT_FUNCTION)
ACTUAL_PARAMS_FAMILY(TC_VARIANT_FUNCTION)
AUDIO_FORCE_FAMILY(TC_VARIANT_FUNCTION)
COLOR_FORCE_FAMILY(TC_VARIANT_FUNCTION)
DETECTION_FAMILY(TC_VARIANT_FUNCTION)
SOUND_MODE_FAMILY(TC_VARIANT_FUNCTION)
PLAY_FAMILY(TC_VARIANT_FUNCTION)
CHECK_STANDARDS_FAMILY(TC_VARIANT_FUNCTION)

// clang-format off
static constexpr TcCase AFEModuleCases[] = {
    INIT_FAMILY(TC_VARIANT_ROW)
    OPEN_FAMILY(TC_VARIANT_ROW)
    CLOSE_FAMILY(TC_VARIANT_ROW)
    TUNING_FAMILY(TC_VARIANT_ROW)
    ACTUAL_PARAMS_FAMILY(TC_VARIANT_ROW)
    AUDIO_FORCE_FAMILY(TC_VARIANT_ROW)
    COLOR_FORCE_FAMILY(TC_VARIANT_ROW)
    DETECTION_FAMILY(TC_VARIANT_ROW)
    SOUND_MODE_FAMILY(TC_VARIANT_ROW)
    PLAY_FAMILY(TC_VARIANT_ROW)
    CHECK_STANDARDS_FAMILY(TC_VARIANT_ROW)
};
// clang-format on
static_assert(tcCaseCount(AFEModuleCases) == 165 && tcAutoCount(AFEModuleCases) == 153,
              "cases of the module, and those that run by themselves");

const TcModule AFEModule = {
    AFE_TestSetup,  AFE_TestTeardown,
    nullptr,        nullptr,
    AFEModuleCases, tcCaseCount(AFEModuleCases),
    "AFE",          "Test module for the ATV ",
    nullptr,
};

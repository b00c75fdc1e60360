// AV-Common: what belongs to no single source. The life of the decoders without one, plays of the
// configured source that the operator looks at, and switches between sources of different kinds.
#include <initializer_list>

#include "testcase/av/av_case.h"
#include "testcase/av/av_events.h"
#include "testcase/av/av_module.h"
#include "testcase/av/av_play.h"
#include "testcase/modules.h"

enum { SWITCH_ROUNDS = 10 };

static const uint32_t eVideoDev = QLX_VIDEODEV_NUMBER_0;
static const uint32_t eAudioDev = QLX_AUDIODEV_NUMBER_0;

// Decoders without a source. To end what was not begun is harmless, so every call of a case is
// tried, and what one has initialised is always ended.

/** A call, and whether the library has to refuse it. */
struct LifeCall {
    const char* text;
    int32_t (*call)();
    bool refused;
};

static constexpr LifeCall refused(const LifeCall& call) {
    return {call.text, call.call, true};
}

#define LIFE_CALL(...)                                               \
    {                                                                \
#__VA_ARGS__, []() -> int32_t { return __VA_ARGS__; }, false \
    }

// clang-format off
static constexpr LifeCall videoInit       = LIFE_CALL(QLX_VideoInit());
static constexpr LifeCall videoDeInit     = LIFE_CALL(QLX_VideoDeInit());
static constexpr LifeCall videoClose      = LIFE_CALL(QLX_VideoClose(eVideoDev));
static constexpr LifeCall videoRegister   = LIFE_CALL(QLX_VideoRegisterCallback(eVideoDev, &g_stVideoRequestData, AV_VideoEventCallback));
static constexpr LifeCall videoUnRegister = LIFE_CALL(QLX_VideoUnRegisterCallback(eVideoDev, AV_VideoEventCallback));
static constexpr LifeCall videoStart      = LIFE_CALL(QLX_VideoStart(eVideoDev, QLX_VIDEO_FORMAT_NONE, 0));
static constexpr LifeCall videoStop       = LIFE_CALL(QLX_VideoStop(eVideoDev));
static constexpr LifeCall audioInit       = LIFE_CALL(QLX_AudioInit());
static constexpr LifeCall audioDeInit     = LIFE_CALL(QLX_AudioDeInit());
static constexpr LifeCall audioClose      = LIFE_CALL(QLX_AudioClose(eAudioDev));
static constexpr LifeCall audioRegister   = LIFE_CALL(QLX_AudioRegisterCallback(eAudioDev, &g_stAudioRequestData, AV_AudioEventCallback));
static constexpr LifeCall audioUnRegister = LIFE_CALL(QLX_AudioUnRegisterCallback(eAudioDev, AV_AudioEventCallback));
static constexpr LifeCall audioStart      = LIFE_CALL(QLX_AudioStart(eAudioDev, QLX_AUDIO_FORMAT_NONE, 0));
static constexpr LifeCall audioStop       = LIFE_CALL(QLX_AudioStop(eAudioDev));
// clang-format on

static uint32_t lifeBase(const char* name, std::initializer_list<LifeCall> calls) {
    CaseContext tc = {name};
    for (const LifeCall& step : calls) {
        if (step.refused)
            TC_EXPECT_REFUSED_TEXT(step.text, step.call());
        else
            TC_EXPECT_RET_TEXT(step.text, step.call());
    }
    return TC_RESULT(tc);
}

// clang-format off
#define LIFE_FAMILY(X) \
    /* case                        flag  description                                          body */ \
    X(TC_AV_Init_001,              AUTO, "Init/Deinit video",                                 lifeBase(__func__, {videoInit, videoDeInit})) \
    X(TC_AV_Init_002,              AUTO, "Init/Deinit audio",                                 lifeBase(__func__, {audioInit, audioDeInit})) \
    X(TC_AV_Init_003,              AUTO, "Init/Deinit video and audio",                       lifeBase(__func__, {videoInit, audioInit, audioDeInit, videoDeInit})) \
    X(TC_AV_Init_004,              AUTO, "Deinit video without init",                         lifeBase(__func__, {videoDeInit})) \
    X(TC_AV_Init_005,              AUTO, "Deinit audio without init",                         lifeBase(__func__, {audioDeInit})) \
    X(TC_AV_Init_006,              AUTO, "Consecutively init video twice without deinit",     lifeBase(__func__, {videoInit, videoInit, videoDeInit})) \
    X(TC_AV_Init_007,              AUTO, "Consecutively init audio twice without deinit",     lifeBase(__func__, {audioInit, audioInit, audioDeInit})) \
    X(TC_AV_OpenClose_222,         AUTO, "Close video-0 without init",                        lifeBase(__func__, {videoInit, videoDeInit, refused(videoClose)})) \
    X(TC_AV_OpenClose_223,         AUTO, "Close video-0 without opening",                     lifeBase(__func__, {videoInit, videoClose, videoDeInit})) \
    X(TC_AV_OpenClose_224,         AUTO, "Close audio-0 without init",                        lifeBase(__func__, {audioInit, audioDeInit, refused(audioClose)})) \
    X(TC_AV_OpenClose_225,         AUTO, "Close audio-0 without opening",                     lifeBase(__func__, {audioInit, audioClose, audioDeInit})) \
    X(TC_AV_RegisterCallback_001,  AUTO, "Register callback to video-0 without opened",       lifeBase(__func__, {refused(videoRegister)})) \
    X(TC_AV_RegisterCallback_002,  AUTO, "Register callback to audio-0 without opened",       lifeBase(__func__, {refused(audioRegister)})) \
    X(TC_AV_RegisterCallback_222,  AUTO, "Unregister callback to video-0 without opened",     lifeBase(__func__, {refused(videoUnRegister)})) \
    X(TC_AV_RegisterCallback_223,  AUTO, "Unregister callback to audio-0 without opened",     lifeBase(__func__, {refused(audioUnRegister)})) \
    X(TC_AV_StartStop_001,         AUTO, "Start video-0 without video opened",                lifeBase(__func__, {refused(videoStart)})) \
    X(TC_AV_StartStop_002,         AUTO, "Start audio-0 without audio opened",                lifeBase(__func__, {refused(audioStart)})) \
    X(TC_AV_StartStop_222,         AUTO, "Stop video-0 without video opened",                 lifeBase(__func__, {refused(videoStop)})) \
    X(TC_AV_StartStop_223,         AUTO, "Stop audio-0 without audio opened",                 lifeBase(__func__, {refused(audioStop)}))
// clang-format on

LIFE_FAMILY(TC_VARIANT_FUNCTION)

static uint32_t TC_AV_GetDevNum_001(void) {
    CaseContext tc = {__func__};
    uint8_t uNum = 0;
    if (TC_EXPECT_RET(QLX_AudioInit())) {
        if (TC_EXPECT_RET(QLX_AudioGetDevNum(&uNum)))
            TC_EXPECT_TRUE(uNum != 0);
        TC_EXPECT_RET(QLX_AudioDeInit());
    }
    return TC_RESULT(tc);
}

// The configured source, as the operator sees and hears it.

/** A kind of play, with the texts of its calls. */
struct OperatorPlay {
    const char* playText;
    uint32_t (*play)(const AvSource* pstSource, const TcChannelInfo* pstChannelInfo);
    const char* stopText;
    uint32_t (*stop)(const AvSource* pstSource);
};

// clang-format off
static const OperatorPlay wholePlay = {"AV_PlayAudioVideo(NULL, NULL)", AV_PlayAudioVideo, "AV_StopAudioVideo(NULL)", AV_StopAudioVideo};
static const OperatorPlay audioPlay = {"AV_StartAudioOnly(NULL, NULL)", AV_StartAudioOnly, "AV_StopAudioOnly(NULL)",  AV_StopAudioOnly};
static const OperatorPlay videoPlay = {"AV_StartVideoOnly(NULL, NULL)", AV_StartVideoOnly, "AV_StopVideoOnly(NULL)",  AV_StopVideoOnly};
// clang-format on

static uint32_t operatorBase(const char* name, const OperatorPlay& kind) {
    CaseContext tc = {name};
    if (TC_EXPECT_RET_TEXT(kind.playText, kind.play(nullptr, nullptr))) {
        TC_EXPECT_RET(AV_CheckConfirm("Playing Ok?"));
        TC_EXPECT_RET_TEXT(kind.stopText, kind.stop(nullptr));
    }
    return TC_RESULT(tc);
}

// clang-format off
#define OPERATOR_FAMILY(X) \
    /* case              flag    description                                                   body */ \
    X(TC_AV_Play_040,    MANUAL, "Play video-0/audio-0 in the configured source",              operatorBase(__func__, wholePlay)) \
    X(TC_AV_Play_041,    MANUAL, "Play audio-0 in the configured source",                      operatorBase(__func__, audioPlay)) \
    X(TC_AV_Play_042,    MANUAL, "Play video-0 in the configured source",                      operatorBase(__func__, videoPlay))
// clang-format on

OPERATOR_FAMILY(TC_VARIANT_FUNCTION)

// Switches between sources of different kinds. No feature is asked: a board without one of the two
// fails.

/** A play that fails has ended itself, and a stop has tried all that it can: nothing is left. */
static uint32_t switchBase(const char* name, const AvSelector& first, const AvSelector& second) {
    CaseContext tc = {name};
    for (int round = 0; round < SWITCH_ROUNDS; round++) {
        for (const AvSelector* selector : {&first, &second}) {
            const AvSource stSource = AV_SelectSource(*selector);
            TC_ASSERT_RET_TEXT("AV_PlayAudioVideo(&stSource, NULL)",
                               AV_PlayAudioVideo(&stSource, nullptr));
            TC_ASSERT_RET(AV_StopAudioVideo(&stSource));
        }
    }
    return TC_RESULT(tc);
}

// clang-format off
#define SWITCH_FAMILY(X) \
    /* case                    flag  description                                                                                        body */ \
    X(TC_AV_SwitchSource_001, AUTO, "Switch source from DTV (Tuner-0,Demux-0) to ATV (Tuner-0) for 10 times with audio-0 and video-0", switchBase(__func__, dtv00, atv0)) \
    X(TC_AV_SwitchSource_002, AUTO, "Switch source from DTV (Tuner-0,Demux-0) to ATV (Tuner-1) for 10 times with audio-0 and video-0", switchBase(__func__, dtv00, atv1)) \
    X(TC_AV_SwitchSource_003, AUTO, "Switch source from DTV (Tuner-0,Demux-0) to ATV (Tuner-2) for 10 times with audio-0 and video-0", switchBase(__func__, dtv00, atv2)) \
    X(TC_AV_SwitchSource_004, AUTO, "Switch source from DTV (Tuner-0,Demux-0) to ATV (Tuner-3) for 10 times with audio-0 and video-0", switchBase(__func__, dtv00, atv3)) \
    X(TC_AV_SwitchSource_005, AUTO, "Switch source from DTV (Tuner-1,Demux-0) to ATV (Tuner-0) for 10 times with audio-0 and video-0", switchBase(__func__, dtv10, atv0)) \
    X(TC_AV_SwitchSource_006, AUTO, "Switch source from DTV (Tuner-1,Demux-0) to ATV (Tuner-1) for 10 times with audio-0 and video-0", switchBase(__func__, dtv10, atv1)) \
    X(TC_AV_SwitchSource_007, AUTO, "Switch source from DTV (Tuner-1,Demux-0) to ATV (Tuner-2) for 10 times with audio-0 and video-0", switchBase(__func__, dtv10, atv2)) \
    X(TC_AV_SwitchSource_008, AUTO, "Switch source from DTV (Tuner-1,Demux-0) to ATV (Tuner-3) for 10 times with audio-0 and video-0", switchBase(__func__, dtv10, atv3)) \
    X(TC_AV_SwitchSource_009, AUTO, "Switch source from DTV (Tuner-0,Demux-1) to ATV (Tuner-0) for 10 times with audio-0 and video-0", switchBase(__func__, dtv01, atv0)) \
    X(TC_AV_SwitchSource_010, AUTO, "Switch source from DTV (Tuner-0,Demux-1) to ATV (Tuner-1) for 10 times with audio-0 and video-0", switchBase(__func__, dtv01, atv1)) \
    X(TC_AV_SwitchSource_011, AUTO, "Switch source from DTV (Tuner-0,Demux-1) to ATV (Tuner-2) for 10 times with audio-0 and video-0", switchBase(__func__, dtv01, atv2)) \
    X(TC_AV_SwitchSource_012, AUTO, "Switch source from DTV (Tuner-0,Demux-1) to ATV (Tuner-3) for 10 times with audio-0 and video-0", switchBase(__func__, dtv01, atv3)) \
    X(TC_AV_SwitchSource_013, AUTO, "Switch source from DTV (Tuner-1,Demux-1) to ATV (Tuner-0) for 10 times with audio-0 and video-0", switchBase(__func__, dtv11, atv0)) \
    X(TC_AV_SwitchSource_014, AUTO, "Switch source from DTV (Tuner-1,Demux-1) to ATV (Tuner-1) for 10 times with audio-0 and video-0", switchBase(__func__, dtv11, atv1)) \
    X(TC_AV_SwitchSource_015, AUTO, "Switch source from DTV (Tuner-1,Demux-1) to ATV (Tuner-2) for 10 times with audio-0 and video-0", switchBase(__func__, dtv11, atv2)) \
    X(TC_AV_SwitchSource_016, AUTO, "Switch source from DTV (Tuner-1,Demux-1) to ATV (Tuner-3) for 10 times with audio-0 and video-0", switchBase(__func__, dtv11, atv3)) \
    X(TC_AV_SwitchSource_021, AUTO, "Switch source from DTV (Tuner-0,Demux-0) to HDMI-0 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv00, hdmi0)) \
    X(TC_AV_SwitchSource_022, AUTO, "Switch source from DTV (Tuner-0,Demux-0) to HDMI-1 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv00, hdmi1)) \
    X(TC_AV_SwitchSource_023, AUTO, "Switch source from DTV (Tuner-0,Demux-0) to HDMI-2 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv00, hdmi2)) \
    X(TC_AV_SwitchSource_024, AUTO, "Switch source from DTV (Tuner-1,Demux-0) to HDMI-0 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv10, hdmi0)) \
    X(TC_AV_SwitchSource_025, AUTO, "Switch source from DTV (Tuner-1,Demux-0) to HDMI-1 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv10, hdmi1)) \
    X(TC_AV_SwitchSource_026, AUTO, "Switch source from DTV (Tuner-1,Demux-0) to HDMI-2 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv10, hdmi2)) \
    X(TC_AV_SwitchSource_027, AUTO, "Switch source from DTV (Tuner-0,Demux-1) to HDMI-0 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv01, hdmi0)) \
    X(TC_AV_SwitchSource_028, AUTO, "Switch source from DTV (Tuner-0,Demux-1) to HDMI-1 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv01, hdmi1)) \
    X(TC_AV_SwitchSource_029, AUTO, "Switch source from DTV (Tuner-0,Demux-1) to HDMI-2 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv01, hdmi2)) \
    X(TC_AV_SwitchSource_030, AUTO, "Switch source from DTV (Tuner-1,Demux-1) to HDMI-0 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv11, hdmi0)) \
    X(TC_AV_SwitchSource_031, AUTO, "Switch source from DTV (Tuner-1,Demux-1) to HDMI-1 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv11, hdmi1)) \
    X(TC_AV_SwitchSource_032, AUTO, "Switch source from DTV (Tuner-1,Demux-1) to HDMI-2 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv11, hdmi2)) \
    X(TC_AV_SwitchSource_041, AUTO, "Switch source from DTV (Tuner-0,Demux-0) to CVBS-0 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv00, cvbs0)) \
    X(TC_AV_SwitchSource_042, AUTO, "Switch source from DTV (Tuner-0,Demux-0) to CVBS-1 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv00, cvbs1)) \
    X(TC_AV_SwitchSource_043, AUTO, "Switch source from DTV (Tuner-1,Demux-0) to CVBS-0 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv10, cvbs0)) \
    X(TC_AV_SwitchSource_044, AUTO, "Switch source from DTV (Tuner-1,Demux-0) to CVBS-1 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv10, cvbs1)) \
    X(TC_AV_SwitchSource_045, AUTO, "Switch source from DTV (Tuner-0,Demux-1) to CVBS-0 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv01, cvbs0)) \
    X(TC_AV_SwitchSource_046, AUTO, "Switch source from DTV (Tuner-0,Demux-1) to CVBS-1 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv01, cvbs1)) \
    X(TC_AV_SwitchSource_047, AUTO, "Switch source from DTV (Tuner-1,Demux-1) to CVBS-0 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv11, cvbs0)) \
    X(TC_AV_SwitchSource_048, AUTO, "Switch source from DTV (Tuner-1,Demux-1) to CVBS-1 for 10 times with audio-0 and video-0",        switchBase(__func__, dtv11, cvbs1)) \
    X(TC_AV_SwitchSource_051, AUTO, "Switch source from DTV (Tuner-0,Demux-0) to YPBPR-0 for 10 times with audio-0 and video-0",       switchBase(__func__, dtv00, ypbpr0)) \
    X(TC_AV_SwitchSource_052, AUTO, "Switch source from DTV (Tuner-0,Demux-0) to YPBPR-1 for 10 times with audio-0 and video-0",       switchBase(__func__, dtv00, ypbpr1)) \
    X(TC_AV_SwitchSource_053, AUTO, "Switch source from DTV (Tuner-1,Demux-0) to YPBPR-0 for 10 times with audio-0 and video-0",       switchBase(__func__, dtv10, ypbpr0)) \
    X(TC_AV_SwitchSource_054, AUTO, "Switch source from DTV (Tuner-1,Demux-0) to YPBPR-1 for 10 times with audio-0 and video-0",       switchBase(__func__, dtv10, ypbpr1)) \
    X(TC_AV_SwitchSource_055, AUTO, "Switch source from DTV (Tuner-0,Demux-1) to YPBPR-0 for 10 times with audio-0 and video-0",       switchBase(__func__, dtv01, ypbpr0)) \
    X(TC_AV_SwitchSource_056, AUTO, "Switch source from DTV (Tuner-0,Demux-1) to YPBPR-1 for 10 times with audio-0 and video-0",       switchBase(__func__, dtv01, ypbpr1)) \
    X(TC_AV_SwitchSource_057, AUTO, "Switch source from DTV (Tuner-1,Demux-1) to YPBPR-0 for 10 times with audio-0 and video-0",       switchBase(__func__, dtv11, ypbpr0)) \
    X(TC_AV_SwitchSource_058, AUTO, "Switch source from DTV (Tuner-1,Demux-1) to YPBPR-1 for 10 times with audio-0 and video-0",       switchBase(__func__, dtv11, ypbpr1)) \
    X(TC_AV_SwitchSource_061, AUTO, "Switch source from ATV (Tuner-0) to HDMI-0 for 10 times with audio-0 and video-0",                switchBase(__func__, atv0, hdmi0)) \
    X(TC_AV_SwitchSource_062, AUTO, "Switch source from ATV (Tuner-0) to HDMI-1 for 10 times with audio-0 and video-0",                switchBase(__func__, atv0, hdmi1)) \
    X(TC_AV_SwitchSource_063, AUTO, "Switch source from ATV (Tuner-0) to HDMI-2 for 10 times with audio-0 and video-0",                switchBase(__func__, atv0, hdmi2)) \
    X(TC_AV_SwitchSource_064, AUTO, "Switch source from ATV (Tuner-1) to HDMI-0 for 10 times with audio-0 and video-0",                switchBase(__func__, atv1, hdmi0)) \
    X(TC_AV_SwitchSource_065, AUTO, "Switch source from ATV (Tuner-1) to HDMI-1 for 10 times with audio-0 and video-0",                switchBase(__func__, atv1, hdmi1)) \
    X(TC_AV_SwitchSource_066, AUTO, "Switch source from ATV (Tuner-1) to HDMI-2 for 10 times with audio-0 and video-0",                switchBase(__func__, atv1, hdmi2)) \
    X(TC_AV_SwitchSource_067, AUTO, "Switch source from ATV (Tuner-2) to HDMI-0 for 10 times with audio-0 and video-0",                switchBase(__func__, atv2, hdmi0)) \
    X(TC_AV_SwitchSource_068, AUTO, "Switch source from ATV (Tuner-2) to HDMI-1 for 10 times with audio-0 and video-0",                switchBase(__func__, atv2, hdmi1)) \
    X(TC_AV_SwitchSource_069, AUTO, "Switch source from ATV (Tuner-2) to HDMI-2 for 10 times with audio-0 and video-0",                switchBase(__func__, atv2, hdmi2)) \
    X(TC_AV_SwitchSource_070, AUTO, "Switch source from ATV (Tuner-3) to HDMI-0 for 10 times with audio-0 and video-0",                switchBase(__func__, atv3, hdmi0)) \
    X(TC_AV_SwitchSource_071, AUTO, "Switch source from ATV (Tuner-3) to HDMI-1 for 10 times with audio-0 and video-0",                switchBase(__func__, atv3, hdmi1)) \
    X(TC_AV_SwitchSource_072, AUTO, "Switch source from ATV (Tuner-3) to HDMI-2 for 10 times with audio-0 and video-0",                switchBase(__func__, atv3, hdmi2)) \
    X(TC_AV_SwitchSource_081, AUTO, "Switch source from ATV (Tuner-0) to CVBS-0 for 10 times with audio-0 and video-0",                switchBase(__func__, atv0, cvbs0)) \
    X(TC_AV_SwitchSource_082, AUTO, "Switch source from ATV (Tuner-0) to CVBS-1 for 10 times with audio-0 and video-0",                switchBase(__func__, atv0, cvbs1)) \
    X(TC_AV_SwitchSource_083, AUTO, "Switch source from ATV (Tuner-1) to CVBS-0 for 10 times with audio-0 and video-0",                switchBase(__func__, atv1, cvbs0)) \
    X(TC_AV_SwitchSource_084, AUTO, "Switch source from ATV (Tuner-1) to CVBS-1 for 10 times with audio-0 and video-0",                switchBase(__func__, atv1, cvbs1)) \
    X(TC_AV_SwitchSource_085, AUTO, "Switch source from ATV (Tuner-2) to CVBS-0 for 10 times with audio-0 and video-0",                switchBase(__func__, atv2, cvbs0)) \
    X(TC_AV_SwitchSource_086, AUTO, "Switch source from ATV (Tuner-2) to CVBS-1 for 10 times with audio-0 and video-0",                switchBase(__func__, atv2, cvbs1)) \
    X(TC_AV_SwitchSource_087, AUTO, "Switch source from ATV (Tuner-3) to CVBS-0 for 10 times with audio-0 and video-0",                switchBase(__func__, atv3, cvbs0)) \
    X(TC_AV_SwitchSource_088, AUTO, "Switch source from ATV (Tuner-3) to CVBS-1 for 10 times with audio-0 and video-0",                switchBase(__func__, atv3, cvbs1)) \
    X(TC_AV_SwitchSource_091, AUTO, "Switch source from ATV (Tuner-0) to YPBPR-0 for 10 times with audio-0 and video-0",               switchBase(__func__, atv0, ypbpr0)) \
    X(TC_AV_SwitchSource_092, AUTO, "Switch source from ATV (Tuner-0) to YPBPR-1 for 10 times with audio-0 and video-0",               switchBase(__func__, atv0, ypbpr1)) \
    X(TC_AV_SwitchSource_093, AUTO, "Switch source from ATV (Tuner-1) to YPBPR-0 for 10 times with audio-0 and video-0",               switchBase(__func__, atv1, ypbpr0)) \
    X(TC_AV_SwitchSource_094, AUTO, "Switch source from ATV (Tuner-1) to YPBPR-1 for 10 times with audio-0 and video-0",               switchBase(__func__, atv1, ypbpr1)) \
    X(TC_AV_SwitchSource_095, AUTO, "Switch source from ATV (Tuner-2) to YPBPR-0 for 10 times with audio-0 and video-0",               switchBase(__func__, atv2, ypbpr0)) \
    X(TC_AV_SwitchSource_096, AUTO, "Switch source from ATV (Tuner-2) to YPBPR-1 for 10 times with audio-0 and video-0",               switchBase(__func__, atv2, ypbpr1)) \
    X(TC_AV_SwitchSource_097, AUTO, "Switch source from ATV (Tuner-3) to YPBPR-0 for 10 times with audio-0 and video-0",               switchBase(__func__, atv3, ypbpr0)) \
    X(TC_AV_SwitchSource_098, AUTO, "Switch source from ATV (Tuner-3) to YPBPR-1 for 10 times with audio-0 and video-0",               switchBase(__func__, atv3, ypbpr1)) \
    X(TC_AV_SwitchSource_101, AUTO, "Switch source from HDMI-0 to CVBS-0 for 10 times with audio-0 and video-0",                       switchBase(__func__, hdmi0, cvbs0)) \
    X(TC_AV_SwitchSource_102, AUTO, "Switch source from HDMI-0 to CVBS-1 for 10 times with audio-0 and video-0",                       switchBase(__func__, hdmi0, cvbs1)) \
    X(TC_AV_SwitchSource_103, AUTO, "Switch source from HDMI-1 to CVBS-0 for 10 times with audio-0 and video-0",                       switchBase(__func__, hdmi1, cvbs0)) \
    X(TC_AV_SwitchSource_104, AUTO, "Switch source from HDMI-1 to CVBS-1 for 10 times with audio-0 and video-0",                       switchBase(__func__, hdmi1, cvbs1)) \
    X(TC_AV_SwitchSource_105, AUTO, "Switch source from HDMI-2 to CVBS-0 for 10 times with audio-0 and video-0",                       switchBase(__func__, hdmi2, cvbs0)) \
    X(TC_AV_SwitchSource_106, AUTO, "Switch source from HDMI-2 to CVBS-1 for 10 times with audio-0 and video-0",                       switchBase(__func__, hdmi2, cvbs1)) \
    X(TC_AV_SwitchSource_111, AUTO, "Switch source from HDMI-0 to YPBPR-0 for 10 times with audio-0 and video-0",                      switchBase(__func__, hdmi0, ypbpr0)) \
    X(TC_AV_SwitchSource_112, AUTO, "Switch source from HDMI-0 to YPBPR-1 for 10 times with audio-0 and video-0",                      switchBase(__func__, hdmi0, ypbpr1)) \
    X(TC_AV_SwitchSource_113, AUTO, "Switch source from HDMI-1 to YPBPR-0 for 10 times with audio-0 and video-0",                      switchBase(__func__, hdmi1, ypbpr0)) \
    X(TC_AV_SwitchSource_114, AUTO, "Switch source from HDMI-1 to YPBPR-1 for 10 times with audio-0 and video-0",                      switchBase(__func__, hdmi1, ypbpr1)) \
    X(TC_AV_SwitchSource_115, AUTO, "Switch source from HDMI-2 to YPBPR-0 for 10 times with audio-0 and video-0",                      switchBase(__func__, hdmi2, ypbpr0)) \
    X(TC_AV_SwitchSource_116, AUTO, "Switch source from HDMI-2 to YPBPR-1 for 10 times with audio-0 and video-0",                      switchBase(__func__, hdmi2, ypbpr1)) \
    X(TC_AV_SwitchSource_121, AUTO, "Switch source from CVBS-0 to YPBPR-0 for 10 times with audio-0 and video-0",                      switchBase(__func__, cvbs0, ypbpr0)) \
    X(TC_AV_SwitchSource_122, AUTO, "Switch source from CVBS-0 to YPBPR-1 for 10 times with audio-0 and video-0",                      switchBase(__func__, cvbs0, ypbpr1)) \
    X(TC_AV_SwitchSource_123, AUTO, "Switch source from CVBS-1 to YPBPR-0 for 10 times with audio-0 and video-0",                      switchBase(__func__, cvbs1, ypbpr0)) \
    X(TC_AV_SwitchSource_124, AUTO, "Switch source from CVBS-1 to YPBPR-1 for 10 times with audio-0 and video-0",                      switchBase(__func__, cvbs1, ypbpr1))
// clang-format on

SWITCH_FAMILY(TC_VARIANT_FUNCTION)

// clang-format off
static constexpr TcCase AVCommonModuleCases[] = {
    LIFE_FAMILY(TC_VARIANT_ROW)
    TC_CASE(TC_AV_GetDevNum_001, AUTO, "Get the device number of audio"),
    OPERATOR_FAMILY(TC_VARIANT_ROW)
    SWITCH_FAMILY(TC_VARIANT_ROW)
};
// clang-format on
static_assert(tcCaseCount(AVCommonModuleCases) == 111 && tcAutoCount(AVCommonModuleCases) == 108,
              "cases of the module, and those that run by themselves");

const TcModule AVCommonModule = {
    AV_CommonTestSetup,
    AV_CommonTestTeardown,
    nullptr,
    nullptr,
    AVCommonModuleCases,
    tcCaseCount(AVCommonModuleCases),
    "AV-Common",
    "Test module for AV common test, no distinguishing source",
    nullptr,
};

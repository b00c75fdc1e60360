// AV-DTV: pictures and sound of digital broadcasts. What every source is tested for, then what only
// broadcasts have: PIDs that nothing comes on, long plays, plays through the common interface.
#include "testcase/av/av_dtv_control_rows.h"
#include "testcase/av/av_dtv_format_rows.h"
#include "testcase/av/av_dtv_stream_rows.h"
#include "testcase/av/av_module.h"
#include "testcase/av/av_open_close_rows.h"
#include "testcase/av/av_play_rows.h"
#include "testcase/av/av_register_callback_rows.h"
#include "testcase/av/av_start_stop_rows.h"
#include "testcase/modules.h"

// clang-format off
#define OPEN_REFUSED_CASES(X) \
    /* case                   flag  description                              body */ \
    X(TC_AV_DtvOpenClose_001, AUTO, "Open video-0 without init video",     AV_OpenVideoUninitialised(__func__)) \
    X(TC_AV_DtvOpenClose_002, AUTO, "Open video-0 without open av source", AV_OpenVideoWithoutSource(__func__)) \
    X(TC_AV_DtvOpenClose_003, AUTO, "Open audio-0 without init audio",     AV_OpenAudioUninitialised(__func__)) \
    X(TC_AV_DtvOpenClose_004, AUTO, "Open audio-0 without open av source", AV_OpenAudioWithoutSource(__func__))

#define WRONG_PID_CASES(X) \
    /* case                           flag  description                                                                                     body */ \
    X(TC_AV_DtvVideoEventFlow_016_01, AUTO, "Check the event flow from video-0 with the wrong video PID in source (Tuner-0, Demux-0)", AV_VideoWrongPid(__func__, dtv00)) \
    X(TC_AV_DtvVideoEventFlow_016_02, AUTO, "Check the event flow from video-0 with the wrong video PID in source (Tuner-1, Demux-0)", AV_VideoWrongPid(__func__, dtv10)) \
    X(TC_AV_DtvVideoEventFlow_016_03, AUTO, "Check the event flow from video-0 with the wrong video PID in source (Tuner-0, Demux-1)", AV_VideoWrongPid(__func__, dtv01)) \
    X(TC_AV_DtvVideoEventFlow_016_04, AUTO, "Check the event flow from video-0 with the wrong video PID in source (Tuner-1, Demux-1)", AV_VideoWrongPid(__func__, dtv11)) \
    X(TC_AV_DtvAudioEventFlow_016,    AUTO, "Check the event flow from audio-0 with the wrong audio PID in source (Tuner-0, Demux-0)", AV_AudioWrongPid(__func__, dtv00)) \
    X(TC_AV_DtvAudioEventFlow_017,    AUTO, "Check the event flow from audio-0 with the wrong audio PID in source (Tuner-1, Demux-0)", AV_AudioWrongPid(__func__, dtv10)) \
    X(TC_AV_DtvAudioEventFlow_018,    AUTO, "Check the event flow from audio-0 with the wrong audio PID in source (Tuner-0, Demux-1)", AV_AudioWrongPid(__func__, dtv01)) \
    X(TC_AV_DtvAudioEventFlow_019,    AUTO, "Check the event flow from audio-0 with the wrong audio PID in source (Tuner-1, Demux-1)", AV_AudioWrongPid(__func__, dtv11))

#define LONG_PLAY_CASES(X) \
    /* case             flag    description                                                                             body */ \
    X(TC_AV_DtvPlay_005, MANUAL, "Play video-0/audio-0 for 60s in source (Tuner-0, Demux-0)",                            AV_PlayOneMinute(__func__)) \
    X(TC_AV_DtvPlay_006, MANUAL, "Play video-0/audio-0 with the TS bypassing the CAM in source (Tuner-0, Demux-0)",      AV_PlayTsConfig(__func__, false)) \
    X(TC_AV_DtvPlay_007, MANUAL, "Play video-0/audio-0 with the TS passing through the CAM in source (Tuner-0, Demux-0)", AV_PlayTsConfig(__func__, true)) \
    X(TC_AV_DtvPlay_008, MANUAL, "Switch the TS between bypass and pass through in source (Tuner-0, Demux-0)",           AV_PlaySwitchTsConfig(__func__)) \
    X(TC_AV_DtvPlay_009, MANUAL, "Play scrambled video-0/audio-0 for 60s in source (Tuner-0, Demux-0)",                  AV_PlayDescramble(__func__))

#define ALL_CASES(X) \
    OPEN_REFUSED_CASES(X) \
    AV_OPEN_CLOSE_ROWS(AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, X) \
    AV_REGISTER_CALLBACK_ROWS(AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, X) \
    AV_START_STOP_ROWS(AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, X) \
    AV_PLAY_ROWS(AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, X) \
    WRONG_PID_CASES(X) \
    LONG_PLAY_CASES(X) \
    AV_DTV_FORMAT_ROWS(X) \
    AV_DTV_CONTROL_ROWS(X) \
    AV_DTV_STREAM_ROWS(X)
// clang-format on

ALL_CASES(TC_VARIANT_FUNCTION)

static constexpr TcCase AVDtvModuleCases[] = {ALL_CASES(TC_VARIANT_ROW)};

static_assert(tcCaseCount(AVDtvModuleCases) == 355, "cases of the module");
static_assert(tcAutoCount(AVDtvModuleCases) == 324, "automatic ones");

const TcModule AVDtvModule = {
    AV_DtvTestSetup,
    AV_DtvTestTeardown,
    AV_DtvTestCaseSetup,
    nullptr,
    AVDtvModuleCases,
    tcCaseCount(AVDtvModuleCases),
    "AV-DTV",
    "Test module for AV test, the source is DTV",
    "config/common/AVDtvModule.cfg",
};

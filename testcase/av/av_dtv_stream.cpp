#include <unistd.h>

#include "framework/case/ladder.h"
#include "framework/case/prompt.h"
#include "platform/qlx_aout.h"
#include "testcase/aout/aout_harness.h"
#include "testcase/av/av_dtv_case.h"
#include "testcase/av/av_dtv_stream_rows.h"
#include "testcase/av/av_events.h"
#include "testcase/av/av_play.h"

enum {
    /** s until a decoder's information is asked. */
    SETTLE_TIME_S = 2,
    AC4_VOLUME = 70,
    /** The presentation with a sound of 5.1. */
    AC4_SURROUND_PRESENTATION = 11,
    /** What ends the typing. */
    LAST_INPUT = 9999,
};

#define VIDEO_FIELD(member)                                                           \
    {                                                                                 \
#member, [](const QLX_VideoDecInfo& info) -> uint32_t { return info.member; } \
    }
#define AUDIO_FIELD(member)                                                           \
    {                                                                                 \
#member, [](const QLX_AudioDecInfo& info) -> uint32_t { return info.member; } \
    }

const AvDtvField<QLX_VideoDecInfo> avDtvFrameWidth = VIDEO_FIELD(uFrameWidth);
const AvDtvField<QLX_VideoDecInfo> avDtvFrameHeight = VIDEO_FIELD(uFrameHeight);
const AvDtvField<QLX_VideoDecInfo> avDtvInterlaced = VIDEO_FIELD(bInterlaced);
const AvDtvField<QLX_VideoDecInfo> avDtvFrameRate = VIDEO_FIELD(uFrameRate);
const AvDtvField<QLX_VideoDecInfo> avDtvColorPrimaries = VIDEO_FIELD(eColorPrimariesType);
const AvDtvField<QLX_VideoDecInfo> avDtvAfd = VIDEO_FIELD(eAFDType);
const AvDtvField<QLX_VideoDecInfo> avDtvSupportOverscan = VIDEO_FIELD(bSupportOverscan);
const AvDtvField<QLX_VideoDecInfo> avDtvFrameAspect = VIDEO_FIELD(eFrameAspect);
const AvDtvField<QLX_VideoDecInfo> avDtvPictureAspect = VIDEO_FIELD(ePictureAspectRatio);
const AvDtvField<QLX_AudioDecInfo> avDtvChannelInfo = AUDIO_FIELD(eChannelInfo);
const AvDtvField<QLX_AudioDecInfo> avDtvLfePresent = AUDIO_FIELD(bLfePresent);

// What the decoder tells of a stream.

template <typename Info>
static void printFields(const Info& info, std::initializer_list<AvDtvDemand<Info>> demands) {
    for (const AvDtvDemand<Info>& demand : demands)
        zk_log("%s = %d \r\n", demand.field->name, static_cast<int>(demand.field->read(info)));
}

template <typename Info>
static bool meets(CaseContext& tc, const Info& info,
                  std::initializer_list<AvDtvDemand<Info>> demands) {
    for (const AvDtvDemand<Info>& demand : demands) {
        if (demand.expected != AV_DTV_ANY &&
            !TC_EXPECT_EQUAL(demand.expected, demand.field->read(info)))
            return false;
    }
    return true;
}

/** The last entry of a log that tells of a present picture or sound; null without one. */
template <typename Event>
static const Event* lastPresent(const AvRequestData<Event>& log, bool (*isPresent)(const Event&)) {
    const Event* last = nullptr;
    uint32_t place = AV_FindEvent(log, 0, isPresent);
    while (place != AV_NO_EVENT) {
        last = &log.stData[place];
        place = AV_FindEvent(log, place + 1, isPresent);
    }
    return last;
}

static void checkVideo(CaseContext& tc, uint32_t eVideoDev,
                       std::initializer_list<AvDtvVideoDemand> demands) {
    QLX_VideoInfo stVideoInfo = {};
    sleep(SETTLE_TIME_S);
    zk_log("call QLX_VideoGetVideoInfo()--- \r\n");
    if (!TC_EXPECT_RET(
            QLX_VideoGetVideoInfo(eVideoDev, QLX_VIDEO_PARAMTYPE_GET_DECINFO, &stVideoInfo)) ||
        !TC_EXPECT_EQUAL(QLX_VIDEO_PARAMTYPE_GET_DECINFO, stVideoInfo.eParamType) ||
        !TC_EXPECT_EQUAL(QLX_VIDEO_PRESENT, stVideoInfo.stVideoDecInfo.eVideoPresent))
        return;
    printFields(stVideoInfo.stVideoDecInfo, demands);
    if (!meets(tc, stVideoInfo.stVideoDecInfo, demands))
        return;
    const AvVideoEvent* picture = lastPresent(g_stVideoRequestData, AV_IsPicturePresent);
    if (TC_EXPECT_TRUE(picture != nullptr))
        meets(tc, picture->stVideoDecInfo, demands);
}

static void checkAudio(CaseContext& tc, uint32_t eAudioDev,
                       std::initializer_list<AvDtvAudioDemand> demands) {
    QLX_AudioInfo stAudioInfo = {};
    sleep(SETTLE_TIME_S);
    // The line of the pictures' checks stands here, too.
    zk_log("call QLX_VideoGetVideoInfo()--- \r\n");
    if (!TC_EXPECT_RET(QLX_AudioGetAudioInfo(eAudioDev, QLX_AUDIO_PARAMTYPE_DIGITAL_AUDIO_INFO,
                                             &stAudioInfo)) ||
        !TC_EXPECT_EQUAL(QLX_AUDIO_PARAMTYPE_DIGITAL_AUDIO_INFO, stAudioInfo.eParamType) ||
        !TC_EXPECT_EQUAL(QLX_AUDIO_PRESENT, stAudioInfo.stAudioDecInfo.audioPresent))
        return;
    printFields(stAudioInfo.stAudioDecInfo, demands);
    if (!meets(tc, stAudioInfo.stAudioDecInfo, demands))
        return;
    const AvAudioEvent* sound = lastPresent(g_stAudioRequestData, AV_IsSoundPresent);
    if (TC_EXPECT_TRUE(sound != nullptr))
        meets(tc, sound->stAudioInfo, demands);
}

uint32_t AV_DtvCheckVideo(const char* name, std::initializer_list<AvDtvVideoDemand> demands) {
    CaseContext tc = {name};
    const AvSource stSource = AV_SelectManualSource(dtv00);
    if (TC_EXPECT_RET(AV_StartVideoOnly(&stSource, NULL))) {
        checkVideo(tc, stSource.eVideoDev, demands);
        TC_EXPECT_RET(AV_StopVideoOnly(&stSource));
    }
    return TC_RESULT(tc);
}

uint32_t AV_DtvCheckAudio(const char* name, std::initializer_list<AvDtvAudioDemand> demands) {
    CaseContext tc = {name};
    const AvSource stSource = AV_SelectManualSource(dtv00);
    if (TC_EXPECT_RET(AV_StartAudioOnly(&stSource, NULL))) {
        checkAudio(tc, stSource.eAudioDev, demands);
        TC_EXPECT_RET(AV_StopAudioOnly(&stSource));
    }
    return TC_RESULT(tc);
}

// AC-4: brought up step by step, the outputs' service included, which is ended with the case.

struct Ac4Bench {
    AvSource stAvSource;
    uint32_t eAudioDev;
    QLX_AudioAttr stAudioSource;
    QLX_AudioCapability stAudioCapability;
    TcChannelInfo stChannelInfo;
};

// clang-format off
static const LadderStep<Ac4Bench> ac4Steps[] = {
    // up                                                                                                                                                                                         down
    {LADDER_CALL("QLX_AudioInit()", QLX_AudioInit()),                                                                                                                                              LADDER_CALL("QLX_AudioDeInit()", QLX_AudioDeInit())},
    {LADDER_CALL("TC_AOUT_INIT()", TC_AOUT_INIT()),                                                                                                                                                LADDER_CALL("TC_AOUT_DEINIT()", TC_AOUT_DEINIT())},
    {LADDER_CALL("TC_AOUT_OPEN()", TC_AOUT_OPEN()),                                                                                                                                                LADDER_CALL("TC_AOUT_CLOSE()", TC_AOUT_CLOSE())},
    {LADDER_CALL("TC_AOUT_START()", TC_AOUT_START()),                                                                                                                                              LADDER_CALL("TC_AOUT_STOP()", TC_AOUT_STOP())},
    {LADDER_CALL("TC_AV_START_SOURCE(&stAvSource)", TC_AV_START_SOURCE(&bench.stAvSource)),                                                                                                        LADDER_CALL("TC_AV_STOP_SOURCE(&stAvSource)", TC_AV_STOP_SOURCE(&bench.stAvSource))},
    {LADDER_CALL("QLX_AudioOpen(eAudioDev, &stAudioSource)", QLX_AudioOpen(bench.eAudioDev, &bench.stAudioSource)),                                                                                LADDER_CALL("QLX_AudioClose(eAudioDev)", QLX_AudioClose(bench.eAudioDev))},
    {LADDER_CALL("QLX_AudioRegisterCallback(eAudioDev, &g_stAudioRequestData, AV_AudioEventCallback)", QLX_AudioRegisterCallback(bench.eAudioDev, &g_stAudioRequestData, AV_AudioEventCallback)), LADDER_CALL("QLX_AudioUnRegisterCallback(eAudioDev, AV_AudioEventCallback)", QLX_AudioUnRegisterCallback(bench.eAudioDev, AV_AudioEventCallback))},
    {LADDER_CALL("QLX_AudioGetCapability(eAudioDev, &stAudioCapability)", QLX_AudioGetCapability(bench.eAudioDev, &bench.stAudioCapability)),                                                     LADDER_NONE},
    {LADDER_CALL("QLX_AudioStart(eAudioDev, QLX_AUDIO_FORMAT_AC4, stChannelInfo.uAudioPids[0])", QLX_AudioStart(bench.eAudioDev, QLX_AUDIO_FORMAT_AC4, bench.stChannelInfo.uAudioPids[0])),        LADDER_CALL("QLX_AudioStop(eAudioDev)", QLX_AudioStop(bench.eAudioDev))},
    {LADDER_CALL("QLX_AOutSetVolume(QLX_AOUTDEV_NUMBER_0, 70)", QLX_AOutSetVolume(QLX_AOUTDEV_NUMBER_0, AC4_VOLUME)),                                                                              LADDER_NONE},
    {LADDER_CALL("QLX_AudioSetMute(eAudioDev, QLX_AUDIO_SOURCE_MAIN, QLX_FALSE)", QLX_AudioSetMute(bench.eAudioDev, QLX_AUDIO_SOURCE_MAIN, QLX_FALSE)),                                            LADDER_NONE},
};
// clang-format on

/** An AC-4 sound that plays, `work` on it, and its end. */
template <typename Work>
static uint32_t inAc4Play(const char* name, Work work) {
    CaseContext tc = {name};
    Ac4Bench bench = {};
    QLX_VideoAttr none = {};
    bench.stAvSource = AV_SelectManualSource(dtv00);
    bench.eAudioDev = bench.stAvSource.eAudioDev;
    AV_ClearAudioLog();
    AV_FillDecoderAttr(bench.stAvSource, &none, &bench.stAudioSource);
    AV_GetChannel(bench.stAvSource, 0, &bench.stChannelInfo);
    Ladder<Ac4Bench> ladder(tc, bench, ac4Steps);
    if (ladder.up())
        work(tc, bench.eAudioDev);
    ladder.down();
    return TC_RESULT(tc);
}

uint32_t AV_DtvCheckAc4Audio(const char* name, std::initializer_list<AvDtvAudioDemand> demands) {
    return inAc4Play(name, [&](CaseContext& tc, uint32_t eAudioDev) {
        if (TC_EXPECT_RET_TEXT("QLX_AudioSetAC4Parameters(eAudioDev, "
                               "QLX_AUDIO_DOLBY_AC4_AUDIO_MD_PRESENTATION_INDEX, 11)",
                               QLX_AudioSetAC4Parameters(
                                   eAudioDev, QLX_AUDIO_DOLBY_AC4_AUDIO_MD_PRESENTATION_INDEX,
                                   AC4_SURROUND_PRESENTATION)))
            checkAudio(tc, eAudioDev, demands);
    });
}

static const char asterisks[] = "*************************************************\r\n";

/** Reads the identifier that the lines ask for; false, a failure, for anything but a number. */
static bool askId(CaseContext& tc, std::initializer_list<const char*> lines,
                  int32_t* preselectionId) {
    zk_log("%s", asterisks);
    for (const char* line : lines)
        zk_log("*     %s\r\n", line);
    zk_log("%s", asterisks);
    if (!TC_EXPECT_EQUAL(PROMPT_NUMBER, tc_askNumber(preselectionId)))
        return false;
    zk_log("preselectionId = %d \r\n", static_cast<int>(*preselectionId));
    return true;
}

static bool setParameter(CaseContext& tc, uint32_t eAudioDev, const char* text, uint32_t eParameter,
                         int32_t preselectionId) {
    return TC_EXPECT_RET_TEXT(text,
                              QLX_AudioSetAC4Parameters(eAudioDev, eParameter, preselectionId));
}

#define SET_PARAMETER(parameter, value)                                                         \
    setParameter(tc, eAudioDev,                                                                 \
                 "QLX_AudioSetAC4Parameters(eAudioDev, " #parameter ", " #value ")", parameter, \
                 value)

uint32_t AV_DtvAc4Preselection(const char* name) {
    return inAc4Play(name, [](CaseContext& tc, uint32_t eAudioDev) {
        int32_t preselectionId = 0;
        if (!askId(tc, {"please enter main preselection id:"}, &preselectionId))
            return;
        SET_PARAMETER(QLX_AUDIO_DOLBY_AC4_AUDIO_MD_PRESENTATION_INDEX, preselectionId);
        while (
            askId(tc, {"please enter AD preselection id. Enter 9999 to exit."}, &preselectionId) &&
            preselectionId != LAST_INPUT)
            SET_PARAMETER(QLX_AUDIO_DOLBY_AC4_AUDIO_AD_PRESENTATION_INDEX, preselectionId);
    });
}

uint32_t AV_DtvAc4Language(const char* name) {
    return inAc4Play(name, [](CaseContext& tc, uint32_t eAudioDev) {
        int32_t preselectionId = 0;
        SET_PARAMETER(QLX_AUDIO_DOLBY_AC4_AUDIO_MD_PRESENTATION_INDEX, -1);
        while (askId(tc,
                     {"please enter preselection id. ",
                      "1:English   4:Spanish   19:Chinese   Enter 9999 to exit."},
                     &preselectionId) &&
               preselectionId != LAST_INPUT)
            SET_PARAMETER(QLX_AUDIO_DOLBY_AC4_AUDIO_PREFERRED_LANGUAGE1, preselectionId);
    });
}

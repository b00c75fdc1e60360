#include "testcase/av/av_dtv_case.h"
#include "testcase/av/av_dtv_format_rows.h"
#include "testcase/av/av_events.h"
#include "testcase/av/av_play.h"

static uint32_t videoChannelOf(uint32_t eVideoFormat, AvStandard standard) {
    const TcAvConfig& av = zk_testConfig.av;
    return eVideoFormat == QLX_VIDEO_FORMAT_MPEG2 ? av.uMpeg2ChannelIds[standard]
                                                  : av.uH264ChannelIds[standard];
}

static uint32_t audioChannelOf(uint32_t eAudioFormat, AvStandard standard) {
    const TcAvConfig& av = zk_testConfig.av;
    switch (eAudioFormat) {
        case QLX_AUDIO_FORMAT_MPEG:
            return av.uMpegAudioChannelIds[standard];
        case QLX_AUDIO_FORMAT_AAC:
            return av.uAacChannelIds[standard];
        case QLX_AUDIO_FORMAT_AC3:
            return av.uAc3ChannelIds[standard - AV_ATSC_T];
        case QLX_AUDIO_FORMAT_EAC3:
            return av.uEac3ChannelId;
        default:
            return av.uHeAacChannelId;
    }
}

static AvSource sourceOn(const AvSelector& selector, uint32_t channel) {
    AvSource stSource = AV_SelectSource(selector);
    stSource.uDTVChannelId = channel;
    return stSource;
}

/** The decoder's own word first: a wrong format needs no look at the log. */
static bool checkVideoFormat(CaseContext& tc, uint32_t eVideoDev, uint32_t eVideoFormat) {
    QLX_VideoInfo stVideoInfo = {};
    if (!TC_EXPECT_RET(
            QLX_VideoGetVideoInfo(eVideoDev, QLX_VIDEO_PARAMTYPE_GET_DECINFO, &stVideoInfo)) ||
        !TC_EXPECT_EQUAL(QLX_VIDEO_PARAMTYPE_GET_DECINFO, stVideoInfo.eParamType) ||
        !TC_EXPECT_EQUAL(eVideoFormat, stVideoInfo.stVideoDecInfo.eVideoFormat))
        return false;
    const AvVideoEvent* picture = AV_FindPicture();
    return TC_EXPECT_TRUE(picture != nullptr) &&
           TC_EXPECT_EQUAL(eVideoFormat, picture->stVideoDecInfo.eVideoFormat);
}

static bool checkAudioFormat(CaseContext& tc, uint32_t eAudioDev, uint32_t eAudioFormat) {
    QLX_AudioInfo stAudioInfo = {};
    if (!TC_EXPECT_RET(QLX_AudioGetAudioInfo(eAudioDev, QLX_AUDIO_PARAMTYPE_DIGITAL_AUDIO_INFO,
                                             &stAudioInfo)) ||
        !TC_EXPECT_EQUAL(QLX_AUDIO_PARAMTYPE_DIGITAL_AUDIO_INFO, stAudioInfo.eParamType) ||
        !TC_EXPECT_EQUAL(eAudioFormat, stAudioInfo.stAudioDecInfo.eAudioFormat))
        return false;
    const AvAudioEvent* sound = AV_FindSound();
    return TC_EXPECT_TRUE(sound != nullptr) &&
           TC_EXPECT_EQUAL(eAudioFormat, sound->stAudioInfo.eAudioFormat);
}

uint32_t AV_DtvVideoFormat(const char* name, const AvSelector& selector, uint32_t eVideoFormat,
                           AvStandard standard) {
    return AV_RunDtvVariant(name, "QLX_VIDEODEV_NUMBER_0", selector, [&](const char* baseName) {
        CaseContext tc = {baseName};
        const AvSource stSource = sourceOn(selector, videoChannelOf(eVideoFormat, standard));
        if (TC_EXPECT_RET(AV_StartVideoOnly(&stSource, NULL))) {
            checkVideoFormat(tc, stSource.eVideoDev, eVideoFormat);
            TC_EXPECT_RET(AV_StopVideoOnly(&stSource));
        }
        return TC_RESULT(tc);
    });
}

uint32_t AV_DtvAudioFormat(const char* name, const AvSelector& selector, uint32_t eAudioFormat,
                           AvStandard standard) {
    return AV_RunDtvVariant(name, "QLX_AUDIODEV_NUMBER_0", selector, [&](const char* baseName) {
        CaseContext tc = {baseName};
        const AvSource stSource = sourceOn(selector, audioChannelOf(eAudioFormat, standard));
        if (TC_EXPECT_RET(AV_StartAudioOnly(&stSource, NULL))) {
            checkAudioFormat(tc, stSource.eAudioDev, eAudioFormat);
            TC_EXPECT_RET(AV_StopAudioOnly(&stSource));
        }
        return TC_RESULT(tc);
    });
}

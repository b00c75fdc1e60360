#include "testcase/av/av_judges.h"

#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <iterator>

#include "framework/case/check.h"
#include "framework/case/wait.h"
#include "testcase/av/av_decoder.h"
#include "testcase/av/av_events.h"
#include "testcase/av/av_play.h"

enum {
    HIGHEST_ATTR = 4,
    HIGHEST_ATTR_C = 2,
    /** From this size on the dynamic range of a picture has to be told. */
    UHD_WIDTH = 3840,
    UHD_HEIGHT = 2160,
};

/** A kind of source: its name on the console, and what is known of its picture. */
struct JudgedKind {
    uint32_t eSource;
    const char* name;
    /** Format, time stamps and a clock; else auxiliary words must be empty. */
    bool coded;
    /** Whether attribute C is told. */
    bool attrC;
};

static const JudgedKind judgedKinds[] = {
    {AV_SOURCE_DTV, "DTV", true, false},
    {AV_SOURCE_PVR, "PVR", true, false},
    {AV_SOURCE_YPBPR, "YPBPR or CVBS", false, false},
    {AV_SOURCE_CVBS, "YPBPR or CVBS", false, false},
    {AV_SOURCE_HDMI, "HDMI", false, true},
    {AV_SOURCE_ATV, "ATV", false, false},
};

/** Null, and a line on the console, for a source that cannot be judged. */
static const JudgedKind* findKind(const AvSource& source) {
    for (const JudgedKind& kind : judgedKinds) {
        if (kind.eSource == source.eSource)
            return &kind;
    }
    zk_log("Unsupported source \r\n");
    return nullptr;
}

/** The channel that a source plays by the configuration: of a broadcast, that of the tuner's
 *  default system. */
static TcChannelInfo channelOf(const AvSource& source, const JudgedKind& kind) {
    TcChannelInfo stChannelInfo = {};
    if (kind.coded)
        AV_GetChannel(source, 0, &stChannelInfo);
    return stChannelInfo;
}

// What a record must hold.

static bool checkNoAuxInfo(CaseContext& tc, const QLX_VideoDecInfo& info) {
    return TC_EXPECT_TRUE(std::all_of(std::begin(info.uAuxInfo), std::end(info.uAuxInfo),
                                      [](uint32_t word) { return word == 0; }));
}

static bool checkAuxInfo(CaseContext& tc, const JudgedKind& kind, const QLX_VideoDecInfo& info) {
    if (!kind.coded && !TC_EXPECT_EQUAL(QLX_FALSE, info.bAuxInfoValid))
        return false;
    if (info.bAuxInfoValid != QLX_TRUE)
        return checkNoAuxInfo(tc, info);
    return TC_EXPECT_TRUE(std::all_of(std::begin(info.uAuxInfo), std::end(info.uAuxInfo),
                                      [](uint32_t word) { return word != 0; }));
}

static bool isAspect(uint32_t eAspect) {
    return eAspect > QLX_VIDEO_ASPECT_NONE && eAspect <= QLX_VIDEO_ASPECT_OTHER;
}

/** A picture's format and size. */
static bool checkPictureSize(CaseContext& tc, const JudgedKind& kind, const TcChannelInfo& channel,
                             const QLX_VideoDecInfo& info) {
    if (kind.coded && !TC_EXPECT_EQUAL(channel.eVideoFormat, info.eVideoFormat))
        return false;
    return TC_EXPECT_TRUE(info.uFrameRate != 0) && TC_EXPECT_TRUE(info.uFrameWidth != 0) &&
           TC_EXPECT_TRUE(info.uFrameHeight != 0);
}

static bool checkDynamicRange(CaseContext& tc, const JudgedKind& kind,
                              const QLX_VideoDecInfo& info) {
    if (!kind.coded || info.uFrameWidth < UHD_WIDTH || info.uFrameHeight < UHD_HEIGHT)
        return true;
    return TC_EXPECT_TRUE(info.eHdrType >= QLX_VIDEO_HDR_TYPE_SDR &&
                          info.eHdrType <= QLX_VIDEO_HDR_TYPE_DYNAMIC);
}

/** What else is known of a picture. */
static bool checkPictureDetails(CaseContext& tc, const JudgedKind& kind,
                                const QLX_VideoDecInfo& info) {
    return checkAuxInfo(tc, kind, info) && TC_EXPECT_TRUE(isAspect(info.eFrameAspect)) &&
           TC_EXPECT_TRUE(isAspect(info.ePictureAspectRatio)) &&
           TC_EXPECT_TRUE(info.eVideoAttrB <= HIGHEST_ATTR) &&
           TC_EXPECT_TRUE(info.eVideoAttrA <= HIGHEST_ATTR) &&
           (!kind.attrC || TC_EXPECT_TRUE(info.eVideoAttrC <= HIGHEST_ATTR_C));
}

/** The record of no picture. */
static bool checkNoPicture(CaseContext& tc, const QLX_VideoDecInfo& info) {
    return TC_EXPECT_EQUAL(QLX_VIDEO_FORMAT_NONE, info.eVideoFormat) &&
           TC_EXPECT_EQUAL(0, info.uFrameRate) && TC_EXPECT_EQUAL(0, info.uFrameWidth) &&
           TC_EXPECT_EQUAL(0, info.uFrameHeight) &&
           TC_EXPECT_EQUAL(QLX_FALSE, info.bAuxInfoValid) && checkNoAuxInfo(tc, info) &&
           TC_EXPECT_EQUAL(QLX_VIDEO_ASPECT_NONE, info.eFrameAspect) &&
           TC_EXPECT_EQUAL(QLX_VIDEO_ASPECT_NONE, info.ePictureAspectRatio) &&
           TC_EXPECT_EQUAL(HIGHEST_ATTR, info.eVideoAttrB) &&
           TC_EXPECT_EQUAL(HIGHEST_ATTR, info.eVideoAttrA);
}

static bool checkSoundAttributes(CaseContext& tc, const QLX_AudioDecInfo& info) {
    return TC_EXPECT_TRUE(info.eAudioAttrA >= 1 && info.eAudioAttrA <= 5) &&
           TC_EXPECT_TRUE(info.uAudioAttrB != 0) &&
           TC_EXPECT_TRUE(info.eAudioAttrC >= 1 && info.eAudioAttrC <= 9) &&
           TC_EXPECT_TRUE(info.uAudioAttrD != 0);
}

/** The record of no sound. */
static bool checkNoSound(CaseContext& tc, const QLX_AudioDecInfo& info) {
    return TC_EXPECT_EQUAL(QLX_AUDIO_NOT_PRESENT, info.audioPresent) &&
           TC_EXPECT_EQUAL(QLX_AUDIO_NOT_PRESENT, info.eSecondPresent) &&
           TC_EXPECT_EQUAL(QLX_AUDIO_FORMAT_NONE, info.eAudioFormat) &&
           TC_EXPECT_EQUAL(0, info.uWord4) &&
           TC_EXPECT_EQUAL(QLX_AUDIO_CHANNEL_NONE, info.eChannelInfo) &&
           TC_EXPECT_EQUAL(QLX_FALSE, info.bLfePresent) && TC_EXPECT_EQUAL(0, info.eAudioAttrA) &&
           TC_EXPECT_EQUAL(0, info.uAudioAttrB) && TC_EXPECT_EQUAL(0, info.eAudioAttrC) &&
           TC_EXPECT_EQUAL(0, info.uAudioAttrD) && TC_EXPECT_EQUAL(0, info.uWord12);
}

// What the decoders answer.

/** A question to a decoder: how the console calls it, and the call as a failure prints it. */
struct Question {
    uint32_t eParamType;
    const char* name;
    const char* text;
};

// clang-format off
static const Question videoInfoQuestion =  {QLX_VIDEO_PARAMTYPE_GET_DECINFO,   "video dec info",     "QLX_VideoGetVideoInfo(eVideoDev, QLX_VIDEO_PARAMTYPE_GET_DECINFO, &stVideoInfo)"};
static const Question videoPtsQuestion =   {QLX_VIDEO_PARAMTYPE_GET_PTS,       "PTS",                "QLX_VideoGetVideoInfo(QLX_VIDEODEV_NUMBER_0, QLX_VIDEO_PARAMTYPE_GET_PTS, &stVideoInfo)"};
static const Question frameReadyQuestion = {QLX_VIDEO_PARAMTYPE_GET_FRAMERDY,  "Frame Ready status", "QLX_VideoGetVideoInfo(QLX_VIDEODEV_NUMBER_0, QLX_VIDEO_PARAMTYPE_GET_FRAMERDY, &stVideoInfo)"};
static const Question syncQuestion =       {QLX_VIDEO_PARAMTYPE_GET_REACHSYNC, "AV sync status",     "QLX_VideoGetVideoInfo(QLX_VIDEODEV_NUMBER_0, QLX_VIDEO_PARAMTYPE_GET_REACHSYNC, &stVideoInfo)"};
static const Question decodingQuestion =   {QLX_VIDEO_PARAMTYPE_GET_DECSTATUS, "video dec status",   "QLX_VideoGetVideoInfo(QLX_VIDEODEV_NUMBER_0, QLX_VIDEO_PARAMTYPE_GET_DECSTATUS, &stVideoInfo)"};

static const Question audioInfoQuestion =   {QLX_AUDIO_PARAMTYPE_DIGITAL_AUDIO_INFO, "audio dec info",   "QLX_AudioGetAudioInfo(eAudioDev, QLX_AUDIO_PARAMTYPE_DIGITAL_AUDIO_INFO, &stAudioInfo)"};
static const Question audioPtsQuestion =    {QLX_AUDIO_PARAMTYPE_PTS,                "PTS",              "QLX_AudioGetAudioInfo(eAudioDev, QLX_AUDIO_PARAMTYPE_PTS, &stAudioInfo)"};
static const Question audioStatusQuestion = {QLX_AUDIO_PARAMTYPE_DEC_STATUS,         "audio dec status", "QLX_AudioGetAudioInfo(eAudioDev, QLX_AUDIO_PARAMTYPE_DEC_STATUS, &stAudioInfo)"};
// clang-format on

/** Asks, and demands that this question is answered. */
static bool askVideo(CaseContext& tc, uint32_t eVideoDev, const Question& question,
                     QLX_VideoInfo* pstVideoInfo) {
    *pstVideoInfo = {};
    zk_log("Get %s ! \r\n", question.name);
    return TC_EXPECT_RET_TEXT(question.text, QLX_VideoGetVideoInfo(eVideoDev, question.eParamType,
                                                                   pstVideoInfo)) &&
           TC_EXPECT_EQUAL(question.eParamType, pstVideoInfo->eParamType);
}

static bool checkVideoPts(CaseContext& tc) {
    QLX_VideoInfo stVideoInfo;
    return askVideo(tc, QLX_VIDEODEV_NUMBER_0, videoPtsQuestion, &stVideoInfo) &&
           TC_EXPECT_TRUE(stVideoInfo.uPts != 0);
}

static bool checkVideoStatus(CaseContext& tc, const Question& question) {
    QLX_VideoInfo stVideoInfo;
    return askVideo(tc, QLX_VIDEODEV_NUMBER_0, question, &stVideoInfo) &&
           TC_EXPECT_EQUAL(1, stVideoInfo.eStatus);
}

/** Lines of the decoder's own log: without the time in front. */
static void printPicture(const CaseContext& tc, const QLX_VideoDecInfo& info) {
    printf(
        "\n\n==>[%s() %d]E:video info: eVideoPresent = %d, eVideoFormat = %d, uFrameRate = "
        "%d.\r\n ",
        tc.name, __LINE__, static_cast<int>(info.eVideoPresent),
        static_cast<int>(info.eVideoFormat), static_cast<int>(info.uFrameRate));
    printf("\n\n==>[%s() %d]E:video info: uFrameWidth = %d, uFrameHeight = %d, eHdrType = %d.\r\n ",
           tc.name, __LINE__, info.uFrameWidth, info.uFrameHeight, static_cast<int>(info.eHdrType));
    printf("\n\n==>[%s() %d]E:video info: eFrameAspect = %d, ePictureAspectRatio = %d.\r\n ",
           tc.name, __LINE__, static_cast<int>(info.eFrameAspect),
           static_cast<int>(info.ePictureAspectRatio));
}

uint32_t AV_CheckVideoInfo(const AvSource* pstSource) {
    CaseContext tc = {__func__};
    TC_ASSERT_TRUE(pstSource != nullptr);
    const JudgedKind* kind = findKind(*pstSource);
    if (kind == nullptr)
        return TC_FAILURE;
    const TcChannelInfo stChannelInfo = channelOf(*pstSource, *kind);
    QLX_VideoInfo stVideoInfo;
    TC_ASSERT(askVideo(tc, pstSource->eVideoDev, videoInfoQuestion, &stVideoInfo));
    const QLX_VideoDecInfo& info = stVideoInfo.stVideoDecInfo;
    if (kind->coded)
        printPicture(tc, info);
    TC_ASSERT_EQUAL(QLX_VIDEO_PRESENT, info.eVideoPresent);
    TC_ASSERT(checkPictureSize(tc, *kind, stChannelInfo, info));
    TC_ASSERT(checkDynamicRange(tc, *kind, info));
    TC_ASSERT(checkPictureDetails(tc, *kind, info));
    TC_ASSERT(!kind->coded || checkVideoPts(tc));
    TC_ASSERT(checkVideoStatus(tc, frameReadyQuestion));
    TC_ASSERT(!kind->coded || checkVideoStatus(tc, syncQuestion));
    TC_ASSERT(checkVideoStatus(tc, decodingQuestion));
    return TC_SUCCESS;
}

static int64_t getAudioInfo(const AvSource& source, const Question& question,
                            QLX_AudioInfo* pstAudioInfo) {
    return QLX_AudioGetAudioInfo(source.eAudioDev, question.eParamType, pstAudioInfo);
}

static bool askAudio(CaseContext& tc, const AvSource& source, const Question& question,
                     QLX_AudioInfo* pstAudioInfo) {
    *pstAudioInfo = {};
    zk_log("Get %s ! \r\n", question.name);
    return TC_EXPECT_RET_TEXT(question.text, getAudioInfo(source, question, pstAudioInfo)) &&
           TC_EXPECT_EQUAL(question.eParamType, pstAudioInfo->eParamType);
}

static bool checkAudioStatus(CaseContext& tc, const AvSource& source) {
    QLX_AudioInfo stAudioInfo;
    return askAudio(tc, source, audioStatusQuestion, &stAudioInfo) &&
           TC_EXPECT_EQUAL(1, stAudioInfo.eStatus);
}

static bool checkCodedSound(CaseContext& tc, const AvSource& source, const JudgedKind& kind) {
    const TcChannelInfo stChannelInfo = channelOf(source, kind);
    QLX_AudioInfo stAudioInfo;
    if (!askAudio(tc, source, audioInfoQuestion, &stAudioInfo))
        return false;
    const QLX_AudioDecInfo& info = stAudioInfo.stAudioDecInfo;
    return TC_EXPECT_EQUAL(QLX_AUDIO_PRESENT, info.audioPresent) &&
           TC_EXPECT_EQUAL(stChannelInfo.eAudioFormat[0], info.eAudioFormat) &&
           TC_EXPECT_TRUE(info.eChannelInfo < QLX_AUDIO_CHANNEL_NONE) &&
           askAudio(tc, source, audioPtsQuestion, &stAudioInfo) &&
           TC_EXPECT_TRUE(stAudioInfo.uPts != 0) && checkAudioStatus(tc, source);
}

static bool checkInputSound(CaseContext& tc, const AvSource& source) {
    QLX_AudioInfo stAudioInfo;
    const QLX_AudioDecInfo& info = stAudioInfo.stAudioDecInfo;
    return askAudio(tc, source, audioInfoQuestion, &stAudioInfo) &&
           TC_EXPECT_EQUAL(QLX_AUDIO_PRESENT, info.audioPresent) &&
           TC_EXPECT_EQUAL(QLX_AUDIO_FORMAT_NONE, info.eAudioFormat) &&
           checkAudioStatus(tc, source);
}

/** The other way round: the status is asked first, and its word is not judged. What is asked then
 *  comes into the same record, and only what it tells of the sound is judged. */
static bool checkAnalogSound(CaseContext& tc, const AvSource& source) {
    QLX_AudioInfo stAudioInfo;
    const QLX_AudioDecInfo& info = stAudioInfo.stAudioDecInfo;
    return askAudio(tc, source, audioStatusQuestion, &stAudioInfo) &&
           TC_EXPECT_RET_TEXT(audioInfoQuestion.text,
                              getAudioInfo(source, audioInfoQuestion, &stAudioInfo)) &&
           TC_EXPECT_EQUAL(QLX_AUDIO_PRESENT, info.audioPresent) &&
           TC_EXPECT_EQUAL(QLX_AUDIO_FORMAT_NONE, info.eAudioFormat);
}

uint32_t AV_CheckAudioInfo(const AvSource* pstSource) {
    CaseContext tc = {__func__};
    TC_ASSERT_TRUE(pstSource != nullptr);
    const JudgedKind* kind = findKind(*pstSource);
    if (kind == nullptr)
        return TC_FAILURE;
    if (kind->coded)
        TC_ASSERT(checkCodedSound(tc, *pstSource, *kind));
    else if (kind->eSource == AV_SOURCE_ATV)
        TC_ASSERT(checkAnalogSound(tc, *pstSource));
    else
        TC_ASSERT(checkInputSound(tc, *pstSource));
    return TC_SUCCESS;
}

// Reports, one by one.

uint32_t AV_CheckVideoInfoEvent(const AvSource* pstSource,
                                const QLX_VideoDecInfo* pstVideoDecInfo) {
    CaseContext tc = {__func__};
    TC_ASSERT_TRUE(pstSource != nullptr);
    TC_ASSERT_TRUE(pstVideoDecInfo != nullptr);
    if (pstVideoDecInfo->eVideoPresent != QLX_VIDEO_PRESENT) {
        TC_ASSERT(checkNoPicture(tc, *pstVideoDecInfo));
        return TC_SUCCESS;
    }
    const JudgedKind* kind = findKind(*pstSource);
    if (kind == nullptr)
        return TC_FAILURE;
    zk_log("Check %s video info change event! \r\n", kind->name);
    const TcChannelInfo stChannelInfo = channelOf(*pstSource, *kind);
    TC_ASSERT(checkPictureSize(tc, *kind, stChannelInfo, *pstVideoDecInfo));
    TC_ASSERT(checkPictureDetails(tc, *kind, *pstVideoDecInfo));
    return TC_SUCCESS;
}

uint32_t AV_CheckAudioInfoEvent(const AvSource* pstSource, const QLX_AudioDecInfo* pstAudioInfo) {
    CaseContext tc = {__func__};
    TC_ASSERT_TRUE(pstSource != nullptr);
    TC_ASSERT_TRUE(pstAudioInfo != nullptr);
    if (pstAudioInfo->audioPresent != QLX_AUDIO_PRESENT) {
        TC_ASSERT(checkNoSound(tc, *pstAudioInfo));
        return TC_SUCCESS;
    }
    const JudgedKind* kind = findKind(*pstSource);
    if (kind == nullptr)
        return TC_FAILURE;
    // The line of inputs and front ends names the picture, as it always has.
    zk_log("Check %s %s info change event! \r\n", kind->name, kind->coded ? "audio" : "video");
    const TcChannelInfo stChannelInfo = channelOf(*pstSource, *kind);
    TC_ASSERT_EQUAL(stChannelInfo.eAudioFormat[0], pstAudioInfo->eAudioFormat);
    if (kind->coded) {
        TC_ASSERT_TRUE(pstAudioInfo->eChannelInfo < QLX_AUDIO_CHANNEL_NONE);
        TC_ASSERT(checkSoundAttributes(tc, *pstAudioInfo));
    }
    return TC_SUCCESS;
}

// The order of reports. Two anchors hold it, the start and the picture: the first picture may come
// before or after what it is, and the end of the picture before or after that of the decoder.

/** Demands such an entry from a place of the log on. */
template <typename Event>
static bool findLogged(CaseContext& tc, const AvRequestData<Event>& log, uint32_t from,
                       bool (*is)(const Event&), uint32_t* at) {
    *at = AV_FindEvent(log, from, is);
    return TC_EXPECT_TRUE(*at != AV_NO_EVENT);
}

/** The same, and tells it. */
template <typename Event>
static bool findInFlow(CaseContext& tc, const AvRequestData<Event>& log, uint32_t from,
                       bool (*is)(const Event&), uint32_t* at, const char* name) {
    if (!findLogged(tc, log, from, is, at))
        return false;
    zk_log("Get %s event! \r\n", name);
    return true;
}

/** An analog front end that tunes by itself starts the decoder before the case listens. */
static bool missesStart(const AvSource& source) {
    return source.eSource == AV_SOURCE_ATV && tcAVFeature[FEATURE_AFE_TUNING_AFTER_ATV_SOURCE] != 0;
}

uint32_t AV_CheckVideoEventFlow(const AvSource* pstSource) {
    CaseContext tc = {__func__};
    TC_ASSERT_TRUE(pstSource != nullptr);
    const AvVideoRequestData& log = g_stVideoRequestData;
    uint32_t start = 0;
    uint32_t present = 0;
    uint32_t at = 0;
    if (!missesStart(*pstSource))
        TC_ASSERT(findInFlow(tc, log, 0, AV_IsStartDone, &start, "start done"));
    TC_ASSERT(findInFlow(tc, log, start, AV_IsFrameReady, &at, "frame ready"));
    TC_ASSERT(findInFlow(tc, log, start, AV_IsPicturePresent, &present, "signal present"));
    if (AV_IsCoded(*pstSource))
        TC_ASSERT(findInFlow(tc, log, present, AV_IsSyncDone, &at, "av sync"));
    TC_ASSERT(findInFlow(tc, log, present, AV_IsPictureAbsent, &at, "signal unpresent"));
    TC_ASSERT(findInFlow(tc, log, present, AV_IsVideoStopDone, &at, "stop done"));
    return TC_SUCCESS;
}

uint32_t AV_CheckAudioEventFlow(const AvSource* pstSource) {
    CaseContext tc = {__func__};
    TC_ASSERT_TRUE(pstSource != nullptr);
    const AvAudioRequestData& log = g_stAudioRequestData;
    uint32_t present = 0;
    uint32_t at = 0;
    TC_ASSERT(findInFlow(tc, log, 0, AV_IsSoundPresent, &present, "signal present"));
    TC_ASSERT(findInFlow(tc, log, present, AV_IsAudioStopDone, &at, "stop done"));
    return TC_SUCCESS;
}

// The time of reports.

/** Demands such an entry from a place of the log on, and tells how long it took to come, which is
 *  handed out in ms. */
template <typename Event>
static bool findInTime(CaseContext& tc, const AvRequestData<Event>& log, uint32_t from,
                       bool (*is)(const Event&), uint32_t* at, const timeval& start,
                       const char* name, int64_t* consumed) {
    if (!findLogged(tc, log, from, is, at))
        return false;
    *consumed = zk_test_diff_timeMs(&start, &log.stTime[*at]);
    zk_log("Event [%s] consumption time is %lld ms\r\n", name, static_cast<long long>(*consumed));
    return true;
}

uint32_t AV_CheckVideoEventConsumption(const AvSource* pstSource, const timeval* pstStartTime) {
    CaseContext tc = {__func__};
    TC_ASSERT_TRUE(pstSource != nullptr);
    TC_ASSERT_TRUE(pstStartTime != nullptr);
    const AvVideoRequestData& log = g_stVideoRequestData;
    const timeval& begin = *pstStartTime;
    uint32_t start = 0;
    uint32_t present = 0;
    uint32_t at = 0;
    int64_t consumed = 0;
    if (pstSource->eSource != AV_SOURCE_ATV) {
        TC_ASSERT(findInTime(tc, log, 0, AV_IsStartDone, &start, begin, "start done", &consumed));
        TC_ASSERT(
            findInTime(tc, log, start, AV_IsFrameReady, &at, begin, "frame ready", &consumed));
    }
    TC_ASSERT(findInTime(tc, log, start, AV_IsPicturePresent, &present, begin, "signal present",
                         &consumed));
    if (AV_IsCoded(*pstSource)) {
        TC_ASSERT(findInTime(tc, log, present, AV_IsSyncDone, &at, begin, "sync done", &consumed));
        TC_ASSERT_TRUE(consumed <= AV_SYNC_LIMIT_MS);
    }
    return TC_SUCCESS;
}

uint32_t AV_CheckAudioEventConsumption(const AvSource* pstSource, const timeval* pstStartTime) {
    CaseContext tc = {__func__};
    TC_ASSERT_TRUE(pstSource != nullptr);
    TC_ASSERT_TRUE(pstStartTime != nullptr);
    uint32_t at = 0;
    int64_t consumed = 0;
    TC_ASSERT(findInTime(tc, g_stAudioRequestData, 0, AV_IsSoundPresent, &at, *pstStartTime,
                         "signal present", &consumed));
    TC_ASSERT_TRUE(consumed <= AV_SOUND_LIMIT_MS);
    return TC_SUCCESS;
}

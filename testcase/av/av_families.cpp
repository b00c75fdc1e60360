#include "testcase/av/av_families.h"

#include <stdio.h>
#include <string.h>
#include <sys/time.h>
#include <unistd.h>

#include "testcase/av/av_events.h"
#include "testcase/av/av_judges.h"
#include "testcase/av/av_play.h"

enum {
    /** s of a play whose events are judged. */
    PLAY_TIME_S = 2,
    LONG_PLAY_TIME_S = 60,
    ROUTED_PLAY_TIME_S = 10,
    ROUTED_PLAYS = 2,
    ROUNDS = 10,
    /** No PID at all: above the highest. */
    WRONG_PID = 8888,
};

// What the decoders tell.

/** Plays a whole source, asks, and stops. */
static bool askInPlay(CaseContext& tc, const AvSource& stSource, const char* text,
                      uint32_t (*judge)(const AvSource*), unsigned playTimeS) {
    if (!TC_EXPECT_RET(AV_PlayAudioVideo(&stSource, NULL)))
        return false;
    sleep(playTimeS);
    const bool good = TC_EXPECT_RET_TEXT(text, judge(&stSource));
    return TC_EXPECT_RET(AV_StopAudioVideo(&stSource)) && good;
}

uint32_t AV_GetVideoInfo(const char* name, const AvSelector& selector) {
    CaseContext tc = {name};
    const AvSource stSource = AV_SelectSource(selector);
    if (!AV_IsOnBoard(selector))
        return tc_notApplicable(tc);
    if (selector.eSource == AV_SOURCE_DTV) {
        askInPlay(tc, stSource, "AV_CheckVideoInfo(&stSource)", AV_CheckVideoInfo, PLAY_TIME_S);
    } else if (TC_EXPECT_RET(AV_StartVideoOnly(&stSource, NULL))) {
        TC_EXPECT_RET(AV_CheckVideoInfo(&stSource));
        TC_EXPECT_RET(AV_StopVideoOnly(&stSource));
    }
    return TC_RESULT(tc);
}

uint32_t AV_GetAudioInfo(const char* name, const AvSelector& selector) {
    CaseContext tc = {name};
    const AvSource stSource = AV_SelectSource(selector);
    if (!AV_IsOnBoard(selector))
        return tc_notApplicable(tc);
    if (selector.eSource == AV_SOURCE_ATV) {
        askInPlay(tc, stSource, "AV_CheckAudioInfo(&stSource)", AV_CheckAudioInfo, 0);
    } else if (TC_EXPECT_RET(AV_StartAudioOnly(&stSource, NULL))) {
        TC_EXPECT_RET(AV_CheckAudioInfo(&stSource));
        TC_EXPECT_RET(AV_StopAudioOnly(&stSource));
    }
    return TC_RESULT(tc);
}

// What they have reported.

/** A play whose logs are then read. */
static bool playForEvents(CaseContext& tc, const AvSource& stSource) {
    if (!TC_EXPECT_RET(AV_PlayAudioVideo(&stSource, NULL)))
        return false;
    sleep(PLAY_TIME_S);
    return TC_EXPECT_RET(AV_StopAudioVideo(&stSource));
}

/** An event case: plays, and judges what is in the logs. */
template <typename Judge>
static uint32_t eventCase(const char* name, const AvSelector& selector, Judge judge) {
    CaseContext tc = {name};
    const AvSource stSource = AV_SelectSource(selector);
    if (!AV_IsOnBoard(selector))
        return tc_notApplicable(tc);
    TC_ASSERT(playForEvents(tc, stSource));
    TC_ASSERT(judge(tc, stSource));
    return TC_RESULT(tc);
}

uint32_t AV_VideoEventFlow(const char* name, const AvSelector& selector) {
    return eventCase(name, selector, [](CaseContext& tc, const AvSource& stSource) {
        return TC_EXPECT_RET(AV_CheckVideoEventFlow(&stSource));
    });
}

uint32_t AV_AudioEventFlow(const char* name, const AvSelector& selector) {
    return eventCase(name, selector, [](CaseContext& tc, const AvSource& stSource) {
        return TC_EXPECT_RET(AV_CheckAudioEventFlow(&stSource));
    });
}

/** Demands that no record is that of the information before it, of the first that of entry 0. */
template <typename Event, typename Record>
static bool checkNotRepeated(CaseContext& tc, const AvRequestData<Event>& log,
                             bool (*isInfo)(const Event&), Record Event::*record) {
    uint32_t before = 0;
    for (uint32_t i = 0; i < AV_LogCount(log); i++) {
        if (!isInfo(log.stData[i]) || i == before)
            continue;
        const Record& last = log.stData[before].*record;
        if (!TC_EXPECT_TRUE(memcmp(&last, &(log.stData[i].*record), sizeof last) != 0))
            return false;
        before = i;
    }
    return true;
}

static bool checkVideoNotRepeated(CaseContext& tc, const AvSource& /*stSource*/) {
    return checkNotRepeated(tc, g_stVideoRequestData, AV_IsVideoInfo,
                            &AvVideoEvent::stVideoDecInfo);
}

static bool checkAudioNotRepeated(CaseContext& tc, const AvSource& /*stSource*/) {
    return checkNotRepeated(tc, g_stAudioRequestData, AV_IsAudioInfo, &AvAudioEvent::stAudioInfo);
}

uint32_t AV_VideoInfoNotRepeated(const char* name, const AvSelector& selector) {
    return eventCase(name, selector, checkVideoNotRepeated);
}

uint32_t AV_AudioInfoNotRepeated(const char* name, const AvSelector& selector) {
    return eventCase(name, selector, checkAudioNotRepeated);
}

uint32_t AV_VideoEventInfo(const char* name, const AvSelector& selector) {
    return eventCase(name, selector, [](CaseContext& tc, const AvSource& stSource) {
        uint32_t u32VideoEventId = AV_FindEvent(g_stVideoRequestData, 0, AV_IsVideoInfo);
        while (u32VideoEventId != AV_NO_EVENT) {
            if (!TC_EXPECT_RET_TEXT(
                    "AV_CheckVideoInfoEvent(&stSource, "
                    "&g_stVideoRequestData.stData[u32VideoEventId].stVideoDecInfo)",
                    AV_CheckVideoInfoEvent(
                        &stSource, &g_stVideoRequestData.stData[u32VideoEventId].stVideoDecInfo)))
                return false;
            u32VideoEventId =
                AV_FindEvent(g_stVideoRequestData, u32VideoEventId + 1, AV_IsVideoInfo);
        }
        return true;
    });
}

uint32_t AV_AudioEventInfo(const char* name, const AvSelector& selector) {
    return eventCase(name, selector, [](CaseContext& tc, const AvSource& stSource) {
        uint32_t u32AudioEventId = AV_FindEvent(g_stAudioRequestData, 0, AV_IsAudioInfo);
        while (u32AudioEventId != AV_NO_EVENT) {
            if (!TC_EXPECT_RET_TEXT(
                    "AV_CheckAudioInfoEvent(&stSource, "
                    "&g_stAudioRequestData.stData[u32AudioEventId].stAudioInfo)",
                    AV_CheckAudioInfoEvent(
                        &stSource, &g_stAudioRequestData.stData[u32AudioEventId].stAudioInfo)))
                return false;
            u32AudioEventId =
                AV_FindEvent(g_stAudioRequestData, u32AudioEventId + 1, AV_IsAudioInfo);
        }
        return true;
    });
}

uint32_t AV_VideoEventConsumption(const char* name, const AvSelector& selector) {
    timeval stStartTime;
    gettimeofday(&stStartTime, nullptr);
    return eventCase(name, selector, [&](CaseContext& tc, const AvSource& stSource) {
        return TC_EXPECT_RET(AV_CheckVideoEventConsumption(&stSource, &stStartTime));
    });
}

uint32_t AV_AudioEventConsumption(const char* name, const AvSelector& selector) {
    timeval stStartTime;
    gettimeofday(&stStartTime, nullptr);
    return eventCase(name, selector, [&](CaseContext& tc, const AvSource& stSource) {
        return TC_EXPECT_RET(AV_CheckAudioEventConsumption(&stSource, &stStartTime));
    });
}

// Plays.

static bool playAndStop(CaseContext& tc, const AvSource& stSource) {
    return TC_EXPECT_RET(AV_PlayAudioVideo(&stSource, NULL)) &&
           TC_EXPECT_RET(AV_StopAudioVideo(&stSource));
}

uint32_t AV_PlayTenRounds(const char* name, const AvSelector& selector) {
    CaseContext tc = {name};
    const AvSource stSource = AV_SelectSource(selector);
    if (!AV_IsOnBoard(selector))
        return tc_notApplicable(tc);
    for (int round = 0; round < ROUNDS; round++)
        TC_ASSERT(playAndStop(tc, stSource));
    return TC_RESULT(tc);
}

/** The operator's word is the verdict, unless the stop fails. */
static uint32_t playConfirmed(const char* name, const AvSource& stSource) {
    CaseContext tc = {name};
    TC_ASSERT_RET(AV_PlayAudioVideo(&stSource, NULL));
    tc.result = AV_CheckConfirm("Playing Ok?");
    TC_EXPECT_RET(AV_StopAudioVideo(&stSource));
    return TC_RESULT(tc);
}

uint32_t AV_PlayConfirmed(const char* name, const AvSelector& selector) {
    return playConfirmed(name, AV_SelectSource(selector));
}

uint32_t AV_SwitchSource(const char* name, const AvSelector& first, const AvSelector& second) {
    CaseContext tc = {name};
    const AvSource stFirst = AV_SelectSource(first);
    const AvSource stSecond = AV_SelectSource(second);
    if (!AV_IsOnBoard(first) || !AV_IsOnBoard(second))
        return tc_notApplicable(tc);
    for (int round = 0; round < ROUNDS; round++) {
        TC_ASSERT(playAndStop(tc, stFirst));
        TC_ASSERT(playAndStop(tc, stSecond));
    }
    return TC_RESULT(tc);
}

uint32_t AV_SwitchChannel(const char* name, const AvSelector& selector) {
    CaseContext tc = {name};
    AvSource stSource = AV_SelectSource(selector);
    for (int round = 0; round < ROUNDS; round++) {
        for (uint32_t channel = 0; channel < 2; channel++) {
            (selector.eSource == AV_SOURCE_ATV ? stSource.uATVChannelId : stSource.uDTVChannelId) =
                channel;
            TC_ASSERT(playAndStop(tc, stSource));
        }
    }
    return TC_RESULT(tc);
}

// A PID that nothing comes on.

/** Plays a channel whose PID of picture or sound is wrong. The play fails, as it waits for what
 *  does not come; what counts is what the decoders report. */
static void playToReports(const AvSource& stSource, const TcChannelInfo& stChannelInfo) {
    // A play that does not come as far as the decoders leaves the logs of the last one.
    AV_ClearVideoLog();
    AV_ClearAudioLog();
    AV_PlayAudioVideo(&stSource, &stChannelInfo);
    sleep(PLAY_TIME_S);
    AV_StopAudioVideo(&stSource);
}

/** Demands a report of nothing, and behind it that of the stop. */
template <typename Event>
static bool checkAbsentAndStopped(CaseContext& tc, const AvRequestData<Event>& log,
                                  bool (*isAbsent)(const Event&),
                                  bool (*isStopDone)(const Event&)) {
    const uint32_t absent = AV_FindEvent(log, 0, isAbsent);
    if (!TC_EXPECT_TRUE(absent != AV_NO_EVENT))
        return false;
    const uint32_t stopped = AV_FindEvent(log, absent, isStopDone);
    return TC_EXPECT_TRUE(stopped != AV_NO_EVENT);
}

static uint32_t videoWrongPidBase(const char* name, const AvSelector& selector) {
    CaseContext tc = {name};
    const AvSource stSource = AV_SelectSource(selector);
    TcChannelInfo stChannelInfo = {};
    AV_GetChannel(stSource, 0, &stChannelInfo);
    stChannelInfo.uVideoPid = WRONG_PID;
    playToReports(stSource, stChannelInfo);
    checkAbsentAndStopped(tc, g_stVideoRequestData, AV_IsPictureAbsent, AV_IsVideoStopDone);
    return TC_RESULT(tc);
}

uint32_t AV_AudioWrongPid(const char* name, const AvSelector& selector) {
    CaseContext tc = {name};
    const AvSource stSource = AV_SelectSource(selector);
    TcChannelInfo stChannelInfo = {};
    AV_GetChannel(stSource, 0, &stChannelInfo);
    stChannelInfo.uAudioPids[0] = WRONG_PID;
    playToReports(stSource, stChannelInfo);
    checkAbsentAndStopped(tc, g_stAudioRequestData, AV_IsSoundAbsent, AV_IsAudioStopDone);
    return TC_RESULT(tc);
}

static bool checkOneFrameReady(CaseContext& tc) {
    int u32VideoFrameReady = 0;
    for (uint32_t i = 0; i < AV_LogCount(g_stVideoRequestData); i++)
        u32VideoFrameReady += AV_IsFrameReady(g_stVideoRequestData.stData[i]) ? 1 : 0;
    zk_log("u32VideoFrameReady= %d--- \r\n", u32VideoFrameReady);
    return TC_EXPECT_EQUAL(1, u32VideoFrameReady);
}

/** A base of decoder 0 and a selector, run for a variant. */
static uint32_t onVideoDecoder(const char* name, const AvSelector& selector,
                               uint32_t (*base)(const char*, const AvSelector&)) {
    char arguments[64];
    snprintf(arguments, sizeof arguments, "QLX_VIDEODEV_NUMBER_0, %s", selector.arguments);
    return AV_RunVariant(name, arguments,
                         [&](const char* baseName) { return base(baseName, selector); });
}

uint32_t AV_VideoWrongPid(const char* name, const AvSelector& selector) {
    return onVideoDecoder(name, selector, videoWrongPidBase);
}

static uint32_t notRepeatedOneFrameBase(const char* name, const AvSelector& selector) {
    return eventCase(name, selector, [](CaseContext& tc, const AvSource& stSource) {
        return checkVideoNotRepeated(tc, stSource) && checkOneFrameReady(tc);
    });
}

uint32_t AV_VideoInfoNotRepeatedOneFrame(const char* name, const AvSelector& selector) {
    return onVideoDecoder(name, selector, notRepeatedOneFrameBase);
}

// Manual plays.

uint32_t AV_PlayManualConfirmed(const char* name, const AvSelector& selector) {
    return playConfirmed(name, AV_SelectManualSource(selector));
}

uint32_t AV_PlayOneMinute(const char* name) {
    CaseContext tc = {name};
    const AvSource stSource = AV_SelectManualSource(dtv00);
    zk_log("Play DTV 60s \r\n");
    TC_ASSERT_RET(AV_PlayAudioVideo(&stSource, NULL));
    sleep(LONG_PLAY_TIME_S);
    TC_EXPECT_RET(AV_StopAudioVideo(&stSource));
    return TC_RESULT(tc);
}

uint32_t AV_PlayTsConfig(const char* name, bool passThrough) {
    CaseContext tc = {name};
    const AvSource stSource = AV_SelectManualSource(dtv00);
    const char* text = passThrough ? "AV_PlayAudioVideoTsConfig(&stSource, NULL,1)"
                                   : "AV_PlayAudioVideoTsConfig(&stSource, NULL,0)";
    for (int play = 0; play < ROUTED_PLAYS; play++) {
        TC_ASSERT_RET_TEXT(text, AV_PlayAudioVideoTsConfig(&stSource, NULL, passThrough ? 1 : 0));
        sleep(ROUTED_PLAY_TIME_S);
        TC_ASSERT_RET(AV_StopAudioVideoTsConfig(&stSource));
    }
    return TC_RESULT(tc);
}

uint32_t AV_PlaySwitchTsConfig(const char* name) {
    CaseContext tc = {name};
    const AvSource stSource = AV_SelectManualSource(dtv00);
    TC_EXPECT_RET(AV_PlayAudioVideoSwitchTsConfig(&stSource, NULL));
    return TC_RESULT(tc);
}

uint32_t AV_PlayDescramble(const char* name) {
    CaseContext tc = {name};
    const AvSource stSource = AV_SelectManualSource(dtv00);
    uint32_t u32HDesc = 0;
    TC_ASSERT_RET_TEXT("AV_PlayAudioVideoDescramble(&stSource, NULL,&u32HDesc)",
                       AV_PlayAudioVideoDescramble(&stSource, NULL, &u32HDesc));
    sleep(LONG_PLAY_TIME_S);
    TC_EXPECT_RET_TEXT("AV_StopAudioVideoDescramble(&stSource,u32HDesc)",
                       AV_StopAudioVideoDescramble(&stSource, u32HDesc));
    return TC_RESULT(tc);
}

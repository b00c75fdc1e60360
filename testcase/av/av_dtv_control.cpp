#include <unistd.h>

#include <initializer_list>

#include "framework/case/ladder.h"
#include "framework/case/prompt.h"
#include "platform/qlx_videosync.h"
#include "testcase/aout/aout_harness.h"
#include "testcase/av/av_dtv_case.h"
#include "testcase/av/av_dtv_control_rows.h"
#include "testcase/av/av_judges.h"
#include "testcase/av/av_play.h"

enum {
    ROUNDS = 10,
    /** s until the operator is asked what has become of picture or sound. */
    SETTLE_TIME_S = 2,
    /** What ends the typing of audio modes. */
    LAST_INPUT = 999,
};

/** A play of picture and sound, `work` on it, and its end. */
template <typename Work>
static uint32_t inPlay(const char* name, const AvSource& stSource, Work work) {
    CaseContext tc = {name};
    if (TC_EXPECT_RET(AV_PlayAudioVideo(&stSource, NULL))) {
        work(tc);
        TC_EXPECT_RET(AV_StopAudioVideo(&stSource));
    }
    return TC_RESULT(tc);
}

uint32_t AV_DtvGetVideoInfo(const char* name, const AvSource& stSource) {
    return inPlay(name, stSource,
                  [&](CaseContext& tc) { TC_EXPECT_RET(AV_CheckVideoInfo(&stSource)); });
}

// The system time clock.

static void setSyncModes(CaseContext& tc, const AvSource& stSource) {
    TcChannelInfo stChannelInfo = {};
    AV_GetChannel(stSource, stSource.TransmissionSystem_e, &stChannelInfo);
    const uint16_t videoPid = static_cast<uint16_t>(stChannelInfo.uVideoPid);
    const uint16_t clockPid = static_cast<uint16_t>(stChannelInfo.uPcrPid);
    const uint16_t audioPid = static_cast<uint16_t>(stChannelInfo.uAudioPids[0]);
    for (const QLX_SyncParams& stSyncParams :
         {QLX_SyncParams{QLX_VIDEOSYNC_MODE_FREE_RUN, 0, 0},
          QLX_SyncParams{QLX_VIDEOSYNC_MODE_PCR_MASTER, videoPid, clockPid},
          QLX_SyncParams{QLX_VIDEOSYNC_MODE_AUDIO_MASTER, audioPid, 0}}) {
        if (!TC_EXPECT_RET(QLX_VideoSyncSetMode(stSource.eVideoDev, &stSyncParams)))
            return;
    }
}

uint32_t AV_DtvSetSyncMode(const char* name, const AvSelector& selector) {
    return AV_RunDtvVariant(
        name, "QLX_VIDEODEV_NUMBER_0, QLX_AUDIODEV_NUMBER_0", selector, [&](const char* baseName) {
            const AvSource stSource = AV_SelectSource(selector);
            return inPlay(baseName, stSource, [&](CaseContext& tc) { setSyncModes(tc, stSource); });
        });
}

uint32_t AV_DtvGetStc(const char* name, const AvSelector& selector) {
    return AV_RunDtvVariant(name, "QLX_VIDEODEV_NUMBER_0, QLX_AUDIODEV_NUMBER_0", selector,
                            [&](const char* baseName) {
                                const AvSource stSource = AV_SelectSource(selector);
                                const uint32_t eVideoDev = stSource.eVideoDev;
                                return inPlay(baseName, stSource, [&](CaseContext& tc) {
                                    uint64_t uSTC = 0;
                                    if (TC_EXPECT_RET(QLX_VideoSyncGetSTC(eVideoDev, &uSTC)))
                                        TC_EXPECT_TRUE(uSTC != 0);
                                });
                            });
}

// The sound.

uint32_t AV_DtvSetAudioMode(const char* name, const AvSelector& selector) {
    return AV_RunDtvVariant(name, "QLX_AUDIODEV_NUMBER_0", selector, [&](const char* baseName) {
        CaseContext tc = {baseName};
        const AvSource stSource = AV_SelectSource(selector);
        const uint32_t eAudioDev = stSource.eAudioDev;
        if (TC_EXPECT_RET(AV_StartAudioOnly(&stSource, NULL))) {
            bool good = true;
            for (uint32_t uLoop = QLX_AUDIO_DIGITAL_MODE_STEREO;
                 good && uLoop <= QLX_AUDIO_DIGITAL_MODE_TRACK_BOTH; uLoop++) {
                zk_log("set digital audio mode:%d\n", static_cast<int>(uLoop));
                good = TC_EXPECT_RET(QLX_AudioSetDigitalAudioMode(eAudioDev, uLoop));
            }
            TC_EXPECT_RET(AV_StopAudioOnly(&stSource));
        }
        return TC_RESULT(tc);
    });
}

static void setPrescalers(CaseContext& tc, uint32_t eAudioDev) {
    for (uint32_t uValue : {0, 50, 150, 255}) {
        uint8_t u8Value = 0;
        zk_log("set audio prescaler = %d \r\n", static_cast<int>(uValue));
        if (!TC_EXPECT_RET(QLX_AudioSetPrescaler(eAudioDev, uValue)) ||
            !TC_EXPECT_RET(QLX_AudioGetPrescaler(eAudioDev, &u8Value)))
            return;
        zk_log("get audio prescaler = %d \r\n", static_cast<int>(u8Value));
        if (!TC_EXPECT_EQUAL(uValue, u8Value))
            return;
    }
}

uint32_t AV_DtvSetAudioPrescaler(const char* name, const AvSelector& selector) {
    return AV_RunDtvVariant(name, "QLX_AUDIODEV_NUMBER_0", selector, [&](const char* baseName) {
        const AvSource stSource = AV_SelectSource(selector);
        return inPlay(baseName, stSource,
                      [&](CaseContext& tc) { setPrescalers(tc, stSource.eAudioDev); });
    });
}

// Audio description.

struct DescriptionBench {
    AvSource stSource;
    TcChannelInfo stChannelInfo;
};
using DescriptionStep = LadderStep<DescriptionBench>;

static int64_t startDescription(const DescriptionBench& bench) {
    const TcChannelInfo& channel = bench.stChannelInfo;
    return QLX_AudioStartDescription(bench.stSource.eAudioDev, channel.eAudioDescFormat[0],
                                     channel.uAudioDescPids[0]);
}

static constexpr DescriptionStep playStep = {
    LADDER_CALL("AV_PlayAudioVideo(&stSource, &stChannelInfo)",
                AV_PlayAudioVideo(&bench.stSource, &bench.stChannelInfo)),
    LADDER_CALL("AV_StopAudioVideo(&stSource)", AV_StopAudioVideo(&bench.stSource))};
static constexpr DescriptionStep describeStep = {
    LADDER_CALL("QLX_AudioStartDescription(stSource.eAudioDev, stChannelInfo.eAudioDescFormat[0], "
                "stChannelInfo.uAudioDescPids[0])",
                startDescription(bench)),
    LADDER_CALL("QLX_AudioStopDescription(stSource.eAudioDev)",
                QLX_AudioStopDescription(bench.stSource.eAudioDev))};
static constexpr DescriptionStep mixStep = {
    LADDER_CALL("TC_AOUT_START_AUDIO_DESC()", TC_AOUT_START_AUDIO_DESC()),
    LADDER_CALL("TC_AOUT_STOP_AUDIO_DESC()", TC_AOUT_STOP_AUDIO_DESC())};

static const DescriptionStep descriptionSteps[] = {playStep, describeStep};
static const DescriptionStep descVolumeSteps[] = {playStep, describeStep, mixStep};

template <size_t N>
static uint32_t describe(const char* name, const AvSelector& selector, AvStandard standard,
                         const DescriptionStep (&steps)[N]) {
    return AV_RunDtvVariant(name, "QLX_AUDIODEV_NUMBER_0", selector, [&](const char* baseName) {
        CaseContext tc = {baseName};
        DescriptionBench bench = {AV_SelectSource(selector), {}};
        bench.stSource.uDTVChannelId = zk_testConfig.av.uAudioDescChannelIds[standard];
        AV_GetChannel(bench.stSource, 0, &bench.stChannelInfo);
        Ladder<DescriptionBench> ladder(tc, bench, steps);
        ladder.up();
        ladder.down();
        return TC_RESULT(tc);
    });
}

uint32_t AV_DtvAudioDescription(const char* name, const AvSelector& selector, AvStandard standard) {
    return describe(name, selector, standard, descriptionSteps);
}

uint32_t AV_DtvAudioDescVolume(const char* name, const AvSelector& selector, AvStandard standard) {
    return describe(name, selector, standard, descVolumeSteps);
}

// From one standard to another.

uint32_t AV_DtvSwitchDvbTAndDvbC(const char* name) {
    CaseContext tc = {name};
    AvSource stSource = AV_SelectSource(dtv00);
    stSource.uDTVChannelId = 0;
    for (int round = 0; round < ROUNDS; round++) {
        for (uint32_t system : {QLX_TRANSMISSION_SYSTEM_DVB_T, QLX_TRANSMISSION_SYSTEM_DVB_C}) {
            stSource.TransmissionSystem_e = system;
            TC_ASSERT_RET(AV_PlayAudioVideo(&stSource, NULL));
            TC_ASSERT_RET(AV_StopAudioVideo(&stSource));
        }
    }
    return TC_RESULT(tc);
}

// Manual.

/** A decoder that can be held, with the texts of its calls and the questions about it. */
struct Holdable {
    const char* pauseText;
    int32_t (*pause)(uint32_t device);
    const char* resumeText;
    int32_t (*resume)(uint32_t device);
    const char* stateText;
    int32_t (*state)(uint32_t device, uint32_t* peState);
    const char* pausedText;
    const char* resumedText;
};

static const Holdable video = {"QLX_VideoPause(eVideoDev)",
                               QLX_VideoPause,
                               "QLX_VideoResume(eVideoDev)",
                               QLX_VideoResume,
                               "QLX_VideoGetState(eVideoDev, &eVideoState)",
                               QLX_VideoGetState,
                               "video paused?",
                               "video resumed?"};
static const Holdable audio = {"QLX_AudioPause(eAudioDev)",
                               QLX_AudioPause,
                               "QLX_AudioResume(eAudioDev)",
                               QLX_AudioResume,
                               "QLX_AudioGetState(eAudioDev, &eAudioState)",
                               QLX_AudioGetState,
                               "Audio paused?",
                               "Audio resumed?"};

/** Holds a decoder and lets it go, and asks the operator after each; the second answer. */
static uint32_t holdAndRelease(CaseContext& tc, const Holdable& decoder, uint32_t device) {
    uint32_t eState = 0;
    TC_EXPECT_RET_TEXT(decoder.pauseText, decoder.pause(device));
    sleep(SETTLE_TIME_S);
    TC_EXPECT_RET_TEXT(decoder.stateText, decoder.state(device, &eState));
    AV_CheckConfirm(decoder.pausedText);
    TC_EXPECT_RET_TEXT(decoder.resumeText, decoder.resume(device));
    sleep(SETTLE_TIME_S);
    TC_EXPECT_RET_TEXT(decoder.stateText, decoder.state(device, &eState));
    return AV_CheckConfirm(decoder.resumedText);
}

uint32_t AV_DtvPauseResume(const char* name) {
    const AvSource stSource = AV_SelectManualSource(dtv00);
    return inPlay(name, stSource, [&](CaseContext& tc) {
        holdAndRelease(tc, video, stSource.eVideoDev);
        // The last answer is the verdict, unless a call has failed.
        if (holdAndRelease(tc, audio, stSource.eAudioDev) != TC_SUCCESS)
            tc.result = TC_FAILURE;
    });
}

/** Sets what is typed until 999. */
static void setTypedModes(CaseContext& tc, uint32_t eAudioDev) {
    zk_log(
        "Please input the audio mode: 1(Stereo), 2(Track A), 3(Track B), 4(Track Mix), 5(Track "
        "Both)\n");
    zk_log("Please input number 999 to exit\n");
    for (;;) {
        int32_t sInputValue = 0;
        const PromptAnswer answer = tc_askNumber(&sInputValue);
        if (!TC_EXPECT_TRUE(answer != PROMPT_END_OF_INPUT) || sInputValue == LAST_INPUT)
            return;
        if (sInputValue < QLX_AUDIO_DIGITAL_MODE_STEREO ||
            sInputValue > QLX_AUDIO_DIGITAL_MODE_TRACK_BOTH)
            zk_log("Invalid number, input again\n");
        else
            TC_EXPECT_RET_TEXT(
                "QLX_AudioSetDigitalAudioMode(eAudioDev, "
                "(QLX_AudioDigitalAudioMode_e) sInputValue)",
                QLX_AudioSetDigitalAudioMode(
                    eAudioDev, static_cast<QLX_AudioDigitalAudioMode_e>(sInputValue)));
    }
}

uint32_t AV_DtvSetTypedAudioMode(const char* name) {
    const AvSource stSource = AV_SelectManualSource(dtv00);
    return inPlay(name, stSource, [&](CaseContext& tc) { setTypedModes(tc, stSource.eAudioDev); });
}

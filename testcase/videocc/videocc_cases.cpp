// AV-VideoCC: closed captions of ATSC channels. When they come and when they do not, how they are
// framed, and that the packets of the DTV caption channel are well formed down to their codes.
#include <stdlib.h>
#include <unistd.h>

#include "framework/case/ladder.h"
#include "platform/qlx_tuner.h"
#include "platform/qlx_videosync.h"
#include "platform/qlx_vout.h"
#include "testcase/av/av_decoder.h"
#include "testcase/av/av_events.h"
#include "testcase/av/av_module.h"
#include "testcase/modules.h"
#include "testcase/videocc/cc708_parser.h"
#include "testcase/videocc/videocc_callbacks.h"
#include "testcase/vout/vout_harness.h"

enum {
    RESTARTS = 10,
    /** Seconds that a picture plays between two restarts. */
    SHORTEST_PLAY_S = 2,
    LONGEST_PLAY_S = 6,
};

/** A decoder on the caption channel. */
struct CaptionBench {
    const AvSource* pstSource;
    TcChannelInfo stChannelInfo;
    QLX_VideoAttr stVideoAttr;
    QLX_SyncParams stSyncParams;
    QLX_VideoCcCallback callback;
    void* pstRequest;
    /** The case itself starts the video, each round anew. */
    bool startsLater;
};

/** What the decoder reports; nobody reads it. */
static AvVideoRequestData stVideoRequestData;

static CaptionBench benchOf(const AvSource* pstSource, const TcChannelInfo* pstChannelInfo) {
    CaptionBench bench = {};
    QLX_AudioAttr stAudioSource = {};
    bench.pstSource = pstSource;
    bench.callback = AV_VideoCcDataCallback;
    bench.pstRequest = &stCcRequestData;
    AV_FillDecoderAttr(*pstSource, &bench.stVideoAttr, &stAudioSource);
    if (pstChannelInfo != nullptr)
        bench.stChannelInfo = *pstChannelInfo;
    bench.stSyncParams.eSyncMode = QLX_VIDEOSYNC_MODE_PCR_MASTER;
    bench.stSyncParams.uPcrPid = static_cast<uint16_t>(bench.stChannelInfo.uPcrPid);
    stVideoRequestData.uCount = 0;
    AV_ClearCcRequestData();
    return bench;
}

static int64_t startVideo(const CaptionBench& bench) {
    return QLX_VideoStart(bench.pstSource->eVideoDev, bench.stChannelInfo.eVideoFormat,
                          bench.stChannelInfo.uVideoPid);
}

static int64_t setSync(const CaptionBench& bench) {
    return QLX_VideoSyncSetMode(bench.pstSource->eVideoDev, &bench.stSyncParams);
}

static const char startVideoText[] =
    "QLX_VideoStart(pstSource->eVideoDev, pstChannelInfo->eVideoFormat, pstChannelInfo->uVideoPid)";
static const char setSyncText[] = "QLX_VideoSyncSetMode(pstSource->eVideoDev, &stSyncParams)";

// clang-format off
static constexpr LadderStep<CaptionBench> openStep =
    {LADDER_CALL("QLX_VideoOpen(pstSource->eVideoDev, &stVideoAttr)", QLX_VideoOpen(bench.pstSource->eVideoDev, &bench.stVideoAttr)), LADDER_CALL("QLX_VideoClose(pstSource->eVideoDev)", QLX_VideoClose(bench.pstSource->eVideoDev))};
static constexpr LadderStep<CaptionBench> registerStep =
    {LADDER_CALL("QLX_VideoRegisterCallback(pstSource->eVideoDev, &stVideoRequestData, AV_VideoEventCallback)", QLX_VideoRegisterCallback(bench.pstSource->eVideoDev, &stVideoRequestData, AV_VideoEventCallback)), LADDER_CALL("QLX_VideoUnRegisterCallback(pstSource->eVideoDev, AV_VideoEventCallback)", QLX_VideoUnRegisterCallback(bench.pstSource->eVideoDev, AV_VideoEventCallback))};
static constexpr LadderStep<CaptionBench> captionStep =
    {LADDER_CALL("QLX_VideoCcParserRegisterCallback(pstSource->eVideoDev, pstRequest, callback)", QLX_VideoCcParserRegisterCallback(bench.pstSource->eVideoDev, bench.pstRequest, bench.callback)), LADDER_CALL("QLX_VideoCcParserUnRegisterCallback(pstSource->eVideoDev, callback)", QLX_VideoCcParserUnRegisterCallback(bench.pstSource->eVideoDev, bench.callback))};
static constexpr LadderStep<CaptionBench> stopStep =
    {LADDER_NONE, LADDER_CALL("QLX_VideoCcParserStop(pstSource->eVideoDev)", QLX_VideoCcParserStop(bench.pstSource->eVideoDev))};

static const LadderStep<CaptionBench> parserSteps[] = {openStep, registerStep, captionStep, stopStep};
static const LadderStep<CaptionBench> pictureSteps[] = {
    openStep,
    registerStep,
    captionStep,
    {LADDER_CALL("QLX_VOutOpen(QLX_VOUTDEV_NUMBER_0, &stVOutSource)", QLX_VOutOpen(QLX_VOUTDEV_NUMBER_0, &stVOutSource)), LADDER_CALL("QLX_VOutClose(QLX_VOUTDEV_NUMBER_0)", QLX_VOutClose(QLX_VOUTDEV_NUMBER_0))},
    {LADDER_CALL(startVideoText, bench.startsLater ? 0 : startVideo(bench)), LADDER_CALL("QLX_VideoStop(pstSource->eVideoDev)", QLX_VideoStop(bench.pstSource->eVideoDev))},
    {LADDER_CALL(setSyncText, bench.startsLater ? 0 : setSync(bench)), LADDER_NONE},
    stopStep,
};
// clang-format on

/** A helper: the bench up, its work, and all down again. */
template <size_t N, typename Work>
static uint32_t onBench(const char* name, CaptionBench bench,
                        const LadderStep<CaptionBench> (&steps)[N], Work work) {
    CaseContext tc = {name};
    Ladder<CaptionBench> ladder(tc, bench, steps);
    if (ladder.up())
        work(tc, bench);
    ladder.down();
    return tc.result;
}

static bool startParser(CaseContext& tc, const CaptionBench& bench, uint32_t eDataType) {
    const char* text =
        eDataType == QLX_VIDEO_CC_DATA_TYPE_NTSC
            ? "QLX_VideoCcParserStart(pstSource->eVideoDev, QLX_VIDEO_CC_DATA_TYPE_NTSC)"
            : "QLX_VideoCcParserStart(pstSource->eVideoDev, QLX_VIDEO_CC_DATA_TYPE_DTV)";
    return TC_EXPECT_RET_TEXT(text, QLX_VideoCcParserStart(bench.pstSource->eVideoDev, eDataType));
}

/** Whether captions come within five seconds is what is expected. */
static bool expectCaptions(CaseContext& tc, bool bExpected) {
    const bool bNotified = AV_WaitForCcData();
    return TC_EXPECT_EQUAL(bExpected, bNotified);
}

// Captions that come, and that do not.

static uint32_t AV_DtvVideoCcParserStartWithoutVideoStart(const AvSource* pstSource,
                                                          const TcChannelInfo*) {
    return onBench(__func__, benchOf(pstSource, nullptr), parserSteps,
                   [](CaseContext& tc, const CaptionBench& bench) {
                       if (startParser(tc, bench, QLX_VIDEO_CC_DATA_TYPE_NTSC))
                           expectCaptions(tc, false);
                   });
}

static uint32_t AV_DtvVideoCcParserStartAfterVideoStart(const AvSource* pstSource,
                                                        const TcChannelInfo* pstChannelInfo) {
    return onBench(__func__, benchOf(pstSource, pstChannelInfo), pictureSteps,
                   [](CaseContext& tc, const CaptionBench& bench) {
                       if (startParser(tc, bench, QLX_VIDEO_CC_DATA_TYPE_NTSC) &&
                           startParser(tc, bench, QLX_VIDEO_CC_DATA_TYPE_DTV))
                           expectCaptions(tc, true);
                   });
}

static uint32_t AV_DtvVideoCcParserNoNotifyafterParserStop(const AvSource* pstSource,
                                                           const TcChannelInfo* pstChannelInfo) {
    return onBench(__func__, benchOf(pstSource, pstChannelInfo), pictureSteps,
                   [](CaseContext& tc, const CaptionBench& bench) {
                       if (startParser(tc, bench, QLX_VIDEO_CC_DATA_TYPE_DTV) &&
                           expectCaptions(tc, true) &&
                           TC_EXPECT_RET_TEXT("QLX_VideoCcParserStop(pstSource->eVideoDev)",
                                              QLX_VideoCcParserStop(bench.pstSource->eVideoDev)))
                           expectCaptions(tc, false);
                   });
}

static bool stopVideo(CaseContext& tc, const CaptionBench& bench) {
    return TC_EXPECT_RET_TEXT("QLX_VideoStop(pstSource->eVideoDev)",
                              QLX_VideoStop(bench.pstSource->eVideoDev));
}

static bool restartVideo(CaseContext& tc, const CaptionBench& bench) {
    return TC_EXPECT_RET_TEXT(startVideoText, startVideo(bench)) &&
           TC_EXPECT_RET_TEXT(setSyncText, setSync(bench));
}

/** The parser is not started anew. */
static uint32_t AV_DtvVideoCcParserReNotifyAfterVideoRestart(const AvSource* pstSource,
                                                             const TcChannelInfo* pstChannelInfo) {
    return onBench(__func__, benchOf(pstSource, pstChannelInfo), pictureSteps,
                   [](CaseContext& tc, const CaptionBench& bench) {
                       if (startParser(tc, bench, QLX_VIDEO_CC_DATA_TYPE_NTSC) &&
                           expectCaptions(tc, true) && stopVideo(tc, bench) &&
                           expectCaptions(tc, false) && restartVideo(tc, bench))
                           expectCaptions(tc, true);
                   });
}

static bool playRound(CaseContext& tc, const CaptionBench& bench) {
    if (!restartVideo(tc, bench) || !expectCaptions(tc, true))
        return false;
    const int seconds = SHORTEST_PLAY_S + rand() % (LONGEST_PLAY_S - SHORTEST_PLAY_S + 1);
    sleep(static_cast<unsigned>(seconds));
    zk_log("Already wait %ds ,now stop video\n", seconds);
    return stopVideo(tc, bench) && expectCaptions(tc, false);
}

static uint32_t AV_DtvVideoCcParserReNotifyAfterVideoRestart10Times(
    const AvSource* pstSource, const TcChannelInfo* pstChannelInfo) {
    CaptionBench opened = benchOf(pstSource, pstChannelInfo);
    opened.startsLater = true;
    return onBench(__func__, opened, pictureSteps, [](CaseContext& tc, const CaptionBench& bench) {
        bool good = startParser(tc, bench, QLX_VIDEO_CC_DATA_TYPE_NTSC);
        for (int round = 0; round < RESTARTS && good; round++)
            good = playRound(tc, bench);
    });
}

// What they hold.

static uint32_t AV_DtvVideoCcParserDataDigital(const AvSource* pstSource,
                                               const TcChannelInfo* pstChannelInfo) {
    CaptionBench opened = benchOf(pstSource, pstChannelInfo);
    CcParserDigital stCcParserDigital = {0, 0, CC_TEST_TOTAL};
    opened.callback = AV_VideoCcDataCallbackParserDigital;
    opened.pstRequest = &stCcParserDigital;
    g_u16Sn_err_count = 0;
    return onBench(__func__, opened, pictureSteps, [&](CaseContext& tc, const CaptionBench& bench) {
        if (startParser(tc, bench, QLX_VIDEO_CC_DATA_TYPE_DTV))
            AV_JudgeCcPackets(tc, stCcParserDigital);
    });
}

static uint32_t AV_DtvVideoCcParserDataAnalog(const AvSource* pstSource,
                                              const TcChannelInfo* pstChannelInfo) {
    return onBench(__func__, benchOf(pstSource, pstChannelInfo), pictureSteps,
                   [](CaseContext& tc, const CaptionBench& bench) {
                       if (startParser(tc, bench, QLX_VIDEO_CC_DATA_TYPE_NTSC))
                           AV_JudgeCcPairs(tc);
                   });
}

static uint32_t AV_DtvVideoCcParserDataAnalogAndDigital(const AvSource* pstSource,
                                                        const TcChannelInfo* pstChannelInfo) {
    return onBench(__func__, benchOf(pstSource, pstChannelInfo), pictureSteps,
                   [](CaseContext& tc, const CaptionBench& bench) {
                       if (startParser(tc, bench, QLX_VIDEO_CC_DATA_TYPE_NTSC) &&
                           startParser(tc, bench, QLX_VIDEO_CC_DATA_TYPE_DTV))
                           AV_JudgeCcBoth(tc);
                   });
}

// Cases.

struct CaptionHelper {
    uint32_t (*run)(const AvSource* pstSource, const TcChannelInfo* pstChannelInfo);
    /** As a failure prints it. */
    const char* text;
};

#define HELPER(name, function, arguments) \
    static const CaptionHelper name = {function, #function arguments};
HELPER(startWithoutVideo, AV_DtvVideoCcParserStartWithoutVideoStart, "(&stSource)")
HELPER(startAfterVideo, AV_DtvVideoCcParserStartAfterVideoStart, "(&stSource, &stChannelInfo)")
HELPER(noNotify, AV_DtvVideoCcParserNoNotifyafterParserStop, "(&stSource, &stChannelInfo)")
HELPER(reNotify, AV_DtvVideoCcParserReNotifyAfterVideoRestart, "(&stSource, &stChannelInfo)")
HELPER(reNotify10Times, AV_DtvVideoCcParserReNotifyAfterVideoRestart10Times,
       "(&stSource, &stChannelInfo)")
HELPER(dataDigital, AV_DtvVideoCcParserDataDigital, "(&stSource, &stChannelInfo)")
HELPER(dataAnalog, AV_DtvVideoCcParserDataAnalog, "(&stSource, &stChannelInfo)")
HELPER(dataBoth, AV_DtvVideoCcParserDataAnalogAndDigital, "(&stSource, &stChannelInfo)")
#undef HELPER

/** ATSC by cable and by antenna, and their places among the caption channels. */
struct Standard {
    uint32_t system;
    uint32_t place;
};
static const Standard cable = {QLX_TRANSMISSION_SYSTEM_ATSC_C, AV_ATSC_C - AV_ATSC_T};
static const Standard antenna = {QLX_TRANSMISSION_SYSTEM_ATSC_T, 0};

static uint32_t captionBase(const char* name, const CaptionHelper& helper, uint32_t device,
                            const Standard& standard) {
    CaseContext tc = {name};
    AvSource stSource = zk_testConfig.av.stSource;
    TcChannelInfo stChannelInfo = {};
    stSource.eSource = AV_SOURCE_DTV;
    stSource.eDTVTunerDev = device;
    stSource.eDTVDemuxDev = device;
    stSource.TransmissionSystem_e = standard.system;
    stSource.uDTVChannelId = zk_testConfig.av.uVideoCcChannelIds[standard.place];
    AV_GetChannel(stSource, standard.system, &stChannelInfo);
    if (TC_EXPECT_RET(TC_AV_START_SOURCE(&stSource))) {
        TC_EXPECT_RET_TEXT(helper.text, helper.run(&stSource, &stChannelInfo));
        TC_EXPECT_RET(TC_AV_STOP_SOURCE(&stSource));
    }
    return TC_RESULT(tc);
}

// clang-format off
#define PARSER_START_FAMILY(X) \
    /* case                         flag  description                                                                                    body */ \
    X(TC_AV_VideoCcParserStart_001, AUTO, "Start parse CC data without video start in video-0 with the source (Tuner-0,Demux-0,ATSC-C)", captionBase(__func__, startWithoutVideo, 0, cable)) \
    X(TC_AV_VideoCcParserStart_002, AUTO, "Start parse CC data without video start in video-0 with the source (Tuner-1,Demux-1,ATSC-C)", captionBase(__func__, startWithoutVideo, 1, cable)) \
    X(TC_AV_VideoCcParserStart_003, AUTO, "Start parse CC data without video start in video-0 with the source (Tuner-2,Demux-2,ATSC-C)", captionBase(__func__, startWithoutVideo, 2, cable)) \
    X(TC_AV_VideoCcParserStart_004, AUTO, "Start parse CC data without video start in video-0 with the source (Tuner-3,Demux-3,ATSC-C)", captionBase(__func__, startWithoutVideo, 3, cable)) \
    X(TC_AV_VideoCcParserStart_005, AUTO, "Start parse CC data without video start in video-0 with the source (Tuner-0,Demux-0,ATSC-T)", captionBase(__func__, startWithoutVideo, 0, antenna)) \
    X(TC_AV_VideoCcParserStart_006, AUTO, "Start parse CC data without video start in video-0 with the source (Tuner-1,Demux-1,ATSC-T)", captionBase(__func__, startWithoutVideo, 1, antenna)) \
    X(TC_AV_VideoCcParserStart_007, AUTO, "Start parse CC data without video start in video-0 with the source (Tuner-2,Demux-2,ATSC-T)", captionBase(__func__, startWithoutVideo, 2, antenna)) \
    X(TC_AV_VideoCcParserStart_008, AUTO, "Start parse CC data without video start in video-0 with the source (Tuner-3,Demux-3,ATSC-T)", captionBase(__func__, startWithoutVideo, 3, antenna))
#define PARSER_START_AFTER_FAMILY(X) \
    /* case                         flag  description                                                                                  body */ \
    X(TC_AV_VideoCcParserStart_011, AUTO, "Start parse CC data after video start in video-0 with the source (Tuner-0,Demux-0,ATSC-C)", captionBase(__func__, startAfterVideo, 0, cable)) \
    X(TC_AV_VideoCcParserStart_012, AUTO, "Start parse CC data after video start in video-0 with the source (Tuner-1,Demux-1,ATSC-C)", captionBase(__func__, startAfterVideo, 1, cable)) \
    X(TC_AV_VideoCcParserStart_013, AUTO, "Start parse CC data after video start in video-0 with the source (Tuner-2,Demux-2,ATSC-C)", captionBase(__func__, startAfterVideo, 2, cable)) \
    X(TC_AV_VideoCcParserStart_014, AUTO, "Start parse CC data after video start in video-0 with the source (Tuner-3,Demux-3,ATSC-C)", captionBase(__func__, startAfterVideo, 3, cable)) \
    X(TC_AV_VideoCcParserStart_015, AUTO, "Start parse CC data after video start in video-0 with the source (Tuner-0,Demux-0,ATSC-T)", captionBase(__func__, startAfterVideo, 0, antenna)) \
    X(TC_AV_VideoCcParserStart_016, AUTO, "Start parse CC data after video start in video-0 with the source (Tuner-1,Demux-1,ATSC-T)", captionBase(__func__, startAfterVideo, 1, antenna)) \
    X(TC_AV_VideoCcParserStart_017, AUTO, "Start parse CC data after video start in video-0 with the source (Tuner-2,Demux-2,ATSC-T)", captionBase(__func__, startAfterVideo, 2, antenna)) \
    X(TC_AV_VideoCcParserStart_018, AUTO, "Start parse CC data after video start in video-0 with the source (Tuner-3,Demux-3,ATSC-T)", captionBase(__func__, startAfterVideo, 3, antenna))
#define NO_NOTIFY_FAMILY(X) \
    /* case                         flag  description                                                                                                   body */ \
    X(TC_AV_VideoCcParserEvent_001, AUTO, "No CC parser event notification from video-0 after cc parser stop with the source (Tuner-0,Demux-0,ATSC-C)", captionBase(__func__, noNotify, 0, cable)) \
    X(TC_AV_VideoCcParserEvent_002, AUTO, "No CC parser event notification from video-0 after cc parser stop with the source (Tuner-1,Demux-1,ATSC-C)", captionBase(__func__, noNotify, 1, cable)) \
    X(TC_AV_VideoCcParserEvent_003, AUTO, "No CC parser event notification from video-0 after cc parser stop with the source (Tuner-2,Demux-2,ATSC-C)", captionBase(__func__, noNotify, 2, cable)) \
    X(TC_AV_VideoCcParserEvent_004, AUTO, "No CC parser event notification from video-0 after cc parser stop with the source (Tuner-3,Demux-3,ATSC-C)", captionBase(__func__, noNotify, 3, cable)) \
    X(TC_AV_VideoCcParserEvent_005, AUTO, "No CC parser event notification from video-0 after cc parser stop with the source (Tuner-0,Demux-0,ATSC-T)", captionBase(__func__, noNotify, 0, antenna)) \
    X(TC_AV_VideoCcParserEvent_006, AUTO, "No CC parser event notification from video-0 after cc parser stop with the source (Tuner-1,Demux-1,ATSC-T)", captionBase(__func__, noNotify, 1, antenna)) \
    X(TC_AV_VideoCcParserEvent_007, AUTO, "No CC parser event notification from video-0 after cc parser stop with the source (Tuner-2,Demux-2,ATSC-T)", captionBase(__func__, noNotify, 2, antenna)) \
    X(TC_AV_VideoCcParserEvent_008, AUTO, "No CC parser event notification from video-0 after cc parser stop with the source (Tuner-3,Demux-3,ATSC-T)", captionBase(__func__, noNotify, 3, antenna))
#define RE_NOTIFY_FAMILY(X) \
    /* case                         flag  description                                                                                 body */ \
    X(TC_AV_VideoCcParserEvent_011, AUTO, "CC parser event re-notify after video-0 restart with the source (Tuner-0,Demux-0,ATSC-C)", captionBase(__func__, reNotify, 0, cable)) \
    X(TC_AV_VideoCcParserEvent_012, AUTO, "CC parser event re-notify after video-0 restart with the source (Tuner-1,Demux-1,ATSC-C)", captionBase(__func__, reNotify, 1, cable)) \
    X(TC_AV_VideoCcParserEvent_013, AUTO, "CC parser event re-notify after video-0 restart with the source (Tuner-2,Demux-2,ATSC-C)", captionBase(__func__, reNotify, 2, cable)) \
    X(TC_AV_VideoCcParserEvent_014, AUTO, "CC parser event re-notify after video-0 restart with the source (Tuner-3,Demux-3,ATSC-C)", captionBase(__func__, reNotify, 3, cable)) \
    X(TC_AV_VideoCcParserEvent_015, AUTO, "CC parser event re-notify after video-0 restart with the source (Tuner-0,Demux-0,ATSC-T)", captionBase(__func__, reNotify, 0, antenna)) \
    X(TC_AV_VideoCcParserEvent_016, AUTO, "CC parser event re-notify after video-0 restart with the source (Tuner-1,Demux-1,ATSC-T)", captionBase(__func__, reNotify, 1, antenna)) \
    X(TC_AV_VideoCcParserEvent_017, AUTO, "CC parser event re-notify after video-0 restart with the source (Tuner-2,Demux-2,ATSC-T)", captionBase(__func__, reNotify, 2, antenna)) \
    X(TC_AV_VideoCcParserEvent_018, AUTO, "CC parser event re-notify after video-0 restart with the source (Tuner-3,Demux-3,ATSC-T)", captionBase(__func__, reNotify, 3, antenna))
#define RE_NOTIFY_10_FAMILY(X) \
    /* case                         flag  description                                                                                              body */ \
    X(TC_AV_VideoCcParserEvent_021, AUTO, "CC parser event re-notify after video-0 restart for 10 times with the source (Tuner-0,Demux-0,ATSC-C)", captionBase(__func__, reNotify10Times, 0, cable)) \
    X(TC_AV_VideoCcParserEvent_022, AUTO, "CC parser event re-notify after video-0 restart for 10 times with the source (Tuner-1,Demux-1,ATSC-C)", captionBase(__func__, reNotify10Times, 1, cable)) \
    X(TC_AV_VideoCcParserEvent_023, AUTO, "CC parser event re-notify after video-0 restart for 10 times with the source (Tuner-2,Demux-2,ATSC-C)", captionBase(__func__, reNotify10Times, 2, cable)) \
    X(TC_AV_VideoCcParserEvent_024, AUTO, "CC parser event re-notify after video-0 restart for 10 times with the source (Tuner-3,Demux-3,ATSC-C)", captionBase(__func__, reNotify10Times, 3, cable)) \
    X(TC_AV_VideoCcParserEvent_025, AUTO, "CC parser event re-notify after video-0 restart for 10 times with the source (Tuner-0,Demux-0,ATSC-T)", captionBase(__func__, reNotify10Times, 0, antenna)) \
    X(TC_AV_VideoCcParserEvent_026, AUTO, "CC parser event re-notify after video-0 restart for 10 times with the source (Tuner-1,Demux-1,ATSC-T)", captionBase(__func__, reNotify10Times, 1, antenna)) \
    X(TC_AV_VideoCcParserEvent_027, AUTO, "CC parser event re-notify after video-0 restart for 10 times with the source (Tuner-2,Demux-2,ATSC-T)", captionBase(__func__, reNotify10Times, 2, antenna)) \
    X(TC_AV_VideoCcParserEvent_028, AUTO, "CC parser event re-notify after video-0 restart for 10 times with the source (Tuner-3,Demux-3,ATSC-T)", captionBase(__func__, reNotify10Times, 3, antenna))
#define DATA_DIGITAL_FAMILY(X) \
    /* case                        flag  description                                                                     body */ \
    X(TC_AV_VideoCcParserData_001, AUTO, "Parser digital CC data from video-0 with the source (Tuner-0,Demux-0,ATSC-C)", captionBase(__func__, dataDigital, 0, cable)) \
    X(TC_AV_VideoCcParserData_002, AUTO, "Parser digital CC data from video-0 with the source (Tuner-1,Demux-1,ATSC-C)", captionBase(__func__, dataDigital, 1, cable)) \
    X(TC_AV_VideoCcParserData_003, AUTO, "Parser digital CC data from video-0 with the source (Tuner-2,Demux-2,ATSC-C)", captionBase(__func__, dataDigital, 2, cable)) \
    X(TC_AV_VideoCcParserData_004, AUTO, "Parser digital CC data from video-0 with the source (Tuner-3,Demux-3,ATSC-C)", captionBase(__func__, dataDigital, 3, cable)) \
    X(TC_AV_VideoCcParserData_005, AUTO, "Parser digital CC data from video-0 with the source (Tuner-0,Demux-0,ATSC-T)", captionBase(__func__, dataDigital, 0, antenna)) \
    X(TC_AV_VideoCcParserData_006, AUTO, "Parser digital CC data from video-0 with the source (Tuner-1,Demux-1,ATSC-T)", captionBase(__func__, dataDigital, 1, antenna)) \
    X(TC_AV_VideoCcParserData_007, AUTO, "Parser digital CC data from video-0 with the source (Tuner-2,Demux-2,ATSC-T)", captionBase(__func__, dataDigital, 2, antenna)) \
    X(TC_AV_VideoCcParserData_008, AUTO, "Parser digital CC data from video-0 with the source (Tuner-3,Demux-3,ATSC-T)", captionBase(__func__, dataDigital, 3, antenna))
#define DATA_ANALOG_FAMILY(X) \
    /* case                        flag  description                                                                    body */ \
    X(TC_AV_VideoCcParserData_011, AUTO, "Parser analog CC data from video-0 with the source (Tuner-0,Demux-0,ATSC-C)", captionBase(__func__, dataAnalog, 0, cable)) \
    X(TC_AV_VideoCcParserData_012, AUTO, "Parser analog CC data from video-0 with the source (Tuner-1,Demux-1,ATSC-C)", captionBase(__func__, dataAnalog, 1, cable)) \
    X(TC_AV_VideoCcParserData_013, AUTO, "Parser analog CC data from video-0 with the source (Tuner-2,Demux-2,ATSC-C)", captionBase(__func__, dataAnalog, 2, cable)) \
    X(TC_AV_VideoCcParserData_014, AUTO, "Parser analog CC data from video-0 with the source (Tuner-3,Demux-3,ATSC-C)", captionBase(__func__, dataAnalog, 3, cable)) \
    X(TC_AV_VideoCcParserData_015, AUTO, "Parser analog CC data from video-0 with the source (Tuner-0,Demux-0,ATSC-T)", captionBase(__func__, dataAnalog, 0, antenna)) \
    X(TC_AV_VideoCcParserData_016, AUTO, "Parser analog CC data from video-0 with the source (Tuner-1,Demux-1,ATSC-T)", captionBase(__func__, dataAnalog, 1, antenna)) \
    X(TC_AV_VideoCcParserData_017, AUTO, "Parser analog CC data from video-0 with the source (Tuner-2,Demux-2,ATSC-T)", captionBase(__func__, dataAnalog, 2, antenna)) \
    X(TC_AV_VideoCcParserData_018, AUTO, "Parser analog CC data from video-0 with the source (Tuner-3,Demux-3,ATSC-T)", captionBase(__func__, dataAnalog, 3, antenna))
#define DATA_BOTH_FAMILY(X) \
    /* case                        flag  description                                                                                body */ \
    X(TC_AV_VideoCcParserData_021, AUTO, "Parser analog and digital CC data from video-0 with the source (Tuner-0,Demux-0,ATSC-C)", captionBase(__func__, dataBoth, 0, cable)) \
    X(TC_AV_VideoCcParserData_022, AUTO, "Parser analog and digital CC data from video-0 with the source (Tuner-1,Demux-1,ATSC-C)", captionBase(__func__, dataBoth, 1, cable)) \
    X(TC_AV_VideoCcParserData_023, AUTO, "Parser analog and digital CC data from video-0 with the source (Tuner-2,Demux-2,ATSC-C)", captionBase(__func__, dataBoth, 2, cable)) \
    X(TC_AV_VideoCcParserData_024, AUTO, "Parser analog and digital CC data from video-0 with the source (Tuner-3,Demux-3,ATSC-C)", captionBase(__func__, dataBoth, 3, cable)) \
    X(TC_AV_VideoCcParserData_025, AUTO, "Parser analog and digital CC data from video-0 with the source (Tuner-0,Demux-0,ATSC-T)", captionBase(__func__, dataBoth, 0, antenna)) \
    X(TC_AV_VideoCcParserData_026, AUTO, "Parser analog and digital CC data from video-0 with the source (Tuner-1,Demux-1,ATSC-T)", captionBase(__func__, dataBoth, 1, antenna)) \
    X(TC_AV_VideoCcParserData_027, AUTO, "Parser analog and digital CC data from video-0 with the source (Tuner-2,Demux-2,ATSC-T)", captionBase(__func__, dataBoth, 2, antenna)) \
    X(TC_AV_VideoCcParserData_028, AUTO, "Parser analog and digital CC data from video-0 with the source (Tuner-3,Demux-3,ATSC-T)", captionBase(__func__, dataBoth, 3, antenna))
// clang-format on

PARSER_START_FAMILY(TC_VARIANT_FUNCTION)
PARSER_START_AFTER_FAMILY(TC_VARIANT_FUNCTION)
NO_NOTIFY_FAMILY(TC_VARIANT_FUNCTION)
RE_NOTIFY_FAMILY(TC_VARIANT_FUNCTION)
RE_NOTIFY_10_FAMILY(TC_VARIANT_FUNCTION)
DATA_DIGITAL_FAMILY(TC_VARIANT_FUNCTION)
DATA_ANALOG_FAMILY(TC_VARIANT_FUNCTION)
DATA_BOTH_FAMILY(TC_VARIANT_FUNCTION)

// clang-format off
static constexpr TcCase AVDtvVideoCcModuleCases[] = {
    PARSER_START_FAMILY(TC_VARIANT_ROW)
    PARSER_START_AFTER_FAMILY(TC_VARIANT_ROW)
    NO_NOTIFY_FAMILY(TC_VARIANT_ROW)
    RE_NOTIFY_FAMILY(TC_VARIANT_ROW)
    RE_NOTIFY_10_FAMILY(TC_VARIANT_ROW)
    DATA_DIGITAL_FAMILY(TC_VARIANT_ROW)
    DATA_ANALOG_FAMILY(TC_VARIANT_ROW)
    DATA_BOTH_FAMILY(TC_VARIANT_ROW)
};
// clang-format on
static_assert(tcCaseCount(AVDtvVideoCcModuleCases) == 64 &&
                  tcAutoCount(AVDtvVideoCcModuleCases) == 64,
              "cases of the module, and those that run by themselves");

const TcModule AVDtvVideoCcModule = {
    AV_DtvVideoCcTestSetup,
    AV_DtvVideoCcTeardown,
    nullptr,
    nullptr,
    AVDtvVideoCcModuleCases,
    tcCaseCount(AVDtvVideoCcModuleCases),
    "AV-VideoCC",
    "Test module for video CC",
    nullptr,
};

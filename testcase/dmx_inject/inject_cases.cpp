// DmxInject: the injector's calls in and out of order, and recordings that are injected and played,
// with pauses, flushes, seeks and other speeds, on each demultiplexer.
#include <string.h>
#include <unistd.h>

#include "framework/case/ladder.h"
#include "framework/case/wait.h"
#include "platform/qlx_audio.h"
#include "platform/qlx_record.h"
#include "platform/qlx_tuner.h"
#include "platform/qlx_video.h"
#include "testcase/av/av_decoder.h"
#include "testcase/av/av_events.h"
#include "testcase/dmx_inject/inject_harness.h"
#include "testcase/modules.h"
#include "testcase/record/record_harness.h"
#include "testcase/record/record_output.h"
#include "testcase/tuner/tuner_harness.h"

enum {
    /** A handle that none is. */
    NULL_HANDLE = 0,
    ROUNDS = 10,
    /** ms that a call may not take, and a flush. */
    CALL_LIMIT = 201,
    FLUSH_LIMIT = 301,
    PACKET_SIZE = 192,
    PTS_POLL_US = 400000,
    PTS_RUN_IN = 20,
    PTS_LIMIT_S = 60,
    SEEKS_PER_ROUND = 2,
    AUDIO_EVENTS_PER_ROUND = 4,
    SPEED_RUN_S = 10,
};

// The calls.

/** An injector, as far as a case brings it up. */
struct InjectorBench {
    QLX_DmxInjectOpenParam stParam;
};

/** User data of the callback, which looks at none. */
static uint32_t g_stUserData[2];

static const LadderStep<InjectorBench> injectorSteps[] = {
    {LADDER_CALL("QLX_DmxInjectInit()", QLX_DmxInjectInit()),
     LADDER_CALL("QLX_DmxInjectDeInit()", QLX_DmxInjectDeInit())},
    {LADDER_CALL("QLX_DmxInjectOpen(&stParam, &g_injectHdl)",
                 QLX_DmxInjectOpen(&bench.stParam, &g_injectHdl)),
     LADDER_CALL("QLX_DmxInjectClose(g_injectHdl)", QLX_DmxInjectClose(g_injectHdl))},
    {LADDER_CALL("QLX_DmxInjectRegisterCallback(g_injectHdl, DmxInject_Callback, &g_stUserData)",
                 QLX_DmxInjectRegisterCallback(g_injectHdl, DmxInject_Callback, &g_stUserData)),
     LADDER_CALL("QLX_DmxInjectUnRegisterCallback(g_injectHdl, DmxInject_Callback)",
                 QLX_DmxInjectUnRegisterCallback(g_injectHdl, DmxInject_Callback))},
    {LADDER_CALL("QLX_DmxInjectStart(g_injectHdl)", QLX_DmxInjectStart(g_injectHdl)),
     LADDER_CALL("QLX_DmxInjectStop(g_injectHdl)", QLX_DmxInjectStop(g_injectHdl))},
};
enum InjectorLevel {
    INITIALISED = 1,
    OPENED = 2,
    REGISTERED = 3,
    STARTED = 4,
};

static bool isOnBoard(uint32_t eDemuxId) {
    static const uint32_t features[QLX_DEMUX_NUM_MAX] = {
        FEATURE_PVR_PLAYBACK_DEMUX0, FEATURE_PVR_PLAYBACK_DEMUX1, FEATURE_PVR_PLAYBACK_DEMUX2,
        FEATURE_PVR_PLAYBACK_DEMUX3};
    return tcInjectFeature[features[eDemuxId]] != 0;
}

/** A case on an injector that is up to a level. */
template <typename Work>
static uint32_t onInjector(const char* name, uint32_t eDemuxId, InjectorLevel level, Work work) {
    CaseContext tc = {name};
    InjectorBench bench = {{eDemuxId, 0, PACKET_SIZE}};
    if (!isOnBoard(eDemuxId))
        return tc_notApplicable(tc);
    Ladder<InjectorBench> ladder(tc, bench, injectorSteps);
    if (ladder.up(level))
        work(tc, bench.stParam);
    ladder.down();
    g_injectHdl = NULL_HANDLE;
    return TC_RESULT(tc);
}

static void nothing(CaseContext&, const QLX_DmxInjectOpenParam&) {}

static uint32_t TC_InjTestInitDeinit(void) {
    return onInjector(__func__, 0, INITIALISED, nothing);
}

static uint32_t openCloseBase(const char* name, uint32_t eDemuxId) {
    return onInjector(name, eDemuxId, OPENED, nothing);
}

static uint32_t doubleOpenBase(const char* name, uint32_t eDemuxId) {
    return onInjector(name, eDemuxId, OPENED,
                      []([[maybe_unused]] CaseContext& tc,
                         [[maybe_unused]] const QLX_DmxInjectOpenParam& stParam) {
                          uint32_t hSecond = NULL_HANDLE;
                          TC_EXPECT_RET_CODE_TEXT("QLX_DmxInjectOpen(&stParam, &g_injectHdl)",
                                                  QLX_DmxInjectOpen(&stParam, &hSecond),
                                                  QLX_FAILED);
                      });
}

static uint32_t openCloseOpenBase(const char* name, uint32_t eDemuxId) {
    return onInjector(name, eDemuxId, INITIALISED,
                      []([[maybe_unused]] CaseContext& tc,
                         [[maybe_unused]] const QLX_DmxInjectOpenParam& stParam) {
                          for (int round = 0; round < 2; round++) {
                              if (TC_EXPECT_RET(QLX_DmxInjectOpen(&stParam, &g_injectHdl)))
                                  TC_EXPECT_RET(QLX_DmxInjectClose(g_injectHdl));
                          }
                      });
}

/** A call that is refused as invalid. */
#define INJ_INVALID_CASE(name, level, call)                                            \
    static uint32_t name(void) {                                                       \
        return onInjector(__func__, 0, level,                                          \
                          []([[maybe_unused]] CaseContext& tc,                         \
                             [[maybe_unused]] const QLX_DmxInjectOpenParam& stParam) { \
                              TC_EXPECT_RET_CODE_TEXT(#call, call,                     \
                                                      QLX_DMXINJECT_ERR_INVALID_PARA); \
                          });                                                          \
    }

static uint8_t oneBlock[INJ_BLOCK_SIZE];
static uint32_t uWritten;
static QLX_DmxInjectCapability stCapability;
static uint32_t uFreeSize;

INJ_INVALID_CASE(TC_InjTestOpenOnNullOpenParam, INITIALISED, QLX_DmxInjectOpen(NULL, &g_injectHdl))
INJ_INVALID_CASE(TC_InjTestOpenWithNullHdl, INITIALISED, QLX_DmxInjectOpen(&stParam, NULL))
INJ_INVALID_CASE(TC_InjTestCloseOnNullHdl, OPENED, QLX_DmxInjectClose(NULL_HANDLE))
INJ_INVALID_CASE(TC_InjTestRegisterOnNullHdl, OPENED,
                 QLX_DmxInjectRegisterCallback(NULL_HANDLE, DmxInject_Callback, &g_stUserData))
INJ_INVALID_CASE(TC_InjTestRegisterWithNullCb, OPENED,
                 QLX_DmxInjectRegisterCallback(g_injectHdl, NULL, &g_stUserData))
INJ_INVALID_CASE(TC_InjTestUnRegisterOnNullHdl, REGISTERED,
                 QLX_DmxInjectUnRegisterCallback(NULL_HANDLE, DmxInject_Callback))
INJ_INVALID_CASE(TC_InjTestUnRegisterWithNullCb, REGISTERED,
                 QLX_DmxInjectUnRegisterCallback(g_injectHdl, NULL))
INJ_INVALID_CASE(TC_InjTestStartOnNullHdl, OPENED, QLX_DmxInjectStart(NULL_HANDLE))
INJ_INVALID_CASE(TC_InjTestStopOnNullHdl, STARTED, QLX_DmxInjectStop(NULL_HANDLE))
INJ_INVALID_CASE(TC_InjTestGetCapabilityOnNullHdl, OPENED,
                 QLX_DmxInjectGetCapability(NULL_HANDLE, &stCapability))
INJ_INVALID_CASE(TC_InjTestGetCapabilityWithNullParam, OPENED,
                 QLX_DmxInjectGetCapability(g_injectHdl, NULL))
INJ_INVALID_CASE(TC_InjTestGetFreeSizeOnNullHdl, OPENED,
                 QLX_DmxInjectGetFreeSize(NULL_HANDLE, &uFreeSize))
INJ_INVALID_CASE(TC_InjTestGetFreeSizeWithNullParam, OPENED,
                 QLX_DmxInjectGetFreeSize(g_injectHdl, NULL))
INJ_INVALID_CASE(TC_InjTestWriteDataOnNullHdl, STARTED,
                 QLX_DmxInjectWriteData(NULL_HANDLE, oneBlock, INJ_BLOCK_SIZE, &uWritten))
INJ_INVALID_CASE(TC_InjTestWriteDataWithNullData, STARTED,
                 QLX_DmxInjectWriteData(g_injectHdl, NULL, INJ_BLOCK_SIZE, &uWritten))
INJ_INVALID_CASE(TC_InjTestWriteDataWithZeroSize, STARTED,
                 QLX_DmxInjectWriteData(g_injectHdl, oneBlock, 0, &uWritten))
INJ_INVALID_CASE(TC_InjTestFlushOnNullHdl, STARTED, QLX_DmxInjectFlush(NULL_HANDLE))
INJ_INVALID_CASE(TC_InjTestPauseOnNullHdl, STARTED, QLX_DmxInjectPause(NULL_HANDLE))
INJ_INVALID_CASE(TC_InjTestResumeOnNullHdl, STARTED, QLX_DmxInjectResume(NULL_HANDLE))

/** A call that comes in the wrong order. */
#define INJ_FAILED_CASE(name, level, call)                                             \
    static uint32_t name(void) {                                                       \
        return onInjector(__func__, 0, level,                                          \
                          []([[maybe_unused]] CaseContext& tc,                         \
                             [[maybe_unused]] const QLX_DmxInjectOpenParam& stParam) { \
                              TC_EXPECT_RET_CODE_TEXT(#call, call, QLX_FAILED);        \
                          });                                                          \
    }

INJ_FAILED_CASE(TC_InjTestDoubleStart, STARTED, QLX_DmxInjectStart(g_injectHdl))
INJ_FAILED_CASE(TC_InjTestPauseBeforeStart, OPENED, QLX_DmxInjectPause(g_injectHdl))
INJ_FAILED_CASE(TC_InjTestResumeBeforePause, STARTED, QLX_DmxInjectResume(g_injectHdl))

static uint32_t TC_InjTestDoubleClose(void) {
    return onInjector(__func__, 0, INITIALISED,
                      []([[maybe_unused]] CaseContext& tc,
                         [[maybe_unused]] const QLX_DmxInjectOpenParam& stParam) {
                          if (!TC_EXPECT_RET(QLX_DmxInjectOpen(&stParam, &g_injectHdl)) ||
                              !TC_EXPECT_RET(QLX_DmxInjectClose(g_injectHdl)))
                              return;
                          TC_EXPECT_RET_CODE(QLX_DmxInjectClose(g_injectHdl), QLX_FAILED);
                      });
}

static uint32_t registerBase(const char* name, uint32_t eDemuxId) {
    return onInjector(name, eDemuxId, REGISTERED, nothing);
}

static uint32_t TC_InjTestUnRegister(void) {
    return registerBase(__func__, 0);
}

static uint32_t startBase(const char* name, uint32_t eDemuxId) {
    return onInjector(name, eDemuxId, STARTED, nothing);
}

static uint32_t TC_InjTestStop(void) {
    return startBase(__func__, 0);
}

static uint32_t TC_InjTestStartStopStart(void) {
    return onInjector(__func__, 0, OPENED,
                      []([[maybe_unused]] CaseContext& tc,
                         [[maybe_unused]] const QLX_DmxInjectOpenParam& stParam) {
                          for (int round = 0; round < 2; round++) {
                              if (TC_EXPECT_RET(QLX_DmxInjectStart(g_injectHdl)))
                                  TC_EXPECT_RET(QLX_DmxInjectStop(g_injectHdl));
                          }
                      });
}

static uint32_t TC_InjTestDoubleStop(void) {
    return onInjector(__func__, 0, OPENED,
                      []([[maybe_unused]] CaseContext& tc,
                         [[maybe_unused]] const QLX_DmxInjectOpenParam& stParam) {
                          if (!TC_EXPECT_RET(QLX_DmxInjectStart(g_injectHdl)) ||
                              !TC_EXPECT_RET(QLX_DmxInjectStop(g_injectHdl)))
                              return;
                          TC_EXPECT_RET_CODE(QLX_DmxInjectStop(g_injectHdl), QLX_FAILED);
                      });
}

static uint32_t getCapabilityBase(const char* name, uint32_t eDemuxId) {
    return onInjector(name, eDemuxId, OPENED,
                      []([[maybe_unused]] CaseContext& tc,
                         [[maybe_unused]] const QLX_DmxInjectOpenParam& stParam) {
                          stCapability = {};
                          TC_EXPECT_RET(QLX_DmxInjectGetCapability(g_injectHdl, &stCapability));
                      });
}

static uint32_t getFreeSizeBase(const char* name, uint32_t eDemuxId) {
    return onInjector(name, eDemuxId, OPENED,
                      []([[maybe_unused]] CaseContext& tc,
                         [[maybe_unused]] const QLX_DmxInjectOpenParam& stParam) {
                          uFreeSize = 0;
                          TC_EXPECT_RET(QLX_DmxInjectGetFreeSize(g_injectHdl, &uFreeSize));
                      });
}

static uint32_t flushBase(const char* name, uint32_t eDemuxId) {
    return onInjector(name, eDemuxId, STARTED,
                      []([[maybe_unused]] CaseContext& tc,
                         [[maybe_unused]] const QLX_DmxInjectOpenParam& stParam) {
                          TC_EXPECT_RET(QLX_DmxInjectFlush(g_injectHdl));
                      });
}

// Time limits.

/** A call within its time. What the line on it calls it; the call as a failure prints it. */
template <typename Call>
static bool timedCall(CaseContext& tc, const char* what, const char* text, int64_t limit,
                      Call call) {
    const Stopwatch watch;
    const int64_t answer = call();
    const long long consumed = watch.ms();
    const bool done = TC_EXPECT_RET_TEXT(text, answer);
    zk_log("consumption time of %s is %lld ms\r\n", what, consumed);
    return TC_EXPECT_TRUE(consumed < limit) && done;
}
#define INJ_TIMED(what, call) timedCall(tc, what, #call, CALL_LIMIT, [&] { return call; })

static uint32_t timeConsumeBase(const char* name, uint32_t eDemuxId) {
    CaseContext tc = {name};
    const QLX_DmxInjectOpenParam stParam = {eDemuxId, 0, PACKET_SIZE};
    if (!isOnBoard(eDemuxId))
        return tc_notApplicable(tc);
    INJ_TIMED("init dmxInject", QLX_DmxInjectInit());
    INJ_TIMED("open dmxInject", QLX_DmxInjectOpen(&stParam, &g_injectHdl));
    INJ_TIMED("register dmxInject",
              QLX_DmxInjectRegisterCallback(g_injectHdl, DmxInject_Callback, &g_stUserData));
    INJ_TIMED("start dmxInject", QLX_DmxInjectStart(g_injectHdl));
    INJ_TIMED("stop dmxInject", QLX_DmxInjectStop(g_injectHdl));
    INJ_TIMED("unregister dmxInject",
              QLX_DmxInjectUnRegisterCallback(g_injectHdl, DmxInject_Callback));
    INJ_TIMED("close dmxInject", QLX_DmxInjectClose(g_injectHdl));
    INJ_TIMED("deinit dmxInject", QLX_DmxInjectDeInit());
    return TC_RESULT(tc);
}

static uint32_t getValueTimeBase(const char* name, uint32_t eDemuxId) {
    return onInjector(name, eDemuxId, STARTED,
                      []([[maybe_unused]] CaseContext& tc,
                         [[maybe_unused]] const QLX_DmxInjectOpenParam& stParam) {
                          uFreeSize = 0;
                          stCapability = {};
                          INJ_TIMED("QLX_DmxInjectGetFreeSize",
                                    QLX_DmxInjectGetFreeSize(g_injectHdl, &uFreeSize));
                          printf("\n\n==>[%s() %d]I:Free size is:%u.\n", tc.name, __LINE__,
                                 uFreeSize);
                          INJ_TIMED("QLX_DmxInjectGetCapability",
                                    QLX_DmxInjectGetCapability(g_injectHdl, &stCapability));
                          printf("\n\n==>[%s() %d]I:Total size is:%u, chunk size is:%u.\n", tc.name,
                                 __LINE__, stCapability.uTotalSize, stCapability.uChunkSize);
                      });
}

// Rounds.

static uint32_t pressureOpenBase(const char* name, uint32_t eDemuxId) {
    return onInjector(name, eDemuxId, INITIALISED,
                      []([[maybe_unused]] CaseContext& tc,
                         [[maybe_unused]] const QLX_DmxInjectOpenParam& stParam) {
                          for (int round = 0; tc.result == TC_SUCCESS && round < ROUNDS; round++) {
                              if (TC_EXPECT_RET(QLX_DmxInjectOpen(&stParam, &g_injectHdl)))
                                  TC_EXPECT_RET(QLX_DmxInjectClose(g_injectHdl));
                          }
                      });
}

static uint32_t pressureStartBase(const char* name, uint32_t eDemuxId) {
    return onInjector(name, eDemuxId, REGISTERED,
                      []([[maybe_unused]] CaseContext& tc,
                         [[maybe_unused]] const QLX_DmxInjectOpenParam& stParam) {
                          for (int round = 0; tc.result == TC_SUCCESS && round < ROUNDS; round++) {
                              if (TC_EXPECT_RET(QLX_DmxInjectStart(g_injectHdl)))
                                  TC_EXPECT_RET(QLX_DmxInjectStop(g_injectHdl));
                          }
                      });
}

// Chains.

/** A case inside of a chain on a file; null: the SD file. */
template <typename Work>
static uint32_t onChain(const char* name, uint32_t eDemuxId, const char* pFile, uint32_t bWaitDone,
                        Work work) {
    CaseContext tc = {name};
    if (!isOnBoard(eDemuxId))
        return tc_notApplicable(tc);
    if (TC_EXPECT_RET(InjTestWriteDataBegin(eDemuxId, 0, pFile))) {
        work(tc);
        TC_EXPECT_RET(InjTestWriteDataFinish(eDemuxId, bWaitDone));
    }
    return TC_RESULT(tc);
}

/** Two seconds of play, of pause, and of play again. */
static bool playWithPause(CaseContext& tc) {
    sleep(2);
    if (!TC_EXPECT_RET(InjTestWriteDataPause()))
        return false;
    sleep(2);
    if (!TC_EXPECT_RET(InjTestWriteDataResume()))
        return false;
    sleep(2);
    return true;
}

static uint32_t TC_InjTestWholeFlow(uint32_t eDemuxId, const char* pFile) {
    CaseContext tc = {__func__};
    if (!TC_EXPECT_RET(InjTestWriteDataBegin(eDemuxId, 0, pFile)))
        return tc.result;
    if (playWithPause(tc))
        TC_EXPECT_RET(QLX_DmxInjectFlush(g_injectHdl));
    TC_EXPECT_RET(InjTestWriteDataFinish(eDemuxId, QLX_FALSE));
    return tc.result;
}

static uint32_t wholeFlowBase(const char* name, uint32_t eDemuxId, const char* pFile, int rounds) {
    CaseContext tc = {name};
    if (!isOnBoard(eDemuxId))
        return tc_notApplicable(tc);
    for (int round = 0; tc.result == TC_SUCCESS && round < rounds; round++)
        TC_EXPECT_RET(TC_InjTestWholeFlow(eDemuxId, pFile));
    return TC_RESULT(tc);
}

static uint32_t wholeFlowWithTimeBase(const char* name, uint32_t eDemuxId) {
    return onChain(name, eDemuxId, nullptr, QLX_FALSE, [](CaseContext& tc) {
        sleep(2);
        INJ_TIMED("pause dmxInject", QLX_DmxInjectPause(g_injectHdl));
        sleep(2);
        INJ_TIMED("resume dmxInject", QLX_DmxInjectResume(g_injectHdl));
        sleep(2);
        TC_EXPECT_RET(QLX_DmxInjectFlush(g_injectHdl));
    });
}

static uint32_t flushTimeBase(const char* name, uint32_t eDemuxId, int rounds) {
    return onChain(name, eDemuxId, nullptr, QLX_FALSE, [&](CaseContext& tc) {
        for (int round = 0; tc.result == TC_SUCCESS && round < rounds; round++) {
            sleep(2);
            INJ_TIMED("QLX_DmxInjectPause", QLX_DmxInjectPause(g_injectHdl));
            timedCall(tc, "QLX_DmxInjectFlush", "QLX_DmxInjectFlush(g_injectHdl)", FLUSH_LIMIT,
                      [] { return QLX_DmxInjectFlush(g_injectHdl); });
            INJ_TIMED("QLX_DmxInjectResume", QLX_DmxInjectResume(g_injectHdl));
        }
    });
}

static uint32_t pressurePauseBase(const char* name, uint32_t eDemuxId) {
    return onChain(name, eDemuxId, nullptr, QLX_FALSE, [](CaseContext& tc) {
        for (int round = 0; tc.result == TC_SUCCESS && round < ROUNDS; round++) {
            if (TC_EXPECT_RET(InjTestWriteDataPause())) {
                sleep(2);
                TC_EXPECT_RET(InjTestWriteDataResume());
                sleep(2);
            }
        }
    });
}

static uint32_t beginFinishBase(const char* name, uint32_t eDemuxId, int rounds) {
    CaseContext tc = {name};
    if (!isOnBoard(eDemuxId))
        return tc_notApplicable(tc);
    for (int round = 0; tc.result == TC_SUCCESS && round < rounds; round++) {
        if (TC_EXPECT_RET(InjTestWriteDataBegin(eDemuxId, 0, nullptr)))
            TC_EXPECT_RET(InjTestWriteDataFinish(eDemuxId, QLX_FALSE));
    }
    return TC_RESULT(tc);
}

static uint32_t fileBase(const char* name, const char* pFile) {
    return onChain(name, 0, pFile, QLX_TRUE, [](CaseContext&) {});
}

static uint32_t seekBase(const char* name) {
    CaseContext tc = {name};
    if (!isOnBoard(0))
        return tc_notApplicable(tc);
    TC_EXPECT_RET(InjTestWriteDataSeek(0));
    return TC_RESULT(tc);
}

static uint32_t setSpeedBase(const char* name) {
    CaseContext tc = {name};
    if (!isOnBoard(0))
        return tc_notApplicable(tc);
    TC_EXPECT_RET(InjTestWriteDataSetSpeed(0));
    return TC_RESULT(tc);
}

static uint32_t wholeFlowAtBase(const char* name) {
    g_beginAtPosition = 1;
    return wholeFlowBase(name, 0, nullptr, 1);
}

static uint32_t TC_InjTestWholeFlowInvalidToNormal_001(void) {
    CaseContext tc = {__func__};
    if (!isOnBoard(0))
        return tc_notApplicable(tc);
    TC_EXPECT_RET(TC_InjTestWriteDataWithNullData());
    TC_EXPECT_RET(TC_InjTestWholeFlow(0, nullptr));
    return TC_RESULT(tc);
}

// Seeks and speeds, judged by what the decoders report.

/** Reports of new information on the sound since entry `from` of the log. */
static uint32_t audioEventsSince(uint32_t from) {
    const uint32_t count = g_stAudioRequestData.uCount;
    uint32_t found = 0;
    for (uint32_t i = from; i < count && i < AV_EVENT_LOG_SIZE; i++)
        found += g_stAudioRequestData.stData[i].eEvent == QLX_EVENT_AUDIO_INFO_CHANGE ? 1 : 0;
    return found;
}

/** Lets the feeder go to an offset of the file, and gives it a second. */
static void seekTo(uint32_t direction, int64_t offset) {
    g_seekInterval = offset;
    g_seekDirection = direction;
    sleep(1);
}

static void seekRounds(CaseContext& tc) {
    for (int round = 0; tc.result == TC_SUCCESS && round < ROUNDS; round++) {
        sleep(10);
        const uint32_t before = g_stAudioRequestData.uCount;
        g_frameReady.uFlag = 0;
        g_frameReady.uCount = 0;
        seekTo(INJ_SEEK_REWIND, g_fileSize / 4);
        seekTo(INJ_SEEK_FASTFORWARD, g_fileSize / 2);
        sleep(1);
        g_stInjectParams.bAudioEvent = audioEventsSince(before) >= AUDIO_EVENTS_PER_ROUND ? 0 : 1;
        g_stInjectParams.bFrameCount = g_frameReady.uCount != 0 ? 0 : 1;
        TC_EXPECT_RET(CheckVideoFrameReady(SEEKS_PER_ROUND));
        TC_EXPECT_TRUE(g_stInjectParams.bAudioEvent == 0);
    }
}

static uint32_t TC_DmxInjectSeekTimes_001(void) {
    g_testSeek = 1;
    const uint32_t result = onChain(__func__, 0, nullptr, QLX_FALSE, seekRounds);
    g_testSeek = 0;
    g_seekDirection = INJ_SEEK_NONE;
    g_stInjectParams.bAudioEvent = 0;
    g_stInjectParams.bFrameCount = 0;
    return result;
}

static uint32_t speedRun(const char* name, const char* what, int32_t speed) {
    CaseContext tc = {name};
    g_testSeek = 1;
    if (TC_EXPECT_RET(InjTestWriteDataBegin(0, 0, nullptr))) {
        sleep(5);
        zk_log("start set speed %s !\r\n", what);
        if (TC_EXPECT_RET(QLX_DmxInjectSetSpeed(g_injectHdl, speed)))
            sleep(SPEED_RUN_S);
        TC_EXPECT_RET(InjTestWriteDataFinish(0, QLX_FALSE));
    }
    g_testSeek = 0;
    return tc.result;
}

static uint32_t TC_DmxInjectSpeedFastforward(void) {
    return speedRun(__func__, "fastforward", QLX_DMXINJECT_SPEED_FORWARD_2X);
}

static uint32_t TC_DmxInjectSpeedRewind(void) {
    return speedRun(__func__, "rewind", QLX_DMXINJECT_SPEED_REWIND_2X);
}

static uint32_t TC_DmxInjectSpeedTimes_001(void) {
    CaseContext tc = {__func__};
    if (!isOnBoard(0))
        return tc_notApplicable(tc);
    TC_EXPECT_RET(TC_DmxInjectSpeedFastforward());
    TC_EXPECT_RET(TC_DmxInjectSpeedRewind());
    return TC_RESULT(tc);
}

// Presentation times.

static std::atomic<uint32_t> g_checkingPts;
static std::atomic<uint32_t> g_ptsIncreasing;

static void* CheckPtsThread(void*) {
    uint64_t prevPts = 0;
    uint32_t checkCout = 0;
    uint32_t validCount = 0;
    for (; g_checkingPts != 0; usleep(PTS_POLL_US)) {
        QLX_VideoInfo info = {};
        const int32_t answer = QLX_VideoGetVideoInfo(0, QLX_VIDEO_PARAMTYPE_GET_PTS, &info);
        const uint64_t curPts = info.uPts;
        checkCout++;
        if (answer != 0) {
            if (checkCout <= PTS_RUN_IN)
                continue;
            printf("\n\n==>[%s() %d]E:faild to get video info!\n", __func__, __LINE__);
            g_ptsIncreasing = 0;
            break;
        }
        printf("\n\n==>[%s() %d]I:is checking pts. prevPts = %lld, curPts = %lld\n", __func__,
               __LINE__, static_cast<long long>(prevPts), static_cast<long long>(curPts));
        if (checkCout > PTS_RUN_IN && curPts <= prevPts) {
            printf("\n\n==>[%s() %d]E:checkCout > 20.pts error!\n", __func__, __LINE__);
            g_ptsIncreasing = 0;
            break;
        }
        validCount += curPts != 0 ? 1 : 0;
        if (validCount > 1 && curPts < prevPts) {
            printf("\n\n==>[%s() %d]E:pts error!\n", __func__, __LINE__);
            g_ptsIncreasing = 0;
            break;
        }
        prevPts = curPts;
    }
    return nullptr;
}

static void watchPts(CaseContext& tc) {
    pthread_t thread;
    g_checkingPts = 1;
    g_ptsIncreasing = 1;
    if (!TC_EXPECT_RET(pthread_create(&thread, nullptr, CheckPtsThread, nullptr)))
        return;
    for (int second = 0; g_ptsIncreasing == 1 && second < PTS_LIMIT_S; second++)
        sleep(1);
    if (g_ptsIncreasing == 1)
        printf("\n\n==>[%s() %d]I:max check times.\n", tc.name, __LINE__);
    g_checkingPts = 0;
    pthread_join(thread, nullptr);
    TC_EXPECT_TRUE(g_ptsIncreasing == 1);
}

static uint32_t TC_DmxInjectCheckPts_001(void) {
    return onChain(__func__, 0, nullptr, QLX_FALSE, watchPts);
}

// Another sound.

/** Lets the audio decoder play the second sound of the recording. */
static bool changeAudio(CaseContext& tc) {
    const uint32_t eAudioDev = zk_testConfig.av.stSource.eAudioDev;
    TcChannelInfo stChannelInfo = {};
    zk_test_get_pvr_playback_channel_info(0, &stChannelInfo);
    return TC_EXPECT_RET(QLX_AudioStop(eAudioDev)) &&
           TC_EXPECT_RET(QLX_AudioStart(eAudioDev, stChannelInfo.eAudioFormat[1],
                                        stChannelInfo.uAudioPids[1]));
}

static uint32_t TC_InjTest_ChangeAudio_001(void) {
    return onChain(__func__, 0, g_stInjectParams.recorder_multi_ts_file, QLX_FALSE,
                   [](CaseContext& tc) {
                       sleep(2);
                       if (changeAudio(tc))
                           sleep(2);
                   });
}

static uint32_t TC_DmxInjectChangeAudio_001(void) {
    return onChain(
        __func__, 0, g_stInjectParams.recorder_multi_ts_file, QLX_FALSE, [](CaseContext& tc) {
            sleep(2);
            const uint32_t before = g_stAudioRequestData.uCount;
            if (!changeAudio(tc))
                return;
            sleep(2);
            // That the first sound has ended, and that the second is there.
            TC_EXPECT_TRUE(audioEventsSince(before) >= 2);
            const AvAudioEvent* last = nullptr;
            for (uint32_t i = before; i < g_stAudioRequestData.uCount; i++) {
                if (g_stAudioRequestData.stData[i].eEvent == QLX_EVENT_AUDIO_INFO_CHANGE)
                    last = &g_stAudioRequestData.stData[i];
            }
            TC_EXPECT_TRUE(last != nullptr && last->stAudioInfo.audioPresent == QLX_AUDIO_PRESENT);
        });
}

// Recording and injection at once: the broadcast of tuner 0 is recorded on demultiplexer 1, and
// played with a delay on demultiplexer 0.

enum {
    RECORD_DEMUX = QLX_DEMUX_1,
    PLAY_DEMUX = QLX_DEMUX_0,
};

struct TimeShiftBench {
    stRecoderParams stRecoderParam;
    RecActualPids stPids;
    uint32_t recHandle;
    char record_file[INJ_PATH_SIZE];
};

static int64_t connectTuner() {
    const QLX_Source stSource = {QLX_SOURCE_TYPE_TUNER, 0, QLX_INPUT_CLASS_NONE};
    return QLX_DemuxConnectSource(RECORD_DEMUX, &stSource);
}

/** As the case's set-up has left it. */
static int64_t connectRecord() {
    const QLX_Source stSource = {QLX_SOURCE_TYPE_RECORD, 0, QLX_INPUT_CLASS_NONE};
    return QLX_DemuxConnectSource(RECORD_DEMUX, &stSource);
}

static int64_t openRecorder(TimeShiftBench& bench) {
    const QLX_RecordCfg recCfg = {PACKET_SIZE, 4096, {0, 0}};
    const int32_t answer = QLX_RecordOpen(RECORD_DEMUX, &recCfg, &bench.recHandle);
    if (answer == 0)
        g_recHandles[RECORD_DEMUX] = bench.recHandle;
    return answer;
}

static int64_t closeRecorder(const TimeShiftBench& bench) {
    g_recHandles[RECORD_DEMUX] = 0;
    return QLX_RecordClose(bench.recHandle);
}

static const LadderStep<TimeShiftBench> timeShiftSteps[] = {
    {LADDER_CALL("TC_TUNER_INIT()", TC_TUNER_INIT()),
     LADDER_CALL("TC_TUNER_DEINIT()", TC_TUNER_DEINIT())},
    {LADDER_CALL("TC_Record_START_SOURCE(&stRecoderParam)",
                 TC_Record_START_SOURCE(&bench.stRecoderParam)),
     LADDER_CALL("TC_Record_STOP_SOURCE(&stRecoderParam)",
                 TC_Record_STOP_SOURCE(&bench.stRecoderParam))},
    {LADDER_CALL("QLX_DemuxConnectSource(eDemuxId, &stSource)", connectTuner()),
     LADDER_CALL("QLX_DemuxConnectSource(eDemuxId, &stSource)", connectRecord())},
    {LADDER_CALL("QLX_RecordInit()", QLX_RecordInit()),
     LADDER_CALL("QLX_RecordDeInit()", QLX_RecordDeInit())},
    {LADDER_CALL("QLX_RecordOpen(eDemuxId, &recCfg, &recHandle)", openRecorder(bench)),
     LADDER_CALL("QLX_RecordClose(recHandle)", closeRecorder(bench))},
    {LADDER_CALL("RecRegister(recHandle)", RecRegister(bench.recHandle)),
     LADDER_CALL("RecUnregister(recHandle)", RecUnregister(bench.recHandle))},
    {LADDER_CALL("OpenRecFile(recHandle, record_file)",
                 OpenRecFile(bench.recHandle, bench.record_file)),
     LADDER_CALL("CloseRecFile(0)", CloseRecFile(0))},
    {LADDER_CALL("AddPidsBeforeStart(recHandle, pPids)",
                 AddPidsBeforeStart(bench.recHandle, &bench.stPids)),
     LADDER_NONE},
    {LADDER_CALL("QLX_RecordStart(recHandle)", QLX_RecordStart(bench.recHandle)),
     LADDER_CALL("QLX_RecordStop(recHandle)", QLX_RecordStop(bench.recHandle))},
};

static uint32_t TC_RecInjTestWholeFlow_001(void) {
    CaseContext tc = {__func__};
    TimeShiftBench bench = {};
    TcChannelInfo stChannelInfo = {};
    if (!isOnBoard(PLAY_DEMUX) || !isOnBoard(RECORD_DEMUX))
        return tc_notApplicable(tc);
    load_recoder_params();
    if (!rec_hasPath(QLX_TRANSMISSION_SYSTEM_DVB_T, 0))
        return tc_notApplicable(tc);
    bench.stRecoderParam = g_stRecoderParams;
    bench.stRecoderParam.eRecTransSys = QLX_TRANSMISSION_SYSTEM_DVB_T;
    bench.stRecoderParam.eDemuxDev = RECORD_DEMUX;
    const RecPath* path = rec_findPath(g_stRecoderParams, QLX_TRANSMISSION_SYSTEM_DVB_T, 0);
    bench.stPids = path->stPids;
    snprintf(bench.record_file, sizeof bench.record_file, "%s%s", g_stRecoderParams.storeDir,
             "timeshift.ts");
    zk_test_get_dtv_channel_info(QLX_TRANSMISSION_SYSTEM_DVB_T, path->uChannel, &stChannelInfo);
    g_hasOpenDmx = 1;
    Ladder<TimeShiftBench> ladder(tc, bench, timeShiftSteps);
    if (ladder.up()) {
        sleep(g_recRuration);
        if (TC_EXPECT_RET(
                InjTestWriteDataBegin(PLAY_DEMUX, 0, bench.record_file, &stChannelInfo))) {
            playWithPause(tc);
            TC_EXPECT_RET(InjTestWriteDataFinish(PLAY_DEMUX, QLX_FALSE));
        }
    }
    ladder.down();
    g_hasOpenDmx = 0;
    return TC_RESULT(tc);
}

// The module.

// clang-format off
#define OPEN_CLOSE_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_DmxInjectOpenClose_001, AUTO, "Open and close dmxInject (Demux-0)", openCloseBase(__func__, QLX_DEMUX_0)) \
    X(TC_DmxInjectOpenClose_002, AUTO, "Open and close dmxInject (Demux-1)", openCloseBase(__func__, QLX_DEMUX_1)) \
    X(TC_DmxInjectOpenClose_003, AUTO, "Open and close dmxInject (Demux-2)", openCloseBase(__func__, QLX_DEMUX_2)) \
    X(TC_DmxInjectOpenClose_004, AUTO, "Open and close dmxInject (Demux-3)", openCloseBase(__func__, QLX_DEMUX_3))
#define DOUBLE_OPEN_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_InjTestDoubleOpen_001, AUTO, "Open dmxInject twice, expect QLX_FAILED (Demux-0)", doubleOpenBase(__func__, QLX_DEMUX_0)) \
    X(TC_InjTestDoubleOpen_002, AUTO, "Open dmxInject twice, expect QLX_FAILED (Demux-1)", doubleOpenBase(__func__, QLX_DEMUX_1)) \
    X(TC_InjTestDoubleOpen_003, AUTO, "Open dmxInject twice, expect QLX_FAILED (Demux-2)", doubleOpenBase(__func__, QLX_DEMUX_2)) \
    X(TC_InjTestDoubleOpen_004, AUTO, "Open dmxInject twice, expect QLX_FAILED (Demux-3)", doubleOpenBase(__func__, QLX_DEMUX_3))
#define OPEN_CLOSE_OPEN_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_InjTestOpenCloseOpen_001, AUTO, "Open dmxInject, close dmxInject, open dmxInject again (Demux-0)", openCloseOpenBase(__func__, QLX_DEMUX_0)) \
    X(TC_InjTestOpenCloseOpen_002, AUTO, "Open dmxInject, close dmxInject, open dmxInject again (Demux-1)", openCloseOpenBase(__func__, QLX_DEMUX_1)) \
    X(TC_InjTestOpenCloseOpen_003, AUTO, "Open dmxInject, close dmxInject, open dmxInject again (Demux-2)", openCloseOpenBase(__func__, QLX_DEMUX_2)) \
    X(TC_InjTestOpenCloseOpen_004, AUTO, "Open dmxInject, close dmxInject, open dmxInject again (Demux-3)", openCloseOpenBase(__func__, QLX_DEMUX_3))
#define REGISTER_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_InjTestRegister_001, AUTO, "Register callback (Demux-0)", registerBase(__func__, QLX_DEMUX_0)) \
    X(TC_InjTestRegister_002, AUTO, "Register callback (Demux-1)", registerBase(__func__, QLX_DEMUX_1)) \
    X(TC_InjTestRegister_003, AUTO, "Register callback (Demux-2)", registerBase(__func__, QLX_DEMUX_2)) \
    X(TC_InjTestRegister_004, AUTO, "Register callback (Demux-3)", registerBase(__func__, QLX_DEMUX_3))
#define START_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_InjTestStart_001, AUTO, "Start dmxInject (Demux-0)", startBase(__func__, QLX_DEMUX_0)) \
    X(TC_InjTestStart_002, AUTO, "Start dmxInject (Demux-1)", startBase(__func__, QLX_DEMUX_1)) \
    X(TC_InjTestStart_003, AUTO, "Start dmxInject (Demux-2)", startBase(__func__, QLX_DEMUX_2)) \
    X(TC_InjTestStart_004, AUTO, "Start dmxInject (Demux-3)", startBase(__func__, QLX_DEMUX_3))
#define GET_CAPABILITY_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_InjTestGetCapability_001, AUTO, "Get capability (Demux-0)", getCapabilityBase(__func__, QLX_DEMUX_0)) \
    X(TC_InjTestGetCapability_002, AUTO, "Get capability (Demux-1)", getCapabilityBase(__func__, QLX_DEMUX_1)) \
    X(TC_InjTestGetCapability_003, AUTO, "Get capability (Demux-2)", getCapabilityBase(__func__, QLX_DEMUX_2)) \
    X(TC_InjTestGetCapability_004, AUTO, "Get capability (Demux-3)", getCapabilityBase(__func__, QLX_DEMUX_3))
#define GET_FREE_SIZE_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_InjTestGetFreeSize_001, AUTO, "Get free size (Demux-0)", getFreeSizeBase(__func__, QLX_DEMUX_0)) \
    X(TC_InjTestGetFreeSize_002, AUTO, "Get free size (Demux-1)", getFreeSizeBase(__func__, QLX_DEMUX_1)) \
    X(TC_InjTestGetFreeSize_003, AUTO, "Get free size (Demux-2)", getFreeSizeBase(__func__, QLX_DEMUX_2)) \
    X(TC_InjTestGetFreeSize_004, AUTO, "Get free size (Demux-3)", getFreeSizeBase(__func__, QLX_DEMUX_3))
#define FLUSH_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_InjTestFlush_001, AUTO, "Flush dmxInject (Demux-0)", flushBase(__func__, QLX_DEMUX_0)) \
    X(TC_InjTestFlush_002, AUTO, "Flush dmxInject (Demux-1)", flushBase(__func__, QLX_DEMUX_1)) \
    X(TC_InjTestFlush_003, AUTO, "Flush dmxInject (Demux-2)", flushBase(__func__, QLX_DEMUX_2)) \
    X(TC_InjTestFlush_004, AUTO, "Flush dmxInject (Demux-3)", flushBase(__func__, QLX_DEMUX_3))
#define TIME_CONSUME_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_InjTestTimeConsume_001, AUTO, "Test the consumption time of dmxInject (Demux-0)", timeConsumeBase(__func__, QLX_DEMUX_0)) \
    X(TC_InjTestTimeConsume_002, AUTO, "Test the consumption time of dmxInject (Demux-1)", timeConsumeBase(__func__, QLX_DEMUX_1)) \
    X(TC_InjTestTimeConsume_003, AUTO, "Test the consumption time of dmxInject (Demux-2)", timeConsumeBase(__func__, QLX_DEMUX_2)) \
    X(TC_InjTestTimeConsume_004, AUTO, "Test the consumption time of dmxInject (Demux-3)", timeConsumeBase(__func__, QLX_DEMUX_3))
#define WHOLE_FLOW_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_InjTestWholeFlow_001, AUTO, "Inject whole flow (Demux-0)", wholeFlowBase(__func__, QLX_DEMUX_0, nullptr, 1)) \
    X(TC_InjTestWholeFlow_002, AUTO, "Inject whole flow (Demux-1)", wholeFlowBase(__func__, QLX_DEMUX_1, nullptr, 1)) \
    X(TC_InjTestWholeFlow_003, AUTO, "Inject whole flow (Demux-2)", wholeFlowBase(__func__, QLX_DEMUX_2, nullptr, 1)) \
    X(TC_InjTestWholeFlow_004, AUTO, "Inject whole flow (Demux-3)", wholeFlowBase(__func__, QLX_DEMUX_3, nullptr, 1))
#define WHOLE_FLOW_WITH_TIME_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_InjTestWholeFlowWithTime_001, AUTO, "Test the consumption time of pause and resume in whole flow (Demux-0)", wholeFlowWithTimeBase(__func__, QLX_DEMUX_0)) \
    X(TC_InjTestWholeFlowWithTime_002, AUTO, "Test the consumption time of pause and resume in whole flow (Demux-1)", wholeFlowWithTimeBase(__func__, QLX_DEMUX_1)) \
    X(TC_InjTestWholeFlowWithTime_003, AUTO, "Test the consumption time of pause and resume in whole flow (Demux-2)", wholeFlowWithTimeBase(__func__, QLX_DEMUX_2)) \
    X(TC_InjTestWholeFlowWithTime_004, AUTO, "Test the consumption time of pause and resume in whole flow (Demux-3)", wholeFlowWithTimeBase(__func__, QLX_DEMUX_3))
#define FLUSH_TIME_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_InjTestFlushTimeConsume_001, AUTO, "Test the consumption time of flush (Demux-0)", flushTimeBase(__func__, QLX_DEMUX_0, 1)) \
    X(TC_InjTestFlushTimeConsume_002, AUTO, "Test the consumption time of flush (Demux-1)", flushTimeBase(__func__, QLX_DEMUX_1, 1)) \
    X(TC_InjTestFlushTimeConsume_003, AUTO, "Test the consumption time of flush (Demux-2)", flushTimeBase(__func__, QLX_DEMUX_2, 1)) \
    X(TC_InjTestFlushTimeConsume_004, AUTO, "Test the consumption time of flush (Demux-3)", flushTimeBase(__func__, QLX_DEMUX_3, 1))
#define GET_VALUE_TIME_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_InjTestGetValueTimeConsum_001, AUTO, "Test the consumption time of getting free size and capability (Demux-0)", getValueTimeBase(__func__, QLX_DEMUX_0)) \
    X(TC_InjTestGetValueTimeConsum_002, AUTO, "Test the consumption time of getting free size and capability (Demux-1)", getValueTimeBase(__func__, QLX_DEMUX_1)) \
    X(TC_InjTestGetValueTimeConsum_003, AUTO, "Test the consumption time of getting free size and capability (Demux-2)", getValueTimeBase(__func__, QLX_DEMUX_2)) \
    X(TC_InjTestGetValueTimeConsum_004, AUTO, "Test the consumption time of getting free size and capability (Demux-3)", getValueTimeBase(__func__, QLX_DEMUX_3))
#define PRESSURE_OPEN_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_InjTestPressureTest1_001, AUTO, "Open and close dmxInject 10 times (Demux-0)", pressureOpenBase(__func__, QLX_DEMUX_0)) \
    X(TC_InjTestPressureTest1_002, AUTO, "Open and close dmxInject 10 times (Demux-1)", pressureOpenBase(__func__, QLX_DEMUX_1)) \
    X(TC_InjTestPressureTest1_003, AUTO, "Open and close dmxInject 10 times (Demux-2)", pressureOpenBase(__func__, QLX_DEMUX_2)) \
    X(TC_InjTestPressureTest1_004, AUTO, "Open and close dmxInject 10 times (Demux-3)", pressureOpenBase(__func__, QLX_DEMUX_3))
#define PRESSURE_START_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_InjTestPressureTest2_001, AUTO, "Start and stop dmxInject 10 times (Demux-0)", pressureStartBase(__func__, QLX_DEMUX_0)) \
    X(TC_InjTestPressureTest2_002, AUTO, "Start and stop dmxInject 10 times (Demux-1)", pressureStartBase(__func__, QLX_DEMUX_1)) \
    X(TC_InjTestPressureTest2_003, AUTO, "Start and stop dmxInject 10 times (Demux-2)", pressureStartBase(__func__, QLX_DEMUX_2)) \
    X(TC_InjTestPressureTest2_004, AUTO, "Start and stop dmxInject 10 times (Demux-3)", pressureStartBase(__func__, QLX_DEMUX_3))
#define PRESSURE_PAUSE_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_InjTestPressureTest3_001, AUTO, "Pause and resume dmxInject 10 times (Demux-0)", pressurePauseBase(__func__, QLX_DEMUX_0)) \
    X(TC_InjTestPressureTest3_002, AUTO, "Pause and resume dmxInject 10 times (Demux-1)", pressurePauseBase(__func__, QLX_DEMUX_1)) \
    X(TC_InjTestPressureTest3_003, AUTO, "Pause and resume dmxInject 10 times (Demux-2)", pressurePauseBase(__func__, QLX_DEMUX_2)) \
    X(TC_InjTestPressureTest3_004, AUTO, "Pause and resume dmxInject 10 times (Demux-3)", pressurePauseBase(__func__, QLX_DEMUX_3))
#define BEGIN_FINISH_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_DmxInjectBeginFinish_001, AUTO, "Begin and finish inject (Demux-0)", beginFinishBase(__func__, QLX_DEMUX_0, 1)) \
    X(TC_DmxInjectBeginFinish_002, AUTO, "Begin and finish inject (Demux-1)", beginFinishBase(__func__, QLX_DEMUX_1, 1)) \
    X(TC_DmxInjectBeginFinish_003, AUTO, "Begin and finish inject (Demux-2)", beginFinishBase(__func__, QLX_DEMUX_2, 1)) \
    X(TC_DmxInjectBeginFinish_004, AUTO, "Begin and finish inject (Demux-3)", beginFinishBase(__func__, QLX_DEMUX_3, 1))
#define FILE_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_InjTest_SD_TS_FILE, AUTO, "Inject the SD ts file until playback done", fileBase(__func__, g_stInjectParams.recorder_sd_ts_file)) \
    X(TC_InjTest_HD_TS_FILE, AUTO, "Inject the HD ts file until playback done", fileBase(__func__, g_stInjectParams.recorder_hd_ts_file)) \
    X(TC_InjTest_MULTI_TS_FILE, AUTO, "Inject the multi audio ts file until playback done", fileBase(__func__, g_stInjectParams.recorder_multi_ts_file)) \
    X(TC_InjTest_TYTE_UNALIGN_TS_FILE, AUTO, "Inject the byte unaligned ts file until playback done", fileBase(__func__, g_stInjectParams.byte_unalign_ts_file))
#define TIMES_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_DmxInjectBeginFinishTimes_001, AUTO, "Begin and finish inject 3 times", beginFinishBase(__func__, QLX_DEMUX_0, 3))
#define SEEK_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_DmxInjectSeek, AUTO, "Seek during inject", seekBase(__func__)) \
    X(TC_DmxInjectSetSpeed, AUTO, "Set speed during inject", setSpeedBase(__func__))
#define FLOW_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_InjTestWholeFlowAt_001, AUTO, "Inject whole flow, begin at a position", wholeFlowAtBase(__func__)) \
    X(TC_InjTestWholeFlowTimes_001, AUTO, "Inject whole flow 5 times", wholeFlowBase(__func__, QLX_DEMUX_0, nullptr, 5)) \
    X(TC_InjTestWholeFlowByte_001, AUTO, "Inject whole flow of the byte unaligned ts file", wholeFlowBase(__func__, QLX_DEMUX_0, g_stInjectParams.byte_unalign_ts_file, 1))
#define FLUSH_TIMES_FAMILY(X) \
    /* case, flag, description, body */ \
    X(TC_InjTestFlushTimeConsumeWith10times_001, AUTO, "Test the consumption time of flush 10 times", flushTimeBase(__func__, QLX_DEMUX_0, ROUNDS))
OPEN_CLOSE_FAMILY(TC_VARIANT_FUNCTION)
DOUBLE_OPEN_FAMILY(TC_VARIANT_FUNCTION)
OPEN_CLOSE_OPEN_FAMILY(TC_VARIANT_FUNCTION)
REGISTER_FAMILY(TC_VARIANT_FUNCTION)
START_FAMILY(TC_VARIANT_FUNCTION)
GET_CAPABILITY_FAMILY(TC_VARIANT_FUNCTION)
GET_FREE_SIZE_FAMILY(TC_VARIANT_FUNCTION)
FLUSH_FAMILY(TC_VARIANT_FUNCTION)
TIME_CONSUME_FAMILY(TC_VARIANT_FUNCTION)
WHOLE_FLOW_FAMILY(TC_VARIANT_FUNCTION)
WHOLE_FLOW_WITH_TIME_FAMILY(TC_VARIANT_FUNCTION)
FLUSH_TIME_FAMILY(TC_VARIANT_FUNCTION)
GET_VALUE_TIME_FAMILY(TC_VARIANT_FUNCTION)
PRESSURE_OPEN_FAMILY(TC_VARIANT_FUNCTION)
PRESSURE_START_FAMILY(TC_VARIANT_FUNCTION)
PRESSURE_PAUSE_FAMILY(TC_VARIANT_FUNCTION)
BEGIN_FINISH_FAMILY(TC_VARIANT_FUNCTION)
FILE_FAMILY(TC_VARIANT_FUNCTION)
TIMES_FAMILY(TC_VARIANT_FUNCTION)
SEEK_FAMILY(TC_VARIANT_FUNCTION)
FLOW_FAMILY(TC_VARIANT_FUNCTION)
FLUSH_TIMES_FAMILY(TC_VARIANT_FUNCTION)

static constexpr TcCase DmxInjectModuleCases[] = {
    TC_CASE(TC_InjTestInitDeinit, AUTO, "Init and deinit dmxInject"),
    OPEN_CLOSE_FAMILY(TC_VARIANT_ROW)
    DOUBLE_OPEN_FAMILY(TC_VARIANT_ROW)
    OPEN_CLOSE_OPEN_FAMILY(TC_VARIANT_ROW)
    TC_CASE(TC_InjTestOpenOnNullOpenParam, AUTO, "Open dmxInject with null open param, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    TC_CASE(TC_InjTestOpenWithNullHdl, AUTO, "Open dmxInject with null handle, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    TC_CASE(TC_InjTestDoubleClose, AUTO, "Close dmxInject twice, expect QLX_FAILED"),
    TC_CASE(TC_InjTestCloseOnNullHdl, AUTO, "Close dmxInject on null handle, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    REGISTER_FAMILY(TC_VARIANT_ROW)
    TC_CASE(TC_InjTestRegisterOnNullHdl, AUTO, "Register callback on null handle, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    TC_CASE(TC_InjTestRegisterWithNullCb, AUTO, "Register null callback, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    TC_CASE(TC_InjTestUnRegister, AUTO, "Unregister callback"),
    TC_CASE(TC_InjTestUnRegisterOnNullHdl, AUTO, "Unregister callback on null handle, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    TC_CASE(TC_InjTestUnRegisterWithNullCb, AUTO, "Unregister null callback, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    START_FAMILY(TC_VARIANT_ROW)
    TC_CASE(TC_InjTestDoubleStart, AUTO, "Start dmxInject twice, expect QLX_FAILED"),
    TC_CASE(TC_InjTestStartStopStart, AUTO, "Start dmxInject, stop dmxInject, start dmxInject again"),
    TC_CASE(TC_InjTestStartOnNullHdl, AUTO, "Start dmxInject on null handle, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    TC_CASE(TC_InjTestStop, AUTO, "Stop dmxInject"),
    TC_CASE(TC_InjTestDoubleStop, AUTO, "Stop dmxInject twice, expect QLX_FAILED"),
    TC_CASE(TC_InjTestStopOnNullHdl, AUTO, "Stop dmxInject on null handle, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    GET_CAPABILITY_FAMILY(TC_VARIANT_ROW)
    TC_CASE(TC_InjTestGetCapabilityOnNullHdl, AUTO, "Get capability on null handle, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    TC_CASE(TC_InjTestGetCapabilityWithNullParam, AUTO, "Get capability with null param, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    GET_FREE_SIZE_FAMILY(TC_VARIANT_ROW)
    TC_CASE(TC_InjTestGetFreeSizeOnNullHdl, AUTO, "Get free size on null handle, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    TC_CASE(TC_InjTestGetFreeSizeWithNullParam, AUTO, "Get free size with null param, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    TC_CASE(TC_InjTestWriteDataOnNullHdl, AUTO, "Write data on null handle, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    TC_CASE(TC_InjTestWriteDataWithNullData, AUTO, "Write null data, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    TC_CASE(TC_InjTestWriteDataWithZeroSize, AUTO, "Write data with zero size, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    FLUSH_FAMILY(TC_VARIANT_ROW)
    TC_CASE(TC_InjTestFlushOnNullHdl, AUTO, "Flush on null handle, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    TC_CASE(TC_InjTestPauseOnNullHdl, AUTO, "Pause on null handle, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    TC_CASE(TC_InjTestPauseBeforeStart, AUTO, "Pause before start, expect QLX_FAILED"),
    TC_CASE(TC_InjTestResumeOnNullHdl, AUTO, "Resume on null handle, expect QLX_DMXINJECT_ERR_INVALID_PARA"),
    TC_CASE(TC_InjTestResumeBeforePause, AUTO, "Resume before pause, expect QLX_FAILED"),
    TIME_CONSUME_FAMILY(TC_VARIANT_ROW)
    WHOLE_FLOW_FAMILY(TC_VARIANT_ROW)
    WHOLE_FLOW_WITH_TIME_FAMILY(TC_VARIANT_ROW)
    FLUSH_TIME_FAMILY(TC_VARIANT_ROW)
    GET_VALUE_TIME_FAMILY(TC_VARIANT_ROW)
    PRESSURE_OPEN_FAMILY(TC_VARIANT_ROW)
    PRESSURE_START_FAMILY(TC_VARIANT_ROW)
    PRESSURE_PAUSE_FAMILY(TC_VARIANT_ROW)
    BEGIN_FINISH_FAMILY(TC_VARIANT_ROW)
    TIMES_FAMILY(TC_VARIANT_ROW)
    SEEK_FAMILY(TC_VARIANT_ROW)
    TC_CASE(TC_DmxInjectSeekTimes_001, AUTO, "Seek rewind and fastforward 10 times during inject"),
    TC_CASE(TC_DmxInjectSpeedTimes_001, AUTO, "Set speed fastforward and rewind during inject"),
    FLOW_FAMILY(TC_VARIANT_ROW)
    TC_CASE(TC_InjTestWholeFlowInvalidToNormal_001, AUTO, "Inject whole flow after writing null data"),
    TC_CASE(TC_RecInjTestWholeFlow_001, AUTO, "Record and inject at the same time"),
    FILE_FAMILY(TC_VARIANT_ROW)
    FLUSH_TIMES_FAMILY(TC_VARIANT_ROW)
    TC_CASE(TC_DmxInjectCheckPts_001, AUTO, "Check the video pts is increasing during inject"),
    TC_CASE(TC_InjTest_ChangeAudio_001, AUTO, "Change audio during inject"),
    TC_CASE(TC_DmxInjectChangeAudio_001, AUTO, "Change audio during inject and check the audio event"),
};
// clang-format on
static_assert(tcCaseCount(DmxInjectModuleCases) == 114 && tcAutoCount(DmxInjectModuleCases) == 114,
              "as in testcase/module_list.h");

const TcModule DmxInjectModule = {
    DmxInj_TestSetup,
    DmxInj_TestTeardown,
    DmxInj_CaseSetup,
    DmxInj_CaseTeardown,
    DmxInjectModuleCases,
    tcCaseCount(DmxInjectModuleCases),
    "DmxInject",
    "Test module for the DemuxInject",
    nullptr,
};

// A play on one sink alone.
#include "framework/case/ladder.h"
#include "platform/qlx_audio.h"
#include "testcase/aout/aout_harness.h"
#include "testcase/av/av_decoder.h"
#include "testcase/vout/vout_harness.h"

enum { ONE_SINK_VOLUME = 30 };

/** The play, and what its steps hand on. */
struct OneSinkBench {
    /** What a sink that does not exist leaves, so that the library refuses it. */
    uint32_t eDevId = UINT32_MAX;
    uint32_t eSource;
    QLX_VideoDecInfo stVideoDecInfo = {};
};

static OneSinkBench benchOf(uint32_t eSource) {
    OneSinkBench bench;
    bench.eSource = eSource;
    AOUT_SourceToID(&bench.eDevId, eSource);
    return bench;
}

// clang-format off
static const LadderStep<OneSinkBench> oneSinkSteps[] = {
    // up                                                                                                                down
    {LADDER_CALL("QLX_AOutInit()", QLX_AOutInit()),                                                                      LADDER_CALL("QLX_AOutDeInit()", QLX_AOutDeInit())},
    {LADDER_CALL("TC_AV_START_SOURCE(NULL)", TC_AV_START_SOURCE(nullptr)),                                               LADDER_CALL("TC_AV_STOP_SOURCE(NULL)", TC_AV_STOP_SOURCE(nullptr))},
    {LADDER_CALL("TC_AV_OPEN(NULL)", TC_AV_OPEN(nullptr)),                                                               LADDER_CALL("TC_AV_CLOSE(NULL)", TC_AV_CLOSE(nullptr))},
    {LADDER_CALL("TC_VOUT_OPEN(NULL)", TC_VOUT_OPEN(nullptr)),                                                           LADDER_CALL("TC_VOUT_CLOSE()", TC_VOUT_CLOSE())},
    {LADDER_CALL("QLX_AOutOpen(eDevId, eSource)", QLX_AOutOpen(bench.eDevId, bench.eSource)),                            LADDER_CALL("QLX_AOutClose(eDevId)", QLX_AOutClose(bench.eDevId))},
    {LADDER_CALL("TC_AV_START(NULL, NULL, &stVideoDecInfo)", TC_AV_START(nullptr, nullptr, &bench.stVideoDecInfo)),      LADDER_CALL("TC_AV_STOP(NULL)", TC_AV_STOP(nullptr))},
    {LADDER_CALL("TC_VOUT_START(&stVOutInRect)", VOUT_StartOnPicture(bench.stVideoDecInfo)),                             LADDER_CALL("TC_VOUT_STOP()", TC_VOUT_STOP())},
    {LADDER_CALL("QLX_AudioSetMute(QLX_AUDIODEV_NUMBER_0,QLX_AUDIO_SOURCE_MAIN,QLX_FALSE)", QLX_AudioSetMute(QLX_AUDIODEV_NUMBER_0, QLX_AUDIO_SOURCE_MAIN, QLX_FALSE)), LADDER_NONE},
    {LADDER_CALL("QLX_AOutSetVolume(eDevId, 30)", QLX_AOutSetVolume(bench.eDevId, ONE_SINK_VOLUME)),                         LADDER_NONE},
    {LADDER_CALL("QLX_AOutSetMute(eDevId, QLX_FALSE)", QLX_AOutSetMute(bench.eDevId, QLX_FALSE)),                        LADDER_NONE},
};
// clang-format on

uint32_t AOUT_AV_Play(uint32_t eSource) {
    CaseContext tc = {__func__};
    OneSinkBench bench = benchOf(eSource);
    zk_log("output dev id = %d \r\n", static_cast<int>(bench.eDevId));
    ladderUp(tc, bench, oneSinkSteps);
    return tc.result;
}

uint32_t AOUT_AV_Stop(uint32_t eSource) {
    CaseContext tc = {__func__};
    OneSinkBench bench = benchOf(eSource);
    ladderDown(tc, bench, oneSinkSteps);
    return tc.result;
}

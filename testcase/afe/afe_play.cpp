// Picture and sound of a front end, from the decoders to the panel and the sinks.
#include "framework/case/ladder.h"
#include "testcase/afe/afe_harness.h"
#include "testcase/aout/aout_harness.h"
#include "testcase/av/av_decoder.h"
#include "testcase/vout/vout_harness.h"

struct ServiceBench {};

static const LadderStep<ServiceBench> serviceSteps[] = {
    {LADDER_CALL("TC_AV_INIT()", TC_AV_INIT()), LADDER_CALL("TC_AV_DEINIT()", TC_AV_DEINIT())},
    {LADDER_CALL("TC_VOUT_INIT()", TC_VOUT_INIT()),
     LADDER_CALL("TC_VOUT_DEINIT()", TC_VOUT_DEINIT())},
    {LADDER_CALL("TC_AOUT_INIT()", TC_AOUT_INIT()),
     LADDER_CALL("TC_AOUT_DEINIT()", TC_AOUT_DEINIT())},
};

uint32_t AFE_AVInit(void) {
    CaseContext tc = {__func__};
    ServiceBench bench;
    ladderUp(tc, bench, serviceSteps);
    return tc.result;
}

uint32_t AFE_AVDeInit(void) {
    CaseContext tc = {__func__};
    ServiceBench bench;
    ladderDown(tc, bench, serviceSteps);
    return tc.result;
}

struct PlayBench {
    AvSource stAvSource;
    QLX_Source stVOutSource;
    QLX_VideoDecInfo stVideoDecInfo;
};

// clang-format off
static const LadderStep<PlayBench> playSteps[] = {
    // up                                                                                                                                             down
    {LADDER_CALL("TC_AV_OPEN(&stAvSource)", TC_AV_OPEN(&bench.stAvSource)),                                                                           LADDER_CALL("TC_AV_CLOSE(&stAvSource)", TC_AV_CLOSE(&bench.stAvSource))},
    {LADDER_CALL("TC_AOUT_OPEN()", TC_AOUT_OPEN()),                                                                                                   LADDER_CALL("TC_AOUT_CLOSE()", TC_AOUT_CLOSE())},
    {LADDER_CALL("TC_VOUT_OPEN(&stVOutSource)", TC_VOUT_OPEN(&bench.stVOutSource)),                                                                   LADDER_CALL("TC_VOUT_CLOSE()", TC_VOUT_CLOSE())},
    {LADDER_CALL("TC_AV_START(&stAvSource, NULL, &stVideoDecInfo)", TC_AV_START(&bench.stAvSource, nullptr, &bench.stVideoDecInfo)),                  LADDER_CALL("TC_AV_STOP(&stAvSource)", TC_AV_STOP(&bench.stAvSource))},
    {LADDER_CALL("TC_AOUT_START()", TC_AOUT_START()),                                                                                                 LADDER_CALL("TC_AOUT_STOP()", TC_AOUT_STOP())},
    {LADDER_CALL("TC_VOUT_START(&stVOutInRect)", VOUT_StartOnPicture(bench.stVideoDecInfo)),                                                          LADDER_CALL("TC_VOUT_STOP()", TC_VOUT_STOP())},
};
// clang-format on

static PlayBench playBenchOf(uint32_t eTunerId) {
    PlayBench bench = {};
    bench.stAvSource = zk_testConfig.av.stSource;
    bench.stAvSource.eSource = AV_SOURCE_ATV;
    bench.stAvSource.eATVTunerDev = eTunerId;
    AV_AvSource2QlxSource(&bench.stAvSource, &bench.stVOutSource);
    return bench;
}

uint32_t AFE_AVPlay(uint32_t eTunerId) {
    CaseContext tc = {__func__};
    PlayBench bench = playBenchOf(eTunerId);
    ladderUp(tc, bench, playSteps);
    return tc.result;
}

uint32_t AFE_AVStop(uint32_t eTunerId) {
    CaseContext tc = {__func__};
    PlayBench bench = playBenchOf(eTunerId);
    ladderDown(tc, bench, playSteps);
    return tc.result;
}

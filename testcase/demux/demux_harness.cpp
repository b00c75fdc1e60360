#include "testcase/demux/demux_harness.h"

#include "framework/case/ladder.h"
#include "testcase/demux/demux_config.h"
#include "testcase/tuner/tuner_harness.h"

const int32_t* tcDemuxFeature;

uint32_t Demux_TestSetup(void) {
    CaseContext tc = {__func__};
    zk_log("%s ! \r\n", __func__);
    zk_test_get_feature(&tcDemuxFeature);
    Demux_LoadParams();
    TC_EXPECT_RET(TC_TUNER_INIT());
    return tc.result;
}

uint32_t Demux_TestTeardown(void) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(TC_TUNER_DEINIT());
    zk_log("%s ! \r\n", __func__);
    return tc.result;
}

/** A demultiplexer of an initialised service, and what it is connected to. */
struct DemuxBench {
    uint32_t eDemuxId;
    const QLX_Source* pstSource;
};

// clang-format off
static const LadderStep<DemuxBench> demuxSteps[] = {
    // up                                                                                                                 down
    {LADDER_CALL("QLX_DemuxOpen(eDemuxId)", QLX_DemuxOpen(bench.eDemuxId)),                                               LADDER_CALL("QLX_DemuxClose(eDemuxId)", QLX_DemuxClose(bench.eDemuxId))},
    {LADDER_CALL("QLX_DemuxConnectSource(eDemuxId, pstSource)", QLX_DemuxConnectSource(bench.eDemuxId, bench.pstSource)), LADDER_NONE},
    {LADDER_CALL("QLX_DemuxStart(eDemuxId)", QLX_DemuxStart(bench.eDemuxId)),                                             LADDER_CALL("QLX_DemuxStop(eDemuxId)", QLX_DemuxStop(bench.eDemuxId))},
};
// clang-format on

uint32_t TC_DEMUX_START(uint32_t eDemuxId, const QLX_Source* pstSource) {
    CaseContext tc = {__func__};
    DemuxBench bench = {eDemuxId, pstSource};
    ladderUp(tc, bench, demuxSteps);
    return TC_RESULT(tc);
}

uint32_t TC_DEMUX_STOP(uint32_t eDemuxId) {
    CaseContext tc = {__func__};
    DemuxBench bench = {eDemuxId, nullptr};
    ladderDown(tc, bench, demuxSteps);
    return TC_RESULT(tc);
}

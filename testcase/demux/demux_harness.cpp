#include "testcase/demux/demux_harness.h"

#include "framework/tc_check.h"
#include "testcase/demux/demux_config.h"
#include "testcase/tuner/tuner_harness.h"

const int32_t* tcDemuxFeature;

uint32_t Demux_TestSetup(void) {
    zk_log("%s ! \r\n", __func__);
    zk_test_get_feature(&tcDemuxFeature);
    Demux_LoadParams();
    TC_ASSERT_RET(TC_TUNER_INIT());
    return TC_SUCCESS;
}

uint32_t Demux_TestTeardown(void) {
    uint32_t result = TC_SUCCESS;
    TC_EXPECT_RET(TC_TUNER_DEINIT());
    zk_log("%s ! \r\n", __func__);
    return result;
}

/** Connects and starts an open demultiplexer. */
static uint32_t connectAndStart(uint32_t eDemuxId, const QLX_Source* pstSource) {
    const char* name = "TC_DEMUX_START";
    if (!tc_checkRet(name, __LINE__, "QLX_DemuxConnectSource(eDemuxId, pstSource)",
                     QLX_DemuxConnectSource(eDemuxId, pstSource)) ||
        !tc_checkRet(name, __LINE__, "QLX_DemuxStart(eDemuxId)", QLX_DemuxStart(eDemuxId)))
        return TC_FAILURE;
    return TC_SUCCESS;
}

uint32_t TC_DEMUX_START(uint32_t eDemuxId, const QLX_Source* pstSource) {
    uint32_t result = TC_SUCCESS;
    TC_EXPECT_RET(QLX_DemuxOpen(eDemuxId));
    if (result != TC_SUCCESS)
        return TC_RESULT(result);
    result = connectAndStart(eDemuxId, pstSource);
    if (result != TC_SUCCESS)
        TC_EXPECT_RET(QLX_DemuxClose(eDemuxId));
    return TC_RESULT(result);
}

uint32_t TC_DEMUX_STOP(uint32_t eDemuxId) {
    uint32_t result = TC_SUCCESS;
    TC_EXPECT_RET(QLX_DemuxStop(eDemuxId));
    TC_EXPECT_RET(QLX_DemuxClose(eDemuxId));
    return TC_RESULT(result);
}

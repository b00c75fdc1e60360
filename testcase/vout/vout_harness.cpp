#include "testcase/vout/vout_harness.h"

#include <string.h>

#include "framework/case/ladder.h"
#include "platform/qlx_display.h"
#include "testcase/av/av_decoder.h"

static const uint32_t smallPanelWidth = 800;
static const uint32_t smallPanelHeight = 600;

QLX_Source stVOutSource;
VOutRequestData stVoutRequestData;

uint32_t VOUT_LoadParams(void) {
    memset(&stVOutSource, 0, sizeof stVOutSource);
    return AV_AvSource2QlxSource(nullptr, &stVOutSource);
}

void VOUT_EventCallbck(uint32_t eDevId, void* pUserData, uint32_t eEvent, void* pData) {
    static_cast<void>(eDevId);
    if (pUserData == nullptr)
        return;
    VOutRequestData& log = *static_cast<VOutRequestData*>(pUserData);
    log.uEvents |= eEvent;
    if (eEvent == QLX_VOUT_EVENT_SOURCE_CHANGED && pData != nullptr)
        log.uSourceChanged = *static_cast<const uint32_t*>(pData);
}

uint32_t TC_VOUT_INIT(void) {
    CaseContext tc = {__func__};
    if (TC_EXPECT_RET(VOUT_LoadParams()))
        TC_EXPECT_RET(QLX_VOutInit());
    return TC_RESULT(tc);
}

uint32_t TC_VOUT_DEINIT(void) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(QLX_VOutDeInit());
    return TC_RESULT(tc);
}

struct OutputBench {
    const QLX_Source* pstSource;
};

// clang-format off
static const LadderStep<OutputBench> outputSteps[] = {
    // up                                                                                                      down
    {LADDER_CALL("QLX_VOutOpen(QLX_VOUTDEV_NUMBER_0, pstSource)", QLX_VOutOpen(QLX_VOUTDEV_NUMBER_0, bench.pstSource)), LADDER_CALL("QLX_VOutClose(QLX_VOUTDEV_NUMBER_0)", QLX_VOutClose(QLX_VOUTDEV_NUMBER_0))},
    {LADDER_CALL("QLX_VOutRegisterCallback(QLX_VOUTDEV_NUMBER_0, &stVoutRequestData, VOUT_EventCallbck)", QLX_VOutRegisterCallback(QLX_VOUTDEV_NUMBER_0, &stVoutRequestData, VOUT_EventCallbck)), LADDER_CALL("QLX_VOutUnRegisterCallback(QLX_VOUTDEV_NUMBER_0, VOUT_EventCallbck)", QLX_VOutUnRegisterCallback(QLX_VOUTDEV_NUMBER_0, VOUT_EventCallbck))},
    {LADDER_CALL("QLX_VOutEnable(QLX_VOUTDEV_NUMBER_0)", QLX_VOutEnable(QLX_VOUTDEV_NUMBER_0)), LADDER_CALL("QLX_VOutDisable(QLX_VOUTDEV_NUMBER_0)", QLX_VOutDisable(QLX_VOUTDEV_NUMBER_0))},
};
// clang-format on

uint32_t TC_VOUT_OPEN(const QLX_Source* pstSource) {
    CaseContext tc = {__func__};
    OutputBench bench = {pstSource != nullptr ? pstSource : &stVOutSource};
    ladderUp(tc, bench, outputSteps);
    return TC_RESULT(tc);
}

uint32_t TC_VOUT_CLOSE(void) {
    CaseContext tc = {__func__};
    OutputBench bench = {};
    ladderDown(tc, bench, outputSteps);
    return TC_RESULT(tc);
}

bool VOUT_GetDefaultRect(CaseContext& tc, QLX_VOutRect* pstOutRect) {
    QLX_PanelInfo stPanelInfo = {};
    if (!TC_EXPECT_RET(QLX_DisplayGetPanelInfo(&stPanelInfo)))
        return false;
    const bool large =
        stPanelInfo.uHeight > smallPanelHeight && stPanelInfo.uWidth > smallPanelWidth;
    memset(pstOutRect, 0, sizeof *pstOutRect);
    pstOutRect->uWidth = large ? stPanelInfo.uWidth : smallPanelWidth;
    pstOutRect->uHeight = large ? stPanelInfo.uHeight : smallPanelHeight;
    return true;
}

uint32_t TC_VOUT_START(const QLX_VOutRect* pstInRect) {
    CaseContext tc = {__func__};
    QLX_VOutRect stOutRect = {};
    if (TC_EXPECT_TRUE(pstInRect != nullptr) && VOUT_GetDefaultRect(tc, &stOutRect) &&
        TC_EXPECT_RET(
            QLX_VOutSetRect(QLX_VOUTDEV_NUMBER_0, pstInRect, &stOutRect, QLX_FALSE, QLX_FALSE)))
        TC_EXPECT_RET(QLX_VOutSetMute(QLX_VOUTDEV_NUMBER_0, QLX_FALSE));
    return TC_RESULT(tc);
}

uint32_t VOUT_StartOnPicture(const QLX_VideoDecInfo& stVideoDecInfo) {
    QLX_VOutRect stVOutInRect = {};
    stVOutInRect.uWidth = stVideoDecInfo.uFrameWidth;
    stVOutInRect.uHeight = stVideoDecInfo.uFrameHeight;
    return TC_VOUT_START(&stVOutInRect);
}

uint32_t TC_VOUT_STOP(void) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(QLX_VOutSetMute(QLX_VOUTDEV_NUMBER_0, QLX_TRUE));
    return TC_RESULT(tc);
}

uint32_t VOUT_CheckConfirm(const char* text) {
    return AV_CheckConfirm(text);
}

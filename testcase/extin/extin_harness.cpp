#include "testcase/extin/extin_harness.h"

#include <unistd.h>

#include "framework/case/check.h"

enum {
    POLL_ROUNDS = 1000,
    POLL_PAUSE_US = 10000,
    CABLE_WAIT_S = 1,
};

static bool waitForSignal(CaseContext& tc, const QLX_ExtInSource* pstSource) {
    uint32_t eSignalStatus = QLX_EXTIN_SIGNAL_STATUS_NONE;
    for (int round = 0; round < POLL_ROUNDS; round++) {
        if (!TC_EXPECT_RET(QLX_ExtInGetSignalStatus(pstSource, &eSignalStatus)))
            return false;
        if (eSignalStatus == QLX_EXTIN_SIGNAL_STATUS_STABLE)
            return true;
        usleep(POLL_PAUSE_US);
    }
    return TC_EXPECT_EQUAL(QLX_EXTIN_SIGNAL_STATUS_STABLE, eSignalStatus);
}

static bool cableIsLinked(CaseContext& tc, const QLX_ExtInSource* pstSource) {
    uint32_t bCableStatus = QLX_FALSE;
    sleep(CABLE_WAIT_S);
    return TC_EXPECT_RET(QLX_ExtInGetCableLinkedStatus(pstSource, &bCableStatus)) &&
           TC_EXPECT_EQUAL(QLX_TRUE, bCableStatus);
}

uint32_t TC_EXTIN_START(const QLX_ExtInSource* pstSource) {
    CaseContext tc = {__func__};
    uint32_t portNum = 0;
    if (TC_EXPECT_RET(QLX_ExtInGetSourcePortNum(pstSource->eType, &portNum)) &&
        TC_EXPECT_TRUE(portNum != 0) && TC_EXPECT_RET(QLX_ExtInOpen(pstSource)) &&
        (pstSource->eType != QLX_SOURCE_TYPE_HDMI || cableIsLinked(tc, pstSource)))
        waitForSignal(tc, pstSource);
    return TC_RESULT(tc);
}

uint32_t TC_EXTIN_STOP(const QLX_ExtInSource* pstSource) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(QLX_ExtInClose(pstSource));
    return TC_RESULT(tc);
}

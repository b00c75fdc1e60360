// Satellite control: LNB supply, tone, tone burst and DiSEqC on an open tuner, a tuning through a
// Unicable LNB, and the blind scan alone, cancelled, and under load.
#include <unistd.h>

#include "framework/case/wait.h"
#include "testcase/tuner/tuner_families.h"
#include "testcase/tuner/tuner_harness.h"
#include "testcase/tuner/tuner_satellite.h"

/** The end of a case whose effect is measured outside meanwhile. */
static void holdFor5s(bool passed) {
    if (passed)
        sleep(5);
}

void tuner_lnb13V(CaseContext& tc, TunerRun& run) {
    uint32_t eTunerId = run.eTunerId;
    holdFor5s(TC_EXPECT_RET(QLX_TunerSetLnbPower(eTunerId, QLX_LNB_POWER_13V)));
}

void tuner_lnb18V(CaseContext& tc, TunerRun& run) {
    uint32_t eTunerId = run.eTunerId;
    holdFor5s(TC_EXPECT_RET(QLX_TunerSetLnbPower(eTunerId, QLX_LNB_POWER_18V)));
}

/** Supplies the equipment, and leaves it a second to start. */
static bool supply(CaseContext& tc, uint32_t eTunerId) {
    if (!TC_EXPECT_RET(QLX_TunerSetLnbPower(eTunerId, QLX_LNB_POWER_13V)))
        return false;
    sleep(1);
    return true;
}

void tuner_toneOff(CaseContext& tc, TunerRun& run) {
    uint32_t eTunerId = run.eTunerId;
    holdFor5s(supply(tc, eTunerId) &&
              TC_EXPECT_RET(QLX_TunerSetTonburstState(eTunerId, QLX_LNB_TONE_STATE_OFF)));
}

void tuner_tone22kHz(CaseContext& tc, TunerRun& run) {
    uint32_t eTunerId = run.eTunerId;
    holdFor5s(supply(tc, eTunerId) &&
              TC_EXPECT_RET(QLX_TunerSetTonburstState(eTunerId, QLX_LNB_TONE_STATE_22KHZ)));
}

void tuner_toneburstA(CaseContext& tc, TunerRun& run) {
    uint32_t eTunerId = run.eTunerId;
    holdFor5s(supply(tc, eTunerId) &&
              TC_EXPECT_RET(QLX_TunerSwitchTonburst(eTunerId, QLX_LNB_TONEBURST_A)));
}

void tuner_toneburstB(CaseContext& tc, TunerRun& run) {
    uint32_t eTunerId = run.eTunerId;
    holdFor5s(supply(tc, eTunerId) &&
              TC_EXPECT_RET(QLX_TunerSwitchTonburst(eTunerId, QLX_LNB_TONEBURST_B)));
}

void tuner_diseqcCommand(CaseContext& tc, TunerRun& run) {
    uint32_t eTunerId = run.eTunerId;
    TunerDiseqcParams params_DiSEqC = {};
    uint32_t uSendLength = 3;
    if (!supply(tc, eTunerId) || !TC_EXPECT_RET(tuner_get_params_dvbs_DiSEqC(&params_DiSEqC)))
        return;
    const uint8_t byte[] = {
        static_cast<uint8_t>(params_DiSEqC.uFraming),
        static_cast<uint8_t>(params_DiSEqC.uAddress),
        static_cast<uint8_t>(params_DiSEqC.uCommand),
    };
    zk_log("DiSEqC PARAMS: frame: %x, address: %x, command: %x. \n", byte[0], byte[1], byte[2]);
    holdFor5s(
        TC_EXPECT_RET(QLX_TunerSendDiseqcCommand(eTunerId, uSendLength, byte, 0, NULL, NULL)));
}

void tuner_unicable(CaseContext& tc, TunerRun& run) {
    uint32_t eTunerId = run.eTunerId;
    uint32_t uIfFrequency = run.stTuningParams.uFrequency;
    if (tuner_prepareScan(tc, eTunerId) &&
        TC_EXPECT_RET(TUNER_DVBS_ScifChannelChange(eTunerId, uIfFrequency)))
        tuner_tuneAndDump(tc, run, QLX_TUNER_STATUS_LOCKED);
}

void tuner_blindScan(CaseContext& tc, TunerRun& run) {
    if (!tuner_prepareScan(tc, run.eTunerId))
        return;
    if (tuner_scanBands(tc, run.eTunerId, nullptr, "All finished..\n") != SCAN_FINISHED)
        tc.result = TC_FAILURE;
    zk_log("End BlindScan tune.\n");
}

/** Starts the cable's equipment with a pulse of its supply. */
static bool powerUp(CaseContext& tc, uint32_t eTunerId) {
    if (!TC_EXPECT_RET(QLX_TunerSetLnbPower(eTunerId, QLX_LNB_POWER_13V)))
        return false;
    usleep(50000);
    if (!TC_EXPECT_RET(QLX_TunerSetLnbPower(eTunerId, QLX_LNB_POWER_OFF)))
        return false;
    usleep(100000);
    if (!TC_EXPECT_RET(QLX_TunerSetLnbPower(eTunerId, QLX_LNB_POWER_13V)))
        return false;
    usleep(50000);
    return true;
}

void tuner_blindScanPoweredUp(CaseContext& tc, TunerRun& run) {
    bool unicable = run.stTuningParams.stDvbS.eLnbTypeReal == QLX_LNB_TYPE_UNICABLE;
    if (!unicable || powerUp(tc, run.eTunerId))
        tuner_blindScan(tc, run);
}

void tuner_blindScanCancel(CaseContext& tc, TunerRun& run) {
    TunerScanThread scan = {tc.name, 0};
    pthread_t thread;
    if (!tuner_prepareScan(tc, run.eTunerId) ||
        !TC_EXPECT_RET(pthread_create(&thread, NULL, TUNER_DVBS_BlindScanTuneThread, &scan)))
        return;
    sleep(8);
    scan.uCancelFlag = 1;
    TC_EXPECT_EQUAL(TC_SUCCESS, tc_joinThread(thread));
}

/** Reads the signal information for twenty minutes while another thread works on the tuner. */
static void readInfoUnderLoad(CaseContext& tc, uint32_t eTunerId, void* (*load)(void*)) {
    TunerScanThread work = {tc.name, 0};
    pthread_t loadThread;
    pthread_t infoThread;
    if (!tuner_prepareScan(tc, eTunerId) ||
        !TC_EXPECT_RET(pthread_create(&loadThread, NULL, load, &work)))
        return;
    sleep(5);
    uint32_t status = TC_FAILURE;
    if (TC_EXPECT_RET(pthread_create(&infoThread, NULL, TUNER_DVBS_GetSignalInfoThread, &work)))
        status = tc_joinThread(infoThread);
    zk_log("GetSignalThread Status: %d \r\n", static_cast<int>(status));
    work.uCancelFlag = 1;
    TC_EXPECT_EQUAL(TC_SUCCESS, tc_joinThread(loadThread));
    TC_EXPECT_EQUAL(TC_SUCCESS, status);
}

void tuner_blindScanSignalInfo(CaseContext& tc, TunerRun& run) {
    readInfoUnderLoad(tc, run.eTunerId, TUNER_DVBS_BlindScanTuneCircleThread);
}

void tuner_tuningSignalInfo(CaseContext& tc, TunerRun& run) {
    readInfoUnderLoad(tc, run.eTunerId, TUNER_TuningCircleThread);
}

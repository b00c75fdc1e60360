// Satellite control: LNB supply, tone, tone burst and DiSEqC on an open tuner, a tuning through a
// Unicable LNB, and the blind scan alone, cancelled, and under load.
#include <unistd.h>

#include "testcase/tuner/tuner_families.h"
#include "testcase/tuner/tuner_harness.h"
#include "testcase/tuner/tuner_satellite.h"

/** Sets the supply; the operator measures it meanwhile. */
static uint32_t lnbPower(TunerRun* run, uint32_t ePower) {
    bool passed = tc_checkRet(run->name, __LINE__,
                              ePower == QLX_LNB_POWER_13V
                                  ? "QLX_TunerSetLnbPower(eTunerId, QLX_LNB_POWER_13V)"
                                  : "QLX_TunerSetLnbPower(eTunerId, QLX_LNB_POWER_18V)",
                              QLX_TunerSetLnbPower(run->eTunerId, ePower));
    if (passed)
        sleep(5);
    return tuner_verdict(passed);
}

uint32_t tuner_lnb13V(TunerRun* run) {
    return lnbPower(run, QLX_LNB_POWER_13V);
}

uint32_t tuner_lnb18V(TunerRun* run) {
    return lnbPower(run, QLX_LNB_POWER_18V);
}

/** Supplies the equipment, and leaves it a second to start. */
static bool supply(const TunerRun& run) {
    const char* name = run.name;
    uint32_t eTunerId = run.eTunerId;
    if (!TUNER_RET(QLX_TunerSetLnbPower(eTunerId, QLX_LNB_POWER_13V)))
        return false;
    sleep(1);
    return true;
}

/** The end of a case whose effect is measured outside. */
static uint32_t holdFor5s(bool passed) {
    if (passed)
        sleep(5);
    return tuner_verdict(passed);
}

uint32_t tuner_toneOff(TunerRun* run) {
    const char* name = run->name;
    uint32_t eTunerId = run->eTunerId;
    return holdFor5s(supply(*run) &&
                     TUNER_RET(QLX_TunerSetTonburstState(eTunerId, QLX_LNB_TONE_STATE_OFF)));
}

uint32_t tuner_tone22kHz(TunerRun* run) {
    const char* name = run->name;
    uint32_t eTunerId = run->eTunerId;
    return holdFor5s(supply(*run) &&
                     TUNER_RET(QLX_TunerSetTonburstState(eTunerId, QLX_LNB_TONE_STATE_22KHZ)));
}

uint32_t tuner_toneburstA(TunerRun* run) {
    const char* name = run->name;
    uint32_t eTunerId = run->eTunerId;
    return holdFor5s(supply(*run) &&
                     TUNER_RET(QLX_TunerSwitchTonburst(eTunerId, QLX_LNB_TONEBURST_A)));
}

uint32_t tuner_toneburstB(TunerRun* run) {
    const char* name = run->name;
    uint32_t eTunerId = run->eTunerId;
    return holdFor5s(supply(*run) &&
                     TUNER_RET(QLX_TunerSwitchTonburst(eTunerId, QLX_LNB_TONEBURST_B)));
}

uint32_t tuner_diseqcCommand(TunerRun* run) {
    const char* name = run->name;
    uint32_t eTunerId = run->eTunerId;
    TunerDiseqcParams params_DiSEqC = {};
    uint32_t uSendLength = 3;
    if (!supply(*run) || !TUNER_RET(tuner_get_params_dvbs_DiSEqC(&params_DiSEqC)))
        return TC_FAILURE;
    const uint8_t byte[] = {
        static_cast<uint8_t>(params_DiSEqC.uFraming),
        static_cast<uint8_t>(params_DiSEqC.uAddress),
        static_cast<uint8_t>(params_DiSEqC.uCommand),
    };
    zk_log("DiSEqC PARAMS: frame: %x, address: %x, command: %x. \n", byte[0], byte[1], byte[2]);
    return holdFor5s(
        TUNER_RET(QLX_TunerSendDiseqcCommand(eTunerId, uSendLength, byte, 0, NULL, NULL)));
}

uint32_t tuner_unicable(TunerRun* run) {
    const char* name = run->name;
    uint32_t eTunerId = run->eTunerId;
    uint32_t uIfFrequency = run->stTuningParams.uFrequency;
    return tuner_verdict(tuner_prepareScan(name, eTunerId) &&
                         TUNER_RET(TUNER_DVBS_ScifChannelChange(eTunerId, uIfFrequency)) &&
                         tuner_tuneAndDump(*run, QLX_TUNER_STATUS_LOCKED));
}

uint32_t tuner_blindScan(TunerRun* run) {
    if (!tuner_prepareScan(run->name, run->eTunerId))
        return TC_FAILURE;
    TunerScanEnd end = tuner_scanBands(run->name, run->eTunerId, nullptr, "All finished..\n");
    zk_log("End BlindScan tune.\n");
    return tuner_verdict(end == SCAN_FINISHED);
}

/** Starts the cable's equipment with a pulse of its supply. */
static bool powerUp(const TunerRun& run) {
    const char* name = run.name;
    uint32_t eTunerId = run.eTunerId;
    if (!TUNER_RET(QLX_TunerSetLnbPower(eTunerId, QLX_LNB_POWER_13V)))
        return false;
    usleep(50000);
    if (!TUNER_RET(QLX_TunerSetLnbPower(eTunerId, QLX_LNB_POWER_OFF)))
        return false;
    usleep(100000);
    if (!TUNER_RET(QLX_TunerSetLnbPower(eTunerId, QLX_LNB_POWER_13V)))
        return false;
    usleep(50000);
    return true;
}

uint32_t tuner_blindScanPoweredUp(TunerRun* run) {
    bool unicable = run->stTuningParams.stDvbS.eLnbTypeReal == QLX_LNB_TYPE_UNICABLE;
    if (unicable && !powerUp(*run))
        return TC_FAILURE;
    return tuner_blindScan(run);
}

uint32_t tuner_blindScanCancel(TunerRun* run) {
    TunerScanThread scan = {run->name, 0};
    pthread_t thread;
    if (!tuner_prepareScan(run->name, run->eTunerId) ||
        !tuner_startThread(run->name, &thread, TUNER_DVBS_BlindScanTuneThread, &scan))
        return TC_FAILURE;
    sleep(8);
    scan.uCancelFlag = 1;
    return tuner_verdict(tuner_checkEqual(run->name, __LINE__, TC_SUCCESS, tuner_joinWord(thread)));
}

/** Reads the signal information for twenty minutes while another thread works on the tuner. */
static uint32_t readInfoUnderLoad(TunerRun* run, void* (*load)(void*)) {
    TunerScanThread work = {run->name, 0};
    pthread_t loadThread;
    pthread_t infoThread;
    if (!tuner_prepareScan(run->name, run->eTunerId) ||
        !tuner_startThread(run->name, &loadThread, load, &work))
        return TC_FAILURE;
    sleep(5);
    uint32_t status = TC_FAILURE;
    if (tuner_startThread(run->name, &infoThread, TUNER_DVBS_GetSignalInfoThread, &work))
        status = tuner_joinWord(infoThread);
    zk_log("GetSignalThread Status: %d \r\n", static_cast<int>(status));
    work.uCancelFlag = 1;
    bool loaded = tuner_checkEqual(run->name, __LINE__, TC_SUCCESS, tuner_joinWord(loadThread));
    return tuner_verdict(tuner_checkEqual(run->name, __LINE__, TC_SUCCESS, status) && loaded);
}

uint32_t tuner_blindScanSignalInfo(TunerRun* run) {
    return readInfoUnderLoad(run, TUNER_DVBS_BlindScanTuneCircleThread);
}

uint32_t tuner_tuningSignalInfo(TunerRun* run) {
    return readInfoUnderLoad(run, TUNER_TuningCircleThread);
}

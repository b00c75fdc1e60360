// What the signal information says of a locked signal, one claim a case, and what it says beside
// the carrier.
#include "framework/case/prompt.h"
#include "testcase/tuner/tuner_families.h"

enum {
    /** A status that some devices report beside QLX_TUNER_STATUS_LOCKED. */
    STATUS_LOCKED_OTHER = 3,
    PERCENT_MAX = 100,
    /** Beside the carrier, within and outside of the capture range, in kHz. */
    OFFSET_CAPTURED = 2000,
    OFFSET_OUTSIDE = 8000,
};

/** Locks and reads the information that the case judges. */
static bool lockAndRead(CaseContext& tc, TunerRun& run) {
    return tuner_tuneAndRead(tc, run, QLX_TUNER_STATUS_LOCKED);
}

/** Locks, and demands a value of a member of the information. */
static void infoEquals(CaseContext& tc, TunerRun& run, const uint32_t& actual, uint32_t expected) {
    if (lockAndRead(tc, run))
        TC_EXPECT_EQUAL(expected, actual);
}

void tuner_infoLockStatus(CaseContext& tc, TunerRun& run) {
    const uint32_t& status = run.stTunerSignalInfo.eLockStatus;
    if (lockAndRead(tc, run))
        TC_EXPECT_TRUE(status == QLX_TUNER_STATUS_LOCKED || status == STATUS_LOCKED_OTHER);
}

void tuner_infoTuningType(CaseContext& tc, TunerRun& run) {
    infoEquals(tc, run, run.stTunerSignalInfo.eTuningType, QLX_TUNER_TUNING_TYPE_DIGITAL);
}

void tuner_infoTransmissionSystem(CaseContext& tc, TunerRun& run) {
    infoEquals(tc, run, run.stTunerSignalInfo.stDigital.eTransmissionSystem, run.eTransSys);
}

void tuner_infoSignalPresent(CaseContext& tc, TunerRun& run) {
    infoEquals(tc, run, run.stTunerSignalInfo.uSignalPresent, 1);
}

void tuner_infoModulation(CaseContext& tc, TunerRun& run) {
    infoEquals(tc, run, run.stTunerSignalInfo.stDigital.eModulation,
               run.stTuningParams.eModulation);
}

void tuner_infoSymbolRate(CaseContext& tc, TunerRun& run) {
    infoEquals(tc, run, run.stTunerSignalInfo.stDigital.uSymbolRate,
               run.stTuningParams.uSymbolRate);
}

void tuner_infoStrengthAndQuality(CaseContext& tc, TunerRun& run) {
    const QLX_TunerSignalInfo& info = run.stTunerSignalInfo;
    if (!lockAndRead(tc, run))
        return;
    TC_EXPECT_RANGE(0, PERCENT_MAX, static_cast<int>(info.uSignalStrength));
    TC_EXPECT_RANGE(0, PERCENT_MAX, info.sSignalQuality);
}

void tuner_infoSecondGeneration(CaseContext& tc, TunerRun& run) {
    zk_log(
        "Please switch the  stream player as DVB-T2 with the same frequency before, press any "
        "key to continue. \r\n");
    tc_waitKey();
    infoEquals(tc, run, run.stTunerSignalInfo.stDigital.eTransmissionSystem,
               QLX_TRANSMISSION_SYSTEM_DVB_T2);
}

void tuner_infoCellIdentifier(CaseContext& tc, TunerRun& run) {
    zk_log(
        "Please set the stream player as DVB-T with the sane frequency before and cell "
        "identity set to one(1). \r\n");
    tc_waitKey();
    infoEquals(tc, run, run.stTunerSignalInfo.stDigital.stDvbTerrestrial.stDvbT.uCellIdentifier, 1);
}

/** Moves the parameters beside the carrier, by kHz. */
static void detune(TunerRun& run, int offset) {
    run.stTuningParams.uFrequency += static_cast<uint32_t>(offset);
    run.stTuningParams.uTuneOption = QLX_TUNER_TUNE_OPTION_OFF_NOMINAL;
}

void tuner_infoOffsetAbove(CaseContext& tc, TunerRun& run) {
    detune(run, OFFSET_CAPTURED);
    if (lockAndRead(tc, run))
        TC_EXPECT_RANGE(1500, 2500,
                        run.stTunerSignalInfo.stDigital.stDvbSatellite.iFrequencyOffset);
}

void tuner_infoOffsetBelow(CaseContext& tc, TunerRun& run) {
    detune(run, -OFFSET_CAPTURED);
    if (lockAndRead(tc, run))
        TC_EXPECT_RANGE(-2500, -1500,
                        run.stTunerSignalInfo.stDigital.stDvbSatellite.iFrequencyOffset);
}

void tuner_infoFrequencyUnlocked(CaseContext& tc, TunerRun& run) {
    detune(run, OFFSET_OUTSIDE);
    // What an information bar shows after a failed tuning is the frequency that was asked for.
    if (tuner_tuneAndRead(tc, run, QLX_TUNER_STATUS_UNLOCKED))
        TC_EXPECT_EQUAL(run.stTuningParams.uFrequency, run.stTunerSignalInfo.uTunedFrequency);
}

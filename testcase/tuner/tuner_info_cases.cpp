// What the signal information says of a locked signal, one claim a case, and what it says beside
// the carrier.
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
static bool lockAndRead(TunerRun* run) {
    return tuner_tuneAndRead(run, QLX_TUNER_STATUS_LOCKED);
}

uint32_t tuner_infoLockStatus(TunerRun* run) {
    if (!lockAndRead(run))
        return TC_FAILURE;
    uint32_t status = run->stTunerSignalInfo.eLockStatus;
    return tuner_verdict(tuner_checkTrue(
        run->name, __LINE__, status == QLX_TUNER_STATUS_LOCKED || status == STATUS_LOCKED_OTHER));
}

/** Locks, and compares a member of the information. */
static uint32_t infoEquals(TunerRun* run, const uint32_t& actual, uint32_t expected) {
    return tuner_verdict(lockAndRead(run) &&
                         tuner_checkEqual(run->name, __LINE__, expected, actual));
}

uint32_t tuner_infoTuningType(TunerRun* run) {
    return infoEquals(run, run->stTunerSignalInfo.eTuningType, QLX_TUNER_TUNING_TYPE_DIGITAL);
}

uint32_t tuner_infoTransmissionSystem(TunerRun* run) {
    return infoEquals(run, run->stTunerSignalInfo.stDigital.eTransmissionSystem, run->eTransSys);
}

uint32_t tuner_infoSignalPresent(TunerRun* run) {
    return infoEquals(run, run->stTunerSignalInfo.uSignalPresent, 1);
}

uint32_t tuner_infoModulation(TunerRun* run) {
    return infoEquals(run, run->stTunerSignalInfo.stDigital.eModulation,
                      run->stTuningParams.eModulation);
}

uint32_t tuner_infoSymbolRate(TunerRun* run) {
    return infoEquals(run, run->stTunerSignalInfo.stDigital.uSymbolRate,
                      run->stTuningParams.uSymbolRate);
}

uint32_t tuner_infoStrengthAndQuality(TunerRun* run) {
    if (!lockAndRead(run))
        return TC_FAILURE;
    const QLX_TunerSignalInfo& info = run->stTunerSignalInfo;
    bool strength = tuner_checkRange(run->name, __LINE__, 0, PERCENT_MAX,
                                     static_cast<int>(info.uSignalStrength));
    bool quality = tuner_checkRange(run->name, __LINE__, 0, PERCENT_MAX, info.sSignalQuality);
    return tuner_verdict(strength && quality);
}

uint32_t tuner_infoSecondGeneration(TunerRun* run) {
    zk_log(
        "Please switch the  stream player as DVB-T2 with the same frequency before, press any "
        "key to continue. \r\n");
    tuner_waitKey();
    return infoEquals(run, run->stTunerSignalInfo.stDigital.eTransmissionSystem,
                      QLX_TRANSMISSION_SYSTEM_DVB_T2);
}

uint32_t tuner_infoCellIdentifier(TunerRun* run) {
    zk_log(
        "Please set the stream player as DVB-T with the sane frequency before and cell "
        "identity set to one(1). \r\n");
    tuner_waitKey();
    return infoEquals(run, run->stTunerSignalInfo.stDigital.stDvbTerrestrial.stDvbT.uCellIdentifier,
                      1);
}

/** Tunes beside the carrier, and demands low < offset <= high of the information's offset. */
static uint32_t offsetWithin(TunerRun* run, int offset, int low, int high) {
    run->stTuningParams.uFrequency += static_cast<uint32_t>(offset);
    run->stTuningParams.uTuneOption = QLX_TUNER_TUNE_OPTION_OFF_NOMINAL;
    if (!lockAndRead(run))
        return TC_FAILURE;
    return tuner_verdict(
        tuner_checkRange(run->name, __LINE__, low, high,
                         run->stTunerSignalInfo.stDigital.stDvbSatellite.iFrequencyOffset));
}

uint32_t tuner_infoOffsetAbove(TunerRun* run) {
    return offsetWithin(run, OFFSET_CAPTURED, 1500, 2500);
}

uint32_t tuner_infoOffsetBelow(TunerRun* run) {
    return offsetWithin(run, -OFFSET_CAPTURED, -2500, -1500);
}

uint32_t tuner_infoFrequencyUnlocked(TunerRun* run) {
    run->stTuningParams.uFrequency += OFFSET_OUTSIDE;
    run->stTuningParams.uTuneOption = QLX_TUNER_TUNE_OPTION_OFF_NOMINAL;
    // What an information bar shows after a failed tuning is the frequency that was asked for.
    return tuner_verdict(tuner_tuneAndRead(run, QLX_TUNER_STATUS_UNLOCKED) &&
                         tuner_checkEqual(run->name, __LINE__, run->stTuningParams.uFrequency,
                                          run->stTunerSignalInfo.uTunedFrequency));
}

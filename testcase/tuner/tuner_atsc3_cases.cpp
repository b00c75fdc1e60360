// ATSC 3.0: pipes to lock to, the L1 signalling and its time, the emergency alert wake-up bits, and
// changes between generations on one tuner.
#include <unistd.h>

#include "testcase/tuner/tuner_families.h"

enum {
    TIME_READS = 200,
    WAKEUP_READS = 60,
};

static void setPipes(TunerRun* run, uint8_t count, uint8_t firstPipe) {
    QLX_TunerTuningParamsAtscT3& part = run->stTuningParams.stAtscT3;
    part.uPlpNum = count;
    for (uint8_t i = 0; i < count; i++)
        part.uPlpId[i] = static_cast<uint8_t>(firstPipe + i);
}

/** Tunes to consecutive pipes, and demands that all of them are locked. */
static uint32_t lockPipes(TunerRun* run, uint8_t count, uint8_t firstPipe) {
    setPipes(run, count, firstPipe);
    return tuner_verdict(
        tuner_tune(*run, QLX_TUNER_STATUS_PLP_LOCKED) && tuner_readInfo(run) &&
        tuner_checkEqual(run->name, __LINE__, 1,
                         run->stTunerSignalInfo.stDigital.stAtscT3.bAllPlpsLocked));
}

uint32_t tuner_t3NoPipe(TunerRun* run) {
    setPipes(run, 0, 0);
    return tuner_tuneOnce(run);
}

uint32_t tuner_t3Pipe0(TunerRun* run) {
    return lockPipes(run, 1, 0);
}

uint32_t tuner_t3Pipe1(TunerRun* run) {
    return lockPipes(run, 1, 1);
}

uint32_t tuner_t3Pipes0And1(TunerRun* run) {
    return lockPipes(run, 2, 0);
}

uint32_t tuner_t3Sweep(TunerRun* run) {
    setPipes(run, 0, 0);
    return tuner_sweepCount(run);
}

uint32_t tuner_t3Pipes0To3(TunerRun* run) {
    return lockPipes(run, 4, 0);
}

uint32_t tuner_t3PipeThenPipes(TunerRun* run) {
    setPipes(run, 1, 0);
    if (!tuner_tune(*run, QLX_TUNER_STATUS_PLP_LOCKED))
        return TC_FAILURE;
    return lockPipes(run, 4, 0);
}

/** Demands that the information read last knows pipes from the L1-detail signalling. */
static bool checkDetailPipes(const TunerRun& run) {
    return tuner_checkTrue(run.name, __LINE__,
                           run.stTunerSignalInfo.stDigital.stAtscT3.uL1DetailPlpNum != 0);
}

/** Locks to the frame alone, and leaves the L1 signalling a second to come in. */
static bool lockFrame(TunerRun* run) {
    setPipes(run, 0, 0);
    if (!tuner_tuneAndDump(*run, QLX_TUNER_STATUS_LOCKED))
        return false;
    sleep(1);
    return tuner_readInfo(run);
}

uint32_t tuner_t3Details(TunerRun* run) {
    return tuner_verdict(lockFrame(run) && checkDetailPipes(*run));
}

uint32_t tuner_t3Time(TunerRun* run) {
    if (!lockFrame(run) || !checkDetailPipes(*run))
        return TC_FAILURE;
    for (int i = 0; i < TIME_READS; i++) {
        sleep(1);
        if (!tuner_readInfo(run))
            return TC_FAILURE;
        const QLX_TunerAtscT3Info& t3 = run->stTunerSignalInfo.stDigital.stAtscT3;
        zk_log("%s:%d. TimeInfo=%u, Sec=%u, Msec=%u, Usec=%u, Nsec=%u\n", run->name, __LINE__,
               t3.TimeInfo, t3.Sec, t3.Msec, t3.Usec, t3.Nsec);
        if (!tuner_checkTrue(run->name, __LINE__, uint64_t{t3.Sec} * 1000 + t3.Msec != 0))
            return TC_FAILURE;
    }
    return tuner_verdict(checkDetailPipes(*run));
}

/** Waits up to a minute for the wake-up bits to take a value. */
static bool waitWakeup(TunerRun* run, uint32_t value) {
    const QLX_TunerAtscT3Info& t3 = run->stTunerSignalInfo.stDigital.stAtscT3;
    zk_log("please set ts player wakeup bits to value %d in 60s !! \n", static_cast<int>(value));
    for (int i = 0; i < WAKEUP_READS; i++) {
        sleep(1);
        if (!tuner_readInfo(run))
            return false;
        zk_log("%s:%d. uEaWakeUp bits=%d \n", run->name, __LINE__, t3.uEaWakeUp);
        if (t3.uEaWakeUp == value)
            break;
    }
    return tuner_checkEqual(run->name, __LINE__, value, t3.uEaWakeUp);
}

uint32_t tuner_t3EasWakeup(TunerRun* run) {
    return tuner_verdict(lockFrame(run) && waitWakeup(run, 3));
}

uint32_t tuner_t3EasMode(TunerRun* run) {
    const char* name = run->name;
    uint32_t eTunerId = run->eTunerId;
    return tuner_verdict(lockFrame(run) && waitWakeup(run, 3) &&
                         TUNER_RET(QLX_TunerSetEasMode(eTunerId, QLX_TRUE)) && waitWakeup(run, 2));
}

/** Tunes to the parameters at hand; on the ATSC 3.0 side they ask for pipes. */
static bool tuneSide(TunerRun* run) {
    bool pipes = run->eTransSys == QLX_TRANSMISSION_SYSTEM_ATSC_T3;
    return tuner_tuneAndDump(*run, pipes ? QLX_TUNER_STATUS_PLP_LOCKED : QLX_TUNER_STATUS_LOCKED);
}

/** Reads the information, which on the ATSC 3.0 side must know pipes. */
static bool readSide(TunerRun* run) {
    if (!tuner_readInfo(run))
        return false;
    return run->eTransSys != QLX_TRANSMISSION_SYSTEM_ATSC_T3 || checkDetailPipes(*run);
}

static uint32_t switchSystem(TunerRun* run, uint32_t eTransSys) {
    if (!tuneSide(run))
        return TC_FAILURE;
    sleep(1);
    return tuner_verdict(readSide(run) && tuner_fetchParams(run, eTransSys) && tuneSide(run) &&
                         readSide(run));
}

uint32_t tuner_switchToAtscT(TunerRun* run) {
    return switchSystem(run, QLX_TRANSMISSION_SYSTEM_ATSC_T);
}

uint32_t tuner_switchToAtscC(TunerRun* run) {
    return switchSystem(run, QLX_TRANSMISSION_SYSTEM_ATSC_C);
}

uint32_t tuner_switchToAtscT3(TunerRun* run) {
    return switchSystem(run, QLX_TRANSMISSION_SYSTEM_ATSC_T3);
}

// ATSC 3.0: pipes to lock to, the L1 signalling and its time, the emergency alert wake-up bits, and
// changes between generations on one tuner.
#include <unistd.h>

#include "testcase/tuner/tuner_families.h"

enum {
    TIME_READS = 200,
    WAKEUP_READS = 60,
};

static void setPipes(TunerRun& run, uint8_t count, uint8_t firstPipe) {
    QLX_TunerTuningParamsAtscT3& part = run.stTuningParams.stAtscT3;
    part.uPlpNum = count;
    for (uint8_t i = 0; i < count; i++)
        part.uPlpId[i] = static_cast<uint8_t>(firstPipe + i);
}

/** Tunes to consecutive pipes, and demands that all of them are locked. */
static void lockPipes(CaseContext& tc, TunerRun& run, uint8_t count, uint8_t firstPipe) {
    setPipes(run, count, firstPipe);
    if (tuner_tune(tc, run, QLX_TUNER_STATUS_PLP_LOCKED) && tuner_readInfo(tc, run))
        TC_EXPECT_EQUAL(1, run.stTunerSignalInfo.stDigital.stAtscT3.bAllPlpsLocked);
}

void tuner_t3NoPipe(CaseContext& tc, TunerRun& run) {
    setPipes(run, 0, 0);
    tuner_tuneOnce(tc, run);
}

void tuner_t3Pipe0(CaseContext& tc, TunerRun& run) {
    lockPipes(tc, run, 1, 0);
}

void tuner_t3Pipe1(CaseContext& tc, TunerRun& run) {
    lockPipes(tc, run, 1, 1);
}

void tuner_t3Pipes0And1(CaseContext& tc, TunerRun& run) {
    lockPipes(tc, run, 2, 0);
}

void tuner_t3Sweep(CaseContext& tc, TunerRun& run) {
    setPipes(run, 0, 0);
    tuner_sweepCount(tc, run);
}

void tuner_t3Pipes0To3(CaseContext& tc, TunerRun& run) {
    lockPipes(tc, run, 4, 0);
}

void tuner_t3PipeThenPipes(CaseContext& tc, TunerRun& run) {
    setPipes(run, 1, 0);
    if (tuner_tune(tc, run, QLX_TUNER_STATUS_PLP_LOCKED))
        lockPipes(tc, run, 4, 0);
}

/** Demands that the information read last knows pipes from the L1-detail signalling. */
static bool checkDetailPipes(CaseContext& tc, const TunerRun& run) {
    return TC_EXPECT_TRUE(run.stTunerSignalInfo.stDigital.stAtscT3.uL1DetailPlpNum != 0);
}

/** Locks to the frame alone, and reads the L1 signalling, which has a second to come in. */
static bool readFrame(CaseContext& tc, TunerRun& run) {
    setPipes(run, 0, 0);
    if (!tuner_tuneAndDump(tc, run, QLX_TUNER_STATUS_LOCKED))
        return false;
    sleep(1);
    return tuner_readInfo(tc, run);
}

void tuner_t3Details(CaseContext& tc, TunerRun& run) {
    if (readFrame(tc, run))
        checkDetailPipes(tc, run);
}

/** Reads the information a second later, and demands that its time runs. */
static bool readTime(CaseContext& tc, TunerRun& run) {
    const QLX_TunerAtscT3Info& t3 = run.stTunerSignalInfo.stDigital.stAtscT3;
    sleep(1);
    if (!tuner_readInfo(tc, run))
        return false;
    zk_log("%s:%d. TimeInfo=%u, Sec=%u, Msec=%u, Usec=%u, Nsec=%u\n", tc.name, __LINE__,
           t3.TimeInfo, t3.Sec, t3.Msec, t3.Usec, t3.Nsec);
    return TC_EXPECT_TRUE(uint64_t{t3.Sec} * 1000 + t3.Msec != 0);
}

void tuner_t3Time(CaseContext& tc, TunerRun& run) {
    bool passed = readFrame(tc, run) && checkDetailPipes(tc, run);
    for (int i = 0; passed && i < TIME_READS; i++)
        passed = readTime(tc, run);
    if (passed)
        checkDetailPipes(tc, run);
}

/** Locks to the frame alone, and leaves it a second. */
static bool lockFrame(CaseContext& tc, TunerRun& run) {
    setPipes(run, 0, 0);
    if (!tuner_tune(tc, run, QLX_TUNER_STATUS_LOCKED))
        return false;
    sleep(1);
    return true;
}

/** Waits up to a minute for the wake-up bits to take a value. */
static bool waitWakeup(CaseContext& tc, TunerRun& run, uint32_t value) {
    const QLX_TunerAtscT3Info& t3 = run.stTunerSignalInfo.stDigital.stAtscT3;
    zk_log("please set ts player wakeup bits to value %d in 60s !! \n", static_cast<int>(value));
    for (int i = 0; i < WAKEUP_READS; i++) {
        sleep(1);
        if (!tuner_readInfo(tc, run))
            return false;
        zk_log("%s:%d. uEaWakeUp bits=%d \n", tc.name, __LINE__, t3.uEaWakeUp);
        if (t3.uEaWakeUp == value)
            break;
    }
    return TC_EXPECT_EQUAL(value, t3.uEaWakeUp);
}

void tuner_t3EasWakeup(CaseContext& tc, TunerRun& run) {
    if (lockFrame(tc, run))
        waitWakeup(tc, run, 3);
}

void tuner_t3EasMode(CaseContext& tc, TunerRun& run) {
    uint32_t eTunerId = run.eTunerId;
    if (lockFrame(tc, run) && waitWakeup(tc, run, 3) &&
        TC_EXPECT_RET(QLX_TunerSetEasMode(eTunerId, QLX_TRUE)))
        waitWakeup(tc, run, 2);
}

/** Tunes to the parameters at hand; on the ATSC 3.0 side they ask for pipes. */
static bool tuneSide(CaseContext& tc, TunerRun& run) {
    bool pipes = run.eTransSys == QLX_TRANSMISSION_SYSTEM_ATSC_T3;
    return tuner_tuneAndDump(tc, run,
                             pipes ? QLX_TUNER_STATUS_PLP_LOCKED : QLX_TUNER_STATUS_LOCKED);
}

/** Changes to another system. The side of ATSC 3.0 must know pipes. */
static void switchSystem(CaseContext& tc, TunerRun& run, uint32_t eTransSys) {
    bool fromPipes = run.eTransSys == QLX_TRANSMISSION_SYSTEM_ATSC_T3;
    if (!tuneSide(tc, run))
        return;
    sleep(1);
    bool switched = tuner_readInfo(tc, run) && (!fromPipes || checkDetailPipes(tc, run)) &&
                    tuner_fetchParams(tc, run, eTransSys) && tuneSide(tc, run);
    if (switched && !fromPipes && tuner_readInfo(tc, run))
        checkDetailPipes(tc, run);
}

void tuner_switchToAtscT(CaseContext& tc, TunerRun& run) {
    switchSystem(tc, run, QLX_TRANSMISSION_SYSTEM_ATSC_T);
}

void tuner_switchToAtscC(CaseContext& tc, TunerRun& run) {
    switchSystem(tc, run, QLX_TRANSMISSION_SYSTEM_ATSC_C);
}

void tuner_switchToAtscT3(CaseContext& tc, TunerRun& run) {
    switchSystem(tc, run, QLX_TRANSMISSION_SYSTEM_ATSC_T3);
}

// Tuning: once, again, ten times against the clock, over a whole band, beside the carrier, several
// tuners at once, and under the operator's hands.
#include <stdio.h>
#include <stdlib.h>
#include <sys/time.h>

#include "environment/test_env.h"
#include "framework/case/wait.h"
#include "testcase/tuner/tuner_families.h"
#include "testcase/tuner/tuner_harness.h"

enum {
    ITERATIONS = 10,
    /** Ten tunings must stay below this in all, in milliseconds. */
    CONSUMPTION_LIMIT_MS = 8000,
    /** A walk over a band must stay below this a step, in milliseconds. */
    SWEEP_STEP_LIMIT_MS = 1000,
    SWEEP_TIMEOUT_S = 3,
    /** Channel raster of the ATSC bands in kHz. */
    SWEEP_STEP = 6000,
    /** How far beside the configured symbol rate no demodulator locks. */
    WRONG_SYMBOL_RATE = 9000000,
};

/** First and last channel of a band, in kHz. */
struct Band {
    uint32_t first;
    uint32_t last;
};

static const Band cableBand = {93000, 855000};
static const Band terrestrialBand = {473000, 803000};
static_assert((855000 - 93000) / SWEEP_STEP + 1 == 128, "channels of the cable band");
static_assert((803000 - 473000) / SWEEP_STEP + 1 == 56, "channels of the terrestrial band");

uint32_t tuner_tuneOnce(TunerRun* run) {
    return tuner_verdict(tuner_tuneAndDump(*run, QLX_TUNER_STATUS_LOCKED));
}

uint32_t tuner_tuneTwice(TunerRun* run) {
    for (int i = 0; i < 2; i++) {
        if (!tuner_tuneAndDump(*run, QLX_TUNER_STATUS_LOCKED))
            return TC_FAILURE;
    }
    return TC_SUCCESS;
}

static void printConsumption(const int64_t (&times)[ITERATIONS], int64_t sum) {
    zk_log("Test turning  consumption time for detailes. \r\n");
    zk_log("----------------Begin--------------- \r\n");
    for (int i = 0; i < ITERATIONS; i++)
        zk_log("%d consumption time is %lld ms\r\n", i, static_cast<long long>(times[i]));
    zk_log("the average consumption time %lld ms\r\n", static_cast<long long>(sum / ITERATIONS));
    zk_log("----------------End----------------- \r\n");
}

/** Does the timed steps ten times, and demands that they take less than the limit in all. */
static uint32_t consume(TunerRun* run, bool (*timedSteps)(const TunerRun&)) {
    int64_t times[ITERATIONS] = {};
    int64_t sum = 0;
    for (int i = 0; i < ITERATIONS; i++) {
        timeval start;
        timeval end;
        zk_log("Test turning  for %d time. \r\n", i);
        gettimeofday(&start, nullptr);
        if (!timedSteps(*run))
            return TC_FAILURE;
        gettimeofday(&end, nullptr);
        times[i] = zk_test_diff_timeMs(&start, &end);
        sum += times[i];
    }
    printConsumption(times, sum);
    return tuner_verdict(tuner_checkTrue(run->name, __LINE__, sum < CONSUMPTION_LIMIT_MS));
}

static bool tuneStep(const TunerRun& run) {
    return tuner_tune(run, QLX_TUNER_STATUS_LOCKED);
}

static bool tuneAndDumpStep(const TunerRun& run) {
    return tuner_tuneAndDump(run, QLX_TUNER_STATUS_LOCKED);
}

static bool openTuneStep(const TunerRun& run) {
    if (!tuner_open(run))
        return false;
    bool passed = tuneStep(run);
    return tuner_close(run) && passed;
}

static bool openTuneAndDumpStep(const TunerRun& run) {
    if (!tuner_open(run))
        return false;
    bool passed = tuneAndDumpStep(run);
    return tuner_close(run) && passed;
}

uint32_t tuner_consumeTune(TunerRun* run) {
    return consume(run, tuneStep);
}

uint32_t tuner_consumeTuneAndDump(TunerRun* run) {
    return consume(run, tuneAndDumpStep);
}

uint32_t tuner_consumeOpenTune(TunerRun* run) {
    return consume(run, openTuneStep);
}

uint32_t tuner_consumeOpenTuneAndDump(TunerRun* run) {
    return consume(run, openTuneAndDumpStep);
}

static const Band& bandOf(const TunerRun& run) {
    return run.eTransSys == QLX_TRANSMISSION_SYSTEM_ATSC_C ? cableBand : terrestrialBand;
}

/** One step of a walk that counts locks. False when the tuner does not answer. */
static bool sweepStep(TunerRun* run, int* locked) {
    const char* name = run->name;
    uint32_t eTunerId = run->eTunerId;
    QLX_TunerTuningParams& stTuningParams = run->stTuningParams;
    timeval start;
    timeval end;
    zk_log("\n\n==>[%s() %d]Will lock:%u\n\n", name, __LINE__, stTuningParams.uFrequency);
    gettimeofday(&start, nullptr);
    if (!TUNER_RET(QLX_TunerSetTuningParam(eTunerId, &stTuningParams)) ||
        !tc_checkRet(name, __LINE__, "tuner_sem_timedwait(eTunerId, 3)",
                     tuner_sem_timedwait(eTunerId, SWEEP_TIMEOUT_S)) ||
        !tuner_readInfo(run))
        return false;
    if (run->stTunerSignalInfo.eLockStatus == QLX_TUNER_STATUS_LOCKED) {
        gettimeofday(&end, nullptr);
        zk_log("Tuner locked consume %lld ms\n",
               static_cast<long long>(zk_test_diff_timeMs(&start, &end)));
        ++*locked;
    }
    return true;
}

uint32_t tuner_sweepCount(TunerRun* run) {
    const Band& band = bandOf(*run);
    int locked = 0;
    bool passed = true;
    uint32_t scanned = band.first;
    for (uint32_t frequency = band.first; passed && frequency <= band.last;
         frequency += SWEEP_STEP) {
        scanned = frequency;
        run->stTuningParams.uFrequency = frequency;
        passed = sweepStep(run, &locked);
    }
    zk_log("The frequence(%u ~ %u) has been scanned.\n", band.first, scanned);
    zk_log("Tuner locked %d channel(s).\n", locked);
    bool found = tuner_checkTrue(run->name, __LINE__, locked > 1);
    return tuner_verdict(passed && found);
}

uint32_t tuner_sweepConsume(TunerRun* run) {
    const Band& band = bandOf(*run);
    int steps = 0;
    timeval start;
    timeval end;
    gettimeofday(&start, nullptr);
    for (uint32_t frequency = band.first; frequency <= band.last; frequency += SWEEP_STEP) {
        run->stTuningParams.uFrequency = frequency;
        // Most channels are empty: what counts is the time until the tuner has said so.
        tuner_test_tuning(run->eTunerId, &run->stTuningParams, QLX_TUNER_STATUS_LOCKED);
        steps++;
    }
    gettimeofday(&end, nullptr);
    int64_t total = zk_test_diff_timeMs(&start, &end);
    zk_log("Tune the whole %d channel(s) will consume %lld ms", steps,
           static_cast<long long>(total));
    return tuner_verdict(
        tuner_checkTrue(run->name, __LINE__, total < SWEEP_STEP_LIMIT_MS * int64_t{steps}));
}

/** The status that must hold now, for both of information and last event. */
static bool checkStatus(const TunerRun& run, uint32_t eExpectedStatus) {
    const char* text = eExpectedStatus == QLX_TUNER_STATUS_LOCKED
                           ? "tuner_check_tuning_status(eTunerId, QLX_TUNER_STATUS_LOCKED)"
                           : "tuner_check_tuning_status(eTunerId, QLX_TUNER_STATUS_UNLOCKED)";
    return tc_checkRet(run.name, __LINE__, text,
                       tuner_check_tuning_status(run.eTunerId, eExpectedStatus));
}

uint32_t tuner_cableOutAndIn(TunerRun* run) {
    int tuner = static_cast<int>(run->eTunerId);
    if (!tuner_tune(*run, QLX_TUNER_STATUS_LOCKED))
        return TC_FAILURE;
    zk_log("Please pull out the cable from the port of Tuner-%d, press any key to continue. \r\n",
           tuner);
    tuner_waitKey();
    if (!checkStatus(*run, QLX_TUNER_STATUS_UNLOCKED))
        return TC_FAILURE;
    zk_log(
        "Please insert the cable to the port of Tuner-%d to signal again, press any key to "
        "continue. \r\n",
        tuner);
    tuner_waitKey();
    return tuner_verdict(checkStatus(*run, QLX_TUNER_STATUS_LOCKED));
}

uint32_t tuner_dvbtThenDvbs(TunerRun* run) {
    return tuner_verdict(tuner_tuneAndDump(*run, QLX_TUNER_STATUS_LOCKED) &&
                         tuner_fetchParams(run, QLX_TRANSMISSION_SYSTEM_DVB_S) &&
                         tuner_tuneAndDump(*run, QLX_TUNER_STATUS_LOCKED));
}

uint32_t tuner_unknownSymbolRate(TunerRun* run) {
    run->stTuningParams.uSymbolRate = 0;
    run->stTuningParams.stDvbS.bKnownSymbolRate = 0;
    return tuner_verdict(tuner_tuneAndDump(*run, QLX_TUNER_STATUS_LOCKED));
}

uint32_t tuner_wrongSymbolRate(TunerRun* run) {
    run->stTuningParams.uSymbolRate += WRONG_SYMBOL_RATE;
    run->stTuningParams.stDvbS.bKnownSymbolRate = 1;
    run->stTuningParams.uTuneOption = QLX_TUNER_TUNE_OPTION_OFF_NOMINAL;
    return tuner_verdict(tuner_tuneAndDump(*run, QLX_TUNER_STATUS_UNLOCKED));
}

/** Has the operator play a stream of the second generation. */
static void askForDvbS2(void) {
    zk_log(
        "Please switch the  stream player as DVB-S2 with the same frequency before, press any "
        "key to continue. \r\n");
    tuner_waitKey();
}

uint32_t tuner_unknownSymbolRateS2(TunerRun* run) {
    askForDvbS2();
    return tuner_unknownSymbolRate(run);
}

uint32_t tuner_wrongSymbolRateS2(TunerRun* run) {
    askForDvbS2();
    return tuner_wrongSymbolRate(run);
}

/** Tunes to the pipe in the record and prints what came. */
static bool tunePipe(TunerRun* run) {
    if (!tuner_tuneAndRead(run, QLX_TUNER_STATUS_LOCKED))
        return false;
    const QLX_TunerSignalInfo& info = run->stTunerSignalInfo;
    zk_log("Test turning  for  frequency: %d, modulation: %d, symbolrate: %d. \r\n",
           static_cast<int>(info.uTunedFrequency), static_cast<int>(info.stDigital.eModulation),
           static_cast<int>(info.stDigital.uSymbolRate));
    return true;
}

/** Modulation of each pipe of the stream that is played for the pipes case. */
static uint32_t pipeModulation(uint32_t index) {
    if (index < 2)
        return QLX_MODULATION_64QAM;
    return index == 2 ? QLX_MODULATION_16QAM : QLX_MODULATION_256QAM;
}

uint32_t tuner_t2Pipes(TunerRun* run) {
    enum { PIPES = 3 };
    run->stTuningParams.eTransmissionSystem = QLX_TRANSMISSION_SYSTEM_DVB_T2;
    run->stTuningParams.stDvbT.uPlpNum = PIPES;
    run->stTuningParams.stDvbT.uPlpId = 0;
    if (!tunePipe(run))
        return TC_FAILURE;
    const QLX_TunerDvbT2Info& t2 = run->stTunerSignalInfo.stDigital.stDvbTerrestrial.stDvbT2;
    uint32_t room = sizeof t2.uPlpIds;
    uint32_t count = t2.uPlpNum < room ? t2.uPlpNum : room;
    int score = 0;
    for (uint32_t i = 0; i < count; i++) {
        run->stTuningParams.stDvbT.uPlpId = static_cast<uint8_t>(i);
        if (!tunePipe(run))
            return TC_FAILURE;
        zk_log("The tuning physical layer pipe info. PlpId[%d]:%d. \r\n", static_cast<int>(i),
               t2.uPlpIds[i]);
        if (run->stTunerSignalInfo.stDigital.eModulation == pipeModulation(i))
            score++;
    }
    return tuner_verdict(tuner_checkTrue(run->name, __LINE__, score >= PIPES));
}

/** Starts a thread for each request, and joins those that run. */
static bool tuneAtOnce(const char* name, tuner_request_info* requestsInfo, uint32_t count) {
    pthread_t threads[QLX_TUNER_MAX];
    uint32_t started = 0;
    while (started < count && tuner_startThread(name, &threads[started], TUNER_RequestTuneThread,
                                                &requestsInfo[started]))
        started++;
    bool passed = started == count;
    for (uint32_t i = 0; i < started; i++) {
        uint32_t word = tuner_joinWord(threads[i]);
        passed = tuner_checkEqual(name, __LINE__, TC_SUCCESS, word) && passed;
    }
    return passed;
}

uint32_t tuner_simultaneous(const char* name, uint32_t system0, uint32_t system1, uint32_t system2,
                            uint32_t system3) {
    const uint32_t systems[QLX_TUNER_MAX] = {system0, system1, system2, system3};
    tuner_request_info requestsInfo[QLX_TUNER_MAX] = {};
    uint32_t count = 0;
    if (!TUNER_RET(QLX_TunerInit()))
        return TC_FAILURE;
    bool passed = true;
    for (uint32_t tuner = 0; passed && tuner < QLX_TUNER_MAX; tuner++) {
        if (systems[tuner] == 0)
            continue;
        tuner_request_info* request = &requestsInfo[count++];
        char text[140];
        snprintf(text, sizeof text,
                 "tuner_get_params(requestsInfo[i].tuner_id, %s, 0, "
                 "&requestsInfo[i].stTuningParams)",
                 tuner_systemName(systems[tuner]));
        request->tuner_id = tuner;
        passed = tc_checkRet(
            name, __LINE__, text,
            tuner_get_params(request->tuner_id, systems[tuner], 0, &request->stTuningParams));
    }
    passed = passed && tuneAtOnce(name, requestsInfo, count);
    passed = TUNER_RET(QLX_TunerDeInit()) && passed;
    return tc_result(name, tuner_verdict(passed));
}

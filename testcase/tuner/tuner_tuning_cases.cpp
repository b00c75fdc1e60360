// Tuning: once, again, ten times against the clock, over a whole band, beside the carrier, several
// tuners at once, and under the operator's hands.
#include <stdio.h>

#include "framework/case/prompt.h"
#include "framework/case/wait.h"
#include "testcase/tuner/tuner_families.h"
#include "testcase/tuner/tuner_harness.h"

enum {
    ITERATIONS = 10,
    /** Ten tunings must stay below this in all, in milliseconds. */
    CONSUMPTION_LIMIT_MS = 8000,
    /** A walk over a band must stay below this a step, in milliseconds. */
    SWEEP_STEP_LIMIT_MS = 1000,
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

void tuner_tuneOnce(CaseContext& tc, TunerRun& run) {
    tuner_tuneAndDump(tc, run, QLX_TUNER_STATUS_LOCKED);
}

void tuner_tuneTwice(CaseContext& tc, TunerRun& run) {
    if (tuner_tuneAndDump(tc, run, QLX_TUNER_STATUS_LOCKED))
        tuner_tuneAndDump(tc, run, QLX_TUNER_STATUS_LOCKED);
}

static void printConsumption(const int64_t (&times)[ITERATIONS], int64_t sum) {
    zk_log("Test turning  consumption time for detailes. \r\n");
    zk_log("----------------Begin--------------- \r\n");
    for (int i = 0; i < ITERATIONS; i++)
        zk_log("%d consumption time is %lld ms\r\n", i, static_cast<long long>(times[i]));
    zk_log("the average consumption time %lld ms\r\n", static_cast<long long>(sum / ITERATIONS));
    zk_log("----------------End----------------- \r\n");
}

/** What is timed. */
typedef bool (*TimedSteps)(CaseContext& tc, const TunerRun& run);

/** Does the timed steps ten times, and demands that they take less than the limit in all. */
static void consume(CaseContext& tc, const TunerRun& run, TimedSteps timedSteps) {
    int64_t times[ITERATIONS] = {};
    int64_t sum = 0;
    for (int i = 0; i < ITERATIONS; i++) {
        zk_log("Test turning  for %d time. \r\n", i);
        Stopwatch watch;
        if (!timedSteps(tc, run))
            return;
        times[i] = watch.ms();
        sum += times[i];
    }
    printConsumption(times, sum);
    TC_EXPECT_TRUE(sum < CONSUMPTION_LIMIT_MS);
}

static bool tuneStep(CaseContext& tc, const TunerRun& run) {
    return tuner_tune(tc, run, QLX_TUNER_STATUS_LOCKED);
}

static bool tuneAndDumpStep(CaseContext& tc, const TunerRun& run) {
    return tuner_tuneAndDump(tc, run, QLX_TUNER_STATUS_LOCKED);
}

/** Opens the tuner of an initialised library for the steps. */
template <TimedSteps steps>
static bool openAround(CaseContext& tc, const TunerRun& run) {
    uint32_t eTunerId = run.eTunerId;
    Ladder<uint32_t> ladder(tc, eTunerId, tunerSteps + TUNER_INITED,
                            TUNER_LISTENING - TUNER_INITED);
    bool passed = ladder.up() && steps(tc, run);
    return ladder.down() && passed;
}

void tuner_consumeTune(CaseContext& tc, TunerRun& run) {
    consume(tc, run, tuneStep);
}

void tuner_consumeTuneAndDump(CaseContext& tc, TunerRun& run) {
    consume(tc, run, tuneAndDumpStep);
}

void tuner_consumeOpenTune(CaseContext& tc, TunerRun& run) {
    consume(tc, run, openAround<tuneStep>);
}

void tuner_consumeOpenTuneAndDump(CaseContext& tc, TunerRun& run) {
    consume(tc, run, openAround<tuneAndDumpStep>);
}

static const Band& bandOf(const TunerRun& run) {
    return run.eTransSys == QLX_TRANSMISSION_SYSTEM_ATSC_C ? cableBand : terrestrialBand;
}

/** One step of a walk that counts locks. False when the tuner does not answer. */
static bool sweepStep(CaseContext& tc, TunerRun& run, int* locked) {
    uint32_t eTunerId = run.eTunerId;
    const QLX_TunerTuningParams& stTuningParams = run.stTuningParams;
    zk_log("\n\n==>[%s() %d]Will lock:%u\n\n", tc.name, __LINE__, stTuningParams.uFrequency);
    Stopwatch watch;
    if (!TC_EXPECT_RET(QLX_TunerSetTuningParam(eTunerId, &stTuningParams)) ||
        !TC_EXPECT_RET(tuner_sem_timedwait(eTunerId, 3)) || !tuner_readInfo(tc, run))
        return false;
    if (run.stTunerSignalInfo.eLockStatus == QLX_TUNER_STATUS_LOCKED) {
        zk_log("Tuner locked consume %lld ms\n", static_cast<long long>(watch.ms()));
        ++*locked;
    }
    return true;
}

void tuner_sweepCount(CaseContext& tc, TunerRun& run) {
    const Band& band = bandOf(run);
    uint32_t& frequency = run.stTuningParams.uFrequency;
    int locked = 0;
    frequency = band.first;
    while (sweepStep(tc, run, &locked) && frequency < band.last)
        frequency += SWEEP_STEP;
    zk_log("The frequence(%u ~ %u) has been scanned.\n", band.first, frequency);
    zk_log("Tuner locked %d channel(s).\n", locked);
    TC_EXPECT_TRUE(locked > 1);
}

void tuner_sweepConsume(CaseContext& tc, TunerRun& run) {
    const Band& band = bandOf(run);
    uint32_t& frequency = run.stTuningParams.uFrequency;
    int steps = 0;
    Stopwatch watch;
    for (frequency = band.first; frequency <= band.last; frequency += SWEEP_STEP) {
        // Most channels are empty: what counts is the time until the tuner has said so.
        tuner_test_tuning(run.eTunerId, &run.stTuningParams, QLX_TUNER_STATUS_LOCKED);
        steps++;
    }
    int64_t total = watch.ms();
    zk_log("Tune the whole %d channel(s) will consume %lld ms", steps,
           static_cast<long long>(total));
    TC_EXPECT_TRUE(total < SWEEP_STEP_LIMIT_MS * int64_t{steps});
}

void tuner_cableOutAndIn(CaseContext& tc, TunerRun& run) {
    uint32_t eTunerId = run.eTunerId;
    int tuner = static_cast<int>(eTunerId);
    if (!tuner_tune(tc, run, QLX_TUNER_STATUS_LOCKED))
        return;
    zk_log("Please pull out the cable from the port of Tuner-%d, press any key to continue. \r\n",
           tuner);
    tc_waitKey();
    if (!TC_EXPECT_RET(tuner_check_tuning_status(eTunerId, QLX_TUNER_STATUS_UNLOCKED)))
        return;
    zk_log(
        "Please insert the cable to the port of Tuner-%d to signal again, press any key to "
        "continue. \r\n",
        tuner);
    tc_waitKey();
    TC_EXPECT_RET(tuner_check_tuning_status(eTunerId, QLX_TUNER_STATUS_LOCKED));
}

void tuner_dvbtThenDvbs(CaseContext& tc, TunerRun& run) {
    if (tuner_tuneAndDump(tc, run, QLX_TUNER_STATUS_LOCKED) &&
        tuner_fetchParams(tc, run, QLX_TRANSMISSION_SYSTEM_DVB_S))
        tuner_tuneAndDump(tc, run, QLX_TUNER_STATUS_LOCKED);
}

void tuner_unknownSymbolRate(CaseContext& tc, TunerRun& run) {
    run.stTuningParams.uSymbolRate = 0;
    run.stTuningParams.stDvbS.bKnownSymbolRate = 0;
    tuner_tuneAndDump(tc, run, QLX_TUNER_STATUS_LOCKED);
}

void tuner_wrongSymbolRate(CaseContext& tc, TunerRun& run) {
    run.stTuningParams.uSymbolRate += WRONG_SYMBOL_RATE;
    run.stTuningParams.stDvbS.bKnownSymbolRate = 1;
    run.stTuningParams.uTuneOption = QLX_TUNER_TUNE_OPTION_OFF_NOMINAL;
    tuner_tuneAndDump(tc, run, QLX_TUNER_STATUS_UNLOCKED);
}

/** Has the operator play a stream of the second generation. */
static void askForDvbS2(void) {
    zk_log(
        "Please switch the  stream player as DVB-S2 with the same frequency before, press any "
        "key to continue. \r\n");
    tc_waitKey();
}

void tuner_unknownSymbolRateS2(CaseContext& tc, TunerRun& run) {
    askForDvbS2();
    tuner_unknownSymbolRate(tc, run);
}

void tuner_wrongSymbolRateS2(CaseContext& tc, TunerRun& run) {
    askForDvbS2();
    tuner_wrongSymbolRate(tc, run);
}

/** Tunes to the pipe in the record and prints what came. */
static bool tunePipe(CaseContext& tc, TunerRun& run) {
    if (!tuner_tuneAndRead(tc, run, QLX_TUNER_STATUS_LOCKED))
        return false;
    const QLX_TunerSignalInfo& info = run.stTunerSignalInfo;
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

void tuner_t2Pipes(CaseContext& tc, TunerRun& run) {
    enum { PIPES = 3 };
    run.stTuningParams.eTransmissionSystem = QLX_TRANSMISSION_SYSTEM_DVB_T2;
    run.stTuningParams.stDvbT.uPlpNum = PIPES;
    run.stTuningParams.stDvbT.uPlpId = 0;
    if (!tunePipe(tc, run))
        return;
    const QLX_TunerDvbT2Info& t2 = run.stTunerSignalInfo.stDigital.stDvbTerrestrial.stDvbT2;
    uint32_t room = sizeof t2.uPlpIds;
    uint32_t count = t2.uPlpNum < room ? t2.uPlpNum : room;
    int score = 0;
    for (uint32_t i = 0; i < count; i++) {
        run.stTuningParams.stDvbT.uPlpId = static_cast<uint8_t>(i);
        if (!tunePipe(tc, run))
            return;
        zk_log("The tuning physical layer pipe info. PlpId[%d]:%d. \r\n", static_cast<int>(i),
               t2.uPlpIds[i]);
        if (run.stTunerSignalInfo.stDigital.eModulation == pipeModulation(i))
            score++;
    }
    TC_EXPECT_TRUE(score >= PIPES);
}

/** Starts a thread for each request, and joins those that run. */
static void tuneAtOnce(CaseContext& tc, tuner_request_info* requestsInfo, uint32_t count) {
    pthread_t threads[QLX_TUNER_MAX];
    uint32_t started = 0;
    while (started < count &&
           TC_EXPECT_RET(pthread_create(&threads[started], NULL, TUNER_RequestTuneThread,
                                        &requestsInfo[started])))
        started++;
    for (uint32_t i = 0; i < started; i++)
        TC_EXPECT_EQUAL(TC_SUCCESS, tc_joinThread(threads[i]));
}

uint32_t tuner_simultaneous(const char* name, uint32_t system0, uint32_t system1, uint32_t system2,
                            uint32_t system3) {
    const uint32_t systems[QLX_TUNER_MAX] = {system0, system1, system2, system3};
    tuner_request_info requestsInfo[QLX_TUNER_MAX] = {};
    uint32_t count = 0;
    CaseContext tc = {name};
    TC_ASSERT_RET(QLX_TunerInit());
    for (uint32_t tuner = 0; tc.result == TC_SUCCESS && tuner < QLX_TUNER_MAX; tuner++) {
        if (systems[tuner] == 0)
            continue;
        tuner_request_info* request = &requestsInfo[count++];
        char text[140];
        snprintf(text, sizeof text,
                 "tuner_get_params(requestsInfo[i].tuner_id, %s, 0, "
                 "&requestsInfo[i].stTuningParams)",
                 tuner_systemName(systems[tuner]));
        request->tuner_id = tuner;
        TC_EXPECT_RET_TEXT(text,
                           tuner_get_params(tuner, systems[tuner], 0, &request->stTuningParams));
    }
    if (tc.result == TC_SUCCESS)
        tuneAtOnce(tc, requestsInfo, count);
    TC_EXPECT_RET(QLX_TunerDeInit());
    return TC_RESULT(tc);
}

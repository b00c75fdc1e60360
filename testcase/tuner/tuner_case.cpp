// Frames and steps of the cases: what is done before and after a body, and the calls that most
// bodies consist of.
#include "testcase/tuner/tuner_case.h"

#include <stdio.h>

#include "testcase/tuner/tuner_harness.h"

/** A transmission system and its name in texts of checks. */
struct SystemName {
    uint32_t eTransSys;
    const char* name;
};

#define SYSTEM_NAME(system) \
    { system, #system }

static const SystemName systemNames[] = {
    SYSTEM_NAME(QLX_TRANSMISSION_SYSTEM_DVB_T),   SYSTEM_NAME(QLX_TRANSMISSION_SYSTEM_DVB_S),
    SYSTEM_NAME(QLX_TRANSMISSION_SYSTEM_DVB_C),   SYSTEM_NAME(QLX_TRANSMISSION_SYSTEM_ATSC_T),
    SYSTEM_NAME(QLX_TRANSMISSION_SYSTEM_ATSC_C),  SYSTEM_NAME(QLX_TRANSMISSION_SYSTEM_ISDB_T),
    SYSTEM_NAME(QLX_TRANSMISSION_SYSTEM_ISDB_S),  SYSTEM_NAME(QLX_TRANSMISSION_SYSTEM_ISDB_S3),
    SYSTEM_NAME(QLX_TRANSMISSION_SYSTEM_ATSC_T3),
};

const char* tuner_systemName(uint32_t eTransSys) {
    for (const SystemName& entry : systemNames) {
        if (entry.eTransSys == eTransSys)
            return entry.name;
    }
    return "0";
}

bool tuner_fetchParams(CaseContext& tc, TunerRun& run, uint32_t eTransSys) {
    char text[100];
    snprintf(text, sizeof text, "tuner_get_params(eTunerId, %s, 0, &stTuningParams)",
             tuner_systemName(eTransSys));
    run.eTransSys = eTransSys;
    return TC_EXPECT_RET_TEXT(text,
                              tuner_get_params(run.eTunerId, eTransSys, 0, &run.stTuningParams));
}

bool tuner_between(CaseContext& tc, TunerRun& run, TunerLevel level, TunerBody body) {
    Ladder<uint32_t> ladder(tc, run.eTunerId, tunerSteps);
    if (ladder.up(level))
        body(tc, run);
    ladder.down();
    return tc.result == TC_SUCCESS;
}

/** A frame with parameters of channel 0. */
static uint32_t tuningFrame(const char* name, uint32_t eTunerId, uint32_t eTransSys,
                            TunerLevel level, TunerBody body) {
    CaseContext tc = {name};
    TunerRun run = {};
    run.eTunerId = eTunerId;
    TC_ASSERT(tuner_fetchParams(tc, run, eTransSys));
    tuner_between(tc, run, level, body);
    return TC_RESULT(tc);
}

uint32_t tuner_frame(const char* name, uint32_t eTunerId, uint32_t eTransSys, TunerBody body) {
    return tuningFrame(name, eTunerId, eTransSys, TUNER_LISTENING, body);
}

uint32_t tuner_initFrame(const char* name, uint32_t eTunerId, uint32_t eTransSys, TunerBody body) {
    return tuningFrame(name, eTunerId, eTransSys, TUNER_INITED, body);
}

uint32_t tuner_openFrame(const char* name, uint32_t eTunerId, TunerBody body) {
    CaseContext tc = {name};
    TunerRun run = {};
    run.eTunerId = eTunerId;
    tuner_between(tc, run, TUNER_OPENED, body);
    return TC_RESULT(tc);
}

bool tuner_tune(CaseContext& tc, const TunerRun& run, uint32_t eExpectedStatus) {
    uint32_t eTunerId = run.eTunerId;
    const QLX_TunerTuningParams& stTuningParams = run.stTuningParams;
    switch (eExpectedStatus) {
        case QLX_TUNER_STATUS_UNLOCKED:
            return TC_EXPECT_RET(
                tuner_test_tuning(eTunerId, &stTuningParams, QLX_TUNER_STATUS_UNLOCKED));
        case QLX_TUNER_STATUS_PLP_LOCKED:
            return TC_EXPECT_RET(
                tuner_test_tuning(eTunerId, &stTuningParams, QLX_TUNER_STATUS_PLP_LOCKED));
        default:
            return TC_EXPECT_RET(
                tuner_test_tuning(eTunerId, &stTuningParams, QLX_TUNER_STATUS_LOCKED));
    }
}

bool tuner_readInfo(CaseContext& tc, TunerRun& run) {
    uint32_t eTunerId = run.eTunerId;
    QLX_TunerSignalInfo& stTunerSignalInfo = run.stTunerSignalInfo;
    stTunerSignalInfo = {};
    return TC_EXPECT_RET(QLX_TunerGetSignalInfo(eTunerId, &stTunerSignalInfo));
}

bool tuner_tuneAndDump(CaseContext& tc, const TunerRun& run, uint32_t eExpectedStatus) {
    uint32_t eTunerId = run.eTunerId;
    return tuner_tune(tc, run, eExpectedStatus) &&
           TC_EXPECT_RET(tuner_check_tuning_params(eTunerId));
}

bool tuner_tuneAndRead(CaseContext& tc, TunerRun& run, uint32_t eExpectedStatus) {
    return tuner_tuneAndDump(tc, run, eExpectedStatus) && tuner_readInfo(tc, run);
}

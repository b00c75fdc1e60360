// Frames and steps of the cases: what is done before and after a body, and the calls that most
// bodies consist of.
#include "testcase/tuner/tuner_case.h"

#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>

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

bool tuner_fetchParams(TunerRun* run, uint32_t eTransSys) {
    char text[100];
    snprintf(text, sizeof text, "tuner_get_params(eTunerId, %s, 0, &stTuningParams)",
             tuner_systemName(eTransSys));
    run->eTransSys = eTransSys;
    return tc_checkRet(run->name, __LINE__, text,
                       tuner_get_params(run->eTunerId, eTransSys, 0, &run->stTuningParams));
}

TunerRun tuner_newRun(const char* name, uint32_t eTunerId) {
    TunerRun run = {};
    run.name = name;
    run.eTunerId = eTunerId;
    return run;
}

bool tuner_open(const TunerRun& run) {
    const char* name = run.name;
    uint32_t eTunerId = run.eTunerId;
    if (!TUNER_RET(QLX_TunerOpen(eTunerId)))
        return false;
    if (TUNER_RET(QLX_TunerRegisterCallback(eTunerId, NULL, tuner_callback)))
        return true;
    TUNER_RET(QLX_TunerClose(eTunerId));
    return false;
}

bool tuner_close(const TunerRun& run) {
    const char* name = run.name;
    uint32_t eTunerId = run.eTunerId;
    bool unregistered = TUNER_RET(QLX_TunerUnRegisterCallback(eTunerId, tuner_callback));
    bool closed = TUNER_RET(QLX_TunerClose(eTunerId));
    return unregistered && closed;
}

uint32_t tuner_runFrame(TunerRun* run, TunerBody body) {
    const char* name = run->name;
    if (!TUNER_RET(QLX_TunerInit()))
        return TC_FAILURE;
    bool passed = tuner_open(*run);
    if (passed) {
        passed = body(run) == TC_SUCCESS;
        passed = tuner_close(*run) && passed;
    }
    passed = TUNER_RET(QLX_TunerDeInit()) && passed;
    return tuner_verdict(passed);
}

uint32_t tuner_frame(const char* name, uint32_t eTunerId, uint32_t eTransSys, TunerBody body) {
    TunerRun run = tuner_newRun(name, eTunerId);
    if (!tuner_fetchParams(&run, eTransSys))
        return TC_FAILURE;
    return tc_result(name, tuner_runFrame(&run, body));
}

uint32_t tuner_initFrame(const char* name, uint32_t eTunerId, uint32_t eTransSys, TunerBody body) {
    TunerRun run = tuner_newRun(name, eTunerId);
    if (!tuner_fetchParams(&run, eTransSys))
        return TC_FAILURE;
    bool passed = TUNER_RET(QLX_TunerInit());
    if (passed) {
        passed = body(&run) == TC_SUCCESS;
        passed = TUNER_RET(QLX_TunerDeInit()) && passed;
    }
    return tc_result(name, tuner_verdict(passed));
}

uint32_t tuner_runOpenFrame(TunerRun* run, TunerBody body) {
    const char* name = run->name;
    uint32_t eTunerId = run->eTunerId;
    if (!TUNER_RET(QLX_TunerInit()))
        return TC_FAILURE;
    bool passed = TUNER_RET(QLX_TunerOpen(eTunerId));
    if (passed) {
        passed = body(run) == TC_SUCCESS;
        passed = TUNER_RET(QLX_TunerClose(eTunerId)) && passed;
    }
    passed = TUNER_RET(QLX_TunerDeInit()) && passed;
    return tuner_verdict(passed);
}

uint32_t tuner_openFrame(const char* name, uint32_t eTunerId, TunerBody body) {
    TunerRun run = tuner_newRun(name, eTunerId);
    return tc_result(name, tuner_runOpenFrame(&run, body));
}

bool tuner_tune(const TunerRun& run, uint32_t eExpectedStatus) {
    const char* text = "tuner_test_tuning(eTunerId, &stTuningParams, QLX_TUNER_STATUS_LOCKED)";
    if (eExpectedStatus == QLX_TUNER_STATUS_UNLOCKED)
        text = "tuner_test_tuning(eTunerId, &stTuningParams, QLX_TUNER_STATUS_UNLOCKED)";
    else if (eExpectedStatus == QLX_TUNER_STATUS_PLP_LOCKED)
        text = "tuner_test_tuning(eTunerId, &stTuningParams, QLX_TUNER_STATUS_PLP_LOCKED)";
    return tc_checkRet(run.name, __LINE__, text,
                       tuner_test_tuning(run.eTunerId, &run.stTuningParams, eExpectedStatus));
}

bool tuner_dump(const TunerRun& run) {
    const char* name = run.name;
    uint32_t eTunerId = run.eTunerId;
    return TUNER_RET(tuner_check_tuning_params(eTunerId));
}

bool tuner_readInfo(TunerRun* run) {
    const char* name = run->name;
    uint32_t eTunerId = run->eTunerId;
    QLX_TunerSignalInfo& stTunerSignalInfo = run->stTunerSignalInfo;
    stTunerSignalInfo = {};
    return TUNER_RET(QLX_TunerGetSignalInfo(eTunerId, &stTunerSignalInfo));
}

bool tuner_tuneAndDump(const TunerRun& run, uint32_t eExpectedStatus) {
    return tuner_tune(run, eExpectedStatus) && tuner_dump(run);
}

bool tuner_tuneAndRead(TunerRun* run, uint32_t eExpectedStatus) {
    return tuner_tuneAndDump(*run, eExpectedStatus) && tuner_readInfo(run);
}

bool tuner_checkEqual(const char* name, int line, uint32_t expected, uint32_t actual) {
    if (actual == expected)
        return true;
    tc_fail(name, line, "expect %d, but actually %d  \n", static_cast<int>(expected),
            static_cast<int>(actual));
    return false;
}

bool tuner_checkTrue(const char* name, int line, bool condition) {
    if (!condition)
        tc_failTrue(name, line, 0);
    return condition;
}

bool tuner_checkRange(const char* name, int line, int low, int high, int value) {
    if (value > low && value <= high)
        return true;
    tc_fail(name, line, "expect in (%d, %d], but actually %d  \n", low, high, value);
    return false;
}

void tuner_waitKey(void) {
    zk_logFlush();
    getchar();
}

bool tuner_startThread(const char* name, pthread_t* thread, void* (*body)(void*), void* argument) {
    return TUNER_RET(pthread_create(thread, NULL, body, argument));
}

uint32_t tuner_joinWord(pthread_t thread) {
    void* ended = nullptr;
    if (pthread_join(thread, &ended) != 0 || ended == nullptr)
        return TC_FAILURE;
    uint32_t word = *static_cast<uint32_t*>(ended);
    free(ended);
    return word;
}

void tuner_endThread(uint32_t result) {
    uint32_t* word = static_cast<uint32_t*>(malloc(sizeof *word));
    if (word != nullptr)
        *word = result;
    pthread_exit(word);
}

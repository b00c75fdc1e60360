/*
 * How the cases of the module Tuner are built: a body works on a TunerRun between the steps of a
 * frame, and a row of the case table names the frame, the tuner, the system and the body.
 *
 * A body answers TC_SUCCESS or TC_FAILURE; its frame undoes what it did, in any case, and prints
 * the verdict. All checks print the name of the case, which is in the run.
 */
#ifndef TESTCASE_TUNER_TUNER_CASE_H
#define TESTCASE_TUNER_TUNER_CASE_H

#include <pthread.h>
#include <stdint.h>

#include "framework/tc_check.h"
#include "platform/qlx_tuner.h"

/** What a case works on. */
struct TunerRun {
    /** Name of the case. */
    const char* name;
    uint32_t eTunerId;
    /** The system that the parameters are of. */
    uint32_t eTransSys;
    /** The parameters of channel 0, for the body to change. */
    QLX_TunerTuningParams stTuningParams;
    /** What tuner_readInfo has read last. */
    QLX_TunerSignalInfo stTunerSignalInfo;
    /** Data of the body's own. */
    void* context;
};

typedef uint32_t (*TunerBody)(TunerRun* run);

/** As tc_checkRet for an expression in a function that has a `name`. */
#define TUNER_RET(expr) tc_checkRet(name, __LINE__, #expr, static_cast<int64_t>(expr))

/**
 * The frame of most cases: parameters of channel 0, library initialised, tuner open, callback
 * registered; then the body; then all of it undone.
 * @param eTransSys  0 takes the tuner's default system
 */
uint32_t tuner_frame(const char* name, uint32_t eTunerId, uint32_t eTransSys, TunerBody body);

/** The frame of cases that tune nothing: library initialised and tuner open. */
uint32_t tuner_openFrame(const char* name, uint32_t eTunerId, TunerBody body);

/** The frame of cases that open the tuner themselves: parameters, and library initialised. */
uint32_t tuner_initFrame(const char* name, uint32_t eTunerId, uint32_t eTransSys, TunerBody body);

/** The first two frames around a run with parameters of its own; without a verdict. */
uint32_t tuner_runFrame(TunerRun* run, TunerBody body);
uint32_t tuner_runOpenFrame(TunerRun* run, TunerBody body);

/** A run on a tuner, without parameters. */
TunerRun tuner_newRun(const char* name, uint32_t eTunerId);

/** The enumerator of a system as texts of checks name it, "0" for the default system. */
const char* tuner_systemName(uint32_t eTransSys);

/** Fills the run's parameters for channel 0 of a system; a case may change systems on the way. */
bool tuner_fetchParams(TunerRun* run, uint32_t eTransSys);

/** Opens the run's tuner and registers the callback; leaves it closed on failure. */
bool tuner_open(const TunerRun& run);
/** Undoes tuner_open, both steps in any case. */
bool tuner_close(const TunerRun& run);

/** Steps of bodies; true when they passed. */
bool tuner_tune(const TunerRun& run, uint32_t eExpectedStatus);
bool tuner_dump(const TunerRun& run);
bool tuner_readInfo(TunerRun* run);
/** tuner_tune, tuner_dump. */
bool tuner_tuneAndDump(const TunerRun& run, uint32_t eExpectedStatus);
/** tuner_tune, tuner_dump, tuner_readInfo. */
bool tuner_tuneAndRead(TunerRun* run, uint32_t eExpectedStatus);

/** Demands a value; prints both when they differ. */
bool tuner_checkEqual(const char* name, int line, uint32_t expected, uint32_t actual);
/** Demands a condition. */
bool tuner_checkTrue(const char* name, int line, bool condition);
/** Demands low < value <= high. */
bool tuner_checkRange(const char* name, int line, int low, int high, int value);

/** Waits until the operator has pressed a key. */
void tuner_waitKey(void);

inline uint32_t tuner_verdict(bool passed) {
    return passed ? TC_SUCCESS : TC_FAILURE;
}

/** Starts a thread of the case; prints a failure. */
bool tuner_startThread(const char* name, pthread_t* thread, void* (*body)(void*), void* argument);

/** Waits for a thread that ends with a heap word, and frees that. Gives the word, or 1 without. */
uint32_t tuner_joinWord(pthread_t thread);

/** Ends a thread with a heap word that tuner_joinWord gives. */
[[noreturn]] void tuner_endThread(uint32_t result);

#endif

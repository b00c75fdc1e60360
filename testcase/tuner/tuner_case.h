/*
 * How the cases of the module Tuner are built: a body works on a TunerRun between the steps of a
 * frame, and a row of the case table names the frame, the tuner, the system and the body.
 *
 * A body notes in the context what does not hold; its frame undoes what it did, in any case, and
 * prints the verdict.
 */
#ifndef TESTCASE_TUNER_TUNER_CASE_H
#define TESTCASE_TUNER_TUNER_CASE_H

#include <stdint.h>

#include "framework/case/check.h"
#include "platform/qlx_tuner.h"
#include "testcase/tuner/tuner_steps.h"

/** What a case works on. */
struct TunerRun {
    uint32_t eTunerId;
    /** The system that the parameters are of. */
    uint32_t eTransSys;
    /** The parameters of channel 0, for the body to change. */
    QLX_TunerTuningParams stTuningParams;
    /** What tuner_readInfo has read last. */
    QLX_TunerSignalInfo stTunerSignalInfo;
};

typedef void (*TunerBody)(CaseContext& tc, TunerRun& run);

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

/** Does a body between the lowest `level` steps. Whether it noted no failure, and nor did they. */
bool tuner_between(CaseContext& tc, TunerRun& run, TunerLevel level, TunerBody body);

/** The enumerator of a system as texts of checks name it, "0" for the default system. */
const char* tuner_systemName(uint32_t eTransSys);

/** Steps of bodies. Each yields whether it passed; a failure is noted. */

/** Fills the run's parameters for channel 0 of a system; a case may change systems on the way. */
bool tuner_fetchParams(CaseContext& tc, TunerRun& run, uint32_t eTransSys);
bool tuner_tune(CaseContext& tc, const TunerRun& run, uint32_t eExpectedStatus);
bool tuner_readInfo(CaseContext& tc, TunerRun& run);
/** tuner_tune, and the dump of all parameters. */
bool tuner_tuneAndDump(CaseContext& tc, const TunerRun& run, uint32_t eExpectedStatus);
/** tuner_tuneAndDump, tuner_readInfo. */
bool tuner_tuneAndRead(CaseContext& tc, TunerRun& run, uint32_t eExpectedStatus);

#endif

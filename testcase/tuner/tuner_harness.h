/*
 * The tuners for all modules: parameters from the configuration, waiting for a lock, judging the
 * signal, and wrappers that bring a front end up and take it down again.
 *
 * Other modules use the TC_TUNER_ wrappers: TC_TUNER_INIT, TC_TUNER_START, the work on the stream,
 * TC_TUNER_STOP, TC_TUNER_DEINIT. Each prints its verdict line and answers 0 or 1. The cases of
 * the module Tuner call the library and the checks themselves, between TUNER_TestCaseSetupImp and
 * TUNER_TestCaseTeardownImp; the two ways share the semaphores and are not to be mixed.
 *
 * Results are 0 for pass and 1 for fail unless told otherwise. Tuner identifiers are 0 to 3.
 */
#ifndef TESTCASE_TUNER_TUNER_HARNESS_H
#define TESTCASE_TUNER_TUNER_HARNESS_H

#include <stdint.h>

#include "platform/qlx_tuner.h"

/** Bytes of a DiSEqC message, as configured. */
struct TunerDiseqcParams {
    uint32_t uFraming;
    uint32_t uAddress;
    uint32_t uCommand;
};

/** What a thread of simultaneous tuning works on; one a thread. */
struct tuner_request_info {
    uint32_t tuner_id;
    QLX_TunerTuningParams stTuningParams;
};

/** Hooks of the module; log their names and answer 0. */
uint32_t TUNER_TestSetup(void);
uint32_t TUNER_TestTeardown(void);
/** Makes the semaphores for a case, and destroys them after it. */
uint32_t TUNER_TestCaseSetupImp(const char* caseName, const char* configFile);
uint32_t TUNER_TestCaseTeardownImp(void);

/** One counting semaphore a tuner, all with count 0. */
uint32_t tuner_sem_init(void);
uint32_t tuner_sem_post(uint32_t eTunerId);
/** Waits at most `timeout` seconds of the real-time clock. */
uint32_t tuner_sem_timedwait(uint32_t eTunerId, uint32_t timeout);
uint32_t tuner_sem_destroy(void);

/** A number of the board's tuner file; 0 where it is missing. */
int32_t tuner_get_conf_value(const char* section, const char* key, int32_t* value);

/**
 * Copies the configured parameters of a system, with the frequency of a channel.
 * @param eTransSys        QLX_TransmissionSystem; 0 takes the default system of the tuner
 * @param uChannelId       from 0; one beyond the channel table gives channel 0
 * @param pstTuningParams  receives the record; left alone on failure
 * @return 1 for a system without parameters
 */
uint32_t tuner_get_params(uint32_t eTunerId, uint32_t eTransSys, uint32_t uChannelId,
                          QLX_TunerTuningParams* pstTuningParams);

/** The configured blind scan, without flag and callbacks. Always 0. */
uint32_t tuner_get_params_dvbs_BlindScan(QLX_TunerBlindScanParams* pstBlindScanParams);

/** The configured DiSEqC message. Always 0. */
uint32_t tuner_get_params_dvbs_DiSEqC(TunerDiseqcParams* pstParams);

/**
 * Receiver of the library's events for all tuners, on the library's thread. Wakes the waiter of a
 * lock decision, and then stores the status: a waiter may run before the store.
 */
void tuner_callback(uint32_t eTunerId, void* pUserData, uint32_t eSignalStatus, void* pData);

/**
 * Tunes and waits for the decision: 4 seconds for satellite, 3 for ATSC 3.0, else 2. Needs a tuner
 * that is open with tuner_callback registered, and leaves it so. Silence fails; so does a status
 * of the signal information or of the event that is not `eExpectedStatus`.
 */
uint32_t tuner_test_tuning(uint32_t eTunerId, const QLX_TunerTuningParams* pstTuningParams,
                           uint32_t eExpectedStatus);

/** Compares signal information just read with the tuner's parameters; prints a verdict line. */
uint32_t tuner_check_signalInfo(uint32_t eTunerId, const QLX_TunerSignalInfo* pstSignalInfo);

/** Prints all signal information of a tuner; passes when the tuning type is digital. */
uint32_t tuner_check_tuning_params(uint32_t eTunerId);

/** Compares the status now, of the information and of the last event, without waiting. */
uint32_t tuner_check_tuning_status(uint32_t eTunerId, uint32_t eExpectedStatus);

/**
 * Thread body: opens, tunes, checks and closes the tuner of a tuner_request_info.
 * @return through pthread_exit a heap word with 0 or 1, which the starter frees; null without heap
 */
void* TUNER_RequestTuneThread(void* req);

/** Loads the tuner block of zk_testConfig from the board's tuner file. Called once at start. */
void TC_TUNER_LOAD_CONFIG(void);

/** tuner_sem_init and tuner_sem_destroy for other modules. */
uint32_t TC_TUNER_SEM_INIT(void);
uint32_t TC_TUNER_SEM_DESTROY(void);

/** Makes semaphores and initialises the library, once until TC_TUNER_DEINIT. */
uint32_t TC_TUNER_INIT(void);

/** Undoes TC_TUNER_INIT; a success without effect when there is nothing to undo. */
uint32_t TC_TUNER_DEINIT(void);

/** Opens a tuner and tunes it to a channel. Leaves it open and locked, or on failure closed. */
uint32_t TC_TUNER_START(uint32_t eTunerId, uint32_t eTransSys, uint32_t uChannelId);

/** The same with the tuner's default system and channel 0, without waiting for the decision. */
uint32_t TC_TUNER_START_IGNOR_LOCKED(uint32_t eTunerId);

/** Ends what TC_TUNER_START or TC_TUNER_OPEN left; closes also when unregistering fails. */
uint32_t TC_TUNER_STOP(uint32_t eTunerId);
uint32_t TC_TUNER_CLOSE(uint32_t eTunerId);

/** Tunes an open tuner and judges the signal. Leaves the tuner open, also on failure. */
uint32_t TC_TUNER_TUNING(uint32_t eTunerId, const QLX_TunerTuningParams* pstTuningParams);
uint32_t TC_TUNER_TUNING_CHANNEL_ID(uint32_t eTunerId, uint32_t eTransSys, uint32_t uChannelId);

/** Opens a tuner and registers tuner_callback. Leaves it closed on failure. */
uint32_t TC_TUNER_OPEN(uint32_t eTunerId);

#endif

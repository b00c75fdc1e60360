/*
 * Recordings: source, recorder, file and PIDs brought up and taken down, and the flows that the
 * cases are built on.
 *
 * A flow brings all of it up in a fixed order, records for g_recRuration seconds into a file in the
 * configured folder, checks what was recorded, and takes all of it down in reverse on every path.
 * It answers TC_SUCCESS or TC_FAILURE. Console thread; one recording at a time.
 */
#ifndef TESTCASE_RECORD_RECORD_HARNESS_H
#define TESTCASE_RECORD_RECORD_HARNESS_H

#include <stdint.h>

#include "testcase/record/record_params.h"

/** How long a flow records, in seconds. */
enum { REC_DURATION = 15 };
extern uint32_t g_recRuration;
/** How many runs of a flow follow each other; each of several has its number, from 1, in the name
 * of its file. */
extern uint32_t bRecordSeveralTimes;
extern uint32_t g_recRun;
/** The demultiplexer has been opened by others, who also close it. */
extern uint32_t g_hasOpenDmx;

/** Hooks of the module, and around each case: tuners and demultiplexers initialised. */
uint32_t Rec_TestSetup(void);
uint32_t Rec_TestTeardown(void);
uint32_t Rec_SetupCase(const char* caseName, const char* configFile);
uint32_t Rec_TeardownCase(void);

/**
 * Tunes to the channel of the record's path, or to channel 0 of a system without paths, and starts
 * the demultiplexer on it. Null: the configured record. A failure leaves nothing up.
 */
uint32_t TC_Record_START_SOURCE(const stRecoderParams* pstRecoderParam);
/** Takes it down; both are tried. */
uint32_t TC_Record_STOP_SOURCE(const stRecoderParams* pstRecoderParam);

/** Adds PIDs to a recorder in a fixed order, and tells it the video format. Null: a set that needs
 *  no channel. The first failure ends it: 1. */
uint32_t AddPidsBeforeStart(uint32_t recHandle, const RecActualPids* pPids);

/* The flows. `path` below REC_PATH_MAX; a system without paths is a failure with a message. */

uint32_t TC_RecTestWholeFlow(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                             uint32_t path);
/** Pauses and resumes behind two seconds. */
uint32_t TC_RecTestWholeFlowWithPause(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                                      uint32_t path);
/** Each step takes at most 200 ms. Always for REC_DURATION. */
uint32_t TC_RecTestWholeFlowConsumption(uint32_t eTunerDev, uint32_t eDemuxId,
                                        uint32_t eRecTransSys, uint32_t path);
/** The file grows all the time. */
uint32_t TC_RecTestWholeFlowFileSize(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                                     uint32_t path);
/** The service is descrambled and played meanwhile. */
uint32_t TC_RecTestScramWholeFlow(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                                  uint32_t path);
/** With further PIDs of the channel. */
uint32_t TC_RecTestMultiAudio(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                              uint32_t path);
uint32_t TC_RecTestMultiSubtitle(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                                 uint32_t path);
uint32_t TC_RecTestPMT(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys, uint32_t path);
uint32_t TC_RecTestAudioDesc(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                             uint32_t path);
uint32_t TC_RecTestOtherPids(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                             uint32_t path);
uint32_t TC_RecRecordAllTsData(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                               uint32_t path);
/** Five minutes in which data come at least every 500 ms; they are not kept. */
uint32_t TC_RecCheckTsCallbackData(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                                   uint32_t path);
/** The time stamps of 30 seconds do not fall. */
uint32_t TC_RecCheckTsPacketTimestamp(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                                      uint32_t path);

#endif

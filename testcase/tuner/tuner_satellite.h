/*
 * Satellite equipment behind a tuner: DiSEqC messages, the channel change of a Unicable outdoor
 * unit, and the blind scan of the four bands of a universal LNB.
 *
 * The band state is shared by the loop of a scan, which changes it only between bands, and the
 * library's callbacks; there is one scan at a time.
 */
#ifndef TESTCASE_TUNER_TUNER_SATELLITE_H
#define TESTCASE_TUNER_TUNER_SATELLITE_H

#include <stdint.h>

#include "framework/case/check.h"
#include "platform/qlx_tuner.h"

/** Bits of the bank that a Unicable command asks for, each in its place or 0. */
extern uint32_t uTunerNibbleBand;         /**< 1 high band. */
extern uint32_t uTunerNibblePolarization; /**< 0 as at 13 V, 2 as at 18 V. */
extern uint32_t uTunerNibblePosition;     /**< 4 the second position. */
extern uint32_t uTunerNibbleOption;

/** Whether the LNB is a Unicable one, and the user band and oscillators then. */
extern uint32_t bTunerUnicableFlag;
extern uint32_t uTunerUnicableChannel;
extern uint32_t uTunerUnicableChannelFreq; /**< kHz. */
extern uint32_t uTunerLOFLow;              /**< kHz. */
extern uint32_t uTunerLOFHigh;             /**< kHz. */

/** The bank of the band state. */
uint32_t TUNER_DVBS_GetDiseqcBand(void);

/**
 * Sends a DiSEqC message.
 * @param header   framing, address and command
 * @param data     data bytes
 * @param uLength  how many; more than three are cut to three
 * @return the library's result
 */
int32_t TUNER_DVBS_SendDiseqcMsg(uint32_t eTunerId, const uint8_t header[3], const uint8_t* data,
                                 uint32_t uLength);

/**
 * Moves the user band of a Unicable LNB (ODU_Channel_change of EN 50494) to an intermediate
 * frequency of the bank. Does nothing without such an LNB.
 * @param uIfFrequency  kHz
 * @return the results of all library calls, OR-ed
 */
int32_t TUNER_DVBS_ScifChannelChange(uint32_t eTunerId, uint32_t uIfFrequency);

/** The library's callbacks of a blind scan. */
void TUNER_DVBS_BlindScanCallback(uint32_t eTunerId, uint32_t eEvent,
                                  const QLX_TunerBlindScanInfo* pstInfo, uint32_t* puFinishedBands);
void TUNER_DVBS_BlindScanTuneCallback(uint32_t eTunerId,
                                      const QLX_TunerBlindScanInfo* pstCandidate);

/** What the threads of the scan cases work on. All use tuner 0, which the case has opened. */
struct TunerScanThread {
    /** Name of the case. */
    const char* name;
    /** Set by the case: the thread is to end. */
    volatile uint32_t uCancelFlag;
};

/**
 * Thread bodies; each takes a TunerScanThread and ends with a heap word, 0 or 1.
 * One scan of the four bands, which is to be cancelled on the way; the same scan again and again;
 * reading the signal information 12001 times; tuning to and fro.
 */
void* TUNER_DVBS_BlindScanTuneThread(void* argument);
void* TUNER_DVBS_BlindScanTuneCircleThread(void* argument);
void* TUNER_DVBS_GetSignalInfoThread(void* argument);
void* TUNER_TuningCircleThread(void* argument);

/** How a scan of all bands ended. */
enum TunerScanEnd {
    SCAN_FINISHED,
    SCAN_CANCELED,
    SCAN_FAILED,
};

/**
 * Scans the four bands on an open tuner, from the first. What fails is noted.
 * @param puCancelFlag  ends the scan when it becomes non-zero; may be null
 * @param endText       what to print when all bands are finished
 */
TunerScanEnd tuner_scanBands(CaseContext& tc, uint32_t eTunerId,
                             const volatile uint32_t* puCancelFlag, const char* endText);

/** Takes band state, LNB type, user band and oscillators from the configuration. */
bool tuner_prepareScan(CaseContext& tc, uint32_t eTunerId);

#endif

/*
 * Analog reception for all modules: the tuning record of the configuration, the callback of the
 * front ends, a front end that is tuned to a channel, and how a channel is found.
 */
#ifndef TESTCASE_AFE_AFE_HARNESS_H
#define TESTCASE_AFE_AFE_HARNESS_H

#include <stdint.h>

#include "platform/qlx_afe.h"

/** The configured record; its frequency stays 0 (it is the channel's). */
extern QLX_AnalogTuningParams g_stAnalogTuneParam;
/** The feature table, by ZkFeature; null before AFE_LoadConfig. */
extern const int32_t* tcAFEFeature;
/** The last event of any front end, QLX_AnalogEvent. Written on the library's thread, read when
 * none is awaited. */
extern uint32_t m_afeEventFlags;

/** Reads g_stAnalogTuneParam from the board's tuner file. Always TC_SUCCESS. */
uint32_t AFE_LoadConfig(void);

/**
 * The configured record with the frequency of a channel.
 * @param uChannelId  index in the ATV channel table; one beyond it gives channel 0
 * @return TC_SUCCESS
 */
uint32_t AFE_GetTuningParams(uint32_t eTunerId, uint32_t uChannelId,
                             QLX_AnalogTuningParams* pstParams);

/** Receiver of the front ends' events, on the library's thread: tells the event on the console and
 *  wakes who waits for any. */
void AFE_AFECallback(uint32_t eTunerId, void* pUserData, uint32_t eEvent, void* pData);

/** The same; but only a change of the sound wakes who waits. */
void AFE_AFECallbackNotifyMtsChange(uint32_t eTunerId, void* pUserData, uint32_t eEvent,
                                    void* pData);

/** Empties m_afeEventFlags, and gives it; while events may come. */
void AFE_ForgetEvent(void);
uint32_t AFE_LastEvent(void);

/** Print the words that have a meaning here. TC_FAILURE for null. */
uint32_t AFE_PrintAnalogSignalStatus(const QLX_AnalogSignalStatus* pstSignalStatus);
uint32_t AFE_PrintAnlaogTuneParam(const QLX_AnalogTuningParams* pstTuningParams);

/**
 * Tunes an open front end, whose callback is registered, to the channel of a record, whose tune
 * type becomes that of a change. Waits at most two seconds for an event, and then demands both
 * locks. Prints its verdict line, unless the tuning is refused.
 * @param eAFC  without a meaning
 */
uint32_t AFE_TuningChanelChange(uint32_t eTunerId, QLX_AnalogTuningParams* pstTuningParams,
                                uint32_t eAFC);

/**
 * Searches a station from the frequency of a record on: steps up until there is a carrier and a
 * picture, then follows the discriminator until the tuning lies on the carrier. TC_FAILURE when a
 * call is refused, or once the search is more than 2000 kHz from where it began.
 * @param pstTuningParams  its tune type becomes that of a search, its frequency that of the last
 *                         step; on success 4000 kHz above the station, where the next search begins
 * @param eAFC             without a meaning
 */
uint32_t AFE_TuningChannelScan(uint32_t eTunerId, QLX_AnalogTuningParams* pstTuningParams,
                               uint32_t eAFC);

/**
 * How far to step for an answer of the discriminator.
 * @param eAFCDistance    QLX_AfcDistance
 * @param pDistanceClass  receives its class: 1 near the carrier, 2, 4, 6 farther and farther below,
 *                        3, 5, 7 above it
 * @return the step in kHz; -1 for a null pointer
 */
int32_t AFE_CheckAFCWindow(uint32_t eAFCDistance, uint32_t* pDistanceClass);

/** The number of a broadcast system's sound or colour: that of the bit of a detected standard.
 *  Unknown ones become BG and PAL. */
uint32_t AFE_MapAudioStd(uint32_t v);
uint32_t AFE_MapColorStd(uint32_t v);

/** Services of decoders, video output and sinks, for cases that see and hear the channel. A start
 *  that fails has undone what it did; an end tries every step. TC_SUCCESS or TC_FAILURE. */
uint32_t AFE_AVInit(void);
uint32_t AFE_AVDeInit(void);

/** Plays what a front end receives, on the panel and the sinks. Needs the services, and a front end
 *  that is tuned. */
uint32_t AFE_AVPlay(uint32_t eTunerId);
uint32_t AFE_AVStop(uint32_t eTunerId);

/**
 * Initialises and opens a front end and tunes it. Waits for the decision at most two seconds, and
 * goes on without it: a channel without a signal is a success. With
 * FEATURE_AFE_TUNING_AFTER_ATV_SOURCE the video output, whose service must be initialised, is
 * opened ahead of the tuning. Prints its verdict line.
 * @return TC_SUCCESS; TC_FAILURE, with all undone
 */
uint32_t TC_ANALOG_START(uint32_t eTunerId, uint32_t uChannelId);

/** Takes down what TC_ANALOG_START has brought up, each step whatever the others answer. */
uint32_t TC_ANALOG_END(uint32_t eTunerId);

#endif

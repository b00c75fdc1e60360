/*
 * Analog reception for all modules: the tuning record of the configuration, the callback of the
 * front ends, and a front end that is tuned to a channel.
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

/** Prints the words of a status that have a meaning here. TC_FAILURE for null. */
uint32_t AFE_PrintAnalogSignalStatus(const QLX_AnalogSignalStatus* pstSignalStatus);

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

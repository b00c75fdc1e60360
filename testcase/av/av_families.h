/*
 * Played sources, judged: bodies of the families that every source has, and of those that only
 * broadcasts have. Each answers the result of its case and leaves nothing up whatever fails; a
 * selector that the board does not have answers TC_NOT_APPLICABLE untouched, but for the plays that
 * an operator confirms.
 */
#ifndef TESTCASE_AV_AV_FAMILIES_H
#define TESTCASE_AV_AV_FAMILIES_H

#include <stdint.h>

#include "testcase/av/av_case.h"

// What the decoders tell while they play. Inputs and front ends play a picture alone, and but for
// ATV a sound alone.
uint32_t AV_GetVideoInfo(const char* name, const AvSelector& selector);
uint32_t AV_GetAudioInfo(const char* name, const AvSelector& selector);

// What they have reported in a play of two seconds: the order, that nothing is told twice in a row,
// each report, and their times.
uint32_t AV_VideoEventFlow(const char* name, const AvSelector& selector);
uint32_t AV_VideoInfoNotRepeated(const char* name, const AvSelector& selector);
uint32_t AV_VideoEventInfo(const char* name, const AvSelector& selector);
uint32_t AV_VideoEventConsumption(const char* name, const AvSelector& selector);
uint32_t AV_AudioEventFlow(const char* name, const AvSelector& selector);
uint32_t AV_AudioInfoNotRepeated(const char* name, const AvSelector& selector);
uint32_t AV_AudioEventInfo(const char* name, const AvSelector& selector);
uint32_t AV_AudioEventConsumption(const char* name, const AvSelector& selector);

uint32_t AV_PlayTenRounds(const char* name, const AvSelector& selector);
/** Manual. */
uint32_t AV_PlayConfirmed(const char* name, const AvSelector& selector);

/** Ten rounds of one source and another. */
uint32_t AV_SwitchSource(const char* name, const AvSelector& first, const AvSelector& second);
/** Ten rounds of channel 0 and channel 1. */
uint32_t AV_SwitchChannel(const char* name, const AvSelector& selector);

// Broadcasts alone.

/** Variants: a PID that nothing comes on is told as no picture, and no information twice, with one
 *  first picture. */
uint32_t AV_VideoWrongPid(const char* name, const AvSelector& selector);
uint32_t AV_VideoInfoNotRepeatedOneFrame(const char* name, const AvSelector& selector);
uint32_t AV_AudioWrongPid(const char* name, const AvSelector& selector);

// Manual, on tuner and demultiplexer 0 and the channel that the console reads for the case.
uint32_t AV_PlayManualConfirmed(const char* name, const AvSelector& selector);
uint32_t AV_PlayOneMinute(const char* name);
/** Twice through the common interface. */
uint32_t AV_PlayTsConfig(const char* name, bool passThrough);
uint32_t AV_PlaySwitchTsConfig(const char* name);
uint32_t AV_PlayDescramble(const char* name);

#endif

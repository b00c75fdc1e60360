/*
 * The bare decoders, step by step: opened and closed, with a callback registered, started and
 * stopped, on any source. The bodies of three families; each goes the same seven ways.
 *
 * Each answers the result of its case and prints its verdict, and leaves nothing up whatever fails.
 * `name` is the case's, or that of a variant, whose base is then run (AV_RunVariant); a selector
 * that the board does not have answers TC_NOT_APPLICABLE untouched.
 */
#ifndef TESTCASE_AV_AV_LADDERS_H
#define TESTCASE_AV_AV_LADDERS_H

#include <stdint.h>

#include "testcase/av/av_case.h"

/** What is done with the step that a family is about. */
enum AvLadderWay {
    AV_VIDEO_ALONE,
    AV_AUDIO_ALONE,
    /** A second time, which must be refused. */
    AV_VIDEO_TWICE,
    AV_AUDIO_TWICE,
    AV_BOTH,
    /** Video up and down, audio up and down, and that again. */
    AV_BOTH_TWO_ROUNDS,
    /** Each call at most 200 ms. */
    AV_BOTH_TIMED,
};

// Variants.
uint32_t AV_OpenClose(const char* name, AvLadderWay way, const AvSelector& selector);
uint32_t AV_RegisterCallback(const char* name, AvLadderWay way, const AvSelector& selector);
uint32_t AV_StartStop(const char* name, AvLadderWay way, const AvSelector& selector);

// Broadcast decoders that must not open: the service has ended, or there is no signal.
uint32_t AV_OpenVideoUninitialised(const char* name);
uint32_t AV_OpenVideoWithoutSource(const char* name);
uint32_t AV_OpenAudioUninitialised(const char* name);
uint32_t AV_OpenAudioWithoutSource(const char* name);

#endif

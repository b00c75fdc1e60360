/*
 * Whether a played source behaved: two judges ask the decoders while it plays, six read the logs of
 * its events (av_events.h) after it has been stopped. Each prints what is wrong, answers TC_SUCCESS
 * or TC_FAILURE, and changes nothing. A null argument is a failure. Console thread.
 */
#ifndef TESTCASE_AV_AV_JUDGES_H
#define TESTCASE_AV_AV_JUDGES_H

#include <stdint.h>
#include <sys/time.h>

#include "environment/test_env.h"
#include "platform/qlx_audio.h"
#include "platform/qlx_video.h"

enum {
    /** ms from the start of a play until picture and clock are in step, and until there is a sound;
     *  these still pass. */
    AV_SYNC_LIMIT_MS = 2200,
    AV_SOUND_LIMIT_MS = 1700,
};

/** What the decoder tells of its picture and of its state. Its state is asked of decoder 0. */
uint32_t AV_CheckVideoInfo(const AvSource* pstSource);
/** The same of a sound, asked of the source's decoder. */
uint32_t AV_CheckAudioInfo(const AvSource* pstSource);

/** One report of a picture, or that there is none. */
uint32_t AV_CheckVideoInfoEvent(const AvSource* pstSource, const QLX_VideoDecInfo* pstVideoDecInfo);
/** One report of a sound, or that there is none. */
uint32_t AV_CheckAudioInfoEvent(const AvSource* pstSource, const QLX_AudioDecInfo* pstAudioInfo);

/** The order of the video log: started, then a first picture and what it is, in step with the clock
 *  (broadcasts and recordings), no picture any more, stopped. */
uint32_t AV_CheckVideoEventFlow(const AvSource* pstSource);
/** The order of the audio log: a sound, then stopped. */
uint32_t AV_CheckAudioEventFlow(const AvSource* pstSource);

/** The time of each event, printed; picture and clock (broadcasts and recordings) must be in step
 *  within AV_SYNC_LIMIT_MS of `pstStartTime`. */
uint32_t AV_CheckVideoEventConsumption(const AvSource* pstSource, const timeval* pstStartTime);
/** A sound must be there within AV_SOUND_LIMIT_MS of `pstStartTime`. */
uint32_t AV_CheckAudioEventConsumption(const AvSource* pstSource, const timeval* pstStartTime);

#endif

/*
 * Whole plays: a source from its signal to the panel and the sinks, and down again.
 *
 * A play is a stack: decoders initialised; signal up; decoders open; sinks open; output open;
 * decoders running; sinks unmuted; output placed and unmuted. An operation that begins one leaves
 * all of it up on success, and on failure takes down what it has brought up, in reverse; one that
 * ends a play tries every step. All need what the set-up of an AV module leaves (av_module.h):
 * tuner, demultiplexer, external inputs and both outputs initialised.
 *
 * All answer TC_SUCCESS or TC_FAILURE, and print what failed but no verdict line. `pstSource` null
 * is the configured source; `pstChannelInfo`, when not null, is played in place of the source's
 * channel. One play at a time, on the console thread.
 *
 * With FEATURE_AFE_TUNING_AFTER_ATV_SOURCE the analog front end opens and closes the output of ATV
 * itself; plays then leave that step out.
 */
#ifndef TESTCASE_AV_AV_PLAY_H
#define TESTCASE_AV_AV_PLAY_H

#include <stdint.h>

#include "environment/test_env.h"

/** The feature table, by ZkFeature; set by every set-up and every play. */
extern const int32_t* tcAVFeature;

/** Plays picture and sound. */
uint32_t AV_PlayAudioVideo(const AvSource* pstSource, const TcChannelInfo* pstChannelInfo);
/** Ends that. The decoders stay initialised: the next play initialises them again, which changes
 *  nothing. */
uint32_t AV_StopAudioVideo(const AvSource* pstSource);

/** The same two, with a verdict line each. */
uint32_t TC_AV_PLAY_AUDIO_VIDEO(const AvSource* pstSource, const TcChannelInfo* pstChannelInfo);
uint32_t TC_AV_STOP_AUDIO_VIDEO(const AvSource* pstSource);

/**
 * Plays through the module of common interface slot 0; an empty slot is a failure without a
 * message.
 * @param bPassThrough  0: the stream goes past the module
 */
uint32_t AV_PlayAudioVideoTsConfig(const AvSource* pstSource, const TcChannelInfo* pstChannelInfo,
                                   uint32_t bPassThrough);
uint32_t AV_StopAudioVideoTsConfig(const AvSource* pstSource);

/** Plays for a minute: 20 s past the module in slot 0, 20 s through it, 20 s past it; and takes all
 *  of it down. */
uint32_t AV_PlayAudioVideoSwitchTsConfig(const AvSource* pstSource,
                                         const TcChannelInfo* pstChannelInfo);

/**
 * Plays through a descrambler of demultiplexer 0.
 * @param pu32HDesc  receives its handle, which is of no use after a failure
 */
uint32_t AV_PlayAudioVideoDescramble(const AvSource* pstSource, const TcChannelInfo* pstChannelInfo,
                                     uint32_t* pu32HDesc);
uint32_t AV_StopAudioVideoDescramble(const AvSource* pstSource, uint32_t HDesc);

/** One decoder alone, with its output. The decoder that plays is the source's; DTV is always that
 * of the tuner's default system. */
uint32_t AV_StartVideoOnly(const AvSource* pstSource, const TcChannelInfo* pstChannelInfo);
uint32_t AV_StopVideoOnly(const AvSource* pstSource);
uint32_t AV_StartAudioOnly(const AvSource* pstSource, const TcChannelInfo* pstChannelInfo);
uint32_t AV_StopAudioOnly(const AvSource* pstSource);

#endif

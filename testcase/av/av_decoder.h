/*
 * The road of a picture and its sound as far as the decoders, in the steps by which all modules go
 * it: services, signal, decoders with their callbacks, decoding.
 *
 *     TC_AV_INIT()            TC_AV_DEINIT()
 *     TC_AV_START_SOURCE()    TC_AV_STOP_SOURCE()
 *     TC_AV_OPEN()            TC_AV_CLOSE()
 *     TC_AV_START()           TC_AV_STOP()
 *
 * Each needs the one above it, prints its verdict line, and answers TC_SUCCESS or TC_FAILURE. One
 * that fails on the way up leaves nothing behind unless told otherwise. `pstSource` null is the
 * source of the configuration. Whole plays, with outputs, are in av_play.h. Console thread.
 */
#ifndef TESTCASE_AV_AV_DECODER_H
#define TESTCASE_AV_AV_DECODER_H

#include <stdint.h>

#include "environment/test_env.h"
#include "platform/qlx_audio.h"
#include "platform/qlx_source.h"
#include "platform/qlx_video.h"

/** Kinds of source, values of AvSource's eSource. */
enum AvSourceKind {
    AV_SOURCE_ATV = 1,
    AV_SOURCE_CVBS = 2,
    AV_SOURCE_YPBPR = 5,
    AV_SOURCE_HDMI = 10,
    /** A recording, injected into a demultiplexer. */
    AV_SOURCE_PVR = 12,
    /** An injected elementary stream; it has no signal to bring up. */
    AV_SOURCE_STREAM = 14,
    AV_SOURCE_DTV = 16,
};

/** The record itself, or for null the configured one. */
const AvSource* AV_SourceOrConfigured(const AvSource* pstSource);

/** Video and audio service. */
uint32_t TC_AV_INIT(void);
/** Both are tried. */
uint32_t TC_AV_DEINIT(void);

/**
 * Brings the signal up: the analog front end, the external input, tuner and demultiplexer, or for a
 * recording the demultiplexer alone. Needs the services of these (TC_TUNER_INIT, QLX_DemuxInit,
 * QLX_ExtInInit). An external input whose signal does not come stays open.
 */
uint32_t TC_AV_START_SOURCE(const AvSource* pstSource);
/** Takes it down. A demultiplexer that does not stop keeps its tuner. */
uint32_t TC_AV_STOP_SOURCE(const AvSource* pstSource);

/** Fills what the decoders are opened on; false, and a line on the console, for an unknown source.
 */
bool AV_FillDecoderAttr(const AvSource& source, QLX_VideoAttr* pstVideoAttr,
                        QLX_AudioAttr* pstAudioSource);
/** The same for a decoder that works alone: ATV then takes the number of the DTV tuner, and a
 *  recording is one to both decoders, without its demultiplexer's number. */
bool AV_FillLoneDecoderAttr(const AvSource& source, QLX_VideoAttr* pstVideoAttr,
                            QLX_AudioAttr* pstAudioSource);

/** Opens both decoders on a signal that is up, and registers callbacks on the emptied logs. */
uint32_t TC_AV_OPEN(const AvSource* pstSource);
/** Every step is tried. */
uint32_t TC_AV_CLOSE(const AvSource* pstSource);

/** The channel that a source plays.
 *  @param system  its transmission system; 0: that of its tuner */
void AV_GetChannel(const AvSource& source, uint32_t system, TcChannelInfo* pstChannelInfo);

/** Whether a source brings coded data, so that decoders need formats and PIDs. */
bool AV_IsCoded(const AvSource& source);

/**
 * Starts the decoders, waits for the picture (5 s; PVR 6 s) and for the sound (5 s; DTV: until
 * picture and sound are in step), and unmutes the sound. A source other than DTV without a sound is
 * a success, and stays muted.
 * @param pstChannelInfo  what to play instead of the source's channel; null: that
 * @param pstDecInfo      receives what the decoder knows of the picture; null is a failure
 */
uint32_t TC_AV_START(const AvSource* pstSource, const TcChannelInfo* pstChannelInfo,
                     QLX_VideoDecInfo* pstDecInfo);
/** Mutes the sound and stops the decoders. When it cannot be muted, they run on. */
uint32_t TC_AV_STOP(const AvSource* pstSource);

/**
 * The source as a video output is opened on it.
 * @param pstQlxSource  receives it; of a stream, the kind alone
 * @return TC_FAILURE, with a line on the console, for an unknown source
 */
uint32_t AV_AvSource2QlxSource(const AvSource* pstSource, QLX_Source* pstQlxSource);

/** Asks the operator: prints the text, if not null, and reads a number. TC_SUCCESS when it is not
 *  0; TC_FAILURE for 0, for anything but a number, and at the end of input. */
uint32_t AV_CheckConfirm(const char* text);

#endif

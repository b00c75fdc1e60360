/*
 * Audio outputs for all modules: which sinks the board has, and wrappers that bring them up and
 * take them down; and a play on one sink alone, for the cases of AOUT.
 *
 * Each sink has an output device of its own, and is used only where the board's configuration has
 * it. The order is TC_AOUT_INIT, TC_AOUT_OPEN, TC_AOUT_START, and the reverse with TC_AOUT_STOP,
 * TC_AOUT_CLOSE, TC_AOUT_DEINIT. All results are TC_SUCCESS or TC_FAILURE.
 */
#ifndef TESTCASE_AOUT_AOUT_HARNESS_H
#define TESTCASE_AOUT_AOUT_HARNESS_H

#include <stdint.h>

#include "platform/qlx_aout.h"

enum AmpType {
    AMP_TYPE_NONE = 0,
    AMP_TYPE_NF8212 = 1,
    AMP_TYPE_NF8214 = 2,
    AMP_TYPE_NF8822 = 3,
    AMP_TYPE_TI5711 = 4,
    AMP_TYPE_NF8928 = 5,
};

/** What the board has, of its common configuration. */
struct AOutParams {
    /** AmpType. */
    uint32_t uAMPType;
    /** Reset pin of the amplifier. */
    uint32_t uAMPGpioNum;
    /** Its address on I2C bus 0; the low byte counts. */
    uint32_t uAMPI2CAddr;
    /** Its mute pin; NF8928 only. */
    uint32_t uAMPGpioMute;
    /** Sinks: 0 absent, else present. */
    uint32_t uAoutSpeaker;
    uint32_t uAoutHeadphone;
    uint32_t uAoutSpdif;
    uint32_t uAoutLineout;
    uint32_t uAoutHdmi;
    uint32_t uAoutBt;
    /** Pin that tells whether a headphone is plugged. */
    uint32_t uHPGpioNum;
};

/** Cleared and read again by every AOUT_LoadParams. */
extern AOutParams g_stAOutParams;

/** Reads g_stAOutParams. The first key that no file has ends it: what follows stays 0, absent. */
uint32_t AOUT_LoadParams(void);

/** Reads the parameters, initialises the service and, where there is a speaker, loads the
 *  amplifier. Neither a missing key nor a silent amplifier is a failure. */
uint32_t TC_AOUT_INIT(void);

/** Ends the service, and with it what is open. */
uint32_t TC_AOUT_DEINIT(void);

/** Opens all sinks of the board. On failure those that were open are closed again. */
uint32_t TC_AOUT_OPEN(void);

/** Closes the sinks but Bluetooth, which stays open until the service ends. */
uint32_t TC_AOUT_CLOSE(void);

/** Sets all sinks to volume 30 and unmutes them. The first failure ends it and undoes nothing. No
 *  verdict line. */
uint32_t TC_AOUT_START(void);

/** Mutes all sinks; the first failure ends it. No verdict line. */
uint32_t TC_AOUT_STOP(void);

/** Mixes the audio description into speaker and headphone. */
uint32_t TC_AOUT_START_AUDIO_DESC(void);
uint32_t TC_AOUT_STOP_AUDIO_DESC(void);

/**
 * The output device of a sink.
 * @param peDevId  receives it; left alone on failure
 * @param eSink    QLX_OutputSource
 */
uint32_t AOUT_SourceToID(uint32_t* peDevId, uint32_t eSink);

/**
 * Plays the configured source on one sink alone, whether the board has it or not. Needs tuner,
 * demultiplexer, external inputs, decoders and video output initialised, as testSetup of the module
 * leaves them. On success all of it runs until AOUT_AV_Stop; on failure nothing does.
 */
uint32_t AOUT_AV_Play(uint32_t eSource);

/** Takes down what AOUT_AV_Play has brought up, every step whatever the others answer. */
uint32_t AOUT_AV_Stop(uint32_t eSource);

#endif

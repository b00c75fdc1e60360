/*
 * Analog front ends: reception of analog television up to picture and sound carrier. What becomes
 * of the colour and the sound is qlx_sif.h.
 *
 * Tuning is asynchronous: QLX_AFESetTuningParam returns at once, both locks are gone, and when the
 * front end has decided, one QLX_EVENT_ANALOG_SIGNAL_LOCKED comes, with a signal or without. The
 * front ends are numbered as the tuners (QLX_TUNER_0 to QLX_TUNER_3) and independent of them and of
 * each other. Any thread may call, callbacks included; no call waits for a running callback but
 * QLX_AFEUnRegisterCallback, QLX_AFEClose and QLX_AFEDeInit.
 *
 * Wrong order is answered with QLX_FAILED, a front end that does not exist or a null pointer with
 * QLX_AFE_ERR_INVALID_PARA.
 */
#ifndef PLATFORM_QLX_AFE_H
#define PLATFORM_QLX_AFE_H

#include "platform/qlx_tuner.h"
#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_AFEError {
    QLX_AFE_ERR_INVALID_PARA = 0x101701,
};

enum QLX_AFETuneType {
    /** The frequency is that of a channel. */
    QLX_AFE_TUNE_TYPE_CHANNEL_CHANGE = 0,
    /** A step of a search. */
    QLX_AFE_TUNE_TYPE_CHANNEL_SCAN = 1,
};

/** Systems of sound and picture modulation, one bit each. */
enum QLX_AnalogAudioStandard {
    QLX_ANALOG_AUDSTD_AUTO = 1,
    QLX_ANALOG_AUDSTD_BG = 2,
    /** With a second FM carrier, and with NICAM. */
    QLX_ANALOG_AUDSTD_BG_A2 = 4,
    QLX_ANALOG_AUDSTD_BG_NICAM = 8,
    QLX_ANALOG_AUDSTD_I = 16,
    QLX_ANALOG_AUDSTD_DK = 32,
    QLX_ANALOG_AUDSTD_DK_A2 = 64,
    QLX_ANALOG_AUDSTD_DK_NICAM = 128,
    QLX_ANALOG_AUDSTD_L = 256,
    QLX_ANALOG_AUDSTD_M = 512,
    QLX_ANALOG_AUDSTD_M_BTSC = 1024,
    QLX_ANALOG_AUDSTD_M_A2 = 2048,
    QLX_ANALOG_AUDSTD_M_EIAJ = 4096,
    QLX_ANALOG_AUDSTD_N = 8192,
};

/** Colour systems, one bit each. */
enum QLX_AnalogColorStandard {
    QLX_ANALOG_CLRSTD_AUTO = 1,
    QLX_ANALOG_CLRSTD_NTSC = 2,
    QLX_ANALOG_CLRSTD_PAL_M = 4,
    QLX_ANALOG_CLRSTD_NTSC443 = 8,
    QLX_ANALOG_CLRSTD_PAL = 16,
    QLX_ANALOG_CLRSTD_PAL_N = 32,
    QLX_ANALOG_CLRSTD_PAL_60 = 64,
    QLX_ANALOG_CLRSTD_PAL_NC = 128,
    QLX_ANALOG_CLRSTD_SECAM = 256,
};

/**
 * How far the picture carrier lies from where it should: the four bits of the discriminator, in
 * steps of 25 kHz. MINUS: tuned below the carrier. Beyond the last step it stays there.
 */
enum QLX_AfcDistance {
    QLX_AFC_MINUS_12p5KHz = 0,
    QLX_AFC_MINUS_37p5KHz = 1,
    QLX_AFC_MINUS_62p5KHz = 2,
    QLX_AFC_MINUS_87p5KHz = 3,
    QLX_AFC_MINUS_112p5KHz = 4,
    QLX_AFC_MINUS_137p5KHz = 5,
    QLX_AFC_MINUS_162p5KHz = 6,
    QLX_AFC_MINUS_187p5KHz = 7,
    QLX_AFC_PLUS_187p5KHz = 8,
    QLX_AFC_PLUS_162p5KHz = 9,
    QLX_AFC_PLUS_137p5KHz = 10,
    QLX_AFC_PLUS_112p5KHz = 11,
    QLX_AFC_PLUS_87p5KHz = 12,
    QLX_AFC_PLUS_62p5KHz = 13,
    QLX_AFC_PLUS_37p5KHz = 14,
    QLX_AFC_PLUS_12p5KHz = 15,
};

/** What to tune to. */
typedef struct QLX_AnalogTuningParams {
    uint32_t Frequency;     /**< Picture carrier, kHz. */
    uint32_t eTuneType;     /**< QLX_AFETuneType. */
    uint32_t AudioStandard; /**< QLX_AnalogAudioStandard; 0 as QLX_ANALOG_AUDSTD_AUTO. */
    uint32_t ColorStandard; /**< QLX_AnalogColorStandard; 0 as QLX_ANALOG_CLRSTD_AUTO. */
} QLX_AnalogTuningParams;
QLX_RECORD_SIZE(QLX_AnalogTuningParams, 16);

/** What is received, at the moment of the call. */
typedef struct QLX_AnalogSignalStatus {
    uint32_t uReserved0;
    uint32_t TunedFrequency; /**< kHz, as tuned. */
    uint32_t uReserved1;
    uint32_t bVideoDecoderLock; /**< QLX_TRUE: the video decoder has found the synchronisation. */
    uint32_t bVifLock;          /**< QLX_TRUE: the intermediate frequency stage has the carrier. */
    uint32_t uReserved2;
    uint32_t eAFCDistance; /**< QLX_AfcDistance. */
} QLX_AnalogSignalStatus;
QLX_RECORD_SIZE(QLX_AnalogSignalStatus, 28);

enum QLX_AnalogEvent {
    /** The sound's mode has changed: mono, stereo, two languages. */
    QLX_EVENT_ANALOG_MTS_CHANGED = 1,
    /** The data word is 1 for locked, 0 for no signal. */
    QLX_EVENT_ANALOG_SIGNAL_LOCKED = 2,
};

/**
 * Event of a front end. Runs on a thread of the library.
 * @param eTunerId   the front end
 * @param pUserData  as registered
 * @param eEvent     QLX_AnalogEvent
 * @param pData      the event's data word, 32 bits
 */
typedef void (*QLX_AFECallback)(uint32_t eTunerId, void* pUserData, uint32_t eEvent, void* pData);

/** Initialises a front end; a repeated call is a success.
 *  @param eTunerId  QLX_TUNER_0 to QLX_TUNER_3 */
int32_t QLX_AFEInit(uint32_t eTunerId);

/** Ends a front end and closes it; a success also without init. */
int32_t QLX_AFEDeInit(uint32_t eTunerId);

/** Opens a front end; an open one stays as it is. QLX_FAILED before init. */
int32_t QLX_AFEOpen(uint32_t eTunerId);

/** Closes a front end; callback and tuning end with it. QLX_FAILED when it is not open. */
int32_t QLX_AFEClose(uint32_t eTunerId);

/** Registers the receiver of an open front end's events, in place of an earlier one. */
int32_t QLX_AFERegisterCallback(uint32_t eTunerId, void* pUserData, QLX_AFECallback callback);

/** Ends the events; a success also when none is registered. Waits for a running callback, unless it
 *  is called by one. */
int32_t QLX_AFEUnRegisterCallback(uint32_t eTunerId, QLX_AFECallback callback);

/** Starts a tuning of an open front end and returns at once. Returns 0, also for a frequency
 * without a signal; QLX_AFE_ERR_INVALID_PARA for an unknown tune type. */
int32_t QLX_AFESetTuningParam(uint32_t eTunerId, const QLX_AnalogTuningParams* pstTuningParams);

/** Gives the frequency and tune type as tuned, and the standards in force: those of the tuning
 *  record, in place of one that was left open what the station has. All zero before a tuning. */
int32_t QLX_AFEGetTuningParam(uint32_t eTunerId, QLX_AnalogTuningParams* pstTuningParams);

/** Fills the signal status of an open front end, tuned or not. */
int32_t QLX_AFEGetSignalStatus(uint32_t eTunerId, QLX_AnalogSignalStatus* pstSignalStatus);

#ifdef __cplusplus
}
#endif

#endif

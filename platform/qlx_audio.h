/*
 * Audio decoders.
 *
 * As the video decoders (qlx_video.h): open, register, start, and the reverse; the same promises
 * about threads, callbacks and stops. Volume and mute are those of the decoder, ahead of the
 * outputs (which have their own), and outlast a close; they begin with the service, at full volume
 * and unmuted.
 *
 * Results: 0; QLX_FAILED for a call in the wrong order; QLX_AUDIO_ERR_INVALID_PARA for a decoder
 * that does not exist, a null pointer, or a value out of range. Functions of one argument
 * `eAudioDev` take QLX_AUDIODEV_NUMBER_0 to _3.
 */
#ifndef PLATFORM_QLX_AUDIO_H
#define PLATFORM_QLX_AUDIO_H

#include <stddef.h>

#include "platform/qlx_source.h"
#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_AudioError {
    QLX_AUDIO_ERR_INVALID_PARA = 0x100901,
};

enum QLX_AudioDevNumber {
    QLX_AUDIODEV_NUMBER_0 = 0,
    QLX_AUDIODEV_NUMBER_1 = 1,
    QLX_AUDIODEV_NUMBER_2 = 2,
    QLX_AUDIODEV_NUMBER_3 = 3,
    QLX_AUDIODEV_NUMBER_MAX = 4,
};

/** What of a decoder's sound a volume or mute concerns. */
enum QLX_AudioSource {
    QLX_AUDIO_SOURCE_MAIN = 0,
    /** The sound of the players. */
    QLX_AUDIO_SOURCE_PLAYER = 6,
    QLX_AUDIO_SOURCE_MAX = 7,
};

/** Coded formats, one bit each. */
enum QLX_AudioFormat {
    /** Nothing coded, or not told: external and analog sources. */
    QLX_AUDIO_FORMAT_NONE = 0,
    /** MPEG-1 and MPEG-2 audio of all layers. */
    QLX_AUDIO_FORMAT_MPEG = 1,
    QLX_AUDIO_FORMAT_AC3 = 2,
    QLX_AUDIO_FORMAT_EAC3 = 4,
    QLX_AUDIO_FORMAT_AAC = 8,
    QLX_AUDIO_FORMAT_HEAAC = 262144,
    QLX_AUDIO_FORMAT_AC4 = 2097152,
};

/** What a decoder reports, one bit each, and what the event data of its callback points to. */
enum QLX_AudioEvent {
    /** Data that do not decode; a word. Told now and then, not frame by frame. */
    QLX_EVENT_AUDIO_DECODE_ERROR = 1,
    /** The decoder has stopped; a word. */
    QLX_EVENT_AUDIO_STOP_DONE = 2,
    /** Something of the sound has changed, or there is some, or none any more: QLX_AudioDecInfo. */
    QLX_EVENT_AUDIO_INFO_CHANGE = 4,
    /** The source has ended; a word. */
    QLX_EVENT_AUDIO_END_OF_STREAM = 8,
};

enum QLX_AudioPresence {
    QLX_AUDIO_PRESENT = 1,
    QLX_AUDIO_NOT_PRESENT = 3,
};

/** Channels of a sound, those in front and those behind; the low frequency one is told beside. */
enum QLX_AudioChannelInfo {
    QLX_AUDIO_CHANNEL_1_PLUS_1 = 0,
    QLX_AUDIO_CHANNEL_1_0 = 1,
    QLX_AUDIO_CHANNEL_2_0 = 2,
    QLX_AUDIO_CHANNEL_3_0 = 3,
    QLX_AUDIO_CHANNEL_2_1 = 4,
    QLX_AUDIO_CHANNEL_3_1 = 5,
    QLX_AUDIO_CHANNEL_2_2 = 6,
    /** With a low frequency channel: 5.1. */
    QLX_AUDIO_CHANNEL_3_2 = 7,
    QLX_AUDIO_CHANNEL_OTHER = 8,
    QLX_AUDIO_CHANNEL_NONE = 9,
};

/** Which of two channels goes to which loudspeaker. */
typedef enum QLX_AudioDigitalAudioMode_e {
    QLX_AUDIO_DIGITAL_MODE_STEREO = 1,
    QLX_AUDIO_DIGITAL_MODE_TRACK_A = 2,
    QLX_AUDIO_DIGITAL_MODE_TRACK_B = 3,
    /** The sum on both. */
    QLX_AUDIO_DIGITAL_MODE_TRACK_MIX = 4,
    /** A on the left, B on the right. */
    QLX_AUDIO_DIGITAL_MODE_TRACK_BOTH = 5,
} QLX_AudioDigitalAudioMode_e;

/** Questions to QLX_AudioGetAudioInfo. */
enum QLX_AudioParamType {
    /** 1 while sound is decoded. */
    QLX_AUDIO_PARAMTYPE_DEC_STATUS = 0,
    /** Presentation time stamp of the sound that is played, in 90 kHz ticks. */
    QLX_AUDIO_PARAMTYPE_PTS = 1,
    QLX_AUDIO_PARAMTYPE_DIGITAL_AUDIO_INFO = 4,
};

enum QLX_AudioState {
    QLX_AUDIO_STATE_STOPPED = 0,
    QLX_AUDIO_STATE_STARTED = 1,
    QLX_AUDIO_STATE_PAUSED = 2,
};

/** Parameters of QLX_AudioSetAC4Parameters. */
enum QLX_AudioAC4Parameter {
    /** Language to prefer: 1 English, 4 Spanish, 19 Chinese; -1 none. */
    QLX_AUDIO_DOLBY_AC4_AUDIO_PREFERRED_LANGUAGE1 = 5,
    /** Identifier of the presentation to play; -1: the decoder chooses. */
    QLX_AUDIO_DOLBY_AC4_AUDIO_MD_PRESENTATION_INDEX = 7,
    /** Of the presentation with description; -1: none. */
    QLX_AUDIO_DOLBY_AC4_AUDIO_AD_PRESENTATION_INDEX = 8,
};

/** What a decoder is opened on; see QLX_VideoAttr. */
typedef struct QLX_AudioAttr {
    /** QLX_SourceType. */
    uint32_t eSourceType;
    /** Number of the tuner (ATV), the port (external inputs) or the demultiplexer. */
    uint32_t uSourceIndex;
    /** QLX_InputClass. */
    uint32_t eInputClass;
} QLX_AudioAttr;
QLX_RECORD_SIZE(QLX_AudioAttr, 12);

/** What a decoder can do. */
typedef struct QLX_AudioCapability {
    /** QLX_AudioFormat bits. */
    uint32_t uFormats;
    uint32_t uMaxChannels;
    uint32_t uReserved[6];
} QLX_AudioCapability;
QLX_RECORD_SIZE(QLX_AudioCapability, 32);

/** What a decoder knows of its sound. All words but the first two and eChannelInfo are zero without
 *  one; reserved words always. */
typedef struct QLX_AudioDecInfo {
    /** QLX_AudioPresence. */
    uint32_t audioPresent;
    /** QLX_AUDIO_NOT_PRESENT without a sound. */
    uint32_t eSecondPresent;
    /** QLX_AudioFormat; QLX_AUDIO_FORMAT_NONE on external and analog sources. */
    uint32_t eAudioFormat;
    uint32_t uWord4;
    /** QLX_AudioChannelInfo. */
    uint32_t eChannelInfo;
    uint32_t bLfePresent;
    uint32_t uReserved1;
    /** 1 to 5. */
    uint32_t eAudioAttrA;
    /** Not zero. */
    uint32_t uAudioAttrB;
    /** 1 to 9. */
    uint32_t eAudioAttrC;
    /** Not zero. */
    uint32_t uAudioAttrD;
    uint32_t uWord12;
    uint32_t uReserved2[2];
} QLX_AudioDecInfo;
QLX_RECORD_SIZE(QLX_AudioDecInfo, 56);

/** The answer to a question of QLX_AudioGetAudioInfo. */
typedef struct QLX_AudioInfo {
    /** QLX_AudioParamType that is answered. */
    uint32_t eParamType;
    uint32_t uReserved;
    union {
        uint64_t uPts;
        /** Of QLX_AUDIO_PARAMTYPE_DEC_STATUS. */
        uint32_t eStatus;
        QLX_AudioDecInfo stAudioDecInfo;
    };
} QLX_AudioInfo;
QLX_RECORD_SIZE(QLX_AudioInfo, 64);

#ifdef __cplusplus
static_assert(offsetof(QLX_AudioDecInfo, eAudioAttrA) == 28, "");
static_assert(offsetof(QLX_AudioDecInfo, uWord12) == 44, "");
static_assert(offsetof(QLX_AudioInfo, stAudioDecInfo) == 8, "");
#endif

/**
 * The callback of a decoder.
 * @param eAudioDev  the decoder
 * @param pUserdata  as registered
 * @param eEvent     one QLX_AudioEvent
 * @param pData      see the events; valid during the call
 */
typedef void (*QLX_AudioCallback)(uint32_t eAudioDev, void* pUserdata, uint32_t eEvent,
                                  void* pData);

/** Initialises the service; a repeated call is a success. Returns 0. */
int32_t QLX_AudioInit(void);

/** Ends the service, whatever the number of initialisations was: decoders are stopped and closed,
 *  and their callbacks forgotten. Returns 0. */
int32_t QLX_AudioDeInit(void);

/** @param puNum  receives the number of audio decoders
 *  @return 0; QLX_FAILED before init; QLX_AUDIO_ERR_INVALID_PARA */
int32_t QLX_AudioGetDevNum(uint8_t* puNum);

/** Opens a decoder on a source that is up, as QLX_VideoOpen does. */
int32_t QLX_AudioOpen(uint32_t eAudioDev, const QLX_AudioAttr* pstAudioAttr);

/** Stops and closes a decoder and forgets its callback; one that is not open stays so. Returns 0;
 *  QLX_FAILED before init; QLX_AUDIO_ERR_INVALID_PARA. */
int32_t QLX_AudioClose(uint32_t eAudioDev);

/** Reads what an open decoder can do. Returns 0; QLX_FAILED; QLX_AUDIO_ERR_INVALID_PARA. */
int32_t QLX_AudioGetCapability(uint32_t eAudioDev, QLX_AudioCapability* pstAudioCapability);

/** Sets the callback of an open decoder that has none; `pUserdata` comes back with every call.
 *  Returns 0; QLX_FAILED; QLX_AUDIO_ERR_INVALID_PARA. */
int32_t QLX_AudioRegisterCallback(uint32_t eAudioDev, void* pUserdata, QLX_AudioCallback callback);

/** Takes the callback away. Returns 0; QLX_FAILED when it is not the one that is registered;
 *  QLX_AUDIO_ERR_INVALID_PARA. */
int32_t QLX_AudioUnRegisterCallback(uint32_t eAudioDev, QLX_AudioCallback callback);

/**
 * Starts an open decoder.
 * @param eAudioFormat  QLX_AudioFormat; QLX_AUDIO_FORMAT_NONE on external and analog sources
 * @param uPid          PID of the elementary stream; one above 8191 is taken, and never comes
 * @return 0; QLX_FAILED when it is not open or runs already; QLX_AUDIO_ERR_INVALID_PARA
 */
int32_t QLX_AudioStart(uint32_t eAudioDev, uint32_t eAudioFormat, uint32_t uPid);

/** Stops an open decoder and its description; one that does not run stays so, and reports nothing.
 *  Returns 0; QLX_FAILED; QLX_AUDIO_ERR_INVALID_PARA. */
int32_t QLX_AudioStop(uint32_t eAudioDev);

/** Drops what a running decoder has taken in: its sound goes, and comes again with what follows.
 *  Returns 0; QLX_FAILED; QLX_AUDIO_ERR_INVALID_PARA. */
int32_t QLX_AudioFlush(uint32_t eAudioDev);

/** Hold the sound of a running decoder, and let it run on with what is then on the air.
 *  Return 0, also when nothing changes; QLX_FAILED; QLX_AUDIO_ERR_INVALID_PARA. */
int32_t QLX_AudioPause(uint32_t eAudioDev);
int32_t QLX_AudioResume(uint32_t eAudioDev);

/** @param peAudioState  receives the QLX_AudioState of an open decoder
 *  @return 0; QLX_FAILED; QLX_AUDIO_ERR_INVALID_PARA */
int32_t QLX_AudioGetState(uint32_t eAudioDev, uint32_t* peAudioState);

/**
 * Asks an open decoder; one that has no sound answers zeros and QLX_AUDIO_NOT_PRESENT.
 * @param eParamType    QLX_AudioParamType
 * @param pstAudioInfo  receives the answer, with the question in its first word
 * @return 0; QLX_FAILED; QLX_AUDIO_ERR_INVALID_PARA
 */
int32_t QLX_AudioGetAudioInfo(uint32_t eAudioDev, uint32_t eParamType, QLX_AudioInfo* pstAudioInfo);

/* Volume 0 to 100 and mute of a source, of a decoder that is open or not. They need no more than
 * the service. Return 0; QLX_FAILED before init; QLX_AUDIO_ERR_INVALID_PARA. */
int32_t QLX_AudioSetVolume(uint32_t eAudioDev, uint32_t eAudioSource, uint32_t uVolume);
int32_t QLX_AudioSetMute(uint32_t eAudioDev, uint32_t eAudioSource, uint32_t bMute);

/** Chooses among the channels, 1 to 5 (QLX_AudioDigitalAudioMode_e), of an open decoder.
 *  Returns 0; QLX_FAILED; QLX_AUDIO_ERR_INVALID_PARA. */
int32_t QLX_AudioSetDigitalAudioMode(uint32_t eAudioDev, uint32_t eDigitalAudioMode);

/**
 * Plays a description along with the sound of a running decoder.
 * @param eAudioFormat  QLX_AudioFormat
 * @param uPid          PID of the description
 * @return 0; QLX_FAILED when the decoder does not run or has a description already;
 *         QLX_AUDIO_ERR_INVALID_PARA
 */
int32_t QLX_AudioStartDescription(uint32_t eAudioDev, uint32_t eAudioFormat, uint32_t uPid);

/** Ends the description, if there is one. Returns 0; QLX_FAILED when the decoder is not open;
 *  QLX_AUDIO_ERR_INVALID_PARA. */
int32_t QLX_AudioStopDescription(uint32_t eAudioDev);

/* Gain of the samples ahead of the volume, 0 to 255, of an open decoder; 128 leaves them as they
 * are. Return 0; QLX_FAILED; QLX_AUDIO_ERR_INVALID_PARA. */
int32_t QLX_AudioSetPrescaler(uint32_t eAudioDev, uint32_t uValue);
int32_t QLX_AudioGetPrescaler(uint32_t eAudioDev, uint8_t* puValue);

/** Sets what is chosen of an AC-4 stream by an open decoder.
 *  @param eParameter  QLX_AudioAC4Parameter
 *  @param sValue      see there; -1: no choice
 *  @return 0; QLX_FAILED; QLX_AUDIO_ERR_INVALID_PARA */
int32_t QLX_AudioSetAC4Parameters(uint32_t eAudioDev, uint32_t eParameter, int32_t sValue);

#ifdef __cplusplus
}
#endif

#endif

/*
 * Audio outputs: the sinks that the sound of the decoders goes to.
 *
 * Each sink has an output device of its own. A sink that is open, unmuted and not at volume 0 plays
 * what the audio decoder plays.
 *
 * Any thread may call, callbacks included. Wrong order is answered with QLX_FAILED, a bad number
 * with QLX_AOUT_ERR_INVALID_PARA.
 */
#ifndef PLATFORM_QLX_AOUT_H
#define PLATFORM_QLX_AOUT_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_AOutDev {
    QLX_AOUTDEV_NUMBER_0 = 0,
    QLX_AOUTDEV_NUMBER_1 = 1,
    QLX_AOUTDEV_NUMBER_2 = 2,
    QLX_AOUTDEV_NUMBER_3 = 3,
    QLX_AOUTDEV_NUMBER_4 = 4,
    QLX_AOUTDEV_NUMBER_5 = 5,
    QLX_AOUTDEV_NUMBER_MAX = 6,
};

enum QLX_AOutError {
    QLX_AOUT_ERR_INVALID_PARA = 0x100C01,
};

/** Sinks; each has the output device of its number less one. */
enum QLX_OutputSource {
    QLX_OUTPUT_SOURCE_SPEAKER = 1,
    QLX_OUTPUT_SOURCE_HEADPHONE = 2,
    QLX_OUTPUT_SOURCE_SPDIF = 3,
    QLX_OUTPUT_SOURCE_HDMI = 4,
    QLX_OUTPUT_SOURCE_LINEOUT = 5,
    QLX_OUTPUT_SOURCE_BT = 6,
};

/** Initialises the service; a repeated call is a success. Returns 0. */
int32_t QLX_AOutInit(void);

/** Ends the service and closes what is open; a success also without init. Returns 0. */
int32_t QLX_AOutDeInit(void);

/**
 * Opens an output device on its sink; an open one stays as it is.
 * @param eDevId  QLX_AOUTDEV_NUMBER_0 to QLX_AOUTDEV_NUMBER_5
 * @param eSink   QLX_OutputSource, that of the device
 * @return 0; QLX_FAILED before init; QLX_AOUT_ERR_INVALID_PARA
 */
int32_t QLX_AOutOpen(uint32_t eDevId, uint32_t eSink);

/** Closes an output device. A success also when it is not open. Returns 0;
 *  QLX_AOUT_ERR_INVALID_PARA. */
int32_t QLX_AOutClose(uint32_t eDevId);

/** Sets the volume; needs init alone. @param uVolume  0 silent to 100 full */
int32_t QLX_AOutSetVolume(uint32_t eDevId, uint32_t uVolume);

/** Silences a sink; needs init alone. A sink is muted until it is told otherwise.
 *  @param bMute  QLX_TRUE or QLX_FALSE */
int32_t QLX_AOutSetMute(uint32_t eDevId, uint32_t bMute);

/** Mixes audio description into the sink's sound; needs init alone.
 *  @param bEnable  QLX_TRUE or QLX_FALSE */
int32_t QLX_AOutSetAudioDescription(uint32_t eDevId, uint32_t bEnable);

/** Sets the volume of the description in the mix; needs init alone.
 *  @param uVolume  0 silent to 100 full */
int32_t QLX_AOutSetAudioDescriptionVolume(uint32_t eDevId, uint32_t uVolume);

#ifdef __cplusplus
}
#endif

#endif

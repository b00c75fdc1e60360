/*
 * Sound and colour decoding behind an analog front end (qlx_afe.h), of which it has the number, the
 * life and the error codes: all calls need the front end open.
 */
#ifndef PLATFORM_QLX_SIF_H
#define PLATFORM_QLX_SIF_H

#include "platform/qlx_afe.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_SndOutMode {
    QLX_SND_OUT_MODE_MONO = 0,
    QLX_SND_OUT_MODE_STEREO = 1,
    QLX_SND_OUT_MODE_DUAL_A = 2,
    QLX_SND_OUT_MODE_DUAL_B = 3,
    QLX_SND_OUT_MODE_DUAL_AB = 4,
    QLX_SND_OUT_MODE_BTSC_MONO = 5,
    QLX_SND_OUT_MODE_BTSC_STEREO = 6,
    QLX_SND_OUT_MODE_BTSC_SAP = 7,
    QLX_SND_OUT_MODE_BTSC_MONO_SAP = 8,
    QLX_SND_OUT_MODE_NICAM_MONO = 9,
    QLX_SND_OUT_MODE_NICAM_STEREO = 10,
    QLX_SND_OUT_MODE_NICAM_DUAL_A = 11,
    QLX_SND_OUT_MODE_NICAM_DUAL_B = 12,
    QLX_SND_OUT_MODE_NICAM_DUAL_AB = 13,
};

/** Tells the colour system that is decoded, QLX_AnalogColorStandard; 0 without a signal. */
int32_t QLX_SIFGetColorStdDetection(uint32_t eTunerId, uint32_t* peColorStandard);

/** Tells the sound system that is decoded, QLX_AnalogAudioStandard; 0 without a signal. */
int32_t QLX_SIFGetAudioStdDetection(uint32_t eTunerId, uint32_t* peAudioStandard);

/** Decodes sound by this system until the next tuning. @param eAudioStandard
 * QLX_AnalogAudioStandard; QLX_ANALOG_AUDSTD_AUTO ends it */
int32_t QLX_SIFSetAudioStdForce(uint32_t eTunerId, uint32_t eAudioStandard);

/** Decodes colour by this system until the next tuning. @param eColorStandard
 *  QLX_AnalogColorStandard; QLX_ANALOG_CLRSTD_AUTO ends it */
int32_t QLX_SIFSetColorStdForce(uint32_t eTunerId, uint32_t eColorStandard);

/** Tells the mode in which sound is put out, QLX_SndOutMode. */
int32_t QLX_SIFGetSndOutMode(uint32_t eTunerId, uint32_t* peMode);

/** Chooses the mode in which sound is put out, until the next tuning or change of the station's
 *  sound. @param eMode  QLX_SndOutMode */
int32_t QLX_SIFSetSndOutMode(uint32_t eTunerId, uint32_t eMode);

#ifdef __cplusplus
}
#endif

#endif

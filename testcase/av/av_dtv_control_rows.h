/* Controls that broadcasts alone have: rows of AV-DTV, and their bodies. Each plays, does its work
 * and stops whatever failed, and answers the case's result. */
#ifndef TESTCASE_AV_AV_DTV_CONTROL_ROWS_H
#define TESTCASE_AV_AV_DTV_CONTROL_ROWS_H

#include <stdint.h>

#include "testcase/av/av_case.h"

/** Plays, and has the decoder's information judged. */
uint32_t AV_DtvGetVideoInfo(const char* name, const AvSource& stSource);

// Variants.

/** The clock runs free, follows the stream's reference, follows the sound. */
uint32_t AV_DtvSetSyncMode(const char* name, const AvSelector& selector);
uint32_t AV_DtvGetStc(const char* name, const AvSelector& selector);
/** All five, on a sound alone. */
uint32_t AV_DtvSetAudioMode(const char* name, const AvSelector& selector);
/** On the channel that a standard (of DVB) has for it, which the tuner looks up in the table of its
 *  own system. */
uint32_t AV_DtvAudioDescription(const char* name, const AvSelector& selector, AvStandard standard);
/** The same, heard in speaker and headphone. */
uint32_t AV_DtvAudioDescVolume(const char* name, const AvSelector& selector, AvStandard standard);
/** Each value is read back. */
uint32_t AV_DtvSetAudioPrescaler(const char* name, const AvSelector& selector);

// Cases of their own, on tuner and demultiplexer 0.

/** Ten rounds of channel 0 of each. */
uint32_t AV_DtvSwitchDvbTAndDvbC(const char* name);

// Manual, on the channel that the console reads for the case.

/** Asks four times; the last answer is the verdict. */
uint32_t AV_DtvPauseResume(const char* name);
/** Sets what the operator types until 999. */
uint32_t AV_DtvSetTypedAudioMode(const char* name);

// clang-format off
// What the decoder tells of a picture of 3840 by 2160. The one that runs by itself plays the configured
// channel; which of them ask an operator for such a stream is an assumption, held by the count alone.
#define AV_DTV_4K_ROWS(X) \
    /* case                            flag    description                                                       body */ \
    X(TC_AV_DtvGet4KHDRVideoInfo_001, AUTO,   "Get 4K-HDR video info from video-0 in source (Tuner-0,Demux-0)", AV_DtvGetVideoInfo(__func__, AV_SelectSource(dtv00))) \
    X(TC_AV_DtvGet4KHDRVideoInfo_002, MANUAL, "Get 4K-HDR video info from video-0 in source (Tuner-1,Demux-0)", AV_DtvGetVideoInfo(__func__, AV_SelectManualSource(dtv10))) \
    X(TC_AV_DtvGet4KHDRVideoInfo_003, MANUAL, "Get 4K-HDR video info from video-0 in source (Tuner-0,Demux-1)", AV_DtvGetVideoInfo(__func__, AV_SelectManualSource(dtv01))) \
    X(TC_AV_DtvGet4KHDRVideoInfo_004, MANUAL, "Get 4K-HDR video info from video-0 in source (Tuner-1,Demux-1)", AV_DtvGetVideoInfo(__func__, AV_SelectManualSource(dtv11)))

// The system time clock.
#define AV_DTV_CLOCK_ROWS(X) \
    /* case                         flag  description                                                                                          body */ \
    X(TC_AV_DtvSetSyncMode_001_01, AUTO, "Set sync mode (free run->PCR master->audio master) to video-0/audio-0 in source (Tuner-0,Demux-0)", AV_DtvSetSyncMode(__func__, dtv00)) \
    X(TC_AV_DtvSetSyncMode_001_02, AUTO, "Set sync mode (free run->PCR master->audio master) to video-0/audio-0 in source (Tuner-1,Demux-0)", AV_DtvSetSyncMode(__func__, dtv10)) \
    X(TC_AV_DtvSetSyncMode_001_03, AUTO, "Set sync mode (free run->PCR master->audio master) to video-0/audio-0 in source (Tuner-0,Demux-1)", AV_DtvSetSyncMode(__func__, dtv01)) \
    X(TC_AV_DtvSetSyncMode_001_04, AUTO, "Set sync mode (free run->PCR master->audio master) to video-0/audio-0 in source (Tuner-1,Demux-1)", AV_DtvSetSyncMode(__func__, dtv11)) \
    X(TC_AV_DtvGetStc_001_01,      AUTO, "Get STC from video-0/audio-0 in source (Tuner-0,Demux-0)",                                          AV_DtvGetStc(__func__, dtv00)) \
    X(TC_AV_DtvGetStc_001_02,      AUTO, "Get STC from video-0/audio-0 in source (Tuner-1,Demux-0)",                                          AV_DtvGetStc(__func__, dtv10)) \
    X(TC_AV_DtvGetStc_001_03,      AUTO, "Get STC from video-0/audio-0 in source (Tuner-0,Demux-1)",                                          AV_DtvGetStc(__func__, dtv01)) \
    X(TC_AV_DtvGetStc_001_04,      AUTO, "Get STC from video-0/audio-0 in source (Tuner-1,Demux-1)",                                          AV_DtvGetStc(__func__, dtv11))

// Which of two channels goes where.
#define AV_DTV_AUDIO_MODE_ROWS(X) \
    /* case                          flag  description                                                                                  body */ \
    X(TC_AV_DtvSetAudioMode_001_01, AUTO, "Set audio mode (stereo->trackA->trackB->mix->both) to audio-0 in source (Tuner-0,Demux-0)", AV_DtvSetAudioMode(__func__, dtv00)) \
    X(TC_AV_DtvSetAudioMode_001_02, AUTO, "Set audio mode (stereo->trackA->trackB->mix->both) to audio-0 in source (Tuner-1,Demux-0)", AV_DtvSetAudioMode(__func__, dtv10)) \
    X(TC_AV_DtvSetAudioMode_001_03, AUTO, "Set audio mode (stereo->trackA->trackB->mix->both) to audio-0 in source (Tuner-0,Demux-1)", AV_DtvSetAudioMode(__func__, dtv01)) \
    X(TC_AV_DtvSetAudioMode_001_04, AUTO, "Set audio mode (stereo->trackA->trackB->mix->both) to audio-0 in source (Tuner-1,Demux-1)", AV_DtvSetAudioMode(__func__, dtv11))

// Audio description; the last of the first four is that of DVB-T again.
#define AV_DTV_DESCRIPTION_ROWS(X) \
    /* case                              flag  description                                                                      body */ \
    X(TC_AV_DtvAudioDescription_001_01, AUTO, "Start and stop audio description to audio-0 in source (Tuner-0,Demux-0,DVB-T)", AV_DtvAudioDescription(__func__, dtv00, AV_DVB_T)) \
    X(TC_AV_DtvAudioDescription_001_02, AUTO, "Start and stop audio description to audio-0 in source (Tuner-1,Demux-0,DVB-T)", AV_DtvAudioDescription(__func__, dtv10, AV_DVB_T)) \
    X(TC_AV_DtvAudioDescription_001_03, AUTO, "Start and stop audio description to audio-0 in source (Tuner-0,Demux-1,DVB-T)", AV_DtvAudioDescription(__func__, dtv01, AV_DVB_T)) \
    X(TC_AV_DtvAudioDescription_001_04, AUTO, "Start and stop audio description to audio-0 in source (Tuner-1,Demux-1,DVB-T)", AV_DtvAudioDescription(__func__, dtv11, AV_DVB_T)) \
    X(TC_AV_DtvAudioDescription_002_01, AUTO, "Start and stop audio description to audio-0 in source (Tuner-0,Demux-0,DVB-C)", AV_DtvAudioDescription(__func__, dtv00, AV_DVB_C)) \
    X(TC_AV_DtvAudioDescription_002_02, AUTO, "Start and stop audio description to audio-0 in source (Tuner-1,Demux-0,DVB-C)", AV_DtvAudioDescription(__func__, dtv10, AV_DVB_C)) \
    X(TC_AV_DtvAudioDescription_002_03, AUTO, "Start and stop audio description to audio-0 in source (Tuner-0,Demux-1,DVB-C)", AV_DtvAudioDescription(__func__, dtv01, AV_DVB_C)) \
    X(TC_AV_DtvAudioDescription_002_04, AUTO, "Start and stop audio description to audio-0 in source (Tuner-1,Demux-1,DVB-C)", AV_DtvAudioDescription(__func__, dtv11, AV_DVB_C)) \
    X(TC_AV_DtvAudioDescription_003_01, AUTO, "Start and stop audio description to audio-0 in source (Tuner-0,Demux-0,DVB-S)", AV_DtvAudioDescription(__func__, dtv00, AV_DVB_S)) \
    X(TC_AV_DtvAudioDescription_003_02, AUTO, "Start and stop audio description to audio-0 in source (Tuner-1,Demux-0,DVB-S)", AV_DtvAudioDescription(__func__, dtv10, AV_DVB_S)) \
    X(TC_AV_DtvAudioDescription_003_03, AUTO, "Start and stop audio description to audio-0 in source (Tuner-0,Demux-1,DVB-S)", AV_DtvAudioDescription(__func__, dtv01, AV_DVB_S)) \
    X(TC_AV_DtvAudioDescription_003_04, AUTO, "Start and stop audio description to audio-0 in source (Tuner-1,Demux-1,DVB-S)", AV_DtvAudioDescription(__func__, dtv11, AV_DVB_S)) \
    X(TC_AV_DtvAudioDescription_004_01, AUTO, "Start and stop audio description to audio-0 in source (Tuner-0,Demux-0,DVB-T)", AV_DtvAudioDescription(__func__, dtv00, AV_DVB_T)) \
    X(TC_AV_DtvAudioDescription_004_02, AUTO, "Start and stop audio description to audio-0 in source (Tuner-1,Demux-0,DVB-T)", AV_DtvAudioDescription(__func__, dtv10, AV_DVB_T)) \
    X(TC_AV_DtvAudioDescription_004_03, AUTO, "Start and stop audio description to audio-0 in source (Tuner-0,Demux-1,DVB-T)", AV_DtvAudioDescription(__func__, dtv01, AV_DVB_T)) \
    X(TC_AV_DtvAudioDescription_004_04, AUTO, "Start and stop audio description to audio-0 in source (Tuner-1,Demux-1,DVB-T)", AV_DtvAudioDescription(__func__, dtv11, AV_DVB_T)) \
    X(TC_AV_DtvAudioDescVolume_001_01,  AUTO, "Set audio description volume to to audio-0 in source (Tuner-0,Demux-0,DVB-T)",  AV_DtvAudioDescVolume(__func__, dtv00, AV_DVB_T)) \
    X(TC_AV_DtvAudioDescVolume_001_02,  AUTO, "Set audio description volume to to audio-0 in source (Tuner-1,Demux-0,DVB-T)",  AV_DtvAudioDescVolume(__func__, dtv10, AV_DVB_T)) \
    X(TC_AV_DtvAudioDescVolume_001_03,  AUTO, "Set audio description volume to to audio-0 in source (Tuner-0,Demux-1,DVB-T)",  AV_DtvAudioDescVolume(__func__, dtv01, AV_DVB_T)) \
    X(TC_AV_DtvAudioDescVolume_001_04,  AUTO, "Set audio description volume to to audio-0 in source (Tuner-1,Demux-1,DVB-T)",  AV_DtvAudioDescVolume(__func__, dtv11, AV_DVB_T)) \
    X(TC_AV_DtvAudioDescVolume_002_01,  AUTO, "Set audio description volume to to audio-0 in source (Tuner-0,Demux-0,DVB-C)",  AV_DtvAudioDescVolume(__func__, dtv00, AV_DVB_C)) \
    X(TC_AV_DtvAudioDescVolume_002_02,  AUTO, "Set audio description volume to to audio-0 in source (Tuner-1,Demux-0,DVB-C)",  AV_DtvAudioDescVolume(__func__, dtv10, AV_DVB_C)) \
    X(TC_AV_DtvAudioDescVolume_002_03,  AUTO, "Set audio description volume to to audio-0 in source (Tuner-0,Demux-1,DVB-C)",  AV_DtvAudioDescVolume(__func__, dtv01, AV_DVB_C)) \
    X(TC_AV_DtvAudioDescVolume_002_04,  AUTO, "Set audio description volume to to audio-0 in source (Tuner-1,Demux-1,DVB-C)",  AV_DtvAudioDescVolume(__func__, dtv11, AV_DVB_C)) \
    X(TC_AV_DtvAudioDescVolume_003_01,  AUTO, "Set audio description volume to to audio-0 in source (Tuner-0,Demux-0,DVB-S)",  AV_DtvAudioDescVolume(__func__, dtv00, AV_DVB_S)) \
    X(TC_AV_DtvAudioDescVolume_003_02,  AUTO, "Set audio description volume to to audio-0 in source (Tuner-1,Demux-0,DVB-S)",  AV_DtvAudioDescVolume(__func__, dtv10, AV_DVB_S)) \
    X(TC_AV_DtvAudioDescVolume_003_03,  AUTO, "Set audio description volume to to audio-0 in source (Tuner-0,Demux-1,DVB-S)",  AV_DtvAudioDescVolume(__func__, dtv01, AV_DVB_S)) \
    X(TC_AV_DtvAudioDescVolume_003_04,  AUTO, "Set audio description volume to to audio-0 in source (Tuner-1,Demux-1,DVB-S)",  AV_DtvAudioDescVolume(__func__, dtv11, AV_DVB_S))

// The gain ahead of the volume.
#define AV_DTV_PRESCALER_ROWS(X) \
    /* case                               flag  description                                                                     body */ \
    X(TC_AV_DtvSetAudioPrescaler_001_01, AUTO, "Set audio prescaler (0->50->150->255) to audio-0 in source (Tuner-0,Demux-0)", AV_DtvSetAudioPrescaler(__func__, dtv00)) \
    X(TC_AV_DtvSetAudioPrescaler_001_02, AUTO, "Set audio prescaler (0->50->150->255) to audio-0 in source (Tuner-1,Demux-0)", AV_DtvSetAudioPrescaler(__func__, dtv10)) \
    X(TC_AV_DtvSetAudioPrescaler_001_03, AUTO, "Set audio prescaler (0->50->150->255) to audio-0 in source (Tuner-0,Demux-1)", AV_DtvSetAudioPrescaler(__func__, dtv01)) \
    X(TC_AV_DtvSetAudioPrescaler_001_04, AUTO, "Set audio prescaler (0->50->150->255) to audio-0 in source (Tuner-1,Demux-1)", AV_DtvSetAudioPrescaler(__func__, dtv11))

// Cases of their own.
#define AV_DTV_SINGLE_CONTROL_ROWS(X) \
    /* case                            flag    description                                                                                            body */ \
    X(TC_AV_DtvSwitchDVBTandDVBC_001, AUTO,   "Switch DVBT and DVBC for 10 times in DTV (Tuner-0,Demux-0) with audio-0 and video-0",                 AV_DtvSwitchDvbTAndDvbC(__func__)) \
    X(TC_AV_DtvPauseResume_001,       MANUAL, "Pause and resume video-0/audio-0",                                                                    AV_DtvPauseResume(__func__)) \
    X(TC_AV_DtvSetAudioMode_002,      MANUAL, "Set audio mode (input by the operator) to audio-0; the stream must carry two languages in one sound", AV_DtvSetTypedAudioMode(__func__))

#define AV_DTV_CONTROL_ROWS(X) \
    AV_DTV_4K_ROWS(X) \
    AV_DTV_CLOCK_ROWS(X) \
    AV_DTV_AUDIO_MODE_ROWS(X) \
    AV_DTV_DESCRIPTION_ROWS(X) \
    AV_DTV_PRESCALER_ROWS(X) \
    AV_DTV_SINGLE_CONTROL_ROWS(X)
// clang-format on

#endif

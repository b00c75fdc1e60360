/*
 * Streams of a known content, and AC-4: manual rows of AV-DTV, and their bodies. The stream is that
 * of the channel which the console reads for the case (config/common/AVDtvModule.cfg); the row
 * tells what it must carry. Each case stops what it has started whatever failed, and answers its
 * result.
 */
#ifndef TESTCASE_AV_AV_DTV_STREAM_ROWS_H
#define TESTCASE_AV_AV_DTV_STREAM_ROWS_H

#include <stdint.h>

#include <initializer_list>

#include "platform/qlx_audio.h"
#include "platform/qlx_video.h"

/** A word of a decoder's information. */
template <typename Info>
struct AvDtvField {
    const char* name;
    uint32_t (*read)(const Info& info);
};

/** What it must be. */
template <typename Info>
struct AvDtvDemand {
    const AvDtvField<Info>* field;
    /** AV_DTV_ANY: it is printed alone. */
    int64_t expected;
};
using AvDtvVideoDemand = AvDtvDemand<QLX_VideoDecInfo>;
using AvDtvAudioDemand = AvDtvDemand<QLX_AudioDecInfo>;

enum : int64_t { AV_DTV_ANY = -1 };

extern const AvDtvField<QLX_VideoDecInfo> avDtvFrameWidth;
extern const AvDtvField<QLX_VideoDecInfo> avDtvFrameHeight;
extern const AvDtvField<QLX_VideoDecInfo> avDtvInterlaced;
extern const AvDtvField<QLX_VideoDecInfo> avDtvFrameRate;
extern const AvDtvField<QLX_VideoDecInfo> avDtvColorPrimaries;
extern const AvDtvField<QLX_VideoDecInfo> avDtvAfd;
extern const AvDtvField<QLX_VideoDecInfo> avDtvSupportOverscan;
extern const AvDtvField<QLX_VideoDecInfo> avDtvFrameAspect;
extern const AvDtvField<QLX_VideoDecInfo> avDtvPictureAspect;
extern const AvDtvField<QLX_AudioDecInfo> avDtvChannelInfo;
extern const AvDtvField<QLX_AudioDecInfo> avDtvLfePresent;

/** Plays a picture alone for two seconds; the decoder's information, and the last report of a
 *  picture, must be as demanded. */
uint32_t AV_DtvCheckVideo(const char* name, std::initializer_list<AvDtvVideoDemand> demands);
/** The same of a sound. */
uint32_t AV_DtvCheckAudio(const char* name, std::initializer_list<AvDtvAudioDemand> demands);
/** The same of an AC-4 sound, of which presentation 11 is chosen. */
uint32_t AV_DtvCheckAc4Audio(const char* name, std::initializer_list<AvDtvAudioDemand> demands);

/** Plays an AC-4 sound, and chooses the presentation that the operator types, then those with audio
 *  description until 9999. */
uint32_t AV_DtvAc4Preselection(const char* name);
/** The same with the languages that are typed. */
uint32_t AV_DtvAc4Language(const char* name);

// clang-format off
#define AV_DTV_AC4_ROWS(X) \
    /* case                                                  flag    description                                                                                        body */ \
    X(TC_AV_DtvAc4AudioPreselectionV1_Manual_001,            MANUAL, "Select the main and AD preselection of audio-0; the stream must be AC-4 V1",                     AV_DtvAc4Preselection(__func__)) \
    X(TC_AV_DtvAc4AudioDescVolumeV1_Manual_001,              MANUAL, "Select the AD preselection of audio-0 and listen to its volume; the stream must be AC-4 V1",     AV_DtvAc4Preselection(__func__)) \
    X(TC_AV_DtvAc4AudioPreselectionV2_Manual_001,            MANUAL, "Select the main and AD preselection of audio-0; the stream must be AC-4 V2",                     AV_DtvAc4Preselection(__func__)) \
    X(TC_AV_DtvAc4AudioDescVolumeV2_Manual_001,              MANUAL, "Select the AD preselection of audio-0 and listen to its volume; the stream must be AC-4 V2",     AV_DtvAc4Preselection(__func__)) \
    X(TC_AV_DtvAc4AudioPreselectionV1_Manual_002,            MANUAL, "Select another main and AD preselection of audio-0; the stream must be AC-4 V1",                 AV_DtvAc4Preselection(__func__)) \
    X(TC_AV_DtvAc4AudioPreselectionV2_Manual_SwitchLanguage, MANUAL, "Switch the preferred language of audio-0; the stream must be AC-4 V2 in several languages",      AV_DtvAc4Language(__func__))

#define AV_DTV_CONTENT_ROWS(X) \
    /* case                                                   flag    description                                                                                       body */ \
    X(TC_AV_DtvCheckVideoFrameWidthAndFrameHeight_001,        MANUAL, "Check the frame width and height of video-0; the stream must be 1920*1080",                     AV_DtvCheckVideo(__func__, {{&avDtvFrameWidth, 1920}, {&avDtvFrameHeight, 1080}})) \
    X(TC_AV_DtvCheckVideoFrameWidthAndFrameHeight_002,        MANUAL, "Check the frame width and height of video-0; the stream must be 1440*1080",                     AV_DtvCheckVideo(__func__, {{&avDtvFrameWidth, 1440}, {&avDtvFrameHeight, 1080}})) \
    X(TC_AV_DtvCheckVideoFormatInterlacedAndFrameRate_001,    MANUAL, "Check the scan and the frame rate of video-0; the stream must be progressive with 25 frames",   AV_DtvCheckVideo(__func__, {{&avDtvInterlaced, 0}, {&avDtvFrameRate, 25}})) \
    X(TC_AV_DtvCheckVideoFormatInterlacedAndFrameRate_002,    MANUAL, "Check the scan and the frame rate of video-0; the stream must be interlaced with 25 frames",    AV_DtvCheckVideo(__func__, {{&avDtvInterlaced, 1}, {&avDtvFrameRate, 25}})) \
    X(TC_AV_DtvCheckVideoInfoOfColorPrimariesType_001,        MANUAL, "Check the color primaries of video-0; the stream must be BT.2100",                              AV_DtvCheckVideo(__func__, {{&avDtvColorPrimaries, QLX_VIDEO_COLOR_PRIMARIES_BT2100}})) \
    X(TC_AV_DtvCheckVideoInfoOfAFDType_001,                   MANUAL, "Check the AFD of video-0; the AFD of the stream must be 12",                                    AV_DtvCheckVideo(__func__, {{&avDtvAfd, 12}})) \
    X(TC_AV_DtvCheckVideoInfoOfSupportOverscan_001,           MANUAL, "Print whether video-0 supports overscan; any stream with a picture",                            AV_DtvCheckVideo(__func__, {{&avDtvSupportOverscan, AV_DTV_ANY}})) \
    X(TC_AV_DtvCheckVideoInfoOfAspectRatio_001,               MANUAL, "Check the frame and picture aspect ratio of video-0; the stream must be 4:3",                   AV_DtvCheckVideo(__func__, {{&avDtvFrameAspect, QLX_VIDEO_ASPECT_4_3}, {&avDtvPictureAspect, QLX_VIDEO_ASPECT_4_3}})) \
    X(TC_AV_DtvCheckVideoInfoOfAspectRatio_002,               MANUAL, "Check the frame and picture aspect ratio of video-0; the stream must be 16:9",                  AV_DtvCheckVideo(__func__, {{&avDtvFrameAspect, QLX_VIDEO_ASPECT_16_9}, {&avDtvPictureAspect, QLX_VIDEO_ASPECT_16_9}})) \
    X(TC_AV_DtvCheckAudio5_1Info,                             MANUAL, "Check the channels of audio-0; the stream must be 5.1",                                         AV_DtvCheckAudio(__func__, {{&avDtvChannelInfo, QLX_AUDIO_CHANNEL_3_2}})) \
    X(TC_AV_DtvCheckAudioFormat_LfePresent_001,               MANUAL, "Check the channels and the LFE of audio-0; presentation 11 of the AC-4 stream must be 5.1",     AV_DtvCheckAc4Audio(__func__, {{&avDtvChannelInfo, QLX_AUDIO_CHANNEL_3_2}, {&avDtvLfePresent, 1}}))

#define AV_DTV_STREAM_ROWS(X) \
    AV_DTV_AC4_ROWS(X) \
    AV_DTV_CONTENT_ROWS(X)
// clang-format on

#endif

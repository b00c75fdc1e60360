/* Played sources, judged: the rows of all modules, each by its source. A module takes its own
 * (AV_NOT_HERE for those of the others). */
#ifndef TESTCASE_AV_AV_PLAY_ROWS_H
#define TESTCASE_AV_AV_PLAY_ROWS_H

#include "testcase/av/av_families.h"

// clang-format off
// What the video decoder tells while it plays.
#define AV_GET_VIDEO_INFO(CVBS, HDMI, YPBPR, ATV, DTV) \
    CVBS (TC_AV_CvbsGetVideoInfo_012,  AUTO, "Get video info from video-0 in source CVBS-0",             AV_GetVideoInfo(__func__, cvbs0)) \
    CVBS (TC_AV_CvbsGetVideoInfo_013,  AUTO, "Get video info from video-0 in source CVBS-1",             AV_GetVideoInfo(__func__, cvbs1)) \
    HDMI (TC_AV_HdmiGetVideoInfo_009,  AUTO, "Get video info from video-0 in source HDMI-0",             AV_GetVideoInfo(__func__, hdmi0)) \
    HDMI (TC_AV_HdmiGetVideoInfo_010,  AUTO, "Get video info from video-0 in source HDMI-1",             AV_GetVideoInfo(__func__, hdmi1)) \
    HDMI (TC_AV_HdmiGetVideoInfo_011,  AUTO, "Get video info from video-0 in source HDMI-2",             AV_GetVideoInfo(__func__, hdmi2)) \
    YPBPR(TC_AV_YpbprGetVideoInfo_014, AUTO, "Get video info from video-0 in source YPBPR-0",            AV_GetVideoInfo(__func__, ypbpr0)) \
    YPBPR(TC_AV_YpbprGetVideoInfo_015, AUTO, "Get video info from video-0 in source YPBPR-1",            AV_GetVideoInfo(__func__, ypbpr1)) \
    ATV  (TC_AV_AtvGetVideoInfo_005,   AUTO, "Get video info from video-0 in source ATV-0",              AV_GetVideoInfo(__func__, atv0)) \
    ATV  (TC_AV_AtvGetVideoInfo_006,   AUTO, "Get video info from video-0 in source ATV-1",              AV_GetVideoInfo(__func__, atv1)) \
    ATV  (TC_AV_AtvGetVideoInfo_007,   AUTO, "Get video info from video-0 in source ATV-2",              AV_GetVideoInfo(__func__, atv2)) \
    ATV  (TC_AV_AtvGetVideoInfo_008,   AUTO, "Get video info from video-0 in source ATV-3",              AV_GetVideoInfo(__func__, atv3)) \
    DTV  (TC_AV_DtvGetVideoInfo_001,   AUTO, "Get video info from video-0 in source (Tuner-0, Demux-0)", AV_GetVideoInfo(__func__, dtv00)) \
    DTV  (TC_AV_DtvGetVideoInfo_002,   AUTO, "Get video info from video-0 in source (Tuner-1, Demux-0)", AV_GetVideoInfo(__func__, dtv10)) \
    DTV  (TC_AV_DtvGetVideoInfo_003,   AUTO, "Get video info from video-0 in source (Tuner-0, Demux-1)", AV_GetVideoInfo(__func__, dtv01)) \
    DTV  (TC_AV_DtvGetVideoInfo_004,   AUTO, "Get video info from video-0 in source (Tuner-1, Demux-1)", AV_GetVideoInfo(__func__, dtv11))

// What the audio decoder tells while it plays.
#define AV_GET_AUDIO_INFO(CVBS, HDMI, YPBPR, ATV, DTV) \
    CVBS (TC_AV_CvbsGetAudioInfo_012, AUTO, "Get audio info from audio-0 in source CVBS-0",             AV_GetAudioInfo(__func__, cvbs0)) \
    CVBS (TC_AV_CvbsGetAudioInfo_013, AUTO, "Get audio info from audio-0 in source CVBS-1",             AV_GetAudioInfo(__func__, cvbs1)) \
    HDMI (TC_AV_HdmiGetAudioInfo_009, AUTO, "Get audio info from audio-0 in source HDMI-0",             AV_GetAudioInfo(__func__, hdmi0)) \
    HDMI (TC_AV_HdmiGetAudioInfo_010, AUTO, "Get audio info from audio-0 in source HDMI-1",             AV_GetAudioInfo(__func__, hdmi1)) \
    HDMI (TC_AV_HdmiGetAudioInfo_011, AUTO, "Get audio info from audio-0 in source HDMI-2",             AV_GetAudioInfo(__func__, hdmi2)) \
    YPBPR(TC_AV_YpbprAudioInfo_014,   AUTO, "Get audio info from audio-0 in source YPBPR-0",            AV_GetAudioInfo(__func__, ypbpr0)) \
    YPBPR(TC_AV_YpbprAudioInfo_015,   AUTO, "Get audio info from audio-0 in source YPBPR-1",            AV_GetAudioInfo(__func__, ypbpr1)) \
    ATV  (TC_AV_AtvGetAudioInfo_005,  AUTO, "Get audio info from audio-0 in source ATV-0",              AV_GetAudioInfo(__func__, atv0)) \
    ATV  (TC_AV_AtvGetAudioInfo_006,  AUTO, "Get audio info from audio-0 in source ATV-1",              AV_GetAudioInfo(__func__, atv1)) \
    ATV  (TC_AV_AtvGetAudioInfo_007,  AUTO, "Get audio info from audio-0 in source ATV-2",              AV_GetAudioInfo(__func__, atv2)) \
    ATV  (TC_AV_AtvGetAudioInfo_008,  AUTO, "Get audio info from audio-0 in source ATV-3",              AV_GetAudioInfo(__func__, atv3)) \
    DTV  (TC_AV_DtvGetAudioInfo_001,  AUTO, "Get audio info from audio-0 in source (Tuner-0, Demux-0)", AV_GetAudioInfo(__func__, dtv00)) \
    DTV  (TC_AV_DtvGetAudioInfo_002,  AUTO, "Get audio info from audio-0 in source (Tuner-1, Demux-0)", AV_GetAudioInfo(__func__, dtv10)) \
    DTV  (TC_AV_DtvGetAudioInfo_003,  AUTO, "Get audio info from audio-0 in source (Tuner-0, Demux-1)", AV_GetAudioInfo(__func__, dtv01)) \
    DTV  (TC_AV_DtvGetAudioInfo_004,  AUTO, "Get audio info from audio-0 in source (Tuner-1, Demux-1)", AV_GetAudioInfo(__func__, dtv11))

// The order of video reports.
#define AV_VIDEO_EVENT_FLOW(CVBS, HDMI, YPBPR, ATV, DTV) \
    CVBS (TC_AV_CvbsVideoEventFlow_012, AUTO, "Check the event flow (start done->frame ready->signal present->signal unpresent->stop done) from video-0 in source CVBS-0",                      AV_VideoEventFlow(__func__, cvbs0)) \
    CVBS (TC_AV_CvbsVideoEventFlow_013, AUTO, "Check the event flow (start done->frame ready->signal present->signal unpresent->stop done) from video-0 in source CVBS-1",                      AV_VideoEventFlow(__func__, cvbs1)) \
    HDMI (TC_AV_HdmiVideoEventFlow_009, AUTO, "Check the event flow (start done->frame ready->signal present->signal unpresent->stop done) from video-0 in source HDMI-0",                      AV_VideoEventFlow(__func__, hdmi0)) \
    HDMI (TC_AV_HdmiVideoEventFlow_010, AUTO, "Check the event flow (start done->frame ready->signal present->signal unpresent->stop done) from video-0 in source HDMI-1",                      AV_VideoEventFlow(__func__, hdmi1)) \
    HDMI (TC_AV_HdmiVideoEventFlow_011, AUTO, "Check the event flow (start done->frame ready->signal present->signal unpresent->stop done) from video-0 in source HDMI-2",                      AV_VideoEventFlow(__func__, hdmi2)) \
    YPBPR(TC_AV_YpbprEventFlow_014,     AUTO, "Check the event flow (start done->frame ready->signal present->signal unpresent->stop done) from video-0 in source YPBPR-0",                     AV_VideoEventFlow(__func__, ypbpr0)) \
    YPBPR(TC_AV_YpbprEventFlow_015,     AUTO, "Check the event flow (start done->frame ready->signal present->signal unpresent->stop done) from video-0 in source YPBPR-1",                     AV_VideoEventFlow(__func__, ypbpr1)) \
    ATV  (TC_AV_AtvVideoEventFlow_005,  AUTO, "Check the event flow (start done->frame ready->signal present->signal unpresent->stop done) from video-0 in source ATV-0",                       AV_VideoEventFlow(__func__, atv0)) \
    ATV  (TC_AV_AtvVideoEventFlow_006,  AUTO, "Check the event flow (start done->frame ready->signal present->signal unpresent->stop done) from video-0 in source ATV-1",                       AV_VideoEventFlow(__func__, atv1)) \
    ATV  (TC_AV_AtvVideoEventFlow_007,  AUTO, "Check the event flow (start done->frame ready->signal present->signal unpresent->stop done) from video-0 in source ATV-2",                       AV_VideoEventFlow(__func__, atv2)) \
    ATV  (TC_AV_AtvVideoEventFlow_008,  AUTO, "Check the event flow (start done->frame ready->signal present->signal unpresent->stop done) from video-0 in source ATV-3",                       AV_VideoEventFlow(__func__, atv3)) \
    DTV  (TC_AV_DtvVideoEventFlow_001,  AUTO, "Check the event flow (start done->frame ready->signal present->av sync->signal unpresent->stop done) from video-0 in source (Tuner-0, Demux-0)", AV_VideoEventFlow(__func__, dtv00)) \
    DTV  (TC_AV_DtvVideoEventFlow_002,  AUTO, "Check the event flow (start done->frame ready->signal present->av sync->signal unpresent->stop done) from video-0 in source (Tuner-1, Demux-0)", AV_VideoEventFlow(__func__, dtv10)) \
    DTV  (TC_AV_DtvVideoEventFlow_003,  AUTO, "Check the event flow (start done->frame ready->signal present->av sync->signal unpresent->stop done) from video-0 in source (Tuner-0, Demux-1)", AV_VideoEventFlow(__func__, dtv01)) \
    DTV  (TC_AV_DtvVideoEventFlow_004,  AUTO, "Check the event flow (start done->frame ready->signal present->av sync->signal unpresent->stop done) from video-0 in source (Tuner-1, Demux-1)", AV_VideoEventFlow(__func__, dtv11))

// No information of a picture twice in a row.
#define AV_VIDEO_INFO_NOT_REPEATED(CVBS, HDMI, YPBPR, ATV, DTV) \
    CVBS (TC_AV_CvbsVideoEventFlow_052,   AUTO, "Continue reporting the same info change event from video-0 is not allowed in source CVBS-0",             AV_VideoInfoNotRepeated(__func__, cvbs0)) \
    CVBS (TC_AV_CvbsVideoEventFlow_053,   AUTO, "Continue reporting the same info change event from video-0 is not allowed in source CVBS-1",             AV_VideoInfoNotRepeated(__func__, cvbs1)) \
    HDMI (TC_AV_HdmiVideoEventFlow_049,   AUTO, "Continue reporting the same info change event from video-0 is not allowed in source HDMI-0",             AV_VideoInfoNotRepeated(__func__, hdmi0)) \
    HDMI (TC_AV_HdmiVideoEventFlow_050,   AUTO, "Continue reporting the same info change event from video-0 is not allowed in source HDMI-1",             AV_VideoInfoNotRepeated(__func__, hdmi1)) \
    HDMI (TC_AV_HdmiVideoEventFlow_051,   AUTO, "Continue reporting the same info change event from video-0 is not allowed in source HDMI-2",             AV_VideoInfoNotRepeated(__func__, hdmi2)) \
    YPBPR(TC_AV_YpbprEventFlow_054,       AUTO, "Continue reporting the same info change event from video-0 is not allowed in source YPBPR-0",            AV_VideoInfoNotRepeated(__func__, ypbpr0)) \
    YPBPR(TC_AV_YpbprEventFlow_055,       AUTO, "Continue reporting the same info change event from video-0 is not allowed in source YPBPR-1",            AV_VideoInfoNotRepeated(__func__, ypbpr1)) \
    ATV  (TC_AV_AtvVideoEventFlow_045,    AUTO, "Continue reporting the same info change event from video-0 is not allowed in source ATV-0",              AV_VideoInfoNotRepeated(__func__, atv0)) \
    ATV  (TC_AV_AtvVideoEventFlow_046,    AUTO, "Continue reporting the same info change event from video-0 is not allowed in source ATV-1",              AV_VideoInfoNotRepeated(__func__, atv1)) \
    ATV  (TC_AV_AtvVideoEventFlow_047,    AUTO, "Continue reporting the same info change event from video-0 is not allowed in source ATV-2",              AV_VideoInfoNotRepeated(__func__, atv2)) \
    ATV  (TC_AV_AtvVideoEventFlow_048,    AUTO, "Continue reporting the same info change event from video-0 is not allowed in source ATV-3",              AV_VideoInfoNotRepeated(__func__, atv3)) \
    DTV  (TC_AV_DtvVideoEventFlow_041_01, AUTO, "Continue reporting the same info change event from video-0 is not allowed in source (Tuner-0, Demux-0)", AV_VideoInfoNotRepeatedOneFrame(__func__, dtv00)) \
    DTV  (TC_AV_DtvVideoEventFlow_041_02, AUTO, "Continue reporting the same info change event from video-0 is not allowed in source (Tuner-1, Demux-0)", AV_VideoInfoNotRepeatedOneFrame(__func__, dtv10)) \
    DTV  (TC_AV_DtvVideoEventFlow_041_03, AUTO, "Continue reporting the same info change event from video-0 is not allowed in source (Tuner-0, Demux-1)", AV_VideoInfoNotRepeatedOneFrame(__func__, dtv01)) \
    DTV  (TC_AV_DtvVideoEventFlow_041_04, AUTO, "Continue reporting the same info change event from video-0 is not allowed in source (Tuner-1, Demux-1)", AV_VideoInfoNotRepeatedOneFrame(__func__, dtv11))

// Each report of a picture.
#define AV_VIDEO_EVENT_INFO_CHANGE(CVBS, HDMI, YPBPR, ATV, DTV) \
    CVBS (TC_AV_CvbsVideoEventInfoChange_012,  AUTO, "Check the info change event from video-0 in source CVBS-0",             AV_VideoEventInfo(__func__, cvbs0)) \
    CVBS (TC_AV_CvbsVideoEventInfoChange_013,  AUTO, "Check the info change event from video-0 in source CVBS-1",             AV_VideoEventInfo(__func__, cvbs1)) \
    HDMI (TC_AV_HdmiVideoEventInfoChange_009,  AUTO, "Check the info change event from video-0 in source HDMI-0",             AV_VideoEventInfo(__func__, hdmi0)) \
    HDMI (TC_AV_HdmiVideoEventInfoChange_010,  AUTO, "Check the info change event from video-0 in source HDMI-1",             AV_VideoEventInfo(__func__, hdmi1)) \
    HDMI (TC_AV_HdmiVideoEventInfoChange_011,  AUTO, "Check the info change event from video-0 in source HDMI-2",             AV_VideoEventInfo(__func__, hdmi2)) \
    YPBPR(TC_AV_YpbprVideoEventInfoChange_014, AUTO, "Check the info change event from video-0 in source YPBPR-0",            AV_VideoEventInfo(__func__, ypbpr0)) \
    YPBPR(TC_AV_YpbprVideoEventInfoChange_015, AUTO, "Check the info change event from video-0 in source YPBPR-1",            AV_VideoEventInfo(__func__, ypbpr1)) \
    ATV  (TC_AV_AtvVideoEventInfoChange_005,   AUTO, "Check the info change event from video-0 in source ATV-0",              AV_VideoEventInfo(__func__, atv0)) \
    ATV  (TC_AV_AtvVideoEventInfoChange_006,   AUTO, "Check the info change event from video-0 in source ATV-1",              AV_VideoEventInfo(__func__, atv1)) \
    ATV  (TC_AV_AtvVideoEventInfoChange_007,   AUTO, "Check the info change event from video-0 in source ATV-2",              AV_VideoEventInfo(__func__, atv2)) \
    ATV  (TC_AV_AtvVideoEventInfoChange_008,   AUTO, "Check the info change event from video-0 in source ATV-3",              AV_VideoEventInfo(__func__, atv3)) \
    DTV  (TC_AV_DtvVideoEventInfoChange_001,   AUTO, "Check the info change event from video-0 in source (Tuner-0, Demux-0)", AV_VideoEventInfo(__func__, dtv00)) \
    DTV  (TC_AV_DtvVideoEventInfoChange_002,   AUTO, "Check the info change event from video-0 in source (Tuner-1, Demux-0)", AV_VideoEventInfo(__func__, dtv10)) \
    DTV  (TC_AV_DtvVideoEventInfoChange_003,   AUTO, "Check the info change event from video-0 in source (Tuner-0, Demux-1)", AV_VideoEventInfo(__func__, dtv01)) \
    DTV  (TC_AV_DtvVideoEventInfoChange_004,   AUTO, "Check the info change event from video-0 in source (Tuner-1, Demux-1)", AV_VideoEventInfo(__func__, dtv11))

// The time of video reports.
#define AV_VIDEO_EVENT_CONSUMPTION(CVBS, HDMI, YPBPR, ATV, DTV) \
    CVBS (TC_AV_CvbsVideoEventConsumption_012,  AUTO, "Test the consumption time of the events from video-0 in source CVBS-0",             AV_VideoEventConsumption(__func__, cvbs0)) \
    CVBS (TC_AV_CvbsVideoEventConsumption_013,  AUTO, "Test the consumption time of the events from video-0 in source CVBS-1",             AV_VideoEventConsumption(__func__, cvbs1)) \
    HDMI (TC_AV_HdmiVideoEventConsumption_009,  AUTO, "Test the consumption time of the events from video-0 in source HDMI-0",             AV_VideoEventConsumption(__func__, hdmi0)) \
    HDMI (TC_AV_HdmiVideoEventConsumption_010,  AUTO, "Test the consumption time of the events from video-0 in source HDMI-1",             AV_VideoEventConsumption(__func__, hdmi1)) \
    HDMI (TC_AV_HdmiVideoEventConsumption_011,  AUTO, "Test the consumption time of the events from video-0 in source HDMI-2",             AV_VideoEventConsumption(__func__, hdmi2)) \
    YPBPR(TC_AV_YpbprVideoEventConsumption_014, AUTO, "Test the consumption time of the events from video-0 in source YPBPR-0",            AV_VideoEventConsumption(__func__, ypbpr0)) \
    YPBPR(TC_AV_YpbprVideoEventConsumption_015, AUTO, "Test the consumption time of the events from video-0 in source YPBPR-1",            AV_VideoEventConsumption(__func__, ypbpr1)) \
    ATV  (TC_AV_AtvVideoEventConsumption_005,   AUTO, "Test the consumption time of the events from video-0 in source ATV-0",              AV_VideoEventConsumption(__func__, atv0)) \
    ATV  (TC_AV_AtvVideoEventConsumption_006,   AUTO, "Test the consumption time of the events from video-0 in source ATV-1",              AV_VideoEventConsumption(__func__, atv1)) \
    ATV  (TC_AV_AtvVideoEventConsumption_007,   AUTO, "Test the consumption time of the events from video-0 in source ATV-2",              AV_VideoEventConsumption(__func__, atv2)) \
    ATV  (TC_AV_AtvVideoEventConsumption_008,   AUTO, "Test the consumption time of the events from video-0 in source ATV-3",              AV_VideoEventConsumption(__func__, atv3)) \
    DTV  (TC_AV_DtvVideoEventConsumption_001,   AUTO, "Test the consumption time of the events from video-0 in source (Tuner-0, Demux-0)", AV_VideoEventConsumption(__func__, dtv00)) \
    DTV  (TC_AV_DtvVideoEventConsumption_002,   AUTO, "Test the consumption time of the events from video-0 in source (Tuner-1, Demux-0)", AV_VideoEventConsumption(__func__, dtv10)) \
    DTV  (TC_AV_DtvVideoEventConsumption_003,   AUTO, "Test the consumption time of the events from video-0 in source (Tuner-0, Demux-1)", AV_VideoEventConsumption(__func__, dtv01)) \
    DTV  (TC_AV_DtvVideoEventConsumption_004,   AUTO, "Test the consumption time of the events from video-0 in source (Tuner-1, Demux-1)", AV_VideoEventConsumption(__func__, dtv11))

// The order of audio reports.
#define AV_AUDIO_EVENT_FLOW(CVBS, HDMI, YPBPR, ATV, DTV) \
    CVBS (TC_AV_CvbsAudioEventFlow_012,  AUTO, "Check the event flow (signal present->signal unpresent->stop done) from audio-0 in source CVBS-0",             AV_AudioEventFlow(__func__, cvbs0)) \
    CVBS (TC_AV_CvbsAudioEventFlow_013,  AUTO, "Check the event flow (signal present->signal unpresent->stop done) from audio-0 in source CVBS-1",             AV_AudioEventFlow(__func__, cvbs1)) \
    HDMI (TC_AV_HdmiAudioEventFlow_009,  AUTO, "Check the event flow (signal present->signal unpresent->stop done) from audio-0 in source HDMI-0",             AV_AudioEventFlow(__func__, hdmi0)) \
    HDMI (TC_AV_HdmiAudioEventFlow_010,  AUTO, "Check the event flow (signal present->signal unpresent->stop done) from audio-0 in source HDMI-1",             AV_AudioEventFlow(__func__, hdmi1)) \
    HDMI (TC_AV_HdmiAudioEventFlow_011,  AUTO, "Check the event flow (signal present->signal unpresent->stop done) from audio-0 in source HDMI-2",             AV_AudioEventFlow(__func__, hdmi2)) \
    YPBPR(TC_AV_YpbprAudioEventFlow_014, AUTO, "Check the event flow (signal present->signal unpresent->stop done) from audio-0 in source YPBPR-0",            AV_AudioEventFlow(__func__, ypbpr0)) \
    YPBPR(TC_AV_YpbprAudioEventFlow_015, AUTO, "Check the event flow (signal present->signal unpresent->stop done) from audio-0 in source YPBPR-1",            AV_AudioEventFlow(__func__, ypbpr1)) \
    ATV  (TC_AV_AtvAudioEventFlow_005,   AUTO, "Check the event flow (signal present->signal unpresent->stop done) from audio-0 in source ATV-0",              AV_AudioEventFlow(__func__, atv0)) \
    ATV  (TC_AV_AtvAudioEventFlow_006,   AUTO, "Check the event flow (signal present->signal unpresent->stop done) from audio-0 in source ATV-1",              AV_AudioEventFlow(__func__, atv1)) \
    ATV  (TC_AV_AtvAudioEventFlow_007,   AUTO, "Check the event flow (signal present->signal unpresent->stop done) from audio-0 in source ATV-2",              AV_AudioEventFlow(__func__, atv2)) \
    ATV  (TC_AV_AtvAudioEventFlow_008,   AUTO, "Check the event flow (signal present->signal unpresent->stop done) from audio-0 in source ATV-3",              AV_AudioEventFlow(__func__, atv3)) \
    DTV  (TC_AV_DtvAudioEventFlow_001,   AUTO, "Check the event flow (signal present->signal unpresent->stop done) from audio-0 in source (Tuner-0, Demux-0)", AV_AudioEventFlow(__func__, dtv00)) \
    DTV  (TC_AV_DtvAudioEventFlow_002,   AUTO, "Check the event flow (signal present->signal unpresent->stop done) from audio-0 in source (Tuner-1, Demux-0)", AV_AudioEventFlow(__func__, dtv10)) \
    DTV  (TC_AV_DtvAudioEventFlow_003,   AUTO, "Check the event flow (signal present->signal unpresent->stop done) from audio-0 in source (Tuner-0, Demux-1)", AV_AudioEventFlow(__func__, dtv01)) \
    DTV  (TC_AV_DtvAudioEventFlow_004,   AUTO, "Check the event flow (signal present->signal unpresent->stop done) from audio-0 in source (Tuner-1, Demux-1)", AV_AudioEventFlow(__func__, dtv11))

// No information of a sound twice in a row.
#define AV_AUDIO_INFO_NOT_REPEATED(CVBS, HDMI, YPBPR, ATV, DTV) \
    CVBS (TC_AV_CvbsAudioEventFlow_052,  AUTO, "Continue reporting the same info change event from audio-0 is not allowed in source CVBS-0",             AV_AudioInfoNotRepeated(__func__, cvbs0)) \
    CVBS (TC_AV_CvbsAudioEventFlow_053,  AUTO, "Continue reporting the same info change event from audio-0 is not allowed in source CVBS-1",             AV_AudioInfoNotRepeated(__func__, cvbs1)) \
    HDMI (TC_AV_HdmiAudioEventFlow_049,  AUTO, "Continue reporting the same info change event from audio-0 is not allowed in source HDMI-0",             AV_AudioInfoNotRepeated(__func__, hdmi0)) \
    HDMI (TC_AV_HdmiAudioEventFlow_050,  AUTO, "Continue reporting the same info change event from audio-0 is not allowed in source HDMI-1",             AV_AudioInfoNotRepeated(__func__, hdmi1)) \
    HDMI (TC_AV_HdmiAudioEventFlow_051,  AUTO, "Continue reporting the same info change event from audio-0 is not allowed in source HDMI-2",             AV_AudioInfoNotRepeated(__func__, hdmi2)) \
    YPBPR(TC_AV_YpbprAudioEventFlow_054, AUTO, "Continue reporting the same info change event from audio-0 is not allowed in source YPBPR-0",            AV_AudioInfoNotRepeated(__func__, ypbpr0)) \
    YPBPR(TC_AV_YpbprAudioEventFlow_055, AUTO, "Continue reporting the same info change event from audio-0 is not allowed in source YPBPR-1",            AV_AudioInfoNotRepeated(__func__, ypbpr1)) \
    ATV  (TC_AV_AtvAudioEventFlow_045,   AUTO, "Continue reporting the same info change event from audio-0 is not allowed in source ATV-0",              AV_AudioInfoNotRepeated(__func__, atv0)) \
    ATV  (TC_AV_AtvAudioEventFlow_046,   AUTO, "Continue reporting the same info change event from audio-0 is not allowed in source ATV-1",              AV_AudioInfoNotRepeated(__func__, atv1)) \
    ATV  (TC_AV_AtvAudioEventFlow_047,   AUTO, "Continue reporting the same info change event from audio-0 is not allowed in source ATV-2",              AV_AudioInfoNotRepeated(__func__, atv2)) \
    ATV  (TC_AV_AtvAudioEventFlow_048,   AUTO, "Continue reporting the same info change event from audio-0 is not allowed in source ATV-3",              AV_AudioInfoNotRepeated(__func__, atv3)) \
    DTV  (TC_AV_DtvAudioEventFlow_041,   AUTO, "Continue reporting the same info change event from audio-0 is not allowed in source (Tuner-0, Demux-0)", AV_AudioInfoNotRepeated(__func__, dtv00)) \
    DTV  (TC_AV_DtvAudioEventFlow_042,   AUTO, "Continue reporting the same info change event from audio-0 is not allowed in source (Tuner-1, Demux-0)", AV_AudioInfoNotRepeated(__func__, dtv10)) \
    DTV  (TC_AV_DtvAudioEventFlow_043,   AUTO, "Continue reporting the same info change event from audio-0 is not allowed in source (Tuner-0, Demux-1)", AV_AudioInfoNotRepeated(__func__, dtv01)) \
    DTV  (TC_AV_DtvAudioEventFlow_044,   AUTO, "Continue reporting the same info change event from audio-0 is not allowed in source (Tuner-1, Demux-1)", AV_AudioInfoNotRepeated(__func__, dtv11))

// Each report of a sound.
#define AV_AUDIO_EVENT_INFO_CHANGE(CVBS, HDMI, YPBPR, ATV, DTV) \
    CVBS (TC_AV_CvbsAudioEventInfoChange_012,  AUTO, "Check the info change event from audio-0 in source CVBS-0",             AV_AudioEventInfo(__func__, cvbs0)) \
    CVBS (TC_AV_CvbsAudioEventInfoChange_013,  AUTO, "Check the info change event from audio-0 in source CVBS-1",             AV_AudioEventInfo(__func__, cvbs1)) \
    HDMI (TC_AV_HdmiAudioEventInfoChange_009,  AUTO, "Check the info change event from audio-0 in source HDMI-0",             AV_AudioEventInfo(__func__, hdmi0)) \
    HDMI (TC_AV_HdmiAudioEventInfoChange_010,  AUTO, "Check the info change event from audio-0 in source HDMI-1",             AV_AudioEventInfo(__func__, hdmi1)) \
    HDMI (TC_AV_HdmiAudioEventInfoChange_011,  AUTO, "Check the info change event from audio-0 in source HDMI-2",             AV_AudioEventInfo(__func__, hdmi2)) \
    YPBPR(TC_AV_YpbprAudioEventInfoChange_014, AUTO, "Check the info change event from audio-0 in source YPBPR-0",            AV_AudioEventInfo(__func__, ypbpr0)) \
    YPBPR(TC_AV_YpbprAudioEventInfoChange_015, AUTO, "Check the info change event from audio-0 in source YPBPR-1",            AV_AudioEventInfo(__func__, ypbpr1)) \
    ATV  (TC_AV_AtvAudioEventInfoChange_005,   AUTO, "Check the info change event from audio-0 in source ATV-0",              AV_AudioEventInfo(__func__, atv0)) \
    ATV  (TC_AV_AtvAudioEventInfoChange_006,   AUTO, "Check the info change event from audio-0 in source ATV-1",              AV_AudioEventInfo(__func__, atv1)) \
    ATV  (TC_AV_AtvAudioEventInfoChange_007,   AUTO, "Check the info change event from audio-0 in source ATV-2",              AV_AudioEventInfo(__func__, atv2)) \
    ATV  (TC_AV_AtvAudioEventInfoChange_008,   AUTO, "Check the info change event from audio-0 in source ATV-3",              AV_AudioEventInfo(__func__, atv3)) \
    DTV  (TC_AV_DtvAudioEventInfoChange_001,   AUTO, "Check the info change event from audio-0 in source (Tuner-0, Demux-0)", AV_AudioEventInfo(__func__, dtv00)) \
    DTV  (TC_AV_DtvAudioEventInfoChange_002,   AUTO, "Check the info change event from audio-0 in source (Tuner-1, Demux-0)", AV_AudioEventInfo(__func__, dtv10)) \
    DTV  (TC_AV_DtvAudioEventInfoChange_003,   AUTO, "Check the info change event from audio-0 in source (Tuner-0, Demux-1)", AV_AudioEventInfo(__func__, dtv01)) \
    DTV  (TC_AV_DtvAudioEventInfoChange_004,   AUTO, "Check the info change event from audio-0 in source (Tuner-1, Demux-1)", AV_AudioEventInfo(__func__, dtv11))

// The time of audio reports.
#define AV_AUDIO_EVENT_CONSUMPTION(CVBS, HDMI, YPBPR, ATV, DTV) \
    CVBS (TC_AV_CvbsAudioEventConsumption_012,  AUTO, "Test the consumption time of the events from audio-0 in source CVBS-0",             AV_AudioEventConsumption(__func__, cvbs0)) \
    CVBS (TC_AV_CvbsAudioEventConsumption_013,  AUTO, "Test the consumption time of the events from audio-0 in source CVBS-1",             AV_AudioEventConsumption(__func__, cvbs1)) \
    HDMI (TC_AV_HdmiAudioEventConsumption_009,  AUTO, "Test the consumption time of the events from audio-0 in source HDMI-0",             AV_AudioEventConsumption(__func__, hdmi0)) \
    HDMI (TC_AV_HdmiAudioEventConsumption_010,  AUTO, "Test the consumption time of the events from audio-0 in source HDMI-1",             AV_AudioEventConsumption(__func__, hdmi1)) \
    HDMI (TC_AV_HdmiAudioEventConsumption_011,  AUTO, "Test the consumption time of the events from audio-0 in source HDMI-2",             AV_AudioEventConsumption(__func__, hdmi2)) \
    YPBPR(TC_AV_YpbprAudioEventConsumption_014, AUTO, "Test the consumption time of the events from audio-0 in source YPBPR-0",            AV_AudioEventConsumption(__func__, ypbpr0)) \
    YPBPR(TC_AV_YpbprAudioEventConsumption_015, AUTO, "Test the consumption time of the events from audio-0 in source YPBPR-1",            AV_AudioEventConsumption(__func__, ypbpr1)) \
    ATV  (TC_AV_AtvAudioEventConsumption_005,   AUTO, "Test the consumption time of the events from audio-0 in source ATV-0",              AV_AudioEventConsumption(__func__, atv0)) \
    ATV  (TC_AV_AtvAudioEventConsumption_006,   AUTO, "Test the consumption time of the events from audio-0 in source ATV-1",              AV_AudioEventConsumption(__func__, atv1)) \
    ATV  (TC_AV_AtvAudioEventConsumption_007,   AUTO, "Test the consumption time of the events from audio-0 in source ATV-2",              AV_AudioEventConsumption(__func__, atv2)) \
    ATV  (TC_AV_AtvAudioEventConsumption_008,   AUTO, "Test the consumption time of the events from audio-0 in source ATV-3",              AV_AudioEventConsumption(__func__, atv3)) \
    DTV  (TC_AV_DtvAudioEventConsumption_001,   AUTO, "Test the consumption time of the events from audio-0 in source (Tuner-0, Demux-0)", AV_AudioEventConsumption(__func__, dtv00)) \
    DTV  (TC_AV_DtvAudioEventConsumption_002,   AUTO, "Test the consumption time of the events from audio-0 in source (Tuner-1, Demux-0)", AV_AudioEventConsumption(__func__, dtv10)) \
    DTV  (TC_AV_DtvAudioEventConsumption_003,   AUTO, "Test the consumption time of the events from audio-0 in source (Tuner-0, Demux-1)", AV_AudioEventConsumption(__func__, dtv01)) \
    DTV  (TC_AV_DtvAudioEventConsumption_004,   AUTO, "Test the consumption time of the events from audio-0 in source (Tuner-1, Demux-1)", AV_AudioEventConsumption(__func__, dtv11))

// Played ten times.
#define AV_PLAY_TEN_ROUNDS(CVBS, HDMI, YPBPR, ATV, DTV) \
    CVBS (TC_AV_CvbsPlay_062,  AUTO, "Play and stop video-0/audio-0 for 10 times in source CVBS-0",             AV_PlayTenRounds(__func__, cvbs0)) \
    CVBS (TC_AV_CvbsPlay_063,  AUTO, "Play and stop video-0/audio-0 for 10 times in source CVBS-1",             AV_PlayTenRounds(__func__, cvbs1)) \
    HDMI (TC_AV_HdmiPlay_059,  AUTO, "Play and stop video-0/audio-0 for 10 times in source HDMI-0",             AV_PlayTenRounds(__func__, hdmi0)) \
    HDMI (TC_AV_HdmiPlay_060,  AUTO, "Play and stop video-0/audio-0 for 10 times in source HDMI-1",             AV_PlayTenRounds(__func__, hdmi1)) \
    HDMI (TC_AV_HdmiPlay_061,  AUTO, "Play and stop video-0/audio-0 for 10 times in source HDMI-2",             AV_PlayTenRounds(__func__, hdmi2)) \
    YPBPR(TC_AV_YpbprPlay_064, AUTO, "Play and stop video-0/audio-0 for 10 times in source YPBPR-0",            AV_PlayTenRounds(__func__, ypbpr0)) \
    YPBPR(TC_AV_YpbprPlay_065, AUTO, "Play and stop video-0/audio-0 for 10 times in source YPBPR-1",            AV_PlayTenRounds(__func__, ypbpr1)) \
    ATV  (TC_AV_AtvPlay_055,   AUTO, "Play and stop video-0/audio-0 for 10 times in source ATV-0",              AV_PlayTenRounds(__func__, atv0)) \
    ATV  (TC_AV_AtvPlay_056,   AUTO, "Play and stop video-0/audio-0 for 10 times in source ATV-1",              AV_PlayTenRounds(__func__, atv1)) \
    ATV  (TC_AV_AtvPlay_057,   AUTO, "Play and stop video-0/audio-0 for 10 times in source ATV-2",              AV_PlayTenRounds(__func__, atv2)) \
    ATV  (TC_AV_AtvPlay_058,   AUTO, "Play and stop video-0/audio-0 for 10 times in source ATV-3",              AV_PlayTenRounds(__func__, atv3)) \
    DTV  (TC_AV_DtvPlay_051,   AUTO, "Play and stop video-0/audio-0 for 10 times in source (Tuner-0, Demux-0)", AV_PlayTenRounds(__func__, dtv00)) \
    DTV  (TC_AV_DtvPlay_052,   AUTO, "Play and stop video-0/audio-0 for 10 times in source (Tuner-1, Demux-0)", AV_PlayTenRounds(__func__, dtv10)) \
    DTV  (TC_AV_DtvPlay_053,   AUTO, "Play and stop video-0/audio-0 for 10 times in source (Tuner-0, Demux-1)", AV_PlayTenRounds(__func__, dtv01)) \
    DTV  (TC_AV_DtvPlay_054,   AUTO, "Play and stop video-0/audio-0 for 10 times in source (Tuner-1, Demux-1)", AV_PlayTenRounds(__func__, dtv11))

// Played, and looked at by the operator.
#define AV_PLAY_CONFIRMED(CVBS, HDMI, YPBPR, ATV, DTV) \
    CVBS (TC_AV_CvbsPlay_012,  MANUAL, "Play video-0/audio-0 in source CVBS-0",             AV_PlayConfirmed(__func__, cvbs0)) \
    CVBS (TC_AV_CvbsPlay_013,  MANUAL, "Play video-0/audio-0 in source CVBS-1",             AV_PlayConfirmed(__func__, cvbs1)) \
    HDMI (TC_AV_HdmiPlay_009,  MANUAL, "Play video-0/audio-0 in source HDMI-0",             AV_PlayConfirmed(__func__, hdmi0)) \
    HDMI (TC_AV_HdmiPlay_010,  MANUAL, "Play video-0/audio-0 in source HDMI-1",             AV_PlayConfirmed(__func__, hdmi1)) \
    HDMI (TC_AV_HdmiPlay_011,  MANUAL, "Play video-0/audio-0 in source HDMI-2",             AV_PlayConfirmed(__func__, hdmi2)) \
    YPBPR(TC_AV_YpbprPlay_014, MANUAL, "Play video-0/audio-0 in source YPBPR-0",            AV_PlayConfirmed(__func__, ypbpr0)) \
    YPBPR(TC_AV_YpbprPlay_015, MANUAL, "Play video-0/audio-0 in source YPBPR-1",            AV_PlayConfirmed(__func__, ypbpr1)) \
    ATV  (TC_AV_AtvPlay_005,   MANUAL, "Play video-0/audio-0 in source ATV-0",              AV_PlayConfirmed(__func__, atv0)) \
    ATV  (TC_AV_AtvPlay_006,   MANUAL, "Play video-0/audio-0 in source ATV-1",              AV_PlayConfirmed(__func__, atv1)) \
    ATV  (TC_AV_AtvPlay_007,   MANUAL, "Play video-0/audio-0 in source ATV-2",              AV_PlayConfirmed(__func__, atv2)) \
    ATV  (TC_AV_AtvPlay_008,   MANUAL, "Play video-0/audio-0 in source ATV-3",              AV_PlayConfirmed(__func__, atv3)) \
    DTV  (TC_AV_DtvPlay_001,   MANUAL, "Play video-0/audio-0 in source (Tuner-0, Demux-0)", AV_PlayManualConfirmed(__func__, dtv00)) \
    DTV  (TC_AV_DtvPlay_002,   MANUAL, "Play video-0/audio-0 in source (Tuner-1, Demux-0)", AV_PlayManualConfirmed(__func__, dtv10)) \
    DTV  (TC_AV_DtvPlay_003,   MANUAL, "Play video-0/audio-0 in source (Tuner-0, Demux-1)", AV_PlayManualConfirmed(__func__, dtv01)) \
    DTV  (TC_AV_DtvPlay_004,   MANUAL, "Play video-0/audio-0 in source (Tuner-1, Demux-1)", AV_PlayManualConfirmed(__func__, dtv11))

// From one device of the source to another.
#define AV_SWITCH_SOURCE(CVBS, HDMI, YPBPR, ATV, DTV) \
    CVBS (TC_AV_CvbsSwitchSource_001,  AUTO, "Switch source from CVBS-0 to CVBS-1 for 10 times with audio-0 and video-0",                               AV_SwitchSource(__func__, cvbs0, cvbs1)) \
    HDMI (TC_AV_HdmiSwitchSource_001,  AUTO, "Switch source from HDMI-0 to HDMI-1 for 10 times with audio-0 and video-0",                               AV_SwitchSource(__func__, hdmi0, hdmi1)) \
    HDMI (TC_AV_HdmiSwitchSource_002,  AUTO, "Switch source from HDMI-0 to HDMI-2 for 10 times with audio-0 and video-0",                               AV_SwitchSource(__func__, hdmi0, hdmi2)) \
    HDMI (TC_AV_HdmiSwitchSource_003,  AUTO, "Switch source from HDMI-1 to HDMI-2 for 10 times with audio-0 and video-0",                               AV_SwitchSource(__func__, hdmi1, hdmi2)) \
    YPBPR(TC_AV_YpbprSwitchSource_001, AUTO, "Switch source from YPBPR-0 to YPBPR-1 for 10 times with audio-0 and video-0",                             AV_SwitchSource(__func__, ypbpr0, ypbpr1)) \
    ATV  (TC_AV_AtvSwitchSource_003,   AUTO, "Switch source from ATV (Tuner-0) to ATV (Tuner-1) for 10 times with audio-0 and video-0",                 AV_SwitchSource(__func__, atv0, atv1)) \
    ATV  (TC_AV_AtvSwitchSource_004,   AUTO, "Switch source from ATV (Tuner-0) to ATV (Tuner-2) for 10 times with audio-0 and video-0",                 AV_SwitchSource(__func__, atv0, atv2)) \
    ATV  (TC_AV_AtvSwitchSource_005,   AUTO, "Switch source from ATV (Tuner-0) to ATV (Tuner-3) for 10 times with audio-0 and video-0",                 AV_SwitchSource(__func__, atv0, atv3)) \
    ATV  (TC_AV_AtvSwitchSource_006,   AUTO, "Switch source from ATV (Tuner-1) to ATV (Tuner-2) for 10 times with audio-0 and video-0",                 AV_SwitchSource(__func__, atv1, atv2)) \
    ATV  (TC_AV_AtvSwitchSource_007,   AUTO, "Switch source from ATV (Tuner-1) to ATV (Tuner-3) for 10 times with audio-0 and video-0",                 AV_SwitchSource(__func__, atv1, atv3)) \
    ATV  (TC_AV_AtvSwitchSource_008,   AUTO, "Switch source from ATV (Tuner-2) to ATV (Tuner-3) for 10 times with audio-0 and video-0",                 AV_SwitchSource(__func__, atv2, atv3)) \
    DTV  (TC_AV_DtvSwitchSource_001,   AUTO, "Switch source from DTV (Tuner-0,Demux-0) to DTV (Tuner-1,Demux-0) for 10 times with audio-0 and video-0", AV_SwitchSource(__func__, dtv00, dtv10)) \
    DTV  (TC_AV_DtvSwitchSource_002,   AUTO, "Switch source from DTV (Tuner-0,Demux-0) to DTV (Tuner-0,Demux-1) for 10 times with audio-0 and video-0", AV_SwitchSource(__func__, dtv00, dtv01)) \
    DTV  (TC_AV_DtvSwitchSource_003,   AUTO, "Switch source from DTV (Tuner-0,Demux-0) to DTV (Tuner-1,Demux-1) for 10 times with audio-0 and video-0", AV_SwitchSource(__func__, dtv00, dtv11)) \
    DTV  (TC_AV_DtvSwitchSource_004,   AUTO, "Switch source from DTV (Tuner-1,Demux-0) to DTV (Tuner-0,Demux-1) for 10 times with audio-0 and video-0", AV_SwitchSource(__func__, dtv10, dtv01)) \
    DTV  (TC_AV_DtvSwitchSource_005,   AUTO, "Switch source from DTV (Tuner-1,Demux-0) to DTV (Tuner-1,Demux-1) for 10 times with audio-0 and video-0", AV_SwitchSource(__func__, dtv10, dtv11)) \
    DTV  (TC_AV_DtvSwitchSource_006,   AUTO, "Switch source from DTV (Tuner-0,Demux-1) to DTV (Tuner-1,Demux-1) for 10 times with audio-0 and video-0", AV_SwitchSource(__func__, dtv01, dtv11))

// From one channel to another.
#define AV_SWITCH_CHANNEL(CVBS, HDMI, YPBPR, ATV, DTV) \
    ATV(TC_AV_AtvSwitchAtvChannel_001, AUTO, "Switch channel for 10 times in ATV (Tuner-0) with audio-0 and video-0",         AV_SwitchChannel(__func__, atv0)) \
    ATV(TC_AV_AtvSwitchAtvChannel_002, AUTO, "Switch channel for 10 times in ATV (Tuner-1) with audio-0 and video-0",         AV_SwitchChannel(__func__, atv1)) \
    ATV(TC_AV_AtvSwitchAtvChannel_003, AUTO, "Switch channel for 10 times in ATV (Tuner-2) with audio-0 and video-0",         AV_SwitchChannel(__func__, atv2)) \
    ATV(TC_AV_AtvSwitchAtvChannel_004, AUTO, "Switch channel for 10 times in ATV (Tuner-3) with audio-0 and video-0",         AV_SwitchChannel(__func__, atv3)) \
    DTV(TC_AV_DtvSwitchChannel_001,    AUTO, "Switch channel for 10 times in DTV (Tuner-0,Demux-0) with audio-0 and video-0", AV_SwitchChannel(__func__, dtv00)) \
    DTV(TC_AV_DtvSwitchChannel_002,    AUTO, "Switch channel for 10 times in DTV (Tuner-1,Demux-0) with audio-0 and video-0", AV_SwitchChannel(__func__, dtv10)) \
    DTV(TC_AV_DtvSwitchChannel_003,    AUTO, "Switch channel for 10 times in DTV (Tuner-0,Demux-1) with audio-0 and video-0", AV_SwitchChannel(__func__, dtv01)) \
    DTV(TC_AV_DtvSwitchChannel_004,    AUTO, "Switch channel for 10 times in DTV (Tuner-1,Demux-1) with audio-0 and video-0", AV_SwitchChannel(__func__, dtv11))

#define AV_PLAY_ROWS(CVBS, HDMI, YPBPR, ATV, DTV) \
    AV_GET_VIDEO_INFO(CVBS, HDMI, YPBPR, ATV, DTV) \
    AV_GET_AUDIO_INFO(CVBS, HDMI, YPBPR, ATV, DTV) \
    AV_VIDEO_EVENT_FLOW(CVBS, HDMI, YPBPR, ATV, DTV) \
    AV_VIDEO_INFO_NOT_REPEATED(CVBS, HDMI, YPBPR, ATV, DTV) \
    AV_VIDEO_EVENT_INFO_CHANGE(CVBS, HDMI, YPBPR, ATV, DTV) \
    AV_VIDEO_EVENT_CONSUMPTION(CVBS, HDMI, YPBPR, ATV, DTV) \
    AV_AUDIO_EVENT_FLOW(CVBS, HDMI, YPBPR, ATV, DTV) \
    AV_AUDIO_INFO_NOT_REPEATED(CVBS, HDMI, YPBPR, ATV, DTV) \
    AV_AUDIO_EVENT_INFO_CHANGE(CVBS, HDMI, YPBPR, ATV, DTV) \
    AV_AUDIO_EVENT_CONSUMPTION(CVBS, HDMI, YPBPR, ATV, DTV) \
    AV_PLAY_TEN_ROUNDS(CVBS, HDMI, YPBPR, ATV, DTV) \
    AV_PLAY_CONFIRMED(CVBS, HDMI, YPBPR, ATV, DTV) \
    AV_SWITCH_SOURCE(CVBS, HDMI, YPBPR, ATV, DTV) \
    AV_SWITCH_CHANNEL(CVBS, HDMI, YPBPR, ATV, DTV)
// clang-format on

#endif

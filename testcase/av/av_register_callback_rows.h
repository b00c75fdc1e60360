/* Decoders that get a callback, on every source: the rows of all modules, each by its
 * source. A module takes its own (AV_NOT_HERE for those of the others). */
#ifndef TESTCASE_AV_AV_REGISTER_CALLBACK_ROWS_H
#define TESTCASE_AV_AV_REGISTER_CALLBACK_ROWS_H

#include "testcase/av/av_ladders.h"

// clang-format off
// Video alone.
#define AV_REGISTER_CALLBACK_VIDEO_ALONE(CVBS, HDMI, YPBPR, ATV, PVR, DTV) \
    CVBS (TC_AV_CvbsRegisterCallback_027_01,  AUTO, "Register and unregister callball to video-0 in source CVBS-0",             AV_RegisterCallback(__func__, AV_VIDEO_ALONE, cvbs0)) \
    CVBS (TC_AV_CvbsRegisterCallback_027_02,  AUTO, "Register and unregister callball to video-0 in source CVBS-1",             AV_RegisterCallback(__func__, AV_VIDEO_ALONE, cvbs1)) \
    HDMI (TC_AV_HdmiRegisterCallback_029_01,  AUTO, "Register and unregister callball to video-0 in source HDMI-0",             AV_RegisterCallback(__func__, AV_VIDEO_ALONE, hdmi0)) \
    HDMI (TC_AV_HdmiRegisterCallback_029_02,  AUTO, "Register and unregister callball to video-0 in source HDMI-1",             AV_RegisterCallback(__func__, AV_VIDEO_ALONE, hdmi1)) \
    HDMI (TC_AV_HdmiRegisterCallback_029_03,  AUTO, "Register and unregister callball to video-0 in source HDMI-2",             AV_RegisterCallback(__func__, AV_VIDEO_ALONE, hdmi2)) \
    YPBPR(TC_AV_YpbprRegisterCallback_025_01, AUTO, "Register and unregister callball to video-0 in source YPBPR-0",            AV_RegisterCallback(__func__, AV_VIDEO_ALONE, ypbpr0)) \
    YPBPR(TC_AV_YpbprRegisterCallback_025_02, AUTO, "Register and unregister callball to video-0 in source YPBPR-1",            AV_RegisterCallback(__func__, AV_VIDEO_ALONE, ypbpr1)) \
    ATV  (TC_AV_AtvRegisterCallback_032_01,   AUTO, "Register and unregister callball to video-0 in source ATV-0",              AV_RegisterCallback(__func__, AV_VIDEO_ALONE, atv0)) \
    ATV  (TC_AV_AtvRegisterCallback_032_02,   AUTO, "Register and unregister callball to video-0 in source ATV-1",              AV_RegisterCallback(__func__, AV_VIDEO_ALONE, atv1)) \
    ATV  (TC_AV_AtvRegisterCallback_032_03,   AUTO, "Register and unregister callball to video-0 in source ATV-2",              AV_RegisterCallback(__func__, AV_VIDEO_ALONE, atv2)) \
    ATV  (TC_AV_AtvRegisterCallback_032_04,   AUTO, "Register and unregister callball to video-0 in source ATV-3",              AV_RegisterCallback(__func__, AV_VIDEO_ALONE, atv3)) \
    PVR  (TC_AV_PvrRegisterCallback_021_01,   AUTO, "Register and unregister callball to video-0 in source PVR(Demux-0)",       AV_RegisterCallback(__func__, AV_VIDEO_ALONE, pvr0)) \
    PVR  (TC_AV_PvrRegisterCallback_021_02,   AUTO, "Register and unregister callball to video-0 in source PVR(Demux-1)",       AV_RegisterCallback(__func__, AV_VIDEO_ALONE, pvr1)) \
    PVR  (TC_AV_PvrRegisterCallback_021_03,   AUTO, "Register and unregister callball to video-0 in source PVR(Demux-2)",       AV_RegisterCallback(__func__, AV_VIDEO_ALONE, pvr2)) \
    PVR  (TC_AV_PvrRegisterCallback_021_04,   AUTO, "Register and unregister callball to video-0 in source PVR(Demux-3)",       AV_RegisterCallback(__func__, AV_VIDEO_ALONE, pvr3)) \
    DTV  (TC_AV_DtvRegisterCallback_005_01,   AUTO, "Register and unregister callball to video-0 in source (Tuner-0, Demux-0)", AV_RegisterCallback(__func__, AV_VIDEO_ALONE, dtv00)) \
    DTV  (TC_AV_DtvRegisterCallback_005_02,   AUTO, "Register and unregister callball to video-0 in source (Tuner-1, Demux-0)", AV_RegisterCallback(__func__, AV_VIDEO_ALONE, dtv10)) \
    DTV  (TC_AV_DtvRegisterCallback_005_05,   AUTO, "Register and unregister callball to video-0 in source (Tuner-0, Demux-1)", AV_RegisterCallback(__func__, AV_VIDEO_ALONE, dtv01)) \
    DTV  (TC_AV_DtvRegisterCallback_005_06,   AUTO, "Register and unregister callball to video-0 in source (Tuner-1, Demux-1)", AV_RegisterCallback(__func__, AV_VIDEO_ALONE, dtv11))

// Audio alone.
#define AV_REGISTER_CALLBACK_AUDIO_ALONE(CVBS, HDMI, YPBPR, ATV, PVR, DTV) \
    CVBS (TC_AV_CvbsRegisterCallback_058_01,  AUTO, "Register and unregister callball to audio-0 in source CVBS-0",             AV_RegisterCallback(__func__, AV_AUDIO_ALONE, cvbs0)) \
    CVBS (TC_AV_CvbsRegisterCallback_058_02,  AUTO, "Register and unregister callball to audio-0 in source CVBS-1",             AV_RegisterCallback(__func__, AV_AUDIO_ALONE, cvbs1)) \
    HDMI (TC_AV_HdmiRegisterCallback_060_01,  AUTO, "Register and unregister callball to audio-0 in source HDMI-0",             AV_RegisterCallback(__func__, AV_AUDIO_ALONE, hdmi0)) \
    HDMI (TC_AV_HdmiRegisterCallback_060_02,  AUTO, "Register and unregister callball to audio-0 in source HDMI-1",             AV_RegisterCallback(__func__, AV_AUDIO_ALONE, hdmi1)) \
    HDMI (TC_AV_HdmiRegisterCallback_060_03,  AUTO, "Register and unregister callball to audio-0 in source HDMI-2",             AV_RegisterCallback(__func__, AV_AUDIO_ALONE, hdmi2)) \
    YPBPR(TC_AV_YpbprRegisterCallback_056_01, AUTO, "Register and unregister callball to audio-0 in source YPBPR-0",            AV_RegisterCallback(__func__, AV_AUDIO_ALONE, ypbpr0)) \
    YPBPR(TC_AV_YpbprRegisterCallback_056_02, AUTO, "Register and unregister callball to audio-0 in source YPBPR-1",            AV_RegisterCallback(__func__, AV_AUDIO_ALONE, ypbpr1)) \
    ATV  (TC_AV_AtvRegisterCallback_063_01,   AUTO, "Register and unregister callball to audio-0 in source ATV-0",              AV_RegisterCallback(__func__, AV_AUDIO_ALONE, atv0)) \
    ATV  (TC_AV_AtvRegisterCallback_063_02,   AUTO, "Register and unregister callball to audio-0 in source ATV-1",              AV_RegisterCallback(__func__, AV_AUDIO_ALONE, atv1)) \
    ATV  (TC_AV_AtvRegisterCallback_063_03,   AUTO, "Register and unregister callball to audio-0 in source ATV-2",              AV_RegisterCallback(__func__, AV_AUDIO_ALONE, atv2)) \
    ATV  (TC_AV_AtvRegisterCallback_063_04,   AUTO, "Register and unregister callball to audio-0 in source ATV-3",              AV_RegisterCallback(__func__, AV_AUDIO_ALONE, atv3)) \
    PVR  (TC_AV_PvrRegisterCallback_052_01,   AUTO, "Register and unregister callball to audio-0 in source PVR(Demux-0)",       AV_RegisterCallback(__func__, AV_AUDIO_ALONE, pvr0)) \
    PVR  (TC_AV_PvrRegisterCallback_052_02,   AUTO, "Register and unregister callball to audio-0 in source PVR(Demux-1)",       AV_RegisterCallback(__func__, AV_AUDIO_ALONE, pvr1)) \
    PVR  (TC_AV_PvrRegisterCallback_052_03,   AUTO, "Register and unregister callball to audio-0 in source PVR(Demux-2)",       AV_RegisterCallback(__func__, AV_AUDIO_ALONE, pvr2)) \
    PVR  (TC_AV_PvrRegisterCallback_052_04,   AUTO, "Register and unregister callball to audio-0 in source PVR(Demux-3)",       AV_RegisterCallback(__func__, AV_AUDIO_ALONE, pvr3)) \
    DTV  (TC_AV_DtvRegisterCallback_036_01,   AUTO, "Register and unregister callball to audio-0 in source (Tuner-0, Demux-0)", AV_RegisterCallback(__func__, AV_AUDIO_ALONE, dtv00)) \
    DTV  (TC_AV_DtvRegisterCallback_036_02,   AUTO, "Register and unregister callball to audio-0 in source (Tuner-1, Demux-0)", AV_RegisterCallback(__func__, AV_AUDIO_ALONE, dtv10)) \
    DTV  (TC_AV_DtvRegisterCallback_036_05,   AUTO, "Register and unregister callball to audio-0 in source (Tuner-0, Demux-1)", AV_RegisterCallback(__func__, AV_AUDIO_ALONE, dtv01)) \
    DTV  (TC_AV_DtvRegisterCallback_036_06,   AUTO, "Register and unregister callball to audio-0 in source (Tuner-1, Demux-1)", AV_RegisterCallback(__func__, AV_AUDIO_ALONE, dtv11))

// Video a second time.
#define AV_REGISTER_CALLBACK_VIDEO_TWICE(CVBS, HDMI, YPBPR, ATV, PVR, DTV) \
    CVBS (TC_AV_CvbsRegisterCallback_089_01,  AUTO, "Consecutively register callback to video-0 twice without unregistering in source CVBS-0",             AV_RegisterCallback(__func__, AV_VIDEO_TWICE, cvbs0)) \
    CVBS (TC_AV_CvbsRegisterCallback_089_02,  AUTO, "Consecutively register callback to video-0 twice without unregistering in source CVBS-1",             AV_RegisterCallback(__func__, AV_VIDEO_TWICE, cvbs1)) \
    HDMI (TC_AV_HdmiRegisterCallback_091_01,  AUTO, "Consecutively register callback to video-0 twice without unregistering in source HDMI-0",             AV_RegisterCallback(__func__, AV_VIDEO_TWICE, hdmi0)) \
    HDMI (TC_AV_HdmiRegisterCallback_091_02,  AUTO, "Consecutively register callback to video-0 twice without unregistering in source HDMI-1",             AV_RegisterCallback(__func__, AV_VIDEO_TWICE, hdmi1)) \
    HDMI (TC_AV_HdmiRegisterCallback_091_03,  AUTO, "Consecutively register callback to video-0 twice without unregistering in source HDMI-2",             AV_RegisterCallback(__func__, AV_VIDEO_TWICE, hdmi2)) \
    YPBPR(TC_AV_YpbprRegisterCallback_087_01, AUTO, "Consecutively register callback to video-0 twice without unregistering in source YPBPR-0",            AV_RegisterCallback(__func__, AV_VIDEO_TWICE, ypbpr0)) \
    YPBPR(TC_AV_YpbprRegisterCallback_087_02, AUTO, "Consecutively register callback to video-0 twice without unregistering in source YPBPR-1",            AV_RegisterCallback(__func__, AV_VIDEO_TWICE, ypbpr1)) \
    ATV  (TC_AV_AtvRegisterCallback_094_01,   AUTO, "Consecutively register callback to video-0 twice without unregistering in source ATV-0",              AV_RegisterCallback(__func__, AV_VIDEO_TWICE, atv0)) \
    ATV  (TC_AV_AtvRegisterCallback_094_02,   AUTO, "Consecutively register callback to video-0 twice without unregistering in source ATV-1",              AV_RegisterCallback(__func__, AV_VIDEO_TWICE, atv1)) \
    ATV  (TC_AV_AtvRegisterCallback_094_03,   AUTO, "Consecutively register callback to video-0 twice without unregistering in source ATV-2",              AV_RegisterCallback(__func__, AV_VIDEO_TWICE, atv2)) \
    ATV  (TC_AV_AtvRegisterCallback_094_04,   AUTO, "Consecutively register callback to video-0 twice without unregistering in source ATV-3",              AV_RegisterCallback(__func__, AV_VIDEO_TWICE, atv3)) \
    PVR  (TC_AV_PvrRegisterCallback_083_01,   AUTO, "Consecutively register callback to video-0 twice without unregistering in source PVR(Demux-0)",       AV_RegisterCallback(__func__, AV_VIDEO_TWICE, pvr0)) \
    PVR  (TC_AV_PvrRegisterCallback_083_02,   AUTO, "Consecutively register callback to video-0 twice without unregistering in source PVR(Demux-1)",       AV_RegisterCallback(__func__, AV_VIDEO_TWICE, pvr1)) \
    PVR  (TC_AV_PvrRegisterCallback_083_03,   AUTO, "Consecutively register callback to video-0 twice without unregistering in source PVR(Demux-2)",       AV_RegisterCallback(__func__, AV_VIDEO_TWICE, pvr2)) \
    PVR  (TC_AV_PvrRegisterCallback_083_04,   AUTO, "Consecutively register callback to video-0 twice without unregistering in source PVR(Demux-3)",       AV_RegisterCallback(__func__, AV_VIDEO_TWICE, pvr3)) \
    DTV  (TC_AV_DtvRegisterCallback_067_01,   AUTO, "Consecutively register callback to video-0 twice without unregistering in source (Tuner-0, Demux-0)", AV_RegisterCallback(__func__, AV_VIDEO_TWICE, dtv00)) \
    DTV  (TC_AV_DtvRegisterCallback_067_02,   AUTO, "Consecutively register callback to video-0 twice without unregistering in source (Tuner-1, Demux-0)", AV_RegisterCallback(__func__, AV_VIDEO_TWICE, dtv10)) \
    DTV  (TC_AV_DtvRegisterCallback_067_05,   AUTO, "Consecutively register callback to video-0 twice without unregistering in source (Tuner-0, Demux-1)", AV_RegisterCallback(__func__, AV_VIDEO_TWICE, dtv01)) \
    DTV  (TC_AV_DtvRegisterCallback_067_06,   AUTO, "Consecutively register callback to video-0 twice without unregistering in source (Tuner-1, Demux-1)", AV_RegisterCallback(__func__, AV_VIDEO_TWICE, dtv11))

// Audio a second time.
#define AV_REGISTER_CALLBACK_AUDIO_TWICE(CVBS, HDMI, YPBPR, ATV, PVR, DTV) \
    CVBS (TC_AV_CvbsRegisterCallback_120_01,  AUTO, "Consecutively register callback to audio-0 twice without unregistering in source CVBS-0",             AV_RegisterCallback(__func__, AV_AUDIO_TWICE, cvbs0)) \
    CVBS (TC_AV_CvbsRegisterCallback_120_02,  AUTO, "Consecutively register callback to audio-0 twice without unregistering in source CVBS-1",             AV_RegisterCallback(__func__, AV_AUDIO_TWICE, cvbs1)) \
    HDMI (TC_AV_HdmiRegisterCallback_122_01,  AUTO, "Consecutively register callback to audio-0 twice without unregistering in source HDMI-0",             AV_RegisterCallback(__func__, AV_AUDIO_TWICE, hdmi0)) \
    HDMI (TC_AV_HdmiRegisterCallback_122_02,  AUTO, "Consecutively register callback to audio-0 twice without unregistering in source HDMI-1",             AV_RegisterCallback(__func__, AV_AUDIO_TWICE, hdmi1)) \
    HDMI (TC_AV_HdmiRegisterCallback_122_03,  AUTO, "Consecutively register callback to audio-0 twice without unregistering in source HDMI-2",             AV_RegisterCallback(__func__, AV_AUDIO_TWICE, hdmi2)) \
    YPBPR(TC_AV_YpbprRegisterCallback_118_01, AUTO, "Consecutively register callback to audio-0 twice without unregistering in source YPBPR-0",            AV_RegisterCallback(__func__, AV_AUDIO_TWICE, ypbpr0)) \
    YPBPR(TC_AV_YpbprRegisterCallback_118_02, AUTO, "Consecutively register callback to audio-0 twice without unregistering in source YPBPR-1",            AV_RegisterCallback(__func__, AV_AUDIO_TWICE, ypbpr1)) \
    ATV  (TC_AV_AtvRegisterCallback_125_01,   AUTO, "Consecutively register callback to audio-0 twice without unregistering in source ATV-0",              AV_RegisterCallback(__func__, AV_AUDIO_TWICE, atv0)) \
    ATV  (TC_AV_AtvRegisterCallback_125_02,   AUTO, "Consecutively register callback to audio-0 twice without unregistering in source ATV-1",              AV_RegisterCallback(__func__, AV_AUDIO_TWICE, atv1)) \
    ATV  (TC_AV_AtvRegisterCallback_125_03,   AUTO, "Consecutively register callback to audio-0 twice without unregistering in source ATV-2",              AV_RegisterCallback(__func__, AV_AUDIO_TWICE, atv2)) \
    ATV  (TC_AV_AtvRegisterCallback_125_04,   AUTO, "Consecutively register callback to audio-0 twice without unregistering in source ATV-3",              AV_RegisterCallback(__func__, AV_AUDIO_TWICE, atv3)) \
    PVR  (TC_AV_PvrRegisterCallback_114_01,   AUTO, "Consecutively register callback to audio-0 twice without unregistering in source PVR(Demux-0)",       AV_RegisterCallback(__func__, AV_AUDIO_TWICE, pvr0)) \
    PVR  (TC_AV_PvrRegisterCallback_114_02,   AUTO, "Consecutively register callback to audio-0 twice without unregistering in source PVR(Demux-1)",       AV_RegisterCallback(__func__, AV_AUDIO_TWICE, pvr1)) \
    PVR  (TC_AV_PvrRegisterCallback_114_03,   AUTO, "Consecutively register callback to audio-0 twice without unregistering in source PVR(Demux-2)",       AV_RegisterCallback(__func__, AV_AUDIO_TWICE, pvr2)) \
    PVR  (TC_AV_PvrRegisterCallback_114_04,   AUTO, "Consecutively register callback to audio-0 twice without unregistering in source PVR(Demux-3)",       AV_RegisterCallback(__func__, AV_AUDIO_TWICE, pvr3)) \
    DTV  (TC_AV_DtvRegisterCallback_098_01,   AUTO, "Consecutively register callback to audio-0 twice without unregistering in source (Tuner-0, Demux-0)", AV_RegisterCallback(__func__, AV_AUDIO_TWICE, dtv00)) \
    DTV  (TC_AV_DtvRegisterCallback_098_02,   AUTO, "Consecutively register callback to audio-0 twice without unregistering in source (Tuner-1, Demux-0)", AV_RegisterCallback(__func__, AV_AUDIO_TWICE, dtv10)) \
    DTV  (TC_AV_DtvRegisterCallback_098_05,   AUTO, "Consecutively register callback to audio-0 twice without unregistering in source (Tuner-0, Demux-1)", AV_RegisterCallback(__func__, AV_AUDIO_TWICE, dtv01)) \
    DTV  (TC_AV_DtvRegisterCallback_098_06,   AUTO, "Consecutively register callback to audio-0 twice without unregistering in source (Tuner-1, Demux-1)", AV_RegisterCallback(__func__, AV_AUDIO_TWICE, dtv11))

// Both.
#define AV_REGISTER_CALLBACK_BOTH(CVBS, HDMI, YPBPR, ATV, PVR, DTV) \
    CVBS (TC_AV_CvbsRegisterCallback_151_01,  AUTO, "Register and unregister callball to video-0/audio-0 in source CVBS-0",             AV_RegisterCallback(__func__, AV_BOTH, cvbs0)) \
    CVBS (TC_AV_CvbsRegisterCallback_151_02,  AUTO, "Register and unregister callball to video-0/audio-0 in source CVBS-1",             AV_RegisterCallback(__func__, AV_BOTH, cvbs1)) \
    HDMI (TC_AV_HdmiRegisterCallback_153_01,  AUTO, "Register and unregister callball to video-0/audio-0 in source HDMI-0",             AV_RegisterCallback(__func__, AV_BOTH, hdmi0)) \
    HDMI (TC_AV_HdmiRegisterCallback_153_02,  AUTO, "Register and unregister callball to video-0/audio-0 in source HDMI-1",             AV_RegisterCallback(__func__, AV_BOTH, hdmi1)) \
    HDMI (TC_AV_HdmiRegisterCallback_153_03,  AUTO, "Register and unregister callball to video-0/audio-0 in source HDMI-2",             AV_RegisterCallback(__func__, AV_BOTH, hdmi2)) \
    YPBPR(TC_AV_YpbprRegisterCallback_149_01, AUTO, "Register and unregister callball to video-0/audio-0 in source YPBPR-0",            AV_RegisterCallback(__func__, AV_BOTH, ypbpr0)) \
    YPBPR(TC_AV_YpbprRegisterCallback_149_02, AUTO, "Register and unregister callball to video-0/audio-0 in source YPBPR-1",            AV_RegisterCallback(__func__, AV_BOTH, ypbpr1)) \
    ATV  (TC_AV_AtvRegisterCallback_156_01,   AUTO, "Register and unregister callball to video-0/audio-0 in source ATV-0",              AV_RegisterCallback(__func__, AV_BOTH, atv0)) \
    ATV  (TC_AV_AtvRegisterCallback_156_02,   AUTO, "Register and unregister callball to video-0/audio-0 in source ATV-1",              AV_RegisterCallback(__func__, AV_BOTH, atv1)) \
    ATV  (TC_AV_AtvRegisterCallback_156_03,   AUTO, "Register and unregister callball to video-0/audio-0 in source ATV-2",              AV_RegisterCallback(__func__, AV_BOTH, atv2)) \
    ATV  (TC_AV_AtvRegisterCallback_156_04,   AUTO, "Register and unregister callball to video-0/audio-0 in source ATV-3",              AV_RegisterCallback(__func__, AV_BOTH, atv3)) \
    PVR  (TC_AV_PvrRegisterCallback_145_01,   AUTO, "Register and unregister callball to video-0/audio-0 in source PVR(Demux-0)",       AV_RegisterCallback(__func__, AV_BOTH, pvr0)) \
    PVR  (TC_AV_PvrRegisterCallback_145_02,   AUTO, "Register and unregister callball to video-0/audio-0 in source PVR(Demux-1)",       AV_RegisterCallback(__func__, AV_BOTH, pvr1)) \
    PVR  (TC_AV_PvrRegisterCallback_145_03,   AUTO, "Register and unregister callball to video-0/audio-0 in source PVR(Demux-2)",       AV_RegisterCallback(__func__, AV_BOTH, pvr2)) \
    PVR  (TC_AV_PvrRegisterCallback_145_04,   AUTO, "Register and unregister callball to video-0/audio-0 in source PVR(Demux-3)",       AV_RegisterCallback(__func__, AV_BOTH, pvr3)) \
    DTV  (TC_AV_DtvRegisterCallback_129_01,   AUTO, "Register and unregister callball to video-0/audio-0 in source (Tuner-0, Demux-0)", AV_RegisterCallback(__func__, AV_BOTH, dtv00)) \
    DTV  (TC_AV_DtvRegisterCallback_129_02,   AUTO, "Register and unregister callball to video-0/audio-0 in source (Tuner-1, Demux-0)", AV_RegisterCallback(__func__, AV_BOTH, dtv10)) \
    DTV  (TC_AV_DtvRegisterCallback_129_05,   AUTO, "Register and unregister callball to video-0/audio-0 in source (Tuner-0, Demux-1)", AV_RegisterCallback(__func__, AV_BOTH, dtv01)) \
    DTV  (TC_AV_DtvRegisterCallback_129_06,   AUTO, "Register and unregister callball to video-0/audio-0 in source (Tuner-1, Demux-1)", AV_RegisterCallback(__func__, AV_BOTH, dtv11))

// Both, two rounds.
#define AV_REGISTER_CALLBACK_BOTH_TWO_ROUNDS(CVBS, HDMI, YPBPR, ATV, PVR, DTV) \
    CVBS (TC_AV_CvbsRegisterCallback_182_01,  AUTO, "Register and unregister callball to video-0/audio-0 twice in source CVBS-0",             AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, cvbs0)) \
    CVBS (TC_AV_CvbsRegisterCallback_182_02,  AUTO, "Register and unregister callball to video-0/audio-0 twice in source CVBS-1",             AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, cvbs1)) \
    HDMI (TC_AV_HdmiRegisterCallback_184_01,  AUTO, "Register and unregister callball to video-0/audio-0 twice in source HDMI-0",             AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, hdmi0)) \
    HDMI (TC_AV_HdmiRegisterCallback_184_02,  AUTO, "Register and unregister callball to video-0/audio-0 twice in source HDMI-1",             AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, hdmi1)) \
    HDMI (TC_AV_HdmiRegisterCallback_184_03,  AUTO, "Register and unregister callball to video-0/audio-0 twice in source HDMI-2",             AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, hdmi2)) \
    YPBPR(TC_AV_YpbprRegisterCallback_180_01, AUTO, "Register and unregister callball to video-0/audio-0 twice in source YPBPR-0",            AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, ypbpr0)) \
    YPBPR(TC_AV_YpbprRegisterCallback_180_02, AUTO, "Register and unregister callball to video-0/audio-0 twice in source YPBPR-1",            AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, ypbpr1)) \
    ATV  (TC_AV_AtvRegisterCallback_187_01,   AUTO, "Register and unregister callball to video-0/audio-0 twice in source ATV-0",              AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, atv0)) \
    ATV  (TC_AV_AtvRegisterCallback_187_02,   AUTO, "Register and unregister callball to video-0/audio-0 twice in source ATV-1",              AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, atv1)) \
    ATV  (TC_AV_AtvRegisterCallback_187_03,   AUTO, "Register and unregister callball to video-0/audio-0 twice in source ATV-2",              AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, atv2)) \
    ATV  (TC_AV_AtvRegisterCallback_187_04,   AUTO, "Register and unregister callball to video-0/audio-0 twice in source ATV-3",              AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, atv3)) \
    PVR  (TC_AV_PvrRegisterCallback_176_01,   AUTO, "Register and unregister callball to video-0/audio-0 twice in source PVR(Demux-0)",       AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, pvr0)) \
    PVR  (TC_AV_PvrRegisterCallback_176_02,   AUTO, "Register and unregister callball to video-0/audio-0 twice in source PVR(Demux-1)",       AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, pvr1)) \
    PVR  (TC_AV_PvrRegisterCallback_176_03,   AUTO, "Register and unregister callball to video-0/audio-0 twice in source PVR(Demux-2)",       AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, pvr2)) \
    PVR  (TC_AV_PvrRegisterCallback_176_04,   AUTO, "Register and unregister callball to video-0/audio-0 twice in source PVR(Demux-3)",       AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, pvr3)) \
    DTV  (TC_AV_DtvRegisterCallback_160_01,   AUTO, "Register and unregister callball to video-0/audio-0 twice in source (Tuner-0, Demux-0)", AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, dtv00)) \
    DTV  (TC_AV_DtvRegisterCallback_160_02,   AUTO, "Register and unregister callball to video-0/audio-0 twice in source (Tuner-1, Demux-0)", AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, dtv10)) \
    DTV  (TC_AV_DtvRegisterCallback_160_05,   AUTO, "Register and unregister callball to video-0/audio-0 twice in source (Tuner-0, Demux-1)", AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, dtv01)) \
    DTV  (TC_AV_DtvRegisterCallback_160_06,   AUTO, "Register and unregister callball to video-0/audio-0 twice in source (Tuner-1, Demux-1)", AV_RegisterCallback(__func__, AV_BOTH_TWO_ROUNDS, dtv11))

// Both, each call in time.
#define AV_REGISTER_CALLBACK_BOTH_TIMED(CVBS, HDMI, YPBPR, ATV, PVR, DTV) \
    CVBS (TC_AV_CvbsRegisterCallback_213_01,  AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source CVBS-0",             AV_RegisterCallback(__func__, AV_BOTH_TIMED, cvbs0)) \
    CVBS (TC_AV_CvbsRegisterCallback_213_02,  AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source CVBS-1",             AV_RegisterCallback(__func__, AV_BOTH_TIMED, cvbs1)) \
    HDMI (TC_AV_HdmiRegisterCallback_215_01,  AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source HDMI-0",             AV_RegisterCallback(__func__, AV_BOTH_TIMED, hdmi0)) \
    HDMI (TC_AV_HdmiRegisterCallback_215_02,  AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source HDMI-1",             AV_RegisterCallback(__func__, AV_BOTH_TIMED, hdmi1)) \
    HDMI (TC_AV_HdmiRegisterCallback_215_03,  AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source HDMI-2",             AV_RegisterCallback(__func__, AV_BOTH_TIMED, hdmi2)) \
    YPBPR(TC_AV_YpbprRegisterCallback_211_01, AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source YPBPR-0",            AV_RegisterCallback(__func__, AV_BOTH_TIMED, ypbpr0)) \
    YPBPR(TC_AV_YpbprRegisterCallback_211_02, AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source YPBPR-1",            AV_RegisterCallback(__func__, AV_BOTH_TIMED, ypbpr1)) \
    ATV  (TC_AV_AtvRegisterCallback_218_01,   AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source ATV-0",              AV_RegisterCallback(__func__, AV_BOTH_TIMED, atv0)) \
    ATV  (TC_AV_AtvRegisterCallback_218_02,   AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source ATV-1",              AV_RegisterCallback(__func__, AV_BOTH_TIMED, atv1)) \
    ATV  (TC_AV_AtvRegisterCallback_218_03,   AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source ATV-2",              AV_RegisterCallback(__func__, AV_BOTH_TIMED, atv2)) \
    ATV  (TC_AV_AtvRegisterCallback_218_04,   AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source ATV-3",              AV_RegisterCallback(__func__, AV_BOTH_TIMED, atv3)) \
    PVR  (TC_AV_PvrRegisterCallback_207_01,   AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source PVR(Demux-0)",       AV_RegisterCallback(__func__, AV_BOTH_TIMED, pvr0)) \
    PVR  (TC_AV_PvrRegisterCallback_207_02,   AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source PVR(Demux-1)",       AV_RegisterCallback(__func__, AV_BOTH_TIMED, pvr1)) \
    PVR  (TC_AV_PvrRegisterCallback_207_03,   AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source PVR(Demux-2)",       AV_RegisterCallback(__func__, AV_BOTH_TIMED, pvr2)) \
    PVR  (TC_AV_PvrRegisterCallback_207_04,   AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source PVR(Demux-3)",       AV_RegisterCallback(__func__, AV_BOTH_TIMED, pvr3)) \
    DTV  (TC_AV_DtvRegisterCallback_191_01,   AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source (Tuner-0, Demux-0)", AV_RegisterCallback(__func__, AV_BOTH_TIMED, dtv00)) \
    DTV  (TC_AV_DtvRegisterCallback_191_02,   AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source (Tuner-1, Demux-0)", AV_RegisterCallback(__func__, AV_BOTH_TIMED, dtv10)) \
    DTV  (TC_AV_DtvRegisterCallback_191_05,   AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source (Tuner-0, Demux-1)", AV_RegisterCallback(__func__, AV_BOTH_TIMED, dtv01)) \
    DTV  (TC_AV_DtvRegisterCallback_191_06,   AUTO, "Test the consumption time of registering and unregistering callback to video-0/audio-0 in source (Tuner-1, Demux-1)", AV_RegisterCallback(__func__, AV_BOTH_TIMED, dtv11))

#define AV_REGISTER_CALLBACK_ROWS(CVBS, HDMI, YPBPR, ATV, PVR, DTV) \
    AV_REGISTER_CALLBACK_VIDEO_ALONE(CVBS, HDMI, YPBPR, ATV, PVR, DTV) \
    AV_REGISTER_CALLBACK_AUDIO_ALONE(CVBS, HDMI, YPBPR, ATV, PVR, DTV) \
    AV_REGISTER_CALLBACK_VIDEO_TWICE(CVBS, HDMI, YPBPR, ATV, PVR, DTV) \
    AV_REGISTER_CALLBACK_AUDIO_TWICE(CVBS, HDMI, YPBPR, ATV, PVR, DTV) \
    AV_REGISTER_CALLBACK_BOTH(CVBS, HDMI, YPBPR, ATV, PVR, DTV) \
    AV_REGISTER_CALLBACK_BOTH_TWO_ROUNDS(CVBS, HDMI, YPBPR, ATV, PVR, DTV) \
    AV_REGISTER_CALLBACK_BOTH_TIMED(CVBS, HDMI, YPBPR, ATV, PVR, DTV)
// clang-format on

#endif

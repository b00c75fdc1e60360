/* Coded formats of broadcasts, by standard: rows of AV-DTV, and their bodies. */
#ifndef TESTCASE_AV_AV_DTV_FORMAT_ROWS_H
#define TESTCASE_AV_AV_DTV_FORMAT_ROWS_H

#include <stdint.h>

#include "platform/qlx_audio.h"
#include "platform/qlx_video.h"
#include "testcase/av/av_case.h"

/**
 * Plays one decoder alone, on the channel that a standard has for a format, and demands that
 * decoder and log tell of that format. Answers the case's result.
 * @param eVideoFormat  QLX_VIDEO_FORMAT_MPEG2 or _H264
 * @param standard      whose channel it is; the tuner looks it up in the table of its own system
 */
uint32_t AV_DtvVideoFormat(const char* name, const AvSelector& selector, uint32_t eVideoFormat,
                           AvStandard standard);
/** @param eAudioFormat  QLX_AUDIO_FORMAT_MPEG, _AAC, _AC3 (of ATSC), _EAC3 or _HEAAC */
uint32_t AV_DtvAudioFormat(const char* name, const AvSelector& selector, uint32_t eAudioFormat,
                           AvStandard standard);

// clang-format off
// Pictures.
#define AV_DTV_VIDEO_FORMAT_ROWS(X) \
    /* case                        flag  description                                                         body */ \
    X(TC_AV_DtvVideoFormat_001_01, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-0,Demux-0,DVB-T)",  AV_DtvVideoFormat(__func__, dtv00, QLX_VIDEO_FORMAT_MPEG2, AV_DVB_T)) \
    X(TC_AV_DtvVideoFormat_001_02, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-1,Demux-0,DVB-T)",  AV_DtvVideoFormat(__func__, dtv10, QLX_VIDEO_FORMAT_MPEG2, AV_DVB_T)) \
    X(TC_AV_DtvVideoFormat_001_03, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-0,Demux-1,DVB-T)",  AV_DtvVideoFormat(__func__, dtv01, QLX_VIDEO_FORMAT_MPEG2, AV_DVB_T)) \
    X(TC_AV_DtvVideoFormat_001_04, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-1,Demux-1,DVB-T)",  AV_DtvVideoFormat(__func__, dtv11, QLX_VIDEO_FORMAT_MPEG2, AV_DVB_T)) \
    X(TC_AV_DtvVideoFormat_002_01, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-0,Demux-0,DVB-C)",  AV_DtvVideoFormat(__func__, dtv00, QLX_VIDEO_FORMAT_MPEG2, AV_DVB_C)) \
    X(TC_AV_DtvVideoFormat_002_02, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-1,Demux-0,DVB-C)",  AV_DtvVideoFormat(__func__, dtv10, QLX_VIDEO_FORMAT_MPEG2, AV_DVB_C)) \
    X(TC_AV_DtvVideoFormat_002_03, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-0,Demux-1,DVB-C)",  AV_DtvVideoFormat(__func__, dtv01, QLX_VIDEO_FORMAT_MPEG2, AV_DVB_C)) \
    X(TC_AV_DtvVideoFormat_002_04, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-1,Demux-1,DVB-C)",  AV_DtvVideoFormat(__func__, dtv11, QLX_VIDEO_FORMAT_MPEG2, AV_DVB_C)) \
    X(TC_AV_DtvVideoFormat_003_01, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-0,Demux-0,DVB-S)",  AV_DtvVideoFormat(__func__, dtv00, QLX_VIDEO_FORMAT_MPEG2, AV_DVB_S)) \
    X(TC_AV_DtvVideoFormat_003_02, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-1,Demux-0,DVB-S)",  AV_DtvVideoFormat(__func__, dtv10, QLX_VIDEO_FORMAT_MPEG2, AV_DVB_S)) \
    X(TC_AV_DtvVideoFormat_003_03, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-0,Demux-1,DVB-S)",  AV_DtvVideoFormat(__func__, dtv01, QLX_VIDEO_FORMAT_MPEG2, AV_DVB_S)) \
    X(TC_AV_DtvVideoFormat_003_04, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-1,Demux-1,DVB-S)",  AV_DtvVideoFormat(__func__, dtv11, QLX_VIDEO_FORMAT_MPEG2, AV_DVB_S)) \
    X(TC_AV_DtvVideoFormat_004_01, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-0,Demux-0,ATSC-T)", AV_DtvVideoFormat(__func__, dtv00, QLX_VIDEO_FORMAT_MPEG2, AV_ATSC_T)) \
    X(TC_AV_DtvVideoFormat_004_02, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-1,Demux-0,ATSC-T)", AV_DtvVideoFormat(__func__, dtv10, QLX_VIDEO_FORMAT_MPEG2, AV_ATSC_T)) \
    X(TC_AV_DtvVideoFormat_004_03, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-0,Demux-1,ATSC-T)", AV_DtvVideoFormat(__func__, dtv01, QLX_VIDEO_FORMAT_MPEG2, AV_ATSC_T)) \
    X(TC_AV_DtvVideoFormat_004_04, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-1,Demux-1,ATSC-T)", AV_DtvVideoFormat(__func__, dtv11, QLX_VIDEO_FORMAT_MPEG2, AV_ATSC_T)) \
    X(TC_AV_DtvVideoFormat_005_01, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-0,Demux-0,ATSC-C)", AV_DtvVideoFormat(__func__, dtv00, QLX_VIDEO_FORMAT_MPEG2, AV_ATSC_C)) \
    X(TC_AV_DtvVideoFormat_005_02, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-1,Demux-0,ATSC-C)", AV_DtvVideoFormat(__func__, dtv10, QLX_VIDEO_FORMAT_MPEG2, AV_ATSC_C)) \
    X(TC_AV_DtvVideoFormat_005_03, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-0,Demux-1,ATSC-C)", AV_DtvVideoFormat(__func__, dtv01, QLX_VIDEO_FORMAT_MPEG2, AV_ATSC_C)) \
    X(TC_AV_DtvVideoFormat_005_04, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-1,Demux-1,ATSC-C)", AV_DtvVideoFormat(__func__, dtv11, QLX_VIDEO_FORMAT_MPEG2, AV_ATSC_C)) \
    X(TC_AV_DtvVideoFormat_006_01, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-0,Demux-0,ISDB-T)", AV_DtvVideoFormat(__func__, dtv00, QLX_VIDEO_FORMAT_MPEG2, AV_ISDB_T)) \
    X(TC_AV_DtvVideoFormat_006_02, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-1,Demux-0,ISDB-T)", AV_DtvVideoFormat(__func__, dtv10, QLX_VIDEO_FORMAT_MPEG2, AV_ISDB_T)) \
    X(TC_AV_DtvVideoFormat_006_03, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-0,Demux-1,ISDB-T)", AV_DtvVideoFormat(__func__, dtv01, QLX_VIDEO_FORMAT_MPEG2, AV_ISDB_T)) \
    X(TC_AV_DtvVideoFormat_006_04, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-1,Demux-1,ISDB-T)", AV_DtvVideoFormat(__func__, dtv11, QLX_VIDEO_FORMAT_MPEG2, AV_ISDB_T)) \
    X(TC_AV_DtvVideoFormat_007_01, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-0,Demux-0,ISDB-S)", AV_DtvVideoFormat(__func__, dtv00, QLX_VIDEO_FORMAT_MPEG2, AV_ISDB_S)) \
    X(TC_AV_DtvVideoFormat_007_02, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-1,Demux-0,ISDB-S)", AV_DtvVideoFormat(__func__, dtv10, QLX_VIDEO_FORMAT_MPEG2, AV_ISDB_S)) \
    X(TC_AV_DtvVideoFormat_007_03, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-0,Demux-1,ISDB-S)", AV_DtvVideoFormat(__func__, dtv01, QLX_VIDEO_FORMAT_MPEG2, AV_ISDB_S)) \
    X(TC_AV_DtvVideoFormat_007_04, AUTO, "Video-0 decode MPEG2 and play in source (Tuner-1,Demux-1,ISDB-S)", AV_DtvVideoFormat(__func__, dtv11, QLX_VIDEO_FORMAT_MPEG2, AV_ISDB_S)) \
    X(TC_AV_DtvVideoFormat_008_01, AUTO, "Video-0 decode H264 and play in source (Tuner-0,Demux-0,DVB-T)",   AV_DtvVideoFormat(__func__, dtv00, QLX_VIDEO_FORMAT_H264, AV_DVB_T)) \
    X(TC_AV_DtvVideoFormat_008_02, AUTO, "Video-0 decode H264 and play in source (Tuner-1,Demux-0,DVB-T)",   AV_DtvVideoFormat(__func__, dtv10, QLX_VIDEO_FORMAT_H264, AV_DVB_T)) \
    X(TC_AV_DtvVideoFormat_008_03, AUTO, "Video-0 decode H264 and play in source (Tuner-0,Demux-1,DVB-T)",   AV_DtvVideoFormat(__func__, dtv01, QLX_VIDEO_FORMAT_H264, AV_DVB_T)) \
    X(TC_AV_DtvVideoFormat_008_04, AUTO, "Video-0 decode H264 and play in source (Tuner-1,Demux-1,DVB-T)",   AV_DtvVideoFormat(__func__, dtv11, QLX_VIDEO_FORMAT_H264, AV_DVB_T)) \
    X(TC_AV_DtvVideoFormat_009_01, AUTO, "Video-0 decode H264 and play in source (Tuner-0,Demux-0,DVB-C)",   AV_DtvVideoFormat(__func__, dtv00, QLX_VIDEO_FORMAT_H264, AV_DVB_C)) \
    X(TC_AV_DtvVideoFormat_009_02, AUTO, "Video-0 decode H264 and play in source (Tuner-1,Demux-0,DVB-C)",   AV_DtvVideoFormat(__func__, dtv10, QLX_VIDEO_FORMAT_H264, AV_DVB_C)) \
    X(TC_AV_DtvVideoFormat_009_03, AUTO, "Video-0 decode H264 and play in source (Tuner-0,Demux-1,DVB-C)",   AV_DtvVideoFormat(__func__, dtv01, QLX_VIDEO_FORMAT_H264, AV_DVB_C)) \
    X(TC_AV_DtvVideoFormat_009_04, AUTO, "Video-0 decode H264 and play in source (Tuner-1,Demux-1,DVB-C)",   AV_DtvVideoFormat(__func__, dtv11, QLX_VIDEO_FORMAT_H264, AV_DVB_C)) \
    X(TC_AV_DtvVideoFormat_010_01, AUTO, "Video-0 decode H264 and play in source (Tuner-0,Demux-0,DVB-S)",   AV_DtvVideoFormat(__func__, dtv00, QLX_VIDEO_FORMAT_H264, AV_DVB_S)) \
    X(TC_AV_DtvVideoFormat_010_02, AUTO, "Video-0 decode H264 and play in source (Tuner-1,Demux-0,DVB-S)",   AV_DtvVideoFormat(__func__, dtv10, QLX_VIDEO_FORMAT_H264, AV_DVB_S)) \
    X(TC_AV_DtvVideoFormat_010_03, AUTO, "Video-0 decode H264 and play in source (Tuner-0,Demux-1,DVB-S)",   AV_DtvVideoFormat(__func__, dtv01, QLX_VIDEO_FORMAT_H264, AV_DVB_S)) \
    X(TC_AV_DtvVideoFormat_010_04, AUTO, "Video-0 decode H264 and play in source (Tuner-1,Demux-1,DVB-S)",   AV_DtvVideoFormat(__func__, dtv11, QLX_VIDEO_FORMAT_H264, AV_DVB_S)) \
    X(TC_AV_DtvVideoFormat_011_01, AUTO, "Video-0 decode H264 and play in source (Tuner-0,Demux-0,ATSC-T)",  AV_DtvVideoFormat(__func__, dtv00, QLX_VIDEO_FORMAT_H264, AV_ATSC_T)) \
    X(TC_AV_DtvVideoFormat_011_02, AUTO, "Video-0 decode H264 and play in source (Tuner-1,Demux-0,ATSC-T)",  AV_DtvVideoFormat(__func__, dtv10, QLX_VIDEO_FORMAT_H264, AV_ATSC_T)) \
    X(TC_AV_DtvVideoFormat_011_03, AUTO, "Video-0 decode H264 and play in source (Tuner-0,Demux-1,ATSC-T)",  AV_DtvVideoFormat(__func__, dtv01, QLX_VIDEO_FORMAT_H264, AV_ATSC_T)) \
    X(TC_AV_DtvVideoFormat_011_04, AUTO, "Video-0 decode H264 and play in source (Tuner-1,Demux-1,ATSC-T)",  AV_DtvVideoFormat(__func__, dtv11, QLX_VIDEO_FORMAT_H264, AV_ATSC_T)) \
    X(TC_AV_DtvVideoFormat_012_01, AUTO, "Video-0 decode H264 and play in source (Tuner-0,Demux-0,ATSC-C)",  AV_DtvVideoFormat(__func__, dtv00, QLX_VIDEO_FORMAT_H264, AV_ATSC_C)) \
    X(TC_AV_DtvVideoFormat_012_02, AUTO, "Video-0 decode H264 and play in source (Tuner-1,Demux-0,ATSC-C)",  AV_DtvVideoFormat(__func__, dtv10, QLX_VIDEO_FORMAT_H264, AV_ATSC_C)) \
    X(TC_AV_DtvVideoFormat_012_03, AUTO, "Video-0 decode H264 and play in source (Tuner-0,Demux-1,ATSC-C)",  AV_DtvVideoFormat(__func__, dtv01, QLX_VIDEO_FORMAT_H264, AV_ATSC_C)) \
    X(TC_AV_DtvVideoFormat_012_04, AUTO, "Video-0 decode H264 and play in source (Tuner-1,Demux-1,ATSC-C)",  AV_DtvVideoFormat(__func__, dtv11, QLX_VIDEO_FORMAT_H264, AV_ATSC_C)) \
    X(TC_AV_DtvVideoFormat_013_01, AUTO, "Video-0 decode H264 and play in source (Tuner-0,Demux-0,ISDB-T)",  AV_DtvVideoFormat(__func__, dtv00, QLX_VIDEO_FORMAT_H264, AV_ISDB_T)) \
    X(TC_AV_DtvVideoFormat_013_02, AUTO, "Video-0 decode H264 and play in source (Tuner-1,Demux-0,ISDB-T)",  AV_DtvVideoFormat(__func__, dtv10, QLX_VIDEO_FORMAT_H264, AV_ISDB_T)) \
    X(TC_AV_DtvVideoFormat_013_03, AUTO, "Video-0 decode H264 and play in source (Tuner-0,Demux-1,ISDB-T)",  AV_DtvVideoFormat(__func__, dtv01, QLX_VIDEO_FORMAT_H264, AV_ISDB_T)) \
    X(TC_AV_DtvVideoFormat_013_04, AUTO, "Video-0 decode H264 and play in source (Tuner-1,Demux-1,ISDB-T)",  AV_DtvVideoFormat(__func__, dtv11, QLX_VIDEO_FORMAT_H264, AV_ISDB_T)) \
    X(TC_AV_DtvVideoFormat_014_01, AUTO, "Video-0 decode H264 and play in source (Tuner-0,Demux-0,ISDB-S)",  AV_DtvVideoFormat(__func__, dtv00, QLX_VIDEO_FORMAT_H264, AV_ISDB_S)) \
    X(TC_AV_DtvVideoFormat_014_02, AUTO, "Video-0 decode H264 and play in source (Tuner-1,Demux-0,ISDB-S)",  AV_DtvVideoFormat(__func__, dtv10, QLX_VIDEO_FORMAT_H264, AV_ISDB_S)) \
    X(TC_AV_DtvVideoFormat_014_03, AUTO, "Video-0 decode H264 and play in source (Tuner-0,Demux-1,ISDB-S)",  AV_DtvVideoFormat(__func__, dtv01, QLX_VIDEO_FORMAT_H264, AV_ISDB_S)) \
    X(TC_AV_DtvVideoFormat_014_04, AUTO, "Video-0 decode H264 and play in source (Tuner-1,Demux-1,ISDB-S)",  AV_DtvVideoFormat(__func__, dtv11, QLX_VIDEO_FORMAT_H264, AV_ISDB_S))

// Sounds.
#define AV_DTV_AUDIO_FORMAT_ROWS(X) \
    /* case                        flag  description                                                            body */ \
    X(TC_AV_DtvAudioFormat_001_01, AUTO, "Audio-0 decode MPEG and play in source (Tuner-0,Demux-0,DVB-T)",      AV_DtvAudioFormat(__func__, dtv00, QLX_AUDIO_FORMAT_MPEG, AV_DVB_T)) \
    X(TC_AV_DtvAudioFormat_001_02, AUTO, "Audio-0 decode MPEG and play in source (Tuner-1,Demux-0,DVB-T)",      AV_DtvAudioFormat(__func__, dtv10, QLX_AUDIO_FORMAT_MPEG, AV_DVB_T)) \
    X(TC_AV_DtvAudioFormat_001_03, AUTO, "Audio-0 decode MPEG and play in source (Tuner-0,Demux-1,DVB-T)",      AV_DtvAudioFormat(__func__, dtv01, QLX_AUDIO_FORMAT_MPEG, AV_DVB_T)) \
    X(TC_AV_DtvAudioFormat_001_04, AUTO, "Audio-0 decode MPEG and play in source (Tuner-1,Demux-1,DVB-T)",      AV_DtvAudioFormat(__func__, dtv11, QLX_AUDIO_FORMAT_MPEG, AV_DVB_T)) \
    X(TC_AV_DtvAudioFormat_002_01, AUTO, "Audio-0 decode MPEG and play in source (Tuner-0,Demux-0,DVB-C)",      AV_DtvAudioFormat(__func__, dtv00, QLX_AUDIO_FORMAT_MPEG, AV_DVB_C)) \
    X(TC_AV_DtvAudioFormat_002_02, AUTO, "Audio-0 decode MPEG and play in source (Tuner-1,Demux-0,DVB-C)",      AV_DtvAudioFormat(__func__, dtv10, QLX_AUDIO_FORMAT_MPEG, AV_DVB_C)) \
    X(TC_AV_DtvAudioFormat_002_03, AUTO, "Audio-0 decode MPEG and play in source (Tuner-0,Demux-1,DVB-C)",      AV_DtvAudioFormat(__func__, dtv01, QLX_AUDIO_FORMAT_MPEG, AV_DVB_C)) \
    X(TC_AV_DtvAudioFormat_002_04, AUTO, "Audio-0 decode MPEG and play in source (Tuner-1,Demux-1,DVB-C)",      AV_DtvAudioFormat(__func__, dtv11, QLX_AUDIO_FORMAT_MPEG, AV_DVB_C)) \
    X(TC_AV_DtvAudioFormat_003_01, AUTO, "Audio-0 decode MPEG and play in source (Tuner-0,Demux-0,DVB-S)",      AV_DtvAudioFormat(__func__, dtv00, QLX_AUDIO_FORMAT_MPEG, AV_DVB_S)) \
    X(TC_AV_DtvAudioFormat_003_02, AUTO, "Audio-0 decode MPEG and play in source (Tuner-1,Demux-0,DVB-S)",      AV_DtvAudioFormat(__func__, dtv10, QLX_AUDIO_FORMAT_MPEG, AV_DVB_S)) \
    X(TC_AV_DtvAudioFormat_003_03, AUTO, "Audio-0 decode MPEG and play in source (Tuner-0,Demux-1,DVB-S)",      AV_DtvAudioFormat(__func__, dtv01, QLX_AUDIO_FORMAT_MPEG, AV_DVB_S)) \
    X(TC_AV_DtvAudioFormat_003_04, AUTO, "Audio-0 decode MPEG and play in source (Tuner-1,Demux-1,DVB-S)",      AV_DtvAudioFormat(__func__, dtv11, QLX_AUDIO_FORMAT_MPEG, AV_DVB_S)) \
    X(TC_AV_DtvAudioFormat_004_01, AUTO, "Audio-0 decode MPEG and play in source (Tuner-0,Demux-0,ATSC-T)",     AV_DtvAudioFormat(__func__, dtv00, QLX_AUDIO_FORMAT_MPEG, AV_ATSC_T)) \
    X(TC_AV_DtvAudioFormat_004_02, AUTO, "Audio-0 decode MPEG and play in source (Tuner-1,Demux-0,ATSC-T)",     AV_DtvAudioFormat(__func__, dtv10, QLX_AUDIO_FORMAT_MPEG, AV_ATSC_T)) \
    X(TC_AV_DtvAudioFormat_004_03, AUTO, "Audio-0 decode MPEG and play in source (Tuner-0,Demux-1,ATSC-T)",     AV_DtvAudioFormat(__func__, dtv01, QLX_AUDIO_FORMAT_MPEG, AV_ATSC_T)) \
    X(TC_AV_DtvAudioFormat_004_04, AUTO, "Audio-0 decode MPEG and play in source (Tuner-1,Demux-1,ATSC-T)",     AV_DtvAudioFormat(__func__, dtv11, QLX_AUDIO_FORMAT_MPEG, AV_ATSC_T)) \
    X(TC_AV_DtvAudioFormat_005_01, AUTO, "Audio-0 decode MPEG and play in source (Tuner-0,Demux-0,ATSC-C)",     AV_DtvAudioFormat(__func__, dtv00, QLX_AUDIO_FORMAT_MPEG, AV_ATSC_C)) \
    X(TC_AV_DtvAudioFormat_005_02, AUTO, "Audio-0 decode MPEG and play in source (Tuner-1,Demux-0,ATSC-C)",     AV_DtvAudioFormat(__func__, dtv10, QLX_AUDIO_FORMAT_MPEG, AV_ATSC_C)) \
    X(TC_AV_DtvAudioFormat_005_03, AUTO, "Audio-0 decode MPEG and play in source (Tuner-0,Demux-1,ATSC-C)",     AV_DtvAudioFormat(__func__, dtv01, QLX_AUDIO_FORMAT_MPEG, AV_ATSC_C)) \
    X(TC_AV_DtvAudioFormat_005_04, AUTO, "Audio-0 decode MPEG and play in source (Tuner-1,Demux-1,ATSC-C)",     AV_DtvAudioFormat(__func__, dtv11, QLX_AUDIO_FORMAT_MPEG, AV_ATSC_C)) \
    X(TC_AV_DtvAudioFormat_006_01, AUTO, "Audio-0 decode MPEG and play in source (Tuner-0,Demux-0,ISDB-T)",     AV_DtvAudioFormat(__func__, dtv00, QLX_AUDIO_FORMAT_MPEG, AV_ISDB_T)) \
    X(TC_AV_DtvAudioFormat_006_02, AUTO, "Audio-0 decode MPEG and play in source (Tuner-1,Demux-0,ISDB-T)",     AV_DtvAudioFormat(__func__, dtv10, QLX_AUDIO_FORMAT_MPEG, AV_ISDB_T)) \
    X(TC_AV_DtvAudioFormat_006_03, AUTO, "Audio-0 decode MPEG and play in source (Tuner-0,Demux-1,ISDB-T)",     AV_DtvAudioFormat(__func__, dtv01, QLX_AUDIO_FORMAT_MPEG, AV_ISDB_T)) \
    X(TC_AV_DtvAudioFormat_006_04, AUTO, "Audio-0 decode MPEG and play in source (Tuner-1,Demux-1,ISDB-T)",     AV_DtvAudioFormat(__func__, dtv11, QLX_AUDIO_FORMAT_MPEG, AV_ISDB_T)) \
    X(TC_AV_DtvAudioFormat_007_01, AUTO, "Audio-0 decode MPEG and play in source (Tuner-0,Demux-0,ISDB-S)",     AV_DtvAudioFormat(__func__, dtv00, QLX_AUDIO_FORMAT_MPEG, AV_ISDB_S)) \
    X(TC_AV_DtvAudioFormat_007_02, AUTO, "Audio-0 decode MPEG and play in source (Tuner-1,Demux-0,ISDB-S)",     AV_DtvAudioFormat(__func__, dtv10, QLX_AUDIO_FORMAT_MPEG, AV_ISDB_S)) \
    X(TC_AV_DtvAudioFormat_007_03, AUTO, "Audio-0 decode MPEG and play in source (Tuner-0,Demux-1,ISDB-S)",     AV_DtvAudioFormat(__func__, dtv01, QLX_AUDIO_FORMAT_MPEG, AV_ISDB_S)) \
    X(TC_AV_DtvAudioFormat_007_04, AUTO, "Audio-0 decode MPEG and play in source (Tuner-1,Demux-1,ISDB-S)",     AV_DtvAudioFormat(__func__, dtv11, QLX_AUDIO_FORMAT_MPEG, AV_ISDB_S)) \
    X(TC_AV_DtvAudioFormat_008_01, AUTO, "Audio-0 decode AAC and play in source (Tuner-0,Demux-0,DVB-T)",       AV_DtvAudioFormat(__func__, dtv00, QLX_AUDIO_FORMAT_AAC, AV_DVB_T)) \
    X(TC_AV_DtvAudioFormat_008_02, AUTO, "Audio-0 decode AAC and play in source (Tuner-1,Demux-0,DVB-T)",       AV_DtvAudioFormat(__func__, dtv10, QLX_AUDIO_FORMAT_AAC, AV_DVB_T)) \
    X(TC_AV_DtvAudioFormat_008_03, AUTO, "Audio-0 decode AAC and play in source (Tuner-0,Demux-1,DVB-T)",       AV_DtvAudioFormat(__func__, dtv01, QLX_AUDIO_FORMAT_AAC, AV_DVB_T)) \
    X(TC_AV_DtvAudioFormat_008_04, AUTO, "Audio-0 decode AAC and play in source (Tuner-1,Demux-1,DVB-T)",       AV_DtvAudioFormat(__func__, dtv11, QLX_AUDIO_FORMAT_AAC, AV_DVB_T)) \
    X(TC_AV_DtvAudioFormat_009_01, AUTO, "Audio-0 decode AAC and play in source (Tuner-0,Demux-0,DVB-C)",       AV_DtvAudioFormat(__func__, dtv00, QLX_AUDIO_FORMAT_AAC, AV_DVB_C)) \
    X(TC_AV_DtvAudioFormat_009_02, AUTO, "Audio-0 decode AAC and play in source (Tuner-1,Demux-0,DVB-C)",       AV_DtvAudioFormat(__func__, dtv10, QLX_AUDIO_FORMAT_AAC, AV_DVB_C)) \
    X(TC_AV_DtvAudioFormat_009_03, AUTO, "Audio-0 decode AAC and play in source (Tuner-0,Demux-1,DVB-C)",       AV_DtvAudioFormat(__func__, dtv01, QLX_AUDIO_FORMAT_AAC, AV_DVB_C)) \
    X(TC_AV_DtvAudioFormat_009_04, AUTO, "Audio-0 decode AAC and play in source (Tuner-1,Demux-1,DVB-C)",       AV_DtvAudioFormat(__func__, dtv11, QLX_AUDIO_FORMAT_AAC, AV_DVB_C)) \
    X(TC_AV_DtvAudioFormat_010_01, AUTO, "Audio-0 decode AAC and play in source (Tuner-0,Demux-0,DVB-S)",       AV_DtvAudioFormat(__func__, dtv00, QLX_AUDIO_FORMAT_AAC, AV_DVB_S)) \
    X(TC_AV_DtvAudioFormat_010_02, AUTO, "Audio-0 decode AAC and play in source (Tuner-1,Demux-0,DVB-S)",       AV_DtvAudioFormat(__func__, dtv10, QLX_AUDIO_FORMAT_AAC, AV_DVB_S)) \
    X(TC_AV_DtvAudioFormat_010_03, AUTO, "Audio-0 decode AAC and play in source (Tuner-0,Demux-1,DVB-S)",       AV_DtvAudioFormat(__func__, dtv01, QLX_AUDIO_FORMAT_AAC, AV_DVB_S)) \
    X(TC_AV_DtvAudioFormat_010_04, AUTO, "Audio-0 decode AAC and play in source (Tuner-1,Demux-1,DVB-S)",       AV_DtvAudioFormat(__func__, dtv11, QLX_AUDIO_FORMAT_AAC, AV_DVB_S)) \
    X(TC_AV_DtvAudioFormat_011_01, AUTO, "Audio-0 decode AAC and play in source (Tuner-0,Demux-0,ATSC-T)",      AV_DtvAudioFormat(__func__, dtv00, QLX_AUDIO_FORMAT_AAC, AV_ATSC_T)) \
    X(TC_AV_DtvAudioFormat_011_02, AUTO, "Audio-0 decode AAC and play in source (Tuner-1,Demux-0,ATSC-T)",      AV_DtvAudioFormat(__func__, dtv10, QLX_AUDIO_FORMAT_AAC, AV_ATSC_T)) \
    X(TC_AV_DtvAudioFormat_011_03, AUTO, "Audio-0 decode AAC and play in source (Tuner-0,Demux-1,ATSC-T)",      AV_DtvAudioFormat(__func__, dtv01, QLX_AUDIO_FORMAT_AAC, AV_ATSC_T)) \
    X(TC_AV_DtvAudioFormat_011_04, AUTO, "Audio-0 decode AAC and play in source (Tuner-1,Demux-1,ATSC-T)",      AV_DtvAudioFormat(__func__, dtv11, QLX_AUDIO_FORMAT_AAC, AV_ATSC_T)) \
    X(TC_AV_DtvAudioFormat_012_01, AUTO, "Audio-0 decode AAC and play in source (Tuner-0,Demux-0,ATSC-C)",      AV_DtvAudioFormat(__func__, dtv00, QLX_AUDIO_FORMAT_AAC, AV_ATSC_C)) \
    X(TC_AV_DtvAudioFormat_012_02, AUTO, "Audio-0 decode AAC and play in source (Tuner-1,Demux-0,ATSC-C)",      AV_DtvAudioFormat(__func__, dtv10, QLX_AUDIO_FORMAT_AAC, AV_ATSC_C)) \
    X(TC_AV_DtvAudioFormat_012_03, AUTO, "Audio-0 decode AAC and play in source (Tuner-0,Demux-1,ATSC-C)",      AV_DtvAudioFormat(__func__, dtv01, QLX_AUDIO_FORMAT_AAC, AV_ATSC_C)) \
    X(TC_AV_DtvAudioFormat_012_04, AUTO, "Audio-0 decode AAC and play in source (Tuner-1,Demux-1,ATSC-C)",      AV_DtvAudioFormat(__func__, dtv11, QLX_AUDIO_FORMAT_AAC, AV_ATSC_C)) \
    X(TC_AV_DtvAudioFormat_013_01, AUTO, "Audio-0 decode AAC and play in source (Tuner-0,Demux-0,ISDB-T)",      AV_DtvAudioFormat(__func__, dtv00, QLX_AUDIO_FORMAT_AAC, AV_ISDB_T)) \
    X(TC_AV_DtvAudioFormat_013_02, AUTO, "Audio-0 decode AAC and play in source (Tuner-1,Demux-0,ISDB-T)",      AV_DtvAudioFormat(__func__, dtv10, QLX_AUDIO_FORMAT_AAC, AV_ISDB_T)) \
    X(TC_AV_DtvAudioFormat_013_03, AUTO, "Audio-0 decode AAC and play in source (Tuner-0,Demux-1,ISDB-T)",      AV_DtvAudioFormat(__func__, dtv01, QLX_AUDIO_FORMAT_AAC, AV_ISDB_T)) \
    X(TC_AV_DtvAudioFormat_013_04, AUTO, "Audio-0 decode AAC and play in source (Tuner-1,Demux-1,ISDB-T)",      AV_DtvAudioFormat(__func__, dtv11, QLX_AUDIO_FORMAT_AAC, AV_ISDB_T)) \
    X(TC_AV_DtvAudioFormat_014_01, AUTO, "Audio-0 decode AAC and play in source (Tuner-0,Demux-0,ISDB-S)",      AV_DtvAudioFormat(__func__, dtv00, QLX_AUDIO_FORMAT_AAC, AV_ISDB_S)) \
    X(TC_AV_DtvAudioFormat_014_02, AUTO, "Audio-0 decode AAC and play in source (Tuner-1,Demux-0,ISDB-S)",      AV_DtvAudioFormat(__func__, dtv10, QLX_AUDIO_FORMAT_AAC, AV_ISDB_S)) \
    X(TC_AV_DtvAudioFormat_014_03, AUTO, "Audio-0 decode AAC and play in source (Tuner-0,Demux-1,ISDB-S)",      AV_DtvAudioFormat(__func__, dtv01, QLX_AUDIO_FORMAT_AAC, AV_ISDB_S)) \
    X(TC_AV_DtvAudioFormat_014_04, AUTO, "Audio-0 decode AAC and play in source (Tuner-1,Demux-1,ISDB-S)",      AV_DtvAudioFormat(__func__, dtv11, QLX_AUDIO_FORMAT_AAC, AV_ISDB_S)) \
    X(TC_AV_DtvAudioFormat_015_01, AUTO, "Audio-0 decode AC3 and play in source (Tuner-0,Demux-0,ATSC-T)",      AV_DtvAudioFormat(__func__, dtv00, QLX_AUDIO_FORMAT_AC3, AV_ATSC_T)) \
    X(TC_AV_DtvAudioFormat_015_02, AUTO, "Audio-0 decode AC3 and play in source (Tuner-1,Demux-0,ATSC-T)",      AV_DtvAudioFormat(__func__, dtv10, QLX_AUDIO_FORMAT_AC3, AV_ATSC_T)) \
    X(TC_AV_DtvAudioFormat_015_03, AUTO, "Audio-0 decode AC3 and play in source (Tuner-0,Demux-1,ATSC-T)",      AV_DtvAudioFormat(__func__, dtv01, QLX_AUDIO_FORMAT_AC3, AV_ATSC_T)) \
    X(TC_AV_DtvAudioFormat_015_04, AUTO, "Audio-0 decode AC3 and play in source (Tuner-1,Demux-1,ATSC-T)",      AV_DtvAudioFormat(__func__, dtv11, QLX_AUDIO_FORMAT_AC3, AV_ATSC_T)) \
    X(TC_AV_DtvAudioFormat_016_01, AUTO, "Audio-0 decode AC3 and play in source (Tuner-0,Demux-0,ATSC-C)",      AV_DtvAudioFormat(__func__, dtv00, QLX_AUDIO_FORMAT_AC3, AV_ATSC_C)) \
    X(TC_AV_DtvAudioFormat_016_02, AUTO, "Audio-0 decode AC3 and play in source (Tuner-1,Demux-0,ATSC-C)",      AV_DtvAudioFormat(__func__, dtv10, QLX_AUDIO_FORMAT_AC3, AV_ATSC_C)) \
    X(TC_AV_DtvAudioFormat_016_03, AUTO, "Audio-0 decode AC3 and play in source (Tuner-0,Demux-1,ATSC-C)",      AV_DtvAudioFormat(__func__, dtv01, QLX_AUDIO_FORMAT_AC3, AV_ATSC_C)) \
    X(TC_AV_DtvAudioFormat_016_04, AUTO, "Audio-0 decode AC3 and play in source (Tuner-1,Demux-1,ATSC-C)",      AV_DtvAudioFormat(__func__, dtv11, QLX_AUDIO_FORMAT_AC3, AV_ATSC_C)) \
    X(TC_AV_DtvAudioFormat_017_01, AUTO, "Audio-0 decode AC3P/EAC3 and play in source (Tuner-0,Demux-0,DVB-T)", AV_DtvAudioFormat(__func__, dtv00, QLX_AUDIO_FORMAT_EAC3, AV_DVB_T)) \
    X(TC_AV_DtvAudioFormat_017_02, AUTO, "Audio-0 decode AC3P/EAC3 and play in source (Tuner-1,Demux-0,DVB-T)", AV_DtvAudioFormat(__func__, dtv10, QLX_AUDIO_FORMAT_EAC3, AV_DVB_T)) \
    X(TC_AV_DtvAudioFormat_017_03, AUTO, "Audio-0 decode AC3P/EAC3 and play in source (Tuner-0,Demux-1,DVB-T)", AV_DtvAudioFormat(__func__, dtv01, QLX_AUDIO_FORMAT_EAC3, AV_DVB_T)) \
    X(TC_AV_DtvAudioFormat_017_04, AUTO, "Audio-0 decode AC3P/EAC3 and play in source (Tuner-1,Demux-1,DVB-T)", AV_DtvAudioFormat(__func__, dtv11, QLX_AUDIO_FORMAT_EAC3, AV_DVB_T)) \
    X(TC_AV_DtvAudioFormat_018_01, AUTO, "Audio-0 decode HEAAC and play in source (Tuner-0,Demux-0,DVB-T)",     AV_DtvAudioFormat(__func__, dtv00, QLX_AUDIO_FORMAT_HEAAC, AV_DVB_T)) \
    X(TC_AV_DtvAudioFormat_018_02, AUTO, "Audio-0 decode HEAAC and play in source (Tuner-1,Demux-0,DVB-T)",     AV_DtvAudioFormat(__func__, dtv10, QLX_AUDIO_FORMAT_HEAAC, AV_DVB_T)) \
    X(TC_AV_DtvAudioFormat_018_03, AUTO, "Audio-0 decode HEAAC and play in source (Tuner-0,Demux-1,DVB-T)",     AV_DtvAudioFormat(__func__, dtv01, QLX_AUDIO_FORMAT_HEAAC, AV_DVB_T)) \
    X(TC_AV_DtvAudioFormat_018_04, AUTO, "Audio-0 decode HEAAC and play in source (Tuner-1,Demux-1,DVB-T)",     AV_DtvAudioFormat(__func__, dtv11, QLX_AUDIO_FORMAT_HEAAC, AV_DVB_T))

#define AV_DTV_FORMAT_ROWS(X) \
    AV_DTV_VIDEO_FORMAT_ROWS(X) \
    AV_DTV_AUDIO_FORMAT_ROWS(X)
// clang-format on

#endif

/*
 * The test environment: what the board has and what is on the air, loaded once at start-up on the
 * initial thread and only read afterwards.
 */
#ifndef ENVIRONMENT_TEST_ENV_H
#define ENVIRONMENT_TEST_ENV_H

#include <stdint.h>
#include <sys/time.h>

#include "environment/feature_list.h"
#include "platform/qlx_tuner.h"

/** Places of the feature table; each enumerator bears the name of its configuration key. */
enum ZkFeature {
#define FEATURE_PLACE(place, key) key = place,
    FEATURE_LIST(FEATURE_PLACE)
#undef FEATURE_PLACE
    /** The features of all boards, and behind them that of the second smart card slot. */
    FEATURE_COUNT = 53,
};

enum {
    CHANNEL_TABLE_SIZE = 100,
    CHANNEL_PID_COUNT = 16,
};

/** One channel: where it is on the air, and the PIDs of its programme. */
struct TcChannelInfo {
    /** kHz. */
    uint32_t uFrequency;
    /** Transport stream id, ISDB-S only. */
    uint32_t uTsId;
    /** Stream id, ISDB-S3 only. */
    uint32_t uStreamId;
    uint32_t uVideoPid;
    /** The platform library's video format value. */
    uint32_t eVideoFormat;
    uint32_t uPcrPid;
    uint32_t uPmtPid;
    uint32_t uEitPid;
    uint32_t uEttPid;
    uint32_t uPesPid;
    uint8_t audioNum;
    uint32_t uAudioPids[CHANNEL_PID_COUNT];
    /** The platform library's audio format values. */
    uint32_t eAudioFormat[CHANNEL_PID_COUNT];
    uint8_t audioDescNum;
    uint32_t uAudioDescPids[CHANNEL_PID_COUNT];
    uint32_t eAudioDescFormat[CHANNEL_PID_COUNT];
    uint8_t subtitleNum;
    uint32_t uSubtitlePids[CHANNEL_PID_COUNT];
    uint8_t otherNum;
    uint32_t uOtherPids[CHANNEL_PID_COUNT];
};
static_assert(sizeof(TcChannelInfo) == 440, "a channel has 110 words");

/** Tuning parameters of the board; the frequencies are in the channel tables. */
struct TcTunerConfig {
    /** Default transmission system of each tuner. */
    uint32_t eTransmissionSystem[QLX_TUNER_MAX];
    QLX_TunerTuningParams stAtscC;
    QLX_TunerTuningParams stAtscT;
    QLX_TunerTuningParams stAtscT3;
    QLX_TunerTuningParams stDvbC;
    QLX_TunerTuningParams stDvbT;
    QLX_TunerTuningParams stDvbS;
    QLX_TunerTuningParams stIsdbT;
    QLX_TunerTuningParams stIsdbS;
    QLX_TunerTuningParams stIsdbS3;
};
static_assert(sizeof(TcTunerConfig) == 808, "four systems and nine records");

/** Where a picture comes from, and what decodes it. */
struct AvSource {
    /** Kind of source: 1 ATV, 2 CVBS, 5 YPBPR, 10 HDMI, 12 PVR, 14 stream, 16 DTV. */
    uint32_t eSource;
    uint32_t eVideoDev;
    uint32_t eAudioDev;
    /** Transmission system of the DTV channel; 0: that of the tuner. */
    uint32_t TransmissionSystem_e;
    uint32_t eDTVDemuxDev;
    uint32_t eDTVTunerDev;
    /** Index in the channel table, for PVR in that of the playback file. */
    uint32_t uDTVChannelId;
    uint32_t eATVTunerDev;
    uint32_t uATVChannelId;
    /** Port of the external input, 16 bits. */
    uint32_t uExtInPort;
};

/** Places of the standards that have channels of a content's own. */
enum AvStandard {
    AV_DVB_C,
    AV_DVB_T,
    AV_DVB_S,
    AV_ATSC_T,
    AV_ATSC_C,
    AV_ISDB_T,
    AV_ISDB_S,
    AV_STANDARD_COUNT,
    AV_DVB_COUNT = 3,
    AV_ATSC_COUNT = 2,
};

/** Parameters of the audio and video modules; channel ids by AvStandard, or ATSC-T then ATSC-C. */
struct TcAvConfig {
    AvSource stSource;
    uint32_t uPvrPlaybackChannelId;
    uint32_t uAudioDescChannelIds[AV_DVB_COUNT];
    uint32_t uMpeg2ChannelIds[AV_STANDARD_COUNT];
    uint32_t uH264ChannelIds[AV_STANDARD_COUNT];
    uint32_t uVideoCcChannelIds[AV_ATSC_COUNT];
    uint32_t uAc3ChannelIds[AV_ATSC_COUNT];
    /** No key sets these: the cases of these formats play channel 0. */
    uint32_t uMpegAudioChannelIds[AV_STANDARD_COUNT];
    uint32_t uAacChannelIds[AV_STANDARD_COUNT];
    uint32_t uEac3ChannelId;
    uint32_t uHeAacChannelId;
};
static_assert(sizeof(TcAvConfig) == 192, "the area of the audio and video modules");

struct TestEnvConfig {
    /** By ZkFeature: 0 absent, anything else present. */
    int32_t features[FEATURE_COUNT];
    uint8_t atvChannelNum;
    uint8_t atscCChannelNum;
    uint8_t atscTChannelNum;
    uint8_t atscT3ChannelNum;
    uint8_t dvbCChannelNum;
    uint8_t dvbTChannelNum;
    uint8_t dvbSChannelNum;
    uint8_t isdbTChannelNum;
    uint8_t isdbSChannelNum;
    uint8_t isdbS3ChannelNum;
    uint8_t pvrPlaybackChannelNum;
    /** kHz. */
    uint32_t atvFrequency[CHANNEL_TABLE_SIZE];
    TcChannelInfo atscC[CHANNEL_TABLE_SIZE];
    TcChannelInfo atscT[CHANNEL_TABLE_SIZE];
    TcChannelInfo atscT3[CHANNEL_TABLE_SIZE];
    TcChannelInfo dvbC[CHANNEL_TABLE_SIZE];
    TcChannelInfo dvbT[CHANNEL_TABLE_SIZE];
    TcChannelInfo dvbS[CHANNEL_TABLE_SIZE];
    TcChannelInfo isdbT[CHANNEL_TABLE_SIZE];
    TcChannelInfo isdbS[CHANNEL_TABLE_SIZE];
    TcChannelInfo isdbS3[CHANNEL_TABLE_SIZE];
    TcChannelInfo pvrPlayback[CHANNEL_TABLE_SIZE];
    /** Parameters of the audio and video modules. */
    TcAvConfig av;
    /** Parameters of the tuner modules. */
    TcTunerConfig tunerBlock;
};

/** The environment of all cases. */
extern TestEnvConfig zk_testConfig;
/** Its twin for manual cases: zero but for what a case set-up hook writes. */
extern TestEnvConfig zk_mannualCaseConfig;

/** Loads the feature table; missing keys are 0. Returns the last read's result, of no use. */
int32_t zk_test_load_feature(void);

/** Stores the address of the environment, whose leading part is the feature table indexed by
 *  ZkFeature, in the pointer that `out` points at. */
void zk_test_get_feature(void* out);

/** Loads all channel files. Counts beyond the tables' sizes are cut. Returns the last read's
 *  result, of no use. */
int32_t zk_test_load_channel_info(void);

/**
 * Copies a channel.
 * @param system  transmission system bit (QLX_TRANSMISSION_SYSTEM_...)
 * @param index   channel number from 0; one at or above the table's count gives channel 0
 * @param out     receives the record; left alone for a system that has no table here
 */
void zk_test_get_dtv_channel_info(uint32_t system, uint32_t index, TcChannelInfo* out);

/** The same for the channels of the PVR playback file. */
void zk_test_get_pvr_playback_channel_info(uint32_t index, TcChannelInfo* out);

#endif

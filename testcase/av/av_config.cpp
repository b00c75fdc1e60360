#include "testcase/av/av_config.h"

#include <string.h>

#include "environment/conf_reader.h"
#include "environment/config_files.h"
#include "environment/test_env.h"
#include "framework/case/check.h"

enum {
    AV_SOURCE_FIRST = 1,
    AV_SOURCE_LAST = 17,
    AV_DECODER_LAST = 3,
};

static void readWord(const char* section, const char* key, uint32_t* value) {
    int32_t number = 0;
    get_conf_value_self(section, key, &number, g_configFile.av);
    *value = static_cast<uint32_t>(number);
}

/** The channel of one kind of content, in each standard's own section. */
static void readChannels(const char* key, const char* const* sections, uint32_t* ids,
                         uint32_t count) {
    for (uint32_t i = 0; i < count; i++)
        readWord(sections[i], key, &ids[i]);
}

uint32_t TC_AV_LOAD_CONFIG(void) {
    static const char* const standards[AV_STANDARD_COUNT] = {
        "DVB-C", "DVB-T", "DVB-S", "ATSC-T", "ATSC-C", "ISDB-T", "ISDB-S",
    };
    static const char* const* const atsc = &standards[AV_ATSC_T];
    CaseContext tc = {__func__};
    TcAvConfig& av = zk_testConfig.av;
    AvSource& source = av.stSource;
    memset(&av, 0, sizeof av);
    zk_log("=========AV moudule config======== \r\n");
    readWord("COMMON", "AV_SOURCE", &source.eSource);
    TC_ASSERT_TRUE(source.eSource >= AV_SOURCE_FIRST && source.eSource <= AV_SOURCE_LAST);
    readWord("COMMON", "AV_VIDEO_DEV_ID", &source.eVideoDev);
    TC_ASSERT_TRUE(source.eVideoDev <= AV_DECODER_LAST);
    readWord("COMMON", "AV_AUDIO_DEV_ID", &source.eAudioDev);
    TC_ASSERT_TRUE(source.eAudioDev <= AV_DECODER_LAST);
    readWord("DTV", "AV_DTV_TUNER_ID", &source.eDTVTunerDev);
    readWord("DTV", "AV_DTV_DEMUX_ID", &source.eDTVDemuxDev);
    readWord("DTV", "AV_DTV_CHANNEL_ID", &source.uDTVChannelId);
    readWord("ATV", "AV_ATV_TUNER_ID", &source.eATVTunerDev);
    readWord("ATV", "AV_ATV_CHANNEL_ID", &source.uATVChannelId);
    readWord("EXTIN", "AV_EXTIN_PORT_ID", &source.uExtInPort);
    source.uExtInPort = static_cast<uint16_t>(source.uExtInPort);
    readWord("PVR-PLAYBACK", "AV_PVR_PLAYBACK_CHANNEL_ID", &av.uPvrPlaybackChannelId);
    readChannels("AV_AUDIODESC_CHANNEL_ID", standards, av.uAudioDescChannelIds, AV_DVB_COUNT);
    readChannels("AV_VIDEO_MPEG2_CHANNEL_ID", standards, av.uMpeg2ChannelIds, AV_STANDARD_COUNT);
    readChannels("AV_VIDEO_H264_CHANNEL_ID", standards, av.uH264ChannelIds, AV_STANDARD_COUNT);
    readChannels("AV_VIDEOCC_CHANNEL_ID", atsc, av.uVideoCcChannelIds, AV_ATSC_COUNT);
    readChannels("AV_AUDIO_AC3_CHANNEL_ID", atsc, av.uAc3ChannelIds, AV_ATSC_COUNT);
    return TC_SUCCESS;
}

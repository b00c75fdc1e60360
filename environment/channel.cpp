// The channel tables: one file for each standard, one section for each channel.
#include <stdio.h>

#include <algorithm>

#include "environment/conf_reader.h"
#include "environment/config_files.h"
#include "environment/test_env.h"
#include "framework/base/zk_log.h"

/** Keys that some standards' files have and others have not. */
enum ChannelKeys {
    KEY_FREQUENCY = 1,
    KEY_TS_ID = 2,
    KEY_STREAM_ID = 4,
    KEY_PROGRAMME = 8,
    KEY_PES_PID = 16,
    KEYS_ATSC = KEY_FREQUENCY | KEY_PROGRAMME,
    KEYS_DVB = KEY_FREQUENCY | KEY_PROGRAMME | KEY_PES_PID,
    KEYS_ISDB_S = KEYS_DVB | KEY_TS_ID,
    KEYS_ISDB_S3 = KEYS_DVB | KEY_STREAM_ID,
    KEYS_PVR = KEY_PROGRAMME | KEY_PES_PID,
};

struct ChannelTable {
    const char* title;
    const char* path;
    unsigned keys;
    uint8_t* count;
    TcChannelInfo* channels;
    /** Where the PIDs of PMT, EIT, ETT and PES go. */
    TcChannelInfo* pidChannels;
};

static int32_t readWord(const char* section, const char* key, uint32_t* value, const char* path) {
    int32_t number = 0;
    int32_t result = get_conf_value_self(section, key, &number, path);
    *value = static_cast<uint32_t>(number);
    return result;
}

static uint8_t readCount(const char* section, const char* key, const char* path, int limit) {
    int32_t number = 0;
    get_conf_value_self(section, key, &number, path);
    uint8_t count = static_cast<uint8_t>(number);
    return std::min<uint8_t>(count, static_cast<uint8_t>(limit));
}

/** Reads a list of PIDs and, where `formats` is not null, the format of each. */
static uint8_t readPids(const char* section, const char* name, const char* path, uint32_t* pids,
                        uint32_t* formats) {
    char key[32];
    snprintf(key, sizeof key, "%s_NUM", name);
    uint8_t count = readCount(section, key, path, CHANNEL_PID_COUNT);
    for (uint8_t i = 0; i < count; i++) {
        snprintf(key, sizeof key, "%s_PID%d", name, i);
        readWord(section, key, &pids[i], path);
        if (formats == nullptr)
            continue;
        snprintf(key, sizeof key, "%s_FORMAT%d", name, i);
        readWord(section, key, &formats[i], path);
    }
    return count;
}

static int32_t loadChannel(const ChannelTable& table, uint8_t index) {
    char section[32];
    const char* path = table.path;
    TcChannelInfo* channel = &table.channels[index];
    int32_t result = 0;
    snprintf(section, sizeof section, "CHANNEL%d", index);
    if (table.keys & KEY_FREQUENCY)
        result = readWord(section, "FREQUENCY", &channel->uFrequency, path);
    if (table.keys & KEY_TS_ID)
        readWord(section, "TS_ID", &channel->uTsId, path);
    if (table.keys & KEY_STREAM_ID)
        readWord(section, "STREAM_ID", &channel->uStreamId, path);
    if (!(table.keys & KEY_PROGRAMME))
        return result;
    readWord(section, "VIDEO_PID", &channel->uVideoPid, path);
    readWord(section, "VIDEO_FORMAT", &channel->eVideoFormat, path);
    readWord(section, "PCR_PID", &channel->uPcrPid, path);
    channel->audioNum =
        readPids(section, "AUDIO", path, channel->uAudioPids, channel->eAudioFormat);
    channel->audioDescNum =
        readPids(section, "AUDIODESC", path, channel->uAudioDescPids, channel->eAudioDescFormat);
    channel->subtitleNum = readPids(section, "SUBTITLE", path, channel->uSubtitlePids, nullptr);
    channel->otherNum = readPids(section, "OTHER", path, channel->uOtherPids, nullptr);
    TcChannelInfo* pids = &table.pidChannels[index];
    readWord(section, "PMT_PID", &pids->uPmtPid, path);
    readWord(section, "EIT_PID", &pids->uEitPid, path);
    result = readWord(section, "ETT_PID", &pids->uEttPid, path);
    if (table.keys & KEY_PES_PID)
        result = readWord(section, "PES_PID", &pids->uPesPid, path);
    return result;
}

static int32_t loadTable(const ChannelTable& table) {
    int32_t result = 0;
    zk_log("----%s channels ---- \r\n", table.title);
    *table.count = readCount("COMMON", "CHANNEL_NUM", table.path, CHANNEL_TABLE_SIZE);
    for (uint8_t i = 0; i < *table.count; i++)
        result = loadChannel(table, i);
    return result;
}

static int32_t loadAtvTable(void) {
    int32_t result = 0;
    const char* path = g_configFile.channelAtv;
    zk_log("----ATV channels ---- \r\n");
    zk_testConfig.atvChannelNum = readCount("COMMON", "CHANNEL_NUM", path, CHANNEL_TABLE_SIZE);
    for (uint8_t i = 0; i < zk_testConfig.atvChannelNum; i++) {
        char section[32];
        snprintf(section, sizeof section, "CHANNEL%d", i);
        result = readWord(section, "FREQUENCY", &zk_testConfig.atvFrequency[i], path);
    }
    return result;
}

int32_t zk_test_load_channel_info(void) {
    TestEnvConfig& env = zk_testConfig;
    const ConfigFiles& file = g_configFile;
    // The PVR playback file is read late, and its service PIDs go into the records of ISDB-S: the
    // playback cases ask that table for them.
    const ChannelTable tables[] = {
        {"ATSC-C", file.channelAtscC, KEYS_ATSC, &env.atscCChannelNum, env.atscC, env.atscC},
        {"ATSC-T", file.channelAtscT, KEYS_ATSC, &env.atscTChannelNum, env.atscT, env.atscT},
        {"ATSC-T3", file.channelAtscT3, KEY_FREQUENCY, &env.atscT3ChannelNum, env.atscT3,
         env.atscT3},
        {"DVB-C", file.channelDvbC, KEYS_DVB, &env.dvbCChannelNum, env.dvbC, env.dvbC},
        {"DVB-T", file.channelDvbT, KEYS_DVB, &env.dvbTChannelNum, env.dvbT, env.dvbT},
        {"DVB-S", file.channelDvbS, KEYS_DVB, &env.dvbSChannelNum, env.dvbS, env.dvbS},
        {"ISDB-T", file.channelIsdbT, KEYS_DVB, &env.isdbTChannelNum, env.isdbT, env.isdbT},
        {"ISDB-S", file.channelIsdbS, KEYS_ISDB_S, &env.isdbSChannelNum, env.isdbS, env.isdbS},
        {"ISDB-S3", file.channelIsdbS3, KEYS_ISDB_S3, &env.isdbS3ChannelNum, env.isdbS3,
         env.isdbS3},
        {"PVR-Playback", file.channelPvrPlayback, KEYS_PVR, &env.pvrPlaybackChannelNum,
         env.pvrPlayback, env.isdbS},
    };
    zk_log("=========Channel info config======== \r\n");
    for (const ChannelTable& table : tables)
        loadTable(table);
    return loadAtvTable();
}

static void copyChannel(const TcChannelInfo* channels, uint8_t count, uint32_t index,
                        TcChannelInfo* out) {
    *out = channels[index >= count ? 0 : index];
}

void zk_test_get_dtv_channel_info(uint32_t system, uint32_t index, TcChannelInfo* out) {
    const TestEnvConfig& env = zk_testConfig;
    switch (system) {
        case QLX_TRANSMISSION_SYSTEM_DVB_T:
            return copyChannel(env.dvbT, env.dvbTChannelNum, index, out);
        case QLX_TRANSMISSION_SYSTEM_DVB_S:
            return copyChannel(env.dvbS, env.dvbSChannelNum, index, out);
        case QLX_TRANSMISSION_SYSTEM_DVB_C:
            return copyChannel(env.dvbC, env.dvbCChannelNum, index, out);
        case QLX_TRANSMISSION_SYSTEM_ATSC_T:
            return copyChannel(env.atscT, env.atscTChannelNum, index, out);
        case QLX_TRANSMISSION_SYSTEM_ATSC_C:
            return copyChannel(env.atscC, env.atscCChannelNum, index, out);
        case QLX_TRANSMISSION_SYSTEM_ISDB_T:
            return copyChannel(env.isdbT, env.isdbTChannelNum, index, out);
        case QLX_TRANSMISSION_SYSTEM_ISDB_S:
            return copyChannel(env.isdbS, env.isdbSChannelNum, index, out);
        case QLX_TRANSMISSION_SYSTEM_ISDB_S3:
            return copyChannel(env.isdbS3, env.isdbS3ChannelNum, index, out);
        default:
            return;
    }
}

void zk_test_get_pvr_playback_channel_info(uint32_t index, TcChannelInfo* out) {
    copyChannel(zk_testConfig.pvrPlayback, zk_testConfig.pvrPlaybackChannelNum, index, out);
}

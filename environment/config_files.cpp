#include "environment/config_files.h"

#include <stdio.h>
#include <stdlib.h>

ConfigFiles g_configFile;

struct Platform {
    const char* menuLine;
    const char* dir;
    /** The sound library's settings, on a platform that keeps them in a place of its own. */
    const char* alsaConfigPath;
};

static const Platform platforms[] = {
    {"1.    mtk9602-au    \r", "config/mtk9602_au", nullptr},
    {"2.    novatek     \r", "config/novatek", "/mtd_apexe/board/etc/alsa.conf"},
    {"3.    mtk9900-android-us  \r", "config/mtk9900_android_us", nullptr},
    {"4.    rtd2851a-eu  \r", "config/rtd2851a_eu", nullptr},
    {"5.    mtk9602-eu  \r", "config/mtk9602_eu", nullptr},
    {"6.    mtk9900-linux-us  \r", "config/mtk9900_linux_us", nullptr},
    {"7.    mtk9900-linux-eu  \r", "config/mtk9900_linux_eu", nullptr},
    {"8.    mtk9602-isdb  \r", "config/mtk9602_isdb", nullptr},
};
static const int32_t platformCount = sizeof platforms / sizeof platforms[0];

const char* config_platformMenuLine(int32_t index) {
    return index >= 1 && index <= platformCount ? platforms[index - 1].menuLine : nullptr;
}

void out_config_path(const char* dir, const char* name, char* dst) {
    snprintf(dst, CONFIG_PATH_SIZE, "%s%s", dir, name);
}

void get_common_config(ConfigFiles* files) {
    const struct {
        char* path;
        const char* name;
    } common[] = {
        {files->autoTestPlatform, "/auto_test_platform.cfg"},
        {files->channelAtscC, "/channel_atsc_c.cfg"},
        {files->channelAtscT, "/channel_atsc_t.cfg"},
        {files->channelAtscT3, "/channel_atsc_t3.cfg"},
        {files->channelDvbC, "/channel_dvb_c.cfg"},
        {files->channelDvbT, "/channel_dvb_t.cfg"},
        {files->channelDvbS, "/channel_dvb_s.cfg"},
        {files->channelIsdbT, "/channel_isdb_t.cfg"},
        {files->channelIsdbS, "/channel_isdb_s.cfg"},
        {files->channelIsdbS3, "/channel_isdb_s3.cfg"},
        {files->channelAtv, "/channel_atv.cfg"},
        {files->av, "/av_config.cfg"},
        {files->pvr, "/pvr_config.cfg"},
        {files->localPlayer, "/localplayer_config.cfg"},
        {files->demux, "/demux_config.cfg"},
        {files->streamInject, "/stream_inject_config.cfg"},
    };
    for (const auto& file : common)
        out_config_path(files->commonDir, file.name, file.path);
}

void get_platform_config(ConfigFiles* files) {
    out_config_path(files->platformDir, "/channel_pvr_playback.cfg", files->channelPvrPlayback);
    out_config_path(files->platformDir, "/common_config.cfg", files->common);
    out_config_path(files->platformDir, "/feature.cfg", files->feature);
    out_config_path(files->platformDir, "/tuner_config.cfg", files->tuner);
}

void set_platform(ConfigFiles* files, const int32_t* index) {
    if (*index >= 1 && *index <= platformCount) {
        const Platform& platform = platforms[*index - 1];
        snprintf(files->platformDir, sizeof files->platformDir, "%s", platform.dir);
        if (platform.alsaConfigPath != nullptr)
            setenv("ALSA_CONFIG_PATH", platform.alsaConfigPath, 1);
    }
    get_platform_config(files);
}

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
    const char* dir = files->commonDir;
    out_config_path(dir, "/auto_test_platform.cfg", files->autoTestPlatform);
    out_config_path(dir, "/channel_atsc_c.cfg", files->channelAtscC);
    out_config_path(dir, "/channel_atsc_t.cfg", files->channelAtscT);
    out_config_path(dir, "/channel_atsc_t3.cfg", files->channelAtscT3);
    out_config_path(dir, "/channel_dvb_c.cfg", files->channelDvbC);
    out_config_path(dir, "/channel_dvb_t.cfg", files->channelDvbT);
    out_config_path(dir, "/channel_dvb_s.cfg", files->channelDvbS);
    out_config_path(dir, "/channel_isdb_t.cfg", files->channelIsdbT);
    out_config_path(dir, "/channel_isdb_s.cfg", files->channelIsdbS);
    out_config_path(dir, "/channel_isdb_s3.cfg", files->channelIsdbS3);
    out_config_path(dir, "/channel_atv.cfg", files->channelAtv);
    out_config_path(dir, "/av_config.cfg", files->av);
    out_config_path(dir, "/pvr_config.cfg", files->pvr);
    out_config_path(dir, "/localplayer_config.cfg", files->localPlayer);
    out_config_path(dir, "/demux_config.cfg", files->demux);
    out_config_path(dir, "/stream_inject_config.cfg", files->streamInject);
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

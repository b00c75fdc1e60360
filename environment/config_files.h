/* Where the configuration files of the chosen platform lie. */
#ifndef ENVIRONMENT_CONFIG_FILES_H
#define ENVIRONMENT_CONFIG_FILES_H

#include <stdint.h>

enum {
    CONFIG_PATH_SIZE = 100,
    CONFIG_DIR_SIZE = 30,
};

/** Paths of all configuration files, relative to the working directory. */
struct ConfigFiles {
    char autoTestPlatform[CONFIG_PATH_SIZE];
    char channelAtscC[CONFIG_PATH_SIZE];
    char channelAtscT[CONFIG_PATH_SIZE];
    char channelAtscT3[CONFIG_PATH_SIZE];
    char channelDvbC[CONFIG_PATH_SIZE];
    char channelDvbT[CONFIG_PATH_SIZE];
    char channelDvbS[CONFIG_PATH_SIZE];
    char channelIsdbT[CONFIG_PATH_SIZE];
    char channelIsdbS[CONFIG_PATH_SIZE];
    char channelIsdbS3[CONFIG_PATH_SIZE];
    char channelAtv[CONFIG_PATH_SIZE];
    char av[CONFIG_PATH_SIZE];
    char pvr[CONFIG_PATH_SIZE];
    char localPlayer[CONFIG_PATH_SIZE];
    char demux[CONFIG_PATH_SIZE];
    char streamInject[CONFIG_PATH_SIZE];
    // From here on in the platform's folder.
    char channelPvrPlayback[CONFIG_PATH_SIZE];
    char common[CONFIG_PATH_SIZE];
    char feature[CONFIG_PATH_SIZE];
    char tuner[CONFIG_PATH_SIZE];
    char commonDir[CONFIG_DIR_SIZE];
    char platformDir[CONFIG_DIR_SIZE];
};

/** Written at start-up on the initial thread, only read afterwards. */
extern ConfigFiles g_configFile;

/** Joins a folder and a file name that begins with its own '/', into CONFIG_PATH_SIZE bytes. */
void out_config_path(const char* dir, const char* name, char* dst);

/** Fills the paths of the common folder. */
void get_common_config(ConfigFiles* files);

/** Fills the paths of the platform's folder, which may be an empty text. */
void get_platform_config(ConfigFiles* files);

/** Takes the platform of number *index, from 1 to 8; any other number leaves the folder empty.
 *  Fills the platform's paths in both cases. */
void set_platform(ConfigFiles* files, const int32_t* index);

/** The console's menu line of platform `index`, from 1; null beyond the last. */
const char* config_platformMenuLine(int32_t index);

#endif

// How long a start takes to load its environment: with the shipped configuration, and with channel
// files that are full, a hundred channels in each table.
#include "program/startup.h"

#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "bench/quiet.h"
#include "bench/world.h"
#include "environment/config_files.h"
#include "environment/test_env.h"

namespace fs = std::filesystem;

namespace {

/** A channel file with all keys of a hundred channels, and comments as the shipped files have. */
void writeFullFile(const fs::path& path) {
    std::ofstream file(path);
    file << "[COMMON]\nCHANNEL_NUM=100\n";
    for (int channel = 0; channel < 100; channel++) {
        file << "\n# Channel " << channel << "\n[CHANNEL" << channel << "]\n"
             << "FREQUENCY=474000\nTS_ID=1\nSTREAM_ID=1\nVIDEO_PID=256\nVIDEO_FORMAT=2\n"
             << "PCR_PID=256\n";
        for (const char* list : {"AUDIO", "AUDIODESC", "SUBTITLE", "OTHER"}) {
            file << list << "_NUM=4\n";
            for (int i = 0; i < 4; i++)
                file << list << "_PID" << i << "=" << 300 + i << "\n"
                     << list << "_FORMAT" << i << "=3\n";
        }
        file << "PMT_PID=100\nEIT_PID=18\nETT_PID=19\nPES_PID=300\n";
    }
}

/** Loads everything, in a folder with a copy of the configuration. */
void load(benchmark::State& state, bool full) {
    fs::path before = fs::current_path();
    fs::path folder = fs::temp_directory_path() / ("zk_startup_" + std::to_string(getpid()));
    fs::create_directories(folder);
    fs::copy(fs::path(ZK_SOURCE_DIR) / "config", folder / "config", fs::copy_options::recursive);
    fs::current_path(folder);
    for (const auto& entry : fs::directory_iterator("config/common")) {
        if (full && entry.path().filename().string().rfind("channel_", 0) == 0)
            writeFullFile(entry.path());
    }
    if (full)
        writeFullFile("config/mtk9602_eu/channel_pvr_playback.cfg");
    int32_t platform = 5;
    snprintf(g_configFile.commonDir, sizeof g_configFile.commonDir, "%s", "config/common");
    get_common_config(&g_configFile);
    set_platform(&g_configFile, &platform);
    Quiet quiet;
    for (auto _ : state) {
        memset(&zk_testConfig, 0, sizeof zk_testConfig);
        zk_loadEnvironment();
    }
    fs::current_path(before);
    fs::remove_all(folder);
}

void loadShipped(benchmark::State& state) {
    load(state, false);
}

void loadFull(benchmark::State& state) {
    load(state, true);
}

const bool registered =
    measureIn(REAL_TIME, "StartWithShippedConfiguration", loadShipped, inMilliseconds) &&
    measureIn(REAL_TIME, "StartWithFullChannelFiles", loadFull, inMilliseconds);

}  // namespace

// How long a start takes to load its environment: with the shipped configuration, and with channel
// files that are full, a hundred channels in each table. Medians of several runs.
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "environment/config_files.h"
#include "environment/test_env.h"
#include "program/startup.h"

namespace fs = std::filesystem;

namespace {

double nowMs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

/** Median milliseconds of loading everything; what it prints goes nowhere. */
double medianLoadMs() {
    std::vector<double> times;
    for (int round = 0; round < 5; round++) {
        memset(&zk_testConfig, 0, sizeof zk_testConfig);
        double start = nowMs();
        zk_loadEnvironment();
        times.push_back(nowMs() - start);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void selectPlatform() {
    int32_t platform = 5;
    snprintf(g_configFile.commonDir, sizeof g_configFile.commonDir, "%s", "config/common");
    get_common_config(&g_configFile);
    set_platform(&g_configFile, &platform);
}

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

}  // namespace

int main(int argc, char** argv) {
    fs::path source = argc > 1 ? fs::absolute(argv[1]) : fs::current_path();
    fs::path dir = fs::temp_directory_path() / ("zk_startup_" + std::to_string(getpid()));
    fs::create_directories(dir);
    fs::copy(source / "config", dir / "config", fs::copy_options::recursive);
    fs::current_path(dir);
    selectPlatform();
    int console = dup(STDOUT_FILENO);
    int null = open("/dev/null", O_WRONLY);
    dup2(null, STDOUT_FILENO);
    double shipped = medianLoadMs();
    for (const auto& entry : fs::directory_iterator(dir / "config/common")) {
        if (entry.path().filename().string().compare(0, 8, "channel_") == 0)
            writeFullFile(entry.path());
    }
    writeFullFile(dir / "config/mtk9602_eu/channel_pvr_playback.cfg");
    double full = medianLoadMs();
    fflush(stdout);
    dup2(console, STDOUT_FILENO);
    printf("start-up, shipped configuration:      %8.1f ms\n", shipped);
    printf("start-up, 100 channels in each table: %8.1f ms (%.1f times)\n", full, full / shipped);
    fs::remove_all(dir);
    return 0;
}

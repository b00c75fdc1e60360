#include "tools/zkbench/bench_folder.h"

#include <errno.h>
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/file.h>
#include <unistd.h>

#include <fstream>
#include <map>

#include "environment/conf_reader.h"
#include "environment/config_files.h"
#include "tools/common/files.h"

namespace fs = std::filesystem;

namespace {

const fs::path memory = ".bench";
const fs::path resultsFile = memory / "results";

/** Everything of the program dies at once, as when power is cut; it runs in a process group of its
 *  own. */
const char rebootScript[] =
    "#!/bin/sh\n"
    "# Restarts the simulated device: ends all that runs on it. The bench runner starts it again.\n"
    "echo reboot >> .bench/reboots\n"
    "kill -9 0\n";

/** Where the runner keeps a copy of what it wrote to a path. */
fs::path shadowOf(const fs::path& path) {
    bool inside = path.is_relative() && path.lexically_normal().begin()->string() != "..";
    return memory / "shipped" / (inside ? path.lexically_normal() : fs::path(contentKey(path)));
}

/** Brings a file of this content to its place, unless one stands there that is not the runner's.
 *  False then. A copy in the memory tells what the runner wrote. */
bool bring(const fs::path& path, const std::string& content) {
    fs::path shadow = shadowOf(path);
    bool there = fs::exists(path);
    std::string present = readText(path);
    if (there && present == content) {
        // A file that stays the same keeps its time: results are older or younger than it.
        if (!fs::exists(shadow) || readText(shadow) != content)
            writeWhole({shadow}, content);
        return true;
    }
    if (there && (!fs::exists(shadow) || present != readText(shadow)))
        return false;
    if (there)
        printf("%s is replaced by a newer one; it was as the runner had written it\n",
               path.c_str());
    writeWhole({path, shadow}, content);
    return true;
}

/** Keys of the files that the runner knows as its own, by name. */
std::map<std::string, std::string> loadResults() {
    std::map<std::string, std::string> keys;
    std::ifstream file(resultsFile);
    for (std::string key, name; file >> key >> std::ws && std::getline(file, name);)
        keys[name] = key;
    return keys;
}

void saveResults(const std::map<std::string, std::string>& keys) {
    std::string text;
    for (const auto& entry : keys)
        text += entry.second + " " + entry.first + "\n";
    writeWhole({resultsFile}, text);
}

bool isOwn(const std::map<std::string, std::string>& keys, const std::string& name) {
    auto found = keys.find(name);
    return found != keys.end() && found->second == contentKey(readText(name));
}

/** "last-report.xls", or the first of "last-report-2.xls", ... that would replace nothing of the
 *  user's. */
std::string placeForLast(const std::map<std::string, std::string>& keys, const fs::path& name) {
    for (int number = 1;; number++) {
        std::string suffix = number == 1 ? "" : "-" + std::to_string(number);
        fs::path place = name.parent_path() /
                         ("last-" + name.stem().string() + suffix + name.extension().string());
        if (!fs::exists(place) || isOwn(keys, place))
            return place;
    }
}

std::string settingOf(const char* key, const char* path) {
    char value[CONF_TEXT_SIZE] = "";
    // As the program does it: where the platform's file has no such key, the common one counts.
    if (read_conf_value("COMMON", key, value, path) != 0)
        read_conf_value("COMMON", key, value, "config/common_config.cfg");
    return value;
}

/** Where the program records, unless it is elsewhere on this machine: a bench has a disk. */
void makeRecordFolders() {
    for (const char* key : {"PVR_RCD_STORE_DIR", "PVR_RCD_STORE_DISK_DIR"}) {
        char path[CONF_TEXT_SIZE] = "";
        read_conf_value("RECODER", key, path, "config/common/pvr_config.cfg");
        if (path[0] != '\0' && fs::path(path).is_relative())
            fs::create_directories(path);
    }
}

}  // namespace

std::string lockFolder() {
    fs::create_directories(memory);
    // Whatever is started inherits it: the folder is taken for as long as anything of a run lives.
    int fd = open((memory / "lock").c_str(), O_RDWR | O_CREAT, 0666);
    if (fd < 0)
        throw fs::filesystem_error("cannot open", memory / "lock",
                                   std::error_code(errno, std::generic_category()));
    if (flock(fd, LOCK_EX | LOCK_NB) != 0)
        return "process " + readText(memory / "lock");
    std::string pid = std::to_string(getpid());
    if (ftruncate(fd, 0) != 0 || pwrite(fd, pid.data(), pid.size(), 0) < 0)
        return "";  // Only the other's message is poorer for it.
    return "";
}

void layOut(const fs::path& project) {
    fs::create_directories("device");
    for (const auto& entry : fs::recursive_directory_iterator(project / "config")) {
        fs::path name = fs::relative(entry.path(), project);
        if (entry.is_regular_file() && !bring(name, readText(entry.path())))
            printf("%s is the folder's own and stays as it is\n", name.c_str());
    }
    makeRecordFolders();
    if (!fs::exists("reboot.sh")) {
        writeWhole({"reboot.sh"}, rebootScript);
        fs::permissions("reboot.sh", fs::perms::owner_exec | fs::perms::group_exec,
                        fs::perm_options::add);
    }
}

RunFiles configuredFiles() {
    RunFiles files;
    ConfigFiles config = {};
    char number[CONF_TEXT_SIZE] = "";
    snprintf(config.commonDir, sizeof config.commonDir, "%s", "config/common");
    get_common_config(&config);
    read_conf_value("PLATFORM_INFO", "PLATFORM", number, config.autoTestPlatform);
    int32_t platform = static_cast<int32_t>(strtol(number, nullptr, 0));
    set_platform(&config, &platform);
    files.checklist = settingOf("COMMON_CHECKLIST_FILE", config.common);
    files.report = settingOf("COMMON_TEST_REPORT_FILE", config.common);
    return files;
}

bool bringChecklist(const fs::path& fresh, const std::string& name) {
    bool brought = bring(name, readText(fresh));
    fs::remove(fresh);
    return brought;
}

void putAside(const std::vector<std::string>& names) {
    std::map<std::string, std::string> keys = loadResults();
    std::string kept;
    for (const std::string& name : names) {
        if (!fs::exists(name))
            continue;
        std::string place = placeForLast(keys, name);
        bool own = isOwn(keys, name);
        kept += (kept.empty() ? "" : ", ") + name + " as " + place;
        fs::rename(name, place);
        if (own)
            keys[place] = keys[name];
        else
            keys.erase(place);
        keys.erase(name);
    }
    if (!kept.empty())
        printf("of the last run there stay %s\n", kept.c_str());
    saveResults(keys);
}

void rememberOwn(const std::vector<std::string>& names) {
    std::map<std::string, std::string> keys = loadResults();
    for (const std::string& name : names)
        keys[name] = contentKey(readText(name));
    saveResults(keys);
}

#include "tools/common/files.h"

#include <errno.h>
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

std::string readText(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::vector<std::string> readLines(const fs::path& path) {
    std::vector<std::string> lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

std::string contentKey(const std::string& content) {
    // FNV-1a
    uint64_t hash = 0xCBF29CE484222325;
    for (char byte : content)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
    char text[20];
    snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(hash));
    return text;
}

static fs::path besideOf(const fs::path& path) {
    return path.string() + ".new";
}

static bool writeBytes(int fd, const std::string& content) {
    size_t done = 0;
    while (done < content.size()) {
        ssize_t some = write(fd, content.data() + done, content.size() - done);
        if (some < 0 && errno == EINTR)
            continue;
        if (some <= 0)
            return false;
        done += static_cast<size_t>(some);
    }
    return true;
}

static void writeBeside(const fs::path& path, const std::string& content) {
    fs::path beside = besideOf(path);
    struct stat old = {};
    mode_t mode = stat(path.c_str(), &old) == 0 ? old.st_mode & 07777 : 0666;
    int fd = open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
    bool good = fd >= 0 && writeBytes(fd, content);
    int error = errno;
    // Some media tell only on closing that they are full.
    if (fd >= 0 && close(fd) != 0 && good) {
        good = false;
        error = errno;
    }
    if (!good)
        throw fs::filesystem_error("cannot write", path,
                                   std::error_code(error, std::generic_category()));
}

void writeWhole(const std::vector<fs::path>& paths, const std::string& content) {
    try {
        for (const fs::path& path : paths) {
            if (path.has_parent_path())
                fs::create_directories(path.parent_path());
            writeBeside(path, content);
        }
        for (const fs::path& path : paths)
            fs::rename(besideOf(path), path);
    } catch (const fs::filesystem_error&) {
        std::error_code ignored;
        for (const fs::path& path : paths)
            fs::remove(besideOf(path), ignored);
        throw;
    }
}

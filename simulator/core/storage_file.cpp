#include "simulator/core/storage_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <sstream>

namespace sim {

namespace {

/** A file descriptor that closes itself. */
class Descriptor {
 public:
    Descriptor(const std::string& path, int flags)
        : number_(open(path.c_str(), flags | O_CLOEXEC, 0644)) {}
    ~Descriptor() {
        if (number_ >= 0)
            close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const {
        return number_;
    }

 private:
    int number_;
};

/** Writes all bytes in spite of short writes. */
bool writeAll(int file, uint64_t offset, const char* data, size_t size) {
    while (size > 0) {
        ssize_t done = pwrite(file, data, size, static_cast<off_t>(offset));
        if (done <= 0)
            return false;
        data += done;
        offset += static_cast<uint64_t>(done);
        size -= static_cast<size_t>(done);
    }
    return true;
}

void makeFolderOf(const std::string& path) {
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), error);
}

}  // namespace

bool loadFile(const std::string& path, size_t limit, std::string* contents) {
    contents->clear();
    Descriptor file(path, O_RDONLY);
    struct stat info {};
    if (file.get() < 0 || fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode))
        return false;
    char buffer[4096];
    ssize_t got = 0;
    while ((got = read(file.get(), buffer, sizeof buffer)) > 0) {
        contents->append(buffer, static_cast<size_t>(got));
        if (contents->size() > limit)
            break;
    }
    if (got == 0)
        return true;
    contents->clear();
    return false;
}

bool saveFile(const std::string& path, const std::string& contents) {
    makeFolderOf(path);
    std::string unfinished = path + ".tmp";
    {
        Descriptor file(unfinished, O_WRONLY | O_CREAT | O_TRUNC);
        if (file.get() < 0 || !writeAll(file.get(), 0, contents.data(), contents.size()))
            return false;
    }
    return rename(unfinished.c_str(), path.c_str()) == 0;
}

bool provideFile(const std::string& path, const std::string& contents) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0)
        return saveFile(path, contents);
    if (!S_ISREG(info.st_mode))
        return false;
    size_t size = static_cast<size_t>(info.st_size);
    if (size == contents.size())
        return true;
    Descriptor file(path, O_WRONLY);
    if (file.get() < 0 || ftruncate(file.get(), static_cast<off_t>(contents.size())) != 0)
        return false;
    return size > contents.size() ||
           writeAll(file.get(), size, contents.data() + size, contents.size() - size);
}

bool readAt(const std::string& path, uint64_t offset, void* data, size_t size) {
    Descriptor file(path, O_RDONLY);
    char* out = static_cast<char*>(data);
    while (file.get() >= 0 && size > 0) {
        ssize_t done = pread(file.get(), out, size, static_cast<off_t>(offset));
        if (done <= 0)
            return false;
        out += done;
        offset += static_cast<uint64_t>(done);
        size -= static_cast<size_t>(done);
    }
    return file.get() >= 0;
}

bool writeAt(const std::string& path, uint64_t offset, const void* data, size_t size) {
    Descriptor file(path, O_WRONLY);
    return file.get() >= 0 && writeAll(file.get(), offset, static_cast<const char*>(data), size);
}

std::map<std::string, std::string> loadKeyValues(const std::string& path) {
    constexpr size_t limit = 1 << 20;
    std::map<std::string, std::string> values;
    std::string contents;
    if (!loadFile(path, limit, &contents))
        return values;
    std::istringstream lines(contents);
    for (std::string line; std::getline(lines, line);) {
        size_t equals = line.find('=');
        if (equals != std::string::npos && equals > 0)
            values[line.substr(0, equals)] = line.substr(equals + 1);
    }
    return values;
}

bool saveKeyValues(const std::string& path, const std::map<std::string, std::string>& values) {
    std::string contents;
    for (const auto& entry : values)
        contents += entry.first + "=" + entry.second + "\n";
    return saveFile(path, contents);
}

}  // namespace sim

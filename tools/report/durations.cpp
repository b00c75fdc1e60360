#include "tools/report/durations.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>

#include <fstream>
#include <stdexcept>

namespace report {

Durations readDurations(const std::filesystem::path& path) {
    std::ifstream file(path);
    if (!file)
        throw std::runtime_error(path.string() + ": " + strerror(errno));
    Durations durations;
    unsigned number = 0;
    for (std::string line; std::getline(file, line);) {
        number++;
        char* end = nullptr;
        errno = 0;
        long long milliseconds = strtoll(line.c_str(), &end, 10);
        if (end == line.c_str() || *end != ' ' || end[1] == '\0' || milliseconds < 0 || errno != 0)
            throw std::runtime_error(path.string() + ": line " + std::to_string(number) +
                                     " is not \"MILLISECONDS MODULE/CASE\"");
        durations[end + 1] = milliseconds;
    }
    return durations;
}

}  // namespace report

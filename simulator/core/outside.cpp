#include "simulator/core/outside.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <mutex>

#include "simulator/core/sim.h"

namespace sim {

struct ControlFile {
    std::mutex mutex;
    int file = -1;
    bool opened = false;
    /** A line that is not whole yet. */
    std::string rest;
    bool (*take)(const std::string&) = nullptr;
};

static ControlFile& control() {
    static ControlFile* instance = new ControlFile;
    return *instance;
}

void takeEventsBy(bool (*take)(const std::string& line)) {
    std::lock_guard<std::mutex> lock(control().mutex);
    control().take = take;
}

/** The whole lines that have come since the last call. */
static std::string newLines(ControlFile& c) {
    std::lock_guard<std::mutex> lock(c.mutex);
    if (!c.opened) {
        c.opened = true;
        const char* path = getenv("QLX_SIM_CONTROL");
        if (path != nullptr)
            c.file = open(path, O_RDONLY | O_CREAT | O_CLOEXEC, 0644);
        if (path != nullptr && c.file < 0)
            complain("cannot read the control file %s", path);
    }
    if (c.file < 0)
        return "";
    char buffer[1024];
    ssize_t got;
    while ((got = read(c.file, buffer, sizeof buffer)) > 0)
        c.rest.append(buffer, static_cast<size_t>(got));
    size_t end = c.rest.rfind('\n');
    if (end == std::string::npos)
        return "";
    std::string lines = c.rest.substr(0, end + 1);
    c.rest.erase(0, end + 1);
    return lines;
}

void takeOutsideEvents() {
    ControlFile& c = control();
    std::string lines = newLines(c);
    for (size_t at = 0; at < lines.size();) {
        size_t end = lines.find('\n', at);
        std::string line = lines.substr(at, end - at);
        at = end + 1;
        if (!line.empty() && line[0] != '#' && (c.take == nullptr || !c.take(line)))
            complain("nothing of the outside world knows the event '%s'", line.c_str());
    }
}

}  // namespace sim

// Files of the transmitters, read when first tuned to, and kept while they are in use or recent.
#include "simulator/world/broadcast.h"

#include <sys/stat.h>

#include <cstdio>
#include <list>
#include <map>
#include <mutex>
#include <utility>

#include "simulator/core/board.h"
#include "simulator/core/sim.h"

namespace sim {

std::string streamFolder() {
    std::string folder = board().text("DEMUX", "STREAM_PATH");
    if (folder.empty()) {
        Cfg demux;
        demux.load(commonFile("demux_config.cfg"));
        folder = demux.text("COMMON", "DEMUX_TS_FILE_PATH");
    }
    if (!folder.empty() && folder.back() != '/')
        folder += '/';
    return folder;
}

namespace {

constexpr size_t keptStreams = 4;
constexpr off_t maxFileBytes = off_t{1} << 30;

struct Entry {
    std::string path;
    uint32_t packetTicks;
    struct timespec modified;
    off_t size;
    TsStreamPtr stream;
};

/** What is otherwise on the air than in the file. */
struct Damages {
    std::vector<std::pair<uint64_t, uint8_t>> bytes;
    std::vector<TsTableChange> tables;
};

struct BroadcastState {
    std::mutex mutex;
    // Latest used first.
    std::list<Entry> streams;
    // By file name without folder.
    std::map<std::string, Damages> damages;
    std::string complainedOf;
};

BroadcastState& state() {
    static BroadcastState* instance = new BroadcastState;
    return *instance;
}

std::string baseName(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

/** Finds the transmitter's file and packet time; an empty path when there is none. */
std::pair<std::string, uint32_t> fileOf(const Transmitter& transmitter) {
    std::string folder = streamFolder();
    Cfg list;
    list.load(folder + "streams.cfg");
    int64_t count = list.number("COMMON", "TRANSMITTER_NUM");
    for (int64_t i = 0; i < count; i++) {
        std::string section = "TRANSMITTER" + std::to_string(i);
        std::string file = list.text(section, "FILE");
        bool named = !transmitter.stream.empty() && file == transmitter.stream;
        bool listed = transmitter.stream.empty() && !transmitter.channels.empty() &&
                      list.number(section, "SYSTEM") == transmitter.listedSystem &&
                      list.number(section, "FIRST_CHANNEL") == transmitter.channels[0];
        if (named || listed)
            return {folder + file, static_cast<uint32_t>(list.number(section, "PACKET_TICKS"))};
    }
    if (transmitter.stream.empty())
        return {"", 0};
    return {transmitter.stream[0] == '/' ? transmitter.stream : folder + transmitter.stream, 0};
}

bool readFile(const std::string& path, off_t size, std::vector<uint8_t>* content) {
    FILE* file = fopen(path.c_str(), "rbe");
    if (file == nullptr)
        return false;
    content->resize(static_cast<size_t>(size));
    content->resize(fread(content->data(), 1, content->size(), file));
    fclose(file);
    return true;
}

bool sameTime(const struct timespec& a, const struct timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

/** Called with the state locked. */
TsStreamPtr load(BroadcastState& s, const std::string& path, const struct stat& file,
                 uint32_t packetTicks) {
    std::vector<uint8_t> content;
    if (file.st_size > maxFileBytes || !readFile(path, file.st_size, &content))
        return nullptr;
    const Damages& damages = s.damages[baseName(path)];
    for (const auto& [offset, value] : damages.bytes) {
        if (offset < content.size())
            content[offset] = value;
        else
            complain("event stream: %s has no byte %llu", path.c_str(),
                     static_cast<unsigned long long>(offset));
    }
    TsOrigin origin = {path, damages.bytes.empty() && damages.tables.empty()};
    auto stream = std::make_shared<const TsStream>(std::move(content), packetTicks, damages.tables,
                                                   std::move(origin));
    return stream->packetCount() > 0 ? stream : nullptr;
}

/** "FILE byte OFFSET XX", "FILE table PID TABLE OFFSET XX", "FILE intact". */
bool change(Words& words) {
    std::string name;
    std::string action;
    int64_t pid = 0;
    int64_t tableId = 0;
    int64_t offset = 0;
    int64_t value = 0;
    if (!words.next(&name) || !words.next(&action))
        return false;
    bool table = action == "table";
    if (table &&
        (!words.nextNumber(0, tsPidCount - 1, &pid) || !words.nextNumber(0, 0xff, &tableId)))
        return false;
    if ((table || action == "byte") &&
        (!words.nextNumber(0, INT64_MAX, &offset) || !words.nextNumber(0, 0xff, &value, 16)))
        return false;
    if ((!table && action != "byte" && action != "intact") || !words.atEnd())
        return false;
    BroadcastState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    Damages& damages = s.damages[baseName(name)];
    if (table)
        damages.tables.push_back({static_cast<uint16_t>(pid), static_cast<uint8_t>(tableId),
                                  static_cast<size_t>(offset), static_cast<uint8_t>(value)});
    else if (action == "byte")
        damages.bytes.emplace_back(static_cast<uint64_t>(offset), static_cast<uint8_t>(value));
    else
        damages = Damages();
    s.streams.remove_if([&](const Entry& entry) { return baseName(entry.path) == baseName(name); });
    return true;
}

void reset() {
    BroadcastState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    s.streams.clear();
    s.damages.clear();
    s.complainedOf.clear();
}

}  // namespace

TsStreamPtr streamOf(const Transmitter& transmitter) {
    auto [path, packetTicks] = fileOf(transmitter);
    BroadcastState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    struct stat file = {};
    if (path.empty() || stat(path.c_str(), &file) != 0 || !S_ISREG(file.st_mode)) {
        std::string what = path.empty() ? "a transmitter of " +
                                              std::string(nameOfSystem(transmitter.listedSystem)) +
                                              " plays no stream"
                                        : "no stream file " + path;
        if (what != s.complainedOf)
            complain("%s", what.c_str());
        s.complainedOf = what;
        return nullptr;
    }
    for (auto entry = s.streams.begin(); entry != s.streams.end(); ++entry) {
        if (entry->path != path)
            continue;
        if (entry->packetTicks == packetTicks && entry->size == file.st_size &&
            sameTime(entry->modified, file.st_mtim)) {
            s.streams.splice(s.streams.begin(), s.streams, entry);
            return entry->stream;
        }
        s.streams.erase(entry);
        break;
    }
    TsStreamPtr stream = load(s, path, file, packetTicks);
    if (stream == nullptr)
        complain("%s holds no transport stream", path.c_str());
    s.streams.push_front({path, packetTicks, file.st_mtim, file.st_size, stream});
    if (s.streams.size() > keptStreams)
        s.streams.pop_back();
    return stream;
}

const WorldPart broadcastPart = {"stream", change, reset};

}  // namespace sim

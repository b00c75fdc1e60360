// Indexes in memory, in the files beside the streams, and the library that makes them.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <map>
#include <mutex>
#include <type_traits>

#include "simulator/core/sim.h"
#include "simulator/core/storage_file.h"
#include "simulator/media/ac4.h"
#include "simulator/media/decoder.h"
#include "simulator/media/index_file.h"
#include "simulator/media/live_index.h"

namespace sim {

bool makeUnits(const Es& es, VideoCoding coding, VideoIndex* index) {
    if (mediaDecoder() != nullptr)
        mediaDecoder()->indexVideo(es, coding, index);
    return mediaDecoder() != nullptr;
}

bool makeUnits(const Es& es, AudioCoding coding, AudioIndex* index) {
    if (coding == AudioCoding::ac4)
        indexAc4(es, index);
    else if (mediaDecoder() != nullptr)
        mediaDecoder()->indexAudio(es, coding, index);
    return coding == AudioCoding::ac4 || mediaDecoder() != nullptr;
}

namespace {

constexpr size_t maxIndexBytes = size_t{64} << 20;

/** The indexes of a stream that is in use. */
struct StreamIndexes {
    std::map<std::pair<uint16_t, VideoCoding>, std::shared_ptr<const VideoIndex>> video;
    std::map<std::pair<uint16_t, AudioCoding>, std::shared_ptr<const AudioIndex>> audio;
};

using StreamRef = std::weak_ptr<const TsStream>;

struct StoreState {
    std::mutex mutex;
    std::map<StreamRef, StreamIndexes, std::owner_less<StreamRef>> streams;
};

StoreState& state() {
    static StoreState* instance = new StoreState;
    return *instance;
}

/** The lock of a stream's index among processes; it goes with the stream's own file, so that a
 *  folder without write permission will do. */
class StreamLock {
 public:
    explicit StreamLock(const std::string& path)
        : file_(path.empty() ? -1 : open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        if (file_ >= 0)
            flock(file_, LOCK_EX);
    }
    ~StreamLock() {
        if (file_ >= 0)
            close(file_);
    }
    bool held() const {
        return file_ >= 0;
    }
    StreamLock(const StreamLock&) = delete;
    StreamLock& operator=(const StreamLock&) = delete;

 private:
    int file_;
};

std::string indexPath(const TsStream& stream) {
    return stream.origin().path.empty() ? "" : stream.origin().path + ".index";
}

IndexFile loadIndexFile(const std::string& path) {
    IndexFile file;
    std::string contents;
    if (!path.empty() && loadFile(path, maxIndexBytes, &contents) &&
        readIndexFile(contents, &file) == IndexFileState::damaged)
        complain("%s is damaged and is made anew", path.c_str());
    return file;
}

// What differs between picture and sound.
auto& entriesOf(IndexFile& file, VideoCoding) {
    return file.video;
}
auto& entriesOf(IndexFile& file, AudioCoding) {
    return file.audio;
}
auto& entriesOf(StreamIndexes& indexes, VideoCoding) {
    return indexes.video;
}
auto& entriesOf(StreamIndexes& indexes, AudioCoding) {
    return indexes.audio;
}

/** Makes the index; false without a decoder. */
template <typename Coding, typename Index>
bool makeIndex(const TsStream& stream, uint16_t pid, Coding coding, Index* index) {
    if (stream.packetsOf(pid).empty())
        return true;
    if (!makeUnits(readEs(stream, pid), coding, index))
        return false;
    index->clockBase = clockBaseOf(stream);
    for (size_t i = 0; i < index->changes.size(); i++) {
        // The loop's end comes before its beginning.
        const auto& before = i == 0 ? index->changes.back() : index->changes[i - 1];
        if (before.format != index->changes[i].format)
            index->units[index->changes[i].unit].flags |= unit_newFormat;
    }
    return true;
}

/** Called with the state locked. Null without a decoder. */
template <typename Index, typename Coding>
std::shared_ptr<const Index> findOrMake(const TsStream& stream, uint16_t pid, Coding coding) {
    uint64_t hash = hashOfPid(stream, pid);
    std::string path = indexPath(stream);
    auto kept = [&](IndexFile& file) -> std::shared_ptr<const Index> {
        auto& entries = entriesOf(file, coding);
        auto found = entries.find({pid, coding});
        if (found == entries.end() || found->second.hash != hash)
            return nullptr;
        return std::make_shared<const Index>(std::move(found->second.index));
    };
    IndexFile file = loadIndexFile(path);
    if (auto index = kept(file))
        return index;
    StreamLock lock(stream.origin().path);
    file = loadIndexFile(path);
    if (auto index = kept(file))
        return index;
    auto made = std::make_shared<Index>();
    if (!makeIndex(stream, pid, coding, made.get())) {
        complain("%s: PID %u has no index, and this device was built without a decoder",
                 path.empty() ? "a stream" : path.c_str(), unsigned{pid});
        return nullptr;
    }
    entriesOf(file, coding)[{pid, coding}] = {hash, *made};
    // Where nothing can be written every process makes it for itself.
    if (lock.held() && stream.origin().intact)
        saveFile(path, writeIndexFile(file));
    return made;
}

template <typename Index, typename Coding>
std::shared_ptr<const Index> indexOf(const TsStreamPtr& stream, uint16_t pid, Coding coding) {
    if (stream == nullptr)
        return nullptr;
    if (stream->lineage() != 0)
        return liveIndex(static_cast<const LiveStream&>(*stream), pid, coding);
    StoreState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    auto known = s.streams.find(stream);
    if (known == s.streams.end()) {
        for (auto other = s.streams.begin(); other != s.streams.end();)
            other = other->first.expired() ? s.streams.erase(other) : std::next(other);
        known = s.streams.emplace(stream, StreamIndexes()).first;
    }
    auto& indexes = entriesOf(known->second, coding);
    auto found = indexes.find({pid, coding});
    if (found == indexes.end())
        found =
            indexes.emplace(std::make_pair(pid, coding), findOrMake<Index>(*stream, pid, coding))
                .first;
    return found->second;
}

/** Of a stream that grows: with places in the elementary stream of what is at hand, as readEs has
 *  it. */
template <typename Index, typename Coding>
std::shared_ptr<const Index> wholeIndex(const TsStreamPtr& stream, uint16_t pid, Coding coding) {
    if (stream == nullptr || stream->lineage() == 0)
        return indexOf<Index>(stream, pid, coding);
    auto made = std::make_shared<Index>();
    return makeIndex(*stream, pid, coding, made.get()) ? made : nullptr;
}

const MediaDecoder* loadDecoder() {
    Dl_info own = {};
    if (dladdr(reinterpret_cast<const void*>(&mediaDecoder), &own) == 0)
        return nullptr;
    std::string path = own.dli_fname;
    size_t slash = path.rfind('/');
    path = (slash == std::string::npos ? "" : path.substr(0, slash + 1)) + mediaDecoderFile;
    if (access(path.c_str(), R_OK) != 0)
        return nullptr;
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        complain("%s", dlerror());
        return nullptr;
    }
    return static_cast<const MediaDecoder*>(dlsym(library, mediaDecoderName));
}

}  // namespace

const MediaDecoder* mediaDecoder() {
    static const MediaDecoder* decoder = loadDecoder();
    return decoder;
}

std::shared_ptr<const VideoIndex> videoIndex(const TsStreamPtr& stream, uint16_t pid,
                                             VideoCoding coding) {
    return indexOf<VideoIndex>(stream, pid, coding);
}

std::shared_ptr<const AudioIndex> audioIndex(const TsStreamPtr& stream, uint16_t pid,
                                             AudioCoding coding) {
    return indexOf<AudioIndex>(stream, pid, coding);
}

std::shared_ptr<const VideoIndex> videoIndexAtHand(const TsStreamPtr& stream, uint16_t pid,
                                                   VideoCoding coding) {
    return wholeIndex<VideoIndex>(stream, pid, coding);
}

std::shared_ptr<const AudioIndex> audioIndexAtHand(const TsStreamPtr& stream, uint16_t pid,
                                                   AudioCoding coding) {
    return wholeIndex<AudioIndex>(stream, pid, coding);
}

}  // namespace sim

// One list of members for both directions.
#include "simulator/media/index_file.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace sim {

namespace {

constexpr char magic[] = {'Q', 'L', 'X', 'I'};
/** Goes up with anything that changes the file or what indexes tell. */
constexpr uint32_t version = 1;
constexpr size_t checksumBytes = 8;
constexpr uint8_t lastVideoCoding = static_cast<uint8_t>(VideoCoding::hevc);
constexpr uint8_t lastAudioCoding = static_cast<uint8_t>(AudioCoding::ac4);

uint64_t checksumOf(const char* bytes, size_t size) {
    uint64_t sum = UINT64_C(0xcbf29ce484222325);
    for (size_t i = 0; i < size; i++)
        sum = (sum ^ static_cast<uint8_t>(bytes[i])) * UINT64_C(0x100000001b3);
    return sum;
}

class Writer {
 public:
    template <typename T>
    void number(const T& value) {
        auto bits = static_cast<uint64_t>(value);
        for (size_t i = 0; i < sizeof(T); i++)
            out.push_back(static_cast<char>(bits >> 8 * i & 0xff));
    }
    template <typename List>
    void resize(List& list, size_t) {
        number(static_cast<uint32_t>(list.size()));
    }

    std::string out;
};

class Reader {
 public:
    explicit Reader(const std::string& contents, size_t end) : contents_(contents), end_(end) {}

    template <typename T>
    void number(T& value) {
        uint64_t bits = 0;
        for (size_t i = 0; i < sizeof(T); i++, at_++) {
            if (at_ < end_)
                bits |= uint64_t{static_cast<uint8_t>(contents_[at_])} << 8 * i;
        }
        value = static_cast<T>(bits);
    }
    /** @param least  bytes that an element takes: a count that cannot be is refused */
    template <typename List>
    void resize(List& list, size_t least) {
        uint32_t count = 0;
        number(count);
        if (at_ > end_ || count > (end_ - at_) / least) {
            at_ = end_ + 1;
            count = 0;
        }
        list.resize(count);
    }
    bool atEnd() const {
        return at_ == end_;
    }
    bool good() const {
        return at_ <= end_;
    }

 private:
    const std::string& contents_;
    size_t end_;
    size_t at_ = sizeof magic + sizeof version;
};

template <typename File>
void pass(File& file, Ratio& ratio) {
    file.number(ratio.num);
    file.number(ratio.den);
}

template <typename File>
void pass(File& file, std::string& text) {
    file.resize(text, 1);
    for (char& letter : text)
        file.number(letter);
}

template <typename File>
void pass(File& file, VideoFormat& f) {
    file.number(f.coding);
    file.number(f.width);
    file.number(f.height);
    pass(file, f.frameRate);
    file.number(f.interlaced);
    pass(file, f.sampleAspect);
    pass(file, f.displayAspect);
    file.number(f.activeFormat);
    file.number(f.primaries);
    file.number(f.transfer);
    file.number(f.matrix);
    file.number(f.fullRange);
    file.number(f.bitDepth);
    file.number(f.masteringDisplay);
    file.number(f.contentLight);
}

template <typename File>
void pass(File& file, AudioFormat& f) {
    file.number(f.coding);
    file.number(f.channels);
    file.number(f.lfe);
    file.number(f.dualMono);
    file.number(f.samplingRate);
    file.number(f.bitRate);
    file.resize(f.presentations, 6);
    for (AudioPresentation& presentation : f.presentations) {
        file.number(presentation.channels);
        file.number(presentation.lfe);
        pass(file, presentation.language);
    }
}

template <typename File, typename Index>
void pass(File& file, IndexEntry<Index>& entry) {
    constexpr size_t unitBytes = 25;
    constexpr size_t leastChange = 4;
    file.number(entry.index.clockBase);
    file.resize(entry.index.units, unitBytes);
    for (AccessUnit& unit : entry.index.units) {
        file.number(unit.first);
        file.number(unit.last);
        file.number(unit.pts);
        file.number(unit.offset);
        file.number(unit.size);
        file.number(unit.flags);
    }
    file.resize(entry.index.changes, leastChange);
    for (auto& change : entry.index.changes) {
        file.number(change.unit);
        pass(file, change.format);
    }
}

template <typename Map>
void writeEntries(Writer& file, Map entries, uint8_t kind) {
    for (auto& [key, entry] : entries) {
        file.number(entry.hash);
        file.number(key.first);
        file.number(kind);
        file.number(key.second);
        pass(file, entry);
    }
}

template <typename Coding, typename Map>
bool readEntry(Reader& file, uint64_t hash, uint16_t pid, uint8_t coding, uint8_t last, Map* to) {
    auto& entry = (*to)[{pid, static_cast<Coding>(coding)}];
    entry.hash = hash;
    pass(file, entry);
    for (const auto& change : entry.index.changes) {
        if (change.unit >= entry.index.units.size() ||
            static_cast<uint8_t>(change.format.coding) > last)
            return false;
    }
    return coding <= last && file.good();
}

bool readEntries(Reader& file, IndexFile* to) {
    uint32_t count = 0;
    file.number(count);
    for (uint32_t i = 0; i < count; i++) {
        uint64_t hash = 0;
        uint16_t pid = 0;
        uint8_t kind = 0;
        uint8_t coding = 0;
        file.number(hash);
        file.number(pid);
        file.number(kind);
        file.number(coding);
        bool good =
            kind == 0 ? readEntry<VideoCoding>(file, hash, pid, coding, lastVideoCoding, &to->video)
                      : kind == 1 && readEntry<AudioCoding>(file, hash, pid, coding,
                                                            lastAudioCoding, &to->audio);
        if (!good)
            return false;
    }
    return file.atEnd();
}

}  // namespace

std::string writeIndexFile(const IndexFile& file) {
    Writer writer;
    writer.out.assign(magic, sizeof magic);
    writer.number(version);
    writer.number(static_cast<uint32_t>(file.video.size() + file.audio.size()));
    writeEntries(writer, file.video, 0);
    writeEntries(writer, file.audio, 1);
    writer.number(checksumOf(writer.out.data(), writer.out.size()));
    return writer.out;
}

IndexFileState readIndexFile(const std::string& contents, IndexFile* file) {
    *file = IndexFile();
    constexpr size_t head = sizeof magic + sizeof version;
    if (contents.size() < head + checksumBytes || memcmp(contents.data(), magic, sizeof magic) != 0)
        return IndexFileState::damaged;
    Writer expected;
    expected.number(version);
    if (contents.compare(sizeof magic, sizeof version, expected.out) != 0)
        return IndexFileState::otherVersion;
    size_t end = contents.size() - checksumBytes;
    Writer sum;
    sum.number(checksumOf(contents.data(), end));
    Reader reader(contents, end);
    if (contents.compare(end, checksumBytes, sum.out) == 0 && readEntries(reader, file))
        return IndexFileState::good;
    *file = IndexFile();
    return IndexFileState::damaged;
}

}  // namespace sim

// What the decoders' indexes cost: making those of all streams of the line-up, as the stream maker
// does.
//
// The streams are those of the runner's store: ZK_STREAMS names their folder.
#include <dirent.h>
#include <stdlib.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "bench/world.h"
#include "simulator/core/storage_file.h"
#include "simulator/media/index_file.h"

namespace {

constexpr uint32_t packetTicks = 5076;

std::string folderOfStreams() {
    const char* named = getenv("ZK_STREAMS");
    return named != nullptr ? named : ZK_SOURCE_DIR "/build/bench/stream/ts";
}

struct Indexed {
    std::string path;
    sim::IndexFile file;
};

/** The streams that have an index, which tells what they carry. */
std::vector<Indexed> indexedStreams() {
    std::vector<Indexed> found;
    std::string folder = folderOfStreams();
    DIR* entries = opendir(folder.c_str());
    while (const dirent* entry = entries != nullptr ? readdir(entries) : nullptr) {
        std::string name = entry->d_name;
        size_t end = name.rfind(".index");
        std::string contents;
        Indexed one;
        if (end == std::string::npos ||
            !sim::loadFile(folder + "/" + name, size_t{64} << 20, &contents) ||
            sim::readIndexFile(contents, &one.file) != sim::IndexFileState::good)
            continue;
        one.path = folder + "/" + name.substr(0, end);
        found.push_back(std::move(one));
    }
    if (entries != nullptr)
        closedir(entries);
    return found;
}

std::vector<uint8_t> contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(file), {});
}

/** Makes all indexes, as if there were no files. */
void MediaIndexesMade(benchmark::State& state) {
    std::vector<Indexed> streams = indexedStreams();
    if (streams.empty())
        state.SkipWithError("no streams: lay out a bench folder, or name one in ZK_STREAMS");
    size_t indexes = 0;
    for (auto _ : state) {
        for (const Indexed& one : streams) {
            state.PauseTiming();
            auto stream = std::make_shared<const sim::TsStream>(contentOf(one.path), packetTicks);
            state.ResumeTiming();
            for (const auto& [key, entry] : one.file.video)
                indexes += sim::videoIndex(stream, key.first, key.second) != nullptr ? 1 : 0;
            for (const auto& [key, entry] : one.file.audio)
                indexes += sim::audioIndex(stream, key.first, key.second) != nullptr ? 1 : 0;
        }
    }
    state.counters["streams"] = static_cast<double>(streams.size());
    state.counters["indexes"] = static_cast<double>(indexes);
}

const bool registered = measureIn(REAL_TIME, "MediaIndexesMade", MediaIndexesMade, onceByProcessor);

}  // namespace

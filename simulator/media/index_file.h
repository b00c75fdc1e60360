/*
 * The file beside a stream that keeps the indexes of its PIDs: "NAME.ts.index".
 *
 *     "QLXI", version              32 bits; all numbers have their low byte first
 *     entries                      32 bits, then that many:
 *       hash of the PID's packets  64 bits
 *       PID, kind, coding          16, 8, 8 bits; kind 0 video, 1 audio
 *       clock base                 64 bits
 *       access units               32 bits, then as many: first, last, PTS, offset, size, flags
 *       changes                    32 bits, then as many: unit, members of the format
 *     checksum of all before       64 bits
 */
#ifndef SIMULATOR_MEDIA_INDEX_FILE_H
#define SIMULATOR_MEDIA_INDEX_FILE_H

#include <stdint.h>

#include <map>
#include <string>
#include <tuple>

#include "simulator/media/es_index.h"

namespace sim {

template <typename Index>
struct IndexEntry {
    uint64_t hash = 0;
    Index index;
};

struct IndexFile {
    /** By PID and coding. */
    std::map<std::pair<uint16_t, VideoCoding>, IndexEntry<VideoIndex>> video;
    std::map<std::pair<uint16_t, AudioCoding>, IndexEntry<AudioIndex>> audio;
};

std::string writeIndexFile(const IndexFile& file);

enum class IndexFileState { good, otherVersion, damaged };

/** @param file  empty unless the result is good */
IndexFileState readIndexFile(const std::string& contents, IndexFile* file);

}  // namespace sim

#endif

// PES packets of streams that grow, looked at one by one.
#include "simulator/media/live_index.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "simulator/core/sim.h"
#include "simulator/core/storage_file.h"
#include "simulator/media/index_file.h"

namespace sim {

namespace {

constexpr uint64_t stampRange = UINT64_C(1) << 33;
constexpr size_t maxPieceFile = size_t{64} << 20;
/** Units of an index; of more the oldest are dropped. */
constexpr size_t mostUnits = 2000;
constexpr size_t droppedUnits = 500;
/** Streams whose indexes are kept at a time. */
constexpr uint64_t keptStreams = 8;

uint64_t contentHash(const std::vector<uint8_t>& data) {
    uint64_t hash = UINT64_C(0xcbf29ce484222325) ^ data.size();
    for (uint8_t byte : data)
        hash = (hash ^ byte) * UINT64_C(0x100000001b3);
    return hash;
}

/** What PES packets hold, by content. Units have the number of their packet in the PES packet as
 *  place, and the time behind that of the PES packet as stamp. */
struct Pieces {
    std::map<std::pair<uint64_t, VideoCoding>, VideoIndex> video;
    std::map<std::pair<uint64_t, AudioCoding>, AudioIndex> audio;
    std::set<std::string> loaded;
    bool complained = false;
};

/** The index of a PID, and the PES packet that is on its way. */
template <typename Index>
struct Follower {
    Index index;
    uint32_t next = 0;
    std::vector<uint32_t> places;
    std::vector<std::vector<uint8_t>> packets;
};

template <typename Coding>
using FollowerKey = std::tuple<uint64_t, uint16_t, Coding>;

struct LiveState {
    std::mutex mutex;
    Pieces pieces;
    std::map<FollowerKey<VideoCoding>, Follower<VideoIndex>> video;
    std::map<FollowerKey<AudioCoding>, Follower<AudioIndex>> audio;
};

LiveState& state() {
    static LiveState* instance = new LiveState;
    return *instance;
}

// What differs between picture and sound.
auto& piecesOf(VideoCoding) {
    return state().pieces.video;
}
auto& piecesOf(AudioCoding) {
    return state().pieces.audio;
}
auto& followersOf(VideoCoding) {
    return state().video;
}
auto& followersOf(AudioCoding) {
    return state().audio;
}

/** Takes in what a file beside the streams has, once. */
void loadPieces(const std::string& path) {
    std::string contents;
    IndexFile file;
    if (path.empty() || !state().pieces.loaded.insert(path).second ||
        !loadFile(path, maxPieceFile, &contents))
        return;
    if (readIndexFile(contents, &file) == IndexFileState::damaged)
        complain("%s is damaged", path.c_str());
    for (auto& [key, entry] : file.video)
        state().pieces.video.emplace(std::make_pair(entry.hash, key.second), entry.index);
    for (auto& [key, entry] : file.audio)
        state().pieces.audio.emplace(std::make_pair(entry.hash, key.second), entry.index);
}

/** What a PES packet holds; nothing, with a complaint, where there is no decoder. */
template <typename Index, typename Coding>
Index pieceOf(Es es, Coding coding) {
    auto& pieces = piecesOf(coding);
    auto key = std::make_pair(contentHash(es.data), coding);
    auto found = es.gaps.empty() ? pieces.find(key) : pieces.end();
    if (found != pieces.end())
        return found->second;
    Index piece;
    for (EsPes& pes : es.pes)
        pes.pts = pes.pts != noStamp ? 0 : noStamp;
    if (!makeUnits(es, coding, &piece)) {
        if (!state().pieces.complained)
            complain(
                "a stream that is played has no index, and this device was built without a "
                "decoder");
        state().pieces.complained = true;
        return piece;
    }
    if (es.gaps.empty())
        pieces[key] = piece;
    return piece;
}

template <typename Index>
void dropOldUnits(Index& index) {
    if (index.units.size() <= mostUnits)
        return;
    index.units.erase(index.units.begin(), index.units.begin() + droppedUnits);
    for (auto& change : index.changes)
        change.unit -= std::min<uint32_t>(change.unit, droppedUnits);
    while (index.changes.size() > 1 && index.changes[1].unit == 0)
        index.changes.erase(index.changes.begin());
}

/** The PES packet on its way is whole. */
template <typename Index, typename Coding>
void take(Follower<Index>& follower, Coding coding) {
    std::vector<const uint8_t*> packets;
    for (const std::vector<uint8_t>& packet : follower.packets)
        packets.push_back(packet.data());
    Es es = readPes(packets);
    Index& index = follower.index;
    if (!es.pes.empty()) {
        uint64_t pts = es.pes.front().pts;
        Index piece = pieceOf<Index>(std::move(es), coding);
        auto base = static_cast<uint32_t>(index.units.size());
        for (AccessUnit unit : piece.units) {
            unit.first = follower.places[unit.first];
            unit.last = follower.places[unit.last];
            unit.pts = unit.pts != noStamp ? (unit.pts + pts) % stampRange : noStamp;
            index.units.push_back(unit);
        }
        for (const auto& change : piece.changes) {
            if (!index.changes.empty() && index.changes.back().format == change.format)
                continue;
            if (!index.changes.empty())
                index.units[base + change.unit].flags |= unit_newFormat;
            index.changes.push_back({base + change.unit, change.format});
        }
        dropOldUnits(index);
    }
    follower.places.clear();
    follower.packets.clear();
}

template <typename Coding>
void forgetOldStreams(Coding coding, uint64_t newest) {
    auto& followers = followersOf(coding);
    while (!followers.empty() && std::get<0>(followers.begin()->first) + keptStreams < newest)
        followers.erase(followers.begin());
}

template <typename Index, typename Coding>
std::shared_ptr<const Index> follow(const LiveStream& stream, uint16_t pid, Coding coding) {
    std::lock_guard<std::mutex> lock(state().mutex);
    if (!stream.origin().path.empty())
        loadPieces(stream.origin().path + ".index");
    forgetOldStreams(coding, stream.lineage());
    Follower<Index>& follower = followersOf(coding)[{stream.lineage(), pid, coding}];
    stream.visit(pid, follower.next, [&](uint32_t place, const uint8_t* packet) {
        bool unitStart = (packet[1] & 0x40) != 0;
        if (unitStart && !follower.packets.empty())
            take(follower, coding);
        follower.places.push_back(place);
        follower.packets.emplace_back(packet, packet + tsPacketBytes);
        follower.next = place + 1;
    });
    return std::make_shared<const Index>(follower.index);
}

/** Pieces stand in an index file under a number in the place of a PID. */
template <typename From, typename To>
void number(const From& pieces, To* entries) {
    uint32_t count = 0;
    for (const auto& [key, piece] : pieces) {
        if (count == UINT16_MAX)
            return;
        (*entries)[{static_cast<uint16_t>(count++), key.second}] = {key.first, piece};
    }
}

}  // namespace

std::shared_ptr<const VideoIndex> liveIndex(const LiveStream& stream, uint16_t pid,
                                            VideoCoding coding) {
    return follow<VideoIndex>(stream, pid, coding);
}

std::shared_ptr<const AudioIndex> liveIndex(const LiveStream& stream, uint16_t pid,
                                            AudioCoding coding) {
    return follow<AudioIndex>(stream, pid, coding);
}

std::string pieceOrigin(const std::string& folder) {
    return folder + "pieces";
}

std::string writePieces() {
    std::lock_guard<std::mutex> lock(state().mutex);
    IndexFile file;
    number(state().pieces.video, &file.video);
    number(state().pieces.audio, &file.audio);
    return writeIndexFile(file);
}

}  // namespace sim

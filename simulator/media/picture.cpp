// Which access units a picture or a sound needs, and files of both.
#include "simulator/media/picture.h"

#include <algorithm>

#include "simulator/core/sim.h"
#include "simulator/core/storage_file.h"
#include "simulator/media/decoder.h"

namespace sim {

namespace {

constexpr int64_t maxSoundUs = 60000000;
/** Frames before the first that is heard: transforms overlap. */
constexpr uint32_t soundRunIn = 3;

/** Units of a stream that runs on: `ordinal` counts through all loops. */
class UnitWalk {
 public:
    UnitWalk(const TsStream& stream, uint16_t pid, const EsUnits& index)
        : es_(readEs(stream, pid)), index_(index) {}

    uint64_t ordinalOf(const UnitMoment& moment) const {
        return moment.loop * index_.units.size() + moment.unit;
    }
    const AccessUnit& unit(uint64_t ordinal) const {
        return index_.units[ordinal % index_.units.size()];
    }
    MediaBytes bytes(uint64_t ordinal) const {
        const AccessUnit& one = unit(ordinal);
        if (size_t{one.offset} + one.size > es_.data.size())
            return {nullptr, 0};
        return {&es_.data[one.offset], one.size};
    }
    std::vector<MediaBytes> range(uint64_t from, uint64_t to) const {
        std::vector<MediaBytes> units;
        for (; from <= to; from++) {
            units.push_back(bytes(from));
            if (units.back().bytes == nullptr)
                return {};
        }
        return units;
    }

 private:
    Es es_;
    const EsUnits& index_;
};

/** The decoder, or null with a complaint. */
const MediaDecoder* decoderFor(const char* what) {
    if (mediaDecoder() == nullptr)
        complain("no %s: this device was built without a decoder", what);
    return mediaDecoder();
}

}  // namespace

Picture decodePicture(const TsStreamPtr& stream, uint16_t pid, VideoCoding coding, int64_t sinceUs,
                      int64_t atUs) {
    std::shared_ptr<const VideoIndex> index = videoIndexAtHand(stream, pid, coding);
    if (index == nullptr || index->changes.empty())
        return {};
    std::optional<UnitMoment> begin =
        nextUnit(*stream, *index, sinceUs, unit_access | unit_decoded);
    std::optional<UnitMoment> shown =
        begin.has_value() ? unitShown(*stream, *index, begin->beginUs, atUs) : std::nullopt;
    const MediaDecoder* decoder = shown.has_value() ? decoderFor("picture") : nullptr;
    if (decoder == nullptr)
        return {};
    UnitWalk walk(*stream, pid, *index);
    uint64_t wanted = walk.ordinalOf(*shown);
    uint64_t earliest = walk.ordinalOf(*begin);
    uint64_t from = wanted;
    // Pictures behind an access point that are shown before it need the access point before that.
    for (int points = 0; from > earliest; from--) {
        points += (walk.unit(from).flags & unit_decoded) != 0 ? 1 : 0;
        if (points == 2)
            break;
    }
    return decoder->picture(coding, walk.range(from, wanted), wanted - from);
}

Sound decodeSound(const TsStreamPtr& stream, uint16_t pid, AudioCoding coding, int64_t fromUs,
                  int64_t durationUs) {
    Sound sound;
    int64_t count = std::clamp<int64_t>(durationUs, 0, maxSoundUs) * soundSamplingRate / 1000000;
    std::shared_ptr<const AudioIndex> index = audioIndexAtHand(stream, pid, coding);
    const MediaDecoder* decoder = index != nullptr ? decoderFor("sound") : nullptr;
    if (decoder == nullptr)
        return sound;
    sound.samples.resize(static_cast<size_t>(count) * 2);
    std::optional<UnitMoment> first = unitShown(*stream, *index, 0, fromUs);
    if (!first.has_value())
        first = nextUnit(*stream, *index, fromUs, unit_decoded);
    std::optional<UnitMoment> last = unitShown(*stream, *index, 0, fromUs + durationUs);
    if (!first.has_value() || !last.has_value() || index->changes.empty())
        return sound;
    UnitWalk walk(*stream, pid, *index);
    uint64_t from = walk.ordinalOf(*first);
    uint64_t to = walk.ordinalOf(*last);
    if (from > to)
        return sound;
    uint64_t runIn = from - std::min<uint64_t>(from, soundRunIn);
    Sound before = decoder->sound(coding, walk.range(runIn, from - (from > runIn ? 1 : 0)));
    Sound decoded = decoder->sound(coding, walk.range(runIn, to));
    size_t skipped = from > runIn ? before.samples.size() / 2 : 0;
    // Where the first unit's samples lie in what was asked for; it may have begun before.
    int64_t place = (first->shownUs - fromUs) * soundSamplingRate / 1000000;
    for (size_t i = skipped; i < decoded.samples.size() / 2; i++, place++) {
        if (place < 0 || place >= count)
            continue;
        sound.samples[static_cast<size_t>(place) * 2] = decoded.samples[i * 2];
        sound.samples[static_cast<size_t>(place) * 2 + 1] = decoded.samples[i * 2 + 1];
    }
    return sound;
}

bool writePng(const std::string& path, const Picture& picture, std::string* message) {
    const MediaDecoder* decoder = mediaDecoder();
    std::vector<uint8_t> file;
    if (decoder != nullptr)
        file = decoder->png(picture);
    *message = decoder == nullptr ? "this device was built without a decoder"
               : file.empty()     ? "there is no picture"
                                  : path + " cannot be written";
    return !file.empty() && saveFile(path, std::string(file.begin(), file.end()));
}

bool writeWav(const std::string& path, const Sound& sound, std::string* message) {
    std::string file;
    auto number = [&](uint32_t value, int bytes) {
        for (int i = 0; i < bytes; i++)
            file.push_back(static_cast<char>(value >> 8 * i & 0xff));
    };
    constexpr uint32_t channels = 2;
    constexpr uint32_t frameBytes = channels * 2;
    auto dataBytes = static_cast<uint32_t>(sound.samples.size() * 2);
    file += "RIFF";
    number(36 + dataBytes, 4);
    file += "WAVEfmt ";
    number(16, 4);
    number(1, 2);  // PCM
    number(channels, 2);
    number(soundSamplingRate, 4);
    number(soundSamplingRate * frameBytes, 4);
    number(frameBytes, 2);
    number(16, 2);
    file += "data";
    number(dataBytes, 4);
    for (int16_t sample : sound.samples)
        number(static_cast<uint16_t>(sample), 2);
    *message = path + " cannot be written";
    return saveFile(path, file);
}

}  // namespace sim

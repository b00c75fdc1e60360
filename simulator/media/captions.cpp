#include "simulator/media/captions.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>

#include "simulator/media/es_reader.h"

namespace sim {

namespace {

using Bytes = std::vector<uint8_t>;

/** The triplets of user data that begin with the identifier of ATSC. */
void takeUserData(const uint8_t* data, size_t size, Bytes* triplets) {
    static const uint8_t head[] = {'G', 'A', '9', '4', 3};
    constexpr size_t fixed = sizeof head + 2;
    if (size < fixed || memcmp(data, head, sizeof head) != 0)
        return;
    const uint8_t flags = data[sizeof head];  // 1, process_cc_data_flag, 1, cc_count
    if ((flags & 0x40) == 0)
        return;
    const size_t bytes = std::min(bytesPerTriplet * (flags & 0x1F), size - fixed);
    triplets->insert(triplets->end(), data + fixed, data + fixed + bytes - bytes % bytesPerTriplet);
}

/** The place behind the next start code 00 00 01; `size` when there is none. */
size_t behindStartCode(const uint8_t* data, size_t size, size_t at) {
    for (; at + 3 < size; at++) {
        if (data[at] == 0 && data[at + 1] == 0 && data[at + 2] == 1)
            return at + 3;
    }
    return size;
}

/** ISO/IEC 13818-2: user data between the headers and the first slice. */
void takeMpeg2(const uint8_t* data, size_t size, Bytes* triplets) {
    constexpr uint8_t userData = 0xB2;
    constexpr uint8_t lastSlice = 0xAF;
    for (size_t at = behindStartCode(data, size, 0); at < size;) {
        const uint8_t code = data[at++];
        if (code != 0 && code <= lastSlice)
            return;
        const size_t next = behindStartCode(data, size, at);
        if (code == userData)
            takeUserData(data + at, next - at, triplets);
        at = next;
    }
}

/** Without the bytes that keep start codes out of a NAL unit. */
Bytes unescaped(const uint8_t* data, size_t size) {
    Bytes out;
    size_t zeros = 0;
    for (size_t i = 0; i < size; i++) {
        if (zeros >= 2 && data[i] == 3) {
            zeros = 0;
            continue;
        }
        zeros = data[i] == 0 ? zeros + 1 : 0;
        out.push_back(data[i]);
    }
    return out;
}

/** The messages of supplemental enhancement information that are registered by ITU-T T.35. */
void takeSei(const Bytes& sei, Bytes* triplets) {
    constexpr size_t registered = 4;
    static const uint8_t atsc[] = {0xB5, 0x00, 0x31};
    size_t at = 0;
    auto number = [&] {
        size_t value = 0;
        while (at < sei.size() && sei[at] == 0xFF) {
            value += 0xFF;
            at++;
        }
        return at < sei.size() ? value + sei[at++] : value;
    };
    while (at + 2 < sei.size()) {
        const size_t type = number();
        const size_t size = std::min(number(), sei.size() - at);
        if (type == registered && size > sizeof atsc && memcmp(&sei[at], atsc, sizeof atsc) == 0)
            takeUserData(&sei[at] + sizeof atsc, size - sizeof atsc, triplets);
        at += size;
    }
}

/** ISO/IEC 14496-10 and 23008-2. */
void takeNalUnits(VideoCoding coding, const uint8_t* data, size_t size, Bytes* triplets) {
    const bool hevc = coding == VideoCoding::hevc;
    const size_t header = hevc ? 2 : 1;
    for (size_t at = behindStartCode(data, size, 0); at < size;) {
        const size_t next = behindStartCode(data, size, at);
        const unsigned type = hevc ? data[at] >> 1 & 0x3F : data[at] & 0x1F;
        if (type == (hevc ? 39u : 6u) && next - at > header)
            takeSei(unescaped(data + at + header, next - at - header), triplets);
        at = next;
    }
}

CaptionIndex makeIndex(const TsStream& stream, uint16_t pid, VideoCoding coding,
                       const EsUnits& units) {
    CaptionIndex captions;
    const Es es = readEs(stream, pid);
    for (uint32_t i = 0; i < units.units.size(); i++) {
        const AccessUnit& unit = units.units[i];
        if (unit.offset + size_t{unit.size} > es.data.size())
            break;
        Bytes triplets = captionsInPicture(coding, &es.data[unit.offset], unit.size);
        if (!triplets.empty())
            captions.push_back({i, std::move(triplets)});
    }
    auto shownUs = [&](const CaptionedPicture& picture) {
        // In a late loop, so that no time is cut off at the beginning.
        return unitMoment(stream, units, 1000, picture.unit).shownUs;
    };
    std::stable_sort(captions.begin(), captions.end(),
                     [&](const CaptionedPicture& one, const CaptionedPicture& other) {
                         return shownUs(one) < shownUs(other);
                     });
    return captions;
}

using StreamRef = std::weak_ptr<const TsStream>;
using Known = std::map<std::pair<uint16_t, VideoCoding>, std::shared_ptr<const CaptionIndex>>;

struct CaptionStore {
    std::mutex mutex;
    std::map<StreamRef, Known, std::owner_less<StreamRef>> streams;
};

}  // namespace

std::vector<uint8_t> captionsInPicture(VideoCoding coding, const uint8_t* data, size_t size) {
    Bytes triplets;
    if (coding == VideoCoding::h264 || coding == VideoCoding::hevc)
        takeNalUnits(coding, data, size, &triplets);
    else
        takeMpeg2(data, size, &triplets);
    return triplets;
}

std::vector<Bytes> captionsByStamp(const TsStream& stream, uint16_t pid, VideoCoding coding) {
    const Es es = readEs(stream, pid);
    std::multimap<uint64_t, Bytes> pictures;
    for (size_t i = 0; i < es.pes.size(); i++) {
        const size_t end = i + 1 < es.pes.size() ? es.pes[i + 1].offset : es.data.size();
        const size_t begin = es.pes[i].offset;
        Bytes triplets = captionsInPicture(coding, es.data.data() + begin, end - begin);
        if (!triplets.empty())
            pictures.emplace(es.pes[i].pts, std::move(triplets));
    }
    std::vector<Bytes> ordered;
    for (auto& [pts, triplets] : pictures)
        ordered.push_back(std::move(triplets));
    return ordered;
}

std::shared_ptr<const CaptionIndex> captionIndex(const TsStreamPtr& stream, uint16_t pid,
                                                 VideoCoding coding, const EsUnits& units) {
    static CaptionStore* store = new CaptionStore;
    std::lock_guard<std::mutex> lock(store->mutex);
    for (auto at = store->streams.begin(); at != store->streams.end();)
        at = at->first.expired() ? store->streams.erase(at) : std::next(at);
    auto& known = store->streams[stream][{pid, coding}];
    if (known == nullptr)
        known = std::make_shared<const CaptionIndex>(makeIndex(*stream, pid, coding, units));
    return known;
}

std::optional<CaptionMoment> nextCaptions(const TsStream& stream, const EsUnits& units,
                                          const CaptionIndex& captions, const UnitMoment& first,
                                          int64_t fromUs) {
    std::optional<CaptionMoment> next;
    uint64_t loop = stream.packetAt(std::max<int64_t>(fromUs, 0)) / stream.packetCount();
    for (uint64_t at = loop - std::min<uint64_t>(loop, 1); at <= loop + 1; at++) {
        for (const CaptionedPicture& picture : captions) {
            const UnitMoment moment = unitMoment(stream, units, at, picture.unit);
            if (moment.shownUs < fromUs || moment.beginUs < first.beginUs ||
                moment.shownUs < first.shownUs)
                continue;
            if (!next.has_value() || moment.shownUs < next->moment.shownUs)
                next = CaptionMoment{&picture, moment};
            break;
        }
    }
    return next;
}

std::vector<Bytes> CaptionChannel::take(const Bytes& triplets) {
    constexpr uint8_t begins = 3;
    constexpr uint8_t goesOn = 2;
    std::vector<Bytes> whole;
    for (size_t at = 0; at + bytesPerTriplet <= triplets.size(); at += bytesPerTriplet) {
        const uint8_t type = triplets[at] & captionType;
        if ((triplets[at] & captionValid) == 0 || type < goesOn)
            continue;
        if (type == begins)
            packet_.clear();
        else if (packet_.empty())
            continue;
        packet_.insert(packet_.end(), {triplets[at + 1], triplets[at + 2]});
        const size_t code = packet_[0] & 0x3F;
        if (packet_.size() < (code == 0 ? 128 : 2 * code))
            continue;
        whole.push_back(packet_);
        packet_.clear();
    }
    return whole;
}

}  // namespace sim

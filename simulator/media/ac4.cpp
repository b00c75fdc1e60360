// AC-4 frames in their sync frames (TS 103 190-2, annex C), tables of contents of version 2
// (6.2.1).
#include "simulator/media/ac4.h"

#include <algorithm>
#include <optional>

namespace sim {

namespace {

/** Reads bits; beyond the end they are 0, and the reader is bad. */
class Bits {
 public:
    Bits(const uint8_t* bytes, size_t size) : bytes_(bytes), bits_(size * 8) {}

    uint32_t get(unsigned count) {
        uint32_t value = 0;
        for (; count > 0; count--, at_++)
            value = value << 1 | (at_ < bits_ ? bytes_[at_ / 8] >> (7 - at_ % 8) & 1u : 0u);
        return value;
    }
    bool flag() {
        return get(1) != 0;
    }
    /** variable_bits (4.3.2). */
    uint32_t variable(unsigned step) {
        uint32_t value = get(step);
        while (good() && flag())
            value = ((value + 1) << step) + get(step);
        return value;
    }
    /** A field whose highest value is continued. */
    uint32_t extended(unsigned count, unsigned step) {
        uint32_t value = get(count);
        return value == (1u << count) - 1 ? value + variable(step) : value;
    }
    bool good() const {
        return at_ <= bits_;
    }

 private:
    const uint8_t* bytes_;
    size_t bits_;
    size_t at_ = 0;
};

struct ChannelMode {
    unsigned bits;
    uint32_t code;
    uint8_t channels;
    bool lfe;
    bool hasBase;
    bool hasTop;
};

/** Table 85; a prefix code. */
const ChannelMode channelModes[] = {
    {1, 0x0, 1, false, false, false},  {2, 0x2, 2, false, false, false},
    {4, 0xc, 3, false, false, false},  {4, 0xd, 5, false, false, false},
    {4, 0xe, 6, true, false, false},   {7, 0x78, 7, false, false, false},
    {7, 0x79, 8, true, false, false},  {7, 0x7a, 7, false, true, false},
    {7, 0x7b, 8, true, true, false},   {7, 0x7c, 7, false, true, false},
    {7, 0x7d, 8, true, true, false},   {8, 0xfc, 11, false, false, true},
    {8, 0xfd, 12, true, false, true},  {9, 0x1fc, 13, false, false, true},
    {9, 0x1fd, 14, true, false, true}, {9, 0x1fe, 24, true, false, false},
};

constexpr uint32_t maxPresentations = 64;
constexpr uint32_t maxGroups = 64;

class TableOfContents {
 public:
    TableOfContents(const uint8_t* bytes, size_t size) : bits_(bytes, size) {}

    std::optional<AudioFormat> read() {
        AudioFormat format;
        format.coding = AudioCoding::ac4;
        uint32_t presentations = readHead(&format);
        if (presentations == 0 || presentations > maxPresentations)
            return std::nullopt;
        for (uint32_t i = 0; i < presentations && bits_.good(); i++)
            groupOf_.push_back(readPresentation());
        std::vector<AudioPresentation> groups(groups_);
        for (AudioPresentation& group : groups) {
            if (!readGroup(&group))
                return std::nullopt;
        }
        if (!bits_.good())
            return std::nullopt;
        for (uint32_t group : groupOf_)
            format.presentations.push_back(group < groups.size() ? groups[group]
                                                                 : AudioPresentation());
        format.channels = format.presentations[0].channels;
        format.lfe = format.presentations[0].lfe;
        return format;
    }

 private:
    /** Returns the number of presentations; 0 for a version that is not told of here. */
    uint32_t readHead(AudioFormat* format) {
        if (bits_.get(2) != 2)
            return 0;
        bits_.get(10);  // sequence_counter
        if (bits_.flag() && bits_.get(3) > 0)
            bits_.get(2);  // br_code
        is48k_ = bits_.flag();
        format->samplingRate = is48k_ ? 48000 : 44100;
        rateIndex_ = bits_.get(4);
        bits_.get(1);  // b_iframe_global
        uint32_t presentations = 1;
        if (!bits_.flag())
            presentations = bits_.flag() ? bits_.variable(2) + 2 : 0;
        if (bits_.flag() && bits_.get(5) == 31)
            bits_.variable(3);  // payload_base
        if (bits_.flag()) {
            bits_.get(16);  // short_program_id
            if (bits_.flag()) {
                for (int i = 0; i < 4; i++)
                    bits_.get(32);
            }
        }
        return presentations;
    }

    void readSubstreamIndex() {
        bits_.extended(2, 2);
    }

    void readEmdf() {
        bits_.extended(2, 2);
        bits_.extended(3, 3);
        if (bits_.flag())
            readSubstreamIndex();
        static const unsigned lengths[] = {0, 8, 32, 128};
        unsigned primary = lengths[bits_.get(2)];
        unsigned secondary = lengths[bits_.get(2)];
        bits_.get(primary);
        bits_.get(secondary);
    }

    uint32_t readGroupIndex() {
        uint32_t group = bits_.extended(3, 2);
        groups_ = std::max<size_t>(groups_, std::min(group, maxGroups - 1) + 1);
        return group;
    }

    void readFrameRate() {
        bool doubled = rateIndex_ <= 1 || (rateIndex_ >= 7 && rateIndex_ <= 9);
        bool more = rateIndex_ >= 2 && rateIndex_ <= 4;
        rateFactor_ = 1;
        if ((doubled || more) && bits_.flag())
            rateFactor_ = more && bits_.flag() ? 4 : 2;
        if (rateIndex_ >= 5 && rateIndex_ <= 9 && rateFactor_ == 1)
            bits_.flag();
        if (rateIndex_ >= 10 && rateIndex_ <= 12 && bits_.flag())
            bits_.flag();
    }

    /** Returns the group that it plays first. */
    uint32_t readPresentation() {
        bool single = bits_.flag();
        uint32_t config = single ? 0 : bits_.extended(3, 2);
        while (bits_.good() && bits_.flag()) {
            // presentation_version
        }
        bool additional = !single && config == 6;
        uint32_t group = 0;
        if (!additional) {
            bits_.get(3);  // mdcompat
            if (bits_.flag())
                bits_.variable(2);
            readFrameRate();
            readEmdf();
            if (bits_.flag())
                bits_.flag();  // b_enable_presentation
            group = readGroups(single, config);
            bits_.flag();  // b_pre_virtualized
            additional = bits_.flag();
            bits_.get(2);  // b_alternative, b_pres_ndot
            readSubstreamIndex();
        }
        uint32_t count = additional ? bits_.get(2) : 0;
        if (additional && count == 0)
            count = bits_.variable(2) + 4;
        for (uint32_t i = 0; i < count && bits_.good(); i++)
            readEmdf();
        return group;
    }

    uint32_t readGroups(bool single, uint32_t config) {
        if (single)
            return readGroupIndex();
        bits_.flag();  // b_multi_pid
        uint32_t count = config <= 2 ? 2 : 3;
        if (config == 5) {
            count = bits_.get(2) + 2;
            if (count == 5)
                count += bits_.variable(2);
        } else if (config > 5) {
            // presentation_config_ext_info
            uint32_t bytes = bits_.get(5);
            if (bits_.flag())
                bytes += bits_.variable(2) << 5;
            for (; bytes > 0 && bits_.good(); bytes--)
                bits_.get(8);
            return 0;
        }
        uint32_t first = readGroupIndex();
        for (uint32_t i = 1; i < count && bits_.good(); i++)
            readGroupIndex();
        return first;
    }

    /** Returns false for groups of objects, which are not told of here. */
    bool readGroup(AudioPresentation* group) {
        bool present = bits_.flag();
        bool extension = bits_.flag();
        uint32_t substreams = 1;
        if (!bits_.flag()) {
            substreams = bits_.get(2) + 2;
            if (substreams == 5)
                substreams += bits_.variable(2);
        }
        if (!bits_.flag())
            return false;
        for (uint32_t i = 0; i < substreams && bits_.good(); i++) {
            if (!readSubstream(present, group))
                return false;
            if (extension && present)
                readSubstreamIndex();
        }
        if (bits_.flag())
            readContentType(group);
        return true;
    }

    bool readSubstream(bool present, AudioPresentation* group) {
        const ChannelMode* mode = readChannelMode();
        if (mode == nullptr)
            return false;
        group->channels = mode->channels;
        group->lfe = mode->lfe;
        if (mode->hasTop)
            bits_.get(4);
        if (is48k_ && bits_.flag())
            bits_.flag();  // sf_multiplier
        if (bits_.flag() && (bits_.get(3) & 1) != 0)
            bits_.get(2);  // bitrate_indicator
        if (mode->hasBase)
            bits_.flag();
        bits_.get(rateFactor_);  // b_audio_ndot
        if (present)
            readSubstreamIndex();
        return true;
    }

    const ChannelMode* readChannelMode() {
        uint32_t code = 0;
        unsigned length = 0;
        for (const ChannelMode& mode : channelModes) {
            for (; length < mode.bits; length++)
                code = code << 1 | bits_.get(1);
            if (code == mode.code)
                return &mode;
        }
        return nullptr;
    }

    void readContentType(AudioPresentation* group) {
        bits_.get(3);  // content_classifier
        if (!bits_.flag())
            return;
        if (bits_.flag()) {
            bits_.get(17);  // a part of a tag that comes over several frames
            return;
        }
        for (uint32_t bytes = bits_.get(6); bytes > 0 && bits_.good(); bytes--)
            group->language += static_cast<char>(bits_.get(8));
    }

    Bits bits_;
    bool is48k_ = false;
    uint32_t rateIndex_ = 0;
    unsigned rateFactor_ = 1;
    std::vector<uint32_t> groupOf_;
    size_t groups_ = 0;
};

/** A sync frame: where its contents begin and end; `end` is 0 where there is none. */
struct SyncFrame {
    size_t begin;
    size_t end;
    size_t next;
};

SyncFrame syncFrameAt(const std::vector<uint8_t>& data, size_t at) {
    if (at + 7 > data.size() || data[at] != 0xac || (data[at + 1] & 0xfe) != 0x40)
        return {};
    size_t size = static_cast<size_t>(data[at + 2]) << 8 | data[at + 3];
    size_t begin = at + 4;
    if (size == 0xffff) {
        size = static_cast<size_t>(data[at + 4]) << 16 | data[at + 5] << 8 | data[at + 6];
        begin = at + 7;
    }
    size_t crc = data[at + 1] == 0x41 ? 2 : 0;
    if (size == 0 || begin + size + crc > data.size())
        return {};
    return {begin, begin + size, begin + size + crc};
}

}  // namespace

void indexAc4(const Es& es, AudioIndex* index) {
    size_t at = 0;
    while (at < es.data.size()) {
        SyncFrame frame = syncFrameAt(es.data, at);
        if (frame.end == 0) {
            at++;
            continue;
        }
        AccessUnit unit = accessUnitAt(es, at, frame.next - at);
        unit.flags |= unit_access;
        std::optional<AudioFormat> format =
            TableOfContents(&es.data[frame.begin], frame.end - frame.begin).read();
        if (!format.has_value())
            unit.flags |= unit_damaged;
        if ((unit.flags & unit_damaged) == 0) {
            unit.flags |= unit_decoded;
            if (index->changes.empty() || index->changes.back().format != *format)
                index->changes.push_back({static_cast<uint32_t>(index->units.size()), *format});
        }
        index->units.push_back(unit);
        at = frame.next;
    }
    setStamps(es, &index->units);
}

}  // namespace sim

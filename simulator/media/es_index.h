/*
 * What decoding of the elementary stream on one PID found: its access units with their places in
 * the stream, which of them decoding can begin at, and every format.
 *
 * An index is of one loop of the stream, which goes on for ever. It is made once: kept in a file in
 * folder "index" beside the stream, under a hash of the PID's packets, and in memory. Who plays a
 * stream computes from it when the next thing of interest happens, and decodes nothing.
 *
 * Times are those of the stream (TsStream): microseconds of the monotonic clock. Any thread may
 * call.
 */
#ifndef SIMULATOR_MEDIA_ES_INDEX_H
#define SIMULATOR_MEDIA_ES_INDEX_H

#include <stdint.h>

#include <memory>
#include <optional>
#include <vector>

#include "simulator/media/format.h"
#include "simulator/stream/ts_stream.h"

namespace sim {

/** What is known of an access unit. */
enum UnitFlag : uint8_t {
    /** Decoding can begin here: a coded picture behind its sequence header or parameter sets (I,
     *  IDR, CRA, or with a recovery point), any audio frame. */
    unit_access = 1,
    /** Decoding began here for the index, and gave a picture or a sound. Audio frames between two
     *  such that are alike have it too. */
    unit_decoded = 2,
    /** Packets of it are lost, damaged or scrambled, or its decoder found an error. */
    unit_damaged = 4,
    /** The format from here on is another one than before, in a stream that has been running. */
    unit_newFormat = 8,
};

struct AccessUnit {
    /** Place in the loop of the packet in which its PES packet begins. */
    uint32_t first;
    /** Place of the packet with its last byte, at or beyond the packet count when that is in the
     *  next loop. */
    uint32_t last;
    /** Presentation time stamp in loop 0, 90 kHz; noStamp: none. */
    uint64_t pts;
    /** Where it lies in the elementary stream of the loop, and how long it is. */
    uint32_t offset;
    uint32_t size;
    /** Of UnitFlag. */
    uint8_t flags;
};

constexpr uint64_t noStamp = UINT64_MAX;

/** Access units in the order in which they are sent. */
struct EsUnits {
    std::vector<AccessUnit> units;
    /** Program clock at the beginning of packet 0 of loop 0, 90 kHz; it runs on with the packets.
     */
    uint64_t clockBase = 0;
};

template <typename Format>
struct EsIndex : EsUnits {
    struct Change {
        /** Index in `units`; has unit_decoded. */
        uint32_t unit;
        Format format;
    };
    /** In the order of their units. The first is the first format of the loop; unit_newFormat tells
     *  whether it is another one than the last. Empty when nothing decodes. */
    std::vector<Change> changes;

    /** The format that an access unit has; null when nothing decodes. */
    const Format* formatAt(uint32_t unit) const {
        const Format* format = changes.empty() ? nullptr : &changes.back().format;
        for (const Change& change : changes) {
            if (change.unit <= unit)
                format = &change.format;
        }
        return format;
    }
};

using VideoIndex = EsIndex<VideoFormat>;
using AudioIndex = EsIndex<AudioFormat>;

/**
 * What the PID's data are when decoded in that coding. A PID that carries nothing, or what does not
 * decode so, has an index without a unit_decoded. AAC is found in ADTS and in LOAS framing, under
 * both of its codings.
 * @return null when there is no index file and this device was built without a decoder, or its data
 *         base is unusable; that is complained of once for a PID
 */
std::shared_ptr<const VideoIndex> videoIndex(const TsStreamPtr& stream, uint16_t pid,
                                             VideoCoding coding);
std::shared_ptr<const AudioIndex> audioIndex(const TsStreamPtr& stream, uint16_t pid,
                                             AudioCoding coding);

/** The same for who reads the units' bytes: of a stream that grows, made anew of what the view
 *  holds. */
std::shared_ptr<const VideoIndex> videoIndexAtHand(const TsStreamPtr& stream, uint16_t pid,
                                                   VideoCoding coding);
std::shared_ptr<const AudioIndex> audioIndexAtHand(const TsStreamPtr& stream, uint16_t pid,
                                                   AudioCoding coding);

/** An access unit at one of its turns. */
struct UnitMoment {
    uint64_t loop;
    /** Index in EsUnits::units. */
    uint32_t unit;
    /** When its first packet begins, and when its last one has come whole. */
    int64_t beginUs;
    int64_t arrivedUs;
    /** As sent in that loop, 33 bits; noStamp: none. */
    uint64_t pts;
    /** When the program clock reaches its PTS; arrivedUs when it has none. */
    int64_t shownUs;
};

/** The turn of an access unit in a loop. @param unit  index in EsUnits::units */
UnitMoment unitMoment(const TsStream& stream, const EsUnits& index, uint64_t loop, uint32_t unit);

/**
 * The first access unit that has all those flags and begins at `fromUs` or later.
 * @return none when no unit of the loop has them
 */
std::optional<UnitMoment> nextUnit(const TsStream& stream, const EsUnits& index, int64_t fromUs,
                                   uint8_t flags);

/**
 * The access unit that is on the screen (or sounds) at a time: that with the highest PTS that the
 * program clock has reached, of those that began to be sent at `sinceUs` or later.
 * @return none when there is none yet
 */
std::optional<UnitMoment> unitShown(const TsStream& stream, const EsUnits& index, int64_t sinceUs,
                                    int64_t atUs);

}  // namespace sim

#endif

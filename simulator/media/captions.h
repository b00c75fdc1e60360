/*
 * Closed captions in coded video: cc_data in the user data of the pictures (ATSC A/53 part 4,
 * 6.2.3), and the packets of the DTV caption channel that they carry (CTA-708, 5).
 *
 * cc_data are triplets: a byte with cc_valid and cc_type, and two bytes. Types 0 and 1 are the line
 * 21 pairs of the fields, 3 begins a packet, 2 goes on with it.
 */
#ifndef SIMULATOR_MEDIA_CAPTIONS_H
#define SIMULATOR_MEDIA_CAPTIONS_H

#include <stddef.h>
#include <stdint.h>

#include <memory>
#include <optional>
#include <vector>

#include "simulator/media/es_index.h"

namespace sim {

constexpr size_t bytesPerTriplet = 3;
/** Bits of a triplet's first byte. */
constexpr uint8_t captionValid = 4;
constexpr uint8_t captionType = 3;

/** The triplets in the user data of a coded picture; empty when it has none. */
std::vector<uint8_t> captionsInPicture(VideoCoding coding, const uint8_t* data, size_t size);

/** A picture with captions. */
struct CaptionedPicture {
    /** Index in EsUnits::units. */
    uint32_t unit;
    std::vector<uint8_t> triplets;
};

/** Those of a loop, in the order in which they are shown. */
using CaptionIndex = std::vector<CaptionedPicture>;

/** The triplets of the pictures of a loop, in the order of their time stamps, each picture with its
 *  PES packet: for who has no index. */
std::vector<std::vector<uint8_t>> captionsByStamp(const TsStream& stream, uint16_t pid,
                                                  VideoCoding coding);

/** Looks through the stream; kept in memory while the stream is. Any thread may call. */
std::shared_ptr<const CaptionIndex> captionIndex(const TsStreamPtr& stream, uint16_t pid,
                                                 VideoCoding coding, const EsUnits& units);

/** A picture with captions at one of its turns. */
struct CaptionMoment {
    const CaptionedPicture* picture;
    UnitMoment moment;
};

/**
 * The next one to be shown.
 * @param first   with which decoding began
 * @param fromUs  shown then or later
 * @return none when the stream has no captions
 */
std::optional<CaptionMoment> nextCaptions(const TsStream& stream, const EsUnits& units,
                                          const CaptionIndex& captions, const UnitMoment& first,
                                          int64_t fromUs);

/** Puts the packets of the caption channel together. */
class CaptionChannel {
 public:
    /** Takes the triplets of a picture, and gives the packets that they make whole. A packet that
     *  another one cuts off is dropped. */
    std::vector<std::vector<uint8_t>> take(const std::vector<uint8_t>& triplets);

 private:
    std::vector<uint8_t> packet_;
};

}  // namespace sim

#endif

/*
 * Closed captions of a loop of pictures at 30 Hz (ATSC A/53 part 4; CTA-608, CTA-708).
 *
 * Every second they tell the name of the channel and the time: on line 21 in English (CC1) and in
 * Spanish (CC3), and in the DTV caption services 1, 2 and 8. Service 1 goes through all commands of
 * windows and pens, and the control codes of the text.
 */
#ifndef TOOLS_MKSTREAMS_CAPTIONS_H
#define TOOLS_MKSTREAMS_CAPTIONS_H

#include <string>
#include <vector>

#include "tools/mkstreams/bytes.h"

namespace mkstreams {

/**
 * The cc_data of each picture, in the order of presentation: 20 triplets, the first two with the
 * line 21 pairs of both fields, the others with DTV caption packets, which may run on into the next
 * pictures. Sequence numbers run on over the end of the loop.
 * @param name      of the channel, at most 13 characters
 * @param pictures  in the loop; 30 are a second, and what is left of one at least 18
 */
std::vector<Bytes> captionLoop(const std::string& name, size_t pictures);

}  // namespace mkstreams

#endif

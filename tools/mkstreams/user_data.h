/* User data of pictures: closed captions and the active format description. */
#ifndef TOOLS_MKSTREAMS_USER_DATA_H
#define TOOLS_MKSTREAMS_USER_DATA_H

#include "tools/mkstreams/bytes.h"

namespace mkstreams {

/**
 * Caption data of a picture at 30 Hz (ATSC A/53 part 4; CTA-608, CTA-708): 20 triplets, the first
 * two with the line 21 pairs of both fields, the others with one DTV caption packet for service 1.
 * The text repeats after 96 pictures; the packets of 4 pictures have all sequence numbers.
 */
Bytes captionData(int64_t frame);

/** Puts an active format description (ETSI TS 101 154, annex B), 0 to 15, before the first slice of
 *  a coded picture of H.264 in byte stream form. */
void insertActiveFormat(unsigned format, Bytes* picture);

}  // namespace mkstreams

#endif

/* User data of pictures that the encoders do not write: the active format description. */
#ifndef TOOLS_MKSTREAMS_USER_DATA_H
#define TOOLS_MKSTREAMS_USER_DATA_H

#include "tools/mkstreams/bytes.h"

namespace mkstreams {

/** Puts an active format description (ETSI TS 101 154, annex B), 0 to 15, before the first slice of
 *  a coded picture of H.264 in byte stream form. */
void insertActiveFormat(unsigned format, Bytes* picture);

}  // namespace mkstreams

#endif

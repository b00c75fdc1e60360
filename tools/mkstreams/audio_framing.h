/* Framing of sound that the encoders leave to the stream: AAC in ADTS and LATM, and AC-4. */
#ifndef TOOLS_MKSTREAMS_AUDIO_FRAMING_H
#define TOOLS_MKSTREAMS_AUDIO_FRAMING_H

#include <stddef.h>

#include "tools/mkstreams/bytes.h"

namespace mkstreams {

/** An AAC LC access unit of 48 kHz as an MPEG-2 ADTS frame (ISO/IEC 13818-7, 6.2). */
Bytes adtsFrame(const Bytes& accessUnit, int channels);

/** An AAC access unit as a LOAS frame with its configuration (ISO/IEC 14496-3, 1.7). With
 *  `highEfficiency` the unit is of 24 kHz and signalled as the core of HE-AAC at 48 kHz. */
Bytes latmFrame(const Bytes& accessUnit, int channels, bool highEfficiency);

/** AC-4 sync frame number `count` of a stream (ETSI TS 103 190-1, annex G; TS 103 190-2). Its table
 *  of contents tells twelve presentations: stereo in English, Spanish and Chinese in turn, and the
 *  last one, of index 11, 5.1 in English. There is no sound in its substreams. */
Bytes ac4Frame(size_t count);

}  // namespace mkstreams

#endif

/*
 * Recordings for the injection cases: services that are on no transmitter, as a recorder has
 * written them to a file, in packets of 192 bytes.
 */
#ifndef TOOLS_MKSTREAMS_RECORDINGS_H
#define TOOLS_MKSTREAMS_RECORDINGS_H

#include <string>

#include "tools/mkstreams/bytes.h"
#include "tools/mkstreams/maker.h"

namespace mkstreams {

/** A row of a table. */
struct Recording {
    const char* file; /**< in folder "pvr" */
    const char* kind; /**< of its pictures and sound, see content.h */
    unsigned audio;   /**< how many of the channel's audio components */
    int seconds;
    size_t skipped; /**< bytes that the file lacks at its beginning */
};
extern const Recording recordings[];
extern const size_t recordingCount;

static const size_t recordPacketSize = 192;

/** The service of a recording: channel 0 of the playback file of the boards, which agree on it.
 * False when there is none. */
bool recordedService(const std::string& configDir, const LineUp& lineUp, const Recording& recording,
                     Multiplex* service);

/** What one loop of the service is made of. */
StreamInputs recordingInputs(const Multiplex& service);

/** Makes one loop. */
bool makeLoop(const Multiplex& service, EncodedContent* encoded, TransportStream* stream,
              std::string* error);

/** The file, of as many loops as it takes, with all that is sent. */
Bytes record(const Recording& recording, const TransportStream& loop);

/** Lets decoders look at a loop as a device that plays it does, PES packet by PES packet. */
void lookAtPieces(const Multiplex& service, const TransportStream& loop);

}  // namespace mkstreams

#endif

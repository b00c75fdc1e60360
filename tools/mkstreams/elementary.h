/* Elementary streams of a multiplex as PES packets: picture, sound, subtitles, teletext, data. */
#ifndef TOOLS_MKSTREAMS_ELEMENTARY_H
#define TOOLS_MKSTREAMS_ELEMENTARY_H

#include <map>
#include <string>
#include <vector>

#include "tools/mkstreams/encoder.h"
#include "tools/mkstreams/multiplexer.h"

namespace mkstreams {

/** What is encoded already: many channels show and play the same. */
struct EncodedContent {
    std::map<std::string, std::vector<CodedPicture>> pictures;
    std::map<std::string, std::vector<Bytes>> sound;
};

/** Appends the elementary streams of a channel for a loop of the given duration. */
bool addStreams(const Multiplex& multiplex, const Channel& channel, int64_t duration,
                EncodedContent* encoded, std::vector<PesStream>* streams, std::string* error);

}  // namespace mkstreams

#endif

/* Elementary streams of a multiplex as PES packets: picture, sound, subtitles, teletext, data. */
#ifndef TOOLS_MKSTREAMS_ELEMENTARY_H
#define TOOLS_MKSTREAMS_ELEMENTARY_H

#include <functional>
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

/** An elementary stream that is to be made. */
struct StreamPlan {
    uint16_t pid;
    std::string content; /**< all that its packets depend on, but for the code that makes them */
    /** Makes its packets. On failure false and a message. */
    std::function<bool(EncodedContent* encoded, PesStream* stream, std::string* error)> make;
};

/** Appends the plans of the elementary streams of a channel for a loop of the given duration. */
void planStreams(const Multiplex& multiplex, const Channel& channel, int64_t duration,
                 std::vector<StreamPlan>* plans);

}  // namespace mkstreams

#endif

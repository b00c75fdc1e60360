/* Makes the stream of a multiplex, and its variants for tests. */
#ifndef TOOLS_MKSTREAMS_MAKER_H
#define TOOLS_MKSTREAMS_MAKER_H

#include <string>
#include <vector>

#include "tools/mkstreams/elementary.h"
#include "tools/mkstreams/line_up.h"
#include "tools/mkstreams/multiplexer.h"

namespace mkstreams {

/** All tables of a multiplex, as they are sent. */
std::vector<Burst> tablesOf(const LineUp& lineUp, const Multiplex& multiplex);

/** Checks what may not be on the air, and that every section is sound. Empty when all is well. */
std::string complaintAbout(const LineUp& lineUp, const std::vector<Burst>& bursts);

/** All that a loop of a multiplex is made of. */
struct StreamInputs {
    std::vector<Burst> bursts;
    std::vector<StreamPlan> plans;
    uint16_t pcrPid;
    int64_t duration; /**< 27 MHz ticks */
};

StreamInputs inputsOf(const LineUp& lineUp, const Multiplex& multiplex);

/**
 * A number that changes with anything that changes the stream made of these inputs: they
 * themselves, the code that codes and multiplexes them, and the libraries' encoders. Comments and
 * the code of tables do not count: the tables' bytes are inputs.
 */
uint64_t inputsHash(const StreamInputs& inputs);

/** The same for a variant of the stream with that hash. */
uint64_t variantHash(uint64_t streamHash, const std::string& name);

/** Makes one loop of a multiplex at the lowest rate that carries it. */
bool makeStream(const LineUp& lineUp, const Multiplex& multiplex, EncodedContent* encoded,
                TransportStream* stream, std::string* error);

/** A stream that differs from one on the air by a fault or by its form; a row of a table. */
struct Variant {
    const char* name;
    size_t packetBytes; /**< 188 or 204 */
    size_t multiplex;   /**< place of the multiplex in the line-up */
    /** Makes the bytes of the file out of the good stream of the multiplex and its tables. */
    Bytes (*make)(const Multiplex& multiplex, const TransportStream& good,
                  const std::vector<Burst>& bursts);
};

extern const Variant variants[];
extern const size_t variantCount;

}  // namespace mkstreams

#endif

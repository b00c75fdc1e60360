/*
 * Sections, and how often they are sent.
 *
 * A receiver compares what it got with the first copy in the file, and reads that copy with a
 * simple parser: it starts at a packet with a unit start, takes the packets that follow it, and
 * cuts bytes 0xFF off the end of each. A section that is to be compared is therefore sent alone in
 * packets of its own, and chosen so that no packet of it ends in 0xFF: the version number, which
 * enters the CRC, is the free parameter.
 */
#ifndef TOOLS_MKSTREAMS_SECTION_H
#define TOOLS_MKSTREAMS_SECTION_H

#include <functional>
#include <string>
#include <vector>

#include "tools/mkstreams/bytes.h"

namespace mkstreams {

/** Sections sent back to back: the second and later ones start behind a pointer field. */
struct Burst {
    std::string name; /**< for messages and listings: "PAT" */
    uint16_t pid;
    std::vector<Bytes> sections;
    int periodMs;          /**< longest time from start to start */
    bool adaptation;       /**< starts in a packet with an adaptation field */
    bool anyCount = false; /**< is sent as often as the period asks, not a multiple of 16 times */
};

/** Builds a section, at most 4096 bytes, under a version_number, 0 to 31. */
using SectionBuilder = std::function<Bytes(unsigned version)>;

/** Whether a section sent alone survives a reader that cuts 0xFF off the end of packets. */
bool endsCleanly(const Bytes& section);

/** The section under the lowest version from `first` on that ends cleanly; empty if none does. */
Bytes buildCleanly(const SectionBuilder& build, unsigned first = 0);

/** A table that is compared: one section, alone in its packets. */
Burst comparedTable(const std::string& name, uint16_t pid, int periodMs,
                    const SectionBuilder& build);

/** MPEG-2 CRC of bytes (ISO/IEC 13818-1 annex A). Over a whole good section it is 0. */
uint32_t sectionCrc(const Bytes& bytes);

/** Completes a section that lacks its end: sets section_length, appends the CRC. */
void closeSection(Bytes* section);

/** What tells the sub-table of a section from others on its PID: table_id and, in a section that
 * has one, table_id_extension. */
uint32_t subTableOf(const Bytes& section);

/** Whether section_length is the length there is and the CRC, where there is one, is right. */
bool isSoundSection(const Bytes& section);

}  // namespace mkstreams

#endif

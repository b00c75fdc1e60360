/* Program and system information of ATSC (A/65): master guide, virtual channels, time, ratings,
 * events and texts. */
#ifndef TOOLS_MKSTREAMS_ATSC_TABLES_H
#define TOOLS_MKSTREAMS_ATSC_TABLES_H

#include <string>
#include <vector>

#include "tools/mkstreams/line_up.h"
#include "tools/mkstreams/section.h"

namespace mkstreams {

/** All tables of PSIP of a multiplex. */
void addAtscTables(const LineUp& lineUp, const Multiplex& multiplex, std::vector<Burst>* bursts);

/** A multiple_string_structure with one string in English, uncompressed (A/65, 6.10). */
Bytes multipleString(const std::string& text);

}  // namespace mkstreams

#endif

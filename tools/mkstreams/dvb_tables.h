/*
 * Program specific information (ISO/IEC 13818-1) and service information of DVB (EN 300 468), also
 * in the form that ISDB gave it (ARIB STD-B10): the tables that both families share.
 */
#ifndef TOOLS_MKSTREAMS_DVB_TABLES_H
#define TOOLS_MKSTREAMS_DVB_TABLES_H

#include <vector>

#include "tools/mkstreams/line_up.h"
#include "tools/mkstreams/section.h"

namespace mkstreams {

/** PAT, CAT, PMT, which every multiplex has, with the sections of entitlement messages. */
void addProgramTables(const Multiplex& multiplex, std::vector<Burst>* bursts);

/** All service information of a multiplex of DVB or ISDB. */
void addServiceTables(const LineUp& lineUp, const Multiplex& multiplex, std::vector<Burst>* bursts);

/** The frozen clock of the laboratory, as seconds since 1970, UTC. */
int64_t laboratoryTime();

}  // namespace mkstreams

#endif

// Tables of a stream as libdvbpsi decodes them, each as a line of text.
#ifndef TESTS_STREAMS_DVBPSI_TABLES_H
#define TESTS_STREAMS_DVBPSI_TABLES_H

#include <set>
#include <string>

#include "tools/mkstreams/bytes.h"

namespace mkstreams {

/** How the tables of a PID are to be taken. */
enum class PidUse { Pat, Cat, Pmt, Rst, Service };

/**
 * Passes the packets of a PID to libdvbpsi and returns each table that it completes, once. Warnings
 * and errors of the library are among the lines, beginning with "!". The lines begin with the
 * table's name ("nit 40", "mgt"), identifier and version left out where a test cannot know them;
 * numbers are decimal but for table ids and descriptor tags.
 */
std::set<std::string> decodeTables(const Bytes& stream, unsigned pid, PidUse use,
                                   unsigned programme = 0);

/** The languages that the components of PMTs or VCTs are told to have, as the library decodes the
 *  descriptors: "PID code" each, "PID" alone for one without. */
std::set<std::string> decodeLanguages(const Bytes& stream, unsigned pid, PidUse use,
                                      unsigned programme = 0);

}  // namespace mkstreams

#endif

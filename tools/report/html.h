// A run as one page that needs nothing else: no network, no other file.
#pragma once

#include <string>

#include "tools/report/run_data.h"

namespace report {

/** The page. All rows are in its markup; its script only searches and filters. The lines of the
 *  console's log are those of bad rows, in all about 4 MB at most. */
std::string htmlOf(const Run& run);

}  // namespace report

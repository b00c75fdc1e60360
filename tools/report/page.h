// The fixed parts of the pages, files of tools/report/page that the build brings in.
#pragma once

namespace report::page {

extern const char report_css[];
extern const char report_js[];
extern const char live_js[];

}  // namespace report::page

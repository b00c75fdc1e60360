// Durations of cases, recorded in lines "MILLISECONDS MODULE/CASE".
#pragma once

#include <stdint.h>

#include <filesystem>
#include <map>
#include <string>

namespace report {

/** Milliseconds by "MODULE/CASE". */
using Durations = std::map<std::string, int64_t>;

/** Reads a file of durations. Throws std::runtime_error whose message names the file and line. */
Durations readDurations(const std::filesystem::path& path);

}  // namespace report

/*
 * A golden file: the records of a module's runs, with what many of them share written once.
 *
 *     @TunerInit = tuner system frequency        a block: lines that stand together in many
 * records; QLX_TunerInit()=0                        $1, $2, ... are the values that differ
 *       QLX_TunerSetTuningParam(tuner=$1 ...)=0
 *     == TC_TUNER_DVBT_Tuning_001
 *       SUCCESS, 300 ms
 *       @TunerInit 0 1 474000                    the block's lines with these values
 *
 * Records are compared in full, so that a difference is shown as the step that differs.
 */
#ifndef TOOLS_GOLDEN_BLOCKS_H
#define TOOLS_GOLDEN_BLOCKS_H

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

/** Title and lines of each record, in the order of the file. */
using Records = std::vector<std::pair<std::string, std::vector<std::string>>>;

/** The records of a golden file, blocks put back; none when there is no such file. False with a
 *  message in `error` when the file cannot be read. */
bool readGolden(const std::filesystem::path& path, Records* records, std::string* error);

/** Writes a golden file in one piece. False when it could not be written. */
bool writeGolden(const std::filesystem::path& path, const Records& records);

#endif

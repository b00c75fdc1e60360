// Reports of the parts of a checklist joined to the report of the whole.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace report {

/** A part of a split run: its report and the checklist it ran by. */
struct Shard {
    std::filesystem::path report;
    std::filesystem::path checklist;
};

/** The folder's report.xls and checklist.xls. Throws Error when one is not there. */
Shard shardOf(const std::filesystem::path& folder);

/** Joins `shards` into the report workbook `out`: row for row what one run by the whole checklist
 *  writes. Throws Error, and writes nothing, when a shard is missing, there twice, of another
 *  split, unfinished, or runs what another runs. Answers the count of rows. */
unsigned mergeReports(const std::vector<Shard>& shards, const std::filesystem::path& out);

}  // namespace report

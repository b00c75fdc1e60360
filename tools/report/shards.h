// A checklist cut into parts that take the same time.
#pragma once

#include <stdint.h>

#include <string>
#include <vector>

namespace report {

/** Cuts a list of durations (milliseconds, -1 for unknown) into `count` runs of neighbours whose
 *  longest is as short as can be, and answers the part of each element, from 0. Neighbours stay
 *  together, for they share the set-up of their module. An unknown duration counts as the median of
 *  the known ones. `count` is at least 1. */
std::vector<unsigned> cutEvenly(const std::vector<int64_t>& durationsMs, unsigned count);

/** A part's line on the cover of its checklist: "Shard 2 of 4 of checklist 1f2e3d". */
struct ShardMark {
    unsigned index = 0;
    unsigned count = 0;
    /** The same for all parts of one cut, and for no other. */
    std::string cut;
};
std::string textOf(const ShardMark& mark);
/** Reads such a line; false for any other. */
bool readShardMark(const std::string& text, ShardMark* mark);

}  // namespace report

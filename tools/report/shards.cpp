#include "tools/report/shards.h"

#include <stdio.h>

#include <algorithm>
#include <numeric>

namespace report {

namespace {

/** How many parts there are when none is longer than `limit`. */
unsigned partsWithin(const std::vector<int64_t>& durations, int64_t limit) {
    unsigned parts = 1;
    int64_t sum = 0;
    for (int64_t one : durations) {
        if (sum + one > limit && sum > 0) {
            parts++;
            sum = 0;
        }
        sum += one;
    }
    return parts;
}

}  // namespace

std::vector<unsigned> cutEvenly(const std::vector<int64_t>& durationsMs, unsigned count) {
    std::vector<int64_t> known;
    for (int64_t one : durationsMs) {
        if (one >= 0)
            known.push_back(one);
    }
    std::sort(known.begin(), known.end());
    int64_t usual = known.empty() ? 1 : known[known.size() / 2];
    // A case of no time is still a row to be written.
    std::vector<int64_t> durations;
    for (int64_t one : durationsMs)
        durations.push_back(std::max<int64_t>(one >= 0 ? one : usual, 1));

    int64_t low = durations.empty() ? 0 : *std::max_element(durations.begin(), durations.end());
    int64_t high = std::accumulate(durations.begin(), durations.end(), int64_t{0});
    while (low < high) {
        int64_t middle = low + (high - low) / 2;
        if (partsWithin(durations, middle) <= count)
            high = middle;
        else
            low = middle + 1;
    }
    std::vector<unsigned> parts;
    unsigned part = 0;
    int64_t sum = 0;
    for (size_t i = 0; i < durations.size(); i++) {
        // No part stays empty while there are as many elements left as parts.
        bool needed = durations.size() - i <= count - 1 - part && sum > 0;
        if (sum > 0 && (sum + durations[i] > low || needed)) {
            part++;
            sum = 0;
        }
        sum += durations[i];
        parts.push_back(part);
    }
    return parts;
}

std::string textOf(const ShardMark& mark) {
    return "Shard " + std::to_string(mark.index) + " of " + std::to_string(mark.count) +
           " of checklist " + mark.cut;
}

bool readShardMark(const std::string& text, ShardMark* mark) {
    char cut[33] = "";
    int end = 0;
    if (sscanf(text.c_str(), "Shard %6u of %6u of checklist %32[0-9a-f]%n", &mark->index,
               &mark->count, cut, &end) != 3 ||
        static_cast<size_t>(end) != text.size())
        return false;
    mark->cut = cut;
    return mark->index >= 1 && mark->index <= mark->count;
}

}  // namespace report

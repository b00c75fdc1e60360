#include "tools/zkbench/findings.h"

using report::Row;
using report::Told;
using report::Verdict;

namespace {

/** The list of `findings` that a row belongs to; null when its verdict says all. */
std::vector<RowRange>* listOf(const report::Run& run, const Row& row, Findings* findings) {
    bool passed = row.told == Told::Success;
    bool failed = row.told == Told::Failed;
    switch (row.verdict) {
        case Verdict::Missing:
            return &findings->missing;
        case Verdict::Block:
            // The last row of all has nothing behind it that would turn it into "N/A".
            if (row.tookDeviceDown && run.logSaysOver)
                return &findings->tookDown;
            return &findings->missing;
        case Verdict::NotApplicable:
            if (row.tookDeviceDown)
                return &findings->tookDown;
            if (passed || failed)
                return &findings->lost;
            return row.told == Told::Nothing ? &findings->missing : nullptr;
        case Verdict::Pass:
            return failed ? &findings->missing : nullptr;
        case Verdict::Fail:
            return passed ? &findings->missing : nullptr;
        case Verdict::NoMatch:
        case Verdict::Manual:
            break;
    }
    return nullptr;
}

std::string reasonOf(const Row& row) {
    if (row.verdict == Verdict::Pass || row.verdict == Verdict::Fail)
        return std::string("the report says ") + verdictWord(row.verdict) +
               ", the console another verdict";
    if (row.verdict == Verdict::NotApplicable && row.told == Told::Nothing)
        return "the row never started, although the report says N/A";
    return row.reason;
}

}  // namespace

Findings findUntold(const report::Run& run) {
    Findings findings;
    for (const report::Module& module : run.modules) {
        const Row* before = nullptr;
        for (const Row& row : module.rows) {
            if (!row.marked)
                continue;
            std::vector<RowRange>* list = listOf(run, row, &findings);
            std::string reason = reasonOf(row);
            RowRange* last = list != nullptr && !list->empty() ? &list->back() : nullptr;
            // Each case that went wrong by itself has a line of its own.
            bool continues = list == &findings.missing && last != nullptr && before != nullptr &&
                             last->sheet == module.name && last->last == before->id &&
                             last->reason == reason;
            if (continues) {
                last->last = row.id;
                last->rows++;
            } else if (list != nullptr) {
                list->push_back({module.name, row.id, row.id, 1, row.name, reason});
            }
            before = &row;
        }
    }
    return findings;
}

unsigned countRows(const std::vector<RowRange>& ranges) {
    unsigned rows = 0;
    for (const RowRange& range : ranges)
        rows += range.rows;
    return rows;
}

std::string describe(const RowRange& range) {
    std::string first = range.sheet + " " + std::to_string(range.first);
    if (range.rows == 1)
        return first + " " + range.firstName + ": " + range.reason;
    return first + "-" + std::to_string(range.last) + " (" + std::to_string(range.rows) +
           " rows): " + range.reason;
}

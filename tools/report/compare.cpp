#include "tools/report/compare.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <utility>

#include "tools/report/text.h"

namespace report {

namespace {

/** Where a run has a row: null for none. */
using Rows = std::vector<const Row*>;

struct Table {
    std::map<std::string, Rows> rows;
    /** Keys in the order of the runs. */
    std::vector<std::pair<std::string, const Module*>> order;
};

Table lineUp(const std::vector<Run>& runs) {
    Table table;
    for (size_t i = 0; i < runs.size(); i++) {
        for (const Module& module : runs[i].modules) {
            std::map<std::string, unsigned> seen;
            for (const Row& row : module.rows) {
                unsigned nth = seen[row.name]++;
                std::string key = module.name + "/" + row.name + "/" + std::to_string(nth);
                Rows& all = table.rows[key];
                if (all.empty()) {
                    all.resize(runs.size());
                    table.order.emplace_back(key, &module);
                }
                all[i] = &row;
            }
        }
    }
    return table;
}

/** Good, bad, or neither: a row that did not run tells nothing of the case. */
enum Side { Neither, Good, Bad };

Side sideOf(const Row* row) {
    if (row == nullptr)
        return Neither;
    if (row->bad())
        return Bad;
    return row->verdict == Verdict::Pass ? Good : Neither;
}

int64_t median(std::vector<int64_t> values) {
    if (values.empty())
        return -1;
    auto middle = values.begin() + static_cast<long>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

bool isSlower(const Change& change, const Slower& slower) {
    std::vector<int64_t> before;
    for (size_t i = 0; i + 1 < change.durationsMs.size(); i++) {
        if (change.durationsMs[i] >= 0)
            before.push_back(change.durationsMs[i]);
    }
    int64_t usual = median(before);
    int64_t last = change.durationsMs.back();
    return usual >= 0 && last > usual + slower.atLeastMs &&
           static_cast<double>(last) > static_cast<double>(usual) * slower.factor;
}

/** `planned`: the last run has a checklist, so that a row it lacks was not meant to run. */
void sortIn(const Rows& rows, const Change& change, bool planned, Comparison* result) {
    std::vector<Side> sides;
    for (const Row* row : rows) {
        if (sideOf(row) != Neither)
            sides.push_back(sideOf(row));
    }
    unsigned turns = 0;
    for (size_t i = 1; i < sides.size(); i++)
        turns += sides[i] != sides[i - 1];
    bool bad = sideOf(rows.back()) == Bad;
    bool wasGood = std::find(sides.begin(), sides.end(), Good) != sides.end();
    bool wasBad = std::find(sides.begin(), sides.end(), Bad) != sides.end();
    bool differ = std::any_of(rows.begin(), rows.end() - 1, [&](const Row* row) {
        return (row != nullptr) != (rows.back() != nullptr) ||
               (row != nullptr && row->verdict != rows.back()->verdict);
    });
    if (turns >= 2)
        result->flaky.push_back(change);
    else if (bad && (wasGood || sides.size() == 1))
        result->newFailures.push_back(change);
    else if (rows.back() == nullptr && !planned && (wasGood || wasBad))
        result->lost.push_back(change);
    else if (sideOf(rows.back()) == Good && wasBad)
        result->fixed.push_back(change);
    else if (bad)
        result->stillBad++;
    else if (differ)
        result->changed.push_back(change);
    else
        result->same++;
}

/** A heading, the file's key, and the member, in the order in which they are shown. */
struct Section {
    const char* title;
    const char* key;
    std::vector<Change> Comparison::*list;
};
const Section sections[] = {
    {"New failures", "newFailures", &Comparison::newFailures},
    {"Not in the last report any more", "lost", &Comparison::lost},
    {"Fixed", "fixed", &Comparison::fixed},
    {"Changed otherwise", "changed", &Comparison::changed},
    {"Flaky", "flaky", &Comparison::flaky},
    {"Slower than before", "slower", &Comparison::slower},
};

std::string lineOf(const Change& change, bool withDurations) {
    std::string line = "  " + change.module + "/" + change.name + ": ";
    for (size_t i = 0; i < change.verdicts.size(); i++) {
        line += i == 0 ? "" : " -> ";
        line += withDurations ? duration(change.durationsMs[i]) : verdictWord(change.verdicts[i]);
    }
    if (!change.reason.empty() && !withDurations)
        line += " (" + change.reason + ")";
    return printable(line) + "\n";
}

}  // namespace

Comparison compare(const std::vector<Run>& runs, const Slower& slower) {
    Comparison result;
    for (const Run& run : runs)
        result.runs.push_back(run.name);
    Table table = lineUp(runs);
    for (const auto& entry : table.order) {
        const Rows& rows = table.rows[entry.first];
        Change change;
        change.module = entry.second->name;
        for (const Row* row : rows) {
            change.verdicts.push_back(row != nullptr ? row->verdict : Verdict::Missing);
            change.durationsMs.push_back(row != nullptr ? row->durationMs : -1);
            if (row != nullptr)
                change.name = row->name;
            if (row != nullptr && !row->reason.empty())
                change.reason = row->reason;
        }
        sortIn(rows, change, runs.back().hasChecklist, &result);
        if (isSlower(change, slower))
            result.slower.push_back(change);
    }
    return result;
}

std::string textOf(const Comparison& comparison) {
    std::string text = "Compared:";
    for (const std::string& run : comparison.runs)
        text += " " + printable(run);
    text += "\n";
    for (const Section& section : sections) {
        const std::vector<Change>& list = comparison.*section.list;
        if (list.empty())
            continue;
        text += std::string(section.title) + " (" + std::to_string(list.size()) + ")\n";
        for (const Change& change : list)
            text += lineOf(change, section.list == &Comparison::slower);
    }
    text += std::to_string(comparison.same) + " the same, " + std::to_string(comparison.stillBad) +
            " failing as before\n";
    return text;
}

std::string jsonOf(const Comparison& comparison) {
    nlohmann::ordered_json out;
    out["runs"] = nlohmann::json::array();
    for (const std::string& run : comparison.runs)
        out["runs"].push_back(printable(run));
    for (const Section& section : sections) {
        out[section.key] = nlohmann::json::array();
        for (const Change& change : comparison.*section.list) {
            nlohmann::ordered_json one;
            one["module"] = printable(change.module);
            one["case"] = printable(change.name);
            for (Verdict verdict : change.verdicts)
                one["verdicts"].push_back(verdictWord(verdict));
            for (int64_t ms : change.durationsMs)
                one["durationsMs"].push_back(ms >= 0 ? nlohmann::ordered_json(ms)
                                                     : nlohmann::ordered_json());
            one["reason"] = printable(change.reason);
            out[section.key].push_back(one);
        }
    }
    out["same"] = comparison.same;
    out["stillBad"] = comparison.stillBad;
    return out.dump(1) + "\n";
}

}  // namespace report

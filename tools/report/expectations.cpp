#include "tools/report/expectations.h"

#include <fnmatch.h>
#include <stdio.h>
#include <time.h>

#include <nlohmann/json.hpp>

#include "tools/report/forms.h"
#include "tools/report/text.h"

namespace report {

namespace {

using nlohmann::json;

std::string take(const json& object, const char* key, const std::string& place) {
    auto found = object.find(key);
    if (found == object.end() || !found->is_string() || found->get<std::string>().empty())
        throw Error(place + ": \"" + key + "\" is missing or no text");
    return found->get<std::string>();
}

void refuseOthers(const json& object, const std::vector<std::string>& known,
                  const std::string& place) {
    for (const auto& entry : object.items()) {
        bool found = false;
        for (const std::string& key : known)
            found = found || entry.key() == key;
        if (!found)
            throw Error(place + ": \"" + printable(entry.key()) + "\" is not known here");
    }
}

bool matches(const Expectation& expectation, const Module& module, const Row& row) {
    bool whole = expectation.pattern.find('/') != std::string::npos;
    std::string name = whole ? module.name + "/" + row.name : row.name;
    return fnmatch(expectation.pattern.c_str(), name.c_str(), FNM_NOESCAPE) == 0;
}

/** What is known of a failure, behind a comma; empty for nothing. */
std::string why(const Run& run, const Row& row) {
    std::string text = row.reason.empty() ? failureLine(run, row) : row.reason;
    return text.empty() ? "" : ", " + text;
}

/** Whether a row speaks at all: one that was not to run neither passes nor fails. */
bool ran(const Row& row) {
    return row.bad() || row.verdict == Verdict::Pass;
}

}  // namespace

bool isDay(const std::string& text) {
    tm day{};
    int end = 0;
    if (text.size() != 10 ||
        sscanf(text.c_str(), "%4d-%2d-%2d%n", &day.tm_year, &day.tm_mon, &day.tm_mday, &end) != 3 ||
        end != 10)
        return false;
    day.tm_year -= 1900;
    day.tm_mon -= 1;
    tm same = day;
    // The calendar moves what is no day, like the thirtieth of February.
    return timegm(&same) != -1 && same.tm_mday == day.tm_mday && same.tm_mon == day.tm_mon;
}

std::string today() {
    time_t now = time(nullptr);
    tm day{};
    gmtime_r(&now, &day);
    char text[16];
    strftime(text, sizeof text, "%Y-%m-%d", &day);
    return text;
}

Expectations readExpectations(const std::filesystem::path& path) {
    Expectations expectations;
    json file;
    try {
        file = json::parse(readFile(path), nullptr, true, true);
    } catch (const json::exception& error) {
        throw Error(path.string() + ": no JSON: " + printable(error.what()));
    }
    std::string place = path.string();
    if (!file.is_object() || !file.contains("expect") || !file["expect"].is_array())
        throw Error(place + ": \"expect\" is missing or no list");
    refuseOthers(file, {"board", "expect"}, place);
    expectations.board = take(file, "board", place);
    unsigned number = 0;
    for (const json& entry : file["expect"]) {
        place = path.string() + ": entry " + std::to_string(++number);
        if (!entry.is_object())
            throw Error(place + " is no object");
        refuseOthers(entry, {"case", "reason", "until"}, place);
        Expectation expectation{take(entry, "case", place), take(entry, "reason", place),
                                take(entry, "until", place)};
        if (!isDay(expectation.until))
            throw Error(place +
                        ": \"until\" is no day like 2026-12-31: " + printable(expectation.until));
        expectations.list.push_back(expectation);
    }
    return expectations;
}

Judgement judge(const Expectations& expectations, const std::string& today, Run* run) {
    Judgement judgement;
    std::vector<bool> used(expectations.list.size());
    for (Module& module : run->modules) {
        for (Row& row : module.rows) {
            const Expectation* found = nullptr;
            for (size_t i = 0; i < expectations.list.size() && found == nullptr; i++) {
                if (matches(expectations.list[i], module, row)) {
                    found = &expectations.list[i];
                    used[i] = true;
                }
            }
            std::string name = module.name + "/" + row.name;
            row.expected = Expected::Nothing;
            if (found != nullptr && ran(row)) {
                row.expectedReason = found->reason;
                row.expected = !row.bad()             ? Expected::UnexpectedPass
                               : found->until < today ? Expected::Expired
                                                      : Expected::KnownFailure;
            }
            if (row.expected == Expected::KnownFailure)
                judgement.knownFailures.push_back(name + ": " + found->reason);
            else if (row.expected == Expected::UnexpectedPass)
                judgement.unexpectedPasses.push_back(name + ": " + found->reason);
            else if (row.bad())
                judgement.newFailures.push_back(name + ": " + verdictWord(row.verdict) +
                                                why(*run, row));
        }
    }
    for (size_t i = 0; i < expectations.list.size(); i++) {
        const Expectation& one = expectations.list[i];
        if (one.until < today)
            judgement.expired.push_back(one.pattern + " (until " + one.until + "): " + one.reason);
        if (!used[i])
            judgement.unused.push_back(one.pattern + ": " + one.reason);
    }
    return judgement;
}

}  // namespace report

#include "tools/report/forms.h"

#include <stdio.h>

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <pugixml.hpp>
#include <sstream>

#include "tools/report/text.h"

namespace report {

namespace {

using nlohmann::ordered_json;

/** Bytes of log that a test case of the machine forms carries. */
const size_t machineLogLimit = 16384;

std::string secondsOf(int64_t milliseconds) {
    char text[32];
    snprintf(text, sizeof text, "%lld.%03lld", static_cast<long long>(milliseconds / 1000),
             static_cast<long long>(milliseconds % 1000));
    return text;
}

/** One line of printable text. */
std::string oneLine(std::string_view bytes) {
    std::string text = printable(bytes);
    std::replace(text.begin(), text.end(), '\n', ' ');
    std::replace(text.begin(), text.end(), '\t', ' ');
    return text;
}

/** What a form with pass, fail and skip makes of a row. */
enum class Outcome { Passed, Failed, Error, Known, Skipped };

Outcome outcomeOf(const Row& row) {
    if (row.expected == Expected::KnownFailure)
        return Outcome::Known;
    if (row.verdict == Verdict::Fail)
        return Outcome::Failed;
    if (row.bad())
        return Outcome::Error;
    return row.verdict == Verdict::Pass ? Outcome::Passed : Outcome::Skipped;
}

/** Why, in one line: the failed check where the log has it, else the reason. */
std::string messageOf(const Run& run, const Row& row) {
    std::string message = failureLine(run, row);
    if (message.empty() || row.verdict != Verdict::Fail)
        message = row.reason.empty() ? verdictWord(row.verdict) : row.reason;
    if (row.expected == Expected::KnownFailure)
        message = "known failure: " + row.expectedReason + " (" + message + ")";
    else if (row.expected == Expected::Expired)
        message = "expectation has run out: " + row.expectedReason + " (" + message + ")";
    else if (row.expected == Expected::UnexpectedPass)
        message = "passes, and was expected to fail: " + row.expectedReason;
    return oneLine(message);
}

const char* expectedWord(Expected expected) {
    switch (expected) {
        case Expected::KnownFailure:
            return "known-failure";
        case Expected::UnexpectedPass:
            return "unexpected-pass";
        case Expected::Expired:
            return "expired";
        case Expected::Nothing:
            break;
    }
    return "";
}

std::string plainLog(const Run& run, const Row& row) {
    return printable(withoutColours(excerpt(run, row, machineLogLimit)));
}

std::string dayAndTime(int64_t seconds) {
    time_t time = seconds;
    tm parts{};
    gmtime_r(&time, &parts);
    char text[32];
    strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

struct Counts {
    unsigned failed = 0;
    unsigned errors = 0;
    unsigned skipped = 0;
    int64_t durationMs = 0;

    void add(const Row& row) {
        Outcome outcome = outcomeOf(row);
        failed += outcome == Outcome::Failed;
        errors += outcome == Outcome::Error;
        skipped += outcome == Outcome::Skipped || outcome == Outcome::Known;
        durationMs += row.durationMs > 0 ? row.durationMs : 0;
    }
};

void addJunitCase(const Run& run, const Module& module, const Row& row, pugi::xml_node suite) {
    pugi::xml_node test = suite.append_child("testcase");
    test.append_attribute("name") = oneLine(row.name).c_str();
    test.append_attribute("classname") = oneLine(module.name).c_str();
    if (row.durationMs >= 0)
        test.append_attribute("time") = secondsOf(row.durationMs).c_str();
    test.append_attribute("status") = verdictWord(row.verdict);
    std::string message = messageOf(run, row);
    Outcome outcome = outcomeOf(row);
    if (outcome == Outcome::Skipped || outcome == Outcome::Known) {
        test.append_child("skipped").text() = message.c_str();
    } else if (outcome != Outcome::Passed) {
        pugi::xml_node node = test.append_child(outcome == Outcome::Failed ? "failure" : "error");
        node.append_attribute("type") = verdictWord(row.verdict);
        node.append_attribute("message") = message.c_str();
        node.text() = plainLog(run, row).c_str();
    } else if (row.expected == Expected::UnexpectedPass) {
        test.append_child("system-out").text() = message.c_str();
    }
}

}  // namespace

std::string failureLine(const Run& run, const Row& row) {
    std::string_view log = run.logOf(row);
    const std::string_view red = "\033[1;31m";
    for (size_t at = log.find(red); at != std::string_view::npos; at = log.find(red, at + 1)) {
        size_t end = std::min(log.find('\n', at), log.size());
        std::string line = printable(withoutColours(log.substr(at, end - at)));
        if (line.find("] TEST Result: ") != std::string::npos)
            continue;
        while (!line.empty() && line.back() == ' ')
            line.pop_back();
        if (!line.empty())
            return line;
    }
    return "";
}

std::string excerpt(const Run& run, const Row& row, size_t limit) {
    std::string_view log = run.logOf(row);
    if (log.size() <= limit)
        return std::string(log);
    // The end tells more than the beginning. Where a line is longer than that, it is cut.
    size_t head = log.rfind('\n', limit / 4);
    head = head == std::string_view::npos ? limit / 4 : head + 1;
    size_t tail = log.find('\n', log.size() - limit / 4 * 3);
    tail = tail == std::string_view::npos || tail + 1 == log.size() ? log.size() - limit / 4 * 3
                                                                    : tail + 1;
    std::string_view left = log.substr(head, tail - head);
    auto lines = std::count(left.begin(), left.end(), '\n');
    std::string text(log.substr(0, head));
    text += "\033[0m... " + std::to_string(lines) + " lines (" + std::to_string(left.size()) +
            " bytes) left out ...\n";
    return text.append(log.substr(tail));
}

std::string junitOf(const Run& run) {
    pugi::xml_document document;
    pugi::xml_node declaration = document.append_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "UTF-8";
    pugi::xml_node root = document.append_child("testsuites");
    Counts all;
    for (const Module& module : run.modules) {
        Counts counts;
        pugi::xml_node suite = root.append_child("testsuite");
        for (const Row& row : module.rows) {
            counts.add(row);
            all.add(row);
            addJunitCase(run, module, row, suite);
        }
        suite.append_attribute("name") = oneLine(module.name).c_str();
        suite.append_attribute("tests") = static_cast<unsigned>(module.rows.size());
        suite.append_attribute("failures") = counts.failed;
        suite.append_attribute("errors") = counts.errors;
        suite.append_attribute("skipped") = counts.skipped;
        suite.append_attribute("time") = secondsOf(counts.durationMs).c_str();
    }
    root.append_attribute("name") = oneLine(run.name).c_str();
    root.append_attribute("tests") = run.rowCount();
    root.append_attribute("failures") = all.failed;
    root.append_attribute("errors") = all.errors;
    root.append_attribute("time") = secondsOf(all.durationMs).c_str();
    std::ostringstream out;
    document.save(out, " ", pugi::format_indent, pugi::encoding_utf8);
    return out.str();
}

std::string jsonLinesOf(const Run& run) {
    std::string out;
    auto add = [&](const ordered_json& line) { out += line.dump() + "\n"; };
    ordered_json head = {{"kind", "run"},
                         {"version", 1},
                         {"name", printable(run.name)},
                         {"writtenAt", dayAndTime(run.writtenAt)},
                         {"complete", run.complete()},
                         {"rows", run.rowCount()}};
    for (int i = 0; i < verdictCount; i++)
        head["counts"][verdictWord(static_cast<Verdict>(i))] = run.count(static_cast<Verdict>(i));
    if (run.durationMs >= 0)
        head["durationMs"] = run.durationMs;
    for (const std::string& note : run.notes)
        head["notes"].push_back(printable(note));
    add(head);
    for (const Restart& restart : run.restarts) {
        ordered_json line = {{"kind", "restart"}, {"atMs", restart.atMs}, {"cause", restart.cause}};
        if (restart.module >= 0) {
            const Module& module = run.modules[static_cast<size_t>(restart.module)];
            line["module"] = printable(module.name);
            line["case"] = printable(module.rows[static_cast<size_t>(restart.row)].name);
        }
        add(line);
    }
    for (const Module& module : run.modules) {
        for (const Row& row : module.rows) {
            ordered_json line = {{"kind", "row"},        {"module", printable(module.name)},
                                 {"id", row.id},         {"case", printable(row.name)},
                                 {"marked", row.marked}, {"verdict", verdictWord(row.verdict)},
                                 {"bad", row.bad()}};
            if (row.durationMs >= 0)
                line["durationMs"] = row.durationMs;
            if (row.startMs >= 0)
                line["startMs"] = row.startMs;
            if (!row.reason.empty())
                line["reason"] = printable(row.reason);
            std::string failure = row.bad() ? failureLine(run, row) : "";
            if (!failure.empty())
                line["failure"] = failure;
            if (row.logEnd > row.logBegin)
                line["log"] = {{"offset", row.logBegin}, {"bytes", row.logEnd - row.logBegin}};
            if (row.expected != Expected::Nothing)
                line["expected"] = {{"state", expectedWord(row.expected)},
                                    {"reason", printable(row.expectedReason)}};
            add(line);
        }
    }
    add({{"kind", "end"}, {"rows", run.rowCount()}, {"restarts", run.restarts.size()}});
    return out;
}

namespace {

/** A TAP description or directive: what would begin a directive is escaped. */
std::string tapText(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (c == '#' || c == '\\')
            out += '\\';
        out += c;
    }
    return out;
}

}  // namespace

std::string tapOf(const Run& run) {
    std::string out = "TAP version 13\n1.." + std::to_string(run.rowCount()) + "\n";
    unsigned number = 0;
    for (const Module& module : run.modules) {
        for (const Row& row : module.rows) {
            Outcome outcome = outcomeOf(row);
            std::string message = tapText(messageOf(run, row));
            // A known failure is a test to do, and so is one that passes before its time.
            bool todo = outcome == Outcome::Known || row.expected == Expected::UnexpectedPass;
            bool good = outcome == Outcome::Passed || outcome == Outcome::Skipped;
            out += (good ? "ok " : "not ok ") + std::to_string(++number) + " - " +
                   tapText(oneLine(module.name + "/" + row.name));
            out += todo                          ? " # TODO " + message
                   : outcome == Outcome::Skipped ? " # SKIP " + message
                                                 : "";
            out += "\n";
            if (row.durationMs >= 0)
                out += "  ---\n  duration_ms: " + std::to_string(row.durationMs) + "\n  ...\n";
            if (!good && !todo)
                out += "# " + message + "\n";
        }
    }
    return out;
}

std::string lavaOf(const Run& run) {
    auto word = [](std::string text) {
        for (char& c : text) {
            bool plain = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') ||
                         (c >= 'A' && c <= 'Z') || c == '_' || c == '-' || c == '.';
            c = plain ? c : '_';
        }
        return text;
    };
    std::string out;
    for (const Module& module : run.modules) {
        std::map<std::string, unsigned> seen;
        out += "<LAVA_SIGNAL_TESTSET START " + word(module.name) + ">\n";
        for (const Row& row : module.rows) {
            std::string id = word(row.name);
            unsigned nth = ++seen[id];
            id += nth > 1 ? "-" + std::to_string(nth) : "";
            const char* result = row.bad()                      ? "fail"
                                 : row.verdict == Verdict::Pass ? "pass"
                                                                : "skip";
            out += "<LAVA_SIGNAL_TESTCASE TEST_CASE_ID=" + id + " RESULT=" + result;
            if (row.durationMs >= 0)
                out += " MEASUREMENT=" + secondsOf(row.durationMs) + " UNITS=seconds";
            out += ">\n";
        }
        out += "<LAVA_SIGNAL_TESTSET STOP>\n";
    }
    return out;
}

std::string ctrfOf(const Run& run) {
    unsigned counts[5] = {};
    ordered_json tests = ordered_json::array();
    static const char* const statuses[] = {"passed", "failed", "other", "pending", "skipped"};
    for (const Module& module : run.modules) {
        for (const Row& row : module.rows) {
            int outcome = static_cast<int>(outcomeOf(row));
            counts[outcome]++;
            ordered_json test = {{"name", printable(row.name)},
                                 {"status", statuses[outcome]},
                                 {"duration", std::max<int64_t>(row.durationMs, 0)},
                                 {"suite", {printable(module.name)}},
                                 {"rawStatus", verdictWord(row.verdict)}};
            if (!row.reason.empty() || row.bad() || row.expected != Expected::Nothing)
                test["message"] = messageOf(run, row);
            if (row.bad())
                test["trace"] = plainLog(run, row);
            tests.push_back(std::move(test));
        }
    }
    int64_t stop = run.writtenAt * 1000;
    ordered_json summary = {{"tests", run.rowCount()},
                            {"start", stop - std::max<int64_t>(run.durationMs, 0)},
                            {"stop", stop}};
    for (int i = 0; i < 5; i++)
        summary[statuses[i]] = counts[i];
    ordered_json out = {{"reportFormat", "CTRF"}, {"specVersion", "0.0.0"}};
    out["results"] = {
        {"tool", {{"name", "zkreport"}}}, {"summary", summary}, {"tests", std::move(tests)}};
    return out.dump(1) + "\n";
}

std::string durationsOf(const Run& run) {
    std::string out;
    std::map<std::string, bool> seen;
    for (const Module& module : run.modules) {
        for (const Row& row : module.rows) {
            std::string name = module.name + "/" + row.name;
            if (row.durationMs >= 0 && !seen[name])
                out += std::to_string(row.durationMs) + " " + oneLine(name) + "\n";
            seen[name] = seen[name] || row.durationMs >= 0;
        }
    }
    return out;
}

}  // namespace report

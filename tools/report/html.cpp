#include "tools/report/html.h"

#include <stdio.h>
#include <time.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "tools/report/forms.h"
#include "tools/report/page.h"
#include "tools/report/text.h"

namespace report {

namespace {

/** Bytes of log in the page, and the least for one row. */
const size_t logBudget = 4000000;
const size_t leastLog = 1000;
const size_t mostLog = 64000;
const size_t slowestShown = 20;

/** What a verdict looks like beside its colour, which not everybody sees. */
const char* const signs[verdictCount] = {"✓", "✗", "–", "■", "≠", "☞", "?"};

std::string cssWord(Verdict verdict) {
    return verdict == Verdict::NotApplicable ? "NA" : verdictWord(verdict);
}

std::string number(double value, int digits) {
    char text[32];
    snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

std::string verdictSpan(const Row& row) {
    std::string text = "<span class=\"v v-" + cssWord(row.verdict) + "\">" +
                       "<span aria-hidden=\"true\">" + signs[static_cast<int>(row.verdict)] +
                       "</span> " + verdictWord(row.verdict) + "</span>";
    switch (row.expected) {
        case Expected::KnownFailure:
            return text + " <span class=\"tag\">known</span>";
        case Expected::UnexpectedPass:
            return text + " <span class=\"tag\">unexpected</span>";
        case Expected::Expired:
            return text + " <span class=\"tag\">expired</span>";
        case Expected::Nothing:
            break;
    }
    return row.bad() && row.verdict == Verdict::NotApplicable
               ? text + " <span class=\"tag\">lost</span>"
               : text;
}

struct Totals {
    unsigned bad = 0;
    unsigned known = 0;
    unsigned passed = 0;
    int64_t durationMs = 0;
    bool anyDuration = false;
};

Totals totalsOf(const Module& module) {
    Totals totals;
    for (const Row& row : module.rows) {
        totals.bad += row.bad();
        totals.known += row.expected == Expected::KnownFailure;
        totals.passed += row.verdict == Verdict::Pass;
        totals.durationMs += std::max<int64_t>(row.durationMs, 0);
        totals.anyDuration = totals.anyDuration || row.durationMs >= 0;
    }
    return totals;
}

Totals totalsOf(const Run& run) {
    Totals all;
    for (const Module& module : run.modules) {
        Totals one = totalsOf(module);
        all.bad += one.bad;
        all.known += one.known;
        all.passed += one.passed;
        all.durationMs += one.durationMs;
        all.anyDuration = all.anyDuration || one.anyDuration;
    }
    return all;
}

class Page {
 public:
    explicit Page(const Run& run) : run_(run), totals_(totalsOf(run)) {
        out_.reserve(1 << 20);
    }

    std::string make() {
        head();
        summary();
        modules();
        timeline();
        failures();
        slowest();
        rows();
        out_ += "</main>\n<script>";
        out_ += page::report_js;
        out_ += "</script>\n</body>\n</html>\n";
        return std::move(out_);
    }

 private:
    void add(std::initializer_list<std::string_view> parts) {
        for (std::string_view part : parts)
            out_ += part;
    }

    static std::string idOf(const char* kind, size_t module, size_t row) {
        return std::string(kind) + "-" + std::to_string(module) + "-" + std::to_string(row);
    }

    void head() {
        std::string name = html(run_.name);
        add(
            {"<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
             "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>",
             name, ": report</title>\n<link rel=\"icon\" href=\"data:,\">\n<style>",
             page::report_css, "</style>\n</head>\n<body>\n<a class=\"skip\" href=\"#rows\">",
             "To the table of all rows</a>\n<main>\n<h1>", name, "</h1>\n"});
    }

    void summary() {
        bool good = totals_.bad == totals_.known && run_.complete();
        std::string rows = std::to_string(run_.rowCount());
        std::string fresh = std::to_string(totals_.bad - totals_.known);
        add({"<p class=\"verdict ", good ? "good" : "bad", "\">"});
        if (totals_.bad > totals_.known)
            add({"Failed: ", fresh, totals_.bad - totals_.known == 1 ? " row needs" : " rows need",
                 " a look"});
        else
            out_ += run_.complete() ? "Passed" : "Not complete";
        if (totals_.known > 0)
            add({", ", std::to_string(totals_.known),
                 totals_.known == 1 ? " known failure" : " known failures"});
        if (!run_.complete() && totals_.bad > totals_.known)
            out_ += "; the run is not complete";
        out_ += "</p>\n<p class=\"soft\">";
        time_t written = run_.writtenAt;
        tm parts{};
        gmtime_r(&written, &parts);
        char when[48];
        strftime(when, sizeof when, "%Y-%m-%d %H:%M UTC", &parts);
        add({rows, " rows in ", std::to_string(run_.modules.size()), " modules · ",
             run_.durationMs >= 0 ? duration(run_.durationMs) + " on the device’s clock · " : "",
             std::to_string(run_.restarts.size()),
             run_.restarts.size() == 1 ? " restart" : " restarts", " · written ", when, "</p>\n"});
        if (!run_.notes.empty()) {
            out_ += "<ul class=\"notes\">\n";
            for (const std::string& note : run_.notes)
                add({"<li>", html(note), "</li>\n"});
            out_ += "</ul>\n";
        }
        out_ += "<ul class=\"tiles\">\n";
        unsigned judged = totals_.passed + totals_.bad;
        if (judged > 0)
            add({"<li><div><b>", number(100.0 * totals_.passed / judged, 1),
                 " %</b>pass rate</div></li>\n"});
        for (int i = 0; i < verdictCount; i++) {
            Verdict verdict = static_cast<Verdict>(i);
            if (run_.count(verdict) == 0 && verdict != Verdict::Pass && verdict != Verdict::Fail)
                continue;
            add({"<li><a class=\"v-", cssWord(verdict), "\" href=\"#rows\" data-v=\"",
                 cssWord(verdict), "\"><b>", std::to_string(run_.count(verdict)), "</b>",
                 verdictWord(verdict), "</a></li>\n"});
        }
        out_ += "</ul>\n<nav aria-label=\"Sections\">";
        if (totals_.bad > 0)
            out_ += "<a href=\"#failures\">Rows that need a look</a> ";
        if (run_.durationMs > 0)
            out_ += "<a href=\"#timeline\">Timeline</a> ";
        out_ += "<a href=\"#slowest\">Slowest cases</a> <a href=\"#rows\">All rows</a></nav>\n";
    }

    void modules() {
        out_ +=
            "<h2>Modules</h2>\n<div class=\"scroll\"><table id=\"modules\">\n<thead><tr>"
            "<th scope=\"col\">Module</th><th scope=\"col\">Verdicts</th>"
            "<th scope=\"col\" class=\"num wide\">Rows</th><th scope=\"col\" "
            "class=\"num\">Pass</th>"
            "<th scope=\"col\" class=\"num\">Bad</th>"
            "<th scope=\"col\" class=\"num wide\">Other</th>"
            "<th scope=\"col\" class=\"num wide\">Time</th></tr></thead>\n<tbody>\n";
        for (const Module& module : run_.modules) {
            Totals totals = totalsOf(module);
            size_t count = module.rows.size();
            std::string name = html(module.name);
            add({"<tr><th scope=\"row\"><a href=\"#rows\" data-m=\"", name, "\">", name,
                 "</a></th><td>"});
            bar(module);
            if (!module.absence.empty())
                add({"<small>", html(module.absence), "</small>"});
            add({"</td><td class=\"num wide\">", std::to_string(count), "</td><td class=\"num\">",
                 std::to_string(totals.passed), "</td><td class=\"num\">",
                 std::to_string(totals.bad), "</td><td class=\"num wide\">",
                 std::to_string(count - totals.passed - totals.bad), "</td><td class=\"num wide\">",
                 duration(totals.anyDuration ? totals.durationMs : -1), "</td></tr>\n"});
        }
        out_ += "</tbody></table></div>\n";
    }

    /** The module's verdicts side by side; a row that was lost with the device counts as failed. */
    void bar(const Module& module) {
        unsigned counts[verdictCount] = {};
        for (const Row& row : module.rows) {
            bool lost = row.verdict == Verdict::NotApplicable && row.bad();
            counts[static_cast<int>(lost ? Verdict::Fail : row.verdict)]++;
        }
        std::string words;
        std::string parts;
        for (int i = 0; i < verdictCount; i++) {
            if (counts[i] == 0)
                continue;
            std::string count = std::to_string(counts[i]);
            words +=
                (words.empty() ? "" : ", ") + count + " " + verdictWord(static_cast<Verdict>(i));
            parts += "<i class=\"v-" + cssWord(static_cast<Verdict>(i)) +
                     "\" style=\"--n:" + count + "\"></i>";
        }
        add({"<div class=\"bar\" role=\"img\" aria-label=\"", words, "\" title=\"", words, "\">",
             parts, "</div>"});
    }

    std::string percent(int64_t ms) const {
        return number(100.0 * static_cast<double>(ms) / static_cast<double>(run_.durationMs), 3) +
               "%";
    }

    void timeline() {
        if (run_.durationMs <= 0)
            return;
        out_ +=
            "<h2 id=\"timeline\">Timeline</h2>\n<div class=\"line\" role=\"group\" "
            "aria-label=\"Modules over the "
            "time of the run\">\n";
        for (size_t m = 0; m < run_.modules.size(); m++)
            timelineModule(run_.modules[m]);
        for (const Module& module : run_.modules) {
            for (const Row& row : module.rows) {
                if (row.bad() && row.startMs >= 0)
                    add({"<span class=\"f\" style=\"--x:", percent(row.startMs),
                         ";--w:", percent(std::max<int64_t>(row.durationMs, 0)), "\" title=\"",
                         html(row.name), "\"></span>"});
            }
        }
        for (size_t i = 0; i < run_.restarts.size(); i++)
            add({"<span class=\"r\" style=\"--x:", percent(run_.restarts[i].atMs), "\" title=\"",
                 html(run_.restarts[i].cause), "\">", std::to_string(i + 1), "</span>"});
        out_ += "</div>\n<div class=\"axis\" aria-hidden=\"true\">";
        for (int quarter = 0; quarter <= 4; quarter++)
            add({"<span>", duration(run_.durationMs * quarter / 4), "</span>"});
        out_ += "</div>\n";
        if (run_.restarts.empty()) {
            out_ += "<p class=\"soft\">No restart. Red: bad rows.</p>\n";
            return;
        }
        out_ += "<h3>Restarts</h3>\n<ol>\n";
        for (const Restart& restart : run_.restarts) {
            add({"<li>at ", duration(restart.atMs)});
            if (restart.module >= 0) {
                size_t m = static_cast<size_t>(restart.module);
                size_t r = static_cast<size_t>(restart.row);
                add({" in <a href=\"#", idOf("r", m, r), "\">", html(run_.modules[m].name), " / ",
                     html(run_.modules[m].rows[r].name), "</a>"});
            }
            add({": ", html(restart.cause), "</li>\n"});
        }
        out_ += "</ol>\n";
    }

    void timelineModule(const Module& module) {
        int64_t begin = -1;
        int64_t end = -1;
        for (const Row& row : module.rows) {
            if (row.startMs < 0)
                continue;
            begin = begin < 0 ? row.startMs : std::min(begin, row.startMs);
            end = std::max(end, row.startMs + std::max<int64_t>(row.durationMs, 0));
        }
        if (begin < 0)
            return;
        std::string name = html(module.name);
        add({"<a class=\"m\" href=\"#rows\" data-m=\"", name, "\" style=\"--x:", percent(begin),
             ";--w:", percent(end - begin), "\" title=\"", name, ", ", duration(end - begin), "\">",
             name, "</a>"});
    }

    void failures() {
        if (totals_.bad == 0)
            return;
        size_t share = std::clamp(logBudget / totals_.bad, leastLog, mostLog);
        add({"<h2 id=\"failures\">Rows that need a look (", std::to_string(totals_.bad),
             ")</h2>\n<p><button id=\"logs\" type=\"button\" hidden>Open all logs</button></p>\n"});
        for (size_t m = 0; m < run_.modules.size(); m++) {
            for (size_t r = 0; r < run_.modules[m].rows.size(); r++) {
                if (run_.modules[m].rows[r].bad())
                    failure(m, r, share);
            }
        }
    }

    void failure(size_t m, size_t r, size_t share) {
        const Row& row = run_.modules[m].rows[r];
        add({"<article class=\"failure v-", cssWord(row.verdict), "\" id=\"", idOf("f", m, r),
             "\">\n<h3><a href=\"#", idOf("r", m, r), "\">", html(run_.modules[m].name), " / ",
             html(row.name), "</a></h3>\n<p>", verdictSpan(row)});
        if (row.durationMs >= 0)
            add({" · ", duration(row.durationMs)});
        if (row.startMs >= 0)
            add({" · begins at ", duration(row.startMs)});
        if (!row.description.empty())
            add({" · <span class=\"soft\">", html(row.description), "</span>"});
        out_ += "</p>\n";
        if (!row.expectedReason.empty())
            add({"<p>Expected: ", html(row.expectedReason), "</p>\n"});
        if (!row.reason.empty())
            add({"<p>", html(row.reason), "</p>\n"});
        std::string line = failureLine(run_, row);
        if (!line.empty())
            add({"<p class=\"why c1\">", html(line), "</p>\n"});
        if (row.logEnd > row.logBegin)
            add({"<details><summary>Console log</summary>\n<pre tabindex=\"0\">",
                 htmlOfConsole(excerpt(run_, row, share)), "</pre></details>\n"});
        out_ += "</article>\n";
    }

    void slowest() {
        std::vector<std::pair<size_t, size_t>> places;
        for (size_t m = 0; m < run_.modules.size(); m++) {
            for (size_t r = 0; r < run_.modules[m].rows.size(); r++) {
                if (run_.modules[m].rows[r].durationMs > 0)
                    places.emplace_back(m, r);
            }
        }
        if (places.empty())
            return;
        auto timeOf = [&](const std::pair<size_t, size_t>& place) {
            return run_.modules[place.first].rows[place.second].durationMs;
        };
        std::stable_sort(places.begin(), places.end(),
                         [&](const auto& a, const auto& b) { return timeOf(a) > timeOf(b); });
        places.resize(std::min(places.size(), slowestShown));
        double longest = static_cast<double>(timeOf(places.front()));
        out_ +=
            "<h2 id=\"slowest\">Slowest cases</h2>\n<table id=\"slow\">\n<thead><tr><th "
            "scope=\"col\">Case</th>"
            "<th scope=\"col\" class=\"num\">Time</th>"
            "<th scope=\"col\" class=\"wide\">Compared with the slowest</th></tr></thead>\n"
            "<tbody>\n";
        for (const auto& place : places) {
            double part = 100.0 * static_cast<double>(timeOf(place)) / longest;
            add({"<tr><td><a href=\"#", idOf("r", place.first, place.second), "\">",
                 html(run_.modules[place.first].name), " / ",
                 html(run_.modules[place.first].rows[place.second].name),
                 "</a></td><td class=\"num\">", duration(timeOf(place)),
                 "</td><td class=\"wide\"><div class=\"bar slow\" aria-hidden=\"true\"><i "
                 "style=\"--w:",
                 number(part, 1), "%\"></i></div></td></tr>\n"});
        }
        out_ += "</tbody></table>\n";
    }

    void controls() {
        out_ +=
            "<div class=\"controls\" role=\"search\" hidden>\n<input id=\"search\" "
            "type=\"search\" placeholder=\"Search ( / )\" aria-label=\"Search in rows\" "
            "autocomplete=\"off\" spellcheck=\"false\">\n<select id=\"module\" "
            "aria-label=\"Module\"><option value=\"\">All modules</option>";
        for (const Module& module : run_.modules) {
            std::string name = html(module.name);
            add({"<option value=\"", name, "\">", name, "</option>"});
        }
        out_ += "</select>\n<fieldset><legend hidden>Verdicts</legend>";
        for (int i = 0; i < verdictCount; i++) {
            Verdict verdict = static_cast<Verdict>(i);
            if (run_.count(verdict) > 0)
                add({"<label class=\"v v-", cssWord(verdict),
                     "\"><input type=\"checkbox\" name=\"verdict\" checked value=\"",
                     cssWord(verdict), "\"> ", verdictWord(verdict), "</label>"});
        }
        out_ +=
            "</fieldset>\n<button id=\"reset\" type=\"button\">All</button>\n"
            "<output id=\"shown\" class=\"soft\" aria-live=\"polite\"></output>\n</div>\n";
    }

    void rows() {
        add({"<h2 id=\"rows\" tabindex=\"-1\">All rows</h2>\n"});
        controls();
        for (size_t m = 0; m < run_.modules.size(); m++) {
            const Module& module = run_.modules[m];
            std::string name = html(module.name);
            add({"<section class=\"module\" data-name=\"", name,
                 "\" style=\"--high:", number(static_cast<double>(module.rows.size()) * 2.2 + 4, 1),
                 "rem\"><h3>", name, "</h3>\n<table aria-label=\"", name,
                 "\"><colgroup><col class=\"c-id\"><col><col class=\"c-v\"><col class=\"c-t\">"
                 "<col class=\"c-why\"></colgroup>\n<thead><tr><th scope=\"col\">Row</th>"
                 "<th scope=\"col\">Case</th><th scope=\"col\">Verdict</th>"
                 "<th scope=\"col\" class=\"num\">Time</th><th scope=\"col\">Why</th></tr></thead>"
                 "\n<tbody>\n"});
            for (size_t r = 0; r < module.rows.size(); r++)
                row(m, r);
            out_ += "</tbody></table></section>\n";
        }
    }

    void row(size_t m, size_t r) {
        const Row& row = run_.modules[m].rows[r];
        std::string name = html(row.name);
        add({"<tr id=\"", idOf("r", m, r), "\" data-v=\"", cssWord(row.verdict), "\"><td>",
             std::to_string(row.id), "</td><td>"});
        if (row.bad())
            add({"<a href=\"#", idOf("f", m, r), "\">", name, "</a>"});
        else
            out_ += name;
        if (!row.description.empty())
            add({"<small>", html(row.description), "</small>"});
        std::string why = row.reason;
        if (!row.expectedReason.empty())
            why += (why.empty() ? "" : "; ") + row.expectedReason;
        if (row.verdict == Verdict::Fail && why.empty())
            why = failureLine(run_, row);
        add({"</td><td>", verdictSpan(row), "</td><td class=\"num\">",
             row.durationMs >= 0 ? duration(row.durationMs) : "", "</td><td>", html(why),
             "</td></tr>\n"});
    }

    const Run& run_;
    Totals totals_;
    std::string out_;
};

}  // namespace

std::string htmlOf(const Run& run) {
    return Page(run).make();
}

}  // namespace report

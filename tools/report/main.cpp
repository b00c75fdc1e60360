// zkreport: what people, build servers and board farms make of a run's workbooks.
#include <errno.h>
#include <stdio.h>
#include <string.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include "tools/common/options.h"
#include "tools/report/compare.h"
#include "tools/report/expectations.h"
#include "tools/report/follow.h"
#include "tools/report/forms.h"
#include "tools/report/html.h"
#include "tools/report/merge.h"
#include "tools/report/run_data.h"
#include "tools/report/text.h"

namespace fs = std::filesystem;
using namespace report;

namespace {

/** Writes a whole file, or to standard output for "-". */
void put(const std::string& path, const std::string& text) {
    if (path == "-") {
        std::cout << text << std::flush;
        return;
    }
    // Half a file would pass for a whole one.
    std::string temporary = path + ".tmp";
    std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
    file << text;
    file.close();
    std::error_code error;
    if (file)
        fs::rename(temporary, path, error);
    if (!file || error) {
        std::string reason = error ? error.message() : strerror(errno);
        fs::remove(temporary, error);
        throw Error(path + ": cannot be written: " + reason);
    }
}

/** Where a run is read from. */
struct Source {
    std::string path;
    std::string checklist;
    std::string log;
    std::string durations;

    void addTo(CLI::App* command) {
        command
            ->add_option("RUN", path,
                         "a folder as a run leaves it (report.xls, checklist.xls, console.log), or "
                         "a report workbook")
            ->required();
        command->add_option("--checklist", checklist, "the run's checklist workbook");
        command->add_option("--log", log, "the console's log");
        command->add_option("--durations", durations, "durations recorded earlier");
    }
    Run read() const {
        Inputs inputs = inputsOf(path);
        if (!checklist.empty())
            inputs.checklist = checklist;
        if (!log.empty())
            inputs.log = log;
        if (!durations.empty())
            inputs.durations = durations;
        return readRun(inputs);
    }
};

/** The expectations that a run is judged by, if any. */
struct Expecting {
    std::string path;
    std::string day = today();

    void addTo(CLI::App* command) {
        command->add_option("--expect", path, "the board's known failures (JSON)");
        command->add_option("--today", day, "the day for expiry, YYYY-MM-DD (the computer's)")
            ->check([](const std::string& text) {
                return isDay(text) ? "" : text + " is no day like 2026-12-31";
            });
    }
    Judgement judgeRun(Run* run) const {
        Expectations expectations;
        if (!path.empty())
            expectations = readExpectations(path);
        return judge(expectations, day, run);
    }
};

void tell(const char* title, const std::vector<std::string>& lines) {
    if (lines.empty())
        return;
    printf("%s (%zu)\n", title, lines.size());
    for (const std::string& line : lines)
        printf("  %s\n", printable(line).c_str());
}

/** For standard output, and the exit code. */
int tellJudgement(const Run& run, const Judgement& judgement) {
    tell("New failures", judgement.newFailures);
    tell("Expectations that have run out", judgement.expired);
    tell("Expected to fail, and did not", judgement.unexpectedPasses);
    tell("Known failures", judgement.knownFailures);
    tell("Expectations that match no row", judgement.unused);
    for (const std::string& note : run.notes)
        printf("Note: %s\n", printable(note).c_str());
    printf("%u rows:", run.rowCount());
    for (int i = 0; i < verdictCount; i++) {
        Verdict verdict = static_cast<Verdict>(i);
        if (run.count(verdict) > 0)
            printf(" %u %s", run.count(verdict), verdictWord(verdict));
    }
    printf("%s\n", run.complete() ? "" : "; the run is not complete");
    return judgement.good() ? EXIT_DONE : EXIT_NEW_FAILURE;
}

struct Form {
    const char* option;
    const char* help;
    std::string (*make)(const Run& run);
    std::string path;
};

using Command = std::function<int()>;

/** `zkreport write`: the forms of one run. */
void addWrite(CLI::App* app, Command* chosen) {
    static Source source;
    static Expecting expecting;
    static Form forms[] = {
        {"--html", "a page for people, in one file", htmlOf, ""},
        {"--junit", "JUnit XML", junitOf, ""},
        {"--jsonl", "JSON Lines", jsonLinesOf, ""},
        {"--tap", "Test Anything Protocol", tapOf, ""},
        {"--lava", "signals of a LAVA test shell", lavaOf, ""},
        {"--ctrf", "Common Test Report Format", ctrfOf, ""},
        {"--learn", "durations, as mkchecklist --durations and --durations here take them",
         durationsOf, ""},
    };
    CLI::App* command = app->add_subcommand("write", "Writes a run in other forms");
    source.addTo(command);
    expecting.addTo(command);
    for (Form& form : forms)
        command->add_option(form.option, form.path, std::string(form.help) + "; - is the console");
    command->callback([=] {
        *chosen = [] {
            Run run = source.read();
            expecting.judgeRun(&run);
            bool any = false;
            for (const Form& form : forms) {
                if (!form.path.empty())
                    put(form.path, form.make(run));
                any = any || !form.path.empty();
            }
            if (!any)
                throw Error("write: no form was asked for; zkreport write --help lists them");
            return EXIT_DONE;
        };
    });
}

/** `zkreport check`: a run against the board's expectations. */
void addCheck(CLI::App* app, Command* chosen) {
    static Source source;
    static Expecting expecting;
    CLI::App* command = app->add_subcommand(
        "check",
        "Tells known failures from new ones; exit code 4 for a new failure or an "
        "expectation that has run out");
    source.addTo(command);
    expecting.addTo(command);
    command->callback([=] {
        *chosen = [] {
            Run run = source.read();
            Judgement judgement = expecting.judgeRun(&run);
            return tellJudgement(run, judgement);
        };
    });
}

/** `zkreport compare`: runs side by side. */
void addCompare(CLI::App* app, Command* chosen) {
    static std::vector<std::string> paths;
    static Slower slower;
    static std::string jsonPath;
    CLI::App* command = app->add_subcommand(
        "compare", "Compares runs, the oldest first; exit code 4 when there is a new failure");
    command->add_option("RUN", paths, "folders of runs, or report workbooks")
        ->required()
        ->expected(2, 1000);
    command->add_option("--json", jsonPath, "writes the comparison as JSON; - is the console");
    command
        ->add_option("--slower-factor", slower.factor,
                     "what counts as slower: this many times the time of before (1.5)")
        ->check(CLI::PositiveNumber);
    command->add_option("--slower-ms", slower.atLeastMs, "and this many milliseconds longer (1000)")
        ->check(CLI::NonNegativeNumber);
    command->callback([=] {
        *chosen = [] {
            std::vector<Run> runs;
            for (const std::string& path : paths) {
                runs.push_back(readRun(inputsOf(path)));
                // Only what the log told is needed.
                std::string().swap(runs.back().log);
            }
            Comparison comparison = compare(runs, slower);
            if (jsonPath != "-")
                fputs(textOf(comparison).c_str(), stdout);
            if (!jsonPath.empty())
                put(jsonPath, jsonOf(comparison));
            return comparison.hasNewFailure() ? EXIT_NEW_FAILURE : EXIT_DONE;
        };
    });
}

/** `zkreport merge`: the reports of a split run. */
void addMerge(CLI::App* app, Command* chosen) {
    static std::string out;
    static std::vector<std::string> folders;
    CLI::App* command =
        app->add_subcommand("merge", "Joins the reports of a split run to that of the whole");
    command->add_option("OUT", out, "the report workbook to write")->required();
    command->add_option("SHARD", folders, "folders with the report.xls and checklist.xls of a part")
        ->required();
    command->callback([=] {
        *chosen = [] {
            std::vector<Shard> shards;
            for (const std::string& folder : folders)
                shards.push_back(shardOf(folder));
            unsigned rows = mergeReports(shards, out);
            printf("%s: %u rows of %zu shards\n", out.c_str(), rows, shards.size());
            return EXIT_DONE;
        };
    });
}

/** `zkreport watch`: a run in progress. */
void addWatch(CLI::App* app, Command* chosen) {
    static std::string folder;
    static std::string durations;
    static std::string address;
    static bool once = false;
    CLI::App* command = app->add_subcommand("watch", "Follows a run in progress");
    command->add_option("DIR", folder, "the folder in which the run's console.log grows")
        ->required();
    command->add_option("--durations", durations, "what cases took earlier, for the time left");
    command
        ->add_option("--http", address,
                     "also serves a page there, PORT (on 127.0.0.1) or ADDRESS:PORT, until "
                     "interrupted")
        ->check([](const std::string& text) {
            HttpAddress ignored;
            return readHttpAddress(text, &ignored) ? "" : text + " is no PORT or ADDRESS:PORT";
        });
    command->add_flag("--once", once, "tells how far it is, and ends");
    command->callback([=] {
        *chosen = [] {
            HttpAddress http;
            if (!address.empty())
                readHttpAddress(address, &http);
            watch(folder, durations, address.empty() ? nullptr : &http, once);
            return EXIT_DONE;
        };
    });
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("What people, build servers and board farms make of a run's workbooks",
                 "zkreport");
    app.require_subcommand(1);
    Command chosen;
    addWrite(&app, &chosen);
    addCheck(&app, &chosen);
    addCompare(&app, &chosen);
    addMerge(&app, &chosen);
    addWatch(&app, &chosen);
    int code = readOptions(&app, argc, argv);
    if (code >= 0)
        return code;
    try {
        return chosen();
    } catch (const std::exception& error) {
        fprintf(stderr, "zkreport: %s\n", printable(error.what()).c_str());
        return EXIT_FAILED;
    }
}

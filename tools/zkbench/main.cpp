// The runner: a whole unattended certification on the simulated device.
//
// It does what the rack around a device does: lays out the bench folder, starts the program with
// `auto`, shows how far it is, and starts it again as the device's start scripts would after the
// configured reboot command has run. At the end it prints a summary by module from the report, and
// names what the report leaves untold. docs/operator.md explains what it prints.
#include <stdio.h>
#include <unistd.h>

#include <algorithm>

#include "tools/common/files.h"
#include "tools/common/options.h"
#include "tools/common/process.h"
#include "tools/report/forms.h"
#include "tools/report/html.h"
#include "tools/zkbench/findings.h"
#include "tools/zkbench/run.h"
#include "tools/zkbench/stream_store.h"

namespace fs = std::filesystem;

namespace {

struct Options {
    RunOptions run;
    fs::path folder;
    fs::path project = ZK_SOURCE_DIR;
    bool layOutOnly = false;
    /** What the checklist marks, as mkchecklist takes it. */
    Words selection;
};

/** Makes a path of the user's independent of the working directory. */
fs::path absolute(const std::string& path) {
    return fs::absolute(path).lexically_normal();
}

/** Options that go on to mkchecklist as they are. */
struct Selection {
    std::vector<std::string> modules, names, outcomes;
    std::string failed, report;
    bool automaticOnly = false;
    bool withLong = false;

    void addTo(CLI::App* app, CLI::Option* resume) {
        std::vector<CLI::Option*> all = {
            app->add_option("--module", modules, "Only cases of this module; may be repeated")
                ->type_name("NAME"),
            app->add_option("--name", names,
                            "Only cases whose name matches, '*' and '?' as in a shell; may be "
                            "repeated")
                ->type_name("PATTERN"),
            app->add_option("--failed", failed,
                            "Only cases that did not come through in an earlier report")
                ->type_name("REPORT")
                ->check(readable()),
            app->add_option("--report", report, "Only cases that have the outcomes in this report")
                ->type_name("REPORT")
                ->check(readable()),
            app->add_option("--outcome", outcomes,
                            "Such an outcome: Pass, Fail, N/A, Block, NoMatch or Manual; may be "
                            "repeated")
                ->type_name("WORD"),
            app->add_flag("--auto", automaticOnly, "Only automatic cases"),
            app->add_flag("--long", withLong,
                          "Also the cases that outlast the monitor's five minutes"),
        };
        for (CLI::Option* option : all) {
            option->group("What runs: marks of the checklist")->excludes(resume);
            option->allow_extra_args(false);
        }
    }

    Words words() const {
        Words words;
        auto add = [&words](const char* option, const std::string& value) {
            words.insert(words.end(), {option, value});
        };
        for (const std::string& name : modules)
            add("--module", name);
        for (const std::string& pattern : names)
            add("--name", pattern);
        if (!failed.empty())
            add("--failed", absolute(failed));
        if (!report.empty())
            add("--report", absolute(report));
        for (const std::string& outcome : outcomes)
            add("--outcome", outcome);
        if (automaticOnly)
            words.push_back("--auto");
        if (withLong)
            words.push_back("--long");
        return words;
    }
};

/** Reads the options; -1 to go on, else what main returns. */
int parse(int argc, char** argv, Options* options) {
    std::string folder;
    std::string project = options->project;
    std::string build = programFile().parent_path();
    std::string input = options->run.input;
    Selection selection;
    CLI::App app(
        "Runs the unattended certification on the simulated device in the bench folder DIR.\n"
        "The exit code is 0 when the run was completed, whatever its verdicts.",
        "zkbench");
    app.add_option("DIR", folder, "The bench folder (build/bench of the project)");
    CLI::Option* resume =
        app.add_flag("--resume", options->run.resume,
                     "Go on with the folder's checklist and report instead of new ones");
    app.add_option("--input", input, "What the program reads on its standard input (nothing)")
        ->type_name("FILE")
        ->check(readable());
    CLI::Option* realTime =
        app.add_flag("--real-time", options->run.realTime, "Wait for real, not in virtual time");
    app.add_option(
           "--seed", options->run.seed,
           "Another order of threads in virtual time, from 2026-01-01 on; two runs with one "
           "seed are the same to the byte")
        ->type_name("N")
        ->check(wholeNumber(0))
        ->excludes(realTime);
    app.add_option("--restarts", options->run.restarts,
                   "How often the device may be restarted (50)")
        ->type_name("N")
        ->check(wholeNumber(0, 1000000));
    app.add_option("--silence", options->run.silenceS,
                   "End a program that says nothing for so long (420); 0: wait for ever")
        ->type_name("SECONDS")
        ->check(wholeNumber(0, 1000000));
    app.add_flag("--quiet", options->run.quiet, "No progress line");
    app.add_flag("--lay-out", options->layOutOnly, "Only bring the folder into order");
    app.add_option("--build", build, "Folder of the built programs (that of zkbench)")
        ->type_name("DIR")
        ->check(readable(FOLDER))
        ->take_last();
    app.add_option("--source", project, "Folder of the project, for the shipped configuration")
        ->type_name("DIR")
        ->check(readable(FOLDER))
        ->take_last();
    selection.addTo(&app, resume);
    int code = readOptions(&app, argc, argv);
    if (code >= 0)
        return code;
    options->project = fs::canonical(project);
    options->folder = folder.empty() ? options->project / "build/bench" : absolute(folder);
    options->run.build = absolute(build);
    options->run.input = absolute(input);
    options->selection = selection.words();
    return -1;
}

/** Makes the checklist; 0, or what main returns. */
int makeChecklist(const Options& options, const RunFiles& files) {
    if (options.run.resume)
        return 0;
    const std::string fresh = ".bench/checklist.xls";
    Words words = {options.run.build / "mkchecklist", fresh};
    words.insert(words.end(), options.selection.begin(), options.selection.end());
    int code = runProgram(words);
    if (code != 0)
        return code;
    if (bringChecklist(fresh, files.checklist))
        return 0;
    if (options.selection.empty()) {
        printf("%s is the folder's own and stays as it is\n", files.checklist.c_str());
        return 0;
    }
    fprintf(stderr,
            "zkbench: %s is the folder's own: its marks select what runs, not options. Move it "
            "away, or leave the options out.\n",
            (options.folder / files.checklist).c_str());
    return EXIT_USAGE;
}

/** Counts of each word of the report by module. */
void printTable(const std::vector<report::Module>& modules) {
    const int words = static_cast<int>(report::Verdict::Missing);
    std::vector<unsigned> totals(words);
    auto print = [](const std::string& name, const std::vector<unsigned>& counts) {
        printf("%-20s", name.c_str());
        for (unsigned count : counts)
            printf(" %7u", count);
        printf("\n");
    };
    printf("%-20s", "Module");
    for (int w = 0; w < words; w++)
        printf(" %7s", verdictWord(static_cast<report::Verdict>(w)));
    printf("\n");
    for (const report::Module& module : modules) {
        if (!module.absence.empty())
            continue;
        std::vector<unsigned> counts(words);
        for (const report::Row& row : module.rows) {
            if (row.verdict != report::Verdict::Missing)
                counts[static_cast<size_t>(row.verdict)]++;
        }
        for (size_t w = 0; w < counts.size(); w++)
            totals[w] += counts[w];
        print(module.name, counts);
    }
    print("all", totals);
}

void printRanges(const char* title, const std::vector<RowRange>& ranges) {
    if (!ranges.empty())
        printf("\n%s\n", title);
    for (const RowRange& range : ranges)
        printf("    %s\n", describe(range).c_str());
}

/** The forms of a report that lie beside it, for people and build servers. */
const struct {
    const char* extension;
    std::string (*make)(const report::Run& run);
} forms[] = {
    {".html", report::htmlOf},
    {".xml", report::junitOf},
    {".jsonl", report::jsonLinesOf},
};

fs::path formOf(const RunFiles& files, const char* extension) {
    return fs::path(files.report).replace_extension(extension);
}

std::vector<std::string> formsOf(const RunFiles& files) {
    std::vector<std::string> names;
    for (const auto& form : forms)
        names.push_back(formOf(files, form.extension));
    return names;
}

void writeForms(const Options& options, const RunFiles& files, const report::Run& run) {
    for (const auto& form : forms) {
        fs::path path = formOf(files, form.extension);
        try {
            writeWhole({path}, form.make(run));
            printf("%s\n", (options.folder / path).c_str());
        } catch (const fs::filesystem_error& error) {
            printf("not written: %s\n", error.what());
        }
    }
}

/** Prints what came of the run. Returns whether it was completed. `why` tells why it ended too
 *  early, empty when it did not. */
bool summarise(const Options& options, const RunFiles& files, std::string why) {
    try {
        report::Inputs inputs = {files.report, files.checklist, {}, {}};
        if (fs::is_regular_file(files.console))
            inputs.log = files.console;
        report::Run run = report::readRun(inputs);
        Findings findings = findUntold(run);
        printTable(run.modules);
        printRanges("Cases that took the device down, or ran when it was ended:",
                    findings.tookDown);
        printRanges("Verdicts that a restart lost, now N/A in the report:", findings.lost);
        printRanges("Marked rows without a verdict:", findings.missing);
        if (why.empty() && !findings.missing.empty())
            why = std::to_string(countRows(findings.missing)) + " marked rows have no verdict";
        printf("\n");
        writeForms(options, files, run);
    } catch (const report::Error& error) {
        printf("no report: %s\n", error.what());
        why = why.empty() ? "there is no report" : why;
    }
    printf("\n%s%s\nreport %s\nconsole %s\n",
           why.empty() ? "run completed" : "RUN NOT COMPLETED: ", why.c_str(),
           (options.folder / files.report).c_str(), (options.folder / files.console).c_str());
    return why.empty();
}

/** What main returns. The working directory is the bench folder from here on. */
int useFolder(const Options& options) {
    std::string other = lockFolder();
    if (!other.empty()) {
        fprintf(stderr, "zkbench: %s is in use by another runner: %s\n", options.folder.c_str(),
                other.c_str());
        return EXIT_FAILED;
    }
    layOut(options.project);
    if (!makeStreams(options.project / "build/streams", options.run.build / "mkstreams"))
        return EXIT_FAILED;
    if (options.layOutOnly)
        return EXIT_DONE;
    RunFiles files = configuredFiles();
    // Before the report is put away: the rows of an earlier one may select what runs.
    int code = makeChecklist(options, files);
    if (code != 0)
        return code;
    report::Checklist checklist = report::readChecklist(files.checklist);
    std::vector<std::string> results = {files.report, files.console};
    // Forms of an earlier report would pass for those of this one.
    std::vector<std::string> readable = formsOf(files);
    if (!options.run.resume)
        readable.insert(readable.end(), results.begin(), results.end());
    putAside(readable);
    std::string why = runToTheEnd(options.run, files, checklist);
    bool complete = summarise(options, files, why);
    rememberOwn(results);
    rememberOwn(formsOf(files));
    return complete ? EXIT_DONE : EXIT_FAILED;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    int code = parse(argc, argv, &options);
    if (code >= 0)
        return code;
    try {
        fs::create_directories(options.folder);
        fs::current_path(options.folder);
        return useFolder(options);
    } catch (const std::runtime_error& error) {
        fprintf(stderr, "zkbench: %s\n", error.what());
        return EXIT_FAILED;
    }
}

// Writes a checklist workbook for the cases of this build.
//
// The workbook has a cover sheet, then one sheet for each module that has a selected case. A
// module's sheet lists all its cases in table order, for rows are matched to cases by their place;
// the mark says which of them are selected. It ends with a row that the program never reads.
#include <fnmatch.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "framework/workbook/xlslib.h"
#include "testcase/modules.h"
#include "tools/common/options.h"
#include "tools/report/durations.h"
#include "tools/report/run_data.h"
#include "tools/report/shards.h"

namespace {

struct Selection {
    std::vector<std::string> modules;
    std::vector<std::string> patterns;
    bool automaticOnly = false;
    bool withLong = false;
    bool byReport = false;
    /** Module and case of the rows that are chosen from an earlier report. */
    std::set<std::pair<std::string, std::string>> chosen;
    /** The part of a split checklist; of one part alone, the whole. */
    report::ShardMark shard{1, 1, ""};
    std::set<const TcCase*> inShard;
};

/** Which rows of an earlier report are chosen. */
struct Earlier {
    std::string report;
    /** The console's log of that run, empty for none. */
    std::string console;
    /** Words of a report; empty: what did not come through. */
    std::vector<std::string> outcomes;
};

/** Automatic cases that run longer than the monitor's patience: it reboots the device under them.
 */
const char* const longCases[] = {
    "TC_TUNER_DVBS_BlindScanTune_013",
    "TC_TUNER_DVBS_BlindScanTune_014",
    "TC_RecWholeFlowLongTime_001",
    "TC_RecCheckTsCallbackData_001",
};

bool isLong(const std::string& name) {
    return std::find(std::begin(longCases), std::end(longCases), name) != std::end(longCases);
}

bool moduleSelected(const Selection& selection, const TcModule& module) {
    return selection.modules.empty() ||
           std::find(selection.modules.begin(), selection.modules.end(), module.name) !=
               selection.modules.end();
}

bool caseSelected(const Selection& selection, const TcModule& module, const TcCase& testCase) {
    if (!moduleSelected(selection, module) ||
        (selection.automaticOnly && testCase.autoFlag != AUTO) ||
        (!selection.inShard.empty() && selection.inShard.count(&testCase) == 0) ||
        (selection.byReport && selection.chosen.count({module.name, testCase.name}) == 0))
        return false;
    if (selection.patterns.empty())
        return true;
    for (const std::string& pattern : selection.patterns) {
        if (fnmatch(pattern.c_str(), testCase.name, 0) == 0)
            return true;
    }
    return false;
}

bool isAutomatic(const std::string& moduleName, const std::string& caseName) {
    for (const TcModule* module : testModules) {
        for (uint32_t i = 0; module->name == moduleName && i < module->caseCount; i++) {
            if (module->cases[i].name == caseName)
                return module->cases[i].autoFlag == AUTO;
        }
    }
    return false;
}

/** Whether a row's case was to come to a verdict and did not pass: it failed, or has "N/A" although
 *  the console does not say that the board lacks it. */
bool didNotComeThrough(const std::string& module, const report::Row& row) {
    if (row.verdict == report::Verdict::NotApplicable)
        return row.marked && row.told != report::Told::Unsupported && isAutomatic(module, row.name);
    return row.verdict == report::Verdict::Fail || row.verdict == report::Verdict::Block ||
           (row.verdict == report::Verdict::Missing && row.marked);
}

/** The files of an earlier run: of a bench folder's present one, its checklist and console too; of
 *  "last-report.xls", "last-console.log". */
report::Inputs inputsOf(const Earlier& earlier) {
    std::filesystem::path path = earlier.report;
    report::Inputs inputs;
    inputs.report = path;
    if (path.filename() == "report.xls")
        inputs = report::inputsOf(path.has_parent_path() ? path.parent_path() : ".");
    inputs.durations.clear();
    std::string name = path.stem().string();
    size_t at = name.find("report");
    if (at != std::string::npos) {
        std::filesystem::path console = path;
        console.replace_filename(name.replace(at, strlen("report"), "console") + ".log");
        if (std::filesystem::exists(console))
            inputs.log = console;
    }
    if (!earlier.console.empty())
        inputs.log = earlier.console;
    return inputs;
}

/** Chooses rows of an earlier report. */
bool chooseRows(const Earlier& earlier, Selection* selection) {
    try {
        report::Inputs inputs = inputsOf(earlier);
        if (inputs.log.empty() && earlier.outcomes.empty())
            fprintf(stderr,
                    "mkchecklist: there is no console log: N/A counts as a crash, also of a case "
                    "that the board lacks\n");
        report::Run run = readRun(inputs);
        for (const report::Module& module : run.modules) {
            for (const report::Row& row : module.rows) {
                bool named = std::find(earlier.outcomes.begin(), earlier.outcomes.end(),
                                       verdictWord(row.verdict)) != earlier.outcomes.end();
                if (earlier.outcomes.empty() ? didNotComeThrough(module.name, row) : named)
                    selection->chosen.insert({module.name, row.name});
            }
        }
    } catch (const report::Error& error) {
        fprintf(stderr, "mkchecklist: %s\n", error.what());
        return false;
    }
    selection->byReport = true;
    return true;
}

/** The words of a report. */
std::vector<std::string> outcomeWords() {
    std::vector<std::string> words;
    for (int w = 0; w < static_cast<int>(report::Verdict::Missing); w++)
        words.push_back(verdictWord(static_cast<report::Verdict>(w)));
    return words;
}

struct Totals {
    unsigned sheets = 0;
    unsigned selected = 0;
    unsigned lastSheetRows = 0;
    std::vector<std::string> leftOut;
};

void writeModule(workbook* book, const Selection& selection, const TcModule& module,
                 Totals* totals) {
    static const char* const headings[] = {"No.", "Case", "Description", "Kind", "Test"};
    const TcCase* end = module.cases + module.caseCount;
    bool any = std::any_of(module.cases, end, [&](const TcCase& testCase) {
        return caseSelected(selection, module, testCase);
    });
    if (!any)
        return;
    worksheet* sheet = xlsWorkbookSheet(book, module.name);
    for (unsigned column = 0; column < 5; column++)
        xlsWorksheetLabel(sheet, 0, column, headings[column], nullptr);
    for (uint32_t i = 0; i < module.caseCount; i++) {
        const TcCase& testCase = module.cases[i];
        bool selected = caseSelected(selection, module, testCase);
        if (selected && isLong(testCase.name) && !selection.withLong) {
            selected = false;
            totals->leftOut.push_back(testCase.name);
        }
        totals->selected += selected;
        xlsWorksheetNumberInt(sheet, i + 1, 0, static_cast<int>(i) + 1, nullptr);
        xlsWorksheetLabel(sheet, i + 1, 1, testCase.name, nullptr);
        xlsWorksheetLabel(sheet, i + 1, 2, testCase.description, nullptr);
        xlsWorksheetLabel(sheet, i + 1, 3, testCase.autoFlag == AUTO ? "Auto" : "Manual", nullptr);
        xlsWorksheetLabel(sheet, i + 1, 4, selected ? "Y" : "N", nullptr);
    }
    xlsWorksheetLabel(sheet, module.caseCount + 1, 0, "End of sheet", nullptr);
    totals->sheets++;
    totals->lastSheetRows = module.caseCount;
}

void writeCover(workbook* book, const Selection& selection) {
    static const char* const lines[] = {
        "zktest checklist",
        "One sheet a module. Column \"Test\": Y runs a case in an unattended run, N does not.",
        "Rows are matched to cases by their place: neither sort, insert nor delete rows.",
        "The last row of each sheet is never read; leave it where it is.",
    };
    worksheet* cover = xlsWorkbookSheet(book, "Cover");
    for (unsigned i = 0; i < 4; i++)
        xlsWorksheetLabel(cover, i, 0, lines[i], nullptr);
    if (selection.shard.count > 1)
        xlsWorksheetLabel(cover, 4, 0, textOf(selection.shard).c_str(), nullptr);
}

int writeChecklist(const char* path, const Selection& selection) {
    Totals totals;
    workbook* book = xlsNewWorkbook();
    writeCover(book, selection);
    for (const TcModule* module : testModules)
        writeModule(book, selection, *module, &totals);
    bool saved = totals.selected > 0 && xlsWorkbookDump(book, path) == 0;
    xlsDeleteWorkbook(book);
    for (const std::string& name : totals.leftOut)
        printf("marked N, since it outlasts the monitor's five minutes (--long marks it Y): %s\n",
               name.c_str());
    if (totals.selected == 0) {
        fprintf(stderr, "mkchecklist: no case is selected, nothing written\n");
        return 1;
    }
    if (!saved) {
        fprintf(stderr, "mkchecklist: cannot write %s\n", path);
        return 1;
    }
    if (totals.sheets == 1 && totals.lastSheetRows == 1)
        printf(
            "note: the program takes a checklist of one sheet with one case for finished and "
            "runs nothing of it; select a second module\n");
    printf("%u cases marked Y on %u sheets\n", totals.selected, totals.sheets);
    return 0;
}

/** One line for each case: module, number in the module, name, auto flag, description. */
void listCases(const Selection& selection) {
    for (const TcModule* module : testModules) {
        for (uint32_t i = 0; i < module->caseCount; i++) {
            const TcCase& testCase = module->cases[i];
            if (caseSelected(selection, *module, testCase))
                printf("%s\t%u\t%s\t%u\t%s\n", module->name, i + 1, testCase.name,
                       testCase.autoFlag, testCase.description);
        }
    }
}

bool knownModule(const std::string& name) {
    return std::any_of(std::begin(testModules), std::end(testModules),
                       [&](const TcModule* module) { return name == module->name; });
}

/** The options that choose rows of an earlier report. */
void addEarlierOptions(CLI::App* app, Earlier* earlier, std::string* failed) {
    CLI::Option* failures =
        app->add_option("--failed", *failed,
                        "Only cases that did not come through in this report: Fail, Block, and "
                        "N/A of a case that the board does not lack")
            ->type_name("REPORT")
            ->check(readable());
    CLI::Option* report = app->add_option("--report", earlier->report,
                                          "Only cases that have the outcomes in this report")
                              ->type_name("REPORT")
                              ->check(readable())
                              ->excludes(failures);
    CLI::Option* outcome =
        app->add_option("--outcome", earlier->outcomes,
                        "Such an outcome: Pass, Fail, N/A, Block, NoMatch or Manual; may be "
                        "repeated")
            ->type_name("WORD")
            ->allow_extra_args(false)
            ->check(CLI::IsMember(outcomeWords()).description(""))
            ->needs(report);
    report->needs(outcome);
    app->add_option("--console", earlier->console,
                    "The console log of the report's run (console.log beside report.xls); it "
                    "tells what crashed from what the board lacks")
        ->type_name("FILE")
        ->check(readable());
}

/** Reads "I/N" into the selection's part; a reason when it is none. */
std::string readShard(const std::string& text, Selection* selection) {
    report::ShardMark& shard = selection->shard;
    int end = 0;
    if (sscanf(text.c_str(), "%6u/%6u%n", &shard.index, &shard.count, &end) != 2 ||
        static_cast<size_t>(end) != text.size() || shard.index < 1 || shard.index > shard.count)
        return text + " is no part I/N, such as 2/4";
    return "";
}

/** Leaves of the selected cases those of the part. What does not run takes no time. */
bool takeShard(const report::Durations& durations, Selection* selection) {
    std::vector<const TcCase*> cases;
    std::vector<int64_t> times;
    uint64_t hash = 1469598103934665603u;
    auto stir = [&](const std::string& text) {
        for (char byte : text + "/")
            hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211u;
    };
    for (const TcModule* module : testModules) {
        for (uint32_t i = 0; i < module->caseCount; i++) {
            const TcCase& testCase = module->cases[i];
            if (!caseSelected(*selection, *module, testCase))
                continue;
            auto found = durations.find(std::string(module->name) + "/" + testCase.name);
            bool runs =
                testCase.autoFlag == AUTO && (selection->withLong || !isLong(testCase.name));
            cases.push_back(&testCase);
            times.push_back(!runs ? 0 : found != durations.end() ? found->second : -1);
            stir(module->name);
            stir(testCase.name);
        }
    }
    if (cases.size() < selection->shard.count) {
        fprintf(stderr, "mkchecklist: there are fewer cases than parts\n");
        return false;
    }
    std::vector<unsigned> parts = report::cutEvenly(times, selection->shard.count);
    for (size_t i = 0; i < cases.size(); i++) {
        stir(std::to_string(parts[i]));
        if (parts[i] + 1 == selection->shard.index)
            selection->inShard.insert(cases[i]);
    }
    char cut[20];
    snprintf(cut, sizeof cut, "%016llx", static_cast<unsigned long long>(hash));
    selection->shard.cut = cut;
    return true;
}

struct Options {
    Selection selection;
    std::string durations;
    Earlier earlier;
    std::string out;
    bool list = false;
};

/** Reads the options; -1 to go on, else what main returns. */
int parse(int argc, char** argv, Options* options) {
    Selection& selection = options->selection;
    Earlier& earlier = options->earlier;
    std::string failed;
    CLI::App app(
        "Writes a checklist workbook for the cases of this build, or lists them, tab-separated:\n"
        "module, number in the module, name, auto flag, description.",
        "mkchecklist");
    CLI::Option* out = app.add_option("OUT.xls", options->out, "The workbook to write");
    app.add_flag("--list", options->list, "List the cases instead")->excludes(out);
    app.add_option("--module", selection.modules, "Only cases of this module; may be repeated")
        ->allow_extra_args(false)
        ->check([](const std::string& name) {
            return knownModule(name) ? std::string() : "there is no module " + name;
        })
        ->type_name("NAME");
    app.add_option("--name", selection.patterns,
                   "Only cases whose name matches, '*' and '?' as in a shell; may be repeated")
        ->allow_extra_args(false)
        ->type_name("PATTERN");
    app.add_flag("--auto", selection.automaticOnly, "Only automatic cases");
    app.add_flag("--long", selection.withLong,
                 "Mark also the cases that outlast the monitor's five minutes");
    addEarlierOptions(&app, &earlier, &failed);
    CLI::Option* part =
        app.add_option_function<std::string>(
               "--shard", [](const std::string&) {},
               "Only the I-th of N parts that take the same time, for N boards")
            ->type_name("I/N")
            ->check([&](const std::string& text) { return readShard(text, &selection); });
    app.add_option("--durations", options->durations,
                   "What cases took, as zkreport write --learn tells it")
        ->type_name("FILE")
        ->check(readable())
        ->needs(part);
    int code = readOptions(&app, argc, argv);
    if (code >= 0)
        return code;
    if (!failed.empty())
        earlier.report = failed;
    if (!earlier.console.empty() && earlier.report.empty()) {
        fputs("mkchecklist: --console is of use with --failed only\n", stderr);
        return EXIT_USAGE;
    }
    if (options->list || !options->out.empty())
        return -1;
    fputs("mkchecklist: name the workbook to write, or --list\n", stderr);
    return EXIT_USAGE;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    int code = parse(argc, argv, &options);
    if (code >= 0)
        return code;
    if (!options.earlier.report.empty() && !chooseRows(options.earlier, &options.selection))
        return 1;
    try {
        report::Durations learnt;
        if (!options.durations.empty())
            learnt = report::readDurations(options.durations);
        if (options.selection.shard.count > 1 && !takeShard(learnt, &options.selection))
            return EXIT_FAILED;
    } catch (const std::exception& error) {
        fprintf(stderr, "mkchecklist: %s\n", error.what());
        return EXIT_FAILED;
    }
    if (options.list) {
        listCases(options.selection);
        return 0;
    }
    return writeChecklist(options.out.c_str(), options.selection);
}

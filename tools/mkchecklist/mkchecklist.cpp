// Writes a checklist workbook for the cases of this build.
//
// The workbook has a cover sheet, then one sheet for each module that has a selected case. A
// module's sheet lists all its cases in table order, for rows are matched to cases by their place;
// the mark says which of them are selected. It ends with a row that the program never reads.
#include <fnmatch.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "framework/workbook/xls.h"
#include "framework/workbook/xlslib.h"
#include "testcase/modules.h"
#include "tools/common/options.h"

namespace {

struct Selection {
    std::vector<std::string> modules;
    std::vector<std::string> patterns;
    bool automaticOnly = false;
    bool withLong = false;
    bool byReport = false;
    /** Module and case of the rows that failed in an earlier report. */
    std::set<std::pair<std::string, std::string>> failed;
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
        (selection.byReport && selection.failed.count({module.name, testCase.name}) == 0))
        return false;
    if (selection.patterns.empty())
        return true;
    for (const std::string& pattern : selection.patterns) {
        if (fnmatch(pattern.c_str(), testCase.name, 0) == 0)
            return true;
    }
    return false;
}

const char* cellText(xlsWorkSheet* sheet, unsigned row, unsigned column) {
    xlsCell* cell = xls_cell(sheet, static_cast<uint16_t>(row), static_cast<uint16_t>(column));
    return cell != nullptr && cell->str != nullptr ? cell->str : "";
}

/** Collects the rows of a report that say "Fail" or "Block". */
bool readFailures(const char* path, Selection* selection) {
    xls_error_t error = LIBXLS_OK;
    xlsWorkBook* book = xls_open_file(path, "UTF-8", &error);
    if (book == nullptr) {
        fprintf(stderr, "mkchecklist: cannot read the report %s: %s\n", path, xls_getError(error));
        return false;
    }
    for (uint32_t i = 0; error == LIBXLS_OK && i < book->sheets.count; i++) {
        xlsWorkSheet* sheet = xls_getWorkSheet(book, static_cast<int>(i));
        error = sheet != nullptr ? xls_parseWorkSheet(sheet) : LIBXLS_ERROR_MALLOC;
        for (unsigned r = 1; error == LIBXLS_OK && r <= sheet->rows.lastrow; r++) {
            std::string result = cellText(sheet, r, 3);
            if (result == "Fail" || result == "Block")
                selection->failed.insert({book->sheets.sheet[i].name, cellText(sheet, r, 1)});
        }
        xls_close_WS(sheet);
    }
    xls_close_WB(book);
    if (error != LIBXLS_OK)
        fprintf(stderr, "mkchecklist: cannot read the report %s: %s\n", path, xls_getError(error));
    selection->byReport = true;
    return error == LIBXLS_OK;
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

void writeCover(workbook* book) {
    static const char* const lines[] = {
        "zktest checklist",
        "One sheet a module. Column \"Test\": Y runs a case in an unattended run, N does not.",
        "Rows are matched to cases by their place: neither sort, insert nor delete rows.",
        "The last row of each sheet is never read; leave it where it is.",
    };
    worksheet* cover = xlsWorkbookSheet(book, "Cover");
    for (unsigned i = 0; i < 4; i++)
        xlsWorksheetLabel(cover, i, 0, lines[i], nullptr);
}

int writeChecklist(const char* path, const Selection& selection) {
    Totals totals;
    workbook* book = xlsNewWorkbook();
    writeCover(book);
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
    printf("%s: %u cases marked Y on %u sheets\n", path, totals.selected, totals.sheets);
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

/** Takes only names of modules. */
std::string checkModule(const std::string& name) {
    return knownModule(name) ? std::string() : "there is no module " + name;
}

}  // namespace

int main(int argc, char** argv) {
    Selection selection;
    std::string out;
    std::string failed;
    bool list = false;
    CLI::App app(
        "Writes a checklist workbook for the cases of this build, or lists them, tab-separated:\n"
        "module, number in the module, name, auto flag, description.",
        "mkchecklist");
    CLI::Option* file = app.add_option("OUT.xls", out, "The workbook to write");
    CLI::Option* listing = app.add_flag("--list", list, "List the cases instead");
    file->excludes(listing);
    app.add_option("--module", selection.modules, "Only cases of this module; may be repeated")
        ->allow_extra_args(false)
        ->check(checkModule)
        ->type_name("NAME");
    app.add_option("--name", selection.patterns,
                   "Only cases whose name matches, '*' and '?' as in a shell; may be repeated")
        ->allow_extra_args(false)
        ->type_name("PATTERN");
    app.add_flag("--auto", selection.automaticOnly, "Only automatic cases");
    app.add_option("--failed", failed, "Only cases that this report has as \"Fail\" or \"Block\"")
        ->type_name("REPORT")
        ->check(readable());
    app.add_flag("--long", selection.withLong,
                 "Mark also the cases that outlast the monitor's five minutes");
    int code = readOptions(&app, argc, argv);
    if (code >= 0)
        return code;
    if (!list && out.empty()) {
        fputs("mkchecklist: name the workbook to write, or --list\n", stderr);
        return EXIT_USAGE;
    }
    if (!failed.empty() && !readFailures(failed.c_str(), &selection))
        return 1;
    if (list) {
        listCases(selection);
        return 0;
    }
    return writeChecklist(out.c_str(), selection);
}

#include "tools/report/run_data.h"

#include <errno.h>
#include <string.h>
#include <sys/stat.h>

#include <fstream>
#include <memory>

#include "framework/workbook/xls.h"
#include "tools/report/console_log.h"
#include "tools/report/durations.h"

namespace fs = std::filesystem;

namespace report {

namespace {

const char* const words[verdictCount] = {"Pass",    "Fail",   "N/A",    "Block",
                                         "NoMatch", "Manual", "Missing"};

struct CloseBook {
    void operator()(xlsWorkBook* book) const {
        xls_close_WB(book);
    }
};
struct CloseSheet {
    void operator()(xlsWorkSheet* sheet) const {
        xls_close_WS(sheet);
    }
};
using Book = std::unique_ptr<xlsWorkBook, CloseBook>;

/** A sheet with its cells read. */
class Sheet {
 public:
    Sheet(const fs::path& path, xlsWorkBook* book, uint32_t index)
        : sheet_(xls_getWorkSheet(book, static_cast<int>(index))) {
        const char* name = book->sheets.sheet[index].name;
        name_ = name != nullptr ? name : "";
        xls_error_t error = sheet_ ? xls_parseWorkSheet(sheet_.get()) : LIBXLS_ERROR_MALLOC;
        if (error != LIBXLS_OK)
            throw Error(path.string() + ": sheet \"" + name_ + "\": " + xls_getError(error));
    }
    const std::string& name() const {
        return name_;
    }
    /** The highest row, from 0. */
    unsigned lastRow() const {
        return sheet_->rows.lastrow;
    }
    std::string text(unsigned row, unsigned column) const {
        xlsCell* cell =
            xls_cell(sheet_.get(), static_cast<uint16_t>(row), static_cast<uint16_t>(column));
        return cell != nullptr && cell->str != nullptr ? cell->str : "";
    }

 private:
    std::unique_ptr<xlsWorkSheet, CloseSheet> sheet_;
    std::string name_;
};

Book openBook(const fs::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0)
        throw Error(path.string() + ": " + strerror(errno));
    if (S_ISREG(status.st_mode) && status.st_size == 0)
        throw Error(path.string() + ": the file is empty");
    xls_error_t error = LIBXLS_OK;
    Book book(xls_open_file(path.c_str(), "UTF-8", &error));
    if (!book)
        throw Error(path.string() + ": no readable workbook: " + xls_getError(error));
    return book;
}

Verdict verdictOf(const std::string& word, const std::string& place) {
    for (int i = 0; i < static_cast<int>(Verdict::Missing); i++) {
        if (word == words[i])
            return static_cast<Verdict>(i);
    }
    if (word.empty())
        throw Error(place + " has no result");
    throw Error(place + " has the result \"" + word + "\", which is none of a report's");
}

Module readReportSheet(const fs::path& path, const Sheet& sheet) {
    static const char* const headings[] = {"ID", "Case", "Test", "Result"};
    Module module;
    module.name = sheet.name();
    for (unsigned column = 0; column < 4; column++) {
        if (sheet.text(0, column) != headings[column])
            throw Error(path.string() + ": no report: sheet \"" + sheet.name() +
                        "\" has not the headings ID, Case, Test, Result");
    }
    for (unsigned r = 1; r <= sheet.lastRow(); r++) {
        std::string place =
            path.string() + ": sheet \"" + sheet.name() + "\", row " + std::to_string(r + 1);
        Row row;
        row.id = r;
        row.name = sheet.text(r, 1);
        std::string mark = sheet.text(r, 2);
        std::string result = sheet.text(r, 3);
        // A run of one module at the console leaves out rows that do not match their case.
        if (row.name.empty() && mark.empty() && result.empty() && sheet.text(r, 0).empty())
            continue;
        if (row.name.empty())
            throw Error(place + " has no case");
        row.marked = mark[0] == 'Y';
        row.verdict = verdictOf(result, place);
        module.rows.push_back(row);
    }
    return module;
}

Module readChecklistSheet(const Sheet& sheet) {
    Module module;
    module.name = sheet.name();
    bool ended = false;
    for (unsigned r = 1; r <= sheet.lastRow(); r++) {
        Row row;
        row.id = r;
        row.name = sheet.text(r, 1);
        row.marked = sheet.text(r, 4)[0] == 'Y';
        row.description = sheet.text(r, 2);
        ended = ended || row.name.empty();
        if (ended)
            row.reason = "below a row without a name the program reads nothing";
        else if (r == sheet.lastRow())
            row.reason = "the program never reads a sheet's last row";
        if (row.reason.empty() || (row.marked && !row.name.empty()))
            module.rows.push_back(row);
    }
    return module;
}

/** Brings what the checklist has beyond the report into the run's modules, in checklist order. */
void addMissing(std::vector<Module> planned, Run* run) {
    std::map<std::string, Module*> reported;
    for (Module& module : run->modules)
        reported[module.name] = &module;
    std::vector<Module> all;
    for (Module& plan : planned) {
        auto found = reported.find(plan.name);
        if (found == reported.end()) {
            plan.absence = "the report has no sheet of this module";
            all.push_back(std::move(plan));
            continue;
        }
        std::map<unsigned, Row*> rows;
        for (Row& row : found->second->rows)
            rows[row.id] = &row;
        for (Row& row : plan.rows) {
            auto there = rows.find(row.id);
            if (there == rows.end())
                continue;
            if (there->second->name != row.name)
                run->notes.push_back("The checklist has " + plan.name + " row " +
                                     std::to_string(row.id) + " as " + row.name +
                                     ", the report as " + there->second->name +
                                     ": they are not of one run.");
            there->second->description = std::move(row.description);
            row = std::move(*there->second);
            rows.erase(there);
        }
        // Rows that only the report has.
        for (auto& left : rows)
            plan.rows.push_back(std::move(*left.second));
        all.push_back(std::move(plan));
        reported.erase(found);
    }
    for (Module& module : run->modules) {
        if (reported.count(module.name) != 0)
            all.push_back(std::move(module));
    }
    run->modules = std::move(all);
}

/** Durations recorded earlier, for the rows whose log tells none. */
void addDurations(const Durations& durations, Run* run) {
    for (Module& module : run->modules) {
        for (Row& row : module.rows) {
            auto found = durations.find(module.name + "/" + row.name);
            bool ran = row.verdict == Verdict::Pass || row.verdict == Verdict::Fail;
            if (ran && row.durationMs < 0 && found != durations.end())
                row.durationMs = found->second;
        }
    }
}

/** The reason that follows from the report and the checklist alone. */
std::string plainReason(const Run& run, const Module& module, const Row& row) {
    switch (row.verdict) {
        case Verdict::NotApplicable:
            if (!row.marked)
                return "not marked in the checklist";
            return run.hasLog ? "the log does not have this row" : "not applicable, or not run";
        case Verdict::Block:
            return "was running when the report was written last";
        case Verdict::NoMatch:
            return "the case at this place of the module has another name";
        case Verdict::Manual:
            return "needs an operator";
        case Verdict::Missing:
            return !module.absence.empty() ? module.absence : "the run did not come to this row";
        case Verdict::Pass:
        case Verdict::Fail:
            break;
    }
    return "";
}

}  // namespace

const char* verdictWord(Verdict verdict) {
    return words[static_cast<int>(verdict)];
}

bool Row::bad() const {
    switch (verdict) {
        case Verdict::Fail:
        case Verdict::Block:
        case Verdict::NoMatch:
            return true;
        case Verdict::NotApplicable:
            return tookDeviceDown || lostFailure;
        case Verdict::Missing:
            return marked;
        case Verdict::Pass:
        case Verdict::Manual:
            break;
    }
    return false;
}

unsigned Run::count(Verdict verdict) const {
    unsigned count = 0;
    for (const Module& module : modules) {
        for (const Row& row : module.rows)
            count += row.verdict == verdict;
    }
    return count;
}

unsigned Run::rowCount() const {
    unsigned count = 0;
    for (const Module& module : modules)
        count += static_cast<unsigned>(module.rows.size());
    return count;
}

bool Run::complete() const {
    return count(Verdict::Block) == 0 && count(Verdict::Missing) == 0;
}

std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file || fs::is_directory(path))
        throw Error(path.string() + ": " + (file ? "is a folder" : strerror(errno)));
    std::string text;
    char buffer[65536];
    while (file.read(buffer, sizeof buffer) || file.gcount() > 0)
        text.append(buffer, static_cast<size_t>(file.gcount()));
    if (file.bad())
        throw Error(path.string() + ": " + strerror(errno));
    return text;
}

std::vector<Module> readReport(const fs::path& path) {
    Book book = openBook(path);
    std::vector<Module> modules;
    size_t rows = 0;
    for (uint32_t i = 0; i < book->sheets.count; i++) {
        modules.push_back(readReportSheet(path, Sheet(path, book.get(), i)));
        rows += modules.back().rows.size();
        for (size_t earlier = 0; earlier + 1 < modules.size(); earlier++) {
            if (modules[earlier].name == modules.back().name)
                throw Error(path.string() + ": two sheets \"" + modules.back().name + "\"");
        }
    }
    if (rows == 0)
        throw Error(path.string() + ": the report has no row");
    return modules;
}

Checklist readChecklist(const fs::path& path) {
    Book book = openBook(path);
    Checklist checklist;
    for (uint32_t i = 0; i < book->sheets.count; i++) {
        Sheet sheet(path, book.get(), i);
        if (i == 0) {
            for (unsigned r = 0; r <= sheet.lastRow(); r++)
                checklist.cover.push_back(sheet.text(r, 0));
            if (sheet.text(0, 1) == "Case" && sheet.text(0, 3) == "Result")
                throw Error(path.string() + ": a report, not a checklist");
        } else {
            checklist.modules.push_back(readChecklistSheet(sheet));
        }
    }
    if (checklist.modules.empty())
        throw Error(path.string() + ": no checklist: there is no sheet behind the cover");
    return checklist;
}

Inputs inputsOf(const fs::path& path) {
    Inputs inputs;
    std::error_code error;
    if (!fs::is_directory(path, error)) {
        inputs.report = path;
        return inputs;
    }
    inputs.report = path / "report.xls";
    if (!fs::exists(inputs.report))
        throw Error(path.string() + ": there is no report.xls in this folder");
    auto take = [&](const char* name, fs::path* place) {
        if (fs::exists(path / name))
            *place = path / name;
    };
    take("checklist.xls", &inputs.checklist);
    take("console.log", &inputs.log);
    take(".bench/durations", &inputs.durations);
    return inputs;
}

Run readRun(const Inputs& inputs) {
    Run run;
    fs::path folder = fs::absolute(inputs.report).lexically_normal().parent_path();
    bool usual = inputs.report.filename() == "report.xls";
    run.name = usual ? folder.filename().string() : inputs.report.filename().string();
    run.modules = readReport(inputs.report);
    struct stat status {};
    if (stat(inputs.report.c_str(), &status) == 0)
        run.writtenAt = status.st_mtime;
    if (!inputs.checklist.empty()) {
        addMissing(readChecklist(inputs.checklist).modules, &run);
        run.hasChecklist = true;
    }
    if (!inputs.log.empty()) {
        run.log = readFile(inputs.log);
        run.hasLog = true;
        takeConsoleLog(&run);
    }
    if (!inputs.durations.empty()) {
        try {
            addDurations(readDurations(inputs.durations), &run);
        } catch (const std::runtime_error& error) {
            throw Error(error.what());
        }
    }
    for (Module& module : run.modules) {
        for (Row& row : module.rows) {
            if (row.reason.empty())
                row.reason = plainReason(run, module, row);
        }
    }
    return run;
}

}  // namespace report

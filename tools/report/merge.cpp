#include "tools/report/merge.h"

#include <algorithm>
#include <map>
#include <memory>

#include "framework/workbook/xlslib.h"
#include "tools/report/run_data.h"
#include "tools/report/shards.h"

namespace fs = std::filesystem;

namespace report {

namespace {

struct Part {
    ShardMark mark;
    fs::path checklistPath;
    fs::path reportPath;
    std::vector<Module> checklist;
    std::vector<Module> report;
};

const Module* moduleOf(const std::vector<Module>& modules, const std::string& name) {
    for (const Module& module : modules) {
        if (module.name == name)
            return &module;
    }
    return nullptr;
}

const Row* rowOf(const Module& module, unsigned id) {
    for (const Row& row : module.rows) {
        if (row.id == id)
            return &row;
    }
    return nullptr;
}

Part readPart(const Shard& shard) {
    Part part;
    part.checklistPath = shard.checklist;
    part.reportPath = shard.report;
    Checklist checklist = readChecklist(shard.checklist);
    bool marked =
        std::any_of(checklist.cover.begin(), checklist.cover.end(),
                    [&](const std::string& text) { return readShardMark(text, &part.mark); });
    if (!marked)
        throw Error(shard.checklist.string() +
                    ": no part of a split checklist: its cover has no line \"Shard I of N ...\"");
    part.checklist = std::move(checklist.modules);
    part.report = readReport(shard.report);
    return part;
}

/** Refuses a report that stops short of its checklist's end, or that is of another checklist. */
void checkFinished(const Part& part) {
    std::string place = part.reportPath.string() + ": ";
    for (const Module& module : part.report) {
        const Module* plan = moduleOf(part.checklist, module.name);
        if (plan == nullptr)
            throw Error(place + "module " + module.name + " is not in " +
                        part.checklistPath.string());
        for (const Row& row : module.rows) {
            std::string which = module.name + " row " + std::to_string(row.id);
            const Row* planned = rowOf(*plan, row.id);
            if (planned == nullptr || planned->name != row.name || planned->marked != row.marked)
                throw Error(place + which + " is not the one of " + part.checklistPath.string());
            if (row.verdict == Verdict::Block)
                throw Error(place + "shard " + std::to_string(part.mark.index) +
                            " is unfinished: " + which + " is \"Block\"");
        }
    }
    const Module& last = part.checklist.back();
    const Module* reached = moduleOf(part.report, last.name);
    if (reached == nullptr || reached->rows.empty() || last.rows.empty() ||
        reached->rows.back().id != last.rows.back().id)
        throw Error(place + "shard " + std::to_string(part.mark.index) +
                    " is unfinished: its checklist ends with " + last.name + " row " +
                    std::to_string(last.rows.size()));
}

/** Sorts the parts by their number; refuses missing, double and foreign ones. */
void checkParts(std::vector<Part>* parts) {
    std::sort(parts->begin(), parts->end(),
              [](const Part& a, const Part& b) { return a.mark.index < b.mark.index; });
    const ShardMark& first = parts->front().mark;
    std::map<unsigned, const Part*> there;
    for (const Part& part : *parts) {
        if (part.mark.cut != first.cut || part.mark.count != first.count)
            throw Error(part.checklistPath.string() + ": \"" + textOf(part.mark) +
                        "\" does not go with \"" + textOf(first) + "\" of " +
                        parts->front().checklistPath.string());
        const Part*& place = there[part.mark.index];
        if (place != nullptr)
            throw Error(part.checklistPath.string() + ": shard " + std::to_string(part.mark.index) +
                        " is there twice, also in " + place->checklistPath.string());
        place = &part;
    }
    std::string missing;
    for (unsigned i = 1; i <= first.count; i++) {
        if (there.count(i) == 0)
            missing += (missing.empty() ? "" : ", ") + std::to_string(i);
    }
    if (!missing.empty())
        throw Error("missing of " + std::to_string(first.count) + " shards: " + missing);
}

/** The row as the whole run reports it: that of the shard in whose checklist it is marked. */
const Row* chosenRow(const std::vector<Part>& parts, const std::string& module, unsigned id) {
    const Row* chosen = nullptr;
    for (const Part& part : parts) {
        const Module* plan = moduleOf(part.checklist, module);
        const Row* planned = plan != nullptr ? rowOf(*plan, id) : nullptr;
        if (planned == nullptr)
            continue;
        const Module* reported = moduleOf(part.report, module);
        const Row* row = reported != nullptr ? rowOf(*reported, id) : nullptr;
        std::string which = module + " row " + std::to_string(id) + ", " + planned->name;
        if (row == nullptr && planned->marked)
            throw Error(part.reportPath.string() + ": shard " + std::to_string(part.mark.index) +
                        " has no verdict for " + which);
        if (row == nullptr)
            continue;
        if (chosen != nullptr && chosen->name != row->name)
            throw Error(part.reportPath.string() + ": another shard has another case for " + which);
        if (chosen != nullptr && chosen->marked && row->marked)
            throw Error(part.reportPath.string() + ": another shard ran as well " + which);
        if (chosen == nullptr || row->marked)
            chosen = row;
    }
    return chosen;
}

std::vector<Module> join(const std::vector<Part>& parts) {
    std::vector<Module> whole;
    for (const Part& part : parts) {
        for (const Module& plan : part.checklist) {
            bool reported = std::any_of(parts.begin(), parts.end(), [&](const Part& one) {
                return moduleOf(one.report, plan.name) != nullptr;
            });
            // A module whose set-up fails has no sheet in the report of a whole run either.
            if (!reported || moduleOf(whole, plan.name) != nullptr)
                continue;
            Module module;
            module.name = plan.name;
            for (const Row& row : plan.rows) {
                const Row* chosen = chosenRow(parts, plan.name, row.id);
                if (chosen != nullptr)
                    module.rows.push_back(*chosen);
            }
            whole.push_back(std::move(module));
        }
    }
    return whole;
}

struct DeleteBook {
    void operator()(workbook* book) const {
        xlsDeleteWorkbook(book);
    }
};

void writeReport(const std::vector<Module>& modules, const fs::path& out) {
    static const char* const headings[] = {"ID", "Case", "Test", "Result"};
    std::unique_ptr<workbook, DeleteBook> book(xlsNewWorkbook());
    bool good = book != nullptr;
    for (const Module& module : modules) {
        worksheet* sheet = good ? xlsWorkbookSheet(book.get(), module.name.c_str()) : nullptr;
        good = sheet != nullptr;
        for (unsigned column = 0; good && column < 4; column++)
            good = xlsWorksheetLabel(sheet, 0, column, headings[column], nullptr) != nullptr;
        for (const Row& row : module.rows) {
            good = good &&
                   xlsWorksheetNumberInt(sheet, row.id, 0, static_cast<int>(row.id), nullptr) &&
                   xlsWorksheetLabel(sheet, row.id, 1, row.name.c_str(), nullptr) &&
                   xlsWorksheetLabel(sheet, row.id, 2, row.marked ? "Y" : "N", nullptr) &&
                   xlsWorksheetLabel(sheet, row.id, 3, verdictWord(row.verdict), nullptr);
        }
    }
    if (!good || xlsWorkbookDump(book.get(), out.c_str()) != 0)
        throw Error(out.string() + ": cannot be written");
}

}  // namespace

Shard shardOf(const fs::path& folder) {
    Shard shard{folder / "report.xls", folder / "checklist.xls"};
    for (const fs::path& path : {shard.report, shard.checklist}) {
        if (!fs::exists(path))
            throw Error(folder.string() + ": there is no " + path.filename().string() +
                        " in this folder");
    }
    return shard;
}

unsigned mergeReports(const std::vector<Shard>& shards, const fs::path& out) {
    std::vector<Part> parts;
    for (const Shard& shard : shards)
        parts.push_back(readPart(shard));
    checkParts(&parts);
    for (const Part& part : parts)
        checkFinished(part);
    std::vector<Module> whole = join(parts);
    writeReport(whole, out);
    unsigned rows = 0;
    for (const Module& module : whole)
        rows += static_cast<unsigned>(module.rows.size());
    return rows;
}

}  // namespace report

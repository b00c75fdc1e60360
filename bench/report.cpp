// What a save of the report costs, with 100, 1000 and 4200 finished rows, with and without the sync
// of each save: a run saves twice a row. For comparison, as many bytes are written and renamed
// without any encoding. The file lies in the working directory: its medium is measured.
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "bench/world.h"
#include "framework/workbook/xlslib.h"

namespace {

constexpr unsigned moduleCount = 46;
const char path[] = "report_benchmark.xls";
const char temporary[] = "report_benchmark.xls.tmp";

void writeRow(worksheet* sheet, unsigned row, unsigned number, const char* verdict) {
    const std::string name = "TC_Module_Function_Variant_" + std::to_string(number);
    xlsWorksheetNumberInt(sheet, row, 0, static_cast<int>(row), nullptr);
    xlsWorksheetLabel(sheet, row, 1, name.c_str(), nullptr);
    xlsWorksheetLabel(sheet, row, 2, "Y", nullptr);
    xlsWorksheetLabel(sheet, row, 3, verdict, nullptr);
}

/** A report of so many rows on the sheets of all modules; answers the last sheet. */
worksheet* fill(workbook* book, unsigned rows) {
    worksheet* sheet = nullptr;
    unsigned perSheet = rows / moduleCount + 1;
    for (unsigned i = 0; i < rows; i++) {
        if (i % perSheet == 0)
            sheet = xlsWorkbookSheet(book, ("Module-" + std::to_string(i / perSheet)).c_str());
        writeRow(sheet, i % perSheet + 1, i, "Pass");
    }
    return sheet;
}

size_t fileSize() {
    struct stat status = {};
    return stat(path, &status) == 0 ? static_cast<size_t>(status.st_size) : 0;
}

void save(benchmark::State& state, const char* sync) {
    setenv("ZK_REPORT_SYNC", sync, 1);
    unsigned rows = static_cast<unsigned>(state.range(0));
    workbook* book = xlsNewWorkbook();
    worksheet* last = fill(book, rows);
    bool block = false;
    for (auto _ : state) {
        block = !block;
        writeRow(last, rows + 1, rows, block ? "Block" : "Pass");
        if (xlsWorkbookDump(book, path) != 0)
            state.SkipWithError("the report cannot be saved here");
    }
    state.SetBytesProcessed(static_cast<int64_t>(fileSize()) * state.iterations());
    xlsDeleteWorkbook(book);
    unlink(path);
}

void ReportSave(benchmark::State& state) {
    save(state, "0");
}

void ReportSaveSynced(benchmark::State& state) {
    save(state, "1");
}

/** What writing and renaming as many bytes costs at the least. */
void ReportBareWrite(benchmark::State& state) {
    workbook* book = xlsNewWorkbook();
    fill(book, static_cast<unsigned>(state.range(0)));
    setenv("ZK_REPORT_SYNC", "0", 1);
    xlsWorkbookDump(book, path);
    xlsDeleteWorkbook(book);
    const std::string content(fileSize(), 'x');
    for (auto _ : state) {
        int fd = open(temporary, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd < 0 ||
            write(fd, content.data(), content.size()) != static_cast<ssize_t>(content.size()) ||
            close(fd) != 0 || rename(temporary, path) != 0)
            state.SkipWithError("no file can be written here");
    }
    state.SetBytesProcessed(static_cast<int64_t>(content.size()) * state.iterations());
    unlink(path);
}

void sizes(Benchmark* benchmark) {
    benchmark->Arg(100)->Arg(1000)->Arg(4200)->ArgName("rows")->UseRealTime()->Unit(
        benchmark::kMicrosecond);
}

const bool registered = measureIn(REAL_TIME, "ReportSave", ReportSave, sizes) &&
                        measureIn(REAL_TIME, "ReportBareWrite", ReportBareWrite, sizes) &&
                        measureIn(REAL_TIME, "ReportSaveSynced", ReportSaveSynced, sizes);

}  // namespace

// How long a save of the report takes, with 100, 1000 and 4200 finished rows, with and without the
// sync of each save. A round is what a run does for one row: it writes the row as "Block" and
// saves, then with its verdict and saves. For comparison, the same number of bytes is written and
// renamed without any encoding. Medians.
//
//   report_bench [FOLDER]     the medium of FOLDER is measured, by default that of this folder
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "framework/workbook/xlslib.h"

namespace {

const unsigned kModules = 46;

double nowMs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

double median(std::vector<double>* times) {
    std::sort(times->begin(), times->end());
    return (*times)[times->size() / 2];
}

void writeRow(worksheet* sheet, unsigned row, unsigned number, const char* verdict) {
    const std::string name = "TC_Module_Function_Variant_" + std::to_string(number);
    xlsWorksheetNumberInt(sheet, row, 0, static_cast<int>(row), nullptr);
    xlsWorksheetLabel(sheet, row, 1, name.c_str(), nullptr);
    xlsWorksheetLabel(sheet, row, 2, "Y", nullptr);
    xlsWorksheetLabel(sheet, row, 3, verdict, nullptr);
}

/** Fills a report up to `rows` rows and goes on for `rounds` more; the median of those saves. */
double medianSaveMs(const std::string& path, unsigned rows, unsigned rounds) {
    workbook* book = xlsNewWorkbook();
    worksheet* sheet = nullptr;
    unsigned perSheet = rows / kModules + 1;
    std::vector<double> times;
    for (unsigned i = 0; i < rows + rounds; i++) {
        if (i % perSheet == 0 && i < rows)
            sheet = xlsWorkbookSheet(book, ("Module-" + std::to_string(i / perSheet)).c_str());
        unsigned row = i < rows ? i % perSheet + 1 : perSheet + i - rows + 1;
        writeRow(sheet, row, i, "Block");
        for (const char* verdict : {"Block", "Pass"}) {
            writeRow(sheet, row, i, verdict);
            if (i < rows)
                continue;
            double start = nowMs();
            if (xlsWorkbookDump(book, path.c_str()) != 0) {
                perror(path.c_str());
                exit(1);
            }
            times.push_back(nowMs() - start);
        }
    }
    xlsDeleteWorkbook(book);
    return median(&times);
}

/** What writing and renaming as many bytes takes at the least. */
double medianWriteMs(const std::string& path, size_t size, unsigned rounds) {
    const std::string content(size, 'x');
    const std::string temporary = path + ".tmp";
    std::vector<double> times;
    for (unsigned i = 0; i < rounds; i++) {
        double start = nowMs();
        int fd = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (fd < 0 || write(fd, content.data(), size) != static_cast<ssize_t>(size) ||
            close(fd) != 0 || rename(temporary.c_str(), path.c_str()) != 0) {
            perror(temporary.c_str());
            exit(1);
        }
        times.push_back(nowMs() - start);
    }
    return median(&times);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string path = std::string(argc > 1 ? argv[1] : ".") + "/report_bench_" +
                             std::to_string(getpid()) + ".xls";
    printf("rows   bytes    save    bare write  ratio   with sync  ratio\n");
    double first = 0;
    double last = 0;
    for (unsigned rows : {100u, 1000u, 4200u}) {
        setenv("ZK_REPORT_SYNC", "0", 1);
        double plain = medianSaveMs(path, rows, 200);
        struct stat status {};
        stat(path.c_str(), &status);
        double bare = medianWriteMs(path, static_cast<size_t>(status.st_size), 200);
        setenv("ZK_REPORT_SYNC", "1", 1);
        double synced = medianSaveMs(path, rows, 25);
        printf("%4u  %6lld  %6.3f ms  %6.3f ms  %5.2f  %8.3f ms  %5.1f\n", rows,
               static_cast<long long>(status.st_size), plain, bare, plain / bare, synced,
               synced / plain);
        first = rows == 100 ? plain : first;
        last = plain;
    }
    printf("a save at 4200 rows costs %.1f times one at 100 rows\n", last / first);
    unlink(path.c_str());
    return 0;
}

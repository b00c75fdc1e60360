// Fails the n-th allocation of writing, saving, opening and reading a workbook, for every n until
// all of it succeeds: each failure must end in a result that says so, and in no crash.
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <string>

#include "framework/workbook/xls.h"
#include "framework/workbook/xlslib.h"

// The C library's own functions, behind the ones that take their place here.
extern "C" void* __libc_malloc(size_t size);
extern "C" void* __libc_calloc(size_t count, size_t size);
extern "C" void* __libc_realloc(void* old, size_t size);

static long allocationsLeft = -1;  // before one fails; negative: none does
static long failures;

static bool failNow() {
    if (allocationsLeft > 0) {
        allocationsLeft--;
        return false;
    }
    failures += allocationsLeft == 0 ? 1 : 0;
    bool fail = allocationsLeft == 0;
    allocationsLeft = -1;  // a single one: what comes after it must go on as ever
    return fail;
}

extern "C" void* malloc(size_t size) noexcept {
    return failNow() ? nullptr : __libc_malloc(size);
}

extern "C" void* calloc(size_t count, size_t size) noexcept {
    return failNow() ? nullptr : __libc_calloc(count, size);
}

extern "C" void* realloc(void* old, size_t size) noexcept {
    return failNow() ? nullptr : __libc_realloc(old, size);
}

static char nameOfCase[64];

static const char* caseName(unsigned row) {
    snprintf(nameOfCase, sizeof nameOfCase, "TC_GPIO_Case_with_some_length_%u", row);
    return nameOfCase;
}

static bool writeBook(workbook* book, const char* path) {
    bool ok = true;
    for (const char* name : {"Cover", "GPIO"}) {
        worksheet* sheet = xlsWorkbookSheet(book, name);
        for (unsigned row = 0; row < 300 && sheet != nullptr; row++) {
            ok = xlsWorksheetNumberInt(sheet, row, 0, static_cast<int>(row), nullptr) != nullptr &&
                 ok;
            ok = xlsWorksheetLabel(sheet, row, 1, caseName(row), nullptr) != nullptr && ok;
        }
        ok = ok && sheet != nullptr;
    }
    return xlsWorkbookDump(book, path) == 0 && ok;
}

static bool readBook(const char* path) {
    xls_error_t error = LIBXLS_OK;
    xlsWorkBook* book = xls_open_file(path, "UTF-8", &error);
    if (book == nullptr) {
        return false;
    }
    bool ok = true;
    for (uint32_t i = 0; i < book->sheets.count; i++) {
        xlsWorkSheet* sheet = xls_getWorkSheet(book, static_cast<int>(i));
        ok = xls_parseWorkSheet(sheet) == LIBXLS_OK && ok;
        for (uint16_t row = 0; row < 300 && ok; row++) {
            const xlsCell* cell = xls_cell(sheet, row, 1);
            ok = cell != nullptr && cell->str != nullptr && strcmp(cell->str, caseName(row)) == 0;
        }
        xls_close_WS(sheet);
    }
    xls_close_WB(book);
    return ok;
}

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    const std::string whole = std::string(argv[1]) + "/whole.xls";
    const std::string damaged = std::string(argv[1]) + "/damaged.xls";
    workbook* book = xlsNewWorkbook();
    if (!writeBook(book, whole.c_str()) || !readBook(whole.c_str())) {
        printf("not even with memory\n");
        return 1;
    }
    xlsDeleteWorkbook(book);

    long n = 0;
    for (bool failed = true; failed; n++) {
        long before = failures;
        allocationsLeft = n;
        workbook* tried = xlsNewWorkbook();
        bool ok = tried != nullptr && writeBook(tried, damaged.c_str());
        xlsDeleteWorkbook(tried);
        ok = readBook(whole.c_str()) && ok;
        allocationsLeft = -1;
        failed = failures != before;
        if (ok == failed) {
            printf("allocation %ld: %s\n", n,
                   failed ? "failed unnoticed" : "an error without cause");
            return 1;
        }
        // What a save without memory left must be whole all the same, if it is there.
        if (access(damaged.c_str(), F_OK) == 0) {
            xls_error_t error = LIBXLS_OK;
            xlsWorkBook* saved = xls_open_file(damaged.c_str(), "UTF-8", &error);
            if (saved == nullptr) {
                printf("allocation %ld: %s\n", n, xls_getError(error));
                return 1;
            }
            xls_close_WB(saved);
        }
    }
    printf("%ld allocations\n", n - 1);
    return n > 20 ? 0 : 1;
}

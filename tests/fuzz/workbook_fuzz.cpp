// Fuzz target of the workbook reader. A first byte that is odd stands for a whole compound file
// around the rest, which brings changes to the records themselves past the container's checks.
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>

#include "framework/workbook/cfb.h"
#include "framework/workbook/xls.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

static size_t readText(const xlsCell* cell) {
    return cell != nullptr && cell->str != nullptr ? strlen(cell->str) : 0;
}

static void readBook(const uint8_t* data, size_t size) {
    size_t length = 0;
    xls_error_t error = LIBXLS_OK;
    xlsWorkBook* book = xls_open_buffer(data, size, "UTF-8", &error);
    if ((book != nullptr) != (error == LIBXLS_OK)) {
        abort();
    }
    for (uint32_t i = 0; book != nullptr && i < book->sheets.count; i++) {
        length += strlen(book->sheets.sheet[i].name);
        xlsWorkSheet* sheet = xls_getWorkSheet(book, static_cast<int>(i));
        error = xls_parseWorkSheet(sheet);
        if (error != LIBXLS_OK && (sheet->rows.lastrow != 0 || sheet->rows.lastcol != 0)) {
            abort();
        }
        unsigned rows = std::min<unsigned>(sheet->rows.lastrow, 300);
        unsigned cols = std::min<unsigned>(sheet->rows.lastcol, 20);
        for (unsigned row = 0; row <= rows; row++) {
            for (unsigned col = 0; col <= cols; col++) {
                length += readText(
                    xls_cell(sheet, static_cast<uint16_t>(row), static_cast<uint16_t>(col)));
            }
        }
        length += readText(xls_cell(sheet, sheet->rows.lastrow, sheet->rows.lastcol));
        xls_close_WS(sheet);
    }
    xls_close_WB(book);
    volatile size_t sink = length;
    (void)sink;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) {
        return 0;
    }
    if ((data[0] & 1) == 0) {
        readBook(data + 1, size - 1);
        return 0;
    }
    ByteBuffer file = {};
    uint8_t* stream = cfbBeginFile(&file, size - 1);
    if (stream != nullptr) {
        memcpy(stream, data + 1, size - 1);
        cfbEndFile(&file, size - 1, "Workbook");
        readBook(file.data, file.size);
    }
    bufferFree(&file);
    return 0;
}

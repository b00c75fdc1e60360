// The workbook libraries as a program, for tests that compare them with other readers and writers.
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <string>

#include "framework/workbook/biff.h"
#include "framework/workbook/cfb.h"
#include "framework/workbook/text.h"
#include "framework/workbook/xls.h"
#include "framework/workbook/xlslib.h"
#include "tools/common/options.h"

static std::string escaped(const char* text) {
    std::string out;
    for (; *text != '\0'; text++) {
        switch (*text) {
            case '\\':
                out += "\\\\";
                break;
            case '\t':
                out += "\\t";
                break;
            case '\n':
                out += "\\n";
                break;
            default:
                out += *text;
                break;
        }
    }
    return out;
}

static int dump(const char* path) {
    xls_error_t error = LIBXLS_OK;
    xlsWorkBook* book = xls_open_file(path, "UTF-8", &error);
    if (book == nullptr) {
        printf("error\t%s\n", xls_getError(error));
        return 1;
    }
    for (uint32_t i = 0; i < book->sheets.count; i++) {
        xlsWorkSheet* sheet = xls_getWorkSheet(book, static_cast<int>(i));
        error = xls_parseWorkSheet(sheet);
        printf("sheet\t%s\t%d\t%s\n", escaped(book->sheets.sheet[i].name).c_str(),
               sheet->rows.lastrow, xls_getError(error));
        for (unsigned row = 0; row <= sheet->rows.lastrow; row++) {
            for (unsigned col = 0; col <= sheet->rows.lastcol; col++) {
                const xlsCell* cell =
                    xls_cell(sheet, static_cast<uint16_t>(row), static_cast<uint16_t>(col));
                if (cell->str != nullptr) {
                    printf("cell\t%u\t%u\t%s\n", row, col, escaped(cell->str).c_str());
                }
            }
        }
        xls_close_WS(sheet);
    }
    xls_close_WB(book);
    return 0;
}

static void writeRow(worksheet* sheet, unsigned row, const char* verdict) {
    const std::string name = "TC_Module_Function_with_a_long_name_" + std::to_string(row);
    xlsWorksheetNumberInt(sheet, row, 0, static_cast<int>(row), nullptr);
    xlsWorksheetLabel(sheet, row, 1, name.c_str(), nullptr);
    xlsWorksheetLabel(sheet, row, 2, "Y", nullptr);
    xlsWorksheetLabel(sheet, row, 3, verdict, nullptr);
}

static worksheet* addSheet(workbook* book, unsigned number) {
    static const char* const headings[] = {"ID", "Case", "Test", "Result"};
    worksheet* sheet = xlsWorkbookSheet(book, ("Module-" + std::to_string(number)).c_str());
    for (unsigned col = 0; col < 4; col++) {
        xlsWorksheetLabel(sheet, 0, col, headings[col], nullptr);
    }
    return sheet;
}

static int write(const char* path, unsigned sheets, unsigned rows) {
    workbook* book = xlsNewWorkbook();
    for (unsigned i = 0; i < sheets; i++) {
        worksheet* sheet = addSheet(book, i + 1);
        unsigned count = rows / sheets + (i < rows % sheets ? 1 : 0);
        for (unsigned row = 1; row <= count; row++) {
            writeRow(sheet, row, row % 3 == 0 ? "Fail" : "Pass");
        }
    }
    int result = xlsWorkbookDump(book, path);
    xlsDeleteWorkbook(book);
    return result;
}

static int writeStrings(const char* path, size_t length) {
    const std::string chinese = "\xE4\xB8\xAD\xE6\x96\x87";
    const std::string texts[] = {std::string(length, 'a'),
                                 "bc",
                                 chinese,
                                 "d\xC3\xA9j\xC3\xA0 vu",
                                 std::string(20000, 'e') + chinese,
                                 "\xF0\x9F\x98\x80",
                                 "bad\xFF"
                                 "bytes"};
    workbook* book = xlsNewWorkbook();
    worksheet* sheet = xlsWorkbookSheet(book, chinese.c_str());
    unsigned row = 0;
    for (const std::string& text : texts) {
        xlsWorksheetLabel(sheet, row++, 0, text.c_str(), nullptr);
    }
    for (int value : {0, -1, 536870911, 536870912, -2147483647 - 1}) {
        xlsWorksheetNumberInt(sheet, row++, 1, value, nullptr);
    }
    int result = xlsWorkbookDump(book, path);
    xlsDeleteWorkbook(book);
    return result;
}

static void putRecord(std::string* stream, unsigned id, const std::string& content) {
    for (unsigned half : {id, static_cast<unsigned>(content.size())}) {
        *stream += {static_cast<char>(half), static_cast<char>(half >> 8)};
    }
    *stream += content;
}

static std::string fourBytes(uint32_t value) {
    uint8_t bytes[4];
    putLe32(bytes, value);
    return {bytes, bytes + 4};
}

// More sheets than the writer makes, each with its own number in its first cell.
static std::string sheetsStream(uint32_t count) {
    const std::string sheetBof = {0, 6, kBiffWorksheet, 0};
    std::string one;
    putRecord(&one, BIFF_BOF, sheetBof);
    putRecord(&one, BIFF_RK, std::string(10, 0));
    putRecord(&one, BIFF_EOF, "");
    const std::string position = std::string(2, 0) + std::string({1, 0, 'n'});
    size_t entry = kBiffHeaderSize + 4 + position.size();
    size_t start = 2 * kBiffHeaderSize + 4 + count * entry;
    std::string stream;
    putRecord(&stream, BIFF_BOF, {0, 6, kBiffGlobals, 0});
    for (uint32_t i = 0; i < count; i++) {
        putRecord(&stream, BIFF_BOUNDSHEET,
                  fourBytes(static_cast<uint32_t>(start + i * one.size())) + position);
    }
    putRecord(&stream, BIFF_EOF, "");
    for (uint32_t i = 0; i < count; i++) {
        putRecord(&stream, BIFF_BOF, sheetBof);
        putRecord(&stream, BIFF_RK, std::string(6, 0) + fourBytes(i << 2 | 2));
        putRecord(&stream, BIFF_EOF, "");
    }
    return stream;
}

static int readManySheets(uint32_t count) {
    const std::string stream = sheetsStream(count);
    ByteBuffer file = {};
    memcpy(cfbBeginFile(&file, stream.size()), stream.data(), stream.size());
    cfbEndFile(&file, stream.size(), "Workbook");
    xlsWorkBook* book = xls_open_buffer(file.data, file.size, "UTF-8", nullptr);
    int result = book != nullptr && book->sheets.count == count ? 0 : 1;
    for (uint32_t i = 0; i < count && result == 0; i++) {
        xlsWorkSheet* sheet = xls_getWorkSheet(book, static_cast<int>(i));
        const xlsCell* cell =
            xls_parseWorkSheet(sheet) == LIBXLS_OK ? xls_cell(sheet, 0, 0) : nullptr;
        if (cell == nullptr || cell->str != std::to_string(i)) {
            fprintf(stderr, "sheet %u is not what was written\n", i);
            result = 1;
        }
        xls_close_WS(sheet);
    }
    xls_close_WB(book);
    bufferFree(&file);
    return result;
}

static int printCodePage(unsigned codePage) {
    StringArena texts = {};
    for (unsigned byte = 0x20; byte < 0x100; byte++) {
        const uint8_t bytes[] = {'x', static_cast<uint8_t>(byte)};
        puts(utf8FromCodePage(codePage, bytes, sizeof bytes, &texts));
    }
    arenaFree(&texts);
    return 0;
}

static int grow(const char* path) {
    workbook* book = xlsNewWorkbook();
    worksheet* sheet = nullptr;
    for (unsigned done = 0;; done++) {
        if (done % 500 == 0) {
            sheet = addSheet(book, done / 500 + 1);
        }
        for (const char* verdict : {"Block", "Pass"}) {
            writeRow(sheet, done % 500 + 1, verdict);
            if (xlsWorkbookDump(book, path) != 0) {
                return 1;
            }
        }
        printf("%u\n", done + 1);
        fflush(stdout);
    }
}

// Each seed as a compound file behind a byte 0, and its record stream alone behind a byte 1.
static int writeSeeds(const std::string& folder) {
    const char* name = "Workbook";
    for (int seed = 0; seed < 2; seed++) {
        const std::string path = folder + "/seed" + std::to_string(seed);
        int result = seed == 0 ? write(path.c_str(), 2, 6) : writeStrings(path.c_str(), 8220);
        ByteBuffer file = {};
        ByteBuffer stream = {};
        FILE* in = fopen(path.c_str(), "rb");
        if (result != 0 || in == nullptr || !bufferReserve(&file, 1 << 20)) {
            return 1;
        }
        file.size = fread(file.data, 1, file.capacity, in);
        fclose(in);
        FILE* whole = fopen(path.c_str(), "wb");
        FILE* records = fopen((path + "_records").c_str(), "wb");
        if (whole == nullptr || records == nullptr ||
            cfbReadStream(file.data, file.size, &name, 1, &stream) != CFB_OK) {
            return 1;
        }
        fputc(0, whole);
        fwrite(file.data, 1, file.size, whole);
        fputc(1, records);
        fwrite(stream.data, 1, stream.size, records);
        fclose(whole);
        fclose(records);
        bufferFree(&file);
        bufferFree(&stream);
    }
    return 0;
}

int main(int argc, char** argv) {
    std::string file;
    unsigned sheets = 0;
    unsigned rows = 0;
    unsigned number = 0;
    int result = 0;
    CLI::App app("Drives the workbook reader and writer for their tests.", "workbook_tool");
    app.require_subcommand(1);
    auto onFile = [&](const char* name, const char* what) {
        CLI::App* sub = app.add_subcommand(name, what);
        sub->add_option("FILE", file)->required();
        return sub;
    };
    auto needs = [](CLI::App* sub, const char* name, unsigned* value) {
        sub->add_option(name, *value)->required()->check(wholeNumber(1, UINT_MAX));
        return sub;
    };
    onFile("dump", "All sheets and cells of a workbook as text, tab-separated")->callback([&] {
        result = dump(file.c_str());
    });
    CLI::App* report = onFile("write", "A report of so many sheets, with so many rows in all");
    needs(needs(report, "SHEETS", &sheets), "ROWS", &rows)->callback([&] {
        result = write(file.c_str(), sheets, rows);
    });
    CLI::App* strings = onFile("strings", "Texts of all kinds around the end of a record");
    needs(strings, "LENGTH", &number)->callback([&] {
        result = writeStrings(file.c_str(), number);
    });
    needs(app.add_subcommand("sheets", "Read a workbook of so many sheets"), "COUNT", &number)
        ->callback([&] { result = readManySheets(number); });
    needs(app.add_subcommand("codepage", "Texts \"x\" and one byte, from 0x20 to 0xff"), "PAGE",
          &number)
        ->callback([&] { result = printCodePage(number); });
    onFile("seeds", "What the fuzz target starts from, into the folder FILE")->callback([&] {
        result = writeSeeds(file);
    });
    onFile("grow", "A report saved after every row; prints how many rows are surely in it")
        ->callback([&] { result = grow(file.c_str()); });
    int code = readOptions(&app, argc, argv);
    return code >= 0 ? code : result;
}

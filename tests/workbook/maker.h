// Makes workbooks record by record, as no writer at hand would: damaged, of old versions, with
// strings cut at any place. And reads a workbook as far as it goes, for comparison.
#pragma once

#include <stdint.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "framework/workbook/xls.h"

std::string le16(unsigned value);
std::string le32(uint32_t value);
std::string leDouble(double value);

// One record; `content` may have any length up to 65535.
std::string record(unsigned id, const std::string& content);

std::string bof(unsigned version, unsigned kind);
std::string eof();

// A string as BIFF8 has it, its length in `lengthBytes` bytes.
std::string narrow(const std::string& text, int lengthBytes);
std::string wide(const std::u16string& text, int lengthBytes);

// The first three fields of every cell.
std::string place(unsigned row, unsigned col);

// A stream of globals and the sheets' content (what is between their BOF and EOF). `globals` goes
// before the EOF of the globals. The names are put as the version has them.
struct SheetContent {
    std::string name;
    std::string records;
    int visibility;
};
std::string stream(unsigned version, const std::string& globals,
                   const std::vector<SheetContent>& sheets);

// Puts a stream into a compound file, padded to 4096 bytes or in the mini stream.
std::string compound(const std::string& content, const char* name);
std::string compoundMini(const std::string& content, const char* name);

struct ReadSheet {
    std::string name;
    int visibility;
    xls_error_t error;
    unsigned lastRow;
    std::map<std::pair<unsigned, unsigned>, std::string> texts;  // by row and column
};

struct ReadBook {
    xls_error_t error;
    std::vector<ReadSheet> sheets;
};

// Reads what the workbook gives: up to column 300, and of rows in the middle of long sheets up to
// column 4.
ReadBook readBytes(const std::string& bytes);
ReadBook readFile(const std::string& path);

std::string fileContent(const std::string& path);

// A folder of this test's own, and a path in it.
std::string temporaryPath(const std::string& name);

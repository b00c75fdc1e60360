// Makes workbooks record by record, and reads them whole.
#include "tests/workbook/maker.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <string.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "framework/workbook/biff.h"
#include "framework/workbook/cfb.h"

std::string le16(unsigned value) {
    return {static_cast<char>(value), static_cast<char>(value >> 8)};
}

std::string le32(uint32_t value) {
    return le16(value & 0xFFFF) + le16(value >> 16);
}

std::string leDouble(double value) {
    uint64_t bits = 0;
    memcpy(&bits, &value, sizeof bits);
    return le32(static_cast<uint32_t>(bits)) + le32(static_cast<uint32_t>(bits >> 32));
}

std::string record(unsigned id, const std::string& content) {
    return le16(id) + le16(static_cast<unsigned>(content.size())) + content;
}

std::string bof(unsigned version, unsigned kind) {
    return record(BIFF_BOF, le16(version) + le16(kind) + std::string(version == 0x500 ? 4 : 12, 0));
}

std::string eof() {
    return record(BIFF_EOF, "");
}

static std::string length(size_t count, int lengthBytes) {
    return le32(static_cast<uint32_t>(count)).substr(0, static_cast<size_t>(lengthBytes));
}

std::string narrow(const std::string& text, int lengthBytes) {
    return length(text.size(), lengthBytes) + std::string(1, 0) + text;
}

std::string wide(const std::u16string& text, int lengthBytes) {
    std::string bytes = length(text.size(), lengthBytes) + std::string(1, 1);
    for (char16_t unit : text) {
        bytes += le16(unit);
    }
    return bytes;
}

std::string place(unsigned row, unsigned col) {
    return le16(row) + le16(col) + le16(15);
}

std::string stream(unsigned version, const std::string& globals,
                   const std::vector<SheetContent>& sheets) {
    auto positions = [&](size_t at) {
        std::string list;
        for (const SheetContent& sheet : sheets) {
            std::string name =
                version == 0x500 ? std::string(1, static_cast<char>(sheet.name.size())) + sheet.name
                                 : narrow(sheet.name, 1);
            list +=
                record(BIFF_BOUNDSHEET, le32(static_cast<uint32_t>(at)) +
                                            std::string(1, static_cast<char>(sheet.visibility)) +
                                            std::string(1, 0) + name);
            at += bof(version, 0x10).size() + sheet.records.size() + eof().size();
        }
        return list;
    };
    size_t start = bof(version, 5).size() + globals.size() + positions(0).size() + eof().size();
    // The positions come before the shared strings in files, but their order does not matter.
    std::string bytes = bof(version, 5) + globals + positions(start) + eof();
    for (const SheetContent& sheet : sheets) {
        bytes += bof(version, 0x10) + sheet.records + eof();
    }
    return bytes;
}

std::string compound(const std::string& content, const char* name) {
    ByteBuffer file = {};
    uint8_t* place = cfbBeginFile(&file, content.size());
    memcpy(place, content.data(), content.size());
    cfbEndFile(&file, content.size(), name);
    std::string bytes(reinterpret_cast<char*>(file.data), file.size);
    bufferFree(&file);
    return bytes;
}

static std::string folderEntry(const std::string& name, int type, uint32_t child, uint32_t start,
                               size_t size) {
    std::string entry;
    for (char c : name) {
        entry += le16(static_cast<unsigned char>(c));
    }
    entry.resize(64);
    entry += le16(static_cast<unsigned>(2 * name.size() + 2)) +
             std::string(1, static_cast<char>(type)) + "\1";
    entry += le32(kCfbFree) + le32(kCfbFree) + le32(child) + std::string(36, 0);
    return entry + le32(start) + le32(static_cast<uint32_t>(size)) + le32(0);
}

// Sectors: 0 the FAT, 1 the folder, 2 the mini FAT, from 3 on the mini stream. The stream's mini
// sectors lie backwards, so that their chain is needed.
std::string compoundMini(const std::string& content, const char* name) {
    uint32_t minis = static_cast<uint32_t>((content.size() + 63) / 64);
    uint32_t sectors = (minis + 7) / 8;
    std::string fat = le32(kCfbFatSector) + le32(kCfbEndOfChain) + le32(kCfbEndOfChain);
    for (uint32_t i = 0; i < sectors; i++) {
        fat += le32(i + 1 == sectors ? kCfbEndOfChain : i + 4);
    }
    std::string miniFat;
    std::string mini;
    for (uint32_t i = 0; i < minis; i++) {
        std::string part = content.substr(64 * (minis - 1 - i), 64);
        part.resize(64);
        mini += part;
        miniFat += le32(i == 0 ? kCfbEndOfChain : i - 1);
    }
    std::string folder = folderEntry("Root Entry", 5, 1, 3, 64 * minis) +
                         folderEntry(name, 2, kCfbFree, minis - 1, content.size());
    std::string header("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
    header += std::string(16, 0) + le16(0x3E) + le16(3) + le16(0xFFFE) + le16(9) + le16(6);
    header += std::string(10, 0) + le32(1) + le32(1) + le32(0) + le32(4096) + le32(2) + le32(1);
    header += le32(kCfbEndOfChain) + le32(0) + le32(0);
    header.resize(kCfbHeaderSize, '\xFF');
    fat.resize(512, '\xFF');
    folder.resize(512);
    miniFat.resize(512, '\xFF');
    mini.resize(512 * size_t{sectors});
    return header + fat + folder + miniFat + mini;
}

static ReadBook readAll(xlsWorkBook* workbook, xls_error_t error) {
    ReadBook book = {error, {}};
    EXPECT_EQ(workbook != nullptr, error == LIBXLS_OK);
    for (uint32_t i = 0; workbook != nullptr && i < workbook->sheets.count; i++) {
        xlsWorkSheet* sheet = xls_getWorkSheet(workbook, static_cast<int>(i));
        ReadSheet read = {workbook->sheets.sheet[i].name,
                          workbook->sheets.sheet[i].visibility,
                          xls_parseWorkSheet(sheet),
                          sheet->rows.lastrow,
                          {}};
        unsigned lastCol = sheet->rows.lastcol < 300 ? sheet->rows.lastcol : 300;
        for (unsigned row = 0; row <= read.lastRow && read.error == LIBXLS_OK; row++) {
            // A damaged sheet may claim four billion places: of its middle, some columns will do.
            bool middle = row >= 200 && read.lastRow - row >= 200;
            for (unsigned col = 0; col <= (middle && lastCol > 4 ? 4 : lastCol); col++) {
                xlsCell* cell =
                    xls_cell(sheet, static_cast<uint16_t>(row), static_cast<uint16_t>(col));
                if (cell->str != nullptr) {
                    read.texts[{row, col}] = cell->str;
                }
            }
        }
        book.sheets.push_back(read);
        xls_close_WS(sheet);
    }
    xls_close_WB(workbook);
    return book;
}

ReadBook readBytes(const std::string& bytes) {
    // A copy of exactly this size lets the address sanitizer see a read behind the last byte.
    std::vector<unsigned char> copy(bytes.begin(), bytes.end());
    copy.shrink_to_fit();
    static const unsigned char nothing = 0;
    xls_error_t error = LIBXLS_OK;
    xlsWorkBook* workbook =
        xls_open_buffer(copy.empty() ? &nothing : copy.data(), copy.size(), "UTF-8", &error);
    return readAll(workbook, error);
}

ReadBook readFile(const std::string& path) {
    xls_error_t error = LIBXLS_OK;
    xlsWorkBook* workbook = xls_open_file(path.c_str(), "UTF-8", &error);
    return readAll(workbook, error);
}

std::string fileContent(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string temporaryPath(const std::string& name) {
    /** A folder that goes with the process. */
    struct Folder {
        std::string path = testing::TempDir() + "workbook_XXXXXX";
        Folder() {
            if (mkdtemp(&path[0]) == nullptr)
                throw std::system_error(errno, std::generic_category(), path);
        }
        ~Folder() {
            std::error_code ignored;
            std::filesystem::remove_all(path, ignored);
        }
    };
    static const Folder folder;
    return folder.path + "/" + name;
}

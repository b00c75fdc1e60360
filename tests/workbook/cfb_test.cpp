// Compound files: chains that run in circles or away, folders of odd shape, large files whose
// allocation table needs a table of its own, and files cut or changed at any byte.
#include "framework/workbook/cfb.h"

#include <gtest/gtest.h>
#include <string.h>

#include <random>

#include "framework/workbook/biff.h"
#include "framework/workbook/xlslib.h"
#include "tests/workbook/maker.h"

namespace {

CfbResult readStream(const std::string& file, const char* name, std::string* content) {
    ByteBuffer stream = {};
    CfbResult result = cfbReadStream(reinterpret_cast<const uint8_t*>(file.data()), file.size(),
                                     &name, 1, &stream);
    if (content != nullptr && stream.size > 0) {
        content->assign(reinterpret_cast<char*>(stream.data), stream.size);
    }
    bufferFree(&stream);
    return result;
}

void put32(std::string* file, size_t at, uint32_t value) {
    file->replace(at, 4, le32(value));
}

std::string counted(size_t size) {
    std::string content(size, 0);
    for (size_t i = 0; i < size; i++) {
        content[i] = static_cast<char>(i * 2654435761u >> 13);
    }
    return content;
}

TEST(WorkbookCfb, StreamsOfAllSizesComeBack) {
    // The last two need one and two sectors of the table of allocation sectors.
    const size_t difat = 109 * 128 * 512;
    for (size_t size : {size_t{0}, size_t{1}, size_t{4095}, size_t{4096}, size_t{4097},
                        size_t{65536}, difat - 512 * 111, difat, difat + 128 * 512 * 127}) {
        SCOPED_TRACE(size);
        std::string content = counted(size);
        std::string back;
        ASSERT_EQ(readStream(compound(content, "Workbook"), "WORKBOOK", &back), CFB_OK);
        content.resize(size < 4096 ? 4096 : size);
        EXPECT_TRUE(back == content);
    }
}

TEST(WorkbookCfb, AStreamTooLargeIsRefused) {
    ByteBuffer file = {};
    EXPECT_EQ(cfbBeginFile(&file, SIZE_MAX / 2), nullptr);
    bufferFree(&file);
}

TEST(WorkbookCfb, DamagedChainsEndInAnError) {
    // A file of 10 sectors of content, one of the folder (10), one of the FAT (11).
    const std::string good = compound(counted(5120), "Workbook");
    const size_t fat = 512 * 12;
    const size_t folder = 512 * 11;
    const size_t entry = folder + 128;
    const struct {
        const char* what;
        size_t at;
        uint32_t value;
        CfbResult result;
    } cases[] = {
        {"untouched", 0, 0xE011CFD0, CFB_OK},
        {"circle of the stream", fat + 4 * 5, 2, CFB_OK},  // the size alone ends it
        {"circle of the folder", fat + 4 * 10, 10, CFB_BROKEN_CHAIN},
        {"stream ends early", fat + 4 * 3, kCfbEndOfChain, CFB_BROKEN_CHAIN},
        {"stream leaves the file", fat + 4 * 3, 4000, CFB_BROKEN_CHAIN},
        {"stream runs into a free sector", fat + 4 * 3, kCfbFree, CFB_BROKEN_CHAIN},
        {"stream longer than the file", entry + 120, 0x7FFFFFFF, CFB_BROKEN_CHAIN},
        {"stream starts outside", entry + 116, 12, CFB_BROKEN_CHAIN},
        {"folder starts outside", 48, 0x00FFFFFF, CFB_BROKEN_CHAIN},
        {"no folder", 48, kCfbEndOfChain, CFB_NO_STREAM},
        {"FAT sector outside", 76, 12, CFB_BROKEN_CHAIN},
        {"no FAT", 44, 0, CFB_BROKEN_CHAIN},
        {"more FAT sectors stated than there are", 44, 0xFFFFFFFF, CFB_OK},
        {"small stream without mini FAT", entry + 120, 100, CFB_BROKEN_CHAIN},
        {"sectors of 2^30 bytes", 30, 0x0006001E, CFB_NOT_COMPOUND},
        {"sectors of 8 bytes", 30, 0x00060003, CFB_NOT_COMPOUND},
        {"mini sectors as large as sectors", 30, 0x00090009, CFB_NOT_COMPOUND},
        {"root without child", folder + 76, kCfbFree, CFB_NO_STREAM},
        {"child outside the folder", folder + 76, 0x7FFFFFFF, CFB_NO_STREAM},
        {"sibling of itself", entry + 68, 1, CFB_OK},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        std::string file = good;
        put32(&file, c.at, c.value);
        EXPECT_EQ(readStream(file, "Workbook", nullptr), c.result);
    }
    // In a circle of siblings every entry is visited once.
    std::string file = good;
    put32(&file, entry + 72, 2);
    put32(&file, entry + 128 + 72, 1);
    EXPECT_EQ(readStream(file, "Journal", nullptr), CFB_NO_STREAM);
}

TEST(WorkbookCfb, DamagedMiniChainsEndInAnError) {
    const std::string good = compoundMini(counted(1000), "Workbook");
    const size_t folder = 512 * 2;
    const size_t miniFat = 512 * 3;
    const struct {
        const char* what;
        size_t at;
        uint32_t value;
        CfbResult result;
    } cases[] = {
        {"untouched", 0, 0xE011CFD0, CFB_OK},
        {"circle", miniFat + 4 * 9, 12, CFB_OK},  // the size alone ends it
        {"end too early", miniFat + 4 * 9, kCfbEndOfChain, CFB_BROKEN_CHAIN},
        {"outside", miniFat + 4 * 9, 128, CFB_BROKEN_CHAIN},
        {"behind the mini stream", miniFat + 4 * 9, 100, CFB_BROKEN_CHAIN},
        {"mini stream too short", folder + 120, 64, CFB_BROKEN_CHAIN},
        {"mini stream too long", folder + 120, 0x40000000, CFB_BROKEN_CHAIN},
        {"mini FAT in a circle", 512 + 4 * 2, 2, CFB_BROKEN_CHAIN},
        {"stream longer than its chain", folder + 128 + 120, 1100, CFB_BROKEN_CHAIN},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        std::string file = good;
        put32(&file, c.at, c.value);
        std::string content;
        EXPECT_EQ(readStream(file, "Workbook", &content), c.result);
        if (strcmp(c.what, "untouched") == 0) {
            EXPECT_TRUE(content == counted(1000));
        }
    }
}

// A stream of the same name inside an embedded object's folder is not the workbook's.
TEST(WorkbookCfb, OnlyTheRootFolderCounts) {
    std::string file = compound(counted(4096), "Workbook");
    const size_t folder = 512 * 9;
    file.replace(folder + 256, 128, file.substr(folder + 128, 128));  // entry 2: the stream
    file[folder + 128 + 66] = 1;                                      // entry 1: a folder with it
    put32(&file, folder + 128 + 76, 2);
    EXPECT_EQ(readStream(file, "Workbook", nullptr), CFB_NO_STREAM);
    put32(&file, folder + 128 + 72, 2);
    EXPECT_EQ(readStream(file, "Workbook", nullptr), CFB_OK) << "as a sibling it is in the root";
}

std::string savedWorkbook() {
    workbook* book = xlsNewWorkbook();
    for (const char* name : {"Cover", "GPIO", "Demux-ATSC"}) {
        worksheet* sheet = xlsWorkbookSheet(book, name);
        for (unsigned row = 0; row < 12; row++) {
            xlsWorksheetNumberInt(sheet, row, 0, static_cast<int>(row), nullptr);
            xlsWorksheetLabel(sheet, row, 1, (name + std::to_string(row)).c_str(), nullptr);
            xlsWorksheetLabel(sheet, row, 4, "Y", nullptr);
        }
    }
    const std::string path = temporaryPath("mutation.xls");
    EXPECT_EQ(xlsWorkbookDump(book, path.c_str()), 0);
    xlsDeleteWorkbook(book);
    return fileContent(path);
}

std::string version5Workbook() {
    std::string records = record(BIFF_LABEL, place(1, 1) + le16(4) + "d\xE9j\x80") +
                          record(BIFF_RSTRING, place(2, 1) + le16(3) + "abc" + "\1") +
                          record(BIFF_MULRK, le16(3) + le16(0) + std::string(12, 2) + le16(1));
    return compoundMini(stream(kBiffVersion5, record(BIFF_CODEPAGE, le16(1251)),
                               {{"GPIO", records, 0}, {"I2C", records, 1}}),
                        "Book");
}

std::string continuedWorkbook() {
    std::string strings =
        record(BIFF_SST, le32(3) + le32(3) + le16(6) + std::string("\xC\2\0\0\0\0\0ab", 9)) +
        record(BIFF_CONTINUE, std::string("\1") + le16(0x4E2D) + le16('d')) +
        record(BIFF_CONTINUE, std::string("\0ef", 3) + std::string(8, 'r') + narrow("two", 2));
    std::string records =
        record(BIFF_LABELSST, place(0, 1) + le32(0)) + bof(0x600, 0x20) + eof() +
        record(BIFF_FORMULA, place(1, 1) + std::string(6, 0) + "\xFF\xFF" + std::string(8, 0)) +
        record(BIFF_STRING, narrow("result", 2)) +
        record(BIFF_LABEL, place(2, 2) + wide(u"\u4E2D", 2));
    return compoundMini(stream(kBiffVersion8, strings, {{"A", records, 0}}), "Workbook");
}

// Changes that keep the file's shape reach deeper than random bytes everywhere: single bits,
// bytes, words of extreme values, and pieces copied elsewhere.
void mutate(std::string* file, std::mt19937* random) {
    static const uint32_t extremes[] = {0,      1,          0x7F,       0xFF,       0x7FFF,
                                        0xFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};
    for (unsigned changes = 1 + (*random)() % 4; changes > 0 && file->size() > 16; changes--) {
        size_t at = (*random)() % (file->size() - 8);
        switch ((*random)() % 7) {
            case 0:
                (*file)[at] = static_cast<char>((*file)[at] ^ 1 << (*random)() % 8);
                break;
            case 1:
                (*file)[at] = static_cast<char>((*random)());
                break;
            case 2:
                file->replace(at, 2, le16(extremes[(*random)() % 10]));
                break;
            case 3:
                put32(file, at & ~size_t{3}, extremes[(*random)() % 10]);
                break;
            case 4:
                file->resize(at);
                break;
            case 5:
                file->replace(at, 8, file->substr((*random)() % (file->size() - 8), 8));
                break;
            default:
                file->erase(at, (*random)() % 5);
                break;
        }
    }
}

TEST(WorkbookMutation, DamagedFilesEndInAnErrorOrInAWorkbook) {
    const std::string seeds[] = {savedWorkbook(), version5Workbook(), continuedWorkbook()};
    int refused = 0;
    int read = 0;
    for (const std::string& seed : seeds) {
        ReadBook whole = readBytes(seed);
        ASSERT_EQ(whole.error, LIBXLS_OK);
        ASSERT_FALSE(whole.sheets[0].texts.empty());
        std::mt19937 random(1);
        for (int i = 0; i < 2500; i++) {
            std::string file = seed;
            mutate(&file, &random);
            (readBytes(file).error == LIBXLS_OK ? read : refused)++;
        }
    }
    // Both ends must have been met, else the changes do not reach what they should.
    EXPECT_GT(refused, 500);
    EXPECT_GT(read, 500);
}

TEST(WorkbookMutation, FilesCutAtAnyByteAreRefused) {
    for (const std::string& seed : {savedWorkbook(), version5Workbook(), continuedWorkbook()}) {
        // The FAT is last in our files and early in the others; what is behind the content is free.
        for (size_t size = 0; size + 512 * 2 < seed.size(); size += 7) {
            EXPECT_NE(readBytes(seed.substr(0, size)).error, LIBXLS_OK) << size;
        }
    }
}

}  // namespace

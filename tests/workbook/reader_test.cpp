// The workbook reader on workbooks made record by record: every kind of cell, the last row, shared
// strings over CONTINUE records, the earlier version, the mini stream, and damage.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "framework/workbook/biff.h"
#include "framework/workbook/cfb.h"
#include "tests/workbook/maker.h"

namespace {

using Texts = std::map<std::pair<unsigned, unsigned>, std::string>;

const unsigned kV8 = kBiffVersion8;
const unsigned kV5 = kBiffVersion5;

std::string sst(uint32_t count, const std::string& strings) {
    return record(BIFF_SST, le32(count) + le32(count) + strings);
}

std::string labelSst(unsigned row, unsigned col, uint32_t index) {
    return record(BIFF_LABELSST, place(row, col) + le32(index));
}

std::string formula(unsigned row, unsigned col, const std::string& result) {
    return record(BIFF_FORMULA, place(row, col) + result + le16(0) + le32(0) + le16(0));
}

std::string oneSheet(const std::string& records, const std::string& globals = "") {
    return compound(stream(kV8, globals, {{"Sheet", records, 0}}), "Workbook");
}

ReadSheet readOne(const std::string& records, const std::string& globals = "") {
    ReadBook book = readBytes(oneSheet(records, globals));
    EXPECT_EQ(book.error, LIBXLS_OK);
    EXPECT_EQ(book.sheets.size(), 1u);
    return book.sheets.empty() ? ReadSheet{} : book.sheets[0];
}

TEST(WorkbookReader, ReadsEveryKindOfCell) {
    const std::string text = std::string("\0\0\0\0\0\0\xFF\xFF", 8);
    const std::string yes = std::string("\1\0\1\0\0\0\xFF\xFF", 8);
    const std::string error = std::string("\2\0\x2A\0\0\0\xFF\xFF", 8);
    const std::string empty = std::string("\3\0\0\0\0\0\xFF\xFF", 8);
    const struct {
        const char* what;
        std::string records;
        Texts texts;
    } cases[] = {
        {"narrow LABEL with all of Latin-1",
         record(BIFF_LABEL, place(1, 0) + narrow("d\xE9j\xE0", 2)),
         {{{1, 0}, "d\xC3\xA9j\xC3\xA0"}}},
        {"wide LABEL with a surrogate pair and a lone one",
         record(BIFF_LABEL, place(0, 1) + wide({u'\u4E2D', 0xD83D, 0xDE00, 0xD800, u'x'}, 2)),
         {{{0, 1}, "\xE4\xB8\xAD\xF0\x9F\x98\x80\xEF\xBF\xBDx"}}},
        {"empty LABEL", record(BIFF_LABEL, place(0, 1) + narrow("", 2)), {{{0, 1}, ""}}},
        {"RSTRING",
         record(BIFF_RSTRING, place(0, 1) + narrow("rich", 2) + le16(1) + le32(5)),
         {{{0, 1}, "rich"}}},
        {"LABELSST", labelSst(2, 3, 1), {{{2, 3}, "one"}}},
        {"NUMBER", record(BIFF_NUMBER, place(0, 0) + leDouble(-2.5)), {{{0, 0}, "-2.5"}}},
        {"RK integers",
         record(BIFF_RK, place(0, 0) + le32(42u << 2 | 2)) +
             record(BIFF_RK, place(0, 1) + le32(static_cast<uint32_t>(-7) << 2 | 2)) +
             record(BIFF_RK, place(0, 2) + le32(1234u << 2 | 3)) +
             record(BIFF_RK, place(0, 3) + le32(0x80000002)),
         {{{0, 0}, "42"}, {{0, 1}, "-7"}, {{0, 2}, "12.34"}, {{0, 3}, "-536870912"}}},
        {"RK halves of doubles",
         record(BIFF_RK, place(0, 0) + le32(0x3FF80000)) +
             record(BIFF_RK, place(0, 1) + le32(0x40590001)),
         {{{0, 0}, "1.5"}, {{0, 1}, "1"}}},
        {"MULRK",
         record(BIFF_MULRK, le16(4) + le16(2) + le16(15) + le32(1u << 2 | 2) + le16(15) +
                                le32(2u << 2 | 2) + le16(3)),
         {{{4, 2}, "1"}, {{4, 3}, "2"}}},
        {"BOOLERR",
         record(BIFF_BOOLERR, place(0, 0) + std::string("\1\0", 2)) +
             record(BIFF_BOOLERR, place(0, 1) + std::string("\0\0", 2)) +
             record(BIFF_BOOLERR, place(0, 2) + std::string("\x07\1", 2)),
         {{{0, 0}, "TRUE"}, {{0, 1}, "FALSE"}, {{0, 2}, "#DIV/0!"}}},
        {"formula results",
         formula(0, 0, leDouble(7)) + formula(0, 1, yes) + formula(0, 2, error) +
             formula(0, 3, empty) + formula(0, 4, text) + record(0x04BC, "shared") +
             record(BIFF_STRING, narrow("TC_A", 2)),
         {{{0, 0}, "7"}, {{0, 1}, "TRUE"}, {{0, 2}, "#N/A"}, {{0, 3}, ""}, {{0, 4}, "TC_A"}}},
        {"formulas as versions 3 and 4 number them",
         record(BIFF_FORMULA3, place(0, 0) + leDouble(3) + le16(0)) +
             record(BIFF_FORMULA4, place(0, 1) + text + le16(0)) +
             record(BIFF_STRING, narrow("TC_B", 2)),
         {{{0, 0}, "3"}, {{0, 1}, "TC_B"}}},
        {"a STRING that belongs to no formula",
         formula(0, 0, text) + record(BIFF_BLANK, place(0, 1)) +
             record(BIFF_STRING, narrow("stray", 2)),
         {}},
        {"a formula's text over CONTINUE, the rest wide",
         formula(0, 0, text) + record(BIFF_STRING, le16(4) + std::string("\0ab", 3)) +
             record(BIFF_CONTINUE, std::string("\1c\0d\0", 5)),
         {{{0, 0}, "abcd"}}},
        {"blanks",
         record(BIFF_BLANK, place(0, 0)) + record(BIFF_MULBLANK, place(0, 1) + le16(1)),
         {}},
        {"the later of two in one place, in disorder",
         labelSst(5, 1, 0) + labelSst(1, 1, 0) + labelSst(5, 1, 1),
         {{{1, 1}, "zero"}, {{5, 1}, "one"}}},
    };
    const std::string strings = sst(2, narrow("zero", 2) + narrow("one", 2));
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ReadSheet sheet = readOne(c.records, strings);
        EXPECT_EQ(sheet.error, LIBXLS_OK);
        EXPECT_EQ(sheet.texts, c.texts);
    }
}

TEST(WorkbookReader, LastRowIsThatOfRowAndCellRecords) {
    const std::string chart = bof(kV8, 0x20) + record(BIFF_NUMBER, place(900, 0) + leDouble(1)) +
                              bof(kV8, 0x20) + eof() + eof();
    const struct {
        const char* what;
        std::string records;
        unsigned lastRow;
    } cases[] = {
        {"empty sheet", "", 0},
        {"dimensions and merged ranges",
         record(BIFF_DIMENSIONS, le32(0) + le32(500) + le32(0)) +
             record(0x00E5, le16(1) + le16(7) + le16(8) + le32(0)),
         0},
        {"row record", record(BIFF_ROW, le16(30) + std::string(14, 0)), 30},
        {"last row of all", record(BIFF_ROW, le16(65535) + std::string(14, 0)), 65535},
        {"blank cell", record(BIFF_BLANK, place(31, 0)), 31},
        {"blank cells", record(BIFF_MULBLANK, place(32, 0) + le16(15) + le16(1)), 32},
        {"number", record(BIFF_NUMBER, place(33, 0) + leDouble(1)), 33},
        {"chart", record(BIFF_BLANK, place(3, 0)) + chart, 3},
        {"cell after a chart", chart + record(BIFF_BLANK, place(4, 0)), 4},
        {"rows not in order", record(BIFF_BLANK, place(9, 0)) + record(BIFF_BLANK, place(2, 0)), 9},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ReadSheet sheet = readOne(c.records);
        EXPECT_EQ(sheet.error, LIBXLS_OK);
        EXPECT_EQ(sheet.lastRow, c.lastRow);
    }
}

TEST(WorkbookReader, ListsAllSheetsAndKeepsThemApart) {
    std::string bytes =
        compound(stream(kV8, "",
                        {{"Cover", "", 0},
                         {"Hidden", record(BIFF_LABEL, place(1, 1) + narrow("h", 2)), 1},
                         {"Demux-ATSC", record(BIFF_LABEL, place(2, 1) + narrow("d", 2)), 2}}),
                 "Workbook");
    ReadBook book = readBytes(bytes);
    ASSERT_EQ(book.sheets.size(), 3u);
    EXPECT_EQ(book.sheets[1].name, "Hidden");
    EXPECT_EQ(book.sheets[1].visibility, 1);
    EXPECT_EQ(book.sheets[1].texts, (Texts{{{1, 1}, "h"}}));
    EXPECT_EQ(book.sheets[2].name, "Demux-ATSC");
    EXPECT_EQ(book.sheets[2].lastRow, 2u);
}

TEST(WorkbookReader, CellsOutsideTheSheetAreNull) {
    std::string bytes = oneSheet(record(BIFF_LABEL, place(2, 3) + narrow("x", 2)));
    xlsWorkBook* book = xls_open_buffer(reinterpret_cast<const unsigned char*>(bytes.data()),
                                        bytes.size(), nullptr, nullptr);
    ASSERT_NE(book, nullptr);
    EXPECT_EQ(xls_getWorkSheet(book, -1), nullptr);
    EXPECT_EQ(xls_getWorkSheet(book, 1), nullptr);
    xlsWorkSheet* sheet = xls_getWorkSheet(book, 0);
    ASSERT_EQ(xls_parseWorkSheet(sheet), LIBXLS_OK);
    ASSERT_EQ(xls_parseWorkSheet(sheet), LIBXLS_OK) << "a second time";
    EXPECT_EQ(xls_cell(sheet, 3, 0), nullptr);
    EXPECT_EQ(xls_cell(sheet, 2, 4), nullptr);
    EXPECT_EQ(xls_cell(sheet, 65535, 65535), nullptr);
    ASSERT_NE(xls_cell(sheet, 0, 3), nullptr);
    EXPECT_EQ(xls_cell(sheet, 0, 3)->str, nullptr);
    EXPECT_STREQ(xls_cell(sheet, 2, 3)->str, "x");
    xls_close_WS(sheet);
    xls_close_WB(book);
}

// A piece of a shared string; a CONTINUE record before one inside the characters has a width byte.
struct Piece {
    std::string bytes;
    bool inText;
    bool wide;
};

void addString(std::vector<Piece>* pieces, const std::u16string& text, bool wideText, int runs,
               const std::string& phonetic) {
    int options = (wideText ? 1 : 0) | (runs > 0 ? 8 : 0) | (phonetic.empty() ? 0 : 4);
    std::string head =
        le16(static_cast<unsigned>(text.size())) + std::string(1, static_cast<char>(options));
    head += runs > 0 ? le16(static_cast<unsigned>(runs)) : "";
    head += phonetic.empty() ? "" : le32(static_cast<uint32_t>(phonetic.size()));
    pieces->push_back({head, false, false});
    for (char16_t unit : text) {
        pieces->push_back({wideText ? le16(unit) : le16(unit).substr(0, 1), true, wideText});
    }
    for (char c : std::string(4 * static_cast<size_t>(runs), '\x55') + phonetic) {
        pieces->push_back({std::string(1, c), false, false});
    }
}

std::string sstSplitAt(const std::vector<Piece>& pieces, uint32_t count, size_t split, bool all) {
    std::string records;
    std::string content = le32(count) + le32(count);
    unsigned id = BIFF_SST;
    for (size_t i = 0; i < pieces.size(); i++) {
        if (i == split || (all && i > 0)) {
            records += record(id, content);
            id = BIFF_CONTINUE;
            content = pieces[i].inText ? std::string(1, pieces[i].wide ? 1 : 0) : "";
        }
        content += pieces[i].bytes;
    }
    return records + record(id, content);
}

TEST(WorkbookReader, SharedStringsGoOnInContinueRecordsAtEveryPlace) {
    std::vector<Piece> pieces;
    addString(&pieces, u"Alpha", false, 0, "");
    addString(&pieces, u"\u4E2D\u6587", true, 0, "");
    addString(&pieces, u"", false, 0, "");
    addString(&pieces, u"rich", false, 2, "");
    addString(&pieces, u"phon\u00E9", true, 1, "0123456789");
    addString(&pieces, u"Omega", false, 0, "");
    std::string cells;
    for (unsigned i = 0; i < 6; i++) {
        cells += labelSst(i, 0, i);
    }
    const Texts expected = {{{0, 0}, "Alpha"},
                            {{1, 0}, "\xE4\xB8\xAD\xE6\x96\x87"},
                            {{2, 0}, ""},
                            {{3, 0}, "rich"},
                            {{4, 0}, "phon\xC3\xA9"},
                            {{5, 0}, "Omega"}};
    for (size_t split = 1; split <= pieces.size(); split++) {
        SCOPED_TRACE(split);
        EXPECT_EQ(readOne(cells, sstSplitAt(pieces, 6, split, false)).texts, expected);
    }
    EXPECT_EQ(readOne(cells, sstSplitAt(pieces, 6, 0, true)).texts, expected) << "all at once";
}

TEST(WorkbookReader, ContinueMayChangeTheWidth) {
    std::string strings = record(BIFF_SST, le32(1) + le32(1) + le16(6) + std::string("\0ab", 3)) +
                          record(BIFF_CONTINUE, std::string("\1") + le16(0x4E2D) + le16('d')) +
                          record(BIFF_CONTINUE, std::string("\0ef", 3));
    EXPECT_EQ(readOne(labelSst(0, 0, 0), strings).texts, (Texts{{{0, 0},
                                                                 "ab\xE4\xB8\xAD"
                                                                 "def"}}));
}

TEST(WorkbookReader, ReadsVersion5) {
    std::string records =
        record(BIFF_LABEL, place(1, 1) + le16(4) + "d\xE9j\x80") +
        record(BIFF_RSTRING, place(2, 1) + le16(3) + "abc" + std::string("\1\0\5", 3)) +
        formula(3, 1, std::string("\0\0\0\0\0\0\xFF\xFF", 8)) +
        record(BIFF_STRING, le16(2) + "ok") + record(BIFF_RK, place(4, 1) + le32(3u << 2 | 2));
    const struct {
        unsigned codePage;
        std::string label;
    } cases[] = {{1252, "d\xC3\xA9j\xE2\x82\xAC"},  // é, euro sign
                 {1251, "d\xD0\xB9j\xD0\x82"},      // й, Ђ
                 {0x8001, "d\xC3\xA9j\xE2\x82\xAC"},
                 {932, "d\xEF\xBF\xBDj\xEF\xBF\xBD"},  // é starts a pair that j does not end
                 {9999, "d\xC3\xA9j\xC2\x80"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.codePage);
        std::string bytes = compound(
            stream(kV5, record(BIFF_CODEPAGE, le16(c.codePage)), {{"GPIO", records, 0}}), "Book");
        ReadBook book = readBytes(bytes);
        ASSERT_EQ(book.error, LIBXLS_OK);
        EXPECT_EQ(book.sheets[0].name, "GPIO");
        if (c.codePage != 932) {
            EXPECT_EQ(book.sheets[0].texts[std::make_pair(1u, 1u)], c.label);
        }
        EXPECT_EQ(book.sheets[0].texts[std::make_pair(2u, 1u)], "abc");
        EXPECT_EQ(book.sheets[0].texts[std::make_pair(3u, 1u)], "ok");
        EXPECT_EQ(book.sheets[0].texts[std::make_pair(4u, 1u)], "3");
    }
}

// Of two code pages the converter holds a letter back, since an accent may follow it.
TEST(WorkbookReader, KeepsTheLastLetterOfEveryCodePage) {
    const struct {
        unsigned codePage;
        std::string bytes;
        std::string text;
    } cases[] = {{1258, "N/A", "N/A"},
                 {1258, "a\xCC", "\xC3\xA0"},      // à
                 {1258, "a\xD2", "\xE1\xBA\xA3"},  // ả
                 {1258, "a\xD2o", "\xE1\xBA\xA3o"},
                 {1255, "\xE0", "\xD7\x90"},             // alef
                 {1255, "\xF9\xD1", "\xEF\xAC\xAA"},     // shin with its dot
                 {932, "a\x81", "a\xEF\xBF\xBD"},        // half of a pair
                 {720, "\x98\xFF", "\xD8\xA1\xC2\xA0"},  // hamza, a blank
                 {10006, "\xB0", "\xCE\x91"},            // alpha
                 {10081, "\xDD", "\xC4\xB1"}};           // dotless i
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.codePage << " " << c.text);
        const std::string label =
            record(BIFF_LABEL, place(0, 0) + le16(static_cast<unsigned>(c.bytes.size())) + c.bytes);
        ReadBook book = readBytes(compound(
            stream(kV5, record(BIFF_CODEPAGE, le16(c.codePage)), {{"GPIO", label, 0}}), "Book"));
        ASSERT_EQ(book.error, LIBXLS_OK);
        EXPECT_EQ(book.sheets[0].texts, (Texts{{{0, 0}, c.text}}));
    }
}

TEST(WorkbookReader, ReadsTheMiniStream) {
    for (size_t padding : {0, 1, 63, 64, 65, 1000, 3000}) {
        SCOPED_TRACE(padding);
        std::string content =
            stream(kV8, record(0x5C, std::string(padding, ' ')),
                   {{"GPIO", record(BIFF_LABEL, place(1, 1) + narrow("TC", 2)), 0}});
        ReadBook book = readBytes(compoundMini(content, "Workbook"));
        ASSERT_EQ(book.error, LIBXLS_OK);
        EXPECT_EQ(book.sheets[0].texts, (Texts{{{1, 1}, "TC"}}));
    }
}

TEST(WorkbookReader, DamageIsAnErrorOfTheWorkbook) {
    const std::string sheet = record(BIFF_LABEL, place(0, 0) + narrow("x", 2));
    auto globals = [&](const std::string& records) { return oneSheet(sheet, records); };
    const struct {
        const char* what;
        std::string bytes;
        xls_error_t error;
    } cases[] = {
        {"nothing", "", LIBXLS_ERROR_PARSE},
        {"text", "ID;Case;Test\n", LIBXLS_ERROR_PARSE},
        {"header alone", oneSheet(sheet).substr(0, 512), LIBXLS_ERROR_SEEK},
        {"other stream", compound(stream(kV8, "", {}), "Journal"), LIBXLS_ERROR_PARSE},
        {"no records", compound("", "Workbook"), LIBXLS_ERROR_PARSE},
        {"no EOF", compound(bof(kV8, 5), "Workbook"), LIBXLS_ERROR_PARSE},
        {"version 4", compound(stream(0x0400, "", {}), "Workbook"), LIBXLS_ERROR_PARSE},
        {"sheet in place of globals", compound(bof(kV8, 0x10) + eof(), "Workbook"),
         LIBXLS_ERROR_PARSE},
        {"encrypted", globals(record(BIFF_FILEPASS, std::string(6, 1))),
         LIBXLS_ERROR_UNSUPPORTED_ENCRYPTION},
        {"short shared strings", globals(record(BIFF_SST, le32(1))), LIBXLS_ERROR_PARSE},
        {"cut shared string", globals(sst(1, le16(100) + std::string("\0abc", 4))),
         LIBXLS_ERROR_PARSE},
        {"half a character", globals(sst(1, le16(2) + std::string("\1a\0b", 4))),
         LIBXLS_ERROR_PARSE},
        {"more phonetic data than there is",
         globals(sst(1, le16(1) + "\4" + le32(0xFFFFFFFF) + "a")), LIBXLS_ERROR_PARSE},
        {"short sheet position", globals(record(BIFF_BOUNDSHEET, le32(0))), LIBXLS_ERROR_PARSE},
        {"sheet name behind the record",
         globals(record(BIFF_BOUNDSHEET, le32(0) + le16(0) + std::string("\x20\0a", 3))),
         LIBXLS_ERROR_PARSE},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(readBytes(c.bytes).error, c.error);
    }
}

TEST(WorkbookReader, DamageIsAnErrorOfItsSheet) {
    const struct {
        const char* what;
        std::string records;
    } cases[] = {
        {"shared string that is not there", labelSst(0, 0, 1)},
        {"short LABELSST", record(BIFF_LABELSST, place(0, 0))},
        {"short NUMBER", record(BIFF_NUMBER, place(0, 0) + le32(0))},
        {"short FORMULA", record(BIFF_FORMULA, place(0, 0))},
        {"short FORMULA of version 4", record(BIFF_FORMULA4, place(0, 0) + le32(0))},
        {"short ROW", record(BIFF_ROW, "a")},
        {"short MULBLANK", record(BIFF_MULBLANK, le32(0))},
        {"LABEL longer than its record",
         record(BIFF_LABEL, place(0, 0) + le16(9) + std::string(3, 0))},
        {"MULRK past the last column",
         record(BIFF_MULRK, le16(0) + le16(65535) + std::string(12, 0) + le16(0))},
        {"BOF without EOF", bof(kV8, 0x20)},
        {"record longer than the stream", le16(BIFF_LABEL) + le16(0xFFFF)},
    };
    const std::string strings = sst(0xFFFFFFFF, narrow("one", 2));
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ReadSheet sheet = readOne(labelSst(7, 0, 0) + c.records, strings);
        EXPECT_EQ(sheet.error, LIBXLS_ERROR_PARSE);
        EXPECT_EQ(sheet.lastRow, 0u);
    }
}

TEST(WorkbookReader, SheetsMayNotShareRecords) {
    // Two entries with one position: the first has the sheet.
    std::string content =
        stream(kV8, "", {{"A", record(BIFF_BLANK, place(5, 0)), 0}, {"B", "", 0}});
    size_t first = bof(kV8, 5).size();
    size_t second = first + record(BIFF_BOUNDSHEET, std::string(9, 0)).size();
    content.replace(second + 4, 4, content.substr(first + 4, 4));
    ReadBook book = readBytes(compound(content, "Workbook"));
    ASSERT_EQ(book.sheets.size(), 2u);
    EXPECT_EQ(book.sheets[0].error, LIBXLS_OK);
    EXPECT_EQ(book.sheets[0].lastRow, 5u);
    EXPECT_EQ(book.sheets[1].error, LIBXLS_ERROR_PARSE);
}

TEST(WorkbookReader, FilesThatCannotBeOpened) {
    xls_error_t error = LIBXLS_OK;
    const std::string pipe = temporaryPath("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& path : {std::string("/nonexistent/x.xls"), std::string("/"), pipe}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(xls_open_file(path.c_str(), "UTF-8", &error), nullptr);
        EXPECT_EQ(error, LIBXLS_ERROR_OPEN);
    }
    EXPECT_STREQ(xls_getError(error), "Unable to open file");
    EXPECT_EQ(xls_open_file(nullptr, "UTF-8", &error), nullptr);
    EXPECT_EQ(error, LIBXLS_ERROR_NULL_ARGUMENT);

    const std::string huge = temporaryPath("huge.xls");
    std::ofstream(huge) << "x";
    ASSERT_EQ(truncate(huge.c_str(), off_t{1} << 40), 0);
    EXPECT_EQ(xls_open_file(huge.c_str(), "UTF-8", &error), nullptr);
    EXPECT_EQ(error, LIBXLS_ERROR_READ);
    unlink(huge.c_str());
}

}  // namespace

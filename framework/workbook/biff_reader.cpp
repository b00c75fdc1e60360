// The workbook reader. Opening reads the globals: the list of sheets and the shared strings.
// Parsing a sheet collects its cells in one array, sorted by row and column, and its last row:
// the highest of any row or cell record between the sheet's BOF and its own EOF. Charts in between
// have a BOF and EOF of their own and are passed over.
//
// A record's content is read only through a view of its bytes whose end is checked.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "framework/workbook/biff.h"
#include "framework/workbook/bytes.h"
#include "framework/workbook/cfb.h"
#include "framework/workbook/text.h"
#include "framework/workbook/xls.h"

struct xlsBookState {
    ByteBuffer stream;
    bool wideStrings;  // BIFF8; else strings are bytes of the code page
    unsigned codePage;
    StringArena texts;  // sheet names and shared strings
    char** shared;
    size_t sharedCount;
    size_t sharedCapacity;
    size_t sheetCapacity;
    uint32_t* byPosition;  // the sheets that have records in the stream, by where these start
    size_t positionCount;
    uint16_t* units;  // the UTF-16 units of the string being read
    size_t unitCapacity;
    ByteBuffer utf8;  // the same as UTF-8
};

struct xlsSheetState {
    xlsBookState* book;
    size_t start;  // where its records are in the stream: up to the next sheet's
    size_t end;
    StringArena texts;
    xlsCell* cells;
    size_t cellCount;
    size_t cellCapacity;
    bool sorted;        // each cell so far was behind its predecessor
    bool stringIsNext;  // the last cell is a formula whose text comes in a STRING record
    xlsCell blank;
};

namespace {

const size_t kMaxFileSize = size_t{64} * 1024 * 1024;

// The content of one record in the stream.
struct Record {
    unsigned id;
    const uint8_t* data;
    size_t size;
    size_t next;  // where the next record starts
};

// A place in the content of a record and of the CONTINUE records behind it.
struct Cursor {
    const ByteBuffer* stream;
    const uint8_t* at;
    const uint8_t* end;
    size_t next;
};

bool readRecord(const ByteBuffer* stream, size_t at, Record* record) {
    if (at > stream->size || stream->size - at < kBiffHeaderSize) {
        return false;
    }
    const uint8_t* header = stream->data + at;
    size_t left = stream->size - at - kBiffHeaderSize;
    record->id = getLe16(header);
    record->size = getLe16(header + 2);
    record->data = header + kBiffHeaderSize;
    record->next = at + kBiffHeaderSize + record->size;
    return record->size <= left;
}

Cursor cursorIn(const ByteBuffer* stream, const Record* record, size_t offset) {
    const uint8_t* end = record->data + record->size;
    const uint8_t* at = offset < record->size ? record->data + offset : end;
    return Cursor{stream, at, end, record->next};
}

// Steps into the CONTINUE record behind the one that the cursor is in, if there is one.
bool nextContinue(Cursor* cursor) {
    Record record;
    if (!readRecord(cursor->stream, cursor->next, &record) || record.id != BIFF_CONTINUE) {
        return false;
    }
    cursor->at = record.data;
    cursor->end = record.data + record.size;
    cursor->next = record.next;
    return true;
}

bool takeByte(Cursor* cursor, unsigned* value) {
    while (cursor->at == cursor->end) {
        if (!nextContinue(cursor)) {
            return false;
        }
    }
    *value = *cursor->at++;
    return true;
}

bool takeNumber(Cursor* cursor, unsigned bytes, uint32_t* value) {
    *value = 0;
    for (unsigned i = 0; i < bytes; i++) {
        unsigned byte = 0;
        if (!takeByte(cursor, &byte)) {
            return false;
        }
        *value |= static_cast<uint32_t>(byte) << (8 * i);
    }
    return true;
}

bool skipBytes(Cursor* cursor, uint64_t count) {
    while (count > 0) {
        size_t left = static_cast<size_t>(cursor->end - cursor->at);
        size_t step = count < left ? static_cast<size_t>(count) : left;
        cursor->at += step;
        count -= step;
        if (count > 0 && !nextContinue(cursor)) {
            return false;
        }
    }
    return true;
}

// Takes `count` characters as UTF-16 units into the book's buffer. A CONTINUE record in their
// midst starts with an option byte of its own, which says how wide the rest of them is.
xls_error_t takeUnits(xlsBookState* book, Cursor* cursor, size_t count, bool wide) {
    void* units = book->units;
    if (!growArray(&units, &book->unitCapacity, count, sizeof(uint16_t))) {
        return LIBXLS_ERROR_MALLOC;
    }
    book->units = static_cast<uint16_t*>(units);
    for (size_t i = 0; i < count;) {
        size_t width = wide ? 2 : 1;
        if (static_cast<size_t>(cursor->end - cursor->at) >= width) {
            book->units[i++] = wide ? getLe16(cursor->at) : *cursor->at;
            cursor->at += width;
        } else if (cursor->at != cursor->end || !nextContinue(cursor)) {
            return LIBXLS_ERROR_PARSE;
        } else if (cursor->at != cursor->end) {
            wide = (*cursor->at++ & kBiffWide) != 0;
        }
    }
    return LIBXLS_OK;
}

// Takes a BIFF8 string whose length is a number of `lengthBytes` bytes.
xls_error_t takeWideString(xlsBookState* book, Cursor* cursor, unsigned lengthBytes,
                           StringArena* arena, char** text) {
    uint32_t count = 0;
    uint32_t options = 0;
    uint32_t runs = 0;
    uint32_t phonetic = 0;
    if (!takeNumber(cursor, lengthBytes, &count) || !takeNumber(cursor, 1, &options) ||
        ((options & kBiffRich) != 0 && !takeNumber(cursor, 2, &runs)) ||
        ((options & kBiffPhonetic) != 0 && !takeNumber(cursor, 4, &phonetic))) {
        return LIBXLS_ERROR_PARSE;
    }
    xls_error_t error = takeUnits(book, cursor, count, (options & kBiffWide) != 0);
    if (error != LIBXLS_OK) {
        return error;
    }
    if (!skipBytes(cursor, uint64_t{4} * runs + phonetic)) {
        return LIBXLS_ERROR_PARSE;
    }
    book->utf8.size = 0;
    if (!bufferReserve(&book->utf8, size_t{3} * count + 1)) {
        return LIBXLS_ERROR_MALLOC;
    }
    char* utf8 = reinterpret_cast<char*>(book->utf8.data);
    *text = arenaCopy(arena, utf8, utf8FromUtf16(book->units, count, utf8));
    return *text != nullptr ? LIBXLS_OK : LIBXLS_ERROR_MALLOC;
}

// Takes the string that starts at `offset` of the record, as the workbook's version has it.
xls_error_t takeString(xlsBookState* book, const Record* record, size_t offset,
                       unsigned lengthBytes, StringArena* arena, char** text) {
    Cursor cursor = cursorIn(&book->stream, record, offset);
    if (book->wideStrings) {
        return takeWideString(book, &cursor, lengthBytes, arena, text);
    }
    uint32_t count = 0;
    if (static_cast<size_t>(cursor.end - cursor.at) < lengthBytes ||
        !takeNumber(&cursor, lengthBytes, &count) ||
        count > static_cast<size_t>(cursor.end - cursor.at)) {
        return LIBXLS_ERROR_PARSE;
    }
    *text = utf8FromCodePage(book->codePage, cursor.at, count, arena);
    return *text != nullptr ? LIBXLS_OK : LIBXLS_ERROR_MALLOC;
}

xls_error_t readSharedStrings(xlsBookState* book, const Record* record) {
    if (record->size < 8) {
        return LIBXLS_ERROR_PARSE;
    }
    // The stated count only ends the reading, memory is taken for strings that are there. A count
    // that is too high does no harm: a cell that names a missing string is an error of its sheet.
    uint32_t stated = getLe32(record->data + 4);
    Cursor cursor = cursorIn(&book->stream, record, 8);
    for (uint32_t i = 0; i < stated; i++) {
        while (cursor.at == cursor.end && nextContinue(&cursor)) {
        }
        if (cursor.at == cursor.end) {
            break;
        }
        void* shared = book->shared;
        if (!growArray(&shared, &book->sharedCapacity, book->sharedCount + 1, sizeof(char*))) {
            return LIBXLS_ERROR_MALLOC;
        }
        book->shared = static_cast<char**>(shared);
        xls_error_t error =
            takeWideString(book, &cursor, 2, &book->texts, &book->shared[book->sharedCount]);
        if (error != LIBXLS_OK) {
            return error;
        }
        book->sharedCount++;
    }
    return LIBXLS_OK;
}

xls_error_t readSheetEntry(xlsWorkBook* workbook, const Record* record) {
    xlsBookState* book = workbook->state;
    xlsSheetList* list = &workbook->sheets;
    if (record->size < 6) {
        return LIBXLS_ERROR_PARSE;
    }
    void* sheets = list->sheet;
    if (!growArray(&sheets, &book->sheetCapacity, size_t{list->count} + 1, sizeof(xlsSheetEntry))) {
        return LIBXLS_ERROR_MALLOC;
    }
    list->sheet = static_cast<xlsSheetEntry*>(sheets);
    xlsSheetEntry* entry = &list->sheet[list->count];
    entry->filepos = getLe32(record->data);
    entry->visibility = record->data[4] & 3;
    entry->type = record->data[5];
    xls_error_t error = takeString(book, record, 6, 1, &book->texts, &entry->name);
    if (error == LIBXLS_OK) {
        list->count++;
    }
    return error;
}

// Puts the sheets in the order of their places in the stream, so that each finds its end at once.
xls_error_t sortSheets(xlsWorkBook* workbook) {
    const uint8_t basicModule = 6;  // lives in another stream, so its position means nothing
    xlsBookState* book = workbook->state;
    const xlsSheetEntry* entries = workbook->sheets.sheet;
    uint32_t count = workbook->sheets.count;
    book->byPosition = static_cast<uint32_t*>(calloc(count + size_t{1}, sizeof(uint32_t)));
    if (book->byPosition == nullptr) {
        return LIBXLS_ERROR_MALLOC;
    }
    for (uint32_t i = 0; i < count; i++) {
        if (entries[i].type != basicModule) {
            book->byPosition[book->positionCount++] = i;
        }
    }
    std::sort(book->byPosition, book->byPosition + book->positionCount,
              [entries](uint32_t a, uint32_t b) {
                  return entries[a].filepos != entries[b].filepos
                             ? entries[a].filepos < entries[b].filepos
                             : a < b;
              });
    return LIBXLS_OK;
}

// Reads the stream's first part, up to its EOF.
xls_error_t readGlobals(xlsWorkBook* workbook) {
    xlsBookState* book = workbook->state;
    Record record;
    if (!readRecord(&book->stream, 0, &record) || record.id != BIFF_BOF || record.size < 4 ||
        getLe16(record.data + 2) != kBiffGlobals) {
        return LIBXLS_ERROR_PARSE;
    }
    unsigned version = getLe16(record.data);
    if (version != kBiffVersion5 && version != kBiffVersion8) {
        return LIBXLS_ERROR_PARSE;
    }
    book->wideStrings = version == kBiffVersion8;
    while (readRecord(&book->stream, record.next, &record)) {
        xls_error_t error = LIBXLS_OK;
        switch (record.id) {
            case BIFF_EOF:
                return sortSheets(workbook);
            case BIFF_FILEPASS:
                return LIBXLS_ERROR_UNSUPPORTED_ENCRYPTION;
            case BIFF_CODEPAGE:
                book->codePage = record.size >= 2 ? getLe16(record.data) : 0;
                break;
            case BIFF_BOUNDSHEET:
                error = readSheetEntry(workbook, &record);
                break;
            case BIFF_SST:
                error = readSharedStrings(book, &record);
                break;
            default:
                break;
        }
        if (error != LIBXLS_OK) {
            return error;
        }
    }
    return LIBXLS_ERROR_PARSE;
}

// ---- Cells ----

bool cellBefore(const xlsCell& a, const xlsCell& b) {
    return a.row != b.row ? a.row < b.row : a.col < b.col;
}

void noteRow(xlsWorkSheet* sheet, unsigned row) {
    if (row > sheet->rows.lastrow) {
        sheet->rows.lastrow = static_cast<uint16_t>(row);
    }
}

void noteColumn(xlsWorkSheet* sheet, unsigned col) {
    if (col > sheet->rows.lastcol) {
        sheet->rows.lastcol = static_cast<uint16_t>(col);
    }
}

// Adds a cell without a value; null without memory.
xlsCell* addCell(xlsWorkSheet* sheet, unsigned id, unsigned row, unsigned col) {
    xlsSheetState* state = sheet->state;
    void* cells = state->cells;
    if (!growArray(&cells, &state->cellCapacity, state->cellCount + 1, sizeof(xlsCell))) {
        return nullptr;
    }
    state->cells = static_cast<xlsCell*>(cells);
    xlsCell* cell = &state->cells[state->cellCount];
    *cell = xlsCell{static_cast<uint16_t>(id), static_cast<uint16_t>(row),
                    static_cast<uint16_t>(col), 0, nullptr};
    if (state->cellCount > 0 && !cellBefore(cell[-1], *cell)) {
        state->sorted = false;
    }
    state->cellCount++;
    noteRow(sheet, row);
    noteColumn(sheet, col);
    return cell;
}

xls_error_t setText(xlsSheetState* state, xlsCell* cell, const char* text) {
    cell->str = arenaCopy(&state->texts, text, strlen(text));
    return cell->str != nullptr ? LIBXLS_OK : LIBXLS_ERROR_MALLOC;
}

xls_error_t setNumber(xlsSheetState* state, xlsCell* cell, double value) {
    char text[40];
    snprintf(text, sizeof text, "%.15g", value);
    cell->d = value;
    return setText(state, cell, text);
}

xls_error_t setBoolOrError(xlsSheetState* state, xlsCell* cell, unsigned value, bool isError) {
    static const struct {
        unsigned code;
        const char* text;
    } errors[] = {{0x00, "#NULL!"}, {0x07, "#DIV/0!"}, {0x0F, "#VALUE!"}, {0x17, "#REF!"},
                  {0x1D, "#NAME?"}, {0x24, "#NUM!"},   {0x2A, "#N/A"}};
    cell->d = value;
    if (!isError) {
        return setText(state, cell, value != 0 ? "TRUE" : "FALSE");
    }
    for (const auto& error : errors) {
        if (error.code == value) {
            return setText(state, cell, error.text);
        }
    }
    return setText(state, cell, "#ERROR!");
}

double getDouble(const uint8_t* p) {
    uint64_t bits = getLe64(p);
    double value = 0;
    memcpy(&value, &bits, sizeof value);
    return value;
}

// A number in four bytes: the upper 30 bits are an integer or the top of a double; xxxxxx1x says
// which, and xxxxxxx1 that it is to be divided by 100.
double numberFromRk(uint32_t rk) {
    double value = 0;
    if ((rk & 2) != 0) {
        // An arithmetic shift by two, without relying on that of negative numbers.
        value = static_cast<double>((static_cast<int64_t>(rk & ~3u) ^ 0x80000000) - 0x80000000) / 4;
    } else {
        uint64_t bits = static_cast<uint64_t>(rk & ~3u) << 32;
        memcpy(&value, &bits, sizeof value);
    }
    return (rk & 1) != 0 ? value / 100 : value;
}

// ROW and MULBLANK hold no values: they count for the last row and column only.
xls_error_t readRow(xlsWorkSheet* sheet, const Record* record) {
    noteRow(sheet, getLe16(record->data));
    return LIBXLS_OK;
}

xls_error_t readBlanks(xlsWorkSheet* sheet, const Record* record) {
    noteRow(sheet, getLe16(record->data));
    noteColumn(sheet, record->id == BIFF_MULBLANK ? getLe16(record->data + record->size - 2)
                                                  : getLe16(record->data + 2));
    return LIBXLS_OK;
}

xls_error_t readManyRk(xlsWorkSheet* sheet, const Record* record) {
    unsigned row = getLe16(record->data);
    unsigned col = getLe16(record->data + 2);
    noteRow(sheet, row);
    for (size_t at = 4; at + 6 + 2 <= record->size; at += 6, col++) {
        xlsCell* cell = col <= UINT16_MAX ? addCell(sheet, record->id, row, col) : nullptr;
        if (cell == nullptr) {
            return col <= UINT16_MAX ? LIBXLS_ERROR_MALLOC : LIBXLS_ERROR_PARSE;
        }
        xls_error_t error =
            setNumber(sheet->state, cell, numberFromRk(getLe32(record->data + at + 2)));
        if (error != LIBXLS_OK) {
            return error;
        }
    }
    return LIBXLS_OK;
}

xls_error_t readFormula(xlsSheetState* state, const uint8_t* result, xlsCell* cell) {
    if (getLe16(result + 6) != 0xFFFF) {
        return setNumber(state, cell, getDouble(result));
    }
    switch (result[0]) {
        case 0:
            state->stringIsNext = true;
            return LIBXLS_OK;
        case 1:
        case 2:
            return setBoolOrError(state, cell, result[2], result[0] == 2);
        default:
            return setText(state, cell, "");
    }
}

// Reads a record that holds one cell with a value. All begin with row, column and format.
xls_error_t readCell(xlsWorkSheet* sheet, const Record* record) {
    xlsSheetState* state = sheet->state;
    const uint8_t* data = record->data;
    xlsCell* cell = addCell(sheet, record->id, getLe16(data), getLe16(data + 2));
    if (cell == nullptr) {
        return LIBXLS_ERROR_MALLOC;
    }
    switch (record->id) {
        case BIFF_NUMBER:
            return setNumber(state, cell, getDouble(data + 6));
        case BIFF_RK:
            return setNumber(state, cell, numberFromRk(getLe32(data + 6)));
        case BIFF_BOOLERR:
            return setBoolOrError(state, cell, data[6], data[7] != 0);
        case BIFF_FORMULA:
        case BIFF_FORMULA3:
        case BIFF_FORMULA4:
            return readFormula(state, data + 6, cell);
        case BIFF_LABELSST: {
            uint32_t index = getLe32(data + 6);
            if (index >= state->book->sharedCount) {
                return LIBXLS_ERROR_PARSE;
            }
            cell->str = state->book->shared[index];
            return LIBXLS_OK;
        }
        default:  // LABEL and RSTRING; the formatting runs of the latter are of no interest
            return takeString(state->book, record, 6, 2, &state->texts, &cell->str);
    }
}

// The text of the formula before it. Between the two there may be records of a shared formula.
xls_error_t readFormulaText(xlsWorkSheet* sheet, const Record* record) {
    xlsSheetState* state = sheet->state;
    if (!state->stringIsNext) {
        return LIBXLS_OK;
    }
    state->stringIsNext = false;
    return takeString(state->book, record, 0, 2, &state->texts,
                      &state->cells[state->cellCount - 1].str);
}

struct CellReader {
    unsigned id;
    size_t leastSize;
    xls_error_t (*read)(xlsWorkSheet* sheet, const Record* record);
};

const CellReader kCellReaders[] = {
    {BIFF_LABELSST, 10, readCell},  {BIFF_ROW, 2, readRow},       {BIFF_RK, 10, readCell},
    {BIFF_NUMBER, 14, readCell},    {BIFF_LABEL, 8, readCell},    {BIFF_RSTRING, 8, readCell},
    {BIFF_BOOLERR, 8, readCell},    {BIFF_FORMULA, 14, readCell}, {BIFF_MULRK, 6, readManyRk},
    {BIFF_MULBLANK, 6, readBlanks}, {BIFF_BLANK, 4, readBlanks},  {BIFF_FORMULA3, 14, readCell},
    {BIFF_FORMULA4, 14, readCell},
};

xls_error_t readSheetRecord(xlsWorkSheet* sheet, const Record* record) {
    if (record->id == BIFF_STRING) {
        return readFormulaText(sheet, record);
    }
    for (const CellReader& reader : kCellReaders) {
        if (reader.id == record->id) {
            sheet->state->stringIsNext = false;
            return record->size >= reader.leastSize ? reader.read(sheet, record)
                                                    : LIBXLS_ERROR_PARSE;
        }
    }
    return LIBXLS_OK;
}

xls_error_t readSheetRecords(xlsWorkSheet* sheet) {
    const ByteBuffer* stream = &sheet->state->book->stream;
    Record record;
    if (!readRecord(stream, sheet->state->start, &record) || record.id != BIFF_BOF) {
        return LIBXLS_ERROR_PARSE;
    }
    size_t depth = 1;
    while (readRecord(stream, record.next, &record) && record.next <= sheet->state->end) {
        if (record.id == BIFF_BOF) {
            depth++;
        } else if (record.id == BIFF_EOF) {
            if (--depth == 0) {
                return LIBXLS_OK;
            }
        } else if (depth == 1) {
            xls_error_t error = readSheetRecord(sheet, &record);
            if (error != LIBXLS_OK) {
                return error;
            }
        }
    }
    return LIBXLS_ERROR_PARSE;
}

// Finds the sheet's part of the stream. Sheets do not overlap; were they let, a small file could
// keep the reader busy for hours by naming the same records thousands of times. Of several that
// start at one place the first has the records.
void findExtent(const xlsWorkBook* workbook, uint32_t index, xlsSheetState* state) {
    const xlsSheetEntry* entries = workbook->sheets.sheet;
    const xlsBookState* book = workbook->state;
    const uint32_t* first = book->byPosition;
    const uint32_t* end = first + book->positionCount;
    size_t start = entries[index].filepos;
    const uint32_t* same = std::lower_bound(
        first, end, start,
        [entries](uint32_t sheet, size_t place) { return entries[sheet].filepos < place; });
    const uint32_t* next = std::upper_bound(
        same, end, start,
        [entries](size_t place, uint32_t sheet) { return place < entries[sheet].filepos; });
    state->start = start;
    state->end = book->stream.size;
    if (next != end && entries[*next].filepos < state->end) {
        state->end = entries[*next].filepos;
    }
    if (same != next && *same < index) {
        state->end = start;
    }
}

void clearSheet(xlsWorkSheet* sheet) {
    xlsSheetState* state = sheet->state;
    free(state->cells);
    arenaFree(&state->texts);
    state->cells = nullptr;
    state->cellCount = 0;
    state->cellCapacity = 0;
    state->sorted = true;
    state->stringIsNext = false;
    sheet->rows = xlsRows{};
}

// ---- Files ----

xls_error_t readWhole(int fd, ByteBuffer* content) {
    struct stat status;
    if (fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) {
        return LIBXLS_ERROR_OPEN;
    }
    if (status.st_size > static_cast<off_t>(kMaxFileSize)) {
        return LIBXLS_ERROR_READ;
    }
    size_t size = static_cast<size_t>(status.st_size);
    if (!bufferReserve(content, size)) {
        return LIBXLS_ERROR_MALLOC;
    }
    while (content->size < size) {
        ssize_t got = read(fd, content->data + content->size, size - content->size);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            return LIBXLS_ERROR_READ;
        }
        if (got == 0) {
            break;
        }
        content->size += static_cast<size_t>(got);
    }
    return LIBXLS_OK;
}

xls_error_t errorFromCfb(CfbResult result) {
    switch (result) {
        case CFB_OK:
            return LIBXLS_OK;
        case CFB_BROKEN_CHAIN:
            return LIBXLS_ERROR_SEEK;
        case CFB_NO_MEMORY:
            return LIBXLS_ERROR_MALLOC;
        default:
            return LIBXLS_ERROR_PARSE;
    }
}

xls_error_t readBook(xlsWorkBook* workbook, const unsigned char* data, size_t size) {
    // The stream's name in BIFF8 and in BIFF5; a file with both is meant for either reader.
    static const char* const names[] = {"Workbook", "Book"};
    CfbResult result = cfbReadStream(data, size, names, 2, &workbook->state->stream);
    return result == CFB_OK ? readGlobals(workbook) : errorFromCfb(result);
}

xlsWorkBook* newBook() {
    xlsWorkBook* workbook = static_cast<xlsWorkBook*>(calloc(1, sizeof(xlsWorkBook)));
    xlsBookState* state = static_cast<xlsBookState*>(calloc(1, sizeof(xlsBookState)));
    if (workbook == nullptr || state == nullptr) {
        free(workbook);
        free(state);
        return nullptr;
    }
    workbook->state = state;
    return workbook;
}

bool charsetIsUtf8(const char* charset) {
    return charset == nullptr || strcasecmp(charset, "UTF-8") == 0;
}

}  // namespace

xlsWorkBook* xls_open_buffer(const unsigned char* data, size_t size, const char* charset,
                             xls_error_t* outError) {
    xls_error_t error = LIBXLS_OK;
    xlsWorkBook* workbook = nullptr;
    if (data == nullptr) {
        error = LIBXLS_ERROR_NULL_ARGUMENT;
    } else if (!charsetIsUtf8(charset)) {
        error = LIBXLS_ERROR_OPEN;
    } else {
        workbook = newBook();
        error = workbook != nullptr ? readBook(workbook, data, size) : LIBXLS_ERROR_MALLOC;
    }
    if (error != LIBXLS_OK) {
        xls_close_WB(workbook);
        workbook = nullptr;
    }
    if (outError != nullptr) {
        *outError = error;
    }
    return workbook;
}

xlsWorkBook* xls_open_file(const char* file, const char* charset, xls_error_t* outError) {
    xls_error_t error = file == nullptr ? LIBXLS_ERROR_NULL_ARGUMENT : LIBXLS_ERROR_OPEN;
    xlsWorkBook* workbook = nullptr;
    ByteBuffer content = {};
    // Without O_NONBLOCK a named pipe in the file's place would hold the program up for ever.
    int fd = file != nullptr ? open(file, O_RDONLY | O_CLOEXEC | O_NONBLOCK) : -1;
    if (fd >= 0) {
        error = readWhole(fd, &content);
        close(fd);
    }
    if (error == LIBXLS_OK) {
        static const unsigned char nothing = 0;
        const unsigned char* data = content.data != nullptr ? content.data : &nothing;
        workbook = xls_open_buffer(data, content.size, charset, &error);
    }
    bufferFree(&content);
    if (outError != nullptr) {
        *outError = error;
    }
    return workbook;
}

const char* xls_getError(xls_error_t code) {
    switch (code) {
        case LIBXLS_OK:
            return "No error";
        case LIBXLS_ERROR_OPEN:
            return "Unable to open file";
        case LIBXLS_ERROR_SEEK:
            return "Unable to seek within file";
        case LIBXLS_ERROR_READ:
            return "Unable to read from file";
        case LIBXLS_ERROR_PARSE:
            return "Unable to parse file";
        case LIBXLS_ERROR_MALLOC:
            return "Unable to allocate memory";
        case LIBXLS_ERROR_UNSUPPORTED_ENCRYPTION:
            return "Unsupported encryption scheme";
        case LIBXLS_ERROR_NULL_ARGUMENT:
            return "A required argument was NULL";
    }
    return "Unknown error";
}

xlsWorkSheet* xls_getWorkSheet(xlsWorkBook* workbook, int index) {
    if (workbook == nullptr || index < 0 ||
        static_cast<uint32_t>(index) >= workbook->sheets.count) {
        return nullptr;
    }
    xlsWorkSheet* sheet = static_cast<xlsWorkSheet*>(calloc(1, sizeof(xlsWorkSheet)));
    xlsSheetState* state = static_cast<xlsSheetState*>(calloc(1, sizeof(xlsSheetState)));
    if (sheet == nullptr || state == nullptr) {
        free(sheet);
        free(state);
        return nullptr;
    }
    state->book = workbook->state;
    findExtent(workbook, static_cast<uint32_t>(index), state);
    sheet->state = state;
    return sheet;
}

xls_error_t xls_parseWorkSheet(xlsWorkSheet* sheet) {
    if (sheet == nullptr) {
        return LIBXLS_ERROR_NULL_ARGUMENT;
    }
    clearSheet(sheet);
    xls_error_t error = readSheetRecords(sheet);
    xlsSheetState* state = sheet->state;
    if (error != LIBXLS_OK) {
        clearSheet(sheet);
    } else if (!state->sorted) {
        std::stable_sort(state->cells, state->cells + state->cellCount, cellBefore);
    }
    return error;
}

xlsCell* xls_cell(xlsWorkSheet* sheet, uint16_t row, uint16_t col) {
    if (sheet == nullptr || row > sheet->rows.lastrow || col > sheet->rows.lastcol) {
        return nullptr;
    }
    xlsSheetState* state = sheet->state;
    xlsCell wanted = {0, row, col, 0, nullptr};
    xlsCell* end = state->cells + state->cellCount;
    // The last one of the place counts, where a file has several.
    xlsCell* behind = std::upper_bound(state->cells, end, wanted, cellBefore);
    if (behind != state->cells && behind[-1].row == row && behind[-1].col == col) {
        return &behind[-1];
    }
    state->blank = wanted;
    return &state->blank;
}

void xls_close_WS(xlsWorkSheet* sheet) {
    if (sheet != nullptr) {
        clearSheet(sheet);
        free(sheet->state);
        free(sheet);
    }
}

void xls_close_WB(xlsWorkBook* workbook) {
    if (workbook == nullptr) {
        return;
    }
    xlsBookState* state = workbook->state;
    bufferFree(&state->stream);
    free(state->units);
    bufferFree(&state->utf8);
    arenaFree(&state->texts);
    free(state->shared);
    free(state->byPosition);
    free(state);
    free(workbook->sheets.sheet);
    free(workbook);
}

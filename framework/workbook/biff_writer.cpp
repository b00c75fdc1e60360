// The workbook writer. A report is saved after every row of a run, so nothing is encoded twice:
// a sheet keeps the records of its rows as bytes, of which those before the first changed row stay
// valid, and the table of shared strings grows as records too. A save puts these pieces together
// in one buffer that is used again each time; only the sheets' positions are computed anew.
//
// What is written is what all readers of the format agree on: four fonts and sixteen formats, for
// less is not read by some, a table of shared strings, and a stream too long for the mini stream.
#include <errno.h>
#include <stdlib.h>
#include <string.h>

#include "framework/workbook/atomic_file.h"
#include "framework/workbook/biff.h"
#include "framework/workbook/bytes.h"
#include "framework/workbook/cfb.h"
#include "framework/workbook/text.h"
#include "framework/workbook/xlslib.h"

namespace {

const unsigned kMaxRow = 0xFFFF;
const unsigned kMaxCol = 0xFF;
const size_t kMaxSheets = 0xFFFF;
const size_t kMaxText = 32767;
const size_t kMaxSheetName = 31;
const unsigned kCellFormat = 15;  // the formats before it are those of styles
const size_t kLabelSize = kBiffHeaderSize + 10;
const size_t kRkSize = kBiffHeaderSize + 10;
const size_t kNumberSize = kBiffHeaderSize + 14;
const size_t kRowSize = kBiffHeaderSize + 16;
const size_t kBofSize = kBiffHeaderSize + 16;
const size_t kDimensionsSize = kBiffHeaderSize + 14;
const size_t kWindow2Size = kBiffHeaderSize + 18;
const size_t kEofSize = kBiffHeaderSize;
const int kRkMax = (1 << 29) - 1;

enum CellKind : uint16_t { CELL_EMPTY, CELL_LABEL, CELL_NUMBER };

struct Cell {
    uint16_t col;
    CellKind kind;
    uint32_t value;  // of a label: its shared string; of a number: its bits
};

struct Row {
    unsigned row;
    size_t offset;  // of its records, if it is one of the sheet's clean rows
    Cell* cells;    // in the order of columns
    size_t cellCount;
    size_t cellCapacity;
};

struct SharedString {
    char* text;  // as it was given
    uint32_t hash;
};

// The shared strings, and their records, complete but for the counts in the first.
struct StringTable {
    StringArena texts;
    SharedString* strings;
    size_t count;
    size_t capacity;
    uint32_t* slots;  // a hash table of string numbers + 1; 0 is free
    size_t slotCount;
    ByteBuffer records;
    size_t openRecord;  // offset of the last record
    uint32_t uses;      // cells that show a shared string
};

}  // namespace

struct cell_t {
    unsigned row;
    unsigned col;
};

struct worksheet {
    workbook* book;
    uint8_t name[2 * kMaxSheetName];  // as it is in the file
    uint8_t nameSize;
    uint8_t nameLength;
    bool nameWide;
    Row* rows;  // in their order
    size_t rowCount;
    size_t rowCapacity;
    size_t cleanRows;    // so many rows are in `records` as they are now
    ByteBuffer records;  // of the rows
    unsigned colEnd;     // one more than the highest column used
    cell_t lastWritten;
};

struct workbook {
    worksheet** sheets;
    size_t sheetCount;
    size_t sheetCapacity;
    StringTable strings;
    uint16_t* units;  // of the text being written
    ByteBuffer head;  // the records before those of the sheets' positions
    ByteBuffer file;  // the file of the last save
    int inPlace;      // why the last save could not replace the file, as errno has it; else 0
};

namespace {

uint8_t* putRecord(uint8_t* p, unsigned id, size_t size) {
    putLe16(p, id);
    putLe16(p + 2, static_cast<unsigned>(size));
    return p + kBiffHeaderSize;
}

uint8_t* putWords(uint8_t* p, const uint16_t* words, size_t count) {
    for (size_t i = 0; i < count; i++, p += 2) {
        putLe16(p, words[i]);
    }
    return p;
}

template <size_t count>
uint8_t* putWordRecord(uint8_t* p, unsigned id, const uint16_t (&words)[count]) {
    return putWords(putRecord(p, id, 2 * count), words, count);
}

uint8_t* putBof(uint8_t* p, uint16_t kind) {
    // Version, kind, build and year of the writing program, history and lowest reader's version.
    const uint16_t words[] = {kBiffVersion8, kind, 0x0DBB, 0x07CC, 0x0041, 0, 0x0006, 0};
    return putWordRecord(p, BIFF_BOF, words);
}

bool fitsBytes(const uint16_t* units, size_t count) {
    for (size_t i = 0; i < count; i++) {
        if (units[i] > 0xFF) {
            return false;
        }
    }
    return true;
}

uint8_t* putUnits(uint8_t* p, const uint16_t* units, size_t count, bool wide) {
    if (wide) {
        return putWords(p, units, count);
    }
    for (size_t i = 0; i < count; i++) {
        *p++ = static_cast<uint8_t>(units[i]);
    }
    return p;
}

// ---- The globals ----

uint8_t* putFont(uint8_t* p) {
    // Height in 1/20 point, attributes, colour, weight, escapement, underline and family, charset.
    static const uint16_t words[] = {200, 0, 0x7FFF, 400, 0, 0, 0};
    static const char name[] = "Arial";
    size_t length = sizeof name - 1;
    p = putWords(putRecord(p, BIFF_FONT, sizeof words + 2 + length), words, 7);
    *p++ = static_cast<uint8_t>(length);
    *p++ = 0;  // one byte a character
    memcpy(p, name, length);
    return p + length;
}

uint8_t* putFormat(uint8_t* p, unsigned index) {
    // Font, number format, type and parent, alignment, rotation, which parts are the format's own,
    // borders in four words, fill colours.
    uint16_t words[] = {0, 0, 0xFFF5, 0x0020, 0xF400, 0, 0, 0, 0, 0x20C0};
    if (index == 0) {
        words[4] = 0;
    } else if (index == kCellFormat) {
        words[2] = 0x0001;
        words[4] = 0;
    }
    return putWordRecord(p, BIFF_XF, words);
}

bool buildHead(ByteBuffer* head) {
    static const uint16_t codePage[] = {1200};
    // Place and size of the window, options, active and first tab, selected tabs, tab bar's width.
    static const uint16_t window[] = {0x0168, 0x010E, 0x3A5C, 0x23BE, 0x0038, 0, 0, 1, 0x0258};
    static const uint16_t style[] = {0x8000, 0xFF00};  // "Normal" is format 0
    if (!bufferReserve(head, 1024)) {
        return false;
    }
    uint8_t* p = putBof(head->data, kBiffGlobals);
    p = putWordRecord(p, BIFF_CODEPAGE, codePage);
    p = putWordRecord(p, BIFF_WINDOW1, window);
    for (int i = 0; i < 4; i++) {
        p = putFont(p);
    }
    for (unsigned i = 0; i <= kCellFormat; i++) {
        p = putFormat(p, i);
    }
    p = putWordRecord(p, BIFF_STYLE, style);
    head->size = static_cast<size_t>(p - head->data);
    return true;
}

// ---- Shared strings ----

bool startTable(StringTable* table) {
    table->slotCount = 256;
    table->slots = static_cast<uint32_t*>(calloc(table->slotCount, sizeof(uint32_t)));
    if (table->slots == nullptr || !bufferReserve(&table->records, kBiffHeaderSize + 8)) {
        return false;
    }
    memset(putRecord(bufferExtend(&table->records, kBiffHeaderSize + 8), BIFF_SST, 8), 0, 8);
    return true;
}

uint32_t hashText(const char* text) {
    uint32_t hash = 2166136261u;  // FNV-1a
    for (; *text != '\0'; text++) {
        hash = (hash ^ static_cast<unsigned char>(*text)) * 16777619u;
    }
    return hash;
}

// The slot in which the text is or would be.
size_t findSlot(const StringTable* table, const char* text, uint32_t hash) {
    size_t slot = hash & (table->slotCount - 1);
    for (; table->slots[slot] != 0; slot = (slot + 1) & (table->slotCount - 1)) {
        const SharedString* string = &table->strings[table->slots[slot] - 1];
        if (string->hash == hash && strcmp(string->text, text) == 0) {
            break;
        }
    }
    return slot;
}

bool growSlots(StringTable* table) {
    size_t count = 2 * table->slotCount;
    uint32_t* slots = static_cast<uint32_t*>(calloc(count, sizeof(uint32_t)));
    if (slots == nullptr) {
        return false;
    }
    for (size_t i = 0; i < table->count; i++) {
        size_t slot = table->strings[i].hash & (count - 1);
        while (slots[slot] != 0) {
            slot = (slot + 1) & (count - 1);
        }
        slots[slot] = static_cast<uint32_t>(i + 1);
    }
    free(table->slots);
    table->slots = slots;
    table->slotCount = count;
    return true;
}

size_t openRecordRoom(const StringTable* table) {
    return kBiffHeaderSize + kBiffMaxContent - (table->records.size - table->openRecord);
}

void openContinue(StringTable* table) {
    table->openRecord = table->records.size;
    putRecord(bufferExtend(&table->records, kBiffHeaderSize), BIFF_CONTINUE, 0);
}

void closeRecord(StringTable* table) {
    size_t content = table->records.size - table->openRecord - kBiffHeaderSize;
    putLe16(table->records.data + table->openRecord + 2, static_cast<unsigned>(content));
}

// Appends a string to the records. Its header stays with at least its first character; its
// characters may go on in further records, each of which repeats the option byte.
bool encodeString(StringTable* table, const uint16_t* units, size_t count) {
    const size_t header = 3;
    bool wide = !fitsBytes(units, count);
    size_t width = wide ? 2 : 1;
    size_t records = count * width / (kBiffMaxContent - 2) + 2;
    if (!bufferReserve(&table->records, header + count * width + records * (kBiffHeaderSize + 1))) {
        return false;
    }
    if (openRecordRoom(table) < header + width) {
        openContinue(table);
    }
    uint8_t* p = bufferExtend(&table->records, header);
    putLe16(p, static_cast<unsigned>(count));
    p[2] = wide ? kBiffWide : 0;
    for (;;) {
        size_t fit = openRecordRoom(table) / width;
        size_t part = count < fit ? count : fit;
        putUnits(bufferExtend(&table->records, part * width), units, part, wide);
        closeRecord(table);
        units += part;
        count -= part;
        if (count == 0) {
            return true;
        }
        openContinue(table);
        *bufferExtend(&table->records, 1) = wide ? kBiffWide : 0;
    }
}

// The number of a text among the shared strings, where it is put when it is new.
bool shareString(workbook* book, const char* text, uint32_t* number) {
    StringTable* table = &book->strings;
    uint32_t hash = hashText(text);
    size_t slot = findSlot(table, text, hash);
    if (table->slots[slot] != 0) {
        *number = table->slots[slot] - 1;
        return true;
    }
    if (2 * (table->count + 1) > table->slotCount) {
        if (!growSlots(table)) {
            return false;
        }
        slot = findSlot(table, text, hash);
    }
    void* strings = table->strings;
    if (!growArray(&strings, &table->capacity, table->count + 1, sizeof(SharedString))) {
        return false;
    }
    table->strings = static_cast<SharedString*>(strings);
    char* copy = arenaCopy(&table->texts, text, strlen(text));
    if (copy == nullptr ||
        !encodeString(table, book->units, utf16FromUtf8(text, book->units, kMaxText))) {
        return false;
    }
    *number = static_cast<uint32_t>(table->count);
    table->strings[table->count++] = SharedString{copy, hash};
    table->slots[slot] = static_cast<uint32_t>(table->count);
    return true;
}

// ---- Cells ----

// Finds a row, or makes it; null without memory. Runs write downwards, so the search starts below.
Row* rowFor(worksheet* sheet, unsigned row) {
    size_t at = sheet->rowCount;
    while (at > 0 && sheet->rows[at - 1].row > row) {
        at--;
    }
    if (at > 0 && sheet->rows[at - 1].row == row) {
        return &sheet->rows[at - 1];
    }
    void* rows = sheet->rows;
    if (!growArray(&rows, &sheet->rowCapacity, sheet->rowCount + 1, sizeof(Row))) {
        return nullptr;
    }
    sheet->rows = static_cast<Row*>(rows);
    memmove(&sheet->rows[at + 1], &sheet->rows[at], (sheet->rowCount - at) * sizeof(Row));
    sheet->rows[at] = Row{row, 0, nullptr, 0, 0};
    sheet->rowCount++;
    return &sheet->rows[at];
}

Cell* cellFor(Row* row, unsigned col) {
    size_t at = row->cellCount;
    while (at > 0 && row->cells[at - 1].col > col) {
        at--;
    }
    if (at > 0 && row->cells[at - 1].col == col) {
        return &row->cells[at - 1];
    }
    void* cells = row->cells;
    if (!growArray(&cells, &row->cellCapacity, row->cellCount + 1, sizeof(Cell))) {
        return nullptr;
    }
    row->cells = static_cast<Cell*>(cells);
    memmove(&row->cells[at + 1], &row->cells[at], (row->cellCount - at) * sizeof(Cell));
    row->cells[at] = Cell{static_cast<uint16_t>(col), CELL_EMPTY, 0};
    row->cellCount++;
    return &row->cells[at];
}

// From this row on, the records are to be made again.
void markChanged(worksheet* sheet, const Row* row) {
    size_t index = static_cast<size_t>(row - sheet->rows);
    if (index < sheet->cleanRows) {
        sheet->cleanRows = index;
        sheet->records.size = row->offset;
    }
}

cell_t* setCell(worksheet* sheet, unsigned row, unsigned col, CellKind kind, uint32_t value) {
    size_t rowsBefore = sheet->rowCount;
    Row* place = rowFor(sheet, row);
    if (place == nullptr) {
        return nullptr;
    }
    if (sheet->rowCount != rowsBefore) {
        // The rows behind a new one have moved, so it must not be taken for one of them.
        size_t index = static_cast<size_t>(place - sheet->rows);
        if (index < sheet->cleanRows) {
            sheet->cleanRows = index;
            sheet->records.size = place[1].offset;
        }
    }
    Cell* cell = cellFor(place, col);
    if (cell == nullptr) {
        return nullptr;
    }
    markChanged(sheet, place);
    StringTable* strings = &sheet->book->strings;
    strings->uses -= cell->kind == CELL_LABEL ? 1 : 0;
    strings->uses += kind == CELL_LABEL ? 1 : 0;
    cell->kind = kind;
    cell->value = value;
    sheet->colEnd = col >= sheet->colEnd ? col + 1 : sheet->colEnd;
    sheet->lastWritten = cell_t{row, col};
    return &sheet->lastWritten;
}

bool placeIsValid(const worksheet* sheet, unsigned row, unsigned col) {
    return sheet != nullptr && row <= kMaxRow && col <= kMaxCol;
}

uint8_t* putCellPlace(uint8_t* p, unsigned row, unsigned col) {
    putLe16(p, row);
    putLe16(p + 2, col);
    putLe16(p + 4, kCellFormat);
    return p + 6;
}

uint8_t* putNumber(uint8_t* p, unsigned row, unsigned col, int value) {
    if (value >= -kRkMax - 1 && value <= kRkMax) {
        p = putCellPlace(putRecord(p, BIFF_RK, kRkSize - kBiffHeaderSize), row, col);
        putLe32(p, static_cast<uint32_t>(value) << 2 | 2);  // xxxxxx1x: an integer
        return p + 4;
    }
    double number = value;
    uint64_t bits = 0;
    memcpy(&bits, &number, sizeof bits);
    p = putCellPlace(putRecord(p, BIFF_NUMBER, kNumberSize - kBiffHeaderSize), row, col);
    putLe64(p, bits);
    return p + 8;
}

uint8_t* putLabel(uint8_t* p, unsigned row, unsigned col, uint32_t string) {
    p = putCellPlace(putRecord(p, BIFF_LABELSST, kLabelSize - kBiffHeaderSize), row, col);
    putLe32(p, string);
    return p + 4;
}

// Appends the records of a row.
bool encodeRow(ByteBuffer* records, Row* row) {
    if (!bufferReserve(records, kRowSize + row->cellCount * kNumberSize)) {
        return false;
    }
    unsigned first = row->cellCount > 0 ? row->cells[0].col : 0;
    unsigned end = row->cellCount > 0 ? row->cells[row->cellCount - 1].col + 1u : 0;
    // Number, columns, height in 1/20 point, reserved, options with the number of the format.
    const uint16_t words[] = {static_cast<uint16_t>(row->row),
                              static_cast<uint16_t>(first),
                              static_cast<uint16_t>(end),
                              255,
                              0,
                              0,
                              0x0100,
                              kCellFormat};
    row->offset = records->size;
    uint8_t* p = putWordRecord(records->data + records->size, BIFF_ROW, words);
    for (size_t i = 0; i < row->cellCount; i++) {
        const Cell* cell = &row->cells[i];
        if (cell->kind == CELL_LABEL) {
            p = putLabel(p, row->row, cell->col, cell->value);
        } else if (cell->kind == CELL_NUMBER) {
            p = putNumber(p, row->row, cell->col, static_cast<int>(cell->value));
        }
    }
    records->size = static_cast<size_t>(p - records->data);
    return true;
}

bool encodeRows(worksheet* sheet) {
    for (; sheet->cleanRows < sheet->rowCount; sheet->cleanRows++) {
        if (!encodeRow(&sheet->records, &sheet->rows[sheet->cleanRows])) {
            return false;
        }
    }
    return true;
}

// ---- Saving ----

size_t sheetSize(const worksheet* sheet) {
    return kBofSize + kDimensionsSize + sheet->records.size + kWindow2Size + kEofSize;
}

size_t positionSize(const worksheet* sheet) {
    return kBiffHeaderSize + 8 + sheet->nameSize;
}

uint8_t* putPosition(uint8_t* p, const worksheet* sheet, size_t position) {
    p = putRecord(p, BIFF_BOUNDSHEET, positionSize(sheet) - kBiffHeaderSize);
    putLe32(p, static_cast<uint32_t>(position));
    putLe16(p + 4, 0);  // a visible worksheet
    p[6] = sheet->nameLength;
    p[7] = sheet->nameWide ? kBiffWide : 0;
    memcpy(p + 8, sheet->name, sheet->nameSize);
    return p + 8 + sheet->nameSize;
}

uint8_t* putBytes(uint8_t* p, const ByteBuffer* buffer) {
    if (buffer->size > 0) {
        memcpy(p, buffer->data, buffer->size);
    }
    return p + buffer->size;
}

uint8_t* putStrings(uint8_t* p, const StringTable* table) {
    uint8_t* end = putBytes(p, &table->records);
    putLe32(p + kBiffHeaderSize, table->uses);
    putLe32(p + kBiffHeaderSize + 4, static_cast<uint32_t>(table->count));
    return end;
}

uint8_t* putSheet(uint8_t* p, const worksheet* sheet, bool selected) {
    unsigned firstRow = sheet->rowCount > 0 ? sheet->rows[0].row : 0;
    unsigned rowEnd = sheet->rowCount > 0 ? sheet->rows[sheet->rowCount - 1].row + 1 : 0;
    p = putBof(p, kBiffWorksheet);
    p = putRecord(p, BIFF_DIMENSIONS, kDimensionsSize - kBiffHeaderSize);
    putLe32(p, firstRow);
    putLe32(p + 4, rowEnd);
    putLe16(p + 8, 0);
    putLe16(p + 10, sheet->colEnd);
    putLe16(p + 12, 0);
    p = putBytes(p + 14, &sheet->records);
    // Options (grid, headings, zeros; xxxxx11x xxxxxxxx: selected and shown), then the first
    // visible cell, the grid's colour and the magnifications, all by default.
    const uint16_t window[] = {
        static_cast<uint16_t>(selected ? 0x06B6 : 0x00B6), 0, 0, 0x0040, 0, 0, 0, 0, 0};
    p = putWordRecord(p, BIFF_WINDOW2, window);
    return putRecord(p, BIFF_EOF, 0);
}

// Puts the whole file together in the book's buffer.
bool encodeFile(workbook* book) {
    size_t globals = book->head.size + book->strings.records.size + kEofSize;
    for (size_t i = 0; i < book->sheetCount; i++) {
        if (!encodeRows(book->sheets[i])) {
            return false;
        }
        globals += positionSize(book->sheets[i]);
    }
    size_t size = globals;
    for (size_t i = 0; i < book->sheetCount; i++) {
        size += sheetSize(book->sheets[i]);
    }
    uint8_t* stream = cfbBeginFile(&book->file, size);
    if (stream == nullptr) {
        return false;
    }
    uint8_t* p = putBytes(stream, &book->head);
    size_t position = globals;
    for (size_t i = 0; i < book->sheetCount; i++) {
        p = putPosition(p, book->sheets[i], position);
        position += sheetSize(book->sheets[i]);
    }
    p = putStrings(p, &book->strings);
    p = putRecord(p, BIFF_EOF, 0);
    for (size_t i = 0; i < book->sheetCount; i++) {
        p = putSheet(p, book->sheets[i], i == 0);
    }
    cfbEndFile(&book->file, size, "Workbook");
    return true;
}

bool syncIsOn() {
    const char* setting = getenv("ZK_REPORT_SYNC");
    return setting == nullptr || strcmp(setting, "0") != 0;
}

void freeSheet(worksheet* sheet) {
    for (size_t i = 0; i < sheet->rowCount; i++) {
        free(sheet->rows[i].cells);
    }
    free(sheet->rows);
    bufferFree(&sheet->records);
    free(sheet);
}

}  // namespace

workbook* xlsNewWorkbook(void) {
    workbook* book = static_cast<workbook*>(calloc(1, sizeof(workbook)));
    if (book == nullptr) {
        return nullptr;
    }
    book->units = static_cast<uint16_t*>(malloc(kMaxText * sizeof(uint16_t)));
    if (book->units == nullptr || !buildHead(&book->head) || !startTable(&book->strings)) {
        xlsDeleteWorkbook(book);
        return nullptr;
    }
    return book;
}

void xlsDeleteWorkbook(workbook* book) {
    if (book == nullptr) {
        return;
    }
    for (size_t i = 0; i < book->sheetCount; i++) {
        freeSheet(book->sheets[i]);
    }
    free(book->sheets);
    arenaFree(&book->strings.texts);
    free(book->strings.strings);
    free(book->strings.slots);
    bufferFree(&book->strings.records);
    free(book->units);
    bufferFree(&book->head);
    bufferFree(&book->file);
    free(book);
}

worksheet* xlsWorkbookSheet(workbook* book, const char* name) {
    if (book == nullptr || name == nullptr || *name == '\0' || book->sheetCount >= kMaxSheets) {
        return nullptr;
    }
    void* sheets = book->sheets;
    if (!growArray(&sheets, &book->sheetCapacity, book->sheetCount + 1, sizeof(worksheet*))) {
        return nullptr;
    }
    book->sheets = static_cast<worksheet**>(sheets);
    worksheet* sheet = static_cast<worksheet*>(calloc(1, sizeof(worksheet)));
    if (sheet == nullptr) {
        return nullptr;
    }
    uint16_t units[kMaxSheetName];
    size_t length = utf16FromUtf8(name, units, kMaxSheetName);
    sheet->book = book;
    sheet->nameLength = static_cast<uint8_t>(length);
    sheet->nameWide = !fitsBytes(units, length);
    sheet->nameSize =
        static_cast<uint8_t>(putUnits(sheet->name, units, length, sheet->nameWide) - sheet->name);
    book->sheets[book->sheetCount++] = sheet;
    return sheet;
}

cell_t* xlsWorksheetLabel(worksheet* sheet, unsigned row, unsigned col, const char* text, xf_t*) {
    if (!placeIsValid(sheet, row, col) || text == nullptr) {
        return nullptr;
    }
    if (*text == '\0') {
        return setCell(sheet, row, col, CELL_EMPTY, 0);
    }
    uint32_t string = 0;
    if (!shareString(sheet->book, text, &string)) {
        return nullptr;
    }
    return setCell(sheet, row, col, CELL_LABEL, string);
}

cell_t* xlsWorksheetNumberInt(worksheet* sheet, unsigned row, unsigned col, int value, xf_t*) {
    if (!placeIsValid(sheet, row, col)) {
        return nullptr;
    }
    return setCell(sheet, row, col, CELL_NUMBER, static_cast<uint32_t>(value));
}

int xlsWorkbookDump(workbook* book, const char* file) {
    if (book == nullptr || file == nullptr || book->sheetCount == 0) {
        errno = EINVAL;
        return -1;
    }
    if (!encodeFile(book)) {
        errno = ENOMEM;
        return -1;
    }
    return replaceFile(file, book->file.data, book->file.size, syncIsOn(), &book->inPlace);
}

int xlsWorkbookInPlace(const workbook* book) {
    return book->inPlace;
}

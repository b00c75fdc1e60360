// Writing of compound files with a single stream. The stream comes first, so that its place does
// not depend on its length, and can be filled in where it will stay; behind it come the folder,
// the FAT and, over seven megabytes, the list of the FAT's further sectors (DIFAT). A stream is
// padded to the length from which on it needs no mini stream.
#include <string.h>

#include "framework/workbook/cfb.h"

namespace {

const size_t kSector = 512;
const size_t kPerSector = kSector / 4;
const size_t kMaxStream = size_t{1} << 30;

struct Layout {
    uint32_t stream;  // sectors of each kind, in the order of the file
    uint32_t folder;
    uint32_t fat;
    uint32_t difat;
};

uint32_t sectorsFor(size_t count, size_t perSector) {
    return static_cast<uint32_t>((count + perSector - 1) / perSector);
}

size_t paddedSize(size_t streamSize) {
    return streamSize < kCfbMiniCutoff ? kCfbMiniCutoff : streamSize;
}

Layout layOut(size_t streamSize) {
    Layout layout = {sectorsFor(paddedSize(streamSize), kSector), 1, 0, 0};
    // The FAT covers its own sectors and those of the DIFAT, so a few rounds settle it.
    for (;;) {
        uint32_t fat =
            sectorsFor(layout.stream + layout.folder + layout.fat + layout.difat, kPerSector);
        uint32_t difat =
            fat > kCfbHeaderFatEntries ? sectorsFor(fat - kCfbHeaderFatEntries, kPerSector - 1) : 0;
        if (fat == layout.fat && difat == layout.difat) {
            return layout;
        }
        layout.fat = fat;
        layout.difat = difat;
    }
}

void putHeader(uint8_t* p, const Layout& layout) {
    static const uint8_t magic[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
    uint32_t fatStart = layout.stream + layout.folder;
    memset(p, 0, kCfbHeaderSize);
    memcpy(p, magic, sizeof magic);
    putLe16(p + 24, 0x003E);  // minor version
    putLe16(p + 26, 0x0003);  // major version: sectors of 512 bytes
    putLe16(p + 28, 0xFFFE);  // little endian
    putLe16(p + 30, 9);       // 512 is 1 << 9
    putLe16(p + 32, 6);       // mini sectors of 64 bytes
    putLe32(p + 44, layout.fat);
    putLe32(p + 48, layout.stream);  // the folder's first sector
    putLe32(p + 56, kCfbMiniCutoff);
    putLe32(p + 60, kCfbEndOfChain);  // no mini FAT
    putLe32(p + 68, layout.difat > 0 ? fatStart + layout.fat : kCfbEndOfChain);
    putLe32(p + 72, layout.difat);
    for (uint32_t i = 0; i < kCfbHeaderFatEntries; i++) {
        putLe32(p + 76 + 4 * i, i < layout.fat ? fatStart + i : kCfbFree);
    }
}

void putEntry(uint8_t* p, const char* name, uint8_t type, uint32_t child, uint32_t start,
              uint32_t size) {
    memset(p, 0, kCfbEntrySize);
    size_t length = strlen(name);
    for (size_t i = 0; i < length; i++) {
        putLe16(p + 2 * i, static_cast<unsigned char>(name[i]));
    }
    putLe16(p + 64, static_cast<unsigned>(2 * (length + 1)));
    p[66] = type;
    p[67] = 1;  // a black node of the tree
    putLe32(p + 68, kCfbFree);
    putLe32(p + 72, kCfbFree);
    putLe32(p + 76, child);
    putLe32(p + 116, start);
    putLe32(p + 120, size);
}

void putFolder(uint8_t* p, const char* name, size_t streamSize) {
    putEntry(p, "Root Entry", 5, 1, kCfbEndOfChain, 0);
    putEntry(p + kCfbEntrySize, name, 2, kCfbFree, 0, static_cast<uint32_t>(streamSize));
    for (size_t at = 2 * kCfbEntrySize; at < kSector; at += kCfbEntrySize) {
        putEntry(p + at, "", 0, kCfbFree, 0, 0);
        putLe16(p + at + 64, 0);
    }
}

void putFat(uint8_t* p, const Layout& layout) {
    uint8_t* end = p + layout.fat * kSector;
    for (uint32_t i = 1; i < layout.stream; i++, p += 4) {
        putLe32(p, i);
    }
    putLe32(p, kCfbEndOfChain);
    putLe32(p + 4, kCfbEndOfChain);  // the folder's single sector
    p += 8;
    for (uint32_t i = 0; i < layout.fat; i++, p += 4) {
        putLe32(p, kCfbFatSector);
    }
    for (uint32_t i = 0; i < layout.difat; i++, p += 4) {
        putLe32(p, kCfbDifatSector);
    }
    memset(p, 0xFF, static_cast<size_t>(end - p));
}

void putDifat(uint8_t* p, const Layout& layout) {
    uint32_t fatStart = layout.stream + layout.folder;
    uint32_t fat = kCfbHeaderFatEntries;
    for (uint32_t sector = 0; sector < layout.difat; sector++) {
        for (size_t i = 0; i < kPerSector - 1; i++, p += 4, fat++) {
            putLe32(p, fat < layout.fat ? fatStart + fat : kCfbFree);
        }
        bool last = sector + 1 == layout.difat;
        putLe32(p, last ? kCfbEndOfChain : fatStart + layout.fat + sector + 1);
        p += 4;
    }
}

}  // namespace

uint8_t* cfbBeginFile(ByteBuffer* file, size_t streamSize) {
    if (streamSize > kMaxStream) {
        return nullptr;
    }
    Layout layout = layOut(streamSize);
    size_t sectors = size_t{1} + layout.stream + layout.folder + layout.fat + layout.difat;
    file->size = 0;
    if (!bufferReserve(file, sectors * kSector)) {
        return nullptr;
    }
    uint8_t* stream = bufferExtend(file, sectors * kSector) + kCfbHeaderSize;
    memset(stream + streamSize, 0, layout.stream * kSector - streamSize);
    return stream;
}

void cfbEndFile(ByteBuffer* file, size_t streamSize, const char* name) {
    Layout layout = layOut(streamSize);
    uint8_t* folder = file->data + kCfbHeaderSize + layout.stream * kSector;
    uint8_t* fat = folder + layout.folder * kSector;
    putHeader(file->data, layout);
    putFolder(folder, name, paddedSize(streamSize));
    putFat(fat, layout);
    putDifat(fat + layout.fat * kSector, layout);
}

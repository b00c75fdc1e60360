// Reading of compound files. Every number in the file is taken for a claim: it is compared with
// the size of the file before memory is taken or a byte is read for it, and a chain ends after as
// many steps as there are sectors.
#include <string.h>

#include "framework/workbook/cfb.h"

namespace {

const uint32_t kNoEntry = 0xFFFFFFFF;
const uint8_t kTypeStream = 2;
const uint8_t kTypeRoot = 5;

struct Cfb {
    const uint8_t* file;
    size_t size;
    unsigned sectorShift;
    unsigned miniShift;
    uint32_t miniCutoff;
    uint32_t sectorCount;  // the last one may be cut short by the end of the file
    uint32_t* fat;         // the sector that follows each one, sectorCount of them
    ByteBuffer miniFat;
    ByteBuffer folder;  // all entries of the directory
    ByteBuffer mini;    // the mini stream
};

// The bytes of sector `sector` that the file has; null for a sector that it does not have.
const uint8_t* sectorBytes(const Cfb* cfb, uint32_t sector, size_t* available) {
    if (sector >= cfb->sectorCount) {
        return nullptr;
    }
    size_t start = (static_cast<size_t>(sector) + 1) << cfb->sectorShift;
    size_t sectorSize = static_cast<size_t>(1) << cfb->sectorShift;
    size_t left = cfb->size - start;
    *available = left < sectorSize ? left : sectorSize;
    return cfb->file + start;
}

// Reads the chain that starts at `sector`: `need` bytes, or up to its end when `wholeChain`.
CfbResult readChain(const Cfb* cfb, uint32_t sector, size_t need, bool wholeChain,
                    ByteBuffer* out) {
    size_t sectorSize = static_cast<size_t>(1) << cfb->sectorShift;
    if (!wholeChain && need > static_cast<size_t>(cfb->sectorCount) << cfb->sectorShift) {
        return CFB_BROKEN_CHAIN;
    }
    uint32_t steps = 0;
    while (wholeChain ? sector != kCfbEndOfChain : need > 0) {
        size_t available = 0;
        const uint8_t* bytes = sectorBytes(cfb, sector, &available);
        size_t take = wholeChain || need > sectorSize ? sectorSize : need;
        if (bytes == nullptr || steps++ >= cfb->sectorCount || (available < take && !wholeChain)) {
            return CFB_BROKEN_CHAIN;
        }
        take = take < available ? take : available;
        if (!bufferReserve(out, take)) {
            return CFB_NO_MEMORY;
        }
        memcpy(bufferExtend(out, take), bytes, take);
        need -= wholeChain ? 0 : take;
        sector = cfb->fat[sector];
    }
    return CFB_OK;
}

// The same in the mini stream.
CfbResult readMiniChain(const Cfb* cfb, uint32_t sector, size_t need, ByteBuffer* out) {
    size_t sectorSize = static_cast<size_t>(1) << cfb->miniShift;
    size_t fatEntries = cfb->miniFat.size / 4;
    size_t steps = 0;
    while (need > 0) {
        size_t start = static_cast<size_t>(sector) << cfb->miniShift;
        size_t take = need < sectorSize ? need : sectorSize;
        if (sector >= fatEntries || steps++ >= fatEntries || start > cfb->mini.size ||
            cfb->mini.size - start < take) {
            return CFB_BROKEN_CHAIN;
        }
        if (!bufferReserve(out, take)) {
            return CFB_NO_MEMORY;
        }
        memcpy(bufferExtend(out, take), cfb->mini.data + start, take);
        need -= take;
        sector = getLe32(cfb->miniFat.data + 4 * static_cast<size_t>(sector));
    }
    return CFB_OK;
}

// Copies the part of the FAT that one of its sectors holds: the entries from `first` on.
CfbResult loadFatSector(Cfb* cfb, uint32_t sector, uint32_t first) {
    if (sector == kCfbFree) {
        return CFB_OK;
    }
    size_t available = 0;
    const uint8_t* bytes = sectorBytes(cfb, sector, &available);
    if (bytes == nullptr) {
        return CFB_BROKEN_CHAIN;
    }
    for (size_t i = 0; i < available / 4 && first + i < cfb->sectorCount; i++) {
        cfb->fat[first + i] = getLe32(bytes + 4 * i);
    }
    return CFB_OK;
}

// Loads the FAT as far as the file has sectors: by the header's own list of FAT sectors, then by
// the chain of DIFAT sectors, each of which ends with the number of the next.
CfbResult loadFat(Cfb* cfb) {
    cfb->fat = static_cast<uint32_t*>(malloc((cfb->sectorCount + size_t{1}) * sizeof(uint32_t)));
    if (cfb->fat == nullptr) {
        return CFB_NO_MEMORY;
    }
    memset(cfb->fat, 0xFF, (cfb->sectorCount + size_t{1}) * sizeof(uint32_t));
    uint32_t fatSectors = getLe32(cfb->file + 44);
    uint32_t difat = getLe32(cfb->file + 68);
    uint32_t perSector = 1u << (cfb->sectorShift - 2);
    const uint8_t* list = cfb->file + 76;
    size_t listed = kCfbHeaderFatEntries;
    size_t next = 0;
    uint32_t first = 0;
    for (uint32_t i = 0; i < fatSectors && first < cfb->sectorCount; i++, first += perSector) {
        if (next == listed) {
            size_t available = 0;
            list = sectorBytes(cfb, difat, &available);
            if (list == nullptr || available < 4u * perSector) {
                return CFB_BROKEN_CHAIN;
            }
            listed = perSector - 1;
            next = 0;
            difat = getLe32(list + 4 * listed);
        }
        CfbResult result = loadFatSector(cfb, getLe32(list + 4 * next++), first);
        if (result != CFB_OK) {
            return result;
        }
    }
    return CFB_OK;
}

CfbResult loadHeader(Cfb* cfb) {
    static const uint8_t magic[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
    if (cfb->size < kCfbHeaderSize || memcmp(cfb->file, magic, sizeof magic) != 0) {
        return CFB_NOT_COMPOUND;
    }
    cfb->sectorShift = getLe16(cfb->file + 30);
    cfb->miniShift = getLe16(cfb->file + 32);
    cfb->miniCutoff = getLe32(cfb->file + 56);
    if (cfb->sectorShift < 9 || cfb->sectorShift > 16 || cfb->miniShift < 4 ||
        cfb->miniShift >= cfb->sectorShift) {
        return CFB_NOT_COMPOUND;
    }
    // The header has a sector of its own in front of sector 0.
    size_t sectorSize = static_cast<size_t>(1) << cfb->sectorShift;
    if (cfb->size > sectorSize) {
        size_t sectors = (cfb->size - 1) >> cfb->sectorShift;
        if (sectors >= kCfbDifatSector) {
            return CFB_BROKEN_CHAIN;
        }
        cfb->sectorCount = static_cast<uint32_t>(sectors);
    }
    return CFB_OK;
}

bool nameMatches(const uint8_t* entry, const char* name) {
    size_t length = strlen(name);
    if (getLe16(entry + 64) != 2 * (length + 1)) {
        return false;
    }
    for (size_t i = 0; i < length; i++) {
        unsigned a = getLe16(entry + 2 * i);
        unsigned b = static_cast<unsigned char>(name[i]);
        a = a >= 'a' && a <= 'z' ? a - 32 : a;
        b = b >= 'a' && b <= 'z' ? b - 32 : b;
        if (a != b) {
            return false;
        }
    }
    return true;
}

// Finds a stream in the root folder. The whole tree of siblings below the root is walked, each
// entry once, in place of a search by order: that also finds names which a careless writer sorted
// wrongly, but never the stream of an embedded object, which is in a folder of its own.
CfbResult findStream(const Cfb* cfb, const char* name, const uint8_t** found) {
    uint32_t count = static_cast<uint32_t>(cfb->folder.size / kCfbEntrySize);
    uint32_t* pending = static_cast<uint32_t*>(malloc(count * (sizeof(uint32_t) + 1)));
    if (pending == nullptr) {
        return CFB_NO_MEMORY;
    }
    uint8_t* seen = reinterpret_cast<uint8_t*>(pending + count);
    memset(seen, 0, count);
    size_t depth = 0;
    uint32_t child = getLe32(cfb->folder.data + 76);
    if (child < count) {
        seen[child] = 1;
        pending[depth++] = child;
    }
    *found = nullptr;
    while (depth > 0 && *found == nullptr) {
        const uint8_t* entry = cfb->folder.data + kCfbEntrySize * pending[--depth];
        if (entry[66] == kTypeStream && nameMatches(entry, name)) {
            *found = entry;
        }
        for (size_t side = 68; side <= 72; side += 4) {
            uint32_t sibling = getLe32(entry + side);
            if (sibling != kNoEntry && sibling < count && !seen[sibling]) {
                seen[sibling] = 1;
                pending[depth++] = sibling;
            }
        }
    }
    free(pending);
    return *found != nullptr ? CFB_OK : CFB_NO_STREAM;
}

// The length of a folder entry's stream. Its upper half counts in files of large sectors only;
// elsewhere old writers left anything there.
size_t entrySize(const Cfb* cfb, const uint8_t* entry) {
    uint64_t size = cfb->sectorShift > 9 ? getLe64(entry + 120) : getLe32(entry + 120);
    return size > SIZE_MAX ? SIZE_MAX : static_cast<size_t>(size);
}

CfbResult readEntry(Cfb* cfb, const uint8_t* entry, ByteBuffer* stream) {
    size_t size = entrySize(cfb, entry);
    uint32_t start = getLe32(entry + 116);
    if (size >= cfb->miniCutoff) {
        return readChain(cfb, start, size, false, stream);
    }
    const uint8_t* root = cfb->folder.data;
    CfbResult result = readChain(cfb, getLe32(cfb->file + 60), 0, true, &cfb->miniFat);
    if (result == CFB_OK) {
        result = readChain(cfb, getLe32(root + 116), entrySize(cfb, root), false, &cfb->mini);
    }
    if (result == CFB_OK) {
        result = readMiniChain(cfb, start, size, stream);
    }
    return result;
}

CfbResult readStream(Cfb* cfb, const char* const* names, size_t nameCount, ByteBuffer* stream) {
    CfbResult result = loadHeader(cfb);
    if (result == CFB_OK) {
        result = loadFat(cfb);
    }
    if (result == CFB_OK) {
        result = readChain(cfb, getLe32(cfb->file + 48), 0, true, &cfb->folder);
    }
    if (result != CFB_OK) {
        return result;
    }
    if (cfb->folder.size < kCfbEntrySize || cfb->folder.data[66] != kTypeRoot) {
        return CFB_NO_STREAM;
    }
    const uint8_t* entry = nullptr;
    result = CFB_NO_STREAM;
    for (size_t i = 0; i < nameCount && result == CFB_NO_STREAM; i++) {
        result = findStream(cfb, names[i], &entry);
    }
    return result == CFB_OK ? readEntry(cfb, entry, stream) : result;
}

}  // namespace

CfbResult cfbReadStream(const uint8_t* file, size_t size, const char* const* names,
                        size_t nameCount, ByteBuffer* stream) {
    Cfb cfb = {};
    cfb.file = file;
    cfb.size = size;
    CfbResult result = readStream(&cfb, names, nameCount, stream);
    free(cfb.fat);
    bufferFree(&cfb.miniFat);
    bufferFree(&cfb.folder);
    bufferFree(&cfb.mini);
    return result;
}

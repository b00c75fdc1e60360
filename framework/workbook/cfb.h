// Compound files ([MS-CFB]): the container of sectors, chains and folders that a workbook's record
// stream lives in.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "framework/workbook/bytes.h"

enum CfbResult {
    CFB_OK,
    CFB_NOT_COMPOUND,  // the file has another format
    CFB_NO_STREAM,     // no stream of that name in the root folder
    CFB_BROKEN_CHAIN,  // a chain of sectors is cut, runs in a circle or leads out of the file
    CFB_NO_MEMORY
};

// The fixed numbers of the format.
const size_t kCfbHeaderSize = 512;
const size_t kCfbHeaderFatEntries = 109;  // numbers of FAT sectors that the header itself holds
const size_t kCfbEntrySize = 128;         // of a folder entry
const uint32_t kCfbMiniCutoff = 4096;     // shorter streams are in the mini stream
const uint32_t kCfbFree = 0xFFFFFFFF;
const uint32_t kCfbEndOfChain = 0xFFFFFFFE;
const uint32_t kCfbFatSector = 0xFFFFFFFD;
const uint32_t kCfbDifatSector = 0xFFFFFFFC;

// Appends to `stream` the whole stream of the root folder whose name is the first found of the
// `nameCount` ones in `names` (ASCII, case ignored). `file` is the whole file of `size` bytes.
// Takes memory in proportion to `size`, whatever the file says.
CfbResult cfbReadStream(const uint8_t* file, size_t size, const char* const* names,
                        size_t nameCount, ByteBuffer* stream);

// Empties `file` and prepares it for one stream of `streamSize` bytes. Returns where the stream's
// content, which the caller fills in, starts; null without memory or for a stream over 1 GiB.
uint8_t* cfbBeginFile(ByteBuffer* file, size_t streamSize);

// Completes a file that cfbBeginFile prepared: header, folder with the stream under `name` (ASCII,
// at most 31 characters), and allocation tables.
void cfbEndFile(ByteBuffer* file, size_t streamSize, const char* name);

/*
 * Files that stand for the non-volatile parts of the device: flash, EEPROM, environment stores,
 * the standby controller's memory, keys. They lie where sim::storagePath says, are made on first
 * use, and survive the process.
 *
 * No function keeps state; callers serialise access to one file by their own lock.
 */
#ifndef SIMULATOR_CORE_STORAGE_FILE_H
#define SIMULATOR_CORE_STORAGE_FILE_H

#include <stddef.h>
#include <stdint.h>

#include <map>
#include <string>

namespace sim {

/** Reads a whole file of at most `limit` bytes. False when it is not there, larger, or unreadable;
 *  `contents` is then empty. */
bool loadFile(const std::string& path, size_t limit, std::string* contents);

/** Replaces a file, and makes its folders: a reader finds the old contents or the new. */
bool saveFile(const std::string& path, const std::string& contents);

/** Makes the file with these contents unless one of their size is there. A file of another size
 *  (the board has changed) is brought to it: cut, or filled up with `contents`. */
bool provideFile(const std::string& path, const std::string& contents);

/** Reads or overwrites `size` bytes at `offset` of a file that is there. */
bool readAt(const std::string& path, uint64_t offset, void* data, size_t size);
bool writeAt(const std::string& path, uint64_t offset, const void* data, size_t size);

/** A file of KEY=VALUE lines. Keys hold no '=' and neither of them a newline. An unreadable file
 *  gives an empty map. */
std::map<std::string, std::string> loadKeyValues(const std::string& path);
bool saveKeyValues(const std::string& path, const std::map<std::string, std::string>& values);

}  // namespace sim

#endif

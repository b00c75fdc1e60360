/* Files of the tools: read and written whole. */
#ifndef TOOLS_COMMON_FILES_H
#define TOOLS_COMMON_FILES_H

#include <filesystem>
#include <string>
#include <vector>

/** The bytes of a file; empty also for one that cannot be read. */
std::string readText(const std::filesystem::path& path);

/** The lines of a file without their ends. */
std::vector<std::string> readLines(const std::filesystem::path& path);

/** A text of 16 digits that tells one content from another; nothing against malice. */
std::string contentKey(const std::string& content);

/**
 * Writes files whole or not at all: all are written beside their places first and checked, and only
 * then renamed. Folders are made if need be; a file that is replaced keeps its mode.
 * Throws std::filesystem::filesystem_error with the path of the file that could not be written;
 * nothing has been changed then.
 */
void writeWhole(const std::vector<std::filesystem::path>& paths, const std::string& content);

#endif

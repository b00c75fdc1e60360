/* A working folder of its own for a program that runs beside others on one bench folder. */
#ifndef TOOLS_COMMON_OWN_FOLDER_H
#define TOOLS_COMMON_OWN_FOLDER_H

#include <filesystem>

/** Folder of a bench that cases record into. */
constexpr char recordFolder[] = "record";

/**
 * Makes `folder` look like the bench folder: links to all that is in it, but for recordings, for
 * which it has empty folders like the bench's. What cannot be made is left out.
 */
void makeOwnFolder(const std::filesystem::path& bench, const std::filesystem::path& folder);

#endif

#include "tools/common/own_folder.h"

namespace fs = std::filesystem;

void makeOwnFolder(const fs::path& bench, const fs::path& folder) {
    std::error_code ignored;
    fs::create_directories(folder, ignored);
    for (const auto& entry : fs::directory_iterator(bench, ignored)) {
        const fs::path name = entry.path().filename();
        if (name != recordFolder)
            fs::create_symlink(fs::absolute(entry.path()), folder / name, ignored);
    }
    fs::create_directories(folder / recordFolder, ignored);
    for (const auto& entry : fs::recursive_directory_iterator(bench / recordFolder, ignored)) {
        if (entry.is_directory())
            fs::create_directories(folder / fs::relative(entry.path(), bench), ignored);
    }
}

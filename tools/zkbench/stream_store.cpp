#include "tools/zkbench/stream_store.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <sys/file.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tools/common/files.h"
#include "tools/common/process.h"

namespace fs = std::filesystem;

namespace {

const fs::path streamLink = "stream/ts";
/** Recordings for injection; they lie in a folder of the streams'. */
const fs::path recordLink = "stream/pvr";
const char recordFolder[] = "pvr";
/** In each folder of the store: the links that point there, one a line. */
const char usersName[] = ".benches";
/** Making all streams takes half a minute; who holds the lock for so long does not work. */
constexpr int lockPatienceS = 600;

/** A lock that other runners respect. It ends with the object, or with the process. */
class FileLock {
 public:
    explicit FileLock(const fs::path& path)
        : path_(path), fd_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {}
    ~FileLock() {
        if (fd_ >= 0)
            close(fd_);
    }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /** Waits for it, with a word; false when it does not come, which has been said. */
    bool take() {
        for (int waited = 0; fd_ >= 0 && waited <= lockPatienceS; waited++) {
            if (flock(fd_, LOCK_EX | LOCK_NB) == 0)
                return true;
            if (errno != EWOULDBLOCK && errno != EINTR)
                break;
            if (waited == 0) {
                printf("waiting for another runner, which makes streams\n");
                fflush(stdout);
            }
            sleep(1);
        }
        fprintf(stderr, "zkbench: cannot lock %s\n", path_.c_str());
        return false;
    }

 private:
    fs::path path_;
    int fd_;
};

/** A text that changes with any file of the folder's common configuration. */
std::string lineUpKey() {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator("config/common")) {
        if (entry.is_regular_file())
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    std::string all;
    for (const fs::path& file : files)
        all += readText(file);
    return contentKey(all);
}

/** Whether a link's target lies in a store, of this project or of where it was before it moved. */
bool isInStore(const fs::path& target) {
    fs::path store = target.parent_path();
    return store.filename() == "streams" && store.parent_path().filename() == "build";
}

/** The links that point to a folder of the store. */
std::vector<std::string> usersOf(const fs::path& folder) {
    std::vector<std::string> users;
    for (const std::string& link : readLines(folder / usersName)) {
        std::error_code gone;
        if (fs::read_symlink(link, gone) == folder && !gone)
            users.push_back(link);
    }
    return users;
}

/** The folder that a new line-up probably differs least from; empty without any. */
fs::path predecessor(const fs::path& store) {
    std::error_code missing;
    fs::path last = fs::read_symlink(streamLink, missing);
    if (!missing && last.parent_path() == store && fs::is_directory(last))
        return last;
    fs::path newest;
    for (const auto& entry : fs::directory_iterator(store)) {
        if (fs::exists(entry.path() / "streams.cfg") &&
            (newest.empty() || fs::last_write_time(entry.path() / "streams.cfg") >
                                   fs::last_write_time(newest / "streams.cfg")))
            newest = entry.path();
    }
    return newest;
}

/** Lets `folder` begin with the files of `old`. Stamps go first: a file that is replaced meanwhile
 * is then younger than its stamp, and is made again. */
void seed(const fs::path& folder, const fs::path& old) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(old)) {
        if (entry.is_regular_file() && entry.path().filename().string()[0] != '.')
            files.push_back(entry.path());
    }
    std::stable_partition(files.begin(), files.end(),
                          [](const fs::path& file) { return file.extension() == ".stamp"; });
    for (const fs::path& file : files) {
        std::error_code impossible;
        fs::create_hard_link(file, folder / file.filename(), impossible);
    }
}

/** Points stream/ts to a folder of the store, and enters it among the folder's users. */
void pointTo(const fs::path& folder) {
    fs::path link = fs::absolute(streamLink);
    std::vector<std::string> users = usersOf(folder);
    if (std::find(users.begin(), users.end(), link) == users.end()) {
        std::string text;
        for (const std::string& user : users)
            text += user + "\n";
        writeWhole({folder / usersName}, text + link.string() + "\n");
    }
    std::error_code missing;
    if (fs::read_symlink(link, missing) == folder)
        return;
    fs::path fresh = link.string() + ".new";
    fs::create_directories(link.parent_path());
    fs::remove(fresh);
    fs::create_directory_symlink(folder, fresh);
    fs::rename(fresh, link);
}

/** Points stream/pvr there, unless it is the folder's own. */
void pointToRecordings(const fs::path& folder) {
    std::error_code missing;
    fs::path present = fs::read_symlink(recordLink, missing);
    bool ownLink = !missing && isInStore(present.parent_path());
    if (present == folder / recordFolder)
        return;
    if (!ownLink && fs::exists(fs::symlink_status(recordLink))) {
        printf("%s is the folder's own and stays as it is\n", recordLink.c_str());
        return;
    }
    fs::remove(recordLink);
    fs::create_directory_symlink(folder / recordFolder, recordLink);
}

void removeUnused(const fs::path& store, const fs::path& own) {
    for (const auto& entry : fs::directory_iterator(store)) {
        if (!entry.is_directory() || entry.path() == own || !usersOf(entry.path()).empty())
            continue;
        printf("streams that no bench folder uses any more are removed: %s\n",
               entry.path().c_str());
        fs::remove_all(entry.path());
    }
}

}  // namespace

bool makeStreams(const fs::path& place, const fs::path& tool) {
    std::error_code missing;
    fs::path present = fs::read_symlink(streamLink, missing);
    bool ownLink = !missing && isInStore(present);
    if (!ownLink && fs::exists(fs::symlink_status(streamLink))) {
        printf("%s is the folder's own and stays as it is\n", streamLink.c_str());
        return true;
    }
    fs::create_directories(place);
    // Links are compared as texts: each folder of the store has one.
    const fs::path store = fs::canonical(place);
    fs::path folder = store / lineUpKey();
    {
        FileLock lock(store / ".lock");
        if (!lock.take())
            return false;
        if (!fs::exists(folder)) {
            fs::path old = predecessor(store);
            fs::create_directory(folder);
            if (!old.empty())
                seed(folder, old);
        }
        pointTo(folder);
        pointToRecordings(folder);
        removeUnused(store, folder);
    }
    FileLock lock(folder / ".lock");
    if (!lock.take())
        return false;
    printf("streams of the line-up: %s\n", folder.c_str());
    return runProgram({tool, "--quiet", "--config", "config", "--out", folder}) == 0;
}

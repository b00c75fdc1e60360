// Finds programs outside the domain by what they have open: a program that was started may have
// started others and ended, and they live on with its pipes.
#include "vclock/outside.h"

#include <dirent.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "vclock/domain.h"

namespace vclock {

// "pipe:[123]" and "socket:[123]" are what the kernel shows for them.
static bool parseLink(const char* link, char* kind, uint64_t* inode) {
    unsigned long long number = 0;
    if (sscanf(link, "%7[a-z]:[%llu]", kind, &number) != 2)
        return false;
    *inode = number;
    return true;
}

static bool isMember(pid_t pid) {
    for (const ProcessSlot& process : region->processes) {
        bool program =
            process.state == ProcessState::Free || process.state == ProcessState::Replaced;
        if (!program && process.pid == pid)
            return true;
    }
    return false;
}

// Whether an open file of another process is one end of what we wait for. The two ends of a pipe
// have one number, those of a pair of sockets have two.
static bool isOtherEnd(const char* link, const pollfd* files, nfds_t count) {
    char kind[8];
    uint64_t inode;
    if (!parseLink(link, kind, &inode))
        return false;
    for (nfds_t i = 0; i < count; i++) {
        struct stat about;
        if (files[i].fd < 0 || fstat(files[i].fd, &about) < 0)
            continue;
        if (S_ISFIFO(about.st_mode)
                ? about.st_ino == inode && strcmp(kind, "pipe") == 0
                : S_ISSOCK(about.st_mode) && strcmp(kind, "socket") == 0 && knownPipe(inode))
            return true;
    }
    return false;
}

static bool hasOtherEnd(const char* folder, const pollfd* files, nfds_t count) {
    DIR* list = opendir(folder);
    if (list == nullptr)
        return false;
    bool found = false;
    while (dirent* entry = found ? nullptr : readdir(list)) {
        char link[64];
        ssize_t size = readlinkat(dirfd(list), entry->d_name, link, sizeof link - 1);
        if (size <= 0)
            continue;
        link[size] = '\0';
        found = isOtherEnd(link, files, count);
    }
    closedir(list);
    return found;
}

bool heldOutside(const pollfd* files, nfds_t count) {
    DIR* list = opendir("/proc");
    if (list == nullptr)
        return false;
    bool found = false;
    while (dirent* entry = found ? nullptr : readdir(list)) {
        pid_t pid = static_cast<pid_t>(atoi(entry->d_name));
        char folder[32];
        snprintf(folder, sizeof folder, "/proc/%d/fd", static_cast<int>(pid));
        found = pid > 0 && !isMember(pid) && hasOtherEnd(folder, files, count);
    }
    closedir(list);
    return found;
}

}  // namespace vclock

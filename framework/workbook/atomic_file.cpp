// Files that are replaced as a whole: new file, sync, rename, sync of the folder. Where the place
// does not allow that the file is written where it is.
#include "framework/workbook/atomic_file.h"

#include <errno.h>
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// How long another program's save of the same file is waited for.
const int kLockTries = 5000;
const useconds_t kLockPauseUs = 1000;

struct Content {
    const void* data;
    size_t size;
    bool sync;
};

enum class Outcome {
    Done,
    Failed,    // errno says why; there is nothing else to try
    Prevented  // the new file cannot be made or put in the old one's place; errno says why
};

int writeAll(int fd, const Content& content) {
    const uint8_t* at = static_cast<const uint8_t*>(content.data);
    size_t left = content.size;
    while (left > 0) {
        ssize_t written = write(fd, at, left);
        if (written < 0 && errno != EINTR) {
            return -1;
        }
        if (written > 0) {
            at += written;
            left -= static_cast<size_t>(written);
        }
    }
    return 0;
}

// Takes the lock of an open file. False when another program has it; a file system without locks
// counts as one where nobody else saves.
bool tryLock(int fd) {
    return flock(fd, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool isAt(int fd, const char* path) {
    struct stat open = {};
    struct stat there = {};
    return fstat(fd, &open) == 0 && lstat(path, &there) == 0 && open.st_dev == there.st_dev &&
           open.st_ino == there.st_ino;
}

// What lies in the new file's place goes: what a killed program left, a link, a pipe. What another
// program writes at this moment stays. Returns false with errno when it can neither go nor be
// waited for.
bool clearPlace(const char* path) {
    int fd = open(path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    bool cleared = true;
    if (fd < 0 || tryLock(fd)) {
        if (fd < 0 || isAt(fd, path)) {
            cleared = unlink(path) == 0 || errno == ENOENT;
        }
    } else {
        usleep(kLockPauseUs);
    }
    int error = errno;
    if (fd >= 0) {
        close(fd);
    }
    errno = error;
    return cleared;
}

// Creates the new file, locked so that two programs do not share it. -1 with errno; EAGAIN when
// another program's save does not end.
int createLocked(const char* path) {
    for (int i = 0; i < kLockTries; i++) {
        int fd = open(path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0 && tryLock(fd) && isAt(fd, path)) {
            return fd;
        }
        if (fd >= 0) {
            // Another program took it for a left-over in the moment before the lock.
            close(fd);
        } else if (errno != EEXIST || !clearPlace(path)) {
            return -1;
        }
    }
    errno = EAGAIN;
    return -1;
}

// Gives a new file the owner and the mode of the one that it will replace.
int copyOwner(int fd, const struct stat& old) {
    struct stat mine = {};
    if (fstat(fd, &mine) != 0) {
        return -1;
    }
    if ((mine.st_uid != old.st_uid || mine.st_gid != old.st_gid) &&
        fchown(fd, old.st_uid, old.st_gid) != 0) {
        return -1;
    }
    return mine.st_mode != old.st_mode ? fchmod(fd, old.st_mode & 07777) : 0;
}

// Syncs the folder that `path` is in. Where that cannot be done it is no error.
int syncFolder(char* path) {
    char* slash = strrchr(path, '/');
    const char* folder = ".";
    if (slash == path) {
        folder = "/";
    } else if (slash != nullptr) {
        *slash = '\0';
        folder = path;
    }
    int fd = open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        return errno == EACCES ? 0 : -1;
    }
    int result = fsync(fd);
    if (result != 0 && (errno == EINVAL || errno == ENOTSUP)) {
        result = 0;
    }
    close(fd);
    return result;
}

// Without room or descriptors the old content must not be touched.
bool isShortage(int error) {
    return error == ENOSPC || error == EDQUOT || error == EMFILE || error == ENFILE ||
           error == ENOMEM || error == EAGAIN;
}

Outcome finishTemporary(int fd, const char* temporary, const char* path, const struct stat* old,
                        const Content& content) {
    Outcome outcome = Outcome::Done;
    if (writeAll(fd, content) != 0 || (content.sync && fdatasync(fd) != 0)) {
        outcome = Outcome::Failed;
    } else if ((old != nullptr && copyOwner(fd, *old) != 0) || rename(temporary, path) != 0) {
        outcome = Outcome::Prevented;
    }
    if (outcome != Outcome::Done) {
        int error = errno;
        unlink(temporary);
        errno = error;
    }
    return outcome;
}

// `old` is null when there is no file yet.
Outcome replaceRegular(const char* path, const struct stat* old, const Content& content) {
    size_t length = strlen(path);
    char* temporary = static_cast<char*>(malloc(length + sizeof ".tmp"));
    if (temporary == nullptr) {
        return Outcome::Failed;
    }
    memcpy(temporary, path, length);
    memcpy(temporary + length, ".tmp", sizeof ".tmp");
    int fd = createLocked(temporary);
    Outcome outcome = isShortage(errno) ? Outcome::Failed : Outcome::Prevented;
    if (fd >= 0) {
        outcome = finishTemporary(fd, temporary, path, old, content);
        int error = errno;
        // The lock goes with it. What an error of closing could tell, the sync has told.
        close(fd);
        errno = error;
    }
    if (outcome == Outcome::Done && content.sync && syncFolder(temporary) != 0) {
        outcome = Outcome::Failed;
    }
    int error = errno;
    free(temporary);
    errno = error;
    return outcome;
}

// Writes over the old content, which never is shorter than the shorter of the two.
int overwrite(int fd, const Content& content) {
    struct stat status = {};
    if (fstat(fd, &status) != 0) {
        return -1;
    }
    if (!S_ISREG(status.st_mode)) {
        errno = EINVAL;
        return -1;
    }
    for (int i = 0; !tryLock(fd); i++) {
        if (i == kLockTries) {
            return -1;
        }
        usleep(kLockPauseUs);
    }
    // The room first: half a content is worse than an old one.
    if (fallocate(fd, 0, 0, static_cast<off_t>(content.size)) != 0 && errno != EOPNOTSUPP &&
        errno != ENOSYS) {
        return -1;
    }
    if (writeAll(fd, content) != 0 || ftruncate(fd, static_cast<off_t>(content.size)) != 0) {
        return -1;
    }
    return content.sync ? fdatasync(fd) : 0;
}

int writeInPlace(const char* path, const Content& content) {
    int fd = open(path, O_WRONLY | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666);
    if (fd < 0) {
        return -1;
    }
    int result = overwrite(fd, content);
    int error = errno;
    if (close(fd) != 0) {
        return -1;
    }
    errno = error;
    return result;
}

// Whether a file may be replaced, or written where there is none. Errno says why not.
bool mayReplace(const char* path, bool exists, const struct stat& status) {
    if (exists && !S_ISREG(status.st_mode)) {
        // A rename would put the file in the place of a device node.
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return false;
    }
    // A rename asks nobody whether the old file is write-protected.
    return !exists || faccessat(AT_FDCWD, path, W_OK, AT_EACCESS) == 0;
}

}  // namespace

int replaceFile(const char* path, const void* data, size_t size, bool sync, int* inPlace) {
    const Content content = {data, size, sync};
    struct stat status = {};
    struct stat link = {};
    bool exists = stat(path, &status) == 0;
    bool isLink = lstat(path, &link) == 0 && S_ISLNK(link.st_mode);
    *inPlace = 0;
    if (!mayReplace(path, exists, status)) {
        return -1;
    }
    Outcome outcome = Outcome::Prevented;
    errno = ENOENT;
    if (!isLink) {
        outcome = replaceRegular(path, exists ? &status : nullptr, content);
    } else if (exists) {
        char* target = realpath(path, nullptr);
        if (target == nullptr) {
            return -1;
        }
        outcome = replaceRegular(target, &status, content);
        int error = errno;
        free(target);
        errno = error;
    }
    if (outcome != Outcome::Prevented) {
        return outcome == Outcome::Done ? 0 : -1;
    }
    int reason = errno;
    if (writeInPlace(path, content) != 0) {
        return -1;
    }
    *inPlace = reason;
    return 0;
}

// Files that are replaced as a whole: new file, sync, rename, sync of the folder.
#include "framework/workbook/atomic_file.h"

#include <errno.h>
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int writeAll(int fd, const void* data, size_t size) {
    const uint8_t* at = static_cast<const uint8_t*>(data);
    while (size > 0) {
        ssize_t written = write(fd, at, size);
        if (written < 0 && errno != EINTR) {
            return -1;
        }
        if (written > 0) {
            at += written;
            size -= static_cast<size_t>(written);
        }
    }
    return 0;
}

// Creates the file anew. Whatever is in its place goes first: also a link or a file of another
// owner, which could not be truncated.
int createNew(const char* path) {
    const int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    int fd = open(path, flags, 0666);
    if (fd < 0 && errno == EEXIST && unlink(path) == 0) {
        fd = open(path, flags, 0666);
    }
    return fd;
}

int writeNew(const char* path, const void* data, size_t size, bool sync) {
    int fd = createNew(path);
    if (fd < 0) {
        return -1;
    }
    int result = writeAll(fd, data, size);
    if (result == 0 && sync) {
        result = fdatasync(fd);
    }
    if (close(fd) != 0) {
        result = -1;
    }
    return result;
}

// Syncs the folder that `path` is in. Some file systems have no such sync: that is no error.
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
        return -1;
    }
    int result = fsync(fd);
    if (result != 0 && (errno == EINVAL || errno == ENOTSUP)) {
        result = 0;
    }
    close(fd);
    return result;
}

int replaceRegular(const char* path, const void* data, size_t size, bool sync) {
    size_t length = strlen(path);
    char* temporary = static_cast<char*>(malloc(length + sizeof ".tmp"));
    if (temporary == nullptr) {
        return -1;
    }
    memcpy(temporary, path, length);
    memcpy(temporary + length, ".tmp", sizeof ".tmp");
    int result = writeNew(temporary, data, size, sync);
    if (result == 0) {
        result = rename(temporary, path);
    }
    if (result != 0) {
        int error = errno;
        unlink(temporary);
        errno = error;
    } else if (sync) {
        result = syncFolder(temporary);
    }
    free(temporary);
    return result;
}

}  // namespace

int replaceFile(const char* path, const void* data, size_t size, bool sync) {
    struct stat status;
    if (lstat(path, &status) != 0 || S_ISREG(status.st_mode)) {
        return replaceRegular(path, data, size, sync);
    }
    if (!S_ISLNK(status.st_mode)) {
        // A rename would put the file in the place of a device node.
        errno = EINVAL;
        return -1;
    }
    char* target = realpath(path, nullptr);
    if (target == nullptr) {
        return -1;
    }
    int result = stat(target, &status);
    if (result == 0 && !S_ISREG(status.st_mode)) {
        errno = EINVAL;
        result = -1;
    }
    if (result == 0) {
        result = replaceRegular(target, data, size, sync);
    }
    free(target);
    return result;
}

// Files that are replaced as a whole.
#pragma once

#include <stddef.h>

// Makes `size` bytes at `data` the content of `path`. Whoever reads the path finds the old content
// or the new, never a part: it is written to `path`.tmp, given the old file's owner and mode, and
// renamed. A symbolic link is followed. With `sync` the content is on the medium before the rename,
// and the rename before the return, so the same holds across a power cut. What a killed program
// left of `path`.tmp goes; another program that saves the same file at this moment is waited for.
//
// Where that cannot be done (the folder may not be written, the file is a mount point, its owner
// cannot be kept, something is in the way) the file is written where it is, and *inPlace is the
// errno that says why; else it is 0. A crash in that moment damages the file.
//
// A file that this process may not write, and one that is no regular file, stays as it is.
// Returns 0, or -1 with errno; the old content is then still there, except that an error of the
// last sync comes after the rename, and one of the medium may come in the middle of writing in
// place.
int replaceFile(const char* path, const void* data, size_t size, bool sync, int* inPlace);

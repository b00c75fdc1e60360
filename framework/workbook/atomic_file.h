// Files that are replaced as a whole.
#pragma once

#include <stddef.h>

// Makes `size` bytes at `data` the content of `path`. Whoever reads the path finds the old content
// or the new, never a part: it is written to `path`.tmp and renamed. A symbolic link is followed.
// With `sync` the content is on the medium before the rename, and the rename before the return, so
// the same holds across a power cut. What an earlier run left of `path`.tmp is overwritten.
// Returns 0, or -1 with errno; the old content is then still there, except that an error of the
// last sync comes after the rename.
int replaceFile(const char* path, const void* data, size_t size, bool sync);

// The start: closed standard descriptors lead nowhere before anything else is opened.
#include "program/startup.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/**
 * Starts a child with some of the three descriptors closed, and holds them.
 * @param closed  a bit for each
 * @param root    the child's root folder, or null
 * @return 0 when each closed one is open then, and is /dev/null where there is one, and no fourth
 */
int holdIn(int closed, const char* root) {
    pid_t child = fork();
    if (child == 0) {
        closefrom(STDERR_FILENO + 1);
        if (root != nullptr && chroot(root) != 0)
            _exit(77);
        for (int file = 0; file < 3; file++) {
            if (closed & 1 << file)
                close(file);
        }
        zk_holdStandardFiles();
        int bad = fcntl(3, F_GETFD) >= 0 ? 8 : 0;
        for (int file = 0; file < 3; file++) {
            struct stat status {};
            bool there = fstat(file, &status) == 0;
            bool right = root != nullptr ? S_ISDIR(status.st_mode) : S_ISCHR(status.st_mode);
            if (!there || ((closed & 1 << file) && !right))
                bad |= 1 << file;
        }
        _exit(bad);
    }
    int status = -1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Startup, ClosedStandardFilesLeadNowhere) {
    for (int closed = 0; closed < 8; closed++)
        EXPECT_EQ(holdIn(closed, nullptr), 0) << closed;
}

TEST(Startup, AFolderServesWhereThereAreNoDevices) {
    char root[] = "/tmp/zk_root_XXXXXX";
    ASSERT_NE(mkdtemp(root), nullptr);
    int answer = holdIn(7, root);
    rmdir(root);
    if (answer == 77)
        GTEST_SKIP() << "no right to another root folder";
    EXPECT_EQ(answer, 0);
}

}  // namespace

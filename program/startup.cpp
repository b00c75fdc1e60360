#include "program/startup.h"

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include "environment/test_env.h"
#include "testcase/av/av_config.h"
#include "testcase/tuner/tuner_harness.h"

void zk_holdStandardFiles(void) {
    for (int file = STDIN_FILENO; file <= STDERR_FILENO; file++) {
        // Each open takes the lowest free number, which is this one. A folder serves on a system
        // without devices: nothing can be read from it or written to it.
        if (fcntl(file, F_GETFD) < 0 && errno == EBADF && open("/dev/null", O_RDWR) < 0 &&
            open("/", O_RDONLY) < 0)
            return;
    }
}

void zk_loadEnvironment(void) {
    zk_test_load_feature();
    zk_test_load_channel_info();
    TC_TUNER_LOAD_CONFIG();
    TC_AV_LOAD_CONFIG();
}

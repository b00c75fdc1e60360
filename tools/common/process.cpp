#include "tools/common/process.h"

#include <errno.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "common/exit_codes.h"

namespace fs = std::filesystem;

fs::path programFile() {
    return fs::canonical("/proc/self/exe");
}

Words inVirtualTime(const fs::path& build, const Words& options, const Words& program) {
    Words words = {build / "vclock/run"};
    words.insert(words.end(), options.begin(), options.end());
    words.insert(words.end(), program.begin(), program.end());
    return words;
}

void become(const Words& program) {
    std::vector<char*> arguments;
    for (const std::string& word : program)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    execv(arguments[0], arguments.data());
    int error = errno;
    fprintf(stderr, "cannot start %s: %s\n", arguments[0], strerror(error));
    _exit(error == ENOENT ? EXIT_NOT_FOUND : EXIT_CANNOT_RUN);
}

void endWith(pid_t parent, int signal) {
    prctl(PR_SET_PDEATHSIG, signal);
    if (getppid() != parent)
        raise(signal);
}

int runProgram(const Words& program) {
    fflush(stdout);
    pid_t self = getpid();
    pid_t pid = fork();
    if (pid == 0) {
        endWith(self, SIGTERM);
        become(program);
    }
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

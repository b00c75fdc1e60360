#include "tools/mutate/judge.h"

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <map>

#include "common/exit_codes.h"
#include "tools/common/files.h"

namespace fs = std::filesystem;

extern char** environ;

namespace {

double nowSeconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

/** The environment of a run, made before the fork: behind it no memory may be asked for. */
std::vector<std::string> environmentOf(const Room& room, unsigned mutant, const fs::path& reach) {
    std::map<std::string, std::string> own = {
        {"TMPDIR", room.scratch.string()},      {"ZK_BUILD_DIR", room.bin.string()},
        {"LD_LIBRARY_PATH", room.bin.string()}, {"PYTHONDONTWRITEBYTECODE", "1"},
        {"ZK_MUTANT", std::to_string(mutant)},
    };
    if (!reach.empty())
        own["ZK_MUTANT_REACH"] = reach.string();
    std::vector<std::string> all;
    for (char** entry = environ; *entry != nullptr; entry++) {
        std::string text = *entry;
        if (own.count(text.substr(0, text.find('='))) == 0 &&
            text.compare(0, 10, "ZK_MUTANT_") != 0)
            all.push_back(text);
    }
    for (const auto& entry : own)
        all.push_back(entry.first + "=" + entry.second);
    return all;
}

/** Leaves only the scratch folder writable, which is /tmp then, as far as the system lets us: a
 *  mutant may delete or overwrite what it likes. A tree that lies in /tmp itself stays open. */
void closeTree(const char* scratch) {
    if (strncmp(scratch, "/tmp/", strlen("/tmp/")) == 0 || unshare(CLONE_NEWNS) != 0)
        return;
    mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
    if (mount(scratch, scratch, nullptr, MS_BIND, nullptr) == 0 &&
        mount(scratch, "/tmp", nullptr, MS_BIND, nullptr) == 0)
        mount(nullptr, "/", nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr);
}

void setLimit(__rlimit_resource which, rlim_t value) {
    rlimit limit = {value, value};
    setrlimit(which, &limit);
}

std::vector<char*> pointersTo(std::vector<std::string>* texts) {
    std::vector<char*> pointers;
    for (std::string& text : *texts)
        pointers.push_back(&text[0]);
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

Outcome runJudge(const Judge& judge, const Room& room, unsigned mutant, const fs::path& reach,
                 double limit) {
    Words words = judge.command;
    for (std::string& word : words) {
        for (size_t at; (at = word.find("{bin}")) != word.npos;)
            word.replace(at, 5, room.bin.string());
    }
    std::vector<std::string> environment = environmentOf(room, mutant, reach);
    std::vector<char*> argv = pointersTo(&words);
    std::vector<char*> envp = pointersTo(&environment);
    fs::create_directories(room.scratch);
    std::string scratch = room.scratch.string();
    std::string source = room.source.string();
    std::string output = scratch + ".out";
    double start = nowSeconds();
    pid_t pid = fork();
    if (pid == 0) {
        setpgid(0, 0);
        int out = open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        int null = open("/dev/null", O_RDONLY | O_CLOEXEC);
        dup2(null, STDIN_FILENO);
        dup2(out, STDOUT_FILENO);
        dup2(out, STDERR_FILENO);
        // The points' file lies in the scratch folder, too.
        closeTree(scratch.c_str());
        setLimit(RLIMIT_CORE, 0);
        setLimit(RLIMIT_FSIZE, 256u << 20);
        setLimit(RLIMIT_AS, rlim_t{8} << 30);
        if (chdir(source.c_str()) == 0)
            execve(argv[0], argv.data(), envp.data());
        _exit(EXIT_CANNOT_RUN);
    }
    Outcome outcome = {EXIT_CANNOT_RUN, false, 0, ""};
    int status = 0;
    int watched = static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
    pollfd ended = {watched, POLLIN, 0};
    if (poll(&ended, 1, static_cast<int>(limit * 1000)) == 0)
        outcome.late = true;
    // Children that the program has left behind, too.
    kill(-pid, SIGKILL);
    waitpid(pid, &status, 0);
    close(watched);
    if (!outcome.late)
        outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    outcome.seconds = nowSeconds() - start;
    outcome.text = readText(output).substr(0, 2000);
    std::error_code none;
    fs::path keep = reach;
    for (const auto& entry : fs::directory_iterator(room.scratch, none)) {
        if (entry.path() != keep)
            fs::remove_all(entry.path(), none);
    }
    return outcome;
}

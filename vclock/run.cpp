// The launcher: starts a program under the virtual clock.
//
// It finds the preload library beside itself, puts it in front of the preload list, and becomes the
// program.
#include <errno.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/personality.h>
#include <unistd.h>

#include <initializer_list>
#include <string>

#include "common/exit_codes.h"
#include "vclock/environment.h"

static const char* const kUsage =
    "Usage: run [--seed N] [--trace FILE] [--start UNIX_SECONDS] [--limit SECONDS]\n"
    "           [--patience SECONDS] PROGRAM [ARGUMENT...]\n"
    "Runs PROGRAM in virtual time.\n"
    "  --seed N     choose the next thread at random from this seed, not first come first served\n"
    "  --trace FILE write who ran and waited when\n"
    "  --start S    begin the calendar at S seconds of 1970 UTC, not at the present date\n"
    "  --limit S    end all after S seconds of virtual time; what sleeps for ever costs real time\n"
    "  --patience S after S seconds of real time, tell which thread keeps all others waiting, and\n"
    "               stop it now and again if it runs on without any call; 5 without it\n"
    "Exit status: the program's; 86 deadlock; 87 limit; 126, 127 the program cannot be started; 2 "
    "usage.\n";

static bool isNumber(const char* text, unsigned long long most) {
    if (*text == '\0' || text[strspn(text, "0123456789")] != '\0')
        return false;
    errno = 0;
    return strtoull(text, nullptr, 10) <= most && errno == 0;
}

// Returns the index of the program in argv, 0 when the arguments make no sense. By hand: the first
// word that is no option is the program, and all behind it is the program's own, whatever it looks
// like; an option before it that is not known is refused.
static int readOptions(int argc, char** argv) {
    struct {
        const char* name;
        const char* variable;
        unsigned long long most;  // 0: no number
    } const options[] = {{"--seed", VCLOCK_SEED, ULLONG_MAX},
                         {"--trace", VCLOCK_TRACE, 0},
                         // The end of the 32-bit unsigned count, in the year 2106.
                         {"--start", VCLOCK_START, 0xffffffffull},
                         {"--limit", VCLOCK_LIMIT, 0xffffffffull},
                         {"--patience", VCLOCK_PATIENCE, 0xffffffffull}};
    int at = 1;
    while (at < argc && argv[at][0] == '-') {
        if (strcmp(argv[at], "--") == 0) {
            at++;
            break;
        }
        if (strcmp(argv[at], "--help") == 0) {
            fputs(kUsage, stdout);
            exit(EXIT_DONE);
        }
        bool known = false;
        for (const auto& option : options) {
            if (strcmp(argv[at], option.name) != 0)
                continue;
            if (at + 1 >= argc || (option.most != 0 && !isNumber(argv[at + 1], option.most))) {
                fprintf(stderr, "run: %s needs a %s\n", option.name,
                        option.most != 0 ? "number" : "value");
                return 0;
            }
            setenv(option.variable, argv[at + 1], 1);
            known = true;
        }
        if (!known) {
            fprintf(stderr, "run: unknown option %s\n", argv[at]);
            return 0;
        }
        at += 2;
    }
    return at < argc ? at : 0;
}

static std::string findProgram(const char* name) {
    if (strchr(name, '/') != nullptr)
        return name;
    const char* path = getenv("PATH");
    std::string rest = path != nullptr ? path : "/usr/bin:/bin";
    while (!rest.empty()) {
        size_t end = rest.find(':');
        std::string folder = rest.substr(0, end);
        std::string candidate = (folder.empty() ? "." : folder) + "/" + name;
        if (access(candidate.c_str(), X_OK) == 0)
            return candidate;
        rest = end == std::string::npos ? "" : rest.substr(end + 1);
    }
    return name;
}

static std::string libraryBesideLauncher() {
    char path[PATH_MAX];
    ssize_t size = readlink("/proc/self/exe", path, sizeof path - 1);
    if (size < 0)
        return "";
    std::string launcher(path, static_cast<size_t>(size));
    return launcher.substr(0, launcher.rfind('/') + 1) + "libvclock.so";
}

static void putInFront(const char* variable, const std::string& entry) {
    const char* others = getenv(variable);
    bool any = others != nullptr && *others != '\0';
    setenv(variable, (any ? entry + ":" + others : entry).c_str(), 1);
}

int main(int argc, char** argv) {
    for (const char* variable :
         {VCLOCK_SEED, VCLOCK_TRACE, VCLOCK_START, VCLOCK_LIMIT, VCLOCK_PATIENCE}) {
        // An empty variable says nothing; the options speak last.
        const char* value = getenv(variable);
        if (value != nullptr && *value == '\0')
            unsetenv(variable);
    }
    int at = readOptions(argc, argv);
    if (at == 0) {
        fputs(kUsage, stderr);
        return EXIT_USAGE;
    }
    std::string library = libraryBesideLauncher();
    if (access(library.c_str(), R_OK) != 0) {
        fprintf(stderr, "run: no library %s\n", library.c_str());
        return EXIT_CANNOT_RUN;
    }
    std::string program = findProgram(argv[at]);
    putInFront("LD_PRELOAD", library);
    // The library comes before the address sanitizer's, which insists on being the first unless
    // told. Behind it, the sanitizer still sees every call, and its own calls stay its own.
    putInFront("ASAN_OPTIONS", VCLOCK_ASAN_OPTION);
    // The same addresses in every run: what a program orders by address then repeats as well.
    int before = personality(0xffffffff);
    if (before >= 0)
        personality(static_cast<unsigned long>(before) | ADDR_NO_RANDOMIZE);
    execv(program.c_str(), argv + at);
    fprintf(stderr, "run: %s: %s\n", argv[at], strerror(errno));
    return errno == ENOENT ? EXIT_NOT_FOUND : EXIT_CANNOT_RUN;
}

// The launcher: starts a program under the virtual clock.
//
// It finds the preload library beside itself, puts it (and before it the address sanitizer's
// library, if the program needs one) in front of the preload list, and becomes the program.
#include <elf.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <link.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/personality.h>
#include <sys/stat.h>
#include <unistd.h>

#include <initializer_list>
#include <string>
#include <vector>

static const char* const kUsage =
    "Usage: run [--seed N] [--trace FILE] [--start UNIX_SECONDS] PROGRAM [ARGUMENT...]\n"
    "Runs PROGRAM in virtual time.\n"
    "  --seed N     choose the next thread at random from this seed, not first come first served\n"
    "  --trace FILE write who ran and waited when\n"
    "  --start S    begin the calendar at S seconds of 1970 UTC, not at the present date\n"
    "Exit status: the program's; 86 deadlock; 126, 127 the program cannot be started; 2 usage.\n";

static bool isNumber(const char* text, unsigned long long most) {
    if (*text == '\0' || text[strspn(text, "0123456789")] != '\0')
        return false;
    errno = 0;
    return strtoull(text, nullptr, 10) <= most && errno == 0;
}

// Returns the index of the program in argv, 0 when the arguments make no sense.
static int readOptions(int argc, char** argv) {
    struct {
        const char* name;
        const char* variable;
        unsigned long long most;  // 0: no number
    } const options[] = {{"--seed", "VCLOCK_SEED", ULLONG_MAX},
                         {"--trace", "VCLOCK_TRACE", 0},
                         // The end of the 32-bit unsigned count, in the year 2106.
                         {"--start", "VCLOCK_START", 0xffffffffull}};
    int at = 1;
    while (at < argc && argv[at][0] == '-') {
        if (strcmp(argv[at], "--") == 0) {
            at++;
            break;
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

// The bytes of a file's program of this word size; empty if it is none.
static std::vector<char> readFile(const std::string& path) {
    std::vector<char> bytes;
    FILE* file = fopen(path.c_str(), "rb");
    if (file == nullptr)
        return bytes;
    struct stat about;
    if (fstat(fileno(file), &about) == 0 && S_ISREG(about.st_mode)) {
        bytes.resize(static_cast<size_t>(about.st_size));
        bytes.resize(fread(bytes.data(), 1, bytes.size(), file));
    }
    fclose(file);
    return bytes;
}

template <typename Record>
static bool readRecord(const std::vector<char>& bytes, uint64_t offset, Record* record) {
    if (offset > bytes.size() || bytes.size() - offset < sizeof *record)
        return false;
    memcpy(record, bytes.data() + offset, sizeof *record);
    return true;
}

// The file offset of a virtual address.
static uint64_t fileOffset(const std::vector<char>& bytes, const ElfW(Ehdr) & header,
                           uint64_t address) {
    for (unsigned i = 0; i < header.e_phnum; i++) {
        ElfW(Phdr) part;
        if (readRecord(bytes, header.e_phoff + i * sizeof part, &part) && part.p_type == PT_LOAD &&
            address >= part.p_vaddr && address - part.p_vaddr < part.p_filesz)
            return part.p_offset + (address - part.p_vaddr);
    }
    return UINT64_MAX;
}

static std::string stringAt(const std::vector<char>& bytes, uint64_t offset) {
    if (offset >= bytes.size())
        return "";
    return std::string(bytes.data() + offset,
                       strnlen(bytes.data() + offset, bytes.size() - static_cast<size_t>(offset)));
}

// The name of the address sanitizer's library, if the program is linked with it.
static std::string sanitizerOf(const std::string& path) {
    std::vector<char> bytes = readFile(path);
    ElfW(Ehdr) header;
    if (!readRecord(bytes, 0, &header) || memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 ||
        header.e_phentsize != sizeof(ElfW(Phdr)))
        return "";
    for (unsigned i = 0; i < header.e_phnum; i++) {
        ElfW(Phdr) part;
        if (!readRecord(bytes, header.e_phoff + i * sizeof part, &part) ||
            part.p_type != PT_DYNAMIC)
            continue;
        uint64_t strings = UINT64_MAX;
        std::vector<uint64_t> needed;
        ElfW(Dyn) entry;
        for (uint64_t at = part.p_offset; readRecord(bytes, at, &entry) && entry.d_tag != DT_NULL;
             at += sizeof entry) {
            if (entry.d_tag == DT_STRTAB)
                strings = fileOffset(bytes, header, entry.d_un.d_ptr);
            else if (entry.d_tag == DT_NEEDED)
                needed.push_back(entry.d_un.d_val);
        }
        for (uint64_t name : needed) {
            std::string library = strings <= bytes.size() && name <= bytes.size()
                                      ? stringAt(bytes, strings + name)
                                      : "";
            if (library.rfind("libasan.so", 0) == 0)
                return library;
        }
    }
    return "";
}

static std::string libraryBesideLauncher() {
    char path[PATH_MAX];
    ssize_t size = readlink("/proc/self/exe", path, sizeof path - 1);
    if (size < 0)
        return "";
    std::string launcher(path, static_cast<size_t>(size));
    return launcher.substr(0, launcher.rfind('/') + 1) + "libvclock.so";
}

int main(int argc, char** argv) {
    for (const char* variable : {"VCLOCK_SEED", "VCLOCK_TRACE", "VCLOCK_START"}) {
        // An empty variable says nothing; the options speak last.
        const char* value = getenv(variable);
        if (value != nullptr && *value == '\0')
            unsetenv(variable);
    }
    int at = readOptions(argc, argv);
    if (at == 0) {
        fputs(kUsage, stderr);
        return 2;
    }
    std::string library = libraryBesideLauncher();
    if (access(library.c_str(), R_OK) != 0) {
        fprintf(stderr, "run: no library %s\n", library.c_str());
        return 126;
    }
    std::string program = findProgram(argv[at]);
    std::string sanitizer = sanitizerOf(program);
    std::string ours = sanitizer.empty() ? library : sanitizer + ":" + library;
    const char* others = getenv("LD_PRELOAD");
    std::string list = others != nullptr && *others != '\0' ? ours + ":" + others : ours;
    setenv("LD_PRELOAD", list.c_str(), 1);
    setenv("VCLOCK_PRELOAD", ours.c_str(), 1);
    // The same addresses in every run: what a program orders by address then repeats as well.
    int before = personality(0xffffffff);
    if (before >= 0)
        personality(static_cast<unsigned long>(before) | ADDR_NO_RANDOMIZE);
    execv(program.c_str(), argv + at);
    fprintf(stderr, "run: %s: %s\n", argv[at], strerror(errno));
    return errno == ENOENT ? 127 : 126;
}

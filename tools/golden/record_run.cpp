#include "tools/golden/record_run.h"

#include <ctype.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#include <utility>

#include "framework/case/check.h"
#include "simulator/sim_control.h"

namespace {

const Script* g_script;
size_t g_nextStep;
/** What was printed since the last line end. */
std::string g_printed;

int64_t nowUs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000000LL + now.tv_nsec / 1000;
}

/** Control characters as C writes them, so that a record is plain text. */
std::string visible(const std::string& text) {
    std::string out;
    for (char c : text) {
        char code[8];
        if (c == '\r') {
            out += "\\r";
        } else if (c == '\033') {
            out += "\\e";
        } else if (static_cast<unsigned char>(c) < ' ') {
            snprintf(code, sizeof code, "\\x%02x", static_cast<unsigned char>(c));
            out += code;
        } else {
            out += c;
        }
    }
    return out;
}

/** Behind the decimal digits at `at`. */
size_t behindDigits(const std::string& text, size_t at) {
    while (at < text.size() && isdigit(static_cast<unsigned char>(text[at])) != 0)
        at++;
    return at;
}

/** Behind "[12.345]" at `at` when that tells the present time; else 0. */
size_t behindPresentTime(const std::string& text, size_t at) {
    size_t point = behindDigits(text, at + 1);
    if (point == at + 1 || text.compare(point, 1, ".") != 0)
        return 0;
    size_t end = behindDigits(text, point + 1);
    int64_t told = strtoll(text.c_str() + at + 1, nullptr, 10) * 1000000 +
                   strtoll(text.c_str() + point + 1, nullptr, 10);
    int64_t age = nowUs() - told;
    return text.compare(end, 1, "]") == 0 && age >= 0 && age < 1000 ? end + 1 : 0;
}

/** Where the digits of a source line begin and end in "[function][12]", "[function() 12]" or
 *  "[function,12]" at `at`; an empty range when there are none. */
std::pair<size_t, size_t> sourceLine(const std::string& text, size_t at) {
    size_t name = at + 1;
    while (name < text.size() &&
           (isalnum(static_cast<unsigned char>(text[name])) != 0 || text[name] == '_'))
        name++;
    if (name == at + 1)
        return {0, 0};
    if (text.compare(name, 2, "()") == 0)
        name += 2;
    size_t first = text.compare(name, 2, "][") == 0 ? name + 2 : name + 1;
    if (first == name + 1 && text.compare(name, 1, " ") != 0 && text.compare(name, 1, ",") != 0)
        return {0, 0};
    size_t end = behindDigits(text, first);
    return end > first && text.compare(end, 1, "]") == 0 ? std::make_pair(first, end)
                                                         : std::make_pair(size_t{0}, size_t{0});
}

/** Where the digits of a source line begin and end in the texts that have no brackets around it. */
std::pair<size_t, size_t> bareSourceLine(const std::string& text, size_t at) {
    const std::string testCase = zk_currentCaseName != nullptr ? zk_currentCaseName : "-";
    for (const std::string& before :
         {std::string("tuner_check_signalInfo, "), testCase + ":", testCase + ", "}) {
        if (text.compare(at, before.size(), before) == 0)
            return {at + before.size(), behindDigits(text, at + before.size())};
    }
    return {0, 0};
}

/** Whether a number is an address of this process. Shorter ones are numbers that cases print. */
bool isAddress(uint64_t number) {
    constexpr uint64_t pageSize = 4096;
    unsigned char resident;
    return number >> 32 != 0 &&
           mincore(reinterpret_cast<void*>(number & ~(pageSize - 1)), 1, &resident) == 0;
}

/** Behind an address at `at`, printed as a number, "0x5555558b0040", or as the bytes of a record in
 *  memory, "0x40,0x00,0x8b,..."; else 0. */
size_t behindAddress(const std::string& text, size_t at) {
    char* end = nullptr;
    uint64_t number = strtoull(text.c_str() + at, &end, 16);
    size_t behind = static_cast<size_t>(end - text.c_str());
    if (isAddress(number))
        return behind;
    number = 0;
    for (int i = 0; i < 8; i++) {
        if (at + 5 > text.size() || text.compare(at, 2, "0x") != 0 || text[at + 4] != ',')
            return 0;
        number |= static_cast<uint64_t>(strtoul(text.c_str() + at, nullptr, 16)) << (8 * i);
        at += 5;
    }
    return isAddress(number) ? at - 1 : 0;
}

/** Takes out of a printed line what no record can hold: the present time, places in the source and
 *  in memory. */
std::string normalised(const std::string& line) {
    std::string out;
    for (size_t at = 0; at < line.size();) {
        std::pair<size_t, size_t> place = {0, 0};
        if (line.compare(at, 2, "0x") == 0) {
            if (size_t end = behindAddress(line, at)) {
                out += "ADDRESS";
                at = end;
                continue;
            }
        }
        if (line[at] == '[') {
            if (size_t end = behindPresentTime(line, at)) {
                out += "[T]";
                at = end;
                continue;
            }
            place = sourceLine(line, at);
        } else if (line[at] == 't' || line[at] == 'T') {
            place = bareSourceLine(line, at);
        }
        if (place.second > place.first) {
            out += line.substr(at, place.first - at) + "LINE";
            at = place.second;
        } else {
            out += line[at++];
        }
    }
    return out;
}

ssize_t onPrinted(void*, const char* data, size_t size) {
    g_printed.append(data, size);
    for (size_t end; (end = g_printed.find('\n')) != std::string::npos;) {
        qlx_sim_remark(("| " + visible(normalised(g_printed.substr(0, end)))).c_str());
        g_printed.erase(0, end + 1);
    }
    return static_cast<ssize_t>(size);
}

/** What is printed without a line end before something else happens. */
void flushPrinted() {
    if (!g_printed.empty())
        qlx_sim_remark(("|> " + visible(normalised(g_printed))).c_str());
    g_printed.clear();
}

/** The program asks for input: the next steps of the script, or its end. */
ssize_t onAsked(void*, char* buffer, size_t size) {
    flushPrinted();
    while (g_nextStep < g_script->steps.size()) {
        const std::string& step = g_script->steps[g_nextStep++];
        qlx_sim_remark(step.c_str());
        std::string text = step.substr(2) + "\n";
        if (step[0] == '!') {
            text.pop_back();
            if (qlx_sim_event(text.c_str()) != 0)
                qlx_sim_remark("! no family of the device knows this event");
        } else if (text.size() <= size) {
            memcpy(buffer, text.data(), text.size());
            return static_cast<ssize_t>(text.size());
        }
    }
    qlx_sim_remark("> end of input");
    return 0;
}

const char* wordOf(uint32_t verdict) {
    switch (verdict) {
        case TC_SUCCESS:
            return "SUCCESS";
        case TC_NOT_APPLICABLE:
            return "N/A";
        default:
            return "FAIL";
    }
}

const char* runCase(const TcModule& module, const TcCase& testCase) {
    zk_currentCaseName = testCase.name;
    if (module.caseSetup != nullptr)
        module.caseSetup(nullptr, nullptr);
    // As the console does it: parameters of manual cases come by a second call.
    if (testCase.autoFlag == MANUAL && module.caseSetup != nullptr)
        module.caseSetup(testCase.name, module.configFile);
    uint32_t verdict = testCase.function();
    if (module.caseTeardown != nullptr)
        module.caseTeardown();
    zk_currentCaseName = nullptr;
    return wordOf(verdict);
}

/** The two hooks of the module alone. */
const char* runHooks(const TcModule& module) {
    uint32_t result = module.setup != nullptr ? module.setup() : 0;
    qlx_sim_remark("(the cases run here)");
    if (module.teardown != nullptr)
        result |= module.teardown();
    return result == 0 ? "SUCCESS" : "FAIL";
}

}  // namespace

/** As the program opens files, but for what tells of the network of this machine: the device's has
 *  an address of its own. The linker puts this one in the place of fopen (--wrap). */
extern "C" FILE* __real_fopen(const char* path, const char* mode);
extern "C" FILE* __wrap_fopen(const char* path, const char* mode);
extern "C" FILE* __wrap_fopen(const char* path, const char* mode) {
    static char address[] = "02:00:5e:10:00:01\n";
    if (strncmp(path, "/sys/class/net/", strlen("/sys/class/net/")) == 0)
        return fmemopen(address, strlen(address), mode);
    return __real_fopen(path, mode);
}

void takeOverConsole(const Script& script) {
    g_script = &script;
    int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    // What children print or read of their own.
    dup2(null, STDIN_FILENO);
    dup2(null, STDOUT_FILENO);
    cookie_io_functions_t input = {onAsked, nullptr, nullptr, nullptr};
    cookie_io_functions_t output = {nullptr, onPrinted, nullptr, nullptr};
    stdin = fopencookie(nullptr, "r", input);
    stdout = fopencookie(nullptr, "w", output);
    setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

/** Waits for the start of a minute: the streams of the line-up, which repeat within one, are then
 *  at the same place in each run. */
static void waitForMinute() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    timespec next = {now.tv_sec - now.tv_sec % 60 + 60, 0};
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &next, nullptr);
}

void recordRun(const TcModule& module, const TcCase* testCase, const Script& script) {
    if (testCase != nullptr && module.setup != nullptr)
        module.setup();
    fflush(stdout);
    g_printed.clear();
    waitForMinute();
    qlx_sim_remark("(start)");
    for (const std::string& event : script.before) {
        qlx_sim_remark(("* " + event).c_str());
        qlx_sim_event(event.c_str());
    }
    const char* verdict = testCase != nullptr ? runCase(module, *testCase) : runHooks(module);
    fflush(stdout);
    flushPrinted();
    qlx_sim_remark((std::string("(end) ") + verdict).c_str());
    _exit(0);
}

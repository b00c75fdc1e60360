#include "tools/golden/record_run.h"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include <regex>

#include "framework/tc_check.h"
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

/** Takes out of a printed line what no record can hold: the present time, places in the source. */
std::string normalised(const std::string& line) {
    static const std::regex* stamp = new std::regex("\\[(\\d+)\\.(\\d+)\\]");
    // "[function][12]", "[function() 12]", "[function,12]", and one without brackets.
    static const std::regex* place = new std::regex("(\\[\\w+(?:\\(\\))?)(\\]\\[| |,)\\d+\\]");
    static const std::regex* bare = new std::regex("(tuner_check_signalInfo, )\\d+,");
    std::string out;
    auto at = line.cbegin();
    for (std::sregex_iterator match(line.begin(), line.end(), *stamp), end; match != end; ++match) {
        int64_t told = strtoll((*match)[1].str().c_str(), nullptr, 10) * 1000000 +
                       strtoll((*match)[2].str().c_str(), nullptr, 10);
        int64_t age = nowUs() - told;
        out.append(at, (*match)[0].first);
        out += age >= 0 && age < 1000 ? "[T]" : (*match)[0].str();
        at = (*match)[0].second;
    }
    out.append(at, line.cend());
    return std::regex_replace(std::regex_replace(out, *place, "$1$2LINE]"), *bare, "$1LINE,");
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

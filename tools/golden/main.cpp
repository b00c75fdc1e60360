// Golden calls: what each case does to the library, with all arguments, waits and prints, recorded
// on the simulated device and compared with the reviewed record of the module. A verdict on a
// healthy device says little about a case; its calls say whether it asks the right tuner for the
// right system.
//
// Each case, and each script of an operator's for it, runs in a process of its own from the same
// virtual second on, so that no record depends on another. docs/golden-calls.md explains the files.
#include <fcntl.h>
#include <fnmatch.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "common/exit_codes.h"
#include "environment/conf_reader.h"
#include "environment/config_files.h"
#include "platform/qlx_sys.h"
#include "program/startup.h"
#include "testcase/modules.h"
#include "tools/common/options.h"
#include "tools/common/own_folder.h"
#include "tools/golden/blocks.h"
#include "tools/golden/fold.h"
#include "tools/golden/record_run.h"
#include "tools/golden/script.h"
#include "tools/golden/shape.h"

namespace fs = std::filesystem;

namespace {

struct Options {
    fs::path dir = ".";
    fs::path golden;
    fs::path operators;
    std::vector<std::string> modules;
    std::string pattern = "*";
    unsigned jobs = 0;
    bool write = false;
};

using Scripts = std::map<std::string, std::vector<Script>>;

/** One run to record: a case with a script, or the hooks of a module. */
struct Run {
    const TcModule* module;
    const TcCase* testCase;
    unsigned scriptNumber;
    std::string title;
    std::string folder;
    pid_t pid;
    std::vector<std::string> record;
};

const TcModule* findModule(const std::string& name) {
    for (const TcModule* module : testModules) {
        if (name == module->name)
            return module;
    }
    return nullptr;
}

/** The worker: one run, in this process. */
int work(const std::string& moduleName, const std::string& caseName, const std::string& scriptFile,
         unsigned scriptNumber) {
    const TcModule* module = findModule(moduleName);
    const TcCase* testCase = nullptr;
    for (uint32_t i = 0; module != nullptr && i < module->caseCount; i++) {
        if (caseName == module->cases[i].name)
            testCase = &module->cases[i];
    }
    Scripts scripts;
    std::string error;
    if (module == nullptr || !loadScripts(scriptFile, &scripts, &error))
        return EXIT_USAGE;
    static Script script;
    if (scriptNumber < scripts[caseName].size())
        script = scripts[caseName][scriptNumber];
    takeOverConsole(script);
    int32_t platform = 0;
    snprintf(g_configFile.commonDir, sizeof g_configFile.commonDir, "%s", "config/common");
    get_common_config(&g_configFile);
    get_conf_value_self("PLATFORM_INFO", "PLATFORM", &platform, g_configFile.autoTestPlatform);
    set_platform(&g_configFile, &platform);
    QLX_SysInit();
    zk_loadEnvironment();
    recordRun(*module, testCase, script);
}

fs::path scriptFileOf(const Options& options, const TcModule& module) {
    return options.operators / (std::string(module.name) + ".txt");
}

void startRun(const Options& options, const fs::path& work, unsigned index, Run* run) {
    fs::path self = fs::canonical("/proc/self/exe");
    run->folder = (work / std::to_string(index)).string();
    fs::create_directories(run->folder);
    std::error_code none;
    fs::copy(options.dir / "device", run->folder + "/device", fs::copy_options::recursive, none);
    std::string number = std::to_string(run->scriptNumber);
    std::string script = scriptFileOf(options, *run->module).string();
    std::string launcher = self.parent_path() / "vclock/run";
    const char* name = run->testCase != nullptr ? run->testCase->name : "";
    fflush(stdout);
    run->pid = fork();
    if (run->pid != 0)
        return;
    makeOwnFolder(options.dir, run->folder + "/bench");
    if (chdir((run->folder + "/bench").c_str()) != 0)
        _exit(EXIT_CANNOT_RUN);
    setenv("QLX_SIM_ROOT", (run->folder + "/device").c_str(), 1);
    setenv("QLX_SIM_TRACE", (run->folder + "/trace").c_str(), 1);
    int messages = open((run->folder + "/messages").c_str(), O_WRONLY | O_CREAT, 0644);
    dup2(messages, STDERR_FILENO);
    // Four hours: no case lasts longer. The calendar begins on a day of its own.
    execl(launcher.c_str(), launcher.c_str(), "--start", "1767225600", "--limit", "14400",
          self.c_str(), "--worker", run->module->name, name, script.c_str(), number.c_str(),
          nullptr);
    _exit(EXIT_CANNOT_RUN);
}

std::string firstLine(const fs::path& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

/** A printed dump of bytes, "| 00 b0 11 ...", by its length, beginning and checksum. */
std::string shortDump(const std::string& text) {
    constexpr size_t shown = 8;
    std::istringstream in(text);
    std::vector<std::string> bytes;
    std::string begin;
    std::string word;
    if (text.compare(0, 2, "| ") != 0 || !(in >> word))
        return text;
    while (in >> word) {
        if (word.size() != 2 || word.find_first_not_of("0123456789abcdefABCDEF") != word.npos)
            return text;
        bytes.push_back(word);
        begin += bytes.size() <= shown ? word : "";
    }
    if (bytes.size() <= 2 * shown)
        return text;
    char sum[16];
    snprintf(sum, sizeof sum, " #%08x}", checksum(bytes));
    return "| {" + std::to_string(bytes.size()) + " " + begin + sum;
}

/** What a line of the trace says, as the golden file has it: data as one value, the number of a
 *  device thread apart from its name, and the case's own name as its title tells it. */
std::string goldenText(const Run& run, const std::string& thread, std::string text) {
    static const std::regex data("(\\d+) bytes ([0-9a-f]+)\\.\\. crc32 ([0-9a-f]{8})");
    static const std::regex number("(\\w)(\\d+)$");
    text = shortDump(text);
    if (text.find(" crc32 ") != text.npos)
        text = std::regex_replace(text, data, "{$1 $2 #$3}");
    const std::string name = run.testCase != nullptr ? run.testCase->name : "";
    for (size_t at = 0; !name.empty() && (at = text.find(name, at)) != text.npos;)
        text.replace(at, name.size(), "<case>");
    bool ofTheCase = text.compare(0, 4, "QLX_") != 0 || thread == "T1";
    return (ofTheCase ? "" : std::regex_replace(thread, number, "$1-$2") + ": ") + text;
}

/** Turns the trace into the lines of the golden file: waits in place of times, folded. */
std::vector<std::string> readRecord(const Run& run, int status) {
    std::ifstream file(run.folder + "/trace");
    std::vector<std::string> lines;
    std::string verdict;
    int64_t startUs = -1;
    int64_t lastMs = 0;
    for (std::string line; verdict.empty() && std::getline(file, line);) {
        std::istringstream in(line);
        std::string time, thread, text;
        in >> time >> thread;
        std::getline(in >> std::ws, text);
        int64_t us = strtoll(time.c_str(), nullptr, 10) * 1000000 +
                     strtoll(time.c_str() + time.find('.') + 1, nullptr, 10);
        if (text == "(start)")
            startUs = us;
        if (startUs < 0 || text == "(start)")
            continue;
        int64_t ms = (us - startUs) / 1000;
        std::string wait = ms != lastMs ? "+" + std::to_string(ms - lastMs) + " " : "";
        lastMs = ms;
        if (text.compare(0, 6, "(end) ") == 0) {
            verdict = text.substr(6);
            text = "end";
        }
        if (text != "end" || !wait.empty())
            lines.push_back(wait + goldenText(run, thread, text));
    }
    if (verdict.empty())
        verdict = WIFEXITED(status) ? "exit " + std::to_string(WEXITSTATUS(status))
                                    : "signal " + std::to_string(WTERMSIG(status));
    std::vector<std::string> record = foldLines(lines);
    record.insert(record.begin(), verdict + ", " + std::to_string(lastMs) + " ms");
    std::string message = firstLine(run.folder + "/messages");
    if (!message.empty())
        record.insert(record.begin() + 1, "(message) " + message);
    return record;
}

void recordAll(const Options& options, std::vector<Run>* runs) {
    std::string pattern = (fs::temp_directory_path() / "zk_golden_XXXXXX").string();
    if (mkdtemp(&pattern[0]) == nullptr) {
        perror("goldencalls: cannot make a temporary folder");
        exit(EXIT_FAILED);
    }
    fs::path work = pattern;
    size_t started = 0;
    size_t running = 0;
    while (started < runs->size() || running > 0) {
        if (started < runs->size() && running < options.jobs) {
            startRun(options, work, static_cast<unsigned>(started), &(*runs)[started]);
            started++;
            running++;
            continue;
        }
        int status = 0;
        pid_t pid = wait(&status);
        for (size_t i = 0; i < started; i++) {
            Run& run = (*runs)[i];
            if (run.pid != pid)
                continue;
            run.record = readRecord(run, status);
            run.pid = 0;
            running--;
            fs::remove_all(run.folder);
        }
    }
    fs::remove_all(work);
}

/** The runs of a module: its hooks, then its cases in the order of its table, each script. */
bool planModule(const Options& options, const TcModule* module, std::vector<Run>* runs) {
    Scripts scripts;
    std::string error;
    if (!loadScripts(scriptFileOf(options, *module), &scripts, &error)) {
        fprintf(stderr, "goldencalls: %s\n", error.c_str());
        return false;
    }
    if (fnmatch(options.pattern.c_str(), "(hooks)", 0) == 0 && module->caseCount > 0)
        runs->push_back({module, nullptr, 0, "(hooks)", "", 0, {}});
    for (uint32_t i = 0; i < module->caseCount; i++) {
        const TcCase& testCase = module->cases[i];
        auto found = scripts.find(testCase.name);
        std::vector<Script> ofCase;
        if (found != scripts.end()) {
            ofCase = found->second;
            scripts.erase(found);
        }
        if (testCase.function == nullptr || fnmatch(options.pattern.c_str(), testCase.name, 0) != 0)
            continue;
        if (ofCase.empty())
            runs->push_back({module, &testCase, 0, testCase.name, "", 0, {}});
        for (unsigned s = 0; s < ofCase.size(); s++)
            runs->push_back({module,
                             &testCase,
                             s,
                             std::string(testCase.name) + ": " + ofCase[s].title,
                             "",
                             0,
                             {}});
    }
    for (const auto& left : scripts) {
        fprintf(stderr, "goldencalls: a script for %s, which is no case of %s\n",
                left.first.c_str(), module->name);
        return false;
    }
    return true;
}

/** Shows the first lines that differ, old beside new, with the line before them. */
void showDifference(const std::string& module, const std::string& title,
                    const std::vector<std::string>& golden, const std::vector<std::string>& now) {
    size_t same = 0;
    while (same < golden.size() && same < now.size() && golden[same] == now[same])
        same++;
    printf("%s %s, step %zu:\n", module.c_str(), title.c_str(), same);
    if (same > 0)
        printf("      %s\n", golden[same - 1].c_str());
    for (size_t i = same; i < same + 3 && i < golden.size(); i++)
        printf("    - %s\n", golden[i].c_str());
    for (size_t i = same; i < same + 3 && i < now.size(); i++)
        printf("    + %s\n", now[i].c_str());
}

/** Compares a module's records with its golden file, or writes them there. Returns the count of
 *  differences. */
unsigned settleModule(const Options& options, const TcModule& module, const Records& now) {
    fs::path path = options.golden / (std::string(module.name) + ".txt");
    Records golden;
    std::string error;
    if (!readGolden(path, &golden, &error)) {
        fprintf(stderr, "goldencalls: %s\n", error.c_str());
        exit(EXIT_FAILED);
    }
    unsigned differences = 0;
    Records merged;
    for (const auto& record : now) {
        auto known = std::find_if(golden.begin(), golden.end(),
                                  [&](const auto& other) { return other.first == record.first; });
        if (known == golden.end()) {
            printf("%s %s is not in the golden file\n", module.name, record.first.c_str());
            differences++;
        } else if (known->second != record.second) {
            showDifference(module.name, record.first, known->second, record.second);
            differences++;
        }
    }
    bool whole = options.pattern == "*";
    for (const auto& record : golden) {
        bool there = std::any_of(now.begin(), now.end(),
                                 [&](const auto& other) { return other.first == record.first; });
        if (whole && !there) {
            printf("%s %s is in the golden file alone\n", module.name, record.first.c_str());
            differences++;
        }
    }
    if (!options.write || differences == 0)
        return differences;
    if (whole) {
        merged = now;
    } else {
        merged = golden;
        for (const auto& record : now) {
            auto known = std::find_if(merged.begin(), merged.end(), [&](const auto& other) {
                return other.first == record.first;
            });
            if (known == merged.end())
                merged.push_back(record);
            else
                known->second = record.second;
        }
    }
    if (!writeGolden(path, merged)) {
        fprintf(stderr, "goldencalls: cannot write %s\n", path.c_str());
        exit(EXIT_FAILED);
    }
    return differences;
}

int runDriver(const Options& options) {
    std::vector<Run> runs;
    for (const TcModule* module : testModules) {
        bool chosen = options.modules.empty() ||
                      std::find(options.modules.begin(), options.modules.end(), module->name) !=
                          options.modules.end();
        if (chosen && !planModule(options, module, &runs))
            return EXIT_USAGE;
    }
    if (runs.empty()) {
        fputs("goldencalls: no case is selected\n", stderr);
        return EXIT_USAGE;
    }
    recordAll(options, &runs);
    unsigned differences = 0;
    for (size_t first = 0; first < runs.size();) {
        Records records;
        size_t end = first;
        for (; end < runs.size() && runs[end].module == runs[first].module; end++)
            records.push_back({runs[end].title, runs[end].record});
        differences += settleModule(options, *runs[first].module, records);
        first = end;
    }
    printf("%zu runs recorded, %u differ from the golden calls%s\n", runs.size(), differences,
           options.write && differences > 0 ? "; written anew" : "");
    return differences == 0 || options.write ? EXIT_DONE : EXIT_FAILED;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 6 && std::string(argv[1]) == "--worker")
        return work(argv[2], argv[3], argv[4],
                    static_cast<unsigned>(strtoul(argv[5], nullptr, 10)));
    Options options;
    options.jobs = static_cast<unsigned>(std::max(1L, sysconf(_SC_NPROCESSORS_ONLN)));
    CLI::App app{
        "Records what each case does to the library and compares it with the golden calls."};
    app.add_option("--dir", options.dir, "bench folder, laid out by tools/torture_bench.sh")
        ->check(CLI::ExistingDirectory);
    app.add_option("--golden", options.golden, "folder of the golden files")
        ->required()
        ->check(CLI::ExistingDirectory);
    app.add_option("--operators", options.operators, "folder of the operators' scripts")
        ->required()
        ->check(CLI::ExistingDirectory);
    app.add_option("--module", options.modules, "takes this module only; may be repeated");
    app.add_option("--name", options.pattern, "takes the cases that match this pattern");
    app.add_option("--jobs", options.jobs, "processes side by side")->check(CLI::PositiveNumber);
    app.add_flag("--write", options.write, "writes the golden files anew, for a review");
    int answer = readOptions(&app, argc, argv);
    if (answer >= 0)
        return answer;
    options.dir = fs::absolute(options.dir);
    options.golden = fs::absolute(options.golden);
    options.operators = fs::absolute(options.operators);
    if (!fs::is_directory(options.dir / "config")) {
        fprintf(stderr, "goldencalls: %s is no bench folder: it has no config\n",
                options.dir.c_str());
        return EXIT_USAGE;
    }
    return runDriver(options);
}

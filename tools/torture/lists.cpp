#include "tools/torture/lists.h"

#include <stdio.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>

#include "tools/golden/blocks.h"

namespace fs = std::filesystem;

namespace torture {

const TcModule* findModule(const Modules& modules, const std::string& name) {
    for (const Module& module : modules) {
        if (name == module.record->name)
            return module.record;
    }
    return nullptr;
}

namespace {

fs::path fileOf(const fs::path& folder, const TcModule& module) {
    return folder / (std::string(module.name) + ".txt");
}

/** Hands the words of each line to `take`, which answers whether it could read them. */
bool readList(const fs::path& folder, const TcModule& module,
              const std::function<bool(std::istringstream& words, const std::string& line)>& take) {
    fs::path path = fileOf(folder, module);
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        if (line.empty() || line[0] == '#' || take(words, line))
            continue;
        fprintf(stderr, "torture: %s: cannot read: %s\n", path.c_str(), line.c_str());
        return false;
    }
    return true;
}

/** What stands behind the columns says why. */
bool readReason(std::istringstream& words, std::string* reason) {
    constexpr size_t shortest = 10;
    std::getline(words >> std::ws, *reason);
    return reason->size() >= shortest;
}

}  // namespace

bool loadLists(const fs::path& folder, const Modules& modules, Lists* lists) {
    for (const Module& some : modules) {
        const TcModule* module = some.record;
        const std::string name = module->name;
        bool good = readList(folder / "exceptions", *module,
                             [&](std::istringstream& words, const std::string&) {
                                 Exception one;
                                 one.module = name;
                                 words >> one.what >> one.casePattern >> one.stepPattern;
                                 bool known = one.what == "missed" || one.what == "unclean" ||
                                              one.what == "both" || one.what == "left";
                                 bool whole = readReason(words, &one.reason);
                                 lists->exceptions.push_back(one);
                                 return known && whole;
                             });
        good = good && readList(folder / "untortured", *module,
                                [&](std::istringstream& words, const std::string&) {
                                    Untortured one;
                                    one.module = name;
                                    words >> one.casePattern;
                                    bool whole = readReason(words, &one.reason);
                                    lists->untortured.push_back(one);
                                    return whole;
                                });
        good = good && readList(folder / "limits", *module,
                                [&](std::istringstream& words, const std::string& line) {
                                    Limit one = {name, "", "", "", line};
                                    words >> one.casePattern >> one.step >> one.lastGoodMs;
                                    lists->limits.push_back(one);
                                    return !one.lastGoodMs.empty();
                                });
        if (!good)
            return false;
    }
    return true;
}

std::string Subject::name() const {
    return testCase->name + (script > 0 ? "@" + std::to_string(script + 1) : "");
}

bool loadSubjects(const fs::path& golden, const TcModule& module, std::vector<Subject>* subjects) {
    std::map<std::string, std::vector<Script>> scripts;
    Records records;
    std::string error;
    if (!loadScripts(fileOf(golden / "operator", module), &scripts, &error) ||
        !readGolden(fileOf(golden / "calls", module), &records, &error)) {
        fprintf(stderr, "torture: %s\n", error.c_str());
        return false;
    }
    std::map<std::string, std::string> verdicts;
    for (const auto& record : records) {
        const std::string first = record.second.empty() ? "" : record.second[0];
        verdicts[record.first] = first.substr(0, first.find(','));
    }
    for (uint32_t i = 0; i < module.caseCount; i++) {
        const TcCase& testCase = module.cases[i];
        if (testCase.function == nullptr)
            continue;
        const std::vector<Script>& ofCase = scripts[testCase.name];
        std::vector<Subject> all;
        if (ofCase.empty())
            all.push_back({&module, &testCase, -1, verdicts[testCase.name]});
        for (size_t s = 0; s < ofCase.size(); s++)
            all.push_back({&module, &testCase, static_cast<int>(s),
                           verdicts[testCase.name + (": " + ofCase[s].title)]});
        for (const Subject& one : all) {
            if (one.verdict.empty()) {
                fprintf(stderr, "torture: %s has no golden calls\n", one.name().c_str());
                return false;
            }
        }
        auto fails = [](const Subject& one) { return one.verdict != "SUCCESS"; };
        if (std::all_of(all.begin(), all.end(), fails))
            all.resize(1, all[0]);
        else
            all.erase(std::remove_if(all.begin(), all.end(), fails), all.end());
        subjects->insert(subjects->end(), all.begin(), all.end());
    }
    return true;
}

bool loadScript(const fs::path& golden, const Subject& subject, Script* script) {
    std::map<std::string, std::vector<Script>> scripts;
    std::string error;
    if (subject.script < 0)
        return true;
    size_t number = static_cast<size_t>(subject.script);
    if (!loadScripts(fileOf(golden / "operator", *subject.module), &scripts, &error) ||
        number >= scripts[subject.testCase->name].size())
        return false;
    *script = scripts[subject.testCase->name][number];
    return true;
}

}  // namespace torture

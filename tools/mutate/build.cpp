#include "tools/mutate/build.h"

#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>

#include "tools/common/files.h"
#include "tools/mutate/schemata.h"

namespace fs = std::filesystem;

namespace {

struct Ran {
    int status;
    std::string text;
};

/** Runs a command line of the shell and reads what it prints. */
Ran runShell(const std::string& line) {
    FILE* pipe = popen(line.c_str(), "re");
    if (pipe == nullptr)
        throw std::runtime_error("cannot run " + line);
    std::string text;
    char block[65536];
    for (size_t count; (count = fread(block, 1, sizeof block, pipe)) > 0;)
        text.append(block, count);
    return {pclose(pipe), text};
}

std::string shellWord(const fs::path& path) {
    return "'" + path.string() + "'";
}

/** What tells a compiler where things are and what is defined. */
std::string flagsOf(const std::string& command) {
    std::istringstream words(command);
    std::string flags;
    for (std::string word; words >> word;) {
        if (word == "-isystem" || word == "-I" || word == "-D") {
            flags += " " + word;
            words >> word;
            flags += " " + word;
        } else if (word.compare(0, 2, "-I") == 0 || word.compare(0, 2, "-D") == 0 ||
                   word.compare(0, 5, "-std=") == 0) {
            flags += " " + word;
        }
    }
    return flags;
}

Ran compile(const fs::path& text, const fs::path& object) {
    return runShell(
        "clang++ -x c++-cpp-output -std=c++17 -O0 -fPIC -w -Wno-c++11-narrowing "
        "-Wno-invalid-constexpr "
        "-ferror-limit=0 -fno-caret-diagnostics -fno-color-diagnostics -c " +
        shellWord(text) + " -o " + shellWord(object) + " 2>&1");
}

void writeText(const fs::path& path, const std::string& text) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

/** The mutants that the compiler's messages blame. */
std::set<unsigned> blamed(const Schemata& schemata, const std::string& messages) {
    std::set<unsigned> ids;
    std::istringstream lines(messages);
    for (std::string line; std::getline(lines, line);) {
        size_t error = line.find(": error: ");
        // The place of a switch that cannot be in a constant stands in a note.
        if (error == line.npos && line.find("zk_mutant") != line.npos)
            error = line.find(": note: ");
        size_t name = line.find(".ii:");
        if (error == line.npos || name == line.npos || name > error)
            continue;
        unsigned row = 0;
        unsigned column = 0;
        if (sscanf(line.c_str() + name, ".ii:%u:%u", &row, &column) == 2) {
            std::set<unsigned> here = blamedAt(schemata, row, column);
            ids.insert(here.begin(), here.end());
        }
    }
    return ids;
}

/** Whether a link command takes an object from one of its archives. */
bool isInArchive(const std::string& command, const std::string& object) {
    size_t end = object.find(".dir/");
    size_t begin = object.rfind('/', end) + 1;
    std::string target = object.substr(begin, end - begin);
    // The modules' folders are in the program's archive.
    if (target.compare(0, 3, "tc_") == 0)
        target = "zk_product";
    return command.find("lib" + target + ".a") != command.npos;
}

}  // namespace

Builder::Builder(const fs::path& source, const fs::path& build, const fs::path& out)
    : source_(fs::canonical(source)), build_(fs::canonical(build)), out_(fs::absolute(out)) {
    std::ifstream file(build_ / "compile_commands.json");
    nlohmann::json all = nlohmann::json::parse(file, nullptr, false);
    if (!all.is_array())
        throw std::runtime_error(build.string() + " has no compile_commands.json");
    for (const auto& entry : all) {
        std::string command = entry.value("command", "");
        std::istringstream words(command);
        CompileCommand known = {entry.value("file", ""), flagsOf(command), ""};
        for (std::string word; words >> word;) {
            if (word == "-o")
                words >> known.object;
        }
        commands_.push_back(known);
    }
}

Places Builder::find(const std::vector<CompileCommand>& sources,
                     const std::function<bool(const std::string&)>& isOurs) {
    Places places;
    units_ = sources;
    for (const CompileCommand& source : sources) {
        Ran ran = runShell("clang++ -E -x c++" + source.flags + " " + shellWord(source.source));
        if (ran.status != 0 || !findPlaces(source.source, ran.text, isOurs, &places))
            throw std::runtime_error("clang cannot read " + source.source);
    }
    return places;
}

std::string Builder::objectOf(size_t unit) const {
    return (out_ / "units" / (std::to_string(unit) + ".o")).string();
}

void Builder::buildAll(Places* places, const std::vector<std::string>& programs) {
    std::map<size_t, std::string> objects;
    fs::create_directories(out_ / "units");
    Ran made = runShell("clang++ -std=c++17 -O1 -fPIC -c " +
                        shellWord(source_ / "tools/mutate/switch.cpp") + " -o " +
                        shellWord(out_ / "switch.o") + " 2>&1");
    if (made.status != 0)
        throw std::runtime_error(made.text);
    for (size_t unit = 0; unit < places->units.size(); unit++) {
        fs::path text = out_ / "units" / (std::to_string(unit) + ".ii");
        Ran ran = {1, ""};
        constexpr int attempts = 12;
        for (int i = 0; i < attempts && ran.status != 0; i++) {
            Schemata schemata = writeSchemata(*places, unit);
            writeText(text, schemata.text);
            ran = compile(text, objectOf(unit));
            if (ran.status == 0)
                break;
            std::set<unsigned> ids = blamed(schemata, ran.text);
            if (ids.empty())
                break;
            for (unsigned id : ids)
                places->mutants[id - 1].constant = true;
        }
        if (ran.status != 0)
            throw std::runtime_error("cannot compile " + text.string() + ":\n" +
                                     ran.text.substr(0, 2000));
        objects[unit] = objectOf(unit);
    }
    layOut(bin());
    for (const std::string& program : programs)
        link(program, bin(), objects);
}

/** The build as it is, by links. */
void Builder::layOut(const fs::path& bin) const {
    fs::create_directories(bin);
    for (const auto& entry : fs::directory_iterator(build_)) {
        fs::path there = bin / entry.path().filename();
        std::error_code none;
        fs::remove_all(there, none);
        fs::create_symlink(entry.path(), there);
    }
}

void Builder::link(const std::string& program, const fs::path& bin,
                   const std::map<size_t, std::string>& objects) const {
    std::string line =
        runShell("ninja -C " + shellWord(build_) + " -t commands " + program + " | tail -1").text;
    size_t begin = line.find("&& ");
    size_t end = line.find(" &&", begin + 3);
    if (begin == line.npos || end == line.npos)
        throw std::runtime_error("no link command for " + program);
    std::string command = line.substr(begin + 3, end - begin - 3);
    std::string added = " " + shellWord(out_ / "switch.o");
    for (const auto& object : objects) {
        const std::string& old = units_[object.first].object;
        size_t at = command.find(" " + old + " ");
        if (at != command.npos)
            command.replace(at + 1, old.size(), object.second);
        else if (isInArchive(command, old))
            added += " " + object.second;
    }
    size_t target = command.find(" -o ");
    size_t targetEnd = command.find(' ', target + 4);
    fs::path made = bin / fs::path(command.substr(target + 4, targetEnd - target - 4)).filename();
    command.replace(target, targetEnd - target, added + " -fuse-ld=gold -o " + shellWord(made));
    std::error_code none;
    fs::remove(made, none);
    Ran ran = runShell("cd " + shellWord(build_) + " && " + command + " 2>&1");
    if (ran.status != 0)
        throw std::runtime_error("cannot link " + program + ":\n" + ran.text.substr(0, 2000));
}

Builder::Built Builder::compileOne(const Places& places, const Mutant& mutant,
                                   const fs::path& folder) const {
    for (const auto& part : mutant.replacements) {
        fs::path text = folder / (std::to_string(part.first) + ".ii");
        writeText(text, writeMutant(places, part.first, mutant));
        Ran ran = compile(text, folder / (std::to_string(part.first) + ".o"));
        if (ran.status != 0)
            return ran.text.find("static_assert failed") != ran.text.npos ? REFUSED_BY_ASSERTION
                                                                          : NO_PROGRAM;
    }
    return BUILT;
}

Builder::Built Builder::buildOne(const Places& places, const Mutant& mutant,
                                 const fs::path& bin) const {
    Built built = compileOne(places, mutant, bin.string() + ".units");
    if (built == BUILT)
        layOut(bin);
    return built;
}

void Builder::linkOne(const Places& places, const Mutant& mutant, const std::string& program,
                      const fs::path& bin) const {
    std::map<size_t, std::string> objects;
    fs::path folder = bin.string() + ".units";
    for (size_t unit = 0; unit < places.units.size(); unit++)
        objects[unit] = mutant.replacements.count(unit) > 0
                            ? (folder / (std::to_string(unit) + ".o")).string()
                            : objectOf(unit);
    link(program, bin, objects);
}

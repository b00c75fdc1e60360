#include "tools/torture/keys.h"

#include <stdio.h>

#include <algorithm>
#include <set>
#include <sstream>

#include "tools/common/files.h"
#include "tools/common/process.h"

namespace fs = std::filesystem;

namespace torture {

namespace {

/** The files below a folder, in the order of their names. */
std::vector<fs::path> filesBelow(const fs::path& folder) {
    std::vector<fs::path> files;
    std::error_code missing;
    for (const auto& entry : fs::recursive_directory_iterator(folder, missing)) {
        if (entry.is_regular_file())
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

bool Keys::read(const fs::path& bench) {
    const fs::path build = programFile().parent_path();
    for (const char* folder :
         {"program", "framework", "simulator", "tools/CMakeFiles/torture_core.dir"}) {
        for (const fs::path& path : filesBelow(build / folder)) {
            if (path.extension() != ".o")
                continue;
            if (fs::last_write_time(path) > fs::last_write_time(programFile())) {
                fprintf(stderr, "torture: the build is not complete: %s is younger than %s\n",
                        path.c_str(), programFile().c_str());
                return false;
            }
            objects_.push_back({path, "", {}});
        }
    }
    if (!readSymbols()) {
        fprintf(stderr, "torture: nm cannot read the objects below %s\n", build.c_str());
        return false;
    }
    std::string all = readText(build / "vclock/libvclock.so") + readText(build / "vclock/run");
    for (const char* folder : {"config", "device"}) {
        for (const fs::path& path : filesBelow(bench / folder))
            all += path.lexically_relative(bench).string() + "\n" + readText(path);
    }
    // The folder of the streams bears the name of what they are made of.
    std::error_code missing;
    all += fs::read_symlink(bench / "stream/ts", missing).string();
    // The worker leads to all of the device, which it only puts to rest.
    for (const Object& object : objects_) {
        if (object.path.string().find("torture_core") != std::string::npos)
            all += contentKey(readText(object.path));
    }
    common_ = contentKey(all);
    return true;
}

bool Keys::readSymbols() {
    if (objects_.empty())
        return false;
    std::string command = "nm -g -A -P --";
    std::map<std::string, size_t> numbers;
    for (size_t i = 0; i < objects_.size(); i++) {
        command += " '" + objects_[i].path.string() + "'";
        numbers[objects_[i].path.string()] = i;
    }
    FILE* nm = popen(command.c_str(), "r");
    if (nm == nullptr)
        return false;
    std::string text;
    char part[65536];
    for (size_t size; (size = fread(part, 1, sizeof part, nm)) > 0;)
        text.append(part, size);
    if (pclose(nm) != 0)
        return false;
    // "PATH: SYMBOL TYPE ..."; capitals are symbols that other objects see.
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        size_t end = line.find(": ");
        std::istringstream words(line.substr(end == std::string::npos ? line.size() : end + 2));
        std::string symbol, type;
        words >> symbol >> type;
        auto object = numbers.find(line.substr(0, end));
        if (object == numbers.end() || type.empty())
            continue;
        if (type == "U")
            objects_[object->second].needs.push_back(symbol);
        else if (std::string("TDBRCG").find(type) != std::string::npos)
            definers_.emplace(symbol, object->second);
    }
    return true;
}

const std::string& Keys::objectKey(size_t number) {
    Object& object = objects_[number];
    if (object.key.empty())
        object.key = contentKey(readText(object.path));
    return object.key;
}

const std::string& Keys::moduleKey(const std::string& record) {
    std::string& key = moduleKeys_[record];
    if (!key.empty())
        return key;
    std::set<size_t> reached;
    std::vector<size_t> open;
    auto reach = [&](const std::string& symbol) {
        auto definer = definers_.find(symbol);
        if (definer != definers_.end() && reached.insert(definer->second).second)
            open.push_back(definer->second);
    };
    std::string all;
    reach(record);
    if (open.empty()) {
        // Of a module that is not in the list, as those of tests, all counts.
        all = readText(programFile()) + readText(programFile().parent_path() / "libQlx.so");
        return key = contentKey(all);
    }
    // The configuration is loaded for each, before the case.
    reach("_Z18zk_loadEnvironmentv");
    while (!open.empty()) {
        size_t next = open.back();
        open.pop_back();
        for (const std::string& symbol : objects_[next].needs)
            reach(symbol);
    }
    for (size_t i : reached)
        all += objectKey(i);
    return key = contentKey(all);
}

std::string Keys::keyOf(const std::string& record, const Subject& subject, const Script& script) {
    std::string all = common_ + moduleKey(record) + subject.name() + "\n";
    for (const auto* lines : {&script.before, &script.steps}) {
        for (const std::string& line : *lines)
            all += line + "\n";
    }
    return contentKey(all);
}

fs::file_time_type Keys::madeAt(const std::string& record) const {
    auto definer = definers_.find(record);
    return definer == definers_.end() ? fs::file_time_type::min()
                                      : fs::last_write_time(objects_[definer->second].path);
}

}  // namespace torture

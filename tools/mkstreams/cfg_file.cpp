/* The first value of a section and key counts, as the program's own reader has it. */
#include "tools/mkstreams/cfg_file.h"

#include <stdlib.h>

#include <fstream>

namespace mkstreams {

static std::string trimmed(const std::string& text) {
    const char* const blanks = " \t\r\n\v\f";
    size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos)
        return "";
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool CfgFile::load(const std::string& path) {
    values_.clear();
    std::ifstream file(path);
    if (!file)
        return false;
    std::string section;
    for (std::string line; std::getline(file, line);) {
        line = trimmed(line);
        if (line.empty() || line[0] == '#')
            continue;
        if (line.front() == '[' && line.back() == ']') {
            section = trimmed(line.substr(1, line.find(']') - 1));
            continue;
        }
        size_t equals = line.find('=');
        if (equals != std::string::npos)
            values_.emplace(std::make_pair(section, trimmed(line.substr(0, equals))),
                            trimmed(line.substr(equals + 1)));
    }
    return true;
}

bool CfgFile::has(const std::string& section, const std::string& key) const {
    return values_.count({section, key}) != 0;
}

uint32_t CfgFile::number(const std::string& section, const std::string& key) const {
    return static_cast<uint32_t>(strtoll(text(section, key).c_str(), nullptr, 0));
}

std::string CfgFile::text(const std::string& section, const std::string& key) const {
    auto found = values_.find({section, key});
    return found == values_.end() ? "" : found->second;
}

}  // namespace mkstreams

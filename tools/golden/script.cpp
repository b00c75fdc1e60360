#include "tools/golden/script.h"

#include <fstream>

bool loadScripts(const std::filesystem::path& path,
                 std::map<std::string, std::vector<Script>>* scripts, std::string* error) {
    std::ifstream file(path);
    Script* script = nullptr;
    unsigned number = 0;
    for (std::string line; std::getline(file, line);) {
        number++;
        size_t first = line.find_first_not_of(' ');
        if (first == std::string::npos || line[first] == '#')
            continue;
        std::string rest = first + 2 <= line.size() ? line.substr(first + 2) : "";
        size_t colon = line.find(": ");
        if (first == 0 && colon != std::string::npos && colon + 2 < line.size()) {
            std::vector<Script>& ofCase = (*scripts)[line.substr(0, colon)];
            ofCase.push_back({line.substr(colon + 2), {}, {}});
            script = &ofCase.back();
        } else if (first > 0 && script != nullptr && line[first] == '*' && !rest.empty()) {
            script->before.push_back(rest);
        } else if (first > 0 && script != nullptr && (line[first] == '>' || line[first] == '!')) {
            script->steps.push_back(line.substr(first, 1) + " " + rest);
        } else {
            *error = path.string() + ":" + std::to_string(number) + ": cannot read '" + line + "'";
            return false;
        }
    }
    return true;
}

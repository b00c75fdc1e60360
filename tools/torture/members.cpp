#include "tools/torture/members.h"

#include <ctype.h>
#include <stdio.h>
#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "tools/common/files.h"

namespace fs = std::filesystem;

namespace torture {

namespace {

/** The entry of this name, added at the end when there is none. */
template <typename Value>
Value& entryOf(std::vector<std::pair<std::string, Value>>* list, const std::string& name) {
    auto known = std::find_if(list->begin(), list->end(),
                              [&](const auto& one) { return one.first == name; });
    if (known == list->end())
        known = list->insert(list->end(), {name, Value()});
    return known->second;
}

/** "a.b a.c d" as "a.{b c} d". */
std::string foldPaths(const std::vector<std::string>& paths) {
    std::vector<std::pair<std::string, std::vector<std::string>>> heads;
    for (const std::string& path : paths) {
        size_t point = path.find('.');
        std::vector<std::string>& rests = entryOf(&heads, path.substr(0, point));
        if (point != std::string::npos)
            rests.push_back(path.substr(point + 1));
    }
    std::string out;
    for (const auto& head : heads) {
        out += (out.empty() ? "" : " ") + head.first;
        if (head.second.size() == 1)
            out += "." + foldPaths(head.second);
        else if (!head.second.empty())
            out += ".{" + foldPaths(head.second) + "}";
    }
    return out;
}

/** "a.{b c(zero)} d" as "a.b a.c d", from `at` on to the end or a closing brace. */
void unfoldPaths(const std::string& text, const std::string& prefix, size_t* at,
                 std::vector<std::string>* paths) {
    std::string word;
    auto finish = [&] {
        if (!word.empty())
            paths->push_back(prefix + word.substr(0, word.find('(')));
        word.clear();
    };
    while (*at < text.size()) {
        char c = text[(*at)++];
        if (c == '{') {
            unfoldPaths(text, prefix + word, at, paths);
            word.clear();
        } else if (c == '}') {
            break;
        } else if (c == ' ') {
            finish();
        } else {
            word += c;
        }
    }
    finish();
}

/** A name but for its number, and the number: "TC_GPIO_GetValue_" and "003". */
std::pair<std::string, std::string> splitName(const std::string& name) {
    size_t end = name.size();
    while (end > 0 && isdigit(static_cast<unsigned char>(name[end - 1])) != 0)
        end--;
    return {name.substr(0, end), name.substr(end)};
}

bool follows(const std::string& number, const std::string& other) {
    return number.size() == other.size() && number.size() < 10 &&
           atol(other.c_str()) == atol(number.c_str()) + 1;
}

/** "003,005..007". */
std::string foldNumbers(const std::vector<std::string>& numbers) {
    std::string out;
    for (size_t first = 0; first < numbers.size();) {
        size_t last = first;
        while (last + 1 < numbers.size() && follows(numbers[last], numbers[last + 1]))
            last++;
        out += (out.empty() ? "" : ",") + numbers[first];
        if (last > first)
            out += (last > first + 1 ? ".." : ",") + numbers[last];
        first = last + 1;
    }
    return out;
}

std::string foldNames(const std::vector<std::string>& names) {
    std::vector<std::pair<std::string, std::vector<std::string>>> heads;
    for (const std::string& name : names) {
        auto parts = splitName(name);
        entryOf(&heads, parts.first).push_back(parts.second);
    }
    std::string out;
    for (const auto& head : heads) {
        out += out.empty() ? "" : " ";
        if (head.second.size() == 1)
            out += head.first + head.second[0];
        else
            out += head.first + "{" + foldNumbers(head.second) + "}";
    }
    return out;
}

/** The names that one word stands for; none when it cannot be read. */
std::vector<std::string> unfoldName(const std::string& word) {
    size_t open = word.find('{');
    if (open == std::string::npos)
        return {word};
    std::vector<std::string> names;
    if (word.back() != '}')
        return {};
    const std::string head = word.substr(0, open);
    std::istringstream parts(word.substr(open + 1, word.size() - open - 2));
    for (std::string part; std::getline(parts, part, ',');) {
        size_t dots = part.find("..");
        std::string first = part.substr(0, dots);
        long last = atol(part.substr(dots == std::string::npos ? 0 : dots + 2).c_str());
        for (long number = atol(first.c_str()); number <= last; number++) {
            std::string digits = std::to_string(number);
            if (digits.size() < first.size())
                digits.insert(0, first.size() - digits.size(), '0');
            names.push_back(head + digits);
        }
    }
    return names;
}

/** Words in lines of at most 100 columns; lines behind the first begin with `indent`. */
std::string wrap(const std::string& first, const std::string& indent, const std::string& text) {
    constexpr size_t columns = 100;
    std::istringstream words(text);
    std::string out;
    std::string line = first;
    bool any = false;
    for (std::string word; words >> word; any = true) {
        if (any && line.size() + 1 + word.size() > columns) {
            out += line + "\n";
            line = indent + word;
        } else {
            line += (any ? " " : "") + word;
        }
    }
    return out + line + "\n";
}

}  // namespace

bool ProfileMaker::take(const std::string& step, bool noticed) {
    std::istringstream words(step);
    std::string function, kind;
    words >> function >> kind;
    const char* ofMembers[] = {"flip", "zero", "none", "less", "repeat"};
    if (std::find(std::begin(ofMembers), std::end(ofMembers), kind) == std::end(ofMembers))
        return false;
    std::vector<std::string> names;
    for (std::string name; words >> name;)
        names.push_back(name);
    if (kind == "repeat")
        names.push_back(kind);
    auto& members = entryOf(&functions_, function);
    for (const std::string& name : names) {
        auto known = std::find_if(members.begin(), members.end(),
                                  [&](const Member& one) { return one.name == name; });
        if (known == members.end())
            known = members.insert(members.end(), {name, {}});
        // Of several that were changed at once, which one it was is told by other steps.
        if (noticed && names.size() == 1)
            known->noticed.push_back(kind);
    }
    return true;
}

std::string ProfileMaker::Member::text() const {
    bool whole = noticed[0] == "flip" || noticed[0] == "repeat" || noticed.size() == 2;
    return name + (whole ? "" : "(" + noticed[0] + ")");
}

Profile ProfileMaker::profile() const {
    Profile profile;
    for (const auto& function : functions_) {
        std::vector<std::string> judges;
        std::vector<std::string> ignores;
        for (const Member& member : function.second) {
            if (member.noticed.empty())
                ignores.push_back(member.name);
            else
                judges.push_back(member.text());
        }
        std::string text = judges.empty() ? "" : "judges " + foldPaths(judges);
        if (!ignores.empty())
            text += (text.empty() ? "" : "; ") + ("ignores " + foldPaths(ignores));
        profile.push_back({function.first, text});
    }
    return profile;
}

unsigned ProfileMaker::members() const {
    size_t count = 0;
    for (const auto& function : functions_)
        count += function.second.size();
    return static_cast<unsigned>(count);
}

unsigned ProfileMaker::judged() const {
    ptrdiff_t count = 0;
    for (const auto& function : functions_)
        count += std::count_if(function.second.begin(), function.second.end(),
                               [](const Member& one) { return !one.noticed.empty(); });
    return static_cast<unsigned>(count);
}

std::vector<std::string> judgedMembers(const Profile& profile, const std::string& function) {
    std::vector<std::string> members;
    for (const auto& one : profile) {
        size_t at = 0;
        const std::string judges = "judges ";
        if (one.first == function && one.second.compare(0, judges.size(), judges) == 0)
            unfoldPaths(one.second.substr(judges.size(), one.second.find(';') - judges.size()), "",
                        &at, &members);
    }
    return members;
}

bool readProfiles(const fs::path& path, Profiles* profiles) {
    std::vector<std::string> names;
    Profile profile;
    auto finish = [&] {
        for (const std::string& name : names)
            profiles->push_back({name, profile});
        names.clear();
        profile.clear();
    };
    for (const std::string& line : readLines(path)) {
        size_t first = line.find_first_not_of(' ');
        if (first == std::string::npos || line[first] == '#')
            continue;
        bool good = first == 0 || !names.empty();
        if (first == 0) {
            if (!profile.empty())
                finish();
            std::istringstream words(line);
            for (std::string word; words >> word;) {
                std::vector<std::string> some = unfoldName(word);
                good = good && !some.empty();
                names.insert(names.end(), some.begin(), some.end());
            }
        } else if (first == 4) {
            size_t colon = line.find(": ");
            good = good && colon != std::string::npos;
            if (good)
                profile.push_back({line.substr(4, colon - 4), line.substr(colon + 2)});
        } else {
            good = good && !profile.empty();
            if (good)
                profile.back().second += " " + line.substr(first);
        }
        if (!good) {
            fprintf(stderr, "torture: %s: cannot read: %s\n", path.c_str(), line.c_str());
            return false;
        }
    }
    finish();
    return true;
}

void writeProfiles(const fs::path& path, const Profiles& profiles) {
    std::vector<std::pair<std::string, std::vector<std::string>>> groups;
    for (const auto& one : profiles) {
        std::string text;
        for (const auto& function : one.second)
            text += wrap("    " + function.first + ": ", "        ", function.second);
        if (!text.empty())
            entryOf(&groups, text).push_back(one.first);
    }
    std::string content = "# Which members each case judges. Written by the torture, reviewed.\n";
    for (const auto& group : groups)
        content += wrap("", "", foldNames(group.second)) + group.first;
    writeWhole({path}, content);
}

}  // namespace torture

#include "tools/torture/step.h"

#include <stdlib.h>

#include <algorithm>
#include <map>
#include <sstream>

namespace torture {

namespace {

/** Calls of a function beyond this many in one case are taken as samples: a case that reads the
 *  signal 12,000 times checks each reading in the same line. */
constexpr unsigned wholeCalls = 8;

bool sampled(unsigned nth, unsigned total) {
    return nth <= wholeCalls || nth == total || (nth & (nth - 1)) == 0;
}

/** A step, and which of all calls of its function it is. */
struct Candidate {
    Step step;
    unsigned position;
};

}  // namespace

std::string Step::text() const {
    std::string out = name + (source.empty() ? "" : "(" + source + ")");
    if (nth > 0)
        out += "#" + std::to_string(nth);
    out += " " + kind;
    for (const std::string& member : members)
        out += " " + member;
    return out;
}

std::string Step::fault(const std::string& caseName, bool blank) const {
    std::string line = name + " case=" + caseName;
    if (!source.empty())
        line += " with=" + source;
    if (nth > 0)
        line += " call=" + std::to_string(nth);
    for (const std::string& member : members) {
        if (kind == "less")
            line += " add=" + member + ":-1";
        else
            line += (kind == "none" ? " zero=" : " " + kind + "=") + member;
    }
    if (!members.empty())
        return line;
    if (kind == "refuse")
        return line + " return=77";
    if (kind == "accept")
        return line + " return=0";
    if (kind == "repeat")
        return line + " repeat=1";
    if (kind == "garble")
        return line + (blank ? " blank" : " scramble");
    return line + " " + kind;
}

// Lines read "time thread QLX_Name(...)=code..." and "time thread callback Name(...)".
std::vector<Step> planOf(const std::string& record) {
    std::vector<Candidate> all;
    std::map<std::string, unsigned> totals;
    std::map<std::string, unsigned> ofSource;
    std::istringstream lines(record);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string time, thread, word;
        words >> time >> thread >> word;
        bool callback = word == "callback";
        if (callback)
            words >> word;
        size_t open = word.find('(');
        std::string name = word.substr(0, open);
        Candidate one = {{name, "", 0, "", {}}, ++totals[name]};
        auto add = [&](const char* kind) {
            one.step.kind = kind;
            all.push_back(one);
        };
        size_t result = line.rfind(")=");
        if (callback) {
            // Of several arguments the first tells whose callback it is.
            if (open != std::string::npos && word.back() != ')')
                one.step.source = word.substr(open + 1);
            one.step.nth = ++ofSource[name + one.step.source];
            add("drop");
            add("garble");
        } else if (result != std::string::npos) {
            bool refused = strtol(line.c_str() + result + 2, nullptr, 10) != 0;
            one.step.nth = one.position;
            add(refused ? "accept" : "refuse");
            if (line.find(" out=", result) != std::string::npos)
                add("garble");
        }
    }
    std::vector<Step> plan;
    for (const Candidate& one : all) {
        if (sampled(one.position, totals[one.step.name]))
            plan.push_back(one.step);
    }
    return plan;
}

std::vector<HandedOut> handedOutOf(const std::string& text) {
    std::vector<HandedOut> all;
    std::istringstream lines(text);
    for (std::string name, member, kind, content; lines >> name >> member >> kind >> content;) {
        auto known = std::find_if(all.begin(), all.end(),
                                  [&](const HandedOut& one) { return one.name == name; });
        if (known == all.end())
            known = all.insert(all.end(), {name, {}, {}, {}});
        (kind == "mark" ? known->marks : known->values).push_back(member);
        if (kind == "value" && content == "set")
            known->notZero.push_back(member);
    }
    return all;
}

std::vector<std::string> callbacksOf(const std::string& record) {
    std::vector<std::string> names;
    for (const Step& step : planOf(record)) {
        if (step.kind == "drop" && std::find(names.begin(), names.end(), step.name) == names.end())
            names.push_back(step.name);
    }
    return names;
}

bool isUndo(const std::string& function) {
    for (const char* word :
         {"DeInit", "Close", "Stop", "UnRegister", "Delete", "Free", "Disable"}) {
        if (function.find(word) != std::string::npos)
            return true;
    }
    return false;
}

}  // namespace torture

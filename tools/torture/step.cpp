#include "tools/torture/step.h"

#include <stdlib.h>

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
    std::string whose = source.empty() ? "" : "(" + source + ")";
    return name + whose + "#" + std::to_string(nth) + " " + kind;
}

std::string Step::fault(const std::string& caseName, bool blank) const {
    std::string action = kind;
    if (kind == "refuse")
        action = "return=77";
    else if (kind == "accept")
        action = "return=0";
    else if (kind == "garble")
        action = blank ? "blank" : "scramble";
    std::string whose = source.empty() ? "" : " with=" + source;
    std::string which = nth == 0 ? "" : " call=" + std::to_string(nth);
    return name + " case=" + caseName + whose + which + " " + action;
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
        Candidate one = {{name, "", 0, ""}, ++totals[name]};
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

bool isUndo(const std::string& function) {
    for (const char* word :
         {"DeInit", "Close", "Stop", "UnRegister", "Delete", "Free", "Disable"}) {
        if (function.find(word) != std::string::npos)
            return true;
    }
    return false;
}

}  // namespace torture

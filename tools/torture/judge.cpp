#include "tools/torture/judge.h"

#include <fnmatch.h>
#include <stdio.h>
#include <string.h>
#include <sys/wait.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <utility>

#include "tools/common/files.h"
#include "tools/torture/members.h"
#include "tools/torture/step.h"

namespace fs = std::filesystem;

namespace torture {

bool isDone(const fs::path& file) {
    std::vector<std::string> lines = readLines(file);
    return !lines.empty() && lines.back() == "done";
}

namespace {

struct Count {
    unsigned cases = 0;
    unsigned untortured = 0;
    unsigned steps = 0;
    unsigned caught = 0;
    unsigned excepted = 0;
    unsigned missed = 0;
    unsigned unclean = 0;
    unsigned broken = 0;
    /** Wrong without a fault. */
    unsigned base = 0;
    unsigned members = 0;
    unsigned judged = 0;
    /** Profiles that are not the reviewed ones. */
    unsigned otherwise = 0;
};

bool matches(const std::string& pattern, const std::string& text) {
    // As a shell's, with "!(this|that)".
    return fnmatch(pattern.c_str(), text.c_str(), FNM_EXTMATCH) == 0;
}

/** Results of one subject, and where what is wrong with them goes. */
class CaseJudge {
 public:
    CaseJudge(const Result& result, Lists* lists, Count* count, std::ostream& report)
        : result_(result),
          name_(result.subject.name()),
          lists_(lists),
          count_(count),
          report_(report) {}

    /** Returns which members the case judges. */
    Profile judge();
    /** Compares that with the reviewed profile; null where there is none. */
    void compare(const Profile* kept, const Profile& now);

 private:
    std::ostream& tell(const char* word);
    template <typename Each>
    void eachException(const char* what, std::string step, Each each);
    bool excepted(const char* what, const std::string& step);
    void needsNone(const char* what, const std::string& step);
    std::string leftAmiss(const std::string& left);
    void judgeBase(const std::string& verdict, unsigned steps, const std::string& left);
    void judgeStep(const std::string& line);
    void judgeCleanliness(const std::string& line, const std::string& step);

    const Result& result_;
    const std::string name_;
    Lists* lists_;
    Count* count_;
    std::ostream& report_;
    ProfileMaker maker_;
};

std::ostream& CaseJudge::tell(const char* word) {
    std::string padded = word;
    padded.resize(8, ' ');
    return report_ << padded << name_ << " ";
}

/** Calls `each` for the exceptions that name this step. */
template <typename Each>
void CaseJudge::eachException(const char* what, std::string step, Each each) {
    std::replace(step.begin(), step.end(), ' ', '_');
    for (Exception& one : lists_->exceptions) {
        if ((one.what == what || one.what == "both") &&
            one.module == result_.subject.module->name && matches(one.casePattern, name_) &&
            matches(one.stepPattern, step))
            each(one);
    }
}

/** Whether a step that is not as it should be is excused. */
bool CaseJudge::excepted(const char* what, const std::string& step) {
    bool found = false;
    eachException(what, step, [&](Exception& one) {
        one.used += !found;
        found = true;
    });
    return found;
}

/** Notes the exceptions that would have excused what is as it should be. */
void CaseJudge::needsNone(const char* what, const std::string& step) {
    eachException(what, step, [&](Exception& one) {
        one.needless++;
        one.needlessStep = name_ + " " + step;
    });
}

/** Of what was left, told with a semicolon behind each, that which no exception lets stay. */
std::string CaseJudge::leftAmiss(const std::string& left) {
    std::istringstream things(left);
    std::string amiss;
    for (std::string thing; std::getline(things, thing, ';');) {
        if (!excepted("left", thing))
            amiss += thing + ";";
    }
    return amiss;
}

/** Demands the reviewed verdict, and something to torture, or the reason why there is nothing. */
void CaseJudge::judgeBase(const std::string& verdict, unsigned steps, const std::string& left) {
    const std::string& golden = result_.subject.verdict;
    if (verdict != golden) {
        count_->base++;
        tell("BASE") << "ends with " << verdict << " without a fault, reviewed was " << golden
                     << "\n";
        return;
    }
    bool reasoned = false;
    if (verdict != "SUCCESS" || steps == 0) {
        count_->untortured++;
        for (Untortured& one : lists_->untortured) {
            if (one.module != result_.subject.module->name || !matches(one.casePattern, name_))
                continue;
            one.used++;
            reasoned = true;
        }
        if (!reasoned) {
            count_->base++;
            tell("EMPTY") << (verdict == "SUCCESS" ? "makes no call" : "ends with " + verdict)
                          << ", so nothing is tortured\n";
        }
    }
    const std::string amiss = leftAmiss(left);
    if (!amiss.empty() && !excepted("unclean", "base")) {
        count_->unclean++;
        tell("UNCLEAN") << "without a fault left=" << amiss << "\n";
    }
}

std::string field(const std::string& line, const char* key) {
    size_t at = line.find(std::string("\t") + key + "=");
    if (at == std::string::npos)
        return "";
    at += strlen(key) + 2;
    return line.substr(at, line.find('\t', at) - at);
}

void CaseJudge::judgeCleanliness(const std::string& line, const std::string& step) {
    bool refusedUndo =
        isUndo(step.substr(0, step.find('#'))) && step.find("refuse") != std::string::npos;
    std::string left = refusedUndo ? "" : leftAmiss(field(line, "left"));
    bool unclean = !left.empty() || field(line, "threads") != "0" || field(line, "heap") == "grows";
    if (!unclean)
        needsNone("unclean", step);
    if (!unclean || excepted("unclean", step))
        return;
    count_->unclean++;
    tell("UNCLEAN") << step << " threads=" << field(line, "threads")
                    << " heap=" << field(line, "heap") << " left=" << left << "\n";
}

void CaseJudge::judgeStep(const std::string& line) {
    std::istringstream parts(line);
    std::string word, step;
    std::getline(parts, word, '\t');
    std::getline(parts, step, '\t');
    count_->steps++;
    std::string verdict = field(line, "verdict");
    bool ofMembers = maker_.take(step, verdict != "SUCCESS");
    if (verdict.empty()) {
        bool endless = line.find("endless") != std::string::npos;
        count_->broken++;
        tell(endless ? "ENDLESS" : "CRASH") << step << "\n";
        return;
    }
    if (ofMembers) {
        judgeCleanliness(line, step);
        return;
    }
    bool caught = verdict == "FAIL";
    bool forgiven = !caught && excepted("missed", step);
    if (caught)
        needsNone("missed", step);
    count_->caught += caught;
    count_->excepted += forgiven;
    if (!caught && !forgiven) {
        count_->missed++;
        tell("MISSED") << step << "\n";
    }
    judgeCleanliness(line, step);
}

/** "broken", status: the run without a fault took the process down. */
std::string exitOf(const std::string& line) {
    int status = atoi(line.substr(line.find('\t') + 1).c_str());
    return WIFEXITED(status) ? "exit " + std::to_string(WEXITSTATUS(status))
                             : "signal " + std::to_string(WTERMSIG(status));
}

void CaseJudge::compare(const Profile* kept, const Profile& now) {
    if (kept != nullptr && *kept == now)
        return;
    count_->otherwise++;
    if (kept == nullptr)
        tell("MEMBERS") << "has no reviewed profile\n";
    auto tellOthers = [&](const Profile& some, const Profile& others, const char* sign) {
        for (const auto& one : some) {
            if (std::find(others.begin(), others.end(), one) == others.end())
                tell("MEMBERS") << sign << " " << one.first << ": " << one.second << "\n";
        }
    };
    if (kept != nullptr)
        tellOthers(*kept, now, "-");
    tellOthers(now, kept != nullptr ? *kept : Profile(), "+");
}

Profile CaseJudge::judge() {
    count_->cases++;
    bool begun = false;
    for (const std::string& line : readLines(result_.file)) {
        std::istringstream parts(line);
        std::string word, verdict, took, steps, threads, left;
        std::getline(parts, word, '\t');
        if (word == "base" && !begun) {
            begun = true;
            for (std::string* part : {&verdict, &took, &steps, &threads, &left})
                std::getline(parts, *part, '\t');
            judgeBase(verdict, static_cast<unsigned>(strtoul(steps.c_str(), nullptr, 10)), left);
        } else if (word == "step") {
            judgeStep(line);
        } else if (word == "broken" && exitOf(line) != result_.subject.verdict) {
            count_->broken++;
            tell("BROKEN") << "without a fault: " << exitOf(line) << "\n";
        } else if (word == "broken") {
            judgeBase(exitOf(line), 0, "");
        }
    }
    count_->members += maker_.members();
    count_->judged += maker_.judged();
    return maker_.profile();
}

/** Judges the results of one module. */
void judgeModule(const std::vector<Result>& results, const Judging& judging, Count* count,
                 std::ostream& report) {
    const std::string module = results[0].subject.module->name;
    const fs::path path = judging.members / (module + ".txt");
    Profiles kept;
    Profiles merged;
    if (!readProfiles(path, &kept)) {
        count->otherwise++;
        report << "MEMBERS " << module << " cannot be read\n";
        return;
    }
    // A module that is new has none until somebody writes them.
    const bool hasFile = judging.write || fs::exists(path);
    if (!hasFile)
        printf("%s has no reviewed profiles\n", module.c_str());
    for (const Result& result : results) {
        const std::string name = result.subject.name();
        auto known = std::find_if(kept.begin(), kept.end(),
                                  [&](const auto& one) { return one.first == name; });
        CaseJudge caseJudge(result, judging.lists, count, report);
        Profile now = caseJudge.judge();
        const Profile* reviewed = known == kept.end() ? nullptr : &known->second;
        if (hasFile && (!now.empty() || reviewed != nullptr))
            caseJudge.compare(reviewed, now);
        if (known != kept.end())
            known->second = now;
        else
            kept.push_back({name, now});
        merged.push_back({name, now});
    }
    for (const auto& one : kept) {
        bool there = std::any_of(merged.begin(), merged.end(),
                                 [&](const auto& other) { return other.first == one.first; });
        if (judging.wholeModules && !there) {
            count->otherwise++;
            report << "MEMBERS " << one.first << " is no case that was tortured\n";
        }
    }
    if (judging.write && count->otherwise > 0)
        writeProfiles(path, judging.wholeModules ? merged : kept);
}

/** Tells the exceptions that excuse more than what needs it; returns their number. */
unsigned tellWide(const Lists& lists, const fs::path& members, std::ostream& report) {
    unsigned wide = 0;
    for (const Exception& one : lists.exceptions) {
        if (one.needless == 0)
            continue;
        // A new module's are told, and count once its profiles are written.
        wide += fs::exists(members / (one.module + ".txt"));
        report << "WIDE    exception " << one.casePattern << " " << one.stepPattern << " names "
               << one.needless << " steps that need none, as " << one.needlessStep << "\n";
    }
    return wide;
}

/** Tells the lines of the lists that nothing needed; returns their number. */
unsigned tellUnused(const Lists& lists, std::ostream& report) {
    unsigned unused = 0;
    for (const Exception& one : lists.exceptions) {
        if (one.used > 0)
            continue;
        unused++;
        report << "UNUSED  exception " << one.casePattern << " " << one.stepPattern << "\n";
    }
    for (const Untortured& one : lists.untortured) {
        if (one.used > 0)
            continue;
        unused++;
        report << "UNUSED  untortured " << one.casePattern << "\n";
    }
    return unused;
}

}  // namespace

bool judge(const std::vector<Result>& results, const Judging& judging) {
    std::ofstream report(judging.report);
    unsigned wrong = 0;
    unsigned steps = 0;
    unsigned otherwise = 0;
    printf("%-13s %5s %6s %6s %6s %8s %6s %7s %6s %4s %13s %9s\n", "Module", "cases", "no run",
           "steps", "caught", "excepted", "missed", "unclean", "broken", "base", "members judged",
           "otherwise");
    for (size_t first = 0; first < results.size();) {
        const TcModule* module = results[first].subject.module;
        size_t end = first;
        while (end < results.size() && results[end].subject.module == module)
            end++;
        Count c;
        judgeModule({results.begin() + static_cast<ptrdiff_t>(first),
                     results.begin() + static_cast<ptrdiff_t>(end)},
                    judging, &c, report);
        first = end;
        printf("%-13s %5u %6u %6u %6u %8u %6u %7u %6u %4u %7u/%6u %9u\n", module->name, c.cases,
               c.untortured, c.steps, c.caught, c.excepted, c.missed, c.unclean, c.broken, c.base,
               c.judged, c.members, c.otherwise);
        wrong += c.missed + c.unclean + c.broken + c.base;
        steps += c.steps;
        otherwise += c.otherwise;
    }
    wrong += tellWide(*judging.lists, judging.members, report);
    if (judging.whole)
        wrong += tellUnused(*judging.lists, report);
    if (steps == 0) {
        wrong++;
        report << "EMPTY   no step was taken\n";
    }
    if (otherwise > 0 && judging.write)
        printf("profiles are written anew: %s\n", judging.members.c_str());
    else
        wrong += otherwise;
    printf("%s: %s\n", wrong == 0 ? "every fault is caught" : "FAULTS ARE MISSED",
           judging.report.c_str());
    return wrong == 0;
}

}  // namespace torture

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
};

bool matches(const std::string& pattern, const std::string& text) {
    return fnmatch(pattern.c_str(), text.c_str(), 0) == 0;
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

    void judge();

 private:
    std::ostream& tell(const char* word);
    bool excepted(const char* what, std::string step);
    void judgeBase(const std::string& verdict, unsigned steps, const std::string& left);
    void judgeStep(const std::string& line);
    void judgeCleanliness(const std::string& line, const std::string& step);

    const Result& result_;
    const std::string name_;
    Lists* lists_;
    Count* count_;
    std::ostream& report_;
};

std::ostream& CaseJudge::tell(const char* word) {
    std::string padded = word;
    padded.resize(8, ' ');
    return report_ << padded << name_ << " ";
}

bool CaseJudge::excepted(const char* what, std::string step) {
    std::replace(step.begin(), step.end(), ' ', '_');
    for (Exception& one : lists_->exceptions) {
        if ((one.what == what || one.what == "both") &&
            one.module == result_.subject.module->name && matches(one.casePattern, name_) &&
            matches(one.stepPattern, step)) {
            one.used++;
            return true;
        }
    }
    return false;
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
    if (!left.empty() && !excepted("unclean", "base")) {
        count_->unclean++;
        tell("UNCLEAN") << "without a fault left=" << left << "\n";
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
    std::string left = refusedUndo ? "" : field(line, "left");
    bool unclean = !left.empty() || field(line, "threads") != "0" || field(line, "heap") == "grows";
    if (!unclean || excepted("unclean", step))
        return;
    count_->unclean++;
    tell("UNCLEAN") << step << " threads=" << field(line, "threads")
                    << " heap=" << field(line, "heap") << " left=" << left << "\n";
}

void CaseJudge::judgeStep(const std::string& line) {
    std::istringstream parts(line);
    std::string word, index, step;
    std::getline(parts, word, '\t');
    std::getline(parts, index, '\t');
    std::getline(parts, step, '\t');
    count_->steps++;
    std::string verdict = field(line, "verdict");
    if (verdict.empty()) {
        bool endless = line.find("endless") != std::string::npos;
        count_->broken++;
        tell(endless ? "ENDLESS" : "CRASH") << step << "\n";
        return;
    }
    bool caught = verdict == "FAIL";
    bool forgiven = !caught && excepted("missed", step);
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

void CaseJudge::judge() {
    count_->cases++;
    for (const std::string& line : readLines(result_.file)) {
        std::istringstream parts(line);
        std::string word, verdict, took, steps, threads, left;
        std::getline(parts, word, '\t');
        if (word == "base") {
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
}

}  // namespace

bool judge(const std::vector<Result>& results, Lists* lists, bool whole, const fs::path& path) {
    std::ofstream report(path);
    std::vector<std::pair<std::string, Count>> modules;
    for (const Result& result : results) {
        const char* module = result.subject.module->name;
        if (modules.empty() || modules.back().first != module)
            modules.push_back({module, Count()});
        CaseJudge(result, lists, &modules.back().second, report).judge();
    }
    unsigned wrong = 0;
    unsigned steps = 0;
    printf("%-16s %5s %6s %7s %7s %8s %6s %7s %6s %5s\n", "Module", "cases", "no run", "steps",
           "caught", "excepted", "missed", "unclean", "broken", "base");
    for (const auto& entry : modules) {
        const Count& c = entry.second;
        printf("%-16s %5u %6u %7u %7u %8u %6u %7u %6u %5u\n", entry.first.c_str(), c.cases,
               c.untortured, c.steps, c.caught, c.excepted, c.missed, c.unclean, c.broken, c.base);
        wrong += c.missed + c.unclean + c.broken + c.base;
        steps += c.steps;
    }
    for (const Exception& one : lists->exceptions) {
        if (!whole || one.used > 0)
            continue;
        wrong++;
        report << "UNUSED  exception " << one.casePattern << " " << one.stepPattern << "\n";
    }
    for (const Untortured& one : lists->untortured) {
        if (!whole || one.used > 0)
            continue;
        wrong++;
        report << "UNUSED  untortured " << one.casePattern << "\n";
    }
    if (steps == 0) {
        wrong++;
        report << "EMPTY   no step was taken\n";
    }
    printf("%s: %s\n", wrong == 0 ? "every fault is caught" : "FAULTS ARE MISSED", path.c_str());
    return wrong == 0;
}

}  // namespace torture

#include "tools/report/console_log.h"

#include <string.h>

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace report {

namespace {

struct Ending {
    std::string_view text;
    LogEvent::Kind kind;
};

const Ending caseEndings[] = {
    {"Start!", LogEvent::CaseStart},
    {"SUCCESS!", LogEvent::CaseSuccess},
    {"UNSUPPORT!", LogEvent::CaseUnsupported},
    {"FAILED!", LogEvent::CaseFailed},
    {"Manual case. Skip!", LogEvent::CaseSkipped},
    {"Can't find this case. Skip!", LogEvent::CaseSkipped},
    {"Case hase been marked as 'N' in checklist. Skip!", LogEvent::CaseSkipped},
};

const Ending moduleEndings[] = {
    {"] module setup!!!", LogEvent::ModuleSetup},
    {"] module setup failed!!!", LogEvent::ModuleSetupFailed},
    {"] module: cases in checklist is more than actual cases, update the checklist please!!!",
     LogEvent::TooManyRows},
};

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/** Reads a decimal number at `*at`; false when there is none or it does not fit. */
bool readNumber(std::string_view text, size_t* at, int64_t* value) {
    size_t begin = *at;
    *value = 0;
    for (; *at < text.size() && isDigit(text[*at]); ++*at) {
        if (*at - begin >= 11)
            return false;
        *value = *value * 10 + (text[*at] - '0');
    }
    return *at > begin;
}

/** The stamp "[seconds.microseconds]" at `at`, its microseconds without leading zeros; -1 for
 *  none. */
int64_t stampAt(std::string_view line, size_t at) {
    int64_t seconds = 0;
    int64_t micros = 0;
    if (at >= line.size() || line[at++] != '[' || !readNumber(line, &at, &seconds) ||
        at >= line.size() || line[at++] != '.' || !readNumber(line, &at, &micros) ||
        at >= line.size() || line[at] != ']' || micros > 999999)
        return -1;
    return seconds * 1000000 + micros;
}

/** The stamp at the start of a line, behind the colours that the line before has left. */
int64_t stampOfLine(std::string_view line) {
    size_t at = 0;
    while (at + 1 < line.size() && line[at] == '\033') {
        at = line.find('m', at);
        at = at == std::string_view::npos ? line.size() : at + 1;
    }
    return stampAt(line, at);
}

bool contains(std::string_view line, std::string_view part) {
    return memmem(line.data(), line.size(), part.data(), part.size()) != nullptr;
}

/** "case N:[NAME] WORD! " behind a stamp. Text that a case printed without a newline may stand
 *  before the stamp. */
bool readCaseLine(std::string_view line, LogEvent* event) {
    size_t at = line.rfind("]case ");
    if (at == std::string_view::npos)
        return false;
    size_t stamp = line.rfind('[', at);
    size_t number = at + 6;
    int64_t value = 0;
    if (stamp == std::string_view::npos || (event->stampUs = stampAt(line, stamp)) < 0 ||
        !readNumber(line, &number, &value) || line.substr(number, 2) != ":[")
        return false;
    for (const Ending& ending : caseEndings) {
        if (!endsWith(line, ending.text))
            continue;
        std::string_view rest =
            line.substr(number + 2, line.size() - ending.text.size() - (number + 2));
        if (!endsWith(rest, "] "))
            continue;
        event->kind = ending.kind;
        event->number = static_cast<unsigned>(value);
        event->name = rest.substr(0, rest.size() - 2);
        return true;
    }
    return false;
}

bool readModuleLine(std::string_view line, LogEvent* event) {
    for (const Ending& ending : moduleEndings) {
        if (!endsWith(line, ending.text))
            continue;
        std::string_view rest = line.substr(0, line.size() - ending.text.size());
        size_t at = rest.rfind("][");
        if (at == std::string_view::npos)
            return false;
        event->kind = ending.kind;
        event->name = rest.substr(at + 2);
        return true;
    }
    const std::string_view unknown = " There is no module(";
    size_t at = line.find(unknown);
    if (at == std::string_view::npos || !endsWith(line, ") in checklist!"))
        return false;
    event->kind = LogEvent::ModuleUnknown;
    event->name = line.substr(at + unknown.size(), line.size() - at - unknown.size() - 15);
    return true;
}

}  // namespace

LogEvent readLogLine(std::string_view line) {
    LogEvent event;
    while (!line.empty() && (line.back() == '\r' || line.back() == ' '))
        line.remove_suffix(1);
    event.stampUs = stampOfLine(line);
    int64_t stamp = event.stampUs;
    if (readCaseLine(line, &event) || (contains(line, "module") && readModuleLine(line, &event)))
        return event;
    event.stampUs = stamp;
    if (contains(line, "mornitor proc ")) {
        if (endsWith(line, "in 5 mins, reboot system"))
            event.kind = LogEvent::MonitorReboot;
        else if (contains(line, "receive the message that all the cases has been tested"))
            event.kind = LogEvent::RunOver;
    } else if (endsWith(line, "Test case will automatic running in 10s")) {
        event.kind = LogEvent::ProgramStart;
    }
    return event;
}

namespace {

/** A row as indices into the run. */
struct Place {
    int module = -1;
    int row = -1;
};

class LogTaker {
 public:
    explicit LogTaker(Run* run) : run_(run), words_(run->modules.size()) {
        for (size_t m = 0; m < run->modules.size(); m++) {
            words_[m].resize(run->modules[m].rows.size(), LogEvent::None);
            for (size_t r = 0; r < run->modules[m].rows.size(); r++) {
                const Row& row = run->modules[m].rows[r];
                places_[key(row.id, row.name)].push_back(
                    {static_cast<int>(m), static_cast<int>(r)});
            }
        }
    }

    void take() {
        std::string_view log = run_->log;
        for (size_t at = 0; at < log.size();) {
            size_t end = log.find('\n', at);
            end = end == std::string_view::npos ? log.size() : end;
            LogEvent event = readLogLine(log.substr(at, end - at));
            if (event.stampUs >= 0 && event.kind != LogEvent::ProgramStart)
                now_ = toRunTime(event.stampUs);
            takeEvent(event, at, std::min(end + 1, log.size()));
            at = end + 1;
        }
        if (hasRunning()) {
            running()->logEnd = log.size();
            // A monitor that has lost patience is the last to say something.
            if (reboot_)
                goneDown(monitorCause());
        }
        run_->durationMs = stamped_ ? now_ / 1000 : -1;
        explain();
    }

 private:
    static std::string key(unsigned number, std::string_view name) {
        return std::to_string(number) + "/" + std::string(name);
    }

    /** The device's clock from the log's first stamp on. Where a restart has set it back, time goes
     *  on from the last line before: how long the device was down nobody has written. */
    int64_t toRunTime(int64_t stampUs) {
        if (!stamped_)
            base_ = stampUs;
        stamped_ = true;
        return stampUs - base_;
    }

    bool hasRunning() const {
        return running_.module >= 0;
    }
    Row* rowAt(Place place) {
        return &run_->modules[static_cast<size_t>(place.module)]
                    .rows[static_cast<size_t>(place.row)];
    }
    Row* running() {
        return rowAt(running_);
    }
    const char* monitorCause() const {
        return "five minutes without a sign of life, and the monitor ran the reboot command";
    }

    void goneDown(const char* cause) {
        Row* row = running();
        row->tookDeviceDown = true;
        row->reason = std::string("the device went down in this case: ") + cause;
    }

    /** The row that a case's line means: of the current module if it has it, else of the next. */
    Place find(const LogEvent& event) {
        auto found = places_.find(key(event.number, event.name));
        if (found == places_.end())
            return Place();
        for (const Place& place : found->second) {
            if (place.module == module_)
                return place;
        }
        for (const Place& place : found->second) {
            if (place.module > module_)
                return place;
        }
        return found->second.front();
    }

    void takeEvent(const LogEvent& event, size_t begin, size_t end) {
        switch (event.kind) {
            case LogEvent::None:
                break;
            case LogEvent::ProgramStart:
                takeStart(event, begin);
                break;
            case LogEvent::ModuleSetup:
            case LogEvent::ModuleSetupFailed:
            case LogEvent::TooManyRows:
            case LogEvent::ModuleUnknown:
                takeModule(event);
                break;
            case LogEvent::MonitorReboot:
                reboot_ = true;
                break;
            case LogEvent::RunOver:
                run_->logSaysOver = true;
                break;
            case LogEvent::CaseStart:
                takeCaseStart(event, begin);
                break;
            case LogEvent::CaseSuccess:
            case LogEvent::CaseUnsupported:
            case LogEvent::CaseFailed:
            case LogEvent::CaseSkipped:
                takeCaseEnd(event, end);
                break;
        }
    }

    void takeStart(const LogEvent& event, size_t begin) {
        bool first = !started_;
        started_ = true;
        bool wasOver = run_->logSaysOver;
        run_->logSaysOver = false;
        if (stamped_ && event.stampUs - base_ < now_)
            base_ = event.stampUs - now_;
        now_ = event.stampUs >= 0 ? toRunTime(event.stampUs) : now_;
        if (first && !hasRunning() && run_->restarts.empty())
            return;
        const char* cause = reboot_   ? monitorCause()
                            : wasOver ? "the run was over, and the program was started once more"
                                      : "the program ended without the monitor's word: power, a "
                                        "reset, or a hand";
        if (hasRunning()) {
            running()->logEnd = begin;
            goneDown(cause);
        }
        run_->restarts.push_back({now_ / 1000, running_.module, running_.row, cause});
        running_ = Place();
        reboot_ = false;
    }

    void takeModule(const LogEvent& event) {
        for (size_t m = 0; m < run_->modules.size(); m++) {
            Module& module = run_->modules[m];
            if (module.name != event.name)
                continue;
            module_ = static_cast<int>(m);
            if (event.kind == LogEvent::ModuleSetupFailed)
                setupFailed_.push_back(module_);
            if (event.kind == LogEvent::TooManyRows)
                tooManyRows_.push_back(module_);
        }
    }

    void takeCaseStart(const LogEvent& event, size_t begin) {
        Place place = find(event);
        if (place.module < 0)
            return;
        running_ = place;
        module_ = place.module;
        reboot_ = false;
        Row* row = running();
        row->logBegin = begin;
        row->logEnd = begin;
        row->startMs = now_ / 1000;
        startedUs_ = now_;
        row->durationMs = -1;
        row->tookDeviceDown = false;
        row->reason.clear();
        word(place) = LogEvent::CaseStart;
    }

    void takeCaseEnd(const LogEvent& event, size_t end) {
        Place place = find(event);
        if (place.module < 0)
            return;
        module_ = place.module;
        reboot_ = false;
        word(place) = event.kind;
        if (event.kind == LogEvent::CaseSkipped || !hasRunning())
            return;
        if (place.module == running_.module && place.row == running_.row) {
            running()->logEnd = end;
            running()->durationMs = now_ >= startedUs_ ? (now_ - startedUs_) / 1000 : -1;
        }
        running_ = Place();
    }

    static Told toldBy(LogEvent::Kind word) {
        switch (word) {
            case LogEvent::CaseStart:
                return Told::Started;
            case LogEvent::CaseSuccess:
                return Told::Success;
            case LogEvent::CaseFailed:
                return Told::Failed;
            case LogEvent::CaseUnsupported:
                return Told::Unsupported;
            case LogEvent::CaseSkipped:
                return Told::Skipped;
            default:
                return Told::Nothing;
        }
    }

    LogEvent::Kind& word(Place place) {
        return words_[static_cast<size_t>(place.module)][static_cast<size_t>(place.row)];
    }

    /** Reasons, and what of the log does not go with the report. */
    void explain() {
        unsigned otherwise = 0;
        for (int m : setupFailed_) {
            Module& module = run_->modules[static_cast<size_t>(m)];
            if (!module.absence.empty())
                module.absence = "the module's set-up failed, so none of its cases ran";
        }
        for (size_t m = 0; m < run_->modules.size(); m++) {
            for (size_t r = 0; r < run_->modules[m].rows.size(); r++)
                otherwise +=
                    explainRow(static_cast<int>(m), &run_->modules[m].rows[r], words_[m][r]);
        }
        if (otherwise > 0)
            run_->notes.push_back("The log has another verdict than the report for " +
                                  std::to_string(otherwise) +
                                  " rows: it may be the log of another run.");
    }

    /** Answers whether the log contradicts the report. */
    bool explainRow(int module, Row* row, LogEvent::Kind word) {
        row->told = toldBy(word);
        bool ended = word == LogEvent::CaseSuccess || word == LogEvent::CaseFailed;
        bool open = row->verdict == Verdict::NotApplicable || row->verdict == Verdict::Block ||
                    row->verdict == Verdict::Missing;
        if (!open)
            row->tookDeviceDown = false;
        if (row->verdict == Verdict::Missing &&
            std::find(tooManyRows_.begin(), tooManyRows_.end(), module) != tooManyRows_.end())
            row->reason = "the module has fewer cases than the checklist has rows";
        bool told = row->told != Told::Nothing && !row->tookDeviceDown;
        if (row->verdict == Verdict::Missing && told)
            row->reason = "the report could not be saved when it ran";
        if (row->verdict == Verdict::Block && row->told > Told::Started)
            row->reason = "the report could not be saved when it ended";
        if (row->verdict == Verdict::NotApplicable && word == LogEvent::CaseUnsupported)
            row->reason = "the board does not have what the case needs";
        if (row->verdict == Verdict::NotApplicable && ended) {
            row->lostFailure = word == LogEvent::CaseFailed;
            row->reason = std::string("the case ended with ") +
                          (row->lostFailure ? "FAILED" : "SUCCESS") +
                          ", and the report lost its verdict at the next start";
            return run_->restarts.empty();
        }
        bool judged = ended || word == LogEvent::CaseUnsupported;
        return judged && ((row->verdict == Verdict::Pass && word != LogEvent::CaseSuccess) ||
                          (row->verdict == Verdict::Fail && word != LogEvent::CaseFailed));
    }

    Run* run_;
    std::unordered_map<std::string, std::vector<Place>> places_;
    /** The last word of the log for each row. */
    std::vector<std::vector<LogEvent::Kind>> words_;
    std::vector<int> setupFailed_;
    std::vector<int> tooManyRows_;
    Place running_;
    int module_ = -1;
    bool started_ = false;
    bool reboot_ = false;
    bool stamped_ = false;
    /** The stamp that is the beginning of the run's time; below 0 once the clock was set back. */
    int64_t base_ = 0;
    int64_t now_ = 0;
    int64_t startedUs_ = 0;
};

}  // namespace

void takeConsoleLog(Run* run) {
    LogTaker(run).take();
}

}  // namespace report

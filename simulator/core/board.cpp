#include "simulator/core/board.h"

#include <cstdlib>
#include <fstream>
#include <memory>
#include <mutex>
#include <sstream>

#include "simulator/core/sim.h"
#include "simulator/core/words.h"

namespace sim {

static std::string trim(const std::string& text) {
    const char* blanks = " \t\r\n\v\f";
    size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos)
        return "";
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool Cfg::load(const std::string& path) {
    // Channel tables are read at each tuning, and change once in a while.
    struct Known {
        std::string text;
        std::shared_ptr<const Values> values;
    };
    static std::mutex* mutex = new std::mutex;
    static std::map<std::string, Known>* known = new std::map<std::string, Known>;
    values_ = std::make_shared<const Values>();
    std::ifstream file(path);
    if (!file)
        return false;
    std::ostringstream text;
    text << file.rdbuf();
    std::lock_guard<std::mutex> lock(*mutex);
    Known& last = (*known)[path];
    if (last.values == nullptr || last.text != text.str()) {
        add(text.str());
        last = {text.str(), values_};
    }
    values_ = last.values;
    return true;
}

void Cfg::add(const std::string& text) {
    auto values = std::make_shared<Values>(*values_);
    std::istringstream in(text);
    std::string section;
    for (std::string line; std::getline(in, line);) {
        line = trim(line);
        if (line.empty() || line[0] == '#')
            continue;
        if (line.front() == '[' && line.back() == ']') {
            section = trim(line.substr(1, line.find(']') - 1));
            continue;
        }
        size_t equals = line.find('=');
        if (equals == std::string::npos)
            continue;
        values->emplace(std::make_pair(section, trim(line.substr(0, equals))),
                        trim(line.substr(equals + 1)));
    }
    values_ = values;
}

bool Cfg::has(const std::string& section, const std::string& key) const {
    return values_->count({section, key}) != 0;
}

int64_t Cfg::number(const std::string& section, const std::string& key) const {
    return leadingNumber(text(section, key));
}

std::string Cfg::text(const std::string& section, const std::string& key) const {
    auto found = values_->find({section, key});
    return found == values_->end() ? "" : found->second;
}

struct BoardFiles {
    std::mutex mutex;
    bool loaded = false;
    std::string platformDir;
    Cfg board;
};

static BoardFiles& files() {
    static BoardFiles* instance = new BoardFiles;
    return *instance;
}

/** The platforms' folders in the order of their numbers, as the program's menu has them. */
static const char* const platformFolders[] = {
    "mtk9602_au", "novatek",          "mtk9900_android_us", "rtd2851a_eu",
    "mtk9602_eu", "mtk9900_linux_us", "mtk9900_linux_eu",   "mtk9602_isdb",
};

static bool isNumber(const std::string& text) {
    double number = 0;
    int64_t whole = 0;
    return readDecimal(text, &number) || readNumber(text, INT64_MIN, INT64_MAX, &whole);
}

/** Complains of what cannot be meant: a word where the default board has a number. */
static void check(const Cfg& board) {
    Cfg usual;
    usual.add(defaultBoardText);
    for (const auto& [key, value] : usual.values()) {
        std::string given = board.text(key.first, key.second);
        if (isNumber(value) && !isNumber(given))
            complain("board file: '%s' is no number for %s of section %s", given.c_str(),
                     key.second.c_str(), key.first.c_str());
    }
}

static void loadOnce(BoardFiles& f) {
    if (f.loaded)
        return;
    f.loaded = true;
    const char* path = getenv("QLX_SIM_BOARD");
    if (path != nullptr && !f.board.load(path))
        complain("cannot read the board file %s: the device is the default board", path);
    f.board.add(defaultBoardText);
    check(f.board);
    std::string config = f.board.text("BOARD", "CONFIG");
    std::string platform = f.board.text("BOARD", "PLATFORM");
    if (platform.empty()) {
        Cfg automatic;
        automatic.load(config + "/common/auto_test_platform.cfg");
        int64_t number = automatic.number("PLATFORM_INFO", "PLATFORM");
        if (number >= 1 && number <= 8)
            platform = platformFolders[number - 1];
    }
    f.platformDir = config + "/" + platform;
}

const Cfg& board() {
    BoardFiles& f = files();
    std::lock_guard<std::mutex> lock(f.mutex);
    loadOnce(f);
    return f.board;
}

void reloadBoard() {
    BoardFiles& f = files();
    std::lock_guard<std::mutex> lock(f.mutex);
    f.loaded = false;
    f.board = Cfg();
}

int64_t latencyMs(const char* function) {
    return board().number("LATENCY", function);
}

std::string configDir() {
    return board().text("BOARD", "CONFIG");
}

std::string commonFile(const std::string& name) {
    return configDir() + "/common/" + name;
}

std::string platformFile(const std::string& name) {
    BoardFiles& f = files();
    std::lock_guard<std::mutex> lock(f.mutex);
    loadOnce(f);
    return f.platformDir + "/" + name;
}

std::string storagePath(const std::string& devicePath) {
    const char* root = getenv("QLX_SIM_ROOT");
    std::string path = root != nullptr ? root : "device";
    std::string part;
    // A ".." of the program's must not lead out of the folder.
    for (size_t i = 0; i <= devicePath.size(); i++) {
        if (i < devicePath.size() && devicePath[i] != '/') {
            part += devicePath[i];
            continue;
        }
        if (!part.empty() && part != "." && part != "..")
            path += "/" + part;
        part.clear();
    }
    return path;
}

}  // namespace sim

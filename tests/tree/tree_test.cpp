// Rules of the tree that a compiler does not hold: which folder may include which, names of cases
// that a search finds, functions that fit a screen and are used, lines that fit a window.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

/** A folder, and the folders below it that its files may include. */
struct Layer {
    std::string folder;
    std::vector<std::string> below;
};

/** From the ground up: an arrow points to a row further up in this list, so there is no circle. A
 *  room that is new stands here with what it needs. */
const std::vector<Layer> layers = {
    {"common", {}},
    {"platform", {}},
    {"framework/base", {}},
    {"framework/workbook", {}},
    {"framework/case", {"framework/base"}},
    {"environment", {"platform", "framework/base"}},
    {"framework", {"framework/base", "framework/case", "framework/workbook", "environment"}},
    {"testcase", {"platform", "framework/base", "framework/case", "environment"}},
    {"program",
     {"platform", "framework/base", "framework/case", "framework", "environment", "testcase"}},

    // The device: its rooms know one another only where their hardware meets.
    {"simulator/stream", {}},
    {"simulator/core", {"platform"}},
    {"simulator/media", {"simulator/core", "simulator/stream"}},
    {"simulator/world", {"platform", "simulator/core", "simulator/stream", "simulator/media"}},
    {"simulator/storage", {"platform", "simulator/core"}},
    {"simulator/service", {"common", "platform", "simulator/core", "simulator/world"}},
    {"simulator/side", {"platform", "simulator/core", "simulator/world"}},
    {"simulator/tuner", {"platform", "simulator/core", "simulator/world"}},
    {"simulator/demux",
     {"platform", "simulator/core", "simulator/stream", "simulator/world", "simulator/tuner"}},
    {"simulator/record",
     {"platform", "simulator/core", "simulator/stream", "simulator/media", "simulator/world",
      "simulator/demux"}},
    {"simulator/input", {"platform", "simulator/core", "simulator/world"}},
    {"simulator/av",
     {"platform", "simulator/core", "simulator/stream", "simulator/media", "simulator/world",
      "simulator/demux"}},
    {"simulator/output",
     {"platform", "simulator/core", "simulator/media", "simulator/world", "simulator/demux",
      "simulator/av"}},
    {"simulator/analog", {"platform", "simulator/core", "simulator/world", "simulator/output"}},
    {"simulator", {"simulator/core", "simulator/world"}},

    {"vclock", {"common"}},
    {"tools/common", {"common"}},
    {"tools/mkstreams", {"simulator/stream", "simulator/media", "tools/common"}},
    {"tools/report", {"common", "framework/workbook", "tools/common"}},
    {"tools/zkbench", {"common", "environment", "tools/common", "tools/report"}},
    {"tools/mkchecklist",
     {"framework/workbook", "framework/case", "testcase", "tools/common", "tools/report"}},
    {"tools/golden",
     {"common", "platform", "framework/case", "environment", "testcase", "program", "simulator",
      "tools/common"}},
    {"tools/torture",
     {"common", "platform", "framework/case", "environment", "testcase", "program", "simulator",
      "tools/common", "tools/golden"}},
};

struct Source {
    /** From the root of the tree. */
    std::string path;
    std::vector<std::string> lines;
};

std::vector<Source> readSources() {
    std::vector<Source> sources;
    for (const char* folder : {"bench", "common", "environment", "framework", "platform", "program",
                               "simulator", "testcase", "tests", "tools", "vclock"}) {
        fs::path root = fs::path(ZK_SOURCE_DIR) / folder;
        if (!fs::exists(root))
            continue;
        for (const auto& entry : fs::recursive_directory_iterator(root)) {
            std::string kind = entry.path().extension();
            if (kind != ".cpp" && kind != ".h")
                continue;
            Source source;
            source.path = fs::relative(entry.path(), ZK_SOURCE_DIR);
            std::ifstream file(entry.path());
            for (std::string line; std::getline(file, line);)
                source.lines.push_back(line);
            sources.push_back(source);
        }
    }
    std::sort(sources.begin(), sources.end(),
              [](const Source& a, const Source& b) { return a.path < b.path; });
    return sources;
}

/** The tree, read once. */
const std::vector<Source>& tree() {
    static const std::vector<Source>* sources = new std::vector<Source>(readSources());
    return *sources;
}

bool isIn(const std::string& path, const std::string& folder) {
    return path.compare(0, folder.size() + 1, folder + "/") == 0;
}

/** The row of the innermost folder that the path lies in; null when none has it. */
const Layer* layerOf(const std::string& path) {
    const Layer* found = nullptr;
    for (const Layer& layer : layers) {
        if (isIn(path, layer.folder) &&
            (found == nullptr || layer.folder.size() > found->folder.size()))
            found = &layer;
    }
    return found;
}

/** Calls `each(source, number, line)` for lines outside of tables that the formatter leaves. */
template <typename Each>
void eachFormattedLine(Each each) {
    for (const Source& source : tree()) {
        bool table = false;
        for (size_t i = 0; i < source.lines.size(); i++) {
            const std::string& line = source.lines[i];
            if (line.find("clang-format off") != std::string::npos)
                table = true;
            if (!table)
                each(source, i + 1, line);
            if (line.find("clang-format on") != std::string::npos)
                table = false;
        }
    }
}

}  // namespace

TEST(Tree, ArrowsPointDownwards) {
    std::set<std::string> known;
    for (const Layer& layer : layers) {
        for (const std::string& below : layer.below)
            EXPECT_EQ(known.count(below), 1u) << layer.folder << " stands above " << below;
        known.insert(layer.folder);
    }
    const std::regex include("^\\s*#\\s*include\\s+\"([^\"]+)\"");
    unsigned looked = 0;
    for (const Source& source : tree()) {
        const Layer* from = layerOf(source.path);
        if (from == nullptr)
            continue;
        std::smatch found;
        for (const std::string& line : source.lines) {
            if (!std::regex_search(line, found, include))
                continue;
            // Made while building.
            if (found[1].str().find('/') == std::string::npos)
                continue;
            looked++;
            const Layer* to = layerOf(found[1]);
            bool allowed =
                to == from || (to != nullptr &&
                               std::count(from->below.begin(), from->below.end(), to->folder) == 1);
            EXPECT_TRUE(allowed) << source.path << ": " << line;
        }
    }
    EXPECT_GT(looked, 150u);
}

TEST(Tree, TheProgramNamesNothingOfTheSimulatedDevice) {
    const std::regex named("qlx_sim_|QLX_SIM_|\\bvclock|namespace sim\\b|\\bsim::");
    for (const Source& source : tree()) {
        bool program = false;
        for (const char* folder : {"framework", "environment", "testcase", "platform", "program"})
            program = program || isIn(source.path, folder);
        for (size_t i = 0; program && i < source.lines.size(); i++)
            EXPECT_FALSE(std::regex_search(source.lines[i], named))
                << source.path << ": " << source.lines[i];
    }
}

TEST(Tree, CaseNamesAreNeverPastedTogether) {
    for (const Source& source : tree()) {
        if (!isIn(source.path, "testcase"))
            continue;
        for (const std::string& line : source.lines)
            EXPECT_EQ(line.find("##"), std::string::npos) << source.path << ": " << line;
    }
}

TEST(Tree, LinesHaveAtMost100Columns) {
    eachFormattedLine([](const Source& source, size_t number, const std::string& line) {
        EXPECT_LE(line.size(), 100u) << source.path << ":" << number;
    });
}

TEST(Tree, FunctionsFitAScreen) {
    constexpr size_t longest = 70;
    // Named with the reason why they are longer.
    const char* const rows = "a table of inputs";
    const std::map<std::string, std::string> exceptions = {{"TEST", rows}, {"timedWaits", rows}};
    const std::regex name("([\\w:~]+)\\(");
    for (const Source& source : tree()) {
        size_t first = 0;
        std::string function;
        for (size_t i = 0; i < source.lines.size(); i++) {
            const std::string& line = source.lines[i];
            std::smatch found;
            bool begins = !line.empty() && line[0] != ' ' && line[0] != '#' && line[0] != '/' &&
                          line[0] != '}' && std::regex_search(line, found, name);
            if (begins) {
                first = i;
                function = found[1];
            }
            if (line == "}" && !function.empty()) {
                EXPECT_TRUE(i + 1 - first <= longest || exceptions.count(function) == 1)
                    << source.path << ":" << first + 1 << " " << function << " has "
                    << i + 1 - first << " lines";
                function.clear();
            }
        }
    }
}

TEST(Tree, DeclaredFunctionsAreUsed) {
    // Named with the reason why nothing in this tree calls them.
    const char* const laterModule = "part of a harness that modules call which are not built yet";
    const char* const control = "tests look at the device or change it through this";
    const std::map<std::string, std::string> exceptions = {
        {"AOUT_AV_Stop", laterModule},
        {"TC_AV_PLAY_AUDIO_VIDEO", laterModule},
        {"TC_AV_STOP_AUDIO_VIDEO", laterModule},
        {"VOUT_CheckConfirm", laterModule},
        {"Demux_ComparePacketData", laterModule},
        {"Demux_FreePesEvents", laterModule},
        {"Demux_PacketFilterCb", laterModule},
        {"Demux_ReadTsPacketData", laterModule},
        {"Demux_RequestPes", laterModule},
        {"Demux_RequestSectionThreadNoFreeBuffer", laterModule},
        {"TC_PM_STR_WOWWakeUp_001", "a body that no table lists, as required"},
        {"TC_TUNER_CLOSE", laterModule},
        {"TC_TUNER_SEM_DESTROY", laterModule},
        {"TC_TUNER_SEM_INIT", laterModule},
        {"TC_TUNER_TUNING", laterModule},
        {"TC_TUNER_TUNING_CHANNEL_ID", laterModule},
        {"alignas", "no function"},
        {"get_conf_sting", laterModule},
        {"get_conf_value", laterModule},
        {"makeKeyFile", control},
        {"qlx_sim_faults_acted", control},
        {"reloadBoard", control},
        {"tc_pass", laterModule},
        {"captureWords", control},
        {"channelsOf", control},
        {"transmitterKeyNames", control},
        {"tsFilePlace", control},
        {"worldParts", control},
    };
    const std::regex declared("^(?:extern \"C\" )?[A-Za-z_][\\w:<>,*& ]*?[ *&](\\w+)\\(");
    const std::regex word("\\w+");
    std::map<std::string, std::string> functions;
    std::map<std::string, unsigned> uses;
    for (const Source& source : tree()) {
        bool header = source.path.back() == 'h';
        if (isIn(source.path, "tests"))
            continue;
        for (const std::string& line : source.lines) {
            std::smatch found;
            bool ofTheLibrary = isIn(source.path, "platform");
            std::string own;
            if (!line.empty() && line[0] != ' ' && line[0] != '#' && line[0] != '/' &&
                std::regex_search(line, found, declared)) {
                own = found[1];
                if (header && !ofTheLibrary && line.find("typedef") == std::string::npos &&
                    line.find("return ") != 0)
                    functions.emplace(own, source.path);
            }
            size_t comment = std::min(line.find("//"), line.find(" * "));
            std::string code = line.substr(0, comment);
            for (std::sregex_iterator at(code.begin(), code.end(), word), end; at != end; ++at) {
                if (at->str() != own)
                    uses[at->str()]++;
            }
        }
    }
    EXPECT_GT(functions.size(), 200u);
    for (const auto& function : functions)
        EXPECT_TRUE(uses[function.first] > 0 || exceptions.count(function.first) == 1)
            << function.second << " declares " << function.first << ", which only tests call";
    for (const auto& exception : exceptions)
        EXPECT_TRUE(functions.count(exception.first) == 1 && uses[exception.first] == 0)
            << exception.first << " needs no exception";
}

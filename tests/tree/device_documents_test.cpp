// The simulated device and its documents: what a board file can say, what the outside world can do
// and which environment variables count is told, once and completely.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "simulator/core/board.h"
#include "simulator/core/capture.h"
#include "simulator/world/air.h"
#include "simulator/world/wake_up.h"
#include "simulator/world/world.h"

namespace fs = std::filesystem;

namespace {

using Words = std::set<std::string>;

std::string readTree(const std::string& name) {
    std::ifstream file(std::string(ZK_SOURCE_DIR) + "/" + name);
    EXPECT_TRUE(file) << name;
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

std::vector<fs::path> deviceSources() {
    std::vector<fs::path> files;
    fs::path root = fs::path(ZK_SOURCE_DIR) / "simulator";
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        std::string kind = entry.path().extension();
        if (kind == ".cpp" || kind == ".h")
            files.push_back(fs::relative(entry.path(), ZK_SOURCE_DIR));
    }
    EXPECT_GT(files.size(), 60u);
    return files;
}

/** All that the first group of the pattern finds. */
Words findAll(const std::string& text, const std::string& pattern) {
    Words found;
    const std::regex regex(pattern);
    for (std::sregex_iterator at(text.begin(), text.end(), regex), end; at != end; ++at)
        found.insert((*at)[1]);
    return found;
}

/** The part of a document from one heading to the next of its level. */
std::string chapter(const std::string& document, const std::string& heading) {
    size_t begin = document.find("\n" + heading + "\n");
    EXPECT_NE(begin, std::string::npos) << heading;
    return document.substr(begin, document.find("\n## ", begin + 1) - begin);
}

/** "TUNER3", "USER_BAND5" and "HDMI/1" as the documents write them. */
std::string numbered(const std::string& name) {
    static const std::regex port("^(HDMI|CVBS|YPBPR|VGA|ATV)/[0-9]+$");
    if (std::regex_match(name, port))
        return name.substr(0, name.find('/'));
    return std::regex_replace(name, std::regex("^(TUNER|TRANSMITTER|USER_BAND|MODULE)[0-9]+$"),
                              "$1n");
}

/** Keys of the default board by section: its own values, nothing of a board file. */
std::map<std::string, Words> boardKeys() {
    sim::Cfg board;
    board.add(sim::defaultBoardText);
    std::map<std::string, Words> keys;
    for (const auto& [key, value] : board.values())
        keys[numbered(key.first)].insert(numbered(key.second));
    return keys;
}

/** Keys that a table of the document tells: "| SECTION | KEY, KEY | ...". */
std::map<std::string, Words> documentedKeys(const std::string& document) {
    std::map<std::string, Words> keys;
    const std::regex row("\n\\| ([A-Z][A-Za-z0-9]*) \\| ([^|]*) \\|");
    for (std::sregex_iterator at(document.begin(), document.end(), row), end; at != end; ++at) {
        Words names = findAll((*at)[2], "([A-Za-z0-9_]*[A-Z][A-Za-z0-9_]*)");
        if ((*at)[1] != "Section")
            keys[(*at)[1]].insert(names.begin(), names.end());
    }
    return keys;
}

TEST(SimDocuments, EveryBoardKeyIsInTheDefaultBoardAndTold) {
    std::string document = readTree("docs/board-file.md");
    auto told = documentedKeys(chapter(document, "## Device"));
    for (const char* heading : {"## Tuners", "## Inputs and analog stations"}) {
        for (auto& [section, keys] : documentedKeys(chapter(document, heading)))
            told[section].insert(keys.begin(), keys.end());
    }
    auto keys = boardKeys();
    ASSERT_GT(told.size(), 12u);
    for (const auto& [section, names] : told) {
        // Names of functions and further chips: any, and the default board has none.
        if (section == "LATENCY" || section == "I2C")
            continue;
        EXPECT_EQ(keys[section], names) << section;
    }
    // The rest are the transmitters: their keys are told with the event that changes them.
    std::string transmitters = chapter(document, "## Transmitters");
    for (const auto& [section, names] : keys) {
        if (told.count(section) != 0)
            continue;
        for (const std::string& name : names) {
            std::vector<std::string> keyNames = sim::transmitterKeyNames();
            bool known = std::count(keyNames.begin(), keyNames.end(), name) != 0 ||
                         transmitters.find(name) != std::string::npos;
            EXPECT_TRUE(known) << section << " " << name;
        }
    }
}

TEST(SimDocuments, WhatTheDeviceAsksOfTheBoardIsInTheDefaultBoard) {
    auto keys = boardKeys();
    unsigned asked = 0;
    const std::regex question(
        "board\\(\\)\\s*\\.(?:number|text|has)\\(\\s*\"(\\w+)\",\\s*\"(\\w+)\"\\s*(\\+?)");
    for (const fs::path& path : deviceSources()) {
        std::string text = readTree(path);
        for (std::sregex_iterator at(text.begin(), text.end(), question), end; at != end; ++at) {
            std::string key = (*at)[2].str() + ((*at)[3].length() != 0 ? "n" : "");
            EXPECT_EQ(keys[(*at)[1]].count(key), 1u) << path << ": " << (*at)[0];
            asked++;
        }
    }
    EXPECT_GT(asked, 20u);
}

TEST(SimDocuments, EveryKeyOfATransmitterIsTold) {
    Words told =
        findAll(chapter(readTree("docs/simulator-events.md"), "## Generators and transmitters"),
                "`([A-Z_]{2,})`");
    std::string board = sim::defaultBoardText;
    for (const std::string& name : sim::transmitterKeyNames()) {
        EXPECT_EQ(told.erase(name), 1u) << name << " is not in the table of events";
        EXPECT_TRUE(std::regex_search(board, std::regex("\\b" + name + "\\b"))) << name;
    }
    EXPECT_EQ(told, Words()) << "told, and no key of a transmitter";
}

TEST(SimDocuments, EveryEventIsTold) {
    std::string document = readTree("docs/simulator-events.md");
    // Events stand in the tables' first column, or as a pattern on a line of its own.
    Words told = findAll(document, "\n(?:\\| `|    (?!export))([a-z]+) [A-Z0-9]");
    Words known = {"in", "capture"};
    for (const sim::WorldPart* part : sim::worldParts())
        known.insert(part->word);
    EXPECT_EQ(known.size(), sim::worldParts().size() + 2) << "two parts with one word";
    told.insert("in");
    EXPECT_EQ(told, known);
    Words sources;
    for (const sim::WakeUpSource& source : sim::wakeUpSources())
        sources.insert(source.name);
    EXPECT_EQ(findAll(chapter(document, "## Power"), "\n\\| `([a-z]+)` \\|"), sources);
    std::vector<std::string> captures = sim::captureWords();
    EXPECT_EQ(findAll(chapter(document, "## What can be looked at"), "\n\\| `([a-z]+)[^`]*` \\|"),
              Words(captures.begin(), captures.end()));
}

TEST(SimDocuments, EnvironmentVariablesAreThoseOfTheArchitecture) {
    Words read;
    for (const fs::path& path : deviceSources()) {
        Words more = findAll(readTree(path), "getenv\\(\"(\\w+)\"\\)");
        read.insert(more.begin(), more.end());
    }
    EXPECT_EQ(findAll(readTree("ARCHITECTURE.md"), "`(QLX_SIM_\\w+)`"), read);
}

}  // namespace

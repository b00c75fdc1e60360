// Exit codes: one number has one meaning, the document lists all, and nobody writes them as
// numbers. The library's error codes: a number tells the family that it comes from.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace fs = std::filesystem;

namespace {

std::string readFile(const fs::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

/** Name by code, from every match of an expression whose groups are given. */
std::map<int, std::string> codesIn(const std::string& path, const std::string& expression,
                                   int codeGroup, int nameGroup) {
    const std::string text = readFile(fs::path(ZK_SOURCE_DIR) / path);
    const std::regex entry(expression);
    std::map<int, std::string> codes;
    for (std::sregex_iterator at(text.begin(), text.end(), entry), end; at != end; ++at) {
        int code = std::stoi((*at)[static_cast<size_t>(codeGroup)]);
        EXPECT_EQ(codes.count(code), 0u) << path << ": " << code << " has two meanings";
        codes[code] = (*at)[static_cast<size_t>(nameGroup)];
    }
    return codes;
}

TEST(ExitCodes, HaveOneMeaningEachAndAllStandInTheDocument) {
    auto header = codesIn("common/exit_codes.h", "(EXIT_[A-Z_]+) = ([0-9]+)", 2, 1);
    EXPECT_GE(header.size(), 11u);
    EXPECT_EQ(header, codesIn("docs/exit-codes.md", "\\| ([0-9]+) \\| `(EXIT_[A-Z_]+)` \\|", 1, 2));
}

TEST(ExitCodes, AreWrittenByName) {
    // 0 and 1 are every program's.
    const std::regex number(
        "\\b_?[eE]xit\\(([2-9]|[1-9][0-9]+)\\)|WEXITSTATUS\\([a-z]+\\) *[!=]= *[2-9]");
    for (const char* folder : {"simulator", "vclock", "tools", "bench", "framework"}) {
        for (const auto& entry :
             fs::recursive_directory_iterator(fs::path(ZK_SOURCE_DIR) / folder)) {
            if (entry.path().extension() != ".cpp")
                continue;
            std::ifstream file(entry.path());
            for (std::string line; std::getline(file, line);)
                EXPECT_FALSE(std::regex_search(line, number)) << entry.path() << ": " << line;
        }
    }
}

TEST(ErrorCodes, OfTheLibraryBelongToOneFamilyEach) {
    const std::regex entry("QLX_([A-Z0-9]+)_ERR_[A-Z_]+ = 0x([0-9A-Fa-f]{4})[0-9A-Fa-f]{2}\\b");
    std::map<unsigned long, std::string> families;
    for (const auto& header : fs::directory_iterator(fs::path(ZK_SOURCE_DIR) / "platform")) {
        const std::string text = readFile(header.path());
        for (std::sregex_iterator at(text.begin(), text.end(), entry), end; at != end; ++at)
            EXPECT_EQ(families.emplace(std::stoul((*at)[2], nullptr, 16), (*at)[1]).first->second,
                      (*at)[1])
                << header.path();
    }
    EXPECT_GE(families.size(), 20u);
}

// A library that replaces functions of the C library must not meet its own replacements.
TEST(VirtualTime, AsksTheKernelPastItsOwnReplacements) {
    std::string text;
    for (const auto& file : fs::directory_iterator(fs::path(ZK_SOURCE_DIR) / "vclock")) {
        // The launcher is a program of its own.
        if (file.path().extension() == ".cpp" && file.path().filename() != "run.cpp")
            text += readFile(file.path());
    }
    text = std::regex_replace(text, std::regex("//[^\n]*"), "");
    const std::regex replaced("VCLOCK_REPLACE\\([^,]+, ([a-z_0-9]+)");
    // Wanted as the domain has them; `wait` is a function of the domain as well.
    const std::set<std::string> wanted = {"pthread_create", "pthread_sigmask",
                                          "pthread_mutex_consistent", "wait"};
    size_t count = 0;
    for (std::sregex_iterator at(text.begin(), text.end(), replaced), end; at != end; ++at) {
        const std::string name = (*at)[1];
        count++;
        const std::regex plainCall("[^A-Za-z0-9_.>:]" + name + "\\(");
        EXPECT_TRUE(wanted.count(name) != 0 || !std::regex_search(text, plainCall)) << name;
    }
    EXPECT_GT(count, 100u);
}

}  // namespace

// Rules of the tree that a compiler does not hold: the program knows nothing of the simulated
// device, of virtual time, of the tools or the tests; names of cases stand in full.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> sources(const std::vector<std::string>& folders) {
    std::vector<fs::path> files;
    for (const std::string& folder : folders) {
        fs::path root = fs::path(ZK_SOURCE_DIR) / folder;
        if (!fs::exists(root))
            continue;
        for (const auto& entry : fs::recursive_directory_iterator(root)) {
            std::string kind = entry.path().extension();
            if (kind == ".cpp" || kind == ".h")
                files.push_back(entry.path());
        }
    }
    return files;
}

TEST(Tree, TheProgramIncludesOnlyItsOwnLayers) {
    const std::regex include("^\\s*#\\s*include\\s+[\"<]([^\">]+)[\">]");
    const std::regex foreign("(^|.*/)(simulator|vclock|tools|tests|bench|gtest|gmock)/.*");
    std::vector<fs::path> files = sources({"framework", "environment", "testcase", "platform"});
    ASSERT_GT(files.size(), 20u);
    for (const fs::path& path : files) {
        std::ifstream file(path);
        std::smatch found;
        for (std::string line; std::getline(file, line);) {
            if (std::regex_search(line, found, include)) {
                EXPECT_FALSE(std::regex_match(found[1].str(), foreign)) << path << ": " << line;
            }
        }
    }
}

TEST(Tree, TheProgramNamesNothingOfTheSimulatedDevice) {
    const std::regex named("qlx_sim_|QLX_SIM_|\\bvclock|namespace sim\\b|\\bsim::");
    for (const fs::path& path : sources({"framework", "environment", "testcase", "platform"})) {
        std::ifstream file(path);
        for (std::string line; std::getline(file, line);)
            EXPECT_FALSE(std::regex_search(line, named)) << path << ": " << line;
    }
}

TEST(Tree, CaseNamesAreNeverPastedTogether) {
    for (const fs::path& path : sources({"testcase"})) {
        std::ifstream file(path);
        for (std::string line; std::getline(file, line);)
            EXPECT_EQ(line.find("##"), std::string::npos) << path << ": " << line;
    }
}

}  // namespace

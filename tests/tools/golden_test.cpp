// The golden calls' own tools: what is folded and shared must come back as it was, and every change
// of a value, a line or an order must show.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "tools/golden/blocks.h"
#include "tools/golden/fold.h"
#include "tools/golden/script.h"
#include "tools/golden/shape.h"

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;

namespace {

class GoldenFile : public testing::Test {
 protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "zk_golden_XXXXXX").string();
        ASSERT_NE(mkdtemp(&pattern[0]), nullptr);
        folder_ = pattern;
        file_ = folder_ / "module.txt";
    }
    void TearDown() override {
        fs::remove_all(folder_);
    }
    Records read() {
        Records records;
        std::string error;
        EXPECT_TRUE(readGolden(file_, &records, &error)) << error;
        return records;
    }
    bool readText(const std::string& text, std::string* error) {
        std::ofstream(file_) << text;
        Records records;
        return readGolden(file_, &records, error);
    }

    fs::path folder_;
    fs::path file_;
};

Lines readings(int count, int step) {
    Lines lines;
    for (int i = 0; i < count; i++) {
        lines.push_back("QLX_TunerSetTuningParam(tuner=0 frequency=" +
                        std::to_string(474000 + i * step) + ")=0");
        lines.push_back("+200 QLX_TunerGetSignalInfo(tuner=0)=0");
    }
    return lines;
}

}  // namespace

TEST(GoldenFold, RepetitionsStandOnceWithTheCourseOfTheirValues) {
    EXPECT_EQ(
        foldLines(readings(388, 1000)),
        (Lines{"x=388 {", "  QLX_TunerSetTuningParam(tuner=0 frequency={474000..861000/1000})=0",
               "  +200 QLX_TunerGetSignalInfo(tuner=0)=0", "}"}));
    EXPECT_EQ(foldLines({"a(1)", "a(5)", "a(2)"}), (Lines{"x=3 {", "  a({1 5 2})", "}"}));
    EXPECT_EQ(foldLines({"a(1)", "a(2)"}), (Lines{"a(1)", "a(2)"}));
    EXPECT_EQ(foldLines({}), Lines{});
}

TEST(GoldenFold, EveryChangeShows) {
    const Lines lines = readings(40, 7);
    const Lines folded = foldLines(lines);
    for (size_t i = 0; i < lines.size(); i++) {
        Lines other = lines;
        size_t digit = other[i].rfind('0');
        other[i][digit] = '3';
        EXPECT_NE(foldLines(other), folded) << "a value in line " << i;
        other = lines;
        other.erase(other.begin() + static_cast<long>(i));
        EXPECT_NE(foldLines(other), folded) << "line " << i << " left out";
        other = lines;
        other.insert(other.begin() + static_cast<long>(i), lines[i]);
        EXPECT_NE(foldLines(other), folded) << "line " << i << " twice";
    }
}

TEST(GoldenFold, ALongRecordWithoutOrderIsSummarisedWithAChecksum) {
    std::mt19937 random(1);
    Lines lines;
    for (int i = 0; i < 20000; i++)
        lines.push_back(std::string(1, static_cast<char>('a' + random() % 7)) + "(" +
                        std::to_string(random() % 1000) + ")");
    const Lines folded = foldLines(lines);
    EXPECT_LT(folded.size(), 200u);
    Lines other = lines;
    std::swap(other[9000], other[9001]);
    EXPECT_NE(foldLines(other), folded);
}

TEST(GoldenShape, ValuesAreNumbersThatStandAlone) {
    EXPECT_EQ(shapeOf("QLX_I2C_0(bus=-3 level=1.5 mask=0x1f {1..9/2} {a b}=7)").values,
              (Lines{"-3", "1.5", "0x1f", "{1..9/2}", "7"}));
    EXPECT_TRUE(shapeOf("TC_X_001 12ab 1x a1 {} {x=1").values == (Lines{"1"}));
}

TEST_F(GoldenFile, RecordsComeBackAsTheyWere) {
    Records records;
    for (int i = 0; i < 40; i++) {
        std::string tuner = std::to_string(i % 4);
        records.push_back({"TC_X_" + std::to_string(i),
                           {"SUCCESS, 0 ms", "QLX_Init()=0", "", "| $1 $x price=$2 @odd",
                            "QLX_Open(tuner=" + tuner + ")=0", "QLX_Read({1 2})=0",
                            "QLX_Close(tuner=" + tuner + ")=0", "| " + std::to_string(i % 3)}});
    }
    records.push_back({"TC_empty", {}});
    ASSERT_TRUE(writeGolden(file_, records));
    EXPECT_EQ(read(), records);
    // Sharing is what makes the files readable.
    EXPECT_LT(fs::file_size(file_), 40 * 100u);
}

TEST_F(GoldenFile, RandomRecordsComeBack) {
    std::mt19937 random(7);
    for (int round = 0; round < 30; round++) {
        Records records;
        for (int r = 0; r < 20; r++) {
            Lines lines = {"SUCCESS, 1 ms"};
            for (int i = static_cast<int>(random() % 30); i > 0; i--)
                lines.push_back(std::string(random() % 3, ' ') +
                                std::string(1, static_cast<char>('a' + random() % 4)) + "(" +
                                std::to_string(random() % 3) + " {" + std::to_string(random() % 2) +
                                " 5})");
            records.push_back({"TC_" + std::to_string(r), lines});
        }
        ASSERT_TRUE(writeGolden(file_, records));
        ASSERT_EQ(read(), records);
    }
}

TEST_F(GoldenFile, WhatIsNoGoldenFileIsRefusedWithItsLine) {
    std::string error;
    EXPECT_FALSE(readText("== A\n  @Nothing 1\n", &error));
    EXPECT_NE(error.find("module.txt:2: no such block"), std::string::npos) << error;
    EXPECT_FALSE(readText("== A\n  x\n<<<<<<< mine\n", &error));
    EXPECT_NE(error.find("module.txt:3"), std::string::npos) << error;
}

TEST_F(GoldenFile, ScriptsAreReadWithTheirCasesAndTitles) {
    std::map<std::string, std::vector<Script>> scripts;
    std::string error;
    std::ofstream(file_) << "# comment\nTC_A: first\n    * in 5 x\n    ! cable 0 out\n    >\n"
                            "    > 0x3 4\nTC_A: second\n";
    ASSERT_TRUE(loadScripts(file_, &scripts, &error)) << error;
    ASSERT_EQ(scripts["TC_A"].size(), 2u);
    EXPECT_EQ(scripts["TC_A"][0].before, Lines{"in 5 x"});
    EXPECT_EQ(scripts["TC_A"][0].steps, (Lines{"! cable 0 out", "> ", "> 0x3 4"}));
    EXPECT_EQ(scripts["TC_A"][1].title, "second");
    for (const char* wrong :
         {"TC_A\n", "    > early\n", "TC_A: x\n    ? y\n", "TC_A: x\n    *\n"}) {
        std::ofstream(file_) << wrong;
        EXPECT_FALSE(loadScripts(file_, &scripts, &error)) << wrong;
    }
}

// The mutants of a small source: which there are, and that one switched on at run time does what
// the edited source does.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>

#include "tools/common/files.h"
#include "tools/mutate/judge.h"
#include "tools/mutate/places.h"
#include "tools/mutate/schemata.h"

namespace {

namespace fs = std::filesystem;

/** Each statement ends in what is printed, so that each change shows. */
const char source[] = R"(extern "C" int printf(const char*, ...);
extern "C" int strcmp(const char*, const char*);
enum Level { LOW = 3, MIDDLE, HIGH };
struct Row { const char* name; int low; int high; Level level; };
static constexpr Row rows[] = {{"a", 1, 2, LOW}, {"b", 5, 9, HIGH}};
static_assert(rows[0].low == 1, "the first row");
static int between(int low, int high, int value) {
    for (int i = 0; i < 3; i++) {
        if (i == 2 && value > low)
            break;
        value += i;
    }
    if (value >= high)
        return -value;
    switch (value) {
        case 8: return 80;
        default: break;
    }
    return value;
}
#define SHOWN(what) printf("%s %d\n", #what, what)
int main() {
    int sizes[HIGH] = {};
    bool done = false;
    for (const Row& row : rows) {
        SHOWN(between(row.low, row.high, 4));
        SHOWN(row.level == MIDDLE ? 1 : 7 - row.level);
        done = !done;
        SHOWN((int)done);
    }
    SHOWN(done ? between(0, 99, 5) : 0);
    SHOWN((int)sizeof sizes + rows[0].name[0]);
    SHOWN(strcmp(rows[0].name, "a") == 0 ? 5 : 6);
}
)";

class Mutants : public testing::Test {
 protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "zkmutantsXXXXXX").string();
        folder_ = mkdtemp(&pattern[0]);
        file_ = (folder_ / "small.cpp").string();
        std::ofstream(file_) << source;
        ASSERT_EQ(shell("clang++ -E " + file_ + " -o " + file_ + ".ii"), 0);
        ASSERT_TRUE(findPlaces(
            file_, readText(file_ + ".ii"), [&](const std::string& file) { return file == file_; },
            &places_));
    }
    void TearDown() override {
        fs::remove_all(folder_);
    }

    static int shell(const std::string& line) {
        int status = system((line + " 2>/dev/null").c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128;
    }

    /** Compiles a preprocessed text, with the switch beside it; false when that fails. */
    bool build(const std::string& name, const std::string& text) const {
        std::ofstream(folder_ / (name + ".ii")) << text;
        return shell("cd " + folder_.string() + " && clang++ -std=c++17 -w -o " + name +
                     " -x c++-cpp-output " + name + ".ii -x c++ " + ZK_SOURCE_DIR +
                     "/tools/mutate/switch.cpp") == 0;
    }

    /** What a program prints and answers, with a mutant switched on. */
    std::string run(const std::string& name, unsigned mutant) const {
        std::string out = (folder_ / "out").string();
        int status = shell("cd " + folder_.string() + " && ZK_MUTANT=" + std::to_string(mutant) +
                           " timeout 2 ./" + name + " | head -c 1000 > " + out);
        return readText(out) + std::to_string(status);
    }

    const Mutant* named(const std::string& key) const {
        for (const Mutant& mutant : places_.mutants) {
            if (mutant.key == "small.cpp " + key)
                return &mutant;
        }
        return nullptr;
    }

    fs::path folder_;
    std::string file_;
    Places places_;
};

TEST_F(Mutants, AreFoundInEachKindOfPlace) {
    for (const char* key :
         {"between: i < 3 => i <= 3",
          "between: i < 3 => i >= 3",
          "between: i++ => i--",
          "between: i == 2 => i != 2",
          "between: i == 2 && value > low => i == 2 || value > low",
          "between: break => dropped",
          "between: value += i => dropped",
          "between: value += i => value -= i",
          "between: if (value >= high) => dropped",
          "between: -value => (value)",
          "between: 8 => (8 + 1)",
          "main: MIDDLE => HIGH",
          "main: row.low, row.high => row.high, row.low",
          "main: 0, 99 => 99, 0",
          "main: done => !(done)",
          "main: !done => static_cast<bool>(done)",
          "main: false => true",
          "rows: LOW => MIDDLE",
          "rows: 1, 2 => 2, 1",
          "rows: \"a\" => \"~\" \"a\"",
          "LOW: 3 => (3 - 1)",
          "rows: {\"a\", 1, 2, LOW}, {\"b\", 5, 9, HIGH} => {\"b\", 5, 9, HIGH}, {\"a\", 1, 2, "
          "LOW}"})
        EXPECT_NE(named(key), nullptr) << key;
    EXPECT_EQ(named("main: rows[0].name, \"a\" => \"a\", rows[0].name"), nullptr);
    // What only a macro puts there: the text of its argument.
    for (const Mutant& mutant : places_.mutants)
        EXPECT_EQ(mutant.key.find("\"~\" \"between(row"), mutant.key.npos) << mutant.key;
    // Where the compiler needs a constant, there is no switch.
    for (const char* key : {"between: 8 => (8 + 1)", "LOW: 3 => (3 - 1)", "main: HIGH => LOW"}) {
        ASSERT_NE(named(key), nullptr) << key;
        EXPECT_TRUE(named(key)->constant) << key;
    }
    EXPECT_FALSE(named("rows: LOW => MIDDLE")->constant);
}

TEST_F(Mutants, SwitchedOnDoWhatTheEditedSourceDoes) {
    ASSERT_TRUE(build("original", places_.units[0].text));
    ASSERT_TRUE(build("all", writeSchemata(places_, 0).text));
    const std::string original = run("original", 0);
    EXPECT_EQ(run("all", 0), original);
    for (const char* key :
         {"between: i < 3 => i >= 3", "between: break => dropped", "between: value += i => dropped",
          "between: if (value >= high) => dropped", "main: row.low, row.high => row.high, row.low",
          "main: !done => static_cast<bool>(done)", "rows: LOW => MIDDLE",
          "rows: \"a\" => \"~\" \"a\""}) {
        const Mutant* mutant = named(key);
        ASSERT_NE(mutant, nullptr) << key;
        ASSERT_TRUE(build("edited", writeMutant(places_, 0, *mutant))) << key;
        const std::string edited = run("edited", 0);
        EXPECT_NE(edited, original) << key;
        EXPECT_EQ(run("all", mutant->id), edited) << key;
    }
}

/** A judge can be late, and harm nothing but its own room. */
TEST_F(Mutants, AreJudgedInARoomOfTheirOwn) {
    fs::path room = folder_ / "room";
    Judge judge = {"", "", "", {"/bin/sh", "-c", "echo seen; touch \"$TMPDIR/a\"; exit 3"}, 0, {}};
    Outcome outcome = runJudge(judge, {folder_, folder_, room}, 0, "", 60);
    EXPECT_EQ(outcome.status, 3);
    EXPECT_FALSE(outcome.late);
    EXPECT_EQ(outcome.text, "seen\n");
    EXPECT_FALSE(fs::exists(room / "a")) << "what a run leaves is removed";
    judge.command[2] = "sleep 600 & sleep 600";
    EXPECT_TRUE(runJudge(judge, {folder_, folder_, room}, 0, "", 0.1).late);
}

}  // namespace

// The configuration reader: the syntax of a line, which match wins, fall-back, and hostile files.
#include "environment/conf_reader.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

namespace {

/** A working directory of its own, since the fall-back file has a fixed relative path. */
class ConfReader : public testing::Test {
 protected:
    void SetUp() override {
        ASSERT_NE(getcwd(before_, sizeof before_), nullptr);
        char pattern[] = "/tmp/zk_conf_XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir_ = pattern;
        ASSERT_EQ(chdir(pattern), 0);
        mkdir("config", 0755);
    }
    void TearDown() override {
        ASSERT_EQ(chdir(before_), 0);
        ASSERT_EQ(system(("rm -rf " + dir_).c_str()), 0);
    }
    static void write(const char* path, const std::string& text) {
        std::ofstream(path, std::ios::binary) << text;
    }
    /** The value that a file gives, "<none>" when the key is not found. */
    static std::string find(const std::string& text, const char* section, const char* key) {
        char value[CONF_TEXT_SIZE] = "<none>";
        write("a.cfg", text);
        int32_t result = read_conf_value(section, key, value, "a.cfg");
        EXPECT_EQ(result, strcmp(value, "<none>") == 0 ? 1 : 0);
        return value;
    }

    char before_[4096];
    std::string dir_;
};

TEST_F(ConfReader, ReadsTheSyntaxOfLines) {
    const struct {
        const char* text;
        const char* value;
    } rows[] = {
        {"[S]\nK=1\n", "1"},
        {"[S]\r\nK=1\r\n", "1"},
        {"[S]\n  K \t=  a b  \n", "<none>"},  // a tab at the end of a key is not trimmed
        {"[S]\n  \tK  =  a b  \n", "a b"},
        {"[S]\nK=a=b=c\n", "a=b=c"},
        {"[S]\nK=1 # not a comment\n", "1 # not a comment"},
        {"[S]\n# K=1\nK=2\n", "2"},
        {"[S]\n   #K=1\nK=2\n", "2"},
        {"[S]\nK=1\nK=2\n[S]\nK=3\n", "1"},
        {"[T]\nK=1\n[S]\nK=2\n", "2"},
        {"[ S ]\nK=1\n", "1"},      // blanks inside brackets go
        {"[S]x\nK=1\n", "<none>"},  // no header
        {"[S]]\nK=1\n", "1"},       // up to the first bracket
        {"K=1\n[S]\n", "<none>"},   // before the first header
        {"[S]\n[]\nK=1\n", "1"},    // an empty header names nothing
        {"[S]\nword\nK=1\n", "1"},
        {"[S]\nKK=1\nK=2\n", "2"},
        {"[S]\nK=\n", ""},
        {"[S]\nK=1", "1"},
        {"[S]\nK=v\t\n", "v\t"},  // nor is a tab at the end of a value
        {"[s]\nK=1\n[S]\nk=2\n", "<none>"},
        {"", "<none>"},
        {"\xEF\xBB\xBF[S]\nK=1\n", "1"},                   // a byte order mark
        {"\xEF\xBB\xBF\xEF\xBB\xBF[S]\nK=1\n", "<none>"},  // of which there is one
        {"[S]\n\xEF\xBB\xBFK=1\nK=2\n", "2"},              // and only at the head
        {"\xEF\xBB", "<none>"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(find(row.text, "S", "K"), row.value) << row.text;
    EXPECT_EQ(find("K=1\n", "", "K"), "1");
}

TEST_F(ConfReader, SplitsOverlongLinesAndCutsOverlongTexts) {
    std::string filler(1022, 'x');
    EXPECT_EQ(find("[S]\n" + filler + "K=7\n", "S", "K"), "7");
    // A header that the split brings to the begin of a line, behind a bracket that is none.
    EXPECT_EQ(find(std::string(1021, 'x') + "[[S]\nK=7\n", "S", "K"), "7");
    std::string value(300, 'v');
    EXPECT_EQ(find("[S]\nK=" + value + "\n", "S", "K"), std::string(99, 'v'));
    std::string section(200, 's');
    EXPECT_EQ(find("[" + section + "]\nK=1\n", std::string(99, 's').c_str(), "K"), "1");
}

/** The reader without its short cuts: every line is taken apart. */
std::string findSlowly(const std::string& text, const char* section, const char* key) {
    ConfItem item = {};
    for (size_t at = 0; at < text.size();) {
        size_t length = std::min<size_t>(1022, text.size() - at);
        size_t newline = text.find('\n', at);
        if (newline != std::string::npos && newline - at < length)
            length = newline - at + 1;
        std::vector<char> line(text.begin() + static_cast<long>(at),
                               text.begin() + static_cast<long>(at + length));
        line.push_back('\0');
        at += length;
        if (get_item_from_line(line.data(), &item) == CONF_LINE_ITEM &&
            strcmp(item.key, key) == 0 && strcmp(item.section, section) == 0)
            return item.value;
    }
    return "<none>";
}

TEST_F(ConfReader, ReadsAnyBytesAsAReaderWithoutShortCutsDoes) {
    unsigned state = 1;
    unsigned found = 0;
    auto next = [&state] { return (state = state * 1103515245u + 12345u) >> 16; };
    for (int round = 0; round < 2000; round++) {
        std::string text;
        for (int i = 0; i < 60; i++) {
            static const char* const pieces[] = {"[S]", "[T]", "K=", "KK=", "K", "=",
                                                 "\n",  "\n",  "\n", "[",   "]", " ",
                                                 "\t",  "#",   "v",  "\r\n"};
            unsigned pick = next();
            text += pieces[pick % 16];
            if (pick % 97 == 0)
                text += std::string(pick % 1500, pick % 2 ? ' ' : 'x');
            if (pick % 61 == 0)
                text += static_cast<char>(pick >> 4);
        }
        for (const char* section : {"S", "T", ""}) {
            std::string value = find(text, section, "K");
            EXPECT_EQ(value, findSlowly(text, section, "K")) << text;
            found += value != "<none>";
        }
    }
    EXPECT_GT(found, 500u);
}

TEST_F(ConfReader, NumbersTakeTheirBaseFromThePrefix) {
    const struct {
        const char* text;
        int32_t number;
    } rows[] = {
        {"12", 12},      {"0x1F", 31}, {"010", 8}, {"-3", -3},
        {"5 apples", 5}, {"", 0},      {"x", 0},   {"99999999999", INT32_MAX},
    };
    for (const auto& row : rows) {
        int32_t number = 77;
        write("a.cfg", std::string("[S]\nK=") + row.text + "\n");
        EXPECT_EQ(get_conf_value_self("S", "K", &number, "a.cfg"), 0);
        EXPECT_EQ(number, row.number) << row.text;
    }
}

TEST_F(ConfReader, ReadersFallBackAndEchoEachInItsWay) {
    int32_t number = 77;
    char text[CONF_TEXT_SIZE] = "kept";
    write("config/common_config.cfg", "[S]\nFALLBACK=3\nBOTH=4\n");
    write("a.cfg", "[S]\nOWN=1\nBOTH=2\n");
    testing::internal::CaptureStdout();
    EXPECT_EQ(get_conf_value_self("S", "OWN", &number, "a.cfg"), 0);
    EXPECT_EQ(number, 1);
    EXPECT_EQ(get_conf_value_self("S", "BOTH", &number, "a.cfg"), 0);
    EXPECT_EQ(number, 2);
    EXPECT_EQ(get_conf_value_self("S", "FALLBACK", &number, ""), 0);
    EXPECT_EQ(number, 3);
    EXPECT_EQ(get_conf_value_self("S", "NEITHER", &number, "a.cfg"), 1);
    EXPECT_EQ(number, 0);
    EXPECT_EQ(get_conf_sting_self("S", "NEITHER", text, "a.cfg"), 1);
    EXPECT_STREQ(text, "kept");
    EXPECT_EQ(get_conf_sting_self("S", "OWN", text, "a.cfg"), 0);
    EXPECT_EQ(get_conf_value("S", "BOTH", &number), 0);
    EXPECT_EQ(get_conf_value("S", "NEITHER", &number), 1);
    EXPECT_EQ(get_conf_sting("S", "NEITHER", text), 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "[S]OWN=1\n[S]BOTH=2\n[S]FALLBACK=3\n[S]OWN=1\nBOTH=4\n[S]NEITHER=1\n");
}

TEST_F(ConfReader, LeavesNoFileOpen) {
    int before = dup(STDIN_FILENO);
    close(before);
    EXPECT_EQ(find("[S]\nK=1\n", "S", "K"), "1");
    EXPECT_EQ(find("[S]\n", "S", "K"), "<none>");
    int after = dup(STDIN_FILENO);
    close(after);
    EXPECT_EQ(after, before);
}

TEST_F(ConfReader, WhatIsNoFileIsMissing) {
    ASSERT_EQ(mkfifo("pipe.cfg", 0600), 0);
    write("config/common_config.cfg", "[S]\nK=5\n");
    for (const char* path : {"pipe.cfg", "config", "/dev/null", "", "none.cfg"}) {
        int32_t number = 77;
        EXPECT_EQ(get_conf_value_self("S", "K", &number, path), 0) << path;
        EXPECT_EQ(number, 5) << path;
    }
}

TEST(ConfLineTools, ALineIsOneOfThreeKinds) {
    const struct {
        const char* line;
        int32_t kind;
        const char* section;
        const char* key;
        const char* value;
    } rows[] = {
        {"", CONF_LINE_EMPTY, "s", "k", "v"},     {" \r\n", CONF_LINE_EMPTY, "s", "k", "v"},
        {"word", CONF_LINE_EMPTY, "s", "k", "v"}, {" # a=b", CONF_LINE_COMMENT, "s", "k", "v"},
        {"[t]", CONF_LINE_ITEM, "t", "", ""},     {"[]", CONF_LINE_ITEM, "s", "", ""},
        {"a = b", CONF_LINE_ITEM, "s", "a", "b"},
    };
    for (const auto& row : rows) {
        char line[16];
        ConfItem item = {"s", "k", "v"};
        snprintf(line, sizeof line, "%s", row.line);
        EXPECT_EQ(get_item_from_line(line, &item), row.kind) << row.line;
        EXPECT_STREQ(item.section, row.section) << row.line;
        EXPECT_STREQ(item.key, row.key) << row.line;
        EXPECT_STREQ(item.value, row.value) << row.line;
    }
}

TEST(ConfLineTools, TrimAsTheyAreNamed) {
    char a[] = " \t a b \t\r\n ";
    EXPECT_STREQ(strtrimr(a), " \t a b \t");
    EXPECT_STREQ(strtriml(a), "a b \t");
    char empty[] = "";
    EXPECT_STREQ(strtrimr(empty), "");
    char word[] = " a b\tc ";
    EXPECT_STREQ(delspace(word), "abc");
    char pair[] = " key =  two words ";
    EXPECT_STREQ(delspace(pair), "key=two words");
}

}  // namespace

// The parts of zkreport that take any bytes, and the cutting of checklists.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "tools/report/console_log.h"
#include "tools/report/shards.h"
#include "tools/report/text.h"

namespace report {
namespace {

TEST(ReportText, WhateverComesInIsPrintableUtf8) {
    struct {
        std::string in;
        std::string out;
    } const table[] = {
        {"plain \t text\r\n", "plain \t text\n"},
        {"a\rb",
         "a\xE2\x90\x8D"
         "b"},
        {std::string("\0\x1F\x7F", 3), "\xE2\x90\x80\xE2\x90\x9F\xE2\x90\xA1"},
        {"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x93\xBA", "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x93\xBA"},
        {"\xC3", "\xEF\xBF\xBD"},
        {"\xE2\x82", "\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"\xC0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"\xF4\x90\x80\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"\xEF\xBF\xBF\xC2\x85\xE2\x80\xAE", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"\xFF", "\xEF\xBF\xBD"},
    };
    for (const auto& row : table)
        EXPECT_EQ(printable(row.in), row.out);
}

TEST(ReportText, ColoursBecomeSpansAndNothingElseGetsThrough) {
    EXPECT_EQ(htmlOfConsole("a\033[1;31m<b>\033[0mc"), "a<span class=\"c1 b\">&lt;b&gt;</span>c");
    EXPECT_EQ(htmlOfConsole("\033[42mx\033[mz\033[2Jy"), "<span class=\"g2\">x</span>zy");
    EXPECT_EQ(htmlOfConsole("\033[999999999999;31m;q"), "<span class=\"c1\">;q</span>");
    EXPECT_EQ(htmlOfConsole("\033[31"), "\xE2\x90\x9B[31");
    EXPECT_EQ(withoutColours("a\033[1;31mb\033[0m\033"), "ab\033");
}

TEST(ReportText, DurationsReadWell) {
    EXPECT_EQ(duration(-1), "\xE2\x80\x93");
    EXPECT_EQ(duration(999), "999 ms");
    EXPECT_EQ(duration(59949), "59.9 s");
    EXPECT_EQ(duration(59950), "1 min 00 s");
    EXPECT_EQ(duration(3599499), "59 min 59 s");
    EXPECT_EQ(duration(3599500), "1 h 00 min");
}

TEST(ReportLog, LinesThatOnlyLookLikeEventsAreNone) {
    EXPECT_EQ(readLogLine("[1.5]case 7:[TC_A] SUCCESS! \r").kind, LogEvent::CaseSuccess);
    EXPECT_EQ(readLogLine("[1.5]case 7:[TC_A] SUCCESS! \r").stampUs, 1000005);
    EXPECT_EQ(readLogLine("text\033[0m[1.5]case 7:[a] b] FAILED! ").name, "a] b");
    for (const char* line :
         {"", "[", "]case ", "[1.5]case", "[1.5]case :[TC_A] SUCCESS!", "[1.5]case 7:[TC_A]",
          "[1.5]case 7:[TC_A SUCCESS!", "[1.5]case 7:SUCCESS!", "[1.5]case 7:[] SUCCESS",
          "case 7:[TC_A] SUCCESS!", "[1]case 7:[TC_A] SUCCESS!", "[1.5]case 7:[SUCCESS!",
          "[1.1000000]case 7:[TC_A] SUCCESS!", "[999999999999999999.5]case 7:[TC_A] SUCCESS!",
          "[1.5]case 99999999999999:[TC_A] SUCCESS!", "] module setup!!!",
          "[1.5] There is no module(", " There is no module() in checklist"})
        EXPECT_EQ(readLogLine(line).kind, LogEvent::None) << line;
}

/** The longest part of the best cut, by trying all. */
int64_t best(const std::vector<int64_t>& durations, size_t from, unsigned parts) {
    int64_t sum = 0;
    if (parts == 1) {
        for (size_t i = from; i < durations.size(); i++)
            sum += durations[i];
        return sum;
    }
    int64_t shortest = INT64_MAX;
    for (size_t i = from; i < durations.size(); i++) {
        sum += durations[i];
        int64_t rest = i + 1 < durations.size() ? best(durations, i + 1, parts - 1) : 0;
        shortest = std::min(shortest, std::max(sum, rest));
    }
    return shortest;
}

TEST(ReportShards, TheCutIsTheBestOfNeighboursAndNoPartIsEmpty) {
    std::mt19937 random(5);
    for (int round = 0; round < 400; round++) {
        std::vector<int64_t> durations(1 + random() % 9);
        for (int64_t& one : durations)
            one = 1 + random() % 50;
        unsigned count = 1 + random() % 5;
        std::vector<unsigned> parts = cutEvenly(durations, count);
        ASSERT_EQ(parts.size(), durations.size());
        std::vector<int64_t> sums(count);
        for (size_t i = 0; i < parts.size(); i++) {
            ASSERT_LT(parts[i], count);
            ASSERT_TRUE(i == 0 || parts[i] == parts[i - 1] || parts[i] == parts[i - 1] + 1);
            sums[parts[i]] += durations[i];
        }
        EXPECT_EQ(*std::max_element(sums.begin(), sums.end()), best(durations, 0, count));
        EXPECT_EQ(parts.back() + 1, std::min<size_t>(count, durations.size()));
    }
}

TEST(ReportShards, UnknownDurationsCountAsTheUsualOne) {
    EXPECT_EQ(cutEvenly({-1, 10, 10, 10, -1, 0}, 2), (std::vector<unsigned>{0, 0, 0, 1, 1, 1}));
    EXPECT_EQ(cutEvenly({-1, -1, -1, -1}, 2), (std::vector<unsigned>{0, 0, 1, 1}));
    EXPECT_TRUE(cutEvenly({}, 3).empty());
}

TEST(ReportShards, TheMarkIsReadBackAndNothingElseIs) {
    ShardMark mark;
    ASSERT_TRUE(readShardMark(textOf({2, 40, "0f3a"}), &mark));
    EXPECT_EQ(mark.index, 2u);
    EXPECT_EQ(mark.count, 40u);
    EXPECT_EQ(mark.cut, "0f3a");
    for (const char* text : {"", "Shard 1 of 2 of checklist ", "Shard 0 of 2 of checklist a",
                             "Shard 3 of 2 of checklist a", "Shard 1 of 2 of checklist a b",
                             "shard 1 of 2 of checklist a"})
        EXPECT_FALSE(readShardMark(text, &mark)) << text;
}

}  // namespace
}  // namespace report

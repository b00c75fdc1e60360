// The case context: what each check prints and notes, and that a ladder undoes exactly what is up,
// in reverse, with a refusal at each of its steps.
#include <gtest/gtest.h>
#include <stdio.h>

#include <string>
#include <vector>

#include "framework/case/check.h"
#include "framework/case/ladder.h"
#include "framework/case/prompt.h"
#include "tests/shared/typed.h"

namespace {

/** A bench whose steps are letters: "a" is up, "A" down again. */
struct Letters {
    std::string done;
    /** The step, up or down, that is refused. */
    char refused = 0;
    bool withB = true;

    int64_t act(char letter) {
        done += letter;
        return letter == refused ? 7 : 0;
    }
};

using Step = LadderStep<Letters>;

#define STEP(u, d) LADDER_CALL(#u, bench.act(*#u)), LADDER_CALL(#d, bench.act(*#d))

const Step plainSteps[] = {{STEP(a, A)}, {STEP(b, B)}, {STEP(c, C)}};
const Step deviatingSteps[] = {
    {STEP(a, A)},
    {STEP(b, B), UNDO_CHECKED, [](const Letters& l) { return l.withB; }},
    {LADDER_CALL("c", bench.act('c')), LADDER_NONE},
    {STEP(d, D), UNDO_SILENT},
    {STEP(e, E), UNDO_OR_STAY},
    {LADDER_NONE, LADDER_CALL("F", bench.act('F'))},
};

/** Up and down again with one step refused: what was done, '!' behind it when the case failed. */
template <size_t N>
std::string walk(const Step (&steps)[N], char refused, bool withB = true) {
    CaseContext tc = {"TC_walk"};
    Letters letters;
    letters.refused = refused;
    letters.withB = withB;
    Ladder<Letters> ladder(tc, letters, steps);
    ladder.up();
    ladder.down();
    return letters.done + (tc.result == TC_FAILURE ? "!" : "");
}

struct Said {
    bool held;
    uint32_t result;
    std::string text;
};

template <typename Check>
Said sayOf(Check check) {
    CaseContext tc = {"TC_said"};
    testing::internal::CaptureStdout();
    bool held = check(tc);
    return {held, tc.result, testing::internal::GetCapturedStdout()};
}

std::string frame(int line, const std::string& message) {
    return "\033[1;31m[TC_said][" + std::to_string(line) + "]" + message + "\033[0m";
}

int g_calls;

int answer(int value) {
    g_calls++;
    return value;
}

}  // namespace

TEST(CaseLadder, UndoesWhatIsUpInReverseWithARefusalAtEachStep) {
    EXPECT_EQ(walk(plainSteps, 0), "abcCBA");
    EXPECT_EQ(walk(plainSteps, 'a'), "a!");
    EXPECT_EQ(walk(plainSteps, 'b'), "abA!");
    EXPECT_EQ(walk(plainSteps, 'c'), "abcBA!");
    EXPECT_EQ(walk(plainSteps, 'C'), "abcCBA!");
    EXPECT_EQ(walk(plainSteps, 'B'), "abcCBA!");
}

TEST(CaseLadder, KeepsWhatDeviatesInItsTable) {
    EXPECT_EQ(walk(deviatingSteps, 0), "abcdeFEDBA");
    EXPECT_EQ(walk(deviatingSteps, 0, false), "acdeFEDA");
    EXPECT_EQ(walk(deviatingSteps, 'c'), "abcBA!");
    EXPECT_EQ(walk(deviatingSteps, 'D'), "abcdeFEDBA");
    EXPECT_EQ(walk(deviatingSteps, 'E'), "abcdeFE!");
    EXPECT_EQ(walk(deviatingSteps, 'F'), "abcdeFEDBA!");
}

TEST(CaseLadder, OperationsShareATable) {
    CaseContext tc = {"TC_walk"};
    Letters letters;
    EXPECT_TRUE(ladderUp(tc, letters, plainSteps));
    EXPECT_TRUE(ladderDown(tc, letters, plainSteps, 1));
    EXPECT_EQ(letters.done, "abcCB");
    letters = {};
    letters.refused = 'c';
    EXPECT_FALSE(ladderUp(tc, letters, plainSteps));
    EXPECT_EQ(letters.done, "abcBA");
    letters = {};
    Ladder<Letters> ladder(tc, letters, plainSteps);
    EXPECT_TRUE(ladder.up(1));
    EXPECT_TRUE(ladder.up());
    EXPECT_TRUE(ladder.down(2));
    EXPECT_TRUE(ladder.up());
    EXPECT_TRUE(ladder.isUp(2));
    EXPECT_TRUE(ladder.down());
    EXPECT_TRUE(ladder.down());
    EXPECT_EQ(letters.done, "abcCcCBA");
}

TEST(CaseCheck, PrintsAndNotesWhatDoesNotHold) {
    Said said = sayOf([](CaseContext& tc) { return TC_EXPECT_RET(answer(0)); });
    EXPECT_TRUE(said.held && said.result == TC_SUCCESS && said.text.empty());

    int line = __LINE__ + 1;
    said = sayOf([](CaseContext& tc) { return TC_EXPECT_RET(answer(5)); });
    EXPECT_FALSE(said.held);
    EXPECT_EQ(said.result, TC_FAILURE);
    EXPECT_EQ(said.text, frame(line, "FUNC:answer(5) RETURN ERROR VALUE [5] \n"));

    line = __LINE__ + 1;
    auto coded = [](CaseContext& tc) { return TC_EXPECT_RET_CODE_TEXT("x( 1)", answer(0), 9); };
    said = sayOf(coded);
    EXPECT_EQ(said.text, frame(line, "FUNC:x( 1) RETURN ERROR VALUE [0] \n"));
    EXPECT_TRUE(
        sayOf([](CaseContext& tc) { return TC_EXPECT_RET_CODE(answer(-1), 0xffffffff); }).held);

    line = __LINE__ + 1;
    said = sayOf([](CaseContext& tc) { return TC_EXPECT_REFUSED(answer(0)); });
    EXPECT_EQ(said.text, frame(line, "FUNC:answer(0) RETURN ERROR VALUE [0] \n"));
    EXPECT_TRUE(sayOf([](CaseContext& tc) { return TC_EXPECT_REFUSED(answer(3)); }).held);

    line = __LINE__ + 1;
    said = sayOf([](CaseContext& tc) { return TC_EXPECT_EQUAL(3, 4u); });
    EXPECT_EQ(said.text, frame(line, "expect 3, but actually 4  \n"));

    line = __LINE__ + 1;
    said = sayOf([](CaseContext& tc) { return TC_EXPECT_RANGE(1, 4, 1); });
    EXPECT_EQ(said.text, frame(line, "expect in (1, 4], but actually 1  \n"));
    EXPECT_TRUE(sayOf([](CaseContext& tc) { return TC_EXPECT_RANGE(1, 4, 4); }).held);
    EXPECT_FALSE(sayOf([](CaseContext& tc) { return TC_EXPECT_RANGE(1, 4, 5); }).held);
}

TEST(CaseCheck, AConditionThatFailsIsLookedAtTwice) {
    g_calls = 0;
    int line = __LINE__ + 1;
    Said said = sayOf([](CaseContext& tc) { return TC_EXPECT_TRUE(answer(0) == 1); });
    EXPECT_EQ(g_calls, 2);
    EXPECT_EQ(said.text, frame(line, "expect 1, but actually 0  \n"));
    EXPECT_TRUE(sayOf([](CaseContext& tc) { return TC_EXPECT_TRUE(answer(4)); }).held);
    EXPECT_EQ(g_calls, 3);
}

TEST(CaseCheck, AssertsLeaveAtOnceAndVerdictsHaveTheirColours) {
    auto body = [](CaseContext& tc) -> uint32_t {
        TC_ASSERT_RET(answer(0));
        TC_ASSERT_TRUE(answer(1) == 2);
        return TC_RESULT(tc);
    };
    Said said = sayOf([&](CaseContext& tc) { return body(tc) == TC_FAILURE; });
    EXPECT_TRUE(said.held);
    EXPECT_EQ(said.text.find("TEST Result"), std::string::npos);
    said = sayOf([](CaseContext& tc) { return TC_RESULT(tc) == TC_SUCCESS; });
    EXPECT_EQ(said.text, "\033[1;32m[TC_said] TEST Result: SUCCESS\n\033[0m");
    said = sayOf([](CaseContext& tc) { return tc_notApplicable(tc) == TC_NOT_APPLICABLE; });
    EXPECT_EQ(said.text, "\033[1;36m[TC_said] TEST Result: N/A\n\033[0m");
}

TEST(CasePrompt, WordsThatAreNoNumbersAreDroppedAndTheEndIsTold) {
    Typed typed("\n 12 x 0x1F\nfe -3 none");
    int32_t number = 99;
    uint32_t hex = 99;
    EXPECT_EQ(tc_askNumber(&number), PROMPT_NUMBER);
    EXPECT_EQ(number, 12);
    EXPECT_EQ(tc_askNumber(&number), PROMPT_NO_NUMBER);
    EXPECT_EQ(number, 12);
    EXPECT_EQ(tc_askHex(&hex), PROMPT_NUMBER);
    EXPECT_EQ(hex, 0x1fu);
    EXPECT_EQ(tc_askHex(&hex), PROMPT_NUMBER);
    EXPECT_EQ(hex, 0xfeu);
    EXPECT_EQ(tc_askNumber(&number), PROMPT_NUMBER);
    EXPECT_EQ(number, -3);
    EXPECT_EQ(tc_askHex(&hex), PROMPT_NO_NUMBER);
    EXPECT_EQ(tc_askNumber(&number), PROMPT_END_OF_INPUT);
    EXPECT_EQ(tc_askNumber(&number), PROMPT_END_OF_INPUT);
    EXPECT_EQ(number, -3);
}

TEST(CasePrompt, NumbersOfMoreThan32BitsAreNone) {
    Typed typed("4294967301 2147483648 -2147483649 99999999999999999999 -2147483648 1ffffffff fff");
    int32_t number = 99;
    uint32_t hex = 99;
    for (int i = 0; i < 4; i++)
        EXPECT_EQ(tc_askNumber(&number), PROMPT_NO_NUMBER) << i;
    EXPECT_EQ(number, 99);
    EXPECT_EQ(tc_askNumber(&number), PROMPT_NUMBER);
    EXPECT_EQ(number, INT32_MIN);
    EXPECT_EQ(tc_askHex(&hex), PROMPT_NO_NUMBER);
    EXPECT_EQ(hex, 99u);
    EXPECT_EQ(tc_askHex(&hex), PROMPT_NUMBER);
    EXPECT_EQ(hex, 0xfffu);
}

TEST(CasePrompt, AWordThatIsTooLongLeavesItsRest) {
    Typed typed(" \n abcdefg hi\nlast line");
    char word[6] = "-----";
    EXPECT_TRUE(tc_askWord(word, 4));
    EXPECT_STREQ(word, "abc");
    EXPECT_TRUE(tc_askWord(word, 5));
    EXPECT_STREQ(word, "defg");
    EXPECT_TRUE(tc_askWord(word, sizeof word));
    EXPECT_STREQ(word, "hi");
    EXPECT_TRUE(tc_waitKey());
    EXPECT_TRUE(tc_askLine(word, sizeof word));
    EXPECT_STREQ(word, "last ");
    EXPECT_TRUE(tc_askWord(word, sizeof word));
    EXPECT_STREQ(word, "line");
    EXPECT_FALSE(tc_askWord(word, sizeof word));
    EXPECT_STREQ(word, "");
    EXPECT_FALSE(tc_waitKey());
    EXPECT_FALSE(tc_askLine(word, sizeof word));
}

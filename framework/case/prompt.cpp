#include "framework/case/prompt.h"

#include <ctype.h>
#include <stdio.h>

#include "framework/base/zk_log.h"

/** The answer behind a scanf that has read `got` items. */
static PromptAnswer answered(int got) {
    if (got == 1)
        return PROMPT_NUMBER;
    // A word in the way would be met again by whoever asks next.
    if (got == 0 && scanf("%*s") != EOF)
        return PROMPT_NO_NUMBER;
    return PROMPT_END_OF_INPUT;
}

PromptAnswer tc_askNumber(int32_t* number) {
    long long wide = 0;
    zk_logFlush();
    PromptAnswer answer = answered(scanf("%lld", &wide));
    // A number too long would come out as its lower bits, which nobody has entered.
    if (answer != PROMPT_NUMBER || wide < INT32_MIN || wide > INT32_MAX)
        return answer == PROMPT_NUMBER ? PROMPT_NO_NUMBER : answer;
    *number = static_cast<int32_t>(wide);
    return PROMPT_NUMBER;
}

PromptAnswer tc_askHex(uint32_t* number) {
    unsigned long long wide = 0;
    zk_logFlush();
    PromptAnswer answer = answered(scanf("%llx", &wide));
    if (answer != PROMPT_NUMBER || wide > UINT32_MAX)
        return answer == PROMPT_NUMBER ? PROMPT_NO_NUMBER : answer;
    *number = static_cast<uint32_t>(wide);
    return PROMPT_NUMBER;
}

bool tc_askWord(char* word, size_t size) {
    size_t length = 0;
    int next;
    zk_logFlush();
    do
        next = getchar();
    while (isspace(next) != 0);
    for (; next != EOF && isspace(next) == 0; next = getchar()) {
        if (length + 1 == size)
            break;
        word[length++] = static_cast<char>(next);
    }
    if (next != EOF)
        ungetc(next, stdin);
    word[length] = '\0';
    return length > 0;
}

bool tc_waitKey(void) {
    zk_logFlush();
    return getchar() != EOF;
}

bool tc_askLine(char* line, size_t size) {
    zk_logFlush();
    return fgets(line, static_cast<int>(size), stdin) != nullptr;
}

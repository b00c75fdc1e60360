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
    zk_logFlush();
    return answered(scanf("%d", number));
}

PromptAnswer tc_askHex(uint32_t* number) {
    zk_logFlush();
    return answered(scanf("%x", number));
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

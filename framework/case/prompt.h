/*
 * Questions to the operator. What is asked is printed by the caller; each function writes it out
 * and reads an answer. At the end of input every one of them says so, and none asks again.
 */
#ifndef FRAMEWORK_CASE_PROMPT_H
#define FRAMEWORK_CASE_PROMPT_H

#include <stddef.h>
#include <stdint.h>

enum PromptAnswer {
    /** A number was read. */
    PROMPT_NUMBER,
    /** A word that is no number, or none of 32 bits; it has been dropped. */
    PROMPT_NO_NUMBER,
    PROMPT_END_OF_INPUT,
};

/** Reads a decimal number, blanks and line ends before it skipped. `number` is left alone unless
 * one is read. */
PromptAnswer tc_askNumber(int32_t* number);

/** The same with a hexadecimal number. */
PromptAnswer tc_askHex(uint32_t* number);

/** Reads a word, blanks and line ends before it skipped, cut to size - 1 characters: what a longer
 * one has more stays in the input for whoever asks next. False at the end of input. */
bool tc_askWord(char* word, size_t size);

/** Waits until a key, or line, was entered; true unless the input has ended. */
bool tc_waitKey(void);

/** Reads a line with its line end, cut to size - 1 characters. False at the end of input. */
bool tc_askLine(char* line, size_t size);

#endif

/* What the console shows of modules and cases, and how it reads a number. */
#ifndef FRAMEWORK_CONSOLE_INPUT_H
#define FRAMEWORK_CONSOLE_INPUT_H

#include <stdint.h>

enum {
    /** What the input 'q' and the input 'l' read as. */
    INPUT_QUIT = -255,
    INPUT_LIST = -256,
    INPUT_LINE_SIZE = 100,
};

/** Prints the module list, the case list of the selected module, or what the state calls for. */
void displaySystemPrompt(void);
void displayModulePrompt(void);
void displayPrompt(void);

/** Reads a line into INPUT_LINE_SIZE zeroed bytes: its letters and digits, the newline behind them;
 *  what does not fit is dropped. Echoes it. At the end of input it waits for more. */
void getinput(char* buf);

/** Reads one number: INPUT_QUIT, INPUT_LIST, or the value with the base by its prefix; 0 only for
 *  "0" itself, any other text that yields 0 is -1. */
void getinputIndex(int32_t* out);

/** Read a number until it is in the range of modules, of cases, or quits or lists. */
int32_t getModuleIndex(void);
int32_t getCaseIndex(void);
/** One of the two by the state, -1 in any other. */
int32_t getInputIndex(void);

#endif

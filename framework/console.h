/*
 * The console: the thread on which all cases run, and the two-level menu of an interactive run.
 */
#ifndef FRAMEWORK_CONSOLE_H
#define FRAMEWORK_CONSOLE_H

#include <stddef.h>
#include <stdint.h>

enum {
    /** What the input 'q' and the input 'l' read as. */
    INPUT_QUIT = -255,
    INPUT_LIST = -256,
    INPUT_LINE_SIZE = 100,
};

/** The console thread's body. */
void* zk_test_loop(void*);

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

/** Enters a module (from 1): runs its set-up and lists its cases. Returns the set-up's result. */
int32_t selectModule(int32_t oneBasedIndex);
/** Leaves it: runs its tear-down. Returns that result. */
int32_t exitFromModule(void);

/** Runs case `index` (from 1), or for 0 all automatic cases of the module. Returns the result. */
int32_t runSelectedCase(int32_t index);
/** The hooks around it. Return the hook's result, 0 without one. */
int32_t runSelectedCaseSetup(int32_t index);
int32_t runSelectedCaseTeardown(int32_t index);

#endif

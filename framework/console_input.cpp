#include "framework/console_input.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "framework/base/zk_log.h"
#include "framework/instance.h"

static const TcModule& currentModule(void) {
    return *tcFwInstance.modules[tcFwInstance.curModule];
}

void displaySystemPrompt(void) {
    puts("Index    Module Name         Module Description \r");
    for (int32_t i = 0; i < tcFwInstance.moduleCount; i++) {
        const TcModule& module = *tcFwInstance.modules[i];
        printf(" %-4d    %-16s    %s \r\n", i + 1, module.name, module.description);
    }
    printf("Please input index to select module(1~%d). 'q' for quit |'l' for module list.\r\n",
           tcFwInstance.moduleCount);
}

void displayModulePrompt(void) {
    const TcModule& module = currentModule();
    uint32_t autoCount = 0;
    puts("Index   Auto    Case Description \r");
    for (uint32_t i = 0; i < module.caseCount; i++) {
        const TcCase& testCase = module.cases[i];
        printf(" %4u    %u  %s\r\n", i + 1, testCase.autoFlag, testCase.description);
        autoCount += testCase.autoFlag == AUTO;
    }
    printf("Module(%s) Totle case number: %u, auto case number: %u\r\n", module.name,
           module.caseCount, autoCount);
    printf(
        "Please input index to select case(0~%u). 0 for run all auto cases |'q' for return to "
        "module list |'l' for case list.\r\n",
        module.caseCount);
}

void displayPrompt(void) {
    if (tcFwInstance.state == FW_MODULE_LIST)
        displaySystemPrompt();
    else if (tcFwInstance.state == FW_CASE_LIST)
        displayModulePrompt();
}

static bool isLetterOrDigit(int character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9');
}

void getinput(char* buf) {
    size_t length = 0;
    zk_logFlush();
    for (;;) {
        int character = getchar();
        if (character == '\n')
            break;
        if (character == EOF) {
            // A terminal may go on after its end of input; a closed pipe must not eat a core.
            clearerr(stdin);
            sleep(1);
        } else if (isLetterOrDigit(character) && length < INPUT_LINE_SIZE - 2) {
            buf[length++] = static_cast<char>(character);
        }
    }
    buf[length] = '\n';
    printf("%s\r\n", buf);
}

/** A number as the device's 32-bit strtol reads it: out of range gives the nearest bound. */
static int32_t toIndex(const char* text) {
    long value = strtol(text, nullptr, 0);
    if (value > INT32_MAX)
        value = INT32_MAX;
    if (value < INT32_MIN)
        value = INT32_MIN;
    return value == 0 ? -1 : static_cast<int32_t>(value);
}

void getinputIndex(int32_t* out) {
    char line[INPUT_LINE_SIZE] = "";
    getinput(line);
    if (strcmp(line, "l\n") == 0)
        *out = INPUT_LIST;
    else if (strcmp(line, "q\n") == 0)
        *out = INPUT_QUIT;
    else if (strcmp(line, "0\n") == 0)
        *out = 0;
    else
        *out = toIndex(line);
}

static bool isAccepted(int32_t index, int32_t first, int32_t last) {
    return (index >= first && index <= last) || index == INPUT_QUIT || index == INPUT_LIST;
}

int32_t getModuleIndex(void) {
    int32_t index = 0;
    getinputIndex(&index);
    while (!isAccepted(index, 1, tcFwInstance.moduleCount)) {
        printf(
            "Wrong index, pls enter correct module idx(1~%d), 'q' for quit |'l' for module "
            "list.\r\n",
            tcFwInstance.moduleCount);
        getinputIndex(&index);
    }
    return index;
}

int32_t getCaseIndex(void) {
    int32_t caseCount = static_cast<int32_t>(currentModule().caseCount);
    int32_t index = 0;
    getinputIndex(&index);
    while (!isAccepted(index, 0, caseCount)) {
        printf(
            "Wrong index, pls enter correct case idx(0~%d), 0 for run all auto testcase |'q' "
            "for return to upper level |'l' for case list.\r\n",
            caseCount);
        getinputIndex(&index);
    }
    return index;
}

int32_t getInputIndex(void) {
    if (tcFwInstance.state == FW_MODULE_LIST)
        return getModuleIndex();
    if (tcFwInstance.state == FW_CASE_LIST)
        return getCaseIndex();
    return -1;
}

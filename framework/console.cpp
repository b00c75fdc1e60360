#include "framework/console.h"

#include <stdio.h>

#include "framework/base/zk_log.h"
#include "framework/case/check.h"
#include "framework/console_input.h"
#include "framework/instance.h"
#include "framework/monitor.h"
#include "framework/runner.h"

static const TcModule& currentModule(void) {
    return *tcFwInstance.modules[tcFwInstance.curModule];
}

int32_t selectModule(int32_t oneBasedIndex) {
    const TcModule& module = *tcFwInstance.modules[oneBasedIndex - 1];
    uint32_t result = module.setup != nullptr ? module.setup() : 0;
    if (result != 0)
        zk_log("[%s] module setup failed!!! please check! \r\n", module.name);
    tcFwInstance.curModule = oneBasedIndex - 1;
    displayModulePrompt();
    return static_cast<int32_t>(result);
}

int32_t exitFromModule(void) {
    const TcModule& module = currentModule();
    uint32_t result = module.teardown != nullptr ? module.teardown() : 0;
    if (result != 0)
        zk_log("[%s] module teardown failed!!! please check!\r\n", module.name);
    tcFwInstance.curModule = -1;
    return static_cast<int32_t>(result);
}

int32_t runSelectedCaseSetup(int32_t index) {
    const TcModule& module = currentModule();
    uint32_t result = module.caseSetup != nullptr ? module.caseSetup(nullptr, nullptr) : 0;
    if (result != 0)
        zk_log("testcase [%d] setup failed!!! please check! \r\n", index);
    return static_cast<int32_t>(result);
}

int32_t runSelectedCaseTeardown(int32_t index) {
    const TcModule& module = currentModule();
    uint32_t result = module.caseTeardown != nullptr ? module.caseTeardown() : 0;
    if (result != 0)
        zk_log("testcase [%d] teardown failed!!! please check! \r\n", index);
    return static_cast<int32_t>(result);
}

int32_t runSelectedCase(int32_t index) {
    if (index == INPUT_QUIT)
        return exitFromModule();
    if (index == 0)
        return runAutoCasesInSingleModule();
    const TcModule& module = currentModule();
    const TcCase& testCase = module.cases[index - 1];
    zk_currentCaseName = testCase.name;
    runSelectedCaseSetup(index);
    uint32_t result = TC_SUCCESS;
    if (testCase.function != nullptr) {
        if (testCase.autoFlag == MANUAL && module.caseSetup != nullptr)
            module.caseSetup(testCase.name, module.configFile);
        result = testCase.function();
    }
    printTestcaseVerdict(module.name, index, result);
    runSelectedCaseTeardown(index);
    zk_currentCaseName = nullptr;
    return static_cast<int32_t>(result);
}

/** One command of the operator's; false when it ends the console. */
static bool obey(int32_t index) {
    if (index == INPUT_LIST) {
        displayPrompt();
    } else if (tcFwInstance.state == FW_MODULE_LIST) {
        if (index == INPUT_QUIT)
            return false;
        selectModule(index);
        fw_setState(FW_CASE_LIST);
    } else if (index == INPUT_QUIT) {
        exitFromModule();
        fw_setState(FW_MODULE_LIST);
        displayPrompt();
    } else {
        runSelectedCase(index);
    }
    return true;
}

void* zk_test_loop(void*) {
    printf("*** Welcome to Vantiro Test Case  *** Verison(%s) *** Compiled time(%s) ***\r\n",
           tcFwInstance.version, tcFwInstance.compileTime);
    fw_setState(FW_MODULE_LIST);
    displayPrompt();
    if (tcFwInstance.autoTest) {
        runAutoCasesInAllModules();
        monitorRunIsOver();
    } else {
        do
            printf("\r\n>");
        while (obey(getInputIndex()));
        puts("\r\n GoodBye! \r");
    }
    zk_logFlush();
    fw_setState(FW_FINISHED);
    return nullptr;
}

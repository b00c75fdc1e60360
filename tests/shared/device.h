/* The simulated device as tests read it. */
#ifndef TESTS_SHARED_DEVICE_H
#define TESTS_SHARED_DEVICE_H

#include <sstream>
#include <string>

#include "simulator/sim_control.h"
#include "testcase/modules.h"

/** What is initialised, open, registered or running; empty when the device rests. */
inline std::string deviceState() {
    std::string text(qlx_sim_state(nullptr, 0) + 1, '\0');
    qlx_sim_state(&text[0], text.size());
    text.pop_back();
    return text;
}

/** The record of calls and callbacks without times and threads, a line each. */
inline std::string recordedCalls() {
    std::string text(qlx_sim_recorded(nullptr, 0) + 1, '\0');
    qlx_sim_recorded(&text[0], text.size());
    text.pop_back();
    std::istringstream lines(text);
    std::string calls;
    std::string time;
    std::string thread;
    std::string rest;
    while (lines >> time >> thread && std::getline(lines, rest))
        calls += rest.substr(1) + "\n";
    return calls;
}

/** A case of a module by its name, null when there is none. */
inline const TcCase* findCase(const TcModule& module, const std::string& name) {
    for (uint32_t i = 0; i < module.caseCount; i++) {
        if (name == module.cases[i].name)
            return &module.cases[i];
    }
    return nullptr;
}

/** Runs one case with its hooks and its name set, and answers its result. */
inline uint32_t runCaseByName(const TcModule& module, const std::string& name) {
    const TcCase* testCase = findCase(module, name);
    if (testCase == nullptr)
        return 99;
    zk_currentCaseName = testCase->name;
    if (module.caseSetup != nullptr)
        module.caseSetup(nullptr, nullptr);
    uint32_t result = testCase->function();
    if (module.caseTeardown != nullptr)
        module.caseTeardown();
    zk_currentCaseName = nullptr;
    return result;
}

#endif

/*
 * One run of a case on a fresh device in virtual time, recorded in the device's trace file: its
 * calls and callbacks, and remarks of what is printed ("| "), printed without a line end ("|> "),
 * typed ("> ") and done by the outside world ("! ", "* "), between "(start)" and "(end) VERDICT".
 * As each line is written at once, the record is on disk also when the case takes the process down.
 */
#ifndef TOOLS_GOLDEN_RECORD_RUN_H
#define TOOLS_GOLDEN_RECORD_RUN_H

#include "framework/case/registry.h"
#include "tools/golden/script.h"

/** From here on `script`, which must live on, answers in the place of the operator, and what is
 *  printed goes into the record. */
void takeOverConsole(const Script& script);

/**
 * Runs `testCase` between its module's hooks, or the hooks alone when it is null, with `script` in
 * the place of the operator. Once a process, which it ends. The environment names the trace file.
 */
[[noreturn]] void recordRun(const TcModule& module, const TcCase* testCase, const Script& script);

#endif

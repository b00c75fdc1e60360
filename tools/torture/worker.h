/*
 * The worker of the torture run: one process, in virtual time, for one case. It writes what comes
 * of each step as it goes, so that a crash or a run without an end costs one result and not the
 * others:
 *
 *     base    verdict, milliseconds, steps, threads left, what is left open
 *     step    number, step, then verdict= threads= heap= left=, or "endless"
 *     done
 */
#ifndef TOOLS_TORTURE_WORKER_H
#define TOOLS_TORTURE_WORKER_H

#include <stdint.h>

#include <string>

#include "tools/golden/script.h"
#include "tools/torture/lists.h"

namespace torture {

/** What a worker is to do. */
struct Work {
    const TcModule* module;
    const TcCase* testCase;
    Script script;
    /** The file that gets the results. */
    std::string out;
};

/** Tortures the case from this step on. Ends the process. */
[[noreturn]] void workOnSteps(const Work& work, unsigned firstStep);

/** Delays a step, "QLX_GPIOGetValue#1", by the last delay that is good, and by one millisecond
 * more; where the verdict turns elsewhere, that place is looked for. Writes both verdicts and the
 * delay at which the verdict turns. Ends the process. */
[[noreturn]] void workOnLimit(const Work& work, const std::string& step, int64_t lastGoodMs);

}  // namespace torture

#endif

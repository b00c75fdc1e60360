/*
 * The worker of the torture run: one process, in virtual time, for one case. It writes what comes
 * of each step as it goes, so that a crash or a run without an end costs one result and not the
 * others:
 *
 *     base    verdict, milliseconds, steps, threads left, what is left open
 *     step    step, then verdict= threads= heap= left=, or "endless"
 *     done
 */
#ifndef TOOLS_TORTURE_WORKER_H
#define TOOLS_TORTURE_WORKER_H

#include <stdint.h>

#include <string>

#include "tools/golden/script.h"
#include "tools/torture/lists.h"
#include "tools/torture/members.h"

namespace torture {

/** What a worker is to do. */
struct Work {
    const TcModule* module;
    const TcCase* testCase;
    Script script;
    /** What the case is known to judge: where to look first. */
    Profile profile;
    /** The file that has results, and gets more. */
    std::string out;
};

/** Tortures the case with the steps that its file says nothing of. Ends the process. */
[[noreturn]] void workOnSteps(const Work& work);

/** Delays a step, "QLX_GPIOGetValue#1", by the last delay that is good, and by one millisecond
 * more; where the verdict turns elsewhere, that place is looked for. Writes both verdicts and the
 * delay at which the verdict turns. Ends the process. */
[[noreturn]] void workOnLimit(const Work& work, const std::string& step, int64_t lastGoodMs);

}  // namespace torture

#endif

/* The steps that a tuner is brought up in, for the wrappers of other modules and for the cases. */
#ifndef TESTCASE_TUNER_TUNER_STEPS_H
#define TESTCASE_TUNER_TUNER_STEPS_H

#include <stdint.h>

#include "framework/case/ladder.h"

/** Counts of steps, from the bottom. */
enum TunerLevel {
    TUNER_INITED = 1,
    TUNER_OPENED = 2,
    /** Open, with tuner_callback registered. */
    TUNER_LISTENING = 3,
};

/** The bench is the tuner's identifier. */
using TunerStep = LadderStep<uint32_t>;
extern const TunerStep tunerSteps[TUNER_LISTENING];

#endif

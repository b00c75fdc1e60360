/* The state that the families AFE and SIF share: one front end is one chip. */
#ifndef SIMULATOR_ANALOG_AFE_STATE_H
#define SIMULATOR_ANALOG_AFE_STATE_H

#include <stdint.h>

#include <mutex>

#include "platform/qlx_afe.h"
#include "simulator/analog/afe_lock.h"
#include "simulator/core/sim.h"

namespace sim {

struct Afe {
    uint32_t id = 0;
    bool initialised = false;
    bool open = false;
    QLX_AFECallback callback = nullptr;
    void* userData = nullptr;
    bool tuned = false;
    /** A tuning is under way: nothing is locked, whatever is on the air. */
    bool acquiring = false;
    QLX_AnalogTuningParams record = {};
    AnalogLock lock;
    int64_t lockedAtMs = 0;
    /** The sound processor has found what the sound carriers bring. */
    bool soundKnown = false;
    /** Counts its searches: the last one counts. */
    uint32_t soundSearch = 0;
    /** Standards that the program forces, and the output mode that it has chosen; 0 and -1: none.
     */
    uint32_t forcedAudio = 0;
    uint32_t forcedColor = 0;
    int64_t chosenMode = -1;
    EventThread* events = nullptr;
};

struct AfeFamily {
    std::mutex mutex;
    Afe afes[QLX_TUNER_MAX];
};

AfeFamily& afeFamily();

/** Answers why a call that needs the front end open is refused; 0 when it is not. Called with the
 *  family locked. */
int32_t afeRefusal(uint32_t id);

/** Standards in force: forced by the program, asked for by the tuning, else the station's. */
uint32_t audioStandardOf(const Afe& afe);
uint32_t colorStandardOf(const Afe& afe);

/** QLX_SndOutMode. */
uint32_t soundModeOf(const Afe& afe);

/** Tells decoders and outputs what the front end receives. Called with the family locked. */
void publishAfe(const Afe& afe);

}  // namespace sim

#endif

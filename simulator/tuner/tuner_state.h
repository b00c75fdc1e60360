/*
 * The tuners' state, shared by the files of the family. One mutex guards it all; it is held for
 * moments only, and never while a callback runs or time passes.
 */
#ifndef SIMULATOR_TUNER_TUNER_STATE_H
#define SIMULATOR_TUNER_TUNER_STATE_H

#include <condition_variable>
#include <mutex>
#include <vector>

#include "platform/qlx_tuner.h"
#include "simulator/core/sim.h"
#include "simulator/tuner/tuner_lock.h"
#include "simulator/world/air.h"
#include "simulator/world/satellite.h"

namespace sim {

/** A blind scan of one band. */
struct BlindScan {
    bool running = false;
    QLX_TunerBlindScanParams params = {};
    /** Where the next step begins, in kHz behind the LNB. */
    uint32_t next = 0;
    bool horizontal = false;
    bool highBand = false;
    bool ended = false;
    /** A step is under way on the scan's thread. */
    bool stepping = false;
    bool found = false;
    QLX_TunerBlindScanInfo result = {};
};

struct Tuner {
    uint32_t id = 0;
    bool open = false;
    QLX_TunerCallback callback = nullptr;
    void* userData = nullptr;
    /** A callback is on its way to the program. */
    bool delivering = false;

    bool tuned = false;
    /** The demodulator has not decided yet. */
    bool deciding = false;
    QLX_TunerTuningParams record = {};
    Decision decision;
    int64_t lockedAtMs = 0;
    /** Rises with each change of what the tuner does; jobs of an earlier number are void. */
    uint64_t sequence = 0;

    /** The program's wish; only a demodulator of ATSC 3.0 has the mode. */
    bool easMode = false;
    /** Number of what demultiplexers get of the tuner, which rises with each change. */
    uint64_t reception = 0;
    SatelliteAntenna antenna;
    int64_t cableFrequency = 0;
    BlindScan scan;

    EventThread* events = nullptr;
    EventThread* scanner = nullptr;
};

struct TunerFamily {
    std::mutex mutex;
    /** Signals the end of a callback and of a scan's step. */
    std::condition_variable changed;
    bool initialised = false;
    Tuner tuners[maxTuners];
};

TunerFamily& tunerFamily();

/** What an operation needs, in the order in which it is looked at. */
enum class TunerNeed {
    initialised,  // the family
    closed,       // a tuner of the board, the family initialised, the tuner not open
    open,         // a tuner of the board, the family initialised, the tuner open
};

/** 0, or the code with which the state refuses the operation. Called with the mutex held. */
int32_t tunerRefusal(TunerNeed need, uint32_t id);

/** Leaves what the tuner was tuned to. Called with the mutex held; returns the number for
 *  setReception, which is to be called without it. */
uint64_t leaveCarrier(Tuner& tuner);

/** Stops the scan and waits until no step runs; called by a scan's own callback, does not wait. */
void stopScan(std::unique_lock<std::mutex>& lock, Tuner& tuner);

/** After the antenna or the air has changed: lets the demodulator lose or regain the carrier.
 *  Called with the mutex held. Returns whether an event is on its way. */
bool reconsider(Tuner& tuner);

}  // namespace sim

#endif

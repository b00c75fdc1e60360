/*
 * The outside world of the device: what is on the air and on the cables, what is plugged in, and
 * who does something to it.
 *
 * There is one way to change it, changeWorld with an event, and one way to be told of a change, a
 * WorldListener. Each part of the world is a file with its state, its row (WorldPart), and the
 * functions by which families look at it.
 */
#ifndef SIMULATOR_WORLD_WORLD_H
#define SIMULATOR_WORLD_WORLD_H

#include <string>
#include <vector>

#include "simulator/core/words.h"

namespace sim {

/** A part of the outside world. */
struct WorldPart {
    /** The first word of its events. */
    const char* word;
    /** Takes the event's other words; false, with nothing changed, when they are none of its own.
     *  Any thread may call. */
    bool (*change)(Words& words);
    /** Puts it into the state that it has when the device is powered on. */
    void (*reset)();
};

/** All parts. */
std::vector<const WorldPart*> worldParts();

extern const WorldPart cablePart;
extern const WorldPart airPart;
extern const WorldPart broadcastPart;
extern const WorldPart wakeUpPart;
extern const WorldPart phonePart;
extern const WorldPart inputPart;
extern const WorldPart stationPart;

/**
 * An event: "cable 0 out", or "in 500 cable 0 out" for one that comes 500 ms later by itself. When
 * it returns, all who listen have been told. "capture WHAT FILE" changes nothing, and writes what
 * there is to be seen (core/capture.h).
 * @return false when no part of the world knows the event
 */
bool changeWorld(const std::string& event);

/** Who is told of a part's changes, from the loading of the library on. `told` runs on the thread
 *  that changed the part, with no lock of the world held. Define it at namespace scope. */
class WorldListener {
 public:
    WorldListener(const WorldPart& part, void (*told)());
};

/** Drops the events that are still to come. */
void dropComingEvents();
/** Puts all parts into the state that they have when the device is powered on. */
void resetWorld();

}  // namespace sim

#endif

/*
 * What is plugged into the external inputs, and what it plays: a test picture and a tone.
 *
 * The ports are those that the platform's feature.cfg has, unless the board says otherwise.
 * Sections HDMI, CVBS, YPBPR and VGA of the board tell the source at each port of a kind, sections
 * like HDMI/0 at that one. Events: "input NAME KEY=VALUE ..." (docs/simulator-events.md).
 */
#ifndef SIMULATOR_WORLD_INPUTS_H
#define SIMULATOR_WORLD_INPUTS_H

#include <stdint.h>

#include <string>
#include <vector>

#include "simulator/world/signal_source.h"

namespace sim {

/** A source at an input. */
struct Input {
    bool cable = true;  /**< Its cable is plugged in at both ends. */
    bool signal = true; /**< It is switched on. */
    bool hdmi = true;   /**< A HDMI source, not one of DVI. */
    std::string name;
    SignalPicture picture;
    SignalSound sound;

    bool present() const {
        return cable && signal;
    }
};

/** Kinds that have inputs, QLX_SourceType. */
std::vector<uint32_t> inputKinds();
/** "HDMI" and the like; "" for another kind. */
const char* nameOfInputKind(uint32_t kind);
/** Ports of a kind, 0 for another kind. */
uint32_t inputPorts(uint32_t kind);
/** The source at a port that exists. Any thread may call. */
Input inputAt(uint32_t kind, uint32_t port);

}  // namespace sim

#endif

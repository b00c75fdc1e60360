// How tests steer the device as a whole.
#include "simulator/sim_control.h"

#include <stdio.h>

#include "simulator/core/fault.h"
#include "simulator/core/sim.h"
#include "simulator/core/trace.h"
#include "simulator/families.h"
#include "simulator/world/world.h"

static size_t hand(const std::string& text, char* buffer, size_t size) {
    if (size > 0)
        snprintf(buffer, size, "%s", text.c_str());
    return text.size();
}

void qlx_sim_reset(void) {
    sim::dropComingEvents();
    for (const sim::Family* family : sim::families())
        family->reset();
    sim::resetWorld();
    sim::clearFaults();
    sim::resetRandom();
}

size_t qlx_sim_state(char* buffer, size_t size) {
    std::string text;
    for (const sim::Family* family : sim::families())
        family->describe(&text);
    return hand(text, buffer, size);
}

int qlx_sim_add_fault(const char* line) {
    std::string error;
    if (sim::addFault(line, &error))
        return 0;
    sim::complain("%s", error.c_str());
    return -1;
}

void qlx_sim_clear_faults(void) {
    sim::clearFaults();
}

unsigned qlx_sim_faults_acted(void) {
    return sim::faultsActed();
}

void qlx_sim_record(int on) {
    sim::recordTrace(on != 0);
}

size_t qlx_sim_recorded(char* buffer, size_t size) {
    return hand(sim::recordedTrace(), buffer, size);
}

size_t qlx_sim_handed_out(char* buffer, size_t size) {
    return hand(sim::handedOut(), buffer, size);
}

void qlx_sim_remark(const char* line) {
    sim::traceLine(line);
}

int qlx_sim_event(const char* line) {
    return sim::changeWorld(line) ? 0 : -1;
}

// Audio outputs: six devices, each with the sink of its number.
//
// State rules: initialisation is a flag, and its end closes everything. An open device may be
// opened again; closing is a success in any state; volume, mute and description need the service
// alone, for programs address a device whether its sink is in use or not.
#include "simulator/output/aout.h"

#include <mutex>

#include "platform/qlx_aout.h"
#include "simulator/core/family.h"
#include "simulator/core/sim.h"

namespace {

constexpr uint32_t maxVolume = 100;

struct AOutState {
    std::mutex mutex;
    bool initialised = false;
    sim::SinkView outputs[QLX_AOUTDEV_NUMBER_MAX];
};

AOutState& state() {
    static AOutState* instance = new AOutState;
    return *instance;
}

/** Called with the state locked. */
void end() {
    state().initialised = false;
    for (sim::SinkView& output : state().outputs)
        output = sim::SinkView();
}

int32_t refusalOf(uint32_t output) {
    if (output >= QLX_AOUTDEV_NUMBER_MAX)
        return QLX_AOUT_ERR_INVALID_PARA;
    return state().initialised ? QLX_SUCCESS : QLX_FAILED;
}

}  // namespace

int32_t QLX_AOutInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::lock_guard<std::mutex> lock(state().mutex);
    state().initialised = true;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AOutDeInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::lock_guard<std::mutex> lock(state().mutex);
    end();
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AOutOpen(uint32_t eDevId, uint32_t eSink) {
    SIM_ENTRY("output=%d sink=%u", static_cast<int>(eDevId), eSink);
    std::lock_guard<std::mutex> lock(state().mutex);
    if (eDevId < QLX_AOUTDEV_NUMBER_MAX && eSink != eDevId + 1)
        SIM_RETURN(QLX_AOUT_ERR_INVALID_PARA);
    if (int32_t refusal = refusalOf(eDevId))
        SIM_RETURN(refusal);
    state().outputs[eDevId].open = true;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AOutClose(uint32_t eDevId) {
    SIM_ENTRY("output=%d", static_cast<int>(eDevId));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (eDevId >= QLX_AOUTDEV_NUMBER_MAX)
        SIM_RETURN(QLX_AOUT_ERR_INVALID_PARA);
    state().outputs[eDevId] = sim::SinkView();
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AOutSetVolume(uint32_t eDevId, uint32_t uVolume) {
    SIM_ENTRY("output=%d volume=%u", static_cast<int>(eDevId), uVolume);
    std::lock_guard<std::mutex> lock(state().mutex);
    if (uVolume > maxVolume)
        SIM_RETURN(QLX_AOUT_ERR_INVALID_PARA);
    if (int32_t refusal = refusalOf(eDevId))
        SIM_RETURN(refusal);
    state().outputs[eDevId].volume = uVolume;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AOutSetMute(uint32_t eDevId, uint32_t bMute) {
    SIM_ENTRY("output=%d mute=%u", static_cast<int>(eDevId), bMute);
    std::lock_guard<std::mutex> lock(state().mutex);
    if (int32_t refusal = refusalOf(eDevId))
        SIM_RETURN(refusal);
    state().outputs[eDevId].muted = bMute != QLX_FALSE;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AOutSetAudioDescription(uint32_t eDevId, uint32_t bEnable) {
    SIM_ENTRY("output=%d enable=%u", static_cast<int>(eDevId), bEnable);
    std::lock_guard<std::mutex> lock(state().mutex);
    if (int32_t refusal = refusalOf(eDevId))
        SIM_RETURN(refusal);
    state().outputs[eDevId].description = bEnable != QLX_FALSE;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AOutSetAudioDescriptionVolume(uint32_t eDevId, uint32_t uVolume) {
    SIM_ENTRY("output=%d volume=%u", static_cast<int>(eDevId), uVolume);
    std::lock_guard<std::mutex> lock(state().mutex);
    if (uVolume > maxVolume)
        SIM_RETURN(QLX_AOUT_ERR_INVALID_PARA);
    if (int32_t refusal = refusalOf(eDevId))
        SIM_RETURN(refusal);
    state().outputs[eDevId].descriptionVolume = uVolume;
    SIM_RETURN(QLX_SUCCESS);
}

static void reset() {
    std::lock_guard<std::mutex> lock(state().mutex);
    end();
}

static void describe(std::string* out) {
    std::lock_guard<std::mutex> lock(state().mutex);
    if (state().initialised)
        *out += "AOut initialised\n";
    for (uint32_t i = 0; i < QLX_AOUTDEV_NUMBER_MAX; i++) {
        if (state().outputs[i].open)
            *out += sim::format("AOut %u open\n", i);
    }
}

namespace sim {

bool audioOutputsRun() {
    std::lock_guard<std::mutex> lock(state().mutex);
    return state().initialised;
}

SinkView sinkView(uint32_t output) {
    std::lock_guard<std::mutex> lock(state().mutex);
    return output < QLX_AOUTDEV_NUMBER_MAX ? state().outputs[output] : SinkView();
}

extern const Family familyAOut = {reset, describe};

}  // namespace sim

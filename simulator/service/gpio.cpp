// GPIO: every pin number exists; what is driven is what is read. Two pins lead to the amplifier
// (amplifier.h).
//
// State rules: initialisation is a flag. Reading and driving need it; the not-initialised check
// comes before that of the arguments.
#include <map>
#include <mutex>

#include "platform/qlx_gpio.h"
#include "simulator/core/family.h"
#include "simulator/core/sim.h"
#include "simulator/service/amplifier.h"

namespace {

struct GpioState {
    std::mutex mutex;
    bool initialised = false;
    std::map<uint32_t, int32_t> levels;
};

GpioState& state() {
    static GpioState* instance = new GpioState;
    return *instance;
}

}  // namespace

int32_t QLX_GPIOInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::lock_guard<std::mutex> lock(state().mutex);
    state().initialised = true;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_GPIODeInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::lock_guard<std::mutex> lock(state().mutex);
    state().initialised = false;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_GPIOGetValue(uint32_t pin, int32_t* level) {
    SIM_ENTRY("pin=%u level=%s", pin, sim::showPointer(level));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (!state().initialised)
        SIM_RETURN(QLX_GPIO_ERR_NOT_INIT);
    if (level == nullptr)
        SIM_RETURN(QLX_GPIO_ERR_INVALID_PARA);
    *level = state().levels[pin];
    simCall.output({sim::value("level", level)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_GPIOSetValue(uint32_t pin, int32_t level) {
    SIM_ENTRY("pin=%u level=%d", pin, level);
    std::lock_guard<std::mutex> lock(state().mutex);
    if (!state().initialised)
        SIM_RETURN(QLX_GPIO_ERR_NOT_INIT);
    if (level != 0 && level != 1)
        SIM_RETURN(QLX_GPIO_ERR_INVALID_PARA);
    state().levels[pin] = level;
    sim::amplifierPin(pin, level);
    SIM_RETURN(QLX_SUCCESS);
}

static void reset() {
    std::lock_guard<std::mutex> lock(state().mutex);
    state().initialised = false;
    state().levels.clear();
    sim::resetAmplifier();
}

static void describe(std::string* out) {
    std::lock_guard<std::mutex> lock(state().mutex);
    if (state().initialised)
        *out += "GPIO initialised\n";
}

namespace sim {

extern const Family familyGpio = {reset, describe};

}  // namespace sim

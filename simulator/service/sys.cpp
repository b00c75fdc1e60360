// System services: bringing up the drivers, chip identity, calendar, capabilities, random numbers,
// and the switches of serial port, panel and keypad.
//
// State rules: nothing here needs initialisation. A second QLX_SysInit is a success. Switching the
// serial port or the debug console off is noted only: what the program prints goes on to appear.
//
// Board file: section SYS, CHIP_ID (text); section CAPABILITY, one key for each field of
// QLX_SysCapability, by its name.
#include <stdio.h>
#include <string.h>

#include <mutex>

#include "platform/qlx_sys.h"
#include "simulator/core/board.h"
#include "simulator/core/device_clock.h"
#include "simulator/core/family.h"
#include "simulator/core/sim.h"
#include "simulator/service/pm_memory.h"

namespace sim {

SIM_RECORD(QLX_SysCapability, SIM_MEMBER(QLX_SysCapability, NumberOfTuners),
           SIM_MEMBER(QLX_SysCapability, NumberOfCvbsSources),
           SIM_MEMBER(QLX_SysCapability, NumberOfYcSources),
           SIM_MEMBER(QLX_SysCapability, NumberOfYcCvbsSources),
           SIM_MEMBER(QLX_SysCapability, NumberOfYpbprSources),
           SIM_MEMBER(QLX_SysCapability, NumberOfYpbprCvbsSources),
           SIM_MEMBER(QLX_SysCapability, NumberOfYpbprYcCvbsSources),
           SIM_MEMBER(QLX_SysCapability, NumberOfScarts),
           SIM_MEMBER(QLX_SysCapability, NumberOfVgaSources),
           SIM_MEMBER(QLX_SysCapability, NumberOfHdmiSources),
           SIM_MEMBER(QLX_SysCapability, NumberOfCiSlots),
           SIM_MEMBER(QLX_SysCapability, NumberOfDemuxes),
           SIM_MEMBER(QLX_SysCapability, NumberOfVideoPlayers),
           SIM_MEMBER(QLX_SysCapability, NumberOfAudioPlayers),
           SIM_MEMBER(QLX_SysCapability, NumberOfVideoOut),
           SIM_MEMBER(QLX_SysCapability, NumberOfAudioOut),
           SIM_MEMBER(QLX_SysCapability, NumberOfVideoWindow),
           SIM_MEMBER(QLX_SysCapability, NumberOfRecorders))

}  // namespace sim

namespace {

constexpr uint32_t keypadUnlocked = 1;

struct SysState {
    std::mutex mutex;
    bool comEnabled = true;
    bool uartEnabled = true;
    bool panelPowered = true;
    uint32_t keypadLock = keypadUnlocked;
};

SysState& state() {
    static SysState* instance = new SysState;
    return *instance;
}

/** Sets one of the switches. */
void switchTo(bool SysState::*which, uint32_t enabled) {
    std::lock_guard<std::mutex> lock(state().mutex);
    state().*which = enabled != 0;
}

}  // namespace

int32_t QLX_SysInit(void) {
    // No device thread starts here: the program forks its monitor after this call.
    SIM_ENTRY_NO_ARGUMENTS();
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysGetChipID(char* chipID) {
    SIM_ENTRY("id=%s", sim::showPointer(chipID));
    if (chipID == nullptr)
        SIM_RETURN(QLX_SYS_ERR_INVALID_PARA);
    std::string text = sim::board().text("SYS", "CHIP_ID");
    snprintf(chipID, QLX_SYS_CHIP_ID_SIZE, "%s", text.c_str());
    simCall.output({sim::textValue("id", chipID, strlen(chipID))});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysSetLinuxSystemTime(struct timeval timeNow, struct timezone tz) {
    SIM_ENTRY("seconds=%lld microseconds=%lld minutesWest=%d summerTime=%d",
              static_cast<long long>(timeNow.tv_sec), static_cast<long long>(timeNow.tv_usec),
              tz.tz_minuteswest, tz.tz_dsttime);
    constexpr int64_t farthest = INT64_MAX / 1000000000;
    if (timeNow.tv_sec < 0 || timeNow.tv_sec >= farthest || timeNow.tv_usec < 0 ||
        timeNow.tv_usec >= 1000000)
        SIM_RETURN(QLX_SYS_ERR_INVALID_PARA);
    sim::setCalendarBesideRtc(static_cast<int64_t>(timeNow.tv_sec) * 1000000 + timeNow.tv_usec);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysGetCapability(QLX_SysCapability* capability) {
    SIM_ENTRY("capability=%s", sim::showPointer(capability));
    if (capability == nullptr)
        SIM_RETURN(QLX_SYS_ERR_INVALID_PARA);
    *capability = {};
    for (const sim::Member& field : sim::recordOf<QLX_SysCapability>().members) {
        uint32_t number = static_cast<uint32_t>(sim::board().number("CAPABILITY", field.name));
        memcpy(reinterpret_cast<uint8_t*>(capability) + field.offset, &number, sizeof number);
    }
    if (sim::board().text("CAPABILITY", "NumberOfTuners").empty())
        capability->NumberOfTuners = static_cast<uint32_t>(sim::board().number("TUNER", "COUNT"));
    simCall.output({sim::value("capability", capability)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_GetRandomNumber(uint32_t* number) {
    SIM_ENTRY("number=%s", sim::showPointer(number));
    if (number == nullptr)
        SIM_RETURN(QLX_SYS_ERR_INVALID_PARA);
    *number = sim::random32();
    simCall.output({sim::value("number", number)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SetComEnabled(uint32_t enabled) {
    SIM_ENTRY("enabled=%u", enabled);
    switchTo(&SysState::comEnabled, enabled);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysSetUartEnabled(uint32_t enabled) {
    SIM_ENTRY("enabled=%u", enabled);
    switchTo(&SysState::uartEnabled, enabled);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SysSetPanelPower(uint32_t enabled) {
    SIM_ENTRY("enabled=%u", enabled);
    switchTo(&SysState::panelPowered, enabled);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_KeypadLockValueSet(uint32_t value) {
    SIM_ENTRY("value=%u", value);
    if (value > keypadUnlocked)
        SIM_RETURN(QLX_SYS_ERR_INVALID_PARA);
    std::lock_guard<std::mutex> lock(state().mutex);
    state().keypadLock = value;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_KeypadLockValueGet(uint32_t* value) {
    SIM_ENTRY("value=%s", sim::showPointer(value));
    if (value == nullptr)
        SIM_RETURN(QLX_SYS_ERR_INVALID_PARA);
    std::lock_guard<std::mutex> lock(state().mutex);
    *value = state().keypadLock;
    simCall.output({sim::value("value", value)});
    SIM_RETURN(QLX_SUCCESS);
}

static void reset() {
    std::lock_guard<std::mutex> lock(state().mutex);
    state().comEnabled = state().uartEnabled = state().panelPowered = true;
    state().keypadLock = keypadUnlocked;
    sim::resetDeviceClock();
}

static void describe(std::string* out) {
    std::lock_guard<std::mutex> lock(state().mutex);
    if (!state().comEnabled)
        *out += "SYS debug console off\n";
    if (!state().uartEnabled)
        *out += "SYS serial port off\n";
    if (!state().panelPowered)
        *out += "SYS panel supply off\n";
}

namespace sim {

extern const Family familySys = {reset, describe};

}  // namespace sim

#include "simulator/service/pm_memory.h"

#include <map>
#include <string>

#include "simulator/core/board.h"
#include "simulator/core/device_clock.h"
#include "simulator/core/sim.h"
#include "simulator/core/storage_file.h"
#include "simulator/core/words.h"

namespace sim {

static std::string memoryPath() {
    return storagePath("/pm/controller.txt");
}

static int64_t number(const std::map<std::string, std::string>& values, const char* key) {
    auto found = values.find(key);
    return found == values.end() ? 0 : leadingNumber(found->second);
}

static uint32_t word(const std::map<std::string, std::string>& values, const char* key) {
    return static_cast<uint32_t>(number(values, key));
}

PmMemory loadPmMemory() {
    PmMemory memory;
    auto values = loadKeyValues(memoryPath());
    memory.rtcUs = memory.calendarUs = calendarUs();
    if (values.empty())
        return memory;
    memory.bootMode = word(values, "boot_mode");
    memory.condition = word(values, "condition");
    memory.alarm = word(values, "alarm");
    memory.alarmReason = word(values, "alarm_reason");
    memory.rtcUs = number(values, "rtc_us");
    memory.calendarUs = number(values, "calendar_us");
    memory.standby = number(values, "standby") != 0;
    memory.wakeKnown = number(values, "wake_known") != 0;
    memory.wakeAfterUs = number(values, "wake_after_us");
    memory.wake.reason = word(values, "wake_reason");
    memory.wake.detail = word(values, "wake_detail");
    return memory;
}

void savePmMemory(const PmMemory& memory) {
    std::map<std::string, std::string> values = {
        {"boot_mode", std::to_string(memory.bootMode)},
        {"condition", std::to_string(memory.condition)},
        {"alarm", std::to_string(memory.alarm)},
        {"alarm_reason", std::to_string(memory.alarmReason)},
        {"rtc_us", std::to_string(memory.rtcUs)},
        {"calendar_us", std::to_string(memory.calendarUs)},
        {"standby", memory.standby ? "1" : "0"},
        {"wake_known", memory.wakeKnown ? "1" : "0"},
        {"wake_after_us", std::to_string(memory.wakeAfterUs)},
        {"wake_reason", std::to_string(memory.wake.reason)},
        {"wake_detail", std::to_string(memory.wake.detail)},
    };
    if (!saveKeyValues(memoryPath(), values))
        complain("cannot write %s: the standby controller forgets", memoryPath().c_str());
}

}  // namespace sim

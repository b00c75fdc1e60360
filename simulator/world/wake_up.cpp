#include "simulator/world/wake_up.h"

#include <algorithm>
#include <mutex>

#include "platform/qlx_pm.h"

namespace sim {

namespace {

struct WakeUps {
    std::mutex mutex;
    std::vector<WakeUpEvent> waiting;
};

WakeUps& state() {
    static WakeUps* instance = new WakeUps;
    return *instance;
}

/** "SOURCE [DETAIL] [after MS]". */
bool change(Words& words) {
    std::string name, word;
    if (!words.next(&name))
        return false;
    const std::vector<WakeUpSource>& sources = wakeUpSources();
    auto source = std::find_if(sources.begin(), sources.end(),
                               [&](const WakeUpSource& one) { return name == one.name; });
    if (source == sources.end())
        return false;
    int64_t detail = 0, afterMs = -1;
    bool more = words.next(&word);
    if (more && word != "after") {
        if (!readNumber(word, 0, UINT32_MAX, &detail))
            return false;
        more = words.next(&word);
    }
    if (more && (word != "after" || !words.nextNumber(0, UINT32_MAX, &afterMs) || !words.atEnd()))
        return false;
    std::lock_guard<std::mutex> lock(state().mutex);
    state().waiting.push_back({&*source, static_cast<uint32_t>(detail), afterMs});
    return true;
}

void reset() {
    takeWakeUps();
}

}  // namespace

const std::vector<WakeUpSource>& wakeUpSources() {
    static const std::vector<WakeUpSource>* sources = new std::vector<WakeUpSource>{
        {"ir", QLX_SYS_WAKEUP_COND_IR, QLX_SYS_WAKEUP_REASON_IR},
        {"keypad", QLX_SYS_WAKEUP_COND_KEYPAD, QLX_SYS_WAKEUP_REASON_KEYPAD},
        {"cec", QLX_SYS_WAKEUP_COND_CEC, QLX_SYS_WAKEUP_REASON_CEC},
        {"lan", QLX_SYS_WAKEUP_COND_LAN, QLX_SYS_WAKEUP_REASON_WOL},
        {"wlan", QLX_SYS_WAKEUP_COND_WLAN, QLX_SYS_WAKEUP_REASON_WOW},
    };
    return *sources;
}

std::vector<WakeUpEvent> takeWakeUps() {
    std::vector<WakeUpEvent> taken;
    std::lock_guard<std::mutex> lock(state().mutex);
    taken.swap(state().waiting);
    return taken;
}

const WorldPart wakeUpPart = {"wakeup", change, reset};

}  // namespace sim

#include "simulator/world/world.h"

#include <mutex>
#include <utility>

#include "simulator/core/capture.h"
#include "simulator/core/outside.h"
#include "simulator/core/sim.h"

namespace sim {

namespace {

/** The one list of the parts. */
const WorldPart* const parts[] = {
    &cablePart, &airPart, &broadcastPart, &wakeUpPart, &phonePart, &inputPart, &stationPart,
};

struct Listeners {
    std::mutex mutex;
    std::vector<std::pair<const WorldPart*, void (*)()>> all;
};

Listeners& listeners() {
    static Listeners* instance = new Listeners;
    return *instance;
}

void tellListeners(const WorldPart* part) {
    std::vector<std::pair<const WorldPart*, void (*)()>> all;
    {
        std::lock_guard<std::mutex> lock(listeners().mutex);
        all = listeners().all;
    }
    for (const auto& [heard, told] : all) {
        if (heard == part)
            told();
    }
}

/** Where events that were told beforehand come from. */
EventThread& operatorThread() {
    static EventThread* instance = new EventThread("operator");
    return *instance;
}

/** "in MS EVENT", without its first word. */
bool announce(Words& words) {
    int64_t delayMs = 0;
    if (!words.nextNumber(0, INT32_MAX, &delayMs) || words.atEnd())
        return false;
    operatorThread().post(parts, delayMs, [event = words.rest()] {
        if (!changeWorld(event))
            complain("nothing of the outside world knows the event '%s'", event.c_str());
    });
    return true;
}

[[maybe_unused]] const bool handedIn = (takeEventsBy(changeWorld), true);

}  // namespace

std::vector<const WorldPart*> worldParts() {
    return {std::begin(parts), std::end(parts)};
}

bool changeWorld(const std::string& event) {
    Words words(event);
    std::string what;
    words.next(&what);
    if (what == "in")
        return announce(words);
    if (what == "capture")
        return capture(words);
    for (const WorldPart* part : parts) {
        if (what != part->word)
            continue;
        if (!part->change(words))
            return false;
        tellListeners(part);
        return true;
    }
    return false;
}

WorldListener::WorldListener(const WorldPart& part, void (*told)()) {
    std::lock_guard<std::mutex> lock(listeners().mutex);
    listeners().all.emplace_back(&part, told);
}

void dropComingEvents() {
    operatorThread().cancelAll();
}

void resetWorld() {
    for (const WorldPart* part : parts)
        part->reset();
}

}  // namespace sim

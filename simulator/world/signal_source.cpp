#include "simulator/world/signal_source.h"

#include <map>
#include <mutex>
#include <tuple>
#include <utility>
#include <vector>

namespace sim {

namespace {

struct Sources {
    std::mutex mutex;
    std::map<std::pair<uint32_t, uint32_t>, SignalSource> all;
    std::vector<void (*)(uint32_t, uint32_t)> listeners;
};

Sources& sources() {
    static Sources* instance = new Sources;
    return *instance;
}

auto contentsOf(const SignalSource& source) {
    const SignalPicture& picture = source.picture;
    const SignalSound& sound = source.sound;
    return std::make_tuple(source.open, source.locked, source.sinceMs, source.name, picture.width,
                           picture.height, picture.rateNumerator, picture.rateDenominator,
                           picture.interlaced, picture.aspectWidth, picture.aspectHeight,
                           sound.channels, sound.samplingRate, sound.toneHz);
}

}  // namespace

SignalSource signalSource(uint32_t kind, uint32_t index) {
    std::lock_guard<std::mutex> lock(sources().mutex);
    const auto found = sources().all.find({kind, index});
    return found == sources().all.end() ? SignalSource() : found->second;
}

bool findOpenSource(uint32_t kind, uint32_t wanted, uint32_t* index) {
    *index = wanted;
    if (signalSource(kind, wanted).open)
        return true;
    std::lock_guard<std::mutex> lock(sources().mutex);
    for (const auto& [id, source] : sources().all) {
        if (id.first != kind || !source.open)
            continue;
        *index = id.second;
        return true;
    }
    return false;
}

void setSignalSource(uint32_t kind, uint32_t index, const SignalSource& source) {
    std::vector<void (*)(uint32_t, uint32_t)> listeners;
    {
        std::lock_guard<std::mutex> lock(sources().mutex);
        SignalSource& kept = sources().all[{kind, index}];
        if (contentsOf(kept) == contentsOf(source))
            return;
        kept = source;
        listeners = sources().listeners;
    }
    for (const auto told : listeners)
        told(kind, index);
}

SignalListener::SignalListener(void (*told)(uint32_t kind, uint32_t index)) {
    std::lock_guard<std::mutex> lock(sources().mutex);
    sources().listeners.push_back(told);
}

}  // namespace sim

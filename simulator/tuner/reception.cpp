#include "simulator/tuner/reception.h"

#include <mutex>
#include <utility>
#include <vector>

namespace sim {

namespace {

struct ReceptionState {
    std::mutex mutex;
    Reception receptions[maxTuners];
    uint64_t sequences[maxTuners] = {};
    std::vector<std::function<void(uint32_t)>> listeners;
};

ReceptionState& state() {
    static ReceptionState* instance = new ReceptionState;
    return *instance;
}

}  // namespace

Reception receptionOf(uint32_t tuner) {
    ReceptionState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    return tuner < maxTuners ? s.receptions[tuner] : Reception();
}

void onReceptionChange(std::function<void(uint32_t tuner)> listener) {
    ReceptionState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    s.listeners.push_back(std::move(listener));
}

void setReception(uint32_t tuner, uint64_t sequence, const TransmitterPtr& transmitter) {
    ReceptionState& s = state();
    std::vector<std::function<void(uint32_t)>> listeners;
    {
        std::lock_guard<std::mutex> lock(s.mutex);
        if (tuner >= maxTuners || sequence <= s.sequences[tuner])
            return;
        s.sequences[tuner] = sequence;
        Reception& reception = s.receptions[tuner];
        if (transmitter == nullptr && !reception.locked)
            return;
        reception.locked = transmitter != nullptr;
        reception.transmitter = transmitter;
        reception.change++;
        listeners = s.listeners;
    }
    for (const auto& listener : listeners)
        listener(tuner);
}

void resetReceptions() {
    ReceptionState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    for (uint64_t& sequence : s.sequences)
        sequence = 0;
    for (Reception& reception : s.receptions) {
        reception.locked = false;
        reception.transmitter = nullptr;
        reception.change++;
    }
}

}  // namespace sim

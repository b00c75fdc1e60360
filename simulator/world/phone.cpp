#include "simulator/world/phone.h"

#include <mutex>

namespace sim {

namespace {

struct Phones {
    std::mutex mutex;
    std::vector<int32_t> waiting;
};

Phones& state() {
    static Phones* instance = new Phones;
    return *instance;
}

bool change(Words& words) {
    int64_t result = 0;
    if (!words.nextNumber(INT32_MIN, INT32_MAX, &result) || !words.atEnd())
        return false;
    std::lock_guard<std::mutex> lock(state().mutex);
    state().waiting.push_back(static_cast<int32_t>(result));
    return true;
}

void reset() {
    takePhones();
}

}  // namespace

std::vector<int32_t> takePhones() {
    std::vector<int32_t> taken;
    std::lock_guard<std::mutex> lock(state().mutex);
    taken.swap(state().waiting);
    return taken;
}

const WorldPart phonePart = {"miracast", change, reset};

}  // namespace sim

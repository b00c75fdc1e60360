// The device's random numbers: the same from one seed, QLX_SIM_SEED.
#include <cstdlib>
#include <mutex>
#include <random>

#include "simulator/core/sim.h"
#include "simulator/core/words.h"

namespace sim {

struct Random {
    std::mutex mutex;
    bool seeded = false;
    std::mt19937 generator;
};

static Random& random() {
    static Random* instance = new Random;
    return *instance;
}

uint32_t random32() {
    Random& r = random();
    std::lock_guard<std::mutex> lock(r.mutex);
    if (!r.seeded) {
        r.seeded = true;
        const char* seed = getenv("QLX_SIM_SEED");
        r.generator.seed(seed != nullptr ? static_cast<uint32_t>(leadingNumber(seed)) : 1);
    }
    return r.generator();
}

void resetRandom() {
    Random& r = random();
    std::lock_guard<std::mutex> lock(r.mutex);
    r.seeded = false;
}

}  // namespace sim

#include "simulator/core/thread_name.h"

#include <pthread.h>

#include <atomic>

namespace sim {

static thread_local std::string tlsThreadName;

void setThreadName(const char* name) {
    tlsThreadName = name;
    pthread_setname_np(pthread_self(), tlsThreadName.substr(0, 15).c_str());
}

const std::string& threadName() {
    static std::atomic<int> count{0};
    if (tlsThreadName.empty())
        tlsThreadName = "T" + std::to_string(++count);
    return tlsThreadName;
}

}  // namespace sim

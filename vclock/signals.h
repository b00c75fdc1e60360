// Signals on their way from a sender in the domain to a handler in the domain.
#ifndef VCLOCK_SIGNALS_H
#define VCLOCK_SIGNALS_H

#include <stdint.h>

#include <atomic>

namespace vclock {

// Made before a signal is sent, by who has the token. Process: index + 1, 0: nothing is awaited.
// Thread: a slot, 0: the kernel chooses one of the process.
class SentSignal {
 public:
    SentSignal() = default;
    SentSignal(uint32_t process, uint32_t threadSlot, int number);
    // Waits, in real time, until the handler has its place among those that run next. Returns at
    // once when none will run: the signal is blocked, ignored, or ends the process.
    void awaitArrival() const;

 private:
    std::atomic<uint32_t>* arrivals() const;
    uint32_t process_ = 0;
    uint32_t threadSlot_ = 0;
    int number_ = 0;
    uint32_t before_ = 0;
};

}  // namespace vclock

#endif

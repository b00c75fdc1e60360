// What the files of the domain share among themselves: the lock, the token, the search for the
// dead.
#ifndef VCLOCK_DOMAIN_INTERNAL_H
#define VCLOCK_DOMAIN_INTERNAL_H

#include "vclock/domain.h"

namespace vclock {

// The region's lock. A process that died with it leaves every slot readable.
class Locked {
 public:
    Locked();
    ~Locked();
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
};

extern uint32_t myProcess;  // index + 1 of this process

// Chooses who runs next and gives it the token; time jumps when nobody is ready. The caller holds
// the lock, and nobody needs the token any more. Returns the slot to kick, 0 if nobody can run.
// deathsKnown: it has just been looked whether a process was killed.
uint32_t dispatch(bool deathsKnown = false);
// Wakes the owner of a slot that got the token, after the lock is released.
void kick(uint32_t slot);
void makeReady(ThreadSlot& slot, Result result);
void awaitTurn();
// Takes a free slot for a thread of a process, which may run from then on. 0 if there is none. The
// caller holds the lock.
uint32_t takeThreadSlot(uint32_t process);
// Makes the slot the running thread's own.
void bindSelf(uint32_t slot);
// Lets the signals come that were put off while the lock was held.
void takePutOff();
// A futex in shared memory: waits until it is no longer as seen, ns nanoseconds at most, 0 without
// end, and returns 0 or the error; counts it up and wakes all who wait.
int futexWait(std::atomic<uint32_t>* word, uint32_t seen, int64_t ns);
void futexBump(std::atomic<uint32_t>* word);
// The clock of the world outside.
int64_t realNow();
// Looks around for what only real time brings (watch.cpp): one waiting thread of each process does
// it, which is the first that takes the watch.
bool takeWatch();
void dropWatch();
int64_t watchPeriod();
void keepWatch();
// Sees whether one thread keeps all others waiting (stall.cpp).
void lookForStall();
// The report of a deadlock: returns the slot of the thread that begins it.
uint32_t beginReport();
// Has the token to report: says where it waits, then the next one does; the last ends all.
void takePartInReport();
[[noreturn]] void endWithAll();
// Whether the parent hears of the process's end by a signal or a descriptor.
bool isAwaited(const ProcessSlot& process);
// Frees the slots of processes that were killed and hands on the token that one of them had.
void findDeaths();
// Wakes a waiting thread of this process to look for deaths, when no other does.
void passWatch();

}  // namespace vclock

#endif

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
// Frees the slots of processes that were killed and hands on the token that one of them had.
void findDeaths();
// Wakes a waiting thread of this process to look for deaths, when no other does.
void passWatch();

}  // namespace vclock

#endif

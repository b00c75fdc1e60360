// Timers of this process, as the rest of the library must know of them. The caller has the token.
#ifndef VCLOCK_TIMERS_H
#define VCLOCK_TIMERS_H

namespace vclock {

void wakeTimers();           // a clock was set: others may expire first
void endTimers();            // the last thread of the program ends, and theirs with it
void forgetTimers();         // in a new process, which has none
void carryAlarm(bool away);  // a program that replaces this one keeps its alarm: away, or back

}  // namespace vclock

#endif

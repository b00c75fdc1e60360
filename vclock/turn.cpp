// The turn of code that may not have the token: a thread that the domain does not know yet, and
// signal handlers, which come at any moment of a wait.
#include <errno.h>
#include <string.h>

#include "vclock/domain_internal.h"

namespace vclock {

// Says to who sent a signal that it has reached its handler, which has a place among those that
// run next. The thread has a slot more for each handler that it is in already.
static void announce() {
    int saved = errno;
    futexBump(&region->processes[myProcess - 1].arrivals);
    uint32_t threadId = self.slot != 0 ? slotAt(self.slot).threadId : 0;
    for (uint32_t slot = 1; threadId != 0 && slot <= region->slotsUsed; slot++) {
        ThreadSlot& thread = slotAt(slot);
        if (thread.process == myProcess - 1 && thread.threadId == threadId)
            futexBump(&thread.arrivals);
    }
    errno = saved;
}

Turn::Turn(Handler) {
    if (region != nullptr && self.slot != 0 && !self.handing &&
        region->running.load() == self.slot) {
        live_ = true;
        announce();
        return;
    }
    live_ = begin(true);
    if (!live_ && region != nullptr)
        announce();
}

// The hand-over ends with this thread: the wait, whose result stands already, has the token again
// afterwards.
void Turn::beginBorrowed() {
    memcpy(outerState_, reinterpret_cast<unsigned char*>(&slotAt(self.slot).state),
           sizeof outerState_);
    kind_ = Kind::Borrowed;
    outerHanding_ = self.handing;
    self.handing = false;
    outer_ = self.innermost;
    self.innermost = this;
}

bool Turn::begin(bool handler) {
    if (region == nullptr || self.ended || self.locked)
        return false;
    if (self.forks != nullptr && joinAsChild())
        return true;
    if (self.slot != 0 && region->running.load() == self.slot) {
        beginBorrowed();
        if (handler)
            announce();
        return true;
    }
    int saved = errno;
    uint32_t next = 0;
    {
        Locked lock;
        uint32_t outer = self.slot;
        uint32_t slot = takeThreadSlot(myProcess - 1);
        if (slot == 0)
            return false;
        if (outer != 0) {
            kind_ = Kind::Nested;
            outerSlot_ = outer;
            outerNumber_ = self.number;
            outerHanding_ = self.handing;
            outerNested_ = self.nested;
            outerHandled_ = self.handled;
            outerInterruptions_ = self.interruptions;
            outer_ = self.innermost;
            self.innermost = this;
            self.handing = false;
            self.nested = true;
            slotAt(outer).inHandler = 1;
            slotAt(outer).returning = 0;
            if (region->running == outer) {
                // The token came between the look and the lock.
                slotAt(outer).state = State::Ready;
                region->running = 0;
            }
        }
        bindSelf(slot);
        if (outer != 0)
            slotAt(slot).handle = 0;
        if (handler)
            announce();
        // The interrupted code may have given the token away and not yet woken who got it.
        next = region->running == 0 ? dispatch() : region->running.load();
    }
    kick(next);
    awaitTurn();
    errno = saved;
    return true;
}

void Turn::end() {
    // The handler has jumped out of others, or is in a child that it forked.
    if (self.innermost != this)
        return;
    if (kind_ == Kind::Nested) {
        endNested();
        return;
    }
    memcpy(reinterpret_cast<unsigned char*>(&slotAt(self.slot).state), outerState_,
           sizeof outerState_);
    self.handing = outerHanding_;
    self.innermost = outer_;
}

void Turn::endNested() {
    uint32_t next;
    {
        Locked lock;
        slotAt(self.slot).state = State::Free;
        self.slot = outerSlot_;
        self.number = outerNumber_;
        self.nested = outerNested_;
        self.handing = outerHanding_;
        self.innermost = outer_;
        ThreadSlot& outer = slotAt(self.slot);
        outer.inHandler = 0;
        outer.returnMask = self.returnMask;
        outer.returning = self.handled != outerHandled_;
        // The handler was the interruption; time must not jump before the wait hears of it.
        bool interrupts = outer.restartable ? self.interruptions != outerInterruptions_
                                            : self.handled != outerHandled_;
        if (outer.state == State::Waiting && outer.interruptible && interrupts)
            makeReady(outer, Result::Interrupted);
        region->activity++;
        next = dispatch();
    }
    // The wait that goes on after the handler must notice that it is over.
    if (next != 0 && next == self.slot)
        slotAt(next).wake.fetch_add(1);
    kick(next);
}

void Turn::leaveHandlers() {
    while (Turn* turn = self.innermost) {
        if (turn->kind_ == Kind::Nested) {
            Locked lock;
            slotAt(self.slot).state = State::Free;
            self.slot = turn->outerSlot_;
            self.number = turn->outerNumber_;
            self.nested = turn->outerNested_;
            ThreadSlot& outer = slotAt(self.slot);
            outer.inHandler = 0;
            // What it was given stays given, should the jump end inside of the handler.
            if (outer.state == State::Waiting)
                outer.result = Result::Interrupted;
            outer.state = State::Running;
            region->running = self.slot;
            region->activity++;
        }
        self.handing = false;
        self.innermost = turn->outer_;
        // Should the handler go on all the same, its end finds nothing left to do.
        turn->kind_ = Kind::Own;
    }
}

}  // namespace vclock

/*
 * What a case brings up in steps, and takes down again in reverse on every path.
 *
 * A table tells the steps of a bench once; operations and cases walk it:
 *
 *     static const LadderStep<SectionBench> demuxSteps[] = {
 *         {LADDER_CALL("QLX_DemuxInit()", QLX_DemuxInit()),
 *          LADDER_CALL("QLX_DemuxDeInit()", QLX_DemuxDeInit())},
 *         {LADDER_CALL("QLX_DemuxStart(eDemuxId)", QLX_DemuxStart(bench.eDemuxId)),
 *          LADDER_CALL("QLX_DemuxStop(eDemuxId)", QLX_DemuxStop(bench.eDemuxId))},
 *     };
 *
 *     Ladder<SectionBench> ladder(tc, bench, demuxSteps);
 *     if (ladder.up())
 *         work(tc, bench);
 *     ladder.down();
 *
 * What deviates from "each step checked, undone in reverse, each undo checked" stands in the table:
 * a step without an undo, one that only some boards or sources have, one whose undo is tried
 * without a look at its answer, and one behind whose failed undo nothing more is undone.
 */
#ifndef FRAMEWORK_CASE_LADDER_H
#define FRAMEWORK_CASE_LADDER_H

#include <stddef.h>
#include <stdint.h>

#include "framework/case/check.h"

/** How an undo is judged. */
enum LadderUndo {
    /** Checked; the undoing goes on in any case. */
    UNDO_CHECKED,
    /** Its answer is not looked at. */
    UNDO_SILENT,
    /** Checked; when it fails, what lies below stays up. */
    UNDO_OR_STAY,
};

template <typename Bench>
struct LadderStep {
    /** The call as a failed check prints it, and the call. Null: nothing is done on the way up. */
    const char* upText;
    int64_t (*up)(Bench& bench);
    /** Null: there is nothing to undo. */
    const char* downText;
    int64_t (*down)(Bench& bench);
    LadderUndo undo = UNDO_CHECKED;
    /** Whether this bench has the step at all; null: each has. */
    bool (*applies)(const Bench& bench) = nullptr;
};

/** A call of a step, with the text that a failure prints; it may use `bench`. */
#define LADDER_CALL(text, ...) \
    text, []([[maybe_unused]] auto& bench) -> int64_t { return __VA_ARGS__; }
/** In its place: nothing is done. */
#define LADDER_NONE nullptr, nullptr

template <typename Bench>
class Ladder {
 public:
    /** `context`, `bench` and the table live as long as the ladder. At most 32 steps. */
    template <size_t N>
    Ladder(CaseContext& context, Bench& bench, const LadderStep<Bench> (&steps)[N])
        : Ladder(context, bench, steps, N) {
        static_assert(N <= 32, "a bit for each step");
    }
    Ladder(CaseContext& context, Bench& bench, const LadderStep<Bench>* steps, size_t count)
        : tc(context), bench_(bench), steps_(steps), count_(count) {}

    /** Brings up what is not up, in order, at most `count` steps from the bottom. False at the
     * first step that fails; what is up then stays up until down(). */
    bool up(size_t count = SIZE_MAX) {
        for (size_t i = 0; i < count_ && i < count; i++) {
            const LadderStep<Bench>& step = steps_[i];
            if (isUp(i) || (step.applies != nullptr && !step.applies(bench_)))
                continue;
            if (step.up != nullptr && !TC_EXPECT_RET_TEXT(step.upText, step.up(bench_)))
                return false;
            up_ |= 1u << i;
        }
        return true;
    }

    /** Undoes what is up, in reverse, down to the `count` lowest steps. Whether all undos that are
     *  checked were answered with 0. */
    bool down(size_t count = 0) {
        bool good = true;
        for (size_t i = count_; i-- > count;) {
            const LadderStep<Bench>& step = steps_[i];
            if (!isUp(i))
                continue;
            up_ &= ~(1u << i);
            if (step.down == nullptr)
                continue;
            int64_t answer = step.down(bench_);
            if (step.undo == UNDO_SILENT || TC_EXPECT_RET_TEXT(step.downText, answer))
                continue;
            good = false;
            if (step.undo == UNDO_OR_STAY)
                return false;
        }
        return good;
    }

    /** Takes all steps that this bench has as done: for an operation that ends what another one has
     *  begun. */
    void assumeUp() {
        for (size_t i = 0; i < count_; i++) {
            if (steps_[i].applies == nullptr || steps_[i].applies(bench_))
                up_ |= 1u << i;
        }
    }

    bool isUp(size_t step) const {
        return (up_ >> step & 1u) != 0;
    }

 private:
    CaseContext& tc;
    Bench& bench_;
    const LadderStep<Bench>* steps_;
    size_t count_;
    uint32_t up_ = 0;
};

/** Brings a whole ladder up, or, when a step fails, what was up down again. */
template <typename Bench, size_t N>
bool ladderUp(CaseContext& tc, Bench& bench, const LadderStep<Bench> (&steps)[N]) {
    Ladder<Bench> ladder(tc, bench, steps);
    if (ladder.up())
        return true;
    ladder.down();
    return false;
}

/** Takes a whole ladder down that an earlier call has brought up; its `spared` lowest steps stay.
 */
template <typename Bench, size_t N>
bool ladderDown(CaseContext& tc, Bench& bench, const LadderStep<Bench> (&steps)[N],
                size_t spared = 0) {
    Ladder<Bench> ladder(tc, bench, steps);
    ladder.assumeUp();
    return ladder.down(spared);
}

#endif

// What a started decoder reports, and when.
//
// Coded data: the decoder waits for the first access unit that decoding can begin at and that has
// begun to come since the start; when that has come whole and the decoder has worked on it, there
// is a picture (or sound). Picture and clock run together when the clock has reached the first
// picture's time stamp. A new format is told when its first picture is shown. Data that do not
// decode are told once, damage in between not more often than errorPauseUs. What is cut off freezes
// and is gone after a while, unless something comes before.
//
// Signals of inputs and front ends: there is a picture when the decoder has measured it.
//
// Board file, sections VIDEO and AUDIO, in ms: START_MS, from the start to its report; DECODE_MS,
// from the last byte of an access unit to its picture; SIGNAL_MS, the time to measure a signal;
// LOSS_MS, for how long the last picture is kept.
#include <string.h>

#include <algorithm>
#include <condition_variable>
#include <utility>

#include "simulator/av/decoder_state.h"
#include "simulator/core/board.h"

namespace sim {

namespace {

constexpr int64_t never = INT64_MAX;
/** Programs keep few events: a stream with damage everywhere is not told picture by picture. */
constexpr int64_t errorPauseUs = 5000000;
/** Of a stream that grows it is not known whether an access point will come; most have two a
 *  second. */
constexpr int64_t accessWaitUs = 2000000;
/** Of the words of events: what the matching question would be answered. */
constexpr uint32_t yes = 1;
constexpr uint32_t no = 0;

int64_t boardUs(const DecoderKind& kind, const char* key) {
    return board().number(kind.section, key) * 1000;
}

void tell(Decoder& decoder, uint32_t bit, uint32_t word) {
    if (bit != 0)
        decoder.events.push_back({bit, word, {}, decoder.callback, decoder.userData, nullptr});
}

/** Tells information that is another one than the last. */
void tellInfo(const DecoderKind& kind, Decoder& decoder, const DecoderInfo& info) {
    DecoderRun& run = *decoder.run;
    if (run.infoTold && memcmp(&run.info, &info, kind.infoBytes) == 0)
        return;
    run.infoTold = true;
    run.info = info;
    decoder.events.push_back(
        {kind.events.infoChange, 0, info, decoder.callback, decoder.userData, nullptr});
}

/** The next thing that happens by itself. */
struct Step {
    using Take = void (*)(const DecoderKind& kind, Decoder& decoder, const UnitMoment& moment,
                          int64_t now);
    int64_t dueUs = never;
    Take take = nullptr;
    UnitMoment moment = {};

    void consider(int64_t us, Take what, const UnitMoment& at = {}) {
        if (us < dueUs)
            *this = {us, what, at};
    }
};

void takeStart(const DecoderKind& kind, Decoder& decoder, const UnitMoment&, int64_t) {
    decoder.run->startTold = true;
    tell(decoder, kind.events.startDone, yes);
}

/** The first picture or sound is there. */
void takePicture(const DecoderKind& kind, Decoder& decoder, const UnitMoment& moment, int64_t) {
    DecoderRun& run = *decoder.run;
    run.picture = true;
    run.cutUs = 0;
    run.shown = run.feed;
    run.first = moment;
    run.changesFromUs = moment.beginUs + 1;
    run.errorsFromUs = std::max(run.errorsFromUs, moment.beginUs + 1);
    DecoderInfo info = {};
    if (run.feed.kind == DecoderFeed::Kind::signal)
        kind.ofSignal(decoder, run.feed.signal, &info);
    else
        info = kind.ofUnit(decoder, *run.feed.index, moment.unit);
    if (!run.firstTold)
        tell(decoder, kind.events.frameReady, yes);
    run.firstTold = true;
    tellInfo(kind, decoder, info);
}

void takeSync(const DecoderKind& kind, Decoder& decoder, const UnitMoment&, int64_t) {
    decoder.run->synced = true;
    tell(decoder, kind.events.syncDone, yes);
}

void loseSync(const DecoderKind& kind, Decoder& decoder) {
    if (decoder.run->synced)
        tell(decoder, kind.events.syncLost, no);
    decoder.run->synced = false;
}

void takeChange(const DecoderKind& kind, Decoder& decoder, const UnitMoment& moment, int64_t) {
    decoder.run->changesFromUs = moment.beginUs + 1;
    tellInfo(kind, decoder, kind.ofUnit(decoder, *decoder.run->feed.index, moment.unit));
}

void takeDamage(const DecoderKind& kind, Decoder& decoder, const UnitMoment& moment, int64_t) {
    decoder.run->errorsFromUs = moment.beginUs + errorPauseUs;
    tell(decoder, kind.events.decodeError, yes);
}

void takeUseless(const DecoderKind& kind, Decoder& decoder, const UnitMoment&, int64_t) {
    decoder.run->uselessTold = true;
    tell(decoder, kind.events.decodeError, yes);
}

/** The last picture has been kept long enough. */
void takeGone(const DecoderKind& kind, Decoder& decoder, const UnitMoment&, int64_t) {
    decoder.run->picture = false;
    decoder.run->cutUs = 0;
    tellInfo(kind, decoder, kind.absent());
}

void takePictureCaptions(const DecoderKind&, Decoder& decoder, const UnitMoment&, int64_t) {
    takeCaptions(decoder);
}

/** When the clock that the decoder follows comes. */
int64_t clockUs(Decoder& decoder, int64_t now) {
    DecoderRun& run = *decoder.run;
    if (run.clockUs != DecoderRun::unknown)
        return run.clockUs;
    const TsStream& stream = *run.feed.stream;
    // Of a stream that grows all that is known has come already.
    int64_t fromUs = stream.lineage() != 0 ? run.fromUs : now;
    int64_t comesUs = now;
    if (decoder.syncSet && decoder.sync.eSyncMode == QLX_VIDEOSYNC_MODE_PCR_MASTER)
        comesUs = nextClockUs(stream, decoder.sync.uPcrPid, fromUs);
    else if (decoder.syncSet && decoder.sync.eSyncMode == QLX_VIDEOSYNC_MODE_AUDIO_MASTER)
        comesUs = nextPacketUs(stream, decoder.sync.uPid, fromUs);
    if (comesUs != never || stream.lineage() == 0)
        run.clockUs = comesUs;
    return comesUs;
}

void considerStream(const DecoderKind& kind, Decoder& decoder, int64_t now, Step* step) {
    const DecoderRun& run = *decoder.run;
    if (run.feed.index == nullptr)
        return;
    const TsStream& stream = *run.feed.stream;
    const EsUnits& index = *run.feed.index;
    int64_t decodeUs = boardUs(kind, "DECODE_MS");
    // The clock is listened to from the start on.
    int64_t clockComesUs = kind.events.syncDone != 0 ? clockUs(decoder, now) : never;
    uint8_t damage = unit_damaged;
    if (!run.decoding()) {
        auto first = nextUnit(stream, index, run.fromUs, unit_access | unit_decoded);
        if (!first.has_value()) {
            int64_t come = nextPacketUs(stream, run.pid, run.fromUs);
            if (!run.uselessTold && come != never)
                step->consider(come + (stream.lineage() != 0 ? accessWaitUs : decodeUs),
                               takeUseless);
            return;
        }
        step->consider(first->arrivedUs + decodeUs, takePicture, *first);
        // Without a picture only what decoding could begin at is tried.
        damage |= unit_access;
    } else {
        if (!run.synced)
            step->consider(std::max(clockComesUs, run.first.shownUs), takeSync);
        auto change = nextUnit(stream, index, run.changesFromUs, unit_newFormat);
        if (change.has_value())
            step->consider(std::max(change->shownUs, change->arrivedUs + decodeUs), takeChange,
                           *change);
        step->consider(nextCaptionsUs(decoder, now), takePictureCaptions);
    }
    auto damaged = nextUnit(stream, index, run.errorsFromUs, damage);
    if (damaged.has_value())
        step->consider(damaged->arrivedUs + decodeUs, takeDamage, *damaged);
}

Step nextStep(const DecoderKind& kind, Decoder& decoder, int64_t now) {
    const DecoderRun& run = *decoder.run;
    Step step;
    int64_t startUs = run.startedUs + boardUs(kind, "START_MS");
    if (!run.startTold) {
        step.consider(startUs, takeStart);
        return step;
    }
    if (run.pausedUs == 0 && run.feed.kind == DecoderFeed::Kind::stream)
        considerStream(kind, decoder, now, &step);
    DecoderInfo info;
    if (run.pausedUs == 0 && run.feed.kind == DecoderFeed::Kind::signal && !run.decoding() &&
        kind.ofSignal(decoder, run.feed.signal, &info))
        step.consider(std::max(run.fromUs, startUs) + boardUs(kind, "SIGNAL_MS"), takePicture);
    if (run.picture && run.cutUs != 0)
        step.consider(run.cutUs + boardUs(kind, "LOSS_MS"), takeGone);
    return step;
}

/** What comes from now on begins anew; what is shown freezes. */
void cutRun(const DecoderKind& kind, Decoder& decoder, int64_t now) {
    DecoderRun& run = *decoder.run;
    if (run.decoding())
        run.cutUs = now;
    loseSync(kind, decoder);
    run.fromUs = now;
    run.errorsFromUs = now;
    run.clockUs = DecoderRun::unknown;
    run.uselessTold = false;
    cutCaptions(run, now);
}

/** The stream goes on with other bytes: what was found in it is looked for again. */
void takeNewIndex(const DecoderKind& kind, Decoder& decoder, int64_t now) {
    DecoderRun& run = *decoder.run;
    if (!run.decoding())
        return;
    auto first =
        nextUnit(*run.feed.stream, *run.feed.index, run.first.beginUs, unit_access | unit_decoded);
    if (!first.has_value()) {
        cutRun(kind, decoder, now);
        return;
    }
    run.first = *first;
    run.shown = run.feed;
    refreshInfo(kind, decoder);
}

/** Looks what flows now. */
void look(const DecoderKind& kind, Decoder& decoder, int64_t now) {
    DecoderRun& run = *decoder.run;
    DecoderFeed feed = lookAtSource(decoder.source, run.feed, now);
    bool goesOn = feedGoesOn(run.feed, feed);
    run.feed = std::move(feed);
    if (!goesOn)
        cutRun(kind, decoder, now);
    else if (run.decoding() && run.feed.kind == DecoderFeed::Kind::signal) {
        DecoderInfo info = {};
        run.shown = run.feed;
        if (kind.ofSignal(decoder, run.feed.signal, &info))
            tellInfo(kind, decoder, info);
        else
            cutRun(kind, decoder, now);
    }
}

void tellProgram(const DecoderKind& kind, const Decoder& decoder, DecoderEvent& event) {
    if (event.captions != nullptr) {
        tellCaptions(decoder, *event.captions);
        return;
    }
    if (event.callback == nullptr)
        return;
    std::vector<Value> values = {marked("event", &event.bit)};
    bool isInfo = event.bit == kind.events.infoChange;
    bool isBare = event.bit == kind.events.startDone;
    if (isInfo)
        values.push_back(kind.infoValue(&event.info));
    else if (!isBare)
        values.push_back(value("data", &event.word));
    void* data = isInfo ? static_cast<void*>(&event.info) : &event.word;
    deliver(kind.callbackName, format("%s=%u", kind.argument, decoder.number), values, [&] {
        event.callback(decoder.number, event.userData, event.bit, isBare ? nullptr : data);
    });
}

void work(DecoderFamily& family, Decoder& decoder, uint64_t turn);

void postWork(DecoderFamily& family, Decoder& decoder, int64_t dueUs) {
    int64_t delayMs = std::max<int64_t>(0, (dueUs - nowUs() + 999) / 1000);
    uint64_t turn = ++decoder.turn;
    family.threads[decoder.number]->post(
        &decoder, delayMs, [&family, &decoder, turn] { work(family, decoder, turn); });
}

/** Whether the decoder has to find out what a stream is that it has not met yet. */
bool needsIndex(const Decoder& decoder) {
    const DecoderRun& run = *decoder.run;
    return run.feed.kind == DecoderFeed::Kind::stream && run.feed.index == nullptr;
}

/** Finds it out without the lock, for that may take long. */
void findIndex(DecoderFamily& family, Decoder& decoder, std::unique_lock<std::mutex>& lock) {
    TsStreamPtr stream = decoder.run->feed.stream;
    uint32_t pid = decoder.run->pid;
    uint32_t format = decoder.run->format;
    uint64_t turn = decoder.turn;
    lock.unlock();
    std::shared_ptr<const EsUnits> index;
    if (pid < tsPidCount)
        index = family.kind.index(stream, static_cast<uint16_t>(pid), format);
    if (index == nullptr)
        index = std::make_shared<const EsUnits>();
    lock.lock();
    if (decoder.turn != turn || decoder.run->feed.stream != stream)
        return;
    decoder.run->feed.index = index;
    takeNewIndex(family.kind, decoder, nowUs());
}

/** Whether the program wants captions of data that have not been looked through for them. */
bool needsCaptions(const DecoderKind& kind, const Decoder& decoder) {
    const DecoderRun& run = *decoder.run;
    return kind.captions != nullptr && decoder.captions.any() &&
           run.feed.kind == DecoderFeed::Kind::stream && run.feed.index != nullptr &&
           run.captions.units != run.feed.index;
}

/** Looks through them without the lock. */
void findCaptions(DecoderFamily& family, Decoder& decoder, std::unique_lock<std::mutex>& lock) {
    TsStreamPtr stream = decoder.run->feed.stream;
    std::shared_ptr<const EsUnits> units = decoder.run->feed.index;
    uint32_t pid = decoder.run->pid;
    uint32_t format = decoder.run->format;
    uint64_t turn = decoder.turn;
    lock.unlock();
    std::shared_ptr<const CaptionIndex> index;
    if (pid < tsPidCount)
        index = family.kind.captions(stream, static_cast<uint16_t>(pid), format, *units);
    lock.lock();
    if (decoder.turn != turn || decoder.run->feed.index != units)
        return;
    decoder.run->captions.index = index;
    decoder.run->captions.units = units;
    cutCaptions(*decoder.run, nowUs());
}

/** The job of a running decoder: reports what is due, then waits for what comes next. */
void work(DecoderFamily& family, Decoder& decoder, uint64_t turn) {
    for (;;) {
        std::unique_lock<std::mutex> lock(family.mutex);
        if (decoder.turn != turn || decoder.run == nullptr)
            return;
        int64_t now = nowUs();
        look(family.kind, decoder, now);
        if (needsIndex(decoder)) {
            findIndex(family, decoder, lock);
            continue;
        }
        if (needsCaptions(family.kind, decoder)) {
            findCaptions(family, decoder, lock);
            continue;
        }
        if (decoder.events.empty()) {
            Step step = nextStep(family.kind, decoder, now);
            if (step.dueUs > now) {
                if (step.dueUs != never)
                    postWork(family, decoder, step.dueUs);
                return;
            }
            step.take(family.kind, decoder, step.moment, now);
            continue;
        }
        DecoderEvent event = decoder.events.front();
        decoder.events.pop_front();
        lock.unlock();
        tellProgram(family.kind, decoder, event);
    }
}

/** Tells what is in the queue. On the decoder's thread. */
void tellQueue(DecoderFamily& family, Decoder& decoder) {
    for (;;) {
        std::unique_lock<std::mutex> lock(family.mutex);
        if (decoder.events.empty())
            return;
        DecoderEvent event = decoder.events.front();
        decoder.events.pop_front();
        lock.unlock();
        tellProgram(family.kind, decoder, event);
    }
}

/** What a thread waits at for a job, done or dropped: the job holds the only pass. */
struct Gate {
    std::mutex mutex;
    std::condition_variable changed;
    bool open = false;
};
struct Pass {
    std::shared_ptr<Gate> gate;
    explicit Pass(std::shared_ptr<Gate> of) : gate(std::move(of)) {}
    Pass(const Pass&) = delete;
    Pass& operator=(const Pass&) = delete;
    ~Pass() {
        std::lock_guard<std::mutex> lock(gate->mutex);
        gate->open = true;
        gate->changed.notify_all();
    }
};

}  // namespace

void wakeDecoder(DecoderFamily& family, Decoder& decoder) {
    if (decoder.run != nullptr)
        postWork(family, decoder, 0);
}

void endRun(const DecoderKind& kind, Decoder& decoder) {
    tellInfo(kind, decoder, kind.absent());
    tell(decoder, kind.events.stopDone, yes);
    decoder.run = nullptr;
    decoder.turn++;
}

void flushRun(const DecoderKind& kind, Decoder& decoder) {
    DecoderRun& run = *decoder.run;
    cutRun(kind, decoder, nowUs());
    run.firstTold = false;
    if (!kind.flushEndsInfo || !run.picture)
        return;
    run.picture = false;
    run.cutUs = 0;
    tellInfo(kind, decoder, kind.absent());
}

void pauseRun(const DecoderKind& kind, Decoder& decoder, bool paused) {
    DecoderRun& run = *decoder.run;
    if (paused == (run.pausedUs != 0))
        return;
    int64_t now = nowUs();
    run.pausedUs = paused ? now : 0;
    if (paused)
        return;
    run.errorsFromUs = std::max(run.errorsFromUs, now);
    cutCaptions(run, now);
    if (!run.decoding())
        run.fromUs = now;
    refreshInfo(kind, decoder);
}

void refreshInfo(const DecoderKind& kind, Decoder& decoder) {
    DecoderRun& run = *decoder.run;
    if (!run.decoding() || run.pausedUs != 0)
        return;
    DecoderInfo info = {};
    if (run.feed.kind == DecoderFeed::Kind::signal) {
        kind.ofSignal(decoder, run.feed.signal, &info);
    } else {
        std::optional<UnitMoment> moment = shownMoment(run);
        if (!moment.has_value())
            return;
        run.changesFromUs = moment->beginUs + 1;
        info = kind.ofUnit(decoder, *run.shown.index, moment->unit);
    }
    tellInfo(kind, decoder, info);
}

void refreshSync(const DecoderKind& kind, Decoder& decoder) {
    DecoderRun& run = *decoder.run;
    run.clockUs = DecoderRun::unknown;
    if (run.synced && run.feed.kind == DecoderFeed::Kind::stream &&
        clockUs(decoder, nowUs()) == never)
        loseSync(kind, decoder);
}

static int64_t shownAtUs(const DecoderRun& run) {
    if (run.cutUs != 0)
        return run.pausedUs != 0 ? std::min(run.cutUs, run.pausedUs) : run.cutUs;
    return run.pausedUs != 0 ? run.pausedUs : nowUs();
}

std::optional<UnitMoment> shownMoment(const DecoderRun& run) {
    if (!run.picture || run.shown.kind != DecoderFeed::Kind::stream)
        return std::nullopt;
    std::optional<UnitMoment> shown =
        unitShown(*run.shown.stream, *run.shown.index, run.first.beginUs, shownAtUs(run));
    // A first picture whose time has not come yet is shown all the same.
    return shown.has_value() ? shown : run.first;
}

uint64_t streamClock(const DecoderRun& run) {
    if (!run.picture || run.shown.kind != DecoderFeed::Kind::stream || run.first.pts == noStamp)
        return 0;
    constexpr uint64_t range = UINT64_C(1) << 33;
    int64_t sinceFirstUs = shownAtUs(run) - run.first.shownUs;
    return (run.first.pts + range + static_cast<uint64_t>(sinceFirstUs * 9 / 100)) % range;
}

DecoderOrigin originOf(const DecoderRun& run) {
    DecoderOrigin origin;
    if (!run.picture)
        return origin;
    origin.atUs = shownAtUs(run);
    if (run.shown.kind == DecoderFeed::Kind::signal) {
        origin.kind = DecoderOrigin::Kind::signal;
        origin.signalIndex = run.shown.signalIndex;
        return origin;
    }
    origin.kind = DecoderOrigin::Kind::stream;
    origin.stream = run.shown.stream;
    origin.pid = static_cast<uint16_t>(run.pid);
    origin.sinceUs = run.first.beginUs;
    return origin;
}

void drainDecoder(DecoderFamily& family, Decoder& decoder) {
    {
        std::lock_guard<std::mutex> lock(family.mutex);
        if (decoder.events.empty())
            return;
    }
    EventThread& thread = *family.threads[decoder.number];
    if (thread.isCurrent()) {
        tellQueue(family, decoder);
        return;
    }
    auto gate = std::make_shared<Gate>();
    thread.post(&decoder, 0, [&family, &decoder, pass = std::make_shared<Pass>(gate)] {
        tellQueue(family, decoder);
    });
    std::unique_lock<std::mutex> lock(gate->mutex);
    gate->changed.wait(lock, [&] { return gate->open; });
}

void quietDecoder(DecoderFamily& family, Decoder& decoder) {
    family.threads[decoder.number]->cancel(&decoder);
    std::lock_guard<std::mutex> lock(family.mutex);
    wakeDecoder(family, decoder);
}

}  // namespace sim

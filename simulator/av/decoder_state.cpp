// The states of video and audio decoders, and which call they refuse.
//
// State rules: initialisation is a flag, its end closes all. A decoder opens once, on a source that
// is up; one that is open on a player gives way to an open on another kind of source. It is
// registered once, started once, and asked, flushed and paused in between. A close of a closed one
// and a stop of a stopped one succeed and report nothing. Numbers and pointers are looked at first.
//
// What a stop, a close or the end of the service reports has been told when the call returns.
#include "simulator/av/decoder_state.h"

#include <utility>
#include <vector>

#include "simulator/core/board.h"

namespace sim {

namespace {

bool isPlayer(uint32_t kind) {
    return kind == QLX_SOURCE_TYPE_LOCAL_PLAYER || kind == QLX_SOURCE_TYPE_STREAM_INJECT;
}

bool exists(const DecoderFamily& family, uint32_t number) {
    return number < decoderCount(family.kind);
}

/** Whether a decoder that is not open may be registered: the second of the pair that serves the
 *  stream player, whose first one is open for it. */
bool isSecondOfPair(const DecoderFamily& family, uint32_t number) {
    const Decoder& first = family.decoders[0];
    return family.kind.registersPair && number == 1 && first.open &&
           first.source.kind == QLX_SOURCE_TYPE_STREAM_INJECT;
}

void setRunning(DecoderFamily& family, uint32_t number, bool running) {
    uint32_t bit = 1u << number;
    if (running)
        family.running |= bit;
    else
        family.running &= ~bit;
}

void stopRun(DecoderFamily& family, Decoder& decoder) {
    setRunning(family, decoder.number, false);
    endRun(family.kind, decoder);
}

/** As after power on, but for what is still to be told. */
void forget(DecoderFamily& family, Decoder& decoder) {
    setRunning(family, decoder.number, false);
    decoder.turn++;
    decoder.open = false;
    decoder.source = {};
    decoder.callback = nullptr;
    decoder.userData = nullptr;
    decoder.run = nullptr;
    decoder.audio = {};
    decoder.captions = {};
    decoder.syncSet = false;
    decoder.sync = {};
}

void closeDecoder(DecoderFamily& family, Decoder& decoder) {
    if (decoder.run != nullptr)
        stopRun(family, decoder);
    forget(family, decoder);
}

void settle(DecoderFamily& family, Decoder& decoder) {
    drainDecoder(family, decoder);
    quietDecoder(family, decoder);
}

/** Lets the running decoders of a family look at their sources again. */
void wakeRunning(DecoderFamily& family) {
    if (family.running == 0)
        return;
    for (Decoder& decoder : family.decoders) {
        if ((family.running & 1u << decoder.number) == 0)
            continue;
        // The caller may hold a lock of its own: the decoder's thread does the rest.
        family.threads[decoder.number]->post(&decoder, 0, [&family, &decoder] {
            std::lock_guard<std::mutex> lock(family.mutex);
            wakeDecoder(family, decoder);
        });
    }
}

/** All families that there are; none is ever destroyed. */
struct Families {
    std::mutex mutex;
    std::vector<DecoderFamily*> all;
};
Families& families() {
    static Families* instance = new Families;
    return *instance;
}

void wakeAll() {
    std::lock_guard<std::mutex> lock(families().mutex);
    for (DecoderFamily* family : families().all)
        wakeRunning(*family);
}

const SignalListener onSignal{[](uint32_t, uint32_t) { wakeAll(); }};

}  // namespace

uint32_t decoderCount(const DecoderKind& kind) {
    int64_t count = board().number("CAPABILITY", kind.countKey);
    return count < 0 || count > maxDecoders ? maxDecoders : static_cast<uint32_t>(count);
}

DecoderFamily::DecoderFamily(const DecoderKind& decoderKind) : kind(decoderKind) {
    static bool listening = [] {
        onDemuxChange([](uint32_t) { wakeAll(); });
        return true;
    }();
    (void)listening;
    {
        std::lock_guard<std::mutex> lock(families().mutex);
        families().all.push_back(this);
    }
    for (uint32_t number = 0; number < maxDecoders; number++) {
        decoders[number].number = number;
        // The names last as long as the threads.
        static const char* const names[][maxDecoders] = {
            {"video0", "video1", "video2", "video3"},
            {"audio0", "audio1", "audio2", "audio3"},
        };
        threads[number] = new EventThread(names[kind.events.frameReady != 0 ? 0 : 1][number]);
    }
}

int32_t refusalOf(const DecoderFamily& family, uint32_t number) {
    if (!exists(family, number))
        return family.kind.invalidPara;
    if (!family.initialised || !family.decoders[number].open)
        return QLX_FAILED;
    return QLX_SUCCESS;
}

static int32_t runRefusalOf(const DecoderFamily& family, uint32_t number) {
    int32_t refusal = refusalOf(family, number);
    if (refusal == QLX_SUCCESS && family.decoders[number].run == nullptr)
        return QLX_FAILED;
    return refusal;
}

int32_t decodersInit(DecoderFamily& family) {
    std::lock_guard<std::mutex> lock(family.mutex);
    family.initialised = true;
    return QLX_SUCCESS;
}

int32_t decodersDeInit(DecoderFamily& family) {
    {
        std::lock_guard<std::mutex> lock(family.mutex);
        family.initialised = false;
        for (Decoder& decoder : family.decoders)
            closeDecoder(family, decoder);
    }
    for (Decoder& decoder : family.decoders)
        settle(family, decoder);
    return QLX_SUCCESS;
}

int32_t decoderOpen(DecoderFamily& family, uint32_t number, const DecoderSource* source) {
    {
        std::lock_guard<std::mutex> lock(family.mutex);
        if (!exists(family, number) || source == nullptr || !isSourceKind(source->kind))
            return family.kind.invalidPara;
        Decoder& decoder = family.decoders[number];
        bool takenOver =
            decoder.open && isPlayer(decoder.source.kind) && source->kind != decoder.source.kind;
        if (!family.initialised || (decoder.open && !takenOver) || !sourceIsUp(*source))
            return QLX_FAILED;
        if (takenOver) {
            // Nobody hears of it: the player has lost the decoder.
            forget(family, decoder);
            decoder.events.clear();
        }
        decoder.open = true;
        decoder.source = *source;
    }
    quietDecoder(family, family.decoders[number]);
    return QLX_SUCCESS;
}

int32_t decoderClose(DecoderFamily& family, uint32_t number) {
    {
        std::lock_guard<std::mutex> lock(family.mutex);
        if (!exists(family, number))
            return family.kind.invalidPara;
        if (!family.initialised)
            return QLX_FAILED;
        closeDecoder(family, family.decoders[number]);
    }
    settle(family, family.decoders[number]);
    return QLX_SUCCESS;
}

int32_t decoderRegister(DecoderFamily& family, uint32_t number, void* userData,
                        DecoderCallback callback) {
    std::lock_guard<std::mutex> lock(family.mutex);
    if (!exists(family, number) || callback == nullptr)
        return family.kind.invalidPara;
    Decoder& decoder = family.decoders[number];
    if (!family.initialised || (!decoder.open && !isSecondOfPair(family, number)) ||
        decoder.callback != nullptr)
        return QLX_FAILED;
    decoder.callback = callback;
    decoder.userData = userData;
    return QLX_SUCCESS;
}

int32_t decoderUnRegister(DecoderFamily& family, uint32_t number, DecoderCallback callback) {
    {
        std::lock_guard<std::mutex> lock(family.mutex);
        if (!exists(family, number) || callback == nullptr)
            return family.kind.invalidPara;
        Decoder& decoder = family.decoders[number];
        if (!family.initialised || decoder.callback != callback)
            return QLX_FAILED;
        decoder.callback = nullptr;
        decoder.userData = nullptr;
        decoder.events.clear();
    }
    quietDecoder(family, family.decoders[number]);
    return QLX_SUCCESS;
}

int32_t decoderStart(DecoderFamily& family, uint32_t number, uint32_t format, uint32_t pid) {
    std::lock_guard<std::mutex> lock(family.mutex);
    int32_t refusal = refusalOf(family, number);
    if (refusal != QLX_SUCCESS)
        return refusal;
    Decoder& decoder = family.decoders[number];
    if (decoder.run != nullptr)
        return QLX_FAILED;
    decoder.run = std::make_unique<DecoderRun>();
    decoder.run->format = format;
    decoder.run->pid = pid;
    decoder.run->startedUs = nowUs();
    setRunning(family, number, true);
    wakeDecoder(family, decoder);
    return QLX_SUCCESS;
}

int32_t decoderStop(DecoderFamily& family, uint32_t number) {
    {
        std::lock_guard<std::mutex> lock(family.mutex);
        int32_t refusal = refusalOf(family, number);
        if (refusal != QLX_SUCCESS)
            return refusal;
        Decoder& decoder = family.decoders[number];
        if (decoder.run != nullptr)
            stopRun(family, decoder);
        decoder.audio.describes = false;
    }
    drainDecoder(family, family.decoders[number]);
    return QLX_SUCCESS;
}

int32_t decoderFlush(DecoderFamily& family, uint32_t number) {
    std::lock_guard<std::mutex> lock(family.mutex);
    int32_t refusal = runRefusalOf(family, number);
    if (refusal != QLX_SUCCESS)
        return refusal;
    flushRun(family.kind, family.decoders[number]);
    wakeDecoder(family, family.decoders[number]);
    return QLX_SUCCESS;
}

int32_t decoderPause(DecoderFamily& family, uint32_t number, bool paused) {
    std::lock_guard<std::mutex> lock(family.mutex);
    int32_t refusal = runRefusalOf(family, number);
    if (refusal != QLX_SUCCESS)
        return refusal;
    pauseRun(family.kind, family.decoders[number], paused);
    wakeDecoder(family, family.decoders[number]);
    return QLX_SUCCESS;
}

int32_t decoderSetSync(DecoderFamily& family, uint32_t number, const QLX_SyncParams& params) {
    std::lock_guard<std::mutex> lock(family.mutex);
    int32_t refusal = refusalOf(family, number);
    if (refusal != QLX_SUCCESS)
        return refusal;
    Decoder& decoder = family.decoders[number];
    decoder.syncSet = true;
    decoder.sync = params;
    if (decoder.run != nullptr)
        refreshSync(family.kind, decoder);
    wakeDecoder(family, decoder);
    return QLX_SUCCESS;
}

uint32_t decoderState(const Decoder& decoder) {
    if (decoder.run == nullptr)
        return QLX_VIDEO_STATE_STOPPED;
    return decoder.run->pausedUs != 0 ? QLX_VIDEO_STATE_PAUSED : QLX_VIDEO_STATE_STARTED;
}

void resetDecoders(DecoderFamily& family) {
    for (EventThread* thread : family.threads)
        thread->cancelAll();
    std::lock_guard<std::mutex> lock(family.mutex);
    family.initialised = false;
    for (Decoder& decoder : family.decoders) {
        forget(family, decoder);
        decoder.events.clear();
    }
}

void describeDecoders(DecoderFamily& family, std::string* out) {
    std::lock_guard<std::mutex> lock(family.mutex);
    if (family.initialised)
        *out += format("%s initialised\n", family.kind.name);
    for (const Decoder& decoder : family.decoders) {
        const std::pair<bool, const char*> lines[] = {
            {decoder.open, "open"},
            {decoder.callback != nullptr, "registered"},
            {decoder.run != nullptr, "started"},
            {decoder.audio.describes, "description started"},
            {decoder.captions.callback != nullptr, "captions registered"},
            {decoder.captions.any(), "captions started"},
        };
        for (const auto& [is, what] : lines) {
            if (is)
                *out += format("%s %u %s\n", family.kind.name, decoder.number, what);
        }
    }
}

}  // namespace sim

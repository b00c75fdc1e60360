// Injectors: one a demultiplexer, each with a thread on which it plays and reports.
//
// State rules: initialisation is a flag, its end closes all. An injector may be opened on a
// demultiplexer that is closed. Capability, free size, writing and flushing need it open, not
// started. Stop empties the buffer. Handles, pointers and values are looked at first.
//
// While it is started and not paused, an injector plays: every step the packets whose time has come
// leave the buffer for the demultiplexer, into a stream that grows (live_stream.h). When the buffer
// has been empty for a while, everything is played.
//
// Board file, section INJECT: BUFFER_KB, of the buffer; DONE_MS, from the last packet until
// everything is told to be played.
#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

#include "platform/qlx_dmxinject.h"
#include "simulator/core/board.h"
#include "simulator/core/family.h"
#include "simulator/core/sim.h"
#include "simulator/demux/demux.h"
#include "simulator/media/live_index.h"
#include "simulator/record/inject_queue.h"
#include "simulator/stream/live_stream.h"
#include "simulator/world/broadcast.h"

namespace sim {

SIM_RECORD(QLX_DmxInjectOpenParam, SIM_MEMBER(QLX_DmxInjectOpenParam, eDemuxId),
           SIM_MEMBER(QLX_DmxInjectOpenParam, uReserved),
           SIM_MEMBER(QLX_DmxInjectOpenParam, uPacketSize))
SIM_RECORD(QLX_DmxInjectCapability, SIM_MEMBER(QLX_DmxInjectCapability, uTotalSize),
           SIM_MEMBER(QLX_DmxInjectCapability, uChunkSize))

namespace {

constexpr int64_t stepUs = 40000;
constexpr int64_t ticksPerUs = 27;
constexpr uint32_t chunkBytes = 98304;

struct Injector {
    uint32_t handle = 0;
    uint32_t demux = 0;
    bool started = false;
    bool paused = false;
    int32_t speed = QLX_DMXINJECT_SPEED_NORMAL;
    QLX_DmxInjectCallback callback = nullptr;
    void* userData = nullptr;

    std::unique_ptr<InjectQueue> queue;
    /** While it is started. */
    std::unique_ptr<LiveStreamMaker> stream;
    /** When the next packet goes out, periods of 27 MHz of the monotonic clock. */
    int64_t dueTicks = 0;
    /** Since when there has been nothing to play; 0: there is, or it has been told. */
    int64_t emptySinceUs = 0;
    /** The job that counts; an earlier one that is still queued does nothing. */
    uint64_t turn = 0;
    int64_t jobUs = 0;
};
using InjectorPtr = std::shared_ptr<Injector>;

struct InjectState {
    std::mutex mutex;
    bool initialised = false;
    std::map<uint32_t, InjectorPtr> injectors;
    uint32_t lastHandle = 0;
};

InjectState& state() {
    static InjectState* instance = new InjectState;
    return *instance;
}

EventThread& threadOf(uint32_t demux) {
    static EventThread* threads[demuxCount] = {
        new EventThread("inject0"), new EventThread("inject1"), new EventThread("inject2"),
        new EventThread("inject3")};
    return *threads[demux];
}

size_t bufferBytes() {
    return static_cast<size_t>(board().number("INJECT", "BUFFER_KB")) << 10;
}

/** Tells the program, on the injector's thread. */
void tell(const InjectorPtr& injector, uint32_t event) {
    threadOf(injector->demux).post(injector.get(), 0, [injector, event] {
        QLX_DmxInjectCallback callback = nullptr;
        void* userData = nullptr;
        {
            std::lock_guard<std::mutex> lock(state().mutex);
            callback = injector->callback;
            userData = injector->userData;
        }
        uint32_t number = event;
        if (callback != nullptr)
            deliver("InjectEvent", format("inject=%u", injector->handle),
                    {marked("event", &number)},
                    [&] { callback(injector->handle, number, userData); });
    });
}

/** Lets out what is due by now. Gives the packets. Called with the state locked. */
std::vector<uint8_t> play(Injector& injector, int64_t nowTicks) {
    std::vector<uint8_t> packets;
    InjectQueue& queue = *injector.queue;
    if (injector.paused || queue.empty())
        return packets;
    // What comes too late goes out at once, and what follows keeps its distance.
    injector.dueTicks = std::max(injector.dueTicks, nowTicks - stepUs * ticksPerUs);
    while (!queue.empty() && injector.dueTicks <= nowTicks) {
        const uint8_t* packet = queue.front();
        injector.stream->add(static_cast<uint64_t>(injector.dueTicks), packet);
        packets.insert(packets.end(), packet, packet + tsPacketBytes);
        auto ticks = static_cast<int64_t>(queue.pop());
        injector.dueTicks += ticks * QLX_DMXINJECT_SPEED_NORMAL / std::abs(injector.speed);
    }
    return packets;
}

/** Notes whether there is something to play. True when there has been nothing long enough. Called
 *  with the state locked. */
bool isPlayed(Injector& injector, bool played, int64_t nowUs) {
    if (injector.paused || !injector.queue->empty()) {
        injector.emptySinceUs = 0;
        return false;
    }
    if (played)
        injector.emptySinceUs = nowUs;
    if (injector.emptySinceUs == 0 ||
        nowUs - injector.emptySinceUs < board().number("INJECT", "DONE_MS") * 1000)
        return false;
    injector.emptySinceUs = 0;
    return true;
}

void work(const InjectorPtr& injector, uint64_t turn);

/** Called with the state locked. */
void schedule(const InjectorPtr& injector) {
    int64_t now = nowUs();
    while (injector->jobUs <= now)
        injector->jobUs += stepUs;
    uint64_t turn = ++injector->turn;
    threadOf(injector->demux)
        .post(injector.get(), (injector->jobUs - now + 999) / 1000,
              [injector, turn] { work(injector, turn); });
}

void work(const InjectorPtr& injector, uint64_t turn) {
    std::vector<uint8_t> packets;
    TsStreamPtr view;
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        if (!injector->started || injector->turn != turn)
            return;
        int64_t now = nowUs();
        packets = play(*injector, now * ticksPerUs);
        if (!packets.empty())
            view = injector->stream->view();
        if (isPlayed(*injector, !packets.empty(), now))
            tell(injector, QLX_DMXINJECT_EVENT_DATA_PLAYBACK_DONE);
        schedule(injector);
    }
    if (view == nullptr)
        return;
    demuxFeed(injector->demux, packets.data(), packets.size() / tsPacketBytes);
    demuxInject(injector->demux, view);
}

/** Null for a handle that is none. Called with the state locked. */
InjectorPtr find(uint32_t handle) {
    auto found = state().injectors.find(handle);
    return found != state().injectors.end() ? found->second : nullptr;
}

/** Ends playing. Called with the state locked. */
void endPlay(Injector& injector) {
    injector.started = false;
    injector.paused = false;
    injector.turn++;
    injector.queue->clear();
    injector.stream = nullptr;
    injector.emptySinceUs = 0;
}

/** Waits for what runs on the injector's thread, without the lock, and ends the stream. */
void await(const InjectorPtr& injector) {
    threadOf(injector->demux).cancel(injector.get());
    demuxInject(injector->demux, nullptr);
}

void closeAll() {
    std::map<uint32_t, InjectorPtr> injectors;
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        state().initialised = false;
        injectors.swap(state().injectors);
        for (auto& [handle, injector] : injectors)
            endPlay(*injector);
    }
    for (auto& [handle, injector] : injectors)
        await(injector);
}

bool isPacketSize(uint32_t size) {
    return size == QLX_DMXINJECT_PACKET_188 || size == QLX_DMXINJECT_PACKET_192 ||
           size == QLX_DMXINJECT_PACKET_204;
}

}  // namespace

}  // namespace sim

int32_t QLX_DmxInjectInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    sim::state().initialised = true;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DmxInjectDeInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    sim::closeAll();
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DmxInjectOpen(const QLX_DmxInjectOpenParam* pstParam, uint32_t* phInject) {
    SIM_ENTRY("param=%s handle=%s", sim::show(pstParam).c_str(), sim::showPointer(phInject));
    if (pstParam == nullptr || phInject == nullptr || pstParam->eDemuxId >= sim::demuxCount ||
        !sim::isPacketSize(pstParam->uPacketSize))
        SIM_RETURN(QLX_DMXINJECT_ERR_INVALID_PARA);
    sim::InjectState& state = sim::state();
    std::lock_guard<std::mutex> lock(state.mutex);
    bool taken =
        std::any_of(state.injectors.begin(), state.injectors.end(),
                    [&](const auto& entry) { return entry.second->demux == pstParam->eDemuxId; });
    if (!state.initialised || taken)
        SIM_RETURN(QLX_FAILED);
    auto injector = std::make_shared<sim::Injector>();
    injector->handle = ++state.lastHandle;
    injector->demux = pstParam->eDemuxId;
    injector->queue = std::make_unique<sim::InjectQueue>(pstParam->uPacketSize);
    state.injectors[injector->handle] = injector;
    *phInject = injector->handle;
    simCall.output({sim::marked("handle", phInject)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DmxInjectClose(uint32_t hInject) {
    SIM_ENTRY("handle=%u", hInject);
    sim::InjectorPtr injector;
    {
        std::lock_guard<std::mutex> lock(sim::state().mutex);
        injector = sim::find(hInject);
        if (injector == nullptr && hInject != 0 && hInject <= sim::state().lastHandle)
            SIM_RETURN(QLX_FAILED);
        if (injector == nullptr)
            SIM_RETURN(QLX_DMXINJECT_ERR_INVALID_PARA);
        sim::endPlay(*injector);
        sim::state().injectors.erase(hInject);
    }
    sim::await(injector);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DmxInjectRegisterCallback(uint32_t hInject, QLX_DmxInjectCallback callback,
                                      void* pUserData) {
    SIM_ENTRY("handle=%u callback=%s userdata=%s", hInject, sim::showPointer(callback),
              sim::showPointer(pUserData));
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    sim::InjectorPtr injector = sim::find(hInject);
    if (injector == nullptr || callback == nullptr)
        SIM_RETURN(QLX_DMXINJECT_ERR_INVALID_PARA);
    injector->callback = callback;
    injector->userData = pUserData;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DmxInjectUnRegisterCallback(uint32_t hInject, QLX_DmxInjectCallback callback) {
    SIM_ENTRY("handle=%u callback=%s", hInject, sim::showPointer(callback));
    sim::InjectorPtr injector;
    {
        std::lock_guard<std::mutex> lock(sim::state().mutex);
        injector = sim::find(hInject);
        if (injector == nullptr || callback == nullptr || injector->callback != callback)
            SIM_RETURN(QLX_DMXINJECT_ERR_INVALID_PARA);
        injector->callback = nullptr;
        injector->userData = nullptr;
    }
    sim::threadOf(injector->demux).cancel(injector.get());
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    if (injector->started)
        sim::schedule(injector);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DmxInjectStart(uint32_t hInject) {
    SIM_ENTRY("handle=%u", hInject);
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    sim::InjectorPtr injector = sim::find(hInject);
    if (injector == nullptr)
        SIM_RETURN(QLX_DMXINJECT_ERR_INVALID_PARA);
    if (injector->started)
        SIM_RETURN(QLX_FAILED);
    int64_t now = sim::nowUs();
    injector->started = true;
    injector->speed = QLX_DMXINJECT_SPEED_NORMAL;
    injector->dueTicks = now * sim::ticksPerUs;
    injector->stream = std::make_unique<sim::LiveStreamMaker>(
        static_cast<uint64_t>(injector->dueTicks),
        sim::TsOrigin{sim::pieceOrigin(sim::streamFolder()), false});
    injector->jobUs = now;
    sim::schedule(injector);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DmxInjectStop(uint32_t hInject) {
    SIM_ENTRY("handle=%u", hInject);
    sim::InjectorPtr injector;
    {
        std::lock_guard<std::mutex> lock(sim::state().mutex);
        injector = sim::find(hInject);
        if (injector == nullptr)
            SIM_RETURN(QLX_DMXINJECT_ERR_INVALID_PARA);
        if (!injector->started)
            SIM_RETURN(QLX_FAILED);
        sim::endPlay(*injector);
    }
    sim::await(injector);
    SIM_RETURN(QLX_SUCCESS);
}

static int32_t setPaused(uint32_t hInject, bool paused) {
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    sim::InjectorPtr injector = sim::find(hInject);
    if (injector == nullptr)
        return QLX_DMXINJECT_ERR_INVALID_PARA;
    if (!injector->started || injector->paused == paused)
        return QLX_FAILED;
    injector->paused = paused;
    return QLX_SUCCESS;
}

int32_t QLX_DmxInjectPause(uint32_t hInject) {
    SIM_ENTRY("handle=%u", hInject);
    SIM_RETURN(setPaused(hInject, true));
}

int32_t QLX_DmxInjectResume(uint32_t hInject) {
    SIM_ENTRY("handle=%u", hInject);
    SIM_RETURN(setPaused(hInject, false));
}

int32_t QLX_DmxInjectGetCapability(uint32_t hInject, QLX_DmxInjectCapability* pstCapability) {
    SIM_ENTRY("handle=%u capability=%s", hInject, sim::showPointer(pstCapability));
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    if (sim::find(hInject) == nullptr || pstCapability == nullptr)
        SIM_RETURN(QLX_DMXINJECT_ERR_INVALID_PARA);
    *pstCapability = {static_cast<uint32_t>(sim::bufferBytes()), sim::chunkBytes};
    simCall.output({sim::value("capability", pstCapability)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DmxInjectGetFreeSize(uint32_t hInject, uint32_t* puFreeSize) {
    SIM_ENTRY("handle=%u size=%s", hInject, sim::showPointer(puFreeSize));
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    sim::InjectorPtr injector = sim::find(hInject);
    if (injector == nullptr || puFreeSize == nullptr)
        SIM_RETURN(QLX_DMXINJECT_ERR_INVALID_PARA);
    size_t total = sim::bufferBytes();
    *puFreeSize = static_cast<uint32_t>(total - std::min(total, injector->queue->bytes()));
    simCall.output({sim::value("size", puFreeSize)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DmxInjectWriteData(uint32_t hInject, const uint8_t* pData, uint32_t uSize,
                               uint32_t* puWritten) {
    SIM_ENTRY("handle=%u data=%s size=%u written=%s", hInject,
              pData != nullptr ? sim::showBytes(pData, uSize, sim::bufferBytes()).c_str() : "null",
              uSize, sim::showPointer(puWritten));
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    sim::InjectorPtr injector = sim::find(hInject);
    if (injector == nullptr || pData == nullptr || uSize == 0 || puWritten == nullptr)
        SIM_RETURN(QLX_DMXINJECT_ERR_INVALID_PARA);
    *puWritten = 0;
    if (injector->queue->bytes() + uSize > sim::bufferBytes()) {
        sim::tell(injector, QLX_DMXINJECT_EVENT_DATA_WRITE_FAILED);
        SIM_RETURN(QLX_FAILED);
    }
    injector->queue->write(pData, uSize);
    injector->emptySinceUs = 0;
    sim::tell(injector, QLX_DMXINJECT_EVENT_DATA_WRITE_DONE);
    *puWritten = uSize;
    simCall.output({sim::marked("written", puWritten)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DmxInjectFlush(uint32_t hInject) {
    SIM_ENTRY("handle=%u", hInject);
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    sim::InjectorPtr injector = sim::find(hInject);
    if (injector == nullptr)
        SIM_RETURN(QLX_DMXINJECT_ERR_INVALID_PARA);
    injector->queue->clear();
    injector->emptySinceUs = 0;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DmxInjectSetSpeed(uint32_t hInject, int32_t iSpeed) {
    SIM_ENTRY("handle=%u speed=%d", hInject, iSpeed);
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    sim::InjectorPtr injector = sim::find(hInject);
    if (injector == nullptr || iSpeed == 0 || iSpeed > QLX_DMXINJECT_SPEED_MAX ||
        iSpeed < -QLX_DMXINJECT_SPEED_MAX)
        SIM_RETURN(QLX_DMXINJECT_ERR_INVALID_PARA);
    injector->speed = iSpeed;
    SIM_RETURN(QLX_SUCCESS);
}

static void reset() {
    sim::closeAll();
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    sim::state().lastHandle = 0;
}

static void describe(std::string* out) {
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    if (sim::state().initialised)
        *out += "DmxInject initialised\n";
    for (const auto& [handle, injector] : sim::state().injectors)
        *out += sim::format("injector %u open on demultiplexer %u%s%s\n", handle, injector->demux,
                            injector->callback != nullptr ? " registered" : "",
                            injector->started ? " started" : "");
}

namespace sim {

extern const Family familyDmxInject = {reset, describe};

}  // namespace sim

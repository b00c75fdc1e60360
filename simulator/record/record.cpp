// Recorders: one a demultiplexer, each with a thread on which it delivers.
//
// State rules: initialisation is a flag, its end closes all. A recorder may be opened on a
// demultiplexer that is closed, and records when something flows. Handles and pointers are looked
// at first, then the order. A start needs a PID; callbacks change only while it does not run.
//
// A recorder that runs walks the places of its PIDs in what flows through the demultiplexer, and
// every PERIOD_MS delivers the packets that have come. Stamps count 27 MHz from the start, through
// pauses and changes of the stream. When the callback is slow, packets wait in the recorder's
// buffer; what finds no room is lost, and counted.
//
// Board file, section RECORD: PERIOD_MS.
#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/qlx_record.h"
#include "simulator/core/board.h"
#include "simulator/core/family.h"
#include "simulator/core/sim.h"
#include "simulator/demux/demux.h"
#include "simulator/media/es_index.h"

namespace sim {

SIM_RECORD(QLX_RecordCfg, SIM_MEMBER(QLX_RecordCfg, uPacketSize),
           SIM_MEMBER(QLX_RecordCfg, uBufferSize), SIM_MEMBER(QLX_RecordCfg, uReserved))
SIM_RECORD(QLX_RecordCallbacks, SIM_MEMBER(QLX_RecordCallbacks, tsCallback),
           SIM_MEMBER(QLX_RecordCallbacks, pTsUserData),
           SIM_MEMBER(QLX_RecordCallbacks, indexCallback),
           SIM_MEMBER(QLX_RecordCallbacks, pIndexUserData))
SIM_RECORD(QLX_RecordIndex, SIM_MEMBER(QLX_RecordIndex, uOffset), SIM_MEMBER(QLX_RecordIndex, uPts),
           SIM_MEMBER(QLX_RecordIndex, uLost), SIM_MEMBER(QLX_RecordIndex, uPid))

namespace {

constexpr uint32_t mostBufferKiB = 65536;
constexpr size_t stampBytes = 4;
constexpr int64_t ticksPerUs = 27;
constexpr uint64_t ticksPerPts = 300;
constexpr uint64_t ptsRange = UINT64_C(1) << 33;

/** What a recorder is set to. */
struct Choices {
    QLX_RecordCfg cfg = {};
    std::vector<uint16_t> pids;
    /** Of the video PID; of none while it is tsPidCount. */
    uint16_t videoPid = tsPidCount;
    uint32_t videoFormat = 0;
    QLX_RecordCallbacks callbacks = {};
};

/** An index entry on its way. */
struct IndexEntry {
    uint32_t event;
    QLX_RecordIndex index;
};

/** A recorder from its start to its stop. */
struct Run {
    uint32_t handle = 0;
    uint32_t demux = 0;
    Choices choices;

    bool alive = true;
    bool paused = false;
    int64_t startUs = 0;
    /** What had come whole by then has been taken. */
    int64_t takenUs = 0;
    int64_t jobUs = 0;
    /** The job that counts; an earlier one that is still queued does nothing. */
    uint64_t turn = 0;

    /** What is walked through, and the places in its loop that count. */
    TsStreamPtr stream;
    uint64_t change = 0;
    std::vector<uint32_t> places;
    /** PTS of the access points by the places where they begin. */
    std::map<uint32_t, uint64_t> points;
    size_t next = 0;
    uint64_t loop = 0;
    /** Of a stream that grows: which it is, and the packet behind the last one that was taken. */
    uint64_t lineage = 0;
    uint64_t behind = 0;

    std::vector<uint8_t> waiting;
    std::vector<IndexEntry> entries;
    uint64_t delivered = 0;
    uint32_t lost = 0;
};
using RunPtr = std::shared_ptr<Run>;

struct Recorder {
    uint32_t demux = 0;
    Choices choices;
    RunPtr run;
};

struct RecordState {
    std::mutex mutex;
    bool initialised = false;
    std::map<uint32_t, Recorder> recorders;
    uint32_t lastHandle = 0;
};

void takeBeforeChange(uint32_t demux);

RecordState& state() {
    static RecordState* instance = [] {
        onDemuxChange(takeBeforeChange);
        return new RecordState;
    }();
    return *instance;
}

EventThread& threadOf(uint32_t demux) {
    static EventThread* threads[demuxCount] = {
        new EventThread("record0"), new EventThread("record1"), new EventThread("record2"),
        new EventThread("record3")};
    return *threads[demux];
}

/** Null for a format whose access points the recorder does not find. */
const VideoCoding* codingOf(uint32_t format) {
    static const std::map<uint32_t, VideoCoding> codings = {
        {QLX_RECORD_VIDEO_FMT_MPEG1, VideoCoding::mpeg1},
        {QLX_RECORD_VIDEO_FMT_MPEG2, VideoCoding::mpeg2},
        {QLX_RECORD_VIDEO_FMT_MPEG4, VideoCoding::mpeg4},
        {QLX_RECORD_VIDEO_FMT_H264, VideoCoding::h264},
        {QLX_RECORD_VIDEO_FMT_HEVC, VideoCoding::hevc},
    };
    auto found = codings.find(format);
    return found != codings.end() ? &found->second : nullptr;
}

void findPoints(Run& run) {
    run.points.clear();
    const VideoCoding* coding = codingOf(run.choices.videoFormat);
    if (run.choices.videoPid >= tsPidCount || run.choices.callbacks.indexCallback == nullptr ||
        coding == nullptr)
        return;
    std::shared_ptr<const VideoIndex> index = videoIndex(run.stream, run.choices.videoPid, *coding);
    if (index == nullptr)
        return;
    for (const AccessUnit& unit : index->units) {
        if ((unit.flags & unit_access) != 0)
            run.points.emplace(unit.first, unit.pts);
    }
}

/** Lets the walk go on with the first packet that has not come whole by `takenUs`. */
void seek(Run& run, uint64_t since) {
    run.places.clear();
    if (run.stream == nullptr)
        return;
    for (uint16_t pid : run.choices.pids) {
        const std::vector<uint32_t>& of = run.stream->packetsOf(pid);
        run.places.insert(run.places.end(), of.begin(), of.end());
    }
    std::sort(run.places.begin(), run.places.end());
    uint64_t number = std::max(since, run.stream->firstEndingAfter(run.takenUs));
    // Packets of a stream that grows become known a little after their time.
    if (run.stream->lineage() != 0 && run.stream->lineage() != run.lineage)
        run.behind = run.stream->firstEndingAfter(run.startUs);
    if (run.stream->lineage() != 0)
        number = run.behind;
    run.lineage = run.stream->lineage();
    auto place = static_cast<uint32_t>(number % run.stream->packetCount());
    run.loop = number / run.stream->packetCount();
    run.next = static_cast<size_t>(std::lower_bound(run.places.begin(), run.places.end(), place) -
                                   run.places.begin());
    findPoints(run);
}

/** Looks what flows now. */
void look(Run& run) {
    DemuxView view = demuxView(run.demux);
    if (view.stream == run.stream && view.change == run.change)
        return;
    run.stream = view.stream;
    run.change = view.change;
    seek(run, view.since);
}

void addPoint(Run& run, uint32_t place) {
    auto point = run.points.find(place);
    if (point == run.points.end())
        return;
    IndexEntry entry = {QLX_RECORD_INDEX_ACCESS_POINT, {}};
    entry.index.uOffset = run.delivered + run.waiting.size();
    entry.index.uPid = run.choices.videoPid;
    uint64_t ticks = run.loop * run.stream->packetCount() * run.stream->packetTicks();
    if (point->second != noStamp)
        entry.index.uPts = (point->second + ticks / ticksPerPts) % ptsRange;
    run.entries.push_back(entry);
}

void addPacket(Run& run, uint64_t number) {
    size_t at = run.waiting.size();
    size_t head = run.choices.cfg.uPacketSize - tsPacketBytes;
    run.waiting.resize(at + head + tsPacketBytes);
    if (head == stampBytes) {
        auto stamp = static_cast<uint32_t>(run.stream->beginTicks(number) -
                                           static_cast<uint64_t>(run.startUs * ticksPerUs));
        for (size_t i = 0; i < stampBytes; i++)
            run.waiting[at + i] = static_cast<uint8_t>(stamp >> (24 - 8 * i));
    }
    run.stream->copyPacket(number, &run.waiting[at + head]);
}

/** Takes what has come by now. */
void collect(Run& run, int64_t now) {
    size_t room = size_t{run.choices.cfg.uBufferSize} << 10;
    run.takenUs = now;
    while (!run.places.empty()) {
        if (run.next == run.places.size()) {
            run.next = 0;
            run.loop++;
        }
        uint32_t place = run.places[run.next];
        uint64_t number = run.loop * run.stream->packetCount() + place;
        if (run.stream->endUs(number) > now)
            return;
        run.next++;
        run.behind = number + 1;
        if (run.paused)
            continue;
        if (run.waiting.size() + run.choices.cfg.uPacketSize > room) {
            run.lost++;
            continue;
        }
        addPoint(run, place);
        addPacket(run, number);
    }
}

/** Another stream flows from now on: what has come of the one before is taken. */
void takeBeforeChange(uint32_t demux) {
    std::lock_guard<std::mutex> lock(state().mutex);
    for (auto& [handle, recorder] : state().recorders) {
        if (recorder.demux != demux || recorder.run == nullptr)
            continue;
        collect(*recorder.run, nowUs());
        look(*recorder.run);
    }
}

/** What one turn of the job hands out. */
struct Delivery {
    std::vector<uint8_t> data;
    std::vector<IndexEntry> entries;
    uint32_t event = QLX_RECORD_EVENT_DATA;
    QLX_RecordCallbacks callbacks = {};
};

void tellIndex(const Run& run, const QLX_RecordCallbacks& callbacks, IndexEntry& entry) {
    if (callbacks.indexCallback == nullptr)
        return;
    deliver("RecordIndex", format("record=%u", run.handle),
            {marked("event", &entry.event), value("index", &entry.index)}, [&] {
                callbacks.indexCallback(run.handle, entry.event, &entry.index, sizeof entry.index,
                                        callbacks.pIndexUserData);
            });
}

void tell(const Run& run, Delivery& delivery) {
    for (IndexEntry& entry : delivery.entries)
        tellIndex(run, delivery.callbacks, entry);
    if (delivery.callbacks.tsCallback == nullptr)
        return;
    auto length = static_cast<uint32_t>(delivery.data.size());
    deliver("RecordData", format("record=%u", run.handle),
            {marked("event", &delivery.event), marked("length", &length),
             bytesValue("data", delivery.data.data(), delivery.data.size())},
            [&] {
                delivery.callbacks.tsCallback(run.handle, delivery.event, delivery.data.data(),
                                              length, delivery.callbacks.pTsUserData);
            });
}

void work(const RunPtr& run, uint64_t turn);

/** Puts the job at the next point of the run's grid that is not past. Called with the state
 *  locked. */
void schedule(const RunPtr& run) {
    int64_t periodUs = std::max<int64_t>(1, board().number("RECORD", "PERIOD_MS")) * 1000;
    int64_t now = nowUs();
    while (run->jobUs <= now)
        run->jobUs += periodUs;
    uint64_t turn = ++run->turn;
    threadOf(run->demux).post(run.get(), (run->jobUs - now + 999) / 1000, [run, turn] {
        work(run, turn);
    });
}

/** Takes what waits off the run. Called with the state locked. */
bool takeDelivery(Run& run, uint32_t lostBefore, Delivery* delivery) {
    if (run.waiting.empty())
        return false;
    delivery->data = std::move(run.waiting);
    delivery->entries = std::move(run.entries);
    delivery->callbacks = run.choices.callbacks;
    if (lostBefore > 0) {
        delivery->event = QLX_RECORD_EVENT_OVERFLOW;
        IndexEntry entry = {QLX_RECORD_INDEX_OVERFLOW, {run.delivered, 0, lostBefore, 0}};
        delivery->entries.insert(delivery->entries.begin(), entry);
        run.lost -= lostBefore;
    }
    run.delivered += delivery->data.size();
    run.waiting.clear();
    run.entries.clear();
    return true;
}

void work(const RunPtr& run, uint64_t turn) {
    Delivery delivery;
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        if (!run->alive || run->turn != turn)
            return;
        // What was lost up to now lies ahead of what comes now.
        uint32_t lostBefore = run->lost;
        look(*run);
        collect(*run, nowUs());
        if (!takeDelivery(*run, lostBefore, &delivery)) {
            schedule(run);
            return;
        }
    }
    if (delivery.event == QLX_RECORD_EVENT_OVERFLOW)
        complain("recorder of demultiplexer %u: %u packets lost, its callback is too slow",
                 run->demux, delivery.entries.front().index.uLost);
    tell(*run, delivery);
    std::lock_guard<std::mutex> lock(state().mutex);
    if (run->alive)
        schedule(run);
}

/** Of an open recorder; null for a handle that is none. Called with the state locked. */
Recorder* find(uint32_t handle) {
    auto found = state().recorders.find(handle);
    return found != state().recorders.end() ? &found->second : nullptr;
}

/** Ends the run of a recorder, and answers it for await. Called with the state locked. */
RunPtr endRun(Recorder& recorder) {
    RunPtr run = std::move(recorder.run);
    recorder.run = nullptr;
    if (run != nullptr)
        run->alive = false;
    return run;
}

/** Waits for a callback that runs. Called without the lock. */
void await(const RunPtr& run) {
    if (run != nullptr)
        threadOf(run->demux).cancel(run.get());
}

void closeAll() {
    std::vector<RunPtr> runs;
    {
        std::lock_guard<std::mutex> lock(state().mutex);
        state().initialised = false;
        for (auto& [handle, recorder] : state().recorders)
            runs.push_back(endRun(recorder));
        state().recorders.clear();
    }
    for (const RunPtr& run : runs)
        await(run);
}

/** The PIDs have changed: takes what came until now by the old ones. Called with the state locked.
 */
void changePids(Recorder& recorder) {
    Run* run = recorder.run.get();
    if (run == nullptr)
        return;
    look(*run);
    collect(*run, nowUs());
    run->choices.pids = recorder.choices.pids;
    run->choices.videoPid = recorder.choices.videoPid;
    run->choices.videoFormat = recorder.choices.videoFormat;
    seek(*run, 0);
}

}  // namespace

}  // namespace sim

int32_t QLX_RecordInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    sim::state().initialised = true;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_RecordDeInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    sim::closeAll();
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_RecordOpen(uint32_t eDemuxId, const QLX_RecordCfg* pstCfg, uint32_t* phRecord) {
    SIM_ENTRY("demux=%d cfg=%s handle=%s", static_cast<int>(eDemuxId), sim::show(pstCfg).c_str(),
              sim::showPointer(phRecord));
    if (eDemuxId >= sim::demuxCount || pstCfg == nullptr || phRecord == nullptr)
        SIM_RETURN(QLX_RECORD_ERR_INVALID_PARA);
    if ((pstCfg->uPacketSize != QLX_RECORD_PACKET_188 &&
         pstCfg->uPacketSize != QLX_RECORD_PACKET_192) ||
        pstCfg->uBufferSize == 0 || pstCfg->uBufferSize > sim::mostBufferKiB)
        SIM_RETURN(QLX_RECORD_ERR_INVALID_PARA);
    sim::RecordState& state = sim::state();
    std::lock_guard<std::mutex> lock(state.mutex);
    bool taken = std::any_of(state.recorders.begin(), state.recorders.end(),
                             [&](const auto& entry) { return entry.second.demux == eDemuxId; });
    if (!state.initialised || taken)
        SIM_RETURN(QLX_FAILED);
    *phRecord = ++state.lastHandle;
    sim::Recorder& recorder = state.recorders[*phRecord];
    recorder.demux = eDemuxId;
    recorder.choices.cfg = *pstCfg;
    simCall.output({sim::marked("handle", phRecord)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_RecordClose(uint32_t hRecord) {
    SIM_ENTRY("handle=%u", hRecord);
    sim::RunPtr run;
    {
        std::lock_guard<std::mutex> lock(sim::state().mutex);
        sim::Recorder* recorder = sim::find(hRecord);
        if (recorder == nullptr)
            SIM_RETURN(QLX_RECORD_ERR_INVALID_PARA);
        run = sim::endRun(*recorder);
        sim::state().recorders.erase(hRecord);
    }
    sim::await(run);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_RecordRegisterCb(uint32_t hRecord, const QLX_RecordCallbacks* pstCallbacks) {
    SIM_ENTRY("handle=%u callbacks=%s", hRecord, sim::show(pstCallbacks).c_str());
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    sim::Recorder* recorder = sim::find(hRecord);
    if (recorder == nullptr || pstCallbacks == nullptr || pstCallbacks->tsCallback == nullptr)
        SIM_RETURN(QLX_RECORD_ERR_INVALID_PARA);
    if (recorder->run != nullptr)
        SIM_RETURN(QLX_FAILED);
    recorder->choices.callbacks = *pstCallbacks;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_RecordUnRegisterCb(uint32_t hRecord, const QLX_RecordCallbacks* pstCallbacks) {
    SIM_ENTRY("handle=%u callbacks=%s", hRecord, sim::show(pstCallbacks).c_str());
    sim::RunPtr run;
    {
        std::lock_guard<std::mutex> lock(sim::state().mutex);
        sim::Recorder* recorder = sim::find(hRecord);
        if (recorder == nullptr || pstCallbacks == nullptr || pstCallbacks->tsCallback == nullptr ||
            recorder->choices.callbacks.tsCallback != pstCallbacks->tsCallback)
            SIM_RETURN(QLX_RECORD_ERR_INVALID_PARA);
        recorder->choices.callbacks = {};
        run = recorder->run;
        if (run != nullptr)
            run->choices.callbacks = {};
    }
    sim::await(run);
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    if (run != nullptr && run->alive)
        sim::schedule(run);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_RecordAddPid(uint32_t hRecord, uint32_t uPid) {
    SIM_ENTRY("handle=%u pid=%u", hRecord, uPid);
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    sim::Recorder* recorder = sim::find(hRecord);
    if (recorder == nullptr || uPid >= sim::tsPidCount)
        SIM_RETURN(QLX_RECORD_ERR_INVALID_PARA);
    std::vector<uint16_t>& pids = recorder->choices.pids;
    if (std::count(pids.begin(), pids.end(), uPid) == 0 && pids.size() < QLX_RECORD_PID_MAX) {
        pids.push_back(static_cast<uint16_t>(uPid));
        sim::changePids(*recorder);
    }
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_RecordRemovePid(uint32_t hRecord, uint32_t uPid) {
    SIM_ENTRY("handle=%u pid=%u", hRecord, uPid);
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    sim::Recorder* recorder = sim::find(hRecord);
    if (recorder == nullptr || uPid >= sim::tsPidCount)
        SIM_RETURN(QLX_RECORD_ERR_INVALID_PARA);
    std::vector<uint16_t>& pids = recorder->choices.pids;
    auto found = std::find(pids.begin(), pids.end(), uPid);
    if (found == pids.end())
        SIM_RETURN(QLX_FAILED);
    pids.erase(found);
    if (recorder->choices.videoPid == uPid)
        recorder->choices.videoPid = sim::tsPidCount;
    sim::changePids(*recorder);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_RecordSetVideoFmt(uint32_t hRecord, uint32_t uPid, uint32_t eVideoFmt) {
    SIM_ENTRY("handle=%u pid=%u format=%u", hRecord, uPid, eVideoFmt);
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    sim::Recorder* recorder = sim::find(hRecord);
    if (recorder == nullptr || uPid >= sim::tsPidCount)
        SIM_RETURN(QLX_RECORD_ERR_INVALID_PARA);
    if (sim::codingOf(eVideoFmt) == nullptr && eVideoFmt != QLX_RECORD_VIDEO_FMT_VC1)
        SIM_RETURN(QLX_RECORD_ERR_NOT_SUPPORTED);
    const std::vector<uint16_t>& pids = recorder->choices.pids;
    if (std::count(pids.begin(), pids.end(), uPid) == 0)
        SIM_RETURN(QLX_FAILED);
    recorder->choices.videoPid = static_cast<uint16_t>(uPid);
    recorder->choices.videoFormat = eVideoFmt;
    sim::changePids(*recorder);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_RecordStart(uint32_t hRecord) {
    SIM_ENTRY("handle=%u", hRecord);
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    sim::Recorder* recorder = sim::find(hRecord);
    if (recorder == nullptr)
        SIM_RETURN(QLX_RECORD_ERR_INVALID_PARA);
    if (recorder->run != nullptr || recorder->choices.pids.empty())
        SIM_RETURN(QLX_FAILED);
    auto run = std::make_shared<sim::Run>();
    run->handle = hRecord;
    run->demux = recorder->demux;
    run->choices = recorder->choices;
    run->startUs = sim::nowUs();
    run->takenUs = run->startUs;
    run->jobUs = run->startUs;
    sim::look(*run);
    recorder->run = run;
    sim::schedule(run);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_RecordStop(uint32_t hRecord) {
    SIM_ENTRY("handle=%u", hRecord);
    sim::RunPtr run;
    {
        std::lock_guard<std::mutex> lock(sim::state().mutex);
        sim::Recorder* recorder = sim::find(hRecord);
        if (recorder == nullptr)
            SIM_RETURN(QLX_RECORD_ERR_INVALID_PARA);
        run = sim::endRun(*recorder);
        if (run == nullptr)
            SIM_RETURN(QLX_FAILED);
    }
    sim::await(run);
    SIM_RETURN(QLX_SUCCESS);
}

static int32_t setPaused(uint32_t hRecord, bool paused) {
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    sim::Recorder* recorder = sim::find(hRecord);
    if (recorder == nullptr)
        return QLX_RECORD_ERR_INVALID_PARA;
    if (recorder->run == nullptr || recorder->run->paused == paused)
        return QLX_FAILED;
    // What has come until now is judged by what was set until now.
    sim::look(*recorder->run);
    sim::collect(*recorder->run, sim::nowUs());
    recorder->run->paused = paused;
    return QLX_SUCCESS;
}

int32_t QLX_RecordPause(uint32_t hRecord) {
    SIM_ENTRY("handle=%u", hRecord);
    SIM_RETURN(setPaused(hRecord, true));
}

int32_t QLX_RecordResume(uint32_t hRecord) {
    SIM_ENTRY("handle=%u", hRecord);
    SIM_RETURN(setPaused(hRecord, false));
}

static void reset() {
    sim::closeAll();
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    sim::state().lastHandle = 0;
}

static void describe(std::string* out) {
    std::lock_guard<std::mutex> lock(sim::state().mutex);
    if (sim::state().initialised)
        *out += "Record initialised\n";
    for (const auto& [handle, recorder] : sim::state().recorders)
        *out += sim::format("recorder %u open on demultiplexer %u%s%s\n", handle, recorder.demux,
                            recorder.choices.callbacks.tsCallback != nullptr ? " registered" : "",
                            recorder.run != nullptr ? " running" : "");
}

namespace sim {

extern const Family familyRecord = {reset, describe};

}  // namespace sim

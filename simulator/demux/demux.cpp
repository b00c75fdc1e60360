// Demultiplexers: what is open, connected and started, and what therefore flows through.
//
// State rules: initialisation is a flag, its end closes all. Every other call needs a demultiplexer
// that is open, but for the open itself, which needs one that is not. A connection replaces the one
// before, may be made to a tuner that is closed, and is forgotten by the close. A filter needs an
// open demultiplexer, connected or not. Numbers and pointers are looked at first.
//
// A stream flows while the demultiplexer is started, connected to a tuner, and that tuner receives
// a transmitter that plays a stream. Whatever changes of this, sections and PES packets that were
// under way are lost.
//
// Board file, section DEMUX: FILTER_NUM, the filters of a demultiplexer.
#include "simulator/demux/demux.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/qlx_demux.h"
#include "platform/qlx_tuner.h"
#include "simulator/core/board.h"
#include "simulator/core/family.h"
#include "simulator/core/sim.h"
#include "simulator/core/source_record.h"
#include "simulator/demux/demux_state.h"
#include "simulator/tuner/reception.h"
#include "simulator/world/air.h"
#include "simulator/world/broadcast.h"
#include "simulator/world/world.h"

namespace sim {

SIM_RECORD(QLX_DemuxCapability, SIM_MEMBER(QLX_DemuxCapability, FilterNum),
           SIM_MEMBER(QLX_DemuxCapability, uReserved))

namespace {

uint32_t filterNum() {
    return static_cast<uint32_t>(board().number("DEMUX", "FILTER_NUM"));
}

TsStreamPtr streamFor(const Demux& demux, uint64_t* reception) {
    *reception = 0;
    if (demux.started && demux.source.eSourceType == QLX_SOURCE_TYPE_RECORD)
        return demux.injected;
    if (!demux.started || demux.source.eSourceType != QLX_SOURCE_TYPE_TUNER)
        return nullptr;
    Reception received = receptionOf(demux.source.uSourceIndex);
    if (!received.locked || received.transmitter == nullptr)
        return nullptr;
    *reception = received.change;
    return streamOf(*received.transmitter);
}

/** Looks what flows now. `torn`: even if it is the same, it was interrupted. Called with the family
 *  locked; returns whether anything changed. */
bool refresh(uint32_t number, bool torn) {
    DemuxFamily& family = demuxFamily();
    Demux& demux = family.demuxes[number];
    uint64_t reception = 0;
    TsStreamPtr stream = streamFor(demux, &reception);
    bool sameTuning = !torn && reception == demux.reception;
    if (sameTuning && stream == demux.stream)
        return false;
    bool grown = !torn && stream != nullptr && stream->lineage() != 0 && demux.stream != nullptr &&
                 demux.stream->lineage() == stream->lineage();
    demux.stream = stream;
    demux.reception = reception;
    demux.change++;
    if (grown)
        return true;
    demux.since = 0;
    if (stream != nullptr && stream->lineage() == 0)
        demux.since = stream->packetAt(nowUs());
    demux.live.clear();
    for (auto& [handle, filter] : family.filters) {
        if (filter.demux != number || filter.run == nullptr)
            continue;
        attachRun(*filter.run, demux, sameTuning);
        scheduleRun(filter.run);
    }
    return true;
}

void tellListeners(uint32_t number) {
    std::vector<std::function<void(uint32_t)>> listeners;
    {
        std::lock_guard<std::mutex> lock(demuxFamily().mutex);
        listeners = demuxFamily().listeners;
    }
    for (const auto& listener : listeners)
        listener(number);
}

/** The outside world changed: looks again what flows through the demultiplexers. */
void refreshAll() {
    for (uint32_t number = 0; number < demuxCount; number++) {
        bool changed;
        {
            std::lock_guard<std::mutex> lock(demuxFamily().mutex);
            changed = refresh(number, false);
        }
        if (changed)
            tellListeners(number);
    }
}

const WorldListener onBroadcast{broadcastPart, refreshAll};

/** The refusal of a call that needs an open demultiplexer, 0 when there is none. */
int32_t refusalOf(uint32_t number) {
    DemuxFamily& family = demuxFamily();
    if (number >= demuxCount)
        return QLX_DEMUX_ERR_INVALID_PARA;
    if (!family.initialised || !family.demuxes[number].open)
        return QLX_FAILED;
    return QLX_SUCCESS;
}

/** Marks the runs of a demultiplexer dead, and answers them for awaitRuns. */
std::vector<FilterRunPtr> endRuns(uint32_t number) {
    std::vector<FilterRunPtr> runs;
    for (auto& [handle, filter] : demuxFamily().filters) {
        if (filter.demux != number || filter.run == nullptr)
            continue;
        filter.run->alive = false;
        runs.push_back(std::move(filter.run));
        filter.run = nullptr;
    }
    return runs;
}

/** Closes one; answers its runs. Called with the family locked. */
std::vector<FilterRunPtr> closeOne(uint32_t number) {
    DemuxFamily& family = demuxFamily();
    std::vector<FilterRunPtr> runs = endRuns(number);
    for (auto filter = family.filters.begin(); filter != family.filters.end();)
        filter = filter->second.demux == number ? family.filters.erase(filter) : std::next(filter);
    uint64_t change = family.demuxes[number].change;
    TsStreamPtr injected = family.demuxes[number].injected;
    family.demuxes[number] = Demux();
    family.demuxes[number].change = change + 1;
    family.demuxes[number].injected = injected;
    return runs;
}

void closeAll() {
    std::vector<FilterRunPtr> runs;
    {
        std::lock_guard<std::mutex> lock(demuxFamily().mutex);
        demuxFamily().initialised = false;
        for (uint32_t number = 0; number < demuxCount; number++) {
            std::vector<FilterRunPtr> more = closeOne(number);
            runs.insert(runs.end(), more.begin(), more.end());
        }
    }
    awaitRuns(runs);
    for (uint32_t number = 0; number < demuxCount; number++)
        tellListeners(number);
}

/** Lets the stream in or shuts it off; when off, no data report runs or comes afterwards. */
void setStarted(uint32_t number, bool started) {
    std::vector<FilterRunPtr> runs;
    {
        std::lock_guard<std::mutex> lock(demuxFamily().mutex);
        Demux& demux = demuxFamily().demuxes[number];
        if (demux.started == started)
            return;
        demux.started = started;
        refresh(number, true);
        for (auto& [handle, filter] : demuxFamily().filters) {
            if (filter.demux == number && filter.run != nullptr && !started)
                runs.push_back(filter.run);
        }
    }
    for (const FilterRunPtr& run : runs)
        pauseRun(run);
    tellListeners(number);
}

int32_t createFilter(uint32_t number, FilterKind kind, uint32_t* handle) {
    std::lock_guard<std::mutex> lock(demuxFamily().mutex);
    if (handle == nullptr)
        return QLX_DEMUX_ERR_INVALID_PARA;
    int32_t refusal = refusalOf(number);
    if (refusal != QLX_SUCCESS)
        return refusal;
    DemuxFamily& family = demuxFamily();
    auto used = std::count_if(family.filters.begin(), family.filters.end(),
                              [&](const auto& entry) { return entry.second.demux == number; });
    if (static_cast<uint32_t>(used) >= filterNum())
        return QLX_DEMUX_ERR_NO_RESOURCE;
    *handle = ++family.lastHandle;
    Filter filter;
    filter.demux = number;
    filter.kind = kind;
    filter.account = std::make_shared<FilterAccount>();
    family.filters[*handle] = filter;
    return QLX_SUCCESS;
}

bool isConnectable(const QLX_Source& source) {
    if (source.eSourceType == QLX_SOURCE_TYPE_TUNER)
        return source.uSourceIndex < QLX_TUNER_MAX;
    return source.eSourceType == QLX_SOURCE_TYPE_RECORD;
}

}  // namespace

DemuxFamily& demuxFamily() {
    static DemuxFamily* instance = [] {
        onReceptionChange([](uint32_t) { refreshAll(); });
        return new DemuxFamily;
    }();
    return *instance;
}

EventThread& demuxThread(uint32_t demux) {
    static EventThread* threads[demuxCount] = {new EventThread("demux0"), new EventThread("demux1"),
                                               new EventThread("demux2"),
                                               new EventThread("demux3")};
    return *threads[demux];
}

DemuxView demuxView(uint32_t number) {
    DemuxView view;
    std::lock_guard<std::mutex> lock(demuxFamily().mutex);
    if (number >= demuxCount)
        return view;
    const Demux& demux = demuxFamily().demuxes[number];
    view.open = demux.open;
    view.started = demux.started;
    view.source = demux.source;
    view.stream = demux.stream;
    view.since = demux.since;
    view.change = demux.change;
    return view;
}

void onDemuxChange(std::function<void(uint32_t demux)> listener) {
    std::lock_guard<std::mutex> lock(demuxFamily().mutex);
    demuxFamily().listeners.push_back(std::move(listener));
}

void demuxFeed(uint32_t number, const uint8_t* packets, size_t count) {
    DemuxFamily& family = demuxFamily();
    std::lock_guard<std::mutex> lock(family.mutex);
    if (number >= demuxCount || !family.demuxes[number].started ||
        family.demuxes[number].source.eSourceType != QLX_SOURCE_TYPE_RECORD)
        return;
    Demux& demux = family.demuxes[number];
    auto feed = [&](FilterKind kind, uint16_t pid, const TsUnit& unit) {
        for (auto& [handle, filter] : family.filters) {
            if (filter.demux == number && filter.kind == kind && filter.run != nullptr &&
                filter.run->pid == pid)
                feedRun(filter.run, unit);
        }
    };
    for (size_t i = 0; i < count; i++) {
        const uint8_t* bytes = packets + i * tsPacketBytes;
        TsPacket packet = readTsPacket(bytes);
        uint64_t at = demux.livePackets++;
        bool wanted = std::any_of(family.filters.begin(), family.filters.end(), [&](auto& entry) {
            return entry.second.demux == number && entry.second.run != nullptr &&
                   entry.second.run->pid == packet.pid;
        });
        if (!wanted)
            continue;
        feed(filter_packet, packet.pid, {bytes, tsPacketBytes, at, at});
        LivePid& live = demux.live[packet.pid];
        live.sections.push(packet, at,
                           [&](const TsUnit& unit) { feed(filter_section, packet.pid, unit); });
        live.pes.push(packet, at, [&](const TsUnit& unit) { feed(filter_pes, packet.pid, unit); });
    }
}

void demuxInject(uint32_t number, const TsStreamPtr& stream) {
    bool changed;
    {
        std::lock_guard<std::mutex> lock(demuxFamily().mutex);
        demuxFamily().demuxes[number].injected = stream;
        changed = refresh(number, false);
    }
    if (changed)
        tellListeners(number);
}

static void reset() {
    closeAll();
    std::lock_guard<std::mutex> lock(demuxFamily().mutex);
    demuxFamily().lastHandle = 0;
    demuxFamily().buffers.clear();
}

static void describe(std::string* out) {
    DemuxFamily& family = demuxFamily();
    std::lock_guard<std::mutex> lock(family.mutex);
    if (family.initialised)
        *out += "Demux initialised\n";
    for (uint32_t number = 0; number < demuxCount; number++) {
        const Demux& demux = family.demuxes[number];
        if (demux.open)
            *out += format("Demux %u open\n", number);
        if (demux.source.eSourceType != QLX_SOURCE_TYPE_NONE)
            *out += format("Demux %u connected to source %u %u\n", number, demux.source.eSourceType,
                           demux.source.uSourceIndex);
        if (demux.started)
            *out += format("Demux %u started\n", number);
    }
    for (const auto& [handle, filter] : family.filters) {
        *out += format("Demux %u %s %u%s%s%s\n", filter.demux, filterKindNames[filter.kind], handle,
                       filter.configured ? " configured" : "",
                       filter.callback != nullptr ? " registered" : "",
                       filter.run != nullptr ? " running" : "");
    }
}

extern const Family familyDemux = {reset, describe};

}  // namespace sim

int32_t QLX_DemuxInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::lock_guard<std::mutex> lock(sim::demuxFamily().mutex);
    sim::demuxFamily().initialised = true;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DemuxDeInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    sim::closeAll();
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DemuxOpen(uint32_t eDemuxId) {
    SIM_ENTRY("demux=%d", static_cast<int>(eDemuxId));
    {
        sim::DemuxFamily& family = sim::demuxFamily();
        std::lock_guard<std::mutex> lock(family.mutex);
        if (eDemuxId >= sim::demuxCount)
            SIM_RETURN(QLX_DEMUX_ERR_INVALID_PARA);
        if (!family.initialised || family.demuxes[eDemuxId].open)
            SIM_RETURN(QLX_FAILED);
        family.demuxes[eDemuxId].open = true;
        family.demuxes[eDemuxId].change++;
    }
    sim::tellListeners(eDemuxId);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DemuxClose(uint32_t eDemuxId) {
    SIM_ENTRY("demux=%d", static_cast<int>(eDemuxId));
    std::vector<sim::FilterRunPtr> runs;
    {
        std::lock_guard<std::mutex> lock(sim::demuxFamily().mutex);
        int32_t refusal = sim::refusalOf(eDemuxId);
        if (refusal != QLX_SUCCESS)
            SIM_RETURN(refusal);
        runs = sim::closeOne(eDemuxId);
    }
    sim::awaitRuns(runs);
    sim::tellListeners(eDemuxId);
    SIM_RETURN(QLX_SUCCESS);
}

static int32_t startOrStop(uint32_t eDemuxId, bool started) {
    {
        std::lock_guard<std::mutex> lock(sim::demuxFamily().mutex);
        int32_t refusal = sim::refusalOf(eDemuxId);
        if (refusal != QLX_SUCCESS)
            return refusal;
    }
    sim::setStarted(eDemuxId, started);
    return QLX_SUCCESS;
}

int32_t QLX_DemuxStart(uint32_t eDemuxId) {
    SIM_ENTRY("demux=%d", static_cast<int>(eDemuxId));
    SIM_RETURN(startOrStop(eDemuxId, true));
}

int32_t QLX_DemuxStop(uint32_t eDemuxId) {
    SIM_ENTRY("demux=%d", static_cast<int>(eDemuxId));
    SIM_RETURN(startOrStop(eDemuxId, false));
}

int32_t QLX_DemuxConnectSource(uint32_t eDemuxId, const QLX_Source* pstSource) {
    SIM_ENTRY("demux=%d source=%s", static_cast<int>(eDemuxId), sim::show(pstSource).c_str());
    {
        std::lock_guard<std::mutex> lock(sim::demuxFamily().mutex);
        if (eDemuxId >= sim::demuxCount || pstSource == nullptr)
            SIM_RETURN(QLX_DEMUX_ERR_INVALID_PARA);
        int32_t refusal = sim::refusalOf(eDemuxId);
        if (refusal != QLX_SUCCESS)
            SIM_RETURN(refusal);
        if (!sim::isConnectable(*pstSource))
            SIM_RETURN(QLX_DEMUX_ERR_INVALID_PARA);
        sim::demuxFamily().demuxes[eDemuxId].source = *pstSource;
        sim::refresh(eDemuxId, true);
    }
    sim::tellListeners(eDemuxId);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DemuxGetSourceConnection(uint32_t eDemuxId, QLX_Source* pstSource) {
    SIM_ENTRY("demux=%d source=%s", static_cast<int>(eDemuxId), sim::showPointer(pstSource));
    std::lock_guard<std::mutex> lock(sim::demuxFamily().mutex);
    if (pstSource == nullptr)
        SIM_RETURN(QLX_DEMUX_ERR_INVALID_PARA);
    int32_t refusal = sim::refusalOf(eDemuxId);
    if (refusal != QLX_SUCCESS)
        SIM_RETURN(refusal);
    *pstSource = sim::demuxFamily().demuxes[eDemuxId].source;
    simCall.output({sim::value("source", pstSource)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DemuxGetCapability(uint32_t eDemuxId, QLX_DemuxCapability* pstCapability) {
    SIM_ENTRY("demux=%d capability=%s", static_cast<int>(eDemuxId),
              sim::showPointer(pstCapability));
    std::lock_guard<std::mutex> lock(sim::demuxFamily().mutex);
    if (pstCapability == nullptr)
        SIM_RETURN(QLX_DEMUX_ERR_INVALID_PARA);
    int32_t refusal = sim::refusalOf(eDemuxId);
    if (refusal != QLX_SUCCESS)
        SIM_RETURN(refusal);
    *pstCapability = {};
    pstCapability->FilterNum = sim::filterNum();
    simCall.output({sim::value("capability", pstCapability)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DemuxCreateSectionFilter(uint32_t eDemuxId, uint32_t* phFilter) {
    SIM_ENTRY("demux=%d filter=%s", static_cast<int>(eDemuxId), sim::showPointer(phFilter));
    int32_t result = sim::createFilter(eDemuxId, sim::filter_section, phFilter);
    if (result == QLX_SUCCESS)
        simCall.output({sim::marked("handle", phFilter)});
    SIM_RETURN(result);
}

int32_t QLX_DemuxCreatePesFilter(uint32_t eDemuxId, uint32_t* phFilter) {
    SIM_ENTRY("demux=%d filter=%s", static_cast<int>(eDemuxId), sim::showPointer(phFilter));
    int32_t result = sim::createFilter(eDemuxId, sim::filter_pes, phFilter);
    if (result == QLX_SUCCESS)
        simCall.output({sim::marked("handle", phFilter)});
    SIM_RETURN(result);
}

int32_t QLX_DemuxCreatePacketFilter(uint32_t eDemuxId, uint32_t* phFilter) {
    SIM_ENTRY("demux=%d filter=%s", static_cast<int>(eDemuxId), sim::showPointer(phFilter));
    int32_t result = sim::createFilter(eDemuxId, sim::filter_packet, phFilter);
    if (result == QLX_SUCCESS)
        simCall.output({sim::marked("handle", phFilter)});
    SIM_RETURN(result);
}

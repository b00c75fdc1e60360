// Descramblers: which are open on which demultiplexer, their PIDs and keys.
//
// Nothing on the air is scrambled, so that nothing is descrambled: packets pass as they are.
//
// State rules: the service has no initialisation. Opening needs the demultiplexer open; a
// descrambler lives until it or its demultiplexer is closed. A PID is added once, and keys replace
// the earlier ones.
#include <algorithm>
#include <map>
#include <mutex>
#include <vector>

#include "platform/qlx_desc.h"
#include "simulator/core/family.h"
#include "simulator/core/sim.h"
#include "simulator/demux/demux.h"

namespace sim {

SIM_RECORD(QLX_DescOpenParam, SIM_MEMBER(QLX_DescOpenParam, eDemuxId),
           SIM_MEMBER(QLX_DescOpenParam, eAlgorithm), SIM_MEMBER(QLX_DescOpenParam, uReserved))

SIM_RECORD(QLX_DescKeys, SIM_MEMBER(QLX_DescKeys, u32HDesc), SIM_MEMBER(QLX_DescKeys, u32EvenKey),
           SIM_MEMBER(QLX_DescKeys, u32OddKey), SIM_MEMBER(QLX_DescKeys, u32EvenIv),
           SIM_MEMBER(QLX_DescKeys, u32OddIv), SIM_MEMBER(QLX_DescKeys, u32SystemKey),
           SIM_MEMBER(QLX_DescKeys, eEvenKeyKind), SIM_MEMBER(QLX_DescKeys, eOddKeyKind),
           SIM_MEMBER(QLX_DescKeys, eIvKind), SIM_MEMBER(QLX_DescKeys, eSystemKeyKind),
           SIM_MEMBER(QLX_DescKeys, bUpdate), SIM_MEMBER(QLX_DescKeys, uReserved))

}  // namespace sim

namespace {

constexpr uint32_t pidCount = 8192;

struct Descrambler {
    uint32_t demux = 0;
    std::vector<uint32_t> pids;
    QLX_DescKeys keys = {};
};

struct DescState {
    std::mutex mutex;
    std::map<uint32_t, Descrambler> descramblers;
    uint32_t nextHandle = 1;
};

void dropWithDemux(uint32_t demux);

DescState& state() {
    static DescState* instance = [] {
        sim::onDemuxChange(dropWithDemux);
        return new DescState;
    }();
    return *instance;
}

/** A descrambler is a part of its demultiplexer, and goes when that is closed. */
void dropWithDemux(uint32_t demux) {
    if (sim::demuxView(demux).open)
        return;
    std::lock_guard<std::mutex> lock(state().mutex);
    auto& all = state().descramblers;
    for (auto one = all.begin(); one != all.end();)
        one = one->second.demux == demux ? all.erase(one) : std::next(one);
}

/** Of an open descrambler, null for a handle that is none. Called with the state locked. */
Descrambler* find(uint32_t handle) {
    auto found = state().descramblers.find(handle);
    return found != state().descramblers.end() ? &found->second : nullptr;
}

/** Called with the state locked. */
size_t countOn(uint32_t demux) {
    const auto& all = state().descramblers;
    return static_cast<size_t>(std::count_if(
        all.begin(), all.end(), [&](const auto& entry) { return entry.second.demux == demux; }));
}

}  // namespace

int32_t QLX_DescOpen(QLX_DescOpenParam stOpenParam, uint32_t* pu32HDesc) {
    SIM_ENTRY("param=%s handle=%s", sim::show(&stOpenParam).c_str(), sim::showPointer(pu32HDesc));
    const uint32_t demux = stOpenParam.eDemuxId;
    if (demux >= sim::demuxCount || stOpenParam.eAlgorithm != QLX_DESC_ALGORITHM_MULTI2 ||
        pu32HDesc == nullptr)
        SIM_RETURN(QLX_DESC_ERR_INVALID_PARA);
    if (!sim::demuxView(demux).open)
        SIM_RETURN(QLX_FAILED);
    std::lock_guard<std::mutex> lock(state().mutex);
    if (countOn(demux) >= QLX_DESC_PER_DEMUX)
        SIM_RETURN(QLX_DESC_ERR_NO_RESOURCE);
    *pu32HDesc = state().nextHandle++;
    state().descramblers[*pu32HDesc].demux = demux;
    simCall.output({sim::marked("handle", pu32HDesc)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DescClose(uint32_t u32HDesc) {
    SIM_ENTRY("handle=%u", u32HDesc);
    std::lock_guard<std::mutex> lock(state().mutex);
    if (state().descramblers.erase(u32HDesc) == 0)
        SIM_RETURN(QLX_DESC_ERR_INVALID_PARA);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_DescSetPid(uint32_t u32HDesc, uint32_t u32Pid) {
    SIM_ENTRY("handle=%u pid=%u", u32HDesc, u32Pid);
    std::lock_guard<std::mutex> lock(state().mutex);
    Descrambler* descrambler = find(u32HDesc);
    if (descrambler == nullptr || u32Pid >= pidCount)
        SIM_RETURN(QLX_DESC_ERR_INVALID_PARA);
    std::vector<uint32_t>& pids = descrambler->pids;
    if (std::count(pids.begin(), pids.end(), u32Pid) != 0)
        SIM_RETURN(QLX_SUCCESS);
    if (pids.size() >= QLX_DESC_PID_MAX)
        SIM_RETURN(QLX_DESC_ERR_NO_RESOURCE);
    pids.push_back(u32Pid);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SetKeys(uint32_t u32HDesc, QLX_DescKeys stKeys) {
    SIM_ENTRY("handle=%u keys=%s", u32HDesc, sim::show(&stKeys).c_str());
    std::lock_guard<std::mutex> lock(state().mutex);
    Descrambler* descrambler = find(u32HDesc);
    if (descrambler == nullptr)
        SIM_RETURN(QLX_DESC_ERR_INVALID_PARA);
    descrambler->keys = stKeys;
    SIM_RETURN(QLX_SUCCESS);
}

static void reset() {
    std::lock_guard<std::mutex> lock(state().mutex);
    state().descramblers.clear();
    state().nextHandle = 1;
}

static void describe(std::string* out) {
    std::lock_guard<std::mutex> lock(state().mutex);
    for (const auto& entry : state().descramblers)
        *out += sim::format("descrambler %u open on demultiplexer %u with %zu PIDs\n", entry.first,
                            entry.second.demux, entry.second.pids.size());
}

namespace sim {

extern const Family familyDesc = {reset, describe};

}  // namespace sim

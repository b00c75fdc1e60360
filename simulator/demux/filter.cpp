// Filters of the demultiplexers: their configuration and state.
//
// State rules, the same for sections, PES packets and transport packets: a filter is configured and
// given a callback while it does not run, and started when it has both. A stop, and the callback's
// removal, wait for a report that is under way. A handle is that of one kind.
//
// A buffer size of 0 leaves the choice to the device.
#include <mutex>

#include "platform/qlx_demux.h"
#include "platform/qlx_filter.h"
#include "simulator/core/sim.h"
#include "simulator/demux/demux_state.h"

namespace sim {

SIM_RECORD(QLX_SectionFilterParams, SIM_MEMBER(QLX_SectionFilterParams, uPid),
           SIM_MEMBER(QLX_SectionFilterParams, au8Match),
           SIM_MEMBER(QLX_SectionFilterParams, au8Mask),
           SIM_MEMBER(QLX_SectionFilterParams, au8Negate),
           SIM_MEMBER(QLX_SectionFilterParams, uDepth),
           SIM_MEMBER(QLX_SectionFilterParams, uTimeOutMs),
           SIM_MEMBER(QLX_SectionFilterParams, eCrcMode),
           SIM_MEMBER(QLX_SectionFilterParams, bContinuous),
           SIM_MEMBER(QLX_SectionFilterParams, uBufferSize),
           SIM_MEMBER(QLX_SectionFilterParams, uReserved))
SIM_RECORD(QLX_PesFilterParams, SIM_MEMBER(QLX_PesFilterParams, uPid),
           SIM_MEMBER(QLX_PesFilterParams, uBufferSize))
SIM_RECORD(QLX_PacketFilterParams, SIM_MEMBER(QLX_PacketFilterParams, uPid),
           SIM_MEMBER(QLX_PacketFilterParams, uBufferSize))

}  // namespace sim

namespace {

using sim::Filter;
using sim::FilterKind;
using sim::FilterRunPtr;

constexpr size_t defaultBufferBytes = 64 << 10;

/** The filter of that kind, null when the handle is none. Called with the family locked. */
Filter* find(FilterKind kind, uint32_t handle) {
    auto& filters = sim::demuxFamily().filters;
    auto entry = filters.find(handle);
    return entry != filters.end() && entry->second.kind == kind ? &entry->second : nullptr;
}

/** Configures a filter; `section` is null for the other kinds. */
int32_t configure(FilterKind kind, uint32_t handle, uint16_t pid, uint32_t bufferBytes,
                  const QLX_SectionFilterParams* section) {
    std::lock_guard<std::mutex> lock(sim::demuxFamily().mutex);
    Filter* filter = find(kind, handle);
    if (filter == nullptr || pid >= sim::tsPidCount)
        return QLX_DEMUX_ERR_INVALID_PARA;
    if (section != nullptr && (section->uDepth > QLX_SECTION_FILTER_BYTES ||
                               section->eCrcMode > QLX_SECTION_CRC_NO_CHECK))
        return QLX_DEMUX_ERR_INVALID_PARA;
    if (filter->run != nullptr)
        return QLX_FAILED;
    filter->configured = true;
    filter->pid = pid;
    filter->bufferBytes = bufferBytes != 0 ? bufferBytes : defaultBufferBytes;
    if (section != nullptr)
        filter->section = *section;
    return QLX_SUCCESS;
}

int32_t registerCallback(FilterKind kind, uint32_t handle, void* userData,
                         QLX_FilterCallback callback) {
    std::lock_guard<std::mutex> lock(sim::demuxFamily().mutex);
    Filter* filter = find(kind, handle);
    if (filter == nullptr || callback == nullptr)
        return QLX_DEMUX_ERR_INVALID_PARA;
    if (filter->run != nullptr)
        return QLX_FAILED;
    filter->callback = callback;
    filter->userData = userData;
    return QLX_SUCCESS;
}

int32_t unregisterCallback(FilterKind kind, uint32_t handle, QLX_FilterCallback callback) {
    FilterRunPtr run;
    {
        std::lock_guard<std::mutex> lock(sim::demuxFamily().mutex);
        Filter* filter = find(kind, handle);
        if (filter == nullptr || callback == nullptr)
            return QLX_DEMUX_ERR_INVALID_PARA;
        if (filter->callback != callback)
            return QLX_FAILED;
        filter->callback = nullptr;
        filter->userData = nullptr;
        run = filter->run;
        if (run != nullptr)
            run->callback = nullptr;
    }
    if (run != nullptr)
        sim::pauseRun(run);
    return QLX_SUCCESS;
}

int32_t start(FilterKind kind, uint32_t handle) {
    sim::DemuxFamily& family = sim::demuxFamily();
    std::lock_guard<std::mutex> lock(family.mutex);
    Filter* filter = find(kind, handle);
    if (filter == nullptr)
        return QLX_DEMUX_ERR_INVALID_PARA;
    if (!filter->configured || filter->callback == nullptr || filter->run != nullptr)
        return QLX_FAILED;
    auto run = std::make_shared<sim::FilterRun>();
    run->demux = filter->demux;
    run->handle = handle;
    run->kind = kind;
    run->pid = filter->pid;
    run->bufferBytes = filter->bufferBytes;
    run->section = filter->section;
    run->oneShot = kind == sim::filter_section && filter->section.bContinuous == QLX_FALSE;
    run->callback = filter->callback;
    run->userData = filter->userData;
    run->account = filter->account;
    filter->run = run;
    sim::armTimeOut(*run);
    sim::attachRun(*run, family.demuxes[filter->demux], false);
    sim::scheduleRun(run);
    return QLX_SUCCESS;
}

/** Stops a filter, deletes it too if told so, and waits for its report. */
int32_t stop(FilterKind kind, uint32_t handle, bool andDelete) {
    FilterRunPtr run;
    {
        std::lock_guard<std::mutex> lock(sim::demuxFamily().mutex);
        Filter* filter = find(kind, handle);
        if (filter == nullptr)
            return QLX_DEMUX_ERR_INVALID_PARA;
        run = std::move(filter->run);
        filter->run = nullptr;
        if (run != nullptr)
            run->alive = false;
        if (andDelete)
            sim::demuxFamily().filters.erase(handle);
    }
    if (run != nullptr)
        sim::awaitRuns({run});
    return QLX_SUCCESS;
}

int32_t freeBuffer(FilterKind kind, void* data) {
    auto& buffers = sim::demuxFamily().buffers;
    std::lock_guard<std::mutex> lock(sim::demuxFamily().mutex);
    auto entry = buffers.find(data);
    if (entry == buffers.end() || entry->second->kind != kind)
        return QLX_DEMUX_ERR_INVALID_PARA;
    entry->second->account->outstanding -= entry->second->bytes.size();
    buffers.erase(entry);
    return QLX_SUCCESS;
}

}  // namespace

int32_t QLX_SectionFilterConfigure(uint32_t hFilter, const QLX_SectionFilterParams* pstParams) {
    SIM_ENTRY("filter=%u params=%s", hFilter, sim::show(pstParams).c_str());
    if (pstParams == nullptr)
        SIM_RETURN(QLX_DEMUX_ERR_INVALID_PARA);
    SIM_RETURN(configure(sim::filter_section, hFilter, pstParams->uPid, pstParams->uBufferSize,
                         pstParams));
}

int32_t QLX_SectionFilterRegisterCallback(uint32_t hFilter, void* pUserdata,
                                          QLX_FilterCallback callback) {
    SIM_ENTRY("filter=%u userData=%s callback=%s", hFilter, sim::showPointer(pUserdata),
              sim::showPointer(callback));
    SIM_RETURN(registerCallback(sim::filter_section, hFilter, pUserdata, callback));
}

int32_t QLX_SectionFilterUnRegisterCallback(uint32_t hFilter, QLX_FilterCallback callback) {
    SIM_ENTRY("filter=%u callback=%s", hFilter, sim::showPointer(callback));
    SIM_RETURN(unregisterCallback(sim::filter_section, hFilter, callback));
}

int32_t QLX_SectionFilterStart(uint32_t hFilter) {
    SIM_ENTRY("filter=%u", hFilter);
    SIM_RETURN(start(sim::filter_section, hFilter));
}

int32_t QLX_SectionFilterStop(uint32_t hFilter) {
    SIM_ENTRY("filter=%u", hFilter);
    SIM_RETURN(stop(sim::filter_section, hFilter, false));
}

int32_t QLX_SectionFilterDelete(uint32_t hFilter) {
    SIM_ENTRY("filter=%u", hFilter);
    SIM_RETURN(stop(sim::filter_section, hFilter, true));
}

int32_t QLX_SectionFilterFreeBuffer(void* pBuffer) {
    SIM_ENTRY("buffer=%s", sim::showPointer(pBuffer));
    SIM_RETURN(freeBuffer(sim::filter_section, pBuffer));
}

int32_t QLX_PesFilterConfigure(uint32_t hFilter, const QLX_PesFilterParams* pstParams) {
    SIM_ENTRY("filter=%u params=%s", hFilter, sim::show(pstParams).c_str());
    if (pstParams == nullptr)
        SIM_RETURN(QLX_DEMUX_ERR_INVALID_PARA);
    SIM_RETURN(
        configure(sim::filter_pes, hFilter, pstParams->uPid, pstParams->uBufferSize, nullptr));
}

int32_t QLX_PesFilterRegisterCallback(uint32_t hFilter, void* pUserdata,
                                      QLX_FilterCallback callback) {
    SIM_ENTRY("filter=%u userData=%s callback=%s", hFilter, sim::showPointer(pUserdata),
              sim::showPointer(callback));
    SIM_RETURN(registerCallback(sim::filter_pes, hFilter, pUserdata, callback));
}

int32_t QLX_PesFilterUnRegisterCallback(uint32_t hFilter, QLX_FilterCallback callback) {
    SIM_ENTRY("filter=%u callback=%s", hFilter, sim::showPointer(callback));
    SIM_RETURN(unregisterCallback(sim::filter_pes, hFilter, callback));
}

int32_t QLX_PesFilterStart(uint32_t hFilter) {
    SIM_ENTRY("filter=%u", hFilter);
    SIM_RETURN(start(sim::filter_pes, hFilter));
}

int32_t QLX_PesFilterStop(uint32_t hFilter) {
    SIM_ENTRY("filter=%u", hFilter);
    SIM_RETURN(stop(sim::filter_pes, hFilter, false));
}

int32_t QLX_PesFilterDelete(uint32_t hFilter) {
    SIM_ENTRY("filter=%u", hFilter);
    SIM_RETURN(stop(sim::filter_pes, hFilter, true));
}

int32_t QLX_PesFilterFreeBuffer(void* pBuffer) {
    SIM_ENTRY("buffer=%s", sim::showPointer(pBuffer));
    SIM_RETURN(freeBuffer(sim::filter_pes, pBuffer));
}

int32_t QLX_PacketFilterConfigure(uint32_t hFilter, const QLX_PacketFilterParams* pstParams) {
    SIM_ENTRY("filter=%u params=%s", hFilter, sim::show(pstParams).c_str());
    if (pstParams == nullptr)
        SIM_RETURN(QLX_DEMUX_ERR_INVALID_PARA);
    SIM_RETURN(
        configure(sim::filter_packet, hFilter, pstParams->uPid, pstParams->uBufferSize, nullptr));
}

int32_t QLX_PacketFilterRegisterCallback(uint32_t hFilter, void* pUserdata,
                                         QLX_FilterCallback callback) {
    SIM_ENTRY("filter=%u userData=%s callback=%s", hFilter, sim::showPointer(pUserdata),
              sim::showPointer(callback));
    SIM_RETURN(registerCallback(sim::filter_packet, hFilter, pUserdata, callback));
}

int32_t QLX_PacketFilterUnRegisterCallback(uint32_t hFilter, QLX_FilterCallback callback) {
    SIM_ENTRY("filter=%u callback=%s", hFilter, sim::showPointer(callback));
    SIM_RETURN(unregisterCallback(sim::filter_packet, hFilter, callback));
}

int32_t QLX_PacketFilterStart(uint32_t hFilter) {
    SIM_ENTRY("filter=%u", hFilter);
    SIM_RETURN(start(sim::filter_packet, hFilter));
}

int32_t QLX_PacketFilterStop(uint32_t hFilter) {
    SIM_ENTRY("filter=%u", hFilter);
    SIM_RETURN(stop(sim::filter_packet, hFilter, false));
}

int32_t QLX_PacketFilterDelete(uint32_t hFilter) {
    SIM_ENTRY("filter=%u", hFilter);
    SIM_RETURN(stop(sim::filter_packet, hFilter, true));
}

int32_t QLX_PacketFilterFreeBuffer(void* pBuffer) {
    SIM_ENTRY("buffer=%s", sim::showPointer(pBuffer));
    SIM_RETURN(freeBuffer(sim::filter_packet, pBuffer));
}

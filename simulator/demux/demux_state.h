/*
 * The state that the demultiplexers and their filters share, and how a filter works.
 *
 * A started filter is a run. Each demultiplexer has one thread, on which its runs report. A run
 * knows from the index of the stream when the next thing that it lets through is on the air, and
 * has one job waiting for it or for its time-out. When what flows changes, the run looks again.
 */
#ifndef SIMULATOR_DEMUX_DEMUX_STATE_H
#define SIMULATOR_DEMUX_DEMUX_STATE_H

#include <stdint.h>

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/qlx_filter.h"
#include "simulator/core/sim.h"
#include "simulator/demux/demux.h"
#include "simulator/stream/ts_units.h"

namespace sim {

enum FilterKind {
    filter_section,
    filter_pes,
    filter_packet,
};
extern const char* const filterKindNames[];

/** Bytes that a filter has handed out and not got back. Outlives the filter. */
struct FilterAccount {
    size_t outstanding = 0;
};

/** A filter from its start to its stop. */
struct FilterRun {
    uint32_t demux;
    uint32_t handle;
    FilterKind kind;
    uint16_t pid;
    size_t bufferBytes;
    /** Of section filters. */
    QLX_SectionFilterParams section;
    bool oneShot;

    QLX_FilterCallback callback = nullptr;
    void* userData = nullptr;

    bool alive = true;
    /** A one-shot run is done after its section or its time-out. */
    bool done = false;
    /** The job that counts; earlier ones that are still queued do nothing. */
    uint64_t turn = 0;
    /** When it comes; INT64_MAX while none is queued. */
    int64_t jobUs = INT64_MAX;

    TsStreamPtr stream;
    /** What the stream has of the PID, of section and PES filters. */
    const std::vector<TsSpan>* spans = nullptr;
    const uint8_t* sectionBytes = nullptr;
    /** Places in `spans` of what the filter lets through, ascending. */
    std::vector<uint32_t> passing;
    /** The next one: place in `passing` (in the PID's packets for a packet filter), and loop. */
    size_t next = 0;
    uint64_t loop = 0;

    /** When the time-out is reported, 0: not. */
    int64_t timeOutUs = 0;

    std::shared_ptr<FilterAccount> account;
    /** Received and not yet reported. */
    std::deque<std::vector<uint8_t>> ready;
    size_t readyBytes = 0;
    /** Something found no room; told once until there is room again. */
    bool overflow = false;
    bool overflowTold = false;
};
using FilterRunPtr = std::shared_ptr<FilterRun>;

struct Filter {
    uint32_t demux = 0;
    FilterKind kind = filter_section;
    bool configured = false;
    QLX_SectionFilterParams section = {};
    uint16_t pid = 0;
    size_t bufferBytes = 0;
    QLX_FilterCallback callback = nullptr;
    void* userData = nullptr;
    std::shared_ptr<FilterAccount> account;
    FilterRunPtr run;
};

/** What recorded data are put together with, for the PIDs that run. */
struct LivePid {
    TsSectionAssembler sections;
    TsPesAssembler pes;
};

struct Demux {
    bool open = false;
    bool started = false;
    QLX_Source source = {};
    TsStreamPtr stream;
    uint64_t since = 0;
    uint64_t change = 0;
    /** The tuning that the stream belongs to. */
    uint64_t reception = 0;
    std::map<uint16_t, LivePid> live;
    uint64_t livePackets = 0;
    /** What is injected, whatever the demultiplexer is connected to. */
    TsStreamPtr injected;
};

struct HandedOut {
    FilterKind kind;
    std::vector<uint8_t> bytes;
    std::shared_ptr<FilterAccount> account;
};

struct DemuxFamily {
    std::mutex mutex;
    bool initialised = false;
    Demux demuxes[demuxCount];
    std::map<uint32_t, Filter> filters;
    uint32_t lastHandle = 0;
    std::map<void*, std::unique_ptr<HandedOut>> buffers;
    std::vector<std::function<void(uint32_t)>> listeners;
};

DemuxFamily& demuxFamily();
/** The thread on which the filters of a demultiplexer report. */
EventThread& demuxThread(uint32_t demux);

/* Of the runs. Called with the family locked. */

/** Lets the time-out of a section filter begin now. */
void armTimeOut(FilterRun& run);
/** Lets the run look at what flows now; `keepPlace`: from where it was. */
void attachRun(FilterRun& run, const Demux& demux, bool keepPlace);
/** Puts the run's job where its next event is. */
void scheduleRun(const FilterRunPtr& run);
/** Takes recorded data in. */
void feedRun(const FilterRunPtr& run, const TsUnit& unit);

/* Called without the lock. */

/** Ends runs that were marked dead, and waits for their callbacks. */
void awaitRuns(const std::vector<FilterRunPtr>& runs);
/** Waits for a callback that runs; the run goes on. */
void pauseRun(const FilterRunPtr& run);

/** Whether a section filter lets a section through, but for its CRC. */
bool sectionPasses(const QLX_SectionFilterParams& params, const uint8_t* section, size_t size);

}  // namespace sim

#endif

// How a started filter works: what it lets through, when that is on the air, and its reports.
#include <algorithm>
#include <utility>

#include "simulator/demux/demux_state.h"

namespace sim {

namespace {

/** Time-outs come this much early, so that who waits exactly as long has the report by then. */
constexpr int64_t timeOutLeadMs = 2;
/** Transport packets are reported together, this often at most. */
constexpr int64_t packetGridUs = 10000;
constexpr int64_t never = INT64_MAX;

size_t countOf(const FilterRun& run) {
    return run.kind == filter_packet ? run.stream->packetsOf(run.pid).size() : run.passing.size();
}

uint32_t firstPacketOf(const FilterRun& run, size_t place) {
    if (run.kind == filter_packet)
        return run.stream->packetsOf(run.pid)[place];
    return (*run.spans)[run.passing[place]].first;
}

bool wrongCrcStops(const FilterRun& run) {
    return run.section.eCrcMode != QLX_SECTION_CRC_NO_CHECK;
}

void findPassing(FilterRun& run) {
    run.passing.clear();
    if (run.kind == filter_packet)
        return;
    if (run.kind == filter_pes) {
        run.spans = &run.stream->pesOf(run.pid);
    } else {
        const TsSections& sections = run.stream->sectionsOf(run.pid);
        run.spans = &sections.spans;
        run.sectionBytes = sections.bytes.data();
    }
    for (uint32_t i = 0; i < run.spans->size(); i++) {
        const TsSpan& span = (*run.spans)[i];
        if (run.kind == filter_section &&
            ((!span.crcGood && wrongCrcStops(run)) ||
             !sectionPasses(run.section, run.sectionBytes + span.offset, span.size)))
            continue;
        run.passing.push_back(i);
    }
}

/** Lets the next one be the first that begins in packet `number` or later. */
void seek(FilterRun& run, uint64_t number) {
    run.loop = number / run.stream->packetCount();
    auto place = static_cast<uint32_t>(number % run.stream->packetCount());
    size_t low = 0;
    size_t high = countOf(run);
    while (low < high) {
        size_t middle = (low + high) / 2;
        if (firstPacketOf(run, middle) < place)
            low = middle + 1;
        else
            high = middle;
    }
    run.next = low;
}

void advance(FilterRun& run) {
    run.next++;
    if (run.next >= countOf(run)) {
        run.next = 0;
        run.loop++;
    }
}

/** When the next one is whole; a packet filter waits a little for more. */
int64_t nextDueUs(FilterRun& run) {
    if (run.done || run.stream == nullptr || countOf(run) == 0)
        return never;
    if (run.next >= countOf(run)) {
        run.next = 0;
        run.loop++;
    }
    uint64_t base = run.loop * run.stream->packetCount();
    if (run.kind != filter_packet)
        return run.stream->endUs(base + (*run.spans)[run.passing[run.next]].last);
    int64_t due = run.stream->endUs(base + firstPacketOf(run, run.next));
    return (due + packetGridUs - 1) / packetGridUs * packetGridUs;
}

size_t roomOf(const FilterRun& run) {
    size_t used = run.account->outstanding + run.readyBytes;
    return used < run.bufferBytes ? run.bufferBytes - used : 0;
}

void makeReady(FilterRun& run, std::vector<uint8_t> bytes) {
    run.overflowTold = false;
    run.readyBytes += bytes.size();
    run.ready.push_back(std::move(bytes));
    run.done = run.oneShot;
}

/** The bytes of the next one, which has come. */
std::vector<uint8_t> bytesOfNext(const FilterRun& run) {
    const TsSpan& span = (*run.spans)[run.passing[run.next]];
    if (run.kind == filter_pes)
        return run.stream->pesBytes(run.pid, span, run.loop);
    const uint8_t* bytes = run.sectionBytes + span.offset;
    return std::vector<uint8_t>(bytes, bytes + span.size);
}

/** Takes the packets that have come by now, as many as there is room for. */
void collectPackets(FilterRun& run, int64_t now) {
    std::vector<uint8_t> bytes;
    size_t room = roomOf(run);
    for (;;) {
        nextDueUs(run);
        uint64_t number = run.loop * run.stream->packetCount() + firstPacketOf(run, run.next);
        if (run.stream->endUs(number) > now)
            break;
        if (bytes.size() + tsPacketBytes > room) {
            run.overflow = true;
            seek(run, run.stream->packetAt(now));
            break;
        }
        bytes.resize(bytes.size() + tsPacketBytes);
        run.stream->copyPacket(number, &bytes[bytes.size() - tsPacketBytes]);
        advance(run);
    }
    if (!bytes.empty())
        makeReady(run, std::move(bytes));
}

/** Takes what has come by now. */
void collect(FilterRun& run, int64_t now) {
    while (nextDueUs(run) <= now) {
        if (run.kind == filter_packet) {
            collectPackets(run, now);
            continue;
        }
        if ((*run.spans)[run.passing[run.next]].size > roomOf(run)) {
            // Whatever has come while the buffer was full is lost, however long that was.
            run.overflow = true;
            seek(run, run.stream->packetAt(now));
            continue;
        }
        makeReady(run, bytesOfNext(run));
        advance(run);
    }
}

struct Report {
    uint32_t event = 0;
    std::vector<uint8_t> bytes;
};

/** Takes the next report off the run. Called with the family locked. */
bool nextReport(FilterRun& run, Report* report) {
    int64_t now = nowUs();
    collect(run, now);
    if (!run.ready.empty()) {
        report->event = QLX_FILTER_EVENT_DATA_COME;
        report->bytes = std::move(run.ready.front());
        run.ready.pop_front();
        run.readyBytes -= report->bytes.size();
        if (run.done)
            run.timeOutUs = 0;
        else
            armTimeOut(run);
        return true;
    }
    if (run.overflow) {
        run.overflow = false;
        bool told = run.overflowTold;
        run.overflowTold = true;
        report->event = QLX_FILTER_EVENT_OVERFLOW;
        return !told;
    }
    if (run.timeOutUs != 0 && now >= run.timeOutUs) {
        run.timeOutUs = 0;
        run.done = run.oneShot;
        report->event = QLX_FILTER_EVENT_TIMEOUT;
        return true;
    }
    return false;
}

/** A buffer of the program's own until it is given back. */
void* handOut(FilterKind kind, const std::vector<uint8_t>& bytes,
              const std::shared_ptr<FilterAccount>& account) {
    auto buffer = std::make_unique<HandedOut>(HandedOut{kind, bytes, account});
    void* data = buffer->bytes.data();
    DemuxFamily& family = demuxFamily();
    std::lock_guard<std::mutex> lock(family.mutex);
    account->outstanding += bytes.size();
    family.buffers[data] = std::move(buffer);
    return data;
}

void tell(const FilterRun& run, QLX_FilterCallback callback, void* userData, Report& report) {
    bool data = report.event == QLX_FILTER_EVENT_DATA_COME;
    uint32_t length = static_cast<uint32_t>(report.bytes.size());
    std::vector<Value> values = {marked("event", &report.event)};
    if (data)
        values.insert(values.end(),
                      {marked("length", &length), bytesValue("data", report.bytes.data(), length)});
    deliver(filterKindNames[run.kind], format("filter=%u", run.handle), values, [&] {
        if (!data) {
            callback(report.event, userData, nullptr);
            return;
        }
        QLX_FilterData record = {};
        record.uLength = length;
        record.pBuffer = static_cast<uint8_t*>(handOut(run.kind, report.bytes, run.account));
        callback(report.event, userData, &record);
    });
}

/** The job of a run: reports what there is, then waits for what comes next. */
void work(const FilterRunPtr& run, uint64_t turn) {
    for (;;) {
        Report report;
        QLX_FilterCallback callback = nullptr;
        void* userData = nullptr;
        {
            std::lock_guard<std::mutex> lock(demuxFamily().mutex);
            if (!run->alive || run->turn != turn)
                return;
            run->jobUs = 0;
            if (!nextReport(*run, &report)) {
                run->jobUs = never;
                scheduleRun(run);
                return;
            }
            callback = run->callback;
            userData = run->userData;
        }
        if (callback != nullptr)
            tell(*run, callback, userData, report);
    }
}

}  // namespace

const char* const filterKindNames[] = {"SectionFilter", "PesFilter", "PacketFilter"};

bool sectionPasses(const QLX_SectionFilterParams& params, const uint8_t* section, size_t size) {
    bool negated = false;
    bool differs = false;
    for (size_t i = 0; i < params.uDepth && i < QLX_SECTION_FILTER_BYTES; i++) {
        if (params.au8Mask[i] == 0)
            continue;
        // Table id, then what follows the two bytes with section_length.
        size_t place = i == 0 ? 0 : i + 2;
        if (place >= size)
            return false;
        uint8_t difference = (section[place] ^ params.au8Match[i]) & params.au8Mask[i];
        if ((difference & ~params.au8Negate[i]) != 0)
            return false;
        negated = negated || (params.au8Mask[i] & params.au8Negate[i]) != 0;
        differs = differs || (difference & params.au8Negate[i]) != 0;
    }
    return !negated || differs;
}

void armTimeOut(FilterRun& run) {
    int64_t ms = run.kind == filter_section ? run.section.uTimeOutMs : 0;
    run.timeOutUs = ms == 0 ? 0 : nowUs() + std::max<int64_t>(ms - timeOutLeadMs, 1) * 1000;
}

void attachRun(FilterRun& run, const Demux& demux, bool keepPlace) {
    uint64_t number = 0;
    // Recorded data come packet by packet (feedRun).
    const TsStreamPtr stream =
        demux.stream != nullptr && demux.stream->lineage() != 0 ? nullptr : demux.stream;
    bool placed = keepPlace && run.stream != nullptr && stream != nullptr &&
                  run.stream->packetCount() == stream->packetCount() && countOf(run) > 0;
    if (placed)
        number = run.loop * run.stream->packetCount() +
                 firstPacketOf(run, std::min(run.next, countOf(run) - 1));
    if (!keepPlace) {
        run.ready.clear();
        run.readyBytes = 0;
    }
    run.stream = stream;
    run.passing.clear();
    if (run.stream == nullptr)
        return;
    findPassing(run);
    seek(run, placed ? number : run.stream->packetAt(nowUs()));
}

void scheduleRun(const FilterRunPtr& run) {
    int64_t due = nextDueUs(*run);
    if (run->timeOutUs != 0 && !run->done)
        due = std::min(due, run->timeOutUs);
    if (!run->ready.empty() || run->overflow)
        due = 0;
    // A job that comes too early finds nothing to report, and waits again.
    if (due >= run->jobUs)
        return;
    run->jobUs = due;
    uint64_t turn = ++run->turn;
    int64_t delayMs = std::max<int64_t>(0, (due - nowUs() + 999) / 1000);
    demuxThread(run->demux).post(run.get(), delayMs, [run, turn] { work(run, turn); });
}

void feedRun(const FilterRunPtr& run, const TsUnit& unit) {
    if (run->done)
        return;
    if (run->kind == filter_section) {
        bool crcGood =
            !sectionHasCrc(unit.bytes, unit.size) || sectionCrcIsRight(unit.bytes, unit.size);
        if ((!crcGood && wrongCrcStops(*run)) ||
            !sectionPasses(run->section, unit.bytes, unit.size))
            return;
    }
    if (unit.size > roomOf(*run))
        run->overflow = true;
    else
        makeReady(*run, std::vector<uint8_t>(unit.bytes, unit.bytes + unit.size));
    scheduleRun(run);
}

void awaitRuns(const std::vector<FilterRunPtr>& runs) {
    for (const FilterRunPtr& run : runs)
        demuxThread(run->demux).cancel(run.get());
}

void pauseRun(const FilterRunPtr& run) {
    {
        std::lock_guard<std::mutex> lock(demuxFamily().mutex);
        run->turn++;
    }
    demuxThread(run->demux).cancel(run.get());
    std::lock_guard<std::mutex> lock(demuxFamily().mutex);
    run->jobUs = never;
    if (run->alive)
        scheduleRun(run);
}

}  // namespace sim

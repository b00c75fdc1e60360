/*
 * Every slot goes to the most urgent of: a clock reference that is due; a packet of a section whose
 * time has come; the PES packet with the earliest deadline among those that may be sent; else a
 * null packet. Packets of one PID keep a distance, so that the transport buffer of a receiver's
 * section decoder (512 bytes, emptied at 1 Mbit/s) holds them, and so do sections of one sub-table
 * (EN 300 468, 5.1.4), whose sections a receiver may have to take one by one.
 */
#include "tools/mkstreams/multiplexer.h"

#include <bitstream/dvb/si/st.h>
#include <bitstream/mpeg/pes.h>
#include <bitstream/mpeg/ts.h>

#include <algorithm>
#include <deque>
#include <map>

namespace mkstreams {

static const uint16_t nullPid = 0x1FFF;
static const size_t payloadSize = packetSize - TS_HEADER_SIZE;
static const unsigned countersPerCycle = 16;
static const int64_t sectionSpacing = 27000000LL * 1504 / 1000000;
static const int64_t subTableSpacing = 25 * ticksPerMs;
static const int64_t pcrWelcomeAfter = 20 * ticksPerMs;
static const int64_t pcrForcedAfter = 34 * ticksPerMs;
static const size_t pcrFieldSize = 8;  // adaptation_field_length, flags, PCR

/** A packet of sections, complete but for its continuity counter, and when it is due. */
struct SectionPacket {
    int64_t due;
    Bytes packet;
    std::vector<uint32_t> begins;  // sub-tables of which a section begins in it
    std::vector<uint32_t> ends;    // or comes to its end
};

/** When a sub-table's sections were sent. */
struct SubTableTimes {
    int64_t firstBegin;
    int64_t lastEnd;
};

/** What waits on a section PID. */
struct SectionQueue {
    uint16_t pid;
    std::deque<SectionPacket> packets;
    int64_t notBefore;
    std::map<uint32_t, SubTableTimes> subTables;
};

/** Where an elementary stream stands. */
struct StreamState {
    const PesStream* stream;
    size_t next;    // PES packet
    size_t offset;  // bytes of it that are sent
    unsigned sent;  // packets with payload so far
    unsigned left;  // packets that the last PES packet is spread over; 0 before it starts
};

/** Cuts a burst into packets with pointer fields; continuity counters are set when sent. */
static std::vector<SectionPacket> packetsOf(const Burst& burst) {
    Bytes stream;
    std::vector<size_t> starts;
    for (const Bytes& section : burst.sections) {
        starts.push_back(stream.size());
        append(stream, section);
    }
    std::vector<SectionPacket> packets;
    size_t at = 0;
    size_t nextStart = 0;
    size_t nextEnd = 0;
    while (at < stream.size()) {
        SectionPacket out = {0, Bytes(packetSize, 0xFF), {}, {}};
        Bytes& packet = out.packet;
        ts_init(packet.data());
        ts_set_pid(packet.data(), burst.pid);
        ts_set_payload(packet.data());
        size_t room = payloadSize;
        if (burst.adaptation && at == 0) {
            ts_set_adaptation(packet.data(), 1);
            room -= 2;
        }
        // A pointer field only where a section starts in what is left after it.
        bool starting = nextStart < starts.size() && starts[nextStart] < at + room - 1;
        uint8_t* to = packet.data() + packetSize - room;
        if (starting) {
            ts_set_unitstart(packet.data());
            *to++ = static_cast<uint8_t>(starts[nextStart] - at);
            room--;
        }
        size_t size = std::min(room, stream.size() - at);
        // A section that would start in the last byte, where a pointer field no longer fits, waits
        // for the next packet; the byte stays stuffing.
        if (!starting && nextStart < starts.size())
            size = std::min(size, starts[nextStart] - at);
        std::copy_n(stream.begin() + static_cast<ptrdiff_t>(at), size, to);
        at += size;
        for (; nextStart < starts.size() && starts[nextStart] < at; nextStart++)
            out.begins.push_back(subTableOf(burst.sections[nextStart]));
        for (; nextEnd < starts.size() && starts[nextEnd] + burst.sections[nextEnd].size() <= at;
             nextEnd++)
            out.ends.push_back(subTableOf(burst.sections[nextEnd]));
        packets.push_back(out);
    }
    return packets;
}

int64_t repetitions(const Burst& burst, int64_t duration) {
    int64_t period = burst.periodMs * ticksPerMs;
    int64_t needed = (duration + period - 1) / period;
    if (burst.anyCount)
        return needed;
    return (needed + countersPerCycle - 1) / countersPerCycle * countersPerCycle;
}

/** The bursts by PID, in the order of their coming. */
static std::map<uint16_t, std::vector<const Burst*>> byPid(const std::vector<Burst>& bursts) {
    std::map<uint16_t, std::vector<const Burst*>> sorted;
    for (const Burst& burst : bursts)
        sorted[burst.pid].push_back(&burst);
    return sorted;
}

/** Adds sections of stuffing, spread over the loop, until the packets of a PID are whole cycles of
 *  the continuity counter. */
static void fillCycles(SectionQueue* queue, int64_t duration) {
    Burst stuffing = {"ST", queue->pid, {Bytes(16, 0xFF)}, 0, false};
    st_init(stuffing.sections[0].data());
    psi_set_length(stuffing.sections[0].data(), 16 - PSI_HEADER_SIZE);
    size_t used = queue->packets.size() % countersPerCycle;
    int64_t missing = used == 0 ? 0 : static_cast<int64_t>(countersPerCycle - used);
    for (int64_t k = 0; k < missing; k++) {
        queue->packets.push_back(packetsOf(stuffing).front());
        queue->packets.back().due = duration * k / missing;
    }
}

/** Lays all repetitions of all bursts out in time, a queue for each PID. The bursts of a PID start
 *  evenly spread over their periods, and those of different PIDs a little apart. */
static std::vector<SectionQueue> layOut(const std::vector<Burst>& bursts, int64_t duration) {
    std::vector<SectionQueue> queues;
    auto sorted = byPid(bursts);
    for (const auto& [pid, mine] : sorted) {
        SectionQueue queue = {pid, {}, 0, {}};
        int64_t places = static_cast<int64_t>(mine.size() * sorted.size());
        int64_t place = static_cast<int64_t>(queues.size());
        for (const Burst* burst : mine) {
            std::vector<SectionPacket> packets = packetsOf(*burst);
            int64_t count = repetitions(*burst, duration);
            int64_t phase = duration / count * place / places;
            for (int64_t k = 0; k < count; k++) {
                for (SectionPacket& packet : packets) {
                    packet.due = phase + duration * k / count;
                    queue.packets.push_back(packet);
                }
            }
            place += static_cast<int64_t>(sorted.size());
        }
        fillCycles(&queue, duration);
        std::stable_sort(
            queue.packets.begin(), queue.packets.end(),
            [](const SectionPacket& a, const SectionPacket& b) { return a.due < b.due; });
        queues.push_back(queue);
    }
    return queues;
}

/** The multiplexer at work on one loop. */
struct Work {
    const MultiplexInput* input;
    int64_t ticks;
    std::vector<SectionQueue> queues;
    std::vector<StreamState> streams;
    std::map<uint16_t, unsigned> counters;
    int64_t lastPcr;
    Bytes* out;
};

/** Appends a packet, giving it the continuity counter of its PID. */
static void emit(Work& work, Bytes& packet) {
    uint16_t pid = ts_get_pid(packet.data());
    if (pid != nullPid) {
        unsigned& counter = work.counters[pid];
        // Without payload the counter repeats that of the packet before.
        if (!ts_has_payload(packet.data()))
            ts_set_cc(packet.data(), static_cast<uint8_t>((counter + 15) % 16));
        else
            ts_set_cc(packet.data(), static_cast<uint8_t>(counter++ % 16));
    }
    append(*work.out, packet);
}

static void setPcr(Bytes& packet, int64_t now) {
    tsaf_set_pcr(packet.data(), static_cast<uint64_t>(now / ticksPer90k));
    tsaf_set_pcrext(packet.data(), static_cast<uint16_t>(now % ticksPer90k));
}

static void sendNull(Work& work) {
    Bytes packet(packetSize, 0xFF);
    ts_pad(packet.data());
    emit(work, packet);
}

static void sendPcr(Work& work, int64_t now) {
    Bytes packet(packetSize, 0xFF);
    ts_init(packet.data());
    ts_set_pid(packet.data(), work.input->pcrPid);
    ts_set_adaptation(packet.data(), payloadSize - 1);
    setPcr(packet, now);
    work.lastPcr = now;
    emit(work, packet);
}

/** Whether the first packet of a queue is due, and far enough behind those before it. */
static bool maySend(const SectionQueue& queue, int64_t now) {
    if (queue.packets.empty() || queue.packets.front().due > now || queue.notBefore > now)
        return false;
    const std::vector<uint32_t>& begins = queue.packets.front().begins;
    return std::all_of(begins.begin(), begins.end(), [&](uint32_t subTable) {
        auto known = queue.subTables.find(subTable);
        return known == queue.subTables.end() || now >= known->second.lastEnd + subTableSpacing;
    });
}

/** Sends the next packet of sections that is due, if any PID may send one. */
static bool sendSection(Work& work, int64_t now) {
    SectionQueue* chosen = nullptr;
    for (SectionQueue& queue : work.queues)
        if (maySend(queue, now) &&
            (chosen == nullptr || queue.packets.front().due < chosen->packets.front().due))
            chosen = &queue;
    if (chosen == nullptr)
        return false;
    SectionPacket& packet = chosen->packets.front();
    emit(work, packet.packet);
    for (uint32_t subTable : packet.begins)
        chosen->subTables.insert({subTable, {now, 0}});
    for (uint32_t subTable : packet.ends)
        chosen->subTables[subTable].lastEnd = now + work.ticks;
    chosen->packets.pop_front();
    chosen->notBefore = now + sectionSpacing;
    return true;
}

/** The stream whose PES packet has the earliest deadline among those that may be sent now. */
static StreamState* mostUrgent(Work& work, int64_t now) {
    StreamState* chosen = nullptr;
    for (StreamState& state : work.streams) {
        if (state.next == state.stream->packets.size())
            continue;
        const Pes& pes = state.stream->packets[state.next];
        if (pes.earliest > now)
            continue;
        if (chosen == nullptr || pes.latest < chosen->stream->packets[chosen->next].latest)
            chosen = &state;
    }
    return chosen;
}

/** Bytes of the header of a PES packet; what begins otherwise has none (ISO/IEC 13818-1, 2.4.3.6).
 */
static size_t headerSize(const Bytes& pes) {
    if (pes.size() < PES_HEADER_SIZE_NOPTS || !pes_validate(pes.data()))
        return 0;
    return static_cast<size_t>(PES_HEADER_SIZE_NOPTS) + pes_get_headerlength(pes.data());
}

/** How many bytes the next packet of the last PES packet of a stream takes: it is spread over so
 *  many packets that the stream's packets are a multiple of 16. Its header stays whole. */
static size_t shareOfLast(StreamState& state, const Bytes& pes) {
    size_t remaining = pes.size() - state.offset;
    if (state.left == 0) {
        unsigned needed = static_cast<unsigned>((remaining + payloadSize - 1) / payloadSize);
        unsigned total = state.sent + needed;
        state.left = needed + (countersPerCycle - total % countersPerCycle) % countersPerCycle;
    }
    size_t share = (remaining + state.left - 1) / state.left;
    state.left--;
    return state.offset == 0 ? std::max(share, headerSize(pes)) : share;
}

/** Sends the next packet of a stream's PES packet. */
static void sendPes(Work& work, StreamState& state, int64_t now) {
    const Pes& pes = state.stream->packets[state.next];
    size_t remaining = pes.bytes.size() - state.offset;
    bool first = state.offset == 0;
    bool last = state.next + 1 == state.stream->packets.size();
    bool withPcr =
        !last && state.stream->pid == work.input->pcrPid && now - work.lastPcr >= pcrWelcomeAfter;
    bool withFlags = first && pes.randomAccess;
    size_t field = withPcr ? pcrFieldSize : withFlags ? 2 : 0;
    size_t size = std::min(remaining, payloadSize - field);
    if (last)
        size = std::min(size, shareOfLast(state, pes.bytes));
    Bytes packet(packetSize, 0xFF);
    ts_init(packet.data());
    ts_set_pid(packet.data(), state.stream->pid);
    ts_set_payload(packet.data());
    if (first)
        ts_set_unitstart(packet.data());
    if (size < payloadSize)
        ts_set_adaptation(packet.data(), static_cast<uint8_t>(payloadSize - size - 1));
    if (withFlags)
        tsaf_set_randomaccess(packet.data());
    if (withPcr) {
        setPcr(packet, now);
        work.lastPcr = now;
    }
    std::copy_n(pes.bytes.begin() + static_cast<ptrdiff_t>(state.offset), size,
                packet.end() - static_cast<ptrdiff_t>(size));
    emit(work, packet);
    state.sent++;
    state.offset += size;
    if (state.offset == pes.bytes.size()) {
        state.offset = 0;
        state.next++;
    }
}

static void fillSlot(Work& work, int64_t now) {
    bool hasPcr = work.input->pcrPid != nullPid;
    if (hasPcr && now - work.lastPcr >= pcrForcedAfter) {
        sendPcr(work, now);
        return;
    }
    if (sendSection(work, now))
        return;
    StreamState* state = mostUrgent(work, now);
    if (state != nullptr)
        sendPes(work, *state, now);
    else
        sendNull(work);
}

/** What did not get through in time, if anything. */
static std::string leftOver(const Work& work) {
    for (const SectionQueue& queue : work.queues)
        if (!queue.packets.empty())
            return "sections of PID " + std::to_string(queue.pid);
    for (const SectionQueue& queue : work.queues)
        for (const auto& [subTable, times] : queue.subTables)
            if (times.firstBegin + work.input->duration < times.lastEnd + subTableSpacing)
                return "sections of PID " + std::to_string(queue.pid) + " over the loop's end";
    for (const StreamState& state : work.streams) {
        if (state.next < state.stream->packets.size())
            return "the stream of PID " + std::to_string(state.stream->pid);
        if (state.sent % countersPerCycle != 0)
            return "the last PES packet of PID " + std::to_string(state.stream->pid) +
                   " is too small to be spread";
    }
    return "";
}

static std::string lateStream(const Work& work, int64_t now) {
    for (const StreamState& state : work.streams)
        if (state.next < state.stream->packets.size() &&
            state.stream->packets[state.next].latest < now)
            return "the stream of PID " + std::to_string(state.stream->pid) + " at " +
                   std::to_string(now / ticksPerMs) + " ms";
    return "";
}

bool multiplex(const MultiplexInput& input, int64_t packetTicks, TransportStream* stream,
               std::string* error) {
    stream->packetTicks = packetTicks;
    stream->packets.clear();
    if (packetTicks <= 0 || input.duration % packetTicks != 0) {
        *error = "the loop is not a whole number of packets";
        return false;
    }
    stream->packets.reserve(static_cast<size_t>(input.duration / packetTicks) * packetSize);
    Work work = {&input,          packetTicks,     layOut(input.bursts, input.duration), {}, {},
                 -pcrForcedAfter, &stream->packets};
    for (const PesStream& pesStream : input.streams)
        work.streams.push_back({&pesStream, 0, 0, 0, 0});
    for (int64_t now = 0; now < input.duration; now += packetTicks) {
        fillSlot(work, now);
        std::string late = lateStream(work, now);
        if (!late.empty()) {
            *error = "too late: " + late;
            return false;
        }
    }
    std::string left = leftOver(work);
    if (!left.empty())
        *error = "does not fit: " + left;
    return left.empty();
}

bool multiplexAtFittingRate(const MultiplexInput& input, TransportStream* stream,
                            std::string* error) {
    // From 1.0 to 20 Mbit/s.
    static const int64_t longestTicks[] = {40600, 27000, 20300, 16200, 13500, 10800, 9000,
                                           7800,  6750,  5400,  4500,  3375,  2700,  2030};
    for (int64_t ticks : longestTicks) {
        while (input.duration % ticks != 0)
            ticks--;
        if (multiplex(input, ticks, stream, error))
            return true;
    }
    return false;
}

}  // namespace mkstreams

/*
 * Tables are laid out with libbitstream's accessors; descriptors are written byte by byte.
 *
 * What the cases compare is one section per PID and table id, alone in its packets. Next to it
 * stand the tables that make the network whole: other networks and transport streams, and the
 * schedule, whose sections are sent packed, one behind the other.
 */
#include "tools/mkstreams/dvb_tables.h"

#include <bitstream/dvb/si.h>
#include <bitstream/mpeg/psi.h>

#include "tools/mkstreams/content.h"
#include "tools/mkstreams/descriptors.h"

namespace mkstreams {

// Midnight of 15 June 2025, UTC, and half an hour: the first segment of the schedule is current.
static const int64_t midnight = 1749945600;
static const int64_t clockTime = midnight + 30 * 60;

static const uint16_t pidCat = 0x01;
static const uint16_t pidNit = 0x10;
static const uint16_t pidSdtBat = 0x11;
static const uint16_t pidEit = 0x12;
static const uint16_t pidRst = 0x13;
static const uint16_t pidTdtTot = 0x14;
static const uint16_t pidDit = 0x1E;
static const uint16_t pidSit = 0x1F;
static const uint16_t pidEmm = 0x1FF0;
// From a network's identifier to that of another one, beyond those of terrestrial stations.
static const uint16_t neighbourDistance = 0x10;
static const unsigned hoursOfSegment = 3;
static const unsigned segmentsOfTable = 32;
static const unsigned runningNow = 4;
static const unsigned runningLater = 1;

int64_t laboratoryTime() {
    return clockTime;
}

static uint64_t utc(int64_t time) {
    return dvb_time_encode_UTC(static_cast<time_t>(time));
}

/** Sets what all long sections share. */
static void setHeader(Bytes& section, unsigned version, unsigned number, unsigned last) {
    psi_set_version(section.data(), static_cast<uint8_t>(version));
    psi_set_current(section.data());
    psi_set_section(section.data(), static_cast<uint8_t>(number));
    psi_set_lastsection(section.data(), static_cast<uint8_t>(last));
}

/** Appends an entry: its fixed part, made by `set`, and descriptors, whose length `set` stores. */
template <typename Set>
static void putEntry(Bytes& section, size_t size, const Bytes& descriptors, Set set) {
    size_t at = section.size();
    section.resize(at + size);
    set(section.data() + at);
    append(section, descriptors);
}

static uint16_t length16(const Bytes& descriptors) {
    return static_cast<uint16_t>(descriptors.size());
}

/* Program specific information ----------------------------------------------------------------- */

static bool hasNetworkTables(const Multiplex& multiplex) {
    return kindOf(multiplex).network || !multiplex.referenced;
}

static Bytes patSection(const Multiplex& multiplex, unsigned version) {
    Bytes section(PAT_HEADER_SIZE);
    pat_init(section.data());
    setHeader(section, version, 0, 0);
    pat_set_tsid(section.data(), multiplex.tsId);
    auto put = [&](uint16_t program, uint16_t pid) {
        putEntry(section, PAT_PROGRAM_SIZE, Bytes(), [&](uint8_t* entry) {
            patn_init(entry);
            patn_set_program(entry, program);
            patn_set_pid(entry, pid);
        });
    };
    if (multiplex.standard->family != Family::Atsc && hasNetworkTables(multiplex))
        put(0, pidNit);
    for (const Channel& channel : multiplex.channels)
        put(serviceId(*multiplex.standard, channel), channel.pmtPid);
    closeSection(&section);
    return section;
}

static Bytes catSection(const Multiplex& multiplex, unsigned version) {
    Bytes section(CAT_HEADER_SIZE);
    cat_init(section.data());
    setHeader(section, version, 0, 0);
    append(section, caDescriptor(multiplex.standard->family, pidEmm));
    closeSection(&section);
    return section;
}

/** A message of conditional access: private data that no receiver of the laboratory reads. */
static Bytes accessSection(unsigned tableId, const char* text) {
    Bytes section(PSI_HEADER_SIZE);
    psi_init(section.data(), false);
    psi_set_tableid(section.data(), static_cast<uint8_t>(tableId));
    putText(section, text);
    psi_set_length(section.data(), static_cast<uint16_t>(section.size() - PSI_HEADER_SIZE));
    return section;
}

static void putComponent(Bytes& section, unsigned type, uint16_t pid, const Bytes& descriptors) {
    putEntry(section, PMT_ES_SIZE, descriptors, [&](uint8_t* entry) {
        pmtn_init(entry);
        pmtn_set_streamtype(entry, static_cast<uint8_t>(type));
        pmtn_set_pid(entry, pid);
        pmtn_set_desclength(entry, length16(descriptors));
    });
}

static Bytes pmtSection(const Multiplex& multiplex, const Channel& channel, unsigned version) {
    Bytes section(PMT_HEADER_SIZE);
    Bytes programme = programmeDescriptors(multiplex, channel);
    pmt_init(section.data());
    setHeader(section, version, 0, 0);
    pmt_set_program(section.data(), serviceId(*multiplex.standard, channel));
    pmt_set_pcrpid(section.data(), channel.pcrPid);
    pmt_set_desclength(section.data(), length16(programme));
    append(section, programme);
    for (const Component& component : componentsOf(multiplex, channel))
        putComponent(section, component.streamType, component.pid, component.descriptors);
    closeSection(&section);
    return section;
}

void addProgramTables(const Multiplex& multiplex, std::vector<Burst>* bursts) {
    bursts->push_back(comparedTable(
        "PAT", 0, 90, [&](unsigned version) { return patSection(multiplex, version); }));
    bursts->push_back(comparedTable(
        "CAT", pidCat, 600, [&](unsigned version) { return catSection(multiplex, version); }));
    bursts->push_back({"EMM", pidEmm, {accessSection(0x82, "Entitlement for all")}, 2000, false});
    if (kindOf(multiplex).scrambled)
        bursts->push_back({"ECM", pidEcm, {accessSection(0x80, "Control words")}, 200, false});
    for (const Channel& channel : multiplex.channels)
        bursts->push_back(comparedTable("PMT", channel.pmtPid, 90, [&](unsigned version) {
            return pmtSection(multiplex, channel, version);
        }));
}

/* Network -------------------------------------------------------------------------------------- */

static void putTransportStream(Bytes& loop, const Standard& standard, const Channel& channel,
                               const Bytes& descriptors) {
    putEntry(loop, NIT_TS_SIZE, descriptors, [&](uint8_t* entry) {
        nitn_init(entry);
        nitn_set_tsid(entry, transportStreamId(standard, channel));
        nitn_set_onid(entry, originalNetworkId(standard, channel));
        nitn_set_desclength(entry, length16(descriptors));
    });
}

/** NIT and BAT have the same form: a loop of descriptors, then one of transport streams. */
static Bytes networkSection(bool bouquet, bool actual, uint16_t id, const Bytes& descriptors,
                            const Bytes& streams, unsigned version, unsigned number,
                            unsigned last) {
    Bytes section(NIT_HEADER_SIZE);
    if (bouquet)
        bat_init(section.data());
    else
        nit_init(section.data(), actual);
    setHeader(section, version, number, last);
    psi_set_tableidext(section.data(), id);
    nit_set_desclength(section.data(), length16(descriptors));
    append(section, descriptors);
    putEntry(section, NIT_HEADER2_SIZE, streams, [&](uint8_t* entry) {
        nith_init(entry);
        nith_set_tslength(entry, length16(streams));
    });
    closeSection(&section);
    return section;
}

/** The transport streams that a multiplex's NIT tells: all of the network, each once. */
static Bytes networkStreams(const LineUp& lineUp, const Multiplex& multiplex) {
    const Standard& standard = *multiplex.standard;
    Bytes loop;
    for (const Multiplex& other : lineUp.multiplexes) {
        bool sameNetwork = other.standard == &standard && networkId(other) == networkId(multiplex);
        if (!sameNetwork)
            continue;
        Bytes descriptors;
        append(descriptors, serviceListDescriptor(other));
        append(descriptors, deliveryDescriptors(other));
        putTransportStream(loop, standard, other.channels.front(), descriptors);
    }
    return loop;
}

static void addNetwork(const LineUp& lineUp, const Multiplex& multiplex,
                       std::vector<Burst>* bursts) {
    const Standard& standard = *multiplex.standard;
    Family family = standard.family;
    Bytes name = textDescriptor(0x40, family, standard.networkName);
    Bytes streams = networkStreams(lineUp, multiplex);
    bursts->push_back(comparedTable("NIT actual", pidNit, 1000, [&](unsigned version) {
        return networkSection(false, true, networkId(multiplex), name, streams, version, 0, 0);
    }));
    // A neighbouring network in two sections, the first of which names it.
    Burst other = {"NIT other", pidNit, {}, 5000, false};
    uint16_t neighbour = static_cast<uint16_t>(networkId(multiplex) + neighbourDistance);
    for (unsigned number = 0; number < 2; number++) {
        Bytes loop;
        Channel channel = multiplex.channels.front();
        channel.index = 20 + number;
        channel.tsId = 0x0500u + number;
        putTransportStream(loop, standard, channel, Bytes());
        Bytes descriptors = number == 0 ? textDescriptor(0x40, family, "Neighbour") : Bytes();
        other.sections = {networkSection(false, false, neighbour, descriptors, loop, 1, number, 1)};
        bursts->push_back(other);
    }
    Bytes members;
    putTransportStream(members, standard, multiplex.channels.front(),
                       serviceListDescriptor(multiplex));
    bursts->push_back(comparedTable("BAT", pidSdtBat, 1000, [&](unsigned version) {
        return networkSection(true, true, 0x1001, textDescriptor(0x47, family, "Laboratory"),
                              members, version, 0, 0);
    }));
}

/* Services ------------------------------------------------------------------------------------- */

static Bytes sdtSection(const Multiplex& multiplex, bool actual, unsigned version, bool schedule) {
    const Standard& standard = *multiplex.standard;
    Bytes section(SDT_HEADER_SIZE);
    sdt_init(section.data(), actual);
    setHeader(section, version, 0, 0);
    sdt_set_tsid(section.data(), multiplex.tsId);
    sdt_set_onid(section.data(), originalNetworkId(standard, multiplex.channels.front()));
    for (const Channel& channel : multiplex.channels) {
        bool first = channel.index == multiplex.channels.front().index;
        Bytes descriptors = serviceDescriptor(standard.family, channel);
        putEntry(section, SDT_SERVICE_SIZE, descriptors, [&](uint8_t* entry) {
            sdtn_init(entry);
            sdtn_set_sid(entry, serviceId(standard, channel));
            if (first)
                sdtn_set_eitpresent(entry);
            if (first && schedule)
                sdtn_set_eitschedule(entry);
            sdtn_set_running(entry, runningNow);
            if (kindOf(multiplex).scrambled)
                sdtn_set_ca(entry);
            sdtn_set_desclength(entry, length16(descriptors));
        });
    }
    closeSection(&section);
    return section;
}

static void addServices(const LineUp& lineUp, const Multiplex& multiplex,
                        std::vector<Burst>* bursts) {
    bool network = hasNetworkTables(multiplex);
    bursts->push_back(comparedTable("SDT actual", pidSdtBat, 1000, [&](unsigned version) {
        return sdtSection(multiplex, true, version, network);
    }));
    if (!network)
        return;
    // The other transport streams of the standard go packed into one burst.
    Burst other = {"SDT other", pidSdtBat, {}, 5000, true};
    for (const Multiplex& neighbour : lineUp.multiplexes)
        if (neighbour.standard == multiplex.standard && neighbour.tsId != multiplex.tsId)
            other.sections.push_back(sdtSection(neighbour, false, 1, hasNetworkTables(neighbour)));
    if (!other.sections.empty())
        bursts->push_back(other);
}

/* Events --------------------------------------------------------------------------------------- */

/** What an EIT section is about. */
struct EitHead {
    const Multiplex* multiplex;
    unsigned tableId;
    unsigned number;
    unsigned last;
    unsigned segmentLast;
    unsigned lastTableId;
};

static void putEvent(Bytes& section, const Multiplex& multiplex, unsigned hour, bool running) {
    Bytes descriptors = eventDescriptors(multiplex, hour);
    putEntry(section, EIT_EVENT_SIZE, descriptors, [&](uint8_t* entry) {
        eitn_init(entry);
        eitn_set_event_id(entry, static_cast<uint16_t>(0x100 + hour));
        eitn_set_start_time(entry, utc(midnight + 3600 * static_cast<int64_t>(hour)));
        eitn_set_duration_bcd(entry, dvb_time_encode_duration(3600));
        eitn_set_running(entry, static_cast<uint8_t>(running ? runningNow : runningLater));
        if (kindOf(multiplex).scrambled)
            eitn_set_ca(entry);
        eitn_set_desclength(entry, length16(descriptors));
    });
}

/** A section with the events that start in `count` hours from `hour` on; events last an hour. */
static Bytes eitSection(const EitHead& head, unsigned version, unsigned hour, unsigned count) {
    const Multiplex& multiplex = *head.multiplex;
    const Channel& channel = multiplex.channels.front();
    Bytes section(EIT_HEADER_SIZE);
    eit_init(section.data(), true);
    psi_set_tableid(section.data(), static_cast<uint8_t>(head.tableId));
    setHeader(section, version, head.number, head.last);
    eit_set_sid(section.data(), serviceId(*multiplex.standard, channel));
    eit_set_tsid(section.data(), multiplex.tsId);
    eit_set_onid(section.data(), originalNetworkId(*multiplex.standard, channel));
    eit_set_segment_last_sec_number(section.data(), static_cast<uint8_t>(head.segmentLast));
    eit_set_last_table_id(section.data(), static_cast<uint8_t>(head.lastTableId));
    for (unsigned k = 0; k < count; k++)
        putEvent(section, multiplex, hour + k, hour + k == 0);
    closeSection(&section);
    return section;
}

/** The schedule of a service in one table id, which holds 32 segments of three hours. */
struct ScheduleTable {
    const Multiplex* multiplex;
    unsigned tableId;
    unsigned lastTableId;
    unsigned firstHour;
    unsigned told;     /**< segments with events */
    unsigned segments; /**< those behind them are empty */
};

/** The one section of a segment: sections of segments are 8 apart. */
static Bytes scheduleSection(const ScheduleTable& table, unsigned segment) {
    EitHead head = {table.multiplex,          table.tableId, 8 * segment,
                    8 * (table.segments - 1), 8 * segment,   table.lastTableId};
    return eitSection(head, 3, table.firstHour + hoursOfSegment * segment,
                      segment < table.told ? hoursOfSegment : 0);
}

/** The multiplex whose events the "other" tables tell: the next one of the standard. */
static const Multiplex& neighbourOf(const LineUp& lineUp, const Multiplex& multiplex) {
    const Multiplex* first = nullptr;
    bool passed = false;
    for (const Multiplex& other : lineUp.multiplexes) {
        if (other.standard != multiplex.standard)
            continue;
        if (&other == &multiplex)
            passed = true;
        else if (passed)
            return other;
        else if (first == nullptr)
            first = &other;
    }
    return first == nullptr ? multiplex : *first;
}

/** The schedule. Each burst packs sections of different sub-tables, since two sections of one
 *  sub-table must be 25 ms apart. */
static void addSchedule(const Multiplex& multiplex, const Multiplex& neighbour, uint16_t pid,
                        std::vector<Burst>* bursts) {
    static const unsigned actual = 0x50;
    static const unsigned other = 0x60;
    // File 1 is the one whose schedule is compared: it has one section, and a day of the other
    // stream. The others tell two days, and in the next table id the beginning of the fifth: what
    // lies between is empty, but it is told (TR 101 211, 4.1.4).
    const ScheduleTable compared[] = {{&neighbour, other, other, 0, 8, 8}};
    const ScheduleTable whole[] = {
        {&multiplex, actual, actual + 1, 0, 16, segmentsOfTable},
        {&neighbour, other, other, 0, 16, 16},
        {&multiplex, actual + 1, actual + 1, segmentsOfTable * hoursOfSegment, 2, 2}};
    std::vector<ScheduleTable> tables(std::begin(whole), std::end(whole));
    if (multiplex.fileIndex == 1) {
        tables.assign(std::begin(compared), std::end(compared));
        bursts->push_back(comparedTable("EIT schedule actual", pid, 900, [&](unsigned version) {
            return eitSection({&multiplex, actual, 0, 0, 0, actual}, version, 0, 3);
        }));
    }
    for (unsigned segment = 0; segment < segmentsOfTable; segment++) {
        Burst burst = {"EIT schedule", pid, {}, 3000, false, true};
        for (const ScheduleTable& table : tables)
            if (segment < table.segments)
                burst.sections.push_back(scheduleSection(table, segment));
        if (!burst.sections.empty())
            bursts->push_back(burst);
    }
}

static void addEvents(const LineUp& lineUp, const Multiplex& multiplex,
                      std::vector<Burst>* bursts) {
    uint16_t pid = multiplex.channels.front().eitPid;
    if (pid == 0)
        pid = pidEit;
    // One section, the present event of the first service: the cases compare all that comes.
    bursts->push_back(comparedTable("EIT present", pid, 700, [&](unsigned version) {
        return eitSection({&multiplex, 0x4E, 0, 0, 0, 0x4E}, version, 0, 1);
    }));
    if (!hasNetworkTables(multiplex))
        return;
    const Multiplex& neighbour = neighbourOf(lineUp, multiplex);
    for (unsigned number = 0; number < 2; number++)
        bursts->push_back({"EIT present/following other",
                           pid,
                           {eitSection({&neighbour, 0x4F, number, 1, 1, 0x4F}, 2, number, 1)},
                           2000,
                           number == 1});
    addSchedule(multiplex, neighbour, pid, bursts);
}

/* Clock and the small tables ------------------------------------------------------------------- */

static Bytes tdtSection() {
    Bytes section(TDT_HEADER_SIZE);
    tdt_init(section.data());
    tdt_set_utc(section.data(), utc(clockTime));
    return section;
}

static Bytes totSection(Family family) {
    Bytes descriptors = localTimeOffsetDescriptor(family, utc(midnight + 133 * 86400 + 3600));
    Bytes section(TOT_HEADER_SIZE);
    tot_init(section.data());
    tot_set_utc(section.data(), utc(clockTime));
    tot_set_desclength(section.data(), length16(descriptors));
    append(section, descriptors);
    closeSection(&section);
    return section;
}

static Bytes rstSection(const Multiplex& multiplex) {
    const Channel& channel = multiplex.channels.front();
    Bytes section(RST_HEADER_SIZE);
    rst_init(section.data());
    putEntry(section, RST_STATUS_SIZE, Bytes(), [&](uint8_t* entry) {
        rstn_init(entry);
        rstn_set_tsid(entry, multiplex.tsId);
        rstn_set_onid(entry, originalNetworkId(*multiplex.standard, channel));
        rstn_set_service_id(entry, serviceId(*multiplex.standard, channel));
        rstn_set_event_id(entry, 0x100);
        rstn_set_running(entry, runningNow);
    });
    rst_set_length(section.data(), RST_STATUS_SIZE);
    return section;
}

static Bytes ditSection() {
    Bytes section(DIT_HEADER_SIZE + 1);
    dit_init(section.data());
    dit_set_transition_flag(section.data(), false);
    return section;
}

static Bytes sitSection(const Multiplex& multiplex, unsigned version) {
    const Channel& channel = multiplex.channels.front();
    Bytes section(SIT_HEADER_SIZE);
    sit_init(section.data());
    setHeader(section, version, 0, 0);
    Bytes transmission = partialStreamDescriptor();
    sit_set_desclength(section.data(), length16(transmission));
    append(section, transmission);
    Bytes descriptors = serviceDescriptor(multiplex.standard->family, channel);
    putEntry(section, SIT_SERVICE_SIZE, descriptors, [&](uint8_t* entry) {
        sitn_init(entry);
        sitn_set_sid(entry, serviceId(*multiplex.standard, channel));
        sitn_set_running(entry, runningNow);
        sitn_set_desclength(entry, length16(descriptors));
    });
    closeSection(&section);
    return section;
}

void addServiceTables(const LineUp& lineUp, const Multiplex& multiplex,
                      std::vector<Burst>* bursts) {
    bursts->push_back({"TDT", pidTdtTot, {tdtSection()}, 5000, false});
    bursts->push_back({"TOT", pidTdtTot, {totSection(multiplex.standard->family)}, 5000, false});
    addServices(lineUp, multiplex, bursts);
    addEvents(lineUp, multiplex, bursts);
    if (!hasNetworkTables(multiplex))
        return;
    addNetwork(lineUp, multiplex, bursts);
    bursts->push_back({"RST", pidRst, {rstSection(multiplex)}, 900, false});
    bursts->push_back({"DIT", pidDit, {ditSection()}, 1500, false});
    bursts->push_back(comparedTable(
        "SIT", pidSit, 900, [&](unsigned version) { return sitSection(multiplex, version); }));
}

}  // namespace mkstreams

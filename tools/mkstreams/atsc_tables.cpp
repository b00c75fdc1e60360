/*
 * All but the events and texts stand on the base PID; the guide tells where those are. The events
 * of the current three hours are one section on the channel's EIT PID, for the cases compare all
 * that comes there; later hours have PIDs of their own, one higher each. Likewise the texts.
 */
#include "tools/mkstreams/atsc_tables.h"

#include <algorithm>

#include "tools/mkstreams/content.h"
#include "tools/mkstreams/descriptors.h"
#include "tools/mkstreams/dvb_tables.h"

namespace mkstreams {

static const uint16_t basePid = 0x1FFB;
static const unsigned tableMgt = 0xC7;
static const unsigned tableTvct = 0xC8;
static const unsigned tableCvct = 0xC9;
static const unsigned tableRrt = 0xCA;
static const unsigned tableEit = 0xCB;
static const unsigned tableEtt = 0xCC;
static const unsigned tableStt = 0xCD;
static const unsigned typeTvct = 0x0000;
static const unsigned typeCvct = 0x0002;
static const unsigned typeChannelEtt = 0x0004;
static const unsigned typeEit = 0x0100;
static const unsigned typeEtt = 0x0200;
static const unsigned typeRrt = 0x0300;
static const unsigned ratingRegion = 5;
static const unsigned hoursPerEit = 3;
static const unsigned eitCount = 4;
static const uint16_t channelEttOffset = 0x10;
static const int64_t gpsEpoch = 315964800;  // 6 January 1980, seconds since 1970
static const unsigned gpsLeapSeconds = 18;
static const uint16_t firstSourceId = 2;

/** A table and what the master guide says of it. */
struct GuidedTable {
    unsigned type;
    uint16_t pid;
    std::vector<Bytes> sections;
};

Bytes multipleString(const std::string& text) {
    Bytes bytes = {1, 'e', 'n', 'g', 1, 0, 0};  // one string, one segment, no compression
    put8(bytes, static_cast<unsigned>(text.size()));
    putText(bytes, text);
    return bytes;
}

static void putCountedString(Bytes& to, const std::string& text) {
    Bytes string = multipleString(text);
    put8(to, static_cast<unsigned>(string.size()));
    append(to, string);
}

/** The head of a section up to protocol_version. */
static Bytes begin(unsigned tableId, unsigned extension, unsigned version) {
    Bytes section;
    put8(section, tableId);
    put16(section, 0xF000);
    put16(section, extension);
    put8(section, 0xC1 | version << 1);
    put16(section, 0);  // the only section of its table
    put8(section, 0);   // protocol_version
    return section;
}

static uint32_t gpsTime(int64_t time) {
    return static_cast<uint32_t>(time - gpsEpoch + gpsLeapSeconds);
}

static int64_t hourTime(unsigned hour) {
    return laboratoryTime() / 86400 * 86400 + 3600 * static_cast<int64_t>(hour);
}

static uint16_t sourceId(const Multiplex& multiplex, const Channel& channel) {
    for (size_t i = 0; i < multiplex.channels.size(); i++)
        if (multiplex.channels[i].index == channel.index)
            return static_cast<uint16_t>(firstSourceId + i);
    return firstSourceId;
}

/* Virtual channels ----------------------------------------------------------------------------- */

static Bytes serviceLocation(const Multiplex& multiplex, const Channel& channel) {
    std::vector<Component> components = componentsOf(multiplex, channel);
    Bytes body;
    put16(body, 0xE000u | channel.pcrPid);
    put8(body, static_cast<unsigned>(components.size()));
    for (const Component& component : components) {
        put8(body, component.streamType);
        put16(body, 0xE000u | component.pid);
        putText(body, component.language.empty() ? std::string(3, '\0') : component.language);
    }
    Bytes descriptor;
    putDescriptor(descriptor, 0xA1, body);
    return descriptor;
}

static void putVirtualChannel(Bytes& section, const Multiplex& multiplex, const Channel& channel,
                              bool cable) {
    std::string name = "LAB" + std::to_string(channel.index + 1);
    name.resize(7, '\0');
    for (char c : name)
        put16(section, static_cast<unsigned char>(c));
    unsigned major = 10;
    unsigned minor = channel.index + 1;
    put32(section, 0xF0000000u | major << 18 | minor << 8 | (cable ? 0x03u : 0x04u));
    put32(section, 0);  // carrier_frequency, not used any more
    put16(section, multiplex.tsId);
    put16(section, serviceId(*multiplex.standard, channel));
    // A text of the channel stands in the ETT; not hidden; digital television.
    bool scrambled = kindOf(multiplex).scrambled;
    unsigned reserved = cable ? 0x0 : 0x3;
    put16(section, 1u << 14 | (scrambled ? 1u << 13 : 0) | reserved << 10 | 0x7u << 6 | 0x02u);
    put16(section, sourceId(multiplex, channel));
    Bytes location = serviceLocation(multiplex, channel);
    put16(section, 0xFC00u | static_cast<unsigned>(location.size()));
    append(section, location);
}

static Bytes vctSection(const Multiplex& multiplex, bool cable, unsigned version) {
    Bytes section = begin(cable ? tableCvct : tableTvct, multiplex.tsId, version);
    put8(section, static_cast<unsigned>(multiplex.channels.size()));
    for (const Channel& channel : multiplex.channels)
        putVirtualChannel(section, multiplex, channel, cable);
    put16(section, 0xFC00);  // no further descriptors
    closeSection(&section);
    return section;
}

/* Time and ratings ----------------------------------------------------------------------------- */

static Bytes sttSection(unsigned version) {
    // The version of the STT is always 0: it is the clock that moves, by seconds.
    Bytes section = begin(tableStt, 0, 0);
    put32(section, gpsTime(laboratoryTime()) + version);
    put8(section, gpsLeapSeconds);
    put16(section, 0xE000);  // daylight saving time, no change this month
    closeSection(&section);
    return section;
}

static Bytes rrtSection(unsigned version) {
    static const char* const values[][2] = {
        {"", ""}, {"All", "For all viewers"}, {"PG", "With guidance"}, {"Adult", "For adults"}};
    Bytes section = begin(tableRrt, 0xFF00 | ratingRegion, version);
    putCountedString(section, "Laboratory");
    put8(section, 1);  // dimensions
    putCountedString(section, "Audience");
    put8(section, 0xE0 | 0x10 | 4);  // graduated scale of four values
    for (const auto& value : values) {
        putCountedString(section, value[0]);
        putCountedString(section, value[1]);
    }
    put16(section, 0xFC00);
    closeSection(&section);
    return section;
}

/* Events and texts ----------------------------------------------------------------------------- */

static Bytes advisoryDescriptor() {
    Bytes body = {0xC1, ratingRegion, 1, 0, 0xF1};  // one region, one dimension, value 1
    putCountedString(body, "For all");
    Bytes descriptor;
    putDescriptor(descriptor, 0x87, body);
    return descriptor;
}

static unsigned eventId(unsigned hour) {
    return 0x100 + hour;
}

/** The events of a span of three hours; those with an even hour have a text. */
static Bytes eitSection(const Multiplex& multiplex, unsigned span, unsigned version) {
    Bytes section = begin(tableEit, sourceId(multiplex, multiplex.channels.front()), version);
    put8(section, hoursPerEit);
    for (unsigned hour = hoursPerEit * span; hour < hoursPerEit * (span + 1); hour++) {
        bool text = span == 0 ? hour == 0 : true;
        put16(section, 0xC000u | eventId(hour));
        put32(section, gpsTime(hourTime(hour)));
        put24(section, 0xC00000u | (text ? 1u << 20 : 0) | 3600);
        putCountedString(section, eventName(hour));
        Bytes descriptors = advisoryDescriptor();
        put16(section, 0xF000u | static_cast<unsigned>(descriptors.size()));
        append(section, descriptors);
    }
    closeSection(&section);
    return section;
}

/** The extension tells the texts of a PID apart (A/65, 6.6): texts of events by the event, texts of
 *  channels by the channel. */
static Bytes ettSection(unsigned extension, uint32_t messageId, const std::string& text,
                        unsigned version) {
    Bytes section = begin(tableEtt, extension, version);
    put32(section, messageId);
    append(section, multipleString(text));
    closeSection(&section);
    return section;
}

static Bytes eventEtt(const Multiplex& multiplex, unsigned hour, unsigned version) {
    uint32_t source = sourceId(multiplex, multiplex.channels.front());
    return ettSection(eventId(hour), source << 16 | eventId(hour) << 2 | 2, eventText(hour),
                      version);
}

static Bytes channelEtt(const Multiplex& multiplex, const Channel& channel, unsigned version) {
    uint32_t source = sourceId(multiplex, channel);
    return ettSection(source, source << 16, serviceName(channel) + ": test pictures and tones.",
                      version);
}

/** A table of several sections under the first version that suits them all. */
static GuidedTable guided(unsigned type, unsigned pid, size_t count,
                          const std::function<Bytes(size_t part, unsigned version)>& build) {
    GuidedTable table = {type, static_cast<uint16_t>(pid), {}};
    for (unsigned version = 0; version < 32; version++) {
        table.sections.clear();
        for (size_t part = 0; part < count; part++)
            table.sections.push_back(build(part, version));
        if (std::all_of(table.sections.begin(), table.sections.end(), endsCleanly))
            return table;
    }
    table.sections = {Bytes()};
    return table;
}

/** Event tables and texts, where the channel has PIDs for them. */
static void addEvents(const Multiplex& multiplex, std::vector<GuidedTable>* tables) {
    const Channel& channel = multiplex.channels.front();
    for (unsigned span = 0; span < eitCount && channel.eitPid != 0; span++)
        tables->push_back(
            guided(typeEit + span, channel.eitPid + span, 1,
                   [&](size_t, unsigned version) { return eitSection(multiplex, span, version); }));
    if (channel.ettPid == 0)
        return;
    for (unsigned span = 0; span < eitCount; span++)
        tables->push_back(guided(typeEtt + span, channel.ettPid + span, span == 0 ? 1 : hoursPerEit,
                                 [&](size_t part, unsigned version) {
                                     unsigned hour =
                                         hoursPerEit * span + static_cast<unsigned>(part);
                                     return eventEtt(multiplex, hour, version);
                                 }));
    tables->push_back(guided(typeChannelEtt, channel.ettPid + channelEttOffset,
                             multiplex.channels.size(), [&](size_t part, unsigned version) {
                                 return channelEtt(multiplex, multiplex.channels[part], version);
                             }));
}

/* The master guide ----------------------------------------------------------------------------- */

static Bytes mgtSection(const std::vector<GuidedTable>& tables, unsigned version) {
    Bytes section = begin(tableMgt, 0, version);
    put16(section, static_cast<unsigned>(tables.size()));
    for (const GuidedTable& table : tables) {
        size_t size = 0;
        for (const Bytes& part : table.sections)
            size += part.size();
        const Bytes& first = table.sections.front();
        unsigned tableVersion = first.empty() ? 0 : first[5] >> 1 & 0x1F;
        put16(section, table.type);
        put16(section, 0xE000u | table.pid);
        put8(section, 0xE0 | tableVersion);
        put32(section, static_cast<uint32_t>(size));
        put16(section, 0xF000);
    }
    put16(section, 0xF000);
    closeSection(&section);
    return section;
}

/** How often a table is sent, in milliseconds (A/65 annex C and what time-outs ask for). */
static int periodOf(const GuidedTable& table) {
    if (table.type == typeTvct || table.type == typeCvct)
        return 380;
    if (table.type == typeEit)
        return 480;
    return 1500;
}

void addAtscTables(const LineUp&, const Multiplex& multiplex, std::vector<Burst>* bursts) {
    std::vector<GuidedTable> tables;
    tables.push_back(guided(typeTvct, basePid, 1, [&](size_t, unsigned version) {
        return vctSection(multiplex, false, version);
    }));
    tables.push_back(guided(typeCvct, basePid, 1, [&](size_t, unsigned version) {
        return vctSection(multiplex, true, version);
    }));
    tables.push_back(guided(typeRrt + ratingRegion, basePid, 1,
                            [](size_t, unsigned version) { return rrtSection(version); }));
    addEvents(multiplex, &tables);
    bursts->push_back(comparedTable("MGT", basePid, 130,
                                    [&](unsigned version) { return mgtSection(tables, version); }));
    bursts->push_back(comparedTable("STT", basePid, 900, sttSection));
    for (const GuidedTable& table : tables)
        for (const Bytes& section : table.sections)
            bursts->push_back({"PSIP " + std::to_string(table.type),
                               table.pid,
                               {section},
                               periodOf(table),
                               false});
}

}  // namespace mkstreams

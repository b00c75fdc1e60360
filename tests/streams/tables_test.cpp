// The tables of the streams on the air, as libdvbpsi and libucsi decode them, against the line-up.
#include <gtest/gtest.h>
#include <libucsi/atsc/section.h>
#include <libucsi/dvb/section.h>
#include <libucsi/mpeg/section.h>

#include <algorithm>

#include "tests/streams/dvbpsi_tables.h"
#include "tests/streams/made_streams.h"
#include "tools/mkstreams/descriptors.h"

namespace {

using namespace mkstreams;

using Lines = std::set<std::string>;

std::string text(uint64_t number) {
    return std::to_string(number);
}

Lines tablesOn(const std::string& file, unsigned pid, PidUse use = PidUse::Service,
               unsigned programme = 0) {
    return decodeTables(streamOf(file).packets, pid, use, programme);
}

/** The lines that begin with a word. */
Lines beginningWith(const Lines& lines, const std::string& word) {
    Lines found;
    std::copy_if(lines.begin(), lines.end(), std::inserter(found, found.end()),
                 [&](const std::string& line) { return line.rfind(word, 0) == 0; });
    return found;
}

TEST(Tables, ProgrammeTablesOfDvb) {
    EXPECT_EQ(tablesOn("dvbt_main.ts", 0, PidUse::Pat), Lines{"pat 1025 0:16 1001:512"});
    EXPECT_EQ(tablesOn("dvbt_main.ts", 1, PidUse::Cat), Lines{"cat [09]"});
    EXPECT_EQ(tablesOn("dvbt_main.ts", 512, PidUse::Pmt, 1001),
              Lines{"pmt 1001 pcr 513 02:513 03:516"});
    EXPECT_EQ(tablesOn("dvbt_hd.ts", 544, PidUse::Pmt, 1002),
              Lines{"pmt 1002 pcr 545 1b:545 11:548"});
    EXPECT_EQ(tablesOn("dvb_multi.ts", 608, PidUse::Pmt, 1004),
              Lines{"pmt 1004 pcr 609 02:609 03:612 03:613 03:614 03:616 06:618 06:619 06:624 "
                    "06:625"});
}

TEST(Tables, NetworkOfDvb) {
    struct Row {
        const char* file;
        const char* delivery;
        unsigned network;
        unsigned multiplexes;
    };
    for (const Row& row :
         {Row{"dvbt_main.ts", "5a", 0x3001, 12}, Row{"dvbs_main.ts", "43", 0x70, 9},
          Row{"dvbc_main.ts", "44", 0x2001, 12}}) {
        // All three networks send the same transport streams.
        std::string streams;
        for (unsigned i = 0; i < row.multiplexes; i++)
            streams += " " + text(0x401 + i) + "/12289 [41 " + row.delivery + "]";
        EXPECT_EQ(tablesOn(row.file, 16),
                  (Lines{"nit 40 " + text(row.network) + " [40]" + streams,
                         "nit 41 " + text(row.network + 16) + " [40] 1280/12289 [] 1281/12289 []"}))
            << row.file;
    }
}

TEST(Tables, ServicesOfDvb) {
    Lines lines = {"bat 4097 [47] 1025/12289 [41]", "sdt 42 1025 12289 1001sp [48]"};
    for (unsigned i = 1; i < 12; i++)
        lines.insert("sdt 46 " + text(1025 + i) + " 12289 " + text(1001 + i) +
                     (i == 1   ? "sp"
                      : i == 8 ? "pc"
                               : "p") +
                     " [48]");
    EXPECT_EQ(tablesOn("dvbt_main.ts", 17), lines);
    EXPECT_EQ(tablesOn("dvb_scrambled.ts", 17), Lines{"sdt 42 1033 12289 1009pc [48]"});
}

TEST(Tables, EventsOfDvb) {
    EXPECT_EQ(tablesOn("dvbt_main.ts", 18), (Lines{"eit 4e 1001 1025 12289 first 256 events 1",
                                                   "eit 4f 1002 1026 12289 first 256 events 2",
                                                   "eit 50 1001 1025 12289 first 256 events 48",
                                                   "eit 51 1001 1025 12289 first 352 events 6",
                                                   "eit 60 1002 1026 12289 first 256 events 48"}));
    EXPECT_EQ(tablesOn("dvbt_hd.ts", 18), (Lines{"eit 4e 1002 1026 12289 first 256 events 1",
                                                 "eit 4f 1003 1027 12289 first 256 events 2",
                                                 "eit 50 1002 1026 12289 first 256 events 3",
                                                 "eit 60 1003 1027 12289 first 256 events 24"}));
}

/** The sections of one schedule, by table id and section number. */
using Schedule = std::map<unsigned, std::map<unsigned, Bytes>>;

/** Checks a segment of a table (TR 101 211, 4.1.4) and returns how many events it holds. */
size_t eventsOfSegment(std::map<unsigned, Bytes>& sections, unsigned tableId, unsigned segment) {
    size_t events = 0;
    unsigned first = 8 * segment;
    unsigned last = first;
    for (unsigned number = first; number <= last; number++) {
        if (sections.count(number) == 0) {
            ADD_FAILURE() << "table " << tableId << " has no section " << number;
            return events;
        }
        Bytes bytes = sections[number];
        dvb_eit_section* eit =
            dvb_eit_section_codec(section_ext_decode(section_codec(bytes.data(), bytes.size()), 1));
        last = eit->segment_last_section_number;
        EXPECT_LT(last, first + 8);
        dvb_eit_event* event = nullptr;
        dvb_eit_section_events_for_each(eit, event) {
            time_t begin = dvbdate_to_unixtime(event->start_time) - 1749945600;
            EXPECT_EQ(begin / (3 * 3600), (tableId & 15) * 32 + segment);
            events++;
        }
    }
    return events;
}

TEST(Tables, SchedulesHaveNoHoles) {
    for (const char* file : {"dvbt_main.ts", "dvbt_hd.ts", "dvbs_main.ts", "isdbs_main.ts"}) {
        // By service and first table id.
        std::map<std::pair<unsigned, unsigned>, Schedule> schedules;
        for (const ReceivedSection& section : sectionsOf(tableStreamOf(multiplexOf(file)), 18)) {
            const Bytes& eit = section.bytes;
            if (eit[0] >= 0x50 && eit[0] <= 0x6F)
                schedules[{eit[3] << 8 | eit[4], eit[0] & 0xF0}][eit[0]][eit[6]] = eit;
        }
        EXPECT_EQ(schedules.size(), 2u) << file;
        for (auto& [key, schedule] : schedules) {
            SCOPED_TRACE(std::string(file) + " service " + text(key.first));
            size_t events = 0;
            unsigned lastTable = schedule.begin()->second.begin()->second[13];
            for (unsigned tableId = key.second; tableId <= lastTable; tableId++) {
                ASSERT_FALSE(schedule[tableId].empty()) << tableId;
                unsigned lastSection = schedule[tableId].begin()->second[7];
                EXPECT_TRUE(tableId == lastTable || lastSection >= 8 * 31) << tableId;
                for (unsigned segment = 0; segment <= lastSection / 8; segment++)
                    events += eventsOfSegment(schedule[tableId], tableId, segment);
            }
            EXPECT_GE(events, 3u);
        }
    }
}

TEST(Tables, ClockAndStatusOfDvbAndIsdb) {
    // 15 June 2025 is day 60841 of the modified Julian date.
    EXPECT_EQ(tablesOn("dvbt_main.ts", 20),
              (Lines{"tot 70 60841 003000 []", "tot 73 60841 003000 [58]"}));
    EXPECT_EQ(tablesOn("dvbt_main.ts", 19, PidUse::Rst), Lines{"rst 1025 12289 1001 256 4"});
    EXPECT_EQ(tablesOn("isdbt_main.ts", 20),
              (Lines{"tot 70 60841 003000 []", "tot 73 60841 003000 [58]"}));
    EXPECT_EQ(tablesOn("isdbt_main.ts", 19, PidUse::Rst), Lines{"rst 32736 32736 1024 256 4"});
}

TEST(Tables, ProgrammeAndServiceTablesOfIsdb) {
    EXPECT_EQ(tablesOn("isdbt_main.ts", 0, PidUse::Pat), Lines{"pat 32736 0:16 1024:256"});
    EXPECT_EQ(tablesOn("isdbt_main.ts", 256, PidUse::Pmt, 1024),
              Lines{"pmt 1024 pcr 258 02:257 0f:260"});
    EXPECT_EQ(beginningWith(tablesOn("isdbt_main.ts", 16), "nit 40"),
              Lines{"nit 40 32736 [40] 32736/32736 [41 fa cd]"});
    Lines services = tablesOn("isdbt_main.ts", 17);
    EXPECT_EQ(beginningWith(services, "sdt 42"), Lines{"sdt 42 32736 32736 1024sp [48]"});
    EXPECT_EQ(beginningWith(services, "bat"), Lines{"bat 4097 [47] 32736/32736 [41]"});
    EXPECT_EQ(beginningWith(services, "sdt 46").size(), 8u);
    EXPECT_EQ(beginningWith(tablesOn("isdbt_main.ts", 18), "eit 4e"),
              Lines{"eit 4e 1024 32736 32736 first 256 events 1"});
    // Of a satellite each transport stream stands in the network's table.
    std::string streams;
    for (unsigned id : {0x40F1, 0x40F2, 0x4010, 0x4031, 0x4050, 0x4090, 0x40B0, 0x40D0, 0x4130})
        streams += " " + text(id) + "/4 [41 43]";
    EXPECT_EQ(beginningWith(tablesOn("isdbs_main.ts", 16), "nit 40"),
              Lines{"nit 40 4 [40]" + streams});
}

TEST(Tables, SystemInformationOfAtsc) {
    Lines base = tablesOn("atsct_main.ts", 0x1FFB);
    // Half past midnight on 15 June 2025, in seconds of GPS, which is 18 s ahead.
    // (libdvbpsi tells no daylight saving.)
    EXPECT_EQ(beginningWith(base, "stt 1433982618 18").size(), 1u);
    EXPECT_EQ(beginningWith(base, "tvct"),
              Lines{"tvct 2049 LAB1 10-1 modulation 4 tsid 2049 program 1 source 2 type 2 [a1]"});
    EXPECT_EQ(beginningWith(base, "cvct"),
              Lines{"cvct 2049 LAB1 10-1 modulation 3 tsid 2049 program 1 source 2 type 2 [a1]"});
    EXPECT_TRUE(beginningWith(base, "!").empty());
    EXPECT_EQ(beginningWith(base, "mgt").size(), 12u);
    EXPECT_EQ(tablesOn("atscc_main.ts", 0, PidUse::Pat), Lines{"pat 2049 1:48"});
    EXPECT_EQ(tablesOn("atscc_main.ts", 48, PidUse::Pmt, 1), Lines{"pmt 1 pcr 49 02:49 81:52"});
}

/** Events and texts lie where the master guide says, and are as long. */
TEST(Tables, MasterGuideLeadsToEventsAndTexts) {
    Lines guide = beginningWith(tablesOn("atsct_main.ts", 0x1FFB), "mgt");
    const Bytes& stream = streamOf("atsct_main.ts").packets;
    std::set<unsigned> types;
    for (const std::string& line : guide) {
        unsigned type = 0;
        unsigned pid = 0;
        unsigned bytes = 0;
        ASSERT_EQ(sscanf(line.c_str(), "mgt type %u pid %u bytes %u", &type, &pid, &bytes), 3);
        types.insert(type);
        unsigned tableId = type == 0                    ? 0xC8
                           : type == 2                  ? 0xC9
                           : type >= 0x300              ? 0xCA
                           : type >= 0x200 || type == 4 ? 0xCC
                                                        : 0xCB;
        std::set<Bytes> sections;
        for (const ReceivedSection& section : sectionsOf(stream, pid))
            if (section.bytes[0] == tableId)
                sections.insert(section.bytes);
        size_t found = 0;
        for (const Bytes& section : sections)
            found += section.size();
        EXPECT_EQ(found, bytes) << line;
    }
    EXPECT_EQ(types, (std::set<unsigned>{0, 2, 4, 0x100, 0x101, 0x102, 0x103, 0x200, 0x201, 0x202,
                                         0x203, 0x305}));
    EXPECT_EQ(tablesOn("atsct_main.ts", 0x1D00),
              Lines{"atsc eit source 2 256@1433980818+3600 etm 1 257@1433984418+3600 etm 0 "
                    "258@1433988018+3600 etm 0"});
    Lines texts = tablesOn("atsct_main.ts", 0x1E00);
    ASSERT_EQ(texts.size(), 1u);
    EXPECT_EQ(texts.begin()->rfind("ett 132098 Bars with a box", 0), 0u) << *texts.begin();
    EXPECT_EQ(tablesOn("atsct_main.ts", 0x1E10),
              Lines{"ett 131072 Laboratory 1: test pictures and tones."});
    // Later hours have a text for each of their three events.
    for (unsigned pid : {0x1E01, 0x1E02, 0x1E03})
        EXPECT_EQ(tablesOn("atsct_main.ts", pid).size(), 3u) << pid;
}

TEST(Tables, LanguagesOfAtscAgree) {
    for (const Multiplex& multiplex : shippedLineUp().multiplexes) {
        if (multiplex.standard->family != Family::Atsc)
            continue;
        const Channel& channel = multiplex.channels.front();
        Bytes stream = tableStreamOf(multiplex);
        Lines told = decodeLanguages(stream, channel.pmtPid, PidUse::Pmt,
                                     serviceId(*multiplex.standard, channel));
        EXPECT_EQ(told, decodeLanguages(stream, 0x1FFB, PidUse::Service)) << multiplex.file;
        EXPECT_EQ(told.size(), componentsOf(multiplex, channel).size()) << multiplex.file;
        EXPECT_EQ(told.count(text(channel.audio[0].pid) + " eng"), 1u) << multiplex.file;
    }
    EXPECT_EQ(decodeLanguages(tableStreamOf(multiplexOf("atsc_multi.ts")), 0x1FFB, PidUse::Service),
              (Lines{"145", "148 eng", "149 spa", "150 fra", "152 eng", "154 eng", "155 spa", "160",
                     "161"}));
}

/* Networks ------------------------------------------------------------------------------------- */

/** Whether a table's line tells a transport stream of a network. */
bool tells(const Lines& lines, unsigned tsId, unsigned network) {
    return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
        return line.find(" " + text(tsId) + "/" + text(network) + " [") != std::string::npos;
    });
}

/** What each transmitter's file says of itself is what the line-up says of that transmitter, and
 *  what the tables of its network, in the standard's first file, say of it. */
TEST(Tables, TransmittersAgreeWithTheirNetworks) {
    std::map<const Standard*, Bytes> firsts;
    for (const Multiplex& multiplex : shippedLineUp().multiplexes) {
        if (multiplex.standard->family == Family::Atsc)
            continue;
        SCOPED_TRACE(multiplex.file + " of " + multiplex.standard->channelFile);
        // Made for the first transmitter that plays it.
        Bytes stream = tableStreamOf(multiplexOf(multiplex.file));
        bool isFirst = firsts.insert({multiplex.standard, stream}).second;
        const Bytes& first = firsts[multiplex.standard];
        Lines sdt = beginningWith(decodeTables(stream, 17, PidUse::Service), "sdt 42");
        ASSERT_EQ(sdt.size(), 1u);
        unsigned tsId = 0;
        unsigned network = 0;
        unsigned service = 0;
        ASSERT_EQ(sscanf(sdt.begin()->c_str(), "sdt 42 %u %u %u", &tsId, &network, &service), 3);
        EXPECT_EQ(tsId, multiplex.tsId);
        EXPECT_EQ(service, serviceId(*multiplex.standard, multiplex.channels.front()));
        Lines pat = decodeTables(stream, 0, PidUse::Pat);
        EXPECT_EQ(pat.begin()->rfind("pat " + text(tsId) + " ", 0), 0u) << *pat.begin();
        std::string ids = text(tsId) + " " + text(network) + " " + text(service);
        EXPECT_TRUE(
            isFirst ||
            beginningWith(decodeTables(first, 17, PidUse::Service), "sdt 46 " + ids).size() == 1)
            << ids;
        // An ISDB-T station is a network of its own, told in its own file if at all.
        bool alone = multiplex.standard->system == 256;
        Lines nit =
            beginningWith(decodeTables(alone ? stream : first, 16, PidUse::Service), "nit 40");
        EXPECT_TRUE(tells(nit, tsId, network) || (alone && nit.empty())) << ids;
    }
}

/** Nobody else's NIT gives a network of the line-up other transport streams. */
TEST(Tables, NeighbouringNetworksAreOthers) {
    std::set<unsigned> networks;
    for (const Multiplex& multiplex : shippedLineUp().multiplexes)
        networks.insert(networkId(multiplex));
    for (const Multiplex& multiplex : shippedLineUp().multiplexes)
        for (const std::string& line :
             beginningWith(decodeTables(tableStreamOf(multiplex), 16, PidUse::Service), "nit 41")) {
            unsigned network = 0;
            ASSERT_EQ(sscanf(line.c_str(), "nit 41 %u", &network), 1);
            EXPECT_EQ(networks.count(network), 0u) << multiplex.file;
        }
}

/* libucsi -------------------------------------------------------------------------------------- */

/** Decodes a section down to its table by libucsi, which works in place. False: refused. The
 *  packaged library reads the lengths in the loops of PMT, RST and SIT before it has turned their
 *  bytes round, and refuses what is right, as it does every RRT: of these only the section is
 *  decoded here; PMT and RST are libdvbpsi's, SIT and RRT are looked at below. */
bool decodesByUcsi(Bytes bytes, bool atsc) {
    section* plain = section_codec(bytes.data(), bytes.size());
    if (plain == nullptr)
        return false;
    switch (plain->table_id) {
        case 0x70:
            return dvb_tdt_section_codec(plain) != nullptr;
        case 0x73:
            return section_check_crc(plain) == 0 && dvb_tot_section_codec(plain) != nullptr;
        case 0x7E:
            return dvb_dit_section_codec(plain) != nullptr;
        case 0x71:  // see above
        case 0x80:  // private data
        case 0x82:
            return true;
    }
    section_ext* extended = section_ext_decode(plain, 1);
    if (extended == nullptr)
        return false;
    atsc_section_psip* psip = atsc ? atsc_section_psip_decode(extended) : nullptr;
    switch (extended->table_id) {
        case 0x00:
            return mpeg_pat_section_codec(extended) != nullptr;
        case 0x01:
            return mpeg_cat_section_codec(extended) != nullptr;
        case 0x02:  // see above
        case 0x7F:
        case 0xCA:
            return true;
        case 0x40:
        case 0x41:
            return dvb_nit_section_codec(extended) != nullptr;
        case 0x42:
        case 0x46:
            return dvb_sdt_section_codec(extended) != nullptr;
        case 0x4A:
            return dvb_bat_section_codec(extended) != nullptr;
        case 0xC7:
            return atsc_mgt_section_codec(psip) != nullptr;
        case 0xC8:
            return atsc_tvct_section_codec(psip) != nullptr;
        case 0xC9:
            return atsc_cvct_section_codec(psip) != nullptr;
        case 0xCB:
            return atsc_eit_section_codec(psip) != nullptr;
        case 0xCC:
            return atsc_ett_section_codec(psip) != nullptr;
        case 0xCD:
            return atsc_stt_section_codec(psip) != nullptr;
        default:
            return extended->table_id >= 0x4E && extended->table_id <= 0x6F &&
                   dvb_eit_section_codec(extended) != nullptr;
    }
}

class EverySection : public testing::TestWithParam<const char*> {};

TEST_P(EverySection, ArrivesAsMadeAndIsUnderstood) {
    const Multiplex& multiplex = multiplexOf(GetParam());
    const Bytes& stream = streamOf(GetParam()).packets;
    std::vector<Burst> bursts = tablesOf(shippedLineUp(), multiplex);
    int64_t duration = loopTicks(multiplex);
    std::map<unsigned, std::multiset<Bytes>> sent;
    for (const Burst& burst : bursts)
        for (const Bytes& section : burst.sections)
            for (int64_t k = 0; k < repetitions(burst, duration); k++)
                sent[burst.pid].insert(section);
    for (const auto& [pid, sections] : sent) {
        std::multiset<Bytes> received;
        for (const ReceivedSection& section : sectionsOf(stream, pid))
            if (section.bytes[0] != 0x72)  // stuffing
                received.insert(section.bytes);
        EXPECT_EQ(received.size(), sections.size()) << pid;
        EXPECT_TRUE(received == sections) << pid;
        for (const Bytes& section : std::set<Bytes>(received.begin(), received.end()))
            EXPECT_TRUE(decodesByUcsi(section, multiplex.standard->family == Family::Atsc))
                << pid << " table id " << static_cast<int>(section[0]);
    }
}

INSTANTIATE_TEST_SUITE_P(LineUp, EverySection,
                         testing::Values("dvbt_main.ts", "dvbt_hd.ts", "dvbs_main.ts",
                                         "dvbc_main.ts", "dvb_multi.ts", "dvb_scrambled.ts",
                                         "atsct_main.ts", "atscc_main.ts", "atsc_caption.ts",
                                         "isdbt_main.ts", "isdbs_main.ts"),
                         [](const auto& row) {
                             std::string name = row.param;
                             return name.substr(0, name.find('.'));
                         });

TEST(Tables, PartialStreamTables) {
    Bytes dit = sectionsOf(streamOf("dvbt_main.ts").packets, 30).front().bytes;
    auto* discontinuity = dvb_dit_section_codec(section_codec(dit.data(), dit.size()));
    ASSERT_NE(discontinuity, nullptr);
    EXPECT_EQ(discontinuity->transition_flag, 0);

    // No library at hand decodes the SIT (EN 300 468, 7.1.2): its bytes up to the descriptors of
    // its one service, which is running.
    Bytes sit = sectionsOf(streamOf("dvbt_main.ts").packets, 31).front().bytes;
    Bytes body(sit.begin() + 8, sit.begin() + 28);
    EXPECT_EQ(body, (Bytes{0xF0, 0x0A, 0x63, 0x08, 0xC0, 0x1D, 0x4C, 0xC0, 0x1D, 0x4C,
                           0xC5, 0xDC, 0x03, 0xE9, 0xC0, 0x16, 0x48, 0x14, 0x01, 0x05}));
    EXPECT_EQ(sit.size(), 28 + 18 + 4u);
}

/** A multiple string of one segment (A/65, 6.10), with its length before it. */
std::string countedString(const Bytes& section, size_t* at) {
    size_t length = section[*at];
    const uint8_t* string = section.data() + *at + 1;
    *at += 1 + length;
    EXPECT_EQ(Bytes(string, string + 7), (Bytes{1, 'e', 'n', 'g', 1, 0, 0}));
    EXPECT_EQ(length, 8u + string[7]);
    return std::string(string + 8, string + 8 + string[7]);
}

/** Walks the rating region table (A/65, 6.4), which no library at hand decodes. */
TEST(Tables, RatingsOfAtsc) {
    std::vector<ReceivedSection> sections = sectionsOf(streamOf("atsct_main.ts").packets, 0x1FFB);
    auto found = std::find_if(sections.begin(), sections.end(),
                              [](const ReceivedSection& s) { return s.bytes[0] == 0xCA; });
    ASSERT_NE(found, sections.end());
    const Bytes& rrt = found->bytes;
    EXPECT_EQ(rrt[3] << 8 | rrt[4], 0xFF05);
    size_t at = 9;
    EXPECT_EQ(countedString(rrt, &at), "Laboratory");
    EXPECT_EQ(rrt[at++], 1);
    EXPECT_EQ(countedString(rrt, &at), "Audience");
    EXPECT_EQ(rrt[at++], 0xF4);
    for (const char* word :
         {"", "", "All", "For all viewers", "PG", "With guidance", "Adult", "For adults"})
        EXPECT_EQ(countedString(rrt, &at), word);
    EXPECT_EQ(rrt[at] << 8 | rrt[at + 1], 0xFC00);
    EXPECT_EQ(at + 2 + 4, rrt.size());
}

}  // namespace

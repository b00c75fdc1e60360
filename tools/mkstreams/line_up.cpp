#include "tools/mkstreams/line_up.h"

#include <stddef.h>

#include <algorithm>

#include "tools/mkstreams/cfg_file.h"

namespace mkstreams {

// clang-format off
static const Standard standards[] = {
    // system  family        section   channel file           stem       network original name
    {    1, Family::Dvb,  "DVB-T",  "channel_dvb_t.cfg",   "dvb_t",   0x3001, 0x3001, "Laboratory T"},
    {    4, Family::Dvb,  "DVB-S",  "channel_dvb_s.cfg",   "dvb_s",   0x0070, 0x3001, "Laboratory S"},
    {   16, Family::Dvb,  "DVB-C",  "channel_dvb_c.cfg",   "dvb_c",   0x2001, 0x3001, "Laboratory C"},
    {   64, Family::Atsc, "ATSC-T", "channel_atsc_t.cfg",  "atsc_t",  0x0000, 0x0000, "Laboratory"},
    {  128, Family::Atsc, "ATSC-C", "channel_atsc_c.cfg",  "atsc_c",  0x0000, 0x0000, "Laboratory"},
    {  256, Family::Isdb, "ISDB-T", "channel_isdb_t.cfg",  "isdb_t",  0x7FE0, 0x0000, "Laboratory T"},
    {  512, Family::Isdb, "ISDB-S", "channel_isdb_s.cfg",  "isdb_s",  0x0004, 0x0004, "Laboratory BS"},
    { 1024, Family::Isdb, nullptr,  "channel_isdb_s3.cfg", "isdb_s3", 0x000B, 0x000B, "Laboratory 4K"},
};
// clang-format on

static const unsigned maxChannels = 100;
static const unsigned maxComponents = 16;

static uint16_t pidOf(const CfgFile& cfg, const std::string& section, const std::string& key) {
    return static_cast<uint16_t>(cfg.number(section, key) & 0x1FFF);
}

static void readAudio(const CfgFile& cfg, const std::string& section, const char* prefix,
                      bool description, std::vector<AudioComponent>* audio) {
    std::string stem = prefix;
    unsigned count = std::min(cfg.number(section, stem + "_NUM"), maxComponents);
    for (unsigned k = 0; k < count; k++) {
        std::string number = std::to_string(k);
        audio->push_back({pidOf(cfg, section, stem + "_PID" + number),
                          cfg.number(section, stem + "_FORMAT" + number), description});
    }
}

static std::vector<uint16_t> readPids(const CfgFile& cfg, const std::string& section,
                                      const std::string& stem) {
    std::vector<uint16_t> pids;
    unsigned count = std::min(cfg.number(section, stem + "_NUM"), maxComponents);
    for (unsigned k = 0; k < count; k++)
        pids.push_back(pidOf(cfg, section, stem + "_PID" + std::to_string(k)));
    return pids;
}

Channel readChannel(const CfgFile& cfg, unsigned index) {
    std::string section = "CHANNEL" + std::to_string(index);
    Channel channel = {};
    channel.index = index;
    channel.frequencyKHz = cfg.number(section, "FREQUENCY");
    channel.tsId = cfg.number(section, "TS_ID");
    channel.streamId = cfg.number(section, "STREAM_ID");
    channel.videoPid = pidOf(cfg, section, "VIDEO_PID");
    channel.videoFormat = cfg.number(section, "VIDEO_FORMAT");
    channel.pcrPid = pidOf(cfg, section, "PCR_PID");
    channel.pmtPid = pidOf(cfg, section, "PMT_PID");
    channel.eitPid = pidOf(cfg, section, "EIT_PID");
    channel.ettPid = pidOf(cfg, section, "ETT_PID");
    channel.pesPid = pidOf(cfg, section, "PES_PID");
    readAudio(cfg, section, "AUDIO", false, &channel.audio);
    readAudio(cfg, section, "AUDIODESC", true, &channel.audio);
    channel.subtitlePids = readPids(cfg, section, "SUBTITLE");
    channel.otherPids = readPids(cfg, section, "OTHER");
    return channel;
}

static bool sameCarrier(const Channel& a, const Channel& b) {
    return a.frequencyKHz == b.frequencyKHz && a.tsId == b.tsId && a.streamId == b.streamId;
}

/** Gives a multiplex its file: the first TS_FILE_i whose channel it carries. */
static void nameFile(const CfgFile& demux, Multiplex* multiplex) {
    const Standard& standard = *multiplex->standard;
    unsigned first = multiplex->channels.front().index;
    multiplex->file = std::string(standard.stem) + "_" + std::to_string(first) + ".ts";
    multiplex->fileIndex = first;
    multiplex->referenced = false;
    if (standard.section == nullptr)
        return;
    unsigned count = std::min(demux.number(standard.section, "TS_FILE_NUM"), maxChannels);
    for (unsigned i = 0; i < count; i++) {
        std::string key = "TS_FILE_" + std::to_string(i);
        uint32_t played = demux.number(standard.section, key + "_CHANNEL_ID");
        for (const Channel& channel : multiplex->channels) {
            if (channel.index != played || demux.text(standard.section, key).empty())
                continue;
            multiplex->file = demux.text(standard.section, key);
            multiplex->fileIndex = i;
            multiplex->referenced = true;
            return;
        }
    }
}

static void addMultiplexes(const Standard& standard, const CfgFile& channels, const CfgFile& demux,
                           LineUp* lineUp) {
    size_t begin = lineUp->multiplexes.size();
    unsigned count = std::min(channels.number("COMMON", "CHANNEL_NUM"), maxChannels);
    for (unsigned index = 0; index < count; index++) {
        Channel channel = readChannel(channels, index);
        auto shared = std::find_if(
            lineUp->multiplexes.begin() + static_cast<ptrdiff_t>(begin), lineUp->multiplexes.end(),
            [&](const Multiplex& m) { return sameCarrier(m.channels.front(), channel); });
        if (shared != lineUp->multiplexes.end()) {
            shared->channels.push_back(channel);
            continue;
        }
        Multiplex multiplex = {};
        multiplex.standard = &standard;
        multiplex.channels.push_back(channel);
        multiplex.tsId = transportStreamId(standard, channel);
        lineUp->multiplexes.push_back(multiplex);
    }
    for (size_t i = begin; i < lineUp->multiplexes.size(); i++)
        nameFile(demux, &lineUp->multiplexes[i]);
}

/** Whether two multiplexes have the same identifiers, so that one stream serves both networks. */
static bool sameIdentifiers(const Multiplex& a, const Multiplex& b) {
    return a.tsId == b.tsId &&
           originalNetworkId(*a.standard, a.channels.front()) ==
               originalNetworkId(*b.standard, b.channels.front()) &&
           std::equal(a.channels.begin(), a.channels.end(), b.channels.begin(), b.channels.end(),
                      [&](const Channel& one, const Channel& other) {
                          return serviceId(*a.standard, one) == serviceId(*b.standard, other);
                      });
}

/** The file that networks share although their streams cannot be the same; empty when none. */
static std::string fileWronglyShared(const LineUp& lineUp) {
    for (const Multiplex& multiplex : lineUp.multiplexes)
        for (const Multiplex& other : lineUp.multiplexes)
            if (multiplex.file == other.file && !sameIdentifiers(multiplex, other))
                return multiplex.file;
    return "";
}

bool readLineUp(const std::string& configDir, LineUp* lineUp, std::string* error) {
    *lineUp = LineUp();
    std::string common = configDir + "/common/";
    CfgFile demux;
    if (!demux.load(common + "demux_config.cfg")) {
        *error = "cannot read " + common + "demux_config.cfg";
        return false;
    }
    lineUp->invalidPid = pidOf(demux, "COMMON", "DEMUX_INVALID_PID");
    lineUp->invalidTableId = static_cast<uint8_t>(demux.number("COMMON", "DEMUX_INVALID_TABLE_ID"));
    for (const Standard& standard : standards) {
        CfgFile channels;
        // A laboratory without a standard has no file for it.
        if (channels.load(common + standard.channelFile))
            addMultiplexes(standard, channels, demux, lineUp);
    }
    if (lineUp->multiplexes.empty()) {
        *error = "no channel in any channel file of " + common;
        return false;
    }
    std::string shared = fileWronglyShared(*lineUp);
    if (!shared.empty()) {
        *error = common + "demux_config.cfg: " + shared +
                 " is played by multiplexes that differ in network, stream or services";
        return false;
    }
    return true;
}

uint16_t serviceId(const Standard& standard, const Channel& channel) {
    switch (standard.family) {
        case Family::Atsc:
            return static_cast<uint16_t>(channel.index + 1);
        case Family::Isdb:
            // Terrestrial: area and broadcaster in the high bits, the service in the low three.
            return static_cast<uint16_t>(standard.system == 256 ? 0x0400 + channel.index * 8
                                                                : 101 + channel.index * 10);
        case Family::Dvb:
            break;
    }
    return static_cast<uint16_t>(1001 + channel.index);
}

uint16_t transportStreamId(const Standard& standard, const Channel& channel) {
    if (channel.tsId != 0)
        return static_cast<uint16_t>(channel.tsId);
    if (channel.streamId != 0)
        return static_cast<uint16_t>(channel.streamId);
    if (standard.family == Family::Isdb)
        return static_cast<uint16_t>(standard.networkId + channel.index);
    return static_cast<uint16_t>((standard.family == Family::Atsc ? 0x0800 : 0x0400) +
                                 channel.index + 1);
}

// A terrestrial ISDB station is a network of its own, with one transport stream.
static bool isNetworkOfItsOwn(const Standard& standard) {
    return standard.system == 256;
}

uint16_t networkId(const Multiplex& multiplex) {
    const Standard& standard = *multiplex.standard;
    return isNetworkOfItsOwn(standard) ? multiplex.tsId : standard.networkId;
}

uint16_t originalNetworkId(const Standard& standard, const Channel& channel) {
    return isNetworkOfItsOwn(standard) ? transportStreamId(standard, channel)
                                       : standard.originalNetworkId;
}

std::string serviceName(const Channel& channel) {
    return "Laboratory " + std::to_string(channel.index + 1);
}

std::vector<Channel> channelsOf(const LineUp& lineUp, const Standard& standard) {
    std::vector<Channel> channels;
    for (const Multiplex& multiplex : lineUp.multiplexes)
        if (multiplex.standard->system == standard.system)
            channels.insert(channels.end(), multiplex.channels.begin(), multiplex.channels.end());
    std::sort(channels.begin(), channels.end(),
              [](const Channel& a, const Channel& b) { return a.index < b.index; });
    return channels;
}

}  // namespace mkstreams

/*
 * The laboratory's line-up, from the configuration tree: which multiplexes are on the air, what
 * their files are called, and which channels each carries.
 *
 * The channel file of a standard gives frequencies, PIDs and formats; demux_config.cfg names the
 * files. Channels of one standard with the same frequency (and transport stream or stream
 * identifier) share a multiplex. Two standards may name the same file: it is made once.
 */
#ifndef TOOLS_MKSTREAMS_LINE_UP_H
#define TOOLS_MKSTREAMS_LINE_UP_H

#include <stdint.h>

#include <string>
#include <vector>

namespace mkstreams {

enum class Family { Dvb, Atsc, Isdb };

/** A standard of the line-up: a row of the table of standards. */
struct Standard {
    uint32_t system; /**< the library's transmission system bit */
    Family family;
    const char* section; /**< of demux_config.cfg; nullptr when it has none */
    const char* channelFile;
    const char* stem;           /**< of files that demux_config.cfg does not name */
    uint16_t networkId;         /**< of ISDB-T that of channel 0: each station is a network */
    uint16_t originalNetworkId; /**< the same where networks send the same streams; 0 of ISDB-T */
    const char* networkName;
};

/** Formats as the channel files number them. */
enum VideoFormat : uint32_t {
    VIDEO_MPEG1 = 1,
    VIDEO_MPEG2 = 2,
    VIDEO_MPEG4 = 4,
    VIDEO_H264 = 16,
    VIDEO_HEVC = 32
};
enum AudioFormat : uint32_t {
    AUDIO_MPEG = 1,
    AUDIO_AC3 = 2,
    AUDIO_EAC3 = 4,
    AUDIO_AAC = 8,
    AUDIO_HEAAC = 262144,
    AUDIO_AC4 = 2097152
};

struct AudioComponent {
    uint16_t pid;
    uint32_t format;
    bool description; /**< commentary for the visually impaired */
};

/** One channel of a channel file. PIDs are 13 bits; 0 where a channel has none. */
struct Channel {
    unsigned index;
    uint32_t frequencyKHz;
    uint32_t tsId;
    uint32_t streamId;
    uint16_t videoPid;
    uint32_t videoFormat;
    uint16_t pcrPid;
    uint16_t pmtPid;
    uint16_t eitPid;
    uint16_t ettPid;
    uint16_t pesPid;
    std::vector<AudioComponent> audio;
    std::vector<uint16_t> subtitlePids;
    std::vector<uint16_t> otherPids;
};

/** One transmitter: a multiplex of one standard on the air. */
struct Multiplex {
    const Standard* standard;
    std::vector<Channel> channels; /**< at least one, by index */
    std::string file;              /**< name without a folder */
    unsigned fileIndex;            /**< i of TS_FILE_i; the first channel's index without one */
    bool referenced;               /**< named by demux_config.cfg */
    uint16_t tsId;                 /**< transport_stream_id that the stream carries */
};

struct LineUp {
    std::vector<Multiplex> multiplexes;
    uint16_t invalidPid;    /**< a PID that no stream may carry */
    uint8_t invalidTableId; /**< a table id that no stream may carry */
};

class CfgFile;
/** A channel of a channel file. */
Channel readChannel(const CfgFile& file, unsigned index);

/** Reads `configDir`/common. On failure false, and `error` says which file or key is wrong. */
bool readLineUp(const std::string& configDir, LineUp* lineUp, std::string* error);

/** Service number of a channel: program_number, service_id. */
uint16_t serviceId(const Standard& standard, const Channel& channel);

/** transport_stream_id of the multiplex that carries a channel. */
uint16_t transportStreamId(const Standard& standard, const Channel& channel);

/** network_id of the network that carries a multiplex. */
uint16_t networkId(const Multiplex& multiplex);

/** original_network_id of the multiplex that carries a channel. */
uint16_t originalNetworkId(const Standard& standard, const Channel& channel);

/** Name of a channel's service in the tables: "Laboratory 1". */
std::string serviceName(const Channel& channel);

/** All channels of a standard in the line-up, over its multiplexes, by index. */
std::vector<Channel> channelsOf(const LineUp& lineUp, const Standard& standard);

}  // namespace mkstreams

#endif

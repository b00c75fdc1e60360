/* The stream files of the demultiplexer cases, from demux_config.cfg. */
#ifndef TESTCASE_DEMUX_DEMUX_CONFIG_H
#define TESTCASE_DEMUX_DEMUX_CONFIG_H

#include <stdint.h>

enum {
    DEMUX_TS_FILE_MAX = 100,
    DEMUX_TS_PATH_SIZE = 200,
    DEMUX_ALP_IP_MAX = 4,
};

/** The stream files of one standard. */
struct DemuxTsFiles {
    uint32_t uTsFileNum;
    /** Channel of the tuner on which each file is on the air. */
    uint32_t uTsFileChannelId[DEMUX_TS_FILE_MAX];
    char tsFilePath[DEMUX_TS_FILE_MAX][DEMUX_TS_PATH_SIZE];
};

/** An IP stream of the ATSC 3.0 link layer; addresses in host byte order. */
struct DemuxAlpIp {
    uint32_t uSrcAddr;
    uint32_t uSrcPort;
    uint32_t uDstAddr;
    uint32_t uDstPort;
};

struct DemuxConfig {
    uint32_t uInvalidPid;
    uint32_t uInvalidTableId;
    DemuxTsFiles stAtsccTs;
    DemuxTsFiles stAtsctTs;
    DemuxTsFiles stDvbcTs;
    DemuxTsFiles stDvbtTs;
    DemuxTsFiles stDvbsTs;
    DemuxTsFiles stIsdbtTs;
    DemuxTsFiles stIsdbsTs;
    /** Nothing fills it. */
    DemuxTsFiles stReservedTs;
    uint32_t uAlpIpNum;
    DemuxAlpIp stAlpIp[DEMUX_ALP_IP_MAX];
};

/** Zero until loaded; written by Demux_LoadParams on the console thread, else only read. */
extern DemuxConfig g_tcDemuxConfig;

/** A number and a text of demux_config.cfg; a missing one leaves *value, or makes it 0, as
 *  get_conf_value_self does. 0 found, 1 not. */
int32_t Demux_GetConfValue(const char* section, const char* key, int32_t* value);
int32_t Demux_GetConfString(const char* section, const char* key, char* value);

/** Clears and reloads g_tcDemuxConfig. */
void Demux_LoadParams(void);

#endif

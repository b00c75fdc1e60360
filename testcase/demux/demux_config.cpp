#include "testcase/demux/demux_config.h"

#include <arpa/inet.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>

#include "environment/conf_reader.h"
#include "environment/config_files.h"
#include "framework/base/zk_log.h"

DemuxConfig g_tcDemuxConfig;

int32_t Demux_GetConfValue(const char* section, const char* key, int32_t* value) {
    return get_conf_value_self(section, key, value, g_configFile.demux);
}

int32_t Demux_GetConfString(const char* section, const char* key, char* value) {
    return get_conf_sting_self(section, key, value, g_configFile.demux);
}

static uint32_t loadNumber(const char* section, const char* key) {
    int32_t value = 0;
    Demux_GetConfValue(section, key, &value);
    return static_cast<uint32_t>(value);
}

/** A count of things that have room for `most`. */
static uint32_t loadCount(const char* section, const char* key, uint32_t most) {
    int32_t value = 0;
    Demux_GetConfValue(section, key, &value);
    return value < 0 ? 0 : std::min(static_cast<uint32_t>(value), most);
}

static void loadTsFiles(const char* section, const char* folder, DemuxTsFiles* files) {
    zk_log("Load %s config !\r\n", section);
    files->uTsFileNum = loadCount(section, "TS_FILE_NUM", DEMUX_TS_FILE_MAX);
    for (uint32_t i = 0; i < files->uTsFileNum; i++) {
        char key[CONF_TEXT_SIZE];
        char name[CONF_TEXT_SIZE] = "";
        snprintf(key, sizeof key, "TS_FILE_%u", i);
        Demux_GetConfString(section, key, name);
        snprintf(files->tsFilePath[i], sizeof files->tsFilePath[i], "%s%s", folder, name);
        snprintf(key, sizeof key, "TS_FILE_%u_CHANNEL_ID", i);
        files->uTsFileChannelId[i] = loadNumber(section, key);
    }
}

/** Reads ALP_IP_n_<what>_ADDR and _PORT. */
static void loadEndpoint(uint32_t n, const char* what, uint32_t* address, uint32_t* port) {
    char key[CONF_TEXT_SIZE];
    char text[CONF_TEXT_SIZE] = "";
    in_addr binary{};
    snprintf(key, sizeof key, "ALP_IP_%u_%s_ADDR", n, what);
    Demux_GetConfString("ATSC-T3", key, text);
    if (inet_aton(text, &binary) != 0)
        *address = ntohl(binary.s_addr);
    snprintf(key, sizeof key, "ALP_IP_%u_%s_PORT", n, what);
    *port = loadNumber("ATSC-T3", key);
}

static void loadAlp() {
    zk_log("Load ATSC-T3 config !\r\n");
    g_tcDemuxConfig.uAlpIpNum = loadCount("ATSC-T3", "ALP_IP_NUM", DEMUX_ALP_IP_MAX);
    for (uint32_t i = 0; i < g_tcDemuxConfig.uAlpIpNum; i++) {
        DemuxAlpIp* stream = &g_tcDemuxConfig.stAlpIp[i];
        loadEndpoint(i, "SRC", &stream->uSrcAddr, &stream->uSrcPort);
        loadEndpoint(i, "DST", &stream->uDstAddr, &stream->uDstPort);
    }
}

void Demux_LoadParams(void) {
    char folder[CONF_TEXT_SIZE] = "";
    DemuxConfig* config = &g_tcDemuxConfig;
    memset(config, 0, sizeof *config);
    zk_log("Load COMMON config !\r\n");
    config->uInvalidPid = loadNumber("COMMON", "DEMUX_INVALID_PID");
    config->uInvalidTableId = loadNumber("COMMON", "DEMUX_INVALID_TABLE_ID");
    Demux_GetConfString("COMMON", "DEMUX_TS_FILE_PATH", folder);
    loadTsFiles("ATSC-C", folder, &config->stAtsccTs);
    loadTsFiles("ATSC-T", folder, &config->stAtsctTs);
    loadTsFiles("DVB-C", folder, &config->stDvbcTs);
    loadTsFiles("DVB-T", folder, &config->stDvbtTs);
    loadTsFiles("DVB-S", folder, &config->stDvbsTs);
    loadTsFiles("ISDB-T", folder, &config->stIsdbtTs);
    loadTsFiles("ISDB-S", folder, &config->stIsdbsTs);
    loadAlp();
}

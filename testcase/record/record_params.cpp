#include "testcase/record/record_params.h"

#include <stdio.h>
#include <string.h>

#include <algorithm>

#include "environment/config_files.h"
#include "environment/test_env.h"
#include "framework/base/zk_log.h"
#include "platform/qlx_record.h"
#include "platform/qlx_tuner.h"

stRecoderParams g_stRecoderParams;

static const struct {
    uint32_t eTransSys;
    const char* key;
} standards[REC_STANDARD_NUM] = {
    {QLX_TRANSMISSION_SYSTEM_DVB_T, "DVBT"},   {QLX_TRANSMISSION_SYSTEM_DVB_S, "DVBS"},
    {QLX_TRANSMISSION_SYSTEM_DVB_C, "DVBC"},   {QLX_TRANSMISSION_SYSTEM_ISDB_T, "ISDBT"},
    {QLX_TRANSMISSION_SYSTEM_ISDB_S, "ISDBS"},
};

uint32_t qlx_record_videoFmt(uint32_t eVideoFormat) {
    uint32_t recordVideoFmt = QLX_RECORD_VIDEO_FMT_H264;
    switch (eVideoFormat) {
        case 1:
            recordVideoFmt = QLX_RECORD_VIDEO_FMT_MPEG1;
            break;
        case 2:
            recordVideoFmt = QLX_RECORD_VIDEO_FMT_MPEG2;
            break;
        case 4:
            recordVideoFmt = QLX_RECORD_VIDEO_FMT_MPEG4;
            break;
        case 32:
            recordVideoFmt = QLX_RECORD_VIDEO_FMT_HEVC;
            break;
        case 128:
            recordVideoFmt = QLX_RECORD_VIDEO_FMT_VC1;
            break;
        default:
            break;
    }
    zk_log("%s(), recordVideoFmt:%d \r\n", __func__, static_cast<int>(recordVideoFmt));
    return recordVideoFmt;
}

static uint32_t loadNumber(const char* key) {
    int32_t value = 0;
    get_conf_value_self("RECODER", key, &value, g_configFile.pvr);
    return static_cast<uint32_t>(value);
}

static void copyPids(uint32_t count, const uint32_t* pids, RecPids* to) {
    to->uNum = std::min<uint32_t>(count, REC_PIDS_MAX);
    memcpy(to->uPids, pids, to->uNum * sizeof *pids);
}

static RecActualPids pidsOf(const TcChannelInfo& channel) {
    RecActualPids pids = {};
    pids.uVideoPid = channel.uVideoPid;
    pids.eVideoFormat = qlx_record_videoFmt(channel.eVideoFormat);
    copyPids(channel.audioNum, channel.uAudioPids, &pids.stAudio);
    copyPids(channel.subtitleNum, channel.uSubtitlePids, &pids.stSubtitle);
    copyPids(channel.audioDescNum, channel.uAudioDescPids, &pids.stAudioDesc);
    copyPids(channel.otherNum, channel.uOtherPids, &pids.stOther);
    pids.uPmtPid = channel.uPmtPid;
    pids.bHasPmtPid = channel.uPmtPid != 0;
    pids.uPcrPid = channel.uPcrPid;
    pids.bHasPcrPid = channel.uPcrPid != 0;
    return pids;
}

static void loadStandard(const char* name, RecStandard* standard) {
    char key[CONF_TEXT_SIZE];
    snprintf(key, sizeof key, "PVR_RCD_%s_PATH_NUM", name);
    standard->uPathNum = std::min<uint32_t>(loadNumber(key), REC_PATH_MAX);
    for (uint32_t i = 0; i < standard->uPathNum; i++) {
        RecPath* path = &standard->stPaths[i];
        TcChannelInfo channel = {};
        snprintf(key, sizeof key, "PVR_RCD_%s_PATH%u_SWITCH", name, i);
        path->uSwitch = loadNumber(key);
        snprintf(key, sizeof key, "PVR_RCD_%s_PATH%u_CHANNEL", name, i);
        path->uChannel = loadNumber(key);
        zk_test_get_dtv_channel_info(standard->eTransSys, path->uChannel, &channel);
        path->stPids = pidsOf(channel);
    }
}

int32_t load_recoder_params(void) {
    stRecoderParams* params = &g_stRecoderParams;
    *params = {};
    get_conf_sting_self("RECODER", "PVR_RCD_STORE_DIR", params->storeDir, g_configFile.pvr);
    get_conf_sting_self("RECODER", "PVR_RCD_STORE_DISK_DIR", params->storeDiskDir,
                        g_configFile.pvr);
    params->transmiSystem = loadNumber("PVR_RCD_TRANSMISSIONSYSTEM");
    for (uint32_t i = 0; i < REC_STANDARD_NUM; i++) {
        params->stStandards[i].eTransSys = standards[i].eTransSys;
        loadStandard(standards[i].key, &params->stStandards[i]);
    }
    params->eRecTransSys = params->transmiSystem;
    return 0;
}

const RecPath* rec_findPath(const stRecoderParams& params, uint32_t eTransSys, uint32_t index) {
    for (const RecStandard& standard : params.stStandards) {
        if (standard.eTransSys == eTransSys)
            return &standard.stPaths[index];
    }
    return nullptr;
}

bool rec_hasPath(uint32_t eTransSys, uint32_t index) {
    const RecPath* path = rec_findPath(g_stRecoderParams, eTransSys, index);
    return path != nullptr && path->uSwitch != 0;
}

/* Parameters of the recorder: folders, and the channels that are recorded, from pvr_config.cfg. */
#ifndef TESTCASE_RECORD_RECORD_PARAMS_H
#define TESTCASE_RECORD_RECORD_PARAMS_H

#include <stdint.h>

#include "environment/conf_reader.h"

enum {
    REC_PATH_MAX = 4,
    REC_PIDS_MAX = 16,
};

/** PIDs of a kind. */
struct RecPids {
    uint32_t uNum;
    uint32_t uPids[REC_PIDS_MAX];
};

/** What is recorded of a channel. */
struct RecActualPids {
    uint32_t uVideoPid;
    /** QLX_RecordVideoFmt. */
    uint32_t eVideoFormat;
    RecPids stAudio;
    RecPids stSubtitle;
    RecPids stAudioDesc;
    RecPids stOther;
    uint32_t bHasPmtPid;
    uint32_t uPmtPid;
    uint32_t bHasPcrPid;
    uint32_t uPcrPid;
};

/** A channel of a standard that is recorded. */
struct RecPath {
    /** 0: switched off. */
    uint32_t uSwitch;
    uint32_t uChannel;
    RecActualPids stPids;
};

/** The paths of a standard. */
struct RecStandard {
    /** QLX_TransmissionSystem. */
    uint32_t eTransSys;
    uint32_t uPathNum;
    RecPath stPaths[REC_PATH_MAX];
};

enum { REC_STANDARD_NUM = 5 };

struct stRecoderParams {
    /** Ends with its separator: file names are appended. */
    char storeDir[CONF_TEXT_SIZE];
    char storeDiskDir[CONF_TEXT_SIZE];
    /** Of cases that name no system. */
    uint32_t transmiSystem;
    RecStandard stStandards[REC_STANDARD_NUM];

    // Of the copy that a case works on.
    uint32_t eDemuxDev;
    uint32_t eTunerDev;
    /** QLX_TransmissionSystem. */
    uint32_t eRecTransSys;
    uint32_t uPathIndex;
};

extern stRecoderParams g_stRecoderParams;

/** Reads section RECODER, and the channels of its paths from zk_testConfig. Always 0. */
int32_t load_recoder_params(void);

/** The path of a system; null for a system that is not recorded. `index` below REC_PATH_MAX. */
const RecPath* rec_findPath(const stRecoderParams& params, uint32_t eTransSys, uint32_t index);

/** Whether the configuration has that path, switched on. */
bool rec_hasPath(uint32_t eTransSys, uint32_t index);

/** The recorder's number of a video format of the channel files. */
uint32_t qlx_record_videoFmt(uint32_t eVideoFormat);

#endif

// Record: the recorder's calls in and out of order, and recordings of each standard, judged by what
// stands in their files.
#include <unistd.h>

#include "framework/case/ladder.h"
#include "platform/qlx_demux.h"
#include "platform/qlx_tuner.h"
#include "testcase/modules.h"
#include "testcase/record/record_harness.h"
#include "testcase/record/record_output.h"

enum {
    /** A handle that none is. */
    NULL_HANDLE = 0,
    ERROR_FORMAT = 255,
    FIRST_PID = 0x100,
    MORE_PIDS = QLX_RECORD_PID_MAX + 8,
    VIDEO_PID = 255,
};

static const QLX_RecordCfg recCfg = {192, 4096, {0, 0}};

// Init.

static uint32_t TC_RecTestNormalInit(void) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(QLX_RecordInit());
    TC_EXPECT_RET(QLX_RecordDeInit());
    return TC_RESULT(tc);
}

static uint32_t TC_RecTestDoubleInit(void) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(QLX_RecordInit());
    TC_EXPECT_RET(QLX_RecordInit());
    TC_EXPECT_RET(QLX_RecordDeInit());
    return TC_RESULT(tc);
}

static uint32_t TC_RecTestDeinitBeforeInit(void) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(QLX_RecordDeInit());
    return TC_RESULT(tc);
}

static uint32_t TC_RecTestNormalDeinit(void) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(QLX_RecordInit());
    TC_EXPECT_RET(QLX_RecordDeInit());
    return TC_RESULT(tc);
}

static uint32_t TC_RecTestDoubleDeinit(void) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(QLX_RecordInit());
    TC_EXPECT_RET(QLX_RecordDeInit());
    TC_EXPECT_RET(QLX_RecordDeInit());
    return TC_RESULT(tc);
}

// Open and close.

/** A recorder of demultiplexer 0, on which nothing flows. */
struct RecorderBench {
    uint32_t recHandle;
};

static const LadderStep<RecorderBench> recorderSteps[] = {
    {LADDER_CALL("QLX_RecordInit()", QLX_RecordInit()),
     LADDER_CALL("QLX_RecordDeInit()", QLX_RecordDeInit())},
    {LADDER_CALL("QLX_RecordOpen(eDemuxId, &recCfg, &recHandle)",
                 QLX_RecordOpen(QLX_DEMUX_0, &recCfg, &bench.recHandle)),
     LADDER_CALL("QLX_RecordClose(recHandle)", QLX_RecordClose(bench.recHandle))},
};
/** The service without a recorder. */
enum { SERVICE_STEPS = 1 };

/** A case on the lowest `steps` of a recorder. */
template <typename Work>
static uint32_t onRecorder(const char* name, size_t steps, Work work) {
    CaseContext tc = {name};
    RecorderBench bench = {};
    Ladder<RecorderBench> ladder(tc, bench, recorderSteps);
    if (ladder.up(steps))
        work(tc, bench.recHandle);
    ladder.down();
    return TC_RESULT(tc);
}

template <typename Work>
static uint32_t onRecorder(const char* name, Work work) {
    return onRecorder(name, SIZE_MAX, work);
}

static uint32_t TC_RecTestOpenBeforeInit(void) {
    CaseContext tc = {__func__};
    const uint32_t eDemuxId = QLX_DEMUX_0;
    uint32_t recHandle = NULL_HANDLE;
    TC_EXPECT_RET_CODE(QLX_RecordOpen(eDemuxId, &recCfg, &recHandle), QLX_FAILED);
    return TC_RESULT(tc);
}

static uint32_t TC_RecTestOpenCloseOpen(void) {
    return onRecorder(__func__, SERVICE_STEPS, [](CaseContext& tc, uint32_t recHandle) {
        const uint32_t eDemuxId = QLX_DEMUX_0;
        for (int round = 0; round < 2; round++) {
            if (TC_EXPECT_RET(QLX_RecordOpen(eDemuxId, &recCfg, &recHandle)))
                TC_EXPECT_RET(QLX_RecordClose(recHandle));
        }
    });
}

static uint32_t TC_RecTestDoubleOpen(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t recHandle) {
        const uint32_t eDemuxId = QLX_DEMUX_0;
        TC_EXPECT_RET_CODE(QLX_RecordOpen(eDemuxId, &recCfg, &recHandle), QLX_FAILED);
    });
}

static uint32_t TC_RecTestOpenOnInvalidDmx(void) {
    return onRecorder(__func__, SERVICE_STEPS, [](CaseContext& tc, uint32_t recHandle) {
        TC_EXPECT_RET_CODE(QLX_RecordOpen(QLX_DEMUX_NUM_MAX, &recCfg, &recHandle),
                           QLX_RECORD_ERR_INVALID_PARA);
    });
}

static uint32_t TC_RecTestOpenOnNullCfg(void) {
    return onRecorder(__func__, SERVICE_STEPS, [](CaseContext& tc, uint32_t recHandle) {
        TC_EXPECT_RET_CODE(QLX_RecordOpen(QLX_DEMUX_0, NULL, &recHandle),
                           QLX_RECORD_ERR_INVALID_PARA);
    });
}

static uint32_t TC_RecTestOpenOnNullHdl(void) {
    return onRecorder(__func__, SERVICE_STEPS, [](CaseContext& tc, uint32_t) {
        TC_EXPECT_RET_CODE(QLX_RecordOpen(QLX_DEMUX_0, &recCfg, NULL), QLX_RECORD_ERR_INVALID_PARA);
    });
}

static uint32_t TC_RecTestNormalClose(void) {
    return onRecorder(__func__, [](CaseContext&, uint32_t) {});
}

static uint32_t TC_RecTestCloseOnNullHdl(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t) {
        TC_EXPECT_RET_CODE(QLX_RecordClose(NULL_HANDLE), QLX_RECORD_ERR_INVALID_PARA);
    });
}

// Open on a source.

struct OpenBench {
    stRecoderParams stRecoderParam;
    uint32_t eDemuxId;
    uint32_t recHandle;
};

static const LadderStep<OpenBench> openSteps[] = {
    {LADDER_CALL("QLX_RecordInit()", QLX_RecordInit()),
     LADDER_CALL("QLX_RecordDeInit()", QLX_RecordDeInit())},
    {LADDER_CALL("TC_Record_START_SOURCE(&stRecoderParam)",
                 TC_Record_START_SOURCE(&bench.stRecoderParam)),
     LADDER_CALL("TC_Record_STOP_SOURCE(&stRecoderParam)",
                 TC_Record_STOP_SOURCE(&bench.stRecoderParam))},
    {LADDER_CALL("QLX_RecordOpen(eDemuxId, &recCfg, &recHandle)",
                 QLX_RecordOpen(bench.eDemuxId, &recCfg, &bench.recHandle)),
     LADDER_CALL("QLX_RecordClose(recHandle)", QLX_RecordClose(bench.recHandle))},
};

/** Opens and closes the recorder while the standard's first path flows. Tuner and demultiplexer
 *  have one number. */
static uint32_t TC_RecTestNormalOpen(const char* name, uint32_t device, uint32_t eRecTransSys) {
    CaseContext tc = {name};
    OpenBench bench = {g_stRecoderParams, device, NULL_HANDLE};
    if (!rec_hasPath(eRecTransSys, 0))
        return tc_notApplicable(tc);
    bench.stRecoderParam.eTunerDev = device;
    bench.stRecoderParam.eDemuxDev = device;
    bench.stRecoderParam.eRecTransSys = eRecTransSys;
    bench.stRecoderParam.uPathIndex = 0;
    if (ladderUp(tc, bench, openSteps))
        ladderDown(tc, bench, openSteps);
    return TC_RESULT(tc);
}

// clang-format off
#define NORMAL_OPEN_FAMILY(X) \
    /* case                  flag  description                                                body */ \
    X(TC_RecNormalOpen_001, AUTO, "Open and close record (DVB-T, Tuner-0, Demux-0)",  TC_RecTestNormalOpen(__func__, 0, QLX_TRANSMISSION_SYSTEM_DVB_T)) \
    X(TC_RecNormalOpen_002, AUTO, "Open and close record (DVB-C, Tuner-0, Demux-0)",  TC_RecTestNormalOpen(__func__, 0, QLX_TRANSMISSION_SYSTEM_DVB_C)) \
    X(TC_RecNormalOpen_003, AUTO, "Open and close record (DVB-S, Tuner-0, Demux-0)",  TC_RecTestNormalOpen(__func__, 0, QLX_TRANSMISSION_SYSTEM_DVB_S)) \
    X(TC_RecNormalOpen_004, AUTO, "Open and close record (ISDB-T, Tuner-0, Demux-0)", TC_RecTestNormalOpen(__func__, 0, QLX_TRANSMISSION_SYSTEM_ISDB_T)) \
    X(TC_RecNormalOpen_005, AUTO, "Open and close record (ISDB-S, Tuner-0, Demux-0)", TC_RecTestNormalOpen(__func__, 0, QLX_TRANSMISSION_SYSTEM_ISDB_S)) \
    X(TC_RecNormalOpen_011, AUTO, "Open and close record (DVB-T, Tuner-1, Demux-1)",  TC_RecTestNormalOpen(__func__, 1, QLX_TRANSMISSION_SYSTEM_DVB_T)) \
    X(TC_RecNormalOpen_012, AUTO, "Open and close record (DVB-C, Tuner-1, Demux-1)",  TC_RecTestNormalOpen(__func__, 1, QLX_TRANSMISSION_SYSTEM_DVB_C)) \
    X(TC_RecNormalOpen_013, AUTO, "Open and close record (DVB-S, Tuner-1, Demux-1)",  TC_RecTestNormalOpen(__func__, 1, QLX_TRANSMISSION_SYSTEM_DVB_S)) \
    X(TC_RecNormalOpen_014, AUTO, "Open and close record (ISDB-T, Tuner-1, Demux-1)", TC_RecTestNormalOpen(__func__, 1, QLX_TRANSMISSION_SYSTEM_ISDB_T)) \
    X(TC_RecNormalOpen_015, AUTO, "Open and close record (ISDB-S, Tuner-1, Demux-1)", TC_RecTestNormalOpen(__func__, 1, QLX_TRANSMISSION_SYSTEM_ISDB_S))
// clang-format on
NORMAL_OPEN_FAMILY(TC_VARIANT_FUNCTION)

// Callbacks.

static uint32_t TC_RecTestRegister(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t recHandle) {
        if (TC_EXPECT_RET(RecRegister(recHandle)))
            TC_EXPECT_RET(RecUnregister(recHandle));
    });
}

static uint32_t TC_RecTestRegisterOnNullHdl(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t) {
        TC_EXPECT_RET_CODE(RecRegister(NULL_HANDLE), QLX_RECORD_ERR_INVALID_PARA);
    });
}

static uint32_t TC_RecTestRegisterOnNullCb(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t recHandle) {
        const QLX_RecordCallbacks stCallbacks = {};
        TC_EXPECT_RET_CODE(QLX_RecordRegisterCb(recHandle, &stCallbacks),
                           QLX_RECORD_ERR_INVALID_PARA);
    });
}

static uint32_t TC_RecTestUnRegister(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t recHandle) {
        if (TC_EXPECT_RET(RecRegister(recHandle)))
            TC_EXPECT_RET(RecUnregister(recHandle));
    });
}

static uint32_t TC_RecTestUnRegisterOnNullHdl(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t recHandle) {
        if (!TC_EXPECT_RET(RecRegister(recHandle)))
            return;
        TC_EXPECT_RET_CODE(RecUnregister(NULL_HANDLE), QLX_RECORD_ERR_INVALID_PARA);
        TC_EXPECT_RET(RecUnregister(recHandle));
    });
}

static uint32_t TC_RecTestUnRegisterOnNullCb(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t recHandle) {
        const QLX_RecordCallbacks stCallbacks = {};
        if (!TC_EXPECT_RET(RecRegister(recHandle)))
            return;
        TC_EXPECT_RET_CODE(QLX_RecordUnRegisterCb(recHandle, &stCallbacks),
                           QLX_RECORD_ERR_INVALID_PARA);
        TC_EXPECT_RET(RecUnregister(recHandle));
    });
}

// PIDs.

static uint32_t TC_RecTestAddPid(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t recHandle) {
        TC_EXPECT_RET(AddPidsBeforeStart(recHandle, NULL));
    });
}

static uint32_t TC_RecTestAddPidOnNullHdl(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t) {
        TC_EXPECT_RET_CODE(QLX_RecordAddPid(NULL_HANDLE, VIDEO_PID), QLX_RECORD_ERR_INVALID_PARA);
    });
}

static uint32_t TC_RecTestAddPidOnMorePids(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t recHandle) {
        for (uint32_t uPid = FIRST_PID; uPid < FIRST_PID + MORE_PIDS; uPid++)
            TC_EXPECT_RET(QLX_RecordAddPid(recHandle, uPid));
    });
}

static uint32_t TC_RecTestRemovePid(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t recHandle) {
        if (TC_EXPECT_RET(QLX_RecordAddPid(recHandle, VIDEO_PID)))
            TC_EXPECT_RET(QLX_RecordRemovePid(recHandle, VIDEO_PID));
    });
}

static uint32_t TC_RecTestRemovePidOnNullHdl(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t) {
        TC_EXPECT_RET_CODE(QLX_RecordRemovePid(NULL_HANDLE, VIDEO_PID),
                           QLX_RECORD_ERR_INVALID_PARA);
    });
}

static uint32_t TC_RecTestRemovePidNotAdded(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t recHandle) {
        TC_EXPECT_RET_CODE(QLX_RecordRemovePid(recHandle, VIDEO_PID), QLX_FAILED);
    });
}

// Video format.

static uint32_t TC_RecTestSetVideoFmt(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t recHandle) {
        const uint32_t formats[] = {QLX_RECORD_VIDEO_FMT_MPEG1, QLX_RECORD_VIDEO_FMT_MPEG2,
                                    QLX_RECORD_VIDEO_FMT_MPEG4, QLX_RECORD_VIDEO_FMT_H264,
                                    QLX_RECORD_VIDEO_FMT_VC1,   QLX_RECORD_VIDEO_FMT_HEVC};
        if (!TC_EXPECT_RET(QLX_RecordAddPid(recHandle, VIDEO_PID)))
            return;
        for (uint32_t eVideoFormat : formats)
            TC_EXPECT_RET(QLX_RecordSetVideoFmt(recHandle, VIDEO_PID, eVideoFormat));
    });
}

static uint32_t TC_RecTestSetVideoFmtOnNullHdl(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t) {
        TC_EXPECT_RET_CODE(
            QLX_RecordSetVideoFmt(NULL_HANDLE, VIDEO_PID, QLX_RECORD_VIDEO_FMT_MPEG2),
            QLX_RECORD_ERR_INVALID_PARA);
    });
}

static uint32_t TC_RecTestSetVideoFmtOnErrFmt(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t recHandle) {
        if (TC_EXPECT_RET(QLX_RecordAddPid(recHandle, VIDEO_PID)))
            TC_EXPECT_RET_CODE(QLX_RecordSetVideoFmt(recHandle, VIDEO_PID, ERROR_FORMAT),
                               QLX_RECORD_ERR_NOT_SUPPORTED);
    });
}

// Start and stop.

static uint32_t TC_RecTestDoubleStart(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t recHandle) {
        if (!TC_EXPECT_RET(AddPidsBeforeStart(recHandle, NULL)) ||
            !TC_EXPECT_RET(QLX_RecordStart(recHandle)))
            return;
        TC_EXPECT_RET_CODE(QLX_RecordStart(recHandle), QLX_FAILED);
        TC_EXPECT_RET(QLX_RecordStop(recHandle));
    });
}

static uint32_t TC_RecTestStartOnNullHdl(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t) {
        TC_EXPECT_RET_CODE(QLX_RecordStart(NULL_HANDLE), QLX_RECORD_ERR_INVALID_PARA);
    });
}

static uint32_t TC_RecTestStartOnNullPids(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t recHandle) {
        TC_EXPECT_RET_CODE(QLX_RecordStart(recHandle), QLX_FAILED);
    });
}

static uint32_t TC_RecTestStopBeforeStart(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t recHandle) {
        if (TC_EXPECT_RET(AddPidsBeforeStart(recHandle, NULL)))
            TC_EXPECT_RET_CODE(QLX_RecordStop(recHandle), QLX_FAILED);
    });
}

static uint32_t TC_RecTestDoubleStop(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t recHandle) {
        if (!TC_EXPECT_RET(AddPidsBeforeStart(recHandle, NULL)) ||
            !TC_EXPECT_RET(QLX_RecordStart(recHandle)) || !TC_EXPECT_RET(QLX_RecordStop(recHandle)))
            return;
        TC_EXPECT_RET_CODE(QLX_RecordStop(recHandle), QLX_FAILED);
    });
}

static uint32_t TC_RecTestStopOnNullHdl(void) {
    return onRecorder(__func__, [](CaseContext& tc, uint32_t) {
        TC_EXPECT_RET_CODE(QLX_RecordStop(NULL_HANDLE), QLX_RECORD_ERR_INVALID_PARA);
    });
}

// Whole flows.

/** How a case sets the flow that it runs. */
struct RecSettings {
    uint32_t seconds;
    bool encrypt;
    bool disk;
    uint32_t rounds;
};

// clang-format off
//                                     s  encrypt  disk  rounds
static const RecSettings plainly   = { 15, false, false, 1};
static const RecSettings tenTimes  = { 15, false, false, 10};
static const RecSettings onDisk    = { 15, false, true,  1};
static const RecSettings aMinute   = { 60, false, false, 1};
static const RecSettings tenMinutes= {600, false, false, 1};
static const RecSettings encrypted = { 15, true,  false, 1};
static const RecSettings growing   = {180, false, false, 1};
static const RecSettings stamped   = { 30, false, false, 1};
// clang-format on

using RecFlow = uint32_t (*)(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                             uint32_t path);

/** A flow on tuner 0 and demultiplexer 0; `text` is the call as a failure prints it. */
static uint32_t flowBase(const char* name, const RecSettings& settings, RecFlow flow,
                         const char* text, uint32_t eRecTransSys, uint32_t path) {
    CaseContext tc = {name};
    if (!rec_hasPath(eRecTransSys, path))
        return tc_notApplicable(tc);
    g_recRuration = settings.seconds;
    bRecordEncrypt = settings.encrypt ? 1 : 0;
    bRecordStoreDisk = settings.disk ? 1 : 0;
    bRecordSeveralTimes = settings.rounds > 1 ? settings.rounds : 0;
    for (g_recRun = 1; tc.result == TC_SUCCESS && g_recRun <= settings.rounds; g_recRun++)
        TC_EXPECT_RET_TEXT(text, flow(0, QLX_DEMUX_0, eRecTransSys, path));
    g_recRuration = REC_DURATION;
    bRecordEncrypt = 0;
    bRecordStoreDisk = 0;
    bRecordSeveralTimes = 0;
    return TC_RESULT(tc);
}

/** The flow with the call's text. */
#define REC_FLOW(settings, flow, system, path)                                                \
    flowBase(__func__, settings, flow, #flow "(eTunerDev, eDemuxId, " #system ", " #path ")", \
             system, path)

// clang-format off
#define FLOW_FAMILY(X) \
    /* case                          flag    description                                                              body */ \
    X(TC_RecWholeFlow_001,               AUTO,   "Record whole flow of DVB-T",                                            REC_FLOW(plainly, TC_RecTestWholeFlow, QLX_TRANSMISSION_SYSTEM_DVB_T, 0)) \
    X(TC_RecWholeFlow_002,               AUTO,   "Record whole flow of DVB-C",                                            REC_FLOW(plainly, TC_RecTestWholeFlow, QLX_TRANSMISSION_SYSTEM_DVB_C, 0)) \
    X(TC_RecWholeFlow_003,               AUTO,   "Record whole flow of DVB-S",                                            REC_FLOW(plainly, TC_RecTestWholeFlow, QLX_TRANSMISSION_SYSTEM_DVB_S, 0)) \
    X(TC_RecWholeFlow_005,               AUTO,   "Record whole flow of ISDB-S",                                           REC_FLOW(plainly, TC_RecTestWholeFlow, QLX_TRANSMISSION_SYSTEM_ISDB_S, 0)) \
    X(TC_RecWholeFlow_004_PATH_0,        AUTO,   "Record whole flow of ISDB-T on path-0",                                 REC_FLOW(plainly, TC_RecTestWholeFlow, QLX_TRANSMISSION_SYSTEM_ISDB_T, 0)) \
    X(TC_RecWholeFlow_004_PATH_1,        AUTO,   "Record whole flow of ISDB-T on path-1",                                 REC_FLOW(plainly, TC_RecTestWholeFlow, QLX_TRANSMISSION_SYSTEM_ISDB_T, 1)) \
    X(TC_RecWholeFlow_004_PATH_2,        AUTO,   "Record whole flow of ISDB-T on path-2",                                 REC_FLOW(plainly, TC_RecTestWholeFlow, QLX_TRANSMISSION_SYSTEM_ISDB_T, 2)) \
    X(TC_RecWholeFlowTimes_001,          AUTO,   "Record whole flow of DVB-T 10 times",                                   REC_FLOW(tenTimes, TC_RecTestWholeFlow, QLX_TRANSMISSION_SYSTEM_DVB_T, 0)) \
    X(TC_RecWholeFlowDisk_001,           AUTO,   "Record whole flow of DVB-T, store in disk",                             REC_FLOW(onDisk, TC_RecTestWholeFlow, QLX_TRANSMISSION_SYSTEM_DVB_T, 0)) \
    X(TC_RecWholeFlowUnplugDisk_001,     MANUAL, "Record whole flow of DVB-T, store in disk, unplug disk while recording", REC_FLOW(onDisk, TC_RecTestWholeFlow, QLX_TRANSMISSION_SYSTEM_DVB_T, 0)) \
    X(TC_RecWholeFlowMidTime_001,        AUTO,   "Record whole flow of DVB-T for 60 seconds",                             REC_FLOW(aMinute, TC_RecTestWholeFlow, QLX_TRANSMISSION_SYSTEM_DVB_T, 0)) \
    X(TC_RecWholeFlowLongTime_001,       AUTO,   "Record whole flow of DVB-T for 600 seconds",                            REC_FLOW(tenMinutes, TC_RecTestWholeFlow, QLX_TRANSMISSION_SYSTEM_DVB_T, 0)) \
    X(TC_RecEncryptWholeFlow_001,        AUTO,   "Record whole flow of DVB-T, encrypt data",                              REC_FLOW(encrypted, TC_RecTestWholeFlow, QLX_TRANSMISSION_SYSTEM_DVB_T, 0)) \
    X(TC_RecWholeFlowWithPause_001,      AUTO,   "Record whole flow of DVB-T with pause and resume",                      REC_FLOW(plainly, TC_RecTestWholeFlowWithPause, QLX_TRANSMISSION_SYSTEM_DVB_T, 0)) \
    X(TC_RecWholeFlowConsumption_001,    AUTO,   "Test the consumption time of record whole flow of DVB-C",               REC_FLOW(plainly, TC_RecTestWholeFlowConsumption, QLX_TRANSMISSION_SYSTEM_DVB_C, 0)) \
    X(TC_RecWholeFlowConsumption_002,    AUTO,   "Test the consumption time of record whole flow of ISDB-T",              REC_FLOW(plainly, TC_RecTestWholeFlowConsumption, QLX_TRANSMISSION_SYSTEM_ISDB_T, 0)) \
    X(TC_RecIncreaseFileSize_001,        AUTO,   "Check the file size increases while recording DVB-C",                   REC_FLOW(growing, TC_RecTestWholeFlowFileSize, QLX_TRANSMISSION_SYSTEM_DVB_C, 0)) \
    X(TC_RecIncreaseFileSize_002,        AUTO,   "Check the file size increases while recording ISDB-T",                  REC_FLOW(growing, TC_RecTestWholeFlowFileSize, QLX_TRANSMISSION_SYSTEM_ISDB_T, 0)) \
    X(TC_RecScramWholeFlow_001,          AUTO,   "Record whole flow of DVB-T, play scrambled stream while recording",     REC_FLOW(plainly, TC_RecTestScramWholeFlow, QLX_TRANSMISSION_SYSTEM_DVB_T, 0)) \
    X(TC_RecMultiAudio,                  AUTO,   "Record DVB-T with multi audio",                                         REC_FLOW(plainly, TC_RecTestMultiAudio, QLX_TRANSMISSION_SYSTEM_DVB_T, 3)) \
    X(TC_RecMultiSubtitle,               AUTO,   "Record DVB-T with multi subtitle",                                      REC_FLOW(plainly, TC_RecTestMultiSubtitle, QLX_TRANSMISSION_SYSTEM_DVB_T, 3)) \
    X(TC_RecPMT,                         AUTO,   "Record DVB-T with PMT",                                                 REC_FLOW(plainly, TC_RecTestPMT, QLX_TRANSMISSION_SYSTEM_DVB_T, 3)) \
    X(TC_RecAudioDesc,                   AUTO,   "Record DVB-T with audio description",                                   REC_FLOW(plainly, TC_RecTestAudioDesc, QLX_TRANSMISSION_SYSTEM_DVB_T, 3)) \
    X(TC_RecOtherPids,                   AUTO,   "Record DVB-T with other pids",                                          REC_FLOW(plainly, TC_RecTestOtherPids, QLX_TRANSMISSION_SYSTEM_DVB_T, 3)) \
    X(TC_RecRecordAllTsData_001,         AUTO,   "Record all ts data of DVB-T",                                           REC_FLOW(plainly, TC_RecRecordAllTsData, QLX_TRANSMISSION_SYSTEM_DVB_T, 3)) \
    X(TC_RecCheckTsCallbackData_001,     AUTO,   "Check ts callback has data all the time while recording DVB-T",         REC_FLOW(plainly, TC_RecCheckTsCallbackData, QLX_TRANSMISSION_SYSTEM_DVB_T, 0)) \
    X(TC_RecCheckTsPacketTimestamp_001,  AUTO,   "Check the timestamp of ts packets is increasing while recording DVB-T", REC_FLOW(stamped, TC_RecCheckTsPacketTimestamp, QLX_TRANSMISSION_SYSTEM_DVB_T, 0))
// clang-format on
FLOW_FAMILY(TC_VARIANT_FUNCTION)

// The module.

// clang-format off
static constexpr TcCase RecordModuleCases[] = {
    TC_CASE(TC_RecTestNormalInit,            AUTO, "Init record"),
    TC_CASE(TC_RecTestDoubleInit,            AUTO, "Init record twice"),
    TC_CASE(TC_RecTestDeinitBeforeInit,      AUTO, "Deinit record before init"),
    TC_CASE(TC_RecTestNormalDeinit,          AUTO, "Deinit record"),
    TC_CASE(TC_RecTestDoubleDeinit,          AUTO, "Deinit record twice"),
    TC_CASE(TC_RecTestOpenBeforeInit,        AUTO, "Open record before init, expect QLX_FAILED"),
    TC_CASE(TC_RecTestOpenCloseOpen,         AUTO, "Open record, close record, open record again"),
    TC_CASE(TC_RecTestDoubleOpen,            AUTO, "Open record twice, expect QLX_FAILED"),
    TC_CASE(TC_RecTestOpenOnInvalidDmx,      AUTO, "Open record with invalid demux, expect QLX_RECORD_ERR_INVALID_PARA"),
    TC_CASE(TC_RecTestOpenOnNullCfg,         AUTO, "Open record with null config, expect QLX_RECORD_ERR_INVALID_PARA"),
    TC_CASE(TC_RecTestOpenOnNullHdl,         AUTO, "Open record with null handle, expect QLX_RECORD_ERR_INVALID_PARA"),
    TC_CASE(TC_RecTestNormalClose,           AUTO, "Close record"),
    TC_CASE(TC_RecTestCloseOnNullHdl,        AUTO, "Close record with null handle, expect QLX_RECORD_ERR_INVALID_PARA"),
    NORMAL_OPEN_FAMILY(TC_VARIANT_ROW)
    TC_CASE(TC_RecTestRegister,              AUTO, "Register callback"),
    TC_CASE(TC_RecTestRegisterOnNullHdl,     AUTO, "Register callback with null handle, expect QLX_RECORD_ERR_INVALID_PARA"),
    TC_CASE(TC_RecTestRegisterOnNullCb,      AUTO, "Register null callback, expect QLX_RECORD_ERR_INVALID_PARA"),
    TC_CASE(TC_RecTestUnRegister,            AUTO, "Unregister callback"),
    TC_CASE(TC_RecTestUnRegisterOnNullHdl,   AUTO, "Unregister callback with null handle, expect QLX_RECORD_ERR_INVALID_PARA"),
    TC_CASE(TC_RecTestUnRegisterOnNullCb,    AUTO, "Unregister null callback, expect QLX_RECORD_ERR_INVALID_PARA"),
    TC_CASE(TC_RecTestAddPid,                AUTO, "Add pids"),
    TC_CASE(TC_RecTestAddPidOnNullHdl,       AUTO, "Add pid with null handle, expect QLX_RECORD_ERR_INVALID_PARA"),
    TC_CASE(TC_RecTestAddPidOnMorePids,      AUTO, "Add more pids than supported"),
    TC_CASE(TC_RecTestRemovePid,             AUTO, "Remove pid"),
    TC_CASE(TC_RecTestRemovePidOnNullHdl,    AUTO, "Remove pid with null handle, expect QLX_RECORD_ERR_INVALID_PARA"),
    TC_CASE(TC_RecTestRemovePidNotAdded,     AUTO, "Remove pid which is not added, expect QLX_FAILED"),
    TC_CASE(TC_RecTestSetVideoFmt,           AUTO, "Set video format"),
    TC_CASE(TC_RecTestSetVideoFmtOnNullHdl,  AUTO, "Set video format with null handle, expect QLX_RECORD_ERR_INVALID_PARA"),
    TC_CASE(TC_RecTestSetVideoFmtOnErrFmt,   AUTO, "Set error video format, expect QLX_RECORD_ERR_NOT_SUPPORTED"),
    TC_CASE(TC_RecTestDoubleStart,           AUTO, "Start record twice, expect QLX_FAILED"),
    TC_CASE(TC_RecTestStartOnNullHdl,        AUTO, "Start record with null handle, expect QLX_RECORD_ERR_INVALID_PARA"),
    TC_CASE(TC_RecTestStartOnNullPids,       AUTO, "Start record without pids, expect QLX_FAILED"),
    TC_CASE(TC_RecTestStopBeforeStart,       AUTO, "Stop record before start, expect QLX_FAILED"),
    TC_CASE(TC_RecTestDoubleStop,            AUTO, "Stop record twice, expect QLX_FAILED"),
    TC_CASE(TC_RecTestStopOnNullHdl,         AUTO, "Stop record with null handle, expect QLX_RECORD_ERR_INVALID_PARA"),
    FLOW_FAMILY(TC_VARIANT_ROW)
};
// clang-format on

static_assert(tcCaseCount(RecordModuleCases) == 71 && tcAutoCount(RecordModuleCases) == 70,
              "as in testcase/module_list.h");

const TcModule RecordModule = {
    Rec_TestSetup,     Rec_TestTeardown,
    Rec_SetupCase,     Rec_TeardownCase,
    RecordModuleCases, tcCaseCount(RecordModuleCases),
    "Record",          "Test module for the Record",
    nullptr,
};

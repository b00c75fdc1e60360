#include "testcase/record/record_harness.h"

#include <pthread.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "environment/test_env.h"
#include "framework/case/ladder.h"
#include "framework/case/wait.h"
#include "platform/qlx_desc.h"
#include "platform/qlx_tuner.h"
#include "testcase/av/av_decoder.h"
#include "testcase/demux/demux_harness.h"
#include "testcase/record/record_output.h"
#include "testcase/tuner/tuner_harness.h"

enum {
    REC_PACKET_SIZE = 192,
    REC_BUFFER_SIZE = 4096,
    /** ms that a step may take. */
    REC_STEP_LIMIT = 200,
    REC_PAUSE_AFTER_S = 2,
    REC_LIVENESS_S = 300,
    REC_FILE_SIZE = 256,
};

uint32_t g_recRuration = REC_DURATION;
uint32_t bRecordSeveralTimes;
uint32_t g_recRun;
uint32_t g_hasOpenDmx;

static const int32_t* tcRecordFeature;

// The module.

uint32_t Rec_TestSetup(void) {
    zk_log("%s():setup all resources! \r\n", __func__);
    zk_test_get_feature(&tcRecordFeature);
    load_recoder_params();
    return 0;
}

uint32_t Rec_TestTeardown(void) {
    zk_log("%s():release all resources! \r\n", __func__);
    return 0;
}

struct CaseBench {};

static const LadderStep<CaseBench> caseSteps[] = {
    {LADDER_CALL("TC_TUNER_INIT()", TC_TUNER_INIT()),
     LADDER_CALL("TC_TUNER_DEINIT()", TC_TUNER_DEINIT())},
    {LADDER_CALL("QLX_DemuxInit()", QLX_DemuxInit()),
     LADDER_CALL("QLX_DemuxDeInit()", QLX_DemuxDeInit())},
};

uint32_t Rec_SetupCase(const char*, const char*) {
    CaseContext tc = {__func__};
    CaseBench bench;
    ladderUp(tc, bench, caseSteps);
    return tc.result;
}

uint32_t Rec_TeardownCase(void) {
    CaseContext tc = {__func__};
    CaseBench bench;
    ladderDown(tc, bench, caseSteps);
    return tc.result;
}

// The source.

struct SourceBench {
    const stRecoderParams* params;
    uint32_t channel;
    QLX_Source stSource;
};

static bool opensDemux(const SourceBench&) {
    return g_hasOpenDmx == 0;
}

static const LadderStep<SourceBench> sourceSteps[] = {
    {LADDER_CALL(
         "TC_TUNER_START(pstRecoderParam->eTunerDev, pstRecoderParam->eRecTransSys, uChannel)",
         TC_TUNER_START(bench.params->eTunerDev, bench.params->eRecTransSys, bench.channel)),
     LADDER_CALL("TC_TUNER_STOP(pstRecoderParam->eTunerDev)",
                 TC_TUNER_STOP(bench.params->eTunerDev))},
    {LADDER_CALL("TC_DEMUX_START(pstRecoderParam->eDemuxDev, &stSource)",
                 TC_DEMUX_START(bench.params->eDemuxDev, &bench.stSource)),
     LADDER_CALL("TC_DEMUX_STOP(pstRecoderParam->eDemuxDev)",
                 TC_DEMUX_STOP(bench.params->eDemuxDev)),
     UNDO_CHECKED, opensDemux},
};

static SourceBench sourceBenchOf(const stRecoderParams* pstRecoderParam) {
    SourceBench bench = {};
    bench.params = pstRecoderParam != nullptr ? pstRecoderParam : &g_stRecoderParams;
    const RecPath* path =
        rec_findPath(*bench.params, bench.params->eRecTransSys, bench.params->uPathIndex);
    bench.channel = path != nullptr ? path->uChannel : 0;
    bench.stSource = {QLX_SOURCE_TYPE_TUNER, bench.params->eTunerDev, QLX_INPUT_CLASS_NONE};
    return bench;
}

uint32_t TC_Record_START_SOURCE(const stRecoderParams* pstRecoderParam) {
    CaseContext tc = {__func__};
    SourceBench bench = sourceBenchOf(pstRecoderParam);
    ladderUp(tc, bench, sourceSteps);
    return TC_RESULT(tc);
}

uint32_t TC_Record_STOP_SOURCE(const stRecoderParams* pstRecoderParam) {
    CaseContext tc = {__func__};
    SourceBench bench = sourceBenchOf(pstRecoderParam);
    ladderDown(tc, bench, sourceSteps);
    return TC_RESULT(tc);
}

// The PIDs.

static bool addPids(CaseContext& tc, uint32_t recHandle, const RecPids& pids) {
    for (uint32_t i = 0; i < pids.uNum; i++) {
        if (!TC_EXPECT_RET_TEXT("QLX_RecordAddPid(recHandle, uPids[i])",
                                QLX_RecordAddPid(recHandle, pids.uPids[i])))
            return false;
    }
    return true;
}

uint32_t AddPidsBeforeStart(uint32_t recHandle, const RecActualPids* pPids) {
    CaseContext tc = {__func__};
    RecActualPids standIn = {};
    standIn.uVideoPid = 255;
    standIn.eVideoFormat = QLX_RECORD_VIDEO_FMT_MPEG2;
    standIn.stAudio = {1, {256}};
    standIn.bHasPcrPid = 1;
    standIn.uPcrPid = 255;
    const RecActualPids* pActualPids = pPids != nullptr ? pPids : &standIn;
    TC_ASSERT_RET(QLX_RecordAddPid(recHandle, pActualPids->uVideoPid));
    TC_ASSERT_RET(
        QLX_RecordSetVideoFmt(recHandle, pActualPids->uVideoPid, pActualPids->eVideoFormat));
    if (!addPids(tc, recHandle, pActualPids->stAudio) ||
        !addPids(tc, recHandle, pActualPids->stSubtitle) ||
        !addPids(tc, recHandle, pActualPids->stAudioDesc) ||
        !addPids(tc, recHandle, pActualPids->stOther))
        return TC_FAILURE;
    if (pActualPids->bHasPmtPid != 0)
        TC_ASSERT_RET(QLX_RecordAddPid(recHandle, pActualPids->uPmtPid));
    if (pActualPids->bHasPcrPid != 0)
        TC_ASSERT_RET(QLX_RecordAddPid(recHandle, pActualPids->uPcrPid));
    return TC_SUCCESS;
}

// The flows.

/** Kinds of PIDs that a flow records beside picture and sound, as bits. */
enum {
    REC_SUBTITLE = 1,
    REC_AUDIO_DESC = 2,
    REC_OTHER = 4,
    REC_ALL = REC_SUBTITLE | REC_AUDIO_DESC | REC_OTHER,
};

/** A recording: what its steps hand on to one another. */
struct RecBench {
    CaseContext* context;
    stRecoderParams stRecoderParam;
    RecActualPids stPids;
    const RecActualPids* pPids;
    uint32_t eDemuxId;
    uint32_t recHandle;
    char record_file[REC_FILE_SIZE];
};

static int64_t openRecorder(RecBench& bench) {
    const QLX_RecordCfg recCfg = {REC_PACKET_SIZE, REC_BUFFER_SIZE, {0, 0}};
    const int32_t answer = QLX_RecordOpen(bench.eDemuxId, &recCfg, &bench.recHandle);
    if (answer == 0)
        g_recHandles[bench.eDemuxId] = bench.recHandle;
    return answer;
}

static int64_t closeRecorder(RecBench& bench) {
    const int32_t answer = QLX_RecordClose(g_recHandles[bench.eDemuxId]);
    g_recHandles[bench.eDemuxId] = 0;
    return answer;
}

using RecStep = LadderStep<RecBench>;

#define REC_OPEN "QLX_RecordOpen(eDemuxId, &recCfg, &recHandle)"
#define REC_CLOSE "QLX_RecordClose(g_recHandles[eDemuxId])"
#define REC_START_SOURCE "TC_Record_START_SOURCE(&stRecoderParam)"
#define REC_STOP_SOURCE "TC_Record_STOP_SOURCE(&stRecoderParam)"

static constexpr RecStep fileStep = {LADDER_CALL("OpenRecFile(recHandle, record_file)",
                                                 OpenRecFile(bench.recHandle, bench.record_file)),
                                     LADDER_CALL("CloseRecFile(0)", CloseRecFile(0))};
static constexpr RecStep pidsStep = {LADDER_CALL("AddPidsBeforeStart(recHandle, pPids)",
                                                 AddPidsBeforeStart(bench.recHandle, bench.pPids)),
                                     LADDER_NONE};

static const RecStep recordSteps[] = {
    {LADDER_CALL("QLX_RecordInit()", QLX_RecordInit()),
     LADDER_CALL("QLX_RecordDeInit()", QLX_RecordDeInit())},
    {LADDER_CALL(REC_START_SOURCE, TC_Record_START_SOURCE(&bench.stRecoderParam)),
     LADDER_CALL(REC_STOP_SOURCE, TC_Record_STOP_SOURCE(&bench.stRecoderParam))},
    {LADDER_CALL(REC_OPEN, openRecorder(bench)), LADDER_CALL(REC_CLOSE, closeRecorder(bench))},
    {LADDER_CALL("RecRegister(recHandle)", RecRegister(bench.recHandle)),
     LADDER_CALL("RecUnregister(recHandle)", RecUnregister(bench.recHandle))},
    fileStep,
    pidsStep,
    {LADDER_CALL("QLX_RecordStart(recHandle)", QLX_RecordStart(bench.recHandle)),
     LADDER_CALL("QLX_RecordStop(recHandle)", QLX_RecordStop(bench.recHandle))},
};
/** All but the start. */
enum { REC_STEPS_READY = 6 };

/** A step within its time, and the line on it. */
template <typename Call>
static int64_t timed(const RecBench& bench, const char* what, Call call) {
    CaseContext& tc = *bench.context;
    const Stopwatch watch;
    const int64_t answer = call();
    const long long consumed = watch.ms();
    zk_log("consumption time of %s is %lld ms\r\n", what, consumed);
    TC_EXPECT_TRUE(consumed <= REC_STEP_LIMIT);
    return answer;
}

#define REC_TIMED(text, what, call) LADDER_CALL(text, timed(bench, what, [&] { return call; }))

static const RecStep timedSteps[] = {
    {REC_TIMED("QLX_RecordInit()", "init record", QLX_RecordInit()),
     REC_TIMED("QLX_RecordDeInit()", "deinit record", QLX_RecordDeInit())},
    {LADDER_CALL(REC_START_SOURCE, TC_Record_START_SOURCE(&bench.stRecoderParam)),
     REC_TIMED(REC_STOP_SOURCE, "stop source", TC_Record_STOP_SOURCE(&bench.stRecoderParam))},
    {REC_TIMED(REC_OPEN, "open record", openRecorder(bench)),
     REC_TIMED(REC_CLOSE, "close record", closeRecorder(bench))},
    {REC_TIMED("RecRegister(recHandle)", "register record", RecRegister(bench.recHandle)),
     REC_TIMED("RecUnregister(recHandle)", "unregister record", RecUnregister(bench.recHandle))},
    fileStep,
    pidsStep,
    {REC_TIMED("QLX_RecordStart(recHandle)", "start record", QLX_RecordStart(bench.recHandle)),
     REC_TIMED("QLX_RecordStop(recHandle)", "stop record", QLX_RecordStop(bench.recHandle))},
};

/** What a flow records, and under which name: a whole one, or a stem that the path completes. */
struct RecPlan {
    uint32_t eTunerDev;
    uint32_t eDemuxId;
    uint32_t eRecTransSys;
    uint32_t path;
    const char* file;
    bool isStem;
    uint32_t kinds;
};

/** Copies the parameters for a flow; false, with a message, for a system without paths. */
static bool prepareFlow(const RecPlan& plan, CaseContext& tc, RecBench* bench) {
    *bench = {};
    bench->context = &tc;
    bench->stRecoderParam = g_stRecoderParams;
    stRecoderParams& params = bench->stRecoderParam;
    params.eTunerDev = plan.eTunerDev;
    params.eDemuxDev = plan.eDemuxId;
    params.eRecTransSys = plan.eRecTransSys;
    params.uPathIndex = plan.path;
    bench->eDemuxId = plan.eDemuxId;
    const RecPath* path = rec_findPath(params, plan.eRecTransSys, plan.path);
    if (path == nullptr) {
        zk_log("unsupported transmit system\n");
        return false;
    }
    bench->stPids = path->stPids;
    bench->pPids = &bench->stPids;
    if ((plan.kinds & REC_SUBTITLE) == 0)
        bench->stPids.stSubtitle.uNum = 0;
    if ((plan.kinds & REC_AUDIO_DESC) == 0)
        bench->stPids.stAudioDesc.uNum = 0;
    if ((plan.kinds & REC_OTHER) == 0)
        bench->stPids.stOther.uNum = 0;
    const char* dir = bRecordStoreDisk == 1 ? params.storeDiskDir : params.storeDir;
    const uint32_t number = bRecordSeveralTimes >= 2 ? g_recRun : plan.path;
    if (plan.isStem)
        snprintf(bench->record_file, sizeof bench->record_file, "%s%s%d%s", dir, plan.file,
                 static_cast<int>(number), ".ts");
    else
        snprintf(bench->record_file, sizeof bench->record_file, "%s%s", dir, plan.file);
    g_recordTS.recordTSCount = 0;
    g_recordTS.bEnough = 0;
    return true;
}

/** Records for the time that is set, and checks what is in the file by then. */
static void recordAndCheck(CaseContext& tc, RecBench&) {
    sleep(g_recRuration);
    if (bRecordEncrypt == 1)
        TC_EXPECT_RET(CheckEncryption());
    else
        TC_EXPECT_RET(CheckPacketSize());
}

/** A whole flow: `work` while it records. */
template <typename Work>
static uint32_t recordFlow(const char* name, const RecPlan& plan, Work work) {
    CaseContext tc = {name};
    RecBench bench;
    if (!prepareFlow(plan, tc, &bench))
        return TC_FAILURE;
    Ladder<RecBench> ladder(tc, bench, recordSteps);
    if (ladder.up())
        work(tc, bench);
    ladder.down();
    return tc.result;
}

uint32_t TC_RecTestWholeFlow(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                             uint32_t path) {
    const RecPlan plan = {eTunerDev, eDemuxId, eRecTransSys, path, "test_demux", true, 0};
    return recordFlow(__func__, plan, recordAndCheck);
}

uint32_t TC_RecTestWholeFlowWithPause(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                                      uint32_t path) {
    const RecPlan plan = {eTunerDev, eDemuxId, eRecTransSys, path, "test_demux_pause", true, 0};
    return recordFlow(__func__, plan, [](CaseContext& tc, RecBench& bench) {
        const uint32_t recHandle = bench.recHandle;
        sleep(REC_PAUSE_AFTER_S);
        if (TC_EXPECT_RET(QLX_RecordPause(recHandle)) && TC_EXPECT_RET(QLX_RecordResume(recHandle)))
            recordAndCheck(tc, bench);
    });
}

uint32_t TC_RecTestWholeFlowConsumption(uint32_t eTunerDev, uint32_t eDemuxId,
                                        uint32_t eRecTransSys, uint32_t path) {
    const RecPlan plan = {eTunerDev, eDemuxId, eRecTransSys, path, "test_demux_consum", true, 0};
    CaseContext tc = {__func__};
    RecBench bench;
    if (!prepareFlow(plan, tc, &bench))
        return TC_FAILURE;
    Ladder<RecBench> ladder(tc, bench, timedSteps);
    if (ladder.up()) {
        sleep(REC_DURATION);
        TC_EXPECT_RET(CheckPacketSize());
    }
    ladder.down();
    return tc.result;
}

uint32_t TC_RecTestWholeFlowFileSize(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                                     uint32_t path) {
    const RecPlan plan = {eTunerDev, eDemuxId, eRecTransSys, path, "test_demux_size", true, 0};
    return recordFlow(__func__, plan, [](CaseContext& tc, RecBench& bench) {
        pthread_t thread;
        g_fileSizeData.bStop = 0;
        g_fileSizeData.bNotGrowing = 0;
        g_fileSizeData.recFileSize = 0;
        FILE* file = gp_tsFileHdl[bench.eDemuxId];
        if (!TC_EXPECT_RET(pthread_create(&thread, nullptr, FileSizeThread, file)))
            return;
        recordAndCheck(tc, bench);
        g_fileSizeData.bStop = 1;
        pthread_join(thread, nullptr);
        TC_EXPECT_TRUE(g_fileSizeData.bNotGrowing == 0);
    });
}

// With a decoder beside the recorder.

struct DescrambleBench {
    AvSource stSource;
    TcChannelInfo stChannelInfo;
    uint32_t u32HDesc;
    QLX_VideoDecInfo stVideoDecInfo;
};

static int64_t openDescrambler(DescrambleBench& bench) {
    QLX_DescOpenParam stOpenParam = {};
    stOpenParam.eDemuxId = bench.stSource.eDTVDemuxDev;
    stOpenParam.eAlgorithm = QLX_DESC_ALGORITHM_MULTI2;
    return QLX_DescOpen(stOpenParam, &bench.u32HDesc);
}

static int64_t setKey(const DescrambleBench& bench) {
    QLX_DescKeys stKeys = {};
    stKeys.u32HDesc = bench.u32HDesc;
    stKeys.eEvenKeyKind = QLX_DESC_KEY_KIND_CLEAR;
    stKeys.eOddKeyKind = QLX_DESC_KEY_KIND_CLEAR;
    stKeys.eIvKind = QLX_DESC_KEY_KIND_CLEAR;
    stKeys.eSystemKeyKind = QLX_DESC_KEY_KIND_CLEAR;
    stKeys.bUpdate = QLX_TRUE;
    return QLX_SetKeys(bench.u32HDesc, stKeys);
}

static const LadderStep<DescrambleBench> descrambleSteps[] = {
    {LADDER_CALL("TC_AV_INIT()", TC_AV_INIT()), LADDER_CALL("TC_AV_DEINIT()", TC_AV_DEINIT())},
    {LADDER_CALL("TC_AV_OPEN(&stSource)", TC_AV_OPEN(&bench.stSource)),
     LADDER_CALL("TC_AV_CLOSE(&stSource)", TC_AV_CLOSE(&bench.stSource))},
    {LADDER_CALL("QLX_DescOpen(stOpenParam, &u32HDesc)", openDescrambler(bench)),
     LADDER_CALL("QLX_DescClose(u32HDesc)", QLX_DescClose(bench.u32HDesc))},
    {LADDER_CALL("QLX_DescSetPid(u32HDesc, stChannelInfo.uVideoPid)",
                 QLX_DescSetPid(bench.u32HDesc, bench.stChannelInfo.uVideoPid)),
     LADDER_NONE},
    {LADDER_CALL("QLX_DescSetPid(u32HDesc, stChannelInfo.uAudioPids[0])",
                 QLX_DescSetPid(bench.u32HDesc, bench.stChannelInfo.uAudioPids[0])),
     LADDER_NONE},
    {LADDER_CALL("setKey(u32HDesc)", setKey(bench)), LADDER_NONE},
    {LADDER_CALL("TC_AV_START(&stSource, &stChannelInfo, &stVideoDecInfo)",
                 TC_AV_START(&bench.stSource, &bench.stChannelInfo, &bench.stVideoDecInfo)),
     LADDER_CALL("TC_AV_STOP(&stSource)", TC_AV_STOP(&bench.stSource))},
};

/** The service that is recorded, as the decoders play it. */
static DescrambleBench descrambleBenchOf(const RecBench& record) {
    const stRecoderParams& params = record.stRecoderParam;
    DescrambleBench bench = {};
    bench.stSource = zk_testConfig.av.stSource;
    bench.stSource.eSource = AV_SOURCE_DTV;
    bench.stSource.TransmissionSystem_e = params.eRecTransSys;
    bench.stSource.eDTVDemuxDev = params.eDemuxDev;
    bench.stSource.eDTVTunerDev = params.eTunerDev;
    bench.stSource.uDTVChannelId =
        rec_findPath(params, params.eRecTransSys, params.uPathIndex)->uChannel;
    AV_GetChannel(bench.stSource, params.eRecTransSys, &bench.stChannelInfo);
    return bench;
}

uint32_t TC_RecTestScramWholeFlow(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                                  uint32_t path) {
    const RecPlan plan = {eTunerDev, eDemuxId, eRecTransSys, path, "Scram", true, 0};
    zk_log(" please start to paly Scram stream!\n");
    return recordFlow(__func__, plan, [](CaseContext& tc, RecBench& bench) {
        DescrambleBench play = descrambleBenchOf(bench);
        Ladder<DescrambleBench> ladder(tc, play, descrambleSteps);
        if (ladder.up())
            recordAndCheck(tc, bench);
        ladder.down();
    });
}

// With all PIDs of a kind.

static uint32_t recordKinds(const char* name, uint32_t eTunerDev, uint32_t eDemuxId,
                            uint32_t eRecTransSys, uint32_t path, const char* file,
                            uint32_t kinds) {
    const RecPlan plan = {eTunerDev, eDemuxId, eRecTransSys, path, file, false, kinds};
    return recordFlow(name, plan, recordAndCheck);
}

uint32_t TC_RecTestMultiAudio(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                              uint32_t path) {
    return recordKinds(__func__, eTunerDev, eDemuxId, eRecTransSys, path, "multilAudio.ts", 0);
}

uint32_t TC_RecTestMultiSubtitle(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                                 uint32_t path) {
    return recordKinds(__func__, eTunerDev, eDemuxId, eRecTransSys, path, "multilSubtitle.ts",
                       REC_SUBTITLE);
}

uint32_t TC_RecTestPMT(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                       uint32_t path) {
    return recordKinds(__func__, eTunerDev, eDemuxId, eRecTransSys, path, "pmt.ts", 0);
}

uint32_t TC_RecTestAudioDesc(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                             uint32_t path) {
    return recordKinds(__func__, eTunerDev, eDemuxId, eRecTransSys, path, "audioDesc.ts",
                       REC_AUDIO_DESC);
}

uint32_t TC_RecTestOtherPids(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                             uint32_t path) {
    return recordKinds(__func__, eTunerDev, eDemuxId, eRecTransSys, path, "otherPids.ts",
                       REC_OTHER);
}

uint32_t TC_RecRecordAllTsData(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                               uint32_t path) {
    return recordKinds(__func__, eTunerDev, eDemuxId, eRecTransSys, path, "allTsData.ts", REC_ALL);
}

// What the callback brings.

/** Asks once a second until data have ceased or the time is up. */
static void watchData(CaseContext& tc) {
    for (uint32_t second = 0; second < REC_LIVENESS_S; second++) {
        sleep(1);
        if (resultHasData == 0) {
            printf("\n\n==>[%s() %d]E:tscallback has no data.\n", tc.name, __LINE__);
            tc.result = TC_FAILURE;
            return;
        }
    }
    printf("\n\n==>[%s() %d]I:max check times.\n", tc.name, __LINE__);
}

uint32_t TC_RecCheckTsCallbackData(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                                   uint32_t path) {
    const RecPlan plan = {eTunerDev, eDemuxId, eRecTransSys, path, "test_checkdata", true, 0};
    CaseContext tc = {__func__};
    RecBench bench;
    pthread_t thread;
    if (!prepareFlow(plan, tc, &bench))
        return TC_FAILURE;
    Ladder<RecBench> ladder(tc, bench, recordSteps);
    ischeckingData = 1;
    resultHasData = 1;
    noDataFlag = 0;
    if (ladder.up(REC_STEPS_READY) &&
        TC_EXPECT_RET(pthread_create(&thread, nullptr, CheckTsCallBackDataThread, nullptr))) {
        if (ladder.up())
            watchData(tc);
        ischeckingData = 0;
        pthread_join(thread, nullptr);
    }
    ischeckingData = 0;
    ladder.down();
    return tc.result;
}

uint32_t TC_RecCheckTsPacketTimestamp(uint32_t eTunerDev, uint32_t eDemuxId, uint32_t eRecTransSys,
                                      uint32_t path) {
    const RecPlan plan = {eTunerDev, eDemuxId, eRecTransSys, path, "test_timestamp", true, 0};
    CaseContext tc = {__func__};
    RecBench bench;
    if (!prepareFlow(plan, tc, &bench))
        return TC_FAILURE;
    Ladder<RecBench> ladder(tc, bench, recordSteps);
    if (ladder.up()) {
        sleep(g_recRuration);
        TC_EXPECT_RET(CheckPacketSize());
        if (ladder.down(REC_STEPS_READY))
            TC_EXPECT_RET(CheckTimestamp());
    }
    ladder.down();
    return tc.result;
}

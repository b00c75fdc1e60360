#include "testcase/dmx_inject/inject_harness.h"

#include <pthread.h>
#include <string.h>
#include <sys/types.h>
#include <unistd.h>

#include <mutex>

#include "environment/conf_reader.h"
#include "environment/config_files.h"
#include "framework/case/ladder.h"
#include "testcase/aout/aout_harness.h"
#include "testcase/av/av_decoder.h"
#include "testcase/av/av_events.h"
#include "testcase/vout/vout_harness.h"

enum {
    FEED_PAUSE_US = 5000,
    SEEK_PAUSE_US = 10000,
    /** Wake-ups from one move of the place to the next. */
    SEEK_WAKE_UPS = 50,
    PACKET_SIZE = 192,
};

stInjectParams g_stInjectParams;
const int32_t* tcInjectFeature;
uint32_t g_injectHdl;
uint32_t g_testSeek;
std::atomic<uint32_t> g_seekDirection;
std::atomic<int64_t> g_seekInterval;
int64_t g_fileSize;
uint32_t g_beginAtPosition;
std::atomic<uint32_t> g_bSeekExit;

/** User data of the callback. */
static struct {
    uint32_t uReserved;
    uint32_t hInject;
} g_stUserData;

static FILE* gp_tsFile;
/** Guards the file and the write; null outside of a feed. */
static sem_t* gp_dataFinishSem;
/** Posted when everything has been played. */
static sem_t* gp_dataPlaybackDoneSem;
/** Of that pointer: the callback may come while it goes. */
static std::mutex playbackDoneMutex;
static sem_t dataFinishSem;
static sem_t dataPlaybackDoneSem;
static uint8_t g_injectBuffer[INJ_BLOCK_SIZE];
static pthread_t g_injectThread;
static std::atomic<uint32_t> g_bNeedExitInject;
static std::atomic<uint32_t> feederHasEnded;

#define INJ_SAY(...)                                    \
    do {                                                \
        flockfile(stdout);                              \
        printf("\n\n==>[%s() %d]", __func__, __LINE__); \
        printf(__VA_ARGS__);                            \
        funlockfile(stdout);                            \
    } while (0)

// The parameters.

static void loadPath(const char* key, const char* usual, char* path) {
    char value[CONF_TEXT_SIZE] = "";
    get_conf_sting_self("DMXINJECT", key, value, g_configFile.pvr);
    snprintf(path, INJ_PATH_SIZE, "%s", value[0] != '\0' ? value : usual);
}

int32_t load_dmxinjec_params(void) {
    g_stInjectParams = {};
    loadPath("PVR_INJECT_RCD_SD_TS_FILE", "/tmp/0.ts", g_stInjectParams.recorder_sd_ts_file);
    loadPath("PVR_INJECT_RCD_HD_TS_FILE", "/tmp/1.ts", g_stInjectParams.recorder_hd_ts_file);
    loadPath("PVR_INJECT_RCD_MULTI_TS_FILE", "/tmp/2.ts", g_stInjectParams.recorder_multi_ts_file);
    loadPath("PVR_INJECT_BYTE_UNALIGN_TS_FILE", "/mnt/2.ts", g_stInjectParams.byte_unalign_ts_file);
    return 0;
}

void show_dmxinjec_params(void) {
    zk_log("recorder_sd_ts_file:%s\n", g_stInjectParams.recorder_sd_ts_file);
    zk_log("recorder_hd_ts_file:%s\n", g_stInjectParams.recorder_hd_ts_file);
    zk_log("recorder_multi_ts_file:%s\n", g_stInjectParams.recorder_multi_ts_file);
    zk_log("byte_unalign_ts_file:%s\n", g_stInjectParams.byte_unalign_ts_file);
}

// The module.

uint32_t DmxInj_TestSetup(void) {
    INJ_SAY("I:Will load dmx inject params! \n");
    zk_test_get_feature(&tcInjectFeature);
    load_dmxinjec_params();
    show_dmxinjec_params();
    return 0;
}

uint32_t DmxInj_TestTeardown(void) {
    INJ_SAY("I:release all resources! \n");
    return 0;
}

/** Recorded data into a demultiplexer. */
static AvSource recordedSource(uint32_t eDemuxId) {
    AvSource stAvSource = zk_testConfig.av.stSource;
    stAvSource.eSource = AV_SOURCE_PVR;
    stAvSource.eDTVDemuxDev = eDemuxId;
    stAvSource.uDTVChannelId = 0;
    return stAvSource;
}

struct CaseBench {
    AvSource stAvSource[QLX_DEMUX_NUM_MAX];
    QLX_Source stQlxSource;
};

#define INJ_SOURCE(demux)                                             \
    {                                                                 \
        LADDER_CALL("TC_AV_START_SOURCE(&stAvSource[" #demux "])",    \
                    TC_AV_START_SOURCE(&bench.stAvSource[demux])),    \
            LADDER_CALL("TC_AV_STOP_SOURCE(&stAvSource[" #demux "])", \
                        TC_AV_STOP_SOURCE(&bench.stAvSource[demux]))  \
    }

static const LadderStep<CaseBench> caseSteps[] = {
    {LADDER_CALL("QLX_DemuxInit()", QLX_DemuxInit()),
     LADDER_CALL("QLX_DemuxDeInit()", QLX_DemuxDeInit())},
    {LADDER_CALL("TC_AV_INIT()", TC_AV_INIT()), LADDER_CALL("TC_AV_DEINIT()", TC_AV_DEINIT())},
    {LADDER_CALL("TC_VOUT_INIT()", TC_VOUT_INIT()),
     LADDER_CALL("TC_VOUT_DEINIT()", TC_VOUT_DEINIT())},
    {LADDER_CALL("TC_AOUT_INIT()", TC_AOUT_INIT()),
     LADDER_CALL("TC_AOUT_DEINIT()", TC_AOUT_DEINIT())},
    INJ_SOURCE(0),
    INJ_SOURCE(1),
    INJ_SOURCE(2),
    INJ_SOURCE(3),
    {LADDER_CALL("TC_AV_OPEN(&stAvSource[0])", TC_AV_OPEN(&bench.stAvSource[0])),
     LADDER_CALL("TC_AV_CLOSE(&stAvSource[0])", TC_AV_CLOSE(&bench.stAvSource[0]))},
    {LADDER_CALL("TC_AOUT_OPEN()", TC_AOUT_OPEN()),
     LADDER_CALL("TC_AOUT_CLOSE()", TC_AOUT_CLOSE())},
    {LADDER_CALL("TC_VOUT_OPEN(&stQlxSource)", TC_VOUT_OPEN(&bench.stQlxSource)),
     LADDER_CALL("TC_VOUT_CLOSE()", TC_VOUT_CLOSE())},
};

static CaseBench caseBench() {
    CaseBench bench = {};
    for (uint32_t demux = 0; demux < QLX_DEMUX_NUM_MAX; demux++)
        bench.stAvSource[demux] = recordedSource(demux);
    AV_AvSource2QlxSource(&bench.stAvSource[0], &bench.stQlxSource);
    return bench;
}

uint32_t DmxInj_CaseSetup(const char*, const char*) {
    CaseContext tc = {__func__};
    CaseBench bench = caseBench();
    ladderUp(tc, bench, caseSteps);
    return tc.result;
}

uint32_t DmxInj_CaseTeardown(void) {
    CaseContext tc = {__func__};
    CaseBench bench = caseBench();
    ladderDown(tc, bench, caseSteps);
    return tc.result;
}

// Feeding.

int32_t DmxInject_Callback(uint32_t, uint32_t eEvent, void*) {
    INJ_SAY("I:Inject callback, event:%d.\n", static_cast<int>(eEvent));
    switch (eEvent) {
        case QLX_DMXINJECT_EVENT_DATA_PLAYBACK_DONE: {
            std::lock_guard<std::mutex> lock(playbackDoneMutex);
            if (gp_dataPlaybackDoneSem != nullptr)
                sem_post(gp_dataPlaybackDoneSem);
            break;
        }
        case QLX_DMXINJECT_EVENT_DATA_WRITE_DONE:
            INJ_SAY("E:Inject callback, INJECT_EVENT_DATA_WRITE_DONE.\n");
            break;
        case QLX_DMXINJECT_EVENT_DATA_WRITE_FAILED:
            INJ_SAY("E:Inject callback, INJECT_EVENT_DATA_WRITE_FAILED.\n");
            break;
        default:
            INJ_SAY("E:DmxInject_CallbackEOS(), event:%d not handle.\n", static_cast<int>(eEvent));
    }
    return 0;
}

/** Reads a block and writes it. False at the end of the file, whose tail is not written. The file
 * is the caller's meanwhile. */
static bool feedBlock() {
    uint32_t uWritten = 0;
    INJ_SAY("I:Can inject data.\n");
    if (fread(g_injectBuffer, 1, INJ_BLOCK_SIZE, gp_tsFile) < INJ_BLOCK_SIZE) {
        INJ_SAY("I:Reach end of file.\n");
        return false;
    }
    if (QLX_DmxInjectWriteData(g_injectHdl, g_injectBuffer, INJ_BLOCK_SIZE, &uWritten) != 0)
        INJ_SAY("E:Fail to inject data.\n");
    return true;
}

/** Goes where the case wants, and lets all that was there before be forgotten. False when something
 *  of that is refused. */
static bool seekAndFlush() {
    const uint32_t direction = g_seekDirection;
    if (direction == INJ_SEEK_FASTFORWARD)
        INJ_SAY("I:seek fastforward, interval:%lld.\n", static_cast<long long>(g_seekInterval));
    else if (direction == INJ_SEEK_REWIND)
        INJ_SAY("I:seek rewind, interval:%lld.\n", static_cast<long long>(g_seekInterval));
    else
        return true;
    fseeko(gp_tsFile, static_cast<off_t>(g_seekInterval), SEEK_SET);
    INJ_SAY("I:dmxinject flush.\n");
    if (QLX_DmxInjectFlush(g_injectHdl) != 0)
        return false;
    INJ_SAY("I:audio flush.\n");
    if (QLX_AudioFlush(0) != 0)
        return false;
    INJ_SAY("I:video flush.\n");
    return QLX_VideoFlush(0) == 0;
}

/** Feeds until it is told to end, or the file ends. */
static void feed(bool seeking) {
    while (g_bNeedExitInject == 0) {
        uint32_t uFreeSize = 0;
        if (QLX_DmxInjectGetFreeSize(g_injectHdl, &uFreeSize) != 0)
            INJ_SAY("I:QLX_DmxInjectGetFreeSize failed.\n");
        if (uFreeSize > INJ_BLOCK_SIZE) {
            sem_wait(gp_dataFinishSem);
            bool more = !seeking || seekAndFlush();
            more = more && feedBlock();
            if (more && seeking && g_seekDirection != INJ_SEEK_NONE) {
                INJ_SAY("I:reset fastforward and rewind.\n");
                g_seekDirection = INJ_SEEK_NONE;
            }
            sem_post(gp_dataFinishSem);
            if (!more)
                break;
        } else {
            INJ_SAY("E:freeSize is not enough freeSize:%d.\n", static_cast<int>(uFreeSize));
        }
        usleep(FEED_PAUSE_US);
    }
    feederHasEnded = 1;
}

static void* InjectThread(void*) {
    feed(false);
    return nullptr;
}

static void* SeekInjectThread(void*) {
    feed(true);
    return nullptr;
}

static void* SeekThread(void*) {
    for (uint32_t wakeUps = 1; g_bSeekExit == 0; wakeUps++) {
        usleep(SEEK_PAUSE_US);
        if (wakeUps % SEEK_WAKE_UPS != 0)
            continue;
        sem_wait(gp_dataFinishSem);
        const off_t place = ftello(gp_tsFile) + INJ_BLOCK_SIZE;
        fseeko(gp_tsFile, 0, SEEK_END);
        const off_t length = ftello(gp_tsFile);
        fseeko(gp_tsFile, place < length ? place : length, SEEK_SET);
        sem_post(gp_dataFinishSem);
    }
    return nullptr;
}

static void makeSemaphores() {
    if (gp_dataFinishSem == nullptr) {
        sem_init(&dataFinishSem, 0, 1);
        gp_dataFinishSem = &dataFinishSem;
    }
    std::lock_guard<std::mutex> lock(playbackDoneMutex);
    if (gp_dataPlaybackDoneSem == nullptr) {
        sem_init(&dataPlaybackDoneSem, 0, 0);
        gp_dataPlaybackDoneSem = &dataPlaybackDoneSem;
    }
}

static void destroySemaphores() {
    if (gp_dataFinishSem != nullptr)
        sem_destroy(gp_dataFinishSem);
    gp_dataFinishSem = nullptr;
    std::lock_guard<std::mutex> lock(playbackDoneMutex);
    if (gp_dataPlaybackDoneSem != nullptr)
        sem_destroy(gp_dataPlaybackDoneSem);
    gp_dataPlaybackDoneSem = nullptr;
}

uint32_t BeginInject(uint32_t, const char* pFile) {
    CaseContext tc = {__func__};
    makeSemaphores();
    gp_tsFile = fopen(pFile, "rb");
    if (gp_tsFile == nullptr) {
        INJ_SAY("E:Fail to open ts file:%s.\n", pFile);
        destroySemaphores();
        return 1;
    }
    fseeko(gp_tsFile, 0, SEEK_END);
    g_fileSize = ftello(gp_tsFile);
    INJ_SAY("E:seekInfo.tsFileLength:%lld\n", static_cast<long long>(g_fileSize));
    const bool behind = g_beginAtPosition == 1 && g_fileSize >= INJ_BLOCK_SIZE;
    fseeko(gp_tsFile, behind ? INJ_BLOCK_SIZE : 0, SEEK_SET);
    g_beginAtPosition = 0;
    g_bNeedExitInject = 0;
    feederHasEnded = 0;
    if (g_testSeek != 0)
        INJ_SAY("I:start seeking test. ts file length is %lld\n",
                static_cast<long long>(g_fileSize));
    if (TC_EXPECT_RET(pthread_create(&g_injectThread, nullptr,
                                     g_testSeek != 0 ? SeekInjectThread : InjectThread, nullptr)))
        return 0;
    fclose(gp_tsFile);
    gp_tsFile = nullptr;
    destroySemaphores();
    return 1;
}

/** Waits until everything has been played; false when that is over, or cannot be told. */
static bool waitForPlayback() {
    INJ_SAY("I:Need waiting for playback done.\n");
    if (gp_dataPlaybackDoneSem == nullptr)
        return false;
    int count = 0;
    sem_getvalue(gp_dataPlaybackDoneSem, &count);
    if (count == 0 && feederHasEnded != 0) {
        zk_log("Inject has been finsihed\n");
        return false;
    }
    while (sem_wait(gp_dataPlaybackDoneSem) != 0) {
    }
    return true;
}

uint32_t FinishInject(uint32_t, uint32_t bWaitDone) {
    uint32_t result = 0;
    INJ_SAY("I:Will finish inject.\n");
    if (bWaitDone == QLX_TRUE && !waitForPlayback())
        result = 1;
    g_bNeedExitInject = 1;
    sleep(1);
    if (gp_tsFile != nullptr) {
        pthread_join(g_injectThread, nullptr);
        fclose(gp_tsFile);
    }
    gp_tsFile = nullptr;
    if (g_testSeek != 0 &&
        (g_stInjectParams.bAudioEvent != 0 || g_stInjectParams.bFrameCount != 0)) {
        INJ_SAY(
            "E:Fail get QLX_EVENT_AUDIO_INFO_CHANGE after seek or video disp frame count not "
            "change!\n");
        result = 1;
    }
    destroySemaphores();
    return result;
}

// The chain.

struct ChainBench {
    QLX_DmxInjectOpenParam stParam;
    const char* pFile;
    AvSource stAvSource;
    const TcChannelInfo* pstChannelInfo;
    QLX_VideoDecInfo stVideoDecInfo;
    uint32_t bWaitDone;
};

static int64_t openInjector(ChainBench& bench) {
    const int32_t answer = QLX_DmxInjectOpen(&bench.stParam, &g_injectHdl);
    g_stUserData.hInject = g_injectHdl;
    return answer;
}

static int64_t closeInjector() {
    const int32_t answer = QLX_DmxInjectClose(g_injectHdl);
    g_injectHdl = 0;
    return answer;
}

static const LadderStep<ChainBench> chainSteps[] = {
    {LADDER_CALL("QLX_DmxInjectInit()", QLX_DmxInjectInit()),
     LADDER_CALL("QLX_DmxInjectDeInit()", QLX_DmxInjectDeInit())},
    {LADDER_CALL("QLX_DmxInjectOpen(&stParam, &g_injectHdl)", openInjector(bench)),
     LADDER_CALL("QLX_DmxInjectClose(g_injectHdl)", closeInjector())},
    {LADDER_CALL("QLX_DmxInjectRegisterCallback(g_injectHdl, DmxInject_Callback, &g_stUserData)",
                 QLX_DmxInjectRegisterCallback(g_injectHdl, DmxInject_Callback, &g_stUserData)),
     LADDER_CALL("QLX_DmxInjectUnRegisterCallback(g_injectHdl, DmxInject_Callback)",
                 QLX_DmxInjectUnRegisterCallback(g_injectHdl, DmxInject_Callback))},
    {LADDER_CALL("QLX_DmxInjectStart(g_injectHdl)", QLX_DmxInjectStart(g_injectHdl)),
     LADDER_CALL("QLX_DmxInjectStop(g_injectHdl)", QLX_DmxInjectStop(g_injectHdl))},
    {LADDER_CALL("BeginInject(g_injectHdl, pFile)", BeginInject(g_injectHdl, bench.pFile)),
     LADDER_CALL("FinishInject(g_injectHdl, QLX_FALSE)",
                 FinishInject(g_injectHdl, bench.bWaitDone))},
    {LADDER_CALL("TC_AV_START(&stAvSource, NULL, &stVideoDecInfo)",
                 TC_AV_START(&bench.stAvSource, bench.pstChannelInfo, &bench.stVideoDecInfo)),
     LADDER_CALL("TC_AV_STOP(&stAvSource)", TC_AV_STOP(&bench.stAvSource))},
    {LADDER_CALL("TC_AOUT_START()", TC_AOUT_START()),
     LADDER_CALL("TC_AOUT_STOP()", TC_AOUT_STOP())},
    {LADDER_CALL("TC_VOUT_START(&stVOutInRect)", VOUT_StartOnPicture(bench.stVideoDecInfo)),
     LADDER_NONE},
};

uint32_t InjTestWriteDataBegin(uint32_t eDemuxId, uint32_t uAudioIndex, const char* pFile,
                               const TcChannelInfo* pstChannelInfo) {
    CaseContext tc = {__func__};
    ChainBench bench = {};
    TcChannelInfo stChannelInfo = {};
    g_stUserData = {};
    bench.stParam = {eDemuxId, 0, PACKET_SIZE};
    bench.pFile = pFile != nullptr ? pFile : g_stInjectParams.recorder_sd_ts_file;
    bench.stAvSource = recordedSource(eDemuxId);
    bench.pstChannelInfo = pstChannelInfo;
    if (pstChannelInfo == nullptr && uAudioIndex != 0 && uAudioIndex < 16) {
        zk_test_get_pvr_playback_channel_info(0, &stChannelInfo);
        stChannelInfo.uAudioPids[0] = stChannelInfo.uAudioPids[uAudioIndex];
        stChannelInfo.eAudioFormat[0] = stChannelInfo.eAudioFormat[uAudioIndex];
        bench.pstChannelInfo = &stChannelInfo;
    }
    if (!ladderUp(tc, bench, chainSteps))
        g_injectHdl = 0;
    return tc.result;
}

uint32_t InjTestWriteDataPause(void) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(QLX_DmxInjectPause(g_injectHdl));
    return tc.result;
}

uint32_t InjTestWriteDataResume(void) {
    CaseContext tc = {__func__};
    TC_EXPECT_RET(QLX_DmxInjectResume(g_injectHdl));
    return tc.result;
}

uint32_t InjTestWriteDataFinish(uint32_t eDemuxId, uint32_t bWaitDone) {
    CaseContext tc = {__func__};
    ChainBench bench = {};
    bench.stAvSource = recordedSource(eDemuxId);
    bench.bWaitDone = bWaitDone;
    ladderDown(tc, bench, chainSteps);
    return tc.result;
}

uint32_t InjTestWriteDataSeek(uint32_t eDemuxId) {
    CaseContext tc = {__func__};
    pthread_t thread;
    if (!TC_EXPECT_RET(InjTestWriteDataBegin(eDemuxId, 0, nullptr)))
        return tc.result;
    sleep(2);
    g_bSeekExit = 0;
    if (TC_EXPECT_RET(pthread_create(&thread, nullptr, SeekThread, nullptr))) {
        sleep(30);
        g_bSeekExit = 1;
        pthread_join(thread, nullptr);
    }
    TC_EXPECT_RET(InjTestWriteDataFinish(eDemuxId, QLX_FALSE));
    return tc.result;
}

uint32_t InjTestWriteDataSetSpeed(uint32_t eDemuxId) {
    static const int32_t speeds[] = {
        QLX_DMXINJECT_SPEED_FORWARD_2X, QLX_DMXINJECT_SPEED_FORWARD_4X,
        QLX_DMXINJECT_SPEED_FORWARD_8X, QLX_DMXINJECT_SPEED_REWIND_2X,
        QLX_DMXINJECT_SPEED_REWIND_4X,  QLX_DMXINJECT_SPEED_REWIND_8X,
        QLX_DMXINJECT_SPEED_NORMAL,
    };
    CaseContext tc = {__func__};
    if (!TC_EXPECT_RET(InjTestWriteDataBegin(eDemuxId, 0, nullptr)))
        return tc.result;
    sleep(2);
    for (int32_t speed : speeds) {
        if (!TC_EXPECT_RET(QLX_DmxInjectSetSpeed(g_injectHdl, speed)))
            break;
        sleep(2);
    }
    TC_EXPECT_RET(InjTestWriteDataFinish(eDemuxId, QLX_FALSE));
    return tc.result;
}

uint32_t CheckVideoFrameReady(uint32_t uSeek) {
    const int seek = static_cast<int>(uSeek);
    const int slack = seek >= 10 ? seek / 10 + 1 : 1;
    const int ready = static_cast<int>(g_frameReady.uCount);
    zk_log("seek[%d], frame ready[%d], upper[%d], lower[%d] !\r\n", seek, ready, seek + slack,
           seek - slack);
    if (ready <= seek + slack && ready >= seek - slack)
        return 0;
    INJ_SAY("E:the count of frame ready is error !\r\n");
    return 1;
}

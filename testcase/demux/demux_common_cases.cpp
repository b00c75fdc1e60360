// Demux-common: the life of a demultiplexer without a look at any table. Init, open, capability,
// connection, start, filters: what each accepts in the right order, and that each refuses the
// wrong orders. A refusal's code is the library's own business.
#include <pthread.h>
#include <stdlib.h>
#include <string.h>

#include "framework/case/ladder.h"
#include "framework/case/prompt.h"
#include "framework/case/wait.h"
#include "platform/qlx_demux.h"
#include "platform/qlx_filter.h"
#include "platform/qlx_tuner.h"
#include "testcase/demux/demux_harness.h"
#include "testcase/demux/demux_request.h"
#include "testcase/modules.h"
#include "testcase/tuner/tuner_harness.h"

enum {
    NO_DEMUX = QLX_DEMUX_NUM_MAX,
    START_ROUNDS = 10,
};

// What a case brings up.

/** A demultiplexer and its source. */
struct DemuxLink {
    /** NO_DEMUX: only the tuner, if any. */
    uint32_t eDemuxId = NO_DEMUX;
    /** QLX_SOURCE_TYPE_NONE: it is opened, but not connected. */
    uint32_t eSourceType = QLX_SOURCE_TYPE_NONE;
    /** The tuner, when it is one. */
    uint32_t eTunerId = 0;
};

/** Up to two of them at the same time; without any, the service alone is initialised. */
struct DemuxLinks {
    DemuxLink first = {};
    DemuxLink second = {};
};

static DemuxLink opened(uint32_t eDemuxId) {
    return {eDemuxId, QLX_SOURCE_TYPE_NONE, 0};
}

static DemuxLink onTuner(uint32_t eDemuxId, uint32_t eTunerId) {
    return {eDemuxId, QLX_SOURCE_TYPE_TUNER, eTunerId};
}

static DemuxLink onRecord(uint32_t eDemuxId) {
    return {eDemuxId, QLX_SOURCE_TYPE_RECORD, 0};
}

static bool isTuned(const DemuxLink& link) {
    return link.eSourceType == QLX_SOURCE_TYPE_TUNER;
}

static bool isOpened(const DemuxLink& link) {
    return link.eDemuxId != NO_DEMUX;
}

static bool isConnected(const DemuxLink& link) {
    return isOpened(link) && link.eSourceType != QLX_SOURCE_TYPE_NONE;
}

static QLX_Source sourceOf(const DemuxLink& link) {
    return {link.eSourceType, link.eTunerId, 0};
}

static int32_t connect(const DemuxLink& link) {
    const QLX_Source stSource = sourceOf(link);
    return QLX_DemuxConnectSource(link.eDemuxId, &stSource);
}

using Step = LadderStep<const DemuxLinks>;

// clang-format off
static const Step lifeSteps[] = {
    // up                                                                                                     down                                                                            undo          whether there is such a step
    {LADDER_CALL("TC_TUNER_START_IGNOR_LOCKED(eTunerId)", TC_TUNER_START_IGNOR_LOCKED(bench.first.eTunerId)),  LADDER_CALL("TC_TUNER_STOP(eTunerId)", TC_TUNER_STOP(bench.first.eTunerId)),    UNDO_CHECKED, [](const DemuxLinks& links) { return isTuned(links.first); }},
    {LADDER_CALL("TC_TUNER_START_IGNOR_LOCKED(eTunerId)", TC_TUNER_START_IGNOR_LOCKED(bench.second.eTunerId)), LADDER_CALL("TC_TUNER_STOP(eTunerId)", TC_TUNER_STOP(bench.second.eTunerId)),   UNDO_CHECKED, [](const DemuxLinks& links) { return isTuned(links.second); }},
    {LADDER_CALL("QLX_DemuxInit()", QLX_DemuxInit()),                                                          LADDER_CALL("QLX_DemuxDeInit()", QLX_DemuxDeInit())},
    {LADDER_CALL("QLX_DemuxOpen(eDemuxId)", QLX_DemuxOpen(bench.first.eDemuxId)),                              LADDER_CALL("QLX_DemuxClose(eDemuxId)", QLX_DemuxClose(bench.first.eDemuxId)),  UNDO_CHECKED, [](const DemuxLinks& links) { return isOpened(links.first); }},
    {LADDER_CALL("QLX_DemuxConnectSource(eDemuxId, &stSource)", connect(bench.first)),                         LADDER_NONE,                                                                    UNDO_CHECKED, [](const DemuxLinks& links) { return isConnected(links.first); }},
    {LADDER_CALL("QLX_DemuxOpen(eDemuxId)", QLX_DemuxOpen(bench.second.eDemuxId)),                             LADDER_CALL("QLX_DemuxClose(eDemuxId)", QLX_DemuxClose(bench.second.eDemuxId)), UNDO_CHECKED, [](const DemuxLinks& links) { return isOpened(links.second); }},
    {LADDER_CALL("QLX_DemuxConnectSource(eDemuxId, &stSource)", connect(bench.second)),                        LADDER_NONE,                                                                    UNDO_CHECKED, [](const DemuxLinks& links) { return isConnected(links.second); }},
};

static const Step startSteps[] = {
    // up                                                                           down                                                                          undo          whether there is such a step
    {LADDER_CALL("QLX_DemuxStart(eDemuxId)", QLX_DemuxStart(bench.first.eDemuxId)),  LADDER_CALL("QLX_DemuxStop(eDemuxId)", QLX_DemuxStop(bench.first.eDemuxId))},
    {LADDER_CALL("QLX_DemuxStart(eDemuxId)", QLX_DemuxStart(bench.second.eDemuxId)), LADDER_CALL("QLX_DemuxStop(eDemuxId)", QLX_DemuxStop(bench.second.eDemuxId)), UNDO_CHECKED, [](const DemuxLinks& links) { return isOpened(links.second); }},
};
// clang-format on

/** A case: brings up what `links` tells, does its work on that, and takes it down again. */
template <typename Work>
static uint32_t onBench(const char* name, const DemuxLinks& links, Work work) {
    CaseContext tc = {name};
    Ladder<const DemuxLinks> ladder(tc, links, lifeSteps);
    if (ladder.up())
        work(tc);
    ladder.down();
    return TC_RESULT(tc);
}

// Init and open.

/** Only brings up and takes down. */
static uint32_t upAndDownBase(const char* name, const DemuxLinks& links) {
    return onBench(name, links, [](CaseContext&) {});
}

static uint32_t initTwiceBase(const char* name) {
    return onBench(name, {}, [](CaseContext& tc) { TC_EXPECT_RET(QLX_DemuxInit()); });
}

static uint32_t openInvalidBase(const char* name) {
    return onBench(name, {},
                   [](CaseContext& tc) { TC_EXPECT_REFUSED(QLX_DemuxOpen(QLX_DEMUX_NUM_MAX)); });
}

static uint32_t closeOtherBase(const char* name, uint32_t eDemuxId, uint32_t eOtherId) {
    return onBench(name, {opened(eDemuxId)},
                   [=](CaseContext& tc) { TC_EXPECT_REFUSED(QLX_DemuxClose(eOtherId)); });
}

static uint32_t openTwiceBase(const char* name, uint32_t eDemuxId) {
    return onBench(name, {opened(eDemuxId)},
                   [=](CaseContext& tc) { TC_EXPECT_REFUSED(QLX_DemuxOpen(eDemuxId)); });
}

static void openInThreads(CaseContext& tc) {
    uint32_t ids[2] = {QLX_DEMUX_0, QLX_DEMUX_1};
    pthread_t threads[2];
    bool started[2];
    for (int i = 0; i < 2; i++)
        started[i] = TC_EXPECT_RET(
            pthread_create(&threads[i], nullptr, Demux_OpenCloseDemuxThread, &ids[i]));
    if (started[0])
        TC_EXPECT_RET_TEXT("*((int*)status0)", tc_joinThread(threads[0]));
    if (started[1])
        TC_EXPECT_RET_TEXT("*((int*)status1)", tc_joinThread(threads[1]));
}

// Calls in the wrong order.

/** How far the demultiplexer has come when the call is made that must be refused. */
enum TooEarly {
    BEFORE_INIT,
    BEFORE_OPEN,
    WITH_THE_OTHER_OPENED,
};

/** A call on a demultiplexer, and for a connection its tuner, with its text. */
struct EarlyCall {
    const char* text;
    int64_t (*call)(const DemuxLink& bench);
};

static int32_t capability(uint32_t eDemuxId) {
    QLX_DemuxCapability stDemuxCapability{};
    return QLX_DemuxGetCapability(eDemuxId, &stDemuxCapability);
}

static int32_t createSection(uint32_t eDemuxId) {
    uint32_t hFilter = 0;
    return QLX_DemuxCreateSectionFilter(eDemuxId, &hFilter);
}

static int32_t createPes(uint32_t eDemuxId) {
    uint32_t hFilter = 0;
    return QLX_DemuxCreatePesFilter(eDemuxId, &hFilter);
}

// clang-format off
static const EarlyCall earlyOpen       = {LADDER_CALL("QLX_DemuxOpen(eDemuxId)", QLX_DemuxOpen(bench.eDemuxId))};
static const EarlyCall earlyCapability = {LADDER_CALL("QLX_DemuxGetCapability(eDemuxId, &stDemuxCapability)", capability(bench.eDemuxId))};
static const EarlyCall earlyConnect    = {LADDER_CALL("QLX_DemuxConnectSource(eDemuxId, &stSource)", connect(bench))};
static const EarlyCall earlyStart      = {LADDER_CALL("QLX_DemuxStart(eDemuxId)", QLX_DemuxStart(bench.eDemuxId))};
static const EarlyCall earlySection    = {LADDER_CALL("QLX_DemuxCreateSectionFilter(eDemuxId, &hFilter)", createSection(bench.eDemuxId))};
static const EarlyCall earlyPes        = {LADDER_CALL("QLX_DemuxCreatePesFilter(eDemuxId, &hFilter)", createPes(bench.eDemuxId))};
// clang-format on

static uint32_t tooEarlyBase(const char* name, TooEarly state, const EarlyCall& early,
                             uint32_t eDemuxId, uint32_t eTunerId = 0) {
    CaseContext tc = {name};
    DemuxLinks others = {};
    if (state == WITH_THE_OTHER_OPENED)
        others.first = opened(eDemuxId == QLX_DEMUX_0 ? QLX_DEMUX_1 : QLX_DEMUX_0);
    Ladder<const DemuxLinks> ladder(tc, others, lifeSteps);
    if (state == BEFORE_INIT || ladder.up())
        TC_EXPECT_REFUSED_TEXT(early.text, early.call(onTuner(eDemuxId, eTunerId)));
    ladder.down();
    return TC_RESULT(tc);
}

// Capability.

static uint32_t capabilityBase(const char* name, uint32_t eDemuxId) {
    return onBench(name, {opened(eDemuxId)}, [=](CaseContext& tc) {
        QLX_DemuxCapability stDemuxCapability{};
        if (TC_EXPECT_RET(QLX_DemuxGetCapability(eDemuxId, &stDemuxCapability)))
            zk_log("\033[1;42m%s, %d, FilterNum=%d\033[0m\n\r", name, __LINE__,
                   static_cast<int>(stDemuxCapability.FilterNum));
    });
}

// Connections, and what is done on them.

/** A kind of source that a demultiplexer cannot be connected to. */
static uint32_t connectRefusedBase(const char* name, uint32_t eDemuxId, uint32_t eSourceType) {
    return onBench(name, {opened(eDemuxId)}, [=](CaseContext& tc) {
        const QLX_Source stSource = {eSourceType, 0, 0};
        TC_EXPECT_REFUSED(QLX_DemuxConnectSource(eDemuxId, &stSource));
    });
}

/** From one tuner to another, without a disconnection in between. */
static uint32_t connectChangeBase(const char* name, uint32_t eDemuxId, uint32_t eTunerId,
                                  uint32_t eNextTunerId) {
    const DemuxLinks links = {onTuner(NO_DEMUX, eNextTunerId), onTuner(eDemuxId, eTunerId)};
    return onBench(name, links, [=](CaseContext& tc) {
        const QLX_Source stSource = {QLX_SOURCE_TYPE_TUNER, eNextTunerId, 0};
        TC_EXPECT_RET(QLX_DemuxConnectSource(eDemuxId, &stSource));
    });
}

/** To the recording source, where the board can play a recording there. */
static uint32_t connectGatedBase(const char* name, const DemuxLinks& links) {
    CaseContext tc = {name};
    if (tcDemuxFeature == nullptr || tcDemuxFeature[FEATURE_PVR_PLAYBACK_DEMUX1] == 0)
        return tc_notApplicable(tc);
    return upAndDownBase(name, links);
}

static uint32_t getSourceFirstBase(const char* name, uint32_t eDemuxId) {
    return onBench(name, {opened(eDemuxId)}, [=](CaseContext& tc) {
        QLX_Source stGetSource;
        memset(&stGetSource, 0xff, sizeof stGetSource);
        if (TC_EXPECT_RET(QLX_DemuxGetSourceConnection(eDemuxId, &stGetSource)))
            TC_EXPECT_EQUAL(0, stGetSource.eSourceType);
    });
}

/** The source read back is the one of the link. */
static void expectSource(CaseContext& tc, const DemuxLink& link) {
    const uint32_t eDemuxId = link.eDemuxId;
    const QLX_Source stSource = sourceOf(link);
    QLX_Source stGetSource{};
    if (TC_EXPECT_RET(QLX_DemuxGetSourceConnection(eDemuxId, &stGetSource))) {
        TC_EXPECT_EQUAL(stSource.eSourceType, stGetSource.eSourceType);
        TC_EXPECT_EQUAL(stSource.uSourceIndex, stGetSource.uSourceIndex);
        TC_EXPECT_EQUAL(stSource.eInputClass, stGetSource.eInputClass);
    }
}

static uint32_t getSourceBase(const char* name, const DemuxLinks& links) {
    return onBench(name, links, [&](CaseContext& tc) {
        expectSource(tc, links.first);
        if (isOpened(links.second))
            expectSource(tc, links.second);
    });
}

static uint32_t TC_DEMUX_GetSource_003_base(uint32_t eTunerId, uint32_t eDemuxId) {
    return getSourceBase(__func__, {onTuner(eDemuxId, eTunerId)});
}

static uint32_t startBase(const char* name, const DemuxLinks& links, int rounds) {
    return onBench(name, links, [&](CaseContext& tc) {
        for (int round = 0; round < rounds; round++) {
            Ladder<const DemuxLinks> running(tc, links, startSteps);
            running.up();
            running.down();
        }
    });
}

static uint32_t TC_DEMUX_Start_013_base(uint32_t eTunerId, uint32_t eDemuxId) {
    return startBase(__func__, {onTuner(eDemuxId, eTunerId)}, START_ROUNDS);
}

// Filters.

/** The calls for one kind of filter. */
struct FilterKind {
    int32_t (*create)(uint32_t eDemuxId, uint32_t* phFilter);
    int32_t (*remove)(uint32_t hFilter);
    const char* createText;
    const char* removeText;
    const char* poolCreateText;
    const char* poolRemoveText;
};

static const FilterKind sectionKind = {
    QLX_DemuxCreateSectionFilter,
    QLX_SectionFilterDelete,
    "QLX_DemuxCreateSectionFilter(eDemuxId, &hFilter)",
    "QLX_SectionFilterDelete(hFilter)",
    "QLX_DemuxCreateSectionFilter(eDemuxId, (pFilter + i))",
    "QLX_SectionFilterDelete(*(pFilter + i))",
};

static const FilterKind pesKind = {
    QLX_DemuxCreatePesFilter,
    QLX_PesFilterDelete,
    "QLX_DemuxCreatePesFilter(eDemuxId, &hFilter)",
    "QLX_PesFilterDelete(hFilter)",
    "QLX_DemuxCreatePesFilter(eDemuxId, (pFilter + i))",
    "QLX_PesFilterDelete(*(pFilter + i))",
};

/** Creates and deletes a filter; with `wrong`, deletes it first as one of that kind. */
static uint32_t filterBase(const char* name, uint32_t eDemuxId, const FilterKind& kind,
                           const FilterKind* wrong) {
    return onBench(name, {opened(eDemuxId)}, [&](CaseContext& tc) {
        uint32_t hFilter = 0;
        if (!TC_EXPECT_RET_TEXT(kind.createText, kind.create(eDemuxId, &hFilter)))
            return;
        if (wrong != nullptr)
            TC_EXPECT_REFUSED_TEXT(wrong->removeText, wrong->remove(hFilter));
        TC_EXPECT_RET_TEXT(kind.removeText, kind.remove(hFilter));
    });
}

/** What a filter pool is filled with. */
struct Pool {
    /** Of all filters, or of the first half. */
    const FilterKind* kind;
    /** Of the second half; null: the same. */
    const FilterKind* secondKind;
    /** With which a delete must be refused first; null: none. */
    const FilterKind* wrong;
};

/** Fills the pool and empties it. */
static void fillPool(CaseContext& tc, uint32_t eDemuxId, uint32_t* pFilter, uint32_t count,
                     const Pool& pool) {
    const uint32_t half = count / 2;
    if (pool.secondKind != nullptr)
        count = half * 2;
    uint32_t created = 0;
    for (uint32_t i = 0; i < count; i++, created++) {
        const FilterKind* kind =
            pool.secondKind != nullptr && i >= half ? pool.secondKind : pool.kind;
        if (!TC_EXPECT_RET_TEXT(kind->poolCreateText, kind->create(eDemuxId, pFilter + i)))
            break;
    }
    for (uint32_t i = 0; i < created; i++) {
        const FilterKind* kind =
            pool.secondKind != nullptr && i >= half ? pool.secondKind : pool.kind;
        if (pool.wrong != nullptr)
            TC_EXPECT_REFUSED_TEXT(pool.wrong->poolRemoveText, pool.wrong->remove(*(pFilter + i)));
        TC_EXPECT_RET_TEXT(kind->poolRemoveText, kind->remove(*(pFilter + i)));
    }
}

static uint32_t poolBase(const char* name, uint32_t eDemuxId, uint32_t eTunerId, const Pool& pool) {
    return onBench(name, {onTuner(eDemuxId, eTunerId)}, [&](CaseContext& tc) {
        QLX_DemuxCapability stDemuxCapability{};
        if (!TC_EXPECT_RET(QLX_DemuxGetCapability(eDemuxId, &stDemuxCapability)))
            return;
        const uint32_t count = stDemuxCapability.FilterNum;
        zk_log("The demux capability: %d \r\n", static_cast<int>(count));
        uint32_t* pFilter = static_cast<uint32_t*>(calloc(count, sizeof *pFilter));
        if (TC_EXPECT_TRUE(pFilter != nullptr))
            fillPool(tc, eDemuxId, pFilter, count, pool);
        free(pFilter);
    });
}

static const Pool sectionPool = {&sectionKind, nullptr, nullptr};
static const Pool sectionPoolWrongDelete = {&sectionKind, nullptr, &pesKind};
static const Pool pesPool = {&pesKind, nullptr, nullptr};
static const Pool pesPoolWrongDelete = {&pesKind, nullptr, &sectionKind};
static const Pool halfPool = {&sectionKind, &pesKind, nullptr};

// A table that the operator names.

static bool askForSection(RequestInfo_st* pRequestInfo) {
    int32_t timeOutMs = 0;
    memset(pRequestInfo, 0, sizeof *pRequestInfo);
    zk_log("Please input PID (hex), table id (hex) and time-out (ms) of the table to receive:\r\n");
    if (!Demux_AskForTable(pRequestInfo) || tc_askNumber(&timeOutMs) != PROMPT_NUMBER)
        return false;
    pRequestInfo->uVersion = REQUEST_ANY_VERSION;
    pRequestInfo->uTimeOutMs = static_cast<uint32_t>(timeOutMs);
    pRequestInfo->uBufferSize = REQUEST_BUFFER_SIZE;
    return true;
}

static uint32_t TC_DEMUX_Section_001_base(uint32_t eTunerId, uint32_t eDemuxId) {
    RequestInfo_st stRequestInfo;
    if (!askForSection(&stRequestInfo)) {
        CaseContext tc = {__func__};
        TC_EXPECT_TRUE(false);
        return TC_RESULT(tc);
    }
    return onBench(__func__, {onTuner(eDemuxId, eTunerId)}, [&](CaseContext& tc) {
        if (!TC_EXPECT_RET(QLX_DemuxStart(eDemuxId)))
            return;
        if (TC_EXPECT_RET(Demux_RequestSection(eDemuxId, &stRequestInfo)))
            Demux_ExpectOneData(tc, &stRequestInfo);
        Demux_FreeEvents(&stRequestInfo);
        TC_EXPECT_RET(QLX_DemuxStop(eDemuxId));
    });
}

// clang-format off

//    name                      flag    description                                                                                        body
#define DEMUX_COMMON_CASES(X) \
    X(TC_DEMUX_Init_001,       AUTO,   "[Init_001] init and deinit",                                                                      upAndDownBase(__func__, {})) \
    X(TC_DEMUX_Init_003,       AUTO,   "[Init_003] init twice without deinit",                                                            initTwiceBase(__func__)) \
    X(TC_DEMUX_Open_001_01,    AUTO,   "[Open_001_01] open Demux-0 without init",                                                         tooEarlyBase(__func__, BEFORE_INIT, earlyOpen, QLX_DEMUX_0)) \
    X(TC_DEMUX_Open_001_02,    AUTO,   "[Open_001_02] open Demux-1 without init",                                                         tooEarlyBase(__func__, BEFORE_INIT, earlyOpen, QLX_DEMUX_1)) \
    X(TC_DEMUX_Open_001_03,    AUTO,   "[Open_001_03] open Demux-2 without init",                                                         tooEarlyBase(__func__, BEFORE_INIT, earlyOpen, QLX_DEMUX_2)) \
    X(TC_DEMUX_Open_001_04,    AUTO,   "[Open_001_04] open Demux-3 without init",                                                         tooEarlyBase(__func__, BEFORE_INIT, earlyOpen, QLX_DEMUX_3)) \
    X(TC_DEMUX_Open_003,       AUTO,   "[Open_003] open an invalid demux (QLX_DEMUX_NUM_MAX)",                                            openInvalidBase(__func__)) \
    X(TC_DEMUX_Open_004,       AUTO,   "[Open_004] open Demux-0, close Demux-1",                                                          closeOtherBase(__func__, QLX_DEMUX_0, QLX_DEMUX_1)) \
    X(TC_DEMUX_Open_005,       AUTO,   "[Open_005] open Demux-1, close Demux-0",                                                          closeOtherBase(__func__, QLX_DEMUX_1, QLX_DEMUX_0)) \
    X(TC_DEMUX_Open_006_01,    AUTO,   "[Open_006_01] open and close Demux-0",                                                            upAndDownBase(__func__, {opened(QLX_DEMUX_0)})) \
    X(TC_DEMUX_Open_006_02,    AUTO,   "[Open_006_02] open and close Demux-1",                                                            upAndDownBase(__func__, {opened(QLX_DEMUX_1)})) \
    X(TC_DEMUX_Open_006_03,    AUTO,   "[Open_006_03] open and close Demux-2",                                                            upAndDownBase(__func__, {opened(QLX_DEMUX_2)})) \
    X(TC_DEMUX_Open_006_04,    AUTO,   "[Open_006_04] open and close Demux-3",                                                            upAndDownBase(__func__, {opened(QLX_DEMUX_3)})) \
    X(TC_DEMUX_Open_008_01,    AUTO,   "[Open_008_01] open Demux-0 a second time without close",                                          openTwiceBase(__func__, QLX_DEMUX_0)) \
    X(TC_DEMUX_Open_008_02,    AUTO,   "[Open_008_02] open Demux-1 a second time without close",                                          openTwiceBase(__func__, QLX_DEMUX_1)) \
    X(TC_DEMUX_Open_008_03,    AUTO,   "[Open_008_03] open Demux-2 a second time without close",                                          openTwiceBase(__func__, QLX_DEMUX_2)) \
    X(TC_DEMUX_Open_008_04,    AUTO,   "[Open_008_04] open Demux-3 a second time without close",                                          openTwiceBase(__func__, QLX_DEMUX_3)) \
    X(TC_DEMUX_Open_010,       AUTO,   "[Open_010] open Demux-0, then Demux-1",                                                           upAndDownBase(__func__, {opened(QLX_DEMUX_0), opened(QLX_DEMUX_1)})) \
    X(TC_DEMUX_Open_011,       AUTO,   "[Open_011] open Demux-1, then Demux-0",                                                           upAndDownBase(__func__, {opened(QLX_DEMUX_1), opened(QLX_DEMUX_0)})) \
    X(TC_DEMUX_Open_012,       AUTO,   "[Open_012] open and close Demux-0 and Demux-1 in two threads, 100 times each",                    onBench(__func__, {}, openInThreads)) \
    X(TC_DEMUX_Capability_001, AUTO,   "[Capability_001] get capability of Demux-0 without init",                                         tooEarlyBase(__func__, BEFORE_INIT, earlyCapability, QLX_DEMUX_0)) \
    X(TC_DEMUX_Capability_002, AUTO,   "[Capability_002] get capability of Demux-1 without init",                                         tooEarlyBase(__func__, BEFORE_INIT, earlyCapability, QLX_DEMUX_1)) \
    X(TC_DEMUX_Capability_003, AUTO,   "[Capability_003] get capability of Demux-0 without open",                                         tooEarlyBase(__func__, BEFORE_OPEN, earlyCapability, QLX_DEMUX_0)) \
    X(TC_DEMUX_Capability_004, AUTO,   "[Capability_004] get capability of Demux-1 without open",                                         tooEarlyBase(__func__, BEFORE_OPEN, earlyCapability, QLX_DEMUX_1)) \
    X(TC_DEMUX_Capability_005, AUTO,   "[Capability_005] get capability of Demux-0, Demux-1 opened",                                      tooEarlyBase(__func__, WITH_THE_OTHER_OPENED, earlyCapability, QLX_DEMUX_0)) \
    X(TC_DEMUX_Capability_006, AUTO,   "[Capability_006] get capability of Demux-1, Demux-0 opened",                                      tooEarlyBase(__func__, WITH_THE_OTHER_OPENED, earlyCapability, QLX_DEMUX_1)) \
    X(TC_DEMUX_Capability_007, AUTO,   "[Capability_007] get capability of Demux-0",                                                      capabilityBase(__func__, QLX_DEMUX_0)) \
    X(TC_DEMUX_Capability_008, AUTO,   "[Capability_008] get capability of Demux-1",                                                      capabilityBase(__func__, QLX_DEMUX_1)) \
    X(TC_DEMUX_Capability_009, AUTO,   "[Capability_009] get capability of Demux-2",                                                      capabilityBase(__func__, QLX_DEMUX_2)) \
    X(TC_DEMUX_Capability_010, AUTO,   "[Capability_010] get capability of Demux-3",                                                      capabilityBase(__func__, QLX_DEMUX_3)) \
    X(TC_DEMUX_Connect_001,    AUTO,   "[Connect_001] connect Demux-0 to Tuner-0 without init",                                           tooEarlyBase(__func__, BEFORE_INIT, earlyConnect, QLX_DEMUX_0, QLX_TUNER_0)) \
    X(TC_DEMUX_Connect_002,    AUTO,   "[Connect_002] connect Demux-0 to Tuner-1 without init",                                           tooEarlyBase(__func__, BEFORE_INIT, earlyConnect, QLX_DEMUX_0, QLX_TUNER_1)) \
    X(TC_DEMUX_Connect_003,    AUTO,   "[Connect_003] connect Demux-1 to Tuner-0 without init",                                           tooEarlyBase(__func__, BEFORE_INIT, earlyConnect, QLX_DEMUX_1, QLX_TUNER_0)) \
    X(TC_DEMUX_Connect_004,    AUTO,   "[Connect_004] connect Demux-1 to Tuner-1 without init",                                           tooEarlyBase(__func__, BEFORE_INIT, earlyConnect, QLX_DEMUX_1, QLX_TUNER_1)) \
    X(TC_DEMUX_Connect_005,    AUTO,   "[Connect_005] connect Demux-0 to Tuner-0 without open",                                           tooEarlyBase(__func__, BEFORE_OPEN, earlyConnect, QLX_DEMUX_0, QLX_TUNER_0)) \
    X(TC_DEMUX_Connect_006,    AUTO,   "[Connect_006] connect Demux-0 to Tuner-1 without open",                                           tooEarlyBase(__func__, BEFORE_OPEN, earlyConnect, QLX_DEMUX_0, QLX_TUNER_1)) \
    X(TC_DEMUX_Connect_007,    AUTO,   "[Connect_007] connect Demux-1 to Tuner-0 without open",                                           tooEarlyBase(__func__, BEFORE_OPEN, earlyConnect, QLX_DEMUX_1, QLX_TUNER_0)) \
    X(TC_DEMUX_Connect_008,    AUTO,   "[Connect_008] connect Demux-1 to Tuner-1 without open",                                           tooEarlyBase(__func__, BEFORE_OPEN, earlyConnect, QLX_DEMUX_1, QLX_TUNER_1)) \
    X(TC_DEMUX_Connect_009,    AUTO,   "[Connect_009] connect Demux-0 to Tuner-0, Demux-1 opened",                                        tooEarlyBase(__func__, WITH_THE_OTHER_OPENED, earlyConnect, QLX_DEMUX_0, QLX_TUNER_0)) \
    X(TC_DEMUX_Connect_010,    AUTO,   "[Connect_010] connect Demux-0 to Tuner-1, Demux-1 opened",                                        tooEarlyBase(__func__, WITH_THE_OTHER_OPENED, earlyConnect, QLX_DEMUX_0, QLX_TUNER_1)) \
    X(TC_DEMUX_Connect_011,    AUTO,   "[Connect_011] connect Demux-1 to Tuner-0, Demux-0 opened",                                        tooEarlyBase(__func__, WITH_THE_OTHER_OPENED, earlyConnect, QLX_DEMUX_1, QLX_TUNER_0)) \
    X(TC_DEMUX_Connect_012,    AUTO,   "[Connect_012] connect Demux-1 to Tuner-1, Demux-0 opened",                                        tooEarlyBase(__func__, WITH_THE_OTHER_OPENED, earlyConnect, QLX_DEMUX_1, QLX_TUNER_1)) \
    X(TC_DEMUX_Connect_013,    AUTO,   "[Connect_013] connect Demux-0 to an invalid source type",                                         connectRefusedBase(__func__, QLX_DEMUX_0, QLX_SOURCE_TYPE_INVALID)) \
    X(TC_DEMUX_Connect_014,    AUTO,   "[Connect_014] connect Demux-1 to an invalid source type",                                         connectRefusedBase(__func__, QLX_DEMUX_1, QLX_SOURCE_TYPE_INVALID)) \
    X(TC_DEMUX_Connect_015,    AUTO,   "[Connect_015] connect Demux-0 to HDMI",                                                           connectRefusedBase(__func__, QLX_DEMUX_0, QLX_SOURCE_TYPE_HDMI)) \
    X(TC_DEMUX_Connect_016,    AUTO,   "[Connect_016] connect Demux-1 to a demux",                                                        connectRefusedBase(__func__, QLX_DEMUX_1, QLX_SOURCE_TYPE_DEMUX)) \
    X(TC_DEMUX_Connect_017_01, AUTO,   "[Connect_017_01] connect Demux-0 to Tuner-0",                                                     upAndDownBase(__func__, {onTuner(QLX_DEMUX_0, QLX_TUNER_0)})) \
    X(TC_DEMUX_Connect_017_02, AUTO,   "[Connect_017_02] connect Demux-0 to Tuner-1",                                                     upAndDownBase(__func__, {onTuner(QLX_DEMUX_0, QLX_TUNER_1)})) \
    X(TC_DEMUX_Connect_017_03, AUTO,   "[Connect_017_03] connect Demux-1 to Tuner-0",                                                     upAndDownBase(__func__, {onTuner(QLX_DEMUX_1, QLX_TUNER_0)})) \
    X(TC_DEMUX_Connect_017_04, AUTO,   "[Connect_017_04] connect Demux-1 to Tuner-1",                                                     upAndDownBase(__func__, {onTuner(QLX_DEMUX_1, QLX_TUNER_1)})) \
    X(TC_DEMUX_Connect_017_05, AUTO,   "[Connect_017_05] connect Demux-2 to Tuner-2",                                                     upAndDownBase(__func__, {onTuner(QLX_DEMUX_2, QLX_TUNER_2)})) \
    X(TC_DEMUX_Connect_017_06, AUTO,   "[Connect_017_06] connect Demux-3 to Tuner-3",                                                     upAndDownBase(__func__, {onTuner(QLX_DEMUX_3, QLX_TUNER_3)})) \
    X(TC_DEMUX_Connect_021,    AUTO,   "[Connect_021] change the source of Demux-0 from Tuner-0 to Tuner-1",                              connectChangeBase(__func__, QLX_DEMUX_0, QLX_TUNER_0, QLX_TUNER_1)) \
    X(TC_DEMUX_Connect_022,    AUTO,   "[Connect_022] change the source of Demux-0 from Tuner-1 to Tuner-0",                              connectChangeBase(__func__, QLX_DEMUX_0, QLX_TUNER_1, QLX_TUNER_0)) \
    X(TC_DEMUX_Connect_023,    AUTO,   "[Connect_023] change the source of Demux-1 from Tuner-0 to Tuner-1",                              connectChangeBase(__func__, QLX_DEMUX_1, QLX_TUNER_0, QLX_TUNER_1)) \
    X(TC_DEMUX_Connect_024,    AUTO,   "[Connect_024] change the source of Demux-1 from Tuner-1 to Tuner-0",                              connectChangeBase(__func__, QLX_DEMUX_1, QLX_TUNER_1, QLX_TUNER_0)) \
    X(TC_DEMUX_Connect_025,    AUTO,   "[Connect_025] connect Demux-0 to Tuner-0 and Demux-1 to Tuner-1",                                 upAndDownBase(__func__, {onTuner(QLX_DEMUX_0, QLX_TUNER_0), onTuner(QLX_DEMUX_1, QLX_TUNER_1)})) \
    X(TC_DEMUX_Connect_026,    AUTO,   "[Connect_026] connect Demux-0 to Tuner-1 and Demux-1 to Tuner-0",                                 upAndDownBase(__func__, {onTuner(QLX_DEMUX_0, QLX_TUNER_1), onTuner(QLX_DEMUX_1, QLX_TUNER_0)})) \
    X(TC_DEMUX_Connect_027,    AUTO,   "[Connect_027] connect Demux-0 to the recording source",                                           upAndDownBase(__func__, {onRecord(QLX_DEMUX_0)})) \
    X(TC_DEMUX_Connect_028,    AUTO,   "[Connect_028] connect Demux-1 to the recording source",                                           connectGatedBase(__func__, {onRecord(QLX_DEMUX_1)})) \
    X(TC_DEMUX_GetSource_001,  AUTO,   "[GetSource_001] get the source of Demux-0 before any connection",                                 getSourceFirstBase(__func__, QLX_DEMUX_0)) \
    X(TC_DEMUX_GetSource_002,  AUTO,   "[GetSource_002] get the source of Demux-1 before any connection",                                 getSourceFirstBase(__func__, QLX_DEMUX_1)) \
    X(TC_DEMUX_GetSource_003,  AUTO,   "[GetSource_003] get the source of Demux-0 connected to Tuner-0",                                  TC_DEMUX_GetSource_003_base(QLX_TUNER_0, QLX_DEMUX_0)) \
    X(TC_DEMUX_GetSource_004,  AUTO,   "[GetSource_004] get the source of Demux-0 connected to Tuner-1",                                  TC_DEMUX_GetSource_003_base(QLX_TUNER_1, QLX_DEMUX_0)) \
    X(TC_DEMUX_GetSource_005,  AUTO,   "[GetSource_005] get the source of Demux-1 connected to Tuner-0",                                  TC_DEMUX_GetSource_003_base(QLX_TUNER_0, QLX_DEMUX_1)) \
    X(TC_DEMUX_GetSource_006,  AUTO,   "[GetSource_006] get the source of Demux-1 connected to Tuner-1",                                  TC_DEMUX_GetSource_003_base(QLX_TUNER_1, QLX_DEMUX_1)) \
    X(TC_DEMUX_GetSource_007,  AUTO,   "[GetSource_007] get the source of Demux-0 connected to the recording source",                     getSourceBase(__func__, {onRecord(QLX_DEMUX_0)})) \
    X(TC_DEMUX_GetSource_008,  AUTO,   "[GetSource_008] get the source of Demux-1 connected to the recording source",                     getSourceBase(__func__, {onRecord(QLX_DEMUX_1)})) \
    X(TC_DEMUX_GetSource_009,  AUTO,   "[GetSource_009] get the sources of Demux-0 on Tuner-0 and Demux-1 on Tuner-1",                    getSourceBase(__func__, {onTuner(QLX_DEMUX_0, QLX_TUNER_0), onTuner(QLX_DEMUX_1, QLX_TUNER_1)})) \
    X(TC_DEMUX_GetSource_010,  AUTO,   "[GetSource_010] get the sources of Demux-0 on Tuner-1 and Demux-1 on Tuner-0",                    getSourceBase(__func__, {onTuner(QLX_DEMUX_0, QLX_TUNER_1), onTuner(QLX_DEMUX_1, QLX_TUNER_0)})) \
    X(TC_DEMUX_Start_001,      AUTO,   "[Start_001] start Demux-0 without init",                                                          tooEarlyBase(__func__, BEFORE_INIT, earlyStart, QLX_DEMUX_0)) \
    X(TC_DEMUX_Start_002,      AUTO,   "[Start_002] start Demux-1 without init",                                                          tooEarlyBase(__func__, BEFORE_INIT, earlyStart, QLX_DEMUX_1)) \
    X(TC_DEMUX_Start_003,      AUTO,   "[Start_003] start Demux-0 without open",                                                          tooEarlyBase(__func__, BEFORE_OPEN, earlyStart, QLX_DEMUX_0)) \
    X(TC_DEMUX_Start_004,      AUTO,   "[Start_004] start Demux-1 without open",                                                          tooEarlyBase(__func__, BEFORE_OPEN, earlyStart, QLX_DEMUX_1)) \
    X(TC_DEMUX_Start_005_01,   AUTO,   "[Start_005_01] start Demux-0 connected to Tuner-0",                                               startBase(__func__, {onTuner(QLX_DEMUX_0, QLX_TUNER_0)}, 1)) \
    X(TC_DEMUX_Start_005_02,   AUTO,   "[Start_005_02] start Demux-0 connected to Tuner-1",                                               startBase(__func__, {onTuner(QLX_DEMUX_0, QLX_TUNER_1)}, 1)) \
    X(TC_DEMUX_Start_005_03,   AUTO,   "[Start_005_03] start Demux-1 connected to Tuner-0",                                               startBase(__func__, {onTuner(QLX_DEMUX_1, QLX_TUNER_0)}, 1)) \
    X(TC_DEMUX_Start_005_04,   AUTO,   "[Start_005_04] start Demux-1 connected to Tuner-1",                                               startBase(__func__, {onTuner(QLX_DEMUX_1, QLX_TUNER_1)}, 1)) \
    X(TC_DEMUX_Start_005_05,   AUTO,   "[Start_005_05] start Demux-2 connected to Tuner-2",                                               startBase(__func__, {onTuner(QLX_DEMUX_2, QLX_TUNER_2)}, 1)) \
    X(TC_DEMUX_Start_005_06,   AUTO,   "[Start_005_06] start Demux-3 connected to Tuner-3",                                               startBase(__func__, {onTuner(QLX_DEMUX_3, QLX_TUNER_3)}, 1)) \
    X(TC_DEMUX_Start_009,      AUTO,   "[Start_009] start Demux-0 connected to the recording source",                                     startBase(__func__, {onRecord(QLX_DEMUX_0)}, 1)) \
    X(TC_DEMUX_Start_010,      AUTO,   "[Start_010] start Demux-1 connected to the recording source",                                     startBase(__func__, {onRecord(QLX_DEMUX_1)}, 1)) \
    X(TC_DEMUX_Start_011,      AUTO,   "[Start_011] start Demux-0 on Tuner-0 and Demux-1 on Tuner-1",                                     startBase(__func__, {onTuner(QLX_DEMUX_0, QLX_TUNER_0), onTuner(QLX_DEMUX_1, QLX_TUNER_1)}, 1)) \
    X(TC_DEMUX_Start_012,      AUTO,   "[Start_012] start Demux-0 on Tuner-1 and Demux-1 on Tuner-0",                                     startBase(__func__, {onTuner(QLX_DEMUX_0, QLX_TUNER_1), onTuner(QLX_DEMUX_1, QLX_TUNER_0)}, 1)) \
    X(TC_DEMUX_Start_013,      AUTO,   "[Start_013] start and stop Demux-0 connected to Tuner-0 ten times",                               TC_DEMUX_Start_013_base(QLX_TUNER_0, QLX_DEMUX_0)) \
    X(TC_DEMUX_Start_014,      AUTO,   "[Start_014] start and stop Demux-0 connected to Tuner-1 ten times",                               TC_DEMUX_Start_013_base(QLX_TUNER_1, QLX_DEMUX_0)) \
    X(TC_DEMUX_Start_015,      AUTO,   "[Start_015] start and stop Demux-1 connected to Tuner-0 ten times",                               TC_DEMUX_Start_013_base(QLX_TUNER_0, QLX_DEMUX_1)) \
    X(TC_DEMUX_Start_016,      AUTO,   "[Start_016] start and stop Demux-1 connected to Tuner-1 ten times",                               TC_DEMUX_Start_013_base(QLX_TUNER_1, QLX_DEMUX_1)) \
    X(TC_DEMUX_Start_017,      AUTO,   "[Start_017] start and stop Demux-0 connected to the recording source ten times",                  startBase(__func__, {onRecord(QLX_DEMUX_0)}, START_ROUNDS)) \
    X(TC_DEMUX_Start_018,      AUTO,   "[Start_018] start and stop Demux-1 connected to the recording source ten times",                  startBase(__func__, {onRecord(QLX_DEMUX_1)}, START_ROUNDS)) \
    X(TC_DEMUX_Start_019,      AUTO,   "[Start_019] start and stop Demux-0 on Tuner-0 and Demux-1 on Tuner-1 ten times",                  startBase(__func__, {onTuner(QLX_DEMUX_0, QLX_TUNER_0), onTuner(QLX_DEMUX_1, QLX_TUNER_1)}, START_ROUNDS)) \
    X(TC_DEMUX_Start_020,      AUTO,   "[Start_020] start and stop Demux-0 on Tuner-1 and Demux-1 on Tuner-0 ten times",                  startBase(__func__, {onTuner(QLX_DEMUX_0, QLX_TUNER_1), onTuner(QLX_DEMUX_1, QLX_TUNER_0)}, START_ROUNDS)) \
    X(TC_DEMUX_Filter_001,     AUTO,   "[Filter_001] create a section filter on Demux-0 without init",                                    tooEarlyBase(__func__, BEFORE_INIT, earlySection, QLX_DEMUX_0)) \
    X(TC_DEMUX_Filter_002,     AUTO,   "[Filter_002] create a section filter on Demux-1 without init",                                    tooEarlyBase(__func__, BEFORE_INIT, earlySection, QLX_DEMUX_1)) \
    X(TC_DEMUX_Filter_003,     AUTO,   "[Filter_003] create a section filter on Demux-0 without open",                                    tooEarlyBase(__func__, BEFORE_OPEN, earlySection, QLX_DEMUX_0)) \
    X(TC_DEMUX_Filter_004,     AUTO,   "[Filter_004] create a section filter on Demux-1 without open",                                    tooEarlyBase(__func__, BEFORE_OPEN, earlySection, QLX_DEMUX_1)) \
    X(TC_DEMUX_Filter_005,     AUTO,   "[Filter_005] create a section filter on Demux-0, Demux-1 opened",                                 tooEarlyBase(__func__, WITH_THE_OTHER_OPENED, earlySection, QLX_DEMUX_0)) \
    X(TC_DEMUX_Filter_006,     AUTO,   "[Filter_006] create a section filter on Demux-1, Demux-0 opened",                                 tooEarlyBase(__func__, WITH_THE_OTHER_OPENED, earlySection, QLX_DEMUX_1)) \
    X(TC_DEMUX_Filter_007,     AUTO,   "[Filter_007] create and delete a section filter on Demux-0",                                      filterBase(__func__, QLX_DEMUX_0, sectionKind, nullptr)) \
    X(TC_DEMUX_Filter_008,     AUTO,   "[Filter_008] create and delete a section filter on Demux-1",                                      filterBase(__func__, QLX_DEMUX_1, sectionKind, nullptr)) \
    X(TC_DEMUX_Filter_009,     AUTO,   "[Filter_009] create a section filter on Demux-0, delete it as a PES filter first",                filterBase(__func__, QLX_DEMUX_0, sectionKind, &pesKind)) \
    X(TC_DEMUX_Filter_010,     AUTO,   "[Filter_010] create a section filter on Demux-1, delete it as a PES filter first",                filterBase(__func__, QLX_DEMUX_1, sectionKind, &pesKind)) \
    X(TC_DEMUX_Filter_011,     AUTO,   "[Filter_011] create and delete all filters of Demux-0 as section filters",                        poolBase(__func__, QLX_DEMUX_0, QLX_TUNER_0, sectionPool)) \
    X(TC_DEMUX_Filter_012,     AUTO,   "[Filter_012] create and delete all filters of Demux-1 as section filters",                        poolBase(__func__, QLX_DEMUX_1, QLX_TUNER_1, sectionPool)) \
    X(TC_DEMUX_Filter_013,     AUTO,   "[Filter_013] create all filters of Demux-0 as section filters, delete them as PES filters first", poolBase(__func__, QLX_DEMUX_0, QLX_TUNER_0, sectionPoolWrongDelete)) \
    X(TC_DEMUX_Filter_014,     AUTO,   "[Filter_014] create all filters of Demux-1 as section filters, delete them as PES filters first", poolBase(__func__, QLX_DEMUX_1, QLX_TUNER_1, sectionPoolWrongDelete)) \
    X(TC_DEMUX_Filter_015,     AUTO,   "[Filter_015] create a PES filter on Demux-0 without init",                                        tooEarlyBase(__func__, BEFORE_INIT, earlyPes, QLX_DEMUX_0)) \
    X(TC_DEMUX_Filter_016,     AUTO,   "[Filter_016] create a PES filter on Demux-1 without init",                                        tooEarlyBase(__func__, BEFORE_INIT, earlyPes, QLX_DEMUX_1)) \
    X(TC_DEMUX_Filter_017,     AUTO,   "[Filter_017] create a PES filter on Demux-0 without open",                                        tooEarlyBase(__func__, BEFORE_OPEN, earlyPes, QLX_DEMUX_0)) \
    X(TC_DEMUX_Filter_018,     AUTO,   "[Filter_018] create a PES filter on Demux-1 without open",                                        tooEarlyBase(__func__, BEFORE_OPEN, earlyPes, QLX_DEMUX_1)) \
    X(TC_DEMUX_Filter_019,     AUTO,   "[Filter_019] create a PES filter on Demux-0, Demux-1 opened",                                     tooEarlyBase(__func__, WITH_THE_OTHER_OPENED, earlyPes, QLX_DEMUX_0)) \
    X(TC_DEMUX_Filter_020,     AUTO,   "[Filter_020] create a PES filter on Demux-1, Demux-0 opened",                                     tooEarlyBase(__func__, WITH_THE_OTHER_OPENED, earlyPes, QLX_DEMUX_1)) \
    X(TC_DEMUX_Filter_021,     AUTO,   "[Filter_021] create and delete a PES filter on Demux-0",                                          filterBase(__func__, QLX_DEMUX_0, pesKind, nullptr)) \
    X(TC_DEMUX_Filter_022,     AUTO,   "[Filter_022] create and delete a PES filter on Demux-1",                                          filterBase(__func__, QLX_DEMUX_1, pesKind, nullptr)) \
    X(TC_DEMUX_Filter_023,     AUTO,   "[Filter_023] create a PES filter on Demux-0, delete it as a section filter first",                filterBase(__func__, QLX_DEMUX_0, pesKind, &sectionKind)) \
    X(TC_DEMUX_Filter_024,     AUTO,   "[Filter_024] create a PES filter on Demux-1, delete it as a section filter first",                filterBase(__func__, QLX_DEMUX_1, pesKind, &sectionKind)) \
    X(TC_DEMUX_Filter_025,     AUTO,   "[Filter_025] create and delete all filters of Demux-0 as PES filters",                            poolBase(__func__, QLX_DEMUX_0, QLX_TUNER_0, pesPool)) \
    X(TC_DEMUX_Filter_026,     AUTO,   "[Filter_026] create and delete all filters of Demux-1 as PES filters",                            poolBase(__func__, QLX_DEMUX_1, QLX_TUNER_1, pesPool)) \
    X(TC_DEMUX_Filter_027,     AUTO,   "[Filter_027] create all filters of Demux-0 as PES filters, delete them as section filters first", poolBase(__func__, QLX_DEMUX_0, QLX_TUNER_0, pesPoolWrongDelete)) \
    X(TC_DEMUX_Filter_028,     AUTO,   "[Filter_028] create all filters of Demux-1 as PES filters, delete them as section filters first", poolBase(__func__, QLX_DEMUX_1, QLX_TUNER_1, pesPoolWrongDelete)) \
    X(TC_DEMUX_Filter_029,     AUTO,   "[Filter_029] create half of the filters of Demux-0 as section filters and half as PES filters",   poolBase(__func__, QLX_DEMUX_0, QLX_TUNER_0, halfPool)) \
    X(TC_DEMUX_Filter_030,     AUTO,   "[Filter_030] create half of the filters of Demux-1 as section filters and half as PES filters",   poolBase(__func__, QLX_DEMUX_1, QLX_TUNER_1, halfPool)) \
    X(TC_DEMUX_Section_001_01, MANUAL, "[Section_001_01] receive a table that the operator names (Demux-0->Tuner-0)",                     TC_DEMUX_Section_001_base(QLX_TUNER_0, QLX_DEMUX_0)) \
    X(TC_DEMUX_Section_001_02, MANUAL, "[Section_001_02] receive a table that the operator names (Demux-1->Tuner-1)",                     TC_DEMUX_Section_001_base(QLX_TUNER_1, QLX_DEMUX_1)) \
    X(TC_DEMUX_Section_001_03, MANUAL, "[Section_001_03] receive a table that the operator names (Demux-2->Tuner-2)",                     TC_DEMUX_Section_001_base(QLX_TUNER_2, QLX_DEMUX_2)) \
    X(TC_DEMUX_Section_001_04, MANUAL, "[Section_001_04] receive a table that the operator names (Demux-3->Tuner-3)",                     TC_DEMUX_Section_001_base(QLX_TUNER_3, QLX_DEMUX_3))

DEMUX_COMMON_CASES(TC_VARIANT_FUNCTION)

static constexpr TcCase DemuxModuleCasesCommon[] = {
    DEMUX_COMMON_CASES(TC_VARIANT_ROW)
};
// clang-format on
static_assert(tcCaseCount(DemuxModuleCasesCommon) == 126, "cases of the module");
static_assert(tcAutoCount(DemuxModuleCasesCommon) == 122, "automatic ones");

const TcModule DemuxModuleCommon = {
    Demux_TestSetup,
    Demux_TestTeardown,
    nullptr,
    nullptr,
    DemuxModuleCasesCommon,
    tcCaseCount(DemuxModuleCasesCommon),
    "Demux-common",
    "Test cases of Demux (COMMON)",
    nullptr,
};

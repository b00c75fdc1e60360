#include "testcase/demux/demux_request.h"

#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "framework/case/ladder.h"
#include "framework/case/prompt.h"
#include "framework/case/wait.h"

/** version_number in its byte of the section: xx11111x. */
static const uint8_t FILTER_VERSION_MASK = 0x3e;
static const int OPEN_CLOSE_ROUNDS = 100;

// Semaphores.

uint32_t Demux_SemInit(sem_t** sem) {
    if (sem == nullptr)
        return 1;
    *sem = static_cast<sem_t*>(malloc(sizeof **sem));
    if (*sem == nullptr)
        return 1;
    if (sem_init(*sem, 0, 0) != 0) {
        free(*sem);
        *sem = nullptr;
        return 1;
    }
    return 0;
}

uint32_t Demux_SemPost(sem_t* sem) {
    return sem != nullptr && sem_post(sem) == 0 ? 0 : 1;
}

uint32_t Demux_SemTimedWait(uint32_t uTimeOutMs, sem_t* sem) {
    return sem == nullptr || tc_waitSem(sem, uTimeOutMs) ? 0 : 1;
}

uint32_t Demux_SemDestroy(sem_t** sem) {
    if (sem == nullptr)
        return 1;
    if (*sem == nullptr)
        return 0;
    sem_destroy(*sem);
    free(*sem);
    *sem = nullptr;
    return 0;
}

// Callbacks.

/** A copy of delivered data; null without data or memory. */
static uint8_t* copyData(const QLX_FilterData* data) {
    uint8_t* copy = static_cast<uint8_t*>(malloc(data->uLength));
    if (copy != nullptr)
        memcpy(copy, data->pBuffer, data->uLength);
    return copy;
}

static bool hasData(uint32_t eEvent, const QLX_FilterData* data) {
    return eEvent == QLX_FILTER_EVENT_DATA_COME && data != nullptr && data->pBuffer != nullptr &&
           data->uLength != 0;
}

/** Gives data back that nobody keeps: else a filter with a full buffer would fall silent. */
static void giveBack(uint32_t eEvent, const void* pData, int32_t (*freeBuffer)(void*)) {
    const QLX_FilterData* data = static_cast<const QLX_FilterData*>(pData);
    if (hasData(eEvent, data))
        freeBuffer(data->pBuffer);
}

/** Takes the next slot of a record; the count goes up also when all are taken. Other threads look
 *  at the count while events come. */
static uint32_t takeSlot(uint32_t* count) {
    return __atomic_fetch_add(count, 1, __ATOMIC_ACQ_REL);
}

/** The value of an event that brings one. */
static uintptr_t eventValue(uint32_t eEvent, void* pData) {
    if (eEvent == QLX_FILTER_EVENT_ERROR && pData != nullptr)
        return *static_cast<const uint32_t*>(pData);
    if (eEvent == QLX_FILTER_EVENT_STATE)
        return reinterpret_cast<uintptr_t>(pData);
    return 0;
}

/** Tells of delivered data; with `dump`, also their bytes. */
static void logData(const QLX_FilterData* data, uint8_t tableId, bool dump) {
    zk_log("table 0x%02x, Demux_SectionFilterCb (data come), section data length: %d\n", tableId,
           static_cast<int>(data->uLength));
    zk_log("section data: %d \r\n", static_cast<int>(data->uLength));
    if (!dump)
        return;
    const uint32_t length = data->pBuffer != nullptr ? data->uLength : 0;
    for (uint32_t i = 0; i < length; i++)
        printf("%02x ", data->pBuffer[i]);
    printf("\n");
}

/** What sections and packets have in common. */
static void recordEvent(uint32_t eEvent, RequestInfo_st* pRequestInfo, void* pData,
                        int32_t (*freeBuffer)(void*), bool dump) {
    zk_log("table 0x%02x, Demux_SectionFilterCb %u\n", pRequestInfo->tableId, eEvent);
    const uint32_t slot = takeSlot(&pRequestInfo->eventReceivedCount);
    if (slot >= REQUEST_EVENT_MAX) {
        zk_log("Can not record too many filter event !");
        giveBack(eEvent, pData, freeBuffer);
    } else {
        SectionEvent_st* record = &pRequestInfo->eventRecord[slot];
        memset(record, 0, sizeof *record);
        record->eEvent = eEvent;
        if (eEvent == QLX_FILTER_EVENT_DATA_COME && pData != nullptr) {
            const QLX_FilterData* data = static_cast<const QLX_FilterData*>(pData);
            logData(data, pRequestInfo->tableId, dump);
            if (hasData(eEvent, data)) {
                record->sectionData.uLength = data->uLength;
                record->sectionData.pBuffer = copyData(data);
                freeBuffer(data->pBuffer);
            }
            record->sectionData.uReserved = data->uReserved;
        } else if (eEvent != QLX_FILTER_EVENT_DATA_COME) {
            record->uValue = eventValue(eEvent, pData);
        }
    }
    if (pRequestInfo->sem != nullptr)
        Demux_SemPost(pRequestInfo->sem);
}

/** Whether an event belongs to a request; else it is told, and its data go back. */
static bool hasRecord(const char* name, uint32_t eEvent, const void* pUserdata, const void* pData,
                      int32_t (*freeBuffer)(void*)) {
    if (pUserdata != nullptr)
        return true;
    CaseContext tc = {name};
    tc_fail(tc, __LINE__, "ASSERT %s \n", "pUserdata != NULL");
    giveBack(eEvent, pData, freeBuffer);
    return false;
}

void Demux_SectionFilterCb(uint32_t eEvent, void* pUserdata, void* pData) {
    if (hasRecord(__func__, eEvent, pUserdata, pData, QLX_SectionFilterFreeBuffer))
        recordEvent(eEvent, static_cast<RequestInfo_st*>(pUserdata), pData,
                    QLX_SectionFilterFreeBuffer, true);
}

void Demux_PacketFilterCb(uint32_t eEvent, void* pUserdata, void* pData) {
    if (hasRecord(__func__, eEvent, pUserdata, pData, QLX_PacketFilterFreeBuffer))
        recordEvent(eEvent, static_cast<RequestInfo_st*>(pUserdata), pData,
                    QLX_PacketFilterFreeBuffer, false);
}

void Demux_PesFilterCb(uint32_t eEvent, void* pUserdata, void* pData) {
    if (!hasRecord(__func__, eEvent, pUserdata, pData, QLX_PesFilterFreeBuffer))
        return;
    PesRequestInfo_st* pRequestInfo = static_cast<PesRequestInfo_st*>(pUserdata);
    const uint32_t slot = takeSlot(&pRequestInfo->eventReceivedCount);
    if (slot >= REQUEST_EVENT_MAX) {
        zk_log("Can not record too many filter event !");
        giveBack(eEvent, pData, QLX_PesFilterFreeBuffer);
    } else {
        PesEvent_st* record = &pRequestInfo->eventRecord[slot];
        const QLX_FilterData* data = static_cast<const QLX_FilterData*>(pData);
        memset(record, 0, sizeof *record);
        record->eEvent = eEvent;
        zk_log("pes filter event [%d]!\n", static_cast<int>(eEvent));
        if (hasData(eEvent, data)) {
            record->pesData.uLength = data->uLength;
            record->pesData.pBuffer = copyData(data);
            QLX_PesFilterFreeBuffer(data->pBuffer);
        } else if (eEvent != QLX_FILTER_EVENT_DATA_COME) {
            record->uValue = eventValue(eEvent, pData);
        }
    }
    if (pRequestInfo->sem != nullptr)
        Demux_SemPost(pRequestInfo->sem);
}

// Requests.

/** The ways in which section requests differ. */
struct SectionForm {
    uint8_t mask0;
    bool withExtension;
    bool waitBySleep;
};

static const SectionForm plainForm = {0xff, false, false};

static void fillSectionParams(const RequestInfo_st* pRequestInfo, const SectionForm& form,
                              QLX_SectionFilterParams* stParams) {
    memset(stParams, 0, sizeof *stParams);
    stParams->uPid = pRequestInfo->uPid;
    stParams->uTimeOutMs = pRequestInfo->uTimeOutMs;
    stParams->eCrcMode = pRequestInfo->eCrcMode;
    stParams->bContinuous = pRequestInfo->bContinuous;
    stParams->uBufferSize = pRequestInfo->uBufferSize;
    stParams->au8Match[0] = pRequestInfo->tableId;
    stParams->au8Mask[0] = form.mask0;
    stParams->uDepth = 1;
    if (form.withExtension) {
        stParams->au8Match[1] = static_cast<uint8_t>(pRequestInfo->uExtensionTableId >> 8);
        stParams->au8Match[2] = static_cast<uint8_t>(pRequestInfo->uExtensionTableId);
        stParams->au8Mask[1] = 0xff;
        stParams->au8Mask[2] = 0xff;
        stParams->uDepth = 3;
    }
    if (pRequestInfo->uVersion < REQUEST_ANY_VERSION) {
        stParams->au8Match[3] = static_cast<uint8_t>(pRequestInfo->uVersion << 1);
        stParams->au8Mask[3] = FILTER_VERSION_MASK;
        stParams->au8Negate[3] = pRequestInfo->bVersionMatch != 0 ? 0 : FILTER_VERSION_MASK;
        stParams->uDepth = 4;
    }
}

int32_t Demux_ConfigureSectionFilter(uint32_t hFilter, const RequestInfo_st* pRequestInfo) {
    QLX_SectionFilterParams stParams;
    fillSectionParams(pRequestInfo, plainForm, &stParams);
    return QLX_SectionFilterConfigure(hFilter, &stParams);
}

/** A filter that a request makes: of what, for whom, and its handle while it is there. */
template <typename Params>
struct FilterBench {
    uint32_t eDemuxId;
    Params stParams;
    void* pRequestInfo;
    sem_t** sem;
    uint32_t hFilter;
};
using SectionBench_st = FilterBench<QLX_SectionFilterParams>;
using PesBench_st = FilterBench<QLX_PesFilterParams>;

// clang-format off
static const LadderStep<SectionBench_st> sectionSteps[] = {
    // up                                                                                                                                                                                          down
    {LADDER_CALL("QLX_DemuxCreateSectionFilter(eDemuxId, &hFilter)", QLX_DemuxCreateSectionFilter(bench.eDemuxId, &bench.hFilter)),                                                                LADDER_CALL("QLX_SectionFilterDelete( hFilter)", QLX_SectionFilterDelete(bench.hFilter))},
    {LADDER_CALL("QLX_SectionFilterConfigure(hFilter, &stParams)", QLX_SectionFilterConfigure(bench.hFilter, &bench.stParams)),                                                                    LADDER_NONE},
    {LADDER_CALL("Demux_SemInit(&pRequestInfo->sem)", Demux_SemInit(bench.sem)),                                                                                                                   LADDER_CALL("Demux_SemDestroy(&pRequestInfo->sem)", Demux_SemDestroy(bench.sem))},
    {LADDER_CALL("QLX_SectionFilterRegisterCallback(hFilter, pRequestInfo , Demux_SectionFilterCb)", QLX_SectionFilterRegisterCallback(bench.hFilter, bench.pRequestInfo, Demux_SectionFilterCb)), LADDER_CALL("QLX_SectionFilterUnRegisterCallback( hFilter, Demux_SectionFilterCb)", QLX_SectionFilterUnRegisterCallback(bench.hFilter, Demux_SectionFilterCb))},
    {LADDER_CALL("QLX_SectionFilterStart(hFilter)", QLX_SectionFilterStart(bench.hFilter)),                                                                                                        LADDER_CALL("QLX_SectionFilterStop(hFilter)", QLX_SectionFilterStop(bench.hFilter))},
};

static const LadderStep<PesBench_st> pesSteps[] = {
    // up                                                                                                                                                                          down
    {LADDER_CALL("QLX_DemuxCreatePesFilter(eDemuxId, &hFilter)", QLX_DemuxCreatePesFilter(bench.eDemuxId, &bench.hFilter)),                                                        LADDER_CALL("QLX_PesFilterDelete( hFilter)", QLX_PesFilterDelete(bench.hFilter))},
    {LADDER_CALL("QLX_PesFilterConfigure(hFilter, &stParams)", QLX_PesFilterConfigure(bench.hFilter, &bench.stParams)),                                                            LADDER_NONE},
    {LADDER_CALL("Demux_SemInit(&pRequestInfo->sem)", Demux_SemInit(bench.sem)),                                                                                                   LADDER_CALL("Demux_SemDestroy(&pRequestInfo->sem)", Demux_SemDestroy(bench.sem))},
    {LADDER_CALL("QLX_PesFilterRegisterCallback(hFilter, pRequestInfo , Demux_PesFilterCb)", QLX_PesFilterRegisterCallback(bench.hFilter, bench.pRequestInfo, Demux_PesFilterCb)), LADDER_CALL("QLX_PesFilterUnRegisterCallback( hFilter, Demux_PesFilterCb)", QLX_PesFilterUnRegisterCallback(bench.hFilter, Demux_PesFilterCb))},
    {LADDER_CALL("QLX_PesFilterStart(hFilter)", QLX_PesFilterStart(bench.hFilter)),                                                                                                LADDER_CALL("QLX_PesFilterStop(hFilter)", QLX_PesFilterStop(bench.hFilter))},
};
// clang-format on

/** Brings a filter up, waits for its first event, or all of the time, and takes it down again. What
 *  came of the wait does not matter: the record tells it. */
template <typename Bench, size_t N>
static uint32_t request(const char* name, Bench& bench, const LadderStep<Bench> (&steps)[N],
                        uint32_t uTimeOutMs, bool waitBySleep) {
    CaseContext tc = {name};
    Ladder<Bench> ladder(tc, bench, steps);
    if (ladder.up()) {
        if (waitBySleep)
            usleep(uTimeOutMs * 1000);
        else
            Demux_SemTimedWait(uTimeOutMs, *bench.sem);
    }
    ladder.down();
    return tc.result;
}

static uint32_t requestSection(const char* name, uint32_t eDemuxId, RequestInfo_st* pRequestInfo,
                               const SectionForm& form) {
    SectionBench_st bench = {eDemuxId, {}, pRequestInfo, &pRequestInfo->sem, 0};
    fillSectionParams(pRequestInfo, form, &bench.stParams);
    return request(name, bench, sectionSteps, pRequestInfo->uTimeOutMs, form.waitBySleep);
}

uint32_t Demux_RequestSection(uint32_t eDemuxId, RequestInfo_st* pRequestInfo) {
    return requestSection(__func__, eDemuxId, pRequestInfo, plainForm);
}

uint32_t Demux_RequestSectionWithExtensionTableId(uint32_t eDemuxId, RequestInfo_st* pRequestInfo) {
    return requestSection(__func__, eDemuxId, pRequestInfo, {0xff, true, false});
}

uint32_t Demux_RequestSectionWaiteBySleep(uint32_t eDemuxId, RequestInfo_st* pRequestInfo) {
    return requestSection(__func__, eDemuxId, pRequestInfo, {0xff, false, true});
}

uint32_t Demux_RequestSectionWithMask(uint32_t eDemuxId, RequestInfo_st* pRequestInfo,
                                      uint8_t mask0) {
    return requestSection(__func__, eDemuxId, pRequestInfo, {mask0, false, false});
}

uint32_t Demux_RequestPes(uint32_t eDemuxId, PesRequestInfo_st* pRequestInfo) {
    PesBench_st bench = {eDemuxId, {}, pRequestInfo, &pRequestInfo->sem, 0};
    bench.stParams.uPid = pRequestInfo->uPid;
    bench.stParams.uBufferSize = pRequestInfo->uBufferSize;
    return request(__func__, bench, pesSteps, pRequestInfo->uTimeOutMs, false);
}

static uint32_t recorded(uint32_t received) {
    return received < REQUEST_EVENT_MAX ? received : static_cast<uint32_t>(REQUEST_EVENT_MAX);
}

uint32_t Demux_EventCount(const RequestInfo_st* pRequestInfo) {
    return __atomic_load_n(&pRequestInfo->eventReceivedCount, __ATOMIC_ACQUIRE);
}

uint32_t Demux_RecordedEvents(const RequestInfo_st* pRequestInfo) {
    return recorded(Demux_EventCount(pRequestInfo));
}

bool Demux_ExpectOneData(CaseContext& tc, const RequestInfo_st* pRequestInfo) {
    return TC_EXPECT_EQUAL(1, Demux_EventCount(pRequestInfo)) &&
           TC_EXPECT_EQUAL(QLX_FILTER_EVENT_DATA_COME, pRequestInfo->eventRecord[0].eEvent);
}

void Demux_FreeEvents(RequestInfo_st* pRequestInfo) {
    const uint32_t count = Demux_RecordedEvents(pRequestInfo);
    for (uint32_t i = 0; i < count; i++) {
        SectionEvent_st* record = &pRequestInfo->eventRecord[i];
        if (record->eEvent == QLX_FILTER_EVENT_DATA_COME) {
            free(record->sectionData.pBuffer);
            record->sectionData.pBuffer = nullptr;
        }
    }
}

void Demux_FreePesEvents(PesRequestInfo_st* pRequestInfo) {
    const uint32_t count =
        recorded(__atomic_load_n(&pRequestInfo->eventReceivedCount, __ATOMIC_ACQUIRE));
    for (uint32_t i = 0; i < count; i++) {
        PesEvent_st* record = &pRequestInfo->eventRecord[i];
        if (record->eEvent == QLX_FILTER_EVENT_DATA_COME) {
            free(record->pesData.pBuffer);
            record->pesData.pBuffer = nullptr;
        }
    }
}

bool Demux_AskForTable(RequestInfo_st* pRequestInfo) {
    uint32_t pid = 0;
    uint32_t tableId = 0;
    if (tc_askHex(&pid) != PROMPT_NUMBER || tc_askHex(&tableId) != PROMPT_NUMBER)
        return false;
    pRequestInfo->uPid = static_cast<uint16_t>(pid & 0x1fff);
    pRequestInfo->tableId = static_cast<uint8_t>(tableId);
    return true;
}

// Threads.

/** Whether any event of the record brought data that are still there. */
static bool anyData(const RequestInfo_st* pRequestInfo) {
    const uint32_t count = Demux_RecordedEvents(pRequestInfo);
    for (uint32_t i = 0; i < count; i++) {
        const SectionEvent_st* record = &pRequestInfo->eventRecord[i];
        if (record->eEvent == QLX_FILTER_EVENT_DATA_COME &&
            record->sectionData.pBuffer != nullptr && record->sectionData.uLength != 0)
            return true;
    }
    return false;
}

/** One request; whether it brought data. */
static bool requestRound(CaseContext& tc, DemuxThreadRequest_st* req, int32_t loop) {
    if (!TC_EXPECT_RET(Demux_RequestSection(req->demux_id, &req->req)))
        return false;
    zk_log("demux %u, loop %d, table: 0x%02x, eventReceivedCount: %d\n", req->demux_id, loop,
           req->req.tableId, static_cast<int>(Demux_EventCount(&req->req)));
    return TC_EXPECT_TRUE(anyData(&req->req));
}

[[noreturn]] static void requestRounds(const char* name, DemuxThreadRequest_st* req,
                                       bool freeBuffers) {
    CaseContext tc = {name};
    for (int32_t loop = 0; loop < req->loop_count && tc.result == TC_SUCCESS; loop++) {
        const bool good = requestRound(tc, req, loop);
        if (freeBuffers)
            Demux_FreeEvents(&req->req);
        if (good)
            usleep(req->pause_ms * 1000);
    }
    tc_endThread(tc.result);
}

void* Demux_RequestSectionThread(void* req) {
    requestRounds(__func__, static_cast<DemuxThreadRequest_st*>(req), true);
}

void* Demux_RequestSectionThreadNoFreeBuffer(void* req) {
    requestRounds(__func__, static_cast<DemuxThreadRequest_st*>(req), false);
}

void* Demux_OpenCloseDemuxThread(void* demuxId) {
    CaseContext tc = {__func__};
    const uint32_t eDemuxId = *static_cast<const uint32_t*>(demuxId);
    for (int loop = 0; loop < OPEN_CLOSE_ROUNDS && tc.result == TC_SUCCESS; loop++) {
        zk_log("loop: %d, demux %u\n", loop, eDemuxId);
        if (!TC_EXPECT_RET(QLX_DemuxOpen(eDemuxId)))
            break;
        usleep(static_cast<useconds_t>(rand() % 90 + 10) * 1000);
        TC_EXPECT_RET(QLX_DemuxClose(eDemuxId));
    }
    tc_endThread(tc.result);
}

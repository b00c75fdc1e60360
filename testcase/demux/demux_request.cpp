#include "testcase/demux/demux_request.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "framework/tc_check.h"

static const uint32_t US_PER_SECOND = 1000000;
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

void time_add_ms(struct timeval* time, uint32_t uMs) {
    time->tv_sec += uMs / 1000;
    time->tv_usec += uMs % 1000 * 1000;
    if (time->tv_usec >= static_cast<suseconds_t>(US_PER_SECOND)) {
        time->tv_usec -= US_PER_SECOND;
        time->tv_sec++;
    }
}

uint32_t Demux_SemTimedWait(uint32_t uTimeOutMs, sem_t* sem) {
    timeval end{};
    if (sem == nullptr)
        return 0;
    gettimeofday(&end, nullptr);
    time_add_ms(&end, uTimeOutMs);
    const timespec deadline = {end.tv_sec, end.tv_usec * 1000};
    int code = 0;
    do {
        code = sem_timedwait(sem, &deadline);
    } while (code != 0 && errno == EINTR);
    return code == 0 ? 0 : 1;
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

static void logSection(const QLX_FilterData* data, uint8_t tableId) {
    const uint32_t length = data->pBuffer != nullptr ? data->uLength : 0;
    zk_log("table 0x%02x, Demux_SectionFilterCb (data come), section data length: %d\n", tableId,
           static_cast<int>(data->uLength));
    zk_log("section data: %d \r\n", static_cast<int>(data->uLength));
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
            if (dump)
                logSection(data, pRequestInfo->tableId);
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

void Demux_SectionFilterCb(uint32_t eEvent, void* pUserdata, void* pData) {
    if (pUserdata == nullptr) {
        tc_fail(__func__, __LINE__, "ASSERT %s \n", "pUserdata != NULL");
        giveBack(eEvent, pData, QLX_SectionFilterFreeBuffer);
        return;
    }
    recordEvent(eEvent, static_cast<RequestInfo_st*>(pUserdata), pData, QLX_SectionFilterFreeBuffer,
                true);
}

void Demux_PacketFilterCb(uint32_t eEvent, void* pUserdata, void* pData) {
    if (pUserdata == nullptr) {
        tc_fail(__func__, __LINE__, "ASSERT %s \n", "pUserdata != NULL");
        giveBack(eEvent, pData, QLX_PacketFilterFreeBuffer);
        return;
    }
    recordEvent(eEvent, static_cast<RequestInfo_st*>(pUserdata), pData, QLX_PacketFilterFreeBuffer,
                false);
}

void Demux_PesFilterCb(uint32_t eEvent, void* pUserdata, void* pData) {
    PesRequestInfo_st* pRequestInfo = static_cast<PesRequestInfo_st*>(pUserdata);
    if (pUserdata == nullptr) {
        tc_fail(__func__, __LINE__, "ASSERT %s \n", "pUserdata != NULL");
        giveBack(eEvent, pData, QLX_PesFilterFreeBuffer);
        return;
    }
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

/** The library's calls for a kind of filter, with the texts that name them when they fail. */
struct FilterCalls {
    int32_t (*create)(uint32_t eDemuxId, uint32_t* hFilter);
    int32_t (*configure)(uint32_t hFilter, const void* stParams);
    int32_t (*registerCallback)(uint32_t hFilter, void* pUserdata, QLX_FilterCallback callback);
    int32_t (*unRegisterCallback)(uint32_t hFilter, QLX_FilterCallback callback);
    int32_t (*start)(uint32_t hFilter);
    int32_t (*stop)(uint32_t hFilter);
    int32_t (*remove)(uint32_t hFilter);
    QLX_FilterCallback callback;
    const char* createText;
    const char* configureText;
    const char* registerText;
    const char* startText;
    const char* stopText;
    const char* unRegisterText;
    const char* removeText;
};

static int32_t configureSection(uint32_t hFilter, const void* stParams) {
    return QLX_SectionFilterConfigure(hFilter,
                                      static_cast<const QLX_SectionFilterParams*>(stParams));
}

static int32_t configurePes(uint32_t hFilter, const void* stParams) {
    return QLX_PesFilterConfigure(hFilter, static_cast<const QLX_PesFilterParams*>(stParams));
}

static const FilterCalls sectionCalls = {
    QLX_DemuxCreateSectionFilter,
    configureSection,
    QLX_SectionFilterRegisterCallback,
    QLX_SectionFilterUnRegisterCallback,
    QLX_SectionFilterStart,
    QLX_SectionFilterStop,
    QLX_SectionFilterDelete,
    Demux_SectionFilterCb,
    "QLX_DemuxCreateSectionFilter(eDemuxId, &hFilter)",
    "QLX_SectionFilterConfigure(hFilter, &stParams)",
    "QLX_SectionFilterRegisterCallback(hFilter, pRequestInfo , Demux_SectionFilterCb)",
    "QLX_SectionFilterStart(hFilter)",
    "QLX_SectionFilterStop(hFilter)",
    "QLX_SectionFilterUnRegisterCallback( hFilter, Demux_SectionFilterCb)",
    "QLX_SectionFilterDelete( hFilter)",
};

static const FilterCalls pesCalls = {
    QLX_DemuxCreatePesFilter,
    configurePes,
    QLX_PesFilterRegisterCallback,
    QLX_PesFilterUnRegisterCallback,
    QLX_PesFilterStart,
    QLX_PesFilterStop,
    QLX_PesFilterDelete,
    Demux_PesFilterCb,
    "QLX_DemuxCreatePesFilter(eDemuxId, &hFilter)",
    "QLX_PesFilterConfigure(hFilter, &stParams)",
    "QLX_PesFilterRegisterCallback(hFilter, pRequestInfo , Demux_PesFilterCb)",
    "QLX_PesFilterStart(hFilter)",
    "QLX_PesFilterStop(hFilter)",
    "QLX_PesFilterUnRegisterCallback( hFilter, Demux_PesFilterCb)",
    "QLX_PesFilterDelete( hFilter)",
};

/** One request of any kind: what to ask for, and who waits how. */
struct FilterRequest {
    const FilterCalls* calls;
    /** The operation that prints failures as its own. */
    const char* name;
    uint32_t eDemuxId;
    const void* stParams;
    void* pRequestInfo;
    sem_t** sem;
    uint32_t uTimeOutMs;
    bool waitBySleep;
};

/** Starts the filter, waits, and stops it. */
static bool runFilter(const FilterRequest& request, uint32_t hFilter) {
    const FilterCalls* calls = request.calls;
    if (!tc_checkRet(request.name, __LINE__, calls->startText, calls->start(hFilter)))
        return false;
    if (request.waitBySleep)
        usleep(request.uTimeOutMs * 1000);
    else
        Demux_SemTimedWait(request.uTimeOutMs, *request.sem);
    return tc_checkRet(request.name, __LINE__, calls->stopText, calls->stop(hFilter));
}

/** Registers the callback and runs the filter under it. */
static bool registerAndRun(const FilterRequest& request, uint32_t hFilter) {
    const FilterCalls* calls = request.calls;
    if (!tc_checkRet(request.name, __LINE__, calls->registerText,
                     calls->registerCallback(hFilter, request.pRequestInfo, calls->callback)))
        return false;
    bool good = runFilter(request, hFilter);
    return tc_checkRet(request.name, __LINE__, calls->unRegisterText,
                       calls->unRegisterCallback(hFilter, calls->callback)) &&
           good;
}

static bool configureAndRun(const FilterRequest& request, uint32_t hFilter) {
    if (!tc_checkRet(request.name, __LINE__, request.calls->configureText,
                     request.calls->configure(hFilter, request.stParams)) ||
        !tc_checkRet(request.name, __LINE__, "Demux_SemInit(&pRequestInfo->sem)",
                     Demux_SemInit(request.sem)))
        return false;
    bool good = registerAndRun(request, hFilter);
    return tc_checkRet(request.name, __LINE__, "Demux_SemDestroy(&pRequestInfo->sem)",
                       Demux_SemDestroy(request.sem)) &&
           good;
}

static uint32_t requestFilter(const FilterRequest& request) {
    const FilterCalls* calls = request.calls;
    uint32_t hFilter = 0;
    if (!tc_checkRet(request.name, __LINE__, calls->createText,
                     calls->create(request.eDemuxId, &hFilter)))
        return 1;
    bool good = configureAndRun(request, hFilter);
    good = tc_checkRet(request.name, __LINE__, calls->removeText, calls->remove(hFilter)) && good;
    return good ? 0 : 1;
}

static uint32_t requestSection(const char* name, uint32_t eDemuxId, RequestInfo_st* pRequestInfo,
                               const SectionForm& form) {
    QLX_SectionFilterParams stParams;
    fillSectionParams(pRequestInfo, form, &stParams);
    return requestFilter({&sectionCalls, name, eDemuxId, &stParams, pRequestInfo,
                          &pRequestInfo->sem, pRequestInfo->uTimeOutMs, form.waitBySleep});
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
    QLX_PesFilterParams stParams;
    memset(&stParams, 0, sizeof stParams);
    stParams.uPid = pRequestInfo->uPid;
    stParams.uBufferSize = pRequestInfo->uBufferSize;
    return requestFilter({&pesCalls, __func__, eDemuxId, &stParams, pRequestInfo,
                          &pRequestInfo->sem, pRequestInfo->uTimeOutMs, false});
}

static uint32_t recorded(const uint32_t* count) {
    const uint32_t received = __atomic_load_n(count, __ATOMIC_ACQUIRE);
    return received < REQUEST_EVENT_MAX ? received : static_cast<uint32_t>(REQUEST_EVENT_MAX);
}

uint32_t Demux_RecordedEvents(const RequestInfo_st* pRequestInfo) {
    return recorded(&pRequestInfo->eventReceivedCount);
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
    const uint32_t count = recorded(&pRequestInfo->eventReceivedCount);
    for (uint32_t i = 0; i < count; i++) {
        PesEvent_st* record = &pRequestInfo->eventRecord[i];
        if (record->eEvent == QLX_FILTER_EVENT_DATA_COME) {
            free(record->pesData.pBuffer);
            record->pesData.pBuffer = nullptr;
        }
    }
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

static uint32_t requestRound(const char* name, DemuxThreadRequest_st* req, int32_t loop) {
    if (!tc_checkRet(name, __LINE__, "Demux_RequestSection(req->demux_id, &req->req)",
                     Demux_RequestSection(req->demux_id, &req->req)))
        return TC_FAILURE;
    zk_log("demux %u, loop %d, table: 0x%02x, eventReceivedCount: %d\n", req->demux_id, loop,
           req->req.tableId, static_cast<int>(req->req.eventReceivedCount));
    if (anyData(&req->req))
        return TC_SUCCESS;
    tc_failTrue(name, __LINE__, 0);
    return TC_FAILURE;
}

static uint32_t requestRounds(const char* name, DemuxThreadRequest_st* req, bool freeBuffers) {
    uint32_t result = TC_SUCCESS;
    for (int32_t loop = 0; loop < req->loop_count && result == TC_SUCCESS; loop++) {
        result = requestRound(name, req, loop);
        if (freeBuffers)
            Demux_FreeEvents(&req->req);
        if (result == TC_SUCCESS)
            usleep(req->pause_ms * 1000);
    }
    return result;
}

static uint32_t* threadResult(uint32_t result) {
    uint32_t* word = static_cast<uint32_t*>(malloc(sizeof *word));
    if (word != nullptr)
        *word = result;
    return word;
}

void* Demux_RequestSectionThread(void* req) {
    return threadResult(requestRounds(__func__, static_cast<DemuxThreadRequest_st*>(req), true));
}

void* Demux_RequestSectionThreadNoFreeBuffer(void* req) {
    return threadResult(requestRounds(__func__, static_cast<DemuxThreadRequest_st*>(req), false));
}

static uint32_t openCloseRounds(uint32_t eDemuxId) {
    const char* name = "Demux_OpenCloseDemuxThread";
    for (int loop = 0; loop < OPEN_CLOSE_ROUNDS; loop++) {
        zk_log("loop: %d, demux %u\n", loop, eDemuxId);
        if (!tc_checkRet(name, __LINE__, "QLX_DemuxOpen(eDemuxId)", QLX_DemuxOpen(eDemuxId)))
            return TC_FAILURE;
        usleep(static_cast<useconds_t>(rand() % 90 + 10) * 1000);
        if (!tc_checkRet(name, __LINE__, "QLX_DemuxClose(eDemuxId)", QLX_DemuxClose(eDemuxId)))
            return TC_FAILURE;
    }
    return TC_SUCCESS;
}

void* Demux_OpenCloseDemuxThread(void* demuxId) {
    return threadResult(openCloseRounds(*static_cast<const uint32_t*>(demuxId)));
}

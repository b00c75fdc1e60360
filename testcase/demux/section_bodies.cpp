#include "testcase/demux/section_bodies.h"

#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/time.h>
#include <unistd.h>

#include "framework/case/wait.h"
#include "framework/tc_check.h"
#include "testcase/demux/demux_harness.h"
#include "testcase/demux/demux_reference.h"
#include "testcase/demux/section_frame.h"
#include "testcase/demux/section_tables.h"

enum {
    /** Filters that one case leads at the same time. */
    SIMULTANEOUS_MAX = 3,
    /** Tables that one standard's feature list has at most. */
    TABLE_MAX = 16,
};

static const char* const compareText =
    "Demux_CompareData2(&stRequestInfo.eventRecord[0].sectionData,&file_sectionData)";

/** Compares an event's section as the table wants it. */
static bool compareEvent(SectionFrame* frame, const SectionRequest& table,
                         const RequestInfo_st* pRequestInfo, uint32_t event,
                         const SectionData_st* reference) {
    const SectionData_st* delivered = &pRequestInfo->eventRecord[event].sectionData;
    if (table.eCompare == COMPARE_TABLE_ID)
        return FRAME_RET_TEXT(
            "Demux_CompareTableId(&stRequestInfo.eventRecord[0].sectionData, "
            "stRequestInfo.tableId)",
            Demux_CompareTableId(delivered, pRequestInfo->tableId));
    return FRAME_RET_TEXT(compareText, Demux_CompareData2(delivered, reference));
}

/** Every event of a continuous filter is a section that equals the reference, and there is one. */
static void judgeContinuous(SectionFrame* frame, const SectionRequest& table,
                            const RequestInfo_st* pRequestInfo, const SectionData_st* reference) {
    const uint32_t count = Demux_RecordedEvents(pRequestInfo);
    if (count == 0)
        FRAME_EQUAL(1, count);
    for (uint32_t i = 0; i < count; i++) {
        if (FRAME_EQUAL(QLX_FILTER_EVENT_DATA_COME, pRequestInfo->eventRecord[i].eEvent))
            compareEvent(frame, table, pRequestInfo, i, reference);
    }
}

static void judge(SectionFrame* frame, const SectionRequest& table,
                  const RequestInfo_st* pRequestInfo, const SectionData_st* reference) {
    if (table.bContinuous != 0)
        judgeContinuous(frame, table, pRequestInfo, reference);
    else if (frameOneData(frame, pRequestInfo))
        compareEvent(frame, table, pRequestInfo, 0, reference);
}

uint32_t sectionBeforeStart(const char* name, const SectionBench& bench) {
    SectionFrame theFrame = frameOf(name, bench);
    SectionFrame* frame = &theFrame;
    HandFilter filter{};
    if (frameTuneAndOpen(frame)) {
        frameRequest(frame, tablePat, &filter.stRequestInfo);
        if (handOpen(frame, &filter)) {
            sleep(2);
            FRAME_EQUAL(0, Demux_RecordedEvents(&filter.stRequestInfo));
        }
        handClose(frame, &filter);
    }
    return frameEnd(frame);
}

/** With a filter that is open: waits for its section, stops it, and waits for silence. */
static void runAfterStop(SectionFrame* frame, HandFilter* filter, const SectionData_st* reference) {
    RequestInfo_st* request = &filter->stRequestInfo;
    if (!handStart(frame, filter))
        return;
    Demux_SemTimedWait(request->uTimeOutMs, request->sem);
    if (frameOneData(frame, request))
        compareEvent(frame, tablePat, request, 0, reference);
    if (!handStop(frame, filter))
        return;
    const uint32_t countAtStop = request->eventReceivedCount;
    sleep(2);
    FRAME_EQUAL(countAtStop, request->eventReceivedCount);
}

uint32_t sectionAfterStop(const char* name, const SectionBench& bench) {
    SectionFrame theFrame = frameOf(name, bench);
    SectionFrame* frame = &theFrame;
    HandFilter filter{};
    SectionData_st file_sectionData{};
    if (frameTune(frame, 0)) {
        frameRequest(frame, tablePat, &filter.stRequestInfo);
        filter.stRequestInfo.bContinuous = QLX_TRUE;
        Demux_ReadTsData(nullptr, &filter.stRequestInfo, &file_sectionData, framePath(frame, 0));
        if (frameOpen(frame)) {
            if (handOpen(frame, &filter))
                runAfterStop(frame, &filter, &file_sectionData);
            handClose(frame, &filter);
        }
    }
    const uint32_t result = frameEnd(frame);
    Demux_FreeTsData(&file_sectionData);
    return result;
}

uint32_t sectionNoTable(const char* name, const SectionBench& bench, uint32_t bContinuous) {
    SectionFrame theFrame = frameOf(name, bench);
    SectionFrame* frame = &theFrame;
    HandFilter filter{};
    RequestInfo_st* request = &filter.stRequestInfo;
    if (frameTuneAndOpen(frame)) {
        const bool zeros = bench.standard->asksForZeros;
        frameRequest(frame, tablePat, request);
        request->uPid = zeros ? 0 : static_cast<uint16_t>(g_tcDemuxConfig.uInvalidPid);
        request->tableId = zeros ? 0 : static_cast<uint8_t>(g_tcDemuxConfig.uInvalidTableId);
        request->bContinuous = bContinuous;
        if (handOpen(frame, &filter) && handStart(frame, &filter)) {
            sleep(3);
            const uint32_t count = Demux_RecordedEvents(request);
            zk_log("The count of timeout event:[%d]:\r\n", static_cast<int>(count));
            if (FRAME_EQUAL(1, count))
                FRAME_EQUAL(QLX_FILTER_EVENT_TIMEOUT, request->eventRecord[0].eEvent);
        }
        handClose(frame, &filter);
    }
    return frameEnd(frame);
}

/** A request call, with what it takes beside demultiplexer and record. */
struct RequestCall {
    uint32_t (*request)(uint32_t eDemuxId, RequestInfo_st* pRequestInfo);
    const char* text;
    uint16_t uExtensionTableId;
};

static uint32_t requestAndJudge(const char* name, const SectionBench& bench,
                                const SectionRequest& table, const RequestCall& call) {
    SectionFrame theFrame = frameOf(name, bench);
    SectionFrame* frame = &theFrame;
    RequestInfo_st stRequestInfo;
    SectionData_st file_sectionData{};
    frameRequest(frame, table, &stRequestInfo);
    stRequestInfo.uExtensionTableId = call.uExtensionTableId;
    if (frameTune(frame, table.uFile)) {
        Demux_ReadTsData(nullptr, &stRequestInfo, &file_sectionData, framePath(frame, table.uFile));
        if (frameOpen(frame)) {
            if (FRAME_RET_TEXT(call.text, call.request(frame->eDemuxId, &stRequestInfo)))
                judge(frame, table, &stRequestInfo, &file_sectionData);
            Demux_FreeEvents(&stRequestInfo);
        }
    }
    const uint32_t result = frameEnd(frame);
    Demux_FreeTsData(&file_sectionData);
    return result;
}

uint32_t sectionRequest(const char* name, const SectionBench& bench, const SectionRequest& table) {
    return requestAndJudge(
        name, bench, table,
        {Demux_RequestSection, "Demux_RequestSection(eDemuxId, &stRequestInfo)", 0});
}

uint32_t sectionWithExtension(const char* name, const SectionBench& bench,
                              const SectionRequest& table, uint16_t uExtensionTableId) {
    return requestAndJudge(
        name, bench, table,
        {Demux_RequestSectionWithExtensionTableId,
         "Demux_RequestSectionWithExtensionTableId(eDemuxId, &stRequestInfo)", uExtensionTableId});
}

uint32_t sectionWithMask(const char* name, const SectionBench& bench, const SectionRequest& table) {
    const uint8_t mask0 = 0xfe;
    SectionFrame theFrame = frameOf(name, bench);
    SectionFrame* frame = &theFrame;
    RequestInfo_st stRequestInfo;
    frameRequest(frame, table, &stRequestInfo);
    if (frameTuneAndOpen(frame)) {
        const uint32_t eDemuxId = frame->eDemuxId;
        if (FRAME_RET(Demux_RequestSectionWithMask(eDemuxId, &stRequestInfo, mask0))) {
            // The mask makes the terrestrial and the cable table one: either may come first.
            const SectionEvent_st* first = &stRequestInfo.eventRecord[0];
            if (FRAME_EQUAL(QLX_FILTER_EVENT_DATA_COME, first->eEvent) &&
                FRAME_EQUAL(1, first->sectionData.pBuffer != nullptr))
                FRAME_EQUAL(table.tableId & mask0, first->sectionData.pBuffer[0] & mask0);
        }
        Demux_FreeEvents(&stRequestInfo);
    }
    return frameEnd(frame);
}

uint32_t sectionFourTimes(const char* name, const SectionBench& bench, const SectionRequest& table,
                          bool judgeEach) {
    SectionFrame theFrame = frameOf(name, bench);
    SectionFrame* frame = &theFrame;
    RequestInfo_st stRequestInfo;
    SectionData_st file_sectionData{};
    frameRequest(frame, table, &stRequestInfo);
    if (frameTune(frame, table.uFile)) {
        if (judgeEach)
            Demux_ReadTsData(nullptr, &stRequestInfo, &file_sectionData,
                             framePath(frame, table.uFile));
        if (frameOpen(frame)) {
            const uint32_t eDemuxId = frame->eDemuxId;
            for (int i = 0; i < 4; i++) {
                frameRequest(frame, table, &stRequestInfo);
                if (FRAME_RET(Demux_RequestSection(eDemuxId, &stRequestInfo)) && judgeEach)
                    judge(frame, table, &stRequestInfo, &file_sectionData);
                Demux_FreeEvents(&stRequestInfo);
            }
        }
    }
    const uint32_t result = frameEnd(frame);
    Demux_FreeTsData(&file_sectionData);
    return result;
}

uint32_t sectionOnlyOnce(const char* name, const SectionBench& bench, const SectionRequest& table) {
    SectionFrame theFrame = frameOf(name, bench);
    SectionFrame* frame = &theFrame;
    RequestInfo_st stRequestInfo;
    frameRequest(frame, table, &stRequestInfo);
    if (frameTuneAndOpen(frame)) {
        const uint32_t eDemuxId = frame->eDemuxId;
        if (FRAME_RET(Demux_RequestSectionWaiteBySleep(eDemuxId, &stRequestInfo))) {
            uint32_t dataCount = 0;
            const uint32_t count = Demux_RecordedEvents(&stRequestInfo);
            for (uint32_t i = 0; i < count; i++)
                dataCount += stRequestInfo.eventRecord[i].eEvent == QLX_FILTER_EVENT_DATA_COME;
            FRAME_EQUAL(1, dataCount);
        }
        Demux_FreeEvents(&stRequestInfo);
    }
    return frameEnd(frame);
}

/** With a filter that is open: lets it run for 15 seconds and judges all that came. */
static void runForAWhile(SectionFrame* frame, HandFilter* filter, const SectionRequest& table,
                         const SectionData_st* reference) {
    if (!handStart(frame, filter))
        return;
    sleep(15);
    if (!handStop(frame, filter))
        return;
    const uint32_t count = filter->stRequestInfo.eventReceivedCount;
    zk_log("received %d times in 15 seconds\n", static_cast<int>(count));
    if (count > REQUEST_EVENT_MAX)
        zk_log("received sections exceed max event record \n");
    if (count < 2)
        FRAME_EQUAL(2, count);
    judgeContinuous(frame, table, &filter->stRequestInfo, reference);
}

uint32_t sectionForAWhile(const char* name, const SectionBench& bench,
                          const SectionRequest& table) {
    SectionFrame theFrame = frameOf(name, bench);
    SectionFrame* frame = &theFrame;
    HandFilter filter{};
    SectionData_st file_sectionData{};
    if (frameTune(frame, table.uFile)) {
        frameRequest(frame, table, &filter.stRequestInfo);
        Demux_ReadTsData(nullptr, &filter.stRequestInfo, &file_sectionData,
                         framePath(frame, table.uFile));
        if (frameOpen(frame)) {
            if (handOpen(frame, &filter))
                runForAWhile(frame, &filter, table, &file_sectionData);
            handClose(frame, &filter);
        }
    }
    const uint32_t result = frameEnd(frame);
    Demux_FreeTsData(&file_sectionData);
    return result;
}

/** With the demultiplexer running: a request for each record, judged; all copies are kept. */
static void requestForAll(SectionFrame* frame, RequestInfo_st* pPatRequestInfo,
                          SectionData_st* pFileSectionData, uint32_t count) {
    const uint32_t eDemuxId = frame->eDemuxId;
    for (uint32_t i = 0; i < count; i++) {
        frameRequest(frame, tablePat, pPatRequestInfo + i);
        Demux_ReadTsData(nullptr, pPatRequestInfo + i, pFileSectionData + i, framePath(frame, 0));
        if (FRAME_RET(Demux_RequestSection(eDemuxId, pPatRequestInfo + i)) &&
            frameOneData(frame, pPatRequestInfo + i))
            FRAME_RET(Demux_CompareData2(&(pPatRequestInfo + i)->eventRecord[0].sectionData,
                                         &pFileSectionData[i]));
    }
    for (uint32_t i = 0; i < count; i++) {
        Demux_FreeEvents(pPatRequestInfo + i);
        Demux_FreeTsData(pFileSectionData + i);
    }
}

uint32_t sectionAllFilters(const char* name, const SectionBench& bench) {
    SectionFrame theFrame = frameOf(name, bench);
    SectionFrame* frame = &theFrame;
    if (frameTuneAndOpen(frame)) {
        const uint32_t eDemuxId = frame->eDemuxId;
        QLX_DemuxCapability stDemuxCapability{};
        if (FRAME_RET(QLX_DemuxGetCapability(eDemuxId, &stDemuxCapability))) {
            const uint32_t count = stDemuxCapability.FilterNum;
            auto* pPatRequestInfo =
                static_cast<RequestInfo_st*>(calloc(count, sizeof(RequestInfo_st)));
            auto* pFileSectionData =
                static_cast<SectionData_st*>(calloc(count, sizeof(SectionData_st)));
            if (FRAME_EQUAL(1, pPatRequestInfo != nullptr && pFileSectionData != nullptr))
                requestForAll(frame, pPatRequestInfo, pFileSectionData, count);
            free(pFileSectionData);
            free(pPatRequestInfo);
        }
    }
    return frameEnd(frame);
}

/** Runs a thread of requests for each record, joins them all and looks at their words. */
static void runThreads(SectionFrame* frame, DemuxThreadRequest_st* requests, size_t count) {
    pthread_t threads[TABLE_MAX];
    size_t started = 0;
    while (started < count &&
           FRAME_RET_TEXT("pthread_create(&thread, NULL, Demux_RequestSectionThread, req)",
                          pthread_create(&threads[started], nullptr, Demux_RequestSectionThread,
                                         &requests[started])))
        started++;
    for (size_t i = 0; i < started; i++) {
        void* status = nullptr;
        char text[40];
        snprintf(text, sizeof text, "*((int*)status%zu)", i);
        pthread_join(threads[i], &status);
        FRAME_RET_TEXT(text, status != nullptr ? *static_cast<int*>(status) : TC_FAILURE);
        free(status);
    }
}

uint32_t sectionTwoThreads(const char* name, const SectionBench& bench,
                           const SectionRequest& table) {
    SectionFrame theFrame = frameOf(name, bench);
    SectionFrame* frame = &theFrame;
    DemuxThreadRequest_st requests[2];
    for (DemuxThreadRequest_st& request : requests) {
        request.demux_id = bench.eDemuxId;
        frameRequest(frame, table, &request.req);
    }
    requests[0].loop_count = 120;
    requests[0].pause_ms = 200;
    requests[1].loop_count = 80;
    requests[1].pause_ms = 300;
    if (frameTuneAndOpen(frame))
        runThreads(frame, requests, 2);
    return frameEnd(frame);
}

/** With the demultiplexer running: opens, starts, waits for, and judges all filters. */
static void runSimultaneous(SectionFrame* frame, HandFilter* filters, const SectionRequest* tables,
                            const SectionData_st* references, size_t count) {
    bool good = true;
    for (size_t i = 0; i < count && good; i++)
        good = handOpen(frame, &filters[i]);
    for (size_t i = 0; i < count && good; i++)
        good = handStart(frame, &filters[i]);
    if (!good)
        return;
    for (size_t i = 0; i < count; i++)
        Demux_SemTimedWait(filters[i].stRequestInfo.uTimeOutMs, filters[i].stRequestInfo.sem);
    for (size_t i = 0; i < count; i++)
        handStop(frame, &filters[i]);
    for (size_t i = 0; i < count; i++)
        judge(frame, tables[i], &filters[i].stRequestInfo, &references[i]);
}

uint32_t sectionSimultaneous(const char* name, const SectionBench& bench,
                             const SectionRequest* tables, size_t count) {
    SectionFrame theFrame = frameOf(name, bench);
    SectionFrame* frame = &theFrame;
    HandFilter filters[SIMULTANEOUS_MAX] = {};
    SectionData_st references[SIMULTANEOUS_MAX] = {};
    if (frameTune(frame, 0)) {
        for (size_t i = 0; i < count; i++) {
            frameRequest(frame, tables[i], &filters[i].stRequestInfo);
            Demux_ReadTsData(nullptr, &filters[i].stRequestInfo, &references[i],
                             framePath(frame, 0));
        }
        if (frameOpen(frame)) {
            runSimultaneous(frame, filters, tables, references, count);
            for (size_t i = count; i-- > 0;)
                handClose(frame, &filters[i]);
        }
    }
    const uint32_t result = frameEnd(frame);
    for (size_t i = 0; i < count; i++)
        Demux_FreeTsData(&references[i]);
    return result;
}

uint32_t sectionActualAndOther(const char* name, const SectionBench& bench) {
    static const SectionRequest* const tables[] = {&tableEitActual, &tableEitOther};
    SectionFrame theFrame = frameOf(name, bench);
    SectionFrame* frame = &theFrame;
    HandFilter filters[2] = {};
    for (size_t i = 0; i < 2; i++)
        frameRequest(frame, *tables[i], &filters[i].stRequestInfo);
    if (frameTune(frame, tableEitActual.uFile) && frameOpen(frame)) {
        if (handOpen(frame, &filters[0]) && handOpen(frame, &filters[1]) &&
            handStart(frame, &filters[0])) {
            sleep(1);
            if (handStart(frame, &filters[1]))
                sleep(2);
        }
        for (HandFilter& filter : filters) {
            const RequestInfo_st* request = &filter.stRequestInfo;
            handStop(frame, &filter);
            if (frameOneData(frame, request))
                compareEvent(frame, tableEitActual, request, 0, nullptr);
        }
        handClose(frame, &filters[1]);
        handClose(frame, &filters[0]);
    }
    return frameEnd(frame);
}

uint32_t sectionAllTables(const char* name, const SectionBench& bench, const SectionTable* tables,
                          size_t count) {
    SectionFrame theFrame = frameOf(name, bench);
    SectionFrame* frame = &theFrame;
    DemuxThreadRequest_st* requests =
        static_cast<DemuxThreadRequest_st*>(calloc(TABLE_MAX, sizeof(DemuxThreadRequest_st)));
    size_t used = 0;
    if (requests == nullptr) {
        FRAME_EQUAL(1, 0);
        return frameEnd(frame);
    }
    for (size_t i = 0; i < count && used < TABLE_MAX; i++) {
        if (tcDemuxFeature == nullptr || tcDemuxFeature[tables[i].feature] == 0)
            continue;
        requests[used].demux_id = bench.eDemuxId;
        requests[used].loop_count = 1;
        frameRequest(frame, tables[i].request, &requests[used].req);
        used++;
    }
    if (frameTuneAndOpen(frame))
        runThreads(frame, requests, used);
    free(requests);
    return frameEnd(frame);
}

uint32_t sectionTimeLimit(const char* name, const SectionBench& bench, const SectionRequest& table,
                          int64_t limitMs) {
    SectionFrame theFrame = frameOf(name, bench);
    SectionFrame* frame = &theFrame;
    RequestInfo_st stRequestInfo;
    SectionData_st file_sectionData{};
    frameRequest(frame, table, &stRequestInfo);
    if (frameTune(frame, table.uFile)) {
        Demux_ReadTsData(nullptr, &stRequestInfo, &file_sectionData, framePath(frame, table.uFile));
        if (frameOpen(frame)) {
            const uint32_t eDemuxId = frame->eDemuxId;
            timeval start{};
            timeval end{};
            gettimeofday(&start, nullptr);
            const bool good = FRAME_RET(Demux_RequestSection(eDemuxId, &stRequestInfo));
            gettimeofday(&end, nullptr);
            const int64_t delay = zk_test_diff_timeMs(&start, &end);
            if (delay > limitMs) {
                tc_fail(name, __LINE__, "timeout: expect time = %u, but actually %d  \n",
                        static_cast<unsigned>(limitMs), static_cast<int>(delay));
                frame->result = TC_FAILURE;
            }
            if (good)
                judge(frame, table, &stRequestInfo, &file_sectionData);
            Demux_FreeEvents(&stRequestInfo);
        }
    }
    const uint32_t result = frameEnd(frame);
    Demux_FreeTsData(&file_sectionData);
    return result;
}

/** With an open slot: sets the path and asks for a PAT. */
static void requestThroughSlot(SectionFrame* frame, uint32_t eSlot, uint32_t eMode) {
    const uint32_t eDemuxId = frame->eDemuxId;
    RequestInfo_st stRequestInfo;
    QLX_CITsConfig psConfig{};
    psConfig.eMode = eMode;
    psConfig.stSource.eSourceType = QLX_SOURCE_TYPE_TUNER;
    psConfig.stSource.uSourceIndex = frame->eTunerId;
    psConfig.eSinkType = QLX_SOURCE_TYPE_DEMUX;
    psConfig.uSinkIndex = eDemuxId;
    frameRequest(frame, tablePat, &stRequestInfo);
    if (FRAME_RET(QLX_CISetSrcType(QLX_SOURCE_TYPE_TUNER)) &&
        FRAME_RET(QLX_CISetTsConfig(eSlot, &psConfig)) &&
        FRAME_RET(Demux_RequestSection(eDemuxId, &stRequestInfo)))
        frameOneData(frame, &stRequestInfo);
    Demux_FreeEvents(&stRequestInfo);
}

uint32_t sectionThroughSlot(const char* name, const SectionBench& bench, uint32_t eMode) {
    SectionFrame theFrame = frameOf(name, bench);
    SectionFrame* frame = &theFrame;
    const uint32_t eSlot = QLX_CI_SLOT_0;
    if (frameTuneAndOpen(frame) && FRAME_RET(QLX_CIInit())) {
        if (FRAME_RET(QLX_CIOpen(eSlot))) {
            requestThroughSlot(frame, eSlot, eMode);
            FRAME_RET(QLX_CIClose(eSlot));
        }
        FRAME_RET(QLX_CIDeInit());
    }
    return frameEnd(frame);
}

/** Asks for a table. False at the end of input. */
static bool askForTable(RequestInfo_st* pRequestInfo) {
    unsigned pid = 0;
    unsigned tableId = 0;
    zk_log("Please input the PID and the table id (hex) to receive:\r\n");
    zk_logFlush();
    const bool answered = scanf("%x %x", &pid, &tableId) == 2;
    pRequestInfo->uPid = static_cast<uint16_t>(pid & 0x1fff);
    pRequestInfo->tableId = static_cast<uint8_t>(tableId);
    return answered;
}

uint32_t sectionTyped(const char* name, const SectionBench& bench) {
    SectionFrame theFrame = frameOf(name, bench);
    SectionFrame* frame = &theFrame;
    HandFilter filter{};
    if (frameTuneAndOpen(frame)) {
        frameRequest(frame, tablePat, &filter.stRequestInfo);
        filter.stRequestInfo.bContinuous = QLX_TRUE;
        if (FRAME_EQUAL(1, askForTable(&filter.stRequestInfo)) && handOpen(frame, &filter) &&
            handStart(frame, &filter)) {
            // The callback prints what comes.
            sleep(10);
            handStop(frame, &filter);
            zk_log("received %d times in 10 seconds\n",
                   static_cast<int>(filter.stRequestInfo.eventReceivedCount));
        }
        handClose(frame, &filter);
    }
    return frameEnd(frame);
}

#include "testcase/demux/section_bodies.h"

#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <deque>
#include <vector>

#include "framework/case/wait.h"
#include "testcase/demux/demux_harness.h"
#include "testcase/demux/section_frame.h"
#include "testcase/demux/section_tables.h"

// Judgements.

/** Compares an event's section as the table wants it. */
static bool compareEvent(CaseContext& tc, const SectionRequest& table,
                         const RequestInfo_st* pRequestInfo, uint32_t event,
                         const SectionData_st* reference) {
    const SectionData_st* delivered = &pRequestInfo->eventRecord[event].sectionData;
    if (table.eCompare == COMPARE_TABLE_ID)
        return TC_EXPECT_RET_TEXT(
            "Demux_CompareTableId(&stRequestInfo.eventRecord[0].sectionData, "
            "stRequestInfo.tableId)",
            Demux_CompareTableId(delivered, pRequestInfo->tableId));
    return TC_EXPECT_RET_TEXT(
        "Demux_CompareData2(&stRequestInfo.eventRecord[0].sectionData,&file_sectionData)",
        Demux_CompareData2(delivered, reference));
}

/** Every event of a continuous filter is a section that equals the reference, and there is one. */
static void judgeContinuous(CaseContext& tc, const SectionRequest& table,
                            const RequestInfo_st* pRequestInfo, const SectionData_st* reference) {
    const uint32_t count = Demux_RecordedEvents(pRequestInfo);
    if (count == 0)
        TC_EXPECT_EQUAL(1, count);
    for (uint32_t i = 0; i < count; i++) {
        if (TC_EXPECT_EQUAL(QLX_FILTER_EVENT_DATA_COME, pRequestInfo->eventRecord[i].eEvent))
            compareEvent(tc, table, pRequestInfo, i, reference);
    }
}

static void judge(CaseContext& tc, const SectionRequest& table, const RequestInfo_st* pRequestInfo,
                  const SectionData_st* reference) {
    if (table.bContinuous != 0)
        judgeContinuous(tc, table, pRequestInfo, reference);
    else if (Demux_ExpectOneData(tc, pRequestInfo))
        compareEvent(tc, table, pRequestInfo, 0, reference);
}

// Filters led by hand.

uint32_t sectionBeforeStart(const char* name, const SectionBench& bench) {
    return sectionCase(name, bench, [&](CaseContext& tc) {
        HandFilter filter(tc, bench, tablePat);
        if (filter.open()) {
            sleep(2);
            TC_EXPECT_EQUAL(0, Demux_EventCount(&filter.stRequestInfo));
        }
        filter.close();
    });
}

/** With a filter that is open: waits for its section, stops it, and waits for silence. */
static void runAfterStop(CaseContext& tc, HandFilter& filter, const SectionData_st* reference) {
    RequestInfo_st* request = &filter.stRequestInfo;
    if (!filter.start())
        return;
    Demux_SemTimedWait(request->uTimeOutMs, request->sem);
    if (Demux_ExpectOneData(tc, request))
        compareEvent(tc, tablePat, request, 0, reference);
    if (!filter.stop())
        return;
    const uint32_t countAtStop = Demux_EventCount(request);
    sleep(2);
    TC_EXPECT_EQUAL(countAtStop, Demux_EventCount(request));
}

uint32_t sectionAfterStop(const char* name, const SectionBench& bench) {
    auto work = [&](CaseContext& tc, const SectionData_st* reference) {
        HandFilter filter(tc, bench, tablePatContinuous);
        if (filter.open())
            runAfterStop(tc, filter, reference);
        filter.close();
    };
    return sectionCase(name, bench, 0, {&tablePatContinuous, 1}, work);
}

uint32_t sectionNoTable(const char* name, const SectionBench& bench, uint32_t bContinuous) {
    return sectionCase(name, bench, [&](CaseContext& tc) {
        HandFilter filter(tc, bench, bContinuous != 0 ? tablePatContinuous : tablePat);
        RequestInfo_st* request = &filter.stRequestInfo;
        const bool zeros = bench.standard->asksForZeros;
        request->uPid = zeros ? 0 : static_cast<uint16_t>(g_tcDemuxConfig.uInvalidPid);
        request->tableId = zeros ? 0 : static_cast<uint8_t>(g_tcDemuxConfig.uInvalidTableId);
        if (filter.open() && filter.start()) {
            sleep(3);
            const uint32_t count = Demux_EventCount(request);
            zk_log("The count of timeout event:[%d]:\r\n", static_cast<int>(count));
            if (TC_EXPECT_EQUAL(1, count)) {
                // The filter still runs: the event is whole behind its post.
                Demux_SemTimedWait(request->uTimeOutMs, request->sem);
                TC_EXPECT_EQUAL(QLX_FILTER_EVENT_TIMEOUT, request->eventRecord[0].eEvent);
            }
        }
        filter.close();
    });
}

/** With a filter that is open: lets it run for 15 seconds and judges all that came. */
static void runForAWhile(CaseContext& tc, HandFilter& filter, const SectionRequest& table,
                         const SectionData_st* reference) {
    if (!filter.start())
        return;
    sleep(15);
    if (!filter.stop())
        return;
    const uint32_t count = Demux_EventCount(&filter.stRequestInfo);
    zk_log("received %d times in 15 seconds\n", static_cast<int>(count));
    if (count > REQUEST_EVENT_MAX)
        zk_log("received sections exceed max event record \n");
    if (count < 2)
        TC_EXPECT_EQUAL(2, count);
    judgeContinuous(tc, table, &filter.stRequestInfo, reference);
}

uint32_t sectionForAWhile(const char* name, const SectionBench& bench,
                          const SectionRequest& table) {
    auto work = [&](CaseContext& tc, const SectionData_st* reference) {
        HandFilter filter(tc, bench, table);
        if (filter.open())
            runForAWhile(tc, filter, table, reference);
        filter.close();
    };
    return sectionCase(name, bench, table.uFile, {&table, 1}, work);
}

/** Opens, starts, waits for, and judges all filters. */
static void runSimultaneous(CaseContext& tc, std::deque<HandFilter>& filters,
                            const SectionRequest* tables, const SectionData_st* references) {
    for (HandFilter& filter : filters) {
        if (!filter.open())
            return;
    }
    for (HandFilter& filter : filters) {
        if (!filter.start())
            return;
    }
    for (const HandFilter& filter : filters)
        Demux_SemTimedWait(filter.stRequestInfo.uTimeOutMs, filter.stRequestInfo.sem);
    for (HandFilter& filter : filters)
        filter.stop();
    for (size_t i = 0; i < filters.size(); i++)
        judge(tc, tables[i], &filters[i].stRequestInfo, &references[i]);
}

uint32_t sectionSimultaneous(const char* name, const SectionBench& bench,
                             const SectionRequest* tables, size_t count) {
    auto work = [&](CaseContext& tc, const SectionData_st* references) {
        std::deque<HandFilter> filters;
        for (size_t i = 0; i < count; i++)
            filters.emplace_back(tc, bench, tables[i]);
        runSimultaneous(tc, filters, tables, references);
        for (size_t i = count; i-- > 0;)
            filters[i].close();
    };
    return sectionCase(name, bench, 0, {tables, count}, work);
}

uint32_t sectionActualAndOther(const char* name, const SectionBench& bench) {
    auto work = [&](CaseContext& tc, const SectionData_st*) {
        HandFilter actual(tc, bench, tableEitActual);
        HandFilter other(tc, bench, tableEitOther);
        if (actual.open() && other.open() && actual.start()) {
            sleep(1);
            if (other.start())
                sleep(2);
        }
        for (HandFilter* filter : {&actual, &other}) {
            filter->stop();
            if (Demux_ExpectOneData(tc, &filter->stRequestInfo))
                compareEvent(tc, tableEitActual, &filter->stRequestInfo, 0, nullptr);
        }
        other.close();
        actual.close();
    };
    return sectionCase(name, bench, tableEitActual.uFile, {}, work);
}

uint32_t sectionTyped(const char* name, const SectionBench& bench) {
    return sectionCase(name, bench, [&](CaseContext& tc) {
        HandFilter filter(tc, bench, tablePatContinuous);
        zk_log("Please input the PID and the table id (hex) to receive:\r\n");
        const bool answered = Demux_AskForTable(&filter.stRequestInfo);
        if (TC_EXPECT_TRUE(answered) && filter.open() && filter.start()) {
            // The callback prints what comes.
            sleep(10);
            filter.stop();
            zk_log("received %d times in 10 seconds\n",
                   static_cast<int>(Demux_EventCount(&filter.stRequestInfo)));
        }
        filter.close();
    });
}

// Requests.

/** A request call, with what it takes beside demultiplexer and record. */
struct RequestCall {
    uint32_t (*request)(uint32_t eDemuxId, RequestInfo_st* pRequestInfo);
    const char* text;
    uint16_t uExtensionTableId;
};

static uint32_t requestAndJudge(const char* name, const SectionBench& bench,
                                const SectionRequest& table, const RequestCall& call) {
    auto work = [&](CaseContext& tc, const SectionData_st* reference) {
        RequestInfo_st stRequestInfo = sectionRequestOf(bench, table);
        stRequestInfo.uExtensionTableId = call.uExtensionTableId;
        if (TC_EXPECT_RET_TEXT(call.text, call.request(bench.eDemuxId, &stRequestInfo)))
            judge(tc, table, &stRequestInfo, reference);
        Demux_FreeEvents(&stRequestInfo);
    };
    return sectionCase(name, bench, table.uFile, {&table, 1}, work);
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
    return sectionCase(name, bench, [&](CaseContext& tc) {
        const uint8_t mask0 = 0xfe;
        const uint32_t eDemuxId = bench.eDemuxId;
        RequestInfo_st stRequestInfo = sectionRequestOf(bench, table);
        // The mask makes the terrestrial and the cable table one: either may come first.
        const SectionEvent_st* first = &stRequestInfo.eventRecord[0];
        if (TC_EXPECT_RET(Demux_RequestSectionWithMask(eDemuxId, &stRequestInfo, mask0)) &&
            TC_EXPECT_EQUAL(QLX_FILTER_EVENT_DATA_COME, first->eEvent) &&
            TC_EXPECT_TRUE(first->sectionData.pBuffer != nullptr))
            TC_EXPECT_EQUAL(table.tableId & mask0, first->sectionData.pBuffer[0] & mask0);
        Demux_FreeEvents(&stRequestInfo);
    });
}

uint32_t sectionFourTimes(const char* name, const SectionBench& bench, const SectionRequest& table,
                          bool judgeEach) {
    auto work = [&](CaseContext& tc, const SectionData_st* reference) {
        const uint32_t eDemuxId = bench.eDemuxId;
        for (int i = 0; i < 4; i++) {
            RequestInfo_st stRequestInfo = sectionRequestOf(bench, table);
            if (TC_EXPECT_RET(Demux_RequestSection(eDemuxId, &stRequestInfo)) && judgeEach)
                judge(tc, table, &stRequestInfo, reference);
            Demux_FreeEvents(&stRequestInfo);
        }
    };
    return sectionCase(name, bench, table.uFile, {&table, judgeEach ? size_t{1} : 0}, work);
}

uint32_t sectionOnlyOnce(const char* name, const SectionBench& bench, const SectionRequest& table) {
    return sectionCase(name, bench, [&](CaseContext& tc) {
        const uint32_t eDemuxId = bench.eDemuxId;
        RequestInfo_st stRequestInfo = sectionRequestOf(bench, table);
        if (TC_EXPECT_RET(Demux_RequestSectionWaiteBySleep(eDemuxId, &stRequestInfo))) {
            uint32_t dataCount = 0;
            const uint32_t count = Demux_RecordedEvents(&stRequestInfo);
            for (uint32_t i = 0; i < count; i++)
                dataCount += stRequestInfo.eventRecord[i].eEvent == QLX_FILTER_EVENT_DATA_COME;
            TC_EXPECT_EQUAL(1, dataCount);
        }
        Demux_FreeEvents(&stRequestInfo);
    });
}

uint32_t sectionTimeLimit(const char* name, const SectionBench& bench, const SectionRequest& table,
                          int64_t limitMs) {
    auto work = [&](CaseContext& tc, const SectionData_st* reference) {
        const uint32_t eDemuxId = bench.eDemuxId;
        RequestInfo_st stRequestInfo = sectionRequestOf(bench, table);
        const Stopwatch stopwatch;
        const bool good = TC_EXPECT_RET(Demux_RequestSection(eDemuxId, &stRequestInfo));
        const int64_t delay = stopwatch.ms();
        if (delay > limitMs)
            tc_fail(tc, __LINE__, "timeout: expect time = %u, but actually %d  \n",
                    static_cast<unsigned>(limitMs), static_cast<int>(delay));
        if (good)
            judge(tc, table, &stRequestInfo, reference);
        Demux_FreeEvents(&stRequestInfo);
    };
    return sectionCase(name, bench, table.uFile, {&table, 1}, work);
}

/** A request for each record, judged; all copies are kept until the last one. */
static void requestForAll(CaseContext& tc, const SectionBench& bench,
                          RequestInfo_st* pPatRequestInfo, SectionData_st* pFileSectionData,
                          uint32_t count) {
    const uint32_t eDemuxId = bench.eDemuxId;
    for (uint32_t i = 0; i < count; i++) {
        pPatRequestInfo[i] = sectionRequestOf(bench, tablePat);
        sectionReadReference(bench, tablePat, pFileSectionData + i);
        if (TC_EXPECT_RET(Demux_RequestSection(eDemuxId, pPatRequestInfo + i)) &&
            Demux_ExpectOneData(tc, pPatRequestInfo + i))
            TC_EXPECT_RET(Demux_CompareData2(&(pPatRequestInfo + i)->eventRecord[0].sectionData,
                                             &pFileSectionData[i]));
    }
    for (uint32_t i = 0; i < count; i++) {
        Demux_FreeEvents(pPatRequestInfo + i);
        Demux_FreeTsData(pFileSectionData + i);
    }
}

uint32_t sectionAllFilters(const char* name, const SectionBench& bench) {
    return sectionCase(name, bench, [&](CaseContext& tc) {
        const uint32_t eDemuxId = bench.eDemuxId;
        QLX_DemuxCapability stDemuxCapability{};
        if (!TC_EXPECT_RET(QLX_DemuxGetCapability(eDemuxId, &stDemuxCapability)))
            return;
        const uint32_t count = stDemuxCapability.FilterNum;
        auto* pPatRequestInfo = static_cast<RequestInfo_st*>(calloc(count, sizeof(RequestInfo_st)));
        auto* pFileSectionData =
            static_cast<SectionData_st*>(calloc(count, sizeof(SectionData_st)));
        if (TC_EXPECT_TRUE(pPatRequestInfo != nullptr && pFileSectionData != nullptr))
            requestForAll(tc, bench, pPatRequestInfo, pFileSectionData, count);
        free(pFileSectionData);
        free(pPatRequestInfo);
    });
}

// Threads.

/** Runs a thread of requests for each record, joins them all and looks at their words. */
static void runThreads(CaseContext& tc, std::vector<DemuxThreadRequest_st>& requests) {
    std::vector<pthread_t> threads;
    for (DemuxThreadRequest_st& request : requests) {
        pthread_t thread;
        if (!TC_EXPECT_RET_TEXT(
                "pthread_create(&thread, NULL, Demux_RequestSectionThread, req)",
                pthread_create(&thread, nullptr, Demux_RequestSectionThread, &request)))
            break;
        threads.push_back(thread);
    }
    for (size_t i = 0; i < threads.size(); i++) {
        char text[40];
        snprintf(text, sizeof text, "*((int*)status%zu)", i);
        TC_EXPECT_RET_TEXT(text, tc_joinThread(threads[i]));
    }
}

uint32_t sectionTwoThreads(const char* name, const SectionBench& bench,
                           const SectionRequest& table) {
    return sectionCase(name, bench, [&](CaseContext& tc) {
        const RequestInfo_st request = sectionRequestOf(bench, table);
        std::vector<DemuxThreadRequest_st> requests = {{bench.eDemuxId, 120, 200, request},
                                                       {bench.eDemuxId, 80, 300, request}};
        runThreads(tc, requests);
    });
}

uint32_t sectionAllTables(const char* name, const SectionBench& bench, const SectionTable* tables,
                          size_t count) {
    return sectionCase(name, bench, [&](CaseContext& tc) {
        std::vector<DemuxThreadRequest_st> requests;
        for (size_t i = 0; i < count; i++) {
            if (tcDemuxFeature != nullptr && tcDemuxFeature[tables[i].feature] != 0)
                requests.push_back(
                    {bench.eDemuxId, 1, 0, sectionRequestOf(bench, tables[i].request)});
        }
        runThreads(tc, requests);
    });
}

// The common interface.

/** With an open slot: sets the path and asks for a PAT. */
static void requestThroughSlot(CaseContext& tc, const SectionBench& bench, uint32_t eSlot,
                               uint32_t eMode) {
    const uint32_t eDemuxId = bench.eDemuxId;
    RequestInfo_st stRequestInfo = sectionRequestOf(bench, tablePat);
    QLX_CITsConfig psConfig{};
    psConfig.eMode = eMode;
    psConfig.stSource.eSourceType = QLX_SOURCE_TYPE_TUNER;
    psConfig.stSource.uSourceIndex = bench.eTunerId;
    psConfig.eSinkType = QLX_SOURCE_TYPE_DEMUX;
    psConfig.uSinkIndex = eDemuxId;
    if (TC_EXPECT_RET(QLX_CISetSrcType(QLX_SOURCE_TYPE_TUNER)) &&
        TC_EXPECT_RET(QLX_CISetTsConfig(eSlot, &psConfig)) &&
        TC_EXPECT_RET(Demux_RequestSection(eDemuxId, &stRequestInfo)))
        Demux_ExpectOneData(tc, &stRequestInfo);
    Demux_FreeEvents(&stRequestInfo);
}

uint32_t sectionThroughSlot(const char* name, const SectionBench& bench, uint32_t eMode) {
    return sectionCase(name, bench, [&](CaseContext& tc) {
        const uint32_t eSlot = QLX_CI_SLOT_0;
        if (!TC_EXPECT_RET(QLX_CIInit()))
            return;
        if (TC_EXPECT_RET(QLX_CIOpen(eSlot))) {
            requestThroughSlot(tc, bench, eSlot, eMode);
            TC_EXPECT_RET(QLX_CIClose(eSlot));
        }
        TC_EXPECT_RET(QLX_CIDeInit());
    });
}

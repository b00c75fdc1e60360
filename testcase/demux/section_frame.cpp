#include "testcase/demux/section_frame.h"

#include <string.h>

#include "framework/tc_check.h"
#include "platform/qlx_tuner.h"
#include "testcase/tuner/tuner_harness.h"

#define START_TEXT(system, files, channel)                                                        \
    "TC_TUNER_START(eTunerId, " #system ", g_tcDemuxConfig." #files ".uTsFileChannelId[" #channel \
    "])"
#define STANDARD(system, files, asksForZeros)                                          \
    {                                                                                  \
        system, &g_tcDemuxConfig.files,                                                \
            {START_TEXT(system, files, 0), START_TEXT(system, files, 1)}, asksForZeros \
    }

const SectionStandard sectionDvbC = STANDARD(QLX_TRANSMISSION_SYSTEM_DVB_C, stDvbcTs, false);
const SectionStandard sectionDvbT = STANDARD(QLX_TRANSMISSION_SYSTEM_DVB_T, stDvbtTs, false);
const SectionStandard sectionDvbS = STANDARD(QLX_TRANSMISSION_SYSTEM_DVB_S, stDvbsTs, false);
const SectionStandard sectionAtscC = STANDARD(QLX_TRANSMISSION_SYSTEM_ATSC_C, stAtsccTs, true);
const SectionStandard sectionAtscT = STANDARD(QLX_TRANSMISSION_SYSTEM_ATSC_T, stAtsctTs, false);
const SectionStandard sectionIsdbT = STANDARD(QLX_TRANSMISSION_SYSTEM_ISDB_T, stIsdbtTs, false);
const SectionStandard sectionIsdbS = STANDARD(QLX_TRANSMISSION_SYSTEM_ISDB_S, stIsdbsTs, false);

SectionFrame frameOf(const char* name, const SectionBench& bench) {
    SectionFrame frame{};
    frame.name = name;
    frame.bench = &bench;
    frame.eDemuxId = bench.eDemuxId;
    frame.eTunerId = bench.eTunerId;
    return frame;
}

bool frameCheck(SectionFrame* frame, int line, const char* text, int64_t value) {
    if (tc_checkRet(frame->name, line, text, value))
        return true;
    frame->result = TC_FAILURE;
    return false;
}

bool frameEqual(SectionFrame* frame, int line, uint32_t expected, uint32_t actual) {
    if (expected == actual)
        return true;
    tc_fail(frame->name, line, "expect %d, but actually %d  \n", static_cast<int>(expected),
            static_cast<int>(actual));
    frame->result = TC_FAILURE;
    return false;
}

bool frameTune(SectionFrame* frame, uint32_t file) {
    const SectionStandard* standard = frame->bench->standard;
    frame->tuned = FRAME_RET_TEXT(standard->startText[file],
                                  TC_TUNER_START(frame->eTunerId, standard->eSystem,
                                                 standard->files->uTsFileChannelId[file]));
    return frame->tuned;
}

bool frameOpen(SectionFrame* frame) {
    const uint32_t eDemuxId = frame->eDemuxId;
    const QLX_Source stSource = {QLX_SOURCE_TYPE_TUNER, frame->eTunerId, 0};
    frame->initialised = FRAME_RET(QLX_DemuxInit());
    frame->opened = frame->initialised && FRAME_RET(QLX_DemuxOpen(eDemuxId));
    frame->started = frame->opened && FRAME_RET(QLX_DemuxConnectSource(eDemuxId, &stSource)) &&
                     FRAME_RET(QLX_DemuxStart(eDemuxId));
    return frame->started;
}

bool frameTuneAndOpen(SectionFrame* frame) {
    return frameTune(frame, 0) && frameOpen(frame);
}

uint32_t frameEnd(SectionFrame* frame) {
    const uint32_t eDemuxId = frame->eDemuxId;
    const uint32_t eTunerId = frame->eTunerId;
    if (frame->started)
        FRAME_RET(QLX_DemuxStop(eDemuxId));
    if (frame->opened)
        FRAME_RET(QLX_DemuxClose(eDemuxId));
    if (frame->initialised)
        FRAME_RET(QLX_DemuxDeInit());
    if (frame->tuned)
        FRAME_RET(TC_TUNER_STOP(eTunerId));
    return tc_result(frame->name, frame->result);
}

const char* framePath(const SectionFrame* frame, uint32_t file) {
    return frame->bench->standard->files->tsFilePath[file];
}

static uint16_t pidOf(const SectionFrame* frame, const SectionRequest& table) {
    const SectionStandard* standard = frame->bench->standard;
    TcChannelInfo channel{};
    zk_test_get_dtv_channel_info(standard->eSystem, standard->files->uTsFileChannelId[table.uFile],
                                 &channel);
    switch (table.uPid) {
        case SECTION_PID_PMT:
            return static_cast<uint16_t>(channel.uPmtPid);
        case SECTION_PID_EIT:
            return static_cast<uint16_t>(channel.uEitPid);
        case SECTION_PID_ETT:
            return static_cast<uint16_t>(channel.uEttPid);
        default:
            return static_cast<uint16_t>(table.uPid);
    }
}

void frameRequest(const SectionFrame* frame, const SectionRequest& table,
                  RequestInfo_st* pRequestInfo) {
    memset(pRequestInfo, 0, sizeof *pRequestInfo);
    pRequestInfo->uPid = pidOf(frame, table);
    pRequestInfo->tableId = table.tableId;
    pRequestInfo->uVersion = REQUEST_ANY_VERSION;
    pRequestInfo->uTimeOutMs = table.uTimeOutMs;
    pRequestInfo->uBufferSize = REQUEST_BUFFER_SIZE;
    pRequestInfo->eCrcMode = table.eCrcMode;
    pRequestInfo->bContinuous = table.bContinuous;
}

bool frameOneData(SectionFrame* frame, const RequestInfo_st* pRequestInfo) {
    return FRAME_EQUAL(1, pRequestInfo->eventReceivedCount) &&
           FRAME_EQUAL(QLX_FILTER_EVENT_DATA_COME, pRequestInfo->eventRecord[0].eEvent);
}

bool handOpen(SectionFrame* frame, HandFilter* filter) {
    const uint32_t eDemuxId = frame->eDemuxId;
    filter->created = FRAME_RET_TEXT("QLX_DemuxCreateSectionFilter(eDemuxId, &hFilter)",
                                     QLX_DemuxCreateSectionFilter(eDemuxId, &filter->hFilter));
    if (!filter->created ||
        !FRAME_RET_TEXT("Demux_ConfigureSectionFilter(hFilter, &stRequestInfo)",
                        Demux_ConfigureSectionFilter(filter->hFilter, &filter->stRequestInfo)))
        return false;
    filter->withSem = FRAME_RET_TEXT("Demux_SemInit(&stRequestInfo.sem)",
                                     Demux_SemInit(&filter->stRequestInfo.sem));
    filter->registered =
        filter->withSem &&
        FRAME_RET_TEXT(
            "QLX_SectionFilterRegisterCallback(hFilter, &stRequestInfo, Demux_SectionFilterCb)",
            QLX_SectionFilterRegisterCallback(filter->hFilter, &filter->stRequestInfo,
                                              Demux_SectionFilterCb));
    return filter->registered;
}

bool handStart(SectionFrame* frame, HandFilter* filter) {
    filter->running =
        FRAME_RET_TEXT("QLX_SectionFilterStart(hFilter)", QLX_SectionFilterStart(filter->hFilter));
    return filter->running;
}

bool handStop(SectionFrame* frame, HandFilter* filter) {
    if (!filter->running)
        return true;
    filter->running = false;
    return FRAME_RET_TEXT("QLX_SectionFilterStop(hFilter)", QLX_SectionFilterStop(filter->hFilter));
}

void handClose(SectionFrame* frame, HandFilter* filter) {
    handStop(frame, filter);
    if (filter->registered)
        FRAME_RET_TEXT("QLX_SectionFilterUnRegisterCallback(hFilter, Demux_SectionFilterCb)",
                       QLX_SectionFilterUnRegisterCallback(filter->hFilter, Demux_SectionFilterCb));
    if (filter->withSem)
        FRAME_RET_TEXT("Demux_SemDestroy(&stRequestInfo.sem)",
                       Demux_SemDestroy(&filter->stRequestInfo.sem));
    if (filter->created)
        FRAME_RET_TEXT("QLX_SectionFilterDelete(hFilter)",
                       QLX_SectionFilterDelete(filter->hFilter));
    Demux_FreeEvents(&filter->stRequestInfo);
}

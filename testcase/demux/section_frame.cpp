#include "testcase/demux/section_frame.h"

#include "platform/qlx_tuner.h"

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

static int32_t connect(const SectionBench& bench) {
    const QLX_Source stSource = {QLX_SOURCE_TYPE_TUNER, bench.eTunerId, 0};
    return QLX_DemuxConnectSource(bench.eDemuxId, &stSource);
}

// clang-format off
const LadderStep<const SectionBench> sectionBenchSteps[] = {
    // up                                                                         down
    {LADDER_CALL("QLX_DemuxInit()", QLX_DemuxInit()),                             LADDER_CALL("QLX_DemuxDeInit()", QLX_DemuxDeInit())},
    {LADDER_CALL("QLX_DemuxOpen(eDemuxId)", QLX_DemuxOpen(bench.eDemuxId)),       LADDER_CALL("QLX_DemuxClose(eDemuxId)", QLX_DemuxClose(bench.eDemuxId))},
    {LADDER_CALL("QLX_DemuxConnectSource(eDemuxId, &stSource)", connect(bench)),  LADDER_NONE},
    {LADDER_CALL("QLX_DemuxStart(eDemuxId)", QLX_DemuxStart(bench.eDemuxId)),     LADDER_CALL("QLX_DemuxStop(eDemuxId)", QLX_DemuxStop(bench.eDemuxId))},
};
// clang-format on

static uint16_t pidOf(const SectionStandard* standard, const SectionRequest& table) {
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

RequestInfo_st sectionRequestOf(const SectionBench& bench, const SectionRequest& table) {
    RequestInfo_st request{};
    request.uPid = pidOf(bench.standard, table);
    request.tableId = table.tableId;
    request.uVersion = REQUEST_ANY_VERSION;
    request.uTimeOutMs = table.uTimeOutMs;
    request.uBufferSize = REQUEST_BUFFER_SIZE;
    request.eCrcMode = table.eCrcMode;
    request.bContinuous = table.bContinuous;
    return request;
}

void sectionReadReference(const SectionBench& bench, const SectionRequest& table,
                          SectionData_st* reference) {
    const RequestInfo_st request = sectionRequestOf(bench, table);
    Demux_ReadTsData(nullptr, &request, reference, bench.standard->files->tsFilePath[table.uFile]);
}

// clang-format off
static const LadderStep<HandFilter> handSteps[] = {
    // up                                                                                                                                                                                                                     down
    {LADDER_CALL("QLX_DemuxCreateSectionFilter(eDemuxId, &hFilter)", QLX_DemuxCreateSectionFilter(bench.eDemuxId, &bench.hFilter)),                                                                                           LADDER_CALL("QLX_SectionFilterDelete(hFilter)", QLX_SectionFilterDelete(bench.hFilter))},
    {LADDER_CALL("Demux_ConfigureSectionFilter(hFilter, &stRequestInfo)", Demux_ConfigureSectionFilter(bench.hFilter, &bench.stRequestInfo)),                                                                                 LADDER_NONE},
    {LADDER_CALL("Demux_SemInit(&stRequestInfo.sem)", Demux_SemInit(&bench.stRequestInfo.sem)),                                                                                                                               LADDER_CALL("Demux_SemDestroy(&stRequestInfo.sem)", Demux_SemDestroy(&bench.stRequestInfo.sem))},
    {LADDER_CALL("QLX_SectionFilterRegisterCallback(hFilter, &stRequestInfo, Demux_SectionFilterCb)", QLX_SectionFilterRegisterCallback(bench.hFilter, &bench.stRequestInfo, Demux_SectionFilterCb)),                         LADDER_CALL("QLX_SectionFilterUnRegisterCallback(hFilter, Demux_SectionFilterCb)", QLX_SectionFilterUnRegisterCallback(bench.hFilter, Demux_SectionFilterCb))},
    {LADDER_CALL("QLX_SectionFilterStart(hFilter)", QLX_SectionFilterStart(bench.hFilter)),                                                                                                                                   LADDER_CALL("QLX_SectionFilterStop(hFilter)", QLX_SectionFilterStop(bench.hFilter))},
};
// clang-format on
/** The steps of an open filter: all but the start. */
static const size_t OPEN_STEPS = 4;

HandFilter::HandFilter(CaseContext& tc, const SectionBench& bench, const SectionRequest& table)
    : eDemuxId(bench.eDemuxId),
      stRequestInfo(sectionRequestOf(bench, table)),
      ladder_(tc, *this, handSteps) {}

bool HandFilter::open() {
    return ladder_.up(OPEN_STEPS);
}

bool HandFilter::start() {
    return ladder_.up();
}

bool HandFilter::stop() {
    return ladder_.down(OPEN_STEPS);
}

void HandFilter::close() {
    ladder_.down();
    Demux_FreeEvents(&stRequestInfo);
}

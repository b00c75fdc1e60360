// The demultiplexer modules on a handmade multiplex: requests and their undoing, what each
// judgement of a case catches, and what the wrappers for other modules leave behind.
#include <gtest/gtest.h>
#include <pthread.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "environment/config_files.h"
#include "environment/test_env.h"
#include "framework/case/check.h"
#include "framework/case/wait.h"
#include "platform/qlx_ci.h"
#include "platform/qlx_tuner.h"
#include "program/startup.h"
#include "testcase/demux/demux_config.h"
#include "testcase/demux/demux_harness.h"
#include "testcase/demux/demux_request.h"
#include "testcase/tuner/tuner_harness.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/demux_streams.h"
#include "tests/shared/module_bench.h"

namespace {

using demux_test::Bytes;
using demux_test::makeSection;
using demux_test::StreamMaker;

const uint16_t PAT_PID = 0;
const uint16_t SDT_PID = 17;
const uint16_t DAMAGED_PID = 0x30;
/** The base PID of PSIP. */
const uint16_t PSIP_PID = 0x1ffb;
const uint16_t CLOCK_PID = 0x100;
const uint32_t PACKET_TICKS = 13500;
const uint32_t PASS = TC_SUCCESS;
const uint32_t FAIL = TC_FAILURE;

/** A bench whose DVB-C main channel plays a loop of 100 ms: two PAT, an SDT in two sections of
 *  versions 3 and 4, an MGT, and a section with a damaged CRC. */
class DemuxModule : public ModuleBench {
 protected:
    void SetUp() override {
        ModuleBench::SetUp();
        writeStream();
        ASSERT_EQ(Demux_TestSetup(), PASS);
        snprintf(g_tcDemuxConfig.stDvbcTs.tsFilePath[0], DEMUX_TS_PATH_SIZE, "%s", path().c_str());
        event("air DVB-C/" + std::to_string(zk_testConfig.dvbC[0].uFrequency) +
              " STREAM=" + path());
        takeOutput();
    }
    void TearDown() override {
        EXPECT_EQ(Demux_TestTeardown(), PASS);
        EXPECT_EQ(deviceState(), "");
        ModuleBench::TearDown();
    }

    void writeStream() {
        StreamMaker maker;
        Bytes damaged = makeSection(0x42, 9, 1, 60);
        damaged[20] ^= 1;
        for (uint8_t i = 0; i < 2; i++) {
            maker.clock(CLOCK_PID, uint64_t{maker.count} * PACKET_TICKS);
            patAt_[i] = maker.bytes.size();
            maker.section(PAT_PID, pat_);
            maker.section(SDT_PID, makeSection(0x42, 7, static_cast<uint8_t>(3 + i), 120));
            maker.section(DAMAGED_PID, damaged);
            maker.section(PSIP_PID, makeSection(0xc7, 3, 0, 17));
            maker.nulls(94 - static_cast<int>(i));
        }
        maker.clock(CLOCK_PID, uint64_t{maker.count} * PACKET_TICKS);
        folder_.write("air.ts", std::string(maker.bytes.begin(), maker.bytes.end()));
    }
    std::string path() const {
        return folder_.path() + "/air.ts";
    }
    static uint32_t runCase(const std::string& name, const std::string& fault = "") {
        return runCaseUnder(DemuxModuleDvb, name, fault);
    }

    /** Brings Demux-0 up on the stream, and takes it down. */
    void bringUp() {
        const QLX_Source source = {QLX_SOURCE_TYPE_TUNER, QLX_TUNER_0, 0};
        ASSERT_EQ(TC_TUNER_START(QLX_TUNER_0, QLX_TRANSMISSION_SYSTEM_DVB_C, 0), PASS);
        ASSERT_EQ(QLX_DemuxInit(), 0);
        ASSERT_EQ(TC_DEMUX_START(QLX_DEMUX_0, &source), PASS);
        atRest_ = deviceState();
    }
    /** Nothing but what bringUp left may be there. */
    void takeDown() {
        EXPECT_EQ(deviceState(), atRest_);
        EXPECT_EQ(TC_DEMUX_STOP(QLX_DEMUX_0), PASS);
        EXPECT_EQ(QLX_DemuxDeInit(), 0);
        EXPECT_EQ(TC_TUNER_STOP(QLX_TUNER_0), PASS);
    }
    static RequestInfo_st request(uint16_t pid, uint8_t tableId) {
        RequestInfo_st info{};
        info.uPid = pid;
        info.tableId = tableId;
        info.uVersion = REQUEST_ANY_VERSION;
        info.uTimeOutMs = 500;
        info.uBufferSize = REQUEST_BUFFER_SIZE;
        info.eCrcMode = QLX_SECTION_CRC_CHECK;
        return info;
    }

    BenchFolder folder_;
    // Its CRC does not end in 0xff, which the reader would take for stuffing.
    Bytes pat_ = makeSection(0x00, 2, 0, 16);
    /** Where the packets of the PAT begin. */
    size_t patAt_[2] = {};
    std::string atRest_;

 private:
};

/** The calls of a trace by name, without those of the tuner. */
std::string filterCalls(const std::string& calls) {
    std::string names;
    std::istringstream lines(calls);
    std::string line;
    while (std::getline(lines, line)) {
        size_t end = line.find('(');
        if (line.compare(0, 4, "QLX_") == 0 && line.find("FreeBuffer") == std::string::npos)
            names += line.substr(4, end - 4) + " ";
    }
    return names;
}

// Requests.

TEST_F(DemuxModule, ARequestBringsItsSectionAndLeavesNothing) {
    bringUp();
    RequestInfo_st info = request(PAT_PID, 0);
    qlx_sim_record(1);
    EXPECT_EQ(Demux_RequestSection(QLX_DEMUX_0, &info), 0u);
    EXPECT_EQ(filterCalls(recordedCalls()),
              "DemuxCreateSectionFilter SectionFilterConfigure SectionFilterRegisterCallback "
              "SectionFilterStart SectionFilterStop SectionFilterUnRegisterCallback "
              "SectionFilterDelete ");
    ASSERT_EQ(info.eventReceivedCount, 1u);
    ASSERT_EQ(info.eventRecord[0].eEvent, static_cast<uint32_t>(QLX_FILTER_EVENT_DATA_COME));
    const SectionData_st& data = info.eventRecord[0].sectionData;
    EXPECT_EQ(Bytes(data.pBuffer, data.pBuffer + data.uLength), pat_);
    EXPECT_EQ(info.sem, nullptr);
    Demux_FreeEvents(&info);
    EXPECT_EQ(info.eventRecord[0].sectionData.pBuffer, nullptr);
    takeDown();
}

TEST_F(DemuxModule, ATimeOutIsNoFailureAndStandsInTheLog) {
    bringUp();
    RequestInfo_st info = request(PAT_PID, 0x99);
    EXPECT_EQ(Demux_RequestSection(QLX_DEMUX_0, &info), 0u);
    ASSERT_EQ(info.eventReceivedCount, 1u);
    EXPECT_EQ(info.eventRecord[0].eEvent, static_cast<uint32_t>(QLX_FILTER_EVENT_TIMEOUT));
    takeDown();
}

/** A step of a request that fails: what is printed, and which calls undo the ones before. */
struct UndoRow {
    const char* function;
    const char* text;
    const char* calls;
};

const UndoRow undoRows[] = {
    {"QLX_DemuxCreateSectionFilter", "QLX_DemuxCreateSectionFilter(eDemuxId, &hFilter)",
     "DemuxCreateSectionFilter "},
    {"QLX_SectionFilterConfigure", "QLX_SectionFilterConfigure(hFilter, &stParams)",
     "DemuxCreateSectionFilter SectionFilterConfigure SectionFilterDelete "},
    {"QLX_SectionFilterRegisterCallback",
     "QLX_SectionFilterRegisterCallback(hFilter, pRequestInfo , Demux_SectionFilterCb)",
     "DemuxCreateSectionFilter SectionFilterConfigure SectionFilterRegisterCallback "
     "SectionFilterDelete "},
    {"QLX_SectionFilterStart", "QLX_SectionFilterStart(hFilter)",
     "DemuxCreateSectionFilter SectionFilterConfigure SectionFilterRegisterCallback "
     "SectionFilterStart SectionFilterUnRegisterCallback SectionFilterDelete "},
    {"QLX_SectionFilterStop", "QLX_SectionFilterStop(hFilter)",
     "DemuxCreateSectionFilter SectionFilterConfigure SectionFilterRegisterCallback "
     "SectionFilterStart SectionFilterStop SectionFilterUnRegisterCallback SectionFilterDelete "},
    {"QLX_SectionFilterUnRegisterCallback",
     "QLX_SectionFilterUnRegisterCallback( hFilter, Demux_SectionFilterCb)",
     "DemuxCreateSectionFilter SectionFilterConfigure SectionFilterRegisterCallback "
     "SectionFilterStart SectionFilterStop SectionFilterUnRegisterCallback SectionFilterDelete "},
    {"QLX_SectionFilterDelete", "QLX_SectionFilterDelete( hFilter)",
     "DemuxCreateSectionFilter SectionFilterConfigure SectionFilterRegisterCallback "
     "SectionFilterStart SectionFilterStop SectionFilterUnRegisterCallback SectionFilterDelete "},
};

TEST_F(DemuxModule, AFailedStepOfARequestIsToldAndUndone) {
    for (const UndoRow& row : undoRows) {
        bringUp();
        takeOutput();
        RequestInfo_st info = request(PAT_PID, 0);
        addFault(std::string(row.function) + " call=1 return=77");
        qlx_sim_record(1);
        EXPECT_EQ(Demux_RequestSection(QLX_DEMUX_0, &info), 1u) << row.function;
        EXPECT_EQ(filterCalls(recordedCalls()), row.calls) << row.function;
        qlx_sim_clear_faults();
        EXPECT_NE(
            takeOutput().find(std::string("FUNC:") + row.text + " RETURN ERROR VALUE [77] \n"),
            std::string::npos)
            << row.function;
        EXPECT_EQ(info.sem, nullptr) << row.function;
        Demux_FreeEvents(&info);
        if (row.function == std::string("QLX_SectionFilterDelete"))
            atRest_ = deviceState();  // the filter that the device would not let go
        takeDown();
    }
}

TEST_F(DemuxModule, PesRequestsAreUndoneInTheSameWay) {
    bringUp();
    PesRequestInfo_st info{};
    info.uPid = 0x200;
    info.uTimeOutMs = 100;
    info.uBufferSize = REQUEST_BUFFER_SIZE;
    addFault("QLX_PesFilterStart call=1 return=77");
    qlx_sim_record(1);
    EXPECT_EQ(Demux_RequestPes(QLX_DEMUX_0, &info), 1u);
    EXPECT_EQ(filterCalls(recordedCalls()),
              "DemuxCreatePesFilter PesFilterConfigure PesFilterRegisterCallback PesFilterStart "
              "PesFilterUnRegisterCallback PesFilterDelete ");
    EXPECT_EQ(Demux_RequestPes(QLX_DEMUX_0, &info), 0u);
    Demux_FreePesEvents(&info);
    takeDown();
}

TEST_F(DemuxModule, CrcModesDecideOnADamagedSection) {
    bringUp();
    RequestInfo_st checked = request(DAMAGED_PID, 0x42);
    EXPECT_EQ(Demux_RequestSection(QLX_DEMUX_0, &checked), 0u);
    EXPECT_EQ(checked.eventRecord[0].eEvent, static_cast<uint32_t>(QLX_FILTER_EVENT_TIMEOUT));
    RequestInfo_st unchecked = request(DAMAGED_PID, 0x42);
    unchecked.eCrcMode = QLX_SECTION_CRC_NO_CHECK;
    EXPECT_EQ(Demux_RequestSection(QLX_DEMUX_0, &unchecked), 0u);
    EXPECT_EQ(unchecked.eventRecord[0].eEvent, static_cast<uint32_t>(QLX_FILTER_EVENT_DATA_COME));
    Demux_FreeEvents(&unchecked);
    takeDown();
}

/** Version, extension and mask of a request, and the version of the section that it brings. */
struct FormRow {
    const char* what;
    uint8_t tableId;
    uint8_t version;
    uint32_t versionMatch;
    int extension;
    int mask;
    /** -1: a time-out. */
    int expected;
};

const FormRow formRows[] = {
    {"this version", 0x42, 4, 1, -1, -1, 4},
    {"another version", 0x42, 4, 0, -1, -1, 3},
    {"a version that is not there", 0x42, 9, 1, -1, -1, -1},
    {"the extension", 0x42, REQUEST_ANY_VERSION, 0, 7, -1, 3},
    {"extension and version", 0x42, 4, 1, 7, -1, 4},
    {"another extension", 0x42, REQUEST_ANY_VERSION, 0, 8, -1, -1},
    {"the high byte of the extension", 0x42, REQUEST_ANY_VERSION, 0, 0x107, -1, -1},
    {"a neighbour under the mask", 0x43, REQUEST_ANY_VERSION, 0, -1, 0xfe, 3},
    {"a neighbour without it", 0x43, REQUEST_ANY_VERSION, 0, -1, 0xff, -1},
};

TEST_F(DemuxModule, TheFormsOfARequestSelectTheirSection) {
    bringUp();
    for (const FormRow& row : formRows) {
        RequestInfo_st info = request(SDT_PID, row.tableId);
        info.uVersion = row.version;
        info.bVersionMatch = row.versionMatch;
        info.uExtensionTableId = static_cast<uint16_t>(row.extension);
        uint32_t result;
        if (row.mask >= 0)
            result =
                Demux_RequestSectionWithMask(QLX_DEMUX_0, &info, static_cast<uint8_t>(row.mask));
        else if (row.extension >= 0)
            result = Demux_RequestSectionWithExtensionTableId(QLX_DEMUX_0, &info);
        else
            result = Demux_RequestSection(QLX_DEMUX_0, &info);
        EXPECT_EQ(result, 0u) << row.what;
        ASSERT_EQ(info.eventReceivedCount, 1u) << row.what;
        const SectionEvent_st& first = info.eventRecord[0];
        if (row.expected < 0) {
            EXPECT_EQ(first.eEvent, static_cast<uint32_t>(QLX_FILTER_EVENT_TIMEOUT)) << row.what;
            continue;
        }
        ASSERT_EQ(first.eEvent, static_cast<uint32_t>(QLX_FILTER_EVENT_DATA_COME)) << row.what;
        const int version = first.sectionData.pBuffer[5] >> 1 & 0x1f;
        // Where both versions fit, whichever is on the air next comes.
        if (row.version != REQUEST_ANY_VERSION) {
            EXPECT_EQ(version, row.expected) << row.what;
        }
        Demux_FreeEvents(&info);
    }
    takeDown();
}

TEST_F(DemuxModule, MoreEventsThanARecordHoldsAreCounted) {
    bringUp();
    RequestInfo_st info = request(PAT_PID, 0);
    info.bContinuous = QLX_TRUE;
    info.uTimeOutMs = 20000;
    EXPECT_EQ(Demux_RequestSectionWaiteBySleep(QLX_DEMUX_0, &info), 0u);
    EXPECT_GT(info.eventReceivedCount, 390u);
    EXPECT_EQ(Demux_RecordedEvents(&info), 256u);
    EXPECT_NE(takeOutput().find("Can not record too many filter event !"), std::string::npos);
    for (const SectionEvent_st& event : info.eventRecord)
        ASSERT_NE(event.sectionData.pBuffer, nullptr);
    Demux_FreeEvents(&info);
    takeDown();
}

TEST_F(DemuxModule, TwoThreadsRequestOnOneDemultiplexer) {
    bringUp();
    DemuxThreadRequest_st requests[2] = {};
    pthread_t threads[2];
    for (int i = 0; i < 2; i++) {
        requests[i] = {QLX_DEMUX_0, 30, 10, request(i == 0 ? PAT_PID : SDT_PID, i == 0 ? 0 : 0x42)};
        ASSERT_EQ(pthread_create(&threads[i], nullptr, Demux_RequestSectionThread, &requests[i]),
                  0);
    }
    for (int i = 0; i < 2; i++) {
        EXPECT_EQ(tc_joinThread(threads[i]), PASS);
        EXPECT_EQ(requests[i].req.eventReceivedCount, 30u) << "requests go on counting";
    }
    takeDown();
}

TEST_F(DemuxModule, AThreadStopsAtTheFirstRoundWithoutData) {
    bringUp();
    DemuxThreadRequest_st thread = {QLX_DEMUX_0, 5, 10, request(PAT_PID, 0)};
    addFault("SectionFilter call=3 drop");
    pthread_t joined;
    ASSERT_EQ(pthread_create(&joined, nullptr, Demux_RequestSectionThreadNoFreeBuffer, &thread), 0);
    // The copies of the rounds before are still there, and count as data of this round.
    EXPECT_EQ(tc_joinThread(joined), PASS);
    EXPECT_NE(thread.req.eventRecord[0].sectionData.pBuffer, nullptr);
    Demux_FreeEvents(&thread.req);
    qlx_sim_clear_faults();
    thread.req = request(PAT_PID, 0);
    addFault("SectionFilter call=3 drop");
    ASSERT_EQ(pthread_create(&joined, nullptr, Demux_RequestSectionThread, &thread), 0);
    EXPECT_EQ(tc_joinThread(joined), FAIL);
    EXPECT_EQ(thread.req.eventReceivedCount, 2u);
    qlx_sim_clear_faults();
    takeDown();
}

TEST_F(DemuxModule, ARequestOnAnExhaustedPoolFails) {
    bringUp();
    QLX_DemuxCapability capability{};
    ASSERT_EQ(QLX_DemuxGetCapability(QLX_DEMUX_0, &capability), 0);
    std::vector<uint32_t> handles(capability.FilterNum);
    for (uint32_t& handle : handles)
        ASSERT_EQ(QLX_DemuxCreatePesFilter(QLX_DEMUX_0, &handle), 0);
    RequestInfo_st info = request(PAT_PID, 0);
    EXPECT_EQ(Demux_RequestSection(QLX_DEMUX_0, &info), 1u);
    EXPECT_EQ(info.eventReceivedCount, 0u);
    EXPECT_EQ(QLX_PesFilterDelete(handles.back()), 0);
    EXPECT_EQ(Demux_RequestSection(QLX_DEMUX_0, &info), 0u) << "one place is free again";
    Demux_FreeEvents(&info);
    handles.pop_back();
    for (uint32_t handle : handles)
        EXPECT_EQ(QLX_PesFilterDelete(handle), 0);
    takeDown();
}

// Semaphores and callbacks.

TEST(DemuxSemaphore, AnswersForWhatIsNotThere) {
    sem_t* sem = nullptr;
    EXPECT_EQ(Demux_SemInit(nullptr), 1u);
    EXPECT_EQ(Demux_SemPost(nullptr), 1u);
    EXPECT_EQ(Demux_SemTimedWait(100000, nullptr), 0u) << "nobody waits";
    EXPECT_EQ(Demux_SemDestroy(nullptr), 1u);
    EXPECT_EQ(Demux_SemDestroy(&sem), 0u);
    ASSERT_EQ(Demux_SemInit(&sem), 0u);
    EXPECT_EQ(Demux_SemTimedWait(30, sem), 1u);
    EXPECT_EQ(Demux_SemPost(sem), 0u);
    EXPECT_EQ(Demux_SemTimedWait(30, sem), 0u);
    EXPECT_EQ(Demux_SemDestroy(&sem), 0u);
    EXPECT_EQ(sem, nullptr);
}

TEST(DemuxSemaphore, AWaitTakesItsTimeAcrossSeconds) {
    sem_t* sem = nullptr;
    ASSERT_EQ(Demux_SemInit(&sem), 0u);
    for (uint32_t ms : {0, 1, 250, 250, 250, 250, 999, 1000, 1500, 22000}) {
        Stopwatch stopwatch;
        EXPECT_EQ(Demux_SemTimedWait(ms, sem), 1u);
        EXPECT_EQ(stopwatch.ms(), ms);
    }
    EXPECT_EQ(Demux_SemDestroy(&sem), 0u);
}

TEST(DemuxCallback, StoresWhatEachEventBrings) {
    RequestInfo_st info{};
    uint32_t code = 0x1234;
    testing::internal::CaptureStdout();
    Demux_SectionFilterCb(QLX_FILTER_EVENT_OVERFLOW, &info, nullptr);
    Demux_SectionFilterCb(QLX_FILTER_EVENT_ERROR, &info, &code);
    Demux_SectionFilterCb(QLX_FILTER_EVENT_STATE, &info, &code);
    QLX_FilterData nothing = {nullptr, 9, 77};
    Demux_SectionFilterCb(QLX_FILTER_EVENT_DATA_COME, &info, &nothing);
    Demux_SectionFilterCb(QLX_FILTER_EVENT_DATA_COME, &info, nullptr);
    Demux_SectionFilterCb(QLX_FILTER_EVENT_ERROR, &info, nullptr);
    Demux_SectionFilterCb(QLX_FILTER_EVENT_TIMEOUT, nullptr, nullptr);
    EXPECT_NE(testing::internal::GetCapturedStdout().find("ASSERT pUserdata != NULL \n"),
              std::string::npos);
    EXPECT_EQ(info.eventReceivedCount, 6u);
    EXPECT_EQ(info.eventRecord[0].eEvent, 2u);
    EXPECT_EQ(info.eventRecord[1].uValue, 0x1234u);
    EXPECT_EQ(info.eventRecord[2].uValue, reinterpret_cast<uintptr_t>(&code));
    EXPECT_EQ(info.eventRecord[3].sectionData.pBuffer, nullptr);
    EXPECT_EQ(info.eventRecord[3].sectionData.uLength, 0u);
    EXPECT_EQ(info.eventRecord[3].sectionData.uReserved, 77u);
    EXPECT_EQ(info.eventRecord[4].sectionData.pBuffer, nullptr);
    EXPECT_EQ(info.eventRecord[5].uValue, 0u);
}

TEST(DemuxCallback, TellsAPacketAsASectionButForItsBytes) {
    RequestInfo_st info{};
    info.tableId = 0x42;
    uint8_t packet[] = {0x47, 0xab, 0xcd, 0x10};
    QLX_FilterData data = {packet, sizeof packet, 0};
    std::string told[2];
    for (int i = 0; i < 2; i++) {
        testing::internal::CaptureStdout();
        (i == 0 ? Demux_SectionFilterCb : Demux_PacketFilterCb)(QLX_FILTER_EVENT_DATA_COME, &info,
                                                                &data);
        std::istringstream lines(testing::internal::GetCapturedStdout());
        for (std::string line; std::getline(lines, line);)
            told[i] += line.substr(line.find(']') + 1) + "\n";
        EXPECT_EQ(info.eventRecord[i].sectionData.uLength, sizeof packet);
    }
    EXPECT_EQ(told[1],
              "table 0x42, Demux_SectionFilterCb 8\n"
              "table 0x42, Demux_SectionFilterCb (data come), section data length: 4\n"
              "section data: 4 \r\n");
    EXPECT_EQ(told[0], told[1] + "47 ab cd 10 \n");
    Demux_FreeEvents(&info);
}

// Wrappers for other modules.

TEST_F(DemuxModule, TheStartOfADemultiplexerIsUndoneWhereItFails) {
    const struct {
        const char* fault;
        const char* calls;
    } rows[] = {
        {"QLX_DemuxOpen call=1 return=77", "DemuxOpen "},
        {"QLX_DemuxConnectSource call=1 return=77", "DemuxOpen DemuxConnectSource DemuxClose "},
        {"QLX_DemuxStart call=1 return=77", "DemuxOpen DemuxConnectSource DemuxStart DemuxClose "},
    };
    const QLX_Source source = {QLX_SOURCE_TYPE_RECORD, 0, 0};
    ASSERT_EQ(QLX_DemuxInit(), 0);
    for (const auto& row : rows) {
        addFault(row.fault);
        qlx_sim_record(1);
        EXPECT_EQ(TC_DEMUX_START(QLX_DEMUX_1, &source), FAIL);
        EXPECT_EQ(filterCalls(recordedCalls()), row.calls);
        qlx_sim_clear_faults();
    }
    EXPECT_EQ(TC_DEMUX_START(QLX_DEMUX_1, &source), PASS);
    addFault("QLX_DemuxStop call=1 return=77");
    qlx_sim_record(1);
    EXPECT_EQ(TC_DEMUX_STOP(QLX_DEMUX_1), FAIL);
    EXPECT_EQ(filterCalls(recordedCalls()), "DemuxStop DemuxClose ");
    qlx_sim_clear_faults();
    EXPECT_EQ(QLX_DemuxDeInit(), 0);
}

// Judgements of the cases, each with a fault that it must catch.

/** A case, a fault, and the verdict. */
struct VerdictRow {
    const char* name;
    const char* fault;
    uint32_t result;
};

const VerdictRow verdictRows[] = {
    {"TC_DEMUX_SectionDvbc_016", "", PASS},
    {"TC_DEMUX_SectionDvbc_016", "SectionFilter call=1 corrupt=9:55", FAIL},
    {"TC_DEMUX_SectionDvbc_016", "SectionFilter call=1 repeat=1", FAIL},
    {"TC_DEMUX_SectionDvbc_016", "SectionFilter call=1 drop", FAIL},
    {"TC_DEMUX_SectionDvbc_017", "SectionFilter call=1 corrupt=0:42", FAIL},
    {"TC_DEMUX_SectionDvbc_003", "", PASS},
    {"TC_DEMUX_SectionDvbc_004", "", PASS},
    // The stop that only says that it stopped.
    {"TC_DEMUX_SectionDvbc_004", "QLX_SectionFilterStop call=1 return=0", FAIL},
    {"TC_DEMUX_SectionDvbc_006", "", PASS},
    {"TC_DEMUX_SectionDvbc_006", "SectionFilter call=1 drop", FAIL},
    {"TC_DEMUX_SectionDvbc_007", "SectionFilter call=1 repeat=1", FAIL},
    {"TC_DEMUX_SectionDvbc_021", "", PASS},
    {"TC_DEMUX_SectionDvbc_021", "SectionFilter call=32 corrupt=9:55", FAIL},
    {"TC_DEMUX_SectionDvbc_023", "", PASS},
    {"TC_DEMUX_SectionDvbc_023", "SectionFilter call=200 drop", FAIL},
    {"TC_DEMUX_SectionDvbc_1000", "", PASS},
    {"TC_DEMUX_SectionDvbc_1001", "", PASS},
    {"TC_DEMUX_SectionDvbc_1000", "QLX_CISetTsConfig call=1 return=77", FAIL},
    // A table that this multiplex does not carry.
    {"TC_DEMUX_SectionDvbc_120", "", FAIL},
    {"TC_DEMUX_SectionDvbc_168", "", FAIL},
};

TEST_F(DemuxModule, EachJudgementCatchesItsFault) {
    for (const VerdictRow& row : verdictRows) {
        EXPECT_EQ(runCase(row.name, row.fault), row.result) << row.name << " " << row.fault;
        EXPECT_EQ(deviceState(), "Tuner initialised\n") << row.name << " " << row.fault;
    }
}

TEST_F(DemuxModule, OneSectionInFifteenSecondsIsTooFew) {
    const std::string name = "TC_DEMUX_SectionAtscc_033";
    snprintf(g_tcDemuxConfig.stAtsccTs.tsFilePath[0], DEMUX_TS_PATH_SIZE, "%s", path().c_str());
    event("air ATSC-C/" + std::to_string(zk_testConfig.atscC[0].uFrequency) + " STREAM=" + path());
    EXPECT_EQ(runCaseUnder(DemuxModuleAtsc, name, "SectionFilter call=3+ drop"), PASS);
    EXPECT_EQ(runCaseUnder(DemuxModuleAtsc, name, "SectionFilter call=2+ drop"), FAIL);
}

TEST_F(DemuxModule, AnEventBeforeTheStartFails) {
    // The device starts the case's filter by itself, while the case waits for silence.
    pthread_t device;
    auto start = [](void* filter) -> void* {
        sleep(1);
        return QLX_SectionFilterStart(*static_cast<uint32_t*>(filter)) == 0 ? filter : nullptr;
    };
    uint32_t filter = 1;
    void* started = nullptr;
    ASSERT_EQ(pthread_create(&device, nullptr, start, &filter), 0);
    EXPECT_EQ(runCase("TC_DEMUX_SectionDvbc_003"), FAIL);
    pthread_join(device, &started);
    EXPECT_EQ(started, &filter);
}

TEST_F(DemuxModule, EachWayThroughTheSlotIsAskedForByItsMode) {
    const struct {
        const char* name;
        const char* mode;
    } rows[] = {
        {"TC_DEMUX_SectionDvbc_1000", "{eMode=1 "},
        // Members that are 0 are not shown.
        {"TC_DEMUX_SectionDvbc_1001", "{stSource="},
    };
    static_assert(QLX_CI_TS_MODE_BYPASS == 0 && QLX_CI_TS_MODE_PASS_THROUGH == 1, "as shown");
    for (const auto& row : rows) {
        qlx_sim_record(1);
        EXPECT_EQ(runCase(row.name), PASS);
        qlx_sim_record(0);
        std::string calls = recordedCalls();
        size_t call = calls.find("QLX_CISetTsConfig(slot=0 config=");
        ASSERT_NE(call, std::string::npos) << calls;
        EXPECT_EQ(calls.find(row.mode, call), calls.find('{', call)) << calls.substr(call, 100);
    }
}

TEST_F(DemuxModule, AChangedByteOnTheAirFailsWhatComparesIt) {
    ASSERT_EQ(runCase("TC_DEMUX_SectionDvbc_017"), PASS);
    // A byte of a programme number, behind header and pointer field; the CRC is then wrong, too.
    for (size_t packet : patAt_)
        event("stream air.ts byte " + std::to_string(packet + 5 + 9) + " 55");
    EXPECT_EQ(runCase("TC_DEMUX_SectionDvbc_017"), FAIL) << "compared";
    EXPECT_EQ(runCase("TC_DEMUX_SectionDvbc_016"), FAIL) << "dropped for its CRC";
    EXPECT_EQ(runCase("TC_DEMUX_SectionDvbc_003"), PASS);
    event("stream air.ts intact");
    EXPECT_EQ(runCase("TC_DEMUX_SectionDvbc_017"), PASS);
    EXPECT_EQ(runCase("TC_DEMUX_SectionDvbc_016"), PASS);
}

TEST_F(DemuxModule, ACaseOnATunerThatDoesNotLockEndsAtOnce) {
    event("cable 0 out");
    qlx_sim_record(1);
    EXPECT_EQ(runCase("TC_DEMUX_SectionDvbc_016"), FAIL);
    EXPECT_EQ(recordedCalls().find("QLX_DemuxInit"), std::string::npos);
    std::string out = takeOutput();
    EXPECT_NE(out.find("FUNC:TC_TUNER_START(eTunerId, QLX_TRANSMISSION_SYSTEM_DVB_C, "
                       "g_tcDemuxConfig.stDvbcTs.uTsFileChannelId[0]) RETURN ERROR VALUE [1] \n"),
              std::string::npos);
    EXPECT_NE(out.find("[TC_DEMUX_SectionDvbc_016] TEST Result: FAIL"), std::string::npos);
    EXPECT_EQ(deviceState(), "Tuner initialised\n");
}

TEST_F(DemuxModule, OnlyOneConnectionIsGated) {
    EXPECT_EQ(runCaseByName(DemuxModuleCommon, "TC_DEMUX_Connect_028"), PASS);
    zk_testConfig.features[FEATURE_PVR_PLAYBACK_DEMUX1] = 0;
    qlx_sim_record(1);
    EXPECT_EQ(runCaseByName(DemuxModuleCommon, "TC_DEMUX_Connect_028"),
              static_cast<uint32_t>(TC_NOT_APPLICABLE));
    EXPECT_EQ(recordedCalls(), "");
    EXPECT_EQ(runCaseByName(DemuxModuleCommon, "TC_DEMUX_Connect_027"), PASS);
}

TEST_F(DemuxModule, AllTablesAsksForThoseOfTheFeaturesOnly) {
    for (int i = FEATURE_PAT_TABLE; i <= FEATURE_STT_TABLE; i++)
        zk_testConfig.features[i] = 0;
    qlx_sim_record(1);
    EXPECT_EQ(runCase("TC_DEMUX_SectionDvbc_168"), PASS) << "no table, no thread";
    EXPECT_EQ(recordedCalls().find("SectionFilter"), std::string::npos);
    zk_testConfig.features[FEATURE_PAT_TABLE] = 1;
    zk_testConfig.features[FEATURE_SDT_TABLE] = 1;  // plays no part
    qlx_sim_record(1);
    EXPECT_EQ(runCase("TC_DEMUX_SectionDvbc_168"), PASS);
    const std::string calls = recordedCalls();
    EXPECT_EQ(calls.find("QLX_DemuxCreateSectionFilter"),
              calls.rfind("QLX_DemuxCreateSectionFilter"));
}

/** Cases that look at their events while a filter runs: what the thread sanitizer holds. */
class DemuxRace : public DemuxModule {};

TEST_F(DemuxRace, EventsAreLookedAtWhileTheFilterRuns) {
    // With a stop that only says so, the count goes on behind it.
    EXPECT_EQ(runCase("TC_DEMUX_SectionDvbc_004", "QLX_SectionFilterStop call=1 return=0"), FAIL);
    EXPECT_EQ(runCase("TC_DEMUX_SectionDvbc_006"), PASS);
    EXPECT_EQ(runCase("TC_DEMUX_SectionDvbc_003"), PASS);
}

TEST_F(DemuxModule, ASetUpWithoutTunersFails) {
    EXPECT_EQ(Demux_TestTeardown(), PASS);
    addFault("QLX_TunerInit call=1 return=77");
    EXPECT_EQ(Demux_TestSetup(), 1u);
    qlx_sim_clear_faults();
    EXPECT_EQ(Demux_TestSetup(), PASS);
}

}  // namespace

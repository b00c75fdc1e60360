// The tuner harness: the order of its calls and of their undoing, how long it waits for whom, and
// what it believes of events and signal information.
#include "testcase/tuner/tuner_harness.h"

#include <dlfcn.h>
#include <semaphore.h>
#include <string.h>

#include "tests/shared/module_bench.h"

namespace {

/** Called when a semaphore is posted, before it is. */
void (*postHook)();

}  // namespace

// The binary's own sem_post, so that a test sees the state at the moment of a post.
extern "C" int sem_post(sem_t* semaphore) noexcept {
    typedef int (*Post)(sem_t*);
    static const Post next = reinterpret_cast<Post>(dlsym(RTLD_NEXT, "sem_post"));
    if (postHook != nullptr)
        postHook();
    return next(semaphore);
}

namespace {

class TunerHarness : public ModuleBench {};

const uint32_t PASS = TC_SUCCESS;
const uint32_t FAIL = TC_FAILURE;

TEST_F(TunerHarness, InitAndDeinitReachTheLibraryOnce) {
    qlx_sim_record(1);
    EXPECT_EQ(TC_TUNER_DEINIT(), PASS);
    EXPECT_EQ(TC_TUNER_INIT(), PASS);
    EXPECT_EQ(TC_TUNER_INIT(), PASS);
    EXPECT_EQ(TC_TUNER_DEINIT(), PASS);
    EXPECT_EQ(TC_TUNER_DEINIT(), PASS);
    EXPECT_EQ(recordedCalls(), "QLX_TunerInit()=0\nQLX_TunerDeInit()=0\n");
    std::string out = takeOutput();
    EXPECT_EQ(count(out, "[TC_TUNER_INIT] TEST Result: SUCCESS\n"), 2u);
    EXPECT_EQ(count(out, "[TC_TUNER_DEINIT] TEST Result: SUCCESS\n"), 3u);
}

TEST_F(TunerHarness, AFailedInitCanBeRepeated) {
    addFault("QLX_TunerInit call=1 return=1");
    EXPECT_EQ(TC_TUNER_INIT(), FAIL);
    EXPECT_NE(takeOutput().find("FUNC:QLX_TunerInit() RETURN ERROR VALUE [1] \n"),
              std::string::npos);
    EXPECT_EQ(TC_TUNER_INIT(), PASS);
    EXPECT_EQ(TC_TUNER_START(0, QLX_TRANSMISSION_SYSTEM_DVB_C, 0), PASS);
    EXPECT_EQ(TC_TUNER_STOP(0), PASS);
    EXPECT_EQ(TC_TUNER_DEINIT(), PASS);
    EXPECT_EQ(deviceState(), "");
}

/** One bring-up under a fault: what it answers, and which calls it makes. */
struct BringUp {
    const char* fault;
    uint32_t result;
    const char* calls;
};

/** The names of recorded calls and callbacks, without arguments. */
std::string namesOf(const std::string& calls) {
    std::istringstream lines(calls);
    std::string names;
    for (std::string line; std::getline(lines, line);) {
        size_t from = line.find("QLX_Tuner") == 0 ? strlen("QLX_Tuner") : 0;
        names += line.substr(from, line.find('(') - from) + " ";
    }
    return names;
}

TEST_F(TunerHarness, StartUndoesWhatItDid) {
    const BringUp rows[] = {
        {nullptr, PASS,
         "Open RegisterCallback SetTuningParam callback TunerEvent GetSignalInfo GetSignalInfo "
         "GetTuningParam "},
        {"QLX_TunerOpen return=5", FAIL, "Open "},
        {"QLX_TunerRegisterCallback return=5", FAIL, "Open RegisterCallback Close "},
        {"QLX_TunerSetTuningParam return=5", FAIL,
         "Open RegisterCallback SetTuningParam UnRegisterCallback Close "},
        {"QLX_TunerGetSignalInfo call=1 return=5", FAIL,
         "Open RegisterCallback SetTuningParam callback TunerEvent GetSignalInfo "
         "UnRegisterCallback Close "},
        {"QLX_TunerGetSignalInfo call=2 return=5", FAIL,
         "Open RegisterCallback SetTuningParam callback TunerEvent GetSignalInfo GetSignalInfo "
         "UnRegisterCallback Close "},
        {"QLX_TunerGetTuningParam return=5", FAIL,
         "Open RegisterCallback SetTuningParam callback TunerEvent GetSignalInfo GetSignalInfo "
         "GetTuningParam UnRegisterCallback Close "},
    };
    ASSERT_EQ(TC_TUNER_INIT(), PASS);
    for (const BringUp& row : rows) {
        std::string fault = row.fault != nullptr ? row.fault : "none";
        if (row.fault != nullptr)
            addFault(row.fault);
        takeOutput();
        qlx_sim_record(1);
        EXPECT_EQ(TC_TUNER_START(1, QLX_TRANSMISSION_SYSTEM_DVB_T, 0), row.result) << fault;
        EXPECT_EQ(namesOf(recordedCalls()), row.calls) << fault;
        qlx_sim_clear_faults();
        EXPECT_EQ(count(takeOutput(), row.result == PASS ? "[TC_TUNER_START] TEST Result: SUCCESS\n"
                                                         : "[TC_TUNER_START] TEST Result: FAIL\n"),
                  1u)
            << fault;
        if (row.result == PASS) {
            EXPECT_EQ(TC_TUNER_STOP(1), PASS);
        }
    }
    EXPECT_EQ(TC_TUNER_DEINIT(), PASS);
    EXPECT_EQ(deviceState(), "");
}

TEST_F(TunerHarness, OtherWrappersUndoWhatTheyDid) {
    ASSERT_EQ(TC_TUNER_INIT(), PASS);
    qlx_sim_record(1);
    addFault("QLX_TunerRegisterCallback return=5");
    EXPECT_EQ(TC_TUNER_OPEN(1), FAIL);
    EXPECT_EQ(namesOf(recordedCalls()), "Open RegisterCallback Close ");
    qlx_sim_clear_faults();
    qlx_sim_record(1);
    addFault("QLX_TunerSetTuningParam return=5");
    EXPECT_EQ(TC_TUNER_START_IGNOR_LOCKED(1), FAIL);
    EXPECT_EQ(namesOf(recordedCalls()),
              "Open RegisterCallback SetTuningParam UnRegisterCallback Close ");
    qlx_sim_clear_faults();
    // A failed tuning on a tuner of the caller's leaves it to the caller.
    EXPECT_EQ(TC_TUNER_OPEN(1), PASS);
    qlx_sim_record(1);
    addFault("QLX_TunerSetTuningParam return=5");
    EXPECT_EQ(TC_TUNER_TUNING_CHANNEL_ID(1, QLX_TRANSMISSION_SYSTEM_DVB_C, 1), FAIL);
    EXPECT_EQ(namesOf(recordedCalls()), "SetTuningParam ");
    qlx_sim_clear_faults();
    // The close is tried although the callback could not be unregistered.
    qlx_sim_record(1);
    addFault("QLX_TunerUnRegisterCallback return=5");
    EXPECT_EQ(TC_TUNER_CLOSE(1), FAIL);
    EXPECT_EQ(recordedCalls(),
              "QLX_TunerUnRegisterCallback(tuner=1 callback=set)=5 refused by a fault\n"
              "QLX_TunerClose(tuner=1)=0\n");
    EXPECT_EQ(TC_TUNER_DEINIT(), PASS);
}

TEST_F(TunerHarness, UnknownSystemTouchesNothing) {
    ASSERT_EQ(TC_TUNER_INIT(), PASS);
    zk_testConfig.tunerBlock.eTransmissionSystem[2] = 0;
    qlx_sim_record(1);
    EXPECT_EQ(TC_TUNER_START(2, 0, 0), FAIL);
    EXPECT_EQ(TC_TUNER_START(2, QLX_TRANSMISSION_SYSTEM_DVB_T2, 0), FAIL);
    EXPECT_EQ(TC_TUNER_START_IGNOR_LOCKED(2), FAIL);
    EXPECT_EQ(recordedCalls(), "");
    EXPECT_EQ(TC_TUNER_DEINIT(), PASS);
}

TEST_F(TunerHarness, StartIgnoringTheLockWaitsForNothing) {
    ASSERT_EQ(TC_TUNER_INIT(), PASS);
    event("cable 1 out");
    int64_t begin = nowMs();
    EXPECT_EQ(TC_TUNER_START_IGNOR_LOCKED(1), PASS);
    EXPECT_EQ(nowMs(), begin);
    EXPECT_EQ(TC_TUNER_STOP(1), PASS);
    EXPECT_EQ(TC_TUNER_DEINIT(), PASS);
}

/** A tuning with an outcome: system, how long it may take, and how long an answer takes. */
struct Wait {
    uint32_t system;
    int64_t silenceMs;
};

TEST_F(TunerHarness, SilenceLastsAsLongAsTheSystemMayTake) {
    const Wait rows[] = {
        {QLX_TRANSMISSION_SYSTEM_DVB_T, 2000},  {QLX_TRANSMISSION_SYSTEM_DVB_C, 2000},
        {QLX_TRANSMISSION_SYSTEM_ISDB_S, 2000}, {QLX_TRANSMISSION_SYSTEM_ISDB_S3, 2000},
        {QLX_TRANSMISSION_SYSTEM_DVB_S, 4000},  {QLX_TRANSMISSION_SYSTEM_ATSC_T3, 3000},
        {QLX_TRANSMISSION_SYSTEM_ATSC_T, 2000},
    };
    ASSERT_EQ(TC_TUNER_INIT(), PASS);
    ASSERT_EQ(TC_TUNER_OPEN(0), PASS);
    for (const Wait& row : rows) {
        addFault("TunerEvent drop");
        int64_t begin = nowMs();
        EXPECT_EQ(TC_TUNER_TUNING_CHANNEL_ID(0, row.system, 0), FAIL) << row.system;
        EXPECT_EQ(nowMs() - begin, row.silenceMs) << row.system;
        EXPECT_NE(takeOutput().find(
                      "FUNC:tuner_sem_timedwait(eTunerId, timeout) RETURN ERROR VALUE [1] \n"),
                  std::string::npos);
        qlx_sim_clear_faults();
        // The tuner stays open, and the next tuning is a new one.
        EXPECT_EQ(TC_TUNER_TUNING_CHANNEL_ID(0, row.system, 0), PASS) << row.system;
    }
    EXPECT_EQ(TC_TUNER_CLOSE(0), PASS);
    EXPECT_EQ(TC_TUNER_DEINIT(), PASS);
}

TEST_F(TunerHarness, AnUnlockedEventEndsTheWaitAndFails) {
    ASSERT_EQ(TC_TUNER_INIT(), PASS);
    event("cable 0 out");
    int64_t begin = nowMs();
    EXPECT_EQ(TC_TUNER_START(0, QLX_TRANSMISSION_SYSTEM_DVB_S, 0), FAIL);
    EXPECT_EQ(nowMs() - begin, 500);
    std::string out = takeOutput();
    EXPECT_NE(out.find("Tuner unlocked consume 500 ms\n"), std::string::npos);
    // Both the information and the event say 2 where 0 is expected.
    EXPECT_EQ(count(out, "]expect 0, but actually 2  \n"), 2u);
    EXPECT_EQ(TC_TUNER_DEINIT(), PASS);
}

TEST_F(TunerHarness, AnEventOfAnEarlierTuningWakesTheNextOne) {
    ASSERT_EQ(TC_TUNER_INIT(), PASS);
    addFault("TunerEvent call=1 repeat=1");
    EXPECT_EQ(TC_TUNER_START(0, QLX_TRANSMISSION_SYSTEM_DVB_T, 0), PASS);
    int64_t begin = nowMs();
    EXPECT_EQ(TC_TUNER_TUNING_CHANNEL_ID(0, QLX_TRANSMISSION_SYSTEM_DVB_T, 1), FAIL);
    EXPECT_EQ(nowMs(), begin) << "nothing drains the semaphore between tunings";
    EXPECT_EQ(TC_TUNER_STOP(0), PASS);
    EXPECT_EQ(TC_TUNER_DEINIT(), PASS);
}

TEST_F(TunerHarness, OtherStatusesAreStoredAndWakeNobody) {
    ASSERT_EQ(TC_TUNER_INIT(), PASS);
    ASSERT_EQ(TC_TUNER_START(0, QLX_TRANSMISSION_SYSTEM_DVB_T, 0), PASS);
    EXPECT_EQ(tuner_check_tuning_status(0, QLX_TUNER_STATUS_LOCKED), PASS);
    tuner_callback(0, nullptr, 3, nullptr);
    EXPECT_EQ(tuner_sem_timedwait(0, 1), FAIL);
    EXPECT_EQ(tuner_check_tuning_status(0, QLX_TUNER_STATUS_LOCKED), FAIL)
        << "the last event said something else";
    const struct {
        uint32_t status;
        uint32_t wakes;
    } rows[] = {{0, PASS}, {1, FAIL}, {2, PASS}, {4, FAIL}, {5, FAIL}, {6, PASS}, {7, FAIL}};
    for (const auto& row : rows) {
        tuner_callback(0, nullptr, row.status, nullptr);
        EXPECT_EQ(tuner_sem_timedwait(0, 1), row.wakes) << row.status;
    }
    tuner_callback(QLX_TUNER_MAX, nullptr, 0, nullptr);
    EXPECT_EQ(tuner_sem_timedwait(0, 1), FAIL) << "a tuner that does not exist wakes nobody";
    EXPECT_EQ(TC_TUNER_STOP(0), PASS);
    EXPECT_EQ(TC_TUNER_DEINIT(), PASS);
}

uint32_t statusAtPost;

TEST_F(TunerHarness, TheWaiterIsWokenBeforeTheStatusIsStored) {
    ASSERT_EQ(TC_TUNER_INIT(), PASS);
    event("cable 0 out");
    ASSERT_EQ(TC_TUNER_START(0, QLX_TRANSMISSION_SYSTEM_DVB_T, 0), FAIL);
    ASSERT_EQ(TC_TUNER_OPEN(0), PASS);
    tuner_callback(0, nullptr, QLX_TUNER_STATUS_PLP_LOCKED, nullptr);
    ASSERT_EQ(tuner_check_tuning_status(0, QLX_TUNER_STATUS_UNLOCKED), FAIL);
    statusAtPost = 99;
    postHook = [] {
        postHook = nullptr;
        // The stored status is still the one of the event before.
        statusAtPost = tuner_check_tuning_status(0, QLX_TUNER_STATUS_UNLOCKED);
    };
    tuner_callback(0, nullptr, QLX_TUNER_STATUS_UNLOCKED, nullptr);
    postHook = nullptr;
    EXPECT_EQ(statusAtPost, FAIL);
    EXPECT_EQ(tuner_check_tuning_status(0, QLX_TUNER_STATUS_UNLOCKED), PASS);
    EXPECT_EQ(TC_TUNER_CLOSE(0), PASS);
    EXPECT_EQ(TC_TUNER_DEINIT(), PASS);
}

TEST_F(TunerHarness, PipesAskForTheStatusOfPipes) {
    QLX_TunerTuningParams record = {};
    ASSERT_EQ(TC_TUNER_INIT(), PASS);
    ASSERT_EQ(TC_TUNER_OPEN(0), PASS);
    ASSERT_EQ(tuner_get_params(0, QLX_TRANSMISSION_SYSTEM_ATSC_T3, 0, &record), PASS);
    ASSERT_GT(record.stAtscT3.uPlpNum, 0);
    EXPECT_EQ(TC_TUNER_TUNING(0, &record), PASS);
    EXPECT_EQ(tuner_check_tuning_status(0, QLX_TUNER_STATUS_PLP_LOCKED), PASS);
    record.stAtscT3.uPlpNum = 0;
    EXPECT_EQ(TC_TUNER_TUNING(0, &record), PASS);
    EXPECT_EQ(tuner_check_tuning_status(0, QLX_TUNER_STATUS_LOCKED), PASS);
    EXPECT_EQ(TC_TUNER_CLOSE(0), PASS);
    EXPECT_EQ(TC_TUNER_DEINIT(), PASS);
}

TEST_F(TunerHarness, SignalInformationIsComparedMemberByMember) {
    QLX_TunerSignalInfo good = {};
    ASSERT_EQ(TC_TUNER_INIT(), PASS);
    ASSERT_EQ(TC_TUNER_START(0, QLX_TRANSMISSION_SYSTEM_DVB_T, 0), PASS);
    ASSERT_EQ(QLX_TunerGetSignalInfo(0, &good), 0);
    const struct {
        uint32_t QLX_TunerSignalInfo::*member;
        uint32_t value;
        uint32_t result;
        const char* message;
    } rows[] = {
        {&QLX_TunerSignalInfo::uSignalPresent, 0, FAIL, "]expect 1, but actually 0  \n"},
        {&QLX_TunerSignalInfo::uSignalPresent, 7, PASS, "uSignalStrength="},
        {&QLX_TunerSignalInfo::eTuningType, 1, FAIL, "]expect 2, but actually 1  \n"},
        {&QLX_TunerSignalInfo::uTunedFrequency, 474001, FAIL,
         "]expect 474000, but actually 474001  \n"},
        {&QLX_TunerSignalInfo::eLockStatus, 6, PASS, "uCarrierToNoise="},
        {&QLX_TunerSignalInfo::eLockStatus, 2, FAIL, "]expect 1, but actually 0  \n"},
        {&QLX_TunerSignalInfo::eLockStatus, 3, FAIL, "]expect 1, but actually 0  \n"},
    };
    takeOutput();
    for (const auto& row : rows) {
        QLX_TunerSignalInfo info = good;
        info.*row.member = row.value;
        EXPECT_EQ(tuner_check_signalInfo(0, &info), row.result) << row.value;
        std::string out = takeOutput();
        EXPECT_NE(out.find(row.message), std::string::npos) << out;
        EXPECT_NE(out.find(row.result == PASS ? "[tuner_check_signalInfo] TEST Result: SUCCESS\n"
                                              : "[tuner_check_signalInfo] TEST Result: FAIL\n"),
                  std::string::npos);
    }
    EXPECT_EQ(TC_TUNER_STOP(0), PASS);
    EXPECT_EQ(TC_TUNER_DEINIT(), PASS);
}

TEST_F(TunerHarness, TheDumpHoldsToTheArraysOfTheRecord) {
    const struct {
        uint32_t system;
        size_t offset;
        const char* last;
    } rows[] = {
        {QLX_TRANSMISSION_SYSTEM_ATSC_T3,
         offsetof(QLX_TunerSignalInfo, stDigital.stAtscT3.uL1DetailPlpNum),
         "The tuning L1Details PlpInfo[63]: PLP id("},
        {QLX_TRANSMISSION_SYSTEM_ATSC_T3,
         offsetof(QLX_TunerSignalInfo, stDigital.stAtscT3.uLockedPlpNum),
         "The tuning PLPs All locked:1. \r\n"},
    };
    ASSERT_EQ(TC_TUNER_INIT(), PASS);
    for (const auto& row : rows) {
        ASSERT_EQ(TC_TUNER_START(0, row.system, 0), PASS);
        std::string fault = "QLX_TunerGetSignalInfo corrupt=" + std::to_string(row.offset) + ":ff";
        addFault(fault.c_str());
        takeOutput();
        EXPECT_EQ(tuner_check_tuning_params(0), PASS);
        std::string out = takeOutput();
        EXPECT_NE(out.find(row.last), std::string::npos) << out;
        EXPECT_LE(count(out, "L1Details PlpInfo["), 64u);
        EXPECT_LE(count(out, "The tuning PLP id("), 4u);
        qlx_sim_clear_faults();
        EXPECT_EQ(TC_TUNER_STOP(0), PASS);
    }
    EXPECT_EQ(TC_TUNER_DEINIT(), PASS);
}

TEST_F(TunerHarness, TheDumpFollowsTheSystem) {
    const struct {
        uint32_t system;
        const char* shown;
        const char* hidden;
    } rows[] = {
        {QLX_TRANSMISSION_SYSTEM_DVB_S, "The tuning frame lenth: ", "cell identifier"},
        {QLX_TRANSMISSION_SYSTEM_DVB_T, "The tuning cell identifier: ", "frame lenth"},
        {QLX_TRANSMISSION_SYSTEM_DVB_C, "The tuning signal strength: ", "frame lenth"},
        {QLX_TRANSMISSION_SYSTEM_ATSC_T3, "The tuning L1Details bonend BSID: ", "cell identifier"},
    };
    ASSERT_EQ(TC_TUNER_INIT(), PASS);
    for (const auto& row : rows) {
        ASSERT_EQ(TC_TUNER_START(2, row.system, 0), PASS);
        takeOutput();
        EXPECT_EQ(tuner_check_tuning_params(2), PASS);
        std::string out = takeOutput();
        EXPECT_NE(out.find("The parameters of Tuner 2 as follows: \r\n"), std::string::npos);
        EXPECT_EQ(count(out, "The tuning signal quality: "), 2u);
        EXPECT_NE(out.find(row.shown), std::string::npos) << row.system;
        EXPECT_EQ(out.find(row.hidden), std::string::npos) << row.system;
        EXPECT_EQ(TC_TUNER_STOP(2), PASS);
    }
    EXPECT_EQ(TC_TUNER_DEINIT(), PASS);
}

}  // namespace

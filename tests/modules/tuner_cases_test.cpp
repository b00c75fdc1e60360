// The cases of the module Tuner: what passes and fails them, to the millisecond and to the channel,
// and that they leave the library as they found it.
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <regex>
#include <sstream>

#include "testcase/tuner/tuner_harness.h"
#include "testcase/tuner/tuner_satellite.h"
#include "tests/shared/module_bench.h"

namespace {

const uint32_t PASS = TC_SUCCESS;
const uint32_t FAIL = TC_FAILURE;

/** Cases of the module, each on the device as the one before has left it. */
class TunerCases : public ModuleBench {
 protected:
    static uint32_t runCase(const std::string& name, const char* fault = nullptr) {
        return runCaseUnder(TunerModule, name, fault != nullptr ? fault : "");
    }
};

class TunerSatellite : public TunerCases {
 protected:
    void TearDown() override {
        if (!unicableFile_.empty())
            remove(unicableFile_.c_str());
        TunerCases::TearDown();
    }
    /** Loads the board's parameters with a Unicable LNB in the place of the universal one. */
    void useUnicable() {
        std::ifstream shipped(g_configFile.tuner);
        std::stringstream text;
        text << shipped.rdbuf();
        std::string changed = std::regex_replace(text.str(), std::regex("\nTUNER_LNB_TYPE_REAL=1"),
                                                 "\nTUNER_LNB_TYPE_REAL=0");
        ASSERT_NE(changed, text.str());
        char path[] = "/tmp/tuner_unicable_XXXXXX";
        int file = mkstemp(path);
        ASSERT_GE(file, 0);
        close(file);
        unicableFile_ = path;
        std::ofstream(path) << changed;
        snprintf(g_configFile.tuner, sizeof g_configFile.tuner, "%s", path);
        TC_TUNER_LOAD_CONFIG();
    }

 private:
    std::string unicableFile_;
};

TEST_F(TunerCases, EveryAutomaticCasePassesAndLeavesNothingBehind) {
    for (uint32_t i = 0; i < TunerModule.caseCount; i++) {
        const TcCase& testCase = TunerModule.cases[i];
        if (testCase.autoFlag != AUTO)
            continue;
        EXPECT_EQ(runCase(testCase.name), PASS) << testCase.name;
        EXPECT_EQ(deviceState(), "") << testCase.name;
        takeOutput();
    }
}

TEST_F(TunerCases, TheFirstFailureDecidesAndTheFrameIsUndone) {
    const struct {
        const char* name;
        const char* fault;
        const char* message;
    } rows[] = {
        {"TC_TUNER_OPEN_001", "QLX_TunerOpen return=0", "FUNC:QLX_TunerOpen(eTunerId) RETURN"},
        {"TC_TUNER_OPEN_005", "QLX_TunerOpen return=0", "FUNC:QLX_TunerOpen(4) RETURN ERROR VALUE"},
        {"TC_TUNER_OPEN_018", "QLX_TunerClose call=7 return=1", "QLX_TunerClose(eTunerId)"},
        // Another refusal than that of the parameters, and an acceptance.
        {"TC_TUNER_CheckInputTuningParams_007", "QLX_TunerSetTuningParam return=1",
         "FUNC:QLX_TunerSetTuningParam(eTunerId, &stTuningParams) RETURN ERROR VALUE [1] \n"},
        {"TC_TUNER_CheckInputTuningParams_012", "QLX_TunerSetTuningParam return=0", "VALUE [0] \n"},
        {"TC_TUNER_DVBC_Tuning_003", "QLX_TunerSetTuningParam call=2 return=1",
         "FUNC:tuner_test_tuning(eTunerId, &stTuningParams, QLX_TUNER_STATUS_LOCKED) RETURN"},
        {"TC_TUNER_ISDBT_Tuning_014", "QLX_TunerUnRegisterCallback return=1",
         "FUNC:QLX_TunerUnRegisterCallback(eTunerId, tuner_callback) RETURN ERROR VALUE [1] \n"},
        {"TC_TUNER_DVBS_Tuning_021", "TunerEvent drop", "tuner_sem_timedwait(eTunerId, timeout)"},
        {"TC_TUNER_DVBS_CheckSignalInfo_023", "QLX_TunerGetSignalInfo call=3 corrupt=117:00",
         "expect in (-2500, -1500], but actually "},
        {"TC_TUNER_DVBC_CheckSignalInfo_021", "QLX_TunerGetSignalInfo call=3 corrupt=12:00",
         "expect in (0, 100], but actually 0  \n"},
        {"TC_TUNER_ATSCT3_Tuning_006", "QLX_TunerGetSignalInfo call=2 corrupt=884:00",
         "expect 1, but actually 0  \n"},
    };
    for (const auto& row : rows) {
        takeOutput();
        EXPECT_EQ(runCase(row.name, row.fault), FAIL) << row.name << " with " << row.fault;
        std::string out = takeOutput();
        EXPECT_NE(out.find(row.message), std::string::npos) << row.name << ": " << out;
        EXPECT_NE(out.find(std::string("\033[1;31m[") + row.name + "]"), std::string::npos) << out;
        qlx_sim_reset();
    }
}

TEST_F(TunerCases, ACaseWithoutParametersOpensNothing) {
    zk_testConfig.tunerBlock.eTransmissionSystem[1] = 0;
    qlx_sim_record(1);
    EXPECT_EQ(runCase("TC_TUNER_Tuning_002"), FAIL);
    EXPECT_EQ(recordedCalls(), "");
    EXPECT_NE(
        takeOutput().find(
            "FUNC:tuner_get_params(eTunerId, 0, 0, &stTuningParams) RETURN ERROR VALUE [1] \n"),
        std::string::npos);
}

TEST_F(TunerCases, ConsumptionTurnsAtEightSeconds) {
    // Ten locks of 300 ms each, and one call that is late.
    const struct {
        const char* name;
        const char* fault;
        uint32_t result;
    } rows[] = {
        {"TC_TUNER_DVBC_Tuning_005", "QLX_TunerSetTuningParam call=1 delay=4999", PASS},
        {"TC_TUNER_DVBC_Tuning_005", "QLX_TunerSetTuningParam call=1 delay=5000", FAIL},
        {"TC_TUNER_ISDBS3_Tuning_006", "QLX_TunerSetTuningParam call=10 delay=4999", PASS},
        {"TC_TUNER_ISDBS3_Tuning_006", "QLX_TunerSetTuningParam call=10 delay=5000", FAIL},
        // Opening and closing lie inside the time of 007, initialising outside.
        {"TC_TUNER_DVBT_Tuning_007", "QLX_TunerClose call=3 delay=4999", PASS},
        {"TC_TUNER_DVBT_Tuning_007", "QLX_TunerClose call=3 delay=5000", FAIL},
        {"TC_TUNER_DVBT_Tuning_007", "QLX_TunerOpen call=10 delay=5000", FAIL},
        {"TC_TUNER_DVBT_Tuning_007", "QLX_TunerInit delay=5000", PASS},
        {"TC_TUNER_DVBT_Tuning_005", "QLX_TunerClose delay=5000", PASS},
        // The dump, the second reading of a tuning, is timed in the second pair alone.
        {"TC_TUNER_DVBS_Tuning_015", "QLX_TunerGetSignalInfo call=2 delay=5000", FAIL},
        {"TC_TUNER_DVBS_Tuning_015", "QLX_TunerGetSignalInfo call=20 delay=4999", PASS},
    };
    for (const auto& row : rows)
        EXPECT_EQ(runCase(row.name, row.fault), row.result) << row.name << " with " << row.fault;
    const struct {
        const char* name;
        size_t reads;
    } counts[] = {
        {"TC_TUNER_DVBC_Tuning_006", 10},  {"TC_TUNER_DVBT_Tuning_008", 10},
        {"TC_TUNER_DVBS_Tuning_005", 10},  {"TC_TUNER_DVBC_Tuning_016", 20},
        {"TC_TUNER_DVBT_Tuning_018", 20},  {"TC_TUNER_ISDBT_Tuning_005", 20},
        {"TC_TUNER_ATSCC_Tuning_027", 20}, {"TC_TUNER_ISDBS_Tuning_008", 20},
    };
    for (const auto& row : counts) {
        qlx_sim_record(1);
        EXPECT_EQ(runCase(row.name), PASS) << row.name;
        EXPECT_EQ(count(recordedCalls(), "QLX_TunerGetSignalInfo("), row.reads) << row.name;
    }
}

TEST_F(TunerCases, ASweepNeedsTwoChannelsAndAnAnswerToEach) {
    const char name[] = "TC_TUNER_ATSCT_Tuning_009";
    EXPECT_EQ(runCase(name), PASS);
    takeOutput();
    event("air ATSC-T ON=0");
    event("air ATSC-T/485000 ON=1");
    qlx_sim_record(1);
    EXPECT_EQ(runCase(name), FAIL);
    EXPECT_EQ(count(recordedCalls(), "QLX_TunerSetTuningParam("), 56u);
    std::string out = takeOutput();
    EXPECT_NE(out.find("]The frequence(473000 ~ 803000) has been scanned.\n"), std::string::npos);
    EXPECT_NE(out.find("]Tuner locked 1 channel(s).\n"), std::string::npos);
    event("air ATSC-T/491000 ON=1");
    EXPECT_EQ(runCase(name), PASS) << "two channels are enough";
    // A channel that does not answer ends the walk.
    qlx_sim_record(1);
    EXPECT_EQ(runCase(name, "TunerEvent call=9 drop"), FAIL);
    EXPECT_EQ(count(recordedCalls(), "QLX_TunerSetTuningParam("), 9u);
}

TEST_F(TunerCases, AWalkAgainstTheClockMayTakeASecondAStep) {
    // 25.6 s of 56 s are used: twelve locks, and silence of the others until the demodulator ends.
    const char name[] = "TC_TUNER_ATSCT_Tuning_031";
    EXPECT_EQ(runCase(name, "QLX_TunerGetSignalInfo call=56 delay=30399"), PASS);
    EXPECT_EQ(runCase(name, "QLX_TunerGetSignalInfo call=56 delay=30400"), FAIL);
    takeOutput();
    event("air ATSC-T ON=0");
    EXPECT_EQ(runCase(name), PASS) << "it is the time that counts, not the channels";
    EXPECT_NE(takeOutput().find("]Tune the whole 56 channel(s) will consume 28000 ms"),
              std::string::npos);
    EXPECT_EQ(runCase("TC_TUNER_ATSCC_Tuning_011"), PASS);
    EXPECT_NE(takeOutput().find("]Tune the whole 128 channel(s) will consume "), std::string::npos);
}

TEST_F(TunerCases, AFailingTunerDoesNotKeepTheOthersFromEnding) {
    qlx_sim_record(1);
    EXPECT_EQ(runCase("TC_TUNER_ISDB_Tuning_013", "QLX_TunerOpen call=3 return=1"), FAIL);
    std::string calls = recordedCalls();
    EXPECT_EQ(count(calls, "QLX_TunerClose("), 3u);
    EXPECT_EQ(count(calls, "QLX_TunerDeInit()=0"), 1u);
    EXPECT_EQ(calls.find("QLX_TunerDeInit()=0\n") + 20, calls.size()) << "all threads were joined";
    EXPECT_EQ(count(takeOutput(), "]expect 0, but actually 1  \n"), 1u);
    EXPECT_EQ(deviceState(), "");
    qlx_sim_record(1);
    EXPECT_EQ(runCase("TC_TUNER_ISDB_Tuning_006"), PASS);
    calls = recordedCalls();
    EXPECT_EQ(calls.find("tuner=0"), std::string::npos);
    for (const char* tuned :
         {"tuner=1.*System=256 ", "tuner=2.*System=512 ", "tuner=3.*System=512 "})
        EXPECT_TRUE(
            std::regex_search(calls, std::regex(std::string("QLX_TunerSetTuningParam\\(") + tuned)))
            << tuned;
}

TEST_F(TunerCases, PhysicalLayerTimeMustRun) {
    // Of the tenth reading: time 0 is no time.
    addFault("QLX_TunerGetSignalInfo call=10 zero=stDigital.stAtscT3.Sec");
    addFault("QLX_TunerGetSignalInfo call=10 zero=stDigital.stAtscT3.Msec");
    qlx_sim_record(1);
    EXPECT_EQ(runCase("TC_TUNER_ATSCT3_CheckSignalInfo_002"), FAIL);
    EXPECT_EQ(count(recordedCalls(), "QLX_TunerGetSignalInfo("), 10u);
}

// Messages of EN 50494 computed by hand: T = round down((IF + user band) / 4 MHz + 0.5) - 350.
TEST_F(TunerSatellite, UnicableChannelChangeMessages) {
    const struct {
        uint32_t channel;
        uint32_t userBand;
        uint32_t intermediate;
        uint32_t band;
        uint32_t polarization;
        uint32_t position;
        const char* message;
    } rows[] = {
        // 613 - 350 = 263 = 0x107
        {1, 1210000, 1242000, 0, 0, 0, "e0105a0107"},
        {8, 1210000, 1242000, 0, 0, 0, "e0105ae107"},
        // vertical low 0, vertical high 1, horizontal low 2, horizontal high 3, second position 4
        {1, 1210000, 1242000, 1, 0, 0, "e0105a0507"},
        {1, 1210000, 1242000, 0, 2, 0, "e0105a0907"},
        {1, 1210000, 1242000, 1, 2, 0, "e0105a0d07"},
        {2, 1210000, 1242000, 1, 2, 4, "e0105a3d07"},
        // 613.49975 + 0.5 is still 613, 613.5 + 0.5 is 614
        {1, 1210000, 1243999, 0, 0, 0, "e0105a0107"},
        {1, 1210000, 1244000, 0, 0, 0, "e0105a0108"},
        // (950 + 950) / 4 - 350 = 125, (2150 + 2150) / 4 - 350 = 725 = 0x2d5
        {3, 950000, 950000, 0, 0, 0, "e0105a407d"},
        {3, 2150000, 2150000, 0, 0, 0, "e0105a42d5"},
        // No user band 0: its three bits all come out set.
        {0, 1210000, 1242000, 0, 0, 0, "e0105ae107"},
    };
    ASSERT_EQ(QLX_TunerInit(), 0);
    ASSERT_EQ(QLX_TunerOpen(0), 0);
    bTunerUnicableFlag = 1;
    for (const auto& row : rows) {
        uTunerUnicableChannel = row.channel;
        uTunerUnicableChannelFreq = row.userBand;
        uTunerNibbleBand = row.band;
        uTunerNibblePolarization = row.polarization;
        uTunerNibblePosition = row.position;
        qlx_sim_record(1);
        int64_t begin = nowMs();
        EXPECT_EQ(TUNER_DVBS_ScifChannelChange(0, row.intermediate), 0);
        EXPECT_EQ(nowMs() - begin, 75);
        EXPECT_EQ(recordedCalls(),
                  std::string("QLX_TunerSetTonburstState(tuner=0 state=1)=0\n"
                              "QLX_TunerSetLnbPower(tuner=0 power=2)=0\n"
                              "QLX_TunerSetLnbPower(tuner=0 power=3)=0\n"
                              "QLX_TunerSendDiseqcCommand(tuner=0 length=5 message=") +
                      row.message +
                      " room=0 reply=null replyLength=null)=0\n"
                      "QLX_TunerSetLnbPower(tuner=0 power=2)=0\n");
    }
    // A refusal is handed on, and the supply stays where it is.
    addFault("QLX_TunerSendDiseqcCommand return=5");
    qlx_sim_record(1);
    EXPECT_EQ(TUNER_DVBS_ScifChannelChange(0, 1242000), 5);
    EXPECT_EQ(count(recordedCalls(), "QLX_TunerSetLnbPower("), 2u);
    qlx_sim_clear_faults();
    bTunerUnicableFlag = 0;
    qlx_sim_record(1);
    EXPECT_EQ(TUNER_DVBS_ScifChannelChange(0, 1242000), 0);
    EXPECT_EQ(recordedCalls(), "");
    EXPECT_EQ(QLX_TunerDeInit(), 0);
}

TEST_F(TunerSatellite, DiseqcDataIsCutToThreeBytes) {
    const uint8_t header[] = {0xE0, 0x10, 0x38};
    const uint8_t data[] = {0xF1, 0x02, 0x03, 0x04, 0x05};
    const struct {
        uint32_t length;
        const char* message;
    } rows[] = {
        {0, "e01038"},       {1, "e01038f1"},     {3, "e01038f10203"},
        {4, "e01038f10203"}, {5, "e01038f10203"}, {0xFFFFFFFF, "e01038f10203"},
    };
    ASSERT_EQ(QLX_TunerInit(), 0);
    ASSERT_EQ(QLX_TunerOpen(0), 0);
    for (const auto& row : rows) {
        qlx_sim_record(1);
        EXPECT_EQ(TUNER_DVBS_SendDiseqcMsg(0, header, data, row.length), 0);
        EXPECT_NE(recordedCalls().find(std::string("message=") + row.message + " room="),
                  std::string::npos)
            << recordedCalls();
    }
    EXPECT_EQ(QLX_TunerDeInit(), 0);
}

/** The calls of a trace that steer the antenna and the scan. */
std::string steering(const std::string& calls) {
    // A scan is told by its range.
    static const std::regex range(
        "(tuner=.) params.*StartIf\\w*=(\\d+) \\w*EndIf\\w*=(\\d+) .*\\)=");
    std::istringstream lines(calls);
    std::string kept;
    for (std::string line; std::getline(lines, line);) {
        for (const char* name :
             {"SetLnbPower(", "SetTonburstState(", "BlindScanStart(", "BlindScanStop("}) {
            if (line.find(name) != std::string::npos)
                kept += std::regex_replace(line.substr(strlen("QLX_Tuner")), range, "$1 $2..$3)=") +
                        "\n";
        }
    }
    return kept;
}

TEST_F(TunerSatellite, ABlindScanWalksTheFourBands) {
    qlx_sim_record(1);
    EXPECT_EQ(runCase("TC_TUNER_DVBS_BlindScanTune_002"), PASS);
    EXPECT_EQ(steering(recordedCalls()),
              "SetLnbPower(tuner=1 power=2)=0\nSetTonburstState(tuner=1 state=1)=0\n"
              "BlindScanStart(tuner=1 950000..2150000)=0\nBlindScanStop(tuner=1)=0\n"
              "SetLnbPower(tuner=1 power=3)=0\nSetTonburstState(tuner=1 state=1)=0\n"
              "BlindScanStart(tuner=1 950000..1800000)=0\nBlindScanStop(tuner=1)=0\n"
              "SetLnbPower(tuner=1 power=2)=0\nSetTonburstState(tuner=1 state=2)=0\n"
              "BlindScanStart(tuner=1 950000..2150000)=0\nBlindScanStop(tuner=1)=0\n"
              "SetLnbPower(tuner=1 power=3)=0\nSetTonburstState(tuner=1 state=2)=0\n"
              "BlindScanStart(tuner=1 950000..2150000)=0\nBlindScanStop(tuner=1)=0\n");
    std::string out = takeOutput();
    EXPECT_EQ(count(out, "]Progress:100.\n"), 4u);
    EXPECT_EQ(count(out, "]End of band.\n"), 4u);
    EXPECT_GT(count(out, "]Lock frequency:"), 0u);
    size_t complete = out.find("]Scan Complete.\n");
    ASSERT_NE(complete, std::string::npos);
    EXPECT_LT(complete, out.find("]All finished..\n"));
    EXPECT_LT(out.find("]All finished..\n"), out.find("]End BlindScan tune.\n"));
}

TEST_F(TunerSatellite, AUnicableScanSteersByMessages) {
    useUnicable();
    qlx_sim_record(1);
    EXPECT_EQ(runCase("TC_TUNER_DVBS_BlindScanTune_001"), PASS);
    std::string calls = recordedCalls();
    // The pulse that starts the cable's equipment comes before the first scan; no band is selected
    // by supply and tone any more, for the program's callback does it for each candidate.
    size_t start = calls.find("QLX_TunerBlindScanStart(");
    EXPECT_EQ(steering(calls.substr(0, start)),
              "SetLnbPower(tuner=0 power=2)=0\nSetLnbPower(tuner=0 power=0)=0\n"
              "SetLnbPower(tuner=0 power=2)=0\n");
    EXPECT_GT(count(calls, "QLX_TunerSendDiseqcCommand(tuner=0 length=5 message=e0105a"), 4u);
    EXPECT_EQ(count(calls, "state=2"), 0u);
    for (const char* fault :
         {"QLX_TunerSetLnbPower call=1 return=5", "QLX_TunerSetLnbPower call=2 return=5",
          "QLX_TunerSetLnbPower call=3 return=5"}) {
        EXPECT_EQ(runCase("TC_TUNER_DVBS_BlindScanTune_001", fault), FAIL) << fault;
        EXPECT_EQ(deviceState(), "") << fault;
    }
    for (const char* name : {"TC_TUNER_DVBS_UnicableTuning_001", "TC_TUNER_DVBS_Tuning_001",
                             "TC_TUNER_DVBS_BlindScanTune_003"}) {
        EXPECT_EQ(runCase(name), PASS) << name;
        EXPECT_EQ(deviceState(), "");
    }
}

TEST_F(TunerSatellite, ACancelMustFindTheScanRunning) {
    EXPECT_EQ(runCase("TC_TUNER_DVBS_BlindScanTune_003"), PASS);
    EXPECT_NE(takeOutput().find("]Success, end blindscan tune by cancel.\n"), std::string::npos);
    // All bands at their end at once: nothing is left to cancel after eight seconds.
    EXPECT_EQ(runCase("TC_TUNER_DVBS_BlindScanTune_003", "QLX_TunerBlindScanNext return=0x10030D"),
              FAIL);
    EXPECT_NE(takeOutput().find("]Failed, error for cancel search.\n"), std::string::npos);
    EXPECT_EQ(runCase("TC_TUNER_DVBS_BlindScanTune_003", "QLX_TunerBlindScanNext call=9 return=5"),
              FAIL);
    EXPECT_EQ(deviceState(), "");
    // A scan that nobody cancelled must not say so.
    EXPECT_EQ(
        runCase("TC_TUNER_DVBS_BlindScanTune_011", "QLX_TunerBlindScanNext call=9 return=0x10030E"),
        FAIL);
    EXPECT_EQ(deviceState(), "");
}

TEST_F(TunerSatellite, TheCircleOfScansGoesOnUntilItsFlagIsSet) {
    const char name[] = "TC_TUNER_DVBS_BlindScanTune_013";
    EXPECT_EQ(runCase(name), PASS);
    EXPECT_EQ(count(takeOutput(), "]All finished, circle again.\n"), 34u);
    // A scan that ends as cancelled although nobody cancelled it fails the case, but the load on
    // the tuner stays.
    EXPECT_EQ(runCase(name, "QLX_TunerBlindScanNext call=1 return=0x10030E"), FAIL);
    std::string out = takeOutput();
    EXPECT_EQ(count(out, "]Blind scan canceled.\n"), 2u);
    EXPECT_EQ(count(out, "]All finished, circle again.\n"), 34u);
    EXPECT_EQ(count(out, "]expect 1, but actually 0  \n"), 1u);
    EXPECT_NE(out.find("]GetSignalThread Status: 0 \r\n"), std::string::npos);
    // Also where no scan is ever made, the circle does not spin.
    EXPECT_EQ(runCase(name, "QLX_TunerBlindScanNext return=0x10030E"), FAIL);
    EXPECT_EQ(count(takeOutput(), "]Blind scan canceled.\n"), 1206u);
    EXPECT_EQ(deviceState(), "");
}

TEST_F(TunerSatellite, OneSlowReadingOfTwelveThousandFails) {
    const char name[] = "TC_TUNER_DVBS_BlindScanTune_013";
    EXPECT_EQ(runCase(name, "QLX_TunerGetSignalInfo call=7000 delay=500"), PASS);
    takeOutput();
    EXPECT_EQ(runCase(name, "QLX_TunerGetSignalInfo call=7000 delay=501"), FAIL);
    std::string out = takeOutput();
    EXPECT_NE(out.find("]GetSignalThread Status: 1 \r\n"), std::string::npos);
    EXPECT_EQ(count(out, "]getSignalInfoConsumeTime = "), 7000u);
    EXPECT_EQ(
        runCase("TC_TUNER_DVBS_BlindScanTune_014", "QLX_TunerGetSignalInfo call=12001 return=1"),
        FAIL);
    EXPECT_NE(takeOutput().find("]Failed getSgianlInfo error  \r\n"), std::string::npos);
    EXPECT_EQ(deviceState(), "");
}

}  // namespace

// The simulated tuners in time: events, the outside world, user bands, the blind scan.
#include <gtest/gtest.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "platform/qlx_tuner.h"
#include "simulator/core/board.h"
#include "simulator/core/sim.h"
#include "simulator/sim_control.h"
#include "simulator/tuner/reception.h"
#include "simulator/world/air.h"
#include "simulator/world/satellite.h"
#include "tests/shared/device.h"

namespace {

/** What the program hears of its tuners. */
class Ear {
 public:
    static void callback(uint32_t tuner, void* ear, uint32_t status, void*) {
        static_cast<Ear*>(ear)->add(tuner, status);
    }

    /** The next event of the tuner within the time; -1 when none comes. */
    int next(uint32_t tuner, int64_t milliseconds) {
        std::unique_lock<std::mutex> lock(mutex_);
        if (!changed_.wait_for(lock, std::chrono::milliseconds(milliseconds),
                               [&] { return !events_[tuner].empty(); }))
            return -1;
        uint32_t status = events_[tuner].front();
        events_[tuner].erase(events_[tuner].begin());
        return static_cast<int>(status);
    }

 private:
    void add(uint32_t tuner, uint32_t status) {
        std::lock_guard<std::mutex> lock(mutex_);
        events_[tuner].push_back(status);
        changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::map<uint32_t, std::vector<uint32_t>> events_;
};

/** A record by the platform's tuner parameters, as a program fills it. */
QLX_TunerTuningParams recordOf(uint32_t system, uint32_t channel) {
    sim::Cfg tuner;
    tuner.load(sim::platformFile("tuner_config.cfg"));
    std::string section = sim::nameOfSystem(system);
    auto value = [&](const char* key) { return static_cast<uint32_t>(tuner.number(section, key)); };
    QLX_TunerTuningParams record = {};
    record.eTuningType = QLX_TUNER_TUNING_TYPE_DIGITAL;
    record.eTransmissionSystem = system;
    record.eModulation = value("TUNER_MODULATION");
    record.uSymbolRate = value("TUNER_SYMBOLRATE");
    if (system == QLX_TRANSMISSION_SYSTEM_DVB_S) {
        record.stDvbS.eLnbTypeReal = value("TUNER_LNB_TYPE_REAL");
        record.stDvbS.uUnicableChannelId = value("TUNER_UNICABLE_CHANNEL_ID");
        record.stDvbS.uUnicableChannelFreqKHz = value("TUNER_UNICABLE_CHANNEL_FREQ_KHZ");
        record.stDvbS.bKnownSymbolRate = value("TUNER_KNOWN_SYMBOLRATE");
        record.stDvbS.ePolarization = value("TUNER_POLARIZATION");
        record.stDvbS.eLnbToneState = value("TUNER_LNB_TONESTATE");
        record.stDvbS.eFecType = value("TUNER_FEC_TYPE");
        record.stDvbS.eFecRate = value("TUNER_FEC_RATE");
    }
    if (system == QLX_TRANSMISSION_SYSTEM_DVB_T)
        record.stDvbT.eBandWidth = value("TUNER_BAND_WIDTH");
    for (const sim::TransmitterPtr& transmitter : sim::transmittersOnAir()) {
        for (uint32_t place : transmitter->channels) {
            if (transmitter->listedSystem != system || place != channel)
                continue;
            record.uFrequency = transmitter->frequency;
            if (system == QLX_TRANSMISSION_SYSTEM_ISDB_S)
                record.stIsdbS.uTsId = transmitter->tsId;
            if (system == QLX_TRANSMISSION_SYSTEM_ISDB_S3)
                record.stIsdbS3.uStreamId = transmitter->streamId;
        }
    }
    return record;
}

QLX_TunerSignalInfo infoOf(uint32_t tuner) {
    QLX_TunerSignalInfo info;
    EXPECT_EQ(QLX_TunerGetSignalInfo(tuner, &info), 0);
    return info;
}

constexpr int locked = QLX_TUNER_STATUS_LOCKED;
constexpr int unlocked = QLX_TUNER_STATUS_UNLOCKED;
constexpr int silence = -1;
/** Longer than any decision takes. */
constexpr int64_t enoughMs = 1500;

class SimTunerTime : public testing::Test {
 protected:
    void SetUp() override {
        restart("");
    }
    void TearDown() override {
        qlx_sim_reset();
        unsetenv("QLX_SIM_BOARD");
        sim::reloadBoard();
        std::filesystem::remove_all(folder_);
    }

    /** Switches the device off and on, with a board file of that text if there is one. */
    void restart(const std::string& board) {
        qlx_sim_reset();
        unsetenv("QLX_SIM_BOARD");
        if (!board.empty()) {
            std::filesystem::create_directories(folder_);
            std::ofstream(folder_ + "/board.cfg") << board;
            setenv("QLX_SIM_BOARD", (folder_ + "/board.cfg").c_str(), 1);
        }
        sim::reloadBoard();
        qlx_sim_reset();
        ASSERT_EQ(QLX_TunerInit(), 0);
        for (uint32_t tuner = 0; tuner < 4; tuner++) {
            ASSERT_EQ(QLX_TunerOpen(tuner), 0);
            ASSERT_EQ(QLX_TunerRegisterCallback(tuner, &ear_, Ear::callback), 0);
        }
    }

    int tune(uint32_t tuner, const QLX_TunerTuningParams& record) {
        EXPECT_EQ(QLX_TunerSetTuningParam(tuner, &record), 0);
        EXPECT_EQ(infoOf(tuner).eLockStatus, QLX_TUNER_STATUS_UNLOCKED) << "it returns at once";
        int status = ear_.next(tuner, enoughMs);
        EXPECT_EQ(static_cast<int>(infoOf(tuner).eLockStatus), status);
        return status;
    }

    Ear ear_;
    std::string folder_ = testing::TempDir() + "sim_tuner_test." + std::to_string(getpid());
};

TEST_F(SimTunerTime, EveryChannelOfTheLineUpLocksOnEveryTuner) {
    const uint32_t systems[] = {1, 4, 16, 64, 128, 256, 512, 1024, 2048};
    size_t tuned = 0;
    for (const sim::TransmitterPtr& t : sim::transmittersOnAir()) {
        if (t->channels.empty())
            continue;
        uint32_t tuner = tuned++ % 4;
        QLX_TunerTuningParams record = recordOf(t->listedSystem, t->channels[0]);
        EXPECT_EQ(tune(tuner, record), locked) << t->listedSystem << " " << t->frequency;
        QLX_TunerSignalInfo info = infoOf(tuner);
        EXPECT_EQ(info.eTuningType, 2u);
        EXPECT_EQ(info.uSignalPresent, 1u);
        EXPECT_EQ(info.uTunedFrequency, record.uFrequency);
        EXPECT_EQ(info.stDigital.eTransmissionSystem, t->listedSystem);
        EXPECT_EQ(info.stDigital.eModulation, record.eModulation);
        EXPECT_EQ(info.stDigital.uSymbolRate, record.uSymbolRate);
        EXPECT_GT(info.uSignalStrength, 0u);
        EXPECT_GE(info.sSignalQuality, 99) << t->frequency;
    }
    for (uint32_t system : systems) {
        for (uint32_t tuner = 0; tuner < 4; tuner++)
            EXPECT_EQ(tune(tuner, recordOf(system, 0)), locked) << system << " on " << tuner;
    }
    EXPECT_GT(tuned, 60u);
}

TEST_F(SimTunerTime, OneEventATuningAndItsTime) {
    QLX_TunerTuningParams record = recordOf(QLX_TRANSMISSION_SYSTEM_DVB_C, 0);
    int64_t start = sim::nowMs();
    EXPECT_EQ(tune(0, record), locked);
    EXPECT_GE(sim::nowMs() - start, 300);
    EXPECT_EQ(tune(0, record), locked) << "the same again answers again";
    record.uFrequency += 4000;
    start = sim::nowMs();
    EXPECT_EQ(tune(0, record), unlocked);
    EXPECT_GE(sim::nowMs() - start, 500);
    EXPECT_EQ(infoOf(0).uTunedFrequency, record.uFrequency);
    EXPECT_EQ(ear_.next(0, enoughMs), silence);
    // A tuning that is overtaken by another has no event of its own.
    EXPECT_EQ(QLX_TunerSetTuningParam(0, &record), 0);
    sim::sleepMs(100);
    record.uFrequency -= 4000;
    EXPECT_EQ(QLX_TunerSetTuningParam(0, &record), 0);
    EXPECT_EQ(ear_.next(0, enoughMs), locked);
    EXPECT_EQ(ear_.next(0, enoughMs), silence);
}

TEST_F(SimTunerTime, NoEventAfterTheCallbackIsGone) {
    QLX_TunerTuningParams record = recordOf(QLX_TRANSMISSION_SYSTEM_DVB_C, 0);
    EXPECT_EQ(QLX_TunerSetTuningParam(0, &record), 0);
    EXPECT_EQ(QLX_TunerUnRegisterCallback(0, Ear::callback), 0);
    EXPECT_EQ(ear_.next(0, enoughMs), silence);
    EXPECT_EQ(infoOf(0).eLockStatus, QLX_TUNER_STATUS_LOCKED) << "it locks nevertheless";
    EXPECT_EQ(QLX_TunerSetTuningParam(1, &record), 0);
    EXPECT_EQ(QLX_TunerClose(1), 0);
    EXPECT_EQ(QLX_TunerOpen(1), 0);
    EXPECT_EQ(QLX_TunerRegisterCallback(1, &ear_, Ear::callback), 0);
    EXPECT_EQ(ear_.next(1, enoughMs), silence);
    EXPECT_EQ(infoOf(1).uTunedFrequency, 0u) << "a closed tuner forgets its tuning";
}

TEST_F(SimTunerTime, TunersDoNotWaitForEachOther) {
    QLX_TunerTuningParams record = recordOf(QLX_TRANSMISSION_SYSTEM_ISDB_T, 0);
    int64_t start = sim::nowMs();
    for (uint32_t tuner = 0; tuner < 4; tuner++)
        EXPECT_EQ(QLX_TunerSetTuningParam(tuner, &record), 0);
    for (uint32_t tuner = 0; tuner < 4; tuner++)
        EXPECT_EQ(ear_.next(tuner, enoughMs), locked);
    EXPECT_LT(sim::nowMs() - start, 900);
}

TEST_F(SimTunerTime, TheChannelFileIsWhatIsOnTheAir) {
    std::string config = folder_ + "/config";
    std::filesystem::create_directories(config);
    std::filesystem::copy(sim::configDir(), config, std::filesystem::copy_options::recursive);
    std::string path = config + "/common/channel_dvb_t.cfg";
    std::ifstream in(path);
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    size_t place = text.find("FREQUENCY=474000");
    ASSERT_NE(place, std::string::npos);
    std::ofstream(path) << text.replace(place, 16, "FREQUENCY=538000");

    QLX_TunerTuningParams before = recordOf(QLX_TRANSMISSION_SYSTEM_DVB_T, 0);
    EXPECT_EQ(tune(0, before), locked);
    restart("[BOARD]\nCONFIG=" + config + "\n");
    EXPECT_EQ(tune(0, before), unlocked);
    before.uFrequency = 538000;
    EXPECT_EQ(tune(0, before), locked);
}

TEST_F(SimTunerTime, TheBoardSaysHowManyTunersAndWhatTheyReceive) {
    QLX_TunerTuningParams cable = recordOf(QLX_TRANSMISSION_SYSTEM_DVB_C, 0);
    QLX_TunerTuningParams terrestrial = recordOf(QLX_TRANSMISSION_SYSTEM_DVB_T, 0);
    restart("[TUNER]\nCOUNT=5\n[TUNER1]\nSYSTEMS=DVB-T DVB-T2\n[DVB-C]\nON=0\n");
    EXPECT_EQ(QLX_TunerOpen(4), 0);
    EXPECT_EQ(QLX_TunerOpen(5), QLX_TUNER_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_TunerSetTuningParam(1, &cable), QLX_TUNER_ERR_INVALID_PARA);
    EXPECT_EQ(tune(1, terrestrial), locked);
    EXPECT_EQ(tune(0, cable), unlocked);
}

TEST_F(SimTunerTime, TheOperatorPullsTheCable) {
    EXPECT_EQ(tune(0, recordOf(QLX_TRANSMISSION_SYSTEM_DVB_T, 0)), locked);
    EXPECT_EQ(tune(1, recordOf(QLX_TRANSMISSION_SYSTEM_DVB_T, 0)), locked);
    EXPECT_EQ(qlx_sim_event("cable 0 out"), 0);
    EXPECT_EQ(ear_.next(0, 0), unlocked) << "the program has heard when the event has passed";
    EXPECT_EQ(infoOf(0).eLockStatus, QLX_TUNER_STATUS_UNLOCKED);
    EXPECT_EQ(infoOf(0).uSignalPresent, 0u);
    EXPECT_EQ(infoOf(1).eLockStatus, QLX_TUNER_STATUS_LOCKED);
    EXPECT_EQ(qlx_sim_event("cable 0 in"), 0);
    EXPECT_EQ(ear_.next(0, 0), locked);
    EXPECT_EQ(infoOf(0).eLockStatus, QLX_TUNER_STATUS_LOCKED);
    EXPECT_EQ(ear_.next(1, 0), silence);
    EXPECT_EQ(qlx_sim_event("in 200 cable 1 out"), 0);
    EXPECT_EQ(ear_.next(1, 190), silence);
    EXPECT_EQ(ear_.next(1, 20), unlocked);
    EXPECT_EQ(qlx_sim_event("in 200"), -1);
    for (const char* event : {"cable", "cable 9 out", "cable 0 up", "air", "air DVB-X LEVEL=1",
                              "air DVB-T/1 LEVEL=1", "air DVB-T VOLUME=1", "air DVB-T LEVEL"})
        EXPECT_EQ(qlx_sim_event(event), -1) << event;
}

TEST_F(SimTunerTime, TheOperatorSetsTheGenerator) {
    QLX_TunerTuningParams record = recordOf(QLX_TRANSMISSION_SYSTEM_DVB_T, 0);
    EXPECT_EQ(tune(0, record), locked);
    EXPECT_EQ(qlx_sim_event("air DVB-T/474000 CELL_ID=1 CN=18"), 0);
    EXPECT_EQ(infoOf(0).stDigital.stDvbTerrestrial.stDvbT.uCellIdentifier, 1u);
    EXPECT_LT(infoOf(0).sSignalQuality, 60);
    EXPECT_EQ(qlx_sim_event("air DVB-T SYSTEM=DVB-T2 CN=0"), 0);
    EXPECT_EQ(tune(0, record), locked);
    EXPECT_EQ(infoOf(0).stDigital.eTransmissionSystem, 2u);
    record.eTransmissionSystem = QLX_TRANSMISSION_SYSTEM_DVB_T2;
    const uint32_t modulations[] = {128, 128, 32};
    for (uint8_t pipe = 0; pipe < 3; pipe++) {
        record.stDvbT.uPlpId = pipe;
        record.stDvbT.uPlpNum = 3;
        EXPECT_EQ(tune(0, record), locked);
        QLX_TunerSignalInfo info = infoOf(0);
        EXPECT_EQ(info.stDigital.stDvbTerrestrial.stDvbT2.uPlpNum, 3u);
        EXPECT_EQ(info.stDigital.stDvbTerrestrial.stDvbT2.uPlpIds[pipe], pipe);
        EXPECT_EQ(info.stDigital.eModulation, modulations[pipe]);
    }
    record.stDvbT.uPlpId = 3;
    EXPECT_EQ(tune(0, record), unlocked);
    EXPECT_EQ(qlx_sim_event("air DVB-T ON=0"), 0);
    record.stDvbT.uPlpId = 0;
    EXPECT_EQ(tune(0, record), unlocked);
}

TEST_F(SimTunerTime, SignallingOfAtsc3) {
    QLX_TunerTuningParams record = recordOf(QLX_TRANSMISSION_SYSTEM_ATSC_T3, 0);
    record.stAtscT3.uPlpNum = 2;
    record.stAtscT3.uPlpId[0] = 3;
    record.stAtscT3.uPlpId[1] = 1;
    EXPECT_EQ(tune(0, record), QLX_TUNER_STATUS_PLP_LOCKED);
    QLX_TunerAtscT3Info first = infoOf(0).stDigital.stAtscT3;
    EXPECT_EQ(first.uL1DetailPlpNum, 4);
    EXPECT_EQ(first.bAllPlpsLocked, 1u);
    EXPECT_EQ(first.uLockedPlpNum, 2u);
    EXPECT_EQ(first.stLockedPlp[0].uPlpId, 3u);
    EXPECT_EQ(first.stLockedPlp[1].eModulation, 128u);
    EXPECT_EQ(first.uEaWakeUp, 0);
    sim::sleepMs(1000);
    EXPECT_EQ(qlx_sim_event("air ATSC-T3 EAS=3"), 0);
    QLX_TunerAtscT3Info second = infoOf(0).stDigital.stAtscT3;
    int64_t milliseconds = (int64_t(second.Sec) - first.Sec) * 1000 + second.Msec - first.Msec;
    EXPECT_GE(milliseconds, 1000);
    EXPECT_EQ(second.uEaWakeUp, 3);
    EXPECT_EQ(ear_.next(0, 0), silence);
}

TEST_F(SimTunerTime, EmergencyAlertModeListensToTheWakeUpBitsAlone) {
    QLX_TunerTuningParams record = recordOf(QLX_TRANSMISSION_SYSTEM_ATSC_T3, 0);
    record.stAtscT3.uPlpNum = 1;
    record.stAtscT3.uPlpId[0] = 0;
    EXPECT_EQ(tune(0, record), QLX_TUNER_STATUS_PLP_LOCKED);
    EXPECT_TRUE(sim::receptionOf(0).locked);
    EXPECT_EQ(QLX_TunerSetEasMode(0, QLX_TRUE), 0);
    EXPECT_FALSE(sim::receptionOf(0).locked) << "no stream in the mode";
    EXPECT_EQ(qlx_sim_event("air ATSC-T3 EAS=2"), 0);
    QLX_TunerAtscT3Info heard;
    memset(&heard, 0, sizeof heard);
    heard.uEaWakeUp = 2;
    QLX_TunerSignalInfo info = infoOf(0);
    EXPECT_EQ(info.eLockStatus, static_cast<uint32_t>(QLX_TUNER_STATUS_PLP_LOCKED));
    EXPECT_EQ(memcmp(&info.stDigital.stAtscT3, &heard, sizeof heard), 0);
    // A tuning does not end the mode, another call does.
    EXPECT_EQ(tune(0, record), QLX_TUNER_STATUS_PLP_LOCKED);
    EXPECT_FALSE(sim::receptionOf(0).locked);
    EXPECT_EQ(QLX_TunerSetEasMode(0, QLX_FALSE), 0);
    EXPECT_TRUE(sim::receptionOf(0).locked);
    EXPECT_EQ(infoOf(0).stDigital.stAtscT3.uL1DetailPlpNum, 4);
    EXPECT_EQ(infoOf(0).stDigital.stAtscT3.bAllPlpsLocked, 1u);
    EXPECT_EQ(ear_.next(0, 0), silence) << "the mode is no tuning";
    // Other systems have no such mode; closing the tuner ends it.
    EXPECT_EQ(tune(0, recordOf(QLX_TRANSMISSION_SYSTEM_ATSC_T, 0)), locked);
    uint64_t change = sim::receptionOf(0).change;
    EXPECT_EQ(QLX_TunerSetEasMode(0, QLX_TRUE), 0);
    EXPECT_EQ(sim::receptionOf(0).change, change);
    EXPECT_EQ(QLX_TunerClose(0), 0);
    EXPECT_EQ(QLX_TunerOpen(0), 0);
    EXPECT_EQ(QLX_TunerRegisterCallback(0, &ear_, Ear::callback), 0);
    EXPECT_EQ(tune(0, record), QLX_TUNER_STATUS_PLP_LOCKED);
    EXPECT_TRUE(sim::receptionOf(0).locked);
}

TEST_F(SimTunerTime, TheSupplyOfTheLnbHoldsTheCarrier) {
    EXPECT_EQ(tune(0, recordOf(QLX_TRANSMISSION_SYSTEM_DVB_S, 0)), locked);
    EXPECT_EQ(QLX_TunerSetLnbPower(0, QLX_LNB_POWER_18V), 0);
    EXPECT_EQ(ear_.next(0, enoughMs), unlocked);
    EXPECT_EQ(QLX_TunerSetLnbPower(0, QLX_LNB_POWER_13V), 0);
    EXPECT_EQ(ear_.next(0, enoughMs), locked);
    EXPECT_EQ(QLX_TunerSwitchTonburst(0, QLX_LNB_TONEBURST_B), 0);
    EXPECT_EQ(ear_.next(0, enoughMs), unlocked);
    const uint8_t positionA[] = {0xe0, 0x10, 0x38, 0xf0};
    EXPECT_EQ(QLX_TunerSendDiseqcCommand(0, 4, positionA, 0, nullptr, nullptr), 0);
    EXPECT_EQ(ear_.next(0, enoughMs), locked);
    EXPECT_EQ(QLX_TunerSendDiseqcCommand(0, 2, positionA, 0, nullptr, nullptr),
              QLX_TUNER_ERR_INVALID_PARA);
    uint8_t answer[8];
    uint32_t length = 99;
    const uint8_t status[] = {0xe2, 0x10, 0x10};
    EXPECT_EQ(QLX_TunerSendDiseqcCommand(0, 3, status, 1, answer, &length), 0);
    EXPECT_EQ(length, 1u);
    EXPECT_EQ(answer[0], 0xe4);
}

TEST_F(SimTunerTime, UnicableTuningMovesTheUserBandByItself) {
    QLX_TunerTuningParams record = recordOf(QLX_TRANSMISSION_SYSTEM_DVB_S, 0);
    record.stDvbS.eLnbTypeReal = QLX_LNB_TYPE_UNICABLE;
    qlx_sim_record(1);
    EXPECT_EQ(tune(0, record), locked);
    qlx_sim_record(0);
    EXPECT_NE(recordedCalls().find("odu=E0 10 5A 01 07"), std::string::npos);
    EXPECT_EQ(infoOf(0).uTunedFrequency, record.uFrequency);
    EXPECT_EQ(infoOf(0).stDigital.stDvbSatellite.iFrequencyOffset, 0);
    record.uFrequency += 2000;
    EXPECT_EQ(tune(0, record), locked);
    EXPECT_EQ(infoOf(0).stDigital.stDvbSatellite.iFrequencyOffset, 2000);
    record.uFrequency -= 2000;
    // A user band that the LNB does not have.
    record.stDvbS.uUnicableChannelFreqKHz = 1800000;
    EXPECT_EQ(tune(0, record), unlocked);
    record.stDvbS.uUnicableChannelId = 2;
    record.stDvbS.uUnicableChannelFreqKHz = 1420000;
    EXPECT_EQ(tune(0, record), locked);
    record.stDvbS.ePolarization = QLX_POLARIZATION_HORIZONTAL;
    EXPECT_EQ(tune(0, record), unlocked);
}

TEST_F(SimTunerTime, DemultiplexersFollowTheReception) {
    static std::vector<uint32_t> changes;
    changes.clear();
    static bool registered = false;
    if (!registered)
        sim::onReceptionChange([](uint32_t tuner) { changes.push_back(tuner); });
    registered = true;
    EXPECT_FALSE(sim::receptionOf(2).locked);
    EXPECT_EQ(tune(2, recordOf(QLX_TRANSMISSION_SYSTEM_ISDB_S, 1)), locked);
    sim::Reception first = sim::receptionOf(2);
    ASSERT_TRUE(first.locked);
    EXPECT_EQ(first.transmitter->tsId, 0x40F2u);
    EXPECT_EQ(first.transmitter->channels, std::vector<uint32_t>{1});
    EXPECT_EQ(tune(2, recordOf(QLX_TRANSMISSION_SYSTEM_ISDB_S, 0)), locked);
    EXPECT_GT(sim::receptionOf(2).change, first.change);
    EXPECT_EQ(changes, (std::vector<uint32_t>{2, 2, 2})) << "locked, left, locked";
    EXPECT_EQ(qlx_sim_event("cable 2 out"), 0);
    EXPECT_FALSE(sim::receptionOf(2).locked);
    EXPECT_EQ(qlx_sim_event("cable 2 in"), 0);
    EXPECT_TRUE(sim::receptionOf(2).locked);
    EXPECT_EQ(QLX_TunerClose(2), 0);
    EXPECT_FALSE(sim::receptionOf(2).locked);
    EXPECT_FALSE(sim::receptionOf(99).locked);
}

/** A program's side of a blind scan. */
struct Scan {
    QLX_TunerBlindScanParams params = {};
    uint32_t finished = 0;
    volatile uint32_t cancel = 0;
    std::vector<uint32_t> progress;
    std::vector<uint32_t> carriers;
    bool steer = false;

    static Scan*& current() {
        static Scan* scan;
        return scan;
    }

    Scan() {
        current() = this;
        params.eLnbTypeReal = QLX_LNB_TYPE_STANDARD;
        params.uStartIfFrequency = 950000;
        params.uEndIfFrequency = 2150000;
        params.uStartSymbolRate = 1000;
        params.uEndSymbolRate = 45000;
        params.puCancelFlag = &cancel;
        params.uLowLnbFrequency = 9750000;
        params.uHighLnbFrequency = 10600000;
        params.puFinishedBands = &finished;
        params.callback = [](uint32_t, uint32_t event, const QLX_TunerBlindScanInfo* info,
                             uint32_t* count) {
            if (event == QLX_TUNER_BLINDSCAN_EVENT_LOCK_FREQUENCY)
                current()->carriers.push_back(info->uFrequency);
            else
                current()->progress.push_back(info->uProgress);
            if (info->uProgress == 100)
                ++*count;
        };
        // What a program with a single cable does: it asks for the candidate.
        params.tuneCallback = [](uint32_t tuner, const QLX_TunerBlindScanInfo* candidate) {
            if (!current()->steer)
                return;
            sim::ChannelChange change =
                sim::channelChangeMessage(1, 1210000, candidate->uFrequency - 9750000, 0);
            EXPECT_EQ(QLX_TunerSetLnbPower(tuner, QLX_LNB_POWER_18V), 0);
            EXPECT_EQ(QLX_TunerSendDiseqcCommand(tuner, 5, change.message, 0, nullptr, nullptr), 0);
            EXPECT_EQ(QLX_TunerSetLnbPower(tuner, QLX_LNB_POWER_13V), 0);
        };
    }

    /** Runs the scan to its end and answers the code that ended it. */
    int32_t run() {
        EXPECT_EQ(QLX_TunerBlindScanStart(0, &params), 0);
        QLX_TunerBlindScanInfo info;
        int32_t code;
        while ((code = QLX_TunerBlindScanNext(0, &info)) == 0 || code == 1) {
        }
        return code;
    }
};

TEST_F(SimTunerTime, ABlindScanWalksTheFourBands) {
    struct Band {
        uint32_t power, tone;
        std::vector<uint32_t> carriers;
    };
    std::vector<uint32_t> lineUp;
    for (uint32_t i = 0; i < 9; i++)
        lineUp.push_back(9750000 + 1242000 + i * 42000);
    const Band bands[] = {
        {QLX_LNB_POWER_13V, QLX_LNB_TONE_STATE_OFF, lineUp},
        {QLX_LNB_POWER_18V, QLX_LNB_TONE_STATE_OFF, {9750000 + 1318000}},
        {QLX_LNB_POWER_13V, QLX_LNB_TONE_STATE_22KHZ, {10600000 + 1471000}},
        {QLX_LNB_POWER_18V, QLX_LNB_TONE_STATE_22KHZ, {10600000 + 1987000}},
    };
    Scan scan;
    int64_t start = sim::nowMs();
    for (const Band& band : bands) {
        scan.carriers.clear();
        scan.progress.clear();
        EXPECT_EQ(QLX_TunerSetLnbPower(0, band.power), 0);
        EXPECT_EQ(QLX_TunerSetTonburstState(0, band.tone), 0);
        EXPECT_EQ(scan.run(), QLX_TUNER_ERR_BLINDSCAN_END);
        QLX_TunerBlindScanInfo info;
        EXPECT_EQ(QLX_TunerBlindScanNext(0, &info), QLX_TUNER_ERR_BLINDSCAN_END);
        EXPECT_EQ(QLX_TunerBlindScanStop(0), 0);
        EXPECT_EQ(scan.carriers, band.carriers);
        for (size_t i = 1; i < scan.progress.size(); i++)
            EXPECT_GT(scan.progress[i], scan.progress[i - 1]);
        EXPECT_EQ(scan.progress.back(), 100u);
    }
    EXPECT_EQ(scan.finished, 4u);
    EXPECT_GT(sim::nowMs() - start, 8000);
    EXPECT_LT(sim::nowMs() - start, 60000);
}

TEST_F(SimTunerTime, ABlindScanHeedsSymbolRatesAndRange) {
    EXPECT_EQ(QLX_TunerSetLnbPower(0, QLX_LNB_POWER_18V), 0);
    Scan scan;
    scan.params.uEndIfFrequency = 1318000;
    EXPECT_EQ(scan.run(), QLX_TUNER_ERR_BLINDSCAN_END);
    EXPECT_EQ(scan.carriers.size(), 1u) << "the end of the range belongs to it";
    EXPECT_EQ(scan.finished, 1u) << "a carrier there does not count as the end";
    EXPECT_EQ(QLX_TunerBlindScanStop(0), 0);
    scan.carriers.clear();
    scan.params.uEndSymbolRate = 21999;
    EXPECT_EQ(scan.run(), QLX_TUNER_ERR_BLINDSCAN_END);
    EXPECT_TRUE(scan.carriers.empty());
    EXPECT_EQ(QLX_TunerBlindScanStop(0), 0);
    scan.params.uStartIfFrequency = scan.params.uEndIfFrequency;
    EXPECT_EQ(QLX_TunerBlindScanStart(0, &scan.params), QLX_TUNER_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_TunerBlindScanStart(0, nullptr), QLX_TUNER_ERR_INVALID_PARA);
}

TEST_F(SimTunerTime, ABlindScanIsCancelledAndStopped) {
    QLX_TunerTuningParams record = recordOf(QLX_TRANSMISSION_SYSTEM_DVB_S, 0);
    EXPECT_EQ(tune(0, record), locked);
    Scan scan;
    QLX_TunerBlindScanInfo info;
    EXPECT_EQ(QLX_TunerBlindScanStart(0, &scan.params), 0);
    EXPECT_EQ(QLX_TunerBlindScanStart(0, &scan.params), QLX_FAILED) << "one runs already";
    EXPECT_EQ(QLX_TunerSetTuningParam(0, &record), QLX_FAILED) << "the front end is busy";
    EXPECT_EQ(infoOf(0).eLockStatus, QLX_TUNER_STATUS_UNLOCKED);
    EXPECT_FALSE(sim::receptionOf(0).locked);
    EXPECT_EQ(QLX_TunerBlindScanNext(0, &info), 0);
    scan.cancel = 1;
    EXPECT_EQ(QLX_TunerBlindScanNext(0, &info), QLX_TUNER_ERR_BLINDSCAN_CANCELED);
    EXPECT_EQ(QLX_TunerBlindScanNext(0, &info), QLX_TUNER_ERR_BLINDSCAN_CANCELED);
    EXPECT_EQ(QLX_TunerBlindScanStop(0), 0);
    EXPECT_EQ(QLX_TunerBlindScanNext(0, &info), QLX_FAILED);
    EXPECT_EQ(scan.progress.size(), 1u);
    EXPECT_EQ(scan.finished, 0u);
    // Cancelled from the start, it does nothing.
    EXPECT_EQ(scan.run(), QLX_TUNER_ERR_BLINDSCAN_CANCELED);
    EXPECT_EQ(scan.progress.size(), 1u);
    // A close ends a scan; the next user of the tuner finds none.
    EXPECT_EQ(QLX_TunerClose(0), 0);
    EXPECT_EQ(QLX_TunerOpen(0), 0);
    EXPECT_EQ(QLX_TunerBlindScanNext(0, &info), QLX_FAILED);
    EXPECT_EQ(QLX_TunerBlindScanStop(0), 0);
}

TEST_F(SimTunerTime, ABlindScanOfASingleCableSeesWhatTheProgramAsksFor) {
    EXPECT_EQ(QLX_TunerSetLnbPower(0, QLX_LNB_POWER_13V), 0);
    Scan scan;
    scan.params.eLnbTypeReal = QLX_LNB_TYPE_UNICABLE;
    scan.params.uUnicableChannelId = 1;
    scan.params.uUnicableChannelFreqKHz = 1210000;
    scan.params.uStartIfFrequency = 1200000;
    scan.params.uEndIfFrequency = 1400000;
    scan.steer = true;
    EXPECT_EQ(scan.run(), QLX_TUNER_ERR_BLINDSCAN_END);
    EXPECT_EQ(scan.carriers, (std::vector<uint32_t>{10992000, 11034000, 11076000, 11118000}));
    EXPECT_EQ(QLX_TunerBlindScanStop(0), 0);
    // With the user band left where it is, only that piece is seen.
    scan.steer = false;
    scan.carriers.clear();
    EXPECT_EQ(scan.run(), QLX_TUNER_ERR_BLINDSCAN_END);
    EXPECT_LE(scan.carriers.size(), 1u);
}

}  // namespace

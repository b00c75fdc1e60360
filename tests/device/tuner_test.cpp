// Tuners of the simulated device: what locks, what the signal information tells, state rules.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/qlx_tuner.h"
#include "simulator/sim_control.h"
#include "simulator/tuner/tuner_lock.h"
#include "simulator/world/air.h"
#include "tests/shared/device.h"

namespace {

/** A DVB-S carrier and the record that fits it, and an antenna that lets it through. */
struct SatelliteBench {
    sim::Transmitter carrier;
    QLX_TunerTuningParams record = {};
    sim::SatelliteAntenna antenna;

    SatelliteBench() {
        carrier.system = QLX_TRANSMISSION_SYSTEM_DVB_S;
        carrier.frequency = 1242000;
        carrier.modulation = QLX_MODULATION_QPSK;
        carrier.symbolRate = 30000000;
        carrier.fecType = QLX_FEC_TYPE_DVB_S;
        carrier.fecRate = QLX_FEC_RATE_3_4;
        carrier.levelDbm = -40;
        record.eTuningType = QLX_TUNER_TUNING_TYPE_DIGITAL;
        record.eTransmissionSystem = QLX_TRANSMISSION_SYSTEM_DVB_S;
        record.uFrequency = carrier.frequency;
        record.eModulation = carrier.modulation;
        record.uSymbolRate = carrier.symbolRate;
        record.stDvbS.bKnownSymbolRate = 1;
        record.stDvbS.eFecType = carrier.fecType;
        antenna.setPower(QLX_LNB_POWER_13V);
    }

    sim::Decision decide() const {
        std::vector<sim::TransmitterPtr> carriers = {
            std::make_shared<const sim::Transmitter>(carrier)};
        return sim::decideLock(record, {&carriers, &antenna, record.uFrequency});
    }
    bool locks() const {
        return decide().locked();
    }
};

TEST(TunerLock, SatelliteFrequencyOffsets) {
    struct Row {
        int32_t offset;
        bool locks;
    };
    for (const Row& row : {Row{0, true}, Row{2000, true}, Row{-2000, true}, Row{5000, true},
                           Row{5001, false}, Row{8000, false}, Row{-8000, false}}) {
        SatelliteBench bench;
        bench.record.uFrequency += row.offset;
        bench.record.uTuneOption = QLX_TUNER_TUNE_OPTION_OFF_NOMINAL;
        EXPECT_EQ(bench.locks(), row.locks) << row.offset;
        EXPECT_EQ(bench.decide().offset, row.offset);
        EXPECT_NE(bench.decide().carrier, nullptr) << "the carrier is measured, locked or not";
    }
}

TEST(TunerLock, AKnownOffsetIsNotSearchedFor) {
    for (uint32_t option : {QLX_TUNER_TUNE_OPTION_DEFAULT, QLX_TUNER_TUNE_OPTION_OFF_NOMINAL}) {
        for (int32_t offset : {-2000, -501, -500, 0, 500, 501, 2000}) {
            SatelliteBench bench;
            bench.record.uFrequency += offset;
            bench.record.uTuneOption = option;
            EXPECT_TRUE(bench.locks()) << offset;
            bench.record.stDvbS.bKnownOffset = 1;
            EXPECT_EQ(bench.locks(), offset >= -500 && offset <= 500) << offset;
            EXPECT_EQ(bench.decide().offset, offset);
        }
    }
    // In its place terrestrial records have their code rate.
    sim::Transmitter carrier;
    carrier.system = QLX_TRANSMISSION_SYSTEM_DVB_T;
    carrier.frequency = 474000;
    std::vector<sim::TransmitterPtr> carriers = {std::make_shared<const sim::Transmitter>(carrier)};
    sim::SatelliteAntenna antenna;
    QLX_TunerTuningParams record = {};
    record.eTransmissionSystem = carrier.system;
    record.uFrequency = 474300;
    record.uTuneOption = QLX_TUNER_TUNE_OPTION_OFF_NOMINAL;
    record.stDvbT.eFecRate = QLX_FEC_RATE_2_3;
    EXPECT_FALSE(sim::decideLock(record, {&carriers, &antenna, record.uFrequency}).locked());
}

TEST(TunerLock, SatelliteSymbolRateModulationAndFec) {
    struct Row {
        uint32_t rate;
        uint32_t known;
        uint32_t modulation;
        uint32_t fecType;
        bool locks;
    };
    const Row rows[] = {
        {30000000, 1, 2, 1, true},  {30300000, 1, 2, 1, true}, {39000000, 1, 2, 1, false},
        {21000000, 1, 2, 1, false}, {0, 1, 2, 1, false},       {0, 0, 2, 1, true},
        {39000000, 0, 2, 1, true},  {0, 0, 4, 2, true},        {30000000, 1, 4, 1, false},
        {30000000, 1, 2, 2, false}, {30000000, 1, 0, 0, true},
    };
    for (const Row& row : rows) {
        SatelliteBench bench;
        bench.record.uSymbolRate = row.rate;
        bench.record.stDvbS.bKnownSymbolRate = row.known;
        bench.record.eModulation = row.modulation;
        bench.record.stDvbS.eFecType = row.fecType;
        EXPECT_EQ(bench.locks(), row.locks)
            << row.rate << " " << row.known << " " << row.modulation << " " << row.fecType;
    }
}

TEST(TunerLock, SatelliteBandPolarizationAndPosition) {
    SatelliteBench bench;
    EXPECT_TRUE(bench.locks());
    bench.antenna.setPower(QLX_LNB_POWER_18V);
    EXPECT_FALSE(bench.locks());
    bench.carrier.horizontal = true;
    EXPECT_TRUE(bench.locks());
    bench.antenna.setTone(true);
    EXPECT_FALSE(bench.locks());
    bench.antenna.setTone(false);
    bench.antenna.toneBurst(QLX_LNB_TONEBURST_B);
    EXPECT_FALSE(bench.locks());
    bench.carrier.position = 1;
    EXPECT_TRUE(bench.locks());
    bench.antenna.setPower(QLX_LNB_POWER_OFF);
    EXPECT_FALSE(bench.locks());
    EXPECT_EQ(bench.decide().carrier, nullptr);
    bench.antenna.setPower(QLX_LNB_POWER_18V);
    EXPECT_FALSE(bench.locks()) << "without supply the switch goes back to its first input";
}

TEST(TunerLock, ThePowerBudgetDecides) {
    SatelliteBench bench;
    for (double level : {-30.0, -95.0}) {
        bench.carrier.levelDbm = level;
        EXPECT_TRUE(bench.locks()) << level;
    }
    bench.carrier.levelDbm = -110;
    EXPECT_FALSE(bench.locks());
    bench.carrier.levelDbm = -40;
    bench.carrier.noiseDb = 2;
    EXPECT_TRUE(bench.locks());
}

/** Tunes with a record of the system to a carrier of another, on one frequency. */
uint32_t statusOf(uint32_t requested, const sim::Transmitter& carrier,
                  QLX_TunerTuningParams record = {}) {
    record.eTuningType = QLX_TUNER_TUNING_TYPE_DIGITAL;
    record.eTransmissionSystem = requested;
    record.uFrequency = carrier.frequency;
    sim::SatelliteAntenna antenna;
    std::vector<sim::TransmitterPtr> carriers = {std::make_shared<const sim::Transmitter>(carrier)};
    return sim::decideLock(record, {&carriers, &antenna, record.uFrequency}).status;
}

TEST(TunerLock, SystemsRecogniseTheirOwnAndTheTerrestrialReceiverTheSecondGeneration) {
    const uint32_t systems[] = {1, 2, 16, 32, 64, 128, 256, 512, 1024, 2048};
    for (uint32_t sent : systems) {
        for (uint32_t asked : systems) {
            sim::Transmitter carrier;
            carrier.system = sent;
            carrier.frequency = 575000;
            carrier.levelDbm = -40;
            bool fits = sent == asked || (asked == 1 && sent == 2);
            EXPECT_EQ(statusOf(asked, carrier),
                      fits ? QLX_TUNER_STATUS_LOCKED : QLX_TUNER_STATUS_UNLOCKED)
                << asked << " on " << sent;
        }
    }
}

TEST(TunerLock, PipesOfAtsc3) {
    sim::Transmitter carrier;
    carrier.system = QLX_TRANSMISSION_SYSTEM_ATSC_T3;
    carrier.frequency = 575000;
    carrier.levelDbm = -40;
    carrier.pipes = {{0, 512}, {1, 128}, {2, 32}, {3, 2}};
    struct Row {
        std::vector<uint8_t> pipes;
        uint32_t status;
    };
    const Row rows[] = {
        {{}, QLX_TUNER_STATUS_LOCKED},
        {{0}, QLX_TUNER_STATUS_PLP_LOCKED},
        {{1}, QLX_TUNER_STATUS_PLP_LOCKED},
        {{0, 1}, QLX_TUNER_STATUS_PLP_LOCKED},
        {{4}, QLX_TUNER_STATUS_UNLOCKED},
        {{0, 9}, QLX_TUNER_STATUS_UNLOCKED},
        {{0, 1, 2, 3}, QLX_TUNER_STATUS_PLP_LOCKED},
    };
    for (const Row& row : rows) {
        QLX_TunerTuningParams record = {};
        for (uint8_t pipe : row.pipes)
            record.stAtscT3.uPlpId[record.stAtscT3.uPlpNum++] = pipe;
        EXPECT_EQ(statusOf(QLX_TRANSMISSION_SYSTEM_ATSC_T3, carrier, record), row.status)
            << row.pipes.size();
    }
}

TEST(TunerLock, StreamsOfATransponder) {
    sim::Transmitter carrier;
    carrier.system = QLX_TRANSMISSION_SYSTEM_ISDB_S;
    carrier.frequency = 1318000;
    carrier.levelDbm = -40;
    carrier.tsId = 0x40F1;
    QLX_TunerTuningParams record = {};
    record.stIsdbS.uTsId = 0x40F1;
    EXPECT_EQ(statusOf(QLX_TRANSMISSION_SYSTEM_ISDB_S, carrier, record), 0u);
    record.stIsdbS.uTsId = 0x40F2;
    EXPECT_EQ(statusOf(QLX_TRANSMISSION_SYSTEM_ISDB_S, carrier, record), QLX_TUNER_STATUS_UNLOCKED);
}

class SimTuner : public testing::Test {
 protected:
    void SetUp() override {
        qlx_sim_reset();
    }
    void TearDown() override {
        qlx_sim_reset();
    }
};

void ignoreEvent(uint32_t, void*, uint32_t, void*) {}

TEST_F(SimTuner, StateRules) {
    QLX_TunerTuningParams record = {};
    QLX_TunerSignalInfo info;
    QLX_TunerBlindScanInfo scanInfo;
    EXPECT_EQ(QLX_TunerDeInit(), 0);
    EXPECT_EQ(QLX_TunerOpen(0), QLX_FAILED);
    EXPECT_EQ(QLX_TunerInit(), 0);
    EXPECT_EQ(QLX_TunerInit(), 0);
    EXPECT_EQ(QLX_TunerOpen(4), QLX_TUNER_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_TunerOpen(0xffffffff), QLX_TUNER_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_TunerSetTuningParam(0, &record), QLX_FAILED);
    EXPECT_EQ(QLX_TunerGetSignalInfo(0, &info), QLX_FAILED);
    EXPECT_EQ(QLX_TunerSetLnbPower(0, QLX_LNB_POWER_13V), QLX_FAILED);
    EXPECT_EQ(QLX_TunerOpen(0), 0);
    EXPECT_EQ(QLX_TunerOpen(0), QLX_FAILED);
    EXPECT_EQ(QLX_TunerGetSignalInfo(0, &info), 0);
    EXPECT_EQ(info.eLockStatus, QLX_TUNER_STATUS_UNLOCKED);
    EXPECT_EQ(QLX_TunerGetSignalInfo(0, nullptr), QLX_TUNER_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_TunerRegisterCallback(0, nullptr, nullptr), QLX_TUNER_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_TunerRegisterCallback(0, nullptr, ignoreEvent), 0);
    EXPECT_EQ(QLX_TunerBlindScanNext(0, &scanInfo), QLX_FAILED);
    EXPECT_EQ(QLX_TunerSetLnbPower(0, 1), QLX_TUNER_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_TunerSetTonburstState(0, 0), QLX_TUNER_ERR_INVALID_PARA);
    EXPECT_EQ(QLX_TunerSwitchTonburst(0, 2), QLX_TUNER_ERR_INVALID_PARA);
    EXPECT_EQ(deviceState(), "Tuner initialised\nTuner 0 open\nTuner 0 callback registered\n");
    EXPECT_EQ(QLX_TunerDeInit(), 0);
    EXPECT_EQ(deviceState(), "");
    EXPECT_EQ(QLX_TunerInit(), 0);
    EXPECT_EQ(QLX_TunerOpen(0), 0) << "the end of the service has closed the tuner";
}

TEST_F(SimTuner, RecordsThatAreRefused) {
    EXPECT_EQ(QLX_TunerInit(), 0);
    EXPECT_EQ(QLX_TunerOpen(0), 0);
    struct Row {
        uint32_t type;
        uint32_t system;
        int32_t code;
    };
    const int32_t refused = QLX_TUNER_ERR_INVALID_PARA;
    for (const Row& row : {Row{3, 1, refused}, Row{1, 1, refused}, Row{2, 3, refused},
                           Row{2, 0, refused}, Row{2, 4096, refused}, Row{2, 1, 0}, Row{2, 2, 0},
                           Row{2, 8, 0}, Row{2, 32, 0}, Row{2, 2048, 0}}) {
        QLX_TunerTuningParams record = {};
        record.eTuningType = row.type;
        record.eTransmissionSystem = row.system;
        EXPECT_EQ(QLX_TunerSetTuningParam(0, &record), row.code) << row.type << " " << row.system;
    }
    QLX_TunerTuningParams record = {};
    record.eTuningType = 2;
    record.eTransmissionSystem = QLX_TRANSMISSION_SYSTEM_ATSC_T3;
    record.stAtscT3.uPlpNum = 5;
    EXPECT_EQ(QLX_TunerSetTuningParam(0, &record), refused);
    EXPECT_EQ(QLX_TunerSetTuningParam(0, nullptr), refused);
    QLX_TunerTuningParams read;
    EXPECT_EQ(QLX_TunerGetTuningParam(0, &read), 0);
    EXPECT_EQ(read.stAtscT3.uPlpNum, 0) << "a refused record is not kept";
}

}  // namespace

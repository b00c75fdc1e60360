// Strength and quality against the reception tables of the receiver's requirements.
//
// The tables are written as they are used at a bench: input, lowest and highest accepted percent.
#include "simulator/tuner/tuner_curves.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/qlx_tuner.h"

namespace {

struct Row {
    double input;
    int32_t lowest;
    int32_t highest;
};

struct Table {
    const char* name;
    uint32_t fecType;
    uint32_t modulation;
    uint32_t fecRate;
    uint32_t symbolRate;
    std::vector<Row> rows;
};

// clang-format off
const std::vector<Table> levelTables = {
    {"DVB-S 30000k", 1, 2, 4, 30000000,
     {{-30, 97, 100}, {-40, 97, 100}, {-50, 97, 100}, {-60, 97, 100}, {-62, 97, 100},
      {-65, 94, 100}, {-68, 89, 95}, {-70, 88, 94}, {-72, 87, 93}, {-74, 63, 69}, {-76, 23, 29},
      {-78, 15, 21}, {-79, 15, 21}, {-80, 14, 20}, {-90, 0, 3}, {-95, 0, 3}}},
    {"DVB-S 3000k", 1, 2, 4, 3000000,
     {{-30, 97, 100}, {-60, 97, 100}, {-64, 94, 100}, {-65, 95, 100}, {-70, 88, 94},
      {-72, 87, 93}, {-75, 63, 69}, {-77, 23, 29}, {-78, 15, 21}, {-79, 14, 20}, {-80, 14, 20},
      {-85, 0, 4}, {-88, 0, 4}, {-90, 0, 4}, {-91, 0, 4}, {-95, 0, 3}}},
    {"DVB-S2 20000k", 2, 2, 4, 20000000,
     {{-20, 97, 100}, {-23.3, 97, 100}, {-30, 97, 100}, {-44, 97, 100}, {-61.5, 97, 100},
      {-65, 94, 100}, {-68.5, 89, 95}, {-72, 87, 93}, {-75.8, 23, 29}, {-79.7, 14, 20},
      {-83.5, 1, 7}, {-87.3, 0, 4}, {-91.2, 0, 3}, {-95, 0, 3}}},
    {"DVB-S2 5000k", 2, 2, 4, 5000000,
     {{-30, 97, 100}, {-60, 97, 100}, {-64, 95, 100}, {-65, 94, 100}, {-68, 89, 95},
      {-70, 88, 94}, {-72, 87, 93}, {-73, 63, 69}, {-75, 23, 29}, {-77, 23, 29}, {-78, 15, 21},
      {-80, 14, 20}, {-82, 6, 12}, {-84, 0, 6}, {-85, 0, 4}, {-95, 0, 3}}},
    {"DVB-S2 8PSK 30000k", 2, 4, 4, 30000000,
     {{-30, 97, 100}, {-65, 97, 100}, {-70, 94, 100}, {-71, 88, 94}, {-72, 87, 93},
      {-73, 63, 69}, {-74, 63, 69}, {-75, 63, 69}, {-76, 23, 29}, {-77, 23, 29}, {-78, 15, 21},
      {-79, 0, 3}}},
    {"DVB-S2 8PSK 5000k", 2, 4, 4, 5000000,
     {{-30, 97, 100}, {-60, 97, 100}, {-64, 95, 100}, {-66, 93, 99}, {-68, 89, 95},
      {-69, 88, 94}, {-70, 88, 94}, {-71, 87, 93}, {-73, 63, 69}, {-75, 23, 29}, {-76, 23, 29},
      {-78, 15, 21}, {-79, 14, 20}, {-80, 14, 20}, {-82, 6, 12}, {-84, 3, 9}, {-86, 0, 3},
      {-90, 0, 3}, {-95, 0, 3}}},
};

const std::vector<Table> qualityTables = {
    {"DVB-S 2/3", 1, 2, 2, 30000000,
     {{3, 0, 3}, {3.5, 0, 3}, {3.6, 3, 9}, {3.7, 5, 11}, {4, 6, 12}, {4.5, 9, 15}, {5, 26, 32},
      {5.8, 52, 58}, {6, 52, 58}, {7, 68, 74}, {8, 97, 100}}},
    {"DVB-S 3/4", 1, 2, 4, 30000000,
     {{4, 0, 3}, {4.4, 0, 3}, {4.5, 1, 7}, {4.6, 4, 10}, {5, 7, 13}, {5.5, 21, 27}, {6, 31, 37},
      {6.8, 51, 57}, {7, 62, 68}, {8, 81, 87}, {9, 97, 100}}},
    {"DVB-S 5/6", 1, 2, 16, 30000000,
     {{5, 0, 3}, {5.4, 0, 5}, {5.5, 1, 7}, {5.6, 3, 9}, {6, 5, 11}, {6.5, 18, 24}, {7, 21, 27},
      {7.8, 45, 51}, {8, 52, 58}, {9, 91, 97}, {10, 97, 100}}},
    {"DVB-S2 QPSK 2/3", 2, 2, 2, 20000000,
     {{2, 0, 3}, {2.5, 0, 3}, {3, 0, 6}, {3.2, 2, 8}, {3.6, 13, 19}, {4, 14, 20}, {4.5, 16, 22},
      {5, 17, 23}, {6, 20, 26}, {7, 22, 28}, {8, 23, 29}, {9, 25, 31}, {10, 26, 32},
      {15, 34, 40}, {20, 41, 47}, {25, 50, 56}, {30, 56, 62}, {35, 59, 65}, {40, 60, 66},
      {45, 97, 100}}},
    {"DVB-S2 QPSK 3/4", 2, 2, 4, 20000000,
     {{2, 0, 3}, {3, 0, 3}, {3.5, 0, 3}, {4, 0, 6}, {4.1, 12, 18}, {4.6, 13, 19}, {5, 14, 20},
      {6, 17, 23}, {7, 20, 26}, {8, 22, 28}, {9, 24, 30}, {10, 25, 31}, {15, 33, 39},
      {20, 41, 47}, {25, 49, 55}, {30, 56, 62}, {35, 61, 67}, {40, 61, 67}, {45, 97, 100}}},
    {"DVB-S2 QPSK 5/6", 2, 2, 16, 20000000,
     {{4, 0, 3}, {4.5, 0, 3}, {5, 0, 3}, {5.1, 0, 5}, {5.5, 18, 24}, {5.7, 18, 24}, {6, 20, 26},
      {7, 23, 29}, {8, 26, 32}, {9, 28, 34}, {10, 30, 36}, {15, 38, 44}, {20, 47, 53},
      {25, 55, 61}, {30, 62, 68}, {35, 67, 73}, {40, 97, 100}}},
    {"DVB-S2 8PSK 2/3", 2, 4, 2, 30000000,
     {{5, 0, 3}, {6, 0, 3}, {6.5, 0, 5}, {6.7, 1, 7}, {7.1, 21, 27}, {8, 24, 30}, {9, 27, 33},
      {10, 30, 36}, {11, 32, 38}, {12, 34, 40}, {15, 40, 46}, {20, 50, 56}, {25, 58, 64},
      {30, 65, 71}, {35, 70, 76}, {40, 77, 83}, {45, 97, 100}}},
    {"DVB-S2 8PSK 3/4", 2, 4, 4, 30000000,
     {{7, 0, 3}, {7.5, 0, 3}, {7.8, 0, 3}, {7.9, 23, 29}, {8, 23, 29}, {8.4, 27, 33},
      {9, 27, 33}, {10, 31, 37}, {11, 34, 40}, {12, 36, 42}, {15, 43, 49}, {20, 54, 60},
      {25, 64, 70}, {30, 77, 83}, {35, 79, 85}, {40, 97, 100}}},
    {"DVB-S2 8PSK 5/6", 2, 4, 16, 30000000,
     {{8, 0, 3}, {8.5, 0, 3}, {9, 0, 3}, {9.2, 24, 30}, {9.4, 25, 31}, {9.5, 27, 33},
      {9.6, 27, 33}, {9.9, 30, 36}, {10, 31, 37}, {11, 34, 40}, {12, 40, 46}, {13, 43, 49},
      {15, 46, 52}, {20, 59, 65}, {25, 68, 74}, {30, 81, 87}, {35, 84, 90}, {40, 97, 100}}},
};

/** Quality of the terrestrial channel at 666 MHz. */
const std::vector<Row> terrestrialRows = {
    {27, 100, 100}, {26, 100, 100}, {25, 100, 100}, {24, 100, 100}, {23, 100, 100},
    {22, 93, 100}, {21, 83, 100}, {20, 70, 93}, {19, 49, 83}, {18, 31, 71}, {17, 14, 50},
    {16.2, 8, 35}, {16, 6, 32}, {15, 0, 18},
};
// clang-format on

sim::Transmitter carrierOf(const Table& table) {
    sim::Transmitter t;
    t.system = QLX_TRANSMISSION_SYSTEM_DVB_S;
    t.fecType = table.fecType;
    t.modulation = table.modulation;
    t.fecRate = table.fecRate;
    t.symbolRate = table.symbolRate;
    t.levelDbm = -40;
    return t;
}

TEST(TunerCurves, SatelliteLevelTables) {
    for (const Table& table : levelTables) {
        for (const Row& row : table.rows) {
            sim::Transmitter t = carrierOf(table);
            t.levelDbm = row.input;
            int32_t strength = static_cast<int32_t>(sim::signalStrength(t));
            EXPECT_GE(strength, row.lowest) << table.name << " at " << row.input;
            EXPECT_LE(strength, row.highest) << table.name << " at " << row.input;
            EXPECT_TRUE(sim::carrierHolds(t)) << table.name << " at " << row.input;
        }
    }
}

TEST(TunerCurves, SatelliteQualityTables) {
    for (const Table& table : qualityTables) {
        for (const Row& row : table.rows) {
            sim::Transmitter t = carrierOf(table);
            t.noiseDb = row.input;
            EXPECT_GE(sim::signalQuality(t), row.lowest) << table.name << " at " << row.input;
            EXPECT_LE(sim::signalQuality(t), row.highest) << table.name << " at " << row.input;
            EXPECT_TRUE(sim::carrierHolds(t)) << table.name << " at " << row.input;
        }
    }
}

sim::Transmitter terrestrial(double level, double noise) {
    sim::Transmitter t;
    t.system = QLX_TRANSMISSION_SYSTEM_DVB_T;
    t.modulation = QLX_MODULATION_64QAM;
    t.fecRate = QLX_FEC_RATE_2_3;
    t.bandWidth = QLX_BANDWIDTH_8MHZ;
    t.levelDbm = level;
    t.noiseDb = noise;
    return t;
}

TEST(TunerCurves, TerrestrialQualityTable) {
    for (const Row& row : terrestrialRows) {
        sim::Transmitter t = terrestrial(-45, row.input);
        EXPECT_GE(sim::signalQuality(t), row.lowest) << row.input;
        EXPECT_LE(sim::signalQuality(t), row.highest) << row.input;
    }
}

TEST(TunerCurves, NeverFallWithABetterSignal) {
    std::vector<sim::Transmitter> carriers = {terrestrial(0, 0)};
    for (const Table& table : levelTables)
        carriers.push_back(carrierOf(table));
    for (const Table& table : qualityTables)
        carriers.push_back(carrierOf(table));
    for (sim::Transmitter t : carriers) {
        uint32_t strength = 0;
        for (t.levelDbm = -120; t.levelDbm <= 10; t.levelDbm += 0.25) {
            EXPECT_GE(sim::signalStrength(t), strength) << t.levelDbm;
            strength = sim::signalStrength(t);
            EXPECT_LE(strength, 100u);
        }
        t.levelDbm = -40;
        int32_t quality = 0;
        for (t.noiseDb = 0.25; t.noiseDb <= 60; t.noiseDb += 0.25) {
            EXPECT_GE(sim::signalQuality(t), quality) << t.noiseDb;
            quality = sim::signalQuality(t);
            EXPECT_LE(quality, 100);
        }
    }
}

TEST(TunerCurves, TheReceiversOwnNoiseLimitsAWeakSignal) {
    EXPECT_EQ(sim::signalQuality(terrestrial(-50, 0)), 100);
    EXPECT_LT(sim::signalQuality(terrestrial(-85, 0)), 10);
    // A generator without noise is better than one with any.
    EXPECT_GT(sim::carrierToNoise(terrestrial(-40, 0)), sim::carrierToNoise(terrestrial(-40, 30)));
}

}  // namespace

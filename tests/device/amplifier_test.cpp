// The power amplifier: each chip's reset sequence at the borders of its times, what is written to
// it, and what a board without one does.
#include "simulator/service/amplifier.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/qlx_gpio.h"
#include "platform/qlx_i2c.h"
#include "simulator/core/board.h"
#include "simulator/core/sim.h"
#include "tests/shared/device.h"

namespace {

struct Chip {
    const char* platform;
    uint8_t address;
    uint32_t resetPin;
    uint32_t mutePin;
    /** Levels of the reset line and how long each must last, in ms. */
    std::vector<std::pair<int32_t, int64_t>> sequence;
};

/** A platform for each chip; NF8212 is the default board's. */
const Chip chips[] = {
    {"mtk9602_eu", 0x34, 36, 0, {{0, 110}, {1, 5}}},
    {"mtk9602_au", 0x2A, 36, 0, {{0, 110}, {1, 5}}},
    {"rtd2851a_eu", 0x1A, 17, 0, {{0, 10}, {1, 1}, {0, 1}, {1, 2}}},
    {"mtk9900_linux_us", 0x1B, 58, 0, {{0, 100}, {1, 10}, {0, 1}, {1, 15}}},
    {"mtk9900_linux_eu", 0x2A, 58, 59, {{1, 10}, {0, 5}, {1, 2}}},
};

class SimAmplifier : public testing::Test {
 protected:
    void TearDown() override {
        unsetenv("QLX_SIM_BOARD");
        sim::reloadBoard();
        qlx_sim_reset();
        unlink(boardFile().c_str());
    }
    static std::string boardFile() {
        return "/tmp/amplifier_board_" + std::to_string(getpid()) + ".cfg";
    }
    /** Powers a device of that platform on and opens the amplifier's bus. */
    static void powerOn(const std::string& platform) {
        std::ofstream(boardFile())
            << "[BOARD]\nPLATFORM=" << platform << "\nCONFIG=" << ZK_SOURCE_DIR << "/config\n";
        setenv("QLX_SIM_BOARD", boardFile().c_str(), 1);
        sim::reloadBoard();
        qlx_sim_reset();
        EXPECT_EQ(QLX_GPIOInit(), 0);
        EXPECT_EQ(QLX_I2CInit(), 0);
        EXPECT_EQ(QLX_I2COpen(QLX_I2C_0, QLX_I2C_BUSRATE_FAST), 0);
    }
};

bool writeTo(uint8_t address, uint8_t reg, std::vector<uint8_t> data) {
    const QLX_I2CConfig place = {address, 1, {reg}};
    uint32_t written = 0;
    int32_t result =
        QLX_I2CWrite(QLX_I2C_0, &place, data.data(), static_cast<uint32_t>(data.size()), &written);
    EXPECT_EQ(written, result == 0 ? data.size() : 0);
    return result == 0;
}

std::vector<uint8_t> readFrom(uint8_t address, uint8_t reg, uint32_t size) {
    const QLX_I2CConfig place = {address, 1, {reg}};
    std::vector<uint8_t> data(size);
    uint32_t count = 0;
    EXPECT_EQ(QLX_I2CRead(QLX_I2C_0, &place, size, data.data(), &count), 0);
    return data;
}

/** Drives the sequence; step `shortened` lasts a tenth of a millisecond less than it must. */
void driveSequence(const Chip& chip, size_t shortened) {
    if (chip.mutePin != 0) {
        EXPECT_EQ(QLX_GPIOSetValue(chip.mutePin, 1), 0);
    }
    // Some time in the other level, so that the first step begins when it is driven.
    EXPECT_EQ(QLX_GPIOSetValue(chip.resetPin, 1 - chip.sequence[0].first), 0);
    sim::sleepMs(1);
    for (size_t i = 0; i < chip.sequence.size(); i++) {
        EXPECT_EQ(QLX_GPIOSetValue(chip.resetPin, chip.sequence[i].first), 0);
        usleep(
            static_cast<useconds_t>(chip.sequence[i].second * 1000 - (i == shortened ? 100 : 0)));
    }
}

constexpr size_t none = SIZE_MAX;

TEST_F(SimAmplifier, AcknowledgesAfterItsWholeSequenceAlone) {
    for (const Chip& chip : chips) {
        powerOn(chip.platform);
        EXPECT_FALSE(writeTo(chip.address, 0, {1})) << chip.platform << " at power on";
        driveSequence(chip, none);
        EXPECT_TRUE(writeTo(chip.address, 0, {1})) << chip.platform;
        EXPECT_FALSE(writeTo(static_cast<uint8_t>(chip.address ^ 1), 0, {1})) << "another address";
        for (size_t step = 0; step < chip.sequence.size(); step++) {
            driveSequence(chip, step);
            EXPECT_FALSE(writeTo(chip.address, 0, {1})) << chip.platform << " step " << step;
            sim::sleepMs(200);
            // The last step lasts on; a step before it has been too short for good.
            EXPECT_EQ(writeTo(chip.address, 0, {1}), step + 1 == chip.sequence.size())
                << chip.platform << " step " << step;
        }
        driveSequence(chip, none);
        EXPECT_TRUE(writeTo(chip.address, 0, {1})) << chip.platform << " once more";
        EXPECT_EQ(QLX_GPIOSetValue(chip.resetPin, 0), 0);
        EXPECT_FALSE(writeTo(chip.address, 0, {1})) << chip.platform << " in reset";
    }
}

TEST_F(SimAmplifier, AChipWithAMuteLineNeedsItHigh) {
    const Chip& chip = chips[4];
    powerOn(chip.platform);
    Chip muted = chip;
    muted.mutePin = 0;
    driveSequence(muted, none);
    EXPECT_FALSE(writeTo(chip.address, 0, {1}));
    EXPECT_EQ(QLX_GPIOSetValue(chip.mutePin, 1), 0);
    EXPECT_TRUE(writeTo(chip.address, 0, {1}));
}

TEST_F(SimAmplifier, KeepsEveryWriteAndItsRegisters) {
    const Chip& chip = chips[2];
    powerOn(chip.platform);
    driveSequence(chip, none);
    EXPECT_TRUE(writeTo(chip.address, 0x04, {0x00}));
    EXPECT_TRUE(writeTo(chip.address, 0x7E, {1}));
    EXPECT_TRUE(writeTo(chip.address, 0x04, {1, 2, 3, 4}));
    EXPECT_TRUE(writeTo(chip.address, 0x05, {9}));
    EXPECT_EQ(readFrom(chip.address, 0x04, 5), std::vector<uint8_t>({1, 2, 3, 4, 0}));
    EXPECT_EQ(readFrom(chip.address, 0x05, 1), std::vector<uint8_t>({9}));
    EXPECT_TRUE(writeTo(chip.address, 0x7E, {0}));
    EXPECT_EQ(readFrom(chip.address, 0x04, 1), std::vector<uint8_t>({0})) << "the other bank";
    std::vector<sim::AmplifierWrite> writes = sim::amplifierWrites();
    ASSERT_EQ(writes.size(), 5u);
    EXPECT_EQ(writes[2].reg, 0x04u);
    EXPECT_EQ(writes[2].data, std::vector<uint8_t>({1, 2, 3, 4}));
    std::string path = boardFile() + ".writes";
    EXPECT_EQ(qlx_sim_event(("capture amplifier " + path).c_str()), 0);
    std::ifstream file(path);
    std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    EXPECT_NE(text.find(" 7E: 01\n"), std::string::npos) << text;
    EXPECT_NE(text.find(" 04: 01 02 03 04\n"), std::string::npos) << text;
    unlink(path.c_str());
    EXPECT_EQ(qlx_sim_event("capture amplifier /proc/none/writes"), -1);
    EXPECT_EQ(qlx_sim_event("capture nothing /tmp/x"), -1);
    EXPECT_EQ(qlx_sim_event("capture amplifier"), -1);
}

TEST_F(SimAmplifier, ABoardWithoutOneAcknowledgesNothing) {
    powerOn("novatek");
    EXPECT_EQ(QLX_GPIOSetValue(0, 1), 0);
    sim::sleepMs(200);
    EXPECT_FALSE(writeTo(0, 0, {1}));
}

}  // namespace

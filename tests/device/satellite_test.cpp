// The antenna of a satellite tuner: messages, user bands, what supply and tone select.
#include "simulator/world/satellite.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/qlx_tuner.h"

namespace {

using sim::SatelliteAntenna;

std::vector<uint8_t> send(SatelliteAntenna& antenna, const std::vector<uint8_t>& bytes) {
    return antenna.message(bytes.data(), bytes.size());
}

TEST(Satellite, ChannelChangeMessagesByHand) {
    struct Row {
        uint32_t channel, band, frequency, bank;
        uint8_t data0, data1;
        int64_t cable;
    };
    // T = round((F + Fub) / 4 MHz) - 350.
    const Row rows[] = {
        // (1242 + 1210) / 4 = 613, less 350 = 263 = 0x107
        {1, 1210000, 1242000, 0, 0x01, 0x07, 1210000},
        // the same carrier of 18 V and the high band, in user band 3
        {3, 1210000, 1242000, 3, 0x4d, 0x07, 1210000},
        // (951 + 1210) / 4 = 540.25: 540 - 350 = 190 = 0x0be, and the carrier lies 1 MHz lower
        {1, 1210000, 951000, 2, 0x08, 0xbe, 1209000},
        // (952 + 1210) / 4 = 540.5 is rounded up: 191, and the carrier lies 2 MHz higher
        {1, 1210000, 952000, 2, 0x08, 0xbf, 1212000},
        // (2150 + 2040) / 4 = 1047.5: 1048 - 350 = 698 = 0x2ba
        {8, 2040000, 2150000, 7, 0xfe, 0xba, 2042000},
        // channel 0 gives slot 7
        {0, 1210000, 1242000, 0, 0xe1, 0x07, 1210000},
    };
    for (const Row& row : rows) {
        sim::ChannelChange change =
            sim::channelChangeMessage(row.channel, row.band, row.frequency, row.bank);
        const std::vector<uint8_t> expected = {0xe0, 0x10, 0x5a, row.data0, row.data1};
        EXPECT_EQ(std::vector<uint8_t>(change.message, change.message + 5), expected)
            << row.frequency;
        EXPECT_EQ(change.cableFrequency, row.cable) << row.frequency;
    }
}

TEST(Satellite, AChannelChangeMovesItsUserBandOnly) {
    SatelliteAntenna antenna;
    antenna.setPower(QLX_LNB_POWER_18V);
    send(antenna, {0xe0, 0x10, 0x5a, 0x0d, 0x07});
    antenna.setPower(QLX_LNB_POWER_13V);
    ASSERT_TRUE(antenna.channelRouter());
    SatelliteAntenna::Source source = antenna.sourceOf(1210000);
    EXPECT_TRUE(source.powered);
    EXPECT_TRUE(source.horizontal);
    EXPECT_TRUE(source.highBand);
    EXPECT_EQ(source.position, 0u);
    EXPECT_EQ(source.frequency, 1242000);
    // The user band is a mirror, and ends where the next begins.
    EXPECT_EQ(antenna.sourceOf(1211000).frequency, 1241000);
    EXPECT_FALSE(antenna.sourceOf(1242000).powered);
    EXPECT_FALSE(antenna.sourceOf(1420000).powered) << "the second user band was never tuned";
    // Supply and tone select nothing any more.
    antenna.setTone(true);
    EXPECT_EQ(antenna.sourceOf(1210000).frequency, 1242000);
    // A tuning word of 0 switches the user band off; the supply taken away ends them all.
    antenna.setPower(QLX_LNB_POWER_18V);
    send(antenna, {0xe0, 0x10, 0x5a, 0x20, 0x10});
    send(antenna, {0xe0, 0x10, 0x5a, 0x00, 0x00});
    EXPECT_FALSE(antenna.sourceOf(1210000).powered);
    EXPECT_TRUE(antenna.sourceOf(1420000).powered);
    antenna.setPower(QLX_LNB_POWER_OFF);
    antenna.setPower(QLX_LNB_POWER_13V);
    EXPECT_FALSE(antenna.channelRouter());
    EXPECT_EQ(antenna.sourceOf(1242000).frequency, 1242000);
}

TEST(Satellite, MessagesThatAreNotForTheLnb) {
    const std::vector<std::vector<uint8_t>> messages = {
        {0xe0, 0x31, 0x5a, 0x0d, 0x07},  // a positioner's
        {0xf0, 0x10, 0x5a, 0x0d, 0x07},  // no DiSEqC framing
        {0xe0, 0x10, 0x5a, 0x0d},        // cut short
        {0xe0, 0x10},
        {},
    };
    for (const std::vector<uint8_t>& message : messages) {
        SatelliteAntenna antenna;
        antenna.setPower(QLX_LNB_POWER_18V);
        EXPECT_TRUE(send(antenna, message).empty());
        EXPECT_FALSE(antenna.channelRouter()) << message.size();
    }
    SatelliteAntenna antenna;
    antenna.setPower(QLX_LNB_POWER_13V);
    send(antenna, {0xe0, 0x10, 0x5a, 0x0d, 0x07});
    EXPECT_FALSE(antenna.channelRouter()) << "not without the raised supply";
}

TEST(Satellite, CommittedSwitchBurstAndReset) {
    SatelliteAntenna antenna;
    EXPECT_FALSE(antenna.sourceOf(1000000).powered);
    antenna.setPower(QLX_LNB_POWER_13V);
    struct Row {
        uint8_t data;
        uint32_t position;
    };
    for (const Row& row :
         {Row{0xf4, 1}, Row{0xf8, 2}, Row{0xfc, 3}, Row{0x40, 2}, Row{0x04, 3}, Row{0xf0, 0}}) {
        send(antenna, {0xe0, 0x10, 0x38, row.data});
        EXPECT_EQ(antenna.sourceOf(1000000).position, row.position) << int(row.data);
    }
    antenna.toneBurst(QLX_LNB_TONEBURST_B);
    EXPECT_EQ(antenna.sourceOf(1000000).position, 1u);
    antenna.toneBurst(QLX_LNB_TONEBURST_A);
    EXPECT_EQ(antenna.sourceOf(1000000).position, 0u);
    send(antenna, {0xe0, 0x10, 0x38, 0xfc});
    send(antenna, {0xe0, 0x00, 0x00});
    EXPECT_EQ(antenna.sourceOf(1000000).position, 0u);
    send(antenna, {0xe0, 0x10, 0x03});
    EXPECT_TRUE(antenna.sourceOf(1000000).powered);
    // An answer comes to a framing that asks for one.
    EXPECT_EQ(send(antenna, {0xe2, 0x10, 0x10}), (std::vector<uint8_t>{0xe4, 0x00}));
    antenna.setPower(QLX_LNB_POWER_18V);
    EXPECT_EQ(send(antenna, {0xe2, 0x10, 0x10}), (std::vector<uint8_t>{0xe4, 0x40}));
}

}  // namespace

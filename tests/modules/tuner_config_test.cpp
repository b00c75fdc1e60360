// Tuning parameters: what the loader reads from which file, and what a tuning by system and channel
// is given of it.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "environment/config_files.h"
#include "environment/test_env.h"
#include "testcase/tuner/tuner_harness.h"

namespace {

/** Runs with a folder of its own as working directory, and an empty environment. */
class TunerConfig : public testing::Test {
 protected:
    void SetUp() override {
        char folder[] = "/tmp/tuner_config_XXXXXX";
        ASSERT_NE(mkdtemp(folder), nullptr);
        folder_ = folder;
        ASSERT_NE(getcwd(back_, sizeof back_), nullptr);
        ASSERT_EQ(chdir(folder), 0);
        ASSERT_EQ(system("mkdir config"), 0);
        zk_testConfig = {};
        snprintf(g_configFile.tuner, sizeof g_configFile.tuner, "tuner.cfg");
    }
    void TearDown() override {
        zk_testConfig = {};
        g_configFile = {};
        ASSERT_EQ(chdir(back_), 0);
        ASSERT_EQ(system(("rm -r " + folder_).c_str()), 0);
    }
    std::string load(const std::string& text, const std::string& fallback = "") {
        std::ofstream("tuner.cfg") << text;
        std::ofstream("config/common_config.cfg") << fallback;
        testing::internal::CaptureStdout();
        TC_TUNER_LOAD_CONFIG();
        return testing::internal::GetCapturedStdout();
    }

    std::string folder_;
    char back_[4096];
};

/** Every 32-bit word of a record, for comparisons by position. */
std::vector<uint32_t> words(const QLX_TunerTuningParams& record) {
    std::vector<uint32_t> all(sizeof record / 4);
    memcpy(all.data(), &record, sizeof record);
    return all;
}

TEST_F(TunerConfig, SectionsAreAnnouncedInTheirOrder) {
    std::string out = load("[TUNERDEV0]\nTUNER_TRANSMISSIONSYSTEM=16\n");
    size_t at = out.find("]=========Tuner moudule config======== \r\n");
    ASSERT_NE(at, std::string::npos);
    for (const char* section : {"DVB-S", "DVB-T", "DVB-C", "ATSC-C", "ATSC-T", "ATSC-T3", "ISDB-T",
                                "ISDB-S", "ISDB-S3"}) {
        size_t next = out.find(std::string("]----") + section + " tuning parameters---- \r\n", at);
        ASSERT_NE(next, std::string::npos) << section;
        at = next;
    }
}

TEST_F(TunerConfig, SatelliteKeysFillTheirWords) {
    std::string text = "[DVB-S]\n";
    const char* keys[] = {
        "MODULATION",
        "SYMBOLRATE",
        "SPECTRUM",
        "LNB_TYPE_REAL",
        "UNICABLE_DEVID",
        "UNICABLE_CHANNEL_ID",
        "UNICABLE_CHANNEL_FREQ_KHZ",
        "KNOWN_OFFSET",
        "KNOWN_SYMBOLRATE",
        "POLARIZATION",
        "LNB_TONESTATE",
        "FEC_TYPE",
        "FEC_RATE",
        "LOCAL_OSC_FREQUENCY",
        "LOW_LNB_FREQUENCY",
        "HIGH_LNB_FREQENCY",
        "RF_BAND",
    };
    int value = 100;
    for (const char* key : keys)
        text += std::string("TUNER_") + key + "=" + std::to_string(value++) + "\n";
    load(text +
         "TUNER_BLINDSCAN_START_IF_FREQUENCY_KHz=950000\n"
         "TUNER_BLINDSCAN_END_IF_FREQUENCY_KHz=2150000\n"
         "TUNER_BLINDSCAN_START_SYMBOLRATE_Ksps=1000\n"
         "TUNER_BLINDSCAN_END_SYMBOLRATE_Ksps=45000\n"
         "TUNER_BLINDSCAN_LOW_LNB_FREQUENCY=9750000\n"
         "TUNER_BLINDSCAN_HIGH_LNB_FREQUENCY=10600000\n"
         "TUNER_DISEQC_FRAMING=0xE2\nTUNER_DISEQC_ADDRESS=0x14\nTUNER_DISEQC_COMMAND=0x38\n");
    // The frequency is the channel's; one word of the satellite part is not written.
    EXPECT_EQ(words(zk_testConfig.tunerBlock.stDvbS),
              (std::vector<uint32_t>{2, 0,   0,   100, 101, 102, 4,   103, 104, 105, 106,
                                     0, 107, 108, 109, 110, 111, 112, 113, 114, 115, 116}));
    QLX_TunerBlindScanParams scan;
    EXPECT_EQ(tuner_get_params_dvbs_BlindScan(&scan), 0u);
    EXPECT_EQ(scan.eLnbTypeReal, 103u);
    EXPECT_EQ(scan.uStartIfFrequency, 950000u);
    EXPECT_EQ(scan.uEndIfFrequency, 2150000u);
    EXPECT_EQ(scan.uStartSymbolRate, 1000u);
    EXPECT_EQ(scan.uEndSymbolRate, 45000u);
    EXPECT_EQ(scan.uLowLnbFrequency, 9750000u);
    EXPECT_EQ(scan.uHighLnbFrequency, 10600000u);
    EXPECT_EQ(scan.uUnicableDevId, 104u);
    EXPECT_EQ(scan.uUnicableChannelId, 105u);
    EXPECT_EQ(scan.uUnicableChannelFreqKHz, 106u);
    TunerDiseqcParams diseqc;
    EXPECT_EQ(tuner_get_params_dvbs_DiSEqC(&diseqc), 0u);
    EXPECT_EQ(diseqc.uFraming, 0xE2u);
    EXPECT_EQ(diseqc.uAddress, 0x14u);
    EXPECT_EQ(diseqc.uCommand, 0x38u);
}

TEST_F(TunerConfig, OtherKeysFillTheirWords) {
    load(
        "[DVB-T]\nTUNER_MODULATION=1\nTUNER_SYMBOLRATE=2\nTUNER_SPECTRUM=3\n"
        "TUNER_GUARD_INTERVAL=4\nTUNER_TRANSMISSION_MODE=5\nTUNER_ECHO_POSITION=6\n"
        "TUNER_BAND_WIDTH=7\nTUNER_FEC_RATE=8\nTUNER_TUNER_MODE=9\nTUNER_HIERACHY=10\n"
        "TUNER_PRIORITY=11\n"
        "[ATSC-T3]\nTUNER_MODULATION=12\nTUNER_SYMBOLRATE=99\nTUNER_BAND_WIDTH=13\n"
        "TUNER_PLP_NUM=4\nTUNER_PLP_ID0=5\nTUNER_PLP_ID1=6\nTUNER_PLP_ID2=7\nTUNER_PLP_ID3=63\n"
        "[ISDB-T]\nTUNER_MODULATION=14\nTUNER_SYMBOLRATE=15\nTUNER_SPECTRUM=16\n"
        "TUNER_BAND_WIDTH=17\n"
        "[DVB-C]\nTUNER_MODULATION=18\nTUNER_BAND_WIDTH=99\n"
        "[ISDB-S3]\nTUNER_SYMBOLRATE=33756100\n",
        // What the board's file does not have is taken from the fallback, section by section.
        "[DVB-C]\nTUNER_SYMBOLRATE=6900000\nTUNER_MODULATION=77\n"
        "[TUNERDEV3]\nTUNER_TRANSMISSIONSYSTEM=512\n");
    const TcTunerConfig& block = zk_testConfig.tunerBlock;
    auto head = [](const QLX_TunerTuningParams& record, size_t count) {
        std::vector<uint32_t> all = words(record);
        all.resize(count);
        return all;
    };
    EXPECT_EQ(head(block.stDvbT, 16),
              (std::vector<uint32_t>{2, 0, 0, 1, 2, 3, 1, 0, 4, 5, 6, 7, 8, 9, 10, 11}));
    EXPECT_EQ(head(block.stAtscT3, 8), (std::vector<uint32_t>{2, 0, 0, 12, 0, 0, 2048, 13}));
    EXPECT_EQ(block.stAtscT3.stAtscT3.uPlpNum, 4);
    EXPECT_EQ(block.stAtscT3.stAtscT3.uPlpId[3], 63);
    EXPECT_EQ(head(block.stIsdbT, 8), (std::vector<uint32_t>{2, 0, 0, 14, 15, 16, 256, 17}));
    EXPECT_EQ(head(block.stDvbC, 8), (std::vector<uint32_t>{2, 0, 0, 18, 6900000, 0, 16, 0}));
    EXPECT_EQ(head(block.stIsdbS3, 8), (std::vector<uint32_t>{2, 0, 0, 0, 33756100, 0, 1024, 0}));
    EXPECT_EQ(block.stAtscC.eTransmissionSystem, 128u);
    EXPECT_EQ(block.stAtscT.eTransmissionSystem, 64u);
    EXPECT_EQ(block.stIsdbS.eTransmissionSystem, 512u);
    EXPECT_EQ(block.eTransmissionSystem[0], 0u);
    EXPECT_EQ(block.eTransmissionSystem[3], 512u);
}

TEST_F(TunerConfig, ParametersBySystemAndChannel) {
    load("[TUNERDEV1]\nTUNER_TRANSMISSIONSYSTEM=512\n[TUNERDEV2]\nTUNER_TRANSMISSIONSYSTEM=8\n");
    TestEnvConfig& config = zk_testConfig;
    config.dvbCChannelNum = config.isdbSChannelNum = 2;
    config.isdbS3ChannelNum = config.atscT3ChannelNum = 1;
    config.dvbC[0].uFrequency = 306000;
    config.dvbC[1].uFrequency = 314000;
    config.dvbC[2].uFrequency = 999;
    config.isdbS[0].uFrequency = 1318000;
    config.isdbS[1].uFrequency = 1049480;
    config.isdbS[1].uTsId = 0x40F1;
    config.isdbS3[0].uFrequency = 1356360;
    config.isdbS3[0].uStreamId = 0xB110;
    config.atscT3[0].uFrequency = 575000;
    const struct {
        uint32_t tuner;
        uint32_t system;
        uint32_t channel;
        uint32_t result;
        uint32_t takenSystem;
        uint32_t frequency;
        uint32_t id;
    } rows[] = {
        {0, QLX_TRANSMISSION_SYSTEM_DVB_C, 0, 0, 16, 306000, 0},
        {0, QLX_TRANSMISSION_SYSTEM_DVB_C, 1, 0, 16, 314000, 0},
        {0, QLX_TRANSMISSION_SYSTEM_DVB_C, 2, 0, 16, 306000, 0},
        {1, 0, 1, 0, 512, 1049480, 0x40F1},
        // A system that is named leaves the tuner's own out of it.
        {1, QLX_TRANSMISSION_SYSTEM_ISDB_S3, 0, 0, 1024, 1356360, 0xB110},
        {1, QLX_TRANSMISSION_SYSTEM_ATSC_T3, 5, 0, 2048, 575000, 0},
        // A channel table without channels gives frequency 0, which is the library's to refuse.
        {0, QLX_TRANSMISSION_SYSTEM_DVB_T, 0, 0, 1, 0, 0},
        {0, 0, 0, 1, 0, 0, 0},
        {2, 0, 0, 1, 0, 0, 0},
        {7, 0, 0, 1, 0, 0, 0},
        {0, QLX_TRANSMISSION_SYSTEM_DVB_T2, 0, 1, 0, 0, 0},
        {0, QLX_TRANSMISSION_SYSTEM_DVB_S2, 0, 1, 0, 0, 0},
        {0, QLX_TRANSMISSION_SYSTEM_DVB_C2, 0, 1, 0, 0, 0},
        {0, 4096, 0, 1, 0, 0, 0},
    };
    for (const auto& row : rows) {
        QLX_TunerTuningParams record;
        memset(&record, 0xA5, sizeof record);
        QLX_TunerTuningParams untouched = record;
        EXPECT_EQ(tuner_get_params(row.tuner, row.system, row.channel, &record), row.result)
            << row.system;
        if (row.result != 0) {
            EXPECT_EQ(memcmp(&record, &untouched, sizeof record), 0) << row.system;
            continue;
        }
        EXPECT_EQ(record.eTuningType, 2u);
        EXPECT_EQ(record.eTransmissionSystem, row.takenSystem);
        EXPECT_EQ(record.uFrequency, row.frequency);
        EXPECT_EQ(record.stIsdbS.uTsId, row.id) << row.system;
    }
}

}  // namespace

// Feature and channel tables: which key goes where, counts that do not fit, and the kept oddity of
// the PVR playback file.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

#include "environment/config_files.h"
#include "environment/test_env.h"
#include "framework/case/wait.h"
#include "testcase/av/av_config.h"

namespace {

class Environment : public testing::Test {
 protected:
    void SetUp() override {
        char pattern[] = "/tmp/zk_env_XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir_ = pattern;
        memset(&g_configFile, 0, sizeof g_configFile);
        memset(&zk_testConfig, 0, sizeof zk_testConfig);
        snprintf(g_configFile.commonDir, sizeof g_configFile.commonDir, "%s", pattern);
        snprintf(g_configFile.platformDir, sizeof g_configFile.platformDir, "%s", pattern);
        get_common_config(&g_configFile);
        get_platform_config(&g_configFile);
        testing::internal::CaptureStdout();
    }
    void TearDown() override {
        testing::internal::GetCapturedStdout();
        memset(&zk_testConfig, 0, sizeof zk_testConfig);
        memset(&g_configFile, 0, sizeof g_configFile);
        ASSERT_EQ(system(("rm -rf " + dir_).c_str()), 0);
    }
    void write(const char* name, const std::string& text) {
        std::ofstream(dir_ + "/" + name) << text;
    }

    std::string dir_;
};

TEST_F(Environment, FeaturesGoToTheirPlaces) {
    const int32_t* features = nullptr;
    write("feature.cfg",
          "[FEATURE]\nFEATURE_GPIO=1\nFEATURE_CEC0=2\nFEATURE_VGA0=3\nFEATURE_HDM1=1\n"
          "FEATURE_AFE_TUNING_AFTER_ATV_SOURCE=-1\nFEATURE_SMC1=5\n");
    zk_test_load_feature();
    zk_test_get_feature(&features);
    EXPECT_EQ(features, zk_testConfig.features);
    EXPECT_EQ(features[0], 1);
    EXPECT_EQ(features[FEATURE_CEC0], 2);
    EXPECT_EQ(FEATURE_CEC0, 43);
    EXPECT_EQ(features[FEATURE_VGA0], 3);
    EXPECT_EQ(FEATURE_VGA0, 50);
    EXPECT_EQ(features[51], -1);
    EXPECT_EQ(features[FEATURE_SMC1], 5);
    EXPECT_EQ(features[FEATURE_HDMI1], 0);
}

TEST_F(Environment, EachFeatureHasAPlaceOfItsOwn) {
    std::string text = "[FEATURE]\n";
    int32_t number = 100;
#define LINE_OF(place, key) text += std::string(#key) + "=" + std::to_string(number++) + "\n";
    FEATURE_LIST(LINE_OF)
    write("feature.cfg", text);
    zk_test_load_feature();
    number = 100;
#define EXPECT_PLACE(place, key) EXPECT_EQ(zk_testConfig.features[key], number++) << #key;
    FEATURE_LIST(EXPECT_PLACE)
    EXPECT_EQ(number, 100 + FEATURE_COUNT);
}

TEST_F(Environment, AChannelHasTheKeysOfItsStandard) {
    const std::string all =
        "FREQUENCY=1\nTS_ID=2\nSTREAM_ID=3\nVIDEO_PID=4\nVIDEO_FORMAT=5\nPCR_PID=6\nAUDIO_NUM=2\n"
        "AUDIO_PID0=7\nAUDIO_FORMAT0=8\nAUDIO_PID1=9\nAUDIO_FORMAT1=10\nAUDIODESC_NUM=1\n"
        "AUDIODESC_PID0=11\nAUDIODESC_FORMAT0=12\nSUBTITLE_NUM=1\nSUBTITLE_PID0=13\nOTHER_NUM=1\n"
        "OTHER_PID0=14\nPMT_PID=15\nEIT_PID=16\nETT_PID=17\nPES_PID=18\n";
    for (const char* name : {"channel_dvb_t.cfg", "channel_atsc_t.cfg", "channel_isdb_s.cfg",
                             "channel_isdb_s3.cfg", "channel_atsc_t3.cfg"})
        write(name, "[COMMON]\nCHANNEL_NUM=2\n[CHANNEL1]\n" + all);
    zk_test_load_channel_info();
    TcChannelInfo channel = {};
    zk_test_get_dtv_channel_info(1, 1, &channel);
    EXPECT_EQ(channel.uFrequency, 1u);
    EXPECT_EQ(channel.uTsId, 0u);
    EXPECT_EQ(channel.uStreamId, 0u);
    EXPECT_EQ(channel.uVideoPid, 4u);
    EXPECT_EQ(channel.eVideoFormat, 5u);
    EXPECT_EQ(channel.uPcrPid, 6u);
    EXPECT_EQ(channel.audioNum, 2);
    EXPECT_EQ(channel.uAudioPids[0], 7u);
    EXPECT_EQ(channel.eAudioFormat[0], 8u);
    EXPECT_EQ(channel.uAudioPids[1], 9u);
    EXPECT_EQ(channel.eAudioFormat[1], 10u);
    EXPECT_EQ(channel.audioDescNum, 1);
    EXPECT_EQ(channel.uAudioDescPids[0], 11u);
    EXPECT_EQ(channel.eAudioDescFormat[0], 12u);
    EXPECT_EQ(channel.subtitleNum, 1);
    EXPECT_EQ(channel.uSubtitlePids[0], 13u);
    EXPECT_EQ(channel.otherNum, 1);
    EXPECT_EQ(channel.uOtherPids[0], 14u);
    EXPECT_EQ(channel.uPmtPid, 15u);
    EXPECT_EQ(channel.uEitPid, 16u);
    EXPECT_EQ(channel.uEttPid, 17u);
    EXPECT_EQ(channel.uPesPid, 18u);
    EXPECT_EQ(zk_testConfig.atscT[1].uPesPid, 0u);
    EXPECT_EQ(zk_testConfig.atscT[1].uEttPid, 17u);
    EXPECT_EQ(zk_testConfig.isdbS[1].uTsId, 2u);
    EXPECT_EQ(zk_testConfig.isdbS[1].uStreamId, 0u);
    EXPECT_EQ(zk_testConfig.isdbS3[1].uStreamId, 3u);
    EXPECT_EQ(zk_testConfig.atscT3[1].uFrequency, 1u);
    EXPECT_EQ(zk_testConfig.atscT3[1].uVideoPid, 0u);
    // Beyond the table's count it is channel 0; ATSC-T3 is not served.
    zk_test_get_dtv_channel_info(1, 2, &channel);
    EXPECT_EQ(channel.uFrequency, 0u);
    channel.uFrequency = 99;
    zk_test_get_dtv_channel_info(2048, 0, &channel);
    EXPECT_EQ(channel.uFrequency, 99u);
}

TEST_F(Environment, EachStandardHasATableAndAllAreReadInTurn) {
    const struct {
        const char* title;
        const char* file;
        /** 0: not asked for by a system. */
        uint32_t system;
    } rows[] = {
        {"ATSC-C", "atsc_c", QLX_TRANSMISSION_SYSTEM_ATSC_C},
        {"ATSC-T", "atsc_t", QLX_TRANSMISSION_SYSTEM_ATSC_T},
        {"ATSC-T3", "atsc_t3", 0},
        {"DVB-C", "dvb_c", QLX_TRANSMISSION_SYSTEM_DVB_C},
        {"DVB-T", "dvb_t", QLX_TRANSMISSION_SYSTEM_DVB_T},
        {"DVB-S", "dvb_s", QLX_TRANSMISSION_SYSTEM_DVB_S},
        {"ISDB-T", "isdb_t", QLX_TRANSMISSION_SYSTEM_ISDB_T},
        {"ISDB-S", "isdb_s", QLX_TRANSMISSION_SYSTEM_ISDB_S},
        {"ISDB-S3", "isdb_s3", QLX_TRANSMISSION_SYSTEM_ISDB_S3},
        {"PVR-Playback", "pvr_playback", 0},
        {"ATV", "atv", 0},
    };
    int frequency = 1000;
    for (const auto& row : rows)
        write(
            (std::string("channel_") + row.file + ".cfg").c_str(),
            "[COMMON]\nCHANNEL_NUM=1\n[CHANNEL0]\nFREQUENCY=" + std::to_string(frequency++) + "\n");
    zk_test_load_channel_info();
    std::string said = testing::internal::GetCapturedStdout();
    testing::internal::CaptureStdout();
    uint32_t expected = 1000;
    size_t at = said.find("]=========Channel info config======== \r\n");
    for (const auto& row : rows) {
        at = said.find(std::string("]----") + row.title + " channels ---- \r\n", at);
        EXPECT_NE(at, std::string::npos) << row.title << "\n" << said;
        TcChannelInfo channel = {};
        zk_test_get_dtv_channel_info(row.system, 0, &channel);
        EXPECT_EQ(channel.uFrequency, row.system != 0 ? expected : 0) << row.title;
        expected++;
    }
    EXPECT_EQ(zk_testConfig.atscT3[0].uFrequency, 1002u);
    EXPECT_EQ(zk_testConfig.atvFrequency[0], 1010u);
}

TEST_F(Environment, PvrPlaybackWritesItsServicePidsToIsdbS) {
    write("channel_isdb_s.cfg", "[COMMON]\nCHANNEL_NUM=1\n[CHANNEL0]\nPMT_PID=100\nVIDEO_PID=5\n");
    write("channel_pvr_playback.cfg",
          "[COMMON]\nCHANNEL_NUM=1\n[CHANNEL0]\nPMT_PID=200\nVIDEO_PID=6\n");
    zk_test_load_channel_info();
    TcChannelInfo channel = {};
    zk_test_get_pvr_playback_channel_info(0, &channel);
    EXPECT_EQ(channel.uPmtPid, 0u);
    EXPECT_EQ(channel.uVideoPid, 6u);
    EXPECT_EQ(zk_testConfig.isdbS[0].uPmtPid, 200u);
    EXPECT_EQ(zk_testConfig.isdbS[0].uVideoPid, 5u);
}

TEST_F(Environment, CountsStayWithinTheTables) {
    write("channel_dvb_c.cfg", "[COMMON]\nCHANNEL_NUM=300\n[CHANNEL0]\nAUDIO_NUM=200\n");
    write("channel_dvb_s.cfg", "[COMMON]\nCHANNEL_NUM=200\n");
    write("channel_atv.cfg", "[COMMON]\nCHANNEL_NUM=-1\n");
    zk_test_load_channel_info();
    EXPECT_EQ(zk_testConfig.dvbCChannelNum, 44);
    EXPECT_EQ(zk_testConfig.dvbC[0].audioNum, 16);
    EXPECT_EQ(zk_testConfig.dvbSChannelNum, 100);
    EXPECT_EQ(zk_testConfig.atvChannelNum, 100);
}

TEST_F(Environment, TheAvModulesParametersStopAtABadSource) {
    const std::string rest =
        "AV_VIDEO_DEV_ID=2\nAV_AUDIO_DEV_ID=3\n[DTV]\nAV_DTV_TUNER_ID=1\n[EXTIN]\n"
        "AV_EXTIN_PORT_ID=0x10002\n[DVB-S]\nAV_AUDIODESC_CHANNEL_ID=7\n[ISDB-S]\n"
        "AV_VIDEO_H264_CHANNEL_ID=5\n[ATSC-C]\nAV_AUDIO_AC3_CHANNEL_ID=4\n";
    for (const char* source : {"0", "18", "-1"}) {
        write("av_config.cfg", std::string("[COMMON]\nAV_SOURCE=") + source + "\n" + rest);
        EXPECT_EQ(TC_AV_LOAD_CONFIG(), 1u);
        EXPECT_EQ(zk_testConfig.av.stSource.eDTVTunerDev, 0u);
    }
    write("av_config.cfg", "[COMMON]\nAV_SOURCE=17\n" + rest);
    EXPECT_EQ(TC_AV_LOAD_CONFIG(), 0u);
    const TcAvConfig& av = zk_testConfig.av;
    EXPECT_EQ(av.stSource.eVideoDev, 2u);
    EXPECT_EQ(av.stSource.eDTVTunerDev, 1u);
    EXPECT_EQ(av.stSource.uExtInPort, 2u);
    EXPECT_EQ(av.uAudioDescChannelIds[AV_DVB_S], 7u);
    EXPECT_EQ(av.uH264ChannelIds[AV_ISDB_S], 5u);
    EXPECT_EQ(av.uAc3ChannelIds[1], 4u);
    write("av_config.cfg", "[COMMON]\nAV_SOURCE=16\nAV_VIDEO_DEV_ID=4\n");
    EXPECT_EQ(TC_AV_LOAD_CONFIG(), 1u);
}

TEST(DiffTime, BorrowsFromTheSeconds) {
    const struct {
        timeval start, end;
        int64_t ms;
    } rows[] = {
        {{1, 0}, {1, 999}, 0},    {{1, 0}, {1, 1000}, 1},  {{1, 900000}, {2, 100000}, 200},
        {{1, 999999}, {2, 0}, 0}, {{5, 0}, {3, 0}, -2000}, {{0, 0}, {3000000, 0}, 3000000000},
    };
    for (const auto& row : rows)
        EXPECT_EQ(zk_test_diff_timeMs(&row.start, &row.end), row.ms);
}

TEST(ConfigPaths, AreOfFilesThatAreThereAndDoNotRunIntoEachOther) {
    ConfigFiles files = {};
    const char* const paths[] = {
        files.autoTestPlatform,
        files.channelAtscC,
        files.channelAtscT,
        files.channelAtscT3,
        files.channelDvbC,
        files.channelDvbT,
        files.channelDvbS,
        files.channelIsdbT,
        files.channelIsdbS,
        files.channelIsdbS3,
        files.channelAtv,
        files.av,
        files.pvr,
        files.localPlayer,
        files.demux,
        files.streamInject,
        files.channelPvrPlayback,
        files.common,
        files.feature,
        files.tuner,
    };
    const char* const names[] = {
        "auto_test_platform",   "channel_atsc_c",     "channel_atsc_t", "channel_atsc_t3",
        "channel_dvb_c",        "channel_dvb_t",      "channel_dvb_s",  "channel_isdb_t",
        "channel_isdb_s",       "channel_isdb_s3",    "channel_atv",    "av_config",
        "pvr_config",           "localplayer_config", "demux_config",   "stream_inject_config",
        "channel_pvr_playback", "common_config",      "feature",        "tuner_config",
    };
    const std::string source = ZK_SOURCE_DIR;
    int32_t platform = 5;
    snprintf(files.commonDir, sizeof files.commonDir, "%s", "config/common");
    get_common_config(&files);
    set_platform(&files, &platform);
    for (size_t i = 0; i < 20; i++) {
        const std::string path = source + "/" + paths[i];
        EXPECT_EQ(access(path.c_str(), R_OK), 0) << path;
        EXPECT_EQ(std::filesystem::path(path).stem(), names[i]);
    }
    // The longest that fits, and one character more.
    char path[CONFIG_PATH_SIZE + 1] = "";
    out_config_path("/d", std::string(97, 'n').c_str(), path);
    EXPECT_EQ(std::string(path), "/d" + std::string(97, 'n'));
    out_config_path("/d", std::string(98, 'n').c_str(), path);
    EXPECT_EQ(std::string(path), "/d" + std::string(97, 'n'));
}

/** Each line of the menu leads to the folder of its name, and one platform tells the sound library
 *  where its settings are. */
TEST(Platforms, AreInTheFoldersOfTheirNames) {
    const char* const names[] = {"mtk9602-au",       "novatek",     "mtk9900-android-us",
                                 "rtd2851a-eu",      "mtk9602-eu",  "mtk9900-linux-us",
                                 "mtk9900-linux-eu", "mtk9602-isdb"};
    for (int32_t index = 1; index <= 8; index++) {
        ConfigFiles files = {};
        std::string name = names[index - 1];
        const char* line = config_platformMenuLine(index);
        ASSERT_NE(line, nullptr) << index;
        EXPECT_EQ(std::string(line).find(std::to_string(index) + ".    " + name + " "), 0u) << line;
        unsetenv("ALSA_CONFIG_PATH");
        set_platform(&files, &index);
        std::replace(name.begin(), name.end(), '-', '_');
        EXPECT_STREQ(files.platformDir, ("config/" + name).c_str());
        EXPECT_STREQ(files.tuner, ("config/" + name + "/tuner_config.cfg").c_str());
        const char* sound = getenv("ALSA_CONFIG_PATH");
        EXPECT_STREQ(sound != nullptr ? sound : "",
                     index == 2 ? "/mtd_apexe/board/etc/alsa.conf" : "");
    }
    unsetenv("ALSA_CONFIG_PATH");
    EXPECT_EQ(config_platformMenuLine(0), nullptr);
    EXPECT_EQ(config_platformMenuLine(9), nullptr);
    for (int32_t index : {0, 9, -1}) {
        ConfigFiles files = {};
        set_platform(&files, &index);
        EXPECT_STREQ(files.platformDir, "") << index;
    }
}

}  // namespace

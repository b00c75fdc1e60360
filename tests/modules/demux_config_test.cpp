// The demultiplexers' configuration: which keys fill what, and values that do not fit.
#include "testcase/demux/demux_config.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <string>

#include "environment/config_files.h"

namespace {

/** Runs with a folder of its own as working directory. */
class DemuxConfigFile : public testing::Test {
 protected:
    void SetUp() override {
        char folder[] = "/tmp/demux_config_XXXXXX";
        ASSERT_NE(mkdtemp(folder), nullptr);
        folder_ = folder;
        ASSERT_NE(getcwd(back_, sizeof back_), nullptr);
        ASSERT_EQ(chdir(folder), 0);
        snprintf(g_configFile.demux, sizeof g_configFile.demux, "demux.cfg");
    }
    void TearDown() override {
        g_configFile = {};
        g_tcDemuxConfig = {};
        unlink("demux.cfg");
        ASSERT_EQ(chdir(back_), 0);
        ASSERT_EQ(rmdir(folder_.c_str()), 0);
    }
    std::string load(const std::string& text) {
        std::ofstream("demux.cfg") << text;
        testing::internal::CaptureStdout();
        Demux_LoadParams();
        return testing::internal::GetCapturedStdout();
    }

    std::string folder_;
    char back_[4096];
};

TEST_F(DemuxConfigFile, EachStandardHasItsBlock) {
    const struct {
        const char* section;
        const DemuxTsFiles* files;
    } blocks[] = {
        {"ATSC-C", &g_tcDemuxConfig.stAtsccTs}, {"ATSC-T", &g_tcDemuxConfig.stAtsctTs},
        {"DVB-C", &g_tcDemuxConfig.stDvbcTs},   {"DVB-T", &g_tcDemuxConfig.stDvbtTs},
        {"DVB-S", &g_tcDemuxConfig.stDvbsTs},   {"ISDB-T", &g_tcDemuxConfig.stIsdbtTs},
        {"ISDB-S", &g_tcDemuxConfig.stIsdbsTs},
    };
    std::string text =
        "[COMMON]\nDEMUX_TS_FILE_PATH=./ts/\nDEMUX_INVALID_PID=0x1b00\n"
        "DEMUX_INVALID_TABLE_ID=240\n";
    for (const auto& block : blocks) {
        std::string name = block.section;
        text += "[" + name + "]\nTS_FILE_NUM=2\nTS_FILE_0=" + name + ".ts\nTS_FILE_1=b.ts\n" +
                "TS_FILE_0_CHANNEL_ID=3\nTS_FILE_1_CHANNEL_ID=4\nTS_FILE_2=beyond.ts\n";
    }
    std::string out = load(text);
    EXPECT_EQ(g_tcDemuxConfig.uInvalidPid, 0x1b00u);
    EXPECT_EQ(g_tcDemuxConfig.uInvalidTableId, 240u);
    for (const auto& block : blocks) {
        EXPECT_EQ(block.files->uTsFileNum, 2u) << block.section;
        EXPECT_EQ(block.files->tsFilePath[0], "./ts/" + std::string(block.section) + ".ts");
        EXPECT_STREQ(block.files->tsFilePath[1], "./ts/b.ts") << block.section;
        EXPECT_EQ(block.files->uTsFileChannelId[1], 4u) << block.section;
        EXPECT_STREQ(block.files->tsFilePath[2], "") << block.section;
        EXPECT_NE(out.find("]Load " + std::string(block.section) + " config !\r\n"),
                  std::string::npos);
    }
    load("");
    EXPECT_EQ(g_tcDemuxConfig.stDvbcTs.uTsFileNum, 0u) << "a load begins with zeros";
    EXPECT_STREQ(g_tcDemuxConfig.stDvbcTs.tsFilePath[0], "");
}

TEST_F(DemuxConfigFile, CountsStayWithinTheTables) {
    load(
        "[DVB-C]\nTS_FILE_NUM=101\nTS_FILE_99=last.ts\nTS_FILE_100=beyond.ts\n"
        "[DVB-T]\nTS_FILE_NUM=-1\n[ATSC-T3]\nALP_IP_NUM=9\n");
    EXPECT_EQ(g_tcDemuxConfig.stDvbcTs.uTsFileNum, 100u);
    EXPECT_STREQ(g_tcDemuxConfig.stDvbcTs.tsFilePath[99], "last.ts");
    EXPECT_EQ(g_tcDemuxConfig.stDvbtTs.uTsFileNum, 0u);
    EXPECT_EQ(g_tcDemuxConfig.uAlpIpNum, 4u);
}

TEST_F(DemuxConfigFile, LinkLayerStreamsHaveHostOrder) {
    load(
        "[ATSC-T3]\nALP_IP_NUM=2\nALP_IP_0_SRC_ADDR=192.168.31.1\nALP_IP_0_SRC_PORT=4937\n"
        "ALP_IP_0_DST_ADDR=224.0.23.60\nALP_IP_0_DST_PORT=4938\nALP_IP_1_SRC_ADDR=nonsense\n");
    const DemuxAlpIp& first = g_tcDemuxConfig.stAlpIp[0];
    EXPECT_EQ(first.uSrcAddr, 0xc0a81f01u);
    EXPECT_EQ(first.uSrcPort, 4937u);
    EXPECT_EQ(first.uDstAddr, 0xe000173cu);
    EXPECT_EQ(first.uDstPort, 4938u);
    EXPECT_EQ(g_tcDemuxConfig.stAlpIp[1].uSrcAddr, 0u);
}

}  // namespace

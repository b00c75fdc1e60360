// DmxInject: verdicts under faults, on boards that lack demultiplexers, and with files that are
// none. The decoders' reports are made by hand; played recordings are in tests/golden.
#include <filesystem>
#include <memory>

#include "testcase/dmx_inject/inject_harness.h"
#include "tests/shared/av_reporter.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/demux_streams.h"
#include "tests/shared/module_bench.h"

namespace {

namespace fs = std::filesystem;
using demux_test::Bytes;
using demux_test::StreamMaker;

class DmxInjectModuleTest : public ModuleBench {
 protected:
    void SetUp() override {
        ModuleBench::SetUp();
        EXPECT_EQ(DmxInjectModule.setup(), 0u);
        // Six minutes of 1.5 Mbit/s, of which nothing can be decoded.
        StreamMaker maker;
        while (maker.count < 60000) {
            if (maker.count % 40 == 0)
                maker.clock(0x401, uint64_t{maker.count} * 27000);
            else
                maker.nulls(1);
        }
        Bytes file;
        for (size_t at = 0; at < maker.bytes.size(); at += 188) {
            file.insert(file.end(), 4, 0);
            file.insert(file.end(), maker.bytes.begin() + static_cast<long>(at),
                        maker.bytes.begin() + static_cast<long>(at) + 188);
        }
        folder_.write("a.ts", std::string(file.begin(), file.end()));
        for (char* path :
             {g_stInjectParams.recorder_sd_ts_file, g_stInjectParams.recorder_hd_ts_file,
              g_stInjectParams.recorder_multi_ts_file, g_stInjectParams.byte_unalign_ts_file})
            snprintf(path, INJ_PATH_SIZE, "%s", (folder_.path() + "/a.ts").c_str());
        reporter_ = std::make_unique<Reporter>();
    }
    void TearDown() override {
        reporter_.reset();
        // The amplifier's bus stays up, as required.
        const std::string state = deviceState();
        EXPECT_TRUE(state.empty() || state == "GPIO initialised\nI2C initialised\n") << state;
        ModuleBench::TearDown();
    }
    static uint32_t run(const std::string& name, const std::string& fault = "") {
        return runCaseUnder(DmxInjectModule, name, fault);
    }
    void useFile(const std::string& contents) {
        folder_.write("b.ts", contents);
        snprintf(g_stInjectParams.recorder_sd_ts_file, INJ_PATH_SIZE, "%s",
                 (folder_.path() + "/b.ts").c_str());
    }

    BenchFolder folder_;
    std::unique_ptr<Reporter> reporter_;
};

TEST_F(DmxInjectModuleTest, CasesRunWhereTheBoardHasTheDemultiplexer) {
    zk_testConfig.features[FEATURE_PVR_PLAYBACK_DEMUX2] = 0;
    EXPECT_EQ(run("TC_DmxInjectOpenClose_002"), uint32_t{TC_SUCCESS});
    EXPECT_EQ(run("TC_DmxInjectOpenClose_003"), uint32_t{TC_NOT_APPLICABLE});
    EXPECT_EQ(run("TC_InjTestWholeFlow_003"), uint32_t{TC_NOT_APPLICABLE});
    zk_testConfig.features[FEATURE_PVR_PLAYBACK_DEMUX0] = 0;
    for (const char* name : {"TC_InjTestInitDeinit", "TC_InjTestDoubleStop", "TC_DmxInjectSeek",
                             "TC_InjTest_SD_TS_FILE", "TC_RecInjTestWholeFlow_001"})
        EXPECT_EQ(run(name), uint32_t{TC_NOT_APPLICABLE}) << name;
}

TEST_F(DmxInjectModuleTest, FaultsAreSeenAndUndone) {
    const struct {
        const char* name;
        const char* fault;
    } rows[] = {
        {"TC_InjTestInitDeinit", "QLX_DmxInjectInit return=1"},
        {"TC_InjTestDoubleOpen_004", "QLX_DmxInjectOpen call=2 return=0"},
        {"TC_InjTestOpenOnNullOpenParam", "QLX_DmxInjectOpen return=1"},
        {"TC_InjTestDoubleClose", "QLX_DmxInjectClose call=2 return=0"},
        {"TC_InjTestUnRegisterWithNullCb", "QLX_DmxInjectUnRegisterCallback call=1 return=0"},
        {"TC_InjTestWriteDataWithZeroSize", "QLX_DmxInjectWriteData return=0"},
        {"TC_InjTestPauseBeforeStart", "QLX_DmxInjectPause return=0"},
        {"TC_InjTestResumeBeforePause", "QLX_DmxInjectResume return=0"},
        {"TC_InjTestTimeConsume_002", "QLX_DmxInjectClose delay=201"},
        {"TC_InjTestFlushTimeConsume_001", "QLX_DmxInjectFlush delay=301"},
        {"TC_InjTestFlushTimeConsume_001", "QLX_DmxInjectPause delay=201"},
        {"TC_InjTestGetValueTimeConsum_003", "QLX_DmxInjectGetCapability delay=201"},
        {"TC_InjTestPressureTest2_001", "QLX_DmxInjectStop call=10 return=1"},
        {"TC_InjTestPressureTest3_001", "QLX_DmxInjectResume call=10 return=1"},
        {"TC_InjTestWholeFlow_001", "QLX_VideoStart return=1"},
        {"TC_InjTestWholeFlow_002", "QLX_DmxInjectFlush return=1"},
        {"TC_DmxInjectSetSpeed", "QLX_DmxInjectSetSpeed call=7 return=1"},
        {"TC_DmxInjectBeginFinishTimes_001", "QLX_DmxInjectStart call=3 return=1"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(run(row.name, row.fault), uint32_t{TC_FAILURE}) << row.name << " " << row.fault;
    EXPECT_EQ(run("TC_InjTestFlushTimeConsume_001", "QLX_DmxInjectFlush delay=300"),
              uint32_t{TC_SUCCESS});
}

TEST_F(DmxInjectModuleTest, FilesThatAreNoneAreTold) {
    fs::remove(folder_.path() + "/a.ts");
    EXPECT_EQ(run("TC_InjTestWholeFlow_001"), uint32_t{TC_FAILURE});
    std::string out = takeOutput();
    EXPECT_EQ(count(out, "E:Fail to open ts file:"), 1u);
    EXPECT_EQ(count(out, "FUNC:BeginInject(g_injectHdl, pFile) RETURN ERROR VALUE [1]"), 1u);
    // Shorter than a block: the first read is short, and nothing is written.
    for (const std::string& contents : {std::string(), std::string(98303, 'G')}) {
        useFile(contents);
        EXPECT_EQ(run("TC_DmxInjectBeginFinish_001"), uint32_t{TC_SUCCESS});
        out = takeOutput();
        EXPECT_EQ(count(out, "I:Reach end of file.\n"), 1u);
        EXPECT_EQ(count(out, "INJECT_EVENT_DATA_WRITE_DONE"), 0u);
        // Waiting for the end of what never began ends at once, with a word.
        EXPECT_EQ(InjTestWriteDataFinish(0, 0), uint32_t{TC_FAILURE});
        takeOutput();
    }
    // No stream at all: it is written, and drains away.
    useFile(std::string(500000, 'x'));
    EXPECT_EQ(run("TC_DmxInjectBeginFinish_001"), uint32_t{TC_SUCCESS});
    EXPECT_EQ(count(takeOutput(), "INJECT_EVENT_DATA_WRITE_DONE"), 5u);
}

TEST_F(DmxInjectModuleTest, TheEndOfPlaybackIsAwaited) {
    int64_t begin = nowMs();
    EXPECT_EQ(run("TC_InjTest_SD_TS_FILE"), uint32_t{TC_SUCCESS});
    EXPECT_GT(nowMs() - begin, 58000) << "a minute of stream";
    std::string out = takeOutput();
    EXPECT_EQ(count(out, "I:Need waiting for playback done.\n"), 1u);
    EXPECT_EQ(count(out, "I:Inject callback, event:2.\n"), 1u);
    useFile(std::string(1000, 'G'));
    EXPECT_EQ(run("TC_InjTest_SD_TS_FILE"), uint32_t{TC_FAILURE});
    EXPECT_EQ(count(takeOutput(), "]Inject has been finsihed\n"), 1u);
}

TEST_F(DmxInjectModuleTest, WhatASeekHasToShowIsCounted) {
    const struct {
        uint32_t seeks;
        uint32_t ready;
        uint32_t verdict;
    } rows[] = {{2, 0, 1},  {2, 1, 0},  {2, 3, 0},   {2, 4, 1},   {9, 10, 0},
                {9, 11, 1}, {10, 8, 0}, {10, 12, 0}, {10, 13, 1}, {20, 17, 0}};
    for (const auto& row : rows) {
        g_frameReady.uCount = row.ready;
        EXPECT_EQ(CheckVideoFrameReady(row.seeks), row.verdict) << row.seeks << " " << row.ready;
    }
}

}  // namespace

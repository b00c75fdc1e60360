// Record: verdicts on the healthy device, on each board of the configuration, and under faults; the
// recording's file on a disk that is full, gone, write-protected, or very large.
#include <errno.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "platform/qlx_crypto.h"
#include "testcase/record/record_harness.h"
#include "testcase/record/record_output.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/demux_streams.h"
#include "tests/shared/module_bench.h"

namespace {

namespace fs = std::filesystem;
using demux_test::Bytes;
using demux_test::StreamMaker;

/** A bench on which every transmitter plays one stream that has the PIDs of all channels. */
class RecordModuleTest : public ModuleBench {
 protected:
    void SetUp() override {
        ModuleBench::SetUp();
        root_ = fs::current_path();
        fs::create_directories(folder_.path() + "/record/disk");
        fs::create_directory_symlink(root_ / "config", folder_.path() + "/config");
        fs::current_path(folder_.path());
        setUpModule();
    }
    void TearDown() override {
        fs::current_path(root_);
        EXPECT_EQ(deviceState(), "");
        ModuleBench::TearDown();
    }
    void setUpModule() {
        std::set<uint32_t> pids;
        for (const auto* table : {zk_testConfig.dvbT, zk_testConfig.dvbC, zk_testConfig.dvbS,
                                  zk_testConfig.isdbT, zk_testConfig.isdbS}) {
            for (int i = 0; i < 4; i++)
                pids.insert({table[i].uVideoPid, table[i].uAudioPids[0], table[i].uPmtPid});
        }
        pids.erase(0);
        StreamMaker maker;
        for (uint32_t pid : pids)
            maker.packet(static_cast<uint16_t>(pid), true, Bytes(184, 0x33));
        maker.clock(0x1ffe, 0);
        maker.nulls(8);
        folder_.write("air.ts", std::string(maker.bytes.begin(), maker.bytes.end()));
        air("DVB-T", zk_testConfig.dvbT, 4);
        air("DVB-C", zk_testConfig.dvbC, 1);
        air("DVB-S", zk_testConfig.dvbS, 1);
        air("ISDB-T", zk_testConfig.isdbT, 3);
        air("ISDB-S", zk_testConfig.isdbS, 1);
        ASSERT_EQ(RecordModule.setup(), 0u);
    }
    void air(const std::string& system, const TcChannelInfo* channels, int count) {
        for (int i = 0; i < count; i++) {
            std::string name = system + "/" + std::to_string(channels[i].uFrequency);
            event("air " + name + " STREAM=" + folder_.path() + "/air.ts");
        }
    }
    static uint32_t run(const std::string& name, const std::string& fault = "") {
        return runCaseUnder(RecordModule, name, fault);
    }
    /** Opens the files of demultiplexer 0 as a flow does. */
    static uint32_t openFile(const char* name) {
        g_recHandles[0] = 1;
        return OpenRecFile(1, name);
    }
    static void closeFile() {
        CloseRecFile(0);
        g_recHandles[0] = 0;
    }
    static int32_t bring(Bytes data) {
        return TestCaseTSCallback(1, 0, data.data(), static_cast<uint32_t>(data.size()),
                                  cbUserData);
    }
    /** Packets of 192 bytes with these stamps. */
    static Bytes stamped(const std::vector<uint32_t>& stamps) {
        Bytes bytes;
        for (uint32_t stamp : stamps) {
            for (int shift = 24; shift >= 0; shift -= 8)
                bytes.push_back(static_cast<uint8_t>(stamp >> shift));
            bytes.push_back(0x47);
            bytes.resize(bytes.size() + 187, 0x11);
        }
        return bytes;
    }

    fs::path root_;
    BenchFolder folder_;
};

TEST_F(RecordModuleTest, EveryCaseSucceedsOnEveryBoard) {
    const std::set<std::string> onlyOnce = {
        "TC_RecWholeFlowLongTime_001",     "TC_RecCheckTsCallbackData_001",
        "TC_RecIncreaseFileSize_001",      "TC_RecIncreaseFileSize_002",
        "TC_RecWholeFlowTimes_001",        "TC_RecWholeFlowMidTime_001",
        "TC_RecCheckTsPacketTimestamp_001"};
    for (int32_t platform = 1; platform <= 8; platform++) {
        set_platform(&g_configFile, &platform);
        const std::string path = g_configFile.platformDir;
        folder_.useBoard("[BOARD]\nPLATFORM=" + path.substr(path.rfind('/') + 1) + "\n");
        zk_testConfig = {};
        zk_loadEnvironment();
        qlx_sim_reset();
        setUpModule();
        for (uint32_t i = 0; i < RecordModule.caseCount; i++) {
            const std::string name = RecordModule.cases[i].name;
            // The descrambled one plays, for which this stream has no picture.
            if ((platform > 1 && onlyOnce.count(name) == 1) || name == "TC_RecScramWholeFlow_001")
                continue;
            EXPECT_EQ(run(name), uint32_t{TC_SUCCESS}) << path << " " << name;
            EXPECT_EQ(deviceState(), "") << path << " " << name;
        }
        takeOutput();
    }
}

TEST_F(RecordModuleTest, EachFlowHasItsFile) {
    const std::pair<const char*, const char*> rows[] = {
        {"TC_RecWholeFlow_004_PATH_2", "test_demux2.ts"},
        {"TC_RecWholeFlowWithPause_001", "test_demux_pause0.ts"},
        {"TC_RecWholeFlowConsumption_001", "test_demux_consum0.ts"},
        {"TC_RecScramWholeFlow_001", "Scram0.ts"},
        {"TC_RecCheckTsPacketTimestamp_001", "test_timestamp0.ts"},
        {"TC_RecMultiAudio", "multilAudio.ts"},
        {"TC_RecMultiSubtitle", "multilSubtitle.ts"},
        {"TC_RecPMT", "pmt.ts"},
        {"TC_RecAudioDesc", "audioDesc.ts"},
        {"TC_RecOtherPids", "otherPids.ts"},
    };
    for (const auto& [name, file] : rows) {
        run(name);
        for (const std::string suffix : {"", ".idx"})
            EXPECT_TRUE(fs::remove(std::string("record/") + file + suffix)) << name << suffix;
        for (const auto& entry : fs::directory_iterator("record"))
            EXPECT_TRUE(entry.is_directory()) << name << " has written " << entry.path();
    }
}

TEST_F(RecordModuleTest, PathsThatAreSwitchedOffAreNotApplicable) {
    g_stRecoderParams.stStandards[0].stPaths[0].uSwitch = 0;
    g_stRecoderParams.stStandards[3] = {};
    for (const char* name : {"TC_RecWholeFlow_001", "TC_RecNormalOpen_011", "TC_RecNormalOpen_004",
                             "TC_RecWholeFlow_004_PATH_2", "TC_RecIncreaseFileSize_002"})
        EXPECT_EQ(run(name), uint32_t{TC_NOT_APPLICABLE}) << name;
    EXPECT_EQ(run("TC_RecMultiAudio"), uint32_t{TC_SUCCESS}) << "path 3 is on";
    EXPECT_EQ(TC_RecTestWholeFlow(0, 0, QLX_TRANSMISSION_SYSTEM_ATSC_T, 0), uint32_t{TC_FAILURE});
    EXPECT_NE(takeOutput().find("]unsupported transmit system\n"), std::string::npos);
}

TEST_F(RecordModuleTest, FaultsAreSeenAndUndone) {
    const struct {
        const char* name;
        const char* fault;
    } rows[] = {
        {"TC_RecTestDoubleInit", "QLX_RecordInit call=2 return=1"},
        {"TC_RecTestOpenBeforeInit", "QLX_RecordOpen return=0"},
        {"TC_RecTestDoubleOpen", "QLX_RecordOpen call=2 return=0"},
        {"TC_RecTestOpenOnNullCfg", "QLX_RecordOpen return=1"},
        {"TC_RecTestSetVideoFmtOnErrFmt", "QLX_RecordSetVideoFmt return=1"},
        {"TC_RecTestSetVideoFmt", "QLX_RecordSetVideoFmt call=6 return=1"},
        {"TC_RecTestAddPidOnMorePids", "QLX_RecordAddPid call=33 return=1"},
        {"TC_RecTestRemovePidNotAdded", "QLX_RecordRemovePid return=0"},
        {"TC_RecTestDoubleStop", "QLX_RecordStop call=2 return=0"},
        {"TC_RecWholeFlow_001", "QLX_DemuxStart return=1"},
        {"TC_RecWholeFlow_001", "QLX_RecordAddPid call=3 return=1"},
        {"TC_RecWholeFlow_001", "RecordData drop"},
        {"TC_RecWholeFlow_001", "RecordData call=1 flip=data"},
        {"TC_RecWholeFlowTimes_001", "QLX_RecordStop call=10 return=1"},
        {"TC_RecWholeFlowConsumption_001", "QLX_RecordInit delay=201"},
        {"TC_RecWholeFlowConsumption_002", "QLX_DemuxClose delay=201"},
        {"TC_RecWholeFlowWithPause_001", "QLX_RecordResume return=1"},
        {"TC_RecIncreaseFileSize_001", "RecordData call=900 delay=5000"},
        {"TC_RecCheckTsPacketTimestamp_001", "RecordData call=20 flip=data"},
        {"TC_RecCheckTsCallbackData_001", "RecordData call=3000 delay=1100"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(run(row.name, row.fault), uint32_t{TC_FAILURE}) << row.name << " " << row.fault;
        qlx_sim_reset();
        setUpModule();
        takeOutput();
    }
    EXPECT_EQ(run("TC_RecWholeFlowConsumption_001", "QLX_RecordInit delay=200"),
              uint32_t{TC_SUCCESS});
}

TEST_F(RecordModuleTest, OnAFullDiskTheMessageTellsAndTheBeginningStays) {
    fs::create_symlink("/dev/full", "record/full.ts");
    ASSERT_EQ(openFile("record/full.ts"), 0u);
    takeOutput();
    EXPECT_EQ(bring(stamped({1, 2})), 0);
    EXPECT_EQ(bring(stamped({3, 4})), 0);
    std::string out = takeOutput();
    EXPECT_EQ(count(out, "E:Fail to write ts file:record/full.ts, error:"), 1u) << out;
    EXPECT_NE(out.find(strerror(ENOSPC)), std::string::npos) << out;
    closeFile();
    EXPECT_EQ(gp_tsFileHdl[0], nullptr);
    // A disk that fills up while a flow records: the flow sees it, and leaves nothing open.
    fs::create_symlink("/dev/full", "record/test_demux0.ts");
    EXPECT_EQ(run("TC_RecWholeFlow_001"), uint32_t{TC_FAILURE});
    out = takeOutput();
    EXPECT_EQ(count(out, "E:Fail to write ts file:"), 1u);
    EXPECT_NE(out.find("]Recording packet size is not 192!\n"), std::string::npos);
    EXPECT_EQ(deviceState(), "");
}

TEST_F(RecordModuleTest, AFolderThatIsNotThereIsToldAndNothingStaysOpen) {
    fs::remove_all("record");
    EXPECT_EQ(run("TC_RecWholeFlow_001"), uint32_t{TC_FAILURE});
    std::string out = takeOutput();
    EXPECT_EQ(count(out, "E:Fail to open ts file:./record/test_demux0.ts, error:"), 1u) << out;
    EXPECT_NE(out.find("FUNC:OpenRecFile(recHandle, record_file) RETURN ERROR VALUE [1]"),
              std::string::npos);
    EXPECT_EQ(deviceState(), "");
    fs::create_directories("record/name.ts.idx");
    EXPECT_EQ(openFile("record/name.ts"), 1u);
    out = takeOutput();
    EXPECT_EQ(count(out, "E:Fail to open index file:record/name.ts.idx, error:"), 1u) << out;
    EXPECT_EQ(gp_tsFileHdl[0], nullptr);
    // The standard places, which this machine has not.
    bRecordStoreDisk = 1;
    EXPECT_EQ(openFile("/proc/none/a.ts"), 1u);
    EXPECT_EQ(bRecordStoreDisk, 1u);
    bRecordStoreDisk = 0;
    EXPECT_EQ(OpenRecFile(99, nullptr), 0u) << "a handle without a place";
    closeFile();
}

TEST_F(RecordModuleTest, AFileGrowsBeyondFourGiB) {
    constexpr int64_t wide = (INT64_C(5) << 30) / 192 * 192;
    ASSERT_EQ(openFile("record/large.ts"), 0u);
    EXPECT_EQ(bring(stamped(std::vector<uint32_t>(16, 7))), 0);
    ASSERT_EQ(fseeko(gp_tsFileHdl[0], wide, SEEK_SET), 0);
    EXPECT_EQ(bring(stamped({8, 9})), 0);
    EXPECT_EQ(CheckPacketSize(), 0u);
    EXPECT_EQ(ftello(gp_tsFileHdl[0]), wide + 2 * 192) << "writing goes on where it was";
    g_fileSizeData.recFileSize = wide;
    g_fileSizeData.bStop = 0;
    g_fileSizeData.bNotGrowing = 0;
    pthread_t thread;
    const int64_t begin = nowMs();
    ASSERT_EQ(pthread_create(&thread, nullptr, FileSizeThread, gp_tsFileHdl[0]), 0);
    usleep(2500000);
    EXPECT_EQ(g_fileSizeData.bNotGrowing, 0u);
    pthread_join(thread, nullptr);
    EXPECT_EQ(nowMs() - begin, 4000) << "looked at every two seconds";
    EXPECT_EQ(g_fileSizeData.bNotGrowing, 1u);
    closeFile();
    EXPECT_EQ(fs::file_size("record/large.ts"), static_cast<uint64_t>(wide) + 2 * 192);
    fs::remove("record/large.ts");
}

TEST_F(RecordModuleTest, StampsMayStandStillButNotFall) {
    const struct {
        std::vector<uint32_t> stamps;
        uint32_t verdict;
    } rows[] = {
        {{1, 2, 3}, 0},
        {{5, 5, 5}, 0},
        {{5, 4}, 1},
        {{0x7fffffff, 0x80000000}, 1},
        {{0x80000000, 0x80000001, 3}, 0},
        {{}, 0},
    };
    for (const auto& row : rows) {
        ASSERT_EQ(openFile("record/stamps.ts"), 0u);
        if (!row.stamps.empty()) {
            EXPECT_EQ(bring(stamped(row.stamps)), 0);
        }
        EXPECT_EQ(CheckTimestamp(), row.verdict) << row.stamps.size();
        CloseRecFile(1);
        EXPECT_FALSE(fs::exists("record/stamps.ts"));
    }
    closeFile();
    EXPECT_EQ(CheckTimestamp(), 1u);
    EXPECT_EQ(CheckPacketSize(), 1u);
    EXPECT_EQ(CheckEncryption(), 1u);
}

TEST_F(RecordModuleTest, WhatIsEncryptedDecryptsToWhatWasOnTheAir) {
    const Bytes clear = stamped({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16});
    ASSERT_EQ(openFile("record/secret.ts"), 0u);
    bRecordEncrypt = 1;
    EXPECT_EQ(bring(clear), 0);
    rewind(gp_tsFileHdl[0]);
    EXPECT_EQ(CheckEncryption(), 0u);
    bRecordEncrypt = 0;
    closeFile();
    std::string file = folder_.read("record/secret.ts");
    ASSERT_EQ(file.size(), clear.size());
    EXPECT_NE(Bytes(file.begin(), file.end()), clear);
    // The same once more, so that the key needs no second place.
    Bytes again(clear.size());
    uint32_t length = 0;
    EXPECT_EQ(Encrypt(clear.data(), again.data(), static_cast<uint32_t>(clear.size()), &length),
              0u);
    EXPECT_EQ(length, clear.size());
    EXPECT_EQ(Bytes(file.begin(), file.end()), again);
    EXPECT_EQ(Encrypt(nullptr, again.data(), 16, &length), 1u);
    // In the clear, the check fails.
    ASSERT_EQ(openFile("record/clear.ts"), 0u);
    EXPECT_EQ(bring(clear), 0);
    rewind(gp_tsFileHdl[0]);
    EXPECT_EQ(CheckEncryption(), 1u);
    closeFile();
}

TEST_F(RecordModuleTest, DataOfOthersAreRefused) {
    Bytes data = stamped({1});
    g_recordTS.recordTSCount = 0;
    EXPECT_EQ(TestCaseTSCallback(1, 0, data.data(), 192, data.data()), 1);
    EXPECT_EQ(TestCaseTSCallback(1, 0, nullptr, 192, cbUserData), 1);
    EXPECT_EQ(g_recordTS.recordTSCount, 0u);
    EXPECT_EQ(count(takeOutput(), "I:pTsData = NULL || pUserData != origin pUserData\n"), 2u);
}

}  // namespace

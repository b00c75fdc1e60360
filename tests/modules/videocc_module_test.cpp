// AV-VideoCC: verdicts with captions that come as they should, with none, and with wrong ones; and
// what is undone. No stream is on the air: what the decoder would hand out is made by hand.
#include <unistd.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "simulator/av/decoder_state.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/module_bench.h"

namespace {

/** How the captions come. */
struct Manner {
    int64_t pauseMs = 40;
    /** Also when no parser is started, or no video. */
    bool withoutParser = false;
    bool withoutVideo = false;
    std::vector<uint8_t> pair = {0x94, 0x2C};
    uint32_t pairRaw = QLX_TRUE;
    /** Byte 0 of a packet is completed with its sequence number. */
    std::vector<uint8_t> packet = {0x02, 0x22, 'a', 'b'};
    uint32_t packetRaw = QLX_FALSE;
    /** Types that come; a type as which it is told. */
    uint32_t asType[2] = {QLX_VIDEO_CC_DATA_TYPE_NTSC, QLX_VIDEO_CC_DATA_TYPE_DTV};
};

/** Hands captions to whoever is registered at decoder 0, a pair and a packet in turn, while it
 *  lives. */
class Captions {
 public:
    explicit Captions(const Manner& manner) : manner_(manner), thread_([this] { run(); }) {}
    ~Captions() {
        end_ = true;
        thread_.join();
    }

 private:
    void run() {
        for (unsigned turn = 0; !end_; turn++) {
            usleep(static_cast<useconds_t>(manner_.pauseMs * 500));
            hand(turn % 2, turn / 2);
        }
    }
    void hand(uint32_t type, unsigned sequence) const {
        sim::DecoderFamily& family = sim::videoFamily();
        std::unique_lock<std::mutex> lock(family.mutex);
        const sim::Decoder& decoder = family.decoders[0];
        const sim::CaptionChoices choices = decoder.captions;
        const bool plays = decoder.run != nullptr || manner_.withoutVideo;
        lock.unlock();
        if (choices.callback == nullptr || !plays ||
            !(choices.started[type] || manner_.withoutParser))
            return;
        std::vector<uint8_t> bytes = type == 0 ? manner_.pair : manner_.packet;
        QLX_VideoCcData data = {};
        if (type == 1)
            bytes[0] = static_cast<uint8_t>(bytes[0] | sequence % 4 << 6);
        data.pu8Data = bytes.data();
        data.uDataLen = static_cast<uint32_t>(bytes.size());
        data.bIsScteIsRaw = type == 0 ? manner_.pairRaw : manner_.packetRaw;
        choices.callback(0, choices.userData, manner_.asType[type], &data);
    }

    const Manner manner_;
    std::atomic<bool> end_{false};
    std::thread thread_;
};

class VideoCcModule : public ModuleBench {
 protected:
    void SetUp() override {
        ModuleBench::SetUp();
        setUpModule();
    }
    void TearDown() override {
        EXPECT_EQ(AVDtvVideoCcModule.teardown(), 0u);
        ModuleBench::TearDown();
    }
    void setUpModule() {
        ASSERT_EQ(AVDtvVideoCcModule.setup(), 0u);
        rest_ = deviceState();
    }
    uint32_t run(const std::string& name, const Manner& manner = {},
                 const std::string& fault = "") {
        Captions captions(manner);
        const uint32_t verdict = runCaseUnder(AVDtvVideoCcModule, name, fault);
        EXPECT_EQ(deviceState(), rest_) << name;
        return verdict;
    }
    /** The same on a device that has no captions. */
    uint32_t runSilent(const std::string& name) {
        const uint32_t verdict = runCaseUnder(AVDtvVideoCcModule, name, "");
        EXPECT_EQ(deviceState(), rest_) << name;
        return verdict;
    }

    std::string rest_;
};

/** One case of each helper. */
const char* const helpers[] = {"TC_AV_VideoCcParserStart_001", "TC_AV_VideoCcParserStart_011",
                               "TC_AV_VideoCcParserEvent_005", "TC_AV_VideoCcParserEvent_015",
                               "TC_AV_VideoCcParserEvent_025", "TC_AV_VideoCcParserData_005",
                               "TC_AV_VideoCcParserData_015",  "TC_AV_VideoCcParserData_025"};

TEST_F(VideoCcModule, CasesSucceedOnEveryBoard) {
    BenchFolder folder;
    for (int32_t platform = 1; platform <= 8; platform++) {
        EXPECT_EQ(AVDtvVideoCcModule.teardown(), 0u);
        set_platform(&g_configFile, &platform);
        const std::string path = g_configFile.platformDir;
        folder.useBoard("[BOARD]\nPLATFORM=" + path.substr(path.rfind('/') + 1) + "\n");
        zk_testConfig = {};
        zk_loadEnvironment();
        qlx_sim_reset();
        setUpModule();
        for (const char* name : helpers)
            EXPECT_EQ(run(name), TC_SUCCESS) << path << " " << name;
        takeOutput();
    }
}

TEST_F(VideoCcModule, ADeviceWithoutCaptionsIsFoundOut) {
    // Two of the cases' rules do not ask for a caption at all.
    const bool succeeds[] = {true, false, false, false, false, true, true, false};
    for (size_t i = 0; i < sizeof helpers / sizeof helpers[0]; i++)
        EXPECT_EQ(runSilent(helpers[i]), succeeds[i] ? TC_SUCCESS : TC_FAILURE) << helpers[i];
}

TEST_F(VideoCcModule, SilenceTakesFiveSeconds) {
    const int64_t tuned = 300;
    int64_t began = nowMs();
    EXPECT_EQ(run("TC_AV_VideoCcParserStart_001"), TC_SUCCESS);
    EXPECT_NEAR(static_cast<double>(nowMs() - began), 5000 + tuned, 100);
    // One that comes in these five seconds is a failure, wherever it comes from.
    Manner manner;
    manner.withoutVideo = true;
    EXPECT_EQ(run("TC_AV_VideoCcParserStart_001", manner), TC_FAILURE);
    EXPECT_EQ(run("TC_AV_VideoCcParserEvent_011", manner), TC_FAILURE) << "after the video's stop";
    EXPECT_EQ(run("TC_AV_VideoCcParserEvent_021", manner), TC_FAILURE);
    manner = {};
    manner.withoutParser = true;
    EXPECT_EQ(run("TC_AV_VideoCcParserEvent_001", manner), TC_FAILURE) << "after the parser's stop";
    // The first caption may be late by a little less than five seconds.
    manner = {};
    manner.pauseMs = 4900;
    EXPECT_EQ(run("TC_AV_VideoCcParserStart_011", manner), TC_SUCCESS);
}

/** The monitor takes a row for dead after 300 seconds. */
TEST_F(VideoCcModule, TwoHundredNotificationsStayBelowTheMonitorsPatience) {
    Manner manner;
    // A packet every 1.4 seconds.
    manner.pauseMs = 1400;
    int64_t began = nowMs();
    EXPECT_EQ(run("TC_AV_VideoCcParserData_001", manner), TC_SUCCESS);
    EXPECT_GT(nowMs() - began, 270000);
    EXPECT_LT(nowMs() - began, 300000);
    began = nowMs();
    EXPECT_EQ(runSilent("TC_AV_VideoCcParserData_001"), TC_SUCCESS);
    EXPECT_GT(nowMs() - began, 400000) << "without any, the row is longer than that";
}

TEST_F(VideoCcModule, WrongCaptionsAreFoundOut) {
    const struct {
        const char* what;
        const char* name;
        void (*change)(Manner&);
    } rows[] = {
        {"a pair of three bytes", "TC_AV_VideoCcParserData_011",
         [](Manner& manner) {
             manner.pair = {1, 2, 3};
         }},
        {"a pair of one byte", "TC_AV_VideoCcParserData_021",
         [](Manner& manner) { manner.pair = {1}; }},
        {"a pair that is a packet", "TC_AV_VideoCcParserData_012",
         [](Manner& manner) { manner.pairRaw = QLX_FALSE; }},
        {"a pair told as a packet", "TC_AV_VideoCcParserData_013",
         [](Manner& manner) { manner.asType[0] = QLX_VIDEO_CC_DATA_TYPE_DTV; }},
        {"a packet told as a pair", "TC_AV_VideoCcParserData_001",
         [](Manner& manner) { manner.asType[1] = QLX_VIDEO_CC_DATA_TYPE_NTSC; }},
        {"pairs alone", "TC_AV_VideoCcParserData_025",
         [](Manner& manner) {
             manner.asType[1] = QLX_VIDEO_CC_DATA_TYPE_NTSC;
             manner.packet = {1, 2};
             manner.packetRaw = QLX_TRUE;
         }},
        {"a packet that is too short", "TC_AV_VideoCcParserData_008",
         [](Manner& manner) {
             manner.packet = {0x02, 0x22, 'a'};
         }},
        {"a packet that is too long", "TC_AV_VideoCcParserData_028",
         [](Manner& manner) {
             manner.packet = {0x01, 0x22, 'a'};
         }},
        {"triplets of two bytes", "TC_AV_VideoCcParserData_028",
         [](Manner& manner) {
             manner.packetRaw = QLX_TRUE;
             manner.packet = {0xFE, 1, 2, 3};
         }},
    };
    for (const auto& row : rows) {
        Manner manner;
        row.change(manner);
        EXPECT_EQ(run(row.name, manner), TC_FAILURE) << row.what;
    }
    Manner manner;
    manner.packetRaw = QLX_TRUE;
    manner.packet = {0xFE, 1, 2, 0xFE, 3, 4};
    EXPECT_EQ(run("TC_AV_VideoCcParserData_002", manner), TC_SUCCESS);
    EXPECT_EQ(run("TC_AV_VideoCcParserData_022", manner), TC_SUCCESS);
}

TEST_F(VideoCcModule, FaultsAreSeenAndUndone) {
    const struct {
        const char* name;
        const char* fault;
    } rows[] = {
        {"TC_AV_VideoCcParserStart_002", "QLX_VideoOpen return=1"},
        {"TC_AV_VideoCcParserStart_003", "QLX_VideoCcParserRegisterCallback return=1"},
        {"TC_AV_VideoCcParserStart_004", "QLX_VideoCcParserStart return=1"},
        {"TC_AV_VideoCcParserStart_013", "QLX_VideoRegisterCallback return=1"},
        {"TC_AV_VideoCcParserStart_014", "QLX_VOutOpen return=1"},
        {"TC_AV_VideoCcParserStart_015", "QLX_VideoStart return=1"},
        {"TC_AV_VideoCcParserStart_016", "QLX_VideoSyncSetMode return=1"},
        {"TC_AV_VideoCcParserStart_017", "QLX_VideoCcParserStart call=2 return=1"},
        {"TC_AV_VideoCcParserEvent_021", "QLX_VideoStart call=10 return=1"},
        {"TC_AV_VideoCcParserEvent_022", "QLX_VideoSyncSetMode call=10 return=1"},
        {"TC_AV_VideoCcParserData_003", "QLX_DemuxStart return=1"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(run(row.name, {}, row.fault), TC_FAILURE) << row.name << " " << row.fault;
}

}  // namespace

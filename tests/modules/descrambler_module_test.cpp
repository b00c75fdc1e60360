// DESCRAMBLER: verdicts on each board of the configuration and under faults, on a service of which
// nothing can be decoded; played ones are in tests/golden.
#include "platform/qlx_desc.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/module_bench.h"
#include "tests/shared/typed.h"

namespace {

class DescramblerModuleTest : public ModuleBench {
 protected:
    void SetUp() override {
        ModuleBench::SetUp();
        setUpModule();
    }
    void TearDown() override {
        EXPECT_EQ(DescramblerModule.teardown(), 0u);
        ModuleBench::TearDown();
    }
    void setUpModule() {
        ASSERT_EQ(DescramblerModule.setup(), 0u);
        rest_ = deviceState();
    }
    static uint32_t run(const std::string& name, const std::string& fault = "") {
        return runCaseUnder(DescramblerModule, name, fault);
    }

    BenchFolder folder_;
    std::string rest_;
};

TEST_F(DescramblerModuleTest, AutomaticCasesSucceedOnEveryBoard) {
    for (int32_t platform = 1; platform <= 8; platform++) {
        EXPECT_EQ(DescramblerModule.teardown(), 0u);
        set_platform(&g_configFile, &platform);
        const std::string path = g_configFile.platformDir;
        folder_.useBoard("[BOARD]\nPLATFORM=" + path.substr(path.rfind('/') + 1) + "\n");
        zk_testConfig = {};
        zk_loadEnvironment();
        qlx_sim_reset();
        setUpModule();
        for (uint32_t i = 0; i < DescramblerModule.caseCount; i++) {
            const TcCase& testCase = DescramblerModule.cases[i];
            if (testCase.autoFlag == MANUAL)
                continue;
            EXPECT_EQ(run(testCase.name), uint32_t{TC_SUCCESS}) << path << " " << testCase.name;
            EXPECT_EQ(deviceState(), rest_) << path << " " << testCase.name;
        }
    }
}

TEST_F(DescramblerModuleTest, FaultsAreSeenAndUndone) {
    const struct {
        const char* name;
        const char* fault;
    } rows[] = {
        {"TC_DESCRAMBLER_Open_001", "QLX_DescOpen return=1"},
        {"TC_DESCRAMBLER_Open_002", "QLX_DescClose return=1"},
        {"TC_DESCRAMBLER_Open_003", "QLX_DescOpen call=2 return=1"},
        {"TC_DESCRAMBLER_Open_003", "QLX_DemuxStart call=2 return=1"},
        {"TC_DESCRAMBLER_Open_004", "QLX_DescOpen call=16 return=1"},
        {"TC_DESCRAMBLER_Open_004", "QLX_DescClose call=16 return=1"},
        {"TC_DESCRAMBLER_SetPid_001", "QLX_DescSetPid return=1"},
        {"TC_DESCRAMBLER_SetPid_002", "QLX_DemuxConnectSource return=1"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(run(row.name, row.fault), uint32_t{TC_FAILURE}) << row.name << " " << row.fault;
        // The demultiplexer takes a descrambler along that did not close.
        EXPECT_EQ(deviceState(), rest_) << row.name << " " << row.fault;
    }
}

TEST_F(DescramblerModuleTest, WithoutAPictureTheOperatorIsNotAsked) {
    Typed yes("1\n");
    int64_t begin = nowMs();
    EXPECT_EQ(run("TC_DESCRAMBLER_SetKey_001"), uint32_t{TC_FAILURE});
    EXPECT_NEAR(static_cast<double>(nowMs() - begin), 300000.0, 2000.0) << "five minutes";
    std::string out = takeOutput();
    EXPECT_EQ(count(out, "]expect 1, but actually 0  \n"), 1u);
    EXPECT_EQ(count(out, "Yes input 1, otherwise input 0"), 0u);
    EXPECT_EQ(count(out, "###start to set key"), 0u);
    EXPECT_EQ(count(out, "]DESC_SekKey exit\r\n"), 1u) << "the thread has ended";
    EXPECT_EQ(deviceState(), rest_);
    EXPECT_EQ(run("TC_DESCRAMBLER_SetKey_005", "QLX_DescSetPid call=2 return=1"),
              uint32_t{TC_FAILURE});
    EXPECT_EQ(deviceState(), rest_);
}

}  // namespace

// VOUT-Primary: verdicts on the healthy device, on each board of the configuration, and under
// faults. The configured source is a broadcast; its decoders' reports are made by hand.
#include <memory>
#include <set>

#include "testcase/vout/vout_harness.h"
#include "tests/shared/av_reporter.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/module_bench.h"

namespace {

class VOutModule : public ModuleBench {
 protected:
    void SetUp() override {
        ModuleBench::SetUp();
        setUpModule();
        reporter_ = std::make_unique<Reporter>();
    }
    void TearDown() override {
        reporter_.reset();
        EXPECT_EQ(VOutModulePrimary.teardown(), 0u);
        ModuleBench::TearDown();
    }
    void setUpModule() {
        ASSERT_EQ(VOutModulePrimary.setup(), 0u);
        rest_ = deviceState();
    }
    static uint32_t run(const std::string& name, const std::string& fault = "") {
        return runCaseUnder(VOutModulePrimary, name, fault);
    }

    std::unique_ptr<Reporter> reporter_;
    /** What the module's set-up leaves in the device. */
    std::string rest_;
};

/** The case at a place from 0 of the five runs over the nine sources. */
std::string openCase(int place) {
    char name[32];
    snprintf(name, sizeof name, "TC_VOUT_Open_%03d", place + 1);
    return name;
}

TEST_F(VOutModule, CasesRunWhereTheBoardHasTheSource) {
    const int32_t sources[] = {
        -1, -1, FEATURE_HDMI0, FEATURE_HDMI1, FEATURE_HDMI2, FEATURE_CVBS0, FEATURE_YPBPR0, -1, -1};
    BenchFolder folder;
    unsigned absent = 0;
    for (int32_t platform = 1; platform <= 8; platform++) {
        EXPECT_EQ(VOutModulePrimary.teardown(), 0u);
        set_platform(&g_configFile, &platform);
        const std::string path = g_configFile.platformDir;
        folder.useBoard("[BOARD]\nPLATFORM=" + path.substr(path.rfind('/') + 1) + "\n");
        zk_testConfig = {};
        zk_loadEnvironment();
        qlx_sim_reset();
        setUpModule();
        std::set<std::string> notApplicable;
        for (int place = 0; place < 45; place++) {
            const int32_t feature = sources[place % 9];
            if (feature >= 0 && zk_testConfig.features[feature] == 0)
                notApplicable.insert(openCase(place));
        }
        absent += static_cast<unsigned>(notApplicable.size());
        for (uint32_t i = 0; i < VOutModulePrimary.caseCount; i++) {
            const char* name = VOutModulePrimary.cases[i].name;
            uint32_t expected = TC_SUCCESS;
            if (notApplicable.count(name) == 1)
                expected = TC_NOT_APPLICABLE;
            EXPECT_EQ(run(name), expected) << path << " " << name;
            EXPECT_EQ(deviceState(), rest_) << path << " " << name;
        }
        takeOutput();
    }
    EXPECT_EQ(absent, 30u) << "a set-top box without inputs, a television with two of HDMI";
}

TEST_F(VOutModule, AnalogFrontEndsThatHoldTheOutputAreLeftAlone) {
    zk_testConfig.features[FEATURE_AFE_TUNING_AFTER_ATV_SOURCE] = 1;
    for (const char* name : {"TC_VOUT_Open_026", "TC_VOUT_Open_027", "TC_VOUT_Open_035",
                             "TC_VOUT_Open_036", "TC_VOUT_Open_044", "TC_VOUT_Open_045"}) {
        qlx_sim_record(1);
        EXPECT_EQ(run(name), TC_SUCCESS) << name;
        EXPECT_EQ(count(callNames(), "QLX_VOutOpen "), 1u) << name << ": the front end's own";
        EXPECT_EQ(deviceState(), rest_) << name;
    }
    qlx_sim_record(1);
    EXPECT_EQ(run("TC_VOUT_Open_028"), TC_SUCCESS);
    EXPECT_EQ(count(callNames(), "QLX_VOutOpen "), 10u) << "other sources are not held";
}

TEST_F(VOutModule, FaultsAreSeenAndUndone) {
    const struct {
        const char* name;
        const char* fault;
    } rows[] = {
        {"TC_VOUT_Init_002", "QLX_VOutDeInit return=1"},
        {"TC_VOUT_Init_003", "QLX_VOutInit call=2 return=1"},
        {"TC_VOUT_Open_001", "QLX_VOutOpen return=0"},
        {"TC_VOUT_Open_009", "QLX_VOutOpen return=0"},
        {"TC_VOUT_Open_018", "QLX_VOutOpen return=0"},
        {"TC_VOUT_Open_019", "QLX_VOutOpen return=1"},
        {"TC_VOUT_Open_020", "QLX_DemuxStart return=1"},
        {"TC_VOUT_Open_021", "QLX_ExtInOpen return=1"},
        {"TC_VOUT_Open_033", "QLX_VOutClose call=10 return=1"},
        {"TC_VOUT_Open_037", "QLX_VOutOpen delay=201"},
        {"TC_VOUT_Open_045", "QLX_VOutClose delay=201"},
        {"TC_VOUT_Enable_001", "QLX_VOutEnable return=0"},
        {"TC_VOUT_Enable_004", "QLX_VOutDisable call=10 return=1"},
        {"TC_VOUT_Enable_005", "QLX_VOutDisable delay=201"},
        {"TC_VOUT_SetRect_002", "QLX_VOutSetRect return=0"},
        {"TC_VOUT_SetRect_004", "QLX_VOutSetRect call=10 return=1"},
        {"TC_VOUT_SetRect_005", "QLX_VOutSetRect delay=201"},
        {"TC_VOUT_SetRect_006", "QLX_VOutSetRect return=1"},
        {"TC_VOUT_Mute_001", "QLX_VOutSetMute call=2 return=1"},
        {"TC_VOUT_Mute_002", "QLX_VOutSetMute call=22 return=1"},
        {"TC_VOUT_Mute_003", "QLX_VOutSetMute call=2 delay=201"},
        {"TC_VOUT_Mute_004", "QLX_VOutGetMute call=2 return=1"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(run(row.name, row.fault), TC_FAILURE) << row.name << " " << row.fault;
        // A call that was answered wrongly may have left what the case could not know of.
        VOutModulePrimary.teardown();
        setUpModule();
    }
    EXPECT_EQ(run("TC_VOUT_Open_037", "QLX_VOutOpen delay=200"), TC_SUCCESS);
    EXPECT_EQ(run("TC_VOUT_Mute_003", "QLX_VOutSetMute delay=200"), TC_SUCCESS);
}

TEST_F(VOutModule, EachWordOfARectangleIsCompared) {
    for (const char* word : {"x", "y", "uWidth", "uHeight", "uReserved", "nonLinear", "dotToDot"}) {
        const std::string fault = std::string("QLX_VOutGetRect flip=") + word;
        EXPECT_EQ(run("TC_VOUT_SetRect_007", fault), TC_FAILURE) << fault;
    }
    EXPECT_EQ(run("TC_VOUT_Mute_004", "QLX_VOutGetMute call=1 set=mute:0"), TC_FAILURE);
    EXPECT_EQ(run("TC_VOUT_Mute_004", "QLX_VOutGetMute call=2 set=mute:1"), TC_FAILURE);
}

TEST_F(VOutModule, ASetUpThatFailsUndoesWhatItDid) {
    EXPECT_EQ(VOutModulePrimary.teardown(), 0u);
    const char* const services[] = {"QLX_TunerInit", "QLX_DemuxInit", "QLX_ExtInInit",
                                    "QLX_VideoInit", "QLX_AudioInit", "QLX_AOutInit"};
    for (const char* service : services) {
        qlx_sim_reset();
        addFault(std::string(service) + " return=1");
        EXPECT_EQ(VOutModulePrimary.setup(), TC_FAILURE) << service;
        EXPECT_EQ(deviceState(), "") << service;
        qlx_sim_clear_faults();
    }
    zk_testConfig.av.stSource.eSource = 0;
    EXPECT_EQ(VOutModulePrimary.setup(), TC_FAILURE);
    EXPECT_EQ(deviceState(), "");
    zk_testConfig.av.stSource.eSource = 16;
    setUpModule();
}

}  // namespace

// The cases of the AV modules of one source each: where they run, what they call, and how they end
// under faults. Broadcasts are reported by hand; inputs and front ends are the device's own.
#include <string.h>

#include <memory>
#include <set>

#include "testcase/av/av_events.h"
#include "testcase/av/av_play.h"
#include "tests/shared/av_reporter.h"
#include "tests/shared/bench_folder.h"
#include "tests/shared/module_bench.h"
#include "tests/shared/typed.h"

namespace {

const TcModule* const modules[] = {&AVDtvModule,  &AVAtvModule,  &AVPvrModule,
                                   &AVCvbsModule, &AVHdmiModule, &AVYpbprModule};

class AvSources : public ModuleBench {
 protected:
    void SetUp() override {
        ModuleBench::SetUp();
        // Reset has ended all services: each test sets up the module that it is about.
        use(AVCvbsModule);
    }
    void TearDown() override {
        reporter_.reset();
        EXPECT_EQ(module_->teardown(), 0u);
        ModuleBench::TearDown();
    }
    void use(const TcModule& module) {
        if (module_ != nullptr) {
            EXPECT_EQ(module_->teardown(), 0u);
        }
        reporter_.reset();
        qlx_sim_reset();
        module_ = &module;
        ASSERT_EQ(module.setup(), 0u) << module.name;
        if (&module == &AVDtvModule)
            reporter_ = std::make_unique<Reporter>();
        rest_ = deviceState();
        takeOutput();
    }
    uint32_t run(const std::string& name, const std::string& fault = "") {
        return runCaseUnder(*module_, name, fault);
    }
    /** The device without what a play leaves: initialised decoders, the Bluetooth sink. */
    std::string atRest() const {
        std::istringstream lines(deviceState());
        std::string text;
        for (std::string line; std::getline(lines, line);) {
            if (line != "Video initialised" && line != "Audio initialised" &&
                line != "AOut 5 open")
                text += line + "\n";
        }
        return text;
    }

    const TcModule* module_ = nullptr;
    std::unique_ptr<Reporter> reporter_;
    /** What the module's set-up leaves in the device. */
    std::string rest_;
};

/** The inputs that a row's description names. */
std::set<int32_t> featuresOf(const TcCase& row) {
    const struct {
        const char* label;
        int32_t feature;
    } inputs[] = {
        {"CVBS-0", FEATURE_CVBS0},   {"CVBS-1", FEATURE_CVBS1},   {"HDMI-0", FEATURE_HDMI0},
        {"HDMI-1", FEATURE_HDMI1},   {"HDMI-2", FEATURE_HDMI2},   {"YPBPR-0", FEATURE_YPBPR0},
        {"YPBPR-1", FEATURE_YPBPR1},
    };
    std::set<int32_t> features;
    for (const auto& input : inputs) {
        if (strstr(row.description, input.label) != nullptr)
            features.insert(input.feature);
    }
    return features;
}

TEST_F(AvSources, RunWhereTheBoardHasTheInput) {
    BenchFolder folder;
    unsigned notApplicable = 0;
    for (int32_t platform = 1; platform <= 8; platform++) {
        EXPECT_EQ(module_->teardown(), 0u);
        module_ = nullptr;
        set_platform(&g_configFile, &platform);
        const std::string path = g_configFile.platformDir;
        folder.useBoard("[BOARD]\nPLATFORM=" + path.substr(path.rfind('/') + 1) + "\n");
        zk_testConfig = {};
        zk_loadEnvironment();
        for (const TcModule* module : {&AVCvbsModule, &AVHdmiModule, &AVYpbprModule}) {
            use(*module);
            for (uint32_t i = 0; i < module->caseCount; i++) {
                const TcCase& row = module->cases[i];
                bool present = true;
                for (int32_t feature : featuresOf(row))
                    present = present && zk_testConfig.features[feature] != 0;
                if (row.autoFlag != AUTO)
                    continue;
                qlx_sim_record(1);
                EXPECT_EQ(run(row.name), present ? TC_SUCCESS : TC_NOT_APPLICABLE)
                    << path << " " << row.name;
                EXPECT_EQ(recordedCalls().empty(), !present) << path << " " << row.name;
                qlx_sim_record(0);
                EXPECT_EQ(atRest(), rest_) << path << " " << row.name;
                notApplicable += present ? 0 : 1;
            }
        }
        takeOutput();
    }
    EXPECT_EQ(notApplicable, 461u) << "a set-top box without inputs, televisions with a part of them";
}

}  // namespace

#include "testcase/av/av_module.h"

#include "environment/conf_reader.h"
#include "environment/test_env.h"
#include "framework/case/ladder.h"
#include "platform/qlx_demux.h"
#include "platform/qlx_extin.h"
#include "platform/qlx_video.h"
#include "testcase/aout/aout_harness.h"
#include "testcase/av/av_play.h"
#include "testcase/tuner/tuner_harness.h"
#include "testcase/vout/vout_harness.h"

/** Services have no state of the harness's. */
struct ModuleBench {};
using ModuleStep = LadderStep<ModuleBench>;

static constexpr ModuleStep tunerStep = {LADDER_CALL("TC_TUNER_INIT()", TC_TUNER_INIT()),
                                         LADDER_CALL("TC_TUNER_DEINIT()", TC_TUNER_DEINIT())};
static constexpr ModuleStep demuxStep = {LADDER_CALL("QLX_DemuxInit()", QLX_DemuxInit()),
                                         LADDER_CALL("QLX_DemuxDeInit()", QLX_DemuxDeInit())};
static constexpr ModuleStep inputStep = {LADDER_CALL("QLX_ExtInInit()", QLX_ExtInInit()),
                                         LADDER_CALL("QLX_ExtInDeInit()", QLX_ExtInDeInit())};
static constexpr ModuleStep videoStep = {LADDER_CALL("QLX_VideoInit()", QLX_VideoInit()),
                                         LADDER_CALL("QLX_VideoDeInit()", QLX_VideoDeInit())};
static constexpr ModuleStep pictureStep = {LADDER_CALL("TC_VOUT_INIT()", TC_VOUT_INIT()),
                                           LADDER_CALL("TC_VOUT_DEINIT()", TC_VOUT_DEINIT())};
static constexpr ModuleStep soundStep = {LADDER_CALL("TC_AOUT_INIT()", TC_AOUT_INIT()),
                                         LADDER_CALL("TC_AOUT_DEINIT()", TC_AOUT_DEINIT())};

static const ModuleStep inputModuleSteps[] = {tunerStep, demuxStep, inputStep, pictureStep,
                                              soundStep};
static const ModuleStep broadcastModuleSteps[] = {tunerStep, demuxStep, pictureStep, soundStep};
static const ModuleStep captionModuleSteps[] = {tunerStep, demuxStep, videoStep, pictureStep,
                                                soundStep};

template <size_t N>
static uint32_t setUp(const char* name, const ModuleStep (&steps)[N]) {
    CaseContext tc = {name};
    ModuleBench bench;
    zk_log("setup all resources ! \r\n");
    zk_test_get_feature(&tcAVFeature);
    ladderUp(tc, bench, steps);
    return tc.result;
}

template <size_t N>
static uint32_t tearDown(const char* name, const ModuleStep (&steps)[N]) {
    CaseContext tc = {name};
    ModuleBench bench;
    zk_log("release all resources ! \r\n");
    ladderDown(tc, bench, steps);
    return tc.result;
}

#define MODULE_HOOK(hook, body, steps) \
    uint32_t hook(void) {              \
        return body(__func__, steps);  \
    }

// clang-format off
MODULE_HOOK(AV_CommonTestSetup,     setUp,    inputModuleSteps)
MODULE_HOOK(AV_CommonTestTeardown,  tearDown, inputModuleSteps)
MODULE_HOOK(AV_DtvTestSetup,        setUp,    broadcastModuleSteps)
MODULE_HOOK(AV_DtvTestTeardown,     tearDown, broadcastModuleSteps)
MODULE_HOOK(AV_AtvTestSetup,        setUp,    broadcastModuleSteps)
MODULE_HOOK(AV_AtvTestTeardown,     tearDown, broadcastModuleSteps)
MODULE_HOOK(AV_PvrTestSetup,        setUp,    broadcastModuleSteps)
MODULE_HOOK(AV_TestTeardown,        tearDown, broadcastModuleSteps)
MODULE_HOOK(AV_CvbsTestSetup,       setUp,    inputModuleSteps)
MODULE_HOOK(AV_CvbsTestTeardown,    tearDown, inputModuleSteps)
MODULE_HOOK(AV_HdmiTestSetup,       setUp,    inputModuleSteps)
MODULE_HOOK(AV_HdmiTestTeardown,    tearDown, inputModuleSteps)
MODULE_HOOK(AV_YpbprTestSetup,      setUp,    inputModuleSteps)
MODULE_HOOK(AV_YpbprTestTeardown,   tearDown, inputModuleSteps)
MODULE_HOOK(AV_DtvVideoCcTestSetup, setUp,    captionModuleSteps)
MODULE_HOOK(AV_DtvVideoCcTeardown,  tearDown, captionModuleSteps)
// clang-format on

uint32_t AV_DtvTestCaseSetup(const char* caseName, const char* configFile) {
    int32_t channel = 0;
    if (caseName == nullptr || configFile == nullptr)
        return TC_SUCCESS;
    get_conf_value_self(caseName, "U_DTV_CHANNEL_ID", &channel, configFile);
    zk_mannualCaseConfig.av.stSource.uDTVChannelId = static_cast<uint32_t>(channel);
    return TC_SUCCESS;
}

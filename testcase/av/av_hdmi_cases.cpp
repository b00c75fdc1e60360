// AV-HDMI: pictures and sound of HDMI inputs.
#include "testcase/av/av_module.h"
#include "testcase/av/av_open_close_rows.h"
#include "testcase/av/av_play_rows.h"
#include "testcase/av/av_register_callback_rows.h"
#include "testcase/av/av_start_stop_rows.h"
#include "testcase/modules.h"

// clang-format off
#define ALL_CASES(X) \
    AV_OPEN_CLOSE_ROWS(AV_NOT_HERE, X, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE) \
    AV_REGISTER_CALLBACK_ROWS(AV_NOT_HERE, X, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE) \
    AV_START_STOP_ROWS(AV_NOT_HERE, X, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE) \
    AV_PLAY_ROWS(AV_NOT_HERE, X, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE)
// clang-format on

ALL_CASES(TC_VARIANT_FUNCTION)

static constexpr TcCase AVHdmiModuleCases[] = {ALL_CASES(TC_VARIANT_ROW)};

static_assert(tcCaseCount(AVHdmiModuleCases) == 102, "cases of the module");
static_assert(tcAutoCount(AVHdmiModuleCases) == 99, "automatic ones");

const TcModule AVHdmiModule = {
    AV_HdmiTestSetup,  AV_HdmiTestTeardown,
    nullptr,           nullptr,
    AVHdmiModuleCases, tcCaseCount(AVHdmiModuleCases),
    "AV-HDMI",         "Test module for AV test, the source is HDMI",
    nullptr,
};

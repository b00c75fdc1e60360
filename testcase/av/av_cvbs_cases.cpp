// AV-CVBS: pictures and sound of composite video inputs.
#include "testcase/av/av_module.h"
#include "testcase/av/av_open_close_rows.h"
#include "testcase/av/av_play_rows.h"
#include "testcase/av/av_register_callback_rows.h"
#include "testcase/av/av_start_stop_rows.h"
#include "testcase/modules.h"

// clang-format off
#define ALL_CASES(X) \
    AV_OPEN_CLOSE_ROWS(X, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE) \
    AV_REGISTER_CALLBACK_ROWS(X, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE) \
    AV_START_STOP_ROWS(X, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE) \
    AV_PLAY_ROWS(X, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE)
// clang-format on

ALL_CASES(TC_VARIANT_FUNCTION)

static constexpr TcCase AVCvbsModuleCases[] = {ALL_CASES(TC_VARIANT_ROW)};

static_assert(tcCaseCount(AVCvbsModuleCases) == 67, "cases of the module");
static_assert(tcAutoCount(AVCvbsModuleCases) == 65, "automatic ones");

const TcModule AVCvbsModule = {
    AV_CvbsTestSetup,  AV_CvbsTestTeardown,
    nullptr,           nullptr,
    AVCvbsModuleCases, tcCaseCount(AVCvbsModuleCases),
    "AV-CVBS",         "Test module for AV test, the source is CVBS",
    nullptr,
};

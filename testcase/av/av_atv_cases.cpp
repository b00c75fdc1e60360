// AV-ATV: pictures and sound of analog broadcasts.
#include "testcase/av/av_module.h"
#include "testcase/av/av_open_close_rows.h"
#include "testcase/av/av_play_rows.h"
#include "testcase/av/av_register_callback_rows.h"
#include "testcase/av/av_start_stop_rows.h"
#include "testcase/modules.h"

// clang-format off
#define ALL_CASES(X) \
    AV_OPEN_CLOSE_ROWS(AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, X, AV_NOT_HERE, AV_NOT_HERE) \
    AV_REGISTER_CALLBACK_ROWS(AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, X, AV_NOT_HERE, AV_NOT_HERE) \
    AV_START_STOP_ROWS(AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, X, AV_NOT_HERE, AV_NOT_HERE) \
    AV_PLAY_ROWS(AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, X, AV_NOT_HERE)
// clang-format on

ALL_CASES(TC_VARIANT_FUNCTION)

static constexpr TcCase AVAtvModuleCases[] = {ALL_CASES(TC_VARIANT_ROW)};

static_assert(tcCaseCount(AVAtvModuleCases) == 142, "cases of the module");
static_assert(tcAutoCount(AVAtvModuleCases) == 138, "automatic ones");

const TcModule AVAtvModule = {
    AV_AtvTestSetup,  AV_AtvTestTeardown,
    nullptr,          nullptr,
    AVAtvModuleCases, tcCaseCount(AVAtvModuleCases),
    "AV-ATV",         "Test module for AV test, the source is ATV",
    nullptr,
};

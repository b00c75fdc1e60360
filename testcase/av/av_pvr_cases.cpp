// AV-PVR: pictures and sound of recordings.
#include "testcase/av/av_module.h"
#include "testcase/av/av_open_close_rows.h"
#include "testcase/av/av_register_callback_rows.h"
#include "testcase/av/av_start_stop_rows.h"
#include "testcase/modules.h"

// clang-format off
#define ALL_CASES(X) \
    AV_OPEN_CLOSE_ROWS(AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, X, AV_NOT_HERE) \
    AV_REGISTER_CALLBACK_ROWS(AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, X, AV_NOT_HERE) \
    AV_START_STOP_ROWS(AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, AV_NOT_HERE, X, AV_NOT_HERE)
// clang-format on

ALL_CASES(TC_VARIANT_FUNCTION)

static constexpr TcCase AVPvrModuleCases[] = {ALL_CASES(TC_VARIANT_ROW)};

static_assert(tcCaseCount(AVPvrModuleCases) == 83, "cases of the module");
static_assert(tcAutoCount(AVPvrModuleCases) == 83, "automatic ones");

const TcModule AVPvrModule = {
    AV_PvrTestSetup,  AV_TestTeardown,
    nullptr,          nullptr,
    AVPvrModuleCases, tcCaseCount(AVPvrModuleCases),
    "AV-PVR",         "Test module for AV test, the source is PVR",
    nullptr,
};

// Opening tuners in and out of order, and parameters that the library must refuse.
#include "testcase/tuner/tuner_families.h"

uint32_t tuner_openWithoutInit(const char* name, uint32_t eTunerId) {
    CaseContext tc = {name};
    TC_ASSERT_RET(QLX_TunerInit());
    TC_ASSERT_RET(QLX_TunerDeInit());
    if (!TC_EXPECT_REFUSED(QLX_TunerOpen(eTunerId)))
        QLX_TunerClose(eTunerId);
    return TC_RESULT(tc);
}

uint32_t tuner_openAfterInit(const char* name, uint32_t eTunerId) {
    return tuner_openFrame(name, eTunerId, [](CaseContext&, TunerRun&) {});
}

uint32_t tuner_openInvalidId(const char* name) {
    CaseContext tc = {name};
    TC_ASSERT_RET(QLX_TunerInit());
    TC_EXPECT_REFUSED(QLX_TunerOpen(4));
    TC_EXPECT_RET(QLX_TunerDeInit());
    return TC_RESULT(tc);
}

uint32_t tuner_openRepeatedly(const char* name, uint32_t eTunerId, uint32_t times) {
    CaseContext tc = {name};
    TC_ASSERT_RET(QLX_TunerInit());
    for (uint32_t i = 0; tc.result == TC_SUCCESS && i < times; i++) {
        if (TC_EXPECT_RET(QLX_TunerOpen(eTunerId)))
            TC_EXPECT_RET(QLX_TunerClose(eTunerId));
    }
    TC_EXPECT_RET(QLX_TunerDeInit());
    return TC_RESULT(tc);
}

static void setIsRefused(CaseContext& tc, TunerRun& run) {
    uint32_t eTunerId = run.eTunerId;
    const QLX_TunerTuningParams& stTuningParams = run.stTuningParams;
    TC_EXPECT_RET_CODE(QLX_TunerSetTuningParam(eTunerId, &stTuningParams),
                       QLX_TUNER_ERR_INVALID_PARA);
}

uint32_t tuner_checkInput(const char* name, uint32_t eTunerId, TunerSpoiled spoiled) {
    CaseContext tc = {name};
    TunerRun run = {};
    run.eTunerId = eTunerId;
    TC_ASSERT(tuner_fetchParams(tc, run, 0));
    if (spoiled == SPOILED_TYPE_3)
        run.stTuningParams.eTuningType = 3;
    else
        run.stTuningParams.eTransmissionSystem = spoiled == SPOILED_SYSTEM_3 ? 3 : 0;
    tuner_between(tc, run, TUNER_OPENED, setIsRefused);
    return TC_RESULT(tc);
}

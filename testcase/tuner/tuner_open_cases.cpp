// Opening tuners in and out of order, and parameters that the library must refuse.
#include "testcase/tuner/tuner_families.h"

uint32_t tuner_openWithoutInit(const char* name, uint32_t eTunerId) {
    if (!TUNER_RET(QLX_TunerInit()) || !TUNER_RET(QLX_TunerDeInit()))
        return TC_FAILURE;
    bool refused =
        tc_checkRefused(name, __LINE__, "QLX_TunerOpen(eTunerId)", QLX_TunerOpen(eTunerId));
    if (!refused)
        QLX_TunerClose(eTunerId);
    return tc_result(name, tuner_verdict(refused));
}

static uint32_t nothing(TunerRun* run) {
    static_cast<void>(run);
    return TC_SUCCESS;
}

uint32_t tuner_openAfterInit(const char* name, uint32_t eTunerId) {
    return tuner_openFrame(name, eTunerId, nothing);
}

uint32_t tuner_openInvalidId(const char* name) {
    if (!TUNER_RET(QLX_TunerInit()))
        return TC_FAILURE;
    bool passed = tc_checkRefused(name, __LINE__, "QLX_TunerOpen(4)", QLX_TunerOpen(4));
    passed = TUNER_RET(QLX_TunerDeInit()) && passed;
    return tc_result(name, tuner_verdict(passed));
}

uint32_t tuner_openRepeatedly(const char* name, uint32_t eTunerId, uint32_t times) {
    if (!TUNER_RET(QLX_TunerInit()))
        return TC_FAILURE;
    bool passed = true;
    for (uint32_t i = 0; passed && i < times; i++)
        passed = TUNER_RET(QLX_TunerOpen(eTunerId)) && TUNER_RET(QLX_TunerClose(eTunerId));
    passed = TUNER_RET(QLX_TunerDeInit()) && passed;
    return tc_result(name, tuner_verdict(passed));
}

static uint32_t setIsRefused(TunerRun* run) {
    uint32_t eTunerId = run->eTunerId;
    int32_t code = QLX_TunerSetTuningParam(eTunerId, &run->stTuningParams);
    return tuner_verdict(tc_checkRet(run->name, __LINE__,
                                     "QLX_TunerSetTuningParam(eTunerId, &stTuningParams)", code,
                                     QLX_TUNER_ERR_INVALID_PARA));
}

uint32_t tuner_checkInput(const char* name, uint32_t eTunerId, TunerSpoiled spoiled) {
    TunerRun run = tuner_newRun(name, eTunerId);
    if (!tuner_fetchParams(&run, 0))
        return TC_FAILURE;
    if (spoiled == SPOILED_TYPE_3)
        run.stTuningParams.eTuningType = 3;
    else
        run.stTuningParams.eTransmissionSystem = spoiled == SPOILED_SYSTEM_3 ? 3 : 0;
    return tc_result(name, tuner_runOpenFrame(&run, setIsRefused));
}

// Sound and colour decoding behind the analog front ends: what is detected, what the program
// forces, and the mode in which sound goes out.
#include "platform/qlx_sif.h"
#include "simulator/analog/afe_state.h"

using sim::Afe;
using sim::afeFamily;
using sim::afeRefusal;

int32_t QLX_SIFGetColorStdDetection(uint32_t eTunerId, uint32_t* peColorStandard) {
    SIM_ENTRY("tuner=%d standard=%s", static_cast<int>(eTunerId),
              sim::showPointer(peColorStandard));
    std::lock_guard<std::mutex> lock(afeFamily().mutex);
    if (int32_t refusal = afeRefusal(eTunerId))
        SIM_RETURN(refusal);
    if (peColorStandard == nullptr)
        SIM_RETURN(QLX_AFE_ERR_INVALID_PARA);
    const Afe& afe = afeFamily().afes[eTunerId];
    *peColorStandard = afe.lock.video ? sim::colorStandardOf(afe) : 0;
    simCall.output({sim::value("standard", peColorStandard)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SIFGetAudioStdDetection(uint32_t eTunerId, uint32_t* peAudioStandard) {
    SIM_ENTRY("tuner=%d standard=%s", static_cast<int>(eTunerId),
              sim::showPointer(peAudioStandard));
    std::lock_guard<std::mutex> lock(afeFamily().mutex);
    if (int32_t refusal = afeRefusal(eTunerId))
        SIM_RETURN(refusal);
    if (peAudioStandard == nullptr)
        SIM_RETURN(QLX_AFE_ERR_INVALID_PARA);
    const Afe& afe = afeFamily().afes[eTunerId];
    *peAudioStandard = afe.lock.video ? sim::audioStandardOf(afe) : 0;
    simCall.output({sim::value("standard", peAudioStandard)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SIFSetAudioStdForce(uint32_t eTunerId, uint32_t eAudioStandard) {
    SIM_ENTRY("tuner=%d standard=%u", static_cast<int>(eTunerId), eAudioStandard);
    std::lock_guard<std::mutex> lock(afeFamily().mutex);
    if (int32_t refusal = afeRefusal(eTunerId))
        SIM_RETURN(refusal);
    afeFamily().afes[eTunerId].forcedAudio = eAudioStandard;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SIFSetColorStdForce(uint32_t eTunerId, uint32_t eColorStandard) {
    SIM_ENTRY("tuner=%d standard=%u", static_cast<int>(eTunerId), eColorStandard);
    std::lock_guard<std::mutex> lock(afeFamily().mutex);
    if (int32_t refusal = afeRefusal(eTunerId))
        SIM_RETURN(refusal);
    afeFamily().afes[eTunerId].forcedColor = eColorStandard;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SIFGetSndOutMode(uint32_t eTunerId, uint32_t* peMode) {
    SIM_ENTRY("tuner=%d mode=%s", static_cast<int>(eTunerId), sim::showPointer(peMode));
    std::lock_guard<std::mutex> lock(afeFamily().mutex);
    if (int32_t refusal = afeRefusal(eTunerId))
        SIM_RETURN(refusal);
    if (peMode == nullptr)
        SIM_RETURN(QLX_AFE_ERR_INVALID_PARA);
    *peMode = sim::soundModeOf(afeFamily().afes[eTunerId]);
    simCall.output({sim::value("mode", peMode)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_SIFSetSndOutMode(uint32_t eTunerId, uint32_t eMode) {
    SIM_ENTRY("tuner=%d mode=%u", static_cast<int>(eTunerId), eMode);
    std::lock_guard<std::mutex> lock(afeFamily().mutex);
    if (int32_t refusal = afeRefusal(eTunerId))
        SIM_RETURN(refusal);
    afeFamily().afes[eTunerId].chosenMode = eMode;
    sim::publishAfe(afeFamily().afes[eTunerId]);
    SIM_RETURN(QLX_SUCCESS);
}

// Synchronisation of the video decoders. A mode is forgotten with the close of its decoder; what
// it does to the events is in decoder_run.cpp.
#include "platform/qlx_videosync.h"
#include "simulator/av/decoder_state.h"

namespace sim {

SIM_RECORD(QLX_SyncParams, SIM_MEMBER(QLX_SyncParams, eSyncMode), SIM_MEMBER(QLX_SyncParams, uPid),
           SIM_MEMBER(QLX_SyncParams, uPcrPid))

/** The decoders' refusal as this family calls it. */
static int32_t syncRefusal(int32_t refusal) {
    return refusal == videoFamily().kind.invalidPara ? QLX_VIDEOSYNC_ERR_INVALID_PARA : refusal;
}

}  // namespace sim

int32_t QLX_VideoSyncSetMode(uint32_t eVideoDev, const QLX_SyncParams* pstSyncParams) {
    SIM_ENTRY("video=%d params=%s", static_cast<int>(eVideoDev), sim::show(pstSyncParams).c_str());
    if (pstSyncParams == nullptr || pstSyncParams->eSyncMode > QLX_VIDEOSYNC_MODE_AUDIO_MASTER)
        SIM_RETURN(QLX_VIDEOSYNC_ERR_INVALID_PARA);
    SIM_RETURN(
        sim::syncRefusal(sim::decoderSetSync(sim::videoFamily(), eVideoDev, *pstSyncParams)));
}

int32_t QLX_VideoSyncGetSTC(uint32_t eVideoDev, uint64_t* puSTC) {
    SIM_ENTRY("video=%d stc=%s", static_cast<int>(eVideoDev), sim::showPointer(puSTC));
    sim::DecoderFamily& family = sim::videoFamily();
    std::lock_guard<std::mutex> lock(family.mutex);
    if (puSTC == nullptr)
        SIM_RETURN(QLX_VIDEOSYNC_ERR_INVALID_PARA);
    int32_t refusal = sim::syncRefusal(sim::refusalOf(family, eVideoDev));
    if (refusal != QLX_SUCCESS)
        SIM_RETURN(refusal);
    const sim::Decoder& decoder = family.decoders[eVideoDev];
    *puSTC = decoder.run != nullptr ? sim::streamClock(*decoder.run) : 0;
    simCall.output({sim::value("stc", puSTC)});
    SIM_RETURN(QLX_SUCCESS);
}

// Synchronisation of the video decoders. A mode is forgotten with the close of its decoder; what
// it does to the events is in decoder_run.cpp.
#include "platform/qlx_videosync.h"
#include "simulator/av/decoder_state.h"

namespace sim {

SIM_RECORD(QLX_SyncParams, SIM_MEMBER(QLX_SyncParams, eSyncMode), SIM_MEMBER(QLX_SyncParams, uPid),
           SIM_MEMBER(QLX_SyncParams, uPcrPid))

/** The refusal of a call, 0 when there is none. Called with the decoders locked. */
static int32_t syncRefusalOf(uint32_t videoDev) {
    int32_t refusal = refusalOf(videoFamily(), videoDev);
    return refusal == videoFamily().kind.invalidPara ? QLX_VIDEOSYNC_ERR_INVALID_PARA : refusal;
}

}  // namespace sim

int32_t QLX_VideoSyncSetMode(uint32_t eVideoDev, const QLX_SyncParams* pstSyncParams) {
    SIM_ENTRY("video=%d params=%s", static_cast<int>(eVideoDev), sim::show(pstSyncParams).c_str());
    sim::DecoderFamily& family = sim::videoFamily();
    std::lock_guard<std::mutex> lock(family.mutex);
    if (pstSyncParams == nullptr || pstSyncParams->eSyncMode > QLX_VIDEOSYNC_MODE_AUDIO_MASTER)
        SIM_RETURN(QLX_VIDEOSYNC_ERR_INVALID_PARA);
    int32_t refusal = sim::syncRefusalOf(eVideoDev);
    if (refusal != QLX_SUCCESS)
        SIM_RETURN(refusal);
    sim::Decoder& decoder = family.decoders[eVideoDev];
    decoder.syncSet = true;
    decoder.sync = *pstSyncParams;
    if (decoder.run != nullptr) {
        sim::refreshSync(family.kind, decoder);
        sim::wakeDecoder(family, decoder);
    }
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_VideoSyncGetSTC(uint32_t eVideoDev, uint64_t* puSTC) {
    SIM_ENTRY("video=%d stc=%s", static_cast<int>(eVideoDev), sim::showPointer(puSTC));
    sim::DecoderFamily& family = sim::videoFamily();
    std::lock_guard<std::mutex> lock(family.mutex);
    if (puSTC == nullptr)
        SIM_RETURN(QLX_VIDEOSYNC_ERR_INVALID_PARA);
    int32_t refusal = sim::syncRefusalOf(eVideoDev);
    if (refusal != QLX_SUCCESS)
        SIM_RETURN(refusal);
    const sim::Decoder& decoder = family.decoders[eVideoDev];
    *puSTC = decoder.run != nullptr ? sim::streamClock(*decoder.run) : 0;
    simCall.output({sim::value("stc", puSTC)});
    SIM_RETURN(QLX_SUCCESS);
}

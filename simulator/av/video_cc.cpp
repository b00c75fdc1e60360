// Entry points of the caption parsers. A parser is a part of its video decoder: it ends with the
// decoder's close, and what it tells when is in captions_run.cpp.
#include "platform/qlx_videocc.h"
#include "simulator/av/decoder_state.h"

namespace sim {

namespace {

/** Without the lock: no captions come any more; the decoder itself goes on. */
void quietCaptions(DecoderFamily& family, uint32_t number) {
    Decoder& decoder = family.decoders[number];
    {
        std::lock_guard<std::mutex> lock(family.mutex);
        std::deque<DecoderEvent> others;
        for (DecoderEvent& event : decoder.events) {
            if (event.captions == nullptr)
                others.push_back(event);
        }
        decoder.events.swap(others);
    }
    quietDecoder(family, decoder);
}

}  // namespace

}  // namespace sim

int32_t QLX_VideoCcParserRegisterCallback(uint32_t eVideoDev, void* pstRequest,
                                          QLX_VideoCcCallback callback) {
    SIM_ENTRY("video=%d request=%s callback=%s", static_cast<int>(eVideoDev),
              sim::showPointer(pstRequest), sim::showPointer(callback));
    sim::DecoderFamily& family = sim::videoFamily();
    std::lock_guard<std::mutex> lock(family.mutex);
    if (callback == nullptr)
        SIM_RETURN(QLX_VIDEO_ERR_INVALID_PARA);
    if (int32_t refusal = sim::refusalOf(family, eVideoDev))
        SIM_RETURN(refusal);
    sim::CaptionChoices& captions = family.decoders[eVideoDev].captions;
    if (captions.callback != nullptr)
        SIM_RETURN(QLX_FAILED);
    captions.callback = callback;
    captions.userData = pstRequest;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_VideoCcParserUnRegisterCallback(uint32_t eVideoDev, QLX_VideoCcCallback callback) {
    SIM_ENTRY("video=%d callback=%s", static_cast<int>(eVideoDev), sim::showPointer(callback));
    sim::DecoderFamily& family = sim::videoFamily();
    {
        std::lock_guard<std::mutex> lock(family.mutex);
        if (callback == nullptr)
            SIM_RETURN(QLX_VIDEO_ERR_INVALID_PARA);
        if (int32_t refusal = sim::refusalOf(family, eVideoDev))
            SIM_RETURN(refusal);
        sim::CaptionChoices& captions = family.decoders[eVideoDev].captions;
        if (captions.callback != callback)
            SIM_RETURN(QLX_FAILED);
        captions.callback = nullptr;
        captions.userData = nullptr;
    }
    sim::quietCaptions(family, eVideoDev);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_VideoCcParserStart(uint32_t eVideoDev, uint32_t eDataType) {
    SIM_ENTRY("video=%d type=%u", static_cast<int>(eVideoDev), eDataType);
    sim::DecoderFamily& family = sim::videoFamily();
    std::lock_guard<std::mutex> lock(family.mutex);
    if (eDataType > QLX_VIDEO_CC_DATA_TYPE_DTV)
        SIM_RETURN(QLX_VIDEO_ERR_INVALID_PARA);
    if (int32_t refusal = sim::refusalOf(family, eVideoDev))
        SIM_RETURN(refusal);
    sim::Decoder& decoder = family.decoders[eVideoDev];
    if (!decoder.captions.any() && decoder.run != nullptr)
        sim::cutCaptions(*decoder.run, sim::nowUs());
    decoder.captions.started[eDataType] = true;
    sim::wakeDecoder(family, decoder);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_VideoCcParserStop(uint32_t eVideoDev) {
    SIM_ENTRY("video=%d", static_cast<int>(eVideoDev));
    sim::DecoderFamily& family = sim::videoFamily();
    {
        std::lock_guard<std::mutex> lock(family.mutex);
        if (int32_t refusal = sim::refusalOf(family, eVideoDev))
            SIM_RETURN(refusal);
        sim::CaptionChoices& captions = family.decoders[eVideoDev].captions;
        captions.started[QLX_VIDEO_CC_DATA_TYPE_NTSC] = false;
        captions.started[QLX_VIDEO_CC_DATA_TYPE_DTV] = false;
    }
    sim::quietCaptions(family, eVideoDev);
    SIM_RETURN(QLX_SUCCESS);
}

// Video outputs: which source each shows, where, and whether it does.
//
// State rules: initialisation is a flag, and its end closes everything. Opening needs a source that
// is up; an open output that is opened again changes over to the new source and stays as it is in
// all else. Closing, disabling and unregistering are a success in any state, muting needs the
// service alone; the rest needs an open output.
//
// No event comes: an output's timing is the panel's, which does not change.
#include <mutex>

#include "platform/qlx_vout.h"
#include "simulator/av/decoder.h"
#include "simulator/core/family.h"
#include "simulator/core/sim.h"
#include "simulator/core/source_record.h"
#include "simulator/demux/demux.h"
#include "simulator/output/panel.h"
#include "simulator/output/picture_control.h"
#include "simulator/world/signal_source.h"

namespace sim {

SIM_RECORD(QLX_VOutRect, SIM_MEMBER(QLX_VOutRect, x), SIM_MEMBER(QLX_VOutRect, y),
           SIM_MEMBER(QLX_VOutRect, uWidth), SIM_MEMBER(QLX_VOutRect, uHeight),
           SIM_MEMBER(QLX_VOutRect, uReserved))

}  // namespace sim

namespace {

struct Output {
    bool open = false;
    bool enabled = false;
    bool frozen = false;
    bool muted = true;
    QLX_Source source = {};
    QLX_VOutRect in = {};
    QLX_VOutRect out = {};
    uint32_t nonLinear = QLX_FALSE;
    uint32_t dotToDot = QLX_FALSE;
    QLX_VOutCallback callback = nullptr;
    /** What was shown when the output was frozen; holds while it is. */
    sim::VideoShown held;
};

struct VOutState {
    std::mutex mutex;
    bool initialised = false;
    Output outputs[QLX_VOUTDEV_NUMBER_MAX];
};

VOutState& state() {
    static VOutState* instance = new VOutState;
    return *instance;
}

/** Whether something delivers a picture of that kind, or could. With a decoder open its source is
 *  up, and programs name another number than the decoder's. */
bool sourceUp(const QLX_Source& source) {
    if (sim::anyVideoDecoderOpen())
        return true;
    uint32_t index = 0;
    switch (source.eSourceType) {
        case QLX_SOURCE_TYPE_LOCAL_PLAYER:
        case QLX_SOURCE_TYPE_STREAM_INJECT:
            return true;
        case QLX_SOURCE_TYPE_RECORD:
        case QLX_SOURCE_TYPE_DEMUX:
            while (index < sim::demuxCount && !sim::demuxView(index).open)
                index++;
            return index < sim::demuxCount;
        default:
            return sim::findOpenSource(source.eSourceType, source.uSourceIndex, &index);
    }
}

bool sameKind(uint32_t a, uint32_t b) {
    auto coded = [](uint32_t kind) {
        return kind == QLX_SOURCE_TYPE_DEMUX || kind == QLX_SOURCE_TYPE_RECORD;
    };
    return a == b || (coded(a) && coded(b));
}

/**
 * What the decoder shows that the output's source leads to: the one that is open on this very
 * source; else the output's own number, or any, that is open on such a source; else, for programs
 * name another source than the decoder's, the first that is open.
 */
sim::VideoShown shownOn(uint32_t number, const Output& output) {
    sim::VideoShown best;
    int bestFit = 0;
    for (uint32_t dev = 0; dev < QLX_VIDEODEV_NUMBER_MAX; dev++) {
        sim::VideoShown shown = sim::videoShown(dev);
        if (!shown.open)
            continue;
        bool kind = sameKind(shown.source.eSourceType, output.source.eSourceType);
        bool index = shown.source.uSourceIndex == output.source.uSourceIndex;
        int fit = 1 + (kind ? 4 : 0) + (kind && index ? 4 : 0) + (kind && dev == number ? 2 : 0);
        if (fit <= bestFit)
            continue;
        bestFit = fit;
        best = shown;
    }
    return best;
}

/** What a call needs beyond an output that exists. */
enum class Need { nothing, initialised, open };

int32_t refusalOf(uint32_t output, Need need) {
    if (output >= QLX_VOUTDEV_NUMBER_MAX)
        return QLX_VOUT_ERR_INVALID_PARA;
    if ((need != Need::nothing && !state().initialised) ||
        (need == Need::open && !state().outputs[output].open))
        return QLX_FAILED;
    return QLX_SUCCESS;
}

}  // namespace

int32_t QLX_VOutInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::lock_guard<std::mutex> lock(state().mutex);
    state().initialised = true;
    SIM_RETURN(QLX_SUCCESS);
}

/** Called with the state locked. */
static void end() {
    state().initialised = false;
    for (Output& output : state().outputs)
        output = Output();
    sim::resetPictureControls();
}

int32_t QLX_VOutDeInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::lock_guard<std::mutex> lock(state().mutex);
    end();
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_VOutOpen(uint32_t eDevId, const QLX_Source* pstSource) {
    SIM_ENTRY("output=%d source=%s", static_cast<int>(eDevId), sim::show(pstSource).c_str());
    std::lock_guard<std::mutex> lock(state().mutex);
    if (pstSource == nullptr)
        SIM_RETURN(QLX_VOUT_ERR_INVALID_PARA);
    if (int32_t refusal = refusalOf(eDevId, Need::initialised))
        SIM_RETURN(refusal);
    if (!sourceUp(*pstSource))
        SIM_RETURN(QLX_FAILED);
    state().outputs[eDevId].open = true;
    state().outputs[eDevId].source = *pstSource;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_VOutClose(uint32_t eDevId) {
    SIM_ENTRY("output=%d", static_cast<int>(eDevId));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (int32_t refusal = refusalOf(eDevId, Need::nothing))
        SIM_RETURN(refusal);
    state().outputs[eDevId] = Output();
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_VOutRegisterCallback(uint32_t eDevId, void* pUserData, QLX_VOutCallback callback) {
    SIM_ENTRY("output=%d userData=%s callback=%s", static_cast<int>(eDevId),
              sim::showPointer(pUserData), sim::showPointer(callback));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (callback == nullptr)
        SIM_RETURN(QLX_VOUT_ERR_INVALID_PARA);
    if (int32_t refusal = refusalOf(eDevId, Need::open))
        SIM_RETURN(refusal);
    state().outputs[eDevId].callback = callback;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_VOutUnRegisterCallback(uint32_t eDevId, QLX_VOutCallback callback) {
    SIM_ENTRY("output=%d callback=%s", static_cast<int>(eDevId), sim::showPointer(callback));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (int32_t refusal = refusalOf(eDevId, Need::nothing))
        SIM_RETURN(refusal);
    state().outputs[eDevId].callback = nullptr;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_VOutEnable(uint32_t eDevId) {
    SIM_ENTRY("output=%d", static_cast<int>(eDevId));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (int32_t refusal = refusalOf(eDevId, Need::open))
        SIM_RETURN(refusal);
    state().outputs[eDevId].enabled = true;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_VOutDisable(uint32_t eDevId) {
    SIM_ENTRY("output=%d", static_cast<int>(eDevId));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (int32_t refusal = refusalOf(eDevId, Need::nothing))
        SIM_RETURN(refusal);
    state().outputs[eDevId].enabled = false;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_VOutSetRect(uint32_t eDevId, const QLX_VOutRect* pstInRect,
                        const QLX_VOutRect* pstOutRect, uint32_t bNonLinear, uint32_t bDotToDot) {
    SIM_ENTRY("output=%d in=%s out=%s nonLinear=%u dotToDot=%u", static_cast<int>(eDevId),
              sim::show(pstInRect).c_str(), sim::show(pstOutRect).c_str(), bNonLinear, bDotToDot);
    std::lock_guard<std::mutex> lock(state().mutex);
    if (pstInRect == nullptr || pstOutRect == nullptr)
        SIM_RETURN(QLX_VOUT_ERR_INVALID_PARA);
    if (int32_t refusal = refusalOf(eDevId, Need::open))
        SIM_RETURN(refusal);
    Output& output = state().outputs[eDevId];
    output.in = *pstInRect;
    output.out = *pstOutRect;
    output.nonLinear = bNonLinear;
    output.dotToDot = bDotToDot;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_VOutGetRect(uint32_t eDevId, QLX_VOutRect* pstInRect, QLX_VOutRect* pstOutRect,
                        uint32_t* pbNonLinear, uint32_t* pbDotToDot) {
    SIM_ENTRY("output=%d in=%s out=%s nonLinear=%s dotToDot=%s", static_cast<int>(eDevId),
              sim::showPointer(pstInRect), sim::showPointer(pstOutRect),
              sim::showPointer(pbNonLinear), sim::showPointer(pbDotToDot));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (pstInRect == nullptr || pstOutRect == nullptr || pbNonLinear == nullptr ||
        pbDotToDot == nullptr)
        SIM_RETURN(QLX_VOUT_ERR_INVALID_PARA);
    if (int32_t refusal = refusalOf(eDevId, Need::open))
        SIM_RETURN(refusal);
    const Output& output = state().outputs[eDevId];
    *pstInRect = output.in;
    *pstOutRect = output.out;
    *pbNonLinear = output.nonLinear;
    *pbDotToDot = output.dotToDot;
    simCall.output({sim::value("in", pstInRect), sim::value("out", pstOutRect),
                    sim::value("nonLinear", pbNonLinear), sim::value("dotToDot", pbDotToDot)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_VOutSetMute(uint32_t eDevId, uint32_t bMute) {
    SIM_ENTRY("output=%d mute=%u", static_cast<int>(eDevId), bMute);
    std::lock_guard<std::mutex> lock(state().mutex);
    if (int32_t refusal = refusalOf(eDevId, Need::initialised))
        SIM_RETURN(refusal);
    state().outputs[eDevId].muted = bMute != QLX_FALSE;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_VOutGetMute(uint32_t eDevId, uint32_t* pbMute) {
    SIM_ENTRY("output=%d mute=%s", static_cast<int>(eDevId), sim::showPointer(pbMute));
    std::lock_guard<std::mutex> lock(state().mutex);
    if (pbMute == nullptr)
        SIM_RETURN(QLX_VOUT_ERR_INVALID_PARA);
    if (int32_t refusal = refusalOf(eDevId, Need::initialised))
        SIM_RETURN(refusal);
    *pbMute = state().outputs[eDevId].muted ? QLX_TRUE : QLX_FALSE;
    simCall.output({sim::value("mute", pbMute)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_VOutFreeze(uint32_t eDevId, uint32_t bFreeze) {
    SIM_ENTRY("output=%d freeze=%u", static_cast<int>(eDevId), bFreeze);
    std::lock_guard<std::mutex> lock(state().mutex);
    if (int32_t refusal = refusalOf(eDevId, Need::open))
        SIM_RETURN(refusal);
    Output& output = state().outputs[eDevId];
    if (bFreeze != QLX_FALSE && !output.frozen)
        output.held = shownOn(eDevId, output);
    output.frozen = bFreeze != QLX_FALSE;
    SIM_RETURN(QLX_SUCCESS);
}

static void reset() {
    std::lock_guard<std::mutex> lock(state().mutex);
    end();
}

static void describe(std::string* out) {
    std::lock_guard<std::mutex> lock(state().mutex);
    if (state().initialised)
        *out += "VOut initialised\n";
    for (uint32_t i = 0; i < QLX_VOUTDEV_NUMBER_MAX; i++) {
        const Output& output = state().outputs[i];
        if (output.open)
            *out += sim::format("VOut %u open\n", i);
        if (output.callback != nullptr)
            *out += sim::format("VOut %u callback registered\n", i);
        if (output.enabled)
            *out += sim::format("VOut %u enabled\n", i);
    }
}

namespace sim {

std::vector<PanelLayer> panelLayers() {
    std::lock_guard<std::mutex> lock(state().mutex);
    std::vector<PanelLayer> layers;
    for (uint32_t i = 0; i < QLX_VOUTDEV_NUMBER_MAX; i++) {
        const Output& output = state().outputs[i];
        if (!output.open || !output.enabled)
            continue;
        layers.push_back({output.in, output.out, output.nonLinear != QLX_FALSE,
                          output.dotToDot != QLX_FALSE, output.muted,
                          output.frozen ? output.held : shownOn(i, output)});
    }
    return layers;
}

int32_t videoOutputRefusal(uint32_t output) {
    std::lock_guard<std::mutex> lock(state().mutex);
    return refusalOf(output, Need::open);
}

extern const Family familyVOut = {reset, describe};

}  // namespace sim

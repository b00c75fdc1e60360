// Picture controls of the video outputs: each keeps what it is set to. They do not change the frame
// that a capture shows, which is the picture before the panel's own processing.
#include "simulator/output/picture_control.h"

#include <mutex>

#include "platform/qlx_vout.h"
#include "simulator/core/sim.h"

namespace {

enum Control : uint32_t {
    controlPictureMode,
    controlBrightness,
    controlContrast,
    controlHue,
    controlSaturation,
    controlSharpness,
    controlTestPattern,
    controlColorTemp,
    controlNR,
    controlMpegNR,
    controlGamma,
    controlHdmiRange,
    controlColorTuner,
    controlCount
};

struct Range {
    int32_t least;
    int32_t most;
    int32_t atPowerOn;
};

// clang-format off
const Range ranges[controlCount] = {
    {0, 39, 0},  // PictureMode
    {0, 255, 128},  // Brightness
    {0, 255, 128},  // Contrast
    {0, 255, 128},  // Hue
    {0, 255, 128},  // Saturation
    {0, 255, 128},  // Sharpness
    {0, 1, 0},  // TestPattern
    {0, 1024, 512},  // ColorTemp
    {0, 4, 2},  // NR
    {0, 4, 2},  // MpegNR
    {0, 49, 22},  // Gamma
    {0, 2, 0},  // HdmiRange
    {0, 255, 128},  // ColorTuner
};
// clang-format on

/** A picture mode that there is not. */
constexpr int32_t noPictureMode = 14;

struct Controls {
    std::mutex mutex;
    bool loaded = false;
    int32_t values[QLX_VOUTDEV_NUMBER_MAX][controlCount];
};

Controls& controls() {
    static Controls* instance = new Controls;
    return *instance;
}

/** The place of a control of an output that exists. Called with the controls locked. */
int32_t& valueOf(uint32_t output, Control control) {
    Controls& c = controls();
    for (auto& values : c.values) {
        for (uint32_t i = 0; !c.loaded && i < controlCount; i++)
            values[i] = ranges[i].atPowerOn;
    }
    c.loaded = true;
    return c.values[output][control];
}

int32_t setControl(uint32_t output, Control control, int32_t value) {
    if (int32_t refusal = sim::videoOutputRefusal(output))
        return refusal;
    if (value < ranges[control].least || value > ranges[control].most ||
        (control == controlPictureMode && value == noPictureMode))
        return QLX_VOUT_ERR_INVALID_PARA;
    std::lock_guard<std::mutex> lock(controls().mutex);
    valueOf(output, control) = value;
    return QLX_SUCCESS;
}

int32_t getControl(uint32_t output, Control control, int32_t* value) {
    if (value == nullptr)
        return QLX_VOUT_ERR_INVALID_PARA;
    if (int32_t refusal = sim::videoOutputRefusal(output))
        return refusal;
    std::lock_guard<std::mutex> lock(controls().mutex);
    *value = valueOf(output, control);
    return QLX_SUCCESS;
}

}  // namespace

namespace sim {

void resetPictureControls() {
    std::lock_guard<std::mutex> lock(controls().mutex);
    controls().loaded = false;
}

}  // namespace sim

/** The two entry points of a control. */
#define CONTROL(control, set, get)                                                            \
    int32_t set(uint32_t eDevId, int32_t sValue) {                                            \
        SIM_ENTRY("output=%d value=%d", static_cast<int>(eDevId), sValue);                    \
        SIM_RETURN(setControl(eDevId, control, sValue));                                      \
    }                                                                                         \
    int32_t get(uint32_t eDevId, int32_t* psValue) {                                          \
        SIM_ENTRY("output=%d value=%s", static_cast<int>(eDevId), sim::showPointer(psValue)); \
        int32_t refusal = getControl(eDevId, control, psValue);                               \
        if (refusal == QLX_SUCCESS)                                                           \
            simCall.output({sim::value("value", psValue)});                                   \
        SIM_RETURN(refusal);                                                                  \
    }

CONTROL(controlPictureMode, QLX_VOutSetPictureMode, QLX_VOutGetPictureMode)
CONTROL(controlBrightness, QLX_VOutSetBrightness, QLX_VOutGetBrightness)
CONTROL(controlContrast, QLX_VOutSetContrast, QLX_VOutGetContrast)
CONTROL(controlHue, QLX_VOutSetHue, QLX_VOutGetHue)
CONTROL(controlSaturation, QLX_VOutSetSaturation, QLX_VOutGetSaturation)
CONTROL(controlSharpness, QLX_VOutSetSharpness, QLX_VOutGetSharpness)
CONTROL(controlTestPattern, QLX_VOutSetTestPattern, QLX_VOutGetTestPattern)
CONTROL(controlColorTemp, QLX_VOutSetColorTemp, QLX_VOutGetColorTemp)
CONTROL(controlNR, QLX_VOutSetNR, QLX_VOutGetNR)
CONTROL(controlMpegNR, QLX_VOutSetMpegNR, QLX_VOutGetMpegNR)
CONTROL(controlGamma, QLX_VOutSetGamma, QLX_VOutGetGamma)
CONTROL(controlHdmiRange, QLX_VOutSetHdmiRange, QLX_VOutGetHdmiRange)
CONTROL(controlColorTuner, QLX_VOutSetColorTuner, QLX_VOutGetColorTuner)

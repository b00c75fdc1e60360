/* What stands on the panel. */
#ifndef SIMULATOR_OUTPUT_PANEL_H
#define SIMULATOR_OUTPUT_PANEL_H

#include <stdint.h>

#include <vector>

#include "platform/qlx_vout.h"
#include "simulator/av/decoder.h"
#include "simulator/media/picture.h"

namespace sim {

struct PanelSize {
    uint16_t width;
    uint16_t height;
};

/** The board's. Any thread may call. */
PanelSize panelSize();

/** What an output puts on the panel. */
struct PanelLayer {
    QLX_VOutRect in = {};  /**< Empty: the whole picture. */
    QLX_VOutRect out = {}; /**< Empty: the whole panel. */
    bool nonLinear = false;
    bool dotToDot = false;
    bool muted = false;
    /** What the output's decoder shows; of kind nothing when it has no picture. */
    VideoShown shown;
};

/** The layers of the outputs that are enabled, the lowest first. */
std::vector<PanelLayer> panelLayers();

/** The picture of a decoder, in its own size; empty when there is none. */
Picture pictureOf(const VideoShown& shown);

/** Puts a picture into the layer's place, which is black where the picture does not reach. */
void drawLayer(const PanelLayer& layer, const Picture& picture, Picture* panel);

/** The whole panel as it is now. */
Picture composePanel();

}  // namespace sim

#endif

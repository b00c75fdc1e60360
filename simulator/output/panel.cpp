// The panel's frame: black, and on it what each output shows. There are no OSD planes yet.
#include "simulator/output/panel.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "simulator/core/capture.h"
#include "simulator/world/test_signal.h"

namespace sim {

namespace {

/** A stretch of pixels that is mapped onto another. */
struct Axis {
    double from;
    double fromLength;
    int64_t to;
    int64_t toLength;
};

/** Where in the picture a pixel of the panel lies, along an axis. */
double placeOn(const Axis& axis, int64_t pixel, bool nonLinear) {
    // How much slower than in the middle the picture goes by at the sides.
    constexpr double bend = 0.25;
    double part = (static_cast<double>(pixel - axis.to) + 0.5) / static_cast<double>(axis.toLength);
    if (nonLinear) {
        double side = 2 * part - 1;
        part = (side * (1 + bend * (1 - std::fabs(side))) + 1) / 2;
    }
    return axis.from + part * axis.fromLength;
}

bool captureFrame(const std::string& path, Words&, std::string* message) {
    return writePng(path, composePanel(), message);
}

const Capture ofPanel{"panel", captureFrame};

}  // namespace

Picture pictureOf(const VideoShown& shown) {
    const DecoderOrigin& origin = shown.origin;
    switch (origin.kind) {
        case DecoderOrigin::Kind::stream:
            return decodePicture(origin.stream, origin.pid, shown.coding, origin.sinceUs,
                                 origin.atUs);
        case DecoderOrigin::Kind::signal:
            return testPicture(signalSource(origin.signalKind, origin.signalIndex), origin.atUs);
        case DecoderOrigin::Kind::nothing:
            break;
    }
    return Picture();
}

void drawLayer(const PanelLayer& layer, const Picture& picture, Picture* panel) {
    QLX_VOutRect in = layer.in;
    QLX_VOutRect out = layer.out;
    if (in.uWidth == 0 || in.uHeight == 0)
        in = {0, 0, picture.width, picture.height, 0};
    if (out.uWidth == 0 || out.uHeight == 0)
        out = {0, 0, panel->width, panel->height, 0};
    bool exact = layer.dotToDot;
    const Axis across = {double(in.x), double(exact ? out.uWidth : in.uWidth), out.x, out.uWidth};
    const Axis down = {double(in.y), double(exact ? out.uHeight : in.uHeight), out.y, out.uHeight};
    int64_t right = std::min<int64_t>(int64_t{out.x} + out.uWidth, panel->width);
    int64_t bottom = std::min<int64_t>(int64_t{out.y} + out.uHeight, panel->height);
    for (int64_t y = out.y; y < bottom; y++) {
        double sourceY = placeOn(down, y, false);
        for (int64_t x = out.x; x < right; x++) {
            double sourceX = placeOn(across, x, layer.nonLinear && !exact);
            uint8_t* pixel = &panel->rgb[static_cast<size_t>(y * panel->width + x) * 3];
            bool black = sourceX >= picture.width || sourceY >= picture.height;
            const uint8_t nothing[3] = {0, 0, 0};
            const uint8_t* source =
                black ? nothing
                      : &picture.rgb[(static_cast<size_t>(sourceY) * picture.width +
                                      static_cast<size_t>(sourceX)) *
                                     3];
            std::copy(source, source + 3, pixel);
        }
    }
}

Picture composePanel() {
    PanelSize size = panelSize();
    Picture panel;
    panel.width = size.width;
    panel.height = size.height;
    panel.rgb.assign(static_cast<size_t>(size.width) * size.height * 3, 0);
    for (const PanelLayer& layer : panelLayers())
        drawLayer(layer, layer.muted ? Picture() : pictureOf(layer.shown), &panel);
    return panel;
}

}  // namespace sim

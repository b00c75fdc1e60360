/* What stands on the panel. */
#ifndef SIMULATOR_OUTPUT_PANEL_H
#define SIMULATOR_OUTPUT_PANEL_H

#include <stdint.h>

namespace sim {

struct PanelSize {
    uint16_t width;
    uint16_t height;
};

/** The board's. Any thread may call. */
PanelSize panelSize();

}  // namespace sim

#endif

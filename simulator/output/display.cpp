// The panel: its size is the board's.
#include "platform/qlx_display.h"
#include "simulator/core/board.h"
#include "simulator/core/sim.h"
#include "simulator/output/panel.h"

namespace sim {

SIM_RECORD(QLX_PanelInfo, SIM_MEMBER(QLX_PanelInfo, uWidth), SIM_MEMBER(QLX_PanelInfo, uHeight))

PanelSize panelSize() {
    auto side = [](int64_t pixels) {
        return static_cast<uint16_t>(pixels < 0 || pixels > UINT16_MAX ? 0 : pixels);
    };
    return {side(board().number("DISPLAY", "WIDTH")), side(board().number("DISPLAY", "HEIGHT"))};
}

}  // namespace sim

int32_t QLX_DisplayGetPanelInfo(QLX_PanelInfo* pstPanelInfo) {
    SIM_ENTRY("info=%s", sim::showPointer(pstPanelInfo));
    if (pstPanelInfo == nullptr)
        SIM_RETURN(QLX_DISPLAY_ERR_INVALID_PARA);
    sim::PanelSize panel = sim::panelSize();
    *pstPanelInfo = {panel.width, panel.height};
    simCall.output({sim::value("info", pstPanelInfo)});
    SIM_RETURN(QLX_SUCCESS);
}

// System services: bringing up the drivers.
#include "platform/qlx_sys.h"
#include "simulator/core/sim.h"

int32_t QLX_SysInit(void) {
    // No device thread starts here: the program forks its monitor after this call.
    SIM_ENTRY("%s", "");
    SIM_RETURN(QLX_SUCCESS);
}

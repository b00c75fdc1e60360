/* Picture controls, as the video outputs see them, and the outputs, as the controls do. */
#ifndef SIMULATOR_OUTPUT_PICTURE_CONTROL_H
#define SIMULATOR_OUTPUT_PICTURE_CONTROL_H

#include <stdint.h>

namespace sim {

/** Puts all controls to what they are at power on. */
void resetPictureControls();

/** Why a call that needs the output open is refused; 0 when it is not. */
int32_t videoOutputRefusal(uint32_t output);

}  // namespace sim

#endif

/* The audio outputs as the device's other families see them. */
#ifndef SIMULATOR_OUTPUT_AOUT_H
#define SIMULATOR_OUTPUT_AOUT_H

namespace sim {

/** Whether the service of the audio outputs runs, whose clocks sound processing needs. Any thread
 *  may call. */
bool audioOutputsRun();

}  // namespace sim

#endif

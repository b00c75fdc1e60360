/*
 * The way in for events of the outside world: the file that QLX_SIM_CONTROL names. What they mean
 * the core does not know; who does, hands it a function.
 */
#ifndef SIMULATOR_CORE_OUTSIDE_H
#define SIMULATOR_CORE_OUTSIDE_H

#include <string>

namespace sim {

/** For the outside world, when the library is loaded: who takes the lines, and answers whether it
 *  knows them. Any thread may call it then, with no family lock held. */
void takeEventsBy(bool (*take)(const std::string& line));

/** Acts on the lines that were appended to the control file since the last call. Each entry of the
 *  program does so; a device thread that waits for the outside world does it by itself, with no
 *  family lock held. */
void takeOutsideEvents();

}  // namespace sim

#endif

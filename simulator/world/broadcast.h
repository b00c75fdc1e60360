/*
 * The streams on the air: which file a transmitter plays, and what the operator has damaged in it.
 *
 * The files lie in the folder that DEMUX_TS_FILE_PATH of demux_config.cfg names, or key STREAM_PATH
 * of section DEMUX of the board file; streams.cfg in it tells for each transmitter its file and the
 * time of a packet. A transmitter that the board file adds names its file itself (key STREAM).
 *
 * Events: "stream FILE byte OFFSET XX", "stream FILE table PID TABLE OFFSET XX", "stream FILE
 * intact" (docs/simulator-events.md). Who plays the file has to ask streamOf again.
 */
#ifndef SIMULATOR_WORLD_BROADCAST_H
#define SIMULATOR_WORLD_BROADCAST_H

#include <string>

#include "simulator/stream/ts_stream.h"
#include "simulator/world/air.h"

namespace sim {

/** The stream that a transmitter plays; null when it has none, or one without a packet. The same
 *  object as long as nobody changes the file or its damages. */
TsStreamPtr streamOf(const Transmitter& transmitter);

/** The folder of the streams that are on the air, with its '/'; empty when none is named. */
std::string streamFolder();

}  // namespace sim

#endif

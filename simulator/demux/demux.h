/*
 * The demultiplexers as the device's other families see them: what flows through each, for
 * decoders, recorders and descramblers to follow, and the way in for recorded data.
 */
#ifndef SIMULATOR_DEMUX_DEMUX_H
#define SIMULATOR_DEMUX_DEMUX_H

#include <stddef.h>
#include <stdint.h>

#include <functional>

#include "platform/qlx_source.h"
#include "simulator/stream/ts_stream.h"

namespace sim {

constexpr uint32_t demuxCount = 4;

struct DemuxView {
    bool open = false;
    bool started = false;
    QLX_Source source = {};
    /** What flows from the tuner, on the time base of all streams; null when nothing does. */
    TsStreamPtr stream;
    /** The first packet that this stream has let through. */
    uint64_t since = 0;
    /** Another number after each change of the above. */
    uint64_t change = 0;
};

/** Any thread may call, with no lock that a listener takes. */
DemuxView demuxView(uint32_t demux);

/** Registers a listener for the life of the process; it is called after a demultiplexer's view has
 *  changed, with no lock of the demultiplexers held. */
void onDemuxChange(std::function<void(uint32_t demux)> listener);

/**
 * Recorded data come in: transport packets of 188 bytes for the filters of a started demultiplexer
 * that is connected to QLX_SOURCE_TYPE_RECORD. Others ignore them.
 */
void demuxFeed(uint32_t demux, const uint8_t* packets, size_t count);

/** The stream of recorded data as far as it has come, for decoders and recorders that follow a
 *  demultiplexer connected to QLX_SOURCE_TYPE_RECORD; null: its end. */
void demuxInject(uint32_t demux, const TsStreamPtr& stream);

}  // namespace sim

#endif

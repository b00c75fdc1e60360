#include "tools/mkstreams/maker.h"

#include "tools/mkstreams/atsc_tables.h"
#include "tools/mkstreams/dvb_tables.h"

namespace mkstreams {

std::vector<Burst> tablesOf(const LineUp& lineUp, const Multiplex& multiplex) {
    std::vector<Burst> bursts;
    addProgramTables(multiplex, &bursts);
    if (multiplex.standard->family == Family::Atsc)
        addAtscTables(lineUp, multiplex, &bursts);
    else
        addServiceTables(lineUp, multiplex, &bursts);
    return bursts;
}

std::string complaintAbout(const LineUp& lineUp, const std::vector<Burst>& bursts) {
    for (const Burst& burst : bursts) {
        if (burst.pid == lineUp.invalidPid)
            return burst.name + " is on the PID that must stay free";
        for (const Bytes& section : burst.sections) {
            if (section.empty())
                return burst.name + ": no version of it keeps 0xFF off the packets' ends";
            if (section.size() > 4096 || !isSoundSection(section))
                return burst.name + ": a section is damaged or too long";
            if (section[0] == lineUp.invalidTableId)
                return burst.name + " has the table id that must stay free";
        }
    }
    return "";
}

StreamInputs inputsOf(const LineUp& lineUp, const Multiplex& multiplex) {
    StreamInputs inputs;
    inputs.duration = loopTicks(multiplex);
    inputs.pcrPid = multiplex.channels.front().pcrPid;
    inputs.bursts = tablesOf(lineUp, multiplex);
    for (const Channel& channel : multiplex.channels)
        planStreams(multiplex, channel, inputs.duration, &inputs.plans);
    return inputs;
}

bool makeStream(const LineUp& lineUp, const Multiplex& multiplex, EncodedContent* encoded,
                TransportStream* stream, std::string* error) {
    StreamInputs inputs = inputsOf(lineUp, multiplex);
    *error = complaintAbout(lineUp, inputs.bursts);
    if (!error->empty())
        return false;
    MultiplexInput input = {inputs.bursts, {}, inputs.pcrPid, inputs.duration};
    for (const StreamPlan& plan : inputs.plans) {
        input.streams.push_back({plan.pid, {}});
        if (!plan.make(encoded, &input.streams.back(), error))
            return false;
    }
    return multiplexAtFittingRate(input, stream, error);
}

}  // namespace mkstreams

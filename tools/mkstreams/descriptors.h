/* Descriptors of programmes, services, events and networks, for the three families. */
#ifndef TOOLS_MKSTREAMS_DESCRIPTORS_H
#define TOOLS_MKSTREAMS_DESCRIPTORS_H

#include <string>
#include <vector>

#include "tools/mkstreams/bytes.h"
#include "tools/mkstreams/line_up.h"

namespace mkstreams {

/** An elementary stream as the PMT tells it. */
struct Component {
    unsigned streamType;
    uint16_t pid;
    Bytes descriptors;
    std::string language = {}; /**< ISO 639-2 code; empty where nothing is said or written */
};

/** Text as the family codes it in descriptors. */
Bytes codedText(Family family, const std::string& text);

/** A descriptor whose body is text. */
Bytes textDescriptor(unsigned tag, Family family, const std::string& text);

/** PID of the control messages of a scrambled programme. */
static const uint16_t pidEcm = 0x1FE0;

Bytes caDescriptor(Family family, uint16_t pid);

/** Descriptors of a programme as a whole, and its elementary streams, for the PMT. */
Bytes programmeDescriptors(const Multiplex& multiplex, const Channel& channel);
std::vector<Component> componentsOf(const Multiplex& multiplex, const Channel& channel);

Bytes serviceListDescriptor(const Multiplex& multiplex);
Bytes deliveryDescriptors(const Multiplex& multiplex);
Bytes serviceDescriptor(Family family, const Channel& channel);

/** Descriptors of the event that starts at `hour` of the schedule. */
Bytes eventDescriptors(const Multiplex& multiplex, unsigned hour);

/** `change` is the time of the next change of the offset, MJD and BCD. */
Bytes localTimeOffsetDescriptor(Family family, uint64_t change);
Bytes partialStreamDescriptor();

/** Name of the event that starts at `hour` of the schedule, counted from midnight. */
std::string eventName(unsigned hour);
std::string eventText(unsigned hour);

}  // namespace mkstreams

#endif

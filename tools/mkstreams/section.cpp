#include "tools/mkstreams/section.h"

#include <bitstream/mpeg/psi/psi.h>

namespace mkstreams {

static const size_t packetPayload = 184;
static const uint8_t tableIdTot = 0x73;

bool endsCleanly(const Bytes& section) {
    if (section.empty() || section.back() == 0xFF)
        return false;
    // The first packet holds one byte less, for the pointer field.
    for (size_t end = packetPayload - 1; end < section.size(); end += packetPayload)
        if (section[end - 1] == 0xFF)
            return false;
    return true;
}

Bytes buildCleanly(const SectionBuilder& build, unsigned first) {
    for (unsigned step = 0; step < 32; step++) {
        Bytes section = build((first + step) % 32);
        if (endsCleanly(section))
            return section;
    }
    return Bytes();
}

Burst comparedTable(const std::string& name, uint16_t pid, int periodMs,
                    const SectionBuilder& build) {
    return {name, pid, {buildCleanly(build)}, periodMs, false};
}

uint32_t sectionCrc(const Bytes& bytes) {
    uint32_t crc = 0xFFFFFFFF;
    for (uint8_t byte : bytes)
        crc = (crc << 8) ^ p_psi_crc_table[(crc >> 24) ^ byte];
    return crc;
}

void closeSection(Bytes* section) {
    psi_set_length(section->data(),
                   static_cast<uint16_t>(section->size() - PSI_HEADER_SIZE + PSI_CRC_SIZE));
    put32(*section, sectionCrc(*section));
}

uint32_t subTableOf(const Bytes& section) {
    uint32_t subTable = static_cast<uint32_t>(section[0]) << 16;
    if (section.size() > PSI_HEADER_SIZE_SYNTAX1 && psi_get_syntax(section.data()))
        subTable |= psi_get_tableidext(section.data());
    return subTable;
}

bool isSoundSection(const Bytes& section) {
    if (section.size() < PSI_HEADER_SIZE ||
        section.size() != static_cast<size_t>(psi_get_length(section.data())) + PSI_HEADER_SIZE)
        return false;
    bool hasCrc = psi_get_syntax(section.data()) || section[0] == tableIdTot;
    return !hasCrc || (section.size() > PSI_CRC_SIZE && sectionCrc(section) == 0);
}

}  // namespace mkstreams

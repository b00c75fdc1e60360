/* What an HDMI port tells its source of the television: EDID (VESA E-EDID 1.3, CTA-861). */
#ifndef SIMULATOR_INPUT_EDID_H
#define SIMULATOR_INPUT_EDID_H

#include <stdint.h>

#include <array>
#include <vector>

namespace sim {

/** A short audio descriptor of CTA-861: format and channels, sampling rates, bits or bit rate. */
using AudioDescriptor = std::array<uint8_t, 3>;

/** Those of a television without an audio system behind it: LPCM and AC-3. */
std::vector<AudioDescriptor> ownAudioDescriptors();

/** Enters a descriptor in the place of that of its format, or behind the others; false when there
 *  is no room for it. */
bool enterDescriptor(std::vector<AudioDescriptor>* descriptors, const AudioDescriptor& descriptor);

/**
 * Two blocks of 128 bytes.
 * @param port      of the television, from 0: the physical address is port + 1
 * @param enhanced  the port takes the rates of HDMI 2.0
 */
std::array<uint8_t, 256> makeEdid(uint32_t port, bool enhanced,
                                  const std::vector<AudioDescriptor>& descriptors);

}  // namespace sim

#endif

#include "simulator/input/edid.h"

#include <algorithm>
#include <iterator>

namespace sim {

namespace {

constexpr size_t blockSize = 128;
/** A data block has at most 31 bytes: ten descriptors. */
constexpr size_t mostDescriptors = 10;

/** Everything up to the two detailed timings. */
const uint8_t identity[] = {
    0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x45, 0x98,  // manufacturer QLX, five
                                                                 // bits a letter
    0xA7, 0x00,                                                  // product
    0xC2, 0xD3, 0xA7, 0x00,                                      // serial number
    1, 2026 - 1990,                                              // week and year
    1, 3,                                                        // version
    0x80, 121, 68, 120,                                          // digital, cm, gamma 2.2
    0x0E,  // RGB by sRGB, the first timing is the preferred one
    0xEE, 0x91, 0xA3, 0x54, 0x4C, 0x99, 0x26, 0x0F, 0x50, 0x54,  // sRGB
    0x21, 0x08, 0x00,                                            // 640x480, 800x600, 1024x768
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,              // no standard timings
};

/** 1920x1080p60 and 1280x720p60 on 1210 by 680 mm. */
const uint8_t timings[] = {
    0x02, 0x3A, 0x80, 0x18, 0x71, 0x38, 0x2D, 0x40, 0x58, 0x2C, 0x45, 0x00,
    0xBA, 0xA8, 0x42, 0x00, 0x00, 0x1E, 0x01, 0x1D, 0x00, 0x72, 0x51, 0xD0,
    0x1E, 0x20, 0x6E, 0x28, 0x55, 0x00, 0xBA, 0xA8, 0x42, 0x00, 0x00, 0x1E,
};

/** The name, then the limits up to the pixel clock in units of 10 MHz. */
const uint8_t nameAndLimits[] = {
    0,   0,   0,   0xFC, 0, 'Q', 'L', 'X',  ' ', 'T', 'V', '\n', ' ', ' ',
    ' ', ' ', ' ', ' ',  0, 0,   0,   0xFD, 0,   23,  76,  15,   140,
};

/** What follows the pixel clock. */
const uint8_t limitsEnd[] = {0, '\n', ' ', ' ', ' ', ' ', ' ', ' '};

/** Tags of data blocks. */
enum : uint8_t { tagAudio = 1, tagVideo = 2, tagVendor = 3, tagSpeakers = 4, tagExtended = 7 };

void addBlock(std::vector<uint8_t>* out, uint8_t tag, const std::vector<uint8_t>& body) {
    out->push_back(static_cast<uint8_t>(tag << 5 | body.size()));
    out->insert(out->end(), body.begin(), body.end());
}

/** The last byte makes the sum of a block 0. */
void closeBlock(uint8_t* block) {
    uint8_t sum = 0;
    for (size_t i = 0; i < blockSize - 1; i++)
        sum = static_cast<uint8_t>(sum + block[i]);
    block[blockSize - 1] = static_cast<uint8_t>(-sum);
}

std::vector<uint8_t> extensionOf(uint32_t port, bool enhanced,
                                 const std::vector<AudioDescriptor>& descriptors) {
    // Revision 3; underscan, basic audio, YCbCr 4:4:4 and 4:2:2, one native timing.
    std::vector<uint8_t> block = {2, 3, 0, 0xF1};
    // Pictures by their codes: 1080, 720 and 576 or 480 lines.
    std::vector<uint8_t> pictures = {16, 31, 5, 20, 4, 19, 2, 17};
    if (enhanced)
        pictures.insert(pictures.end(), {97, 96});
    addBlock(&block, tagVideo, pictures);
    std::vector<uint8_t> sounds;
    for (const AudioDescriptor& descriptor : descriptors)
        sounds.insert(sounds.end(), descriptor.begin(), descriptor.end());
    addBlock(&block, tagAudio, sounds);
    addBlock(&block, tagSpeakers, {1, 0, 0});
    // HDMI: identifier, physical address, no further capabilities, 300 MHz in units of 5 MHz.
    addBlock(&block, tagVendor,
             {0x03, 0x0C, 0x00, static_cast<uint8_t>((port + 1) << 4), 0x00, 0x00, 60});
    // HDMI forum: identifier, version 1, 600 MHz, a status and control channel.
    if (enhanced)
        addBlock(&block, tagVendor, {0xD8, 0x5D, 0xC4, 1, 120, 0x80, 0x00});
    // Video capability: the range of RGB and YCbCr can be chosen, overscan and underscan too.
    addBlock(&block, tagExtended, {0, 0xCF});
    block[2] = static_cast<uint8_t>(block.size());
    return block;
}

}  // namespace

std::vector<AudioDescriptor> ownAudioDescriptors() {
    // LPCM in two channels and AC-3 in six, 32 to 48 kHz; 16 to 24 bits, 640 kbit/s.
    return {{0x09, 0x07, 0x07}, {0x15, 0x07, 0x50}};
}

bool enterDescriptor(std::vector<AudioDescriptor>* descriptors, const AudioDescriptor& descriptor) {
    for (AudioDescriptor& known : *descriptors) {
        if ((known[0] >> 3 & 15) != (descriptor[0] >> 3 & 15))
            continue;
        known = descriptor;
        return true;
    }
    if (descriptors->size() == mostDescriptors)
        return false;
    descriptors->push_back(descriptor);
    return true;
}

std::array<uint8_t, 256> makeEdid(uint32_t port, bool enhanced,
                                  const std::vector<AudioDescriptor>& descriptors) {
    std::array<uint8_t, 256> edid = {};
    uint8_t* at = std::copy(std::begin(identity), std::end(identity), edid.data());
    at = std::copy(std::begin(timings), std::end(timings), at);
    at = std::copy(std::begin(nameAndLimits), std::end(nameAndLimits), at);
    *at++ = enhanced ? 60 : 30;
    at = std::copy(std::begin(limitsEnd), std::end(limitsEnd), at);
    *at = 1;  // one extension
    closeBlock(edid.data());
    std::vector<uint8_t> extension = extensionOf(port, enhanced, descriptors);
    std::copy(extension.begin(), extension.end(), edid.data() + blockSize);
    closeBlock(edid.data() + blockSize);
    return edid;
}

}  // namespace sim

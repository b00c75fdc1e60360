#include "tools/mkstreams/user_data.h"

namespace mkstreams {

static const int64_t captionCycle = 96;  // pictures
static const size_t tripletsPerPicture = 20;
// As many characters as pictures of a cycle that carry text: one pair a picture for line 21.
static const char captionText[] = "THE QUICK BROWN FOX JUMPS OVER THE LAZY DOG 0123456789 ";
static const size_t captionLength = sizeof(captionText) - 1;

static unsigned withOddParity(unsigned code) {
    unsigned ones = 0;
    for (unsigned bit = 0; bit < 7; bit++)
        ones += code >> bit & 1;
    return ones % 2 == 0 ? code | 0x80 : code;
}

static void putTriplet(Bytes& to, unsigned type, unsigned first, unsigned second) {
    put8(to, 0xFC | type);  // 11111 cc_valid cc_type
    put8(to, first);
    put8(to, second);
}

/** The line 21 pair of a picture. Control codes are sent twice, as receivers expect. */
static void putLine21(Bytes& to, unsigned field, int64_t step) {
    unsigned miscellaneous = field == 0 ? 0x14 : 0x15;
    unsigned pair[2] = {0, 0};
    if (step < 2) {
        pair[0] = miscellaneous;
        pair[1] = 0x25;  // roll-up, two rows
    } else if (step < 4) {
        pair[0] = miscellaneous;
        pair[1] = 0x2D;  // carriage return
    } else if (step < 6) {
        pair[0] = miscellaneous;
        pair[1] = 0x70;  // row 15, no indent
    } else if (2 * (step - 6) + 1 < static_cast<int64_t>(captionLength)) {
        pair[0] = static_cast<unsigned char>(captionText[2 * (step - 6)]);
        pair[1] = static_cast<unsigned char>(captionText[2 * (step - 6) + 1]);
    }
    putTriplet(to, field, withOddParity(pair[0]), withOddParity(pair[1]));
}

/** The codes of service 1 in a picture: a window is defined and shown, then written into. */
static Bytes serviceCodes(int64_t step) {
    if (step == 0)
        // DefineWindow 0: visible, anchored at the lower left, 2 rows of 32; DisplayWindows 0.
        return {0x98, 0x38, 0x4A, 0x10, 0x61, 0x1F, 0x11, 0x89, 0x01};
    if (step == 1)
        return {0x8A, 0x00};  // hide none
    if (step == 2)
        return {0x0D};  // carriage return
    size_t at = static_cast<size_t>(step - 3);
    return {static_cast<uint8_t>(captionText[at % captionLength])};
}

/** A DTV caption packet: header, one service block of service 1, filled up to an even size. */
static Bytes captionPacket(int64_t frame, int64_t step) {
    Bytes codes = serviceCodes(step);
    Bytes packet;
    put8(packet, 0);
    put8(packet, static_cast<unsigned>(1 << 5 | codes.size()));
    append(packet, codes);
    if (packet.size() % 2 != 0)
        put8(packet, 0);  // null service block header
    packet[0] = static_cast<uint8_t>((frame % 4) << 6 | static_cast<int64_t>(packet.size() / 2));
    return packet;
}

Bytes captionData(int64_t frame) {
    int64_t step = frame % captionCycle;
    Bytes data;
    putLine21(data, 0, step);
    putLine21(data, 1, step);
    Bytes packet = captionPacket(frame, step);
    for (size_t i = 0; i < packet.size(); i += 2)
        putTriplet(data, i == 0 ? 3 : 2, packet[i], packet[i + 1]);
    while (data.size() < 3 * tripletsPerPicture) {
        put8(data, 0xFA);  // not valid
        put16(data, 0);
    }
    return data;
}

void insertActiveFormat(unsigned format, Bytes* picture) {
    Bytes sei = {0, 0, 0, 1, 6, 4, 9, 0xB5, 0x00, 0x31, 'D', 'T', 'G', '1', 0x41};
    put8(sei, 0xF0 | format);
    put8(sei, 0x80);
    for (size_t i = 0; i + 4 < picture->size(); i++) {
        const uint8_t* at = picture->data() + i;
        unsigned type = at[3] & 0x1F;
        if (at[0] != 0 || at[1] != 0 || at[2] != 1 || type == 0 || type > 5)
            continue;
        // The start code may have a zero byte before it that belongs to it.
        size_t place = i > 0 && (*picture)[i - 1] == 0 ? i - 1 : i;
        picture->insert(picture->begin() + static_cast<ptrdiff_t>(place), sei.begin(), sei.end());
        return;
    }
}

}  // namespace mkstreams

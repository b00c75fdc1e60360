#include "tools/mkstreams/user_data.h"

namespace mkstreams {

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

#include "tools/mkstreams/atsc_tables.h"

namespace mkstreams {

Bytes multipleString(const std::string& text) {
    Bytes bytes = {1, 'e', 'n', 'g', 1, 0, 0};
    put8(bytes, static_cast<unsigned>(text.size()));
    putText(bytes, text);
    return bytes;
}

void addAtscTables(const LineUp&, const Multiplex&, std::vector<Burst>*) {}

}  // namespace mkstreams

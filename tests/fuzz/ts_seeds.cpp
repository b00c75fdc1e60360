// What the fuzz target of the transport stream reader starts from: short captures as receivers
// write them.
//
//   ts_seeds FOLDER
#include <stdio.h>

#include <string>

#include "tests/shared/demux_streams.h"

using demux_test::Bytes;

static demux_test::StreamMaker air() {
    demux_test::StreamMaker stream;
    stream.section(0x0000, demux_test::makeSection(0x00, 1, 3, 40));
    stream.clock(0x0100, 27000000);
    // Over several packets, with others between, and one that begins where another ends.
    stream.sections(0x0012, {demux_test::makeSection(0x4e, 7, 1, 1000),
                             demux_test::makeSection(0x50, 7, 1, 60)});
    stream.nulls(1);
    stream.pes(0x0101, demux_test::makePes(90000, 400, true));
    stream.section(0x0014, demux_test::makeShortSection(0x70, 8));
    stream.lose(0x0012, 3);
    stream.section(0x0012, demux_test::makeSection(0x4e, 8, 2, 300));
    return stream;
}

static Bytes withParity(const Bytes& stream) {
    Bytes longer;
    for (size_t at = 0; at < stream.size(); at += 188) {
        longer.insert(longer.end(), stream.begin() + static_cast<long>(at),
                      stream.begin() + static_cast<long>(at + 188));
        longer.insert(longer.end(), 16, static_cast<uint8_t>(at >> 3));
    }
    return longer;
}

static bool write(const std::string& path, const Bytes& bytes) {
    FILE* file = fopen(path.c_str(), "wb");
    if (file == nullptr)
        return false;
    bool whole = fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return fclose(file) == 0 && whole;
}

int main(int argc, char** argv) {
    if (argc != 2)
        return 2;
    const std::string folder = argv[1];
    const Bytes stream = air().bytes;
    // A receiver starts in the middle of a packet.
    const Bytes middle(stream.begin() + 100, stream.end());
    return write(folder + "/capture.ts", stream) &&
                   write(folder + "/parity.ts", withParity(stream)) &&
                   write(folder + "/middle.ts", middle)
               ? 0
               : 1;
}

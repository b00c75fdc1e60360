// Fuzz target of the transport stream reader: a file, searched for a section and for a packet. The
// first byte tells the table; each eight bytes behind make a packet, so that short inputs become
// whole streams: flags, header byte 3, four bytes of payload, what fills the rest, bytes between.
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include <vector>

#include "testcase/demux/demux_reference.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // What the reader tells of each packet would be most of the time.
    if (freopen("/dev/null", "w", stdout) == nullptr)
        abort();
    return 0;
}

/** Adds the packet of eight bytes. */
static void addPacket(std::vector<uint8_t>* stream, const uint8_t* bytes) {
    const size_t size = (bytes[0] & 0x80) != 0 ? TS_PACKET_SIZE_MAX : TS_PACKET_SIZE;
    const size_t end = stream->size() + size;
    // Start indicator and PID 0 or 1.
    const uint8_t header[] = {TS_SYNC_BYTE, static_cast<uint8_t>(bytes[0] & 0x40),
                              static_cast<uint8_t>(bytes[0] & 1), bytes[1]};
    stream->insert(stream->end(), header, header + sizeof header);
    stream->insert(stream->end(), bytes + 2, bytes + 6);
    stream->resize(end, bytes[6]);
    stream->insert(stream->end(), bytes[7] >> 5, bytes[7]);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<uint8_t> stream;
    if (size == 0)
        return 0;
    for (size_t at = 1; at + 8 <= size; at += 8)
        addPacket(&stream, data + at);
    stream.insert(stream.end(), data, data + size % 8);
    const int fd = memfd_create("stream", MFD_CLOEXEC);
    if (fd < 0 || write(fd, stream.data(), stream.size()) != static_cast<ssize_t>(stream.size()))
        abort();
    char path[32];
    snprintf(path, sizeof path, "/proc/self/fd/%d", fd);
    RequestInfo_st request{};
    request.tableId = data[0];
    SectionData_st section;
    Demux_ReadTsData(nullptr, &request, &section, path);
    if (section.uLength > TS_SECTION_SIZE_MAX)
        abort();
    Demux_FreeTsData(&section);
    Demux_ReadTsPacketData(nullptr, &request, &section, path);
    if (section.uLength != 0 && section.uLength != TS_PACKET_SIZE &&
        section.uLength != TS_PACKET_SIZE_MAX)
        abort();
    Demux_FreeTsData(&section);
    close(fd);
    return 0;
}

// Fuzz target of the transport stream reader: a file, searched for sections and for packets.
//
// Each input is read twice. As it is, for captures and what the fuzzer makes of them: the searches
// are for the tables that its first packets begin. And, while it is short, as a recipe, by which a
// few bytes become a whole stream: the first byte tells the table; each eight bytes behind make a
// packet: flags, header byte 3, four bytes of payload, what fills the rest, bytes between.
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include <set>
#include <utility>
#include <vector>

#include "testcase/demux/demux_reference.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

static const size_t kMaxRecipe = 1024;
static const size_t kMaxSearches = 4;

// A PID and a table id.
using Search = std::pair<uint16_t, uint8_t>;

static unsigned long wholeSections;

static void tellSections() {
    fprintf(stderr, "ts_reader_fuzz: %lu whole sections\n", wholeSections);
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // What the reader tells of each packet would be most of the time.
    if (freopen("/dev/null", "w", stdout) == nullptr)
        abort();
    atexit(tellSections);
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

/** The tables that begin in the first packets, by PID; the program association table if none. */
static std::set<Search> tablesOf(const uint8_t* data, size_t size) {
    std::set<Search> tables;
    for (size_t at = 0; at + TS_PACKET_SIZE <= size && tables.size() < kMaxSearches; at++) {
        if (data[at] != TS_SYNC_BYTE || (data[at + 1] & 0x40) == 0)
            continue;
        const size_t adaptation = (data[at + 3] & 0x20) != 0 ? data[at + 4] + size_t{1} : 0;
        const size_t pointer = at + 4 + adaptation;
        const size_t table = pointer < size ? pointer + 1 + data[pointer] : size;
        if (table < at + TS_PACKET_SIZE)
            tables.insert({(data[at + 1] << 8 | data[at + 2]) & 0x1fff, data[table]});
        at += TS_PACKET_SIZE - 1;
    }
    if (tables.empty())
        tables.insert({0, 0});
    return tables;
}

static void search(const char* path, const Search& wanted) {
    RequestInfo_st request{};
    request.uPid = wanted.first;
    request.tableId = wanted.second;
    SectionData_st section;
    Demux_ReadTsData(nullptr, &request, &section, path);
    if (section.uLength > TS_SECTION_SIZE_MAX)
        abort();
    wholeSections +=
        section.uLength >= 3 &&
        section.uLength == ((section.pBuffer[1] << 8 | section.pBuffer[2]) & 0xfff) + 3u;
    Demux_FreeTsData(&section);
    Demux_ReadTsPacketData(nullptr, &request, &section, path);
    if (section.uLength != 0 && section.uLength != TS_PACKET_SIZE &&
        section.uLength != TS_PACKET_SIZE_MAX)
        abort();
    Demux_FreeTsData(&section);
}

static void readStream(const uint8_t* data, size_t size, const std::set<Search>& searches) {
    const int fd = memfd_create("stream", MFD_CLOEXEC);
    if (fd < 0 || write(fd, data, size) != static_cast<ssize_t>(size))
        abort();
    char path[32];
    snprintf(path, sizeof path, "/proc/self/fd/%d", fd);
    for (const Search& wanted : searches)
        search(path, wanted);
    close(fd);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    readStream(data, size, tablesOf(data, size));
    if (size > kMaxRecipe)
        return 0;
    std::vector<uint8_t> stream;
    for (size_t at = 1; at + 8 <= size; at += 8)
        addPacket(&stream, data + at);
    stream.insert(stream.end(), data, data + size % 8);
    readStream(stream.data(), stream.size(), {{0, data[0]}});
    return 0;
}

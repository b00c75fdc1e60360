// How fast the reader searches a stream file for a section, beside a plain read of the file and an
// extractor of the same section made with libdvbpsi.
//
// The file is 100 MB of packets of other programmes with the section, a PAT, in the last ones: the
// search has to pass all of it. Each way takes the file from the cache.
// clang-format off
#include <fcntl.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <string>

#include "bench/quiet.h"
#include "bench/world.h"
#include "testcase/demux/demux_reference.h"

// These headers want the integer types before them.
#include <dvbpsi/dvbpsi.h>
#include <dvbpsi/pat.h>
// clang-format on

namespace {

constexpr size_t packetCount = 100 * 1000 * 1000 / TS_PACKET_SIZE;
constexpr uint16_t PROGRAMME = 0x1234;
/** Of the section, with its header and CRC. */
constexpr uint32_t sectionLength = 16;

/** PAT with one programme, in a packet of its own. */
void makePat(uint8_t* packet) {
    const uint8_t section[] = {0x00, 0xb0, 0x0d, 0x00,           0x01,
                               0xc1, 0x00, 0x00, PROGRAMME >> 8, PROGRAMME & 0xff,
                               0xe1, 0x00};
    uint32_t crc = 0xffffffff;
    for (uint8_t byte : section) {
        crc ^= static_cast<uint32_t>(byte) << 24;
        for (int bit = 0; bit < 8; bit++)
            crc = crc << 1 ^ (crc & 0x80000000 ? 0x04c11db7 : 0);
    }
    const uint8_t header[] = {0x47, 0x40, 0x00, 0x10, 0x00};
    memset(packet, 0xff, TS_PACKET_SIZE);
    memcpy(packet, header, sizeof header);
    memcpy(packet + sizeof header, section, sizeof section);
    for (int i = 0; i < 4; i++)
        packet[sizeof header + sizeof section + i] = static_cast<uint8_t>(crc >> (24 - 8 * i));
}

/** The stream file, made when the first benchmark wants it and removed at the end. */
class StreamFile {
 public:
    StreamFile() {
        int fd = mkstemp(path_);
        FILE* file = fd >= 0 ? fdopen(fd, "wb") : nullptr;
        if (file == nullptr) {
            perror(path_);
            exit(1);
        }
        uint8_t packet[TS_PACKET_SIZE];
        for (size_t i = 0; i < packetCount; i++) {
            memset(packet, static_cast<int>(i * 31), sizeof packet);
            packet[0] = TS_SYNC_BYTE;
            packet[1] = static_cast<uint8_t>((i % 40 == 0 ? 0x40 : 0) | 0x01);
            packet[2] = static_cast<uint8_t>(i % 7);
            packet[3] = static_cast<uint8_t>(0x10 | (i & 15));
            if (i + 3 == packetCount)
                makePat(packet);
            fwrite(packet, 1, sizeof packet, file);
        }
        fclose(file);
    }
    ~StreamFile() {
        unlink(path_);
    }
    StreamFile(const StreamFile&) = delete;
    StreamFile& operator=(const StreamFile&) = delete;

    const char* path() const {
        return path_;
    }

 private:
    char path_[32] = "stream_benchmark.XXXXXX";
};

const char* streamFile() {
    static StreamFile file;
    return file.path();
}

/** Runs a way through the file, which answers whether it found what it looks for. */
template <typename Way>
void measure(benchmark::State& state, Way way) {
    const char* path = streamFile();
    Quiet quiet;
    for (auto _ : state) {
        if (!way(path))
            state.SkipWithError("the section was not found");
    }
    state.SetBytesProcessed(static_cast<int64_t>(packetCount * TS_PACKET_SIZE) *
                            state.iterations());
}

bool plainRead(const char* path) {
    static uint8_t block[64 * 1024];
    uint64_t total = 0;
    int fd = open(path, O_RDONLY | O_CLOEXEC);
    for (ssize_t got; (got = read(fd, block, sizeof block)) > 0;)
        total += static_cast<uint64_t>(got);
    close(fd);
    return total == packetCount * TS_PACKET_SIZE;
}

bool readerSearch(const char* path) {
    RequestInfo_st request{};
    request.uVersion = REQUEST_ANY_VERSION;
    SectionData_st data;
    Demux_ReadTsData(nullptr, &request, &data, path);
    const uint32_t length = data.uLength;
    Demux_FreeTsData(&data);
    return length == sectionLength;
}

void onPat(void* programme, dvbpsi_pat_t* pat) {
    if (pat->p_first_program != nullptr)
        *static_cast<uint16_t*>(programme) = pat->p_first_program->i_number;
    dvbpsi_pat_delete(pat);
}

bool dvbpsiSearch(const char* path) {
    static uint8_t block[TS_PACKET_SIZE * 340];
    uint16_t programme = 0;
    dvbpsi_t* handle = dvbpsi_new(nullptr, DVBPSI_MSG_NONE);
    dvbpsi_pat_attach(handle, onPat, &programme);
    FILE* file = fopen(path, "rb");
    setvbuf(file, nullptr, _IONBF, 0);
    size_t got = 0;
    while (programme == 0 && (got = fread(block, TS_PACKET_SIZE, 340, file)) > 0) {
        for (size_t i = 0; i < got && programme == 0; i++) {
            uint8_t* packet = block + i * TS_PACKET_SIZE;
            if (((packet[1] << 8 | packet[2]) & 0x1fff) == 0)
                dvbpsi_packet_push(handle, packet);
        }
    }
    fclose(file);
    dvbpsi_pat_detach(handle);
    dvbpsi_delete(handle);
    return programme == PROGRAMME;
}

void StreamPlainRead(benchmark::State& state) {
    measure(state, plainRead);
}

void StreamSectionSearch(benchmark::State& state) {
    measure(state, readerSearch);
}

void StreamLibdvbpsiSearch(benchmark::State& state) {
    measure(state, dvbpsiSearch);
}

const bool registered =
    measureIn(REAL_TIME, "StreamPlainRead", StreamPlainRead, inMilliseconds) &&
    measureIn(REAL_TIME, "StreamSectionSearch", StreamSectionSearch, inMilliseconds) &&
    measureIn(REAL_TIME, "StreamLibdvbpsiSearch", StreamLibdvbpsiSearch, inMilliseconds);

}  // namespace

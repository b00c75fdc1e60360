// How fast the reader searches a stream file for a section, beside a plain read of the file and an
// extractor of the same section made with libdvbpsi.
//
// The file is 100 MB of packets of other programmes with the section, a PAT, in the last ones: the
// search has to pass all of it. Each way takes the file from the cache; the best of five passes
// counts. Usage: ts_reader_bench [MEGABYTES]
// clang-format off
#include <fcntl.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <chrono>
#include <vector>

#include "testcase/demux/demux_reference.h"

// These headers want the integer types before them.
#include <dvbpsi/dvbpsi.h>
#include <dvbpsi/pat.h>
// clang-format on

namespace {

const int PASSES = 5;
const size_t BLOCK = 64 * 1024;
const uint16_t PROGRAMME = 0x1234;

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

void writeStream(const char* path, size_t packets) {
    FILE* file = fopen(path, "wb");
    if (file == nullptr) {
        perror(path);
        exit(1);
    }
    uint8_t packet[TS_PACKET_SIZE];
    for (size_t i = 0; i < packets; i++) {
        memset(packet, static_cast<int>(i * 31), sizeof packet);
        packet[0] = TS_SYNC_BYTE;
        packet[1] = static_cast<uint8_t>((i % 40 == 0 ? 0x40 : 0) | 0x01);
        packet[2] = static_cast<uint8_t>(i % 7);
        packet[3] = static_cast<uint8_t>(0x10 | (i & 15));
        if (i + 3 == packets)
            makePat(packet);
        fwrite(packet, 1, sizeof packet, file);
    }
    fclose(file);
}

/** Best time of the passes, in seconds. */
template <typename Pass>
double best(Pass pass) {
    double seconds = 1e9;
    for (int i = 0; i < PASSES; i++) {
        auto start = std::chrono::steady_clock::now();
        pass();
        std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        seconds = time.count() < seconds ? time.count() : seconds;
    }
    return seconds;
}

uint64_t plainRead(const char* path) {
    static uint8_t block[BLOCK];
    uint64_t total = 0;
    int fd = open(path, O_RDONLY);
    ssize_t got = 0;
    while ((got = read(fd, block, sizeof block)) > 0)
        total += static_cast<uint64_t>(got);
    close(fd);
    return total;
}

/** The length of the reference. */
uint32_t readerSearch(const char* path) {
    RequestInfo_st request{};
    request.uVersion = REQUEST_ANY_VERSION;
    SectionData_st data;
    Demux_ReadTsData(nullptr, &request, &data, path);
    const uint32_t length = data.uLength;
    Demux_FreeTsData(&data);
    return length;
}

void onPat(void* programme, dvbpsi_pat_t* pat) {
    if (pat->p_first_program != nullptr)
        *static_cast<uint16_t*>(programme) = pat->p_first_program->i_number;
    dvbpsi_pat_delete(pat);
}

/** The programme that the PAT names. */
uint16_t dvbpsiSearch(const char* path) {
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
    return programme;
}

void report(const char* what, double seconds, double megabytes, double plain) {
    fprintf(stderr, "%-24s %8.1f ms %8.0f MB/s  %5.2f of the plain read\n", what, seconds * 1e3,
            megabytes / seconds, seconds / plain);
}

}  // namespace

int main(int argc, char** argv) {
    const double megabytes = argc > 1 ? atof(argv[1]) : 100;
    char path[] = "ts_reader_bench.XXXXXX";
    const int fd = mkstemp(path);
    if (fd < 0) {
        perror(path);
        return 1;
    }
    close(fd);
    writeStream(path, static_cast<size_t>(megabytes * 1e6 / TS_PACKET_SIZE));
    uint32_t length = 0;
    uint16_t programme = 0;
    const double plain = best([&] { plainRead(path); });
    // The search tells what it finds on standard output, which is not what is measured.
    const double reader = best([&] { length = readerSearch(path); });
    const double dvbpsi = best([&] { programme = dvbpsiSearch(path); });
    unlink(path);
    report("plain read", plain, megabytes, plain);
    report("section search", reader, megabytes, plain);
    report("libdvbpsi extractor", dvbpsi, megabytes, plain);
    if (length != 16 || programme != PROGRAMME) {
        fprintf(stderr, "the section was not found\n");
        return 1;
    }
    return 0;
}

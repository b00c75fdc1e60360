/* Transport streams made by hand, for tests of the demultiplexer. */
#ifndef TESTS_SHARED_DEMUX_STREAMS_H
#define TESTS_SHARED_DEMUX_STREAMS_H

#include <stdint.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace demux_test {

using Bytes = std::vector<uint8_t>;

/** CRC_32 of ISO/IEC 13818-1, annex A, bit by bit. */
inline uint32_t crc32(const Bytes& bytes) {
    uint32_t crc = 0xffffffff;
    for (uint8_t byte : bytes) {
        for (int bit = 7; bit >= 0; bit--) {
            bool high = (crc >> 31) != ((byte >> bit) & 1u);
            crc = crc << 1 ^ (high ? 0x04c11db7 : 0);
        }
    }
    return crc;
}

/** A section of `size` bytes in all, with the section syntax and a right CRC. */
inline Bytes makeSection(uint8_t table, uint16_t extension, uint8_t version, size_t size) {
    size_t length = size - 3;
    Bytes section = {table,
                     static_cast<uint8_t>(0xb0 | length >> 8),
                     static_cast<uint8_t>(length),
                     static_cast<uint8_t>(extension >> 8),
                     static_cast<uint8_t>(extension),
                     static_cast<uint8_t>(0xc1 | version << 1),
                     0,
                     0};
    while (section.size() < size - 4)
        section.push_back(static_cast<uint8_t>(section.size() * 7 + version));
    uint32_t crc = crc32(section);
    for (int shift = 24; shift >= 0; shift -= 8)
        section.push_back(static_cast<uint8_t>(crc >> shift));
    return section;
}

/** A section without the section syntax, as the time and date table. */
inline Bytes makeShortSection(uint8_t table, size_t size) {
    Bytes section = {table, 0x70, static_cast<uint8_t>(size - 3)};
    while (section.size() < size)
        section.push_back(static_cast<uint8_t>(section.size()));
    return section;
}

/** A PES packet with a PTS; `bounded`: with its length told. */
inline Bytes makePes(uint64_t pts, size_t size, bool bounded) {
    size_t length = bounded ? size - 6 : 0;
    Bytes pes = {0,
                 0,
                 1,
                 0xc0,
                 static_cast<uint8_t>(length >> 8),
                 static_cast<uint8_t>(length),
                 0x80,
                 0x80,
                 5,
                 static_cast<uint8_t>(0x21 | ((pts >> 29) & 0xe)),
                 static_cast<uint8_t>(pts >> 22),
                 static_cast<uint8_t>(1 | ((pts >> 14) & 0xfe)),
                 static_cast<uint8_t>(pts >> 7),
                 static_cast<uint8_t>(1 | ((pts << 1) & 0xfe))};
    while (pes.size() < size)
        pes.push_back(static_cast<uint8_t>(pes.size()));
    return pes;
}

/** Writes packets one after the other, with running continuity counters. */
class StreamMaker {
 public:
    /** A packet with that payload, of at most 184 bytes; the rest is an adaptation field. */
    void packet(uint16_t pid, bool unitStart, const Bytes& payload) {
        bool adaptation = payload.size() < 184;
        header(pid, unitStart, static_cast<uint8_t>((adaptation ? 0x30 : 0x10) | next(pid)));
        if (adaptation) {
            size_t length = 183 - payload.size();
            bytes.push_back(static_cast<uint8_t>(length));
            if (length > 0)
                bytes.push_back(0);
            bytes.insert(bytes.end(), length > 0 ? length - 1 : 0, 0xff);
        }
        bytes.insert(bytes.end(), payload.begin(), payload.end());
        count++;
    }

    /** A packet without payload that carries the clock. */
    void clock(uint16_t pid, uint64_t pcr) {
        header(pid, false, static_cast<uint8_t>(0x20 | ((counters_[pid] + 15) & 0xf)));
        uint64_t base = pcr / 300;
        uint64_t extension = pcr % 300;
        Bytes field = {183,
                       0x10,
                       static_cast<uint8_t>(base >> 25),
                       static_cast<uint8_t>(base >> 17),
                       static_cast<uint8_t>(base >> 9),
                       static_cast<uint8_t>(base >> 1),
                       static_cast<uint8_t>(0x7e | (base & 1) << 7 | extension >> 8),
                       static_cast<uint8_t>(extension)};
        field.resize(184, 0xff);
        bytes.insert(bytes.end(), field.begin(), field.end());
        count++;
    }

    void nulls(int packets) {
        for (int i = 0; i < packets; i++) {
            header(0x1fff, false, 0x10);
            bytes.insert(bytes.end(), 184, 0xff);
            count++;
        }
    }

    /** Sections one behind the other, each new one announced by a pointer field. */
    void sections(uint16_t pid, const std::vector<Bytes>& sections) {
        Bytes data;
        std::vector<size_t> starts;
        for (const Bytes& section : sections) {
            starts.push_back(data.size());
            data.insert(data.end(), section.begin(), section.end());
        }
        for (size_t at = 0; at < data.size();) {
            Bytes payload;
            size_t start = data.size();
            for (size_t candidate : starts) {
                if (candidate >= at && candidate < start)
                    start = candidate;
            }
            bool starting = start < data.size() && start < at + 183;
            if (starting)
                payload.push_back(static_cast<uint8_t>(start - at));
            // A section that would begin in the last byte has no room for the pointer: stuffing.
            size_t end = starting ? data.size() : start;
            size_t part = std::min(end - at, 184 - payload.size());
            payload.insert(payload.end(), data.begin() + static_cast<long>(at),
                           data.begin() + static_cast<long>(at + part));
            payload.resize(184, 0xff);
            packet(pid, starting, payload);
            at += part;
        }
    }
    void section(uint16_t pid, const Bytes& one) {
        sections(pid, {one});
    }

    void pes(uint16_t pid, const Bytes& pes) {
        for (size_t at = 0; at < pes.size(); at += 184) {
            size_t part = std::min<size_t>(pes.size() - at, 184);
            packet(pid, at == 0,
                   Bytes(pes.begin() + static_cast<long>(at),
                         pes.begin() + static_cast<long>(at + part)));
        }
    }

    /** Moves the continuity counter of a PID on, as lost packets do. */
    void lose(uint16_t pid, int packets) {
        counters_[pid] = (counters_[pid] + packets) & 0xf;
    }

    Bytes bytes;
    uint32_t count = 0;

 private:
    void header(uint16_t pid, bool unitStart, uint8_t control) {
        bytes.push_back(0x47);
        bytes.push_back(static_cast<uint8_t>((unitStart ? 0x40 : 0) | pid >> 8));
        bytes.push_back(static_cast<uint8_t>(pid));
        bytes.push_back(control);
    }
    int next(uint16_t pid) {
        int counter = counters_[pid];
        counters_[pid] = (counter + 1) & 0xf;
        return counter;
    }

    std::map<uint16_t, int> counters_;
};

}  // namespace demux_test

#endif

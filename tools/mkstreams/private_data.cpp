#include "tools/mkstreams/private_data.h"

#include <bitstream/mpeg/pes.h>

#include "tools/mkstreams/multiplexer.h"

namespace mkstreams {

static const size_t cyclesPerLoop = 16;

/* DVB subtitles -------------------------------------------------------------------------------- */

static const unsigned pageId = 1;

static void putSegment(Bytes& to, unsigned type, const Bytes& body) {
    put8(to, 0x0F);  // sync_byte
    put8(to, type);
    put16(to, pageId);
    put16(to, static_cast<unsigned>(body.size()));
    append(to, body);
}

/** A line of the box: 8 pixels of frame, 304 of ground, 8 of frame, coded with 2 bits a pixel. */
static Bytes pixelLine() {
    BitWriter bits;
    bits.put(0x10, 8);  // 2-bit/pixel code string
    auto run = [&](unsigned length, unsigned colour) {
        bits.put(0, 2);
        bits.put(0, 1);  // switch_1
        bits.put(0, 1);  // switch_2
        bits.put(3, 2);  // run of 29 to 284
        bits.put(length - 29, 8);
        bits.put(colour, 2);
    };
    run(32, 1);
    run(256, 2);
    run(32, 1);
    bits.put(0, 6);  // end of string
    bits.align();
    bits.put(0xF0, 8);  // end of object line
    return bits.bytes();
}

static Bytes objectData(size_t lines) {
    Bytes field;
    for (size_t i = 0; i < lines; i++)
        append(field, pixelLine());
    Bytes body;
    put16(body, 0);    // object_id
    put8(body, 0x01);  // version 0, pixels, colours as told
    put16(body, static_cast<unsigned>(field.size()));
    put16(body, static_cast<unsigned>(field.size()));
    append(body, field);
    append(body, field);
    if (body.size() % 2 != 0)
        put8(body, 0);  // stuffing to whole words
    return body;
}

/** A display set: the page with the box (piece 0), or empty (piece 1). */
static Bytes displaySet(size_t which, bool shown, unsigned version) {
    static const size_t lines = 8;  // of a field
    Bytes set;
    Bytes page = {5, static_cast<uint8_t>(version << 4 | (shown ? 2u : 0u) << 2)};
    if (shown) {
        put8(page, 0);  // region 0
        put8(page, 0);
        put16(page, 200);                                      // from the left
        put16(page, 440 + 40 * static_cast<unsigned>(which));  // from the top
    }
    putSegment(set, 0x10, page);
    if (shown) {
        Bytes region = {0, static_cast<uint8_t>(version << 4 | 0x08)};
        put16(region, 320);
        put16(region, 2 * lines);
        put8(region, 0x24);  // 2 bits a pixel at least and at most
        put8(region, 0);     // colours of table 0
        put16(region, 0);    // ground of the region
        put16(region, 0);    // object 0, a bitmap in the stream
        put16(region, 0);    // at the left
        put16(region, 0xF000);
        putSegment(set, 0x11, region);
        Bytes colours = {0, static_cast<uint8_t>(version << 4)};
        for (unsigned entry = 1; entry <= 2; entry++) {
            put8(colours, entry);
            put8(colours, 0x81);  // for 2 bits a pixel, full range
            put32(colours, entry == 1 ? 0xEB808000 : 0x10808040);
        }
        putSegment(set, 0x12, colours);
        putSegment(set, 0x13, objectData(lines));
    }
    putSegment(set, 0x80, Bytes());
    return set;
}

PrivateSource subtitleSource(size_t which) {
    std::string name = "subtitles " + std::to_string(which);
    return {name, cyclesPerLoop, 2, [which](size_t cycle, size_t piece, int64_t pts) {
                Bytes data = {0x20, 0x00};  // data_identifier, subtitle_stream_id
                append(data, displaySet(which, piece == 0,
                                        static_cast<unsigned>((2 * cycle + piece) % 16)));
                put8(data, 0xFF);  // end of PES data
                return pesPacket(PES_STREAM_ID_PRIVATE_1, pts, pts, data);
            }};
}

/* Captions of ISDB ----------------------------------------------------------------------------- */

/** CRC of a data group: x^16 + x^12 + x^5 + 1, from 0. */
static unsigned groupCrc(const Bytes& bytes) {
    unsigned crc = 0;
    for (uint8_t byte : bytes) {
        crc ^= static_cast<unsigned>(byte) << 8;
        for (int bit = 0; bit < 8; bit++)
            crc = (crc & 0x8000) != 0 ? (crc << 1 ^ 0x1021) & 0xFFFF : crc << 1;
    }
    return crc;
}

static Bytes dataGroup(unsigned id, const Bytes& data) {
    Bytes group;
    put8(group, id << 2);
    put16(group, 0);  // the only one of its chain
    put16(group, static_cast<unsigned>(data.size()));
    append(group, data);
    put16(group, groupCrc(group));
    return group;
}

static Bytes captionManagement() {
    Bytes data = {0x3F, 1, 0x10};  // free timing, one language, shown when received
    putText(data, "jpn");
    put8(data, 0x80);  // horizontal writing, 8-unit code
    put24(data, 0);
    return data;
}

static Bytes captionStatement(size_t which, size_t cycle) {
    Bytes text = {0x0C, 0x0E};  // clear the screen, alphanumeric set
    putText(text, "Caption " + std::to_string(which + 1) + " line " +
                      std::to_string(10 + cycle % cyclesPerLoop));
    Bytes data = {0x3F};
    put24(data, static_cast<unsigned>(text.size() + 5));
    put8(data, 0x1F);  // unit separator
    put8(data, 0x20);  // statement body
    put24(data, static_cast<unsigned>(text.size()));
    append(data, text);
    return data;
}

PrivateSource captionSource(size_t which) {
    std::string name = "captions " + std::to_string(which);
    return {name, cyclesPerLoop, 2, [which](size_t cycle, size_t piece, int64_t pts) {
                Bytes data = {0x80, 0xFF, 0xF0};  // synchronous, private_stream_id, header length
                append(data, piece == 0 ? dataGroup(0, captionManagement())
                                        : dataGroup(1, captionStatement(which, cycle)));
                return pesPacket(PES_STREAM_ID_PRIVATE_1, pts, pts, data);
            }};
}

/* Teletext ------------------------------------------------------------------------------------- */

static const size_t unitsPerPiece = 7;
static const size_t rowsOfPage = 24;  // header and 23 rows
static const size_t piecesOfPage = 4;

static unsigned reversed(unsigned byte) {
    unsigned result = 0;
    for (unsigned bit = 0; bit < 8; bit++)
        result |= (byte >> bit & 1) << (7 - bit);
    return result;
}

static unsigned hamming84(unsigned nibble) {
    static const uint8_t codes[16] = {0x15, 0x02, 0x49, 0x5E, 0x64, 0x73, 0x38, 0x2F,
                                      0xD0, 0xC7, 0x8C, 0x9B, 0xA1, 0xB6, 0xFD, 0xEA};
    return codes[nibble & 15];
}

static unsigned oddParity(unsigned code) {
    unsigned ones = 0;
    for (unsigned bit = 0; bit < 7; bit++)
        ones += code >> bit & 1;
    return ones % 2 == 0 ? code | 0x80 : code;
}

/** The 42 bytes of a row of page 100 as they follow the framing code, lowest bit first. */
static Bytes teletextRow(size_t row) {
    Bytes bytes;
    put8(bytes, hamming84(static_cast<unsigned>(1 | (row & 1) << 3)));  // magazine 1
    put8(bytes, hamming84(static_cast<unsigned>(row >> 1)));
    std::string text = "Row " + std::to_string(row) + " of the laboratory's teletext page";
    if (row == 0) {
        for (int i = 0; i < 8; i++)
            put8(bytes, hamming84(0));  // page 00, sub-code 0, no control bits
        text = "P100 LABORATORY";
    }
    for (size_t i = 0; bytes.size() < 42; i++)
        put8(bytes, oddParity(i < text.size() ? static_cast<unsigned char>(text[i]) : 0x20));
    return bytes;
}

static void putDataUnit(Bytes& to, size_t row) {
    if (row >= rowsOfPage) {
        put8(to, 0xFF);  // stuffing
        put8(to, 0x2C);
        to.resize(to.size() + 0x2C, 0xFF);
        return;
    }
    put8(to, 0x02);  // teletext, no subtitles
    put8(to, 0x2C);
    put8(to, 0xC0 | (row % 2 == 0 ? 0x20 : 0) | static_cast<unsigned>(7 + row / 2 % 15));
    put8(to, 0xE4);  // framing code
    for (uint8_t byte : teletextRow(row))
        put8(to, reversed(byte));
}

/** The PES packet fills its transport packets: a header of 45 bytes, data units of 46. */
static Bytes teletextPacket(size_t piece, int64_t pts) {
    static const size_t headerSize = 45;
    Bytes data = {0x10};  // EBU data
    for (size_t unit = 0; unit < unitsPerPiece; unit++)
        putDataUnit(data, piece * unitsPerPiece + unit);
    Bytes packet = pesPacket(PES_STREAM_ID_PRIVATE_1, pts, pts, Bytes());
    packet.resize(headerSize, 0xFF);
    pes_set_headerlength(packet.data(), headerSize - PES_HEADER_SIZE_NOPTS);
    append(packet, data);
    pes_set_length(packet.data(), static_cast<uint16_t>(packet.size() - PES_HEADER_SIZE));
    return packet;
}

PrivateSource teletextSource() {
    return {"teletext", cyclesPerLoop, piecesOfPage,
            [](size_t, size_t piece, int64_t pts) { return teletextPacket(piece, pts); }};
}

PrivateSource dataSource() {
    return {"data", cyclesPerLoop, 1, [](size_t cycle, size_t, int64_t pts) {
                Bytes data;
                putText(data, "Laboratory data " + std::to_string(10 + cycle % cyclesPerLoop));
                return pesPacket(PES_STREAM_ID_PRIVATE_1, pts, pts, data);
            }};
}

}  // namespace mkstreams

#include "tools/mkstreams/captions.h"

#include <stdio.h>

#include <algorithm>
#include <deque>

namespace mkstreams {

static const size_t picturesPerSecond = 30;
static const size_t tripletsPerPicture = 20;
static const size_t fields = 2;

/** The frozen clock of the laboratory, and the seconds of the loop. */
static std::string timeAt(size_t second) {
    char text[16];
    snprintf(text, sizeof(text), "00:30:%02zu", second % 60);
    return text;
}

static void putTriplet(Bytes& to, unsigned type, unsigned first, unsigned second) {
    put8(to, 0xFC | type);  // 11111 cc_valid cc_type
    put8(to, first);
    put8(to, second);
}

/* Line 21 -------------------------------------------------------------------------------------- */

static unsigned withOddParity(unsigned code) {
    unsigned ones = 0;
    for (unsigned bit = 0; bit < 7; bit++)
        ones += code >> bit & 1;
    return ones % 2 == 0 ? code | 0x80 : code;
}

/** The pair of a field in a picture of a second. Control codes are sent twice, as receivers expect.
 */
static void putLine21(Bytes& to, unsigned field, size_t step, const std::string& text) {
    unsigned miscellaneous = field == 0 ? 0x14 : 0x15;
    const unsigned controls[][2] = {
        {miscellaneous, 0x26},  // roll-up, three rows
        {miscellaneous, 0x2D},  // carriage return
        {0x14, 0x70},           // row 15, no indent
    };
    static const size_t controlSteps = 6;
    unsigned pair[2] = {0, 0};
    for (size_t i = 0; i < 2; i++) {
        size_t at = step < controlSteps ? text.size() : 2 * (step - controlSteps) + i;
        if (step < controlSteps)
            pair[i] = controls[step / 2][i];
        else if (at < text.size())
            pair[i] = static_cast<unsigned char>(text[at]);
    }
    putTriplet(to, field, withOddParity(pair[0]), withOddParity(pair[1]));
}

/* DTV captions --------------------------------------------------------------------------------- */

/** Codes of a service. */
struct ServiceBlock {
    unsigned service; /**< 1 to 63 */
    Bytes codes;      /**< at most 31 */
};

/** A command to define a window, hidden or shown: two rows of 32, at the lower left. */
static Bytes defineWindow(unsigned window, bool shown) {
    return {static_cast<uint8_t>(0x98 + window),
            static_cast<uint8_t>(shown ? 0x38 : 0x18),
            0x4A,
            0x10,
            0x61,
            0x1F,
            0x11};
}

static const Bytes windowAttributes = {0x97, 0x00, 0x00, 0x4C, 0x10};
static const Bytes penAttributes = {0x90, 0x05, 0x00};
static const Bytes penColour = {0x91, 0x3F, 0x00, 0x00};
static const Bytes penLocation = {0x92, 0x00, 0x00};

static Bytes joinedCodes(const std::vector<Bytes>& parts) {
    Bytes all;
    for (const Bytes& part : parts)
        append(all, part);
    return all;
}

/** The blocks that open a second of service 1. All end in window 0, on an empty row. */
static std::vector<Bytes> openingOf(size_t second) {
    switch (second) {
        case 0:  // delete all windows; one with all attributes
            return {joinedCodes({{0x8C, 0xFF},
                                 defineWindow(0, true),
                                 windowAttributes,
                                 penAttributes,
                                 penColour,
                                 penLocation})};
        case 1:  // carriage return
            return {joinedCodes({defineWindow(1, false),
                                 defineWindow(2, false),
                                 defineWindow(3, false),
                                 {0x80, 0x0D}})};
        case 2:  // two blocks of one service in a packet
            return {joinedCodes({defineWindow(4, false), defineWindow(5, false),
                                 defineWindow(6, false), defineWindow(7, false)}),
                    {0x80, 0x0D}};
        case 3:  // clear a window; toggle two and toggle them back; hide
            return {{0x81, 0x88, 0x02, 0x82, 0x8B, 0x0C, 0x83, 0x8B, 0x0C, 0x8A, 0xFE, 0x80, 0x0D}};
        case 4:  // the other windows become current; display
            return {{0x84, 0x85, 0x86, 0x87, 0x89, 0x01, 0x80, 0x0D}};
        case 5:  // delay for a tenth of a second, and cancel it
            return {{0x8D, 0x01, 0x8E, 0x80, 0x0D}};
        case 6:  // a character that is taken back; the row erased from its begin
            return {{0x80, 0x0D, 'x', 0x08, 'y', 0x0E}};
        case 7:  // form feed
            return {{0x80, 0x0C}};
        case 8:  // a solid block of the set G2 behind EXT1, taken back
            return {{0x80, 0x0D, 0x10, 0x30, 0x08}};
        default:
            return {{0x8C, 0xFE, 0x80, 0x0D}};
    }
}

/** Packets of the caption channel, numbered. */
class CaptionChannel {
 public:
    /** Sends the triplets of a packet, which a null block fills up to an even size. */
    void send(const std::vector<ServiceBlock>& blocks, std::deque<Bytes>* triplets) {
        Bytes bytes = {0};
        for (const ServiceBlock& block : blocks) {
            bool extended = block.service > 6;
            put8(bytes,
                 (extended ? 7u : block.service) << 5 | static_cast<unsigned>(block.codes.size()));
            if (extended)
                put8(bytes, block.service);
            append(bytes, block.codes);
        }
        if (bytes.size() % 2 != 0)
            put8(bytes, 0);
        bytes[0] = static_cast<uint8_t>((sequence_++ % 4) << 6 | bytes.size() / 2);
        for (size_t i = 0; i < bytes.size(); i += 2) {
            triplets->emplace_back();
            putTriplet(triplets->back(), i == 0 ? 3 : 2, bytes[i], bytes[i + 1]);
        }
    }

 private:
    size_t sequence_ = 0;
};

static Bytes part(const std::string& text, size_t from, size_t size) {
    from = std::min(from, text.size());
    return Bytes(text.begin() + static_cast<ptrdiff_t>(from),
                 text.begin() + static_cast<ptrdiff_t>(std::min(from + size, text.size())));
}

/** A second of captions, or the rest of one at the end of the loop. */
struct CaptionSecond {
    size_t number;
    size_t pictures;
    std::string english, spanish, german;
};

/** A receiver may leave the sequence numbers of packets without a block out of account: there are
 *  whole cycles of them and of the others. */
static const size_t packetsPerCycle = 4;

/**
 * The service blocks of a second by picture, from the first one on: a character each, or two where
 * the loop leaves less than a second. The text's end is told until a cycle of packets is full.
 */
static std::vector<std::vector<ServiceBlock>> blocksOf(const CaptionSecond& second) {
    std::vector<std::vector<ServiceBlock>> pictures(1);
    for (const Bytes& codes : openingOf(second.number))
        pictures[0].push_back({1, codes});
    for (unsigned service : {2u, 8u})
        pictures[0].push_back({service, second.number == 0
                                            ? joinedCodes({defineWindow(0, true), penLocation})
                                            : Bytes{0x80, 0x0D}});
    bool whole = second.pictures == picturesPerSecond;
    size_t each = whole ? 1 : 2;
    for (size_t at = 0; at < second.english.size(); at += each) {
        pictures.push_back({{1, part(second.english, at, each)}});
        for (const ServiceBlock& other : {ServiceBlock{2, part(second.spanish, at / each * 2, 2)},
                                          ServiceBlock{8, part(second.german, at / each * 2, 2)}})
            if (!other.codes.empty())
                pictures.back().push_back(other);
    }
    do {
        pictures.push_back({{1, {0x03}}});  // end of text
    } while ((pictures.size() + (whole ? 0 : 1)) % packetsPerCycle != 0);
    if (!whole)
        pictures.push_back({{1, {0x8F}}});  // reset, at the end of the loop
    return pictures;
}

std::vector<Bytes> captionLoop(const std::string& name, size_t pictures) {
    std::string number = name.substr(name.rfind(' ') + 1);
    std::vector<Bytes> loop;
    CaptionChannel channel;
    std::deque<Bytes> waiting;
    for (size_t first = 0; first < pictures; first += picturesPerSecond) {
        std::string time = " " + timeAt(first / picturesPerSecond);
        CaptionSecond second = {first / picturesPerSecond,
                                std::min(picturesPerSecond, pictures - first), name + time,
                                "Se\xF1"
                                "al " +
                                    number + time,
                                "Kanal " + number + time};
        auto blocks = blocksOf(second);
        for (size_t step = 0; step < second.pictures; step++) {
            Bytes data;
            // Receivers that draw word by word wait for the blank.
            putLine21(data, 0, step, second.english + " ");
            putLine21(data, 1, step, "Canal " + number + time + " ");
            bool emptyPacket =
                second.pictures == picturesPerSecond && step >= second.pictures - packetsPerCycle;
            if (step < blocks.size())
                channel.send(blocks[step], &waiting);
            else if (emptyPacket)
                channel.send({}, &waiting);
            for (size_t i = fields; i < tripletsPerPicture; i++) {
                if (waiting.empty()) {
                    put8(data, 0xFA);  // not valid
                    put16(data, 0);
                } else {
                    append(data, waiting.front());
                    waiting.pop_front();
                }
            }
            loop.push_back(data);
        }
    }
    return loop;
}

}  // namespace mkstreams

#include "simulator/media/caption_text.h"

#include <algorithm>
#include <map>

#include "simulator/media/captions.h"

namespace sim {

namespace {

using Bytes = std::vector<uint8_t>;

/** A character of ISO 8859-1, which the sets G0 and G1 of DTV captions follow. */
void append(std::string* text, uint8_t code) {
    if (code < 0x80) {
        *text += static_cast<char>(code);
        return;
    }
    *text += static_cast<char>(0xC0 | code >> 6);
    *text += static_cast<char>(0x80 | (code & 0x3F));
}

/** The row of a service that is being written. */
class Writer {
 public:
    Writer(std::string service, std::vector<CaptionRow>* rows)
        : service_(std::move(service)), rows_(rows) {}

    void write(uint8_t code, size_t picture) {
        row_.push_back(code);
        picture_ = picture;
    }
    void takeBack() {
        if (!row_.empty())
            row_.pop_back();
    }
    void clear() {
        row_.clear();
    }
    void finish() {
        while (!row_.empty() && row_.back() == ' ')
            row_.pop_back();
        std::string text;
        for (uint8_t code : row_)
            append(&text, code);
        if (!text.empty())
            rows_->push_back({service_, text, picture_});
        row_.clear();
    }

 private:
    std::string service_;
    std::vector<CaptionRow>* rows_;
    Bytes row_;
    size_t picture_ = 0;
};

/** A field of line 21 (CTA-608). Control codes come twice and count once. */
class Line21 {
 public:
    Line21(const char* service, std::vector<CaptionRow>* rows) : writer_(service, rows) {}

    void take(uint8_t first, uint8_t second, size_t picture) {
        constexpr uint8_t carriageReturn = 0x2D;
        const uint8_t codes[] = {static_cast<uint8_t>(first & 0x7F),
                                 static_cast<uint8_t>(second & 0x7F)};
        const unsigned pair = codes[0] << 8 | codes[1];
        const bool control = codes[0] >= 0x10 && codes[0] < 0x20;
        const bool again = control && pair == last_;
        last_ = control && !again ? pair : 0;
        if (again)
            return;
        if (control) {
            if ((codes[0] & 0x76) == 0x14 && codes[1] == carriageReturn)
                writer_.finish();
            return;
        }
        for (uint8_t code : codes) {
            if (code >= 0x20)
                writer_.write(code, picture);
        }
    }
    void finish() {
        writer_.finish();
    }

 private:
    Writer writer_;
    unsigned last_ = 0;
};

/** Bytes that follow a code of a service block (CTA-708, 7.1.4 and 8.10.5). */
size_t parametersOf(uint8_t code) {
    if (code >= 0x98 && code <= 0x9F)
        return 6;
    if (code >= 0x88 && code <= 0x8D)
        return 1;
    switch (code) {
        case 0x10:
            return 1;
        case 0x90:
        case 0x92:
            return 2;
        case 0x91:
            return 3;
        case 0x97:
            return 4;
        default:
            return code >= 0x11 && code <= 0x17 ? 1 : code >= 0x18 && code <= 0x1F ? 2 : 0;
    }
}

void takeBlock(Writer& writer, const uint8_t* codes, size_t size, size_t picture) {
    for (size_t i = 0; i < size; i += 1 + parametersOf(codes[i])) {
        const uint8_t code = codes[i];
        if (code == 0x08)
            writer.takeBack();
        else if (code == 0x0E)
            writer.clear();
        else if (code == 0x0C || code == 0x0D || code == 0x8F)
            writer.finish();
        else if (code == 0x10)
            writer.write('#', picture);  // of the set G2
        else if ((code >= 0x20 && code < 0x80) || code >= 0xA0)
            writer.write(code, picture);
    }
}

/** The services of the DTV caption channel. */
class Services {
 public:
    explicit Services(std::vector<CaptionRow>* rows) : rows_(rows) {}

    void take(const Bytes& packet, size_t picture) {
        constexpr unsigned extended = 7;
        for (size_t at = 1; at < packet.size() && packet[at] != 0;) {
            size_t size = packet[at] & 0x1F;
            unsigned service = packet[at++] >> 5;
            if (service == extended && at < packet.size())
                service = packet[at++] & 0x3F;
            size = std::min(size, packet.size() - at);
            auto writer = writers_.try_emplace(service, "S" + std::to_string(service), rows_).first;
            takeBlock(writer->second, packet.data() + at, size, picture);
            at += size;
        }
    }
    void finish() {
        for (auto& [service, writer] : writers_)
            writer.finish();
    }

 private:
    std::vector<CaptionRow>* rows_;
    std::map<unsigned, Writer> writers_;
};

}  // namespace

std::vector<CaptionRow> captionRows(const std::vector<Bytes>& pictures) {
    std::vector<CaptionRow> rows;
    Line21 fields[] = {{"CC1", &rows}, {"CC3", &rows}};
    Services services(&rows);
    CaptionChannel channel;
    for (size_t picture = 0; picture < pictures.size(); picture++) {
        const Bytes& triplets = pictures[picture];
        for (size_t at = 0; at + bytesPerTriplet <= triplets.size(); at += bytesPerTriplet) {
            const uint8_t type = triplets[at] & captionType;
            if ((triplets[at] & captionValid) != 0 && type < 2)
                fields[type].take(triplets[at + 1], triplets[at + 2], picture);
        }
        for (const Bytes& packet : channel.take(triplets))
            services.take(packet, picture);
    }
    for (Line21& field : fields)
        field.finish();
    services.finish();
    return rows;
}

}  // namespace sim

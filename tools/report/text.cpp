#include "tools/report/text.h"

#include <stdint.h>
#include <stdio.h>

namespace report {

namespace {

const char replacement[] = "\xEF\xBF\xBD";

/** The character at the start of `bytes` and its length; U+FFFD of length 1 where there is none. */
uint32_t decode(std::string_view bytes, size_t* length) {
    auto at = [&](size_t i) { return static_cast<unsigned char>(bytes[i]); };
    unsigned first = at(0);
    *length = 1;
    if (first < 0x80)
        return first;
    size_t more = first >= 0xF0 && first < 0xF5 ? 3 : first >= 0xE0 ? 2 : first >= 0xC2 ? 1 : 0;
    if (more == 0 || first >= 0xF5 || bytes.size() <= more)
        return 0xFFFD;
    uint32_t code = first & (0x3Fu >> more);
    for (size_t i = 1; i <= more; i++) {
        if ((at(i) & 0xC0) != 0x80)
            return 0xFFFD;
        code = code << 6 | (at(i) & 0x3F);
    }
    bool tooLong = (more == 2 && code < 0x800) || (more == 3 && code < 0x10000);
    if (tooLong || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000))
        return 0xFFFD;
    *length = more + 1;
    return code;
}

bool unwelcome(uint32_t code) {
    bool direction = (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
    bool control = code >= 0x80 && code < 0xA0;
    bool none = (code & 0xFFFE) == 0xFFFE || (code >= 0xFDD0 && code < 0xFDF0);
    return direction || control || none || code == 0xFFFD;
}

/** Adds the character at `at` to `out` and answers its length. */
size_t addCharacter(std::string_view bytes, size_t at, std::string* out) {
    size_t length = 1;
    uint32_t code = decode(bytes.substr(at, 4), &length);
    if (code == '\r' && (at + 1 == bytes.size() || bytes[at + 1] == '\n'))
        return length;
    if ((code < 0x20 && code != '\n' && code != '\t') || code == 0x7F) {
        *out += "\xE2\x90";
        *out += static_cast<char>(0x80 + (code == 0x7F ? 0x21 : code));
    } else if (unwelcome(code)) {
        *out += replacement;
    } else {
        out->append(bytes.substr(at, length));
    }
    return length;
}

void addHtml(std::string_view bytes, std::string* out) {
    for (size_t at = 0; at < bytes.size();) {
        switch (bytes[at]) {
            case '&':
                *out += "&amp;";
                break;
            case '<':
                *out += "&lt;";
                break;
            case '>':
                *out += "&gt;";
                break;
            case '"':
                *out += "&quot;";
                break;
            case '\'':
                *out += "&#39;";
                break;
            default:
                at += addCharacter(bytes, at, out);
                continue;
        }
        at++;
    }
}

/** The length of the control sequence at `at`: ESC [ parameters letter; 0 when there is none. */
size_t sequenceLength(std::string_view bytes, size_t at) {
    if (at + 2 >= bytes.size() || bytes[at] != '\033' || bytes[at + 1] != '[')
        return 0;
    size_t end = at + 2;
    while (end < bytes.size() && bytes[end] >= 0x20 && bytes[end] < 0x40)
        end++;
    bool letter = end < bytes.size() && bytes[end] >= 0x40 && bytes[end] < 0x7F;
    return letter ? end + 1 - at : 0;
}

/** What "Select Graphic Rendition" has set. */
struct Colour {
    int front = 0;
    int back = 0;
    bool bold = false;
};

void setColour(std::string_view parameters, Colour* colour) {
    for (size_t at = 0; at <= parameters.size();) {
        size_t end = parameters.find(';', at);
        end = end == std::string_view::npos ? parameters.size() : end;
        int code = 0;
        for (size_t i = at; i < end && code < 1000; i++)
            code = parameters[i] >= '0' && parameters[i] <= '9' ? code * 10 + parameters[i] - '0'
                                                                : 1000;
        if (code == 0)
            *colour = Colour();
        else if (code == 1 || code == 22)
            colour->bold = code == 1;
        else if (code >= 30 && code <= 39)
            colour->front = code <= 36 ? code - 30 : 0;
        else if (code >= 40 && code <= 49)
            colour->back = code <= 46 ? code - 40 : 0;
        else if (code >= 91 && code <= 96)
            colour->front = code - 90;
        at = end + 1;
    }
}

std::string openSpan(const Colour& colour) {
    std::string classes;
    if (colour.front != 0)
        classes += " c" + std::to_string(colour.front);
    if (colour.back != 0)
        classes += " g" + std::to_string(colour.back);
    if (colour.bold)
        classes += " b";
    return classes.empty() ? "" : "<span class=\"" + classes.substr(1) + "\">";
}

/** Calls `text` for what lies between control sequences, and `sequence` for each of those. */
template <class Text, class Sequence>
void splitConsole(std::string_view bytes, Text text, Sequence sequence) {
    size_t begin = 0;
    for (size_t at = bytes.find('\033'); at != std::string_view::npos;
         at = bytes.find('\033', at)) {
        size_t length = sequenceLength(bytes, at);
        if (length == 0) {
            at++;
            continue;
        }
        text(bytes.substr(begin, at - begin));
        sequence(bytes.substr(at, length));
        at += length;
        begin = at;
    }
    text(bytes.substr(begin));
}

}  // namespace

std::string printable(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (size_t at = 0; at < bytes.size();)
        at += addCharacter(bytes, at, &out);
    return out;
}

std::string withoutColours(std::string_view bytes) {
    std::string out;
    splitConsole(
        bytes, [&](std::string_view text) { out.append(text); }, [](std::string_view) {});
    return out;
}

std::string html(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size() + bytes.size() / 8);
    addHtml(bytes, &out);
    return out;
}

std::string htmlOfConsole(std::string_view bytes) {
    std::string out;
    Colour colour;
    splitConsole(
        bytes,
        [&](std::string_view text) {
            if (text.empty())
                return;
            std::string span = openSpan(colour);
            out += span;
            addHtml(text, &out);
            out += span.empty() ? "" : "</span>";
        },
        [&](std::string_view sequence) {
            if (sequence.back() == 'm')
                setColour(sequence.substr(2, sequence.size() - 3), &colour);
        });
    return out;
}

std::string duration(long long milliseconds) {
    char text[48];
    long long seconds = (milliseconds + 500) / 1000;
    if (milliseconds < 0)
        return "\xE2\x80\x93";
    if (milliseconds < 1000)
        snprintf(text, sizeof text, "%lld ms", milliseconds);
    else if (milliseconds < 59950)
        snprintf(text, sizeof text, "%.1f s", static_cast<double>(milliseconds) / 1000);
    else if (seconds < 3600)
        snprintf(text, sizeof text, "%lld min %02lld s", seconds / 60, seconds % 60);
    else
        snprintf(text, sizeof text, "%lld h %02lld min", seconds / 3600, seconds % 3600 / 60);
    return text;
}

}  // namespace report

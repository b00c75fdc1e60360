#include "tools/golden/shape.h"

#include <cctype>
#include <cstring>

static bool isWordCharacter(char c) {
    return isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

static bool isDigit(char c) {
    return isdigit(static_cast<unsigned char>(c)) != 0;
}

/** Behind the decimal digits at `at`. */
static size_t behindDigits(const std::string& text, size_t at) {
    while (at < text.size() && isDigit(text[at]))
        at++;
    return at;
}

/** The length of the number that begins at `at`; 0 for digits that belong to a name. */
static size_t numberLength(const std::string& text, size_t at) {
    if (at > 0 && isWordCharacter(text[at - 1]))
        return 0;
    size_t end = at + (text[at] == '-' ? 1 : 0);
    if (text.compare(end, 2, "0x") == 0) {
        end += 2;
        while (end < text.size() && isxdigit(static_cast<unsigned char>(text[end])) != 0)
            end++;
    } else {
        size_t digits = end;
        end = behindDigits(text, end);
        if (end == digits)
            return 0;
        if (end + 1 < text.size() && text[end] == '.' && isDigit(text[end + 1]))
            end = behindDigits(text, end + 1);
    }
    return end < text.size() && isWordCharacter(text[end]) ? 0 : end - at;
}

/** The length of a course "{1..9/2}" or "{1 2 {3 4}}" that begins at `at`: numbers and what joins
 *  them. 0 for braces around anything else. */
static size_t courseLength(const std::string& text, size_t at) {
    int depth = 0;
    if (at + 1 >= text.size() || (strchr("-{", text[at + 1]) == nullptr && !isDigit(text[at + 1])))
        return 0;
    for (size_t end = at; end < text.size(); end++) {
        depth += text[end] == '{' ? 1 : text[end] == '}' ? -1 : 0;
        if (depth == 0)
            return end + 1 - at;
        if (strchr("{} .-/#xabcdefABCDEF", text[end]) == nullptr && !isDigit(text[end]))
            return 0;
    }
    return 0;
}

Shape shapeOf(const std::string& line) {
    Shape shape;
    for (size_t at = 0; at < line.size();) {
        size_t length = line[at] == '{' ? courseLength(line, at) : numberLength(line, at);
        if (length > 0) {
            shape.values.push_back(line.substr(at, length));
            shape.text += valueSlot;
            at += length;
        } else {
            shape.text += line[at++];
        }
    }
    return shape;
}

uint32_t checksum(const std::vector<std::string>& values) {
    uint32_t sum = 2166136261u;
    for (const std::string& value : values) {
        // The blank keeps "1 23" apart from "12 3".
        for (char c : value + " ")
            sum = (sum ^ static_cast<unsigned char>(c)) * 16777619u;
    }
    return sum;
}

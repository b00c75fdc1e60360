#include "simulator/core/words.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>

namespace sim {

/** Whether a C function that stopped at `end` has read the whole word. */
static bool wholeWord(const std::string& word, const char* end) {
    return !word.empty() && isspace(static_cast<unsigned char>(word[0])) == 0 && *end == '\0' &&
           errno == 0;
}

bool readNumber(const std::string& word, int64_t least, int64_t most, int64_t* value, int base) {
    char* end = nullptr;
    errno = 0;
    int64_t number = strtoll(word.c_str(), &end, base);
    if (!wholeWord(word, end) || number < least || number > most)
        return false;
    *value = number;
    return true;
}

bool readUnsigned(const std::string& word, uint64_t most, uint64_t* value, int base) {
    char* end = nullptr;
    errno = 0;
    uint64_t number = strtoull(word.c_str(), &end, base);
    if (!wholeWord(word, end) || word[0] == '-' || number > most)
        return false;
    *value = number;
    return true;
}

bool readDecimal(const std::string& word, double* value) {
    char* end = nullptr;
    errno = 0;
    double number = strtod(word.c_str(), &end);
    if (!wholeWord(word, end))
        return false;
    *value = number;
    return true;
}

int64_t leadingNumber(const std::string& text) {
    return strtoll(text.c_str(), nullptr, 0);
}

bool partWord(const std::string& word, char mark, std::string* before, std::string* behind) {
    size_t place = word.find(mark);
    if (place == std::string::npos)
        return false;
    std::string whole = word;
    *before = whole.substr(0, place);
    *behind = whole.substr(place + 1);
    return true;
}

bool Words::nextNumber(int64_t least, int64_t most, int64_t* value, int base) {
    std::string word;
    return next(&word) && readNumber(word, least, most, value, base);
}

std::string Words::rest() {
    std::string text;
    std::getline(in_ >> std::ws, text);
    return text;
}

}  // namespace sim

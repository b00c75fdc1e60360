/*
 * How the device reads words and numbers, in the texts of faults, events and boards alike.
 */
#ifndef SIMULATOR_CORE_WORDS_H
#define SIMULATOR_CORE_WORDS_H

#include <stdint.h>

#include <sstream>
#include <string>

namespace sim {

/**
 * Reads a whole word as a number: decimal, hexadecimal with 0x, octal with a leading 0.
 * @param base  16: hexadecimal without 0x
 * @return false, with `value` untouched, for any other word and beyond the limits
 */
bool readNumber(const std::string& word, int64_t least, int64_t most, int64_t* value, int base = 0);
bool readUnsigned(const std::string& word, uint64_t most, uint64_t* value, int base = 0);
/** The same for a number that may have decimals. */
bool readDecimal(const std::string& word, double* value);

/** The number at the head of a text, as the program reads its configuration: 0 when there is none,
 *  and whatever follows does not count. */
int64_t leadingNumber(const std::string& text);

/** Parts a word at the first `mark`: "CN=4.5" into "CN" and "4.5". False when there is none. */
bool partWord(const std::string& word, char mark, std::string* before, std::string* behind);

/** A text word by word. */
class Words {
 public:
    explicit Words(const std::string& text) : in_(text) {}

    /** Takes the next word; false at the end. */
    bool next(std::string* word) {
        return static_cast<bool>(in_ >> *word);
    }
    /** Takes the next word, which must be a number; false when it is none. */
    bool nextNumber(int64_t least, int64_t most, int64_t* value, int base = 0);
    /** Whether no word is left. */
    bool atEnd() {
        return (in_ >> std::ws).eof();
    }
    /** All that is left. */
    std::string rest();

 private:
    std::istringstream in_;
};

}  // namespace sim

#endif

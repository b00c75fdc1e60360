/*
 * Things of the outside world that are told by KEY=VALUE: in sections of the board file, and in
 * events while the device runs. Each kind of thing has one table of keys for both.
 */
#ifndef SIMULATOR_WORLD_KEYED_H
#define SIMULATOR_WORLD_KEYED_H

#include <stdint.h>

#include <limits>
#include <string>
#include <type_traits>

#include "simulator/core/board.h"
#include "simulator/core/sim.h"
#include "simulator/core/words.h"

namespace sim {

template <typename T>
struct Key {
    const char* name;
    /** False, with nothing changed, for a value that is none. */
    bool (*set)(T& thing, const std::string& value);
};

template <typename Field>
struct FieldOf;
template <typename T, typename V>
struct FieldOf<V T::*> {
    using Thing = T;
    using Value = V;
};

/** The setter of a key that is a number (0 or 1 for a flag) or a text. */
template <auto field>
bool setField(typename FieldOf<decltype(field)>::Thing& thing, const std::string& word) {
    using Type = typename FieldOf<decltype(field)>::Value;
    if constexpr (std::is_same_v<Type, std::string>) {
        thing.*field = word;
        return true;
    } else if constexpr (std::is_same_v<Type, double>) {
        return readDecimal(word, &(thing.*field));
    } else {
        int64_t number = 0;
        bool good = readNumber(word, static_cast<int64_t>(std::numeric_limits<Type>::min()),
                               static_cast<int64_t>(std::numeric_limits<Type>::max()), &number);
        if (good)
            thing.*field = static_cast<Type>(number);
        return good;
    }
}

/** Sets what a section of the board file has; complains of values that are none. */
template <typename T, size_t count>
void applySection(T& thing, const std::string& section, const Key<T> (&keys)[count]) {
    for (const Key<T>& key : keys) {
        std::string value = board().text(section, key.name);
        if (board().has(section, key.name) && !key.set(thing, value))
            complain("board file: '%s' is no %s for section %s", value.c_str(), key.name,
                     section.c_str());
    }
}

/** Applies the words "KEY=VALUE" of an event; false, with a complaint, for one that is none. */
template <typename T, size_t count>
bool applyChanges(T& thing, const char* event, Words words, const Key<T> (&keys)[count]) {
    for (std::string word; words.next(&word);) {
        std::string name, value;
        bool good = false;
        if (partWord(word, '=', &name, &value)) {
            for (const Key<T>& key : keys)
                good = good || (name == key.name && key.set(thing, value));
        }
        if (good)
            continue;
        complain("event %s: '%s' is no KEY=VALUE that it has", event, word.c_str());
        return false;
    }
    return true;
}

}  // namespace sim

#endif

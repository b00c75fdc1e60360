/*
 * Where a source can be changed, and into what: found by the parser of clang in the preprocessed
 * text of a translation unit, so that a macro's arguments and each of its uses are places of their
 * own.
 */
#ifndef TOOLS_MUTATE_PLACES_H
#define TOOLS_MUTATE_PLACES_H

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

/** A stretch of a unit's text and what stands there in a mutant. */
struct Replacement {
    size_t begin;
    size_t end;
    std::string text;
    /** A statement up to its semicolon; an expression otherwise. */
    bool statement;
    /** An expression whose value nobody takes. */
    bool dropped;
    /** In the initialiser of what may be a constant: the switch must not look like one. */
    bool initialiser;
};

/** One change of a module's sources. */
struct Mutant {
    /** From 1 on, in the order of the sources. */
    unsigned id;
    /** "FILE FUNCTION: WAS => BECOMES", and " [N]" for the N-th of the same: what reviewed reasons
     *  name, so no line numbers. */
    std::string key;
    std::string file;
    unsigned line;
    /** The row of a table that it stands in, or nothing. */
    std::string row;
    /** The point that tells that the function around it runs; 0 outside of functions. */
    unsigned entry;
    /** The constant table or variable of the whole program that it stands in, as clang names it. */
    std::string variable;
    /** Where the compiler needs a constant: no switch can stand there. */
    bool constant;
    /** By the number of the unit: a header's mutant is in several. */
    std::map<size_t, std::vector<Replacement>> replacements;
};

/** A translation unit of the module. */
struct Unit {
    /** As the compilation database names it. */
    std::string source;
    /** Preprocessed, with line markers blanked. */
    std::string text;
    /** Where functions begin, and the point that tells it. */
    std::map<size_t, unsigned> entries;
    /** Words that a switch beside them forbids: constexpr of a variable, static assertions. */
    std::vector<std::pair<size_t, size_t>> constants;
    std::vector<std::pair<size_t, size_t>> assertions;
};

/** All that can be changed in a module. */
struct Places {
    std::vector<Unit> units;
    std::vector<Mutant> mutants;
    /** Points of functions, with the numbers behind those of the mutants; by their names. */
    std::map<std::string, unsigned> entries;
    /** The points of the functions that name a variable of the whole program, and the other
     *  variables whose initialisers do. */
    std::map<std::string, std::set<unsigned>> readers;
    std::map<std::string, std::set<std::string>> holders;
};

/** Finds the places of one more unit. `isOurs` tells which files are changed; `preprocessed` has
 *  line markers. Ids are given by numberPlaces. False when clang cannot read the text. */
bool findPlaces(const std::string& source, const std::string& preprocessed,
                const std::function<bool(const std::string&)>& isOurs, Places* places);

/** The count of points: mutants and functions have ids below it. */
unsigned pointCount(const Places& places);

#endif

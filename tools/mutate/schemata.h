/*
 * All mutants of a unit in one text: at each place a switch chooses at run time which of them
 * stands there, so that one build serves hundreds.
 *
 *     (zk_mutant(17) ? (a <= b) : zk_mutant(18) ? (a >= b) : (a < b))
 */
#ifndef TOOLS_MUTATE_SCHEMATA_H
#define TOOLS_MUTATE_SCHEMATA_H

#include <set>
#include <string>
#include <vector>

#include "tools/mutate/places.h"

/** A unit's text with switches, and which stretch of it belongs to which mutants. */
struct Schemata {
    struct Group {
        size_t begin;
        size_t end;
        std::set<unsigned> ids;
    };
    std::string text;
    std::vector<Group> groups;
};

/** The text of a unit with a switch for each mutant that is not `constant`. */
Schemata writeSchemata(const Places& places, size_t unit);

/** The text of a unit with one mutant in it, as if its source had been edited. */
std::string writeMutant(const Places& places, size_t unit, const Mutant& mutant);

/** The mutants that an error of the compiler at this line and column, both from 1 on, speaks of. */
std::set<unsigned> blamedAt(const Schemata& schemata, unsigned line, unsigned column);

#endif

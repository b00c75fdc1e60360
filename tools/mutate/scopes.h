/* What is mutated, module by module, and what judges it. */
#ifndef TOOLS_MUTATE_SCOPES_H
#define TOOLS_MUTATE_SCOPES_H

#include <string>
#include <vector>

/** Suites of a test program. */
struct SuitePrograms {
    const char* program;
    /** In virtual time. */
    bool isVirtual;
    /** Suites whose name one of these fits: patterns of the shell. */
    std::vector<const char*> patterns;
};

struct Scope {
    const char* name;
    /** Patterns of the sources, from the top of the tree. */
    std::vector<const char*> sources;
    /** Modules whose golden calls judge. */
    std::vector<const char*> golden;
    std::vector<SuitePrograms> suites;
    /** Scripts, from tests/scenario, without their ending. */
    std::vector<const char*> scripts;
    /** What is linked anew besides the programs above. */
    std::vector<const char*> programs;
};

/** All scopes, in the order of the score table. */
const std::vector<Scope>& scopes();

#endif

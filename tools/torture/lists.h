/*
 * The lists that the torture run works with, a file a module in a folder a list:
 *
 *     exceptions   what the rules of a case ignore on purpose
 *     untortured   cases that have nothing to torture
 *     limits       time limits
 *
 * and what other suites keep: the operator's scripts and the verdicts of the golden calls.
 */
#ifndef TOOLS_TORTURE_LISTS_H
#define TOOLS_TORTURE_LISTS_H

#include <filesystem>
#include <string>
#include <vector>

#include "framework/case/registry.h"
#include "tools/golden/script.h"

namespace torture {

/** A module that takes part, and the symbol of its record. */
struct Module {
    const TcModule* record;
    std::string symbol;
};

/** Those that take part, in their order. */
using Modules = std::vector<Module>;

/** Null when there is none of that name. */
const TcModule* findModule(const Modules& modules, const std::string& name);

/** A line of `exceptions`: what it excuses, pattern of cases, pattern of steps, of "left" that of
 * the device's words ('_' for the blank), reason. */
struct Exception {
    std::string module;
    /** "missed", "unclean", "both", or "left". */
    std::string what;
    std::string casePattern;
    std::string stepPattern;
    std::string reason;
    unsigned used = 0;
    /** Cases and steps that it names too, and that need no excuse: how many, and one of them. */
    unsigned needless = 0;
    std::string needlessStep;
};

/** A line of `untortured`: pattern of cases, why nothing is tortured. */
struct Untortured {
    std::string module;
    std::string casePattern;
    std::string reason;
    unsigned used = 0;
};

/** A line of `limits`: pattern of cases, step that is delayed, last delay that passes. */
struct Limit {
    std::string module;
    std::string casePattern;
    std::string step;
    std::string lastGoodMs;
    /** The whole line. */
    std::string text;
};

struct Lists {
    std::vector<Exception> exceptions;
    std::vector<Untortured> untortured;
    std::vector<Limit> limits;
};

/** Reads the lists of these modules below `folder`. False with a message on standard error when a
 *  line cannot be read. */
bool loadLists(const std::filesystem::path& folder, const Modules& modules, Lists* lists);

/** A case with what its operator does. */
struct Subject {
    const TcModule* module;
    const TcCase* testCase;
    /** Of its operator's scripts which, from 0; -1 without one. */
    int script;
    /** The verdict that it had when its calls were reviewed: "SUCCESS", "FAIL", "N/A", "exit 89".
     */
    std::string verdict;

    /** The case's name, and behind it "@2" for the second of its scripts. */
    std::string name() const;
};

/**
 * The cases of a module: a case with scripts once for each script that ends in success, or with its
 * first one when none does. False with a message on standard error when a file cannot be read, or
 * has no verdict of a case.
 * @param golden  the folder that has `operator` and `calls`
 */
bool loadSubjects(const std::filesystem::path& golden, const TcModule& module,
                  std::vector<Subject>* subjects);

/** The script of a subject, empty without one; false when it cannot be read. */
bool loadScript(const std::filesystem::path& golden, const Subject& subject, Script* script);

}  // namespace torture

#endif

/* Building of a module with its mutants, beside the build that it is taken from. */
#ifndef TOOLS_MUTATE_BUILD_H
#define TOOLS_MUTATE_BUILD_H

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tools/mutate/places.h"

/** How a source is compiled in the build, and where its object lies. */
struct CompileCommand {
    std::string source;
    std::string flags;
    std::string object;
};

class Builder {
 public:
    /** Throws std::runtime_error when the folder holds no build. */
    Builder(const std::filesystem::path& source, const std::filesystem::path& build,
            const std::filesystem::path& out);

    /** All sources of the build. */
    const std::vector<CompileCommand>& commands() const {
        return commands_;
    }

    /** Finds what can be changed in these sources. Throws std::runtime_error. */
    Places find(const std::vector<CompileCommand>& sources,
                const std::function<bool(const std::string&)>& isOurs);

    /**
     * Builds all mutants into the folder bin/ of `out`: `programs` anew, the rest of the build as
     * it is. Mutants for which a switch cannot be compiled become `constant`.
     * Throws std::runtime_error with the compiler's messages.
     */
    void buildAll(Places* places, const std::vector<std::string>& programs);

    enum Built { BUILT, REFUSED_BY_ASSERTION, NO_PROGRAM };
    /** Compiles one mutant alone and lays out `bin` for its programs, which linkOne makes. Threads
     *  may build at the same time, each its own. */
    Built buildOne(const Places& places, const Mutant& mutant,
                   const std::filesystem::path& bin) const;
    /** Makes one of its programs. */
    void linkOne(const Places& places, const Mutant& mutant, const std::string& program,
                 const std::filesystem::path& bin) const;
    /** Only compiles it. */
    Built compileOne(const Places& places, const Mutant& mutant,
                     const std::filesystem::path& folder) const;

    std::filesystem::path bin() const {
        return out_ / "bin";
    }

 private:
    std::string objectOf(size_t unit) const;
    void layOut(const std::filesystem::path& bin) const;
    void link(const std::string& program, const std::filesystem::path& bin,
              const std::map<size_t, std::string>& objects) const;

    std::filesystem::path source_;
    std::filesystem::path build_;
    std::filesystem::path out_;
    std::vector<CompileCommand> commands_;
    std::map<std::string, std::string> linkCommands_;
    std::vector<CompileCommand> units_;
};

#endif

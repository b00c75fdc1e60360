/*
 * What the results of a case depend on, as a key: results that have the key of today's build need
 * not be made again.
 *
 * A module depends on the object code that its record leads to, through all symbols that the linker
 * binds: its own folder, what that uses of the program, and of the device the families that it
 * calls with all that these use. Beside that all depend on the torture's worker, virtual time, the
 * bench's configuration, streams and files.
 */
#ifndef TOOLS_TORTURE_KEYS_H
#define TOOLS_TORTURE_KEYS_H

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tools/torture/lists.h"

namespace torture {

class Keys {
 public:
    /** Reads the objects of the build that this program belongs to. False with a message on
     * standard error when one is younger than the program: the build is not complete.
     *  @param bench  the bench folder */
    bool read(const std::filesystem::path& bench);

    /** The key of a subject's results.
     *  @param record  the symbol of its module's record
     *  @param script  what its operator does */
    std::string keyOf(const std::string& record, const Subject& subject, const Script& script);

    /** When the object that defines this symbol was made; the least time when there is none. */
    std::filesystem::file_time_type madeAt(const std::string& record) const;

 private:
    struct Object {
        std::filesystem::path path;
        /** Of its content, once somebody asked. */
        std::string key;
        std::vector<std::string> needs;
    };
    bool readSymbols();
    const std::string& objectKey(size_t number);
    const std::string& moduleKey(const std::string& record);

    std::vector<Object> objects_;
    /** Which object defines a symbol. */
    std::map<std::string, size_t> definers_;
    std::map<std::string, std::string> moduleKeys_;
    /** What all depend on. */
    std::string common_;
};

}  // namespace torture

#endif

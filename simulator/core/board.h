/*
 * The board: what the simulated device is made of, and where its files lie.
 *
 * The board file has the syntax of all configuration files. It is named by the environment variable
 * QLX_SIM_BOARD, and holds what differs from the default board (boards/default.cfg), which is built
 * in and has every key: there are no defaults elsewhere.
 */
#ifndef SIMULATOR_CORE_BOARD_H
#define SIMULATOR_CORE_BOARD_H

#include <stdint.h>

#include <map>
#include <memory>
#include <string>
#include <utility>

namespace sim {

/** A configuration file, read whole. The first value of a section and key counts. */
class Cfg {
 public:
    /** Reads a file; an unreadable one holds nothing. Returns whether it could be read. */
    bool load(const std::string& path);
    /** Adds what a text of that syntax has and the file has not. */
    void add(const std::string& text);

    bool has(const std::string& section, const std::string& key) const;
    /** Numbers as the program reads them: decimal, 0x hexadecimal, leading 0 octal; else 0. */
    int64_t number(const std::string& section, const std::string& key) const;
    /** Empty for a key that is not there. */
    std::string text(const std::string& section, const std::string& key) const;

    using Values = std::map<std::pair<std::string, std::string>, std::string>;
    const Values& values() const {
        return *values_;
    }

 private:
    /** Shared by all that have loaded the same content. */
    std::shared_ptr<const Values> values_ = std::make_shared<const Values>();
};

/** The default board, text of a configuration file. */
extern const char defaultBoardText[];

/** The board file. Read once, on first use; any thread may call. */
const Cfg& board();

/** Latency of an entry point in milliseconds: section LATENCY, the function's name; 0 when unset.
 */
int64_t latencyMs(const char* function);

/** The folder of the configuration tree: key CONFIG of section BOARD. */
std::string configDir();

/** A file of the common folder or of the platform's: "channel_dvb_t.cfg", "tuner_config.cfg".
 *  The platform is key PLATFORM of section BOARD, else that of auto_test_platform.cfg. */
std::string commonFile(const std::string& name);
std::string platformFile(const std::string& name);

/** Where a path of the device ("/media/sda1/a.ts") lies on this machine: below the folder that
 *  QLX_SIM_ROOT names, else below "device" in the working directory. Never outside of it. */
std::string storagePath(const std::string& devicePath);

/** Forgets what was read, so that the next use reads the files again. For tests. */
void reloadBoard();

}  // namespace sim

#endif

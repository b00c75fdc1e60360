/* The .cfg syntax of the configuration tree: [sections] with KEY=VALUE lines, '#' comments. */
#ifndef TOOLS_MKSTREAMS_CFG_FILE_H
#define TOOLS_MKSTREAMS_CFG_FILE_H

#include <stdint.h>

#include <map>
#include <string>
#include <utility>

namespace mkstreams {

class CfgFile {
 public:
    /** Reads a whole file. False when it cannot be read; it then holds nothing. */
    bool load(const std::string& path);

    bool has(const std::string& section, const std::string& key) const;
    /** Decimal, 0x hexadecimal or leading 0 octal; what is absent or no number is 0. */
    uint32_t number(const std::string& section, const std::string& key) const;
    std::string text(const std::string& section, const std::string& key) const;

 private:
    std::map<std::pair<std::string, std::string>, std::string> values_;
};

}  // namespace mkstreams

#endif

/*
 * What can be looked at from outside, as a file: "capture WHAT FILE ..." in the control file, or
 * from a test. A family offers what it has; docs/simulator-events.md tells what there is.
 */
#ifndef SIMULATOR_CORE_CAPTURE_H
#define SIMULATOR_CORE_CAPTURE_H

#include <string>
#include <vector>

#include "simulator/core/words.h"

namespace sim {

/** Something that can be looked at. Define it at namespace scope. */
class Capture {
 public:
    /**
     * @param what   its word
     * @param write  writes the file `path`, with what the further words say; on failure false, and
     *               why in `message`, and the file is not there. Any thread may call, with no lock
     *               of the device held.
     */
    Capture(const char* what,
            bool (*write)(const std::string& path, Words& words, std::string* message));
};

/** "WHAT FILE ..."; false, with a complaint, when that cannot be had. */
bool capture(Words& words);

/** The words of all. */
std::vector<std::string> captureWords();

/** Writes a text as such a file. */
bool writeCapture(const std::string& path, const std::string& text, std::string* message);

}  // namespace sim

#endif

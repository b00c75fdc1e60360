#include "simulator/core/capture.h"

#include <errno.h>
#include <string.h>

#include <map>

#include "simulator/core/sim.h"
#include "simulator/core/storage_file.h"

namespace sim {

namespace {

using Write = bool (*)(const std::string& path, Words& words, std::string* message);

std::map<std::string, Write>& captures() {
    static std::map<std::string, Write>* all = new std::map<std::string, Write>;
    return *all;
}

}  // namespace

Capture::Capture(const char* what, Write write) {
    captures()[what] = write;
}

bool capture(Words& words) {
    std::string what, path, message;
    if (!words.next(&what) || !words.next(&path)) {
        complain("capture: no WHAT FILE");
        return false;
    }
    const auto found = captures().find(what);
    if (found == captures().end())
        message = "there is nothing of that name";
    else if (found->second(path, words, &message))
        return true;
    complain("capture %s %s: %s", what.c_str(), path.c_str(), message.c_str());
    return false;
}

std::vector<std::string> captureWords() {
    std::vector<std::string> words;
    for (const auto& [word, write] : captures())
        words.push_back(word);
    return words;
}

bool writeCapture(const std::string& path, const std::string& text, std::string* message) {
    if (saveFile(path, text))
        return true;
    *message = format("cannot be written: %s", strerror(errno));
    return false;
}

}  // namespace sim

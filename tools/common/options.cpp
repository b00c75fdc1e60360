#include "tools/common/options.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <string>

int readOptions(CLI::App* app, int argc, char** argv) {
    try {
        app->parse(argc, argv);
    } catch (const CLI::Success& wish) {
        return app->exit(wish);
    } catch (const CLI::ParseError& mistake) {
        fprintf(stderr, "%s: %s\nTry '%s --help'.\n", app->get_name().c_str(), mistake.what(),
                app->get_name().c_str());
        return EXIT_USAGE;
    }
    return -1;
}

CLI::Validator readable() {
    return CLI::Validator(
        [](std::string& path) {
            bool good = access(path.c_str(), R_OK) == 0;
            return good ? std::string() : "cannot read " + path + ": " + strerror(errno);
        },
        "");
}

CLI::Validator wholeNumber(uint64_t least, uint64_t most) {
    return CLI::Validator(
        [least, most](std::string& text) {
            bool digits = !text.empty() && text.find_first_not_of("0123456789") == text.npos;
            errno = 0;
            uint64_t value = strtoull(text.c_str(), nullptr, 10);
            if (digits && errno == 0 && value >= least && value <= most)
                return std::string();
            return text + " is no whole number from " + std::to_string(least) + " to " +
                   std::to_string(most);
        },
        "");
}

#include "tools/common/options.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <sstream>
#include <string>

namespace {

/** Help in lines that fit a terminal, without the library's remarks on what excludes what: the
 *  message tells that when it matters. */
class HelpFormatter : public CLI::Formatter {
 public:
    std::string make_option_opts(const CLI::Option* option) const override {
        std::string type = option->get_type_name();
        return (type.empty() || type == "TEXT" ? "" : " " + type) +
               (option->get_required() ? " (required)" : "");
    }

    std::string make_option_desc(const CLI::Option* option) const override {
        const size_t width = 100 - get_column_width();
        std::istringstream words(option->get_description());
        std::string text;
        size_t lineLength = 0;
        for (std::string word; words >> word;) {
            bool fits = lineLength + 1 + word.size() <= width;
            text += text.empty() ? "" : fits ? " " : "\n";
            text += word;
            lineLength = fits ? lineLength + 1 + word.size() : word.size();
        }
        return text;
    }
};

}  // namespace

int readOptions(CLI::App* app, int argc, char** argv) {
    auto formatter = std::make_shared<HelpFormatter>();
    formatter->column_width(22);
    app->formatter(formatter);
    // Not the path that it was called by.
    if (app->get_name().empty() && argc > 0)
        app->name(std::filesystem::path(argv[0]).filename());
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

CLI::Validator readable(PathKind kind) {
    return CLI::Validator(
        [kind](std::string& path) {
            struct stat found = {};
            if (stat(path.c_str(), &found) != 0 || access(path.c_str(), R_OK) != 0)
                return "cannot read " + path + ": " + strerror(errno);
            bool folder = S_ISDIR(found.st_mode);
            if (folder == (kind == FOLDER))
                return std::string();
            return path + (folder ? " is a folder" : " is no folder");
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

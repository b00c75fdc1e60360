// Texts: printf into strings, and complaints.
#include <cstdarg>
#include <cstdio>

#include "simulator/core/sim.h"

namespace sim {

std::string vformat(const char* text, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    int length = vsnprintf(nullptr, 0, text, arguments);
    std::string out(length > 0 ? static_cast<size_t>(length) : 0, '\0');
    if (length > 0)
        vsnprintf(&out[0], out.size() + 1, text, again);
    va_end(again);
    return out;
}

std::string format(const char* text, ...) {
    va_list arguments;
    va_start(arguments, text);
    std::string out = vformat(text, arguments);
    va_end(arguments);
    return out;
}

void complain(const char* text, ...) {
    va_list arguments;
    va_start(arguments, text);
    std::string out = vformat(text, arguments);
    va_end(arguments);
    fprintf(stderr, "simulated device: %s\n", out.c_str());
}

}  // namespace sim

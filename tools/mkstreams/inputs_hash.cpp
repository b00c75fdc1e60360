/*
 * What a stream depends on, as a number. The version of the code comes from the build: a hash of
 * the sources without their comments and blanks, so that all builds of the same code agree. Of a
 * library counts which file it is, for its own version says little about a package's corrections.
 */
#include <link.h>
#include <string.h>
#include <sys/stat.h>

#include "coder_version.h"
#include "tools/mkstreams/maker.h"

namespace mkstreams {

/** FNV-1a of 64 bits: enough to tell a change. */
static uint64_t hashed(uint64_t hash, const void* data, size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    for (size_t i = 0; i < size; i++)
        hash = (hash ^ bytes[i]) * 0x100000001B3;
    return hash;
}

static uint64_t hashed(uint64_t hash, const std::string& text) {
    hash = hashed(hash, text.data(), text.size());
    return hashed(hash, "", 1);
}

static uint64_t hashed(uint64_t hash, int64_t value) {
    return hashed(hash, std::to_string(value));
}

static int addLibrary(struct dl_phdr_info* library, size_t, void* hash) {
    auto* sum = static_cast<uint64_t*>(hash);
    struct stat file;
    for (const char* name : {"/libav", "/libx26"})
        if (strstr(library->dlpi_name, name) != nullptr && stat(library->dlpi_name, &file) == 0)
            *sum += hashed(hashed(hashed(0, library->dlpi_name), file.st_size), file.st_mtime);
    return 0;
}

/** The code that codes and multiplexes, and the encoders. */
static uint64_t coderHash() {
    static const uint64_t hash = [] {
        uint64_t libraries = 0;
        dl_iterate_phdr(addLibrary, &libraries);
        return hashed(hashed(0xCBF29CE484222325, CODER_VERSION), static_cast<int64_t>(libraries));
    }();
    return hash;
}

uint64_t inputsHash(const StreamInputs& inputs) {
    uint64_t hash = hashed(hashed(coderHash(), inputs.pcrPid), inputs.duration);
    for (const Burst& burst : inputs.bursts) {
        for (int64_t value : {int64_t{burst.pid}, int64_t{burst.periodMs},
                              int64_t{burst.adaptation}, int64_t{burst.anyCount}})
            hash = hashed(hash, value);
        for (const Bytes& section : burst.sections)
            hash = hashed(hash, std::string(section.begin(), section.end()));
    }
    for (const StreamPlan& plan : inputs.plans)
        hash = hashed(hashed(hash, plan.pid), plan.content);
    return hash;
}

uint64_t variantHash(uint64_t streamHash, const std::string& name) {
    return hashed(hashed(streamHash, VARIANTS_VERSION), name);
}

}  // namespace mkstreams

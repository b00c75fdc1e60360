#include "simulator/media/format.h"

#include <tuple>

namespace sim {

namespace {

auto fieldsOf(const VideoFormat& f) {
    return std::tie(f.coding, f.width, f.height, f.frameRate, f.interlaced, f.sampleAspect,
                    f.displayAspect, f.activeFormat, f.primaries, f.transfer, f.matrix, f.fullRange,
                    f.bitDepth, f.masteringDisplay, f.contentLight);
}

auto fieldsOf(const AudioPresentation& p) {
    return std::tie(p.channels, p.lfe, p.language);
}

auto fieldsOf(const AudioFormat& f) {
    return std::tie(f.coding, f.channels, f.lfe, f.dualMono, f.samplingRate, f.bitRate,
                    f.presentations);
}

}  // namespace

bool VideoFormat::operator==(const VideoFormat& other) const {
    return fieldsOf(*this) == fieldsOf(other);
}

bool AudioPresentation::operator==(const AudioPresentation& other) const {
    return fieldsOf(*this) == fieldsOf(other);
}

bool AudioFormat::operator==(const AudioFormat& other) const {
    return fieldsOf(*this) == fieldsOf(other);
}

}  // namespace sim

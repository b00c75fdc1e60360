#include "simulator/world/test_signal.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "simulator/core/sim.h"

namespace sim {

namespace {

/** 75 % of full, as colour bars of EBU have it. */
constexpr uint8_t barLevel = 191;
constexpr uint32_t barCount = 8;

/** A letter of five columns and seven rows: a byte a row, the leftmost column in bit 4. */
struct Glyph {
    char letter;
    uint8_t rows[7];
};
constexpr uint32_t glyphWidth = 5;
constexpr uint32_t glyphHeight = 7;

/** What names and times are written with. */
// clang-format off
const Glyph glyphs[] = {
    {'0', {0x0E, 0x11, 0x13, 0x15, 0x19, 0x11, 0x0E}}, {'1', {0x04, 0x0C, 0x04, 0x04, 0x04, 0x04, 0x0E}},
    {'2', {0x0E, 0x11, 0x01, 0x02, 0x04, 0x08, 0x1F}}, {'3', {0x1F, 0x02, 0x04, 0x02, 0x01, 0x11, 0x0E}},
    {'4', {0x02, 0x06, 0x0A, 0x12, 0x1F, 0x02, 0x02}}, {'5', {0x1F, 0x10, 0x1E, 0x01, 0x01, 0x11, 0x0E}},
    {'6', {0x06, 0x08, 0x10, 0x1E, 0x11, 0x11, 0x0E}}, {'7', {0x1F, 0x01, 0x02, 0x04, 0x08, 0x08, 0x08}},
    {'8', {0x0E, 0x11, 0x11, 0x0E, 0x11, 0x11, 0x0E}}, {'9', {0x0E, 0x11, 0x11, 0x0F, 0x01, 0x02, 0x0C}},
    {'A', {0x0E, 0x11, 0x11, 0x1F, 0x11, 0x11, 0x11}}, {'B', {0x1E, 0x11, 0x11, 0x1E, 0x11, 0x11, 0x1E}},
    {'C', {0x0E, 0x11, 0x10, 0x10, 0x10, 0x11, 0x0E}}, {'D', {0x1C, 0x12, 0x11, 0x11, 0x11, 0x12, 0x1C}},
    {'G', {0x0E, 0x11, 0x10, 0x17, 0x11, 0x11, 0x0F}}, {'H', {0x11, 0x11, 0x11, 0x1F, 0x11, 0x11, 0x11}},
    {'I', {0x0E, 0x04, 0x04, 0x04, 0x04, 0x04, 0x0E}}, {'M', {0x11, 0x1B, 0x15, 0x15, 0x11, 0x11, 0x11}},
    {'P', {0x1E, 0x11, 0x11, 0x1E, 0x10, 0x10, 0x10}}, {'R', {0x1E, 0x11, 0x11, 0x1E, 0x14, 0x12, 0x11}},
    {'S', {0x0F, 0x10, 0x10, 0x0E, 0x01, 0x01, 0x1E}}, {'T', {0x1F, 0x04, 0x04, 0x04, 0x04, 0x04, 0x04}},
    {'V', {0x11, 0x11, 0x11, 0x11, 0x11, 0x0A, 0x04}}, {'Y', {0x11, 0x11, 0x0A, 0x04, 0x04, 0x04, 0x04}},
    {'z', {0x00, 0x00, 0x1F, 0x02, 0x04, 0x08, 0x1F}}, {':', {0x00, 0x04, 0x04, 0x00, 0x04, 0x04, 0x00}},
    {'.', {0x00, 0x00, 0x00, 0x00, 0x00, 0x0C, 0x0C}}, {' ', {0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}},
};
// clang-format on

/** Fills a rectangle that lies within the picture. */
void fill(Picture* picture, uint32_t left, uint32_t top, uint32_t right, uint32_t bottom,
          const uint8_t (&color)[3]) {
    for (uint32_t y = top; y < bottom; y++) {
        for (uint32_t x = left; x < right; x++)
            std::copy(color, color + 3, &picture->rgb[(y * picture->width + x) * 3]);
    }
}

/** Writes from the left; letters that there are not are solid blocks. */
void writeText(Picture* picture, uint32_t left, uint32_t top, uint32_t scale,
               const std::string& text) {
    constexpr uint8_t white[3] = {255, 255, 255};
    constexpr Glyph block = {0, {0x1F, 0x1F, 0x1F, 0x1F, 0x1F, 0x1F, 0x1F}};
    for (char letter : text) {
        const Glyph* glyph = &block;
        for (const Glyph& known : glyphs) {
            if (known.letter == letter)
                glyph = &known;
        }
        for (uint32_t dot = 0; dot < glyphWidth * glyphHeight; dot++) {
            uint32_t x = dot % glyphWidth;
            uint32_t y = dot / glyphWidth;
            if ((glyph->rows[y] >> (glyphWidth - 1 - x) & 1) != 0)
                fill(picture, left + x * scale, top + y * scale, left + (x + 1) * scale,
                     top + (y + 1) * scale, white);
        }
        left += (glyphWidth + 1) * scale;
    }
}

/** "00:01:07:12", frames at the end. */
std::string runningTime(const SignalPicture& picture, int64_t atUs) {
    int64_t frames = atUs % 1000000 * picture.rateNumerator / picture.rateDenominator / 1000000;
    int64_t seconds = atUs / 1000000;
    return format("%02d:%02d:%02d:%02d", static_cast<int>(seconds / 3600),
                  static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60),
                  static_cast<int>(frames));
}

}  // namespace

Picture testPicture(const SignalSource& source, int64_t atUs) {
    Picture picture;
    if (!source.locked)
        return picture;
    picture.width = source.picture.width;
    picture.height = source.picture.height;
    picture.rgb.assign(static_cast<size_t>(picture.width) * picture.height * 3, 0);
    uint32_t barsEnd = picture.height * 3 / 4;
    for (uint32_t bar = 0; bar < barCount; bar++) {
        // Green is off in the right half, red in every second pair, blue in every second bar.
        const uint8_t color[3] = {(bar & 2) == 0 ? barLevel : uint8_t{0},
                                  (bar & 4) == 0 ? barLevel : uint8_t{0},
                                  (bar & 1) == 0 ? barLevel : uint8_t{0}};
        fill(&picture, picture.width * bar / barCount, 0, picture.width * (bar + 1) / barCount,
             barsEnd, color);
    }
    std::string time = runningTime(source.picture, atUs);
    size_t letters = std::max(source.name.size(), time.size()) + 2;
    uint32_t scale = static_cast<uint32_t>(
        std::min<size_t>(picture.width / (letters * (glyphWidth + 1)),
                         (picture.height - barsEnd) / (2 * (glyphHeight + 2))));
    uint32_t left = (glyphWidth + 1) * scale;
    writeText(&picture, left, barsEnd + scale, scale, source.name);
    writeText(&picture, left, barsEnd + (glyphHeight + 3) * scale, scale, time);
    return picture;
}

Sound testSound(const SignalSource& source, int64_t fromUs, int64_t durationUs) {
    constexpr double amplitude = 8000;
    constexpr double pi = 3.14159265358979323846;
    Sound sound;
    if (!source.locked || source.sound.channels == 0)
        return sound;
    int64_t first = fromUs * soundSamplingRate / 1000000;
    int64_t last = (fromUs + durationUs) * soundSamplingRate / 1000000;
    sound.samples.reserve(static_cast<size_t>(last - first) * 2);
    for (int64_t sample = first; sample < last; sample++) {
        // Whole periods are taken off, so that the sine stays exact after days.
        int64_t phase = sample * source.sound.toneHz % soundSamplingRate;
        double level = std::sin(2 * pi * static_cast<double>(phase) / soundSamplingRate);
        int16_t value = static_cast<int16_t>(std::lround(amplitude * level));
        sound.samples.push_back(value);
        sound.samples.push_back(value);
    }
    return sound;
}

}  // namespace sim

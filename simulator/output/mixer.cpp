// What a sink plays: the sound of every audio decoder with its volume, mute and channel mode, the
// description where the sink wants it, and the sink's own volume and mute.
#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>
#include <vector>

#include "platform/qlx_aout.h"
#include "simulator/av/decoder.h"
#include "simulator/core/capture.h"
#include "simulator/core/sim.h"
#include "simulator/output/aout.h"
#include "simulator/world/test_signal.h"

namespace sim {

namespace {

constexpr int64_t longestUs = 60000000;

Sound soundOf(const DecoderOrigin& origin, AudioCoding coding, int64_t durationUs) {
    switch (origin.kind) {
        case DecoderOrigin::Kind::stream:
            return decodeSound(origin.stream, origin.pid, coding, origin.atUs, durationUs);
        case DecoderOrigin::Kind::signal:
            return testSound(signalSource(origin.signalKind, origin.signalIndex), origin.atUs,
                             durationUs);
        case DecoderOrigin::Kind::nothing:
            break;
    }
    return Sound();
}

/** Chooses among the two channels, as QLX_AudioSetDigitalAudioMode tells. */
void chooseChannels(uint32_t mode, float* left, float* right) {
    if (mode == QLX_AUDIO_DIGITAL_MODE_TRACK_A)
        *right = *left;
    if (mode == QLX_AUDIO_DIGITAL_MODE_TRACK_B)
        *left = *right;
    if (mode == QLX_AUDIO_DIGITAL_MODE_TRACK_MIX)
        *left = *right = (*left + *right) / 2;
}

void add(const Sound& sound, float gain, uint32_t mode, std::vector<float>* mix) {
    for (size_t i = 0; i + 1 < std::min(sound.samples.size(), mix->size()); i += 2) {
        float left = sound.samples[i];
        float right = sound.samples[i + 1];
        chooseChannels(mode, &left, &right);
        (*mix)[i] += gain * left;
        (*mix)[i + 1] += gain * right;
    }
}

/** "FILE SINK MS". */
bool captureSound(const std::string& path, Words& words, std::string* message) {
    static const char* const sinks[] = {"speaker", "headphone", "spdif", "hdmi", "lineout", "bt"};
    std::string name;
    int64_t milliseconds = 0;
    words.next(&name);
    const auto sink = std::find(std::begin(sinks), std::end(sinks), name);
    if (sink == std::end(sinks) || !words.nextNumber(1, longestUs / 1000, &milliseconds)) {
        *message = "no SINK MS: speaker, headphone, spdif, hdmi, lineout or bt, 1 to 60000";
        return false;
    }
    uint32_t output = static_cast<uint32_t>(sink - std::begin(sinks));
    return writeWav(path, composeSound(output, milliseconds * 1000), message);
}

const Capture ofSound{"sound", captureSound};

}  // namespace

Sound composeSound(uint32_t output, int64_t durationUs) {
    Sound out;
    int64_t length = std::min(durationUs, longestUs) * soundSamplingRate / 1000000;
    std::vector<float> mix(static_cast<size_t>(length) * 2);
    SinkView sink = sinkView(output);
    bool shut = !sink.open || sink.muted || sink.volume == 0;
    for (uint32_t dev = 0; !shut && dev < QLX_AUDIODEV_NUMBER_MAX; dev++) {
        AudioPlayed played = audioPlayed(dev);
        if (!played.open || played.paused || played.muted)
            continue;
        float level = static_cast<float>(sink.volume) / 100 * static_cast<float>(played.volume) /
                      100 * static_cast<float>(played.prescaler) / 128;
        add(soundOf(played.origin, played.coding, durationUs), level, played.digitalMode, &mix);
        if (sink.description)
            add(soundOf(played.description, played.descriptionCoding, durationUs),
                level * static_cast<float>(sink.descriptionVolume) / 100,
                QLX_AUDIO_DIGITAL_MODE_STEREO, &mix);
    }
    for (float sample : mix)
        out.samples.push_back(
            static_cast<int16_t>(std::lround(std::clamp<float>(sample, INT16_MIN, INT16_MAX))));
    return out;
}

}  // namespace sim

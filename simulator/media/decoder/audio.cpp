// Sound: every frame is decoded, which costs little, so damages are found by the frames' own
// checks.
#include <algorithm>

#include "simulator/media/decoder/av.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

namespace sim {

namespace {

bool hasLfe(const AVChannelLayout& layout) {
    return av_channel_layout_index_from_channel(&layout, AV_CHAN_LOW_FREQUENCY) >= 0;
}

/** Two programmes, as the header of MPEG audio and of AC-3 frames tells. */
bool isDualMono(AudioCoding coding, const uint8_t* bytes, size_t size) {
    if (coding == AudioCoding::mpeg)
        return size > 3 && bytes[3] >> 6 == 2;
    return coding == AudioCoding::ac3 && size > 6 && bytes[6] >> 5 == 0;
}

/** Of an AAC frame without spectral band replication. */
constexpr int coreSamples = 1024;

AudioFormat formatOf(AudioCoding coding, const AVCodecContext& decoder, const AVFrame& frame,
                     const uint8_t* bytes, size_t size) {
    AudioFormat format;
    format.coding = coding;
    bool aac = coding == AudioCoding::aac || coding == AudioCoding::heAac;
    if (aac) {
        // Spectral band replication doubles the samples of a frame, whether it has data or not.
        bool replication = frame.nb_samples == 2 * coreSamples;
        format.coding = replication ? AudioCoding::heAac : AudioCoding::aac;
    }
    format.channels = static_cast<uint8_t>(std::min(frame.ch_layout.nb_channels, 255));
    format.lfe = hasLfe(frame.ch_layout);
    format.dualMono = isDualMono(coding, bytes, size);
    format.samplingRate = static_cast<uint32_t>(frame.sample_rate);
    // AAC tells none: its frames are as long as they have to be.
    if (!aac && decoder.bit_rate > 0)
        format.bitRate = static_cast<uint32_t>(decoder.bit_rate);
    return format;
}

/** Frames behind the first in a PES packet have the time that the samples before them take. */
void fillStamps(const std::vector<uint32_t>& stampsOfUnit, std::vector<AccessUnit>* units) {
    constexpr uint64_t stampRange = UINT64_C(1) << 33;
    for (size_t i = 1; i < units->size(); i++) {
        AccessUnit& unit = (*units)[i];
        const AccessUnit& before = (*units)[i - 1];
        if (unit.pts == noStamp && before.pts != noStamp && unit.first == before.first)
            unit.pts = (before.pts + stampsOfUnit[i - 1]) % stampRange;
    }
}

}  // namespace

void indexAudioUnits(const Es& es, AudioCoding coding, AudioIndex* index) {
    AVCodecID id = codecOf(coding, es.data.data(), es.data.size());
    AvPtr<AVCodecContext> decoder = openDecoder(id);
    if (decoder == nullptr)
        return;
    for (const ParsedUnit& parsed : parseUnits(es, id))
        index->units.push_back(accessUnitAt(es, parsed.offset, parsed.size));
    setStamps(es, &index->units);
    std::vector<uint32_t> stampsOfUnit(index->units.size());
    for (size_t i = 0; i < index->units.size(); i++) {
        AccessUnit& unit = index->units[i];
        const uint8_t* bytes = &es.data[unit.offset];
        AudioFormat format;
        bool faulty = (unit.flags & unit_damaged) != 0;
        bool sounds = false;
        bool good = decodeUnit(decoder.get(), bytes, unit.size, 0, [&](AVFrame* frame) {
            faulty = faulty || isFaulty(*frame);
            sounds = frame->sample_rate > 0;
            if (!sounds)
                return;
            format = formatOf(coding, *decoder, *frame, bytes, unit.size);
            stampsOfUnit[i] =
                static_cast<uint32_t>(int64_t{frame->nb_samples} * 90000 / frame->sample_rate);
        });
        unit.flags |= unit_access;
        if (!good || faulty || !sounds) {
            unit.flags |= unit_damaged;
            continue;
        }
        unit.flags |= unit_decoded;
        if (index->changes.empty() || index->changes.back().format != format)
            index->changes.push_back({static_cast<uint32_t>(i), format});
    }
    fillStamps(stampsOfUnit, &index->units);
}

namespace {

/** Converts frames one after the other to 48 kHz, 16 bits, stereo. */
class Converter {
 public:
    /** A frame of another form than the one before begins anew. */
    void convert(const AVFrame& frame, Sound* sound) {
        if (converter_ == nullptr || frame.sample_rate != rate_ || frame.format != format_ ||
            frame.ch_layout.nb_channels != channels_)
            open(frame);
        if (converter_ != nullptr)
            append(const_cast<const uint8_t**>(frame.extended_data), frame.nb_samples, sound);
    }
    void drain(Sound* sound) {
        if (converter_ != nullptr)
            append(nullptr, 0, sound);
    }

 private:
    void open(const AVFrame& frame) {
        SwrContext* made = nullptr;
        AVChannelLayout stereo = AV_CHANNEL_LAYOUT_STEREO;
        AVChannelLayout from = frame.ch_layout;
        int status = swr_alloc_set_opts2(&made, &stereo, AV_SAMPLE_FMT_S16, soundSamplingRate,
                                         &from, static_cast<AVSampleFormat>(frame.format),
                                         frame.sample_rate, 0, nullptr);
        converter_.reset(made);
        if (status != 0 || swr_init(converter_.get()) != 0)
            converter_.reset();
        rate_ = frame.sample_rate;
        format_ = frame.format;
        channels_ = frame.ch_layout.nb_channels;
    }

    void append(const uint8_t** from, int count, Sound* sound) {
        int room = swr_get_out_samples(converter_.get(), count);
        if (room <= 0)
            return;
        size_t before = sound->samples.size();
        sound->samples.resize(before + static_cast<size_t>(room) * 2);
        auto* to = reinterpret_cast<uint8_t*>(&sound->samples[before]);
        int made = swr_convert(converter_.get(), &to, room, from, count);
        sound->samples.resize(before + static_cast<size_t>(std::max(made, 0)) * 2);
    }

    AvPtr<SwrContext> converter_;
    int rate_ = 0;
    int format_ = 0;
    int channels_ = 0;
};

}  // namespace

Sound decodeWholeSound(AudioCoding coding, const std::vector<MediaBytes>& units) {
    Sound sound;
    if (units.empty())
        return sound;
    AvPtr<AVCodecContext> decoder = openDecoder(codecOf(coding, units[0].bytes, units[0].size));
    if (decoder == nullptr)
        return sound;
    Converter converter;
    for (const MediaBytes& unit : units)
        decodeUnit(decoder.get(), unit.bytes, unit.size, 0,
                   [&](AVFrame* frame) { converter.convert(*frame, &sound); });
    converter.drain(&sound);
    return sound;
}

}  // namespace sim

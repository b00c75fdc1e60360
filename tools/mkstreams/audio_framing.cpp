#include "tools/mkstreams/audio_framing.h"

namespace mkstreams {

static const unsigned index48k = 3;  // samplingFrequencyIndex
static const unsigned index24k = 6;

static unsigned channelConfiguration(int channels) {
    return static_cast<unsigned>(channels);  // 1 to 6: as many channels, 6 being 5.1
}

Bytes adtsFrame(const Bytes& accessUnit, int channels) {
    BitWriter header;
    header.put(0xFFF, 12);  // syncword
    header.put(1, 1);       // ID: MPEG-2
    header.put(0, 2);       // layer
    header.put(1, 1);       // protection_absent
    header.put(1, 2);       // profile: LC
    header.put(index48k, 4);
    header.put(0, 1);  // private_bit
    header.put(channelConfiguration(channels), 3);
    header.put(0, 4);  // original, home, copyright bit and start
    header.put(static_cast<uint32_t>(accessUnit.size() + 7), 13);
    header.put(0x7FF, 11);  // buffer fullness: variable rate
    header.put(0, 2);       // one raw data block
    Bytes frame = header.bytes();
    append(frame, accessUnit);
    return frame;
}

/** AudioSpecificConfig. Hierarchical signalling: the object type is SBR, around an LC core. */
static void putAudioSpecificConfig(BitWriter& bits, int channels, bool highEfficiency) {
    bits.put(highEfficiency ? 5 : 2, 5);
    bits.put(highEfficiency ? index24k : index48k, 4);
    bits.put(channelConfiguration(channels), 4);
    if (highEfficiency) {
        bits.put(index48k, 4);
        bits.put(2, 5);
    }
    bits.put(0, 3);  // 1024 samples, no core coder, no extension
}

Bytes latmFrame(const Bytes& accessUnit, int channels, bool highEfficiency) {
    BitWriter element;
    element.put(0, 1);  // useSameStreamMux: the configuration follows
    element.put(0, 1);  // audioMuxVersion
    element.put(1, 1);  // allStreamsSameTimeFraming
    element.put(0, 6);  // one sub-frame
    element.put(0, 4);  // one program
    element.put(0, 3);  // one layer
    putAudioSpecificConfig(element, channels, highEfficiency);
    element.put(0, 3);     // frameLengthType
    element.put(0xFF, 8);  // latmBufferFullness: variable rate
    element.put(0, 2);     // no other data, no CRC
    size_t size = accessUnit.size();
    for (; size >= 255; size -= 255)
        element.put(255, 8);
    element.put(static_cast<uint32_t>(size), 8);
    for (uint8_t byte : accessUnit)
        element.put(byte, 8);
    BitWriter frame;
    frame.put(0x2B7, 11);  // syncword
    frame.put(static_cast<uint32_t>(element.bytes().size()), 13);
    Bytes bytes = frame.bytes();
    append(bytes, element.bytes());
    return bytes;
}

/* AC-4 ----------------------------------------------------------------------------------------- */

/** A group of one substream: channels and language of what is heard. */
struct Ac4Group {
    unsigned channelMode;
    unsigned channelModeBits;
    const char* language;
};

static const Ac4Group ac4Groups[] = {
    {2, 2, "en"},   // stereo
    {2, 2, "es"},   //
    {2, 2, "zh"},   //
    {14, 4, "en"},  // 5.1
};
static const unsigned ac4GroupCount = sizeof(ac4Groups) / sizeof(ac4Groups[0]);
/** One presentation after the other plays the stereo groups in turn, and the last one 5.1. */
static const unsigned ac4Presentations = 12;
static const unsigned ac4PresentationSubstream = ac4GroupCount;

/** variable_bits of steps of two bits (4.3.2); up to 19. */
static void putVariable(BitWriter& bits, unsigned value) {
    if (value >= 4) {
        bits.put((value - 4) / 4, 2);
        bits.put(1, 1);
        value = (value - 4) % 4;
    }
    bits.put(value, 2);
    bits.put(0, 1);
}

static void putSubstreamIndex(BitWriter& bits, unsigned index) {
    bits.put(index < 3 ? index : 3, 2);
    if (index >= 3)
        putVariable(bits, index - 3);
}

/** ac4_presentation_v1_info of a presentation with one substream group (TS 103 190-2, 6.2.1.3). */
static void putPresentation(BitWriter& bits, unsigned id) {
    bits.put(1, 1);  // b_single_substream_group
    bits.put(2, 2);  // presentation_version 1
    bits.put(3, 3);  // mdcompat
    bits.put(1, 1);  // b_presentation_id
    putVariable(bits, id);
    bits.put(0, 5);  // emdf_version, key_id
    bits.put(0, 1);  // b_emdf_payloads_substream_info
    bits.put(1, 2);  // protection_length_primary: 8 bits
    bits.put(0, 2);  // protection_length_secondary
    bits.put(0, 8);
    bits.put(0, 1);  // b_presentation_filter
    bool last = id + 1 == ac4Presentations;
    bits.put(last ? ac4GroupCount - 1 : id % (ac4GroupCount - 1), 3);
    bits.put(0, 1);  // b_pre_virtualized
    bits.put(0, 1);  // b_add_emdf_substreams
    bits.put(0, 1);  // b_alternative
    bits.put(1, 1);  // b_pres_ndot
    putSubstreamIndex(bits, ac4PresentationSubstream);
}

/** ac4_substream_group_info (6.2.1.6). */
static void putGroup(BitWriter& bits, unsigned index) {
    const Ac4Group& group = ac4Groups[index];
    bits.put(1, 1);  // b_substreams_present
    bits.put(0, 1);  // b_hsf_ext
    bits.put(1, 1);  // b_single_substream
    bits.put(1, 1);  // b_channel_coded
    bits.put(group.channelMode, group.channelModeBits);
    bits.put(0, 1);  // b_sf_multiplier
    bits.put(0, 1);  // b_bitrate_info
    bits.put(1, 1);  // b_audio_ndot
    putSubstreamIndex(bits, index);
    bits.put(1, 1);  // b_content_type
    bits.put(0, 3);  // content_classifier: complete main
    bits.put(1, 1);  // b_language_indicator
    bits.put(0, 1);  // b_serialized_language_tag
    bits.put(2, 6);  // n_language_tag_bytes
    bits.put(static_cast<unsigned char>(group.language[0]), 8);
    bits.put(static_cast<unsigned char>(group.language[1]), 8);
}

Bytes ac4Frame(size_t count) {
    static const unsigned substreamSize = 32;
    static const unsigned substreams = ac4GroupCount + 1;
    BitWriter toc;
    toc.put(2, 2);                                         // bitstream_version
    toc.put(static_cast<uint32_t>(1 + count % 1020), 10);  // sequence_counter
    toc.put(0, 1);                                         // b_wait_frames
    toc.put(1, 1);                                         // fs_index: 48 kHz
    toc.put(13, 4);                                        // frame_rate_index: 2048 samples
    toc.put(1, 1);                                         // b_iframe_global
    toc.put(0, 1);                                         // b_single_presentation
    toc.put(1, 1);                                         // b_more_presentations
    putVariable(toc, ac4Presentations - 2);
    toc.put(0, 1);  // b_payload_base
    toc.put(0, 1);  // b_program_id
    for (unsigned id = 0; id < ac4Presentations; id++)
        putPresentation(toc, id);
    for (unsigned index = 0; index < ac4GroupCount; index++)
        putGroup(toc, index);
    toc.put(0, 2);  // n_substreams: four and more
    putVariable(toc, substreams - 4);
    for (unsigned index = 0; index < substreams; index++) {
        toc.put(0, 1);  // b_more_bits
        toc.put(substreamSize, 10);
    }
    Bytes raw = toc.bytes();
    raw.resize(raw.size() + substreams * substreamSize, 0);
    Bytes frame;
    put16(frame, 0xAC40);  // sync word without CRC
    put16(frame, static_cast<unsigned>(raw.size()));
    append(frame, raw);
    return frame;
}

}  // namespace mkstreams

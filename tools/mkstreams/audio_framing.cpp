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

Bytes ac4Frame(size_t count) {
    static const size_t substreamSize = 96;
    BitWriter toc;
    toc.put(0, 2);                                         // bitstream_version
    toc.put(static_cast<uint32_t>(1 + count % 1020), 10);  // sequence_counter
    toc.put(0, 1);                                         // b_wait_frames
    toc.put(1, 1);                                         // fs_index: 48 kHz
    toc.put(13, 4);                                        // frame_rate_index: 2048 samples
    toc.put(1, 1);                                         // b_iframe_global
    toc.put(0, 2);                                         // no presentation
    toc.put(0, 1);                                         // b_payload_base
    toc.put(1, 2);                                         // n_substreams
    toc.put(0, 1);                                         // b_size_present
    Bytes raw = toc.bytes();
    raw.resize(raw.size() + substreamSize, 0);
    Bytes frame;
    put16(frame, 0xAC40);  // sync word without CRC
    put16(frame, static_cast<unsigned>(raw.size()));
    append(frame, raw);
    return frame;
}

}  // namespace mkstreams

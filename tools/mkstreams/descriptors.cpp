#include "tools/mkstreams/descriptors.h"

#include <algorithm>

#include "tools/mkstreams/content.h"

namespace mkstreams {

/* Text ----------------------------------------------------------------------------------------- */

Bytes codedText(Family family, const std::string& text) {
    Bytes coded;
    // ARIB's initial set is the Kanji: LS1 brings in the alphanumeric one (STD-B24).
    if (family == Family::Isdb)
        put8(coded, 0x0E);
    putText(coded, text);
    return coded;
}

Bytes textDescriptor(unsigned tag, Family family, const std::string& text) {
    Bytes descriptor;
    putDescriptor(descriptor, tag, codedText(family, text));
    return descriptor;
}

/** Text with its length before it. */
static void putCountedText(Bytes& to, Family family, const std::string& text) {
    Bytes coded = codedText(family, text);
    put8(to, static_cast<unsigned>(coded.size()));
    append(to, coded);
}

/** A number as decimal digits of four bits each. */
static uint32_t bcd(uint32_t number) {
    uint32_t digits = 0;
    for (unsigned shift = 0; shift < 32; shift += 4, number /= 10)
        digits |= number % 10 << shift;
    return digits;
}

static const char* language(Family family, size_t component) {
    static const char* const european[] = {"eng", "fra", "deu"};
    static const char* const american[] = {"eng", "spa", "fra"};
    static const char* const japanese[] = {"jpn", "eng", "fra"};
    const char* const* languages = family == Family::Dvb    ? european
                                   : family == Family::Atsc ? american
                                                            : japanese;
    return languages[component % 3];
}

/* Programmes ----------------------------------------------------------------------------------- */

Bytes caDescriptor(Family family, uint16_t pid) {
    Bytes body;
    put16(body, family == Family::Isdb ? 0x0005 : 0x0001);
    put16(body, 0xE000u | pid);
    Bytes descriptor;
    putDescriptor(descriptor, 0x09, body);
    return descriptor;
}

static Bytes registration(const char* identifier) {
    Bytes body;
    putText(body, identifier);
    Bytes descriptor;
    putDescriptor(descriptor, 0x05, body);
    return descriptor;
}

Bytes programmeDescriptors(const Multiplex& multiplex, const Channel&) {
    Bytes descriptors;
    if (multiplex.standard->family == Family::Atsc)
        descriptors = registration("GA94");
    if (kindOf(multiplex).scrambled)
        append(descriptors, caDescriptor(multiplex.standard->family, pidEcm));
    return descriptors;
}

static unsigned videoStreamType(uint32_t format) {
    switch (format) {
        case VIDEO_MPEG1:
            return 0x01;
        case VIDEO_MPEG4:
            return 0x10;
        case VIDEO_H264:
            return 0x1B;
        case VIDEO_HEVC:
            return 0x24;
        default:
            return 0x02;
    }
}

static void putTag(Bytes& to, unsigned componentTag) {
    put8(to, 0x52);
    put8(to, 1);
    put8(to, componentTag);
}

static void putLanguage(Bytes& to, const std::string& code, unsigned audioType) {
    Bytes body;
    putText(body, code);
    put8(body, audioType);
    putDescriptor(to, 0x0A, body);
}

static Bytes videoDescriptors(const Multiplex& multiplex, const Channel& channel) {
    Bytes descriptors;
    if (multiplex.standard->family != Family::Atsc)
        putTag(descriptors, 0);
    bool captions = !videoSpecs(multiplex, channel).front().captions.empty();
    if (captions && multiplex.standard->family == Family::Atsc) {
        // Services 1, 2 and 8, and line 21 in both fields (A/65, 6.9.2).
        static const struct {
            const char* language;
            unsigned service;
        } services[] = {{"eng", 0xC1}, {"spa", 0xC2}, {"deu", 0xC8}, {"eng", 0x7E}, {"spa", 0x7F}};
        Bytes body = {0xC0 | 5};
        for (const auto& service : services) {
            putText(body, service.language);
            put8(body, service.service);
            put16(body, 0x3FFF);  // for no beginners, and any shape of the picture
        }
        putDescriptor(descriptors, 0x86, body);
    }
    return descriptors;
}

/** AC-3 audio stream descriptor (A/52 annex A). Sound that changes is told by its upper limit. */
static Bytes atscAc3Descriptor(const std::vector<AudioSpec>& specs, bool description) {
    int most = specs.back().channels;
    bool exact = specs.size() == 1;
    BitWriter bits;
    bits.put(0, 3);                                // 48 kHz
    bits.put(8, 5);                                // bsid
    bits.put(exact ? 0 : 1, 1);                    // this bit rate, or at most this
    bits.put(most == 6 ? 14 : 10, 5);              // 384 or 192 kbit/s
    bits.put(0, 2);                                // surround not indicated
    bits.put(description ? 2 : 0, 3);              // bsmod: complete main, or visually impaired
    bits.put(!exact ? 13 : most == 6 ? 7 : 2, 4);  // at most 6 channels; 3/2; 2/0
    bits.put(1, 1);                                // full service
    bits.put(0, 8);                                // langcod
    Bytes descriptor;
    putDescriptor(descriptor, 0x81, bits.bytes());
    return descriptor;
}

/** Stream type of a sound format, and the descriptor that names it, where one is needed. */
static Component audioFormat(Family family, const std::vector<AudioSpec>& specs, bool description) {
    bool dvb = family == Family::Dvb;
    int most = specs.back().channels;
    switch (specs.front().format) {
        case AUDIO_AC3:
            if (dvb)
                return {0x06, 0, {0x6A, 1, 0x0F}};
            return {0x81, 0, atscAc3Descriptor(specs, description)};
        case AUDIO_EAC3:
            if (dvb)
                return {0x06, 0, {0x7A, 1, 0x0F}};
            return {0x87, 0, registration("EAC3")};
        case AUDIO_AAC:
            if (dvb)
                // AAC profile of level 2 or, for more than two channels, 4.
                return {0x11, 0, {0x7C, 2, static_cast<uint8_t>(most > 2 ? 0x52 : 0x51), 0x7F}};
            return {0x0F, 0, {}};
        case AUDIO_HEAAC:
            return {0x11, 0, dvb ? Bytes{0x7C, 2, 0x58, 0x7F} : Bytes{}};
        case AUDIO_AC4:
            return {0x06, 0, dvb ? Bytes{0x7F, 2, 0x15, 0x00} : registration("AC-4")};
        default:
            return {0x03, 0, {}};
    }
}

static void addAudio(const Multiplex& multiplex, const Channel& channel,
                     std::vector<Component>* components) {
    Family family = multiplex.standard->family;
    for (unsigned i = 0; i < channel.audio.size(); i++) {
        const AudioComponent& audio = channel.audio[i];
        Component format =
            audioFormat(family, audioSpecs(multiplex, channel, i), audio.description);
        Component component = {format.streamType, audio.pid, {}};
        component.language = language(family, audio.description ? 0 : i);
        if (family == Family::Atsc && audio.format == AUDIO_AC3)
            component.descriptors = registration("AC-3");
        append(component.descriptors, format.descriptors);
        putLanguage(component.descriptors, component.language, audio.description ? 3 : 0);
        if (family != Family::Atsc)
            putTag(component.descriptors, 0x10 + i);
        components->push_back(component);
    }
}

static void addSubtitles(const Multiplex& multiplex, const Channel& channel,
                         std::vector<Component>* components) {
    Family family = multiplex.standard->family;
    for (size_t i = 0; i < channel.subtitlePids.size(); i++) {
        Component component = {0x06, channel.subtitlePids[i], {}};
        if (family == Family::Isdb) {
            putTag(component.descriptors, 0x30 + static_cast<unsigned>(i));
            // Data component: captions in 8-unit code, for a set that displays them as told.
            putDescriptor(component.descriptors, 0xFD, {0x00, 0x08, 0x3D});
        } else {
            Bytes body;
            component.language = language(family, i);
            putText(body, component.language);
            put8(body, 0x10);  // subtitles without aspect ratio criticality
            put16(body, 1);    // composition page
            put16(body, 1);    // ancillary page
            putDescriptor(component.descriptors, 0x59, body);
        }
        components->push_back(component);
    }
}

static bool isListed(const std::vector<Component>& components, uint16_t pid) {
    return std::any_of(components.begin(), components.end(),
                       [&](const Component& c) { return c.pid == pid; });
}

std::vector<Component> componentsOf(const Multiplex& multiplex, const Channel& channel) {
    std::vector<Component> components;
    if (channel.videoPid != 0)
        components.push_back({videoStreamType(channel.videoFormat), channel.videoPid,
                              videoDescriptors(multiplex, channel)});
    addAudio(multiplex, channel, &components);
    addSubtitles(multiplex, channel, &components);
    for (size_t i = 0; i < channel.otherPids.size(); i++) {
        Component component = {0x06, channel.otherPids[i], {}};
        // The first one of DVB is teletext, with an initial page 100; the rest is private data.
        if (multiplex.standard->family == Family::Dvb && i == 0) {
            component.language = "eng";
            component.descriptors = {0x56, 5, 'e', 'n', 'g', 1 << 3 | 1, 0x00};
        }
        components.push_back(component);
    }
    if (channel.pesPid != 0 && !isListed(components, channel.pesPid))
        components.push_back({0x06, channel.pesPid, {}});
    return components;
}

/* Networks and services ------------------------------------------------------------------------ */

/** service_type: digital television, or in DVB one coded by H.264 or HEVC. */
static unsigned serviceType(Family family, const Channel& channel) {
    if (family != Family::Dvb || channel.videoFormat < VIDEO_H264)
        return 0x01;
    return channel.videoFormat == VIDEO_HEVC ? 0x1F : 0x19;
}

Bytes serviceListDescriptor(const Multiplex& multiplex) {
    Bytes body;
    for (const Channel& channel : multiplex.channels) {
        put16(body, serviceId(*multiplex.standard, channel));
        put8(body, serviceType(multiplex.standard->family, channel));
    }
    Bytes descriptor;
    putDescriptor(descriptor, 0x41, body);
    return descriptor;
}

static Bytes terrestrialDelivery(const Channel& channel) {
    Bytes body;
    put32(body, channel.frequencyKHz * 100);
    put8(body, 0x1F);  // 8 MHz, high priority, no time slicing, no MPE-FEC
    put8(body, 0x81);  // 64-QAM, no hierarchy, 2/3
    put8(body, 0x02);  // guard interval 1/32, 8k, no other frequency
    put32(body, 0xFFFFFFFE);
    Bytes descriptor;
    putDescriptor(descriptor, 0x5A, body);
    return descriptor;
}

static Bytes cableDelivery(const Channel& channel) {
    Bytes body;
    put32(body, bcd(channel.frequencyKHz * 10));
    put16(body, 0xFFF2);  // outer Reed-Solomon code
    put8(body, 5);        // 256-QAM
    put32(body, bcd(69000) << 4 | 0xF);
    Bytes descriptor;
    putDescriptor(descriptor, 0x44, body);
    return descriptor;
}

/** Satellite: DVB-S at 19.2 degrees east, or the broadcasting satellites at 110 degrees. */
static Bytes satelliteDelivery(const Standard& standard, const Channel& channel) {
    bool isdb = standard.family == Family::Isdb;
    uint32_t localOscillatorKHz = isdb ? 10678000 : 9750000;
    Bytes body;
    put32(body, bcd((channel.frequencyKHz + localOscillatorKHz) / 10));
    put16(body, isdb ? 0x1100 : 0x0192);
    if (isdb) {
        put8(body, 0xE8);  // east, right circular, as the TMCC says
        put32(body, bcd(288600) << 4 | 0x8);
    } else {
        put8(body, 0xA1);  // east, vertical, DVB-S QPSK
        put32(body, bcd(300000) << 4 | 0x3);
    }
    Bytes descriptor;
    putDescriptor(descriptor, 0x43, body);
    return descriptor;
}

static Bytes isdbTerrestrialDelivery(const Multiplex& multiplex) {
    const Channel& channel = multiplex.channels.front();
    Bytes body;
    put16(body, 0x05AAu << 4 | 1 << 2 | 2);  // area, guard interval 1/16, mode 3
    // Counted in sevenths of a megahertz.
    put16(body, (channel.frequencyKHz * 7 + 500) / 1000);
    Bytes descriptors;
    putDescriptor(descriptors, 0xFA, body);
    Bytes name = codedText(Family::Isdb, "Laboratory");
    Bytes information;
    put8(information, channel.index + 1);  // remote control key
    put8(information, static_cast<unsigned>(name.size() << 2 | 1));
    append(information, name);
    put8(information, 0x0F);  // transmission type information
    put8(information, 1);
    put16(information, serviceId(*multiplex.standard, channel));
    putDescriptor(descriptors, 0xCD, information);
    return descriptors;
}

Bytes deliveryDescriptors(const Multiplex& multiplex) {
    const Standard& standard = *multiplex.standard;
    const Channel& channel = multiplex.channels.front();
    switch (standard.system) {
        case 1:
            return terrestrialDelivery(channel);
        case 16:
            return cableDelivery(channel);
        case 256:
            return isdbTerrestrialDelivery(multiplex);
        default:
            return satelliteDelivery(standard, channel);
    }
}

Bytes serviceDescriptor(Family family, const Channel& channel) {
    Bytes body;
    put8(body, serviceType(family, channel));
    putCountedText(body, family, "Bench");
    putCountedText(body, family, serviceName(channel));
    Bytes descriptor;
    putDescriptor(descriptor, 0x48, body);
    return descriptor;
}

/* Events --------------------------------------------------------------------------------------- */

std::string eventName(unsigned hour) {
    static const char* const names[] = {"Colour bars", "Moving box", "Reference tone",
                                        "Frame count", "Line-up"};
    return std::string(names[hour % 5]) + " " + std::to_string(hour / 24 + 1) + "/" +
           std::to_string(hour % 24);
}

std::string eventText(unsigned hour) {
    return "Bars with a box that moves a cell each frame, a binary count of frames, and a tone "
           "of steady level. Part " +
           std::to_string(hour % 24 + 1) + " of 24.";
}

/** The sound of ISDB is described apart from the picture: main stereo sound, 48 kHz. */
static Bytes isdbAudioComponent() {
    Bytes body = {0xF2, 0x03, 0x10, 0x0F, 0xFF, 0x5F};
    putText(body, "jpn");
    Bytes descriptor;
    putDescriptor(descriptor, 0xC4, body);
    return descriptor;
}

Bytes eventDescriptors(const Multiplex& multiplex, unsigned hour) {
    Family family = multiplex.standard->family;
    const char* code = language(family, 0);
    Bytes descriptors;
    Bytes shortEvent;
    putText(shortEvent, code);
    putCountedText(shortEvent, family, eventName(hour));
    putCountedText(shortEvent, family, eventText(hour));
    putDescriptor(descriptors, 0x4D, shortEvent);
    if (hour % 2 == 0) {
        Bytes extended;
        put8(extended, 0x00);  // the only one
        putText(extended, code);
        put8(extended, 0);  // no items
        putCountedText(extended, family, "Used to check picture geometry and sound level.");
        putDescriptor(descriptors, 0x4E, extended);
    }
    Bytes component = {0xF1, 0x03, 0x00};  // MPEG-2 video, 16:9
    putText(component, code);
    append(component, codedText(family, "Video"));
    putDescriptor(descriptors, 0x50, component);
    putDescriptor(descriptors, 0x54, {0x90, 0x00});  // education, science
    if (family == Family::Isdb)
        append(descriptors, isdbAudioComponent());
    return descriptors;
}

Bytes localTimeOffsetDescriptor(Family family, uint64_t change) {
    bool japan = family == Family::Isdb;
    Bytes body;
    putText(body, japan ? "JPN" : "GBR");
    put8(body, 0x02);  // the whole country, ahead of UTC
    put16(body, japan ? 0x0000 : 0x0100);
    put8(body, static_cast<unsigned>(change >> 32));
    put32(body, static_cast<uint32_t>(change));
    put16(body, 0x0000);
    Bytes descriptor;
    putDescriptor(descriptor, 0x58, body);
    return descriptor;
}

Bytes partialStreamDescriptor() {
    Bytes body;
    put24(body, 0xC00000 | 7500);  // peak rate, units of 400 bit/s
    put24(body, 0xC00000 | 7500);  // smoothing rate
    put16(body, 0xC000 | 1500);    // smoothing buffer, bytes
    Bytes descriptor;
    putDescriptor(descriptor, 0x63, body);
    return descriptor;
}

}  // namespace mkstreams

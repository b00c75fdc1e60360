// Audio decoders: what they tell of a sound, what a program chooses of it, and their entry points.
// States are those of decoder_state.cpp, the order and times of events those of decoder_run.cpp.
//
// Volume and mute need the service alone: a program may set those of a decoder that is not open.
// They begin with the service at full volume and unmuted: a program that sets neither is heard.
#include <algorithm>

#include "simulator/av/decoder_state.h"
#include "simulator/core/family.h"

namespace sim {

SIM_RECORD(QLX_AudioAttr, SIM_MEMBER(QLX_AudioAttr, eSourceType),
           SIM_MEMBER(QLX_AudioAttr, uSourceIndex), SIM_MEMBER(QLX_AudioAttr, eInputClass))
SIM_RECORD(QLX_AudioCapability, SIM_MEMBER(QLX_AudioCapability, uFormats),
           SIM_MEMBER(QLX_AudioCapability, uMaxChannels),
           SIM_MEMBER(QLX_AudioCapability, uReserved))
SIM_RECORD(QLX_AudioDecInfo, SIM_MEMBER(QLX_AudioDecInfo, audioPresent),
           SIM_MEMBER(QLX_AudioDecInfo, eSecondPresent), SIM_MEMBER(QLX_AudioDecInfo, eAudioFormat),
           SIM_MEMBER(QLX_AudioDecInfo, uWord4), SIM_MEMBER(QLX_AudioDecInfo, eChannelInfo),
           SIM_MEMBER(QLX_AudioDecInfo, bLfePresent), SIM_MEMBER(QLX_AudioDecInfo, uReserved1),
           SIM_MEMBER(QLX_AudioDecInfo, eAudioAttrA), SIM_MEMBER(QLX_AudioDecInfo, uAudioAttrB),
           SIM_MEMBER(QLX_AudioDecInfo, eAudioAttrC), SIM_MEMBER(QLX_AudioDecInfo, uAudioAttrD),
           SIM_MEMBER(QLX_AudioDecInfo, uWord12), SIM_MEMBER(QLX_AudioDecInfo, uReserved2))
SIM_RECORD(QLX_AudioInfo, SIM_MEMBER(QLX_AudioInfo, eParamType),
           SIM_MEMBER(QLX_AudioInfo, uReserved),
           SIM_MEMBER_IF(QLX_AudioInfo, uPts, record.eParamType == QLX_AUDIO_PARAMTYPE_PTS),
           SIM_MEMBER_IF(QLX_AudioInfo, eStatus,
                         record.eParamType == QLX_AUDIO_PARAMTYPE_DEC_STATUS),
           SIM_MEMBER_IF(QLX_AudioInfo, stAudioDecInfo,
                         record.eParamType == QLX_AUDIO_PARAMTYPE_DIGITAL_AUDIO_INFO))

namespace {

constexpr uint32_t mostVolume = 100;
constexpr uint32_t mostChannels = 8;
/** The word D of the information: bits of a sample that comes out. */
constexpr uint32_t sampleBits = 16;
/** What the words of the information count to at most. */
constexpr uint32_t mostAttrC = 9;

struct Coding {
    uint32_t format;
    AudioCoding coding;
};
constexpr Coding codings[] = {
    {QLX_AUDIO_FORMAT_MPEG, AudioCoding::mpeg},   {QLX_AUDIO_FORMAT_AC3, AudioCoding::ac3},
    {QLX_AUDIO_FORMAT_EAC3, AudioCoding::eac3},   {QLX_AUDIO_FORMAT_AAC, AudioCoding::aac},
    {QLX_AUDIO_FORMAT_HEAAC, AudioCoding::heAac}, {QLX_AUDIO_FORMAT_AC4, AudioCoding::ac4},
};

/** Volume and mute of a decoder's sources. */
struct Level {
    uint32_t volume = mostVolume;
    bool muted = false;
};
Level levels[maxDecoders][QLX_AUDIO_SOURCE_MAX];

const Coding* codingOf(uint32_t format) {
    for (const Coding& coding : codings) {
        if (coding.format == format)
            return &coding;
    }
    return nullptr;
}

uint32_t formatOf(AudioCoding found) {
    for (const Coding& coding : codings) {
        if (coding.coding == found)
            return coding.format;
    }
    return QLX_AUDIO_FORMAT_NONE;
}

/** @param channels  without that of low frequencies */
uint32_t channelInfo(uint32_t channels, bool dualMono) {
    constexpr uint32_t layouts[] = {QLX_AUDIO_CHANNEL_OTHER, QLX_AUDIO_CHANNEL_1_0,
                                    QLX_AUDIO_CHANNEL_2_0,   QLX_AUDIO_CHANNEL_3_0,
                                    QLX_AUDIO_CHANNEL_2_2,   QLX_AUDIO_CHANNEL_3_2};
    if (dualMono)
        return QLX_AUDIO_CHANNEL_1_PLUS_1;
    if (channels >= sizeof(layouts) / sizeof(layouts[0]))
        return QLX_AUDIO_CHANNEL_OTHER;
    return layouts[channels];
}

/** The presentation of an AC-4 stream that the program has chosen by its number, else the first of
 *  the language that it prefers; null leaves the stream's own first. */
const AudioPresentation* chosenPresentation(const AudioChoices& choices,
                                            const std::vector<AudioPresentation>& all) {
    constexpr struct {
        int32_t number;
        const char* language;
    } languages[] = {{1, "eng"},  {1, "en"},   {4, "spa"}, {4, "es"},
                     {19, "zho"}, {19, "chi"}, {19, "zh"}};
    auto number = static_cast<size_t>(choices.ac4Presentation);
    if (choices.ac4Presentation >= 0)
        return number < all.size() ? &all[number] : nullptr;
    for (const AudioPresentation& presentation : all) {
        for (const auto& row : languages) {
            if (row.number == choices.ac4Language && presentation.language == row.language)
                return &presentation;
        }
    }
    return nullptr;
}

DecoderInfo absent() {
    DecoderInfo info = {};
    info.audio.audioPresent = QLX_AUDIO_NOT_PRESENT;
    info.audio.eSecondPresent = QLX_AUDIO_NOT_PRESENT;
    info.audio.eChannelInfo = QLX_AUDIO_CHANNEL_NONE;
    return info;
}

/** @param channels  with that of low frequencies */
DecoderInfo present(const Decoder& decoder, uint32_t channels, bool lfe, bool dualMono,
                    uint32_t samplingRate) {
    DecoderInfo info = {};
    QLX_AudioDecInfo& audio = info.audio;
    audio.audioPresent = QLX_AUDIO_PRESENT;
    audio.eSecondPresent = QLX_AUDIO_PRESENT;
    audio.eChannelInfo = channelInfo(channels - (lfe ? 1 : 0), dualMono);
    audio.bLfePresent = lfe;
    audio.eAudioAttrA = decoder.audio.digitalMode;
    audio.uAudioAttrB = samplingRate;
    audio.eAudioAttrC = std::max(1u, std::min(channels, mostAttrC));
    audio.uAudioAttrD = sampleBits;
    return info;
}

DecoderInfo ofUnit(const Decoder& decoder, const EsUnits& units, uint32_t unit) {
    const AudioFormat* format = static_cast<const AudioIndex&>(units).formatAt(unit);
    if (format == nullptr)
        return absent();
    uint32_t channels = format->channels;
    bool lfe = format->lfe;
    if (const auto* chosen = chosenPresentation(decoder.audio, format->presentations)) {
        channels = chosen->channels;
        lfe = chosen->lfe;
    }
    DecoderInfo info = present(decoder, channels, lfe, format->dualMono, format->samplingRate);
    info.audio.eAudioFormat = formatOf(format->coding);
    return info;
}

bool ofSignal(const Decoder& decoder, const SignalSource& signal, DecoderInfo* info) {
    const SignalSound& sound = signal.sound;
    *info = present(decoder, sound.channels, false, false, sound.samplingRate);
    return sound.channels != 0;
}

std::shared_ptr<const EsUnits> indexOf(const TsStreamPtr& stream, uint16_t pid, uint32_t format) {
    const Coding* coding = codingOf(format);
    return coding == nullptr ? nullptr : audioIndex(stream, pid, coding->coding);
}

Value infoValue(DecoderInfo* info) {
    return value("info", &info->audio);
}

const DecoderKind audioKind = {
    "Audio",
    "audio",
    "AUDIO",
    "AudioEvent",
    "NumberOfAudioPlayers",
    QLX_AUDIO_ERR_INVALID_PARA,
    sizeof(QLX_AudioDecInfo),
    {0, QLX_EVENT_AUDIO_DECODE_ERROR, QLX_EVENT_AUDIO_STOP_DONE, 0, QLX_EVENT_AUDIO_INFO_CHANGE, 0,
     0},
    false,
    true,
    absent,
    indexOf,
    ofUnit,
    ofSignal,
    infoValue,
    nullptr,
};

/** The answer to a question, of an open decoder. False for a question that there is not. */
bool answer(const Decoder& decoder, uint32_t question, QLX_AudioInfo* info) {
    static const DecoderRun resting;
    const DecoderRun& run = decoder.run != nullptr ? *decoder.run : resting;
    *info = {};
    info->eParamType = question;
    switch (question) {
        case QLX_AUDIO_PARAMTYPE_DEC_STATUS:
            info->eStatus = run.decoding();
            return true;
        case QLX_AUDIO_PARAMTYPE_PTS: {
            std::optional<UnitMoment> moment = shownMoment(run);
            if (moment.has_value() && moment->pts != noStamp)
                info->uPts = moment->pts;
            return true;
        }
        case QLX_AUDIO_PARAMTYPE_DIGITAL_AUDIO_INFO:
            info->stAudioDecInfo = run.infoTold ? run.info.audio : absent().audio;
            return true;
        default:
            return false;
    }
}

/** Called with the family locked. */
void resetLevels() {
    for (auto& decoder : levels) {
        for (Level& level : decoder)
            level = Level();
    }
}

/** The level that a call is about; a refusal when there is none. Called with the family locked. */
int32_t findLevel(uint32_t audioDev, uint32_t source, Level** level) {
    if (audioDev >= decoderCount(audioKind) || source >= QLX_AUDIO_SOURCE_MAX)
        return QLX_AUDIO_ERR_INVALID_PARA;
    *level = &levels[audioDev][source];
    return audioFamily().initialised ? QLX_SUCCESS : QLX_FAILED;
}

int32_t startDescription(uint32_t audioDev, uint32_t format, uint32_t pid) {
    DecoderFamily& family = audioFamily();
    std::lock_guard<std::mutex> lock(family.mutex);
    if (codingOf(format) == nullptr)
        return QLX_AUDIO_ERR_INVALID_PARA;
    int32_t refusal = refusalOf(family, audioDev);
    if (refusal != QLX_SUCCESS)
        return refusal;
    Decoder& decoder = family.decoders[audioDev];
    if (decoder.run == nullptr || decoder.audio.describes)
        return QLX_FAILED;
    decoder.audio.describes = true;
    decoder.audio.descriptionFormat = format;
    decoder.audio.descriptionPid = pid;
    decoder.audio.describesSinceUs = nowUs();
    return QLX_SUCCESS;
}

/** What a parameter of AC-4 chooses; null for one that there is not. */
int32_t AudioChoices::*ac4Choice(uint32_t parameter) {
    switch (parameter) {
        case QLX_AUDIO_DOLBY_AC4_AUDIO_PREFERRED_LANGUAGE1:
            return &AudioChoices::ac4Language;
        case QLX_AUDIO_DOLBY_AC4_AUDIO_MD_PRESENTATION_INDEX:
            return &AudioChoices::ac4Presentation;
        case QLX_AUDIO_DOLBY_AC4_AUDIO_AD_PRESENTATION_INDEX:
            return &AudioChoices::ac4Description;
        default:
            return nullptr;
    }
}

/** Sets what the information of a running decoder may tell. Called with the family locked. */
template <typename T>
void setChoice(T& choice, T value, uint32_t audioDev) {
    choice = value;
    Decoder& decoder = audioFamily().decoders[audioDev];
    if (decoder.run == nullptr)
        return;
    refreshInfo(audioKind, decoder);
    wakeDecoder(audioFamily(), decoder);
}

}  // namespace

DecoderFamily& audioFamily() {
    static DecoderFamily* instance = new DecoderFamily(audioKind);
    return *instance;
}

AudioPlayed audioPlayed(uint32_t audioDev) {
    AudioPlayed played;
    DecoderFamily& family = audioFamily();
    std::lock_guard<std::mutex> lock(family.mutex);
    played.info = absent().audio;
    if (audioDev >= decoderCount(audioKind))
        return played;
    const Level& level = levels[audioDev][QLX_AUDIO_SOURCE_MAIN];
    played.volume = level.volume;
    played.muted = level.muted;
    if (refusalOf(family, audioDev) != QLX_SUCCESS)
        return played;
    const Decoder& decoder = family.decoders[audioDev];
    const AudioChoices& choices = decoder.audio;
    played.open = true;
    played.source = {decoder.source.kind, decoder.source.index, decoder.source.inputClass};
    played.prescaler = choices.prescaler;
    played.digitalMode = choices.digitalMode;
    if (decoder.run == nullptr)
        return played;
    const DecoderRun& run = *decoder.run;
    if (run.infoTold)
        played.info = run.info.audio;
    played.paused = run.pausedUs != 0;
    // Sound that was cut off is silent at once.
    if (!run.decoding())
        return played;
    played.origin = originOf(run);
    played.origin.signalKind = decoder.source.kind;
    if (const Coding* coding = codingOf(run.format))
        played.coding = coding->coding;
    if (choices.describes && run.feed.kind == DecoderFeed::Kind::stream &&
        choices.descriptionPid < tsPidCount) {
        played.description = played.origin;
        played.description.pid = static_cast<uint16_t>(choices.descriptionPid);
        played.description.sinceUs = std::max(run.feed.sinceUs, choices.describesSinceUs);
        played.descriptionCoding = codingOf(choices.descriptionFormat)->coding;
    }
    return played;
}

static void reset() {
    resetDecoders(audioFamily());
    std::lock_guard<std::mutex> lock(audioFamily().mutex);
    resetLevels();
}

static void describe(std::string* out) {
    describeDecoders(audioFamily(), out);
}

extern const Family familyAudio = {reset, describe};

}  // namespace sim

int32_t QLX_AudioInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    {
        std::lock_guard<std::mutex> lock(sim::audioFamily().mutex);
        if (!sim::audioFamily().initialised)
            sim::resetLevels();
    }
    SIM_RETURN(sim::decodersInit(sim::audioFamily()));
}

int32_t QLX_AudioDeInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    SIM_RETURN(sim::decodersDeInit(sim::audioFamily()));
}

int32_t QLX_AudioGetDevNum(uint8_t* puNum) {
    SIM_ENTRY("num=%s", sim::showPointer(puNum));
    std::lock_guard<std::mutex> lock(sim::audioFamily().mutex);
    if (puNum == nullptr)
        SIM_RETURN(QLX_AUDIO_ERR_INVALID_PARA);
    if (!sim::audioFamily().initialised)
        SIM_RETURN(QLX_FAILED);
    *puNum = static_cast<uint8_t>(sim::decoderCount(sim::audioKind));
    simCall.output({sim::value("num", puNum)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AudioOpen(uint32_t eAudioDev, const QLX_AudioAttr* pstAudioAttr) {
    SIM_ENTRY("audio=%d attr=%s", static_cast<int>(eAudioDev), sim::show(pstAudioAttr).c_str());
    sim::DecoderSource source;
    if (pstAudioAttr != nullptr)
        source = {pstAudioAttr->eSourceType, pstAudioAttr->uSourceIndex, pstAudioAttr->eInputClass,
                  0};
    SIM_RETURN(sim::decoderOpen(sim::audioFamily(), eAudioDev,
                                pstAudioAttr != nullptr ? &source : nullptr));
}

int32_t QLX_AudioClose(uint32_t eAudioDev) {
    SIM_ENTRY("audio=%d", static_cast<int>(eAudioDev));
    SIM_RETURN(sim::decoderClose(sim::audioFamily(), eAudioDev));
}

int32_t QLX_AudioGetCapability(uint32_t eAudioDev, QLX_AudioCapability* pstAudioCapability) {
    SIM_ENTRY("audio=%d capability=%s", static_cast<int>(eAudioDev),
              sim::showPointer(pstAudioCapability));
    std::lock_guard<std::mutex> lock(sim::audioFamily().mutex);
    if (pstAudioCapability == nullptr)
        SIM_RETURN(QLX_AUDIO_ERR_INVALID_PARA);
    int32_t refusal = sim::refusalOf(sim::audioFamily(), eAudioDev);
    if (refusal != QLX_SUCCESS)
        SIM_RETURN(refusal);
    *pstAudioCapability = {};
    for (const sim::Coding& coding : sim::codings)
        pstAudioCapability->uFormats |= coding.format;
    pstAudioCapability->uMaxChannels = sim::mostChannels;
    simCall.output({sim::value("capability", pstAudioCapability)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AudioRegisterCallback(uint32_t eAudioDev, void* pUserdata, QLX_AudioCallback callback) {
    SIM_ENTRY("audio=%d userdata=%s callback=%s", static_cast<int>(eAudioDev),
              sim::showPointer(pUserdata), sim::showPointer(callback));
    SIM_RETURN(sim::decoderRegister(sim::audioFamily(), eAudioDev, pUserdata, callback));
}

int32_t QLX_AudioUnRegisterCallback(uint32_t eAudioDev, QLX_AudioCallback callback) {
    SIM_ENTRY("audio=%d callback=%s", static_cast<int>(eAudioDev), sim::showPointer(callback));
    SIM_RETURN(sim::decoderUnRegister(sim::audioFamily(), eAudioDev, callback));
}

int32_t QLX_AudioStart(uint32_t eAudioDev, uint32_t eAudioFormat, uint32_t uPid) {
    SIM_ENTRY("audio=%d format=%u pid=%u", static_cast<int>(eAudioDev), eAudioFormat, uPid);
    if (eAudioFormat != QLX_AUDIO_FORMAT_NONE && sim::codingOf(eAudioFormat) == nullptr)
        SIM_RETURN(QLX_AUDIO_ERR_INVALID_PARA);
    SIM_RETURN(sim::decoderStart(sim::audioFamily(), eAudioDev, eAudioFormat, uPid));
}

int32_t QLX_AudioStop(uint32_t eAudioDev) {
    SIM_ENTRY("audio=%d", static_cast<int>(eAudioDev));
    SIM_RETURN(sim::decoderStop(sim::audioFamily(), eAudioDev));
}

int32_t QLX_AudioFlush(uint32_t eAudioDev) {
    SIM_ENTRY("audio=%d", static_cast<int>(eAudioDev));
    SIM_RETURN(sim::decoderFlush(sim::audioFamily(), eAudioDev));
}

int32_t QLX_AudioPause(uint32_t eAudioDev) {
    SIM_ENTRY("audio=%d", static_cast<int>(eAudioDev));
    SIM_RETURN(sim::decoderPause(sim::audioFamily(), eAudioDev, true));
}

int32_t QLX_AudioResume(uint32_t eAudioDev) {
    SIM_ENTRY("audio=%d", static_cast<int>(eAudioDev));
    SIM_RETURN(sim::decoderPause(sim::audioFamily(), eAudioDev, false));
}

int32_t QLX_AudioGetState(uint32_t eAudioDev, uint32_t* peAudioState) {
    SIM_ENTRY("audio=%d state=%s", static_cast<int>(eAudioDev), sim::showPointer(peAudioState));
    std::lock_guard<std::mutex> lock(sim::audioFamily().mutex);
    if (peAudioState == nullptr)
        SIM_RETURN(QLX_AUDIO_ERR_INVALID_PARA);
    int32_t refusal = sim::refusalOf(sim::audioFamily(), eAudioDev);
    if (refusal != QLX_SUCCESS)
        SIM_RETURN(refusal);
    *peAudioState = sim::decoderState(sim::audioFamily().decoders[eAudioDev]);
    simCall.output({sim::value("state", peAudioState)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AudioGetAudioInfo(uint32_t eAudioDev, uint32_t eParamType,
                              QLX_AudioInfo* pstAudioInfo) {
    SIM_ENTRY("audio=%d type=%u info=%s", static_cast<int>(eAudioDev), eParamType,
              sim::showPointer(pstAudioInfo));
    std::lock_guard<std::mutex> lock(sim::audioFamily().mutex);
    if (pstAudioInfo == nullptr)
        SIM_RETURN(QLX_AUDIO_ERR_INVALID_PARA);
    int32_t refusal = sim::refusalOf(sim::audioFamily(), eAudioDev);
    if (refusal != QLX_SUCCESS)
        SIM_RETURN(refusal);
    QLX_AudioInfo info;
    if (!sim::answer(sim::audioFamily().decoders[eAudioDev], eParamType, &info))
        SIM_RETURN(QLX_AUDIO_ERR_INVALID_PARA);
    *pstAudioInfo = info;
    simCall.output({sim::value("info", pstAudioInfo)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AudioSetVolume(uint32_t eAudioDev, uint32_t eAudioSource, uint32_t uVolume) {
    SIM_ENTRY("audio=%d source=%u volume=%u", static_cast<int>(eAudioDev), eAudioSource, uVolume);
    std::lock_guard<std::mutex> lock(sim::audioFamily().mutex);
    sim::Level* level = nullptr;
    int32_t refusal = sim::findLevel(eAudioDev, eAudioSource, &level);
    if (refusal == QLX_SUCCESS && uVolume > sim::mostVolume)
        refusal = QLX_AUDIO_ERR_INVALID_PARA;
    if (refusal == QLX_SUCCESS)
        level->volume = uVolume;
    SIM_RETURN(refusal);
}

int32_t QLX_AudioSetMute(uint32_t eAudioDev, uint32_t eAudioSource, uint32_t bMute) {
    SIM_ENTRY("audio=%d source=%u mute=%u", static_cast<int>(eAudioDev), eAudioSource, bMute);
    std::lock_guard<std::mutex> lock(sim::audioFamily().mutex);
    sim::Level* level = nullptr;
    int32_t refusal = sim::findLevel(eAudioDev, eAudioSource, &level);
    if (refusal == QLX_SUCCESS)
        level->muted = bMute != QLX_FALSE;
    SIM_RETURN(refusal);
}

int32_t QLX_AudioSetDigitalAudioMode(uint32_t eAudioDev, uint32_t eDigitalAudioMode) {
    SIM_ENTRY("audio=%d mode=%u", static_cast<int>(eAudioDev), eDigitalAudioMode);
    sim::DecoderFamily& family = sim::audioFamily();
    std::lock_guard<std::mutex> lock(family.mutex);
    if (eDigitalAudioMode < QLX_AUDIO_DIGITAL_MODE_STEREO ||
        eDigitalAudioMode > QLX_AUDIO_DIGITAL_MODE_TRACK_BOTH)
        SIM_RETURN(QLX_AUDIO_ERR_INVALID_PARA);
    int32_t refusal = sim::refusalOf(family, eAudioDev);
    if (refusal != QLX_SUCCESS)
        SIM_RETURN(refusal);
    sim::setChoice(family.decoders[eAudioDev].audio.digitalMode, eDigitalAudioMode, eAudioDev);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AudioStartDescription(uint32_t eAudioDev, uint32_t eAudioFormat, uint32_t uPid) {
    SIM_ENTRY("audio=%d format=%u pid=%u", static_cast<int>(eAudioDev), eAudioFormat, uPid);
    SIM_RETURN(sim::startDescription(eAudioDev, eAudioFormat, uPid));
}

int32_t QLX_AudioStopDescription(uint32_t eAudioDev) {
    SIM_ENTRY("audio=%d", static_cast<int>(eAudioDev));
    std::lock_guard<std::mutex> lock(sim::audioFamily().mutex);
    int32_t refusal = sim::refusalOf(sim::audioFamily(), eAudioDev);
    if (refusal == QLX_SUCCESS)
        sim::audioFamily().decoders[eAudioDev].audio.describes = false;
    SIM_RETURN(refusal);
}

int32_t QLX_AudioSetPrescaler(uint32_t eAudioDev, uint32_t uValue) {
    SIM_ENTRY("audio=%d value=%u", static_cast<int>(eAudioDev), uValue);
    std::lock_guard<std::mutex> lock(sim::audioFamily().mutex);
    if (uValue > UINT8_MAX)
        SIM_RETURN(QLX_AUDIO_ERR_INVALID_PARA);
    int32_t refusal = sim::refusalOf(sim::audioFamily(), eAudioDev);
    if (refusal == QLX_SUCCESS)
        sim::audioFamily().decoders[eAudioDev].audio.prescaler = static_cast<uint8_t>(uValue);
    SIM_RETURN(refusal);
}

int32_t QLX_AudioGetPrescaler(uint32_t eAudioDev, uint8_t* puValue) {
    SIM_ENTRY("audio=%d value=%s", static_cast<int>(eAudioDev), sim::showPointer(puValue));
    std::lock_guard<std::mutex> lock(sim::audioFamily().mutex);
    if (puValue == nullptr)
        SIM_RETURN(QLX_AUDIO_ERR_INVALID_PARA);
    int32_t refusal = sim::refusalOf(sim::audioFamily(), eAudioDev);
    if (refusal != QLX_SUCCESS)
        SIM_RETURN(refusal);
    *puValue = sim::audioFamily().decoders[eAudioDev].audio.prescaler;
    simCall.output({sim::value("value", puValue)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AudioSetAC4Parameters(uint32_t eAudioDev, uint32_t eParameter, int32_t sValue) {
    SIM_ENTRY("audio=%d parameter=%u value=%d", static_cast<int>(eAudioDev), eParameter, sValue);
    sim::DecoderFamily& family = sim::audioFamily();
    std::lock_guard<std::mutex> lock(family.mutex);
    int32_t sim::AudioChoices::*choice = sim::ac4Choice(eParameter);
    if (choice == nullptr || sValue < -1)
        SIM_RETURN(QLX_AUDIO_ERR_INVALID_PARA);
    int32_t refusal = sim::refusalOf(family, eAudioDev);
    if (refusal != QLX_SUCCESS)
        SIM_RETURN(refusal);
    sim::setChoice(family.decoders[eAudioDev].audio.*choice, sValue, eAudioDev);
    SIM_RETURN(QLX_SUCCESS);
}

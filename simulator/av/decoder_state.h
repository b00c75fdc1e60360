/*
 * What video and audio decoders have in common: their states, what flows into them, and what they
 * report when. One body serves both; DecoderKind is the table of what differs.
 *
 * A started decoder looks at what its source gives and knows from the index of the stream (or from
 * the signal) when the next thing happens that it has to report. It has one job waiting for that on
 * its thread, and none for a picture that is like the last one. When the source changes, it looks
 * again.
 */
#ifndef SIMULATOR_AV_DECODER_STATE_H
#define SIMULATOR_AV_DECODER_STATE_H

#include <stdint.h>

#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/qlx_audio.h"
#include "platform/qlx_video.h"
#include "platform/qlx_videocc.h"
#include "platform/qlx_videosync.h"
#include "simulator/av/decoder.h"
#include "simulator/core/sim.h"
#include "simulator/demux/demux.h"
#include "simulator/media/captions.h"
#include "simulator/media/es_index.h"
#include "simulator/world/signal_source.h"

namespace sim {

constexpr uint32_t maxDecoders = 4;

/** What a decoder is opened on, of both families. */
struct DecoderSource {
    uint32_t kind = QLX_SOURCE_TYPE_NONE;
    uint32_t index = 0;
    uint32_t inputClass = 0;
    uint32_t inputMode = 0;
};

/** The record of an information event; bytes behind the family's own are zero. */
union DecoderInfo {
    QLX_VideoDecInfo video;
    QLX_AudioDecInfo audio;
};

/** Both families have callbacks of this type. */
using DecoderCallback = QLX_VideoCallback;

/** Captions that wait for their turn, to whoever was registered when they came up. */
struct CaptionReport {
    uint32_t type;
    std::vector<uint8_t> bytes;
    QLX_VideoCcData data;
    QLX_VideoCcCallback callback;
    void* userData;
};

/** A report that waits for its turn, to whoever was registered when it came up. */
struct DecoderEvent {
    uint32_t bit;
    /** Data of all events but those of information. */
    uint32_t word;
    DecoderInfo info;
    DecoderCallback callback;
    void* userData;
    /** In place of all that; only video decoders have them. */
    std::shared_ptr<CaptionReport> captions = nullptr;
};

/** What a program wants to have of a video decoder's captions. */
struct CaptionChoices {
    QLX_VideoCcCallback callback = nullptr;
    void* userData = nullptr;
    /** By QLX_VideoCcDataType. */
    bool started[2] = {false, false};
    bool any() const {
        return started[0] || started[1];
    }
};

/** How far a run is with the captions of its pictures. */
struct CaptionRun {
    /** Of the feed with that index; null: it has not been looked through. */
    std::shared_ptr<const CaptionIndex> index;
    std::shared_ptr<const EsUnits> units;
    /** The picture whose captions are told, and how many of its parts have been. */
    std::optional<CaptionMoment> picture;
    uint32_t part = 0;
    /** Pictures that are shown earlier are left out. */
    int64_t fromUs = 0;
    CaptionChannel channel;
};

/** What flows into a running decoder. */
struct DecoderFeed {
    enum class Kind { nothing, stream, signal };
    Kind kind = Kind::nothing;

    TsStreamPtr stream;
    /** Since when it flows without a gap. */
    int64_t sinceUs = 0;
    /** Of the demultiplexer (DemuxView), and what it is connected to. */
    uint64_t change = 0;
    QLX_Source connection = {};
    /** What decoding finds in it; null when the decoder cannot look. */
    std::shared_ptr<const EsUnits> index;

    uint32_t signalIndex = 0;
    SignalSource signal;
};

/** Choices of a program that concern the sound alone. */
struct AudioChoices {
    uint8_t prescaler = 128;
    uint32_t digitalMode = QLX_AUDIO_DIGITAL_MODE_STEREO;
    bool describes = false;
    uint32_t descriptionFormat = 0;
    uint32_t descriptionPid = 0;
    int64_t describesSinceUs = 0;
    int32_t ac4Language = -1;
    int32_t ac4Presentation = -1;
    int32_t ac4Description = -1;
};

/** A decoder from its start to its stop. */
struct DecoderRun {
    uint32_t format = 0;
    uint32_t pid = 0;
    int64_t startedUs = 0;
    bool startTold = false;
    /** When it was paused; 0: it is not. */
    int64_t pausedUs = 0;

    DecoderFeed feed;
    /** Data before that are not looked at for a first picture, for errors, for a new format. */
    int64_t fromUs = 0;
    int64_t errorsFromUs = 0;
    int64_t changesFromUs = 0;
    /** When the clock that the decoder follows comes; unknown until somebody needs it. */
    int64_t clockUs = unknown;

    /** There is a picture or sound: what it comes from, and the moment with which it began. */
    bool picture = false;
    DecoderFeed shown;
    UnitMoment first = {};
    /** When it was cut off and froze; 0: it goes on. */
    int64_t cutUs = 0;
    /** The first picture has been told since the start or the flush. */
    bool firstTold = false;
    bool synced = false;
    /** That the data do not decode has been told. */
    bool uselessTold = false;
    /** The last information event, and whether there was one. */
    bool infoTold = false;
    DecoderInfo info = {};

    CaptionRun captions;

    static constexpr int64_t unknown = -1;

    bool decoding() const {
        return picture && cutUs == 0;
    }
};

struct Decoder {
    uint32_t number = 0;
    bool open = false;
    DecoderSource source;
    DecoderCallback callback = nullptr;
    void* userData = nullptr;
    std::unique_ptr<DecoderRun> run;
    AudioChoices audio;
    CaptionChoices captions;
    bool syncSet = false;
    QLX_SyncParams sync = {};

    /** Told in this order. */
    std::deque<DecoderEvent> events;
    /** The job that counts; earlier ones that are still queued do nothing. */
    uint64_t turn = 0;
};

struct DecoderFamily;

/** What differs between the families. Event bits that one does not have are 0. */
struct DecoderKind {
    /** "Video"; "video" in traces, "VIDEO" in the board file. */
    const char* name;
    const char* argument;
    const char* section;
    const char* callbackName;
    /** Key of the board's section CAPABILITY: how many there are. */
    const char* countKey;
    int32_t invalidPara;
    size_t infoBytes;
    struct {
        uint32_t startDone;
        uint32_t decodeError;
        uint32_t stopDone;
        uint32_t frameReady;
        uint32_t infoChange;
        uint32_t syncDone;
        uint32_t syncLost;
    } events;
    /** A decoder without a source may be registered while decoder 0 serves the stream player. */
    bool registersPair;
    /** A flush is told as an end and a new beginning. */
    bool flushEndsInfo;
    DecoderInfo (*absent)();
    /** What the PID's data are in that format; null when nothing is known. */
    std::shared_ptr<const EsUnits> (*index)(const TsStreamPtr& stream, uint16_t pid,
                                            uint32_t format);
    DecoderInfo (*ofUnit)(const Decoder& decoder, const EsUnits& index, uint32_t unit);
    /** False when the signal has no picture or no sound. */
    bool (*ofSignal)(const Decoder& decoder, const SignalSource& signal, DecoderInfo* info);
    Value (*infoValue)(DecoderInfo* info);
    /** Null for decoders whose data bring no captions. */
    std::shared_ptr<const CaptionIndex> (*captions)(const TsStreamPtr& stream, uint16_t pid,
                                                    uint32_t format, const EsUnits& units);
};

struct DecoderFamily {
    explicit DecoderFamily(const DecoderKind& decoderKind);

    const DecoderKind& kind;
    std::mutex mutex;
    bool initialised = false;
    Decoder decoders[maxDecoders];
    EventThread* threads[maxDecoders];
    /** Bits of the decoders that run, for who tells them of changes. */
    std::atomic<uint32_t> running{0};
};

DecoderFamily& videoFamily();
DecoderFamily& audioFamily();

/* The calls that both families have, by the rules of decoder_state.cpp. */

int32_t decodersInit(DecoderFamily& family);
int32_t decodersDeInit(DecoderFamily& family);
int32_t decoderOpen(DecoderFamily& family, uint32_t number, const DecoderSource* source);
int32_t decoderClose(DecoderFamily& family, uint32_t number);
int32_t decoderRegister(DecoderFamily& family, uint32_t number, void* userData,
                        DecoderCallback callback);
int32_t decoderUnRegister(DecoderFamily& family, uint32_t number, DecoderCallback callback);
int32_t decoderStart(DecoderFamily& family, uint32_t number, uint32_t format, uint32_t pid);
int32_t decoderStop(DecoderFamily& family, uint32_t number);
int32_t decoderFlush(DecoderFamily& family, uint32_t number);
int32_t decoderPause(DecoderFamily& family, uint32_t number, bool paused);
int32_t decoderSetSync(DecoderFamily& family, uint32_t number, const QLX_SyncParams& params);
/** QLX_VideoState, which QLX_AudioState is like. Called with the family locked. */
uint32_t decoderState(const Decoder& decoder);
void resetDecoders(DecoderFamily& family);
void describeDecoders(DecoderFamily& family, std::string* out);

/** How many decoders the board has. */
uint32_t decoderCount(const DecoderKind& kind);

/** The refusal of a call that needs an open decoder, 0 when there is none. Called with the family
 *  locked, as all below. */
int32_t refusalOf(const DecoderFamily& family, uint32_t number);

/* Of the runs (decoder_run.cpp). */

/** Lets the decoder look again at what flows into it and at what is due. */
void wakeDecoder(DecoderFamily& family, Decoder& decoder);
/** Puts the last reports of a run into the queue and ends it. */
void endRun(const DecoderKind& kind, Decoder& decoder);
void flushRun(const DecoderKind& kind, Decoder& decoder);
void pauseRun(const DecoderKind& kind, Decoder& decoder, bool paused);
/** Something of what is told has another value by the program's choice. */
void refreshInfo(const DecoderKind& kind, Decoder& decoder);
/** The program has set another mode of synchronisation. */
void refreshSync(const DecoderKind& kind, Decoder& decoder);
/** The moment that is shown; none without coded data. */
std::optional<UnitMoment> shownMoment(const DecoderRun& run);
/** The clock of the stream in ticks of 90 kHz, 33 bits; 0 without one. */
uint64_t streamClock(const DecoderRun& run);
DecoderOrigin originOf(const DecoderRun& run);

/** Waits, without the lock, until what is in the queue has been told. */
void drainDecoder(DecoderFamily& family, Decoder& decoder);
/** Without the lock: no callback of the decoder's runs any more; its run goes on. */
void quietDecoder(DecoderFamily& family, Decoder& decoder);

/* Captions of the pictures that are shown (captions_run.cpp). */

/** What comes from now on begins anew. */
void cutCaptions(DecoderRun& run, int64_t now);
/** When the next captions are due; INT64_MAX without any. */
int64_t nextCaptionsUs(const Decoder& decoder, int64_t now);
/** Puts the next part of them into the queue. */
void takeCaptions(Decoder& decoder);
/** Hands captions to the program. On the decoder's thread, without the lock. */
void tellCaptions(const Decoder& decoder, CaptionReport& report);

/* Where data come from (decoder_source.cpp). */

/** Whether there are sources of that kind at all. */
bool isSourceKind(uint32_t kind);
bool sourceIsUp(const DecoderSource& source);
/** What of a source is given now. `before`: what was given when somebody last looked. */
DecoderFeed lookAtSource(const DecoderSource& source, const DecoderFeed& before, int64_t now);
/** Whether `now` goes on where `before` was, with nothing lost in between. */
bool feedGoesOn(const DecoderFeed& before, const DecoderFeed& now);
/** When the next clock reference on the PID has come; INT64_MAX when there is none. */
int64_t nextClockUs(const TsStream& stream, uint32_t pid, int64_t fromUs);
/** When the next packet of the PID has come; INT64_MAX when there is none. */
int64_t nextPacketUs(const TsStream& stream, uint32_t pid, int64_t fromUs);

}  // namespace sim

#endif

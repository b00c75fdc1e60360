// Analog front ends: four, each with a picture demodulator, a video decoder and a sound processor.
//
// A tuning returns at once, with both locks gone. After the time that acquisition takes the front
// end decides by what is on the air at that moment, and one event tells; without a signal it comes
// after the time that giving up takes. The signal status shows the decision before the event goes
// out. Later events come only when the outside world changes what is received. The sound processor
// needs longer than the picture, and works while the audio outputs have their clocks: then a second
// event tells that the mode of the sound is known, and further ones that it has changed.
//
// State rules: initialisation is a flag of each front end, and its end closes it. An open front end
// may be opened again, one that is not open cannot be closed. Unregistering is a success also when
// nothing is registered.
#include "platform/qlx_sif.h"
#include "platform/qlx_source.h"
#include "simulator/analog/afe_state.h"
#include "simulator/core/board.h"
#include "simulator/core/family.h"
#include "simulator/output/aout.h"
#include "simulator/world/air.h"
#include "simulator/world/signal_source.h"
#include "simulator/world/world.h"

namespace sim {

SIM_RECORD(QLX_AnalogTuningParams, SIM_MEMBER(QLX_AnalogTuningParams, Frequency),
           SIM_MEMBER(QLX_AnalogTuningParams, eTuneType),
           SIM_MEMBER(QLX_AnalogTuningParams, AudioStandard),
           SIM_MEMBER(QLX_AnalogTuningParams, ColorStandard))
SIM_RECORD(QLX_AnalogSignalStatus, SIM_MEMBER(QLX_AnalogSignalStatus, uReserved0),
           SIM_MEMBER(QLX_AnalogSignalStatus, TunedFrequency),
           SIM_MEMBER(QLX_AnalogSignalStatus, uReserved1),
           SIM_MEMBER(QLX_AnalogSignalStatus, bVideoDecoderLock),
           SIM_MEMBER(QLX_AnalogSignalStatus, bVifLock),
           SIM_MEMBER(QLX_AnalogSignalStatus, uReserved2),
           SIM_MEMBER(QLX_AnalogSignalStatus, eAFCDistance))

namespace {

/** Jobs of a front end have one of two owners: itself, for what it decides, and the callback's
 *  place, for what it tells the program. */
const void* tellsProgram(const Afe& afe) {
    return &afe.callback;
}

AnalogLock lockNow(const Afe& afe) {
    return decideAnalogLock(afe.record.Frequency,
                            cablePlugged(afe.id) ? stationsOnAir() : std::vector<Station>());
}

/** Channels of sound in an output mode. */
uint8_t channelsIn(uint32_t mode) {
    switch (mode) {
        case QLX_SND_OUT_MODE_MONO:
        case QLX_SND_OUT_MODE_BTSC_MONO:
        case QLX_SND_OUT_MODE_NICAM_MONO:
            return 1;
        default:
            return 2;
    }
}

/** Lets the program hear of an event. Called with the family locked. */
void tell(Afe& afe, int64_t delayMs, uint32_t event, uint32_t word) {
    if (afe.callback == nullptr)
        return;
    afe.events->post(tellsProgram(afe), delayMs, [&afe, event, word] {
        std::unique_lock<std::mutex> lock(afeFamily().mutex);
        QLX_AFECallback callback = afe.callback;
        void* userData = afe.userData;
        lock.unlock();
        if (callback == nullptr)
            return;
        uint32_t number = event;
        uint32_t data = word;
        deliver("AFEEvent", format("tuner=%u", afe.id),
                {value("event", &number), value("data", &data)},
                [&] { callback(afe.id, userData, number, &data); });
    });
}

/** The sound processor has had its time for a search. */
void soundFound(Afe& afe, uint32_t search) {
    std::lock_guard<std::mutex> lock(afeFamily().mutex);
    if (search != afe.soundSearch || !afe.lock.video || !audioOutputsRun())
        return;
    afe.soundKnown = true;
    tell(afe, 0, QLX_EVENT_ANALOG_MTS_CHANGED, soundModeOf(afe));
}

/** The sound is another: the processor begins anew. Called with the family locked. */
void searchSound(Afe& afe) {
    afe.soundKnown = false;
    const uint32_t search = ++afe.soundSearch;
    afe.events->post(&afe, board().number("AFE", "SOUND_MS"),
                     [&afe, search] { soundFound(afe, search); });
}

/** The locks are as they are from now on, and the program hears of it. Called with the family
 *  locked. */
void enterLock(Afe& afe, const AnalogLock& now) {
    afe.lock = now;
    afe.lockedAtMs = nowMs();
    publishAfe(afe);
    tell(afe, 0, QLX_EVENT_ANALOG_SIGNAL_LOCKED, now.video ? 1 : 0);
    searchSound(afe);
}

/** On the front end's thread, when acquisition (or, at last, giving up) is due. */
void decide(Afe& afe, bool last) {
    std::lock_guard<std::mutex> lock(afeFamily().mutex);
    AnalogLock now = lockNow(afe);
    if (!now.video && !last) {
        int64_t more = board().number("AFE", "UNLOCK_MS") - board().number("AFE", "LOCK_MS");
        afe.events->post(&afe, more > 0 ? more : 0, [&afe] { decide(afe, true); });
        return;
    }
    afe.acquiring = false;
    enterLock(afe, now);
}

/** After an event of the outside world: what is received may be another, and its sound. */
void airChanged() {
    AfeFamily& family = afeFamily();
    std::lock_guard<std::mutex> lock(family.mutex);
    for (Afe& afe : family.afes) {
        if (!afe.tuned || afe.acquiring)
            continue;
        AnalogLock before = afe.lock;
        AnalogLock now = lockNow(afe);
        if (now.video != before.video) {
            enterLock(afe, now);
            continue;
        }
        afe.lock = now;
        if (now.video && now.station.sound != before.station.sound) {
            afe.chosenMode = -1;
            searchSound(afe);
        }
        publishAfe(afe);
    }
}

const WorldListener onStation{stationPart, airChanged};
const WorldListener onCable{cablePart, airChanged};

/** Takes the front end from its channel. Called with the family locked; drops what was to come. */
void leaveChannel(std::unique_lock<std::mutex>& lock, Afe& afe) {
    afe.tuned = false;
    afe.acquiring = false;
    afe.lock = AnalogLock();
    afe.soundKnown = false;
    afe.forcedAudio = 0;
    afe.forcedColor = 0;
    afe.chosenMode = -1;
    // Jobs of the front end itself are short: waiting for one does not wait for the program.
    lock.unlock();
    afe.events->cancel(&afe);
    lock.lock();
    publishAfe(afe);
}

void closeAfe(std::unique_lock<std::mutex>& lock, Afe& afe) {
    afe.open = false;
    afe.record = {};
    afe.callback = nullptr;
    leaveChannel(lock, afe);
    lock.unlock();
    afe.events->cancel(tellsProgram(afe));
    lock.lock();
}

uint32_t inForce(uint32_t forced, uint32_t asked, uint32_t sent) {
    if (forced > QLX_ANALOG_AUDSTD_AUTO)
        return forced;
    return asked > QLX_ANALOG_AUDSTD_AUTO ? asked : sent;
}

void reset() {
    AfeFamily& family = afeFamily();
    std::unique_lock<std::mutex> lock(family.mutex);
    for (Afe& afe : family.afes) {
        closeAfe(lock, afe);
        afe.initialised = false;
    }
}

void describe(std::string* out) {
    AfeFamily& family = afeFamily();
    std::lock_guard<std::mutex> lock(family.mutex);
    for (const Afe& afe : family.afes) {
        if (afe.initialised)
            *out += format("AFE %u initialised\n", afe.id);
        if (afe.open)
            *out += format("AFE %u open\n", afe.id);
        if (afe.callback != nullptr)
            *out += format("AFE %u callback registered\n", afe.id);
        if (afe.tuned)
            *out += format("AFE %u tuned\n", afe.id);
    }
}

}  // namespace

AfeFamily& afeFamily() {
    static AfeFamily* instance = [] {
        static const char* const names[QLX_TUNER_MAX] = {"afe0", "afe1", "afe2", "afe3"};
        AfeFamily* family = new AfeFamily;
        for (uint32_t i = 0; i < QLX_TUNER_MAX; i++) {
            family->afes[i].id = i;
            family->afes[i].events = new EventThread(names[i]);
        }
        return family;
    }();
    return *instance;
}

int32_t afeRefusal(uint32_t id) {
    if (id >= QLX_TUNER_MAX)
        return QLX_AFE_ERR_INVALID_PARA;
    return afeFamily().afes[id].open ? QLX_SUCCESS : QLX_FAILED;
}

uint32_t audioStandardOf(const Afe& afe) {
    uint32_t sent = afe.lock.station.audio;
    if (afe.soundKnown)
        sent = soundSystemOf(afe.lock.station);
    return inForce(afe.forcedAudio, afe.record.AudioStandard, sent);
}

uint32_t colorStandardOf(const Afe& afe) {
    return inForce(afe.forcedColor, afe.record.ColorStandard, afe.lock.station.color);
}

uint32_t soundModeOf(const Afe& afe) {
    if (afe.chosenMode >= 0)
        return static_cast<uint32_t>(afe.chosenMode);
    return afe.lock.video ? afe.lock.station.sound : static_cast<uint32_t>(QLX_SND_OUT_MODE_MONO);
}

void publishAfe(const Afe& afe) {
    constexpr uint32_t of525Lines = QLX_ANALOG_CLRSTD_NTSC | QLX_ANALOG_CLRSTD_NTSC443 |
                                    QLX_ANALOG_CLRSTD_PAL_M | QLX_ANALOG_CLRSTD_PAL_60;
    SignalSource source;
    source.open = afe.open;
    source.locked = afe.lock.video;
    source.sinceMs = afe.lock.video ? afe.lockedAtMs : 0;
    if (afe.lock.video) {
        const Station& station = afe.lock.station;
        source.name =
            format("ATV %u.%02u MHz", station.frequency / 1000, station.frequency % 1000 / 10);
        source.picture = {720, 576, 25, 1, true, 4, 3};
        if ((station.color & of525Lines) != 0)
            source.picture = {720, 480, 30000, 1001, true, 4, 3};
        source.sound = {channelsIn(soundModeOf(afe)), 48000, station.toneHz};
    }
    setSignalSource(QLX_SOURCE_TYPE_TUNER, afe.id, source);
}

extern const Family familyAfe = {reset, describe};

}  // namespace sim

using sim::Afe;
using sim::afeFamily;
using sim::afeRefusal;

int32_t QLX_AFEInit(uint32_t eTunerId) {
    SIM_ENTRY("tuner=%d", static_cast<int>(eTunerId));
    std::lock_guard<std::mutex> lock(afeFamily().mutex);
    if (eTunerId >= QLX_TUNER_MAX)
        SIM_RETURN(QLX_AFE_ERR_INVALID_PARA);
    afeFamily().afes[eTunerId].initialised = true;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AFEDeInit(uint32_t eTunerId) {
    SIM_ENTRY("tuner=%d", static_cast<int>(eTunerId));
    std::unique_lock<std::mutex> lock(afeFamily().mutex);
    if (eTunerId >= QLX_TUNER_MAX)
        SIM_RETURN(QLX_AFE_ERR_INVALID_PARA);
    Afe& afe = afeFamily().afes[eTunerId];
    afe.initialised = false;
    if (afe.open)
        sim::closeAfe(lock, afe);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AFEOpen(uint32_t eTunerId) {
    SIM_ENTRY("tuner=%d", static_cast<int>(eTunerId));
    std::lock_guard<std::mutex> lock(afeFamily().mutex);
    if (eTunerId >= QLX_TUNER_MAX)
        SIM_RETURN(QLX_AFE_ERR_INVALID_PARA);
    Afe& afe = afeFamily().afes[eTunerId];
    if (!afe.initialised)
        SIM_RETURN(QLX_FAILED);
    afe.open = true;
    sim::publishAfe(afe);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AFEClose(uint32_t eTunerId) {
    SIM_ENTRY("tuner=%d", static_cast<int>(eTunerId));
    std::unique_lock<std::mutex> lock(afeFamily().mutex);
    if (int32_t refusal = afeRefusal(eTunerId))
        SIM_RETURN(refusal);
    sim::closeAfe(lock, afeFamily().afes[eTunerId]);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AFERegisterCallback(uint32_t eTunerId, void* pUserData, QLX_AFECallback callback) {
    SIM_ENTRY("tuner=%d userData=%s callback=%s", static_cast<int>(eTunerId),
              sim::showPointer(pUserData), sim::showPointer(callback));
    std::lock_guard<std::mutex> lock(afeFamily().mutex);
    if (callback == nullptr)
        SIM_RETURN(QLX_AFE_ERR_INVALID_PARA);
    if (int32_t refusal = afeRefusal(eTunerId))
        SIM_RETURN(refusal);
    afeFamily().afes[eTunerId].callback = callback;
    afeFamily().afes[eTunerId].userData = pUserData;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AFEUnRegisterCallback(uint32_t eTunerId, QLX_AFECallback callback) {
    SIM_ENTRY("tuner=%d callback=%s", static_cast<int>(eTunerId), sim::showPointer(callback));
    std::unique_lock<std::mutex> lock(afeFamily().mutex);
    if (int32_t refusal = afeRefusal(eTunerId))
        SIM_RETURN(refusal);
    Afe& afe = afeFamily().afes[eTunerId];
    if (afe.callback != nullptr && afe.callback != callback)
        SIM_RETURN(QLX_AFE_ERR_INVALID_PARA);
    afe.callback = nullptr;
    lock.unlock();
    afe.events->cancel(sim::tellsProgram(afe));
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AFESetTuningParam(uint32_t eTunerId, const QLX_AnalogTuningParams* pstTuningParams) {
    SIM_ENTRY("tuner=%d params=%s", static_cast<int>(eTunerId), sim::show(pstTuningParams).c_str());
    std::unique_lock<std::mutex> lock(afeFamily().mutex);
    if (int32_t refusal = afeRefusal(eTunerId))
        SIM_RETURN(refusal);
    if (pstTuningParams == nullptr || pstTuningParams->eTuneType > QLX_AFE_TUNE_TYPE_CHANNEL_SCAN)
        SIM_RETURN(QLX_AFE_ERR_INVALID_PARA);
    Afe& afe = afeFamily().afes[eTunerId];
    QLX_AnalogTuningParams record = *pstTuningParams;
    sim::leaveChannel(lock, afe);
    afe.record = record;
    afe.tuned = true;
    afe.acquiring = true;
    afe.events->post(&afe, sim::board().number("AFE", "LOCK_MS"),
                     [&afe] { sim::decide(afe, false); });
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AFEGetTuningParam(uint32_t eTunerId, QLX_AnalogTuningParams* pstTuningParams) {
    SIM_ENTRY("tuner=%d params=%s", static_cast<int>(eTunerId), sim::showPointer(pstTuningParams));
    std::lock_guard<std::mutex> lock(afeFamily().mutex);
    if (int32_t refusal = afeRefusal(eTunerId))
        SIM_RETURN(refusal);
    if (pstTuningParams == nullptr)
        SIM_RETURN(QLX_AFE_ERR_INVALID_PARA);
    const Afe& afe = afeFamily().afes[eTunerId];
    *pstTuningParams = afe.record;
    pstTuningParams->AudioStandard = sim::audioStandardOf(afe);
    pstTuningParams->ColorStandard = sim::colorStandardOf(afe);
    simCall.output({sim::value("params", pstTuningParams)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_AFEGetSignalStatus(uint32_t eTunerId, QLX_AnalogSignalStatus* pstSignalStatus) {
    SIM_ENTRY("tuner=%d status=%s", static_cast<int>(eTunerId), sim::showPointer(pstSignalStatus));
    std::lock_guard<std::mutex> lock(afeFamily().mutex);
    if (int32_t refusal = afeRefusal(eTunerId))
        SIM_RETURN(refusal);
    if (pstSignalStatus == nullptr)
        SIM_RETURN(QLX_AFE_ERR_INVALID_PARA);
    const Afe& afe = afeFamily().afes[eTunerId];
    *pstSignalStatus = {};
    pstSignalStatus->TunedFrequency = afe.record.Frequency;
    pstSignalStatus->bVideoDecoderLock = afe.lock.video ? QLX_TRUE : QLX_FALSE;
    pstSignalStatus->bVifLock = afe.lock.vif ? QLX_TRUE : QLX_FALSE;
    pstSignalStatus->eAFCDistance = afe.lock.afc;
    simCall.output({sim::value("status", pstSignalStatus)});
    SIM_RETURN(QLX_SUCCESS);
}

// Tuners: as many as the board has, each with the systems that the board gives it.
//
// A tuning returns at once. After the time that acquisition takes the demodulator decides, by what
// comes down the cable at that moment, and one event tells the program; after the time that giving
// up takes, when nothing has locked by then. The signal information shows the decision before the
// event goes out. Later events come only when the outside world, or the supply of the LNB, changes
// what is received.
//
// Cables and transmitters are those of simulator/world/air.cpp. Their changes have taken effect,
// their event included, when the call that read them goes on: an operator takes longer than a
// demodulator.
//
// State rules: initialisation is a flag, and its end closes everything. A tuner opens once; most
// calls need it open. The table is at tunerRefusal.
#include <cstring>
#include <string>

#include "simulator/core/board.h"
#include "simulator/core/family.h"
#include "simulator/tuner/reception.h"
#include "simulator/tuner/tuner_info.h"
#include "simulator/tuner/tuner_records.h"
#include "simulator/tuner/tuner_state.h"
#include "simulator/world/world.h"

namespace sim {

namespace {

/** How long a reader of the signal information waits for an event that is being delivered. */
constexpr std::chrono::milliseconds deliveryPatience(10);
/** How long an event of the outside world waits until the program has heard of it. */
constexpr std::chrono::milliseconds operatorPatience(200);
/** Physical layer time of ATSC 3.0 when the device is powered on: seconds of TAI. */
constexpr int64_t physicalTimeAtPowerOn = 1700000000;

uint32_t tunerCount() {
    int64_t count = board().number("TUNER", "COUNT");
    return count < 0 || count > maxTuners ? maxTuners : static_cast<uint32_t>(count);
}

/** Whether the board gives the tuner the system: key SYSTEMS of TUNERn, "DVB-T DVB-C"; all when
 *  there is none. */
bool receivesSystem(uint32_t id, uint32_t system) {
    std::string systems = board().text("TUNER" + std::to_string(id), "SYSTEMS");
    if (systems.empty())
        return true;
    systems = " " + systems + " ";
    return systems.find(std::string(" ") + nameOfSystem(system) + " ") != std::string::npos;
}

/** What the demodulator of the tuner would decide now. Called with the mutex held. */
Decision decideNow(const Tuner& tuner) {
    std::vector<TransmitterPtr> carriers = transmittersOnAir();
    Connector connector;
    connector.antenna = &tuner.antenna;
    connector.cableFrequency = tuner.cableFrequency;
    if (cablePlugged(tuner.id))
        connector.carriers = &carriers;
    return decideLock(tuner.record, connector);
}

/** Whether the demodulator listens to the wake-up bits alone. */
bool inEasMode(const Tuner& tuner) {
    return tuner.easMode && tuner.record.eTransmissionSystem == QLX_TRANSMISSION_SYSTEM_ATSC_T3;
}

/** The emission that demultiplexers get, null for none. */
TransmitterPtr deliveredBy(const Tuner& tuner) {
    return tuner.decision.locked() && !inEasMode(tuner) ? tuner.decision.carrier : nullptr;
}

/** On the tuner's thread: tells demultiplexers and program the decision, unless it is outdated. */
void announce(Tuner& tuner, uint64_t sequence) {
    TunerFamily& family = tunerFamily();
    std::unique_lock<std::mutex> lock(family.mutex);
    if (tuner.sequence != sequence)
        return;
    QLX_TunerCallback callback = tuner.callback;
    void* userData = tuner.userData;
    uint32_t status = tuner.decision.status;
    TransmitterPtr carrier = deliveredBy(tuner);
    uint64_t number = ++tuner.reception;
    tuner.delivering = true;
    lock.unlock();
    setReception(tuner.id, number, carrier);
    if (callback != nullptr) {
        deliver("TunerEvent", format("tuner=%u", tuner.id), {value("status", &status)},
                [&] { callback(tuner.id, userData, status, nullptr); });
    }
    lock.lock();
    tuner.delivering = false;
    family.changed.notify_all();
}

void enterDecision(Tuner& tuner, const Decision& decision) {
    tuner.decision = decision;
    tuner.lockedAtMs = nowMs();
}

/** On the tuner's thread, when acquisition (or, at last, giving up) is due. */
void decide(Tuner& tuner, uint64_t sequence, bool last) {
    {
        std::lock_guard<std::mutex> lock(tunerFamily().mutex);
        if (tuner.sequence != sequence)
            return;
        Decision decision = decideNow(tuner);
        if (!decision.locked() && !last) {
            int64_t lockMs = board().number("TUNER", "LOCK_MS");
            int64_t unlockMs = board().number("TUNER", "UNLOCK_MS");
            tuner.events->post(&tuner, unlockMs > lockMs ? unlockMs - lockMs : 0,
                               [&tuner, sequence] { decide(tuner, sequence, true); });
            return;
        }
        tuner.deciding = false;
        enterDecision(tuner, decision);
    }
    announce(tuner, sequence);
}

/** Waits until no callback of the tuner runs; one that calls this itself does not wait. */
void awaitDelivery(std::unique_lock<std::mutex>& lock, Tuner& tuner) {
    if (tuner.events == nullptr || tuner.events->isCurrent())
        return;
    tunerFamily().changed.wait(lock, [&] { return !tuner.delivering; });
}

void closeTuner(std::unique_lock<std::mutex>& lock, Tuner& tuner) {
    if (!tuner.open)
        return;
    stopScan(lock, tuner);
    tuner.callback = nullptr;
    uint64_t number = leaveCarrier(tuner);
    tuner.record = {};
    tuner.easMode = false;
    tuner.antenna = SatelliteAntenna();
    tuner.open = false;
    awaitDelivery(lock, tuner);
    lock.unlock();
    setReception(tuner.id, number, nullptr);
    lock.lock();
}

/** After the operator's event: all tuners look again, and the program hears of it. */
void airChanged() {
    TunerFamily& family = tunerFamily();
    std::unique_lock<std::mutex> lock(family.mutex);
    uint64_t announced[maxTuners] = {};
    for (Tuner& tuner : family.tuners) {
        if (reconsider(tuner) && !tuner.events->isCurrent())
            announced[tuner.id] = tuner.sequence;
    }
    for (Tuner& tuner : family.tuners) {
        if (announced[tuner.id] == 0)
            continue;
        // A job behind the event's tells that it has gone out.
        auto told = std::make_shared<bool>(false);
        tuner.events->post(&tuner, 0, [told] {
            std::lock_guard<std::mutex> jobLock(tunerFamily().mutex);
            *told = true;
            tunerFamily().changed.notify_all();
        });
        family.changed.wait_for(lock, operatorPatience, [&] { return *told; });
    }
}

const WorldListener onCable{cablePart, airChanged};
const WorldListener onAir{airPart, airChanged};

/** Sets supply, tone and user band as the record says. */
void steerAntenna(Tuner& tuner, Call& call) {
    tuner.cableFrequency = tuner.record.uFrequency;
    if (!satelliteSystem(tuner.record.eTransmissionSystem))
        return;
    const QLX_TunerTuningParamsDvbS& dvbS = tuner.record.stDvbS;
    SatelliteAntenna& antenna = tuner.antenna;
    if (dvbS.ePolarization != QLX_POLARIZATION_UNCHANGED || antenna.power() == QLX_LNB_POWER_OFF) {
        bool high = dvbS.ePolarization == QLX_POLARIZATION_HORIZONTAL;
        antenna.setPower(high ? QLX_LNB_POWER_18V : QLX_LNB_POWER_13V);
    }
    if (dvbS.eLnbToneState != QLX_LNB_TONE_STATE_UNCHANGED)
        antenna.setTone(dvbS.eLnbToneState == QLX_LNB_TONE_STATE_22KHZ);
    if (dvbS.eLnbTypeReal != QLX_LNB_TYPE_UNICABLE)
        return;
    uint32_t bank = (antenna.tone() ? 1u : 0u) | (antenna.power() == QLX_LNB_POWER_18V ? 2u : 0u);
    ChannelChange change = channelChangeMessage(
        dvbS.uUnicableChannelId, dvbS.uUnicableChannelFreqKHz, tuner.record.uFrequency, bank);
    antenna.setTone(false);
    antenna.setPower(QLX_LNB_POWER_18V);
    antenna.message(change.message, sizeof change.message);
    antenna.setPower(QLX_LNB_POWER_13V);
    tuner.cableFrequency = change.cableFrequency;
    const uint8_t* m = change.message;
    call.note(" odu=%02X %02X %02X %02X %02X", m[0], m[1], m[2], m[3], m[4]);
}

bool validRecord(uint32_t id, const QLX_TunerTuningParams* record) {
    if (record == nullptr || record->eTuningType != QLX_TUNER_TUNING_TYPE_DIGITAL ||
        !knownSystem(record->eTransmissionSystem) ||
        !receivesSystem(id, record->eTransmissionSystem))
        return false;
    return record->eTransmissionSystem != QLX_TRANSMISSION_SYSTEM_ATSC_T3 ||
           record->stAtscT3.uPlpNum <= sizeof record->stAtscT3.uPlpId;
}

SignalState signalState(const Tuner& tuner) {
    SignalState signal;
    signal.record = tuner.record;
    signal.decision = tuner.decision;
    signal.easMode = inEasMode(tuner);
    signal.tuned = tuner.tuned;
    signal.lockedForMs = nowMs() - tuner.lockedAtMs;
    signal.timeNs = physicalTimeAtPowerOn * 1000000000 + nowUs() * 1000;
    SatelliteAntenna::Source source = tuner.antenna.sourceOf(tuner.cableFrequency);
    signal.highBand = source.highBand;
    signal.horizontal = source.horizontal;
    return signal;
}

}  // namespace

TunerFamily& tunerFamily() {
    static TunerFamily* instance = [] {
        static const char* const eventNames[maxTuners] = {"tuner0", "tuner1", "tuner2", "tuner3",
                                                          "tuner4", "tuner5", "tuner6", "tuner7"};
        static const char* const scanNames[maxTuners] = {"scan0", "scan1", "scan2", "scan3",
                                                         "scan4", "scan5", "scan6", "scan7"};
        TunerFamily* family = new TunerFamily;
        for (uint32_t i = 0; i < maxTuners; i++) {
            family->tuners[i].id = i;
            family->tuners[i].events = new EventThread(eventNames[i]);
            family->tuners[i].scanner = new EventThread(scanNames[i]);
        }
        return family;
    }();
    return *instance;
}

uint64_t leaveCarrier(Tuner& tuner) {
    tuner.tuned = false;
    tuner.deciding = false;
    tuner.decision = Decision();
    tuner.sequence++;
    return ++tuner.reception;
}

int32_t tunerRefusal(TunerNeed need, uint32_t id) {
    // clang-format off
    struct Rule {
        TunerNeed need;
        bool tunerOfBoard;
        bool initialised;
        int open;  // 1 must be, 0 must not be, -1 either
    };
    static const Rule rules[] = {
        // need                    tuner of board  initialised  open
        {TunerNeed::initialised,   false,          true,        -1},
        {TunerNeed::closed,        true,           true,         0},
        {TunerNeed::open,          true,           true,         1},
    };
    // clang-format on
    const TunerFamily& family = tunerFamily();
    for (const Rule& rule : rules) {
        if (rule.need != need)
            continue;
        if (rule.tunerOfBoard && id >= tunerCount())
            return QLX_TUNER_ERR_INVALID_PARA;
        if (rule.initialised && !family.initialised)
            return QLX_FAILED;
        if (rule.open >= 0 && family.tuners[id].open != (rule.open == 1))
            return QLX_FAILED;
    }
    return QLX_SUCCESS;
}

bool reconsider(Tuner& tuner) {
    if (!tuner.open || !tuner.tuned || tuner.deciding)
        return false;
    Decision decision = decideNow(tuner);
    if (decision.status == tuner.decision.status) {
        tuner.decision = decision;
        return false;
    }
    enterDecision(tuner, decision);
    uint64_t sequence = ++tuner.sequence;
    tuner.events->post(&tuner, 0, [&tuner, sequence] { announce(tuner, sequence); });
    return true;
}

static void reset() {
    TunerFamily& family = tunerFamily();
    {
        std::unique_lock<std::mutex> lock(family.mutex);
        for (Tuner& tuner : family.tuners)
            closeTuner(lock, tuner);
        family.initialised = false;
    }
    resetReceptions();
}

static void describe(std::string* out) {
    TunerFamily& family = tunerFamily();
    std::lock_guard<std::mutex> lock(family.mutex);
    if (family.initialised)
        *out += "Tuner initialised\n";
    for (const Tuner& tuner : family.tuners) {
        if (!tuner.open)
            continue;
        *out += format("Tuner %u open\n", tuner.id);
        if (tuner.callback != nullptr)
            *out += format("Tuner %u callback registered\n", tuner.id);
        if (tuner.tuned)
            *out += format("Tuner %u tuned\n", tuner.id);
        if (tuner.scan.running)
            *out += format("Tuner %u blind scan running\n", tuner.id);
    }
}

extern const Family familyTuner = {reset, describe};

}  // namespace sim

using sim::Tuner;
using sim::tunerFamily;
using sim::TunerNeed;
using sim::tunerRefusal;

int32_t QLX_TunerInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::lock_guard<std::mutex> lock(tunerFamily().mutex);
    tunerFamily().initialised = true;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TunerDeInit(void) {
    SIM_ENTRY_NO_ARGUMENTS();
    std::unique_lock<std::mutex> lock(tunerFamily().mutex);
    for (Tuner& tuner : tunerFamily().tuners)
        sim::closeTuner(lock, tuner);
    tunerFamily().initialised = false;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TunerOpen(uint32_t eTunerId) {
    SIM_ENTRY("tuner=%u", eTunerId);
    std::lock_guard<std::mutex> lock(tunerFamily().mutex);
    if (int32_t refusal = tunerRefusal(TunerNeed::closed, eTunerId))
        SIM_RETURN(refusal);
    tunerFamily().tuners[eTunerId].open = true;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TunerClose(uint32_t eTunerId) {
    SIM_ENTRY("tuner=%u", eTunerId);
    std::unique_lock<std::mutex> lock(tunerFamily().mutex);
    if (int32_t refusal = tunerRefusal(TunerNeed::open, eTunerId))
        SIM_RETURN(refusal);
    sim::closeTuner(lock, tunerFamily().tuners[eTunerId]);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TunerRegisterCallback(uint32_t eTunerId, void* pUserData, QLX_TunerCallback callback) {
    SIM_ENTRY("tuner=%u userData=%s callback=%s", eTunerId, sim::showPointer(pUserData),
              sim::showPointer(callback));
    std::lock_guard<std::mutex> lock(tunerFamily().mutex);
    if (int32_t refusal = tunerRefusal(TunerNeed::open, eTunerId))
        SIM_RETURN(refusal);
    if (callback == nullptr)
        SIM_RETURN(QLX_TUNER_ERR_INVALID_PARA);
    tunerFamily().tuners[eTunerId].callback = callback;
    tunerFamily().tuners[eTunerId].userData = pUserData;
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TunerUnRegisterCallback(uint32_t eTunerId, QLX_TunerCallback callback) {
    SIM_ENTRY("tuner=%u callback=%s", eTunerId, sim::showPointer(callback));
    std::unique_lock<std::mutex> lock(tunerFamily().mutex);
    if (int32_t refusal = tunerRefusal(TunerNeed::open, eTunerId))
        SIM_RETURN(refusal);
    Tuner& tuner = tunerFamily().tuners[eTunerId];
    if (tuner.callback != nullptr && tuner.callback != callback)
        SIM_RETURN(QLX_TUNER_ERR_INVALID_PARA);
    tuner.callback = nullptr;
    sim::awaitDelivery(lock, tuner);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TunerSetTuningParam(uint32_t eTunerId, const QLX_TunerTuningParams* pstTuningParams) {
    SIM_ENTRY("tuner=%u params=%s", eTunerId, sim::show(pstTuningParams).c_str());
    std::unique_lock<std::mutex> lock(tunerFamily().mutex);
    if (int32_t refusal = tunerRefusal(TunerNeed::open, eTunerId))
        SIM_RETURN(refusal);
    if (!sim::validRecord(eTunerId, pstTuningParams))
        SIM_RETURN(QLX_TUNER_ERR_INVALID_PARA);
    Tuner& tuner = tunerFamily().tuners[eTunerId];
    if (tuner.scan.running)
        SIM_RETURN(QLX_FAILED);
    uint64_t lost = sim::leaveCarrier(tuner);
    tuner.record = *pstTuningParams;
    tuner.tuned = true;
    tuner.deciding = true;
    uint64_t sequence = tuner.sequence;
    sim::steerAntenna(tuner, simCall);
    tuner.events->post(&tuner, sim::board().number("TUNER", "LOCK_MS"),
                       [&tuner, sequence] { sim::decide(tuner, sequence, false); });
    lock.unlock();
    sim::setReception(eTunerId, lost, nullptr);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TunerGetTuningParam(uint32_t eTunerId, QLX_TunerTuningParams* pstTuningParams) {
    SIM_ENTRY("tuner=%u params=%s", eTunerId, sim::showPointer(pstTuningParams));
    std::lock_guard<std::mutex> lock(tunerFamily().mutex);
    if (int32_t refusal = tunerRefusal(TunerNeed::open, eTunerId))
        SIM_RETURN(refusal);
    if (pstTuningParams == nullptr)
        SIM_RETURN(QLX_TUNER_ERR_INVALID_PARA);
    *pstTuningParams = tunerFamily().tuners[eTunerId].record;
    simCall.output({sim::value("params", pstTuningParams)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TunerGetSignalInfo(uint32_t eTunerId, QLX_TunerSignalInfo* pstSignalInfo) {
    SIM_ENTRY("tuner=%u info=%s", eTunerId, sim::showPointer(pstSignalInfo));
    std::unique_lock<std::mutex> lock(tunerFamily().mutex);
    if (int32_t refusal = tunerRefusal(TunerNeed::open, eTunerId))
        SIM_RETURN(refusal);
    if (pstSignalInfo == nullptr)
        SIM_RETURN(QLX_TUNER_ERR_INVALID_PARA);
    // A program wakes up from within the callback; it shall not outrun the rest of it.
    Tuner& tuner = tunerFamily().tuners[eTunerId];
    if (!tuner.events->isCurrent())
        tunerFamily().changed.wait_for(lock, sim::deliveryPatience,
                                       [&] { return !tuner.delivering; });
    sim::fillSignalInfo(sim::signalState(tuner), pstSignalInfo);
    simCall.output({sim::value("info", pstSignalInfo)});
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TunerSetEasMode(uint32_t eTunerId, uint32_t bEnable) {
    SIM_ENTRY("tuner=%u enable=%u", eTunerId, bEnable);
    std::unique_lock<std::mutex> lock(tunerFamily().mutex);
    if (int32_t refusal = tunerRefusal(TunerNeed::open, eTunerId))
        SIM_RETURN(refusal);
    Tuner& tuner = tunerFamily().tuners[eTunerId];
    bool before = sim::inEasMode(tuner);
    tuner.easMode = bEnable != QLX_FALSE;
    if (sim::inEasMode(tuner) == before)
        SIM_RETURN(QLX_SUCCESS);
    sim::TransmitterPtr carrier = sim::deliveredBy(tuner);
    uint64_t number = ++tuner.reception;
    lock.unlock();
    sim::setReception(eTunerId, number, carrier);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TunerSetLnbPower(uint32_t eTunerId, uint32_t ePower) {
    SIM_ENTRY("tuner=%u power=%u", eTunerId, ePower);
    std::lock_guard<std::mutex> lock(tunerFamily().mutex);
    if (int32_t refusal = tunerRefusal(TunerNeed::open, eTunerId))
        SIM_RETURN(refusal);
    if (ePower != QLX_LNB_POWER_OFF && ePower != QLX_LNB_POWER_13V && ePower != QLX_LNB_POWER_18V)
        SIM_RETURN(QLX_TUNER_ERR_INVALID_PARA);
    Tuner& tuner = tunerFamily().tuners[eTunerId];
    tuner.antenna.setPower(ePower);
    sim::reconsider(tuner);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TunerSetTonburstState(uint32_t eTunerId, uint32_t eState) {
    SIM_ENTRY("tuner=%u state=%u", eTunerId, eState);
    std::lock_guard<std::mutex> lock(tunerFamily().mutex);
    if (int32_t refusal = tunerRefusal(TunerNeed::open, eTunerId))
        SIM_RETURN(refusal);
    if (eState != QLX_LNB_TONE_STATE_OFF && eState != QLX_LNB_TONE_STATE_22KHZ)
        SIM_RETURN(QLX_TUNER_ERR_INVALID_PARA);
    Tuner& tuner = tunerFamily().tuners[eTunerId];
    tuner.antenna.setTone(eState == QLX_LNB_TONE_STATE_22KHZ);
    sim::reconsider(tuner);
    SIM_RETURN(QLX_SUCCESS);
}

int32_t QLX_TunerSwitchTonburst(uint32_t eTunerId, uint32_t eBurst) {
    SIM_ENTRY("tuner=%u burst=%u", eTunerId, eBurst);
    std::lock_guard<std::mutex> lock(tunerFamily().mutex);
    if (int32_t refusal = tunerRefusal(TunerNeed::open, eTunerId))
        SIM_RETURN(refusal);
    if (eBurst != QLX_LNB_TONEBURST_A && eBurst != QLX_LNB_TONEBURST_B)
        SIM_RETURN(QLX_TUNER_ERR_INVALID_PARA);
    Tuner& tuner = tunerFamily().tuners[eTunerId];
    tuner.antenna.toneBurst(eBurst);
    sim::reconsider(tuner);
    SIM_RETURN(QLX_SUCCESS);
}

/** Bytes of a DiSEqC message with all its data. */
constexpr uint32_t longestDiseqc = 6;

int32_t QLX_TunerSendDiseqcCommand(uint32_t eTunerId, uint32_t uSendLength,
                                   const uint8_t* puSendBuffer, uint32_t uReceiveMaxLength,
                                   uint8_t* puReceiveBuffer, uint32_t* puReceiveLength) {
    SIM_ENTRY("tuner=%u length=%u message=%s room=%u reply=%s replyLength=%s", eTunerId,
              uSendLength, sim::showBytes(puSendBuffer, uSendLength, longestDiseqc).c_str(),
              uReceiveMaxLength, sim::showPointer(puReceiveBuffer),
              sim::showPointer(puReceiveLength));
    std::lock_guard<std::mutex> lock(tunerFamily().mutex);
    if (int32_t refusal = tunerRefusal(TunerNeed::open, eTunerId))
        SIM_RETURN(refusal);
    if (puSendBuffer == nullptr || uSendLength < 3 || uSendLength > longestDiseqc ||
        (uReceiveMaxLength > 0 && (puReceiveBuffer == nullptr || puReceiveLength == nullptr)))
        SIM_RETURN(QLX_TUNER_ERR_INVALID_PARA);
    Tuner& tuner = tunerFamily().tuners[eTunerId];
    std::vector<uint8_t> reply = tuner.antenna.message(puSendBuffer, uSendLength);
    uint32_t length = 0;
    for (; length < uReceiveMaxLength && length < reply.size(); length++)
        puReceiveBuffer[length] = reply[length];
    if (puReceiveLength != nullptr)
        *puReceiveLength = length;
    simCall.output({sim::bytesValue("reply", length > 0 ? puReceiveBuffer : nullptr, length),
                    sim::marked("length", puReceiveLength)});
    sim::reconsider(tuner);
    SIM_RETURN(QLX_SUCCESS);
}

// The rules by which a demodulator locks, one row a system.
#include "simulator/tuner/tuner_lock.h"

#include <cstdlib>

#include "simulator/tuner/tuner_curves.h"

namespace sim {

namespace {

struct LockRule {
    uint32_t system;
    /** Systems of carriers that a demodulator set to it recognises. */
    uint32_t receives;
    /** Systems whose carriers come down the same cable; each network has one of its own. */
    uint32_t network;
    /** How far a carrier may lie from the tuned frequency, in kHz, in a search and for an exact
     *  request (QLX_TUNER_TUNE_OPTION_OFF_NOMINAL). */
    int64_t searchRange;
    int64_t exactRange;
    /** What must be told right; what a system signals in its own carrier need not be. */
    bool modulation;
    bool symbolRate;
    bool bandWidth;
};

// clang-format off
const LockRule lockRules[] = {
    // system                         receives network search exact modulation symbols width
    {QLX_TRANSMISSION_SYSTEM_DVB_T,   1 | 2, 1 | 2,       500,  250, false, false, true},
    {QLX_TRANSMISSION_SYSTEM_DVB_T2,  2,     1 | 2,       500,  250, false, false, true},
    {QLX_TRANSMISSION_SYSTEM_DVB_S,   4 | 8, 4 | 8,      5000, 5000, true,  true,  false},
    {QLX_TRANSMISSION_SYSTEM_DVB_S2,  8,     4 | 8,      5000, 5000, true,  true,  false},
    {QLX_TRANSMISSION_SYSTEM_DVB_C,   16,    16 | 32,     500,  250, true,  true,  false},
    {QLX_TRANSMISSION_SYSTEM_DVB_C2,  32,    16 | 32,     500,  250, false, false, false},
    {QLX_TRANSMISSION_SYSTEM_ATSC_T,  64,    64 | 2048,   500,  250, true,  false, false},
    {QLX_TRANSMISSION_SYSTEM_ATSC_C,  128,   128,         500,  250, true,  false, false},
    {QLX_TRANSMISSION_SYSTEM_ISDB_T,  256,   256,         500,  250, false, false, true},
    {QLX_TRANSMISSION_SYSTEM_ISDB_S,  512,   512 | 1024, 5000, 5000, false, false, false},
    {QLX_TRANSMISSION_SYSTEM_ISDB_S3, 1024,  512 | 1024, 5000, 5000, false, false, false},
    {QLX_TRANSMISSION_SYSTEM_ATSC_T3, 2048,  64 | 2048,   500,  250, false, false, true},
};
// clang-format on

/** What a satellite demodulator pulls in without a search, in kHz (bKnownOffset). */
constexpr int64_t knownOffsetRange = 500;

/** Half a channel: how far a carrier may lie off and still be what the tuner measures. */
constexpr int64_t presenceRange = 3000;
constexpr int64_t satellitePresenceRange = 15000;

/** Symbol timing follows a rate that is told within two hundredths. */
constexpr int64_t symbolRateTolerance = 50;

const LockRule* ruleOf(uint32_t system) {
    for (const LockRule& rule : lockRules) {
        if (rule.system == system)
            return &rule;
    }
    return nullptr;
}

/** Systems that a carrier is recognised as: DVB-S2 is DVB-S with another FEC. */
uint32_t recognisedAs(const Transmitter& t) {
    if (t.system == QLX_TRANSMISSION_SYSTEM_DVB_S && t.fecType == QLX_FEC_TYPE_DVB_S2)
        return QLX_TRANSMISSION_SYSTEM_DVB_S2;
    return t.system;
}

/** How far from the tuned frequency the demodulator takes a carrier, in kHz. */
int64_t captureRange(const LockRule& rule, const QLX_TunerTuningParams& record) {
    if (satelliteSystem(rule.system) && record.stDvbS.bKnownOffset)
        return knownOffsetRange;
    bool exact = record.uTuneOption == QLX_TUNER_TUNE_OPTION_OFF_NOMINAL;
    return exact ? rule.exactRange : rule.searchRange;
}

/** Distance of the carrier from the tuned frequency; false when the antenna does not give it. */
bool offsetOf(const QLX_TunerTuningParams& record, const SatelliteAntenna::Source& source,
              const Transmitter& t, int64_t* offset) {
    if (!satelliteSystem(record.eTransmissionSystem)) {
        *offset = static_cast<int64_t>(record.uFrequency) - t.frequency;
        return true;
    }
    *offset = source.frequency - t.frequency;
    return satelliteSystem(t.system) && comesFrom(source, t);
}

bool oneOf(uint32_t requested, uint32_t transmitted) {
    return requested == 0 || transmitted == 0 || requested == transmitted;
}

bool symbolRateFits(const QLX_TunerTuningParams& record, const Transmitter& t) {
    if (satelliteSystem(record.eTransmissionSystem) && !record.stDvbS.bKnownSymbolRate)
        return true;
    int64_t difference = static_cast<int64_t>(record.uSymbolRate) - t.symbolRate;
    return std::llabs(difference) * symbolRateTolerance <= t.symbolRate;
}

/** A satellite demodulator that has to find the symbol rate finds modulation and FEC as well. */
bool modulationFits(const QLX_TunerTuningParams& record, const Transmitter& t) {
    if (!satelliteSystem(record.eTransmissionSystem))
        return oneOf(record.eModulation, t.modulation);
    if (!record.stDvbS.bKnownSymbolRate)
        return true;
    return oneOf(record.eModulation, t.modulation) && oneOf(record.stDvbS.eFecType, t.fecType);
}

uint32_t bandWidthOf(const QLX_TunerTuningParams& record) {
    switch (record.eTransmissionSystem) {
        case QLX_TRANSMISSION_SYSTEM_DVB_T:
        case QLX_TRANSMISSION_SYSTEM_DVB_T2:
            return record.stDvbT.eBandWidth;
        case QLX_TRANSMISSION_SYSTEM_ISDB_T:
            return record.stIsdbT.eBandWidth;
        case QLX_TRANSMISSION_SYSTEM_ATSC_T3:
            return record.stAtscT3.eBandWidth;
        default:
            return QLX_BANDWIDTH_AUTO;
    }
}

bool streamFits(const QLX_TunerTuningParams& record, const Transmitter& t) {
    switch (record.eTransmissionSystem) {
        case QLX_TRANSMISSION_SYSTEM_DVB_T2:
            return t.pipes.empty() || findPipe(t, record.stDvbT.uPlpId) != nullptr;
        case QLX_TRANSMISSION_SYSTEM_ISDB_S:
            return record.stIsdbS.uTsId == t.tsId;
        case QLX_TRANSMISSION_SYSTEM_ISDB_S3:
            return record.stIsdbS3.uStreamId == t.streamId;
        default:
            return true;
    }
}

/** The status of a demodulator that has locked, by the pipes that it shall deliver. */
uint32_t lockedStatus(const QLX_TunerTuningParams& record, const Transmitter& t) {
    if (record.eTransmissionSystem != QLX_TRANSMISSION_SYSTEM_ATSC_T3 ||
        record.stAtscT3.uPlpNum == 0)
        return QLX_TUNER_STATUS_LOCKED;
    for (uint32_t i = 0; i < record.stAtscT3.uPlpNum && i < 4; i++) {
        if (findPipe(t, record.stAtscT3.uPlpId[i]) == nullptr)
            return QLX_TUNER_STATUS_UNLOCKED;
    }
    return QLX_TUNER_STATUS_PLP_LOCKED;
}

}  // namespace

bool knownSystem(uint32_t system) {
    return ruleOf(system) != nullptr;
}

bool satelliteSystem(uint32_t system) {
    return system == QLX_TRANSMISSION_SYSTEM_DVB_S || system == QLX_TRANSMISSION_SYSTEM_DVB_S2;
}

bool comesFrom(const SatelliteAntenna::Source& source, const Transmitter& t) {
    return source.powered && source.horizontal == t.horizontal && source.highBand == t.highBand &&
           source.position == t.position;
}

const Pipe* findPipe(const Transmitter& transmitter, uint8_t id) {
    for (const Pipe& pipe : transmitter.pipes) {
        if (pipe.id == id)
            return &pipe;
    }
    return nullptr;
}

Decision decideLock(const QLX_TunerTuningParams& record, const Connector& connector) {
    Decision decision;
    const LockRule* rule = ruleOf(record.eTransmissionSystem);
    if (rule == nullptr || connector.carriers == nullptr)
        return decision;
    int64_t capture = captureRange(*rule, record);
    int64_t presence = satelliteSystem(rule->system) ? satellitePresenceRange : presenceRange;
    SatelliteAntenna::Source source = connector.antenna->sourceOf(connector.cableFrequency);
    for (const TransmitterPtr& carrier : *connector.carriers) {
        const Transmitter& t = *carrier;
        int64_t offset;
        if ((t.system & rule->network) == 0)
            continue;
        if (!offsetOf(record, source, t, &offset) || std::llabs(offset) > presence)
            continue;
        bool known = (recognisedAs(t) & rule->receives) != 0;
        // A carrier of another kind may share the frequency: it is only what the tuner measures
        // when nothing better is there.
        if (!known && decision.carrier != nullptr)
            continue;
        decision.carrier = carrier;
        decision.offset = static_cast<int32_t>(offset);
        bool fits = known && std::llabs(offset) <= capture && carrierHolds(t) &&
                    (!rule->modulation || modulationFits(record, t)) &&
                    (!rule->symbolRate || symbolRateFits(record, t)) &&
                    (!rule->bandWidth || oneOf(bandWidthOf(record), t.bandWidth)) &&
                    streamFits(record, t);
        if (!fits)
            continue;
        decision.status = lockedStatus(record, t);
        return decision;
    }
    return decision;
}

}  // namespace sim

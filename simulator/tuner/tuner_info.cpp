// The signal information of a tuner, member by member.
#include "simulator/tuner/tuner_info.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "simulator/tuner/tuner_curves.h"

namespace sim {

namespace {

/** Errors of a million bits, before and after the inner code, by the quality in percent. */
uint32_t channelErrors(int32_t quality) {
    return static_cast<uint32_t>((100 - quality) * (100 - quality) * 2);
}

uint32_t remainingErrors(int32_t quality) {
    return quality >= 25 ? 0 : static_cast<uint32_t>((25 - quality) * (25 - quality));
}

void fillSatellite(const SignalState& state, const Transmitter& t, QLX_TunerSatelliteInfo* info) {
    bool secondGeneration = t.fecType == QLX_FEC_TYPE_DVB_S2;
    info->ePolarization =
        state.horizontal ? QLX_POLARIZATION_HORIZONTAL : QLX_POLARIZATION_VERTICAL;
    info->eLnbToneState = state.highBand ? QLX_LNB_TONE_STATE_22KHZ : QLX_LNB_TONE_STATE_OFF;
    info->eFecType = t.fecType;
    info->eFecRates = t.fecRate;
    info->eDownlinkRfBand = state.highBand ? QLX_RF_BAND_HIGH : QLX_RF_BAND_LOW;
    info->eRolloffFactor = secondGeneration ? 25 : 35;
    info->bPilotsPresent = secondGeneration;
    info->uPacketErrorRate = remainingErrors(signalQuality(t)) * 10;
    info->iFrequencyOffset = state.decision.offset;
}

void fillTerrestrial(const SignalState& state, const Transmitter& t,
                     QLX_TunerTerrestrialInfo* info) {
    info->eGuardInterval = t.guardInterval;
    info->eTransmissionMode = t.transmissionMode;
    info->eChannelBandwidth = t.bandWidth;
    info->iResidualOffset = -state.decision.offset * 1000;
    if (t.system == QLX_TRANSMISSION_SYSTEM_DVB_T) {
        info->stDvbT.eHierarchy = t.hierarchy;
        info->stDvbT.ePriority = t.priority;
        info->stDvbT.eHighPriorityFecRate = t.fecRate;
        info->stDvbT.eLowPriorityFecRate = t.fecRate;
        info->stDvbT.uCellIdentifier = t.cellId;
        return;
    }
    QLX_TunerDvbT2Info& t2 = info->stDvbT2;
    t2.uPlpNum = static_cast<uint32_t>(std::min<size_t>(t.pipes.size(), sizeof t2.uPlpIds));
    for (uint32_t i = 0; i < t2.uPlpNum; i++)
        t2.uPlpIds[i] = t.pipes[i].id;
    t2.eFecRate = t.fecRate;
    t2.eT1Modulation = t.modulation;
    t2.uNetworkIdentifier = t.networkId;
    t2.uT2SystemIdentifier = t.systemId;
    t2.uCellIdentifier = t.cellId;
    // S1 000: a T2 preamble without other systems in the superframe (EN 302 755, 7.2.1).
    t2.uS1Signalling = 0;
    t2.eL1PrePilotPattern = 6;
    t2.uOfdmSymbolsPerFrame = 59;
}

void fillCable2(const Transmitter& t, QLX_TunerDvbC2Info* info) {
    info->uPipeIdentifier = t.pipes.empty() ? 0 : t.pipes[0].id;
    info->uNumberOfPipes = static_cast<uint8_t>(std::min<size_t>(t.pipes.size(), 255));
    info->uNumberOfSliceIdentifiers = 1;
    info->eChannelBandwidth = t.bandWidth;
    info->eFecRates = t.fecRate;
    info->eGuardInterval = t.guardInterval;
}

/** The signalling of the bootstrap, L1-Basic and L1-Detail (A/321, A/322). */
void fillAtsc3(const SignalState& state, const Transmitter& t, QLX_TunerAtscT3Info* info) {
    info->uEaWakeUp = static_cast<uint8_t>(t.wakeUpBits);
    // They are in the bootstrap, and nothing behind that is decoded.
    if (state.easMode)
        return;
    info->bLlsInThisRf = 1;
    info->uL1DetailBsid = static_cast<uint16_t>(t.systemId);
    size_t room = sizeof info->stL1DetailPlp / sizeof info->stL1DetailPlp[0];
    info->uL1DetailPlpNum = static_cast<uint8_t>(std::min(t.pipes.size(), room));
    for (uint32_t i = 0; i < info->uL1DetailPlpNum; i++) {
        info->stL1DetailPlp[i].uPlpId = t.pipes[i].id;
        info->stL1DetailPlp[i].bLlsFlag = i == 0;
    }
    info->TimeInfo = 3;  // The time is told to the nanosecond.
    info->Sec = static_cast<uint32_t>(state.timeNs / 1000000000);
    info->Msec = static_cast<uint32_t>(state.timeNs / 1000000 % 1000);
    info->Usec = static_cast<uint32_t>(state.timeNs / 1000 % 1000);
    info->Nsec = static_cast<uint32_t>(state.timeNs % 1000);
    const QLX_TunerTuningParamsAtscT3& asked = state.record.stAtscT3;
    info->bAllPlpsLocked = asked.uPlpNum != 0;
    for (uint32_t i = 0; i < std::min<uint32_t>(asked.uPlpNum, 4); i++) {
        const Pipe* pipe = findPipe(t, asked.uPlpId[i]);
        QLX_TunerPlpInfo& out = info->stLockedPlp[info->uLockedPlpNum++];
        out.uPlpId = asked.uPlpId[i];
        out.bLocked = pipe != nullptr;
        out.eModulation = pipe != nullptr ? pipe->modulation : 0;
        if (pipe == nullptr)
            info->bAllPlpsLocked = 0;
    }
}

uint32_t receivedModulation(const SignalState& state, const Transmitter& t) {
    if (t.system != QLX_TRANSMISSION_SYSTEM_DVB_T2)
        return t.modulation;
    const Pipe* pipe = findPipe(t, state.record.stDvbT.uPlpId);
    if (pipe == nullptr && !t.pipes.empty())
        pipe = &t.pipes[0];
    return pipe != nullptr && pipe->modulation != 0 ? pipe->modulation : t.modulation;
}

/** What the demodulator tells of the carrier that it is locked to. */
void fillLocked(const SignalState& state, const Transmitter& t, QLX_TunerDigitalInfo* digital) {
    digital->eModulation = receivedModulation(state, t);
    digital->uSymbolRate = t.symbolRate;
    digital->eSpectrum = t.spectrum;
    digital->uChannelBitErrorRate = channelErrors(digital->sSignalQuality);
    digital->uBitErrorRate = remainingErrors(digital->sSignalQuality);
    digital->uPacketErrorCounter =
        static_cast<uint32_t>(digital->uBitErrorRate * state.lockedForMs / 1000);
    if (satelliteSystem(t.system))
        fillSatellite(state, t, &digital->stDvbSatellite);
    else if (t.system == QLX_TRANSMISSION_SYSTEM_DVB_T ||
             t.system == QLX_TRANSMISSION_SYSTEM_DVB_T2)
        fillTerrestrial(state, t, &digital->stDvbTerrestrial);
    else if (t.system == QLX_TRANSMISSION_SYSTEM_DVB_C2)
        fillCable2(t, &digital->stDvbC2);
    else if (t.system == QLX_TRANSMISSION_SYSTEM_ATSC_T3)
        fillAtsc3(state, t, &digital->stAtscT3);
}

/** Information about a system that was asked for tells that system, also when it is of two
 *  generations; only a terrestrial receiver reports the generation that it found. */
uint32_t reportedSystem(const SignalState& state, const Transmitter& t) {
    uint32_t asked = state.record.eTransmissionSystem;
    return satelliteSystem(asked) ? asked : t.system;
}

}  // namespace

void fillSignalInfo(const SignalState& state, QLX_TunerSignalInfo* info) {
    memset(info, 0, sizeof *info);
    info->eLockStatus = state.decision.status;
    info->eTuningType = state.record.eTuningType;
    info->uTunedFrequency = state.record.uFrequency;
    QLX_TunerDigitalInfo& digital = info->stDigital;
    digital.eTransmissionSystem = state.record.eTransmissionSystem;
    if (!state.tuned || state.decision.carrier == nullptr)
        return;
    const Transmitter& t = *state.decision.carrier;
    info->uSignalPresent = 1;
    info->uSignalStrength = signalStrength(t);
    info->iRfLevel = static_cast<int32_t>(std::lround(t.levelDbm));
    digital.iRfLevel = info->iRfLevel;
    if (!state.decision.locked())
        return;
    info->sSignalQuality = signalQuality(t);
    digital.sSignalQuality = info->sSignalQuality;
    info->uCarrierToNoise = static_cast<uint32_t>(std::lround(carrierToNoise(t)));
    digital.eTransmissionSystem = reportedSystem(state, t);
    fillLocked(state, t, &digital);
}

}  // namespace sim

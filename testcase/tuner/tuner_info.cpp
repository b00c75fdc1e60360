// The dump of a tuner's signal information: tables of what to print, in the order of the record,
// and the lists of pipes. The labels are those that racks search for, spelling included.
#include <stddef.h>
#include <string.h>

#include "framework/case/check.h"
#include "testcase/tuner/tuner_harness.h"

/** A member of the information record, and the words that it is printed under. */
struct InfoField {
    const char* label;
    size_t offset;
    size_t size;
};

#define INFO_FIELD(label, member)                                      \
    {                                                                  \
        label, offsetof(QLX_TunerSignalInfo, member),                  \
            sizeof(static_cast<QLX_TunerSignalInfo*>(nullptr)->member) \
    }
#define SATELLITE(member) stDigital.stDvbSatellite.member
#define TERRESTRIAL(member) stDigital.stDvbTerrestrial.member
#define DVB_T(member) stDigital.stDvbTerrestrial.stDvbT.member
#define DVB_T2(member) stDigital.stDvbTerrestrial.stDvbT2.member
#define DVB_C2(member) stDigital.stDvbC2.member
#define ATSC_T3(member) stDigital.stAtscT3.member

// clang-format off
static const InfoField commonFields[] = {
    INFO_FIELD("type", eTuningType),
    INFO_FIELD("signal present", uSignalPresent),
    INFO_FIELD("signal strength", uSignalStrength),
    INFO_FIELD("signal quality", sSignalQuality),
    INFO_FIELD("tuned frequency", uTunedFrequency),
    INFO_FIELD("RF level", iRfLevel),
    INFO_FIELD("carrier to noise", uCarrierToNoise),
    INFO_FIELD("single shot", uSingleShot),
    INFO_FIELD("lock status", eLockStatus),
    INFO_FIELD("modulation", stDigital.eModulation),
    INFO_FIELD("symbol rate", stDigital.uSymbolRate),
    INFO_FIELD("spectrum", stDigital.eSpectrum),
    INFO_FIELD("signal quality", stDigital.sSignalQuality),
    INFO_FIELD("channel bit error rate", stDigital.uChannelBitErrorRate),
    INFO_FIELD("bit error rate", stDigital.uBitErrorRate),
    INFO_FIELD("RF level", stDigital.iRfLevel),
    INFO_FIELD("transmission system", stDigital.eTransmissionSystem),
    INFO_FIELD("packet error counter", stDigital.uPacketErrorCounter),
};

static const InfoField satelliteFields[] = {
    INFO_FIELD("polarization", SATELLITE(ePolarization)),
    INFO_FIELD("LNB tone state", SATELLITE(eLnbToneState)),
    INFO_FIELD("FEC type", SATELLITE(eFecType)),
    INFO_FIELD("FEC rates", SATELLITE(eFecRates)),
    INFO_FIELD("downlink RF band", SATELLITE(eDownlinkRfBand)),
    INFO_FIELD("rolloff factor", SATELLITE(eRolloffFactor)),
    INFO_FIELD("frame lenth", SATELLITE(eFrameLength)),
    INFO_FIELD("pilots present", SATELLITE(bPilotsPresent)),
    INFO_FIELD("packet error rate", SATELLITE(uPacketErrorRate)),
    INFO_FIELD("frequency offset", SATELLITE(iFrequencyOffset)),
};

static const InfoField terrestrialFields[] = {
    INFO_FIELD("guard interval", TERRESTRIAL(eGuardInterval)),
    INFO_FIELD("transmission mode", TERRESTRIAL(eTransmissionMode)),
    INFO_FIELD("channel bandwidth", TERRESTRIAL(eChannelBandwidth)),
    INFO_FIELD("residual offset", TERRESTRIAL(iResidualOffset)),
};

static const InfoField dvbTFields[] = {
    INFO_FIELD("hierarchy", DVB_T(eHierarchy)),
    INFO_FIELD("priority", DVB_T(ePriority)),
    INFO_FIELD("high priority FEC rate", DVB_T(eHighPriorityFecRate)),
    INFO_FIELD("low priority FEC rate", DVB_T(eLowPriorityFecRate)),
    INFO_FIELD("cell identifier", DVB_T(uCellIdentifier)),
};

static const InfoField dvbT2Fields[] = {
    INFO_FIELD("PLP number", DVB_T2(uPlpNum)),
    INFO_FIELD("FEC rate", DVB_T2(eFecRate)),
    INFO_FIELD("T1 modulation", DVB_T2(eT1Modulation)),
    INFO_FIELD("network identifier", DVB_T2(uNetworkIdentifier)),
    INFO_FIELD("T2 system identifier", DVB_T2(uT2SystemIdentifier)),
    INFO_FIELD("cell identifier", DVB_T2(uCellIdentifier)),
    INFO_FIELD("preamble mixed", DVB_T2(bPreambleMixed)),
    INFO_FIELD("S1 signalling", DVB_T2(uS1Signalling)),
    INFO_FIELD("L1 pre-pilot pattern", DVB_T2(eL1PrePilotPattern)),
    INFO_FIELD("L1 pre peak-to-average power ratio", DVB_T2(eL1PrePeakToAveragePowerRatio)),
    INFO_FIELD("bandwidth extension", DVB_T2(bBandwidthExtension)),
    INFO_FIELD("OFDM symbols per frame", DVB_T2(uOfdmSymbolsPerFrame)),
    INFO_FIELD("high efficiency mode", DVB_T2(bHighEfficiencyMode)),
};

static const InfoField dvbC2Fields[] = {
    INFO_FIELD("pipe type", DVB_C2(ePipeType)),
    INFO_FIELD("rotated constellation", DVB_C2(bRotatedConstellation)),
    INFO_FIELD("pipe identifier", DVB_C2(uPipeIdentifier)),
    INFO_FIELD("number of pipes", DVB_C2(uNumberOfPipes)),
    INFO_FIELD("slice identifier", DVB_C2(uSliceIdentifier)),
    INFO_FIELD("number of slice identifiers", DVB_C2(uNumberOfSliceIdentifiers)),
    INFO_FIELD("slice type", DVB_C2(eSliceType)),
    INFO_FIELD("channel bandwidth", DVB_C2(eChannelBandwidth)),
    INFO_FIELD("FEC rates", DVB_C2(eFecRates)),
    INFO_FIELD("guard interval", DVB_C2(eGuardInterval)),
};

static const InfoField atscT3BasicFields[] = {
    INFO_FIELD("EA wake up", ATSC_T3(uEaWakeUp)),
    INFO_FIELD("L1Basic LLS in this RF", ATSC_T3(bLlsInThisRf)),
    INFO_FIELD("L1Basic Return channel in this RF", ATSC_T3(bReturnChannelInThisRf)),
    INFO_FIELD("L1Details BSID", ATSC_T3(uL1DetailBsid)),
    INFO_FIELD("L1Details PLP number", ATSC_T3(uL1DetailPlpNum)),
};

static const InfoField atscT3DetailFields[] = {
    INFO_FIELD("L1Details TimeInfo", ATSC_T3(TimeInfo)),
    INFO_FIELD("L1Details Sec", ATSC_T3(Sec)),
    INFO_FIELD("L1Details Msec", ATSC_T3(Msec)),
    INFO_FIELD("L1Details Usec", ATSC_T3(Usec)),
    INFO_FIELD("L1Details Nsec", ATSC_T3(Nsec)),
    INFO_FIELD("L1Details bonded RF number", ATSC_T3(uNumBondedRf)),
    INFO_FIELD("L1Details bonend BSID", ATSC_T3(uBondedBsid)),
    INFO_FIELD("locked PLP number", ATSC_T3(uLockedPlpNum)),
};
// clang-format on

template <typename Number>
static int numberAt(const uint8_t* bytes) {
    Number number;
    memcpy(&number, bytes, sizeof number);
    return static_cast<int>(number);
}

static int valueOf(const QLX_TunerSignalInfo& info, const InfoField& field) {
    const uint8_t* bytes = reinterpret_cast<const uint8_t*>(&info) + field.offset;
    switch (field.size) {
        case sizeof(uint8_t):
            return numberAt<uint8_t>(bytes);
        case sizeof(uint16_t):
            return numberAt<uint16_t>(bytes);
        default:
            return numberAt<uint32_t>(bytes);
    }
}

template <size_t N>
static void printFields(const QLX_TunerSignalInfo& info, const InfoField (&fields)[N]) {
    for (const InfoField& field : fields)
        zk_log("The tuning %s: %d \r\n", field.label, valueOf(info, field));
}

/** How many entries to print: the count that the device told, within the array. */
static uint32_t countWithin(uint32_t told, size_t room) {
    return told < room ? told : static_cast<uint32_t>(room);
}

static void printT2Pipes(const QLX_TunerDvbT2Info& t2) {
    uint32_t count = countWithin(t2.uPlpNum, sizeof t2.uPlpIds);
    for (uint32_t i = 0; i < count; i++)
        zk_log("The tuning PLP id[%d]: %d \r\n", static_cast<int>(i), t2.uPlpIds[i]);
}

static void printLockedPipes(const QLX_TunerAtscT3Info& t3) {
    uint32_t count =
        countWithin(t3.uLockedPlpNum, sizeof t3.stLockedPlp / sizeof t3.stLockedPlp[0]);
    for (uint32_t i = 0; i < count; i++) {
        const QLX_TunerPlpInfo& plp = t3.stLockedPlp[i];
        zk_log("The tuning PLP id(%d), Locked(%d), modulation(%d). \r\n",
               static_cast<int>(plp.uPlpId), static_cast<int>(plp.bLocked),
               static_cast<int>(plp.eModulation));
    }
    zk_log("The tuning PLPs All locked:%d. \r\n", static_cast<int>(t3.bAllPlpsLocked));
}

static void printDetailPipes(const QLX_TunerAtscT3Info& t3) {
    uint32_t count =
        countWithin(t3.uL1DetailPlpNum, sizeof t3.stL1DetailPlp / sizeof t3.stL1DetailPlp[0]);
    for (uint32_t i = 0; i < count; i++) {
        const QLX_TunerL1DetailPlp& plp = t3.stL1DetailPlp[i];
        zk_log("The tuning L1Details PlpInfo[%d]: PLP id(%d), LLS flag(%d), NumChBonded(%d). \r\n",
               static_cast<int>(i), static_cast<int>(plp.uPlpId), static_cast<int>(plp.bLlsFlag),
               static_cast<int>(plp.uNumChBonded));
    }
}

static void printSystem(const QLX_TunerSignalInfo& info) {
    switch (info.stDigital.eTransmissionSystem) {
        case QLX_TRANSMISSION_SYSTEM_DVB_S:
            printFields(info, satelliteFields);
            break;
        case QLX_TRANSMISSION_SYSTEM_DVB_T:
            printFields(info, terrestrialFields);
            printFields(info, dvbTFields);
            break;
        case QLX_TRANSMISSION_SYSTEM_DVB_T2:
            printFields(info, terrestrialFields);
            printT2Pipes(info.stDigital.stDvbTerrestrial.stDvbT2);
            printFields(info, dvbT2Fields);
            break;
        case QLX_TRANSMISSION_SYSTEM_DVB_C2:
            printFields(info, dvbC2Fields);
            break;
        case QLX_TRANSMISSION_SYSTEM_ATSC_T3:
            printFields(info, atscT3BasicFields);
            printDetailPipes(info.stDigital.stAtscT3);
            printFields(info, atscT3DetailFields);
            printLockedPipes(info.stDigital.stAtscT3);
            break;
        default:
            break;
    }
}

uint32_t tuner_check_tuning_params(uint32_t eTunerId) {
    CaseContext tc = {__func__};
    QLX_TunerSignalInfo stSignalInfo = {};
    TC_ASSERT_RET(QLX_TunerGetSignalInfo(eTunerId, &stSignalInfo));
    TC_ASSERT_EQUAL(QLX_TUNER_TUNING_TYPE_DIGITAL, stSignalInfo.eTuningType);
    zk_log("The parameters of Tuner %d as follows: \r\n", static_cast<int>(eTunerId));
    printFields(stSignalInfo, commonFields);
    printSystem(stSignalInfo);
    return TC_SUCCESS;
}

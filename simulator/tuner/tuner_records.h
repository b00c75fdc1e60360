/*
 * Descriptions of the tuners' records. The transmission system tells which part of a union holds.
 */
#ifndef SIMULATOR_TUNER_TUNER_RECORDS_H
#define SIMULATOR_TUNER_TUNER_RECORDS_H

#include "platform/qlx_tuner.h"
#include "simulator/core/record.h"

namespace sim {

SIM_RECORD(QLX_TunerTuningParamsDvbS, SIM_MEMBER(QLX_TunerTuningParamsDvbS, eLnbTypeReal),
           SIM_MEMBER(QLX_TunerTuningParamsDvbS, uUnicableDevId),
           SIM_MEMBER(QLX_TunerTuningParamsDvbS, uUnicableChannelId),
           SIM_MEMBER(QLX_TunerTuningParamsDvbS, uUnicableChannelFreqKHz),
           SIM_MEMBER(QLX_TunerTuningParamsDvbS, uReserved),
           SIM_MEMBER(QLX_TunerTuningParamsDvbS, bKnownOffset),
           SIM_MEMBER(QLX_TunerTuningParamsDvbS, bKnownSymbolRate),
           SIM_MEMBER(QLX_TunerTuningParamsDvbS, ePolarization),
           SIM_MEMBER(QLX_TunerTuningParamsDvbS, eLnbToneState),
           SIM_MEMBER(QLX_TunerTuningParamsDvbS, eFecType),
           SIM_MEMBER(QLX_TunerTuningParamsDvbS, eFecRate),
           SIM_MEMBER(QLX_TunerTuningParamsDvbS, uLocalOscFrequency),
           SIM_MEMBER(QLX_TunerTuningParamsDvbS, uLowLnbFrequency),
           SIM_MEMBER(QLX_TunerTuningParamsDvbS, uHighLnbFrequency),
           SIM_MEMBER(QLX_TunerTuningParamsDvbS, eRfBand))
SIM_RECORD(QLX_TunerTuningParamsDvbT, SIM_MEMBER(QLX_TunerTuningParamsDvbT, uReserved),
           SIM_MEMBER(QLX_TunerTuningParamsDvbT, eGuardInterval),
           SIM_MEMBER(QLX_TunerTuningParamsDvbT, eTransmissionMode),
           SIM_MEMBER(QLX_TunerTuningParamsDvbT, eEchoPosition),
           SIM_MEMBER(QLX_TunerTuningParamsDvbT, eBandWidth),
           SIM_MEMBER(QLX_TunerTuningParamsDvbT, eFecRate),
           SIM_MEMBER(QLX_TunerTuningParamsDvbT, eTunerMode),
           SIM_MEMBER(QLX_TunerTuningParamsDvbT, eHierarchy),
           SIM_MEMBER(QLX_TunerTuningParamsDvbT, ePriority),
           SIM_MEMBER(QLX_TunerTuningParamsDvbT, uPlpId),
           SIM_MEMBER(QLX_TunerTuningParamsDvbT, uPlpNum))
SIM_RECORD(QLX_TunerTuningParamsAtscT3, SIM_MEMBER(QLX_TunerTuningParamsAtscT3, eBandWidth),
           SIM_MEMBER(QLX_TunerTuningParamsAtscT3, uPlpNum),
           SIM_MEMBER(QLX_TunerTuningParamsAtscT3, uPlpId))
SIM_RECORD(QLX_TunerTuningParamsIsdbT, SIM_MEMBER(QLX_TunerTuningParamsIsdbT, eBandWidth))
SIM_RECORD(QLX_TunerTuningParamsIsdbS, SIM_MEMBER(QLX_TunerTuningParamsIsdbS, uTsId))
SIM_RECORD(QLX_TunerTuningParamsIsdbS3, SIM_MEMBER(QLX_TunerTuningParamsIsdbS3, uStreamId))

#define TUNED(member, systems) \
    SIM_MEMBER_IF(QLX_TunerTuningParams, member, (record.eTransmissionSystem & (systems)) != 0)
SIM_RECORD(QLX_TunerTuningParams, SIM_MEMBER(QLX_TunerTuningParams, eTuningType),
           SIM_MEMBER(QLX_TunerTuningParams, uTuneOption),
           SIM_MEMBER(QLX_TunerTuningParams, uFrequency),
           SIM_MEMBER(QLX_TunerTuningParams, eModulation),
           SIM_MEMBER(QLX_TunerTuningParams, uSymbolRate),
           SIM_MEMBER(QLX_TunerTuningParams, eSpectrum),
           SIM_MEMBER(QLX_TunerTuningParams, eTransmissionSystem),
           TUNED(stDvbS, QLX_TRANSMISSION_SYSTEM_DVB_S | QLX_TRANSMISSION_SYSTEM_DVB_S2),
           TUNED(stDvbT, QLX_TRANSMISSION_SYSTEM_DVB_T | QLX_TRANSMISSION_SYSTEM_DVB_T2),
           TUNED(stAtscT3, QLX_TRANSMISSION_SYSTEM_ATSC_T3),
           TUNED(stIsdbT, QLX_TRANSMISSION_SYSTEM_ISDB_T),
           TUNED(stIsdbS, QLX_TRANSMISSION_SYSTEM_ISDB_S),
           TUNED(stIsdbS3, QLX_TRANSMISSION_SYSTEM_ISDB_S3))
#undef TUNED

SIM_RECORD(QLX_TunerSatelliteInfo, SIM_MEMBER(QLX_TunerSatelliteInfo, ePolarization),
           SIM_MEMBER(QLX_TunerSatelliteInfo, eLnbToneState),
           SIM_MEMBER(QLX_TunerSatelliteInfo, eFecType),
           SIM_MEMBER(QLX_TunerSatelliteInfo, eFecRates),
           SIM_MEMBER(QLX_TunerSatelliteInfo, eDownlinkRfBand),
           SIM_MEMBER(QLX_TunerSatelliteInfo, eRolloffFactor),
           SIM_MEMBER(QLX_TunerSatelliteInfo, eFrameLength),
           SIM_MEMBER(QLX_TunerSatelliteInfo, bPilotsPresent),
           SIM_MEMBER(QLX_TunerSatelliteInfo, uPacketErrorRate),
           SIM_MEMBER(QLX_TunerSatelliteInfo, iFrequencyOffset))
SIM_RECORD(QLX_TunerDvbTInfo, SIM_MEMBER(QLX_TunerDvbTInfo, eHierarchy),
           SIM_MEMBER(QLX_TunerDvbTInfo, ePriority),
           SIM_MEMBER(QLX_TunerDvbTInfo, eHighPriorityFecRate),
           SIM_MEMBER(QLX_TunerDvbTInfo, eLowPriorityFecRate),
           SIM_MEMBER(QLX_TunerDvbTInfo, uCellIdentifier))
SIM_RECORD(QLX_TunerDvbT2Info, SIM_MEMBER(QLX_TunerDvbT2Info, uPlpIds),
           SIM_MEMBER(QLX_TunerDvbT2Info, uPlpNum), SIM_MEMBER(QLX_TunerDvbT2Info, eFecRate),
           SIM_MEMBER(QLX_TunerDvbT2Info, eT1Modulation),
           SIM_MEMBER(QLX_TunerDvbT2Info, uNetworkIdentifier),
           SIM_MEMBER(QLX_TunerDvbT2Info, uT2SystemIdentifier),
           SIM_MEMBER(QLX_TunerDvbT2Info, uCellIdentifier),
           SIM_MEMBER(QLX_TunerDvbT2Info, bPreambleMixed),
           SIM_MEMBER(QLX_TunerDvbT2Info, uS1Signalling),
           SIM_MEMBER(QLX_TunerDvbT2Info, eL1PrePilotPattern),
           SIM_MEMBER(QLX_TunerDvbT2Info, eL1PrePeakToAveragePowerRatio),
           SIM_MEMBER(QLX_TunerDvbT2Info, bBandwidthExtension),
           SIM_MEMBER(QLX_TunerDvbT2Info, uOfdmSymbolsPerFrame),
           SIM_MEMBER(QLX_TunerDvbT2Info, bHighEfficiencyMode))
SIM_RECORD(QLX_TunerDvbC2Info, SIM_MEMBER(QLX_TunerDvbC2Info, ePipeType),
           SIM_MEMBER(QLX_TunerDvbC2Info, bRotatedConstellation),
           SIM_MEMBER(QLX_TunerDvbC2Info, uPipeIdentifier),
           SIM_MEMBER(QLX_TunerDvbC2Info, uNumberOfPipes),
           SIM_MEMBER(QLX_TunerDvbC2Info, uSliceIdentifier),
           SIM_MEMBER(QLX_TunerDvbC2Info, uNumberOfSliceIdentifiers),
           SIM_MEMBER(QLX_TunerDvbC2Info, eSliceType),
           SIM_MEMBER(QLX_TunerDvbC2Info, eChannelBandwidth),
           SIM_MEMBER(QLX_TunerDvbC2Info, eFecRates),
           SIM_MEMBER(QLX_TunerDvbC2Info, eGuardInterval))
SIM_RECORD(QLX_TunerL1DetailPlp, SIM_MEMBER(QLX_TunerL1DetailPlp, uPlpId),
           SIM_MEMBER(QLX_TunerL1DetailPlp, bLlsFlag),
           SIM_MEMBER(QLX_TunerL1DetailPlp, uNumChBonded))
SIM_RECORD(QLX_TunerPlpInfo, SIM_MEMBER(QLX_TunerPlpInfo, uPlpId),
           SIM_MEMBER(QLX_TunerPlpInfo, bLocked), SIM_MEMBER(QLX_TunerPlpInfo, eModulation),
           SIM_MEMBER(QLX_TunerPlpInfo, uReserved))
SIM_RECORD(QLX_TunerAtscT3Info, SIM_MEMBER(QLX_TunerAtscT3Info, uEaWakeUp),
           SIM_MEMBER(QLX_TunerAtscT3Info, bLlsInThisRf),
           SIM_MEMBER(QLX_TunerAtscT3Info, bReturnChannelInThisRf),
           SIM_MEMBER(QLX_TunerAtscT3Info, uL1DetailBsid),
           SIM_MEMBER(QLX_TunerAtscT3Info, uL1DetailPlpNum),
           SIM_MEMBER(QLX_TunerAtscT3Info, stL1DetailPlp),
           SIM_MEMBER(QLX_TunerAtscT3Info, TimeInfo), SIM_MEMBER(QLX_TunerAtscT3Info, Sec),
           SIM_MEMBER(QLX_TunerAtscT3Info, Msec), SIM_MEMBER(QLX_TunerAtscT3Info, Usec),
           SIM_MEMBER(QLX_TunerAtscT3Info, Nsec), SIM_MEMBER(QLX_TunerAtscT3Info, uNumBondedRf),
           SIM_MEMBER(QLX_TunerAtscT3Info, uBondedBsid),
           SIM_MEMBER(QLX_TunerAtscT3Info, uLockedPlpNum),
           SIM_MEMBER(QLX_TunerAtscT3Info, bAllPlpsLocked),
           SIM_MEMBER(QLX_TunerAtscT3Info, stLockedPlp))

#define RECEIVED(member, systems) \
    SIM_MEMBER_IF(QLX_TunerDigitalInfo, member, (record.eTransmissionSystem & (systems)) != 0)
#define TERRESTRIAL QLX_TRANSMISSION_SYSTEM_DVB_T | QLX_TRANSMISSION_SYSTEM_DVB_T2
SIM_RECORD(QLX_TunerDigitalInfo, SIM_MEMBER(QLX_TunerDigitalInfo, eModulation),
           SIM_MEMBER(QLX_TunerDigitalInfo, uSymbolRate),
           SIM_MEMBER(QLX_TunerDigitalInfo, eSpectrum),
           SIM_MEMBER(QLX_TunerDigitalInfo, sSignalQuality),
           SIM_MEMBER(QLX_TunerDigitalInfo, uChannelBitErrorRate),
           SIM_MEMBER(QLX_TunerDigitalInfo, uBitErrorRate),
           SIM_MEMBER(QLX_TunerDigitalInfo, iRfLevel),
           SIM_MEMBER(QLX_TunerDigitalInfo, eTransmissionSystem),
           SIM_MEMBER(QLX_TunerDigitalInfo, uPacketErrorCounter),
           RECEIVED(stDvbSatellite, QLX_TRANSMISSION_SYSTEM_DVB_S | QLX_TRANSMISSION_SYSTEM_DVB_S2),
           RECEIVED(stDvbTerrestrial.eGuardInterval, TERRESTRIAL),
           RECEIVED(stDvbTerrestrial.eTransmissionMode, TERRESTRIAL),
           RECEIVED(stDvbTerrestrial.eChannelBandwidth, TERRESTRIAL),
           RECEIVED(stDvbTerrestrial.iResidualOffset, TERRESTRIAL),
           RECEIVED(stDvbTerrestrial.stDvbT, QLX_TRANSMISSION_SYSTEM_DVB_T),
           RECEIVED(stDvbTerrestrial.stDvbT2, QLX_TRANSMISSION_SYSTEM_DVB_T2),
           RECEIVED(stDvbC2, QLX_TRANSMISSION_SYSTEM_DVB_C2),
           RECEIVED(stAtscT3, QLX_TRANSMISSION_SYSTEM_ATSC_T3))
#undef TERRESTRIAL
#undef RECEIVED
SIM_RECORD(QLX_TunerSignalInfo, SIM_MEMBER(QLX_TunerSignalInfo, eTuningType),
           SIM_MEMBER(QLX_TunerSignalInfo, uSignalPresent),
           SIM_MEMBER(QLX_TunerSignalInfo, uReserved0),
           SIM_MEMBER(QLX_TunerSignalInfo, uSignalStrength),
           SIM_MEMBER(QLX_TunerSignalInfo, sSignalQuality),
           SIM_MEMBER(QLX_TunerSignalInfo, uTunedFrequency),
           SIM_MEMBER(QLX_TunerSignalInfo, iRfLevel),
           SIM_MEMBER(QLX_TunerSignalInfo, uCarrierToNoise),
           SIM_MEMBER(QLX_TunerSignalInfo, uSingleShot),
           SIM_MEMBER(QLX_TunerSignalInfo, eLockStatus),
           SIM_MEMBER(QLX_TunerSignalInfo, uReserved1), SIM_MEMBER(QLX_TunerSignalInfo, stDigital))

SIM_RECORD(QLX_TunerBlindScanInfo, SIM_MEMBER(QLX_TunerBlindScanInfo, uProgress),
           SIM_MEMBER(QLX_TunerBlindScanInfo, uFrequency),
           SIM_MEMBER(QLX_TunerBlindScanInfo, uSymbolRate),
           SIM_MEMBER(QLX_TunerBlindScanInfo, eModulation),
           SIM_MEMBER(QLX_TunerBlindScanInfo, eFecType),
           SIM_MEMBER(QLX_TunerBlindScanInfo, eFecRate),
           SIM_MEMBER(QLX_TunerBlindScanInfo, ePolarization),
           SIM_MEMBER(QLX_TunerBlindScanInfo, eRfBand))
SIM_RECORD(QLX_TunerBlindScanParams, SIM_MEMBER(QLX_TunerBlindScanParams, eLnbTypeReal),
           SIM_MEMBER(QLX_TunerBlindScanParams, uStartIfFrequency),
           SIM_MEMBER(QLX_TunerBlindScanParams, uEndIfFrequency),
           SIM_MEMBER(QLX_TunerBlindScanParams, uStartSymbolRate),
           SIM_MEMBER(QLX_TunerBlindScanParams, uEndSymbolRate),
           SIM_MEMBER(QLX_TunerBlindScanParams, puCancelFlag),
           SIM_MEMBER(QLX_TunerBlindScanParams, uLowLnbFrequency),
           SIM_MEMBER(QLX_TunerBlindScanParams, uHighLnbFrequency),
           SIM_MEMBER(QLX_TunerBlindScanParams, uUnicableDevId),
           SIM_MEMBER(QLX_TunerBlindScanParams, uUnicableChannelId),
           SIM_MEMBER(QLX_TunerBlindScanParams, uUnicableChannelFreqKHz),
           SIM_MEMBER(QLX_TunerBlindScanParams, uNibbleBand),
           SIM_MEMBER(QLX_TunerBlindScanParams, uNibblePolarization),
           SIM_MEMBER(QLX_TunerBlindScanParams, callback),
           SIM_MEMBER(QLX_TunerBlindScanParams, tuneCallback),
           SIM_MEMBER(QLX_TunerBlindScanParams, puFinishedBands))

}  // namespace sim

#endif

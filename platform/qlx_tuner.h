/*
 * Digital tuners, and the satellite equipment behind their connectors.
 *
 * Tuning is asynchronous: QLX_TunerSetTuningParam returns at once, and when the demodulator has
 * decided, one event with QLX_TUNER_STATUS_LOCKED, _UNLOCKED or _PLP_LOCKED comes through the
 * registered callback, on a thread of the library. The signal information shows the same status
 * from then on. A new tuning answers with a new event, also when nothing changed.
 *
 * Frequencies are in kHz; for satellite systems they are intermediate frequencies on the cable
 * unless told otherwise. Symbol rates are in symbols per second unless told otherwise. Enumerated
 * members of records have 32 bits. Any thread may call; tuners are independent of each other.
 *
 * Results: 0; QLX_FAILED for a call in the wrong order (before QLX_TunerInit, on a tuner that is
 * not open, a second open); QLX_TUNER_ERR_INVALID_PARA for a tuner that does not exist, a null
 * pointer, or a value out of range.
 */
#ifndef PLATFORM_QLX_TUNER_H
#define PLATFORM_QLX_TUNER_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_TunerError {
    QLX_TUNER_ERR_INVALID_PARA = 0x100302,
    /** From QLX_TunerBlindScanNext: the band has been scanned to its end. */
    QLX_TUNER_ERR_BLINDSCAN_END = 0x10030D,
    /** From QLX_TunerBlindScanNext: the cancel flag of the scan was found set. */
    QLX_TUNER_ERR_BLINDSCAN_CANCELED = 0x10030E,
};

enum QLX_TunerId {
    QLX_TUNER_INVALID = -1,
    QLX_TUNER_0 = 0,
    QLX_TUNER_1 = 1,
    QLX_TUNER_2 = 2,
    QLX_TUNER_3 = 3,
    QLX_TUNER_MAX = 4,
};

/** Transmission systems, one bit each; records carry exactly one. */
enum QLX_TransmissionSystem {
    QLX_TRANSMISSION_SYSTEM_DVB_T = 1,
    QLX_TRANSMISSION_SYSTEM_DVB_T2 = 2,
    QLX_TRANSMISSION_SYSTEM_DVB_S = 4,
    QLX_TRANSMISSION_SYSTEM_DVB_S2 = 8,
    QLX_TRANSMISSION_SYSTEM_DVB_C = 16,
    QLX_TRANSMISSION_SYSTEM_DVB_C2 = 32,
    QLX_TRANSMISSION_SYSTEM_ATSC_T = 64,
    QLX_TRANSMISSION_SYSTEM_ATSC_C = 128,
    QLX_TRANSMISSION_SYSTEM_ISDB_T = 256,
    QLX_TRANSMISSION_SYSTEM_ISDB_S = 512,
    QLX_TRANSMISSION_SYSTEM_ISDB_S3 = 1024,
    QLX_TRANSMISSION_SYSTEM_ATSC_T3 = 2048,
};

enum QLX_TunerTuningType {
    QLX_TUNER_TUNING_TYPE_ANALOG = 1,
    QLX_TUNER_TUNING_TYPE_DIGITAL = 2,
};

enum QLX_TunerTuneOption {
    QLX_TUNER_TUNE_OPTION_DEFAULT = 0,
    /** The record may lie beside the nominal carrier: use it as it stands, do not correct it. */
    QLX_TUNER_TUNE_OPTION_OFF_NOMINAL = 1,
};

enum QLX_TunerSignalStatus {
    QLX_TUNER_STATUS_LOCKED = 0,
    QLX_TUNER_STATUS_UNLOCKED = 2,
    /** Locked, with every physical layer pipe of the tuning record. */
    QLX_TUNER_STATUS_PLP_LOCKED = 6,
};

enum QLX_Modulation {
    QLX_MODULATION_AUTO = 0,
    QLX_MODULATION_BPSK = 1,
    QLX_MODULATION_QPSK = 2,
    QLX_MODULATION_8PSK = 4,
    QLX_MODULATION_16APSK = 8,
    QLX_MODULATION_32APSK = 16,
    QLX_MODULATION_16QAM = 32,
    QLX_MODULATION_32QAM = 64,
    QLX_MODULATION_64QAM = 128,
    QLX_MODULATION_128QAM = 256,
    QLX_MODULATION_256QAM = 512,
    QLX_MODULATION_1024QAM = 1024,
    QLX_MODULATION_4096QAM = 2048,
    QLX_MODULATION_DQPSK = 8192,
    QLX_MODULATION_8VSB = 16384,
};

enum QLX_Spectrum {
    QLX_SPECTRUM_NORMAL = 0,
    QLX_SPECTRUM_INVERTED = 1,
};

enum QLX_FecType {
    QLX_FEC_TYPE_AUTO = 0,
    QLX_FEC_TYPE_DVB_S = 1,
    QLX_FEC_TYPE_DVB_S2 = 2,
};

enum QLX_FecRate {
    QLX_FEC_RATE_AUTO = 0,
    QLX_FEC_RATE_1_2 = 1,
    QLX_FEC_RATE_2_3 = 2,
    QLX_FEC_RATE_3_4 = 4,
    QLX_FEC_RATE_4_5 = 8,
    QLX_FEC_RATE_5_6 = 16,
    QLX_FEC_RATE_6_7 = 32,
    QLX_FEC_RATE_7_8 = 64,
    QLX_FEC_RATE_3_5 = 128,
    QLX_FEC_RATE_8_9 = 256,
    QLX_FEC_RATE_9_10 = 512,
};

enum QLX_BandWidth {
    QLX_BANDWIDTH_AUTO = 0,
    QLX_BANDWIDTH_6MHZ = 1,
    QLX_BANDWIDTH_7MHZ = 2,
    QLX_BANDWIDTH_8MHZ = 4,
    QLX_BANDWIDTH_5MHZ = 8,
    QLX_BANDWIDTH_10MHZ = 16,
    QLX_BANDWIDTH_1_7MHZ = 32,
};

enum QLX_GuardInterval {
    QLX_GUARD_INTERVAL_AUTO = 0,
    QLX_GUARD_INTERVAL_1_32 = 1,
    QLX_GUARD_INTERVAL_1_16 = 2,
    QLX_GUARD_INTERVAL_1_8 = 4,
    QLX_GUARD_INTERVAL_1_4 = 8,
    QLX_GUARD_INTERVAL_1_128 = 16,
    QLX_GUARD_INTERVAL_19_128 = 32,
    QLX_GUARD_INTERVAL_19_256 = 64,
};

enum QLX_TransmissionMode {
    QLX_TRANSMISSION_MODE_AUTO = 0,
    QLX_TRANSMISSION_MODE_2K = 1,
    QLX_TRANSMISSION_MODE_8K = 2,
    QLX_TRANSMISSION_MODE_4K = 4,
    QLX_TRANSMISSION_MODE_1K = 8,
    QLX_TRANSMISSION_MODE_16K = 16,
    QLX_TRANSMISSION_MODE_32K = 32,
};

enum QLX_Hierarchy {
    QLX_HIERARCHY_NONE = 0,
    QLX_HIERARCHY_ALPHA_1 = 1,
    QLX_HIERARCHY_ALPHA_2 = 2,
    QLX_HIERARCHY_ALPHA_4 = 4,
};

enum QLX_Priority {
    QLX_PRIORITY_HIGH = 0,
    QLX_PRIORITY_LOW = 1,
};

/** The LNB's answer to its supply: 13 V selects vertical, 18 V horizontal polarization. */
enum QLX_Polarization {
    /** Leave the supply as it is. */
    QLX_POLARIZATION_UNCHANGED = 0,
    QLX_POLARIZATION_VERTICAL = 1,
    QLX_POLARIZATION_HORIZONTAL = 2,
};

/** Downlink band of the LNB: without tone the low, with 22 kHz the high one. */
enum QLX_RfBand {
    QLX_RF_BAND_LOW = 0,
    QLX_RF_BAND_HIGH = 1,
};

enum QLX_LnbTypeReal {
    /** One cable, many receivers (EN 50494): a user band is selected by ODU_Channel_change. */
    QLX_LNB_TYPE_UNICABLE = 0,
    /** Band and polarization are selected by tone and supply. */
    QLX_LNB_TYPE_STANDARD = 1,
};

enum QLX_LnbPower {
    QLX_LNB_POWER_OFF = 0,
    QLX_LNB_POWER_13V = 2,
    QLX_LNB_POWER_18V = 3,
};

enum QLX_LnbToneState {
    /** In a tuning record: leave the tone as it is. */
    QLX_LNB_TONE_STATE_UNCHANGED = 0,
    QLX_LNB_TONE_STATE_OFF = 1,
    QLX_LNB_TONE_STATE_22KHZ = 2,
};

enum QLX_LnbToneburst {
    QLX_LNB_TONEBURST_A = 0,
    QLX_LNB_TONEBURST_B = 1,
};

/** Satellite part of a tuning. */
typedef struct QLX_TunerTuningParamsDvbS {
    uint32_t eLnbTypeReal;            /**< QLX_LnbTypeReal. */
    uint32_t uUnicableDevId;          /**< Address of the ODU on the cable. */
    uint32_t uUnicableChannelId;      /**< User band, from 1 as in ODU_Channel_change. */
    uint32_t uUnicableChannelFreqKHz; /**< Centre of the user band. */
    uint32_t uReserved;
    uint32_t bKnownOffset;       /**< 1: uFrequency is exact; 0: the carrier is searched for. */
    uint32_t bKnownSymbolRate;   /**< 1: uSymbolRate must match; 0: the demodulator finds it. */
    uint32_t ePolarization;      /**< QLX_Polarization. */
    uint32_t eLnbToneState;      /**< QLX_LnbToneState. */
    uint32_t eFecType;           /**< QLX_FecType. */
    uint32_t eFecRate;           /**< QLX_FecRate. */
    uint32_t uLocalOscFrequency; /**< Local oscillator of the LNB in kHz, 0 when not known. */
    uint32_t uLowLnbFrequency;   /**< Local oscillator of the low band in kHz. */
    uint32_t uHighLnbFrequency;  /**< Local oscillator of the high band in kHz. */
    uint32_t eRfBand;            /**< QLX_RfBand. */
} QLX_TunerTuningParamsDvbS;
QLX_RECORD_SIZE(QLX_TunerTuningParamsDvbS, 60);

/** Terrestrial part of a tuning, both generations. */
typedef struct QLX_TunerTuningParamsDvbT {
    uint32_t uReserved;
    uint32_t eGuardInterval;    /**< QLX_GuardInterval. */
    uint32_t eTransmissionMode; /**< QLX_TransmissionMode. */
    uint32_t eEchoPosition;
    uint32_t eBandWidth; /**< QLX_BandWidth. */
    uint32_t eFecRate;   /**< QLX_FecRate. */
    uint32_t eTunerMode;
    uint32_t eHierarchy; /**< QLX_Hierarchy. */
    uint32_t ePriority;  /**< QLX_Priority. */
    uint8_t uPlpId;      /**< Second generation: the pipe to receive. */
    uint8_t uPlpNum;     /**< Second generation: pipes of the multiplex, 0 when not known. */
} QLX_TunerTuningParamsDvbT;

/** Pipes of an ATSC 3.0 tuning; without any, the tuning ends at the frame lock. */
typedef struct QLX_TunerTuningParamsAtscT3 {
    uint32_t eBandWidth; /**< QLX_BandWidth. */
    uint8_t uPlpNum;     /**< Used places of uPlpId, 0 to 4. */
    uint8_t uPlpId[4];   /**< Pipe identifiers, 0 to 63. */
} QLX_TunerTuningParamsAtscT3;

typedef struct QLX_TunerTuningParamsIsdbT {
    uint32_t eBandWidth; /**< QLX_BandWidth. */
} QLX_TunerTuningParamsIsdbT;

typedef struct QLX_TunerTuningParamsIsdbS {
    uint32_t uTsId; /**< The transport stream to take from the carrier. */
} QLX_TunerTuningParamsIsdbS;

typedef struct QLX_TunerTuningParamsIsdbS3 {
    uint32_t uStreamId; /**< The stream to take from the carrier. */
} QLX_TunerTuningParamsIsdbS3;

/** What to tune to. */
typedef struct QLX_TunerTuningParams {
    uint32_t eTuningType;         /**< QLX_TunerTuningType; only digital is accepted. */
    uint32_t uTuneOption;         /**< QLX_TunerTuneOption. */
    uint32_t uFrequency;          /**< kHz. */
    uint32_t eModulation;         /**< QLX_Modulation. */
    uint32_t uSymbolRate;         /**< Symbols per second; 0 when not known, or without meaning. */
    uint32_t eSpectrum;           /**< QLX_Spectrum. */
    uint32_t eTransmissionSystem; /**< QLX_TransmissionSystem; chooses the part below. */
    union {
        QLX_TunerTuningParamsDvbS stDvbS;     /**< Systems 4 and 8. */
        QLX_TunerTuningParamsDvbT stDvbT;     /**< Systems 1 and 2. */
        QLX_TunerTuningParamsAtscT3 stAtscT3; /**< System 2048. */
        QLX_TunerTuningParamsIsdbT stIsdbT;   /**< System 256. */
        QLX_TunerTuningParamsIsdbS stIsdbS;   /**< System 512. */
        QLX_TunerTuningParamsIsdbS3 stIsdbS3; /**< System 1024. */
    };
} QLX_TunerTuningParams;
QLX_RECORD_SIZE(QLX_TunerTuningParams, 88);

typedef struct QLX_TunerSatelliteInfo {
    uint32_t ePolarization;    /**< QLX_Polarization. */
    uint32_t eLnbToneState;    /**< QLX_LnbToneState. */
    uint32_t eFecType;         /**< QLX_FecType. */
    uint32_t eFecRates;        /**< QLX_FecRate. */
    uint32_t eDownlinkRfBand;  /**< QLX_RfBand. */
    uint32_t eRolloffFactor;   /**< Hundredths: 35, 25 or 20. */
    uint32_t eFrameLength;     /**< S2 frame: 0 normal, 1 short. */
    uint32_t bPilotsPresent;   /**< 0 or 1. */
    uint32_t uPacketErrorRate; /**< Packets in error of the last million. */
    int32_t iFrequencyOffset;  /**< Requested frequency less that of the carrier, in kHz. */
} QLX_TunerSatelliteInfo;

typedef struct QLX_TunerDvbTInfo {
    uint32_t eHierarchy;           /**< QLX_Hierarchy. */
    uint32_t ePriority;            /**< QLX_Priority. */
    uint32_t eHighPriorityFecRate; /**< QLX_FecRate. */
    uint32_t eLowPriorityFecRate;  /**< QLX_FecRate. */
    uint32_t uCellIdentifier;      /**< From the transmission parameter signalling. */
} QLX_TunerDvbTInfo;

typedef struct QLX_TunerDvbT2Info {
    uint8_t uPlpIds[256]; /**< Identifiers of the multiplex' pipes; the first uPlpNum hold. */
    uint32_t uPlpNum;
    uint32_t eFecRate; /**< QLX_FecRate of the received pipe. */
    uint32_t eT1Modulation;
    uint32_t uNetworkIdentifier;
    uint32_t uT2SystemIdentifier;
    uint32_t uCellIdentifier;
    uint32_t bPreambleMixed;
    uint32_t uS1Signalling;
    uint32_t eL1PrePilotPattern;
    uint32_t eL1PrePeakToAveragePowerRatio;
    uint32_t bBandwidthExtension;
    uint32_t uOfdmSymbolsPerFrame;
    uint32_t bHighEfficiencyMode;
} QLX_TunerDvbT2Info;

typedef struct QLX_TunerTerrestrialInfo {
    uint32_t eGuardInterval;    /**< QLX_GuardInterval. */
    uint32_t eTransmissionMode; /**< QLX_TransmissionMode. */
    uint32_t eChannelBandwidth; /**< QLX_BandWidth. */
    int32_t iResidualOffset;    /**< Hz. */
    union {
        QLX_TunerDvbTInfo stDvbT;   /**< System 1. */
        QLX_TunerDvbT2Info stDvbT2; /**< System 2. */
    };
} QLX_TunerTerrestrialInfo;

typedef struct QLX_TunerDvbC2Info {
    uint32_t ePipeType;
    uint32_t bRotatedConstellation;
    uint8_t uPipeIdentifier;
    uint8_t uNumberOfPipes;
    uint8_t uSliceIdentifier;
    uint8_t uNumberOfSliceIdentifiers;
    uint32_t eSliceType;
    uint32_t eChannelBandwidth; /**< QLX_BandWidth. */
    uint32_t eFecRates;         /**< QLX_FecRate. */
    uint32_t eGuardInterval;    /**< QLX_GuardInterval. */
} QLX_TunerDvbC2Info;

/** A pipe as the L1-detail signalling of ATSC 3.0 (A/322) announces it. */
typedef struct QLX_TunerL1DetailPlp {
    uint32_t uPlpId;
    uint32_t bLlsFlag;     /**< 1: the pipe carries low level signalling. */
    uint32_t uNumChBonded; /**< Bonded channels of the pipe. */
} QLX_TunerL1DetailPlp;
QLX_RECORD_SIZE(QLX_TunerL1DetailPlp, 12);

/** A pipe that the demodulator was asked to receive. */
typedef struct QLX_TunerPlpInfo {
    uint32_t uPlpId;
    uint32_t bLocked;
    uint32_t eModulation; /**< QLX_Modulation. */
    uint32_t uReserved[2];
} QLX_TunerPlpInfo;
QLX_RECORD_SIZE(QLX_TunerPlpInfo, 20);

typedef struct QLX_TunerAtscT3Info {
    uint8_t uEaWakeUp;              /**< The two emergency alert wake-up bits, 0 to 3. */
    uint8_t bLlsInThisRf;           /**< L1-Basic. */
    uint8_t bReturnChannelInThisRf; /**< L1-Basic. */
    uint16_t uL1DetailBsid;         /**< Broadcast stream identifier. */
    uint8_t uL1DetailPlpNum;        /**< Used places of stL1DetailPlp. */
    QLX_TunerL1DetailPlp stL1DetailPlp[64];
    uint32_t TimeInfo; /**< L1D_time_info: how exact the time below is; 0 when there is none. */
    uint32_t Sec;      /**< L1D_time_sec: seconds of the physical layer time (32 bits of PTP). */
    uint32_t Msec;     /**< 0 to 999. */
    uint32_t Usec;     /**< 0 to 999. */
    uint32_t Nsec;     /**< 0 to 999. */
    uint16_t uNumBondedRf;
    uint16_t uBondedBsid;
    uint32_t uLockedPlpNum;  /**< Used places of stLockedPlp. */
    uint32_t bAllPlpsLocked; /**< 1 when every pipe of the tuning record is received. */
    QLX_TunerPlpInfo stLockedPlp[4];
} QLX_TunerAtscT3Info;
QLX_RECORD_SIZE(QLX_TunerAtscT3Info, 888);

typedef struct QLX_TunerDigitalInfo {
    uint32_t eModulation; /**< QLX_Modulation. */
    uint32_t uSymbolRate; /**< Symbols per second. */
    uint32_t eSpectrum;   /**< QLX_Spectrum. */
    int32_t sSignalQuality;
    uint32_t uChannelBitErrorRate; /**< Before correction, errors of a million bits. */
    uint32_t uBitErrorRate;        /**< After inner decoding, errors of a million bits. */
    int32_t iRfLevel;              /**< dBm. */
    uint32_t eTransmissionSystem;  /**< QLX_TransmissionSystem received; chooses the part below. */
    uint32_t uPacketErrorCounter;
    union {
        QLX_TunerSatelliteInfo stDvbSatellite;     /**< System 4. */
        QLX_TunerTerrestrialInfo stDvbTerrestrial; /**< Systems 1 and 2. */
        QLX_TunerDvbC2Info stDvbC2;                /**< System 32. */
        QLX_TunerAtscT3Info stAtscT3;              /**< System 2048. */
    };
} QLX_TunerDigitalInfo;

/** What is received, at the moment of the call. */
typedef struct QLX_TunerSignalInfo {
    uint32_t eTuningType;    /**< As tuned. */
    uint32_t uSignalPresent; /**< 1 when there is a signal at the tuned frequency, else 0. */
    uint32_t uReserved0;
    uint32_t uSignalStrength; /**< Percent. */
    int32_t sSignalQuality;   /**< Percent. */
    uint32_t uTunedFrequency; /**< kHz, as tuned, locked or not. */
    int32_t iRfLevel;         /**< dBm. */
    uint32_t uCarrierToNoise; /**< dB. */
    uint32_t uSingleShot;
    uint32_t eLockStatus; /**< QLX_TunerSignalStatus. */
    uint32_t uReserved1;
    QLX_TunerDigitalInfo stDigital;
} QLX_TunerSignalInfo;
QLX_RECORD_SIZE(QLX_TunerSignalInfo, 968);

/**
 * Signal event. Runs on a thread of the library; never after QLX_TunerUnRegisterCallback returned.
 * @param eTunerId       the tuner
 * @param pUserData      as registered
 * @param eSignalStatus  QLX_TunerSignalStatus; other values may occur and are no lock decision
 * @param pData          reserved, null
 */
typedef void (*QLX_TunerCallback)(uint32_t eTunerId, void* pUserData, uint32_t eSignalStatus,
                                  void* pData);

/** Initialises the service; a repeated call is a success. Returns 0. */
int32_t QLX_TunerInit(void);

/** Ends the service, closing what is open, whatever the number of initialisations. Returns 0. */
int32_t QLX_TunerDeInit(void);

/** Opens a tuner. QLX_FAILED before QLX_TunerInit and when it is open already. */
int32_t QLX_TunerOpen(uint32_t eTunerId);

/** Closes a tuner; its callback, tuning and scan end with it. */
int32_t QLX_TunerClose(uint32_t eTunerId);

/** Registers the receiver of the tuner's events, in place of an earlier one. */
int32_t QLX_TunerRegisterCallback(uint32_t eTunerId, void* pUserData, QLX_TunerCallback callback);

/** Ends the events. Waits for a running callback, so it must not be called by one. */
int32_t QLX_TunerUnRegisterCallback(uint32_t eTunerId, QLX_TunerCallback callback);

/**
 * Starts a tuning and returns at once; the decision comes as one event. For satellite systems it
 * sets the LNB's supply and tone as the record says; with a Unicable LNB it moves the user band.
 * @return 0, also for a frequency without a signal; QLX_TUNER_ERR_INVALID_PARA for a tuning type
 *         that is not digital, and for anything but exactly one known transmission system
 */
int32_t QLX_TunerSetTuningParam(uint32_t eTunerId, const QLX_TunerTuningParams* pstTuningParams);

/** Gives the record last accepted by QLX_TunerSetTuningParam, all zero when there was none. */
int32_t QLX_TunerGetTuningParam(uint32_t eTunerId, QLX_TunerTuningParams* pstTuningParams);

/** Fills the signal information of an open tuner, tuned or not. */
int32_t QLX_TunerGetSignalInfo(uint32_t eTunerId, QLX_TunerSignalInfo* pstSignalInfo);

/**
 * Switches the emergency alert mode of an ATSC 3.0 demodulator, in which it listens to the wake-up
 * bits alone: it delivers no stream, and the signal information tells nothing of the L1 signalling
 * and of pipes. The lock status stays. Tunings do not end the mode, QLX_TunerClose does; while
 * another system is tuned it has no effect.
 * @param bEnable  QLX_TRUE or QLX_FALSE
 */
int32_t QLX_TunerSetEasMode(uint32_t eTunerId, uint32_t bEnable);

/** Sets the LNB's supply. @param ePower  QLX_LnbPower */
int32_t QLX_TunerSetLnbPower(uint32_t eTunerId, uint32_t ePower);

/** Sets the continuous tone. @param eState  QLX_LNB_TONE_STATE_OFF or _22KHZ */
int32_t QLX_TunerSetTonburstState(uint32_t eTunerId, uint32_t eState);

/** Sends a tone burst, which selects one of two positions. @param eBurst  QLX_LnbToneburst */
int32_t QLX_TunerSwitchTonburst(uint32_t eTunerId, uint32_t eBurst);

/**
 * Sends a DiSEqC message and receives the answer, if one is wanted.
 * @param uSendLength        bytes to send, 3 to 6: framing, address, command, up to three of data
 * @param puSendBuffer       the message
 * @param uReceiveMaxLength  room in puReceiveBuffer; 0 when no answer is wanted
 * @param puReceiveBuffer    receives the answer; may be null with no room
 * @param puReceiveLength    receives its length; may be null with no room
 */
int32_t QLX_TunerSendDiseqcCommand(uint32_t eTunerId, uint32_t uSendLength,
                                   const uint8_t* puSendBuffer, uint32_t uReceiveMaxLength,
                                   uint8_t* puReceiveBuffer, uint32_t* puReceiveLength);

enum QLX_TunerBlindScanEvent {
    QLX_TUNER_BLINDSCAN_EVENT_PROGRESS = 0,
    QLX_TUNER_BLINDSCAN_EVENT_LOCK_FREQUENCY = 1,
};

/** Where a blind scan stands: the candidate that it tries, or the carrier that it has found. */
typedef struct QLX_TunerBlindScanInfo {
    uint32_t uProgress;     /**< Percent of the band; 100 is told once, by a progress event. */
    uint32_t uFrequency;    /**< Downlink frequency in kHz: on the cable plus local oscillator. */
    uint32_t uSymbolRate;   /**< ksps, 0 when not known yet. */
    uint32_t eModulation;   /**< QLX_Modulation, 0 when not known yet. */
    uint32_t eFecType;      /**< QLX_FecType, 0 when not known yet. */
    uint32_t eFecRate;      /**< QLX_FecRate, 0 when not known yet. */
    uint32_t ePolarization; /**< QLX_Polarization of the scanned band. */
    uint32_t eRfBand;       /**< QLX_RfBand of the scanned band. */
} QLX_TunerBlindScanInfo;

/**
 * Progress of a blind scan, called on a thread of the library.
 * @param eEvent           QLX_TunerBlindScanEvent; on _LOCK_FREQUENCY the info is the carrier
 * @param puFinishedBands  the puFinishedBands of the scan's record
 */
typedef void (*QLX_TunerBlindScanCallback)(uint32_t eTunerId, uint32_t eEvent,
                                           const QLX_TunerBlindScanInfo* pstInfo,
                                           uint32_t* puFinishedBands);

/**
 * Called on a thread of the library before each candidate is tried, so that the program can steer
 * the equipment behind the connector; it may call the LNB, tone and DiSEqC functions.
 */
typedef void (*QLX_TunerBlindScanTuneCallback)(uint32_t eTunerId,
                                               const QLX_TunerBlindScanInfo* pstCandidate);

/** A blind scan of one band: the one that the LNB's supply and tone select when it starts. */
typedef struct QLX_TunerBlindScanParams {
    uint32_t eLnbTypeReal;                 /**< QLX_LnbTypeReal. */
    uint32_t uStartIfFrequency;            /**< kHz. */
    uint32_t uEndIfFrequency;              /**< kHz. */
    uint32_t uStartSymbolRate;             /**< ksps. */
    uint32_t uEndSymbolRate;               /**< ksps. */
    const volatile uint32_t* puCancelFlag; /**< Scan ends when it becomes non-zero. May be null. */
    uint32_t uLowLnbFrequency;             /**< Local oscillator of the low band in kHz. */
    uint32_t uHighLnbFrequency;            /**< Local oscillator of the high band in kHz. */
    uint32_t uUnicableDevId;               /**< As in the tuning record. */
    uint32_t uUnicableChannelId;
    uint32_t uUnicableChannelFreqKHz;
    uint8_t uNibbleBand;                 /**< Unicable: band bit of the bank, 0 low. */
    uint8_t uNibblePolarization;         /**< Unicable: polarization bit of the bank, 0 at 13 V. */
    QLX_TunerBlindScanCallback callback; /**< May be null. */
    QLX_TunerBlindScanTuneCallback tuneCallback; /**< May be null. */
    uint32_t* puFinishedBands;                   /**< Handed to callback, else untouched. */
} QLX_TunerBlindScanParams;
QLX_RECORD_SIZE_32(QLX_TunerBlindScanParams, 60);

/**
 * Starts the scan of a band; the record is copied. QLX_FAILED while one runs on the tuner,
 * QLX_TUNER_ERR_INVALID_PARA for an empty range.
 */
int32_t QLX_TunerBlindScanStart(uint32_t eTunerId, const QLX_TunerBlindScanParams* pstParams);

/**
 * Goes on with the scan by one step, and takes the time that the step takes.
 * @param pstResult  receives where the scan stands
 * @return 0 nothing found in this step; 1 a carrier found; QLX_TUNER_ERR_BLINDSCAN_END;
 *         QLX_TUNER_ERR_BLINDSCAN_CANCELED; other codes when no scan runs
 */
int32_t QLX_TunerBlindScanNext(uint32_t eTunerId, QLX_TunerBlindScanInfo* pstResult);

/** Ends the scan; a new one may start at once. A success also when none runs. */
int32_t QLX_TunerBlindScanStop(uint32_t eTunerId);

#ifdef __cplusplus
}
#endif

#endif

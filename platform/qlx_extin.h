/*
 * External inputs: HDMI, CVBS, YPbPr and VGA connectors.
 *
 * A port is named by kind and number. Events tell of all ports, open or not: a fresh registration
 * is answered with the state of every port, and each change follows.
 *
 * Any thread may call, callbacks included. Wrong order is answered with QLX_FAILED, a port that the
 * board lacks, a bad value or a null pointer with QLX_EXTIN_ERR_INVALID_PARA.
 */
#ifndef PLATFORM_QLX_EXTIN_H
#define PLATFORM_QLX_EXTIN_H

#include "platform/qlx_source.h"
#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_ExtInError {
    QLX_EXTIN_ERR_INVALID_PARA = 0x101601,
};

/** A port. */
typedef struct QLX_ExtInSource {
    /** QLX_SOURCE_TYPE_HDMI, _AV_CVBS, _AV_YPBPR or _VGA. */
    uint32_t eType;
    /** Number of the port among its kind, from 0. */
    uint32_t uPort;
    /** QLX_InputClass. */
    uint32_t eInputClass;
} QLX_ExtInSource;
QLX_RECORD_SIZE(QLX_ExtInSource, 12);

enum QLX_ExtInSignalStatus {
    /** Nothing at the port. */
    QLX_EXTIN_SIGNAL_STATUS_NONE = 0,
    /** A picture that the port can take, and that is stable. */
    QLX_EXTIN_SIGNAL_STATUS_STABLE = 1,
    /** Something is there, and not stable yet. */
    QLX_EXTIN_SIGNAL_STATUS_UNSTABLE = 2,
};

enum QLX_ExtInHdmiType {
    QLX_EXTIN_HDMI_TYPE_DVI = 0,
    QLX_EXTIN_HDMI_TYPE_HDMI = 1,
};

enum QLX_ExtInHdmiSignalFormat {
    /** What every source can send: at most 300 MHz of TMDS character rate. */
    QLX_EXTIN_HDMI_SIGNAL_FORMAT_STANDARD = 0,
    /** HDMI 2.0: up to 600 MHz, scrambled. */
    QLX_EXTIN_HDMI_SIGNAL_FORMAT_ENHANCED = 1,
};

/** Phases of the converters; of a YPbPr port the first one counts. */
typedef struct QLX_ExtInAdcPhase {
    uint32_t uRY; /**< Red, or luminance. */
    uint32_t uG;
    uint32_t uB;
} QLX_ExtInAdcPhase;
QLX_RECORD_SIZE(QLX_ExtInAdcPhase, 12);

/** What the EDID of a HDMI port announces. */
enum QLX_HdmiEdidVersion {
    /** Pictures up to 300 MHz. */
    QLX_HDMI_EDID_1_4 = 0,
    /** Pictures up to 600 MHz too. */
    QLX_HDMI_EDID_2_0 = 1,
};

enum QLX_HdmiEdidOperation {
    /** Enters a short audio descriptor of three bytes (CTA-861) in the place of that of its format.
     */
    QLX_HDMI_EDID_AUDIO_SAD_UPDAE = 0,
    /** Reads the two blocks, 256 bytes. */
    QLX_HDMI_EDID_READ = 2,
};

/** Data of an operation on an EDID. */
typedef struct QLX_HdmiEdid {
    uint8_t* pData;
    uint32_t uLength; /**< Bytes at pData: 3 to enter, 256 or more to read. */
    uint32_t uPort;   /**< HDMI port, from 0. */
} QLX_HdmiEdid;
QLX_RECORD_SIZE_32(QLX_HdmiEdid, 12);

enum QLX_ExtInEvent {
    QLX_EXTIN_EVENT_CABLE_LINKED = 2,
    QLX_EXTIN_EVENT_SIGNAL_STATUS = 4,
};

/** Data of QLX_EXTIN_EVENT_CABLE_LINKED, which HDMI ports have. */
typedef struct QLX_ExtInCableEvent {
    uint32_t eType;       /**< As in QLX_ExtInSource. */
    uint32_t eInputClass; /**< As in QLX_ExtInSource. */
    uint32_t uPort;       /**< As in QLX_ExtInSource. */
    uint32_t bLinked;     /**< QLX_TRUE or QLX_FALSE. */
} QLX_ExtInCableEvent;
QLX_RECORD_SIZE(QLX_ExtInCableEvent, 16);

/** Data of QLX_EXTIN_EVENT_SIGNAL_STATUS. */
typedef struct QLX_ExtInSignalEvent {
    uint32_t eType;         /**< As in QLX_ExtInSource. */
    uint32_t eInputClass;   /**< As in QLX_ExtInSource. */
    uint32_t uPort;         /**< As in QLX_ExtInSource. */
    uint32_t eSignalStatus; /**< QLX_ExtInSignalStatus. */
} QLX_ExtInSignalEvent;
QLX_RECORD_SIZE(QLX_ExtInSignalEvent, 16);

/**
 * State or change of a port. Runs on a thread of the library.
 * @param eEvent     QLX_ExtInEvent
 * @param pUserData  as registered
 * @param pData      the record of the event
 */
typedef void (*QLX_ExtInCallback)(uint32_t eEvent, void* pUserData, void* pData);

/** Initialises the service; a repeated call is a success. Returns 0. */
int32_t QLX_ExtInInit(void);

/** Ends the service and closes what is open; a success also without init. Returns 0. */
int32_t QLX_ExtInDeInit(void);

/** Registers the receiver of events, in place of an earlier one. QLX_FAILED before init. */
int32_t QLX_ExtInRegisterCallback(void* pUserData, QLX_ExtInCallback callback);

/** Ends the events; a success also when none is registered. Waits for a running callback, unless it
 *  is called by one. QLX_FAILED before init. */
int32_t QLX_ExtInUnRegisterCallback(QLX_ExtInCallback callback);

/**
 * Tells how many ports of a kind the board has.
 * @param eType      QLX_SourceType; another kind than an input's has none
 * @param puPortNum  receives the count
 */
int32_t QLX_ExtInGetSourcePortNum(uint32_t eType, uint32_t* puPortNum);

/** Opens a port; an open one stays as it is. Returns 0; QLX_FAILED before init;
 *  QLX_EXTIN_ERR_INVALID_PARA. */
int32_t QLX_ExtInOpen(const QLX_ExtInSource* pstSource);

/** Closes a port. QLX_FAILED when it is not open. */
int32_t QLX_ExtInClose(const QLX_ExtInSource* pstSource);

/** Tells whether a cable with a source is plugged into an open port, QLX_TRUE or QLX_FALSE. */
int32_t QLX_ExtInGetCableLinkedStatus(const QLX_ExtInSource* pstSource, uint32_t* pbLinked);

/** Tells the state of an open port's signal, QLX_ExtInSignalStatus. */
int32_t QLX_ExtInGetSignalStatus(const QLX_ExtInSource* pstSource, uint32_t* peSignalStatus);

/** Gives the converters' phases of an open YPbPr or VGA port. */
int32_t QLX_ExtInGetAdcPhase(const QLX_ExtInSource* pstSource, QLX_ExtInAdcPhase* pstPhase);

/** Sets them; each from 0 to what QLX_ExtInGetAdcPhaseRange tells, less one. */
int32_t QLX_ExtInSetAdcPhase(const QLX_ExtInSource* pstSource, const QLX_ExtInAdcPhase* pstPhase);

/** Tells how many phases the converters of an open YPbPr or VGA port have. */
int32_t QLX_ExtInGetAdcPhaseRange(const QLX_ExtInSource* pstSource, uint32_t* puRange);

/** Tells what an open HDMI port receives, QLX_ExtInHdmiType. */
int32_t QLX_ExtInGetHdmiType(const QLX_ExtInSource* pstSource, uint32_t* peHdmiType);

/** Sets what a HDMI port announces to its source; needs init alone.
 *  @param eFormat  QLX_ExtInHdmiSignalFormat */
int32_t QLX_ExtInSetHDMISignalFormat(const QLX_ExtInSource* pstSource, uint32_t eFormat);

/** Gives what QLX_ExtInSetHDMISignalFormat has set. */
int32_t QLX_ExtInGetHDMISignalFormat(const QLX_ExtInSource* pstSource, uint32_t* peFormat);

/**
 * Makes the EDID of a HDMI port anew, with the television's own audio descriptors.
 * @param uPort     HDMI port, from 0
 * @param eVersion  QLX_HdmiEdidVersion
 * @return 0; QLX_FAILED before init; QLX_EXTIN_ERR_INVALID_PARA
 */
int32_t QLX_ExtInEDIDInit(uint32_t uPort, uint32_t eVersion);

/**
 * Reads or alters the EDID of a HDMI port.
 * @param eOperation  QLX_HdmiEdidOperation
 * @return 0; QLX_FAILED before init, before the port's QLX_ExtInEDIDInit, and when ten formats are
 *         entered already; QLX_EXTIN_ERR_INVALID_PARA
 */
int32_t QLX_ExtInEDIDOperate(uint32_t eOperation, QLX_HdmiEdid* pstEdid);

#ifdef __cplusplus
}
#endif

#endif

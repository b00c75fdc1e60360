/*
 * The transport stream recorder: packets of chosen PIDs, from what flows through a demultiplexer to
 * a callback of the program's.
 *
 * A recorder is opened on a demultiplexer, given PIDs and callbacks, and started. From then on the
 * packets of its PIDs come to the data callback, at least every 100 ms while there are any, on a
 * thread of the library's. Packets come as they are received: what is scrambled stays so. PIDs may
 * be added and removed while it runs.
 *
 * The library holds no lock while it calls back. After a stop, an unregistration or a close has
 * returned, no callback runs or comes, unless the call was made inside that callback.
 *
 * Wrong order is answered with QLX_FAILED; a null pointer, or a handle, demultiplexer or PID that
 * does not exist, with QLX_RECORD_ERR_INVALID_PARA.
 */
#ifndef PLATFORM_QLX_RECORD_H
#define PLATFORM_QLX_RECORD_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_RecordError {
    QLX_RECORD_ERR_INVALID_PARA = 0x100501,
    /** A video format that the recorder does not know. */
    QLX_RECORD_ERR_NOT_SUPPORTED = 0x100502,
};

enum {
    /** PIDs that a recorder takes; further ones are accepted and not recorded. */
    QLX_RECORD_PID_MAX = 32,
    QLX_RECORD_PACKET_188 = 188,
    /** Four bytes ahead of each packet, high byte first: when it came, in periods of 27 MHz since
     *  the start. */
    QLX_RECORD_PACKET_192 = 192,
};

/** Coding of a video PID, for the index of access points. */
enum QLX_RecordVideoFmt {
    QLX_RECORD_VIDEO_FMT_MPEG1 = 0,
    QLX_RECORD_VIDEO_FMT_MPEG2 = 1,
    QLX_RECORD_VIDEO_FMT_MPEG4 = 2,
    QLX_RECORD_VIDEO_FMT_H264 = 3,
    QLX_RECORD_VIDEO_FMT_VC1 = 6,
    QLX_RECORD_VIDEO_FMT_HEVC = 7,
};

/** How a recorder is opened. */
typedef struct QLX_RecordCfg {
    /** QLX_RECORD_PACKET_188 or QLX_RECORD_PACKET_192. */
    uint32_t uPacketSize;
    /** KiB that wait for a callback that is slow, 1 to 65536; what comes beyond is lost. */
    uint32_t uBufferSize;
    /** Keep them zero. */
    uint32_t uReserved[2];
} QLX_RecordCfg;
QLX_RECORD_SIZE(QLX_RecordCfg, 16);

/** What the data callback tells. */
enum QLX_RecordEvent {
    QLX_RECORD_EVENT_DATA = 0,
    /** Data, ahead of which packets have been lost because the callback was slow. */
    QLX_RECORD_EVENT_OVERFLOW = 1,
};

/** What the index callback tells. */
enum QLX_RecordIndexEvent {
    /** Decoding of the video can begin here. */
    QLX_RECORD_INDEX_ACCESS_POINT = 0,
    /** Packets have been lost here. */
    QLX_RECORD_INDEX_OVERFLOW = 1,
};

/** A place of a recording. */
typedef struct QLX_RecordIndex {
    /** Bytes delivered before this place since the start. */
    uint64_t uOffset;
    /** Of an access point: its presentation time stamp, 90 kHz, 33 bits; 0 without one. */
    uint64_t uPts;
    /** Of an overflow: packets lost. */
    uint32_t uLost;
    uint32_t uPid;
} QLX_RecordIndex;
QLX_RECORD_SIZE(QLX_RecordIndex, 24);

/**
 * Takes recorded data.
 * @param eEvent     QLX_RecordEvent
 * @param pTsData    whole packets; valid during the call, and may be altered
 * @param uLen       bytes, of whole packets
 * @param pUserData  as registered
 * @return is ignored
 */
typedef int32_t (*QLX_RecordTsCallback)(uint32_t hRecord, uint32_t eEvent, uint8_t* pTsData,
                                        uint32_t uLen, void* pUserData);
/** Takes places of the data that come next. @param eEvent  QLX_RecordIndexEvent */
typedef int32_t (*QLX_RecordIndexCallback)(uint32_t hRecord, uint32_t eEvent,
                                           const QLX_RecordIndex* pIndex, uint32_t uLen,
                                           void* pUserData);

typedef struct QLX_RecordCallbacks {
    QLX_RecordTsCallback tsCallback;
    void* pTsUserData;
    /** May be null. */
    QLX_RecordIndexCallback indexCallback;
    void* pIndexUserData;
} QLX_RecordCallbacks;
QLX_RECORD_SIZE_32(QLX_RecordCallbacks, 16);

/** Initialises the service; a repeated call is a success. Returns 0. */
int32_t QLX_RecordInit(void);
/** Ends it, whatever the number of initialisations was; recorders are closed. Returns 0. */
int32_t QLX_RecordDeInit(void);

/**
 * Opens the recorder of a demultiplexer, which may be closed at that time.
 * @param eDemuxId   QLX_DEMUX_0 to QLX_DEMUX_3
 * @param phRecord   receives the handle, never 0
 * @return 0; QLX_FAILED before init, or when it is open already; QLX_RECORD_ERR_INVALID_PARA
 */
int32_t QLX_RecordOpen(uint32_t eDemuxId, const QLX_RecordCfg* pstCfg, uint32_t* phRecord);
/** Stops and closes a recorder. Returns 0; QLX_RECORD_ERR_INVALID_PARA. */
int32_t QLX_RecordClose(uint32_t hRecord);

/** Sets the callbacks of a recorder that does not run. Returns 0; QLX_FAILED when it runs;
 *  QLX_RECORD_ERR_INVALID_PARA also without a data callback. */
int32_t QLX_RecordRegisterCb(uint32_t hRecord, const QLX_RecordCallbacks* pstCallbacks);
/** Takes them away, and waits for one that runs; user data are not looked at. Returns 0;
 *  QLX_RECORD_ERR_INVALID_PARA also for callbacks that are not registered. */
int32_t QLX_RecordUnRegisterCb(uint32_t hRecord, const QLX_RecordCallbacks* pstCallbacks);

/** Adds a PID, 0 to 8191; one that is there already, or for which there is no room, is a success
 *  without effect. Returns 0; QLX_RECORD_ERR_INVALID_PARA. */
int32_t QLX_RecordAddPid(uint32_t hRecord, uint32_t uPid);
/** Removes a PID. Returns 0; QLX_FAILED when it was not added; QLX_RECORD_ERR_INVALID_PARA. */
int32_t QLX_RecordRemovePid(uint32_t hRecord, uint32_t uPid);
/**
 * Tells which of the PIDs carries video, for the index.
 * @param eVideoFmt  QLX_RecordVideoFmt
 * @return 0; QLX_FAILED when the PID was not added; QLX_RECORD_ERR_NOT_SUPPORTED;
 *         QLX_RECORD_ERR_INVALID_PARA
 */
int32_t QLX_RecordSetVideoFmt(uint32_t hRecord, uint32_t uPid, uint32_t eVideoFmt);

/** Starts a recorder that has a PID. Returns 0; QLX_FAILED; QLX_RECORD_ERR_INVALID_PARA. */
int32_t QLX_RecordStart(uint32_t hRecord);
/** Stops it; what has not been delivered by then is dropped. Returns 0; QLX_FAILED when it does not
 *  run; QLX_RECORD_ERR_INVALID_PARA. */
int32_t QLX_RecordStop(uint32_t hRecord);
/** Leaves out what comes from now on; time stamps run on. Returns 0; QLX_FAILED when it does not
 *  run or is paused; QLX_RECORD_ERR_INVALID_PARA. */
int32_t QLX_RecordPause(uint32_t hRecord);
/** Ends a pause. Returns 0; QLX_FAILED when it is not paused; QLX_RECORD_ERR_INVALID_PARA. */
int32_t QLX_RecordResume(uint32_t hRecord);

#ifdef __cplusplus
}
#endif

#endif

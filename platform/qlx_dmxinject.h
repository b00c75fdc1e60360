/*
 * Injection: a transport stream that the program writes into a demultiplexer.
 *
 * An injector is opened on a demultiplexer, given a callback, and started; the program then writes
 * blocks into its buffer, from where the packets go out at the rate of the stream's own clock. The
 * demultiplexer, connected to QLX_SOURCE_TYPE_RECORD, takes them from there. Blocks may begin and
 * end anywhere in a packet.
 *
 * The library calls back on a thread of its own and holds no lock over it. After a stop, an
 * unregistration or a close has returned, no callback runs or comes, unless the call was made
 * inside that callback.
 *
 * Wrong order is answered with QLX_FAILED; a null pointer, or a handle or value that does not
 * exist, with QLX_DMXINJECT_ERR_INVALID_PARA.
 */
#ifndef PLATFORM_QLX_DMXINJECT_H
#define PLATFORM_QLX_DMXINJECT_H

#include "platform/qlx_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum QLX_DmxInjectError {
    QLX_DMXINJECT_ERR_INVALID_PARA = 0x100601,
};

/** Bytes from packet to packet in what is written. */
enum QLX_DmxInjectPacketSize {
    QLX_DMXINJECT_PACKET_188 = 188,
    /** A time stamp of four bytes ahead of each packet. */
    QLX_DMXINJECT_PACKET_192 = 192,
    /** Sixteen bytes behind each packet. */
    QLX_DMXINJECT_PACKET_204 = 204,
};

/** What an injector is opened on. */
typedef struct QLX_DmxInjectOpenParam {
    /** QLX_DemuxId. */
    uint32_t eDemuxId;
    /** Keep it zero. */
    uint32_t uReserved;
    /** QLX_DmxInjectPacketSize. */
    uint32_t uPacketSize;
} QLX_DmxInjectOpenParam;
QLX_RECORD_SIZE(QLX_DmxInjectOpenParam, 12);

typedef struct QLX_DmxInjectCapability {
    /** Bytes of the buffer, and of a block that suits it. */
    uint32_t uTotalSize;
    uint32_t uChunkSize;
} QLX_DmxInjectCapability;
QLX_RECORD_SIZE(QLX_DmxInjectCapability, 8);

/** Speeds of QLX_DmxInjectSetSpeed, per cent of the normal one; others between are allowed. Of a
 *  backward speed the program writes the pictures in reverse. */
enum QLX_DmxInjectSpeed {
    QLX_DMXINJECT_SPEED_REWIND_8X = -800,
    QLX_DMXINJECT_SPEED_REWIND_4X = -400,
    QLX_DMXINJECT_SPEED_REWIND_2X = -200,
    QLX_DMXINJECT_SPEED_NORMAL = 100,
    QLX_DMXINJECT_SPEED_FORWARD_2X = 200,
    QLX_DMXINJECT_SPEED_FORWARD_4X = 400,
    QLX_DMXINJECT_SPEED_FORWARD_8X = 800,
    QLX_DMXINJECT_SPEED_MAX = 3200,
};

enum QLX_DmxInjectEvent {
    /** A block has been taken into the buffer. */
    QLX_DMXINJECT_EVENT_DATA_WRITE_DONE = 0,
    /** It found no room. */
    QLX_DMXINJECT_EVENT_DATA_WRITE_FAILED = 1,
    /** All that was written has been played, and nothing more has come. */
    QLX_DMXINJECT_EVENT_DATA_PLAYBACK_DONE = 2,
};

/** @param pUserData  as registered. @return is ignored */
typedef int32_t (*QLX_DmxInjectCallback)(uint32_t hInject, uint32_t eEvent, void* pUserData);

/** Initialises the service; a repeated call is a success. Returns 0. */
int32_t QLX_DmxInjectInit(void);
/** Ends it, whatever the number of initialisations was; injectors are closed. Returns 0. */
int32_t QLX_DmxInjectDeInit(void);

/**
 * Opens the injector of a demultiplexer, which may be closed at that time.
 * @param phInject  receives the handle, never 0
 * @return 0; QLX_FAILED before init, or when it is open already; QLX_DMXINJECT_ERR_INVALID_PARA
 */
int32_t QLX_DmxInjectOpen(const QLX_DmxInjectOpenParam* pstParam, uint32_t* phInject);
/** Stops and closes an injector. Returns 0; QLX_FAILED for a handle that is closed already;
 *  QLX_DMXINJECT_ERR_INVALID_PARA. */
int32_t QLX_DmxInjectClose(uint32_t hInject);

/** Sets the callback in place of an earlier one. Returns 0; QLX_DMXINJECT_ERR_INVALID_PARA. */
int32_t QLX_DmxInjectRegisterCallback(uint32_t hInject, QLX_DmxInjectCallback callback,
                                      void* pUserData);
/** Takes it away, and waits for one that runs. Returns 0; QLX_DMXINJECT_ERR_INVALID_PARA also for
 *  one that is not registered. */
int32_t QLX_DmxInjectUnRegisterCallback(uint32_t hInject, QLX_DmxInjectCallback callback);

/** Lets the packets out. Returns 0; QLX_FAILED when it is started; QLX_DMXINJECT_ERR_INVALID_PARA.
 */
int32_t QLX_DmxInjectStart(uint32_t hInject);
/** Empties the buffer and ends the stream. Returns 0; QLX_FAILED when it is not started;
 *  QLX_DMXINJECT_ERR_INVALID_PARA. */
int32_t QLX_DmxInjectStop(uint32_t hInject);
/** Holds the packets back; writing goes on. Returns 0; QLX_FAILED when it is not started, or
 * paused; QLX_DMXINJECT_ERR_INVALID_PARA. */
int32_t QLX_DmxInjectPause(uint32_t hInject);
/** Ends a pause. Returns 0; QLX_FAILED when it is not paused; QLX_DMXINJECT_ERR_INVALID_PARA. */
int32_t QLX_DmxInjectResume(uint32_t hInject);

/** Returns 0; QLX_DMXINJECT_ERR_INVALID_PARA. */
int32_t QLX_DmxInjectGetCapability(uint32_t hInject, QLX_DmxInjectCapability* pstCapability);
/** @param puFreeSize  receives the bytes that find room now.
 *  Returns 0; QLX_DMXINJECT_ERR_INVALID_PARA. */
int32_t QLX_DmxInjectGetFreeSize(uint32_t hInject, uint32_t* puFreeSize);

/**
 * Writes a block, whole or not at all; the callback tells which.
 * @param puWritten  receives the bytes taken
 * @return 0; QLX_FAILED when there is no room; QLX_DMXINJECT_ERR_INVALID_PARA also for no bytes
 */
int32_t QLX_DmxInjectWriteData(uint32_t hInject, const uint8_t* pData, uint32_t uSize,
                               uint32_t* puWritten);

/** Empties the buffer. Returns 0; QLX_DMXINJECT_ERR_INVALID_PARA. */
int32_t QLX_DmxInjectFlush(uint32_t hInject);

/** Sets the speed at which packets go out: QLX_DmxInjectSpeed. Returns 0;
 *  QLX_DMXINJECT_ERR_INVALID_PARA also for 0 and beyond QLX_DMXINJECT_SPEED_MAX either way. */
int32_t QLX_DmxInjectSetSpeed(uint32_t hInject, int32_t iSpeed);

#ifdef __cplusplus
}
#endif

#endif
